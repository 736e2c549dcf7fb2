// Partial repaint: what each change adds to the top-level window's invalid
// region, and that a frame repaints only that part of the screen.
#include <functional>

#include "toolkit/draw.h"
#include "toolkit_fixture.h"

namespace {

uint32_t Rgb(const SImage& picture, int x, int y) {
    return picture.GetPixel(x, y) & 0xFFFFFF;
}

// Fills its client area with ink (0x00BBGGRR) and counts its paints. A
// change of ink alone asks for no repaint, so a stale window shows.
class Inked : public SWnd {
public:
    uint32_t ink = 0x000000;
    int paints = 0;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_PAINT) {
            ++paints;
            SRect all = GetClientRect();
            FillRect(reinterpret_cast<cairo_t*>(wParam), &all, ink);
            return 0;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
};

SMenu* FakeMenu() {
    static int menu;
    return reinterpret_cast<SMenu*>(&menu);
}

class Damage : public ToolkitTest {
public: // the cases' lambdas reach in
    void SetUp() override {
        ToolkitTest::SetUp();
        Build();
    }
    // The window tree, made anew, with one frame drawn.
    void Build() {
        top.Destroy();
        ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 200)));
        top.SetBackColor(0xFFFFFF);
        ASSERT_TRUE(Make(left, "left", Rect(10, 10, 60, 60), top.GetHandle()));
        ASSERT_TRUE(Make(right, "right", Rect(100, 10, 150, 60), top.GetHandle()));
        // A bordered panel (1 pixel of frame) holding a child that sticks out
        // of its client area on the right.
        ASSERT_TRUE(panel.Create("panel", WS_VISIBLE | WS_BORDER, 0, &panelRect, top.GetHandle()));
        ASSERT_TRUE(Make(inner, "inner", Rect(10, 10, 100, 30), panel.GetHandle()));
        Present();
    }
    // Draws a frame as a display would; the area it was asked to redraw.
    SRect Present() { return platform->PresentFrame(top.GetHandle()); }
    SRect Damaged() {
        SHeadlessPlatform::Surface surface;
        EXPECT_TRUE(platform->GetSurface(top.GetHandle(), &surface));
        return surface.damaged;
    }

    SWnd top;
    Inked left, right, inner;
    SWnd panel;
    SRect panelRect = Rect(50, 100, 130, 150);
};

TEST_F(Damage, EachChangeAsksForItsOwnAreaOnly) {
    struct Case {
        const char* what;
        std::function<void(Damage&)> change;
        SRect expected; // surface coordinates; empty for no frame
    };
    const Case cases[] = {
        {"a child whole, frame included", [](Damage& d) { d.left.Invalidate(); },
         Rect(10, 10, 60, 60)},
        {"part of a child, cut to its client area",
         [](Damage& d) {
             SRect part = Rect(40, -5, 80, 20);
             d.left.Invalidate(&part);
         },
         Rect(50, 10, 60, 30)},
        {"a grandchild, moved by its parent's place and frame, cut by the parent",
         [](Damage& d) { d.inner.Invalidate(); }, Rect(61, 111, 129, 131)},
        {"a hidden child uncovers its place", [](Damage& d) { d.right.Show(SW_HIDE); },
         Rect(100, 10, 150, 60)},
        {"a moved child: its old and its new place",
         [](Damage& d) { d.left.MoveWindow(Rect(20, 70, 40, 90)); }, Rect(10, 10, 60, 90)},
        {"a destroyed child uncovers its place", [](Damage& d) { d.right.Destroy(); },
         Rect(100, 10, 150, 60)},
        {"a window that does not redraw asks for nothing",
         [](Damage& d) {
             d.left.SetRedraw(false, false);
             d.left.Invalidate();
         },
         SRect()},
        {"the top-level window whole", [](Damage& d) { d.top.Invalidate(); }, Rect(0, 0, 300, 200)},
        {"with a menu bar, below it",
         [](Damage& d) {
             d.top.SetMenu(FakeMenu(), true);
             d.Present();
             d.left.Invalidate();
         },
         Rect(10, 10 + GetMenuBarHeight(), 60, 60 + GetMenuBarHeight())},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Build();
        c.change(*this);
        EXPECT_EQ(Damaged(), c.expected);
        EXPECT_EQ(top.GetInvalidBounds(), c.expected);
        EXPECT_EQ(Present(), c.expected);
        EXPECT_TRUE(top.GetInvalidBounds().IsEmpty()) << "the frame took the region";
    }
}

TEST_F(Damage, AFrameRepaintsOnlyTheDamagedPixels) {
    SImage screen;
    ASSERT_TRUE(platform->GetScreen(top.GetHandle(), &screen));
    EXPECT_EQ(Rgb(screen, 30, 30), 0x000000u);
    int leftPaints = left.paints;
    int rightPaints = right.paints;

    // Both change ink, only the right one says so: the left one stays stale
    // on the screen, in the back buffer, and is not painted at all.
    left.ink = 0x0000FF;  // red
    right.ink = 0xFF0000; // blue
    right.Invalidate();
    EXPECT_EQ(Present(), Rect(100, 10, 150, 60));
    ASSERT_TRUE(platform->GetScreen(top.GetHandle(), &screen));
    EXPECT_EQ(Rgb(screen, 120, 30), 0x0000FFu) << "the damaged child shows its new ink";
    EXPECT_EQ(Rgb(screen, 30, 30), 0x000000u) << "pixels outside the damage are untouched";
    EXPECT_EQ(left.paints, leftPaints) << "a window outside the damage is not painted";
    EXPECT_EQ(right.paints, rightPaints + 1);
    SImage whole;
    ASSERT_TRUE(platform->Snapshot(top.GetHandle(), &whole));
    EXPECT_EQ(Rgb(whole, 30, 30), 0x000000u) << "the back buffer is kept between frames";

    // Part of a window: the rest of it keeps its old pixels.
    right.ink = 0x00FF00;
    SRect part = Rect(0, 0, 10, 50);
    right.Invalidate(&part);
    EXPECT_EQ(Present(), Rect(100, 10, 110, 60));
    ASSERT_TRUE(platform->GetScreen(top.GetHandle(), &screen));
    EXPECT_EQ(Rgb(screen, 105, 30), 0x00FF00u);
    EXPECT_EQ(Rgb(screen, 120, 30), 0x0000FFu);

    // A new size repaints everything, stale windows included.
    platform->Resize(top.GetHandle(), 320, 210);
    EXPECT_EQ(Present(), Rect(0, 0, 320, 210));
    ASSERT_TRUE(platform->GetScreen(top.GetHandle(), &screen));
    EXPECT_EQ(Rgb(screen, 30, 30), 0xFF0000u);
    EXPECT_EQ(Present(), SRect()) << "nothing waits after a frame";
}

} // namespace
