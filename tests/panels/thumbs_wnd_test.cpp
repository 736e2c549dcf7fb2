// PWndThumbs on the headless platform: the grid's geometry and hit test,
// the hover and the cursor, the clicks the main window receives (with
// Shift turning the auto-hide preference round), scrolling, and what a
// frame shows.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "panels/thumbs_wnd.h"
#include "support/pixels.h"
#include "panels/thumbs_host.h"
#include "toolkit/draw.h"
#include "toolkit/list_draw.h"
#include "toolkit/platform/events.h"
#include "toolkit/toolkit_fixture.h"

namespace {

constexpr uint32_t FOLDER_COVER = 0x2060A0; // 0xRRGGBB
constexpr uint32_t MEDIA_COVER = 0xC03020;
constexpr uint32_t BAND = 0x42779C;
constexpr uint32_t BAND_HOT = 0x9C4242;
constexpr uint32_t BACKGROUND = 0xEDD5B6;

SImage Cover(uint32_t rgb) {
    SImage image;
    image.Create(150, 150, PIXEL_FORMAT_24RGB);
    image.Fill(0xFF000000u | rgb);
    return image;
}

// The centre of a card's cover, in client coordinates.
SPoint CoverCentre(const SRect& card) {
    return SPoint{card.left + 4 + 75, card.top + 4 + 75};
}

class ThumbsTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        Open(556, 300);
    }
    void TearDown() override {
        thumbs.Destroy();
        parent.Destroy();
        ToolkitTest::TearDown();
    }
    // The view fills a top-level window of width by height; with a 12-pixel
    // scroll bar, 556 leaves 544 for three columns.
    void Open(int width, int height) {
        thumbs.Destroy();
        parent.Destroy();
        ASSERT_TRUE(Make(parent, "main", Rect(0, 0, width, height)));
        ASSERT_TRUE(thumbs.Create(&parent, Rect(0, 0, width, height)));
    }
    // Cards 0, 2, 4, 6 are folders; 1, 3, 5 are media.
    void Fill(int count) {
        thumbs.ClearThumbs();
        for (int i = 0; i < count; ++i) {
            bool media = i % 2 == 1;
            thumbs.AddThumb(Cover(media ? MEDIA_COVER : FOLDER_COVER),
                            ("Card " + std::to_string(i)).c_str(), media);
        }
    }
    HWND Top() const { return parent.GetHandle(); }
    int Cursor() {
        SHeadlessPlatform::Surface surface;
        platform->GetSurface(Top(), &surface);
        return surface.cursor;
    }
    SImage Shot() {
        SImage shot;
        EXPECT_TRUE(platform->Snapshot(Top(), &shot));
        return shot;
    }
    uint32_t Pixel(const SImage& shot, SPoint point) {
        return shot.GetPixel(point.x, point.y) & 0xFFFFFF;
    }
    void PressShift(SPoint point, bool shift) {
        platform->MoveMouse(Top(), point.x, point.y);
        PlatformMouse(Top(), WM_LBUTTONDOWN, point.x, point.y, MK_LBUTTON | (shift ? MK_SHIFT : 0));
        PlatformMouse(Top(), WM_LBUTTONUP, point.x, point.y, 0);
        SHeadlessPlatform::DispatchPending();
    }

    SWnd parent;
    ThumbsHost host;
    PWndThumbs thumbs{&host};
};

TEST_F(ThumbsTest, ColumnsFollowTheWidthAndANarrowViewKeepsOne) {
    struct Case {
        int width;
        int columns;
    };
    // The width includes the 12-pixel scroll bar.
    for (Case c : {Case{1932, 11}, Case{556, 3}, Case{554, 3}, Case{553, 2}, Case{214, 1}, Case{213, 1},
                   Case{50, 1}, Case{12, 1}, Case{1, 1}}) {
        SCOPED_TRACE(c.width);
        Open(c.width, 300);
        Fill(7);
        EXPECT_EQ(thumbs.GetColumns(), c.columns);
        EXPECT_EQ(thumbs.GetRows(), (7 + c.columns - 1) / c.columns);
        SRect last = thumbs.GetCardRect(6);
        EXPECT_EQ(last.left, 6 % c.columns * 170 + 32);
        EXPECT_EQ(last.top, 6 / c.columns * 200 + 8);
        // Nothing divides by a zero column count on the way.
        for (int x : {0, 5, 40, 120, 250}) {
            thumbs.HitTest(x, 100);
        }
        Shot();
    }
}

