#include "toolkit/tree_ctrl.h"

#include <algorithm>
#include <cairo.h>
#include <cctype>
#include <cstdlib>
#include <filesystem>

#include "foundation/keyboard.h"
#include "toolkit/draw.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"

using namespace ctrldraw;

namespace {

constexpr int IMAGE_SIZE = 16;
constexpr int CHECK_SIZE = 13;
constexpr uint64_t TYPE_AHEAD_PAUSE = 1000; // ms that start a new search

// The length of the UTF-8 sequence that starts at text[at].
int CharLength(const SString& text, int at) {
    int length = 1;
    while (at + length < text.GetLength() &&
           (static_cast<unsigned char>(text.c_str()[at + length]) & 0xC0) == 0x80) {
        ++length;
    }
    return length;
}

int PreviousChar(const SString& text, int at) {
    --at;
    while (at > 0 && (static_cast<unsigned char>(text.c_str()[at]) & 0xC0) == 0x80) {
        --at;
    }
    return std::max(at, 0);
}

SString Utf8(unsigned code) {
    char bytes[5] = {};
    if (code < 0x80) {
        bytes[0] = static_cast<char>(code);
    } else if (code < 0x800) {
        bytes[0] = static_cast<char>(0xC0 | (code >> 6));
        bytes[1] = static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        bytes[0] = static_cast<char>(0xE0 | (code >> 12));
        bytes[1] = static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        bytes[2] = static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x110000) {
        bytes[0] = static_cast<char>(0xF0 | (code >> 18));
        bytes[1] = static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        bytes[2] = static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        bytes[3] = static_cast<char>(0x80 | (code & 0x3F));
    }
    return SString(bytes);
}

bool StartsWithNoCase(const SString& text, const SString& start) {
    if (start.GetLength() > text.GetLength()) {
        return false;
    }
    return text.Left(start.GetLength()).CompareNoCase(start.c_str()) == 0;
}

} // namespace

STreeCtrl::STreeCtrl() : SCtrlBase(SN_TREE_MOUSE) {}

STreeCtrl::~STreeCtrl() = default;

const std::vector<STreeCtrl::Row>& STreeCtrl::Rows() const {
    if (!rowsValid) {
        std::vector<HTREEITEM> visible;
        std::vector<int> levels;
        items.CollectVisible(visible, &levels);
        rows.clear();
        rows.reserve(visible.size());
        for (size_t i = 0; i < visible.size(); ++i) {
            rows.push_back(Row{visible[i], levels[i]});
        }
        rowsValid = true;
    }
    return rows;
}

void STreeCtrl::Changed() {
    rowsValid = false;
    int count = static_cast<int>(Rows().size());
    topRow = std::clamp(topRow, 0, std::max(0, count - VisibleRows()));
    Invalidate(nullptr);
}

