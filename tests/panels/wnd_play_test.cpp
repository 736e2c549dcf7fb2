// The now-playing panel and its seek bar on the headless platform, driven
// through a recording main window: names from the path, the times, the
// clicks that lead to folders, the queue menu, the seek bar's clicks and
// hover, and the time display the panel shares with the strip.
#include "panels/wnd_play.h"

#include <string>

#include "controls/media_layout.h"
#include "panels/now_playing.h"
#include "panels/progress_ctrl.h"
#include "recording_host.h"
#include "toolkit/sys_colors.h"
#include "toolkit/toolkit_fixture.h"

namespace {

TEST(PlayingTrackNames, ComeFromThePathAlone) {
    struct Case {
        const char* path;
        const char* root;
        const char* artist;
        const char* album;
        const char* song;
        const char* artistFolder;
        const char* albumFolder;
    } cases[] = {
        {"/m/Miles/Kind of Blue/01 So What.mp3", "/m/", "Miles", "Kind of Blue", "01 So What",
         "/m/Miles/", "/m/Miles/Kind of Blue/"},
        // Directly under the collection's root: no artist above it.
        {"/home/u/Music/Intro.ogg", "/home/u/Music/", "", "Music", "Intro", "", "/home/u/Music/"},
        // The same file under another root: the folder above counts.
        {"/home/u/Music/Intro.ogg", "/other/", "u", "Music", "Intro", "/home/u/", "/home/u/Music/"},
        // Directly under the file system's root, and one folder below it.
        {"/Song.mp3", "", "", "", "Song", "", "/"},
        {"/M/Song.mp3", "", "", "M", "Song", "", "/M/"},
        // A dot only in a folder's name, several dots, a hidden file.
        {"/a/b.c/track", "", "a", "b.c", "track", "/a/", "/a/b.c/"},
        {"/a/b/x.y.flac", "", "a", "b", "x.y", "/a/", "/a/b/"},
        {"/a/b/.hidden", "", "a", "b", ".hidden", "/a/", "/a/b/"},
        {"", "", "", "", "", "", ""},
    };
    for (const Case& c : cases) {
        PTrackNames names = GetTrackNames(c.path, c.root);
        EXPECT_EQ(names.artist, c.artist) << c.path << " under " << c.root;
        EXPECT_EQ(names.album, c.album) << c.path;
        EXPECT_EQ(names.song, c.song) << c.path;
        EXPECT_EQ(names.artistFolder, c.artistFolder) << c.path << " under " << c.root;
        EXPECT_EQ(names.albumFolder, c.albumFolder) << c.path;
    }
}

TEST(PlayingTime, ReadsHoursThenTwoDigitMinutesAndSeconds) {
    struct Case {
        int seconds;
        const char* text;
    } cases[] = {
        {0, "0:00:00"},      {-5, "0:00:00"},      {59, "0:00:59"},   {60, "0:01:00"},
        {3599, "0:59:59"},   {3600, "1:00:00"},    {3661, "1:01:01"}, {86399, "23:59:59"},
        {86400, "24:00:00"}, {100000, "27:46:40"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(FormatPlayingTime(c.seconds), c.text) << c.seconds;
    }
}

class PlayPanelTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        ASSERT_TRUE(Make(top, "top", Rect(0, 0, 820, 65)));
        ASSERT_TRUE(panel.Create(&top, Rect(0, 0, 820, 65)));
        host.root = "/m/";
    }
    void TearDown() override {
        panel.Destroy();
        top.Destroy();
        ToolkitTest::TearDown();
    }
    // A press and release at the middle of a control.
    void ClickOn(SWnd& control, bool right = false) {
        SHeadlessPlatform::AdvanceClock(2000); // never a double click
        SRect rect = control.GetWindowRect();
        SRect origin = top.GetWindowRect();
        int x = (rect.left + rect.right) / 2 - origin.left;
        int y = (rect.top + rect.bottom) / 2 - origin.top;
        if (right) {
            platform->Press(top.GetHandle(), x, y, WM_RBUTTONDOWN);
            platform->Release(top.GetHandle(), x, y, WM_RBUTTONUP);
        } else {
            platform->Click(top.GetHandle(), x, y);
        }
    }
    SString Text(PLAY_LABEL which) { return panel.GetLabel(which).GetText(); }

    RecordingHost host;
    SWnd top;
    PWndPlay panel{&host};
};

