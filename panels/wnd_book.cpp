#include "panels/wnd_book.h"

#include "foundation/keyboard.h"
#include "foundation/message_numbers.h"
#include "pages/book_links.h"
#include "toolkit/messages.h"
#include "toolkit/notification.h"

bool PWndBook::Open(const char* bookPath) {
    if (GetHandle() == 0) {
        if (!CreatePage(TITLE, WIDTH, HEIGHT)) {
            return false;
        }
        SetMinMax(WIDTH, MIN_HEIGHT, -1, -1);
        CenterOnParent(false);
        RestorePlace();
    }
    web.NavigateUrl(bookPath, bookPath);
    ShowPage();
    return true;
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
    if (note.Is(SN_WEB_BEFORE_NAVIGATE) && note.From(&web)) {
        return OnBeforeNavigate(note.Text());
    }
    if (note.Is(SN_WEB_STATUS_TEXT) && note.From(&web)) {
        statusBar.SetText(0, web.GetStatusText().c_str());
        return 0;
    }
    return PWndPage::OnMessage(message, wParam, lParam);
}
