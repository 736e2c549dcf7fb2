// The arithmetic of the media control's ticker, with no window: the scroll
// offsets that move at a speed in pixels per second, kept exactly in
// doubles and shown as whole pixels, and the wrap that brings a text that
// has left the control back in at its far edge. SMediaCtrl runs it from a
// window timer and repaints when Step says so.
#pragma once

#include <cstdint>

#include "foundation/geometry.h"

class SMediaTicker {
public:
    // The control as the ticker sees it: client size, margins and the
    // measured size of the whole text.
    struct Frame {
        int clientWidth = 0;
        int clientHeight = 0;
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        int contentWidth = 0;
        int contentHeight = 0;
    };

    // Sets the speeds (pixels per second). Unless forced, an axis on which
    // the text fits the inner rectangle gets speed 0. With both speeds 0
    // the ticker stops and the result is false. Otherwise it starts at
    // start, or with looping on at the far edge of the scrolling axis
    // (which becomes the wrapping axis), and the result is true: the
    // caller runs its timer. now is in milliseconds.
    bool Start(double speedX, double speedY, bool force, const SPoint* start, const Frame& frame,
               uint64_t now);
    // Stops, with the offsets back at 0.
    void Stop();
    // Moves by the time since the last step; true when the whole-pixel
    // offsets changed, so that a repaint is due.
    bool Step(uint64_t now, const Frame& frame);

    bool IsOn() const { return on; }
    int GetOffsetX() const { return offsetX; }
    int GetOffsetY() const { return offsetY; }
    // Offsets set from outside (the text was replaced): the ticker stops.
    void SetOffsets(int x, int y);
    // In pixels per millisecond.
    double GetSpeedX() const { return speedX; }
    double GetSpeedY() const { return speedY; }
    bool loop = true;     // the text wraps round
    bool vertical = true; // the axis that wraps

private:
    bool on = false;
    int offsetX = 0;
    int offsetY = 0;
    double exactX = 0;
    double exactY = 0;
    double speedX = 0;
    double speedY = 0;
    uint64_t lastTick = 0;
};
