#include "foundation/string.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

// Longest text either string class holds; it leaves room for the rounding of
// the capacity so that no size computation overflows. Requests beyond it
// leave the string unchanged.
constexpr int MAX_LENGTH = INT_MAX - 256;
constexpr int STRING_STEP = 16;
constexpr int UNI_STEP = 24;
constexpr char32_t REPLACEMENT = 0xFFFD;

// Characters needed for length characters plus the terminator: the next
// multiple of step above length, a full step more when already a multiple.
int GrowCapacity(int length, int step) {
    int needed = length + 1;
    return needed - needed % step + step;
}

// Capacities up to this are allocated exactly.
constexpr int EXACT_BLOCK = 256;

// The characters actually allocated behind a capacity. The capacity follows
// the growth rule above and is what callers see; the block behind it is the
// capacity itself for short strings and, past EXACT_BLOCK, the next step of
// a geometric series (powers of two and the quarters between them), so a
// string that grows a character at a time is copied a bounded number of
// times per character rather than once per step of the rule. The block only
// ever grows with the capacity, and it is never smaller than the capacity.
int BlockSize(int capacity) {
    if (capacity <= EXACT_BLOCK) {
        return capacity;
    }
    long long power = EXACT_BLOCK;
    while (power * 2 < capacity) {
        power *= 2;
    }
    long long block = power;
    while (block < capacity) {
        block += power / 4;
    }
    return block > INT_MAX ? INT_MAX : static_cast<int>(block);
}

// A block for capacity units (char or char16_t), its first capacity units
// zero; the reserve behind them is left as it comes.
template <typename Char> Char* NewBlock(int capacity) {
    Char* block = new Char[static_cast<size_t>(BlockSize(capacity))];
    memset(block, 0, sizeof(Char) * static_cast<size_t>(capacity));
    return block;
}

int MeasureText(const char* text) {
    size_t size = strlen(text);
    return size > static_cast<size_t>(MAX_LENGTH) ? MAX_LENGTH : static_cast<int>(size);
}

void CopyBytes(void* to, const void* from, size_t size) {
    if (size > 0) {
        memmove(to, from, size);
    }
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
bool IsGap(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
// Only ASCII letters change, so the bytes of a UTF-8 sequence stay intact.
char FoldCase(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
}
char RaiseCase(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
}

int Sign(int value) {
    return value < 0 ? -1 : (value > 0 ? 1 : 0);
}

bool EqualNoCase(const char* a, const char* b, int count) {
    for (int i = 0; i < count; i++) {
        if (FoldCase(a[i]) != FoldCase(b[i])) {
            return false;
        }
    }
    return true;
}

// End of the line that begins at start (CR, LF or CR LF ends it); next gets
// the position after the line end, or the length at the end of the text.
int FindLineEnd(const char* text, int length, int start, int* next) {
    int end = start;
    while (end < length && text[end] != '\r' && text[end] != '\n') {
        end++;
    }
    int after = end;
    if (after < length) {
        after += (text[after] == '\r' && after + 1 < length && text[after + 1] == '\n') ? 2 : 1;
    }
    *next = after;
    return end;
}

SString MakePiece(const char* text, int count) {
    SString piece;
    piece.Assign(text != nullptr ? text : "", text != nullptr ? count : 0);
    return piece;
}

// Decodes one UTF-8 sequence at text[0..available). Returns the bytes used
// (at least 1); an ill-formed sequence yields U+FFFD for its longest valid
// prefix, the way the Unicode standard recommends.
int DecodeUtf8(const unsigned char* text, int available, char32_t* codePoint, bool* isValid) {
    unsigned char lead = text[0];
    *isValid = true;
    if (lead < 0x80) {
        *codePoint = lead;
        return 1;
    }
    int size = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    char32_t value = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        size = 2;
        value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        size = 3;
        value = lead & 0x0F;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF; // no UTF-16 surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        size = 4;
        value = lead & 0x07;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF; // nothing past U+10FFFF
    }
    *isValid = false;
    *codePoint = REPLACEMENT;
    if (size == 0) {
        return 1;
    }
    for (int i = 1; i < size; i++) {
        if (i >= available || text[i] < low || text[i] > high) {
            return i;
        }
        value = (value << 6) | (text[i] & 0x3F);
        low = 0x80;
        high = 0xBF;
    }
    *isValid = true;
    *codePoint = value;
    return size;
}

// Writes the code point as UTF-8 and returns the bytes written (1 to 4);
// surrogates and values past U+10FFFF are written as U+FFFD.
int EncodeUtf8(char32_t codePoint, char* out) {
    if ((codePoint >= 0xD800 && codePoint <= 0xDFFF) || codePoint > 0x10FFFF) {
        codePoint = REPLACEMENT;
    }
    if (codePoint < 0x80) {
        out[0] = static_cast<char>(codePoint);
        return 1;
    }
    if (codePoint < 0x800) {
        out[0] = static_cast<char>(0xC0 | (codePoint >> 6));
        out[1] = static_cast<char>(0x80 | (codePoint & 0x3F));
        return 2;
    }
    if (codePoint < 0x10000) {
        out[0] = static_cast<char>(0xE0 | (codePoint >> 12));
        out[1] = static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out[2] = static_cast<char>(0x80 | (codePoint & 0x3F));
        return 3;
    }
    out[0] = static_cast<char>(0xF0 | (codePoint >> 18));
    out[1] = static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
    out[2] = static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
    out[3] = static_cast<char>(0x80 | (codePoint & 0x3F));
    return 4;
}

// Converts code points to UTF-8, at most bytesPerUnit bytes for each input
// unit; next(index, &codePoint) returns how many units it used.
template <typename Decoder> SString BuildUtf8(int count, int bytesPerUnit, Decoder next) {
    SString result("");
    if (count <= 0 || count > MAX_LENGTH / bytesPerUnit) {
        return result;
    }
    result.SetSize(count * bytesPerUnit, false);
    char* out = result.GetBuffer();
    int written = 0;
    for (int i = 0; i < count;) {
        char32_t codePoint = 0;
        i += next(i, &codePoint);
        written += EncodeUtf8(codePoint, out + written);
    }
    result.SetLength(written);
    return result;
}

template <typename Char> int MeasureUnits(const Char* text) {
    int count = 0;
    while (text[count] != 0 && count < MAX_LENGTH) {
        count++;
    }
    return count;
}

void DecodeUtf8Into(SUniString& out, const char* text, int count) {
    if (text == nullptr) {
        out.SetSize(0, false);
        return;
    }
    if (count < 0) {
        count = MeasureText(text);
    }
    if (count > MAX_LENGTH) {
        out.SetSize(0, false);
        return;
    }
    // Each byte gives at most one UTF-16 unit; four bytes give two.
    out.SetSize(count, false);
    char16_t* units = out.GetBuffer();
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    int written = 0;
    for (int i = 0; i < count;) {
        char32_t codePoint = 0;
        bool isValid = false;
        i += DecodeUtf8(bytes + i, count - i, &codePoint, &isValid);
        if (codePoint >= 0x10000) {
            codePoint -= 0x10000;
            units[written++] = static_cast<char16_t>(0xD800 + (codePoint >> 10));
            units[written++] = static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF));
        } else {
            units[written++] = static_cast<char16_t>(codePoint);
        }
    }
    out.SetLength(written);
}

} // namespace

