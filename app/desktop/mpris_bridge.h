// The main window as the session bus sees it: MPRIS2 calls and remote
// commands become the window's own commands, and the player's state is
// read from its queue and player twice a second.
#pragma once

#include <string>

#include "app/mpris/mpris.h"

class PWndApp;

class PMprisBridge : public MprisHost {
public:
    explicit PMprisBridge(PWndApp& app) : app(app) {}

    void Raise() override;
    void Quit() override;
    void PlayPause() override;
    void Play() override;
    void Pause() override;
    void Stop() override;
    void Next() override;
    void Previous() override;
    void SetPosition(int64_t microseconds) override;
    int64_t Position() override;
    void SetVolume(double volume) override;
    void RemoteCommand(int command) override;

    // What the queue and the player show now.
    MprisState ReadState();

private:
    PWndApp& app;
    // The last album folder asked for its cover, and the answer.
    std::string coverFolder;
    std::string cover;
};
