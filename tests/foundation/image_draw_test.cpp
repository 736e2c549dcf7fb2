// SImage onto Cairo: the draw modes read back from an image surface, the key
// and back colours, FitRect, and the exchange with surfaces.
#include "foundation/image.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include <initializer_list>
#include <memory>

namespace {

constexpr uint32_t GREY = 0xFF808080u;
constexpr uint32_t RED_BACK = 0x000000FFu; // red as a program colour 0x00BBGGRR
constexpr uint32_t RED = 0xFFFF0000u;

uint32_t Argb(uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
    return (a << 24) | (r << 16) | (g << 8) | b;
}

// A canvas of 100 by 80 filled grey, read back pixel by pixel.
class Canvas {
public:
    Canvas() {
        surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 100, 80);
        cr = cairo_create(surface);
        cairo_set_source_rgb(cr, 128 / 255.0, 128 / 255.0, 128 / 255.0);
        cairo_paint(cr);
    }
    ~Canvas() {
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }
    uint32_t At(int x, int y) {
        cairo_surface_flush(surface);
        const unsigned char* data = cairo_image_surface_get_data(surface);
        int stride = cairo_image_surface_get_stride(surface);
        return reinterpret_cast<const uint32_t*>(data + y * stride)[x];
    }
    std::vector<uint32_t> At(std::initializer_list<std::pair<int, int>> points) {
        std::vector<uint32_t> pixels;
        for (auto [x, y] : points) {
            pixels.push_back(At(x, y));
        }
        return pixels;
    }

    cairo_surface_t* surface;
    cairo_t* cr;
};

// Every pixel distinct and opaque: red 20 x, green 40 y.
SImage MakeNumbered(int width, int height) {
    SImage image;
    image.Create(width, height, PIXEL_FORMAT_24RGB);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            SRect one{x, y, x + 1, y + 1};
            image.Fill(Argb(255, x * 20, y * 40, 7), &one);
        }
    }
    return image;
}

} // namespace

TEST(ImageFitRect, FitsByTheTable) {
    // box, picture size, enlarge, fitted rectangle
    // clang-format off
    const std::tuple<SRect, int, int, bool, SRect> cases[] = {
        {{0, 0, 100, 100}, 50, 25, false, {25, 38, 75, 63}},
        {{0, 0, 100, 100}, 50, 25, true, {0, 25, 100, 75}},
        {{0, 0, 100, 100}, 25, 50, false, {38, 25, 63, 75}},
        {{0, 0, 100, 100}, 25, 50, true, {25, 0, 75, 100}},
        {{0, 0, 100, 100}, 200, 100, false, {0, 25, 100, 75}},
        {{0, 0, 100, 100}, 100, 400, false, {38, 0, 63, 100}},
        {{0, 0, 100, 100}, 100, 100, false, {0, 0, 100, 100}},
        {{10, 20, 110, 70}, 300, 100, true, {10, 29, 110, 62}},
        {{0, 0, 150, 150}, 40, 0, false, {55, 55, 95, 95}}}; // no height: ratio 1
    // clang-format on
    for (const auto& [box, width, height, enlarge, expected] : cases) {
        SRect fitted = FitRect(box, width, height, enlarge);
        EXPECT_EQ(fitted, expected)
            << width << "x" << height << " enlarge " << enlarge << ": " << fitted.left << ","
            << fitted.top << "," << fitted.right << "," << fitted.bottom;
    }
}

TEST(ImageDrawModes, NaturalSizeModesPlaceThePicture) {
    const SRect target{10, 10, 60, 50};
    // clang-format off
    const std::tuple<int, int, int> cases[] = {
        {DRAW_TOPLEFT, 10, 10}, {DRAW_TOPCENTER, 30, 10}, {DRAW_TOPRIGHT, 50, 10},
        {DRAW_MIDDLELEFT, 10, 27}, {DRAW_MIDDLERIGHT, 50, 27}, {DRAW_BOTTOMLEFT, 10, 44},
        {DRAW_BOTTOMCENTER, 30, 44}, {DRAW_BOTTOMRIGHT, 50, 44}, {DRAW_CENTER, 30, 27}};
    // clang-format on
    SImage picture = MakeNumbered(10, 6);
    for (auto [mode, x, y] : cases) {
        Canvas canvas;
        picture.drawMode = mode;
        picture.backColor = RED_BACK;
        picture.Draw(canvas.cr, &target);
        EXPECT_EQ(canvas.At({{x, y}, {x + 9, y + 5}, {x + 4, y + 2}}),
                  (std::vector<uint32_t>{picture.GetPixel(0, 0), picture.GetPixel(9, 5),
                                         picture.GetPixel(4, 2)}))
            << mode;
        // The rest of the target takes the back colour, outside it nothing.
        int besideX = x > target.left ? x - 1 : x + 10;
        EXPECT_EQ(canvas.At({{besideX, y}, {5, 5}, {60, 50}}),
                  (std::vector<uint32_t>{RED, GREY, GREY}))
            << mode;
    }
}

