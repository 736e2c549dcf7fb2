#include "toolkit/button_ctrls.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>

#include "toolkit/draw.h"
#include "toolkit/sys_colors.h"

using namespace ctrldraw;

namespace {

constexpr int MARK_SIZE = 14;

// Text colour of a control in its state.
uint32_t TextColor(const SWnd* window) {
    return window->IsEnabled() ? GetSysColor(SYS_COLOR_BTNTEXT) : GetSysColor(SYS_COLOR_GRAYTEXT);
}

uint32_t ParentBack(const SWnd* window) {
    SWnd* parent = window->GetParentWnd();
    uint32_t back = parent != nullptr ? parent->GetBackColor() : 0xFF000000u;
    return (back & 0xFF000000u) != 0 ? GetSysColor(SYS_COLOR_BTNFACE) : back;
}

bool IsPressKey(WPARAM key) {
    return key == ctrlkey::SPACE || key == VK_RETURN;
}

} // namespace

// SButtonCtrl

void SButtonCtrl::SetBackColor(uint32_t color) {
    face = color;
    Invalidate(nullptr);
}

void SButtonCtrl::SetPushed(bool on) {
    pushed = on;
    Invalidate(nullptr);
}

void SButtonCtrl::Press() {
    Notify(SN_BUTTON_CLICKED, 0);
}

LRESULT SButtonCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        if (IsEnabled()) {
            pressed = true;
            Invalidate(nullptr);
        }
        // Two quick clicks are two clicks to a button: the window core
        // makes a click of a plain press only, so the second is made here.
        doublePress = message == WM_LBUTTONDBLCLK;
        break;
    case WM_LBUTTONUP:
        if (pressed) {
            pressed = false;
            Invalidate(nullptr);
            if (doublePress && IsEnabled()) {
                doublePress = false;
                SRect client = GetClientRect();
                if (client.Contains(SPoint{PointParamX(lParam), PointParamY(lParam)})) {
                    Press();
                    return 0;
                }
            }
        }
        doublePress = false;
        break;
    case SM_MOUSE_LEAVE:
        pressed = false;
        break;
    case SM_LEFT_CLICK: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        if (GetHandle() != 0 && IsEnabled()) {
            Press();
        }
        return result;
    }
    case WM_KEYDOWN:
        if (IsEnabled() && IsPressKey(wParam)) {
            keyDown = true;
            pressed = true;
            Invalidate(nullptr);
            if (wParam == VK_RETURN) {
                keyDown = false;
                pressed = false;
                Press();
            }
            return 0;
        }
        break;
    case WM_KEYUP:
        if (keyDown && wParam == ctrlkey::SPACE) {
            keyDown = false;
            pressed = false;
            Invalidate(nullptr);
            if (IsEnabled()) {
                Press();
            }
            return 0;
        }
        break;
    case WM_KILLFOCUS:
        keyDown = false;
        pressed = false;
        break;
    default:
        break;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void SButtonCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    Fill(cr, client, ParentBack(this));
    uint32_t base = (face & 0xFF000000u) != 0 ? GetSysColor(SYS_COLOR_BTNFACE) : face;
    uint32_t fill = base;
    bool enabled = IsEnabled();
    bool down = pressed || pushed;
    if (enabled && down) {
        fill = Mix(base, GetSysColor(SYS_COLOR_BTNSHADOW), 110);
    } else if (enabled && hovered) {
        fill = Mix(base, GetSysColor(SYS_COLOR_BTNHIGHLIGHT), 150);
    }
    uint32_t line =
        HasFocus() ? GetSysColor(SYS_COLOR_HIGHLIGHT) : GetSysColor(SYS_COLOR_BTNSHADOW);
    if (!enabled) {
        line = Mix(line, base, 128);
    }
    RoundBox(cr, client, 4, fill, line);
    if (HasFocus()) {
        RoundBox(cr, Inset(client, 1, 1), 3, 0xFF000000u, GetSysColor(SYS_COLOR_HIGHLIGHT));
    }
    SRect textRect = Inset(client, 4, 2);
    if (enabled && down) {
        textRect = Moved(textRect, 1, 1);
    }
    Text(cr, WindowFont(this), GetText().c_str(), textRect, TextColor(this), SAlign::CENTER);
}

// SCheckCtrl

void SCheckCtrl::SetCheck(bool check) {
    if (check != checked) {
        checked = check;
        Invalidate(nullptr);
    }
}

void SCheckCtrl::Press() {
    SetCheck(!checked);
    Notify(SN_CHECK_CLICKED, checked ? 1 : 0);
}

LRESULT SCheckCtrl::OnColorButton(cairo_t* cr) {
    if (cr != nullptr) {
        Fill(cr, GetClientRect(), ParentBack(this));
    }
    return 1;
}

void SCheckCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    OnColorButton(cr);
    int top = (client.Height() - MARK_SIZE) / 2;
    SRect box{2, top, 2 + MARK_SIZE, top + MARK_SIZE};
    PaintMark(cr, box);
    SRect textRect{box.right + 6, 0, client.right - 2, client.bottom};
    int width = Text(cr, WindowFont(this), GetText().c_str(), textRect, TextColor(this));
    if (HasFocus()) {
        SRect focus{textRect.left - 2, 1, std::min(textRect.left + width + 2, client.right),
                    client.bottom - 1};
        FocusFrame(cr, focus);
    }
}

void SCheckCtrl::PaintMark(cairo_t* cr, const SRect& box) {
    bool enabled = IsEnabled();
    uint32_t window = GetSysColor(SYS_COLOR_WINDOW);
    uint32_t accent = GetSysColor(SYS_COLOR_HIGHLIGHT);
    uint32_t fill = checked ? accent : window;
    uint32_t line = checked ? accent : GetSysColor(SYS_COLOR_BTNSHADOW);
    if (enabled && hovered && !checked) {
        line = accent;
    }
    if (enabled && pressed) {
        fill = Mix(fill, GetSysColor(SYS_COLOR_BTNSHADOW), 80);
    }
    if (!enabled) {
        fill = Mix(fill, GetSysColor(SYS_COLOR_BTNFACE), 160);
        line = Mix(line, GetSysColor(SYS_COLOR_BTNFACE), 128);
    }
    RoundBox(cr, box, 2, fill, line);
    if (checked) {
        SetSource(cr, enabled ? GetSysColor(SYS_COLOR_HIGHLIGHTTEXT) : window);
        cairo_set_line_width(cr, 2);
        cairo_move_to(cr, box.left + 3, box.top + MARK_SIZE / 2);
        cairo_line_to(cr, box.left + 6, box.top + MARK_SIZE - 4);
        cairo_line_to(cr, box.right - 3, box.top + 3);
        cairo_stroke(cr);
    }
}

// SRadioCtrl

std::vector<SRadioCtrl*> SRadioCtrl::GetGroup() const {
    std::vector<SRadioCtrl*> group;
    SWnd* parent = GetParentWnd();
    if (parent == nullptr) {
        group.push_back(const_cast<SRadioCtrl*>(this));
        return group;
    }
    SArray<SWnd*> children;
    parent->GetChildren(&children);
    bool mine = false;
    for (int i = 0; i < children.GetCount(); ++i) {
        auto* radio = dynamic_cast<SRadioCtrl*>(children.GetAt(i));
        if (radio == nullptr) {
            continue;
        }
        if (radio->StartsGroup() || group.empty()) {
            if (mine) {
                break;
            }
            group.clear();
        }
        group.push_back(radio);
        if (radio == this) {
            mine = true;
        }
    }
    return group;
}

void SRadioCtrl::Press() {
    for (SRadioCtrl* other : GetGroup()) {
        if (other != this) {
            other->SetCheck(false);
        }
    }
    bool was = checked;
    SetCheck(true);
    if (!was) {
        Notify(SN_CHECK_CLICKED, 1);
    }
}

LRESULT SRadioCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    if (message == SM_CREATE && (GetStyle() & RADIO_CHECKED) != 0) {
        checked = true;
    }
    if (message == WM_KEYDOWN && IsEnabled()) {
        int step = wParam == ctrlkey::DOWN || wParam == ctrlkey::RIGHT ? 1
                   : wParam == ctrlkey::UP || wParam == ctrlkey::LEFT  ? -1
                                                                       : 0;
        if (step != 0) {
            std::vector<SRadioCtrl*> group = GetGroup();
            int count = static_cast<int>(group.size());
            int index = 0;
            while (index < count && group[index] != this) {
                ++index;
            }
            // The next enabled member, round the group.
            for (int tries = 1; tries < count; ++tries) {
                SRadioCtrl* next = group[((index + step * tries) % count + count) % count];
                if (next->IsEnabled() && next->IsVisible()) {
                    SetFocus(next->GetHandle());
                    next->Press();
                    break;
                }
            }
            return 0;
        }
    }
    return SCheckCtrl::OnMessage(message, wParam, lParam);
}

void SRadioCtrl::PaintMark(cairo_t* cr, const SRect& box) {
    bool enabled = IsEnabled();
    uint32_t accent = GetSysColor(SYS_COLOR_HIGHLIGHT);
    uint32_t fill = checked ? accent : GetSysColor(SYS_COLOR_WINDOW);
    uint32_t line = checked || (enabled && hovered) ? accent : GetSysColor(SYS_COLOR_BTNSHADOW);
    if (enabled && pressed) {
        fill = Mix(fill, GetSysColor(SYS_COLOR_BTNSHADOW), 80);
    }
    if (!enabled) {
        fill = Mix(fill, GetSysColor(SYS_COLOR_BTNFACE), 160);
        line = Mix(line, GetSysColor(SYS_COLOR_BTNFACE), 128);
    }
    RoundBox(cr, box, MARK_SIZE / 2.0, fill, line);
    if (checked) {
        SetSource(cr,
                  enabled ? GetSysColor(SYS_COLOR_HIGHLIGHTTEXT) : GetSysColor(SYS_COLOR_WINDOW));
        cairo_arc(cr, box.left + MARK_SIZE / 2.0, box.top + MARK_SIZE / 2.0, 3, 0, 2 * M_PI);
        cairo_fill(cr);
    }
}

