// Feeds arbitrary bytes, after the toolbar definition's magic, to
// SToolbarDefinition::Load. Whatever loads must write a file that loads
// back into the same buttons and writes the same bytes again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "foundation/file.h"
#include "toolkit/toolbar_definition.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 16) {
        return 0;
    }
    std::string bytes = TOOLBAR_MAGIC;
    bytes += "\r\n";
    bytes.append(reinterpret_cast<const char*>(data), size);
    SFileMem input;
    input.Write(bytes.data(), static_cast<int>(bytes.size()));
    input.Rewind();
    SToolbarDefinition toolbar;
    if (!toolbar.Load(&input)) {
        if (!toolbar.buttons.empty()) {
            abort();
        }
        return 0;
    }
    SFileMem first;
    if (!toolbar.Save(&first)) {
        return 0; // a text holding CR LF cannot be written
    }
    first.Rewind();
    SToolbarDefinition read;
    if (!read.Load(&first) || read.buttons != toolbar.buttons || read.width != toolbar.width ||
        read.height != toolbar.height || read.Format() != toolbar.Format()) {
        abort();
    }
    return 0;
}
