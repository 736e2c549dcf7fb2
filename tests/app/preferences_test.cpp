// The preferences: their values in the settings store (defaults, damaged
// and overlong values, the addresses' two forms), the dialog on the
// headless platform (its texts, the folder and colour choosers, the
// "Default" button), and the main window's run of it: OK stores every
// value and reloads the library, every way of cancelling stores nothing.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "app/preferences.h"
#include "app/resources.h"
#include "app/wnd_setting.h"
#include "editors/code_edit_ctrl.h"
#include "foundation/message_numbers.h"
#include "main_window_fixture.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/platform/events.h"

namespace {

// A settings folder of the test's own.
class OwnSettings {
public:
    OwnSettings() {
        const char* old = std::getenv("MELKORA_CONFIG_HOME");
        saved = old != nullptr ? old : "";
        setenv("MELKORA_CONFIG_HOME", (dir / "settings").c_str(), 1);
    }
    ~OwnSettings() { setenv("MELKORA_CONFIG_HOME", saved.c_str(), 1); }
    std::string StoreBytes() const {
        std::ifstream file(dir / "settings/registry.ini", std::ios::binary);
        std::stringstream bytes;
        bytes << file.rdbuf();
        return bytes.str();
    }
    TempDir dir;

private:
    std::string saved;
};

PPreferences Sample() {
    PPreferences values;
    values.folder = "/music/Collection";
    values.images = "Artwork;\"Scans\"";
    values.smallIcons = true;
    values.autoHide = true;
    values.taskbar = true;
    values.taskbarColor = 0x3366CC;
    values.emails = "ann@example.org;bob@example.org";
    return values;
}

class PreferencesStore : public ::testing::Test {
protected:
    OwnSettings settings;
};

TEST_F(PreferencesStore, AnEmptyStoreReadsEveryValueAsItsDefault) {
    EXPECT_EQ(ReadPreferences(), PPreferences());
}

TEST_F(PreferencesStore, EveryValueComesBackAndIsWrittenInItsOrder) {
    ASSERT_TRUE(WritePreferences(Sample()));
    EXPECT_EQ(ReadPreferences(), Sample());
    // A fresh store lists the values in the order they were first written.
    std::string store = settings.StoreBytes();
    size_t at = 0;
    for (const char* name : {"Folder", "Images", "ToolBar", "AutoHideAfterPlay", "Taskbar",
                             "TaskbarColor", "Emails"}) {
        size_t found = store.find(std::string("\"") + name + "\"=", at);
        ASSERT_NE(found, std::string::npos) << name << " in\n" << store;
        at = found + 1;
    }
    // Off and black are written too, not left out.
    ASSERT_TRUE(WritePreferences(PPreferences()));
    EXPECT_EQ(ReadPreferences(), PPreferences());
    EXPECT_NE(settings.StoreBytes().find("\"TaskbarColor\"=dword:00000000"), std::string::npos);
}

TEST_F(PreferencesStore, BadStoredValuesReadAsTheStoreDefines) {
    struct Case {
        const char* what;
        std::function<void()> store;
        std::function<void(const PPreferences&)> check;
    };
    const Case cases[] = {
        {"any number but 0 is on",
         [] {
             WriteSettingInt(SETTING_TOOLBAR, 7);
             WriteSettingInt(SETTING_TASKBAR, 0xFFFFFFFF);
         },
         [](const PPreferences& v) { EXPECT_TRUE(v.smallIcons && v.taskbar && !v.autoHide); }},
        {"a colour keeps its three colour bytes",
         [] { WriteSettingInt(SETTING_TASKBAR_COLOR, 0xFF3366CC); },
         [](const PPreferences& v) { EXPECT_EQ(v.taskbarColor, 0x3366CCu); }},
        {"a text over 255 bytes reads as empty",
         [] {
             WriteSettingString(SETTING_FOLDER, std::string(256, 'f').c_str());
             WriteSettingString(SETTING_EMAILS, std::string(255, 'e').c_str());
         },
         [](const PPreferences& v) {
             EXPECT_EQ(v.folder, "");
             EXPECT_EQ(v.emails.GetLength(), 255);
         }},
    };
    for (const Case& c : cases) {
        OwnSettings own;
        c.store();
        c.check(ReadPreferences());
        if (HasFailure()) {
            ADD_FAILURE() << c.what;
            return;
        }
    }
    // A store that is not the program's reads as empty.
    TempDir dir;
    dir.Write("settings/registry.ini", "[Software\\Ilvanne Tavora\\Melkora Browser\\1.0]\n"
                                       "\"Folder\"=\"/elsewhere\"\n\"Taskbar\"=dword:00000001\n");
    setenv("MELKORA_CONFIG_HOME", (dir / "settings").c_str(), 1);
    EXPECT_EQ(ReadPreferences(), PPreferences());
}

TEST(Emails, BetweenTheStoreAndTheLinesOfTheBox) {
    struct Case {
        const char* stored;
        const char* lines;
    };
    // Stored to lines: empty items go.
    for (Case c : {Case{"", ""}, Case{"a@x", "a@x"}, Case{"a@x;b@y", "a@x\nb@y"},
                   Case{";a@x;;b@y;", "a@x\nb@y"}, Case{";;", ""}}) {
        EXPECT_EQ(EmailsToLines(c.stored), c.lines) << c.stored;
    }
    // Lines to stored: blank lines and the blanks round a line go, and
    // nothing ends in ";".
    for (Case c : {Case{"", ""}, Case{"", "\n\n\n"}, Case{"", "  \t\r\n "},
                   Case{"a@x;b@y", "a@x\n\nb@y\n"}, Case{"a@x;b@y", " a@x \r\n\tb@y\r"},
                   Case{"a@x", "\na@x"}, Case{"Ann Lee <a@x>", "Ann Lee <a@x>"}}) {
        EXPECT_EQ(EmailsFromLines(c.lines), c.stored) << c.lines;
    }
    EXPECT_EQ(EmailsToLines(nullptr), "");
    EXPECT_EQ(EmailsFromLines(nullptr), "");
    // A tidy stored text survives the trip through the box.
    EXPECT_EQ(EmailsFromLines(EmailsToLines("a@x;b@y;c@z").c_str()), "a@x;b@y;c@z");
}

TEST(Emails, OverlongTextsAreNamed) {
    PPreferences values;
    EXPECT_EQ(FindOverlongPreference(values), nullptr);
    values.images = SString(std::string(255, 'i').c_str());
    EXPECT_EQ(FindOverlongPreference(values), nullptr) << "255 bytes still read back";
    values.emails = SString(std::string(256, 'e').c_str());
    EXPECT_STREQ(FindOverlongPreference(values), "Emails");
    values.folder = SString(std::string(300, 'f').c_str());
    EXPECT_STREQ(FindOverlongPreference(values), "Folder");
}

// The dialog alone, shown without a modal run.
class PreferencesDialog : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        EnsureAppResources();
        SHeadlessPlatform::UseFakeClock(true); // clicks apart, never a double click
        ASSERT_TRUE(dialog.Create(nullptr));
        dialog.Show(SW_SHOW);
    }
    void TearDown() override {
        dialog.Destroy();
        ToolkitTest::TearDown();
    }
    void ClickOn(const char* name) {
        SWnd* control = dialog.GetControl(name);
        ASSERT_NE(control, nullptr) << name;
        SRect rect = control->GetRect();
        SHeadlessPlatform::AdvanceClock(1000);
        platform->Click(dialog.GetHandle(), (rect.left + rect.right) / 2,
                        (rect.top + rect.bottom) / 2);
    }
    SString TextOf(const char* name) { return dialog.GetControl(name)->GetText(); }

    OwnSettings settings;
    PWndSetting dialog;
};

