// Slot 19 of SWnd: the raw messages turned into the toolkit's vocabulary.
#include "toolkit/wnd.h"

#include <algorithm>
#include <atomic>
#include <filesystem>

#include "foundation/keyboard.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd_internal.h"

namespace {

// 0 left, 1 middle, 2 right, -1 for no button message; down tells which.
int ButtonOf(unsigned message, bool* down, bool* nonClient) {
    *nonClient = false;
    switch (message) {
    case WM_NCLBUTTONDOWN:
    case WM_NCLBUTTONUP:
    case WM_NCMBUTTONDOWN:
    case WM_NCMBUTTONUP:
    case WM_NCRBUTTONDOWN:
    case WM_NCRBUTTONUP:
        *nonClient = true;
        message = message - WM_NCLBUTTONDOWN + WM_LBUTTONDOWN;
        break;
    default:
        break;
    }
    switch (message) {
    case WM_LBUTTONDOWN:
        *down = true;
        return 0;
    case WM_LBUTTONUP:
        *down = false;
        return 0;
    case WM_MBUTTONDOWN:
        *down = true;
        return 1;
    case WM_MBUTTONUP:
        *down = false;
        return 1;
    case WM_RBUTTONDOWN:
        *down = true;
        return 2;
    case WM_RBUTTONUP:
        *down = false;
        return 2;
    default:
        return -1;
    }
}

// The keyboard table: key, Ctrl, Shift, the mask bit.
struct Shortcut {
    unsigned key;
    bool ctrl;
    bool shift;
    unsigned bit;
};

constexpr Shortcut SHORTCUTS[] = {
    {'Z', true, false, SHORTCUT_UNDO},     {'X', true, false, SHORTCUT_CUT},
    {'C', true, false, SHORTCUT_COPY},     {'V', true, false, SHORTCUT_PASTE},
    {VK_DELETE, false, false, SHORTCUT_DELETE}, {'A', true, false, SHORTCUT_SELECT_ALL},
    {'F', true, false, SHORTCUT_FIND},     {'H', true, false, SHORTCUT_REPLACE},
    {'G', true, false, SHORTCUT_GOTO},     {'P', true, false, SHORTCUT_PRINT},
    {VK_ESCAPE, false, false, SHORTCUT_ESCAPE}, {'N', true, false, SHORTCUT_NEW},
    {'O', true, false, SHORTCUT_OPEN},     {'S', true, false, SHORTCUT_SAVE},
    {'S', true, true, SHORTCUT_SAVE_AS},
};

// The menu code's F10 handler.
std::atomic<SMenuBarKeyHandler> menuBarKey{nullptr};

constexpr unsigned VK_F10_KEY = 0x79;

} // namespace

void SetMenuBarKeyHandler(SMenuBarKeyHandler handler) {
    menuBarKey.store(handler);
}