TEST_F(PlayPanelTest, LaysOutTheRowsAcrossTheWidth) {
    // M = (820 - 220) / 2 = 300.
    EXPECT_EQ(panel.GetLabel(PLAY_ARTIST).GetRect(), Rect(66, 2, 366, 24));
    EXPECT_EQ(panel.GetLabel(PLAY_ALBUM).GetRect(), Rect(366, 2, 666, 24));
    EXPECT_EQ(panel.GetLabel(PLAY_QUEUE).GetRect(), Rect(794, 2, 818, 24));
    EXPECT_EQ(panel.GetLabel(PLAY_LENGTH).GetRect(), Rect(714, 24, 794, 46));
    EXPECT_EQ(panel.GetLabel(PLAY_FILLER).GetRect(), Rect(0, 58, 820, 65));
    // Wider by 100: the two upper labels share the growth, the rest moves.
    panel.MoveWindow(Rect(0, 0, 920, 65));
    EXPECT_EQ(panel.GetLabel(PLAY_ARTIST).GetRect(), Rect(66, 2, 416, 24));
    EXPECT_EQ(panel.GetLabel(PLAY_ALBUM).GetRect(), Rect(416, 2, 766, 24));
    EXPECT_EQ(panel.GetLabel(PLAY_QUEUE).GetRect(), Rect(894, 2, 918, 24));
    EXPECT_EQ(panel.GetSeekBar().GetRect(), Rect(66, 50, 894, 59));
}

TEST_F(PlayPanelTest, ATrackShowsItsNamesAndClearingHidesThem) {
    EXPECT_FALSE(panel.GetLabel(PLAY_ARTIST).IsVisible()) << "nothing plays at first";
    EXPECT_FALSE(panel.GetLabel(PLAY_QUEUE).IsVisible());
    EXPECT_EQ(Text(PLAY_ELAPSED), "0:00:00");
    host.lengthMs = 245000;
    panel.SetPlayingTrack("/m/Miles/Kind of Blue/01 So What.mp3", 3, 12);
    EXPECT_EQ(Text(PLAY_ARTIST), "Miles");
    EXPECT_EQ(Text(PLAY_ALBUM), "Kind of Blue");
    EXPECT_EQ(Text(PLAY_SONG), "01 So What");
    EXPECT_EQ(Text(PLAY_NUMBER), "3");
    EXPECT_EQ(Text(PLAY_TOTAL), "12");
    EXPECT_TRUE(panel.GetLabel(PLAY_QUEUE).IsVisible());
    EXPECT_EQ(panel.GetSeekBar().GetMaximum(), 245);
    EXPECT_EQ(panel.GetSeekBar().GetValue(), 0);
    // Short names fit and stand still.
    EXPECT_FALSE(panel.GetLabel(PLAY_ARTIST).IsAutoScrollOn());
    EXPECT_FALSE(panel.GetLabel(PLAY_SONG).IsAutoScrollOn());

    // A control character may stand in a Linux file name.
    panel.SetPlayingTrack("/m/A/B/odd\tname.mp3", 1, 1);
    EXPECT_EQ(Text(PLAY_SONG), "odd\tname");

    panel.SetPlayingTrack(static_cast<const SPath*>(nullptr), 0, 0);
    EXPECT_FALSE(panel.GetLabel(PLAY_ARTIST).IsVisible());
    EXPECT_FALSE(panel.GetLabel(PLAY_SONG).IsVisible());
    EXPECT_FALSE(panel.GetLabel(PLAY_QUEUE).IsVisible());
    EXPECT_EQ(Text(PLAY_NUMBER), "");
    EXPECT_EQ(panel.GetSeekBar().GetMaximum(), 0);
    EXPECT_EQ(panel.GetPlayingPath(), "");
}

TEST_F(PlayPanelTest, TimesFollowThePlayerAndAnUnknownLengthReadsZero) {
    host.lengthMs = 0;
    panel.SetPlayingTrack("/m/Radio/Stream/live.pls", 1, 1);
    host.loaded = true;
    host.positionMs = 3600 * 1000 + 999;
    host.lengthMs = -1; // a stream of unknown length
    panel.UpdatePlayingTime();
    EXPECT_EQ(Text(PLAY_ELAPSED), "1:00:00");
    EXPECT_EQ(Text(PLAY_LENGTH), "0:00:00");
    EXPECT_EQ(panel.GetSeekBar().GetMaximum(), 0);
    EXPECT_EQ(panel.GetSeekBar().GetValue(), 0);
    // A length learnt later gives the seek bar its range.
    host.lengthMs = 2 * 3600 * 1000;
    panel.UpdatePlayingTime();
    EXPECT_EQ(Text(PLAY_LENGTH), "2:00:00");
    EXPECT_EQ(panel.GetSeekBar().GetMaximum(), 7200);
    EXPECT_EQ(panel.GetSeekBar().GetValue(), 3600);
}

