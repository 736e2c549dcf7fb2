#include "editors/code_edit_dialogs.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "editors/code_edit_ctrl.h"
#include "foundation/keyboard.h"
#include "toolkit/draw.h"
#include "toolkit/sys_colors.h"

namespace {

constexpr int kMargin = 10;
constexpr int kLabelWidth = 90;
constexpr int kFieldWidth = 220;
constexpr int kRowHeight = 30;
constexpr int kFieldHeight = 24;
constexpr int kButtonWidth = 100;
constexpr int kButtonHeight = 26;
constexpr int kItemHeight = 22;
constexpr int kMenuWidth = 190;

void Fill(cairo_t* cr, const SRect& rect, uint32_t color) {
    SetSourceColor(cr, color);
    cairo_rectangle(cr, rect.left, rect.top, rect.Width(), rect.Height());
    cairo_fill(cr);
}

void Frame(cairo_t* cr, const SRect& rect, uint32_t color) {
    SetSourceColor(cr, color);
    cairo_set_line_width(cr, 1.0);
    cairo_rectangle(cr, rect.left + 0.5, rect.top + 0.5, rect.Width() - 1, rect.Height() - 1);
    cairo_stroke(cr);
}

const char* ButtonLabel(SCodeEditDialog::Button button) {
    switch (button) {
    case SCodeEditDialog::FIND_NEXT:
        return "Find Next";
    case SCodeEditDialog::REPLACE_ONE:
        return "Replace";
    case SCodeEditDialog::REPLACE_ALL:
        return "Replace All";
    case SCodeEditDialog::GO:
        return "OK";
    case SCodeEditDialog::CANCEL:
        return "Cancel";
    case SCodeEditDialog::MATCH_CASE:
        return "Match case";
    case SCodeEditDialog::DIRECTION_UP:
        return "Search up";
    default:
        return "";
    }
}

// Removes the last UTF-8 character of text.
void DropLastCharacter(SString* text) {
    std::string value = text->c_str();
    while (!value.empty()) {
        char c = value.back();
        value.pop_back();
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
            break;
        }
    }
    *text = value.c_str();
}

} // namespace

int DrawCodeBoxText(cairo_t* cr, const char* text, int x, int y, uint32_t color, const char* family,
                    int pixels) {
    PangoLayout* layout = pango_cairo_create_layout(cr);
    PangoFontDescription* description =
        pango_font_description_from_string(family != nullptr ? family : "Sans");
    pango_font_description_set_absolute_size(description, pixels * PANGO_SCALE);
    pango_layout_set_font_description(layout, description);
    pango_font_description_free(description);
    pango_layout_set_text(layout, text != nullptr ? text : "", -1);
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    SetSourceColor(cr, color);
    cairo_move_to(cr, x, y);
    pango_cairo_show_layout(cr, layout);
    g_object_unref(layout);
    return width;
}

// The find, replace and go-to box.

SCodeEditDialog::SCodeEditDialog(SCodeEditCtrl* editor, Kind kind) : editor(editor), kind(kind) {
    if (editor != nullptr) {
        up = !editor->GetSearchDown();
        matchCase = editor->GetSearchMatchCase();
    }
    enterKey = false;
    escapeKey = false;
}

bool SCodeEditDialog::Open() {
    if (editor == nullptr || editor->GetHandle() == 0) {
        return false;
    }
    int rows = GetFieldCount() + (kind == GOTO ? 0 : 1);
    int buttons = kind == REPLACE ? 4 : 2;
    int width = kMargin * 3 + kLabelWidth + kFieldWidth + kButtonWidth;
    int height =
        std::max(kMargin * 2 + rows * kRowHeight, kMargin * 2 + buttons * (kButtonHeight + 6)) + 16;
    SRect place = editor->GetWindowRect();
    SRect rect{place.left + 40, place.top + 40, place.left + 40 + width, place.top + 40 + height};
    const char* title = kind == FIND ? "#FIND" : kind == REPLACE ? "#REPLACE" : "#GOTO";
    SString label = GetCodeEditLabel(title);
    std::string text = label.c_str();
    if (text.size() > 3 && text.compare(text.size() - 3, 3, "...") == 0) {
        text.erase(text.size() - 3);
    }
    if (!Create(text.c_str(), WS_CAPTION | WS_SYSMENU | WS_VISIBLE, 0, &rect, 0)) {
        return false;
    }
    SetFocus(GetHandle());
    return true;
}