TEST(ImageDrawModes, WithoutBackColourTheTargetShowsThroughAndNaturalSizeIsClipped) {
    SImage picture = MakeNumbered(10, 6);
    for (uint32_t back : {0xFF000000u, 0xFF000001u}) {
        Canvas canvas;
        picture.drawMode = DRAW_CENTER;
        picture.backColor = back;
        SRect target{0, 0, 100, 80};
        picture.Draw(canvas.cr, &target);
        EXPECT_EQ(canvas.At(1, 1), GREY);
        EXPECT_EQ(canvas.At(45, 37), picture.GetPixel(0, 0));
    }
    Canvas canvas;
    SImage big;
    big.Create(200, 200, PIXEL_FORMAT_24RGB);
    big.Fill(RED);
    SRect target{10, 10, 20, 20};
    big.Draw(canvas.cr, &target);
    EXPECT_EQ(canvas.At({{10, 10}, {19, 19}, {20, 15}, {15, 20}}),
              (std::vector<uint32_t>{RED, RED, GREY, GREY}));
}

TEST(ImageDrawModes, StretchCoversTheTarget) {
    Canvas canvas;
    SImage picture;
    picture.Create(10, 6, PIXEL_FORMAT_24RGB);
    picture.Fill(0xFF0000FFu);
    SRect right{5, 0, 10, 6};
    picture.Fill(0xFF00FF00u, &right);
    picture.drawMode = DRAW_STRETCH;
    SRect target{10, 10, 90, 70};
    picture.Draw(canvas.cr, &target);
    EXPECT_EQ(
        canvas.At({{10, 10}, {10, 69}, {89, 69}, {89, 10}, {90, 70}, {9, 9}}),
        (std::vector<uint32_t>{0xFF0000FFu, 0xFF0000FFu, 0xFF00FF00u, 0xFF00FF00u, GREY, GREY}));
}

TEST(ImageDrawModes, TileRepeatsFromTheTargetCorner) {
    Canvas canvas;
    SImage picture = MakeNumbered(10, 6);
    picture.drawMode = DRAW_TILE;
    SRect target{7, 5, 45, 40};
    picture.Draw(canvas.cr, &target);
    EXPECT_EQ(
        canvas.At({{7, 5}, {7 + 10 + 3, 5 + 6 + 2}, {7 + 30 + 7, 5 + 30 + 4}, {45, 20}, {20, 40}}),
        (std::vector<uint32_t>{picture.GetPixel(0, 0), picture.GetPixel(3, 2),
                               picture.GetPixel(7, 4), GREY, GREY}));
}

TEST(ImageDrawModes, FitKeepsSizeAndFitEnlargeFills) {
    SImage picture;
    picture.Create(20, 10, PIXEL_FORMAT_24RGB);
    picture.Fill(0xFF0000FFu);
    picture.backColor = RED_BACK;
    SRect target{0, 0, 100, 80};
    {
        Canvas canvas;
        picture.drawMode = DRAW_FIT;
        picture.Draw(canvas.cr, &target);
        EXPECT_EQ(canvas.At({{40, 35}, {59, 44}, {39, 35}, {60, 44}, {50, 34}, {50, 45}}),
                  (std::vector<uint32_t>{0xFF0000FFu, 0xFF0000FFu, RED, RED, RED, RED}));
    }
    {
        Canvas canvas;
        picture.drawMode = DRAW_FIT_ENLARGE;
        picture.Draw(canvas.cr, &target);
        EXPECT_EQ(canvas.At({{0, 15}, {99, 64}, {0, 14}, {99, 65}}),
                  (std::vector<uint32_t>{0xFF0000FFu, 0xFF0000FFu, RED, RED}));
    }
}

