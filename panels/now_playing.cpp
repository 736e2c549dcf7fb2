#include "panels/now_playing.h"

#include <algorithm>

#include "controls/media_ctrl.h"
#include "controls/media_layout.h"
#include "panels/panel_host.h"
#include "panels/progress_ctrl.h"
#include "panels/wnd_play.h"
#include "toolkit/menu.h"

namespace {

// The names scroll leftwards at this speed, in pixels per second, when
// their text does not fit.
constexpr double LABEL_SCROLL_SPEED = -30.0;
// A scrolling name starts in its place, so that its beginning is read at
// once, and comes back in from the right after it has passed.
constexpr SPoint LABEL_SCROLL_START{0, 0};

// A menu item's text: "&" doubled, so that it shows as itself.
SString MenuText(const SString& text) {
    SString result = text;
    result.ReplaceAll("&", "&&");
    return result;
}

} // namespace

void SetTimeLabel(SMediaCtrl& label, const SString& text, uint32_t color) {
    if (label.GetTextColor() != MediaColor(color)) {
        label.SetTextColor(color);
    }
    if (label.GetText() != text) {
        label.SetText(text.c_str());
    }
}

PPlayingTime ShowPlayingTime(const PPanelHost& host, PProgressCtrl& seekBar, SMediaCtrl& elapsed,
                             uint32_t color) {
    PPlayingTime time;
    time.position = std::max(host.GetPlayPosition(), 0) / 1000;
    time.length = std::max(host.GetPlayLength(), 0) / 1000;
    if (seekBar.GetMaximum() != time.length || seekBar.GetMinimum() != 0) {
        seekBar.SetRange(0, time.length);
    }
    seekBar.SetValue(time.position);
    int drag = seekBar.GetDragPosition();
    time.color = drag >= 0 ? DRAG_TIME_COLOR : color;
    SetTimeLabel(elapsed, FormatPlayingTime(drag >= 0 ? drag : time.position), time.color);
    return time;
}

void ScrollLikeTrackNames(SMediaCtrl& label) {
    label.SetAutoScroll(LABEL_SCROLL_SPEED, 0, false, &LABEL_SCROLL_START);
}

void ShowTrackNames(const PTrackNames& names, SMediaCtrl& artist, SMediaCtrl& album,
                    SMediaCtrl& song) {
    const SString* texts[3] = {&names.artist, &names.album, &names.song};
    SMediaCtrl* labels[3] = {&artist, &album, &song};
    for (int i = 0; i < 3; ++i) {
        labels[i]->Show(SW_SHOW);
        labels[i]->SetText(texts[i]->c_str());
        ScrollLikeTrackNames(*labels[i]);
    }
}

void HideTrackNames(SMediaCtrl& artist, SMediaCtrl& album, SMediaCtrl& song) {
    for (SMediaCtrl* label : {&artist, &album, &song}) {
        label->SetText("");
        label->Show(SW_HIDE);
    }
}

bool OpenPlayQueueMenu(PPanelHost* host, SMenu& menu, HWND owner, SPoint screen, int* count) {
    if (host == nullptr) {
        return false;
    }
    const SStringArray& queue = host->GetPlayQueue();
    if (queue.GetCount() == 0) {
        return false;
    }
    menu.Close();
    menu.Clear();
    int current = host->GetPlayIndex();
    for (int i = 0; i < queue.GetCount(); ++i) {
        PTrackNames item = GetTrackNames(queue.GetText(i).c_str(), "");
        menu.AppendItem(PLAY_QUEUE_MENU_FIRST + i, MenuText(item.song),
                        i == current ? MENU_ITEM_CHECKED : 0);
    }
    *count = queue.GetCount();
    return menu.TrackPopup(owner, screen.x, screen.y);
}

bool PlayPickedQueueItem(PPanelHost* host, int id, int count) {
    if (id < PLAY_QUEUE_MENU_FIRST || id >= PLAY_QUEUE_MENU_FIRST + count) {
        return false;
    }
    if (host != nullptr) {
        host->PlayQueueIndex(id - PLAY_QUEUE_MENU_FIRST);
    }
    return true;
}
