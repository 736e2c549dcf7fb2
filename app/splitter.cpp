#include "app/splitter.h"

#include "foundation/message_numbers.h"

bool PSplitterCtrl::IsRelayed(unsigned message) {
    switch (message) {
    case SN_EDITOR_CHANGE:
    case SN_WEB_BEFORE_NAVIGATE:
    case SN_LIST_KEY:
    case SN_LIST_MOUSE:
    case SN_LIST_SELECT:
    case SN_LIST_DOUBLE_CLICK:
    case SN_MEDIA_BUTTON_CLICKED:
    case SN_MEDIA_LINK_CLICKED:
    case SN_SCROLL_FORWARD:
        return true;
    default:
        return false;
    }
}

LRESULT PSplitterCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    if (IsRelayed(message)) {
        HWND target = owner != nullptr ? owner->GetHandle() : GetParent();
        LRESULT result = target != 0 ? SendMessage(target, message, wParam, lParam) : 0;
        if (message == SN_WEB_BEFORE_NAVIGATE || message == SN_MEDIA_LINK_CLICKED) {
            return result;
        }
        return 0;
    }
    return SSplitterCtrl::OnMessage(message, wParam, lParam);
}
