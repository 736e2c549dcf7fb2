// The logic of the media control's marked-up text, with no window: the marks
// ("<B>", "<#FF0000>", "<LINK>"...) found in each line, the runs of text
// between them with their fonts and colours, the lines with their
// alignment, and the positions of the runs given a function that measures
// text. SMediaCtrl draws what this lays out.
//
// Colours here are program colours (0x00BBGGRR) with an alpha byte on top;
// an alpha of 0xFE marks a colour that was set.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "foundation/geometry.h"
#include "foundation/string.h"

class SImage;

// The alpha byte that marks a set colour.
constexpr uint32_t MEDIA_COLOR_SET = 0xFE000000u;
// A program colour (0x00BBGGRR) in the control's form: alpha 0xFE unless the
// colour carries an alpha of its own below 0xFF.
uint32_t MediaColor(uint32_t color);

// Alignment flags of the control: the low nibble across, the high one down.
constexpr unsigned MEDIA_ALIGN_LEFT = 0x00;
constexpr unsigned MEDIA_ALIGN_CENTER = 0x01;
constexpr unsigned MEDIA_ALIGN_RIGHT = 0x02;
constexpr unsigned MEDIA_ALIGN_JUSTIFY = 0x03;
constexpr unsigned MEDIA_ALIGN_TOP = 0x00;
constexpr unsigned MEDIA_ALIGN_MIDDLE = 0x10;
constexpr unsigned MEDIA_ALIGN_BOTTOM = 0x20;
constexpr unsigned MEDIA_ALIGN_MASK = 0x33;

// Kinds of marks.
enum {
    MARK_BOLD = 1,
    MARK_ITALIC = 2,
    MARK_UNDERLINE = 3,
    MARK_COLOR = 4,
    MARK_LINK = 5,
    MARK_IMAGE = 6,
    MARK_LEFT = 7,
    MARK_CENTER = 8,
    MARK_RIGHT = 9
};

// The kind of the mark text (from "<" to ">" inclusive), 0 when it is no
// mark. Letters are compared without regard to case. A colour mark holds
// six or eight hex digits: red, green, blue and an optional alpha; its
// colour comes back in *color (alpha 0xFF turns into 0xFE, none gives 0xFE).
int ClassifyMark(const char* mark, int length, bool* opening, uint32_t* color);

// A font as a run uses it: face, height in pixels (negative: character
// height, as the toolkit's fonts), weight 400 or 700.
struct SMediaFont {
    SString face;
    int height = -11;
    int weight = 400;
    bool italic = false;
    bool underline = false;
};

// A size in fractional pixels.
struct SMediaExtent {
    float width = 0;
    float height = 0;
};

// What the layout needs of the drawing side.
class SMediaMeasure {
public:
    virtual ~SMediaMeasure() = default;
    // The size of length bytes of text in font, laid out in a box boxWidth
    // wide that wraps when wrap is set; trailing blanks count.
    virtual SMediaExtent MeasureText(const SMediaFont& font, const char* text, int length,
                                     float boxWidth, bool wrap) = 0;
    // The height of one line of font.
    virtual float LineHeight(const SMediaFont& font) = 0;
};

// A run placed for painting: line and run index, and its box in the
// control's client coordinates.
struct SMediaPlacedRun {
    int line = 0;
    int run = 0;
    float x = 0;
    float y = 0;
    float width = 0;
    float height = 0;
};

class SMediaLayout {
public:
    // One mark: its kind, whether it opens, the text positions before and
    // after it, and the colour of a colour mark.
    struct _STag {
        int kind = 0;
        bool opening = true;
        int before = 0;
        int after = 0;
        uint32_t color = 0;
    };
    // One run: bytes of the text, its box within the content, its font,
    // colour, link flag, picture (null for text) and alignment.
    struct _SText {
        int start = 0;
        int length = 0;
        float x = 0;
        float y = 0;
        float width = 0;
        float height = 0;
        SMediaFont font;
        uint32_t color = 0;
        bool link = false;
        const SImage* image = nullptr;
        int align = -1;
    };
    // One line: its size, alignment (-1 the control's own, 0 left, 1
    // centre, 2 right) and runs.
    struct _SLine {
        float width = 0;
        float height = 0;
        int align = -1;
        std::vector<_SText> texts;
    };
    // The marks of one source line, which runs from start to end (end
    // exclusive, without its line break).
    struct MarkedLine {
        int start = 0;
        int end = 0;
        std::vector<_STag> tags;
    };
    // The picture an image mark names, or null.
    using ImageLookup = std::function<const SImage*(const SString& name)>;

    // Splits text into lines (CR LF, lone CR, lone LF) and finds the marks
    // of each.
    static std::vector<MarkedLine> FindMarks(const SString& text);

    // Lays text out: runs with their fonts and colours, measured, lines
    // aligned in innerWidth by their own alignment or align's.
    void Build(const SString& text, const SMediaFont& font, uint32_t textColor, uint32_t linkColor,
               bool wrapping, int innerWidth, unsigned align, SMediaMeasure& measure,
               const ImageLookup& images);
    void Clear();

    const std::vector<_SLine>& GetLines() const { return lines; }
    int GetContentWidth() const { return contentWidth; }
    int GetContentHeight() const { return contentHeight; }

    // Where the runs land when painted in inner with the scroll offsets:
    // lines from the top (shifted for a middle or bottom align unless
    // scrolling vertically), while they start above inner's bottom, and
    // leaving out lines wholly above the client's top.
    std::vector<SMediaPlacedRun> Place(const SRect& inner, int offsetX, int offsetY,
                                       bool scrollingVertically, unsigned align) const;

private:
    void AlignLine(_SLine& line, int innerWidth, unsigned align);

    std::vector<_SLine> lines;
    int contentWidth = 0;
    int contentHeight = 0;
};

// The button frame: none, raised or sunken.
enum { MEDIA_FRAME_NONE = 0, MEDIA_FRAME_RAISED = 1, MEDIA_FRAME_SUNKEN = 2 };
int MediaFrameState(bool isButton, bool isFlat, bool isEnabled, bool isChecked, bool isHovered,
                    bool isPressed);
