#include "foundation/disk.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <glib.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <tuple>
#include <unistd.h>
#include <vector>

#include "foundation/array.h"
#include "foundation/file.h"
#include "foundation/path.h"
#include "support/temp_dir.h"
#include "test_support.h"

namespace fs = std::filesystem;

namespace {

std::vector<std::string> ToVector(const SStringArray& array, const std::string& prefix = "") {
    std::vector<std::string> items;
    for (int i = 0; i < array.GetCount(); ++i) {
        std::string item = array.GetAt(i)->c_str();
        if (!prefix.empty() && item.rfind(prefix, 0) == 0) {
            item = item.substr(prefix.size());
        }
        items.push_back(item);
    }
    return items;
}

using Names = std::vector<std::string>;

// The tree every listing case reads. ".hidden" hides "listed.mp3" and
// "hiddenfolder"; names starting with "." are hidden by themselves.
class DiskEnumerate : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* file :
             {"a.mp3", "B.MP3", "c.txt", ".dot.mp3", "listed.mp3", "album/x.mp3", "album/y.wma",
              "artist/sub/z.mp3", "hiddenfolder/h.mp3", ".dotfolder/d.mp3", "notes/readme.txt"}) {
            tree.Write(file, "data");
        }
        tree.Write(".hidden", "listed.mp3\r\nhiddenfolder\n");
        tree.MakeFolder("album/bonus");
        tree.MakeFolder("empty");
        root = tree.Path() + "/";
    }

    Names List(const std::string& filter, int flags, int* count = nullptr) {
        SStringArray result;
        int found = disk.Enumerate(&result, (root + filter).c_str(), flags);
        EXPECT_EQ(found, result.GetCount());
        if (count != nullptr) {
            *count = found;
        }
        return ToVector(result, root);
    }

    TempDir tree;
    std::string root;
    SDisk disk;
};

TEST_F(DiskEnumerate, FlagsFiltersAndOrder) {
    // clang-format off
    const std::tuple<const char*, int, Names> cases[] = {
        {"*", 4, {".dot.mp3", ".hidden", "a.mp3", "B.MP3", "c.txt", "listed.mp3"}},
        {"*", 4 | 8, {"a.mp3", "B.MP3", "c.txt"}},
        {"*", 2, {".dotfolder/", "album/", "artist/", "empty/", "hiddenfolder/", "notes/"}},
        {"*", 2 | 8, {"album/", "artist/", "empty/", "notes/"}},
        {"*.MP3", 13, {"a.mp3", "album/x.mp3", "artist/sub/z.mp3", "B.MP3"}},
        {"*.mp3", 5, {".dot.mp3", ".dotfolder/d.mp3", "a.mp3", "album/x.mp3", "artist/sub/z.mp3",
                      "B.MP3", "hiddenfolder/h.mp3", "listed.mp3"}},
        {"*", 11, {"album/", "album/bonus/", "artist/", "artist/sub/", "empty/", "notes/"}},
        {"*", 15, {"a.mp3", "album/", "album/bonus/", "album/x.mp3", "album/y.wma", "artist/",
                   "artist/sub/", "artist/sub/z.mp3", "B.MP3", "c.txt", "empty/", "notes/",
                   "notes/readme.txt"}},
        {"*.*", 4 | 8, {"a.mp3", "B.MP3", "c.txt"}},
        {"*", 10 | ENUM_NO_FOLDERS_WITH_FILES, {"artist/", "empty/"}},
        {"*", 10 | ENUM_NO_FOLDERS_WITHOUT_FILES, {"album/", "notes/"}},
        {"*", 10 | ENUM_NO_FOLDERS_WITH_FOLDERS, {"empty/", "notes/"}},
        {"*", 10 | ENUM_NO_FOLDERS_WITHOUT_FOLDERS, {"album/", "artist/"}},
        // A folder refused by the filters is still descended into.
        {"*", 11 | ENUM_NO_FOLDERS_WITH_FILES, {"album/bonus/", "artist/", "empty/"}},
        // Contradicting filters leave no folder; files still come.
        {"*", 2 | 16 | 32, {}}, {"*", 2 | 64 | 128, {}},
        {"*", 14 | 16 | 32, {"a.mp3", "B.MP3", "c.txt"}}, {"*", 1 | 8, {}},
        // Without "*": bare names, exact, never recursive.
        {"a.mp3", 4, {"a.mp3"}}, {"A.MP3", 4, {}}, {"album", 2, {"album/"}},
        {"album", 15, {"album/"}}, {"album", 4, {}},
        {"album", 2 | ENUM_NO_FOLDERS_WITHOUT_FILES, {"album/"}},
        {"empty", 2 | ENUM_NO_FOLDERS_WITHOUT_FILES, {}}, {"listed.mp3", 4, {"listed.mp3"}},
        {"listed.mp3", 4 | 8, {}}, {"hiddenfolder", 2 | 8, {}}, {".dot.mp3", 4 | 8, {}},
        {"?.MP3", 4, {"a.mp3", "B.MP3"}}, {"missing", 6, {}}, {"", 6, {}}, {"nofolder/*", 15, {}}};
    // clang-format on
    for (const auto& [filter, flags, expected] : cases) {
        SCOPED_TRACE(std::string(filter) + " flags " + std::to_string(flags));
        EXPECT_EQ(List(filter, flags), expected);
    }
}

