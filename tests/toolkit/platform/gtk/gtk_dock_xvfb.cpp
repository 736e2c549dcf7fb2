// A desktop bar on GTK on a virtual X display without a window manager: the
// window is a dock across the bottom of the work area with its struts set,
// but no manager keeps the space, so it stands above the others; undocked
// it is hidden and its struts are gone. Run with a window manager that
// reads struts (and MELKORA_TEST_WINDOW_MANAGER=1), as the test
// toolkit_gtk_dock_wm runs them under openbox, the space is reserved and
// docking again keeps the bar in place, also at once after an undock.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "foundation/network.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

class GtkDock : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
        ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
        // The bar of a test before may still be leaving the work area.
        SRect screen, area;
        ASSERT_TRUE(GetPlatform()->GetScreenRect(&screen));
        PumpUntil([&] { return GetWorkArea(&area) && area == screen; }, 2);
    }
    void TearDown() override {
        bar.Destroy();
        ToolkitEnd();
    }
    SWnd bar;
};

TEST_F(GtkDock, ABarStandsAtTheBottomWithItsStrutsAndLeavesNoneWhenUndocked) {
    SRect area;
    ASSERT_TRUE(GetWorkArea(&area));
    SRect start{0, 0, 100, 30};
    ASSERT_TRUE(bar.Create("bar", 0, 0, &start, 0));
    std::vector<long> strut;
    bool dock = false;
    EXPECT_EQ(bar.DockToBottomEdge(0), SDockState::NONE) << "no bar without a height";
    EXPECT_FALSE(bar.IsVisible());

    // No window manager here reads struts: the bar is above, not reserved
    // (run under one that does, it is reserved).
    SDockState state = bar.DockToBottomEdge(24);
    ASSERT_NE(state, SDockState::NONE);
    if (getenv("MELKORA_TEST_WINDOW_MANAGER") == nullptr) {
        EXPECT_EQ(state, SDockState::ABOVE);
    }
    EXPECT_TRUE(bar.IsVisible());
    SRect placed{area.left, area.bottom - 24, area.right, area.bottom};
    EXPECT_EQ(bar.GetWindowRect(), placed);
    SSize size;
    ASSERT_TRUE(PumpUntil([&] {
        return GtkGetSurfaceSize(bar.GetHandle(), &size) && size.width == area.Width() &&
               size.height == 24;
    })) << size.width
        << "x" << size.height;
    ASSERT_TRUE(GtkGetDockProperties(bar.GetHandle(), &strut, &dock));
    EXPECT_TRUE(dock);
    // Left, right, top, bottom, then the start and end of each edge: the
    // bottom 24 pixels of the screen, across the bar's columns.
    SRect screen;
    ASSERT_TRUE(GetPlatform()->GetScreenRect(&screen));
    std::vector<long> expected = {
        0, 0, 0, screen.bottom - (area.bottom - 24), 0, 0, 0, 0, 0, 0, area.left, area.right - 1};
    EXPECT_EQ(strut, expected);
    // Docked again once the work area leaves its space out: it stays put
    // rather than climbing onto its own space.
    if (state == SDockState::RESERVED) {
        SRect now;
        ASSERT_TRUE(PumpUntil([&] { return GetWorkArea(&now) && now.bottom == area.bottom - 24; }));
    }
    EXPECT_EQ(bar.DockToBottomEdge(24), state);
    EXPECT_EQ(bar.GetWindowRect(), placed);

    EXPECT_TRUE(bar.Undock());
    EXPECT_FALSE(bar.IsVisible());
    ASSERT_TRUE(GtkGetDockProperties(bar.GetHandle(), &strut, &dock));
    EXPECT_TRUE(strut.empty()) << "the space is given back";
    EXPECT_FALSE(bar.Undock()) << "not docked any more";
}

