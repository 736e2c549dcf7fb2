// Painting of SWnd: the invalid region and back buffer of a top-level
// window, the tree, backgrounds (colour, transparent, image, nine-slice,
// skin) and the caret.
#include "toolkit/wnd.h"

#include <algorithm>
#include <cmath>

#include <cairo.h>

#include "foundation/color.h"
#include "foundation/file.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd_internal.h"

namespace {

// The region being repainted by PaintSurface on this thread, in the
// coordinates of the back buffer it paints; null outside it. PaintTree
// paints everything onto any other target (a window printing another into
// a picture of its own while it paints).
thread_local const cairo_region_t* paintRegion = nullptr;
thread_local cairo_surface_t* paintTarget = nullptr;

SRect Intersect(const SRect& a, const SRect& b) {
    return SRect{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                 std::min(a.bottom, b.bottom)};
}

// Whether rect (user coordinates of cr, which only translates) meets the
// region being repainted.
bool MeetsPaintRegion(cairo_t* cr, const SRect& rect) {
    if (paintRegion == nullptr || cairo_get_target(cr) != paintTarget) {
        return true;
    }
    double x = rect.left;
    double y = rect.top;
    cairo_user_to_device(cr, &x, &y);
    cairo_rectangle_int_t device{static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)),
                                 rect.Width(), rect.Height()};
    return cairo_region_contains_rectangle(paintRegion, &device) != CAIRO_REGION_OVERLAP_OUT;
}

void SetColor(cairo_t* cr, uint32_t color) {
    cairo_set_source_rgb(cr, (color & 0xFF) / 255.0, ((color >> 8) & 0xFF) / 255.0,
                         ((color >> 16) & 0xFF) / 255.0);
}

// Draws the source rectangle of surface stretched over the target. The cell
// is cut out first, so that filtering never reads its neighbours.
void DrawCell(cairo_t* cr, cairo_surface_t* surface, const SRect& source, const SRect& target) {
    if (source.IsEmpty() || target.IsEmpty()) {
        return;
    }
    cairo_surface_t* cell = cairo_surface_create_for_rectangle(
        surface, source.left, source.top, source.Width(), source.Height());
    cairo_save(cr);
    cairo_rectangle(cr, target.left, target.top, target.Width(), target.Height());
    cairo_clip(cr);
    cairo_translate(cr, target.left, target.top);
    cairo_scale(cr, static_cast<double>(target.Width()) / source.Width(),
                static_cast<double>(target.Height()) / source.Height());
    cairo_set_source_surface(cr, cell, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_BILINEAR);
    cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
    cairo_paint(cr);
    cairo_restore(cr);
    cairo_surface_destroy(cell);
}

// A copy of image with keyColor made clear and alpha applied.
void PrepareImage(SImage* target, const SImage* source, uint32_t keyColor, int alpha) {
    target->CopyFrom(source);
    target->drawMode = source->drawMode;
    if (keyColor != COLOR_NOT_SET && keyColor != COLOR_TRANSPARENT) {
        target->ConvertTo(PIXEL_FORMAT_32ARGB);
        uint32_t key = 0xFF000000u | ((keyColor & 0xFF) << 16) | (keyColor & 0xFF00) |
                       ((keyColor >> 16) & 0xFF);
        uint32_t* bits = target->GetBits();
        int count = target->GetWidth() * target->GetHeight();
        for (int i = 0; bits != nullptr && i < count; ++i) {
            if ((bits[i] | 0xFF000000u) == key) {
                bits[i] = 0;
            }
        }
    }
    if (alpha < 255) {
        target->SetAlpha(alpha, nullptr, true);
    }
}

} // namespace

bool SWnd::SetBackgroundImage(const SImage* image, uint32_t keyColor, int imageAlpha,
                              const SRect* slices, bool redraw) {
    background.Reset();
    backgroundSlices = slices != nullptr ? *slices : SRect();
    if (image == nullptr || !image->IsValid()) {
        if (redraw) {
            Invalidate();
        }
        return image == nullptr;
    }
    PrepareImage(&background, image, keyColor, imageAlpha);
    if (redraw) {
        Invalidate();
    }
    return background.IsValid();
}

