// Fuzzes the wildcard matcher of SStringArray and the sorting and searching
// of SArray. The input's first byte picks the mode; the rest is either a
// pattern and texts split at line feeds, with two bytes chosen as star and
// one, or an array of 32-bit integers to sort and search. Besides not
// crashing or hanging, each checks properties that hold for every input.
#include "foundation/array.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Sorting equal items takes time quadratic in their number.
constexpr size_t MAX_ITEMS = 2048;

void Check(bool condition) {
    if (!condition) {
        abort();
    }
}

bool HasWildcard(const std::string& text, char star, char one) {
    return (star != 0 && text.find(star) != std::string::npos) ||
           (one != 0 && text.find(one) != std::string::npos);
}

void CheckMatcher(const std::string& pattern, const SStringArray& texts, char star, char one) {
    SArray<int> indexes;
    const int matches = texts.MatchWildcards(pattern.c_str(), &indexes, star, one);
    Check(matches == indexes.GetCount());
    int next = 0;
    for (int i = 0; i < texts.GetCount(); ++i) {
        const char* text = texts.GetAt(i)->c_str();
        const bool matched = MatchWildcardText(text, pattern.c_str(), star, one);
        Check(matched == (next < indexes.GetCount() && indexes.GetAt(next) == i));
        next += matched ? 1 : 0;
        if (!HasWildcard(pattern, star, one)) {
            Check(matched == (pattern == text));
        }
        const std::string plain(text);
        if (HasWildcard(plain, star, one)) {
            continue;
        }
        // A text without wildcards matches itself, a lone star, and itself
        // behind a star or before a final star.
        Check(MatchWildcardText(text, text, star, one));
        if (star != 0) {
            const std::string starText = std::string(1, star) + plain;
            const std::string textStar = plain + star;
            Check(MatchWildcardText(text, std::string(1, star).c_str(), star, one));
            Check(MatchWildcardText(text, starText.c_str(), star, one));
            Check(MatchWildcardText(text, textStar.c_str(), star, one));
        }
    }
}

void FuzzWildcards(const uint8_t* data, size_t size) {
    if (size < 2) {
        return;
    }
    const char star = static_cast<char>(data[0]);
    const char one = static_cast<char>(data[1]);
    std::vector<std::string> pieces(1);
    for (size_t i = 2; i < size; ++i) {
        if (data[i] == '\n') {
            pieces.emplace_back();
        } else if (data[i] != 0) {
            pieces.back().push_back(static_cast<char>(data[i]));
        }
    }
    SStringArray texts;
    for (size_t i = 1; i < pieces.size(); ++i) {
        texts.Add(pieces[i].c_str());
    }
    CheckMatcher(pieces[0], texts, '*', '?');
    CheckMatcher(pieces[0], texts, star, one);
}

bool InOrder(const SArray<int>& array, int start, int end, bool descending) {
    for (int i = start + 1; i < end; ++i) {
        const unsigned before = static_cast<unsigned>(array.GetAt(i - 1));
        const unsigned after = static_cast<unsigned>(array.GetAt(i));
        if (descending ? before < after : before > after) {
            return false;
        }
    }
    return true;
}

void FuzzSort(const uint8_t* data, size_t size) {
    if (size < 3) {
        return;
    }
    const bool descending = (data[0] & 1) != 0;
    const int rangeStart = data[1];
    const int rangeEnd = data[2] == 0xFF ? -1 : data[2];
    data += 3;
    size -= 3;
    SArray<int> array;
    array.SetFlags(descending ? SORT_DESCENDING : 0);
    for (size_t i = 0; i + 4 <= size && array.GetCount() < int(MAX_ITEMS); i += 4) {
        int value;
        memcpy(&value, data + i, sizeof value);
        array.Add(value);
    }
    const std::vector<int> before(array.begin(), array.end());

    // A sub-range sort leaves the items outside the range where they were.
    array.Sort(rangeStart, rangeEnd);
    const int end = rangeEnd < 0 || rangeEnd > array.GetCount() ? array.GetCount() : rangeEnd;
    for (int i = 0; i < array.GetCount(); ++i) {
        if (i < rangeStart || i >= end) {
            Check(array.GetAt(i) == before[size_t(i)]);
        }
    }
    if (rangeStart < end) {
        Check(InOrder(array, rangeStart, end, descending));
    }

    array.Sort();
    Check(InOrder(array, 0, array.GetCount(), descending));
    std::vector<int> sorted(array.begin(), array.end());
    std::vector<int> expected = before;
    std::sort(sorted.begin(), sorted.end());
    std::sort(expected.begin(), expected.end());
    Check(sorted == expected);

    for (int value : before) {
        const int found = array.FindSorted(value);
        Check(found >= 0 && array.GetAt(found) == value);
        const int position = array.FindInsertPosition(value);
        Check(position >= 0 && position <= array.GetCount());
    }
    const int missing = static_cast<int>(before.empty() ? 0 : before[0] ^ 0x5A5A5A5A);
    if (std::find(before.begin(), before.end(), missing) == before.end()) {
        Check(array.FindSorted(missing) == -1);
    }
    // Items added where FindInsertPosition says keep the order.
    for (size_t i = 0; i < before.size() && i < 64; ++i) {
        // Unsigned arithmetic: INT_MAX wraps to INT_MIN instead of overflowing.
        array.AddSorted(static_cast<int>(static_cast<unsigned>(before[i]) + 1u));
        array.AddSorted(before[i] ^ 0x10000);
    }
    Check(InOrder(array, 0, array.GetCount(), descending));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    if ((data[0] & 0x80) != 0) {
        FuzzSort(data + 1, size - 1);
    } else {
        FuzzWildcards(data + 1, size - 1);
    }
    return 0;
}
