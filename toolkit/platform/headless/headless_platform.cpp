#include "toolkit/platform/headless/headless_platform.h"

#include <algorithm>
#include <atomic>
#include <cairo.h>

#include "toolkit/platform/events.h"
#include "toolkit/wnd.h"

namespace {

std::atomic<uint64_t> fakeNow{1000000};

uint64_t FakeClock() {
    return fakeNow.load();
}

} // namespace

SHeadlessPlatform::SHeadlessPlatform() = default;
SHeadlessPlatform::~SHeadlessPlatform() {
    for (auto& [hwnd, screen] : screens) {
        cairo_surface_destroy(screen);
    }
}

bool SHeadlessPlatform::CreateSurface(HWND hwnd, const SRect& rect, const char* title) {
    std::lock_guard<std::mutex> lock(mutex);
    Surface& surface = surfaces[hwnd];
    surface.rect = rect;
    surface.title = title;
    return true;
}

bool SHeadlessPlatform::CreatePopupSurface(HWND hwnd, const SRect& rect) {
    std::lock_guard<std::mutex> lock(mutex);
    Surface& surface = surfaces[hwnd];
    surface.rect = rect;
    surface.popup = true;
    return true;
}

void SHeadlessPlatform::DestroySurface(HWND hwnd) {
    std::lock_guard<std::mutex> lock(mutex);
    auto found = surfaces.find(hwnd);
    if (found != surfaces.end()) {
        workArea.bottom += found->second.reserved; // a destroyed bar keeps nothing
    }
    surfaces.erase(hwnd);
    auto screen = screens.find(hwnd);
    if (screen != screens.end()) {
        cairo_surface_destroy(screen->second);
        screens.erase(screen);
    }
    if (captured == hwnd) {
        captured = 0;
    }
    for (auto it = hostedChildren.begin(); it != hostedChildren.end();) {
        it = it->second.top == hwnd ? hostedChildren.erase(it) : std::next(it);
    }
}

void SHeadlessPlatform::ShowSurface(HWND hwnd, int command) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(hwnd);
    if (it != surfaces.end()) {
        it->second.visible = command != SW_HIDE;
        it->second.showCommand = command;
    }
}

void SHeadlessPlatform::MoveSurface(HWND hwnd, const SRect& rect) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(hwnd);
    if (it != surfaces.end()) {
        it->second.rect = rect;
    }
}

void SHeadlessPlatform::SetSurfaceTitle(HWND hwnd, const char* title) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(hwnd);
    if (it != surfaces.end()) {
        it->second.title = title;
    }
}

void SHeadlessPlatform::SetSurfaceFullScreen(HWND hwnd, bool on) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(hwnd);
    if (it != surfaces.end()) {
        it->second.fullScreen = on;
    }
}

void SHeadlessPlatform::SetSurfaceAlpha(HWND hwnd, int alpha) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(hwnd);
    if (it != surfaces.end()) {
        it->second.alpha = alpha;
    }
}

void SHeadlessPlatform::InvalidateSurface(HWND hwnd, const SRect& area) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(hwnd);
    if (it != surfaces.end()) {
        ++it->second.frameRequests;
        SRect& damaged = it->second.damaged;
        damaged = damaged.IsEmpty()
                      ? area
                      : SRect{std::min(damaged.left, area.left), std::min(damaged.top, area.top),
                              std::max(damaged.right, area.right),
                              std::max(damaged.bottom, area.bottom)};
    }
}

void SHeadlessPlatform::CaptureMouse(HWND hwnd) {
    captured = hwnd;
}

void SHeadlessPlatform::SetSurfaceCursor(HWND hwnd, int cursorIndex) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(hwnd);
    if (it != surfaces.end()) {
        it->second.cursor = cursorIndex;
    }
}

void SHeadlessPlatform::SetSurfaceLimits(HWND hwnd, const SSize& minimum, const SSize& maximum) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(hwnd);
    if (it != surfaces.end()) {
        it->second.minimum = minimum;
        it->second.maximum = maximum;
    }
}

void SHeadlessPlatform::ShowToolTip(HWND owner, const SRect& rect, const SImage& picture) {
    std::lock_guard<std::mutex> lock(mutex);
    toolTip.owner = owner;
    toolTip.rect = rect;
    toolTip.picture.CopyFrom(&picture);
    ++toolTip.shown;
}