TEST_F(DiskEnumerate, CountersGrowAndResultsAppendAfterWhatTheArrayHolds) {
    int files = 5;
    int folders = 5;
    EXPECT_EQ(disk.Enumerate(nullptr, (root + "*").c_str(), 15, &files, &folders), 13);
    EXPECT_EQ(files, 5 + 3);
    EXPECT_EQ(folders, 5 + 4);
    EXPECT_EQ(disk.Enumerate(nullptr, nullptr, 15), 0);
    SStringArray result;
    result.Add("first");
    EXPECT_EQ(disk.Enumerate(&result, (root + "*.mp3").c_str(), ENUM_FILES | ENUM_NO_HIDDEN), 2);
    // GetEntries with only the empty folders.
    EXPECT_EQ(disk.GetEntries(&result, (root + "*").c_str(), true, true, false, true, false), 2);
    EXPECT_EQ(ToVector(result, root), (Names{"first", "a.mp3", "B.MP3", "album/bonus/", "empty/"}));
}

TEST_F(DiskEnumerate, LinksCountAsTheirTargetAndLoopsEnd) {
    TempDir other;
    other.Write("a.mp3", "x");
    std::string sub = other.MakeFolder("sub");
    fs::create_symlink(other.Path(), sub + "/loop");
    fs::create_symlink("../a.mp3", sub + "/link.mp3");
    fs::create_symlink("nowhere", sub + "/broken");
    SStringArray result;
    disk.Enumerate(&result, (other.Path() + "/*").c_str(), 7);
    EXPECT_EQ(ToVector(result, other.Path() + "/"),
              (Names{"a.mp3", "sub/", "sub/link.mp3", "sub/loop/"}));
}

TEST(DiskListingOrder, FoldsAsciiAndBreaksTiesByBytes) {
    TempDir tree;
    Names expected = {"10", "9", "[1]", "_x", "A", "a", "B", "b", "e", "Z", "é"};
    for (auto it = expected.rbegin(); it != expected.rend(); ++it) {
        tree.Write(*it, "");
    }
    SStringArray result;
    SDisk().Enumerate(&result, (tree.Path() + "/*").c_str(), ENUM_FILES);
    EXPECT_EQ(ToVector(result, tree.Path() + "/"), expected);
    EXPECT_LT(CompareListingNames("abc", "ABD"), 0);
    EXPECT_GT(CompareListingNames("a", "A"), 0);
    EXPECT_GT(CompareListingNames("ab", "A"), 0);
    EXPECT_EQ(CompareListingNames("same", "same"), 0);
}

TEST(DiskFileFilter, MatchesWithoutRegardToCase) {
    // clang-format off
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"*.MP3", "a.mp3", true}, {"*.mp3", "A.Mp3", true}, {"*.mp3", "a.mp3.txt", false},
        {"*.*", "README", true}, {"*.*", "a.b", true}, {"a*.*", "abc", true},
        {"b*.*", "abc", false}, {"?.txt", "é.txt", true}, {"??.txt", "é.txt", false},
        {"*a*b*c", "xaybzc", true}, {"*a*b*c", "xaybz", false}, {"ab", "AB", true},
        {"a*", "b", false}, {"*", "anything", true}, {"***x", "x", true}, {"Ä*", "ä", false}};
    // clang-format on
    for (auto [filter, name, matches] : cases) {
        EXPECT_EQ(MatchFileFilter(filter, name), matches) << filter << " " << name;
    }
    std::string longName(2000, 'a');
    EXPECT_FALSE(MatchFileFilter("*a*a*a*a*a*a*b", longName.c_str()));
}

