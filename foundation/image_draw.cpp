// Drawing of SImage onto Cairo: the thirteen draw modes, the key colour and
// the back colour, and the exchange of pixels with Cairo image surfaces.
#include "foundation/image.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr uint32_t COLOR_NONE = 0xFF000000u;
constexpr uint32_t COLOR_CLEAR = 0xFF000001u;

SRect Intersect(const SRect& a, const SRect& b) {
    SRect result{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                 std::min(a.bottom, b.bottom)};
    return result.IsEmpty() ? SRect{} : result;
}

// Program colour 0x00BBGGRR to Cairo's 0 to 1 channels.
void SetColor(cairo_t* cr, uint32_t color) {
    cairo_set_source_rgb(cr, (color & 0xFF) / 255.0, ((color >> 8) & 0xFF) / 255.0,
                         ((color >> 16) & 0xFF) / 255.0);
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

// A surface holding the region of the picture, owned by the caller. An
// opaque picture drawn whole without a key colour is wrapped without a copy;
// the caller must finish the surface before the picture changes.
cairo_surface_t* MakeSurface(const SImage& image, const SRect& region, uint32_t keyColor) {
    int regionWidth = region.Width();
    int regionHeight = region.Height();
    bool isWhole = region.left == 0 && region.top == 0 && regionWidth == image.GetWidth() &&
                   regionHeight == image.GetHeight();
    bool hasKey = keyColor != COLOR_NONE;
    if (isWhole && !hasKey && !image.HasAlpha()) {
        auto* data = reinterpret_cast<unsigned char*>(const_cast<uint32_t*>(image.GetBits()));
        return cairo_image_surface_create_for_data(data, CAIRO_FORMAT_RGB24, regionWidth,
                                                   regionHeight, regionWidth * 4);
    }
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, regionWidth, regionHeight);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        return surface;
    }
    uint32_t keyRgb = ((keyColor & 0xFF) << 16) | (keyColor & 0xFF00) | ((keyColor >> 16) & 0xFF);
    unsigned char* data = cairo_image_surface_get_data(surface);
    int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < regionHeight; ++y) {
        const uint32_t* in =
            image.GetBits() + static_cast<size_t>(region.top + y) * image.GetWidth() + region.left;
        auto* out = reinterpret_cast<uint32_t*>(data + static_cast<size_t>(y) * stride);
        for (int x = 0; x < regionWidth; ++x) {
            uint32_t p = in[x];
            out[x] = hasKey && (p & 0x00FFFFFFu) == keyRgb ? 0 : Premultiply(p);
        }
    }
    cairo_surface_mark_dirty(surface);
    return surface;
}

// Fills the target less the picture's rectangle with the back colour.
void FillAround(cairo_t* cr, uint32_t backColor, const SRect& target, const SRect& picture) {
    if (backColor == COLOR_NONE || backColor == COLOR_CLEAR) {
        return;
    }
    cairo_save(cr);
    cairo_new_path(cr);
    cairo_set_fill_rule(cr, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_rectangle(cr, target.left, target.top, target.Width(), target.Height());
    SRect inside = Intersect(target, picture);
    if (!inside.IsEmpty()) {
        cairo_rectangle(cr, inside.left, inside.top, inside.Width(), inside.Height());
    }
    SetColor(cr, backColor);
    cairo_fill(cr);
    cairo_restore(cr);
}

// Draws the whole surface (width x height) stretched over destination.
void DrawStretched(cairo_t* cr, cairo_surface_t* surface, int width, int height,
                   const SRect& destination) {
    if (destination.IsEmpty()) {
        return;
    }
    cairo_save(cr);
    cairo_translate(cr, destination.left, destination.top);
    cairo_scale(cr, static_cast<double>(destination.Width()) / width,
                static_cast<double>(destination.Height()) / height);
    cairo_set_source_surface(cr, surface, 0, 0);
    cairo_pattern_t* pattern = cairo_get_source(cr);
    cairo_pattern_set_filter(pattern, CAIRO_FILTER_GOOD);
    // Edges repeat their own pixels rather than fading into nothing.
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    cairo_rectangle(cr, 0, 0, width, height);
    cairo_fill(cr);
    cairo_restore(cr);
}

} // namespace

