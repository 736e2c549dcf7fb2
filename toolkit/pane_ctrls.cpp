#include "toolkit/pane_ctrls.h"

#include "toolkit/notification.h"

#include <algorithm>
#include <cairo.h>

#include "foundation/keyboard.h"
#include "toolkit/draw.h"
#include "toolkit/notification.h"
#include "toolkit/sys_colors.h"

using namespace ctrldraw;

namespace {

uint32_t Face(const SWnd* window) {
    SWnd* parent = window->GetParentWnd();
    uint32_t back = parent != nullptr ? parent->GetBackColor() : 0xFF000000u;
    return (back & 0xFF000000u) != 0 ? GetSysColor(SYS_COLOR_BTNFACE) : back;
}

uint32_t Ink(const SWnd* window) {
    return window->IsEnabled() ? GetSysColor(SYS_COLOR_BTNTEXT) : GetSysColor(SYS_COLOR_GRAYTEXT);
}

} // namespace

// STabCtrl

int STabCtrl::AddPage(const char* title) {
    pages.push_back(Page{SString(title != nullptr ? title : ""), {}});
    if (selected < 0) {
        selected = 0;
    }
    Invalidate(nullptr);
    return GetPageCount() - 1;
}

SString STabCtrl::GetPageTitle(int page) const {
    return page >= 0 && page < GetPageCount() ? pages[page].title : SString();
}

bool STabCtrl::AddToPage(int page, SWnd* window) {
    if (page < 0 || page >= GetPageCount() || window == nullptr) {
        return false;
    }
    pages[page].windows.push_back(window);
    if (std::find(allWindows.begin(), allWindows.end(), window) == allWindows.end()) {
        allWindows.push_back(window);
    }
    if (window->GetHandle() != 0) {
        bool onShown = false;
        for (SWnd* shown : pages[selected].windows) {
            onShown = onShown || shown == window;
        }
        window->Show(onShown ? SW_SHOW : SW_HIDE);
    }
    return true;
}

const std::vector<SWnd*>& STabCtrl::GetPageWindows(int page) const {
    static const std::vector<SWnd*> none;
    return page >= 0 && page < GetPageCount() ? pages[page].windows : none;
}

void STabCtrl::ApplyPage() {
    for (SWnd* window : allWindows) {
        if (window->GetHandle() != 0) {
            window->Show(SW_HIDE);
        }
    }
    if (selected < 0 || selected >= GetPageCount()) {
        return;
    }
    for (SWnd* window : pages[selected].windows) {
        if (window->GetHandle() != 0) {
            window->Show(SW_SHOW);
        }
    }
}

bool STabCtrl::SelectPage(int page) {
    if (page < 0 || page >= GetPageCount()) {
        return false;
    }
    bool changed = page != selected;
    selected = page;
    ApplyPage();
    Invalidate(nullptr);
    if (changed) {
        Notify(SN_TAB_SELECT, page);
    }
    return true;
}

int STabCtrl::GetTabHeight() const {
    return TextMetrics(WindowFont(this)).height + 12;
}

SRect STabCtrl::GetTabRect(int page) const {
    const SFont* font = WindowFont(this);
    int left = 2;
    for (int i = 0; i < GetPageCount(); ++i) {
        int width = TextWidth(font, pages[i].title.c_str()) + 24;
        if (i == page) {
            return SRect{left, 0, left + width, GetTabHeight()};
        }
        left += width;
    }
    return SRect{};
}

int STabCtrl::TabAt(SPoint point) const {
    for (int i = 0; i < GetPageCount(); ++i) {
        if (GetTabRect(i).Contains(point)) {
            return i;
        }
    }
    return -1;
}

