// SExListCtrl: the report and icon views over the list control's rows.
#include "toolkit/ex_list_ctrl.h"

#include <cairo.h>

#include <algorithm>

#include "toolkit/list_draw.h"
#include "toolkit/sys_colors.h"

namespace {

constexpr int ICON_SIZE = 32;
constexpr int ICON_CELL_WIDTH = 96;
constexpr int CELL_MARGIN = 4;

} // namespace

SExListCtrl::SExListCtrl() = default;
SExListCtrl::~SExListCtrl() = default;

void SExListCtrl::UpdateLayout() {
    if (view == EXLIST_REPORT) {
        listTop = GetRowHeight() + 4;
        cellWidth = 0;
        cellHeight = 0;
    } else {
        listTop = 0;
        cellWidth = ICON_CELL_WIDTH;
        cellHeight = ICON_SIZE + GetRowHeight() + 2 * CELL_MARGIN;
    }
    ScrollTo(scrollOffset);
    Invalidate();
}

void SExListCtrl::SetView(EXLIST_VIEW newView) {
    view = newView;
    UpdateLayout();
}

int SExListCtrl::InsertColumn(int at, const char* title, int width, int align) {
    if (at < 0 || at > GetColumnCount()) {
        at = GetColumnCount();
    }
    Column column;
    column.title = title != nullptr ? title : "";
    column.width = std::max(width, MINIMUM_COLUMN_WIDTH);
    column.align = std::clamp(align, 0, 2);
    columns.insert(columns.begin() + at, std::move(column));
    // The cells of later columns move one to the right.
    if (at > 0) {
        for (Extra& extra : extras) {
            if (extra.cells && static_cast<int>(extra.cells->size()) >= at) {
                extra.cells->insert(extra.cells->begin() + (at - 1), std::string());
            }
        }
    }
    UpdateLayout();
    return at;
}

int SExListCtrl::GetColumnWidth(int column) const {
    return column >= 0 && column < GetColumnCount() ? columns[column].width : 0;
}

bool SExListCtrl::SetColumnWidth(int column, int width) {
    if (column < 0 || column >= GetColumnCount()) {
        return false;
    }
    columns[column].width = std::max(width, MINIMUM_COLUMN_WIDTH);
    Invalidate();
    return true;
}

SString SExListCtrl::GetColumnTitle(int column) const {
    return column >= 0 && column < GetColumnCount() ? SString(columns[column].title.c_str())
                                                    : SString();
}

bool SExListCtrl::SetItemText(int row, int column, const char* text) {
    if (row < 0 || row >= GetRowCount() || column < 0 || column >= std::max(1, GetColumnCount())) {
        return false;
    }
    if (column == 0) {
        return SetText(row, text);
    }
    Extra& extra = ExtraOf(row);
    if (!extra.cells) {
        extra.cells = std::make_unique<std::vector<std::string>>();
    }
    std::vector<std::string>& rowCells = *extra.cells;
    if (static_cast<int>(rowCells.size()) < column) {
        rowCells.resize(column);
    }
    rowCells[column - 1] = text != nullptr ? text : "";
    InvalidateRow(row);
    return true;
}

SString SExListCtrl::GetItemText(int row, int column) const {
    if (row < 0 || row >= GetRowCount() || column < 0) {
        return SString();
    }
    if (column == 0) {
        return GetText(row);
    }
    const Extra* extra = FindExtra(row);
    if (extra == nullptr || !extra->cells) {
        return SString();
    }
    const std::vector<std::string>& rowCells = *extra->cells;
    return column - 1 < static_cast<int>(rowCells.size()) ? SString(rowCells[column - 1].c_str())
                                                          : SString();
}

SRect SExListCtrl::GetHeaderRect() const {
    return view == EXLIST_REPORT ? SRect{0, 0, GetClientWidth(), listTop} : SRect();
}

int SExListCtrl::ColumnAtPoint(SPoint point) const {
    if (!GetHeaderRect().Contains(point)) {
        return -1;
    }
    int x = 0;
    for (int i = 0; i < GetColumnCount(); ++i) {
        x += columns[i].width;
        if (point.x < x) {
            return i;
        }
    }
    return -1;
}

int SExListCtrl::DividerAtPoint(SPoint point) const {
    if (!GetHeaderRect().Contains(point)) {
        return -1;
    }
    int x = 0;
    for (int i = 0; i < GetColumnCount(); ++i) {
        x += columns[i].width;
        if (point.x >= x - DIVIDER_GRIP && point.x <= x + DIVIDER_GRIP) {
            return i;
        }
    }
    return -1;
}

