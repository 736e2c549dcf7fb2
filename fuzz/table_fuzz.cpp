// Feeds arbitrary bytes to STable::Load as a table file (after its magic)
// or as comma text, with the options taken from the first byte. A table
// that loads must write a file that loads back and writes the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "foundation/file.h"
#include "toolkit/table.h"

namespace {

std::string Written(const STable& table) {
    SFileMem file;
    if (!table.Save(&file)) {
        abort();
    }
    return std::string(file.GetData() != nullptr ? file.GetData() : "", file.GetSize());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 1 << 16) {
        return 0;
    }
    bool commaText = (data[0] & 1) != 0;
    bool firstOption = (data[0] & 2) != 0;
    bool secondOption = (data[0] & 4) != 0;
    std::string bytes = commaText ? "" : "TAVORA TABLE 1.0.0.0\r\n";
    bytes.append(reinterpret_cast<const char*>(data + 1), size - 1);
    SFileMem input;
    input.Write(bytes.data(), static_cast<int>(bytes.size()));
    input.Rewind();
    STable table;
    if (!table.Load(&input, firstOption, secondOption, commaText)) {
        if (table.GetColumnCount() != 0 || table.GetRowCount() != 0) {
            abort();
        }
        return 0;
    }
    std::string first = Written(table);
    SFileMem again;
    again.Write(first.data(), static_cast<int>(first.size()));
    again.Rewind();
    STable read;
    if (!read.Load(&again, true, true, false) || Written(read) != first) {
        abort();
    }
    return 0;
}
