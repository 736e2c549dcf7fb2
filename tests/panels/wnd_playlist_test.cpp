// The playlist panel on the headless platform over a collection in a
// temporary folder, driven as a user does (presses, keys, the drop-down)
// through a recording main window: what reaches the files, the queue and
// the host's questions, and what the panel shows.
#include "panels/wnd_playlist.h"

#include <filesystem>
#include <string>
#include <vector>

#include "recording_host.h"
#include "support/temp_dir.h"
#include "toolkit/draw.h"
#include "toolkit/toolkit_fixture.h"

namespace {

using Lines = std::vector<std::string>;

class PlaylistPanelTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        host.root = dir.Path() + "/";
        ASSERT_TRUE(Make(top, "top", Rect(0, 0, 600, 101)));
    }
    void TearDown() override {
        panel.Destroy();
        top.Destroy();
        ToolkitTest::TearDown();
    }
    // Makes the panel over the playlists written so far.
    void Open() {
        ASSERT_TRUE(panel.Create(&top, Rect(0, 0, 600, 101)));
        panel.RefreshPlaylists();
    }
    std::string File(const std::string& name) {
        return TempDir::Read(dir / ("Playlists/" + name + ".lst"));
    }
    Lines Rows() {
        Lines rows;
        for (int i = 0; i < panel.GetList().GetRowCount(); ++i) {
            rows.push_back(panel.GetList().GetText(i).c_str());
        }
        return rows;
    }
    SPoint Middle(SWnd& control) {
        SRect rect = control.GetWindowRect();
        SRect origin = top.GetWindowRect();
        return SPoint{(rect.left + rect.right) / 2 - origin.left,
                      (rect.top + rect.bottom) / 2 - origin.top};
    }
    void Click(SWnd& control) {
        SHeadlessPlatform::AdvanceClock(2000); // never a double click
        SPoint point = Middle(control);
        platform->Click(top.GetHandle(), point.x, point.y);
    }
    void ClickButton(uintptr_t id) { Click(*panel.GetButton(id)); }
    // A press on a row of the list (in top's coordinates).
    void ClickRow(int row, bool twice = false) {
        SHeadlessPlatform::AdvanceClock(2000);
        SRect rowRect = panel.GetList().GetRowRect(row);
        SRect list = panel.GetList().GetRect();
        int x = list.left + 20;
        int y = list.top + (rowRect.top + rowRect.bottom) / 2;
        platform->Click(top.GetHandle(), x, y);
        if (twice) {
            SHeadlessPlatform::AdvanceClock(50);
            platform->Press(top.GetHandle(), x, y, WM_LBUTTONDBLCLK);
            platform->Release(top.GetHandle(), x, y);
        }
    }
    void Key(unsigned code) { platform->Key(top.GetHandle(), code); }

    TempDir dir;
    RecordingHost host;
    SWnd top;
    PWndPlaylist panel{&host};
};

TEST_F(PlaylistPanelTest, LaysOutTheTableAndGivesTheListItsFont) {
    dir.Write("Playlists/Mix.lst", "");
    Open();
    EXPECT_EQ(panel.GetCombo().GetRect().left, 2);
    EXPECT_EQ(panel.GetCombo().GetRect().right, 158);
    EXPECT_EQ(panel.GetCountLabel().GetRect(), Rect(2, 27, 158, 51));
    EXPECT_EQ(panel.GetList().GetRect(), Rect(160, 0, 499, 101));
    EXPECT_EQ(panel.GetCover().GetRect(), Rect(499, 0, 600, 101));
    struct Case {
        uintptr_t id;
        SRect rect;
    } cases[] = {
        {PLAYLIST_ID_PLAY, Rect(2, 53, 28, 79)},
        {PLAYLIST_ID_DELETE, Rect(42, 81, 60, 99)},
        {PLAYLIST_ID_DOWN, Rect(140, 81, 158, 99)},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(panel.GetButton(c.id)->GetRect(), c.rect) << c.id;
    }
    // Wider: the list grows and the cover keeps to the right edge.
    panel.MoveWindow(Rect(0, 0, 700, 101));
    EXPECT_EQ(panel.GetList().GetRect(), Rect(160, 0, 599, 101));
    EXPECT_EQ(panel.GetCover().GetRect(), Rect(599, 0, 700, 101));
    ASSERT_NE(panel.GetListFont(), nullptr);
    EXPECT_EQ(panel.GetListFont()->GetFace(), "Verdana");
    EXPECT_EQ(panel.GetListFont()->GetHeight(), PointsToHeight(7.5));
    EXPECT_EQ(
        reinterpret_cast<const SFont*>(SendMessage(panel.GetList().GetHandle(), WM_GETFONT, 0, 0)),
        panel.GetListFont());
}

