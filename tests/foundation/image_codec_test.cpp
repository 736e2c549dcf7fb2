// SImage through files: round trips of every saved format, the formats
// read, damaged and oversized data, and the scaled cover path.
#include "foundation/image.h"

#include <gtest/gtest.h>
#include <jpeglib.h>
#include <zlib.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "foundation/file.h"
#include "support/temp_dir.h"

namespace {

uint32_t Argb(uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
    return (a << 24) | (r << 16) | (g << 8) | b;
}

// Smooth colour ramps with a soft ripple, as photographs are: many colours,
// little noise.
SImage MakeGradient(int width, int height, int format = PIXEL_FORMAT_24RGB) {
    std::vector<uint32_t> words(static_cast<size_t>(width) * height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            uint32_t r = static_cast<uint32_t>(x * 255 / std::max(width - 1, 1));
            uint32_t g = static_cast<uint32_t>(y * 255 / std::max(height - 1, 1));
            uint32_t b = static_cast<uint32_t>(128 + 100 * std::sin(x * 0.05) * std::cos(y * 0.04));
            words[static_cast<size_t>(y) * width + x] = Argb(255, r, g, b);
        }
    }
    SImage image;
    image.LoadPixels(words.data(), width, height);
    image.ConvertTo(format);
    return image;
}

std::string Encode(const SImage& image, int format) {
    SFileMem file;
    EXPECT_TRUE(image.Save(&file, format));
    return std::string(file.GetData(), file.GetSize());
}

// Loads bytes, straight to width by height when they are given.
bool LoadBytes(SImage& image, const std::string& bytes, int width = 0, int height = 0) {
    SFileMem file;
    file.Write(bytes.data(), static_cast<int>(bytes.size()));
    file.Rewind();
    return width == 0 ? image.Load(&file) : image.LoadScaled(&file, width, height);
}

// Mean absolute difference per channel (red, green, blue), over all pixels.
double MeanDifference(const SImage& a, const SImage& b) {
    EXPECT_EQ(a.GetWidth(), b.GetWidth());
    EXPECT_EQ(a.GetHeight(), b.GetHeight());
    double sum = 0;
    for (int y = 0; y < a.GetHeight(); ++y) {
        for (int x = 0; x < a.GetWidth(); ++x) {
            uint32_t p = a.GetPixel(x, y);
            uint32_t q = b.GetPixel(x, y);
            for (int shift = 0; shift <= 16; shift += 8) {
                sum += std::abs(static_cast<int>((p >> shift) & 0xFF) -
                                static_cast<int>((q >> shift) & 0xFF));
            }
        }
    }
    return sum / (3.0 * a.GetWidth() * a.GetHeight());
}

bool SamePixels(const SImage& a, const SImage& b) {
    if (a.GetWidth() != b.GetWidth() || a.GetHeight() != b.GetHeight()) {
        return false;
    }
    return std::memcmp(a.GetBits(), b.GetBits(),
                       static_cast<size_t>(a.GetWidth()) * a.GetHeight() * 4) == 0;
}

