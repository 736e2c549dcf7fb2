// The style, key and flag constants of the window core. Every message
// number, the toolkit's own and the controls' notifications among them, is
// in foundation/message_numbers.h.
#pragma once

#include "foundation/geometry.h"
#include "foundation/message.h"

// Hit-test code in wParam of the non-client mouse messages over the menu bar.
constexpr unsigned HTMENU = 5;

// WM_GETMINMAXINFO's lParam: the limits of the whole window's size, -1 for
// free. The window core asks before each change of a top-level window's
// size (and of a child's with WS_THICKFRAME) and keeps the size inside.
struct SMinMaxInfo {
    SSize minTrackSize{-1, -1};
    SSize maxTrackSize{-1, -1};
};

// size held inside limits whose -1 parts are free; the minimum wins over a
// maximum below it.
constexpr SSize KeepSizeInside(SSize size, const SSize& minimum, const SSize& maximum) {
    int* const parts[2] = {&size.width, &size.height};
    const int low[2] = {minimum.width, minimum.height};
    const int high[2] = {maximum.width, maximum.height};
    for (int i = 0; i < 2; ++i) {
        if (high[i] >= 0 && *parts[i] > high[i]) {
            *parts[i] = high[i];
        }
        if (low[i] >= 0 && *parts[i] < low[i]) {
            *parts[i] = low[i];
        }
    }
    return size;
}

// Class styles: CS_DBLCLKS makes a second press of a button, soon and near
// enough to the first on the same window, a double click.
constexpr unsigned CS_VREDRAW = 0x0001;
constexpr unsigned CS_HREDRAW = 0x0002;
constexpr unsigned CS_DBLCLKS = 0x0008;
constexpr unsigned CS_NOCLOSE = 0x0200;

// Window styles, by their customary values.
constexpr unsigned WS_POPUP = 0x80000000u;
constexpr unsigned WS_CHILD = 0x40000000u;
constexpr unsigned WS_MINIMIZE = 0x20000000u;
constexpr unsigned WS_VISIBLE = 0x10000000u;
constexpr unsigned WS_DISABLED = 0x08000000u;
constexpr unsigned WS_MAXIMIZE = 0x01000000u;
constexpr unsigned WS_CAPTION = 0x00C00000u;
constexpr unsigned WS_BORDER = 0x00800000u;
constexpr unsigned WS_VSCROLL = 0x00200000u;
constexpr unsigned WS_HSCROLL = 0x00100000u;
constexpr unsigned WS_SYSMENU = 0x00080000u;
constexpr unsigned WS_THICKFRAME = 0x00040000u;
constexpr unsigned WS_TABSTOP = 0x00010000u; // a child in the Tab order of its top-level window
constexpr unsigned WS_OVERLAPPEDWINDOW = 0x00CF0000u;
constexpr unsigned WS_EX_TOPMOST = 0x00000008u;
constexpr unsigned WS_EX_ACCEPTFILES = 0x00000010u;
// A top-level window made with it is a popup surface (a drop-down list).
constexpr unsigned WS_EX_TOOLWINDOW = 0x00000080u;
constexpr unsigned WS_EX_WINDOWEDGE = 0x00000100u;
constexpr unsigned WS_EX_CLIENTEDGE = 0x00000200u;
constexpr unsigned WS_EX_STATICEDGE = 0x00020000u;
constexpr unsigned WS_EX_LAYERED = 0x00080000u;

// The wheels' wParam: the key flags in the low 16 bits, the signed distance
// in the high 16; WHEEL_DELTA is one notch.
constexpr int WHEEL_DELTA = 120;
constexpr WPARAM MakeWheelParam(unsigned keyFlags, int delta) {
    return static_cast<WPARAM>((static_cast<uint32_t>(delta & 0xFFFF) << 16) | (keyFlags & 0xFFFF));
}
constexpr int WheelParamDelta(WPARAM value) {
    return static_cast<int16_t>((static_cast<uint32_t>(value) >> 16) & 0xFFFF);
}
constexpr unsigned WheelParamKeys(WPARAM value) {
    return static_cast<unsigned>(value) & 0xFFFF;
}

// Key flags of mouse messages (wParam).
constexpr unsigned MK_LBUTTON = 0x0001;
constexpr unsigned MK_RBUTTON = 0x0002;
constexpr unsigned MK_SHIFT = 0x0004;
constexpr unsigned MK_CONTROL = 0x0008;
constexpr unsigned MK_MBUTTON = 0x0010;

