// SImage in memory: format tags, pixel operations, geometry, regions, the
// image list and the water ripple.
#include "foundation/image.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>
#include <vector>

#include "foundation/file.h"
#include "foundation/image_list.h"
#include "foundation/image_water.h"

namespace {

uint32_t Argb(uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
    return (a << 24) | (r << 16) | (g << 8) | b;
}

// Every pixel distinct: red from x, green from y.
SImage MakeNumbered(int width, int height, int format = PIXEL_FORMAT_32ARGB) {
    SImage image;
    image.Create(width, height, format);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            SRect one{x, y, x + 1, y + 1};
            image.Fill(Argb(255, x, y, 7), &one);
        }
    }
    return image;
}

void FillRect(SImage& image, uint32_t argb, int left, int top, int right, int bottom) {
    SRect rect{left, top, right, bottom};
    image.Fill(argb, &rect);
}

SImage MakeSolid(int width, int height, uint32_t argb, int format = PIXEL_FORMAT_32ARGB) {
    SImage image;
    image.Create(width, height, format);
    image.Fill(argb);
    return image;
}

} // namespace

// ---- format tags and state ----

TEST(ImageFormat, BitsPerPixelComesFromTheTag) {
    // clang-format off
    const std::pair<int, int> cases[] = {
        {PIXEL_FORMAT_24RGB, 24}, {PIXEL_FORMAT_32RGB, 32}, {PIXEL_FORMAT_32ARGB, 32},
        {PIXEL_FORMAT_32PARGB, 32}, {0x30101, 1}, {0x30402, 4}, {0x30803, 8}, {0x21005, 16},
        {0x101004, 16}, {0x10300C, 48}, {0x34400D, 64}, {0, 0}, {0x1900, 0}, {-1, 0}};
    // clang-format on
    for (auto [format, bits] : cases) {
        EXPECT_EQ(GetBitsPerPixel(format), bits) << format;
    }
}

TEST(ImageFormat, EmptyOrRefusedPicturesReportZerosYetCreateIsTrue) {
    auto expectEmpty = [](SImage& image) {
        EXPECT_FALSE(image.IsValid());
        EXPECT_EQ(image.GetWidth() + image.GetHeight() + image.GetFormat(), 0);
        EXPECT_EQ(image.GetBitsPerPixel(), 0);
        EXPECT_EQ(image.GetPixel(0, 0), 0u);
        EXPECT_EQ(image.GetPixels(), nullptr);
        EXPECT_FALSE(image.Resize(10, 10));
        EXPECT_TRUE(image.GetRegion(0).empty());
    };
    SImage none;
    expectEmpty(none);
    const std::tuple<int, int, int> refused[] = {{0, 5, PIXEL_FORMAT_24RGB},
                                                 {5, -1, PIXEL_FORMAT_24RGB},
                                                 {IMAGE_MAX_SIDE + 1, 1, PIXEL_FORMAT_24RGB},
                                                 {5, 5, 12345}};
    for (auto [width, height, format] : refused) {
        SImage image = MakeSolid(2, 2, 0xFFFFFFFFu);
        EXPECT_TRUE(image.Create(width, height, format));
        SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height));
        expectEmpty(image);
    }
}

TEST(ImageFormat, TwentyFourBitsKeepNoAlphaAndThirtyTwoBitRgbGainsIt) {
    SImage rgb;
    EXPECT_TRUE(rgb.Create(4, 3, PIXEL_FORMAT_24RGB));
    EXPECT_EQ(rgb.GetBitsPerPixel(), 24);
    EXPECT_FALSE(rgb.HasAlpha());
    EXPECT_EQ(rgb.GetPixel(3, 2), 0xFF000000u); // opaque black
    rgb.Fill(0x00123456u);
    EXPECT_EQ(rgb.GetPixel(0, 0), 0xFF123456u); // no alpha kept
    EXPECT_FALSE(rgb.SetAlpha(128));
    EXPECT_EQ(rgb.GetPixel(0, 0), 0xFF123456u);

    SImage argb;
    argb.Create(4, 3, PIXEL_FORMAT_32ARGB);
    EXPECT_TRUE(argb.HasAlpha());
    EXPECT_EQ(argb.GetPixel(0, 0), 0u); // transparent
    argb.Fill(0x40123456u);
    EXPECT_EQ(argb.GetPixel(1, 1), 0x40123456u);
    EXPECT_TRUE(argb.ConvertTo(PIXEL_FORMAT_24RGB));
    EXPECT_EQ(argb.GetPixel(0, 0), 0xFF123456u);
    EXPECT_FALSE(argb.ConvertTo(777));

    SImage rgb32 = MakeSolid(2, 2, 0xFF102030u, PIXEL_FORMAT_32RGB);
    EXPECT_TRUE(rgb32.SetAlpha(64));
    EXPECT_EQ(rgb32.GetFormat(), PIXEL_FORMAT_32ARGB);
    EXPECT_EQ(rgb32.GetPixel(1, 1), 0x40102030u);
}