bool SWnd::PreMessage(unsigned message, WPARAM* wParam, LPARAM* lParam, LRESULT* result) {
    ThreadWindowState& state = ThreadState();
    switch (message) {
    case WM_KEYDOWN:
        ToolTipDismiss(handle);
        return HandleKeyDown(static_cast<unsigned>(*wParam));
    case WM_SYSKEYDOWN: {
        HWND top = GetTopWindow();
        if (top != handle && SendMessage(top, SM_SYSKEY, *wParam, handle) == -1) {
            *result = 0;
            return false;
        }
        return true;
    }
    case WM_CHAR:
        return !(*wParam == VK_TAB && type == 10);
    case WM_DESTROY:
        isModal = false;
        caretShown = false;
        menu = nullptr;
        return true;
    case WM_GETMINMAXINFO: {
        auto* info = reinterpret_cast<SMinMaxInfo*>(*lParam);
        if (info == nullptr) {
            return true;
        }
        int left = 0, top = 0, right = 0, bottom = 0;
        GetFrameWidths(&left, &top, &right, &bottom);
        const int frame[2] = {left + right, top + bottom};
        int* minimum[2] = {&info->minTrackSize.width, &info->minTrackSize.height};
        int* maximum[2] = {&info->maxTrackSize.width, &info->maxTrackSize.height};
        for (int i = 0; i < 2; ++i) {
            // The window measure as it stands; the client measure with the
            // frame added. Where both are set, both hold.
            if (minSize[i] >= 0) {
                *minimum[i] = std::max(*minimum[i], minSize[i]);
            }
            if (minClient[i] >= 0) {
                *minimum[i] = std::max(*minimum[i], minClient[i] + frame[i]);
            }
            if (maxSize[i] >= 0) {
                *maximum[i] = *maximum[i] >= 0 ? std::min(*maximum[i], maxSize[i]) : maxSize[i];
            }
            if (maxClient[i] >= 0) {
                int limit = maxClient[i] + frame[i];
                *maximum[i] = *maximum[i] >= 0 ? std::min(*maximum[i], limit) : limit;
            }
        }
        return true;
    }
    case WM_SIZE: {
        unsigned kind = static_cast<unsigned>(*wParam);
        if (kind == SIZE_RESTORED && sizeKind != SIZE_RESTORED) {
            SendMessage(handle, SM_RESTORED, 0, 0);
        } else if (kind == SIZE_MINIMIZED) {
            SendMessage(handle, SM_MINIMIZED, 0, 0);
        } else if (kind == SIZE_MAXIMIZED) {
            SendMessage(handle, SM_MAXIMIZED, 0, 0);
        }
        sizeKind = kind;
        std::vector<HWND> list = children;
        for (HWND child : list) {
            SendMessage(child, SM_PARENT_SIZE, *wParam, handle);
        }
        return true;
    }
    case WM_MOVE: {
        std::vector<HWND> list = children;
        for (HWND child : list) {
            SendMessage(child, SM_PARENT_MOVE, *wParam, handle);
        }
        return true;
    }
    case WM_SETFOCUS:
        if (caretVisible) {
            caretShown = true;
            Invalidate();
        }
        return true;
    case WM_KILLFOCUS:
        for (auto& row : state.clickDown) {
            for (HWND& down : row) {
                down = 0;
            }
        }
        if (caretShown) {
            caretShown = false;
            Invalidate();
        }
        return true;
    case WM_CLOSE:
        if (isModal) {
            HWND self = handle;
            SendMessage(self, SM_CANCEL, 0, 0);
            if (FromHandle(self) != this) {
                *result = 0;
                return false;
            }
            // The owner first, so that the focus has somewhere to go.
            if (SWnd* ownerWnd = FromHandle(owner); ownerWnd != nullptr) {
                ownerWnd->Enable(true);
            }
            Show(SW_HIDE);
            *result = 0;
            return false;
        }
        return true;
    case WM_ERASEBKGND:
        if (paintDepth == 0 && *wParam != 0) {
            ++paintDepth;
            SRect client = GetClientRect();
            PaintBackground(reinterpret_cast<cairo_t*>(*wParam), client.Width(), client.Height());
            --paintDepth;
        }
        return true;
    case WM_SETCURSOR:
        if (!cursorEnabled) {
            GetPlatform()->SetSurfaceCursor(GetTopWindow(), -1);
            *result = 1;
            return false;
        }
        if (cursor != 0) {
            GetPlatform()->SetSurfaceCursor(GetTopWindow(), cursor - 1);
            *result = 1;
            return false;
        }
        return true;
    case WM_SETFONT:
        font = reinterpret_cast<void*>(*wParam);
        return true;
    case WM_STYLECHANGED:
        ComputeFrameFlags();
        return true;
    case WM_INITMENUPOPUP:
        GetPlatform()->SetSurfaceCursor(GetTopWindow(), 0);
        return true;
    case WM_NCMOUSEMOVE:
        HandleHotMove(*lParam);
        return true;
    case WM_NCMOUSELEAVE:
        if (hotIndex != -2) {
            int old = hotIndex;
            hotIndex = -2;
            OnHotLeave(old, -1, -1, old);
        }
        return true;
    case WM_MOUSEMOVE: {
        unsigned flags = static_cast<unsigned>(*wParam);
        const unsigned held[3] = {MK_LBUTTON, MK_MBUTTON, MK_RBUTTON};
        for (int button = 0; button < 3; ++button) {
            if ((flags & held[button]) == 0) {
                state.clickDown[0][button] = 0;
            }
        }
        if (!TrackMouseEvent(TME_QUERY, handle)) {
            TrackMouseEvent(TME_LEAVE, handle);
            SendMessage(handle, SM_MOUSE_ENTER, *wParam, *lParam);
        }
        if (handle != 0) {
            ToolTipMouseMove(this, PointParamX(*lParam), PointParamY(*lParam));
        }
        if (moveActive) {
            SPoint cursorPoint{PointParamX(*lParam), PointParamY(*lParam)};
            ClientToScreen(&cursorPoint);
            SPoint origin{cursorPoint.x - moveOffset.x, cursorPoint.y - moveOffset.y};
            SWnd* parentWnd = GetParentWnd();
            if (parentWnd != nullptr) {
                parentWnd->ScreenToClient(&origin);
            }
            MoveWindow(SRect{origin.x, origin.y, origin.x + rect.Width(),
                             origin.y + rect.Height()});
        }
        return true;
    }
    case WM_MOUSELEAVE:
        ToolTipForget(handle);
        SendMessage(handle, SM_MOUSE_LEAVE, 0, 0);
        return true;
    case WM_LBUTTONDOWN:
        ToolTipDismiss(handle);
        if (moveByDrag && !IsMaximized() && !IsMinimized() &&
            SendMessage(handle, SM_MOVE_START, 0, *lParam) == 0 && handle != 0) {
            int left = 0, top = 0, right = 0, bottom = 0;
            GetFrameWidths(&left, &top, &right, &bottom);
            moveActive = true;
            moveOffset = SPoint{PointParamX(*lParam) + left, PointParamY(*lParam) + top};
            SetCapture(handle);
        }
        HandleClick(message, *lParam, false);
        return true;
    case WM_LBUTTONUP:
        if (moveActive) {
            moveActive = false;
            ReleaseCapture();
            SendMessage(handle, SM_MOVE_END, 0, 0);
        }
        HandleClick(message, *lParam, false);
        return true;
    case WM_MBUTTONDOWN:
    case WM_RBUTTONDOWN:
        ToolTipDismiss(handle);
        HandleClick(message, *lParam, false);
        return true;
    case WM_MBUTTONUP:
    case WM_RBUTTONUP:
        HandleClick(message, *lParam, false);
        return true;
    case WM_NCLBUTTONDOWN:
    case WM_NCLBUTTONUP:
    case WM_NCMBUTTONDOWN:
    case WM_NCMBUTTONUP:
    case WM_NCRBUTTONDOWN:
    case WM_NCRBUTTONUP:
        HandleClick(message, *lParam, true);
        return true;
    case WM_HSCROLL:
    case WM_VSCROLL: {
        int bar = message == WM_HSCROLL ? 0 : 1;
        unsigned ownBar = bar == 0 ? WS_HSCROLL : WS_VSCROLL;
        if (*lParam == 0 && (style & ownBar) != 0) {
            HandleScroll(bar, *wParam);
        }
        return true;
    }
    case WM_DROPFILES:
        HandleDrop(*wParam);
        return true;
    case SM_DATA_ALLOC:
    case SM_DATA_SET_WORD:
    case SM_DATA_FINISH:
        return HandleDataBlock(message, *wParam, *lParam, result);
    default:
        return true;
    }
}

