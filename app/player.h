// PMedia: the program's one player. It is the media player host with the
// program's handling of its reports, and the player the play queue drives:
// the end of a track advances the queue, and the queue's end may shut the
// machine down.
#pragma once

#include "controls/media_player_ctrl.h"
#include "library/play_queue.h"

class PMedia : public SMediaPlayerCtrl, public PPlayerHost {
public:
    PMedia() = default;

    // The queue whose tracks end here; null for none. Borrowed.
    void SetQueue(PPlayQueue* queue) { this->queue = queue; }
    PPlayQueue* GetQueue() const { return queue; }
    // True between the start and the end of buffering of a stream.
    bool IsBuffering() const { return buffering; }

    // What the queue asks of its player.
    using SMediaPlayerCtrl::OpenMedia;
    bool OpenMedia(const char* address) override;
    void Pause() override;
    bool TogglePause() override;
    // Stops and closes the medium.
    void Stop() override;
    // Plays on from seconds; a medium stopped at its end plays again.
    bool Seek(int seconds) override;
    // Runs the machine's shutdown (MELKORA_SHUTDOWN_COMMAND stands in for
    // it where set).
    void ShutDownMachine() override;

    // The player's reports.
    void OnBuffering(bool stopped) override;
    void OnMediaEnded() override;
    void OnMediaFailed() override;
    void OnMediaTimer() override;
    // Every tick while playing, for the panels that show the time.
    virtual void OnMediaTick() {}

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    PPlayQueue* queue = nullptr;
    bool buffering = false;
};