// SLabelCtrl

void SLabelCtrl::SetAlign(SAlign value) {
    align = value;
    Invalidate(nullptr);
}

void SLabelCtrl::SetImage(const SImage* picture) {
    if (picture != nullptr) {
        image.CopyFrom(picture);
    } else {
        image.Empty();
    }
    Invalidate(nullptr);
}

void SLabelCtrl::SetTextColor(uint32_t color) {
    textColor = color;
    Invalidate(nullptr);
}

void SLabelCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    uint32_t back = GetBackColor();
    if ((back & 0xFF000000u) == 0) {
        Fill(cr, client, back);
    }
    SRect textRect = client;
    if (image.IsValid()) {
        int top = (client.Height() - image.GetHeight()) / 2;
        image.DrawAt(cr, client.left, top);
        textRect.left += image.GetWidth() + 4;
    }
    uint32_t color = (textColor & 0xFF000000u) != 0 ? TextColor(this) : textColor;
    if (!IsEnabled()) {
        color = GetSysColor(SYS_COLOR_GRAYTEXT);
    }
    Text(cr, WindowFont(this), GetText().c_str(), textRect, color, align);
}

// SStaticCtrl

void SStaticCtrl::SetEdges(unsigned sides) {
    edges = sides & 15;
    Invalidate(nullptr);
}

void SStaticCtrl::SetImage(const SImage* picture) {
    if (picture != nullptr) {
        image.CopyFrom(picture);
    } else {
        image.Empty();
    }
    Invalidate(nullptr);
}

void SStaticCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    uint32_t back = GetBackColor();
    if ((back & 0xFF000000u) == 0) {
        Fill(cr, client, back);
    }
    uint32_t shadow = GetSysColor(SYS_COLOR_BTNSHADOW);
    uint32_t light = GetSysColor(SYS_COLOR_BTNHIGHLIGHT);
    if ((edges & STATIC_EDGE_LEFT) != 0) {
        Fill(cr, SRect{0, 0, 1, client.bottom}, shadow);
        Fill(cr, SRect{1, 0, 2, client.bottom}, light);
    }
    if ((edges & STATIC_EDGE_TOP) != 0) {
        Fill(cr, SRect{0, 0, client.right, 1}, shadow);
        Fill(cr, SRect{0, 1, client.right, 2}, light);
    }
    if ((edges & STATIC_EDGE_RIGHT) != 0) {
        Fill(cr, SRect{client.right - 2, 0, client.right - 1, client.bottom}, shadow);
        Fill(cr, SRect{client.right - 1, 0, client.right, client.bottom}, light);
    }
    if ((edges & STATIC_EDGE_BOTTOM) != 0) {
        Fill(cr, SRect{0, client.bottom - 2, client.right, client.bottom - 1}, shadow);
        Fill(cr, SRect{0, client.bottom - 1, client.right, client.bottom}, light);
    }
    if (image.IsValid()) {
        SRect inner = Inset(client, 2, 2);
        if (image.drawMode == DRAW_STRETCH) {
            image.Draw(cr, &inner);
        } else {
            image.DrawAt(cr, inner.left + (inner.Width() - image.GetWidth()) / 2,
                         inner.top + (inner.Height() - image.GetHeight()) / 2);
        }
    }
}

// SGroupCtrl

void SGroupCtrl::SetAlign(SAlign value) {
    align = value == SAlign::JUSTIFY ? SAlign::LEFT : value;
    Invalidate(nullptr);
}

LRESULT SGroupCtrl::OnColorButton(cairo_t* cr) {
    if (cr != nullptr) {
        ctrldraw::SetSource(cr, ParentBack(this));
    }
    return 1;
}

void SGroupCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    Fill(cr, client, ParentBack(this));
    const SFont* font = WindowFont(this);
    SString title = GetText();
    int lineHeight = TextMetrics(font).height;
    int frameTop = lineHeight / 2;
    uint32_t line = Mix(GetSysColor(SYS_COLOR_BTNSHADOW), ParentBack(this), 90);
    RoundBox(cr, SRect{0, frameTop, client.right, client.bottom}, 4, 0xFF000000u, line);
    if (title.IsEmpty()) {
        return;
    }
    int width = TextWidth(font, title.c_str());
    int room = std::max(0, client.Width() - 20);
    width = std::min(width, room);
    int left = align == SAlign::CENTER  ? (client.Width() - width) / 2
               : align == SAlign::RIGHT ? client.Width() - 10 - width
                                        : 10;
    SRect titleRect{left - 3, 0, left + width + 3, lineHeight};
    Fill(cr, titleRect, ParentBack(this));
    Text(cr, font, title.c_str(), SRect{left, 0, left + width, lineHeight}, TextColor(this));
}