LRESULT STabCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SPoint point{PointParamX(lParam), PointParamY(lParam)};
    switch (message) {
    case SM_CREATE:
        // Windows added before the control was made: set them up now.
        if (selected >= 0) {
            ApplyPage();
        }
        break;
    case WM_LBUTTONDOWN: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        int tab = IsEnabled() ? TabAt(point) : -1;
        if (tab >= 0) {
            SelectPage(tab);
        }
        return result;
    }
    case WM_MOUSEMOVE: {
        int tab = IsEnabled() ? TabAt(point) : -1;
        if (tab != hotTab) {
            hotTab = tab;
            SRect strip{0, 0, GetClientWidth(), GetTabHeight()};
            Invalidate(&strip);
        }
        break;
    }
    case SM_MOUSE_LEAVE:
        hotTab = -1;
        break;
    case WM_KEYDOWN: {
        if (!IsEnabled() || GetPageCount() == 0) {
            return 0;
        }
        bool ctrl = (SKeyboard::GetModifiers() & SKeyboard::MODIFIER_CTRL) != 0;
        bool shift = (SKeyboard::GetModifiers() & SKeyboard::MODIFIER_SHIFT) != 0;
        int count = GetPageCount();
        int step = 0;
        if ((ctrl && wParam == ctrlkey::NEXT) || (ctrl && !shift && wParam == VK_TAB) ||
            (!ctrl && wParam == ctrlkey::RIGHT)) {
            step = 1;
        } else if ((ctrl && wParam == ctrlkey::PRIOR) || (ctrl && shift && wParam == VK_TAB) ||
                   (!ctrl && wParam == ctrlkey::LEFT)) {
            step = -1;
        }
        if (step != 0) {
            SelectPage(((selected + step) % count + count) % count);
            return 0;
        }
        break;
    }
    default:
        break;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void STabCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    uint32_t face = Face(this);
    Fill(cr, client, face);
    int tabHeight = GetTabHeight();
    uint32_t line = GetSysColor(SYS_COLOR_BTNSHADOW);
    // The page in the face colour, so that the controls on it, which are
    // the parent's children, blend with it.
    uint32_t pageFace = face;
    SRect body{0, tabHeight - 1, client.right, client.bottom};
    RoundBox(cr, body, 3, pageFace, line);
    const SFont* font = WindowFont(this);
    for (int i = 0; i < GetPageCount(); ++i) {
        SRect tab = GetTabRect(i);
        bool isSelected = i == selected;
        if (isSelected) {
            Fill(cr, SRect{tab.left, tab.top + 2, tab.right, tab.bottom + 1}, pageFace);
            SetSource(cr, line);
            cairo_set_line_width(cr, 1);
            cairo_move_to(cr, tab.left + 0.5, tab.bottom);
            cairo_line_to(cr, tab.left + 0.5, tab.top + 2.5);
            cairo_line_to(cr, tab.right - 0.5, tab.top + 2.5);
            cairo_line_to(cr, tab.right - 0.5, tab.bottom);
            cairo_stroke(cr);
            // The chosen tab's mark in the accent colour.
            Fill(cr, SRect{tab.left + 1, tab.top + 2, tab.right - 1, tab.top + 5},
                 IsEnabled() ? GetSysColor(SYS_COLOR_HIGHLIGHT) : line);
        } else if (i == hotTab) {
            Fill(cr, SRect{tab.left + 1, tab.top + 4, tab.right - 1, tab.bottom - 1},
                 Mix(face, GetSysColor(SYS_COLOR_BTNHIGHLIGHT), 140));
        }
        SRect textRect{tab.left + 4, tab.top + 4, tab.right - 4, tab.bottom};
        Text(cr, font, pages[i].title.c_str(), textRect, Ink(this), SAlign::CENTER);
        if (isSelected && HasFocus()) {
            FocusFrame(cr, Inset(textRect, -2, 1));
        }
    }
}

// SSplitterCtrl

SSplitterCtrl::~SSplitterCtrl() {
    for (auto& pane : panes) {
        pane->Destroy();
    }
}

void SSplitterCtrl::SetGrid(int newColumns, int newRows) {
    columns = std::clamp(newColumns, 1, 16);
    rowCount = std::clamp(newRows, 1, 16);
    columnShares.clear();
    rowShares.clear();
    for (int i = 1; i < columns; ++i) {
        columnShares.push_back(static_cast<double>(i) / columns);
    }
    for (int i = 1; i < rowCount; ++i) {
        rowShares.push_back(static_cast<double>(i) / rowCount);
    }
    if (GetHandle() != 0) {
        MakePanes();
    }
}

