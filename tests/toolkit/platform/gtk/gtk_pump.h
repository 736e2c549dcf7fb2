// The window tests' loop on a virtual X display: runs the toolkit's
// messages until a condition holds.
#pragma once

#include <chrono>
#include <thread>

#include "foundation/message.h"
#include "toolkit/platform/gtk/gtk_platform.h"

// Runs the loop until done says so or seconds pass; false on time out.
template <typename Done> bool PumpUntil(Done done, int seconds = 5) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    SMessage message;
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        GtkSync();
        if (PeekMessage(&message, true)) {
            DispatchMessage(&message);
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    return true;
}