TEST(ImageFormat, ResetClearsAttributesAndEmptyKeepsThem) {
    SImage image = MakeSolid(2, 2, 0xFF00FF00u);
    image.name = "skin";
    image.drawMode = DRAW_TILE;
    image.backColor = 0x123456;
    image.keyColor = 0xFF00FF;
    image.flag = 3;
    image.Empty();
    EXPECT_FALSE(image.IsValid());
    EXPECT_EQ(image.drawMode, DRAW_TILE);
    image.Reset();
    EXPECT_EQ(image.name, "");
    EXPECT_EQ(image.drawMode, DRAW_TOPLEFT);
    EXPECT_EQ(image.backColor, 0xFF000000u);
    EXPECT_EQ(image.keyColor, 0xFF000000u);
    EXPECT_EQ(image.flag, 0u);
}

// ---- pixels in and out ----

TEST(ImagePixels, LoadPixelsCopiesAndSetsCentredMode) {
    uint32_t words[6] = {1, 2, 3, 0x80FFFFFFu, 5, 6};
    SImage image;
    image.backColor = 0x00FF00;
    EXPECT_TRUE(image.LoadPixels(words, 3, 2));
    EXPECT_EQ(image.GetFormat(), PIXEL_FORMAT_32ARGB);
    EXPECT_EQ(image.GetPixel(0, 1), 0x80FFFFFFu);
    EXPECT_EQ(image.drawMode, DRAW_CENTER);
    EXPECT_EQ(image.backColor, 0xFF000000u);
    EXPECT_FALSE(image.LoadPixels(nullptr, 3, 2));
    EXPECT_FALSE(image.LoadPixels(words, 0, 2));
}

TEST(ImagePixels, GetPixelsGivesTopDownBytes) {
    SImage image = MakeNumbered(3, 2);
    std::unique_ptr<uint8_t[]> bgra = image.GetPixels(PIXEL_FORMAT_32ARGB);
    ASSERT_NE(bgra, nullptr);
    // Pixel (2, 1): B 7, G 1, R 2, A 255 at byte (1 * 3 + 2) * 4.
    EXPECT_EQ(std::vector<uint8_t>(&bgra[20], &bgra[24]), (std::vector<uint8_t>{7, 1, 2, 255}));
    std::unique_ptr<uint8_t[]> bgr = image.GetPixels(PIXEL_FORMAT_24RGB);
    ASSERT_NE(bgr, nullptr);
    EXPECT_EQ(std::vector<uint8_t>(&bgr[15], &bgr[18]), (std::vector<uint8_t>{7, 1, 2}));
    EXPECT_EQ(image.GetPixels(0x30803), nullptr); // 8-bit is not given
}

TEST(ImagePixels, SetPixelsRoundTripsAndForcesOpaqueOnRgb) {
    SImage source = MakeNumbered(4, 4);
    FillRect(source, 0x20FFFFFFu, 0, 0, 1, 1);
    std::unique_ptr<uint8_t[]> bytes = source.GetPixels();
    SImage copy;
    copy.Create(4, 4, PIXEL_FORMAT_32ARGB);
    EXPECT_TRUE(copy.SetPixels(bytes.get()));
    EXPECT_EQ(copy.GetPixel(0, 0), 0x20FFFFFFu);
    EXPECT_EQ(copy.GetPixel(3, 2), source.GetPixel(3, 2));
    SImage rgb;
    rgb.Create(4, 4, PIXEL_FORMAT_24RGB);
    EXPECT_TRUE(rgb.SetPixels(bytes.get()));
    EXPECT_EQ(rgb.GetPixel(0, 0), 0xFFFFFFFFu);
    SImage empty;
    EXPECT_FALSE(empty.SetPixels(bytes.get()));
}

