// The way in from the platform: input of a top-level surface is routed to
// the window of the tree under the pointer (or the capture, or the focus)
// and posted, so that it passes through the thread's loop.
#include "toolkit/platform/events.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "toolkit/hosted_child.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_internal.h"

namespace {

// The non-client form of a client mouse message, 0 when there is none.
unsigned NonClientOf(unsigned message) {
    switch (message) {
    case WM_MOUSEMOVE: return WM_NCMOUSEMOVE;
    case WM_LBUTTONDOWN: return WM_NCLBUTTONDOWN;
    case WM_LBUTTONUP: return WM_NCLBUTTONUP;
    case WM_RBUTTONDOWN: return WM_NCRBUTTONDOWN;
    case WM_RBUTTONUP: return WM_NCRBUTTONUP;
    case WM_MBUTTONDOWN: return WM_NCMBUTTONDOWN;
    case WM_MBUTTONUP: return WM_NCMBUTTONUP;
    default: return 0;
    }
}

void EndTracking(HWND keep, bool nonClient) {
    ThreadWindowState& state = ThreadState();
    HWND& tracked = nonClient ? state.trackedNonClient : state.tracked;
    if (tracked != 0 && tracked != keep) {
        HWND old = tracked;
        tracked = 0;
        PostMessage(old, nonClient ? WM_NCMOUSELEAVE : WM_MOUSELEAVE, 0, 0);
    }
}

// The keys held now, by virtual key code; written on the window thread,
// read by any.
std::atomic<bool> heldKeys[256];

void SetKeyHeld(unsigned message, unsigned code) {
    if (code >= 256) {
        return;
    }
    if (message == WM_KEYDOWN || message == WM_SYSKEYDOWN) {
        heldKeys[code] = true;
    } else if (message == WM_KEYUP || message == WM_SYSKEYUP) {
        heldKeys[code] = false;
    }
}

// The double click of a press message, 0 for other messages.
unsigned DoubleClickOf(unsigned message) {
    switch (message) {
    case WM_LBUTTONDOWN: return WM_LBUTTONDBLCLK;
    case WM_RBUTTONDOWN: return WM_RBUTTONDBLCLK;
    case WM_MBUTTONDOWN: return WM_MBUTTONDBLCLK;
    default: return 0;
    }
}

// A press on wnd at a screen point: the double click when the last press
// was of the same button on the same window, soon and near enough, and the
// class asks for double clicks. A double click is not the first press of
// another one.
unsigned PressMessage(SWnd* wnd, unsigned message, SPoint screen) {
    unsigned twice = DoubleClickOf(message);
    if (twice == 0) {
        return message;
    }
    ThreadWindowState::Press& last = ThreadState().lastPress;
    uint64_t now = GetMessageClock();
    unsigned milliseconds = 500;
    int distance = 2;
    GetPlatform()->GetDoubleClick(&milliseconds, &distance);
    bool isDouble = (wnd->GetClassStyle() & CS_DBLCLKS) != 0 && last.hwnd == wnd->GetHandle() &&
                    last.message == message && now - last.time <= milliseconds &&
                    std::abs(screen.x - last.screen.x) <= distance &&
                    std::abs(screen.y - last.screen.y) <= distance;
    if (isDouble) {
        last = ThreadWindowState::Press();
        return twice;
    }
    last = ThreadWindowState::Press{wnd->GetHandle(), message, now, screen};
    return message;
}

// A point of a top-level surface (window coordinates) in screen and in the
// top-level's client coordinates; true when it lies in the client area.
bool SurfacePoint(SWnd* top, int x, int y, SPoint* screen, SPoint* client) {
    SRect window = top->GetWindowRect();
    *screen = SPoint{window.left + x, window.top + y};
    *client = *screen;
    top->ScreenToClient(client);
    return top->GetClientRect().Contains(*client);
}

} // namespace

bool IsKeyHeld(unsigned code) {
    return code < 256 && heldKeys[code].load();
}

void PlatformMouse(HWND top, unsigned message, int x, int y, unsigned keyFlags) {
    SWnd* topWnd = SWnd::FromHandle(top);
    if (topWnd == nullptr) {
        return;
    }
    SPoint screen;
    SPoint topClient;
    bool inClient = SurfacePoint(topWnd, x, y, &screen, &topClient);
    HWND target = GetCapture();
    bool nonClient = false;
    WPARAM hitTest = 0;
    if (target == 0 && !inClient) {
        // The top-level's own frame: its menu bar.
        target = top;
        nonClient = true;
        hitTest = topWnd->GetMenu() != nullptr ? HTMENU : 0;
    } else if (target == 0) {
        target = topWnd->ChildFromPoint(topClient);
        SWnd* wnd = SWnd::FromHandle(target);
        if (wnd != nullptr) {
            SPoint inner = screen;
            wnd->ScreenToClient(&inner);
            nonClient = !wnd->GetClientRect().Contains(inner);
        }
    }
    SWnd* wnd = SWnd::FromHandle(target);
    if (wnd == nullptr) {
        return;
    }
    EndTracking(nonClient ? 0 : target, false);
    EndTracking(nonClient ? target : 0, true);
    if (message == WM_MOUSEMOVE) {
        SendMessage(target, WM_SETCURSOR, target, 0);
    }
    if (nonClient && NonClientOf(message) != 0) {
        PostMessage(target, NonClientOf(message), hitTest, MakePointParam(screen.x, screen.y));
        return;
    }
    SPoint client = screen;
    wnd->ScreenToClient(&client);
    message = PressMessage(wnd, message, screen);
    PostMessage(target, message, keyFlags, MakePointParam(client.x, client.y));
}

