// Controls that hold other windows: STabCtrl (pages of child windows
// under a row of tabs), SSplitterCtrl (a grid of panes with draggable
// dividers), SPanelCtrl (a side panel of titled groups of toggling items)
// and SGuiCtrl (a view with bars on its sides).
#pragma once

#include <memory>
#include <vector>

#include "toolkit/ctrl_common.h"

class STabCtrl : public SCtrlBase {
public:
    STabCtrl() : SCtrlBase(SN_TAB_MOUSE) {}
    // Adds a page; returns its index.
    int AddPage(const char* title);
    int GetPageCount() const { return static_cast<int>(pages.size()); }
    SString GetPageTitle(int page) const;
    // Puts window on page (it is shown only while that page is).
    bool AddToPage(int page, SWnd* window);
    const std::vector<SWnd*>& GetPageWindows(int page) const;
    // Hides the windows of every page and shows those of page; the parent
    // hears SN_TAB_SELECT when the page changed.
    bool SelectPage(int page);
    int GetSelectedPage() const { return selected; }
    int GetTabHeight() const;
    // The page of the tab at a point, -1 off the tabs.
    int TabAt(SPoint point) const;
    SRect GetTabRect(int page) const;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;

private:
    struct Page {
        SString title;
        std::vector<SWnd*> windows;
    };
    void ApplyPage();
    std::vector<Page> pages;
    std::vector<SWnd*> allWindows; // of every page, each once
    int selected = -1;
    int hotTab = -1;
};

// A pane of the splitter: a plain child window the caller fills. The
// notifications of the controls in it go on to the splitter, whose owner
// may relay them (the default drops them).
class _SWnd : public SWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;
};

class SSplitterCtrl : public SCtrlBase {
public:
    SSplitterCtrl() : SCtrlBase(SN_SPLITTER_MOUSE) {}
    ~SSplitterCtrl() override;
    // The grid, columns by rows (1 to 16 each); panes are made when the
    // control exists, and again when the grid changes.
    void SetGrid(int columns, int rows);
    int GetColumnCount() const { return columns; }
    int GetRowCount() const { return rowCount; }
    _SWnd* GetPane(int column, int row) const;
    // Divider positions in pixels from the left (top) edge; a divider keeps
    // at least MIN_PANE pixels for the panes on both of its sides.
    int GetDivider(bool vertical, int index) const;
    bool SetDivider(bool vertical, int index, int position);
    static constexpr int BAR = 5;
    static constexpr int MIN_PANE = 16;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    void MakePanes();
    void Layout();
    // The divider under a point: index, and which way (vertical: a
    // divider between columns); -1 for none.
    int DividerAt(SPoint point, bool* vertical) const;
    int columns = 1;
    int rowCount = 1;
    std::vector<double> columnShares; // the dividers as fractions of the width
    std::vector<double> rowShares;
    std::vector<std::unique_ptr<_SWnd>> panes;
    int dragIndex = -1;
    bool dragVertical = false;
};

class SPanelCtrl : public SCtrlBase {
public:
    SPanelCtrl() : SCtrlBase(SN_PANEL_MOUSE) {}
    int AddGroup(const char* title);
    int AddItem(int group, const char* text, bool on = false);
    int GetGroupCount() const { return static_cast<int>(groups.size()); }
    int GetItemCount(int group) const;
    bool GetItemState(int group, int item) const;
    bool SetItemState(int group, int item, bool on);
    // A group's title folds and unfolds it.
    bool IsGroupOpen(int group) const;
    void SetGroupOpen(int group, bool open);
    // Which group and item lie at a point; item -1 for a title, false for
    // nothing.
    bool HitTest(SPoint point, int* group, int* item) const;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;

private:
    struct Item {
        SString text;
        bool on = false;
    };
    struct Group {
        SString title;
        bool open = true;
        std::vector<Item> items;
    };
    int LineHeight() const;
    void Toggle(int group, int item);
    std::vector<Group> groups;
    int focusGroup = 0;
    int focusItem = -1;
    int hotGroup = -1;
    int hotItem = -2;
};

// The view of a GUI control and its bars.
class _SWndView : public SWnd {};
class _SWndBar : public SWnd {};

class SGuiCtrl : public SCtrlBase {
public:
    SGuiCtrl();
    ~SGuiCtrl() override;
    // Sides of a bar.
    enum Side { LEFT, TOP, RIGHT, BOTTOM };
    // Adds a bar of size pixels across on a side (at least 16); returns it,
    // null before the control exists.
    _SWndBar* AddBar(Side side, int size);
    int GetBarCount() const { return static_cast<int>(bars.size()); }
    _SWndBar* GetBar(int index) const;
    _SWndView* GetView() const { return view.get(); }
    static constexpr int MIN_BAR = 16;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;
    bool TakesFocus() const override { return false; }

private:
    void Layout();
    struct Bar {
        Side side;
        int size;
        std::unique_ptr<_SWndBar> window;
    };
    std::unique_ptr<_SWndView> view;
    std::vector<Bar> bars;
};