// Construction and assignment

SString::SString(const char* text) {
    Assign(text);
}

SString::SString(const char16_t* text) {
    *this = Utf16ToUtf8(text);
}

SString::SString(const wchar_t* text) {
    *this = text;
}

SString::SString(int count) {
    SetSize(count, false);
    if (length > 0) {
        memset(data, ' ', length);
    }
}

SString::SString(const SString& other) {
    if (other.data != nullptr) {
        Assign(other.data, other.length);
    }
}

SString::SString(SString&& other) noexcept
    : data(other.data), length(other.length), capacity(other.capacity) {
    other.data = nullptr;
    other.length = 0;
    other.capacity = 0;
}

SString::~SString() {
    delete[] data;
}

SString& SString::operator=(const SString& other) {
    if (this == &other) {
        return *this;
    }
    if (other.data == nullptr) {
        Empty();
    } else {
        Assign(other.data, other.length);
    }
    return *this;
}

SString& SString::operator=(SString&& other) noexcept {
    if (this != &other) {
        delete[] data;
        data = std::exchange(other.data, nullptr);
        length = std::exchange(other.length, 0);
        capacity = std::exchange(other.capacity, 0);
    }
    return *this;
}

SString& SString::operator=(const char* text) {
    Assign(text);
    return *this;
}

SString& SString::operator=(char c) {
    Assign(&c, c != 0 ? 1 : 0);
    return *this;
}

SString& SString::operator=(const char16_t* text) {
    return *this = Utf16ToUtf8(text);
}

SString& SString::operator=(const wchar_t* text) {
    if (text == nullptr) {
        Assign("", 0);
        return *this;
    }
    return *this = BuildUtf8(MeasureUnits(text), 4, [text](int i, char32_t* codePoint) {
        *codePoint = static_cast<char32_t>(text[i]);
        return 1;
    });
}

void SString::Assign(const char* text, int count) {
    if (text == nullptr) {
        count = 0;
    } else if (count < 0) {
        count = MeasureText(text);
    }
    Splice(0, length, text, count, 1);
}

void SString::CopyFrom(const SString& source, bool textOnly) {
    *this = source;
    if (!textOnly) {
        userA = source.userA;
        userB = source.userB;
    }
}

void SString::Empty() {
    delete[] data;
    data = nullptr;
    length = 0;
    capacity = 0;
}

char* SString::Reserve(int newLength, bool keep) {
    int needed = GrowCapacity(newLength, STRING_STEP);
    if (data != nullptr && needed > capacity && needed <= BlockSize(capacity)) {
        // The rule replaces the buffer here; the reserve of the block takes
        // the new capacity instead, with what a new buffer would hold.
        int kept = keep ? (newLength < length ? newLength : length) : 0;
        memset(data + kept, 0, static_cast<size_t>(needed - kept));
        capacity = needed;
    } else if (data == nullptr || needed > capacity) {
        char* block = NewBlock<char>(needed);
        if (keep && data != nullptr) {
            CopyBytes(block, data, newLength < length ? newLength : length);
        }
        delete[] data;
        data = block;
        capacity = needed;
    }
    return data;
}