// A JPEG made by libjpeg itself, for what our saver does not make:
// progressive files, CMYK files and sizes our pictures refuse.
std::string EncodeJpegDirect(int width, int height, bool progressive, bool cmyk = false) {
    jpeg_compress_struct info;
    jpeg_error_mgr error;
    info.err = jpeg_std_error(&error);
    jpeg_create_compress(&info);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = width;
    info.image_height = height;
    info.input_components = cmyk ? 4 : 3;
    info.in_color_space = cmyk ? JCS_CMYK : JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, 92, TRUE);
    if (progressive) {
        jpeg_simple_progression(&info);
    }
    jpeg_start_compress(&info, TRUE);
    std::vector<unsigned char> row(static_cast<size_t>(width) * info.input_components);
    while (info.next_scanline < info.image_height) {
        for (int x = 0; x < width; ++x) {
            unsigned char* p = &row[static_cast<size_t>(x) * info.input_components];
            if (cmyk) {
                // Adobe's inverted CMYK: 255 is no ink. Full magenta and
                // yellow make red.
                p[0] = 255, p[1] = 0, p[2] = 0, p[3] = 255;
            } else {
                p[0] = static_cast<unsigned char>(x * 255 / std::max(width - 1, 1));
                p[1] =
                    static_cast<unsigned char>(info.next_scanline * 255 / std::max(height - 1, 1));
                p[2] = 90;
            }
        }
        JSAMPROW pointer = row.data();
        jpeg_write_scanlines(&info, &pointer, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string bytes(reinterpret_cast<char*>(buffer), size);
    free(buffer);
    return bytes;
}

void PutChunk(std::string& png, const char* type, const std::string& data) {
    uint32_t length = static_cast<uint32_t>(data.size());
    for (int shift = 24; shift >= 0; shift -= 8) {
        png.push_back(static_cast<char>(length >> shift));
    }
    std::string body = std::string(type, 4) + data;
    png += body;
    uint32_t crc = crc32(0, reinterpret_cast<const Bytef*>(body.data()), body.size());
    for (int shift = 24; shift >= 0; shift -= 8) {
        png.push_back(static_cast<char>(crc >> shift));
    }
}

// A complete 1-bit grey PNG of the given size, all black; with headerOnly
// just the signature and the header chunk.
std::string MakeBlackPng(uint32_t width, uint32_t height, bool headerOnly) {
    std::string png("\x89PNG\r\n\x1a\n", 8);
    std::string header;
    for (uint32_t value : {width, height}) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            header.push_back(static_cast<char>(value >> shift));
        }
    }
    header += std::string("\x01\x00\x00\x00\x00", 5); // 1 bit, grey, no interlace
    PutChunk(png, "IHDR", header);
    if (headerOnly) {
        return png;
    }
    std::string raw(static_cast<size_t>(height) * (1 + (width + 7) / 8), '\0');
    uLongf packedSize = compressBound(raw.size());
    std::string packed(packedSize, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &packedSize,
             reinterpret_cast<const Bytef*>(raw.data()), raw.size());
    packed.resize(packedSize);
    PutChunk(png, "IDAT", packed);
    PutChunk(png, "IEND", "");
    return png;
}

// A 24-bit BMP of the given size, all white.
std::string MakeWhiteBmp(int width, int height) {
    SImage one;
    one.Create(1, 1, PIXEL_FORMAT_24RGB);
    std::string bmp = Encode(one, IMAGE_BMP);
    bmp.resize(54);
    uint32_t stride = (width * 3 + 3) & ~3u;
    auto put = [&](size_t at, uint32_t value) {
        for (int i = 0; i < 4; ++i) {
            bmp[at + i] = static_cast<char>(value >> (8 * i));
        }
    };
    put(2, 54 + stride * height);
    put(18, width);
    put(22, height);
    put(34, stride * height);
    bmp.append(static_cast<size_t>(stride) * height, '\xFF');
    return bmp;
}

// A 16 by 16 icon with one 32-bit image: top half opaque blue, bottom half
// half-transparent red.
std::string MakeIcon() {
    std::string ico("\0\0\1\0\1\0", 6);
    const int side = 16;
    const uint32_t dibSize = 40 + side * side * 4 + side * 4; // pixels and AND mask
    auto put16 = [](std::string& s, uint32_t v) {
        s.push_back(static_cast<char>(v));
        s.push_back(static_cast<char>(v >> 8));
    };
    auto put32 = [&](std::string& s, uint32_t v) {
        put16(s, v & 0xFFFF);
        put16(s, v >> 16);
    };
    ico += std::string("\x10\x10\0\0\1\0\x20\0", 8); // 16 by 16, one plane, 32 bits
    put32(ico, dibSize);
    put32(ico, 6 + 16);
    put32(ico, 40);
    put32(ico, side);
    put32(ico, side * 2);                                        // colour and mask heights together
    ico += std::string("\1\0\x20\0", 4) + std::string(24, '\0'); // one plane, 32 bits
    for (int y = side - 1; y >= 0; --y) {                        // bottom-up
        for (int x = 0; x < side; ++x) {
            put32(ico, y < side / 2 ? 0xFF0000FFu : 0x80FF0000u);
        }
    }
    ico.append(static_cast<size_t>(side) * 4, '\0'); // AND mask: all shown
    return ico;
}

} // namespace