bool SWnd::SetBackgroundResource(const char* resourceType, unsigned resourceId, uint32_t keyColor,
                                 int imageAlpha, const SRect* slices, bool redraw) {
    SImage image;
    if (!image.LoadResource(resourceType, resourceId)) {
        return false;
    }
    return SetBackgroundImage(&image, keyColor, imageAlpha, slices, redraw);
}

void SWnd::SetSkin(const SImage* normal, const SImage* hot, const SImage* down,
                   const SImage* disabled) {
    const SImage* sources[4] = {normal, hot, down, disabled};
    skinImages = std::make_unique<SImage[]>(4);
    for (int i = 0; i < 4; ++i) {
        if (sources[i] != nullptr && sources[i]->IsValid()) {
            PrepareImage(&skinImages[i], sources[i], COLOR_NOT_SET, 255);
        }
    }
    skinEnabled = true;
    Invalidate();
}

bool SWnd::SetSkinFiles(const char* normal, const char* hot, const char* down,
                        const char* disabled) {
    const char* paths[4] = {normal, hot, down, disabled};
    SImage images[4];
    for (int i = 0; i < 4; ++i) {
        if (paths[i] == nullptr || *paths[i] == 0) {
            continue;
        }
        SFilePath file;
        if (!file.Open(paths[i], false, false, true, true) || !images[i].Load(&file)) {
            return false;
        }
    }
    SetSkin(&images[0], &images[1], &images[2], &images[3]);
    return true;
}

void SWnd::SetSkinState(bool hot, bool down) {
    if (hot == skinHot && down == skinDown) {
        return;
    }
    skinHot = hot;
    skinDown = down;
    Invalidate();
}

int SWnd::GetSkinIndex() const {
    if (!IsEnabled()) {
        return 3;
    }
    if (!skinDisabled && skinHot && skinDown) {
        return 2;
    }
    return skinHot ? 1 : 0;
}

SWnd::SurfaceFrame::SurfaceFrame() : invalid(cairo_region_create()) {}

SWnd::SurfaceFrame::~SurfaceFrame() {
    if (buffer != nullptr) {
        cairo_surface_destroy(buffer);
    }
    cairo_region_destroy(invalid);
}

void SWnd::AddDamage(const SRect* area) {
    if (handle == 0) {
        return;
    }
    // Walk up to the top-level window, the area in the client coordinates
    // of wnd, cut by each client area it passes.
    SWnd* wnd = this;
    SRect damage;
    if (area != nullptr) {
        damage = *area;
    } else if (parent != 0) {
        wnd = GetParentWnd();
        damage = rect;
    } else {
        damage = SRect{0, 0, rect.Width(), rect.Height()};
    }
    bool surfaceCoordinates = area == nullptr && parent == 0;
    while (wnd != nullptr && !surfaceCoordinates) {
        damage = Intersect(damage, wnd->GetClientRect());
        if (damage.IsEmpty()) {
            return;
        }
        int left = 0, top = 0;
        wnd->GetFrameWidths(&left, &top, nullptr, nullptr);
        int dx = left, dy = top;
        if (wnd->parent != 0) {
            dx += wnd->rect.left;
            dy += wnd->rect.top;
        }
        damage = SRect{damage.left + dx, damage.top + dy, damage.right + dx, damage.bottom + dy};
        if (wnd->parent == 0) {
            break;
        }
        wnd = wnd->GetParentWnd();
    }
    if (wnd == nullptr || wnd->parent != 0) {
        return; // a child of a window of another thread, or one being torn down
    }
    damage = Intersect(damage, SRect{0, 0, wnd->rect.Width(), wnd->rect.Height()});
    if (damage.IsEmpty()) {
        return;
    }
    if (wnd->surfaceFrame == nullptr) {
        wnd->surfaceFrame = std::make_unique<SurfaceFrame>();
    }
    cairo_rectangle_int_t added{damage.left, damage.top, damage.Width(), damage.Height()};
    cairo_region_union_rectangle(wnd->surfaceFrame->invalid, &added);
    GetPlatform()->InvalidateSurface(wnd->handle, damage);
}

