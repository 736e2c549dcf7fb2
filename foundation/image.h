// SImage: the program's one picture type, 32-bit pixels in memory with a
// draw mode that decides how the picture lands in a target rectangle. It is
// the source of window skins, album covers and thumbnails. Image lists are
// in image_list.h, the water ripple in image_water.h.
//
// Pixels are held top-down, one 32-bit word each, 0xAARRGGBB, with straight
// (not premultiplied) alpha. A picture tagged 24-bit or 32-bit RGB keeps no
// alpha: its alpha byte is always 0xFF. Colours of the draw attributes
// (backColor, keyColor) are program colours, 0x00BBGGRR, as in color.h.
// Every operation is for one thread at a time per object; pictures may be
// loaded and scaled on worker threads.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "foundation/geometry.h"
#include "foundation/string.h"

class SFile;
class SImageList;
typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

// Pixel format tags, by their customary numeric values.
constexpr int PIXEL_FORMAT_24RGB = 137224;
constexpr int PIXEL_FORMAT_32RGB = 139273;
constexpr int PIXEL_FORMAT_32ARGB = 2498570;
constexpr int PIXEL_FORMAT_32PARGB = 925707; // held straight like 32ARGB

// Save formats; any other value saves BMP.
constexpr int IMAGE_JPEG = 1;
constexpr int IMAGE_PNG = 2;
constexpr int IMAGE_GIF = 3;
constexpr int IMAGE_BMP = 4;

// Draw modes: placement of the picture in the target. Dialog definitions
// name them "_DRAWTOPLEFT" to "_DRAWFIT" and "DRAW_FIT_ENLARGE".
enum SImageDrawMode {
    DRAW_TOPLEFT = 0,      // natural size, top left
    DRAW_TOPCENTER = 1,    // top, centred across
    DRAW_TOPRIGHT = 2,     // top right
    DRAW_MIDDLELEFT = 3,   // left, centred down
    DRAW_MIDDLERIGHT = 4,  // right, centred down
    DRAW_BOTTOMLEFT = 5,   // bottom left
    DRAW_BOTTOMCENTER = 6, // bottom, centred across
    DRAW_BOTTOMRIGHT = 7,  // bottom right
    DRAW_CENTER = 8,       // centred both ways
    DRAW_STRETCH = 9,      // stretched to the target
    DRAW_TILE = 10,        // repeated from the target's top left
    DRAW_FIT = 11,         // proportions kept, never enlarged
    DRAW_FIT_ENLARGE = 12, // proportions kept, enlarged to fill
};

// A decoded picture wider or taller than this is refused.
constexpr int IMAGE_MAX_SIDE = 8000;

// Bits per pixel of a format tag: 1, 4, 8, 16, 24, 32, 48 or 64; 0 for a
// value that is no format.
int GetBitsPerPixel(int format);

// Where a picture of width by height lands in box, proportions kept. Without
// enlarge a picture smaller than the box keeps its size and is centred.
SRect FitRect(const SRect& box, int width, int height, bool enlarge);

class SImage {
public:
    SImage() = default;
    SImage(SImage&& other) noexcept;
    SImage& operator=(SImage&& other) noexcept;
    SImage(const SImage&) = delete;
    SImage& operator=(const SImage&) = delete;
    virtual ~SImage();

    // State. The getters give 0 on an empty picture.
    bool IsValid() const { return !pixels.empty(); }
    int GetWidth() const { return width; }
    int GetHeight() const { return height; }
    int GetFormat() const { return format; }
    int GetBitsPerPixel() const { return ::GetBitsPerPixel(format); }
    // True for the formats that keep alpha (32ARGB, 32PARGB).
    bool HasAlpha() const;
    // Frees the pixels; the draw attributes stay.
    void Empty();
    // Empties, and clears flag, name, drawMode and both colours.
    void Reset();
    // A new picture of zero pixels (transparent for alpha formats, black
    // otherwise), replacing the old. Always true; the picture stays empty
    // when a side is below 1 or above IMAGE_MAX_SIDE or the format is unknown.
    bool Create(int width, int height, int format);
    // Changes the format tag; a format without alpha makes every pixel opaque.
    bool ConvertTo(int format);

    // Loading. Each first empties the picture, reads size bytes from the
    // file's position (negative: all that remains; more is cut to what
    // remains; 0 fails) and leaves the file past them. PNG, JPEG, GIF, BMP
    // and ICO are read; anything else, damaged data or a picture larger
    // than IMAGE_MAX_SIDE on a side leaves the picture empty and gives false.
    // Pictures with alpha load as 32ARGB, others as 24RGB.
    bool Load(SFile* file, int size = -1);
    // Load followed by Resize(width, height): the picture ends exactly
    // width x height, stretched. It is decoded at a reduced scale where the
    // format allows (JPEG DCT scaling, gdk-pixbuf's at-scale loader), which
    // is much faster for large covers. A side below 1 fails.
    bool LoadScaled(SFile* file, int width, int height, int size = -1);
    // From a registered embedded resource (file.h); module is unused.
    bool LoadResource(const char* type, unsigned id, void* module = nullptr);
    // A 32ARGB copy of width x height words 0xAARRGGBB; sets drawMode to
    // DRAW_CENTER and backColor to none.
    bool LoadPixels(const uint32_t* argb, int width, int height);
    // Copies a rectangle of a Cairo image surface: ARGB32 gives 32ARGB,
    // RGB24 gives 24RGB. A width or height of -1 means to the surface's edge.
    bool LoadSurface(cairo_surface_t* surface, int x, int y, int width = -1, int height = -1);
    // index -1 takes the whole list as one strip, left to right.
    bool LoadImageList(const SImageList& list, int index);
    // A copy of a region of source (which may be this picture), in its format.
    // A negative width or height means up to the source's edge. False when
    // the region is empty or leaves the source.
    bool Crop(const SImage* source, int x, int y, int width, int height);
    bool CopyFrom(const SImage* source) { return Crop(source, 0, 0, -1, -1); }

