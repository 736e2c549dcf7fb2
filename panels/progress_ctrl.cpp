#include "panels/progress_ctrl.h"

#include <algorithm>

#include "panels/panel_host.h"
#include "panels/resources.h"
#include "toolkit/sys_colors.h"

namespace {

// The rounded end of each bar picture, in its own pixels, kept unstretched.
constexpr int BAR_END = 4;

} // namespace

PProgressCtrl::PProgressCtrl(PPanelHost* host) : host(host) {
    EnsurePanelsResources();
    const unsigned ids[3] = {RESOURCE_SEEK_EMPTY, RESOURCE_SEEK_FILLED, RESOURCE_SEEK_HOVER};
    for (int i = 0; i < 3; ++i) {
        bars[i].LoadResource("BINARY", ids[i]);
        bars[i].drawMode = DRAW_STRETCH;
    }
}

int PProgressCtrl::PositionAt(int x) const {
    int width = GetClientWidth();
    int range = maximum - minimum;
    if (width <= 0 || range <= 0) {
        return minimum;
    }
    x = std::clamp(x, 0, width);
    return minimum + static_cast<int>(static_cast<int64_t>(x) * range / width);
}

int PProgressCtrl::PixelAt(int position) const {
    int range = maximum - minimum;
    if (range <= 0) {
        return 0;
    }
    position = std::clamp(position, minimum, maximum) - minimum;
    return static_cast<int>(static_cast<int64_t>(position) * GetClientWidth() / range);
}

void PProgressCtrl::DrawBar(cairo_t* cr, const SImage& bar, int left, int right) const {
    if (!bar.IsValid() || right <= left) {
        return;
    }
    int height = GetClientHeight();
    int barWidth = bar.GetWidth();
    int end = std::min(BAR_END, barWidth / 2);
    if (right - left < 2 * end) {
        SRect target{left, 0, right, height};
        bar.Draw(cr, &target);
        return;
    }
    // Left end, stretched middle, right end.
    SRect leftSource{0, 0, end, bar.GetHeight()};
    SRect leftTarget{left, 0, left + end, height};
    bar.Draw(cr, &leftTarget, &leftSource);
    SRect middleSource{end, 0, barWidth - end, bar.GetHeight()};
    SRect middleTarget{left + end, 0, right - end, height};
    bar.Draw(cr, &middleTarget, &middleSource);
    SRect rightSource{barWidth - end, 0, barWidth, bar.GetHeight()};
    SRect rightTarget{right - end, 0, right, height};
    bar.Draw(cr, &rightTarget, &rightSource);
}

void PProgressCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    PaintBackground(cr, client.Width(), client.Height());
    DrawBar(cr, bars[0], 0, client.Width());
    if (maximum - minimum == 0) {
        return;
    }
    int fill = PixelAt(value);
    DrawBar(cr, bars[1], 0, fill);
    if (hoverPosition >= 0) {
        int hover = PixelAt(hoverPosition);
        DrawBar(cr, bars[2], std::min(fill, hover), std::max(fill, hover));
    }
}

void PProgressCtrl::SetHover(int position) {
    if (maximum - minimum == 0) {
        position = -1;
    }
    if (position == hoverPosition) {
        return;
    }
    hoverPosition = position;
    Invalidate(nullptr);
}

void PProgressCtrl::Seek(int position) {
    SetValue(position);
    Invalidate(nullptr);
    if (host != nullptr) {
        host->SeekSeconds(position);
    }
}

LRESULT PProgressCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: { // a second press soon after the first seeks too
        int position = PositionAt(PointParamX(lParam));
        SetHover(position);
        if (maximum - minimum > 0) {
            dragging = true;
            pressPosition = position;
            SetCapture(GetHandle());
        }
        HWND own = GetHandle();
        Seek(position);
        if (GetHandle() != own) {
            return 0;
        }
        break;
    }
    case WM_MOUSEMOVE:
        SetHover(PositionAt(PointParamX(lParam)));
        break;
    case WM_LBUTTONUP:
        if (dragging) {
            dragging = false;
            if (GetCapture() == GetHandle()) {
                ReleaseCapture();
            }
            // A press dragged along the bar seeks where it is let go.
            int position = PositionAt(PointParamX(lParam));
            if (position != pressPosition) {
                Seek(position);
            }
            pressPosition = -1;
            SPoint point{PointParamX(lParam), PointParamY(lParam)};
            if (!GetClientRect().Contains(point)) {
                SetHover(-1);
            }
        }
        break;
    case WM_CAPTURECHANGED:
        dragging = false;
        break;
    case SM_MOUSE_LEAVE:
        if (!dragging) {
            SetHover(-1);
        }
        break;
    default:
        break;
    }
    return SProgressCtrl::OnMessage(message, wParam, lParam);
}