TEST(ImageDrawColours, KeyColourBecomesTransparentAndAlphaBlends) {
    Canvas canvas;
    SImage picture;
    picture.Create(4, 4, PIXEL_FORMAT_24RGB);
    picture.Fill(0xFFFF00FFu); // magenta
    SRect middle{1, 1, 3, 3};
    picture.Fill(0xFF00FF00u, &middle);
    picture.keyColor = 0x00FF00FF; // magenta as 0x00BBGGRR
    picture.DrawAt(canvas.cr, 10, 10);
    EXPECT_EQ(canvas.At({{10, 10}, {11, 11}, {13, 13}}),
              (std::vector<uint32_t>{GREY, 0xFF00FF00u, GREY}));
    SImage clear;
    clear.Create(2, 2, PIXEL_FORMAT_32ARGB);
    clear.Fill(Argb(128, 255, 255, 255));
    clear.DrawAt(canvas.cr, 0, 0);
    uint32_t blended = canvas.At(1, 1);
    EXPECT_NEAR(static_cast<int>((blended >> 16) & 0xFF), 192, 2) << std::hex << blended;
}

TEST(ImageDrawSource, SourceRectangleDrawsAPartAndEmptyPicturesDrawNothing) {
    Canvas canvas;
    SImage picture = MakeNumbered(10, 6);
    SRect source{2, 1, 5, 4};
    picture.DrawAt(canvas.cr, 10, 10, -1, -1, &source);
    EXPECT_EQ(canvas.At({{10, 10}, {12, 12}, {13, 10}, {10, 13}}),
              (std::vector<uint32_t>{picture.GetPixel(2, 1), picture.GetPixel(4, 3), GREY, GREY}));
    SImage empty;
    empty.Draw(canvas.cr);
    empty.Draw(nullptr);
    EXPECT_EQ(canvas.At(0, 0), GREY);
    SImage small = MakeNumbered(3, 3);
    small.Draw(canvas.cr); // null target: the picture's own rectangle
    EXPECT_EQ(canvas.At(2, 2), small.GetPixel(2, 2));
    EXPECT_EQ(canvas.At(3, 3), GREY);
    SRect nowhere{5, 5, 5, 9};
    small.Draw(canvas.cr, &nowhere);
    EXPECT_EQ(canvas.At(5, 5), GREY);
}

TEST(ImageSurface, CreateAndLoadRoundTripAndRgbSurfacesLoadWithoutAlpha) {
    SImage picture;
    picture.Create(3, 1, PIXEL_FORMAT_32ARGB);
    SRect first{0, 0, 1, 1};
    picture.Fill(Argb(255, 10, 20, 30), &first);
    SRect second{1, 0, 2, 1};
    picture.Fill(Argb(128, 200, 100, 50), &second);
    cairo_surface_t* surface = picture.CreateSurface();
    ASSERT_NE(surface, nullptr);
    SImage back;
    ASSERT_TRUE(back.LoadSurface(surface, 0, 0));
    EXPECT_EQ(back.GetFormat(), PIXEL_FORMAT_32ARGB);
    EXPECT_EQ(back.GetPixel(0, 0), Argb(255, 10, 20, 30));
    uint32_t half = back.GetPixel(1, 0);
    EXPECT_EQ(half >> 24, 128u);
    EXPECT_NEAR(static_cast<int>((half >> 16) & 0xFF), 200, 1);
    EXPECT_EQ(back.GetPixel(2, 0), 0u);
    SImage part;
    EXPECT_TRUE(part.LoadSurface(surface, 1, 0, 2, 1));
    EXPECT_EQ(part.GetWidth(), 2);
    EXPECT_FALSE(part.LoadSurface(surface, 2, 0, 2, 1));
    EXPECT_FALSE(part.LoadSurface(nullptr, 0, 0));
    cairo_surface_destroy(surface);
    // An RGB surface loads without alpha.
    cairo_surface_t* rgb = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 4, 4);
    cairo_t* cr = cairo_create(rgb);
    cairo_set_source_rgb(cr, 1, 0, 0);
    cairo_paint(cr);
    cairo_destroy(cr);
    ASSERT_TRUE(back.LoadSurface(rgb, 0, 0));
    EXPECT_EQ(back.GetFormat(), PIXEL_FORMAT_24RGB);
    EXPECT_EQ(back.GetPixel(3, 3), RED);
    cairo_surface_destroy(rgb);
}
