#include "panels/wnd_task.h"

#include <algorithm>

#include "controls/media_layout.h"
#include "foundation/color.h"
#include "foundation/network.h"
#include "library/media.h"
#include "panels/now_playing.h"
#include "panels/panel_host.h"
#include "panels/resources.h"
#include "toolkit/draw.h"
#include "toolkit/notification.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd_app.h"

namespace {

constexpr unsigned LABEL_ALIGN = MEDIA_ALIGN_CENTER | MEDIA_ALIGN_MIDDLE;
// The widths of the fixed controls, from the right: a 2 pixel edge, the
// show button, a gap of 10, four buttons, a gap of 10, the seek bar's
// place, the number and the two times.
constexpr int BUTTON_WIDTH = 20;
constexpr int SEEK_WIDTH = 100;
constexpr int SEEK_INSET = 4;
constexpr int SEEK_HEIGHT = 9;
constexpr int LABEL_WIDTH = 80;
constexpr int TYPE_WIDTH = 20;
constexpr int FIXED_WIDTH =
    2 + BUTTON_WIDTH + 10 + 4 * BUTTON_WIDTH + 10 + SEEK_WIDTH + 3 * LABEL_WIDTH;
// What the three names leave free at the left end.
constexpr int LEFT_FREE = 272;

// The control ids, for the clicks the parent hears.
constexpr uintptr_t CONTROL_IDS[STRIP_CONTROL_COUNT] = {0,    1001, 1002, 0,    1003, 0,   0,
                                                        1004, 1005, 1006, 1007, 1008, 1009};

bool IsButton(STRIP_CONTROL which) {
    return which >= STRIP_PREVIOUS && which <= STRIP_SHOW;
}

bool IsName(STRIP_CONTROL which) {
    return which == STRIP_ARTIST || which == STRIP_ALBUM || which == STRIP_SONG;
}

// The type icon of a file: songs, radio, and every other kind.
unsigned TypeIconOf(const char* path) {
    switch (GetMediaClass(path)) {
    case MEDIA_SONG:
        return RESOURCE_ROW_SONG;
    case MEDIA_RADIO:
        return RESOURCE_ROW_RADIO;
    default:
        return RESOURCE_ROW_VIDEO;
    }
}

SString NumberText(int number, int total) {
    return SString::FromInt(number) + "/" + SString::FromInt(total);
}

} // namespace

int StripHeight(int textHeight) {
    return std::max(textHeight + 2, 20);
}

int StripNameWidth(int width) {
    return std::max(0, (width - FIXED_WIDTH - LEFT_FREE) / 3);
}

PWndTask::PWndTask(PPanelHost* host) : host(host), seekBar(host) {
    EnsurePanelsResources();
    tile.LoadResource("BINARY", RESOURCE_STRIP_TILE);
    tile.drawMode = DRAW_TILE;
    const struct {
        STRIP_CONTROL which;
        unsigned resource;
    } art[] = {{STRIP_PREVIOUS, RESOURCE_STRIP_PREVIOUS},
               {STRIP_NEXT, RESOURCE_STRIP_NEXT},
               {STRIP_PAUSE, RESOURCE_STRIP_PAUSE},
               {STRIP_STOP, RESOURCE_STRIP_STOP},
               {STRIP_SHOW, RESOURCE_STRIP_SHOW_WINDOW}};
    for (const auto& item : art) {
        buttonArt[item.which].LoadResource("BINARY", item.resource);
        buttonArt[item.which].drawMode = DRAW_CENTER;
        fadedArt[item.which].CopyFrom(&buttonArt[item.which]);
        fadedArt[item.which].SetAlpha(128, nullptr, true);
        fadedArt[item.which].drawMode = DRAW_CENTER;
    }
}

PWndTask::~PWndTask() {
    queueMenu.Close();
    Remove();
    Destroy();
}

