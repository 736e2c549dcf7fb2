#include "panels/wnd_help.h"

#include "foundation/message_numbers.h"
#include "toolkit/messages.h"
#include "toolkit/sys_colors.h"

bool PWndHelp::Open(const char* page) {
    if (GetHandle() == 0) {
        // Not centred: the desktop places it, or the stored placement does.
        SRect rect{0, 0, WIDTH, HEIGHT};
        if (!Create(TITLE, WS_OVERLAPPEDWINDOW, 0, &rect, 0)) {
            return false;
        }
        SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
        SRect none{0, 0, 10, 10};
        statusBar.Create("", WS_VISIBLE, 0, &none, GetHandle());
        statusBar.SetParts({-1});
        statusBar.SetText(0, page);
        web.Create("", WS_VISIBLE, 0, &none, GetHandle());
        web.SetSilent(true);
        Layout();
        web.NavigateUrl(page, page);
        places.RestorePlacement(PLACEMENT, this);
        Layout();
    }
    if (IsMinimized()) {
        Restore(true);
    }
    Show(SW_SHOW);
    return true;
}

void PWndHelp::CloseHelp() {
    if (GetHandle() != 0) {
        Close();
    }
}

void PWndHelp::Layout() {
    SSize size = GetClientSize();
    int statusHeight = statusBar.GetIdealHeight();
    statusBar.MoveWindow(SRect{0, size.height - statusHeight, size.width, size.height});
    web.MoveWindow(SRect{0, 0, size.width, size.height - statusHeight});
}

LRESULT PWndHelp::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        Layout();
        break;
    case WM_CLOSE:
        places.StorePlacement(PLACEMENT, this);
        web.Destroy();
        Destroy();
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
