// SThread: starting, posting values back to the owner, the 32 slots in
// flight, the end notice and stopping a worker.
#include "foundation/thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "support/message_pump.h"

namespace {

class Counter : public SThread {
public:
    explicit Counter(int count) : count(count) {}
    ~Counter() override { StopAndJoin(); }
    std::vector<int64_t> received;
    std::vector<bool> postResults;
    std::atomic<int> order{0};
    int startedAt = -1, runAt = -1, loopEndAt = -1, endedAt = -1;

protected:
    void OnThreadStart() override { startedAt = order++; }
    bool Run() override {
        runAt = order++;
        for (int i = 0; i < count; ++i) {
            postResults.push_back(Post(1, static_cast<unsigned>(i)));
        }
        return false;
    }
    void OnLoopEnd() override { loopEndAt = order++; }
    void OnThreadEnd() override { endedAt = order++; }
    void OnPost(unsigned id, SValue* value) override {
        EXPECT_EQ(id, 1u);
        received.push_back(value->GetInt());
    }

private:
    int count;
};

class Blocker : public SThread {
public:
    ~Blocker() override { StopAndJoin(); }

protected:
    bool Run() override {
        entered = true;
        while (!IsStopRequested()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }

public:
    std::atomic<bool> entered{false};
};

class Looper : public SThread {
public:
    ~Looper() override { StopAndJoin(); }
    std::atomic<int> workerPosts{0};

protected:
    void OnPostToWorker(unsigned, SValue* value) override {
        workerPosts += static_cast<int>(value->GetInt());
        if (value->GetInt() == 0) {
            PostQuitMessage(0);
        }
    }
};

class Worker : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_GE(RegisterThread(), 0); }
    void TearDown() override { ResetThreadTable(); }
};

TEST_F(Worker, ValuesReachTheOwnerInOrderAndTheEndNoticeClearsTheThread) {
    Counter worker(10);
    ASSERT_TRUE(worker.Start(false));
    ASSERT_TRUE(PumpUntil([&] { return !worker.HasThread(); }));
    EXPECT_EQ(worker.received, std::vector<int64_t>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(worker.GetValuesInFlight(), 0);
    EXPECT_EQ(worker.startedAt, 0);
    EXPECT_EQ(worker.runAt, 1);
    EXPECT_EQ(worker.loopEndAt, 2);
    EXPECT_EQ(worker.endedAt, 3);
    EXPECT_FALSE(worker.IsActive());
    EXPECT_FALSE(worker.IsRunning());
}

TEST_F(Worker, ThirtyThirdValueInFlightIsDroppedWithoutALeak) {
    Counter worker(40);
    // With wait the owner does not dispatch until the worker has ended, so
    // every value stays in flight.
    ASSERT_TRUE(worker.Start(true));
    ASSERT_EQ(worker.postResults.size(), 40u);
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(worker.postResults[i], i < SThread::VALUE_SLOTS) << "post " << i;
    }
    EXPECT_EQ(worker.GetValuesInFlight(), SThread::VALUE_SLOTS);
    PumpUntil([&] { return worker.GetValuesInFlight() == 0; });
    EXPECT_EQ(worker.received.size(), static_cast<size_t>(SThread::VALUE_SLOTS));
}

TEST_F(Worker, WaitingStartPostsNoEndNotice) {
    Counter worker(0);
    ASSERT_TRUE(worker.Start(true));
    EXPECT_FALSE(worker.HasThread());
    EXPECT_EQ(GetQueueLength(), 0);
    EXPECT_TRUE(worker.Start(true)) << "an ended worker starts again";
}

TEST_F(Worker, StartIsRefusedWhileRunningAndAStopRequestEndsRun) {
    Blocker worker;
    ASSERT_TRUE(worker.Start(false));
    EXPECT_FALSE(worker.Start(false));
    EXPECT_TRUE(worker.IsRunning());
    PumpUntil([&] { return worker.entered.load(); });
    worker.RequestStop();
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (worker.IsActive() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_FALSE(worker.IsActive());
}

TEST_F(Worker, FinishedWorkerStartsAgainOnlyAfterItsNotice) {
    Counter worker(1);
    ASSERT_TRUE(worker.Start(false));
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (worker.IsActive() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(worker.HasThread());
    EXPECT_FALSE(worker.Start(false)) << "SM_THREAD_END has not reached the owner";
    ASSERT_TRUE(PumpUntil([&] { return !worker.HasThread(); }));
    EXPECT_TRUE(worker.Start(false));
    PumpUntil([&] { return !worker.HasThread(); });
    EXPECT_EQ(worker.received.size(), 2u);
}

TEST_F(Worker, PostOutsideTheWorkerDoesNothing) {
    Counter worker(0);
    EXPECT_FALSE(worker.Post(1, 5u));
    SValue value;
    EXPECT_FALSE(worker.Post(1, &value));
    EXPECT_EQ(worker.GetValuesInFlight(), 0);
    EXPECT_EQ(GetQueueLength(), 0);
}

TEST_F(Worker, DestroyingTheObjectStopsABlockedRun) {
    auto worker = std::make_unique<Blocker>();
    ASSERT_TRUE(worker->Start(false));
    PumpUntil([&] { return worker->entered.load(); });
    worker.reset(); // asks, then joins; returns only when the thread is gone
    SUCCEED();
}

TEST_F(Worker, WorkerLoopReceivesPostsAndEndsOnQuit) {
    Looper worker;
    ASSERT_TRUE(worker.Start(false));
    SValue value;
    value.SetInt(5);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!worker.PostToWorker(2, &value) && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    value.SetInt(0);
    worker.PostToWorker(2, &value);
    ASSERT_TRUE(PumpUntil([&] { return !worker.HasThread(); }));
    EXPECT_EQ(worker.workerPosts.load(), 5);
}

TEST_F(Worker, OwnerWithoutARowCannotStart) {
    std::atomic<bool> started{true};
    std::thread other([&] {
        Counter worker(0);
        started = worker.Start(true);
    });
    other.join();
    EXPECT_FALSE(started.load());
}

} // namespace
