// The main window: building the controls, the layout, the library reload,
// the settings and the close path. Commands are in wnd_app_commands.cpp.
#include "app/wnd_app_main.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "app/data_files.h"
#include "app/resources.h"
#include "app/settings.h"
#include "app/trace.h"
#include "foundation/disk.h"
#include "foundation/message_numbers.h"
#include "foundation/network.h"
#include "foundation/parser.h"
#include "library/media.h"
#include "library/metadata.h"
#include "pages/resources.h"
#include "panels/resources.h"
#include "toolkit/notification.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd_app.h"

namespace {

constexpr const char* PROGRAM_TITLE = "Melkora Browser";
constexpr const char* PROGRAM_VERSION = "1.0.3.0";
constexpr int MIN_WIDTH = 800;
constexpr int MIN_HEIGHT = 650;
constexpr int PLAY_HEIGHT = 65;
constexpr int BOTTOM_STRIP = 101;
constexpr int SLIDER_WIDTH = 28;
constexpr int INFO_HEIGHT = 22;
constexpr int SPLASH_MILLISECONDS = 3000;

bool SplashWanted() {
    const char* value = getenv("MELKORA_NO_SPLASH");
    return value == nullptr || strcmp(value, "1") != 0;
}

// The splash: a borderless popup showing the picture with its transparency,
// centred on the screen, standing while the library loads.
class PSplash : public SWnd {
public:
    bool Show() {
        if (!picture.LoadResource("BINARY", RESOURCE_SPLASH)) {
            return false;
        }
        SRect area;
        GetWorkArea(&area);
        int left = area.left + (area.Width() - picture.GetWidth()) / 2;
        int top = area.top + (area.Height() - picture.GetHeight()) / 2;
        SRect rect{left, top, left + picture.GetWidth(), top + picture.GetHeight()};
        if (!Create("", WS_POPUP, WS_EX_TOOLWINDOW | WS_EX_TOPMOST, &rect, 0)) {
            return false;
        }
        SetBackgroundImage(&picture, 0xFF000000, 255, nullptr, false);
        SWnd::Show(SW_SHOWNA);
        UpdateNow();
        return true;
    }

    // Paints the splash at once: nothing else is pumped while it stands.
    void UpdateNow() {
        Invalidate();
        for (int i = 0; i < 20; ++i) {
            SMessage message;
            if (!PeekMessage(&message, true)) {
                break;
            }
            DispatchLoopMessage(&message);
        }
    }

private:
    SImage picture;
};

} // namespace

// The cover.

void PCoverCtrl::SetCover(const SImage& picture) {
    still.CopyFrom(&picture);
    frame.CopyFrom(&picture);
    water.Create(picture.GetWidth(), picture.GetHeight());
    SetImage(&frame);
}

void PCoverCtrl::ClearCover() {
    still.Reset();
    frame.Reset();
    water.Destroy();
    KillTimer(GetHandle(), TIMER_WATER);
    SetImage(nullptr);
}

void PCoverCtrl::Drop(int x, int y, int radius, int height) {
    if (!still.IsValid() || water.GetWidth() == 0) {
        return;
    }
    SRect client = GetClientRect();
    int fx = client.Width() > 0 ? x * water.GetWidth() / client.Width() : x;
    int fy = client.Height() > 0 ? y * water.GetHeight() / client.Height() : y;
    if (water.IsStill()) {
        SetTimer(GetHandle(), TIMER_WATER, 20);
    }
    water.Drop(fx, fy, radius, height);
}

LRESULT PCoverCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_MOUSEMOVE:
        Drop(PointParamX(lParam), PointParamY(lParam), 5, 50);
        break;
    case WM_LBUTTONDOWN:
        Drop(PointParamX(lParam), PointParamY(lParam), 25, 250);
        break;
    case WM_RBUTTONDOWN:
        app.NavigateFolder(".", "", true);
        return 0;
    case WM_TIMER:
        if (wParam == TIMER_WATER) {
            bool moving = still.IsValid() && water.Step(still, &frame);
            SetImage(&frame);
            if (!moving) {
                KillTimer(GetHandle(), TIMER_WATER);
            }
            return 0;
        }
        break;
    default:
        break;
    }
    return SMediaCtrl::OnMessage(message, wParam, lParam);
}

