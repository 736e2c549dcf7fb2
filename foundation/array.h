// SArray<T>: the growable array of the whole program, with virtual hooks for
// copying, deleting, comparing and text conversion of items. SStringArray:
// an array of SString* that owns its strings, with sort flags.
//
// Items are moved bit for bit, so T must be trivially copyable. The
// capacity is the count rounded up to the next multiple of 64 above it, and
// it changes, smaller or larger, whenever that number changes; what a
// changed capacity leaves of the items is as if the block were reallocated.
// The memory behind it grows by half and shrinks only to a quarter, so
// adding items at the end one at a time, or removing them from the end,
// costs amortised constant time per item. A pointer array does not destroy
// its items unless DeleteAt or DeleteAll is called.
// Indexes and counts are signed 32-bit; a bad index never raises an error:
// it gives -1, null, false, or leaves the array unchanged.
#pragma once

#include <cassert>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

#include "foundation/random.h"
#include "foundation/string.h"

// Bits of the flags handed to every comparison.
inline constexpr uint32_t SORT_DESCENDING = 0x1;
inline constexpr uint32_t SORT_NOCASE = 0x10000; // string arrays only

template <typename T> class SArray {
    static_assert(std::is_trivially_copyable_v<T>, "SArray moves its items bit for bit");
    static_assert(alignof(T) <= alignof(std::max_align_t), "SArray blocks come from malloc");

public:
    SArray() = default;
    SArray(const SArray&) = delete;
    SArray& operator=(const SArray&) = delete;
    SArray(SArray&& other) noexcept { TakeFrom(other); }
    // Frees what this array holds (through Free, so an owning subclass
    // destroys its items) and takes the other's block.
    SArray& operator=(SArray&& other) noexcept {
        if (this != &other) {
            Free();
            TakeFrom(other);
        }
        return *this;
    }
    virtual ~SArray() { std::free(items); }

    // Size and access.
    int GetCount() const { return count; }
    int GetCapacity() const { return capacity; }
    uint32_t GetFlags() const { return flags; }
    void SetFlags(uint32_t newFlags) { flags = newFlags; }
    // Unchecked; the index must lie in [0, count).
    T& GetAt(int index) {
        assert(index >= 0 && index < count && "SArray::GetAt out of range");
        return items[index];
    }
    const T& GetAt(int index) const {
        assert(index >= 0 && index < count && "SArray::GetAt out of range");
        return items[index];
    }
    // Null when the index is out of range.
    T* GetItemPtr(int index) { return index >= 0 && index < count ? items + index : nullptr; }
    const T* GetItemPtr(int index) const {
        return index >= 0 && index < count ? items + index : nullptr;
    }
    T* begin() { return items; }
    T* end() { return items + count; }
    const T* begin() const { return items; }
    const T* end() const { return items + count; }

    // Sets the count (negative counts as 0) and reallocates when the
    // capacity n + 64 - n % 64 differs from the present one. With keep, the
    // first min(new, old) items survive a reallocation. Items added by
    // growing are zero bytes. Destroys nothing. False when the count is too
    // large or memory runs out; the array is then unchanged.
    bool SetSize(int newCount, bool keep = true);

    // Editing.
    // Inserts count copies of item, each through CopyItem, at index; an
    // index below 0 or past the end means the end. Returns the index of the
    // first copy, or -1 when count < 1.
    int Add(const T& item, int index = -1, int count = 1);
    // Closes the gap without destroying items. A negative count means to
    // the end; an index out of range does nothing.
    void RemoveAt(int index, int count = 1);
    // Pointer arrays: each non-null item in the range goes to OnDeleteItem,
    // then to delete, then the range is removed. Value arrays: as RemoveAt.
    void DeleteAt(int index, int count = 1);
    void RemoveAll() { SetSize(0, false); }
    // As DeleteAt over every item, then RemoveAll.
    void DeleteAll() {
        DeleteAt(0, count);
        RemoveAll();
    }
    // False when either index is out of range or they are equal.
    bool Swap(int a, int b) {
        if (a < 0 || a >= count || b < 0 || b >= count || a == b) {
            return false;
        }
        SwapItems(a, b);
        return true;
    }

    // Sorting and searching. Ranges are [start, end); an end below 0 or
    // past the count means the count; a start below 0 or not below the end
    // makes the range invalid. Every comparison goes through CompareItems.
    // Quicksort with the middle item as pivot; not stable.
    void Sort(int start = 0, int end = -1, void* extra = nullptr);
    int Find(const T& item, int start = 0, int end = -1, void* extra = nullptr) const;
    // Binary search of a sorted range: an index of an equal item, or -1.
    int FindSorted(const T& item, int start = 0, int end = -1, void* extra = nullptr) const {
        return ClampRange(start, end) ? Bisect(item, start, end, extra) : -1;
    }
    // Where item belongs in a sorted range: the index of an equal item when
    // bisection meets one; -1 for an invalid range (an empty array).
    int FindInsertPosition(const T& item, int start = 0, int end = -1, void* extra = nullptr) const;
    // Add at FindInsertPosition; -1 there appends.
    int AddSorted(const T& item, int start = 0, int end = -1, void* extra = nullptr) {
        return Add(item, FindInsertPosition(item, start, end, extra));
    }
    // Removes every equal item in the range without destroying it; returns
    // how many.
    int RemoveEqual(const T& item, int start = 0, int end = -1, void* extra = nullptr);
    // Puts the range in a random order drawn from the calling thread's
    // generator (NextRandom), the same order for the same seed everywhere:
    // for each place from the start up, the item at the truncation of
    // NextRandom() / 32768.0 * n among the n not yet placed is taken, and
    // the remaining ones close the gap.
    void Shuffle(int start = 0, int end = -1);

    // Virtual operations, in this order. The extra argument is the caller's,
    // passed through untouched.
    // Sizes to the other's count, copies its flags and its items bit for bit.
    virtual void Assign(const SArray& other);
    // Frees the block and zeroes capacity, count and flags.
    virtual void Free() {
        std::free(items);
        items = nullptr;
        capacity = count = allocated = 0;
        flags = 0;
    }
    // destination is uninitialised memory inside the block.
    virtual void CopyItem(T& destination, const T& source, int /*index*/, void* /*extra*/) {
        destination = source;
    }
    // Called just before a pointer item is deleted.
    virtual void OnDeleteItem(T& /*item*/, int /*index*/, void* /*extra*/) {}
    // Negative, 0 or positive; -2 asks for the built-in comparison, which
    // orders items as unsigned values: pointers, integers and types of 1,
    // 2, 4 or 8 bytes as unsigned integers of that width (so non-negative
    // doubles sort by value), larger types by memcmp of their bytes. It is
    // ascending, descending when flags has SORT_DESCENDING.
    virtual int CompareItems(const T& /*a*/, const T& /*b*/, uint32_t /*flags*/,
                             void* /*extra*/) const {
        return -2;
    }
    // Text forms of an item, for storing arrays as text; by default none.
    virtual void ItemFromText(T& /*item*/, const char* /*text*/, int /*index*/, void* /*extra*/) {}
    virtual SString ItemToText(const T& /*item*/, int /*index*/, void* /*extra*/) const {
        return SString();
    }

protected:
    // CompareItems with the built-in fallback applied.
    int CompareAt(const T& a, const T& b, void* extra) const;
    // Applies the range rules above; false for an invalid range.
    bool ClampRange(int& start, int& end) const {
        if (end < 0 || end > count) {
            end = count;
        }
        return start >= 0 && start < end;
    }

private:
    static int CompareBuiltIn(const T& a, const T& b);
    // SetSize without the zeroing; returns how many items survived, or -1.
    int Reallocate(int newCount, bool keep);
    // Bisects [low, high) for item: an index of an equal item, or -1 with
    // low where the search closed.
    int Bisect(const T& item, int& low, int high, void* extra) const;
    void SwapItems(int a, int b) {
        const T held = items[a];
        items[a] = items[b];
        items[b] = held;
    }
    void TakeFrom(SArray& other) {
        capacity = std::exchange(other.capacity, 0);
        count = std::exchange(other.count, 0);
        items = std::exchange(other.items, nullptr);
        flags = std::exchange(other.flags, 0);
        allocated = std::exchange(other.allocated, 0);
    }

    int capacity = 0;
    int count = 0;
    T* items = nullptr;
    uint32_t flags = 0;
    // Items the block holds: at least the capacity (see Reallocate).
    int allocated = 0;
};

