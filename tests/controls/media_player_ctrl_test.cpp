// SMediaPlayerCtrl on the headless platform with fake sinks: opening,
// playing, the end, seeking, pausing, video, the mouse, and the nested
// loop that waits for an open.
#include "controls/media_player_ctrl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include <cairo.h>

#include "support/fifo_watch.h"
#include "support/http_server.h"
#include "support/message_pump.h"
#include "support/temp_dir.h"
#include "toolkit/notification.h"
#include "toolkit/toolkit_fixture.h"

namespace {

std::string Media(const char* name) {
    return std::string(MELKORA_TEST_MEDIA) + "/" + name;
}

// A player that counts its reports.
class CountingPlayer : public SMediaPlayerCtrl {
public:
    void OnMediaEnded() override { ++ended; }
    void OnMediaLooped() override { ++looped; }
    void OnMediaTimer() override { ++ticks; }
    int ended = 0;
    int looped = 0;
    int ticks = 0;
};

// A parent that records its messages, and reads the mouse records while
// they live.
class Parent : public RecordingWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        SNotification note(message, wParam, lParam);
        if (note.Is(SN_PLAYER_MOUSE)) {
            EXPECT_NE(note.ControlAs<SMediaPlayerCtrl>(), nullptr);
            codes.push_back(note.MouseCode());
            points.push_back(note.Point());
        }
        return RecordingWnd::OnMessage(message, wParam, lParam);
    }
    std::vector<unsigned> codes;
    std::vector<SPoint> points;
};

class MediaPlayerTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SRect parentRect = Rect(0, 0, 400, 300);
        ASSERT_TRUE(parent.Create("parent", 0, 0, &parentRect, 0));
        player.SetFakeSinks(true);
        SRect rect = Rect(50, 20, 370, 260);
        ASSERT_TRUE(player.Create("player", WS_CHILD | WS_VISIBLE, 0, &rect, parent.GetHandle()));
        ASSERT_TRUE(player.HasPlayer());
    }
    void TearDown() override {
        player.Destroy();
        parent.Destroy();
        ToolkitTest::TearDown();
    }
    Parent parent;
    CountingPlayer player;
    TempDir dir;
};

TEST_F(MediaPlayerTest, OpenFailsOnMissingAndDamagedFilesAndThePlayerStaysGood) {
    std::string noise(4000, '\0');
    for (size_t i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<char>((i * 7919u + 13u) % 251u);
    }
    for (std::string path :
         {dir / "missing.mp3", dir.Write("noise.mp3", noise),
          dir.Write("text.ogg", "not a song at all"), dir.Write("empty.wav", ""), std::string()}) {
        EXPECT_FALSE(player.OpenMedia(path.c_str(), true)) << path;
    }
    EXPECT_FALSE(player.IsMediaOpen());
    EXPECT_FALSE(player.IsPlaying());
    EXPECT_EQ(player.GetPosition(), 0u);
    EXPECT_EQ(player.GetDuration(), 0u);
    EXPECT_TRUE(player.OpenMedia(Media("tone1s.wav").c_str(), true));
}

// Only a regular file is a local medium: a FIFO named like a song is never
// opened (the file source would wait for a writer), nor a device or a
// folder, by path or by file URI.
TEST_F(MediaPlayerTest, OpenRefusesWhatIsNoRegularFileWithoutOpeningIt) {
    FifoWatch fifo(dir / "song.mp3");
    ASSERT_TRUE(fifo.IsMade());
    std::string folder = dir.MakeFolder("Album.mp3");
    for (std::string path : {fifo.Path(), "file://" + fifo.Path(), std::string("/dev/zero"),
                             std::string("/dev/null"), folder}) {
        EXPECT_FALSE(player.OpenMedia(path.c_str(), true)) << path;
        EXPECT_FALSE(player.IsMediaOpen());
    }
    EXPECT_FALSE(fifo.WasOpened());
    EXPECT_TRUE(player.OpenMedia(Media("tone1s.wav").c_str(), true));
}

