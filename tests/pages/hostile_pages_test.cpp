// Pages and the Book over hostile collections: link loops and links to "/",
// writes that would leave the root, folder names with tabs, line feeds or
// 251 bytes, a full disk, and kills in the middle of the Book.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "foundation/file.h"
#include "pages/description.h"
#include "support/cli_run.h"
#include "support/hostile_tree.h"
#include "support/temp_dir.h"

#ifdef MELKORA_CLI_PATH

namespace fs = std::filesystem;

namespace {

std::string Cli() {
    return Quote(MELKORA_CLI_PATH);
}

// Names of files a run of the program leaves behind when it is cut short:
// temporary files and staged Book pictures.
std::vector<std::string> Leftovers(const std::string& folder) {
    std::vector<std::string> found;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
        std::string name = entry.path().filename().string();
        if (name.rfind(".melkora-", 0) == 0 || name.rfind("~", 0) == 0) {
            found.push_back(entry.path().string());
        }
    }
    return found;
}

// The pictures Book.htm names that are missing or empty; "no page" when
// there is no Book.htm.
std::vector<std::string> BrokenPictures(const std::string& root) {
    std::string page = TempDir::Read(root + "/Book.htm");
    if (page.empty()) {
        return {"no page"};
    }
    std::vector<std::string> broken;
    std::regex reference(R"re((?:src|background)="Book\\([^"]+)")re");
    for (std::sregex_iterator it(page.begin(), page.end(), reference), end; it != end; ++it) {
        std::string picture = root + "/Book/" + (*it)[1].str();
        std::error_code error;
        if (!fs::exists(picture) || fs::file_size(picture, error) == 0) {
            broken.push_back((*it)[1].str());
        }
    }
    return broken;
}

} // namespace

TEST(HostilePages, KnownFoldersPagesAndBookEndOnLoopsAndLinksToTheRootOfTheSystem) {
    TempDir dir;
    std::string root = dir.MakeFolder("music");
    dir.Write("music/Rock/Artist/Album/a.mp3", "");
    dir.Write("music/Rock/Artist.txt", "about");
    fs::create_directory_symlink(".", root + "/Rock/Again");
    fs::create_directory_symlink(".", root + "/Rock/Once more");
    fs::create_directory_symlink("/", root + "/Everything");
    fs::create_directory_symlink("/sys", root + "/System");

    PKnownFolders known;
    ASSERT_TRUE(known.Load(root.c_str()));
    EXPECT_EQ(known.GetCount(), 2); // Rock, Rock/Artist
    for (const char* job : {"pages", "book", "describe-line"}) {
        BoundedRun run = RunBounded(Cli() + " " + job + " " + Quote(root) + " </dev/null >" +
                                        Quote(dir / "out") + " 2>&1",
                                    30);
        EXPECT_EQ(run.status, 0) << job << ": " << TempDir::Read(dir / "out");
        EXPECT_LT(run.seconds, 10.0) << job;
    }
    EXPECT_TRUE(fs::exists(root + "/Rock/Artist.htm"));
}

TEST(HostilePages, NothingIsWrittenOutsideTheRootAndTheJobSaysWhy) {
    TempDir dir;
    std::string root = dir.MakeFolder("music");
    dir.Write("music/Rock/Artist/Album/a.mp3", "");
    dir.Write("outside/Sub/Album/b.mp3", "");
    dir.Write("outside/Sub.txt", "not ours");
    fs::create_directory_symlink(dir / "outside", root + "/Away");
    dir.Write("music/Rock/Artist.txt", "about");
    fs::create_symlink(dir / "outside/Victim.htm", root + "/Rock/Artist.htm");
    struct Case {
        const char* name;
        std::string arguments;
    };
    const Case cases[] = {
        {"dot dot", "page " + Quote(root) + " ../outside/Sub"},
        {"dot dot inside", "page " + Quote(root) + " Rock/../../outside/Sub"},
        {"through a linked folder", "page " + Quote(root) + " Away/Sub"},
        {"a page that is a link out", "page " + Quote(root) + " Rock/Artist"},
        {"every page", "pages " + Quote(root)},
    };
    for (const Case& test : cases) {
        CliRun run = RunCli(dir, test.arguments);
        EXPECT_EQ(run.status, 1) << test.name;
        EXPECT_NE(run.err.find("outside the root"), std::string::npos) << test.name << run.err;
        EXPECT_EQ(run.err.rfind("melkora-cli: ", 0), 0u) << test.name;
    }
    EXPECT_FALSE(fs::exists(dir / "outside/Sub.htm"));
    EXPECT_FALSE(fs::exists(dir / "outside/Victim.htm"));
    EXPECT_TRUE(fs::is_symlink(root + "/Rock/Artist.htm"));
    // A Book whose picture folder is a link out is refused as well.
    fs::create_directory_symlink(dir / "outside", root + "/Book");
    CliRun run = RunCli(dir, "book " + Quote(root));
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("outside"), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(dir / "outside/book0.jpg"));
}

