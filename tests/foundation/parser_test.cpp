// SStringParser: how texts are cut into tokens under each setup.
#include "foundation/parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Tokens = std::vector<std::string>;

Tokens TokensOf(const SStringArray& array) {
    Tokens result;
    for (int i = 0; i < array.GetCount(); ++i) {
        result.push_back(array.GetAt(i)->c_str());
    }
    return result;
}

struct ParseCase {
    const char* input;
    const char* separators;
    unsigned flags;
    char quote;
    int result;
    Tokens tokens;
};

void PrintTo(const ParseCase& c, std::ostream* out) {
    *out << "'" << c.input << "' at '" << c.separators << "' flags " << c.flags;
}

class ParseTable : public testing::TestWithParam<ParseCase> {};

TEST_P(ParseTable, GivesTokensInOrderToItselfOrAfterWhatATargetHolds) {
    const ParseCase& c = GetParam();
    SStringParser parser(c.input);
    EXPECT_EQ(parser.Parse(c.separators, c.flags, c.quote), c.result);
    EXPECT_EQ(TokensOf(parser.GetTokens()), c.tokens);
    EXPECT_EQ(parser.GetCount(), int(c.tokens.size()));

    SStringParser other(c.input);
    SStringArray target;
    target.Add("kept");
    EXPECT_EQ(other.Parse(c.separators, c.flags, c.quote, &target), c.result);
    Tokens expected = {"kept"};
    expected.insert(expected.end(), c.tokens.begin(), c.tokens.end());
    EXPECT_EQ(TokensOf(target), expected);
    EXPECT_EQ(other.GetCount(), 0);
}

const unsigned Q = SStringParser::PARSE_QUOTES;
const unsigned QE = Q | SStringParser::PARSE_QUOTE_ENDS_TOKEN;
const unsigned QEU = QE | SStringParser::PARSE_UNQUOTE;
const unsigned TRIM = SStringParser::PARSE_TRIM;

const ParseCase separatorCases[] = {
    {"a,b", ",", 0, 0, 2, {"a", "b"}},
    {"a,", ",", 0, 0, 2, {"a", ""}},
    {"", ",", 0, 0, 0, {}},
    {"a,,b", ",", 0, 0, 3, {"a", "", "b"}},
    {",a", ",", 0, 0, 2, {"", "a"}},
    {",", ",", 0, 0, 2, {"", ""}},
    {"a;b,c d", ";,", 0, 0, 3, {"a", "b", "c d"}},
};
INSTANTIATE_TEST_SUITE_P(Separators, ParseTable, testing::ValuesIn(separatorCases));

const ParseCase blankRunCases[] = {
    {"a   b ", " ", 0, 0, 2, {"a", "b"}},
    {" a", " ", 0, 0, 2, {"", "a"}},
    {"a \t b", " ", 0, 0, 3, {"a", "\t", "b"}},
    {"a\t\tb", "\t", 0, 0, 2, {"a", "b"}},
    {"a\t \tb", "\t", 0, 0, 3, {"a", " ", "b"}},
    {"a \t b", " \t", 0, 0, 2, {"a", "b"}},
    {"a \t ", "\t ", 0, 0, 1, {"a"}},
    {"a  ,b", " ,", 0, 0, 2, {"a", "b"}},
    {"a ,,b", " ,", 0, 0, 3, {"a", "", "b"}},
    {"a, b", " ,", 0, 0, 3, {"a", "", "b"}},
    {"a ,", " ,", 0, 0, 2, {"a", ""}},
};
INSTANTIATE_TEST_SUITE_P(BlankRuns, ParseTable, testing::ValuesIn(blankRunCases));

const ParseCase quoteCases[] = {
    {"\"a,b\",c", ",", 0, '"', 3, {"\"a", "b\"", "c"}},
    {"\"a,b\",c", ",", Q, '"', 2, {"\"a,b\"", "c"}},
    {"\"a,b\",c", ",", QE, '"', 2, {"\"a,b\"", "c"}},
    {"\"a,b\",c", ",", QEU, '"', 2, {"a,b", "c"}},
    {"\"a,b\",c", ",", Q | SStringParser::PARSE_UNQUOTE, '"', 2, {"\"a,b\"", "c"}},
    {"\"a,b\"c,d", ",", Q, '"', 2, {"\"a,b\"c", "d"}},
    {"\"a,b\"c,d", ",", QE, '"', 3, {"\"a,b\"", "c", "d"}},
    {"\"a,b\"c,d", ",", QEU, '"', 3, {"a,b", "c", "d"}},
    {"\"a\"", ",", QE, '"', 1, {"\"a\""}},
    {"\"a\"\"b\"", ",", Q, '"', 1, {"\"a\"\"b\""}},
    {"\"a\"\"b\"", ",", QE, '"', 2, {"\"a\"", "\"b\""}},
    {"x'a,b'y", ",", QEU, '\'', 2, {"x'a,b'", "y"}},
    {"\"a  b\"  c", " ", Q, '"', 2, {"\"a  b\"", "c"}},
    {" \"a,b\",  c ", ",", QEU | TRIM, '"', 2, {"a,b", "c"}},
    {" \"a, b\" , c", ",", QEU | TRIM, '"', 3, {"a, b", "", "c"}},
    {"\"a", ",", 0, '"', 1, {"\"a"}},
};
INSTANTIATE_TEST_SUITE_P(Quotes, ParseTable, testing::ValuesIn(quoteCases));

