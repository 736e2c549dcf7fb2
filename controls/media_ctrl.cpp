// SMediaCtrl: settings, messages, the button, links and the ticker. The
// drawing and the measuring with Pango are in media_ctrl_paint.cpp.
#include "controls/media_ctrl.h"

#include <algorithm>

#include "foundation/color.h"
#include "foundation/network.h"
#include "toolkit/draw.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd_app.h"

SMediaCtrl::SMediaCtrl() : textColor(COLOR_NOT_SET), linkColor(COLOR_NOT_SET) {}

SMediaCtrl::~SMediaCtrl() {
    Destroy();
}

void SMediaCtrl::SetImage(const SImage* newImage) {
    if (newImage == image) {
        return;
    }
    image = newImage;
    Invalidate();
}

uint32_t SMediaCtrl::GetTextColor() const {
    return textColor != COLOR_NOT_SET ? textColor : MediaColor(GetSysColor(SYS_COLOR_WINDOWTEXT));
}

uint32_t SMediaCtrl::GetLinkColor() const {
    return linkColor != COLOR_NOT_SET ? linkColor : MediaColor(GetSysColor(SYS_COLOR_HIGHLIGHT));
}

void SMediaCtrl::SetTextColor(uint32_t color) {
    uint32_t old = GetTextColor();
    textColor = color == COLOR_NOT_SET ? color : MediaColor(color);
    if (GetTextColor() == old) {
        return;
    }
    Layout();
    Invalidate();
}

void SMediaCtrl::SetLinkColor(uint32_t color) {
    uint32_t old = GetLinkColor();
    linkColor = color == COLOR_NOT_SET ? color : MediaColor(color);
    if (GetLinkColor() == old) {
        return;
    }
    Layout();
    Invalidate();
}

void SMediaCtrl::SetAlign(unsigned flags) {
    flags &= MEDIA_ALIGN_MASK;
    if (flags == align) {
        return;
    }
    align = flags;
    Layout();
    Invalidate();
}

void SMediaCtrl::SetMargins(int left, int top, int right, int bottom) {
    int values[4] = {std::max(left, 0), std::max(top, 0), std::max(right, 0), std::max(bottom, 0)};
    if (std::equal(values, values + 4, margins)) {
        return;
    }
    std::copy(values, values + 4, margins);
    Layout();
    Invalidate();
}

void SMediaCtrl::SetWrapping(bool value) {
    if (value == wrapping) {
        return;
    }
    wrapping = value;
    Layout();
    Invalidate();
}

void SMediaCtrl::SetTrimming(bool value) {
    if (value == trimming) {
        return;
    }
    trimming = value;
    Invalidate();
}

void SMediaCtrl::SetMarkup(bool value) {
    if (value == markup) {
        return;
    }
    markup = value;
    linkTexts.clear();
    linkRects.clear();
    Layout();
    Invalidate();
}

void SMediaCtrl::SetButton(bool value) {
    if (value == clickable) {
        return;
    }
    clickable = value;
    UpdateSkin();
    Invalidate();
}

void SMediaCtrl::SetChecked(bool value) {
    if (value == checked) {
        return;
    }
    checked = value;
    UpdateSkin();
    Invalidate();
}

void SMediaCtrl::SetFlat(bool value) {
    if (value == flat) {
        return;
    }
    flat = value;
    Invalidate();
}

void SMediaCtrl::SetImageArchive(SMediaArchive archive) {
    images.Clear();
    images.SetArchive(std::move(archive));
    Layout();
    Invalidate();
}

void SMediaCtrl::SetAutoScrollLoop(bool loop) {
    ticker.loop = loop;
}

