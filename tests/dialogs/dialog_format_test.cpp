// The vocabulary of dialog definitions: types, style words, colours,
// anchors and draw modes.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "dialogs/dialog_format.h"
#include "toolkit/sys_colors.h"

namespace {

TEST(ControlTypes, SectionNamesMatchWithoutCaseAndNumberByPlace) {
    struct Case {
        const char* section;
        int type;
    } cases[] = {
        {"DIALOG", 0},  {"dialog", 0}, {"Button", 2},   {"EXTENDEDLIST", 7}, {"WaveEditor", 31},
        {"EXTERN", 33}, {"", -1},      {"BUTTON ", -1}, {"BUTTONS", -1},     {"TOOL BAR", -1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(FindControlType(c.section), c.type) << c.section;
    }
    EXPECT_EQ(FindControlType(nullptr), -1);
    for (int type = 0; type < CTRL_TYPE_COUNT; ++type) {
        ASSERT_NE(GetControlType(type), nullptr);
        EXPECT_EQ(GetControlType(type)->type, type);
        EXPECT_EQ(FindControlType(GetControlType(type)->section), type);
    }
    EXPECT_EQ(GetControlType(-1), nullptr);
    EXPECT_EQ(GetControlType(34), nullptr);
    EXPECT_STREQ(GetControlType(CTRL_TOOLBAR)->display, "Tool Bar");
    EXPECT_STREQ(GetControlType(CTRL_EXTERN)->display, "External Control");
}

TEST(StyleWords, ReadOrsTheWordsKnownToTheType) {
    struct Case {
        int type;
        const char* text;
        bool parsed;
        uint32_t value;
    } cases[] = {
        {CTRL_BUTTON, "WS_VISIBLE BS_FLAT ", true, 0x10008000},
        {CTRL_BUTTON, "WS_VISIBLE   BS_FLAT", true, 0x10008000}, // runs of blanks count as one
        {CTRL_BUTTON, "ws_visible", true, 0},                    // case sensitive
        {CTRL_BUTTON, "WS_BORDER", true, 0},                     // not a button word: ignored
        {CTRL_BUTTON, "NOSUCHWORD", true, 0},
        {CTRL_EDIT, "WS_EX_CLIENTEDGE", true, 0x200}, // extended word in STYLE counts
        {CTRL_EDIT, "ES_LEFT ES_CENTER", true, 1},
        {CTRL_DIALOG, "WS_CAPTION", true, 0x00C00000},
        {CTRL_RICHEDIT, "WS_EX_CLIENTEDGE WS_EX_STATICEDGE", true, 0x20000},
        {CTRL_STATIC, "WS_VISIBLE WS_DISABLED WS_BORDER", true, 0x18000000},
        {CTRL_LABEL, "WS_BORDER WS_EX_STATICEDGE", true, 0x00820000},
        {CTRL_BUTTON, "", false, 0},
        {CTRL_BUTTON, "\"WS_VISIBLE", false, 0},        // a quote left open
        {-1, "WS_VISIBLE WS_BORDER", true, 0x10000000}, // unknown type: the two common
    };
    for (const Case& c : cases) {
        uint32_t value = 0xDEADBEEF;
        EXPECT_EQ(ParseStyleWords(c.type, c.text, value), c.parsed) << c.text;
        EXPECT_EQ(value, c.parsed ? c.value : 0xDEADBEEF) << c.text;
    }
}

TEST(StyleWords, WriterPullsInThePartsOfMultiBitWordsAndZeroWords) {
    struct Case {
        int type;
        uint32_t value;
        bool ex;
        const char* text;
    } cases[] = {
        {CTRL_BUTTON, 0x300, false, "BS_LEFT BS_RIGHT BS_CENTER "},
        {CTRL_BUTTON, 0xC00, false, "BS_TOP BS_BOTTOM BS_VCENTER "},
        {CTRL_COMBO, 3, false, "CBS_SIMPLE CBS_DROPDOWN CBS_DROPDOWNLIST "},
        {CTRL_DIALOG, 0x10C00000, false, "WS_VISIBLE WS_BORDER WS_CAPTION "},
        {CTRL_EDIT, 1, false, "ES_LEFT ES_CENTER "},
        {CTRL_EDIT, 0, false, "ES_LEFT "},
        {CTRL_EXTENDEDLIST, 0, false, "LVS_ICON "},
        {CTRL_STATIC, 0x00800000, false, ""}, // no word for the bit: not written
        {CTRL_BUTTON, 0x10000000, true, ""},  // extended words only in EXSTYLE
        {CTRL_EDIT, 0x20200, true, "WS_EX_CLIENTEDGE WS_EX_STATICEDGE "},
        {CTRL_DIALOG, 0x88, true, "WS_EX_TOOLWINDOW WS_EX_TOPMOST "},
        {CTRL_RICHEDIT, 0x20200, true, "WS_EX_STATICEDGE "},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(std::string(FormatStyleWords(c.type, c.value, c.ex).c_str()), c.text);
    }
}

TEST(StyleWords, EveryTypeReadsBackWhatItWrites) {
    for (int type = 0; type < CTRL_TYPE_COUNT; ++type) {
        for (bool ex : {false, true}) {
            int count = 0;
            const SStyleWord* words =
                ex ? GetExStyleWords(type, &count) : GetStyleWords(type, &count);
            uint32_t all = 0;
            for (int i = 0; i < count; ++i) {
                all |= words[i].value;
            }
            SString text = FormatStyleWords(type, all, ex);
            uint32_t back = 0;
            if (count > 0) {
                ASSERT_TRUE(ParseStyleWords(type, text.c_str(), back));
            }
            EXPECT_EQ(back, all) << type << " " << ex;
        }
    }
}

TEST(Colors, BothTextFormsAndTheirWriter) {
    struct Case {
        const char* text;
        uint32_t value;
    } cases[] = {
        {"#004080", 0x00804000}, // red, green, blue pairs
        {"#FF0000", 0x000000FF},
        {"#ff0000", 0x000000FF},
        {"#FF000000", 0xFF000000}, // eight digits as written
        {"#00804000", 0x00804000},
        {"x004080", 0x00804000}, // the first character is not looked at
        {"#00408", 0},           // six characters: black, not "not set"
        {"", 0},
        {"#FF0000000", 0},
        {"#G04080", 0x00804000 & 0xFFFF00}, // a non-digit ends its pair
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ParseColorText(c.text), c.value) << c.text;
    }
    EXPECT_EQ(ParseColorText(nullptr), 0u);
    struct Written {
        uint32_t value;
        const char* text;
    } written[] = {
        {0x00804000, "#004080"},   {0, "#000000"},
        {0xFFFFFF, "#FFFFFF"},     {0x1000000, "#01000000"},
        {0xFF000000, "#FF000000"}, {0xFE00000F, "#FE00000F"},
    };
    for (const Written& w : written) {
        EXPECT_EQ(std::string(FormatColorText(w.value).c_str()), w.text);
        EXPECT_EQ(ParseColorText(w.text), w.value);
    }
}

TEST(Colors, ThreeRanges) {
    ResetSysColors();
    EXPECT_TRUE(IsColorNotSet(0xFF000000));
    EXPECT_FALSE(IsSystemColor(0xFF000000));
    EXPECT_FALSE(IsSystemColor(0xFDFFFFFF));
    EXPECT_EQ(ResolveColor(0xFDFFFFFF), 0xFDFFFFFFu); // used as it stands
    EXPECT_EQ(ResolveColor(0xFF000000), 0xFF000000u); // stays "not set"
    // 0xFE000000 + 0x02000000 wraps to index 0; 0xFE00000F is the button face.
    EXPECT_EQ(SystemColorIndex(0xFE000000), 0u);
    EXPECT_EQ(ResolveColor(0xFE00000F), GetSysColor(SYS_COLOR_BTNFACE));
    EXPECT_EQ(ResolveColor(0xFE000005), GetSysColor(SYS_COLOR_WINDOW));
    // 0xFF000001 is a system colour with a meaningless index: black.
    EXPECT_TRUE(IsSystemColor(0xFF000001));
    EXPECT_EQ(SystemColorIndex(0xFF000001), 0x01000001u);
    EXPECT_EQ(ResolveColor(0xFF000001), 0u);
}

TEST(Anchors, ArithmeticOfEveryBit) {
    const SAnchorBox box{100, 50, 80, 40};
    struct Case {
        uint32_t anchor;
        int dw, dh;
        SAnchorBox expected;
    } cases[] = {
        {0, 100, 100, {100, 50, 80, 40}},
        {AUTO_CENTER, 100, 0, {150, 50, 80, 40}},
        {AUTO_CENTERHALF, 100, 0, {125, 50, 80, 40}},
        {AUTO_RIGHT, 100, 0, {200, 50, 80, 40}},
        {AUTO_RIGHTHALF, 100, 0, {150, 50, 80, 40}},
        {AUTO_WIDTH, 100, 0, {100, 50, 180, 40}},
        {AUTO_WIDTHHALF, 100, 0, {100, 50, 130, 40}},
        {AUTO_MIDDLE, 0, 60, {100, 80, 80, 40}},
        {AUTO_MIDDLEHALF, 0, 60, {100, 65, 80, 40}},
        {AUTO_BOTTOM, 0, 60, {100, 110, 80, 40}},
        {AUTO_BOTTOMHALF, 0, 60, {100, 80, 80, 40}},
        {AUTO_HEIGHT, 0, 60, {100, 50, 80, 100}},
        {AUTO_HEIGHTHALF, 0, 60, {100, 50, 80, 70}},
        {AUTO_RIGHT | AUTO_HEIGHT, 10, 20, {110, 50, 80, 60}},
        // Truncation towards zero: -3 halves to -1, quarters to 0.
        {AUTO_CENTER, -3, 0, {99, 50, 80, 40}},
        {AUTO_CENTERHALF, -3, 0, {100, 50, 80, 40}},
        {AUTO_WIDTHHALF, -3, 0, {100, 50, 79, 40}},
        // Nothing clamps a shrinking control.
        {AUTO_WIDTH, -90, 0, {100, 50, -10, 40}},
        {AUTO_HALF_X, 100, 0, {100, 50, 80, 40}}, // the half mark alone does nothing
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ApplyAnchorValue(c.anchor, box, c.dw, c.dh), c.expected) << c.anchor;
    }
    // Two neighbours share the growth: a half resize and a half right.
    SAnchorBox left = ApplyAnchorValue(AUTO_WIDTHHALF, {0, 0, 100, 10}, 50, 0);
    SAnchorBox right = ApplyAnchorValue(AUTO_RIGHTHALF, {100, 0, 100, 10}, 50, 0);
    EXPECT_EQ(left.left + left.width, right.left);
}

