// Times loading JPEG covers straight to 150 by 150 pixels with
// SImage::LoadScaled against the floor: a plain libjpeg-turbo decode of the
// same file at the same DCT scale, followed by the same resample. Both run
// in this one process over the same files, after a pass that warms the
// page cache, for several rounds; medians are per image.
//
//   bench_covers LIST [ROUNDS]    LIST holds one JPEG path a line
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

// After the C library headers: jpeglib.h uses size_t and FILE undeclared.
#include <jpeglib.h>

#include "foundation/file.h"
#include "foundation/image.h"

namespace {

constexpr int SIDE = 150;

using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

std::vector<unsigned char> ReadWhole(const std::string& path) {
    std::vector<unsigned char> bytes;
    FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return bytes;
    }
    std::fseek(file, 0, SEEK_END);
    long size = std::ftell(file);
    std::fseek(file, 0, SEEK_SET);
    bytes.resize(size > 0 ? static_cast<size_t>(size) : 0);
    if (std::fread(bytes.data(), 1, bytes.size(), file) != bytes.size()) {
        bytes.clear();
    }
    std::fclose(file);
    return bytes;
}

// The floor: read, decode at the smallest scale n/8 that still covers the
// target, resample. The files are well-formed, so errors simply abort.
bool LoadFloor(const std::string& path, SImage& image, bool* isProgressive) {
    std::vector<unsigned char> bytes = ReadWhole(path);
    if (bytes.empty()) {
        return false;
    }
    jpeg_decompress_struct info;
    jpeg_error_mgr error;
    info.err = jpeg_std_error(&error);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, bytes.data(), bytes.size());
    jpeg_read_header(&info, TRUE);
    *isProgressive = info.progressive_mode;
    info.out_color_space = JCS_EXT_BGRA;
    for (unsigned scale = 1; scale <= 8; ++scale) {
        info.scale_num = scale;
        info.scale_denom = 8;
        jpeg_calc_output_dimensions(&info);
        if (info.output_width >= SIDE && info.output_height >= SIDE) {
            break;
        }
    }
    jpeg_start_decompress(&info);
    image.Create(static_cast<int>(info.output_width), static_cast<int>(info.output_height),
                 PIXEL_FORMAT_24RGB);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = reinterpret_cast<JSAMPROW>(
            image.GetBits() + static_cast<size_t>(info.output_scanline) * image.GetWidth());
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    image.Resize(SIDE, SIDE);
    return true;
}

bool LoadOurs(const std::string& path, SImage& image) {
    SFilePath file(path.c_str(), false, false, true, false);
    return image.LoadScaled(&file, SIDE, SIDE);
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

double Mean(const std::vector<double>& values) {
    double sum = 0;
    for (double value : values) {
        sum += value;
    }
    return values.empty() ? 0.0 : sum / static_cast<double>(values.size());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_covers LIST [ROUNDS]\n");
        return 2;
    }
    int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
    std::vector<std::string> paths;
    std::ifstream list(argv[1]);
    for (std::string line; std::getline(list, line);) {
        if (!line.empty()) {
            paths.push_back(line);
        }
    }
    if (paths.empty()) {
        std::fprintf(stderr, "no paths in %s\n", argv[1]);
        return 2;
    }
    // Warm the page cache, count progressive files and check that both
    // ways give the same picture.
    int progressive = 0;
    int different = 0;
    for (const std::string& path : paths) {
        SImage ours, floor;
        bool isProgressive = false;
        if (!LoadOurs(path, ours) || !LoadFloor(path, floor, &isProgressive)) {
            std::fprintf(stderr, "cannot load %s\n", path.c_str());
            return 1;
        }
        progressive += isProgressive;
        different += std::memcmp(ours.GetBits(), floor.GetBits(), SIDE * SIDE * 4) != 0;
    }
    std::vector<double> oursTimes, floorTimes;
    bool isProgressive = false;
    for (int round = 0; round < rounds; ++round) {
        for (const std::string& path : paths) {
            SImage image;
            Clock::time_point start = Clock::now();
            LoadOurs(path, image);
            oursTimes.push_back(Milliseconds(start));
        }
        for (const std::string& path : paths) {
            SImage image;
            Clock::time_point start = Clock::now();
            LoadFloor(path, image, &isProgressive);
            floorTimes.push_back(Milliseconds(start));
        }
    }
    double ours = Median(oursTimes);
    double floor = Median(floorTimes);
    std::printf("covers:              %zu JPEG files (%d progressive), %d rounds\n", paths.size(),
                progressive, rounds);
    std::printf("same pixels:         %s\n", different == 0 ? "yes" : "NO");
    std::printf("SImage::LoadScaled:  %.3f ms per image (median; mean %.3f)\n", ours,
                Mean(oursTimes));
    std::printf("libjpeg-turbo floor: %.3f ms per image (median; mean %.3f)\n", floor,
                Mean(floorTimes));
    std::printf("ratio:               %.2f (goal: 1.2 or less)\n", floor > 0 ? ours / floor : 0.0);
    return different == 0 ? 0 : 1;
}
