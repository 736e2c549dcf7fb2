// The main window's side of the panels round it: thumbnails, the
// now-playing panel, the playlist panel and the strip, and the dialogs it
// runs for them.
#include <cstdio>
#include <utility>
#include <vector>

#include "app/resources.h"
#include "app/settings.h"
#include "app/wnd_setting.h"
#include "app/wnd_app_main.h"
#include "dialogs/wnd_dialog.h"
#include "foundation/file.h"
#include "library/metadata.h"
#include "panels/resources.h"
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
    StripShowTrack(path, position, count);
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
    StripUpdateTime();
}

void PWndApp::UpdateQueueCount() {
    int index = queue.GetIndex();
    if (index >= 0) {
        play.SetPlayingTrack(queue.GetEntries().GetAt(index)->c_str(), index + 1, queue.GetCount());
        play.UpdatePlayingTime();
        StripShowTrack(queue.GetEntries().GetAt(index)->c_str(), index + 1, queue.GetCount());
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

bool PWndApp::CloseChildWindows() {
    // The description window first: it may keep itself open (a text it
    // could not save), and then nothing else closes either.
    if (descriptionWnd != nullptr && descriptionWnd->GetHandle() != 0) {
        if (!descriptionWnd->CloseWindow()) {
            return false;
        }
        descriptionWnd->Destroy();
    }
    if (preferences != nullptr) {
        preferences->EndModal(-1); // cancelled: the closing window stores nothing of it
    }
    // The cover search window, with its worker told to stop and joined.
    coverSearch.reset();
    // The Book and help windows keep their places; sent archives go.
    CloseBookWindows();
    return true;
}

namespace {

// Runs an embedded dialog modally over owner with the texts given by
// control name; on OK reads back the text of answerName. False on Cancel
// or when the dialog cannot be built.
bool RunTextDialog(SWnd* owner, unsigned resource, const char* caption,
                   const std::vector<std::pair<const char*, SString>>& texts, const char* answerName,
                   SString* answer) {
    SFileMem file("BINARY", resource);
    SWndDialog dialog;
    SDialogBuildOptions options;
    options.parent = owner;
    options.forcePopup = true;
    options.stayHidden = true;
    if (!dialog.CreateFromDefinition(&file, options)) {
        return false;
    }
    dialog.SetText(caption);
    for (const auto& [name, text] : texts) {
        SWnd* control = dialog.GetControl(name);
        if (control != nullptr) {
            control->SetText(text.c_str());
        }
    }
    dialog.CenterOnParent(false);
    SWnd* edit = dialog.GetControl(answerName);
    if (edit != nullptr) {
        edit->OnSelectAll();
        SetFocus(edit->GetHandle());
    }
    bool accepted = dialog.DoModal() == 0 && edit != nullptr;
    if (accepted && answer != nullptr) {
        *answer = edit->GetText();
    }
    dialog.Destroy();
    return accepted;
}

} // namespace

bool PWndApp::AskSite(const char* folder, SString* site) {
    SString current = ReadSite(folder);
    return RunTextDialog(this, RESOURCE_PROPERTIES_DIALOG, "Properties",
                         {{"TXT_SITE", SString("Site:")}, {"EDIT_SITE", current}}, "EDIT_SITE", site);
}

bool PWndApp::AskPlaylistName(SString* name) {
    SString current = name != nullptr ? *name : SString("");
    SString answer;
    if (!RunTextDialog(this, RESOURCE_PLAYLIST_NAME_DIALOG, "Playlist",
                       {{"TXT_NAME", SString("New playlist name:")},
                        {"CANCEL", SString("Cancel")},
                        {"EDIT_NAME", current}},
                       "EDIT_NAME", &answer) ||
        answer.IsEmpty()) {
        return false;
    }
    if (name != nullptr) {
        *name = answer;
    }
    return true;
}

bool PWndApp::SaveImageAtomic(const SImage& picture, const char* path) {
    SFileMem memory;
    return picture.Save(&memory, IMAGE_PNG) && memory.SaveFile(path);
}