bool SWnd::HandleKeyDown(unsigned key) {
    unsigned modifiers = SKeyboard::GetModifiers();
    bool ctrl = (modifiers & SKeyboard::MODIFIER_CTRL) != 0;
    bool shift = (modifiers & SKeyboard::MODIFIER_SHIFT) != 0;
    HWND top = GetTopWindow();
    if (top != handle) {
        SendMessage(top, SM_KEY, key, handle);
        if (handle == 0) {
            return false;
        }
    }
    if (key == VK_F10_KEY && !ctrl && !shift) {
        SWnd* topWnd = FromHandle(top);
        SMenuBarKeyHandler handler = menuBarKey.load();
        if (topWnd != nullptr && topWnd->GetMenu() != nullptr && handler != nullptr &&
            handler(topWnd, topWnd->GetMenu())) {
            return false;
        }
    }
    if (key == VK_TAB && !ctrl) {
        SWnd* next = GetNextFocus(shift);
        if (next != nullptr && next != this) {
            SetFocus(next->handle);
            return false;
        }
    }
    if (key == VK_TAB && tabGroup != -1) {
        SWnd* next = GetNextInTabOrder();
        if (next != nullptr && next != this) {
            SetFocus(next->handle);
            return false;
        }
    }
    if (!shortcutsEnabled) {
        return true;
    }
    for (const Shortcut& shortcut : SHORTCUTS) {
        if (shortcut.key != key || shortcut.ctrl != ctrl || (shortcut.ctrl && shortcut.shift != shift)) {
            continue;
        }
        if ((shortcutMask & shortcut.bit) == 0) {
            break;
        }
        switch (shortcut.bit) {
        case SHORTCUT_UNDO: OnUndo(); break;
        case SHORTCUT_CUT: OnCut(); break;
        case SHORTCUT_COPY: OnCopy(); break;
        case SHORTCUT_PASTE: OnPaste(); break;
        case SHORTCUT_DELETE: OnDelete(); break;
        case SHORTCUT_SELECT_ALL: OnSelectAll(); break;
        case SHORTCUT_FIND: OnFind(); break;
        case SHORTCUT_REPLACE: OnReplace(); break;
        case SHORTCUT_GOTO: OnGoTo(); break;
        case SHORTCUT_PRINT: OnPrint(); break;
        case SHORTCUT_ESCAPE: OnEscape(); break;
        case SHORTCUT_NEW: OnNew(); break;
        case SHORTCUT_OPEN: OnOpen(); break;
        case SHORTCUT_SAVE: OnSave(); break;
        case SHORTCUT_SAVE_AS: OnSaveAs(); break;
        default: break;
        }
        break;
    }
    return true;
}

