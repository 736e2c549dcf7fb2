#include "toolkit/hosted_child.h"

#include <algorithm>
#include <vector>

#include "toolkit/messages.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd.h"

namespace {

// The hosted children of this thread's windows.
std::vector<SHostedChild*>& Children() {
    static thread_local std::vector<SHostedChild*> children;
    return children;
}

} // namespace

SHostedChild::~SHostedChild() {
    Detach();
}

bool SHostedChild::Attach(SWnd* window, void* widget) {
    Detach();
    if (window == nullptr || window->GetHandle() == 0 || widget == nullptr) {
        return false;
    }
    HWND topHandle = window->GetTopWindow();
    if (!GetPlatform()->HostChild(window->GetHandle(), topHandle, widget)) {
        return false;
    }
    owner = window->GetHandle();
    top = topHandle;
    placed = false;
    // The widget starts hidden, whatever its maker left it as, so that its
    // state and ours agree; Sync shows it when the window is visible.
    GetPlatform()->ShowHostedChild(owner, false);
    shown = false;
    Children().push_back(this);
    Sync();
    return true;
}

void SHostedChild::Sync() {
    SWnd* window = SWnd::FromHandle(owner);
    SWnd* topWnd = SWnd::FromHandle(top);
    if (window == nullptr || topWnd == nullptr) {
        return;
    }
    // The client area in screen coordinates, less the surface's corner.
    SRect client = window->GetClientRect();
    window->ClientToScreen(&client);
    SRect surface = topWnd->GetWindowRect();
    SRect place{client.left - surface.left, client.top - surface.top, client.right - surface.left,
                client.bottom - surface.top};
    if (!placed || !(place == rect)) {
        rect = place;
        placed = true;
        GetPlatform()->MoveHostedChild(owner, rect);
    }
    bool visible = window->IsVisible() && !place.IsEmpty();
    if (visible != shown) {
        shown = visible;
        GetPlatform()->ShowHostedChild(owner, shown);
    }
}

void SHostedChild::Focus(bool focus) {
    if (owner != 0) {
        GetPlatform()->FocusHostedChild(owner, focus);
    }
}

void SHostedChild::Detach() {
    if (owner == 0) {
        return;
    }
    std::vector<SHostedChild*>& children = Children();
    children.erase(std::remove(children.begin(), children.end(), this), children.end());
    GetPlatform()->DestroyHostedChild(owner);
    owner = 0;
    top = 0;
    placed = false;
    shown = false;
}

void SyncHostedChildren(HWND top) {
    std::vector<SHostedChild*> children = Children(); // a copy: Sync never changes the list
    for (SHostedChild* child : children) {
        if (child->GetTop() == top) {
            child->Sync();
        }
    }
}

SHostedKey RouteHostedKey(unsigned virtualKey, bool ctrl, bool alt) {
    if ((virtualKey >= VK_F1 && virtualKey <= VK_F12) || virtualKey == VK_ESCAPE) {
        return SHostedKey::WINDOW;
    }
    if (ctrl || alt) {
        return SHostedKey::EITHER;
    }
    switch (virtualKey) {
    case VK_SPACE:
    case VK_PRIOR:
    case VK_NEXT:
    case VK_END:
    case VK_HOME:
    case VK_LEFT:
    case VK_UP:
    case VK_RIGHT:
    case VK_DOWN:
        return SHostedKey::CHILD;
    default:
        return SHostedKey::EITHER;
    }
}