TEST(ImagePixels, FillClipsTheRectangle) {
    SImage image = MakeSolid(4, 4, 0xFF000000u);
    SRect rect{2, 2, 10, 10};
    EXPECT_TRUE(image.Fill(0xFFFF0000u, &rect));
    EXPECT_EQ(image.GetPixel(1, 1), 0xFF000000u);
    EXPECT_EQ(image.GetPixel(3, 3), 0xFFFF0000u);
    SRect outside{5, 5, 8, 8};
    EXPECT_FALSE(image.Fill(0xFF00FF00u, &outside));
}

// ---- alpha, grey and tint ----

TEST(ImageAlpha, OnlyLowerKeepsLowerAlpha) {
    SImage image;
    image.Create(2, 1, PIXEL_FORMAT_32ARGB);
    SRect first{0, 0, 1, 1};
    SRect second{1, 0, 2, 1};
    image.Fill(Argb(50, 10, 20, 30), &first);
    image.Fill(Argb(200, 10, 20, 30), &second);
    EXPECT_TRUE(image.SetAlpha(128, nullptr, true));
    EXPECT_EQ(image.GetPixel(0, 0) >> 24, 50u);
    EXPECT_EQ(image.GetPixel(1, 0) >> 24, 128u);
    EXPECT_EQ(image.GetPixel(1, 0) & 0xFFFFFFu, 0x0A141Eu);
    EXPECT_TRUE(image.SetAlpha(255, &first, false));
    EXPECT_EQ(image.GetPixel(0, 0) >> 24, 255u);
}

TEST(ImageAlpha, FlattenAlphaWhitensEveryTranslucentPixel) {
    SImage image;
    image.Create(3, 1, PIXEL_FORMAT_32ARGB);
    FillRect(image, 0xFE112233u, 0, 0, 1, 1);
    FillRect(image, 0xFF112233u, 1, 0, 2, 1);
    EXPECT_TRUE(image.FlattenAlpha());
    EXPECT_EQ(image.GetPixel(0, 0), 0xFFFFFFFFu);
    EXPECT_EQ(image.GetPixel(1, 0), 0xFF112233u);
    EXPECT_EQ(image.GetPixel(2, 0), 0xFFFFFFFFu); // was fully transparent
    SImage rgb = MakeSolid(1, 1, 0xFF000000u, PIXEL_FORMAT_24RGB);
    EXPECT_FALSE(rgb.FlattenAlpha());
}

TEST(ImageAlpha, FlattenBlendsOverTheBackColour) {
    SImage image = MakeSolid(2, 2, Argb(0, 255, 255, 255));
    image.backColor = 0x0000FF; // red, as 0x00BBGGRR
    SImage flat;
    EXPECT_TRUE(image.Flatten(&flat));
    EXPECT_EQ(flat.GetFormat(), PIXEL_FORMAT_24RGB);
    EXPECT_EQ(flat.GetPixel(0, 0), 0xFFFF0000u);
    EXPECT_EQ(image.GetFormat(), PIXEL_FORMAT_32ARGB); // source untouched
    image.Fill(Argb(128, 0, 0, 255));
    image.backColor = 0xFF000000u; // none: white
    EXPECT_TRUE(image.Flatten());
    EXPECT_EQ(image.GetPixel(1, 1), Argb(255, 127, 127, 255));
}

TEST(ImageGray, MakeGrayUsesLuminanceWeightsKeepsAlphaAndHonoursTheRectangle) {
    // clang-format off
    const std::pair<uint32_t, uint32_t> cases[] = {
        {Argb(255, 255, 0, 0), 76}, {Argb(255, 0, 255, 0), 150}, {Argb(255, 0, 0, 255), 29},
        {Argb(255, 255, 255, 255), 255}, {Argb(255, 0, 0, 0), 0}, {Argb(255, 10, 20, 30), 18}};
    // clang-format on
    for (auto [in, grey] : cases) {
        SImage image = MakeSolid(1, 1, in, PIXEL_FORMAT_24RGB);
        EXPECT_TRUE(image.MakeGray());
        EXPECT_EQ(image.GetPixel(0, 0), Argb(255, grey, grey, grey)) << std::hex << in;
    }
    SImage image = MakeSolid(2, 1, Argb(77, 255, 0, 0));
    SRect left{0, 0, 1, 1};
    EXPECT_TRUE(image.MakeGray(&left));
    EXPECT_EQ(image.GetPixel(0, 0), Argb(77, 76, 76, 76));
    EXPECT_EQ(image.GetPixel(1, 0), Argb(77, 255, 0, 0));
}

