#include "panels/wnd_playlist.h"

#include <string>
#include <vector>

#include "controls/media_layout.h"
#include "panels/panel_host.h"
#include "panels/resources.h"
#include "toolkit/draw.h"
#include "toolkit/notification.h"
#include "toolkit/sys_colors.h"

namespace {

// The entry list's font.
constexpr const char* LIST_FONT_FACE = "Verdana";
constexpr double LIST_FONT_POINTS = 7.5;

struct ButtonInfo {
    uintptr_t id;
    unsigned art;
    const char* tip;
};

// In the order of their IDs.
constexpr ButtonInfo BUTTONS[PLAYLIST_BUTTON_COUNT] = {
    {PLAYLIST_ID_PLAY, RESOURCE_PLAYLIST_PLAY, "Play all"},
    {PLAYLIST_ID_SHUFFLE, RESOURCE_PLAYLIST_SHUFFLE, "Play all shuffled"},
    {PLAYLIST_ID_NEW, RESOURCE_PLAYLIST_NEW, "New playlist"},
    {PLAYLIST_ID_DELETE, RESOURCE_PLAYLIST_DELETE, "Delete playlist"},
    {PLAYLIST_ID_RENAME, RESOURCE_PLAYLIST_RENAME, "Rename playlist"},
    {PLAYLIST_ID_UP, RESOURCE_PLAYLIST_UP, "Move up"},
    {PLAYLIST_ID_DOWN, RESOURCE_PLAYLIST_DOWN, "Move down"},
};

// The folder of an absolute file path, with its "/".
SString FolderOf(const SString& path) {
    int slash = path.ReverseFind('/');
    return slash >= 0 ? path.Left(slash + 1) : SString();
}

} // namespace

PWndPlaylist::PWndPlaylist(PPanelHost* host) : host(host) {
    EnsurePanelsResources();
    font.reset(MakeFont(LIST_FONT_FACE, PointsToHeight(LIST_FONT_POINTS), 0));
    for (int i = 0; i < PLAYLIST_BUTTON_COUNT; ++i) {
        buttonArt[i].LoadResource("BINARY", BUTTONS[i].art);
        buttonArt[i].drawMode = DRAW_CENTER;
    }
}

PWndPlaylist::~PWndPlaylist() {
    Destroy();
}

SRect PWndPlaylist::LayoutRect(uintptr_t id, int width, int height) {
    int w = width;
    int h = height;
    switch (id) {
    case PLAYLIST_ID_COMBO:
        return SRect{2, 2, 158, 160};
    case 0: // the count label
        return SRect{2, 27, 158, 51};
    case PLAYLIST_ID_LIST:
        return SRect{160, 0, w - h, h};
    case PLAYLIST_ID_COVER:
        return SRect{w - h, 0, w, h};
    case PLAYLIST_ID_PLAY:
        return SRect{2, h - 48, 28, h - 22};
    case PLAYLIST_ID_SHUFFLE:
        return SRect{30, h - 48, 56, h - 22};
    case PLAYLIST_ID_NEW:
        return SRect{2, h - 20, 20, h - 2};
    case PLAYLIST_ID_RENAME:
        return SRect{22, h - 20, 40, h - 2};
    case PLAYLIST_ID_DELETE:
        return SRect{42, h - 20, 60, h - 2};
    case PLAYLIST_ID_DOWN:
        return SRect{140, h - 20, 158, h - 2};
    case PLAYLIST_ID_UP:
        return SRect{120, h - 20, 138, h - 2};
    default:
        return SRect{};
    }
}

SMediaCtrl* PWndPlaylist::GetButton(uintptr_t id) {
    if (id < PLAYLIST_ID_PLAY || id > PLAYLIST_ID_DOWN) {
        return nullptr;
    }
    return &buttons[id - PLAYLIST_ID_PLAY];
}

