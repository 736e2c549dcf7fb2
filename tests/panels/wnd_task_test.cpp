// The strip on the headless platform, driven through a recording main
// window: its sizes and layout from the right, docking by the preference
// (reserved, above the others, refused), the two button groups that only a
// registered strip enables, what it shows of the playing track, and what
// its clicks do.
#include "panels/wnd_task.h"

#include <string>

#include "controls/media_layout.h"
#include "recording_host.h"
#include "toolkit/platform/platform.h"
#include "toolkit/toolkit_fixture.h"

namespace {

TEST(StripSizes, TheHeightIsTheTextsPlusTwoAndNeverBelowTwenty) {
    struct Case {
        int text;
        int height;
    } cases[] = {{-5, 20}, {0, 20}, {17, 20}, {18, 20}, {19, 21}, {30, 32}};
    for (const Case& c : cases) {
        EXPECT_EQ(StripHeight(c.text), c.height) << c.text;
    }
    // The names share what the fixed controls (462) and the free left end
    // (272) leave; a narrow strip leaves them nothing, never less.
    struct Names {
        int width;
        int third;
    } names[] = {{1280, 182}, {736, 0}, {737, 1}, {300, 0}, {0, 0}, {3840, 1035}};
    for (const Names& c : names) {
        EXPECT_EQ(StripNameWidth(c.width), c.third) << c.width;
    }
}

TEST(StripLayout, ControlsStandFromTheRightEdgeSideBySide) {
    for (int width : {1280, 1024, 3840}) {
        const int h = 24;
        auto at = [&](STRIP_CONTROL which) { return PWndTask::LayoutRect(which, width, h); };
        EXPECT_EQ(at(STRIP_SHOW), Rect(width - 22, 0, width - 2, h)) << width;
        EXPECT_EQ(at(STRIP_STOP), Rect(width - 52, 0, width - 32, h)) << width;
        EXPECT_EQ(at(STRIP_PREVIOUS), Rect(width - 112, 0, width - 92, h)) << width;
        // Left to right, each control begins where the one before ends, but
        // for the seek bar's place of 100 and a gap of 10 before the
        // buttons.
        const STRIP_CONTROL order[] = {STRIP_REMAINDER, STRIP_ARTIST,  STRIP_ALBUM,  STRIP_TYPE,
                                       STRIP_SONG,      STRIP_ELAPSED, STRIP_LENGTH, STRIP_NUMBER};
        EXPECT_EQ(at(STRIP_REMAINDER).left, 0);
        for (size_t i = 1; i < std::size(order); ++i) {
            EXPECT_EQ(at(order[i]).left, at(order[i - 1]).right)
                << width << " control " << order[i];
        }
        EXPECT_EQ(at(STRIP_NUMBER).right + 110, at(STRIP_PREVIOUS).left) << width;
        for (STRIP_CONTROL which : {STRIP_PREVIOUS, STRIP_NEXT, STRIP_PAUSE}) {
            EXPECT_EQ(at(which).right, at(static_cast<STRIP_CONTROL>(which + 1)).left) << width;
        }
        int third = StripNameWidth(width);
        EXPECT_EQ(at(STRIP_ARTIST).Width(), third);
        EXPECT_EQ(at(STRIP_SONG).Width(), third);
        EXPECT_EQ(at(STRIP_TYPE).Width(), 20);
        // The seek bar: its place less 4 at each side, 9 high about the
        // middle.
        SRect seek = PWndTask::SeekBarRect(width, h);
        EXPECT_EQ(seek, Rect(width - 218, 7, width - 126, 16)) << width;
    }
    // Narrower than the fixed controls: nothing is wider than it should be
    // and the free part at the left end is empty rather than reversed.
    SRect free = PWndTask::LayoutRect(STRIP_REMAINDER, 300, 20);
    EXPECT_EQ(free.left, 0);
    EXPECT_EQ(free.right, 0);
    EXPECT_EQ(PWndTask::LayoutRect(STRIP_SONG, 300, 20).Width(), 0);
}

class StripTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        platform->SetWorkArea(area);
        ASSERT_TRUE(Make(target, "main", Rect(100, 100, 400, 300)));
        ASSERT_TRUE(strip.Create());
        PStripCommands commands;
        commands.previous = 8;
        commands.next = 9;
        commands.pause = 10;
        commands.stop = 11;
        strip.SetCommandTarget(target.GetHandle(), commands);
        host.root = "/m/";
    }
    void TearDown() override {
        strip.Destroy();
        target.Destroy();
        ToolkitTest::TearDown();
    }
    SRect WorkArea() {
        SRect rect;
        platform->GetWorkArea(&rect);
        return rect;
    }
    void ClickOn(STRIP_CONTROL which) {
        SHeadlessPlatform::AdvanceClock(2000); // never a double click
        SRect rect = strip.GetControl(which).GetRect();
        platform->Click(strip.GetHandle(), (rect.left + rect.right) / 2,
                        (rect.top + rect.bottom) / 2);
        SHeadlessPlatform::DispatchPending();
    }
    std::vector<WPARAM> Commands() {
        std::vector<WPARAM> result;
        for (const RecordingWnd::Entry& entry : target.ownLog) {
            if (entry.message == WM_COMMAND) {
                result.push_back(entry.wParam);
            }
        }
        return result;
    }
    SString Text(STRIP_CONTROL which) { return strip.GetControl(which).GetText(); }

    SRect area = Rect(0, 0, 1280, 770);
    RecordingHost host;
    RecordingWnd target;
    PWndTask strip{&host};
};