// The track list.

void PTrackList::DrawItem(cairo_t* cr, int row, const SRect& rect, unsigned state) {
    SListCtrl::DrawItem(cr, row, rect, state);
    if (marker != nullptr && marker->IsValid() &&
        static_cast<int>(static_cast<intptr_t>(GetData(row))) == TRACK_HAS_TEXT) {
        int size = std::min(16, rect.Height());
        marker->DrawAt(cr, rect.right - size - 4, rect.top + (rect.Height() - size) / 2, size, size);
    }
}

// The player's reports.

void PAppMedia::OnNowPlaying(const char* path, int position, int count) {
    Trace("open", false, path);
    app.OnNowPlaying(path, position, count);
}

void PAppMedia::OnNowPlayingCleared() {
    app.OnNowPlayingCleared();
}

void PAppMedia::OnSkipped(const char* path) {
    Trace("skip", false, path);
}

void PAppMedia::OnQueueGrown(int /*count*/) {
    app.OnQueueChanged();
}

void PAppMedia::OnMediaEnded() {
    PPlayQueue* playing = GetQueue();
    if (playing != nullptr && playing->GetIndex() >= 0) {
        Trace("end", false, playing->GetEntries().GetAt(playing->GetIndex())->c_str());
    }
    PMedia::OnMediaEnded();
}

void PAppMedia::OnMediaTick() {
    app.OnMediaTick();
}

void PAppMedia::OnBuffering(bool stopped) {
    PMedia::OnBuffering(stopped);
    app.OnBuffering(stopped);
}

// The window.

PWndApp::PWndApp() : media(*this), queue(media), cover(*this), thumbs(this), play(this), playlist(this) {
    EnsureAppResources();
    defaultCover.LoadResource("BINARY", RESOURCE_DEFAULT_COVER);
    for (int i = 0; i < 6; ++i) {
        trackIcons[i].LoadResource("BINARY", ROW_ICONS[i]);
        if (trackIcons[i].IsValid() && trackIcons[i].GetWidth() != 16) {
            trackIcons[i].Resize(16, 16);
        }
    }
    view.GetCovers().SetDefaultCover(&defaultCover);
    // Covers of the cards are kept between runs; what a killed run left
    // half-written is cleared.
    PCoverCache cache;
    SString cacheFolder = PCoverCache::GetDefaultFolder();
    cache.SetFolder(cacheFolder.c_str());
    cache.RemoveLeftovers();
    view.SetCoverCacheFolder(cacheFolder.c_str());
    media.SetQueue(&queue);
    const char* sink = getenv("MELKORA_AUDIO_SINK");
    media.SetFakeSinks(sink != nullptr && strcmp(sink, "fake") == 0);
    stats = std::make_unique<PThreadStats>([this](PStatsTable&& table) { OnStatistics(std::move(table)); });
}

PWndApp::~PWndApp() {
    media.SetQueue(nullptr);
    stats.reset();
}

bool PWndApp::CreateMain() {
    SString title = SString(PROGRAM_TITLE) + " " + PROGRAM_VERSION;
    SRect rect{0, 0, MIN_WIDTH, MIN_HEIGHT};
    creating = true;
    bool made = Create(title.c_str(), WS_OVERLAPPEDWINDOW, WS_EX_ACCEPTFILES, &rect, 0);
    creating = false;
    return made;
}

