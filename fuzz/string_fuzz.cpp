// Fuzzes the text parsers of SString on arbitrary bytes: words and lines,
// Justify, URL and Base64 coding, ParseHex, RemoveNumbering, IsNumeric,
// and the conversions between UTF-8, UTF-16 and Windows-1252. Besides not
// crashing, each checks a property that must hold for every input.
#include "foundation/string.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// Justify writes up to (input length) lines of the width each, so both are
// kept small enough for a quick run.
constexpr int MAX_JUSTIFY_INPUT = 2048;
constexpr int MAX_JUSTIFY_WIDTH = 80;

void Check(bool condition) {
    if (!condition) {
        abort();
    }
}

bool SameBytes(const SString& a, const SString& b) {
    return a.GetLength() == b.GetLength() &&
           memcmp(a.c_str(), b.c_str(), static_cast<size_t>(a.GetLength())) == 0;
}

void WalkWordsAndLines(const SString& text, bool keepBlanks) {
    for (int position = 0; position < text.GetLength();) {
        int next = -1;
        SString word = text.GetWord(position, &next, keepBlanks);
        Check(next > position && next <= text.GetLength() && word.GetLength() <= next - position);
        position = next;
    }
    int longest = 0;
    for (int position = 0; position < text.GetLength();) {
        int next = -1;
        SString line = text.GetLine(position, &next);
        Check(next > position && next <= text.GetLength());
        Check(line.Find('\r') < 0 && line.Find('\n') < 0);
        longest = line.GetLength() > longest ? line.GetLength() : longest;
        position = next;
    }
    Check(longest == text.GetLongestLine());
}

// Every output line has exactly the width, whatever the alignment.
void JustifyChecked(const SString& text, int align, int width, bool wrap) {
    SString justified(text);
    justified.Justify(align, width, wrap);
    int expected = width >= 1 ? width : text.GetLongestLine();
    if (expected < 1) {
        Check(SameBytes(justified, text));
        return;
    }
    int start = 0;
    for (;;) {
        int end = justified.Find("\r\n", start);
        int lineEnd = end >= 0 ? end : justified.GetLength();
        Check(lineEnd - start == expected || (justified.IsEmpty() && text.IsEmpty()));
        if (end < 0) {
            break;
        }
        start = end + 2;
    }
}

void CodingRoundTrips(const SString& text, bool plusForBlank) {
    Check(SameBytes(text.UrlEncode(plusForBlank).UrlDecode(plusForBlank), text));
    SString decoded = text.UrlDecode(plusForBlank);
    Check(decoded.GetLength() <= text.GetLength());

    SString encoded(text);
    encoded.EncodeBase64();
    if (!text.IsEmpty()) {
        Check(encoded.GetAt(encoded.GetLength() - 1) == '=');
        Check(encoded.Find('=') == encoded.GetLength() - 1);
    }
    bool isPortable = encoded.Find('+') < 0 && encoded.Find('/') < 0;
    encoded.DecodeBase64();
    Check(!isPortable || SameBytes(encoded, text));
    SString raw(text);
    raw.DecodeBase64();
    Check(raw.GetLength() <= text.GetLength());
}

void NumbersAndNumbering(const SString& text) {
    Check(!text.IsInteger() || text.IsNumeric());
    uint64_t value = text.ParseHex();
    Check(value == 0 || text.GetLength() <= 18);
    SString stripped(text);
    stripped.RemoveNumbering();
    int removed = text.GetLength() - stripped.GetLength();
    Check(removed >= 0 && memcmp(stripped.c_str(), text.c_str() + removed,
                                 static_cast<size_t>(stripped.GetLength())) == 0);
}

void Encodings(const uint8_t* data, size_t size) {
    const char* bytes = reinterpret_cast<const char*>(data);
    int count = static_cast<int>(size);
    SString back = Utf8ToUtf16(bytes, count).ToString();
    Check(IsValidUtf8(back.c_str(), back.GetLength()));
    if (IsValidUtf8(bytes, count)) {
        Check(back.GetLength() == count && memcmp(back.c_str(), bytes, size) == 0);
    }
    SString western = Windows1252ToUtf8(bytes, count);
    Check(IsValidUtf8(western.c_str(), western.GetLength()));
    int units = count / 2;
    std::vector<char16_t> wide(static_cast<size_t>(units) + 1);
    memcpy(wide.data(), data, sizeof(char16_t) * static_cast<size_t>(units));
    SString narrow = Utf16ToUtf8(wide.data(), units);
    Check(IsValidUtf8(narrow.c_str(), narrow.GetLength()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2 || size > 1 << 16) {
        return 0;
    }
    uint8_t options = data[0];
    uint8_t width = data[1];
    SString text;
    text.Assign(reinterpret_cast<const char*>(data + 2), static_cast<int>(size - 2));

    WalkWordsAndLines(text, (options & 1) != 0);
    if (text.GetLength() <= MAX_JUSTIFY_INPUT) {
        JustifyChecked(text, (options >> 1) % 5, width % (MAX_JUSTIFY_WIDTH + 10) - 9,
                       (options & 8) != 0);
    }
    CodingRoundTrips(text, (options & 16) != 0);
    NumbersAndNumbering(text);
    Encodings(data + 2, size - 2);

    SString trimmed(text);
    trimmed.Trim(-1, -1, (options & 32) != 0);
    Check(trimmed.GetLength() <= text.GetLength());
    SString replaced(text);
    SString find = text.Left(1 + options % 3);
    int count = replaced.ReplaceAll(find.c_str(), "<>", 0, -1, (options & 64) != 0);
    Check(count >= 0 && (count == 0 || !find.IsEmpty()));
    return 0;
}