// An array of strings that owns them: copies come in through CopyItem,
// and the strings are destroyed by DeleteAt, DeleteAll, Free and the
// destructor. RemoveAt hands a string to whoever took its pointer.
class SStringArray : public SArray<SString*> {
public:
    SStringArray() = default;
    SStringArray(SStringArray&& other) noexcept = default;
    SStringArray& operator=(SStringArray&& other) noexcept = default;
    ~SStringArray() override { Free(); }

    using SArray::Add;
    using SArray::AddSorted;
    using SArray::Find;
    using SArray::FindSorted;
    // The same operations taking text, each through a temporary SString.
    int Add(const char* text, int index = -1, int count = 1);
    int Add(const SString& text, int index = -1, int count = 1);
    int AddSorted(const char* text, int start = 0, int end = -1, void* extra = nullptr);
    int Find(const char* text, int start = 0, int end = -1, void* extra = nullptr) const;
    int FindSorted(const char* text, int start = 0, int end = -1, void* extra = nullptr) const;
    // Unlike the plain array, destroys the strings it removes.
    int RemoveEqual(SString* const& item, int start = 0, int end = -1, void* extra = nullptr);

    // Ignored when the index is out of range.
    void SetText(int index, const char* text);
    // A copy of the string; empty when the index is out of range.
    SString GetText(int index) const;
    // The items from start on, count of them (negative: to the end), with
    // separator between them. Empty for an invalid start or a count of 0.
    SString Join(const char* separator, int start = 0, int count = -1) const;
    // Counts the strings that match pattern, byte for byte and
    // case-sensitive, where star stands for any run of characters and one
    // for any single character; the index of each match is appended to
    // indexes when given. A star or one of 0 stands for nothing. At the end
    // of the text only a single final star still matches: "a*" matches "a"
    // but "a**" does not.
    int MatchWildcards(const char* pattern, SArray<int>* indexes = nullptr, char star = '*',
                       char one = '?') const;