void SSplitterCtrl::MakePanes() {
    for (auto& pane : panes) {
        pane->Destroy();
    }
    panes.clear();
    if (columnShares.size() + 1 != static_cast<size_t>(columns) ||
        rowShares.size() + 1 != static_cast<size_t>(rowCount)) {
        SetGrid(columns, rowCount);
        return;
    }
    for (int i = 0; i < columns * rowCount; ++i) {
        auto pane = std::make_unique<_SWnd>();
        SRect rect{0, 0, 1, 1};
        pane->Create("", WS_VISIBLE, 0, &rect, GetHandle());
        pane->SetBackColor(GetSysColor(SYS_COLOR_WINDOW));
        panes.push_back(std::move(pane));
    }
    Layout();
}

LRESULT _SWnd::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    if (NotificationKind(message) != SNotifyKind::NONE && GetParent() != 0) {
        return SendMessage(GetParent(), message, wParam, lParam);
    }
    return SWnd::OnMessage(message, wParam, lParam);
}

_SWnd* SSplitterCtrl::GetPane(int column, int row) const {
    if (column < 0 || column >= columns || row < 0 || row >= rowCount ||
        panes.size() != static_cast<size_t>(columns * rowCount)) {
        return nullptr;
    }
    return panes[row * columns + column].get();
}

int SSplitterCtrl::GetDivider(bool vertical, int index) const {
    const std::vector<double>& shares = vertical ? columnShares : rowShares;
    if (index < 0 || index >= static_cast<int>(shares.size())) {
        return -1;
    }
    int length = vertical ? GetClientWidth() : GetClientHeight();
    return static_cast<int>(shares[index] * length + 0.5);
}

bool SSplitterCtrl::SetDivider(bool vertical, int index, int position) {
    std::vector<double>& shares = vertical ? columnShares : rowShares;
    int length = vertical ? GetClientWidth() : GetClientHeight();
    if (index < 0 || index >= static_cast<int>(shares.size()) || length <= 0) {
        return false;
    }
    int low = index > 0 ? GetDivider(vertical, index - 1) + BAR + MIN_PANE : MIN_PANE;
    int high = index + 1 < static_cast<int>(shares.size())
                   ? GetDivider(vertical, index + 1) - BAR - MIN_PANE
                   : length - BAR - MIN_PANE;
    if (high < low) {
        return false;
    }
    shares[index] = static_cast<double>(std::clamp(position, low, high)) / length;
    Layout();
    Invalidate(nullptr);
    return true;
}

void SSplitterCtrl::Layout() {
    if (panes.size() != static_cast<size_t>(columns * rowCount)) {
        return;
    }
    auto edges = [&](bool vertical, int count, std::vector<int>* starts, std::vector<int>* ends) {
        int length = vertical ? GetClientWidth() : GetClientHeight();
        int start = 0;
        for (int i = 0; i < count; ++i) {
            int end = i + 1 < count ? GetDivider(vertical, i) : length;
            starts->push_back(start);
            ends->push_back(std::max(start, end));
            start = end + BAR;
        }
    };
    std::vector<int> left, right, top, bottom;
    edges(true, columns, &left, &right);
    edges(false, rowCount, &top, &bottom);
    for (int row = 0; row < rowCount; ++row) {
        for (int column = 0; column < columns; ++column) {
            panes[row * columns + column]->MoveWindow(
                SRect{left[column], top[row], right[column], bottom[row]});
        }
    }
}

int SSplitterCtrl::DividerAt(SPoint point, bool* vertical) const {
    for (int i = 0; i + 1 < columns; ++i) {
        int at = GetDivider(true, i);
        if (point.x >= at && point.x < at + BAR) {
            *vertical = true;
            return i;
        }
    }
    for (int i = 0; i + 1 < rowCount; ++i) {
        int at = GetDivider(false, i);
        if (point.y >= at && point.y < at + BAR) {
            *vertical = false;
            return i;
        }
    }
    return -1;
}

