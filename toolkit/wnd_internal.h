// State of the window core kept per thread, shared by its sources. Not a
// public header of the toolkit.
#pragma once

#include "foundation/message.h"
#include "toolkit/wnd.h"

typedef struct _cairo_surface cairo_surface_t;
typedef struct _cairo_region cairo_region_t;

// The painting state of a top-level window: its back buffer, kept between
// frames, and the region waiting to be repainted, in surface coordinates.
struct SWnd::SurfaceFrame {
    SurfaceFrame();
    ~SurfaceFrame();
    SurfaceFrame(const SurfaceFrame&) = delete;
    SurfaceFrame& operator=(const SurfaceFrame&) = delete;
    cairo_surface_t* buffer = nullptr;
    int width = 0;
    int height = 0;
    cairo_region_t* invalid = nullptr;
};

struct ThreadWindowState {
    HWND focus = 0;
    HWND capture = 0;
    HWND tracked = 0;          // leave tracking of the client area
    HWND trackedNonClient = 0; // leave tracking of a frame
    // The window each button went down on: [client, non-client][left,
    // middle, right].
    HWND clickDown[2][3] = {};
    // The last press in a client area, for double clicks.
    struct Press {
        HWND hwnd = 0;
        unsigned message = 0;
        uint64_t time = 0;
        SPoint screen;
    } lastPress;
};

ThreadWindowState& ThreadState();

// Tool tips (tooltip.cpp), driven from slot 19 and the window's life.
class SWnd;
// The pointer moved to point (client coordinates) of wnd.
void ToolTipMouseMove(SWnd* wnd, int x, int y);
// A click or a key on hwnd: its tip goes and stays away until the pointer
// leaves the window.
void ToolTipDismiss(HWND hwnd);
// The pointer left hwnd, or hwnd is destroyed or lost its tip: the tip goes
// and hwnd is no longer followed.
void ToolTipForget(HWND hwnd);
