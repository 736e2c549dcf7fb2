// The values the preferences window edits, read from and written to the
// settings store without any window, and the two forms of the contact
// addresses: stored as one text separated by ";", edited one a line.
#pragma once

#include <cstdint>

#include "foundation/string.h"

struct PPreferences {
    SString folder;            // "Folder": the root; "" = the program's folder
    SString images;            // "Images": shared-cover names, separated by ";"
    bool smallIcons = false;   // "ToolBar": 24-point toolbar pictures
    bool autoHide = false;     // "AutoHideAfterPlay"
    bool taskbar = false;      // "Taskbar": the strip is shown
    uint32_t taskbarColor = 0; // "TaskbarColor": 0x00BBGGRR
    SString emails;            // "Emails": addresses separated by ";"

    bool operator==(const PPreferences& other) const = default;
};

// Every value as stored; a missing one reads as its empty default, and a
// stored colour keeps its three colour bytes only.
PPreferences ReadPreferences();
// Writes Folder, Images, ToolBar, AutoHideAfterPlay, Taskbar, TaskbarColor
// and Emails, in that order; false when any write failed (the rest are
// still tried).
bool WritePreferences(const PPreferences& values);

// The stored addresses one a line ("\n" between), empty items left out.
SString EmailsToLines(const char* stored);
// The lines joined with ";" between them. Each line loses the blanks
// (spaces, tabs, CR) round it, and a line left empty is dropped, so an
// empty box gives "".
SString EmailsFromLines(const char* lines);

// The name of the first text value that is longer than the store hands
// back on a read (such a value would read as empty at the next start), or
// null when every one fits.
const char* FindOverlongPreference(const PPreferences& values);