TEST_F(PreferencesDialog, EveryTextIsSetOnShowing) {
    EXPECT_EQ(dialog.GetText(), "Preferences");
    const char* texts[][2] = {
        {"GRP_GENERAL", "General"},
        {"TXT_FOLDER", "Folder:"},
        {"TXT_IMAGES", "Images:"},
        {"TXT_OPTIONS", "Options:"},
        {"BTN_FOLDER", "Browse..."},
        {"BTN_FOLDERDEF", "Default"},
        {"CHECK_TOOLBAR", "Small Icons"},
        {"CHECK_AUTOHIDE", "Auto Hide Window after playing from thumbnail"},
        {"GRP_TASKBAR", "Taskbar"},
        {"CHECK_TASKBAR", "Show Taskbar"},
        {"TXT_TASKTEXT", "Text Color"},
        {"TXT_EMAILS", "Emails:"},
        {"OK", "OK"},
        {"CANCEL", "Cancel"},
    };
    for (const auto& [name, text] : texts) {
        ASSERT_NE(dialog.GetControl(name), nullptr) << name;
        EXPECT_EQ(TextOf(name), text) << name;
    }
}

TEST_F(PreferencesDialog, ValuesFillTheControlsAndComeBack) {
    PPreferences values = Sample();
    dialog.SetValues(values);
    EXPECT_EQ(TextOf("EDIT_FOLDER"), values.folder);
    EXPECT_EQ(TextOf("EDIT_IMAGES"), values.images);
    EXPECT_TRUE(dialog.GetControlAs<SCheckCtrl>("CHECK_TOOLBAR")->GetCheck());
    EXPECT_EQ(dialog.GetControl("TASK_TEXT")->GetBackColor() & 0xFFFFFF, 0x3366CCu);
    EXPECT_EQ(dialog.GetControlAs<SCodeEditCtrl>("EDIT_EMAILS")->GetEditText(),
              "ann@example.org\nbob@example.org");
    EXPECT_EQ(dialog.GetValues(), values);
    // Each check box alone: none is read from a neighbour.
    for (const char* name : {"CHECK_TOOLBAR", "CHECK_AUTOHIDE", "CHECK_TASKBAR"}) {
        dialog.SetValues(PPreferences());
        ClickOn(name);
        PPreferences read = dialog.GetValues();
        int on = int(read.smallIcons) + int(read.autoHide) + int(read.taskbar);
        EXPECT_EQ(on, 1) << name;
    }
}

