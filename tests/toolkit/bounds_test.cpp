// Window bounds in the settings store.
#include "foundation/registry.h"
#include "toolkit_fixture.h"

namespace {

using Bounds = ToolkitTest;

const char* const COMPANY = "Melkora Tests";
const char* const PRODUCT = "Bounds";

TEST_F(Bounds, SavedBoundsComeBackWithTheirFlags) {
    RecordingWnd wnd;
    SRect bounds = Rect(100, 120, 500, 420);
    ASSERT_TRUE(wnd.Create("w", WS_VISIBLE, 0, &bounds, 0));
    ASSERT_TRUE(wnd.SaveBounds(COMPANY, PRODUCT, "Main"));
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, "Software\\Melkora Tests\\Bounds", "Main"),
              "7:100,120,500,420,1,0,0,");
    RecordingWnd other;
    ASSERT_TRUE(Make(other, "o", Rect(0, 0, 10, 10), 0, 0));
    ASSERT_TRUE(other.RestoreBounds(COMPANY, PRODUCT, "Main", false));
    EXPECT_EQ(other.GetRect(), bounds);
    EXPECT_TRUE(other.IsVisible());
}

TEST_F(Bounds, MaximizedWindowStoresItsNormalRectangle) {
    RecordingWnd wnd;
    SRect bounds = Rect(50, 60, 250, 260);
    ASSERT_TRUE(wnd.Create("w", WS_VISIBLE, 0, &bounds, 0));
    wnd.Maximize();
    EXPECT_EQ(wnd.Count(SM_MAXIMIZED), 1);
    ASSERT_TRUE(wnd.SaveBounds(COMPANY, PRODUCT, "Max"));
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, "Software\\Melkora Tests\\Bounds", "Max"),
              "7:50,60,250,260,1,0,1,");
    wnd.Restore(false);
    EXPECT_EQ(wnd.Count(SM_RESTORED), 1);
    EXPECT_EQ(wnd.GetRect(), bounds);
    RecordingWnd other;
    ASSERT_TRUE(other.Create("o", 0, 0, &bounds, 0));
    ASSERT_TRUE(other.RestoreBounds(COMPANY, PRODUCT, "Max", true));
    EXPECT_TRUE(other.IsMaximized());
    EXPECT_FALSE(other.IsVisible()) << "keepHidden";
}

TEST_F(Bounds, RectangleOffTheScreenIsBroughtInsideTheWorkArea) {
    platform->SetWorkArea(Rect(0, 0, 1000, 700));
    struct Case {
        const char* stored;
        SRect expected;
    };
    const Case cases[] = {
        {"7:1200,100,1500,300,1,0,0,", Rect(700, 100, 1000, 300)},
        {"7:-400,-50,-100,150,1,0,0,", Rect(0, 0, 300, 200)},
        {"7:10,650,110,850,1,0,0,", Rect(10, 500, 110, 700)},
        {"7:-10,10,2000,90,1,0,0,", Rect(0, 10, 1000, 90)},  // too wide: the full width
        {"9:10,10,110,110,0,0,0,extra,", Rect(10, 10, 110, 110)},
    };
    for (const Case& test : cases) {
        SRegistry::WriteString(HKEY_CURRENT_USER, "Software\\Melkora Tests\\Bounds", "Off",
                               test.stored);
        RecordingWnd wnd;
        ASSERT_TRUE(Make(wnd, "w", Rect(0, 0, 10, 10), 0, 0));
        ASSERT_TRUE(wnd.RestoreBounds(COMPANY, PRODUCT, "Off", false)) << test.stored;
        EXPECT_EQ(wnd.GetRect(), test.expected) << test.stored;
    }
}

TEST_F(Bounds, DamagedValuesAreRefusedAndChangeNothing) {
    const char* const damaged[] = {"", "6:1,2,3,4,1,0,0,", "7:1,2,3,4,1,0", "nonsense", "7:"};
    SRect start = Rect(5, 5, 25, 25);
    for (const char* stored : damaged) {
        SRegistry::WriteString(HKEY_CURRENT_USER, "Software\\Melkora Tests\\Bounds", "Bad", stored);
        RecordingWnd wnd;
        ASSERT_TRUE(wnd.Create("w", 0, 0, &start, 0));
        EXPECT_FALSE(wnd.RestoreBounds(COMPANY, PRODUCT, "Bad", false)) << stored;
        EXPECT_EQ(wnd.GetRect(), start);
    }
    RecordingWnd wnd;
    EXPECT_FALSE(wnd.SaveBounds(COMPANY, PRODUCT, "None")) << "no window, nothing to save";
}

} // namespace
