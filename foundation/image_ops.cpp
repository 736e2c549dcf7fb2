// Geometry of SImage: high-quality resampling, canvas size, rotation, and
// flattening over the back colour.
#include "foundation/image.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

namespace {

// Weights are fixed point with this many fraction bits.
constexpr int WEIGHT_BITS = 14;
constexpr int WEIGHT_ONE = 1 << WEIGHT_BITS;

// Catmull-Rom cubic (a = -0.5): sharp, without the blur of a B-spline.
double Cubic(double x) {
    constexpr double a = -0.5;
    x = std::fabs(x);
    if (x < 1.0) {
        return ((a + 2.0) * x - (a + 3.0)) * x * x + 1.0;
    }
    if (x < 2.0) {
        return ((a * x - 5.0 * a) * x + 8.0 * a) * x - 4.0 * a;
    }
    return 0.0;
}

// For each output position along one axis: the first source index and its
// weights, taps per position, so that weights[i * taps + k] scales source
// start[i] + k. Reduction widens the filter by the scale, so every source
// pixel contributes (the prefiltered form of bicubic).
struct AxisFilter {
    std::vector<int> start;
    std::vector<int> weights;
    int taps = 0;
};

AxisFilter MakeFilter(int source, int target) {
    AxisFilter filter;
    double scale = static_cast<double>(source) / target;
    double spread = std::max(scale, 1.0);
    double support = 2.0 * spread;
    filter.taps = static_cast<int>(std::ceil(support * 2.0)) + 1;
    filter.start.resize(target);
    filter.weights.assign(static_cast<size_t>(target) * filter.taps, 0);
    std::vector<double> raw(filter.taps);
    for (int i = 0; i < target; ++i) {
        double center = (i + 0.5) * scale;
        int first = static_cast<int>(std::floor(center - support));
        double sum = 0.0;
        for (int k = 0; k < filter.taps; ++k) {
            raw[k] = Cubic((first + k + 0.5 - center) / spread);
        }
        // Taps outside the source fold onto the edge pixel.
        int lo = std::max(first, 0);
        int hi = std::min(first + filter.taps, source) - 1;
        if (hi < lo) {
            lo = hi = std::clamp(first, 0, source - 1);
        }
        std::vector<double> folded(hi - lo + 1, 0.0);
        for (int k = 0; k < filter.taps; ++k) {
            int index = std::clamp(first + k, lo, hi);
            folded[index - lo] += raw[k];
            sum += raw[k];
        }
        if (std::fabs(sum) < 1e-9) {
            sum = 1.0;
        }
        filter.start[i] = lo;
        int* out = &filter.weights[static_cast<size_t>(i) * filter.taps];
        int total = 0;
        int biggest = 0;
        for (int k = 0; k <= hi - lo; ++k) {
            out[k] = static_cast<int>(std::lround(folded[k] / sum * WEIGHT_ONE));
            total += out[k];
            if (out[k] > out[biggest]) {
                biggest = k;
            }
        }
        out[biggest] += WEIGHT_ONE - total; // the weights sum to exactly one
    }
    return filter;
}

uint32_t Channel(int value) {
    value = (value + WEIGHT_ONE / 2) >> WEIGHT_BITS;
    return static_cast<uint32_t>(std::clamp(value, 0, 255));
}

// Filters rows across: source is sourceWidth x rows, target is
// targetWidth x rows.
void ResampleAcross(const uint32_t* source, int sourceWidth, int rows, uint32_t* target,
                    int targetWidth) {
    AxisFilter filter = MakeFilter(sourceWidth, targetWidth);
    for (int y = 0; y < rows; ++y) {
        const uint32_t* in = source + static_cast<size_t>(y) * sourceWidth;
        uint32_t* out = target + static_cast<size_t>(y) * targetWidth;
        for (int x = 0; x < targetWidth; ++x) {
            const int* weight = &filter.weights[static_cast<size_t>(x) * filter.taps];
            const uint32_t* pixel = in + filter.start[x];
            int count = std::min(filter.taps, sourceWidth - filter.start[x]);
            int a = 0, r = 0, g = 0, b = 0;
            for (int k = 0; k < count; ++k) {
                uint32_t p = pixel[k];
                int w = weight[k];
                a += static_cast<int>(p >> 24) * w;
                r += static_cast<int>((p >> 16) & 0xFF) * w;
                g += static_cast<int>((p >> 8) & 0xFF) * w;
                b += static_cast<int>(p & 0xFF) * w;
            }
            out[x] = (Channel(a) << 24) | (Channel(r) << 16) | (Channel(g) << 8) | Channel(b);
        }
    }
}

// Filters columns down: source is columns x sourceHeight, target is
// columns x targetHeight.
void ResampleDown(const uint32_t* source, int columns, int sourceHeight, uint32_t* target,
                  int targetHeight) {
    AxisFilter filter = MakeFilter(sourceHeight, targetHeight);
    std::vector<int> sums(static_cast<size_t>(columns) * 4);
    for (int y = 0; y < targetHeight; ++y) {
        std::fill(sums.begin(), sums.end(), 0);
        const int* weight = &filter.weights[static_cast<size_t>(y) * filter.taps];
        int count = std::min(filter.taps, sourceHeight - filter.start[y]);
        for (int k = 0; k < count; ++k) {
            const uint32_t* in = source + static_cast<size_t>(filter.start[y] + k) * columns;
            int w = weight[k];
            if (w == 0) {
                continue;
            }
            int* sum = sums.data();
            for (int x = 0; x < columns; ++x, sum += 4) {
                uint32_t p = in[x];
                sum[0] += static_cast<int>(p >> 24) * w;
                sum[1] += static_cast<int>((p >> 16) & 0xFF) * w;
                sum[2] += static_cast<int>((p >> 8) & 0xFF) * w;
                sum[3] += static_cast<int>(p & 0xFF) * w;
            }
        }
        uint32_t* out = target + static_cast<size_t>(y) * columns;
        const int* sum = sums.data();
        for (int x = 0; x < columns; ++x, sum += 4) {
            out[x] = (Channel(sum[0]) << 24) | (Channel(sum[1]) << 16) | (Channel(sum[2]) << 8) |
                     Channel(sum[3]);
        }
    }
}

uint32_t Premultiply(uint32_t p) {
    uint32_t a = p >> 24;
    if (a == 255) {
        return p;
    }
    uint32_t r = (((p >> 16) & 0xFF) * a + 127) / 255;
    uint32_t g = (((p >> 8) & 0xFF) * a + 127) / 255;
    uint32_t b = ((p & 0xFF) * a + 127) / 255;
    return (a << 24) | (r << 16) | (g << 8) | b;
}

uint32_t Unpremultiply(uint32_t p) {
    uint32_t a = p >> 24;
    if (a == 255) {
        return p;
    }
    if (a == 0) {
        return 0;
    }
    // A filter may overshoot: no channel may pass its alpha.
    uint32_t r = (std::min((p >> 16) & 0xFF, a) * 255 + a / 2) / a;
    uint32_t g = (std::min((p >> 8) & 0xFF, a) * 255 + a / 2) / a;
    uint32_t b = (std::min(p & 0xFF, a) * 255 + a / 2) / a;
    return (a << 24) | (r << 16) | (g << 8) | b;
}

bool Allocate(std::vector<uint32_t>& words, size_t count) {
    try {
        words.assign(count, 0);
    } catch (const std::bad_alloc&) {
        words.clear();
        return false;
    }
    return true;
}

} // namespace

