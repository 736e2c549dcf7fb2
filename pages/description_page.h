// Description pages: the HTML page generated beside a folder from its
// description file ("Rock/Artist.txt" gives "Rock/Artist.htm"), one at a
// time or for every known folder. No window is involved: the caller shows
// the progress text it is handed.
#pragma once

#include <functional>

#include "foundation/string.h"

class SFile;
class PKnownFolders;

// Writes the page for the description text into page, from its position:
// the head with a base element pointing at root (its text as given, which
// should end in "/"), the style sheet, then the body built line by line.
// Every line ends in CR LF. False when the style sheet is missing or a
// write fails.
bool WriteDescriptionPage(SFile* page, const char* root, const SString& text,
                          const PKnownFolders* known);

// Builds the page of the folder relative to root ("Rock/Artist", no
// trailing "/"). When the description is missing or unreadable, a page
// this program generated there is deleted (a page never outlives its
// source; an HTML file of the user's own, which does not start as a
// generated page does, is left alone) and the result is false. The page is
// replaced atomically, and only inside the root's real path: a relative
// path with a ".." part, or a page that a symbolic link (of a folder on the
// way or of the page itself) would put outside the root, is refused.
// Temporary files left in the page's folder by a killed run are removed
// first. True when a page was written; otherwise reason, when given,
// receives why, one line.
bool BuildDescriptionPage(const char* root, const char* relative, const PKnownFolders* known,
                          SString* reason = nullptr);

// Receives the status text ("Building... 42%", "Ready.") and the percent it
// carries (100 with "Ready.").
using PStatusCallback = std::function<void(const SString& text, int percent)>;

// What a run over every page did: pages written, pages that should have
// been written and were not (a folder without a description is neither),
// and the reason of the first failure.
struct PPagesResult {
    int written = 0;
    int failed = 0;
    SString firstFailure;
};

// Writes "Images/icon.gif" under root (the folder made and hidden), then
// builds the page of every known folder in the tree's depth-first order,
// reporting "Building... N%" before each, under the rules of
// BuildDescriptionPage. A page that fails does not stop the others; result,
// when given, counts them. False only when the "Images" folder cannot be
// had (result then holds why).
bool BuildAllDescriptionPages(const char* root, const PKnownFolders& known,
                              const PStatusCallback& status = nullptr,
                              PPagesResult* result = nullptr);
