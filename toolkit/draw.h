// Drawing helpers shared by every control: fonts and text measures,
// gradients, frames, lines and fills, the clipboard and the cursor table.
// The device of the original platform is a Cairo context here.
#pragma once

#include <cstdint>

#include "foundation/geometry.h"
#include "foundation/string.h"

class SFile;
typedef struct _cairo cairo_t;
typedef struct _PangoLayout PangoLayout;

// Font flags.
constexpr unsigned FONT_BOLD = 1;
constexpr unsigned FONT_ITALIC = 2;
constexpr unsigned FONT_UNDERLINE = 4;
constexpr unsigned FONT_STRIKEOUT = 8;

// A font: face, height in pixels (negative: character height, as from
// PointsToHeight) and flags. Made by MakeFont, deleted by its owner.
class SFont {
public:
    SFont(const char* face, int height, unsigned flags);
    virtual ~SFont();
    const SString& GetFace() const { return face; }
    int GetHeight() const { return height; }
    unsigned GetFlags() const { return flags; }
    // The Pango description text ("DejaVu Sans Bold 12px").
    SString Describe() const;

private:
    SString face;
    int height;
    unsigned flags;
};

// A pen: colour (0x00BBGGRR) and width in pixels.
struct SPen {
    uint32_t color = 0;
    int width = 1;
};

// -points x dots per inch / 72, rounded half up; cr null uses the screen's.
int PointsToHeight(double points, cairo_t* cr = nullptr);
SFont* MakeFont(const char* face, int height, unsigned flags);
// The size of count bytes of text (-1: all) in one line.
SSize TextSize(const SFont* font, const char* text, int count = -1);
// The line height and the average character width.
SSize TextMetrics(const SFont* font);
// Gives layout the Pango description of font; a null font takes fallback.
void SetLayoutFont(PangoLayout* layout, const SFont* font, const char* fallback = "Sans 12px");
// A layout on cr of count bytes of text (-1: all) in font; the caller
// frees it.
PangoLayout* MakeTextLayout(cairo_t* cr, const SFont* font, const char* text, int count);
// A two-colour gradient over rect, left to right or top to bottom.
bool GradientFill(cairo_t* cr, const SRect* rect, uint32_t from, uint32_t to, bool vertical);
// The outline of rect, inside it.
void DrawFrame(cairo_t* cr, const SRect* rect, const SPen& pen);
void DrawLine(cairo_t* cr, SPoint from, SPoint to, const SPen& pen);
void FillRect(cairo_t* cr, const SRect* rect, uint32_t color);
// Makes color (0x00BBGGRR) the source of cr.
void SetSourceColor(cairo_t* cr, uint32_t color);

// The private clipboard format of SetFile and GetFile: a block of the
// 32-bit byte count (little-endian), the bytes, and a zero byte.
constexpr const char* CLIPBOARD_BLOCK_FORMAT = "application/x-melkora-block";

class SClipboard {
public:
    virtual ~SClipboard();
    bool SetText(const char* text);
    // "" on any failure.
    SString GetText();
    // Puts count bytes of source, from its position, on the clipboard in
    // the private block format; -1 means all that remains. A count above
    // what remains (or below -1) gives false and reads nothing.
    bool SetFile(SFile* source, int count);
    // Writes the bytes of the clipboard's block at target's position. False
    // when the clipboard holds no block, or a block whose count runs past
    // its end.
    bool GetFile(SFile* target);
};

// Types a key, down then up, as if from the keyboard: it reaches the window
// that has the keyboard focus. False when the platform cannot type it.
bool PressKey(unsigned char code);

// The cursor table: 21 cursors by index. 0 is the arrow of every window, 3
// the hand shown over links.
constexpr int CURSOR_COUNT = 21;
constexpr int CURSOR_ARROW = 0;
constexpr int CURSOR_HAND = 3;
// The desktop's cursor name for an index; "default" out of range.
const char* GetCursorName(int index);