void SWnd::HandleClick(unsigned message, LPARAM lParam, bool nonClient) {
    bool down = false;
    bool isNonClient = false;
    int button = ButtonOf(message, &down, &isNonClient);
    if (button < 0) {
        return;
    }
    HWND& global = ThreadState().clickDown[nonClient ? 1 : 0][button];
    if (down) {
        global = handle;
        return;
    }
    if (global != handle) {
        global = 0;
        return;
    }
    global = 0;
    unsigned click = (nonClient ? SM_NC_LEFT_CLICK : SM_LEFT_CLICK) + static_cast<unsigned>(button);
    SendMessage(handle, click, 0, lParam);
}

void SWnd::HandleHotMove(LPARAM lParam) {
    if (hotItems.empty()) {
        return;
    }
    SRect window = GetWindowRect();
    int x = PointParamX(lParam) - window.left;
    int y = PointParamY(lParam) - window.top;
    int index = -1;
    for (size_t i = 0; i < hotItems.size(); ++i) {
        if (hotItems[i].Contains(SPoint{x, y})) {
            index = static_cast<int>(i);
            break;
        }
    }
    if (hotIndex == -2) {
        hotIndex = index;
        TrackMouseEvent(TME_NONCLIENT | TME_LEAVE, handle);
        OnHotEnter(index, x, y, index);
    } else if (index == hotIndex) {
        OnHotMove(index, x, y, index);
    } else {
        int old = hotIndex;
        hotIndex = index;
        OnHotLeave(old, x, y, old);
        OnHotEnter(index, x, y, index);
    }
}

void SWnd::HandleScroll(int bar, WPARAM wParam) {
    ScrollBar& scroll = scrollBars[bar];
    int old = scroll.position;
    int position = old;
    switch (wParam & 0xFFFF) {
    case SB_LINEUP: position = old - lineStep[bar]; break;
    case SB_LINEDOWN: position = old + lineStep[bar]; break;
    case SB_PAGEUP: position = old - pageStep[bar]; break;
    case SB_PAGEDOWN: position = old + pageStep[bar]; break;
    case SB_THUMBPOSITION:
    case SB_THUMBTRACK: position = static_cast<int16_t>((wParam >> 16) & 0xFFFF); break;
    case SB_TOP: position = scroll.minimum; break;
    case SB_BOTTOM: position = scroll.maximum; break;
    default: return;
    }
    int grid = std::max(scrollGrid[bar], 1);
    if (grid > 1) {
        int rounded = position / grid * grid;
        position = rounded > position ? rounded - grid : rounded;
    }
    position = std::clamp(position, scroll.minimum, std::max(scroll.minimum, scroll.maximum));
    if (position == old) {
        return;
    }
    scroll.position = position;
    WPARAM positions = (static_cast<WPARAM>(old) & 0xFFFF) |
                       ((static_cast<WPARAM>(position) & 0xFFFF) << 16);
    SendMessage(handle, bar == 0 ? SM_HSCROLLED : SM_VSCROLLED, positions, 0);
    Invalidate();
}

