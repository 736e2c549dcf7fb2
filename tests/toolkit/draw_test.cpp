// Drawing helpers, fonts and text measures, the clipboard and cursors.
#include "toolkit/draw.h"

#include <cairo.h>

#include "toolkit_fixture.h"

namespace {

using Drawing = ToolkitTest;

// Paints with draw on a white 40 x 40 picture and returns it.
template <typename Draw> SImage Paint(Draw draw) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 40, 40);
    cairo_t* cr = cairo_create(surface);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    draw(cr);
    cairo_destroy(cr);
    SImage picture;
    picture.LoadSurface(surface, 0, 0);
    cairo_surface_destroy(surface);
    return picture;
}

uint32_t Rgb(const SImage& picture, int x, int y) {
    return picture.GetPixel(x, y) & 0xFFFFFF;
}

TEST_F(Drawing, PointsToHeightRoundsHalfUpAtNinetySixDots) {
    EXPECT_EQ(PointsToHeight(9), -12);
    EXPECT_EQ(PointsToHeight(8), -11);   // -10.67
    EXPECT_EQ(PointsToHeight(7.5), -10); // -10.0
    EXPECT_EQ(PointsToHeight(1.125), -1); // -1.5 goes up to -1
    EXPECT_EQ(PointsToHeight(0), 0);
}

TEST_F(Drawing, TextGrowsWithItsLengthAndFontHeight) {
    std::unique_ptr<SFont> small(MakeFont("Sans", -10, 0));
    std::unique_ptr<SFont> large(MakeFont("Sans", -20, FONT_BOLD));
    SSize one = TextSize(small.get(), "abc");
    SSize two = TextSize(small.get(), "abcabc");
    EXPECT_GT(one.width, 0);
    EXPECT_GT(two.width, one.width);
    EXPECT_EQ(TextSize(small.get(), "abcabc", 3), one) << "count limits the text";
    EXPECT_GT(TextSize(large.get(), "abc").height, one.height);
    EXPECT_EQ(TextSize(small.get(), "").width, 0);
    SSize metrics = TextMetrics(large.get());
    EXPECT_GT(metrics.width, 0);
    EXPECT_GT(metrics.height, metrics.width);
    EXPECT_EQ(large->Describe(), "Sans Bold 20px");
}

TEST_F(Drawing, FillFrameLineAndGradientLandWhereAsked) {
    SRect box = Rect(10, 10, 30, 30);
    SImage filled = Paint([&](cairo_t* cr) { FillRect(cr, &box, 0x0000FF); });
    EXPECT_EQ(Rgb(filled, 10, 10), 0xFF0000u);
    EXPECT_EQ(Rgb(filled, 29, 29), 0xFF0000u);
    EXPECT_EQ(Rgb(filled, 30, 30), 0xFFFFFFu) << "the right and bottom edges are outside";
    SImage framed = Paint([&](cairo_t* cr) { DrawFrame(cr, &box, SPen{0x000000, 1}); });
    EXPECT_EQ(Rgb(framed, 10, 20), 0x000000u);
    EXPECT_EQ(Rgb(framed, 29, 20), 0x000000u);
    EXPECT_EQ(Rgb(framed, 20, 20), 0xFFFFFFu) << "a frame is hollow";
    SImage line = Paint([&](cairo_t* cr) { DrawLine(cr, {0, 5}, {40, 5}, SPen{0x00FF00, 1}); });
    EXPECT_EQ(Rgb(line, 20, 5), 0x00FF00u);
    EXPECT_EQ(Rgb(line, 20, 6), 0xFFFFFFu);
    SRect all = Rect(0, 0, 40, 40);
    SImage across = Paint([&](cairo_t* cr) { GradientFill(cr, &all, 0x000000, 0xFFFFFF, false); });
    EXPECT_LT(Rgb(across, 0, 20) & 0xFF, 0x10u);
    EXPECT_GT(Rgb(across, 39, 20) & 0xFF, 0xEFu);
    EXPECT_EQ(Rgb(across, 20, 0), Rgb(across, 20, 39)) << "left to right only";
    SImage down = Paint([&](cairo_t* cr) { GradientFill(cr, &all, 0x000000, 0xFFFFFF, true); });
    EXPECT_EQ(Rgb(down, 0, 20), Rgb(down, 39, 20));
    SRect empty = Rect(5, 5, 5, 9);
    EXPECT_FALSE(GradientFill(nullptr, &all, 0, 0, true));
    Paint([&](cairo_t* cr) { EXPECT_FALSE(GradientFill(cr, &empty, 0, 0, true)); });
}

TEST_F(Drawing, ClipboardTextRoundTrips) {
    SClipboard clipboard;
    EXPECT_TRUE(clipboard.SetText("12345"));
    EXPECT_EQ(clipboard.GetText(), "12345");
    EXPECT_FALSE(clipboard.SetText(nullptr));
    EXPECT_EQ(clipboard.GetText(), "12345");
}

TEST_F(Drawing, CursorTableKeepsItsIndexes) {
    EXPECT_STREQ(GetCursorName(CURSOR_ARROW), "default");
    EXPECT_STREQ(GetCursorName(CURSOR_HAND), "pointer");
    EXPECT_STREQ(GetCursorName(CURSOR_COUNT), "default");
    EXPECT_STREQ(GetCursorName(-1), "default");
}

TEST_F(Drawing, WindowCursorIsShownOrHiddenOverTheWindow) {
    RecordingWnd wnd;
    ASSERT_TRUE(Make(wnd, "w", Rect(0, 0, 50, 50)));
    wnd.SetCursor(CURSOR_HAND + 1);
    platform->MoveMouse(wnd.GetHandle(), 5, 5);
    SHeadlessPlatform::Surface surface;
    ASSERT_TRUE(platform->GetSurface(wnd.GetHandle(), &surface));
    EXPECT_EQ(surface.cursor, CURSOR_HAND);
    wnd.EnableCursor(false);
    platform->MoveMouse(wnd.GetHandle(), 6, 6);
    ASSERT_TRUE(platform->GetSurface(wnd.GetHandle(), &surface));
    EXPECT_EQ(surface.cursor, -1);
}

} // namespace
