#include "foundation/image.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "foundation/file.h"
#include "foundation/image_list.h"

namespace {

constexpr uint32_t ALPHA_MASK = 0xFF000000u;

bool IsKnownFormat(int format) {
    return format == PIXEL_FORMAT_24RGB || format == PIXEL_FORMAT_32RGB ||
           format == PIXEL_FORMAT_32ARGB || format == PIXEL_FORMAT_32PARGB;
}

bool FormatHasAlpha(int format) {
    return format == PIXEL_FORMAT_32ARGB || format == PIXEL_FORMAT_32PARGB;
}

// Sizes the vector to count zero words; false when memory runs out.
bool Allocate(std::vector<uint32_t>& words, size_t count) {
    try {
        words.assign(count, 0);
    } catch (const std::bad_alloc&) {
        words.clear();
        return false;
    }
    return true;
}

// Luminance with the customary weights, rounded, 0 to 255.
int Luminance(uint32_t pixel) {
    double blue = pixel & 0xFF;
    double green = (pixel >> 8) & 0xFF;
    double red = (pixel >> 16) & 0xFF;
    return static_cast<int>(std::lround(0.114 * blue + 0.587 * green + 0.299 * red));
}

} // namespace

int GetBitsPerPixel(int format) {
    // The bit count sits in the second byte of the format tag.
    int bits = (format >> 8) & 0xFF;
    switch (bits) {
    case 1:
    case 4:
    case 8:
    case 16:
    case 24:
    case 32:
    case 48:
    case 64:
        return bits;
    default:
        return 0;
    }
}

SImage::SImage(SImage&& other) noexcept {
    *this = std::move(other);
}

SImage& SImage::operator=(SImage&& other) noexcept {
    if (this == &other) {
        return *this;
    }
    pixels = std::move(other.pixels);
    width = other.width;
    height = other.height;
    format = other.format;
    flag = other.flag;
    name = std::move(other.name);
    backColor = other.backColor;
    keyColor = other.keyColor;
    drawMode = other.drawMode;
    other.Empty();
    return *this;
}

SImage::~SImage() = default;

bool SImage::HasAlpha() const {
    return FormatHasAlpha(format);
}

void SImage::Empty() {
    std::vector<uint32_t>().swap(pixels);
    width = 0;
    height = 0;
    format = 0;
}

void SImage::Reset() {
    Empty();
    flag = 0;
    name.Empty();
    drawMode = DRAW_TOPLEFT;
    backColor = 0xFF000000;
    keyColor = 0xFF000000;
}

bool SImage::Create(int newWidth, int newHeight, int newFormat) {
    Empty();
    if (newWidth < 1 || newHeight < 1 || newWidth > IMAGE_MAX_SIDE || newHeight > IMAGE_MAX_SIDE ||
        !IsKnownFormat(newFormat)) {
        return true;
    }
    std::vector<uint32_t> words;
    if (!Allocate(words, static_cast<size_t>(newWidth) * newHeight)) {
        return true;
    }
    if (!FormatHasAlpha(newFormat)) {
        std::fill(words.begin(), words.end(), ALPHA_MASK);
    }
    Adopt(std::move(words), newWidth, newHeight, newFormat);
    return true;
}

bool SImage::ConvertTo(int newFormat) {
    if (!IsValid() || !IsKnownFormat(newFormat)) {
        return false;
    }
    if (!FormatHasAlpha(newFormat)) {
        for (uint32_t& pixel : pixels) {
            pixel |= ALPHA_MASK;
        }
    }
    format = newFormat;
    return true;
}

void SImage::Adopt(std::vector<uint32_t>&& newPixels, int newWidth, int newHeight, int newFormat) {
    pixels = std::move(newPixels);
    width = newWidth;
    height = newHeight;
    format = newFormat;
}

SRect SImage::Clip(const SRect* rect) const {
    SRect whole{0, 0, width, height};
    if (rect == nullptr) {
        return whole;
    }
    SRect clipped{std::max(rect->left, 0), std::max(rect->top, 0), std::min(rect->right, width),
                  std::min(rect->bottom, height)};
    if (clipped.IsEmpty()) {
        return SRect{};
    }
    return clipped;
}

bool SImage::Load(SFile* file, int size) {
    return LoadFrom(file, size, 0, 0);
}

bool SImage::LoadScaled(SFile* file, int newWidth, int newHeight, int size) {
    if (newWidth < 1 || newHeight < 1) {
        Empty();
        return false;
    }
    if (!LoadFrom(file, size, newWidth, newHeight)) {
        return false;
    }
    Resize(newWidth, newHeight);
    return true;
}

