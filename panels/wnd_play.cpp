#include "panels/wnd_play.h"

#include <algorithm>

#include "controls/media_layout.h"
#include "foundation/timer.h"
#include "library/media.h"
#include "panels/now_playing.h"
#include "panels/panel_host.h"
#include "panels/resources.h"
#include "toolkit/draw.h"
#include "toolkit/notification.h"
#include "toolkit/sys_colors.h"

namespace {

constexpr unsigned LABEL_ALIGN = MEDIA_ALIGN_CENTER | MEDIA_ALIGN_MIDDLE;

// The name of a folder ending in "/": its last part, empty for the root.
SString FolderName(const SString& folder) {
    int end = folder.GetLength();
    while (end > 0 && folder.GetAt(end - 1) == '/') {
        --end;
    }
    int start = end;
    while (start > 0 && folder.GetAt(start - 1) != '/') {
        --start;
    }
    return folder.Mid(start, end - start);
}

// The folder holding a folder ending in "/", with its "/"; empty when none.
SString ParentFolder(const SString& folder) {
    int end = folder.GetLength();
    while (end > 0 && folder.GetAt(end - 1) == '/') {
        --end;
    }
    int slash = end > 0 ? folder.ReverseFind('/', end - 1) : -1;
    return slash >= 0 ? folder.Left(slash + 1) : SString();
}

// A time label's default colour.
uint32_t TimeColor(bool loaded) {
    return GetSysColor(loaded ? SYS_COLOR_WINDOWTEXT : SYS_COLOR_GRAYTEXT);
}

} // namespace

PTrackNames GetTrackNames(const char* path, const char* root) {
    PTrackNames names;
    SString full = path != nullptr ? path : "";
    if (full.IsEmpty()) {
        return names;
    }
    int slash = full.ReverseFind('/');
    names.fileName = full.Mid(slash + 1);
    int dot = names.fileName.ReverseFind('.');
    names.song = dot > 0 ? names.fileName.Left(dot) : names.fileName;
    if (slash < 0) {
        return names;
    }
    names.albumFolder = full.Left(slash + 1);
    names.album = FolderName(names.albumFolder);
    // The root ("/") is one component, then every part that is not empty.
    int components = full.GetAt(0) == '/' ? 1 : 0;
    for (int i = 0; i < full.GetLength();) {
        int next = full.Find('/', i);
        if (next < 0) {
            next = full.GetLength();
        }
        components += next > i ? 1 : 0;
        i = next + 1;
    }
    SString collection = root != nullptr ? root : "";
    if (components < 3 || (!collection.IsEmpty() && names.albumFolder == collection)) {
        return names;
    }
    SString artistFolder = ParentFolder(names.albumFolder);
    names.artist = FolderName(artistFolder);
    if (!names.artist.IsEmpty()) {
        names.artistFolder = artistFolder;
    }
    return names;
}

SString FormatPlayingTime(int seconds) {
    STimer span;
    span.SetSpan(0, std::max(seconds, 0), 0, 0, 0);
    // The hours go on past a day.
    span.spanHours += span.spanDays * 24;
    span.spanDays = 0;
    return span.FormatSpan("#h:#+m:#+s");
}

PWndPlay::PWndPlay(PPanelHost* host) : host(host), seekBar(host) {
    EnsurePanelsResources();
    stockPicture.LoadResource("BINARY", RESOURCE_NOTHING_PLAYING);
    stockPicture.drawMode = DRAW_FIT;
    stockPictureLarge.LoadResource("BINARY", RESOURCE_NOTHING_PLAYING_LARGE);
    stockPictureLarge.drawMode = DRAW_FIT;
    totalArt.LoadResource("BINARY", RESOURCE_QUEUE_TOTAL);
    totalArt.drawMode = DRAW_STRETCH;
}

PWndPlay::~PWndPlay() {
    queueMenu.Close();
    Destroy();
}

