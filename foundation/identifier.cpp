#include "foundation/identifier.h"

namespace {

bool IsLower(char c) {
    return c >= 'a' && c <= 'z';
}
bool IsUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

bool IsIdentifierChar(char c) {
    return IsLower(c) || IsUpper(c) || IsDigit(c) || c == '_';
}

bool IsIdentifier(const char* text) {
    if (text == nullptr || text[0] == 0 || IsDigit(text[0])) {
        return false;
    }
    const char* p = text;
    for (; *p != 0; ++p) {
        if (!IsIdentifierChar(*p)) {
            return false;
        }
    }
    // A text made of "_" alone ends in "_" too, so this one test refuses both.
    return p[-1] != '_';
}

bool IsUpperIdentifier(const char* text) {
    if (!IsIdentifier(text)) {
        return false;
    }
    bool hasLetter = false;
    for (const char* p = text; *p != 0; ++p) {
        if (IsLower(*p)) {
            return false;
        }
        hasLetter = hasLetter || IsUpper(*p);
    }
    return hasLetter;
}
