// Colour texts, identifier tests and the random generator.
#include "foundation/color.h"
#include "foundation/identifier.h"
#include "foundation/random.h"

#include <gtest/gtest.h>

#include <climits>
#include <thread>

TEST(Color, ParsesBothLengthsAndRefusesOthers) {
    const std::pair<const char*, uint32_t> cases[] = {
        {"#FF0000", 0x0000FF},
        {"#004080", 0x804000},
        {"#ff0000", 0x0000FF},
        {"X004080", 0x804000},
        {"#80FF0000", 0x80FF0000},
        {"#FF000000", COLOR_NOT_SET},
        {"#ff000001", COLOR_TRANSPARENT},
        {"#FF000", 0},
        {"#FF00000", 0},
        {"#FF0000000", 0},
        {"", 0},
        {"#GG0000", 0},
        {"# 00000", 0},
    };
    for (const auto& [text, color] : cases) {
        EXPECT_EQ(ParseColor(text), color) << text;
    }
    EXPECT_EQ(ParseColor(nullptr), 0u);
}

TEST(Color, FormatsUpperCaseInBothRanges) {
    const std::pair<uint32_t, const char*> cases[] = {
        {255, "#FF0000"},
        {0, "#000000"},
        {0xABCDEF, "#EFCDAB"},
        {0xFFFFFF, "#FFFFFF"},
        {0x1000000, "#01000000"},
        {0x80ff00aa, "#80FF00AA"},
        {COLOR_NOT_SET, "#FF000000"},
    };
    for (const auto& [color, text] : cases) {
        EXPECT_EQ(FormatColor(color), text) << color;
    }
}

TEST(Color, TextRoundTripsEveryRange) {
    for (uint32_t color : {0u, 0x0000FFu, 0x123456u, 0xFFFFFFu, 0x1000000u, COLOR_NOT_SET,
                           COLOR_TRANSPARENT, 0xFFFFFFFFu}) {
        EXPECT_EQ(ParseColor(FormatColor(color).c_str()), color) << color;
    }
}

TEST(Identifier, TellsIdentifiersFromOtherText) {
    struct Case {
        const char* text;
        bool identifier;
        bool upper;
    };
    const Case cases[] = {
        {"_a", true, false},   {"a_", false, false},       {"1a", false, false},
        {"__", false, false},  {"_", false, false},        {"", false, false},
        {"a", true, false},    {"A1_b", true, false},      {"a b", false, false},
        {"a-b", false, false}, {"\xc3\xa9", false, false}, {"EDIT_NAME", true, true},
        {"_A", true, true},    {"A_", false, false},       {"_1", true, false},
        {"BTN2", true, true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(IsIdentifier(c.text), c.identifier) << c.text;
        EXPECT_EQ(IsUpperIdentifier(c.text), c.upper) << c.text;
    }
    EXPECT_FALSE(IsIdentifier(nullptr));
    EXPECT_FALSE(IsUpperIdentifier(nullptr));
}

TEST(Identifier, CharactersAreAsciiLettersDigitsAndUnderscore) {
    for (char c : {'a', 'z', 'A', 'Z', '0', '9', '_'}) {
        EXPECT_TRUE(IsIdentifierChar(c)) << c;
    }
    for (char c : {'-', ' ', '\0', '@', '[', '`', '{', '\x80', '\xe9'}) {
        EXPECT_FALSE(IsIdentifierChar(c)) << int(c);
    }
}

TEST(Random, FollowsTheClassicRuntimeSequence) {
    SRandom random(1);
    for (int expected : {41, 18467, 6334, 26500, 19169, 15724, 11478, 29358, 26962, 24464}) {
        EXPECT_EQ(random.Next(), expected);
    }
    random.Seed(0xFFFFFFFFu);
    EXPECT_EQ(random.Next(), 35) << "the state wraps at 32 bits";
    random.Seed(1);
    EXPECT_EQ(random.Next(), 41);
}

TEST(Random, EachThreadHasItsOwnGenerator) {
    SeedRandom(5);
    int first = 0;
    std::thread other([&first] { first = NextRandom(); });
    other.join();
    EXPECT_EQ(first, 41) << "a new thread starts from seed 1";
    SeedRandom(1);
    EXPECT_EQ(NextRandom(), 41);
}

TEST(Random, GetRandomRoundsToTheNearest) {
    SeedRandom(1);
    // 41, 18467, 6334, 26500 scaled to 1000: 1.25, 563.6, 193.3, 808.7.
    for (int expected : {1, 564, 193, 809}) {
        EXPECT_EQ(GetRandom(1000), expected);
    }
    EXPECT_EQ(GetRandom(0), 0);
    SeedRandom(1);
    for (int i = 0; i < 1000; ++i) {
        int value = GetRandom(UINT_MAX);
        ASSERT_GE(value, 0);
        ASSERT_LE(value, INT_MAX);
    }
}