const SString& SCodeEditDialog::GetField(int index) const {
    return fields[std::clamp(index, 0, 1)];
}

void SCodeEditDialog::SetField(int index, const char* text) {
    if (index >= 0 && index < GetFieldCount()) {
        fields[index] = text != nullptr ? text : "";
        status = "";
        if (GetHandle() != 0) {
            SRect rect = FieldRect(index);
            Invalidate(&rect);
        }
    }
}

SRect SCodeEditDialog::FieldRect(int index) const {
    int top = kMargin + index * kRowHeight;
    return SRect{kMargin + kLabelWidth, top, kMargin + kLabelWidth + kFieldWidth,
                 top + kFieldHeight};
}

SRect SCodeEditDialog::GetButtonRect(Button button) const {
    int left = kMargin * 2 + kLabelWidth + kFieldWidth;
    auto stack = [&](int index) {
        int top = kMargin + index * (kButtonHeight + 6);
        return SRect{left, top, left + kButtonWidth, top + kButtonHeight};
    };
    int checks = kMargin + GetFieldCount() * kRowHeight;
    switch (button) {
    case FIND_NEXT:
        return kind != GOTO ? stack(0) : SRect{};
    case REPLACE_ONE:
        return kind == REPLACE ? stack(1) : SRect{};
    case REPLACE_ALL:
        return kind == REPLACE ? stack(2) : SRect{};
    case GO:
        return kind == GOTO ? stack(0) : SRect{};
    case CANCEL:
        return stack(kind == REPLACE ? 3 : 1);
    case MATCH_CASE:
        return kind != GOTO ? SRect{kMargin, checks, kMargin + 120, checks + 20} : SRect{};
    case DIRECTION_UP:
        return kind != GOTO ? SRect{kMargin + 130, checks, kMargin + 250, checks + 20} : SRect{};
    default:
        return SRect{};
    }
}

void SCodeEditDialog::CloseBox() {
    SCodeEditCtrl* owner = editor;
    Destroy();
    if (owner != nullptr) {
        owner->DialogClosed();
    }
}

bool SCodeEditDialog::Press(Button button) {
    if (editor == nullptr || editor->GetHandle() == 0) {
        return false;
    }
    bool result = true;
    switch (button) {
    case FIND_NEXT:
        result = editor->FindNext(fields[0].c_str(), !up, matchCase);
        break;
    case REPLACE_ONE:
        result = editor->ReplaceNext(fields[0].c_str(), fields[1].c_str(), !up, matchCase);
        break;
    case REPLACE_ALL:
        result = editor->ReplaceAll(fields[0].c_str(), fields[1].c_str(), matchCase) > 0;
        break;
    case GO: {
        int line = std::atoi(fields[0].c_str());
        if (line <= 0) {
            return false;
        }
        editor->GoToLine(line);
        CloseBox();
        return true;
    }
    case CANCEL:
        CloseBox();
        return true;
    case MATCH_CASE:
        matchCase = !matchCase;
        editor->SetSearchState(!up, matchCase);
        break;
    case DIRECTION_UP:
        up = !up;
        editor->SetSearchState(!up, matchCase);
        break;
    default:
        return false;
    }
    status = result ? "" : "Not found.";
    if (GetHandle() != 0) {
        Invalidate(nullptr);
    }
    return result;
}

LRESULT SCodeEditDialog::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_PAINT:
        Paint(reinterpret_cast<cairo_t*>(wParam));
        return 0;
    case WM_CLOSE:
        CloseBox();
        return 0;
    case WM_CHAR: {
        if (wParam < 32 || wParam == 127 ||
            (SKeyboard::GetModifiers() & SKeyboard::MODIFIER_CTRL) != 0) {
            return 0;
        }
        if (kind == GOTO && (wParam < '0' || wParam > '9')) {
            return 0;
        }
        SString& field = fields[activeField];
        field += CodePointToUtf8(static_cast<unsigned>(wParam)).c_str();
        status = "";
        Invalidate(nullptr);
        return 0;
    }
    case WM_KEYDOWN:
        switch (wParam) {
        case VK_ESCAPE:
            CloseBox();
            return 0;
        case VK_RETURN:
            Press(kind == GOTO ? GO : FIND_NEXT);
            return 0;
        case VK_TAB:
            activeField = (activeField + 1) % GetFieldCount();
            Invalidate(nullptr);
            return 0;
        case VK_BACK:
            DropLastCharacter(&fields[activeField]);
            Invalidate(nullptr);
            return 0;
        default:
            break;
        }
        break;
    case WM_LBUTTONDOWN: {
        SPoint point{PointParamX(lParam), PointParamY(lParam)};
        for (int i = 0; i < GetFieldCount(); ++i) {
            if (FieldRect(i).Contains(point)) {
                activeField = i;
                Invalidate(nullptr);
                return 0;
            }
        }
        for (Button button :
             {FIND_NEXT, REPLACE_ONE, REPLACE_ALL, GO, CANCEL, MATCH_CASE, DIRECTION_UP}) {
            if (GetButtonRect(button).Contains(point)) {
                Press(button);
                return 0;
            }
        }
        return 0;
    }
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}