SRect PWndTask::LayoutRect(STRIP_CONTROL which, int width, int height) {
    int show = width - 2 - BUTTON_WIDTH;
    if (which == STRIP_SHOW) {
        return SRect{show, 0, show + BUTTON_WIDTH, height};
    }
    // Stop, pause, next and previous stand 30 left of the show button, in
    // that order leftwards.
    int stop = show - 30;
    if (which >= STRIP_PREVIOUS && which <= STRIP_STOP) {
        int left = stop - (STRIP_STOP - which) * BUTTON_WIDTH;
        return SRect{left, 0, left + BUTTON_WIDTH, height};
    }
    int previous = stop - 3 * BUTTON_WIDTH;
    int seek = previous - 10 - SEEK_WIDTH;
    int numberLeft = seek - LABEL_WIDTH;
    int lengthLeft = numberLeft - LABEL_WIDTH;
    int elapsedLeft = lengthLeft - LABEL_WIDTH;
    int third = StripNameWidth(width);
    int song = elapsedLeft - third;
    int type = song - TYPE_WIDTH;
    int album = type - third;
    int artist = album - third;
    switch (which) {
    case STRIP_NUMBER:
        return SRect{numberLeft, 0, seek, height};
    case STRIP_LENGTH:
        return SRect{lengthLeft, 0, numberLeft, height};
    case STRIP_ELAPSED:
        return SRect{elapsedLeft, 0, lengthLeft, height};
    case STRIP_SONG:
        return SRect{song, 0, elapsedLeft, height};
    case STRIP_TYPE:
        return SRect{type, 0, song, height};
    case STRIP_ALBUM:
        return SRect{album, 0, type, height};
    case STRIP_ARTIST:
        return SRect{artist, 0, album, height};
    case STRIP_REMAINDER:
        return SRect{0, 0, std::max(0, artist), height};
    default:
        return SRect{};
    }
}

SRect PWndTask::SeekBarRect(int width, int height) {
    SRect previous = LayoutRect(STRIP_PREVIOUS, width, height);
    int right = previous.left - 10;
    int top = (height - SEEK_HEIGHT) / 2;
    return SRect{right - SEEK_WIDTH + SEEK_INSET, top, right - SEEK_INSET, top + SEEK_HEIGHT};
}

bool PWndTask::Create() {
    if (GetHandle() != 0) {
        return false;
    }
    SRect area;
    GetWorkArea(&area);
    height = StripHeight(TextMetrics(GetDefaultFont()).height);
    width = area.Width();
    SRect rect{area.left, area.bottom - height, area.right, area.bottom};
    if (!SWnd::Create("Melkora Browser Taskbar", 0, 0, &rect, 0)) {
        return false;
    }
    SetBackgroundImage(&tile);
    int clientWidth = GetClientWidth();
    int clientHeight = GetClientHeight();
    for (int i = 0; i < STRIP_CONTROL_COUNT; ++i) {
        STRIP_CONTROL which = static_cast<STRIP_CONTROL>(i);
        SMediaCtrl& control = controls[i];
        SRect place = LayoutRect(which, clientWidth, clientHeight);
        bool edged = !IsButton(which) && which != STRIP_TYPE && which != STRIP_REMAINDER;
        unsigned exStyle = edged ? WS_EX_STATICEDGE : 0;
        if (!control.Create("", WS_VISIBLE, exStyle, &place, GetHandle(), CONTROL_IDS[i])) {
            return false;
        }
        // The bar's tile shows through, continuous across the controls.
        control.SetBackColor(COLOR_TRANSPARENT);
        control.SetMargins(0, 0, 0, 0);
        control.SetAlign(LABEL_ALIGN);
        if (IsButton(which) || IsName(which) || which == STRIP_NUMBER) {
            control.SetButton(true);
            control.SetFlat(true);
            control.SetCursor(CURSOR_HAND + 1);
        }
        if (IsButton(which)) {
            control.SetImage(&buttonArt[i]);
        }
    }
    controls[STRIP_SHOW].SetToolTip(true);
    controls[STRIP_SHOW].SetToolTipText("Show Window");
    SRect seekPlace = SeekBarRect(clientWidth, clientHeight);
    if (!seekBar.Create("", WS_VISIBLE, 0, &seekPlace, GetHandle())) {
        return false;
    }
    seekBar.SetBackgroundImage(&tile);
    seekBar.SetCursor(CURSOR_HAND + 1);
    SetTextColor(textColor);
    // Cleared while still unregistered, so that the times read 0.
    registered = true;
    SetPlayingTrack(nullptr, 0, 0);
    SetRegistered(false);
    return true;
}

