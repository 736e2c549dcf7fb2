// PBookZipSweeper: the Book archives handed to the mail client, each
// removed when its time is up (checked by a timer on this hidden child of
// the main window) or when the program ends, whichever comes first. An
// archive whose mail command still runs waits without a time.
#pragma once

#include <chrono>
#include <vector>

#include "foundation/string.h"
#include "toolkit/wnd.h"

class PBookZipSweeper : public SWnd {
public:
    static constexpr unsigned TIMER_SWEEP = 1;

    ~PBookZipSweeper() override { RemoveAll(); }

    // Removes path after seconds: at once for 0, only at the end (or when
    // given again) for a negative number. A path given again takes the new
    // time in place of the old.
    void Add(const SString& path, int seconds);
    void RemoveAll();
    int GetPendingCount() const { return static_cast<int>(pending.size()); }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    struct Entry {
        SString path;
        std::chrono::steady_clock::time_point due;
    };
    std::vector<Entry> pending;
};
