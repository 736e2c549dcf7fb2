// Reading snapshots in tests: how many pixels of a rectangle are close to a
// colour, and the first column where a colour shows. Colours are 0xRRGGBB.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "foundation/geometry.h"
#include "foundation/image.h"

inline bool NearRgb(uint32_t a, uint32_t b, int tolerance) {
    int sum = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        sum +=
            std::abs(static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF));
    }
    return sum <= tolerance;
}

inline int CountNear(const SImage& shot, const SRect& rect, uint32_t rgb, int tolerance = 60) {
    int count = 0;
    for (int y = rect.top; y < rect.bottom; ++y) {
        for (int x = rect.left; x < rect.right; ++x) {
            count += NearRgb(shot.GetPixel(x, y) & 0xFFFFFF, rgb, tolerance) ? 1 : 0;
        }
    }
    return count;
}

// The leftmost column of rect holding a pixel close to rgb, -1 for none.
inline int FirstColumn(const SImage& shot, const SRect& rect, uint32_t rgb, int tolerance = 60) {
    for (int x = rect.left; x < rect.right; ++x) {
        if (CountNear(shot, SRect{x, rect.top, x + 1, rect.bottom}, rgb, tolerance) > 0) {
            return x;
        }
    }
    return -1;
}