TEST(DiskQueries, FilesFoldersAndSizes) {
    TempDir tree;
    std::string file = tree.Write("f.bin", "12345");
    std::string empty = tree.Write("e.bin", "");
    std::string folder = tree.MakeFolder("d");
    fs::create_symlink(file, tree / "link");
    const std::string none = tree / "none", link = tree / "link";
    SDisk disk;
    EXPECT_EQ((std::vector<bool>{disk.IsFile(file.c_str()), disk.IsFile(link.c_str()),
                                 disk.IsFile((file + "/").c_str()), disk.IsFile(folder.c_str()),
                                 disk.IsFile(none.c_str()), disk.IsFile("")}),
              (std::vector<bool>{true, true, false, false, false, false}));
    EXPECT_EQ(
        (std::vector<bool>{disk.IsFolder(folder.c_str()), disk.IsFolder((folder + "/").c_str()),
                           disk.IsFolder("/"), disk.IsFolder(file.c_str()), disk.IsFolder(nullptr),
                           disk.Exists(folder.c_str()), disk.Exists("")}),
        (std::vector<bool>{true, true, true, false, false, true, false}));
    EXPECT_EQ((std::vector<int>{disk.GetFileSize(file.c_str()), disk.GetFileSize(empty.c_str()),
                                disk.GetFileSize(folder.c_str()), disk.GetFileSize(none.c_str()),
                                disk.GetFileSize("")}),
              (std::vector<int>{5, 0, -1, -1, -1}));
}

TEST(DiskAttributes, HiddenByDotOrByTheHiddenFile) {
    TempDir tree;
    std::string song = tree.Write("song.mp3", "x");
    std::string other = tree.Write("other.mp3", "x");
    std::string dot = tree.Write(".dot", "x");
    tree.Write(".hidden", "kept\n");
    SDisk disk;
    EXPECT_EQ(disk.GetAttributes((tree / "none").c_str()), -1);
    EXPECT_TRUE(disk.IsHidden(dot.c_str()));
    EXPECT_FALSE(disk.IsHidden(song.c_str()));

    EXPECT_TRUE(disk.SetAttributes(song.c_str(), DISK_HIDDEN));
    EXPECT_TRUE(disk.SetAttributes(other.c_str(), DISK_HIDDEN));
    EXPECT_EQ(TempDir::Read(tree / ".hidden"), "kept\nsong.mp3\nother.mp3\n");
    EXPECT_TRUE(disk.IsHidden(song.c_str()));
    EXPECT_EQ(disk.Enumerate(nullptr, (tree / "*").c_str(), ENUM_FILES | ENUM_NO_HIDDEN), 0);

    EXPECT_TRUE(disk.SetAttributes(song.c_str(), 0));
    EXPECT_FALSE(disk.IsHidden(song.c_str()));
    EXPECT_EQ(TempDir::Read(tree / ".hidden"), "kept\nother.mp3\n");
    // A dot name cannot stop being hidden.
    EXPECT_FALSE(disk.SetAttributes(dot.c_str(), 0));
    EXPECT_FALSE(disk.SetAttributes((tree / "none").c_str(), DISK_HIDDEN));
}

TEST(DiskAttributes, LastHiddenNameRemovesTheFileAndReadOnlyFollowsWritePermission) {
    TempDir tree;
    std::string folder = tree.MakeFolder("Playlists");
    std::string file = tree.Write("f", "x");
    SDisk disk;
    EXPECT_TRUE(disk.SetAttributes((folder + "/").c_str(), DISK_HIDDEN));
    EXPECT_EQ(TempDir::Read(tree / ".hidden"), "Playlists\n");
    EXPECT_EQ(disk.GetAttributes(folder.c_str()), DISK_HIDDEN);
    EXPECT_TRUE(disk.SetAttributes(folder.c_str(), 0));
    EXPECT_FALSE(fs::exists(tree / ".hidden"));
    EXPECT_TRUE(disk.SetAttributes(file.c_str(), DISK_READONLY));
    EXPECT_EQ(disk.GetAttributes(file.c_str()), DISK_READONLY);
    EXPECT_EQ(fs::status(file).permissions() & fs::perms::owner_write, fs::perms::none);
    EXPECT_TRUE(disk.SetAttributes(file.c_str(), 0) && disk.GetAttributes(file.c_str()) == 0);
}

