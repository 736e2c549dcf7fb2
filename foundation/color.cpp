#include "foundation/color.h"

#include <cstdio>
#include <cstring>

namespace {

// Reads count hexadecimal digits; false at the first character that is none.
bool ReadHex(const char* text, int count, uint32_t& value) {
    value = 0;
    for (int i = 0; i < count; ++i) {
        char c = text[i];
        uint32_t digit;
        if (c >= '0' && c <= '9') {
            digit = c - '0';
        } else if (c >= 'a' && c <= 'f') {
            digit = c - 'a' + 10;
        } else if (c >= 'A' && c <= 'F') {
            digit = c - 'A' + 10;
        } else {
            return false;
        }
        value = value << 4 | digit;
    }
    return true;
}

} // namespace

uint32_t ParseColor(const char* text) {
    if (text == nullptr) {
        return 0;
    }
    size_t length = strlen(text);
    if (length != 7 && length != 9) {
        return 0;
    }
    uint32_t value = 0;
    if (!ReadHex(text + 1, int(length) - 1, value)) {
        return 0;
    }
    if (length == 9) {
        return value;
    }
    uint32_t red = value >> 16 & 0xFF;
    uint32_t green = value >> 8 & 0xFF;
    uint32_t blue = value & 0xFF;
    return red | green << 8 | blue << 16;
}

SString FormatColor(uint32_t color) {
    char text[16];
    if (color <= 0xFFFFFF) {
        snprintf(text, sizeof text, "#%.2X%.2X%.2X", unsigned(color & 0xFF),
                 unsigned(color >> 8 & 0xFF), unsigned(color >> 16 & 0xFF));
    } else {
        snprintf(text, sizeof text, "#%.8X", unsigned(color));
    }
    return SString(text);
}
