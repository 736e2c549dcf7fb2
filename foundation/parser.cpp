#include "foundation/parser.h"

#include <cstdlib>
#include <cstring>

SStringParser::SStringParser(const char* text) : SString(text) {}

SStringParser::~SStringParser() = default;

void SStringParser::Clear() {
    tokens.DeleteAll();
    separators.Empty();
    quote = '"';
    flags = 0;
    position = 0;
}

int SStringParser::Parse(const SString& newSeparators, unsigned newFlags, char newQuote,
                         SStringArray* target) {
    Clear();
    if (IsEmpty()) {
        return 0;
    }
    separators = newSeparators;
    flags = newFlags;
    quote = newQuote;
    if (separators.IsEmpty()) {
        Clear();
        return -1;
    }
    if ((flags & PARSE_QUOTES) != 0 && IsSeparator(quote)) {
        return -1;
    }
    if ((flags & PARSE_TRIM) != 0 && quote == ' ') {
        return -1;
    }

    const unsigned unquoteFlags = PARSE_QUOTES | PARSE_QUOTE_ENDS_TOKEN | PARSE_UNQUOTE;
    SStringArray& out = target != nullptr ? *target : tokens;
    const int firstAdded = out.GetCount();
    int count = 0;
    SString token;
    for (;;) {
        Fetch fetch = NextToken(token);
        if (fetch == Fetch::END) {
            break;
        }
        if (fetch == Fetch::UNCLOSED_QUOTE) {
            // Take back what this call gave the caller's array.
            if (target != nullptr) {
                target->DeleteAt(firstAdded, target->GetCount() - firstAdded);
            }
            Clear();
            return -1;
        }
        if ((flags & PARSE_TRIM) != 0) {
            token.Trim(-1, -1, true);
        }
        if ((flags & unquoteFlags) == unquoteFlags) {
            token.Unquote(quote);
        }
        out.Add(token);
        ++count;
    }
    position = 0;
    return count;
}

SStringParser::Fetch SStringParser::NextToken(SString& token) {
    const int length = GetLength();
    if (position > length) {
        return Fetch::END;
    }
    const char* text = c_str();
    const bool useQuotes = (flags & PARSE_QUOTES) != 0;
    const bool quoteEndsToken = useQuotes && (flags & PARSE_QUOTE_ENDS_TOKEN) != 0;
    const int start = position;
    bool inQuotes = false;
    // Every character read up to the end of the token belongs to it, so the
    // token is the run from start.
    for (;;) {
        if (position >= length) {
            if (inQuotes) {
                return Fetch::UNCLOSED_QUOTE;
            }
            token.Assign(text + start, position - start);
            position = length + 1;
            return Fetch::TOKEN;
        }
        char c = text[position];
        if (useQuotes && c == quote) {
            ++position;
            inQuotes = !inQuotes;
            // After a closing quote the end of the text counts as a separator.
            if (!inQuotes && quoteEndsToken && position < length && !IsSeparator(text[position])) {
                token.Assign(text + start, position - start);
                return Fetch::TOKEN;
            }
            continue;
        }
        if (inQuotes || !IsSeparator(c)) {
            ++position;
            continue;
        }
        token.Assign(text + start, position - start);
        if (c == ' ' || c == '\t') {
            SkipBlankRun(c);
        } else {
            ++position;
        }
        return Fetch::TOKEN;
    }
}

void SStringParser::SkipBlankRun(char separator) {
    const int length = GetLength();
    const char* text = c_str();
    const bool blankAndTab = IsSeparator(' ') && IsSeparator('\t');
    while (position < length) {
        char c = text[position];
        bool inRun = c == separator || (blankAndTab && (c == ' ' || c == '\t'));
        if (!inRun) {
            break;
        }
        ++position;
    }
    if (position >= length) {
        // No empty token after trailing blanks.
        position = length + 1;
        return;
    }
    if (IsSeparator(text[position])) {
        ++position;
    }
}

bool SStringParser::IsSeparator(char c) const {
    // By length, so that a zero byte in the text is never a separator.
    return memchr(separators.c_str(), c, separators.GetLength()) != nullptr;
}

int SStringParser::GetCount() const {
    return tokens.GetCount();
}

SString SStringParser::GetToken(int index) const {
    if (index < 0 || index >= tokens.GetCount()) {
        return SString("");
    }
    return *tokens.GetAt(index);
}

SString* SStringParser::GetTokenRef(int index) {
    if (index < 0 || index >= tokens.GetCount()) {
        return nullptr;
    }
    return tokens.GetAt(index);
}

int SStringParser::GetInt(int index) const {
    if (index < 0 || index >= tokens.GetCount()) {
        return 0;
    }
    // atoi without its undefined behaviour on overflow; glibc's atoi is this.
    return int(strtol(tokens.GetAt(index)->c_str(), nullptr, 10));
}

bool SStringParser::GetBool(int index) const {
    if (index < 0 || index >= tokens.GetCount()) {
        return false;
    }
    return *tokens.GetAt(index) == "1";
}

int SStringParser::FindToken(const char* text, bool matchCase) const {
    if (text == nullptr) {
        return -1;
    }
    for (int i = 0; i < tokens.GetCount(); ++i) {
        const SString* token = tokens.GetAt(i);
        int order = matchCase ? token->Compare(text) : token->CompareNoCase(text);
        if (order == 0) {
            return i;
        }
    }
    return -1;
}
