// The edit control: keys, mouse, clipboard, the popup menu and painting.
#include "toolkit/edit_ctrl.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <pango/pangocairo.h>

#include "foundation/keyboard.h"
#include "toolkit/ctrl_common.h"
#include "toolkit/draw.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd_app.h"

namespace {

constexpr uintptr_t CARET_TIMER = 0x4544; // "ED"
constexpr unsigned CARET_BLINK = 530;     // ms, as GTK's entries blink
constexpr int MARGIN = 4;                 // frame and padding round the text
constexpr const char* BULLET = "\xE2\x97\x8F";
constexpr int BULLET_BYTES = 3;

uint16_t Channel16(uint32_t color, int shift) {
    return static_cast<uint16_t>(((color >> shift) & 0xFF) * 257);
}

struct MenuItem {
    SEditCommand command;
    const char* label;
    bool separatorAfter;
};

constexpr MenuItem MENU_ITEMS[] = {
    {SEditCommand::UNDO, "Undo", true},     {SEditCommand::CUT, "Cut", false},
    {SEditCommand::COPY, "Copy", false},    {SEditCommand::PASTE, "Paste", false},
    {SEditCommand::DELETE, "Delete", true}, {SEditCommand::SELECT_ALL, "Select All", false},
};
constexpr int MENU_ITEM_HEIGHT = 24;
constexpr int MENU_SEPARATOR = 7;
constexpr int MENU_WIDTH = 150;

} // namespace

// The popup menu: a popup surface the toolkit draws (frameless, holding
// the pointer and the keys while shown); a click on an item runs it,
// Escape, a press outside or the loss of the focus closes it.
class SEditCtrl::Popup : public SWnd {
public:
    explicit Popup(SEditCtrl* owner) : owner(owner) {}

    static int Height() {
        int height = 4;
        for (const MenuItem& item : MENU_ITEMS) {
            height += MENU_ITEM_HEIGHT + (item.separatorAfter ? MENU_SEPARATOR : 0);
        }
        return height;
    }
    // The item under a client point, -1 for none.
    int ItemAt(int y) const {
        int top = 2;
        for (int i = 0; i < static_cast<int>(std::size(MENU_ITEMS)); ++i) {
            if (y >= top && y < top + MENU_ITEM_HEIGHT) {
                return i;
            }
            top += MENU_ITEM_HEIGHT + (MENU_ITEMS[i].separatorAfter ? MENU_SEPARATOR : 0);
        }
        return -1;
    }
    void Close() {
        if (GetHandle() != 0) {
            PostMessage(GetHandle(), WM_CLOSE, 0, 0);
        }
    }
    // Closes without a pick: the keys go back to the edit.
    void Dismiss() {
        Close();
        if (GetFocus() == GetHandle() && owner->GetHandle() != 0) {
            SetFocus(owner->GetHandle());
        }
    }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
        case WM_PAINT:
            Paint(reinterpret_cast<cairo_t*>(wParam));
            return 0;
        case WM_MOUSEMOVE: {
            int item = ItemAt(PointParamY(lParam));
            if (item != hot) {
                hot = item;
                Invalidate();
            }
            break;
        }
        case WM_LBUTTONUP: {
            int item = ItemAt(PointParamY(lParam));
            if (item >= 0 && owner->IsCommandEnabled(MENU_ITEMS[item].command)) {
                SEditCommand command = MENU_ITEMS[item].command;
                Close();
                SetFocus(owner->GetHandle());
                owner->RunCommand(command);
            }
            return 0;
        }
        case WM_KEYDOWN:
            if (wParam == VK_ESCAPE) {
                Dismiss();
            }
            return 0;
        case WM_NCLBUTTONDOWN: // a press outside, as the popup's hold reports it
        case WM_NCRBUTTONDOWN:
        case WM_NCMBUTTONDOWN:
            Dismiss();
            return 0;
        case WM_KILLFOCUS:
            Close();
            break;
        case WM_CLOSE:
            Destroy();
            return 0;
        default:
            break;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }

private:
    void Paint(cairo_t* cr) {
        SRect client = GetClientRect();
        FillRect(cr, &client, GetSysColor(SYS_COLOR_MENU));
        DrawFrame(cr, &client, SPen{GetSysColor(SYS_COLOR_BTNSHADOW), 1});
        PangoLayout* layout = pango_cairo_create_layout(cr);
        SetLayoutFont(layout, GetDefaultFont(), "Sans 9");
        int top = 2;
        for (int i = 0; i < static_cast<int>(std::size(MENU_ITEMS)); ++i) {
            const MenuItem& item = MENU_ITEMS[i];
            bool enabled = owner->IsCommandEnabled(item.command);
            if (i == hot && enabled) {
                SRect row{2, top, client.right - 2, top + MENU_ITEM_HEIGHT};
                FillRect(cr, &row, GetSysColor(SYS_COLOR_MENUHILIGHT));
            }
            pango_layout_set_text(layout, item.label, -1);
            int width = 0, height = 0;
            pango_layout_get_pixel_size(layout, &width, &height);
            SetSourceColor(cr, !enabled   ? GetSysColor(SYS_COLOR_GRAYTEXT)
                               : i == hot ? GetSysColor(SYS_COLOR_HIGHLIGHTTEXT)
                                          : GetSysColor(SYS_COLOR_MENUTEXT));
            cairo_move_to(cr, 12, top + (MENU_ITEM_HEIGHT - height) / 2);
            pango_cairo_show_layout(cr, layout);
            top += MENU_ITEM_HEIGHT;
            if (item.separatorAfter) {
                DrawLine(cr, SPoint{6, top + MENU_SEPARATOR / 2},
                         SPoint{client.right - 6, top + MENU_SEPARATOR / 2},
                         SPen{GetSysColor(SYS_COLOR_BTNSHADOW), 1});
                top += MENU_SEPARATOR;
            }
        }
        g_object_unref(layout);
    }

    SEditCtrl* owner;
    int hot = -1;
};

SEditCtrl::SEditCtrl() {
    // The edit reads these keys itself, so that Ctrl+Y, Ctrl+Shift+Z and
    // Ctrl+Delete sit beside them.
    SetShortcuts(true, 0x7FFF & ~(SHORTCUT_UNDO | SHORTCUT_CUT | SHORTCUT_COPY | SHORTCUT_PASTE |
                                  SHORTCUT_DELETE | SHORTCUT_SELECT_ALL));
}

SEditCtrl::~SEditCtrl() {
    if (popup != nullptr && popup->GetHandle() != 0) {
        popup->Destroy();
    }
    if (GetHandle() != 0) {
        Destroy(); // while the members its messages use are still here
    }
    if (pangoContext != nullptr) {
        g_object_unref(pangoContext);
    }
}

bool SEditCtrl::Create(SWnd* parent, const SRect& rect, uintptr_t id, unsigned style,
                       const char* text) {
    model.SetMultiLine((style & EDIT_MULTILINE) != 0);
    model.SetNumberOnly((style & EDIT_NUMBER) != 0);
    model.SetReadOnly((style & EDIT_READONLY) != 0);
    model.SetText(text != nullptr ? text : "");
    SRect bounds = rect;
    return SWnd::Create(model.Text().c_str(), style | WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0,
                        &bounds, parent != nullptr ? parent->GetHandle() : 0, id);
}

void SEditCtrl::SetSel(size_t from, size_t to) {
    model.Select(from, to);
    Changed(false);
}

void SEditCtrl::SetMaxLength(int characters) {
    model.SetMaxLength(characters);
}

void SEditCtrl::SetReadOnly(bool on) {
    model.SetReadOnly(on);
    Invalidate();
}

