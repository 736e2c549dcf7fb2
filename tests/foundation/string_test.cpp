#include "foundation/string.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

namespace {

using ::testing::ElementsAre;

std::string Text(const SString& s) {
    return std::string(s.c_str(), s.GetLength());
}

std::u16string Units(const SUniString& s) {
    return s.GetBuffer() != nullptr ? std::u16string(s.GetBuffer(), s.GetLength()) : u"";
}

// Formats without the compiler's format check, for the "%I64" forms that
// the check does not know.
SString FormatUnchecked(const char* format, ...) {
    va_list args;
    va_start(args, format);
    SString result;
    result.FormatV(format, args);
    va_end(args);
    return result;
}

// Expected capacity for a length under the growth rule with the given step.
int Rounded(int length, int step) {
    return (length + 1) / step * step + step;
}

std::string AllBytes() {
    std::string bytes;
    for (int i = 1; i < 256; i++) {
        bytes += static_cast<char>(i);
    }
    return bytes;
}

} // namespace

TEST(StringGrowth, CapacityRoundsUpAndSkipsExactMultiples) {
    // clang-format off
    const std::pair<int, int> cases[] = {
        {0, 16}, {14, 16}, {15, 32}, {16, 32}, {30, 32}, {31, 48}, {-5, 16}};
    // clang-format on
    for (auto [length, capacity] : cases) {
        SString s;
        s.SetSize(length, false);
        EXPECT_EQ(s.GetCapacity(), capacity) << length;
        EXPECT_EQ(s.GetLength(), length < 0 ? 0 : length);
        EXPECT_EQ(s.GetBuffer()[s.GetLength()], 0);
    }
    for (int length : {0, 22, 23, 24, 47, 100}) {
        SUniString u;
        u.SetSize(length, false);
        EXPECT_EQ(u.GetCapacity(), Rounded(length, 24)) << length;
    }
    // Long strings grow into a hidden reserve; the capacity callers see
    // still follows the rule at every step.
    SString appended("");
    for (int i = 1; i <= 5000; i++) {
        appended.AppendChar(static_cast<char>('a' + i % 26));
        ASSERT_EQ(appended.GetCapacity(), Rounded(i, 16)) << i;
    }
    for (int i = 1; i <= 5000; i++) {
        ASSERT_EQ(appended.GetAt(i - 1), static_cast<char>('a' + i % 26)) << i;
    }
    SUniString wide;
    for (int i = 1; i <= 1000; i++) {
        wide.SetLength(i, u'w');
        ASSERT_EQ(wide.GetCapacity(), Rounded(i, 24)) << i;
    }
    EXPECT_EQ(Units(wide), std::u16string(1000, u'w'));
}

// Growth taken from the reserve must look like the new buffer the rule
// describes: zero past the carried text, and safe for text that lies inside
// the string itself.
TEST(StringGrowth, GrowthIntoTheReserveActsAsANewBuffer) {
    for (int length : {257, 300, 319, 500, 511, 1000, 4095}) {
        SString s;
        s.SetSize(length, false);
        memset(s.GetBuffer(), 'a', length);
        s.SetAt(10, 0);
        int capacity = s.GetCapacity();
        s.SetLength(capacity); // past the old capacity: a new buffer by the rule
        ASSERT_GT(s.GetCapacity(), capacity);
        EXPECT_EQ(Text(s), std::string(10, 'a') + std::string(capacity - 10, '\0')) << length;
        s.SetSize(s.GetCapacity() + 1, false); // without keep nothing is carried
        EXPECT_EQ(Text(s), std::string(s.GetLength(), '\0')) << length;

        std::string expected(length, 'b');
        for (int i = 0; i < length; i++) {
            expected[i] = static_cast<char>('a' + i % 26);
        }
        SString self(expected.c_str());
        for (int count : {1, 5, 16, length}) {
            self.Append(self.GetBuffer() + 1, count);
            expected += expected.substr(1, count);
            ASSERT_EQ(Text(self), expected) << length << " " << count;
            ASSERT_EQ(self.GetCapacity(), Rounded(self.GetLength(), 16));
        }
        self.Insert(self.c_str() + 2, 0, 2);
        expected.insert(0, expected.substr(2) + expected.substr(2));
        ASSERT_EQ(Text(self), expected) << length;
    }
}

