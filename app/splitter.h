// PSplitterCtrl: the main window's splitter. It hands the notifications
// that the main window handles (editor changes, page navigation, the
// lists, clickable media controls and links, the volume) on to its owner,
// so that a control in a cell talks to the main window as if it were its
// child; for a page's navigation and a link it returns the owner's answer.
#pragma once

#include <functional>
#include <vector>

#include "toolkit/pane_ctrls.h"

class PSplitterCtrl : public SSplitterCtrl {
public:
    // Where the relayed notifications go; the parent when not set.
    void SetOwner(SWnd* window) { owner = window; }
    // Called whenever a pane's size has changed (a resize, a divider
    // dragged), so that the owner places what it put in the panes.
    void SetPaneLayout(std::function<void()> layout) { paneLayout = std::move(layout); }
    // The first column's width in pixels, kept as the splitter is resized
    // (the other columns take the change) until the user drags it.
    void SetFirstColumn(int width);
    int GetFirstColumn() const { return firstColumn; }
    static bool IsRelayed(unsigned message);
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

private:
    SWnd* owner = nullptr;
    std::function<void()> paneLayout;
    std::vector<SSize> paneSizes;
    int firstColumn = -1;
};