SRect SWnd::GetInvalidBounds() const {
    if (handle == 0 || parent != 0 || surfaceFrame == nullptr ||
        cairo_region_is_empty(surfaceFrame->invalid)) {
        return SRect();
    }
    cairo_rectangle_int_t extents;
    cairo_region_get_extents(surfaceFrame->invalid, &extents);
    return SRect{extents.x, extents.y, extents.x + extents.width, extents.y + extents.height};
}

void SWnd::PaintSurface(cairo_t* cr, int width, int height) {
    if (handle == 0 || cr == nullptr || width <= 0 || height <= 0) {
        return;
    }
    if (surfaceFrame == nullptr) {
        surfaceFrame = std::make_unique<SurfaceFrame>();
    }
    SurfaceFrame* frame = surfaceFrame.get();
    cairo_rectangle_int_t whole{0, 0, width, height};
    if (frame->buffer == nullptr || frame->width != width || frame->height != height) {
        if (frame->buffer != nullptr) {
            cairo_surface_destroy(frame->buffer);
        }
        frame->buffer = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
        frame->width = width;
        frame->height = height;
        cairo_region_union_rectangle(frame->invalid, &whole);
    }
    // The buffer is held, so that a window destroyed by its own painting
    // does not take it away mid-frame.
    cairo_surface_t* buffer = cairo_surface_reference(frame->buffer);
    if (!cairo_region_is_empty(frame->invalid)) {
        // Damage made while painting waits for the next frame.
        cairo_region_t* region = frame->invalid;
        frame->invalid = cairo_region_create();
        cairo_region_intersect_rectangle(region, &whole);
        cairo_t* back = cairo_create(buffer);
        for (int i = 0; i < cairo_region_num_rectangles(region); ++i) {
            cairo_rectangle_int_t part;
            cairo_region_get_rectangle(region, i, &part);
            cairo_rectangle(back, part.x, part.y, part.width, part.height);
        }
        cairo_clip(back);
        cairo_set_source_rgb(back, 1, 1, 1);
        cairo_paint(back);
        int left = 0, frameTop = 0;
        GetFrameWidths(&left, &frameTop, nullptr, nullptr);
        HWND own = handle;
        if (menu != nullptr) {
            SendMessage(own, WM_NCPAINT, reinterpret_cast<WPARAM>(back), 0);
        }
        if (handle == own) {
            cairo_translate(back, left, frameTop);
            const cairo_region_t* outerRegion = paintRegion;
            cairo_surface_t* outerTarget = paintTarget;
            paintRegion = region;
            paintTarget = buffer;
            PaintTree(back);
            paintRegion = outerRegion;
            paintTarget = outerTarget;
        }
        cairo_destroy(back);
        cairo_region_destroy(region);
    }
    cairo_save(cr);
    cairo_set_source_surface(cr, buffer, 0, 0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_restore(cr);
    cairo_surface_destroy(buffer);
}

void SWnd::PaintTree(cairo_t* cr) {
    if (handle == 0 || cr == nullptr) {
        return;
    }
    HWND own = handle;
    SRect client = GetClientRect();
    cairo_save(cr);
    cairo_rectangle(cr, 0, 0, client.Width(), client.Height());
    cairo_clip(cr);
    SendMessage(own, WM_ERASEBKGND, reinterpret_cast<WPARAM>(cr), 0);
    SendMessage(own, WM_PAINT, reinterpret_cast<WPARAM>(cr), 0);
    if (handle == own) {
        PaintCaret(cr);
        std::vector<HWND> list = children;
        for (HWND child : list) {
            SWnd* wnd = FromHandle(child);
            if (wnd == nullptr || !wnd->shown || !MeetsPaintRegion(cr, wnd->rect)) {
                continue;
            }
            cairo_save(cr);
            cairo_translate(cr, wnd->rect.left, wnd->rect.top);
            int left = 0, top = 0, right = 0, bottom = 0;
            wnd->GetFrameWidths(&left, &top, &right, &bottom);
            if (left > 0) {
                // The frame: a grey line, and a darker inner one for a sunken edge.
                SetColor(cr, 0x808080);
                cairo_set_line_width(cr, 1.0);
                cairo_rectangle(cr, 0.5, 0.5, wnd->rect.Width() - 1, wnd->rect.Height() - 1);
                cairo_stroke(cr);
                if (left > 1) {
                    SetColor(cr, 0x404040);
                    cairo_rectangle(cr, 1.5, 1.5, wnd->rect.Width() - 3, wnd->rect.Height() - 3);
                    cairo_stroke(cr);
                }
            }
            cairo_translate(cr, left, top);
            wnd->PaintTree(cr);
            cairo_restore(cr);
        }
    }
    cairo_restore(cr);
}

void SWnd::PaintBackground(cairo_t* cr, int width, int height) {
    if (cr == nullptr) {
        return;
    }
    if (backColor == COLOR_TRANSPARENT) {
        SWnd* parentWnd = GetParentWnd();
        if (parentWnd != nullptr) {
            int left = 0, top = 0;
            GetFrameWidths(&left, &top, nullptr, nullptr);
            SRect parentClient = parentWnd->GetClientRect();
            cairo_save(cr);
            cairo_rectangle(cr, 0, 0, width, height);
            cairo_clip(cr);
            cairo_translate(cr, -(rect.left + left), -(rect.top + top));
            parentWnd->PaintBackground(cr, parentClient.Width(), parentClient.Height());
            cairo_restore(cr);
        }
    } else if (backColor != COLOR_NOT_SET) {
        SetColor(cr, backColor);
        cairo_rectangle(cr, 0, 0, width, height);
        cairo_fill(cr);
    }
    PaintImage(cr, width, height);
}

void SWnd::PaintImage(cairo_t* cr, int width, int height) {
    const SImage* image = &background;
    if (skinImages != nullptr) {
        int index = GetSkinIndex();
        image = skinImages[index].IsValid() ? &skinImages[index] : &skinImages[0];
    }
    if (cr == nullptr || !image->IsValid() || width <= 0 || height <= 0) {
        return;
    }
    SRect target{0, 0, width, height};
    if (backgroundSlices.IsEmpty()) {
        image->Draw(cr, &target);
        return;
    }
    // Nine-slice: corners at size, edges stretched one way, the centre both.
    cairo_surface_t* surface = image->CreateSurface();
    if (surface == nullptr) {
        return;
    }
    const SRect& s = backgroundSlices;
    int iw = image->GetWidth();
    int ih = image->GetHeight();
    int sourceX[4] = {0, s.left, s.right, iw};
    int sourceY[4] = {0, s.top, s.bottom, ih};
    int targetX[4] = {0, s.left, width - (iw - s.right), width};
    int targetY[4] = {0, s.top, height - (ih - s.bottom), height};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            DrawCell(cr, surface,
                     SRect{sourceX[column], sourceY[row], sourceX[column + 1], sourceY[row + 1]},
                     SRect{targetX[column], targetY[row], targetX[column + 1], targetY[row + 1]});
        }
    }
    cairo_surface_destroy(surface);
}

void SWnd::PaintCaret(cairo_t* cr) {
    if (!caretShown || caretWidth <= 0 || caretHeight <= 0) {
        return;
    }
    // A caret without a position stands outside the window, as it always has.
    int x = caretAtPosition ? caretX : -182;
    int y = caretAtPosition ? caretY : -182;
    cairo_save(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_DIFFERENCE);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_rectangle(cr, x, y, caretWidth, caretHeight);
    cairo_fill(cr);
    cairo_restore(cr);
}
