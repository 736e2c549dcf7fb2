// The wheels and double clicks on the headless platform: where a wheel turn
// goes, and when a second press becomes a double click.
#include <algorithm>
#include <tuple>

#include "toolkit_fixture.h"

namespace {

class WheelAndDoubleClick : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        ASSERT_TRUE(Make(top, "top", Rect(100, 100, 300, 200)));
        ASSERT_TRUE(Make(child, "child", Rect(10, 10, 110, 60), top.GetHandle()));
    }
    std::vector<RecordingWnd::Entry> log;
    RecordingWnd top{&log, 1};
    RecordingWnd child{&log, 2};
};

TEST_F(WheelAndDoubleClick, TheWheelGoesUnderThePointerAndUpToAParentThatScrolls) {
    platform->Wheel(top.GetHandle(), 20, 30, WHEEL_DELTA);
    platform->Wheel(top.GetHandle(), 20, 30, -2 * WHEEL_DELTA, true);
    platform->Wheel(top.GetHandle(), 150, 80, -7);
    std::vector<RecordingWnd::Entry> wheels;
    for (const auto& entry : log) {
        if (entry.message == WM_MOUSEWHEEL || entry.message == WM_MOUSEHWHEEL) {
            wheels.push_back(entry);
        }
    }
    // The child does not scroll: each of its turns reaches the top too.
    ASSERT_EQ(wheels.size(), 5u);
    const std::tuple<int, unsigned, int> expected[] = {
        {2, WM_MOUSEWHEEL, 120},   {1, WM_MOUSEWHEEL, 120}, {2, WM_MOUSEHWHEEL, -240},
        {1, WM_MOUSEHWHEEL, -240}, {1, WM_MOUSEWHEEL, -7},
    };
    for (size_t i = 0; i < wheels.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(wheels[i].name, std::get<0>(expected[i]));
        EXPECT_EQ(wheels[i].message, std::get<1>(expected[i]));
        EXPECT_EQ(WheelParamDelta(wheels[i].wParam), std::get<2>(expected[i]));
    }
    EXPECT_EQ(PointParamX(wheels[0].lParam), 120) << "the point is in screen coordinates";
    EXPECT_EQ(PointParamY(wheels[0].lParam), 130);
}

int plainCalls = 0;
LRESULT PlainClass(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam) {
    ++plainCalls;
    return DefWindowProc(hwnd, message, wParam, lParam);
}

TEST_F(WheelAndDoubleClick, ASecondPressSoonAndNearIsADoubleClickForClassesThatAsk) {
    ASSERT_TRUE(RegisterWindowClass("PlainClass", PlainClass)); // no CS_DBLCLKS
    RecordingWnd plain(&log, 3);
    SRect plainRect = Rect(120, 10, 180, 60);
    ASSERT_TRUE(plain.CreateControl("PlainClass", "", WS_VISIBLE, 0, &plainRect, &top, 7));
    EXPECT_NE(child.GetClassStyle() & CS_DBLCLKS, 0u);
    EXPECT_EQ(plain.GetClassStyle(), 0u);
    struct Case {
        const char* what;
        int name;          // the window pressed
        SPoint second;     // where the second press lands (top-level client)
        uint64_t wait;     // milliseconds between the presses
        unsigned button;   // the press message
        unsigned expected; // what the second press is
    };
    const Case cases[] = {
        {"soon and on the spot", 2, {20, 20}, 100, WM_LBUTTONDOWN, WM_LBUTTONDBLCLK},
        {"at the very end of the time", 2, {20, 20}, 500, WM_LBUTTONDOWN, WM_LBUTTONDBLCLK},
        {"within the distance", 2, {22, 18}, 100, WM_LBUTTONDOWN, WM_LBUTTONDBLCLK},
        {"the right button", 2, {20, 20}, 100, WM_RBUTTONDOWN, WM_RBUTTONDBLCLK},
        {"the middle button", 2, {20, 20}, 100, WM_MBUTTONDOWN, WM_MBUTTONDBLCLK},
        {"too late", 2, {20, 20}, 501, WM_LBUTTONDOWN, WM_LBUTTONDOWN},
        {"too far", 2, {23, 20}, 100, WM_LBUTTONDOWN, WM_LBUTTONDOWN},
        {"a class without double clicks", 3, {130, 20}, 100, WM_LBUTTONDOWN, WM_LBUTTONDOWN},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        SHeadlessPlatform::AdvanceClock(10000); // forget the last case
        unsigned up = c.button + 1;
        SPoint first = c.name == 3 ? SPoint{130, 20} : SPoint{20, 20};
        platform->Press(top.GetHandle(), first.x, first.y, c.button);
        platform->Release(top.GetHandle(), first.x, first.y, up);
        SHeadlessPlatform::AdvanceClock(c.wait);
        log.clear();
        platform->Press(top.GetHandle(), c.second.x, c.second.y, c.button);
        platform->Release(top.GetHandle(), c.second.x, c.second.y, up);
        auto press = std::find_if(log.begin(), log.end(), [](const RecordingWnd::Entry& e) {
            return e.message >= WM_LBUTTONDOWN && e.message <= WM_MBUTTONDBLCLK;
        });
        ASSERT_NE(press, log.end());
        EXPECT_EQ(press->name, c.name);
        EXPECT_EQ(press->message, c.expected);
        if (c.expected == WM_LBUTTONDBLCLK) {
            platform->Press(top.GetHandle(), c.second.x, c.second.y, c.button);
            platform->Release(top.GetHandle(), c.second.x, c.second.y, up);
            EXPECT_EQ(child.Count(WM_LBUTTONDOWN), 1) << "a third press starts again";
        }
    }
}

} // namespace
