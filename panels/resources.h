// The pictures of the panels round the main window (files of
// panels/resources/, drawn as SVG and rendered to PNG at build time; the
// table of every numbered resource is docs/resources.md).
#pragma once

// Row icons of the track list, 16 by 16, by media class: other, video,
// song, radio, picture, then the marker of a track with a text file. The
// taskbar strip takes 132, 143 and 220 as its type icons.
inline constexpr unsigned RESOURCE_ROW_OTHER = 149;
inline constexpr unsigned RESOURCE_ROW_VIDEO = 143;
inline constexpr unsigned RESOURCE_ROW_SONG = 132;
inline constexpr unsigned RESOURCE_ROW_RADIO = 220;
inline constexpr unsigned RESOURCE_ROW_PICTURE = 173;
inline constexpr unsigned RESOURCE_ROW_TEXT = 221;
inline constexpr unsigned ROW_ICONS[6] = {RESOURCE_ROW_OTHER, RESOURCE_ROW_VIDEO, RESOURCE_ROW_SONG,
                                          RESOURCE_ROW_RADIO, RESOURCE_ROW_PICTURE, RESOURCE_ROW_TEXT};

// Playing window: the pictures while nothing plays (64 and 128 square), the
// art behind the queue total (64 by 22) and behind the seek bar (a tile).
inline constexpr unsigned RESOURCE_NOTHING_PLAYING = 145;
inline constexpr unsigned RESOURCE_NOTHING_PLAYING_LARGE = 230;
inline constexpr unsigned RESOURCE_QUEUE_TOTAL = 169;
inline constexpr unsigned RESOURCE_STRIP_TILE = 231;

// Seek bar, 100 by 9, stretched: empty, played part, what a click covers.
inline constexpr unsigned RESOURCE_SEEK_EMPTY = 232;
inline constexpr unsigned RESOURCE_SEEK_FILLED = 233;
inline constexpr unsigned RESOURCE_SEEK_HOVER = 234;

// Taskbar strip buttons, 16 by 16.
inline constexpr unsigned RESOURCE_STRIP_STOP = 154;
inline constexpr unsigned RESOURCE_STRIP_NEXT = 156;
inline constexpr unsigned RESOURCE_STRIP_PAUSE = 157;
inline constexpr unsigned RESOURCE_STRIP_PREVIOUS = 159;
inline constexpr unsigned RESOURCE_STRIP_SHOW_WINDOW = 160;

// Thumbnails: card art, 170 by 200 (the first column's with the band drawn
// in), and the play overlay, 64 by 64.
inline constexpr unsigned RESOURCE_CARD_FIRST_HOT = 200;
inline constexpr unsigned RESOURCE_CARD_FIRST = 202;
inline constexpr unsigned RESOURCE_CARD_HOT = 203;
inline constexpr unsigned RESOURCE_CARD = 204;
inline constexpr unsigned RESOURCE_CARD_FIRST_BAND_HOT = 206;
inline constexpr unsigned RESOURCE_PLAY_OVERLAY = 207;

// Playlist panel buttons: play all and play shuffled (24 by 24), delete,
// rename, new, up, down (16 by 16).
inline constexpr unsigned RESOURCE_PLAYLIST_PLAY = 240;
inline constexpr unsigned RESOURCE_PLAYLIST_DELETE = 241;
inline constexpr unsigned RESOURCE_PLAYLIST_RENAME = 242;
inline constexpr unsigned RESOURCE_PLAYLIST_NEW = 243;
inline constexpr unsigned RESOURCE_PLAYLIST_UP = 244;
inline constexpr unsigned RESOURCE_PLAYLIST_DOWN = 245;
inline constexpr unsigned RESOURCE_PLAYLIST_SHUFFLE = 246;

// The dialog definition of the box that asks for a playlist's new name
// (175 by 105).
inline constexpr unsigned RESOURCE_PLAYLIST_NAME_DIALOG = 247;

// Registers them as BINARY resources, with the pages layer's (the default
// cover among them); safe to call from any thread, any number of times.
void EnsurePanelsResources();