// Virtual key codes the window core looks at.
constexpr unsigned VK_BACK = 8;
constexpr unsigned VK_TAB = 9;
constexpr unsigned VK_RETURN = 13;
constexpr unsigned VK_SHIFT = 16;
constexpr unsigned VK_CONTROL = 17;
constexpr unsigned VK_ESCAPE = 27;
constexpr unsigned VK_SPACE = 32;
constexpr unsigned VK_PRIOR = 33; // Page Up
constexpr unsigned VK_NEXT = 34;  // Page Down
constexpr unsigned VK_END = 35;
constexpr unsigned VK_HOME = 36;
constexpr unsigned VK_LEFT = 37;
constexpr unsigned VK_UP = 38;
constexpr unsigned VK_RIGHT = 39;
constexpr unsigned VK_DOWN = 40;
constexpr unsigned VK_DELETE = 46;
constexpr unsigned VK_F1 = 0x70;
constexpr unsigned VK_F5 = 0x74;
constexpr unsigned VK_F8 = 0x77;
constexpr unsigned VK_F12 = 0x7B;

// Commands of ShowWindow.
constexpr int SW_HIDE = 0;
constexpr int SW_SHOWNORMAL = 1;
constexpr int SW_SHOWMINIMIZED = 2;
constexpr int SW_SHOWMAXIMIZED = 3;
constexpr int SW_SHOW = 5;
constexpr int SW_MINIMIZE = 6;
constexpr int SW_SHOWNA = 8;
constexpr int SW_RESTORE = 9;

// WM_SIZE kinds.
constexpr unsigned SIZE_RESTORED = 0;
constexpr unsigned SIZE_MINIMIZED = 1;
constexpr unsigned SIZE_MAXIMIZED = 2;

// Scroll codes of WM_HSCROLL and WM_VSCROLL (low word of wParam; the thumb
// position is in the high word).
constexpr unsigned SB_LINEUP = 0;
constexpr unsigned SB_LINEDOWN = 1;
constexpr unsigned SB_PAGEUP = 2;
constexpr unsigned SB_PAGEDOWN = 3;
constexpr unsigned SB_THUMBPOSITION = 4;
constexpr unsigned SB_THUMBTRACK = 5;
constexpr unsigned SB_TOP = 6;
constexpr unsigned SB_BOTTOM = 7;

// TrackMouseEvent flags.
constexpr unsigned TME_LEAVE = 2;
constexpr unsigned TME_NONCLIENT = 16;
constexpr unsigned TME_QUERY = 0x40000000u;

// Anchor bits of SetAnchor.
constexpr unsigned ANCHOR_CENTER_X = 1;   // left and right shift by dx / 2
constexpr unsigned ANCHOR_LEFT = 2;       // left shifts by dx
constexpr unsigned ANCHOR_RIGHT = 4;      // right shifts by dx
constexpr unsigned ANCHOR_HALF_X = 8;     // halves the three above
constexpr unsigned ANCHOR_CENTER_Y = 16;  // top and bottom shift by dy / 2
constexpr unsigned ANCHOR_TOP = 32;       // top shifts by dy
constexpr unsigned ANCHOR_BOTTOM = 64;    // bottom shifts by dy
constexpr unsigned ANCHOR_HALF_Y = 128;   // halves the three above

// Bits of the shortcut mask: which of the keyboard table's keys fire.
constexpr unsigned SHORTCUT_UNDO = 1;
constexpr unsigned SHORTCUT_CUT = 2;
constexpr unsigned SHORTCUT_COPY = 4;
constexpr unsigned SHORTCUT_PASTE = 8;
constexpr unsigned SHORTCUT_DELETE = 16;
constexpr unsigned SHORTCUT_SELECT_ALL = 32;
constexpr unsigned SHORTCUT_FIND = 64;
constexpr unsigned SHORTCUT_REPLACE = 128;
constexpr unsigned SHORTCUT_GOTO = 256;
constexpr unsigned SHORTCUT_PRINT = 512;
constexpr unsigned SHORTCUT_ESCAPE = 1024;
constexpr unsigned SHORTCUT_NEW = 2048;
constexpr unsigned SHORTCUT_OPEN = 4096;
constexpr unsigned SHORTCUT_SAVE = 8192;
constexpr unsigned SHORTCUT_SAVE_AS = 16384;