SRect FitRect(const SRect& box, int width, int height, bool enlarge) {
    SRect area = box;
    double ratio = height < 1 ? 1.0 : static_cast<double>(width) / height;
    if (!enlarge) {
        // A small picture first shrinks the box to its own size, centred.
        if (ratio >= 1.0 && width < area.Width()) {
            area.left = (box.left + box.right) / 2 - width / 2;
            area.right = area.left + width;
        } else if (ratio < 1.0 && height < area.Height()) {
            area.top = (box.top + box.bottom) / 2 - height / 2;
            area.bottom = area.top + height;
        }
    }
    int fittedHeight = static_cast<int>(std::lround(area.Width() / ratio));
    int fittedWidth = static_cast<int>(std::lround(area.Height() * ratio));
    SRect result = area;
    if (fittedHeight > area.Height()) {
        result.left = (area.left + area.right) / 2 - fittedWidth / 2;
        result.right = result.left + fittedWidth;
    } else {
        result.top = (area.top + area.bottom) / 2 - fittedHeight / 2;
        result.bottom = result.top + fittedHeight;
    }
    return result;
}

void SImage::Draw(cairo_t* cr, const SRect* target, const SRect* source) const {
    if (cr == nullptr || !IsValid()) {
        return;
    }
    SRect whole{0, 0, width, height};
    SRect region = source != nullptr ? Intersect(*source, whole) : whole;
    SRect box = target != nullptr ? *target : whole;
    if (region.IsEmpty() || box.IsEmpty()) {
        return;
    }
    int regionWidth = region.Width();
    int regionHeight = region.Height();
    cairo_surface_t* surface = MakeSurface(*this, region, keyColor);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return;
    }
    cairo_save(cr);
    if (drawMode == DRAW_STRETCH) {
        DrawStretched(cr, surface, regionWidth, regionHeight, box);
    } else if (drawMode == DRAW_TILE) {
        cairo_pattern_t* pattern = cairo_pattern_create_for_surface(surface);
        cairo_pattern_set_extend(pattern, CAIRO_EXTEND_REPEAT);
        cairo_matrix_t matrix;
        cairo_matrix_init_translate(&matrix, -box.left, -box.top);
        cairo_pattern_set_matrix(pattern, &matrix);
        cairo_set_source(cr, pattern);
        cairo_rectangle(cr, box.left, box.top, box.Width(), box.Height());
        cairo_fill(cr);
        cairo_pattern_destroy(pattern);
    } else if (drawMode == DRAW_FIT || drawMode == DRAW_FIT_ENLARGE) {
        SRect fitted = FitRect(box, regionWidth, regionHeight, drawMode == DRAW_FIT_ENLARGE);
        FillAround(cr, backColor, box, fitted);
        DrawStretched(cr, surface, regionWidth, regionHeight, fitted);
    } else {
        // Natural size; an unknown mode draws top left.
        int mode = drawMode >= DRAW_TOPLEFT && drawMode <= DRAW_CENTER ? drawMode : DRAW_TOPLEFT;
        int x = box.left;
        int y = box.top;
        if (mode == DRAW_TOPCENTER || mode == DRAW_BOTTOMCENTER || mode == DRAW_CENTER) {
            x = (box.left + box.right) / 2 - regionWidth / 2;
        } else if (mode == DRAW_TOPRIGHT || mode == DRAW_MIDDLERIGHT || mode == DRAW_BOTTOMRIGHT) {
            x = box.right - regionWidth;
        }
        if (mode == DRAW_MIDDLELEFT || mode == DRAW_MIDDLERIGHT || mode == DRAW_CENTER) {
            y = (box.top + box.bottom) / 2 - regionHeight / 2;
        } else if (mode >= DRAW_BOTTOMLEFT && mode <= DRAW_BOTTOMRIGHT) {
            y = box.bottom - regionHeight;
        }
        SRect placed{x, y, x + regionWidth, y + regionHeight};
        FillAround(cr, backColor, box, placed);
        SRect visible = Intersect(box, placed);
        if (!visible.IsEmpty()) {
            cairo_set_source_surface(cr, surface, x, y);
            cairo_rectangle(cr, visible.left, visible.top, visible.Width(), visible.Height());
            cairo_fill(cr);
        }
    }
    cairo_restore(cr);
    // The surface may wrap the pixels: nothing may keep it past this call.
    cairo_surface_finish(surface);
    cairo_surface_destroy(surface);
}

