#include "toolkit/wnd.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <string>

#include "foundation/network.h"
#include "toolkit/draw.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd_app.h"
#include "toolkit/wnd_internal.h"

// The target that binds a handle to its object.
class SWnd::Port : public SMessageTarget {
public:
    explicit Port(SWnd* wnd) : wnd(wnd) {}
    LRESULT HandleMessage(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam) override {
        return SWndProc(hwnd, message, wParam, lParam);
    }
    SWnd* wnd;
};

namespace {

std::mutex classMutex;
struct WindowClass {
    SWindowProc procedure = nullptr;
    unsigned style = 0;
};
std::map<std::string, WindowClass>& Classes() {
    static std::map<std::string, WindowClass> classes;
    return classes;
}

// The classes of the toolkit's own windows.
constexpr unsigned OWN_CLASS_STYLE = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;

std::atomic<SMenuBarPainter> menuBarPainter{nullptr};
std::atomic<SMenuBarPressHandler> menuBarPress{nullptr};

} // namespace

void SetMenuBarPainter(SMenuBarPainter painter) {
    menuBarPainter.store(painter);
}

void SetMenuBarPressHandler(SMenuBarPressHandler handler) {
    menuBarPress.store(handler);
}

ThreadWindowState& ThreadState() {
    thread_local ThreadWindowState state;
    return state;
}

bool RegisterWindowClass(const char* className, SWindowProc procedure, unsigned classStyle) {
    if (className == nullptr || *className == 0 || procedure == nullptr) {
        return false;
    }
    std::lock_guard<std::mutex> lock(classMutex);
    Classes()[className] = WindowClass{procedure, classStyle};
    return true;
}

LRESULT SWndProc(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam) {
    SWnd* wnd = SWnd::FromHandle(hwnd);
    if (wnd == nullptr) {
        return DefWindowProc(hwnd, message, wParam, lParam);
    }
    LRESULT result = 0;
    if (wnd->PreMessage(message, &wParam, &lParam, &result)) {
        result = wnd->OnMessage(message, wParam, lParam);
    }
    if (message == WM_GETFONT) {
        SWnd* still = SWnd::FromHandle(hwnd);
        if (still != nullptr) {
            result = reinterpret_cast<LRESULT>(still->font);
        }
    }
    return result;
}

LRESULT DefWindowProc(HWND hwnd, unsigned message, WPARAM wParam, LPARAM lParam) {
    SWnd* wnd = SWnd::FromHandle(hwnd);
    switch (message) {
    case WM_CLOSE:
        if (wnd != nullptr) {
            wnd->Destroy();
        }
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case SM_OK:
        if (wnd != nullptr) {
            wnd->EndModal(0);
        }
        return 0;
    case SM_CANCEL:
        if (wnd != nullptr) {
            wnd->EndModal(-1);
        }
        return 0;
    case WM_NCPAINT:
        if (wnd != nullptr && wnd->GetMenu() != nullptr && wParam != 0) {
            cairo_t* cr = reinterpret_cast<cairo_t*>(wParam);
            SRect bar{0, 0, wnd->GetWidth(), GetMenuBarHeight()};
            SMenuBarPainter painter = menuBarPainter.load();
            if (painter != nullptr) {
                painter(wnd, wnd->GetMenu(), cr, bar);
            } else {
                FillRect(cr, &bar, GetSysColor(SYS_COLOR_MENUBAR));
            }
        }
        return 0;
    case WM_SETCURSOR:
        if (wnd != nullptr) {
            GetPlatform()->SetSurfaceCursor(wnd->GetTopWindow(), 0);
        }
        return 1;
    case WM_SETTEXT:
        if (wnd != nullptr) {
            wnd->StoreText(reinterpret_cast<const char*>(lParam));
        }
        return 1;
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
        // A window that does not scroll hands the wheel to its parent.
        if (wnd != nullptr && wnd->GetParent() != 0) {
            return SendMessage(wnd->GetParent(), message, wParam, lParam);
        }
        return 0;
    case WM_NCLBUTTONDOWN:
        if (wnd != nullptr && wnd->GetMenu() != nullptr && wParam == HTMENU) {
            SMenuBarPressHandler handler = menuBarPress.load();
            if (handler != nullptr) {
                SRect frame = wnd->GetWindowRect();
                handler(wnd, wnd->GetMenu(), PointParamX(lParam) - frame.left,
                        PointParamY(lParam) - frame.top);
            }
        }
        return 0;
    default:
        (void)wParam;
        return 0;
    }
}

