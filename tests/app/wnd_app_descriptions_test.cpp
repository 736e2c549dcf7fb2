// Edit Descriptions from the main window on the headless platform: one
// description window, raised again rather than made twice; the page it
// generates shown in the main window's web pane; and the main window's
// close saving the text and the placement of the description window.
#include <gtest/gtest.h>

#include <filesystem>

#include "main_window_fixture.h"

namespace {

// The addresses the main window's web pane was asked to load.
std::vector<std::string> loads;

class RecordingEngine : public SWebEngine {
public:
    void* GetWidget() override { return &widget; }
    bool Load(const char* url, bool /*history*/) override {
        loads.push_back(url);
        return true;
    }
    SString GetAddress() const override { return SString(""); }
    SString GetTitle() const override { return SString(""); }
    SString GetStatusText() const override { return SString(""); }
    void SetSilent(bool /*silent*/) override {}

private:
    int widget = 0; // stands for the platform's widget
};

std::unique_ptr<SWebEngine> MakeRecordingEngine(SWebEngine::Events*) {
    return std::make_unique<RecordingEngine>();
}

class EditDescriptionsTest : public MainWindowFixture {
protected:
    EditDescriptionsTest() { engineFactory = MakeRecordingEngine; }
    void SetUp() override {
        MainWindowFixture::SetUp();
        loads.clear();
        dir.MakeFolder("collection/Rock/Artist/Album");
        WriteSettingString(SETTING_WINDOW_DESCRIPTION, "");
        app = &Start();
        ASSERT_NE(app->GetHandle(), 0);
    }
    // The description windows standing now.
    std::vector<PWndDescription*> DescriptionWindows() {
        SArray<SWnd*> windows;
        app->GetOrphans(&windows);
        std::vector<PWndDescription*> found;
        for (int i = 0; i < windows.GetCount(); ++i) {
            if (auto* window = dynamic_cast<PWndDescription*>(windows.GetAt(i))) {
                found.push_back(window);
            }
        }
        return found;
    }

    PWndApp* app = nullptr;
};

TEST_F(EditDescriptionsTest, OneWindowShowsItsPagesAndClosesWithTheMainWindow) {
    app->RunCommand(CMD_DESCRIPTIONS);
    std::vector<PWndDescription*> windows = DescriptionWindows();
    ASSERT_EQ(windows.size(), 1u);
    PWndDescription* window = windows[0];
    app->RunCommand(CMD_DESCRIPTIONS);
    EXPECT_EQ(DescriptionWindows(), windows); // raised, not made again

    ASSERT_TRUE(window->SelectFolder("Rock"));
    window->GetEditor().CommitText("#genre Rock#");
    window->RunCommand(DESCRIPTION_CMD_PAGE);
    std::string page = root + "/Rock.htm";
    EXPECT_TRUE(std::filesystem::exists(page));
    EXPECT_EQ(std::string(app->GetWebPane().GetTag().c_str()), page);
    ASSERT_FALSE(loads.empty());
    EXPECT_EQ(loads.back(), "file://" + page);

    window->GetEditor().CommitText(" and more");
    SendMessage(app->GetHandle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(TempDir::Read(root + "/Rock.txt"), "#genre Rock# and more");
    EXPECT_TRUE(DescriptionWindows().empty());
    EXPECT_FALSE(ReadSettingString(SETTING_WINDOW_DESCRIPTION).IsEmpty());
}

} // namespace
