#include "toolkit/draw.h"

#include <cairo.h>
#include <cmath>
#include <vector>
#include <pango/pangocairo.h>

#include "foundation/file.h"
#include "toolkit/platform/platform.h"

void SetSourceColor(cairo_t* cr, uint32_t color) {
    cairo_set_source_rgb(cr, (color & 0xFF) / 255.0, ((color >> 8) & 0xFF) / 255.0,
                         ((color >> 16) & 0xFF) / 255.0);
}

namespace {

// A layout of text in font on a scratch surface; the caller frees both.
PangoLayout* MakeLayout(const SFont* font, const char* text, int count, cairo_t** cr) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    *cr = cairo_create(surface);
    cairo_surface_destroy(surface);
    return MakeTextLayout(*cr, font, text, count);
}

} // namespace

void SetLayoutFont(PangoLayout* layout, const SFont* font, const char* fallback) {
    SString description = font != nullptr ? font->Describe() : SString(fallback);
    PangoFontDescription* pangoFont = pango_font_description_from_string(description.c_str());
    pango_layout_set_font_description(layout, pangoFont);
    pango_font_description_free(pangoFont);
}

PangoLayout* MakeTextLayout(cairo_t* cr, const SFont* font, const char* text, int count) {
    PangoLayout* layout = pango_cairo_create_layout(cr);
    SetLayoutFont(layout, font);
    pango_layout_set_text(layout, text != nullptr ? text : "", count);
    return layout;
}

SFont::SFont(const char* face, int height, unsigned flags)
    : face(face != nullptr && *face != 0 ? face : "Sans"), height(height), flags(flags) {}

SFont::~SFont() = default;

SString SFont::Describe() const {
    SString text = face;
    if ((flags & FONT_BOLD) != 0) {
        text += " Bold";
    }
    if ((flags & FONT_ITALIC) != 0) {
        text += " Italic";
    }
    char size[32];
    snprintf(size, sizeof(size), " %dpx", std::max(1, std::abs(height)));
    text += size;
    return text;
}

int PointsToHeight(double points, cairo_t* /*cr*/) {
    double dpi = GetPlatform()->GetDpi();
    return static_cast<int>(std::floor(-points * dpi / 72.0 + 0.5));
}

SFont* MakeFont(const char* face, int height, unsigned flags) {
    return new SFont(face, height, flags);
}

SSize TextSize(const SFont* font, const char* text, int count) {
    cairo_t* cr = nullptr;
    PangoLayout* layout = MakeLayout(font, text, count, &cr);
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    g_object_unref(layout);
    cairo_destroy(cr);
    return SSize{width, height};
}

SSize TextMetrics(const SFont* font) {
    cairo_t* cr = nullptr;
    const char* sample = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    PangoLayout* layout = MakeLayout(font, sample, -1, &cr);
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    g_object_unref(layout);
    cairo_destroy(cr);
    return SSize{(width + 26) / 52, height};
}

bool GradientFill(cairo_t* cr, const SRect* rect, uint32_t from, uint32_t to, bool vertical) {
    if (cr == nullptr || rect == nullptr || rect->IsEmpty()) {
        return false;
    }
    cairo_pattern_t* pattern =
        vertical ? cairo_pattern_create_linear(0, rect->top, 0, rect->bottom)
                 : cairo_pattern_create_linear(rect->left, 0, rect->right, 0);
    for (int i = 0; i < 2; ++i) {
        uint32_t color = i == 0 ? from : to;
        cairo_pattern_add_color_stop_rgb(pattern, i, (color & 0xFF) / 255.0,
                                         ((color >> 8) & 0xFF) / 255.0,
                                         ((color >> 16) & 0xFF) / 255.0);
    }
    cairo_save(cr);
    cairo_set_source(cr, pattern);
    cairo_rectangle(cr, rect->left, rect->top, rect->Width(), rect->Height());
    cairo_fill(cr);
    cairo_restore(cr);
    cairo_pattern_destroy(pattern);
    return true;
}

