// PWndPlaylist: the playlist panel along the bottom of the main window: a
// sorted drop-down of the collection's playlists, the entries of the open
// one, the cover of the selected entry, the count of entries, and seven
// small buttons (play all, play shuffled, new, rename, delete, move up,
// move down). Every change is written to disk at once by its
// PPlaylistStore; the panel draws the store and forwards the user's
// commands, and hands the entries it plays to the main window's queue.
#pragma once

#include <memory>

#include "controls/media_ctrl.h"
#include "foundation/array.h"
#include "foundation/image.h"
#include "library/playlist.h"
#include "toolkit/combo_ctrl.h"
#include "toolkit/list_ctrl.h"
#include "toolkit/wnd.h"

class PPanelHost;
class SFont;

// The panel's controls by their IDs.
constexpr uintptr_t PLAYLIST_ID_COMBO = 1000;
constexpr uintptr_t PLAYLIST_ID_LIST = 1001;
constexpr uintptr_t PLAYLIST_ID_PLAY = 1002;
constexpr uintptr_t PLAYLIST_ID_SHUFFLE = 1003;
constexpr uintptr_t PLAYLIST_ID_NEW = 1004;
constexpr uintptr_t PLAYLIST_ID_DELETE = 1005;
constexpr uintptr_t PLAYLIST_ID_RENAME = 1006;
constexpr uintptr_t PLAYLIST_ID_UP = 1007;
constexpr uintptr_t PLAYLIST_ID_DOWN = 1008;
constexpr uintptr_t PLAYLIST_ID_COVER = 1009;
constexpr int PLAYLIST_BUTTON_COUNT = 7;

// The question before a playlist goes to the trash (its caption is the
// playlist's name).
inline constexpr const char* PLAYLIST_DELETE_QUESTION =
    "Are you sure to want to delete this playlist?";
// The panel's height in the main window.
constexpr int PLAYLIST_PANEL_HEIGHT = 101;

class PWndPlaylist : public SWnd {
public:
    explicit PWndPlaylist(PPanelHost* host);
    ~PWndPlaylist() override;

    // A visible child of parent at rect (parent client coordinates).
    bool Create(SWnd* parent, const SRect& rect);

    // The playlists. RefreshPlaylists reads the playlists folder under the
    // host's root again (making "Playlist" when there is none).
    void RefreshPlaylists();
    // Selects a playlist by its exact name in the drop-down (the main
    // window's restore of "Playlist"); false when there is none such.
    bool SelectPlaylist(const char* name);
    SString GetCurrentName() const { return store.GetCurrentName(); }
    // An empty name means the drop-down's.
    void LoadPlaylist(const char* name = "");
    bool SavePlaylist(const char* name = "");
    void UpdateCount();
    // The selected entry's cover in the cover box; -1 clears it.
    void ShowEntryCover(int row);

    // The entries. AppendFiles adds absolute paths without saving;
    // AppendFilesAndSave is the main window's add-to-playlist command: it
    // adds them as another process may be adding too, saves and counts.
    bool AppendFiles(const SStringArray& paths);
    bool AppendFilesAndSave(const SStringArray& paths);
    void PlaySelected();
    void PlayAll(bool shuffle);
    void RemoveSelected();
    void MoveUp();
    void MoveDown();

    // The drop-down's current playlist.
    void CreatePlaylist();
    void RenamePlaylist();
    void DeletePlaylist();

    // The rectangle of a control (by ID) for a client width and height.
    static SRect LayoutRect(uintptr_t id, int width, int height);

    // For the main window and the tests.
    PPlaylistStore& GetStore() { return store; }
    SComboCtrl& GetCombo() { return combo; }
    SListCtrl& GetList() { return list; }
    SMediaCtrl& GetCover() { return coverCtrl; }
    SMediaCtrl& GetCountLabel() { return countLabel; }
    // The button of an ID from PLAYLIST_ID_PLAY to PLAYLIST_ID_DOWN.
    SMediaCtrl* GetButton(uintptr_t id);
    const SFont* GetListFont() const { return font.get(); }

protected:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    void Layout();
    // Shows the store: the drop-down's names and choice, the entries and
    // the selected row, the count and the cover.
    void ShowNames();
    void ShowEntries();
    void ShowAll();
    void Command(uintptr_t id);
    void HandleNotification(unsigned message, WPARAM wParam, LPARAM lParam);

    PPanelHost* host;
    PPlaylistStore store;
    SMediaCtrl coverCtrl;
    SListCtrl list;
    SComboCtrl combo;
    SMediaCtrl buttons[PLAYLIST_BUTTON_COUNT];
    SImage buttonArt[PLAYLIST_BUTTON_COUNT];
    SMediaCtrl countLabel;
    SImage cover;
    std::unique_ptr<SFont> font;
    bool showing = false; // the panel is setting its own controls
};