TEST(HostilePages, OddAndLongFolderNamesGetTheirPagesFromPageAndPagesAlike) {
    TempDir dir;
    std::string root = dir.MakeFolder("music");
    std::vector<std::string> names = {"Tab\there", "Line\nfeed"};
    for (size_t length = 244; length <= 251; ++length) {
        names.push_back(std::string(length, 'x'));
    }
    for (const std::string& name : names) {
        dir.MakeFolder("music/" + name + "/Album");
        dir.Write("music/" + name + ".txt", "about");
    }
    CliRun run = RunCli(dir, "pages " + Quote(root));
    EXPECT_EQ(run.status, 0) << run.err;
    for (const std::string& name : names) {
        EXPECT_TRUE(fs::exists(root + "/" + name + ".htm")) << name.size();
        fs::remove(root + "/" + name + ".htm");
        run = RunCli(dir, "page " + Quote(root) + " " + Quote(name));
        EXPECT_EQ(run.status, 0) << name.size() << run.err;
        EXPECT_TRUE(fs::exists(root + "/" + name + ".htm")) << name.size();
    }
    EXPECT_EQ(Leftovers(root), std::vector<std::string>());
}

// A full disk, injected in the file layer (every run), and a real one: a
// small memory file system in a mount namespace of the test's own, where
// the system lets an unprivileged user make one.
TEST(HostilePages, AFullDiskFailsTheJobWithTheReasonAndKeepsTheOldFiles) {
    TempDir dir;
    std::string root = dir.MakeFolder("music");
    for (int i = 0; i < 40; ++i) {
        dir.Write("music/G" + std::to_string(i % 4) + "/A" + std::to_string(i) + "/s.mp3", "");
    }
    dir.Write("music/G0.txt", "about");
    ASSERT_EQ(RunCli(dir, "book " + Quote(root)).status, 0);
    ASSERT_EQ(RunCli(dir, "pages " + Quote(root)).status, 0);
    std::string oldBook = TempDir::Read(root + "/Book.htm");
    std::string oldPage = TempDir::Read(root + "/G0.htm");
    dir.Write("music/G0.txt", "changed");
    // Limits that cut each job short early, midway and late.
    struct Case {
        const char* job;
        int limit;
    };
    const Case cases[] = {{"book", 0},     {"book", 3000},  {"book", 20000},
                          {"book", 60000}, {"pages", 0},    {"pages", 300}};
    for (const Case& test : cases) {
        // The old files, whole.
        ASSERT_EQ(RunCli(dir, "book " + Quote(root)).status, 0);
        dir.Write("music/G0.htm", oldPage);
        std::string command = "MELKORA_TEST_WRITE_LIMIT=" + std::to_string(test.limit) + " " +
                              Cli() + " " + test.job + " " + Quote(root) + " 2>" +
                              Quote(dir / "err");
        int status = std::system(command.c_str());
        std::string err = TempDir::Read(dir / "err");
        std::string label = std::string(test.job) + " " + std::to_string(test.limit);
        EXPECT_EQ(WEXITSTATUS(status), 1) << label;
        EXPECT_NE(err.find("No space left on device"), std::string::npos) << label << err;
        EXPECT_EQ(TempDir::Read(root + "/Book.htm"), oldBook) << label;
        EXPECT_EQ(TempDir::Read(root + "/G0.htm"), oldPage) << label;
        EXPECT_EQ(BrokenPictures(root), std::vector<std::string>()) << label;
        EXPECT_EQ(Leftovers(root), std::vector<std::string>()) << label;
    }

    // The real thing, when a mount namespace can be had.
    std::string small = dir.MakeFolder("small");
    std::string script = dir.Write(
        "full.sh",
        "mount -t tmpfs -o size=24k none " + Quote(small) + " || exit 77\n"
        "mkdir -p " + Quote(small + "/m") + "\n"
        "cp -r " + Quote(root) + "/G0 " + Quote(small + "/m/") + " || exit 78\n"
        "i=0\n"
        "while [ $i -lt 100 ] && head -c 4096 /dev/zero > " + Quote(small + "/m/fill") +
        "$i 2>/dev/null; do i=$((i + 1)); done\n" +
        Cli() + " book " + Quote(small + "/m") + " 2>" + Quote(dir / "err") + "\n"
        "echo $? > " + Quote(dir / "status") + "\n"
        "ls -a " + Quote(small + "/m") + " > " + Quote(dir / "listing") + "\n");
    int status = std::system(("unshare -r -m sh " + Quote(script) + " 2>/dev/null").c_str());
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        RecordProperty("real_full_disk", "no small file system could be mounted here");
        return;
    }
    EXPECT_EQ(TempDir::Read(dir / "status"), "1\n");
    EXPECT_NE(TempDir::Read(dir / "err").find("No space left on device"), std::string::npos);
    EXPECT_EQ(TempDir::Read(dir / "listing").find(".melkora-"), std::string::npos);
}

