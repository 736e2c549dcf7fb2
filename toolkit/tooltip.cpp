// Tool tips. One tracker a thread follows the window under the pointer:
// when the pointer rests on a window whose tips are on and that has a tip
// text, the tip shows after SHOW_DELAY, below the pointer, and goes after
// HIDE_DELAY, at a click or a key on the window, or when the pointer leaves
// it. A tip that went stays away until the pointer leaves that window. The
// toolkit paints the tip (the tool tip colours, the status font, lines
// wrapped at TIP_WIDTH pixels); the platform shows the picture.
#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <memory>

#include "toolkit/draw.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"
#include "toolkit/wnd_internal.h"

namespace {

constexpr unsigned SHOW_DELAY = 500;  // milliseconds of rest before the tip shows
constexpr unsigned HIDE_DELAY = 5000; // milliseconds the tip stays
constexpr int TIP_WIDTH = 300;        // the width at which lines wrap
constexpr int MARGIN = 4;             // text to border
constexpr int BELOW_POINTER = 20;     // the tip's top below the pointer
constexpr uintptr_t TIMER_SHOW = 1;
constexpr uintptr_t TIMER_HIDE = 2;

void SetColor(cairo_t* cr, uint32_t color) {
    cairo_set_source_rgb(cr, (color & 0xFF) / 255.0, ((color >> 8) & 0xFF) / 255.0,
                         ((color >> 16) & 0xFF) / 255.0);
}

// The tip's picture: text in a box of the tool tip colours.
bool PaintTip(const SString& text, SImage* picture) {
    SFont* font = GetSystemFont(3);
    cairo_surface_t* scratch = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    cairo_t* measure = cairo_create(scratch);
    PangoLayout* layout = pango_cairo_create_layout(measure);
    SetLayoutFont(layout, font);
    pango_layout_set_width(layout, TIP_WIDTH * PANGO_SCALE);
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_text(layout, text.c_str(), -1);
    int textWidth = 0, textHeight = 0;
    pango_layout_get_pixel_size(layout, &textWidth, &textHeight);
    int width = std::min(textWidth, TIP_WIDTH) + 2 * MARGIN + 2;
    int height = textHeight + 2 * MARGIN + 2;

    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* cr = cairo_create(surface);
    SetColor(cr, GetSysColor(SYS_COLOR_INFOBK));
    cairo_paint(cr);
    SetColor(cr, GetSysColor(SYS_COLOR_INFOTEXT));
    cairo_set_line_width(cr, 1.0);
    cairo_rectangle(cr, 0.5, 0.5, width - 1, height - 1);
    cairo_stroke(cr);
    cairo_move_to(cr, MARGIN + 1, MARGIN + 1);
    pango_cairo_update_layout(cr, layout);
    pango_cairo_show_layout(cr, layout);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    bool loaded = picture->LoadSurface(surface, 0, 0);
    cairo_surface_destroy(surface);
    g_object_unref(layout);
    cairo_destroy(measure);
    cairo_surface_destroy(scratch);
    return loaded;
}

class ToolTipTracker : public SMessageTarget {
public:
    ~ToolTipTracker() override {
        if (handle != 0 && FindTarget(handle) == this) {
            UnregisterTarget(handle);
        }
    }

    void MouseMove(SWnd* wnd, int x, int y) {
        HWND hwnd = wnd->GetHandle();
        if (!wnd->IsToolTipEnabled() || wnd->GetToolTipText().IsEmpty()) {
            if (owner != 0 && owner != hwnd) {
                Forget(owner);
            }
            return;
        }
        if (hwnd == dismissed) {
            return;
        }
        if (owner != hwnd) {
            Forget(owner);
            owner = hwnd;
        }
        pointer = SPoint{x, y};
        wnd->ClientToScreen(&pointer);
        if (!shown && Bind()) {
            SetTimer(handle, TIMER_SHOW, SHOW_DELAY); // restarts while the pointer moves
        }
    }

    void Dismiss(HWND hwnd) {
        if (hwnd == 0 || hwnd != owner) {
            return;
        }
        Hide();
        dismissed = hwnd;
    }

    void Forget(HWND hwnd) {
        if (hwnd == 0) {
            return;
        }
        if (hwnd == owner) {
            Hide();
            owner = 0;
        }
        if (hwnd == dismissed) {
            dismissed = 0;
        }
    }

    LRESULT HandleMessage(HWND, unsigned message, WPARAM wParam, LPARAM) override {
        if (message != WM_TIMER) {
            return 0;
        }
        KillTimer(handle, wParam);
        if (wParam == TIMER_SHOW) {
            Show();
        } else if (wParam == TIMER_HIDE) {
            Dismiss(owner);
        }
        return 0;
    }

private:
    // A handle on the thread's row, made again after the toolkit restarted.
    bool Bind() {
        if (handle != 0 && FindTarget(handle) == this) {
            return true;
        }
        handle = RegisterTarget(this);
        return handle != 0;
    }

    void Show() {
        SWnd* wnd = SWnd::FromHandle(owner);
        SImage picture;
        if (wnd == nullptr || !wnd->IsVisible() || !PaintTip(wnd->GetToolTipText(), &picture)) {
            return;
        }
        SRect rect{pointer.x, pointer.y + BELOW_POINTER, pointer.x + picture.GetWidth(),
                   pointer.y + BELOW_POINTER + picture.GetHeight()};
        SRect screen;
        if (GetPlatform()->GetScreenRect(&screen)) {
            // Kept on the screen; above the pointer when there is no room below.
            int dx = std::min(0, screen.right - rect.right);
            dx = std::max(dx, screen.left - rect.left);
            int dy = 0;
            if (rect.bottom > screen.bottom) {
                dy = pointer.y - rect.Height() - rect.top;
            }
            rect = SRect{rect.left + dx, rect.top + dy, rect.right + dx, rect.bottom + dy};
        }
        GetPlatform()->ShowToolTip(owner, rect, picture);
        shown = true;
        SetTimer(handle, TIMER_HIDE, HIDE_DELAY);
    }

    void Hide() {
        if (handle != 0 && FindTarget(handle) == this) {
            KillTimer(handle, TIMER_SHOW);
            KillTimer(handle, TIMER_HIDE);
        }
        if (shown) {
            shown = false;
            GetPlatform()->HideToolTip();
        }
    }

    HWND handle = 0;
    HWND owner = 0;     // the window followed
    HWND dismissed = 0; // a window whose tip went, until the pointer leaves it
    bool shown = false;
    SPoint pointer; // screen coordinates
};

ToolTipTracker& Tracker() {
    thread_local ToolTipTracker tracker;
    return tracker;
}

} // namespace

void ToolTipMouseMove(SWnd* wnd, int x, int y) {
    if (wnd != nullptr) {
        Tracker().MouseMove(wnd, x, y);
    }
}

void ToolTipDismiss(HWND hwnd) {
    Tracker().Dismiss(hwnd);
}

void ToolTipForget(HWND hwnd) {
    Tracker().Forget(hwnd);
}
