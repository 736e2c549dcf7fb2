// The statistics of the collection: how many songs, videos and radios each
// folder holds with all its subfolders, for the info pane and the status
// bar, and the removal of empty ini files.
//
// CountLibrary walks the tree once and returns a finished table; it keeps
// no state of its own, so a worker thread may run it and hand the table to
// the window thread whole.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/array.h"
#include "foundation/string.h"

class PStatsTable {
public:
    // Full folder paths ending in "/", sorted in byte order, with the three
    // counts of each folder's whole subtree, each cut to 16 bits.
    SStringArray paths;
    std::vector<uint16_t> songs;
    std::vector<uint16_t> videos;
    std::vector<uint16_t> radios;
    // The root's counts before the cut.
    uint32_t totalSongs = 0;
    uint32_t totalVideos = 0;
    uint32_t totalRadios = 0;

    int GetCount() const { return paths.GetCount(); }
    // The index of a folder path (with its final "/"), or -1.
    int Find(const char* path) const { return paths.FindSorted(path); }
    // "3 songs, 0 video, 1 radio": the status bar's text of the totals.
    SString FormatTotals() const;
    // The info pane's text for the folder at index, or "" for -1.
    SString FormatFolder(int index) const;
};

// "<b>S</b> song(s), <b>V</b> video(s) & <b>R</b> radio(s)"; a count below
// 2 takes the singular word.
SString FormatFolderCounts(unsigned songs, unsigned videos, unsigned radios);

// Counts the tree under root (a folder path). Hidden files and folders count
// for nothing and hidden folders are not entered. Songs and videos are the
// media classes of those names (see media.h); radios are the radio class.
// Pictures are not counted. A root that cannot be read gives a table with
// the root alone and counts of 0; an empty or null root gives an empty
// table.
PStatsTable CountLibrary(const char* root);

// Deletes every ".ini" file of size 0 under root, hidden folders included.
// Returns how many were deleted.
int PurgeEmptyIni(const char* root);
