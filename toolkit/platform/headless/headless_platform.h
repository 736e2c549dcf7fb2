// SHeadlessPlatform: the platform without a display. Top-level windows are
// records with a rectangle; a frame is painted on demand into an offscreen
// Cairo picture (Snapshot). Tests script input with the functions below,
// and may switch the message clock to a fake one that only moves when told.
#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <vector>

#include "foundation/image.h"
#include "toolkit/platform/platform.h"

typedef struct _cairo_surface cairo_surface_t;

class SHeadlessPlatform : public SPlatform {
public:
    struct Surface {
        SRect rect;
        SString title;
        bool visible = false;
        int showCommand = 0;
        int alpha = 255;
        bool fullScreen = false;
        int cursor = 0;
        int frameRequests = 0;
        SRect damaged; // the bounds of the areas asked for since the last frame
        SSize minimum{-1, -1}; // the size limits, -1 free
        SSize maximum{-1, -1};
        bool popup = false; // a popup surface, holding pointer and keys while shown
        SDockState dock = SDockState::NONE; // docked at the bottom edge
        int reserved = 0;                   // the height it keeps from the work area
    };
    // The tool tip as shown: its owner, place and picture (an offscreen
    // surface); owner 0 when hidden.
    struct ToolTip {
        HWND owner = 0;
        SRect rect;
        SImage picture;
        int shown = 0; // how many times it was shown
    };

    // A hosted child as the platform holds it.
    struct HostedChild {
        HWND top = 0;
        void* widget = nullptr;
        SRect rect; // surface coordinates
        bool visible = false;
        bool focused = false;
        int moves = 0; // how many times it was placed
    };

    // A tray icon as the platform holds it.
    struct TrayIcon {
        SImage icon;
        SString iconName;
        SString tip;
        std::vector<STrayMenuItem> menu;
        int menuUpdates = 0; // how many times the menu was given
        int popups = 0;      // how many times PopupTrayMenu showed it
    };

    SHeadlessPlatform();
    ~SHeadlessPlatform() override;

    bool CreateSurface(HWND hwnd, const SRect& rect, const char* title) override;
    void DestroySurface(HWND hwnd) override;
    void ShowSurface(HWND hwnd, int command) override;
    void MoveSurface(HWND hwnd, const SRect& rect) override;
    void SetSurfaceTitle(HWND hwnd, const char* title) override;
    void SetSurfaceAlpha(HWND hwnd, int alpha) override;
    void SetSurfaceFullScreen(HWND hwnd, bool on) override;
    void InvalidateSurface(HWND hwnd, const SRect& area) override;
    void CaptureMouse(HWND hwnd) override;
    void SetSurfaceCursor(HWND hwnd, int cursorIndex) override;
    void SetSurfaceLimits(HWND hwnd, const SSize& minimum, const SSize& maximum) override;
    void ShowToolTip(HWND owner, const SRect& rect, const SImage& picture) override;
    void HideToolTip() override;
    bool CreatePopupSurface(HWND hwnd, const SRect& rect) override;
    bool SetClipboardText(const char* text) override;
    SString GetClipboardText() override;
    bool SetClipboardData(const char* format, const std::vector<uint8_t>& data) override;
    bool GetClipboardData(const char* format, std::vector<uint8_t>* data) override;
    // Posts the key, down then up, to the focus window of the calling
    // thread (when it has one), and notes the code in GetPressedKeys.
    bool PressKey(unsigned code) override;
    bool GetScreenRect(SRect* rect) override;
    bool GetWorkArea(SRect* rect) override;
    double GetDpi() override { return 96.0; }
    unsigned GetModifiers() override;
    SPoint GetPointer() override;
    void ImFocus(HWND top, bool in) override;
    void ImSetCursor(HWND top, const SRect& caret) override;
    void ImReset(HWND top) override;
    // Takes the oldest queued answer (a cancel when none is queued) and
    // notes the request.
    bool RunChooser(HWND owner, const SChooserRequest& request, SChooserAnswer* answer) override;
    bool HostChild(HWND owner, HWND top, void* widget) override;
    void MoveHostedChild(HWND owner, const SRect& rect) override;
    void ShowHostedChild(HWND owner, bool show) override;
    void FocusHostedChild(HWND owner, bool focus) override;
    void DestroyHostedChild(HWND owner) override;
    // Tray icons: recorded while the desktop has a notification area
    // (SetTrayAvailable, on at first); without one, AddTrayIcon gives false.
    bool AddTrayIcon(int tray, const SImage& icon, const char* iconName, const char* tip) override;
    void SetTrayIcon(int tray, const SImage& icon, const char* iconName) override;
    void SetTrayTip(int tray, const char* tip) override;
    void SetTrayMenu(int tray, const std::vector<STrayMenuItem>& items) override;
    bool PopupTrayMenu(int tray) override;
    void RemoveTrayIcon(int tray) override;
    void SetTrayAvailable(bool available);
    // Docking: the work area's bottom less the bar, which shrinks the work
    // area by the bar's height while the desktop keeps space for bars
    // (SetDockSupport, RESERVED at first); ABOVE keeps the work area, NONE
    // refuses to dock.
    SDockState DockSurface(HWND hwnd, int height, SRect* placed) override;
    bool UndockSurface(HWND hwnd) override;
    void SetDockSupport(SDockState support);
    // Whether the platform shows the menu for PopupTrayMenu (on at first);
    // off, as a platform that leaves it to the program.
    void SetTrayPopupAvailable(bool available);
    // A copy of the tray icon's record; false when it is not shown.
    bool GetTrayIcon(int tray, TrayIcon* icon) const;
    // The user: an event on the icon, a pick in its menu; both dispatch
    // the queue.
    void TrayAction(int tray, STrayEvent event);
    void TrayPick(int tray, int id);
    // A copy of the hosted child over owner; false when there is none.
    bool GetHostedChild(HWND owner, HostedChild* child) const;