LRESULT SSplitterCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SPoint point{PointParamX(lParam), PointParamY(lParam)};
    switch (message) {
    case SM_CREATE:
        MakePanes();
        break;
    case WM_SIZE: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        Layout();
        return result;
    }
    case WM_LBUTTONDOWN: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        if (IsEnabled()) {
            dragIndex = DividerAt(point, &dragVertical);
            if (dragIndex >= 0) {
                SetCapture(GetHandle());
            }
        }
        return result;
    }
    case WM_MOUSEMOVE: {
        bool vertical = false;
        if (dragIndex >= 0 && GetCapture() == GetHandle()) {
            SetDivider(dragVertical, dragIndex, (dragVertical ? point.x : point.y) - BAR / 2);
        } else if (DividerAt(point, &vertical) >= 0) {
            SetCursor(vertical ? 14 : 15); // col-resize, row-resize (index plus 1)
        } else {
            SetCursor(0);
        }
        break;
    }
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        if (dragIndex >= 0) {
            dragIndex = -1;
            if (GetCapture() == GetHandle()) {
                ReleaseCapture();
            }
        }
        break;
    default:
        break;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void SSplitterCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    uint32_t face = Face(this);
    Fill(cr, client, face);
    uint32_t grip = IsEnabled() ? Mix(face, GetSysColor(SYS_COLOR_BTNSHADOW), 160)
                                : Mix(face, GetSysColor(SYS_COLOR_BTNSHADOW), 60);
    for (int i = 0; i + 1 < columns; ++i) {
        int at = GetDivider(true, i);
        uint32_t color = dragIndex == i && dragVertical ? GetSysColor(SYS_COLOR_HIGHLIGHT) : grip;
        for (int dot = -1; dot <= 1; ++dot) {
            Fill(cr,
                 SRect{at + 2, client.bottom / 2 + dot * 5 - 1, at + 3,
                       client.bottom / 2 + dot * 5 + 1},
                 color);
        }
    }
    for (int i = 0; i + 1 < rowCount; ++i) {
        int at = GetDivider(false, i);
        uint32_t color = dragIndex == i && !dragVertical ? GetSysColor(SYS_COLOR_HIGHLIGHT) : grip;
        for (int dot = -1; dot <= 1; ++dot) {
            Fill(cr,
                 SRect{client.right / 2 + dot * 5 - 1, at + 2, client.right / 2 + dot * 5 + 1,
                       at + 3},
                 color);
        }
    }
}

// SPanelCtrl

int SPanelCtrl::AddGroup(const char* title) {
    groups.push_back(Group{SString(title != nullptr ? title : ""), true, {}});
    Invalidate(nullptr);
    return GetGroupCount() - 1;
}

int SPanelCtrl::AddItem(int group, const char* text, bool on) {
    if (group < 0 || group >= GetGroupCount()) {
        return -1;
    }
    groups[group].items.push_back(Item{SString(text != nullptr ? text : ""), on});
    Invalidate(nullptr);
    return static_cast<int>(groups[group].items.size()) - 1;
}

int SPanelCtrl::GetItemCount(int group) const {
    return group >= 0 && group < GetGroupCount() ? static_cast<int>(groups[group].items.size()) : 0;
}

bool SPanelCtrl::GetItemState(int group, int item) const {
    return item >= 0 && item < GetItemCount(group) && groups[group].items[item].on;
}

bool SPanelCtrl::SetItemState(int group, int item, bool on) {
    if (item < 0 || item >= GetItemCount(group)) {
        return false;
    }
    groups[group].items[item].on = on;
    Invalidate(nullptr);
    return true;
}

bool SPanelCtrl::IsGroupOpen(int group) const {
    return group >= 0 && group < GetGroupCount() && groups[group].open;
}

void SPanelCtrl::SetGroupOpen(int group, bool open) {
    if (group >= 0 && group < GetGroupCount()) {
        groups[group].open = open;
        Invalidate(nullptr);
    }
}

