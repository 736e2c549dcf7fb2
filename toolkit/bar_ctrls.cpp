#include "toolkit/bar_ctrls.h"

#include <algorithm>
#include <climits>
#include <cairo.h>

#include "toolkit/draw.h"
#include "toolkit/sys_colors.h"

namespace {

constexpr int PART_PAD = 4;      // between a part's divider and its text
constexpr int GRIP_SIZE = 14;    // the size grip's square
constexpr int GRIPPER_WIDTH = 8; // the handle at a band's left
constexpr int BAND_GAP = 2;

} // namespace

void SStatusBarCtrl::SetParts(const std::vector<int>& widths) {
    parts.resize(widths.size());
    for (size_t i = 0; i < widths.size(); ++i) {
        parts[i].width = widths[i] < 0 ? -1 : widths[i];
    }
    Layout();
}

bool SStatusBarCtrl::SetPartWidth(int index, int width) {
    if (index < 0 || index >= GetPartCount()) {
        return false;
    }
    parts[index].width = width < 0 ? -1 : width;
    Layout();
    return true;
}

bool SStatusBarCtrl::SetText(int index, const char* text) {
    if (index < 0 || index >= GetPartCount()) {
        return false;
    }
    parts[index].text = text != nullptr ? text : "";
    SRect rect = parts[index].rect;
    Invalidate(&rect);
    return true;
}

SString SStatusBarCtrl::GetText(int index) const {
    return index >= 0 && index < GetPartCount() ? parts[index].text : SString();
}

SRect SStatusBarCtrl::GetPartRect(int index) const {
    return index >= 0 && index < GetPartCount() ? parts[index].rect : SRect{};
}

int SStatusBarCtrl::GetIdealHeight() const {
    return TextSize(WindowFont(this), "Ag").height + 2 * PART_PAD;
}

void SStatusBarCtrl::Layout() {
    SRect client = GetHandle() != 0 ? GetClientRect() : SRect{};
    int right = client.right;
    if ((GetStyle() & STATUS_SIZE_GRIP) != 0) {
        right = std::max(client.left, right - GRIP_SIZE);
    }
    int fixed = 0, flexible = 0;
    for (const Part& part : parts) {
        if (part.width < 0) {
            ++flexible;
        } else {
            fixed += part.width;
        }
    }
    int rest = std::max(0, right - client.left - fixed);
    int x = client.left;
    int flexibleSeen = 0;
    for (Part& part : parts) {
        int width = part.width;
        if (width < 0) {
            // The rest shared alike, the last taking what division leaves.
            ++flexibleSeen;
            width = flexibleSeen == flexible ? rest - rest / flexible * (flexible - 1)
                                             : rest / flexible;
        }
        int left = std::min(x, right);
        int end = std::min(x + width, right);
        part.rect = SRect{left, client.top, end, client.bottom};
        x += width;
    }
    Invalidate(nullptr);
}

LRESULT SStatusBarCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SIZE || message == SM_CREATE || message == WM_SETFONT) {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        Layout();
        return result;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void SStatusBarCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    const uint32_t face = GetSysColor(SYS_COLOR_BTNFACE);
    const uint32_t shadow = GetSysColor(SYS_COLOR_BTNSHADOW);
    ctrldraw::Fill(cr, client, face);
    ctrldraw::Fill(cr, SRect{client.left, client.top, client.right, client.top + 1}, shadow);
    const SFont* font = WindowFont(this);
    const uint32_t text = GetSysColor(IsEnabled() ? SYS_COLOR_BTNTEXT : SYS_COLOR_GRAYTEXT);
    for (size_t i = 0; i < parts.size(); ++i) {
        const SRect& rect = parts[i].rect;
        if (rect.Width() <= 0) {
            continue;
        }
        ctrldraw::Text(
            cr, font, parts[i].text.c_str(),
            SRect{rect.left + PART_PAD, rect.top + 1, rect.right - PART_PAD, rect.bottom}, text);
        if (i + 1 < parts.size()) {
            ctrldraw::Fill(cr, SRect{rect.right - 1, rect.top + 4, rect.right, rect.bottom - 3},
                           shadow);
        }
    }
    if ((GetStyle() & STATUS_SIZE_GRIP) != 0) {
        // Six dots in a triangle, as the grips of GTK windows.
        const uint32_t dot = GetSysColor(SYS_COLOR_BTNSHADOW);
        for (int row = 0; row < 3; ++row) {
            for (int column = 2 - row; column < 3; ++column) {
                int x = client.right - 4 - (2 - column) * 4 - 2;
                int y = client.bottom - 4 - (2 - row) * 4 - 2;
                ctrldraw::Fill(cr, SRect{x, y, x + 2, y + 2}, dot);
            }
        }
    }
}

