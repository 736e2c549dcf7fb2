// Encoding for SImage: JPEG through libjpeg-turbo, PNG through libpng, and
// our own GIF (a median-cut palette of up to 256 colours, LZW coded) and BMP
// (24-bit, or 32-bit with an alpha mask) writers. Each encoder fills a
// buffer, so a failure writes nothing to the file.
#include "foundation/image.h"

#include <cstdio> // before jpeglib.h, which uses FILE
#include <jpeglib.h>
#include <png.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_map>

#include "foundation/file.h"

namespace {

constexpr int JPEG_QUALITY = 90;

using Bytes = std::vector<uint8_t>;

void PutWord(Bytes& out, uint32_t value) {
    out.push_back(static_cast<uint8_t>(value));
    out.push_back(static_cast<uint8_t>(value >> 8));
}

void PutLong(Bytes& out, uint32_t value) {
    PutWord(out, value & 0xFFFF);
    PutWord(out, value >> 16);
}

// ---- JPEG ----

struct JpegContext {
    jpeg_compress_struct info;
    jpeg_error_mgr error;
    std::jmp_buf jump;
    unsigned char* buffer = nullptr; // grown by libjpeg, freed with free()
    unsigned long size = 0;
};

[[noreturn]] void OnJpegError(j_common_ptr info) {
    std::longjmp(static_cast<JpegContext*>(info->client_data)->jump, 1);
}

void OnJpegOutput(j_common_ptr) {}

bool EncodeJpeg(const SImage& image, Bytes& out) {
    auto context = std::make_unique<JpegContext>();
    jpeg_compress_struct& info = context->info;
    info.err = jpeg_std_error(&context->error);
    context->error.error_exit = OnJpegError;
    context->error.output_message = OnJpegOutput;
    info.client_data = context.get();
    if (setjmp(context->jump)) {
        jpeg_destroy_compress(&context->info);
        std::free(context->buffer);
        return false;
    }
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, &context->buffer, &context->size);
    info.image_width = static_cast<JDIMENSION>(image.GetWidth());
    info.image_height = static_cast<JDIMENSION>(image.GetHeight());
    info.input_components = 4;
    info.in_color_space = JCS_EXT_BGRX; // the words' bytes; alpha is dropped
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, JPEG_QUALITY, TRUE);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        const uint32_t* words =
            image.GetBits() + static_cast<size_t>(info.next_scanline) * image.GetWidth();
        JSAMPROW row = reinterpret_cast<JSAMPROW>(const_cast<uint32_t*>(words));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    bool isCopied = true;
    try {
        out.assign(context->buffer, context->buffer + context->size);
    } catch (const std::bad_alloc&) {
        isCopied = false;
    }
    jpeg_destroy_compress(&info);
    std::free(context->buffer);
    return isCopied;
}

// ---- PNG ----

struct PngContext {
    Bytes* out = nullptr;
};

[[noreturn]] void OnPngError(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}

void OnPngWarning(png_structp, png_const_charp) {}

void OnPngWrite(png_structp png, png_bytep data, png_size_t length) {
    auto* context = static_cast<PngContext*>(png_get_io_ptr(png));
    bool isStored = true;
    try {
        context->out->insert(context->out->end(), data, data + length);
    } catch (const std::bad_alloc&) {
        isStored = false;
    }
    if (!isStored) {
        png_error(png, "out of memory");
    }
}

void OnPngFlush(png_structp) {}

