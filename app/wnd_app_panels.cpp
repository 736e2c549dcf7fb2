// The main window's side of the panels round it: thumbnails, the
// now-playing panel, the playlist panel and the strip, and the dialogs it
// runs for them.
#include "app/settings.h"
#include "app/wnd_app_main.h"
#include "foundation/file.h"
#include "toolkit/wnd_app.h"

void PWndApp::ShowThumbnails(bool show) {
    thumbSpace.Show(show ? SW_SHOW : SW_HIDE);
}

void PWndApp::FocusView() {
    if (thumbSpace.IsVisible()) {
        SetFocus(thumbSpace.GetHandle());
    } else if (tracks.IsVisible()) {
        SetFocus(tracks.GetHandle());
    }
}

void PWndApp::FillThumbnails() {}

void PWndApp::ShowNowPlaying(const char* /*path*/, int /*position*/, int /*count*/) {}

void PWndApp::OnMediaTick() {}

void PWndApp::UpdateQueueCount() {}

void PWndApp::ReloadPlaylists(bool /*restore*/) {}

SString PWndApp::CurrentPlaylistName() const {
    return SString("");
}

bool PWndApp::AppendToPlaylist(const SStringArray& /*files*/) {
    return false;
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
