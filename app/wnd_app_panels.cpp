// The main window's side of the panels round it: thumbnails, the
// now-playing panel, the playlist panel and the strip, and the dialogs it
// runs for them.
#include "app/settings.h"
#include "app/wnd_app_main.h"
#include "foundation/file.h"
#include "toolkit/wnd_app.h"

void PWndApp::ShowThumbnails(bool show) {
    thumbs.Show(show ? SW_SHOW : SW_HIDE);
}

void PWndApp::FocusView() {
    if (thumbs.IsVisible()) {
        SetFocus(thumbs.GetHandle());
    } else if (tracks.IsVisible()) {
        SetFocus(tracks.GetHandle());
    }
}

void PWndApp::FillThumbnails() {
    thumbs.SetThumbs(view.GetThumbnails());
}

void PWndApp::ShowNowPlaying(const char* path, int position, int count) {
    if (path == nullptr) {
        play.SetPlayingTrack(static_cast<const SPath*>(nullptr), 0, 0);
        play.ShowCover(nullptr);
        return;
    }
    play.SetPlayingTrack(path, position, count);
    SPath file(path);
    SImage picture;
    view.GetCovers().LoadCover(&picture, file.GetFolderPath().c_str());
    play.ShowCover(&picture);
    play.UpdatePlayingTime();
}

void PWndApp::OnMediaTick() {
    play.UpdatePlayingTime();
}

void PWndApp::UpdateQueueCount() {
    int index = queue.GetIndex();
    if (index >= 0) {
        play.SetPlayingTrack(queue.GetEntries().GetAt(index)->c_str(), index + 1, queue.GetCount());
        play.UpdatePlayingTime();
    }
}

void PWndApp::ReloadPlaylists(bool restore) {
    playlist.RefreshPlaylists();
    if (restore) {
        SString name = ReadSettingString(SETTING_PLAYLIST);
        if (!name.IsEmpty() && playlist.SelectPlaylist(name.c_str())) {
            playlist.LoadPlaylist();
        }
    }
}

SString PWndApp::CurrentPlaylistName() const {
    return playlist.GetCurrentName();
}

bool PWndApp::AppendToPlaylist(const SStringArray& files) {
    return playlist.AppendFilesAndSave(files);
}

void PWndApp::ApplyStrip() {}

void PWndApp::RemoveStrip() {}

bool PWndApp::OpenCompanion(int /*command*/) {
    return false;
}

bool PWndApp::CloseChildWindows() {
    return true;
}

bool PWndApp::AskSite(const char* /*folder*/, SString* /*site*/) {
    return false;
}

bool PWndApp::AskPlaylistName(SString* /*name*/) {
    return false;
}

bool PWndApp::SaveImageAtomic(const SImage& picture, const char* path) {
    SFileMem memory;
    return picture.Save(&memory, IMAGE_PNG) && memory.SaveFile(path);
}
