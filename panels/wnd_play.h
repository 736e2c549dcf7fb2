// PWndPlay: the now-playing panel along the top of the main window: the
// cover, artist, album and song (labels that scroll by themselves when the
// text does not fit and lead to the folder when clicked), the track number
// and the queue's total, the queue icon with its menu of the queue, the
// elapsed and total times and the seek bar. It shows the current item of
// the play queue; the main window tells it what plays and calls
// UpdatePlayingTime from its playback timer.
#pragma once

#include <memory>

#include "controls/media_ctrl.h"
#include "foundation/image.h"
#include "foundation/path.h"
#include "panels/progress_ctrl.h"
#include "toolkit/menu.h"
#include "toolkit/wnd.h"

class PPanelHost;

// Artist, album and song of a track, from its path alone: the song is the
// file's name without its extension, the album the name of the folder
// holding it, the artist the name of the folder above that. The path's
// root counts as one component, and a path of fewer than three components
// has no artist; neither has a file lying directly in the collection's
// root (root, ending in "/"; may be empty), whose artist folder would lie
// outside the collection. The folders end in "/"; a missing one is empty.
struct PTrackNames {
    SString artist;
    SString album;
    SString song;
    SString fileName; // with its extension
    SString artistFolder;
    SString albumFolder;
};
PTrackNames GetTrackNames(const char* path, const char* root);

// A time in seconds as the panel shows it: hours, then minutes and seconds
// of two digits each ("0:00:00", "1:00:00", "27:46:40").
SString FormatPlayingTime(int seconds);

// The panel's controls, by place (PWndPlay::GetLabel).
enum PLAY_LABEL {
    PLAY_COVER,
    PLAY_ARTIST,
    PLAY_ALBUM,
    PLAY_NUMBER,
    PLAY_TOTAL,
    PLAY_QUEUE,
    PLAY_SONG,
    PLAY_ELAPSED,
    PLAY_LENGTH,
    PLAY_FILLER,
    PLAY_LABEL_COUNT
};

// The first command of the queue menu: item i has this plus i.
constexpr int PLAY_QUEUE_MENU_FIRST = 1000;
// The panel's height in the main window.
constexpr int PLAY_PANEL_HEIGHT = 65;

class PWndPlay : public SWnd {
public:
    explicit PWndPlay(PPanelHost* host);
    ~PWndPlay() override;

    // A visible child of parent at rect (parent client coordinates).
    bool Create(SWnd* parent, const SRect& rect);

    // What plays: the file (null or empty to clear), its place in the
    // queue (from 1) and the queue's count.
    void SetPlayingTrack(const SPath* path, int number, int total);
    void SetPlayingTrack(const char* path, int number, int total);
    // The cover of what plays (copied); null shows the stock picture.
    void ShowCover(const SImage* image);
    // Reads the player's position and length and shows them.
    void UpdatePlayingTime();

    // The rectangle of each control for a client width and height.
    static SRect LayoutRect(PLAY_LABEL which, int width, int height);
    static SRect SeekBarRect(int width, int height);

    // For the main window and the tests.
    const SString& GetPlayingPath() const { return playingPath; }
    SMediaCtrl& GetLabel(PLAY_LABEL which) { return labels[which]; }
    PProgressCtrl& GetSeekBar() { return seekBar; }
    SMenu& GetQueueMenu() { return queueMenu; }
    // Opens the queue menu at a screen point; false (no menu) when the
    // queue is empty.
    bool OpenQueueMenu(SPoint screen);

protected:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    void Layout();
    void HandleNotification(unsigned message, WPARAM wParam, LPARAM lParam);
    void ClickedLabel(PLAY_LABEL which, unsigned mouseCode, SPoint screen);

    PPanelHost* host;
    PProgressCtrl seekBar;
    SMenu queueMenu;
    SMediaCtrl labels[PLAY_LABEL_COUNT];
    SImage stockPicture;      // 64 by 64, while nothing plays
    SImage stockPictureLarge; // 128 by 128
    SImage cover;             // the copy ShowCover shows
    SImage totalArt;          // behind the queue total
    SImage queueIcon;         // the playing file's kind
    SString playingPath;
    PTrackNames names;
    int queueMenuCount = 0; // the items of the last queue menu
};