const ParseCase trimCases[] = {
    {" a , b ", ",", TRIM, '"', 2, {"a", "b"}},
    {"\ta\t,b", ",", TRIM, '"', 2, {"\ta\t", "b"}},
    {"  ,x", ",", TRIM, '"', 2, {"", "x"}},
};
INSTANTIATE_TEST_SUITE_P(Trim, ParseTable, testing::ValuesIn(trimCases));

const ParseCase refusedCases[] = {
    {"\"a,b", ",", Q, '"', -1, {}},      // quote left open
    {"a,\"b", ",", Q, '"', -1, {}},      // open after a good token
    {"a\"", ",", QEU, '"', -1, {}},      // open at the very end
    {"a,b", "", 0, '"', -1, {}},         // no separators
    {"a,b", ",", Q, ',', -1, {}},        // the quote is a separator
    {"a b", ",", TRIM, ' ', -1, {}},     // trimming would eat the quotes
    {"a,b", ",", 0, ',', 2, {"a", "b"}}, // without PARSE_QUOTES the quote is no quote
    {"", "", Q, ',', 0, {}},             // an empty text comes before the setup
};
INSTANTIATE_TEST_SUITE_P(Refused, ParseTable, testing::ValuesIn(refusedCases));

TEST(StringParser, ParseForgetsTheLastTokensAndClearPutsTheSetupBack) {
    SStringParser parser("a,b,c");
    ASSERT_EQ(parser.Parse(","), 3);
    parser = "x";
    EXPECT_EQ(parser.Parse(";"), 1);
    EXPECT_EQ(parser.GetToken(0), "x");
    parser = "\"open";
    EXPECT_EQ(parser.Parse(",", SStringParser::PARSE_QUOTES), -1);
    EXPECT_EQ(parser.GetCount(), 0);
    parser = "'a';'b'";
    ASSERT_EQ(parser.Parse(";", QEU, '\''), 2);
    EXPECT_EQ(parser.GetSeparators(), ";");
    parser.Clear();
    EXPECT_EQ(parser.GetCount(), 0);
    EXPECT_TRUE(parser.GetSeparators().IsEmpty());
    EXPECT_EQ(parser.GetQuote(), '"');
    EXPECT_EQ(parser.GetFlags(), 0u);
}

TEST(StringParser, ReadsTokensAsNumbersAndFlags) {
    SStringParser parser("12,-3,abc,7x, 5,1,01,1 ,true");
    ASSERT_EQ(parser.Parse(","), 9);
    const int numbers[] = {12, -3, 0, 7, 5};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(parser.GetInt(i), numbers[i]) << i;
    }
    EXPECT_TRUE(parser.GetBool(5));
    for (int i : {0, 6, 7, 8}) {
        EXPECT_FALSE(parser.GetBool(i)) << i;
    }
    EXPECT_EQ(parser.GetInt(9), 0);
    EXPECT_FALSE(parser.GetBool(-1));
}

TEST(StringParser, OutOfRangeTokensAreEmptyAndFindTokenGivesTheFirstMatch) {
    SStringParser parser("a,b");
    ASSERT_EQ(parser.Parse(","), 2);
    EXPECT_TRUE(parser.GetToken(2).IsEmpty());
    EXPECT_TRUE(parser.GetToken(-1).IsEmpty());
    EXPECT_EQ(parser.GetTokenRef(2), nullptr);
    EXPECT_EQ(parser.GetTokenRef(-1), nullptr);
    *parser.GetTokenRef(1) = "z";
    EXPECT_EQ(parser.GetToken(1), "z");
    parser = "Red,green,red,Blue";
    ASSERT_EQ(parser.Parse(","), 4);
    EXPECT_EQ(parser.FindToken("red", true), 2);
    EXPECT_EQ(parser.FindToken("red", false), 0);
    EXPECT_EQ(parser.FindToken("BLUE", true), -1);
    EXPECT_EQ(parser.FindToken("BLUE", false), 3);
    EXPECT_EQ(parser.FindToken("re", false), -1);
    EXPECT_EQ(parser.FindToken(nullptr, false), -1);
}

} // namespace