int STreeCtrl::RowOf(HTREEITEM item) const {
    const std::vector<Row>& all = Rows();
    for (size_t i = 0; i < all.size(); ++i) {
        if (all[i].item == item) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int STreeCtrl::VisibleRows() const {
    return std::max(1, GetClientHeight() / rowHeight);
}

void STreeCtrl::ScrollTo(int row) {
    int count = static_cast<int>(Rows().size());
    row = std::clamp(row, 0, std::max(0, count - VisibleRows()));
    if (row != topRow) {
        topRow = row;
        Invalidate(nullptr);
    }
}

int STreeCtrl::ImageLeft(int level) const {
    return (GetStyle() & TVS_CHECKBOXES) != 0 ? CheckLeft(level) + INDENT + 2 : CheckLeft(level);
}

int STreeCtrl::LabelLeft(HTREEITEM item, int level) const {
    int left = ImageLeft(level);
    int image = item == selected && item->selectedImage >= 0 ? item->selectedImage : item->image;
    if (image >= 0 && image < GetImageCount()) {
        left += IMAGE_SIZE + 4;
    }
    return left;
}

SRect STreeCtrl::LabelRect(int row) const {
    const Row& entry = Rows()[row];
    int left = LabelLeft(entry.item, entry.level);
    int width = TextWidth(WindowFont(this), entry.item->text.c_str()) + 8;
    int top = (row - topRow) * rowHeight;
    return SRect{left, top, left + width, top + rowHeight};
}

void STreeCtrl::InvalidateRow(int row) {
    if (row < topRow || row >= topRow + VisibleRows() + 1) {
        return;
    }
    SRect area{0, (row - topRow) * rowHeight, GetClientWidth(), (row - topRow + 1) * rowHeight};
    Invalidate(&area);
}

HTREEITEM STreeCtrl::AddItem(const char* text, int image, int selectedImage, HTREEITEM parent,
                             HTREEITEM insertAfter, intptr_t data) {
    HTREEITEM item = items.AddItem(text, image, selectedImage, parent, insertAfter, data);
    if (item != nullptr && (parent == nullptr || parent->expanded)) {
        Changed();
    }
    return item;
}

bool STreeCtrl::RemoveItem(HTREEITEM item) {
    if (!items.Contains(item)) {
        return false;
    }
    if (editing != nullptr && items.IsWithin(editing, item)) {
        editing = nullptr;
    }
    if (selected != nullptr && items.IsWithin(selected, item)) {
        selected = nullptr;
    }
    if (hot != nullptr && items.IsWithin(hot, item)) {
        hot = nullptr;
    }
    items.RemoveItem(item);
    Changed();
    return true;
}

void STreeCtrl::Clear() {
    editing = nullptr;
    selected = nullptr;
    hot = nullptr;
    items.Clear();
    topRow = 0;
    Changed();
}

HTREEITEM STreeCtrl::HitTest(SPoint point, unsigned* flags) const {
    unsigned ignored = 0;
    unsigned& hit = flags != nullptr ? *flags : ignored;
    hit = TVHT_NOWHERE;
    if (point.y < 0 || point.x < 0 || point.x >= GetClientWidth()) {
        return nullptr;
    }
    int row = topRow + point.y / rowHeight;
    const std::vector<Row>& all = Rows();
    if (row >= static_cast<int>(all.size())) {
        return nullptr;
    }
    const Row& entry = all[row];
    HTREEITEM item = entry.item;
    int x = point.x;
    bool checks = (GetStyle() & TVS_CHECKBOXES) != 0;
    if (x < ExpanderLeft(entry.level)) {
        hit = TVHT_ONITEMINDENT;
    } else if (x < CheckLeft(entry.level)) {
        hit = item->children.empty() ? TVHT_ONITEMINDENT : TVHT_ONITEMBUTTON;
    } else if (checks && x < ImageLeft(entry.level)) {
        hit = TVHT_ONITEMSTATEICON;
    } else if (x < LabelLeft(item, entry.level)) {
        hit = TVHT_ONITEMICON;
    } else if (x < LabelRect(row).right) {
        hit = TVHT_ONITEMLABEL;
    } else {
        hit = TVHT_ONITEMRIGHT;
    }
    return item;
}

bool STreeCtrl::Expand(HTREEITEM item, unsigned code) {
    if (!items.Contains(item)) {
        return false;
    }
    bool expand = code == TVE_EXPAND || (code == TVE_TOGGLE && !item->expanded);
    if (item->expanded == expand) {
        return true;
    }
    item->expanded = expand;
    // A selection inside a closing branch moves to the branch.
    if (!expand && selected != nullptr && selected != item && items.IsWithin(selected, item)) {
        selected = item;
    }
    Changed();
    return true;
}

SString STreeCtrl::GetItemText(HTREEITEM item) const {
    return items.Contains(item) ? item->text : SString();
}

bool STreeCtrl::SetItemText(HTREEITEM item, const char* text) {
    if (!items.Contains(item)) {
        return false;
    }
    item->text = text != nullptr ? text : "";
    Invalidate(nullptr);
    return true;
}

intptr_t STreeCtrl::GetItemData(HTREEITEM item) const {
    return items.Contains(item) ? item->data : 0;
}

bool STreeCtrl::SetItemData(HTREEITEM item, intptr_t data) {
    if (!items.Contains(item)) {
        return false;
    }
    item->data = data;
    return true;
}

bool STreeCtrl::GetCheck(HTREEITEM item) const {
    return items.Contains(item) && item->checked;
}

bool STreeCtrl::SetCheck(HTREEITEM item, bool check) {
    if (!items.Contains(item)) {
        return false;
    }
    if (item->checked != check) {
        item->checked = check;
        InvalidateRow(RowOf(item));
    }
    return true;
}

bool STreeCtrl::SelectItem(HTREEITEM item) {
    if (item != nullptr && !items.Contains(item)) {
        return false;
    }
    if (item == selected) {
        return true;
    }
    if (editing != nullptr) {
        EndEdit(true);
    }
    int old = RowOf(selected);
    selected = item;
    if (item != nullptr) {
        EnsureVisible(item);
    }
    InvalidateRow(old);
    InvalidateRow(RowOf(selected));
    return true;
}

void STreeCtrl::EnsureVisible(HTREEITEM item) {
    if (!items.Contains(item)) {
        return;
    }
    bool opened = false;
    for (HTREEITEM parent = item->parent; parent != nullptr; parent = parent->parent) {
        if (!parent->expanded) {
            parent->expanded = true;
            opened = true;
        }
    }
    if (opened) {
        Changed();
    }
    int row = RowOf(item);
    if (row < topRow) {
        ScrollTo(row);
    } else if (row >= topRow + VisibleRows()) {
        ScrollTo(row - VisibleRows() + 1);
    }
}

bool STreeCtrl::Load(SFile* file, bool withAttributes) {
    editing = nullptr;
    selected = nullptr;
    hot = nullptr;
    topRow = 0;
    bool loaded = items.Load(file, withAttributes);
    Changed();
    return loaded;
}

int STreeCtrl::AddImage(const SImage& image) {
    images.emplace_back();
    images.back().CopyFrom(&image);
    return static_cast<int>(images.size()) - 1;
}

HTREEITEM STreeCtrl::AddFileItem(const char* path, HTREEITEM parent) {
    if (path == nullptr || *path == 0) {
        return nullptr;
    }
    std::error_code error;
    std::filesystem::path place(path);
    bool folder = std::filesystem::is_directory(place, error);
    std::string key;
    if (folder) {
        key = path;
    } else {
        key = place.extension().string();
        std::transform(key.begin(), key.end(), key.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    }
    int image = -1;
    auto known = fileImages.find(key);
    if (known != fileImages.end()) {
        image = known->second;
    } else {
        SImage icon;
        if (GetPlatform()->GetFileIcon(path, folder, IMAGE_SIZE, &icon)) {
            image = AddImage(icon);
            fileImages.emplace(key, image);
        }
    }
    std::string name = place.filename().string();
    if (name.empty()) {
        name = place.parent_path().filename().string(); // a folder path ending in "/"
    }
    if (name.empty()) {
        name = path;
    }
    return AddItem(name.c_str(), image, image, parent, STreeItems::TVI_LAST, 0);
}

bool STreeCtrl::MoveItem(HTREEITEM item, HTREEITEM target) {
    if (!items.MoveItem(item, target)) {
        return false;
    }
    if (target != nullptr) {
        target->expanded = true;
    }
    Changed();
    EnsureVisible(item);
    return true;
}

// Label editing.

bool STreeCtrl::EditLabel(HTREEITEM item) {
    if (!items.Contains(item) || !IsEnabled()) {
        return false;
    }
    if (editing != nullptr) {
        EndEdit(true);
    }
    SelectItem(item);
    EnsureVisible(item);
    editing = item;
    editText = item->text;
    editCaret = editText.GetLength();
    Invalidate(nullptr);
    return true;
}

bool STreeCtrl::EndEdit(bool keep) {
    if (editing == nullptr) {
        return false;
    }
    HTREEITEM item = editing;
    editing = nullptr;
    if (keep && item->text != editText) {
        item->text = editText;
        Notify(SN_TREE_LABEL, reinterpret_cast<LPARAM>(item));
    }
    Invalidate(nullptr);
    return true;
}

bool STreeCtrl::EditKey(unsigned key) {
    switch (key) {
    case VK_RETURN:
        EndEdit(true);
        return true;
    case VK_ESCAPE:
        EndEdit(false);
        return true;
    case VK_BACK:
        if (editCaret > 0) {
            int start = PreviousChar(editText, editCaret);
            editText.Delete(start, editCaret - start);
            editCaret = start;
        }
        break;
    case VK_DELETE:
        if (editCaret < editText.GetLength()) {
            editText.Delete(editCaret, CharLength(editText, editCaret));
        }
        break;
    case ctrlkey::LEFT:
        editCaret = PreviousChar(editText, editCaret);
        break;
    case ctrlkey::RIGHT:
        if (editCaret < editText.GetLength()) {
            editCaret += CharLength(editText, editCaret);
        }
        break;
    case ctrlkey::HOME:
        editCaret = 0;
        break;
    case ctrlkey::END:
        editCaret = editText.GetLength();
        break;
    default:
        return true; // the editor keeps every other key from the tree
    }
    Invalidate(nullptr);
    return true;
}

void STreeCtrl::EditChar(unsigned character) {
    if (character < 32 || character == 127) {
        return;
    }
    SString bytes = Utf8(character);
    editText.Insert(bytes.c_str(), editCaret);
    editCaret += bytes.GetLength();
    Invalidate(nullptr);
}

// Keys.

void STreeCtrl::ToggleCheck(HTREEITEM item) {
    item->checked = !item->checked;
    InvalidateRow(RowOf(item));
    OnCheckChanged(item, item->checked);
    if (GetHandle() != 0 && items.Contains(item)) {
        Notify(SN_TREE_CHECK, reinterpret_cast<LPARAM>(item));
    }
}

bool STreeCtrl::HandleKey(unsigned key) {
    const std::vector<Row>& all = Rows();
    int count = static_cast<int>(all.size());
    if (count == 0) {
        return false;
    }
    int row = RowOf(selected);
    auto go = [&](int target) {
        target = std::clamp(target, 0, count - 1);
        SelectItem(Rows()[target].item);
    };
    switch (key) {
    case ctrlkey::UP:
        go(row < 0 ? 0 : row - 1);
        return true;
    case ctrlkey::DOWN:
        go(row < 0 ? 0 : row + 1);
        return true;
    case ctrlkey::HOME:
        go(0);
        return true;
    case ctrlkey::END:
        go(count - 1);
        return true;
    case ctrlkey::PRIOR:
        go(row < 0 ? 0 : row - std::max(1, VisibleRows() - 1));
        return true;
    case ctrlkey::NEXT:
        go(row < 0 ? 0 : row + std::max(1, VisibleRows() - 1));
        return true;
    default:
        break;
    }
    if (selected == nullptr) {
        return false;
    }
    switch (key) {
    case ctrlkey::LEFT:
        if (selected->expanded && !selected->children.empty()) {
            Expand(selected, TVE_COLLAPSE);
        } else if (selected->parent != nullptr) {
            SelectItem(selected->parent);
        }
        return true;
    case ctrlkey::RIGHT:
        if (!selected->children.empty()) {
            if (!selected->expanded) {
                Expand(selected, TVE_EXPAND);
            } else {
                SelectItem(selected->children.front());
            }
        }
        return true;
    case ctrlkey::ADD:
    case ctrlkey::PLUS:
        Expand(selected, TVE_EXPAND);
        return true;
    case ctrlkey::SUBTRACT:
    case ctrlkey::MINUS:
        Expand(selected, TVE_COLLAPSE);
        return true;
    case ctrlkey::MULTIPLY: {
        // The whole branch, without recursion.
        std::vector<HTREEITEM> pending{selected};
        while (!pending.empty()) {
            HTREEITEM next = pending.back();
            pending.pop_back();
            if (!next->children.empty()) {
                next->expanded = true;
            }
            pending.insert(pending.end(), next->children.begin(), next->children.end());
        }
        Changed();
        return true;
    }
    case ctrlkey::SPACE:
        if ((GetStyle() & TVS_CHECKBOXES) != 0) {
            ToggleCheck(selected);
        }
        return true;
    case ctrlkey::F2:
        EditLabel(selected);
        return true;
    default:
        return false;
    }
}

void STreeCtrl::TypeAhead(unsigned character) {
    if (character <= 32 || character == 127) {
        return;
    }
    uint64_t now = GetMessageClock();
    if (now - typedTime > TYPE_AHEAD_PAUSE) {
        typed.Empty();
    }
    typedTime = now;
    SString letter = Utf8(character);
    // The same letter again steps through the items that start with it.
    bool repeat = typed == letter;
    if (!repeat) {
        typed += letter;
    }
    const std::vector<Row>& all = Rows();
    int count = static_cast<int>(all.size());
    int start = std::max(0, RowOf(selected));
    int first = repeat || typed.GetLength() == letter.GetLength() ? 1 : 0;
    for (int step = first; step < count + first; ++step) {
        HTREEITEM item = all[(start + step) % count].item;
        if (StartsWithNoCase(item->text, typed)) {
            SelectItem(item);
            return;
        }
    }
}

// Dragging: a loop of its own while the left button is down.

HTREEITEM STreeCtrl::DropTargetAt(SPoint screen, bool* allowed) const {
    *allowed = false;
    SPoint point = screen;
    ScreenToClient(&point);
    if (!GetClientRect().Contains(point)) {
        return nullptr;
    }
    unsigned flags = 0;
    HTREEITEM target = HitTest(point, &flags);
    *allowed = target == nullptr || !items.IsWithin(target, dragItem);
    return target;
}

void STreeCtrl::DragLoop(HTREEITEM item, SPoint start) {
    constexpr int CURSOR_GRABBING = 16;
    constexpr int CURSOR_NOT_ALLOWED = 10;
    constexpr int THRESHOLD = 4; // pixels the pointer moves before a drag shows
    HWND own = GetHandle();
    SetCapture(own);
    ClientToScreen(&start);
    bool moved = false;
    bool drop = false;
    bool released = false;
    SMessage message;
    SMessage release;
    while (GetCapture() == own) {
        if (!PeekMessage(&message, true) && !GetMessage(&message)) {
            break;
        }
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        bool mouse = message.message >= WM_MOUSEFIRST && message.message <= WM_MOUSELAST &&
                     message.message != WM_MOUSEWHEEL && message.message != WM_MOUSEHWHEEL;
        if (!mouse) {
            if (message.message == WM_KEYDOWN && message.wParam == VK_ESCAPE) {
                break;
            }
            DispatchMessage(&message);
            continue;
        }
        // The tree keeps the mouse while the button is down.
        SWnd* to = SWnd::FromHandle(message.hwnd);
        SPoint point{PointParamX(message.lParam), PointParamY(message.lParam)};
        if (to != nullptr) {
            to->ClientToScreen(&point);
        }
        if (!moved &&
            (std::abs(point.x - start.x) > THRESHOLD || std::abs(point.y - start.y) > THRESHOLD)) {
            moved = true;
            dragItem = item;
        }
        bool allowed = false;
        HTREEITEM target = moved ? DropTargetAt(point, &allowed) : nullptr;
        if (moved) {
            HTREEITEM shown = allowed && target != item ? target : nullptr;
            if (shown != dropTarget) {
                InvalidateRow(RowOf(dropTarget));
                dropTarget = shown;
                InvalidateRow(RowOf(dropTarget));
            }
            GetPlatform()->SetSurfaceCursor(GetTopWindow(),
                                            allowed ? CURSOR_GRABBING : CURSOR_NOT_ALLOWED);
            dragPoint = point;
            ScreenToClient(&dragPoint);
            Invalidate(nullptr);
        }
        if (message.message == WM_LBUTTONUP) {
            drop = moved && allowed && target != nullptr && target != item;
            released = true;
            release = message;
            break;
        }
    }
    if (SWnd::FromHandle(own) != this) {
        return; // destroyed while dragging
    }
    if (GetCapture() == own) {
        ReleaseCapture();
    }
    if (moved) {
        GetPlatform()->SetSurfaceCursor(GetTopWindow(), CURSOR_ARROW);
    }
    HTREEITEM target = dropTarget;
    dragItem = nullptr;
    dropTarget = nullptr;
    Invalidate(nullptr);
    if (drop && items.Contains(item) && items.Contains(target)) {
        MoveItem(item, target);
    } else if (released && !moved) {
        // A plain click: the release goes on as usual, and makes the click.
        DispatchMessage(&release);
    }
}

LRESULT STreeCtrl::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SPoint point{PointParamX(lParam), PointParamY(lParam)};
    switch (message) {
    case SM_CREATE:
        rowHeight = std::max(18, TextMetrics(WindowFont(this)).height + 4);
        break;
    case WM_SETFONT:
        rowHeight = std::max(18, TextMetrics(WindowFont(this)).height + 4);
        Changed();
        break;
    case WM_SIZE:
        Changed();
        break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: {
        LRESULT result = SCtrlBase::OnMessage(message, wParam, lParam);
        if (GetHandle() == 0 || !IsEnabled()) {
            return result;
        }
        unsigned flags = 0;
        HTREEITEM item = HitTest(point, &flags);
        if (editing != nullptr && item != editing) {
            EndEdit(true);
        }
        if (item == nullptr) {
            return result;
        }
        if (flags == TVHT_ONITEMBUTTON) {
            Expand(item, TVE_TOGGLE);
        } else if (flags == TVHT_ONITEMSTATEICON) {
            SelectItem(item);
            ToggleCheck(item);
        } else {
            SelectItem(item);
            if (message == WM_LBUTTONDBLCLK) {
                Expand(item, TVE_TOGGLE);
            } else if (dragDrop && flags == TVHT_ONITEMLABEL) {
                DragLoop(item, point);
            }
        }
        return result;
    }
    case WM_RBUTTONDOWN: {
        // The item under the pointer becomes the selection first, so that
        // the parent's menu is about it.
        if (IsEnabled()) {
            HTREEITEM item = HitTest(point);
            if (item != nullptr) {
                SelectItem(item);
            }
        }
        break;
    }
    case WM_MOUSEMOVE: {
        HTREEITEM item = IsEnabled() ? HitTest(point) : nullptr;
        if (item != hot) {
            InvalidateRow(RowOf(hot));
            hot = item;
            InvalidateRow(RowOf(hot));
        }
        break;
    }
    case SM_MOUSE_LEAVE:
        InvalidateRow(RowOf(hot));
        hot = nullptr;
        break;
    case WM_MOUSEWHEEL:
        if (IsEnabled()) {
            int delta = WheelParamDelta(wParam);
            int lines = -delta * 3 / WHEEL_DELTA;
            if (lines == 0 && delta != 0) {
                lines = delta > 0 ? -1 : 1;
            }
            ScrollTo(topRow + lines);
        }
        return 0;
    case WM_KEYDOWN:
        if (!IsEnabled()) {
            return 0;
        }
        if (editing != nullptr) {
            EditKey(static_cast<unsigned>(wParam));
            return 0;
        }
        Notify(SN_TREE_KEY, static_cast<LPARAM>(wParam));
        if (GetHandle() != 0 && HandleKey(static_cast<unsigned>(wParam))) {
            return 0;
        }
        break;
    case WM_CHAR:
        if (!IsEnabled()) {
            return 0;
        }
        if (editing != nullptr) {
            EditChar(static_cast<unsigned>(wParam));
        } else {
            TypeAhead(static_cast<unsigned>(wParam));
        }
        return 0;
    case WM_KILLFOCUS:
        if (editing != nullptr) {
            EndEdit(true);
        }
        break;
    default:
        break;
    }
    return SCtrlBase::OnMessage(message, wParam, lParam);
}

void STreeCtrl::Paint(cairo_t* cr) {
    SRect client = GetClientRect();
    bool enabled = IsEnabled();
    bool focused = HasFocus();
    uint32_t back = GetSysColor(SYS_COLOR_WINDOW);
    Fill(cr, client, enabled ? back : Mix(back, GetSysColor(SYS_COLOR_BTNFACE), 160));
    const SFont* font = WindowFont(this);
    const std::vector<Row>& all = Rows();
    int count = static_cast<int>(all.size());
    bool checks = (GetStyle() & TVS_CHECKBOXES) != 0;
    uint32_t text = enabled ? GetSysColor(SYS_COLOR_WINDOWTEXT) : GetSysColor(SYS_COLOR_GRAYTEXT);
    uint32_t accent = GetSysColor(SYS_COLOR_HIGHLIGHT);
    for (int row = topRow; row < count && (row - topRow) * rowHeight < client.bottom; ++row) {
        const Row& entry = all[row];
        HTREEITEM item = entry.item;
        int top = (row - topRow) * rowHeight;
        SRect line{0, top, client.right, top + rowHeight};
        bool isSelected = item == selected;
        if (isSelected) {
            uint32_t fill =
                focused && enabled ? accent : Mix(back, GetSysColor(SYS_COLOR_BTNSHADOW), 80);
            Fill(cr, line, fill);
        } else if (item == hot && enabled && dragItem == nullptr) {
            Fill(cr, line, Mix(back, accent, 30));
        }
        if (item == dropTarget) {
            SetSource(cr, accent);
            cairo_set_line_width(cr, 2);
            cairo_rectangle(cr, 1, top + 1, client.Width() - 2, rowHeight - 2);
            cairo_stroke(cr);
        }
        uint32_t ink =
            isSelected && focused && enabled ? GetSysColor(SYS_COLOR_HIGHLIGHTTEXT) : text;
        // The expander: a triangle pointing right when closed, down when open.
        if (!item->children.empty()) {
            double cx = ExpanderLeft(entry.level) + INDENT / 2.0;
            double cy = top + rowHeight / 2.0;
            Expander(cr, cx, cy, item->expanded, isSelected && focused ? ink : Mix(text, back, 60));
        }
        if (checks) {
            int boxTop = top + (rowHeight - CHECK_SIZE) / 2;
            int left = CheckLeft(entry.level) + 1;
            SRect box{left, boxTop, left + CHECK_SIZE, boxTop + CHECK_SIZE};
            uint32_t fill = item->checked ? accent : back;
            uint32_t edge = item->checked ? Mix(accent, GetSysColor(SYS_COLOR_WINDOWTEXT), 60)
                                          : GetSysColor(SYS_COLOR_BTNSHADOW);
            if (!enabled) {
                fill = Mix(fill, GetSysColor(SYS_COLOR_BTNFACE), 150);
            }
            RoundBox(cr, box, 2, fill, edge);
            if (item->checked) {
                SetSource(cr, GetSysColor(SYS_COLOR_HIGHLIGHTTEXT));
                cairo_set_line_width(cr, 2);
                cairo_move_to(cr, box.left + 3, box.top + CHECK_SIZE / 2);
                cairo_line_to(cr, box.left + 5.5, box.bottom - 4);
                cairo_line_to(cr, box.right - 3, box.top + 3);
                cairo_stroke(cr);
            }
        }
        int image = isSelected && item->selectedImage >= 0 ? item->selectedImage : item->image;
        if (image >= 0 && image < GetImageCount()) {
            images[image].DrawAt(cr, ImageLeft(entry.level), top + (rowHeight - IMAGE_SIZE) / 2,
                                 IMAGE_SIZE, IMAGE_SIZE);
        }
        SRect label = LabelRect(row);
        if (item == editing) {
            int width = std::max(label.Width(), TextWidth(font, editText.c_str()) + 12);
            SRect box{label.left, top + 1, std::min(client.right - 1, label.left + width),
                      top + rowHeight - 1};
            Fill(cr, box, back);
            SetSource(cr, accent);
            cairo_set_line_width(cr, 1);
            cairo_rectangle(cr, box.left + 0.5, box.top + 0.5, box.Width() - 1.0,
                            box.Height() - 1.0);
            cairo_stroke(cr);
            SRect inside = Inset(box, 4, 0);
            Text(cr, font, editText.c_str(), inside, GetSysColor(SYS_COLOR_WINDOWTEXT));
            int caretX = inside.left + TextWidth(font, editText.c_str(), editCaret);
            Fill(cr, SRect{caretX, box.top + 3, caretX + 1, box.bottom - 3},
                 GetSysColor(SYS_COLOR_WINDOWTEXT));
            continue;
        }
        Text(cr, font, item->text.c_str(),
             SRect{label.left + 2, top, client.right, top + rowHeight}, ink);
        if (isSelected && focused) {
            FocusFrame(cr, line);
        }
    }
    if (dragItem != nullptr) {
        // The dragged label follows the pointer.
        SRect ghost{dragPoint.x + 12, dragPoint.y,
                    dragPoint.x + 12 + TextWidth(font, dragItem->text.c_str()) + 8,
                    dragPoint.y + rowHeight};
        RoundBox(cr, ghost, 3, Mix(back, accent, 60), accent);
        Text(cr, font, dragItem->text.c_str(), Inset(ghost, 4, 0),
             GetSysColor(SYS_COLOR_WINDOWTEXT));
    }
    if (count == 0 && focused) {
        FocusFrame(cr, client);
    }
}
