// PWndHelp: the top-level window that shows the user's guide (help.htm of
// the program's data folder) in a web view, its path in the status bar. A
// missing page leaves the web view's own error page.
#pragma once

#include "panels/window_places.h"
#include "panels/wnd_page.h"

class PWndHelp : public PWndPage {
public:
    static constexpr int WIDTH = 900;
    static constexpr int HEIGHT = 800;
    static constexpr const char* TITLE = "Documentation - Melkora Browser";
    static constexpr const char* PLACEMENT = "WindowHelp";

    explicit PWndHelp(PWindowPlaces& places) : PWndPage(places, PLACEMENT) {}

    // Makes the window on page (or raises the one there).
    bool Open(const char* page);
};