TEST(StringGrowth, CapacityNeverShrinksAndKeepCarriesText) {
    SString s("abcdef");
    s.SetSize(100, true);
    EXPECT_EQ(s.GetCapacity(), 112);
    EXPECT_STREQ(s.c_str(), "abcdef");
    s.SetSize(3, true);
    EXPECT_EQ(s.GetCapacity(), 112);
    EXPECT_STREQ(s.c_str(), "abc");
    s.SetLength(5, '.'); // only the added characters are filled
    EXPECT_EQ(Text(s), "abc..");
    s = "x";
    EXPECT_EQ(s.GetCapacity(), 112);
}

TEST(StringLifetime, NullTextGivesABufferUserWordsFollowOnlyCopyFromAndMoveTakesBuffer) {
    EXPECT_EQ(SString().GetBuffer(), nullptr);
    EXPECT_STREQ(SString().c_str(), "");
    SString fromNull(static_cast<const char*>(nullptr));
    ASSERT_NE(fromNull.GetBuffer(), nullptr);
    EXPECT_EQ(fromNull.GetCapacity(), 16);
    EXPECT_EQ(Text(SString(3)) + Text(SString(-2)), "   ");
    SString a("text");
    a.userA = 7;
    a.userB = 9;
    EXPECT_EQ(SString(a).userA, 0u);
    SString assigned("x");
    assigned.userA = 3;
    assigned = a;
    EXPECT_EQ(assigned.userA, 3u);
    SString full;
    full.CopyFrom(a, false);
    EXPECT_EQ(full.userB, 9u);
    SString textOnly;
    textOnly.CopyFrom(a, true);
    EXPECT_EQ(Text(textOnly), "text");
    EXPECT_EQ(textOnly.userB, 0u);

    const char* buffer = a.GetBuffer();
    SString moved(std::move(a));
    EXPECT_EQ(moved.GetBuffer(), buffer);
    EXPECT_EQ(a.GetBuffer(), nullptr); // NOLINT: the moved-from state is part of the contract
    EXPECT_EQ(a.userA, 7u);
    moved.Empty();
    EXPECT_EQ(moved.GetBuffer(), nullptr);
    EXPECT_EQ(moved.GetCapacity(), 0);
}

TEST(StringLifetime, TextFromInsideItselfSurvivesReallocation) {
    SString s("0123456789abcde"); // 15 characters fill a 16-character buffer
    s.Append(s.c_str());
    EXPECT_EQ(Text(s), "0123456789abcde0123456789abcde");
    s.Assign(s.c_str() + 10, 5);
    EXPECT_EQ(Text(s), "abcde");
    s.Insert(s.c_str(), 1, 3);
    EXPECT_EQ(Text(s), "aabcdeabcdeabcdebcde");
    s.ReplaceRange(s.c_str(), 0, 1);
    EXPECT_EQ(s.GetLength(), 39);
    s = s.c_str() + 30;
    EXPECT_EQ(Text(s), "abcdebcde");
    s.Format("%s-%s", s.c_str(), s.c_str());
    EXPECT_EQ(Text(s), "abcdebcde-abcdebcde");
}

TEST(StringAccess, SetAtZeroTruncatesAndOutOfRangeIsIgnored) {
    SString s("abcd");
    s.SetAt(2, 0);
    EXPECT_EQ(s.GetLength(), 2);
    s.SetAt(5, 'x');
    s.SetAt(-1, 'x');
    EXPECT_EQ(Text(s), "ab");
    EXPECT_EQ(s.GetAt(2), 0);
    EXPECT_EQ(SString().GetAt(0), 0);
}

TEST(StringAccess, CompareIsUnsignedBytesAndCaseBlindOnlyOnAscii) {
    // clang-format off
    const std::tuple<const char*, const char*, int, int> cases[] = {
        {"abc", "abd", -1, -1}, {"abd", "abc", 1, 1}, {"", "", 0, 0},
        {"\xC3\xA9", "z", 1, 1}, // bytes compare unsigned
        {"Hello World", "hELLO wORLD", -1, 0}, {"\u00C4BC", "\u00C4bc", -1, 0},
        {"\u00C9", "\u00E9", -1, -1}, {"a", "B", 1, -1},
        {"[", "a", -1, -1}}; // "[" sorts before letters folded down
    // clang-format on
    for (auto [a, b, compare, noCase] : cases) {
        EXPECT_EQ(SString(a).Compare(b), compare) << a << " " << b;
        EXPECT_EQ(SString(a).CompareNoCase(b), noCase) << a << " " << b;
    }
    EXPECT_EQ(SString("a").Compare(nullptr), 1);
    EXPECT_EQ(Text(SString("stra\u00DFe \u00E9").Upper()), "STRA\u00DFE \u00E9");
    EXPECT_EQ(Text(SString("MiXeD \xC3\x89").Lower()), "mixed \xC3\x89");
}