SWnd::SWnd() {
    GetWorkArea(&workArea);
}

SWnd::~SWnd() {
    Destroy();
}

SWnd* SWnd::FromHandle(HWND hwnd) {
    if (hwnd == 0) {
        return nullptr;
    }
    Port* found = dynamic_cast<Port*>(FindTarget(hwnd));
    return found != nullptr ? found->wnd : nullptr;
}

void SWnd::ResetState() {
    oldProc = nullptr;
    subclassed = false;
    visibleFlag = true;
    parent = 0;
    children.clear();
    rect = SRect();
    style = exStyle = 0;
    id = 0;
    shown = false;
    enabled = true;
    showState = SW_SHOWNORMAL;
    sizeKind = SIZE_RESTORED;
    anchor = 0;
    for (int i = 0; i < 2; ++i) {
        minSize[i] = maxSize[i] = minClient[i] = maxClient[i] = -1;
        lineStep[i] = 1;
        pageStep[i] = 10;
        scrollGrid[i] = 1;
        scrollBars[i] = ScrollBar();
    }
    paintDepth = 0;
    shortcutsEnabled = true;
    isModal = false;
    enterKey = escapeKey = true;
    modalResult = 0;
    caretVisible = caretShown = caretAtPosition = false;
    cursorEnabled = true;
    cursor = 0;
    hotItems.clear();
    hotIndex = -2;
    moveByDrag = moveActive = false;
    tabGroup = tabOrder = -1;
    menu = nullptr;
}

bool SWnd::Create(const char* title, unsigned windowStyle, unsigned windowExStyle,
                  const SRect* windowRect, HWND parentHandle, uintptr_t menuOrId,
                  LPARAM userData, void* /*instance*/, bool noClose) {
    return CreateWindow(nullptr, title, windowStyle, windowExStyle, windowRect, parentHandle,
                        menuOrId, userData, nullptr,
                        OWN_CLASS_STYLE | (noClose ? CS_NOCLOSE : 0u));
}

bool SWnd::CreateControl(const char* className, const char* title, unsigned windowStyle,
                         unsigned windowExStyle, const SRect* windowRect, SWnd* parentWnd,
                         uintptr_t controlId, LPARAM userData) {
    WindowClass windowClass;
    {
        std::lock_guard<std::mutex> lock(classMutex);
        auto it = Classes().find(className != nullptr ? className : "");
        if (it == Classes().end()) {
            return false;
        }
        windowClass = it->second;
    }
    return CreateWindow(className, title, windowStyle, windowExStyle, windowRect,
                        parentWnd != nullptr ? parentWnd->handle : 0, controlId, userData,
                        windowClass.procedure, windowClass.style);
}

bool SWnd::CreateWindow(const char* /*className*/, const char* title, unsigned windowStyle,
                        unsigned windowExStyle, const SRect* windowRect, HWND parentHandle,
                        uintptr_t windowId, LPARAM userData, SWindowProc classProc,
                        unsigned windowClassStyle) {
    if (handle != 0) {
        return false;
    }
    ResetState();
    SWnd* parentWnd = nullptr;
    if (parentHandle != 0) {
        parentWnd = FromHandle(parentHandle);
        if (parentWnd == nullptr || parentWnd->threadId != GetCurrentThreadId()) {
            return false;
        }
        tabOrder = static_cast<int>(parentWnd->children.size());
    }
    bool showAfter = (windowStyle & WS_VISIBLE) != 0;
    style = windowStyle & ~WS_VISIBLE;
    style |= parentWnd == nullptr ? WS_POPUP : WS_CHILD;
    exStyle = windowExStyle;
    classStyle = windowClassStyle;
    enabled = (style & WS_DISABLED) == 0;
    ComputeFrameFlags();
    if (RegisterThread() < 0) {
        return false;
    }
    port = std::make_unique<Port>(this);
    handle = RegisterTarget(port.get());
    if (handle == 0) {
        port.reset();
        return false;
    }
    threadId = GetCurrentThreadId();
    parent = parentHandle;
    id = windowId;
    text = title != nullptr ? title : "";
    rect = windowRect != nullptr ? *windowRect : SRect();
    normalRect = rect;
    if (parentWnd != nullptr) {
        parentWnd->children.push_back(handle);
    } else if (!((exStyle & WS_EX_TOOLWINDOW) != 0
                     ? GetPlatform()->CreatePopupSurface(handle, rect)
                     : GetPlatform()->CreateSurface(handle, rect, text.c_str()))) {
        UnregisterTarget(handle);
        handle = 0;
        port.reset();
        return false;
    }
    if (parentWnd == nullptr && owner != 0) {
        GetPlatform()->SetSurfaceOwner(handle, owner);
    }
    oldProc = classProc;
    subclassed = classProc != nullptr;
    if (SWndProc(handle, SM_CREATE, 0, userData) != 0) {
        Destroy();
        return false;
    }
    ApplyLimits();
    if (showAfter && handle != 0) {
        Show(SW_SHOW);
    }
    return handle != 0;
}

