// SListCtrl: rows, selection, keys, mouse, scrolling and painting.
#include "toolkit/list_ctrl.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>

#include "foundation/keyboard.h"
#include "toolkit/ctrl_common.h"
#include "toolkit/list_draw.h"
#include "toolkit/mouse_event.h"
#include "toolkit/sys_colors.h"

namespace {

constexpr int WHEEL_ROWS = 3; // rows a notch of the wheel scrolls
constexpr int TEXT_MARGIN = 4;

} // namespace

SListCtrl::SListCtrl() = default;
SListCtrl::~SListCtrl() = default;

bool SListCtrl::Create(SWnd* parent, const SRect& rect, uintptr_t id, LIST_SELECTION mode,
                       unsigned style) {
    selection.SetMode(mode);
    return SWnd::Create("", style, 0, &rect, parent != nullptr ? parent->GetHandle() : 0, id);
}

int SListCtrl::AddRow(const char* text, int image, uintptr_t data) {
    return InsertRow(GetRowCount(), text, image, data);
}

int SListCtrl::InsertRow(int at, const char* text, int image, uintptr_t data) {
    if (at < 0 || at > GetRowCount()) {
        at = GetRowCount();
    }
    texts.insert(texts.begin() + at, text != nullptr ? text : "");
    if (!extras.empty()) {
        extras.insert(extras.begin() + at, Extra());
    }
    if (image != -1 || data != 0) {
        Extra& extra = ExtraOf(at);
        extra.image = image;
        extra.data = data;
    }
    selection.InsertRows(at, 1);
    Invalidate();
    return at;
}

void SListCtrl::AddRows(const std::vector<std::string>& texts) {
    AddRows(std::vector<std::string>(texts));
}

void SListCtrl::AddRows(std::vector<std::string>&& added) {
    int at = GetRowCount();
    int count = static_cast<int>(added.size());
    if (texts.empty()) {
        texts.swap(added);
    } else {
        texts.insert(texts.end(), std::make_move_iterator(added.begin()),
                     std::make_move_iterator(added.end()));
    }
    added.clear();
    if (!extras.empty()) {
        extras.resize(texts.size());
    }
    selection.InsertRows(at, count);
    Invalidate();
}

SListCtrl::Extra& SListCtrl::ExtraOf(int row) {
    if (extras.size() != texts.size()) {
        extras.resize(texts.size());
    }
    return extras[static_cast<size_t>(row)];
}

bool SListCtrl::RemoveRow(int row) {
    if (row < 0 || row >= GetRowCount()) {
        return false;
    }
    bool wasSelected = selection.IsSelected(row);
    texts.erase(texts.begin() + row);
    if (!extras.empty()) {
        extras.erase(extras.begin() + row);
    }
    selection.RemoveRow(row);
    ScrollTo(scrollOffset);
    Invalidate();
    if (wasSelected) {
        SelectionChanged();
    }
    return true;
}

void SListCtrl::Clear() {
    bool hadSelection = selection.GetSelectedCount() > 0;
    texts.clear();
    extras.clear();
    selection.SetRowCount(0);
    scrollOffset = 0;
    Invalidate();
    if (hadSelection) {
        SelectionChanged();
    }
}

SString SListCtrl::GetText(int row) const {
    return row >= 0 && row < GetRowCount() ? SString(texts[row].c_str()) : SString();
}

bool SListCtrl::SetText(int row, const char* text) {
    if (row < 0 || row >= GetRowCount()) {
        return false;
    }
    texts[row] = text != nullptr ? text : "";
    InvalidateRow(row);
    return true;
}

uintptr_t SListCtrl::GetData(int row) const {
    const Extra* extra = row >= 0 && row < GetRowCount() ? FindExtra(row) : nullptr;
    return extra != nullptr ? extra->data : 0;
}

bool SListCtrl::SetData(int row, uintptr_t data) {
    if (row < 0 || row >= GetRowCount()) {
        return false;
    }
    ExtraOf(row).data = data;
    return true;
}

bool SListCtrl::GetCheck(int row) const {
    const Extra* extra = row >= 0 && row < GetRowCount() ? FindExtra(row) : nullptr;
    return extra != nullptr && extra->checked;
}

bool SListCtrl::SetCheck(int row, bool checked) {
    if (row < 0 || row >= GetRowCount()) {
        return false;
    }
    ExtraOf(row).checked = checked;
    InvalidateRow(row);
    return true;
}