TEST(ImageTint, LuminanceScalesTheColour) {
    SImage image;
    image.Create(2, 1, PIXEL_FORMAT_32ARGB);
    FillRect(image, Argb(200, 255, 255, 255), 0, 0, 1, 1);
    FillRect(image, Argb(30, 0, 255, 0), 1, 0, 2, 1);
    EXPECT_TRUE(image.TintLuminance(0x00FF8000)); // blue 255, green 128, red 0
    EXPECT_EQ(image.GetPixel(0, 0), Argb(200, 0, 128, 255));
    // Green's luminance is 150: each channel times 150 / 255.
    EXPECT_EQ(image.GetPixel(1, 0), Argb(30, 0, 75, 150));
}

// ---- geometry ----

TEST(ImageResize, GivesTheAskedSizesAndChangesNothingOnRefusal) {
    // clang-format off
    const std::tuple<int, int, bool, int, int> cases[] = {
        {150, 150, true, 150, 150}, {1, 1, true, 1, 1}, {3, 200, true, 3, 200},
        {0, 10, false, 40, 30}, {-5, 10, false, 40, 30}, {40, 30, false, 40, 30},
        {40, 31, true, 40, 31}, {IMAGE_MAX_SIDE + 1, 5, false, 40, 30}};
    // clang-format on
    for (auto [width, height, result, newWidth, newHeight] : cases) {
        SImage image = MakeNumbered(40, 30, PIXEL_FORMAT_24RGB);
        EXPECT_EQ(image.Resize(width, height), result) << width << "x" << height;
        EXPECT_EQ(image.GetWidth(), newWidth);
        EXPECT_EQ(image.GetHeight(), newHeight);
        EXPECT_EQ(image.GetFormat(), PIXEL_FORMAT_24RGB);
        if (!result) {
            EXPECT_EQ(image.GetPixel(39, 29), Argb(255, 39, 29, 7));
        }
    }
}

TEST(ImageResize, SolidColourStaysExact) {
    SImage image = MakeSolid(37, 23, Argb(255, 200, 100, 50), PIXEL_FORMAT_24RGB);
    ASSERT_TRUE(image.Resize(150, 150));
    EXPECT_EQ(image.GetPixel(0, 0), Argb(255, 200, 100, 50));
    EXPECT_EQ(image.GetPixel(149, 75), Argb(255, 200, 100, 50));
    ASSERT_TRUE(image.Resize(3, 2));
    EXPECT_EQ(image.GetPixel(2, 1), Argb(255, 200, 100, 50));
}

TEST(ImageResize, TransparentPixelsLendNoColour) {
    // Left half opaque red, right half transparent green.
    SImage image;
    image.Create(8, 8, PIXEL_FORMAT_32ARGB);
    FillRect(image, Argb(255, 255, 0, 0), 0, 0, 4, 8);
    FillRect(image, Argb(0, 0, 255, 0), 4, 0, 8, 8);
    ASSERT_TRUE(image.Resize(4, 4));
    uint32_t edge = image.GetPixel(2, 2);
    EXPECT_GT(edge >> 24, 0u);
    EXPECT_LT(edge >> 24, 255u);
    EXPECT_EQ((edge >> 8) & 0xFF, 0u) << std::hex << edge; // no green bleeds in
}

TEST(ImageResize, HalvingAveragesNeighbours) {
    // Alternate columns black and white reduce to mid grey.
    SImage image;
    image.Create(64, 4, PIXEL_FORMAT_24RGB);
    for (int x = 0; x < 64; x += 2) {
        SRect column{x, 0, x + 1, 4};
        image.Fill(0xFFFFFFFFu, &column);
    }
    ASSERT_TRUE(image.Resize(32, 4));
    for (int x = 4; x < 28; ++x) {
        int red = (image.GetPixel(x, 1) >> 16) & 0xFF;
        EXPECT_NEAR(red, 128, 3) << x;
    }
}

