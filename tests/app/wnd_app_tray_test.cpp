// The main window's tray icon on the headless platform: the desktop's
// activation of the icon (a left double click, or a click where the panel
// activates on one) hides a shown window and shows a hidden one.
#include <gtest/gtest.h>

#include "app/settings.h"
#include "app/wnd_app_main.h"
#include "support/temp_dir.h"
#include "toolkit/toolkit_fixture.h"

namespace {

std::unique_ptr<SWebEngine> NoWebEngine(SWebEngine::Events*) {
    return nullptr;
}

class MainWindowTray : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SetWebEngineFactory(NoWebEngine);
        setenv("MELKORA_NO_SPLASH", "1", 1);
        setenv("MELKORA_AUDIO_SINK", "fake", 1);
        dir.Write("collection/Rock/Album/01 One.mp3", "x");
        WriteSettingString(SETTING_FOLDER, (dir / "collection").c_str());
    }
    void TearDown() override {
        window.reset();
        SetWebEngineFactory(nullptr);
        ToolkitTest::TearDown();
    }
    TempDir dir;
    std::unique_ptr<PWndApp> window;
};

TEST_F(MainWindowTray, TheIconsActivationTogglesTheWindow) {
    window = std::make_unique<PWndApp>();
    ASSERT_TRUE(window->CreateMain());
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