TEST_F(StripTest, IsMadeHiddenAndDocksOnlyWhileThePreferenceIsOn) {
    int h = strip.GetStripHeight();
    EXPECT_GE(h, 20);
    EXPECT_FALSE(strip.IsVisible());
    EXPECT_FALSE(strip.IsRegistered());
    // Off while not docked: nothing moves.
    EXPECT_EQ(strip.ApplyPreference(false, 0), SDockState::NONE);
    EXPECT_EQ(WorkArea(), area);

    EXPECT_EQ(strip.ApplyPreference(true, 0), SDockState::RESERVED);
    EXPECT_TRUE(strip.IsRegistered());
    EXPECT_TRUE(strip.IsVisible());
    EXPECT_EQ(strip.GetWindowRect(), Rect(0, 770 - h, 1280, 770));
    EXPECT_EQ(WorkArea(), Rect(0, 0, 1280, 770 - h)) << "its space is kept from the others";
    EXPECT_EQ(strip.GetControl(STRIP_SHOW).GetRect().right, 1278) << "laid out at the full width";
    // On again while docked does not dock twice.
    EXPECT_EQ(strip.ApplyPreference(true, 0), SDockState::RESERVED);
    EXPECT_EQ(WorkArea(), Rect(0, 0, 1280, 770 - h));

    EXPECT_EQ(strip.ApplyPreference(false, 0), SDockState::NONE);
    EXPECT_FALSE(strip.IsRegistered());
    EXPECT_FALSE(strip.IsVisible());
    EXPECT_EQ(WorkArea(), area) << "the space comes back";

    // Off and on again docks at the work area as it is now.
    platform->SetWorkArea(Rect(0, 30, 1024, 700));
    EXPECT_EQ(strip.ApplyPreference(true, 0), SDockState::RESERVED);
    EXPECT_EQ(strip.GetWindowRect(), Rect(0, 700 - h, 1024, 700));
    EXPECT_EQ(strip.GetControl(STRIP_SHOW).GetRect().right, 1022);
    // The program's end gives the space back too.
    strip.Remove();
    EXPECT_FALSE(strip.IsVisible());
    EXPECT_EQ(WorkArea(), Rect(0, 30, 1024, 700));
}

TEST_F(StripTest, ADesktopWithoutBarsLeavesItHiddenAndOneWithoutStrutsLeavesItAbove) {
    platform->SetDockSupport(SDockState::NONE);
    EXPECT_EQ(strip.ApplyPreference(true, 0x123456), SDockState::NONE);
    EXPECT_FALSE(strip.IsRegistered());
    EXPECT_FALSE(strip.IsVisible());
    EXPECT_EQ(strip.GetTextColor(), 0x123456u) << "the colour is applied all the same";
    // The preference was left on: the next time it is applied, it docks.
    platform->SetDockSupport(SDockState::ABOVE);
    EXPECT_EQ(strip.ApplyPreference(true, 0), SDockState::ABOVE);
    EXPECT_TRUE(strip.IsRegistered());
    EXPECT_TRUE(strip.IsVisible());
    EXPECT_EQ(strip.GetWindowRect().bottom, 770);
    EXPECT_EQ(WorkArea(), area) << "a bar above the others keeps no space";
    EXPECT_EQ(strip.ApplyPreference(false, 0), SDockState::NONE);
    EXPECT_FALSE(strip.IsVisible());
}

