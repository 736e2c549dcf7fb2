#include "library/playlist.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <regex>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "foundation/file.h"
#include "foundation/random.h"
#include "support/temp_dir.h"

namespace {

using Names = std::vector<std::string>;

Names Texts(const SStringArray& array) {
    Names texts;
    for (const SString* item : array) {
        texts.push_back(item->c_str());
    }
    return texts;
}

SStringArray Names2Paths(const Names& names) {
    SStringArray paths;
    for (const std::string& name : names) {
        paths.Add(name.c_str());
    }
    return paths;
}

Names Parse(const std::string& bytes) {
    SStringArray entries;
    ParsePlaylist(bytes.data(), int(bytes.size()), entries);
    return Texts(entries);
}

TEST(PlaylistFormat, ReadsLinesEndedByCrLfOrABareLf) {
    const std::string MARK = "\xEF\xBB\xBF"; // UTF-8 byte order mark
    struct Case {
        std::string bytes;
        Names entries;
    } cases[] = {
        {"", {}},
        {"A\\a.mp3\r\nB\\b.mp3\r\n", {"A\\a.mp3", "B\\b.mp3"}},
        {"A\\a.mp3\r\nB\\b.mp3", {"A\\a.mp3", "B\\b.mp3"}}, // no final line end
        {"A\\a.mp3\nB\\b.mp3\nC\\c.mp3\n", {"A\\a.mp3", "B\\b.mp3", "C\\c.mp3"}}, // bare LF
        {"a\n\nb\r\n\r\nc", {"a", "b", "c"}},
        {"a\rb\r\n", {"ab"}},
        {"  \t a.mp3 \t\r\n\r\n \t \r\nb.mp3\r\n", {"a.mp3", "b.mp3"}},
        {"\r\n\r\n", {}},
        {"x\r\r\ny\r\n", {"x", "y"}},
        {MARK + "A\\a.mp3\r\n", {"A\\a.mp3"}}, // the byte order mark goes
        {MARK, {}},
        {MARK.substr(0, 2) + "A\r\n", {"\xC3\xAF\xC2\xBB" + std::string("A")}}, // half a mark: text
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Parse(c.bytes), c.entries) << c.bytes;
    }
}

TEST(PlaylistFormat, ReadsWindows1252AsUtf8) {
    // "Beyoncé\Déjà vu.mp3" written by a Windows program, and a curly quote.
    std::string bytes = "Beyonc\xE9\\D\xE9j\xE0 vu.mp3\r\n\x93Hi\x94.mp3\r\n";
    EXPECT_EQ(Parse(bytes), (Names{"Beyonc\xC3\xA9\\D\xC3\xA9j\xC3\xA0 vu.mp3",
                                   "\xE2\x80\x9CHi\xE2\x80\x9D.mp3"}));
    // Valid UTF-8 is taken as it stands.
    EXPECT_EQ(Parse("Beyonc\xC3\xA9.mp3\r\n"), (Names{"Beyonc\xC3\xA9.mp3"}));
}

TEST(PlaylistFormat, WritesEveryEntryWithCrLf) {
    SStringArray entries;
    EXPECT_EQ(FormatPlaylist(entries), "");
    entries.Add("A\\a.mp3");
    entries.Add("b.mp3");
    EXPECT_EQ(FormatPlaylist(entries), "A\\a.mp3\r\nb.mp3\r\n");
}

class PlaylistStoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir.MakeFolder("Playlists");
        store.SetRoot(dir.Path().c_str());
    }
    std::string ListFile(const std::string& name) const {
        return TempDir::Read(dir / ("Playlists/" + name + ".lst"));
    }
    TempDir dir;
    PPlaylistStore store;
};

TEST_F(PlaylistStoreTest, EmptyFolderGetsANewPlaylistSelected) {
    EXPECT_TRUE(store.RefreshPlaylists());
    EXPECT_EQ(Texts(store.GetNames()), (Names{"Playlist"}));
    EXPECT_EQ(store.GetCurrentName(), "Playlist");
    EXPECT_TRUE(std::filesystem::exists(dir / "Playlists/Playlist.lst"));
    EXPECT_EQ(std::filesystem::file_size(dir / "Playlists/Playlist.lst"), 0u);
    EXPECT_EQ(store.GetCountText(), "0 file");
    dir.Write("Playlists/Playlist.lst", "a\r\n");
    store.LoadPlaylist();
    EXPECT_EQ(store.GetCountText(), "1 file");
    dir.Write("Playlists/Playlist.lst", "a\r\nb\r\n");
    store.LoadPlaylist();
    EXPECT_EQ(store.GetCountText(), "2 files");
}