int SListCtrl::GetImage(int row) const {
    const Extra* extra = row >= 0 && row < GetRowCount() ? FindExtra(row) : nullptr;
    return extra != nullptr ? extra->image : -1;
}

bool SListCtrl::SetImage(int row, int image) {
    if (row < 0 || row >= GetRowCount()) {
        return false;
    }
    ExtraOf(row).image = image;
    InvalidateRow(row);
    return true;
}

void SListCtrl::SetImages(const SImage* source, int count) {
    images.clear();
    images.resize(std::max(count, 0));
    for (int i = 0; i < count && source != nullptr; ++i) {
        images[i].CopyFrom(&source[i]);
    }
    Invalidate();
}

void SListCtrl::SetCheckBoxes(bool show) {
    checkBoxes = show;
    Invalidate();
}

void SListCtrl::SetSelectionMode(LIST_SELECTION mode) {
    bool hadSelection = selection.GetSelectedCount() > 0;
    selection.SetMode(mode);
    Invalidate();
    if (hadSelection) {
        SelectionChanged();
    }
}

void SListCtrl::SetCurrentRow(int row) {
    if (row < -1 || row >= GetRowCount()) {
        return;
    }
    int old = selection.GetCurrent();
    bool changed = false;
    if (row >= 0 && selection.GetMode() == LIST_SELECTION_SINGLE) {
        changed = selection.MoveTo(row, 0);
    } else {
        selection.SetCurrent(row);
    }
    InvalidateRow(old);
    InvalidateRow(row);
    EnsureVisible(row);
    if (changed) {
        SelectionChanged();
    }
}

bool SListCtrl::SelectRange(int from, int to, bool select) {
    if (!selection.SelectRange(from, to, select)) {
        return false;
    }
    Invalidate();
    SelectionChanged();
    return true;
}

int SListCtrl::GetRowHeight() const {
    if (rowHeight > 0) {
        return rowHeight;
    }
    if (!font) {
        const_cast<SListCtrl*>(this)->font.reset(MakeListFont(const_cast<SListCtrl*>(this)));
    }
    return font->lineHeight + 4;
}

void SListCtrl::SetRowHeight(int height) {
    rowHeight = std::max(height, 0);
    ScrollTo(scrollOffset);
    Invalidate();
}

int SListCtrl::ItemHeight() const {
    return cellHeight > 0 ? cellHeight : GetRowHeight();
}

int SListCtrl::PerLine() const {
    return cellWidth > 0 ? std::max(1, ListWidth() / cellWidth) : 1;
}

int SListCtrl::ViewHeight() const {
    return std::max(0, GetClientHeight() - listTop);
}

int SListCtrl::ContentHeight() const {
    // The lines of a grid, counted at the width without a scroll bar first.
    int perLine = cellWidth > 0 ? std::max(1, GetClientWidth() / cellWidth) : 1;
    int lines = (GetRowCount() + perLine - 1) / perLine;
    if (cellWidth > 0 && lines * ItemHeight() > ViewHeight()) {
        perLine = std::max(1, (GetClientWidth() - LIST_SCROLL_BAR_WIDTH) / cellWidth);
        lines = (GetRowCount() + perLine - 1) / perLine;
    }
    return lines * ItemHeight();
}

int SListCtrl::MaxScroll() const {
    return std::max(0, ContentHeight() - ViewHeight());
}

int SListCtrl::ListWidth() const {
    return GetClientWidth() - (ContentHeight() > ViewHeight() ? LIST_SCROLL_BAR_WIDTH : 0);
}

SRect SListCtrl::GetScrollBarRect() const {
    if (ContentHeight() <= ViewHeight()) {
        return SRect();
    }
    int width = GetClientWidth();
    return SRect{width - LIST_SCROLL_BAR_WIDTH, listTop, width, GetClientHeight()};
}

void SListCtrl::ScrollTo(int offset) {
    offset = std::clamp(offset, 0, MaxScroll());
    if (offset == scrollOffset) {
        return;
    }
    scrollOffset = offset;
    Invalidate();
}

int SListCtrl::GetTopRow() const {
    return GetRowCount() > 0 ? scrollOffset / ItemHeight() * PerLine() : -1;
}

int SListCtrl::GetPageRows() const {
    return std::max(1, ViewHeight() / ItemHeight());
}