bool SWnd::Destroy() {
    if (handle == 0) {
        return false;
    }
    if (shown) {
        Show(SW_HIDE);
    }
    DestroyTree();
    return true;
}

void SWnd::DestroyTree() {
    HWND own = handle;
    if (own == 0) {
        return;
    }
    SWndProc(own, WM_DESTROY, 0, 0);
    ToolTipForget(own);
    std::vector<HWND> list = children;
    for (HWND child : list) {
        SWnd* wnd = FromHandle(child);
        if (wnd != nullptr) {
            wnd->DestroyTree();
        }
    }
    if (handle != own) {
        return; // destroyed from inside its own WM_DESTROY
    }
    ThreadWindowState& state = ThreadState();
    if (state.focus == own) {
        state.focus = 0;
    }
    if (state.capture == own) {
        state.capture = 0;
        GetPlatform()->CaptureMouse(0);
    }
    if (state.tracked == own) {
        state.tracked = 0;
    }
    if (state.trackedNonClient == own) {
        state.trackedNonClient = 0;
    }
    for (auto& row : state.clickDown) {
        for (HWND& down : row) {
            if (down == own) {
                down = 0;
            }
        }
    }
    SWnd* parentWnd = FromHandle(parent);
    if (parentWnd != nullptr) {
        std::erase(parentWnd->children, own);
        parentWnd->AddDamage(&rect);
    } else if (parent == 0) {
        GetPlatform()->DestroySurface(own);
    }
    surfaceFrame.reset();
    UnregisterTarget(own);
    handle = 0;
    children.clear();
    dataBlocks.clear();
    caretShown = false;
    moveActive = false;
}

bool SWnd::Close() {
    if (handle == 0) {
        return false;
    }
    return SendMessage(handle, WM_CLOSE, 0, 0) == 0;
}

HWND SWnd::GetParent() const {
    return handle != 0 ? parent : 0;
}

HWND SWnd::GetTopWindow() const {
    const SWnd* wnd = this;
    while (wnd != nullptr && wnd->parent != 0) {
        SWnd* up = FromHandle(wnd->parent);
        if (up == nullptr) {
            break;
        }
        wnd = up;
    }
    return wnd != nullptr ? wnd->handle : 0;
}

uintptr_t SWnd::GetId() const {
    return handle != 0 ? id : 0;
}

LRESULT SWnd::DefaultProc(unsigned message, WPARAM wParam, LPARAM lParam) {
    if (oldProc != nullptr) {
        return oldProc(handle, message, wParam, lParam);
    }
    return DefWindowProc(handle, message, wParam, lParam);
}

LRESULT SWnd::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    if (message == SM_PARENT_SIZE) {
        ApplyAnchor();
    }
    return DefaultProc(message, wParam, lParam);
}

void SWnd::PrintTo(cairo_t* cr, unsigned /*flags*/) {
    PaintTree(cr);
}

void SWnd::SetBackColor(uint32_t color) {
    backColor = color;
    Invalidate();
}

uint32_t SWnd::GetBackColor() const {
    return backColor;
}

void SWnd::ComputeFrameFlags() {
    isFramed = (style & (WS_BORDER | WS_THICKFRAME)) != 0 ||
               (exStyle & (WS_EX_CLIENTEDGE | WS_EX_STATICEDGE | WS_EX_WINDOWEDGE)) != 0;
    isCaptioned = (style & WS_SYSMENU) != 0 && (style & WS_CAPTION) == WS_CAPTION;
}

