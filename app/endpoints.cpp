#include "app/endpoints.h"

#include "app/settings.h"

SString GetEndpoint(const char* name, const char* fallback) {
    SString stored = ReadSettingString(name);
    return stored.IsEmpty() ? SString(fallback) : stored;
}

SString EscapeQuery(const char* text) {
    static const char* digits = "0123456789ABCDEF";
    SString out;
    for (const char* p = text; *p != 0; ++p) {
        auto c = static_cast<unsigned char>(*p);
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
            c == '_' || c == '.') {
            out += static_cast<char>(c);
        } else if (c == ' ') {
            out += '+';
        } else {
            out += '%';
            out += digits[c >> 4];
            out += digits[c & 15];
        }
    }
    return out;
}