// ---- loading rules ----

TEST(ImageLoad, ReadsOnlyTheGivenSizeAndLeavesTheFilePastIt) {
    SImage image = MakeGradient(4, 4);
    EXPECT_FALSE(image.Load(nullptr));
    EXPECT_FALSE(image.IsValid()); // emptied before loading
    SFileMem empty;
    EXPECT_FALSE(image.Load(&empty));
    std::string first = Encode(MakeGradient(5, 3), IMAGE_PNG);
    std::string second = Encode(MakeGradient(7, 2), IMAGE_BMP);
    SFileMem file;
    file.Write(first.data(), static_cast<int>(first.size()));
    file.Write(second.data(), static_cast<int>(second.size()));
    file.Rewind();
    EXPECT_FALSE(image.Load(&file, 0));
    EXPECT_EQ(file.GetPosition(), 0);
    ASSERT_TRUE(image.Load(&file, static_cast<int>(first.size())));
    EXPECT_EQ(image.GetWidth(), 5);
    EXPECT_EQ(file.GetPosition(), static_cast<int>(first.size()));
    ASSERT_TRUE(image.Load(&file, 1 << 30)); // cut to what remains
    EXPECT_EQ(image.GetWidth(), 7);
    EXPECT_TRUE(file.IsEnd());
    file.Seek(static_cast<int>(first.size()));
    ASSERT_TRUE(image.Load(&file, -1));
    EXPECT_EQ(image.GetWidth(), 7);
}

TEST(ImageLoad, ReadsDiskFilesAndResourcesButNotText) {
    TempDir folder;
    SImage source = MakeGradient(30, 20);
    std::string path = folder.Write("cover.png", Encode(source, IMAGE_PNG));
    SFilePath file(path.c_str(), false, false, true, false);
    ASSERT_TRUE(file.IsOpen());
    SImage image;
    ASSERT_TRUE(image.Load(&file));
    EXPECT_TRUE(SamePixels(image, source));
    EXPECT_TRUE(file.IsEnd());
    static const std::string png = Encode(MakeGradient(9, 9), IMAGE_PNG);
    RegisterResource("BINARY", 64001, png.data(), static_cast<int>(png.size()));
    EXPECT_TRUE(image.LoadResource("BINARY", 64001));
    EXPECT_EQ(image.GetWidth(), 9);
    EXPECT_FALSE(image.LoadResource("BINARY", 64002));
    EXPECT_FALSE(image.IsValid());
    EXPECT_FALSE(LoadBytes(image, "hello, this is not a picture at all"));
    EXPECT_FALSE(LoadBytes(image, "<svg xmlns='http://www.w3.org/2000/svg'/>"));
}

// ---- round trips ----

TEST(ImageRoundTrip, LosslessFormatsKeepEveryPixel) {
    SImage opaque = MakeGradient(37, 23);
    SImage clear = MakeGradient(37, 23, PIXEL_FORMAT_32ARGB);
    SRect corner{0, 0, 5, 5};
    clear.SetAlpha(100, &corner);
    SRect hole{10, 10, 12, 12};
    clear.Fill(0, &hole);
    // clang-format off
    const std::tuple<const SImage*, int, int> cases[] = {
        {&opaque, IMAGE_PNG, PIXEL_FORMAT_24RGB}, {&clear, IMAGE_PNG, PIXEL_FORMAT_32ARGB},
        {&opaque, IMAGE_BMP, PIXEL_FORMAT_24RGB}, {&clear, IMAGE_BMP, PIXEL_FORMAT_32ARGB},
        {&opaque, 99, PIXEL_FORMAT_24RGB}}; // any other value is BMP
    // clang-format on
    for (auto [image, saveFormat, loadedFormat] : cases) {
        SImage loaded;
        ASSERT_TRUE(LoadBytes(loaded, Encode(*image, saveFormat))) << saveFormat;
        EXPECT_EQ(loaded.GetFormat(), loadedFormat) << saveFormat;
        EXPECT_TRUE(SamePixels(loaded, *image)) << saveFormat;
    }
    EXPECT_EQ(Encode(opaque, 99).substr(0, 2), "BM");
}

