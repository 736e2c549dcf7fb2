// The description window on the headless platform over a collection in a
// temporary folder, with a main window that records what it is asked: the
// tree it lists, the files it writes and leaves alone when the folder
// changes, a save that fails, the toolbar's commands, the page it has
// shown, and the placement kept between two windows.
#include "panels/wnd_description.h"

#include <filesystem>
#include <string>
#include <vector>

#include "support/temp_dir.h"
#include "toolkit/toolkit_fixture.h"

namespace {

class FakeDescriptionHost : public PDescriptionHost {
public:
    SString GetRootFolder() const override { return root.c_str(); }
    void ShowDescriptionPage(const char* path) override { shown.push_back(path); }
    bool LoadPlacement(const char* name, SRect* rect, bool* maximized) override {
        if (!hasPlacement || placementName != name) {
            return false;
        }
        *rect = placement;
        *maximized = false;
        return true;
    }
    void SavePlacement(const char* name, const SRect& rect, bool /*maximized*/) override {
        placementName = name;
        placement = rect;
        hasPlacement = true;
    }
    bool AskYesNo(SWnd* /*owner*/, const char* text, const char* /*caption*/) override {
        questions.push_back(text);
        return answer;
    }

    std::string root;
    std::vector<std::string> shown;
    std::vector<std::string> questions;
    bool answer = false;
    bool hasPlacement = false;
    std::string placementName;
    SRect placement;
};

class DescriptionWindowTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        for (const char* album : {"Rock/Artist/Album One", "Rock/Artist/Album Two", "Jazz/Band/Live",
                                  "Pop/Single", ".hidden/Inner/Deep"}) {
            dir.MakeFolder(album);
        }
        host.root = dir.Path() + "/";
    }
    void TearDown() override {
        window.Destroy();
        ToolkitTest::TearDown();
    }
    void Open() { ASSERT_TRUE(window.Open()); }
    std::string Text() { return window.GetEditor().GetEditor().GetText(); }
    std::string File(const char* relative) { return TempDir::Read(dir / relative); }
    bool Exists(const char* relative) { return std::filesystem::exists(dir / relative); }
    void Type(const char* text) { window.GetEditor().CommitText(text); }
    void SelectAll() { window.GetEditor().GetEditor().SelectAll(); }
    std::vector<std::string> TreeLabels() { return TreeLabels(window); }
    static std::vector<std::string> TreeLabels(PWndDescription& window) {
        std::vector<std::string> labels;
        std::vector<HTREEITEM> stack(window.GetTree().GetItems().GetRoots().rbegin(),
                                     window.GetTree().GetItems().GetRoots().rend());
        while (!stack.empty()) {
            HTREEITEM item = stack.back();
            stack.pop_back();
            labels.push_back(std::string(window.GetTree().GetItems().GetLevel(item), '-') +
                             item->text.c_str());
            const auto& children = window.GetTree().GetItems().GetChildren(item);
            stack.insert(stack.end(), children.rbegin(), children.rend());
        }
        return labels;
    }
    // A real press on a toolbar button.
    void ClickButton(int command) {
        SToolBarCtrl& bar = window.GetToolBar();
        SRect button = bar.GetButtonRect(bar.FindButton(command));
        SRect place = bar.GetRect();
        SHeadlessPlatform::AdvanceClock(2000);
        platform->Click(window.GetHandle(), place.left + (button.left + button.right) / 2,
                        place.top + (button.top + button.bottom) / 2);
    }

    TempDir dir;
    FakeDescriptionHost host;
    PWndDescription window{&host};
};

TEST_F(DescriptionWindowTest, TheTreeListsFoldersThatHoldFolders) {
    Open();
    EXPECT_EQ(TreeLabels(), (std::vector<std::string>{"Jazz", "-Band", "Pop", "Rock", "-Artist"}));
    EXPECT_EQ(window.GetStatusBar().GetText(0), "Ready.");
    EXPECT_EQ(window.GetText(), DESCRIPTION_TITLE);
    // With no description open the editor takes nothing and the marks are off.
    EXPECT_FALSE(window.GetToolBar().IsButtonEnabled(DESCRIPTION_CMD_GENRE));
    EXPECT_TRUE(window.GetToolBar().IsButtonEnabled(DESCRIPTION_CMD_ALL_PAGES));
    Type("lost?");
    EXPECT_EQ(Text(), "");
}