void SHeadlessPlatform::HideToolTip() {
    std::lock_guard<std::mutex> lock(mutex);
    toolTip.owner = 0;
}

SHeadlessPlatform::ToolTip SHeadlessPlatform::GetToolTip() const {
    std::lock_guard<std::mutex> lock(mutex);
    ToolTip copy;
    copy.owner = toolTip.owner;
    copy.rect = toolTip.rect;
    copy.picture.CopyFrom(&toolTip.picture);
    copy.shown = toolTip.shown;
    return copy;
}

bool SHeadlessPlatform::SetClipboardText(const char* text) {
    std::lock_guard<std::mutex> lock(mutex);
    clipboard = text != nullptr ? text : "";
    clipboardFormat.Empty();
    clipboardData.clear();
    return true;
}

SString SHeadlessPlatform::GetClipboardText() {
    std::lock_guard<std::mutex> lock(mutex);
    return clipboardFormat.IsEmpty() ? clipboard : SString();
}

bool SHeadlessPlatform::SetClipboardData(const char* format, const std::vector<uint8_t>& data) {
    if (format == nullptr || *format == 0) {
        return false;
    }
    std::lock_guard<std::mutex> lock(mutex);
    clipboard.Empty();
    clipboardFormat = format;
    clipboardData = data;
    return true;
}

bool SHeadlessPlatform::GetClipboardData(const char* format, std::vector<uint8_t>* data) {
    std::lock_guard<std::mutex> lock(mutex);
    if (format == nullptr || data == nullptr || clipboardFormat.IsEmpty() ||
        clipboardFormat.Compare(format) != 0) {
        return false;
    }
    *data = clipboardData;
    return true;
}

bool SHeadlessPlatform::PressKey(unsigned code) {
    {
        std::lock_guard<std::mutex> lock(mutex);
        pressedKeys.push_back(code);
    }
    SWnd* focus = SWnd::FromHandle(GetFocus());
    if (focus != nullptr) {
        HWND top = focus->GetTopWindow();
        PlatformKey(top, WM_KEYDOWN, code);
        PlatformKey(top, WM_KEYUP, code);
    }
    return true;
}

std::vector<unsigned> SHeadlessPlatform::GetPressedKeys() const {
    std::lock_guard<std::mutex> lock(mutex);
    return pressedKeys;
}

bool SHeadlessPlatform::GetScreenRect(SRect* rect) {
    std::lock_guard<std::mutex> lock(mutex);
    if (rect == nullptr) {
        return false;
    }
    *rect = screen;
    return true;
}

bool SHeadlessPlatform::GetWorkArea(SRect* rect) {
    std::lock_guard<std::mutex> lock(mutex);
    if (rect == nullptr) {
        return false;
    }
    *rect = workArea;
    return true;
}

unsigned SHeadlessPlatform::GetModifiers() {
    std::lock_guard<std::mutex> lock(mutex);
    return modifiers;
}

SPoint SHeadlessPlatform::GetPointer() {
    std::lock_guard<std::mutex> lock(mutex);
    return pointer;
}

void SHeadlessPlatform::SetModifiers(unsigned value) {
    std::lock_guard<std::mutex> lock(mutex);
    modifiers = value;
}

SDockState SHeadlessPlatform::DockSurface(HWND hwnd, int height, SRect* placed) {
    std::lock_guard<std::mutex> lock(mutex);
    auto found = surfaces.find(hwnd);
    if (found == surfaces.end() || height <= 0 || dockSupport == SDockState::NONE) {
        return SDockState::NONE;
    }
    Surface& surface = found->second;
    // Docked again: its own space first goes back to the work area.
    workArea.bottom += surface.reserved;
    surface.reserved = 0;
    SRect rect{workArea.left, workArea.bottom - height, workArea.right, workArea.bottom};
    surface.rect = rect;
    surface.dock = dockSupport;
    if (dockSupport == SDockState::RESERVED) {
        surface.reserved = height;
        workArea.bottom -= height;
    }
    if (placed != nullptr) {
        *placed = rect;
    }
    return dockSupport;
}

