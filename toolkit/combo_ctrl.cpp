// SComboCtrl: the field, its text editing, and the drop-down list in a
// popup surface.
#include "toolkit/combo_ctrl.h"

#include <cairo.h>

#include <algorithm>

#include "foundation/keyboard.h"
#include "toolkit/ctrl_common.h"
#include "toolkit/list_ctrl.h"
#include "toolkit/mouse_event.h"
#include "toolkit/notification.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"

namespace {

constexpr int TEXT_MARGIN = 4;

// The start of the character before offset (UTF-8), and of the one after.
int PreviousCharacter(const std::string& text, int offset) {
    if (offset <= 0) {
        return 0;
    }
    --offset;
    while (offset > 0 && (static_cast<unsigned char>(text[offset]) & 0xC0) == 0x80) {
        --offset;
    }
    return offset;
}

int NextCharacter(const std::string& text, int offset) {
    int length = static_cast<int>(text.size());
    if (offset >= length) {
        return length;
    }
    ++offset;
    while (offset < length && (static_cast<unsigned char>(text[offset]) & 0xC0) == 0x80) {
        ++offset;
    }
    return offset;
}

// The list of the drop-down: the row under the pointer is the current one.
class PopupList : public SListCtrl {
protected:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_MOUSEMOVE && !thumbDrag) {
            int row = RowAtPoint(SPoint{PointParamX(lParam), PointParamY(lParam)});
            if (row >= 0 && row != GetCurrentRow()) {
                SetCurrentRow(row);
            }
        }
        if (message == WM_LBUTTONDOWN) {
            // The focus stays with the combo box.
            SPoint point{PointParamX(lParam), PointParamY(lParam)};
            if (!GetScrollBarRect().Contains(point)) {
                int row = RowAtPoint(point);
                if (row >= 0) {
                    SetCurrentRow(row);
                }
                return 0;
            }
        }
        return SListCtrl::OnMessage(message, wParam, lParam);
    }
};

} // namespace

// The popup window of the drop-down: a frame round a list. Its keys go to
// the combo box; a press outside it closes the list.
class SComboCtrl::Popup : public SWnd {
public:
    explicit Popup(SComboCtrl* owner) : owner(owner) {}

    bool Open(const SRect& screenRect, const std::vector<std::string>& texts, int current) {
        if (!Create("", WS_VISIBLE, WS_EX_TOOLWINDOW, &screenRect, 0)) {
            return false;
        }
        SRect inner{1, 1, GetClientWidth() - 1, GetClientHeight() - 1};
        if (!list.Create(this, inner, 1, LIST_SELECTION_SINGLE)) {
            return false;
        }
        list.SetRowHeight(owner->ItemHeight());
        list.AddRows(texts);
        list.SetCurrentRow(current);
        return true;
    }

    PopupList list;

protected:
    bool PreMessage(unsigned message, WPARAM* wParam, LPARAM* lParam, LRESULT* result) override {
        if (message == WM_KEYDOWN || message == WM_SYSKEYDOWN || message == WM_CHAR) {
            *result = SendMessage(owner->GetHandle(), message, *wParam, *lParam);
            return false;
        }
        return SWnd::PreMessage(message, wParam, lParam, result);
    }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
        case WM_PAINT: {
            auto* cr = reinterpret_cast<cairo_t*>(wParam);
            ListFrame(cr, GetClientRect(), GetSysColor(SYS_COLOR_WINDOWFRAME));
            return 0;
        }
        case WM_NCLBUTTONDOWN:
        case WM_NCRBUTTONDOWN:
        case WM_NCMBUTTONDOWN:
            owner->CloseList(false);
            return 0;
        case SN_LIST_MOUSE: {
            SNotification note(message, wParam, lParam);
            const SMouseEvent* event = note.From(&list) ? note.Mouse() : nullptr;
            if (event != nullptr && event->code == (MOUSE_CLICK | MOUSE_LEFT) &&
                list.RowAtPoint(event->client) >= 0) {
                owner->CloseList(true);
            }
            return 0;
        }
        default:
            break;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }

private:
    SComboCtrl* owner;
};

SComboCtrl::SComboCtrl() = default;

SComboCtrl::~SComboCtrl() {
    if (popup) {
        popup->Destroy();
    }
}

bool SComboCtrl::Create(SWnd* parent, const SRect& rect, uintptr_t id, COMBO_FORM comboForm,
                        unsigned style) {
    form = comboForm;
    return SWnd::Create("", style, 0, &rect, parent != nullptr ? parent->GetHandle() : 0, id);
}

int SComboCtrl::ItemHeight() {
    if (!font) {
        font.reset(MakeListFont(this));
    }
    return font->lineHeight + 4;
}

