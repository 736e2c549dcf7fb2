// The marked-up text of the media control without a window: marks, runs,
// counters, colours, line alignment, sizes and where runs are painted.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>

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
constexpr uint32_t LINK = 0xFE0000FF;

struct Built {
    SMediaLayout layout;
    SString text;
    // The text of run r of line l.
    SString Run(int l, int r) const {
        const auto& run = layout.GetLines()[l].texts[r];
        return text.Mid(run.start, run.length);
    }
    const SMediaLayout::_SText& At(int l, int r) const { return layout.GetLines()[l].texts[r]; }
    int Runs(int l) const { return static_cast<int>(layout.GetLines()[l].texts.size()); }
};

void Build(Built& built, const char* text, int innerWidth = 200, unsigned align = 0,
           bool wrapping = false, const SMediaLayout::ImageLookup& images = nullptr) {
    FakeMeasure measure;
    built.text = text;
    SMediaFont font;
    font.face = "Sans";
    built.layout.Build(built.text, font, TEXT, LINK, wrapping, innerWidth, align, measure, images);
}

int Kind(const char* mark, bool* opening = nullptr, uint32_t* color = nullptr) {
    bool open = false;
    uint32_t value = 0;
    int kind = ClassifyMark(mark, static_cast<int>(strlen(mark)), &open, &value);
    if (opening != nullptr) {
        *opening = open;
    }
    if (color != nullptr) {
        *color = value;
    }
    return kind;
}

TEST(MediaMarks, EveryNameIsKnownInAnyCase) {
    struct Case {
        const char* mark;
        int kind;
        bool opening;
    } cases[] = {
        {"<B>", MARK_BOLD, true},        {"</b>", MARK_BOLD, false},
        {"<i>", MARK_ITALIC, true},      {"</U>", MARK_UNDERLINE, false},
        {"<Link>", MARK_LINK, true},     {"</LINK>", MARK_LINK, false},
        {"<img>", MARK_IMAGE, true},     {"</IMG>", MARK_IMAGE, false},
        {"<LEFT>", MARK_LEFT, true},     {"</l>", MARK_LEFT, false},
        {"<center>", MARK_CENTER, true}, {"<C>", MARK_CENTER, true},
        {"</Right>", MARK_RIGHT, false}, {"<r>", MARK_RIGHT, true},
        {"</#>", MARK_COLOR, false},     {"</#whatever>", MARK_COLOR, false},
    };
    for (const Case& c : cases) {
        bool opening = !c.opening;
        EXPECT_EQ(Kind(c.mark, &opening), c.kind) << c.mark;
        EXPECT_EQ(opening, c.opening) << c.mark;
    }
}

TEST(MediaMarks, OtherTextInBracketsIsNoMark) {
    for (const char* mark : {"<Z>", "<>", "</>", "< B>", "<BB>", "<LINKS>", "<#FF00>", "<#GG0000>",
                             "<#FF0000F>", "<#FF0000FF00>", "<B", "B>"}) {
        EXPECT_EQ(Kind(mark), 0) << mark;
    }
}

TEST(MediaMarks, ColourDigitsAreRedGreenBlueWithTheSetAlpha) {
    uint32_t color = 0;
    ASSERT_EQ(Kind("<#FF0000>", nullptr, &color), MARK_COLOR);
    EXPECT_EQ(color, 0xFE0000FFu) << "red at alpha 0xFE";
    ASSERT_EQ(Kind("<#FF0000FF>", nullptr, &color), MARK_COLOR);
    EXPECT_EQ(color, 0xFE0000FFu) << "an alpha of FF becomes FE";
    ASSERT_EQ(Kind("<#12aB5680>", nullptr, &color), MARK_COLOR);
    EXPECT_EQ(color, 0x8056AB12u) << "a lower alpha is kept";
}

TEST(MediaMarks, ProgramColoursTakeTheSetAlpha) {
    EXPECT_EQ(MediaColor(0x00123456), 0xFE123456u);
    EXPECT_EQ(MediaColor(0xFF123456), 0xFE123456u);
    EXPECT_EQ(MediaColor(0x80123456), 0x80123456u);
}