bool SHeadlessPlatform::UndockSurface(HWND hwnd) {
    std::lock_guard<std::mutex> lock(mutex);
    auto found = surfaces.find(hwnd);
    if (found == surfaces.end() || found->second.dock == SDockState::NONE) {
        return false;
    }
    workArea.bottom += found->second.reserved;
    found->second.reserved = 0;
    found->second.dock = SDockState::NONE;
    found->second.visible = false;
    return true;
}

void SHeadlessPlatform::SetDockSupport(SDockState support) {
    std::lock_guard<std::mutex> lock(mutex);
    dockSupport = support;
}

void SHeadlessPlatform::SetWorkArea(const SRect& area) {
    std::lock_guard<std::mutex> lock(mutex);
    workArea = area;
}

void SHeadlessPlatform::SetScreenRect(const SRect& area) {
    std::lock_guard<std::mutex> lock(mutex);
    screen = area;
}

void SHeadlessPlatform::MoveMouse(HWND top, int x, int y, unsigned keyFlags) {
    SWnd* wnd = SWnd::FromHandle(top);
    if (wnd != nullptr) {
        SRect window = wnd->GetWindowRect();
        SPoint screenPoint{window.left + x, window.top + y};
        std::lock_guard<std::mutex> lock(mutex);
        pointer = screenPoint;
    }
    PlatformMouse(top, WM_MOUSEMOVE, x, y, keyFlags);
    DispatchPending();
}

void SHeadlessPlatform::Press(HWND top, int x, int y, unsigned downMessage) {
    unsigned flags = downMessage == WM_LBUTTONDOWN   ? MK_LBUTTON
                     : downMessage == WM_RBUTTONDOWN ? MK_RBUTTON
                                                     : MK_MBUTTON;
    MoveMouse(top, x, y, flags);
    PlatformMouse(top, downMessage, x, y, flags);
    DispatchPending();
}

void SHeadlessPlatform::Release(HWND top, int x, int y, unsigned upMessage) {
    unsigned flags = upMessage == WM_LBUTTONUP   ? MK_LBUTTON
                     : upMessage == WM_RBUTTONUP ? MK_RBUTTON
                                                 : MK_MBUTTON;
    MoveMouse(top, x, y, flags);
    PlatformMouse(top, upMessage, x, y, 0);
    DispatchPending();
}

void SHeadlessPlatform::Click(HWND top, int x, int y) {
    Press(top, x, y);
    Release(top, x, y);
}

void SHeadlessPlatform::Wheel(HWND top, int x, int y, int delta, bool horizontal) {
    MoveMouse(top, x, y);
    PlatformWheel(top, x, y, delta, horizontal, 0);
    DispatchPending();
}

void SHeadlessPlatform::Key(HWND top, unsigned code, unsigned keyModifiers) {
    unsigned old = GetModifiers();
    SetModifiers(keyModifiers);
    PlatformKey(top, WM_KEYDOWN, code);
    DispatchPending();
    PlatformKey(top, WM_KEYUP, code);
    DispatchPending();
    SetModifiers(old);
}

void SHeadlessPlatform::Resize(HWND top, int width, int height) {
    Surface surface;
    if (GetSurface(top, &surface)) {
        SSize kept = KeepSizeInside(SSize{width, height}, surface.minimum, surface.maximum);
        width = kept.width;
        height = kept.height;
    }
    PlatformResized(top, width, height, SIZE_RESTORED);
    DispatchPending();
}

bool SHeadlessPlatform::Snapshot(HWND top, SImage* picture) {
    Surface surface;
    if (picture == nullptr || !GetSurface(top, &surface)) {
        return false;
    }
    int width = surface.rect.Width();
    int height = surface.rect.Height();
    if (width <= 0 || height <= 0) {
        return false;
    }
    ClearDamage(top);
    cairo_surface_t* target = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* cr = cairo_create(target);
    PlatformPaint(top, cr, width, height);
    cairo_destroy(cr);
    cairo_surface_flush(target);
    bool loaded = picture->LoadSurface(target, 0, 0);
    cairo_surface_destroy(target);
    return loaded;
}

