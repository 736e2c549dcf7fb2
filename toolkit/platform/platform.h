// SPlatform: everything the window core asks of the windowing system. Only
// top-level windows are platform surfaces; the toolkit draws every child.
// Events come back through the functions of events.h. Two implementations:
// headless (the default, offscreen) and gtk (melkora_toolkit_gtk).
#pragma once

#include <cstdint>

#include "foundation/geometry.h"
#include "foundation/message.h"
#include "foundation/string.h"

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
    // Asks for a new frame; the platform calls PlatformPaint when it draws.
    virtual void InvalidateSurface(HWND hwnd) = 0;
    // Mouse grab for the surface (0 releases).
    virtual void CaptureMouse(HWND hwnd) = 0;
    // The cursor shown over the surface: an index of the cursor table, -1
    // for none.
    virtual void SetSurfaceCursor(HWND hwnd, int cursorIndex) = 0;

    // The desktop.
    virtual bool SetClipboardText(const char* text) = 0;
    virtual SString GetClipboardText() = 0;
    virtual bool GetScreenRect(SRect* rect) = 0;
    virtual bool GetWorkArea(SRect* rect) = 0;
    // Dots per inch of the screen.
    virtual double GetDpi() = 0;
    // SKeyboard::MODIFIER_* bits held now.
    virtual unsigned GetModifiers() = 0;
    // The pointer in screen coordinates.
    virtual SPoint GetPointer() = 0;
};

// The platform in use; the headless one until SetPlatform. The toolkit owns
// it: SetPlatform deletes the previous one. Call before ToolkitStart.
SPlatform* GetPlatform();
void SetPlatform(SPlatform* platform);