TEST(ImageRoundTrip, JpegStaysClose) {
    SImage source = MakeGradient(64, 48, PIXEL_FORMAT_32ARGB);
    std::string bytes = Encode(source, IMAGE_JPEG);
    ASSERT_EQ(bytes.substr(0, 3), "\xFF\xD8\xFF");
    SImage loaded;
    ASSERT_TRUE(LoadBytes(loaded, bytes));
    EXPECT_EQ(loaded.GetFormat(), PIXEL_FORMAT_24RGB);
    EXPECT_LT(MeanDifference(loaded, source), 2.0);
}

TEST(ImageRoundTrip, GifKeepsFewColoursExactlyAndQuantisesMany) {
    SImage image;
    image.Create(20, 10, PIXEL_FORMAT_32ARGB);
    image.Fill(Argb(255, 10, 20, 30));
    SRect red{0, 0, 5, 10};
    image.Fill(Argb(255, 250, 0, 1), &red);
    SRect clear{15, 0, 20, 10};
    image.Fill(Argb(0, 0, 0, 0), &clear);
    std::string bytes = Encode(image, IMAGE_GIF);
    ASSERT_EQ(bytes.substr(0, 6), "GIF89a");
    SImage loaded;
    ASSERT_TRUE(LoadBytes(loaded, bytes));
    EXPECT_EQ(loaded.GetFormat(), PIXEL_FORMAT_32ARGB);
    EXPECT_EQ(loaded.GetPixel(2, 2), Argb(255, 250, 0, 1));
    EXPECT_EQ(loaded.GetPixel(10, 9), Argb(255, 10, 20, 30));
    EXPECT_EQ(loaded.GetPixel(17, 3) >> 24, 0u);
    // Many colours are quantised reasonably.
    SImage source = MakeGradient(160, 120);
    ASSERT_TRUE(LoadBytes(loaded, Encode(source, IMAGE_GIF)));
    EXPECT_EQ(loaded.GetFormat(), PIXEL_FORMAT_24RGB);
    EXPECT_LT(MeanDifference(loaded, source), 5.0);
}

TEST(ImageRoundTrip, GifCodesALargePictureAcrossTableResets) {
    // Noise fills the code table many times over.
    std::mt19937 random(7);
    SImage source;
    source.Create(300, 200, PIXEL_FORMAT_24RGB);
    std::vector<uint32_t> palette;
    for (int i = 0; i < 200; ++i) {
        palette.push_back(Argb(255, random() & 0xFF, random() & 0xFF, random() & 0xFF));
    }
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 300; ++x) {
            SRect one{x, y, x + 1, y + 1};
            source.Fill(palette[random() % palette.size()], &one);
        }
    }
    SImage loaded;
    ASSERT_TRUE(LoadBytes(loaded, Encode(source, IMAGE_GIF)));
    EXPECT_TRUE(SamePixels(loaded, source)); // 200 colours fit the palette
}

TEST(ImageRoundTrip, SavingWritesAtThePositionAndNeedsAPicture) {
    SFileMem file;
    file.WriteText("head");
    SImage empty;
    EXPECT_FALSE(empty.Save(&file, IMAGE_PNG));
    EXPECT_FALSE(MakeGradient(2, 2).Save(nullptr, IMAGE_PNG));
    EXPECT_EQ(file.GetSize(), 4);
    ASSERT_TRUE(MakeGradient(3, 3).Save(&file, IMAGE_PNG));
    EXPECT_EQ(file.GetPosition(), file.GetSize());
    file.Seek(4);
    SImage loaded;
    EXPECT_TRUE(loaded.Load(&file));
    EXPECT_EQ(loaded.GetWidth(), 3);
}

// ---- other inputs ----

TEST(ImageFormats, IconLoadsWithAlpha) {
    SImage image;
    ASSERT_TRUE(LoadBytes(image, MakeIcon()));
    EXPECT_EQ(image.GetWidth(), 16);
    EXPECT_EQ(image.GetFormat(), PIXEL_FORMAT_32ARGB);
    EXPECT_EQ(image.GetPixel(3, 2), 0xFF0000FFu);
    EXPECT_EQ(image.GetPixel(3, 12), 0x80FF0000u);
}

