// Drawing shared by the list controls, with Cairo and Pango.
#include "toolkit/list_draw.h"

#include <cairo.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>

#include "toolkit/draw.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

SListFont::SListFont(const SFont* font) {
    PangoFontDescription* pango = pango_font_description_new();
    const char* face =
        font != nullptr && !font->GetFace().IsEmpty() ? font->GetFace().c_str() : "Sans";
    int height = font != nullptr && font->GetHeight() != 0 ? std::abs(font->GetHeight()) : 12;
    pango_font_description_set_family(pango, face);
    pango_font_description_set_absolute_size(pango, height * PANGO_SCALE);
    if (font != nullptr && (font->GetFlags() & FONT_BOLD) != 0) {
        pango_font_description_set_weight(pango, PANGO_WEIGHT_BOLD);
    }
    description = pango;
    // The line height of the font, measured once.
    cairo_surface_t* scratch = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    cairo_t* cr = cairo_create(scratch);
    PangoLayout* layout = pango_cairo_create_layout(cr);
    pango_layout_set_font_description(layout, pango);
    pango_layout_set_text(layout, "Ag", -1);
    int width = 0;
    pango_layout_get_pixel_size(layout, &width, &lineHeight);
    lineHeight = std::max(lineHeight, 1);
    g_object_unref(layout);
    cairo_destroy(cr);
    cairo_surface_destroy(scratch);
}

SListFont::~SListFont() {
    pango_font_description_free(static_cast<PangoFontDescription*>(description));
}

SListFont* MakeListFont(SWnd* wnd) {
    const SFont* font = nullptr;
    if (wnd != nullptr && wnd->GetHandle() != 0) {
        font = reinterpret_cast<const SFont*>(SendMessage(wnd->GetHandle(), WM_GETFONT, 0, 0));
    }
    if (font == nullptr) {
        font = GetDefaultFont();
    }
    return new SListFont(font);
}

void ListSetColor(cairo_t* cr, uint32_t color) {
    SetSourceColor(cr, color);
}

void ListFill(cairo_t* cr, const SRect& rect, uint32_t color) {
    if (rect.IsEmpty()) {
        return;
    }
    ListSetColor(cr, color);
    cairo_rectangle(cr, rect.left, rect.top, rect.Width(), rect.Height());
    cairo_fill(cr);
}

void ListFrame(cairo_t* cr, const SRect& rect, uint32_t color) {
    if (rect.IsEmpty()) {
        return;
    }
    ListSetColor(cr, color);
    cairo_set_line_width(cr, 1.0);
    cairo_rectangle(cr, rect.left + 0.5, rect.top + 0.5, rect.Width() - 1, rect.Height() - 1);
    cairo_stroke(cr);
}

void ListText(cairo_t* cr, const SListFont& font, const char* text, const SRect& rect,
              uint32_t color, int align) {
    if (text == nullptr || *text == '\0' || rect.Width() <= 0) {
        return;
    }
    PangoLayout* layout = pango_cairo_create_layout(cr);
    pango_layout_set_font_description(layout, static_cast<PangoFontDescription*>(font.description));
    pango_layout_set_text(layout, text, -1);
    pango_layout_set_width(layout, rect.Width() * PANGO_SCALE);
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    pango_layout_set_single_paragraph_mode(layout, TRUE);
    pango_layout_set_alignment(layout, align == 1   ? PANGO_ALIGN_CENTER
                                       : align == 2 ? PANGO_ALIGN_RIGHT
                                                    : PANGO_ALIGN_LEFT);
    int width = 0, height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    cairo_save(cr);
    cairo_rectangle(cr, rect.left, rect.top, rect.Width(), rect.Height());
    cairo_clip(cr);
    ListSetColor(cr, color);
    cairo_move_to(cr, rect.left, rect.top + (rect.Height() - height) / 2);
    pango_cairo_show_layout(cr, layout);
    cairo_restore(cr);
    g_object_unref(layout);
}

namespace {

// A layout of text on a scratch surface; the caller frees all three.
PangoLayout* MeasureLayout(const SListFont& font, const char* text, cairo_surface_t** scratch,
                           cairo_t** cr) {
    *scratch = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    *cr = cairo_create(*scratch);
    PangoLayout* layout = pango_cairo_create_layout(*cr);
    pango_layout_set_font_description(layout, static_cast<PangoFontDescription*>(font.description));
    pango_layout_set_text(layout, text != nullptr ? text : "", -1);
    return layout;
}

void FreeLayout(PangoLayout* layout, cairo_surface_t* scratch, cairo_t* cr) {
    g_object_unref(layout);
    cairo_destroy(cr);
    cairo_surface_destroy(scratch);
}

} // namespace

int ListTextWidth(const SListFont& font, const char* text, int bytes) {
    if (text == nullptr || bytes <= 0) {
        return 0;
    }
    cairo_surface_t* scratch = nullptr;
    cairo_t* cr = nullptr;
    PangoLayout* layout = MeasureLayout(font, text, &scratch, &cr);
    PangoRectangle position;
    pango_layout_index_to_pos(layout, std::min<int>(bytes, strlen(text)), &position);
    FreeLayout(layout, scratch, cr);
    return PANGO_PIXELS(position.x);
}