bool SImage::Resize(int newWidth, int newHeight) {
    newWidth = std::max(newWidth, 0);
    newHeight = std::max(newHeight, 0);
    if (!IsValid() || newWidth == 0 || newHeight == 0 ||
        (newWidth == width && newHeight == height) || newWidth > IMAGE_MAX_SIDE ||
        newHeight > IMAGE_MAX_SIDE) {
        return false;
    }
    // Colours are filtered premultiplied so that transparent pixels lend
    // them no colour.
    bool isPremultiplied = HasAlpha();
    std::vector<uint32_t> premultiplied;
    const uint32_t* rows = pixels.data();
    if (isPremultiplied) {
        if (!Allocate(premultiplied, pixels.size())) {
            return false;
        }
        std::transform(pixels.begin(), pixels.end(), premultiplied.begin(), Premultiply);
        rows = premultiplied.data();
    }
    std::vector<uint32_t> across;
    std::vector<uint32_t> result;
    if (newWidth != width) {
        if (!Allocate(across, static_cast<size_t>(newWidth) * height)) {
            return false;
        }
        ResampleAcross(rows, width, height, across.data(), newWidth);
        rows = across.data();
    }
    if (newHeight != height) {
        if (!Allocate(result, static_cast<size_t>(newWidth) * newHeight)) {
            return false;
        }
        ResampleDown(rows, newWidth, height, result.data(), newHeight);
    } else {
        result = std::move(across);
    }
    if (isPremultiplied) {
        for (uint32_t& pixel : result) {
            pixel = Unpremultiply(pixel);
        }
    } else {
        for (uint32_t& pixel : result) {
            pixel |= 0xFF000000u;
        }
    }
    Adopt(std::move(result), newWidth, newHeight, format);
    return true;
}

