// The vocabulary of dialog definitions, apart from any file or window: the
// table of control types, the style words each type knows, the two colour
// texts, the font text, the anchor values and the arithmetic they drive,
// and the image draw mode words.
#pragma once

#include <cstdint>

#include "foundation/image.h"
#include "foundation/string.h"
#include "toolkit/draw.h"

// Control types, numbered by their place in the type table.
enum {
    CTRL_DIALOG = 0,
    CTRL_BROWSER = 1,
    CTRL_BUTTON = 2,
    CTRL_CHECK = 3,
    CTRL_CODEEDIT = 4,
    CTRL_COMBO = 5,
    CTRL_EDIT = 6,
    CTRL_EXTENDEDLIST = 7,
    CTRL_GROUP = 8,
    CTRL_GUI = 9,
    CTRL_IMAGEEDITOR = 10,
    CTRL_LABEL = 11,
    CTRL_LCD = 12,
    CTRL_LEVEL = 13,
    CTRL_LIST = 14,
    CTRL_MEDIA = 15,
    CTRL_MEDIAPLAYER = 16,
    CTRL_PANEL = 17,
    CTRL_PROGRESS = 18,
    CTRL_PROPERTY = 19,
    CTRL_RADIO = 20,
    CTRL_RICHEDIT = 21,
    CTRL_SCROLL = 22,
    CTRL_SLIDER = 23,
    CTRL_SPLITTER = 24,
    CTRL_SPREAD = 25,
    CTRL_STATIC = 26,
    CTRL_TAB = 27,
    CTRL_TABDOC = 28,
    CTRL_TOOLBAR = 29,
    CTRL_TREE = 30,
    CTRL_WAVEEDITOR = 31,
    CTRL_WINDOW = 32,
    CTRL_EXTERN = 33,
    CTRL_TYPE_COUNT = 34
};

// One row of the type table: the section name of a block (written as
// here, matched without regard to case), the name the editor shows, and
// the class that the control factory makes.
struct SControlType {
    int type;
    const char* section;
    const char* display;
    const char* className;
};

// The row of a type; null outside 0 to 33.
const SControlType* GetControlType(int type);
// The type whose section name equals name, case-blind; -1 for none.
int FindControlType(const char* section);

// A symbolic style word and the bits it stands for.
struct SStyleWord {
    const char* word;
    uint32_t value;
};

// The style words known to a type, in the order the writer emits them.
// Style words start with WS_VISIBLE and WS_DISABLED, known to every type.
// An unknown type knows those two only. count receives the number.
const SStyleWord* GetStyleWords(int type, int* count);
const SStyleWord* GetExStyleWords(int type, int* count);

// The value of a STYLE= or EXSTYLE= text for a type: the OR of every word
// known to the type (either list) that stands among the blank-separated
// parts, matched exactly. Unknown words count for nothing. False, with
// value untouched, when the text has no parts at all.
bool ParseStyleWords(int type, const char* text, uint32_t& value);
// The words of value, each followed by one blank: every word whose bits
// are all set, and every word whose value is 0. exStyle picks the list.
SString FormatStyleWords(int type, uint32_t value, bool exStyle);

// Colours of BACKCOLOR and TEXTCOLOR. Seven characters give red, green
// and blue pairs (value red + green << 8 + blue << 16); nine characters
// give the eight digits as written; any other length gives 0. The first
// character is not looked at; a digit that is not hexadecimal ends the
// number there.
uint32_t ParseColorText(const char* text);
// "#RRGGBB" up to 0xFFFFFF, else "#" and eight digits, upper case.
SString FormatColorText(uint32_t color);

// The three ranges of a colour value.
constexpr uint32_t COLOR_NOT_SET = 0xFF000000u; // the control keeps its default
constexpr uint32_t COLOR_SYSTEM_FIRST = 0xFE000000u;
inline bool IsColorNotSet(uint32_t color) {
    return color == COLOR_NOT_SET;
}
inline bool IsSystemColor(uint32_t color) {
    return color >= COLOR_SYSTEM_FIRST && color != COLOR_NOT_SET;
}
// The system colour index of a value at or above 0xFE000000: the value
// plus 0x02000000 in 32-bit arithmetic (0xFF000001 gives a meaningless
// index, and is meant to).
inline uint32_t SystemColorIndex(uint32_t color) {
    return color + 0x02000000u;
}
// The colour a control gets: "not set" stays 0xFF000000, a plain value
// stands as it is, a system colour is looked up (black for an index the
// table does not have).
uint32_t ResolveColor(uint32_t color);

// Font flags: FONT_BOLD, FONT_ITALIC, FONT_UNDERLINE and FONT_STRIKEOUT of
// toolkit/draw.h, the same bits the toolkit's fonts take.

// Anchor values of HALIGN and VALIGN; a control's value is the OR of both.
enum : uint32_t {
    AUTO_LEFT = 0,
    AUTO_CENTER = 1,
    AUTO_RIGHT = 2,
    AUTO_WIDTH = 4,
    AUTO_HALF_X = 8,
    AUTO_CENTERHALF = 9,
    AUTO_RIGHTHALF = 10,
    AUTO_WIDTHHALF = 12,
    AUTO_TOP = 0,
    AUTO_MIDDLE = 0x10,
    AUTO_BOTTOM = 0x20,
    AUTO_HEIGHT = 0x40,
    AUTO_HALF_Y = 0x80,
    AUTO_MIDDLEHALF = 0x90,
    AUTO_BOTTOMHALF = 0xA0,
    AUTO_HEIGHTHALF = 0xC0
};

// A rectangle as left, top, width and height.
struct SAnchorBox {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool operator==(const SAnchorBox&) const = default;
};

// One layout pass: the recorded box moved by the growth dw and dh of the
// parent's client area since the anchor was set. Bit 1 moves left by
// dw / 2 (dw / 4 with bit 8), bit 2 by dw (dw / 2), bit 4 widens by dw
// (dw / 2); 0x10, 0x20 and 0x40 do the same vertically, halved by 0x80.
// Divisions truncate towards zero; nothing is clamped, so a box may end
// with a width of zero or below. Anchor 0 gives the box unchanged.
SAnchorBox ApplyAnchorValue(uint32_t anchor, const SAnchorBox& recorded, int dw, int dh);

// The property grid's words for the anchor values ("_AUTORIGHT") and
// their labels ("Right"); the file stores only the numbers. Null for a
// value without a word.
const char* AnchorWord(uint32_t value, bool vertical);
const char* AnchorLabel(uint32_t value, bool vertical);
// The value of a word, or -1.
int AnchorValueOfWord(const char* word);

// Image draw modes, stored as their words: DRAW_TOPLEFT to DRAW_FIT of
// foundation/image.h, the twelve a definition can name.
constexpr int DRAW_MODE_COUNT = 12;
// "_DRAWSTRETCH" for 9; null out of range.
const char* DrawModeWord(int mode);
// The mode of a word (exact); -1 for an unknown word.
int DrawModeOfWord(const char* word);

// A decimal number as the definition reader reads it: leading blanks
// allowed, digits up to the first other character, 0 when there are none;
// values beyond 64 bits saturate. Narrowing to the field's width is the
// caller's (modular) cast.
int64_t ParseDefinitionNumber(const char* text);
