#include "panels/wnd_page.h"

#include "foundation/message_numbers.h"
#include "toolkit/messages.h"
#include "toolkit/sys_colors.h"

bool PWndPage::CreatePage(const char* title, int width, int height) {
    SRect rect{0, 0, width, height};
    if (!Create(title, WS_OVERLAPPEDWINDOW, 0, &rect, 0)) {
        return false;
    }
    SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
    SRect none{0, 0, 10, 10};
    statusBar.Create("", WS_VISIBLE, 0, &none, GetHandle());
    statusBar.SetParts({-1});
    web.Create("", WS_VISIBLE, 0, &none, GetHandle());
    web.SetSilent(true);
    Layout();
    return true;
}

void PWndPage::RestorePlace() {
    places.RestorePlacement(placement, this);
    Layout();
}

void PWndPage::ShowPage() {
    if (IsMinimized()) {
        Restore(true);
    }
    Show(SW_SHOW);
}

void PWndPage::ClosePage() {
    if (GetHandle() != 0) {
        Close();
    }
}

void PWndPage::Layout() {
    SSize size = GetClientSize();
    int statusHeight = statusBar.GetIdealHeight();
    statusBar.MoveWindow(SRect{0, size.height - statusHeight, size.width, size.height});
    web.MoveWindow(SRect{0, 0, size.width, size.height - statusHeight});
}

LRESULT PWndPage::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        Layout();
        break;
    case WM_CLOSE:
        places.StorePlacement(placement, this);
        web.Destroy();
        Destroy();
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
