// PWndBook: the top-level window that shows the Book (the collection's
// catalogue page) in a web view, with its links wired to the player: a
// folder link opens the folder in the main window, a song link plays the
// song (with Ctrl held it joins the queue), an album link plays the
// album's whole tree. What each link does is decided by DecideBookLink
// (pages/book_links.h); the window carries it out through PBookHost.
#pragma once

#include "foundation/string.h"
#include "panels/window_places.h"
#include "panels/wnd_page.h"

// What the Book window asks of the main window.
class PBookHost : public PWindowPlaces {
public:
    // The collection's root folder, ending in "/".
    virtual SString GetBookRoot() const = 0;
    // Opens folder (ending in "/") in the main window and selects the row
    // named select there.
    virtual bool OpenBookFolder(const char* folder, const char* select) = 0;
    // Empties the queue and plays file alone.
    virtual bool PlayBookSong(const char* file) = 0;
    // Adds file to the queue; a queue that was empty starts playing it.
    virtual bool QueueBookSong(const char* file) = 0;
    // Empties the queue, fills it with the folder's media of the whole
    // tree and plays from the first; an album without media stops.
    virtual bool PlayBookAlbum(const char* folder) = 0;
};

class PWndBook : public PWndPage {
public:
    static constexpr int WIDTH = 640;
    static constexpr int HEIGHT = 600;
    static constexpr int MIN_HEIGHT = 480;
    static constexpr const char* TITLE = "Book - Melkora Browser";
    static constexpr const char* PLACEMENT = "WindowBook";

    explicit PWndBook(PBookHost& host) : PWndPage(host, PLACEMENT), host(host) {}

    // Makes the window (or raises the one there) and loads bookPath.
    bool Open(const char* bookPath);

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    LRESULT OnBeforeNavigate(const char* url);

    PBookHost& host;
};
