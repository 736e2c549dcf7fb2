// The menu bar slot of a top-level window: the room it takes from the
// client area, its painting and the clicks on it. Menus themselves are the
// menu code's; a window only holds the pointer.
#include <cairo.h>

#include "toolkit/sys_colors.h"
#include "toolkit_fixture.h"

namespace {

using MenuBar = ToolkitTest;

// Any object stands for a menu: the window never looks inside it.
SMenu* FakeMenu() {
    static int menu;
    return reinterpret_cast<SMenu*>(&menu);
}

uint32_t Rgb(const SImage& picture, int x, int y) {
    return picture.GetPixel(x, y) & 0xFFFFFF;
}

uint32_t ToRgb(uint32_t color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

TEST_F(MenuBar, BarTakesItsRoomFromTheClientAreaOrGrowsTheWindow) {
    int bar = GetMenuBarHeight();
    ASSERT_GT(bar, 10);
    RecordingWnd top, footer;
    ASSERT_TRUE(Make(top, "top", Rect(50, 50, 350, 250)));
    ASSERT_TRUE(Make(footer, "footer", Rect(0, 180, 300, 200), top.GetHandle()));
    footer.SetAnchor(ANCHOR_TOP | ANCHOR_BOTTOM);

    ASSERT_TRUE(top.SetMenu(FakeMenu(), false));
    EXPECT_EQ(top.GetMenu(), FakeMenu());
    EXPECT_EQ(top.GetSize(), (SSize{300, 200})) << "the window keeps its size";
    EXPECT_EQ(top.GetClientSize(), (SSize{300, 200 - bar}));
    EXPECT_EQ(footer.GetRect().top, 180 - bar) << "anchored children follow the client area";
    SPoint origin;
    top.ClientToScreen(&origin);
    EXPECT_EQ(origin, (SPoint{50, 50 + bar}));

    ASSERT_TRUE(top.SetMenu(nullptr, true));
    EXPECT_EQ(top.GetClientSize(), (SSize{300, 200 - bar})) << "the client height is kept";
    EXPECT_EQ(top.GetSize(), (SSize{300, 200 - bar}));
    ASSERT_TRUE(top.SetMenu(FakeMenu(), true));
    EXPECT_EQ(top.GetSize(), (SSize{300, 200})) << "the window grows by the bar";
    EXPECT_EQ(top.GetClientSize(), (SSize{300, 200 - bar}));
}

TEST_F(MenuBar, OnlyTopLevelWindowsWithAHandleTakeAMenu) {
    RecordingWnd top, child, none;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 200, 200)));
    ASSERT_TRUE(Make(child, "child", Rect(0, 0, 200, 200), top.GetHandle()));
    EXPECT_FALSE(child.SetMenu(FakeMenu(), true));
    EXPECT_FALSE(none.SetMenu(FakeMenu(), true));
    EXPECT_EQ(child.GetMenu(), nullptr);
}

TEST_F(MenuBar, ClicksOnTheBarAreNonClientAndTheClientKeepsItsCoordinates) {
    int bar = GetMenuBarHeight();
    RecordingWnd top, child;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 300)));
    ASSERT_TRUE(Make(child, "child", Rect(0, 0, 40, 40), top.GetHandle()));
    ASSERT_TRUE(top.SetMenu(FakeMenu(), false));
    platform->Press(top.GetHandle(), 20, bar / 2);
    std::vector<unsigned> seen = top.Seen({WM_NCLBUTTONDOWN});
    ASSERT_EQ(seen.size(), 1u);
    for (const RecordingWnd::Entry& entry : top.ownLog) {
        if (entry.message == WM_NCLBUTTONDOWN) {
            EXPECT_EQ(entry.wParam, HTMENU);
            EXPECT_EQ(PointParamX(entry.lParam), 20) << "screen coordinates";
            EXPECT_EQ(PointParamY(entry.lParam), bar / 2);
        }
    }
    EXPECT_EQ(child.Count(WM_LBUTTONDOWN), 0);
    platform->Release(top.GetHandle(), 20, bar / 2);
    platform->Click(top.GetHandle(), 10, bar + 10);
    EXPECT_EQ(child.Count(SM_LEFT_CLICK), 1) << "the surface point below the bar is the child's";
}

TEST_F(MenuBar, BarIsPaintedAboveTheClientAndGoesWithTheWindow) {
    int bar = GetMenuBarHeight();
    RecordingWnd top;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100)));
    top.SetBackColor(0x0000FF);
    ASSERT_TRUE(top.SetMenu(FakeMenu(), false));
    SImage picture;
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &picture));
    EXPECT_EQ(Rgb(picture, 50, 1), ToRgb(GetSysColor(SYS_COLOR_MENUBAR)));
    EXPECT_EQ(Rgb(picture, 50, bar - 1), ToRgb(GetSysColor(SYS_COLOR_MENUBAR)));
    EXPECT_EQ(Rgb(picture, 50, bar), 0xFF0000u) << "the client starts below the bar";

    static SMenu* painted = nullptr;
    SetMenuBarPainter([](SWnd*, SMenu* menu, cairo_t* cr, const SRect& area) {
        painted = menu;
        cairo_set_source_rgb(cr, 0, 1, 0);
        cairo_rectangle(cr, area.left, area.top, area.Width(), area.Height());
        cairo_fill(cr);
    });
    top.Invalidate(); // a frame repaints only what was invalidated
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &picture));
    SetMenuBarPainter(nullptr);
    EXPECT_EQ(painted, FakeMenu());
    EXPECT_EQ(Rgb(picture, 50, 1), 0x00FF00u) << "the menu code's painter draws the bar";

    top.Destroy();
    EXPECT_EQ(top.GetMenu(), nullptr) << "destroying the window clears the menu";
}

} // namespace
