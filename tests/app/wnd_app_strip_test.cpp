// The main window's strip on the headless platform: the "Taskbar"
// preference read at every reload docks and undocks it, a desktop that
// refuses it leaves the preference on, and the program's end gives the
// space back.
#include <gtest/gtest.h>

#include "main_window_fixture.h"
#include "toolkit/platform/platform.h"

namespace {

class MainWindowStripTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        dir.Write("collection/Rock/Artist/Album/01 One.mp3", "x");
        platform->SetWorkArea(area);
    }
    void TearDown() override {
        window.reset();
        WriteSettingBool(SETTING_TASKBAR, false); // the store is shared by the executable's tests
        WriteSettingInt(SETTING_TASKBAR_COLOR, 0);
        MainWindowFixture::TearDown();
    }
    SRect WorkArea() {
        SRect rect;
        platform->GetWorkArea(&rect);
        return rect;
    }

    SRect area = Rect(0, 0, 1280, 770);
};

TEST_F(MainWindowStripTest, ThePreferenceDocksAtStartAndEachReloadFollowsIt) {
    WriteSettingBool(SETTING_TASKBAR, false);
    PWndApp& app = Start();
    EXPECT_EQ(app.GetStrip(), nullptr) << "no strip is made while it is off";

    WriteSettingBool(SETTING_TASKBAR, true);
    WriteSettingInt(SETTING_TASKBAR_COLOR, 0x336699);
    app.ReloadLibrary(false);
    PWndTask* strip = app.GetStrip();
    ASSERT_NE(strip, nullptr);
    int h = strip->GetStripHeight();
    EXPECT_TRUE(strip->IsRegistered());
    EXPECT_TRUE(strip->IsVisible());
    EXPECT_EQ(strip->GetTextColor(), 0x336699u);
    EXPECT_EQ(WorkArea(), Rect(0, 0, 1280, 770 - h));
    // Nothing plays: the groups stay disabled, showing the window does not.
    EXPECT_FALSE(strip->GetControl(STRIP_PAUSE).IsEnabled());
    EXPECT_FALSE(strip->GetControl(STRIP_NEXT).IsEnabled());
    EXPECT_TRUE(strip->GetControl(STRIP_SHOW).IsEnabled());

    // A new colour alone is applied without docking again.
    WriteSettingInt(SETTING_TASKBAR_COLOR, 0x0000FF);
    app.ReloadLibrary(false);
    EXPECT_EQ(strip->GetTextColor(), 0x0000FFu);
    EXPECT_EQ(WorkArea(), Rect(0, 0, 1280, 770 - h));

    WriteSettingBool(SETTING_TASKBAR, false);
    app.ReloadLibrary(false);
    EXPECT_FALSE(strip->IsVisible());
    EXPECT_EQ(WorkArea(), area);

    // The strip's show button brings a hidden main window back.
    WriteSettingBool(SETTING_TASKBAR, true);
    app.ReloadLibrary(false);
    app.Show(SW_HIDE);
    SRect show = strip->GetControl(STRIP_SHOW).GetRect();
    platform->Click(strip->GetHandle(), (show.left + show.right) / 2, h / 2);
    EXPECT_TRUE(app.IsVisible());

    // The end of the program gives the space back.
    ASSERT_EQ(SendMessage(app.GetHandle(), WM_CLOSE, 0, 0), 0);
    EXPECT_EQ(WorkArea(), area);
}

TEST_F(MainWindowStripTest, ARefusedDockLeavesTheStripHiddenAndThePreferenceOn) {
    platform->SetDockSupport(SDockState::NONE);
    WriteSettingBool(SETTING_TASKBAR, true);
    PWndApp& app = Start();
    ASSERT_NE(app.GetStrip(), nullptr);
    EXPECT_FALSE(app.GetStrip()->IsVisible());
    EXPECT_TRUE(ReadSettingBool(SETTING_TASKBAR));
    platform->SetDockSupport(SDockState::ABOVE);
    app.ReloadLibrary(false);
    EXPECT_TRUE(app.GetStrip()->IsVisible());
    EXPECT_EQ(WorkArea(), area) << "a bar above the others keeps no space";
}

} // namespace