void PWndApp::BuildControls() {
    queue.SetRepeat(ReadSettingBool(SETTING_REPEAT));
    queue.SetShutdown(false);
    SetMinMax(MIN_WIDTH, MIN_HEIGHT, -1, -1);
    SetSize(MIN_WIDTH, MIN_HEIGHT);
    CenterOnParent(false);
    SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
    BuildMenus();
    SImage icon;
    icon.LoadResource("BINARY", RESOURCE_ICON_LARGE);
    tray.Add(GetHandle(), icon, SString(PROGRAM_TITLE), "melkora-browser");
    tray.SetMenu(&trayMenu);
    tray.SetSecondaryItem(CMD_HIDE);

    SRect none{0, 0, 10, 10};
    HWND self = GetHandle();
    controlBar.Create("", WS_VISIBLE, 0, &none, self, ID_CONTROL_BAR);
    toolBar.Create("", WS_VISIBLE, 0, &none, controlBar.GetHandle());
    smallIcons = ReadSettingBool(SETTING_TOOLBAR);
    BuildToolbarButtons();
    BuildToolbarImages(smallIcons, true);
    statusBar.Create("", WS_VISIBLE, 0, &none, self);
    statusBar.SetParts({MIN_WIDTH - 400, MIN_WIDTH - 100, -1});

    play.Create(this, SRect{0, 0, MIN_WIDTH, PLAY_PANEL_HEIGHT});

    outer.Create("", WS_VISIBLE, 0, &none, self);
    outer.SetOwner(this);
    outer.SetGrid(2, 1);
    outer.SetPaneLayout([this] { LayoutPanes(); });
    _SWnd* left = outer.GetPane(0, 0);
    _SWnd* right = outer.GetPane(1, 0);
    right->SetBackColor(GetSysColor(SYS_COLOR_WINDOW));

    info.Create("", WS_VISIBLE, 0, &none, left->GetHandle(), ID_INFO);
    SRect slices{20, 20, 80, 40};
    info.SetBackgroundResource("BINARY", RESOURCE_INFO_PANE, 0xFF000000, 255, &slices, false);
    info.SetBackColor(0xDEEDD7);
    info.SetTextColor(0x400000);
    info.SetAlign(0x11);
    info.SetMarkup(true);
    folders.Create(left, none, ID_FOLDERS, LIST_SELECTION_SINGLE, WS_VISIBLE | WS_TABSTOP);

    thumbs.Create(right, none, ID_THUMBS);
    cover.Create("", 0, 0, &none, right->GetHandle());
    caption.Create("", 0, 0, &none, right->GetHandle());
    caption.SetMarkup(true);
    caption.SetWrapping(true);
    caption.SetAlign(0x01);
    parentCaption.Create("", 0, 0, &none, right->GetHandle());
    parentCaption.SetTextColor(0x808080);
    parentCaption.SetAlign(0x21);
    parentCaption.SetWrapping(true);
    parentCover.Create("", 0, 0, &none, right->GetHandle());

    inner.Create("", 0, 0, &none, right->GetHandle());
    inner.SetOwner(this);
    inner.SetGrid(2, 1);
    inner.SetPaneLayout([this] { LayoutInner(); });
    tracks.Create(inner.GetPane(0, 0), none, ID_TRACKS, LIST_SELECTION_EXTENDED,
                  WS_VISIBLE | WS_TABSTOP);
    tracks.SetImages(trackIcons, 5);
    tracks.SetMarker(&trackIcons[TRACK_HAS_TEXT]);
    editor.Create("", WS_VISIBLE | WS_TABSTOP, 0, &none, inner.GetPane(1, 0)->GetHandle(), ID_EDITOR);
    editor.SetBackColors(0xF0FFFF, 0xF0FFFF, GetSysColor(SYS_COLOR_HIGHLIGHT));
    web.Create("", 0, 0, &none, right->GetHandle(), ID_WEB);
    web.SetSilent(false);
    web.SetHistory(false);

    line.Create("", WS_VISIBLE, 0, &none, right->GetHandle());
    line.SetBackColor(GetSysColor(SYS_COLOR_BTNSHADOW));
    playlist.Create(right, SRect{0, 0, MIN_WIDTH - SLIDER_WIDTH, PLAYLIST_PANEL_HEIGHT});
    volume.Create("", WS_VISIBLE | WS_TABSTOP, 0, &none, right->GetHandle(), ID_VOLUME);
    volume.SetRange(0, 50);
    volume.SetSteps(1, 10);

    SRect videoRect{0, 0, 480, 360};
    media.Create("Melkora Browser - Video", WS_OVERLAPPEDWINDOW, WS_EX_TOPMOST, &videoRect, 0);
    media.EnableContextMenu(true);
    Layout();
}

