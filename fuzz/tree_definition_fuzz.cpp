// Feeds arbitrary bytes, after the tree definition's magic, to
// STreeItems::Load with and without attributes. Whatever loads and can be
// written must read back into a tree that writes the same bytes again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "foundation/file.h"
#include "toolkit/tree_items.h"

namespace {

std::string Written(const STreeItems& tree, bool withAttributes, bool& saved) {
    SFileMem file;
    saved = tree.Save(&file, withAttributes);
    return std::string(file.GetData() != nullptr ? file.GetData() : "", file.GetSize());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 1 << 16) {
        return 0;
    }
    bool withAttributes = (data[0] & 1) != 0;
    std::string bytes = "TAVORA TREE 1.0.0.0\r\n";
    bytes.append(reinterpret_cast<const char*>(data + 1), size - 1);
    SFileMem input;
    input.Write(bytes.data(), static_cast<int>(bytes.size()));
    input.Rewind();
    STreeItems tree;
    if (!tree.Load(&input, withAttributes)) {
        abort();
    }
    bool saved = false;
    std::string first = Written(tree, withAttributes, saved);
    if (!saved) {
        return 0;
    }
    SFileMem again;
    again.Write(first.data(), static_cast<int>(first.size()));
    again.Rewind();
    STreeItems read;
    if (!read.Load(&again, withAttributes) || read.GetCount() != tree.GetCount()) {
        abort();
    }
    bool savedAgain = false;
    if (Written(read, withAttributes, savedAgain) != first || !savedAgain) {
        abort();
    }
    return 0;
}
