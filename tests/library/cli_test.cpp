// melkora-cli run as a program: its output, exit codes and files.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "support/cli_run.h"

namespace {

using Result = CliRun;

TEST(CliUsage, HelpAndBadArgumentsGiveTheirCodes) {
    TempDir dir;
    Result help = RunCli(dir, "--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("stats ROOT"), std::string::npos);
    EXPECT_NE(help.out.find("playlist ROOT"), std::string::npos);
    EXPECT_NE(help.out.find("book ROOT"), std::string::npos); // the pages jobs are listed too
    EXPECT_EQ(RunCli(dir, "stats --help").status, 0);
    EXPECT_EQ(RunCli(dir, "playlist --help").status, 0);
    Result none = RunCli(dir, "");
    EXPECT_EQ(none.status, 2);
    EXPECT_NE(none.err.find("usage"), std::string::npos);
    EXPECT_EQ(RunCli(dir, "unknown").status, 2);
    EXPECT_EQ(RunCli(dir, "stats").status, 2);
    EXPECT_EQ(RunCli(dir, "stats a b").status, 2);
    EXPECT_EQ(RunCli(dir, "stats " + Quote(dir.Path()) + " --bogus").status, 2);
    EXPECT_EQ(RunCli(dir, "playlist " + Quote(dir.Path()) + " show").status, 2);
    Result missing = RunCli(dir, "stats " + Quote(dir / "missing"));
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err.rfind("melkora-cli: ", 0), 0u);
}

TEST(CliStats, PrintsTheTableThenTheTotalsAndPurges) {
    TempDir dir;
    dir.Write("B/x.mp3", "");
    dir.Write("B/y.wvx", "");
    dir.Write("A/Sub/z.avi", "");
    dir.Write("A/z.mp3", "");
    std::string empty = dir.Write("A.ini", "");
    std::string root = dir.Path() + "/";
    Result result = RunCli(dir, "stats " + Quote(dir.Path()));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, root + "\t2\t1\t1\n" + root + "A/\t1\t1\t0\n" + root +
                              "A/Sub/\t0\t1\t0\n" + root + "B/\t1\t0\t1\n" +
                              "2 songs, 1 video, 1 radio\n");
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(std::filesystem::exists(empty));
    Result purge = RunCli(dir, "stats " + Quote(root) + " --purge --images 'A;B'");
    EXPECT_EQ(purge.status, 0);
    EXPECT_EQ(purge.out, result.out);
    EXPECT_FALSE(std::filesystem::exists(empty));
}

TEST(CliPlaylist, ListShowAndAdd) {
    TempDir dir;
    dir.Write("Playlists/b.lst", "Artist\\Song.mp3\r\n");
    dir.Write("Playlists/A.lst", "");
    std::string root = Quote(dir.Path());
    Result list = RunCli(dir, "playlist " + root + " list");
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.out, "A\nb\n");
    Result show = RunCli(dir, "playlist " + root + " show b");
    EXPECT_EQ(show.status, 0);
    EXPECT_EQ(show.out, "Artist\\Song.mp3\n");
    Result add = RunCli(dir, "playlist " + root + " add b " + Quote(dir / "New/One.mp3") + " " +
                                 Quote(dir / "Two.mp3"));
    EXPECT_EQ(add.status, 0);
    EXPECT_EQ(add.out, "");
    EXPECT_EQ(TempDir::Read(dir / "Playlists/b.lst"),
              "Artist\\Song.mp3\r\nNew\\One.mp3\r\nTwo.mp3\r\n");
    EXPECT_EQ(RunCli(dir, "playlist " + root + " show missing").status, 1);
    EXPECT_EQ(RunCli(dir, "playlist " + root + " add b relative.mp3").status, 1);
    EXPECT_EQ(TempDir::Read(dir / "Playlists/b.lst"),
              "Artist\\Song.mp3\r\nNew\\One.mp3\r\nTwo.mp3\r\n");
}

// Eight processes add to one playlist at once, 20 files each: every add
// reads the file again under the playlists' lock, so none is lost.
TEST(CliPlaylist, ConcurrentAddsLoseNothingAndOutsidersAreRefused) {
    TempDir dir;
    dir.Write("Playlists/P.lst", "");
    std::string script = "for a in 1 2 3 4 5 6 7 8; do (for i in $(seq 1 20); do " +
                         Quote(MELKORA_CLI_PATH) + " playlist " + Quote(dir.Path()) + " add P " +
                         Quote(dir.Path()) + "/$a/$i.mp3 || echo failed; done) & " + "done; wait";
    std::string out = dir / "adders-out";
    int status =
        std::system(("timeout 300 bash -c " + Quote(script) + " >" + Quote(out) + " 2>&1").c_str());
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(TempDir::Read(out), "");
    Result show = RunCli(dir, "playlist " + Quote(dir.Path()) + " show P");
    std::set<std::string> entries;
    size_t lines = 0;
    for (size_t start = 0, end; (end = show.out.find('\n', start)) != std::string::npos;
         start = end + 1) {
        entries.insert(show.out.substr(start, end - start));
        ++lines;
    }
    EXPECT_EQ(lines, 160u);
    EXPECT_EQ(entries.size(), 160u);
    EXPECT_EQ(entries.count("8\\20.mp3"), 1u);

    Result outside = RunCli(dir, "playlist " + Quote(dir.Path()) + " add P " +
                                     Quote(dir / "in.mp3") + " /a/b/c/d/Jazz/e.mp3");
    EXPECT_EQ(outside.status, 1);
    EXPECT_NE(outside.err.find("not a file under the root"), std::string::npos) << outside.err;
    EXPECT_NE(outside.err.find("/a/b/c/d/Jazz/e.mp3"), std::string::npos);
    Result after = RunCli(dir, "playlist " + Quote(dir.Path()) + " show P");
    EXPECT_EQ(after.out, show.out); // nothing of a refused add is written
}

// A save that cannot be written whole (a file size limit stands in for a
// full disk) fails with the reason and leaves the old file and no
// temporary file behind.
TEST(CliPlaylist, AFailedWriteKeepsTheOldFileAndExitsOne) {
    TempDir dir;
    std::string old;
    for (int i = 0; i < 300; ++i) {
        old += "Artist\\" + std::to_string(i) + ".mp3\r\n";
    }
    std::string path = dir.Write("Playlists/P.lst", old);
    std::string command = "trap '' XFSZ; ulimit -f 1; exec " + Quote(MELKORA_CLI_PATH) +
                          " playlist " + Quote(dir.Path()) + " add P " + Quote(dir / "new.mp3");
    int status = std::system(("bash -c " + Quote(command) + " 2>" + Quote(dir / "err")).c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_NE(TempDir::Read(dir / "err").find("cannot save the playlist P"), std::string::npos);
    EXPECT_EQ(TempDir::Read(path), old);
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir / "Playlists")) {
        files += entry.path().filename().string().rfind(".lst-", 0) == 0 ? 1 : 0;
    }
    EXPECT_EQ(files, 0);
}

TEST(CliPlaylist, ListingNeverWrites) {
    TempDir dir;
    dir.MakeFolder("Playlists");
    Result list = RunCli(dir, "playlist " + Quote(dir.Path()) + " list");
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.out, "");
    EXPECT_TRUE(std::filesystem::is_empty(dir / "Playlists"));
}

} // namespace
