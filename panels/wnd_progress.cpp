#include "panels/wnd_progress.h"

#include <algorithm>

#include "foundation/message_numbers.h"
#include "foundation/network.h"
#include "toolkit/messages.h"
#include "toolkit/sys_colors.h"

bool PWndProgress::Open(const char* title) {
    SRect area{0, 0, 1024, 768};
    GetWorkArea(&area);
    int left = area.left + (area.Width() - WIDTH) / 2;
    int top = area.top + (area.Height() - HEIGHT) / 2;
    SRect rect{left, top, left + WIDTH, top + HEIGHT};
    if (!Create(title, WS_POPUP, WS_EX_TOOLWINDOW | WS_EX_TOPMOST, &rect, 0)) {
        return false;
    }
    SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
    SRect place{5, 5, WIDTH - 5, HEIGHT - 5};
    bar.Create("", WS_VISIBLE, 0, &place, GetHandle());
    bar.SetRange(0, RANGE);
    bar.SetValue(0);
    // Keys do not end the run: the work decides when it is over.
    enterKey = false;
    escapeKey = false;
    Show(SW_SHOWNA);
    return true;
}

void PWndProgress::SetProgress(int thousandths) {
    int value = std::clamp(thousandths, 0, RANGE);
    if (value != bar.GetValue()) {
        bar.SetValue(value);
        bar.Invalidate();
    }
}

bool PWndProgress::RunUntil(std::function<bool()> done) {
    if (GetHandle() == 0 || !done) {
        return false;
    }
    isDone = std::move(done);
    finished = isDone();
    if (!finished) {
        SetTimer(GetHandle(), TIMER_POLL, 50);
        DoModal(0, 0, true, false, false);
        if (GetHandle() != 0) {
            KillTimer(GetHandle(), TIMER_POLL);
        }
    }
    isDone = nullptr;
    return finished;
}

LRESULT PWndProgress::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_TIMER:
        if (wParam == TIMER_POLL && isDone && isDone()) {
            finished = true;
            EndModal(1);
        }
        return 0;
    case WM_CLOSE:
    case SM_CANCEL:
        // The work cannot be cut short; the window goes when it ends.
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
