// The program's settings: the values kept under one key of the current
// user's settings store, how each is read and written, and the window
// placement text. No window is involved, so every rule here is tested alone.
//
// A missing value reads as 0, false or the empty string, and that is every
// value's default. Errors are silent: a failed read gives the default and a
// failed write is dropped (the write functions still report it).
#pragma once

#include <cstdint>

#include "foundation/geometry.h"
#include "foundation/registry.h"
#include "foundation/string.h"

// The key that holds every setting, under HKEY_CURRENT_USER.
inline constexpr HKEY SETTINGS_ROOT = HKEY_CURRENT_USER;
inline constexpr const char* SETTINGS_KEY = "Software\\Ilvanne Tavora\\Melkora Browser\\1.0";

// Value names.
inline constexpr const char* SETTING_FOLDER = "Folder";   // root folder; "" = program's
inline constexpr const char* SETTING_IMAGES = "Images";   // shared-cover names, ";"
inline constexpr const char* SETTING_TOOLBAR = "ToolBar"; // bool: small icons, 24 points
inline constexpr const char* SETTING_AUTO_HIDE = "AutoHideAfterPlay"; // bool
inline constexpr const char* SETTING_TASKBAR = "Taskbar";             // bool: the strip is active
inline constexpr const char* SETTING_TASKBAR_COLOR = "TaskbarColor";  // colour of the strip's texts
inline constexpr const char* SETTING_EMAILS = "Emails";               // "Send to..." addresses, ";"
inline constexpr const char* SETTING_COLUMN = "Column";               // folder column, points
inline constexpr const char* SETTING_COLUMN2 = "Column2";             // track column, points
inline constexpr const char* SETTING_PLAYLIST = "Playlist";           // name of the open playlist
inline constexpr const char* SETTING_VOLUME = "Volume";               // slider 0..50, 0 loudest
inline constexpr const char* SETTING_REPEAT = "Repeat";               // bool
inline constexpr const char* SETTING_WINDOW = "Window";               // placements
inline constexpr const char* SETTING_WINDOW_VIDEO = "WindowVideo";
inline constexpr const char* SETTING_WINDOW_BOOK = "WindowBook";
inline constexpr const char* SETTING_WINDOW_DESCRIPTION = "WindowDescription";
inline constexpr const char* SETTING_WINDOW_HELP = "WindowHelp";

// The kind of each value: text, a number, or a number used as a bool.
enum class SettingType { TEXT, NUMBER, BOOL };

struct SettingInfo {
    const char* name;
    SettingType type;
};

// Every value the program keeps, in the order of the table above.
inline constexpr int SETTING_COUNT = 17;
extern const SettingInfo SETTINGS_TABLE[SETTING_COUNT];
// The entry of a value name (case-blind), or null for a name not kept.
const SettingInfo* FindSetting(const char* name);

// Reading and writing one value of the settings key. Texts longer than 255
// bytes read as "". A bool is written as 1 or 0, and any stored number but
// 0 reads as true.
SString ReadSettingString(const char* name);
uint32_t ReadSettingInt(const char* name);
bool ReadSettingBool(const char* name);
bool WriteSettingString(const char* name, const char* text);
bool WriteSettingInt(const char* name, uint32_t value);
bool WriteSettingBool(const char* name, bool value);

// A window placement: the restored rectangle and three flags. Its text is
// "7:" then left, top, right, bottom, visible, minimised, maximised, all
// separated by ",", for example "7:10,20,810,620,1,0,0".
struct SWindowPlacement {
    SRect rect;
    bool isVisible = false;
    bool isMinimized = false;
    bool isMaximized = false;
    bool operator==(const SWindowPlacement& other) const = default;
};

SString FormatPlacement(const SWindowPlacement& placement);
// False for an empty text, no ":", a number before it below 7, or fewer
// than 7 fields after it; the output is then untouched. A right edge left of
// the left edge is moved onto it, and likewise the bottom; numbers beyond
// the int range are clamped to it.
bool ParsePlacement(const char* text, SWindowPlacement* placement);
// Fits a rectangle to the work area, across and then down: wider than the
// area, it takes the area's edges; otherwise it is moved in by what sticks
// out on the left, or else on the right.
SRect FitToWorkArea(const SRect& rect, const SRect& workArea);
// Reads a placement value, parses it and fits it to the work area.
bool ReadPlacement(const char* name, const SRect& workArea, SWindowPlacement* placement);
bool WritePlacement(const char* name, const SWindowPlacement& placement);

// Derived values used at window creation.
inline constexpr int DEFAULT_FOLDER_COLUMN = 220; // points
inline constexpr int DEFAULT_TRACK_COLUMN = 200;  // points
inline constexpr int DEFAULT_WINDOW_WIDTH = 1024;
inline constexpr int DEFAULT_WINDOW_HEIGHT = 600;
// The stored column width when it is above 100 and below the splitter's
// client width minus 200, else fallback.
int ColumnWidthFromSetting(uint32_t stored, int splitterWidth, int fallback);
// The player's volume, 0 to 100, from the slider position 0 (loudest) to 50.
int VolumeFromSlider(int position);
