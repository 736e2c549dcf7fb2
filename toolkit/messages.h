// The toolkit's own messages, the notification numbers controls send to
// their parents, and the style, key and flag constants of the window core.
// The platform vocabulary (WM_*) is in foundation/message.h.
#pragma once

#include "foundation/geometry.h"
#include "foundation/message.h"

// Platform messages the window core adds to those of foundation/message.h.
// WM_NCPAINT: wParam the cairo_t* of the whole window (window coordinates);
// the default draws the menu bar.
constexpr unsigned WM_NCPAINT = 0x0085;
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

// Toolkit messages, sent to the window itself unless told otherwise.
constexpr unsigned SM_CREATE = 33769;          // 0, user data; non-zero refuses creation
constexpr unsigned SM_PARENT_SIZE = 33771;     // WM_SIZE wParam, parent handle
constexpr unsigned SM_PARENT_MOVE = 33772;     // WM_MOVE wParam, parent handle
constexpr unsigned SM_MODAL_START = 33773;     // non-zero refuses the modal run
constexpr unsigned SM_OK = 33774;              // Enter in a modal window
constexpr unsigned SM_CANCEL = 33775;          // Escape or closing in a modal window
constexpr unsigned SM_DROP_FILES = 33776;      // SStringArray*; a folder ends in "/"
constexpr unsigned SM_MAXIMIZED = 33777;
constexpr unsigned SM_MINIMIZED = 33778;
constexpr unsigned SM_RESTORED = 33779;        // after a minimized or maximized state only
constexpr unsigned SM_NC_LEFT_CLICK = 33780;   // 0, point
constexpr unsigned SM_NC_MIDDLE_CLICK = 33781;
constexpr unsigned SM_NC_RIGHT_CLICK = 33782;
constexpr unsigned SM_LEFT_CLICK = 33783;      // 0, point: down and up on this window
constexpr unsigned SM_MIDDLE_CLICK = 33784;
constexpr unsigned SM_RIGHT_CLICK = 33785;
constexpr unsigned SM_MOUSE_ENTER = 33786;     // key flags, point
constexpr unsigned SM_MOUSE_LEAVE = 33787;
constexpr unsigned SM_MOVE_START = 33788;      // 0, point; non-zero refuses the drag-move
constexpr unsigned SM_MOVE_END = 33789;
constexpr unsigned SM_HSCROLLED = 33791;       // old position low 16 bits, new high 16
constexpr unsigned SM_VSCROLLED = 33792;
constexpr unsigned SM_DRAG_OVER = 33795;       // SWnd* under the cursor or null, point
constexpr unsigned SM_DRAG_DROP = 33796;
constexpr unsigned SM_CAPTURE_MOVE = 33797;    // button, point
constexpr unsigned SM_CAPTURE_UP = 33798;      // button, point
constexpr unsigned SM_CAPTURE_LOST = 33799;    // button, 0
constexpr unsigned SM_DATA_READY = 33270;
constexpr unsigned SM_DATA_ALLOC = 33271;
constexpr unsigned SM_DATA_SET_WORD = 33272;
constexpr unsigned SM_DATA_FINISH = 33273;
constexpr unsigned SM_SYSKEY = 34269;          // key, sender; to the top window; -1 consumes
constexpr unsigned SM_KEY = 34270;             // key, sender; to the top window
constexpr unsigned SM_CHILD_ANCHORED = 34271;  // child SWnd*, to the parent

// Notifications a control sends its parent, with the control's SWnd* as wParam.
constexpr unsigned SN_BUTTON_CLICKED = 35779;      // type 2
constexpr unsigned SN_CHECK_CLICKED = 35789;       // type 4, lParam the new state
constexpr unsigned SN_CONTROL_BAR_HEIGHT = 35808;  // type 8
constexpr unsigned SN_COMBO_EDIT_CHANGE = 35818;   // type 7
constexpr unsigned SN_COMBO_SELECT_CHANGE = 35819; // type 7
constexpr unsigned SN_EDIT_CHANGE = 35829;         // type 10, only with the focus
constexpr unsigned SN_LIST_FIRST = 35838;          // type 11, 35838 to 35845
constexpr unsigned SN_LIST_LAST = 35845;
constexpr unsigned SN_MENU_COMMAND = 35938;
constexpr unsigned SN_TYPE29_CLICKED = 35979;
constexpr unsigned SN_SCROLL_CHANGED = 35999;      // type 31
constexpr unsigned SN_SCROLL_FORWARD = 36009;      // type 33
constexpr unsigned SN_TYPE38_NOTIFY = 36049;
constexpr unsigned SN_TREE_FIRST = 36089;          // type 42, 36089 to 36096
constexpr unsigned SN_TREE_LAST = 36096;

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
constexpr unsigned WS_OVERLAPPEDWINDOW = 0x00CF0000u;
constexpr unsigned WS_EX_ACCEPTFILES = 0x00000010u;
constexpr unsigned WS_EX_WINDOWEDGE = 0x00000100u;
constexpr unsigned WS_EX_CLIENTEDGE = 0x00000200u;
constexpr unsigned WS_EX_STATICEDGE = 0x00020000u;
constexpr unsigned WS_EX_LAYERED = 0x00080000u;

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
constexpr unsigned VK_DELETE = 46;

// Commands of ShowWindow.
constexpr int SW_HIDE = 0;
constexpr int SW_SHOWNORMAL = 1;
constexpr int SW_SHOWMINIMIZED = 2;
constexpr int SW_SHOWMAXIMIZED = 3;
constexpr int SW_SHOW = 5;
constexpr int SW_MINIMIZE = 6;
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