bool SImage::LoadFrom(SFile* file, int size, int minWidth, int minHeight) {
    Empty();
    if (file == nullptr || size == 0) {
        return false;
    }
    int remaining = file->GetRemaining();
    if (size < 0 || size > remaining) {
        size = remaining;
    }
    if (size <= 0) {
        return false;
    }
    if (file->GetKind() == SFile::KIND_MEMORY) {
        // Straight from the block: no copy at all.
        auto* memory = static_cast<SFileMem*>(file);
        const auto* data = reinterpret_cast<const uint8_t*>(memory->GetDataAtPosition());
        bool isDecoded = data != nullptr && Decode(data, size, minWidth, minHeight);
        file->Skip(size);
        return isDecoded;
    }
    std::unique_ptr<uint8_t[]> buffer(new (std::nothrow) uint8_t[size]);
    if (buffer == nullptr) {
        return false;
    }
    int read = file->Read(buffer.get(), size);
    return read > 0 && Decode(buffer.get(), read, minWidth, minHeight);
}

bool SImage::LoadResource(const char* type, unsigned id, void* /*module*/) {
    Empty();
    const void* data = nullptr;
    int size = 0;
    if (type == nullptr || !FindResourceData(type, id, &data, &size) || size <= 0) {
        return false;
    }
    return Decode(static_cast<const uint8_t*>(data), size, 0, 0);
}

bool SImage::LoadPixels(const uint32_t* argb, int newWidth, int newHeight) {
    Empty();
    if (argb == nullptr) {
        return false;
    }
    Create(newWidth, newHeight, PIXEL_FORMAT_32ARGB);
    if (!IsValid()) {
        return false;
    }
    std::memcpy(pixels.data(), argb, pixels.size() * sizeof(uint32_t));
    drawMode = DRAW_CENTER;
    backColor = 0xFF000000;
    return true;
}

bool SImage::LoadImageList(const SImageList& list, int index) {
    Empty();
    int count = list.GetCount();
    if (index >= count || index < -1 || count == 0) {
        return false;
    }
    if (index >= 0) {
        return CopyFrom(list.GetImage(index));
    }
    int cell = list.GetWidth();
    Create(cell * count, list.GetHeight(), PIXEL_FORMAT_32ARGB);
    if (!IsValid()) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        const SImage* image = list.GetImage(i);
        for (int y = 0; y < height; ++y) {
            std::memcpy(&pixels[static_cast<size_t>(y) * width + i * cell],
                        image->GetBits() + static_cast<size_t>(y) * cell, cell * sizeof(uint32_t));
        }
    }
    return true;
}

bool SImage::Crop(const SImage* source, int x, int y, int cropWidth, int cropHeight) {
    if (source == nullptr || !source->IsValid() || x < 0 || y < 0) {
        return false;
    }
    if (cropWidth < 0) {
        cropWidth = source->width - x;
    }
    if (cropHeight < 0) {
        cropHeight = source->height - y;
    }
    if (cropWidth < 1 || cropHeight < 1 || x + cropWidth > source->width ||
        y + cropHeight > source->height) {
        return false;
    }
    std::vector<uint32_t> words;
    if (!Allocate(words, static_cast<size_t>(cropWidth) * cropHeight)) {
        return false;
    }
    for (int row = 0; row < cropHeight; ++row) {
        const uint32_t* from = &source->pixels[static_cast<size_t>(y + row) * source->width + x];
        std::memcpy(&words[static_cast<size_t>(row) * cropWidth], from,
                    cropWidth * sizeof(uint32_t));
    }
    Adopt(std::move(words), cropWidth, cropHeight, source->format);
    return true;
}

uint32_t SImage::GetPixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) {
        return 0;
    }
    return pixels[static_cast<size_t>(y) * width + x];
}

std::unique_ptr<uint8_t[]> SImage::GetPixels(int pixelFormat) const {
    int bits = ::GetBitsPerPixel(pixelFormat);
    if (!IsValid() || (bits != 24 && bits != 32)) {
        return nullptr;
    }
    size_t bytes = pixels.size() * (bits / 8);
    std::unique_ptr<uint8_t[]> buffer(new (std::nothrow) uint8_t[bytes]);
    if (buffer == nullptr || !GetPixels(buffer.get(), pixelFormat)) {
        return nullptr;
    }
    return buffer;
}

bool SImage::GetPixels(void* buffer, int pixelFormat) const {
    int bits = ::GetBitsPerPixel(pixelFormat);
    if (!IsValid() || buffer == nullptr || (bits != 24 && bits != 32)) {
        return false;
    }
    auto* out = static_cast<uint8_t*>(buffer);
    if (bits == 32) {
        std::memcpy(out, pixels.data(), pixels.size() * sizeof(uint32_t));
        return true;
    }
    for (uint32_t pixel : pixels) {
        *out++ = static_cast<uint8_t>(pixel);
        *out++ = static_cast<uint8_t>(pixel >> 8);
        *out++ = static_cast<uint8_t>(pixel >> 16);
    }
    return true;
}