void SString::SetSize(int newLength, bool keep) {
    if (newLength < 0) {
        newLength = 0;
    }
    if (newLength > MAX_LENGTH) {
        return;
    }
    Reserve(newLength, keep);
    length = newLength;
    data[length] = 0;
}

void SString::SetLength(int newLength, char fill) {
    int oldLength = length;
    SetSize(newLength, true);
    if (fill != 0 && length > oldLength) {
        memset(data + oldLength, fill, length - oldLength);
    }
}

// The one place that rewrites the text: removed characters at start give
// way to repeat copies of text. The text may lie inside this string.
bool SString::Splice(int start, int removed, const char* text, int textLength, int repeat) {
    long long inserted = static_cast<long long>(textLength) * repeat;
    long long total = static_cast<long long>(length) - removed + inserted;
    if (total > MAX_LENGTH) {
        return false;
    }
    int newLength = static_cast<int>(total);
    int tail = length - start - removed;
    int needed = GrowCapacity(newLength, STRING_STEP);
    int allocated = data != nullptr ? BlockSize(capacity) : 0;
    auto address = reinterpret_cast<uintptr_t>(text);
    auto base = reinterpret_cast<uintptr_t>(data);
    bool isInside = data != nullptr && address >= base && address < base + allocated;
    if (data != nullptr && needed <= allocated && !isInside) {
        CopyBytes(data + start + inserted, data + start + removed, tail);
        if (needed > capacity) {
            // A new buffer by the rule, zero past the text; here the reserve.
            memset(data + newLength, 0, static_cast<size_t>(needed - newLength));
            capacity = needed;
        }
    } else {
        int blockSize = needed > capacity ? needed : capacity;
        char* block = NewBlock<char>(blockSize);
        CopyBytes(block, data, start);
        CopyBytes(block + start + inserted, data + start + removed, tail);
        for (int i = 0; i < repeat; i++) {
            CopyBytes(block + start + static_cast<long long>(i) * textLength, text, textLength);
        }
        delete[] data;
        data = block;
        capacity = blockSize;
        length = newLength;
        data[length] = 0;
        return true;
    }
    for (int i = 0; i < repeat; i++) {
        CopyBytes(data + start + static_cast<long long>(i) * textLength, text, textLength);
    }
    length = newLength;
    data[length] = 0;
    return true;
}

bool SString::ClampRange(int& start, int& count, bool atEnd) const {
    if (atEnd && start < 0) {
        start = 0;
    }
    if (start < 0 || start > length || (start == length && !atEnd)) {
        return false;
    }
    if (count < 0 || count > length - start) {
        count = length - start;
    }
    return true;
}

// Access and comparison

char SString::GetAt(int index) const {
    return (index >= 0 && index < length) ? data[index] : 0;
}

void SString::SetAt(int index, char c) {
    if (index < 0 || index >= length) {
        return;
    }
    data[index] = c;
    if (c == 0) {
        length = index;
    }
}

bool SString::operator==(const char* text) const {
    return Compare(text) == 0;
}

bool SString::operator==(const SString& other) const {
    return length == other.length && (length == 0 || memcmp(data, other.data, length) == 0);
}

int SString::Compare(const char* text) const {
    return Sign(strcmp(c_str(), text != nullptr ? text : ""));
}

int SString::CompareNoCase(const char* text) const {
    const auto* a = reinterpret_cast<const unsigned char*>(c_str());
    const auto* b = reinterpret_cast<const unsigned char*>(text != nullptr ? text : "");
    for (;; a++, b++) {
        int left = static_cast<unsigned char>(FoldCase(static_cast<char>(*a)));
        int right = static_cast<unsigned char>(FoldCase(static_cast<char>(*b)));
        if (left != right || left == 0) {
            return Sign(left - right);
        }
    }
}

SString SString::operator+(const char* text) const {
    SString result(*this);
    result.Append(text);
    return result;
}

SString SString::operator+(const SString& other) const {
    SString result(*this);
    result.Append(other);
    return result;
}

SString SString::operator+(char c) const {
    SString result(*this);
    result.AppendChar(c);
    return result;
}

void SString::Append(const char* text, int count) {
    if (text == nullptr) {
        return;
    }
    if (count < 0) {
        count = MeasureText(text);
    }
    Splice(length, 0, text, count, 1);
}

void SString::Append(const SString& other) {
    Append(other.c_str(), other.length);
}

SString& SString::operator+=(const char* text) {
    Append(text);
    return *this;
}

SString& SString::operator+=(const SString& other) {
    Append(other);
    return *this;
}

SString& SString::operator+=(char c) {
    AppendChar(c);
    return *this;
}

void SString::AppendChar(char c) {
    Splice(length, 0, &c, 1, 1);
}

SString operator+(const char* left, const SString& right) {
    SString result(left);
    result.Append(right);
    return result;
}

// Search

int SString::Find(char c, int start, int count) const {
    if (!ClampRange(start, count, false)) {
        return -1;
    }
    const void* hit = memchr(data + start, c, count);
    return hit != nullptr ? static_cast<int>(static_cast<const char*>(hit) - data) : -1;
}

int SString::FindNot(char c, int start, int count) const {
    if (!ClampRange(start, count, false)) {
        return -1;
    }
    for (int i = start; i < start + count; i++) {
        if (data[i] != c) {
            return i;
        }
    }
    return -1;
}

