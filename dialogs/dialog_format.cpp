#include "dialogs/dialog_format.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "foundation/parser.h"
#include "toolkit/sys_colors.h"

namespace {

const SControlType TYPES[CTRL_TYPE_COUNT] = {
    {0, "DIALOG", "Dialog", "SWndDialog"},
    {1, "BROWSER", "Browser", "SBrowserCtrl"},
    {2, "BUTTON", "Button", "SButtonCtrl"},
    {3, "CHECK", "Check", "SCheckCtrl"},
    {4, "CODEEDIT", "Code Edit", "SCodeEditCtrl"},
    {5, "COMBO", "Combo", "SComboCtrl"},
    {6, "EDIT", "Edit", "SEditCtrl"},
    {7, "EXTENDEDLIST", "Extended List", "SExListCtrl"},
    {8, "GROUP", "Group", "SGroupCtrl"},
    {9, "GUI", "GUI", "SGuiCtrl"},
    {10, "IMAGEEDITOR", "Image Editor", "SImageEditor"},
    {11, "LABEL", "Label", "SLabelCtrl"},
    {12, "LCD", "Lcd", "SLcdCtrl"},
    {13, "LEVEL", "Level", "SLevelCtrl"},
    {14, "LIST", "List", "SListCtrl"},
    {15, "MEDIA", "Media", "SMediaCtrl"},
    {16, "MEDIAPLAYER", "Media Player", "SMediaPlayerCtrl"},
    {17, "PANEL", "Panel", "SPanelCtrl"},
    {18, "PROGRESS", "Progress", "SProgressCtrl"},
    {19, "PROPERTY", "Property", "SPropertyCtrl"},
    {20, "RADIO", "Radio", "SRadioCtrl"},
    {21, "RICHEDIT", "Rich Edit", "SRichEditCtrl"},
    {22, "SCROLL", "Scroll", "SScrollCtrl"},
    {23, "SLIDER", "Slider", "SSliderCtrl"},
    {24, "SPLITTER", "Splitter", "SSplitterCtrl"},
    {25, "SPREAD", "Spread", "SSpreadCtrl"},
    {26, "STATIC", "Static", "SStaticCtrl"},
    {27, "TAB", "Tab", "STabCtrl"},
    {28, "TABDOC", "Tab Doc", "STabDocCtrl"},
    {29, "TOOLBAR", "Tool Bar", "SToolBarCtrl"},
    {30, "TREE", "Tree", "STreeCtrl"},
    {31, "WAVEEDITOR", "Wave Editor", "SWaveEditor"},
    {32, "WINDOW", "Window", "_SWnd"},
    {33, "EXTERN", "External Control", "SExternCtrl"},
};

// Style words per type, WS_VISIBLE and WS_DISABLED first.
#define COMMON                                                                                     \
    {"WS_VISIBLE", 0x10000000u}, {                                                                 \
        "WS_DISABLED", 0x08000000u                                                                 \
    }

const SStyleWord STYLE_COMMON[] = {COMMON};
const SStyleWord STYLE_DIALOG[] = {COMMON,
                                   {"WS_BORDER", 0x00800000u},
                                   {"WS_CAPTION", 0x00C00000u},
                                   {"WS_SYSMENU", 0x00080000u},
                                   {"WS_MAXIMIZEBOX", 0x00010000u},
                                   {"WS_MINIMIZEBOX", 0x00020000u},
                                   {"WS_SIZEBOX", 0x00040000u}};
const SStyleWord STYLE_BORDER[] = {COMMON, {"WS_BORDER", 0x00800000u}};
const SStyleWord STYLE_BUTTON[] = {COMMON,
                                   {"BS_LEFT", 0x100},
                                   {"BS_RIGHT", 0x200},
                                   {"BS_CENTER", 0x300},
                                   {"BS_TOP", 0x400},
                                   {"BS_BOTTOM", 0x800},
                                   {"BS_VCENTER", 0xC00},
                                   {"BS_FLAT", 0x8000},
                                   {"BS_MULTILINE", 0x2000},
                                   {"BS_DEFPUSHBUTTON", 0x1}};
const SStyleWord STYLE_GROUP[] = {
    COMMON, {"BS_LEFT", 0x100}, {"BS_RIGHT", 0x200}, {"BS_CENTER", 0x300}};
const SStyleWord STYLE_COMBO[] = {COMMON,
                                  {"WS_VSCROLL", 0x00200000u},
                                  {"CBS_SIMPLE", 1},
                                  {"CBS_DROPDOWN", 2},
                                  {"CBS_DROPDOWNLIST", 3},
                                  {"CBS_AUTOHSCROLL", 0x40},
                                  {"CBS_DISABLENOSCROLL", 0x800},
                                  {"CBS_NOINTEGRALHEIGHT", 0x400},
                                  {"CBS_SORT", 0x100}};
const SStyleWord STYLE_EDIT[] = {COMMON,
                                 {"WS_BORDER", 0x00800000u},
                                 {"WS_HSCROLL", 0x00100000u},
                                 {"WS_VSCROLL", 0x00200000u},
                                 {"ES_LEFT", 0},
                                 {"ES_CENTER", 1},
                                 {"ES_RIGHT", 2},
                                 {"ES_AUTOHSCROLL", 0x80},
                                 {"ES_AUTOVSCROLL", 0x40},
                                 {"ES_READONLY", 0x800},
                                 {"ES_NOHIDESEL", 0x100},
                                 {"ES_LOWERCASE", 0x10},
                                 {"ES_UPPERCASE", 8},
                                 {"ES_MULTILINE", 4},
                                 {"ES_PASSWORD", 0x20},
                                 {"ES_NUMBER", 0x2000}};
const SStyleWord STYLE_RICHEDIT[] = {COMMON,
                                     {"WS_HSCROLL", 0x00100000u},
                                     {"WS_VSCROLL", 0x00200000u},
                                     {"ES_LEFT", 0},
                                     {"ES_RIGHT", 2},
                                     {"ES_CENTER", 1},
                                     {"ES_AUTOHSCROLL", 0x80},
                                     {"ES_AUTOVSCROLL", 0x40},
                                     {"ES_READONLY", 0x800},
                                     {"ES_NOHIDESEL", 0x100},
                                     {"ES_WANTRETURN", 0x1000},
                                     {"ES_SUNKEN", 0x4000}};
const SStyleWord STYLE_EXLIST[] = {COMMON,
                                   {"WS_BORDER", 0x00800000u},
                                   {"LVS_ICON", 0},
                                   {"LVS_REPORT", 1},
                                   {"LVS_SMALLICON", 2},
                                   {"LVS_LIST", 3},
                                   {"LVS_EDITLABELS", 0x200},
                                   {"LVS_AUTOARRANGE", 0x100},
                                   {"LVS_SINGLESEL", 4},
                                   {"LVS_NOLABELWRAP", 0x80},
                                   {"LVS_NOSCROLL", 0x2000},
                                   {"LVS_SHOWSELALWAYS", 8},
                                   {"LVS_SORTASCENDING", 0x10},
                                   {"LVS_SORTDESCENDING", 0x20},
                                   {"LVS_NOCOLUMNHEADER", 0x4000}};
const SStyleWord STYLE_LIST[] = {COMMON,
                                 {"WS_BORDER", 0x00800000u},
                                 {"WS_HSCROLL", 0x00100000u},
                                 {"WS_VSCROLL", 0x00200000u},
                                 {"LBS_MULTIPLESEL", 8},
                                 {"LBS_EXTENDEDSEL", 0x800},
                                 {"LBS_NOSEL", 0x4000},
                                 {"LBS_DISABLENOSCROLL", 0x1000},
                                 {"LBS_NOINTEGRALHEIGHT", 0x100},
                                 {"LBS_SORT", 2}};
const SStyleWord STYLE_PROGRESS[] = {
    COMMON, {"PBS_VERTICAL", 4}, {"PBS_SMOOTH", 1}, {"PBS_MARQUEE", 8}};
const SStyleWord STYLE_SCROLL[] = {COMMON, {"SBS_VERT", 1}};
const SStyleWord STYLE_SLIDER[] = {
    COMMON, {"WS_BORDER", 0x00800000u}, {"TBS_TOOLTIPS", 0x100}, {"TBS_VERT", 2}};
const SStyleWord STYLE_TAB[] = {COMMON,
                                {"TCS_BUTTONS", 0x100},
                                {"TCS_FLATBUTTONS", 8},
                                {"TCS_FOCUSNEVER", 0x8000},
                                {"TCS_FOCUSONBUTTONDOWN", 0x1000},
                                {"TCS_TOOLTIPS", 0x4000}};
const SStyleWord STYLE_TOOLBAR[] = {
    COMMON, {"WS_BORDER", 0x00800000u}, {"TBSTYLE_TOOLTIPS", 0x100}};
const SStyleWord STYLE_TREE[] = {COMMON,
                                 {"WS_BORDER", 0x00800000u},
                                 {"TVS_CHECKBOXES", 0x100},
                                 {"TVS_DISABLEDRAGDROP", 0x10},
                                 {"TVS_EDITLABELS", 8},
                                 {"TVS_FULLROWSELECT", 0x1000},
                                 {"TVS_HASBUTTONS", 1},
                                 {"TVS_HASLINES", 2},
                                 {"TVS_LINESATROOT", 4},
                                 {"TVS_SHOWSELALWAYS", 0x20},
                                 {"TVS_TRACKSELECT", 0x200}};
#undef COMMON

const SStyleWord EX_DIALOG[] = {{"WS_EX_CLIENTEDGE", 0x200},
                                {"WS_EX_STATICEDGE", 0x20000},
                                {"WS_EX_TOOLWINDOW", 0x80},
                                {"WS_EX_TOPMOST", 0x8}};
const SStyleWord EX_EDGES[] = {{"WS_EX_CLIENTEDGE", 0x200}, {"WS_EX_STATICEDGE", 0x20000}};
const SStyleWord EX_STATICEDGE[] = {{"WS_EX_STATICEDGE", 0x20000}};

struct SWordList {
    const SStyleWord* words;
    int count;
};

template <int N> constexpr SWordList List(const SStyleWord (&words)[N]) {
    return {words, N};
}

SWordList StyleList(int type) {
    switch (type) {
    case CTRL_DIALOG:
        return List(STYLE_DIALOG);
    case CTRL_BROWSER:
        return List(STYLE_BORDER);
    case CTRL_BUTTON:
        return List(STYLE_BUTTON);
    case CTRL_GROUP:
        return List(STYLE_GROUP);
    case CTRL_COMBO:
        return List(STYLE_COMBO);
    case CTRL_EDIT:
        return List(STYLE_EDIT);
    case CTRL_RICHEDIT:
        return List(STYLE_RICHEDIT);
    case CTRL_EXTENDEDLIST:
        return List(STYLE_EXLIST);
    case CTRL_LIST:
        return List(STYLE_LIST);
    case CTRL_PROGRESS:
        return List(STYLE_PROGRESS);
    case CTRL_SCROLL:
        return List(STYLE_SCROLL);
    case CTRL_SLIDER:
        return List(STYLE_SLIDER);
    case CTRL_STATIC:
        return List(STYLE_COMMON);
    case CTRL_TAB:
        return List(STYLE_TAB);
    case CTRL_TOOLBAR:
        return List(STYLE_TOOLBAR);
    case CTRL_TREE:
        return List(STYLE_TREE);
    default:
        return type >= 0 && type < CTRL_TYPE_COUNT ? List(STYLE_BORDER) : List(STYLE_COMMON);
    }
}

SWordList ExStyleList(int type) {
    switch (type) {
    case CTRL_DIALOG:
        return List(EX_DIALOG);
    case CTRL_EDIT:
    case CTRL_EXTENDEDLIST:
    case CTRL_LIST:
    case CTRL_SLIDER:
    case CTRL_TOOLBAR:
    case CTRL_TREE:
        return List(EX_EDGES);
    case CTRL_RICHEDIT:
        return List(EX_STATICEDGE);
    case CTRL_BROWSER:
    case CTRL_BUTTON:
    case CTRL_GROUP:
    case CTRL_COMBO:
    case CTRL_PROGRESS:
    case CTRL_SCROLL:
    case CTRL_STATIC:
    case CTRL_TAB:
        return {nullptr, 0};
    default:
        return type >= 0 && type < CTRL_TYPE_COUNT ? List(EX_EDGES) : SWordList{nullptr, 0};
    }
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// Hexadecimal digits of text[0..count) up to the first other character.
uint32_t ParseHexRun(const char* text, int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) {
        int digit = HexDigit(text[i]);
        if (digit < 0) {
            break;
        }
        value = (value << 4) | static_cast<uint32_t>(digit);
    }
    return value;
}

struct SAnchorName {
    uint32_t value;
    const char* word;
    const char* label;
};

const SAnchorName H_ANCHORS[] = {{0, "_AUTOLEFT", "Left"},
                                 {1, "_AUTOCENTER", "Center"},
                                 {2, "_AUTORIGHT", "Right"},
                                 {4, "_AUTOWIDTH", "Resize"},
                                 {9, "_AUTOCENTERHALF", "Half Center"},
                                 {10, "_AUTORIGHTHALF", "Half Right"},
                                 {12, "_AUTOWIDTHHALF", "Half Resize"}};
const SAnchorName V_ANCHORS[] = {{0, "_AUTOTOP", "Top"},
                                 {0x10, "_AUTOMIDDLE", "Middle"},
                                 {0x20, "_AUTOBOTTOM", "Bottom"},
                                 {0x40, "_AUTOHEIGHT", "Resize"},
                                 {0x90, "_AUTOMIDDLEHALF", "Half Middle"},
                                 {0xA0, "_AUTOBOTTOMHALF", "Half Bottom"},
                                 {0xC0, "_AUTOHEIGHTHALF", "Half Resize"}};

const SAnchorName* FindAnchor(uint32_t value, bool vertical) {
    const SAnchorName* table = vertical ? V_ANCHORS : H_ANCHORS;
    for (int i = 0; i < 7; ++i) {
        if (table[i].value == value) {
            return &table[i];
        }
    }
    return nullptr;
}

const char* const DRAW_WORDS[DRAW_MODE_COUNT] = {
    "_DRAWTOPLEFT",     "_DRAWTOPCENTER",  "_DRAWTOPRIGHT",     "_DRAWMIDDLELEFT",
    "_DRAWMIDDLERIGHT", "_DRAWBOTTOMLEFT", "_DRAWBOTTOMCENTER", "_DRAWBOTTOMRIGHT",
    "_DRAWCENTER",      "_DRAWSTRETCH",    "_DRAWTILE",         "_DRAWFIT"};

} // namespace

