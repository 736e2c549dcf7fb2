// PWndApp: the main window. It builds every control of the window once,
// reloads the library from the settings, follows the user through the
// folder tree (the window-free PFolderView keeps what is shown), plays
// through PMedia and its PPlayQueue, and takes every command: toolbar,
// menus, keys, the tray and the remote commands. Panels round it reach it
// through PPanelHost.
#pragma once

#include <memory>

#include "app/book_zips.h"
#include "app/player.h"
#include "app/splitter.h"
#include "controls/browser_ctrl.h"
#include "controls/media_ctrl.h"
#include "editors/code_edit_ctrl.h"
#include "foundation/image.h"
#include "foundation/image_water.h"
#include "library/folder_view.h"
#include "library/play_queue.h"
#include "library/thread_stats.h"
#include "panels/panel_host.h"
#include "panels/thumbs_wnd.h"
#include "panels/wnd_book.h"
#include "panels/wnd_description.h"
#include "panels/wnd_google.h"
#include "panels/wnd_help.h"
#include "panels/wnd_play.h"
#include "panels/wnd_playlist.h"
#include "panels/wnd_task.h"
#include "toolkit/bar_ctrls.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/list_ctrl.h"
#include "toolkit/menu.h"
#include "toolkit/range_ctrls.h"
#include "toolkit/toolbar_ctrl.h"
#include "toolkit/tray_icon.h"
#include "toolkit/wnd.h"

class PWndApp;
class PWndSetting;

// Toolbar and menu commands.
enum PCommand {
    CMD_HOME = 1,
    CMD_PARENT = 2,
    CMD_PLAY_AT = 3,
    CMD_PLAY_FOLDERS = 4,
    CMD_PLAY_RANDOM = 5,
    CMD_PLAY_ALL_RANDOM = 6,
    CMD_PLAY_SELECTED = 7,
    CMD_PREVIOUS = 8,
    CMD_NEXT = 9,
    CMD_PAUSE = 10,
    CMD_STOP = 11,
    CMD_REPEAT = 12,
    CMD_SHUTDOWN = 13,
    CMD_HIDE = 14,
    CMD_OPEN_BOOK = 15,
    CMD_MAKE_BOOK = 16,
    CMD_SEND_BOOK = 17,
    CMD_DESCRIPTIONS = 18,
    CMD_PREFERENCES = 19,
    CMD_HELP = 20,
    CMD_DONATION = 21,
    CMD_QUIT = 22,
    CMD_FOLDER_ADD_QUEUE = 23,
    CMD_FOLDER_ADD_PLAYLIST = 24,
    CMD_EXPLORE = 25,
    CMD_MAKE_COVER = 26,
    CMD_DOWNLOAD_COVER_BOTH = 27,
    CMD_DOWNLOAD_COVER = 28,
    CMD_PROPERTIES = 29,
    CMD_TRACK_ADD_QUEUE = 30,
    CMD_TRACK_ADD_PLAYLIST = 31,
    CMD_FIND_LYRICS = 32,
    CMD_SEND_TO = 33,
    CMD_DELETE = 34,
    CMD_SEND_TO_SOMEONE = 100,
    CMD_SEND_TO_FIRST = 101,
};

// Control ids.
constexpr int ID_CONTROL_BAR = 1000;
constexpr int ID_FOLDERS = 1001;
constexpr int ID_TRACKS = 1002;
constexpr int ID_EDITOR = 1003;
constexpr int ID_WEB = 1004;
constexpr int ID_INFO = 1006;
constexpr int ID_VOLUME = 1007;
constexpr int ID_THUMBS = 1008;

// Timers.
constexpr unsigned TIMER_WATER = 200;

// The cover with the water effect: the mouse drops blobs into it, a right
// press goes back to the thumbnails.
class PCoverCtrl : public SMediaCtrl {
public:
    explicit PCoverCtrl(PWndApp& app) : app(app) {}
    // The picture shown at rest (150 by 150), which the water moves.
    void SetCover(const SImage& cover);
    void ClearCover();
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    void Drop(int x, int y, int radius, int height);
    PWndApp& app;
    SImage still;
    SImage frame;
    SImageWater water;
};

// The track list: a row whose track has a text file shows the text marker
// at its right end.
class PTrackList : public SListCtrl {
public:
    void SetMarker(const SImage* image) { marker = image; }
    void DrawItem(cairo_t* cr, int row, const SRect& rect, unsigned state) override;

private:
    const SImage* marker = nullptr;
};