void SImage::DrawAt(cairo_t* cr, int x, int y, int drawWidth, int drawHeight,
                    const SRect* source) const {
    if (!IsValid()) {
        return;
    }
    int naturalWidth = source != nullptr ? source->Width() : width;
    int naturalHeight = source != nullptr ? source->Height() : height;
    SRect target{x, y, x + (drawWidth == -1 ? naturalWidth : drawWidth),
                 y + (drawHeight == -1 ? naturalHeight : drawHeight)};
    Draw(cr, &target, source);
}

cairo_surface_t* SImage::CreateSurface() const {
    if (!IsValid()) {
        return nullptr;
    }
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return nullptr;
    }
    unsigned char* data = cairo_image_surface_get_data(surface);
    int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < height; ++y) {
        const uint32_t* in = pixels.data() + static_cast<size_t>(y) * width;
        auto* out = reinterpret_cast<uint32_t*>(data + static_cast<size_t>(y) * stride);
        std::transform(in, in + width, out, Premultiply);
    }
    cairo_surface_mark_dirty(surface);
    return surface;
}

bool SImage::LoadSurface(cairo_surface_t* surface, int x, int y, int copyWidth, int copyHeight) {
    Empty();
    if (surface == nullptr || cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE) {
        return false;
    }
    cairo_format_t surfaceFormat = cairo_image_surface_get_format(surface);
    if (surfaceFormat != CAIRO_FORMAT_ARGB32 && surfaceFormat != CAIRO_FORMAT_RGB24) {
        return false;
    }
    cairo_surface_flush(surface);
    int surfaceWidth = cairo_image_surface_get_width(surface);
    int surfaceHeight = cairo_image_surface_get_height(surface);
    if (copyWidth == -1) {
        copyWidth = surfaceWidth - x;
    }
    if (copyHeight == -1) {
        copyHeight = surfaceHeight - y;
    }
    if (x < 0 || y < 0 || copyWidth < 1 || copyHeight < 1 || x + copyWidth > surfaceWidth ||
        y + copyHeight > surfaceHeight) {
        return false;
    }
    bool hasAlpha = surfaceFormat == CAIRO_FORMAT_ARGB32;
    Create(copyWidth, copyHeight, hasAlpha ? PIXEL_FORMAT_32ARGB : PIXEL_FORMAT_24RGB);
    if (!IsValid()) {
        return false;
    }
    const unsigned char* data = cairo_image_surface_get_data(surface);
    int stride = cairo_image_surface_get_stride(surface);
    for (int row = 0; row < copyHeight; ++row) {
        const auto* in =
            reinterpret_cast<const uint32_t*>(data + static_cast<size_t>(y + row) * stride) + x;
        uint32_t* out = &pixels[static_cast<size_t>(row) * width];
        for (int column = 0; column < copyWidth; ++column) {
            uint32_t p = in[column];
            uint32_t a = hasAlpha ? p >> 24 : 255;
            if (a == 255) {
                out[column] = p | 0xFF000000u;
            } else if (a == 0) {
                out[column] = 0;
            } else {
                uint32_t r = (((p >> 16) & 0xFF) * 255 + a / 2) / a;
                uint32_t g = (((p >> 8) & 0xFF) * 255 + a / 2) / a;
                uint32_t b = ((p & 0xFF) * 255 + a / 2) / a;
                out[column] = (a << 24) | (std::min(r, 255u) << 16) | (std::min(g, 255u) << 8) |
                              std::min(b, 255u);
            }
        }
    }
    return true;
}