TEST_F(DescriptionWindowTest, LeavingAFolderSavesOnlyWhatWasTyped) {
    Open();
    ASSERT_TRUE(window.SelectFolder("Rock"));
    EXPECT_TRUE(window.GetToolBar().IsButtonEnabled(DESCRIPTION_CMD_GENRE));
    // Nothing typed: no file.
    ASSERT_TRUE(window.SelectFolder("Jazz"));
    EXPECT_FALSE(Exists("Rock.txt"));
    // Typed: written with CR LF between lines, none after the last.
    Type("line one\nline two");
    ASSERT_TRUE(window.SelectFolder("Rock/Artist"));
    EXPECT_EQ(File("Jazz.txt"), "line one\r\nline two");
    // Back again: the text comes back.
    ASSERT_TRUE(window.SelectFolder("Jazz"));
    EXPECT_EQ(Text(), "line one\nline two");
    // Emptied: the file goes.
    SelectAll();
    window.GetEditor().OnDelete();
    ASSERT_TRUE(window.SelectFolder("Rock"));
    EXPECT_FALSE(Exists("Jazz.txt"));
}

TEST_F(DescriptionWindowTest, LineEndsOfAFileOutsideAreKeptUntilItChanges) {
    dir.Write("Pop.txt", "a\r\nb\rc\nd");
    Open();
    ASSERT_TRUE(window.SelectFolder("Pop"));
    EXPECT_EQ(window.GetEditor().GetEditor().GetLineCount(), 4);
    ASSERT_TRUE(window.SelectFolder("Rock"));
    EXPECT_EQ(File("Pop.txt"), "a\r\nb\rc\nd"); // untouched
    ASSERT_TRUE(window.SelectFolder("Pop"));
    window.GetEditor().GetEditor().SetCaret(SCodePos{3, 1}, false);
    Type("!");
    window.CloseWindow();
    EXPECT_EQ(File("Pop.txt"), "a\r\nb\r\nc\r\nd!");
}

TEST_F(DescriptionWindowTest, AFailedSaveKeepsTheFolderAndTheText) {
    Open();
    ASSERT_TRUE(window.SelectFolder("Rock/Artist"));
    Type("precious");
    // The folder the file goes into is gone: the save cannot succeed.
    std::filesystem::remove_all(dir / "Rock");
    EXPECT_FALSE(window.SelectFolder("Jazz"));
    EXPECT_EQ(window.GetItemPath(window.GetTree().GetSelection()), "Rock/Artist");
    EXPECT_EQ(Text(), "precious");
    EXPECT_NE(std::string(window.GetStatusBar().GetText(0).c_str()).find("cannot write"), std::string::npos);
    // A press on another folder is turned back the same way.
    SetFocus(window.GetTree().GetHandle());
    platform->Key(window.GetHandle(), 36); // Home: the first folder
    EXPECT_EQ(window.GetItemPath(window.GetTree().GetSelection()), "Rock/Artist");
    // Closing asks; No keeps the window and the text.
    host.answer = false;
    EXPECT_FALSE(window.CloseWindow());
    ASSERT_EQ(host.questions.size(), 1u);
    EXPECT_NE(host.questions[0].find("could not be saved"), std::string::npos);
    EXPECT_EQ(Text(), "precious");
    // Once the folder is back, the text is saved on leaving.
    dir.MakeFolder("Rock");
    EXPECT_TRUE(window.SelectFolder("Jazz"));
    EXPECT_EQ(File("Rock/Artist.txt"), "precious");
}

TEST_F(DescriptionWindowTest, AFileThatCannotBeReadIsNeverWritten) {
    dir.MakeFolder("Pop.txt"); // a folder where the description would be
    dir.Write("Jazz.txt", std::string("ok\0\x01then", 8));
    Open();
    ASSERT_TRUE(window.SelectFolder("Pop"));
    EXPECT_EQ(window.GetDocumentState(), DESCRIPTION_UNREADABLE);
    EXPECT_FALSE(window.GetToolBar().IsButtonEnabled(DESCRIPTION_CMD_BOLD));
    Type("x");
    EXPECT_EQ(Text(), "");
    ASSERT_TRUE(window.SelectFolder("Jazz"));
    EXPECT_TRUE(std::filesystem::is_directory(dir / "Pop.txt"));
    // A damaged file opens without its control bytes, and says so.
    EXPECT_EQ(window.GetDocumentState(), DESCRIPTION_LOADED);
    EXPECT_EQ(Text(), "okthen");
    EXPECT_NE(std::string(window.GetStatusBar().GetText(0).c_str()).find("left out"), std::string::npos);
}

