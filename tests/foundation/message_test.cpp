// Handles, per-thread queues, posting across threads and timers.
#include "foundation/message.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

std::atomic<uint64_t> fakeNow{5000};
uint64_t FakeClock() {
    return fakeNow.load();
}

struct Recorder : SMessageTarget {
    LRESULT HandleMessage(HWND, unsigned message, WPARAM wParam, LPARAM) override {
        messages.push_back(message);
        values.push_back(wParam);
        return static_cast<LRESULT>(wParam) + 1;
    }
    std::vector<unsigned> messages;
    std::vector<WPARAM> values;
};

class MessageQueue : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_GE(RegisterThread(), 0); }
    void TearDown() override {
        SetMessageClock(nullptr, true);
        ResetThreadTable();
    }
    // Dispatches what is queued; returns how many ran.
    static int Drain() {
        int count = 0;
        SMessage message;
        while (PeekMessage(&message, true)) {
            DispatchMessage(&message);
            ++count;
        }
        return count;
    }
};

TEST_F(MessageQueue, SendCallsAtOnceAndPostWaitsForTheLoop) {
    Recorder target;
    HWND hwnd = RegisterTarget(&target);
    ASSERT_NE(hwnd, 0u);
    EXPECT_EQ(SendMessage(hwnd, 1000, 41, 0), 42);
    EXPECT_TRUE(PostMessage(hwnd, 1001, 7, 0));
    EXPECT_EQ(target.messages, std::vector<unsigned>({1000}));
    EXPECT_EQ(Drain(), 1);
    EXPECT_EQ(target.messages, std::vector<unsigned>({1000, 1001}));
    UnregisterTarget(hwnd);
}

TEST_F(MessageQueue, UnknownAndStaleHandlesAreRefused) {
    EXPECT_EQ(SendMessage(0, 1000, 1, 0), 0);
    EXPECT_FALSE(PostMessage(0, 1000, 1, 0));
    EXPECT_FALSE(PostMessage(0xFF123456u, 1000, 1, 0));
    Recorder target;
    HWND hwnd = RegisterTarget(&target);
    PostMessage(hwnd, 1000, 1, 0);
    UnregisterTarget(hwnd);
    EXPECT_EQ(FindTarget(hwnd), nullptr);
    EXPECT_FALSE(PostMessage(hwnd, 1000, 1, 0));
    EXPECT_EQ(SendMessage(hwnd, 1000, 1, 0), 0);
    EXPECT_EQ(Drain(), 0) << "a message queued for a dropped handle must go with it";
    EXPECT_TRUE(target.messages.empty());
}

TEST_F(MessageQueue, PostsKeepTheirOrderAndQuitEndsGetMessage) {
    Recorder target;
    HWND hwnd = RegisterTarget(&target);
    for (unsigned i = 0; i < 5; ++i) {
        PostMessage(hwnd, 2000 + i, i, 0);
    }
    PostQuitMessage(3);
    SMessage message;
    int dispatched = 0;
    while (GetMessage(&message)) {
        DispatchMessage(&message);
        ++dispatched;
    }
    EXPECT_EQ(dispatched, 5);
    EXPECT_EQ(message.message, WM_QUIT);
    EXPECT_EQ(message.wParam, 3u);
    EXPECT_EQ(target.messages, std::vector<unsigned>({2000, 2001, 2002, 2003, 2004}));
    UnregisterTarget(hwnd);
}

