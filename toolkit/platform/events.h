// The way in from a platform: each implementation turns its events into
// these calls, on the thread that owns the top-level window. Points are in
// the top-level surface's coordinates: its client area, below the menu bar
// when the window has one (the toolkit draws the bar in the surface).
#pragma once

#include "foundation/message.h"

class SStringArray;
enum class STrayEvent;
typedef struct _cairo cairo_t;

// A mouse message (WM_MOUSEMOVE, WM_LBUTTONDOWN...) at a point, with the
// MK_* key flags; the toolkit finds the window under it (or the capture).
// A press that follows one of the same button on the same window within
// the desktop's double-click time and distance becomes a double click
// (WM_LBUTTONDBLCLK...) when the window's class has CS_DBLCLKS.
void PlatformMouse(HWND top, unsigned message, int x, int y, unsigned keyFlags);
// A turn of a wheel at a point: delta 120 a notch (WHEEL_DELTA), positive
// away from the user, or to the right on the horizontal wheel. The window
// under the pointer (or the capture) gets WM_MOUSEWHEEL or WM_MOUSEHWHEEL.
void PlatformWheel(HWND top, int x, int y, int delta, bool horizontal, unsigned keyFlags);
// The pointer left the surface.
void PlatformMouseLeave(HWND top);
// WM_KEYDOWN, WM_KEYUP, WM_SYSKEYDOWN with a virtual key code, or WM_CHAR
// with a character code; to the focus window.
void PlatformKey(HWND top, unsigned message, unsigned code);
// Whether the platform last reported the key (a virtual key code) down and
// not yet up, as GetAsyncKeyState would: for a wait that polls a key, as the
// media player's open polls Escape. Any thread may ask.
bool IsKeyHeld(unsigned code);
void PlatformFocus(HWND top, bool gained);
// The surface's client area changed; kind is SIZE_RESTORED, SIZE_MINIMIZED
// or SIZE_MAXIMIZED.
void PlatformResized(HWND top, int width, int height, unsigned kind);
void PlatformMoved(HWND top, int x, int y);
// The user asked to close the surface.
void PlatformClose(HWND top);
// A frame of top, width by height pixels, onto cr: the invalid part of the
// window tree is repainted into the window's back buffer, which is then
// copied to cr (clip cr to the damaged area to copy only that).
void PlatformPaint(HWND top, cairo_t* cr, int width, int height);
// Files dropped at a point; folders end in "/". The array is borrowed.
void PlatformDropFiles(HWND top, int x, int y, SStringArray* files);
// Text the input method composed (UTF-8): each character reaches the focus
// window as a WM_CHAR of its code point.
void PlatformImCommit(HWND top, const char* text);
// The composition in progress (UTF-8, empty when it ends) and the caret's
// byte offset in it: sent to the focus window as SM_IME_PREEDIT.
void PlatformImPreedit(HWND top, const char* text, int caret);

// A hosted child (SPlatform::HostChild) took the keyboard focus, as when
// the user clicks into it: its owner becomes the thread's focus window.
void PlatformHostedFocus(HWND owner);

// The user activated the tray icon tray (SPlatform::AddTrayIcon) or asked
// for its menu; its STrayIcon tells its owner (SN_TRAY).
void PlatformTrayEvent(int tray, STrayEvent event);
// The user picked the item id of the tray icon's menu as the platform
// showed it: its owner gets WM_COMMAND with the ID, as from an SMenu.
void PlatformTrayCommand(int tray, int id);
