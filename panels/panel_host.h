// PPanelHost: what the panels round the main window ask of it. The main
// window (app/) implements it; the panels (thumbnails, now playing,
// playlist, strip) hold a pointer to it and never include the main
// window's header, so that each panel is tested with a recording host.
#pragma once

#include "foundation/array.h"
#include "foundation/image.h"
#include "foundation/string.h"

class PPanelHost {
public:
    virtual ~PPanelHost() = default;

    // The collection's root folder, ending in "/".
    virtual SString GetRootFolder() const = 0;
    // The main window's current folder, ending in "/".
    virtual SString GetCurrentFolder() const = 0;

    // Navigation of the main window, as its folder commands do: relative is
    // "..", "." or a name under the current folder; path is absolute.
    // selectName selects that row; focusThumbs gives the thumbnails the
    // focus. False when the folder could not be opened.
    virtual bool NavigateFolder(const char* relative, const char* selectName, bool focusThumbs) = 0;
    virtual bool OpenFolder(const char* path, const char* selectName, bool focusThumbs) = 0;
    // Shows the main window (and raises it), or hides it to the tray.
    virtual void ShowMainWindow() = 0;
    virtual void HideMainWindow() = 0;

    // Playing. PlayFileInFolder plays the item of that name in the current
    // folder (a card of the thumbnails); false when nothing played.
    virtual bool PlayFileInFolder(const char* name) = 0;
    // Replaces the play queue with absolute paths and plays from index 0.
    virtual bool SetPlayQueue(const SStringArray& paths) = 0;
    // The queue, its current index (-1 for none) and a jump to one entry.
    virtual const SStringArray& GetPlayQueue() const = 0;
    virtual int GetPlayIndex() const = 0;
    virtual bool PlayQueueIndex(int index) = 0;
    // The player: position and length in milliseconds (0 when unknown),
    // whether a medium is loaded, and a seek in seconds followed by a
    // refresh of the playing panels.
    virtual int GetPlayPosition() const = 0;
    virtual int GetPlayLength() const = 0;
    virtual bool IsMediaLoaded() const = 0;
    virtual void SeekSeconds(int seconds) = 0;

    // The 150 by 150 cover of a folder (its own or the default one).
    virtual void LoadFolderCover(SImage* image, const char* folder) = 0;
    // The "AutoHideAfterPlay" preference, as read at the last reload.
    virtual bool GetAutoHideAfterPlay() const = 0;

    // Questions the panels put to the user, answered by the main window's
    // dialogs: the playlist name dialog (true with a name on OK) and a
    // Yes/No/Cancel question (true on Yes).
    virtual bool AskPlaylistName(SString* name) = 0;
    virtual bool AskYesNo(const char* text, const char* caption) = 0;
};
