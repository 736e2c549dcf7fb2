#include "app/player.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "support/fifo_watch.h"
#include "support/http_server.h"
#include "support/message_pump.h"
#include "support/temp_dir.h"
#include "toolkit/toolkit_fixture.h"

namespace {

std::string Media(const char* name) {
    return std::string(MELKORA_TEST_MEDIA) + "/" + name;
}

// The program's player, counting the opens the queue asks for.
class CountingMedia : public PMedia {
public:
    using PMedia::OpenMedia;
    bool OpenMedia(const char* address) override {
        ++opens;
        return PMedia::OpenMedia(address);
    }
    void OnSkipped(const char* path) override { skipped.push_back(path); }
    void OnNowPlayingCleared() override { ++cleared; }
    int opens = 0;
    int cleared = 0;
    std::vector<std::string> skipped;
};

class PlayerQueueTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        media.SetFakeSinks(true);
        SRect rect = Rect(0, 0, 320, 240);
        ASSERT_TRUE(media.Create("video", 0, 0, &rect, 0));
        media.SetQueue(&queue);
    }
    void TearDown() override {
        media.SetQueue(nullptr);
        media.Destroy();
        ToolkitTest::TearDown();
    }
    bool Play(std::initializer_list<std::string> paths) {
        SStringArray list;
        for (const std::string& path : paths) {
            list.Add(path.c_str());
        }
        return queue.SetPlayQueue(&list);
    }

    TempDir dir;
    CountingMedia media;
    PPlayQueue queue{media};
};

TEST_F(PlayerQueueTest, FilesThatDoNotOpenAreSkipped) {
    std::string damaged = dir.Write("damaged.mp3", std::string(3000, '\x55'));
    std::string missing = dir / "missing.ogg";
    ASSERT_TRUE(Play({missing, damaged, Media("tone1s.wav")}));
    EXPECT_EQ(queue.GetIndex(), 2);
    EXPECT_EQ(media.skipped, (std::vector<std::string>{missing, damaged}));
    EXPECT_TRUE(media.IsPlaying());
}

TEST_F(PlayerQueueTest, TheEndOfATrackPlaysTheNextAndTheLastStops) {
    ASSERT_TRUE(Play({Media("tone1s.ogg"), Media("tone1s.mp3")}));
    ASSERT_TRUE(PumpUntil([&] { return queue.GetIndex() == 1; }));
    EXPECT_STREQ(media.GetMediaPath().GetFullPath().c_str(), Media("tone1s.mp3").c_str());
    ASSERT_TRUE(PumpUntil([&] { return queue.GetIndex() == -1; }));
    // Emptied, not only stopped.
    EXPECT_EQ(queue.GetCount(), 0);
    EXPECT_FALSE(media.IsMediaOpen());
    EXPECT_EQ(media.cleared, 1);
    EXPECT_EQ(media.opens, 2);
}

TEST_F(PlayerQueueTest, RepeatReplaysOneEntryWithoutOpeningAgainAndRestartsSeveral) {
    queue.SetRepeat(true);
    ASSERT_TRUE(Play({Media("tone1s.wav")}));
    EXPECT_LT(media.GetPosition(), 200u);
    // Past the end of the first play: it has started again from 0.
    PumpUntil([&] { return media.GetPosition() > 900; });
    ASSERT_TRUE(PumpUntil([&] { return media.GetPosition() > 0 && media.GetPosition() < 500; }));
    EXPECT_TRUE(media.IsPlaying());
    EXPECT_EQ(queue.GetIndex(), 0);
    EXPECT_EQ(media.opens, 1);

    ASSERT_TRUE(Play({Media("tone1s.wav"), Media("tone1s.ogg")}));
    ASSERT_TRUE(PumpUntil([&] { return queue.GetIndex() == 1; }));
    ASSERT_TRUE(PumpUntil([&] { return queue.GetIndex() == 0; }));
    EXPECT_EQ(media.opens, 4);
    EXPECT_EQ(queue.GetCount(), 2);
}