TEST(DiskTemporary, FolderAndNewNameFollowTmpdir) {
    TempDir tree;
    SDisk disk;
    SString name;
    {
        ScopedEnv tmpdir("TMPDIR", (tree.Path() + "//").c_str());
        EXPECT_EQ(std::string(disk.GetTempFolder().c_str()), tree.Path() + "/");
        name = disk.GetTempFileName();
        disk.SetTrailingSeparator(false);
        EXPECT_EQ(std::string(disk.GetTempFolder().c_str()), tree.Path());
    }
    EXPECT_EQ(std::string(SPath(name.c_str()).GetFolderPath().c_str()), tree.Path() + "/");
    EXPECT_EQ(std::string(SPath(name.c_str()).GetName().Left(3).c_str()), "tmp");
    EXPECT_EQ(disk.GetFileSize(name.c_str()), 0);
}

TEST(DiskChanges, MakeUniqueName) {
    TempDir tree;
    SDisk disk;
    std::string folder = tree.Path();
    EXPECT_EQ(std::string(disk.MakeUniqueName(folder.c_str(), "Playlist", "lst").c_str()),
              folder + "/Playlist.lst");
    EXPECT_EQ(std::string(disk.MakeUniqueName((folder + "/").c_str(), "x", nullptr).c_str()),
              folder + "/x");
    EXPECT_STREQ(disk.MakeUniqueName((folder + "/none").c_str(), "x", "y").c_str(), "");

    tree.Write("Playlist.lst", "");
    SString next = disk.MakeUniqueName(folder.c_str(), "Playlist", "lst");
    std::string name = SPath(next.c_str()).GetName().c_str();
    ASSERT_GT(name.size(), strlen("Playlist.lst"));
    EXPECT_EQ(name.substr(0, 8), "Playlist");
    EXPECT_EQ(name.substr(name.size() - 4), ".lst");
    EXPECT_FALSE(disk.Exists(next.c_str()));

    // Every number taken: nothing is free.
    for (int i = 0; i < 1000; ++i) {
        tree.Write("n" + std::to_string(i), "");
    }
    tree.Write("n", "");
    EXPECT_STREQ(disk.MakeUniqueName(folder.c_str(), "n", "").c_str(), "");
}

TEST(DiskChanges, RenameNeverReplaces) {
    TempDir tree;
    std::string a = tree.Write("a.lst", "A");
    std::string b = tree.Write("b.lst", "B");
    SDisk disk;
    EXPECT_FALSE(disk.Rename(a.c_str(), b.c_str()));
    EXPECT_EQ(TempDir::Read(a) + TempDir::Read(b), "AB");
    EXPECT_TRUE(disk.Rename(a.c_str(), (tree / "c.lst").c_str()));
    EXPECT_EQ(TempDir::Read(tree / "c.lst"), "A");
    EXPECT_FALSE(disk.Exists(a.c_str()));
    EXPECT_FALSE(disk.Rename(a.c_str(), (tree / "d.lst").c_str())); // a source that is gone
    EXPECT_FALSE(disk.Rename(tree.MakeFolder("f").c_str(), (tree / "g").c_str())); // a folder
}

TEST(DiskChanges, CreateFolder) {
    TempDir tree;
    SDisk disk;
    EXPECT_TRUE(disk.CreateFolder(tree.Path().c_str(), false)); // already there
    EXPECT_FALSE(disk.CreateFolder((tree / "a/b/c").c_str(), false));
    EXPECT_FALSE(fs::exists(tree / "a"));
    EXPECT_TRUE(disk.CreateFolder((tree / "a/b/c").c_str(), true));
    EXPECT_TRUE(disk.CreateFolder((tree / "a/b/c/").c_str(), true));
    EXPECT_TRUE(disk.IsFolder((tree / "a/b/c").c_str()));
    for (std::string bad :
         {tree.Write("file", "x") + "/sub", std::string(), std::string("http://x/y/")}) {
        EXPECT_FALSE(disk.CreateFolder(bad.c_str(), true)) << bad;
    }
}

