// The program on the session bus: the MPRIS2 media player interfaces under
// the name org.mpris.MediaPlayer2.melkora, and the private remote-command
// interface that `melkora --remote N` calls on the running instance.
//
// The service knows no window. It calls the main window through MprisHost
// and learns the player's state through MprisService::Update; the D-Bus
// work runs on GLib's default main context, which the toolkit's loop
// iterates, so every MprisHost call comes on the loop's thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// What the service asks of the main window.
class MprisHost {
public:
    virtual ~MprisHost() = default;
    virtual void Raise() = 0;
    virtual void Quit() = 0;
    virtual void PlayPause() = 0;
    virtual void Play() = 0;
    virtual void Pause() = 0;
    virtual void Stop() = 0;
    virtual void Next() = 0;
    virtual void Previous() = 0;
    // Moves in the current track, in microseconds from its start.
    virtual void SetPosition(int64_t microseconds) = 0;
    // The current position, in microseconds; read when a client asks.
    virtual int64_t Position() = 0;
    // 0 to 1.
    virtual void SetVolume(double volume) = 0;
    // A remote command, 1 to 4, as the command message carries it.
    virtual void RemoteCommand(int command) = 0;
};

enum class MprisStatus { Stopped, Playing, Paused };

struct MprisTrack {
    // A number that names this track while it is current; -1 when there is
    // no track.
    int64_t id = -1;
    std::string title;
    std::string album;
    std::vector<std::string> artists;
    int64_t lengthMicroseconds = 0;
    // Paths on disk (the track's file, its folder's cover); empty when
    // unknown. They are given to clients as file:// addresses.
    std::string path;
    std::string coverPath;
};

struct MprisState {
    MprisStatus status = MprisStatus::Stopped;
    MprisTrack track;
    bool canGoNext = false;
    bool canGoPrevious = false;
    bool canPlay = false;
    bool canPause = false;
    bool canSeek = false;
    double volume = 1.0;
};

constexpr const char* MPRIS_BUS_NAME = "org.mpris.MediaPlayer2.melkora";

class MprisService {
public:
    // busName is the well-known name to own; tests may give another.
    explicit MprisService(MprisHost* host, const char* busName = MPRIS_BUS_NAME);
    ~MprisService();
    MprisService(const MprisService&) = delete;
    MprisService& operator=(const MprisService&) = delete;

    // Connects to the session bus and asks for the name; false when there
    // is no session bus. The name comes later, on the main context.
    bool Start();
    // Gives the name back and leaves the bus; the destructor does it too.
    void Stop();
    // True once the name is ours.
    bool OwnsName() const;

    // The player's state; properties that changed are announced with
    // PropertiesChanged.
    void Update(const MprisState& state);
    const MprisState& State() const;
    // Announces a jump in the track (the Seeked signal).
    void Seeked(int64_t microseconds);
    // Reads the state with `read` every `milliseconds` on the main context
    // and passes it to Update, until Stop; an empty function stops reading.
    // A jump of the position made elsewhere (the window's seek bar) is
    // announced with Seeked.
    void Watch(std::function<MprisState()> read, unsigned milliseconds);

    struct Impl;

private:
    std::unique_ptr<Impl> impl;
};

// Sends remote command `command` (1 to 4) to the running instance on the
// session bus. 0 when it was delivered; 1 with a line in *error when no
// instance answers or the command is out of range.
int SendRemoteCommand(int command, std::string* error, const char* busName = MPRIS_BUS_NAME);