TEST_F(PlayPanelTest, TimeColoursShowWhetherAnythingIsLoaded) {
    SMediaCtrl& elapsed = panel.GetLabel(PLAY_ELAPSED);
    const uint32_t grey = MediaColor(GetSysColor(SYS_COLOR_GRAYTEXT));
    const uint32_t text = MediaColor(GetSysColor(SYS_COLOR_WINDOWTEXT));
    EXPECT_EQ(elapsed.GetTextColor(), grey) << "nothing plays";
    panel.SetPlayingTrack("/m/A/B/c.mp3", 1, 1);
    EXPECT_EQ(elapsed.GetTextColor(), text);
    host.loaded = false;
    panel.UpdatePlayingTime();
    EXPECT_EQ(elapsed.GetTextColor(), grey);
    host.loaded = true;
    panel.UpdatePlayingTime();
    EXPECT_EQ(panel.GetLabel(PLAY_LENGTH).GetTextColor(), text);
}

TEST_F(PlayPanelTest, ClicksOpenTheFoldersOfWhatPlays) {
    ClickOn(panel.GetLabel(PLAY_COVER));
    EXPECT_TRUE(host.Calls("OpenFolder").empty()) << "nothing plays: nothing to open";

    panel.SetPlayingTrack("/m/Miles/Kind of Blue/01 So What.mp3", 1, 2);
    struct Case {
        PLAY_LABEL label;
        bool right;
        std::vector<std::string> calls;
    } cases[] = {
        {PLAY_ARTIST, false, {"OpenFolder /m/Miles/||0", "ShowMainWindow"}},
        {PLAY_ALBUM, false, {"OpenFolder /m/Miles/Kind of Blue/||0", "ShowMainWindow"}},
        {PLAY_SONG,
         false,
         {"OpenFolder /m/Miles/Kind of Blue/|01 So What.mp3|0", "ShowMainWindow"}},
        {PLAY_COVER, false, {"OpenFolder /m/Miles/Kind of Blue/||0"}},
        {PLAY_COVER, true, {"OpenFolder /m/Miles/Kind of Blue/||1"}},
        {PLAY_NUMBER, false, {}},
        {PLAY_ELAPSED, false, {}},
    };
    for (const Case& c : cases) {
        host.calls.clear();
        ClickOn(panel.GetLabel(c.label), c.right);
        EXPECT_EQ(host.calls, c.calls) << "label " << c.label << (c.right ? " right" : "");
    }
    // A file directly under the root has no artist to open.
    panel.SetPlayingTrack("/m/Intro.ogg", 1, 1);
    EXPECT_EQ(Text(PLAY_ARTIST), "");
    host.calls.clear();
    ClickOn(panel.GetLabel(PLAY_ARTIST));
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(PlayPanelTest, TheQueueMenuListsTheQueueAndPlaysTheChoice) {
    panel.SetPlayingTrack("/m/A/B/two.mp3", 2, 3);
    // An empty queue opens no menu.
    ClickOn(panel.GetLabel(PLAY_QUEUE));
    EXPECT_FALSE(panel.GetQueueMenu().IsOpen());
    EXPECT_FALSE(panel.OpenQueueMenu(SPoint{10, 10}));

    host.queue.Add("/m/A/B/one.mp3");
    host.queue.Add("/m/A/B/two & three.mp3");
    host.queue.Add("/m/A/C/four.ogg");
    host.playIndex = 1;
    ClickOn(panel.GetLabel(PLAY_QUEUE));
    SMenu& menu = panel.GetQueueMenu();
    ASSERT_TRUE(menu.IsOpen());
    ASSERT_EQ(menu.GetItemCount(), 3);
    EXPECT_EQ(menu.GetItem(0).id, 1000);
    EXPECT_EQ(menu.GetItem(2).id, 1002);
    EXPECT_EQ(menu.GetItem(1).text, "two && three");
    EXPECT_FALSE(menu.GetItem(0).checked);
    EXPECT_TRUE(menu.GetItem(1).checked) << "the current item";
    menu.Close();
    // A pick posts its command to the panel, which plays that index.
    SendMessage(panel.GetHandle(), WM_COMMAND, 1002, 0);
    EXPECT_EQ(host.Calls("PlayQueueIndex"), std::vector<std::string>{"PlayQueueIndex 2"});
    // An ID past the menu plays nothing.
    SendMessage(panel.GetHandle(), WM_COMMAND, 1003, 0);
    EXPECT_EQ(host.Calls("PlayQueueIndex").size(), 1u);
}

class SeekBarTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 40)));
        ASSERT_TRUE(bar.Create("", WS_VISIBLE, 0, &barRect, top.GetHandle()));
    }
    void TearDown() override {
        bar.Destroy();
        top.Destroy();
        ToolkitTest::TearDown();
    }
    RecordingHost host;
    SWnd top;
    SRect barRect = Rect(50, 10, 250, 19); // 200 wide
    PProgressCtrl bar{&host};
};

