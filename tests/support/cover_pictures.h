// What the cover search's tests serve: the hand-written replies of
// tests/library/fixtures/covers/, and a PNG that is small on the wire but
// huge once decoded. Shared by the tests without a window and those of the
// window under Xvfb.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

// The bytes of a file of tests/library/fixtures/covers/; empty when
// missing.
inline std::string CoverFixture(const char* name) {
    std::ifstream in(std::string(MELKORA_SOURCE_DIR) + "/tests/library/fixtures/covers/" + name,
                     std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// A black-and-white PNG of side by side pixels: a few kilobytes that would
// decode to side * side pixels.
inline std::string PngBomb(int side) {
    auto chunk = [](std::string* out, const char* type, const std::string& data) {
        auto put32 = [out](uint32_t value) {
            for (int shift = 24; shift >= 0; shift -= 8) {
                out->push_back(static_cast<char>((value >> shift) & 0xFF));
            }
        };
        put32(static_cast<uint32_t>(data.size()));
        std::string body = std::string(type) + data;
        out->append(body);
        put32(static_cast<uint32_t>(
            crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()))));
    };
    std::string header;
    for (int shift = 24; shift >= 0; shift -= 8) {
        header.push_back(static_cast<char>((side >> shift) & 0xFF));
    }
    header += header;
    header += std::string("\x01\x00\x00\x00\x00", 5); // 1 bit, grey, no interlace
    size_t row = 1 + (static_cast<size_t>(side) + 7) / 8;
    std::string raw(row * static_cast<size_t>(side), '\0');
    uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
    std::string packed(packedSize, '\0');
    compress2(reinterpret_cast<Bytef*>(packed.data()), &packedSize,
              reinterpret_cast<const Bytef*>(raw.data()), static_cast<uLong>(raw.size()), 9);
    packed.resize(packedSize);
    std::string png("\x89PNG\r\n\x1a\n", 8);
    chunk(&png, "IHDR", header);
    chunk(&png, "IDAT", packed);
    chunk(&png, "IEND", "");
    return png;
}
