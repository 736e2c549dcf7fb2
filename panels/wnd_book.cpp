#include "panels/wnd_book.h"

#include "foundation/keyboard.h"
#include "foundation/message_numbers.h"
#include "pages/book_links.h"
#include "toolkit/messages.h"
#include "toolkit/notification.h"
#include "toolkit/sys_colors.h"

bool PWndBook::Open(const char* bookPath) {
    if (GetHandle() == 0) {
        SRect rect{0, 0, WIDTH, HEIGHT};
        if (!Create(TITLE, WS_OVERLAPPEDWINDOW, 0, &rect, 0)) {
            return false;
        }
        SetMinMax(WIDTH, MIN_HEIGHT, -1, -1);
        SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
        SRect none{0, 0, 10, 10};
        statusBar.Create("", WS_VISIBLE, 0, &none, GetHandle());
        statusBar.SetParts({-1});
        web.Create("", WS_VISIBLE, 0, &none, GetHandle());
        web.SetSilent(true);
        CenterOnParent(false);
        host.RestorePlacement(PLACEMENT, this);
        Layout();
    }
    web.NavigateUrl(bookPath, bookPath);
    if (IsMinimized()) {
        Restore(true);
    }
    Show(SW_SHOW);
    return true;
}

void PWndBook::CloseBook() {
    if (GetHandle() != 0) {
        Close();
    }
}

void PWndBook::Layout() {
    SSize size = GetClientSize();
    int statusHeight = statusBar.GetIdealHeight();
    statusBar.MoveWindow(SRect{0, size.height - statusHeight, size.width, size.height});
    web.MoveWindow(SRect{0, 0, size.width, size.height - statusHeight});
}

LRESULT PWndBook::OnBeforeNavigate(const char* url) {
    bool ctrl = (SKeyboard::GetModifiers() & SKeyboard::MODIFIER_CTRL) != 0;
    PBookLink link = DecideBookLink(url, host.GetBookRoot().c_str(), ctrl);
    switch (link.action) {
    case PBookLinkAction::Navigate:
        return 0;
    case PBookLinkAction::OpenFolder:
        host.OpenBookFolder(link.path.c_str(), link.select.c_str());
        break;
    case PBookLinkAction::PlaySong:
        host.PlayBookSong(link.path.c_str());
        break;
    case PBookLinkAction::QueueSong:
        host.QueueBookSong(link.path.c_str());
        break;
    case PBookLinkAction::PlayAlbum:
        host.PlayBookAlbum(link.path.c_str());
        break;
    }
    return 1;
}

LRESULT PWndBook::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SNotification note(message, wParam, lParam);
    switch (message) {
    case WM_SIZE:
        Layout();
        break;
    case WM_CLOSE:
        host.StorePlacement(PLACEMENT, this);
        web.Destroy();
        Destroy();
        return 0;
    default:
        break;
    }
    if (note.Is(SN_WEB_BEFORE_NAVIGATE) && note.From(&web)) {
        return OnBeforeNavigate(note.Text());
    }
    if (note.Is(SN_WEB_STATUS_TEXT) && note.From(&web)) {
        statusBar.SetText(0, web.GetStatusText().c_str());
        return 0;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
