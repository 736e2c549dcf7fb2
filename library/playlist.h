// PPlaylistStore: the playlists of a collection, the files "<name>.lst" in
// the hidden folder "Playlists/" under the root, and the one playlist that
// is open: its entries, the selected entry, and every change, each written
// to disk at once. The playlist panel draws this and forwards its commands.
//
// The file: one entry a line, each followed by CR LF (the last one too), no
// header; an entry is the file's path relative to the root with "\" between
// folders. An empty playlist is a file of zero bytes. Reading takes CR LF
// and a bare LF (as Linux tools write it) as line ends; a lone CR is
// dropped and the line goes on. Blanks and tabs at
// the ends of a line go, and empty lines are dropped. A UTF-8 byte order
// mark at the start is dropped; a file that is not valid UTF-8 is read as
// Windows-1252.
//
// Saving replaces the file atomically: a new file with a short hidden name
// (".lst-" and six characters, so any name that fits on disk can be saved)
// is written beside it, given the old file's mode and, where the system
// permits, its owner and group, synced and renamed over it. Saves of every
// process hold an advisory lock (flock) on the file ".playlists.lock" in
// the playlists folder; a save finds the temporary files a killed save
// left there and removes them.
#pragma once

#include "foundation/array.h"
#include "foundation/string.h"

class PPlaylistStore {
public:
    PPlaylistStore() = default;
    PPlaylistStore(const PPlaylistStore&) = delete;
    PPlaylistStore& operator=(const PPlaylistStore&) = delete;

    // The collection's root; the playlists folder is "<root>Playlists/".
    void SetRoot(const char* root);
    const SString& GetRoot() const { return root; }
    const SString& GetFolder() const { return folder; }

    // The playlists.
    // Reads the folder again. With none there and firstRun on, makes a new
    // empty playlist (CreatePlaylist) and ends. Otherwise keeps the open
    // name selected when it is still there, else selects the first, and
    // loads it. False when the folder holds no playlist afterwards.
    bool RefreshPlaylists(bool firstRun = true);
    // Names without ".lst", sorted as the drop-down sorts them (letters
    // without regard to case, ties in byte order).
    const SStringArray& GetNames() const { return names; }
    // The selected playlist's name, or "" when none is selected.
    SString GetCurrentName() const;
    // Selects a name that exists exactly; false otherwise.
    bool SelectPlaylist(const char* name);

    // The open playlist.
    // An empty name means the selected one. False, with no entries, when
    // the name is not among the playlists or the file cannot be read.
    bool LoadPlaylist(const char* name = "");
    // Writes every entry to the file of that name (empty: the selected
    // one), under the folder's lock. False, with nothing written, when the
    // name is not among the playlists, the lock cannot be had within 10
    // seconds, or the file cannot be replaced.
    bool SavePlaylist(const char* name = "");
    const SStringArray& GetEntries() const { return entries; }
    int GetEntryCount() const { return entries.GetCount(); }
    // "0 file", "1 file", "2 files".
    SString GetCountText() const;
    // The absolute disk path of an entry: the root followed by the entry
    // with "\" turned into "/"; empty for a bad row.
    SString GetEntryPath(int row) const;
    // Every entry's absolute path in list order, shuffled with the array's
    // shuffle when shuffle is on: the queue for "play all".
    SStringArray GetPlayList(bool shuffle) const;

    // The selected row, -1 for none.
    int GetSelection() const { return selection; }
    bool SetSelection(int row);

    // Editing; each but AppendFiles saves at once.
    // The entry for an absolute path under the root: the path less the
    // root, with "/" turned into "\" and empty and "." components dropped.
    // A path under the root's real path (a root reached through a link)
    // counts as under the root. Empty for a path outside the root, a
    // relative path, or one with a ".." component.
    SString GetEntryFor(const char* path) const;
    // Appends the entry of each path; a path outside the root is left out.
    // False when one was. Does not save.
    bool AppendFiles(const SStringArray& paths);
    // Adds to the selected playlist as another process may be adding too:
    // under the folder's lock, reads the file again, appends the paths
    // (AppendFiles) and saves, so that no one's entries are lost. False,
    // with nothing written, when a path lies outside the root or the
    // playlist cannot be read or saved.
    bool AppendFilesAndSave(const SStringArray& paths);
    // Removes the selected row (never the file it names) and saves; the row
    // that followed becomes selected, or none after the last row.
    bool RemoveSelected();
    // Move the selected row by one place, keeping it selected, and save.
    // Nothing moves or is written for no selection or at the edge.
    bool MoveUp();
    bool MoveDown();

    // Playlists on disk.
    // Makes a new empty playlist, "Playlist.lst" or, when that exists, a
    // name with a random number, reads the folder again and opens it.
    // Returns the new name, empty on failure.
    SString CreatePlaylist();
    // Renames the selected playlist; an empty new name does nothing. The
    // renamed playlist is then selected and loaded.
    bool RenamePlaylist(const char* newName);
    // Moves the selected playlist's file to the desktop's trash (after the
    // user confirmed); the first remaining one is then opened, or a new one
    // made when none is left, so there is always at least one. False, with
    // nothing changed, when the trash cannot take it.
    bool DeletePlaylist();

private:
    SString PathOf(const char* name) const;
    // SavePlaylist with the lock already held.
    bool WriteEntries(const char* name);
    int FindName(const char* name) const;
    void ReadNames();

    SString root;   // ends in "/"
    SString folder; // root + "Playlists/"
    SStringArray names;
    SStringArray files; // each name's file name as it is on disk
    int current = -1;
    SStringArray entries;
    int selection = -1;
};

// Parses the bytes of a playlist file into entries (see the class comment).
void ParsePlaylist(const char* data, int size, SStringArray& entries);
// The bytes of a playlist file for the entries.
SString FormatPlaylist(const SStringArray& entries);
