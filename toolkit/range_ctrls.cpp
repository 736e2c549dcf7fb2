#include "toolkit/range_ctrls.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>

#include "toolkit/sys_colors.h"

using namespace ctrldraw;

namespace {

constexpr int KNOB = 16;      // the slider's knob
constexpr int MIN_THUMB = 12; // the shortest scroll thumb

uint32_t FaceOf(const SWnd* window) {
    SWnd* parent = window->GetParentWnd();
    uint32_t back = parent != nullptr ? parent->GetBackColor() : 0xFF000000u;
    return (back & 0xFF000000u) != 0 ? GetSysColor(SYS_COLOR_BTNFACE) : back;
}

} // namespace

// SRangeCtrl

void SRangeCtrl::SetRange(int low, int high) {
    minimum = low;
    maximum = std::max(low, high);
    value = std::clamp(value, minimum, maximum);
    Invalidate(nullptr);
}

void SRangeCtrl::SetValue(int newValue) {
    newValue = std::clamp(newValue, minimum, maximum);
    if (newValue != value) {
        value = newValue;
        Invalidate(nullptr);
    }
}

void SRangeCtrl::SetSteps(int line, int page) {
    lineStep = std::max(1, line);
    pageStep = std::max(1, page);
    Invalidate(nullptr);
}

void SRangeCtrl::UserValue(int newValue) {
    int old = value;
    SetValue(newValue);
    if (value != old) {
        Notify(ChangeMessage(), value);
    }
}

bool SRangeCtrl::HandleKeyOrWheel(unsigned message, WPARAM wParam) {
    if (message == WM_MOUSEWHEEL) {
        HandleWheel(wParam);
        return true;
    }
    return message == WM_KEYDOWN && HandleKey(wParam);
}

int SRangeCtrl::ValueAtTravel(int at, int travel) const {
    int64_t span = maximum - minimum;
    return minimum + static_cast<int>((span * at + travel / 2) / travel);
}

bool SRangeCtrl::HandleKey(WPARAM key) {
    if (!IsEnabled()) {
        return false;
    }
    switch (key) {
    case ctrlkey::LEFT:
    case ctrlkey::UP:
        UserValue(value - lineStep);
        return true;
    case ctrlkey::RIGHT:
    case ctrlkey::DOWN:
        UserValue(value + lineStep);
        return true;
    case ctrlkey::PRIOR:
        UserValue(value - pageStep);
        return true;
    case ctrlkey::NEXT:
        UserValue(value + pageStep);
        return true;
    case ctrlkey::HOME:
        UserValue(minimum);
        return true;
    case ctrlkey::END:
        UserValue(maximum);
        return true;
    default:
        return false;
    }
}

bool SRangeCtrl::HandleWheel(WPARAM wParam) {
    if (!IsEnabled()) {
        return false;
    }
    int delta = WheelParamDelta(wParam);
    // A notch away from the user moves towards the minimum; a touchpad's
    // smaller steps add up to whole lines.
    int lines = -delta * 3 / WHEEL_DELTA;
    if (lines == 0 && delta != 0) {
        lines = delta > 0 ? -1 : 1;
    }
    UserValue(value + lines * lineStep);
    return true;
}

// SScrollCtrl

int SScrollCtrl::Thickness() const {
    return IsVertical() ? GetClientWidth() : GetClientHeight();
}

int SScrollCtrl::Length() const {
    return IsVertical() ? GetClientHeight() : GetClientWidth();
}

void SScrollCtrl::ThumbGeometry(int* start, int* length, int* travel) const {
    int arrow = std::min(Thickness(), Length() / 2);
    int trough = std::max(0, Length() - 2 * arrow);
    int span = maximum - minimum;
    int thumb = span + pageStep > 0
                    ? static_cast<int>(static_cast<int64_t>(trough) * pageStep / (span + pageStep))
                    : trough;
    thumb = std::clamp(thumb, std::min(MIN_THUMB, trough), trough);
    *length = thumb;
    *travel = trough - thumb;
    *start =
        arrow +
        (span > 0 ? static_cast<int>(static_cast<int64_t>(*travel) * (value - minimum) / span) : 0);
}

SRect SScrollCtrl::GetThumbRect() const {
    int start = 0, length = 0, travel = 0;
    ThumbGeometry(&start, &length, &travel);
    return IsVertical() ? SRect{0, start, GetClientWidth(), start + length}
                        : SRect{start, 0, start + length, GetClientHeight()};
}

int SScrollCtrl::PartAt(SPoint point) const {
    if (!GetClientRect().Contains(point)) {
        return 0;
    }
    int along = IsVertical() ? point.y : point.x;
    int arrow = std::min(Thickness(), Length() / 2);
    if (along < arrow) {
        return 1;
    }
    if (along >= Length() - arrow) {
        return 5;
    }
    int start = 0, length = 0, travel = 0;
    ThumbGeometry(&start, &length, &travel);
    return along < start ? 2 : along < start + length ? 3 : 4;
}