TEST_F(ThumbsTest, HitTestCountsTheCoverAloneThenTheBand) {
    Fill(7);
    struct Case {
        int x, y;
        int expected;
    };
    const Case cases[] = {
        {36, 12, 0},    // the cover's first pixel
        {185, 161, 0},  // its last
        {35, 12, -2},   // the rim, over the band
        {36, 11, -2},   // above the cover, still the band
        {186, 100, -1}, // between two covers
        {50, 170, -2},  // the first column's label lies on the band
        {250, 170, -1}, // another column's label
        {206, 12, 1},
        {386, 222, 5},
        {36, 412, 6},
        {386, 422, -1}, // a cell without a card
        {10, 290, -2},
        {550, 10, -1}, // the scroll bar
    };
    for (const Case& c : cases) {
        EXPECT_EQ(thumbs.HitTest(c.x, c.y), c.expected) << c.x << "," << c.y;
    }
    thumbs.ScrollTo(40);
    EXPECT_EQ(thumbs.GetScrollPos(), 40);
    EXPECT_EQ(thumbs.HitTest(40, 100), 0);
    EXPECT_EQ(thumbs.HitTest(40, 130), -2) << "the cover ends 40 higher";
    EXPECT_EQ(thumbs.HitTest(386, 182), 5);
}

TEST_F(ThumbsTest, HoverFollowsTheMouseWithTheHandOverCardsAndBand) {
    Fill(3);
    SPoint card1 = CoverCentre(thumbs.GetCardRect(1));
    platform->MoveMouse(Top(), card1.x, card1.y);
    EXPECT_EQ(thumbs.GetHoverIndex(), 1);
    EXPECT_EQ(Cursor(), CURSOR_HAND);
    platform->MoveMouse(Top(), card1.x, 175); // its label
    EXPECT_EQ(thumbs.GetHoverIndex(), -1);
    EXPECT_EQ(Cursor(), CURSOR_ARROW);
    platform->MoveMouse(Top(), 20, 250);
    EXPECT_EQ(thumbs.GetHoverIndex(), -2);
    EXPECT_EQ(Cursor(), CURSOR_HAND);
    PlatformMouseLeave(Top());
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(thumbs.GetHoverIndex(), -1);
}

TEST_F(ThumbsTest, ResizeClearsTheHoverUntilTheMouseMoves) {
    Fill(7);
    SPoint card0 = CoverCentre(thumbs.GetCardRect(0));
    platform->MoveMouse(Top(), card0.x, card0.y);
    ASSERT_EQ(thumbs.GetHoverIndex(), 0);
    thumbs.MoveWindow(Rect(0, 0, 400, 300));
    EXPECT_EQ(thumbs.GetHoverIndex(), -1);
    EXPECT_EQ(thumbs.GetColumns(), 2);
    platform->MoveMouse(Top(), card0.x, card0.y);
    EXPECT_EQ(thumbs.GetHoverIndex(), 0);
}

TEST_F(ThumbsTest, PressesReachTheMainWindowAndGiveTheFocus) {
    Fill(3);
    SPoint folder = CoverCentre(thumbs.GetCardRect(0));
    SPoint media = CoverCentre(thumbs.GetCardRect(1));
    struct Case {
        SPoint at;
        unsigned message;
        std::vector<std::string> calls;
    };
    const Case cases[] = {
        {{20, 250}, WM_LBUTTONDOWN, {"navigate ..||thumbs"}},
        {{20, 250}, WM_RBUTTONDOWN, {"open /music/||thumbs"}},
        {folder, WM_LBUTTONDOWN, {"navigate Card 0||thumbs"}},
        {folder, WM_RBUTTONDOWN, {"navigate .|Card 0|list"}},
        {media, WM_RBUTTONDOWN, {"navigate .|Card 1|list"}},
        {media, WM_LBUTTONDOWN, {"play Card 1"}},
        {media, WM_MBUTTONDOWN, {}},
        {{250, 175}, WM_LBUTTONDOWN, {}}, // a label
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        SetFocus(parent.GetHandle());
        host.calls.clear();
        platform->Press(Top(), c.at.x, c.at.y, c.message);
        platform->Release(Top(), c.at.x, c.at.y,
                          c.message == WM_LBUTTONDOWN   ? WM_LBUTTONUP
                          : c.message == WM_RBUTTONDOWN ? WM_RBUTTONUP
                                                        : WM_MBUTTONUP);
        EXPECT_EQ(host.calls, c.calls);
        EXPECT_EQ(GetFocus(), thumbs.GetHandle());
    }
}