void SMediaCtrl::SetAutoScroll(double speedX, double speedY, bool force, const SPoint* start) {
    bool run = ticker.Start(speedX, speedY, force, start, TickerFrame(), GetMessageClock());
    Invalidate();
    if (GetHandle() == 0) {
        return;
    }
    if (run) {
        SetTimer(GetHandle(), MEDIA_TICKER_TIMER, MEDIA_TICKER_PERIOD);
    } else {
        KillTimer(GetHandle(), MEDIA_TICKER_TIMER);
    }
}

SRect SMediaCtrl::GetInnerRect() const {
    SSize client = GetClientSize();
    SRect inner{margins[0], margins[1], client.width - margins[2], client.height - margins[3]};
    inner.right = std::max(inner.right, inner.left);
    inner.bottom = std::max(inner.bottom, inner.top);
    return inner;
}

int SMediaCtrl::GetFrameState() const {
    return MediaFrameState(clickable, flat, IsEnabled(), checked, hovered, pressed);
}

SString SMediaCtrl::GetLinkText(int index) const {
    return index >= 0 && index < GetLinkCount() ? linkTexts[index] : SString();
}

SRect SMediaCtrl::GetLinkRect(int index) const {
    return index >= 0 && index < GetLinkCount() ? linkRects[index] : SRect();
}