TEST(ImageFormats, ProgressiveAndCmykJpegsLoad) {
    SImage progressive;
    ASSERT_TRUE(LoadBytes(progressive, EncodeJpegDirect(120, 80, true)));
    SImage baseline;
    ASSERT_TRUE(LoadBytes(baseline, EncodeJpegDirect(120, 80, false)));
    EXPECT_LT(MeanDifference(progressive, baseline), 1.0);
    SImage cmyk;
    ASSERT_TRUE(LoadBytes(cmyk, EncodeJpegDirect(16, 16, false, true)));
    uint32_t p = cmyk.GetPixel(8, 8);
    EXPECT_GT((p >> 16) & 0xFF, 240u) << std::hex << p;
    EXPECT_LT((p >> 8) & 0xFF, 15u);
    EXPECT_LT(p & 0xFF, 15u);
}

// ---- damaged and hostile data ----

TEST(ImageDamage, TruncatedFilesOfEveryFormatLeaveThePictureEmpty) {
    SImage source = MakeGradient(40, 30, PIXEL_FORMAT_32ARGB);
    SRect hole{0, 0, 3, 3};
    source.Fill(0, &hole);
    // clang-format off
    const std::pair<const char*, std::string> cases[] = {
        {"png", Encode(source, IMAGE_PNG)}, {"jpeg", Encode(source, IMAGE_JPEG)},
        {"gif", Encode(source, IMAGE_GIF)}, {"bmp", Encode(source, IMAGE_BMP)}, {"ico", MakeIcon()},
        {"progressive", EncodeJpegDirect(40, 30, true)}};
    // clang-format on
    for (const auto& [name, bytes] : cases) {
        size_t length = bytes.size();
        // Cut inside the header, the start of the data and its middle.
        for (size_t keep :
             {size_t{1}, size_t{5}, size_t{20}, length / 4, length / 2, length * 3 / 4}) {
            SImage image = MakeGradient(2, 2);
            EXPECT_FALSE(LoadBytes(image, bytes.substr(0, keep))) << name << " " << keep;
            EXPECT_FALSE(image.IsValid()) << name << " " << keep;
        }
    }
}

TEST(ImageDamage, BrokenHeadersLeaveThePictureEmpty) {
    SImage source = MakeGradient(40, 30);
    std::string png = Encode(source, IMAGE_PNG);
    png[17] ^= 0x40; // width inside IHDR: the chunk check fails
    std::string jpeg = Encode(source, IMAGE_JPEG);
    size_t frame = jpeg.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    jpeg[frame + 4] = 0x7F; // frame header length past the data
    std::string gif = Encode(source, IMAGE_GIF);
    size_t descriptor = gif.find('\x2C', 13 + 256 * 3);
    ASSERT_NE(descriptor, std::string::npos);
    gif[descriptor + 10] = 15; // an LZW code size beyond 12
    std::string bmp = Encode(source, IMAGE_BMP);
    bmp[28] = 7; // seven bits per pixel
    std::string bmpHeader = Encode(source, IMAGE_BMP);
    bmpHeader[17] = 0x70; // a header of nearly two gigabytes
    std::string ico = MakeIcon();
    ico[6 + 15] = 0x7F; // image offset far past the end
    for (const std::string* bytes : {&png, &jpeg, &gif, &bmp, &bmpHeader, &ico}) {
        SImage image;
        EXPECT_FALSE(LoadBytes(image, *bytes)) << bytes->substr(0, 4);
        EXPECT_FALSE(image.IsValid());
    }
}

