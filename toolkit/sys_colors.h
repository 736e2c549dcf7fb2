// The numbered system colours every control asks for (window text, button
// face, highlight, hot-track link...). The table starts with the classic
// desktop values, which headless tests keep; the GTK platform overwrites
// entries from the theme when the toolkit starts.
//
// Colours are program colours, 0x00BBGGRR, as in foundation/color.h.
#pragma once

#include <cstdint>

enum {
    SYS_COLOR_SCROLLBAR = 0,
    SYS_COLOR_DESKTOP = 1,
    SYS_COLOR_ACTIVECAPTION = 2,
    SYS_COLOR_INACTIVECAPTION = 3,
    SYS_COLOR_MENU = 4,
    SYS_COLOR_WINDOW = 5,
    SYS_COLOR_WINDOWFRAME = 6,
    SYS_COLOR_MENUTEXT = 7,
    SYS_COLOR_WINDOWTEXT = 8,
    SYS_COLOR_CAPTIONTEXT = 9,
    SYS_COLOR_ACTIVEBORDER = 10,
    SYS_COLOR_INACTIVEBORDER = 11,
    SYS_COLOR_APPWORKSPACE = 12,
    SYS_COLOR_HIGHLIGHT = 13,
    SYS_COLOR_HIGHLIGHTTEXT = 14,
    SYS_COLOR_BTNFACE = 15,
    SYS_COLOR_BTNSHADOW = 16,
    SYS_COLOR_GRAYTEXT = 17,
    SYS_COLOR_BTNTEXT = 18,
    SYS_COLOR_INACTIVECAPTIONTEXT = 19,
    SYS_COLOR_BTNHIGHLIGHT = 20,
    SYS_COLOR_3DDKSHADOW = 21,
    SYS_COLOR_3DLIGHT = 22,
    SYS_COLOR_INFOTEXT = 23,
    SYS_COLOR_INFOBK = 24,
    SYS_COLOR_HOTLIGHT = 26,
    SYS_COLOR_GRADIENTACTIVECAPTION = 27,
    SYS_COLOR_GRADIENTINACTIVECAPTION = 28,
    SYS_COLOR_MENUHILIGHT = 29,
    SYS_COLOR_MENUBAR = 30,
    SYS_COLOR_COUNT = 31
};

// The colour of index; black for an index out of range.
uint32_t GetSysColor(int index);
// Replaces one entry (the platform, from the theme); ignored out of range.
// Call from the window thread before windows are made, or from tests.
void SetSysColor(int index, uint32_t color);
// Puts every entry back to its classic value.
void ResetSysColors();
