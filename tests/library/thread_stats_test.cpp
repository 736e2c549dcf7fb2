// The statistics worker: the finished table reaches the owner's thread by a
// posted message, a second start is refused while a run is active, and the
// empty ini files are gone when the run ends.
#include "library/thread_stats.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <thread>

#include "support/message_pump.h"
#include "support/temp_dir.h"

namespace {

class StatsWorker : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_GE(RegisterThread(), 0); }
    void TearDown() override { ResetThreadTable(); }
};

TEST_F(StatsWorker, PublishesTheFinishedTableThenPurgesEmptyIni) {
    TempDir dir;
    dir.Write("Rock/Album/a.mp3", "");
    dir.Write("Rock/Album/b.ogg", "");
    dir.Write("Rock/clip.mkv", "");
    dir.Write("Radio/station.asx", "");
    dir.Write("Rock/Album.ini", "");
    dir.Write("Rock/kept.ini", "[x]\n");

    std::optional<PStatsTable> received;
    PThreadStats worker([&](PStatsTable&& table) { received = std::move(table); });
    ASSERT_TRUE(worker.StartCount(dir.Path().c_str()));
    ASSERT_TRUE(PumpUntil([&] { return received.has_value() && !worker.HasThread(); }));

    EXPECT_EQ(received->FormatTotals(), "2 songs, 1 video, 1 radio");
    int album = received->Find((dir.Path() + "/Rock/Album/").c_str());
    ASSERT_GE(album, 0);
    EXPECT_EQ(received->songs[album], 2);
    EXPECT_FALSE(std::filesystem::exists(dir / "Rock/Album.ini"));
    EXPECT_TRUE(std::filesystem::exists(dir / "Rock/kept.ini"));
}

TEST_F(StatsWorker, SecondStartIsRefusedWhileARunIsActiveAndAllowedAfter) {
    TempDir first;
    TempDir second;
    first.Write("a.mp3", "");
    second.Write("a.mp3", "");
    second.Write("b.mp3", "");

    std::vector<uint32_t> totals;
    PThreadStats worker([&](PStatsTable&& table) { totals.push_back(table.totalSongs); });
    ASSERT_TRUE(worker.StartCount(first.Path().c_str()));
    // The run holds the worker until its end notice is dispatched here.
    EXPECT_FALSE(worker.StartCount(second.Path().c_str()));
    ASSERT_TRUE(PumpUntil([&] { return !totals.empty() && !worker.HasThread(); }));
    ASSERT_EQ(totals, std::vector<uint32_t>{1});

    ASSERT_TRUE(worker.StartCount(second.Path().c_str()));
    ASSERT_TRUE(PumpUntil([&] { return totals.size() == 2 && !worker.HasThread(); }));
    EXPECT_EQ(totals, (std::vector<uint32_t>{1, 2}));
}

TEST_F(StatsWorker, DestroyingARunningWorkerDeliversNothing) {
    TempDir dir;
    for (int i = 0; i < 200; ++i) {
        dir.Write("F" + std::to_string(i) + "/a.mp3", "");
    }
    int calls = 0;
    {
        PThreadStats worker([&](PStatsTable&&) { ++calls; });
        ASSERT_TRUE(worker.StartCount(dir.Path().c_str()));
    }
    SMessage message;
    while (PeekMessage(&message, true)) {
        DispatchMessage(&message);
    }
    EXPECT_EQ(calls, 0);
}

} // namespace
