// Every message number of the program, in one place: the platform messages
// (WM_*, by their customary values), the toolkit's own messages (SM_*) and
// the notifications controls send their parents (SN_*). Each is written as
// the window core's tables give it, in decimal or in hexadecimal.
// tests/foundation/message_numbers_test.cpp fails when two names share a
// number or when a number is defined anywhere else.
//
// A notification reaches the parent with the control's SWnd* as wParam;
// toolkit/notification.h reads the rest of it without casts.
#pragma once

// Platform messages.
constexpr unsigned WM_NULL = 0x0000;
constexpr unsigned WM_CREATE = 0x0001;
constexpr unsigned WM_DESTROY = 0x0002;
constexpr unsigned WM_MOVE = 0x0003;
constexpr unsigned WM_SIZE = 0x0005;
constexpr unsigned WM_SETFOCUS = 0x0007;
constexpr unsigned WM_KILLFOCUS = 0x0008;
constexpr unsigned WM_ENABLE = 0x000A;
constexpr unsigned WM_SETREDRAW = 0x000B;
constexpr unsigned WM_SETTEXT = 0x000C;
constexpr unsigned WM_GETTEXT = 0x000D;
constexpr unsigned WM_PAINT = 0x000F;
constexpr unsigned WM_CLOSE = 0x0010;
constexpr unsigned WM_QUERYENDSESSION = 0x0011; // the session is ending; non-zero lets it
constexpr unsigned WM_QUIT = 0x0012;
constexpr unsigned WM_ERASEBKGND = 0x0014;
constexpr unsigned WM_SHOWWINDOW = 0x0018;
constexpr unsigned WM_SETCURSOR = 0x0020;
constexpr unsigned WM_GETMINMAXINFO = 0x0024;
constexpr unsigned WM_SETFONT = 0x0030;
constexpr unsigned WM_GETFONT = 0x0031;
constexpr unsigned WM_NOTIFY = 0x004E;
constexpr unsigned WM_STYLECHANGED = 0x007D;
constexpr unsigned WM_NCDESTROY = 0x0082;
// wParam the cairo_t* of the whole window (window coordinates); the default
// draws the menu bar.
constexpr unsigned WM_NCPAINT = 0x0085;
constexpr unsigned WM_NCMOUSEMOVE = 0x00A0;
constexpr unsigned WM_NCLBUTTONDOWN = 0x00A1;
constexpr unsigned WM_NCLBUTTONUP = 0x00A2;
constexpr unsigned WM_NCRBUTTONDOWN = 0x00A4;
constexpr unsigned WM_NCRBUTTONUP = 0x00A5;
constexpr unsigned WM_NCMBUTTONDOWN = 0x00A7;
constexpr unsigned WM_NCMBUTTONUP = 0x00A8;
constexpr unsigned WM_KEYDOWN = 0x0100;
constexpr unsigned WM_KEYUP = 0x0101;
constexpr unsigned WM_CHAR = 0x0102;
constexpr unsigned WM_SYSKEYDOWN = 0x0104;
constexpr unsigned WM_SYSKEYUP = 0x0105;
constexpr unsigned WM_KEYFIRST = 0x0100; // the range of key messages
constexpr unsigned WM_KEYLAST = 0x0109;
constexpr unsigned WM_COMMAND = 0x0111;
constexpr unsigned WM_SYSCOMMAND = 0x0112;
constexpr unsigned WM_TIMER = 0x0113;
constexpr unsigned WM_HSCROLL = 0x0114;
constexpr unsigned WM_VSCROLL = 0x0115;
constexpr unsigned WM_INITMENUPOPUP = 0x0117;
constexpr unsigned WM_MOUSEMOVE = 0x0200;
constexpr unsigned WM_LBUTTONDOWN = 0x0201;
constexpr unsigned WM_LBUTTONUP = 0x0202;
// The double clicks take the place of the second press, for windows whose
// class has CS_DBLCLKS.
constexpr unsigned WM_LBUTTONDBLCLK = 0x0203;
constexpr unsigned WM_RBUTTONDOWN = 0x0204;
constexpr unsigned WM_RBUTTONUP = 0x0205;
constexpr unsigned WM_RBUTTONDBLCLK = 0x0206;
constexpr unsigned WM_MBUTTONDOWN = 0x0207;
constexpr unsigned WM_MBUTTONUP = 0x0208;
constexpr unsigned WM_MBUTTONDBLCLK = 0x0209;
// The wheels: wParam the key flags in the low 16 bits and the signed
// distance in the high 16, 120 a notch (away from the user, or to the
// right, is positive); lParam the pointer in screen coordinates.
constexpr unsigned WM_MOUSEWHEEL = 0x020A;
constexpr unsigned WM_MOUSEHWHEEL = 0x020E;
constexpr unsigned WM_MOUSEFIRST = 0x0200; // the range of mouse messages
constexpr unsigned WM_MOUSELAST = 0x020E;
constexpr unsigned WM_CAPTURECHANGED = 0x0215;
constexpr unsigned WM_ENTERSIZEMOVE = 0x0231;
constexpr unsigned WM_EXITSIZEMOVE = 0x0232;
constexpr unsigned WM_DROPFILES = 0x0233;
constexpr unsigned WM_NCMOUSELEAVE = 0x02A2;
constexpr unsigned WM_MOUSELEAVE = 0x02A3;
constexpr unsigned WM_USER = 0x0400;
constexpr unsigned WM_APP = 0x8000;

