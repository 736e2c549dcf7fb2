// The main window's commands: the message handler, the toolbar and menu
// commands, keys, context menus, the remote commands and the player's
// reports.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "app/endpoints.h"
#include "app/settings.h"
#include "app/trace.h"
#include "app/wnd_app_main.h"
#include "foundation/disk.h"
#include "foundation/file.h"
#include "foundation/keyboard.h"
#include "foundation/message_numbers.h"
#include "foundation/network.h"
#include "foundation/parser.h"
#include "library/media.h"
#include "library/metadata.h"
#include "toolkit/mouse_event.h"
#include "toolkit/notification.h"
#include "toolkit/selector.h"
#include "toolkit/wnd_app.h"

namespace {

// The local path of a "file:" address (its escapes decoded); "" for any
// other address.
SString LocalPathOfAddress(const char* address) {
    if (strncmp(address, "file://", 7) != 0) {
        return SString("");
    }
    const char* p = address + 7;
    if (*p != '/') {
        const char* slash = strchr(p, '/'); // "file://host/path"
        if (slash == nullptr) {
            return SString("");
        }
        p = slash;
    }
    SString path;
    for (; *p != 0 && *p != '?' && *p != '#'; ++p) {
        if (*p == '%' && isxdigit(static_cast<unsigned char>(p[1])) &&
            isxdigit(static_cast<unsigned char>(p[2]))) {
            char digits[3] = {p[1], p[2], 0};
            path += static_cast<char>(strtol(digits, nullptr, 16));
            p += 2;
        } else {
            path += *p;
        }
    }
    return path;
}

} // namespace

LRESULT PWndApp::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SNotification note(message, wParam, lParam);
    switch (message) {
    case SM_CREATE: {
        BuildControls();
        ApplyStartSettings();
        ReloadLibrary(true);
        SDisk disk;
        if (!disk.IsFile(bookPath.c_str()) && !welcomePath.IsEmpty()) {
            ShowThumbnails(false);
            ShowPage(welcomePath.c_str(), "");
        }
        return 0;
    }
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    case WM_SIZE:
        Layout();
        break;
    case WM_SETFOCUS:
        FocusView();
        return 0;
    case WM_CLOSE:
        if (!CloseMain()) {
            return 0;
        }
        Destroy();
        return 0;
    case WM_QUERYENDSESSION:
        SaveTrackText();
        SaveSettings();
        return 1;
    case SM_KEY:
        if (OnKey(static_cast<unsigned>(wParam), static_cast<HWND>(lParam))) {
            return -1;
        }
        return 0;
    case SM_REMOTE_COMMAND:
        if (wParam == 500) {
            OnRemoteCommand(static_cast<int>(lParam));
            return 0;
        }
        break;
    case SM_DROP_FILES:
        return 0;
    case WM_COMMAND:
        OnCommand(static_cast<int>(wParam & 0xFFFF));
        return 0;
    default:
        break;
    }
    if (note.IsNotification()) {
        SWnd* control = note.Control();
        switch (message) {
        case SN_EDITOR_CHANGE:
            // Every change of a track's text is kept at once.
            if (note.From(&editor) && !loadingText) {
                textChanged = true;
                SaveTrackText();
            }
            return 0;
        case SN_WEB_BEFORE_NAVIGATE:
            return OnBeforeNavigate(note.Text());
        case SN_LIST_KEY:
            OnListKey(control, static_cast<int>(note.Code()));
            return 0;
        case SN_LIST_MOUSE:
            OnListMouse(control, note.MouseCode(), note.Point());
            return 0;
        case SN_LIST_SELECT:
            OnListSelect(control);
            return 0;
        case SN_LIST_DOUBLE_CLICK:
            OnListDoubleClick(control);
            return 0;
        case SN_MEDIA_LINK_CLICKED:
            return OnLinkClicked(note.Text());
        case SN_MENU_COMMAND:
        case SN_TOOLBAR_COMMAND:
            OnCommand(static_cast<int>(note.Code()));
            return 0;
        case SN_TRAY:
            if (note.Code() == 0x14) {
                UpdateTrayMenu();
                tray.ShowMenu();
            } else if (note.Code() == 0x41) {
                ToggleWindow(false);
            }
            return 0;
        case SN_SCROLL_FORWARD:
            if (note.From(&volume)) {
                media.SetVolume(VolumeFromSlider(volume.GetValue()));
            }
            return 0;
        default:
            break;
        }
    }
    return SWnd::OnMessage(message, wParam, lParam);
}