TEST(HostilePages, AKilledBookLeavesTheOldOrTheNewBookWholeAndTheNextRunClearsUp) {
    TempDir dir;
    std::string root = dir.MakeFolder("music");
    for (int i = 0; i < 240; ++i) {
        dir.Write("music/G" + std::to_string(i % 6) + "/A" + std::to_string(i) + "/s.mp3", "");
    }
    auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(RunCli(dir, "book " + Quote(root)).status, 0);
    double full = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::mt19937 random(24);
    std::uniform_real_distribution<double> moment(0.0, full * 1.2);
    for (int round = 0; round < 16; ++round) {
        // Every other round the collection changes, so old and new differ.
        if (round % 2 == 1) {
            dir.MakeFolder("music/G0/New" + std::to_string(round));
        }
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            int null = open("/dev/null", O_WRONLY);
            dup2(null, 1);
            dup2(null, 2);
            execl(MELKORA_CLI_PATH, MELKORA_CLI_PATH, "book", root.c_str(), nullptr);
            _exit(127);
        }
        std::this_thread::sleep_for(std::chrono::duration<double>(moment(random)));
        kill(child, SIGKILL);
        int status;
        waitpid(child, &status, 0);
        EXPECT_EQ(BrokenPictures(root), std::vector<std::string>()) << "round " << round;
    }
    ASSERT_EQ(RunCli(dir, "book " + Quote(root)).status, 0);
    EXPECT_EQ(BrokenPictures(root), std::vector<std::string>());
    EXPECT_EQ(Leftovers(root), std::vector<std::string>());
}

TEST(HostilePages, LeftoversOfAKilledRunGoAndALiveWritersFileStays) {
    TempDir dir;
    std::string root = dir.MakeFolder("music");
    dir.MakeFolder("music/Rock/Artist");
    dir.Write("music/Rock.txt", "about");
    std::string dead = dir.Write("music/.melkora-abc123", "half a page");
    std::string deadPicture = dir.Write("music/Book/~abook3.jpg", "half");
    std::string live = dir.Write("music/.melkora-xyz789", "being written");
    std::string mine = dir.Write("music/.melkora-notes", "the user's");
    int fd = open(live.c_str(), O_RDONLY);
    ASSERT_EQ(flock(fd, LOCK_EX), 0);
    // A process of its own holds no lock of ours: the lock here stands for
    // a writer at work in another program.
    EXPECT_EQ(RunCli(dir, "pages " + Quote(root)).status, 0);
    EXPECT_EQ(RunCli(dir, "book " + Quote(root)).status, 0);
    EXPECT_FALSE(fs::exists(dead));
    EXPECT_FALSE(fs::exists(deadPicture));
    EXPECT_TRUE(fs::exists(live));
    EXPECT_TRUE(fs::exists(mine));
    close(fd);
    EXPECT_EQ(RemoveLeftoverTempFiles(root.c_str()), 1);
}

#endif
