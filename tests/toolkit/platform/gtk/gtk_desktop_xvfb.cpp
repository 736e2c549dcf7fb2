// The desktop services of the GTK platform on a virtual X display: theme
// fonts and colours, size limits held by GTK, the clipboard's private
// blocks through the X selection, typed keys and the tool tip window.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "foundation/file.h"
#include "toolkit/draw.h"
#include "toolkit/platform/events.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

// Brightness of a program colour, 0 to 255.
int Brightness(uint32_t color) {
    return static_cast<int>(
        (299 * (color & 0xFF) + 587 * ((color >> 8) & 0xFF) + 114 * ((color >> 16) & 0xFF)) / 1000);
}

class Keys : public SWnd {
public:
    unsigned lastKey = 0;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_KEYDOWN) {
            lastKey = static_cast<unsigned>(wParam);
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
};

class GtkDesktop : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run"; }
    void TearDown() override {
        ToolkitEnd();
        ResetSysColors();
    }
};

TEST_F(GtkDesktop, ThemeGivesTheSystemFontsAndFillsTheColourTable) {
    GtkSetInterfaceFontName("Serif 13");
    ASSERT_TRUE(GtkAddStyleSheet("tooltip.background { background-color: #203040; }\n"
                                 "tooltip label { color: #e0d0c0; }\n"));
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(GetSystemFont(i)->GetFace(), "Serif");
        EXPECT_EQ(GetSystemFont(i)->GetHeight(), PointsToHeight(13));
    }
    EXPECT_EQ(GetDefaultFont()->GetHeight(), PointsToHeight(12));
    EXPECT_EQ(GetSysColor(SYS_COLOR_INFOBK), 0x403020u) << "the theme's tool tip background";
    EXPECT_EQ(GetSysColor(SYS_COLOR_INFOTEXT), 0xC0D0E0u);
    // The built-in theme's own colours: readable pairs.
    EXPECT_GT(std::abs(Brightness(GetSysColor(SYS_COLOR_WINDOW)) -
                       Brightness(GetSysColor(SYS_COLOR_WINDOWTEXT))),
              100);
    EXPECT_GT(std::abs(Brightness(GetSysColor(SYS_COLOR_BTNFACE)) -
                       Brightness(GetSysColor(SYS_COLOR_BTNTEXT))),
              100);
    EXPECT_NE(GetSysColor(SYS_COLOR_HIGHLIGHT), GetSysColor(SYS_COLOR_HIGHLIGHTTEXT));
    EXPECT_NE(GetSysColor(SYS_COLOR_GRAYTEXT), GetSysColor(SYS_COLOR_BTNTEXT));
    EXPECT_NE(GetSysColor(SYS_COLOR_HOTLIGHT), GetSysColor(SYS_COLOR_WINDOWTEXT));
    printf("theme: window %06X text %06X face %06X highlight %06X/%06X grey %06X link %06X\n",
           GetSysColor(SYS_COLOR_WINDOW), GetSysColor(SYS_COLOR_WINDOWTEXT),
           GetSysColor(SYS_COLOR_BTNFACE), GetSysColor(SYS_COLOR_HIGHLIGHT),
           GetSysColor(SYS_COLOR_HIGHLIGHTTEXT), GetSysColor(SYS_COLOR_GRAYTEXT),
           GetSysColor(SYS_COLOR_HOTLIGHT));
}

TEST_F(GtkDesktop, GtkKeepsAResizeInsideTheWindowsLimits) {
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    SWnd top;
    SRect bounds{60, 60, 360, 260};
    ASSERT_TRUE(top.Create("limits", WS_VISIBLE, 0, &bounds, 0));
    top.SetMinMax(200, 150, 400, 300);
    SSize size;
    ASSERT_TRUE(
        PumpUntil([&] { return GtkGetSurfaceSize(top.GetHandle(), &size) && size.width == 300; }));
    ASSERT_TRUE(GtkResizeSurface(top.GetHandle(), 50, 40));
    EXPECT_TRUE(PumpUntil([&] {
        return GtkGetSurfaceSize(top.GetHandle(), &size) && size == SSize{200, 150} &&
               top.GetSize() == SSize{200, 150};
    })) << "got "
        << size.width << " x " << size.height;
    ASSERT_TRUE(GtkResizeSurface(top.GetHandle(), 900, 900));
    EXPECT_TRUE(PumpUntil([&] {
        return GtkGetSurfaceSize(top.GetHandle(), &size) && size == SSize{400, 300} &&
               top.GetSize() == SSize{400, 300};
    })) << "got "
        << size.width << " x " << size.height;
}

TEST_F(GtkDesktop, ClipboardBlockTravelsThroughTheXSelection) {
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    SFileMem source;
    source.Write("header:payload", 14);
    source.Seek(7);
    SClipboard clipboard;
    ASSERT_TRUE(clipboard.SetFile(&source, -1));
    SFileMem target;
    ASSERT_TRUE(clipboard.GetFile(&target));
    ASSERT_EQ(target.GetSize(), 7);
    EXPECT_EQ(memcmp(target.GetData(), "payload", 7), 0);
    ASSERT_TRUE(clipboard.SetText("plain"));
    SFileMem none;
    EXPECT_FALSE(clipboard.GetFile(&none)) << "text took the block's place";
    EXPECT_EQ(clipboard.GetText(), "plain");
}

TEST_F(GtkDesktop, TypedKeyReachesTheFocusWindow) {
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    Keys top;
    SRect bounds{100, 100, 300, 250};
    ASSERT_TRUE(top.Create("keys", WS_VISIBLE, 0, &bounds, 0));
    SSize size;
    ASSERT_TRUE(
        PumpUntil([&] { return GtkGetSurfaceSize(top.GetHandle(), &size) && size.width == 200; }));
    // The click puts the pointer (and so the keyboard, without a window
    // manager) on the window.
    ASSERT_TRUE(GtkSimulateClick(top.GetHandle(), 50, 50));
    ASSERT_TRUE(PressKey('K'));
    EXPECT_TRUE(PumpUntil([&] { return top.lastKey == 'K'; }));
}

TEST_F(GtkDesktop, ToolTipWindowShowsBelowThePointerAndGoes) {
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    SWnd top, button;
    SRect bounds{100, 100, 400, 300};
    ASSERT_TRUE(top.Create("tips", WS_VISIBLE, 0, &bounds, 0));
    SRect rect{20, 20, 120, 60};
    ASSERT_TRUE(button.Create("button", WS_VISIBLE, 0, &rect, top.GetHandle()));
    button.SetToolTipText("Shuffle");
    button.SetToolTip(true);
    SSize size;
    ASSERT_TRUE(
        PumpUntil([&] { return GtkGetSurfaceSize(top.GetHandle(), &size) && size.width == 300; }));
    PlatformMouse(top.GetHandle(), WM_MOUSEMOVE, 40, 30, 0);
    SRect tip;
    ASSERT_TRUE(PumpUntil([&] { return GtkGetToolTipRect(&tip); })) << "no tip window";
    SRect window = top.GetWindowRect();
    EXPECT_EQ(tip.left, window.left + 40);
    EXPECT_EQ(tip.top, window.top + 30 + 20);
    EXPECT_GT(tip.Width(), 20);
    PlatformMouse(top.GetHandle(), WM_LBUTTONDOWN, 40, 30, MK_LBUTTON);
    EXPECT_TRUE(PumpUntil([&] { return !GtkGetToolTipRect(&tip); })) << "a click takes it away";
}

} // namespace
