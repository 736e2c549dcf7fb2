// Walks of the collection over trees a hostile user makes: symbolic link
// loops, links to "/" and to the kernel's file systems, a chain of folders
// 20,000 deep, and purge beside links that leave the root.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "foundation/array.h"
#include "foundation/disk.h"
#include "library/media.h"
#include "library/statistics.h"
#include "support/cli_run.h"
#include "support/hostile_tree.h"
#include "support/temp_dir.h"

namespace fs = std::filesystem;

namespace {

// A collection whose links lead in circles, to "/", to /proc, to the folder
// above the root, and to a folder outside it (another disk, as far as the
// walks can tell).
struct LoopedCollection {
    TempDir dir;
    std::string root;
    LoopedCollection() {
        root = dir.MakeFolder("music");
        dir.Write("music/Rock/a.mp3", "");
        dir.Write("music/Rock/Album/b.mp3", "");
        dir.Write("other disk/Jazz/c.mp3", "");
        fs::create_directory_symlink(".", root + "/Rock/Again");
        fs::create_directory_symlink(".", root + "/Rock/Once more");
        fs::create_directory_symlink("/", root + "/Everything");
        fs::create_directory_symlink("/proc", root + "/Processes");
        fs::create_directory_symlink("..", root + "/Up");
        fs::create_directory_symlink(dir / "other disk", root + "/Linked");
        fs::create_directory_symlink(dir / "other disk", root + "/Linked twice");
    }
};

} // namespace

TEST(HostileTrees, EveryWalkEndsOnLoopsAndFollowsALinkOncePerRealFolder) {
    LoopedCollection tree;
    const std::string root = tree.root + "/";

    // Statistics: the song outside the root is counted once, through the
    // first link to its folder; "/", /proc and ".." are not walked.
    PStatsTable table = CountLibrary(root.c_str());
    EXPECT_EQ(table.totalSongs, 3u);
    EXPECT_LT(table.GetCount(), 10);
    // The two links to one folder: whichever the walk meets first.
    EXPECT_NE(table.Find((root + "Linked/Jazz/").c_str()) < 0,
              table.Find((root + "Linked twice/Jazz/").c_str()) < 0);
    EXPECT_EQ(table.Find((root + "Everything/").c_str()), -1);

    // Listing, recursive: the same rule.
    SStringArray entries;
    SDisk().Enumerate(&entries, (root + "*").c_str(), ENUM_RECURSIVE | ENUM_FILES);
    EXPECT_EQ(entries.GetCount(), 3);

    // Collected media of a folder, recursive.
    SStringArray media;
    EXPECT_EQ(CollectMedia(media, root.c_str(), true, true, true, true, false, true), 3);
    SStringArray rock;
    EXPECT_EQ(CollectMedia(rock, (root + "Rock/").c_str(), true, true, true, true, false, true), 2);
}

TEST(HostileTrees, TheJobsOverLoopsFinishQuickly) {
    LoopedCollection tree;
    for (const char* job : {"stats", "stats --purge"}) {
        BoundedRun run = RunBounded(Quote(MELKORA_CLI_PATH) + " " + job + " " + Quote(tree.root) +
                                        " >" + Quote(tree.dir / "out") + " 2>&1",
                                    30);
        EXPECT_EQ(run.status, 0) << job << ": " << TempDir::Read(tree.dir / "out");
        EXPECT_LT(run.seconds, 10.0) << job;
    }
}

TEST(HostileTrees, TwentyThousandLevelsCostNeitherTheCallStackNorQuadraticMemory) {
    TempDir dir(ManyFoldersParent());
    std::string root = dir.MakeFolder("deep");
    // A song at levels 1, 1000, ..., 20000 and an empty ini at the bottom.
    std::vector<int> songLevels;
    for (int level = 1000; level <= 20000; level += 1000) {
        songLevels.push_back(level);
    }
    songLevels.insert(songLevels.begin(), 1);
    ASSERT_TRUE(MakeDeepChain(root, "d", 20000, songLevels, "s.mp3"));

    PStatsTable table = CountLibrary(root.c_str());
    EXPECT_EQ(table.totalSongs, songLevels.size());
    // Rows only for folders a path can still name.
    EXPECT_GT(table.GetCount(), 1000);
    EXPECT_LT(table.GetCount(), 2100);
    for (int i = 0; i < table.GetCount(); ++i) {
        ASSERT_LT(table.paths.GetAt(i)->GetLength(), 4096);
    }
    EXPECT_EQ(table.songs[0], songLevels.size()); // the root's row

    // The listing stops where the path limit stops it, and does not crash.
    SStringArray entries;
    SDisk().Enumerate(&entries, (root + "/*").c_str(), ENUM_RECURSIVE | ENUM_FILES);
    EXPECT_GE(entries.GetCount(), 2);

    // The job, in a process of its own: bounded time and memory.
    BoundedRun run = RunBounded(Quote(MELKORA_CLI_PATH) + " stats " + Quote(root) + " >" +
                                    Quote(dir / "out") + " 2>&1",
                                120);
    EXPECT_EQ(run.status, 0);
    EXPECT_LT(run.maxResidentKb, 200 * 1024);
    RemoveDeepChain(root, "d");
}

TEST(HostileTrees, PurgeReachesTheBottomOfADeepTreeAndNeverFollowsALink) {
    TempDir dir(ManyFoldersParent());
    std::string root = dir.MakeFolder("music");
    std::string outside = dir.Write("elsewhere/Empty.ini", "");
    std::string inside = dir.Write("music/Empty.ini", "");
    fs::create_directory_symlink(dir / "elsewhere", root + "/Linked");
    fs::create_symlink(outside, root + "/Link.ini");
    ASSERT_TRUE(MakeDeepChain(root, "d", 3000, {3000}, "bottom.ini"));
    EXPECT_EQ(PurgeEmptyIni(root.c_str()), 2); // music/Empty.ini and the bottom one
    EXPECT_FALSE(fs::exists(inside));
    EXPECT_TRUE(fs::exists(outside));
    EXPECT_TRUE(fs::is_symlink(root + "/Link.ini"));
    RemoveDeepChain(root, "d");
}