LRESULT SScrollCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SPoint point{PointParamX(lParam), PointParamY(lParam)};
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        if (!IsEnabled()) {
            return result;
        }
        pressedPart = PartAt(point);
        switch (pressedPart) {
        case 1:
            UserValue(value - lineStep);
            break;
        case 5:
            UserValue(value + lineStep);
            break;
        case 2:
            UserValue(value - pageStep);
            break;
        case 4:
            UserValue(value + pageStep);
            break;
        case 3: {
            SRect thumb = GetThumbRect();
            dragOffset = IsVertical() ? point.y - thumb.top : point.x - thumb.left;
            SetCapture(GetHandle());
            break;
        }
        default:
            break;
        }
        Invalidate(nullptr);
        return result;
    }
    case WM_MOUSEMOVE:
        if (dragOffset >= 0 && GetCapture() == GetHandle()) {
            int start = 0, length = 0, travel = 0;
            ThumbGeometry(&start, &length, &travel);
            int arrow = std::min(Thickness(), Length() / 2);
            int at = (IsVertical() ? point.y : point.x) - dragOffset - arrow;
            if (travel > 0) {
                UserValue(ValueAtTravel(std::clamp(at, 0, travel), travel));
            }
        }
        break;
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        if (dragOffset >= 0) {
            dragOffset = -1;
            if (GetCapture() == GetHandle()) {
                ReleaseCapture();
            }
        }
        pressedPart = 0;
        Invalidate(nullptr);
        break;
    case WM_KEYDOWN:
    case WM_MOUSEWHEEL:
        if (HandleKeyOrWheel(message, wParam)) {
            return 0;
        }
        break;
    default:
        break;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void SScrollCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    bool enabled = IsEnabled();
    uint32_t trough = Mix(FaceOf(this), GetSysColor(SYS_COLOR_BTNSHADOW), 50);
    Fill(cr, client, trough);
    int arrow = std::min(Thickness(), Length() / 2);
    bool vertical = IsVertical();
    uint32_t ink = enabled ? GetSysColor(SYS_COLOR_BTNTEXT) : GetSysColor(SYS_COLOR_GRAYTEXT);
    for (int end = 0; end < 2; ++end) {
        SRect box = vertical
                        ? (end == 0 ? SRect{0, 0, client.right, arrow}
                                    : SRect{0, client.bottom - arrow, client.right, client.bottom})
                        : (end == 0 ? SRect{0, 0, arrow, client.bottom}
                                    : SRect{client.right - arrow, 0, client.right, client.bottom});
        bool down = enabled && pressedPart == (end == 0 ? 1 : 5);
        Fill(cr, box,
             down ? Mix(FaceOf(this), GetSysColor(SYS_COLOR_BTNSHADOW), 120) : FaceOf(this));
        double cx = (box.left + box.right) / 2.0, cy = (box.top + box.bottom) / 2.0;
        double size = std::max(2.0, arrow / 5.0);
        SetSource(cr, ink);
        int sign = end == 0 ? -1 : 1;
        if (vertical) {
            cairo_move_to(cr, cx - size * 1.4, cy - sign * size * 0.7);
            cairo_line_to(cr, cx + size * 1.4, cy - sign * size * 0.7);
            cairo_line_to(cr, cx, cy + sign * size * 0.9);
        } else {
            cairo_move_to(cr, cx - sign * size * 0.7, cy - size * 1.4);
            cairo_line_to(cr, cx - sign * size * 0.7, cy + size * 1.4);
            cairo_line_to(cr, cx + sign * size * 0.9, cy);
        }
        cairo_close_path(cr);
        cairo_fill(cr);
    }
    SRect thumb = Inset(GetThumbRect(), vertical ? 2 : 0, vertical ? 0 : 2);
    uint32_t thumbColor = GetSysColor(SYS_COLOR_BTNSHADOW);
    if (!enabled) {
        thumbColor = Mix(thumbColor, trough, 150);
    } else if (dragOffset >= 0) {
        thumbColor = GetSysColor(SYS_COLOR_HIGHLIGHT);
    } else if (hovered) {
        thumbColor = Mix(thumbColor, GetSysColor(SYS_COLOR_BTNTEXT), 80);
    }
    RoundBox(cr, thumb, 3, thumbColor, 0xFF000000u);
    if (HasFocus()) {
        FocusFrame(cr, client);
    }
}

// SSliderCtrl

SRect SSliderCtrl::GetKnobRect() const {
    bool vertical = IsVertical();
    int length = vertical ? GetClientHeight() : GetClientWidth();
    int travel = std::max(0, length - KNOB);
    int span = maximum - minimum;
    int at =
        span > 0 ? static_cast<int>(static_cast<int64_t>(travel) * (value - minimum) / span) : 0;
    if (vertical) {
        int left = (GetClientWidth() - KNOB) / 2;
        return SRect{left, at, left + KNOB, at + KNOB};
    }
    int top = (GetClientHeight() - KNOB) / 2;
    return SRect{at, top, at + KNOB, top + KNOB};
}