PangoLayout* SEditCtrl::MakeLayout() {
    if (pangoContext == nullptr) {
        pangoContext = pango_font_map_create_context(pango_cairo_font_map_get_default());
    }
    PangoLayout* layout = pango_layout_new(pangoContext);
    const SFont* font = nullptr;
    if (GetHandle() != 0) {
        font = reinterpret_cast<const SFont*>(SendMessage(GetHandle(), WM_GETFONT, 0, 0));
    }
    if (font == nullptr) {
        font = GetDefaultFont();
    }
    SetLayoutFont(layout, font, "Sans 9");
    std::string shown = DisplayText();
    pango_layout_set_text(layout, shown.c_str(), static_cast<int>(shown.size()));
    if (model.IsMultiLine()) {
        pango_layout_set_width(layout, std::max(1, TextArea().Width()) * PANGO_SCALE);
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    }
    PangoAttrList* attributes = pango_attr_list_new();
    if (!preedit.empty()) {
        PangoAttribute* underline = pango_attr_underline_new(PANGO_UNDERLINE_SINGLE);
        underline->start_index = static_cast<guint>(ToDisplay(model.Caret()));
        underline->end_index = underline->start_index + static_cast<guint>(preedit.size());
        pango_attr_list_insert(attributes, underline);
    }
    if (model.HasSelection()) {
        uint32_t back = GetSysColor(SYS_COLOR_HIGHLIGHT);
        uint32_t fore = GetSysColor(SYS_COLOR_HIGHLIGHTTEXT);
        auto start = static_cast<guint>(ToDisplay(model.SelectionStart()));
        auto end = static_cast<guint>(ToDisplay(model.SelectionEnd()));
        PangoAttribute* background =
            pango_attr_background_new(Channel16(back, 0), Channel16(back, 8), Channel16(back, 16));
        PangoAttribute* foreground =
            pango_attr_foreground_new(Channel16(fore, 0), Channel16(fore, 8), Channel16(fore, 16));
        background->start_index = foreground->start_index = start;
        background->end_index = foreground->end_index = end;
        pango_attr_list_insert(attributes, background);
        pango_attr_list_insert(attributes, foreground);
    }
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
    return layout;
}

std::string SEditCtrl::DisplayText() const {
    const std::string& text = model.Text();
    size_t caret = model.Caret();
    if ((GetStyle() & EDIT_PASSWORD) == 0) {
        return text.substr(0, caret) + preedit + text.substr(caret);
    }
    std::string shown;
    for (int i = SEditText::CountCharacters(text.substr(0, caret)); i > 0; --i) {
        shown += BULLET;
    }
    shown += preedit;
    for (int i = SEditText::CountCharacters(text.substr(caret)); i > 0; --i) {
        shown += BULLET;
    }
    return shown;
}

int SEditCtrl::ToDisplay(size_t index) const {
    index = std::min(index, model.Text().size());
    int shown = static_cast<int>(index);
    if ((GetStyle() & EDIT_PASSWORD) != 0) {
        shown = SEditText::CountCharacters(model.Text().substr(0, index)) * BULLET_BYTES;
    }
    if (!preedit.empty() && index > model.Caret()) {
        shown += static_cast<int>(preedit.size());
    }
    return shown;
}

size_t SEditCtrl::FromDisplay(int index) const {
    int caretShown = ToDisplay(model.Caret());
    if (!preedit.empty() && index > caretShown) {
        index = std::max(caretShown, index - static_cast<int>(preedit.size()));
    }
    if ((GetStyle() & EDIT_PASSWORD) == 0) {
        return static_cast<size_t>(std::max(index, 0));
    }
    size_t position = 0;
    for (int characters = index / BULLET_BYTES; characters > 0; --characters) {
        position = model.NextChar(position);
    }
    return position;
}

SRect SEditCtrl::TextArea() const {
    SRect client = GetClientRect();
    return SRect{client.left + MARGIN, client.top + MARGIN, client.right - MARGIN,
                 client.bottom - MARGIN};
}

