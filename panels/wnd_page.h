// PWndPage: a top-level window holding a web view above a status bar of
// one part, which keeps its placement under a name through PWindowPlaces:
// restored when the window is made, stored when it closes. The Book
// (PWndBook) and the user's guide (PWndHelp) are such windows; each makes
// itself with CreatePage and says what it shows.
#pragma once

#include "controls/browser_ctrl.h"
#include "panels/window_places.h"
#include "toolkit/bar_ctrls.h"
#include "toolkit/wnd.h"

class PWndPage : public SWnd {
public:
    // placement: the name the placement is kept under (a string that lives
    // as long as the window).
    PWndPage(PWindowPlaces& places, const char* placement) : places(places), placement(placement) {}

    // Stores the placement and closes the window; nothing when closed.
    void ClosePage();
    bool IsOpen() const { return GetHandle() != 0; }

    SBrowserCtrl& GetWeb() { return web; }
    SStatusBarCtrl& GetStatusBar() { return statusBar; }

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    // Makes the window, width by height, with its status bar and a silent
    // web view laid out in it; false when the window cannot be made.
    bool CreatePage(const char* title, int width, int height);
    // Puts the window where its stored placement says, when there is one.
    void RestorePlace();
    // Shows the window, restored first when it is minimised.
    void ShowPage();

    SStatusBarCtrl statusBar;
    SBrowserCtrl web;

private:
    void Layout();

    PWindowPlaces& places;
    const char* placement;
};
