// The mouse event code and record that the drawn controls send their parents
// (the media control, the lists, the display controls, the player): one code
// of a kind and a button, with the point in client and screen coordinates.
#pragma once

#include "foundation/geometry.h"
#include "toolkit/messages.h"

// Buttons, the low bits of the code.
constexpr unsigned MOUSE_LEFT = 1;
constexpr unsigned MOUSE_MIDDLE = 2;
constexpr unsigned MOUSE_RIGHT = 4;
// Kinds: 0x21 is a left click, 0x24 a right click, 9 a left press.
constexpr unsigned MOUSE_DOWN = 8;
constexpr unsigned MOUSE_UP = 0x10;
constexpr unsigned MOUSE_CLICK = 0x20;
constexpr unsigned MOUSE_DOUBLE_CLICK = 0x40;

// The record a mouse notification carries (its lParam points at one).
struct SMouseEvent {
    unsigned code = 0;
    SPoint client;
    SPoint screen;
};

// The code of a mouse message: a press, a release or a double click of a
// button, or the toolkit's click of one; 0 for any other message.
constexpr unsigned MouseEventCode(unsigned message) {
    switch (message) {
    case WM_LBUTTONDOWN:
        return MOUSE_DOWN | MOUSE_LEFT;
    case WM_LBUTTONUP:
        return MOUSE_UP | MOUSE_LEFT;
    case WM_LBUTTONDBLCLK:
        return MOUSE_DOUBLE_CLICK | MOUSE_LEFT;
    case WM_RBUTTONDOWN:
        return MOUSE_DOWN | MOUSE_RIGHT;
    case WM_RBUTTONUP:
        return MOUSE_UP | MOUSE_RIGHT;
    case WM_RBUTTONDBLCLK:
        return MOUSE_DOUBLE_CLICK | MOUSE_RIGHT;
    case WM_MBUTTONDOWN:
        return MOUSE_DOWN | MOUSE_MIDDLE;
    case WM_MBUTTONUP:
        return MOUSE_UP | MOUSE_MIDDLE;
    case WM_MBUTTONDBLCLK:
        return MOUSE_DOUBLE_CLICK | MOUSE_MIDDLE;
    case SM_LEFT_CLICK:
        return MOUSE_CLICK | MOUSE_LEFT;
    case SM_MIDDLE_CLICK:
        return MOUSE_CLICK | MOUSE_MIDDLE;
    case SM_RIGHT_CLICK:
        return MOUSE_CLICK | MOUSE_RIGHT;
    default:
        return 0;
    }
}
