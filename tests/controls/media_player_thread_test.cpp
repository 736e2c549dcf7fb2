// The player's reports cross from GStreamer's threads to the window's by
// posted messages; these tests also run under ThreadSanitizer.
#include "controls/media_player_ctrl.h"

#include <gtest/gtest.h>

#include <string>

#include "support/message_pump.h"
#include "toolkit/toolkit_fixture.h"

namespace {

std::string Media(const char* name) {
    return std::string(MELKORA_TEST_MEDIA) + "/" + name;
}

class ThreadedPlayer : public SMediaPlayerCtrl {
public:
    void OnMediaEnded() override { ++ended; }
    void OnMediaTimer() override { ++ticks; }
    int ended = 0;
    int ticks = 0;
};

class MediaPlayerThreadTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        player.SetFakeSinks(true);
        SRect rect = Rect(0, 0, 160, 120);
        ASSERT_TRUE(player.Create("player", 0, 0, &rect, 0));
    }
    void TearDown() override {
        player.Destroy();
        ToolkitTest::TearDown();
    }
    ThreadedPlayer player;
};

TEST_F(MediaPlayerThreadTest, FramesAndTheEndArriveOnTheWindowThread) {
    ASSERT_TRUE(player.OpenMedia(Media("pattern.ogv").c_str(), true));
    ASSERT_TRUE(PumpUntil([&] { return player.ended == 1; }));
    EXPECT_GT(player.ticks, 10);
    SImage shot;
    ASSERT_TRUE(platform->Snapshot(player.GetHandle(), &shot));
    EXPECT_NE(shot.GetPixel(80, 30) & 0xFFFFFF, 0u); // a frame, not the black strip
}

TEST_F(MediaPlayerThreadTest, AnOpenWhileFramesFlowDropsTheOldMediumsReports) {
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(player.OpenMedia(Media("pattern.ogv").c_str(), true));
        PumpFor(150);
    }
    ASSERT_TRUE(player.OpenMedia(Media("tone5s.wav").c_str(), true));
    // The video would have ended by now; its end must not end the song.
    PumpFor(1300);
    EXPECT_EQ(player.ended, 0);
    EXPECT_TRUE(player.IsPlaying());
    player.CloseMedia();
    PumpFor(50);
    EXPECT_EQ(player.ended, 0);
}

} // namespace
