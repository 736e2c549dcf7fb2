#include "app/player.h"

#include "foundation/network.h"

bool PMedia::OpenMedia(const char* address) {
    return SMediaPlayerCtrl::OpenMedia(address, true);
}

void PMedia::Pause() {
    if (IsPlaying()) {
        SMediaPlayerCtrl::TogglePause();
    }
}

bool PMedia::TogglePause() {
    return SMediaPlayerCtrl::TogglePause();
}

void PMedia::Stop() {
    SMediaPlayerCtrl::Stop();
    CloseMedia();
    buffering = false;
}

bool PMedia::Seek(int seconds) {
    if (!IsMediaOpen() || seconds < 0) {
        return false;
    }
    // At its end the medium stands stopped; replaying needs no new open.
    if (!IsPlaying() && !IsPaused() && !Play()) {
        return false;
    }
    return SMediaPlayerCtrl::Seek(static_cast<unsigned>(seconds) * 1000u);
}

void PMedia::ShutDownMachine() {
    SNetwork().Shutdown();
}

void PMedia::OnBuffering(bool stopped) {
    // The main window shows it in its status bar and on the strip
    // (PAppMedia::OnBuffering); the flag is kept for the rest.
    buffering = !stopped;
}

void PMedia::OnMediaEnded() {
    if (queue != nullptr) {
        queue->OnTrackEnded();
    }
}

void PMedia::OnMediaFailed() {
    if (queue != nullptr) {
        queue->OnTrackFailed();
    }
}

void PMedia::OnMediaTimer() {
    OnMediaTick();
}

LRESULT PMedia::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    // The video window's close box does nothing: the player lives as long
    // as the program.
    if (message == WM_CLOSE) {
        return 0;
    }
    return SMediaPlayerCtrl::OnMessage(message, wParam, lParam);
}