// Undocked and docked again at once, before the window manager has given
// the space back: the bar lands at the bottom of the screen's work area
// without its own old space, not one bar's height above it; and the space
// it keeps is its own height, not two.
TEST_F(GtkDock, ABarDockedAgainAtOnceAfterUndockingLandsInItsOldPlace) {
    SRect area;
    ASSERT_TRUE(GetWorkArea(&area));
    SRect start{0, 0, 100, 30};
    ASSERT_TRUE(bar.Create("bar", 0, 0, &start, 0));
    SRect placed{area.left, area.bottom - 24, area.right, area.bottom};
    for (int round = 0; round < 3; ++round) {
        SDockState state = bar.DockToBottomEdge(24);
        ASSERT_NE(state, SDockState::NONE);
        EXPECT_EQ(bar.GetWindowRect(), placed) << "round " << round;
        SRect now;
        auto shrunk = [&] { return GetWorkArea(&now) && now.bottom == area.bottom - 24; };
        if (state == SDockState::RESERVED) {
            ASSERT_TRUE(PumpUntil(shrunk)) << "round " << round << ": ends at " << now.bottom;
        }
        EXPECT_TRUE(bar.Undock());
    }
    // Given its space back at last, it is docked at the same place.
    SRect now;
    ASSERT_TRUE(PumpUntil([&] { return GetWorkArea(&now) && now == area; }));
    EXPECT_NE(bar.DockToBottomEdge(24), SDockState::NONE);
    EXPECT_EQ(bar.GetWindowRect(), placed);
}

// A bar's old place taken meanwhile by another bar: docked again, it
// stands above that one rather than over it.
TEST_F(GtkDock, ABarWhoseOldPlaceAnotherBarTookDocksAboveIt) {
    SRect area;
    ASSERT_TRUE(GetWorkArea(&area));
    SRect start{0, 0, 100, 30};
    ASSERT_TRUE(bar.Create("bar", 0, 0, &start, 0));
    SWnd other;
    ASSERT_TRUE(other.Create("other", 0, 0, &start, 0));
    SRect now;
    if (bar.DockToBottomEdge(24) != SDockState::RESERVED) {
        other.Destroy();
        GTEST_SKIP() << "no window manager here keeps the space of bars";
    }
    ASSERT_TRUE(PumpUntil([&] { return GetWorkArea(&now) && now.bottom == area.bottom - 24; }));
    EXPECT_TRUE(bar.Undock());
    ASSERT_TRUE(PumpUntil([&] { return GetWorkArea(&now) && now == area; }));
    EXPECT_EQ(other.DockToBottomEdge(24), SDockState::RESERVED);
    ASSERT_TRUE(PumpUntil([&] { return GetWorkArea(&now) && now.bottom == area.bottom - 24; }));
    EXPECT_EQ(bar.DockToBottomEdge(24), SDockState::RESERVED);
    EXPECT_EQ(bar.GetWindowRect(),
              (SRect{area.left, area.bottom - 48, area.right, area.bottom - 24}));
    other.Destroy();
}

// Docked, undocked once its space is back and docked again, several times:
// the X server shows the bar at the bottom each time, never where a window
// manager would put a new window of its own accord.
TEST_F(GtkDock, ABarDockedAgainIsShownAtTheBottomEachTime) {
    SRect area;
    ASSERT_TRUE(GetWorkArea(&area));
    SRect start{0, 0, 100, 30};
    ASSERT_TRUE(bar.Create("bar", 0, 0, &start, 0));
    SPoint bottom{area.left, area.bottom - 24};
    for (int round = 0; round < 4; ++round) {
        SDockState state = bar.DockToBottomEdge(24);
        ASSERT_NE(state, SDockState::NONE);
        SPoint origin{-1, -1};
        EXPECT_TRUE(PumpUntil([&] {
            return GtkGetSurfaceOrigin(bar.GetHandle(), &origin) && origin == bottom;
        })) << "round " << round << ": shown at " << origin.x << "," << origin.y;
        EXPECT_TRUE(bar.Undock());
        SRect now;
        ASSERT_TRUE(PumpUntil([&] { return GetWorkArea(&now) && now == area; }));
        ASSERT_TRUE(PumpUntil([&] { return !GtkGetSurfaceOrigin(bar.GetHandle(), &origin); }));
    }
}

} // namespace