void SListCtrl::EnsureVisible(int row) {
    if (row < 0 || row >= GetRowCount()) {
        return;
    }
    int height = ItemHeight();
    int top = row / PerLine() * height;
    if (top < scrollOffset) {
        ScrollTo(top);
    } else if (top + height > scrollOffset + ViewHeight()) {
        ScrollTo(top + height - ViewHeight());
    }
}

SRect SListCtrl::GetRowRect(int row) const {
    int height = ItemHeight();
    int perLine = PerLine();
    int top = listTop + row / perLine * height - scrollOffset;
    if (cellWidth <= 0) {
        return SRect{0, top, ListWidth(), top + height};
    }
    int left = row % perLine * cellWidth;
    return SRect{left, top, left + cellWidth, top + height};
}

int SListCtrl::RowAtPoint(SPoint point) const {
    if (point.x < 0 || point.x >= ListWidth() || point.y < listTop ||
        point.y >= GetClientHeight()) {
        return -1;
    }
    int line = (point.y - listTop + scrollOffset) / ItemHeight();
    int column = cellWidth > 0 ? point.x / cellWidth : 0;
    if (column >= PerLine()) {
        return -1;
    }
    int row = line * PerLine() + column;
    return row < GetRowCount() ? row : -1;
}

void SListCtrl::InvalidateRow(int row) {
    if (row < 0 || row >= GetRowCount() || GetHandle() == 0) {
        return;
    }
    SRect rect = GetRowRect(row);
    if (rect.bottom <= listTop || rect.top >= GetClientHeight()) {
        return;
    }
    Invalidate(&rect);
}

void SListCtrl::SetBackColor(uint32_t color) {
    backColor = color & 0x00FFFFFF;
    Invalidate();
}

uint32_t SListCtrl::GetBackColor() const {
    return backColor == 0xFF000000 ? GetSysColor(SYS_COLOR_WINDOW) : backColor;
}

void SListCtrl::Notify(unsigned message, LPARAM lParam) {
    HWND parent = GetParent();
    if (parent != 0) {
        SendMessage(parent, message, reinterpret_cast<WPARAM>(this), lParam);
    }
}

void SListCtrl::SelectionChanged() {
    Notify(SN_LIST_SELECT, 0);
}

void SListCtrl::NotifyMouse(unsigned message, LPARAM lParam) {
    SMouseEvent event;
    event.code = MouseEventCode(message);
    event.client = SPoint{PointParamX(lParam), PointParamY(lParam)};
    event.screen = event.client;
    ClientToScreen(&event.screen);
    Notify(SN_LIST_MOUSE, reinterpret_cast<LPARAM>(&event));
}

void SListCtrl::HandlePress(unsigned message, LPARAM lParam) {
    HWND own = GetHandle();
    SPoint point{PointParamX(lParam), PointParamY(lParam)};
    bool left = message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK;
    if (left) {
        SetFocus(own);
    }
    SRect bar = GetScrollBarRect();
    if (left && bar.Contains(point)) {
        SRect thumb = ListThumbRect(bar, ContentHeight(), ViewHeight(), scrollOffset);
        if (thumb.Contains(point)) {
            thumbDrag = true;
            thumbGrab = point.y - thumb.top;
            SetCapture(own);
            Invalidate(&bar);
        } else {
            int page = GetPageRows() * ItemHeight();
            ScrollTo(scrollOffset + (point.y < thumb.top ? -page : page));
        }
        return;
    }
    if (message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN) {
        int row = RowAtPoint(point);
        if (left && checkBoxes && row >= 0 && point.x < GetRowHeight()) {
            SetCheck(row, !GetCheck(row));
        }
        int old = selection.GetCurrent();
        unsigned modifiers =
            SKeyboard::GetModifiers() & (SListSelection::SHIFT | SListSelection::CTRL);
        bool changed = selection.Press(row, modifiers, message == WM_RBUTTONDOWN);
        if (changed) {
            Invalidate();
        } else {
            InvalidateRow(old);
            InvalidateRow(row);
        }
        EnsureVisible(row);
        if (changed) {
            SelectionChanged();
            if (GetHandle() != own) {
                return;
            }
        }
    }
    NotifyMouse(message, lParam);
    if (message == WM_LBUTTONDBLCLK && GetHandle() == own) {
        Notify(SN_LIST_DOUBLE_CLICK, 0);
    }
}