bool SImage::SetPixels(const void* bgra) {
    if (!IsValid() || bgra == nullptr) {
        return false;
    }
    std::memcpy(pixels.data(), bgra, pixels.size() * sizeof(uint32_t));
    if (!HasAlpha()) {
        for (uint32_t& pixel : pixels) {
            pixel |= ALPHA_MASK;
        }
    }
    return true;
}

bool SImage::Fill(uint32_t argb, const SRect* rect) {
    SRect area = Clip(rect);
    if (area.IsEmpty()) {
        return false;
    }
    if (!HasAlpha()) {
        argb |= ALPHA_MASK;
    }
    for (int y = area.top; y < area.bottom; ++y) {
        uint32_t* row = &pixels[static_cast<size_t>(y) * width];
        std::fill(row + area.left, row + area.right, argb);
    }
    return true;
}

bool SImage::SetAlpha(int alpha, const SRect* rect, bool onlyLower) {
    if (GetBitsPerPixel() != 32) {
        return false;
    }
    SRect area = Clip(rect);
    if (area.IsEmpty()) {
        return false;
    }
    if (!HasAlpha()) {
        format = PIXEL_FORMAT_32ARGB;
    }
    uint32_t newAlpha = static_cast<uint32_t>(std::clamp(alpha, 0, 255));
    for (int y = area.top; y < area.bottom; ++y) {
        uint32_t* row = &pixels[static_cast<size_t>(y) * width];
        for (int x = area.left; x < area.right; ++x) {
            uint32_t oldAlpha = row[x] >> 24;
            if (onlyLower && oldAlpha < newAlpha) {
                continue;
            }
            row[x] = (row[x] & 0x00FFFFFFu) | (newAlpha << 24);
        }
    }
    return true;
}

bool SImage::MakeGray(const SRect* rect) {
    int bits = GetBitsPerPixel();
    if (bits != 24 && bits != 32) {
        return false;
    }
    SRect area = Clip(rect);
    if (area.IsEmpty()) {
        return false;
    }
    for (int y = area.top; y < area.bottom; ++y) {
        uint32_t* row = &pixels[static_cast<size_t>(y) * width];
        for (int x = area.left; x < area.right; ++x) {
            uint32_t grey = static_cast<uint32_t>(Luminance(row[x]));
            // Red is scaled by a factor within a hair of 1, as the grey look
            // has always been computed; it ends equal to the grey.
            double redFactor = 1079.05 * 0.000661 * 1.40169;
            uint32_t red = std::min<uint32_t>(255, std::lround(grey * redFactor));
            row[x] = (row[x] & ALPHA_MASK) | (red << 16) | (grey << 8) | grey;
        }
    }
    return true;
}

bool SImage::TintLuminance(uint32_t color, const SRect* rect) {
    SRect area = Clip(rect);
    if (area.IsEmpty()) {
        return false;
    }
    uint32_t red = color & 0xFF;
    uint32_t green = (color >> 8) & 0xFF;
    uint32_t blue = (color >> 16) & 0xFF;
    for (int y = area.top; y < area.bottom; ++y) {
        uint32_t* row = &pixels[static_cast<size_t>(y) * width];
        for (int x = area.left; x < area.right; ++x) {
            uint32_t level = static_cast<uint32_t>(Luminance(row[x]));
            uint32_t r = (red * level + 127) / 255;
            uint32_t g = (green * level + 127) / 255;
            uint32_t b = (blue * level + 127) / 255;
            row[x] = (row[x] & ALPHA_MASK) | (r << 16) | (g << 8) | b;
        }
    }
    return true;
}

bool SImage::FlattenAlpha() {
    if (!HasAlpha()) {
        return false;
    }
    for (uint32_t& pixel : pixels) {
        if ((pixel >> 24) < 255) {
            pixel = 0xFFFFFFFFu;
        }
    }
    return true;
}

std::vector<SRect> SImage::GetRegion(uint32_t key) const {
    std::vector<SRect> runs;
    uint32_t keyRgb = ((key & 0xFF) << 16) | (key & 0xFF00) | ((key >> 16) & 0xFF);
    for (int y = 0; y < height; ++y) {
        const uint32_t* row = &pixels[static_cast<size_t>(y) * width];
        int start = -1;
        for (int x = 0; x <= width; ++x) {
            bool differs = false;
            if (x < width) {
                uint32_t pixel = row[x];
                uint32_t alpha = pixel >> 24;
                // As it lands on a black surface: each channel times alpha.
                uint32_t r = (((pixel >> 16) & 0xFF) * alpha + 127) / 255;
                uint32_t g = (((pixel >> 8) & 0xFF) * alpha + 127) / 255;
                uint32_t b = ((pixel & 0xFF) * alpha + 127) / 255;
                differs = ((r << 16) | (g << 8) | b) != keyRgb;
            }
            if (differs && start < 0) {
                start = x;
            } else if (!differs && start >= 0) {
                runs.push_back(SRect{start, y, x, y + 1});
                start = -1;
            }
        }
    }
    return runs;
}