int SPanelCtrl::LineHeight() const {
    return TextMetrics(WindowFont(this)).height + 8;
}

bool SPanelCtrl::HitTest(SPoint point, int* group, int* item) const {
    if (!GetClientRect().Contains(point)) {
        return false;
    }
    int line = LineHeight();
    int top = 0;
    for (int g = 0; g < GetGroupCount(); ++g) {
        if (point.y < top + line) {
            *group = g;
            *item = -1;
            return true;
        }
        top += line;
        if (!groups[g].open) {
            continue;
        }
        int count = static_cast<int>(groups[g].items.size());
        if (point.y < top + count * line) {
            *group = g;
            *item = (point.y - top) / line;
            return true;
        }
        top += count * line;
    }
    return false;
}

void SPanelCtrl::Toggle(int group, int item) {
    if (item < 0) {
        SetGroupOpen(group, !IsGroupOpen(group));
        return;
    }
    SetItemState(group, item, !GetItemState(group, item));
    Notify(SN_PANEL_ITEM, group * 65536 + item);
}

LRESULT SPanelCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SPoint point{PointParamX(lParam), PointParamY(lParam)};
    switch (message) {
    case WM_LBUTTONDOWN: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        int group = 0, item = 0;
        if (IsEnabled() && HitTest(point, &group, &item)) {
            focusGroup = group;
            focusItem = item;
            Toggle(group, item);
        }
        return result;
    }
    case WM_MOUSEMOVE: {
        int group = -1, item = -2;
        if (!IsEnabled() || !HitTest(point, &group, &item)) {
            group = -1;
            item = -2;
        }
        if (group != hotGroup || item != hotItem) {
            hotGroup = group;
            hotItem = item;
            Invalidate(nullptr);
        }
        break;
    }
    case SM_MOUSE_LEAVE:
        hotGroup = -1;
        hotItem = -2;
        break;
    case WM_KEYDOWN: {
        if (!IsEnabled() || groups.empty()) {
            return 0;
        }
        // The lines a person sees, in order.
        std::vector<std::pair<int, int>> lines;
        for (int g = 0; g < GetGroupCount(); ++g) {
            lines.emplace_back(g, -1);
            for (int i = 0; groups[g].open && i < GetItemCount(g); ++i) {
                lines.emplace_back(g, i);
            }
        }
        int at = 0;
        for (size_t i = 0; i < lines.size(); ++i) {
            if (lines[i].first == focusGroup && lines[i].second == focusItem) {
                at = static_cast<int>(i);
            }
        }
        int count = static_cast<int>(lines.size());
        if (wParam == ctrlkey::UP || wParam == ctrlkey::DOWN || wParam == ctrlkey::HOME ||
            wParam == ctrlkey::END) {
            at = wParam == ctrlkey::UP     ? at - 1
                 : wParam == ctrlkey::DOWN ? at + 1
                 : wParam == ctrlkey::HOME ? 0
                                           : count - 1;
            at = std::clamp(at, 0, count - 1);
            focusGroup = lines[at].first;
            focusItem = lines[at].second;
            Invalidate(nullptr);
            return 0;
        }
        if (wParam == ctrlkey::SPACE || wParam == VK_RETURN) {
            Toggle(focusGroup, focusItem);
            return 0;
        }
        break;
    }
    default:
        break;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void SPanelCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    uint32_t face = Face(this);
    Fill(cr, client, face);
    const SFont* font = WindowFont(this);
    int line = LineHeight();
    int top = 0;
    bool enabled = IsEnabled();
    uint32_t accent = GetSysColor(SYS_COLOR_HIGHLIGHT);
    for (int g = 0; g < GetGroupCount() && top < client.bottom; ++g) {
        SRect title{0, top, client.right, top + line};
        Fill(cr, title,
             Mix(face, GetSysColor(SYS_COLOR_BTNSHADOW), hotGroup == g && hotItem == -1 ? 90 : 50));
        double cx = 10, cy = top + line / 2.0;
        Expander(cr, cx, cy, groups[g].open, Ink(this));
        Text(cr, font, groups[g].title.c_str(), SRect{20, top, client.right - 4, top + line},
             Ink(this));
        if (HasFocus() && focusGroup == g && focusItem == -1) {
            FocusFrame(cr, title);
        }
        top += line;
        for (int i = 0; groups[g].open && i < GetItemCount(g); ++i) {
            SRect row{0, top, client.right, top + line};
            const Item& item = groups[g].items[i];
            if (item.on) {
                Fill(cr, row,
                     enabled ? Mix(face, accent, 70)
                             : Mix(face, GetSysColor(SYS_COLOR_BTNSHADOW), 40));
                Fill(cr, SRect{0, top, 3, top + line},
                     enabled ? accent : GetSysColor(SYS_COLOR_GRAYTEXT));
            } else if (hotGroup == g && hotItem == i) {
                Fill(cr, row, Mix(face, GetSysColor(SYS_COLOR_BTNHIGHLIGHT), 140));
            }
            Text(cr, font, item.text.c_str(), SRect{20, top, client.right - 4, top + line},
                 Ink(this));
            if (HasFocus() && focusGroup == g && focusItem == i) {
                FocusFrame(cr, row);
            }
            top += line;
        }
    }
}

