#include "library/folder_view.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "library/media.h"
#include "support/temp_dir.h"

namespace {

using Names = std::vector<std::string>;

Names RowNames(const PFolderView& view) {
    Names names;
    for (const PFolderRow& row : view.GetRows()) {
        names.push_back(row.name.c_str());
    }
    return names;
}

class FolderViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name :
             {"Rock/Band/Album/01 One.mp3", "Rock/Band/Album/02 Two.wax", "Rock/Band/Single/x.mp3",
              "Rock/Solo/a.mp3", "Rock/solo2/b.mp3", "Jazz/Leaf/j.mp3", "Jazz/.Hidden/h.mp3",
              "Jazz/Listed/l.mp3", ".git/config", "Book/b.htm"}) {
            dir.Write(name, "");
        }
        dir.Write("Jazz/.hidden", "Listed\n");
        dir.Write(".hidden", "Book\n");
        root = dir.Path() + "/";
        view.SetRoot(root.c_str());
    }
    TempDir dir;
    std::string root;
    PFolderView view;
};

TEST_F(FolderViewTest, RootListsVisibleFoldersSortedWithoutCase) {
    ASSERT_TRUE(view.OpenFolder(root.c_str(), "", true));
    EXPECT_EQ(RowNames(view), (Names{"Jazz", "Rock"}));
    EXPECT_EQ(view.GetStatusText(), root.c_str());
    ASSERT_TRUE(view.NavigateFolder("Rock", "", true));
    EXPECT_EQ(RowNames(view), (Names{"Band", "Solo", "solo2"}));
    ASSERT_EQ(view.GetRows().size(), 3u);
    EXPECT_EQ(view.GetRows()[0].data, FOLDER_HAS_SUBFOLDERS);
    EXPECT_EQ(view.GetRows()[1].data, FOLDER_IS_LEAF);
    EXPECT_EQ(view.GetRows()[2].image, 3);
    EXPECT_EQ(view.GetRowImages().GetCount(), 4); // the default small image first
    ASSERT_EQ(view.GetThumbnails().size(), 3u);
    EXPECT_FALSE(view.GetThumbnails()[0].isLeaf);
    EXPECT_TRUE(view.GetThumbnails()[2].isLeaf);
    EXPECT_EQ(view.GetThumbnails()[0].cover.GetWidth(), 150);
}

TEST_F(FolderViewTest, HiddenFoldersByEitherRuleAreNotListedNorCounted) {
    view.OpenFolder(root.c_str(), "", true);
    ASSERT_TRUE(view.SelectName("Jazz"));
    view.NavigateFolder("Jazz", "", true);
    // Jazz holds Leaf alone once .Hidden and Listed are left out.
    EXPECT_EQ(RowNames(view), (Names{"Leaf"}));
}

TEST_F(FolderViewTest, ParentOfTheRootStaysAtTheRoot) {
    view.OpenFolder(root.c_str(), "", true);
    EXPECT_FALSE(view.NavigateFolder("..", "", false));
    EXPECT_EQ(view.GetCurrent().GetFullPath(), root.c_str());
    view.NavigateFolder("Rock", "", true);
    EXPECT_TRUE(view.NavigateFolder("..", "Rock", false));
    EXPECT_EQ(view.GetCurrent().GetFullPath(), root.c_str());
    EXPECT_EQ(view.GetSelectedRow(), 1);
    EXPECT_FALSE(view.NavigateFolder("Rock/../..", "", false));
    EXPECT_EQ(view.GetCurrent().GetFullPath(), root.c_str());
}