size_t SEditCtrl::IndexFromPoint(int x, int y) {
    PangoLayout* layout = MakeLayout();
    SRect area = TextArea();
    int layoutX = x - area.left + scrollX;
    int layoutY = y - area.top + scrollY;
    if (!model.IsMultiLine()) {
        int width = 0, height = 0;
        pango_layout_get_pixel_size(layout, &width, &height);
        layoutY = std::clamp(layoutY, 0, std::max(0, height - 1));
    }
    int index = 0, trailing = 0;
    pango_layout_xy_to_index(layout, layoutX * PANGO_SCALE, layoutY * PANGO_SCALE, &index,
                             &trailing);
    const char* shown = pango_layout_get_text(layout);
    const char* at = shown + index;
    for (; trailing > 0 && *at != 0; --trailing) {
        at = g_utf8_next_char(at);
    }
    g_object_unref(layout);
    return FromDisplay(static_cast<int>(at - shown));
}

SRect SEditCtrl::CaretRect() {
    PangoLayout* layout = MakeLayout();
    PangoRectangle strong;
    int index = ToDisplay(model.Caret()) + preeditCaret;
    pango_layout_get_cursor_pos(layout, index, &strong, nullptr);
    int width = 0, height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    g_object_unref(layout);
    SRect area = TextArea();
    int x = area.left + PANGO_PIXELS(strong.x) - scrollX;
    // Where Paint draws it: one line sits in the middle of the area.
    int top = model.IsMultiLine() ? area.top - scrollY : area.top + (area.Height() - height) / 2;
    int y = top + PANGO_PIXELS(strong.y);
    return SRect{x, y, x + 1, y + std::max(PANGO_PIXELS(strong.height), 1)};
}

void SEditCtrl::EnsureCaretVisible() {
    PangoLayout* layout = MakeLayout();
    PangoRectangle strong;
    pango_layout_get_cursor_pos(layout, ToDisplay(model.Caret()) + preeditCaret, &strong, nullptr);
    int width = 0, height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    g_object_unref(layout);
    SRect area = TextArea();
    if (model.IsMultiLine()) {
        scrollX = 0;
        int top = PANGO_PIXELS(strong.y);
        int bottom = top + PANGO_PIXELS(strong.height);
        if (top < scrollY) {
            scrollY = top;
        } else if (bottom > scrollY + area.Height()) {
            scrollY = bottom - area.Height();
        }
        scrollY = std::clamp(scrollY, 0, std::max(0, height - area.Height()));
    } else {
        scrollY = 0;
        int x = PANGO_PIXELS(strong.x);
        if (x < scrollX) {
            scrollX = x;
        } else if (x >= scrollX + area.Width()) {
            scrollX = x - area.Width() + 1;
        }
        scrollX = std::clamp(scrollX, 0, std::max(0, width + 1 - area.Width()));
    }
}

void SEditCtrl::RestartBlink() {
    if (GetHandle() == 0) {
        return;
    }
    bool focused = GetFocus() == GetHandle();
    caretOn = focused;
    if (focused) {
        SetTimer(GetHandle(), CARET_TIMER, CARET_BLINK);
    } else {
        KillTimer(GetHandle(), CARET_TIMER);
    }
}

void SEditCtrl::TellInputMethod() {
    if (GetHandle() == 0 || GetFocus() != GetHandle()) {
        return;
    }
    SRect caret = CaretRect();
    ClientToScreen(&caret);
    SWnd* top = FromHandle(GetTopWindow());
    if (top != nullptr) {
        SRect window = top->GetWindowRect();
        caret = SRect{caret.left - window.left, caret.top - window.top, caret.right - window.left,
                      caret.bottom - window.top};
        GetPlatform()->ImSetCursor(top->GetHandle(), caret);
    }
}

