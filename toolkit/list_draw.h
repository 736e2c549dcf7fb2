// Drawing shared by the list, the report list and the combo box: the
// control's font as Pango sees it, one line of text cut with an ellipsis,
// colours, check boxes and the vertical scroll bar they draw themselves.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "foundation/geometry.h"

class SFont;
class SWnd;
typedef struct _cairo cairo_t;

// A Pango font description of the window's font (WM_GETFONT, else the
// default font), and its line height in pixels.
struct SListFont {
    explicit SListFont(const SFont* font);
    ~SListFont();
    SListFont(const SListFont&) = delete;
    SListFont& operator=(const SListFont&) = delete;
    void* description = nullptr; // PangoFontDescription*
    int lineHeight = 16;
};
// The font of wnd, made anew.
SListFont* MakeListFont(SWnd* wnd);

void ListSetColor(cairo_t* cr, uint32_t color);
void ListFill(cairo_t* cr, const SRect& rect, uint32_t color);
// The outline of rect, inside it.
void ListFrame(cairo_t* cr, const SRect& rect, uint32_t color);
// One line of text in rect, centred vertically: align 0 left, 1 centre,
// 2 right; cut with an ellipsis when too wide.
void ListText(cairo_t* cr, const SListFont& font, const char* text, const SRect& rect,
              uint32_t color, int align = 0);
// The width in pixels of the first bytes of text in font, and the byte
// offset nearest to x pixels from the text's start (at a character's edge).
int ListTextWidth(const SListFont& font, const char* text, int bytes);
int ListTextIndexAt(const SListFont& font, const char* text, int x);
// A check box centred in rect.
void ListCheckBox(cairo_t* cr, const SRect& rect, bool checked);
// A small triangle pointing down, centred in rect (the combo's button).
void ListArrowDown(cairo_t* cr, const SRect& rect, uint32_t color);

// The vertical scroll bar of a list whose content is contentHeight pixels
// tall, seen through a window viewHeight pixels tall at offset.
constexpr int LIST_SCROLL_BAR_WIDTH = 12;
constexpr int LIST_THUMB_MINIMUM = 16;
// The thumb's place inside bar.
SRect ListThumbRect(const SRect& bar, int contentHeight, int viewHeight, int offset);
// The offset that puts the thumb's top at thumbTop (bar coordinates).
int ListOffsetForThumb(const SRect& bar, int contentHeight, int viewHeight, int thumbTop);
void ListScrollBar(cairo_t* cr, const SRect& bar, int contentHeight, int viewHeight, int offset,
                   bool active);

// Type-ahead over rows: what was typed lately, and when. Find takes the
// next typed character and gives the row to go to, -1 for none: after a
// pause a new search starts; one letter (or the same one again) moves on to
// the next row starting with it, a longer prefix may stay on the current row.
// Rows are compared ignoring the case of ASCII letters, wrapping at the end.
struct STypeAhead {
    static constexpr uint64_t PAUSE = 1000; // milliseconds
    std::string typed;
    uint64_t typedAt = 0;
    int Find(unsigned character, uint64_t now, int current, int count,
             const std::function<const std::string&(int)>& textOf);
};
