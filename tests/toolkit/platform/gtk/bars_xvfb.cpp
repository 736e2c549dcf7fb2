// A toolbar (normal, hovered, checked and disabled buttons, a separator, a
// text button) and a status bar with a size grip, drawn on GTK under a
// virtual X display. The picture is saved (the build folder's bars.png,
// checked in as docs/bars.png) and a few pixels of each button are read.
#include <gtest/gtest.h>

#include <cstdlib>

#include "foundation/file.h"
#include "toolkit/bar_ctrls.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/sys_colors.h"
#include "toolkit/toolbar_ctrl.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

uint32_t Rgb(uint32_t color) { // program colour to the capture's 0xRRGGBB
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

TEST(GtkBars, ToolbarStatesAndStatusBarAreDrawn) {
    ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    {
        SWnd top;
        SRect bounds{20, 20, 20 + 420, 20 + 120};
        ASSERT_TRUE(top.Create("Melkora bars", WS_VISIBLE, 0, &bounds, 0));
        const uint32_t face = GetSysColor(SYS_COLOR_BTNFACE);
        top.SetBackColor(GetSysColor(SYS_COLOR_WINDOW));
        HWND parent = top.GetHandle();

        SToolBarCtrl bar;
        SRect barRect{0, 0, 420, 34};
        ASSERT_TRUE(bar.Create("", WS_VISIBLE, 0, &barRect, parent));
        bar.SetImageSize(22, 22);
        SImage picture;
        picture.Create(22, 22, PIXEL_FORMAT_32ARGB);
        picture.Fill(0xFF3070C0u);
        SRect inner{6, 6, 16, 16};
        picture.Fill(0xFFF0D040u, &inner);
        int image = bar.AddImage(picture);
        bar.AddButton(1, image, "Play");
        bar.AddButton(2, image, "Shuffle");
        bar.AddButton(3, image, "Repeat", TOOLBAR_STATE_ENABLED,
                      TOOLBAR_BUTTON_STYLE | TOOLBAR_BUTTON_CHECK);
        bar.AddButton(4, image, "Stop", TOOLBAR_STATE_DISABLED);
        bar.AddSeparator();
        bar.AddButton(5, -1, "Queue");
        bar.CheckButton(3, true);
        SRect hoveredRect = bar.GetButtonRect(1);
        SendMessage(
            bar.GetHandle(), WM_MOUSEMOVE, 0,
            MakePointParam((hoveredRect.left + hoveredRect.right) / 2, hoveredRect.top + 4));

        SStatusBarCtrl status;
        SRect statusRect{0, 96, 420, 120};
        ASSERT_TRUE(status.Create("", WS_VISIBLE | STATUS_SIZE_GRIP, 0, &statusRect, parent));
        status.SetParts({150, -1, 90});
        status.SetText(0, "1,234 tracks");
        status.SetText(1, "Playing: Blue in Green");
        status.SetText(2, "3:17");

        SImage shot;
        ASSERT_TRUE(PumpUntil([&] {
            return GtkCaptureSurface(parent, &shot) && shot.GetWidth() >= 420 &&
                   (shot.GetPixel(bar.GetButtonRect(0).left + 6, 8) & 0xFFFFFF) == 0x3070C0;
        })) << "the toolbar was not drawn";
        PumpUntil([] { return false; }, 1);
        ASSERT_TRUE(GtkCaptureSurface(parent, &shot));
        SFilePath png;
        if (png.Open(MELKORA_BARS_SHOT, true, true, false, false)) {
            shot.Save(&png, IMAGE_PNG);
            png.Close();
        }

        auto at = [&](int index, int dx, int dy) {
            SRect rect = bar.GetButtonRect(index);
            return shot.GetPixel(rect.left + dx, rect.top + dy) & 0xFFFFFF;
        };
        const uint32_t back = Rgb(face);
        // The image's edge (blue) and its middle (yellow) on a normal button.
        EXPECT_EQ(at(0, 6, 6), 0x3070C0u);
        EXPECT_EQ(at(0, 15, 15), 0xF0D040u);
        // Normal shows the face around the image; hovered and checked do not.
        EXPECT_EQ(at(0, 2, 15), back);
        EXPECT_NE(at(1, 2, 15), back) << "hovered";
        EXPECT_NE(at(2, 2, 15), back) << "checked";
        EXPECT_NE(at(1, 2, 15), at(2, 2, 15)) << "hovered and checked look alike";
        // Disabled: grey, not the image's colours.
        uint32_t grey = at(3, 15, 15);
        EXPECT_NE(grey, 0xF0D040u);
        // Grey laid half over the face: its channels stay close together,
        // where the yellow's spread wide.
        int spread =
            std::abs(static_cast<int>((grey >> 16) & 0xFF) - static_cast<int>(grey & 0xFF));
        EXPECT_LT(spread, 24) << std::hex << grey;
        // The separator's line, and text drawn on the text button.
        SRect separator = bar.GetButtonRect(4);
        EXPECT_NE(shot.GetPixel((separator.left + separator.right) / 2, 17) & 0xFFFFFF, back);
        SRect queue = bar.GetButtonRect(5);
        int inked = 0;
        for (int x = queue.left; x < queue.right; ++x) {
            for (int y = queue.top; y < queue.bottom; ++y) {
                inked += (shot.GetPixel(x, y) & 0xFFFFFF) != back ? 1 : 0;
            }
        }
        EXPECT_GT(inked, 10) << "the text button's text";
        // The status bar: its face, a divider at the end of the first part,
        // text in the first part.
        EXPECT_EQ(shot.GetPixel(300, 96 + 3) & 0xFFFFFF, back);
        EXPECT_NE(shot.GetPixel(149, 96 + 12) & 0xFFFFFF, back) << "divider";
        inked = 0;
        for (int x = 4; x < 140; ++x) {
            for (int y = 97; y < 120; ++y) {
                inked += (shot.GetPixel(x, y) & 0xFFFFFF) != back ? 1 : 0;
            }
        }
        EXPECT_GT(inked, 20) << "the first part's text";
    }
    ToolkitEnd();
}

} // namespace