TEST(MediaLines, LinesEndAtCrLfLoneCrAndLoneLf) {
    Built built;
    Build(built, "a\r\nb\rc\nd");
    ASSERT_EQ(built.layout.GetLines().size(), 4u);
    EXPECT_EQ(built.Run(0, 0), "a");
    EXPECT_EQ(built.Run(1, 0), "b");
    EXPECT_EQ(built.Run(2, 0), "c");
    EXPECT_EQ(built.Run(3, 0), "d");
}

TEST(MediaLines, EmptyLinesKeepALineHeight) {
    Built built;
    Build(built, "a\r\n\r\nb\r\n");
    ASSERT_EQ(built.layout.GetLines().size(), 4u);
    EXPECT_EQ(built.Runs(1), 0);
    EXPECT_EQ(built.layout.GetLines()[1].height, 12);
    EXPECT_EQ(built.layout.GetContentHeight(), 48);
    Built empty;
    Build(empty, "");
    EXPECT_EQ(empty.layout.GetLines().size(), 1u);
    EXPECT_EQ(empty.layout.GetContentWidth(), 0);
}

TEST(MediaRuns, MarksFallInNoRunAndUnknownMarksStayInTheText) {
    Built built;
    Build(built, "a<Z>b<B>c</B>");
    ASSERT_EQ(built.Runs(0), 2);
    EXPECT_EQ(built.Run(0, 0), "a<Z>b");
    EXPECT_EQ(built.Run(0, 1), "c");
}

TEST(MediaRuns, AClosingBracketBeforeTheNextOpeningEndsTheMarksOfTheLine) {
    Built built;
    Build(built, "1 > 0 <B>x</B>\r\n<B>y</B>");
    ASSERT_EQ(built.Runs(0), 1);
    EXPECT_EQ(built.Run(0, 0), "1 > 0 <B>x</B>");
    ASSERT_EQ(built.Runs(1), 1);
    EXPECT_EQ(built.At(1, 0).font.weight, 700) << "the next line is scanned afresh";
}

TEST(MediaRuns, NestedBoldStaysBoldAfterTheFirstClose) {
    Built built;
    Build(built, "<B><B>a</B>b</B>c");
    ASSERT_EQ(built.Runs(0), 3);
    EXPECT_EQ(built.At(0, 0).font.weight, 700);
    EXPECT_EQ(built.At(0, 1).font.weight, 700) << "one bold mark is still open";
    EXPECT_EQ(built.At(0, 2).font.weight, 400);
}

TEST(MediaRuns, StrayClosingMarksLeaveTheCounterAtZero) {
    Built built;
    Build(built, "</B></B><B>x</B>y</I><I>z");
    ASSERT_EQ(built.Runs(0), 3);
    EXPECT_EQ(built.At(0, 0).font.weight, 700) << "x: one opening after two stray closings";
    EXPECT_EQ(built.At(0, 1).font.weight, 400);
    EXPECT_FALSE(built.At(0, 1).font.italic);
    EXPECT_TRUE(built.At(0, 2).font.italic);
}

TEST(MediaRuns, ColoursStackAndTheTextColourIsNeverPopped) {
    Built built;
    Build(built, "</#>a<#FF0000>b<#00FF00>c</#>d</#>e</#>f");
    ASSERT_EQ(built.Runs(0), 6);
    EXPECT_EQ(built.At(0, 0).color, TEXT) << "a closing colour with none open is ignored";
    EXPECT_EQ(built.At(0, 1).color, 0xFE0000FFu);
    EXPECT_EQ(built.At(0, 2).color, 0xFE00FF00u);
    EXPECT_EQ(built.At(0, 3).color, 0xFE0000FFu);
    EXPECT_EQ(built.At(0, 4).color, TEXT);
    EXPECT_EQ(built.At(0, 5).color, TEXT);
}

TEST(MediaRuns, ColoursAndBoldCarryOverLineEnds) {
    Built built;
    Build(built, "<B><#0000FF>a\nb");
    EXPECT_EQ(built.At(1, 0).font.weight, 700);
    EXPECT_EQ(built.At(1, 0).color, 0xFEFF0000u);
}

