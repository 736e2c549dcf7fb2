#include "toolkit/tree_items.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "foundation/file.h"
#include "foundation/parser.h"

namespace {

constexpr const char* TREE_MAGIC = "TAVORA TREE 1.0.0.0";

_TREEITEM firstPlace;
_TREEITEM lastPlace;

// "+data,image,selected,expanded,checked" for an item.
SString AttributeText(const _TREEITEM& item) {
    SString text;
    text.Format("+%lld,%d,%d,%d,%d", static_cast<long long>(item.data), item.image,
                item.selectedImage, item.expanded ? 1 : 0, item.checked ? 1 : 0);
    return text;
}

bool CanStandInALine(const _TREEITEM& item, int level, bool withAttributes) {
    const SString& text = item.text;
    if (text.Find('\r') >= 0 || text.Find('\n') >= 0 ||
        (!text.IsEmpty() && text.GetAt(0) == '\t')) {
        return false;
    }
    // Without attributes a top item's line is its text alone: an empty
    // line would be skipped and "." would end the file.
    return withAttributes || level > 0 || (!text.IsEmpty() && text != ".");
}

} // namespace

const HTREEITEM STreeItems::TVI_FIRST = &firstPlace;
const HTREEITEM STreeItems::TVI_LAST = &lastPlace;

STreeItems::~STreeItems() = default;

std::vector<HTREEITEM>& STreeItems::SiblingsOf(HTREEITEM parent) {
    return parent != nullptr ? parent->children : roots;
}

const std::vector<HTREEITEM>& STreeItems::GetChildren(HTREEITEM parent) const {
    return parent != nullptr ? parent->children : roots;
}

HTREEITEM STreeItems::AddItem(const char* text, int image, int selectedImage, HTREEITEM parent,
                              HTREEITEM insertAfter, intptr_t data) {
    if (parent != nullptr && !Contains(parent)) {
        return nullptr;
    }
    auto record = std::make_unique<_TREEITEM>();
    record->text = text != nullptr ? text : "";
    record->image = image;
    record->selectedImage = selectedImage;
    record->data = data;
    record->parent = parent;
    HTREEITEM item = record.get();
    slots.emplace(item, items.size());
    items.push_back(std::move(record));
    std::vector<HTREEITEM>& siblings = SiblingsOf(parent);
    auto place = siblings.end();
    if (insertAfter == TVI_FIRST) {
        place = siblings.begin();
    } else if (insertAfter != TVI_LAST && insertAfter != nullptr) {
        auto found = std::find(siblings.begin(), siblings.end(), insertAfter);
        if (found != siblings.end()) {
            place = found + 1;
        }
    }
    siblings.insert(place, item);
    return item;
}

bool STreeItems::IsWithin(HTREEITEM item, HTREEITEM ancestor) const {
    for (HTREEITEM walk = item; walk != nullptr; walk = walk->parent) {
        if (walk == ancestor) {
            return true;
        }
    }
    return false;
}

bool STreeItems::MoveItem(HTREEITEM item, HTREEITEM newParent) {
    if (item == nullptr || !Contains(item) || (newParent != nullptr && !Contains(newParent)) ||
        IsWithin(newParent, item)) {
        return false;
    }
    std::vector<HTREEITEM>& from = SiblingsOf(item->parent);
    from.erase(std::find(from.begin(), from.end(), item));
    item->parent = newParent;
    SiblingsOf(newParent).push_back(item);
    return true;
}

void STreeItems::Release(HTREEITEM item) {
    // Swap the last record into the freed slot.
    auto found = slots.find(item);
    size_t slot = found->second;
    slots.erase(found);
    if (slot + 1 != items.size()) {
        items[slot] = std::move(items.back());
        slots[items[slot].get()] = slot;
    }
    items.pop_back();
}

bool STreeItems::RemoveItem(HTREEITEM item) {
    if (!Contains(item)) {
        return false;
    }
    std::vector<HTREEITEM>& siblings = SiblingsOf(item->parent);
    siblings.erase(std::find(siblings.begin(), siblings.end(), item));
    // Without recursion, so that a deep tree cannot exhaust the stack.
    std::vector<HTREEITEM> pending{item};
    while (!pending.empty()) {
        HTREEITEM next = pending.back();
        pending.pop_back();
        pending.insert(pending.end(), next->children.begin(), next->children.end());
        Release(next);
    }
    return true;
}

void STreeItems::Clear() {
    roots.clear();
    slots.clear();
    items.clear();
}

HTREEITEM STreeItems::GetNextSibling(HTREEITEM item) const {
    if (!Contains(item)) {
        return nullptr;
    }
    const std::vector<HTREEITEM>& siblings = GetChildren(item->parent);
    auto found = std::find(siblings.begin(), siblings.end(), item);
    return found + 1 != siblings.end() ? *(found + 1) : nullptr;
}