void SCodeEditDialog::Paint(cairo_t* cr) {
    uint32_t face = GetSysColor(SYS_COLOR_BTNFACE);
    uint32_t text = GetSysColor(SYS_COLOR_BTNTEXT);
    uint32_t window = GetSysColor(SYS_COLOR_WINDOW);
    uint32_t windowText = GetSysColor(SYS_COLOR_WINDOWTEXT);
    uint32_t shadow = GetSysColor(SYS_COLOR_BTNSHADOW);
    uint32_t highlight = GetSysColor(SYS_COLOR_HIGHLIGHT);
    Fill(cr, GetClientRect(), face);
    const char* labels[2] = {kind == GOTO ? "Line number:" : "Find what:", "Replace with:"};
    for (int i = 0; i < GetFieldCount(); ++i) {
        SRect field = FieldRect(i);
        DrawCodeBoxText(cr, labels[i], kMargin, field.top + 4, text);
        Fill(cr, field, window);
        Frame(cr, field, i == activeField ? highlight : shadow);
        cairo_save(cr);
        cairo_rectangle(cr, field.left + 2, field.top, field.Width() - 4, field.Height());
        cairo_clip(cr);
        int width =
            DrawCodeBoxText(cr, fields[i].c_str(), field.left + 4, field.top + 4, windowText);
        if (i == activeField) {
            Fill(cr,
                 SRect{field.left + 5 + width, field.top + 4, field.left + 6 + width,
                       field.bottom - 4},
                 windowText);
        }
        cairo_restore(cr);
    }
    for (Button check : {MATCH_CASE, DIRECTION_UP}) {
        SRect rect = GetButtonRect(check);
        if (rect.IsEmpty()) {
            continue;
        }
        SRect box{rect.left, rect.top + 3, rect.left + 14, rect.top + 17};
        Fill(cr, box, window);
        Frame(cr, box, shadow);
        bool on = check == MATCH_CASE ? matchCase : up;
        if (on) {
            SetSourceColor(cr, windowText);
            cairo_set_line_width(cr, 2.0);
            cairo_move_to(cr, box.left + 3, box.top + 7);
            cairo_line_to(cr, box.left + 6, box.top + 10);
            cairo_line_to(cr, box.left + 11, box.top + 3);
            cairo_stroke(cr);
        }
        DrawCodeBoxText(cr, ButtonLabel(check), box.right + 6, rect.top + 2, text);
    }
    for (Button button : {FIND_NEXT, REPLACE_ONE, REPLACE_ALL, GO, CANCEL}) {
        SRect rect = GetButtonRect(button);
        if (rect.IsEmpty()) {
            continue;
        }
        Fill(cr, rect, window);
        Frame(cr, rect, shadow);
        const char* label = button == CANCEL ? nullptr : ButtonLabel(button);
        SString cancel = GetCodeEditLabel("#CANCEL");
        DrawCodeBoxText(cr, label != nullptr ? label : cancel.c_str(), rect.left + 10, rect.top + 5,
                        text);
    }
    if (!status.IsEmpty()) {
        DrawCodeBoxText(cr, status.c_str(), kMargin, GetClientHeight() - 22, text);
    }
}

// The popup menu.

SCodePopupMenu::SCodePopupMenu(SCodeEditCtrl* editor) : editor(editor) {
    enterKey = false;
    escapeKey = false;
}

int SCodePopupMenu::GetItemCount() const {
    return editor != nullptr ? static_cast<int>(editor->GetPopupItems().size()) : 0;
}