int SSliderCtrl::ValueAt(SPoint point) const {
    bool vertical = IsVertical();
    int length = vertical ? GetClientHeight() : GetClientWidth();
    int travel = std::max(1, length - KNOB);
    int at = std::clamp((vertical ? point.y : point.x) - KNOB / 2, 0, travel);
    return ValueAtTravel(at, travel);
}

LRESULT SSliderCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SPoint point{PointParamX(lParam), PointParamY(lParam)};
    switch (message) {
    case WM_LBUTTONDOWN: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        if (IsEnabled()) {
            // A press on the track takes the knob there, and it follows
            // the pointer until the release.
            UserValue(ValueAt(point));
            dragging = true;
            SetCapture(GetHandle());
        }
        return result;
    }
    case WM_MOUSEMOVE:
        if (dragging && GetCapture() == GetHandle()) {
            UserValue(ValueAt(point));
        }
        break;
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        if (dragging) {
            dragging = false;
            if (GetCapture() == GetHandle()) {
                ReleaseCapture();
            }
            Invalidate(nullptr);
        }
        break;
    case WM_KEYDOWN:
    case WM_MOUSEWHEEL:
        if (HandleKeyOrWheel(message, wParam)) {
            return 0;
        }
        break;
    default:
        break;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void SSliderCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    uint32_t back = SWnd::GetBackColor();
    uint32_t face = FaceOf(this);
    Fill(cr, client, face);
    if ((GetStyle() & WS_BORDER) != 0) {
        // The border: a line of the back colour round the client area.
        uint32_t line =
            back == 0xFF000000u || back == 0xFF000001u ? GetSysColor(SYS_COLOR_BTNFACE) : back;
        SetSource(cr, line);
        cairo_set_line_width(cr, 1);
        cairo_rectangle(cr, 0.5, 0.5, client.Width() - 1.0, client.Height() - 1.0);
        cairo_stroke(cr);
    }
    bool enabled = IsEnabled();
    bool vertical = IsVertical();
    SRect knob = GetKnobRect();
    uint32_t accent = enabled ? GetSysColor(SYS_COLOR_HIGHLIGHT) : GetSysColor(SYS_COLOR_GRAYTEXT);
    uint32_t rail = Mix(face, GetSysColor(SYS_COLOR_BTNSHADOW), 140);
    if (vertical) {
        int cx = client.Width() / 2;
        Fill(cr, SRect{cx - 2, KNOB / 2, cx + 2, client.bottom - KNOB / 2}, rail);
        Fill(cr, SRect{cx - 2, KNOB / 2, cx + 2, (knob.top + knob.bottom) / 2}, accent);
    } else {
        int cy = client.Height() / 2;
        Fill(cr, SRect{KNOB / 2, cy - 2, client.right - KNOB / 2, cy + 2}, rail);
        Fill(cr, SRect{KNOB / 2, cy - 2, (knob.left + knob.right) / 2, cy + 2}, accent);
    }
    uint32_t knobFill = GetSysColor(SYS_COLOR_WINDOW);
    if (enabled && (hovered || dragging)) {
        knobFill = Mix(knobFill, accent, 60);
    }
    RoundBox(cr, knob, KNOB / 2.0, knobFill,
             HasFocus() ? accent : GetSysColor(SYS_COLOR_BTNSHADOW));
    if (HasFocus()) {
        RoundBox(cr, Inset(knob, 1, 1), KNOB / 2.0 - 1, 0xFF000000u, accent);
    }
}

// SProgressCtrl

void SProgressCtrl::SetBackColor(uint32_t color) {
    back = color;
    Invalidate(nullptr);
}

void SProgressCtrl::SetBarColor(uint32_t color) {
    bar = color;
    Invalidate(nullptr);
}

void SProgressCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    Fill(cr, client, FaceOf(this));
    uint32_t trough = (back & 0xFF000000u) != 0 ? Mix(GetSysColor(SYS_COLOR_BTNFACE),
                                                      GetSysColor(SYS_COLOR_BTNSHADOW), 70)
                                                : back;
    uint32_t fill = (bar & 0xFF000000u) != 0 ? GetSysColor(SYS_COLOR_HIGHLIGHT) : bar;
    if (!IsEnabled()) {
        fill = Mix(fill, trough, 150);
    }
    RoundBox(cr, client, 3, trough, Mix(trough, GetSysColor(SYS_COLOR_BTNSHADOW), 128));
    int span = maximum - minimum;
    if (span <= 0 || value <= minimum) {
        return;
    }
    SRect inner = Inset(client, 1, 1);
    if (IsVertical()) {
        int height =
            static_cast<int>(static_cast<int64_t>(inner.Height()) * (value - minimum) / span);
        inner.top = inner.bottom - height;
    } else {
        inner.right = inner.left + static_cast<int>(static_cast<int64_t>(inner.Width()) *
                                                    (value - minimum) / span);
    }
    RoundBox(cr, inner, 2, fill, 0xFF000000u);
}