int SString::Find(const char* text, int start, int count, bool after) const {
    int needle = text != nullptr ? MeasureText(text) : 0;
    if (needle == 0 || !ClampRange(start, count, false) || needle > count) {
        return -1;
    }
    const void* hit = memmem(data + start, count, text, needle);
    if (hit == nullptr) {
        return -1;
    }
    int index = static_cast<int>(static_cast<const char*>(hit) - data);
    return after ? index + needle : index;
}

int SString::FindNoCase(const char* text, int start, int count) const {
    int needle = text != nullptr ? MeasureText(text) : 0;
    if (needle == 0 || !ClampRange(start, count, false)) {
        return -1;
    }
    for (int i = start; i + needle <= start + count; i++) {
        if (EqualNoCase(data + i, text, needle)) {
            return i;
        }
    }
    return -1;
}

int SString::ReverseFind(char c, int start) const {
    if (start == -1) {
        start = length - 1;
    }
    if (start < 0 || start >= length) {
        return -1;
    }
    for (int i = start; i >= 0; i--) {
        if (data[i] == c) {
            return i;
        }
    }
    return -1;
}

int SString::ReverseFindAny(int start, int count, ...) const {
    va_list args;
    va_start(args, count);
    int found = -1;
    for (int i = 0; i < count && found < 0; i++) {
        found = ReverseFind(static_cast<char>(va_arg(args, int)), start);
    }
    va_end(args);
    return found;
}

// Pieces

SString SString::Left(int count) const {
    if (count < 1) {
        return MakePiece("", 0);
    }
    return MakePiece(data, count < length ? count : length);
}

SString SString::Right(int count) const {
    if (count < 1) {
        return MakePiece("", 0);
    }
    if (count > length) {
        count = length;
    }
    return MakePiece(data != nullptr ? data + length - count : nullptr, count);
}

SString SString::Mid(int start, int count) const {
    if (count == 0 || !ClampRange(start, count, false)) {
        return MakePiece("", 0);
    }
    return MakePiece(data + start, count);
}

SString SString::Between(int start, int end) const {
    if (end - start < 1) {
        return MakePiece("", 0);
    }
    return Mid(start, end - start);
}

// A start outside the text gives the empty string and moves next to the
// length, so that a loop over the lines always ends.
SString SString::GetLine(int start, int* next) const {
    int after = length;
    SString line = MakePiece("", 0);
    if (start >= 0 && start < length) {
        int end = FindLineEnd(data, length, start, &after);
        line = MakePiece(data + start, end - start);
    }
    if (next != nullptr) {
        *next = after;
    }
    return line;
}

SString SString::GetWord(int start, int* next, bool keepBlanks) const {
    int position = start >= 0 ? start : length;
    if (position > length) {
        position = length;
    }
    for (;;) {
        int runStart = position;
        bool isGap = position < length && IsGap(data[position]);
        while (position < length && IsGap(data[position]) == isGap) {
            position++;
        }
        if (!isGap || keepBlanks || position == length) {
            if (next != nullptr) {
                *next = position;
            }
            if (isGap && !keepBlanks) {
                runStart = position;
            }
            return MakePiece(data != nullptr ? data + runStart : nullptr, position - runStart);
        }
    }
}

SString SString::AfterChar(char c) const {
    int index = Find(c);
    return index >= 0 ? Mid(index + 1) : MakePiece("", 0);
}

SString SString::BeforeChar(char c) const {
    int index = Find(c);
    return index >= 0 ? Left(index) : MakePiece("", 0);
}

SString SString::BeforeCharOrAll(char c) const {
    int index = Find(c);
    return index >= 0 ? Left(index) : *this;
}

SString SString::Upper() const {
    SString result(*this);
    result.MakeUpper();
    return result;
}

SString SString::Lower() const {
    SString result(*this);
    result.MakeLower();
    return result;
}

void SString::MakeUpper() {
    for (int i = 0; i < length; i++) {
        data[i] = RaiseCase(data[i]);
    }
}

void SString::MakeLower() {
    for (int i = 0; i < length; i++) {
        data[i] = FoldCase(data[i]);
    }
}

// Editing

void SString::Insert(char c, int pos, int count) {
    if (count < 1 || pos > length) {
        return;
    }
    Splice(pos < 0 ? length : pos, 0, &c, 1, count);
}

void SString::Insert(const char* text, int pos, int count) {
    if (text == nullptr || count < 1 || pos > length) {
        return;
    }
    Splice(pos < 0 ? length : pos, 0, text, MeasureText(text), count);
}

int SString::Delete(int start, int count) {
    if (!ClampRange(start, count, false) || count == 0) {
        return 0;
    }
    Splice(start, count, nullptr, 0, 0);
    return count;
}

int SString::Replace(char from, char to, int start, int count) {
    if (!ClampRange(start, count, false)) {
        return 0;
    }
    int changes = 0;
    // A change to 0 truncates, which ends the scan.
    for (int i = start; i < start + count && i < length; i++) {
        if (data[i] == from) {
            SetAt(i, to);
            changes++;
        }
    }
    return changes;
}

void SString::ReplaceRange(const char* text, int start, int count) {
    if (!ClampRange(start, count, true)) {
        return;
    }
    Splice(start, count, text, text != nullptr ? MeasureText(text) : 0, 1);
}

