#include "editors/code_edit_ctrl.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

#include "editors/code_edit_dialogs.h"
#include "foundation/color.h"
#include "foundation/keyboard.h"
#include "toolkit/draw.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"

namespace {

constexpr const char* kTextFamily = "Courier New,Liberation Mono,DejaVu Sans Mono,monospace";
constexpr int kTextMargin = 4; // between the bar and the text
constexpr int kWheelLines = 3;
constexpr unsigned kKeyF3 = 114;
constexpr unsigned kKeyInsert = 45;

const std::map<std::string, std::string>& Labels() {
    static const std::map<std::string, std::string> labels = {
        {"#GENERAL", "General"},     {"#CODE", "Code"},     {"#FIND", "Find..."},
        {"#REPLACE", "Replace..."},  {"#GOTO", "Go To..."}, {"#PRINT", "Print..."},
        {"#CANCEL", "Cancel"},       {"@UNDO", "Undo"},     {"@CUT", "Cut"},
        {"@COPY", "Copy"},           {"@PASTE", "Paste"},   {"@DELETE", "Delete"},
        {"@SELECTALL", "Select All"}};
    return labels;
}

bool ParseBool(const char* value) {
    return value != nullptr && std::atoi(value) != 0;
}

// Windows-1252 bytes 0x80 to 0x9F as Unicode.
const unsigned short kCp1252[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                    0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

bool IsUtf8(const std::string& text) {
    size_t i = 0;
    while (i < text.size()) {
        auto c = static_cast<unsigned char>(text[i]);
        int extra = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : -1;
        if (extra < 0 || i + static_cast<size_t>(extra) >= text.size() + (extra == 0 ? 1 : 0)) {
            return false;
        }
        for (int k = 1; k <= extra; ++k) {
            if ((static_cast<unsigned char>(text[i + static_cast<size_t>(k)]) & 0xC0) != 0x80) {
                return false;
            }
        }
        i += static_cast<size_t>(extra) + 1;
    }
    return true;
}

} // namespace

SString GetCodeEditLabel(const char* key) {
    if (key == nullptr) {
        return "";
    }
    auto it = Labels().find(key);
    return it != Labels().end() ? SString(it->second.c_str()) : SString(key);
}

SCodeEditCtrl::SCodeEditCtrl() {
    for (uint32_t& color : colors) {
        color = COLOR_NOT_SET;
    }
}

SCodeEditCtrl::~SCodeEditCtrl() {
    if (dialog != nullptr && dialog->GetHandle() != 0) {
        dialog->Destroy();
    }
    if (popup != nullptr && popup->GetHandle() != 0) {
        popup->Destroy();
    }
}

uint32_t SCodeEditCtrl::GetColor(SCodeColor which) const {
    uint32_t color = colors[which];
    if (color != COLOR_NOT_SET) {
        return color;
    }
    switch (which) {
    case CODE_COLOR_BACK:
    case CODE_COLOR_BACKFOCUS:
        return GetSysColor(SYS_COLOR_WINDOW);
    case CODE_COLOR_HIGHLIGHT:
        return GetSysColor(SYS_COLOR_HIGHLIGHT);
    case CODE_COLOR_BAR:
        return GetSysColor(SYS_COLOR_BTNFACE);
    case CODE_COLOR_BARGRAY:
        return GetSysColor(SYS_COLOR_GRAYTEXT);
    case CODE_COLOR_BARCHECK:
        return 0x0000C000;
    case CODE_COLOR_BARMARK:
        return 0x000000C0;
    case CODE_COLOR_TEXT:
        return GetSysColor(SYS_COLOR_WINDOWTEXT);
    case CODE_COLOR_TEXTKEY:
        return 0x00C00000; // blue
    case CODE_COLOR_TEXTSTR:
        return 0x00000080; // dark red
    case CODE_COLOR_TEXTUP:
        return 0x00808000; // teal
    case CODE_COLOR_TEXTCOMMENT:
        return 0x00008000; // green
    default:
        return 0;
    }
}

void SCodeEditCtrl::SetBackColors(uint32_t back, uint32_t backFocus, uint32_t highlight) {
    colors[CODE_COLOR_BACK] = back;
    colors[CODE_COLOR_BACKFOCUS] = backFocus;
    colors[CODE_COLOR_HIGHLIGHT] = highlight;
    Invalidate(nullptr);
}

void SCodeEditCtrl::SetBarColors(uint32_t bar, uint32_t gray, uint32_t check, uint32_t mark) {
    colors[CODE_COLOR_BAR] = bar;
    colors[CODE_COLOR_BARGRAY] = gray;
    colors[CODE_COLOR_BARCHECK] = check;
    colors[CODE_COLOR_BARMARK] = mark;
    Invalidate(nullptr);
}

void SCodeEditCtrl::SetTextColors(uint32_t text, uint32_t key, uint32_t string, uint32_t upper,
                                  uint32_t comment) {
    colors[CODE_COLOR_TEXT] = text;
    colors[CODE_COLOR_TEXTKEY] = key;
    colors[CODE_COLOR_TEXTSTR] = string;
    colors[CODE_COLOR_TEXTUP] = upper;
    colors[CODE_COLOR_TEXTCOMMENT] = comment;
    Invalidate(nullptr);
}

bool SCodeEditCtrl::ApplyKey(const char* key, const char* value) {
    if (key == nullptr) {
        return false;
    }
    static const struct {
        const char* key;
        bool SCodeSettings::*flag;
    } flags[] = {{"CODEEDIT_BR", &SCodeSettings::br},
                 {"CODEEDIT_COMMENT", &SCodeSettings::comment},
                 {"CODEEDIT_FINDREPLACELOCAL", &SCodeSettings::findReplaceLocal},
                 {"CODEEDIT_INDENT", &SCodeSettings::indent},
                 {"CODEEDIT_SINGLELINE", &SCodeSettings::singleLine},
                 {"CODEEDIT_STRINGS", &SCodeSettings::strings},
                 {"CODEEDIT_UPPERWORDS", &SCodeSettings::upperWords},
                 {"CODEEDIT_SHOWNUMBER", &SCodeSettings::showNumber},
                 {"CODEEDIT_READONLY", &SCodeSettings::readOnly},
                 {"CODEEDIT_SELECTALL", &SCodeSettings::selectAllOnFocus}};
    for (const auto& entry : flags) {
        if (std::strcmp(key, entry.key) == 0) {
            editor.settings.*entry.flag = ParseBool(value);
            Invalidate(nullptr);
            return true;
        }
    }
    static const char* const colorKeys[CODE_COLOR_COUNT] = {
        "CODEEDIT_BACKCOLOR",    "CODEEDIT_BACKFOCUSCOLOR", "CODEEDIT_HIGHLIGHTCOLOR",
        "CODEEDIT_BARCOLOR",     "CODEEDIT_BARGRAYCOLOR",   "CODEEDIT_BARCHECKCOLOR",
        "CODEEDIT_BARMARKCOLOR", "CODEEDIT_TEXTCOLOR",      "CODEEDIT_TEXTKEYCOLOR",
        "CODEEDIT_TEXTSTRCOLOR", "CODEEDIT_TEXTUPCOLOR",    "CODEEDIT_TEXTCOMMENTCOLOR"};
    for (int i = 0; i < CODE_COLOR_COUNT; ++i) {
        if (std::strcmp(key, colorKeys[i]) == 0) {
            // The signed decimal of the 32-bit value.
            colors[i] =
                static_cast<uint32_t>(std::strtoll(value != nullptr ? value : "0", nullptr, 10));
            Invalidate(nullptr);
            return true;
        }
    }
    if (std::strcmp(key, "CODEEDIT_BARWIDTH") == 0) {
        editor.settings.barWidth = std::clamp(std::atoi(value != nullptr ? value : "0"), 0, 500);
    } else if (std::strcmp(key, "CODEEDIT_TABSIZE") == 0) {
        int size = std::atoi(value != nullptr ? value : "0");
        editor.settings.tabSize = size >= 1 && size <= 32 ? size : 4;
    } else if (std::strcmp(key, "CODEEDIT_FILE") == 0) {
        if (value != nullptr && value[0] != '\0') {
            LoadFile(value);
        }
    } else {
        return false;
    }
    Invalidate(nullptr);
    return true;
}

void SCodeEditCtrl::ApplyProperties(const char* text) {
    std::string all = text != nullptr ? text : "";
    size_t start = 0;
    while (start <= all.size()) {
        size_t end = all.find('\n', start);
        std::string line =
            all.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        size_t equals = line.find('=');
        if (equals != std::string::npos) {
            ApplyKey(line.substr(0, equals).c_str(), line.substr(equals + 1).c_str());
        }
        if (end == std::string::npos) {
            break;
        }
        start = end + 1;
    }
}

void SCodeEditCtrl::SetKeywords(const char* words) {
    editor.SetKeywords(words);
    Invalidate(nullptr);
}

void SCodeEditCtrl::SetText(const char* text) {
    uint64_t before = editor.GetVersion();
    editor.SetText(text);
    firstLine = 0;
    leftColumn = 0;
    Changed(before, editor.GetCaret());
    Invalidate(nullptr);
}

SString SCodeEditCtrl::GetEditText() const {
    return SString(editor.GetText().c_str());
}

bool SCodeEditCtrl::LoadFile(const char* path) {
    std::FILE* file = path != nullptr ? std::fopen(path, "rb") : nullptr;
    if (file == nullptr) {
        return false;
    }
    std::string data;
    char buffer[65536];
    for (size_t count; (count = std::fread(buffer, 1, sizeof buffer, file)) > 0;) {
        data.append(buffer, count);
    }
    std::fclose(file);
    if (data.size() >= 3 && data.compare(0, 3, "\xEF\xBB\xBF") == 0) {
        data.erase(0, 3);
    }
    if (!IsUtf8(data)) {
        std::string converted;
        converted.reserve(data.size() + data.size() / 8);
        for (char c : data) {
            auto byte = static_cast<unsigned char>(c);
            converted += byte < 0x80 ? std::string(1, c)
                                     : CodePointToUtf8(byte < 0xA0 ? kCp1252[byte - 0x80] : byte);
        }
        data.swap(converted);
    }
    uint64_t before = editor.GetVersion();
    editor.SetText(data.data(), data.size());
    firstLine = 0;
    leftColumn = 0;
    Changed(before, editor.GetCaret());
    Invalidate(nullptr);
    return true;
}

void SCodeEditCtrl::Measure() {
    if (fontHeight != 0) {
        return;
    }
    fontHeight = std::max(8, -PointsToHeight(10.0));
    PangoFontMap* map = pango_cairo_font_map_get_default();
    PangoContext* context = pango_font_map_create_context(map);
    PangoLayout* layout = pango_layout_new(context);
    PangoFontDescription* description = pango_font_description_from_string(kTextFamily);
    pango_font_description_set_absolute_size(description, fontHeight * PANGO_SCALE);
    pango_layout_set_font_description(layout, description);
    pango_layout_set_text(layout, "MMMMMMMMMM", -1);
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    charWidth = std::max(1, (width + 5) / 10);
    lineHeight = std::max(1, height);
    pango_font_description_free(description);
    g_object_unref(layout);
    g_object_unref(context);
}

int SCodeEditCtrl::GetBarWidth() const {
    int width = editor.settings.barWidth;
    if (editor.settings.showNumber) {
        int digits = 1;
        for (int count = editor.GetLineCount(); count >= 10; count /= 10) {
            ++digits;
        }
        width = std::max(width, (digits + 1) * charWidth + 4);
    }
    return width;
}

int SCodeEditCtrl::GetVisibleLines() const {
    return std::max(1, GetClientHeight() / std::max(1, lineHeight));
}

void SCodeEditCtrl::ScrollToLine(int line) {
    int last = std::max(0, editor.GetLineCount() - GetVisibleLines());
    line = std::clamp(line, 0, last);
    if (line != firstLine) {
        firstLine = line;
        Invalidate(nullptr);
    }
}

void SCodeEditCtrl::EnsureCaretVisible() {
    SCodePos caret = editor.GetCaret();
    int visible = GetVisibleLines();
    if (caret.line < firstLine) {
        ScrollToLine(caret.line);
    } else if (caret.line >= firstLine + visible) {
        ScrollToLine(caret.line - visible + 1);
    }
    int columns =
        std::max(1, (GetClientWidth() - GetBarWidth() - kTextMargin) / std::max(1, charWidth));
    int screen = editor.ScreenColumn(caret.line, caret.column);
    int left = leftColumn;
    if (screen < left) {
        left = std::max(0, screen - columns / 4);
    } else if (screen >= left + columns) {
        left = screen - columns + columns / 4 + 1;
    }
    if (left != leftColumn) {
        leftColumn = left;
        Invalidate(nullptr);
    }
}

SCodePos SCodeEditCtrl::PositionAt(int x, int y) const {
    int line =
        firstLine + (y < 0 ? -1 - (-y - 1) / std::max(1, lineHeight) : y / std::max(1, lineHeight));
    line = std::clamp(line, 0, editor.GetLineCount() - 1);
    int textX = x - GetBarWidth() - kTextMargin + leftColumn * charWidth;
    int screen = std::max(0, (textX + charWidth / 2) / std::max(1, charWidth));
    return SCodePos{line, editor.ColumnAtScreen(line, screen)};
}

SRect SCodeEditCtrl::GetCaretRect() const {
    SCodePos caret = editor.GetCaret();
    int x = GetBarWidth() + kTextMargin +
            (editor.ScreenColumn(caret.line, caret.column) - leftColumn) * charWidth;
    int y = (caret.line - firstLine) * lineHeight;
    return SRect{x, y, x + 2, y + lineHeight};
}

void SCodeEditCtrl::InvalidateLines(int first, int last) {
    if (GetHandle() == 0) {
        return;
    }
    int top = std::max(0, (first - firstLine) * lineHeight);
    int bottom = last < 0 ? GetClientHeight() : (last - firstLine + 1) * lineHeight;
    bottom = std::min(bottom, GetClientHeight());
    if (bottom > top) {
        SRect area{0, top, GetClientWidth(), bottom};
        Invalidate(&area);
    }
}

void SCodeEditCtrl::Changed(uint64_t versionBefore, SCodePos caretBefore) {
    int first = 0;
    int last = 0;
    editor.TakeChangedLines(&first, &last);
    if (first >= 0) {
        InvalidateLines(first, last);
    }
    SCodePos caret = editor.GetCaret();
    InvalidateLines(caretBefore.line, caretBefore.line);
    InvalidateLines(caret.line, caret.line);
    if (editor.HasSelection() || caretBefore != caret) {
        SCodePos from = std::min(editor.GetSelectionStart(), caretBefore);
        SCodePos to = std::max(editor.GetSelectionEnd(), caretBefore);
        InvalidateLines(from.line, to.line);
    }
    if (GetHandle() != 0) {
        EnsureCaretVisible();
    }
    if (editor.GetVersion() != versionBefore && GetHandle() != 0) {
        HWND parent = GetParent();
        if (parent != 0) {
            SendMessage(parent, SN_EDITOR_CHANGE,
                        reinterpret_cast<WPARAM>(static_cast<SWnd*>(this)), 0);
        }
    }
}

bool SCodeEditCtrl::CommitText(const char* utf8) {
    uint64_t before = editor.GetVersion();
    SCodePos caret = editor.GetCaret();
    SCodePos anchor = editor.GetAnchor();
    bool typed = editor.Type(utf8);
    SCodePos low = std::min(caret, anchor);
    Changed(before, low);
    return typed;
}

std::vector<SCodeEditCtrl::PopupItem> SCodeEditCtrl::GetPopupItems() const {
    bool writable = !editor.settings.readOnly;
    bool selection = editor.HasSelection();
    return {
        {CODEEDIT_COMMAND_UNDO, GetCodeEditLabel("@UNDO") + "\tCtrl+Z",
         writable && editor.CanUndo()},
        {CODEEDIT_COMMAND_CUT, GetCodeEditLabel("@CUT") + "\tCtrl+X", writable && selection},
        {CODEEDIT_COMMAND_COPY, GetCodeEditLabel("@COPY") + "\tCtrl+C", selection},
        {CODEEDIT_COMMAND_PASTE, GetCodeEditLabel("@PASTE") + "\tCtrl+V", writable},
        {CODEEDIT_COMMAND_DELETE, GetCodeEditLabel("@DELETE") + "\tDel", writable && selection},
        {CODEEDIT_COMMAND_SELECTALL, GetCodeEditLabel("@SELECTALL") + "\tCtrl+A", true},
    };
}

std::vector<SString> SCodeEditCtrl::GetPanelEntries() {
    return {"#GENERAL", "#FIND", "#REPLACE", "#GOTO", "#PRINT"};
}

bool SCodeEditCtrl::RunCommand(unsigned command) {
    bool readOnly = editor.settings.readOnly;
    if (readOnly && command != CODEEDIT_COMMAND_COPY && command != CODEEDIT_COMMAND_SELECTALL) {
        return false;
    }
    switch (command) {
    case CODEEDIT_COMMAND_UNDO:
        OnUndo();
        return true;
    case CODEEDIT_COMMAND_CUT:
        OnCut();
        return true;
    case CODEEDIT_COMMAND_COPY:
        OnCopy();
        return true;
    case CODEEDIT_COMMAND_PASTE:
        OnPaste();
        return true;
    case CODEEDIT_COMMAND_DELETE:
        OnDelete();
        return true;
    case CODEEDIT_COMMAND_SELECTALL:
        OnSelectAll();
        return true;
    default:
        return false;
    }
}

void SCodeEditCtrl::OnUndo() {
    uint64_t before = editor.GetVersion();
    SCodePos caret = editor.GetCaret();
    editor.Undo();
    Changed(before, caret);
}

bool SCodeEditCtrl::Redo() {
    uint64_t before = editor.GetVersion();
    SCodePos caret = editor.GetCaret();
    bool done = editor.Redo();
    Changed(before, caret);
    return done;
}

void SCodeEditCtrl::OnCopy() {
    if (editor.HasSelection()) {
        SClipboard().SetText(editor.GetSelectedText().c_str());
    }
}

void SCodeEditCtrl::OnCut() {
    if (editor.settings.readOnly || !editor.HasSelection()) {
        return;
    }
    OnCopy();
    OnDelete();
}

void SCodeEditCtrl::OnPaste() {
    if (editor.settings.readOnly) {
        return;
    }
    SString text = SClipboard().GetText();
    uint64_t before = editor.GetVersion();
    SCodePos caret = editor.GetSelectionStart();
    editor.Insert(text.c_str());
    Changed(before, caret);
}

void SCodeEditCtrl::OnDelete() {
    uint64_t before = editor.GetVersion();
    SCodePos caret = editor.GetSelectionStart();
    editor.DeleteSelection();
    Changed(before, caret);
}

void SCodeEditCtrl::OnSelectAll() {
    SCodePos caret = editor.GetCaret();
    editor.SelectAll();
    Changed(editor.GetVersion(), caret);
    Invalidate(nullptr);
}

bool SCodeEditCtrl::GetSearchDown() const {
    return editor.settings.findReplaceLocal ? searchDown : SharedCodeSearchState().down;
}

bool SCodeEditCtrl::GetSearchMatchCase() const {
    return editor.settings.findReplaceLocal ? searchMatchCase : SharedCodeSearchState().matchCase;
}

void SCodeEditCtrl::SetSearchState(bool down, bool matchCase) {
    searchDown = down;
    searchMatchCase = matchCase;
    if (!editor.settings.findReplaceLocal) {
        SharedCodeSearchState().down = down;
        SharedCodeSearchState().matchCase = matchCase;
    }
}

bool SCodeEditCtrl::FindNext(const char* what, bool down, bool matchCase) {
    SetSearchState(down, matchCase);
    SCodePos caret = editor.GetCaret();
    bool found = editor.Find(what, down, matchCase);
    Changed(editor.GetVersion(), caret);
    return found;
}

bool SCodeEditCtrl::ReplaceNext(const char* what, const char* with, bool down, bool matchCase) {
    SetSearchState(down, matchCase);
    uint64_t before = editor.GetVersion();
    SCodePos caret = editor.GetSelectionStart();
    bool done = editor.Replace(what, with, down, matchCase);
    Changed(before, caret);
    return done;
}

int SCodeEditCtrl::ReplaceAll(const char* what, const char* with, bool matchCase) {
    SetSearchState(GetSearchDown(), matchCase);
    uint64_t before = editor.GetVersion();
    int count = editor.ReplaceAll(what, with, matchCase);
    Changed(before, SCodePos{});
    return count;
}

bool SCodeEditCtrl::GoToLine(int line) {
    SCodePos caret = editor.GetCaret();
    editor.GoToLine(line);
    Changed(editor.GetVersion(), caret);
    return true;
}

void SCodeEditCtrl::OpenDialog(int kind) {
    if (GetHandle() == 0) {
        return;
    }
    if (dialog != nullptr && dialog->GetHandle() != 0) {
        dialog->Destroy();
    }
    dialog = std::make_unique<SCodeEditDialog>(this, static_cast<SCodeEditDialog::Kind>(kind));
    if (kind != SCodeEditDialog::GOTO && editor.HasSelection() &&
        editor.GetSelectionStart().line == editor.GetSelectionEnd().line) {
        dialog->SetField(0, editor.GetSelectedText().c_str());
    }
    if (!dialog->Open()) {
        dialog.reset();
    }
}

void SCodeEditCtrl::OnFind() {
    OpenDialog(SCodeEditDialog::FIND);
}

void SCodeEditCtrl::OnReplace() {
    if (!editor.settings.readOnly) {
        OpenDialog(SCodeEditDialog::REPLACE);
    }
}

void SCodeEditCtrl::OnGoTo() {
    OpenDialog(SCodeEditDialog::GOTO);
}

void SCodeEditCtrl::DialogClosed() {
    if (GetHandle() != 0) {
        SetFocus(GetHandle());
    }
}

void SCodeEditCtrl::ShowPopup(int x, int y) {
    if (popup != nullptr && popup->GetHandle() != 0) {
        popup->Destroy();
    }
    popup = std::make_unique<SCodePopupMenu>(this);
    SPoint point{x, y};
    ClientToScreen(&point);
    if (!popup->Open(point)) {
        popup.reset();
    }
}

bool SCodeEditCtrl::HandleKey(unsigned code) {
    unsigned modifiers = SKeyboard::GetModifiers();
    bool ctrl = (modifiers & SKeyboard::MODIFIER_CTRL) != 0;
    bool shift = (modifiers & SKeyboard::MODIFIER_SHIFT) != 0;
    if (ctrl) {
        switch (code) {
        case 'Z':
            if (shift) {
                Redo();
            } else {
                OnUndo();
            }
            return true;
        case 'Y':
            Redo();
            return true;
        case 'X':
            OnCut();
            return true;
        case 'C':
            OnCopy();
            return true;
        case 'V':
            OnPaste();
            return true;
        case 'A':
            OnSelectAll();
            return true;
        case 'F':
            OnFind();
            return true;
        case 'H':
            OnReplace();
            return true;
        case 'G':
            OnGoTo();
            return true;
        case kKeyInsert:
            OnCopy();
            return true;
        default:
            break;
        }
    }
    if (shift && code == CODE_KEY_DELETE) {
        OnCut();
        return true;
    }
    if (shift && !ctrl && code == kKeyInsert) {
        OnPaste();
        return true;
    }
    if (code == kKeyF3) {
        SString what = dialog != nullptr ? dialog->GetField(0) : SString();
        if (!what.IsEmpty()) {
            FindNext(what.c_str(), !shift, GetSearchMatchCase());
        }
        return true;
    }
    uint64_t before = editor.GetVersion();
    SCodePos caret = editor.GetCaret();
    SCodePos anchor = editor.GetAnchor();
    if (!editor.Key(code, modifiers, GetVisibleLines())) {
        return false;
    }
    Changed(before, std::min(caret, anchor));
    if (anchor != caret) {
        InvalidateLines(std::min(caret, anchor).line, std::max(caret, anchor).line);
    }
    return true;
}

LRESULT SCodeEditCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case SM_CREATE:
        Measure();
        break;
    case WM_PAINT:
        Paint(reinterpret_cast<cairo_t*>(wParam));
        return 0;
    case WM_ERASEBKGND:
        return 1; // the paint fills every pixel
    case WM_SETFOCUS:
        focused = true;
        if (editor.settings.selectAllOnFocus) {
            editor.SelectAll();
        }
        Invalidate(nullptr);
        break;
    case WM_KILLFOCUS:
        focused = false;
        dragging = false;
        Invalidate(nullptr);
        break;
    case WM_KEYDOWN:
        if (HandleKey(static_cast<unsigned>(wParam))) {
            return 0;
        }
        break;
    case WM_CHAR: {
        unsigned modifiers = SKeyboard::GetModifiers();
        if ((modifiers & SKeyboard::MODIFIER_CTRL) != 0 || wParam < 32 || wParam == 127) {
            return 0; // Return, Tab and Backspace come as keys
        }
        CommitText(CodePointToUtf8(static_cast<unsigned>(wParam)).c_str());
        return 0;
    }
    case WM_LBUTTONDOWN: {
        int x = PointParamX(lParam);
        int y = PointParamY(lParam);
        SetFocus(GetHandle());
        SCodePos caretBefore = editor.GetCaret();
        SCodePos anchorBefore = editor.GetAnchor();
        unsigned ms = 500;
        int distance = 2;
        GetPlatform()->GetDoubleClick(&ms, &distance);
        uint64_t now = GetMessageClock();
        bool third = lastDoubleClick != 0 && now - lastDoubleClick <= ms &&
                     std::abs(x - lastDoubleClickPoint.x) <= distance &&
                     std::abs(y - lastDoubleClickPoint.y) <= distance;
        SCodePos pos = PositionAt(x, y);
        if (third || x < GetBarWidth()) {
            editor.SelectLine(pos.line);
            lastDoubleClick = 0;
        } else {
            bool shift = (wParam & MK_SHIFT) != 0;
            editor.SetCaret(pos, shift);
            dragging = true;
            SetCapture(GetHandle());
        }
        InvalidateLines(std::min({caretBefore, anchorBefore, editor.GetSelectionStart()}).line,
                        std::max({caretBefore, anchorBefore, editor.GetSelectionEnd()}).line);
        Changed(editor.GetVersion(), caretBefore);
        return 0;
    }
    case WM_LBUTTONDBLCLK: {
        SCodePos before = editor.GetCaret();
        SCodePos pos = PositionAt(PointParamX(lParam), PointParamY(lParam));
        editor.SelectWord(pos);
        lastDoubleClick = GetMessageClock();
        lastDoubleClickPoint = SPoint{PointParamX(lParam), PointParamY(lParam)};
        dragging = false;
        Changed(editor.GetVersion(), before);
        return 0;
    }
    case WM_MOUSEMOVE:
        if (dragging) {
            SCodePos before = editor.GetCaret();
            SCodePos pos = PositionAt(PointParamX(lParam), PointParamY(lParam));
            if (pos != before) {
                editor.SetCaret(pos, true);
                InvalidateLines(std::min(before, pos).line, std::max(before, pos).line);
                Changed(editor.GetVersion(), before);
            }
            return 0;
        }
        break;
    case WM_LBUTTONUP:
        if (dragging) {
            dragging = false;
            ReleaseCapture();
        }
        return 0;
    case WM_RBUTTONUP:
        ShowPopup(PointParamX(lParam), PointParamY(lParam));
        return 0;
    case WM_MOUSEWHEEL: {
        wheelRest += WheelParamDelta(wParam);
        int notches = wheelRest / WHEEL_DELTA;
        wheelRest -= notches * WHEEL_DELTA;
        if (notches != 0) {
            ScrollToLine(firstLine - notches * kWheelLines);
        }
        return 0;
    }
    case WM_SIZE:
        Invalidate(nullptr);
        break;
    case WM_DESTROY:
        if (dialog != nullptr && dialog->GetHandle() != 0) {
            dialog->Destroy();
        }
        if (popup != nullptr && popup->GetHandle() != 0) {
            popup->Destroy();
        }
        break;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}

