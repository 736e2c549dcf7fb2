// STreeItems: the items of a tree control (text, images, data word,
// expanded and checked flags, parent and ordered children) and the tree
// definition file that fills it. The tree control draws and edits these;
// everything here works without a window.
//
// The tree definition: lines ended by CR LF, the first exactly
// "TAVORA TREE 1.0.0.0", then one item a line. An empty line is skipped and
// a line that is a single "." ends the file. The leading tabs give the
// depth; the text follows them. Read with attributes, the last "+" of the
// line ends the text and what follows is split at ",": data, image,
// selected image, expanded flag, checked flag, any trailing ones missing
// (defaults 0, -1, -1, off, off). A depth may jump by more than one; the
// jump makes one level, and later lines are placed against the real depth
// that was read.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "foundation/string.h"

class SFile;

// One item. The tree owns every record; pointers stay valid until the item
// or the tree goes.
struct _TREEITEM {
    SString text;
    int image = -1;
    int selectedImage = -1;
    intptr_t data = 0;
    bool expanded = false;
    bool checked = false;
    _TREEITEM* parent = nullptr;
    std::vector<_TREEITEM*> children;
    size_t slot = 0; // its place in the owner's list
};
using HTREEITEM = _TREEITEM*;

class STreeItems {
public:
    // Places for AddItem's insertAfter besides an existing sibling.
    static const HTREEITEM TVI_FIRST;
    static const HTREEITEM TVI_LAST;

    STreeItems() = default;
    STreeItems(const STreeItems&) = delete;
    STreeItems& operator=(const STreeItems&) = delete;
    ~STreeItems();

    // Adds an item under parent (null: at the top), after insertAfter (a
    // child of parent, TVI_FIRST or TVI_LAST; anything else means last).
    HTREEITEM AddItem(const char* text, int image, int selectedImage, HTREEITEM parent,
                      HTREEITEM insertAfter, intptr_t data);
    // Removes the item and everything below it; false for an item not in
    // this tree.
    bool RemoveItem(HTREEITEM item);
    void Clear();
    // Moves the item with everything below it to the end of newParent's
    // children (null: the top). False, and nothing moves, for an item not
    // in this tree, or a new parent that is the item or below it.
    bool MoveItem(HTREEITEM item, HTREEITEM newParent);
    // True when item is ancestor or lies below it.
    bool IsWithin(HTREEITEM item, HTREEITEM ancestor) const;
    int GetCount() const { return static_cast<int>(items.size()); }
    // True for an item of this tree (also for a pointer to a removed one:
    // it is only compared, never read).
    bool Contains(HTREEITEM item) const { return slots.count(item) != 0; }

    // Walking. Null ends each walk.
    const std::vector<HTREEITEM>& GetRoots() const { return roots; }
    const std::vector<HTREEITEM>& GetChildren(HTREEITEM parent) const;
    HTREEITEM GetNextSibling(HTREEITEM item) const;
    HTREEITEM GetPreviousSibling(HTREEITEM item) const;
    // Levels above the item: 0 for a top item.
    int GetLevel(HTREEITEM item) const;
    // The items a person sees: top items and the children of expanded
    // items, in drawing order, with their levels.
    void CollectVisible(std::vector<HTREEITEM>& visible, std::vector<int>* levels = nullptr) const;

    // The tree definition. Load clears first and gives false only when the
    // magic is wrong (or there is no file); a line with a broken attribute
    // list is still added.
    bool Load(SFile* file, bool withAttributes);
    // Writes every item in drawing order, expanded or not, so that Load
    // gives the same tree back. False, with what was written so far, when an
    // item's text cannot stand in the file form (a line end, a leading tab,
    // or without attributes an empty text or "." at the top) or the file
    // took less than was written.
    bool Save(SFile* file, bool withAttributes) const;

private:
    std::vector<HTREEITEM>& SiblingsOf(HTREEITEM parent);
    void Release(HTREEITEM item);

    std::vector<std::unique_ptr<_TREEITEM>> items;  // every record, in no order
    std::unordered_map<HTREEITEM, size_t> slots;    // each record's place in items
    std::vector<HTREEITEM> roots;
};
