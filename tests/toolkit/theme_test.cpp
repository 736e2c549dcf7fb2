// The system fonts and colours without a desktop theme: the classic values,
// put back at every start.
#include "toolkit/draw.h"
#include "toolkit/sys_colors.h"
#include "toolkit_fixture.h"

namespace {

using ClassicTheme = ToolkitTest;

TEST_F(ClassicTheme, SystemFontsAreSansNinePointsAndTheDefaultEight) {
    for (int i = 0; i < 5; ++i) {
        ASSERT_NE(GetSystemFont(i), nullptr);
        EXPECT_EQ(GetSystemFont(i)->GetFace(), "Sans");
        EXPECT_EQ(GetSystemFont(i)->GetHeight(), PointsToHeight(9));
    }
    EXPECT_EQ(GetSystemFont(0)->GetFlags(), FONT_BOLD) << "the caption font";
    EXPECT_EQ(GetSystemFont(5), nullptr);
    ASSERT_NE(GetDefaultFont(), nullptr);
    EXPECT_EQ(GetDefaultFont()->GetHeight(), PointsToHeight(8));
    EXPECT_EQ(GetMenuBarHeight(), TextMetrics(GetSystemFont(2)).height + 6);
}

TEST_F(ClassicTheme, StartingAgainPutsTheClassicColoursBack) {
    EXPECT_EQ(GetSysColor(SYS_COLOR_WINDOW), 0xFFFFFFu);
    EXPECT_EQ(GetSysColor(SYS_COLOR_HIGHLIGHT), 0xFF9933u);
    EXPECT_EQ(GetSysColor(SYS_COLOR_INFOBK), 0xE1FFFFu);
    SetSysColor(SYS_COLOR_WINDOW, 0x123456);
    SetSysColor(SYS_COLOR_INFOBK, 0x654321);
    ToolkitEnd();
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    EXPECT_EQ(GetSysColor(SYS_COLOR_WINDOW), 0xFFFFFFu);
    EXPECT_EQ(GetSysColor(SYS_COLOR_INFOBK), 0xE1FFFFu);
}

} // namespace
