// SPoint, SSize and SRect: plain integer geometry in pixels, shared by the window
// core, the placement settings and the drawing code. A rectangle holds its
// left and top edges inside and its right and bottom edges outside, so the
// width is right - left.
#pragma once

struct SPoint {
    int x = 0;
    int y = 0;

    bool operator==(const SPoint& other) const = default;
};

struct SSize {
    int width = 0;
    int height = 0;

    bool operator==(const SSize& other) const = default;
};

struct SRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    bool Contains(SPoint point) const {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    bool operator==(const SRect& other) const = default;
};