int SString::ReplaceAll(const char* find, const char* with, int start, int count, bool matchCase) {
    int findLength = find != nullptr ? MeasureText(find) : 0;
    if (findLength == 0 || !ClampRange(start, count, false)) {
        return 0;
    }
    int withLength = with != nullptr ? MeasureText(with) : 0;
    int end = start + count;
    auto isMatch = [&](int i) {
        return matchCase ? memcmp(data + i, find, findLength) == 0
                         : EqualNoCase(data + i, find, findLength);
    };
    // The first pass counts, so that the result is sized once.
    int replaced = 0;
    for (int i = start; i + findLength <= end;) {
        bool found = isMatch(i);
        replaced += found ? 1 : 0;
        i += found ? findLength : 1;
    }
    long long total = length + static_cast<long long>(withLength - findLength) * replaced;
    if (replaced == 0 || total > MAX_LENGTH) {
        return 0;
    }
    SString result;
    result.SetSize(static_cast<int>(total), false);
    char* out = result.data;
    CopyBytes(out, data, start);
    out += start;
    int i = start;
    while (i + findLength <= end) {
        if (isMatch(i)) {
            CopyBytes(out, with, withLength);
            out += withLength;
            i += findLength;
        } else {
            *out++ = data[i++];
        }
    }
    CopyBytes(out, data + i, length - i);
    Assign(result.data, result.length);
    return replaced;
}

int SString::TrimRight(int count, bool blanksOnly) {
    if (count == 0 || length == 0) {
        return 0;
    }
    if (count > 0) {
        length = count < length ? length - count : 0;
        data[length] = 0;
        return 0;
    }
    int end = length;
    while (end > 0 && (data[end - 1] == ' ' || (!blanksOnly && data[end - 1] == '\t'))) {
        end--;
    }
    int stripped = length - end;
    length = end;
    data[length] = 0;
    return stripped;
}

int SString::TrimLeft(int count, bool blanksOnly) {
    if (count == 0 || length == 0) {
        return 0;
    }
    if (count > 0) {
        Delete(0, count);
        return 0;
    }
    int begin = 0;
    while (begin < length && (data[begin] == ' ' || (!blanksOnly && data[begin] == '\t'))) {
        begin++;
    }
    Delete(0, begin);
    return begin;
}

void SString::Trim(int left, int right, bool blanksOnly) {
    TrimRight(right, blanksOnly);
    TrimLeft(left, blanksOnly);
}

bool SString::Unquote(char quote) {
    if (!IsQuoted(quote)) {
        return false;
    }
    TrimRight(1);
    Delete(0, 1);
    return true;
}

// Three states: a leading digit is required; the run of digits and the one
// character after it are consumed; then blanks, "." and "-" are skipped. The
// character after the digits is consumed whatever it is, so "12abc" gives
// "bc". Text that ends during the scan stays as it is.
void SString::RemoveNumbering() {
    if (length == 0 || !IsDigit(data[0])) {
        return;
    }
    int i = 0;
    while (i < length && IsDigit(data[i])) {
        i++;
    }
    i++;
    while (i < length && (data[i] == ' ' || data[i] == '.' || data[i] == '-')) {
        i++;
    }
    if (i < length) {
        Delete(0, i);
    }
}

// Each source line becomes one or more output lines of exactly width
// characters joined by CR LF. Wrapped continuations resume at an offset
// measured in the trimmed, tab-expanded line, without correcting for the
// blanks trimmed from its start, so an indented line that wraps repeats a
// little of its text. That is the established layout and is kept.
void SString::Justify(int align, int width, bool wrap) {
    if (width < 1) {
        width = GetLongestLine();
    }
    if (width < 1) {
        return;
    }
    SString source(*this);
    length = 0;
    if (data != nullptr) {
        memset(data, 0, capacity);
    }
    int position = 0;
    for (bool isFirst = true; position < source.length; isFirst = false) {
        if (!isFirst) {
            Append("\r\n", 2);
        }
        int lineStart = position;
        SString line = source.GetLine(position, &position);
        line.Trim(-1, -1, true);
        line.ReplaceAll("\t", "    ");
        if (line.length == 0) {
            Insert(' ', -1, width);
            continue;
        }
        int cut = 0;
        for (int next = 0; next < line.length;) {
            if (line.GetWord(next, &next, false).IsEmpty()) {
                break;
            }
            if (next <= width) {
                cut = next;
            }
            if (next >= width) {
                break;
            }
        }
        if (cut == 0) {
            cut = width;
        }
        bool isWrapped = false;
        if (cut < line.length && wrap) {
            int resume = line.FindNot(' ', cut);
            if (resume >= 0) {
                position = lineStart + resume;
                isWrapped = true;
            }
        }
        SString chunk = line.Left(cut);
        int pad = width - chunk.length;
        if (align == 2) {
            Insert(' ', -1, pad);
            Append(chunk);
        } else if (align == 1) {
            Insert(' ', -1, pad / 2);
            Append(chunk);
            Insert(' ', -1, pad - pad / 2);
        } else if (align == 3 && isWrapped && pad >= 1) {
            for (int k = 0; k < pad; k++) {
                chunk.WidenShortestGap();
            }
            Append(chunk);
        } else {
            Append(chunk);
            Insert(' ', -1, pad);
        }
    }
}