// The player of the main window: its reports go to the window.
class PAppMedia : public PMedia {
public:
    explicit PAppMedia(PWndApp& app) : app(app) {}
    void OnNowPlaying(const char* path, int position, int count) override;
    void OnNowPlayingCleared() override;
    void OnSkipped(const char* path) override;
    void OnQueueGrown(int count) override;
    void OnMediaEnded() override;
    void OnMediaTick() override;
    void OnBuffering(bool stopped) override;

private:
    PWndApp& app;
};

class PWndApp : public SWnd, public PPanelHost {
public:
    PWndApp();
    ~PWndApp() override;

    // Creates the window, hidden, with every control, and loads the
    // library; false when the window could not be made.
    bool CreateMain();

    // The library.
    bool ReloadLibrary(bool restore);
    void SaveSettings();
    bool RefreshFolder();
    bool ShowSelection();
    void ShowFolderCounts();
    void ShowTrackText();
    bool SaveTrackText();
    void ClearEditor();
    bool SelectTrack(const char* name);
    bool ToggleWindow(bool keepVisible);
    void RunCommand(int command);

    // PPanelHost.
    SString GetRootFolder() const override;
    SString GetCurrentFolder() const override;
    bool NavigateFolder(const char* relative, const char* selectName, bool focusThumbs) override;
    bool OpenFolder(const char* path, const char* selectName, bool focusThumbs) override;
    void ShowMainWindow() override;
    void HideMainWindow() override;
    bool PlayFileInFolder(const char* name) override;
    bool SetPlayQueue(const SStringArray& paths) override;
    const SStringArray& GetPlayQueue() const override { return queue.GetEntries(); }
    int GetPlayIndex() const override { return queue.GetIndex(); }
    bool PlayQueueIndex(int index) override;
    int GetPlayPosition() const override;
    int GetPlayLength() const override;
    bool IsMediaLoaded() const override;
    void SeekSeconds(int seconds) override;
    void LoadFolderCover(SImage* image, const char* folder) override;
    bool GetAutoHideAfterPlay() const override { return autoHideAfterPlay; }
    bool AskPlaylistName(SString* name) override;
    bool AskYesNo(const char* text, const char* caption) override;

    // The player's reports.
    void OnNowPlaying(const char* path, int position, int count);
    void OnNowPlayingCleared();
    void OnQueueChanged();
    void OnMediaTick();
    void OnBuffering(bool stopped);

    // For tests.
    PFolderView& GetView() { return view; }
    PPlayQueue& GetQueue() { return queue; }
    PAppMedia& GetMedia() { return media; }
    SListCtrl& GetFolderList() { return folders; }
    SListCtrl& GetTrackList() { return tracks; }
    SToolBarCtrl& GetToolBar() { return toolBar; }
    SStatusBarCtrl& GetStatusBar() { return statusBar; }
    SBrowserCtrl& GetWebPane() { return web; }
    SCodeEditCtrl& GetEditor() { return editor; }
    SSliderCtrl& GetVolumeSlider() { return volume; }
    PSplitterCtrl& GetOuterSplitter() { return outer; }
    PSplitterCtrl& GetInnerSplitter() { return inner; }
    bool IsThumbnailView() const { return thumbnailView; }
    PWndPlay& GetPlayPanel() { return play; }
    PWndPlaylist& GetPlaylistPanel() { return playlist; }
    PWndThumbs& GetThumbs() { return thumbs; }
    PWndSetting* GetPreferencesDialog() const { return preferences; }
    STrayIcon& GetTray() { return tray; }
    PWndTask* GetStrip() { return strip.get(); } // null until first turned on

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    friend class PCoverCtrl;

    void BuildControls();
    void BuildToolbarImages(bool smallIcons, bool keepLayout);
    void BuildToolbarButtons();
    void BuildMenus();
    void BuildSendToMenu();
    void UpdateTrayMenu();
    void Layout();
    void LayoutStatusBar();
    void LayoutPanes();
    void LayoutInner();
    void ApplyStartSettings();
    void ShowFolder(bool focusThumbs);
    void FillThumbnails();
    void ShowPage(const char* url, const char* tag);
    void HidePage();
    void UpdateTransportButtons();
    void UpdateTransportButtons(bool playing, int count);
    void OnStatistics(PStatsTable&& table);