TEST(StringSearch, FindStaysInsideTheRange) {
    SString s("abcabc");
    EXPECT_THAT((std::vector<int>{s.Find('c'), s.Find('c', 3), s.Find('c', 0, 2), s.Find('a', 6),
                                  s.Find('a', -1), s.FindNot('a'), SString("aaa").FindNot('a'),
                                  SString().Find('a')}),
                ElementsAre(2, 5, -1, -1, -1, 1, -1, -1));
    // "cab" cannot hold "bc"; with after, the result is just past the match.
    EXPECT_THAT((std::vector<int>{s.Find("bc", 0, 3, true), s.Find("bc", 2, 3), s.Find("bc", 2),
                                  s.Find("bc", 2, -1, true), s.Find(""),
                                  s.Find(static_cast<const char*>(nullptr)), s.FindNoCase("CA"),
                                  s.FindNoCase("CA", 3), s.FindNoCase("")}),
                ElementsAre(3, -1, 4, 6, -1, -1, 2, -1, -1));
}

TEST(StringSearch, ReverseFindStartsFromTheGivenIndex) {
    SString s("abcabc");
    EXPECT_THAT((std::vector<int>{s.ReverseFind('a'), s.ReverseFind('a', 2), s.ReverseFind('a', 6),
                                  s.ReverseFind('a', -2), SString("").ReverseFind('a')}),
                ElementsAre(3, 0, -1, -1, -1));
    // The first listed character that is found wins, not the last position.
    EXPECT_THAT((std::vector<int>{s.ReverseFindAny(-1, 2, 'a', 'c'),
                                  s.ReverseFindAny(-1, 2, 'x', 'b'), s.ReverseFindAny(-1, 1, 'x')}),
                ElementsAre(3, 4, -1));
}

TEST(StringRanges, PiecesClampTheirCounts) {
    SString s("abcdef");
    // clang-format off
    const std::tuple<int, int, const char*> mids[] = {
        {2, 2, "cd"}, {2, -1, "cdef"}, {2, 100, "cdef"}, {6, 1, ""}, {-1, 2, ""}, {0, 0, ""},
        {5, -7, "f"}};
    // clang-format on
    for (auto [start, count, expected] : mids) {
        EXPECT_EQ(Text(s.Mid(start, count)), expected) << start << "," << count;
    }
    SString kv("key=value=more");
    EXPECT_THAT((std::vector<std::string>{Text(s.Left(-1)), Text(s.Left(100)), Text(s.Right(2)),
                                          Text(s.Right(0)), Text(s.Right(9)), Text(s.Between(1, 3)),
                                          Text(s.Between(3, 3)), Text(s.Between(4, 1)),
                                          Text(s.Between(4, 50)), Text(SString().Left(3))}),
                ElementsAre("", "abcdef", "ef", "", "abcdef", "bc", "", "", "ef", ""));
    EXPECT_THAT((std::vector<std::string>{Text(kv.AfterChar('=')), Text(kv.BeforeChar('=')),
                                          Text(kv.AfterChar('#')), Text(kv.BeforeChar('#')),
                                          Text(kv.BeforeCharOrAll('#')),
                                          Text(SString("end=").AfterChar('='))}),
                ElementsAre("value=more", "key", "", "", "key=value=more", ""));
}

TEST(StringPieces, GetLineCutsAtEachLineEnd) {
    // clang-format off
    const std::tuple<const char*, int, const char*, int> cases[] = {
        {"ab\r\ncd", 0, "ab", 4}, {"ab\r\ncd", 4, "cd", 6}, {"ab\rcd", 0, "ab", 3},
        {"ab\ncd", 0, "ab", 3}, {"ab\n\rcd", 0, "ab", 3}, {"ab\n\rcd", 3, "", 4},
        {"abc", 1, "bc", 3}, {"abc", 3, "", 3}, {"abc", -1, "", 3}, {"ab\r", 0, "ab", 3},
        {"", 0, "", 0}};
    // clang-format on
    for (auto [text, start, line, expectedNext] : cases) {
        int next = -99;
        EXPECT_EQ(Text(SString(text).GetLine(start, &next)), line) << text << start;
        EXPECT_EQ(next, expectedNext) << text << start;
    }
    EXPECT_EQ(SString("a\r\nb\r\n").CountLines(), 3);
    EXPECT_EQ(SString("a\nb\rc").CountLines(), 1);
    EXPECT_EQ(SString("").CountLines(), 1);
    EXPECT_EQ(SString("ab\ncde\r\nf").GetLongestLine(), 3);
    EXPECT_EQ(SString("\r\n\r\n").GetLongestLine(), 0);
}

