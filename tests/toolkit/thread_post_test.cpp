// Workers and windows: a worker's values reach the owner through the loop,
// and posts from other threads reach a window on its own thread.
#include "foundation/thread.h"

#include <atomic>
#include <thread>

#include "toolkit_fixture.h"

namespace {

class Progress : public SThread {
public:
    ~Progress() override { StopAndJoin(); }
    std::vector<int64_t> seen;
    HWND window = 0;

protected:
    bool Run() override {
        for (unsigned i = 1; i <= 5; ++i) {
            Post(7, i);
        }
        return false;
    }
    void OnPost(unsigned, SValue* value) override {
        seen.push_back(value->GetInt());
        if (value->GetInt() == 5) {
            PostMessage(window, WM_CLOSE, 0, 0);
        }
    }
};

class QuitOnDestroy : public RecordingWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_DESTROY) {
            PostQuitMessage(0);
        }
        return RecordingWnd::OnMessage(message, wParam, lParam);
    }
};

using WorkerAndWindow = ToolkitTest;

TEST_F(WorkerAndWindow, WorkerValuesArriveThroughTheMainLoop) {
    QuitOnDestroy wnd;
    ASSERT_TRUE(Make(wnd, "main", Rect(0, 0, 10, 10), 0, 0));
    Progress worker;
    worker.window = wnd.GetHandle();
    ASSERT_TRUE(worker.Start(false));
    bool run = true;
    EXPECT_EQ(RunLoop(&run, nullptr, nullptr), 0);
    EXPECT_EQ(worker.seen, std::vector<int64_t>({1, 2, 3, 4, 5}));
    EXPECT_EQ(wnd.GetHandle(), 0u);
}

TEST_F(WorkerAndWindow, PostsFromManyThreadsReachTheWindowOnItsThread) {
    class Tally : public RecordingWnd {
    public:
        int total = 0;
        unsigned thread = 0;
        bool wrongThread = false;
        LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
            if (message == WM_USER) {
                wrongThread |= GetCurrentThreadId() != thread;
                if (++total == 400) {
                    PostQuitMessage(0);
                }
                return 0;
            }
            return SWnd::OnMessage(message, wParam, lParam);
        }
    } wnd;
    wnd.thread = GetCurrentThreadId();
    ASSERT_TRUE(Make(wnd, "main", Rect(0, 0, 10, 10), 0, 0));
    HWND target = wnd.GetHandle();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([target] {
            for (int i = 0; i < 100; ++i) {
                PostMessage(target, WM_USER, 0, 0);
            }
        });
    }
    bool run = true;
    RunLoop(&run, nullptr, nullptr);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wnd.total, 400);
    EXPECT_FALSE(wnd.wrongThread);
}

} // namespace