void SWnd::HandleDrop(WPARAM wParam) {
    const SStringArray* dropped = reinterpret_cast<const SStringArray*>(wParam);
    if (dropped == nullptr) {
        return;
    }
    SStringArray files;
    for (int i = 0; i < dropped->GetCount(); ++i) {
        SString path = dropped->GetText(i);
        std::error_code error;
        if (!path.IsEmpty() && path.GetAt(path.GetLength() - 1) != '/' &&
            std::filesystem::is_directory(path.c_str(), error)) {
            path += "/";
        }
        files.Add(path);
    }
    SendMessage(handle, SM_DROP_FILES, reinterpret_cast<WPARAM>(&files), 0);
}

void SWnd::SetScrollRange(int bar, int minimum, int maximum) {
    if (bar < 0 || bar > 1) {
        return;
    }
    scrollBars[bar].minimum = minimum;
    scrollBars[bar].maximum = maximum;
    scrollBars[bar].position = std::clamp(scrollBars[bar].position, minimum,
                                          std::max(minimum, maximum));
}

void SWnd::SetScrollPosition(int bar, int position) {
    if (bar < 0 || bar > 1) {
        return;
    }
    ScrollBar& scroll = scrollBars[bar];
    scroll.position = std::clamp(position, scroll.minimum, std::max(scroll.minimum, scroll.maximum));
}

int SWnd::GetScrollPosition(int bar) const {
    return bar == 0 || bar == 1 ? scrollBars[bar].position : 0;
}

void SWnd::SetScrollSteps(int bar, int line, int page, int grid) {
    if (bar < 0 || bar > 1) {
        return;
    }
    lineStep[bar] = line;
    pageStep[bar] = page;
    scrollGrid[bar] = std::max(grid, 1);
}

bool SWnd::HandleDataBlock(unsigned message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
    *result = 0;
    if (message == SM_DATA_ALLOC) {
        if (lParam < 0 || lParam > (1 << 28)) {
            return false;
        }
        auto block = std::make_unique<SDataBlock>();
        block->tag = wParam;
        block->size = static_cast<int>(lParam);
        block->bytes.assign(static_cast<size_t>((lParam / 4 + 1) * 4 + 16), 0);
        size_t row = 0;
        while (row < dataBlocks.size() && dataBlocks[row] != nullptr) {
            ++row;
        }
        if (row == dataBlocks.size()) {
            dataBlocks.push_back(nullptr);
        }
        dataBlocks[row] = std::move(block);
        *result = static_cast<LRESULT>(row + 1);
        return false;
    }
    size_t row = static_cast<size_t>(wParam) - 1;
    if (wParam == 0 || row >= dataBlocks.size() || dataBlocks[row] == nullptr) {
        return false;
    }
    uint32_t value = static_cast<uint32_t>(lParam);
    if (message == SM_DATA_SET_WORD) {
        uint8_t* bytes = dataBlocks[row]->bytes.data();
        bytes[0] = static_cast<uint8_t>(value >> 24);
        bytes[1] = static_cast<uint8_t>(value >> 16);
        bytes[2] = static_cast<uint8_t>(value >> 8);
        bytes[3] = static_cast<uint8_t>(value);
        *result = 1;
        return false;
    }
    std::unique_ptr<SDataBlock> block = std::move(dataBlocks[row]);
    block->value = value;
    SendMessage(handle, SM_DATA_READY, reinterpret_cast<WPARAM>(block.get()), 0);
    *result = 1;
    return false;
}
