// The toolkit on GTK under a virtual X display (run by xvfb-run): a real
// top-level window with a skinned child and a transparent label, resized,
// read back from the X server, and clicked through the X test extension.
#include <gtest/gtest.h>

#include <cairo.h>
#include <chrono>
#include <thread>

#include "foundation/file.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

constexpr uint32_t BACK = 0x6B4A2E;  // program colour 0x00BBGGRR: a dark blue
constexpr uint32_t SKIN = 0x2AA0F0;  // 0xRRGGBB of the skin picture: a light blue

class Recording : public SWnd {
public:
    int clicks = 0;
    const char* label = nullptr;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == SM_LEFT_CLICK) {
            ++clicks;
        }
        if (message == WM_PAINT && label != nullptr) {
            cairo_t* cr = reinterpret_cast<cairo_t*>(wParam);
            cairo_set_source_rgb(cr, 1, 1, 1);
            cairo_select_font_face(cr, "Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
            cairo_set_font_size(cr, 16);
            cairo_move_to(cr, 4, 20);
            cairo_show_text(cr, label);
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
};

uint32_t Rgb(const SImage& picture, int x, int y) {
    return picture.GetPixel(x, y) & 0xFFFFFF;
}

uint32_t ToRgb(uint32_t color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

TEST(GtkWindow, SkinnedChildAndTransparentLabelFollowAResizeAndTakeARealClick) {
    ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    {
        Recording top, button, label;
        SRect bounds{40, 40, 340, 240};
        ASSERT_TRUE(top.Create("Melkora window test", WS_VISIBLE, 0, &bounds, 0));
        top.SetBackColor(BACK);
        SImage skin;
        skin.Create(16, 16, PIXEL_FORMAT_32ARGB);
        skin.Fill(0xFF000000u | SKIN);
        skin.drawMode = DRAW_STRETCH;
        SRect buttonRect{200, 20, 280, 60};
        ASSERT_TRUE(button.Create("button", WS_VISIBLE, 0, &buttonRect, top.GetHandle()));
        button.SetSkin(&skin, nullptr, nullptr, nullptr);
        button.SetAnchor(ANCHOR_LEFT | ANCHOR_RIGHT);
        SRect labelRect{20, 150, 180, 180};
        ASSERT_TRUE(label.Create("label", WS_VISIBLE, 0, &labelRect, top.GetHandle()));
        label.SetBackColor(0xFF000001);
        label.label = "Melkora";
        label.SetAnchor(ANCHOR_TOP | ANCHOR_BOTTOM);

        SImage shot;
        auto shows = [&](int x, int y, uint32_t rgb) {
            return GtkCaptureSurface(top.GetHandle(), &shot) && shot.GetWidth() > x &&
                   shot.GetHeight() > y && Rgb(shot, x, y) == rgb;
        };
        ASSERT_TRUE(PumpUntil([&] { return shows(240, 40, SKIN); })) << "the window was not drawn";

        top.SetSize(400, 260);
        EXPECT_EQ(button.GetRect(), (SRect{300, 20, 380, 60})) << "anchored left and right";
        EXPECT_EQ(label.GetRect(), (SRect{20, 210, 180, 240})) << "anchored top and bottom";
        ASSERT_TRUE(PumpUntil([&] { return shows(340, 40, SKIN) && shot.GetWidth() == 400; }))
            << "the resized window was not drawn";
        EXPECT_EQ(shot.GetHeight(), 260);
        EXPECT_EQ(Rgb(shot, 240, 40), ToRgb(BACK)) << "the old place of the button";
        EXPECT_EQ(Rgb(shot, 170, 235), ToRgb(BACK)) << "the label shows its parent's background";
        int textPixels = 0;
        for (int y = 210; y < 240; ++y) {
            for (int x = 20; x < 180; ++x) {
                textPixels += Rgb(shot, x, y) == 0xFFFFFF ? 1 : 0;
            }
        }
        EXPECT_GT(textPixels, 30) << "the label's text is drawn over it";
        SFilePath png;
        if (png.Open(MELKORA_SCREENSHOT, true, true, false, false)) {
            shot.Save(&png, IMAGE_PNG);
            png.Close();
        }

        ASSERT_TRUE(GtkSimulateClick(top.GetHandle(), 340, 40));
        EXPECT_TRUE(PumpUntil([&] { return button.clicks == 1; }))
            << "the synthesised click did not arrive as SM_LEFT_CLICK";
        EXPECT_EQ(top.clicks, 0);
        EXPECT_EQ(label.clicks, 0);
    }
    ToolkitEnd();
}

} // namespace
