// SStringParser: splits its own text into tokens at separator characters,
// optionally keeping quoted runs whole. It is the reader behind every comma
// list in definition files and settings.
//
// How the text is cut:
// - Each character of the separators ends a token, so "a,,b" at "," has
//   three tokens, the middle one empty, and a trailing "," gives an empty
//   last token.
// - A blank or a tab separator swallows the run of the same character that
//   follows it (a run of both when both are separators), so "a   b" at " "
//   has two tokens and trailing blanks give no empty token. When another
//   separator follows such a run it is swallowed too: "a  ,b" at " ," has
//   two tokens. A blank before the first token still gives an empty one.
// - With PARSE_QUOTES, separators between two quote characters do not cut;
//   the quotes stay in the token.
#pragma once

#include "foundation/array.h"
#include "foundation/string.h"

class SStringParser : public SString {
public:
    // Flag bits of Parse.
    // Separators between quote characters do not cut.
    static constexpr unsigned PARSE_QUOTES = 1;
    // With PARSE_QUOTES: a closing quote ends the token at once unless a
    // separator (or the end of the text) follows, so "\"a\"b" gives two.
    static constexpr unsigned PARSE_QUOTE_ENDS_TOKEN = 2;
    // With both bits above: a token that is quoted whole loses its quotes.
    static constexpr unsigned PARSE_UNQUOTE = 4;
    // Each token loses the blanks (spaces, not tabs) on both sides.
    static constexpr unsigned PARSE_TRIM = 8;

    SStringParser() = default;
    SStringParser(const char* text);
    SStringParser(const SStringParser&) = delete;
    SStringParser& operator=(const SStringParser&) = delete;
    ~SStringParser() override;
    // The text to split is assigned as to any string.
    using SString::operator=;

    // Deletes the tokens and puts the setup back: no separators, the double
    // quote, no flags, position 0.
    void Clear();
    // Splits the text. Tokens go to target when given (appended to what it
    // holds), else to this parser's own list. The result is the number of
    // tokens made; 0 for an empty text; -1, with no tokens kept anywhere, for
    // a bad setup (no separators; with PARSE_QUOTES a quote that is also a
    // separator; with PARSE_TRIM a blank as quote) or a quote left open.
    int Parse(const SString& separators, unsigned flags = 0, char quote = '"',
              SStringArray* target = nullptr);

    // The tokens of the last Parse that had no target.
    int GetCount() const;
    // The empty string out of range.
    SString GetToken(int index) const;
    // Null out of range.
    SString* GetTokenRef(int index);
    // The token read as atoi reads it; 0 out of range.
    int GetInt(int index) const;
    // True when the token is exactly "1".
    bool GetBool(int index) const;
    // The first token equal to text, or -1.
    int FindToken(const char* text, bool matchCase) const;
    const SStringArray& GetTokens() const { return tokens; }

    // The setup of the last Parse.
    const SString& GetSeparators() const { return separators; }
    char GetQuote() const { return quote; }
    unsigned GetFlags() const { return flags; }

private:
    enum class Fetch { TOKEN, END, UNCLOSED_QUOTE };

    // Reads the token that starts at position and moves position past it
    // and the separators that belong to it.
    Fetch NextToken(SString& token);
    // Moves position over a run of blanks or tabs that began with the
    // separator at position (see the header comment).
    void SkipBlankRun(char separator);
    bool IsSeparator(char c) const;

    SStringArray tokens;
    SString separators;
    char quote = '"';
    unsigned flags = 0;
    int position = 0; // the read position while Parse runs
};