void PWndApp::BuildToolbarImages(bool small, bool keepLayout) {
    int side = small ? 24 : 32;
    toolBar.ClearImages();
    toolBar.SetImageSize(side, side);
    for (unsigned id : TOOLBAR_IMAGES) {
        SImage picture;
        picture.LoadResource(small ? RESOURCE_TYPE_SMALL : "BINARY", id);
        toolBar.AddImage(picture);
    }
    if (toolBar.GetHandle() != 0) {
        bandHeight = toolBar.GetIdealSize().height;
        controlBar.RemoveAllBands();
        controlBar.AddBand(&toolBar, toolBar.GetIdealSize().width, bandHeight);
    }
    if (!keepLayout) {
        Layout();
    }
}

void PWndApp::BuildToolbarButtons() {
    struct Button {
        int id;
        const char* text;
        int image;
        bool check;
    };
    static const Button buttons[] = {
        {CMD_HOME, "Home...", 0, false},
        {CMD_PARENT, "Go to parent folder...", 1, false},
        {0, nullptr, 0, false},
        {CMD_PLAY_AT, "Play Tracks at...", 2, false},
        {CMD_PLAY_RANDOM, "Play Tracks Randomly", 4, false},
        {CMD_PLAY_FOLDERS, "Play All Folders", 3, false},
        {CMD_PLAY_ALL_RANDOM, "Play Tracks and Folders Randomly", 5, false},
        {CMD_PLAY_SELECTED, "Play Selected Tracks", 6, false},
        {0, nullptr, 0, false},
        {CMD_PREVIOUS, "Previous Track", 8, false},
        {CMD_NEXT, "Next Track", 9, false},
        {CMD_PAUSE, "Pause", 10, false},
        {CMD_STOP, "Stop", 11, false},
        {0, nullptr, 0, false},
        {CMD_REPEAT, "Repeat On/Off", 12, true},
        {CMD_SHUTDOWN, "Shutdown On/Off", 13, true},
        {0, nullptr, 0, false},
        {CMD_HIDE, "Hide Window", 14, false},
        {0, nullptr, 0, false},
        {CMD_OPEN_BOOK, "Open Book", 15, false},
        {CMD_MAKE_BOOK, "Make Book", 16, false},
        {CMD_SEND_BOOK, "Send Book", 17, false},
        {CMD_DESCRIPTIONS, "Edit Descriptions", 18, false},
        {0, nullptr, 0, false},
        {CMD_PREFERENCES, "Preferences", 19, false},
        {0, nullptr, 0, false},
        {CMD_HELP, "Help", 20, false},
        {CMD_DONATION, "Make a Donation", 21, false},
    };
    toolBar.RemoveAllButtons();
    for (const Button& button : buttons) {
        if (button.text == nullptr) {
            toolBar.AddSeparator();
        } else {
            toolBar.AddButton(button.id, button.image, button.text, TOOLBAR_STATE_ENABLED,
                              button.check ? TOOLBAR_BUTTON_STYLE | TOOLBAR_BUTTON_CHECK : TOOLBAR_BUTTON_STYLE);
        }
    }
    UpdateTransportButtons();
    toolBar.CheckButton(CMD_REPEAT, queue.GetRepeat());
    toolBar.CheckButton(CMD_SHUTDOWN, queue.GetShutdown());
}

void PWndApp::UpdateTransportButtons() {
    UpdateTransportButtons(queue.GetIndex() >= 0, queue.GetCount());
}

void PWndApp::UpdateTransportButtons(bool playing, int count) {
    toolBar.EnableButton(CMD_PREVIOUS, playing && count > 1);
    toolBar.EnableButton(CMD_NEXT, playing && count > 1);
    toolBar.EnableButton(CMD_PAUSE, playing);
    toolBar.EnableButton(CMD_STOP, playing);
    StripEnableButtons(playing, count);
    UpdateTrayMenu();
}

void PWndApp::Layout() {
    if (outer.GetHandle() == 0) {
        return;
    }
    SSize client = GetClientSize();
    int width = client.width;
    int height = client.height;
    int band = std::max(bandHeight, 1);
    controlBar.MoveWindow(SRect{0, 0, width, band});
    int statusHeight = statusBar.GetIdealHeight();
    statusBar.MoveWindow(SRect{0, height - statusHeight, width, height});
    LayoutStatusBar();
    int playTop = band;
    play.MoveWindow(SRect{0, playTop, width, playTop + PLAY_HEIGHT});
    int top = playTop + PLAY_HEIGHT;
    int bottom = height - statusHeight;
    outer.MoveWindow(SRect{0, top, width, bottom});
    LayoutPanes();
}