void SEditCtrl::Notify() {
    if (GetHandle() != 0 && GetFocus() == GetHandle() && GetParent() != 0) {
        SendMessage(GetParent(), SN_EDIT_CHANGE, reinterpret_cast<WPARAM>(this), 0);
    }
}

void SEditCtrl::Changed(bool textChanged) {
    if (GetHandle() == 0) {
        return;
    }
    if (textChanged) {
        SWnd::OnMessage(WM_SETTEXT, 0, reinterpret_cast<LPARAM>(model.Text().c_str()));
    }
    EnsureCaretVisible();
    RestartBlink();
    TellInputMethod();
    Invalidate();
    if (textChanged) {
        Notify();
    }
}

void SEditCtrl::TypeCharacter(unsigned code) {
    if (code < 32 || code == 127 || (code >= 0x80 && code < 0xA0)) {
        return;
    }
    unsigned modifiers = SKeyboard::GetModifiers();
    if ((modifiers & SKeyboard::MODIFIER_CTRL) != 0) {
        return;
    }
    if (model.Insert(CodePointToUtf8(code), true)) {
        Changed(true);
    }
}

void SEditCtrl::MoveVertically(int lines, bool extend) {
    PangoLayout* layout = MakeLayout();
    int line = 0, x = 0;
    pango_layout_index_to_line_x(layout, ToDisplay(model.Caret()), FALSE, &line, &x);
    int count = pango_layout_get_line_count(layout);
    int target = std::clamp(line + lines, 0, std::max(count - 1, 0));
    size_t position = model.Caret();
    if (target == line) {
        position = lines < 0 ? 0 : model.Text().size();
    } else {
        PangoLayoutLine* row = pango_layout_get_line_readonly(layout, target);
        int index = 0, trailing = 0;
        pango_layout_line_x_to_index(row, x, &index, &trailing);
        const char* shown = pango_layout_get_text(layout);
        const char* at = shown + index;
        for (; trailing > 0 && *at != 0 && *at != '\n'; --trailing) {
            at = g_utf8_next_char(at);
        }
        position = FromDisplay(static_cast<int>(at - shown));
    }
    g_object_unref(layout);
    model.SetCaret(position, extend);
    Changed(false);
}

bool SEditCtrl::HandleKey(unsigned key) {
    unsigned modifiers = SKeyboard::GetModifiers();
    bool ctrl = (modifiers & SKeyboard::MODIFIER_CTRL) != 0;
    bool shift = (modifiers & SKeyboard::MODIFIER_SHIFT) != 0;
    auto move = [&](SEditText::Move kind) {
        model.MoveCaret(kind, shift);
        Changed(false);
    };
    int pageLines =
        std::max(1, TextArea().Height() / std::max(1, TextMetrics(GetDefaultFont()).height));
    switch (key) {
    case ctrlkey::LEFT:
        move(ctrl ? SEditText::WORD_LEFT : SEditText::LEFT);
        return true;
    case ctrlkey::RIGHT:
        move(ctrl ? SEditText::WORD_RIGHT : SEditText::RIGHT);
        return true;
    case ctrlkey::HOME:
        move(ctrl ? SEditText::TEXT_START : SEditText::LINE_START);
        return true;
    case ctrlkey::END:
        move(ctrl ? SEditText::TEXT_END : SEditText::LINE_END);
        return true;
    case ctrlkey::UP:
    case ctrlkey::DOWN:
        if (!model.IsMultiLine()) {
            return false;
        }
        MoveVertically(key == ctrlkey::UP ? -1 : 1, shift);
        return true;
    case ctrlkey::PRIOR:
    case ctrlkey::NEXT:
        if (!model.IsMultiLine()) {
            return false;
        }
        MoveVertically(key == ctrlkey::PRIOR ? -pageLines : pageLines, shift);
        return true;
    case VK_BACK:
        if (model.Backspace(ctrl)) {
            Changed(true);
        }
        return true;
    case VK_DELETE:
        if (shift && !ctrl) {
            OnCut();
        } else if (model.DeleteForward(ctrl)) {
            Changed(true);
        }
        return true;
    case ctrlkey::INSERT:
        if (ctrl && !shift) {
            OnCopy();
        } else if (shift && !ctrl) {
            OnPaste();
        }
        return true;
    case VK_RETURN:
        if (model.IsMultiLine() && !ctrl) {
            if (model.Insert("\n", false)) {
                Changed(true);
            }
            return true;
        }
        return false;
    case ctrlkey::APPS:
    case ctrlkey::F10:
        if (key == ctrlkey::F10 && !shift) {
            return false;
        }
        {
            SRect caret = CaretRect();
            ShowPopupMenu(caret.left, caret.bottom);
        }
        return true;
    default:
        break;
    }
    if (!ctrl) {
        return false;
    }
    switch (key) {
    case 'A':
        OnSelectAll();
        return true;
    case 'C':
        OnCopy();
        return true;
    case 'X':
        OnCut();
        return true;
    case 'V':
        OnPaste();
        return true;
    case 'Z':
        if (shift ? model.Redo() : model.Undo()) {
            Changed(true);
        }
        return true;
    case 'Y':
        if (model.Redo()) {
            Changed(true);
        }
        return true;
    default:
        return false;
    }
}