TEST_F(PlaylistStoreTest, WithoutFirstRunNothingIsMade) {
    EXPECT_FALSE(store.RefreshPlaylists(false));
    EXPECT_FALSE(std::filesystem::exists(dir / "Playlists/Playlist.lst"));
}

TEST_F(PlaylistStoreTest, NamesSortedWithoutCaseAndOpenNameKept) {
    for (const char* name : {"b", "A", "c", "Zed", "a"}) {
        dir.Write(std::string("Playlists/") + name + ".lst", "");
    }
    dir.Write("Playlists/notes.txt", "");
    dir.Write("Playlists/Sub/inner.lst", "");
    dir.Write("Playlists/c.lst", "x.mp3\r\n");
    store.RefreshPlaylists();
    EXPECT_EQ(Texts(store.GetNames()), (Names{"A", "a", "b", "c", "Zed"}));
    EXPECT_EQ(store.GetCurrentName(), "A");
    ASSERT_TRUE(store.SelectPlaylist("c"));
    ASSERT_TRUE(store.LoadPlaylist());
    dir.Write("Playlists/0.lst", "");
    store.RefreshPlaylists();
    EXPECT_EQ(store.GetCurrentName(), "c");
    EXPECT_EQ(Texts(store.GetEntries()), (Names{"x.mp3"}));
    EXPECT_FALSE(store.SelectPlaylist("C"));
    EXPECT_FALSE(store.LoadPlaylist("unknown"));
    EXPECT_EQ(store.GetEntryCount(), 0);
}