bool SCodePopupMenu::Open(SPoint screen) {
    if (editor == nullptr) {
        return false;
    }
    SRect rect{screen.x, screen.y, screen.x + kMenuWidth,
               screen.y + GetItemCount() * kItemHeight + 4};
    // A popup surface: frameless, above the rest, holding the pointer and
    // the keys while shown; a press elsewhere comes as a non-client press.
    if (!Create("", WS_POPUP | WS_VISIBLE, WS_EX_TOOLWINDOW, &rect, 0)) {
        return false;
    }
    SetFocus(GetHandle());
    return true;
}

void SCodePopupMenu::Dismiss() {
    SCodeEditCtrl* owner = editor;
    bool focused = GetFocus() == GetHandle();
    Destroy();
    if (focused && owner != nullptr && owner->GetHandle() != 0) {
        SetFocus(owner->GetHandle()); // the keys go back to the editor
    }
}

int SCodePopupMenu::ItemAt(int y) const {
    int item = (y - 2) / kItemHeight;
    return y >= 2 && item < GetItemCount() ? item : -1;
}

bool SCodePopupMenu::Choose(int item) {
    std::vector<SCodeEditCtrl::PopupItem> items =
        editor != nullptr ? editor->GetPopupItems() : std::vector<SCodeEditCtrl::PopupItem>();
    if (item < 0 || item >= static_cast<int>(items.size()) ||
        !items[static_cast<size_t>(item)].enabled) {
        return false;
    }
    SCodeEditCtrl* owner = editor;
    unsigned command = items[static_cast<size_t>(item)].command;
    Destroy();
    if (owner->GetHandle() != 0) {
        SetFocus(owner->GetHandle());
    }
    return owner->RunCommand(command);
}

LRESULT SCodePopupMenu::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_PAINT:
        Paint(reinterpret_cast<cairo_t*>(wParam));
        return 0;
    case WM_KILLFOCUS:
        Destroy();
        return 0;
    case WM_MOUSEMOVE: {
        int item = ItemAt(PointParamY(lParam));
        if (item != hot) {
            hot = item;
            Invalidate(nullptr);
        }
        return 0;
    }
    case WM_LBUTTONUP:
        Choose(ItemAt(PointParamY(lParam)));
        return 0;
    case WM_NCLBUTTONDOWN: // a press outside
    case WM_NCRBUTTONDOWN:
    case WM_NCMBUTTONDOWN:
        Dismiss();
        return 0;
    case WM_KEYDOWN:
        switch (wParam) {
        case VK_ESCAPE:
            Dismiss();
            return 0;
        case VK_RETURN:
            Choose(hot);
            return 0;
        case 38:   // up
        case 40: { // down
            int count = GetItemCount();
            if (count > 0) {
                hot = wParam == 40 ? (hot + 1) % count : (hot <= 0 ? count - 1 : hot - 1);
                Invalidate(nullptr);
            }
            return 0;
        }
        default:
            break;
        }
        break;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}

void SCodePopupMenu::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    Fill(cr, client, GetSysColor(SYS_COLOR_MENU));
    Frame(cr, client, GetSysColor(SYS_COLOR_BTNSHADOW));
    std::vector<SCodeEditCtrl::PopupItem> items = editor->GetPopupItems();
    for (size_t i = 0; i < items.size(); ++i) {
        int top = 2 + static_cast<int>(i) * kItemHeight;
        bool isHot = static_cast<int>(i) == hot && items[i].enabled;
        if (isHot) {
            Fill(cr, SRect{2, top, client.right - 2, top + kItemHeight},
                 GetSysColor(SYS_COLOR_HIGHLIGHT));
        }
        uint32_t color = !items[i].enabled ? GetSysColor(SYS_COLOR_GRAYTEXT)
                         : isHot           ? GetSysColor(SYS_COLOR_HIGHLIGHTTEXT)
                                           : GetSysColor(SYS_COLOR_MENUTEXT);
        std::string label = items[i].label.c_str();
        size_t tab = label.find('\t');
        DrawCodeBoxText(cr, label.substr(0, tab).c_str(), 24, top + 4, color);
        if (tab != std::string::npos) {
            DrawCodeBoxText(cr, label.substr(tab + 1).c_str(), kMenuWidth - 70, top + 4, color);
        }
    }
}