bool SEditCtrl::IsCommandEnabled(SEditCommand command) const {
    bool editable = !model.IsReadOnly();
    switch (command) {
    case SEditCommand::UNDO:
        return editable && model.CanUndo();
    case SEditCommand::CUT:
    case SEditCommand::DELETE:
        return editable && model.HasSelection();
    case SEditCommand::COPY:
        return model.HasSelection() && (GetStyle() & EDIT_PASSWORD) == 0;
    case SEditCommand::PASTE:
        return editable && !SClipboard().GetText().IsEmpty();
    case SEditCommand::SELECT_ALL:
        return !model.Text().empty();
    }
    return false;
}

void SEditCtrl::RunCommand(SEditCommand command) {
    switch (command) {
    case SEditCommand::UNDO:
        OnUndo();
        break;
    case SEditCommand::CUT:
        OnCut();
        break;
    case SEditCommand::COPY:
        OnCopy();
        break;
    case SEditCommand::PASTE:
        OnPaste();
        break;
    case SEditCommand::DELETE:
        OnDelete();
        break;
    case SEditCommand::SELECT_ALL:
        OnSelectAll();
        break;
    }
}

SWnd* SEditCtrl::ShowPopupMenu(int x, int y) {
    if ((GetStyle() & EDIT_NOPOPUPMENU) != 0 || GetHandle() == 0) {
        return nullptr;
    }
    if (popup != nullptr && popup->GetHandle() != 0) {
        popup->Destroy();
    }
    popup = std::make_unique<Popup>(this);
    SPoint at{x, y};
    ClientToScreen(&at);
    SRect rect{at.x, at.y, at.x + MENU_WIDTH, at.y + Popup::Height()};
    if (!popup->Create("", WS_POPUP | WS_VISIBLE, WS_EX_TOOLWINDOW, &rect, 0)) {
        popup.reset();
        return nullptr;
    }
    SetFocus(popup->GetHandle());
    return popup.get();
}

SWnd* SEditCtrl::GetPopupMenu() const {
    return popup != nullptr && popup->GetHandle() != 0 ? popup.get() : nullptr;
}

void SEditCtrl::OnUndo() {
    if (model.Undo()) {
        Changed(true);
    }
}

void SEditCtrl::OnCut() {
    if (model.IsReadOnly() || !model.HasSelection() || (GetStyle() & EDIT_PASSWORD) != 0) {
        return;
    }
    SClipboard().SetText(model.SelectedText().c_str());
    if (model.DeleteSelection()) {
        Changed(true);
    }
}