SRect PWndPlay::LayoutRect(PLAY_LABEL which, int width, int height) {
    int half = (width - 220) / 2; // the width of each upper label
    int upper = 66 + 2 * half;    // where the fixed labels of the top row begin
    switch (which) {
    case PLAY_COVER:
        return SRect{0, 0, 64, 64};
    case PLAY_ARTIST:
        return SRect{66, 2, 66 + half, 24};
    case PLAY_ALBUM:
        return SRect{66 + half, 2, upper, 24};
    case PLAY_NUMBER:
        return SRect{upper, 2, upper + 64, 24};
    case PLAY_TOTAL:
        return SRect{upper + 64, 2, upper + 128, 24};
    case PLAY_QUEUE:
        return SRect{upper + 128, 2, upper + 152, 24};
    case PLAY_SONG:
        return SRect{66, 24, width - 186, 46};
    case PLAY_ELAPSED:
        return SRect{width - 186, 24, width - 106, 46};
    case PLAY_LENGTH:
        return SRect{width - 106, 24, width - 26, 46};
    case PLAY_FILLER:
        return SRect{0, 58, width, std::max(height, 58)};
    default:
        return SRect{};
    }
}

SRect PWndPlay::SeekBarRect(int width, int /*height*/) {
    return SRect{66, 50, width - 26, 59};
}

bool PWndPlay::Create(SWnd* parent, const SRect& rect) {
    if (!SWnd::Create("", WS_VISIBLE, 0, &rect, parent != nullptr ? parent->GetHandle() : 0)) {
        return false;
    }
    SetBackColor(GetSysColor(SYS_COLOR_BTNFACE));
    int width = GetClientWidth();
    int height = GetClientHeight();
    struct Setup {
        PLAY_LABEL which;
        uintptr_t id;
        unsigned exStyle;
        bool clickable;
    };
    const Setup setups[] = {
        {PLAY_COVER, 1000, 0, false},
        {PLAY_ARTIST, 1002, WS_EX_STATICEDGE, true},
        {PLAY_ALBUM, 1003, WS_EX_STATICEDGE, true},
        {PLAY_NUMBER, 0, WS_EX_STATICEDGE, false},
        {PLAY_TOTAL, 0, WS_EX_STATICEDGE, false},
        {PLAY_QUEUE, 1001, 0, false},
        {PLAY_SONG, 1004, 0, true},
        {PLAY_ELAPSED, 0, 0, false},
        {PLAY_LENGTH, 0, 0, false},
        {PLAY_FILLER, 0, 0, false},
    };
    for (const Setup& setup : setups) {
        SMediaCtrl& label = labels[setup.which];
        SRect place = LayoutRect(setup.which, width, height);
        if (!label.Create("", WS_VISIBLE, setup.exStyle, &place, GetHandle(), setup.id)) {
            return false;
        }
        if (setup.clickable) {
            label.SetButton(true);
            label.SetFlat(true);
            label.SetCursor(CURSOR_HAND + 1);
        }
    }
    for (PLAY_LABEL which :
         {PLAY_ARTIST, PLAY_ALBUM, PLAY_NUMBER, PLAY_TOTAL, PLAY_ELAPSED, PLAY_LENGTH}) {
        labels[which].SetAlign(LABEL_ALIGN);
    }
    labels[PLAY_SONG].SetAlign(MEDIA_ALIGN_LEFT | MEDIA_ALIGN_MIDDLE);
    labels[PLAY_COVER].SetMargins(0, 0, 0, 0);
    labels[PLAY_QUEUE].SetMargins(0, 0, 0, 0);
    labels[PLAY_TOTAL].SetImage(&totalArt);
    labels[PLAY_FILLER].SetBackColor(GetSysColor(SYS_COLOR_APPWORKSPACE));

    // The seek bar over the filler's top row.
    SRect seekPlace = SeekBarRect(width, height);
    if (!seekBar.Create("", WS_VISIBLE, 0, &seekPlace, GetHandle())) {
        return false;
    }
    SImage tile;
    if (tile.LoadResource("BINARY", RESOURCE_STRIP_TILE)) {
        tile.drawMode = DRAW_TILE;
        seekBar.SetBackgroundImage(&tile);
    }
    seekBar.SetCursor(CURSOR_HAND + 1);
    SetPlayingTrack(static_cast<const char*>(nullptr), 0, 0);
    return true;
}