void PWndApp::LayoutPanes() {
    if (outer.GetHandle() == 0) {
        return;
    }

    _SWnd* left = outer.GetPane(0, 0);
    SSize leftSize = left->GetClientSize();
    info.MoveWindow(SRect{0, 0, leftSize.width, INFO_HEIGHT});
    folders.MoveWindow(SRect{0, INFO_HEIGHT + 2, leftSize.width, leftSize.height});

    _SWnd* right = outer.GetPane(1, 0);
    SSize rightSize = right->GetClientSize();
    int paneBottom = std::max(rightSize.height - BOTTOM_STRIP, 200);
    thumbs.MoveWindow(SRect{0, 0, rightSize.width, paneBottom});
    cover.MoveWindow(SRect{0, 0, 150, 150});
    caption.MoveWindow(SRect{0, 150, 150, 212}); // the name, a blank line and the site link
    parentCover.MoveWindow(SRect{0, paneBottom - 150, 150, paneBottom});
    parentCaption.MoveWindow(SRect{0, paneBottom - 180, 150, paneBottom - 150});
    inner.MoveWindow(SRect{152, 0, rightSize.width, paneBottom});
    web.MoveWindow(SRect{152, 0, rightSize.width, paneBottom});

    // The bottom strip of the right column: the line, the playlist panel
    // and the volume.
    line.MoveWindow(SRect{0, paneBottom, rightSize.width, paneBottom + 1});
    playlist.MoveWindow(SRect{0, paneBottom + 1, rightSize.width - SLIDER_WIDTH, rightSize.height});
    volume.MoveWindow(SRect{rightSize.width - SLIDER_WIDTH, paneBottom + 1, rightSize.width,
                            rightSize.height});
}

void PWndApp::LayoutInner() {
    if (inner.GetHandle() == 0) {
        return;
    }
    SSize left = inner.GetPane(0, 0)->GetClientSize();
    SSize right = inner.GetPane(1, 0)->GetClientSize();
    tracks.MoveWindow(SRect{0, 0, left.width, left.height});
    editor.MoveWindow(SRect{0, 0, right.width, right.height});
}

void PWndApp::LayoutStatusBar() {
    int width = GetClientWidth();
    statusBar.SetParts({std::max(width - 400, 0), std::max(width - 100, 0), -1});
}

// Reloading the library.

bool PWndApp::ReloadLibrary(bool restore) {
    queue.StopPlaying();
    SString oldRoot = view.GetRoot().GetFullPath();
    SPath root;
    SString folder = ReadSettingString(SETTING_FOLDER);
    SDisk disk;
    if (folder.IsEmpty() || !root.SetFolder(folder.c_str()) || !disk.IsFolder(root.GetFullPath().c_str())) {
        root.SetFolder(GetProgramFolder().c_str());
    }
    SPath old(oldRoot.c_str());
    if (oldRoot.IsEmpty() || !root.IsSame(&old)) {
        restore = true;
    }
    SString rootText = root.GetFullPath();
    view.SetRoot(rootText.c_str());
    SString playlists = rootText + "Playlists/";
    if (!disk.IsFolder(playlists.c_str())) {
        disk.CreateFolder(playlists.c_str(), true);
    }
    bookPath = rootText + "Book.htm";
    welcomePath = FindDataFile("welcome.htm");

    auto started = std::chrono::steady_clock::now();
    std::unique_ptr<PSplash> splash;
    if (restore && SplashWanted()) {
        splash = std::make_unique<PSplash>();
        splash->Show();
    }
    view.GetCovers().SetSharedNames(ReadSettingString(SETTING_IMAGES).c_str());
    autoHideAfterPlay = ReadSettingBool(SETTING_AUTO_HIDE);
    for (const char* name : {"Book", "Images", "Playlists"}) {
        SString path = rootText + name;
        if (disk.IsFolder(path.c_str()) && !disk.IsHidden(path.c_str())) {
            disk.SetAttributes(path.c_str(), disk.GetAttributes(path.c_str()) | DISK_HIDDEN);
        }
    }
    bool result = OpenFolder(rootText.c_str(), "", true);
    ReloadPlaylists(restore);
    BuildSendToMenu();
    if (restore) {
        stats->StartCount(rootText.c_str());
        if (splash != nullptr) {
            std::this_thread::sleep_until(started + std::chrono::milliseconds(SPLASH_MILLISECONDS));
            splash->Destroy();
        }
    }
    ApplyStrip();
    return result;
}