TEST(ImageCanvas, CentresWithoutScalingAndMakesTheMarginClear) {
    SImage image = MakeNumbered(4, 2, PIXEL_FORMAT_24RGB);
    ASSERT_TRUE(image.ResizeCanvas(8, 6));
    EXPECT_EQ(image.GetFormat(), PIXEL_FORMAT_32ARGB);
    // Half the canvas less half the picture: 4 - 2 = 2 across, 3 - 1 = 2 down.
    EXPECT_EQ(image.GetPixel(2, 2), Argb(255, 0, 0, 7));
    EXPECT_EQ(image.GetPixel(5, 3), Argb(255, 3, 1, 7));
    EXPECT_EQ(image.GetPixel(1, 2), 0u);
    EXPECT_EQ(image.GetPixel(6, 3), 0u);
    EXPECT_FALSE(image.ResizeCanvas(8, 6));
    // Smaller: the middle is kept.
    ASSERT_TRUE(image.ResizeCanvas(2, 2));
    EXPECT_EQ(image.GetPixel(0, 0), Argb(255, 1, 0, 7));
}

TEST(ImageRotate, NonSquarePictureTurnsClockwise) {
    SImage image = MakeNumbered(3, 2); // pixel (x, y) has red x, green y
    // degrees, size, and where the source's top left (0, 0) and top right (2, 0) land
    // clang-format off
    const std::tuple<int, int, int, int, int, int, int> cases[] = {
        {90, 2, 3, 1, 0, 1, 2}, {180, 3, 2, 2, 1, 0, 1}, {270, 2, 3, 0, 2, 0, 0}};
    // clang-format on
    for (auto [degrees, width, height, topLeftX, topLeftY, topRightX, topRightY] : cases) {
        SImage turned;
        turned.CopyFrom(&image);
        ASSERT_TRUE(turned.Rotate(degrees));
        EXPECT_EQ(turned.GetWidth(), width);
        EXPECT_EQ(turned.GetHeight(), height);
        EXPECT_EQ(turned.GetPixel(topLeftX, topLeftY), image.GetPixel(0, 0)) << degrees;
        EXPECT_EQ(turned.GetPixel(topRightX, topRightY), image.GetPixel(2, 0)) << degrees;
    }
    SImage turned;
    turned.CopyFrom(&image);
    EXPECT_FALSE(turned.Rotate(45));
    EXPECT_FALSE(turned.Rotate(0));
    turned.Rotate(90);
    turned.Rotate(270);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            EXPECT_EQ(turned.GetPixel(x, y), image.GetPixel(x, y));
        }
    }
}

TEST(ImageCrop, CopiesTheRegionInTheSourceFormat) {
    SImage source = MakeNumbered(6, 5, PIXEL_FORMAT_24RGB);
    SImage part;
    ASSERT_TRUE(part.Crop(&source, 2, 1, 3, 2));
    EXPECT_EQ(part.GetWidth(), 3);
    EXPECT_EQ(part.GetHeight(), 2);
    EXPECT_EQ(part.GetFormat(), PIXEL_FORMAT_24RGB);
    EXPECT_EQ(part.GetPixel(0, 0), source.GetPixel(2, 1));
    EXPECT_EQ(part.GetPixel(2, 1), source.GetPixel(4, 2));
    ASSERT_TRUE(part.Crop(&source, 4, 3, -1, -1)); // up to the edge
    EXPECT_EQ(part.GetWidth(), 2);
    EXPECT_EQ(part.GetHeight(), 2);
    EXPECT_FALSE(part.Crop(&source, 5, 0, 2, 1));
    EXPECT_FALSE(part.Crop(&source, -1, 0, 2, 1));
    EXPECT_FALSE(part.Crop(nullptr, 0, 0, 1, 1));
    // Cropping a picture into itself works.
    ASSERT_TRUE(source.Crop(&source, 1, 1, 2, 2));
    EXPECT_EQ(source.GetPixel(0, 0), Argb(255, 1, 1, 7));
}

