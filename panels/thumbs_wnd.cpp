#include "panels/thumbs_wnd.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>
#include <cstring>
#include <pango/pangocairo.h>

#include "library/cover_cache.h"
#include "library/metadata.h"
#include "panels/panel_host.h"
#include "panels/resources.h"
#include "toolkit/ctrl_common.h"
#include "toolkit/draw.h"
#include "toolkit/list_draw.h"
#include "toolkit/platform/platform.h"

namespace {

// Colours, 0xRRGGBB.
constexpr uint32_t BACKGROUND = 0xEDD5B6;
constexpr uint32_t BAND = 0x42779C;
constexpr uint32_t BAND_HOT = 0x9C4242;
constexpr uint32_t TEXT = 0x000000;

// Places inside a card, from its top left corner.
constexpr int COVER_OFFSET = 4;
constexpr int LABEL_LEFT = 12;
constexpr int LABEL_TOP = 160;
constexpr int LABEL_RIGHT = 146;
constexpr int LABEL_BOTTOM = 185;
constexpr int OVERLAY_OFFSET = 86;
constexpr int OVERLAY_SIDE = 64;

// The label font is "Verdana" (fontconfig gives its nearest face) with a
// cell height of 12 pixels: ascent and descent together, so the letters
// themselves are about 10 pixels and two lines fit the 25-pixel label box.
constexpr const char* LABEL_FONT = "Verdana 10px";
constexpr int LABEL_LINES = 2;

void SetColor(cairo_t* cr, uint32_t rgb) {
    cairo_set_source_rgb(cr, ((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0,
                         (rgb & 0xFF) / 255.0);
}

void Fill(cairo_t* cr, const SRect& rect, uint32_t rgb) {
    SetColor(cr, rgb);
    cairo_rectangle(cr, rect.left, rect.top, rect.Width(), rect.Height());
    cairo_fill(cr);
}

// An opaque picture as an RGB24 surface, which Cairo copies without
// blending; its pixel words are already 0x??RRGGBB.
cairo_surface_t* OpaqueSurface(const SImage& image) {
    const uint32_t* pixels = image.GetBits();
    if (pixels == nullptr) {
        return nullptr;
    }
    int width = image.GetWidth();
    int height = image.GetHeight();
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return nullptr;
    }
    cairo_surface_flush(surface);
    unsigned char* data = cairo_image_surface_get_data(surface);
    int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < height; ++y) {
        std::memcpy(data + size_t(y) * size_t(stride), pixels + size_t(y) * size_t(width),
                    size_t(width) * 4);
    }
    cairo_surface_mark_dirty(surface);
    return surface;
}

// A card's cover: 150 by 150 and opaque, as the folder view makes them;
// another picture is stretched to that size and laid on white. Null for an
// empty picture, which leaves the card's frame empty.
cairo_surface_t* CardSurface(const SImage& image) {
    bool opaque = !image.HasAlpha();
    if (opaque && image.GetWidth() == COVER_SIDE && image.GetHeight() == COVER_SIDE) {
        return OpaqueSurface(image);
    }
    if (!image.IsValid()) {
        return nullptr;
    }
    SImage copy;
    copy.CopyFrom(&image);
    copy.Resize(COVER_SIDE, COVER_SIDE);
    copy.Flatten();
    return OpaqueSurface(copy);
}

// A picture that may be partly clear, blended when drawn.
cairo_surface_t* ArtSurface(unsigned id, bool opaque) {
    SImage image;
    if (!image.LoadResource("BINARY", id)) {
        return nullptr;
    }
    return opaque ? OpaqueSurface(image) : image.CreateSurface();
}

void DrawSurface(cairo_t* cr, cairo_surface_t* surface, int x, int y) {
    if (surface == nullptr) {
        return;
    }
    cairo_set_source_surface(cr, surface, x, y);
    cairo_rectangle(cr, x, y, cairo_image_surface_get_width(surface),
                    cairo_image_surface_get_height(surface));
    cairo_fill(cr);
}

bool Meets(const SRect& a, const SRect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

} // namespace

PWndThumbs::PWndThumbs(PPanelHost* host) : host(host) {}

PWndThumbs::~PWndThumbs() {
    FreeCards();
    for (cairo_surface_t* surface :
         {artFirst, artFirstBandHot, artFirstHot, art, artHot, playOverlay}) {
        if (surface != nullptr) {
            cairo_surface_destroy(surface);
        }
    }
    if (textContext != nullptr) {
        g_object_unref(textContext);
    }
}

bool PWndThumbs::Create(SWnd* parent, const SRect& rect, uintptr_t id) {
    LoadArt();
    SRect bounds = rect;
    if (!SWnd::Create("", WS_CHILD | WS_VISIBLE, 0, &bounds,
                      parent != nullptr ? parent->GetHandle() : 0, id)) {
        return false;
    }
    SetScrollSteps(1, LINE_STEP, PAGE_STEP, 1);
    UpdateScrollRange();
    return true;
}

void PWndThumbs::LoadArt() {
    if (art != nullptr) {
        return;
    }
    EnsurePanelsResources();
    artFirst = ArtSurface(RESOURCE_CARD_FIRST, true);
    artFirstBandHot = ArtSurface(RESOURCE_CARD_FIRST_BAND_HOT, true);
    artFirstHot = ArtSurface(RESOURCE_CARD_FIRST_HOT, true);
    art = ArtSurface(RESOURCE_CARD, true);
    artHot = ArtSurface(RESOURCE_CARD_HOT, true);
    playOverlay = ArtSurface(RESOURCE_PLAY_OVERLAY, false);
}

void PWndThumbs::FreeCards() {
    for (cairo_surface_t* surface : bitmaps) {
        if (surface != nullptr) {
            cairo_surface_destroy(surface);
        }
    }
    for (PangoLayout* layout : labels) {
        if (layout != nullptr) {
            g_object_unref(layout);
        }
    }
    bitmaps.clear();
    labels.clear();
    labelHeights.clear();
    mediaFlags.clear();
    names.DeleteAll();
}

void PWndThumbs::ClearThumbs() {
    SetScrollPosition(1, 0);
    FreeCards();
    hoverIndex = HOVER_NONE;
    UpdateScrollRange();
    Invalidate();
}

void PWndThumbs::AddThumb(const SImage& image, const char* name, bool isMedia) {
    bitmaps.push_back(CardSurface(image));
    names.Add(name != nullptr ? name : "");
    mediaFlags.push_back(isMedia);
    labels.push_back(nullptr);
    labelHeights.push_back(0);
    UpdateScrollRange();
    SRect card = GetCardRect(GetThumbCount() - 1);
    Invalidate(&card);
}

void PWndThumbs::SetThumbs(const std::vector<PThumbItem>& items) {
    SetScrollPosition(1, 0);
    FreeCards();
    hoverIndex = HOVER_NONE;
    // The surfaces are copies of the covers: made on every core.
    bitmaps.resize(items.size());
    RunOnAllCores(items.size(), [&](size_t i) { bitmaps[i] = CardSurface(items[i].cover); });
    for (const PThumbItem& item : items) {
        names.Add(item.name);
        mediaFlags.push_back(item.isLeaf);
        labels.push_back(nullptr);
        labelHeights.push_back(0);
    }
    UpdateScrollRange();
    Invalidate();
}

const char* PWndThumbs::GetThumbName(int index) const {
    return index >= 0 && index < GetThumbCount() ? names.GetAt(index)->c_str() : "";
}

bool PWndThumbs::IsThumbMedia(int index) const {
    return index >= 0 && index < GetThumbCount() && mediaFlags[size_t(index)];
}

int PWndThumbs::GetGridWidth() const {
    return std::max(0, GetClientWidth() - LIST_SCROLL_BAR_WIDTH);
}

int PWndThumbs::GetColumns() const {
    // A view narrower than one card still shows one column.
    return std::max(1, (GetGridWidth() - GRID_LEFT) / CARD_WIDTH);
}

int PWndThumbs::GetRows() const {
    int columns = GetColumns();
    return (GetThumbCount() + columns - 1) / columns;
}

int PWndThumbs::ContentHeight() const {
    return GetRows() * CARD_HEIGHT + GRID_TOP;
}

int PWndThumbs::MaxScroll() const {
    return std::max(0, ContentHeight() - GetClientHeight());
}

SRect PWndThumbs::GetCardRect(int index) const {
    if (index < 0 || index >= GetThumbCount()) {
        return SRect();
    }
    int columns = GetColumns();
    int x = index % columns * CARD_WIDTH + GRID_LEFT;
    int y = index / columns * CARD_HEIGHT + GRID_TOP - GetScrollPos();
    return SRect{x, y, x + CARD_WIDTH, y + CARD_HEIGHT};
}

SRect PWndThumbs::GetScrollBarRect() const {
    int width = GetClientWidth();
    return SRect{std::max(0, width - LIST_SCROLL_BAR_WIDTH), 0, width, GetClientHeight()};
}

int PWndThumbs::HitTest(int x, int y) const {
    int count = GetThumbCount();
    if (count > 0 && x < GetGridWidth()) {
        // Only the cover counts, and covers never overlap, so the one
        // card whose cell holds the point is the only one to test.
        int columns = GetColumns();
        int scroll = GetScrollPos();
        int column = (x - GRID_LEFT - COVER_OFFSET) / CARD_WIDTH;
        int row = (y + scroll - GRID_TOP - COVER_OFFSET) / CARD_HEIGHT;
        int coverLeft = column * CARD_WIDTH + GRID_LEFT + COVER_OFFSET;
        int coverTop = row * CARD_HEIGHT + GRID_TOP + COVER_OFFSET - scroll;
        int index = row * columns + column;
        if (x >= GRID_LEFT + COVER_OFFSET && y + scroll >= GRID_TOP + COVER_OFFSET &&
            column < columns && index < count && x < coverLeft + COVER_SIDE &&
            y < coverTop + COVER_SIDE) {
            return index;
        }
    }
    if (x >= 0 && x < BAND_WIDTH && y >= 0 && y < GetClientHeight()) {
        return HOVER_BAND;
    }
    return HOVER_NONE;
}

void PWndThumbs::UpdateScrollRange() {
    SetScrollRange(1, 0, MaxScroll());
}

void PWndThumbs::ScrollTo(int position) {
    position = std::clamp(position, 0, MaxScroll());
    if (position == GetScrollPos()) {
        return;
    }
    SetScrollPosition(1, position);
    Invalidate();
}

void PWndThumbs::InvalidateHover(int index) {
    if (index == HOVER_BAND) {
        // The first column's cards carry the band in their art.
        SRect strip{0, 0, std::min(GetGridWidth(), GRID_LEFT + CARD_WIDTH), GetClientHeight()};
        Invalidate(&strip);
    } else if (index >= 0) {
        SRect card = GetCardRect(index);
        Invalidate(&card);
    }
}

void PWndThumbs::SetHover(int index) {
    if (index == hoverIndex) {
        return;
    }
    InvalidateHover(hoverIndex);
    hoverIndex = index;
    InvalidateHover(hoverIndex);
}

void PWndThumbs::OnMouseMove(int x, int y) {
    int hit = HitTest(x, y);
    SetHover(hit);
    int cursor = hit == HOVER_NONE ? CURSOR_ARROW : CURSOR_HAND;
    SetCursor(hit == HOVER_NONE ? 0 : CURSOR_HAND + 1);
    GetPlatform()->SetSurfaceCursor(GetTopWindow(), cursor);
}

void PWndThumbs::OnPress(unsigned message, WPARAM wParam, int x, int y) {
    HWND own = GetHandle();
    SetFocus(own);
    bool left = message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK;
    bool right = message == WM_RBUTTONDOWN || message == WM_RBUTTONDBLCLK;
    SRect bar = GetScrollBarRect();
    if (left && bar.Contains(SPoint{x, y})) {
        SRect thumb = ListThumbRect(bar, ContentHeight(), GetClientHeight(), GetScrollPos());
        if (thumb.Contains(SPoint{x, y})) {
            thumbDrag = true;
            thumbGrab = y - thumb.top;
            SetCapture(own);
            Invalidate(&bar);
        } else {
            OnScroll(y < thumb.top ? SB_PAGEUP : SB_PAGEDOWN, 0);
        }
        return;
    }
    if (host == nullptr || (!left && !right)) {
        return; // the middle button gives the focus only
    }
    int hit = HitTest(x, y);
    if (hit == HOVER_BAND) {
        if (left) {
            host->NavigateFolder("..", "", true);
        } else {
            host->OpenFolder(host->GetRootFolder().c_str(), "", true);
        }
        return;
    }
    if (hit < 0) {
        return;
    }
    SString name = names.GetText(hit);
    if (left && mediaFlags[size_t(hit)]) {
        PlayCard(hit, (wParam & MK_SHIFT) != 0);
        return;
    }
    int old = hoverIndex;
    SetHover(HOVER_NONE);
    bool opened = left ? host->NavigateFolder(name.c_str(), "", true)
                       : host->NavigateFolder(".", name.c_str(), false);
    if (!opened && GetHandle() == own) {
        SetHover(old);
    }
}

void PWndThumbs::PlayCard(int index, bool shiftDown) {
    SString name = names.GetText(index);
    if (!host->PlayFileInFolder(name.c_str())) {
        return;
    }
    // Shift turns the preference round, both ways.
    if (host->GetAutoHideAfterPlay() != shiftDown) {
        host->HideMainWindow();
    }
}

void PWndThumbs::OnScroll(unsigned code, int thumbPosition) {
    int position = GetScrollPos();
    switch (code) {
    case SB_LINEUP: position -= LINE_STEP; break;
    case SB_LINEDOWN: position += LINE_STEP; break;
    case SB_PAGEUP: position -= PAGE_STEP; break;
    case SB_PAGEDOWN: position += PAGE_STEP; break;
    case SB_THUMBPOSITION:
    case SB_THUMBTRACK: position = thumbPosition; break;
    case SB_TOP: position = 0; break;
    case SB_BOTTOM: position = MaxScroll(); break;
    default: return;
    }
    ScrollTo(position);
}

PangoLayout* PWndThumbs::GetLabel(int index) {
    PangoLayout*& layout = labels[size_t(index)];
    if (layout != nullptr) {
        return layout;
    }
    if (textContext == nullptr) {
        textContext = pango_font_map_create_context(pango_cairo_font_map_get_default());
        pango_cairo_context_set_resolution(textContext, 96.0);
        PangoFontDescription* font = pango_font_description_from_string(LABEL_FONT);
        pango_context_set_font_description(textContext, font);
        pango_font_description_free(font);
    }
    layout = pango_layout_new(textContext);
    pango_layout_set_width(layout, (LABEL_RIGHT - LABEL_LEFT) * PANGO_SCALE);
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_alignment(layout, PANGO_ALIGN_CENTER);
    // A name longer than the box's two lines ends in an ellipsis rather
    // than a line cut through by the box's edge.
    pango_layout_set_height(layout, -LABEL_LINES);
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    pango_layout_set_text(layout, names.GetAt(index)->c_str(), -1);
    int width = 0;
    pango_layout_get_pixel_size(layout, &width, &labelHeights[size_t(index)]);
    return layout;
}

void PWndThumbs::PaintCard(cairo_t* cr, int index, int x, int y) {
    bool hovered = index == hoverIndex;
    cairo_surface_t* picture = nullptr;
    if (x == GRID_LEFT) {
        picture = hovered ? artFirstHot : hoverIndex == HOVER_BAND ? artFirstBandHot : artFirst;
    } else {
        picture = hovered ? artHot : art;
    }
    DrawSurface(cr, picture, x, y);
    DrawSurface(cr, bitmaps[size_t(index)], x + COVER_OFFSET, y + COVER_OFFSET);

    // The name, centred in its box, moved down by half the room it leaves.
    PangoLayout* layout = GetLabel(index);
    SRect box{x + LABEL_LEFT, y + LABEL_TOP, x + LABEL_RIGHT, y + LABEL_BOTTOM};
    int d = (box.Height() - labelHeights[size_t(index)]) / 2;
    if (d > 0) {
        box.top += d;
        box.bottom -= d;
    }
    cairo_save(cr);
    cairo_rectangle(cr, box.left, box.top, box.Width(), box.Height());
    cairo_clip(cr);
    SetColor(cr, TEXT);
    cairo_move_to(cr, box.left, box.top);
    pango_cairo_show_layout(cr, layout);
    cairo_restore(cr);
}

void PWndThumbs::Paint(cairo_t* cr) {
    int width = GetClientWidth();
    int height = GetClientHeight();
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    cairo_clip_extents(cr, &x1, &y1, &x2, &y2);
    SRect damage{std::max(0, int(std::floor(x1))), std::max(0, int(std::floor(y1))),
                 std::min(width, int(std::ceil(x2))), std::min(height, int(std::ceil(y2)))};
    if (damage.IsEmpty()) {
        return;
    }
    SRect bar = GetScrollBarRect();
    int gridWidth = GetGridWidth();
    cairo_save(cr);
    cairo_rectangle(cr, 0, 0, gridWidth, height);
    cairo_clip(cr);
    Fill(cr, damage, BACKGROUND);
    SRect band{0, 0, BAND_WIDTH, height};
    if (Meets(band, damage)) {
        Fill(cr, band, hoverIndex == HOVER_BAND ? BAND_HOT : BAND);
    }
    int count = GetThumbCount();
    int columns = GetColumns();
    int scroll = GetScrollPos();
    int overlayIndex = -1;
    // Only the rows and columns the damaged area meets.
    int firstRow = std::max(0, (damage.top + scroll - GRID_TOP) / CARD_HEIGHT);
    int firstColumn = std::max(0, (damage.left - GRID_LEFT) / CARD_WIDTH);
    for (int row = firstRow; row * columns < count; ++row) {
        int y = row * CARD_HEIGHT + GRID_TOP - scroll;
        if (y >= damage.bottom) {
            break;
        }
        for (int column = firstColumn; column < columns; ++column) {
            int index = row * columns + column;
            int x = column * CARD_WIDTH + GRID_LEFT;
            if (index >= count || x >= damage.right) {
                break;
            }
            PaintCard(cr, index, x, y);
            if (index == hoverIndex && mediaFlags[size_t(index)]) {
                overlayIndex = index;
            }
        }
    }
    // The overlay goes over every card; it lies inside its own card, so it
    // is drawn whenever that card is.
    if (overlayIndex >= 0 && playOverlay != nullptr) {
        SRect card = GetCardRect(overlayIndex);
        cairo_set_source_surface(cr, playOverlay, card.left + OVERLAY_OFFSET,
                                 card.top + OVERLAY_OFFSET);
        cairo_rectangle(cr, card.left + OVERLAY_OFFSET, card.top + OVERLAY_OFFSET, OVERLAY_SIDE,
                        OVERLAY_SIDE);
        cairo_fill(cr);
    }
    cairo_restore(cr);
    if (Meets(bar, damage)) {
        ListScrollBar(cr, bar, ContentHeight(), height, scroll, thumbDrag);
    }
}

LRESULT PWndThumbs::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_PAINT:
        Paint(reinterpret_cast<cairo_t*>(wParam));
        return 0;
    case WM_SIZE:
        hoverIndex = HOVER_NONE;
        UpdateScrollRange();
        Invalidate();
        break;
    case WM_MOUSEMOVE:
        if (thumbDrag) {
            SRect bar = GetScrollBarRect();
            ScrollTo(ListOffsetForThumb(bar, ContentHeight(), GetClientHeight(),
                                        PointParamY(lParam) - thumbGrab - bar.top));
            return 0;
        }
        OnMouseMove(PointParamX(lParam), PointParamY(lParam));
        break;
    case WM_MOUSELEAVE:
        SetHover(HOVER_NONE);
        break;
    case WM_MOUSEWHEEL: {
        // One line a notch, a positive turn going up; a smooth wheel's
        // parts of a notch move as far as their share. Then the card under
        // the pointer is found again.
        ScrollTo(GetScrollPos() - WheelParamDelta(wParam) * LINE_STEP / WHEEL_DELTA);
        SPoint point;
        if (GetCursorPosition(&point)) {
            OnMouseMove(point.x, point.y);
        }
        return 0;
    }
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
    case WM_MBUTTONDOWN:
    case WM_MBUTTONDBLCLK:
        OnPress(message, wParam, PointParamX(lParam), PointParamY(lParam));
        return 0;
    case WM_LBUTTONUP:
        if (thumbDrag) {
            thumbDrag = false;
            ReleaseCapture();
            SRect bar = GetScrollBarRect();
            Invalidate(&bar);
            return 0;
        }
        break;
    case WM_CAPTURECHANGED:
        if (thumbDrag) {
            thumbDrag = false;
            SRect bar = GetScrollBarRect();
            Invalidate(&bar);
        }
        break;
    case WM_KEYDOWN: {
        // The keys of a scrolled page, when the view has the focus; the
        // main window has seen every key first.
        constexpr unsigned NONE = ~0u;
        unsigned code = NONE;
        switch (static_cast<unsigned>(wParam)) {
        case ctrlkey::UP: code = SB_LINEUP; break;
        case ctrlkey::DOWN: code = SB_LINEDOWN; break;
        case ctrlkey::PRIOR: code = SB_PAGEUP; break;
        case ctrlkey::NEXT: code = SB_PAGEDOWN; break;
        case ctrlkey::HOME: code = SB_TOP; break;
        case ctrlkey::END: code = SB_BOTTOM; break;
        default: break;
        }
        if (code != NONE) {
            OnScroll(code, 0);
            return 0;
        }
        break;
    }
    case WM_VSCROLL:
        OnScroll(static_cast<unsigned>(wParam & 0xFFFF), static_cast<int16_t>((wParam >> 16) & 0xFFFF));
        return 0;
    default:
        break;
    }
    return SWnd::OnMessage(message, wParam, lParam);
}