void PWndApp::RunCommand(int command) {
    OnCommand(command);
}

bool PWndApp::OnCommand(int command) {
    SString selected = SelectedFolderPath();
    switch (command) {
    case CMD_HOME:
        return OpenFolder(GetRootFolder().c_str(), "", true);
    case CMD_PARENT:
        return NavigateFolder("..", view.GetCurrent().GetLastFolder(true).c_str(), false);
    case CMD_PLAY_AT: {
        std::vector<int> rows = tracks.GetSelectedRows();
        int row = rows.empty() ? -1 : rows[0];
        return !selected.IsEmpty() && queue.PlayFolderAt(row, selected.c_str());
    }
    case CMD_PLAY_RANDOM:
    case CMD_PLAY_FOLDERS:
    case CMD_PLAY_ALL_RANDOM: {
        bool tree = command != CMD_PLAY_RANDOM;
        bool random = command != CMD_PLAY_FOLDERS;
        return queue.PlayFolders(selected.IsEmpty() ? nullptr : selected.c_str(),
                                 GetCurrentFolder().c_str(), tree, random);
    }
    case CMD_PLAY_SELECTED: {
        SStringArray paths;
        SArray<int> rows;
        for (int row : tracks.GetSelectedRows()) {
            rows.Add(row);
        }
        view.GetSelectedTracks(rows, paths);
        return queue.PlaySelectedTracks(paths);
    }
    case CMD_PREVIOUS:
        return queue.PreviousTrack();
    case CMD_NEXT:
        return queue.NextTrack();
    case CMD_PAUSE:
        return queue.TogglePause();
    case CMD_STOP:
        return queue.StopPlaying();
    case CMD_REPEAT:
        queue.SetRepeat(toolBar.IsButtonChecked(CMD_REPEAT));
        return true;
    case CMD_SHUTDOWN:
        queue.SetShutdown(toolBar.IsButtonChecked(CMD_SHUTDOWN));
        return true;
    case CMD_HIDE:
        return ToggleWindow(false);
    case CMD_OPEN_BOOK:
        return OpenBook();
    case CMD_MAKE_BOOK:
        return MakeBook();
    case CMD_SEND_BOOK:
        return SendBook();
    case CMD_DESCRIPTIONS:
        return EditDescriptions();
    case CMD_PREFERENCES:
        return OpenPreferences();
    case CMD_HELP:
        return OpenHelp();
    case CMD_DONATION: {
        SNetwork network;
        return network.OpenUrl(GetEndpoint(ENDPOINT_DONATION, DEFAULT_DONATION_URL).c_str());
    }
    case CMD_QUIT:
        return Close();
    case CMD_FOLDER_ADD_QUEUE:
        return AddToQueue(true);
    case CMD_FOLDER_ADD_PLAYLIST:
        return AddToPlaylist(true);
    case CMD_EXPLORE: {
        if (selected.IsEmpty()) {
            return false;
        }
        SDisk disk;
        return disk.Explore(selected.c_str(), SW_SHOW);
    }
    case CMD_MAKE_COVER:
        return !selected.IsEmpty() && MakeCover(selected.c_str());
    case CMD_DOWNLOAD_COVER_BOTH:
        return DownloadCover(true);
    case CMD_DOWNLOAD_COVER:
        return DownloadCover(false);
    case CMD_PROPERTIES:
        return ShowProperties();
    case CMD_TRACK_ADD_QUEUE:
        return AddToQueue(false);
    case CMD_TRACK_ADD_PLAYLIST:
        return AddToPlaylist(false);
    case CMD_FIND_LYRICS:
        return FindLyrics();
    case CMD_DELETE:
        return DeleteSelectedTracks();
    default:
        if (command >= CMD_SEND_TO_SOMEONE) {
            return SendToAddress(command);
        }
        return false;
    }
}

