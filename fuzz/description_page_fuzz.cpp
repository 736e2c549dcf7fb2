// The description page writer over any bytes, read as a description file
// is (Windows-1252 when not UTF-8): no crash, and the page always has its
// head and its closing line.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "foundation/file.h"
#include "pages/description.h"
#include "pages/description_page.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const char* bytes = reinterpret_cast<const char*>(data);
    int length = static_cast<int>(size);
    SString text;
    if (IsValidUtf8(bytes, length)) {
        text.Assign(bytes, length);
    } else {
        text = Windows1252ToUtf8(bytes, length);
    }
    SFileMem page;
    if (!WriteDescriptionPage(&page, "/music/", text, nullptr)) {
        abort();
    }
    const char* end = "</div></body></html>\r\n";
    int endLength = static_cast<int>(strlen(end));
    if (page.GetSize() < endLength ||
        memcmp(page.GetData() + page.GetSize() - endLength, end, static_cast<size_t>(endLength)) != 0 ||
        memcmp(page.GetData(), "<html><head>\r\n", 14) != 0) {
        abort();
    }
    return 0;
}