void SCodeEditCtrl::Paint(cairo_t* cr) {
    Measure();
    int width = GetClientWidth();
    int height = GetClientHeight();
    double clipLeft = 0, clipTop = 0, clipRight = width, clipBottom = height;
    cairo_clip_extents(cr, &clipLeft, &clipTop, &clipRight, &clipBottom);
    SetSourceColor(cr, GetColor(focused ? CODE_COLOR_BACKFOCUS : CODE_COLOR_BACK));
    cairo_rectangle(cr, clipLeft, clipTop, clipRight - clipLeft, clipBottom - clipTop);
    cairo_fill(cr);
    int bar = GetBarWidth();
    if (bar > 0) {
        SetSourceColor(cr, GetColor(CODE_COLOR_BAR));
        cairo_rectangle(cr, 0, 0, bar, height);
        cairo_fill(cr);
    }

    PangoLayout* layout = pango_cairo_create_layout(cr);
    PangoFontDescription* description = pango_font_description_from_string(kTextFamily);
    pango_font_description_set_absolute_size(description, fontHeight * PANGO_SCALE);
    pango_layout_set_font_description(layout, description);
    pango_font_description_free(description);

    SCodePos selFrom = editor.GetSelectionStart();
    SCodePos selTo = editor.GetSelectionEnd();
    int tabSize = std::max(1, editor.settings.tabSize);
    int textLeft = bar + kTextMargin - leftColumn * charWidth;
    std::vector<SCodeRun> runs;
    std::string display;
    std::vector<int> offsets; // display byte of each line byte, and one past the end
    int count = editor.GetLineCount();
    int visible = height / std::max(1, lineHeight) + 1;
    for (int i = 0; i <= visible && firstLine + i < count; ++i) {
        int lineIndex = firstLine + i;
        int y = i * lineHeight;
        if (y + lineHeight <= clipTop || y >= clipBottom) {
            continue; // only the lines the frame asks for
        }
        const std::string& line = editor.GetLine(lineIndex);
        cairo_save(cr);
        cairo_rectangle(cr, bar, y, std::max(0, width - bar), lineHeight);
        cairo_clip(cr);
        // The selection.
        if (editor.HasSelection() && lineIndex >= selFrom.line && lineIndex <= selTo.line) {
            int from =
                lineIndex == selFrom.line ? editor.ScreenColumn(lineIndex, selFrom.column) : 0;
            int to = lineIndex == selTo.line
                         ? editor.ScreenColumn(lineIndex, selTo.column)
                         : editor.ScreenColumn(lineIndex, static_cast<int>(line.size())) + 1;
            SetSourceColor(cr, GetColor(CODE_COLOR_HIGHLIGHT));
            cairo_rectangle(cr, textLeft + from * charWidth, y, (to - from) * charWidth,
                            lineHeight);
            cairo_fill(cr);
        }
        // The text, tabs opened into blanks, coloured by runs.
        display.clear();
        offsets.assign(line.size() + 1, 0);
        for (size_t b = 0; b < line.size(); ++b) {
            offsets[b] = static_cast<int>(display.size());
            if (line[b] == '\t') {
                display.append(static_cast<size_t>(tabSize), ' ');
            } else {
                display += line[b];
            }
        }
        offsets[line.size()] = static_cast<int>(display.size());
        if (!display.empty()) {
            editor.Tokenize(lineIndex, &runs);
            PangoAttrList* attributes = pango_attr_list_new();
            for (const SCodeRun& run : runs) {
                uint32_t color = GetColor(CODE_COLOR_TEXT);
                switch (run.kind) {
                case SCodeToken::KEYWORD:
                    color = GetColor(CODE_COLOR_TEXTKEY);
                    break;
                case SCodeToken::UPPER:
                    color = GetColor(CODE_COLOR_TEXTUP);
                    break;
                case SCodeToken::STRING:
                    color = GetColor(CODE_COLOR_TEXTSTR);
                    break;
                case SCodeToken::COMMENT:
                    color = GetColor(CODE_COLOR_TEXTCOMMENT);
                    break;
                default:
                    break;
                }
                PangoAttribute* attribute =
                    pango_attr_foreground_new(static_cast<guint16>((color & 0xFF) * 257),
                                              static_cast<guint16>(((color >> 8) & 0xFF) * 257),
                                              static_cast<guint16>(((color >> 16) & 0xFF) * 257));
                attribute->start_index =
                    static_cast<guint>(offsets[static_cast<size_t>(run.start)]);
                attribute->end_index =
                    static_cast<guint>(offsets[static_cast<size_t>(run.start + run.length)]);
                pango_attr_list_insert(attributes, attribute);
            }
            // Selected text in the theme's highlight text colour, over the
            // theme's highlight (a highlight of the definition's own keeps
            // the syntax colours).
            if (editor.HasSelection() && colors[CODE_COLOR_HIGHLIGHT] == COLOR_NOT_SET &&
                lineIndex >= selFrom.line && lineIndex <= selTo.line) {
                int from = lineIndex == selFrom.line ? selFrom.column : 0;
                int to = lineIndex == selTo.line ? selTo.column : static_cast<int>(line.size());
                uint32_t color = GetSysColor(SYS_COLOR_HIGHLIGHTTEXT);
                PangoAttribute* attribute =
                    pango_attr_foreground_new(static_cast<guint16>((color & 0xFF) * 257),
                                              static_cast<guint16>(((color >> 8) & 0xFF) * 257),
                                              static_cast<guint16>(((color >> 16) & 0xFF) * 257));
                attribute->start_index = static_cast<guint>(offsets[static_cast<size_t>(from)]);
                attribute->end_index = static_cast<guint>(offsets[static_cast<size_t>(to)]);
                pango_attr_list_change(attributes, attribute);
            }
            pango_layout_set_attributes(layout, attributes);
            pango_attr_list_unref(attributes);
            pango_layout_set_text(layout, display.c_str(), static_cast<int>(display.size()));
            SetSourceColor(cr, GetColor(CODE_COLOR_TEXT));
            cairo_move_to(cr, textLeft, y);
            pango_cairo_show_layout(cr, layout);
        }
        cairo_restore(cr);
        // The line number.
        if (editor.settings.showNumber && bar > 0) {
            char number[16];
            std::snprintf(number, sizeof number, "%d", lineIndex + 1);
            pango_layout_set_attributes(layout, nullptr);
            pango_layout_set_text(layout, number, -1);
            int numberWidth = 0;
            int numberHeight = 0;
            pango_layout_get_pixel_size(layout, &numberWidth, &numberHeight);
            SetSourceColor(cr, GetColor(CODE_COLOR_BARGRAY));
            cairo_move_to(cr, bar - 3 - numberWidth, y);
            pango_cairo_show_layout(cr, layout);
        }
    }
    g_object_unref(layout);

    // The caret.
    if (focused && !editor.HasSelection()) {
        SRect caret = GetCaretRect();
        if (caret.left >= bar) {
            SetSourceColor(cr, GetColor(CODE_COLOR_TEXT));
            cairo_rectangle(cr, caret.left, caret.top, 1.5, caret.Height());
            cairo_fill(cr);
        }
    }
}