TEST(DiskChanges, CreateFileKeepsWhatExistsUnlessAsked) {
    TempDir tree;
    SDisk disk;
    std::string file = tree / "deep/er/new.txt";
    EXPECT_FALSE(disk.CreateFile(file.c_str(), false, false, 0));
    EXPECT_TRUE(disk.CreateFile(file.c_str(), false, true, 0));
    EXPECT_EQ(disk.GetFileSize(file.c_str()), 0);
    tree.Write("deep/er/new.txt", "keep");
    EXPECT_FALSE(disk.CreateFile(file.c_str(), false, false, 0));
    EXPECT_EQ(TempDir::Read(file), "keep");
    static const char resource[] = "resource bytes";
    RegisterResource("BINARY", 990417, resource, sizeof(resource) - 1);
    EXPECT_TRUE(disk.CreateFile(file.c_str(), true, false, 990417));
    EXPECT_EQ(TempDir::Read(file), "resource bytes");
    EXPECT_FALSE(disk.CreateFile((tree / "x").c_str(), true, false, 990418));
    EXPECT_FALSE(disk.Exists((tree / "x").c_str()));
    EXPECT_TRUE(disk.CreateFile(file.c_str(), true, false, 0));
    EXPECT_EQ(disk.GetFileSize(file.c_str()), 0);
}

// The test main gives the process a home of its own, which is also its data
// folder, so the trash is "<home>/Trash". GLib reads both once, at their
// first use; a run that changed them before would be told here.
struct TestTrash {
    TestTrash() {
        const char* folder = getenv("HOME");
        home = folder != nullptr ? folder : "";
    }
    bool IsInUse() const {
        return !home.empty() && home == g_get_user_data_dir() && home == g_get_home_dir();
    }
    std::string home;
};

TestTrash& GetTestTrash() {
    static TestTrash trash;
    return trash;
}

TEST(DiskDelete, MovesToTheTrash) {
    TestTrash& trash = GetTestTrash();
    if (!trash.IsInUse()) {
        GTEST_SKIP() << "GLib already chose another data folder; the real trash is not touched";
    }
    TempDir tree;
    std::string file = tree.Write("gone.mp3", "x");
    tree.Write("album/in.mp3", "y");
    SDisk disk;
    EXPECT_TRUE(disk.Delete(file.c_str(), nullptr, false, false));
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(fs::exists(trash.home + "/Trash/files/gone.mp3"));
    EXPECT_TRUE(fs::exists(trash.home + "/Trash/info/gone.mp3.trashinfo"));
    EXPECT_TRUE(disk.Delete((tree / "album/").c_str(), nullptr, true, true));
    EXPECT_TRUE(fs::exists(trash.home + "/Trash/files/album/in.mp3"));
    for (const std::string& bad : {file, std::string("a*b"), std::string("/")}) {
        EXPECT_FALSE(disk.Delete(bad.c_str(), nullptr, false, false)) << bad;
    }
}

TEST(DiskDelete, WithoutATrashTheFileStays) {
    TestTrash& trash = GetTestTrash();
    struct stat shm;
    struct stat temp;
    if (!trash.IsInUse() || stat("/dev/shm", &shm) != 0 || stat("/tmp", &temp) != 0 ||
        shm.st_dev == temp.st_dev) {
        GTEST_SKIP() << "no separate system file system to try";
    }
    char pattern[] = "/dev/shm/melkora-XXXXXX";
    int fd = mkstemp(pattern);
    ASSERT_GE(fd, 0);
    close(fd);
    EXPECT_FALSE(SDisk().Delete(pattern, nullptr, false, false));
    EXPECT_TRUE(fs::exists(pattern));
    unlink(pattern);
}

