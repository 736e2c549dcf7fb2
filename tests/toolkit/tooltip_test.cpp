// Tool tips on the headless platform, on the fake clock: when they show,
// where, what they look like, and what makes them go.
#include "toolkit/sys_colors.h"
#include "toolkit_fixture.h"

namespace {

class ToolTips : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        ASSERT_TRUE(Make(top, "top", Rect(100, 100, 500, 400)));
        ASSERT_TRUE(Make(button, "button", Rect(10, 10, 110, 60), top.GetHandle()));
        button.SetToolTipText("Plays the folder");
        button.SetToolTip(true);
    }
    // Lets time pass and runs what fell due.
    void Wait(uint64_t milliseconds) {
        SHeadlessPlatform::AdvanceClock(milliseconds);
        SHeadlessPlatform::DispatchPending();
    }
    bool Showing() { return platform->GetToolTip().owner != 0; }

    RecordingWnd top, button;
};

uint32_t ToRgb(uint32_t color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

TEST_F(ToolTips, TipShowsBelowThePointerOnceItHasRested) {
    platform->MoveMouse(top.GetHandle(), 30, 30);
    Wait(300);
    platform->MoveMouse(top.GetHandle(), 40, 30);
    Wait(300);
    EXPECT_FALSE(Showing()) << "moving starts the wait again";
    Wait(250);
    SHeadlessPlatform::ToolTip tip = platform->GetToolTip();
    ASSERT_EQ(tip.owner, button.GetHandle());
    EXPECT_EQ(tip.rect.left, 140) << "screen x of the pointer";
    EXPECT_EQ(tip.rect.top, 150) << "20 pixels below the pointer";
    EXPECT_EQ(tip.rect.Width(), tip.picture.GetWidth());
    EXPECT_EQ(tip.rect.Height(), tip.picture.GetHeight());
    EXPECT_GT(tip.picture.GetWidth(), 20);
    EXPECT_EQ(tip.picture.GetPixel(0, 0) & 0xFFFFFF, ToRgb(GetSysColor(SYS_COLOR_INFOTEXT)))
        << "a border of the text colour";
    EXPECT_EQ(tip.picture.GetPixel(2, 2) & 0xFFFFFF, ToRgb(GetSysColor(SYS_COLOR_INFOBK)));
    platform->MoveMouse(top.GetHandle(), 60, 40);
    Wait(100);
    EXPECT_EQ(platform->GetToolTip().shown, 1) << "moving inside the window keeps the tip";
    EXPECT_TRUE(Showing());
}

TEST_F(ToolTips, TipGoesAfterAWhileAndStaysAwayUntilThePointerLeaves) {
    platform->MoveMouse(top.GetHandle(), 30, 30);
    Wait(500);
    ASSERT_TRUE(Showing());
    Wait(5000);
    EXPECT_FALSE(Showing());
    platform->MoveMouse(top.GetHandle(), 31, 30);
    Wait(1000);
    EXPECT_FALSE(Showing()) << "not again while the pointer stays";
    platform->MoveMouse(top.GetHandle(), 200, 200); // onto the top window
    platform->MoveMouse(top.GetHandle(), 30, 30);
    Wait(500);
    EXPECT_TRUE(Showing()) << "back after leaving and coming again";
}

TEST_F(ToolTips, ClickOrKeyMakesItGoAndLeavingForgetsIt) {
    platform->MoveMouse(top.GetHandle(), 30, 30);
    Wait(500);
    ASSERT_TRUE(Showing());
    platform->Press(top.GetHandle(), 30, 30);
    EXPECT_FALSE(Showing());
    platform->Release(top.GetHandle(), 30, 30);
    Wait(1000);
    EXPECT_FALSE(Showing());
    EXPECT_EQ(button.Count(SM_LEFT_CLICK), 1) << "the click itself goes through";

    platform->MoveMouse(top.GetHandle(), 300, 200);
    platform->MoveMouse(top.GetHandle(), 30, 30);
    Wait(500);
    ASSERT_TRUE(Showing());
    SetFocus(button.GetHandle());
    platform->Key(top.GetHandle(), 'A');
    EXPECT_FALSE(Showing());

    platform->MoveMouse(top.GetHandle(), 300, 200);
    platform->MoveMouse(top.GetHandle(), 30, 30);
    Wait(200);
    platform->MoveMouse(top.GetHandle(), 300, 200);
    Wait(1000);
    EXPECT_FALSE(Showing()) << "leaving before the wait is over cancels it";
}

TEST_F(ToolTips, NoTipWhenOffEmptyOrTheWindowIsGone) {
    button.SetToolTip(false);
    platform->MoveMouse(top.GetHandle(), 30, 30);
    Wait(1000);
    EXPECT_FALSE(Showing());
    button.SetToolTip(true);
    button.SetToolTipText("");
    platform->MoveMouse(top.GetHandle(), 300, 200);
    platform->MoveMouse(top.GetHandle(), 30, 30);
    Wait(1000);
    EXPECT_FALSE(Showing()) << "tips on but no text";

    button.SetToolTipText("Back");
    platform->MoveMouse(top.GetHandle(), 31, 30);
    Wait(500);
    ASSERT_TRUE(Showing());
    button.SetToolTip(false);
    EXPECT_FALSE(Showing()) << "turning tips off takes the tip away";
    button.SetToolTip(true);
    platform->MoveMouse(top.GetHandle(), 32, 30);
    Wait(500);
    ASSERT_TRUE(Showing());
    button.Destroy();
    EXPECT_FALSE(Showing());
    Wait(6000); // no timer of the gone window may fire into anything
    EXPECT_FALSE(Showing());
}

TEST_F(ToolTips, LongTextWrapsAtThreeHundredPixelsAndStaysOnTheScreen) {
    button.SetToolTipText(
        "A long tip that says a great deal about the button, far more than fits on one line of "
        "three hundred pixels, so that it has to wrap onto the lines below it");
    platform->SetScreenRect(Rect(0, 0, 450, 320));
    platform->MoveMouse(top.GetHandle(), 100, 50); // screen 200, 150: room below, not to the right
    Wait(500);
    SHeadlessPlatform::ToolTip tip = platform->GetToolTip();
    ASSERT_NE(tip.owner, 0u);
    EXPECT_LE(tip.rect.Width(), 300 + 10) << "the text wraps at 300 plus margins and border";
    EXPECT_GT(tip.rect.Height(), 40) << "several lines";
    EXPECT_LE(tip.rect.right, 450) << "pulled left onto the screen";
    EXPECT_LE(tip.rect.bottom, 320);
}

} // namespace