TEST(ImageRegion, RunsOfPixelsThatDifferFromTheKeyWithTransparentAsBlack) {
    // Magenta key with a shape: row 0 "..XX.X", row 1 "......", row 2 "XXXXXX".
    SImage image = MakeSolid(6, 3, Argb(255, 255, 0, 255), PIXEL_FORMAT_24RGB);
    FillRect(image, Argb(255, 1, 2, 3), 2, 0, 4, 1);
    FillRect(image, Argb(255, 1, 2, 3), 5, 0, 6, 1);
    FillRect(image, Argb(255, 9, 9, 9), 0, 2, 6, 3);
    EXPECT_EQ(image.GetRegion(0x00FF00FF),
              (std::vector<SRect>{{2, 0, 4, 1}, {5, 0, 6, 1}, {0, 2, 6, 3}}));
    SImage clear;
    clear.Create(3, 1, PIXEL_FORMAT_32ARGB); // all transparent
    FillRect(clear, Argb(255, 0, 0, 0), 1, 0, 2, 1);
    EXPECT_TRUE(clear.GetRegion(0x000000).empty());
    EXPECT_EQ(clear.GetRegion(0xFFFFFF).size(), 1u);
}

// ---- image list ----

TEST(ImageListCells, OutOfRangeSizesBecomeSixteenAndAddingBeforeCreateFails) {
    SImageList list;
    SImage image = MakeSolid(16, 16, 0xFFFFFFFFu);
    EXPECT_FALSE(list.Add(&image));
    EXPECT_FALSE(list.AddEmpty());
    EXPECT_EQ(list.GetCount(), 0);
    // clang-format off
    const std::tuple<int, int, int, int> cases[] = {
        {0, 300, 16, 16}, {-1, 256, 16, 256}, {1, 257, 1, 16}, {24, 24, 24, 24}};
    // clang-format on
    for (auto [width, height, cellWidth, cellHeight] : cases) {
        EXPECT_TRUE(list.Create(width, height, 0));
        EXPECT_EQ(list.GetWidth(), cellWidth);
        EXPECT_EQ(list.GetHeight(), cellHeight);
        EXPECT_EQ(list.GetCount(), 0);
    }
}

TEST(ImageListCells, StripsAndGridsAreCutIntoCells) {
    SImage strip = MakeNumbered(64, 16);
    SImageList list;
    ASSERT_TRUE(list.CreateFromStrip(&strip, 16, 16));
    EXPECT_EQ(list.GetCount(), 4);
    EXPECT_EQ(list.GetFlags(), 32);
    EXPECT_EQ(list.GetImage(2)->GetPixel(0, 0), strip.GetPixel(32, 0));
    EXPECT_EQ(list.GetImage(4), nullptr);
    SImage whole;
    ASSERT_TRUE(whole.LoadImageList(list, -1));
    EXPECT_EQ(whole.GetWidth(), 64);
    EXPECT_EQ(whole.GetPixel(63, 15), strip.GetPixel(63, 15));
    SImage one;
    ASSERT_TRUE(one.LoadImageList(list, 3));
    EXPECT_EQ(one.GetPixel(0, 0), strip.GetPixel(48, 0));
    EXPECT_FALSE(one.LoadImageList(list, 4));
    // A grid is cut row by row; a picture narrower than a cell is refused.
    SImage grid = MakeNumbered(32, 32);
    ASSERT_TRUE(list.CreateFromStrip(&grid, 0, 0)); // cells of 16
    ASSERT_EQ(list.GetCount(), 4);
    EXPECT_EQ(list.GetImage(1)->GetPixel(0, 0), grid.GetPixel(16, 0));
    EXPECT_EQ(list.GetImage(2)->GetPixel(0, 0), grid.GetPixel(0, 16));
    SImage narrow = MakeNumbered(15, 64);
    EXPECT_FALSE(list.CreateFromStrip(&narrow, 16, 16));
}

