#include "library/json_reader.h"

#include <cstdlib>
#include <cstring>

namespace {

const std::string EMPTY_TEXT;

struct Reader {
    const char* at;
    const char* end;
    size_t values = 0;

    void SkipBlanks() {
        while (at < end && (*at == ' ' || *at == '\t' || *at == '\n' || *at == '\r')) {
            ++at;
        }
    }

    bool Literal(const char* word) {
        size_t length = std::strlen(word);
        if (static_cast<size_t>(end - at) < length || std::memcmp(at, word, length) != 0) {
            return false;
        }
        at += length;
        return true;
    }

    static void AppendUtf8(std::string* out, unsigned code) {
        if (code < 0x80) {
            out->push_back(static_cast<char>(code));
        } else if (code < 0x800) {
            out->push_back(static_cast<char>(0xC0 | (code >> 6)));
            out->push_back(static_cast<char>(0x80 | (code & 0x3F)));
        } else if (code < 0x10000) {
            out->push_back(static_cast<char>(0xE0 | (code >> 12)));
            out->push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
            out->push_back(static_cast<char>(0x80 | (code & 0x3F)));
        } else {
            out->push_back(static_cast<char>(0xF0 | (code >> 18)));
            out->push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
            out->push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
            out->push_back(static_cast<char>(0x80 | (code & 0x3F)));
        }
    }

    // Four hexadecimal digits after "\u"; -1 when they are not.
    int Hex4() {
        if (end - at < 4) {
            return -1;
        }
        int code = 0;
        for (int i = 0; i < 4; ++i) {
            char c = at[i];
            int digit = c >= '0' && c <= '9'   ? c - '0'
                        : c >= 'a' && c <= 'f' ? c - 'a' + 10
                        : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                               : -1;
            if (digit < 0) {
                return -1;
            }
            code = code * 16 + digit;
        }
        at += 4;
        return code;
    }

    // A string after its opening quote. A lone surrogate becomes U+FFFD.
    bool String(std::string* out) {
        while (at < end) {
            unsigned char c = static_cast<unsigned char>(*at++);
            if (c == '"') {
                return true;
            }
            if (c < 0x20) {
                return false;
            }
            if (c != '\\') {
                out->push_back(static_cast<char>(c));
                continue;
            }
            if (at >= end) {
                return false;
            }
            char e = *at++;
            switch (e) {
            case '"':
                out->push_back('"');
                break;
            case '\\':
                out->push_back('\\');
                break;
            case '/':
                out->push_back('/');
                break;
            case 'b':
                out->push_back('\b');
                break;
            case 'f':
                out->push_back('\f');
                break;
            case 'n':
                out->push_back('\n');
                break;
            case 'r':
                out->push_back('\r');
                break;
            case 't':
                out->push_back('\t');
                break;
            case 'u': {
                int code = Hex4();
                if (code < 0) {
                    return false;
                }
                unsigned value = static_cast<unsigned>(code);
                if (value >= 0xD800 && value < 0xDC00 && end - at >= 6 && at[0] == '\\' &&
                    at[1] == 'u') {
                    const char* save = at;
                    at += 2;
                    int low = Hex4();
                    if (low >= 0xDC00 && low < 0xE000) {
                        value = 0x10000 + ((value - 0xD800) << 10) +
                                (static_cast<unsigned>(low) - 0xDC00);
                    } else {
                        at = save;
                    }
                }
                if (value >= 0xD800 && value < 0xE000) {
                    value = 0xFFFD;
                }
                AppendUtf8(out, value);
                break;
            }
            default:
                return false;
            }
        }
        return false;
    }

    bool Number(double* out) {
        const char* start = at;
        if (at < end && *at == '-') {
            ++at;
        }
        if (at >= end || *at < '0' || *at > '9') {
            return false;
        }
        while (at < end && ((*at >= '0' && *at <= '9') || *at == '.' || *at == 'e' || *at == 'E' ||
                            *at == '+' || *at == '-')) {
            ++at;
        }
        char buffer[64];
        size_t length = static_cast<size_t>(at - start);
        if (length >= sizeof(buffer)) {
            length = sizeof(buffer) - 1; // a number that long only loses digits
        }
        std::memcpy(buffer, start, length);
        buffer[length] = 0;
        char* stop = nullptr;
        *out = std::strtod(buffer, &stop);
        return stop != buffer;
    }

    bool Value(PJsonValue* value, int depth) {
        if (depth > JSON_MAX_DEPTH || ++values > JSON_MAX_VALUES) {
            return false;
        }
        SkipBlanks();
        if (at >= end) {
            return false;
        }
        char c = *at;
        if (c == '{' || c == '[') {
            ++at;
            bool object = c == '{';
            value->kind = object ? PJsonValue::JSON_OBJECT : PJsonValue::JSON_ARRAY;
            char close = object ? '}' : ']';
            SkipBlanks();
            if (at < end && *at == close) {
                ++at;
                return true;
            }
            for (;;) {
                if (object) {
                    SkipBlanks();
                    if (at >= end || *at != '"') {
                        return false;
                    }
                    ++at;
                    std::string name;
                    if (!String(&name)) {
                        return false;
                    }
                    SkipBlanks();
                    if (at >= end || *at != ':') {
                        return false;
                    }
                    ++at;
                    value->names.push_back(std::move(name));
                }
                value->items.emplace_back();
                if (!Value(&value->items.back(), depth + 1)) {
                    return false;
                }
                SkipBlanks();
                if (at >= end) {
                    return false;
                }
                if (*at == ',') {
                    ++at;
                    continue;
                }
                if (*at == close) {
                    ++at;
                    return true;
                }
                return false;
            }
        }
        if (c == '"') {
            ++at;
            value->kind = PJsonValue::JSON_STRING;
            return String(&value->text);
        }
        if (Literal("true") || Literal("false")) {
            value->kind = PJsonValue::JSON_BOOL;
            value->boolean = at[-1] == 'e' && at[-2] == 'u';
            return true;
        }
        if (Literal("null")) {
            value->kind = PJsonValue::JSON_NULL;
            return true;
        }
        value->kind = PJsonValue::JSON_NUMBER;
        return Number(&value->number);
    }
};

} // namespace

const PJsonValue* PJsonValue::Get(const char* name) const {
    if (kind != JSON_OBJECT || name == nullptr) {
        return nullptr;
    }
    for (size_t i = 0; i < names.size() && i < items.size(); ++i) {
        if (names[i] == name) {
            return &items[i];
        }
    }
    return nullptr;
}

const std::string& PJsonValue::GetString(const char* name) const {
    const PJsonValue* value = Get(name);
    return value != nullptr && value->kind == JSON_STRING ? value->text : EMPTY_TEXT;
}

bool ReadJson(const char* data, size_t size, PJsonValue* value) {
    if (value == nullptr) {
        return false;
    }
    *value = PJsonValue();
    if (data == nullptr) {
        return false;
    }
    Reader reader{data, data + size};
    if (size >= 3 && std::memcmp(data, "\xEF\xBB\xBF", 3) == 0) {
        reader.at += 3;
    }
    if (!reader.Value(value, 0)) {
        *value = PJsonValue();
        return false;
    }
    reader.SkipBlanks();
    if (reader.at != reader.end) {
        *value = PJsonValue();
        return false;
    }
    return true;
}