// Every open builds a new decoding chain; closing must free the old one,
// so opening song after song keeps the memory flat. (Under the address
// sanitizer freed memory is held back on purpose, so nothing is measured.)
TEST_F(MediaPlayerTest, OpeningSongAfterSongKeepsTheMemoryFlat) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers keep freed memory";
#endif
    auto residentKilobytes = [] {
        std::string status = TempDir::Read("/proc/self/status");
        size_t at = status.find("VmRSS:");
        return at == std::string::npos ? 0L : std::stol(status.substr(at + 6));
    };
    const char* names[] = {"tone1s.wav", "tone1s.ogg", "tone1s.mp3"};
    long before = 0;
    for (int i = 0; i < 240; ++i) {
        if (i == 40) {
            before = residentKilobytes();
        }
        ASSERT_TRUE(player.OpenMedia(Media(names[i % 3]).c_str(), false)) << i;
        player.CloseMedia();
    }
    // Each leaked chain holds about 100 KB; 200 of them would be 20 MB.
    EXPECT_LT(residentKilobytes() - before, 3000L);
}

TEST_F(MediaPlayerTest, SongsOfEachFormatOpenWithTheirDurationAndNoPicture) {
    for (const char* name : {"tone1s.wav", "tone1s.ogg", "tone1s.mp3"}) {
        ASSERT_TRUE(player.OpenMedia(Media(name).c_str(), true)) << name;
        EXPECT_TRUE(player.IsPlaying());
        EXPECT_NEAR(static_cast<int>(player.GetDuration()), 1000, 80) << name;
        EXPECT_FALSE(player.HasPicture());
        EXPECT_EQ(player.GetNativeSize().width, 0);
        EXPECT_STREQ(player.GetMediaPath().GetFullPath().c_str(), Media(name).c_str());
    }
}

TEST_F(MediaPlayerTest, TheEndTellsTheParentOnceOrLoopsWithTheLoopFlag) {
    ASSERT_TRUE(player.OpenMedia(Media("tone1s.ogg").c_str(), true));
    ASSERT_TRUE(PumpUntil([&] { return player.ended > 0; }));
    PumpFor(100);
    EXPECT_EQ(player.ended, 1);
    EXPECT_EQ(parent.Count(SN_PLAYER_ENDED), 1);
    EXPECT_EQ(player.looped, 0);
    EXPECT_FALSE(player.IsPlaying());
    EXPECT_GT(player.ticks, 10) << "20 ms ticks over a second of play";
    EXPECT_TRUE(player.IsMediaOpen()) << "stopped, the medium stays open";
    EXPECT_TRUE(player.Play());

    player.SetLoop(true);
    ASSERT_TRUE(player.OpenMedia(Media("tone1s.wav").c_str(), true));
    ASSERT_TRUE(PumpUntil([&] { return player.looped > 0; }));
    EXPECT_EQ(player.ended, 1);
    EXPECT_EQ(parent.Count(SN_PLAYER_LOOPED), 1);
    EXPECT_TRUE(player.IsPlaying());
}

TEST_F(MediaPlayerTest, OpenedStoppedItStandsAtTheStartAndSeeksStopAtTheDuration) {
    ASSERT_TRUE(player.OpenMedia(Media("tone5s.ogg").c_str(), false));
    EXPECT_FALSE(player.IsPlaying());
    EXPECT_FALSE(player.IsPaused());
    PumpFor(200);
    EXPECT_EQ(player.GetPosition(), 0u);
    EXPECT_EQ(player.ticks, 0);
    EXPECT_FALSE(player.TogglePause()) << "neither playing nor paused";
    unsigned duration = player.GetDuration();
    ASSERT_NEAR(static_cast<int>(duration), 5000, 80);
    EXPECT_TRUE(player.Seek(2000));
    PumpFor(100);
    EXPECT_NEAR(static_cast<int>(player.GetPosition()), 2000, 50);
    EXPECT_TRUE(player.Seek(60000));
    PumpFor(100);
    EXPECT_LE(player.GetPosition(), duration);
    EXPECT_GE(player.GetPosition() + 200, duration);
    EXPECT_TRUE(player.Play());
    player.CloseMedia();
    EXPECT_FALSE(player.Seek(1000));
}