bool PWndPlaylist::Create(SWnd* parent, const SRect& rect) {
    if (!SWnd::Create("", WS_VISIBLE, 0, &rect, parent != nullptr ? parent->GetHandle() : 0)) {
        return false;
    }
    SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
    int w = GetClientWidth();
    int h = GetClientHeight();

    SRect place = LayoutRect(PLAYLIST_ID_COMBO, w, h);
    // The field is as high as one row of the drop-down; the rest of the
    // rectangle is the room the list drops into.
    place.bottom = place.top + 22;
    if (!combo.Create(this, place, PLAYLIST_ID_COMBO, COMBO_DROP_LIST)) {
        return false;
    }
    place = LayoutRect(0, w, h);
    if (!countLabel.Create("", WS_VISIBLE, 0, &place, GetHandle(), 0)) {
        return false;
    }
    countLabel.SetAlign(MEDIA_ALIGN_RIGHT | MEDIA_ALIGN_MIDDLE);
    countLabel.SetMargins(1, 1, 4, 1); // clear of the list beside it

    place = LayoutRect(PLAYLIST_ID_LIST, w, h);
    if (!list.Create(this, place, PLAYLIST_ID_LIST, LIST_SELECTION_SINGLE)) {
        return false;
    }
    SendMessage(list.GetHandle(), WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), 0);

    place = LayoutRect(PLAYLIST_ID_COVER, w, h);
    if (!coverCtrl.Create("", WS_VISIBLE, WS_EX_STATICEDGE, &place, GetHandle(),
                          PLAYLIST_ID_COVER)) {
        return false;
    }
    coverCtrl.SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
    coverCtrl.SetMargins(0, 0, 0, 0);

    for (int i = 0; i < PLAYLIST_BUTTON_COUNT; ++i) {
        place = LayoutRect(BUTTONS[i].id, w, h);
        SMediaCtrl& button = buttons[i];
        if (!button.Create("", WS_VISIBLE, 0, &place, GetHandle(), BUTTONS[i].id)) {
            return false;
        }
        button.SetMargins(0, 0, 0, 0);
        button.SetButton(true);
        button.SetImage(&buttonArt[i]);
        button.SetToolTip(true);
        button.SetToolTipText(BUTTONS[i].tip);
    }
    UpdateCount();
    return true;
}

void PWndPlaylist::Layout() {
    if (GetHandle() == 0) {
        return;
    }
    int w = GetClientWidth();
    int h = GetClientHeight();
    if (list.GetHandle() != 0) {
        list.MoveWindow(LayoutRect(PLAYLIST_ID_LIST, w, h));
    }
    if (coverCtrl.GetHandle() != 0) {
        coverCtrl.MoveWindow(LayoutRect(PLAYLIST_ID_COVER, w, h));
    }
    for (int i = 0; i < PLAYLIST_BUTTON_COUNT; ++i) {
        if (buttons[i].GetHandle() != 0) {
            buttons[i].MoveWindow(LayoutRect(BUTTONS[i].id, w, h));
        }
    }
}

void PWndPlaylist::ShowNames() {
    showing = true;
    combo.Clear();
    const SStringArray& names = store.GetNames();
    for (int i = 0; i < names.GetCount(); ++i) {
        combo.AddText(names.GetText(i).c_str());
    }
    SString current = store.GetCurrentName();
    int index = current.IsEmpty() ? -1 : names.Find(current.c_str());
    combo.SetSelectedIndex(index);
    showing = false;
}

void PWndPlaylist::ShowEntries() {
    showing = true;
    list.Clear();
    const SStringArray& entries = store.GetEntries();
    std::vector<std::string> texts;
    texts.reserve(static_cast<size_t>(entries.GetCount()));
    for (int i = 0; i < entries.GetCount(); ++i) {
        texts.emplace_back(entries.GetText(i).c_str());
    }
    list.AddRows(std::move(texts));
    int selected = store.GetSelection();
    if (selected >= 0) {
        list.SetCurrentRow(selected);
    }
    showing = false;
    ShowEntryCover(selected);
}

void PWndPlaylist::ShowAll() {
    ShowNames();
    ShowEntries();
    UpdateCount();
}

void PWndPlaylist::RefreshPlaylists() {
    if (host != nullptr) {
        store.SetRoot(host->GetRootFolder().c_str());
    }
    store.RefreshPlaylists(true);
    ShowAll();
}

bool PWndPlaylist::SelectPlaylist(const char* name) {
    if (!store.SelectPlaylist(name)) {
        return false;
    }
    ShowNames();
    return true;
}

void PWndPlaylist::LoadPlaylist(const char* name) {
    bool loaded = store.LoadPlaylist(name);
    ShowEntries();
    // A playlist that cannot be read leaves the count as it was.
    if (loaded) {
        UpdateCount();
    }
}

bool PWndPlaylist::SavePlaylist(const char* name) {
    return store.SavePlaylist(name);
}

void PWndPlaylist::UpdateCount() {
    countLabel.SetText(store.GetCountText().c_str());
}

void PWndPlaylist::ShowEntryCover(int row) {
    SString path = store.GetEntryPath(row);
    if (row < 0 || path.IsEmpty() || host == nullptr) {
        cover.Empty();
        coverCtrl.SetImage(nullptr);
        coverCtrl.SetCursor(0);
        return;
    }
    SImage loaded;
    host->LoadFolderCover(&loaded, FolderOf(path).c_str());
    coverCtrl.SetImage(nullptr);
    if (!cover.CopyFrom(&loaded)) {
        cover.Empty();
        coverCtrl.SetCursor(0);
        return;
    }
    cover.drawMode = DRAW_FIT;
    coverCtrl.SetImage(&cover);
    coverCtrl.SetCursor(CURSOR_HAND + 1);
}

bool PWndPlaylist::AppendFiles(const SStringArray& paths) {
    bool all = store.AppendFiles(paths);
    ShowEntries();
    return all;
}

