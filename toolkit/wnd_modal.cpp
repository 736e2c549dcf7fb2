// The modal run of a top-level window: the windows it makes wait, the run
// itself over RunModalLoop, and its end. Windows are remembered by handle,
// since any of them may be destroyed while the run goes on.
#include <vector>

#include "toolkit/platform/platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

// The owner a shown owner chain ends in, starting from window's top-level
// window; 0 when that window has no owner.
HWND TopOwner(const SWnd* window) {
    SWnd* top = SWnd::FromHandle(window->GetTopWindow());
    if (top == nullptr) {
        return 0;
    }
    HWND found = 0;
    // A chain of owners cannot be longer than the thread's windows; the
    // bound ends a loop of owners set by mistake.
    for (int steps = 0; steps < 4096; ++steps) {
        SWnd* owner = SWnd::FromHandle(top->GetOwner());
        if (owner == nullptr || owner == window) {
            break;
        }
        found = owner->GetHandle();
        top = owner;
    }
    return found;
}

// The windows to disable for a modal run of window: top-level windows only
// (a child follows its top-level window) that are enabled now, so that one
// already disabled stays so afterwards.
std::vector<HWND> WaitingWindows(SWnd* window, HWND topOwner, bool allThreadWindows,
                                 bool excludeOwned) {
    std::vector<HWND> list;
    if (!allThreadWindows) {
        SWnd* owner = SWnd::FromHandle(topOwner);
        if (owner != nullptr && owner->IsEnabled()) {
            list.push_back(topOwner);
        }
        return list;
    }
    SArray<SWnd*> orphans;
    window->GetOrphans(&orphans);
    for (int i = 0; i < orphans.GetCount(); ++i) {
        SWnd* other = orphans.GetAt(i);
        if (other == window || !other->IsEnabled()) {
            continue;
        }
        if (excludeOwned) {
            SWnd* owner = SWnd::FromHandle(other->GetOwner());
            if (owner != nullptr && owner->IsVisible()) {
                continue;
            }
        }
        list.push_back(other->GetHandle());
    }
    return list;
}

} // namespace

void SWnd::SetOwner(HWND value) {
    owner = value;
    if (handle != 0 && parent == 0) {
        GetPlatform()->SetSurfaceOwner(handle, value);
    }
}

int SWnd::DoModal(WPARAM first, LPARAM second, bool allThreadWindows, bool excludeOwned,
                  bool hideAfter) {
    if (handle == 0 || parent != 0) {
        return 0;
    }
    HWND self = handle;
    HWND topOwner = TopOwner(this);
    std::vector<HWND> waiting = WaitingWindows(this, topOwner, allThreadWindows, excludeOwned);
    for (HWND other : waiting) {
        SWnd* wnd = FromHandle(other);
        if (wnd != nullptr) {
            wnd->Enable(false);
        }
    }
    modalResult = 0;
    isModal = true;
    if (SendMessage(self, SM_MODAL_START, first, second) != 0) {
        isModal = false;
    } else {
        if (!IsVisible()) {
            Show(SW_SHOW);
        }
        bool run = true;
        RunModalLoop(this, &run, nullptr, nullptr);
        // A run ended by WM_QUIT leaves the window modal; it is not any more.
        if (FromHandle(self) == this) {
            isModal = false;
        }
        if (hideAfter && FromHandle(self) == this && handle != 0 && IsVisible()) {
            SWnd* ownerWnd = FromHandle(owner);
            if (ownerWnd != nullptr) {
                ownerWnd->Enable(true);
            }
            Show(SW_HIDE);
        }
    }
    for (HWND other : waiting) {
        SWnd* wnd = FromHandle(other);
        if (wnd != nullptr) {
            wnd->Enable(true);
        }
    }
    SWnd* topOwnerWnd = FromHandle(topOwner);
    if (topOwnerWnd != nullptr && topOwnerWnd->IsVisible()) {
        GetPlatform()->ActivateSurface(topOwner);
    }
    return modalResult;
}

void SWnd::EndModal(int result) {
    if (isModal) {
        modalResult = result;
        isModal = false;
    }
}