void DrawFrame(cairo_t* cr, const SRect* rect, const SPen& pen) {
    if (cr == nullptr || rect == nullptr || rect->IsEmpty() || pen.width < 1) {
        return;
    }
    double half = pen.width / 2.0;
    cairo_save(cr);
    SetSourceColor(cr, pen.color);
    cairo_set_line_width(cr, pen.width);
    cairo_rectangle(cr, rect->left + half, rect->top + half, rect->Width() - pen.width,
                    rect->Height() - pen.width);
    cairo_stroke(cr);
    cairo_restore(cr);
}

void DrawLine(cairo_t* cr, SPoint from, SPoint to, const SPen& pen) {
    if (cr == nullptr || pen.width < 1) {
        return;
    }
    double offset = (pen.width % 2) != 0 ? 0.5 : 0.0;
    cairo_save(cr);
    SetSourceColor(cr, pen.color);
    cairo_set_line_width(cr, pen.width);
    cairo_move_to(cr, from.x + offset, from.y + offset);
    cairo_line_to(cr, to.x + offset, to.y + offset);
    cairo_stroke(cr);
    cairo_restore(cr);
}

void FillRect(cairo_t* cr, const SRect* rect, uint32_t color) {
    if (cr == nullptr || rect == nullptr || rect->IsEmpty()) {
        return;
    }
    cairo_save(cr);
    SetSourceColor(cr, color);
    cairo_rectangle(cr, rect->left, rect->top, rect->Width(), rect->Height());
    cairo_fill(cr);
    cairo_restore(cr);
}

SClipboard::~SClipboard() = default;

bool SClipboard::SetText(const char* text) {
    return text != nullptr && GetPlatform()->SetClipboardText(text);
}

SString SClipboard::GetText() {
    return GetPlatform()->GetClipboardText();
}

bool SClipboard::SetFile(SFile* source, int count) {
    if (source == nullptr || count < -1) {
        return false;
    }
    int remaining = source->GetRemaining();
    if (count == -1) {
        count = remaining;
    }
    if (count > remaining) {
        return false;
    }
    std::vector<uint8_t> block(static_cast<size_t>(count) + 5, 0);
    uint32_t length = static_cast<uint32_t>(count); // little-endian
    for (size_t i = 0; i < 4; ++i) {
        block[i] = static_cast<uint8_t>(length >> (8 * i));
    }
    if (count > 0 && source->Read(block.data() + 4, count) != count) {
        return false;
    }
    return GetPlatform()->SetClipboardData(CLIPBOARD_BLOCK_FORMAT, block);
}

bool SClipboard::GetFile(SFile* target) {
    std::vector<uint8_t> block;
    if (target == nullptr ||
        !GetPlatform()->GetClipboardData(CLIPBOARD_BLOCK_FORMAT, &block) || block.size() < 5) {
        return false;
    }
    uint32_t count = 0;
    for (int i = 3; i >= 0; --i) {
        count = (count << 8) | block[static_cast<size_t>(i)];
    }
    if (count > block.size() - 5) {
        return false;
    }
    int size = static_cast<int>(count);
    return size == 0 || target->Write(block.data() + 4, size) == size;
}

bool PressKey(unsigned char code) {
    return GetPlatform()->PressKey(code);
}

const char* GetCursorName(int index) {
    // Drawn by the desktop's cursor theme, by freedesktop name.
    static const char* const names[CURSOR_COUNT] = {
        "default",    "text",      "wait",       "pointer",    "crosshair", "ew-resize",
        "ns-resize",  "nwse-resize", "nesw-resize", "move",     "not-allowed", "help",
        "progress",   "col-resize", "row-resize", "grab",      "grabbing",  "copy",
        "alias",      "cell",      "context-menu",
    };
    return index >= 0 && index < CURSOR_COUNT ? names[index] : "default";
}
