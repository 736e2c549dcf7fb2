// ConvertDescriptionLine over any bytes: no crash, and the shape every
// converted line has (a line with no leading tab ends in "<br>", one with n
// leading tabs ends in n "</div>"). A few known folders make the name
// lookup run too.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "pages/description.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static PKnownFolders* known = [] {
        auto* folders = new PKnownFolders;
        const char* names[] = {"Someone", "Rock", "a"};
        const char* paths[] = {"Rock/Someone", "Rock", "x/a"};
        for (int i = 0; i < 3; ++i) {
            folders->FolderNames.Add(names[i]);
            folders->FolderPaths.Add(paths[i]);
        }
        return folders;
    }();
    SString line;
    line.Assign(reinterpret_cast<const char*>(data), static_cast<int>(size));
    SString html = ConvertDescriptionLine(line, known);
    int tabs = 0;
    while (tabs < line.GetLength() && line.GetAt(tabs) == '\t') {
        ++tabs;
    }
    const char* end = tabs == 0 ? "<br>" : "</div>";
    int endLength = static_cast<int>(strlen(end));
    if (html.GetLength() < endLength ||
        strcmp(html.c_str() + html.GetLength() - endLength, end) != 0) {
        abort();
    }
    if (tabs > 0 && html.Find("<div class=txtTab>") != 0) {
        abort();
    }
    return 0;
}