TEST_F(PreferencesDialog, TheFolderButtonsUseTheChooserAndTheDefaultEmptiesTheRoot) {
    dialog.SetValues(Sample());
    SChooserAnswer chosen;
    chosen.accepted = true;
    chosen.paths = {SString("/music/New Root")};
    platform->QueueChooserAnswer(chosen);
    ClickOn("BTN_FOLDER");
    ASSERT_EQ(platform->GetChooserRequests().size(), 1u);
    SChooserRequest request = platform->GetChooserRequests()[0];
    EXPECT_EQ(request.kind, SChooserRequest::FOLDER);
    EXPECT_EQ(request.title, "Choose your root folder...");
    EXPECT_EQ(request.folder, "/music/Collection") << "it starts from the edit's text";
    EXPECT_EQ(TextOf("EDIT_FOLDER"), "/music/New Root");
    // Cancelled, or accepted without a folder: the text stays.
    platform->QueueChooserAnswer(SChooserAnswer());
    ClickOn("BTN_FOLDER");
    SChooserAnswer empty;
    empty.accepted = true;
    platform->QueueChooserAnswer(empty);
    ClickOn("BTN_FOLDER");
    EXPECT_EQ(platform->GetChooserRequests().size(), 3u);
    EXPECT_EQ(TextOf("EDIT_FOLDER"), "/music/New Root");
    ClickOn("BTN_FOLDERDEF");
    EXPECT_EQ(TextOf("EDIT_FOLDER"), "");
    EXPECT_EQ(dialog.GetValues().folder, "");
}