    // Saving: IMAGE_JPEG, IMAGE_PNG, IMAGE_GIF, any other value BMP. The
    // bytes are written at the file's position, which ends past them. False,
    // with nothing written, for an empty picture, a null file or a failed
    // encoding.
    bool Save(SFile* file, int format) const;

    // Drawing onto Cairo, as drawMode says; see image_draw.cpp. A null target
    // or source means the whole picture.
    void Draw(cairo_t* cr, const SRect* target = nullptr, const SRect* source = nullptr) const;
    // The target from the arguments; -1 means natural size.
    void DrawAt(cairo_t* cr, int x, int y, int width = -1, int height = -1,
                const SRect* source = nullptr) const;
    // A new Cairo image surface (ARGB32, premultiplied) holding the picture;
    // the caller destroys it. Null when empty.
    cairo_surface_t* CreateSurface() const;

    // Pixels. GetPixel gives 0xAARRGGBB, 0 when empty or outside.
    uint32_t GetPixel(int x, int y) const;
    // The pixel words, top-down, width per row; null when empty. Valid until
    // the next operation that changes the size.
    const uint32_t* GetBits() const { return pixels.empty() ? nullptr : pixels.data(); }
    uint32_t* GetBits() { return pixels.empty() ? nullptr : pixels.data(); }
    // A top-down copy without row padding: B, G, R, A bytes for a 32-bit
    // format, B, G, R for PIXEL_FORMAT_24RGB. Null when empty or for another
    // format. The second form writes into a buffer of the right size.
    std::unique_ptr<uint8_t[]> GetPixels(int format = PIXEL_FORMAT_32ARGB) const;
    bool GetPixels(void* buffer, int format) const;
    // Copies width x height x 4 bytes B, G, R, A over the picture.
    bool SetPixels(const void* bgra);
    // Fills the picture, or the part of rect inside it, with 0xAARRGGBB.
    bool Fill(uint32_t argb, const SRect* rect = nullptr);

    // Pixel operations; rect null means the whole picture.
    // Formats with 32 bits only (32RGB becomes 32ARGB). With onlyLower a
    // pixel whose alpha is already lower keeps it.
    bool SetAlpha(int alpha, const SRect* rect = nullptr, bool onlyLower = false);
    // 24 and 32-bit pictures: each pixel becomes its luminance grey.
    bool MakeGray(const SRect* rect = nullptr);
    // Every pixel becomes color (0x00BBGGRR) scaled by its luminance
    // (0.299 R + 0.587 G + 0.114 B) / 255; alpha is kept.
    bool TintLuminance(uint32_t color, const SRect* rect = nullptr);
    // Formats with alpha only: each pixel with alpha below 255 becomes
    // opaque white.
    bool FlattenAlpha();
    // The picture drawn over backColor (white when it is none or
    // transparent) as a 24RGB picture, into result, or in place when null.
    bool Flatten(SImage* result = nullptr);

    // Geometry.
    // Stretched to the new size with a high-quality bicubic filter; negative
    // counts as 0. False, with nothing changed, when the size is the present
    // one or a side would be 0.
    bool Resize(int width, int height);
    // The picture centred and unscaled on a canvas of the new size, with a
    // transparent margin (a 24-bit picture becomes 32ARGB).
    bool ResizeCanvas(int width, int height);
    // Clockwise by 90, 180 or 270 degrees; false for any other angle.
    bool Rotate(int degrees);
    // Runs of pixels that differ from key (0x00BBGGRR) as they land on a
    // black surface, one rectangle per run, rows top-down.
    std::vector<SRect> GetRegion(uint32_t key) const;

    // Draw attributes.
    uint32_t flag = 0;
    SString name;
    uint32_t backColor = 0xFF000000; // drawn behind the picture; 0xFF000000: none
    uint32_t keyColor = 0xFF000000;  // made transparent when drawing; none
    int drawMode = DRAW_TOPLEFT;

private:
    // Replaces the pixels by a picture of the given size and format.
    void Adopt(std::vector<uint32_t>&& newPixels, int newWidth, int newHeight, int newFormat);
    // Decodes bytes, keeping a reduced scale no smaller than minWidth by
    // minHeight when both are above 0. See image_codec.cpp.
    bool Decode(const uint8_t* data, int size, int minWidth, int minHeight);
    // Reads size bytes of the file (see Load) and decodes them.
    bool LoadFrom(SFile* file, int size, int minWidth, int minHeight);
    // The rectangle of the picture covered by rect (all when null).
    SRect Clip(const SRect* rect) const;

    std::vector<uint32_t> pixels;
    int width = 0;
    int height = 0;
    int format = 0;
};
