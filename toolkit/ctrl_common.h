// What the toolkit's drawn controls share: the base SCtrlBase with its
// hovered, pressed and focused states and the forwarding of mouse messages
// to the parent as the control's one event message; the key codes they
// read; and small drawing helpers over Cairo and Pango in the theme's
// colours and the window's font.
#pragma once

#include <cstdint>

#include "foundation/geometry.h"
#include "toolkit/mouse_event.h"
#include "toolkit/wnd.h"

typedef struct _cairo cairo_t;
class SFont;

// Virtual key codes the controls read.
namespace ctrlkey {
constexpr unsigned SPACE = 0x20;
constexpr unsigned PRIOR = 0x21; // Page Up
constexpr unsigned NEXT = 0x22;  // Page Down
constexpr unsigned END = 0x23;
constexpr unsigned HOME = 0x24;
constexpr unsigned LEFT = 0x25;
constexpr unsigned UP = 0x26;
constexpr unsigned RIGHT = 0x27;
constexpr unsigned DOWN = 0x28;
constexpr unsigned INSERT = 0x2D;
constexpr unsigned APPS = 0x5D;     // the menu key
constexpr unsigned MULTIPLY = 0x6A; // * of the keypad
constexpr unsigned ADD = 0x6B;      // + of the keypad
constexpr unsigned SUBTRACT = 0x6D; // - of the keypad
constexpr unsigned F2 = 0x71;
constexpr unsigned F4 = 0x73;
constexpr unsigned F10 = 0x79;
constexpr unsigned PLUS = 0xBB;  // the = + key
constexpr unsigned MINUS = 0xBD; // the - _ key
} // namespace ctrlkey

// Text alignment of the drawing helper and of labels and groups.
enum class SAlign { LEFT, CENTER, RIGHT, JUSTIFY };

namespace ctrldraw {
// rect moved in by dx on the left and right and dy on the top and bottom
// (negative grows it).
inline SRect Inset(SRect rect, int dx, int dy) {
    return SRect{rect.left + dx, rect.top + dy, rect.right - dx, rect.bottom - dy};
}
inline SRect Moved(SRect rect, int dx, int dy) {
    return SRect{rect.left + dx, rect.top + dy, rect.right + dx, rect.bottom + dy};
}
void SetSource(cairo_t* cr, uint32_t color);
// A colour between a and b: amount 0 gives a, 255 gives b.
uint32_t Mix(uint32_t a, uint32_t b, int amount);
// One line of text in font (null: the default) inside rect, vertically
// centred, clipped to rect. Returns the width drawn.
int Text(cairo_t* cr, const SFont* font, const char* text, const SRect& rect, uint32_t color,
         SAlign align = SAlign::LEFT);
// The pixel width of the first count bytes of text (-1: all).
int TextWidth(const SFont* font, const char* text, int count = -1);
void Fill(cairo_t* cr, const SRect& rect, uint32_t color);
// The expander of a tree row or a group title, centred on (cx, cy): a
// small triangle pointing down when open, right when closed.
void Expander(cairo_t* cr, double cx, double cy, bool open, uint32_t color);
// A rounded rectangle filled and outlined (either colour 0xFF000000: none).
void RoundBox(cairo_t* cr, const SRect& rect, double radius, uint32_t fill, uint32_t line);
// The frame of the keyboard focus just inside rect.
void FocusFrame(cairo_t* cr, const SRect& rect);
} // namespace ctrldraw

// The font a window draws with: its own, else the toolkit's default.
const SFont* WindowFont(const SWnd* window);

class SCtrlBase : public SWnd {
public:
    // eventMessage: the notification that carries the control's mouse
    // events to the parent.
    explicit SCtrlBase(unsigned eventMessage) : eventMessage(eventMessage) {}

    bool IsHovered() const { return hovered; }
    bool IsPressed() const { return pressed; }
    bool HasFocus() const;
    unsigned GetEventMessage() const { return eventMessage; }

    bool PreMessage(unsigned message, WPARAM* wParam, LPARAM* lParam, LRESULT* result) override;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    // Sends message to the parent with this control as wParam.
    LRESULT Notify(unsigned message, LPARAM lParam) const;
    // WM_PAINT lands here.
    virtual void Paint(cairo_t* /*cr*/) {}
    // Whether a left press takes the keyboard focus.
    virtual bool TakesFocus() const { return true; }
    // Whether a right press takes it too.
    virtual bool FocusOnRightPress() const { return false; }

    bool hovered = false;
    bool pressed = false;

private:
    unsigned eventMessage;
};
