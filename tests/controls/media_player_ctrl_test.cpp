#include "controls/media_player_ctrl.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <cairo.h>

#include "support/http_server.h"
#include "support/message_pump.h"
#include "support/temp_dir.h"
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

// Lets real time pass while this thread's messages run.
void PumpFor(int milliseconds) {
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    PumpUntil([&] { return std::chrono::steady_clock::now() >= end; });
}

class MediaPlayerTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SRect parentRect = Rect(0, 0, 400, 300);
        ASSERT_TRUE(parent.Create("parent", 0, 0, &parentRect, 0));
        player.SetFakeSinks(true);
        SRect rect = Rect(0, 0, 320, 240);
        ASSERT_TRUE(player.Create("player", WS_CHILD | WS_VISIBLE, 0, &rect, parent.GetHandle()));
        ASSERT_TRUE(player.HasPlayer());
    }
    void TearDown() override {
        player.Destroy();
        parent.Destroy();
        ToolkitTest::TearDown();
    }

    RecordingWnd parent;
    CountingPlayer player;
    TempDir dir;
};

TEST_F(MediaPlayerTest, OpenFailsOnMissingAndDamagedFiles) {
    EXPECT_FALSE(player.OpenMedia((dir / "missing.mp3").c_str(), true));
    std::string noise(4000, '\0');
    for (size_t i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<char>((i * 7919u + 13u) % 251u);
    }
    EXPECT_FALSE(player.OpenMedia(dir.Write("noise.mp3", noise).c_str(), true));
    EXPECT_FALSE(player.OpenMedia(dir.Write("text.ogg", "not a song at all").c_str(), true));
    EXPECT_FALSE(player.OpenMedia(dir.Write("empty.wav", "").c_str(), true));
    EXPECT_FALSE(player.OpenMedia("", true));
    EXPECT_FALSE(player.IsMediaOpen());
    EXPECT_FALSE(player.IsPlaying());
    EXPECT_EQ(player.GetPosition(), 0u);
    EXPECT_EQ(player.GetDuration(), 0u);
    // The player is still good for the next file.
    EXPECT_TRUE(player.OpenMedia(Media("tone1s.wav").c_str(), true));
}