int SComboCtrl::AddText(const char* text) {
    items.emplace_back(text != nullptr ? text : "");
    return GetCount() - 1;
}

void SComboCtrl::Clear() {
    CloseList(false);
    items.clear();
    selected = -1;
    if (form == COMBO_DROP_LIST) {
        editText.clear();
        caret = anchor = 0;
    }
    Invalidate();
}

SString SComboCtrl::GetItemText(int index) const {
    return index >= 0 && index < GetCount() ? SString(items[index].c_str()) : SString();
}

bool SComboCtrl::SetSelectedIndex(int index) {
    if (index < -1 || index >= GetCount()) {
        return false;
    }
    selected = index;
    editText = index >= 0 ? items[index] : std::string();
    caret = static_cast<int>(editText.size());
    anchor = 0;
    if (popup) {
        popup->list.SetCurrentRow(index);
    }
    Invalidate();
    return true;
}

SString SComboCtrl::GetEditText() const {
    return SString(editText.c_str());
}

void SComboCtrl::SetEditText(const char* text) {
    editText = text != nullptr ? text : "";
    caret = anchor = static_cast<int>(editText.size());
    if (form == COMBO_DROP_LIST) {
        // The drop-down form shows only its items: the text chooses one.
        auto found = std::find(items.begin(), items.end(), editText);
        selected = found != items.end() ? static_cast<int>(found - items.begin()) : -1;
        if (selected < 0) {
            editText.clear();
            caret = anchor = 0;
        }
    }
    Invalidate();
}

int SComboCtrl::GetSelectionStart() const {
    return std::min(caret, anchor);
}

int SComboCtrl::GetSelectionEnd() const {
    return std::max(caret, anchor);
}

SRect SComboCtrl::GetButtonRect() const {
    int width = GetClientWidth();
    int height = GetClientHeight();
    int size = std::min(height, width);
    return SRect{width - size, 0, width, height};
}

SWnd* SComboCtrl::GetPopup() const {
    return popup.get();
}

SListCtrl* SComboCtrl::GetPopupList() const {
    return popup ? &popup->list : nullptr;
}

void SComboCtrl::Notify(unsigned message) {
    HWND parent = GetParent();
    if (parent != 0) {
        SendMessage(parent, message, reinterpret_cast<WPARAM>(this), 0);
    }
}

void SComboCtrl::Choose(int index) {
    if (index < 0 || index >= GetCount()) {
        return;
    }
    bool changed = index != selected || editText != items[index];
    SetSelectedIndex(index);
    if (changed) {
        Notify(SN_COMBO_SELECT_CHANGE);
    }
}

void SComboCtrl::OpenList() {
    if (popup || GetHandle() == 0 || items.empty()) {
        return;
    }
    SRect field = GetWindowRect();
    int height = std::min(GetCount(), VISIBLE_ITEMS) * ItemHeight() + 2;
    SRect area;
    if (!GetPlatform()->GetWorkArea(&area)) {
        area = SRect{0, 0, 1 << 20, 1 << 20};
    }
    SRect rect{field.left, field.bottom, field.right, field.bottom + height};
    if (rect.bottom > area.bottom && field.top - height >= area.top) {
        rect = SRect{field.left, field.top - height, field.right, field.top};
    }
    HWND focus = GetFocus();
    retired.clear();
    popup = std::make_unique<Popup>(this);
    opening = true;
    bool opened = popup->Open(rect, items, selected);
    opening = false;
    if (!opened) {
        popup->Destroy();
        popup.reset();
        return;
    }
    if (GetFocus() != focus) {
        SetFocus(GetHandle());
    }
    Invalidate();
}

void SComboCtrl::CloseList(bool pick) {
    if (!popup) {
        return;
    }
    // The popup may be closing from inside its own list's handler: its
    // window goes now, the object once that handler has returned.
    std::unique_ptr<Popup> closing = std::move(popup);
    int current = closing->list.GetCurrentRow();
    closing->Destroy();
    PostMessage(GetHandle(), WM_NULL, 0, 0);
    if (GetFocus() == 0) {
        SetFocus(GetHandle()); // back from the popup's hold on the keyboard
    }
    retired.push_back(std::move(closing));
    Invalidate();
    if (pick) {
        Choose(current);
    }
}

void SComboCtrl::ReplaceSelection(const std::string& text) {
    int start = GetSelectionStart();
    int end = GetSelectionEnd();
    editText.replace(start, end - start, text);
    caret = anchor = start + static_cast<int>(text.size());
    EditChanged();
}

void SComboCtrl::EditChanged() {
    selected = -1;
    Invalidate();
    Notify(SN_COMBO_EDIT_CHANGE);
}

