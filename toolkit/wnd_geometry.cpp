// Geometry of SWnd: rectangles, frames, moving, anchoring, the states of a
// top-level window and its bounds in the settings store.
#include "toolkit/wnd.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "foundation/network.h"
#include "foundation/parser.h"
#include "foundation/registry.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd_app.h"

void SWnd::GetFrameWidths(int* left, int* top, int* right, int* bottom) const {
    // Children draw their own frame: 2 pixels for a sunken edge, 1 for a
    // border. A top-level window's frame belongs to the window manager.
    int width = 0;
    if (handle != 0 && parent != 0) {
        if ((exStyle & WS_EX_CLIENTEDGE) != 0) {
            width = 2;
        } else if (isFramed) {
            width = 1;
        }
    }
    if (left != nullptr) {
        *left = width;
    }
    if (top != nullptr) {
        *top = width;
    }
    if (right != nullptr) {
        *right = width;
    }
    if (bottom != nullptr) {
        *bottom = width;
    }
    // The menu bar of a top-level window lies in the top of its frame.
    if (top != nullptr && handle != 0 && parent == 0 && menu != nullptr) {
        *top += GetMenuBarHeight();
    }
}

SMinMaxInfo SWnd::GetMinMaxInfo() const {
    SMinMaxInfo info;
    if (handle != 0) {
        SendMessage(handle, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
    }
    return info;
}

SRect SWnd::LimitSize(const SRect& target) const {
    if (handle == 0 || (parent != 0 && (style & WS_THICKFRAME) == 0)) {
        return target;
    }
    SMinMaxInfo info = GetMinMaxInfo();
    SSize size = KeepSizeInside(SSize{target.Width(), target.Height()}, info.minTrackSize,
                                info.maxTrackSize);
    return SRect{target.left, target.top, target.left + size.width, target.top + size.height};
}

void SWnd::ApplyLimits() {
    if (handle == 0) {
        return;
    }
    if (parent == 0) {
        SMinMaxInfo info = GetMinMaxInfo();
        GetPlatform()->SetSurfaceLimits(handle, info.minTrackSize, info.maxTrackSize);
    }
    SRect limited = LimitSize(rect);
    if (limited != rect && !IsMinimized()) {
        MoveWindow(limited);
    }
}

void SWnd::SendClientSize() {
    SSize client = GetClientSize();
    SendMessage(handle, WM_SIZE, IsMaximized() ? SIZE_MAXIMIZED : SIZE_RESTORED,
                MakePointParam(client.width, client.height));
}

void SWnd::GetClientOffset(SRect* offset) const {
    if (offset != nullptr) {
        GetFrameWidths(&offset->left, &offset->top, &offset->right, &offset->bottom);
    }
}

SRect SWnd::GetClientRect() const {
    if (handle == 0) {
        return SRect();
    }
    int left = 0, top = 0, right = 0, bottom = 0;
    GetFrameWidths(&left, &top, &right, &bottom);
    return SRect{0, 0, std::max(0, rect.Width() - left - right),
                 std::max(0, rect.Height() - top - bottom)};
}

SRect SWnd::GetRect() const {
    return handle != 0 ? rect : SRect();
}

SRect SWnd::GetWindowRect() const {
    if (handle == 0) {
        return SRect();
    }
    SPoint origin{rect.left, rect.top};
    SWnd* parentWnd = FromHandle(parent);
    if (parentWnd != nullptr) {
        parentWnd->ClientToScreen(&origin);
    }
    return SRect{origin.x, origin.y, origin.x + rect.Width(), origin.y + rect.Height()};
}

SSize SWnd::GetClientSize() const {
    SRect client = GetClientRect();
    return SSize{client.Width(), client.Height()};
}

int SWnd::GetClientWidth() const {
    return GetClientRect().Width();
}

int SWnd::GetClientHeight() const {
    return GetClientRect().Height();
}

SSize SWnd::GetSize() const {
    return handle != 0 ? SSize{rect.Width(), rect.Height()} : SSize();
}

int SWnd::GetWidth() const {
    return GetSize().width;
}

int SWnd::GetHeight() const {
    return GetSize().height;
}

void SWnd::ClientToScreen(SPoint* point) const {
    if (point == nullptr || handle == 0) {
        return;
    }
    SRect window = GetWindowRect();
    int left = 0, top = 0;
    GetFrameWidths(&left, &top, nullptr, nullptr);
    point->x += window.left + left;
    point->y += window.top + top;
}

void SWnd::ScreenToClient(SPoint* point) const {
    if (point == nullptr || handle == 0) {
        return;
    }
    SPoint origin;
    ClientToScreen(&origin);
    point->x -= origin.x;
    point->y -= origin.y;
}

void SWnd::ClientToScreen(SRect* area) const {
    if (area == nullptr) {
        return;
    }
    SPoint origin;
    ClientToScreen(&origin);
    *area = SRect{area->left + origin.x, area->top + origin.y, area->right + origin.x,
                  area->bottom + origin.y};
}

void SWnd::ScreenToClient(SRect* area) const {
    if (area == nullptr) {
        return;
    }
    SPoint origin;
    ClientToScreen(&origin);
    *area = SRect{area->left - origin.x, area->top - origin.y, area->right - origin.x,
                  area->bottom - origin.y};
}

bool SWnd::MoveWindow(const SRect& wanted, bool repaint) {
    if (handle == 0) {
        return false;
    }
    SRect old = rect;
    rect = LimitSize(wanted);
    if (showState == SW_SHOWNORMAL) {
        normalRect = rect;
    }
    if (parent == 0) {
        GetPlatform()->MoveSurface(handle, rect);
    }
    if (old.left != rect.left || old.top != rect.top) {
        SendMessage(handle, WM_MOVE, 0, MakePointParam(rect.left, rect.top));
    }
    if (handle != 0 && (old.Width() != rect.Width() || old.Height() != rect.Height())) {
        SendClientSize();
    }
    if (repaint && handle != 0) {
        // A child uncovers its old place and covers its new one; a top-level
        // window repaints whole.
        SWnd* parentWnd = GetParentWnd();
        if (parentWnd != nullptr) {
            parentWnd->Invalidate(&old);
            parentWnd->Invalidate(&rect);
        } else {
            Invalidate();
        }
    }
    return true;
}

void SWnd::SetSize(int width, int height) {
    MoveWindow(SRect{rect.left, rect.top, rect.left + width, rect.top + height});
}

void SWnd::SetClientSize(int width, int height) {
    int left = 0, top = 0, right = 0, bottom = 0;
    GetFrameWidths(&left, &top, &right, &bottom);
    SetSize(width + left + right, height + top + bottom);
}

void SWnd::SetClientHeight(int height) {
    SetClientSize(GetClientWidth(), height);
}

void SWnd::CenterOnParent(bool useParent) {
    if (handle == 0) {
        return;
    }
    SRect area;
    SWnd* parentWnd = GetParentWnd();
    if (parent != 0 && parentWnd != nullptr) {
        area = parentWnd->GetClientRect();
    } else if (!useParent || !GetWorkArea(&area)) {
        if (!GetWorkArea(&area)) {
            return;
        }
    }
    int left = area.left + (area.Width() - rect.Width()) / 2;
    int top = area.top + (area.Height() - rect.Height()) / 2;
    MoveWindow(SRect{left, top, left + rect.Width(), top + rect.Height()});
}

void SWnd::Minimize() {
    if (handle == 0 || showState == SW_SHOWMINIMIZED) {
        return;
    }
    showState = SW_SHOWMINIMIZED;
    if (parent == 0) {
        GetPlatform()->ShowSurface(handle, SW_SHOWMINIMIZED);
    }
    SSize client = GetClientSize();
    SendMessage(handle, WM_SIZE, SIZE_MINIMIZED, MakePointParam(client.width, client.height));
}

void SWnd::Maximize() {
    if (handle == 0 || showState == SW_SHOWMAXIMIZED) {
        return;
    }
    if (showState == SW_SHOWNORMAL) {
        normalRect = rect;
    }
    showState = SW_SHOWMAXIMIZED;
    SRect area;
    SWnd* parentWnd = GetParentWnd();
    if (parentWnd != nullptr) {
        area = parentWnd->GetClientRect();
    } else if (!GetWorkArea(&area)) {
        area = rect;
    }
    if (parent == 0) {
        GetPlatform()->ShowSurface(handle, SW_SHOWMAXIMIZED);
    }
    rect = LimitSize(area);
    if (parent == 0) {
        GetPlatform()->MoveSurface(handle, rect);
    }
    SSize client = GetClientSize();
    SendMessage(handle, WM_SIZE, SIZE_MAXIMIZED, MakePointParam(client.width, client.height));
    Invalidate();
}

void SWnd::Restore(bool force) {
    if (handle == 0 || (showState == SW_SHOWNORMAL && !force)) {
        return;
    }
    showState = SW_SHOWNORMAL;
    if (parent == 0) {
        GetPlatform()->ShowSurface(handle, SW_RESTORE);
    }
    rect = normalRect;
    if (parent == 0) {
        GetPlatform()->MoveSurface(handle, rect);
    }
    SSize client = GetClientSize();
    SendMessage(handle, WM_SIZE, SIZE_RESTORED, MakePointParam(client.width, client.height));
    Invalidate();
}

void SWnd::SetAnchor(unsigned bits) {
    anchor = bits;
    SWnd* parentWnd = GetParentWnd();
    anchorParentSize = parentWnd != nullptr ? parentWnd->GetClientSize() : SSize();
    anchorRect = rect;
}

void SWnd::ApplyAnchor() {
    SWnd* parentWnd = GetParentWnd();
    if (anchor == 0 || parentWnd == nullptr) {
        return;
    }
    SSize size = parentWnd->GetClientSize();
    int dx = size.width - anchorParentSize.width;
    int dy = size.height - anchorParentSize.height;
    SRect moved = anchorRect;
    bool halfX = (anchor & ANCHOR_HALF_X) != 0;
    bool halfY = (anchor & ANCHOR_HALF_Y) != 0;
    if ((anchor & ANCHOR_CENTER_X) != 0) {
        int shift = halfX ? dx / 4 : dx / 2;
        moved.left += shift;
        moved.right += shift;
    }
    if ((anchor & ANCHOR_LEFT) != 0) {
        moved.left += halfX ? dx / 2 : dx;
    }
    if ((anchor & ANCHOR_RIGHT) != 0) {
        moved.right += halfX ? dx / 2 : dx;
    }
    if ((anchor & ANCHOR_CENTER_Y) != 0) {
        int shift = halfY ? dy / 4 : dy / 2;
        moved.top += shift;
        moved.bottom += shift;
    }
    if ((anchor & ANCHOR_TOP) != 0) {
        moved.top += halfY ? dy / 2 : dy;
    }
    if ((anchor & ANCHOR_BOTTOM) != 0) {
        moved.bottom += halfY ? dy / 2 : dy;
    }
    MoveWindow(moved, false);
    SendMessage(parent, SM_CHILD_ANCHORED, reinterpret_cast<WPARAM>(this), 0);
}

bool SWnd::SaveBounds(const char* company, const char* product, const char* valueName) {
    if (handle == 0 || company == nullptr || product == nullptr) {
        return false;
    }
    SRect bounds = showState == SW_SHOWNORMAL ? rect : normalRect;
    char text[160];
    snprintf(text, sizeof(text), "7:%d,%d,%d,%d,%s%s%s", bounds.left, bounds.top, bounds.right,
             bounds.bottom, shown ? "1," : "0,", IsMinimized() ? "1," : "0,",
             IsMaximized() ? "1," : "0,");
    SString key = SString("Software\\") + company + "\\" + product;
    return SRegistry::WriteString(HKEY_CURRENT_USER, key.c_str(), valueName, text);
}

bool SWnd::RestoreBounds(const char* company, const char* product, const char* valueName,
                         bool keepHidden) {
    if (handle == 0 || company == nullptr || product == nullptr) {
        return false;
    }
    SString key = SString("Software\\") + company + "\\" + product;
    SString stored = SRegistry::ReadString(HKEY_CURRENT_USER, key.c_str(), valueName);
    int colon = stored.Find(':');
    if (colon < 1 || atoi(stored.Left(colon).c_str()) < 7) {
        return false;
    }
    SStringParser parser(stored.Mid(colon + 1).c_str());
    if (parser.Parse(",", 0, '"', nullptr) < 7) {
        return false;
    }
    SRect bounds{parser.GetInt(0), parser.GetInt(1), parser.GetInt(2), parser.GetInt(3)};
    bool visible = parser.GetBool(4);
    bool iconic = parser.GetBool(5);
    bool zoomed = parser.GetBool(6);
    SRect area;
    if (parent == 0 && GetWorkArea(&area)) {
        if (bounds.Width() > area.Width()) {
            bounds.left = area.left;
            bounds.right = area.right;
        } else if (bounds.left < area.left) {
            bounds = SRect{area.left, bounds.top, area.left + bounds.Width(), bounds.bottom};
        } else if (bounds.right > area.right) {
            bounds = SRect{area.right - bounds.Width(), bounds.top, area.right, bounds.bottom};
        }
        if (bounds.Height() > area.Height()) {
            bounds.top = area.top;
            bounds.bottom = area.bottom;
        } else if (bounds.top < area.top) {
            bounds = SRect{bounds.left, area.top, bounds.right, area.top + bounds.Height()};
        } else if (bounds.bottom > area.bottom) {
            bounds = SRect{bounds.left, area.bottom - bounds.Height(), bounds.right, area.bottom};
        }
    }
    MoveWindow(bounds);
    normalRect = bounds;
    if (iconic) {
        Minimize();
    } else if (zoomed) {
        Maximize();
    }
    if (!keepHidden) {
        Show(visible ? SW_SHOW : SW_HIDE);
    }
    return true;
}