void SEditCtrl::OnCopy() {
    if (model.HasSelection() && (GetStyle() & EDIT_PASSWORD) == 0) {
        SClipboard().SetText(model.SelectedText().c_str());
    }
}

void SEditCtrl::OnPaste() {
    SString text = SClipboard().GetText();
    if (!text.IsEmpty() && model.Insert(text.c_str(), false)) {
        Changed(true);
    }
}

void SEditCtrl::OnDelete() {
    if (model.DeleteSelection()) {
        Changed(true);
    }
}

void SEditCtrl::OnSelectAll() {
    model.SelectAll();
    Changed(false);
}

void SEditCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    bool focused = GetFocus() == GetHandle();
    bool enabled = IsEnabled();
    FillRect(cr, &client,
             GetSysColor(enabled && !model.IsReadOnly() ? SYS_COLOR_WINDOW : SYS_COLOR_BTNFACE));
    if (focused) {
        // The focus ring: two pixels of the highlight colour.
        SRect outer = client;
        DrawFrame(cr, &outer, SPen{GetSysColor(SYS_COLOR_HIGHLIGHT), 2});
    } else {
        DrawFrame(cr, &client, SPen{GetSysColor(SYS_COLOR_BTNSHADOW), 1});
    }
    SRect area = TextArea();
    cairo_save(cr);
    cairo_rectangle(cr, area.left, area.top - 1, area.Width(), area.Height() + 2);
    cairo_clip(cr);
    PangoLayout* layout = MakeLayout();
    SetSourceColor(cr, GetSysColor(enabled ? SYS_COLOR_WINDOWTEXT : SYS_COLOR_GRAYTEXT));
    int width = 0, height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    int top = area.top - scrollY;
    if (!model.IsMultiLine()) {
        top = area.top + (area.Height() - height) / 2; // one line sits in the middle
    }
    cairo_move_to(cr, area.left - scrollX, top);
    pango_cairo_show_layout(cr, layout);
    if (focused && caretOn) {
        PangoRectangle strong;
        pango_layout_get_cursor_pos(layout, ToDisplay(model.Caret()) + preeditCaret, &strong,
                                    nullptr);
        SetSourceColor(cr, GetSysColor(SYS_COLOR_WINDOWTEXT));
        cairo_rectangle(cr, area.left - scrollX + PANGO_PIXELS(strong.x),
                        top + PANGO_PIXELS(strong.y), 1, std::max(PANGO_PIXELS(strong.height), 1));
        cairo_fill(cr);
    }
    g_object_unref(layout);
    cairo_restore(cr);
}

