// SGstPlayer: one GStreamer playbin, the engine behind SMediaPlayerCtrl.
// It opens a file or a stream address, plays, pauses, seeks and reports
// position, duration, volume and the video's size, and keeps the latest
// video frame as a picture for the window to paint.
//
// GStreamer runs its own threads. What they report (open done or failed,
// the end of the media, buffering, a new frame) is turned into messages
// posted to the owner window, never into calls: the window handles them on
// its own thread. Every operation here is for the window's thread, except
// that the open state may be read anywhere.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/image.h"
#include "foundation/message.h"

class SGstPlayer {
public:
    // Where an open stands.
    enum OpenState { OPEN_NONE = 0, OPEN_WAITING = 1, OPEN_DONE = 2, OPEN_FAILED = 3 };
    // Reports of GStreamer's threads: wParam as told, lParam the open's
    // serial number (GetSerial), so a report of a closed medium is known.
    struct Messages {
        unsigned ended = 0;     // the medium played to its end; wParam endedValue
        WPARAM endedValue = 0;
        unsigned error = 0;     // a failure after the open; wParam 0
        unsigned buffering = 0; // wParam 0 when buffering starts, 1 when it ends
        unsigned wake = 0;      // the open state changed
        unsigned frame = 0;     // a new video frame waits (one message until TakeFrame)
    };

    SGstPlayer();
    ~SGstPlayer();
    SGstPlayer(const SGstPlayer&) = delete;
    SGstPlayer& operator=(const SGstPlayer&) = delete;

    // Starts GStreamer once for the process; false when it cannot start.
    static bool Initialize();

    // Builds the pipeline, reporting to window. With fakeSinks the sound
    // goes to a sink that keeps time but plays nothing (tests, silent runs).
    bool Create(HWND window, const Messages& messages, bool fakeSinks);
    // Stops and frees the pipeline; no report is posted after it returns.
    void Destroy();
    bool IsCreated() const { return pipeline != nullptr; }

    // Starts opening address (a path or a URI), to play at once with start,
    // else held at its first frame. The result comes as the open state.
    bool Load(const char* address, bool start);
    int GetOpenState() const;
    uint32_t GetSerial() const;
    // Stops and forgets the medium.
    void Close();

    // Transport; false without a medium or when GStreamer refuses.
    bool Play();
    bool Pause();
    // Pauses at the start.
    bool Stop();
    bool Seek(uint64_t milliseconds);
    // 0 when unknown.
    uint64_t GetPosition() const;
    uint64_t GetDuration() const;
    // 0 to 100.
    void SetVolume(int volume);
    int GetVolume() const;

    // Video. Known once the open is done.
    bool HasVideo() const;
    bool GetVideoSize(int* width, int* height) const;
    // Copies the latest frame into picture (24-bit RGB); false when there is
    // none. Allows the next frame message.
    bool TakeFrame(SImage* picture);
    bool HasFrame() const;

    struct State; // GStreamer's objects and what its threads share

private:
    void* pipeline = nullptr;
    std::unique_ptr<State> state;
};
