#include "library/statistics.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>

#include "support/temp_dir.h"

namespace {

struct Row {
    unsigned songs;
    unsigned videos;
    unsigned radios;
};

Row RowOf(const PStatsTable& table, const std::string& path) {
    int index = table.Find(path.c_str());
    EXPECT_GE(index, 0) << path;
    if (index < 0) {
        return {99999, 99999, 99999};
    }
    return {table.songs[size_t(index)], table.videos[size_t(index)], table.radios[size_t(index)]};
}

bool operator==(const Row& a, const Row& b) {
    return a.songs == b.songs && a.videos == b.videos && a.radios == b.radios;
}

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.songs << "/" << row.videos << "/" << row.radios;
}

TEST(Statistics, EmptyRootCountsZeroWithSingularWords) {
    TempDir dir;
    PStatsTable table = CountLibrary(dir.Path().c_str());
    ASSERT_EQ(table.GetCount(), 1);
    EXPECT_EQ(*table.paths.GetAt(0), (dir.Path() + "/").c_str());
    EXPECT_EQ(table.FormatTotals(), "0 song, 0 video, 0 radio");
    EXPECT_EQ(table.FormatFolder(0), "<b>0</b> song, <b>0</b> video & <b>0</b> radio");
    EXPECT_EQ(table.FormatFolder(-1), "");
}

TEST(Statistics, SubtreeCountsSortedPathsAndHiddenEntriesLeftOut) {
    TempDir dir;
    for (const char* name :
         {"Rock/a.mp3", "Rock/b.WMA", "Rock/c.jpg", "Rock/Band/x.mpg", "Rock/Band/y.wvx",
          "Rock/Band/Live/z.wax", "Rock/Band/Live/w.flac", "Rock/.h.mp3", "Rock/Secret/s.mp3",
          "Jazz/j.mpeg", ".Hidden/q.mp3", "Playlists/p.mp3", "top.mp3", "Rock/Band/notes.txt"}) {
        dir.Write(name, "");
    }
    dir.Write("Rock/.hidden", "Secret\r\n");
    dir.Write(".hidden", "Playlists\n");
    std::string root = dir.Path() + "/";
    PStatsTable table = CountLibrary(dir.Path().c_str());
    ASSERT_EQ(table.GetCount(), 5);
    EXPECT_EQ(*table.paths.GetAt(0), root.c_str());
    EXPECT_EQ(*table.paths.GetAt(1), (root + "Jazz/").c_str());
    EXPECT_EQ(*table.paths.GetAt(2), (root + "Rock/").c_str());
    EXPECT_EQ(*table.paths.GetAt(3), (root + "Rock/Band/").c_str());
    EXPECT_EQ(*table.paths.GetAt(4), (root + "Rock/Band/Live/").c_str());
    EXPECT_EQ(RowOf(table, root), (Row{4, 2, 2}));
    EXPECT_EQ(RowOf(table, root + "Rock/"), (Row{3, 1, 2}));
    EXPECT_EQ(RowOf(table, root + "Rock/Band/"), (Row{1, 1, 2}));
    EXPECT_EQ(RowOf(table, root + "Rock/Band/Live/"), (Row{1, 0, 1}));
    EXPECT_EQ(RowOf(table, root + "Jazz/"), (Row{0, 1, 0}));
    EXPECT_EQ(table.Find((root + "Rock/Secret/").c_str()), -1);
    EXPECT_EQ(table.FormatTotals(), "4 songs, 2 videos, 2 radios");
}