    // Deep copies: destroy every string, then add a copy of each of the
    // other's. The one for a plain array also copies its flags.
    void Assign(const SArray<SString*>& other) override;
    virtual void Assign(const SStringArray& other);
    void Free() override;
    // A new SString, copied with CopyFrom including its user words; a null
    // source gives an empty string.
    void CopyItem(SString*& destination, SString* const& source, int index, void* extra) override;
    // Compare, or CompareNoCase with SORT_NOCASE; SORT_DESCENDING swaps the
    // operands. A null item compares as the empty string.
    int CompareItems(SString* const& a, SString* const& b, uint32_t flags,
                     void* extra) const override;
    // Stored form: EncodeBase64 of the text (see SString for its quirks).
    void ItemFromText(SString*& item, const char* text, int index, void* extra) override;
    SString ItemToText(SString* const& item, int index, void* extra) const override;
};

// True when text matches pattern as MatchWildcards tests each string.
bool MatchWildcardText(const char* text, const char* pattern, char star = '*', char one = '?');

// Template definitions.

template <typename T> int SArray<T>::Reallocate(int newCount, bool keep) {
    newCount = newCount < 0 ? 0 : newCount;
    if (newCount > INT_MAX - 64) {
        return -1;
    }
    int kept = newCount < count ? newCount : count;
    const int newCapacity = newCount + 64 - newCount % 64;
    if (newCapacity == capacity) {
        count = newCount;
        return kept;
    }
    // The capacity changes, which the rule counts as a new block; the
    // allocated one serves while it holds the capacity and is not four
    // times too large, so a run of Adds or RemoveAts moves the items a
    // bounded number of times per item.
    const bool fits = items != nullptr && newCapacity <= allocated && newCapacity > allocated / 4;
    if (!fits) {
        int blockCount = newCapacity;
        if (newCapacity > allocated && allocated > 0) {
            const long long grown = static_cast<long long>(allocated) + allocated / 2;
            blockCount = grown > newCapacity ? static_cast<int>(grown < INT_MAX ? grown : INT_MAX)
                                             : newCapacity;
        }
        T* block = static_cast<T*>(std::malloc(sizeof(T) * size_t(blockCount)));
        if (block == nullptr && blockCount > newCapacity) {
            blockCount = newCapacity;
            block = static_cast<T*>(std::malloc(sizeof(T) * size_t(blockCount)));
        }
        if (block == nullptr && newCount >= capacity) {
            return -1;
        }
        if (block == nullptr) { // a shrink can live on in the old block
            count = newCount;
            return kept;
        }
        kept = keep ? kept : 0;
        if (kept > 0) {
            std::memcpy(static_cast<void*>(block), items, sizeof(T) * size_t(kept));
        }
        std::free(items);
        items = block;
        allocated = blockCount;
    }
    kept = keep ? kept : 0;
    capacity = newCapacity;
    count = newCount;
    return kept;
}