SRect SHeadlessPlatform::PresentFrame(HWND top) {
    Surface surface;
    if (!GetSurface(top, &surface) || surface.damaged.IsEmpty()) {
        return SRect();
    }
    int width = surface.rect.Width();
    int height = surface.rect.Height();
    if (width <= 0 || height <= 0) {
        return SRect();
    }
    ClearDamage(top);
    cairo_surface_t* screen = nullptr;
    {
        std::lock_guard<std::mutex> lock(mutex);
        cairo_surface_t*& kept = screens[top];
        if (kept == nullptr || cairo_image_surface_get_width(kept) != width ||
            cairo_image_surface_get_height(kept) != height) {
            if (kept != nullptr) {
                cairo_surface_destroy(kept);
            }
            kept = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
        }
        screen = cairo_surface_reference(kept);
    }
    cairo_t* cr = cairo_create(screen);
    const SRect& area = surface.damaged;
    cairo_rectangle(cr, area.left, area.top, area.Width(), area.Height());
    cairo_clip(cr);
    PlatformPaint(top, cr, width, height);
    cairo_destroy(cr);
    cairo_surface_destroy(screen);
    return area;
}

bool SHeadlessPlatform::GetScreen(HWND top, SImage* picture) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = screens.find(top);
    if (it == screens.end() || picture == nullptr) {
        return false;
    }
    cairo_surface_flush(it->second);
    return picture->LoadSurface(it->second, 0, 0);
}

void SHeadlessPlatform::ClearDamage(HWND top) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(top);
    if (it != surfaces.end()) {
        it->second.damaged = SRect();
    }
}

bool SHeadlessPlatform::GetSurface(HWND top, Surface* surface) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = surfaces.find(top);
    if (it == surfaces.end() || surface == nullptr) {
        return false;
    }
    *surface = it->second;
    return true;
}

int SHeadlessPlatform::DispatchPending() {
    int count = 0;
    SMessage message;
    while (PeekMessage(&message, true)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        DispatchMessage(&message);
        ++count;
    }
    return count;
}

void SHeadlessPlatform::UseFakeClock(bool fake) {
    SetMessageClock(fake ? FakeClock : nullptr, !fake);
}

void SHeadlessPlatform::AdvanceClock(uint64_t milliseconds) {
    fakeNow.fetch_add(milliseconds);
}

void SHeadlessPlatform::ImFocus(HWND top, bool in) {
    std::lock_guard<std::mutex> lock(mutex);
    if (in) {
        imState.focus = top;
    } else if (imState.focus == top) {
        imState.focus = 0;
    }
}

void SHeadlessPlatform::ImSetCursor(HWND /*top*/, const SRect& caret) {
    std::lock_guard<std::mutex> lock(mutex);
    imState.caret = caret;
}

void SHeadlessPlatform::ImReset(HWND /*top*/) {
    std::lock_guard<std::mutex> lock(mutex);
    ++imState.resets;
}

SHeadlessPlatform::ImState SHeadlessPlatform::GetImState() const {
    std::lock_guard<std::mutex> lock(mutex);
    return imState;
}

void SHeadlessPlatform::CommitText(HWND top, const char* text) {
    PlatformImCommit(top, text);
    DispatchPending();
}

void SHeadlessPlatform::Preedit(HWND top, const char* text, int caret) {
    PlatformImPreedit(top, text, caret);
    DispatchPending();
}

bool SHeadlessPlatform::RunChooser(HWND /*owner*/, const SChooserRequest& request,
                                   SChooserAnswer* answer) {
    SChooserAnswer given;
    {
        std::lock_guard<std::mutex> lock(mutex);
        chooserRequests.push_back(request);
        if (!chooserAnswers.empty()) {
            given = chooserAnswers.front();
            chooserAnswers.pop_front();
        }
    }
    if (answer != nullptr) {
        *answer = given;
    }
    return given.accepted;
}

void SHeadlessPlatform::QueueChooserAnswer(const SChooserAnswer& answer) {
    std::lock_guard<std::mutex> lock(mutex);
    chooserAnswers.push_back(answer);
}

std::vector<SChooserRequest> SHeadlessPlatform::GetChooserRequests() const {
    std::lock_guard<std::mutex> lock(mutex);
    return chooserRequests;
}

