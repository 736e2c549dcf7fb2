// A started toolkit on the headless platform for each test, a window
// that records the messages its OnMessage sees, and one that runs steps
// from inside a modal loop.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "foundation/keyboard.h"
#include "foundation/network.h"
#include "toolkit/platform/events.h"
#include "toolkit/platform/headless/headless_platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

class ToolkitTest : public ::testing::Test {
protected:
    void SetUp() override {
        SetPlatform(new SHeadlessPlatform);
        ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
        platform = static_cast<SHeadlessPlatform*>(GetPlatform());
    }
    void TearDown() override {
        ToolkitEnd();
        SHeadlessPlatform::UseFakeClock(false);
    }
    SHeadlessPlatform* platform = nullptr;
};

// Records (name, message) of the messages it handles; names tell windows
// apart in a shared log.
class RecordingWnd : public SWnd {
public:
    struct Entry {
        int name;
        unsigned message;
        WPARAM wParam;
        LPARAM lParam;
    };
    explicit RecordingWnd(std::vector<Entry>* log = nullptr, int name = 0)
        : log(log != nullptr ? log : &ownLog), name(name) {}

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        log->push_back(Entry{name, message, wParam, lParam});
        if (message == SM_CREATE) {
            return refuseCreate ? 1 : 0;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    // The messages of this window, in order, keeping only those in filter
    // (all when empty).
    std::vector<unsigned> Seen(std::vector<unsigned> filter = {}) const {
        std::vector<unsigned> result;
        for (const Entry& entry : *log) {
            if (entry.name != name) {
                continue;
            }
            if (filter.empty() ||
                std::find(filter.begin(), filter.end(), entry.message) != filter.end()) {
                result.push_back(entry.message);
            }
        }
        return result;
    }
    int Count(unsigned message) const { return static_cast<int>(Seen({message}).size()); }

    bool refuseCreate = false;
    std::vector<Entry>* log;
    std::vector<Entry> ownLog;
    int name;
};

// Runs a step from inside a modal loop: each posted WM_USER runs the next
// step in order.
class Stepper : public SWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_USER && next < steps.size()) {
            steps[next++]();
            return 0;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    void Post(std::function<void()> step) {
        steps.push_back(std::move(step));
        PostMessage(GetHandle(), WM_USER, 0, 0);
    }
    std::vector<std::function<void()>> steps;
    size_t next = 0;
};

inline SRect Rect(int left, int top, int right, int bottom) {
    return SRect{left, top, right, bottom};
}

// Creates wnd with the given bounds: a visible child of parent, or a
// top-level window when parent is 0.
inline bool Make(SWnd& wnd, const char* title, SRect bounds, HWND parent = 0,
                 unsigned style = WS_VISIBLE) {
    return wnd.Create(title, style, 0, &bounds, parent);
}