template <typename T> bool SArray<T>::SetSize(int newCount, bool keep) {
    const int kept = Reallocate(newCount, keep);
    if (kept < 0) {
        return false;
    }
    if (kept < count) {
        std::memset(static_cast<void*>(items + kept), 0, sizeof(T) * size_t(count - kept));
    }
    return true;
}

template <typename T> int SArray<T>::Add(const T& item, int index, int addCount) {
    if (addCount < 1 || addCount > INT_MAX - 64 - count) {
        return -1;
    }
    const T value = item; // item may lie inside the block about to move
    const int oldCount = count;
    if (index < 0 || index > oldCount) {
        index = oldCount;
    }
    if (Reallocate(oldCount + addCount, true) < 0) {
        return -1;
    }
    std::memmove(static_cast<void*>(items + index + addCount), items + index,
                 sizeof(T) * size_t(oldCount - index));
    for (int i = 0; i < addCount; ++i) {
        CopyItem(items[index + i], value, index + i, nullptr);
    }
    return index;
}

template <typename T> void SArray<T>::RemoveAt(int index, int removeCount) {
    if (index < 0 || index >= count) {
        return;
    }
    if (removeCount < 0 || removeCount > count - index) {
        removeCount = count - index;
    }
    if (removeCount == 0) {
        return;
    }
    std::memmove(static_cast<void*>(items + index), items + index + removeCount,
                 sizeof(T) * size_t(count - index - removeCount));
    Reallocate(count - removeCount, true);
}

template <typename T> void SArray<T>::DeleteAt(int index, int deleteCount) {
    if constexpr (std::is_pointer_v<T>) {
        static_assert(!std::is_void_v<std::remove_pointer_t<T>>, "void items cannot be deleted");
        if (index < 0 || index >= count) {
            return;
        }
        if (deleteCount < 0 || deleteCount > count - index) {
            deleteCount = count - index;
        }
        for (int i = index; i < index + deleteCount; ++i) {
            if (items[i] != nullptr) {
                OnDeleteItem(items[i], i, nullptr);
                delete items[i];
                items[i] = nullptr;
            }
        }
    }
    RemoveAt(index, deleteCount);
}

template <typename T> void SArray<T>::Sort(int start, int end, void* extra) {
    if (!ClampRange(start, end)) {
        return;
    }
    // Each partition sorts its smaller side by recursion and loops on the
    // larger, so the depth stays logarithmic; the moves are the same.
    while (end - start >= 2) {
        SwapItems(start, (start + end - 1) / 2);
        int boundary = start;
        for (int i = start + 1; i < end; ++i) {
            if (CompareAt(items[i], items[start], extra) < 0) {
                SwapItems(++boundary, i);
            }
        }
        SwapItems(start, boundary);
        if (boundary - start < end - boundary - 1) {
            Sort(start, boundary, extra);
            start = boundary + 1;
        } else {
            Sort(boundary + 1, end, extra);
            end = boundary;
        }
    }
}