TEST(MediaRuns, LinksAreUnderlinedInTheLinkColourAndDoNotNest) {
    Built built;
    Build(built, "<#FF0000><LINK>a<LINK>b</LINK>c</LINK>d<U>e</U>");
    ASSERT_EQ(built.Runs(0), 5);
    EXPECT_TRUE(built.At(0, 0).link);
    EXPECT_EQ(built.At(0, 0).color, LINK);
    EXPECT_TRUE(built.At(0, 0).font.underline);
    EXPECT_TRUE(built.At(0, 1).link);
    EXPECT_FALSE(built.At(0, 2).link) << "one closing mark ends the link";
    EXPECT_EQ(built.At(0, 2).color, 0xFE0000FFu);
    EXPECT_FALSE(built.At(0, 3).font.underline);
    EXPECT_TRUE(built.At(0, 4).font.underline);
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
    ASSERT_EQ(built.Runs(0), 3);
    EXPECT_EQ(built.At(0, 0).image, &cover);
    EXPECT_EQ(built.At(0, 0).width, 20);
    EXPECT_EQ(built.layout.GetLines()[0].height, 30) << "the line grows to the picture";
    EXPECT_EQ(built.At(0, 2).image, nullptr) << "a missing picture leaves a text run";
    EXPECT_EQ(built.At(0, 2).width, 42);
    EXPECT_EQ(asked, (std::vector<SString>{"cover", "missing"}));
}

TEST(MediaAlign, ARightMarkInTheMiddleAlignsTheWholeLine) {
    Built built;
    Build(built, "ab<R>cd</R>\r\nef");
    EXPECT_EQ(built.layout.GetLines()[0].align, 2) << "closing on the same line changes nothing";
    EXPECT_EQ(built.At(0, 1).x, 200 - 12);
    EXPECT_EQ(built.At(0, 0).x, 200 - 24);
    EXPECT_EQ(built.layout.GetLines()[1].align, -1);
    EXPECT_EQ(built.At(1, 0).x, 0);
}

TEST(MediaAlign, TheHighestAlignmentOfALineWinsAndOpenMarksCarryOn) {
    Built built;
    Build(built, "<L>a<R>b</R>c<C>d\r\ne</C></L>\r\nf", 100);
    EXPECT_EQ(built.layout.GetLines()[0].align, 2);
    EXPECT_EQ(built.layout.GetLines()[1].align, 1) << "the centre mark is still open";
    EXPECT_EQ(built.layout.GetLines()[2].align, -1);
    EXPECT_EQ(built.At(1, 0).x, 47) << "centre: 50 - 3";
}

TEST(MediaAlign, LinesWithoutAMarkTakeTheControlsAlignmentAndJustifyIsLeft) {
    Built centred, right, justified;
    Build(centred, "abcde", 101, MEDIA_ALIGN_CENTER);
    EXPECT_EQ(centred.At(0, 0).x, 35) << "50.5 - 15, truncated";
    Build(right, "ab<B>c</B>", 100, MEDIA_ALIGN_RIGHT | MEDIA_ALIGN_BOTTOM);
    EXPECT_EQ(right.At(0, 1).x, 93);
    EXPECT_EQ(right.At(0, 0).x, 81);
    Build(justified, "abc", 100, MEDIA_ALIGN_JUSTIFY);
    EXPECT_EQ(justified.At(0, 0).x, 0);
}

TEST(MediaSize, ContentIsTheWidestLineAndTheSumOfLineHeights) {
    Built built;
    Build(built, "abc\r\n<B>abcd</B>\r\nab");
    EXPECT_EQ(built.layout.GetContentWidth(), 28);
    EXPECT_EQ(built.layout.GetContentHeight(), 36);
}

TEST(MediaSize, WrappingMeasuresRunsInTheInnerWidth) {
    Built built;
    Build(built, "abcdefghijklmnopqrst", 50, 0, true);
    EXPECT_EQ(built.layout.GetContentWidth(), 50);
    EXPECT_EQ(built.layout.GetContentHeight(), 30) << "120 pixels of text in three rows of 50";
}