int ListTextIndexAt(const SListFont& font, const char* text, int x) {
    if (text == nullptr || *text == '\0' || x <= 0) {
        return 0;
    }
    cairo_surface_t* scratch = nullptr;
    cairo_t* cr = nullptr;
    PangoLayout* layout = MeasureLayout(font, text, &scratch, &cr);
    int index = 0, trailing = 0;
    pango_layout_xy_to_index(layout, x * PANGO_SCALE, 0, &index, &trailing);
    // trailing counts characters past index: step over their bytes.
    while (trailing-- > 0 && text[index] != '\0') {
        ++index;
        while ((static_cast<unsigned char>(text[index]) & 0xC0) == 0x80) {
            ++index;
        }
    }
    FreeLayout(layout, scratch, cr);
    return index;
}

void ListCheckBox(cairo_t* cr, const SRect& rect, bool checked) {
    int size = std::min({13, rect.Width(), rect.Height()});
    SRect box{rect.left + (rect.Width() - size) / 2, rect.top + (rect.Height() - size) / 2, 0, 0};
    box.right = box.left + size;
    box.bottom = box.top + size;
    ListFill(cr, box, GetSysColor(SYS_COLOR_WINDOW));
    ListFrame(cr, box, GetSysColor(SYS_COLOR_BTNSHADOW));
    if (checked) {
        ListSetColor(cr, GetSysColor(SYS_COLOR_WINDOWTEXT));
        cairo_set_line_width(cr, 2.0);
        cairo_move_to(cr, box.left + size * 0.22, box.top + size * 0.52);
        cairo_line_to(cr, box.left + size * 0.42, box.top + size * 0.72);
        cairo_line_to(cr, box.left + size * 0.78, box.top + size * 0.28);
        cairo_stroke(cr);
    }
}

void ListArrowDown(cairo_t* cr, const SRect& rect, uint32_t color) {
    double cx = rect.left + rect.Width() / 2.0;
    double cy = rect.top + rect.Height() / 2.0;
    ListSetColor(cr, color);
    cairo_move_to(cr, cx - 4, cy - 2);
    cairo_line_to(cr, cx + 4, cy - 2);
    cairo_line_to(cr, cx, cy + 3);
    cairo_close_path(cr);
    cairo_fill(cr);
}

SRect ListThumbRect(const SRect& bar, int contentHeight, int viewHeight, int offset) {
    int track = bar.Height();
    if (contentHeight <= viewHeight || track <= 0) {
        return bar;
    }
    int thumb = std::max(LIST_THUMB_MINIMUM, static_cast<int>(static_cast<int64_t>(track) *
                                                              viewHeight / contentHeight));
    thumb = std::min(thumb, track);
    int range = contentHeight - viewHeight;
    int top = static_cast<int>(static_cast<int64_t>(track - thumb) * offset / range);
    return SRect{bar.left, bar.top + top, bar.right, bar.top + top + thumb};
}

int ListOffsetForThumb(const SRect& bar, int contentHeight, int viewHeight, int thumbTop) {
    SRect thumb = ListThumbRect(bar, contentHeight, viewHeight, 0);
    int free = bar.Height() - thumb.Height();
    if (free <= 0 || contentHeight <= viewHeight) {
        return 0;
    }
    thumbTop = std::clamp(thumbTop, 0, free);
    return static_cast<int>(static_cast<int64_t>(contentHeight - viewHeight) * thumbTop / free);
}

void ListScrollBar(cairo_t* cr, const SRect& bar, int contentHeight, int viewHeight, int offset,
                   bool active) {
    ListFill(cr, bar, GetSysColor(SYS_COLOR_BTNFACE));
    SRect thumb = ListThumbRect(bar, contentHeight, viewHeight, offset);
    SRect inner{thumb.left + 2, thumb.top + 1, thumb.right - 2, thumb.bottom - 1};
    ListFill(cr, inner, GetSysColor(active ? SYS_COLOR_HIGHLIGHT : SYS_COLOR_BTNSHADOW));
}

namespace {

void AppendUtf8(std::string* text, unsigned code) {
    if (code < 0x80) {
        text->push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        text->push_back(static_cast<char>(0xC0 | (code >> 6)));
        text->push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x10000) {
        text->push_back(static_cast<char>(0xE0 | (code >> 12)));
        text->push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        text->push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x110000) {
        text->push_back(static_cast<char>(0xF0 | (code >> 18)));
        text->push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
        text->push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        text->push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
}

bool StartsWithNoCase(const std::string& text, const std::string& prefix) {
    if (text.size() < prefix.size()) {
        return false;
    }
    for (size_t i = 0; i < prefix.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(text[i])) !=
            std::tolower(static_cast<unsigned char>(prefix[i]))) {
            return false;
        }
    }
    return true;
}

} // namespace

int STypeAhead::Find(unsigned character, uint64_t now, int current, int count,
                     const std::function<const std::string&(int)>& textOf) {
    if (character < 32 || character == 127 || count <= 0) {
        return -1;
    }
    if (now - typedAt > PAUSE || now < typedAt) {
        typed.clear();
    }
    typedAt = now;
    AppendUtf8(&typed, character);
    bool repeated = static_cast<unsigned char>(typed[0]) < 0x80 &&
                    std::all_of(typed.begin(), typed.end(), [&](char c) { return c == typed[0]; });
    std::string prefix = repeated ? typed.substr(0, 1) : typed;
    int start = repeated ? current + 1 : std::max(current, 0);
    start = ((start % count) + count) % count;
    for (int i = 0; i < count; ++i) {
        int row = (start + i) % count;
        if (StartsWithNoCase(textOf(row), prefix)) {
            return row;
        }
    }
    return -1;
}