void PWndTask::SetCommandTarget(HWND target, const PStripCommands& value) {
    commandTarget = target;
    commands = value;
}

SDockState PWndTask::ApplyPreference(bool on, uint32_t color) {
    if (GetHandle() != 0) {
        if (!on && registered && Undock()) {
            SetRegistered(false);
            dockState = SDockState::NONE;
        } else if (on && !registered) {
            // A desktop that takes no bar leaves it hidden and unregistered;
            // the preference stays as the user set it.
            dockState = DockToBottomEdge(height);
            if (dockState != SDockState::NONE) {
                SetRegistered(true);
            }
        }
    }
    SetTextColor(color);
    return dockState;
}

void PWndTask::Remove() {
    if (GetHandle() == 0) {
        return;
    }
    queueMenu.Close();
    if (registered) {
        Undock();
        SetRegistered(false);
    } else if (IsVisible()) {
        Show(SW_HIDE);
    }
    dockState = SDockState::NONE;
}

void PWndTask::Layout() {
    if (GetHandle() == 0) {
        return;
    }
    int clientWidth = GetClientWidth();
    int clientHeight = GetClientHeight();
    for (int i = 0; i < STRIP_CONTROL_COUNT; ++i) {
        if (controls[i].GetHandle() != 0) {
            controls[i].MoveWindow(
                LayoutRect(static_cast<STRIP_CONTROL>(i), clientWidth, clientHeight));
        }
    }
    if (seekBar.GetHandle() != 0) {
        seekBar.MoveWindow(SeekBarRect(clientWidth, clientHeight));
    }
}

void PWndTask::SetRegistered(bool value) {
    registered = value;
    for (STRIP_CONTROL which : {STRIP_PREVIOUS, STRIP_NEXT, STRIP_PAUSE, STRIP_STOP}) {
        EnableButton(which, false);
    }
}

void PWndTask::EnableButton(STRIP_CONTROL which, bool enable) {
    SMediaCtrl& button = controls[which];
    if (button.GetHandle() == 0) {
        return;
    }
    button.SetImage(enable ? &buttonArt[which] : &fadedArt[which]);
    button.Enable(enable);
}

void PWndTask::EnableBrowse(bool enable) {
    if (!registered) {
        return;
    }
    EnableButton(STRIP_PREVIOUS, enable);
    EnableButton(STRIP_NEXT, enable);
}

void PWndTask::EnableTransport(bool enable) {
    if (!registered) {
        return;
    }
    EnableButton(STRIP_PAUSE, enable);
    EnableButton(STRIP_STOP, enable);
}

void PWndTask::SetTextColor(uint32_t color) {
    textColor = color & 0xFFFFFF;
    for (SMediaCtrl& control : controls) {
        if (control.GetHandle() != 0) {
            control.SetTextColor(textColor);
        }
    }
}

void PWndTask::SetBuffering(bool value) {
    if (buffering == value) {
        return;
    }
    buffering = value;
    UpdatePlayingTime();
}