TEST_F(SeekBarTest, APressSeeksToItsShareOfTheRange) {
    bar.SetRange(0, 400);
    struct Case {
        int x; // client x
        int seconds;
    } cases[] = {{0, 0}, {1, 2}, {100, 200}, {199, 398}};
    for (const Case& c : cases) {
        host.calls.clear();
        platform->Click(top.GetHandle(), barRect.left + c.x, 14);
        EXPECT_EQ(host.Calls("SeekSeconds"),
                  std::vector<std::string>{"SeekSeconds " + std::to_string(c.seconds)})
            << "x " << c.x;
        EXPECT_EQ(bar.GetValue(), c.seconds);
    }
}

TEST_F(SeekBarTest, ADragSeeksAgainWhereItIsLetGo) {
    bar.SetRange(0, 200);
    platform->Press(top.GetHandle(), barRect.left + 20, 14);
    EXPECT_EQ(bar.GetDragPosition(), 20);
    platform->MoveMouse(top.GetHandle(), barRect.left + 150, 14, MK_LBUTTON);
    EXPECT_EQ(bar.GetDragPosition(), 150);
    platform->Release(top.GetHandle(), barRect.left + 150, 14);
    EXPECT_EQ(host.Calls("SeekSeconds"),
              (std::vector<std::string>{"SeekSeconds 20", "SeekSeconds 150"}));
    EXPECT_EQ(bar.GetDragPosition(), -1);
}

TEST_F(SeekBarTest, HoverFollowsThePointerAndGoesWhenItLeaves) {
    bar.SetRange(0, 100);
    platform->MoveMouse(top.GetHandle(), barRect.left + 50, 14);
    EXPECT_EQ(bar.GetHoverPosition(), 25);
    EXPECT_EQ(bar.GetDragPosition(), -1) << "no button held";
    platform->MoveMouse(top.GetHandle(), barRect.left + 50, 30);
    EXPECT_EQ(bar.GetHoverPosition(), -1);
    EXPECT_TRUE(host.calls.empty()) << "hovering seeks nothing";
    // A range of 0 (nothing plays, or a stream) shows no hover, and a press
    // seeks to 0.
    bar.SetRange(0, 0);
    platform->MoveMouse(top.GetHandle(), barRect.left + 50, 14);
    EXPECT_EQ(bar.GetHoverPosition(), -1);
    platform->Click(top.GetHandle(), barRect.left + 50, 14);
    EXPECT_EQ(host.Calls("SeekSeconds"), std::vector<std::string>{"SeekSeconds 0"});
}

TEST_F(SeekBarTest, PaintsThePlayedPartAndTheHoverStretch) {
    bar.SetRange(0, 100);
    bar.SetValue(50);
    SImage picture;
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &picture));
    // Inside the bar's middle row: played (blue) before 100, empty after.
    auto at = [&](int x) { return picture.GetPixel(barRect.left + x, 14) & 0xFFFFFF; };
    uint32_t played = at(40);
    uint32_t empty = at(160);
    EXPECT_NE(played, empty);
    // Hovering at 75% lays the hover picture over 100..150.
    platform->MoveMouse(top.GetHandle(), barRect.left + 150, 14);
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &picture));
    uint32_t hover = at(125);
    EXPECT_NE(hover, empty);
    EXPECT_NE(hover, played);
    EXPECT_EQ(at(40), played);
    EXPECT_EQ(at(180), empty);
}

// The time display the panel and the strip share (panels/now_playing.h),
// on a seek bar and a label of its own.
class PlayingTimeTest : public SeekBarTest {
protected:
    void SetUp() override {
        SeekBarTest::SetUp();
        SRect place = Rect(0, 20, 80, 38);
        ASSERT_TRUE(elapsed.Create("", WS_VISIBLE, 0, &place, top.GetHandle()));
    }
    void TearDown() override {
        elapsed.Destroy();
        SeekBarTest::TearDown();
    }
    SMediaCtrl elapsed;
};

TEST_F(PlayingTimeTest, TheElapsedTimeShowsTheDragInRedThenThePlayerAgain) {
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