TEST(Anchors, WordsAndLabels) {
    EXPECT_STREQ(AnchorWord(AUTO_RIGHTHALF, false), "_AUTORIGHTHALF");
    EXPECT_STREQ(AnchorLabel(AUTO_HEIGHTHALF, true), "Half Resize");
    EXPECT_STREQ(AnchorLabel(0, true), "Top");
    EXPECT_STREQ(AnchorLabel(0, false), "Left");
    EXPECT_EQ(AnchorWord(3, false), nullptr);
    EXPECT_EQ(AnchorValueOfWord("_AUTOMIDDLEHALF"), 0x90);
    EXPECT_EQ(AnchorValueOfWord("_autoleft"), -1);
}

TEST(DrawModes, WordsBothWays) {
    for (int mode = 0; mode < DRAW_MODE_COUNT; ++mode) {
        EXPECT_EQ(DrawModeOfWord(DrawModeWord(mode)), mode);
    }
    EXPECT_STREQ(DrawModeWord(DRAW_STRETCH), "_DRAWSTRETCH");
    EXPECT_EQ(DrawModeWord(12), nullptr);
    EXPECT_EQ(DrawModeOfWord("9"), -1);
}

TEST(DefinitionNumbers, LeadingBlanksNonNumericAndOverflow) {
    EXPECT_EQ(ParseDefinitionNumber(" 12"), 12);
    EXPECT_EQ(ParseDefinitionNumber("-16777216"), -16777216);
    EXPECT_EQ(ParseDefinitionNumber("x"), 0);
    EXPECT_EQ(ParseDefinitionNumber("7up"), 7);
    EXPECT_EQ(ParseDefinitionNumber("99999999999999999999999"), LLONG_MAX);
    EXPECT_EQ(ParseDefinitionNumber(nullptr), 0);
}

} // namespace