// Adds one blank to the first of the shortest runs of blanks, or at the end
// when there is none.
void SString::WidenShortestGap() {
    int best = -1;
    int bestLength = INT_MAX;
    for (int i = 0; i < length;) {
        if (data[i] != ' ') {
            i++;
            continue;
        }
        int runStart = i;
        while (i < length && data[i] == ' ') {
            i++;
        }
        if (i - runStart < bestLength) {
            bestLength = i - runStart;
            best = runStart;
        }
    }
    Insert(' ', best, 1);
}

// Tests and conversions

// Blanks around the number are ignored, but a "-" counts only at index 0 of
// the whole text, so " -5" is not a number while "-5 " is.
bool SString::IsNumeric() const {
    int begin = 0;
    int end = length;
    while (begin < end && IsBlank(data[begin])) {
        begin++;
    }
    while (end > begin && IsBlank(data[end - 1])) {
        end--;
    }
    if (begin == end) {
        return false;
    }
    bool hasDot = false;
    bool hasMinus = false;
    for (int i = begin; i < end; i++) {
        char c = data[i];
        if (IsDigit(c)) {
            continue;
        }
        if (c == '.' && !hasDot && i != end - 1) {
            hasDot = true;
        } else if (c == '-' && !hasMinus && i == 0 && i != end - 1) {
            hasMinus = true;
        } else {
            return false;
        }
    }
    return true;
}

bool SString::IsInteger() const {
    return IsNumeric() && Find('.') < 0;
}

bool SString::IsQuoted(char quote) const {
    return length >= 2 && data[0] == quote && data[length - 1] == quote &&
           Find(quote, 1, length - 2) < 0;
}

int SString::CountLines() const {
    int lines = 1;
    for (int i = 0; i + 1 < length; i++) {
        if (data[i] == '\r' && data[i + 1] == '\n') {
            lines++;
            i++;
        }
    }
    return lines;
}

int SString::GetLongestLine() const {
    int longest = 0;
    for (int position = 0; position < length;) {
        int start = position;
        int end = FindLineEnd(data, length, start, &position);
        if (end - start > longest) {
            longest = end - start;
        }
    }
    return longest;
}

uint64_t SString::ParseHex() const {
    if (length == 0) {
        return 0;
    }
    const char* digits = data;
    int count = length;
    if (digits[0] == '#') {
        digits++;
        count--;
    } else if (digits[0] == '0') {
        if (count < 3 || (digits[1] != 'x' && digits[1] != 'X')) {
            return 0;
        }
        digits += 2;
        count -= 2;
    }
    if (count == 0 || count > 16) {
        return 0;
    }
    uint64_t value = 0;
    for (int i = 0; i < count; i++) {
        char c = digits[i];
        int digit = IsDigit(c)               ? c - '0'
                    : (c >= 'a' && c <= 'f') ? c - 'a' + 10
                    : (c >= 'A' && c <= 'F') ? c - 'A' + 10
                                             : -1;
        if (digit < 0) {
            return 0;
        }
        value = (value << 4) | static_cast<uint64_t>(digit);
    }
    return value;
}

namespace {

// Copies the format with each "I64" length prefix of a conversion written as
// "ll", which is what the C library understands (it reads "I" as a flag).
// The result is never longer than the format.
void RewriteWideIntegers(const char* format, char* out) {
    while (*format != 0) {
        char c = *format++;
        *out++ = c;
        if (c != '%') {
            continue;
        }
        if (*format == '%') {
            *out++ = *format++;
            continue;
        }
        while (*format != 0 && strchr("-+ 0#'*.$123456789", *format) != nullptr) {
            *out++ = *format++;
        }
        if (strncmp(format, "I64", 3) == 0) {
            *out++ = 'l';
            *out++ = 'l';
            format += 3;
        }
    }
    *out = 0;
}

} // namespace

void SString::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    FormatV(format, args);
    va_end(args);
}

// The text is measured first on a copy of the arguments, then formatted
// into a new block of exactly that bound, so no format can overrun it. The
// arguments may point into this string; its buffer is kept until the end.
void SString::FormatV(const char* format, va_list args) {
    if (format == nullptr) {
        Assign("", 0);
        return;
    }
    char local[256];
    std::unique_ptr<char[]> heap;
    if (strstr(format, "I64") != nullptr) {
        size_t size = strlen(format) + 1;
        char* rewritten = local;
        if (size > sizeof(local)) {
            heap = std::make_unique<char[]>(size);
            rewritten = heap.get();
        }
        RewriteWideIntegers(format, rewritten);
        format = rewritten;
    }
    va_list measure;
    va_copy(measure, args);
    int needed = vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (needed < 0 || needed > MAX_LENGTH) {
        Assign("", 0);
        return;
    }
    int grown = GrowCapacity(needed, STRING_STEP);
    int blockSize = grown > capacity ? grown : capacity;
    char* block = NewBlock<char>(blockSize);
    vsnprintf(block, static_cast<size_t>(needed) + 1, format, args);
    delete[] data;
    data = block;
    capacity = blockSize;
    length = static_cast<int>(strlen(block));
}

SString SString::FromInt(int value) {
    SString text;
    text.Format("%d", value);
    return text;
}

