// SMediaPlayerCtrl: the window that plays songs, videos and radio streams.
// It gives the program a synchronous open, the transport, position, volume
// and full-screen operations, paints the video into itself (or a film strip
// when there is no picture), and turns the player's reports into virtual
// calls and notifications to its parent. GStreamer's playbin does the work
// (controls/gst/); its threads only post to this window.
//
// Everything here runs on the window's thread.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/image.h"
#include "foundation/path.h"
#include "toolkit/mouse_event.h"
#include "toolkit/wnd.h"

class SGstPlayer;

// The player posts itself SM_PLAYER_* and tells its parent SN_PLAYER_MOUSE
// (an SMouseEvent*), SN_PLAYER_ENDED, SN_PLAYER_LOOPED and
// SN_PLAYER_BUFFERING (0 at the start, 1 at the end), all in
// foundation/message_numbers.h.

// Play states of SM_PLAYER_PLAY_STATE (wParam; PLAY_STATE_MEDIA_ENDED at the
// end of the medium).
constexpr unsigned PLAY_STATE_STOPPED = 1;
constexpr unsigned PLAY_STATE_MEDIA_ENDED = 8;

// The timer that drives the playing display while something plays.
constexpr uintptr_t MEDIA_TIMER_ID = 150;
constexpr unsigned MEDIA_TIMER_ELAPSE = 20; // milliseconds

// Messages for toolkit windows kept while an open waits; more are lost.
constexpr int MEDIA_OPEN_KEPT_MESSAGES = 50;

class SMediaPlayerCtrl : public SWnd {
public:
    SMediaPlayerCtrl();
    ~SMediaPlayerCtrl() override;

    // Call before Create: the sound goes to a sink that keeps time but plays
    // nothing (tests, silent runs).
    void SetFakeSinks(bool fake) { fakeSinks = fake; }
    // The player starts with the window (SM_CREATE); false before that or
    // when GStreamer could not start.
    bool HasPlayer() const { return player != nullptr; }

    // Opens path (a file or a stream address) and waits until it is open,
    // running this thread's messages meanwhile: messages for other targets
    // run at once, those for toolkit windows are kept (at most 50, timers
    // left out) and run after, in order. WM_QUIT ends the wait and is posted
    // again; Escape held down cancels it. With start the medium plays, else
    // it stands stopped at its start. False when it does not open.
    bool OpenMedia(const char* path, bool start);
    // Stops and forgets the open medium.
    void CloseMedia();
    bool IsMediaOpen() const { return mediaOpen; }
    const SPath& GetMediaPath() const { return mediaPath; }

    // Transport. Play starts from 0; TogglePause pauses a playing medium and
    // plays a paused one (false when neither).
    bool Play();
    bool Stop();
    bool TogglePause();
    bool IsPlaying() const { return playing; }
    bool IsPaused() const { return paused; }
    // Moves to milliseconds, at most the duration.
    bool Seek(unsigned milliseconds);
    // In milliseconds; 0 without a medium.
    unsigned GetPosition() const;
    unsigned GetDuration() const;
    // 0 to 100; values outside are clamped.
    int GetVolume() const;
    void SetVolume(int volume);
    // Only with a picture; setting the present state does nothing.
    bool IsFullScreen() const { return fullScreen; }
    void SetFullScreen(bool on);
    // The video's own size; 0, 0 without a picture.
    SSize GetNativeSize() const;
    bool HasPicture() const { return hasPicture; }
    // Replays the medium from 0 at its end instead of ending.
    void SetLoop(bool loop) { this->loop = loop; }
    bool GetLoop() const { return loop; }
    // The right-button menu of the player; this player has none, so the
    // flag is only kept.
    void EnableContextMenu(bool enable) { contextMenu = enable; }

    // Paints the film strip of a window without picture: black, with a row
    // of light grey squares along the top and the bottom.
    static void PaintFilmStrip(cairo_t* cr, int width, int height);

    // Notifications, on this thread; all do nothing here.
    // stopped false when buffering starts, true when it ends.
    virtual void OnBuffering(bool /*stopped*/) {}
    virtual void OnMediaEnded() {}
    virtual void OnMediaLooped() {}
    // The open medium failed while playing (a damaged stream, a lost
    // device); the player has stopped.
    virtual void OnMediaFailed() {}
    // Every 20 ms while playing.
    virtual void OnMediaTimer() {}

    void PrintTo(cairo_t* cr, unsigned flags) override;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    bool InitPlayer();
    void ReleasePlayer();
    void PaintVideo(cairo_t* cr);
    void NotifyMouse(unsigned code, LPARAM lParam);
    void NotifyParent(unsigned message, LPARAM lParam);
    bool IsCurrent(LPARAM serial) const;

    std::unique_ptr<SGstPlayer> player;
    bool fakeSinks = false;
    bool loop = false;
    bool contextMenu = false;
    bool mediaOpen = false;
    SPath mediaPath;
    bool hasPicture = false;
    bool playing = false;
    bool paused = false;
    bool fullScreen = false;
    SRect normalRect;    // the window's rectangle before full screen
    SRect normalTopRect; // its top-level window's, when that is another one
    SImage frame;        // the latest video frame
};
