// The main window on the headless platform, for the tests of what it does:
// no web engine unless the test names one (engineFactory, before SetUp),
// no splash, the fake audio sink, and an empty collection in a temporary
// folder stored as the root. A test writes its files into the collection
// (dir.Write("collection/...")) before Start makes the window.
#pragma once

#include <cstdlib>
#include <memory>
#include <string>

#include "app/settings.h"
#include "app/wnd_app_main.h"
#include "controls/browser_ctrl.h"
#include "support/temp_dir.h"
#include "toolkit/toolkit_fixture.h"

inline std::unique_ptr<SWebEngine> NoWebEngine(SWebEngine::Events*) {
    return nullptr;
}

class MainWindowFixture : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SetWebEngineFactory(engineFactory);
        setenv("MELKORA_NO_SPLASH", "1", 1);
        setenv("MELKORA_AUDIO_SINK", "fake", 1);
        root = dir.MakeFolder("collection");
        WriteSettingString(SETTING_FOLDER, root.c_str());
    }
    void TearDown() override {
        window.reset();
        SetWebEngineFactory(nullptr);
        ToolkitTest::TearDown();
    }
    // Makes the main window as the program's start does.
    PWndApp& Start() {
        window = std::make_unique<PWndApp>();
        EXPECT_TRUE(window->CreateMain());
        return *window;
    }

    SWebEngineFactory engineFactory = NoWebEngine;
    TempDir dir;
    std::string root;
    std::unique_ptr<PWndApp> window;
};