HTREEITEM STreeItems::GetPreviousSibling(HTREEITEM item) const {
    if (!Contains(item)) {
        return nullptr;
    }
    const std::vector<HTREEITEM>& siblings = GetChildren(item->parent);
    auto found = std::find(siblings.begin(), siblings.end(), item);
    return found != siblings.begin() ? *(found - 1) : nullptr;
}

int STreeItems::GetLevel(HTREEITEM item) const {
    int level = 0;
    for (HTREEITEM up = item != nullptr ? item->parent : nullptr; up != nullptr; up = up->parent) {
        ++level;
    }
    return level;
}

void STreeItems::CollectVisible(std::vector<HTREEITEM>& visible, std::vector<int>* levels) const {
    visible.clear();
    if (levels != nullptr) {
        levels->clear();
    }
    // A stack of (item, level), pushed in reverse so that items come out in
    // drawing order.
    std::vector<std::pair<HTREEITEM, int>> pending;
    for (auto it = roots.rbegin(); it != roots.rend(); ++it) {
        pending.emplace_back(*it, 0);
    }
    while (!pending.empty()) {
        auto [item, level] = pending.back();
        pending.pop_back();
        visible.push_back(item);
        if (levels != nullptr) {
            levels->push_back(level);
        }
        if (item->expanded) {
            for (auto it = item->children.rbegin(); it != item->children.rend(); ++it) {
                pending.emplace_back(*it, level + 1);
            }
        }
    }
}

bool STreeItems::Load(SFile* file, bool withAttributes) {
    Clear();
    if (file == nullptr || !file->IsOpen() || file->ReadLine(true) != TREE_MAGIC) {
        return false;
    }
    // Two parallel stacks: the depth read, and the parent at that depth.
    std::vector<int> depths{0};
    std::vector<HTREEITEM> parents{nullptr};
    HTREEITEM previous = nullptr;
    while (!file->IsEnd()) {
        SString line = file->ReadLine(true);
        if (line.IsEmpty()) {
            continue;
        }
        if (line == ".") {
            break;
        }
        int depth = 0;
        while (depth < line.GetLength() && line.GetAt(depth) == '\t') {
            ++depth;
        }
        SString text = line.Mid(depth);
        intptr_t data = 0;
        int fields[4] = {-1, -1, 0, 0}; // image, selected image, expanded, checked
        int plus = withAttributes ? text.ReverseFind('+') : -1;
        if (plus >= 0) {
            SStringArray parts;
            SStringParser(text.Mid(plus + 1).c_str()).Parse(",", 0, '"', &parts);
            text = text.Left(plus);
            if (parts.GetCount() > 0) {
                data = static_cast<intptr_t>(atoll(parts.GetText(0).c_str()));
            }
            for (int i = 0; i < 4 && i + 1 < parts.GetCount(); ++i) {
                fields[i] = atoi(parts.GetText(i + 1).c_str());
            }
        }
        if (depth > depths.back()) {
            depths.push_back(depth);
            parents.push_back(previous);
        } else {
            while (depths.size() > 1 && depths.back() > depth) {
                depths.pop_back();
                parents.pop_back();
            }
        }
        HTREEITEM item =
            AddItem(text.c_str(), fields[0], fields[1], parents.back(), TVI_LAST, data);
        item->expanded = fields[2] != 0;
        item->checked = fields[3] != 0;
        previous = item;
    }
    return true;
}

bool STreeItems::Save(SFile* file, bool withAttributes) const {
    if (file == nullptr) {
        return false;
    }
    bool complete = file->WriteLine(TREE_MAGIC) == static_cast<int>(strlen(TREE_MAGIC)) + 2;
    // Every item, expanded or not, in drawing order.
    std::vector<std::pair<HTREEITEM, int>> pending;
    for (auto it = roots.rbegin(); it != roots.rend(); ++it) {
        pending.emplace_back(*it, 0);
    }
    while (complete && !pending.empty()) {
        auto [item, level] = pending.back();
        pending.pop_back();
        if (!CanStandInALine(*item, level, withAttributes)) {
            return false;
        }
        SString line;
        for (int i = 0; i < level; ++i) {
            line += '\t';
        }
        line += item->text;
        if (withAttributes) {
            line += AttributeText(*item);
        }
        // Every byte of the line, a zero byte included, then CR LF.
        complete = file->WriteText(line.c_str(), line.GetLength()) == line.GetLength() &&
                   file->WriteBytes("\r\n", 2) == 2;
        for (auto it = item->children.rbegin(); it != item->children.rend(); ++it) {
            pending.emplace_back(*it, level + 1);
        }
    }
    return complete;
}
