#include "app/desktop/mpris_bridge.h"

#include "app/settings.h"
#include "app/wnd_app_main.h"
#include "foundation/message.h"
#include "foundation/message_numbers.h"
#include "panels/wnd_play.h"

namespace {

// The remote commands: the window handles them as the command message.
constexpr int REMOTE_PLAY_PAUSE = 2;
constexpr int REMOTE_PREVIOUS = 3;
constexpr int REMOTE_NEXT = 4;

} // namespace

void PMprisBridge::RemoteCommand(int command) {
    // Posted, so the command runs in the window's own order of messages.
    PostMessage(app.GetHandle(), SM_REMOTE_COMMAND, 500, command);
}

void PMprisBridge::Raise() { app.ShowMainWindow(); }

void PMprisBridge::Quit() { PostMessage(app.GetHandle(), WM_CLOSE, 0, 0); }

void PMprisBridge::PlayPause() { RemoteCommand(REMOTE_PLAY_PAUSE); }

void PMprisBridge::Play() {
    if (app.GetQueue().GetIndex() == -1 || app.GetMedia().IsPaused()) {
        RemoteCommand(REMOTE_PLAY_PAUSE);
    }
}

void PMprisBridge::Pause() {
    if (app.GetMedia().IsPlaying() && !app.GetMedia().IsPaused()) {
        RemoteCommand(REMOTE_PLAY_PAUSE);
    }
}

void PMprisBridge::Stop() { app.RunCommand(CMD_STOP); }

void PMprisBridge::Next() { RemoteCommand(REMOTE_NEXT); }

void PMprisBridge::Previous() { RemoteCommand(REMOTE_PREVIOUS); }

void PMprisBridge::SetPosition(int64_t microseconds) {
    app.SeekSeconds(static_cast<int>(microseconds / 1'000'000));
}

int64_t PMprisBridge::Position() { return static_cast<int64_t>(app.GetMedia().GetPosition()) * 1000; }

void PMprisBridge::SetVolume(double volume) {
    // The window's slider runs from full (0) down to silence (50); it moves
    // too, so that it is what the settings keep.
    int position = 50 - static_cast<int>(volume * 50 + 0.5);
    app.GetVolumeSlider().SetValue(position);
    app.GetMedia().SetVolume(VolumeFromSlider(position));
}

MprisState PMprisBridge::ReadState() {
    MprisState state;
    PPlayQueue& queue = app.GetQueue();
    PAppMedia& media = app.GetMedia();
    int index = queue.GetIndex();
    int count = queue.GetCount();
    state.canPlay = count > 0 || !app.GetCurrentFolder().IsEmpty();
    state.canPause = index >= 0;
    state.canGoNext = index >= 0 && (index + 1 < count || queue.GetRepeat());
    state.canGoPrevious = index > 0 || (index >= 0 && queue.GetRepeat());
    state.canSeek = index >= 0 && media.IsMediaOpen() && media.GetDuration() > 0;
    state.volume = media.GetVolume() / 100.0;
    if (index >= 0 && media.IsMediaOpen()) {
        state.status = media.IsPaused() ? MprisStatus::Paused : MprisStatus::Playing;
    }
    if (index >= 0 && index < count) {
        const char* path = queue.GetEntries().GetAt(index)->c_str();
        PTrackNames names = GetTrackNames(path, app.GetRootFolder().c_str());
        state.track.id = index;
        state.track.path = path;
        state.track.title = names.song.c_str();
        state.track.album = names.album.c_str();
        if (!names.artist.IsEmpty()) {
            state.track.artists.push_back(names.artist.c_str());
        }
        state.track.lengthMicroseconds = static_cast<int64_t>(media.GetDuration()) * 1000;
        if (coverFolder != names.albumFolder.c_str()) {
            coverFolder = names.albumFolder.c_str();
            cover = coverFolder.empty() ? "" : app.GetView().GetCovers().FindCover(coverFolder.c_str()).c_str();
        }
        state.track.coverPath = cover;
    }
    return state;
}