const SControlType* GetControlType(int type) {
    return type >= 0 && type < CTRL_TYPE_COUNT ? &TYPES[type] : nullptr;
}

int FindControlType(const char* section) {
    if (section == nullptr) {
        return -1;
    }
    SString name(section);
    for (const SControlType& row : TYPES) {
        if (name.CompareNoCase(row.section) == 0) {
            return row.type;
        }
    }
    return -1;
}

const SStyleWord* GetStyleWords(int type, int* count) {
    SWordList list = StyleList(type);
    if (count != nullptr) {
        *count = list.count;
    }
    return list.words;
}

const SStyleWord* GetExStyleWords(int type, int* count) {
    SWordList list = ExStyleList(type);
    if (count != nullptr) {
        *count = list.count;
    }
    return list.words;
}

bool ParseStyleWords(int type, const char* text, uint32_t& value) {
    SStringArray parts;
    SStringParser parser(text != nullptr ? text : "");
    if (parser.Parse(" ", SStringParser::PARSE_QUOTES, '"', &parts) <= 0) {
        return false;
    }
    uint32_t result = 0;
    for (SWordList list : {StyleList(type), ExStyleList(type)}) {
        for (int i = 0; i < list.count; ++i) {
            for (int j = 0; j < parts.GetCount(); ++j) {
                if (parts.GetText(j) == list.words[i].word) {
                    result |= list.words[i].value;
                    break;
                }
            }
        }
    }
    value = result;
    return true;
}

