// SString: the owning 8-bit string of the whole program, UTF-8 text on
// Linux, copied by value. SUniString: UTF-16 text, used only where a
// platform interface wants 16-bit characters.
//
// Indexes and counts are signed 32-bit. A count of -1 means "to the end".
// A start is valid when 0 <= start < length; operations that may write at
// the end also accept start == length. A count is clamped to what remains.
// Nothing here reports an error: a bad index gives -1, 0, the empty string
// or leaves the object unchanged.
//
// The capacity follows the growth rule of SetSize. Behind a capacity past
// 256 characters lies a larger block (the next power of two or quarter
// between two), which later growth takes without copying, so appending a
// character at a time costs amortised constant time.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <memory>
#include <string>

class SString {
public:
    SString() = default;
    SString(const char* text);            // null gives the empty string with a buffer
    SString(const char16_t* text);        // UTF-16 in; null gives the empty string
    SString(const wchar_t* text);         // UTF-32 (Linux wchar_t) in; null gives empty
    explicit SString(int count);          // that many blanks
    SString(const SString& other);        // text only, user words are not copied
    SString(SString&& other) noexcept;    // takes the buffer; user words stay zero
    virtual ~SString();

    SString& operator=(const SString& other);
    SString& operator=(SString&& other) noexcept;
    SString& operator=(const char* text);
    SString& operator=(char c);
    SString& operator=(const char16_t* text);
    SString& operator=(const wchar_t* text);

    // A negative count measures the text; a null text empties the string.
    // The terminator is always written.
    void Assign(const char* text, int count = -1);
    // Copies the text, and the user words too when textOnly is false.
    void CopyFrom(const SString& source, bool textOnly);
    // Frees the buffer: data becomes null, length and capacity 0.
    void Empty();
    // Capacity grows to (length + 1) rounded up to the next multiple of 16,
    // a full 16 more when already a multiple; it never shrinks. With keep,
    // min(length, old length) characters are carried over.
    void SetSize(int length, bool keep);
    // SetSize with keep; characters added past the old length are set to fill
    // when fill is not 0.
    void SetLength(int length, char fill = 0);

    // Access and comparison.
    int GetLength() const { return length; }
    int GetCapacity() const { return capacity; }
    const char* GetBuffer() const { return data; }
    char* GetBuffer() { return data; }
    // Never null: the empty text for a bufferless string.
    const char* c_str() const { return data != nullptr ? data : ""; }
    bool IsEmpty() const { return length == 0; }
    char GetAt(int index) const;
    // Setting character 0 truncates the string at index.
    void SetAt(int index, char c);
    bool operator==(const char* text) const;
    bool operator!=(const char* text) const { return !(*this == text); }
    bool operator==(const SString& other) const;
    bool operator!=(const SString& other) const { return !(*this == other); }
    int Compare(const char* text) const;       // -1, 0 or 1, byte order
    int CompareNoCase(const char* text) const; // -1, 0 or 1, case-blind
    SString operator+(const char* text) const;
    SString operator+(const SString& other) const;
    SString operator+(char c) const;
    void Append(const char* text, int count = -1);
    void Append(const SString& other);
    SString& operator+=(const char* text);
    SString& operator+=(const SString& other);
    SString& operator+=(char c);
    void AppendChar(char c);

    // Search. Each result is an index, or -1.
    int Find(char c, int start = 0, int count = -1) const;
    int FindNot(char c, int start = 0, int count = -1) const;
    // Case-sensitive; with after, the result is the position just past the
    // match. An empty needle gives -1.
    int Find(const char* text, int start = 0, int count = -1, bool after = false) const;
    int FindNoCase(const char* text, int start = 0, int count = -1) const;
    // A start of -1 means from the last character.
    int ReverseFind(char c, int start = -1) const;
    // Tries each of the count characters after count in turn and returns the
    // first that ReverseFind finds. The characters are passed as int.
    int ReverseFindAny(int start, int count, ...) const;

    // Pieces, each a new string.
    SString Left(int count) const;
    SString Right(int count) const;
    SString Mid(int start, int count = -1) const;
    SString Between(int start, int end) const; // end exclusive
    // The text up to CR, LF or CR LF; next receives the position after the
    // line end, or the length at the end of the text.
    SString GetLine(int start, int* next) const;
    // A word is a run of non-blanks, a gap a run of space, tab, CR or LF.
    // Without keepBlanks a gap is skipped and the following word returned.
    SString GetWord(int start, int* next, bool keepBlanks) const;
    SString AfterChar(char c) const;
    SString BeforeChar(char c) const;
    SString BeforeCharOrAll(char c) const;
    SString Upper() const;
    SString Lower() const;
    void MakeUpper();
    void MakeLower();