void PWndApp::SaveSettings() {
    SWindowPlacement placement;
    placement.rect = GetWindowRect();
    placement.isVisible = IsVisible();
    placement.isMinimized = IsMinimized();
    placement.isMaximized = IsMaximized();
    WritePlacement(SETTING_WINDOW, placement);
    WriteSettingInt(SETTING_COLUMN, static_cast<uint32_t>(outer.GetFirstColumn()));
    WriteSettingInt(SETTING_COLUMN2, static_cast<uint32_t>(inner.GetFirstColumn()));
    WriteSettingString(SETTING_PLAYLIST, CurrentPlaylistName().c_str());
    WriteSettingInt(SETTING_VOLUME, static_cast<uint32_t>(volume.GetValue()));
    WriteSettingBool(SETTING_REPEAT, queue.GetRepeat());
}

void PWndApp::ApplyStartSettings() {
    SWindowPlacement placement;
    SRect area;
    GetWorkArea(&area);
    if (ReadPlacement(SETTING_WINDOW, area, &placement)) {
        MoveWindow(placement.rect);
        if (placement.isMaximized) {
            Maximize();
        }
    } else {
        SetSize(DEFAULT_WINDOW_WIDTH, DEFAULT_WINDOW_HEIGHT);
        CenterOnParent(false);
    }
    Layout();
    int outerWidth = outer.GetClientWidth();
    outer.SetFirstColumn(ColumnWidthFromSetting(ReadSettingInt(SETTING_COLUMN), outerWidth,
                                                     DEFAULT_FOLDER_COLUMN));
    int innerWidth = inner.GetClientWidth();
    inner.SetFirstColumn(ColumnWidthFromSetting(ReadSettingInt(SETTING_COLUMN2), innerWidth,
                                                     DEFAULT_TRACK_COLUMN));
    Layout();
    int position = std::clamp(static_cast<int>(ReadSettingInt(SETTING_VOLUME)), 0, 50);
    volume.SetValue(position);
    media.SetVolume(VolumeFromSlider(position));
}

// Folders.

bool PWndApp::OpenFolder(const char* path, const char* selectName, bool focusThumbs) {
    // Copies: the names may be the rows' own, which the navigation replaces.
    SString pathCopy(path != nullptr ? path : "");
    SString nameCopy(selectName != nullptr ? selectName : "");
    if (!view.OpenFolder(pathCopy.c_str(), nameCopy.c_str(), focusThumbs)) {
        statusBar.SetText(0, view.GetStatusText().c_str());
        HidePage();
        return false;
    }
    ShowFolder(focusThumbs);
    return true;
}

bool PWndApp::NavigateFolder(const char* relative, const char* selectName, bool focusThumbs) {
    SString relativeCopy(relative != nullptr ? relative : "");
    SString nameCopy(selectName != nullptr ? selectName : "");
    if (!view.NavigateFolder(relativeCopy.c_str(), nameCopy.c_str(), focusThumbs)) {
        statusBar.SetText(0, view.GetStatusText().c_str());
        HidePage();
        return false;
    }
    ShowFolder(focusThumbs);
    return true;
}

bool PWndApp::RefreshFolder() {
    int row = view.GetSelectedRow();
    int top = folders.GetTopRow();
    bool done = row >= 0 ? NavigateFolder(".", view.GetRows()[row].name.c_str(), false)
                         : NavigateFolder(".", "", true);
    folders.ScrollTo(top * folders.GetRowHeight());
    return done;
}