SString FormatStyleWords(int type, uint32_t value, bool exStyle) {
    SWordList list = exStyle ? ExStyleList(type) : StyleList(type);
    SString text;
    for (int i = 0; i < list.count; ++i) {
        uint32_t bits = list.words[i].value;
        if ((value & bits) == bits) {
            text += list.words[i].word;
            text += ' ';
        }
    }
    return text;
}

uint32_t ParseColorText(const char* text) {
    if (text == nullptr) {
        return 0;
    }
    size_t length = strlen(text);
    if (length == 7) {
        uint32_t red = ParseHexRun(text + 1, 2);
        uint32_t green = ParseHexRun(text + 3, 2);
        uint32_t blue = ParseHexRun(text + 5, 2);
        return red + (green << 8) + (blue << 16);
    }
    if (length == 9) {
        return ParseHexRun(text + 1, 8);
    }
    return 0;
}

SString FormatColorText(uint32_t color) {
    SString text;
    if (color <= 0xFFFFFFu) {
        text.Format("#%02X%02X%02X", color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
    } else {
        text.Format("#%08X", color);
    }
    return text;
}

uint32_t ResolveColor(uint32_t color) {
    if (!IsSystemColor(color)) {
        return color;
    }
    uint32_t index = SystemColorIndex(color);
    return index < static_cast<uint32_t>(SYS_COLOR_COUNT) ? GetSysColor(static_cast<int>(index))
                                                          : 0;
}

SAnchorBox ApplyAnchorValue(uint32_t anchor, const SAnchorBox& recorded, int dw, int dh) {
    SAnchorBox box = recorded;
    bool halfX = (anchor & AUTO_HALF_X) != 0;
    bool halfY = (anchor & AUTO_HALF_Y) != 0;
    if ((anchor & AUTO_CENTER) != 0) {
        box.left += halfX ? dw / 4 : dw / 2;
    }
    if ((anchor & AUTO_RIGHT) != 0) {
        box.left += halfX ? dw / 2 : dw;
    }
    if ((anchor & AUTO_WIDTH) != 0) {
        box.width += halfX ? dw / 2 : dw;
    }
    if ((anchor & AUTO_MIDDLE) != 0) {
        box.top += halfY ? dh / 4 : dh / 2;
    }
    if ((anchor & AUTO_BOTTOM) != 0) {
        box.top += halfY ? dh / 2 : dh;
    }
    if ((anchor & AUTO_HEIGHT) != 0) {
        box.height += halfY ? dh / 2 : dh;
    }
    return box;
}

const char* AnchorWord(uint32_t value, bool vertical) {
    const SAnchorName* name = FindAnchor(value, vertical);
    return name != nullptr ? name->word : nullptr;
}

const char* AnchorLabel(uint32_t value, bool vertical) {
    const SAnchorName* name = FindAnchor(value, vertical);
    return name != nullptr ? name->label : nullptr;
}

int AnchorValueOfWord(const char* word) {
    if (word == nullptr) {
        return -1;
    }
    for (const SAnchorName* table : {H_ANCHORS, V_ANCHORS}) {
        for (int i = 0; i < 7; ++i) {
            if (strcmp(table[i].word, word) == 0) {
                return static_cast<int>(table[i].value);
            }
        }
    }
    return -1;
}

const char* DrawModeWord(int mode) {
    return mode >= 0 && mode < DRAW_MODE_COUNT ? DRAW_WORDS[mode] : nullptr;
}

int DrawModeOfWord(const char* word) {
    if (word == nullptr) {
        return -1;
    }
    for (int i = 0; i < DRAW_MODE_COUNT; ++i) {
        if (strcmp(DRAW_WORDS[i], word) == 0) {
            return i;
        }
    }
    return -1;
}

int64_t ParseDefinitionNumber(const char* text) {
    if (text == nullptr) {
        return 0;
    }
    // strtoll saturates out of range, where atoi would be undefined.
    errno = 0;
    long long value = strtoll(text, nullptr, 10);
    return static_cast<int64_t>(value);
}