TEST_F(PlaylistStoreTest, AppendCutsTheRootAndRefusesPathsOutsideIt) {
    store.RefreshPlaylists();
    std::string parent = std::filesystem::path(dir.Path()).parent_path().string();
    std::string linked =
        parent + "/" + std::filesystem::path(dir.Path()).filename().string() + "-link";
    std::filesystem::create_directory_symlink(dir.Path(), linked);
    struct Case {
        std::string path;
        std::string entry; // "" for refused
    } cases[] = {
        {dir / "Artist/Album/01 Song.mp3", "Artist\\Album\\01 Song.mp3"},
        {dir / "top.mp3", "top.mp3"},
        {dir / "./A//b.mp3", "A\\b.mp3"},
        {"/a/b/c/d/Jazz/e.mp3", ""},      // as deep as the root, elsewhere
        {parent + "/Other/x.mp3", ""},    // beside the root
        {dir.Path() + "2/x.mp3", ""},     // a name that begins like the root
        {dir / "A/../../escape.mp3", ""}, // climbs out
        {dir / "A/../b.mp3", ""},         // ".." is refused even inside
        {dir.Path(), ""},                 // the root itself
        {"relative/x.mp3", ""},
        {"", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(store.GetEntryFor(c.path.c_str()), c.entry.c_str()) << c.path;
    }
    SStringArray files;
    files.Add((dir / "Artist/Album/01 Song.mp3").c_str());
    files.Add("/a/b/c/d/Jazz/e.mp3");
    files.Add((dir / "top.mp3").c_str());
    EXPECT_FALSE(store.AppendFiles(files)); // the outsider is left out
    ASSERT_TRUE(store.SavePlaylist());
    EXPECT_EQ(ListFile("Playlist"), "Artist\\Album\\01 Song.mp3\r\ntop.mp3\r\n");
    EXPECT_EQ(store.GetEntryPath(0), (dir / "Artist/Album/01 Song.mp3").c_str());
    EXPECT_EQ(store.GetEntryPath(2), "");

    // A root given through a link takes paths through either name.
    PPlaylistStore viaLink;
    viaLink.SetRoot(linked.c_str());
    EXPECT_EQ(viaLink.GetEntryFor((linked + "/A/b.mp3").c_str()), "A\\b.mp3");
    EXPECT_EQ(viaLink.GetEntryFor((dir / "A/b.mp3").c_str()), "A\\b.mp3");
    std::filesystem::remove(linked);
}

// A byte order mark is dropped on reading and so never written back; the
// saved file keeps its mode and owner, and the long names a file system
// allows still save.
TEST_F(PlaylistStoreTest, SaveKeepsModeOwnerAndLongNamesAndDropsTheByteOrderMark) {
    std::string path = dir.Write("Playlists/P.lst", "\xEF\xBB\xBF"
                                                    "A\\a.mp3\r\nb.mp3\r\n");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    bool isRoot = geteuid() == 0;
    if (isRoot) {
        ASSERT_EQ(chown(path.c_str(), 4242, 4243), 0);
    }
    store.RefreshPlaylists(false);
    EXPECT_EQ(Texts(store.GetEntries()), (Names{"A\\a.mp3", "b.mp3"}));
    store.SetSelection(1);
    ASSERT_TRUE(store.RemoveSelected());
    EXPECT_EQ(ListFile("P"), "A\\a.mp3\r\n");
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    if (isRoot) {
        EXPECT_EQ(info.st_uid, 4242u);
        EXPECT_EQ(info.st_gid, 4243u);
    }

    for (size_t length : {244u, 248u, 251u}) {
        std::string name(length, 'n');
        dir.Write("Playlists/" + name + ".lst", "x.mp3\r\n");
        store.RefreshPlaylists(false);
        ASSERT_TRUE(store.SelectPlaylist(name.c_str())) << length;
        ASSERT_TRUE(store.LoadPlaylist()) << length;
        SStringArray files;
        files.Add((dir / "y.mp3").c_str());
        EXPECT_TRUE(store.AppendFiles(files));
        EXPECT_TRUE(store.SavePlaylist()) << length;
        EXPECT_EQ(ListFile(name), "x.mp3\r\ny.mp3\r\n") << length;
    }
}

// The temporary files of killed saves go at the next save; a FIFO named
// like a playlist is no playlist (reading it would block).
TEST_F(PlaylistStoreTest, SaveRemovesLeftTemporaryFilesAndLoadSkipsAFifo) {
    dir.Write("Playlists/P.lst", "a\r\n");
    std::string left = dir.Write("Playlists/.lst-k1ll3d", "half");
    std::string other = dir.Write("Playlists/.lst-notours", "keep");
    ASSERT_EQ(mkfifo((dir / "Playlists/Pipe.lst").c_str(), 0644), 0);
    store.RefreshPlaylists(false);
    ASSERT_TRUE(store.SelectPlaylist("P"));
    ASSERT_TRUE(store.SavePlaylist());
    EXPECT_FALSE(std::filesystem::exists(left));
    EXPECT_TRUE(std::filesystem::exists(other));
    EXPECT_EQ(Texts(store.GetNames()), (Names{"P"})); // no FIFO among the playlists
    EXPECT_FALSE(store.LoadPlaylist("Pipe"));
    EXPECT_FALSE(store.SavePlaylist("Pipe"));
    EXPECT_TRUE(std::filesystem::is_fifo(dir / "Playlists/Pipe.lst"));
}

// Linear reading: a million entries and one line of 10 MB read whole. The
// time is measured by bench/playlist; here the test only has to finish.
TEST(PlaylistFormat, ReadsAMillionEntriesAndATenMegabyteLine) {
    std::string bytes;
    bytes.reserve(30u << 20);
    for (int i = 0; i < 1000000; ++i) {
        bytes += "A\\" + std::to_string(i) + ".mp3\r\n";
    }
    SStringArray entries;
    ParsePlaylist(bytes.data(), int(bytes.size()), entries);
    ASSERT_EQ(entries.GetCount(), 1000000);
    EXPECT_EQ(entries.GetText(999999), "A\\999999.mp3");
    bytes.assign(10u << 20, 'x');
    bytes += "\r\nlast\n"; // a lone LF inside the last line is dropped
    SStringArray line;
    ParsePlaylist(bytes.data(), int(bytes.size()), line);
    ASSERT_EQ(line.GetCount(), 2);
    EXPECT_EQ(line.GetAt(0)->GetLength(), 10 << 20);
    EXPECT_EQ(line.GetText(1), "last");
}

TEST_F(PlaylistStoreTest, SaveAddsTheMissingTerminatorAndDropsBlankLines) {
    dir.Write("Playlists/P.lst", " a.mp3 \r\n \t \r\n\tb.mp3");
    store.RefreshPlaylists();
    ASSERT_TRUE(store.SavePlaylist());
    EXPECT_EQ(ListFile("P"), "a.mp3\r\nb.mp3\r\n");
    EXPECT_FALSE(store.SavePlaylist("Other"));
    EXPECT_FALSE(std::filesystem::exists(dir / "Playlists/Other.lst"));
}

TEST_F(PlaylistStoreTest, MovesAtTheEdgesWriteNothing) {
    dir.Write("Playlists/P.lst", "a\r\nb\r\nc");
    store.RefreshPlaylists();
    ASSERT_TRUE(store.SetSelection(0));
    EXPECT_FALSE(store.MoveUp());
    ASSERT_TRUE(store.SetSelection(2));
    EXPECT_FALSE(store.MoveDown());
    EXPECT_EQ(ListFile("P"), "a\r\nb\r\nc"); // untouched, still without its terminator
    store.SetSelection(-1);
    EXPECT_FALSE(store.MoveUp());
    EXPECT_FALSE(store.MoveDown());
    store.SetSelection(1);
    EXPECT_TRUE(store.MoveUp());
    EXPECT_EQ(store.GetSelection(), 0);
    EXPECT_EQ(ListFile("P"), "b\r\na\r\nc\r\n");
    EXPECT_TRUE(store.MoveDown());
    EXPECT_TRUE(store.MoveDown());
    EXPECT_EQ(store.GetSelection(), 2);
    EXPECT_EQ(ListFile("P"), "a\r\nc\r\nb\r\n");
}

TEST_F(PlaylistStoreTest, RemoveSelectsTheFollowingRowOrNone) {
    std::string song = dir.Write("song.mp3", "x");
    dir.Write("Playlists/P.lst", "a\r\nsong.mp3\r\nc\r\n");
    store.RefreshPlaylists();
    store.SetSelection(1);
    EXPECT_TRUE(store.RemoveSelected());
    EXPECT_EQ(store.GetSelection(), 1);
    EXPECT_EQ(ListFile("P"), "a\r\nc\r\n");
    EXPECT_TRUE(std::filesystem::exists(song)); // the file itself stays
    EXPECT_TRUE(store.RemoveSelected());
    EXPECT_EQ(store.GetSelection(), -1); // the last row went: no selection
    EXPECT_FALSE(store.RemoveSelected());
    EXPECT_EQ(ListFile("P"), "a\r\n");
}

TEST_F(PlaylistStoreTest, CreateWhileTakenAddsARandomNumber) {
    store.RefreshPlaylists();
    SeedRandom(3);
    SString second = store.CreatePlaylist();
    EXPECT_TRUE(std::regex_match(second.c_str(), std::regex("Playlist[0-9]+"))) << second.c_str();
    EXPECT_EQ(store.GetCurrentName(), second);
    EXPECT_EQ(store.GetNames().GetCount(), 2);
}

TEST_F(PlaylistStoreTest, RenameMovesTheFileAndSelectsIt) {
    dir.Write("Playlists/Old.lst", "a\r\n");
    dir.Write("Playlists/Taken.lst", "");
    store.RefreshPlaylists();
    ASSERT_TRUE(store.SelectPlaylist("Old"));
    EXPECT_FALSE(store.RenamePlaylist(""));
    EXPECT_FALSE(store.RenamePlaylist("Taken"));
    EXPECT_FALSE(store.RenamePlaylist("bad/name"));
    ASSERT_TRUE(store.RenamePlaylist("New"));
    EXPECT_EQ(store.GetCurrentName(), "New");
    EXPECT_EQ(Texts(store.GetEntries()), (Names{"a"}));
    EXPECT_FALSE(std::filesystem::exists(dir / "Playlists/Old.lst"));
    EXPECT_EQ(ListFile("Taken"), "");
}

TEST_F(PlaylistStoreTest, AnUpperCaseExtensionKeepsItsFileThroughEveryChange) {
    dir.Write("Playlists/Mix.LST", "a\r\n");
    store.RefreshPlaylists();
    EXPECT_EQ(Texts(store.GetNames()), (Names{"Mix"}));
    EXPECT_EQ(Texts(store.GetEntries()), (Names{"a"}));
    store.AppendFiles(Names2Paths({dir / "b.mp3"}));
    ASSERT_TRUE(store.SavePlaylist());
    EXPECT_EQ(TempDir::Read(dir / "Playlists/Mix.LST"), "a\r\nb.mp3\r\n");
    EXPECT_FALSE(std::filesystem::exists(dir / "Playlists/Mix.lst"));
    ASSERT_TRUE(store.RenamePlaylist("Party"));
    EXPECT_EQ(TempDir::Read(dir / "Playlists/Party.LST"), "a\r\nb.mp3\r\n");
    EXPECT_EQ(store.GetEntryCount(), 2);
    ASSERT_TRUE(store.DeletePlaylist());
    EXPECT_FALSE(std::filesystem::exists(dir / "Playlists/Party.LST"));
}

TEST_F(PlaylistStoreTest, ADeletedPlaylistGoesToTheTrash) {
    dir.Write("Playlists/Old.lst", "a\r\n");
    dir.Write("Playlists/Kept.lst", "");
    store.RefreshPlaylists();
    ASSERT_TRUE(store.SelectPlaylist("Old"));
    ASSERT_TRUE(store.DeletePlaylist());
    // The test main's home holds the trash.
    std::string trashed = std::string(getenv("HOME")) + "/Trash/files/Old.lst";
    EXPECT_EQ(TempDir::Read(trashed), "a\r\n");
    EXPECT_EQ(Texts(store.GetNames()), (Names{"Kept"}));
}

TEST_F(PlaylistStoreTest, DeletingTheLastLeavesAFreshPlaylist) {
    dir.Write("Playlists/Only.lst", "a\r\n");
    dir.Write("Playlists/Second.lst", "b\r\n");
    store.RefreshPlaylists();
    ASSERT_TRUE(store.DeletePlaylist());
    EXPECT_EQ(store.GetCurrentName(), "Second");
    EXPECT_EQ(Texts(store.GetEntries()), (Names{"b"}));
    ASSERT_TRUE(store.DeletePlaylist());
    EXPECT_EQ(Texts(store.GetNames()), (Names{"Playlist"}));
    EXPECT_EQ(store.GetEntryCount(), 0);
    EXPECT_TRUE(std::filesystem::exists(dir / "Playlists/Playlist.lst"));
}

TEST_F(PlaylistStoreTest, PlayAllShufflesWithTheGenerator) {
    dir.Write("Playlists/P.lst", "A\\1.mp3\r\nA\\2.mp3\r\nA\\3.mp3\r\nA\\4.mp3\r\n");
    store.RefreshPlaylists();
    SStringArray inOrder = store.GetPlayList(false);
    EXPECT_EQ(inOrder.GetText(1), (dir / "A/2.mp3").c_str());
    SeedRandom(1); // draws 41, 18467, 6334, 26500: places 0, 2, 1, 3
    SStringArray shuffled = store.GetPlayList(true);
    EXPECT_EQ(Texts(shuffled),
              (Names{dir / "A/1.mp3", dir / "A/3.mp3", dir / "A/2.mp3", dir / "A/4.mp3"}));
}

// A child saves two different versions in turn as fast as it can and is
// killed at random moments: the file must always read as one of them.
TEST_F(PlaylistStoreTest, KillDuringSaveLeavesTheOldOrTheNewFile) {
    std::string oldBytes;
    std::string newBytes;
    for (int i = 0; i < 20000; ++i) {
        oldBytes += "Old\\" + std::to_string(i) + ".mp3\r\n";
        newBytes += "New\\Folder\\" + std::to_string(i) + ".mp3\r\n";
    }
    std::string path = dir.Write("Playlists/P.lst", oldBytes);
    for (int round = 0; round < 30; ++round) {
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            PPlaylistStore saver;
            saver.SetRoot(dir.Path().c_str());
            saver.RefreshPlaylists(false);
            SStringArray oldEntries;
            SStringArray newEntries;
            ParsePlaylist(oldBytes.data(), int(oldBytes.size()), oldEntries);
            ParsePlaylist(newBytes.data(), int(newBytes.size()), newEntries);
            for (int i = 0;; ++i) {
                // A whole file first, so that each save below removes one
                // line from a whole file, whatever an earlier kill left.
                const SStringArray& next = i % 2 == 0 ? newEntries : oldEntries;
                SString bytes = FormatPlaylist(next);
                WriteFileAtomic(path.c_str(), bytes.c_str(), bytes.GetLength());
                saver.SetRoot(dir.Path().c_str());
                saver.RefreshPlaylists(false);
                // Loaded, changed, saved: the panel's own steps.
                saver.SetSelection(0);
                saver.RemoveSelected();
            }
        }
        usleep(useconds_t(2000 + round * 1500));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        std::string now = TempDir::Read(path);
        bool whole = now == oldBytes || now == newBytes ||
                     now == oldBytes.substr(oldBytes.find("\r\n") + 2) ||
                     now == newBytes.substr(newBytes.find("\r\n") + 2);
        ASSERT_TRUE(whole) << "round " << round << ": " << now.size() << " bytes";
    }
    // What a killed save leaves is a hidden temporary file, never a playlist.
    store.RefreshPlaylists(false);
    EXPECT_EQ(Texts(store.GetNames()), (Names{"P"}));
}

} // namespace