TEST(StringGetWord, WordsAndGaps) {
    // clang-format off
    const std::tuple<const char*, int, bool, const char*, int> cases[] = {
        {"  ab cd", 0, false, "ab", 4}, {"  ab cd", 0, true, "  ", 2}, {"ab cd", 2, false, "cd", 5},
        {"ab cd", 1, false, "b", 2}, {"ab \t\r\n", 2, false, "", 6},
        {"ab \t\r\nx", 2, true, " \t\r\n", 6}, {"ab", -1, false, "", 2}, {"ab", 7, false, "", 2},
        {"", 0, false, "", 0}};
    // clang-format on
    for (auto [text, start, keepBlanks, word, expectedNext] : cases) {
        int next = -99;
        EXPECT_EQ(Text(SString(text).GetWord(start, &next, keepBlanks)), word) << text << start;
        EXPECT_EQ(next, expectedNext) << text << start;
    }
}

TEST(StringEditing, InsertFollowsPositionRules) {
    // clang-format off
    const std::tuple<const char*, int, int, const char*> chars[] = {
        {"ab", -1, 1, "abx"}, {"ab", 2, 1, "abx"}, {"ab", 3, 1, "ab"}, {"ab", 0, 3, "xxxab"},
        {"ab", 0, 0, "ab"}, {"", 0, 2, "xx"}};
    // clang-format on
    for (auto [text, pos, count, expected] : chars) {
        SString s(text);
        s.Insert('x', pos, count);
        EXPECT_EQ(Text(s), expected) << text << pos << count;
    }
    SString s("ab");
    s.Insert("cd", 1, 2);
    EXPECT_EQ(Text(s), "acdcdb");
    s.Insert("", 0, 5);
    s.Insert(static_cast<const char*>(nullptr), 0);
    EXPECT_EQ(Text(s), "acdcdb");
    SString none;
    none.Insert("z", -1);
    EXPECT_EQ(Text(none), "z");
}

TEST(StringEditing, DeleteAndReplaceReportWhatChanged) {
    SString s("abcd");
    EXPECT_EQ(s.Delete(1, 2), 2);
    EXPECT_EQ(Text(s), "ad");
    EXPECT_EQ(s.Delete(1, 10), 1);
    EXPECT_EQ(s.Delete(1), 0);
    EXPECT_EQ(s.Delete(-1), 0);
    EXPECT_EQ(Text(s), "a");

    SString banana("banana");
    EXPECT_EQ(banana.Replace('a', 'x', 2, 2), 1);
    EXPECT_EQ(Text(banana), "banxna");
    EXPECT_EQ(banana.Replace('a', 'o'), 2);
    EXPECT_EQ(Text(banana), "bonxno");
    EXPECT_EQ(banana.Replace('o', 0), 1); // truncates at the first change
    EXPECT_EQ(Text(banana), "b");
}

TEST(StringEditing, ReplaceRangeGrowsAndShrinks) {
    // clang-format off
    const std::tuple<const char*, int, int, const char*> cases[] = {
        {"XYZ", 1, 1, "aXYZcd"}, {"X", 1, 3, "aX"}, {"X", 4, 0, "abcdX"}, {"X", 5, 0, "abcd"},
        {"X", -3, 1, "Xbcd"}, {"", 0, -1, ""}, {nullptr, 1, 2, "ad"}};
    // clang-format on
    for (auto [with, start, count, expected] : cases) {
        SString s("abcd");
        s.ReplaceRange(with, start, count);
        EXPECT_EQ(Text(s), expected) << start << "," << count;
    }
}

TEST(StringEditing, ReplaceAllNeverRescansInsertedText) {
    using Case =
        std::tuple<const char*, const char*, const char*, int, int, bool, const char*, int>;
    // clang-format off
    const Case cases[] = {
        {"aaa", "a", "aa", 0, -1, true, "aaaaaa", 3},
        {"Hello hello", "hello", "bye", 0, -1, false, "bye bye", 2},
        {"Hello hello", "hello", "bye", 0, -1, true, "Hello bye", 1},
        {"a-a-a", "a", "b", 1, 3, true, "a-b-a", 1},
        {"abab", "ab", "x", 0, 3, true, "xab", 1}, // a match may not cross the range end
        {"banana", "a", "", 0, -1, true, "bnn", 3}, {"banana", "", "x", 0, -1, true, "banana", 0},
        {"banana", "a", "x", 6, -1, true, "banana", 0},
        {"\xC3\x89t\xC3\xA9", "\xC3\xA9", "e", 0, -1, false, "\xC3\x89te", 1}};
    // clang-format on
    for (auto [text, find, with, start, count, matchCase, expected, replaced] : cases) {
        SString s(text);
        EXPECT_EQ(s.ReplaceAll(find, with, start, count, matchCase), replaced) << text << find;
        EXPECT_EQ(Text(s), expected) << text << " " << find;
    }
}

