// Feeds arbitrary bytes, after the dialog definition's magic and its
// discarded line, to SDialogDefinition::Load, and the same bytes to the
// binary record reader. A definition that loads must write a file that
// loads back and writes the same bytes again; a binary record that reads
// must write the bytes it read.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "dialogs/dialog_definition.h"
#include "foundation/file.h"

namespace {

std::string Written(const SDialogDefinition& definition) {
    SFileMem file;
    if (!definition.Save(&file)) {
        abort();
    }
    return std::string(file.GetData() != nullptr ? file.GetData() : "", file.GetSize());
}

void CheckBinary(const uint8_t* data, size_t size) {
    SFileMem input;
    input.Write(data, static_cast<int>(size));
    input.Rewind();
    SDialogDefinition::_SCtrl record;
    int read = SDialogDefinition::ReadBinary(&input, record);
    if (read == 0) {
        return;
    }
    SFileMem output;
    if (SDialogDefinition::WriteBinary(&output, record) != read ||
        std::string(output.GetData(), output.GetSize()) !=
            std::string(reinterpret_cast<const char*>(data), read)) {
        // Flags are written back as 0 or 1, so only a record whose flag
        // bytes were 0 or 1 must come back byte for byte.
        output.Rewind();
        SDialogDefinition::_SCtrl again;
        if (SDialogDefinition::ReadBinary(&output, again) != read || !(again == record)) {
            abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 16) {
        return 0;
    }
    CheckBinary(data, size);
    std::string bytes = DIALOG_MAGIC;
    bytes += "\r\n\r\n";
    bytes.append(reinterpret_cast<const char*>(data), size);
    SFileMem input;
    input.Write(bytes.data(), static_cast<int>(bytes.size()));
    input.Rewind();
    SDialogDefinition definition;
    if (!definition.Load(&input)) {
        if (definition.HasDialog() || definition.GetControlCount() != 0) {
            abort();
        }
        return 0;
    }
    std::string first = Written(definition);
    SFileMem again;
    again.Write(first.data(), static_cast<int>(first.size()));
    again.Rewind();
    SDialogDefinition read;
    if (!read.Load(&again) || read.GetControlCount() != definition.GetControlCount() ||
        Written(read) != first) {
        abort();
    }
    return 0;
}
