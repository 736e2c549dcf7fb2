// Painting read back from the headless surface: colours, transparency,
// nine-slice pictures, skins and frames.
#include "toolkit/draw.h"
#include "toolkit_fixture.h"

namespace {

// The 0xRRGGBB of a snapshot pixel.
uint32_t Rgb(const SImage& picture, int x, int y) {
    return picture.GetPixel(x, y) & 0xFFFFFF;
}

// A picture of width x height filled with one colour 0xRRGGBB.
SImage Solid(int width, int height, uint32_t rgb) {
    SImage image;
    image.Create(width, height, PIXEL_FORMAT_32ARGB);
    image.Fill(0xFF000000u | rgb);
    return image;
}

using Painting = ToolkitTest;

TEST_F(Painting, TransparentChildShowsItsParentsBackgroundNotTheParentsDrawing) {
    // The parent draws black over the whole client area in WM_PAINT; the
    // child must show the parent's background, not that drawing.
    class Scribbler : public RecordingWnd {
    public:
        LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
            if (message == WM_PAINT) {
                SRect all = Rect(0, 0, 200, 100);
                FillRect(reinterpret_cast<cairo_t*>(wParam), &all, 0x000000);
            }
            return RecordingWnd::OnMessage(message, wParam, lParam);
        }
    };
    Scribbler top;
    RecordingWnd label;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 200, 100)));
    top.SetBackColor(0x0000FF); // red, as 0x00BBGGRR
    SImage stripe = Solid(200, 50, 0x00FF00);
    stripe.drawMode = DRAW_TOPLEFT;
    top.SetBackgroundImage(&stripe);
    ASSERT_TRUE(Make(label, "label", Rect(20, 30, 120, 80), top.GetHandle()));
    label.SetBackColor(0xFF000001);
    SImage shot;
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &shot));
    EXPECT_EQ(Rgb(shot, 30, 35), 0x00FF00u) << "the parent's picture shows through at y 35";
    EXPECT_EQ(Rgb(shot, 30, 70), 0xFF0000u) << "and its colour below the picture";
    label.SetBackColor(0xFF0000); // blue
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &shot));
    EXPECT_EQ(Rgb(shot, 30, 70), 0x0000FFu);
    EXPECT_EQ(Rgb(shot, 5, 70), 0x000000u) << "outside the child the parent's drawing stays";
}

TEST_F(Painting, HiddenChildrenAndUnsetColoursPaintNothing) {
    RecordingWnd top, child;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100)));
    top.SetBackColor(0xFFFFFF);
    ASSERT_TRUE(Make(child, "child", Rect(10, 10, 60, 60), top.GetHandle(), 0));
    child.SetBackColor(0x000000);
    SImage shot;
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &shot));
    EXPECT_EQ(Rgb(shot, 20, 20), 0xFFFFFFu);
    child.Show(SW_SHOW);
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &shot));
    EXPECT_EQ(Rgb(shot, 20, 20), 0x000000u);
}

TEST_F(Painting, NineSliceKeepsCornersAtSizeAndStretchesTheCentre) {
    // A 30 x 30 picture: 10-pixel red corners, green edges, a blue centre.
    SImage image = Solid(30, 30, 0x00FF00);
    SRect corners[4] = {Rect(0, 0, 10, 10), Rect(20, 0, 30, 10), Rect(0, 20, 10, 30),
                        Rect(20, 20, 30, 30)};
    for (const SRect& corner : corners) {
        image.Fill(0xFFFF0000u, &corner);
    }
    SRect centre = Rect(10, 10, 20, 20);
    image.Fill(0xFF0000FFu, &centre);
    RecordingWnd top;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 120, 90)));
    top.SetBackgroundImage(&image, 0xFF000000, 255, &centre);
    SImage shot;
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &shot));
    EXPECT_EQ(Rgb(shot, 2, 2), 0xFF0000u);
    EXPECT_EQ(Rgb(shot, 117, 87), 0xFF0000u);
    EXPECT_EQ(Rgb(shot, 112, 2), 0xFF0000u) << "the top-right corner keeps its 10 pixels";
    EXPECT_EQ(Rgb(shot, 60, 4), 0x00FF00u) << "the top edge is stretched across";
    EXPECT_EQ(Rgb(shot, 4, 45), 0x00FF00u);
    EXPECT_EQ(Rgb(shot, 60, 45), 0x0000FFu);
    EXPECT_EQ(Rgb(shot, 107, 45), 0x0000FFu);
}

TEST_F(Painting, SkinStateSelectsThePicture) {
    SImage normal = Solid(8, 8, 0x111111), hot = Solid(8, 8, 0x222222),
           down = Solid(8, 8, 0x333333), disabled = Solid(8, 8, 0x444444);
    for (SImage* image : {&normal, &hot, &down, &disabled}) {
        image->drawMode = DRAW_STRETCH;
    }
    RecordingWnd top, button;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100)));
    ASSERT_TRUE(Make(button, "button", Rect(10, 10, 50, 50), top.GetHandle()));
    button.SetSkin(&normal, &hot, &down, &disabled);
    struct State {
        bool hot, down, enabled;
        uint32_t rgb;
    };
    const State states[] = {{false, false, true, 0x111111}, {true, false, true, 0x222222},
                            {true, true, true, 0x333333},   {false, true, true, 0x111111},
                            {true, true, false, 0x444444}};
    SImage shot;
    for (const State& state : states) {
        button.SetSkinState(state.hot, state.down);
        button.Enable(state.enabled);
        ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &shot));
        EXPECT_EQ(Rgb(shot, 30, 30), state.rgb)
            << "hot " << state.hot << " down " << state.down << " enabled " << state.enabled;
    }
}

TEST_F(Painting, BorderedChildDrawsItsFrameAndShrinksItsClientArea) {
    RecordingWnd top, child;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100)));
    top.SetBackColor(0xFFFFFF);
    ASSERT_TRUE(Make(child, "child", Rect(10, 10, 50, 50), top.GetHandle(),
                     WS_VISIBLE | WS_BORDER));
    child.SetBackColor(0x00FFFF);
    EXPECT_EQ(child.GetClientRect(), Rect(0, 0, 38, 38));
    SImage shot;
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &shot));
    EXPECT_EQ(Rgb(shot, 10, 30), 0x808080u);
    EXPECT_EQ(Rgb(shot, 11, 30), 0xFFFF00u);
}

} // namespace