bool SImage::ResizeCanvas(int newWidth, int newHeight) {
    newWidth = std::max(newWidth, 0);
    newHeight = std::max(newHeight, 0);
    if (!IsValid() || newWidth == 0 || newHeight == 0 ||
        (newWidth == width && newHeight == height) || newWidth > IMAGE_MAX_SIDE ||
        newHeight > IMAGE_MAX_SIDE) {
        return false;
    }
    std::vector<uint32_t> canvas;
    if (!Allocate(canvas, static_cast<size_t>(newWidth) * newHeight)) {
        return false;
    }
    // Placed as DRAW_CENTER places a picture: half the canvas less half
    // the picture.
    int left = newWidth / 2 - width / 2;
    int top = newHeight / 2 - height / 2;
    int fromX = std::max(0, -left);
    int toX = std::min(width, newWidth - left);
    for (int y = std::max(0, -top); y < std::min(height, newHeight - top); ++y) {
        const uint32_t* in = &pixels[static_cast<size_t>(y) * width];
        uint32_t* out = &canvas[static_cast<size_t>(y + top) * newWidth];
        std::copy(in + fromX, in + toX, out + left + fromX);
    }
    int newFormat = HasAlpha() ? format : PIXEL_FORMAT_32ARGB;
    Adopt(std::move(canvas), newWidth, newHeight, newFormat);
    return true;
}

bool SImage::Rotate(int degrees) {
    if (!IsValid() || (degrees != 90 && degrees != 180 && degrees != 270)) {
        return false;
    }
    std::vector<uint32_t> turned;
    if (!Allocate(turned, pixels.size())) {
        return false;
    }
    int newWidth = degrees == 180 ? width : height;
    int newHeight = degrees == 180 ? height : width;
    for (int y = 0; y < newHeight; ++y) {
        uint32_t* out = &turned[static_cast<size_t>(y) * newWidth];
        for (int x = 0; x < newWidth; ++x) {
            int sourceX, sourceY;
            if (degrees == 90) {
                sourceX = y;
                sourceY = height - 1 - x;
            } else if (degrees == 270) {
                sourceX = width - 1 - y;
                sourceY = x;
            } else {
                sourceX = width - 1 - x;
                sourceY = height - 1 - y;
            }
            out[x] = pixels[static_cast<size_t>(sourceY) * width + sourceX];
        }
    }
    Adopt(std::move(turned), newWidth, newHeight, format);
    return true;
}

bool SImage::Flatten(SImage* result) {
    if (!IsValid()) {
        return false;
    }
    uint32_t back = 0xFFFFFFu;
    if (backColor != 0xFF000000u && backColor != 0xFF000001u) {
        back = ((backColor & 0xFF) << 16) | (backColor & 0xFF00) | ((backColor >> 16) & 0xFF);
    }
    std::vector<uint32_t> flat;
    if (!Allocate(flat, pixels.size())) {
        return false;
    }
    for (size_t i = 0; i < pixels.size(); ++i) {
        uint32_t p = pixels[i];
        uint32_t a = p >> 24;
        uint32_t out = 0xFF000000u;
        for (int shift = 0; shift <= 16; shift += 8) {
            uint32_t front = (p >> shift) & 0xFF;
            uint32_t behind = (back >> shift) & 0xFF;
            out |= ((front * a + behind * (255 - a) + 127) / 255) << shift;
        }
        flat[i] = out;
    }
    SImage* target = result != nullptr ? result : this;
    target->Adopt(std::move(flat), width, height, PIXEL_FORMAT_24RGB);
    return true;
}
