// Size limits of a window: WM_GETMINMAXINFO, and the sizes the window core
// and the headless window manager keep inside them.
#include "toolkit_fixture.h"

namespace {

using SizeLimits = ToolkitTest;

// Answers WM_GETMINMAXINFO itself, as a subclass may.
class OwnLimits : public RecordingWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_GETMINMAXINFO) {
            auto* info = reinterpret_cast<SMinMaxInfo*>(lParam);
            info->minTrackSize = SSize{150, 120};
        }
        return RecordingWnd::OnMessage(message, wParam, lParam);
    }
};

TEST_F(SizeLimits, FreeUntilSetThenEveryResizeKeepsInside) {
    RecordingWnd top;
    ASSERT_TRUE(Make(top, "top", Rect(100, 100, 300, 250)));
    SMinMaxInfo free = top.GetMinMaxInfo();
    EXPECT_EQ(free.minTrackSize, (SSize{-1, -1}));
    EXPECT_EQ(free.maxTrackSize, (SSize{-1, -1}));
    top.SetSize(5, 5);
    EXPECT_EQ(top.GetSize(), (SSize{5, 5})) << "no limits, no clamping";

    top.SetMinMax(100, 80, 400, 300);
    EXPECT_EQ(top.GetSize(), (SSize{100, 80})) << "setting a minimum brings the window up to it";
    top.SetSize(50, 1000);
    EXPECT_EQ(top.GetSize(), (SSize{100, 300}));
    top.SetSize(1000, 50);
    EXPECT_EQ(top.GetSize(), (SSize{400, 80}));
    top.SetSize(250, 200);
    EXPECT_EQ(top.GetSize(), (SSize{250, 200})) << "inside the limits nothing changes";
    EXPECT_EQ(top.GetRect().left, 100) << "the top-left corner stays";
    EXPECT_EQ(top.GetRect().top, 100);
}

TEST_F(SizeLimits, TheWindowManagerKeepsResizesInsideAndTheCoreBringsThemBack) {
    RecordingWnd top;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 200)));
    top.SetMinMax(200, 150, -1, 400);
    SHeadlessPlatform::Surface surface;
    ASSERT_TRUE(platform->GetSurface(top.GetHandle(), &surface));
    EXPECT_EQ(surface.minimum, (SSize{200, 150}));
    EXPECT_EQ(surface.maximum, (SSize{-1, 400})) << "-1 stays free";
    platform->Resize(top.GetHandle(), 20, 900);
    EXPECT_EQ(top.GetSize(), (SSize{200, 400}));
    ASSERT_TRUE(platform->GetSurface(top.GetHandle(), &surface));
    EXPECT_EQ(surface.rect.Width(), 200);
    EXPECT_EQ(surface.rect.Height(), 400);
    platform->Resize(top.GetHandle(), 5000, 300);
    EXPECT_EQ(top.GetSize(), (SSize{5000, 300})) << "no maximum width";
    // A window manager that ignores the hints: the window core holds on.
    PlatformResized(top.GetHandle(), 100, 100, SIZE_RESTORED);
    EXPECT_EQ(top.GetSize(), (SSize{200, 150}));
    ASSERT_TRUE(platform->GetSurface(top.GetHandle(), &surface));
    EXPECT_EQ(surface.rect.Width(), 200) << "the surface is sized back";
}

TEST_F(SizeLimits, ClientLimitsCountTheFrameAndBothKindsHold) {
    RecordingWnd top, pane;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 400, 400)));
    SRect rect = Rect(10, 10, 200, 200);
    ASSERT_TRUE(
        pane.Create("pane", WS_VISIBLE | WS_THICKFRAME, WS_EX_CLIENTEDGE, &rect, top.GetHandle()));
    pane.SetMinMaxClient(50, 40, 100, 90);
    SMinMaxInfo info = pane.GetMinMaxInfo();
    EXPECT_EQ(info.minTrackSize, (SSize{54, 44})) << "a sunken edge is 2 pixels a side";
    EXPECT_EQ(info.maxTrackSize, (SSize{104, 94}));
    EXPECT_EQ(pane.GetClientSize(), (SSize{100, 90})) << "the pane shrank to the maximum";
    pane.SetMinMax(70, -1, -1, 60);
    info = pane.GetMinMaxInfo();
    EXPECT_EQ(info.minTrackSize, (SSize{70, 44})) << "the larger minimum wins";
    EXPECT_EQ(info.maxTrackSize, (SSize{104, 60})) << "the smaller maximum wins";
    pane.SetSize(10, 10);
    EXPECT_EQ(pane.GetSize(), (SSize{70, 44}));
}

TEST_F(SizeLimits, MinimumWinsOverAMaximumBelowItAndPlainChildrenAreNotLimited) {
    RecordingWnd top, child;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 300)));
    top.SetMinMax(200, 200, 100, 100);
    top.SetSize(150, 150);
    EXPECT_EQ(top.GetSize(), (SSize{200, 200}));
    ASSERT_TRUE(Make(child, "child", Rect(0, 0, 100, 100), top.GetHandle()));
    child.SetMinMax(80, 80, -1, -1);
    child.SetSize(10, 10);
    EXPECT_EQ(child.GetSize(), (SSize{10, 10})) << "only a sizing frame makes a child keep limits";
}

TEST_F(SizeLimits, AWindowsOwnAnswerIsUsedAndMaximizingKeepsTheMaximum) {
    OwnLimits top;
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 100, 100)));
    EXPECT_EQ(top.GetSize(), (SSize{150, 120})) << "brought inside once created";
    SHeadlessPlatform::Surface surface;
    ASSERT_TRUE(platform->GetSurface(top.GetHandle(), &surface));
    EXPECT_EQ(surface.minimum, (SSize{150, 120}));

    RecordingWnd small;
    ASSERT_TRUE(Make(small, "small", Rect(0, 0, 100, 100)));
    small.SetMinMax(-1, -1, 500, 300);
    small.Maximize();
    EXPECT_EQ(small.GetSize(), (SSize{500, 300})) << "the work area is larger";
    small.Restore(false);
    EXPECT_EQ(small.GetSize(), (SSize{100, 100}));
}

} // namespace