TEST_F(StripTest, ButtonGroupsAreEnabledOnlyWhileRegistered) {
    const STRIP_CONTROL browse[] = {STRIP_PREVIOUS, STRIP_NEXT};
    const STRIP_CONTROL transport[] = {STRIP_PAUSE, STRIP_STOP};
    auto enabled = [&](STRIP_CONTROL which) { return strip.GetControl(which).IsEnabled(); };
    strip.EnableBrowse(true);
    strip.EnableTransport(true);
    for (STRIP_CONTROL which : {STRIP_PREVIOUS, STRIP_NEXT, STRIP_PAUSE, STRIP_STOP}) {
        EXPECT_FALSE(enabled(which)) << "unregistered: " << which;
    }
    EXPECT_TRUE(enabled(STRIP_SHOW)) << "showing the window needs nothing playing";

    strip.ApplyPreference(true, 0);
    for (STRIP_CONTROL which : {STRIP_PREVIOUS, STRIP_NEXT, STRIP_PAUSE, STRIP_STOP}) {
        EXPECT_FALSE(enabled(which)) << "registering disables both groups: " << which;
    }
    const SImage* faded = strip.GetControl(STRIP_PAUSE).GetImage();
    strip.EnableTransport(true);
    for (STRIP_CONTROL which : transport) {
        EXPECT_TRUE(enabled(which)) << which;
    }
    for (STRIP_CONTROL which : browse) {
        EXPECT_FALSE(enabled(which)) << "the groups go apart: " << which;
    }
    const SImage* full = strip.GetControl(STRIP_PAUSE).GetImage();
    ASSERT_NE(full, faded) << "the art is swapped";
    ASSERT_NE(full, nullptr);
    ASSERT_NE(faded, nullptr);
    // The faded copy is the same picture at half alpha where it was opaque.
    int opaque = 0;
    for (int y = 0; y < full->GetHeight(); ++y) {
        for (int x = 0; x < full->GetWidth(); ++x) {
            if ((full->GetPixel(x, y) >> 24) == 0xFF) {
                ++opaque;
                EXPECT_EQ(faded->GetPixel(x, y) >> 24, 128u);
                EXPECT_EQ(faded->GetPixel(x, y) & 0xFFFFFF, full->GetPixel(x, y) & 0xFFFFFF);
            }
        }
    }
    EXPECT_GT(opaque, 0);
    strip.EnableBrowse(true);
    EXPECT_TRUE(enabled(STRIP_NEXT));
    strip.SetRegistered(true);
    for (STRIP_CONTROL which : {STRIP_PREVIOUS, STRIP_NEXT, STRIP_PAUSE, STRIP_STOP}) {
        EXPECT_FALSE(enabled(which)) << which;
    }
}

TEST_F(StripTest, ShowsTheTrackOnlyWhileRegistered) {
    host.lengthMs = 245000;
    strip.SetPlayingTrack("/m/Miles/Kind of Blue/01 So What.mp3", 3, 12);
    EXPECT_EQ(strip.GetPlayingPath(), "") << "an unregistered strip shows nothing";
    EXPECT_EQ(Text(STRIP_NUMBER), "");

    strip.ApplyPreference(true, 0x00FF00);
    strip.SetPlayingTrack("/m/Miles/Kind of Blue/01 So What.mp3", 3, 12);
    EXPECT_EQ(Text(STRIP_ARTIST), "Miles");
    EXPECT_EQ(Text(STRIP_ALBUM), "Kind of Blue");
    EXPECT_EQ(Text(STRIP_SONG), "01 So What");
    EXPECT_EQ(Text(STRIP_NUMBER), "3/12");
    EXPECT_EQ(Text(STRIP_LENGTH), "0:04:05");
    EXPECT_NE(strip.GetControl(STRIP_TYPE).GetImage(), nullptr);
    EXPECT_EQ(strip.GetSeekBar().GetMaximum(), 245);
    for (STRIP_CONTROL which : {STRIP_ARTIST, STRIP_SONG, STRIP_ELAPSED, STRIP_NUMBER}) {
        EXPECT_EQ(strip.GetControl(which).GetTextColor(), MediaColor(0x00FF00)) << which;
    }
    strip.SetCurrentNumber(4);
    EXPECT_EQ(Text(STRIP_NUMBER), "4/12");

    host.loaded = true;
    host.positionMs = 61500;
    strip.UpdatePlayingTime();
    EXPECT_EQ(Text(STRIP_ELAPSED), "0:01:01");
    EXPECT_EQ(strip.GetSeekBar().GetValue(), 61);
    // Filling the buffer shows in place of the length, and goes with it.
    strip.SetBuffering(true);
    EXPECT_EQ(Text(STRIP_LENGTH), "buffering...");
    strip.SetBuffering(false);
    EXPECT_EQ(Text(STRIP_LENGTH), "0:04:05");
    // A stream without a length leaves the total blank.
    host.lengthMs = -1;
    strip.UpdatePlayingTime();
    EXPECT_EQ(Text(STRIP_LENGTH), "");
    EXPECT_EQ(strip.GetSeekBar().GetMaximum(), 0);

    strip.SetPlayingTrack(nullptr, 0, 0);
    EXPECT_FALSE(strip.GetControl(STRIP_ARTIST).IsVisible());
    EXPECT_EQ(Text(STRIP_NUMBER), "");
    EXPECT_EQ(Text(STRIP_ELAPSED), "0:00:00");
    EXPECT_EQ(strip.GetControl(STRIP_TYPE).GetImage(), nullptr);
    strip.SetCurrentNumber(5);
    EXPECT_EQ(Text(STRIP_NUMBER), "") << "no number without a track";
}