TEST_F(MediaPlayerTest, PositionGrowsWhilePlayingAndFreezesWhilePaused) {
    ASSERT_TRUE(player.OpenMedia(Media("tone5s.mp3").c_str(), true));
    PumpFor(400);
    EXPECT_GT(player.GetPosition(), 100u);
    ASSERT_TRUE(player.TogglePause());
    EXPECT_TRUE(player.IsPaused());
    PumpFor(50);
    unsigned paused = player.GetPosition();
    int ticks = player.ticks;
    PumpFor(400);
    EXPECT_NEAR(static_cast<int>(player.GetPosition()), static_cast<int>(paused), 5);
    EXPECT_EQ(player.ticks, ticks) << "the display rests while paused";
    ASSERT_TRUE(player.TogglePause());
    EXPECT_TRUE(player.IsPlaying());
    PumpFor(300);
    EXPECT_GT(player.GetPosition(), paused + 100);
}

TEST_F(MediaPlayerTest, VolumeIsClampedFromZeroToAHundred) {
    EXPECT_EQ(player.GetVolume(), 100);
    for (int volume : {37, 250, -4}) {
        player.SetVolume(volume);
        EXPECT_EQ(player.GetVolume(), std::clamp(volume, 0, 100));
    }
}

TEST_F(MediaPlayerTest, AVideoReportsItsSizeIsDrawnAndGoesFullScreen) {
    ASSERT_TRUE(player.OpenMedia(Media("tone1s.wav").c_str(), true));
    player.SetFullScreen(true);
    EXPECT_FALSE(player.IsFullScreen()) << "a song has no picture to show";

    ASSERT_TRUE(player.OpenMedia(Media("pattern.ogv").c_str(), false));
    EXPECT_TRUE(player.HasPicture());
    EXPECT_EQ(player.GetNativeSize(), (SSize{160, 120}));
    // The first frame is painted stretched into the window: the test
    // pattern's colour bars, not the film strip's black and grey.
    PumpFor(200);
    SImage shot;
    ASSERT_TRUE(platform->Snapshot(parent.GetHandle(), &shot));
    int coloured = 0;
    for (int x = 60; x < 360; x += 20) {
        uint32_t pixel = shot.GetPixel(x, 80) & 0xFFFFFF;
        coloured += pixel != 0 && pixel != 0xC0C0C0 ? 1 : 0;
    }
    EXPECT_GT(coloured, 10);

    SRect before = parent.GetRect();
    player.SetFullScreen(true);
    ASSERT_TRUE(player.IsFullScreen());
    SRect screen;
    ASSERT_TRUE(platform->GetScreenRect(&screen));
    EXPECT_EQ(parent.GetRect().Width(), screen.Width());
    EXPECT_EQ(player.GetClientWidth(), parent.GetClientWidth());
    SHeadlessPlatform::Surface surface;
    ASSERT_TRUE(platform->GetSurface(parent.GetHandle(), &surface));
    EXPECT_TRUE(surface.fullScreen) << "the desktop is asked for its full-screen state";
    player.SetFullScreen(false);
    EXPECT_FALSE(player.IsFullScreen());
    ASSERT_TRUE(platform->GetSurface(parent.GetHandle(), &surface));
    EXPECT_FALSE(surface.fullScreen);
    EXPECT_EQ(parent.GetRect().Width(), before.Width());
    EXPECT_EQ(player.GetRect().Width(), 320);
}

TEST_F(MediaPlayerTest, MouseButtonsReachTheParentWithTheirCodeAndFocusThePlayer) {
    platform->Press(parent.GetHandle(), 60, 40, WM_RBUTTONDOWN);
    platform->Release(parent.GetHandle(), 60, 40, WM_RBUTTONUP);
    platform->Click(parent.GetHandle(), 70, 30);
    EXPECT_EQ(GetFocus(), player.GetHandle());
    // Right down, click (told as the button goes up) and up, then the left.
    EXPECT_EQ(parent.codes, (std::vector<unsigned>{0x0C, 0x24, 0x14, 0x09, 0x21, 0x11}));
    ASSERT_FALSE(parent.points.empty());
    EXPECT_EQ(parent.points[0], (SPoint{10, 20})) << "in the player's client coordinates";
}

