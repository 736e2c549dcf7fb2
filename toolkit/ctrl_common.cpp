#include "toolkit/ctrl_common.h"

#include <cairo.h>
#include <cmath>
#include <pango/pangocairo.h>

#include "toolkit/draw.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd_app.h"

namespace ctrldraw {

void Expander(cairo_t* cr, double cx, double cy, bool open, uint32_t color) {
    SetSourceColor(cr, color);
    if (open) {
        cairo_move_to(cr, cx - 4, cy - 2);
        cairo_line_to(cr, cx + 4, cy - 2);
        cairo_line_to(cr, cx, cy + 3);
    } else {
        cairo_move_to(cr, cx - 2, cy - 4);
        cairo_line_to(cr, cx + 3, cy);
        cairo_line_to(cr, cx - 2, cy + 4);
    }
    cairo_close_path(cr);
    cairo_fill(cr);
}

void SetSource(cairo_t* cr, uint32_t color) {
    SetSourceColor(cr, color);
}

uint32_t Mix(uint32_t a, uint32_t b, int amount) {
    uint32_t result = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        int from = static_cast<int>((a >> shift) & 0xFF);
        int to = static_cast<int>((b >> shift) & 0xFF);
        result |= static_cast<uint32_t>(from + (to - from) * amount / 255) << shift;
    }
    return result;
}

int Text(cairo_t* cr, const SFont* font, const char* text, const SRect& rect, uint32_t color,
         SAlign align) {
    if (text == nullptr || *text == 0 || rect.Width() <= 0 || rect.Height() <= 0) {
        return 0;
    }
    PangoLayout* layout = MakeTextLayout(cr, font, text, -1);
    pango_layout_set_single_paragraph_mode(layout, TRUE);
    if (align == SAlign::JUSTIFY) {
        pango_layout_set_width(layout, rect.Width() * PANGO_SCALE);
        pango_layout_set_justify(layout, TRUE);
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    }
    int width = 0, height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    int x = rect.left;
    if (align == SAlign::CENTER) {
        x = rect.left + (rect.Width() - width) / 2;
    } else if (align == SAlign::RIGHT) {
        x = rect.right - width;
    }
    int y = align == SAlign::JUSTIFY ? rect.top : rect.top + (rect.Height() - height) / 2;
    cairo_save(cr);
    cairo_rectangle(cr, rect.left, rect.top, rect.Width(), rect.Height());
    cairo_clip(cr);
    SetSource(cr, color);
    cairo_move_to(cr, x, y);
    pango_cairo_show_layout(cr, layout);
    cairo_restore(cr);
    g_object_unref(layout);
    return width;
}

int TextWidth(const SFont* font, const char* text, int count) {
    if (text == nullptr || count == 0) {
        return 0;
    }
    return TextSize(font, text, count).width;
}

void Fill(cairo_t* cr, const SRect& rect, uint32_t color) {
    SetSource(cr, color);
    cairo_rectangle(cr, rect.left, rect.top, rect.Width(), rect.Height());
    cairo_fill(cr);
}

void RoundBox(cairo_t* cr, const SRect& rect, double radius, uint32_t fill, uint32_t line) {
    double x = rect.left + 0.5, y = rect.top + 0.5;
    double w = rect.Width() - 1.0, h = rect.Height() - 1.0;
    if (w <= 0 || h <= 0) {
        return;
    }
    radius = std::min(radius, std::min(w, h) / 2);
    cairo_new_path(cr);
    cairo_arc(cr, x + w - radius, y + radius, radius, -M_PI / 2, 0);
    cairo_arc(cr, x + w - radius, y + h - radius, radius, 0, M_PI / 2);
    cairo_arc(cr, x + radius, y + h - radius, radius, M_PI / 2, M_PI);
    cairo_arc(cr, x + radius, y + radius, radius, M_PI, 3 * M_PI / 2);
    cairo_close_path(cr);
    if (fill != 0xFF000000u) {
        SetSource(cr, fill);
        cairo_fill_preserve(cr);
    }
    if (line != 0xFF000000u) {
        SetSource(cr, line);
        cairo_set_line_width(cr, 1);
        cairo_stroke_preserve(cr);
    }
    cairo_new_path(cr);
}

void FocusFrame(cairo_t* cr, const SRect& rect) {
    if (rect.Width() < 3 || rect.Height() < 3) {
        return;
    }
    cairo_save(cr);
    SetSource(cr, GetSysColor(SYS_COLOR_HIGHLIGHT));
    double dashes[] = {2.0, 2.0};
    cairo_set_dash(cr, dashes, 2, 0);
    cairo_set_line_width(cr, 1);
    cairo_rectangle(cr, rect.left + 0.5, rect.top + 0.5, rect.Width() - 1.0, rect.Height() - 1.0);
    cairo_stroke(cr);
    cairo_restore(cr);
}

} // namespace ctrldraw

const SFont* WindowFont(const SWnd* window) {
    const SFont* font = nullptr;
    if (window != nullptr && window->GetHandle() != 0) {
        font = reinterpret_cast<const SFont*>(SendMessage(window->GetHandle(), WM_GETFONT, 0, 0));
    }
    return font != nullptr ? font : GetDefaultFont();
}

bool SCtrlBase::HasFocus() const {
    return GetHandle() != 0 && GetFocus() == GetHandle();
}

LRESULT SCtrlBase::Notify(unsigned message, LPARAM lParam) const {
    HWND parent = GetParent();
    if (parent == 0) {
        return 0;
    }
    return SendMessage(parent, message, reinterpret_cast<WPARAM>(this), lParam);
}

bool SCtrlBase::PreMessage(unsigned message, WPARAM* wParam, LPARAM* lParam, LRESULT* result) {
    // The focus moves before the window core notes the press: the window
    // that loses it forgets the presses it saw, and this one's press must
    // still end in a click.
    bool press = message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK ||
                 (message == WM_RBUTTONDOWN && FocusOnRightPress());
    if (press && IsEnabled() && TakesFocus() && !HasFocus()) {
        SetFocus(GetHandle());
    }
    return SWnd::PreMessage(message, wParam, lParam, result);
}

LRESULT SCtrlBase::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    unsigned code = MouseEventCode(message);
    if (code != 0) {
        SMouseEvent event;
        event.code = code;
        event.client = SPoint{PointParamX(lParam), PointParamY(lParam)};
        event.screen = event.client;
        ClientToScreen(&event.screen);
        Notify(eventMessage, reinterpret_cast<LPARAM>(&event));
        if (GetHandle() == 0) {
            return 0;
        }
    }
    switch (message) {
    case WM_PAINT:
        Paint(reinterpret_cast<cairo_t*>(wParam));
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case SM_MOUSE_ENTER:
        hovered = true;
        Invalidate(nullptr);
        break;
    case SM_MOUSE_LEAVE:
        hovered = false;
        Invalidate(nullptr);
        break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_ENABLE:
    case WM_SETTEXT:
    case WM_SETFONT:
    case WM_SIZE: {
        LRESULT result = SWnd::OnMessage(message, wParam, lParam);
        Invalidate(nullptr);
        return result;
    }
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