bool SWnd::Show(int command) {
    if (handle == 0) {
        return false;
    }
    bool wasShown = shown;
    bool show = command != SW_HIDE;
    if (show != shown) {
        shown = show;
        SendMessage(handle, WM_SHOWWINDOW, show ? 1 : 0, 0);
    }
    if (handle == 0) {
        return wasShown;
    }
    if (parent == 0) {
        GetPlatform()->ShowSurface(handle, command);
    }
    if (command == SW_SHOWMINIMIZED || command == SW_MINIMIZE) {
        Minimize();
    } else if (command == SW_SHOWMAXIMIZED) {
        Maximize();
    } else if (command == SW_RESTORE) {
        Restore(false);
    }
    Invalidate();
    return wasShown;
}

SDockState SWnd::DockToBottomEdge(int height) {
    if (handle == 0 || parent != 0) {
        return SDockState::NONE;
    }
    SRect placed;
    SDockState state = GetPlatform()->DockSurface(handle, height, &placed);
    if (state == SDockState::NONE) {
        return state;
    }
    MoveWindow(placed);
    Show(SW_SHOWNA);
    return state;
}

bool SWnd::Undock() {
    if (handle == 0 || parent != 0) {
        return false;
    }
    if (shown) {
        Show(SW_HIDE);
    }
    return GetPlatform()->UndockSurface(handle);
}

bool SWnd::IsVisible() const {
    const SWnd* wnd = this;
    while (wnd != nullptr) {
        if (wnd->handle == 0 || !wnd->shown) {
            return false;
        }
        if (wnd->parent == 0) {
            return true;
        }
        wnd = FromHandle(wnd->parent);
    }
    return false;
}

bool SWnd::Enable(bool enable) {
    if (handle == 0) {
        return false;
    }
    bool was = enabled;
    if (enable != enabled) {
        enabled = enable;
        style = enable ? (style & ~WS_DISABLED) : (style | WS_DISABLED);
        SendMessage(handle, WM_ENABLE, enable ? 1 : 0, 0);
        Invalidate();
    }
    return !was;
}

bool SWnd::IsEnabled() const {
    return handle != 0 && enabled;
}

SString SWnd::GetText() const {
    return handle != 0 ? text : SString();
}

void SWnd::SetText(const char* value) {
    if (handle != 0) {
        SendMessage(handle, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(value != nullptr ? value : ""));
    }
}

void SWnd::StoreText(const char* value) {
    if (handle == 0) {
        return;
    }
    text = value != nullptr ? value : "";
    if (parent == 0) {
        GetPlatform()->SetSurfaceTitle(handle, text.c_str());
    }
    Invalidate();
}

void SWnd::SetRedraw(bool enable, bool repaint) {
    visibleFlag = enable;
    if (enable && repaint) {
        Invalidate();
    }
}

void SWnd::Invalidate(const SRect* area) {
    if (handle == 0 || !visibleFlag) {
        return;
    }
    AddDamage(area);
}

void SWnd::SetLayered(bool layered) {
    exStyle = layered ? (exStyle | WS_EX_LAYERED) : (exStyle & ~WS_EX_LAYERED);
}

void SWnd::SetAlpha(int value) {
    alpha = std::clamp(value, 0, 255);
    if (handle == 0) {
        return;
    }
    if (parent == 0) {
        GetPlatform()->SetSurfaceAlpha(handle, alpha);
    } else {
        Invalidate();
    }
}

void SWnd::SetCaret(int height, int width, int x, int y, bool atPosition) {
    caretHeight = height;
    caretWidth = width;
    caretX = x;
    caretY = y;
    caretAtPosition = atPosition;
    caretVisible = true;
    if (handle != 0 && GetFocus() == handle) {
        caretShown = true;
        Invalidate();
    }
}

bool SWnd::GetCursorPosition(SPoint* point) const {
    if (point == nullptr || handle == 0) {
        return false;
    }
    *point = GetPlatform()->GetPointer();
    ScreenToClient(point);
    return true;
}

void SWnd::SetMinMax(int minWidth, int minHeight, int maxWidth, int maxHeight) {
    minSize[0] = minWidth;
    minSize[1] = minHeight;
    maxSize[0] = maxWidth;
    maxSize[1] = maxHeight;
    ApplyLimits();
}

void SWnd::SetMinMaxClient(int minWidth, int minHeight, int maxWidth, int maxHeight) {
    minClient[0] = minWidth;
    minClient[1] = minHeight;
    maxClient[0] = maxWidth;
    maxClient[1] = maxHeight;
    ApplyLimits();
}