TEST(MediaPlayerPaint, FilmStripHasTwoRowsOfSquares) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 200, 100);
    cairo_t* cr = cairo_create(surface);
    SMediaPlayerCtrl::PaintFilmStrip(cr, 200, 100);
    cairo_destroy(cr);
    SImage picture;
    ASSERT_TRUE(picture.LoadSurface(surface, 0, 0));
    cairo_surface_destroy(surface);
    // Side 10: squares at x 0-9, 20-29... 180-189; rows at y 5-14 and 85-94.
    struct Point {
        int x, y;
        bool square;
    } points[] = {{0, 5, true},  {9, 14, true},  {10, 5, false},  {20, 10, true},
                  {5, 4, false}, {5, 15, false}, {5, 50, false},  {5, 85, true},
                  {5, 94, true}, {5, 95, false}, {185, 90, true}, {195, 90, false}};
    for (const Point& p : points) {
        EXPECT_EQ(picture.GetPixel(p.x, p.y) & 0xFFFFFF, p.square ? 0xC0C0C0u : 0u)
            << p.x << "," << p.y;
    }
}

// The wait of an open: a server that never sends the stream keeps it
// waiting, so what ends it is the test's doing. A port, a message target
// that is no toolkit window (as a worker's is), runs during the wait.
class MediaOpenWaitTest : public MediaPlayerTest, public SMessageTarget {
protected:
    void SetUp() override {
        MediaPlayerTest::SetUp();
        port = RegisterTarget(this);
        server.Route("/stalled.ogg", TestHttpServer::Stalled("OggS", 100000));
        ASSERT_TRUE(server.Start());
    }
    void TearDown() override {
        UnregisterTarget(port);
        MediaPlayerTest::TearDown();
    }
    LRESULT HandleMessage(HWND, unsigned message, WPARAM, LPARAM) override {
        onPort(message);
        return 0;
    }
    bool OpenStalled() { return player.OpenMedia(server.Url("/stalled.ogg").c_str(), true); }
    TestHttpServer server;
    HWND port = 0;
    std::function<void(unsigned)> onPort = [](unsigned) {};
};

TEST_F(MediaOpenWaitTest, KeepsFiftyWindowMessagesInOrderAndPostsQuitAgain) {
    int portMessages = 0;
    onPort = [&](unsigned message) { portMessages += message == WM_USER ? 1 : 0; };
    for (int i = 0; i < 51; ++i) {
        ASSERT_TRUE(PostMessage(parent.GetHandle(), WM_USER + 1, static_cast<WPARAM>(i), 0));
    }
    ASSERT_TRUE(PostMessage(port, WM_USER, 0, 0));
    PostQuitMessage(7);
    EXPECT_FALSE(OpenStalled());
    EXPECT_EQ(portMessages, 1) << "the port's message ran during the wait";
    EXPECT_FALSE(player.IsMediaOpen());

    std::vector<WPARAM> replayed;
    for (const RecordingWnd::Entry& entry : parent.ownLog) {
        if (entry.message == WM_USER + 1) {
            replayed.push_back(entry.wParam);
        }
    }
    std::vector<WPARAM> kept(50);
    std::iota(kept.begin(), kept.end(), 0);
    EXPECT_EQ(replayed, kept) << "fifty kept in order, the 51st lost";
    SMessage message;
    ASSERT_TRUE(PeekMessage(&message, true));
    EXPECT_EQ(message.message, WM_QUIT);
    EXPECT_EQ(message.wParam, 7u);
}

TEST_F(MediaOpenWaitTest, EscapeHeldDownCancelsTheOpen) {
    // The port's timer runs during the wait and presses Escape.
    onPort = [&](unsigned message) {
        if (message == WM_TIMER) {
            KillTimer(port, 1);
            PlatformKey(parent.GetHandle(), WM_KEYDOWN, VK_ESCAPE);
        }
    };
    ASSERT_TRUE(SetTimer(port, 1, 100));
    EXPECT_FALSE(OpenStalled());
    EXPECT_TRUE(IsKeyHeld(VK_ESCAPE));
    PlatformKey(parent.GetHandle(), WM_KEYUP, VK_ESCAPE);
    EXPECT_TRUE(player.OpenMedia(Media("tone1s.wav").c_str(), true));
}

} // namespace