TEST(StringEditing, UnquoteNeedsOneMatchingPairAndConcatenationKeepsOrder) {
    // clang-format off
    const std::tuple<const char*, bool, const char*> cases[] = {
        {"\"ab\"", true, "ab"}, {"\"a\"b\"", false, "\"a\"b\""}, {"\"", false, "\""},
        {"\"\"", true, ""}, {"'x'", false, "'x'"}};
    // clang-format on
    for (auto [text, quoted, after] : cases) {
        SString s(text);
        EXPECT_EQ(s.Unquote(), quoted) << text;
        EXPECT_EQ(Text(s), after);
    }
    EXPECT_TRUE(SString("'x'").IsQuoted('\''));
    SString s = "ab" + SString("cd") + 'e';
    s += SString("f");
    s.Append("1234", 2);
    EXPECT_EQ(Text(s), "abcdef12");
}

TEST(StringTrim, CountsAndBlanks) {
    // clang-format off
    const std::tuple<const char*, bool, int, bool, const char*, int> cases[] = {
        {"abcd", true, 2, false, "ab", 0}, {"abcd", true, 10, false, "", 0},
        {"ab \t ", true, -1, false, "ab", 3}, {"ab \t ", true, -1, true, "ab \t", 1},
        {"abcd", true, 0, false, "abcd", 0}, {"abcd", false, 1, false, "bcd", 0},
        {"abcd", false, 9, false, "", 0}, {" \t ab", false, -1, false, "ab", 3},
        {"\t ab", false, -1, true, "\t ab", 0}, {"", false, -1, false, "", 0}};
    // clang-format on
    for (auto [text, right, count, blanksOnly, expected, result] : cases) {
        SString s(text);
        EXPECT_EQ(right ? s.TrimRight(count, blanksOnly) : s.TrimLeft(count, blanksOnly), result)
            << text << count;
        EXPECT_EQ(Text(s), expected) << text << count;
    }
    SString tabs("\t\t");
    tabs.Trim(-1, -1, true);
    EXPECT_EQ(Text(tabs), "\t\t");
    tabs.Trim(-1, -1, false);
    EXPECT_EQ(Text(tabs), "");
    SString both("  ab  ");
    both.Trim(1, 2);
    EXPECT_EQ(Text(both), " ab");
}

TEST(StringNumeric, IsNumericAndIsInteger) {
    // clang-format off
    const std::tuple<const char*, bool, bool> cases[] = {
        {"1.", false, false}, {".5", true, false}, {"-", false, false}, {"1-2", false, false},
        {"-5", true, true}, {" -5", false, false}, {"-5 ", true, true}, {" 12\t", true, true},
        {"", false, false}, {" \t", false, false}, {"1.2.3", false, false}, {"12a", false, false},
        {"-.5", true, false}, {"--5", false, false}, {"0", true, true}};
    // clang-format on
    for (auto [text, numeric, integer] : cases) {
        EXPECT_EQ(SString(text).IsNumeric(), numeric) << "'" << text << "'";
        EXPECT_EQ(SString(text).IsInteger(), integer) << "'" << text << "'";
    }
}

TEST(StringNumeric, ParseHexPrefixesAndLimits) {
    // clang-format off
    const std::pair<const char*, uint64_t> cases[] = {
        {"12", 18}, {"0", 0}, {"#ff", 255}, {"0x", 0}, {"0xFF", 255}, {"0XfF", 255}, {"#", 0},
        {"", 0}, {"01", 0}, {"012", 0}, {"#FfA", 0xFFA}, {"0x1g", 0}, {"-1", 0}, {" 1", 0},
        {"#0x1", 0}, {"ffffffffffffffff", UINT64_MAX}, {"1ffffffffffffffff", 0},
        {"0x0123456789abcdef", 0x0123456789abcdefULL}};
    // clang-format on
    for (auto [text, value] : cases) {
        EXPECT_EQ(SString(text).ParseHex(), value) << "'" << text << "'";
    }
}

TEST(StringRemoveNumbering, ThreeStateScan) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"12 - Song", "Song"}, {"12abc", "bc"}, {"Song", "Song"}, {"12", "12"}, {"12 - ", "12 - "},
        {"1.Intro", "Intro"}, {"07-08 Track", "08 Track"}, {"3 .-x", "x"}, {"", ""}, {"9 ", "9 "}};
    // clang-format on
    for (auto [text, expected] : cases) {
        SString s(text);
        s.RemoveNumbering();
        EXPECT_EQ(Text(s), expected) << text;
    }
}