std::unique_ptr<char16_t[]> SString::ToWide() const {
    if (data == nullptr) {
        return nullptr;
    }
    SUniString wide = Utf8ToUtf16(data, length);
    auto block = std::make_unique<char16_t[]>(static_cast<size_t>(wide.GetLength()) + 1);
    CopyBytes(block.get(), wide.GetBuffer(), sizeof(char16_t) * wide.GetLength());
    return block;
}

SString SString::UrlEncode(bool plusForBlank) const {
    static const char HEX[] = "0123456789ABCDEF";
    SString result("");
    if (length > MAX_LENGTH / 3) {
        return result;
    }
    result.SetSize(length * 3, false);
    char* out = result.data;
    for (int i = 0; i < length; i++) {
        auto c = static_cast<unsigned char>(data[i]);
        if (IsAsciiLetter(static_cast<char>(c)) || IsDigit(static_cast<char>(c)) || c == '-' ||
            c == '_') {
            *out++ = static_cast<char>(c);
        } else if (c == ' ' && plusForBlank) {
            *out++ = '+';
        } else {
            *out++ = '%';
            *out++ = HEX[c >> 4];
            *out++ = HEX[c & 15];
        }
    }
    result.SetLength(static_cast<int>(out - result.data));
    return result;
}

namespace {

// A digit of either case; any other character counts as its own code.
int UrlDigit(unsigned char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'z') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'Z') {
        return c - 'A' + 10;
    }
    return c;
}

} // namespace

// A "%" that stands in the last two positions ends the text there. Decoded
// bytes are kept as they are, a zero byte included.
SString SString::UrlDecode(bool plusForBlank) const {
    SString result("");
    result.SetSize(length, false);
    char* out = result.data;
    for (int i = 0; i < length;) {
        auto c = static_cast<unsigned char>(data[i]);
        if (c == '%') {
            if (i >= length - 2) {
                break;
            }
            int value = UrlDigit(static_cast<unsigned char>(data[i + 1])) * 16 +
                        UrlDigit(static_cast<unsigned char>(data[i + 2]));
            *out++ = static_cast<char>(value & 0xFF);
            i += 3;
        } else {
            *out++ = (c == '+' && plusForBlank) ? ' ' : static_cast<char>(c);
            i++;
        }
    }
    result.SetLength(static_cast<int>(out - result.data));
    return result;
}

// The encoding always ends in exactly one "=", which DecodeBase64 drops
// unread. Stored string arrays rely on this pairing, including the way "+"
// and "/" decode (see DecodeBase64).
void SString::EncodeBase64() {
    static const char ALPHABET[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    if (length == 0 || length > MAX_LENGTH / 4 * 3 - 4) {
        return;
    }
    SString result;
    result.SetSize((length * 4 + 2) / 3 + 1, false);
    char* out = result.data;
    unsigned bits = 0;
    int bitCount = 0;
    for (int i = 0; i < length; i++) {
        bits = (bits << 8) | static_cast<unsigned char>(data[i]);
        bitCount += 8;
        while (bitCount >= 6) {
            bitCount -= 6;
            *out++ = ALPHABET[(bits >> bitCount) & 63];
        }
        bits &= (1u << bitCount) - 1;
    }
    if (bitCount > 0) {
        *out++ = ALPHABET[(bits << (6 - bitCount)) & 63];
    }
    *out++ = '=';
    result.SetLength(static_cast<int>(out - result.data));
    *this = std::move(result);
}

// The last character is dropped unread. The others are mapped by three range
// tests in this order: below ":" add 4, below "[" subtract 65, below "{"
// subtract 71. "+" and "/" therefore read as 47 and 51, not 62 and 63: text
// whose encoding holds them does not come back, and existing data depends on
// reading exactly so. Bytes past "z" count as their own code; every value
// is taken modulo 64.
void SString::DecodeBase64() {
    if (length == 0) {
        return;
    }
    SString result("");
    result.SetSize(length, false);
    char* out = result.data;
    unsigned bits = 0;
    int bitCount = 0;
    for (int i = 0; i < length - 1; i++) {
        int c = static_cast<unsigned char>(data[i]);
        int value = c < ':' ? c + 4 : c < '[' ? c - 65 : c < '{' ? c - 71 : c;
        bits = (bits << 6) | static_cast<unsigned>(value & 63);
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            *out++ = static_cast<char>((bits >> bitCount) & 0xFF);
        }
        bits &= (1u << bitCount) - 1;
    }
    result.SetLength(static_cast<int>(out - result.data));
    *this = std::move(result);
}

// SUniString

SUniString::SUniString(const char* text) {
    DecodeUtf8Into(*this, text, -1);
}

SUniString::SUniString(const char16_t* text) {
    AssignUtf16(text, text != nullptr ? MeasureUnits(text) : 0);
}

SUniString::SUniString(const SUniString& other) {
    if (other.data != nullptr) {
        AssignUtf16(other.data, other.length);
    }
}

SUniString::SUniString(SUniString&& other) noexcept
    : data(other.data), length(other.length), capacity(other.capacity) {
    other.data = nullptr;
    other.length = 0;
    other.capacity = 0;
}

SUniString::~SUniString() {
    delete[] data;
}

SUniString& SUniString::operator=(const SUniString& other) {
    if (this == &other) {
        return *this;
    }
    if (other.data == nullptr) {
        Empty();
    } else {
        AssignUtf16(other.data, other.length);
    }
    return *this;
}