TEST_F(ThumbsTest, AFailedOpenRestoresTheHover) {
    Fill(3);
    SPoint folder = CoverCentre(thumbs.GetCardRect(0));
    host.navigateResult = false;
    platform->Press(Top(), folder.x, folder.y);
    EXPECT_EQ(thumbs.GetHoverIndex(), 0);
    host.navigateResult = true;
    platform->Press(Top(), folder.x, folder.y, WM_RBUTTONDOWN);
    EXPECT_EQ(thumbs.GetHoverIndex(), -1);
}

TEST_F(ThumbsTest, ShiftTurnsAutoHideRoundBothWays) {
    Fill(3);
    SPoint media = CoverCentre(thumbs.GetCardRect(1));
    struct Case {
        bool autoHide, shift, played, hides;
    };
    for (Case c : {Case{false, false, true, false}, Case{false, true, true, true},
                   Case{true, false, true, true}, Case{true, true, true, false},
                   Case{true, false, false, false}}) {
        SCOPED_TRACE(std::to_string(c.autoHide) + std::to_string(c.shift) +
                     std::to_string(c.played));
        host.calls.clear();
        host.autoHide = c.autoHide;
        host.playResult = c.played;
        PressShift(media, c.shift);
        std::vector<std::string> expected{"play Card 1"};
        if (c.hides) {
            expected.push_back("hide");
        }
        EXPECT_EQ(host.calls, expected);
    }
}

TEST_F(ThumbsTest, WheelAndBarScrollByLinesAndPagesInsideTheRange) {
    Fill(7); // three rows: 608 pixels in a view of 300
    SPoint card0 = CoverCentre(thumbs.GetCardRect(0));
    platform->Wheel(Top(), card0.x, card0.y, 120);
    EXPECT_EQ(thumbs.GetScrollPos(), 0);
    EXPECT_EQ(thumbs.GetHoverIndex(), 0);
    platform->Wheel(Top(), card0.x, card0.y, -240);
    EXPECT_EQ(thumbs.GetScrollPos(), 80);
    EXPECT_EQ(thumbs.GetHoverIndex(), -1) << "the point is now below the cover";
    platform->Wheel(Top(), card0.x, card0.y, -30);
    EXPECT_EQ(thumbs.GetScrollPos(), 90) << "a quarter notch, a quarter line";
    platform->Wheel(Top(), card0.x, card0.y, -120 * 20);
    EXPECT_EQ(thumbs.GetScrollPos(), 308);
    thumbs.ScrollTo(0);
    SRect bar = thumbs.GetScrollBarRect();
    EXPECT_EQ(bar.Width(), LIST_SCROLL_BAR_WIDTH);
    platform->Click(Top(), bar.left + 5, bar.bottom - 3);
    EXPECT_EQ(thumbs.GetScrollPos(), 200);
    EXPECT_TRUE(host.calls.empty());
    // With the focus, the keys of a page scroll too.
    SetFocus(thumbs.GetHandle());
    struct Step {
        unsigned key;
        int position;
    };
    for (Step step : {Step{0x24, 0}, Step{0x28, 40}, Step{0x22, 240}, Step{0x22, 308},
                      Step{0x26, 268}, Step{0x21, 68}, Step{0x23, 308}}) {
        platform->Key(Top(), step.key);
        EXPECT_EQ(thumbs.GetScrollPos(), step.position) << step.key;
    }
    thumbs.ClearThumbs();
    EXPECT_EQ(thumbs.GetScrollPos(), 0);
}

TEST_F(ThumbsTest, AnEmptyFolderShowsTheBandWhichStillGoesUp) {
    Fill(0);
    SImage shot = Shot();
    EXPECT_EQ(Pixel(shot, {50, 150}), BAND);
    EXPECT_EQ(Pixel(shot, {300, 150}), BACKGROUND);
    platform->Click(Top(), 50, 150);
    EXPECT_EQ(host.calls, (std::vector<std::string>{"navigate ..||thumbs"}));
}