TEST_F(PlayerQueueTest, TheShutdownCommandRunsAtTheEndOnlyWithTheFlag) {
    for (bool flag : {false, true}) {
        std::string marker = dir / (flag ? "with" : "without");
        setenv("MELKORA_SHUTDOWN_COMMAND", ("touch " + marker).c_str(), 1);
        queue.SetShutdown(flag);
        // The last entry fails to open: the queue ends there.
        ASSERT_TRUE(Play({Media("tone1s.wav"), dir / "gone.mp3"}));
        bool ended = PumpUntil([&] { return queue.GetIndex() == -1; });
        unsetenv("MELKORA_SHUTDOWN_COMMAND");
        ASSERT_TRUE(ended);
        EXPECT_EQ(std::filesystem::exists(marker), flag) << flag;
    }
}

TEST_F(PlayerQueueTest, ARadioFilePlaysItsStreamFromTheServer) {
    TestHttpServer server;
    // As a radio station sends it: no length, the stream ends when it ends.
    server.Route("/radio.ogg", TestHttpServer::Ok(TempDir::Read(Media("tone5s.ogg")), false));
    ASSERT_TRUE(server.Start());
    std::string asx =
        dir.Write("Radio.asx", "<ASX version=\"3.0\">\r\n<Entry>\r\n<Ref href=\"" +
                                   server.Url("/radio.ogg") + "\"/>\r\n</Entry>\r\n</ASX>\r\n");
    ASSERT_TRUE(Play({asx}));
    EXPECT_EQ(queue.GetIndex(), 0);
    EXPECT_STREQ(media.GetMediaPath().GetFullPath().c_str(), server.Url("/radio.ogg").c_str());
    EXPECT_TRUE(PumpUntil([&] { return media.GetPosition() > 300; }));
    ASSERT_FALSE(server.Targets().empty());
    EXPECT_EQ(server.Targets().front(), "/radio.ogg");
}

// A click on the main window during an open is held until the open is done
// and carried out before OpenMedia returns; here it plays another queue.
TEST_F(PlayerQueueTest, AClickHeldDuringAnOpenThatPlaysAnotherQueueTakesOver) {
    class MainWindow : public SWnd {
    public:
        explicit MainWindow(std::function<void()> onClick) : onClick(std::move(onClick)) {}
        LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
            if (message == WM_USER + 1) {
                onClick();
                return 0;
            }
            return SWnd::OnMessage(message, wParam, lParam);
        }
        std::function<void()> onClick;
    };
    std::string other = Media("tone1s.ogg");
    MainWindow main([&] { Play({other}); });
    ASSERT_TRUE(Make(main, "main", Rect(0, 0, 200, 100)));
    ASSERT_TRUE(PostMessage(main.GetHandle(), WM_USER + 1, 0, 0));
    Play({Media("tone1s.wav"), Media("tone1s.mp3")});
    EXPECT_EQ(queue.GetCount(), 1);
    EXPECT_EQ(queue.GetIndex(), 0);
    EXPECT_STREQ(media.GetMediaPath().GetFullPath().c_str(), other.c_str());
    EXPECT_TRUE(media.skipped.empty());
    EXPECT_TRUE(media.IsPlaying());
    main.Destroy();
}

TEST_F(PlayerQueueTest, TheVideoWindowIgnoresItsCloseBox) {
    media.Close();
    EXPECT_NE(media.GetHandle(), 0u);
    EXPECT_TRUE(media.HasPlayer());
}

TEST_F(PlayerQueueTest, PauseAndSeekGoThroughThePlayer) {
    ASSERT_TRUE(Play({Media("tone5s.wav")}));
    EXPECT_TRUE(queue.SeekSeconds(3));
    PumpUntil([&] { return media.GetPosition() >= 3000; });
    EXPECT_GE(media.GetPosition(), 3000u);
    EXPECT_TRUE(queue.TogglePause());
    EXPECT_TRUE(media.IsPaused());
    EXPECT_TRUE(queue.TogglePause());
    EXPECT_TRUE(media.IsPlaying());
    EXPECT_TRUE(queue.StopPlaying());
    EXPECT_FALSE(media.IsMediaOpen());
}