TEST_F(StripTest, ButtonsPostTheToolbarsCommandsAndNamesOpenFolders) {
    strip.ApplyPreference(true, 0);
    strip.SetPlayingTrack("/m/Miles/Kind of Blue/01 So What.mp3", 1, 2);
    ClickOn(STRIP_PAUSE);
    EXPECT_TRUE(Commands().empty()) << "a disabled button sends nothing";
    strip.EnableTransport(true);
    strip.EnableBrowse(true);
    for (STRIP_CONTROL which : {STRIP_PREVIOUS, STRIP_NEXT, STRIP_PAUSE, STRIP_STOP}) {
        ClickOn(which);
    }
    EXPECT_EQ(Commands(), (std::vector<WPARAM>{8, 9, 10, 11}));
    EXPECT_TRUE(host.calls.empty());

    struct Case {
        STRIP_CONTROL control;
        std::vector<std::string> calls;
    } cases[] = {
        {STRIP_SHOW, {"ShowMainWindow"}},
        {STRIP_ARTIST, {"OpenFolder /m/Miles/||0", "ShowMainWindow"}},
        {STRIP_ALBUM, {"OpenFolder /m/Miles/Kind of Blue/||0", "ShowMainWindow"}},
        {STRIP_SONG, {"OpenFolder /m/Miles/Kind of Blue/|01 So What.mp3|0", "ShowMainWindow"}},
        {STRIP_ELAPSED, {}},
        {STRIP_NUMBER, {}}, // an empty queue has no menu
    };
    for (const Case& c : cases) {
        host.calls.clear();
        ClickOn(c.control);
        EXPECT_EQ(host.calls, c.calls) << "control " << c.control;
    }
    EXPECT_FALSE(strip.GetQueueMenu().IsOpen());
}

TEST_F(StripTest, TheNumberOpensTheQueueMenuAndAPickPlaysIt) {
    strip.ApplyPreference(true, 0);
    strip.SetPlayingTrack("/m/A/B/two.mp3", 2, 3);
    host.queue.Add("/m/A/B/one.mp3");
    host.queue.Add("/m/A/B/two & three.mp3");
    host.queue.Add("/m/A/C/four.ogg");
    host.playIndex = 1;
    ClickOn(STRIP_NUMBER);
    SMenu& menu = strip.GetQueueMenu();
    ASSERT_TRUE(menu.IsOpen());
    ASSERT_EQ(menu.GetItemCount(), 3);
    EXPECT_EQ(menu.GetItem(1).text, "two && three");
    EXPECT_TRUE(menu.GetItem(1).checked);
    EXPECT_FALSE(menu.GetItem(2).checked);
    menu.Close();
    SendMessage(strip.GetHandle(), WM_COMMAND, 1002, 0);
    EXPECT_EQ(host.Calls("PlayQueueIndex"), std::vector<std::string>{"PlayQueueIndex 2"});
    SendMessage(strip.GetHandle(), WM_COMMAND, 1003, 0); // past the menu
    EXPECT_EQ(host.Calls("PlayQueueIndex").size(), 1u);
}

} // namespace