// The toolkit's messages, sent to the window itself unless told otherwise.
constexpr unsigned SM_REMOTE_COMMAND = 0x81F4; // 500, command 1 to 4: to the main window
constexpr unsigned SM_DATA_READY = 33270;      // SDataBlock*: a finished data block
constexpr unsigned SM_DATA_ALLOC = 33271;      // tag, size; the result is the row plus 1
constexpr unsigned SM_DATA_SET_WORD = 33272;   // row plus 1, value
constexpr unsigned SM_DATA_FINISH = 33273;     // row plus 1, value
constexpr unsigned SM_CREATE = 33769;          // 0, user data; non-zero refuses creation
constexpr unsigned SM_READY = 0x83EA;          // a dialog's controls are all made
constexpr unsigned SM_PARENT_SIZE = 33771;     // WM_SIZE wParam, parent handle
constexpr unsigned SM_PARENT_MOVE = 33772;     // WM_MOVE wParam, parent handle
constexpr unsigned SM_MODAL_START = 33773;     // non-zero refuses the modal run
constexpr unsigned SM_OK = 33774;              // Enter in a modal window
constexpr unsigned SM_CANCEL = 33775;          // Escape or closing in a modal window
constexpr unsigned SM_DROP_FILES = 33776;      // SStringArray*; a folder ends in "/"
constexpr unsigned SM_MAXIMIZED = 33777;
constexpr unsigned SM_MINIMIZED = 33778;
constexpr unsigned SM_RESTORED = 33779;      // after a minimized or maximized state only
constexpr unsigned SM_NC_LEFT_CLICK = 33780; // 0, point
constexpr unsigned SM_NC_MIDDLE_CLICK = 33781;
constexpr unsigned SM_NC_RIGHT_CLICK = 33782;
constexpr unsigned SM_LEFT_CLICK = 33783; // 0, point: down and up on this window
constexpr unsigned SM_MIDDLE_CLICK = 33784;
constexpr unsigned SM_RIGHT_CLICK = 33785;
constexpr unsigned SM_MOUSE_ENTER = 33786; // key flags, point
constexpr unsigned SM_MOUSE_LEAVE = 33787;
constexpr unsigned SM_MOVE_START = 33788; // 0, point; non-zero refuses the drag-move
constexpr unsigned SM_MOVE_END = 33789;
constexpr unsigned SM_HSCROLLED = 33791; // old position low 16 bits, new high 16
constexpr unsigned SM_VSCROLLED = 33792;
constexpr unsigned SM_DRAG_OVER = 33795; // SWnd* under the cursor or null, point
constexpr unsigned SM_DRAG_DROP = 33796;
constexpr unsigned SM_CAPTURE_MOVE = 33797;       // button, point
constexpr unsigned SM_CAPTURE_UP = 33798;         // button, point
constexpr unsigned SM_CAPTURE_LOST = 33799;       // button, 0
constexpr unsigned SM_SYSKEY = 34269;             // key, sender; to the top window; -1 consumes
constexpr unsigned SM_KEY = 34270;                // key, sender; to the top window
constexpr unsigned SM_CHILD_ANCHORED = 34271;     // child SWnd*, to the parent
constexpr unsigned SM_TAB_STOP = 34272;           // non-zero: the window takes the focus by Tab
constexpr unsigned SM_IME_PREEDIT = 34273;        // const char* text being composed, caret byte
constexpr unsigned SM_THREAD_POST = 34778;        // id, SValue*: on a worker's owner's port
constexpr unsigned SM_THREAD_POST_WORKER = 34779; // id, SValue*: on the worker's port
constexpr unsigned SM_THREAD_END = 34780;         // on the owner's port: the thread ended
// Posted to the player window by its own playing threads: the play state
// changed (wParam the new state), buffering started (wParam 0) or ended
// (1); and, private to the player, a failure, a change of the open state
// and a video frame waiting.
constexpr unsigned SM_PLAYER_PLAY_STATE = 0x8C58;
constexpr unsigned SM_PLAYER_BUFFERING = 0x8C59;
constexpr unsigned SM_PLAYER_ERROR = 0x8C5E;
constexpr unsigned SM_PLAYER_WAKE = 0x8C5F;
constexpr unsigned SM_PLAYER_FRAME = 0x8C60;

