// Times the window core on the headless platform: sending, posting on one
// thread, posting from another thread, creating then painting a window
// with 500 children, and the frame of one ticker step in a 1024 x 768
// window of 500 children. Prints one line per measure with the median of
// the runs: "name value unit".
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#ifdef MELKORA_BENCH_TICKER
#include "controls/media_ctrl.h"
#endif
#include "toolkit/platform/headless/headless_platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

class Counting : public SWnd {
public:
    long count = 0;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_USER) {
            ++count;
            return 0;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
};

// Millions of messages per second.
double SendRate(HWND target, int count) {
    Clock::time_point start = Clock::now();
    for (int i = 0; i < count; ++i) {
        SendMessage(target, WM_USER, 0, 0);
    }
    return count / Seconds(start) / 1e6;
}

double PostRate(HWND target, int count) {
    Clock::time_point start = Clock::now();
    SMessage message;
    for (int done = 0; done < count;) {
        for (int i = 0; i < 1000; ++i) {
            PostMessage(target, WM_USER, 0, 0);
        }
        while (PeekMessage(&message, true)) {
            DispatchMessage(&message);
            ++done;
        }
    }
    return count / Seconds(start) / 1e6;
}

double CrossThreadPostRate(HWND target, int count) {
    Clock::time_point start = Clock::now();
    std::thread sender([target, count] {
        for (int i = 0; i < count; ++i) {
            PostMessage(target, WM_USER, 0, 0);
        }
    });
    SMessage message;
    for (int done = 0; done < count && GetMessage(&message);) {
        DispatchMessage(&message);
        ++done;
    }
    sender.join();
    return count / Seconds(start) / 1e6;
}

// Milliseconds to create a 1000 x 800 window with 500 coloured children
// (25 rows of 20), and to paint it once.
void CreateAndPaint(SHeadlessPlatform* platform, double* createMs, double* paintMs) {
    Clock::time_point start = Clock::now();
    SWnd top;
    SRect bounds{0, 0, 1000, 800};
    top.Create("bench", WS_VISIBLE, 0, &bounds, 0);
    top.SetBackColor(0xFFFFFF);
    std::vector<SWnd> children(500);
    for (int i = 0; i < 500; ++i) {
        int x = (i % 20) * 50;
        int y = (i / 20) * 32;
        SRect rect{x + 2, y + 2, x + 48, y + 30};
        children[i].Create("child", WS_VISIBLE | WS_BORDER, 0, &rect, top.GetHandle());
        children[i].SetBackColor(static_cast<uint32_t>(i * 0x010305) & 0xFFFFFF);
        children[i].SetAnchor(ANCHOR_CENTER_X);
    }
    *createMs = Seconds(start) * 1000;
    start = Clock::now();
    SImage shot;
    platform->Snapshot(top.GetHandle(), &shot);
    *paintMs = Seconds(start) * 1000;
}

#ifdef MELKORA_BENCH_TICKER
// A 1024 x 768 window with 500 bordered, coloured children and one ticker
// (a media control scrolling a title) on the fake clock. Milliseconds of a
// ticker step (its timer message, its invalidation and the frame the
// display draws, clipped to the damage), and of a frame of the whole window.
void TickerFrame(SHeadlessPlatform* platform, double* stepMs, double* wholeMs) {
    SWnd top;
    SRect bounds{0, 0, 1024, 768};
    top.Create("bench", WS_VISIBLE, 0, &bounds, 0);
    top.SetBackColor(0xFFFFFF);
    std::vector<SWnd> children(500);
    for (int i = 0; i < 500; ++i) {
        int x = (i % 20) * 51;
        int y = 40 + (i / 20) * 29;
        SRect rect{x + 2, y + 2, x + 49, y + 27};
        children[i].Create("child", WS_VISIBLE | WS_BORDER, 0, &rect, top.GetHandle());
        children[i].SetBackColor(static_cast<uint32_t>(i * 0x010305) & 0xFFFFFF);
    }
    SMediaCtrl ticker;
    SRect tickerRect{4, 4, 404, 36};
    ticker.Create("Melkora Browser plays the folders of your collection, one after another",
                  WS_VISIBLE, 0, &tickerRect, top.GetHandle());
    ticker.SetAutoScroll(-60, 0, true);
    if (!ticker.IsAutoScrollOn()) {
        fprintf(stderr, "the ticker does not run\n");
        exit(1);
    }
    platform->PresentFrame(top.GetHandle());
    SRect damaged;
    constexpr int STEPS = 200;
    Clock::time_point start = Clock::now();
    for (int i = 0; i < STEPS; ++i) {
        SHeadlessPlatform::AdvanceClock(MEDIA_TICKER_PERIOD);
        SHeadlessPlatform::DispatchPending();
        damaged = platform->PresentFrame(top.GetHandle());
    }
    if (damaged != tickerRect) {
        fprintf(stderr, "a ticker step repainted %d,%d-%d,%d\n", damaged.left, damaged.top,
                damaged.right, damaged.bottom);
        exit(1);
    }
    *stepMs = Seconds(start) * 1000 / STEPS;
    constexpr int WHOLE = 20;
    start = Clock::now();
    for (int i = 0; i < WHOLE; ++i) {
        top.Invalidate();
        platform->PresentFrame(top.GetHandle());
    }
    *wholeMs = Seconds(start) * 1000 / WHOLE;
}
#endif

} // namespace

int main(int argc, char** argv) {
    int runs = argc > 1 ? std::max(1, atoi(argv[1])) : 5;
    if (!ToolkitStart(nullptr, SW_SHOW, false, false, false)) {
        return 1;
    }
    auto* platform = static_cast<SHeadlessPlatform*>(GetPlatform());
    Counting target;
    SRect bounds{0, 0, 10, 10};
    target.Create("target", 0, 0, &bounds, 0);
    std::vector<double> send, post, cross, create, paint, step, whole;
    for (int run = 0; run < runs; ++run) {
        send.push_back(SendRate(target.GetHandle(), 2000000));
        post.push_back(PostRate(target.GetHandle(), 500000));
        cross.push_back(CrossThreadPostRate(target.GetHandle(), 500000));
        double createMs = 0, paintMs = 0;
        CreateAndPaint(platform, &createMs, &paintMs);
        create.push_back(createMs);
        paint.push_back(paintMs);
#ifdef MELKORA_BENCH_TICKER
        SHeadlessPlatform::UseFakeClock(true);
        double stepMs = 0, wholeMs = 0;
        TickerFrame(platform, &stepMs, &wholeMs);
        SHeadlessPlatform::UseFakeClock(false);
        step.push_back(stepMs);
        whole.push_back(wholeMs);
#endif
    }
    printf("send %.1f million/s\n", Median(send));
    printf("post %.2f million/s\n", Median(post));
    printf("post-cross-thread %.2f million/s\n", Median(cross));
    printf("create-500 %.2f ms\n", Median(create));
    printf("paint-500 %.2f ms\n", Median(paint));
    if (!step.empty()) {
        printf("ticker-step-frame %.3f ms\n", Median(step));
        printf("whole-frame-1024x768 %.2f ms\n", Median(whole));
    }
    target.Destroy();
    ToolkitEnd();
    return 0;
}