// melkora-cli play, run as a user would.
struct CliResult {
    int status = -1;
    std::string out;
};

CliResult RunCli(const std::string& arguments) {
    CliResult result;
    // Under AddressSanitizer the job's leak check needs whole stacks to
    // match the suppressions of GStreamer's globals (support/gst/).
    const char* asan = getenv("ASAN_OPTIONS");
    std::string options = std::string(asan != nullptr ? asan : "") + ":fast_unwind_on_malloc=0";
    std::string command = "ASAN_OPTIONS='" + options + "' " + std::string(MELKORA_CLI_PATH) + " " +
                          arguments + " 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return result;
    }
    char buffer[4096];
    size_t count = 0;
    while ((count = fread(buffer, 1, sizeof(buffer), pipe)) > 0) {
        result.out.append(buffer, count);
    }
    int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

TEST(CliPlay, PrintsEachEventOfTheQueueInOrder) {
    TempDir dir;
    std::string bad = dir.Write("bad.ogg", "OggS but nothing more");
    std::string wav = Media("tone1s.wav");
    std::string mp3 = Media("tone1s.mp3");
    CliResult result = RunCli("play " + wav + " " + bad + " " + mp3 + " --sink fake");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "open " + wav + "\nend " + wav + "\nskip " + bad + "\nopen " + mp3 +
                              "\nend " + mp3 + "\nstop\n");
}

// A FIFO named like a song or a radio file is skipped, never opened.
TEST(CliPlay, SkipsAFifoNamedLikeASong) {
    TempDir dir;
    FifoWatch song(dir / "x.mp3");
    FifoWatch radio(dir / "x.pls");
    ASSERT_TRUE(song.IsMade() && radio.IsMade());
    std::string wav = Media("tone1s.wav");
    CliResult result = RunCli("play " + song.Path() + " " + radio.Path() + " " + wav +
                              " --sink fake");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "skip " + song.Path() + "\nskip " + radio.Path() + "\nopen " + wav +
                              "\nend " + wav + "\nstop\n");
    EXPECT_FALSE(song.WasOpened());
    EXPECT_FALSE(radio.WasOpened());
}

TEST(CliPlay, NothingPlayableFailsUsageErrorsAreToldAndShuffleKeepsEveryFile) {
    TempDir dir;
    std::string missing = dir / "missing.mp3";
    CliResult result = RunCli("play " + missing + " --sink fake");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "skip " + missing + "\nstop\n");
    std::string wav = Media("tone1s.wav");
    for (std::string arguments :
         {std::string("--sink fake"), wav + " --sink alsa", wav + " --loud"}) {
        EXPECT_EQ(RunCli("play " + arguments).status, 2) << arguments;
    }
    CliResult help = RunCli("play --help");
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.out.rfind("usage: melkora-cli play", 0), 0u);
    std::string ogg = Media("tone1s.ogg");
    result = RunCli("play " + wav + " " + ogg + " --shuffle --sink fake");
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("end " + wav + "\n"), std::string::npos);
    EXPECT_NE(result.out.find("end " + ogg + "\n"), std::string::npos);
    EXPECT_EQ(result.out.substr(result.out.size() - 5), "stop\n");
}

TEST(CliPlay, ShuffledRunsDifferFromOneRunToTheNext) {
    // Ten files that do not open: each run prints them in its own order.
    TempDir dir;
    std::string paths;
    for (int i = 0; i < 10; ++i) {
        paths += " " + (dir / ("missing" + std::to_string(i) + ".mp3"));
    }
    std::string first = RunCli("play" + paths + " --shuffle --sink fake").out;
    EXPECT_EQ(std::count(first.begin(), first.end(), '\n'), 11) << first;
    // Two orders of ten agree by chance once in 3,628,800; one more try
    // keeps that out of the results.
    bool differs = false;
    for (int tries = 0; tries < 2 && !differs; ++tries) {
        differs = RunCli("play" + paths + " --shuffle --sink fake").out != first;
    }
    EXPECT_TRUE(differs) << first;
}

} // namespace
