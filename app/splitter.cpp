#include "app/splitter.h"

#include "foundation/message_numbers.h"

void PSplitterCtrl::SetFirstColumn(int width) {
    firstColumn = width;
    SetDivider(true, 0, width);
}

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
    LRESULT result = SSplitterCtrl::OnMessage(message, wParam, lParam);
    if (GetColumnCount() > 1 && GetClientWidth() > 0) {
        if (message == WM_SIZE && firstColumn >= 0) {
            SetDivider(true, 0, firstColumn);
        } else if (message != WM_SIZE && message != WM_MOVE) {
            int now = GetDivider(true, 0);
            if (now > 0) {
                firstColumn = now;
            }
        }
    }
    if (paneLayout && GetHandle() != 0) {
        std::vector<SSize> sizes;
        for (int row = 0; row < GetRowCount(); ++row) {
            for (int column = 0; column < GetColumnCount(); ++column) {
                _SWnd* pane = GetPane(column, row);
                sizes.push_back(pane != nullptr ? pane->GetClientSize() : SSize{});
            }
        }
        if (sizes != paneSizes) {
            paneSizes = std::move(sizes);
            paneLayout();
        }
    }
    return result;
}