bool PWndApp::OnKey(unsigned key, HWND /*sender*/) {
    bool inEditor = GetFocus() == editor.GetHandle();
    switch (key) {
    case VK_BACK:
        if (inEditor) {
            return false;
        }
        OnCommand(CMD_PARENT);
        return true;
    case VK_ESCAPE:
        if (inEditor) {
            return false;
        }
        queue.StopPlaying();
        return true;
    case VK_SPACE:
        if (inEditor) {
            return false;
        }
        queue.TogglePause();
        return true;
    case VK_F1:
        OnCommand(CMD_HELP);
        return true;
    case VK_F5:
        RefreshFolder();
        return true;
    case VK_F8:
        ToggleWindow(false);
        return true;
    default:
        return false;
    }
}

void PWndApp::OnRemoteCommand(int command) {
    switch (command) {
    case 1:
        ToggleWindow(false);
        break;
    case 2:
        if (queue.GetIndex() == -1) {
            SString selected = SelectedFolderPath();
            if (!selected.IsEmpty()) {
                queue.PlayFolderAt(-1, selected.c_str());
            }
        } else {
            queue.TogglePause();
        }
        break;
    case 3:
        queue.PreviousTrack();
        break;
    case 4:
        queue.NextTrack();
        break;
    default:
        break;
    }
}

// The lists.

void PWndApp::OnListKey(SWnd* list, int key) {
    if (key == VK_TAB) {
        if (list == &folders && tracks.IsVisible()) {
            SetFocus(tracks.GetHandle());
        } else if (list == &tracks) {
            SetFocus(folders.GetHandle());
        }
    } else if (key == VK_RETURN) {
        auto* control = dynamic_cast<SListCtrl*>(list);
        if (control != nullptr && control->GetSelectedCount() > 0) {
            OnListDoubleClick(list);
        }
    } else if (key == VK_DELETE && list == &tracks) {
        DeleteSelectedTracks();
    }
}

void PWndApp::OnListMouse(SWnd* list, unsigned code, SPoint point) {
    if (code != (MOUSE_DOWN | MOUSE_RIGHT)) {
        return;
    }
    SPoint screen = point;
    list->ClientToScreen(&screen);
    if (list == &folders) {
        int row = folders.RowAtPoint(point);
        if (row >= 0 && row != view.GetSelectedRow()) {
            folders.SetCurrentRow(row);
            OnListSelect(&folders);
        }
        if (view.GetSelectedRow() >= 0) {
            ShowFolderMenu(screen);
        }
    } else if (list == &tracks) {
        int row = tracks.RowAtPoint(point);
        if (row >= 0 && !tracks.IsSelected(row)) {
            tracks.SelectRange(0, tracks.GetRowCount() - 1, false);
            tracks.SetCurrentRow(row);
            tracks.SelectRange(row, row, true);
            OnListSelect(&tracks);
        }
        if (tracks.GetSelectedCount() > 0) {
            ShowTrackMenu(screen);
        }
    }
}

