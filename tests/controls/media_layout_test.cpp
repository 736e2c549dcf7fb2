// The marked-up text of the media control without a window: marks, runs,
// counters, colours, line alignment, sizes and where runs are painted.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "controls/media_layout.h"
#include "foundation/image.h"

namespace {

// Every byte is 6 pixels wide (7 in bold) and 10 high; a line is 12 high.
class FakeMeasure : public SMediaMeasure {
public:
    SMediaExtent MeasureText(const SMediaFont& font, const char*, int length, float boxWidth,
                             bool wrap) override {
        float width = static_cast<float>(length * (font.weight >= 700 ? 7 : 6));
        float height = 10;
        if (wrap && width > boxWidth && boxWidth > 0) {
            height *= std::ceil(width / boxWidth);
            width = boxWidth;
        }
        return SMediaExtent{width, height};
    }
    float LineHeight(const SMediaFont&) override { return 12; }
};

constexpr uint32_t TEXT = 0xFE112233;
constexpr uint32_t LINK = 0xFEABCDEF; // unlike any colour a mark sets here

struct Built {
    SMediaLayout layout;
    SString text;
    const SMediaLayout::_SText& At(int l, int r) const { return layout.GetLines()[l].texts[r]; }
    const SMediaLayout::_SLine& Line(int l) const { return layout.GetLines()[l]; }
    // Every run as its text, then {B I U L} for bold, italic, underline and
    // link, then #colour unless the text colour; "|" between runs, " / "
    // between lines.
    std::string Describe() const {
        std::string out;
        for (size_t l = 0; l < layout.GetLines().size(); ++l) {
            out += l > 0 ? " / " : "";
            for (size_t r = 0; r < Line(l).texts.size(); ++r) {
                const auto& run = Line(l).texts[r];
                std::string flags = std::string(run.font.weight >= 700 ? "B" : "") +
                                    (run.font.italic ? "I" : "") + (run.font.underline ? "U" : "") +
                                    (run.link ? "L" : "");
                out += (r > 0 ? "|" : "") + std::string(text.Mid(run.start, run.length).c_str()) +
                       (flags.empty() ? "" : "{" + flags + "}");
                char color[16];
                snprintf(color, sizeof(color), "#%08X", run.color);
                out += run.color == TEXT ? "" : run.color == LINK ? "#link" : color;
            }
        }
        return out;
    }
};

void Build(Built& built, const char* text, int innerWidth = 200, unsigned align = 0,
           bool wrapping = false, const SMediaLayout::ImageLookup& images = nullptr) {
    FakeMeasure measure;
    built.text = text;
    SMediaFont font;
    font.face = "Sans";
    built.layout.Build(built.text, font, TEXT, LINK, wrapping, innerWidth, align, measure, images);
}

// The kind of a mark, 0 for none, and whether it opens.
int Kind(const char* mark, bool* opening = nullptr, uint32_t* color = nullptr) {
    bool open = false;
    uint32_t value = 0;
    int kind = ClassifyMark(mark, static_cast<int>(strlen(mark)), &open, &value);
    *(opening != nullptr ? opening : &open) = open;
    *(color != nullptr ? color : &value) = value;
    return kind;
}

TEST(MediaMarks, NamesInAnyCaseColoursAndTextThatIsNoMark) {
    struct Case {
        const char* mark;
        int kind;
        bool opening;
    } cases[] = {{"<B>", MARK_BOLD, true},        {"</b>", MARK_BOLD, false},
                 {"<i>", MARK_ITALIC, true},      {"</U>", MARK_UNDERLINE, false},
                 {"<Link>", MARK_LINK, true},     {"</LINK>", MARK_LINK, false},
                 {"<img>", MARK_IMAGE, true},     {"</IMG>", MARK_IMAGE, false},
                 {"<LEFT>", MARK_LEFT, true},     {"</l>", MARK_LEFT, false},
                 {"<center>", MARK_CENTER, true}, {"<C>", MARK_CENTER, true},
                 {"</Right>", MARK_RIGHT, false}, {"<r>", MARK_RIGHT, true},
                 {"</#>", MARK_COLOR, false},     {"</#whatever>", MARK_COLOR, false}};
    for (const Case& c : cases) {
        bool opening = !c.opening;
        EXPECT_EQ(Kind(c.mark, &opening), c.kind) << c.mark;
        EXPECT_EQ(opening, c.opening) << c.mark;
    }
    for (const char* text : {"<Z>", "<>", "</>", "< B>", "<BB>", "<LINKS>", "<#FF00>", "<#GG0000>",
                             "<#FF0000F>", "<#FF0000FF00>", "<B", "B>"}) {
        EXPECT_EQ(Kind(text), 0) << text;
    }
    // Red at the set alpha, with or without an alpha of FF; a lower alpha is
    // kept. Program colours take the set alpha the same way.
    uint32_t red = 0, redFF = 0, low = 0;
    EXPECT_EQ(Kind("<#FF0000>", nullptr, &red) + Kind("<#FF0000FF>", nullptr, &redFF) +
                  Kind("<#12aB5680>", nullptr, &low),
              3 * MARK_COLOR);
    EXPECT_EQ(red, 0xFE0000FFu);
    EXPECT_EQ(redFF, 0xFE0000FFu);
    EXPECT_EQ(low, 0x8056AB12u);
    EXPECT_EQ(MediaColor(0x00123456), 0xFE123456u);
    EXPECT_EQ(MediaColor(0xFF123456), 0xFE123456u);
    EXPECT_EQ(MediaColor(0x80123456), 0x80123456u);
}

TEST(MediaRuns, LinesRunsCountersAndColours) {
    struct Case {
        const char* text;
        const char* runs;
    } cases[] = {
        {"a\r\nb\rc\nd", "a / b / c / d"},
        {"a\r\n\r\nb\r\n", "a /  / b / "},
        {"a<Z>b<B>c</B>", "a<Z>b|c{B}"}, // an unknown mark stays in the text
        // A ">" before the next "<" ends the marks of its line only.
        {"1 > 0 <B>x</B>\r\n<B>y</B>", "1 > 0 <B>x</B> / y{B}"},
        {"<B><B>a</B>b</B>c", "a{B}|b{B}|c"},         // one bold mark is still open after a
        {"</B></B><B>x</B>y</I><I>z", "x{B}|y|z{I}"}, // stray closings leave 0
        // A closing colour with none open is ignored; the text colour is
        // never popped.
        {"</#>a<#FF0000>b<#00FF00>c</#>d</#>e</#>f", "a|b#FE0000FF|c#FE00FF00|d#FE0000FF|e|f"},
        {"<B><#0000FF>a\nb", "a{B}#FEFF0000 / b{B}#FEFF0000"},
        // Links are underlined in the link colour, do not nest, and one
        // closing mark ends them.
        {"<#FF0000><LINK>a<LINK>b</LINK>c</LINK>d<U>e</U>",
         "a{UL}#link|b{UL}#link|c#FE0000FF|d#FE0000FF|e{U}#FE0000FF"},
    };
    for (const Case& c : cases) {
        Built built;
        Build(built, c.text);
        EXPECT_EQ(built.Describe(), c.runs) << c.text;
    }
    Built blank;
    Build(blank, "a\r\n\r\nb\r\n");
    EXPECT_EQ(blank.Line(1).height, 12) << "an empty line keeps a line height";
    EXPECT_EQ(blank.layout.GetContentHeight(), 48);
    Build(blank, "");
    EXPECT_EQ(blank.layout.GetLines().size(), 1u);
    EXPECT_EQ(blank.layout.GetContentWidth(), 0);
}

TEST(MediaRuns, ImageMarksNameAPictureThatGivesTheRunItsSize) {
    SImage cover;
    cover.Create(20, 30, PIXEL_FORMAT_32ARGB);
    std::vector<SString> asked;
    auto lookup = [&](const SString& name) -> const SImage* {
        asked.push_back(name);
        return name == "cover" ? &cover : nullptr;
    };
    Built built;
    Build(built, "<IMG>cover</IMG>x<IMG>missing</IMG>", 200, 0, false, lookup);
    ASSERT_EQ(built.Line(0).texts.size(), 3u);
    EXPECT_EQ(built.At(0, 0).image, &cover);
    EXPECT_EQ(built.At(0, 0).width, 20);
    EXPECT_EQ(built.Line(0).height, 30) << "the line grows to the picture";
    EXPECT_EQ(built.At(0, 2).image, nullptr) << "a missing picture leaves a text run";
    EXPECT_EQ(built.At(0, 2).width, 42);
    EXPECT_EQ(asked, (std::vector<SString>{"cover", "missing"}));
}

TEST(MediaAlign, MarksAlignTheirWholeLineAndTheControlAlignsTheRest) {
    Built right;
    Build(right, "ab<R>cd</R>\r\nef");
    EXPECT_EQ(right.Line(0).align, 2) << "a right mark mid-line aligns the whole line";
    EXPECT_EQ(right.At(0, 0).x, 200 - 24);
    EXPECT_EQ(right.At(0, 1).x, 200 - 12);
    EXPECT_EQ(right.Line(1).align, -1);
    EXPECT_EQ(right.At(1, 0).x, 0);

    Built highest;
    Build(highest, "<L>a<R>b</R>c<C>d\r\ne</C></L>\r\nf", 100);
    EXPECT_EQ(highest.Line(0).align, 2) << "the highest alignment of a line wins";
    EXPECT_EQ(highest.Line(1).align, 1) << "the centre mark is still open";
    EXPECT_EQ(highest.Line(2).align, -1);
    EXPECT_EQ(highest.At(1, 0).x, 47) << "centre: 50 - 3";

    Built centred, control, justified;
    Build(centred, "abcde", 101, MEDIA_ALIGN_CENTER);
    EXPECT_EQ(centred.At(0, 0).x, 35) << "50.5 - 15, truncated";
    Build(control, "ab<B>c</B>", 100, MEDIA_ALIGN_RIGHT | MEDIA_ALIGN_BOTTOM);
    EXPECT_EQ(control.At(0, 0).x, 81);
    EXPECT_EQ(control.At(0, 1).x, 93);
    Build(justified, "abc", 100, MEDIA_ALIGN_JUSTIFY);
    EXPECT_EQ(justified.At(0, 0).x, 0) << "justify lays out as left";
}

TEST(MediaSize, ContentIsTheWidestLineAndTheSumOfLineHeights) {
    Built built;
    Build(built, "abc\r\n<B>abcd</B>\r\nab");
    EXPECT_EQ(built.layout.GetContentWidth(), 28);
    EXPECT_EQ(built.layout.GetContentHeight(), 36);
    Build(built, "abcdefghijklmnopqrst", 50, 0, true);
    EXPECT_EQ(built.layout.GetContentWidth(), 50);
    EXPECT_EQ(built.layout.GetContentHeight(), 30) << "120 pixels of text in three rows of 50";
}

TEST(MediaPlace, VerticalAlignShiftsUnlessScrollingAndHiddenLinesAreLeftOut) {
    Built built;
    Build(built, "a\r\nb"); // 24 high
    SRect inner{2, 2, 102, 62};
    auto top = built.layout.Place(inner, 0, 0, false, MEDIA_ALIGN_TOP);
    ASSERT_EQ(top.size(), 2u);
    EXPECT_EQ(top[0].y, 2);
    EXPECT_EQ(top[1].y, 14);
    EXPECT_EQ(built.layout.Place(inner, 0, 0, false, MEDIA_ALIGN_MIDDLE)[0].y, 32 - 12);
    EXPECT_EQ(built.layout.Place(inner, 0, 0, false, MEDIA_ALIGN_BOTTOM)[0].y, 62 - 24);
    auto scrolled = built.layout.Place(inner, 5, 7, true, MEDIA_ALIGN_BOTTOM);
    EXPECT_EQ(scrolled[0].y, 9);
    EXPECT_EQ(scrolled[0].x, 7);

    Build(built, "a\nb\nc\nd\ne"); // five lines of 12
    SRect box{0, 0, 100, 30};
    EXPECT_EQ(built.layout.Place(box, 0, 0, true, 0).size(), 3u) << "lines at 0, 12 and 24";
    auto up = built.layout.Place(box, 0, -20, true, 0);
    ASSERT_EQ(up.size(), 4u);
    EXPECT_EQ(up[0].line, 1) << "the first line lies wholly above the top";
    EXPECT_EQ(up[0].y, -8);
    EXPECT_EQ(up[3].line, 4) << "the last line starts at 28, above the bottom";
}

TEST(MediaFrame, StatesOfTheButtonFrame) {
    // Button, flat, enabled, checked, hovered, pressed as 1 or 0. Pressed
    // with the pointer gone shows no frame, nor does a disabled button even
    // when hovered.
    struct Case {
        const char* state;
        int frame;
    } cases[] = {{"101000", MEDIA_FRAME_NONE},   {"101010", MEDIA_FRAME_RAISED},
                 {"101011", MEDIA_FRAME_SUNKEN}, {"101001", MEDIA_FRAME_NONE},
                 {"101100", MEDIA_FRAME_SUNKEN}, {"100111", MEDIA_FRAME_NONE},
                 {"111010", MEDIA_FRAME_NONE},   {"001011", MEDIA_FRAME_NONE}};
    for (const Case& c : cases) {
        auto on = [&](int i) { return c.state[i] == '1'; };
        EXPECT_EQ(MediaFrameState(on(0), on(1), on(2), on(3), on(4), on(5)), c.frame) << c.state;
    }
}

} // namespace
