// SMediaCtrl: measuring and drawing with Pango and Cairo, and the layout
// that runs on every change of text, font, size, margins or alignment.
#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "controls/media_ctrl.h"
#include "foundation/image.h"

namespace {

// Pango's own limit on widths and heights, in pixels.
constexpr double UNBOUNDED = 2147483647.0;
constexpr int MAX_PANGO_PIXELS = 2000000;

void SetSourceColor(cairo_t* cr, uint32_t color) {
    // The alpha 0xFE only marks a set colour: it draws opaque.
    uint32_t alpha = color >> 24;
    double opacity = alpha >= 0xFE || alpha == 0 ? 1.0 : alpha / 255.0;
    cairo_set_source_rgba(cr, (color & 0xFF) / 255.0, ((color >> 8) & 0xFF) / 255.0,
                          ((color >> 16) & 0xFF) / 255.0, opacity);
}

int PangoPixels(double pixels) {
    return static_cast<int>(std::min(pixels, static_cast<double>(MAX_PANGO_PIXELS))) * PANGO_SCALE;
}

// A layout of length bytes of text in font on cr; wrapWidth above 0 wraps
// the text at that width. The caller unrefs it.
PangoLayout* MakeLayout(cairo_t* cr, const SMediaFont& font, const char* text, int length,
                        double wrapWidth) {
    PangoLayout* layout = pango_cairo_create_layout(cr);
    PangoFontDescription* description = pango_font_description_new();
    pango_font_description_set_family(description,
                                      font.face.IsEmpty() ? "Sans" : font.face.c_str());
    pango_font_description_set_absolute_size(description,
                                             std::max(1, std::abs(font.height)) * PANGO_SCALE);
    pango_font_description_set_weight(description,
                                      font.weight >= 700 ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style(description,
                                     font.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_layout_set_font_description(layout, description);
    pango_font_description_free(description);
    if (font.underline) {
        PangoAttrList* attributes = pango_attr_list_new();
        pango_attr_list_insert(attributes, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        pango_layout_set_attributes(layout, attributes);
        pango_attr_list_unref(attributes);
    }
    pango_layout_set_text(layout, text != nullptr ? text : "", length);
    if (wrapWidth > 0) {
        pango_layout_set_width(layout, PangoPixels(wrapWidth));
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    }
    return layout;
}

SMediaExtent LogicalSize(PangoLayout* layout) {
    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    return SMediaExtent{static_cast<float>(logical.width) / PANGO_SCALE,
                        static_cast<float>(logical.height) / PANGO_SCALE};
}

} // namespace

// Measures on a one-pixel scratch surface with the same font machinery as
// the painting.
class SMediaCtrl::PangoMeasure : public SMediaMeasure {
public:
    PangoMeasure() {
        surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
        cr = cairo_create(surface);
    }
    ~PangoMeasure() override {
        cairo_destroy(cr);
        cairo_surface_destroy(surface);
    }
    SMediaExtent MeasureText(const SMediaFont& font, const char* text, int length, float boxWidth,
                             bool wrap) override {
        PangoLayout* layout =
            MakeLayout(cr, font, text, length, wrap ? std::max(boxWidth, 1.0f) : 0);
        SMediaExtent size = LogicalSize(layout);
        g_object_unref(layout);
        return size;
    }
    float LineHeight(const SMediaFont& font) override {
        PangoLayout* layout = MakeLayout(cr, font, "", 0, 0);
        float height = LogicalSize(layout).height;
        g_object_unref(layout);
        return height;
    }

private:
    cairo_surface_t* surface;
    cairo_t* cr;
};

void SMediaCtrl::Layout() {
    laidOutText = GetText();
    PangoMeasure measure;
    SRect inner = GetInnerRect();
    if (!markup) {
        layout.Clear();
        SMediaExtent size =
            measure.MeasureText(BaseFont(), laidOutText.c_str(), laidOutText.GetLength(),
                                static_cast<float>(inner.Width()), wrapping);
        contentWidth = static_cast<int>(std::ceil(size.width));
        contentHeight = static_cast<int>(std::ceil(size.height));
        return;
    }
    layout.Build(laidOutText, BaseFont(), GetTextColor(), GetLinkColor(), wrapping, inner.Width(),
                 align, measure, [this](const SString& name) { return images.Find(name); });
    contentWidth = layout.GetContentWidth();
    contentHeight = layout.GetContentHeight();
}

void SMediaCtrl::Paint(cairo_t* cr) {
    if (cr == nullptr || GetHandle() == 0) {
        return;
    }
    SRect inner = GetInnerRect();
    if (image != nullptr && image->IsValid() && !inner.IsEmpty()) {
        image->Draw(cr, &inner);
    }
    PaintFrame(cr);
    if (markup) {
        PaintMarkup(cr, inner);
    } else {
        PaintPlainText(cr, inner);
    }
}

void SMediaCtrl::PaintFrame(cairo_t* cr) {
    int state = GetFrameState();
    if (state == MEDIA_FRAME_NONE) {
        return;
    }
    SSize client = GetClientSize();
    uint32_t light = 0xFEFFFFFFu;
    uint32_t dark = 0xFEA0A0A0u;
    uint32_t topLeft = state == MEDIA_FRAME_RAISED ? light : dark;
    uint32_t bottomRight = state == MEDIA_FRAME_RAISED ? dark : light;
    cairo_save(cr);
    SetSourceColor(cr, topLeft);
    cairo_rectangle(cr, 0, 0, client.width, 1);
    cairo_rectangle(cr, 0, 0, 1, client.height);
    cairo_fill(cr);
    SetSourceColor(cr, bottomRight);
    cairo_rectangle(cr, 0, client.height - 1, client.width, 1);
    cairo_rectangle(cr, client.width - 1, 0, 1, client.height);
    cairo_fill(cr);
    cairo_restore(cr);
}

void SMediaCtrl::PaintPlainText(cairo_t* cr, const SRect& inner) {
    if (laidOutText.IsEmpty()) {
        return;
    }
    int offsetX = ticker.GetOffsetX();
    int offsetY = ticker.GetOffsetY();
    // The box moves with the offsets; a negative offset widens it, so that
    // the whole text passes through.
    double left = inner.left + offsetX;
    double top = inner.top + offsetY;
    double width = inner.Width() - std::min(offsetX, 0);
    double height = inner.Height() - std::min(offsetY, 0);
    bool acrossScroll = ScrollingHorizontally();
    bool downScroll = ScrollingVertically();
    unsigned across = acrossScroll ? MEDIA_ALIGN_LEFT : (align & 0x0F);
    unsigned down = downScroll ? MEDIA_ALIGN_TOP : (align & 0xF0);
    bool trim = trimming && !acrossScroll && !downScroll;
    if (downScroll) {
        height = UNBOUNDED;
    }
    PangoLayout* layout = MakeLayout(cr, BaseFont(), laidOutText.c_str(), laidOutText.GetLength(),
                                     wrapping ? std::max(width, 1.0) : 0);
    bool hasWidth = wrapping;
    if (trim) {
        pango_layout_set_width(layout, PangoPixels(std::max(width, 1.0)));
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
        if (wrapping) {
            pango_layout_set_height(layout, PangoPixels(std::max(height, 1.0)));
        }
        hasWidth = true;
    }
    pango_layout_set_alignment(layout, across == MEDIA_ALIGN_CENTER  ? PANGO_ALIGN_CENTER
                                       : across == MEDIA_ALIGN_RIGHT ? PANGO_ALIGN_RIGHT
                                                                     : PANGO_ALIGN_LEFT);
    SMediaExtent size = LogicalSize(layout);
    double x = left;
    if (!hasWidth && across == MEDIA_ALIGN_CENTER) {
        x = left + std::trunc((width - size.width) / 2);
    } else if (!hasWidth && across == MEDIA_ALIGN_RIGHT) {
        x = left + width - size.width;
    }
    double y = top;
    if (down == MEDIA_ALIGN_MIDDLE) {
        y = top + std::trunc((height - size.height) / 2);
    } else if (down == MEDIA_ALIGN_BOTTOM) {
        y = top + height - size.height;
    }
    cairo_save(cr);
    cairo_rectangle(cr, left, top, width, std::min(height, static_cast<double>(MAX_PANGO_PIXELS)));
    cairo_clip(cr);
    SetSourceColor(cr, GetTextColor());
    cairo_move_to(cr, x, y);
    pango_cairo_show_layout(cr, layout);
    cairo_restore(cr);
    g_object_unref(layout);
}

void SMediaCtrl::PaintMarkup(cairo_t* cr, const SRect& inner) {
    linkTexts.clear();
    linkRects.clear();
    const std::vector<_SLine>& lines = layout.GetLines();
    for (const SMediaPlacedRun& placed : layout.Place(
             inner, ticker.GetOffsetX(), ticker.GetOffsetY(), ScrollingVertically(), align)) {
        const _SText& run = lines[placed.line].texts[placed.run];
        if (run.image != nullptr) {
            run.image->DrawAt(cr, static_cast<int>(std::lround(placed.x)),
                              static_cast<int>(std::lround(placed.y)));
        } else {
            PangoLayout* textLayout =
                MakeLayout(cr, run.font, laidOutText.c_str() + run.start, run.length,
                           wrapping ? std::max(inner.Width(), 1) : 0);
            SetSourceColor(cr, run.color);
            cairo_move_to(cr, placed.x, placed.y);
            pango_cairo_show_layout(cr, textLayout);
            g_object_unref(textLayout);
        }
        if (run.link) {
            linkTexts.push_back(laidOutText.Mid(run.start, run.length));
            linkRects.push_back(SRect{static_cast<int>(std::floor(placed.x)),
                                      static_cast<int>(std::floor(placed.y)),
                                      static_cast<int>(std::ceil(placed.x + placed.width)),
                                      static_cast<int>(std::ceil(placed.y + placed.height + 1))});
        }
    }
}