void PWndPlay::Layout() {
    if (GetHandle() == 0) {
        return;
    }
    int width = GetClientWidth();
    int height = GetClientHeight();
    for (int i = 0; i < PLAY_LABEL_COUNT; ++i) {
        if (labels[i].GetHandle() != 0) {
            PLAY_LABEL which = static_cast<PLAY_LABEL>(i);
            labels[i].MoveWindow(LayoutRect(which, width, height));
        }
    }
    if (seekBar.GetHandle() != 0) {
        seekBar.MoveWindow(SeekBarRect(width, height));
    }
}

void PWndPlay::SetPlayingTrack(const SPath* path, int number, int total) {
    SString full = path != nullptr ? path->GetFullPath() : SString();
    SetPlayingTrack(full.c_str(), number, total);
}

// The path is taken as it is: a name that SPath would refuse (a control
// character is allowed in a Linux file name) still shows.
void PWndPlay::SetPlayingTrack(const char* path, int number, int total) {
    if (GetHandle() == 0) {
        return;
    }
    SString full = path != nullptr ? path : "";
    if (full.IsEmpty()) {
        playingPath.Empty();
        names = PTrackNames();
        labels[PLAY_COVER].SetImage(&stockPicture);
        labels[PLAY_COVER].SetCursor(0);
        HideTrackNames(labels[PLAY_ARTIST], labels[PLAY_ALBUM], labels[PLAY_SONG]);
        labels[PLAY_NUMBER].SetText("");
        labels[PLAY_TOTAL].SetText("");
        labels[PLAY_QUEUE].Show(SW_HIDE);
        seekBar.SetRange(0, 0);
        seekBar.SetValue(0);
        SetTimeLabel(labels[PLAY_ELAPSED], "0:00:00", TimeColor(false));
        SetTimeLabel(labels[PLAY_LENGTH], "0:00:00", TimeColor(false));
        return;
    }
    playingPath = full;
    names = GetTrackNames(full.c_str(), host != nullptr ? host->GetRootFolder().c_str() : "");
    ShowTrackNames(names, labels[PLAY_ARTIST], labels[PLAY_ALBUM], labels[PLAY_SONG]);
    labels[PLAY_NUMBER].SetText(SString::FromInt(number).c_str());
    ScrollLikeTrackNames(labels[PLAY_NUMBER]);
    labels[PLAY_TOTAL].SetText(SString::FromInt(total).c_str());
    ScrollLikeTrackNames(labels[PLAY_TOTAL]);

    int kind = GetMediaClass(full.c_str());
    unsigned icon = kind >= 0 && kind < 5 ? ROW_ICONS[kind] : RESOURCE_ROW_OTHER;
    queueIcon.LoadResource("BINARY", icon);
    queueIcon.drawMode = DRAW_CENTER;
    labels[PLAY_QUEUE].SetImage(nullptr);
    labels[PLAY_QUEUE].SetImage(&queueIcon);
    labels[PLAY_QUEUE].SetCursor(CURSOR_HAND + 1);
    labels[PLAY_QUEUE].Show(SW_SHOW);

    int length = host != nullptr ? std::max(host->GetPlayLength(), 0) / 1000 : 0;
    seekBar.SetRange(0, length);
    seekBar.SetValue(0);
    SetTimeLabel(labels[PLAY_ELAPSED], "0:00:00", TimeColor(true));
    SetTimeLabel(labels[PLAY_LENGTH], "0:00:00", TimeColor(true));
}