bool SComboCtrl::EditKey(unsigned key, bool shift) {
    int length = static_cast<int>(editText.size());
    switch (key) {
    case ctrlkey::LEFT:
        caret = PreviousCharacter(editText, caret);
        break;
    case ctrlkey::RIGHT:
        caret = NextCharacter(editText, caret);
        break;
    case ctrlkey::HOME:
        caret = 0;
        break;
    case ctrlkey::END:
        caret = length;
        break;
    case VK_BACK:
        if (caret == anchor) {
            anchor = PreviousCharacter(editText, caret);
        }
        if (caret != anchor) {
            ReplaceSelection("");
        }
        return true;
    case VK_DELETE:
        if (caret == anchor) {
            anchor = NextCharacter(editText, caret);
        }
        if (caret != anchor) {
            ReplaceSelection("");
        }
        return true;
    default:
        return false;
    }
    if (!shift) {
        anchor = caret;
    }
    Invalidate();
    return true;
}

void SComboCtrl::OnSelectAll() {
    if (form == COMBO_EDITABLE) {
        anchor = 0;
        caret = static_cast<int>(editText.size());
        Invalidate();
    }
}

bool SComboCtrl::HandleKey(unsigned key, bool alt) {
    unsigned modifiers = SKeyboard::GetModifiers();
    bool shift = (modifiers & SKeyboard::MODIFIER_SHIFT) != 0;
    bool ctrl = (modifiers & SKeyboard::MODIFIER_CTRL) != 0;
    if (key == ctrlkey::F4 || (alt && (key == ctrlkey::DOWN || key == ctrlkey::UP))) {
        if (popup) {
            CloseList(true);
        } else {
            OpenList();
        }
        return true;
    }
    if (popup) {
        switch (key) {
        case VK_RETURN:
            CloseList(true);
            return true;
        case VK_ESCAPE:
            CloseList(false);
            return true;
        case ctrlkey::UP:
        case ctrlkey::DOWN:
        case ctrlkey::PRIOR:
        case ctrlkey::NEXT:
            SendMessage(popup->list.GetHandle(), WM_KEYDOWN, key, 0);
            return true;
        case ctrlkey::HOME:
        case ctrlkey::END:
            if (form == COMBO_DROP_LIST) {
                SendMessage(popup->list.GetHandle(), WM_KEYDOWN, key, 0);
                return true;
            }
            break;
        default:
            break;
        }
    }
    if (form == COMBO_EDITABLE) {
        if (ctrl && key == 'A') {
            OnSelectAll();
            return true;
        }
        if (EditKey(key, shift)) {
            return true;
        }
    }
    int count = GetCount();
    int target = -1;
    switch (key) {
    case ctrlkey::UP:
        target = selected - 1;
        break;
    case ctrlkey::DOWN:
        target = selected + 1;
        break;
    case ctrlkey::PRIOR:
        target = selected - VISIBLE_ITEMS;
        break;
    case ctrlkey::NEXT:
        target = selected + VISIBLE_ITEMS;
        break;
    case ctrlkey::HOME:
        target = 0;
        break;
    case ctrlkey::END:
        target = count - 1;
        break;
    default:
        return false;
    }
    if (count > 0) {
        Choose(std::clamp(target, 0, count - 1));
    }
    return true;
}

void SComboCtrl::HandleChar(unsigned character) {
    if (form == COMBO_EDITABLE) {
        if (character < 32 || character == 127) {
            return;
        }
        std::string typed;
        if (character < 0x80) {
            typed.push_back(static_cast<char>(character));
        } else if (character < 0x800) {
            typed.push_back(static_cast<char>(0xC0 | (character >> 6)));
            typed.push_back(static_cast<char>(0x80 | (character & 0x3F)));
        } else if (character < 0x10000) {
            typed.push_back(static_cast<char>(0xE0 | (character >> 12)));
            typed.push_back(static_cast<char>(0x80 | ((character >> 6) & 0x3F)));
            typed.push_back(static_cast<char>(0x80 | (character & 0x3F)));
        } else {
            return;
        }
        ReplaceSelection(typed);
        return;
    }
    if (popup) {
        SendMessage(popup->list.GetHandle(), WM_CHAR, character, 0);
        return;
    }
    int found = typeAhead.Find(character, GetMessageClock(), selected, GetCount(),
                               [this](int row) -> const std::string& { return items[row]; });
    if (found >= 0) {
        Choose(found);
    }
}