    // Commands.
    bool OnCommand(int command);
    bool OnKey(unsigned key, HWND sender);
    void OnListKey(SWnd* list, int key);
    void OnListMouse(SWnd* list, unsigned code, SPoint point);
    void OnListSelect(SWnd* list);
    void OnListDoubleClick(SWnd* list);
    void OnRemoteCommand(int command);
    LRESULT OnBeforeNavigate(const char* url);
    LRESULT OnLinkClicked(const char* link);
    void ShowFolderMenu(SPoint screen);
    void ShowTrackMenu(SPoint screen);
    bool AddToQueue(bool fromFolder);
    bool AddToPlaylist(bool fromFolder);
    bool GatherFiles(bool fromFolder, SStringArray* files);
    bool MakeCover(const char* folder);
    bool DeleteSelectedTracks();
    bool SendToAddress(int command);
    bool ShowProperties();
    bool FindLyrics();
    bool ShowImageAsCover(const char* path);
    bool CloseMain();
    SString SelectedFolderPath() const;
    void HideVideoWindow();
    // Companion windows of their own, each in its own file:
    // wnd_app_book.cpp (Book, Make Book, Send Book, Help),
    // wnd_app_descriptions.cpp, wnd_app_preferences.cpp,
    // wnd_app_covers.cpp (cover search) and wnd_app_strip.cpp.
    bool OpenBook();
    bool MakeBook();
    bool SendBook();
    bool OpenHelp();
    bool EditDescriptions();
    bool OpenPreferences();
    bool DownloadCover(bool both);
    bool CloseChildWindows();
    // The panels round the window.
    void ShowThumbnails(bool show);
    void FocusView();
    void ShowNowPlaying(const char* path, int position, int count);
    void UpdateQueueCount();
    void ReloadPlaylists(bool restore);
    SString CurrentPlaylistName() const;
    bool AppendToPlaylist(const SStringArray& files);
    void ApplyStrip();
    void RemoveStrip();
    // The strip's copy of the now-playing panel and the transport buttons
    // (wnd_app_strip.cpp); each does nothing while the strip is off.
    void StripShowTrack(const char* path, int position, int count);
    void StripUpdateTime();
    void StripEnableButtons(bool playing, int count);
    void StripSetBuffering(bool buffering);
    // Dialogs.
    bool AskSite(const char* folder, SString* site);
    bool SaveImageAtomic(const SImage& picture, const char* path);

    // Members, in order of construction.
    SMenu trayMenu;
    SMenu folderMenu;
    SMenu trackMenu;
    SMenu sendToMenu; // owned by trackMenu as its submenu; this is the source
    bool autoHideAfterPlay = false;
    STrayIcon tray;
    SControlBarCtrl controlBar;
    SToolBarCtrl toolBar;
    SStatusBarCtrl statusBar;
    PSplitterCtrl outer;
    PSplitterCtrl inner;
    SSliderCtrl volume;
    SWnd line;
    std::unique_ptr<PThreadStats> stats;
    SListCtrl folders;
    PTrackList tracks;
    SCodeEditCtrl editor;
    SMediaCtrl info;
    PAppMedia media;
    PPlayQueue queue;
    PCoverCtrl cover;
    SMediaCtrl caption;
    SMediaCtrl parentCover;
    SMediaCtrl parentCaption;
    PWndThumbs thumbs;
    SBrowserCtrl web;
    PWndPlay play;
    PWndPlaylist playlist;
    PFolderView view;

    SString welcomePath;
    SString bookPath;
    std::vector<SString> sendToAddresses;
    SImage defaultCover;
    std::vector<SImage> folderImages;
    SImage trackIcons[6];
    SString textPath; // the track text shown in the editor, "" for none
    bool textChanged = false;
    bool loadingText = false;
    bool thumbnailView = true;
    bool smallIcons = false;
    bool creating = false;
    bool fillingFolders = false; // the folder list is refilled: its selection notes are not the user's
    int bandHeight = 0;
    PWndSetting* preferences = nullptr; // the preferences dialog while it runs
    std::unique_ptr<PWndGoogle> coverSearch; // the last cover search, kept until the next
    std::unique_ptr<PDescriptionHost> descriptionHost; // the description window's view of this one
    std::unique_ptr<PWndDescription> descriptionWnd;   // made at the first Edit Descriptions
    std::unique_ptr<PWndTask> strip; // the taskbar strip, made when first turned on

    // The Book, sending it, and the help (wnd_app_book.cpp).
public:
    // What the Book and help windows ask of this window (public for tests).
    PBookHost& GetBookHost();

private:
    bool OpenBookWindow();
    void CloseBookWindows();
    std::unique_ptr<PBookHost> bookHost;
    std::unique_ptr<PWndBook> bookWindow;
    std::unique_ptr<PWndHelp> helpWindow;
    std::unique_ptr<PBookZipSweeper> bookZips;
    bool makingBook = false;
};
