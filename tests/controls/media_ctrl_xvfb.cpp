// SMediaCtrl on GTK under a virtual X display (run by xvfb-run): a marked-up
// text with bold and links, a ticker read back after a known time on a
// stepped clock, and a skinned button in its four states, each checked in
// the pixels the X server shows and written as PNG files to the build
// folder.
#include <gtest/gtest.h>

#include <cairo.h>
#include <cmath>
#include <string>

#include "controls/media_ctrl.h"
#include "foundation/file.h"
#include "support/message_pump.h"
#include "support/pixels.h"
#include "toolkit/draw.h"
#include "toolkit/notification.h"
#include "toolkit/platform/events.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/wnd_app.h"

namespace {

constexpr uint32_t WINDOW = 0xE6E6E6; // program colours, 0x00BBGGRR
constexpr uint32_t PAGE = 0xFFFFFF;
constexpr uint32_t INK = 0x202020;
constexpr uint32_t LINK = 0xC06000; // shows as 0x0060C0
constexpr uint32_t TICKER_BACK = 0x5A3A1E;
constexpr uint32_t TICKER_TEXT = 0xFFFFFF;

// The stepped clock of the ticker: only moves when the test says.
uint64_t clockNow = 5000;
uint64_t SteppedClock() {
    return clockNow;
}

class Parent : public SWnd {
public:
    int buttonClicks = 0;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        buttonClicks += SNotification(message, wParam, lParam).Is(SN_MEDIA_BUTTON_CLICKED) ? 1 : 0;
        return SWnd::OnMessage(message, wParam, lParam);
    }
};

// Runs the messages, letting GTK draw, until done() holds.
template <typename Done> bool Until(Done done) {
    return PumpUntil([&] {
        GtkSync();
        return done();
    });
}

uint32_t Rgb(const SImage& picture, int x, int y) {
    return picture.GetPixel(x, y) & 0xFFFFFF;
}

uint32_t ToRgb(uint32_t color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

// A vertical gradient from top to bottom (0xRRGGBB) with a darker outline,
// as a button picture stretched over the control.
SImage Skin(uint32_t top, uint32_t bottom) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 80, 36);
    cairo_t* cr = cairo_create(surface);
    cairo_pattern_t* pattern = cairo_pattern_create_linear(0, 0, 0, 36);
    for (uint32_t at : {0u, 1u}) {
        uint32_t c = at == 0 ? top : bottom;
        cairo_pattern_add_color_stop_rgb(pattern, at, ((c >> 16) & 0xFF) / 255.0,
                                         ((c >> 8) & 0xFF) / 255.0, (c & 0xFF) / 255.0);
    }
    cairo_set_source(cr, pattern);
    cairo_paint(cr);
    cairo_pattern_destroy(pattern);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    SImage image;
    image.LoadSurface(surface, 0, 0);
    cairo_surface_destroy(surface);
    image.drawMode = DRAW_STRETCH;
    return image;
}

// Draws part (clipped to clip when given) onto picture at (x, y).
void Paste(SImage& picture, const SImage& part, int x, int y, const SRect* clip = nullptr) {
    cairo_surface_t* surface = picture.CreateSurface();
    cairo_t* cr = cairo_create(surface);
    part.DrawAt(cr, x, y, -1, -1, clip);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    picture.LoadSurface(surface, 0, 0);
    cairo_surface_destroy(surface);
}

void SavePng(const SImage& picture, const char* name) {
    SFilePath file;
    std::string path = std::string(MELKORA_SCREENSHOT_DIR) + "/" + name;
    if (file.Open(path.c_str(), true, true, false, false)) {
        picture.Save(&file, IMAGE_PNG);
        file.Close();
    }
}