    // Editing in place.
    // A negative pos appends; nothing happens when count < 1 or pos > length.
    void Insert(char c, int pos, int count = 1);
    // Inserts the text count times, under the same rules.
    void Insert(const char* text, int pos, int count = 1);
    // Returns the number of characters removed.
    int Delete(int start, int count = -1);
    // Returns the number of changes; a to of 0 truncates through SetAt.
    int Replace(char from, char to, int start = 0, int count = -1);
    void ReplaceRange(const char* text, int start, int count);
    // Returns the number of replacements; the inserted text is not rescanned.
    int ReplaceAll(const char* find, const char* with, int start = 0, int count = -1,
                   bool matchCase = true);
    // A positive count cuts that many characters (all when fewer) and gives
    // 0; a negative count strips blanks and gives how many. A blank is a
    // space, and a tab too unless blanksOnly.
    int TrimRight(int count = -1, bool blanksOnly = false);
    int TrimLeft(int count = -1, bool blanksOnly = false);
    void Trim(int left = -1, int right = -1, bool blanksOnly = false);
    bool Unquote(char quote = '"');
    // "12 - Song" becomes "Song"; see the source for the exact scan.
    void RemoveNumbering();
    // align: 0 left, 1 centre, 2 right, 3 both margins. A width below 1 is
    // the longest line.
    void Justify(int align, int width, bool wrap);

    // Tests and conversions.
    bool IsNumeric() const;
    bool IsInteger() const;
    bool IsQuoted(char quote = '"') const;
    int CountLines() const;     // CR LF pairs plus 1
    int GetLongestLine() const; // lines as GetLine cuts them
    // "#ff", "0xFF", "ff": 0 for anything malformed or over 16 digits.
    uint64_t ParseHex() const;
    // printf formatting into the string, bounded: never overruns whatever
    // the format. "%I64d" is read as "%lld".
    void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* format, va_list args);
    static SString FromInt(int value);
    // The value with "%d", the thousand separator of the current locale row
    // inserted before every third digit counted from the end ("-" is not a
    // digit). The second form names the separator; 0 inserts nothing.
    void FormatGrouped(int value);
    void FormatGrouped(int value, char thousand);
    // The value with six decimals, trailing zeros stripped; a "." left last
    // is removed, or keeps one "0" after it with keepOneDecimal. Always "."
    // as the decimal sign, whatever the locale.
    void FormatFloat(double value, bool keepOneDecimal);
    // UTF-16 copy, zero-terminated; null on a bufferless string.
    std::unique_ptr<char16_t[]> ToWide() const;
    SString UrlEncode(bool plusForBlank) const;
    SString UrlDecode(bool plusForBlank) const;
    // Appends exactly one "=" whatever the length; DecodeBase64 expects it.
    // "+" and "/" do not survive the round trip: stored data relies on it.
    void EncodeBase64();
    void DecodeBase64();

    // Free words for the owner of the string.
    uint32_t userA = 0;
    uint32_t userB = 0;

private:
    // Makes room for length characters plus the terminator under the growth
    // rule; returns the buffer.
    char* Reserve(int length, bool keep);
    // Clamps start and count by the range rules; false when start is out of
    // range. atEnd accepts start == length.
    bool ClampRange(int& start, int& count, bool atEnd) const;
    // Replaces removed characters at start by repeat copies of text, which
    // may lie inside this string; false when the result would be too long.
    bool Splice(int start, int removed, const char* text, int textLength, int repeat);
    // One step of justifying both margins: widens the first shortest run of
    // blanks by one, or adds a blank at the end when there is none.
    void WidenShortestGap();

    char* data = nullptr;
    int length = 0;
    int capacity = 0;
};

SString operator+(const char* left, const SString& right);

class SUniString {
public:
    SUniString() = default;
    SUniString(const char* text);     // UTF-8 in
    SUniString(const char16_t* text); // UTF-16 in
    SUniString(const SUniString& other);
    SUniString(SUniString&& other) noexcept;
    virtual ~SUniString();

    SUniString& operator=(const SUniString& other);
    SUniString& operator=(SUniString&& other) noexcept;
    SUniString& operator=(const char* text);
    SUniString& operator=(const char16_t* text);

    int GetLength() const { return length; }
    int GetCapacity() const { return capacity; }
    const char16_t* GetBuffer() const { return data; }
    char16_t* GetBuffer() { return data; }
    // Capacity grows as SString's, in steps of 24 characters.
    void SetSize(int length, bool keep);
    void SetLength(int length, char16_t fill = 0);
    void Empty();
    // UTF-8 copy of the text.
    SString ToString() const;

    uint32_t userA = 0;
    uint32_t userB = 0;

private:
    void AssignUtf16(const char16_t* text, int count);

    char16_t* data = nullptr;
    int length = 0;
    int capacity = 0;
};

// UTF-8 from UTF-16 and back. Invalid sequences become U+FFFD.
SString Utf16ToUtf8(const char16_t* text, int count = -1);
SUniString Utf8ToUtf16(const char* text, int count = -1);
// One code point as UTF-8; empty for a surrogate or a value past U+10FFFF.
std::string CodePointToUtf8(unsigned code);
// True when the bytes are well-formed UTF-8.
bool IsValidUtf8(const char* text, int count = -1);
// Windows-1252 bytes to UTF-8, for text written on Windows. The five bytes
// the code page leaves undefined become U+FFFD.
SString Windows1252ToUtf8(const char* text, int count = -1);