int SMediaCtrl::LinkAt(SPoint point) const {
    for (size_t i = 0; i < linkRects.size(); ++i) {
        if (linkRects[i].Contains(point)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

SMediaFont SMediaCtrl::BaseFont() const {
    const SFont* font = nullptr;
    if (GetHandle() != 0) {
        font = reinterpret_cast<const SFont*>(SendMessage(GetHandle(), WM_GETFONT, 0, 0));
    }
    if (font == nullptr) {
        font = GetDefaultFont();
    }
    SMediaFont result;
    if (font == nullptr) {
        result.face = "Sans";
        return result;
    }
    result.face = font->GetFace();
    result.height = font->GetHeight();
    result.weight = (font->GetFlags() & FONT_BOLD) != 0 ? 700 : 400;
    result.italic = (font->GetFlags() & FONT_ITALIC) != 0;
    result.underline = (font->GetFlags() & FONT_UNDERLINE) != 0;
    return result;
}

SMediaTicker::Frame SMediaCtrl::TickerFrame() const {
    SMediaTicker::Frame frame;
    SSize client = GetClientSize();
    frame.clientWidth = client.width;
    frame.clientHeight = client.height;
    frame.left = margins[0];
    frame.top = margins[1];
    frame.right = margins[2];
    frame.bottom = margins[3];
    frame.contentWidth = contentWidth;
    frame.contentHeight = contentHeight;
    return frame;
}

bool SMediaCtrl::ScrollingHorizontally() const {
    return ticker.GetOffsetX() != 0 || (ticker.IsOn() && ticker.GetSpeedX() != 0);
}

bool SMediaCtrl::ScrollingVertically() const {
    return ticker.GetOffsetY() != 0 || (ticker.IsOn() && ticker.GetSpeedY() != 0);
}

void SMediaCtrl::TickerStep() {
    if (!ticker.Step(GetMessageClock(), TickerFrame())) {
        return;
    }
    Invalidate();
    SPoint point;
    if (markup && GetCursorPosition(&point) && GetClientRect().Contains(point)) {
        UpdateCursor(point);
    }
}

void SMediaCtrl::UpdateCursor(SPoint point) {
    overLink = LinkAt(point) >= 0;
    SetCursor(overLink ? CURSOR_HAND + 1 : 0);
    GetPlatform()->SetSurfaceCursor(GetTopWindow(), overLink ? CURSOR_HAND : CURSOR_ARROW);
}

void SMediaCtrl::UpdateSkin() {
    if (!clickable) {
        SetSkinState(false, false);
        return;
    }
    // A checked button shows the picture of a pressed one.
    SetSkinState(hovered || checked, (hovered && pressed) || checked);
}

void SMediaCtrl::Notify(unsigned message, LPARAM lParam) {
    HWND parent = GetParent();
    if (parent != 0) {
        SendMessage(parent, message, reinterpret_cast<WPARAM>(this), lParam);
    }
}

void SMediaCtrl::NotifyMouse(unsigned message, LPARAM lParam) {
    SMouseEvent event;
    event.code = MouseEventCode(message);
    event.client = SPoint{PointParamX(lParam), PointParamY(lParam)};
    event.screen = event.client;
    ClientToScreen(&event.screen);
    Notify(SN_MEDIA_MOUSE, reinterpret_cast<LPARAM>(&event));
}

void SMediaCtrl::OpenLink(const SString& text) {
    SNetwork network;
    if (text.Find('@') < 0) {
        network.OpenUrl(text.c_str());
        return;
    }
    SString address = text;
    if (address.Left(7).CompareNoCase("mailto:") == 0) {
        address = address.Mid(7);
    }
    network.SendMailto(address.c_str(), nullptr, nullptr);
}

LRESULT SMediaCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case SM_CREATE:
        SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
        Layout();
        break;
    case WM_SETTEXT: {
        SWnd::OnMessage(message, wParam, lParam); // stores the text
        ticker.Stop();
        KillTimer(GetHandle(), MEDIA_TICKER_TIMER);
        Layout();
        Invalidate();
        return 1;
    }
    case WM_SETFONT:
    case WM_SIZE:
        Layout();
        Invalidate();
        break;
    case WM_PAINT:
        Paint(reinterpret_cast<cairo_t*>(wParam));
        return 0;
    case WM_TIMER:
        if (wParam == MEDIA_TICKER_TIMER) {
            TickerStep();
            return 0;
        }
        break;
    case WM_DESTROY:
        ticker.Stop();
        KillTimer(GetHandle(), MEDIA_TICKER_TIMER);
        break;
    case WM_MOUSEMOVE:
        if (markup) {
            UpdateCursor(SPoint{PointParamX(lParam), PointParamY(lParam)});
        }
        break;
    case SM_MOUSE_ENTER:
    case SM_MOUSE_LEAVE:
        hovered = message == SM_MOUSE_ENTER;
        if (!hovered) {
            pressed = false;
        }
        if (clickable) {
            UpdateSkin();
            Invalidate();
        }
        break;
    case WM_LBUTTONDOWN: {
        HWND own = GetHandle();
        if (clickable) {
            pressed = true;
            UpdateSkin();
            Invalidate();
        }
        int link = markup ? LinkAt(SPoint{PointParamX(lParam), PointParamY(lParam)}) : -1;
        if (link >= 0) {
            SString text = linkTexts[link];
            HWND parent = GetParent();
            LRESULT claimed = parent != 0 ? SendMessage(parent, SN_MEDIA_LINK_CLICKED,
                                                        reinterpret_cast<WPARAM>(this),
                                                        reinterpret_cast<LPARAM>(text.c_str()))
                                          : 0;
            if (claimed == 0) {
                OpenLink(text);
            }
            if (GetHandle() != own) {
                return 0;
            }
        }
        NotifyMouse(message, lParam);
        return 0;
    }
    case WM_LBUTTONUP:
        if (clickable) {
            pressed = false;
            UpdateSkin();
            Invalidate();
        }
        NotifyMouse(message, lParam);
        return 0;
    case SM_LEFT_CLICK: {
        HWND own = GetHandle();
        if (clickable && IsEnabled()) {
            Notify(SN_MEDIA_BUTTON_CLICKED, 0);
        }
        if (GetHandle() == own) {
            NotifyMouse(message, lParam);
        }
        return 0;
    }
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP:
    case WM_RBUTTONDBLCLK:
    case WM_MBUTTONDOWN:
    case WM_MBUTTONUP:
    case WM_MBUTTONDBLCLK:
    case SM_MIDDLE_CLICK:
    case SM_RIGHT_CLICK:
        NotifyMouse(message, lParam);
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
