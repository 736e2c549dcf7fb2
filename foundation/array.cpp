#include "foundation/array.h"

#include <utility>

template class SArray<int>;
template class SArray<SString*>;

// The matcher walks text and pattern together. A star hands the rest of the
// pattern to a search in anywhere-mode, whose answer is the answer: the
// search is the last step of the caller, so it runs in the same loop rather
// than one stack frame per star. In anywhere-mode the pattern may begin at
// any position: a mismatch after a partial match starts again at the
// position after the start of that partial match, from the start of the
// rest of the pattern. Reaching the end of the text succeeds only with the
// pattern at its end or at a final lone star, so "a**" does not match "a"
// while "a*" does. Each star is passed once, so the cost is bounded by the
// text length times the pattern length.
bool MatchWildcardText(const char* text, const char* pattern, char star, char one) {
    if (text == nullptr) {
        text = "";
    }
    if (pattern == nullptr) {
        pattern = "";
    }
    auto isStar = [star](const char* at) { return star != 0 && *at == star; };
    const char* rest = pattern;    // where anywhere-mode restarts the pattern
    const char* partial = nullptr; // text position where a partial match began
    bool anywhere = false;
    for (;;) {
        if (*text == 0) {
            return *pattern == 0 || (isStar(pattern) && pattern[1] == 0);
        }
        if (isStar(pattern)) {
            rest = pattern + 1;
            if (*rest == 0) {
                return true;
            }
            pattern = rest;
            partial = nullptr;
            anywhere = true;
            continue;
        }
        if (*pattern != 0 && ((one != 0 && *pattern == one) || *pattern == *text)) {
            if (partial == nullptr) {
                partial = text;
            }
            ++pattern;
            ++text;
            continue;
        }
        if (!anywhere) {
            return false;
        }
        text = partial != nullptr ? partial + 1 : text + 1;
        partial = nullptr;
        pattern = rest;
    }
}

namespace {

const SString& TextOf(const SString* item, const SString& empty) {
    return item != nullptr ? *item : empty;
}

} // namespace

int SStringArray::Add(const char* text, int index, int count) {
    SString item(text);
    return SArray::Add(&item, index, count);
}

int SStringArray::Add(const SString& text, int index, int count) {
    // CopyItem only reads the source.
    return SArray::Add(const_cast<SString*>(&text), index, count);
}

int SStringArray::AddSorted(const char* text, int start, int end, void* extra) {
    SString item(text);
    return SArray::AddSorted(&item, start, end, extra);
}

int SStringArray::Find(const char* text, int start, int end, void* extra) const {
    SString item(text);
    return SArray::Find(&item, start, end, extra);
}

int SStringArray::FindSorted(const char* text, int start, int end, void* extra) const {
    SString item(text);
    return SArray::FindSorted(&item, start, end, extra);
}

int SStringArray::RemoveEqual(SString* const& item, int start, int end, void* extra) {
    if (!ClampRange(start, end)) {
        return 0;
    }
    // The item may be one of the strings about to be destroyed.
    SString key = item != nullptr ? *item : SString();
    SString* const keyItem = &key;
    int removed = 0;
    for (int i = end - 1; i >= start; --i) {
        if (CompareAt(keyItem, GetAt(i), extra) == 0) {
            DeleteAt(i, 1);
            ++removed;
        }
    }
    return removed;
}

void SStringArray::SetText(int index, const char* text) {
    SString** item = GetItemPtr(index);
    if (item == nullptr) {
        return;
    }
    if (*item == nullptr) {
        *item = new SString(text);
    } else {
        **item = text != nullptr ? text : "";
    }
}

SString SStringArray::GetText(int index) const {
    SString* const* item = GetItemPtr(index);
    if (item == nullptr || *item == nullptr) {
        return SString();
    }
    return **item;
}

SString SStringArray::Join(const char* separator, int start, int count) const {
    SString result;
    if (start < 0 || start >= GetCount() || count == 0) {
        return result;
    }
    const int end = count < 0 || count > GetCount() - start ? GetCount() : start + count;
    const SString empty;
    for (int i = start; i < end; ++i) {
        if (i > start && separator != nullptr) {
            result.Append(separator);
        }
        result.Append(TextOf(GetAt(i), empty));
    }
    return result;
}

int SStringArray::MatchWildcards(const char* pattern, SArray<int>* indexes, char star,
                                 char one) const {
    int matches = 0;
    for (int i = 0; i < GetCount(); ++i) {
        const SString* item = GetAt(i);
        if (MatchWildcardText(item != nullptr ? item->c_str() : "", pattern, star, one)) {
            ++matches;
            if (indexes != nullptr) {
                indexes->Add(i);
            }
        }
    }
    return matches;
}

void SStringArray::Assign(const SArray<SString*>& other) {
    if (this == &other) {
        return;
    }
    // Copy first: the other array may point at strings this one owns.
    SStringArray copy;
    for (SString* item : other) {
        copy.SArray::Add(item);
    }
    copy.SetFlags(other.GetFlags());
    SArray::operator=(std::move(copy));
}

void SStringArray::Assign(const SStringArray& other) {
    const uint32_t keptFlags = GetFlags();
    Assign(static_cast<const SArray<SString*>&>(other));
    SetFlags(keptFlags);
}

void SStringArray::Free() {
    for (int i = 0; i < GetCount(); ++i) {
        SString*& item = GetAt(i);
        if (item != nullptr) {
            OnDeleteItem(item, i, nullptr);
            delete item;
            item = nullptr;
        }
    }
    SArray::Free();
}

void SStringArray::CopyItem(SString*& destination, SString* const& source, int, void*) {
    destination = new SString();
    if (source != nullptr) {
        destination->CopyFrom(*source, false);
    }
}

int SStringArray::CompareItems(SString* const& a, SString* const& b, uint32_t flags, void*) const {
    const SString empty;
    const SString* left = &TextOf(a, empty);
    const SString* right = &TextOf(b, empty);
    if ((flags & SORT_DESCENDING) != 0) {
        std::swap(left, right);
    }
    return (flags & SORT_NOCASE) != 0 ? left->CompareNoCase(right->c_str())
                                      : left->Compare(right->c_str());
}

void SStringArray::ItemFromText(SString*& item, const char* text, int, void*) {
    if (item == nullptr) {
        item = new SString(text);
    } else {
        *item = text != nullptr ? text : "";
    }
    item->DecodeBase64();
}

SString SStringArray::ItemToText(SString* const& item, int, void*) const {
    SString text = item != nullptr ? *item : SString();
    text.EncodeBase64();
    return text;
}
