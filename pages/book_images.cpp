#include "pages/book_images.h"

#include <algorithm>

#include <cairo.h>
#include <pango/pangocairo.h>

#include "foundation/file.h"
#include "foundation/image.h"

// The text machinery of one painter: a layout on a small surface of its
// own, with the font set once.
struct PBannerPainter::Text {
    cairo_surface_t* surface = nullptr;
    cairo_t* cr = nullptr;
    PangoLayout* layout = nullptr;

    Text() {
        surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
        cr = cairo_create(surface);
        layout = pango_cairo_create_layout(cr);
        // Fixed rendering options, so that a banner has the same pixels
        // whatever the desktop's settings and whichever thread draws it.
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        PangoContext* context = pango_layout_get_context(layout);
        pango_cairo_context_set_font_options(context, options);
        pango_cairo_context_set_resolution(context, 96.0);
        cairo_font_options_destroy(options);
        pango_layout_context_changed(layout);
        // 10 points; fontconfig stands in a metric-alike when Verdana is
        // not installed.
        PangoFontDescription* font = pango_font_description_from_string("Verdana 10");
        pango_layout_set_font_description(layout, font);
        pango_font_description_free(font);
        pango_layout_set_width(layout, -1); // no wrap
        pango_layout_set_single_paragraph_mode(layout, TRUE);
    }
    ~Text() {
        g_object_unref(layout);
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }

    // Sets the text (bytes that are not UTF-8 read as Windows-1252) and
    // measures it within the box.
    void SetText(const SString& name, int& width, int& height) {
        if (IsValidUtf8(name.c_str(), name.GetLength())) {
            pango_layout_set_text(layout, name.c_str(), name.GetLength());
        } else {
            SString converted = Windows1252ToUtf8(name.c_str(), name.GetLength());
            pango_layout_set_text(layout, converted.c_str(), converted.GetLength());
        }
        PangoRectangle logical;
        pango_layout_get_pixel_extents(layout, nullptr, &logical);
        width = std::clamp(logical.width, 0, BANNER_BOX_WIDTH);
        height = std::clamp(logical.height, 0, BANNER_BOX_HEIGHT);
    }
};

PBannerPainter::PBannerPainter() : text(std::make_unique<Text>()) {}

PBannerPainter::~PBannerPainter() = default;

bool PBannerPainter::Measure(const SString& name, int& width, int& height) {
    text->SetText(name, width, height);
    return true;
}

bool PBannerPainter::Draw(const SString& name, uint32_t fill, SImage& banner) {
    int width = 0;
    int height = 0;
    text->SetText(name, width, height);
    if (height < 1) {
        return false;
    }
    // The strip is cut from a box of the fill colour 1500 pixels wide, so a
    // text that fills the box leaves its last 16 columns black.
    int stripWidth = width + 16;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, stripWidth, height);
    cairo_t* cr = cairo_create(surface);
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_paint(cr);
    cairo_rectangle(cr, 0, 0, std::min(stripWidth, BANNER_BOX_WIDTH), height);
    cairo_clip(cr);
    cairo_set_source_rgb(cr, ((fill >> 16) & 0xFF) / 255.0, ((fill >> 8) & 0xFF) / 255.0,
                         (fill & 0xFF) / 255.0);
    cairo_paint(cr);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_move_to(cr, 0, 0);
    pango_cairo_show_layout(cr, text->layout);
    cairo_destroy(cr);
    cairo_surface_flush(surface);
    bool isDrawn = cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS &&
                   banner.LoadSurface(surface, 0, 0);
    cairo_surface_destroy(surface);
    // Turned to read upward, at 24 bits a pixel.
    return isDrawn && banner.Rotate(270) && banner.ConvertTo(PIXEL_FORMAT_24RGB);
}

bool MakeCoverThumbnail(const char* path, SFileMem& jpeg) {
    SFileMem file;
    SImage cover;
    if (path == nullptr || !file.LoadFile(path) ||
        !cover.LoadScaled(&file, BOOK_COVER_SIDE, BOOK_COVER_SIDE)) {
        return false;
    }
    jpeg.Reset(0);
    return cover.Save(&jpeg, IMAGE_JPEG);
}

bool MakeCoverThumbnail(const SImage& cover, SFileMem& jpeg) {
    SImage thumbnail;
    if (!thumbnail.CopyFrom(&cover)) {
        return false;
    }
    if (thumbnail.GetWidth() != BOOK_COVER_SIDE || thumbnail.GetHeight() != BOOK_COVER_SIDE) {
        thumbnail.Resize(BOOK_COVER_SIDE, BOOK_COVER_SIDE);
    }
    jpeg.Reset(0);
    return thumbnail.Save(&jpeg, IMAGE_JPEG);
}