TEST(MediaCtrlOnGtk, MarkupTickerAndButtonStatesAsTheXServerShowsThem) {
    ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    SetMessageClock(SteppedClock, false);
    std::unique_ptr<SFont> font(MakeFont("Sans", -14, 0));
    {
        Parent top;
        SMediaCtrl text, ticker, button;
        SRect bounds{40, 40, 400, 250};
        ASSERT_TRUE(top.Create("Melkora media control", WS_VISIBLE, 0, &bounds, 0));
        top.SetBackColor(WINDOW);

        auto make = [&](SMediaCtrl& control, const char* title, SRect rect) {
            bool made = control.Create(title, WS_VISIBLE, 0, &rect, top.GetHandle());
            SendMessage(control.GetHandle(), WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), 0);
            return made;
        };
        ASSERT_TRUE(make(text, "", SRect{10, 10, 350, 96}));
        text.SetBackColor(PAGE);
        text.SetTextColor(INK);
        text.SetLinkColor(LINK);
        text.SetMargins(6, 4, 6, 4);
        text.SetAlign(MEDIA_ALIGN_LEFT | MEDIA_ALIGN_TOP);
        text.SetMarkup(true);
        text.SetText("<B>Melkora Browser</B> plays your folders.\r\n"
                     "Write to <LINK>someone@example.org</LINK>\r\n"
                     "or see <LINK>http://example.org/</LINK>\r\n"
                     "<C><I>Centred,</I> <#C03020>coloured</#> and <B>bold</B></C>");

        ASSERT_TRUE(make(ticker,
                         "Now playing: Artist - Album - A song title far too long for this strip",
                         SRect{10, 104, 350, 130}));
        ticker.SetBackColor(TICKER_BACK);
        ticker.SetTextColor(TICKER_TEXT);
        ticker.SetAutoScroll(-60, 0);
        ASSERT_TRUE(ticker.IsAutoScrollOn());
        ASSERT_EQ(ticker.GetScrollOffset().x, 338) << "the far edge of the inner rectangle";

        ASSERT_TRUE(make(button, "Play", SRect{10, 146, 110, 186}));
        SImage skins[4] = {Skin(0x4A78B4, 0x2A4C80), Skin(0x6CA0E0, 0x3E6EB0),
                           Skin(0x1E3A66, 0x2E5288), Skin(0xB0B0B0, 0x909090)};
        button.SetSkin(&skins[0], &skins[1], &skins[2], &skins[3]);
        button.SetTextColor(0xFFFFFF);
        button.SetAlign(MEDIA_ALIGN_CENTER | MEDIA_ALIGN_MIDDLE);
        button.SetButton(true);

        SImage shot;
        auto capture = [&] {
            return GtkCaptureSurface(top.GetHandle(), &shot) && shot.GetWidth() == 360;
        };

        // The marked-up text: bold and link runs where the layout put them.
        ASSERT_TRUE(Until([&] {
            return capture() && Rgb(shot, 12, 12) == ToRgb(PAGE) && text.GetLinkCount() == 2;
        })) << "the window was not drawn";
        const auto& lines = text.GetLines();
        ASSERT_EQ(lines.size(), 4u);
        ASSERT_GE(lines[0].texts.size(), 2u);
        EXPECT_EQ(lines[0].texts[0].font.weight, 700);
        SRect bold{10 + 6, 10 + 4, 10 + 6 + static_cast<int>(lines[0].texts[0].width),
                   10 + 4 + static_cast<int>(lines[0].height)};
        SRect plain{bold.right, bold.top, bold.right + static_cast<int>(lines[0].texts[1].width),
                    bold.bottom};
        double boldInk = static_cast<double>(CountNear(shot, bold, ToRgb(INK), 90)) / bold.Width();
        double plainInk =
            static_cast<double>(CountNear(shot, plain, ToRgb(INK), 90)) / plain.Width();
        EXPECT_GT(boldInk, plainInk * 1.2) << "bold strokes cover more of each column";
        for (int i = 0; i < 2; ++i) {
            SRect link = text.GetLinkRect(i);
            SRect onScreen{10 + link.left, 10 + link.top, 10 + link.right, 10 + link.bottom};
            EXPECT_GT(CountNear(shot, onScreen, ToRgb(LINK), 120), 40)
                << "link " << i << " is drawn in the link colour";
        }
        EXPECT_EQ(text.GetLinkText(1), "http://example.org/");

        // The ticker after 3 seconds at 60 pixels a second: 338 - 180.
        for (int step = 0; step < 150; ++step) {
            clockNow += MEDIA_TICKER_PERIOD;
            SMessage message;
            while (PeekMessage(&message, true)) {
                DispatchMessage(&message);
            }
        }
        EXPECT_EQ(ticker.GetScrollOffset().x, 158);
        SRect strip{10, 104, 350, 130};
        int firstColumn = -1;
        ASSERT_TRUE(Until([&] {
            if (!capture()) {
                return false;
            }
            firstColumn = FirstColumn(shot, strip, ToRgb(TICKER_TEXT), 120);
            return firstColumn >= 0 && firstColumn < 10 + 1 + 158 + 4;
        })) << "the scrolled ticker was not drawn; first text column "
            << firstColumn;
        EXPECT_GE(firstColumn, 10 + 1 + 158) << "the text starts at its offset";
        EXPECT_EQ(Rgb(shot, 20, 117), ToRgb(TICKER_BACK)) << "nothing left of the offset";
        SavePng(shot, "media_ctrl_window.png");

        // The button: normal, then hovered by a real pointer (a real click
        // through the X server puts it there), pressed, and disabled.
        SImage window;
        window.CopyFrom(&shot);
        SImage states;
        states.Create(4 * 110 + 10, 60, PIXEL_FORMAT_32ARGB);
        states.Fill(0xFF000000u | ToRgb(WINDOW));
        auto keep = [&](int index) {
            SImage part;
            ASSERT_TRUE(part.Crop(&shot, 0, 136, 120, 60));
            Paste(states, part, index * 110, 0);
        };
        const uint32_t faces[4] = {0x4A78B4, 0x6CA0E0, 0x1E3A66, 0xB0B0B0};
        auto shows = [&](int skin) {
            return capture() && NearRgb(Rgb(shot, 14, 149), faces[skin], 40);
        };
        ASSERT_TRUE(Until([&] { return shows(0); })) << "normal";
        EXPECT_EQ(button.GetFrameState(), MEDIA_FRAME_NONE);
        keep(0);

        ASSERT_TRUE(GtkSimulateClick(top.GetHandle(), 60, 166));
        ASSERT_TRUE(Until([&] { return top.buttonClicks == 1 && shows(1); }))
            << "the real click did not arrive, or the hovered skin did not show";
        EXPECT_EQ(button.GetFrameState(), MEDIA_FRAME_RAISED);
        EXPECT_EQ(Rgb(shot, 10, 166), 0xFFFFFFu) << "raised: white left edge";
        EXPECT_EQ(Rgb(shot, 109, 166), 0xA0A0A0u) << "grey right edge";
        keep(1);

        clockNow += 1000; // a second after the click: a press, no double click
        PlatformMouse(top.GetHandle(), WM_LBUTTONDOWN, 60, 166, MK_LBUTTON);
        ASSERT_TRUE(Until([&] { return shows(2); })) << "pressed";
        EXPECT_EQ(button.GetFrameState(), MEDIA_FRAME_SUNKEN);
        EXPECT_EQ(Rgb(shot, 10, 166), 0xA0A0A0u) << "sunken: the edges swap";
        keep(2);
        PlatformMouse(top.GetHandle(), WM_LBUTTONUP, 60, 166, 0);

        button.Enable(false);
        ASSERT_TRUE(Until([&] { return shows(3); })) << "disabled";
        EXPECT_EQ(button.GetFrameState(), MEDIA_FRAME_NONE) << "no frame, though hovered";
        keep(3);
        button.Enable(true);
        button.SetChecked(true);
        PlatformMouse(top.GetHandle(), WM_MOUSEMOVE, 300, 20, 0);
        ASSERT_TRUE(Until([&] { return shows(2); })) << "checked stays down";
        EXPECT_EQ(button.GetFrameState(), MEDIA_FRAME_SUNKEN);
        SavePng(states, "media_button_states.png");

        // One picture of it all for the documentation: the window, and the
        // four button states below it.
        SImage all;
        all.Create(states.GetWidth(), 136 + states.GetHeight(), PIXEL_FORMAT_32ARGB);
        all.Fill(0xFF000000u | ToRgb(WINDOW));
        SRect upper{0, 0, window.GetWidth(), 136};
        Paste(all, window, 0, 0, &upper);
        Paste(all, states, 0, 136);
        SavePng(all, "media_ctrl.png");
    }
    SetMessageClock(nullptr, true);
    ToolkitEnd();
}

} // namespace
