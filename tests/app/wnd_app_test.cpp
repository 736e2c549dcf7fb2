// The main window on the headless platform: what the start makes of the
// settings, the keys that the text editor keeps, the reload after a new
// root, the Book's folder links and the remote commands.
#include <gtest/gtest.h>

#include <filesystem>

#include "foundation/message_numbers.h"
#include "main_window_fixture.h"

namespace {

class MainWindowTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        dir.Write("collection/Rock/Artist/Album/01 One.mp3", "x");
        dir.Write("collection/Rock/Artist/Album/02 Two.mp3", "x");
        dir.Write("collection/Rock/Artist/Other/01 Three.mp3", "x");
        dir.MakeFolder("collection/Jazz/Band/Live");
    }
    LRESULT Key(unsigned key) { return SendMessage(window->GetHandle(), SM_KEY, key, 0); }
};

TEST_F(MainWindowTest, AnEmptyStoreGivesTheDefaultSizeFullVolumeAndLargeIcons) {
    PWndApp& app = Start();
    SSize size = app.GetSize();
    EXPECT_EQ(size.width, DEFAULT_WINDOW_WIDTH);
    EXPECT_GE(size.height, 650); // the window's minimum wins over 600
    EXPECT_EQ(app.GetVolumeSlider().GetValue(), 0);
    EXPECT_EQ(app.GetMedia().GetVolume(), 100);
    EXPECT_EQ(app.GetToolBar().GetImageWidth(), 32);
    EXPECT_EQ(app.GetOuterSplitter().GetFirstColumn(), DEFAULT_FOLDER_COLUMN);
    EXPECT_EQ(app.GetRootFolder(), SString((root + "/").c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(root + "/Playlists"));
    EXPECT_TRUE(app.IsThumbnailView());
}

TEST_F(MainWindowTest, StoredColumnsApplyOnlyInsideTheirRange) {
    struct Case {
        uint32_t stored;
        int expected;
    };
    for (Case c : {Case{50, DEFAULT_FOLDER_COLUMN}, Case{100, DEFAULT_FOLDER_COLUMN},
                   Case{260, 260}, Case{5000, DEFAULT_FOLDER_COLUMN}}) {
        WriteSettingInt(SETTING_COLUMN, c.stored);
        PWndApp& app = Start();
        EXPECT_EQ(app.GetOuterSplitter().GetFirstColumn(), c.expected) << c.stored;
        app.Destroy();
    }
}

TEST_F(MainWindowTest, KeysTypedInTheEditorReachTheEditor) {
    PWndApp& app = Start();
    ASSERT_TRUE(app.OpenFolder((root + "/Rock/Artist/").c_str(), "Album", false));
    ASSERT_EQ(app.GetTrackList().GetRowCount(), 2);
    SString current = app.GetCurrentFolder();
    SetFocus(app.GetEditor().GetHandle());
    for (unsigned key : {VK_BACK, VK_SPACE, VK_ESCAPE}) {
        EXPECT_EQ(Key(key), 0) << key;
    }
    EXPECT_EQ(app.GetCurrentFolder(), current);
    SetFocus(app.GetFolderList().GetHandle());
    EXPECT_NE(Key(VK_BACK), 0);
    EXPECT_EQ(app.GetCurrentFolder(), SString((root + "/Rock/").c_str()));
}

TEST_F(MainWindowTest, ARefreshKeepsTheSelectedFolder) {
    PWndApp& app = Start();
    ASSERT_TRUE(app.OpenFolder((root + "/Rock/Artist/").c_str(), "Other", false));
    // The row's own name is handed to the navigation that replaces the rows.
    EXPECT_TRUE(app.RefreshFolder());
    ASSERT_EQ(app.GetView().GetSelectedRow(), 1);
    EXPECT_EQ(app.GetTrackList().GetText(0), SString("01 Three"));
}

TEST_F(MainWindowTest, ANewRootReloadsAsAtStartAndRestoresThePlaylist) {
    dir.Write("other/Blues/Man/Album/01 Song.mp3", "x");
    dir.Write("other/Playlists/Alpha.lst", "Blues\\Man\\Album\\01 Song.mp3\r\n");
    dir.Write("other/Playlists/Beta.lst", "");
    PWndApp& app = Start();
    WriteSettingString(SETTING_PLAYLIST, "Beta");
    WriteSettingString(SETTING_FOLDER, (dir / "other").c_str());
    // Not asked to restore, but the root changed: the playlist comes back.
    app.ReloadLibrary(false);
    EXPECT_EQ(app.GetRootFolder(), SString((dir / "other/").c_str()));
    EXPECT_EQ(app.GetPlaylistPanel().GetCurrentName(), SString("Beta"));
    // The same root again, not restoring: the open playlist stays.
    app.GetPlaylistPanel().SelectPlaylist("Alpha");
    app.ReloadLibrary(false);
    EXPECT_EQ(app.GetPlaylistPanel().GetCurrentName(), SString("Alpha"));
}

TEST_F(MainWindowTest, ABookLinkOpensItsFolderAndTheNavigationIsCancelled) {
    PWndApp& app = Start();
    std::string link = "file://" + root + "/Rock/Artist/Album.link";
    LRESULT cancel = SendMessage(app.GetHandle(), SN_WEB_BEFORE_NAVIGATE,
                                 reinterpret_cast<WPARAM>(&app.GetWebPane()),
                                 reinterpret_cast<LPARAM>(link.c_str()));
    EXPECT_NE(cancel, 0);
    EXPECT_EQ(app.GetCurrentFolder(), SString((root + "/Rock/Artist/").c_str()));
    EXPECT_EQ(app.GetView().GetSelectedRow(), 0); // "Album"
    std::string page = "file://" + root + "/Rock/page.htm";
    EXPECT_EQ(SendMessage(app.GetHandle(), SN_WEB_BEFORE_NAVIGATE,
                          reinterpret_cast<WPARAM>(&app.GetWebPane()),
                          reinterpret_cast<LPARAM>(page.c_str())),
              0);
}

TEST_F(MainWindowTest, ThePlayCommandsFollowTheSelection) {
    PWndApp& app = Start();
    SToolBarCtrl& tools = app.GetToolBar();
    // No folder selected: the folder's own plays are off, the tree's on.
    EXPECT_FALSE(tools.IsButtonEnabled(CMD_PLAY_AT));
    EXPECT_FALSE(tools.IsButtonEnabled(CMD_PLAY_RANDOM));
    EXPECT_TRUE(tools.IsButtonEnabled(CMD_PLAY_FOLDERS));
    EXPECT_FALSE(tools.IsButtonEnabled(CMD_PLAY_SELECTED));
    EXPECT_FALSE(tools.IsButtonEnabled(CMD_STOP));
    ASSERT_TRUE(app.OpenFolder((root + "/Rock/Artist/").c_str(), "Album", false));
    EXPECT_TRUE(tools.IsButtonEnabled(CMD_PLAY_AT));
    EXPECT_FALSE(app.IsThumbnailView());
    // A folder without tracks keeps them off.
    ASSERT_TRUE(app.OpenFolder((root + "/Jazz/").c_str(), "Band", false));
    EXPECT_FALSE(tools.IsButtonEnabled(CMD_PLAY_AT));
}

} // namespace
