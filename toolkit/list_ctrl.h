// SListCtrl: an owner-drawn list of text rows, each with an optional image,
// data word and check mark, over the selection rules of SListSelection.
// Rows have one fixed height and the list is virtual: only the rows inside
// the window are drawn, so a list of 100,000 rows paints as fast as one of
// twenty. The control draws its own vertical scroll bar.
//
// It tells its parent (wParam the control, read with SNotification):
// - SN_LIST_KEY: a key went down (the key code), before the list moves;
// - SN_LIST_MOUSE: a press, release, double click or click, with the code
//   of toolkit/mouse_event.h and the point in client and screen coordinates;
// - SN_LIST_SELECT: the set of selected rows changed.
// A left press takes the focus. Keys: Up, Down, Home, End, Page Up, Page
// Down move the current row and scroll it into view (Shift extends, Ctrl
// moves the current row alone), Space toggles, letters jump to the next
// row starting with what was typed lately.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "toolkit/list_draw.h"
#include "toolkit/list_selection.h"
#include "toolkit/wnd.h"

// The state bits an item-draw override is given.
constexpr unsigned LIST_ITEM_SELECTED = 1;
constexpr unsigned LIST_ITEM_CURRENT = 2; // the current row of a focused list
constexpr unsigned LIST_ITEM_CHECKED = 4;

class SListCtrl : public SWnd {
public:
    SListCtrl();
    ~SListCtrl() override;

    // A visible child of parent at rect (parent client coordinates).
    bool Create(SWnd* parent, const SRect& rect, uintptr_t id,
                LIST_SELECTION mode = LIST_SELECTION_SINGLE, unsigned style = WS_VISIBLE);

    // Rows. Each returns the row's index, or -1 (false) for a bad index.
    int AddRow(const char* text, int image = -1, uintptr_t data = 0);
    int InsertRow(int at, const char* text, int image = -1, uintptr_t data = 0);
    bool RemoveRow(int row);
    void Clear();
    int GetRowCount() const { return static_cast<int>(texts.size()); }
    // Many rows at once, without a repaint for each: the texts are copied,
    // or taken over from a vector the caller gives up.
    void AddRows(const std::vector<std::string>& texts);
    void AddRows(std::vector<std::string>&& texts);

    SString GetText(int row) const;
    bool SetText(int row, const char* text);
    uintptr_t GetData(int row) const;
    bool SetData(int row, uintptr_t data);
    bool GetCheck(int row) const;
    bool SetCheck(int row, bool checked);
    int GetImage(int row) const;
    bool SetImage(int row, int image);
    // The pictures rows show by index (copied); drawn centred in a square
    // of the row height at the row's left.
    void SetImages(const SImage* images, int count);
    // Shows a check box before each row's text; a press on it flips it.
    void SetCheckBoxes(bool show);

    // Selection.
    LIST_SELECTION GetSelectionMode() const { return selection.GetMode(); }
    void SetSelectionMode(LIST_SELECTION mode);
    int GetCurrentRow() const { return selection.GetCurrent(); }
    // Makes row current (-1 none) and scrolls it into view; in single mode
    // it is also the selection (SN_LIST_SELECT when that changed).
    void SetCurrentRow(int row);
    bool SelectRange(int from, int to, bool select = true);
    bool IsSelected(int row) const { return selection.IsSelected(row); }
    int GetSelectedCount() const { return selection.GetSelectedCount(); }
    std::vector<int> GetSelectedRows() const { return selection.GetSelectedRows(); }

    // Geometry. The row under a client point, -1 for none (the scroll bar
    // and the empty space below the last row are none).
    int RowAtPoint(SPoint point) const;
    SRect GetRowRect(int row) const; // client coordinates; may lie outside
    int GetRowHeight() const;
    void SetRowHeight(int height); // 0: from the font
    // The vertical scroll offset in pixels, and the first row it shows.
    int GetScrollOffset() const { return scrollOffset; }
    void ScrollTo(int offset);
    int GetTopRow() const;
    void EnsureVisible(int row);
    // The rows that fit in the window, whole.
    int GetPageRows() const;
    // The scroll bar's place (empty when every row fits).
    SRect GetScrollBarRect() const;

    // The item-draw override: paints one row into cr (client coordinates)
    // over rect with the LIST_ITEM_* state. The default draws the
    // selection band, the check box, the image and the text.
    virtual void DrawItem(cairo_t* cr, int row, const SRect& rect, unsigned state);

    // Ctrl+A: every row, in multiple and extended mode.
    void OnSelectAll() override;
    void SetBackColor(uint32_t color) override;
    uint32_t GetBackColor() const override;

protected:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;
    // Draws text in the control's font into rect, vertically centred,
    // ending in an ellipsis when too long.
    void DrawText(cairo_t* cr, const char* text, const SRect& rect, uint32_t color);
    void Paint(cairo_t* cr);
    void DrawScrollBar(cairo_t* cr);
    bool HandleKey(unsigned key);
    void HandleChar(unsigned character);
    void HandlePress(unsigned message, LPARAM lParam);
    void NotifyMouse(unsigned message, LPARAM lParam);
    void Notify(unsigned message, LPARAM lParam);
    void SelectionChanged();
    void InvalidateRow(int row);
    // Painted after the rows and the scroll bar (a header row).
    virtual void PaintOver(cairo_t* /*cr*/) {}
    int ContentHeight() const;
    int ItemHeight() const; // of a row, or of a cell of the grid
    int PerLine() const;    // items side by side: 1, or the cells of a grid
    int ViewHeight() const; // the client height below listTop
    int MaxScroll() const;
    int ListWidth() const; // the client width less the scroll bar

    // What a row holds beyond its text. The table of them stays empty
    // while every row has the defaults (a list of plain texts), so rows
    // handed over as a vector of texts are taken as they are.
    struct Extra {
        int image = -1;
        uintptr_t data = 0;
        bool checked = false;
        std::unique_ptr<std::vector<std::string>> cells; // the further columns of a list view
    };
    // The row's extra, made (with the whole table) when needed.
    Extra& ExtraOf(int row);
    // The row's extra, or null while the table is empty.
    const Extra* FindExtra(int row) const {
        return extras.empty() ? nullptr : &extras[static_cast<size_t>(row)];
    }
    std::vector<std::string> texts;
    std::vector<Extra> extras; // empty, or one per row
    SListSelection selection;
    std::vector<SImage> images;
    std::unique_ptr<SListFont> font;
    bool checkBoxes = false;
    int rowHeight = 0;
    int scrollOffset = 0;
    uint32_t backColor = 0xFF000000; // unset: the window colour
    bool focused = false;
    // Subclasses: the rows start listTop pixels down (below a header); a
    // cellWidth above 0 lays the items out as a grid of cellWidth by
    // cellHeight cells.
    int listTop = 0;
    int cellWidth = 0;
    int cellHeight = 0;
    // Dragging the scroll bar's thumb: the offset of the press in it.
    bool thumbDrag = false;
    int thumbGrab = 0;
    STypeAhead typeAhead;
};