TEST_F(ThumbsTest, FrameShowsCoversBandHoverAndTheOverlayOnlyOnMedia) {
    Fill(3);
    SRect folder = thumbs.GetCardRect(0);
    SRect media = thumbs.GetCardRect(1);
    SPoint overlayFolder{folder.left + 86 + 32, folder.top + 86 + 32};
    SPoint overlayMedia{media.left + 86 + 32, media.top + 86 + 32};
    SImage shot = Shot();
    EXPECT_EQ(Pixel(shot, CoverCentre(folder)), FOLDER_COVER);
    EXPECT_EQ(Pixel(shot, overlayMedia), MEDIA_COVER);
    EXPECT_EQ(Pixel(shot, {10, 280}), BAND);

    platform->MoveMouse(Top(), overlayFolder.x, overlayFolder.y);
    EXPECT_EQ(Pixel(Shot(), overlayFolder), FOLDER_COVER) << "a folder card has no overlay";
    platform->MoveMouse(Top(), overlayMedia.x, overlayMedia.y);
    EXPECT_NE(Pixel(Shot(), overlayMedia), MEDIA_COVER) << "the overlay is drawn";
    platform->MoveMouse(Top(), 10, 280);
    shot = Shot();
    EXPECT_EQ(Pixel(shot, {10, 280}), BAND_HOT);
    // Below the first card, inside its art.
    EXPECT_TRUE(NearRgb(Pixel(shot, {36, 206}), BAND_HOT, 30)) << "the first card's art carries the band";
}

TEST_F(ThumbsTest, AFoldersItemsBecomeCardsAndItsLeafFoldersPlay) {
    std::vector<PThumbItem> items(9);
    for (size_t i = 0; i < items.size(); ++i) {
        items[i].name = ("Album " + std::to_string(i)).c_str();
        items[i].cover = Cover(i % 3 == 0 ? FOLDER_COVER : MEDIA_COVER);
        items[i].isLeaf = i % 3 != 0;
    }
    Fill(2);
    thumbs.ScrollTo(100);
    thumbs.SetThumbs(items);
    EXPECT_EQ(thumbs.GetScrollPos(), 0);
    ASSERT_EQ(thumbs.GetThumbCount(), 9);
    EXPECT_STREQ(thumbs.GetThumbName(8), "Album 8");
    EXPECT_STREQ(thumbs.GetThumbName(9), "");
    EXPECT_FALSE(thumbs.IsThumbMedia(3));
    EXPECT_TRUE(thumbs.IsThumbMedia(4));
    SImage shot = Shot();
    EXPECT_EQ(Pixel(shot, CoverCentre(thumbs.GetCardRect(0))), FOLDER_COVER);
    EXPECT_EQ(Pixel(shot, CoverCentre(thumbs.GetCardRect(1))), MEDIA_COVER);
    // A picture of another size is stretched to the card's.
    SImage large;
    large.Create(400, 300, PIXEL_FORMAT_24RGB);
    large.Fill(0xFF000000u | MEDIA_COVER);
    thumbs.AddThumb(large, "Large", true);
    // A clear picture is laid on white.
    SImage clear;
    clear.Create(150, 150, PIXEL_FORMAT_32ARGB);
    thumbs.AddThumb(clear, "Clear", true);
    thumbs.AddThumb(SImage(), "Empty", false);
    thumbs.ScrollTo(10000);
    shot = Shot();
    EXPECT_EQ(Pixel(shot, CoverCentre(thumbs.GetCardRect(9))), MEDIA_COVER);
    EXPECT_EQ(Pixel(shot, CoverCentre(thumbs.GetCardRect(10))), 0xFFFFFFu);
    EXPECT_EQ(thumbs.GetThumbCount(), 12);
}

TEST_F(ThumbsTest, HoverRepaintsOnlyTheCardsThatChange) {
    Fill(3);
    platform->PresentFrame(Top());
    SRect card = thumbs.GetCardRect(2);
    SPoint centre = CoverCentre(card);
    platform->MoveMouse(Top(), centre.x, centre.y);
    EXPECT_EQ(platform->PresentFrame(Top()), card);
    platform->MoveMouse(Top(), 300, 180);
    EXPECT_EQ(platform->PresentFrame(Top()), card) << "leaving repaints the same card";
}

} // namespace