TEST_F(FolderViewTest, LeafAndMissingFoldersNeverBecomeCurrent) {
    view.OpenFolder(root.c_str(), "", true);
    view.NavigateFolder("Rock", "", true);
    EXPECT_FALSE(view.NavigateFolder("Solo", "", false));
    EXPECT_EQ(view.GetCurrent().GetFullPath(), (root + "Rock/").c_str());
    EXPECT_EQ(RowNames(view), (Names{"Band", "Solo", "solo2"}));
    EXPECT_FALSE(view.NavigateFolder("Missing", "", false));
    EXPECT_EQ(view.GetCurrent().GetFullPath(), root.c_str());
    EXPECT_FALSE(view.OpenFolder((dir / "nowhere").c_str(), "", true));
    EXPECT_EQ(view.GetCurrent().GetFullPath(), root.c_str());
}

TEST_F(FolderViewTest, SelectionFillsTracksCoverAndPage) {
    dir.Write("Rock/Band/Album/01 One.txt", "words");
    dir.Write("Rock/Band/Album/cover.JPG", "");
    dir.Write("Rock/Band/Album/notes.doc", "");
    view.OpenFolder((root + "Rock/Band").c_str(), "Album", false);
    ASSERT_EQ(view.GetSelectedRow(), 0);
    EXPECT_EQ(view.GetSelectedFolder(), (root + "Rock/Band/Album/").c_str());
    EXPECT_EQ(view.GetCaption(), "Album");
    EXPECT_EQ(view.GetCover().GetWidth(), 150);
    EXPECT_TRUE(view.GetParentCover().IsValid()); // below the root's level
    EXPECT_EQ(view.GetParentCaption(), "Band");
    const std::vector<PTrackRow>& tracks = view.GetTrackRows();
    ASSERT_EQ(tracks.size(), 3u);
    EXPECT_EQ(tracks[0].text, "01 One");
    EXPECT_EQ(tracks[0].icon, MEDIA_SONG);
    EXPECT_EQ(tracks[0].data, TRACK_HAS_TEXT);
    EXPECT_EQ(tracks[1].icon, MEDIA_RADIO);
    EXPECT_EQ(tracks[1].data, TRACK_NO_TEXT);
    EXPECT_EQ(tracks[2].icon, MEDIA_PICTURE); // cover.JPG, a picture without a marker
    EXPECT_EQ(view.GetTrackTable().GetCount(), 3);
    EXPECT_TRUE(view.CanPlayTracks());
    EXPECT_EQ(view.GetPage(), "");
    dir.Write("Rock/Band/Album.htm", "");
    view.RefreshFolder();
    EXPECT_EQ(view.GetSelectedRow(), 0);
    EXPECT_EQ(view.GetPage(), (root + "Rock/Band/Album.htm").c_str());
    SArray<int> selected;
    selected.Add(2);
    selected.Add(0);
    selected.Add(7);
    SStringArray paths;
    EXPECT_EQ(view.GetSelectedTracks(selected, paths), 2);
    EXPECT_EQ(paths.GetText(1), (root + "Rock/Band/Album/01 One.mp3").c_str());
}

TEST_F(FolderViewTest, FolderWithOtherFilesOnlyHasNothingToPlay) {
    dir.Write("Other/Docs/readme.doc", "");
    dir.MakeFolder("Other/Sub");
    view.OpenFolder((root + "Other").c_str(), "Docs", false);
    EXPECT_TRUE(view.GetTrackRows().empty());
    EXPECT_FALSE(view.CanPlayTracks());
    view.SelectRow(-1);
    EXPECT_FALSE(view.ShowSelection());
    EXPECT_FALSE(view.GetParentCover().IsValid());
}

TEST_F(FolderViewTest, InfoPaneReadsTheStatisticsTable) {
    view.OpenFolder(root.c_str(), "", true);
    EXPECT_EQ(view.GetFolderCountsText(), ""); // the statistics have not arrived
    view.SetStatistics(std::make_shared<PStatsTable>(CountLibrary(root.c_str())));
    EXPECT_EQ(view.GetFolderCountsText(), "<b>5</b> songs, <b>0</b> video & <b>1</b> radio");
    view.SelectName("Rock");
    EXPECT_EQ(view.GetFolderCountsText(), "<b>4</b> songs, <b>0</b> video & <b>1</b> radio");
}

} // namespace
