// Feeds arbitrary bytes, after the menu definition's magic, to
// SMenuDefinition::Load. Whatever loads must write a file that loads back
// into the same records and writes the same bytes again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "foundation/file.h"
#include "toolkit/menu_definition.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 16) {
        return 0;
    }
    std::string bytes = MENU_MAGIC;
    bytes += "\r\n";
    bytes.append(reinterpret_cast<const char*>(data), size);
    SFileMem input;
    input.Write(bytes.data(), static_cast<int>(bytes.size()));
    input.Rewind();
    SMenuDefinition menu;
    if (!menu.Load(&input)) {
        if (!menu.GetMenus().empty()) {
            abort();
        }
        return 0;
    }
    SFileMem first;
    if (!menu.Save(&first)) {
        return 0; // a text holding CR LF cannot be written
    }
    first.Rewind();
    SMenuDefinition read;
    if (!read.Load(&first) || read.GetMenus() != menu.GetMenus() ||
        read.GetImages() != menu.GetImages()) {
        abort();
    }
    if (read.Format() != menu.Format()) {
        abort();
    }
    return 0;
}