void SExListCtrl::DrawItem(cairo_t* cr, int row, const SRect& rect, unsigned state) {
    if (!font) {
        font.reset(MakeListFont(this));
    }
    bool selected = (state & LIST_ITEM_SELECTED) != 0;
    uint32_t textColor = GetSysColor(selected ? SYS_COLOR_HIGHLIGHTTEXT : SYS_COLOR_WINDOWTEXT);
    int image = GetImage(row);
    const SImage* picture =
        image >= 0 && image < static_cast<int>(images.size()) && images[image].IsValid()
            ? &images[image]
            : nullptr;
    if (view == EXLIST_ICON) {
        SRect text{rect.left + 2, rect.bottom - CELL_MARGIN - GetRowHeight(), rect.right - 2,
                   rect.bottom - CELL_MARGIN};
        if (selected) {
            ListFill(cr, text, GetSysColor(SYS_COLOR_HIGHLIGHT));
        }
        if (picture != nullptr) {
            int width = std::min(picture->GetWidth(), ICON_SIZE);
            int height = std::min(picture->GetHeight(), ICON_SIZE);
            picture->DrawAt(cr, rect.left + (rect.Width() - width) / 2,
                            rect.top + CELL_MARGIN + (ICON_SIZE - height) / 2, width, height);
        }
        ListText(cr, *font, texts[row].c_str(), text, textColor, 1);
        if ((state & LIST_ITEM_CURRENT) != 0) {
            ListFrame(cr, text, GetSysColor(SYS_COLOR_WINDOWTEXT));
        }
        return;
    }
    if (selected) {
        ListFill(cr, rect, GetSysColor(SYS_COLOR_HIGHLIGHT));
    }
    int x = rect.left;
    int count = std::max(1, GetColumnCount());
    for (int column = 0; column < count && x < rect.right; ++column) {
        int width = GetColumnCount() > 0 ? columns[column].width : rect.Width();
        int align = GetColumnCount() > 0 ? columns[column].align : 0;
        SRect cell{x + CELL_MARGIN, rect.top, x + width - CELL_MARGIN, rect.bottom};
        if (column == 0 && picture != nullptr) {
            int size = std::min({picture->GetWidth(), picture->GetHeight(), rect.Height()});
            picture->DrawAt(cr, cell.left, rect.top + (rect.Height() - size) / 2, size, size);
            cell.left += rect.Height();
        }
        SString text = GetItemText(row, column);
        ListText(cr, *font, text.c_str(), cell, textColor, align);
        x += width;
    }
    if ((state & LIST_ITEM_CURRENT) != 0) {
        ListFrame(cr, rect, GetSysColor(selected ? SYS_COLOR_HIGHLIGHTTEXT : SYS_COLOR_WINDOWTEXT));
    }
}

void SExListCtrl::PaintOver(cairo_t* cr) {
    SRect header = GetHeaderRect();
    if (header.IsEmpty()) {
        return;
    }
    if (!font) {
        font.reset(MakeListFont(this));
    }
    ListFill(cr, header, GetSysColor(SYS_COLOR_BTNFACE));
    ListSetColor(cr, GetSysColor(SYS_COLOR_BTNSHADOW));
    cairo_set_line_width(cr, 1.0);
    cairo_move_to(cr, header.left, header.bottom - 0.5);
    cairo_line_to(cr, header.right, header.bottom - 0.5);
    cairo_stroke(cr);
    int x = 0;
    for (int i = 0; i < GetColumnCount() && x < header.right; ++i) {
        const Column& column = columns[i];
        SRect cell{x, header.top, x + column.width, header.bottom};
        if (i == pressedColumn) {
            ListFill(cr, SRect{cell.left, cell.top, cell.right, cell.bottom - 1},
                     GetSysColor(SYS_COLOR_BTNSHADOW));
        }
        ListText(cr, *font, column.title.c_str(),
                 SRect{cell.left + CELL_MARGIN, cell.top, cell.right - CELL_MARGIN, cell.bottom},
                 GetSysColor(SYS_COLOR_BTNTEXT), column.align);
        ListSetColor(cr, GetSysColor(SYS_COLOR_BTNSHADOW));
        cairo_move_to(cr, cell.right - 0.5, cell.top + 3);
        cairo_line_to(cr, cell.right - 0.5, cell.bottom - 3);
        cairo_stroke(cr);
        x = cell.right;
    }
}

LRESULT SExListCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SPoint point{PointParamX(lParam), PointParamY(lParam)};
    switch (message) {
    case SM_CREATE:
        UpdateLayout();
        break;
    case WM_SETFONT:
        SListCtrl::OnMessage(message, wParam, lParam);
        UpdateLayout();
        return 0;
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN: {
        HWND own = GetHandle();
        HWND parent = GetParent();
        if (parent != 0) {
            SPoint screen = point;
            ClientToScreen(&screen);
            SendMessage(parent, message, wParam, MakePointParam(screen.x, screen.y));
            if (GetHandle() != own) {
                return 0;
            }
        }
        if (message == WM_LBUTTONDOWN && GetHeaderRect().Contains(point)) {
            SetFocus(own);
            int divider = DividerAtPoint(point);
            if (divider >= 0) {
                dragColumn = divider;
                dragStartX = point.x;
                dragStartWidth = columns[divider].width;
            } else {
                pressedColumn = ColumnAtPoint(point);
            }
            SetCapture(own);
            SRect header = GetHeaderRect();
            Invalidate(&header);
            return 0;
        }
        if (GetHeaderRect().Contains(point)) {
            return 0;
        }
        break;
    }
    case WM_MOUSEMOVE:
        if (dragColumn >= 0) {
            SetColumnWidth(dragColumn, dragStartWidth + point.x - dragStartX);
            return 0;
        }
        break;
    case WM_LBUTTONUP:
        if (dragColumn >= 0 || pressedColumn >= 0) {
            int clicked =
                pressedColumn >= 0 && ColumnAtPoint(point) == pressedColumn ? pressedColumn : -1;
            dragColumn = -1;
            pressedColumn = -1;
            ReleaseCapture();
            SRect header = GetHeaderRect();
            Invalidate(&header);
            if (clicked >= 0) {
                Notify(SN_EXLIST_COLUMN_CLICK, clicked);
            }
            return 0;
        }
        break;
    case WM_CAPTURECHANGED:
        if (dragColumn >= 0 || pressedColumn >= 0) {
            dragColumn = -1;
            pressedColumn = -1;
            Invalidate();
        }
        break;
    case SM_LEFT_CLICK:
    case SM_RIGHT_CLICK:
        if (GetHeaderRect().Contains(point)) {
            return 0;
        }
        break;
    default:
        break;
    }
    return SListCtrl::OnMessage(message, wParam, lParam);
}