void SWnd::SetToolTip(bool enable) {
    toolTip = enable;
    if (!enable) {
        ToolTipForget(handle);
    }
}

void SWnd::SetToolTipText(const char* value) {
    toolTipText = value != nullptr ? value : "";
    if (toolTipText.IsEmpty()) {
        ToolTipForget(handle);
    }
}

bool SWnd::SetMenu(SMenu* newMenu, bool keepClientHeight) {
    if (handle == 0 || parent != 0) {
        return false;
    }
    if (newMenu == menu) {
        return true;
    }
    int clientHeight = GetClientHeight();
    menu = newMenu;
    SRect target = rect;
    if (keepClientHeight) {
        int top = 0, bottom = 0;
        GetFrameWidths(nullptr, &top, nullptr, &bottom);
        target.bottom = target.top + clientHeight + top + bottom;
    }
    if (target.Height() != rect.Height()) {
        MoveWindow(target);
    } else {
        SendClientSize();
        Invalidate();
    }
    ApplyLimits();
    return true;
}

void SWnd::SetHotItems(const std::vector<SRect>& items) {
    hotItems = items;
    hotIndex = -2;
}

// Enumeration.

int SWnd::GetChildren(SArray<SWnd*>* result, SArray<SWnd*>* exclude, bool recursive,
                      int wantedType) const {
    int count = 0;
    for (HWND child : children) {
        SWnd* wnd = FromHandle(child);
        if (wnd == nullptr) {
            continue;
        }
        bool excluded = exclude != nullptr && exclude->Find(wnd) >= 0;
        if (!excluded && (wantedType == -1 || wnd->type == wantedType)) {
            if (result != nullptr) {
                result->Add(wnd);
            }
            ++count;
        }
        if (recursive) {
            count += wnd->GetChildren(result, exclude, true, wantedType);
        }
    }
    return count;
}

int SWnd::GetChildHandles(SArray<HWND>* result, SArray<HWND>* exclude, bool recursive) const {
    int count = 0;
    for (HWND child : children) {
        if (exclude == nullptr || exclude->Find(child) < 0) {
            if (result != nullptr) {
                result->Add(child);
            }
            ++count;
        }
        SWnd* wnd = FromHandle(child);
        if (recursive && wnd != nullptr) {
            count += wnd->GetChildHandles(result, exclude, true);
        }
    }
    return count;
}

int SWnd::GetSiblings(SArray<SWnd*>* result, SArray<SWnd*>* exclude, int wantedType) const {
    SWnd* parentWnd = FromHandle(parent);
    if (parentWnd == nullptr) {
        return 0;
    }
    int count = 0;
    for (HWND child : parentWnd->children) {
        SWnd* wnd = FromHandle(child);
        if (wnd == nullptr || wnd == this || (exclude != nullptr && exclude->Find(wnd) >= 0)) {
            continue;
        }
        if (wantedType == -1 || wnd->type == wantedType) {
            if (result != nullptr) {
                result->Add(wnd);
            }
            ++count;
        }
    }
    return count;
}

int SWnd::GetOrphans(SArray<SWnd*>* result) const {
    HWND handles[4096];
    int total = GetThreadTargets(handles, 4096);
    int count = 0;
    for (int i = 0; i < total; ++i) {
        SWnd* wnd = FromHandle(handles[i]);
        if (wnd != nullptr && wnd->parent == 0 && wnd->shown) {
            if (result != nullptr) {
                result->Add(wnd);
            }
            ++count;
        }
    }
    return count;
}

SWnd* SWnd::GetNextInTabOrder() const {
    SWnd* parentWnd = FromHandle(parent);
    if (parentWnd == nullptr || tabGroup == -1) {
        return nullptr;
    }
    SWnd* next = nullptr;
    SWnd* first = nullptr;
    for (HWND child : parentWnd->children) {
        SWnd* wnd = FromHandle(child);
        if (wnd == nullptr || wnd->tabGroup != tabGroup || wnd->tabOrder < 0 || !wnd->shown ||
            !wnd->enabled) {
            continue;
        }
        if (first == nullptr || wnd->tabOrder < first->tabOrder) {
            first = wnd;
        }
        if (wnd->tabOrder > tabOrder && (next == nullptr || wnd->tabOrder < next->tabOrder)) {
            next = wnd;
        }
    }
    return next != nullptr ? next : first;
}

