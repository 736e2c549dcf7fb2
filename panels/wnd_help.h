// PWndHelp: the top-level window that shows the user's guide (help.htm of
// the program's data folder) in a web view, its path in the status bar. A
// missing page leaves the web view's own error page.
#pragma once

#include "controls/browser_ctrl.h"
#include "panels/window_places.h"
#include "toolkit/bar_ctrls.h"
#include "toolkit/wnd.h"

class PWndHelp : public SWnd {
public:
    static constexpr int WIDTH = 900;
    static constexpr int HEIGHT = 800;
    static constexpr const char* TITLE = "Documentation - Melkora Browser";
    static constexpr const char* PLACEMENT = "WindowHelp";

    explicit PWndHelp(PWindowPlaces& places) : places(places) {}

    // Makes the window on page (or raises the one there).
    bool Open(const char* page);
    // Stores the placement and closes the window; nothing when closed.
    void CloseHelp();
    bool IsOpen() const { return GetHandle() != 0; }

    SBrowserCtrl& GetWeb() { return web; }
    SStatusBarCtrl& GetStatusBar() { return statusBar; }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    void Layout();

    PWindowPlaces& places;
    SStatusBarCtrl statusBar;
    SBrowserCtrl web;
};