int SControlBarCtrl::AddBand(SWnd* child, int width, int bandHeight) {
    if (child == nullptr) {
        return -1;
    }
    Band band;
    band.child = child;
    band.width = std::max(1, width);
    band.height =
        bandHeight > 0 ? bandHeight : (child->GetHandle() != 0 ? child->GetRect().Height() : 0);
    band.height = std::max(1, band.height);
    bands.push_back(band);
    Layout();
    return static_cast<int>(bands.size()) - 1;
}

bool SControlBarCtrl::RemoveBand(int index) {
    if (index < 0 || index >= GetBandCount()) {
        return false;
    }
    bands.erase(bands.begin() + index);
    Layout();
    return true;
}

void SControlBarCtrl::RemoveAllBands() {
    bands.clear();
    Layout();
}

SRect SControlBarCtrl::GetBandRect(int index) const {
    return index >= 0 && index < GetBandCount() ? bands[index].rect : SRect{};
}

void SControlBarCtrl::Layout() {
    int barWidth = GetHandle() != 0 ? GetClientRect().Width() : 0;
    int x = BAND_GAP, y = BAND_GAP, rowHeight = 0;
    for (Band& band : bands) {
        int width = GRIPPER_WIDTH + band.width;
        if (x > BAND_GAP && x + width > barWidth - BAND_GAP) {
            // A new row for a band that does not fit beside the others.
            x = BAND_GAP;
            y += rowHeight + BAND_GAP;
            rowHeight = 0;
        }
        band.rect = SRect{x, y, x + width, y + band.height};
        rowHeight = std::max(rowHeight, band.height);
        x += width + BAND_GAP;
    }
    // Bands of a row share its height.
    for (size_t i = 0; i < bands.size(); ++i) {
        int bottom = bands[i].rect.bottom;
        for (const Band& other : bands) {
            if (other.rect.top == bands[i].rect.top) {
                bottom = std::max(bottom, other.rect.bottom);
            }
        }
        bands[i].rect.bottom = bottom;
    }
    int newHeight = bands.empty() ? 0 : y + rowHeight + BAND_GAP;
    // A bar given less than its height keeps its bottom line: the bands
    // give up their lowest pixels rather than cover it.
    int lowest = GetHandle() != 0 ? GetClientRect().Height() - 1 : INT_MAX;
    for (Band& band : bands) {
        if (band.child->GetHandle() != 0) {
            const SRect& rect = band.rect;
            int top = rect.top + (rect.Height() - band.height) / 2;
            int bottom = std::max(top + 1, std::min(top + band.height, lowest));
            band.child->MoveWindow(SRect{rect.left + GRIPPER_WIDTH, top, rect.right, bottom});
        }
    }
    Invalidate(nullptr);
    if (newHeight != height) {
        height = newHeight;
        if (GetHandle() != 0) {
            Notify(SN_CONTROL_BAR_HEIGHT, height);
        }
    }
}

LRESULT SControlBarCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SIZE) {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        Layout();
        return result;
    }
    if (message == WM_DESTROY) {
        bands.clear();
    }
    if (message == WM_COMMAND && GetParent() != 0) {
        // The commands of the bands' controls go on to the window that
        // holds the bar.
        return SendMessage(GetParent(), message, wParam, lParam);
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void SControlBarCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    const uint32_t face = GetSysColor(SYS_COLOR_BTNFACE);
    const uint32_t shadow = GetSysColor(SYS_COLOR_BTNSHADOW);
    ctrldraw::Fill(cr, client, face);
    ctrldraw::Fill(cr, SRect{client.left, client.bottom - 1, client.right, client.bottom}, shadow);
    for (const Band& band : bands) {
        // The gripper: two dotted lines.
        for (int y = band.rect.top + 3; y + 2 <= band.rect.bottom - 3; y += 3) {
            ctrldraw::Fill(cr, SRect{band.rect.left + 2, y, band.rect.left + 4, y + 2}, shadow);
            ctrldraw::Fill(cr, SRect{band.rect.left + 5, y, band.rect.left + 7, y + 2}, shadow);
        }
    }
}