// SGuiCtrl

SGuiCtrl::SGuiCtrl() : SCtrlBase(SN_GUI_MOUSE) {}

SGuiCtrl::~SGuiCtrl() {
    for (Bar& bar : bars) {
        bar.window->Destroy();
    }
    if (view != nullptr) {
        view->Destroy();
    }
}

_SWndBar* SGuiCtrl::AddBar(Side side, int size) {
    if (GetHandle() == 0) {
        return nullptr;
    }
    Bar bar{side, std::max(size, MIN_BAR), std::make_unique<_SWndBar>()};
    SRect rect{0, 0, MIN_BAR, MIN_BAR};
    bar.window->Create("", WS_VISIBLE, 0, &rect, GetHandle());
    bar.window->SetBackColor(
        Mix(GetSysColor(SYS_COLOR_BTNFACE), GetSysColor(SYS_COLOR_BTNSHADOW), 60));
    bars.push_back(std::move(bar));
    Layout();
    return bars.back().window.get();
}

_SWndBar* SGuiCtrl::GetBar(int index) const {
    return index >= 0 && index < GetBarCount() ? bars[index].window.get() : nullptr;
}

void SGuiCtrl::Layout() {
    SRect room = GetClientRect();
    for (Bar& bar : bars) {
        SRect place;
        switch (bar.side) {
        case LEFT:
            place = SRect{room.left, room.top, room.left + bar.size, room.bottom};
            room.left = place.right;
            break;
        case RIGHT:
            place = SRect{room.right - bar.size, room.top, room.right, room.bottom};
            room.right = place.left;
            break;
        case TOP:
            place = SRect{room.left, room.top, room.right, room.top + bar.size};
            room.top = place.bottom;
            break;
        case BOTTOM:
            place = SRect{room.left, room.bottom - bar.size, room.right, room.bottom};
            room.bottom = place.top;
            break;
        }
        // A bar never goes below 16 by 16, even when the control is small.
        place.right = std::max(place.right, place.left + MIN_BAR);
        place.bottom = std::max(place.bottom, place.top + MIN_BAR);
        bar.window->MoveWindow(place);
    }
    if (view != nullptr) {
        room.right = std::max(room.right, room.left);
        room.bottom = std::max(room.bottom, room.top);
        view->MoveWindow(room);
    }
}

LRESULT SGuiCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case SM_CREATE: {
        view = std::make_unique<_SWndView>();
        SRect rect = GetClientRect();
        view->Create("", WS_VISIBLE, 0, &rect, GetHandle());
        view->SetBackColor(GetSysColor(SYS_COLOR_WINDOW));
        break;
    }
    case WM_SIZE: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        Layout();
        return result;
    }
    default:
        break;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void SGuiCtrl::Paint(cairo_t* cr) {
    Fill(cr, GetClientRect(), Face(this));
}