void PWndApp::OnListSelect(SWnd* list) {
    if (list == &folders) {
        if (fillingFolders) {
            return; // ShowFolder shows the view's own selection when the rows are in
        }
        SaveTrackText();
        std::vector<int> rows = folders.GetSelectedRows();
        view.SelectRow(rows.empty() ? -1 : rows[0]);
        ShowSelection();
        ShowFolderCounts();
        return;
    }
    if (list != &tracks) {
        return;
    }
    std::vector<int> rows = tracks.GetSelectedRows();
    const SStringArray& table = view.GetTrackTable();
    if (rows.size() == 1 && rows[0] < table.GetCount() &&
        GetMediaClass(table.GetAt(rows[0])->c_str()) == MEDIA_PICTURE) {
        toolBar.EnableButton(CMD_PLAY_SELECTED, false);
        ShowImageAsCover(table.GetAt(rows[0])->c_str());
        ShowTrackText();
        return;
    }
    toolBar.EnableButton(CMD_PLAY_SELECTED, !rows.empty());
    // A selection made with Alt held goes on to what plays.
    if (!rows.empty() && (SKeyboard::GetModifiers() & SKeyboard::MODIFIER_ALT) != 0) {
        AddToQueue(false);
    }
    ShowTrackText();
}

void PWndApp::OnListDoubleClick(SWnd* list) {
    if (list == &folders) {
        int row = view.GetSelectedRow();
        if (row < 0 || row >= static_cast<int>(view.GetRows().size())) {
            return;
        }
        const PFolderRow& folder = view.GetRows()[row];
        if (folder.data == FOLDER_HAS_SUBFOLDERS) {
            SString name = folder.name;
            NavigateFolder(name.c_str(), "", false);
        } else {
            queue.PlayFolderAt(-1, SelectedFolderPath().c_str());
        }
    } else if (list == &tracks) {
        OnCommand(CMD_PLAY_SELECTED);
    }
}

bool PWndApp::ShowImageAsCover(const char* path) {
    SImage picture;
    SFilePath file;
    if (!file.Open(path, false, false, true, true) || !picture.LoadScaled(&file, 150, 150)) {
        return false;
    }
    cover.SetCover(picture);
    return true;
}

// Menus.

void PWndApp::BuildMenus() {
    trayMenu.Clear();
    for (int id : {CMD_PREVIOUS, CMD_NEXT, CMD_PAUSE, CMD_STOP}) {
        static const char* const texts[] = {"Previous Track", "Next Track", "Pause", "Stop"};
        trayMenu.AppendItem(id, texts[id - CMD_PREVIOUS]);
    }
    trayMenu.AppendSeparator();
    trayMenu.AppendItem(CMD_HIDE, "Hide Window");
    trayMenu.AppendSeparator();
    trayMenu.AppendItem(CMD_QUIT, "Quit");
}

void PWndApp::UpdateTrayMenu() {
    SMenuItem* item = trayMenu.FindItem(CMD_HIDE);
    if (item != nullptr) {
        item->text = IsVisible() ? "Hide Window" : "Show Window";
    }
    // The transport follows the toolbar's buttons.
    for (int id : {CMD_PREVIOUS, CMD_NEXT, CMD_PAUSE, CMD_STOP}) {
        trayMenu.EnableItem(id, toolBar.IsButtonEnabled(id));
    }
    tray.UpdateMenu();
}

void PWndApp::BuildSendToMenu() {
    sendToAddresses.clear();
    SString emails = ReadSettingString(SETTING_EMAILS);
    SStringParser parser(emails.c_str());
    parser.Parse(";", SStringParser::PARSE_QUOTES, '"');
    for (int i = 0; i < parser.GetCount(); ++i) {
        SString token = parser.GetToken(i);
        if (!token.IsEmpty()) {
            sendToAddresses.push_back(token);
        }
    }
}

void PWndApp::ShowFolderMenu(SPoint screen) {
    folderMenu.Clear();
    SString name = CurrentPlaylistName();
    SString selected = view.GetRows()[view.GetSelectedRow()].name;
    folderMenu.AppendItem(CMD_FOLDER_ADD_QUEUE, "Add to current playlist");
    folderMenu.AppendItem(CMD_FOLDER_ADD_PLAYLIST, SString("Add to \"") + name + "\"");
    folderMenu.AppendSeparator();
    folderMenu.AppendItem(CMD_EXPLORE, "Explore Folder");
    folderMenu.AppendSeparator();
    folderMenu.AppendItem(CMD_MAKE_COVER, "Make Cover");
    folderMenu.AppendItem(CMD_DOWNLOAD_COVER, SString("Download Cover: ") + selected);
    folderMenu.AppendItem(CMD_DOWNLOAD_COVER_BOTH, SString("Download Cover: ") +
                                                       view.GetCurrent().GetLastFolder(true) + " " +
                                                       selected);
    folderMenu.AppendSeparator();
    folderMenu.AppendItem(CMD_PROPERTIES, "Properties...");
    folderMenu.TrackPopup(GetHandle(), screen.x, screen.y);
}