template <typename T> int SArray<T>::Find(const T& item, int start, int end, void* extra) const {
    if (!ClampRange(start, end)) {
        return -1;
    }
    for (int i = start; i < end; ++i) {
        if (CompareAt(item, items[i], extra) == 0) {
            return i;
        }
    }
    return -1;
}

template <typename T> int SArray<T>::Bisect(const T& item, int& low, int high, void* extra) const {
    while (low < high) {
        const int mid = (low + high) / 2;
        const int order = CompareAt(item, items[mid], extra);
        if (order == 0) {
            return mid;
        }
        if (order < 0) {
            high = mid;
        } else {
            low = mid + 1;
        }
    }
    return -1;
}

template <typename T>
int SArray<T>::FindInsertPosition(const T& item, int start, int end, void* extra) const {
    if (!ClampRange(start, end)) {
        return -1;
    }
    const int equal = Bisect(item, start, end, extra);
    if (equal >= 0) {
        return equal;
    }
    if (start >= count) {
        return count;
    }
    // For a range that ends before the count, the item just past the range
    // takes part in this last comparison.
    return CompareAt(item, items[start], extra) >= 0 ? start + 1 : start;
}

template <typename T> int SArray<T>::RemoveEqual(const T& item, int start, int end, void* extra) {
    if (!ClampRange(start, end)) {
        return 0;
    }
    const T value = item;
    int kept = start;
    for (int i = start; i < end; ++i) {
        if (CompareAt(value, items[i], extra) != 0) {
            items[kept++] = items[i];
        }
    }
    const int removed = end - kept;
    if (removed > 0) {
        std::memmove(static_cast<void*>(items + kept), items + end,
                     sizeof(T) * size_t(count - end));
        Reallocate(count - removed, true);
    }
    return removed;
}

template <typename T> void SArray<T>::Shuffle(int start, int end) {
    if (!ClampRange(start, end)) {
        return;
    }
    const int total = end - start;
    T* remaining = static_cast<T*>(std::malloc(sizeof(T) * size_t(total)));
    if (remaining == nullptr) {
        return;
    }
    std::memcpy(static_cast<void*>(remaining), items + start, sizeof(T) * size_t(total));
    int left = total;
    for (int place = start; place < end; ++place) {
        int index = int(NextRandom() / 32768.0 * left);
        items[place] = remaining[index];
        std::memmove(static_cast<void*>(remaining + index), remaining + index + 1,
                     sizeof(T) * size_t(left - index - 1));
        --left;
    }
    std::free(remaining);
}

template <typename T> void SArray<T>::Assign(const SArray& other) {
    if (this == &other || Reallocate(other.count, false) < 0) {
        return;
    }
    flags = other.flags;
    if (count > 0) {
        std::memcpy(static_cast<void*>(items), other.items, sizeof(T) * size_t(count));
    }
}

template <typename T> int SArray<T>::CompareAt(const T& a, const T& b, void* extra) const {
    const int order = CompareItems(a, b, flags, extra);
    if (order != -2) {
        return order;
    }
    const int builtIn = CompareBuiltIn(a, b);
    return (flags & SORT_DESCENDING) != 0 ? -builtIn : builtIn;
}

template <typename T> int SArray<T>::CompareBuiltIn(const T& a, const T& b) {
    if constexpr (sizeof(T) == 1 || sizeof(T) == 2 || sizeof(T) == 4 || sizeof(T) == 8) {
        using Unsigned = std::conditional_t<
            sizeof(T) == 1, uint8_t,
            std::conditional_t<sizeof(T) == 2, uint16_t,
                               std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>>>;
        Unsigned x;
        Unsigned y;
        std::memcpy(&x, &a, sizeof(T));
        std::memcpy(&y, &b, sizeof(T));
        return x < y ? -1 : (x > y ? 1 : 0);
    } else {
        const int order = std::memcmp(&a, &b, sizeof(T));
        return order < 0 ? -1 : (order > 0 ? 1 : 0);
    }
}

extern template class SArray<int>;
extern template class SArray<SString*>;
