// The pictures of the Book: the name banner drawn down the side of each
// folder's block, and the 32 by 32 cover thumbnail.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/string.h"

class SImage;
class SFileMem;

// Draws name banners with one font and one layout, reused from banner to
// banner. Each thread uses its own painter.
class PBannerPainter {
public:
    PBannerPainter();
    ~PBannerPainter();
    PBannerPainter(const PBannerPainter&) = delete;
    PBannerPainter& operator=(const PBannerPainter&) = delete;

    // The name in white, Verdana at 10 points, on one line (never wrapped),
    // at the top left of a strip of fill colour (0xRRGGBB): the strip is as
    // wide as the text measures plus 16 and as tall as it measures, within
    // a box of 1500 by 32, then turned to read upward. The result is 24-bit.
    // False when nothing could be drawn.
    bool Draw(const SString& name, uint32_t fill, SImage& banner);
    // The measured size of name in pixels, within the 1500 by 32 box.
    bool Measure(const SString& name, int& width, int& height);

private:
    struct Text;
    std::unique_ptr<Text> text;
};

// The side of a cover thumbnail, and the banner's layout box.
inline constexpr int BOOK_COVER_SIDE = 32;
inline constexpr int BANNER_BOX_WIDTH = 1500;
inline constexpr int BANNER_BOX_HEIGHT = 32;

// Loads the picture at path decoded at a reduced scale straight to 32 by
// 32, stretched, and encodes it as JPEG into jpeg. False when the file
// cannot be read or decoded.
bool MakeCoverThumbnail(const char* path, SFileMem& jpeg);
// The same from a picture in memory.
bool MakeCoverThumbnail(const SImage& cover, SFileMem& jpeg);