LRESULT SEditCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case SM_TAB_STOP:
        return 1;
    case WM_SETTEXT: {
        const char* text = reinterpret_cast<const char*>(lParam);
        model.SetText(text != nullptr ? text : "");
        preedit.clear();
        SWnd::OnMessage(message, wParam, reinterpret_cast<LPARAM>(model.Text().c_str()));
        if (GetFocus() == GetHandle()) {
            GetPlatform()->ImReset(GetTopWindow());
        }
        scrollX = scrollY = 0;
        Changed(false);
        return 1;
    }
    case WM_PAINT:
        Paint(reinterpret_cast<cairo_t*>(wParam));
        return 0;
    case WM_SIZE:
        EnsureCaretVisible();
        Invalidate();
        break;
    case WM_TIMER:
        if (wParam == CARET_TIMER) {
            caretOn = !caretOn && GetFocus() == GetHandle();
            SRect caret = CaretRect();
            caret.right += 1;
            Invalidate(&caret);
            return 0;
        }
        break;
    case WM_SETFOCUS:
        GetPlatform()->ImFocus(GetTopWindow(), true);
        if (selectAllOnFocus) {
            model.SelectAll();
        }
        Changed(false);
        break;
    case WM_KILLFOCUS:
        GetPlatform()->ImFocus(GetTopWindow(), false);
        preedit.clear();
        preeditCaret = 0;
        dragging = false;
        KillTimer(GetHandle(), CARET_TIMER);
        caretOn = false;
        Invalidate();
        break;
    case SM_IME_PREEDIT: {
        const char* text = reinterpret_cast<const char*>(wParam);
        preedit = text != nullptr && !model.IsReadOnly() ? text : "";
        preeditCaret = std::clamp(static_cast<int>(lParam), 0, static_cast<int>(preedit.size()));
        Changed(false);
        return 0;
    }
    case WM_KEYDOWN:
        if (HandleKey(static_cast<unsigned>(wParam))) {
            return 0;
        }
        break;
    case WM_CHAR:
        TypeCharacter(static_cast<unsigned>(wParam));
        return 0;
    case WM_LBUTTONDOWN: {
        if (GetFocus() != GetHandle()) {
            SetFocus(GetHandle());
        }
        int x = PointParamX(lParam), y = PointParamY(lParam);
        size_t index = IndexFromPoint(x, y);
        uint64_t now = GetMessageClock();
        unsigned milliseconds = 500;
        int distance = 2;
        GetPlatform()->GetDoubleClick(&milliseconds, &distance);
        if (lastDoubleClick != 0 && now - lastDoubleClick <= milliseconds &&
            std::abs(x - lastDoubleClickPoint.x) <= distance &&
            std::abs(y - lastDoubleClickPoint.y) <= distance) {
            lastDoubleClick = 0;
            model.SelectLine(index); // the third press
            Changed(false);
            return 0;
        }
        lastDoubleClick = 0;
        model.SetCaret(index, (wParam & MK_SHIFT) != 0);
        dragging = true;
        SetCapture(GetHandle());
        Changed(false);
        return 0;
    }
    case WM_LBUTTONDBLCLK: {
        int x = PointParamX(lParam), y = PointParamY(lParam);
        model.SelectWord(IndexFromPoint(x, y));
        lastDoubleClick = GetMessageClock();
        lastDoubleClickPoint = SPoint{x, y};
        Changed(false);
        return 0;
    }
    case WM_MOUSEMOVE:
        if (dragging && (wParam & MK_LBUTTON) != 0) {
            size_t index = IndexFromPoint(PointParamX(lParam), PointParamY(lParam));
            if (index != model.Caret()) {
                model.SetCaret(index, true);
                Changed(false);
            }
        }
        break;
    case WM_LBUTTONUP:
        if (dragging) {
            dragging = false;
            if (GetCapture() == GetHandle()) {
                ReleaseCapture();
            }
        }
        break;
    case WM_CAPTURECHANGED:
        dragging = false;
        break;
    case WM_RBUTTONUP:
        if ((GetStyle() & EDIT_NOPOPUPMENU) == 0) {
            if (GetFocus() != GetHandle()) {
                SetFocus(GetHandle());
            }
            ShowPopupMenu(PointParamX(lParam), PointParamY(lParam));
            return 0;
        }
        break;
    case WM_MOUSEWHEEL:
        if (model.IsMultiLine()) {
            int lineHeight = std::max(1, TextMetrics(GetDefaultFont()).height);
            PangoLayout* layout = MakeLayout();
            int width = 0, height = 0;
            pango_layout_get_pixel_size(layout, &width, &height);
            g_object_unref(layout);
            int old = scrollY;
            scrollY -= WheelParamDelta(wParam) * 3 * lineHeight / WHEEL_DELTA;
            scrollY = std::clamp(scrollY, 0, std::max(0, height - TextArea().Height()));
            if (scrollY != old) {
                Invalidate();
            }
            return 0;
        }
        break;
    case WM_DESTROY:
        KillTimer(GetHandle(), CARET_TIMER);
        if (popup != nullptr && popup->GetHandle() != 0) {
            popup->Destroy();
        }
        break;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