TEST(StringJustify, AlignsEachLineToTheWidth) {
    // clang-format off
    const std::tuple<const char*, int, int, bool, const char*> cases[] = {
        {"ab cd ef", 0, 5, true, "ab cd\r\nef   "}, {"ab cd ef", 2, 5, true, "ab cd\r\n   ef"},
        {"ab cd ef", 1, 5, true, "ab cd\r\n ef  "}, {"ab cd ef", 0, 5, false, "ab cd"},
        {"a bb ccc dddd", 3, 10, true, "a  bb  ccc\r\ndddd      "},
        {"abcdefgh", 0, 3, true, "abc\r\ndef\r\ngh "}, {"ab\r\nabcd", 0, 0, true, "ab  \r\nabcd"},
        {"a\r\n\r\nb", 0, -1, true, "a\r\n \r\nb"}, {"\tab", 0, 8, true, "    ab  "},
        {"  ab  ", 2, 4, true, "  ab"},
        // Resuming uses offsets in the trimmed line, so indented text repeats.
        {"  ab cd", 0, 2, true, "ab\r\nb \r\ncd"}, {"", 0, 0, true, ""}};
    // clang-format on
    for (auto [text, align, width, wrap, expected] : cases) {
        SString s(text);
        s.Justify(align, width, wrap);
        EXPECT_EQ(Text(s), expected) << text << " align " << align << " width " << width;
    }
    SString none;
    none.Justify(1, 5, true);
    EXPECT_EQ(Text(none), "");
}

TEST(StringUrl, EncodeKeepsLettersDigitsDashUnderscoreAndDecodeDropsAShortEscape) {
    EXPECT_EQ(Text(SString("a b-_~.").UrlEncode(false)), "a%20b-_%7E%2E");
    EXPECT_EQ(Text(SString("a b+\xC3\xA9/").UrlEncode(true)), "a+b%2B%C3%A9%2F");
    // clang-format off
    const std::tuple<const char*, bool, const char*> cases[] = {
        {"a%20b", false, "a b"}, {"a+b", true, "a b"}, {"a+b", false, "a+b"},
        {"%7e%7E", false, "~~"}, {"abc%4", false, "abc"}, {"abc%", false, "abc"},
        {"%41%", false, "A"}, {"%4!", false, "a"}, {"", false, ""}};
    // clang-format on
    for (auto [text, plus, expected] : cases) {
        EXPECT_EQ(Text(SString(text).UrlDecode(plus)), expected) << text;
    }
    EXPECT_EQ(SString("a%00b").UrlDecode(false).GetLength(), 3);
    const std::string bytes = AllBytes();
    for (bool plus : {false, true}) {
        EXPECT_EQ(Text(SString(bytes.c_str()).UrlEncode(plus).UrlDecode(plus)), bytes) << plus;
    }
}

TEST(StringBase64, EndsInOneEqualsSignAndPlusAndSlashDecodeToTheKeptValues) {
    // clang-format off
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"a", "YQ=", "a"}, {"ab", "YWI=", "ab"}, {"abc", "YWJj=", "abc"},
        {"abcd", "YWJjZA=", "abcd"}, {"Melkora", "TWVsa29yYQ=", "Melkora"}, {"", "", ""},
        {">>>", "Pj4+=", ">>/"}, {"???", "Pz8/=", "??3"}};
    // clang-format on
    for (auto [text, encoded, decoded] : cases) {
        SString s(text);
        s.EncodeBase64();
        EXPECT_EQ(Text(s), encoded);
        s.DecodeBase64();
        EXPECT_EQ(Text(s), decoded);
    }
    SString sign("=");
    sign.DecodeBase64();
    EXPECT_EQ(Text(sign), "");
    for (const char* text : {"Artist - Album (1999)", "C:\\Music\\Folder", "x", "12345678901",
                             "\xC3\xA9t\xC3\xA9 \xE2\x80\xA2 caf\xC3\xA9", "line\r\nnext"}) {
        SString s(text);
        s.EncodeBase64();
        ASSERT_EQ(s.Find('+'), -1) << text;
        ASSERT_EQ(s.Find('/'), -1) << text;
        s.DecodeBase64();
        EXPECT_EQ(Text(s), text);
    }
}