void PlatformWheel(HWND top, int x, int y, int delta, bool horizontal, unsigned keyFlags) {
    SWnd* topWnd = SWnd::FromHandle(top);
    if (topWnd == nullptr || delta == 0) {
        return;
    }
    SPoint screen;
    SPoint topClient;
    bool inClient = SurfacePoint(topWnd, x, y, &screen, &topClient);
    HWND target = GetCapture();
    if (target == 0) {
        target = inClient ? topWnd->ChildFromPoint(topClient) : top;
    }
    delta = std::clamp(delta, -32768, 32767);
    PostMessage(target, horizontal ? WM_MOUSEHWHEEL : WM_MOUSEWHEEL,
                MakeWheelParam(keyFlags, delta), MakePointParam(screen.x, screen.y));
}

void PlatformMouseLeave(HWND top) {
    ThreadWindowState& state = ThreadState();
    for (HWND* tracked : {&state.tracked, &state.trackedNonClient}) {
        SWnd* wnd = SWnd::FromHandle(*tracked);
        if (wnd != nullptr && wnd->GetTopWindow() == top && GetCapture() == 0) {
            EndTracking(0, tracked == &state.trackedNonClient);
        }
    }
}

void PlatformKey(HWND top, unsigned message, unsigned code) {
    SetKeyHeld(message, code);
    HWND target = GetFocus();
    SWnd* focus = SWnd::FromHandle(target);
    if (focus == nullptr || focus->GetTopWindow() != top) {
        target = top;
    }
    PostMessage(target, message, code, 0);
}

void PlatformFocus(HWND top, bool gained) {
    SWnd* focus = SWnd::FromHandle(GetFocus());
    if (gained) {
        if (focus == nullptr || focus->GetTopWindow() != top) {
            SetFocus(top);
        }
    } else if (focus != nullptr && focus->GetTopWindow() == top) {
        SetFocus(0);
    }
    if (!gained) {
        // Keys released while another program has the focus never come back.
        for (std::atomic<bool>& key : heldKeys) {
            key = false;
        }
    }
}

void PlatformResized(HWND top, int width, int height, unsigned kind) {
    SWnd* wnd = SWnd::FromHandle(top);
    if (wnd == nullptr) {
        return;
    }
    SRect rect = wnd->GetRect();
    if (kind == SIZE_MINIMIZED) {
        wnd->Minimize();
        return;
    }
    if (kind == SIZE_MAXIMIZED && !wnd->IsMaximized()) {
        wnd->Maximize();
    }
    if (kind == SIZE_RESTORED && (wnd->IsMaximized() || wnd->IsMinimized())) {
        wnd->Restore(false);
    }
    if (rect.Width() != width || rect.Height() != height) {
        wnd->MoveWindow(SRect{rect.left, rect.top, rect.left + width, rect.top + height});
    }
}

void PlatformMoved(HWND top, int x, int y) {
    SWnd* wnd = SWnd::FromHandle(top);
    if (wnd == nullptr) {
        return;
    }
    SRect rect = wnd->GetRect();
    if (rect.left != x || rect.top != y) {
        wnd->MoveWindow(SRect{x, y, x + rect.Width(), y + rect.Height()}, false);
    }
}

void PlatformClose(HWND top) {
    SendMessage(top, WM_CLOSE, 0, 0);
}

void PlatformPaint(HWND top, cairo_t* cr, int width, int height) {
    SWnd* wnd = SWnd::FromHandle(top);
    if (wnd != nullptr) {
        wnd->PaintSurface(cr, width, height);
        SyncHostedChildren(top);
    }
}

void PlatformDropFiles(HWND top, int x, int y, SStringArray* files) {
    SWnd* topWnd = SWnd::FromHandle(top);
    if (topWnd == nullptr || files == nullptr) {
        return;
    }
    SPoint screen;
    SPoint client;
    if (!SurfacePoint(topWnd, x, y, &screen, &client)) {
        return;
    }
    SWnd* wnd = SWnd::FromHandle(topWnd->ChildFromPoint(client));
    while (wnd != nullptr && (wnd->GetExStyle() & WS_EX_ACCEPTFILES) == 0) {
        wnd = wnd->GetParentWnd();
    }
    if (wnd != nullptr) {
        SendMessage(wnd->GetHandle(), WM_DROPFILES, reinterpret_cast<WPARAM>(files), 0);
    }
}

void PlatformImCommit(HWND top, const char* text) {
    if (text == nullptr) {
        return;
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    while (*bytes != 0) {
        unsigned first = *bytes;
        int length = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 0;
        unsigned code = length == 1 ? first : length == 2 ? first & 0x1F : length == 3 ? first & 0x0F : first & 0x07;
        int taken = 1;
        for (; taken < length && (bytes[taken] & 0xC0) == 0x80; ++taken) {
            code = (code << 6) | (bytes[taken] & 0x3F);
        }
        if (length > 0 && taken == length) {
            PlatformKey(top, WM_CHAR, code);
        }
        bytes += taken; // a broken sequence is skipped
    }
}

void PlatformImPreedit(HWND top, const char* text, int caret) {
    HWND target = GetFocus();
    SWnd* focus = SWnd::FromHandle(target);
    if (focus == nullptr || focus->GetTopWindow() != top) {
        return;
    }
    SendMessage(target, SM_IME_PREEDIT, reinterpret_cast<WPARAM>(text != nullptr ? text : ""),
                caret);
}
void PlatformHostedFocus(HWND owner) {
    if (SWnd::FromHandle(owner) != nullptr && GetFocus() != owner) {
        SetFocus(owner);
    }
}
