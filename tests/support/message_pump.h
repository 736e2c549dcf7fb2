// Runs this thread's message loop in tests until a condition holds.
#pragma once

#include <chrono>
#include <thread>

#include "foundation/message.h"

// Dispatches this thread's messages until done() is true; false when a
// generous 30 seconds pass first (a hung worker fails the test, not CI).
template <typename Done> bool PumpUntil(Done done) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    SMessage message;
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        if (PeekMessage(&message, true)) {
            DispatchMessage(&message);
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    return true;
}

// Lets real time pass while this thread's messages run.
inline void PumpFor(int milliseconds) {
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    PumpUntil([&] { return std::chrono::steady_clock::now() >= end; });
}