bool PWndPlaylist::AppendFilesAndSave(const SStringArray& paths) {
    bool done = store.AppendFilesAndSave(paths);
    ShowEntries();
    UpdateCount();
    return done;
}

void PWndPlaylist::PlaySelected() {
    int row = store.GetSelection();
    if (row < 0 || host == nullptr) {
        return;
    }
    SStringArray queue;
    queue.Add(store.GetEntryPath(row));
    host->SetPlayQueue(queue);
}

void PWndPlaylist::PlayAll(bool shuffle) {
    if (host == nullptr) {
        return;
    }
    SStringArray queue = store.GetPlayList(shuffle);
    host->SetPlayQueue(queue);
}

void PWndPlaylist::RemoveSelected() {
    if (store.GetSelection() < 0) {
        return;
    }
    store.RemoveSelected();
    ShowEntries();
    UpdateCount();
}

void PWndPlaylist::MoveUp() {
    if (store.MoveUp()) {
        ShowEntries();
    }
}

void PWndPlaylist::MoveDown() {
    if (store.MoveDown()) {
        ShowEntries();
    }
}

void PWndPlaylist::CreatePlaylist() {
    store.CreatePlaylist();
    ShowAll();
}

void PWndPlaylist::RenamePlaylist() {
    SString name = store.GetCurrentName();
    if (name.IsEmpty() || host == nullptr) {
        return;
    }
    if (!host->AskPlaylistName(&name) || name.IsEmpty()) {
        return;
    }
    if (store.RenamePlaylist(name.c_str())) {
        ShowAll();
    }
}

void PWndPlaylist::DeletePlaylist() {
    SString name = store.GetCurrentName();
    if (name.IsEmpty() || host == nullptr) {
        return;
    }
    if (!host->AskYesNo(PLAYLIST_DELETE_QUESTION, name.c_str())) {
        return;
    }
    store.DeletePlaylist();
    ShowAll();
}

void PWndPlaylist::Command(uintptr_t id) {
    switch (id) {
    case PLAYLIST_ID_PLAY:
        PlayAll(false);
        break;
    case PLAYLIST_ID_SHUFFLE:
        PlayAll(true);
        break;
    case PLAYLIST_ID_NEW:
        CreatePlaylist();
        break;
    case PLAYLIST_ID_RENAME:
        RenamePlaylist();
        break;
    case PLAYLIST_ID_DELETE:
        DeletePlaylist();
        break;
    case PLAYLIST_ID_UP:
        MoveUp();
        break;
    case PLAYLIST_ID_DOWN:
        MoveDown();
        break;
    default:
        break;
    }
}

void PWndPlaylist::HandleNotification(unsigned message, WPARAM wParam, LPARAM lParam) {
    SNotification note(message, wParam, lParam);
    if (note.Is(SN_COMBO_SELECT_CHANGE) && note.From(&combo)) {
        int index = combo.GetSelectedIndex();
        if (index >= 0 && store.SelectPlaylist(combo.GetItemText(index).c_str())) {
            LoadPlaylist("");
        }
        return;
    }
    if (note.Is(SN_LIST_SELECT) && note.From(&list)) {
        if (showing) {
            return;
        }
        int row = list.GetCurrentRow();
        store.SetSelection(list.IsSelected(row) ? row : -1);
        ShowEntryCover(store.GetSelection());
        return;
    }
    if (note.Is(SN_LIST_DOUBLE_CLICK) && note.From(&list)) {
        PlaySelected();
        return;
    }
    if (note.Is(SN_LIST_KEY) && note.From(&list)) {
        if (note.Code() == VK_RETURN) {
            PlaySelected();
        } else if (note.Code() == VK_DELETE) {
            RemoveSelected();
        }
        return;
    }
    if (note.Is(SN_MEDIA_BUTTON_CLICKED)) {
        for (int i = 0; i < PLAYLIST_BUTTON_COUNT; ++i) {
            if (note.From(&buttons[i])) {
                Command(BUTTONS[i].id);
                return;
            }
        }
        return;
    }
    if (note.Is(SN_MEDIA_MOUSE) && note.From(&coverCtrl) &&
        note.MouseCode() == (MOUSE_CLICK | MOUSE_LEFT)) {
        int row = store.GetSelection();
        SString path = store.GetEntryPath(row);
        if (row >= 0 && !path.IsEmpty() && host != nullptr) {
            host->OpenFolder(FolderOf(path).c_str(), "", false);
        }
    }
}

LRESULT PWndPlaylist::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        Layout();
        break;
    case SN_COMBO_SELECT_CHANGE:
    case SN_LIST_SELECT:
    case SN_LIST_DOUBLE_CLICK:
    case SN_LIST_KEY:
    case SN_MEDIA_BUTTON_CLICKED:
    case SN_MEDIA_MOUSE:
        HandleNotification(message, wParam, lParam);
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