void PWndTask::SetPlayingTrack(const char* path, int trackNumber, int queueTotal) {
    if (GetHandle() == 0 || !registered) {
        return;
    }
    SString full = path != nullptr ? path : "";
    if (full.IsEmpty()) {
        playingPath.Empty();
        names = PTrackNames();
        number = total = 0;
        HideTrackNames(controls[STRIP_ARTIST], controls[STRIP_ALBUM], controls[STRIP_SONG]);
        controls[STRIP_TYPE].SetImage(nullptr);
        controls[STRIP_NUMBER].SetText("");
        seekBar.SetRange(0, 0);
        seekBar.SetValue(0);
        SetTimeLabel(controls[STRIP_ELAPSED], "0:00:00", textColor);
        SetTimeLabel(controls[STRIP_LENGTH], "", textColor);
        return;
    }
    playingPath = full;
    number = trackNumber;
    total = queueTotal;
    names = GetTrackNames(full.c_str(), host != nullptr ? host->GetRootFolder().c_str() : "");
    ShowTrackNames(names, controls[STRIP_ARTIST], controls[STRIP_ALBUM], controls[STRIP_SONG]);
    controls[STRIP_NUMBER].SetText(NumberText(number, total).c_str());
    typeIcon.LoadResource("BINARY", TypeIconOf(full.c_str()));
    typeIcon.drawMode = DRAW_CENTER;
    controls[STRIP_TYPE].SetImage(nullptr); // the same object with a new picture
    controls[STRIP_TYPE].SetImage(&typeIcon);
    int length = host != nullptr ? std::max(host->GetPlayLength(), 0) / 1000 : 0;
    seekBar.SetRange(0, length);
    seekBar.SetValue(0);
    SetTimeLabel(controls[STRIP_ELAPSED], "0:00:00", textColor);
    SetTimeLabel(controls[STRIP_LENGTH], length > 0 ? FormatPlayingTime(length) : SString(),
                 textColor);
    UpdatePlayingTime();
}

void PWndTask::SetCurrentNumber(int value) {
    if (GetHandle() == 0 || !registered || playingPath.IsEmpty()) {
        return;
    }
    number = value;
    controls[STRIP_NUMBER].SetText(NumberText(number, total).c_str());
}

void PWndTask::UpdatePlayingTime() {
    if (GetHandle() == 0 || host == nullptr || !registered) {
        return;
    }
    PPlayingTime time = ShowPlayingTime(*host, seekBar, controls[STRIP_ELAPSED], textColor);
    SString lengthText = buffering         ? SString("buffering...")
                         : time.length > 0 ? FormatPlayingTime(time.length)
                                           : SString();
    SetTimeLabel(controls[STRIP_LENGTH], lengthText, time.color);
}

bool PWndTask::OpenQueueMenu(SPoint screen) {
    return OpenPlayQueueMenu(host, queueMenu, GetHandle(), screen, &queueMenuCount);
}

void PWndTask::Clicked(STRIP_CONTROL which, SPoint screen) {
    auto post = [this](int command) {
        if (commandTarget != 0 && command != 0) {
            PostMessage(commandTarget, WM_COMMAND, static_cast<WPARAM>(command), 0);
        }
    };
    switch (which) {
    case STRIP_PREVIOUS:
        post(commands.previous);
        return;
    case STRIP_NEXT:
        post(commands.next);
        return;
    case STRIP_PAUSE:
        post(commands.pause);
        return;
    case STRIP_STOP:
        post(commands.stop);
        return;
    case STRIP_SHOW:
        if (host != nullptr) {
            host->ShowMainWindow();
        }
        return;
    case STRIP_NUMBER:
        OpenQueueMenu(screen);
        return;
    default:
        break;
    }
    if (host == nullptr || playingPath.IsEmpty()) {
        return;
    }
    if (which == STRIP_ARTIST && !names.artistFolder.IsEmpty()) {
        host->OpenFolder(names.artistFolder.c_str(), "", false);
        host->ShowMainWindow();
    } else if (which == STRIP_ALBUM) {
        host->OpenFolder(names.albumFolder.c_str(), "", false);
        host->ShowMainWindow();
    } else if (which == STRIP_SONG) {
        host->OpenFolder(names.albumFolder.c_str(), names.fileName.c_str(), false);
        host->ShowMainWindow();
    }
}

LRESULT PWndTask::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        Layout();
        break;
    case WM_CLOSE:
        return 0; // the strip goes only with the preference or the program
    case WM_COMMAND:
        if (PlayPickedQueueItem(host, static_cast<int>(wParam), queueMenuCount)) {
            return 0;
        }
        break;
    case SN_MEDIA_BUTTON_CLICKED: {
        SNotification note(message, wParam, lParam);
        for (int i = 0; i < STRIP_CONTROL_COUNT; ++i) {
            if (note.From(&controls[i])) {
                // The queue menu opens over the number label.
                SRect place = controls[i].GetWindowRect();
                Clicked(static_cast<STRIP_CONTROL>(i), SPoint{place.left, place.top});
                break;
            }
        }
        return 0;
    }
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