void PWndPlay::ShowCover(const SImage* image) {
    if (GetHandle() == 0) {
        return;
    }
    SMediaCtrl& control = labels[PLAY_COVER];
    if (image == nullptr || !image->IsValid() || !cover.CopyFrom(image)) {
        cover.Empty();
        control.SetImage(&stockPicture);
        control.SetCursor(0);
        return;
    }
    cover.drawMode = DRAW_FIT;
    control.SetImage(nullptr); // the same object with a new picture
    control.SetImage(&cover);
    control.SetCursor(playingPath.IsEmpty() ? 0 : CURSOR_HAND + 1);
}

void PWndPlay::UpdatePlayingTime() {
    if (GetHandle() == 0 || host == nullptr) {
        return;
    }
    PPlayingTime time =
        ShowPlayingTime(*host, seekBar, labels[PLAY_ELAPSED], TimeColor(host->IsMediaLoaded()));
    SetTimeLabel(labels[PLAY_LENGTH], FormatPlayingTime(time.length), time.color);
}

bool PWndPlay::OpenQueueMenu(SPoint screen) {
    return OpenPlayQueueMenu(host, queueMenu, GetHandle(), screen, &queueMenuCount);
}

void PWndPlay::ClickedLabel(PLAY_LABEL which, unsigned mouseCode, SPoint screen) {
    if (host == nullptr || playingPath.IsEmpty()) {
        return;
    }
    switch (which) {
    case PLAY_ARTIST:
        if (!names.artistFolder.IsEmpty()) {
            host->OpenFolder(names.artistFolder.c_str(), "", false);
            host->ShowMainWindow();
        }
        break;
    case PLAY_ALBUM:
        host->OpenFolder(names.albumFolder.c_str(), "", false);
        host->ShowMainWindow();
        break;
    case PLAY_SONG:
        host->OpenFolder(names.albumFolder.c_str(), names.fileName.c_str(), false);
        host->ShowMainWindow();
        break;
    case PLAY_COVER:
        if (mouseCode == (MOUSE_CLICK | MOUSE_LEFT)) {
            host->OpenFolder(names.albumFolder.c_str(), "", false);
        } else if (mouseCode == (MOUSE_CLICK | MOUSE_RIGHT)) {
            host->OpenFolder(names.albumFolder.c_str(), "", true);
        }
        break;
    case PLAY_QUEUE:
        if (mouseCode == (MOUSE_CLICK | MOUSE_LEFT)) {
            OpenQueueMenu(screen);
        }
        break;
    default:
        break;
    }
}

void PWndPlay::HandleNotification(unsigned message, WPARAM wParam, LPARAM lParam) {
    SNotification note(message, wParam, lParam);
    if (note.Is(SN_MEDIA_BUTTON_CLICKED)) {
        for (PLAY_LABEL which : {PLAY_ARTIST, PLAY_ALBUM, PLAY_SONG}) {
            if (note.From(&labels[which])) {
                ClickedLabel(which, MOUSE_CLICK | MOUSE_LEFT, SPoint{});
                return;
            }
        }
        return;
    }
    if (note.Is(SN_MEDIA_MOUSE) && note.Mouse() != nullptr) {
        for (PLAY_LABEL which : {PLAY_COVER, PLAY_QUEUE}) {
            if (note.From(&labels[which])) {
                ClickedLabel(which, note.MouseCode(), note.Mouse()->screen);
                return;
            }
        }
    }
}

LRESULT PWndPlay::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        Layout();
        break;
    case WM_COMMAND:
        if (PlayPickedQueueItem(host, static_cast<int>(wParam), queueMenuCount)) {
            return 0;
        }
        break;
    case SN_MEDIA_BUTTON_CLICKED:
    case SN_MEDIA_MOUSE:
        HandleNotification(message, wParam, lParam);
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
