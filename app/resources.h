// The main window's own pictures (files of app/resources/, drawn as SVG and
// rendered to PNG at build time; the table of every numbered resource is
// docs/resources.md).
#pragma once

// Window icons, from the program icon: large (32) and small (16).
inline constexpr unsigned RESOURCE_ICON_LARGE = 107;
inline constexpr unsigned RESOURCE_ICON_SMALL = 108;
// The splash shown while the library loads, with transparency.
inline constexpr unsigned RESOURCE_SPLASH = 235;
// The info pane's background, a nine-slice of 100 by 42 whose centre is
// 20, 20 to 80, 40.
inline constexpr unsigned RESOURCE_INFO_PANE = 237;

// Dialog definitions: the preferences (a dialog of 525 by 380) and the
// folder's site box of "Properties..." (355 by 90).
inline constexpr unsigned RESOURCE_PREFERENCES_DIALOG = 162;
inline constexpr unsigned RESOURCE_PROPERTIES_DIALOG = 215;

// Toolbar pictures, in the order of the toolbar's image list. Each is
// embedded at 32 by 32 as BINARY, and also at 24 by 24 under
// RESOURCE_TYPE_SMALL (the small-icons setting) and at 16 by 16 under
// RESOURCE_TYPE_MENU (menu images), since an image list centres a picture
// of another size instead of scaling it.
inline constexpr unsigned RESOURCE_TOOL_HOME = 163;
inline constexpr unsigned RESOURCE_TOOL_PARENT = 134;
inline constexpr unsigned RESOURCE_TOOL_PLAY_AT = 137;
inline constexpr unsigned RESOURCE_TOOL_PLAY_FOLDERS = 219;
inline constexpr unsigned RESOURCE_TOOL_PLAY_RANDOM = 168;
inline constexpr unsigned RESOURCE_TOOL_PLAY_ALL_RANDOM = 167;
inline constexpr unsigned RESOURCE_TOOL_PLAY_SELECTED = 136;
inline constexpr unsigned RESOURCE_TOOL_PLAY = 131;
inline constexpr unsigned RESOURCE_TOOL_PREVIOUS = 138;
inline constexpr unsigned RESOURCE_TOOL_NEXT = 133;
inline constexpr unsigned RESOURCE_TOOL_PAUSE = 135;
inline constexpr unsigned RESOURCE_TOOL_STOP = 141;
inline constexpr unsigned RESOURCE_TOOL_REPEAT = 139;
inline constexpr unsigned RESOURCE_TOOL_SHUTDOWN = 218;
inline constexpr unsigned RESOURCE_TOOL_HIDE = 142;
inline constexpr unsigned RESOURCE_TOOL_OPEN_BOOK = 205;
inline constexpr unsigned RESOURCE_TOOL_MAKE_BOOK = 165;
inline constexpr unsigned RESOURCE_TOOL_SEND_BOOK = 172;
inline constexpr unsigned RESOURCE_TOOL_DESCRIPTIONS = 198;
inline constexpr unsigned RESOURCE_TOOL_PREFERENCES = 140;
inline constexpr unsigned RESOURCE_TOOL_HELP = 171;
inline constexpr unsigned RESOURCE_TOOL_DONATION = 239;
inline constexpr unsigned TOOLBAR_IMAGES[22] = {
    RESOURCE_TOOL_HOME,         RESOURCE_TOOL_PARENT,        RESOURCE_TOOL_PLAY_AT,
    RESOURCE_TOOL_PLAY_FOLDERS, RESOURCE_TOOL_PLAY_RANDOM,   RESOURCE_TOOL_PLAY_ALL_RANDOM,
    RESOURCE_TOOL_PLAY_SELECTED, RESOURCE_TOOL_PLAY,         RESOURCE_TOOL_PREVIOUS,
    RESOURCE_TOOL_NEXT,         RESOURCE_TOOL_PAUSE,         RESOURCE_TOOL_STOP,
    RESOURCE_TOOL_REPEAT,       RESOURCE_TOOL_SHUTDOWN,      RESOURCE_TOOL_HIDE,
    RESOURCE_TOOL_OPEN_BOOK,    RESOURCE_TOOL_MAKE_BOOK,     RESOURCE_TOOL_SEND_BOOK,
    RESOURCE_TOOL_DESCRIPTIONS, RESOURCE_TOOL_PREFERENCES,   RESOURCE_TOOL_HELP,
    RESOURCE_TOOL_DONATION};
inline constexpr const char* RESOURCE_TYPE_SMALL = "BINARY24";
inline constexpr const char* RESOURCE_TYPE_MENU = "BINARY16";

// Registers every resource of the program (this layer's, the panels' and
// the pages'); safe to call from any thread, any number of times.
void EnsureAppResources();
