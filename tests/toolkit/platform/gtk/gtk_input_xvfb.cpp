// The wheels and double clicks of the GTK platform on a virtual X display:
// real wheel buttons and clicks through the X test extension, a touchpad's
// smooth scroll handed to GTK as the X server would.
#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <utility>
#include <vector>

#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

// Records its wheel turns (message, distance) and its presses.
class Input : public SWnd {
public:
    std::vector<std::pair<unsigned, int>> wheels;
    std::vector<unsigned> presses;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_MOUSEWHEEL || message == WM_MOUSEHWHEEL) {
            wheels.emplace_back(message, WheelParamDelta(wParam));
            return 0;
        }
        if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) {
            presses.push_back(message);
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
};

class GtkInput : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
        ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
        SRect bounds{60, 60, 360, 260};
        ASSERT_TRUE(top.Create("input", WS_VISIBLE, 0, &bounds, 0));
        SRect rect{20, 20, 220, 120};
        ASSERT_TRUE(child.Create("child", WS_VISIBLE, 0, &rect, top.GetHandle()));
        SSize size;
        ASSERT_TRUE(PumpUntil(
            [&] { return GtkGetSurfaceSize(top.GetHandle(), &size) && size.width == 300; }));
    }
    void TearDown() override {
        child.Destroy();
        top.Destroy();
        ToolkitEnd();
    }
    // Runs the loop for a while, so that late events arrive too.
    static void Settle(int milliseconds) {
        auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        PumpUntil([&] { return std::chrono::steady_clock::now() > end; });
    }
    Input top, child;
};

TEST_F(GtkInput, WheelNotchesAndTouchpadScrollsArriveAsWheelMessages) {
    using Turn = std::pair<unsigned, int>;
    const std::pair<int, Turn> notches[] = {
        {4, {WM_MOUSEWHEEL, 120}},
        {5, {WM_MOUSEWHEEL, -120}},
        {6, {WM_MOUSEHWHEEL, -120}},
        {7, {WM_MOUSEHWHEEL, 120}},
    };
    for (const auto& [button, turn] : notches) {
        SCOPED_TRACE(button);
        child.wheels.clear();
        ASSERT_TRUE(GtkSimulateWheel(top.GetHandle(), 50, 50, button));
        ASSERT_TRUE(PumpUntil([&] { return !child.wheels.empty(); }));
        Settle(50);
        EXPECT_EQ(child.wheels, (std::vector<Turn>{turn})) << "one notch to the window under it";
    }
    EXPECT_TRUE(top.wheels.empty()) << "the child took them";

    // A touchpad: small deltas add up to whole notches, down is negative.
    child.wheels.clear();
    ASSERT_TRUE(GtkSimulateSmoothScroll(top.GetHandle(), 50, 50, 0, 0.6));
    Settle(30);
    EXPECT_TRUE(child.wheels.empty()) << "six tenths of a notch is no notch yet";
    ASSERT_TRUE(GtkSimulateSmoothScroll(top.GetHandle(), 50, 50, 0, 0.6));
    ASSERT_TRUE(GtkSimulateSmoothScroll(top.GetHandle(), 50, 50, 2.0, 0));
    ASSERT_TRUE(PumpUntil([&] { return child.wheels.size() >= 2; }));
    EXPECT_EQ(child.wheels, (std::vector<Turn>{{WM_MOUSEWHEEL, -120}, {WM_MOUSEHWHEEL, 240}}));
}

TEST_F(GtkInput, TwoClicksWithinTheDoubleClickTimeGiveADoubleClick) {
    GtkSetDoubleClick(300, 4);
    auto twoClicks = [&](int secondX, int pause) {
        child.presses.clear();
        EXPECT_TRUE(GtkSimulateClick(top.GetHandle(), 50, 50));
        if (pause > 0) {
            EXPECT_TRUE(PumpUntil([&] { return child.presses.size() == 1; }));
            Settle(pause);
        }
        EXPECT_TRUE(GtkSimulateClick(top.GetHandle(), secondX, 50));
        EXPECT_TRUE(PumpUntil([&] { return child.presses.size() == 2; }));
        Settle(400); // forget this pair before the next
        return child.presses;
    };
    using Presses = std::vector<unsigned>;
    EXPECT_EQ(twoClicks(50, 0), (Presses{WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}));
    EXPECT_EQ(twoClicks(50, 450), (Presses{WM_LBUTTONDOWN, WM_LBUTTONDOWN})) << "too late";
    EXPECT_EQ(twoClicks(70, 0), (Presses{WM_LBUTTONDOWN, WM_LBUTTONDOWN})) << "too far";
}

} // namespace