TEST_F(MediaPlayerTest, SongsOfEachFormatOpenWithTheirDuration) {
    for (const char* name : {"tone1s.wav", "tone1s.ogg", "tone1s.mp3"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(player.OpenMedia(Media(name).c_str(), true));
        EXPECT_TRUE(player.IsPlaying());
        EXPECT_NEAR(static_cast<int>(player.GetDuration()), 1000, 80);
        EXPECT_FALSE(player.HasPicture());
        EXPECT_EQ(player.GetNativeSize().width, 0);
        EXPECT_STREQ(player.GetMediaPath().GetFullPath().c_str(), Media(name).c_str());
    }
}

TEST_F(MediaPlayerTest, OpenWithoutStartStandsStoppedAtTheStart) {
    ASSERT_TRUE(player.OpenMedia(Media("tone5s.ogg").c_str(), false));
    EXPECT_FALSE(player.IsPlaying());
    EXPECT_FALSE(player.IsPaused());
    PumpFor(200);
    EXPECT_EQ(player.GetPosition(), 0u);
    EXPECT_EQ(player.ticks, 0);
    // Neither playing nor paused: nothing to toggle.
    EXPECT_FALSE(player.TogglePause());
    EXPECT_TRUE(player.Play());
    EXPECT_TRUE(player.IsPlaying());
}

TEST_F(MediaPlayerTest, TheEndOfAMediumTellsTheParentOnce) {
    ASSERT_TRUE(player.OpenMedia(Media("tone1s.ogg").c_str(), true));
    ASSERT_TRUE(PumpUntil([&] { return player.ended > 0; }));
    PumpFor(100);
    EXPECT_EQ(player.ended, 1);
    EXPECT_EQ(parent.Count(SN_PLAYER_ENDED), 1);
    EXPECT_EQ(player.looped, 0);
    EXPECT_FALSE(player.IsPlaying());
    EXPECT_GT(player.ticks, 10); // 20 ms ticks over a second of play
    // Stopped, the medium stays open and plays again from its start.
    EXPECT_TRUE(player.IsMediaOpen());
    EXPECT_TRUE(player.Play());
}

TEST_F(MediaPlayerTest, WithTheLoopFlagTheMediumPlaysAgain) {
    player.SetLoop(true);
    ASSERT_TRUE(player.OpenMedia(Media("tone1s.wav").c_str(), true));
    ASSERT_TRUE(PumpUntil([&] { return player.looped > 0; }));
    EXPECT_EQ(player.ended, 0);
    EXPECT_EQ(parent.Count(SN_PLAYER_LOOPED), 1);
    EXPECT_TRUE(player.IsPlaying());
}

TEST_F(MediaPlayerTest, SeekPastTheEndStopsAtTheDuration) {
    ASSERT_TRUE(player.OpenMedia(Media("tone5s.ogg").c_str(), false));
    unsigned duration = player.GetDuration();
    ASSERT_NEAR(static_cast<int>(duration), 5000, 80);
    EXPECT_TRUE(player.Seek(2000));
    PumpFor(100);
    EXPECT_NEAR(static_cast<int>(player.GetPosition()), 2000, 50);
    EXPECT_TRUE(player.Seek(60000));
    PumpFor(100);
    EXPECT_LE(player.GetPosition(), duration);
    EXPECT_GE(player.GetPosition() + 200, duration);
    player.CloseMedia();
    EXPECT_FALSE(player.Seek(1000));
}

TEST_F(MediaPlayerTest, PositionGrowsWhilePlayingAndFreezesWhilePaused) {
    ASSERT_TRUE(player.OpenMedia(Media("tone5s.mp3").c_str(), true));
    PumpFor(400);
    unsigned playing = player.GetPosition();
    EXPECT_GT(playing, 100u);
    ASSERT_TRUE(player.TogglePause());
    EXPECT_TRUE(player.IsPaused());
    PumpFor(50);
    unsigned paused = player.GetPosition();
    int ticks = player.ticks;
    PumpFor(400);
    EXPECT_NEAR(static_cast<int>(player.GetPosition()), static_cast<int>(paused), 5);
    EXPECT_EQ(player.ticks, ticks); // the display rests while paused
    ASSERT_TRUE(player.TogglePause());
    EXPECT_TRUE(player.IsPlaying());
    PumpFor(300);
    EXPECT_GT(player.GetPosition(), paused + 100);
}

TEST_F(MediaPlayerTest, VolumeIsClampedToAHundred) {
    EXPECT_EQ(player.GetVolume(), 100);
    player.SetVolume(37);
    EXPECT_EQ(player.GetVolume(), 37);
    player.SetVolume(250);
    EXPECT_EQ(player.GetVolume(), 100);
    player.SetVolume(-4);
    EXPECT_EQ(player.GetVolume(), 0);
}

TEST_F(MediaPlayerTest, AVideoReportsItsSizeAndIsDrawn) {
    ASSERT_TRUE(player.OpenMedia(Media("pattern.ogv").c_str(), false));
    EXPECT_TRUE(player.HasPicture());
    SSize size = player.GetNativeSize();
    EXPECT_EQ(size.width, 160);
    EXPECT_EQ(size.height, 120);
    // The first frame is painted stretched into the window: the test
    // pattern's colour bars, not the black of the film strip.
    PumpFor(200);
    SImage shot;
    ASSERT_TRUE(platform->Snapshot(parent.GetHandle(), &shot));
    int coloured = 0;
    for (int x = 10; x < 310; x += 20) {
        uint32_t pixel = shot.GetPixel(x, 60) & 0xFFFFFF;
        coloured += pixel != 0 && pixel != 0xC0C0C0 ? 1 : 0;
    }
    EXPECT_GT(coloured, 10);
}

TEST_F(MediaPlayerTest, FullScreenNeedsAPictureAndRestoresTheWindows) {
    ASSERT_TRUE(player.OpenMedia(Media("tone1s.wav").c_str(), true));
    player.SetFullScreen(true);
    EXPECT_FALSE(player.IsFullScreen());

    ASSERT_TRUE(player.OpenMedia(Media("pattern.ogv").c_str(), true));
    SRect before = parent.GetRect();
    player.SetFullScreen(true);
    ASSERT_TRUE(player.IsFullScreen());
    SRect screen;
    ASSERT_TRUE(platform->GetScreenRect(&screen));
    EXPECT_EQ(parent.GetRect().Width(), screen.Width());
    EXPECT_EQ(player.GetClientWidth(), parent.GetClientWidth());
    player.SetFullScreen(false);
    EXPECT_FALSE(player.IsFullScreen());
    EXPECT_EQ(parent.GetRect().Width(), before.Width());
    EXPECT_EQ(player.GetRect().Width(), 320);
}

// A parent that reads the mouse records while they live.
class MouseParent : public SWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == SN_PLAYER_MOUSE) {
            const auto* mouse = reinterpret_cast<const SMouseEvent*>(lParam);
            codes.push_back(mouse->code);
            points.push_back(mouse->client);
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    std::vector<unsigned> codes;
    std::vector<SPoint> points;
};

