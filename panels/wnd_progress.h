// PWndProgress: the small topmost window of 300 by 35 with a bar of range
// 0 to 1000 that stands, centred on the work area, while long work runs.
// RunUntil holds the window thread's other windows disabled and pumps
// messages (so the bar paints and the player keeps time) until the work,
// done elsewhere, says it has ended.
#pragma once

#include <functional>

#include "toolkit/range_ctrls.h"
#include "toolkit/wnd.h"

class PWndProgress : public SWnd {
public:
    static constexpr int WIDTH = 300;
    static constexpr int HEIGHT = 35;
    static constexpr int RANGE = 1000;

    // Makes and shows the window; title names it to the desktop (it has no
    // frame to show it). False when it could not be made.
    bool Open(const char* title);
    // Sets the bar, clamped to 0 to RANGE; repaints only on a change.
    void SetProgress(int thousandths);
    int GetProgress() const { return bar.GetValue(); }
    // Runs a modal loop until done() is true, asked every 50 ms. False when the loop ended
    // otherwise (the window went, or the program is quitting).
    bool RunUntil(std::function<bool()> done);

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    static constexpr unsigned TIMER_POLL = 1;
    SProgressCtrl bar;
    std::function<bool()> isDone;
    bool finished = false;
};