namespace {

// The windows of the focus order among children and below them, appended
// to list.
void CollectFocusOrder(const std::vector<HWND>& children, std::vector<SWnd*>* list) {
    std::vector<SWnd*> sorted;
    for (HWND child : children) {
        SWnd* childWnd = SWnd::FromHandle(child);
        if (childWnd != nullptr && childWnd->IsVisible() && childWnd->IsEnabled()) {
            sorted.push_back(childWnd);
        }
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](SWnd* a, SWnd* b) {
        // A child's order starts as its place among its siblings.
        return a->GetTabOrder() < b->GetTabOrder();
    });
    for (SWnd* child : sorted) {
        if (!child->IsTabStopOff() &&
            ((child->GetStyle() & WS_TABSTOP) != 0 || child->GetTabGroup() != -1 ||
             SendMessage(child->GetHandle(), SM_TAB_STOP, 0, 0) != 0)) {
            list->push_back(child);
        }
        SArray<HWND> grandChildren;
        child->GetChildHandles(&grandChildren);
        std::vector<HWND> next;
        for (int i = 0; i < grandChildren.GetCount(); ++i) {
            next.push_back(grandChildren.GetAt(i));
        }
        CollectFocusOrder(next, list);
    }
}

} // namespace

SWnd* SWnd::GetNextFocus(bool backward) const {
    SWnd* top = FromHandle(GetTopWindow());
    if (top == nullptr) {
        return nullptr;
    }
    std::vector<SWnd*> order;
    CollectFocusOrder(top->children, &order);
    if (order.empty()) {
        return nullptr;
    }
    auto here = std::find(order.begin(), order.end(), this);
    if (here == order.end()) {
        return backward ? order.back() : order.front();
    }
    size_t index = static_cast<size_t>(here - order.begin());
    size_t count = order.size();
    return order[backward ? (index + count - 1) % count : (index + 1) % count];
}

HWND SWnd::ChildFromPoint(SPoint point) const {
    for (auto it = children.rbegin(); it != children.rend(); ++it) {
        SWnd* wnd = FromHandle(*it);
        if (wnd == nullptr || !wnd->shown || !wnd->enabled || !wnd->rect.Contains(point)) {
            continue;
        }
        int left = 0, top = 0, right = 0, bottom = 0;
        wnd->GetFrameWidths(&left, &top, &right, &bottom);
        SPoint inner{point.x - wnd->rect.left - left, point.y - wnd->rect.top - top};
        if (!wnd->GetClientRect().Contains(inner)) {
            return wnd->handle;
        }
        return wnd->ChildFromPoint(inner);
    }
    return handle;
}

// Thread-wide state.

HWND GetFocus() {
    return ThreadState().focus;
}

HWND SetFocus(HWND hwnd) {
    ThreadWindowState& state = ThreadState();
    HWND old = state.focus;
    if (old == hwnd) {
        return old;
    }
    state.focus = hwnd;
    if (old != 0) {
        SendMessage(old, WM_KILLFOCUS, hwnd, 0);
    }
    if (hwnd != 0 && state.focus == hwnd) {
        SendMessage(hwnd, WM_SETFOCUS, old, 0);
    }
    return old;
}

HWND GetCapture() {
    return ThreadState().capture;
}

HWND SetCapture(HWND hwnd) {
    ThreadWindowState& state = ThreadState();
    HWND old = state.capture;
    state.capture = hwnd;
    SWnd* wnd = SWnd::FromHandle(hwnd);
    GetPlatform()->CaptureMouse(wnd != nullptr ? wnd->GetTopWindow() : 0);
    if (old != 0 && old != hwnd) {
        SendMessage(old, WM_CAPTURECHANGED, 0, static_cast<LPARAM>(hwnd));
    }
    return old;
}

void ReleaseCapture() {
    ThreadWindowState& state = ThreadState();
    HWND old = state.capture;
    if (old == 0) {
        return;
    }
    state.capture = 0;
    GetPlatform()->CaptureMouse(0);
    SendMessage(old, WM_CAPTURECHANGED, 0, 0);
}

bool TrackMouseEvent(unsigned flags, HWND hwnd) {
    ThreadWindowState& state = ThreadState();
    HWND& tracked = (flags & TME_NONCLIENT) != 0 ? state.trackedNonClient : state.tracked;
    if ((flags & TME_QUERY) != 0) {
        return hwnd != 0 && tracked == hwnd;
    }
    if ((flags & TME_LEAVE) != 0) {
        tracked = hwnd;
        return true;
    }
    return false;
}