TEST_F(PlaylistPanelTest, TheCountReadsFileOrFiles) {
    struct Case {
        const char* bytes;
        const char* text;
    } cases[] = {{"", "0 file"}, {"a.mp3\r\n", "1 file"}, {"a.mp3\r\nb.mp3\r\n", "2 files"}};
    dir.Write("Playlists/P0.lst", cases[0].bytes);
    dir.Write("Playlists/P1.lst", cases[1].bytes);
    dir.Write("Playlists/P2.lst", cases[2].bytes);
    Open();
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(panel.SelectPlaylist(("P" + std::to_string(i)).c_str()));
        panel.LoadPlaylist();
        EXPECT_EQ(panel.GetCountLabel().GetText(), cases[i].text) << i;
    }
}

TEST_F(PlaylistPanelTest, AnEmptyFolderGetsAFreshPlaylist) {
    dir.MakeFolder("Playlists"); // the main window makes it at start
    Open();
    EXPECT_EQ(panel.GetCombo().GetCount(), 1);
    EXPECT_EQ(panel.GetCombo().GetEditText(), "Playlist");
    EXPECT_TRUE(std::filesystem::exists(dir / "Playlists/Playlist.lst"));
    EXPECT_EQ(panel.GetCountLabel().GetText(), "0 file");
}

TEST_F(PlaylistPanelTest, TheDropDownLoadsTheChosenPlaylist) {
    dir.Write("Playlists/Alpha.lst", "A\\1.mp3\r\n");
    dir.Write("Playlists/beta.lst", "B\\1.mp3\r\nB\\2.mp3\r\n");
    Open();
    EXPECT_EQ(panel.GetCombo().GetItemText(0), "Alpha");
    EXPECT_EQ(panel.GetCombo().GetItemText(1), "beta");
    EXPECT_EQ(Rows(), Lines{"A\\1.mp3"});
    // Down in the closed drop-down chooses the next playlist.
    SetFocus(panel.GetCombo().GetHandle());
    Key(0x28);
    EXPECT_EQ(panel.GetCurrentName(), "beta");
    EXPECT_EQ(Rows(), (Lines{"B\\1.mp3", "B\\2.mp3"}));
    EXPECT_EQ(panel.GetCountLabel().GetText(), "2 files");
}

TEST_F(PlaylistPanelTest, SelectingARowShowsItsCoverAndTheCoverLeadsToItsFolder) {
    dir.Write("Playlists/Mix.lst", "Art\\Alb\\1.mp3\r\nOther\\2.mp3\r\n");
    Open();
    EXPECT_EQ(panel.GetCover().GetImage(), nullptr) << "no row selected";
    Click(panel.GetCover());
    EXPECT_TRUE(host.Calls("OpenFolder").empty()) << "no row: the cover leads nowhere";

    ClickRow(0);
    EXPECT_EQ(panel.GetStore().GetSelection(), 0);
    EXPECT_EQ(host.Calls("LoadFolderCover"), Lines{"LoadFolderCover " + host.root + "Art/Alb/"});
    ASSERT_NE(panel.GetCover().GetImage(), nullptr);
    EXPECT_EQ(panel.GetCover().GetImage()->GetPixel(75, 75), host.coverColor);
    Click(panel.GetCover());
    EXPECT_EQ(host.Calls("OpenFolder"), Lines{"OpenFolder " + host.root + "Art/Alb/||0"});
}