bool SListCtrl::HandleKey(unsigned key) {
    int count = GetRowCount();
    int current = selection.GetCurrent();
    int perLine = PerLine();
    int page = std::max(1, GetPageRows() - 1) * perLine;
    int target = -1;
    switch (key) {
    case ctrlkey::UP:
        target = current < 0 ? 0 : current - perLine;
        break;
    case ctrlkey::DOWN:
        target = current < 0 ? 0 : current + perLine;
        break;
    case ctrlkey::LEFT:
    case ctrlkey::RIGHT:
        if (cellWidth <= 0) {
            return false;
        }
        target = current < 0 ? 0 : current + (key == ctrlkey::LEFT ? -1 : 1);
        break;
    case ctrlkey::HOME:
        target = 0;
        break;
    case ctrlkey::END:
        target = count - 1;
        break;
    case ctrlkey::PRIOR:
        target = current < 0 ? 0 : current - page;
        break;
    case ctrlkey::NEXT:
        target = current < 0 ? 0 : current + page;
        break;
    case ctrlkey::SPACE:
        if (current >= 0 && selection.ToggleCurrent()) {
            InvalidateRow(current);
            SelectionChanged();
        }
        return true;
    default:
        return false;
    }
    if (count == 0) {
        return true;
    }
    target = std::clamp(target, 0, count - 1);
    unsigned modifiers = SKeyboard::GetModifiers() & (SListSelection::SHIFT | SListSelection::CTRL);
    bool changed = selection.MoveTo(target, modifiers);
    if (changed) {
        Invalidate();
    } else {
        InvalidateRow(current);
        InvalidateRow(target);
    }
    EnsureVisible(target);
    if (changed) {
        SelectionChanged();
    }
    return true;
}

void SListCtrl::HandleChar(unsigned character) {
    int found = typeAhead.Find(character, GetMessageClock(), selection.GetCurrent(), GetRowCount(),
                               [this](int row) -> const std::string& { return texts[row]; });
    if (found < 0) {
        return;
    }
    bool changed = selection.MoveTo(found, 0);
    Invalidate();
    EnsureVisible(found);
    if (changed) {
        SelectionChanged();
    }
}

void SListCtrl::OnSelectAll() {
    if (GetRowCount() > 0 && selection.SelectRange(0, GetRowCount() - 1, true)) {
        Invalidate();
        SelectionChanged();
    }
}

void SListCtrl::DrawText(cairo_t* cr, const char* text, const SRect& rect, uint32_t color) {
    if (!font) {
        font.reset(MakeListFont(this));
    }
    ListText(cr, *font, text, rect, color);
}

void SListCtrl::DrawItem(cairo_t* cr, int row, const SRect& rect, unsigned state) {
    uint32_t textColor = GetSysColor(SYS_COLOR_WINDOWTEXT);
    if ((state & LIST_ITEM_SELECTED) != 0) {
        ListFill(cr, rect, GetSysColor(SYS_COLOR_HIGHLIGHT));
        textColor = GetSysColor(SYS_COLOR_HIGHLIGHTTEXT);
    }
    int height = rect.Height();
    int x = rect.left + 2;
    if (checkBoxes) {
        ListCheckBox(cr, SRect{x, rect.top, x + height, rect.bottom},
                     (state & LIST_ITEM_CHECKED) != 0);
        x += height;
    }
    int image = GetImage(row);
    if (image >= 0 && image < static_cast<int>(images.size()) && images[image].IsValid()) {
        const SImage& picture = images[image];
        int width = std::min(picture.GetWidth(), height);
        int pictureHeight = std::min(picture.GetHeight(), height);
        picture.DrawAt(cr, x + (height - width) / 2, rect.top + (height - pictureHeight) / 2, width,
                       pictureHeight);
        x += height;
    }
    DrawText(cr, texts[row].c_str(),
             SRect{x + TEXT_MARGIN, rect.top, rect.right - TEXT_MARGIN, rect.bottom}, textColor);
    if ((state & LIST_ITEM_CURRENT) != 0) {
        ListSetColor(cr, (state & LIST_ITEM_SELECTED) != 0 ? GetSysColor(SYS_COLOR_HIGHLIGHTTEXT)
                                                           : GetSysColor(SYS_COLOR_WINDOWTEXT));
        static const double dash[] = {1.0, 1.0};
        cairo_save(cr);
        cairo_set_dash(cr, dash, 2, 0);
        cairo_set_line_width(cr, 1.0);
        cairo_rectangle(cr, rect.left + 0.5, rect.top + 0.5, rect.Width() - 1, rect.Height() - 1);
        cairo_stroke(cr);
        cairo_restore(cr);
    }
}