void PWndApp::ShowTrackMenu(SPoint screen) {
    trackMenu.Clear();
    trackMenu.AppendItem(CMD_TRACK_ADD_QUEUE, "Add to current playlist");
    trackMenu.AppendItem(CMD_TRACK_ADD_PLAYLIST, SString("Add to \"") + CurrentPlaylistName() + "\"");
    std::vector<int> rows = tracks.GetSelectedRows();
    const SStringArray& table = view.GetTrackTable();
    bool picture = rows.size() == 1 && rows[0] < table.GetCount() &&
                   GetMediaClass(table.GetAt(rows[0])->c_str()) == MEDIA_PICTURE;
    trackMenu.AppendItem(CMD_FIND_LYRICS, "Find Lyrics", picture ? MENU_ITEM_DISABLED : 0);
    SMenu* sendTo = trackMenu.AppendSubmenu("Send to...");
    sendTo->AppendItem(CMD_SEND_TO_SOMEONE, "Someone else");
    for (size_t i = 0; i < sendToAddresses.size(); ++i) {
        sendTo->AppendItem(CMD_SEND_TO_FIRST + static_cast<int>(i), sendToAddresses[i]);
    }
    trackMenu.AppendItem(CMD_DELETE, "Delete");
    trackMenu.TrackPopup(GetHandle(), screen.x, screen.y);
}

// Playing and queueing.

bool PWndApp::GatherFiles(bool fromFolder, SStringArray* files) {
    if (fromFolder) {
        SString folder = SelectedFolderPath();
        if (folder.IsEmpty()) {
            return false;
        }
        CollectMedia(*files, folder.c_str(), false, true, true, true, false, true);
        if (files->GetCount() == 0) {
            CollectMedia(*files, folder.c_str(), true, true, false, false, false, true);
        }
        return files->GetCount() > 0;
    }
    SArray<int> rows;
    for (int row : tracks.GetSelectedRows()) {
        rows.Add(row);
    }
    view.GetSelectedTracks(rows, *files);
    return files->GetCount() > 0;
}

bool PWndApp::AddToQueue(bool fromFolder) {
    if (fromFolder) {
        SString folder = SelectedFolderPath();
        return !folder.IsEmpty() && queue.AddFolder(folder.c_str());
    }
    SStringArray files;
    return GatherFiles(false, &files) && queue.AddFiles(files);
}

bool PWndApp::AddToPlaylist(bool fromFolder) {
    SStringArray files;
    if (!GatherFiles(fromFolder, &files)) {
        return false;
    }
    return AppendToPlaylist(files);
}

bool PWndApp::PlayFileInFolder(const char* name) {
    SString folder = GetCurrentFolder();
    SString path = folder + name;
    SDisk disk;
    if (disk.IsFolder(path.c_str())) {
        // A folder's card plays the folder.
        return queue.PlayFolderAt(-1, (path + "/").c_str()) && queue.GetIndex() >= 0;
    }
    SStringArray list;
    list.Add(path);
    return queue.SetPlayQueue(&list) && queue.GetIndex() >= 0;
}

bool PWndApp::SetPlayQueue(const SStringArray& paths) {
    return queue.SetPlayQueue(&paths);
}

bool PWndApp::PlayQueueIndex(int index) {
    return queue.PlayFrom(index, false);
}

int PWndApp::GetPlayPosition() const {
    return static_cast<int>(media.GetPosition());
}

int PWndApp::GetPlayLength() const {
    return static_cast<int>(media.GetDuration());
}

