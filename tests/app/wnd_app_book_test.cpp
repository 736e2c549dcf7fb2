// The main window's Book commands on the headless platform: Make Book on
// its worker behind the progress window, Send Book handing the archive to
// a recording xdg-email without waiting for it, and the archives removed
// at their time or at the end.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "app/book_zips.h"
#include "main_window_fixture.h"
#include "support/message_pump.h"

namespace fs = std::filesystem;

namespace {

class BookCommandsTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        dir.Write("collection/Rock/Artist/Album/01 One.mp3", "x");
        dir.Write("collection/Jazz/Band/Live/01 Two.mp3", "x");
        // A mail client that records its arguments and a copy of the archive.
        record = dir / "record";
        std::string script = "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + record +
                             ".part'\nwhile [ $# -gt 1 ]; do [ \"$1\" = --attach ] && cp \"$2\" '" +
                             record + ".zip'; shift; done\nmv '" + record + ".part' '" + record +
                             "'\n";
        std::string program = dir.Write("bin/xdg-email", script);
        chmod(program.c_str(), 0755);
        oldPath = getenv("PATH") != nullptr ? getenv("PATH") : "";
        setenv("PATH", (dir.Path() + "/bin:" + oldPath).c_str(), 1);
        hadTemp = getenv("TMPDIR") != nullptr;
        oldTemp = hadTemp ? getenv("TMPDIR") : "";
        setenv("TMPDIR", dir.MakeFolder("tmp").c_str(), 1);
    }
    void TearDown() override {
        window.reset();
        setenv("PATH", oldPath.c_str(), 1);
        if (hadTemp) {
            setenv("TMPDIR", oldTemp.c_str(), 1);
        } else {
            unsetenv("TMPDIR");
        }
        MainWindowFixture::TearDown();
    }
    int ZipsInTemp() {
        int count = 0;
        for (const auto& entry : fs::directory_iterator(dir / "tmp")) {
            count += entry.path().extension() == ".zip" ? 1 : 0;
        }
        return count;
    }

    std::string record;
    std::string oldPath;
    std::string oldTemp;
    bool hadTemp = false;
};

TEST_F(BookCommandsTest, SendBookWithoutABookDoesNothingAndWithOneMailsItsArchive) {
    PWndApp& app = Start();
    app.RunCommand(CMD_SEND_BOOK);
    PumpFor(300);
    EXPECT_FALSE(fs::exists(record));
    EXPECT_EQ(ZipsInTemp(), 0);

    app.RunCommand(CMD_MAKE_BOOK);
    ASSERT_TRUE(fs::exists(root + "/Book.htm"));
    EXPECT_TRUE(fs::exists(root + "/Book/book0.png"));
    // Made again: the command is free once the first run ended.
    fs::remove(root + "/Book.htm");
    app.RunCommand(CMD_OPEN_BOOK);
    ASSERT_TRUE(fs::exists(root + "/Book.htm"));

    app.RunCommand(CMD_SEND_BOOK);
    ASSERT_TRUE(PumpUntil([&] { return fs::exists(record); }));
    std::ifstream in(record);
    std::stringstream text;
    text << in.rdbuf();
    std::string args = text.str();
    EXPECT_EQ(args.rfind("--utf8\n--subject\nMelkora Browser BOOK\n--attach\n" + dir.Path() +
                             "/tmp/book ",
                         0),
              0u)
        << args;
    EXPECT_NE(args.find(".zip\n"), std::string::npos) << args;
    EXPECT_GT(fs::file_size(record + ".zip"), 100u);
    // Kept while the mail client may read it; gone with the program.
    PumpFor(200);
    EXPECT_EQ(ZipsInTemp(), 1);
    window.reset();
    EXPECT_EQ(ZipsInTemp(), 0);
}

TEST_F(BookCommandsTest, ArchivesGoAtTheirTimeAtOnceOrAtTheEnd) {
    PWndApp& app = Start();
    std::string now = dir.Write("tmp/now.zip", "z");
    std::string later = dir.Write("tmp/later.zip", "z");
    std::string waiting = dir.Write("tmp/waiting.zip", "z");
    {
        PBookZipSweeper zips;
        SRect none{0, 0, 1, 1};
        ASSERT_TRUE(zips.Create("", 0, 0, &none, app.GetHandle()));
        zips.Add(SString(now.c_str()), 0);
        EXPECT_FALSE(fs::exists(now));
        zips.Add(SString(waiting.c_str()), -1);
        zips.Add(SString(later.c_str()), -1);
        zips.Add(SString(later.c_str()), 1); // its mail command ended
        EXPECT_EQ(zips.GetPendingCount(), 2);
        ASSERT_TRUE(PumpUntil([&] { return !fs::exists(later); }));
        PumpFor(1200);
        EXPECT_TRUE(fs::exists(waiting));
        EXPECT_EQ(zips.GetPendingCount(), 1);
    }
    EXPECT_FALSE(fs::exists(waiting));
}

// The Book's links as the main window carries them out: a song alone, a
// song added (an empty queue starts it), an album's whole tree, an album
// with no media (the queue empties and stops), a folder opened.
TEST_F(BookCommandsTest, BookLinksPlayQueueAndOpenThroughTheMainWindow) {
    std::string tone = std::string(MELKORA_TEST_MEDIA) + "/tone1s.wav";
    std::string one = root + "/Rock/Artist/Album/01 A.wav";
    std::string two = root + "/Rock/Artist/Album/Deeper/02 B.wav";
    fs::create_directories(root + "/Rock/Artist/Album/Deeper");
    fs::copy_file(tone, one);
    fs::copy_file(tone, two);
    PWndApp& app = Start();
    PBookHost& host = app.GetBookHost();
    EXPECT_EQ(host.GetBookRoot(), SString((root + "/").c_str()));
    PPlayQueue& queue = app.GetQueue();

    ASSERT_TRUE(host.PlayBookSong(two.c_str()));
    EXPECT_EQ(queue.GetCount(), 1);
    EXPECT_EQ(queue.GetIndex(), 0);
    ASSERT_TRUE(host.QueueBookSong(one.c_str()));
    EXPECT_EQ(queue.GetCount(), 2);
    EXPECT_EQ(queue.GetIndex(), 0); // what plays goes on
    EXPECT_EQ(*queue.GetEntries().GetAt(0), SString(two.c_str()));

    // The whole tree: the fixture's "01 One.mp3" beside the two sounds.
    ASSERT_TRUE(host.PlayBookAlbum((root + "/Rock/").c_str()));
    EXPECT_EQ(queue.GetCount(), 3);
    EXPECT_EQ(queue.GetIndex(), 0);
    EXPECT_FALSE(host.PlayBookAlbum((root + "/Jazz/").c_str()));
    EXPECT_EQ(queue.GetCount(), 0);
    EXPECT_EQ(queue.GetIndex(), -1);

    ASSERT_TRUE(host.QueueBookSong(one.c_str()));
    EXPECT_EQ(queue.GetCount(), 1);
    EXPECT_EQ(queue.GetIndex(), 0);
    queue.StopPlaying();

    ASSERT_TRUE(host.OpenBookFolder((root + "/Rock/").c_str(), "Artist"));
    EXPECT_EQ(app.GetCurrentFolder(), SString((root + "/Rock/").c_str()));
    int row = app.GetView().GetSelectedRow();
    ASSERT_GE(row, 0);
    EXPECT_EQ(app.GetView().GetRows()[static_cast<size_t>(row)].name, SString("Artist"));
    EXPECT_FALSE(host.OpenBookFolder((root + "/Missing/").c_str(), "x"));
}

} // namespace