TEST(Statistics, SixtyFiveThousandFiveHundredThirtySixSongsWrapPerFolderButNotInTotal) {
    TempDir dir;
    std::string folder = dir.MakeFolder("Big");
    int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_GE(fd, 0);
    for (int i = 0; i < 65536; ++i) {
        std::string name = std::to_string(i) + ".mp3";
        int file = openat(fd, name.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        ASSERT_GE(file, 0);
        close(file);
    }
    close(fd);
    dir.Write("Big/one.wax", "");
    PStatsTable table = CountLibrary(dir.Path().c_str());
    EXPECT_EQ(RowOf(table, folder + "/"), (Row{0, 0, 1}));
    EXPECT_EQ(table.FormatFolder(table.Find((folder + "/").c_str())),
              "<b>0</b> song, <b>0</b> video & <b>1</b> radio");
    EXPECT_EQ(table.totalSongs, 65536u);
    EXPECT_EQ(table.FormatTotals(), "65536 songs, 0 video, 1 radio");
}

TEST(Statistics, LinksCountAsTheirTargetsAndLoopsEnd) {
    TempDir dir;
    dir.Write("Real/a.mp3", "");
    dir.Write("Other/b.mp3", "");
    std::filesystem::create_directory_symlink(dir / "Other", dir / "Real/Linked");
    std::filesystem::create_directory_symlink(dir.Path(), dir / "Real/Loop");
    std::filesystem::create_symlink(dir / "Real/a.mp3", dir / "Other/c.mp3");
    std::filesystem::create_symlink(dir / "nowhere.mp3", dir / "Other/broken.mp3");
    PStatsTable table = CountLibrary(dir.Path().c_str());
    std::string root = dir.Path() + "/";
    EXPECT_EQ(RowOf(table, root + "Real/Linked/"), (Row{2, 0, 0}));
    EXPECT_EQ(RowOf(table, root + "Other/"), (Row{2, 0, 0}));
    EXPECT_EQ(table.Find((root + "Real/Loop/").c_str()), -1);
    EXPECT_EQ(table.totalSongs, 5u);
}

TEST(Statistics, MissingRootGivesTheRootAloneAndNullGivesNothing) {
    TempDir dir;
    PStatsTable table = CountLibrary((dir / "missing").c_str());
    EXPECT_EQ(table.GetCount(), 1);
    EXPECT_EQ(table.totalSongs, 0u);
    EXPECT_EQ(CountLibrary(nullptr).GetCount(), 0);
    EXPECT_EQ(CountLibrary("").GetCount(), 0);
}

TEST(PurgeEmptyIni, RemovesOnlyEmptyIniFilesHiddenFoldersIncluded) {
    TempDir dir;
    std::string empty = dir.Write("A.ini", "");
    std::string upper = dir.Write("A/B.INI", "");
    std::string hidden = dir.Write(".hid/C.ini", "");
    std::string listed = dir.Write("Book/D.ini", "");
    dir.Write(".hidden", "Book\n");
    std::string full = dir.Write("E.ini", "site=x\r\n");
    std::string other = dir.Write("F.txt", "");
    EXPECT_EQ(PurgeEmptyIni(dir.Path().c_str()), 4);
    for (const std::string& gone : {empty, upper, hidden, listed}) {
        EXPECT_FALSE(std::filesystem::exists(gone)) << gone;
    }
    EXPECT_TRUE(std::filesystem::exists(full));
    EXPECT_TRUE(std::filesystem::exists(other));
    EXPECT_EQ(PurgeEmptyIni((dir / "missing").c_str()), 0);
}

TEST(FolderCounts, PluralFromTwoOn) {
    EXPECT_EQ(FormatFolderCounts(1, 2, 0), "<b>1</b> song, <b>2</b> videos & <b>0</b> radio");
    EXPECT_EQ(FormatFolderCounts(65535, 1, 3),
              "<b>65535</b> songs, <b>1</b> video & <b>3</b> radios");
}

} // namespace

namespace {

// The worker counts while another thread may count too: the walk keeps no
// shared state, so both tables come out whole and equal.
TEST(Statistics, TwoThreadsCountTheSameTreeAlike) {
    TempDir dir;
    for (int i = 0; i < 40; ++i) {
        dir.Write("F" + std::to_string(i % 7) + "/S" + std::to_string(i % 3) + "/" +
                      std::to_string(i) + ".mp3",
                  "");
    }
    PStatsTable first;
    PStatsTable second;
    std::thread worker([&] { first = CountLibrary(dir.Path().c_str()); });
    second = CountLibrary(dir.Path().c_str());
    worker.join();
    ASSERT_EQ(first.GetCount(), second.GetCount());
    EXPECT_EQ(first.GetCount(), 1 + 7 + 21);
    for (int i = 0; i < first.GetCount(); ++i) {
        EXPECT_EQ(*first.paths.GetAt(i), second.paths.GetAt(i)->c_str());
        EXPECT_EQ(first.songs[size_t(i)], second.songs[size_t(i)]);
    }
    EXPECT_EQ(first.totalSongs, 40u);
}

} // namespace
