// SListSelection: the selection of a list control's rows (which rows are
// selected, the current row, the anchor of a range) and the rules by which
// presses and keys change it. The list control draws and forwards; the
// rules live here so that they are tested without a window.
//
// A press on row r by modifier state (Shift, Ctrl, both) in multiple or
// extended mode:
// - Shift: with no current row or no anchor, select only r; otherwise clear
//   all and select the range from the anchor to r, whichever comes first.
// - Ctrl: toggle r and move the anchor to r.
// - both: select the range from the anchor to r without clearing.
// - none: a right press on a selected row keeps the selection; any other
//   press selects only r and moves the anchor there.
// In single mode only the current row changes, and it is the selection; in
// mode none nothing is ever selected. A press on no row (-1) clears the
// current row. Every press on a row makes it the current row.
#pragma once

#include <cstdint>
#include <vector>

enum LIST_SELECTION { LIST_SELECTION_NONE, LIST_SELECTION_SINGLE, LIST_SELECTION_MULTIPLE,
                      LIST_SELECTION_EXTENDED };

class SListSelection {
public:
    // Modifier bits of Press and MoveTo.
    static constexpr unsigned SHIFT = 1;
    static constexpr unsigned CTRL = 2;

    explicit SListSelection(LIST_SELECTION mode = LIST_SELECTION_SINGLE) : mode(mode) {}

    LIST_SELECTION GetMode() const { return mode; }
    // Changing the mode clears the selection.
    void SetMode(LIST_SELECTION newMode);

    // Rows. Inserting and removing keep the selection, current row and
    // anchor on the same rows.
    int GetRowCount() const { return static_cast<int>(selected.size()); }
    void SetRowCount(int count); // clears the selection
    void InsertRows(int at, int count);
    void RemoveRow(int row);

    // State.
    int GetCurrent() const { return current; }
    int GetAnchor() const { return anchor; }
    int GetSelectedCount() const;
    bool IsSelected(int row) const;
    // The selected rows in order.
    std::vector<int> GetSelectedRows() const;

    // Changes; each returns true when the set of selected rows changed.
    // A mouse press on row (-1 for none) with the modifier bits.
    bool Press(int row, unsigned modifiers, bool rightButton);
    // A key moved the current row to row (arrows, Home, End, pages): with
    // no modifier it selects only row and anchors there, with Shift the
    // range from the anchor, with Ctrl only the current row moves.
    bool MoveTo(int row, unsigned modifiers);
    // Space on the current row: toggles it in multiple and extended mode,
    // selects it in single mode.
    bool ToggleCurrent();
    bool SelectRange(int from, int to, bool select);
    bool SelectOnly(int row);
    bool ClearSelection();
    void SetCurrent(int row);

private:
    bool IsRow(int row) const { return row >= 0 && row < GetRowCount(); }
    bool IsMulti() const {
        return mode == LIST_SELECTION_MULTIPLE || mode == LIST_SELECTION_EXTENDED;
    }
    bool Set(int row, bool on);

    LIST_SELECTION mode;
    std::vector<uint8_t> selected;
    int selectedCount = 0;
    int current = -1;
    int anchor = -1;
};
