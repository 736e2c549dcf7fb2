// The Book made on a worker thread: the progress reaches the owner's
// thread rising to 1000, the result is read after the join, a second start
// is refused while a run is active, and a job destroyed while it runs
// waits for its run and delivers nothing.
#include "pages/book_job.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/message_pump.h"
#include "support/temp_dir.h"

namespace {

class BookJob : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_GE(RegisterThread(), 0);
        for (int i = 0; i < 40; ++i) {
            root.Write("Folder " + std::to_string(i) + "/Sub/a.mp3", "");
        }
    }
    void TearDown() override { ResetThreadTable(); }

    TempDir root;
};

TEST_F(BookJob, ProgressRisesOnTheOwnersThreadAndTheResultFollowsTheJoin) {
    PBookJob job;
    job.GetBook().SetRoot(root.Path().c_str());
    job.GetBook().threads = 2;
    std::vector<int> seen;
    std::string book = root / "Book.htm";
    ASSERT_TRUE(job.StartBuild(book.c_str(), true, [&](int value) { seen.push_back(value); }));
    EXPECT_FALSE(job.StartBuild(book.c_str(), true, nullptr));
    ASSERT_TRUE(PumpUntil([&] { return job.IsDone(); }));
    EXPECT_TRUE(job.Finish());
    EXPECT_TRUE(std::filesystem::exists(book));
    EXPECT_TRUE(std::filesystem::exists(root / "Book/book79.png"));
    // Notes left in flight after the join are dropped with the handler.
    PumpFor(20);
    ASSERT_FALSE(seen.empty());
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_LE(seen.back(), 1000);
    EXPECT_GE(job.GetProgress(), seen.back());
}

TEST_F(BookJob, AFailedRunGivesFalseWithItsReason) {
    PBookJob job;
    job.GetBook().SetRoot(root.Path().c_str());
    std::string book = root / "missing/deeper/Book.htm";
    ASSERT_TRUE(job.StartBuild(book.c_str(), false, nullptr));
    ASSERT_TRUE(PumpUntil([&] { return job.IsDone(); }));
    EXPECT_FALSE(job.Finish());
    EXPECT_FALSE(job.GetBook().GetFailure().IsEmpty());
}

TEST_F(BookJob, DestroyedWhileRunningItWaitsAndDeliversNothing) {
    int calls = 0;
    std::string book = root / "Book.htm";
    {
        PBookJob job;
        job.GetBook().SetRoot(root.Path().c_str());
        ASSERT_TRUE(job.StartBuild(book.c_str(), true, [&](int) { ++calls; }));
    }
    SMessage message;
    while (PeekMessage(&message, true)) {
        DispatchMessage(&message);
    }
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(std::filesystem::exists(book));
}

} // namespace