bool PWndApp::IsMediaLoaded() const {
    return media.IsMediaOpen();
}

void PWndApp::SeekSeconds(int seconds) {
    queue.SeekSeconds(seconds);
    OnMediaTick();
}

void PWndApp::OnNowPlaying(const char* path, int position, int count) {
    UpdateTransportButtons(true, count);
    ShowNowPlaying(path, position, count);
    if (media.HasPicture()) {
        if (!media.IsVisible()) {
            SSize size = media.GetNativeSize();
            if (size.width > 0 && size.height > 0) {
                media.SetClientSize(size.width, size.height);
            }
            media.CenterOnParent(false);
            SWindowPlacement placement;
            SRect area;
            GetWorkArea(&area);
            if (ReadPlacement(SETTING_WINDOW_VIDEO, area, &placement)) {
                media.MoveWindow(placement.rect);
            }
            media.Show(SW_SHOW);
        }
    } else {
        HideVideoWindow();
    }
}

void PWndApp::HideVideoWindow() {
    if (media.GetHandle() != 0 && media.IsVisible()) {
        SWindowPlacement placement;
        placement.rect = media.GetWindowRect();
        placement.isVisible = true;
        WritePlacement(SETTING_WINDOW_VIDEO, placement);
        media.Show(SW_HIDE);
    }
}

void PWndApp::OnNowPlayingCleared() {
    HideVideoWindow();
    UpdateTransportButtons(false, 0);
    statusBar.SetText(2, "");
    ShowNowPlaying(nullptr, 0, 0);
}

void PWndApp::OnQueueChanged() {
    UpdateTransportButtons();
    UpdateQueueCount();
}

void PWndApp::OnBuffering(bool stopped) {
    statusBar.SetText(2, stopped ? "" : "buffering...");
    StripSetBuffering(!stopped);
}

// Folder commands.

bool PWndApp::MakeCover(const char* folder) {
    SDisk disk;
    SPath path;
    path.SetFolder(folder);
    SString name = path.GetLastFolder(true);
    SString target = path.GetParent() + name + ".png";
    int top = folders.GetTopRow();
    int row = view.GetSelectedRow();
    if (!disk.IsFolder(folder)) {
        return false;
    }
    if (disk.IsFile(target.c_str()) &&
        MessageBox(GetHandle(), "Do you wish to delete the existing file?", "Confirmation",
                   MB_YESNO | MB_ICONQUESTION) != IDYES) {
        return false;
    }
    SSelector selector(this);
    SStringArray chosen;
    if (!selector.OpenFile("Make Cover", {SString("Images|*.png;*.jpg;*.jpeg;*.gif;*.bmp")}, folder,
                           &chosen) ||
        chosen.GetCount() == 0) {
        return false;
    }
    SImage picture;
    SFilePath file;
    if (!file.Open(chosen.GetAt(0)->c_str(), false, false, true, true) || !picture.Load(&file)) {
        return false;
    }
    file.Close();
    int side = std::min(picture.GetWidth(), picture.GetHeight());
    SImage square;
    if (!square.Crop(&picture, (picture.GetWidth() - side) / 2, (picture.GetHeight() - side) / 2, side,
                     side) ||
        !square.Resize(COVER_SIDE, COVER_SIDE)) {
        return false;
    }
    if (!SaveImageAtomic(square, target.c_str())) {
        return false;
    }
    SString selectedName = row >= 0 ? view.GetRows()[row].name : SString("");
    OpenFolder(GetCurrentFolder().c_str(), selectedName.c_str(), false);
    folders.ScrollTo(top * folders.GetRowHeight());
    ShowSelection();
    SetFocus(folders.GetHandle());
    return true;
}

bool PWndApp::ShowProperties() {
    SString folder = SelectedFolderPath();
    if (folder.IsEmpty()) {
        return false;
    }
    SString site;
    if (!AskSite(folder.c_str(), &site)) {
        return false;
    }
    WriteSite(folder.c_str(), site.c_str());
    ShowSelection();
    return true;
}

