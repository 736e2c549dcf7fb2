// What a click on a link of the Book does: the decision alone, without a
// window, so that every rule is tested headless. The Book window asks it
// before each navigation and carries out the answer through its host.
#pragma once

#include "foundation/string.h"

enum class PBookLinkAction {
    Navigate,   // not one of the Book's own links: the page goes there
    OpenFolder, // a ".link": the main window opens path and selects select
    PlaySong,   // a song or video: the queue becomes path alone, played
    QueueSong,  // the same with Ctrl held: path is added to the queue
    PlayAlbum,  // an ".album": the queue becomes the folder's media, whole tree
};

struct PBookLink {
    PBookLinkAction action = PBookLinkAction::Navigate;
    // OpenFolder and PlayAlbum: a folder ending in "/"; the songs: a file.
    SString path;
    // OpenFolder: the name of the row to select in that folder.
    SString select;
};

// The local path of a "file:" address, its escapes decoded and its query
// and fragment left out; an absolute path stands for itself. Empty for any
// other address, a "file:" address of another host's form that has no
// path, or one whose decoded path holds a zero byte.
SString LocalPathOfUrl(const char* url);

// Decides what url does in the Book of the collection at root (a folder
// path, with or without its final "/"). The part of the path below the
// root's depth names the target under root, so a Book moved with its
// collection keeps working. Anything that is not a local path under the
// root's depth, holds a "." or ".." part, or has no extension of the
// Book's links, is navigated as usual.
PBookLink DecideBookLink(const char* url, const char* root, bool ctrl);