    // Scripting. Points are in the top-level surface's coordinates (the
    // client's unless the window has a menu bar); each
    // call posts what the real platform would, then dispatches the queue.
    void MoveMouse(HWND top, int x, int y, unsigned keyFlags = 0);
    void Press(HWND top, int x, int y, unsigned downMessage = WM_LBUTTONDOWN);
    void Release(HWND top, int x, int y, unsigned upMessage = WM_LBUTTONUP);
    void Click(HWND top, int x, int y);
    // A turn of a wheel, 120 a notch, positive away from the user (or to
    // the right on the horizontal wheel).
    void Wheel(HWND top, int x, int y, int delta, bool horizontal = false);
    // A key press with the given SKeyboard modifier bits held.
    void Key(HWND top, unsigned code, unsigned modifiers = 0);
    void SetModifiers(unsigned modifiers);
    void SetWorkArea(const SRect& area);
    void SetScreenRect(const SRect& area);
    // The user resizes a top-level window; as a window manager does, the
    // size is first kept inside the limits the window gave.
    void Resize(HWND top, int width, int height);
    // The input method: commits text (UTF-8) as the user's method would,
    // or shows a composition in progress; both dispatch the queue.
    void CommitText(HWND top, const char* text);
    void Preedit(HWND top, const char* text, int caret);
    // What windows told the input method: the surface it has the focus of
    // (0 none), the last caret place, and how many resets it had.
    struct ImState {
        HWND focus = 0;
        SRect caret;
        int resets = 0;
    };
    ImState GetImState() const;
    // Choosers: answers given in order, and the requests seen.
    void QueueChooserAnswer(const SChooserAnswer& answer);
    std::vector<SChooserRequest> GetChooserRequests() const;
    // The keys PressKey typed, oldest first.
    std::vector<unsigned> GetPressedKeys() const;
    // A copy of the tool tip as it stands.
    ToolTip GetToolTip() const;

    // The frame a top-level window shows now, painted into picture.
    bool Snapshot(HWND top, SImage* picture);
    // What a display does when it draws: the frame of top onto the
    // surface's screen picture (kept between frames), clipped to the area
    // asked for since the last frame, which it returns (empty: no frame).
    SRect PresentFrame(HWND top);
    // The screen picture of top as the frames presented so far left it.
    bool GetScreen(HWND top, SImage* picture);
    // A copy of a surface's record; false for an unknown one.
    bool GetSurface(HWND top, Surface* surface);
    HWND GetCaptured() const { return captured; }

    // Dispatches every queued message of the calling thread (timers
    // included); returns how many ran.
    static int DispatchPending();
    // The fake message clock: starts at 1,000,000 ms and moves only by
    // AdvanceClock. UseFakeClock(false) restores the real one.
    static void UseFakeClock(bool fake);
    static void AdvanceClock(uint64_t milliseconds);

private:
    void ClearDamage(HWND top);

    mutable std::mutex mutex;
    std::map<HWND, Surface> surfaces;
    std::map<HWND, cairo_surface_t*> screens; // of PresentFrame
    SString clipboard;
    SString clipboardFormat; // empty: the clipboard holds text
    std::vector<uint8_t> clipboardData;
    std::vector<unsigned> pressedKeys;
    ToolTip toolTip;
    SRect workArea{0, 0, 1280, 770};
    SRect screen{0, 0, 1280, 800};
    unsigned modifiers = 0;
    SPoint pointer;
    HWND captured = 0;
    ImState imState;
    std::deque<SChooserAnswer> chooserAnswers;
    std::vector<SChooserRequest> chooserRequests;
    std::map<HWND, HostedChild> hostedChildren;
    std::map<int, TrayIcon> trayIcons;
    bool trayAvailable = true;
    bool trayPopupAvailable = true;
    SDockState dockSupport = SDockState::RESERVED;
};
