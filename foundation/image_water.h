// SImageWater: the ripple effect that the cover shows under the mouse.
#pragma once

#include <memory>

#include "foundation/image.h"

// The water ripple over a picture: two height fields, where each step
// averages the neighbours, subtracts the older field and damps, and each
// pixel of the frame is taken from the source displaced by the slope.
class SImageWater {
public:
    SImageWater() = default;
    virtual ~SImageWater();

    // Both fields of width x height, flat; false for a side below 1.
    bool Create(int width, int height);
    void Destroy();
    // Raises a round blob centred on x, y; height is its peak.
    void Drop(int x, int y, int radius, int height);
    // Computes the next frame from source (the field's size, unchanged) into
    // target, which is made to the same size and format. Returns false when
    // the water has come to rest: the target then equals the source.
    bool Step(const SImage& source, SImage* target);
    bool IsStill() const { return isStill; }
    int GetWidth() const { return width; }
    int GetHeight() const { return height; }

private:
    int width = 0;
    int height = 0;
    int damping = 5; // each step keeps (32 - 1) / 32 of the height
    std::unique_ptr<int[]> current;
    std::unique_ptr<int[]> previous;
    bool isStill = true;
};