TEST(MediaPlace, MiddleAndBottomShiftTheTextUnlessItScrollsDown) {
    Built built;
    Build(built, "a\r\nb"); // 24 high
    SRect inner{2, 2, 102, 62};
    auto top = built.layout.Place(inner, 0, 0, false, MEDIA_ALIGN_TOP);
    ASSERT_EQ(top.size(), 2u);
    EXPECT_EQ(top[0].y, 2);
    EXPECT_EQ(top[1].y, 14);
    auto middle = built.layout.Place(inner, 0, 0, false, MEDIA_ALIGN_MIDDLE);
    EXPECT_EQ(middle[0].y, 32 - 12);
    auto bottom = built.layout.Place(inner, 0, 0, false, MEDIA_ALIGN_BOTTOM);
    EXPECT_EQ(bottom[0].y, 62 - 24);
    auto scrolled = built.layout.Place(inner, 5, 7, true, MEDIA_ALIGN_BOTTOM);
    EXPECT_EQ(scrolled[0].y, 9);
    EXPECT_EQ(scrolled[0].x, 7);
}

TEST(MediaPlace, LinesBelowTheBottomAndWhollyAboveTheTopAreLeftOut) {
    Built built;
    Build(built, "a\nb\nc\nd\ne"); // five lines of 12
    SRect inner{0, 0, 100, 30};
    auto first = built.layout.Place(inner, 0, 0, true, 0);
    ASSERT_EQ(first.size(), 3u) << "lines starting at 0, 12 and 24";
    auto up = built.layout.Place(inner, 0, -20, true, 0);
    ASSERT_EQ(up.size(), 4u);
    EXPECT_EQ(up[0].line, 1) << "the first line lies wholly above the top";
    EXPECT_EQ(up[0].y, -8);
    EXPECT_EQ(up[3].line, 4) << "the last line starts at 28, above the bottom";
}

TEST(MediaFrame, StatesOfTheButtonFrame) {
    // button, flat, enabled, checked, hovered, pressed
    EXPECT_EQ(MediaFrameState(true, false, true, false, false, false), MEDIA_FRAME_NONE);
    EXPECT_EQ(MediaFrameState(true, false, true, false, true, false), MEDIA_FRAME_RAISED);
    EXPECT_EQ(MediaFrameState(true, false, true, false, true, true), MEDIA_FRAME_SUNKEN);
    EXPECT_EQ(MediaFrameState(true, false, true, false, false, true), MEDIA_FRAME_NONE)
        << "pressed, then the pointer left";
    EXPECT_EQ(MediaFrameState(true, false, true, true, false, false), MEDIA_FRAME_SUNKEN);
    EXPECT_EQ(MediaFrameState(true, false, false, true, true, true), MEDIA_FRAME_NONE)
        << "a disabled button has no frame even when hovered";
    EXPECT_EQ(MediaFrameState(true, true, true, false, true, false), MEDIA_FRAME_NONE);
    EXPECT_EQ(MediaFrameState(false, false, true, false, true, true), MEDIA_FRAME_NONE);
}

TEST(MediaRuns, ArbitraryTextGivesRunsInsideTheTextThatHoldNoMark) {
    // Texts made of mark pieces in a fixed pseudo-random order.
    const char alphabet[] = "<>/#BICLRUKMGa0F9\r\n ";
    uint32_t seed = 12345;
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        int length = static_cast<int>(seed % 120);
        for (int i = 0; i < length; ++i) {
            seed = seed * 1103515245u + 12345u;
            text += alphabet[(seed >> 16) % (sizeof(alphabet) - 1)];
        }
        Built built;
        Build(built, text.c_str(), 80, round % 4, round % 2 == 0);
        for (const auto& line : built.layout.GetLines()) {
            for (const auto& run : line.texts) {
                ASSERT_GE(run.start, 0) << text;
                ASSERT_GT(run.length, 0) << text;
                ASSERT_LE(run.start + run.length, static_cast<int>(text.size())) << text;
                SString piece = built.text.Mid(run.start, run.length);
                ASSERT_LT(piece.Find('\r'), 0) << text;
                ASSERT_LT(piece.Find('\n'), 0) << text;
            }
        }
        ASSERT_GE(built.layout.GetContentHeight(), 12) << text;
    }
}

} // namespace