TEST_F(PreferencesDialog, TheSwatchOpensTheColourChooserOnItsColour) {
    dialog.SetValues(Sample());
    SChooserAnswer chosen;
    chosen.accepted = true;
    chosen.color = 0xFFABCDEF; // a chooser's stray top byte is not kept
    platform->QueueChooserAnswer(chosen);
    ClickOn("TASK_TEXT");
    ASSERT_EQ(platform->GetChooserRequests().size(), 1u);
    EXPECT_EQ(platform->GetChooserRequests()[0].kind, SChooserRequest::COLOR);
    EXPECT_EQ(platform->GetChooserRequests()[0].color, 0x3366CCu);
    EXPECT_EQ(dialog.GetValues().taskbarColor, 0xABCDEFu);
    platform->QueueChooserAnswer(SChooserAnswer());
    ClickOn("TASK_TEXT");
    EXPECT_EQ(platform->GetChooserRequests()[1].color, 0xABCDEFu);
    EXPECT_EQ(dialog.GetValues().taskbarColor, 0xABCDEFu) << "a cancel keeps the colour";
}

// The main window running the dialog: each step runs inside the modal
// loop (Stepper), posted before the command starts it.
class PreferencesRun : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        settings.dir.Write("first/Rock/Album/01 One.mp3", "x");
        first = settings.dir / "first";
        second = settings.dir / "second";
        settings.dir.Write("second/Blues/Album/01 Two.mp3", "x");
        WriteSettingString(SETTING_FOLDER, first.c_str());
        app = &Start();
        ASSERT_NE(app->GetHandle(), 0);
        app->Show(SW_SHOW);
        ASSERT_TRUE(Make(stepper, "steps", Rect(0, 0, 10, 10), 0, 0));
    }
    void TearDown() override {
        stepper.Destroy();
        MainWindowFixture::TearDown();
    }
    PWndSetting& Dialog() {
        PWndSetting* dialog = app->GetPreferencesDialog();
        EXPECT_NE(dialog, nullptr) << "the dialog runs";
        return *dialog;
    }
    void ClickOn(const char* name) {
        PWndSetting& dialog = Dialog();
        SRect rect = dialog.GetControl(name)->GetRect();
        SHeadlessPlatform::AdvanceClock(1000);
        platform->Click(dialog.GetHandle(), (rect.left + rect.right) / 2,
                        (rect.top + rect.bottom) / 2);
    }
    // Runs the toolbar's command with the steps posted; the last step
    // must end the dialog.
    void RunPreferences() { app->RunCommand(CMD_PREFERENCES); }

    OwnSettings settings;
    std::string first, second;
    PWndApp* app = nullptr;
    Stepper stepper;
};

TEST_F(PreferencesRun, OkStoresEveryValueAndTheWindowAppliesThem) {
    ASSERT_EQ(app->GetToolBar().GetImageWidth(), 32);
    SChooserAnswer folder;
    folder.accepted = true;
    folder.paths = {SString(second.c_str())};
    platform->QueueChooserAnswer(folder);
    SChooserAnswer color;
    color.accepted = true;
    color.color = 0x00A0FF;
    platform->QueueChooserAnswer(color);
    stepper.Post([&] {
        PWndSetting& dialog = Dialog();
        EXPECT_TRUE(dialog.IsModal());
        EXPECT_FALSE(app->IsEnabled()) << "the main window waits";
        EXPECT_EQ(dialog.GetControl("EDIT_FOLDER")->GetText(), SString(first.c_str()));
        ClickOn("BTN_FOLDER");
        dialog.GetControl("EDIT_IMAGES")->SetText("Artwork;Scans");
        ClickOn("CHECK_TOOLBAR");
        ClickOn("CHECK_AUTOHIDE");
        ClickOn("CHECK_TASKBAR");
        ClickOn("TASK_TEXT");
        dialog.GetControlAs<SCodeEditCtrl>("EDIT_EMAILS")->SetText("ann@x.org\n\n bob@y.org \n");
        ClickOn("OK");
    });
    RunPreferences();
    EXPECT_EQ(app->GetPreferencesDialog(), nullptr);
    PPreferences expected;
    expected.folder = second.c_str();
    expected.images = "Artwork;Scans";
    expected.smallIcons = expected.autoHide = expected.taskbar = true;
    expected.taskbarColor = 0x00A0FF;
    expected.emails = "ann@x.org;bob@y.org";
    EXPECT_EQ(ReadPreferences(), expected);
    // Applied: the new root is shown, small pictures, the cached flag, and
    // the window is back.
    EXPECT_EQ(app->GetRootFolder(), SString((second + "/").c_str()));
    EXPECT_EQ(app->GetFolderList().GetText(0), SString("Blues"));
    EXPECT_EQ(app->GetToolBar().GetImageWidth(), 24);
    EXPECT_TRUE(app->GetAutoHideAfterPlay());
    EXPECT_TRUE(app->IsVisible());
    EXPECT_TRUE(app->IsEnabled());
}

