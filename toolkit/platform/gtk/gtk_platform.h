// The GTK 3 platform (library melkora_toolkit_gtk): every top-level window
// is a GtkWindow holding one drawing area whose whole client the toolkit
// paints with Cairo. Input, focus, clipboard, cursors, dropped files, the
// screen and the work area come from GTK on X11. This header includes no
// GTK header, so that the program's start-up can select the platform.
#pragma once

#include <vector>

#include "foundation/image.h"
#include "foundation/message.h"

// Starts GTK on X11 and makes it the toolkit's platform; call on the main
// thread before ToolkitStart. False, with the platform unchanged, when
// there is no display.
bool UseGtkPlatform();

// Calls handler on the main thread when the session ends: the session
// manager (or a system shutting down) sends SIGTERM, and SIGHUP comes when
// the terminal goes. Null stops watching.
void GtkWatchSessionEnd(void (*handler)(void* argument), void* argument);

// For the window tests on a virtual display.
// The pixels the X server shows for a top-level window's client area.
bool GtkCaptureSurface(HWND top, SImage* picture);
// A real click of the left button at a point of a top-level window's
// client area, synthesised through the X test extension.
bool GtkSimulateClick(HWND top, int x, int y);
// The same with another button: 1 left, 2 middle, 3 right.
bool GtkSimulateButtonClick(HWND top, int x, int y, int button);
// The pixels the X server shows over a rectangle of the screen.
bool GtkCaptureScreen(const SRect& area, SImage* picture);
// A real turn of a wheel at a point, through the X test extension: button
// 4 is a notch up, 5 down, 6 left, 7 right.
bool GtkSimulateWheel(HWND top, int x, int y, int button);
// A touchpad's smooth scroll at a point (GDK's units: 1 is a notch, down and
// right positive), handed to GTK as the X server would (the X test
// extension cannot make one).
bool GtkSimulateSmoothScroll(HWND top, int x, int y, double deltaX, double deltaY);
// Sets the desktop's double-click time and distance, as a settings daemon
// would.
void GtkSetDoubleClick(int milliseconds, int distance);
// Asks GTK for a new size of a top-level window, as the window manager
// does when the user drags its edge; GTK keeps it to the window's limits.
bool GtkResizeSurface(HWND top, int width, int height);
// The size the X server gives a top-level window's surface.
bool GtkGetSurfaceSize(HWND top, SSize* size);
// Where the X server has a shown top-level window's client area, in screen
// coordinates; false while it is not shown.
bool GtkGetSurfaceOrigin(HWND top, SPoint* origin);
// Sets the desktop's interface font ("Serif 13"), as a settings daemon would;
// call before ToolkitStart.
void GtkSetInterfaceFontName(const char* name);
// Adds CSS to the theme for the whole screen, as a user's gtk.css would.
bool GtkAddStyleSheet(const char* css);
// The place of the tool tip window while it shows; false when hidden.
bool GtkGetToolTipRect(SRect* rect);
// What the X server holds of a top-level window as a bar: its
// _NET_WM_STRUT_PARTIAL values (none when not set) and whether its type is
// the dock's.
bool GtkGetDockProperties(HWND top, std::vector<long>* strut, bool* dock);
// Waits until the X server has handled every request sent so far.
void GtkSync();
// Whether the hosted child over owner has GTK's keyboard focus.
bool GtkHostedChildHasFocus(HWND owner);