TEST(ImageListCells, OtherSizesAreCentredUnscaled) {
    SImageList list;
    list.Create(16, 16, 0);
    SImage small = MakeSolid(4, 4, Argb(255, 255, 0, 0), PIXEL_FORMAT_24RGB);
    ASSERT_TRUE(list.Add(&small));
    const SImage* cell = list.GetImage(0);
    EXPECT_EQ(cell->GetWidth(), 16);
    EXPECT_EQ(cell->GetFormat(), PIXEL_FORMAT_32ARGB);
    EXPECT_EQ(cell->GetPixel(6, 6), Argb(255, 255, 0, 0));
    EXPECT_EQ(cell->GetPixel(5, 6), 0u);
    EXPECT_TRUE(list.AddEmpty());
    EXPECT_EQ(list.GetImage(1)->GetFormat(), PIXEL_FORMAT_24RGB);
    list.RemoveAll();
    EXPECT_EQ(list.GetCount(), 0);
}

TEST(ImageListCells, DisabledLookIsGreyAndHalfTransparent) {
    SImage icon = MakeSolid(16, 16, Argb(255, 255, 0, 0), PIXEL_FORMAT_24RGB);
    FillRect(icon, Argb(255, 0, 0, 255), 0, 0, 1, 1);
    SFileMem file;
    ASSERT_TRUE(icon.Save(&file, IMAGE_PNG));
    SImageList list;
    list.Create(16, 16, 0);
    file.Rewind();
    ASSERT_TRUE(list.AddFile(&file, true));
    file.Rewind();
    ASSERT_TRUE(list.AddFile(&file, false));
    EXPECT_EQ(list.GetImage(0)->GetPixel(5, 5), Argb(128, 76, 76, 76));
    EXPECT_EQ(list.GetImage(0)->GetPixel(0, 0), Argb(128, 29, 29, 29));
    EXPECT_EQ(list.GetImage(1)->GetPixel(5, 5), Argb(255, 255, 0, 0));
    SFileMem junk;
    junk.WriteText("no picture");
    junk.Rewind();
    EXPECT_FALSE(list.AddFile(&junk, false));
    EXPECT_EQ(list.GetCount(), 2);
}

// ---- water ----

TEST(ImageWaterRipple, StillWaterCopiesTheSourceAndEdgeDropsStayInside) {
    SImageWater water;
    ASSERT_TRUE(water.Create(20, 10));
    SImage source = MakeNumbered(20, 10, PIXEL_FORMAT_24RGB);
    SImage frame;
    EXPECT_FALSE(water.Step(source, &frame));
    EXPECT_TRUE(water.IsStill());
    EXPECT_EQ(frame.GetPixel(19, 9), source.GetPixel(19, 9));
    EXPECT_EQ(frame.GetFormat(), PIXEL_FORMAT_24RGB);
    SImage wrongSize = MakeNumbered(10, 10);
    EXPECT_FALSE(water.Step(wrongSize, &frame));
    EXPECT_FALSE(water.Create(0, 5));
    ASSERT_TRUE(water.Create(20, 10));
    water.Drop(-100, 3, 5, 50); // wholly outside: nothing
    water.Drop(0, 0, 50, 5000);
    water.Drop(19, 9, 3, -300);
    for (int i = 0; i < 3000 && water.Step(source, &frame); ++i) {
    }
    EXPECT_TRUE(water.IsStill());
}

TEST(ImageWaterRipple, DropDisturbsAndThenComesToRest) {
    SImageWater water;
    ASSERT_TRUE(water.Create(150, 150));
    SImage source = MakeNumbered(150, 150, PIXEL_FORMAT_24RGB);
    SImage frame;
    water.Drop(75, 75, 25, 250);
    EXPECT_FALSE(water.IsStill());
    ASSERT_TRUE(water.Step(source, &frame));
    int moved = 0;
    for (int y = 0; y < 150; ++y) {
        for (int x = 0; x < 150; ++x) {
            moved += frame.GetPixel(x, y) != source.GetPixel(x, y);
        }
    }
    EXPECT_GT(moved, 100);
    EXPECT_EQ(frame.GetPixel(0, 0), source.GetPixel(0, 0)); // far corner untouched
    int steps = 1;
    while (water.Step(source, &frame) && steps < 5000) {
        ++steps;
    }
    EXPECT_LT(steps, 5000) << "the water never came to rest";
    EXPECT_TRUE(water.IsStill());
    EXPECT_EQ(frame.GetPixel(75, 75), source.GetPixel(75, 75));
}
