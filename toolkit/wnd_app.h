// The toolkit's process-wide state and its message loop: ToolkitStart and
// ToolkitEnd, the pump in both of its modes, the modal pump that dialogs
// use, the list of modeless dialog windows, the command line, the
// single-instance count, and SWndApp, the hidden helper window through
// which a control follows the mouse beyond its own rectangle.
#pragma once

#include "foundation/array.h"
#include "foundation/string.h"
#include "toolkit/wnd.h"

class SFont;

class SWndApp : public SWnd {
public:
    // Lets window follow the mouse everywhere until the button (1 left,
    // 4 right) goes up: the helper window takes the capture and forwards
    // SM_CAPTURE_MOVE, SM_CAPTURE_UP and SM_CAPTURE_LOST.
    void StartCapture(HWND window, int button);
    HWND GetCaptureWindow() const { return captureWindow; }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

    HWND captureWindow = 0;
    int captureButton = 0;
};

using SIdleFunction = void (*)(void* argument);
// Offers a message to a modeless dialog; true when the dialog took it. The
// dialog layer installs it; until then no message is taken.
using SDialogMessageHook = bool (*)(HWND dialog, SMessage* message);

// Starts the toolkit on the calling thread (the main one): the thread's
// row, the locale and clock, the cursors, the system fonts and colours
// (from the desktop theme on a platform that has one, else the classic
// "Sans" 9 points and colours), the platform's work area and modifier keys
// for the foundation, the program's path and the helper window. sockets, sound and noCom are kept for the callers that
// test them; sockets need no start on Linux, and the sound device belongs
// to the player. True when the toolkit runs.
bool ToolkitStart(void* instance, int showCommand, bool sockets, bool sound, bool noCom);
// Ends it, once, after every window is gone; the reverse of ToolkitStart.
void ToolkitEnd();
bool IsToolkitStarted();

// The pump. With *run true it waits for messages; with *run false it
// polls and calls idle whenever the queue is empty (idle must then be
// given). *run may change at any time. Returns at WM_QUIT, with its code.
int RunLoop(bool* run, SIdleFunction idle, void* argument);
// The modal pump: as RunLoop while window has a handle and is modal. A
// WM_QUIT ends it and is posted again, so the outer loop ends too. Enter
// and Escape send SM_OK and SM_CANCEL (lParam 1) when no modeless dialog is
// listed and the window's enterKey or escapeKey is set. Returns the
// window's modalResult.
int RunModalLoop(SWnd* window, bool* run, SIdleFunction idle, void* argument);
// Drops the queued keyboard and mouse input of the calling thread.
void FlushInput();
// Hands one message to the dialogs, or translates and dispatches it.
void DispatchLoopMessage(SMessage* message);

// Modeless dialogs, offered each message first.
int AddDialogHandle(HWND hwnd);
void RemoveDialogHandle(HWND hwnd);
int GetDialogHandleCount();
void SetDialogMessageHook(SDialogMessageHook hook);

// The arguments after the program's name, from index 0; "" out of range.
// unquote removes one pair of double quotes round the argument.
SString GetCommandLineArgument(int index, bool unquote);
// For tests and front ends: the command line to use instead of the
// process's own (arguments after the program's name). Null restores it.
void SetCommandLineArguments(const SStringArray* arguments);
// How many running processes run the executable at path (null or empty:
// this program), compared without regard to case; the caller counts.
int CountProgramInstances(const char* path);

// Accessors.
void* GetInstance();
unsigned GetProcessId();
SString GetProgramPath();
SString GetProgramFolder();
SWndApp* GetHelperWindow();
void* GetSound();
// The default face at 8 points, and the system fonts: 0 caption, 1 small
// caption, 2 menu, 3 status, 4 message.
SFont* GetDefaultFont();
SFont* GetSystemFont(int index);
// The height of a window's menu bar: one line of the menu font and its
// margins.
int GetMenuBarHeight();