TEST(StringFormat, LongStringsAndManyArguments) {
    std::string big(100000, 'x');
    SString s;
    s.Format("[%s]", big.c_str());
    EXPECT_EQ(Text(s), "[" + big + "]");
    EXPECT_GE(s.GetCapacity(), 100003);

    char expected[512];
    int dummy = 0;
    snprintf(expected, sizeof(expected), "%d|%5s|%-4c|%.3f|%x|%lld|%p|%e|%g|%o|%u|%%|%+05d|%#x",
             -12, "ab", 'z', 3.14159, 255u, -9000000000LL, static_cast<void*>(&dummy), 1e300,
             0.0001, 8u, 4000000000u, 42, 255u);
    s.Format("%d|%5s|%-4c|%.3f|%x|%lld|%p|%e|%g|%o|%u|%%|%+05d|%#x", -12, "ab", 'z', 3.14159, 255u,
             -9000000000LL, static_cast<void*>(&dummy), 1e300, 0.0001, 8u, 4000000000u, 42, 255u);
    EXPECT_EQ(Text(s), expected);
}

TEST(StringFormat, WideIntegerPrefixReadsAsLongLong) {
    EXPECT_EQ(Text(FormatUnchecked("%I64d|%I64u|%I64x", LLONG_MIN, ULLONG_MAX, 0xABCDEF0123ULL)),
              "-9223372036854775808|18446744073709551615|abcdef0123");
    EXPECT_EQ(Text(FormatUnchecked("[%-8I64d|%08I64X]", 5LL, 255ULL)), "[5       |000000FF]");
    EXPECT_EQ(Text(FormatUnchecked("I64 %%I64d %d", 3)), "I64 %I64d 3");
    EXPECT_EQ(Text(FormatUnchecked("%2$s %1$I64d", -4LL, "x")), "x -4");
    std::string longFormat(400, '.');
    longFormat += "%I64d";
    EXPECT_EQ(Text(FormatUnchecked(longFormat.c_str(), 7LL)), std::string(400, '.') + "7");
}

TEST(StringFormat, BoundsAndMeasuredLength) {
    SString s;
    s.Format("%*d", 70000, 1);
    EXPECT_EQ(s.GetLength(), 70000);
    s.Format("ab%cde", 0);
    EXPECT_EQ(s.GetLength(), 2);
    SString wide("");
    wide.SetSize(200, false);
    wide.Format("x");
    EXPECT_EQ(wide.GetCapacity(), 208);
    EXPECT_EQ(Text(wide), "x");
    EXPECT_EQ(Text(FormatUnchecked(nullptr)), "");
    EXPECT_EQ(Text(SString::FromInt(INT_MIN)), "-2147483648");
}