TEST(DiskRun, StartsProgramsWithParametersInTheirFolder) {
    TempDir tree;
    std::string script = tree.Write("tool.sh", "#!/bin/sh\npwd > \"$1\"\n");
    fs::permissions(script, fs::perms::owner_all);
    SDisk disk;
    EXPECT_TRUE(disk.Run(script.c_str(), "\"out file.txt\"", true, true, 1));
    EXPECT_EQ(TempDir::Read(tree / "out file.txt"), tree.Path() + "\n");

    EXPECT_TRUE(disk.Run(script.c_str(), (tree / "later.txt").c_str(), false, false, 1));
    for (int i = 0; i < 500 && TempDir::Read(tree / "later.txt").empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_FALSE(TempDir::Read(tree / "later.txt").empty());

    EXPECT_FALSE(disk.Run((tree / "none.sh").c_str(), "", true, false, 1));
    EXPECT_FALSE(disk.Run(script.c_str(), "\"unclosed", true, false, 1));
    EXPECT_FALSE(disk.Explore(script.c_str(), 1));
    EXPECT_FALSE(disk.Explore((tree / "none").c_str(), 1));
}

// Runs a shell command and returns its exit status and what it printed.
int RunCommand(const std::string& command, std::string& output) {
    TempDir scratch;
    std::string log = scratch / "out.txt";
    int status = std::system((command + " > '" + log + "' 2>&1").c_str());
    output = TempDir::Read(log);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

uint32_t Read32(const std::string& bytes, size_t at) {
    uint32_t value = 0;
    for (int i = 3; i >= 0; --i) {
        value = (value << 8) | static_cast<unsigned char>(bytes.at(at + i));
    }
    return value;
}

class DiskZip : public ::testing::Test {
protected:
    void SetUp() override {
        std::string binary;
        for (int i = 0; i < 3000; ++i) {
            binary.push_back(static_cast<char>(i * 7));
        }
        files.Add(tree.Write("Book/empty.txt", "").c_str());
        files.Add(tree.Write("Book/a.htm", "<p>hello</p>\r\n").c_str());
        files.Add(tree.Write("Book/Imágenes/ñandú.jpg", binary).c_str());
        files.Add(tree.Write("Book/sub/deeper/b.bin", std::string("\0\1\2", 3)).c_str());
        skip = SPath((tree.Path() + "/").c_str()).GetDepth() - 1;
        archive = tree / "book.zip";
    }

    TempDir tree;
    SStringArray files;
    int skip = 0;
    std::string archive;
};

TEST_F(DiskZip, ArchiveReadsBackInUnzipAndPythonWithExactHeaders) {
    ASSERT_TRUE(SDisk().WriteZip(archive.c_str(), &files, skip));
    std::string output;
    EXPECT_EQ(RunCommand("unzip -t '" + archive + "'", output), 0) << output;
    EXPECT_NE(output.find("No errors detected"), std::string::npos) << output;

    std::string check =
        tree.Write("check.py", "import sys, zipfile\n"
                               "z = zipfile.ZipFile(sys.argv[1])\n"
                               "assert z.testzip() is None\n"
                               "for i in z.infolist():\n"
                               "    print(i.filename, i.file_size, i.compress_type,\n"
                               "          len(z.read(i)))\n");
    ASSERT_EQ(
        RunCommand("PYTHONIOENCODING=utf-8 python3 '" + check + "' '" + archive + "'", output), 0)
        << output;
    EXPECT_EQ(output, "Book/empty.txt 0 0 0\n"
                      "Book/a.htm 14 0 14\n"
                      "Book/Imágenes/ñandú.jpg 3000 0 3000\n"
                      "Book/sub/deeper/b.bin 3 0 3\n");

    // The empty file's local header, then the end record.
    std::string bytes = TempDir::Read(archive);
    ASSERT_GT(bytes.size(), 22u);
    EXPECT_EQ(Read32(bytes, 0), 0x04034b50u);
    EXPECT_EQ(Read32(bytes, 14) | Read32(bytes, 18) | Read32(bytes, 22), 0u); // CRC and sizes
    EXPECT_EQ(bytes.substr(30, 14), "Book/empty.txt");
    size_t end = bytes.size() - 22;
    EXPECT_EQ(Read32(bytes, end), 0x06054b50u);
    EXPECT_EQ(Read32(bytes, end + 8), 0x00040004u); // four entries on this disk and in all
    uint32_t directory = Read32(bytes, end + 16);
    EXPECT_EQ(Read32(bytes, directory), 0x02014b50u);
    EXPECT_EQ(directory + Read32(bytes, end + 12), end);
}

TEST_F(DiskZip, FailureLeavesNoArchiveAndKeepsAnOldOne) {
    SDisk disk;
    SStringArray none;
    EXPECT_FALSE(disk.WriteZip(archive.c_str(), &none, 0));
    EXPECT_FALSE(disk.WriteZip(archive.c_str(), nullptr, 0));
    files.Add((tree / "missing.txt").c_str());
    EXPECT_FALSE(disk.WriteZip(archive.c_str(), &files, skip));
    EXPECT_FALSE(fs::exists(archive));
    tree.Write("book.zip", "old");
    EXPECT_FALSE(disk.WriteZip(archive.c_str(), &files, skip));
    EXPECT_EQ(TempDir::Read(archive), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(tree.Path()), fs::directory_iterator()), 2);
}

// Edge cases of what goes in: a file of 24 MB (bytes that differ every
// block, so a wrong offset or CRC shows), empty files only, and names that
// need the UTF-8 flag beside plain ones. Each archive is tested by unzip
// and read back by Python's zipfile, every entry's bytes compared.
TEST_F(DiskZip, BigEmptyAndNonAsciiEntriesReadBackWhole) {
    std::string big(24 * 1024 * 1024, '\0');
    for (size_t i = 0; i < big.size(); ++i) {
        big[i] = static_cast<char>((i * 2654435761u) >> 13);
    }
    struct Case {
        const char* what;
        std::vector<std::pair<std::string, std::string>> files;
    };
    const Case cases[] = {
        {"big", {{"Book/big.bin", big}, {"Book/after.txt", "after"}}},
        {"empty only", {{"Book/a", ""}, {"Book/b", ""}}},
        {"names",
         {{"Book/Ελληνικά/日本語 ♫.jpg", "x"}, {"Book/plain.txt", "y"}, {"Book/émoji 🎵", ""}}},
    };
    std::string check = tree.Write("read.py", "import sys, zipfile, hashlib\n"
                                              "z = zipfile.ZipFile(sys.argv[1])\n"
                                              "assert z.testzip() is None\n"
                                              "for i in z.infolist():\n"
                                              "    d = z.read(i)\n"
                                              "    print(i.filename, i.flag_bits & 0x800, len(d),\n"
                                              "          hashlib.md5(d).hexdigest()[:8])\n");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TempDir dir;
        SStringArray list;
        std::string expected;
        for (const auto& [name, data] : c.files) {
            list.Add(dir.Write(name, data).c_str());
            bool high = false;
            for (unsigned char ch : name) {
                high = high || ch > 127;
            }
            expected +=
                name + " " + (high ? "2048" : "0") + " " + std::to_string(data.size()) + "\n";
        }
        std::string zip = dir / "out.zip";
        ASSERT_TRUE(
            SDisk().WriteZip(zip.c_str(), &list, SPath((dir.Path() + "/").c_str()).GetDepth() - 1));
        std::string output;
        EXPECT_EQ(RunCommand("unzip -tq '" + zip + "'", output), 0) << output;
        ASSERT_EQ(
            RunCommand("PYTHONIOENCODING=utf-8 python3 '" + check + "' '" + zip + "'", output), 0)
            << output;
        // The listing without the digests, then the digests against the data.
        std::string listing;
        size_t at = 0;
        int index = 0;
        while (at < output.size()) {
            size_t end = output.find('\n', at);
            std::string line = output.substr(at, end - at);
            size_t space = line.rfind(' ');
            listing += line.substr(0, space) + "\n";
            std::string digest = line.substr(space + 1);
            const std::string& data = c.files[static_cast<size_t>(index)].second;
            std::string wanted;
            std::string md5file = dir.Write("md5.in", data);
            RunCommand("md5sum '" + md5file + "' | cut -c1-8", wanted);
            EXPECT_EQ(digest + "\n", wanted) << line;
            ++index;
            at = end + 1;
        }
        EXPECT_EQ(listing, expected);
    }
}

TEST_F(DiskZip, NegativeSkipStoresTheWholePathWithoutItsRoot) {
    SStringArray one;
    one.Add(files.GetAt(1)->c_str());
    ASSERT_TRUE(SDisk().WriteZip(archive.c_str(), &one, -3));
    std::string bytes = TempDir::Read(archive);
    std::string expected = tree.Path().substr(1) + "/Book/a.htm";
    EXPECT_EQ(bytes.substr(30, expected.size()), expected);
}

} // namespace
