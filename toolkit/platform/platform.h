// SPlatform: everything the window core asks of the windowing system. Only
// top-level windows are platform surfaces; the toolkit draws every child.
// Events come back through the functions of events.h. Two implementations:
// headless (the default, offscreen) and gtk (melkora_toolkit_gtk).
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/geometry.h"
#include "foundation/message.h"
#include "foundation/string.h"

class SImage;

// A chooser the platform shows as its own dialog: open file(s), save a
// file, a folder, a colour or a font. Filters are "Name|*.mp3;*.ogg".
struct SChooserRequest {
    enum Kind { OPEN_FILE, SAVE_FILE, FOLDER, COLOR, FONT, MESSAGE };
    Kind kind = OPEN_FILE;
    SString title;
    SString folder; // where to start; empty: the chooser's choice
    SString name;   // the file name offered by a save chooser
    std::vector<SString> filters;
    bool multiple = false; // an open chooser may return several files
    uint32_t color = 0;    // 0x00BBGGRR, the colour shown first
    SString fontFace;      // the font shown first
    double fontPoints = 0;
    unsigned fontFlags = 0; // FONT_BOLD, FONT_ITALIC
    // A message box: its text (the title is the caption) and MB_* flags.
    SString text;
    unsigned boxFlags = 0;
};

// The user's answer: accepted false when the chooser was cancelled.
struct SChooserAnswer {
    bool accepted = false;
    std::vector<SString> paths; // files, or the folder
    uint32_t color = 0;
    SString fontFace;
    double fontPoints = 0;
    unsigned fontFlags = 0;
    int button = 0; // a message box's answer: IDOK, IDCANCEL, IDYES or IDNO
};

// One item of the tray icon's menu as the platform shows it: a copy of an
// SMenu's item, its text with the mnemonic marked by "_" ("__" for a plain
// underscore) as desktop menus mark it.
struct STrayMenuItem {
    int id = 0;
    SString text;
    bool separator = false;
    bool checked = false;
    bool disabled = false;
    // The item a secondary activation picks (a middle click on the icon).
    bool secondary = false;
    std::vector<STrayMenuItem> submenu;

    bool operator==(const STrayMenuItem& other) const;
};

// What the user did to a tray icon: activated it (a click, or the host's
// Activate), activated it the other way (a middle click, the host's
// SecondaryActivate), or asked for its menu where the platform leaves
// showing it to the program.
enum class STrayEvent { ACTIVATE, SECONDARY_ACTIVATE, CONTEXT_MENU };

// How a surface docked at the bottom edge of the screen stands: not docked
// (the desktop took no such window; it stays hidden), shown as a bar above
// the other windows whose space they may still cover (a desktop that keeps
// no space for such bars), or with its space reserved, so that the work
// area leaves it out and maximised windows stop above it.
enum class SDockState { NONE, ABOVE, RESERVED };

class SPlatform {
public:
    virtual ~SPlatform();

    // Top-level surfaces, keyed by the window's handle. rect is the client
    // area in screen coordinates.
    virtual bool CreateSurface(HWND hwnd, const SRect& rect, const char* title) = 0;
    virtual void DestroySurface(HWND hwnd) = 0;
    // SW_HIDE, SW_SHOW, SW_SHOWMINIMIZED, SW_SHOWMAXIMIZED, SW_RESTORE.
    virtual void ShowSurface(HWND hwnd, int command) = 0;
    virtual void MoveSurface(HWND hwnd, const SRect& rect) = 0;
    virtual void SetSurfaceTitle(HWND hwnd, const char* title) = 0;
    // 0 (clear) to 255 (opaque).
    virtual void SetSurfaceAlpha(HWND hwnd, int alpha) = 0;
    // Asks for a new frame of area (surface coordinates, menu bar included),
    // the part that changed; the platform calls PlatformPaint when it draws,
    // and needs to show only that part of the frame.
    virtual void InvalidateSurface(HWND hwnd, const SRect& area) = 0;
    // Mouse grab for the surface (0 releases).
    virtual void CaptureMouse(HWND hwnd) = 0;
    // The cursor shown over the surface: an index of the cursor table, -1
    // for none.
    virtual void SetSurfaceCursor(HWND hwnd, int cursorIndex) = 0;

    // Puts a top-level surface in the desktop's full-screen state (no frame,
    // above the panels) or takes it out; the toolkit moves the window itself.
    virtual void SetSurfaceFullScreen(HWND hwnd, bool on) = 0;

    // Size limits of a top-level surface in pixels, -1 for free: the window
    // manager keeps the user's resizing inside them.
    virtual void SetSurfaceLimits(HWND hwnd, const SSize& minimum, const SSize& maximum) = 0;

    // The tool tip of the thread's windows: a small surface above all
    // others at rect (screen coordinates) showing picture, drawn by the
    // toolkit; owner is the window it tells about. One at a time: showing
    // it again moves it.
    virtual void ShowToolTip(HWND owner, const SRect& rect, const SImage& picture) = 0;
    virtual void HideToolTip() = 0;

    // The desktop. The clipboard holds one thing at a time: text, or a
    // block of bytes of a private format of the program (a MIME type).
    virtual bool SetClipboardText(const char* text) = 0;
    virtual SString GetClipboardText() = 0;
    virtual bool SetClipboardData(const char* format, const std::vector<uint8_t>& data) = 0;
    // False when the clipboard holds nothing of that format.
    virtual bool GetClipboardData(const char* format, std::vector<uint8_t>* data) = 0;
    // A key pressed and released as if typed, by virtual key code; it
    // reaches the window that has the keyboard. False when the platform
    // cannot type that key.
    virtual bool PressKey(unsigned code) = 0;
    virtual bool GetScreenRect(SRect* rect) = 0;
    virtual bool GetWorkArea(SRect* rect) = 0;
    // Dots per inch of the screen.
    virtual double GetDpi() = 0;
    // SKeyboard::MODIFIER_* bits held now.
    virtual unsigned GetModifiers() = 0;
    // The pointer in screen coordinates.
    virtual SPoint GetPointer() = 0;