TEST(ImageDamage, FlippedBytesNeverCrash) {
    SImage source = MakeGradient(24, 16, PIXEL_FORMAT_32ARGB);
    std::vector<std::string> files = {Encode(source, IMAGE_PNG),
                                      Encode(source, IMAGE_JPEG),
                                      Encode(source, IMAGE_GIF),
                                      Encode(source, IMAGE_BMP),
                                      MakeIcon(),
                                      EncodeJpegDirect(24, 16, true)};
    std::mt19937 random(1234);
    for (const std::string& original : files) {
        for (int trial = 0; trial < 60; ++trial) {
            std::string bytes = original;
            int flips = 1 + trial % 4;
            for (int i = 0; i < flips; ++i) {
                bytes[random() % bytes.size()] ^= static_cast<char>(1 << (random() % 8));
            }
            SImage image;
            if (LoadBytes(image, bytes)) {
                EXPECT_GE(image.GetWidth(), 1);
                EXPECT_LE(image.GetWidth(), IMAGE_MAX_SIDE);
                EXPECT_LE(image.GetHeight(), IMAGE_MAX_SIDE);
            } else {
                EXPECT_FALSE(image.IsValid());
            }
            SImage cover;
            LoadBytes(cover, bytes, 10, 10);
        }
    }
}

TEST(ImageDamage, PicturesOverEightThousandPixelsAreRefused) {
    SImage image;
    EXPECT_TRUE(LoadBytes(image, MakeBlackPng(8000, 1, false)));
    EXPECT_EQ(image.GetWidth(), 8000);
    EXPECT_FALSE(LoadBytes(image, MakeBlackPng(8001, 1, false)));
    EXPECT_FALSE(LoadBytes(image, MakeBlackPng(1, 8001, false)));
    EXPECT_FALSE(LoadBytes(image, MakeBlackPng(9000, 9000, true)));
    EXPECT_FALSE(LoadBytes(image, MakeBlackPng(9000, 9000, false), 150, 150));
    EXPECT_TRUE(LoadBytes(image, MakeWhiteBmp(8000, 2)));
    EXPECT_FALSE(LoadBytes(image, MakeWhiteBmp(8001, 2)));
    EXPECT_TRUE(LoadBytes(image, EncodeJpegDirect(8000, 8, false)));
    EXPECT_FALSE(LoadBytes(image, EncodeJpegDirect(8001, 8, false)));
    EXPECT_FALSE(LoadBytes(image, EncodeJpegDirect(8, 8001, false), 16, 16));
    EXPECT_FALSE(image.IsValid());
}

// ---- the cover path ----

TEST(ImageCover, ScaledLoadMatchesFullDecodeAndResize) {
    // clang-format off
    const std::pair<const char*, std::string> cases[] = {
        {"jpeg 1200", Encode(MakeGradient(1200, 1200), IMAGE_JPEG)},
        {"jpeg 1000x800", Encode(MakeGradient(1000, 800), IMAGE_JPEG)},
        {"jpeg 1400 progressive", EncodeJpegDirect(1400, 1400, true)},
        {"png 600", Encode(MakeGradient(600, 600), IMAGE_PNG)},
        {"gif 400", Encode(MakeGradient(400, 400), IMAGE_GIF)},
        {"bmp 300", Encode(MakeGradient(300, 300), IMAGE_BMP)}};
    // clang-format on
    for (const auto& [name, bytes] : cases) {
        SImage scaled;
        ASSERT_TRUE(LoadBytes(scaled, bytes, 150, 150)) << name;
        EXPECT_EQ(scaled.GetWidth(), 150);
        EXPECT_EQ(scaled.GetHeight(), 150);
        EXPECT_EQ(scaled.GetFormat(), PIXEL_FORMAT_24RGB);
        SImage full;
        ASSERT_TRUE(LoadBytes(full, bytes));
        full.Resize(150, 150);
        EXPECT_LT(MeanDifference(scaled, full), 3.0) << name;
    }
}

TEST(ImageCover, SmallPicturesAreEnlargedAndBadSizesRefused) {
    std::string bytes = Encode(MakeGradient(100, 80), IMAGE_JPEG);
    SImage image;
    ASSERT_TRUE(LoadBytes(image, bytes, 150, 150));
    EXPECT_EQ(image.GetWidth(), 150);
    EXPECT_EQ(image.GetHeight(), 150);
    SFileMem file;
    file.Write(bytes.data(), static_cast<int>(bytes.size()));
    file.Rewind();
    EXPECT_FALSE(image.LoadScaled(&file, 0, 150)); // a whole picture, but no width
    EXPECT_FALSE(image.IsValid());
    EXPECT_FALSE(image.LoadScaled(nullptr, 150, 150));
}