TEST_F(PreferencesRun, EveryWayOfCancellingStoresNothing) {
    struct Case {
        const char* what;
        std::function<void()> end;
    };
    const Case cases[] = {
        {"the Cancel button", [this] { ClickOn("CANCEL"); }},
        // Posted as the platform posts it, so the modal loop reads it.
        {"Escape", [this] {
             HWND dialog = Dialog().GetHandle();
             PlatformKey(dialog, WM_KEYDOWN, VK_ESCAPE);
             PlatformKey(dialog, WM_KEYUP, VK_ESCAPE);
         }},
        {"the window's close", [this] { PostMessage(Dialog().GetHandle(), WM_CLOSE, 0, 0); }},
    };
    for (const Case& c : cases) {
        std::string before = settings.StoreBytes();
        stepper.Post([&] {
            PWndSetting& dialog = Dialog();
            dialog.GetControl("EDIT_FOLDER")->SetText(second.c_str());
            dialog.GetControl("EDIT_IMAGES")->SetText("Scans");
            ClickOn("CHECK_TOOLBAR");
            dialog.GetControlAs<SCodeEditCtrl>("EDIT_EMAILS")->SetText("ann@x.org");
            c.end();
        });
        RunPreferences();
        EXPECT_EQ(settings.StoreBytes(), before) << c.what;
        EXPECT_EQ(app->GetRootFolder(), SString((first + "/").c_str())) << c.what;
        EXPECT_EQ(app->GetToolBar().GetImageWidth(), 32) << c.what;
        EXPECT_EQ(app->GetPreferencesDialog(), nullptr) << c.what;
    }
}

TEST_F(PreferencesRun, AnOverlongTextKeepsTheDialogOpenUntilItIsShortened) {
    std::string many;
    for (int i = 0; i < 20; ++i) {
        many += "someone" + std::to_string(i) + "@example.org\n"; // over 255 bytes joined
    }
    stepper.Post([&] {
        Dialog().GetControlAs<SCodeEditCtrl>("EDIT_EMAILS")->SetText(many.c_str());
        ClickOn("OK");
        EXPECT_NE(app->GetPreferencesDialog(), nullptr) << "still open";
        ASSERT_EQ(platform->GetChooserRequests().size(), 1u);
        EXPECT_EQ(platform->GetChooserRequests()[0].kind, SChooserRequest::MESSAGE);
        EXPECT_NE(platform->GetChooserRequests()[0].text.Find("Emails"), -1);
        Dialog().GetControlAs<SCodeEditCtrl>("EDIT_EMAILS")->SetText("ann@x.org");
        ClickOn("OK");
    });
    RunPreferences();
    EXPECT_EQ(ReadSettingString(SETTING_EMAILS), "ann@x.org");
}

TEST_F(PreferencesRun, ClosingTheMainWindowMeanwhileStoresNothingOfTheDialog) {
    stepper.Post([&] {
        Dialog().GetControl("EDIT_FOLDER")->SetText(second.c_str());
        ClickOn("CHECK_TASKBAR");
        app->RunCommand(CMD_QUIT); // as the tray's Quit
    });
    RunPreferences();
    EXPECT_EQ(app->GetHandle(), 0u);
    EXPECT_EQ(ReadSettingString(SETTING_FOLDER), SString(first.c_str()));
    EXPECT_FALSE(ReadSettingBool(SETTING_TASKBAR));
    EXPECT_NE(ReadSettingString(SETTING_WINDOW), "") << "the close path saved the window";
    SMessage message;
    while (PeekMessage(&message, true)) {
        // the WM_QUIT of the closed window
    }
}

} // namespace
