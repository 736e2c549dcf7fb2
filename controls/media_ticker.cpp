#include "controls/media_ticker.h"

#include <algorithm>
#include <cmath>

bool SMediaTicker::Start(double newSpeedX, double newSpeedY, bool force, const SPoint* start,
                         const Frame& frame, uint64_t now) {
    int innerWidth = std::max(0, frame.clientWidth - frame.left - frame.right);
    int innerHeight = std::max(0, frame.clientHeight - frame.top - frame.bottom);
    // A speed that is no number stands still.
    newSpeedX = std::isfinite(newSpeedX) ? newSpeedX : 0;
    newSpeedY = std::isfinite(newSpeedY) ? newSpeedY : 0;
    if (!force) {
        // A short title stands still.
        if (frame.contentWidth <= innerWidth) {
            newSpeedX = 0;
        }
        if (frame.contentHeight <= innerHeight) {
            newSpeedY = 0;
        }
    }
    speedX = newSpeedX / 1000.0;
    speedY = newSpeedY / 1000.0;
    if (speedX == 0 && speedY == 0) {
        Stop();
        return false;
    }
    if (start != nullptr) {
        offsetX = start->x;
        offsetY = start->y;
    } else if (loop) {
        vertical = speedY != 0;
        if (vertical) {
            offsetY = frame.clientHeight - frame.bottom - frame.top;
        } else {
            offsetX = frame.clientWidth - frame.right - frame.left;
        }
    }
    exactX = offsetX;
    exactY = offsetY;
    lastTick = now;
    on = true;
    return true;
}

void SMediaTicker::Stop() {
    on = false;
    offsetX = offsetY = 0;
    exactX = exactY = 0;
}

void SMediaTicker::SetOffsets(int x, int y) {
    on = false;
    offsetX = x;
    offsetY = y;
    exactX = x;
    exactY = y;
}

bool SMediaTicker::Step(uint64_t now, const Frame& frame) {
    if (!on) {
        return false;
    }
    double elapsed = now >= lastTick ? static_cast<double>(now - lastTick) : 0.0;
    lastTick = now;
    // A ticker left running without a loop stops short of the int range.
    constexpr double LIMIT = 1e9;
    exactX = std::clamp(exactX + elapsed * speedX, -LIMIT, LIMIT);
    exactY = std::clamp(exactY + elapsed * speedY, -LIMIT, LIMIT);
    int newX = static_cast<int>(std::trunc(exactX));
    int newY = static_cast<int>(std::trunc(exactY));
    if (newX == offsetX && newY == offsetY) {
        return false;
    }
    offsetX = newX;
    offsetY = newY;
    if (loop) {
        if (!vertical && frame.contentWidth + offsetX < 0) {
            offsetX = frame.clientWidth - frame.right - frame.left;
            exactX = offsetX;
        } else if (vertical && frame.contentHeight + offsetY < frame.top) {
            // The restart lies one margin lower than the first start.
            offsetY = frame.clientHeight - frame.bottom;
            exactY = offsetY;
        }
    }
    return true;
}
