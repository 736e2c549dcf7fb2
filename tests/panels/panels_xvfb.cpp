// The now-playing panel and the playlist panel on GTK under a virtual X
// display: a track playing whose long names scroll, with its cover, times
// and seek bar; and a playlist with entries, a selected row and its cover.
// Each panel's picture is saved in the build folder (now-playing.png and
// playlist-panel.png, checked in under docs/) and a few of its pixels read.
#include <gtest/gtest.h>

#include <string>

#include "foundation/file.h"
#include "panels/resources.h"
#include "panels/wnd_play.h"
#include "panels/wnd_playlist.h"
#include "recording_host.h"
#include "support/temp_dir.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd_app.h"

namespace {

constexpr int WIDTH = 820;
constexpr int GAP = 12; // between the two panels in the test window

uint32_t Rgb(uint32_t color) { // program colour to the capture's 0xRRGGBB
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

// A cover as a collection holds them: a gradient with a disc and a band.
void DrawCover(SImage* image, uint32_t from, uint32_t to) {
    image->Create(150, 150, PIXEL_FORMAT_32ARGB);
    for (int y = 0; y < 150; ++y) {
        uint32_t color = 0xFF000000u;
        for (int shift = 0; shift <= 16; shift += 8) {
            int a = (from >> shift) & 0xFF;
            int b = (to >> shift) & 0xFF;
            color |= static_cast<uint32_t>(a + (b - a) * y / 149) << shift;
        }
        SRect row{0, y, 150, y + 1};
        image->Fill(color, &row);
    }
    for (int y = 0; y < 150; ++y) {
        for (int x = 0; x < 150; ++x) {
            int dx = x - 75;
            int dy = y - 70;
            int d = dx * dx + dy * dy;
            SRect dot{x, y, x + 1, y + 1};
            if (d < 45 * 45 && d > 8 * 8) {
                image->Fill(d < 44 * 44 ? 0xFF1E1E24u : 0xFF60606Au, &dot);
            } else if (d <= 8 * 8) {
                image->Fill(0xFFF0D040u, &dot);
            }
        }
    }
    SRect band{0, 124, 150, 138};
    image->Fill(0xFFFFFFFFu, &band);
}

void Save(const SImage& shot, int top, int height, const char* name) {
    SImage part;
    ASSERT_TRUE(part.Crop(&shot, 0, top, WIDTH, height));
    SFilePath png;
    std::string path = std::string(MELKORA_SCREENSHOT_DIR) + "/" + name;
    ASSERT_TRUE(png.Open(path.c_str(), true, true, false, false)) << path;
    EXPECT_TRUE(part.Save(&png, IMAGE_PNG));
    png.Close();
}

TEST(GtkPanels, APlayingTrackAndAPlaylistAreDrawn) {
    ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    TempDir dir;
    {
        RecordingHost host;
        host.root = dir.Path() + "/";
        DrawCover(&host.coverPicture, 0x2A4F86, 0x9CC8E8);
        dir.Write("Playlists/Road trip.lst",
                  "Miles Davis\\Kind of Blue\\01 So What.mp3\r\n"
                  "Miles Davis\\Kind of Blue\\02 Freddie Freeloader.mp3\r\n"
                  "Nina Simone\\Pastel Blues\\05 Sinnerman.mp3\r\n"
                  "The Extraordinarily Long-Named Chamber Orchestra of the Northern "
                  "Provinces\\Complete Recordings\\14 Allegro ma non troppo.flac\r\n"
                  "Radiohead\\In Rainbows\\04 All I Need.ogg\r\n");
        dir.Write("Playlists/Sunday morning.lst", "");

        SWnd top;
        SRect bounds{20, 20, 20 + WIDTH, 20 + PLAY_PANEL_HEIGHT + GAP + PLAYLIST_PANEL_HEIGHT};
        ASSERT_TRUE(top.Create("Melkora panels", WS_VISIBLE, 0, &bounds, 0));
        top.SetBackColor(GetSysColor(SYS_COLOR_WINDOW));

        PWndPlay play(&host);
        ASSERT_TRUE(play.Create(&top, SRect{0, 0, WIDTH, PLAY_PANEL_HEIGHT}));
        PWndPlaylist playlist(&host);
        const int listTop = PLAY_PANEL_HEIGHT + GAP;
        ASSERT_TRUE(
            playlist.Create(&top, SRect{0, listTop, WIDTH, listTop + PLAYLIST_PANEL_HEIGHT}));

        // A track 4:05 long, 1:23 in, from a queue of twelve.
        host.lengthMs = 245000;
        host.positionMs = 83000;
        host.loaded = true;
        std::string track = dir.Path() +
                            "/The Extraordinarily Long-Named Chamber Orchestra of the Northern "
                            "Provinces/Complete Recordings, Volume Three: The Late Quartets "
                            "and Fragments/14 Allegro ma non troppo, in a tempo the composer "
                            "never wrote down, recorded live in the old harbour hall on a "
                            "stormy winter evening.flac";
        play.SetPlayingTrack(track.c_str(), 4, 12);
        SImage playingCover;
        DrawCover(&playingCover, 0x7A3B2E, 0xE8B87C);
        play.ShowCover(&playingCover);
        play.UpdatePlayingTime();

        playlist.RefreshPlaylists();
        ASSERT_TRUE(playlist.SelectPlaylist("Road trip"));
        playlist.LoadPlaylist();
        playlist.GetList().SetCurrentRow(2);

        SMediaCtrl& song = play.GetLabel(PLAY_SONG);
        SMediaCtrl& artist = play.GetLabel(PLAY_ARTIST);
        EXPECT_TRUE(song.IsAutoScrollOn());
        EXPECT_TRUE(artist.IsAutoScrollOn());
        EXPECT_FALSE(play.GetLabel(PLAY_NUMBER).IsAutoScrollOn()) << "a short text stands";
        // Let the names scroll a little way, then take the picture.
        ASSERT_TRUE(PumpUntil([&] { return song.GetScrollOffset().x <= -24; }, 10))
            << "the song's name did not scroll";
        SImage shot;
        ASSERT_TRUE(PumpUntil(
            [&] { return GtkCaptureSurface(top.GetHandle(), &shot) && shot.GetWidth() >= WIDTH; }));
        PumpUntil([] { return false; }, 1);
        ASSERT_TRUE(GtkCaptureSurface(top.GetHandle(), &shot));
        Save(shot, 0, PLAY_PANEL_HEIGHT, "now-playing.png");
        Save(shot, listTop, PLAYLIST_PANEL_HEIGHT, "playlist-panel.png");

        auto at = [&](int x, int y) { return shot.GetPixel(x, y) & 0xFFFFFF; };
        // The playing cover's disc centre is yellow, shrunk into 64 by 64.
        EXPECT_EQ(at(32, 30), 0xF0D040u);
        // The times.
        EXPECT_EQ(play.GetLabel(PLAY_ELAPSED).GetText(), "0:01:23");
        EXPECT_EQ(play.GetLabel(PLAY_LENGTH).GetText(), "0:04:05");
        // The seek bar: a third played, its played part unlike the rest.
        SRect seek = play.GetSeekBar().GetRect();
        int middle = (seek.top + seek.bottom) / 2;
        EXPECT_NE(at(seek.left + 40, middle), at(seek.right - 40, middle));
        // The selected row's cover (the disc's yellow centre) in the cover
        // box at the playlist's right, and the selection band on row 2.
        SRect cover = playlist.GetCover().GetRect();
        EXPECT_EQ(at((cover.left + cover.right) / 2, listTop + 47), 0xF0D040u);
        SRect row = playlist.GetList().GetRowRect(2);
        SRect list = playlist.GetList().GetRect();
        uint32_t band = at(list.right - 30, listTop + (row.top + row.bottom) / 2);
        EXPECT_EQ(band, Rgb(GetSysColor(SYS_COLOR_HIGHLIGHT)));
        EXPECT_EQ(playlist.GetCountLabel().GetText(), "5 files");
        EXPECT_EQ(
            host.Calls("LoadFolderCover"),
            std::vector<std::string>{"LoadFolderCover " + host.root + "Nina Simone/Pastel Blues/"});
    }
    ToolkitEnd();
}

} // namespace
