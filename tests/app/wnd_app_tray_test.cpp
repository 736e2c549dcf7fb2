// The main window's tray icon on the headless platform: the desktop's
// activation of the icon (a left double click, or a click where the panel
// activates on one) hides a shown window and shows a hidden one.
#include <gtest/gtest.h>

#include "main_window_fixture.h"

namespace {

class MainWindowTray : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        dir.Write("collection/Rock/Album/01 One.mp3", "x");
    }
};

TEST_F(MainWindowTray, TheIconsActivationTogglesTheWindow) {
    Start();
    ASSERT_NE(window->GetHandle(), 0);
    window->Show(SW_SHOW);
    int tray = window->GetTray().GetId();
    SHeadlessPlatform::TrayIcon record;
    ASSERT_TRUE(platform->GetTrayIcon(tray, &record)) << "the icon is on the desktop";
    for (bool visibleAfter : {false, true, false, true}) {
        platform->TrayAction(tray, STrayEvent::ACTIVATE);
        EXPECT_EQ(window->IsVisible(), visibleAfter);
    }
    // The menu's request leaves the window as it is.
    platform->SetTrayPopupAvailable(false);
    platform->TrayAction(tray, STrayEvent::CONTEXT_MENU);
    EXPECT_TRUE(window->IsVisible());
}

} // namespace
