// Decoding for SImage. JPEG goes straight through libjpeg-turbo, which can
// decode at a reduced DCT scale; PNG, GIF, BMP and ICO go through a
// gdk-pixbuf loader fed from memory. The format is told by the first bytes
// and the matching decoder alone is used, so no other loader ever sees the
// data. Every failure, whatever the stage, leaves nothing decoded.
#include "foundation/image.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
// jpeglib.h needs stdio first, and jerror.h needs jpeglib.h.
#include <cstdio>
#include <jpeglib.h>

#include <jerror.h>

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

namespace {

// A progressive JPEG may carry any number of scans, each a full pass over
// the coefficients; real files have a dozen. This bounds hostile ones.
constexpr int JPEG_MAX_SCANS = 500;

// The decoded picture before it is handed to the SImage.
struct Decoded {
    std::vector<uint32_t> pixels;
    int width = 0;
    int height = 0;
    bool hasAlpha = false;
};

bool Allocate(std::vector<uint32_t>& words, size_t count) {
    try {
        words.assign(count, 0);
    } catch (const std::bad_alloc&) {
        words.clear();
        return false;
    }
    return true;
}

// ---- JPEG through libjpeg-turbo ----

// Lives on the heap so that nothing the decoder changes sits in a local of
// the frame that setjmp returns to.
struct JpegContext {
    jpeg_decompress_struct info;
    jpeg_error_mgr error;
    jpeg_progress_mgr progress;
    std::jmp_buf jump;
    std::vector<uint8_t> row; // one CMYK row
};

[[noreturn]] void OnJpegError(j_common_ptr info) {
    auto* context = reinterpret_cast<JpegContext*>(info->client_data);
    std::longjmp(context->jump, 1);
}

// Warnings (a damaged but readable stream) are neither printed nor fatal.
void OnJpegMessage(j_common_ptr, int) {}
void OnJpegOutput(j_common_ptr) {}

// The data ran out before the picture did: a truncated file is an error,
// not a picture with a grey lower part.
boolean OnJpegEnd(j_decompress_ptr info) {
    ERREXIT(info, JERR_INPUT_EOF);
    return FALSE;
}

void OnJpegProgress(j_common_ptr common) {
    auto* info = reinterpret_cast<j_decompress_ptr>(common);
    if (info->input_scan_number > JPEG_MAX_SCANS) {
        ERREXIT(common, JERR_NOT_COMPILED);
    }
}

// Adobe writes CMYK inverted; others write it plain.
uint32_t CmykToArgb(const uint8_t* cmyk, bool isInverted) {
    uint32_t c = cmyk[0], m = cmyk[1], y = cmyk[2], k = cmyk[3];
    if (!isInverted) {
        c = 255 - c;
        m = 255 - m;
        y = 255 - y;
        k = 255 - k;
    }
    uint32_t r = (c * k + 127) / 255;
    uint32_t g = (m * k + 127) / 255;
    uint32_t b = (y * k + 127) / 255;
    return 0xFF000000u | (r << 16) | (g << 8) | b;
}

// Picks the smallest DCT scale (n/8, n from 1 to 8) whose output still
// covers minWidth by minHeight; the full size when none is asked.
void ChooseJpegScale(jpeg_decompress_struct& info, int minWidth, int minHeight) {
    info.scale_num = 8;
    info.scale_denom = 8;
    if (minWidth < 1 || minHeight < 1) {
        return;
    }
    for (unsigned scale = 1; scale <= 8; ++scale) {
        info.scale_num = scale;
        jpeg_calc_output_dimensions(&info);
        if (static_cast<int>(info.output_width) >= minWidth &&
            static_cast<int>(info.output_height) >= minHeight) {
            return;
        }
    }
    info.scale_num = 8;
}

bool DecodeJpeg(const uint8_t* data, int size, int minWidth, int minHeight, Decoded& out) {
    auto context = std::make_unique<JpegContext>();
    jpeg_decompress_struct& info = context->info;
    info.err = jpeg_std_error(&context->error);
    context->error.error_exit = OnJpegError;
    context->error.emit_message = OnJpegMessage;
    context->error.output_message = OnJpegOutput;
    info.client_data = context.get();
    if (setjmp(context->jump)) {
        jpeg_destroy_decompress(&context->info);
        out.pixels.clear();
        return false;
    }
    jpeg_create_decompress(&info);
    context->progress.progress_monitor = OnJpegProgress;
    info.progress = &context->progress;
    jpeg_mem_src(&info, data, static_cast<unsigned long>(size));
    info.src->fill_input_buffer = OnJpegEnd;
    jpeg_read_header(&info, TRUE);
    if (info.image_width > IMAGE_MAX_SIDE || info.image_height > IMAGE_MAX_SIDE) {
        jpeg_destroy_decompress(&info);
        return false;
    }
    bool isCmyk = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
    info.out_color_space = isCmyk ? JCS_CMYK : JCS_EXT_BGRA;
    ChooseJpegScale(info, minWidth, minHeight);
    jpeg_start_decompress(&info);
    out.width = static_cast<int>(info.output_width);
    out.height = static_cast<int>(info.output_height);
    bool isAllocated = out.width > 0 && out.height > 0 &&
                       Allocate(out.pixels, static_cast<size_t>(out.width) * out.height);
    if (isAllocated && isCmyk) {
        try {
            context->row.resize(static_cast<size_t>(out.width) * 4);
        } catch (const std::bad_alloc&) {
            isAllocated = false;
        }
    }
    if (!isAllocated) {
        jpeg_destroy_decompress(&info);
        out.pixels.clear();
        return false;
    }
    bool isInverted = info.saw_Adobe_marker;
    while (info.output_scanline < info.output_height) {
        uint32_t* target = &out.pixels[static_cast<size_t>(info.output_scanline) * out.width];
        JSAMPROW row = isCmyk ? context->row.data() : reinterpret_cast<JSAMPROW>(target);
        if (jpeg_read_scanlines(&info, &row, 1) != 1) {
            ERREXIT(&info, JERR_INPUT_EOF);
        }
        if (isCmyk) {
            for (int x = 0; x < out.width; ++x) {
                target[x] = CmykToArgb(&context->row[static_cast<size_t>(x) * 4], isInverted);
            }
        }
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    out.hasAlpha = false;
    return true;
}

// ---- PNG, GIF, BMP, ICO through gdk-pixbuf ----

struct PixbufRequest {
    int minWidth = 0;
    int minHeight = 0;
    bool isRefused = false;
};

void OnSizePrepared(GdkPixbufLoader* loader, int width, int height, gpointer data) {
    auto* request = static_cast<PixbufRequest*>(data);
    if (width < 1 || height < 1 || width > IMAGE_MAX_SIDE || height > IMAGE_MAX_SIDE) {
        // A size of 0 makes the loader stop before it allocates the picture.
        request->isRefused = true;
        gdk_pixbuf_loader_set_size(loader, 0, 0);
        return;
    }
    // Covers: the loader scales down to the size asked, never up.
    if (request->minWidth > 0 && request->minHeight > 0 && width > request->minWidth &&
        height > request->minHeight) {
        gdk_pixbuf_loader_set_size(loader, request->minWidth, request->minHeight);
    }
}

bool CopyPixbuf(GdkPixbuf* pixbuf, Decoded& out) {
    if (gdk_pixbuf_get_colorspace(pixbuf) != GDK_COLORSPACE_RGB ||
        gdk_pixbuf_get_bits_per_sample(pixbuf) != 8) {
        return false;
    }
    int width = gdk_pixbuf_get_width(pixbuf);
    int height = gdk_pixbuf_get_height(pixbuf);
    int channels = gdk_pixbuf_get_n_channels(pixbuf);
    bool hasAlpha = gdk_pixbuf_get_has_alpha(pixbuf);
    if (width < 1 || height < 1 || width > IMAGE_MAX_SIDE || height > IMAGE_MAX_SIDE ||
        channels != (hasAlpha ? 4 : 3)) {
        return false;
    }
    if (!Allocate(out.pixels, static_cast<size_t>(width) * height)) {
        return false;
    }
    const guint8* bytes = gdk_pixbuf_read_pixels(pixbuf);
    int stride = gdk_pixbuf_get_rowstride(pixbuf);
    for (int y = 0; y < height; ++y) {
        const guint8* in = bytes + static_cast<size_t>(y) * stride;
        uint32_t* row = &out.pixels[static_cast<size_t>(y) * width];
        for (int x = 0; x < width; ++x, in += channels) {
            uint32_t alpha = hasAlpha ? in[3] : 255;
            row[x] = (alpha << 24) | (uint32_t(in[0]) << 16) | (uint32_t(in[1]) << 8) | in[2];
        }
    }
    out.width = width;
    out.height = height;
    out.hasAlpha = hasAlpha;
    return true;
}

bool DecodePixbuf(const char* type, const uint8_t* data, int size, int minWidth, int minHeight,
                  Decoded& out) {
    GdkPixbufLoader* loader = gdk_pixbuf_loader_new_with_type(type, nullptr);
    if (loader == nullptr) {
        return false;
    }
    PixbufRequest request{minWidth, minHeight, false};
    g_signal_connect(loader, "size-prepared", G_CALLBACK(OnSizePrepared), &request);
    bool isWritten = gdk_pixbuf_loader_write(loader, data, static_cast<gsize>(size), nullptr);
    // Close is needed even after a failed write; an incomplete picture fails
    // here.
    bool isClosed = gdk_pixbuf_loader_close(loader, nullptr);
    bool isDecoded = false;
    if (isWritten && isClosed && !request.isRefused) {
        GdkPixbuf* pixbuf = gdk_pixbuf_loader_get_pixbuf(loader);
        isDecoded = pixbuf != nullptr && CopyPixbuf(pixbuf, out);
    }
    g_object_unref(loader);
    if (!isDecoded) {
        out.pixels.clear();
    }
    return isDecoded;
}

uint32_t ReadLittle32(const uint8_t* p) {
    return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}

uint32_t ReadBig32(const uint8_t* p) {
    return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | p[3];
}

// gdk-pixbuf shows what arrived of a cut PNG, BMP or icon as if it were the
// whole picture. These checks find data that ends before the structure
// says it should, so such a file is refused.
bool IsPngComplete(const uint8_t* data, size_t size) {
    size_t at = 8;
    while (at + 12 <= size) {
        uint32_t length = ReadBig32(data + at);
        if (length > 0x7FFFFFFFu || length > size - at - 12) {
            return false;
        }
        if (std::memcmp(data + at + 4, "IEND", 4) == 0) {
            return true;
        }
        at += 12 + length;
    }
    return false;
}

bool IsBmpComplete(const uint8_t* data, size_t size) {
    if (size < 26) {
        return false;
    }
    uint64_t offset = ReadLittle32(data + 10);
    uint32_t headerSize = ReadLittle32(data + 14);
    // The loader sizes its buffer from these fields before it reads on, so
    // a wild value would cost gigabytes: only the header sizes of the
    // format's versions, and pixels that start inside the file.
    static const uint32_t HEADER_SIZES[] = {12, 16, 40, 52, 56, 64, 108, 124};
    if (std::find(std::begin(HEADER_SIZES), std::end(HEADER_SIZES), headerSize) ==
            std::end(HEADER_SIZES) ||
        offset < 14 + headerSize || offset > size) {
        return false;
    }
    uint64_t width, height, bits, compression;
    if (headerSize == 12) {
        width = data[18] | (data[19] << 8);
        height = data[20] | (data[21] << 8);
        bits = data[24] | (data[25] << 8);
        compression = 0;
    } else {
        if (size < 34) {
            return false;
        }
        width = ReadLittle32(data + 18);
        int32_t rows = static_cast<int32_t>(ReadLittle32(data + 22));
        height = rows < 0 ? 0 - static_cast<int64_t>(rows) : rows;
        bits = data[28] | (data[29] << 8);
        compression = ReadLittle32(data + 30);
    }
    // Run-length data has no size known in advance: the loader checks it.
    if (compression != 0 && compression != 3 && compression != 6) {
        return true;
    }
    uint64_t stride = (width * bits + 31) / 32 * 4;
    return offset + stride * height <= size;
}

bool IsIconComplete(const uint8_t* data, size_t size) {
    size_t count = data[4] | (data[5] << 8);
    if (size < 6 + count * 16) {
        return false;
    }
    for (size_t i = 0; i < count; ++i) {
        const uint8_t* entry = data + 6 + i * 16;
        uint64_t length = ReadLittle32(entry + 8);
        uint64_t offset = ReadLittle32(entry + 12);
        if (offset + length > size) {
            return false;
        }
    }
    return true;
}

bool IsComplete(const char* type, const uint8_t* data, size_t size) {
    if (std::strcmp(type, "png") == 0) {
        return IsPngComplete(data, size);
    }
    if (std::strcmp(type, "bmp") == 0) {
        return IsBmpComplete(data, size);
    }
    if (std::strcmp(type, "ico") == 0) {
        return IsIconComplete(data, size);
    }
    return true;
}

// The gdk-pixbuf loader for the data, from its signature; null when the
// data is no picture read here.
const char* PixbufType(const uint8_t* data, int size) {
    static const uint8_t PNG_SIGNATURE[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    if (size >= 8 && std::memcmp(data, PNG_SIGNATURE, 8) == 0) {
        return "png";
    }
    if (size >= 6 && (std::memcmp(data, "GIF87a", 6) == 0 || std::memcmp(data, "GIF89a", 6) == 0)) {
        return "gif";
    }
    if (size >= 2 && data[0] == 'B' && data[1] == 'M') {
        return "bmp";
    }
    // Icons and cursors: reserved 0, type 1 or 2, at least one entry.
    if (size >= 6 && data[0] == 0 && data[1] == 0 && (data[2] == 1 || data[2] == 2) &&
        data[3] == 0 && (data[4] != 0 || data[5] != 0)) {
        return "ico";
    }
    return nullptr;
}

} // namespace

bool SImage::Decode(const uint8_t* data, int size, int minWidth, int minHeight) {
    Decoded decoded;
    bool isDecoded = false;
    if (size >= 3 && data[0] == 0xFF && data[1] == 0xD8 && data[2] == 0xFF) {
        isDecoded = DecodeJpeg(data, size, minWidth, minHeight, decoded);
    } else if (const char* type = PixbufType(data, size)) {
        isDecoded = IsComplete(type, data, static_cast<size_t>(size)) &&
                    DecodePixbuf(type, data, size, minWidth, minHeight, decoded);
        // GIF pictures always come with an alpha channel; only those with
        // a transparent colour keep it.
        if (isDecoded && std::strcmp(type, "gif") == 0) {
            decoded.hasAlpha = std::any_of(decoded.pixels.begin(), decoded.pixels.end(),
                                           [](uint32_t p) { return (p >> 24) != 255; });
        }
    }
    if (!isDecoded) {
        return false;
    }
    Adopt(std::move(decoded.pixels), decoded.width, decoded.height,
          decoded.hasAlpha ? PIXEL_FORMAT_32ARGB : PIXEL_FORMAT_24RGB);
    return true;
}
