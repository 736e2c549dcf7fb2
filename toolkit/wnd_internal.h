// State of the window core kept per thread, shared by its sources. Not a
// public header of the toolkit.
#pragma once

#include "foundation/message.h"

struct ThreadWindowState {
    HWND focus = 0;
    HWND capture = 0;
    HWND tracked = 0;          // leave tracking of the client area
    HWND trackedNonClient = 0; // leave tracking of a frame
    // The window each button went down on: [client, non-client][left,
    // middle, right].
    HWND clickDown[2][3] = {};
};

ThreadWindowState& ThreadState();
