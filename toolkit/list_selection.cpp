#include "toolkit/list_selection.h"

#include <algorithm>

void SListSelection::SetMode(LIST_SELECTION newMode) {
    mode = newMode;
    ClearSelection();
    anchor = -1;
}

void SListSelection::SetRowCount(int count) {
    selected.assign(static_cast<size_t>(std::max(count, 0)), 0);
    selectedCount = 0;
    current = -1;
    anchor = -1;
}

void SListSelection::InsertRows(int at, int count) {
    if (count < 1) {
        return;
    }
    at = std::clamp(at, 0, GetRowCount());
    selected.insert(selected.begin() + at, static_cast<size_t>(count), 0);
    for (int* row : {&current, &anchor}) {
        if (*row >= at) {
            *row += count;
        }
    }
}

void SListSelection::RemoveRow(int row) {
    if (!IsRow(row)) {
        return;
    }
    selectedCount -= selected[row];
    selected.erase(selected.begin() + row);
    for (int* place : {&current, &anchor}) {
        if (*place == row) {
            *place = -1;
        } else if (*place > row) {
            --*place;
        }
    }
}

int SListSelection::GetSelectedCount() const {
    // One list of one selected row keeps only its current row.
    if (mode == LIST_SELECTION_SINGLE) {
        return current >= 0 ? 1 : 0;
    }
    return selectedCount;
}

bool SListSelection::IsSelected(int row) const {
    if (mode == LIST_SELECTION_SINGLE) {
        return row >= 0 && row == current;
    }
    return IsRow(row) && selected[row] != 0;
}

std::vector<int> SListSelection::GetSelectedRows() const {
    std::vector<int> rows;
    if (mode == LIST_SELECTION_SINGLE) {
        if (current >= 0) {
            rows.push_back(current);
        }
        return rows;
    }
    for (int row = 0; row < GetRowCount() && static_cast<int>(rows.size()) < selectedCount; ++row) {
        if (selected[row] != 0) {
            rows.push_back(row);
        }
    }
    return rows;
}

bool SListSelection::Set(int row, bool on) {
    if (!IsRow(row) || (selected[row] != 0) == on) {
        return false;
    }
    selected[row] = on ? 1 : 0;
    selectedCount += on ? 1 : -1;
    return true;
}

bool SListSelection::ClearSelection() {
    if (selectedCount == 0) {
        return false;
    }
    std::fill(selected.begin(), selected.end(), 0);
    selectedCount = 0;
    return true;
}

bool SListSelection::SelectRange(int from, int to, bool select) {
    if (!IsMulti()) {
        return false;
    }
    int first = std::max(std::min(from, to), 0);
    int last = std::min(std::max(from, to), GetRowCount() - 1);
    bool changed = false;
    for (int row = first; row <= last; ++row) {
        changed = Set(row, select) || changed;
    }
    return changed;
}

bool SListSelection::SelectOnly(int row) {
    if (mode == LIST_SELECTION_SINGLE) {
        int before = current;
        SetCurrent(row);
        return current != before;
    }
    if (!IsMulti()) {
        return false;
    }
    bool wasOnly = selectedCount == 1 && IsSelected(row);
    if (wasOnly) {
        return false;
    }
    ClearSelection();
    Set(row, true);
    return true;
}

void SListSelection::SetCurrent(int row) {
    current = IsRow(row) ? row : -1;
}

bool SListSelection::Press(int row, unsigned modifiers, bool rightButton) {
    if (!IsRow(row)) {
        bool hadCurrent = current != -1;
        current = -1;
        return mode == LIST_SELECTION_SINGLE && hadCurrent;
    }
    if (mode == LIST_SELECTION_NONE) {
        current = row;
        return false;
    }
    if (mode == LIST_SELECTION_SINGLE) {
        return SelectOnly(row);
    }
    bool changed = false;
    switch (modifiers & (SHIFT | CTRL)) {
    case SHIFT:
        if (current == -1 || anchor == -1) {
            changed = SelectOnly(row);
            anchor = row;
        } else {
            // Clearing and selecting again may leave the same rows.
            std::vector<int> before = GetSelectedRows();
            ClearSelection();
            SelectRange(anchor, row, true);
            changed = GetSelectedRows() != before;
        }
        break;
    case CTRL:
        changed = Set(row, !IsSelected(row));
        anchor = row;
        break;
    case SHIFT | CTRL:
        if (anchor == -1) {
            changed = Set(row, true);
            anchor = row;
        } else {
            changed = SelectRange(anchor, row, true);
        }
        break;
    default:
        if (!(rightButton && IsSelected(row))) {
            changed = SelectOnly(row);
            anchor = row;
        }
        break;
    }
    current = row;
    return changed;
}

bool SListSelection::MoveTo(int row, unsigned modifiers) {
    if (!IsRow(row)) {
        return false;
    }
    if (mode != LIST_SELECTION_SINGLE && !IsMulti()) {
        current = row;
        return false;
    }
    if (mode == LIST_SELECTION_SINGLE || (modifiers & (SHIFT | CTRL)) == 0) {
        return Press(row, 0, false);
    }
    if ((modifiers & CTRL) != 0) {
        current = row;
        return false;
    }
    return Press(row, SHIFT, false);
}

bool SListSelection::ToggleCurrent() {
    if (!IsRow(current)) {
        return false;
    }
    if (mode == LIST_SELECTION_SINGLE) {
        return false; // the current row is the selection already
    }
    if (!IsMulti()) {
        return false;
    }
    anchor = current;
    return Set(current, !IsSelected(current));
}
