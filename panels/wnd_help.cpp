#include "panels/wnd_help.h"

bool PWndHelp::Open(const char* page) {
    if (GetHandle() == 0) {
        // Not centred: the desktop places it, or the stored placement does.
        if (!CreatePage(TITLE, WIDTH, HEIGHT)) {
            return false;
        }
        statusBar.SetText(0, page);
        web.NavigateUrl(page, page);
        RestorePlace();
    }
    ShowPage();
    return true;
}