TEST_F(MessageQueue, PostsFromOtherThreadsWakeTheOwnerAndAllArrive) {
    Recorder target;
    HWND hwnd = RegisterTarget(&target);
    constexpr int THREADS = 4;
    constexpr int EACH = 200;
    std::vector<std::thread> threads;
    for (int t = 0; t < THREADS; ++t) {
        threads.emplace_back([hwnd, t] {
            for (int i = 0; i < EACH; ++i) {
                PostMessage(hwnd, 3000, static_cast<WPARAM>(t * EACH + i), 0);
            }
        });
    }
    SMessage message;
    int received = 0;
    while (received < THREADS * EACH && GetMessage(&message)) {
        DispatchMessage(&message);
        ++received;
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ASSERT_EQ(received, THREADS * EACH);
    // Each sender's own posts arrive in the order it made them.
    std::vector<int> last(THREADS, -1);
    for (WPARAM value : target.values) {
        int sender = static_cast<int>(value) / EACH;
        EXPECT_GT(static_cast<int>(value), last[sender]);
        last[sender] = static_cast<int>(value);
    }
    UnregisterTarget(hwnd);
}

TEST_F(MessageQueue, WorkerThreadGetsARowOfItsOwnAndSendingAcrossIsRefused) {
    Recorder target;
    HWND hwnd = RegisterTarget(&target);
    std::atomic<LRESULT> sent{-1};
    std::atomic<int> row{-1};
    std::thread worker([&] {
        row = RegisterThread();
        sent = SendMessage(hwnd, 1000, 5, 0);
        UnregisterThread(0);
    });
    worker.join();
    EXPECT_GE(row.load(), 0);
    EXPECT_NE(row.load(), FindThreadEntry(GetCurrentThreadId()));
    EXPECT_EQ(sent.load(), 0) << "a window is only sent to from its own thread";
    EXPECT_TRUE(target.messages.empty());
    UnregisterTarget(hwnd);
}

TEST_F(MessageQueue, TimersFireOnTheFakeClockOnlyWhenDue) {
    SetMessageClock(FakeClock, false);
    Recorder target;
    HWND hwnd = RegisterTarget(&target);
    ASSERT_TRUE(SetTimer(hwnd, 7, 100));
    EXPECT_EQ(Drain(), 0);
    fakeNow += 99;
    EXPECT_EQ(Drain(), 0);
    fakeNow += 1;
    EXPECT_EQ(Drain(), 1);
    EXPECT_EQ(target.messages, std::vector<unsigned>({WM_TIMER}));
    EXPECT_EQ(target.values, std::vector<WPARAM>({7}));
    fakeNow += 100;
    EXPECT_EQ(Drain(), 1) << "the timer repeats";
    ASSERT_TRUE(KillTimer(hwnd, 7));
    fakeNow += 1000;
    EXPECT_EQ(Drain(), 0);
    EXPECT_FALSE(KillTimer(hwnd, 7));
    UnregisterTarget(hwnd);
}

TEST_F(MessageQueue, PostedMessagesComeBeforeTimers) {
    SetMessageClock(FakeClock, false);
    Recorder target;
    HWND hwnd = RegisterTarget(&target);
    SetTimer(hwnd, 1, 10);
    fakeNow += 50;
    PostMessage(hwnd, 4000, 0, 0);
    Drain();
    ASSERT_EQ(target.messages.size(), 2u);
    EXPECT_EQ(target.messages[0], 4000u);
    EXPECT_EQ(target.messages[1], WM_TIMER);
    UnregisterTarget(hwnd);
}

TEST_F(MessageQueue, RemoveMessagesTakesOnlyTheRange) {
    Recorder target;
    HWND hwnd = RegisterTarget(&target);
    PostMessage(hwnd, WM_KEYDOWN, 1, 0);
    PostMessage(hwnd, 5000, 2, 0);
    PostMessage(hwnd, WM_MOUSEMOVE, 3, 0);
    EXPECT_EQ(RemoveMessages(WM_KEYFIRST, WM_KEYLAST), 1);
    EXPECT_EQ(GetQueueLength(), 2);
    Drain();
    EXPECT_EQ(target.messages, std::vector<unsigned>({5000, WM_MOUSEMOVE}));
    UnregisterTarget(hwnd);
}

TEST(ThreadTable, HoldsAtMostItsSizeAndGivesRowsBack) {
    ResetThreadTable();
    std::vector<std::thread> threads;
    std::atomic<int> refused{0};
    std::atomic<int> registered{0};
    std::atomic<bool> release{false};
    for (int i = 0; i < THREAD_TABLE_SIZE + 3; ++i) {
        threads.emplace_back([&] {
            if (RegisterThread() < 0) {
                ++refused;
            } else {
                ++registered;
            }
            while (!release.load()) {
                std::this_thread::yield();
            }
            UnregisterThread(0);
        });
    }
    while (registered.load() + refused.load() < THREAD_TABLE_SIZE + 3) {
        std::this_thread::yield();
    }
    release = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(registered.load(), THREAD_TABLE_SIZE);
    EXPECT_EQ(refused.load(), 3);
    EXPECT_GE(RegisterThread(), 0) << "rows are free again";
    ResetThreadTable();
}

} // namespace