// Track commands.

bool PWndApp::DeleteSelectedTracks() {
    SArray<int> rows;
    for (int row : tracks.GetSelectedRows()) {
        rows.Add(row);
    }
    if (rows.GetCount() == 0) {
        return false;
    }
    if (MessageBox(GetHandle(), "Are you sure to want to delete it?", "Confirmation",
                   MB_YESNOCANCEL | MB_ICONQUESTION) != IDYES) {
        return false;
    }
    SaveTrackText();
    SStringArray paths;
    view.GetSelectedTracks(rows, paths);
    SDisk disk;
    for (int i = 0; i < paths.GetCount(); ++i) {
        disk.Delete(paths.GetAt(i)->c_str(), nullptr, false, false);
    }
    RefreshFolder();
    return true;
}

bool PWndApp::SendToAddress(int command) {
    SArray<int> rows;
    for (int row : tracks.GetSelectedRows()) {
        rows.Add(row);
    }
    SStringArray paths;
    view.GetSelectedTracks(rows, paths);
    if (paths.GetCount() == 0) {
        return false;
    }
    SString address;
    int index = command - CMD_SEND_TO_FIRST;
    if (index >= 0 && index < static_cast<int>(sendToAddresses.size())) {
        address = sendToAddresses[index];
    }
    SPath file(paths.GetAt(0)->c_str());
    SNetwork network;
    bool sent = network.SendMail(address.c_str(), file.GetName().c_str(), "", paths.GetAt(0)->c_str());
    ShowMainWindow();
    return sent;
}

bool PWndApp::FindLyrics() {
    std::vector<int> rows = tracks.GetSelectedRows();
    if (rows.empty()) {
        return false;
    }
    SString name = tracks.GetText(rows[0]);
    SNetwork network;
    SString address = GetEndpoint(ENDPOINT_LYRICS, DEFAULT_LYRICS_URL) + EscapeQuery((name + " lyrics").c_str());
    return network.OpenUrl(address.c_str());
}

// Links and pages.

LRESULT PWndApp::OnLinkClicked(const char* link) {
    if (link == nullptr) {
        return 0;
    }
    inner.Show(SW_HIDE);
    web.NavigateUrl(link, "");
    web.Show(SW_SHOW);
    return -1;
}

LRESULT PWndApp::OnBeforeNavigate(const char* url) {
    if (url == nullptr) {
        return 0;
    }
    SString address = url;
    // The Book's folder links end in ".link": they open the folder in the
    // main window instead of a page.
    int dot = address.ReverseFind('.');
    if (dot < 0 || SString(address.c_str() + dot + 1).CompareNoCase("link") != 0) {
        return 0;
    }
    SString path = LocalPathOfAddress(url);
    SString rootText = GetRootFolder();
    SString relative;
    if (path.GetLength() > rootText.GetLength() &&
        strncmp(path.c_str(), rootText.c_str(), static_cast<size_t>(rootText.GetLength())) == 0) {
        relative = path.c_str() + rootText.GetLength();
    } else {
        // Another form of address: the part below the root's depth.
        SPath target(path.IsEmpty() ? url : path.c_str());
        SStringArray rootParts;
        SStringArray targetParts;
        int rootCount = view.GetRoot().GetParts(&rootParts);
        int count = target.GetParts(&targetParts);
        for (int i = rootCount; i < count; ++i) {
            if (!relative.IsEmpty()) {
                relative += "/";
            }
            relative += *targetParts.GetAt(i);
        }
    }
    relative.Replace('\\', '/');
    SPath folder((rootText + relative).c_str());
    OpenFolder(folder.GetFolderPath().c_str(), folder.GetTitle().c_str(), false);
    return 1;
}

// Questions.

bool PWndApp::AskYesNo(const char* text, const char* caption) {
    return MessageBox(GetHandle(), text, caption, MB_YESNOCANCEL | MB_ICONQUESTION) == IDYES;
}
