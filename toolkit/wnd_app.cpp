#include "toolkit/wnd_app.h"

#include <cmath>
#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <iterator>
#include <memory>
#include <unistd.h>
#include <vector>

#include "foundation/keyboard.h"
#include "foundation/network.h"
#include "foundation/path.h"
#include "foundation/random.h"
#include "foundation/timer.h"
#include "toolkit/draw.h"
#include "toolkit/platform/platform.h"
#include "toolkit/sys_colors.h"

namespace {

// Process-wide state; written by ToolkitStart and ToolkitEnd on the main
// thread while no worker runs.
struct ToolkitState {
    bool started = false;
    void* instance = nullptr;
    int showCommand = 0;
    bool noCom = false;
    bool socketsStarted = false;
    unsigned processId = 0;
    SString programPath;
    SString programFolder;
    std::vector<HWND> dialogHandles;
    SDialogMessageHook dialogHook = nullptr;
    std::unique_ptr<SWndApp> helperWindow;
    std::unique_ptr<SFont> fonts[6]; // five system fonts, then the default
    int menuBarHeight = 20;
    bool hasArguments = false;
    std::vector<SString> arguments;
};

ToolkitState& State() {
    static ToolkitState state;
    return state;
}

bool PlatformWorkArea(SRect* area) {
    return GetPlatform()->GetWorkArea(area);
}

unsigned PlatformModifiers() {
    return GetPlatform()->GetModifiers();
}

SString ReadLink(const char* path) {
    char buffer[4096];
    ssize_t length = readlink(path, buffer, sizeof(buffer) - 1);
    if (length <= 0) {
        return SString();
    }
    buffer[length] = 0;
    return SString(buffer);
}

// The process's own arguments after the program's name.
std::vector<SString> ProcessArguments() {
    std::ifstream in("/proc/self/cmdline", std::ios::binary);
    std::string all((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<SString> parts;
    size_t start = 0;
    while (start < all.size()) {
        size_t end = all.find('\0', start);
        if (end == std::string::npos) {
            end = all.size();
        }
        parts.emplace_back(all.substr(start, end - start).c_str());
        start = end + 1;
    }
    if (!parts.empty()) {
        parts.erase(parts.begin());
    }
    return parts;
}

bool IsKeyMessage(unsigned message, unsigned key, const SMessage& msg) {
    return msg.message == message && msg.wParam == key;
}

} // namespace

void SWndApp::StartCapture(HWND window, int button) {
    captureWindow = window;
    captureButton = button;
    SetCapture(GetHandle());
}

LRESULT SWndApp::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_MOUSEMOVE:
        if (captureWindow != 0) {
            SendMessage(captureWindow, SM_CAPTURE_MOVE, captureButton, lParam);
        }
        break;
    case WM_LBUTTONUP:
    case WM_RBUTTONUP:
        if ((message == WM_LBUTTONUP && captureButton == 1) ||
            (message == WM_RBUTTONUP && captureButton == 4)) {
            HWND old = captureWindow;
            captureWindow = 0;
            ReleaseCapture();
            if (old != 0) {
                SendMessage(old, SM_CAPTURE_UP, captureButton, lParam);
            }
        }
        break;
    case WM_CAPTURECHANGED: {
        HWND old = captureWindow;
        captureWindow = 0;
        if (old != 0) {
            SendMessage(old, SM_CAPTURE_LOST, captureButton, 0);
        }
        break;
    }
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}

bool ToolkitStart(void* instance, int showCommand, bool sockets, bool /*sound*/, bool noCom) {
    ToolkitState& state = State();
    if (state.started) {
        return true;
    }
    state.socketsStarted = false;
    state.processId = static_cast<unsigned>(getpid());
    state.instance = instance;
    state.showCommand = showCommand;
    state.noCom = noCom;
    ResetThreadTable();
    if (RegisterThread() < 0) {
        return false;
    }
    InitLocale();
    // The generator of shuffled play orders, once per run.
    SeedRandomFromClock();
    SetWorkAreaHook(PlatformWorkArea);
    SKeyboard::SetModifierSource(PlatformModifiers);
    state.programPath = ReadLink("/proc/self/exe");
    SPath path(state.programPath.c_str());
    state.programFolder = path.GetFolderPath();
    // The desktop's interface font and colours from its theme, else the
    // classic ones; fontconfig finds the face.
    SString face = "Sans";
    double points = 9;
    if (!GetPlatform()->GetInterfaceFont(&face, &points)) {
        face = "Sans";
        points = 9;
    }
    for (int i = 0; i < 5; ++i) {
        state.fonts[i] = std::make_unique<SFont>(face.c_str(), PointsToHeight(points),
                                                 i == 0 ? FONT_BOLD : 0);
    }
    state.fonts[5] = std::make_unique<SFont>(face.c_str(), PointsToHeight(points - 1), 0);
    state.menuBarHeight = TextMetrics(state.fonts[2].get()).height + 6;
    ResetSysColors();
    GetPlatform()->LoadThemeColors();
    state.helperWindow = std::make_unique<SWndApp>();
    state.helperWindow->Create("", 0, 0, nullptr, 0);
    state.socketsStarted = sockets;
    state.started = true;
    return true;
}

void ToolkitEnd() {
    ToolkitState& state = State();
    if (!state.started) {
        return;
    }
    state.socketsStarted = false;
    state.helperWindow.reset();
    state.dialogHandles.clear();
    for (auto& font : state.fonts) {
        font.reset();
    }
    state.programPath.Empty();
    state.programFolder.Empty();
    SetWorkAreaHook(nullptr);
    SKeyboard::SetModifierSource(nullptr);
    ResetThreadTable();
    state.processId = 0;
    state.instance = nullptr;
    state.started = false;
}

bool IsToolkitStarted() {
    return State().started;
}

void DispatchLoopMessage(SMessage* message) {
    ToolkitState& state = State();
    if (!state.dialogHandles.empty() && state.dialogHook != nullptr) {
        std::vector<HWND> dialogs = state.dialogHandles;
        for (HWND dialog : dialogs) {
            if (dialog != 0 && state.dialogHook(dialog, message)) {
                return;
            }
        }
    }
    DispatchMessage(message);
}

int RunLoop(bool* run, SIdleFunction idle, void* argument) {
    bool keepRunning = true;
    if (run == nullptr) {
        run = &keepRunning;
    }
    SMessage message;
    for (;;) {
        if (*run || idle == nullptr) {
            if (!GetMessage(&message)) {
                return message.message == WM_QUIT ? static_cast<int>(message.wParam) : -1;
            }
            DispatchLoopMessage(&message);
            continue;
        }
        if (PeekMessage(&message, true)) {
            if (message.message == WM_QUIT) {
                return static_cast<int>(message.wParam);
            }
            DispatchLoopMessage(&message);
            continue;
        }
        idle(argument);
    }
}

int RunModalLoop(SWnd* window, bool* run, SIdleFunction idle, void* argument) {
    bool keepRunning = true;
    if (run == nullptr) {
        run = &keepRunning;
    }
    SMessage message;
    while (window != nullptr && window->GetHandle() != 0 && window->IsModal()) {
        bool fetched = false;
        if (*run || idle == nullptr) {
            fetched = GetMessage(&message) || message.message == WM_QUIT;
            if (!fetched) {
                break; // the thread has no queue
            }
        } else {
            fetched = PeekMessage(&message, true);
            if (!fetched) {
                idle(argument);
                continue;
            }
        }
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        if (State().dialogHandles.empty()) {
            if (window->enterKey && IsKeyMessage(WM_KEYDOWN, VK_RETURN, message)) {
                SendMessage(window->GetHandle(), SM_OK, 0, 1);
            } else if (window->escapeKey && IsKeyMessage(WM_KEYDOWN, VK_ESCAPE, message)) {
                SendMessage(window->GetHandle(), SM_CANCEL, 0, 1);
            }
        }
        DispatchLoopMessage(&message);
    }
    return window != nullptr ? window->modalResult : 0;
}

void FlushInput() {
    RemoveMessages(WM_KEYFIRST, WM_KEYLAST);
    RemoveMessages(WM_MOUSEFIRST, WM_MOUSELAST);
    RemoveMessages(WM_NCMOUSEMOVE, WM_NCMBUTTONUP);
}

int AddDialogHandle(HWND hwnd) {
    std::vector<HWND>& list = State().dialogHandles;
    for (size_t i = 0; i < list.size(); ++i) {
        if (list[i] == hwnd) {
            return static_cast<int>(i);
        }
    }
    list.push_back(hwnd);
    return static_cast<int>(list.size()) - 1;
}

void RemoveDialogHandle(HWND hwnd) {
    std::erase(State().dialogHandles, hwnd);
}

int GetDialogHandleCount() {
    return static_cast<int>(State().dialogHandles.size());
}

void SetDialogMessageHook(SDialogMessageHook hook) {
    State().dialogHook = hook;
}

SString GetCommandLineArgument(int index, bool unquote) {
    ToolkitState& state = State();
    std::vector<SString> arguments = state.hasArguments ? state.arguments : ProcessArguments();
    if (index < 0 || index >= static_cast<int>(arguments.size())) {
        return SString();
    }
    SString result = arguments[index];
    if (unquote) {
        result.Unquote('"');
    }
    return result;
}

void SetCommandLineArguments(const SStringArray* arguments) {
    ToolkitState& state = State();
    state.arguments.clear();
    state.hasArguments = arguments != nullptr;
    for (int i = 0; arguments != nullptr && i < arguments->GetCount(); ++i) {
        state.arguments.push_back(arguments->GetText(i));
    }
}

int CountProgramInstances(const char* path) {
    SString wanted = path != nullptr && *path != 0 ? SString(path) : State().programPath;
    if (wanted.IsEmpty()) {
        wanted = ReadLink("/proc/self/exe");
    }
    DIR* folder = opendir("/proc");
    if (folder == nullptr) {
        return 0;
    }
    int count = 0;
    while (dirent* entry = readdir(folder)) {
        const char* name = entry->d_name;
        if (*name < '1' || *name > '9') {
            continue;
        }
        SString link = ReadLink((SString("/proc/") + name + "/exe").c_str());
        if (!link.IsEmpty() && link.CompareNoCase(wanted.c_str()) == 0) {
            ++count;
        }
    }
    closedir(folder);
    return count;
}

void* GetInstance() {
    return State().instance;
}

unsigned GetProcessId() {
    return State().processId;
}

SString GetProgramPath() {
    return State().programPath;
}

SString GetProgramFolder() {
    return State().programFolder;
}

SWndApp* GetHelperWindow() {
    return State().helperWindow.get();
}

void* GetSound() {
    return nullptr;
}

SFont* GetDefaultFont() {
    return State().fonts[5].get();
}

int GetMenuBarHeight() {
    return State().menuBarHeight;
}

SFont* GetSystemFont(int index) {
    return index >= 0 && index < 5 ? State().fonts[index].get() : nullptr;
}