void SListCtrl::DrawScrollBar(cairo_t* cr) {
    SRect bar = GetScrollBarRect();
    if (!bar.IsEmpty()) {
        ListScrollBar(cr, bar, ContentHeight(), ViewHeight(), scrollOffset, thumbDrag);
    }
}

void SListCtrl::Paint(cairo_t* cr) {
    int width = ListWidth();
    int height = GetClientHeight();
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    cairo_clip_extents(cr, &x1, &y1, &x2, &y2);
    int clipTop = std::max(listTop, static_cast<int>(y1));
    int clipBottom = std::min(height, static_cast<int>(std::ceil(y2)));
    ListFill(cr, SRect{0, clipTop, width, clipBottom}, GetBackColor());
    int itemHeight = ItemHeight();
    int perLine = PerLine();
    if (!texts.empty() && clipBottom > clipTop) {
        int first = (scrollOffset + clipTop - listTop) / itemHeight * perLine;
        int last =
            std::min(GetRowCount() - 1,
                     ((scrollOffset + clipBottom - listTop - 1) / itemHeight + 1) * perLine - 1);
        int current = selection.GetCurrent();
        cairo_save(cr);
        cairo_rectangle(cr, 0, listTop, width, height - listTop);
        cairo_clip(cr);
        for (int row = first; row <= last; ++row) {
            unsigned state = 0;
            if (selection.IsSelected(row)) {
                state |= LIST_ITEM_SELECTED;
            }
            if (row == current && focused) {
                state |= LIST_ITEM_CURRENT;
            }
            if (GetCheck(row)) {
                state |= LIST_ITEM_CHECKED;
            }
            SRect rect = GetRowRect(row);
            cairo_save(cr);
            cairo_rectangle(cr, rect.left, rect.top, rect.Width(), rect.Height());
            cairo_clip(cr);
            DrawItem(cr, row, rect, state);
            cairo_restore(cr);
        }
        cairo_restore(cr);
    }
    DrawScrollBar(cr);
    PaintOver(cr);
}

LRESULT SListCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_PAINT:
        Paint(reinterpret_cast<cairo_t*>(wParam));
        return 0;
    case WM_SETFONT:
        font.reset();
        Invalidate();
        break;
    case WM_SIZE:
        ScrollTo(scrollOffset);
        Invalidate();
        break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
        focused = message == WM_SETFOCUS;
        InvalidateRow(selection.GetCurrent());
        break;
    case WM_KEYDOWN: {
        HWND own = GetHandle();
        Notify(SN_LIST_KEY, static_cast<LPARAM>(wParam));
        if (GetHandle() == own && HandleKey(static_cast<unsigned>(wParam))) {
            return 0;
        }
        break;
    }
    case WM_CHAR:
        HandleChar(static_cast<unsigned>(wParam));
        return 0;
    case WM_MOUSEWHEEL: {
        if (MaxScroll() == 0) {
            break;
        }
        int delta = WheelParamDelta(wParam);
        ScrollTo(scrollOffset - delta * WHEEL_ROWS * ItemHeight() / WHEEL_DELTA);
        return 0;
    }
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        HandlePress(message, lParam);
        return 0;
    case WM_MOUSEMOVE:
        if (thumbDrag) {
            SRect bar = GetScrollBarRect();
            ScrollTo(ListOffsetForThumb(bar, ContentHeight(), ViewHeight(),
                                        PointParamY(lParam) - thumbGrab - bar.top));
            return 0;
        }
        break;
    case WM_LBUTTONUP:
        if (thumbDrag) {
            thumbDrag = false;
            ReleaseCapture();
            SRect bar = GetScrollBarRect();
            Invalidate(&bar);
            return 0;
        }
        NotifyMouse(message, lParam);
        return 0;
    case WM_CAPTURECHANGED:
        if (thumbDrag) {
            thumbDrag = false;
            SRect bar = GetScrollBarRect();
            Invalidate(&bar);
        }
        break;
    case WM_RBUTTONUP:
    case WM_RBUTTONDBLCLK:
    case WM_MBUTTONDOWN:
    case WM_MBUTTONUP:
    case WM_MBUTTONDBLCLK:
    case SM_LEFT_CLICK:
    case SM_MIDDLE_CLICK:
    case SM_RIGHT_CLICK:
        NotifyMouse(message, lParam);
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