bool EncodePng(const SImage& image, Bytes& out) {
    auto context = std::make_unique<PngContext>();
    context->out = &out;
    png_structp png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnPngError, OnPngWarning);
    if (png == nullptr) {
        return false;
    }
    png_infop info = png_create_info_struct(png);
    if (info == nullptr) {
        png_destroy_write_struct(&png, nullptr);
        return false;
    }
    // png and info are not changed past this point, so they are safe to use
    // after the jump.
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, context.get(), OnPngWrite, OnPngFlush);
    bool hasAlpha = image.HasAlpha();
    png_set_IHDR(png, info, static_cast<png_uint_32>(image.GetWidth()),
                 static_cast<png_uint_32>(image.GetHeight()), 8,
                 hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    // The words hold B, G, R, A in memory order.
    png_set_bgr(png);
    if (!hasAlpha) {
        png_set_filler(png, 0, PNG_FILLER_AFTER);
    }
    for (int y = 0; y < image.GetHeight(); ++y) {
        const uint32_t* words = image.GetBits() + static_cast<size_t>(y) * image.GetWidth();
        png_write_row(png, reinterpret_cast<png_const_bytep>(words));
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

// ---- BMP ----

bool EncodeBmp(const SImage& image, Bytes& out) {
    bool hasAlpha = image.HasAlpha();
    int width = image.GetWidth();
    int height = image.GetHeight();
    uint32_t bytesPerPixel = hasAlpha ? 4 : 3;
    uint32_t stride = (width * bytesPerPixel + 3) & ~3u;
    // With alpha, a version 4 header carries the channel masks.
    uint32_t headerSize = hasAlpha ? 108 : 40;
    uint32_t offset = 14 + headerSize;
    uint32_t imageSize = stride * static_cast<uint32_t>(height);
    out.reserve(offset + imageSize);
    out.push_back('B');
    out.push_back('M');
    PutLong(out, offset + imageSize);
    PutLong(out, 0);
    PutLong(out, offset);
    PutLong(out, headerSize);
    PutLong(out, static_cast<uint32_t>(width));
    PutLong(out, static_cast<uint32_t>(height)); // positive: rows bottom-up
    PutWord(out, 1);
    PutWord(out, bytesPerPixel * 8);
    PutLong(out, hasAlpha ? 3 : 0); // BI_BITFIELDS or BI_RGB
    PutLong(out, imageSize);
    PutLong(out, 2835); // 72 dots per inch, in dots per metre
    PutLong(out, 2835);
    PutLong(out, 0);
    PutLong(out, 0);
    if (hasAlpha) {
        PutLong(out, 0x00FF0000u);         // red
        PutLong(out, 0x0000FF00u);         // green
        PutLong(out, 0x000000FFu);         // blue
        PutLong(out, 0xFF000000u);         // alpha
        PutLong(out, 0x73524742u);         // "sRGB"
        out.insert(out.end(), 36 + 12, 0); // end points and gamma, unused
    }
    for (int y = height - 1; y >= 0; --y) {
        const uint32_t* row = image.GetBits() + static_cast<size_t>(y) * width;
        size_t start = out.size();
        for (int x = 0; x < width; ++x) {
            uint32_t p = row[x];
            out.push_back(static_cast<uint8_t>(p));
            out.push_back(static_cast<uint8_t>(p >> 8));
            out.push_back(static_cast<uint8_t>(p >> 16));
            if (hasAlpha) {
                out.push_back(static_cast<uint8_t>(p >> 24));
            }
        }
        out.resize(start + stride, 0);
    }
    return true;
}

// ---- GIF ----

// A palette of up to 256 colours for the picture, and each pixel's index.
// Pixels with alpha below 128 take the transparent index, when there is one.
struct Indexed {
    std::vector<uint32_t> palette; // 0x00RRGGBB
    std::vector<uint8_t> indexes;
    int transparent = -1;
};

// The colours of a picture counted in bins of 5 bits a channel, each bin
// keeping the sum of its true colours so that means are exact.
struct Bin {
    uint32_t count = 0;
    uint64_t sum[3] = {0, 0, 0}; // red, green, blue
};

uint32_t BinKey(uint32_t p) {
    return ((p >> 9) & 0x7C00) | ((p >> 6) & 0x03E0) | ((p >> 3) & 0x1F);
}

int Channel5(uint32_t key, int channel) {
    return (key >> (10 - channel * 5)) & 31;
}

uint32_t MeanColor(const uint64_t sum[3], uint64_t count) {
    count = std::max<uint64_t>(count, 1);
    return static_cast<uint32_t>(((sum[0] / count) << 16) | ((sum[1] / count) << 8) |
                                 (sum[2] / count));
}

int Distance(uint32_t a, uint32_t b) {
    int dr = static_cast<int>((a >> 16) & 0xFF) - static_cast<int>((b >> 16) & 0xFF);
    int dg = static_cast<int>((a >> 8) & 0xFF) - static_cast<int>((b >> 8) & 0xFF);
    int db = static_cast<int>(a & 0xFF) - static_cast<int>(b & 0xFF);
    return 3 * dr * dr + 4 * dg * dg + 2 * db * db; // green weighs most to the eye
}

int Nearest(const std::vector<uint32_t>& palette, uint32_t color) {
    int best = 0;
    int bestDistance = 1 << 30;
    for (size_t i = 0; i < palette.size(); ++i) {
        int distance = Distance(palette[i], color);
        if (distance < bestDistance) {
            bestDistance = distance;
            best = static_cast<int>(i);
        }
    }
    return best;
}

// Median cut: the box with the most pixels times extent is split at its
// weighted median along its longest side, until there are count boxes.
// A few rounds of k-means then move each entry to the mean of the colours
// nearest to it.
std::vector<uint32_t> MakePalette(const std::vector<Bin>& bins, int count) {
    std::vector<std::vector<uint32_t>> boxes(1);
    for (uint32_t key = 0; key < bins.size(); ++key) {
        if (bins[key].count != 0) {
            boxes[0].push_back(key);
        }
    }
    std::vector<uint32_t> used = boxes[0];
    auto weightOf = [&](const std::vector<uint32_t>& box) {
        uint64_t weight = 0;
        for (uint32_t key : box) {
            weight += bins[key].count;
        }
        return weight;
    };
    while (static_cast<int>(boxes.size()) < count) {
        int best = -1;
        int bestChannel = 0;
        uint64_t bestScore = 0;
        for (size_t i = 0; i < boxes.size(); ++i) {
            if (boxes[i].size() < 2) {
                continue;
            }
            uint64_t weight = weightOf(boxes[i]);
            for (int channel = 0; channel < 3; ++channel) {
                int lo = 31, hi = 0;
                for (uint32_t key : boxes[i]) {
                    lo = std::min(lo, Channel5(key, channel));
                    hi = std::max(hi, Channel5(key, channel));
                }
                uint64_t score = weight * static_cast<uint64_t>(hi - lo);
                if (hi > lo && score >= bestScore) {
                    bestScore = score;
                    best = static_cast<int>(i);
                    bestChannel = channel;
                }
            }
        }
        if (best < 0) {
            break;
        }
        std::vector<uint32_t>& box = boxes[best];
        std::sort(box.begin(), box.end(), [&](uint32_t a, uint32_t b) {
            return Channel5(a, bestChannel) < Channel5(b, bestChannel);
        });
        uint64_t total = weightOf(box);
        uint64_t half = 0;
        size_t split = 1;
        for (size_t i = 0; i + 1 < box.size(); ++i) {
            half += bins[box[i]].count;
            split = i + 1;
            if (half * 2 >= total) {
                break;
            }
        }
        std::vector<uint32_t> upper(box.begin() + split, box.end());
        box.resize(split);
        boxes.push_back(std::move(upper));
    }
    std::vector<uint32_t> palette;
    for (const std::vector<uint32_t>& box : boxes) {
        uint64_t sum[3] = {0, 0, 0};
        uint64_t weight = 0;
        for (uint32_t key : box) {
            for (int c = 0; c < 3; ++c) {
                sum[c] += bins[key].sum[c];
            }
            weight += bins[key].count;
        }
        palette.push_back(MeanColor(sum, weight));
    }
    constexpr int ROUNDS = 3;
    for (int round = 0; round < ROUNDS; ++round) {
        std::vector<uint64_t> sums(palette.size() * 3, 0);
        std::vector<uint64_t> weights(palette.size(), 0);
        for (uint32_t key : used) {
            const Bin& bin = bins[key];
            int entry = Nearest(palette, MeanColor(bin.sum, bin.count));
            for (int c = 0; c < 3; ++c) {
                sums[entry * 3 + c] += bin.sum[c];
            }
            weights[entry] += bin.count;
        }
        for (size_t i = 0; i < palette.size(); ++i) {
            if (weights[i] != 0) {
                palette[i] = MeanColor(&sums[i * 3], weights[i]);
            }
        }
    }
    return palette;
}

Indexed Quantise(const SImage& image) {
    Indexed result;
    const uint32_t* words = image.GetBits();
    size_t count = static_cast<size_t>(image.GetWidth()) * image.GetHeight();
    bool hasAlpha = image.HasAlpha();
    auto isClear = [&](uint32_t p) { return hasAlpha && (p >> 24) < 128; };
    bool anyClear = std::any_of(words, words + count, isClear);
    int room = anyClear ? 255 : 256;
    result.indexes.resize(count);
    // A picture of few colours keeps them exactly.
    std::unordered_map<uint32_t, uint8_t> exact;
    for (size_t i = 0; i < count && static_cast<int>(exact.size()) <= room; ++i) {
        if (!isClear(words[i])) {
            exact.emplace(words[i] & 0x00FFFFFFu, 0);
        }
    }
    if (static_cast<int>(exact.size()) <= room) {
        for (auto& [rgb, index] : exact) {
            index = static_cast<uint8_t>(result.palette.size());
            result.palette.push_back(rgb);
        }
        for (size_t i = 0; i < count; ++i) {
            if (!isClear(words[i])) {
                result.indexes[i] = exact[words[i] & 0x00FFFFFFu];
            }
        }
    } else {
        std::vector<Bin> bins(1 << 15);
        for (size_t i = 0; i < count; ++i) {
            uint32_t p = words[i];
            if (!isClear(p)) {
                Bin& bin = bins[BinKey(p)];
                ++bin.count;
                bin.sum[0] += (p >> 16) & 0xFF;
                bin.sum[1] += (p >> 8) & 0xFF;
                bin.sum[2] += p & 0xFF;
            }
        }
        result.palette = MakePalette(bins, room);
        // Each bin is mapped once, by its mean, to the nearest entry.
        std::vector<int16_t> map(1 << 15, -1);
        for (size_t i = 0; i < count; ++i) {
            uint32_t p = words[i];
            if (isClear(p)) {
                continue;
            }
            uint32_t key = BinKey(p);
            if (map[key] < 0) {
                map[key] = static_cast<int16_t>(
                    Nearest(result.palette, MeanColor(bins[key].sum, bins[key].count)));
            }
            result.indexes[i] = static_cast<uint8_t>(map[key]);
        }
    }
    if (anyClear) {
        result.transparent = static_cast<int>(result.palette.size());
        result.palette.push_back(0);
        for (size_t i = 0; i < count; ++i) {
            if (isClear(words[i])) {
                result.indexes[i] = static_cast<uint8_t>(result.transparent);
            }
        }
    }
    if (result.palette.empty()) {
        result.palette.push_back(0);
    }
    return result;
}

// Writes variable-width LZW codes, least significant bit first, in data
// sub-blocks of up to 255 bytes.
class GifCodeWriter {
public:
    explicit GifCodeWriter(Bytes& out) : out(out) {}
    void Put(int code, int width) {
        bits |= static_cast<uint32_t>(code) << count;
        count += width;
        while (count >= 8) {
            Byte(static_cast<uint8_t>(bits));
            bits >>= 8;
            count -= 8;
        }
    }
    void Finish() {
        if (count > 0) {
            Byte(static_cast<uint8_t>(bits));
        }
        FlushBlock();
        out.push_back(0); // block terminator
    }

private:
    void Byte(uint8_t value) {
        block[blockSize++] = value;
        if (blockSize == 255) {
            FlushBlock();
        }
    }
    void FlushBlock() {
        if (blockSize == 0) {
            return;
        }
        out.push_back(static_cast<uint8_t>(blockSize));
        out.insert(out.end(), block.begin(), block.begin() + blockSize);
        blockSize = 0;
    }

    Bytes& out;
    uint32_t bits = 0;
    int count = 0;
    std::array<uint8_t, 255> block{};
    int blockSize = 0;
};

// The LZW string table: (prefix code, next index) to code, by open
// addressing in a table kept small enough to clear cheaply at each reset.
class LzwTable {
public:
    LzwTable() : keys(SLOTS, -1), codes(SLOTS, 0) {}
    void Clear() { std::fill(keys.begin(), keys.end(), -1); }
    // The code for the pair, or -1; slot receives where it is or would go.
    int Find(int prefix, int index, size_t& slot) const {
        int key = (prefix << 8) | index;
        slot = (static_cast<size_t>(key) * 2654435761u) & (SLOTS - 1);
        while (keys[slot] >= 0) {
            if (keys[slot] == key) {
                return codes[slot];
            }
            slot = (slot + 1) & (SLOTS - 1);
        }
        return -1;
    }
    void Insert(size_t slot, int prefix, int index, int code) {
        keys[slot] = (prefix << 8) | index;
        codes[slot] = static_cast<uint16_t>(code);
    }

private:
    static constexpr size_t SLOTS = 8192; // twice the codes: probes stay short
    std::vector<int> keys;
    std::vector<uint16_t> codes;
};

void EncodeLzw(const std::vector<uint8_t>& indexes, int minCodeSize, Bytes& out) {
    const int clear = 1 << minCodeSize;
    const int end = clear + 1;
    constexpr int MAX_CODES = 4096;
    LzwTable table;
    GifCodeWriter writer(out);
    int width = minCodeSize + 1;
    int next = end + 1;
    writer.Put(clear, width);
    int prefix = indexes.empty() ? -1 : indexes[0];
    for (size_t i = 1; i < indexes.size(); ++i) {
        int index = indexes[i];
        size_t slot = 0;
        int code = table.Find(prefix, index, slot);
        if (code >= 0) {
            prefix = code;
            continue;
        }
        writer.Put(prefix, width);
        if (next < MAX_CODES) {
            table.Insert(slot, prefix, index, next);
            // The reader widens its codes once the table reaches the
            // next power of two; so does the writer.
            if (next == (1 << width) && width < 12) {
                ++width;
            }
            ++next;
        } else {
            writer.Put(clear, width);
            table.Clear();
            width = minCodeSize + 1;
            next = end + 1;
        }
        prefix = index;
    }
    if (prefix >= 0) {
        writer.Put(prefix, width);
    }
    writer.Put(end, width);
    writer.Finish();
}

bool EncodeGif(const SImage& image, Bytes& out) {
    Indexed indexed = Quantise(image);
    int bits = 1;
    while ((1 << bits) < static_cast<int>(indexed.palette.size())) {
        ++bits;
    }
    int minCodeSize = std::max(bits, 2);
    out.insert(out.end(), {'G', 'I', 'F', '8', '9', 'a'});
    PutWord(out, static_cast<uint32_t>(image.GetWidth()));
    PutWord(out, static_cast<uint32_t>(image.GetHeight()));
    out.push_back(static_cast<uint8_t>(0x80 | ((bits - 1) << 4) | (bits - 1))); // global table
    out.push_back(0);                                                           // background index
    out.push_back(0);                                                           // square pixels
    for (int i = 0; i < (1 << bits); ++i) {
        uint32_t color = i < static_cast<int>(indexed.palette.size()) ? indexed.palette[i] : 0;
        out.push_back(static_cast<uint8_t>(color >> 16));
        out.push_back(static_cast<uint8_t>(color >> 8));
        out.push_back(static_cast<uint8_t>(color));
    }
    if (indexed.transparent >= 0) {
        out.insert(out.end(), {0x21, 0xF9, 4, 0x01, 0, 0});
        out.push_back(static_cast<uint8_t>(indexed.transparent));
        out.push_back(0);
    }
    out.push_back(0x2C); // image descriptor
    PutWord(out, 0);
    PutWord(out, 0);
    PutWord(out, static_cast<uint32_t>(image.GetWidth()));
    PutWord(out, static_cast<uint32_t>(image.GetHeight()));
    out.push_back(0); // no local table, not interlaced
    out.push_back(static_cast<uint8_t>(minCodeSize));
    EncodeLzw(indexed.indexes, minCodeSize, out);
    out.push_back(0x3B); // trailer
    return true;
}

} // namespace

bool SImage::Save(SFile* file, int saveFormat) const {
    if (!IsValid() || file == nullptr) {
        return false;
    }
    Bytes bytes;
    bool isEncoded = false;
    try {
        switch (saveFormat) {
        case IMAGE_JPEG:
            isEncoded = EncodeJpeg(*this, bytes);
            break;
        case IMAGE_PNG:
            isEncoded = EncodePng(*this, bytes);
            break;
        case IMAGE_GIF:
            isEncoded = EncodeGif(*this, bytes);
            break;
        default:
            isEncoded = EncodeBmp(*this, bytes);
            break;
        }
    } catch (const std::bad_alloc&) {
        isEncoded = false;
    }
    if (!isEncoded || bytes.empty()) {
        return false;
    }
    return file->Write(bytes.data(), static_cast<int>(bytes.size())) ==
           static_cast<int>(bytes.size());
}
