// Tab and Shift+Tab through the focus order of a dialog's controls.
#include "tests/toolkit/toolkit_fixture.h"
#include "toolkit/edit_ctrl.h"

namespace {

class FocusOrderTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        ASSERT_TRUE(Make(dialog, "dialog", Rect(100, 100, 500, 400)));
        // name, a first edit, a group holding two, a hidden one, a disabled
        // one, a window outside the order, and a last edit.
        ASSERT_TRUE(name.Create(&dialog, Rect(10, 10, 200, 35), 1, 0, "name"));
        ASSERT_TRUE(Make(group, "group", Rect(10, 50, 300, 200), dialog.GetHandle()));
        ASSERT_TRUE(inner1.Create(&group, Rect(5, 5, 100, 30), 2, 0));
        ASSERT_TRUE(inner2.Create(&group, Rect(5, 40, 100, 65), 3, 0));
        ASSERT_TRUE(hidden.Create(&dialog, Rect(10, 210, 100, 235), 4, 0));
        hidden.Show(SW_HIDE);
        ASSERT_TRUE(disabled.Create(&dialog, Rect(10, 240, 100, 265), 5, 0));
        disabled.Enable(false);
        ASSERT_TRUE(Make(plain, "plain", Rect(210, 10, 260, 35), dialog.GetHandle()));
        ASSERT_TRUE(stop.Create("stop", WS_VISIBLE | WS_TABSTOP, 0, &stopRect, dialog.GetHandle()));
        SetFocus(name.GetHandle());
    }
    void Tab(bool backward = false) {
        platform->Key(dialog.GetHandle(), VK_TAB, backward ? SKeyboard::MODIFIER_SHIFT : 0);
    }

    RecordingWnd dialog, group, plain, stop;
    SEditCtrl name, inner1, inner2, hidden, disabled;
    SRect stopRect = Rect(270, 10, 300, 35);
};

TEST_F(FocusOrderTest, ForwardBackwardAndWrap) {
    std::vector<HWND> forward = {inner1.GetHandle(), inner2.GetHandle(), stop.GetHandle(),
                                 name.GetHandle(), inner1.GetHandle()};
    for (HWND expected : forward) {
        Tab();
        EXPECT_EQ(GetFocus(), expected);
    }
    std::vector<HWND> backward = {name.GetHandle(), stop.GetHandle(), inner2.GetHandle()};
    for (HWND expected : backward) {
        Tab(true);
        EXPECT_EQ(GetFocus(), expected);
    }
}

TEST_F(FocusOrderTest, HiddenAndDisabledControlsAndTheirChildrenAreSkipped) {
    hidden.Show(SW_SHOW);
    group.Show(SW_HIDE);
    Tab();
    EXPECT_EQ(GetFocus(), hidden.GetHandle()) << "shown again, it takes its turn";
    disabled.Enable(true);
    Tab();
    EXPECT_EQ(GetFocus(), disabled.GetHandle());
    group.Show(SW_SHOW);
    group.Enable(false);
    Tab();
    Tab();
    EXPECT_EQ(GetFocus(), name.GetHandle()) << "a disabled group hides its children";
}

TEST_F(FocusOrderTest, TabOrderSortsSiblingsAndTheTopStartsTheRound) {
    stop.SetTabOrder(0, 0);
    name.SetTabOrder(0, 1);
    SetFocus(dialog.GetHandle());
    Tab();
    EXPECT_EQ(GetFocus(), stop.GetHandle()) << "from the window itself, the first";
    Tab();
    EXPECT_EQ(GetFocus(), name.GetHandle());
    SetFocus(dialog.GetHandle());
    Tab(true);
    EXPECT_EQ(GetFocus(), inner2.GetHandle()) << "and backward, the last";
}

TEST_F(FocusOrderTest, TheFocusedEditDrawsItsRing) {
    SImage before, after;
    ASSERT_TRUE(platform->Snapshot(dialog.GetHandle(), &before));
    Tab();
    ASSERT_TRUE(platform->Snapshot(dialog.GetHandle(), &after));
    // The top-left pixel of inner1's frame (group at 10,50, inner1 at 5,5).
    EXPECT_NE(before.GetPixel(15, 55), after.GetPixel(15, 55));
}

} // namespace
