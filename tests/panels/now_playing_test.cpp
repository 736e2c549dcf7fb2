// What the now-playing panel and the strip both show of the player, on the
// headless platform: the elapsed time while the seek bar is dragged and
// after, a length learned late or never, and a pick past the queue menu.
#include "panels/now_playing.h"

#include "controls/media_ctrl.h"
#include "controls/media_layout.h"
#include "panels/progress_ctrl.h"
#include "panels/wnd_play.h"
#include "recording_host.h"
#include "toolkit/toolkit_fixture.h"

namespace {

class NowPlayingTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 60)));
        ASSERT_TRUE(bar.Create("", WS_VISIBLE, 0, &barRect, top.GetHandle()));
        SRect place = Rect(0, 30, 80, 50);
        ASSERT_TRUE(elapsed.Create("", WS_VISIBLE, 0, &place, top.GetHandle()));
    }
    void TearDown() override {
        elapsed.Destroy();
        bar.Destroy();
        top.Destroy();
        ToolkitTest::TearDown();
    }
    RecordingHost host;
    SWnd top;
    SRect barRect = Rect(50, 10, 250, 19); // 200 wide
    PProgressCtrl bar{&host};
    SMediaCtrl elapsed;
};

TEST_F(NowPlayingTest, TheElapsedTimeShowsTheDragInRedThenThePlayerAgain) {
    const uint32_t green = 0x00AA00;
    const uint32_t red = MediaColor(DRAG_TIME_COLOR);
    struct Step {
        const char* what;
        int positionMs;
        int lengthMs;
        int pressX; // -1: no press; -2: release
        const char* text;
        int length;
        bool dragged;
    } steps[] = {
        {"an unknown length counts as 0", 61500, -1, -1, "0:01:01", 0, false},
        {"a negative position counts as 0", -5000, 200900, -1, "0:00:00", 200, false},
        {"the length learned late sets the range", 61500, 200900, -1, "0:01:01", 200, false},
        {"a press drags", 61500, 200900, 150, "0:02:30", 200, true},
        {"the release shows the player again", 61500, 200900, -2, "0:01:01", 200, false},
    };
    for (const Step& step : steps) {
        host.positionMs = step.positionMs;
        host.lengthMs = step.lengthMs;
        if (step.pressX >= 0) {
            platform->Press(top.GetHandle(), barRect.left + step.pressX, 14);
        } else if (step.pressX == -2) {
            platform->Release(top.GetHandle(), barRect.left + 150, 14);
        }
        PPlayingTime time = ShowPlayingTime(host, bar, elapsed, green);
        EXPECT_EQ(elapsed.GetText(), step.text) << step.what;
        EXPECT_EQ(time.length, step.length) << step.what;
        EXPECT_EQ(bar.GetMaximum(), step.length) << step.what;
        EXPECT_EQ(time.color, step.dragged ? DRAG_TIME_COLOR : green) << step.what;
        EXPECT_EQ(elapsed.GetTextColor(), step.dragged ? red : MediaColor(green)) << step.what;
    }
}

TEST(NowPlayingQueue, OnlyThePicksOfTheMenuPlay) {
    RecordingHost host;
    struct Case {
        int id;
        int count;
        bool picked;
    } cases[] = {{PLAY_QUEUE_MENU_FIRST - 1, 3, false},
                 {PLAY_QUEUE_MENU_FIRST, 3, true},
                 {PLAY_QUEUE_MENU_FIRST + 2, 3, true},
                 {PLAY_QUEUE_MENU_FIRST + 3, 3, false},
                 {PLAY_QUEUE_MENU_FIRST, 0, false}};
    for (const Case& c : cases) {
        host.calls.clear();
        EXPECT_EQ(PlayPickedQueueItem(&host, c.id, c.count), c.picked) << c.id << " of " << c.count;
        EXPECT_EQ(host.Calls("PlayQueueIndex").size(), c.picked ? 1u : 0u) << c.id;
    }
    EXPECT_TRUE(PlayPickedQueueItem(nullptr, PLAY_QUEUE_MENU_FIRST, 1)) << "no host: still taken";
}

} // namespace