bool SHeadlessPlatform::HostChild(HWND owner, HWND top, void* widget) {
    std::lock_guard<std::mutex> lock(mutex);
    if (owner == 0 || surfaces.find(top) == surfaces.end()) {
        return false;
    }
    HostedChild child;
    child.top = top;
    child.widget = widget;
    hostedChildren[owner] = child;
    return true;
}

void SHeadlessPlatform::MoveHostedChild(HWND owner, const SRect& rect) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = hostedChildren.find(owner);
    if (it != hostedChildren.end()) {
        it->second.rect = rect;
        ++it->second.moves;
    }
}

void SHeadlessPlatform::ShowHostedChild(HWND owner, bool show) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = hostedChildren.find(owner);
    if (it != hostedChildren.end()) {
        it->second.visible = show;
        if (!show) {
            it->second.focused = false;
        }
    }
}

void SHeadlessPlatform::FocusHostedChild(HWND owner, bool focus) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = hostedChildren.find(owner);
    if (it != hostedChildren.end()) {
        it->second.focused = focus && it->second.visible;
    }
}

void SHeadlessPlatform::DestroyHostedChild(HWND owner) {
    std::lock_guard<std::mutex> lock(mutex);
    hostedChildren.erase(owner);
}

bool SHeadlessPlatform::GetHostedChild(HWND owner, HostedChild* child) const {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = hostedChildren.find(owner);
    if (it == hostedChildren.end()) {
        return false;
    }
    *child = it->second;
    return true;
}

bool SHeadlessPlatform::AddTrayIcon(int tray, const SImage& icon, const char* iconName,
                                    const char* tip) {
    std::lock_guard<std::mutex> lock(mutex);
    if (!trayAvailable) {
        return false;
    }
    TrayIcon& record = trayIcons[tray];
    record.icon.Empty();
    record.icon.CopyFrom(&icon);
    record.iconName = iconName != nullptr ? iconName : "";
    record.tip = tip != nullptr ? tip : "";
    return true;
}

void SHeadlessPlatform::SetTrayIcon(int tray, const SImage& icon, const char* iconName) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = trayIcons.find(tray);
    if (it != trayIcons.end()) {
        it->second.icon.Empty();
        it->second.icon.CopyFrom(&icon);
        it->second.iconName = iconName != nullptr ? iconName : "";
    }
}

void SHeadlessPlatform::SetTrayTip(int tray, const char* tip) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = trayIcons.find(tray);
    if (it != trayIcons.end()) {
        it->second.tip = tip != nullptr ? tip : "";
    }
}

void SHeadlessPlatform::SetTrayMenu(int tray, const std::vector<STrayMenuItem>& items) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = trayIcons.find(tray);
    if (it != trayIcons.end()) {
        it->second.menu = items;
        ++it->second.menuUpdates;
    }
}

bool SHeadlessPlatform::PopupTrayMenu(int tray) {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = trayIcons.find(tray);
    if (it == trayIcons.end() || !trayPopupAvailable) {
        return false;
    }
    ++it->second.popups;
    return true;
}

void SHeadlessPlatform::RemoveTrayIcon(int tray) {
    std::lock_guard<std::mutex> lock(mutex);
    trayIcons.erase(tray);
}

void SHeadlessPlatform::SetTrayAvailable(bool available) {
    std::lock_guard<std::mutex> lock(mutex);
    trayAvailable = available;
}

void SHeadlessPlatform::SetTrayPopupAvailable(bool available) {
    std::lock_guard<std::mutex> lock(mutex);
    trayPopupAvailable = available;
}

bool SHeadlessPlatform::GetTrayIcon(int tray, TrayIcon* icon) const {
    std::lock_guard<std::mutex> lock(mutex);
    auto it = trayIcons.find(tray);
    if (it == trayIcons.end()) {
        return false;
    }
    icon->icon.CopyFrom(&it->second.icon);
    icon->iconName = it->second.iconName;
    icon->tip = it->second.tip;
    icon->menu = it->second.menu;
    icon->menuUpdates = it->second.menuUpdates;
    icon->popups = it->second.popups;
    return true;
}

void SHeadlessPlatform::TrayAction(int tray, STrayEvent event) {
    PlatformTrayEvent(tray, event);
    DispatchPending();
}

void SHeadlessPlatform::TrayPick(int tray, int id) {
    PlatformTrayCommand(tray, id);
    DispatchPending();
}
