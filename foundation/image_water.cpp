#include "foundation/image_water.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

// The slope between neighbours is divided by this to give the shift of a
// pixel, in pixels.
constexpr int REFRACTION = 8;
// Heights this small shift no pixel: the water counts as still.
constexpr int STILL_LEVEL = 2;

} // namespace

SImageWater::~SImageWater() = default;

bool SImageWater::Create(int newWidth, int newHeight) {
    Destroy();
    if (newWidth < 1 || newHeight < 1 || newWidth > IMAGE_MAX_SIDE || newHeight > IMAGE_MAX_SIDE) {
        return false;
    }
    size_t count = static_cast<size_t>(newWidth) * newHeight;
    current.reset(new (std::nothrow) int[count]());
    previous.reset(new (std::nothrow) int[count]());
    if (current == nullptr || previous == nullptr) {
        Destroy();
        return false;
    }
    width = newWidth;
    height = newHeight;
    return true;
}

void SImageWater::Destroy() {
    current.reset();
    previous.reset();
    width = 0;
    height = 0;
    isStill = true;
}

void SImageWater::Drop(int x, int y, int radius, int peak) {
    if (current == nullptr || radius < 1) {
        return;
    }
    // A smooth bump, highest in the middle and zero at the rim. The border
    // row and column stay flat: the step leaves them alone.
    for (int dy = -radius; dy <= radius; ++dy) {
        int row = y + dy;
        if (row < 1 || row >= height - 1) {
            continue;
        }
        for (int dx = -radius; dx <= radius; ++dx) {
            int column = x + dx;
            double distance = std::sqrt(static_cast<double>(dx * dx + dy * dy));
            if (column < 1 || column >= width - 1 || distance >= radius) {
                continue;
            }
            double shape = (1.0 + std::cos(M_PI * distance / radius)) / 2.0;
            current[static_cast<size_t>(row) * width + column] +=
                static_cast<int>(std::lround(peak * shape));
        }
    }
    isStill = false;
}

bool SImageWater::Step(const SImage& source, SImage* target) {
    if (target == nullptr || source.GetWidth() != width || source.GetHeight() != height ||
        current == nullptr) {
        return false;
    }
    if (target->GetWidth() != width || target->GetHeight() != height ||
        target->GetFormat() != source.GetFormat()) {
        target->Create(width, height, source.GetFormat());
        if (!target->IsValid()) {
            return false;
        }
    }
    const uint32_t* in = source.GetBits();
    uint32_t* out = target->GetBits();
    if (isStill) {
        std::memcpy(out, in, static_cast<size_t>(width) * height * sizeof(uint32_t));
        return false;
    }
    // The next field goes into the older one: each point is half the sum of
    // its four neighbours less its own older height, then damped toward 0.
    int* next = previous.get();
    const int* now = current.get();
    int highest = 0;
    for (int y = 1; y < height - 1; ++y) {
        for (int x = 1; x < width - 1; ++x) {
            size_t i = static_cast<size_t>(y) * width + x;
            int value = (now[i - 1] + now[i + 1] + now[i - width] + now[i + width]) / 2 - next[i];
            value -= value / (1 << damping);
            // Truncation toward zero alone would leave the smallest waves
            // running for ever; take one more unit off.
            value -= (value > 0) - (value < 0);
            next[i] = value;
            highest = std::max(highest, std::abs(value));
        }
    }
    std::swap(current, previous);
    if (highest <= STILL_LEVEL) {
        std::fill(current.get(), current.get() + static_cast<size_t>(width) * height, 0);
        std::fill(previous.get(), previous.get() + static_cast<size_t>(width) * height, 0);
        isStill = true;
        std::memcpy(out, in, static_cast<size_t>(width) * height * sizeof(uint32_t));
        return false;
    }
    // Each pixel looks through the slope of the surface at a shifted one.
    const int* field = current.get();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            size_t i = static_cast<size_t>(y) * width + x;
            int slopeX = (x > 0 && x < width - 1) ? field[i - 1] - field[i + 1] : 0;
            int slopeY = (y > 0 && y < height - 1) ? field[i - width] - field[i + width] : 0;
            int sourceX = std::clamp(x + slopeX / REFRACTION, 0, width - 1);
            int sourceY = std::clamp(y + slopeY / REFRACTION, 0, height - 1);
            out[i] = in[static_cast<size_t>(sourceY) * width + sourceX];
        }
    }
    return true;
}
