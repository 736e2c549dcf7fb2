// SExListCtrl: the list view. Items are rows of the list control, shown
// either as a report (a header row of columns over rows of cells) or as
// icons (a grid of pictures with their text below). A click on a column's
// header tells the parent SN_EXLIST_COLUMN_CLICK with the column's index;
// dragging the divider at a column's right edge resizes it. Left and right
// presses also reach the parent as WM_LBUTTONDOWN and WM_RBUTTONDOWN, with
// the point in screen coordinates, before the list handles them.
#pragma once

#include <string>
#include <vector>

#include "toolkit/list_ctrl.h"

enum EXLIST_VIEW { EXLIST_REPORT, EXLIST_ICON };

class SExListCtrl : public SListCtrl {
public:
    SExListCtrl();
    ~SExListCtrl() override;

    EXLIST_VIEW GetView() const { return view; }
    void SetView(EXLIST_VIEW newView);

    // Columns: align 0 left, 1 centre, 2 right. Returns the index, -1.
    int InsertColumn(int at, const char* title, int width, int align = 0);
    int GetColumnCount() const { return static_cast<int>(columns.size()); }
    int GetColumnWidth(int column) const;
    bool SetColumnWidth(int column, int width);
    SString GetColumnTitle(int column) const;
    // Cells: column 0 is the row's own text.
    bool SetItemText(int row, int column, const char* text);
    SString GetItemText(int row, int column) const;
    // The header row (empty in the icon view), and the column whose
    // header or divider is at a client point (-1 none).
    SRect GetHeaderRect() const;
    int ColumnAtPoint(SPoint point) const;
    int DividerAtPoint(SPoint point) const;

    void DrawItem(cairo_t* cr, int row, const SRect& rect, unsigned state) override;

    static constexpr int MINIMUM_COLUMN_WIDTH = 8;
    static constexpr int DIVIDER_GRIP = 4; // pixels either side of a divider

protected:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;
    void PaintOver(cairo_t* cr) override;
    void UpdateLayout();

    struct Column {
        std::string title;
        int width = 100;
        int align = 0;
    };
    std::vector<Column> columns;
    EXLIST_VIEW view = EXLIST_REPORT;
    int pressedColumn = -1;
    int dragColumn = -1;
    int dragStartX = 0;
    int dragStartWidth = 0;
};