TEST_F(MediaPlayerTest, MouseButtonsReachTheParentWithTheirCode) {
    MouseParent top;
    SRect topRect = Rect(0, 0, 300, 200);
    ASSERT_TRUE(top.Create("top", 0, 0, &topRect, 0));
    CountingPlayer inner;
    inner.SetFakeSinks(true);
    SRect rect = Rect(50, 20, 250, 180);
    ASSERT_TRUE(inner.Create("inner", WS_CHILD | WS_VISIBLE, 0, &rect, top.GetHandle()));
    platform->Press(top.GetHandle(), 60, 40, WM_RBUTTONDOWN);
    platform->Release(top.GetHandle(), 60, 40, WM_RBUTTONUP);
    platform->Click(top.GetHandle(), 70, 30);
    EXPECT_EQ(GetFocus(), inner.GetHandle());
    // Right down, click (the toolkit tells it as the button goes up) and up,
    // then the same for the left button.
    EXPECT_EQ(top.codes, (std::vector<unsigned>{0x0C, 0x24, 0x14, 0x09, 0x21, 0x11}));
    ASSERT_FALSE(top.points.empty());
    EXPECT_EQ(top.points[0].x, 10); // in the player's client coordinates
    EXPECT_EQ(top.points[0].y, 20);
    inner.Destroy();
    top.Destroy();
}

TEST(MediaPlayerPaint, FilmStripHasTwoRowsOfSquares) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 200, 100);
    cairo_t* cr = cairo_create(surface);
    SMediaPlayerCtrl::PaintFilmStrip(cr, 200, 100);
    cairo_destroy(cr);
    SImage picture;
    ASSERT_TRUE(picture.LoadSurface(surface, 0, 0));
    cairo_surface_destroy(surface);
    // Side 10: squares at x 0-9, 20-29...; rows at y 5-14 and 85-94.
    auto at = [&](int x, int y) { return picture.GetPixel(x, y) & 0xFFFFFF; };
    EXPECT_EQ(at(0, 5), 0xC0C0C0u);
    EXPECT_EQ(at(9, 14), 0xC0C0C0u);
    EXPECT_EQ(at(10, 5), 0u);
    EXPECT_EQ(at(20, 10), 0xC0C0C0u);
    EXPECT_EQ(at(5, 4), 0u);
    EXPECT_EQ(at(5, 15), 0u);
    EXPECT_EQ(at(5, 50), 0u);
    EXPECT_EQ(at(5, 85), 0xC0C0C0u);
    EXPECT_EQ(at(5, 94), 0xC0C0C0u);
    EXPECT_EQ(at(5, 95), 0u);
    EXPECT_EQ(at(195, 90), 0u); // 180-189 is a square, 190-199 a gap
    EXPECT_EQ(at(185, 90), 0xC0C0C0u);
}