void SComboCtrl::Paint(cairo_t* cr) {
    if (!font) {
        font.reset(MakeListFont(this));
    }
    SRect client = GetClientRect();
    SRect button = GetButtonRect();
    SRect field{client.left, client.top, button.left, client.bottom};
    bool enabled = IsEnabled();
    ListFill(cr, field, GetSysColor(SYS_COLOR_WINDOW));
    ListFill(cr, button, GetSysColor(SYS_COLOR_BTNFACE));
    ListArrowDown(cr, button, GetSysColor(enabled ? SYS_COLOR_BTNTEXT : SYS_COLOR_GRAYTEXT));
    ListFrame(cr, client, GetSysColor(focused ? SYS_COLOR_HIGHLIGHT : SYS_COLOR_BTNSHADOW));
    SRect text{field.left + TEXT_MARGIN, field.top + 2, field.right - 2, field.bottom - 2};
    uint32_t textColor = GetSysColor(enabled ? SYS_COLOR_WINDOWTEXT : SYS_COLOR_GRAYTEXT);
    if (form == COMBO_DROP_LIST) {
        if (focused && !popup) {
            ListFill(cr, SRect{field.left + 2, field.top + 2, field.right - 1, field.bottom - 2},
                     GetSysColor(SYS_COLOR_HIGHLIGHT));
            textColor = GetSysColor(SYS_COLOR_HIGHLIGHTTEXT);
        }
        ListText(cr, *font, editText.c_str(), text, textColor);
        return;
    }
    cairo_save(cr);
    cairo_rectangle(cr, text.left, text.top, text.Width(), text.Height());
    cairo_clip(cr);
    if (focused && caret != anchor) {
        int from = ListTextWidth(*font, editText.c_str(), GetSelectionStart());
        int to = ListTextWidth(*font, editText.c_str(), GetSelectionEnd());
        ListFill(cr, SRect{text.left + from, text.top, text.left + to, text.bottom},
                 GetSysColor(SYS_COLOR_HIGHLIGHT));
    }
    ListText(cr, *font, editText.c_str(), SRect{text.left, text.top, 1 << 20, text.bottom},
             textColor);
    if (focused) {
        int x = text.left + ListTextWidth(*font, editText.c_str(), caret);
        ListFill(cr, SRect{x, text.top + 1, x + 1, text.bottom - 1},
                 GetSysColor(SYS_COLOR_WINDOWTEXT));
    }
    cairo_restore(cr);
}

bool SComboCtrl::PreMessage(unsigned message, WPARAM* wParam, LPARAM* lParam, LRESULT* result) {
    // Keys are the combo box's own, but Tab still moves the focus on.
    if (message == WM_KEYDOWN && *wParam != VK_TAB) {
        *result = HandleKey(static_cast<unsigned>(*wParam), false) ? 0 : 1;
        return false;
    }
    if (message == WM_SYSKEYDOWN && (*wParam == ctrlkey::DOWN || *wParam == ctrlkey::UP)) {
        HandleKey(static_cast<unsigned>(*wParam), true);
        *result = 0;
        return false;
    }
    return SWnd::PreMessage(message, wParam, lParam, result);
}

LRESULT SComboCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_PAINT:
        Paint(reinterpret_cast<cairo_t*>(wParam));
        return 0;
    case WM_NULL:
        retired.clear();
        return 0;
    case WM_SETFONT:
        font.reset();
        Invalidate();
        break;
    case WM_SETFOCUS:
        focused = true;
        Invalidate();
        break;
    case WM_KILLFOCUS:
        focused = false;
        // The focus going nowhere or to the popup is the desktop's doing as
        // the popup takes the keyboard (its keys come here); going to
        // another window closes the list.
        if (!opening && wParam != 0) {
            SWnd* next = SWnd::FromHandle(static_cast<HWND>(wParam));
            bool toPopup = popup && next != nullptr && next->GetTopWindow() == popup->GetHandle();
            if (!toPopup) {
                CloseList(false);
            }
        }
        Invalidate();
        break;
    case WM_CHAR:
        HandleChar(static_cast<unsigned>(wParam));
        return 0;
    case WM_LBUTTONDOWN: {
        SetFocus(GetHandle());
        SPoint point{PointParamX(lParam), PointParamY(lParam)};
        if (form == COMBO_EDITABLE && !GetButtonRect().Contains(point)) {
            if (!font) {
                font.reset(MakeListFont(this));
            }
            caret = ListTextIndexAt(*font, editText.c_str(), point.x - TEXT_MARGIN);
            if ((SKeyboard::GetModifiers() & SKeyboard::MODIFIER_SHIFT) == 0) {
                anchor = caret;
            }
            CloseList(false);
            Invalidate();
            return 0;
        }
        if (popup) {
            CloseList(false);
        } else {
            OpenList();
        }
        return 0;
    }
    case WM_MOUSEWHEEL:
        if (!popup && GetCount() > 0) {
            int step = WheelParamDelta(wParam) > 0 ? -1 : 1;
            Choose(std::clamp(selected + step, 0, GetCount() - 1));
            return 0;
        }
        break;
    case WM_DESTROY:
        CloseList(false);
        break;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