// Notifications to the parent; lParam as told.
constexpr unsigned SN_EDITOR_CHANGE = 0x85DC;       // the code editor's text changed
constexpr unsigned SN_WEB_BEFORE_NAVIGATE = 0x8BB8; // the address; non-zero cancels
constexpr unsigned SN_WEB_PROGRESS = 0x8BB9;        // progress and maximum
constexpr unsigned SN_WEB_DOCUMENT_DONE = 0x8BBA;   // 0 complete, 1 failed
constexpr unsigned SN_WEB_TITLE = 0x8BBC;
constexpr unsigned SN_WEB_STATUS_TEXT = 0x8BBD;
constexpr unsigned SN_WEB_QUIT = 0x8BBE;
constexpr unsigned SN_BUTTON_CLICKED = 35779;
constexpr unsigned SN_CHECK_CLICKED = 35789;      // the new state
constexpr unsigned SN_CONTROL_BAR_HEIGHT = 35808; // the new height
constexpr unsigned SN_COMBO_EDIT_CHANGE = 35818;
constexpr unsigned SN_COMBO_SELECT_CHANGE = 35819;
constexpr unsigned SN_EDIT_CHANGE = 35829;  // only with the focus
constexpr unsigned SN_EXLIST_COLUMN_CLICK = 35846; // a list view's column header; the column
constexpr unsigned SN_LIST_KEY = 0x8C3A;    // the key code
constexpr unsigned SN_LIST_MOUSE = 0x8C3B;  // SMouseEvent*
constexpr unsigned SN_LIST_SELECT = 0x8C3C; // the selection changed
constexpr unsigned SN_LIST_DOUBLE_CLICK = 0x8C3D;
constexpr unsigned SN_MEDIA_BUTTON_CLICKED = 0x8C4E; // a clickable media control
constexpr unsigned SN_MEDIA_MOUSE = 0x8C4F;          // SMouseEvent*
constexpr unsigned SN_MEDIA_LINK_CLICKED = 0x8C50;   // the link's text; non-zero claims it
constexpr unsigned SN_PLAYER_MOUSE = 0x8C5A;         // SMouseEvent*
constexpr unsigned SN_PLAYER_ENDED = 0x8C5B;         // the end of the medium
constexpr unsigned SN_PLAYER_LOOPED = 0x8C5C;        // replayed with the loop flag on
constexpr unsigned SN_PLAYER_BUFFERING = 0x8C5D;     // 0 at the start, 1 at the end
constexpr unsigned SN_MENU_COMMAND = 35938;          // the menu item's command
constexpr unsigned SN_SCROLL_CHANGED = 35999;        // a scroll bar's position changed
constexpr unsigned SN_SCROLL_FORWARD = 36009;        // a slider's scroll message
constexpr unsigned SN_SPLITTER_MOUSE = 0x8CB2;       // SMouseEvent*
constexpr unsigned SN_TOOLBAR_COMMAND = 0x8CE4;      // the button's command
constexpr unsigned SN_TRAY = 0x8CEE;                 // the tray icon's mouse code
constexpr unsigned SN_TREE_KEY = 0x8CF8;             // the key code
constexpr unsigned SN_TREE_MOUSE = 0x8CF9;           // SMouseEvent*
constexpr unsigned SN_TREE_CHECK = 0x8CFC;           // the item whose check changed
// The simple controls' mouse events (SMouseEvent*), one number a class,
// and what else they tell.
constexpr unsigned SN_BUTTON_MOUSE = 0x8CD0;
constexpr unsigned SN_CHECK_MOUSE = 0x8CD1;
constexpr unsigned SN_RADIO_MOUSE = 0x8CD2;
constexpr unsigned SN_SCROLL_MOUSE = 0x8CD3;
constexpr unsigned SN_SLIDER_MOUSE = 0x8CD4;
constexpr unsigned SN_PROGRESS_MOUSE = 0x8CD5;
constexpr unsigned SN_LABEL_MOUSE = 0x8CD6;
constexpr unsigned SN_STATIC_MOUSE = 0x8CD7;
constexpr unsigned SN_GROUP_MOUSE = 0x8CD8;
constexpr unsigned SN_TAB_MOUSE = 0x8CD9;
constexpr unsigned SN_PANEL_MOUSE = 0x8CDA;
constexpr unsigned SN_GUI_MOUSE = 0x8CDB;
constexpr unsigned SN_TAB_SELECT = 0x8CDC;  // the page now shown
constexpr unsigned SN_PANEL_ITEM = 0x8CDD;  // group * 65536 + item, toggled
constexpr unsigned SN_TREE_LABEL = 0x8CDE;  // the item whose text was edited
// The bars' mouse events (SMouseEvent*).
constexpr unsigned SN_TOOLBAR_MOUSE = 0x8CE0;
constexpr unsigned SN_STATUS_BAR_MOUSE = 0x8CE1;
constexpr unsigned SN_CONTROL_BAR_MOUSE = 0x8CE2;