// The wait of an open: a server that never sends the stream keeps it
// waiting, so what ends it is the test's doing.
class MediaOpenWaitTest : public MediaPlayerTest {
protected:
    void SetUp() override {
        MediaPlayerTest::SetUp();
        server.Route("/stalled.ogg", TestHttpServer::Stalled("OggS", 100000));
        ASSERT_TRUE(server.Start());
    }
    TestHttpServer server;
};

// A message target that is no toolkit window, as a worker's port is.
class PortTarget : public SMessageTarget {
public:
    PortTarget() { handle = RegisterTarget(this); }
    ~PortTarget() override { UnregisterTarget(handle); }
    LRESULT HandleMessage(HWND, unsigned message, WPARAM wParam, LPARAM) override {
        if (onMessage) {
            onMessage(message, wParam);
        }
        return 0;
    }
    HWND handle = 0;
    std::function<void(unsigned, WPARAM)> onMessage;
};

TEST_F(MediaOpenWaitTest, KeepsFiftyWindowMessagesInOrderAndPostsQuitAgain) {
    std::vector<std::string> order;
    PortTarget port;
    port.onMessage = [&](unsigned message, WPARAM) {
        if (message == WM_USER) {
            order.push_back("port");
        }
    };
    for (int i = 0; i < 51; ++i) {
        ASSERT_TRUE(PostMessage(parent.GetHandle(), WM_USER + 1, static_cast<WPARAM>(i), 0));
    }
    ASSERT_TRUE(PostMessage(port.handle, WM_USER, 0, 0));
    PostQuitMessage(7);
    EXPECT_FALSE(player.OpenMedia(server.Url("/stalled.ogg").c_str(), true));
    EXPECT_EQ(order, std::vector<std::string>{"port"});

    std::vector<WPARAM> replayed;
    for (const RecordingWnd::Entry& entry : parent.ownLog) {
        if (entry.message == WM_USER + 1) {
            replayed.push_back(entry.wParam);
        }
    }
    ASSERT_EQ(replayed.size(), 50u); // the 51st is lost
    for (size_t i = 0; i < replayed.size(); ++i) {
        EXPECT_EQ(replayed[i], i);
    }
    SMessage message;
    ASSERT_TRUE(PeekMessage(&message, true));
    EXPECT_EQ(message.message, WM_QUIT);
    EXPECT_EQ(message.wParam, 7u);
    EXPECT_FALSE(player.IsMediaOpen());
}

TEST_F(MediaOpenWaitTest, EscapeHeldDownCancelsTheOpen) {
    // A port's timer runs during the wait and presses Escape.
    PortTarget port;
    port.onMessage = [&](unsigned message, WPARAM) {
        if (message == WM_TIMER) {
            KillTimer(port.handle, 1);
            PlatformKey(parent.GetHandle(), WM_KEYDOWN, VK_ESCAPE);
        }
    };
    ASSERT_TRUE(SetTimer(port.handle, 1, 100));
    EXPECT_FALSE(player.OpenMedia(server.Url("/stalled.ogg").c_str(), true));
    EXPECT_TRUE(IsKeyHeld(VK_ESCAPE));
    PlatformKey(parent.GetHandle(), WM_KEYUP, VK_ESCAPE);
    EXPECT_FALSE(IsKeyHeld(VK_ESCAPE));
    EXPECT_TRUE(player.OpenMedia(Media("tone1s.wav").c_str(), true));
}

} // namespace