void PWndApp::ShowFolder(bool focusThumbs) {
    folders.SetRedraw(false, false);
    fillingFolders = true;
    folders.Clear();
    const SImageList& images = view.GetRowImages();
    std::vector<SImage> rowImages;
    rowImages.reserve(images.GetCount());
    for (int i = 0; i < images.GetCount(); ++i) {
        rowImages.emplace_back();
        rowImages.back().CopyFrom(images.GetImage(i));
    }
    folderImages = std::move(rowImages);
    folders.SetImages(folderImages.data(), static_cast<int>(folderImages.size()));
    for (const PFolderRow& row : view.GetRows()) {
        folders.AddRow(row.name.c_str(), row.image, static_cast<uintptr_t>(static_cast<intptr_t>(row.data)));
    }
    folders.SetRedraw(true, true);
    FillThumbnails();
    if (view.GetSelectedRow() >= 0) {
        folders.SetCurrentRow(view.GetSelectedRow());
        folders.EnsureVisible(view.GetSelectedRow());
    }
    fillingFolders = false;
    ShowSelection();
    statusBar.SetText(0, view.GetStatusText().c_str());
    if (focusThumbs) {
        FocusView();
    } else if (GetFocus() != folders.GetHandle()) {
        SetFocus(folders.GetHandle());
    }
    ShowFolderCounts();
    Trace("folder", true, view.GetCurrent().GetFullPath().c_str());
}

bool PWndApp::ShowSelection() {
    int row = view.GetSelectedRow();
    bool selected = view.ShowSelection();
    SaveTrackText();
    if (!selected || row < 0) {
        toolBar.EnableButton(CMD_PLAY_AT, false);
        toolBar.EnableButton(CMD_PLAY_RANDOM, false);
        toolBar.EnableButton(CMD_PLAY_FOLDERS, true);
        toolBar.EnableButton(CMD_PLAY_ALL_RANDOM, true);
        toolBar.EnableButton(CMD_PLAY_SELECTED, false);
        cover.ClearCover();
        caption.SetText("");
        parentCover.SetImage(nullptr);
        parentCaption.SetText("");
        tracks.Clear();
        ClearEditor();
        web.SetTag("");
        for (SWnd* window : std::initializer_list<SWnd*>{&cover, &caption, &parentCover, &parentCaption,
                                                         &inner, &web}) {
            window->Show(SW_HIDE);
        }
        thumbnailView = true;
        ShowThumbnails(true);
        return false;
    }
    thumbnailView = false;
    ShowThumbnails(false);
    cover.SetCover(view.GetCover());
    caption.SetText(view.GetCaption().c_str());
    cover.Show(SW_SHOW);
    caption.Show(SW_SHOW);
    if (view.GetParentCover().IsValid()) {
        parentCover.SetImage(&view.GetParentCover());
        parentCaption.SetText(view.GetParentCaption().c_str());
        parentCover.Show(SW_SHOW);
        parentCaption.Show(SW_SHOW);
    } else {
        parentCover.Show(SW_HIDE);
        parentCaption.Show(SW_HIDE);
    }
    tracks.SetRedraw(false, false);
    tracks.Clear();
    ClearEditor();
    for (const PTrackRow& track : view.GetTrackRows()) {
        tracks.AddRow(track.text.c_str(), track.icon, static_cast<uintptr_t>(static_cast<intptr_t>(track.data)));
    }
    tracks.SetRedraw(true, true);
    const SString& page = view.GetPage();
    if (!page.IsEmpty()) {
        inner.Show(SW_HIDE);
        if (web.GetTag().CompareNoCase(page.c_str()) != 0) {
            web.NavigateUrl(page.c_str(), page.c_str());
        }
        web.Show(SW_SHOW);
    } else {
        web.SetTag("");
        web.Show(SW_HIDE);
        inner.Show(SW_SHOW);
        tracks.Show(SW_SHOW);
        editor.Show(SW_SHOW);
    }
    bool hasTracks = view.GetTrackTable().GetCount() > 0;
    toolBar.EnableButton(CMD_PLAY_AT, hasTracks);
    toolBar.EnableButton(CMD_PLAY_RANDOM, hasTracks);
    toolBar.EnableButton(CMD_PLAY_FOLDERS, true);
    toolBar.EnableButton(CMD_PLAY_ALL_RANDOM, true);
    toolBar.EnableButton(CMD_PLAY_SELECTED, false);
    return true;
}