SUniString& SUniString::operator=(SUniString&& other) noexcept {
    if (this != &other) {
        delete[] data;
        data = std::exchange(other.data, nullptr);
        length = std::exchange(other.length, 0);
        capacity = std::exchange(other.capacity, 0);
    }
    return *this;
}

SUniString& SUniString::operator=(const char* text) {
    SUniString converted(text);
    AssignUtf16(converted.data, converted.length);
    return *this;
}

SUniString& SUniString::operator=(const char16_t* text) {
    AssignUtf16(text, text != nullptr ? MeasureUnits(text) : 0);
    return *this;
}

void SUniString::SetSize(int newLength, bool keep) {
    if (newLength < 0) {
        newLength = 0;
    }
    if (newLength > MAX_LENGTH) {
        return;
    }
    int needed = GrowCapacity(newLength, UNI_STEP);
    if (data != nullptr && needed > capacity && needed <= BlockSize(capacity)) {
        // As SString: the reserve takes the new capacity, as a new buffer.
        int kept = keep ? (newLength < length ? newLength : length) : 0;
        memset(data + kept, 0, sizeof(char16_t) * static_cast<size_t>(needed - kept));
        capacity = needed;
    } else if (data == nullptr || needed > capacity) {
        auto* block = NewBlock<char16_t>(needed);
        if (keep && data != nullptr) {
            CopyBytes(block, data, sizeof(char16_t) * (newLength < length ? newLength : length));
        }
        delete[] data;
        data = block;
        capacity = needed;
    }
    length = newLength;
    data[length] = 0;
}

void SUniString::SetLength(int newLength, char16_t fill) {
    int oldLength = length;
    SetSize(newLength, true);
    if (fill != 0) {
        for (int i = oldLength; i < length; i++) {
            data[i] = fill;
        }
    }
}

void SUniString::Empty() {
    delete[] data;
    data = nullptr;
    length = 0;
    capacity = 0;
}

SString SUniString::ToString() const {
    return Utf16ToUtf8(data != nullptr ? data : u"", length);
}

// The text may lie inside this string, so it is copied before the old
// buffer goes.
void SUniString::AssignUtf16(const char16_t* text, int count) {
    if (text == nullptr || count < 0) {
        count = 0;
    }
    int needed = GrowCapacity(count, UNI_STEP);
    if (data != nullptr && needed <= capacity) {
        CopyBytes(data, text, sizeof(char16_t) * count);
    } else {
        auto* block = NewBlock<char16_t>(needed);
        CopyBytes(block, text, sizeof(char16_t) * count);
        delete[] data;
        data = block;
        capacity = needed;
    }
    length = count;
    data[length] = 0;
}

// Conversions between encodings

std::string CodePointToUtf8(unsigned code) {
    if ((code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF) {
        return std::string();
    }
    char bytes[4];
    return std::string(bytes, static_cast<size_t>(EncodeUtf8(static_cast<char32_t>(code), bytes)));
}

SString Utf16ToUtf8(const char16_t* text, int count) {
    if (text == nullptr) {
        return SString("");
    }
    if (count < 0) {
        count = MeasureUnits(text);
    }
    return BuildUtf8(count, 3, [text, count](int i, char32_t* codePoint) {
        char16_t unit = text[i];
        *codePoint = unit;
        if (unit >= 0xDC00 && unit <= 0xDFFF) {
            *codePoint = REPLACEMENT;
        } else if (unit >= 0xD800 && unit <= 0xDBFF) {
            char16_t low = i + 1 < count ? text[i + 1] : 0;
            if (low < 0xDC00 || low > 0xDFFF) {
                *codePoint = REPLACEMENT;
                return 1;
            }
            *codePoint = 0x10000 + ((static_cast<char32_t>(unit) - 0xD800) << 10) + (low - 0xDC00);
            return 2;
        }
        return 1;
    });
}

SUniString Utf8ToUtf16(const char* text, int count) {
    SUniString result;
    DecodeUtf8Into(result, text, count);
    return result;
}

bool IsValidUtf8(const char* text, int count) {
    if (text == nullptr) {
        return true;
    }
    if (count < 0) {
        count = MeasureText(text);
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    for (int i = 0; i < count;) {
        char32_t codePoint = 0;
        bool isValid = false;
        i += DecodeUtf8(bytes + i, count - i, &codePoint, &isValid);
        if (!isValid) {
            return false;
        }
    }
    return true;
}

// Bytes 0x80 to 0x9F hold typographic characters in Windows-1252; the
// others are Latin-1. The five bytes the code page leaves undefined (0x81,
// 0x8D, 0x8F, 0x90, 0x9D) become U+FFFD.
SString Windows1252ToUtf8(const char* text, int count) {
    static const char16_t HIGH_CONTROLS[32] = {
        0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};
    if (text == nullptr) {
        return SString("");
    }
    if (count < 0) {
        count = MeasureText(text);
    }
    return BuildUtf8(count, 3, [text](int i, char32_t* codePoint) {
        auto byte = static_cast<unsigned char>(text[i]);
        *codePoint = (byte >= 0x80 && byte <= 0x9F) ? HIGH_CONTROLS[byte - 0x80] : byte;
        return 1;
    });
}