TEST_F(PlaylistPanelTest, DoubleClickAndEnterPlayTheRowAndThePlayButtonsPlayAll) {
    dir.Write("Playlists/Mix.lst", "A\\1.mp3\r\nB\\2.mp3\r\nC\\3.mp3\r\n");
    Open();
    ClickRow(1, true);
    EXPECT_EQ(host.Calls("SetPlayQueue"), Lines{"SetPlayQueue " + host.root + "B/2.mp3"});
    host.calls.clear();
    ClickRow(2);
    Key(VK_RETURN);
    EXPECT_EQ(host.Calls("SetPlayQueue"), Lines{"SetPlayQueue " + host.root + "C/3.mp3"});

    host.calls.clear();
    ClickButton(PLAYLIST_ID_PLAY);
    Lines all = {host.root + "A/1.mp3", host.root + "B/2.mp3", host.root + "C/3.mp3"};
    EXPECT_EQ(host.lastQueue, all);
    ClickButton(PLAYLIST_ID_SHUFFLE);
    Lines shuffled = host.lastQueue;
    std::sort(shuffled.begin(), shuffled.end());
    EXPECT_EQ(shuffled, all) << "every entry once";
    EXPECT_EQ(host.Calls("SetPlayQueue").size(), 2u);
}

TEST_F(PlaylistPanelTest, DeleteRemovesTheRowFromTheFileAndRemovingTheLastClearsTheCover) {
    dir.Write("Playlists/Mix.lst", "a.mp3\r\nb.mp3\r\nc.mp3\r\n");
    dir.Write("b.mp3", "the track itself");
    Open();
    ClickRow(1);
    Key(VK_DELETE);
    EXPECT_EQ(File("Mix"), "a.mp3\r\nc.mp3\r\n");
    EXPECT_EQ(Rows(), (Lines{"a.mp3", "c.mp3"}));
    EXPECT_EQ(panel.GetCountLabel().GetText(), "2 files");
    EXPECT_EQ(TempDir::Read(dir / "b.mp3"), "the track itself") << "the file is never touched";
    // The row that followed is selected, with its cover.
    EXPECT_EQ(panel.GetStore().GetSelection(), 1);
    EXPECT_TRUE(panel.GetList().IsSelected(1));
    EXPECT_NE(panel.GetCover().GetImage(), nullptr);
    // Removing the last row leaves no selection and no cover.
    Key(VK_DELETE);
    EXPECT_EQ(File("Mix"), "a.mp3\r\n");
    EXPECT_EQ(panel.GetStore().GetSelection(), -1);
    EXPECT_EQ(panel.GetList().GetSelectedCount(), 0);
    EXPECT_EQ(panel.GetCover().GetImage(), nullptr);
    EXPECT_EQ(panel.GetCountLabel().GetText(), "1 file");
    // Delete with nothing selected writes nothing.
    std::filesystem::remove(dir / "Playlists/Mix.lst");
    Key(VK_DELETE);
    EXPECT_FALSE(std::filesystem::exists(dir / "Playlists/Mix.lst"));
}

TEST_F(PlaylistPanelTest, MovingStopsAtTheEdgesWithoutWriting) {
    dir.Write("Playlists/Mix.lst", "a\nb\nc\n"); // bare line feeds, as Linux tools write
    Open();
    EXPECT_EQ(Rows(), (Lines{"a", "b", "c"}));
    struct Case {
        int row;             // selected first
        uintptr_t button;    // then pressed
        const char* written; // the file afterwards; null: not written
        int selected;
    } cases[] = {
        {0, PLAYLIST_ID_UP, nullptr, 0},
        {2, PLAYLIST_ID_DOWN, nullptr, 2},
        {0, PLAYLIST_ID_DOWN, "b\r\na\r\nc\r\n", 1},
    };
    for (const Case& c : cases) {
        ClickRow(c.row);
        std::filesystem::remove(dir / "Playlists/Mix.lst");
        ClickButton(c.button);
        if (c.written == nullptr) {
            EXPECT_FALSE(std::filesystem::exists(dir / "Playlists/Mix.lst")) << c.row;
        } else {
            EXPECT_EQ(File("Mix"), c.written) << c.row;
        }
        EXPECT_EQ(panel.GetStore().GetSelection(), c.selected) << c.row;
        EXPECT_TRUE(panel.GetList().IsSelected(c.selected)) << c.row;
        if (c.written == nullptr) {
            panel.SavePlaylist(); // put the file back for the next case
        }
    }
}