void PWndApp::ShowFolderCounts() {
    info.SetText(view.GetFolderCountsText().c_str());
}

void PWndApp::OnStatistics(PStatsTable&& table) {
    auto shared = std::make_shared<const PStatsTable>(std::move(table));
    statusBar.SetText(1, shared->FormatTotals().c_str());
    view.SetStatistics(std::move(shared));
    ShowFolderCounts();
    Trace("stats", true);
}

void PWndApp::HidePage() {
    web.Show(SW_HIDE);
}

void PWndApp::ShowPage(const char* url, const char* tag) {
    inner.Show(SW_HIDE);
    ShowThumbnails(false);
    web.NavigateUrl(url, tag);
    web.Show(SW_SHOW);
}

// Track text.

void PWndApp::ShowTrackText() {
    SaveTrackText();
    std::vector<int> rows = tracks.GetSelectedRows();
    ClearEditor();
    if (rows.size() != 1) {
        return;
    }
    const SStringArray& table = view.GetTrackTable();
    if (rows[0] >= table.GetCount()) {
        return;
    }
    const char* path = table.GetAt(rows[0])->c_str();
    if (GetMediaClass(path) == MEDIA_PICTURE) {
        return;
    }
    textPath = path;
    loadingText = true;
    editor.SetText(LoadTrackText(path).c_str());
    loadingText = false;
    textChanged = false;
}

void PWndApp::ClearEditor() {
    // The text shown goes without touching its file.
    textPath = "";
    textChanged = false;
    loadingText = true;
    editor.SetText("");
    loadingText = false;
}

bool PWndApp::SaveTrackText() {
    if (!textChanged || textPath.IsEmpty()) {
        return false;
    }
    textChanged = false;
    const SStringArray& table = view.GetTrackTable();
    for (int row = 0; row < table.GetCount(); ++row) {
        if (*table.GetAt(row) == textPath) {
            int word = static_cast<int>(static_cast<intptr_t>(tracks.GetData(row)));
            if (::SaveTrackText(textPath.c_str(), editor.GetEditText().c_str(), word)) {
                tracks.SetData(row, static_cast<uintptr_t>(static_cast<intptr_t>(word)));
                tracks.Invalidate();
            }
            return true;
        }
    }
    int word = TRACK_NO_TEXT;
    return ::SaveTrackText(textPath.c_str(), editor.GetEditText().c_str(), word);
}

bool PWndApp::SelectTrack(const char* name) {
    for (int row = 0; row < tracks.GetRowCount(); ++row) {
        if (tracks.GetText(row) == name) {
            tracks.SelectRange(0, tracks.GetRowCount() - 1, false);
            tracks.SetCurrentRow(row);
            tracks.SelectRange(row, row, true);
            tracks.EnsureVisible(row);
            SendMessage(GetHandle(), SN_LIST_SELECT, reinterpret_cast<WPARAM>(&tracks), 0);
            return true;
        }
    }
    return false;
}

// The window's visibility.

bool PWndApp::ToggleWindow(bool keepVisible) {
    if (!IsVisible()) {
        Show(SW_SHOW);
        FocusView();
    } else if (!keepVisible) {
        Show(SW_HIDE);
    }
    UpdateTrayMenu();
    return true;
}

void PWndApp::ShowMainWindow() {
    ToggleWindow(true);
}

void PWndApp::HideMainWindow() {
    if (IsVisible()) {
        Show(SW_HIDE);
    }
    UpdateTrayMenu();
}

// Settings and closing.

bool PWndApp::CloseMain() {
    if (!CloseChildWindows()) {
        return false;
    }
    SaveTrackText();
    SaveSettings();
    RemoveStrip();
    return true;
}

SString PWndApp::GetRootFolder() const {
    return view.GetRoot().GetFullPath();
}

SString PWndApp::GetCurrentFolder() const {
    return view.GetCurrent().GetFullPath();
}

SString PWndApp::SelectedFolderPath() const {
    return view.GetSelectedFolder();
}

void PWndApp::LoadFolderCover(SImage* image, const char* folder) {
    view.GetCovers().LoadCover(image, folder);
}