    // The desktop theme, read once when the toolkit starts. The interface
    // font's face and size in points; false keeps the classic "Sans" 9.
    virtual bool GetInterfaceFont(SString* face, double* points);
    // Overwrites entries of the system colour table (toolkit/sys_colors.h)
    // with the theme's; the default keeps the classic values.
    virtual void LoadThemeColors();
    // The desktop's double click: the longest time between the two presses
    // in milliseconds, and the farthest the second may land from the first
    // in pixels, across and down. The default is 500 ms and 2 pixels.
    virtual void GetDoubleClick(unsigned* milliseconds, int* distance);

    // A popup surface, for a drop-down list: a top-level surface without a
    // frame, above every other, at rect (screen coordinates); the window
    // core makes one for a top-level window created with WS_EX_TOOLWINDOW.
    // While it is shown it holds the pointer and the keyboard: its keys
    // reach its own window, and a press anywhere reaches it (outside its
    // area as a non-client press). The default makes an ordinary surface.
    virtual bool CreatePopupSurface(HWND hwnd, const SRect& rect);
    // The desktop's small icon (size pixels square) of the file or folder
    // at path, found by its content type in the icon theme. The default, and
    // the headless platform, give a fixed picture: a grey sheet, or a
    // yellow folder.
    virtual bool GetFileIcon(const char* path, bool folder, int size, SImage* picture);
    // The input method of a top-level surface. A window that takes text
    // tells it when it gains and loses the keyboard, where its caret is
    // (surface coordinates) so that a candidate window shows by it, and
    // when its text changed under the method (reset drops a composition).
    // Composed text comes back through PlatformImCommit and
    // PlatformImPreedit. The defaults do nothing.
    virtual void ImFocus(HWND top, bool in);
    virtual void ImSetCursor(HWND top, const SRect& caret);
    virtual void ImReset(HWND top);

    // Shows a chooser modally over owner's top-level window, the toolkit's
    // loop running meanwhile; false when cancelled or when the platform has
    // none (the default).
    virtual bool RunChooser(HWND owner, const SChooserRequest& request, SChooserAnswer* answer);
    // Hosted children: a widget of the platform (the web view), made by the
    // library that wraps it, laid over a toolkit window (owner) of the
    // top-level surface top and stacked above everything the toolkit draws
    // there. rect is in the surface's coordinates. The platform takes the
    // widget over; DestroyHostedChild (or the surface's end) destroys it.
    // Keys go to the widget while it has the keyboard focus. The defaults
    // keep nothing and return false.
    virtual bool HostChild(HWND owner, HWND top, void* widget);
    virtual void MoveHostedChild(HWND owner, const SRect& rect);
    virtual void ShowHostedChild(HWND owner, bool show);
    // Gives the widget the keyboard focus, or gives it back to the surface.
    virtual void FocusHostedChild(HWND owner, bool focus);
    virtual void DestroyHostedChild(HWND owner);

    // Tray icons, keyed by a number the toolkit gives each. AddTrayIcon
    // shows an icon in the desktop's notification area: the picture, or
    // the icon theme's iconName where the theme has it, with the tip. It
    // gives false when the desktop has no notification area, which is no
    // failure: the other calls then do nothing. The menu is the one the
    // desktop shows itself (where the host shows the menu, as a
    // StatusNotifierItem host does); PopupTrayMenu shows it at the pointer
    // where the platform leaves that to the program, false when it cannot.
    // What the user does comes back through PlatformTrayEvent and
    // PlatformTrayCommand. The defaults have no notification area.
    virtual bool AddTrayIcon(int tray, const SImage& icon, const char* iconName, const char* tip);
    virtual void SetTrayIcon(int tray, const SImage& icon, const char* iconName);
    virtual void SetTrayTip(int tray, const char* tip);
    virtual void SetTrayMenu(int tray, const std::vector<STrayMenuItem>& items);
    virtual bool PopupTrayMenu(int tray);
    virtual void RemoveTrayIcon(int tray);
    // A top-level surface kept above its owner's (a dialog over the window
    // that opened it; 0 for none), and a surface raised and given the
    // keyboard. The defaults do nothing.
    virtual void SetSurfaceOwner(HWND hwnd, HWND owner);
    virtual void ActivateSurface(HWND hwnd);

    // A desktop bar: the top-level surface becomes a dock across the
    // bottom of the work area, as wide as it and height pixels high, kept
    // above the other windows, never given the keyboard, out of the
    // taskbar and the pager, reserving its space where the desktop keeps
    // space for bars. The rectangle it takes (screen coordinates) comes
    // back in placed; the surface is not shown yet. Docking a docked
    // surface again, or one undocked a moment ago whose space the desktop
    // has not given back yet, places it at the work area as it is without
    // its own space. The default docks nothing.
    virtual SDockState DockSurface(HWND hwnd, int height, SRect* placed);
    // Gives the space back and hides the surface; false when it was not
    // docked.
    virtual bool UndockSurface(HWND hwnd);
};

// The platform in use; the headless one until SetPlatform. The toolkit owns
// it: SetPlatform deletes the previous one. Call before ToolkitStart.
SPlatform* GetPlatform();
void SetPlatform(SPlatform* platform);