TEST_F(PlaylistPanelTest, RenameAsksTheHostAndFollowsItsAnswer) {
    dir.Write("Playlists/Old.lst", "x.mp3\r\n");
    Open();
    struct Case {
        bool ok;
        const char* name;
        const char* current; // the playlist afterwards
    } cases[] = {{false, "Never", "Old"}, {true, "", "Old"}, {true, "Road trip", "Road trip"}};
    for (const Case& c : cases) {
        host.answerName = c.ok;
        host.newName = c.name;
        host.calls.clear();
        ClickButton(PLAYLIST_ID_RENAME);
        EXPECT_EQ(host.Calls("AskPlaylistName").size(), 1u);
        EXPECT_EQ(panel.GetCurrentName(), c.current) << c.name;
        EXPECT_EQ(panel.GetCombo().GetEditText(), c.current) << c.name;
    }
    EXPECT_EQ(host.Calls("AskPlaylistName"), Lines{"AskPlaylistName Old"});
    EXPECT_EQ(File("Road trip"), "x.mp3\r\n");
    EXPECT_FALSE(std::filesystem::exists(dir / "Playlists/Old.lst"));
    EXPECT_EQ(Rows(), Lines{"x.mp3"});
}

TEST_F(PlaylistPanelTest, DeleteAsksFirstThenTrashesAndKeepsOnePlaylist) {
    dir.Write("Playlists/First.lst", "1.mp3\r\n");
    dir.Write("Playlists/Second.lst", "2.mp3\r\n");
    Open();
    host.answerYes = false;
    ClickButton(PLAYLIST_ID_DELETE);
    EXPECT_EQ(host.Calls("AskYesNo"),
              Lines{"AskYesNo Are you sure to want to delete this playlist?|First"});
    EXPECT_TRUE(std::filesystem::exists(dir / "Playlists/First.lst")) << "answered No";

    host.answerYes = true;
    ClickButton(PLAYLIST_ID_DELETE);
    EXPECT_FALSE(std::filesystem::exists(dir / "Playlists/First.lst"));
    std::string trashed = std::string(getenv("HOME")) + "/Trash/files/First.lst";
    EXPECT_EQ(TempDir::Read(trashed), "1.mp3\r\n");
    EXPECT_EQ(panel.GetCurrentName(), "Second");
    EXPECT_EQ(Rows(), Lines{"2.mp3"});
    // Deleting the last one leaves a fresh, empty playlist.
    ClickButton(PLAYLIST_ID_DELETE);
    EXPECT_EQ(panel.GetCombo().GetCount(), 1);
    EXPECT_EQ(panel.GetCurrentName(), "Playlist");
    EXPECT_EQ(Rows(), Lines{});
    EXPECT_EQ(panel.GetCountLabel().GetText(), "0 file");
}

TEST_F(PlaylistPanelTest, NewMakesAnotherEmptyPlaylistAndOpensIt) {
    dir.Write("Playlists/Playlist.lst", "a.mp3\r\n");
    Open();
    ClickButton(PLAYLIST_ID_NEW);
    EXPECT_EQ(panel.GetCombo().GetCount(), 2);
    EXPECT_NE(panel.GetCurrentName(), "Playlist");
    EXPECT_EQ(panel.GetCombo().GetEditText(), panel.GetCurrentName());
    EXPECT_EQ(Rows(), Lines{});
}

TEST_F(PlaylistPanelTest, AddingFromTheMainWindowWritesTheFile) {
    dir.Write("Playlists/Mix.lst", "a.mp3\r\n");
    Open();
    SStringArray paths;
    paths.Add((host.root + "Art/Alb/01 One.mp3").c_str());
    paths.Add((host.root + "Art/Alb/02 Two.mp3").c_str());
    EXPECT_TRUE(panel.AppendFilesAndSave(paths));
    EXPECT_EQ(File("Mix"), "a.mp3\r\nArt\\Alb\\01 One.mp3\r\nArt\\Alb\\02 Two.mp3\r\n");
    EXPECT_EQ(Rows().size(), 3u);
    EXPECT_EQ(panel.GetCountLabel().GetText(), "3 files");
    // A path outside the collection is left out, and nothing is written.
    SStringArray outside;
    outside.Add("/elsewhere/x.mp3");
    EXPECT_FALSE(panel.AppendFilesAndSave(outside));
    EXPECT_EQ(Rows().size(), 3u);
}

} // namespace