TEST_F(DescriptionWindowTest, ToolbarButtonsWriteMarksAsOneUndoStep) {
    Open();
    ASSERT_TRUE(window.SelectFolder("Rock/Artist"));
    Type("Blues\nSome One");
    window.GetEditor().GetEditor().Select(SCodePos{0, 0}, SCodePos{0, 5});
    ClickButton(DESCRIPTION_CMD_GENRE);
    EXPECT_EQ(Text(), "#genre Blues#\nSome One");
    window.GetEditor().GetEditor().Select(SCodePos{1, 0}, SCodePos{1, 8});
    ClickButton(DESCRIPTION_CMD_NAME);
    EXPECT_EQ(Text(), "#genre Blues#\n#name Some One#");
    ClickButton(DESCRIPTION_CMD_BOLD);
    EXPECT_EQ(Text(), "#genre Blues#\n<b>#name Some One#</b>");
    window.GetEditor().GetEditor().SetCaret(SCodePos{0, 0}, false);
    ClickButton(DESCRIPTION_CMD_GROUP);
    EXPECT_EQ(Text(), "{}\n#genre Blues#\n<b>#name Some One#</b>");
    EXPECT_EQ(window.GetEditor().GetEditor().GetCaret(), (SCodePos{0, 1}));
    ASSERT_TRUE(window.GetEditor().GetEditor().Undo());
    EXPECT_EQ(Text(), "#genre Blues#\n<b>#name Some One#</b>");
    ASSERT_TRUE(window.GetEditor().GetEditor().Undo());
    EXPECT_EQ(Text(), "#genre Blues#\n#name Some One#");
    window.CloseWindow();
    EXPECT_EQ(File("Rock/Artist.txt"), "#genre Blues#\r\n#name Some One#");
}

TEST_F(DescriptionWindowTest, GenerateWritesThePageAndShowsIt) {
    Open();
    ASSERT_TRUE(window.SelectFolder("Rock"));
    Type("#genre Blues# and #name Artist#");
    ClickButton(DESCRIPTION_CMD_PAGE);
    ASSERT_EQ(host.shown, std::vector<std::string>{dir / "Rock.htm"});
    EXPECT_EQ(File("Rock.txt"), "#genre Blues# and #name Artist#"); // saved first
    std::string page = File("Rock.htm");
    EXPECT_NE(page.find("<font class=txtGenre>Blues</font>"), std::string::npos);
    EXPECT_NE(page.find("<a href=\"Rock/Artist.link\" class=txtName>Artist</a>"), std::string::npos);
    // Every page: the Images folder with its icon, and no page where there is
    // no description.
    ClickButton(DESCRIPTION_CMD_ALL_PAGES);
    EXPECT_EQ(window.GetStatusBar().GetText(0), "Ready.");
    EXPECT_TRUE(Exists("Images/icon.gif"));
    EXPECT_FALSE(Exists("Jazz.htm"));
    EXPECT_TRUE(window.GetTree().IsEnabled());
}

TEST_F(DescriptionWindowTest, AnotherRootSavesTheTextBeforeTheTreeChanges) {
    TempDir other;
    other.MakeFolder("Folk/Singer/Songs");
    Open();
    ASSERT_TRUE(window.SelectFolder("Rock"));
    Type("first root");
    host.root = other.Path() + "/";
    ASSERT_TRUE(window.Open()); // raised: the root changed meanwhile
    EXPECT_EQ(File("Rock.txt"), "first root");
    EXPECT_EQ(TreeLabels(), (std::vector<std::string>{"Folk", "-Singer"}));
    EXPECT_EQ(window.GetDocumentPath(), "");
    ASSERT_TRUE(window.SelectFolder("Folk"));
    Type("second");
    window.CloseWindow();
    EXPECT_EQ(TempDir::Read(other / "Folk.txt"), "second");
    EXPECT_FALSE(Exists("Folk.txt"));
}

TEST_F(DescriptionWindowTest, ThePlacementIsKeptBetweenWindows) {
    Open();
    EXPECT_EQ(window.GetWindowRect().Width(), DESCRIPTION_WIDTH);
    SRect moved{40, 30, 40 + 700, 30 + 520};
    window.MoveWindow(moved);
    ASSERT_TRUE(window.CloseWindow());
    window.Destroy();
    EXPECT_EQ(host.placementName, DESCRIPTION_PLACEMENT);
    PWndDescription second(&host);
    ASSERT_TRUE(second.Open());
    EXPECT_EQ(second.GetWindowRect(), moved);
    // Too small a placement grows to the least size.
    second.MoveWindow(SRect{0, 0, 100, 100});
    EXPECT_GE(second.GetWindowRect().Width(), DESCRIPTION_MIN_WIDTH);
    EXPECT_GE(second.GetWindowRect().Height(), DESCRIPTION_MIN_HEIGHT);
    // Opening again raises the same window.
    HWND handle = second.GetHandle();
    ASSERT_TRUE(second.Open());
    EXPECT_EQ(second.GetHandle(), handle);
    // Closed with a description open and made again: nothing is open.
    ASSERT_TRUE(second.SelectFolder("Rock"));
    ASSERT_TRUE(second.CloseWindow());
    second.Destroy();
    ASSERT_TRUE(second.Open());
    EXPECT_EQ(second.GetDocumentPath(), "");
    EXPECT_FALSE(second.GetToolBar().IsButtonEnabled(DESCRIPTION_CMD_GENRE));
    EXPECT_EQ(TreeLabels(second).size(), 5u);
    second.Destroy();
}

} // namespace
