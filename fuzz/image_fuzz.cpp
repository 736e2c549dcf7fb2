// Arbitrary bytes through every picture decoder: the whole load, the scaled
// cover load and, for what loads, the savers and a reload. Inputs whose
// first byte has the top bit set instead build a small picture from the
// bytes, save it in one of the four formats and damage the encoded file at
// positions the bytes choose, so that well-formed files reach the deep parts
// of each decoder without a seed corpus.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "foundation/file.h"
#include "foundation/image.h"

namespace {

constexpr size_t INPUT_LIMIT = 1 << 20;
// Savers and pixel operations run only on pictures this small, to keep
// each input quick.
constexpr int MAX_WORKED_PIXELS = 1 << 16;

void LoadEveryWay(const uint8_t* data, size_t size) {
    SFileMem file;
    file.Write(data, static_cast<int>(size));
    file.Rewind();
    SImage image;
    if (image.Load(&file)) {
        if (image.GetWidth() < 1 || image.GetHeight() < 1 || image.GetWidth() > IMAGE_MAX_SIDE ||
            image.GetHeight() > IMAGE_MAX_SIDE) {
            __builtin_trap();
        }
        if (image.GetWidth() * image.GetHeight() <= MAX_WORKED_PIXELS) {
            for (int format : {IMAGE_JPEG, IMAGE_PNG, IMAGE_GIF, IMAGE_BMP}) {
                SFileMem saved;
                if (!image.Save(&saved, format)) {
                    __builtin_trap();
                }
                saved.Rewind();
                SImage again;
                if (!again.Load(&saved) || again.GetWidth() != image.GetWidth() ||
                    again.GetHeight() != image.GetHeight()) {
                    __builtin_trap();
                }
            }
            image.Rotate(90);
            image.Resize(image.GetWidth() / 2 + 1, image.GetHeight() * 2);
            image.GetRegion(0);
        }
    }
    file.Rewind();
    SImage cover;
    cover.LoadScaled(&file, 150, 150);
    file.Rewind();
    cover.LoadScaled(&file, 7, 3);
}

// Byte 0: format in bits 0-1; byte 1, 2: width and height (1 to 64); then
// one byte of damage count; the pixels come from the rest, repeated.
void BuildAndDamage(const uint8_t* data, size_t size) {
    if (size < 6) {
        return;
    }
    int format = (data[0] & 3) + 1;
    int width = data[1] % 64 + 1;
    int height = data[2] % 64 + 1;
    int damage = data[3] % 8;
    const uint8_t* rest = data + 4;
    size_t restSize = size - 4;
    SImage image;
    image.Create(width, height, (data[0] & 4) ? PIXEL_FORMAT_32ARGB : PIXEL_FORMAT_24RGB);
    std::vector<uint32_t> words(static_cast<size_t>(width) * height);
    for (size_t i = 0; i < words.size(); ++i) {
        uint32_t word = 0;
        for (size_t b = 0; b < 4; ++b) {
            word = (word << 8) | rest[(i * 4 + b) % restSize];
        }
        words[i] = word;
    }
    image.SetPixels(words.data());
    SFileMem saved;
    if (!image.Save(&saved, format)) {
        __builtin_trap();
    }
    std::vector<uint8_t> bytes(saved.GetData(), saved.GetData() + saved.GetSize());
    for (int i = 0; i < damage && !bytes.empty(); ++i) {
        size_t at =
            (rest[(2 * i) % restSize] * 251u + rest[(2 * i + 1) % restSize] * 7u) % bytes.size();
        bytes[at] ^= rest[(2 * i + 3) % restSize] | 1;
    }
    if (damage == 7) {
        bytes.resize(bytes.size() * rest[0] / 256); // cut short
    }
    if (!bytes.empty()) {
        LoadEveryWay(bytes.data(), bytes.size());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0 || size > INPUT_LIMIT) {
        return 0;
    }
    if (data[0] & 0x80) {
        BuildAndDamage(data, size);
    } else {
        LoadEveryWay(data, size);
    }
    return 0;
}