TEST(StringUnicode, Utf8ToUtf16ReplacesEachBadSequence) {
    // clang-format off
    const std::pair<const char*, std::u16string> cases[] = {
        {"A\xC3\xA9\xE2\x82\xAC", u"A\u00E9\u20AC"}, {"\xF0\x9F\x98\x80", u"\xD83D\xDE00"},
        {"\xC3", u"\xFFFD"}, // cut short
        {"\xE2\x82" "A", u"\xFFFD" "A"}, // one U+FFFD for the valid prefix
        {"\xC0\x80", u"\xFFFD\xFFFD"}, // overlong
        {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"}, // encoded surrogate
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"}, // past U+10FFFF
        {"\x80x\xFF", u"\xFFFDx\xFFFD"}, {"", u""}};
    // clang-format on
    for (const auto& [utf8, utf16] : cases) {
        EXPECT_EQ(Units(Utf8ToUtf16(utf8)), utf16) << utf8;
        EXPECT_EQ(Units(SUniString(utf8)), utf16) << utf8;
    }
    EXPECT_EQ(Units(Utf8ToUtf16("abc", 2)), u"ab");
    EXPECT_EQ(Units(Utf8ToUtf16(nullptr)), u"");
}

TEST(StringUnicode, Utf16ToUtf8ReplacesLoneSurrogates) {
    // clang-format off
    const std::pair<std::u16string, const char*> cases[] = {
        {u"A\u00E9\u20AC", "A\xC3\xA9\xE2\x82\xAC"}, {u"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
        {u"\xD800" "A", "\xEF\xBF\xBD" "A"}, // lone high surrogate
        {u"\xDC00", "\xEF\xBF\xBD"}, // lone low surrogate
        {u"x\xD83D", "x\xEF\xBF\xBD"}, // high surrogate at the end
        {u"\xDE00\xD83D", "\xEF\xBF\xBD\xEF\xBF\xBD"}};
    // clang-format on
    for (const auto& [utf16, utf8] : cases) {
        EXPECT_EQ(Text(Utf16ToUtf8(utf16.c_str(), static_cast<int>(utf16.size()))), utf8);
        EXPECT_EQ(Text(SString(utf16.c_str())), utf8);
    }
    // A pair cut by the count is not joined with what lies beyond it.
    EXPECT_EQ(Text(Utf16ToUtf8(u"\xD83D\xDE00", 1)), "\xEF\xBF\xBD");
    EXPECT_EQ(Text(Utf16ToUtf8(nullptr)), "");
}

TEST(StringUnicode, OneCodePointTakesOneToFourBytesAndSurrogatesNone) {
    const std::pair<unsigned, std::string> cases[] = {
        {0x41, "A"}, {0xE9, "\xC3\xA9"}, {0x65E5, "\xE6\x97\xA5"},
        {0x1F3B5, "\xF0\x9F\x8E\xB5"}, {0x10FFFF, "\xF4\x8F\xBF\xBF"},
        {0xD800, ""}, {0xDFFF, ""}, {0x110000, ""}};
    for (const auto& [code, bytes] : cases) {
        EXPECT_EQ(CodePointToUtf8(code), bytes) << std::hex << code;
    }
}

TEST(StringUnicode, Utf32AndWideCopies) {
    const wchar_t text[] = {0x20AC, 0x1F600, 0xD800, 0x110000, 'a', 0};
    EXPECT_EQ(Text(SString(text)), "\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD\xEF\xBF\xBD"
                                   "a");
    EXPECT_EQ(Text(SString(static_cast<const wchar_t*>(nullptr))), "");
    EXPECT_FALSE(SString().ToWide());
    auto wide = SString("\xC3\xA9\xF0\x9F\x98\x80").ToWide();
    ASSERT_TRUE(wide);
    EXPECT_EQ(std::u16string(wide.get()), u"\u00E9\xD83D\xDE00");
    auto empty = SString("").ToWide();
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty[0], u'\0');
}

TEST(StringUnicode, ValidUtf8RoundTripsThroughUtf16AndInvalidComesBackValid) {
    for (const char* text : {"plain", "caf\xC3\xA9", "\xE2\x80\xA2 \xF0\x9F\x8E\xB5",
                             "\xEF\xBF\xBF", "\xF4\x8F\xBF\xBF", ""}) {
        ASSERT_TRUE(IsValidUtf8(text)) << text;
        EXPECT_EQ(Text(Utf8ToUtf16(text).ToString()), text);
    }
    for (const char* text : {"\xC3", "\xC0\xAF", "\xED\xBF\xBF", "\xF8\x88\x80\x80\x80", "a\xFE"}) {
        EXPECT_FALSE(IsValidUtf8(text)) << text;
        EXPECT_TRUE(IsValidUtf8(Utf8ToUtf16(text).ToString().c_str())) << text;
    }
    EXPECT_TRUE(IsValidUtf8("ab\xC3", 2));
}

TEST(StringUnicode, UniStringCopiesAndFills) {
    SUniString s("ab");
    s.SetLength(4, u'-');
    EXPECT_EQ(Units(s), u"ab--");
    SUniString copy(s);
    copy = copy.GetBuffer() + 1; // from inside itself
    EXPECT_EQ(Units(copy), u"b--");
    copy = "\xC3\xA9";
    SUniString moved(std::move(copy));
    EXPECT_EQ(copy.GetBuffer(), nullptr); // NOLINT: the moved-from state is part of the contract
    EXPECT_EQ(Text(moved.ToString()), "\xC3\xA9");
    moved.Empty();
    EXPECT_EQ(moved.GetCapacity(), 0);
    EXPECT_EQ(Text(moved.ToString()), "");
}

TEST(StringWindows1252, HighBytesMapToTheirCharacters) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"\x95", "\xE2\x80\xA2"}, {"\x80", "\xE2\x82\xAC"}, {"\x92", "\xE2\x80\x99"},
        {"\x9F", "\xC5\xB8"}, {"\x81", "\xEF\xBF\xBD"}, {"\x9D", "\xEF\xBF\xBD"},
        {"\xE9", "\xC3\xA9"}, {"\xA0", "\xC2\xA0"}, {"plain", "plain"}};
    // clang-format on
    for (auto [bytes, utf8] : cases) {
        EXPECT_EQ(Text(Windows1252ToUtf8(bytes)), utf8);
    }
    SString converted = Windows1252ToUtf8(AllBytes().c_str());
    EXPECT_TRUE(IsValidUtf8(converted.c_str(), converted.GetLength()));
    EXPECT_EQ(Text(Windows1252ToUtf8("a\0b", 3)), std::string("a\0b", 3));
}
