// What the now-playing panel (PWndPlay) and the strip (PWndTask) both
// show of the player, in one place: the seek bar with the two time labels,
// the three names of the playing track, and the menu of the play queue.
// Each works on the controls it is given and keeps no window of its own.
#pragma once

#include <cstdint>

#include "foundation/string.h"
#include "toolkit/wnd.h"

class PPanelHost;
class PProgressCtrl;
class SMediaCtrl;
class SMenu;
struct PTrackNames;

// Red, for the times while the seek bar is dragged.
constexpr uint32_t DRAG_TIME_COLOR = 0x0000FF;

// Sets a time label's text and colour, only what differs, so that the
// label does not flicker.
void SetTimeLabel(SMediaCtrl& label, const SString& text, uint32_t color);

// The player's time as shown: whole seconds, never negative; a stream of
// unknown length counts as 0.
struct PPlayingTime {
    int position = 0;
    int length = 0;
    uint32_t color = 0; // the colour the times were shown in
};

// Reads the player's position and length from host, brings the seek bar's
// range (the length is often known only once the medium plays) and value
// to them, and shows the elapsed time in elapsed: the place the seek bar is
// dragged to, in DRAG_TIME_COLOR, while it is dragged, else the position in
// color. The length label is the caller's, shown in the colour given back.
PPlayingTime ShowPlayingTime(const PPanelHost& host, PProgressCtrl& seekBar, SMediaCtrl& elapsed,
                             uint32_t color);

// Shows artist, album and song of names in the three labels, each shown
// and scrolling leftwards from its place when the text does not fit.
void ShowTrackNames(const PTrackNames& names, SMediaCtrl& artist, SMediaCtrl& album,
                    SMediaCtrl& song);
// Empties and hides the three labels.
void HideTrackNames(SMediaCtrl& artist, SMediaCtrl& album, SMediaCtrl& song);
// Makes a label's text scroll as the names do.
void ScrollLikeTrackNames(SMediaCtrl& label);

// Fills menu with the songs of host's play queue, the playing one checked,
// and opens it at a screen point for owner; count becomes the number of
// items. False, and nothing changed, when there is no host or the queue is
// empty.
bool OpenPlayQueueMenu(PPanelHost* host, SMenu& menu, HWND owner, SPoint screen, int* count);
// A pick of the queue menu (WM_COMMAND id) plays that item of the queue;
// false when id is no item of a menu of count items.
bool PlayPickedQueueItem(PPanelHost* host, int id, int count);
