// STreeCtrl: a tree of items (STreeItems) drawn by the toolkit: expander
// triangles, indentation by level, images, check boxes (TVS_CHECKBOXES),
// the selected row and the focus. It expands and collapses by a click on
// the triangle, a double click, or Left/Right/+/-/*; moves the selection
// with Up/Down/Home/End/Page Up/Page Down and by typing the start of a
// label; edits a label in place with F2 (Enter keeps, Escape drops); and,
// with drag and drop on, moves an item and its subtree onto another by
// dragging it with the left button.
//
// The parent hears of keys (SN_TREE_KEY, the key code), mouse use
// (SN_TREE_MOUSE, the mouse record), a changed check (SN_TREE_CHECK, the
// item) and an edited label (SN_TREE_LABEL, the item).
#pragma once

#include <map>
#include <string>
#include <vector>

#include "foundation/image.h"
#include "toolkit/ctrl_common.h"
#include "toolkit/tree_items.h"

class SFile;

// The style bit that gives every item a check box.
constexpr unsigned TVS_CHECKBOXES = 0x100;

// Hit flags of HitTest.
constexpr unsigned TVHT_NOWHERE = 1;
constexpr unsigned TVHT_ONITEMICON = 2;
constexpr unsigned TVHT_ONITEMLABEL = 4;
constexpr unsigned TVHT_ONITEMINDENT = 8;
constexpr unsigned TVHT_ONITEMBUTTON = 0x10;
constexpr unsigned TVHT_ONITEMRIGHT = 0x20;
constexpr unsigned TVHT_ONITEMSTATEICON = 0x40;

// Expand codes.
constexpr unsigned TVE_COLLAPSE = 1;
constexpr unsigned TVE_EXPAND = 2;
constexpr unsigned TVE_TOGGLE = 3;

class STreeCtrl : public SCtrlBase {
public:
    STreeCtrl();
    ~STreeCtrl() override;

    HTREEITEM AddItem(const char* text, int image = -1, int selectedImage = -1,
                      HTREEITEM parent = nullptr, HTREEITEM insertAfter = STreeItems::TVI_LAST,
                      intptr_t data = 0);
    bool RemoveItem(HTREEITEM item);
    void Clear();
    int GetCount() const { return items.GetCount(); }
    const STreeItems& GetItems() const { return items; }
    // The item at a point (client coordinates) with TVHT_* flags; null
    // off every row.
    HTREEITEM HitTest(SPoint point, unsigned* flags = nullptr) const;
    bool Expand(HTREEITEM item, unsigned code);
    SString GetItemText(HTREEITEM item) const;
    bool SetItemText(HTREEITEM item, const char* text);
    intptr_t GetItemData(HTREEITEM item) const;
    bool SetItemData(HTREEITEM item, intptr_t data);
    bool GetCheck(HTREEITEM item) const;
    bool SetCheck(HTREEITEM item, bool check);
    HTREEITEM GetSelection() const { return selected; }
    bool SelectItem(HTREEITEM item);
    // Scrolls so that item's row shows, expanding its parents.
    void EnsureVisible(HTREEITEM item);

    // The tree definition (see tree_items.h).
    bool Load(SFile* file, bool withAttributes);
    bool Save(SFile* file, bool withAttributes) const { return items.Save(file, withAttributes); }
    // An item for the file or folder at path, named by its last part, with
    // the icon of its kind: a known extension (or folder path) reuses the
    // image it got before.
    HTREEITEM AddFileItem(const char* path, HTREEITEM parent = nullptr);

    // Images by index, 16 by 16 pixels; returns the new index.
    int AddImage(const SImage& image);
    int GetImageCount() const { return static_cast<int>(images.size()); }

    // Drag and drop inside the tree.
    void SetDragDrop(bool on) { dragDrop = on; }
    bool GetDragDrop() const { return dragDrop; }
    // Moves item and its subtree under target (null: the top); false onto
    // itself or its own subtree.
    bool MoveItem(HTREEITEM item, HTREEITEM target);

    // Label editing.
    bool EditLabel(HTREEITEM item);
    bool IsEditing() const { return editing != nullptr; }
    const SString& GetEditText() const { return editText; }
    int GetEditCaret() const { return editCaret; }
    // Ends the editing, keeping the text when keep; false when none ran.
    bool EndEdit(bool keep);

    int GetRowHeight() const { return rowHeight; }
    int GetTopRow() const { return topRow; }
    // A check changed by the user; after it the parent hears SN_TREE_CHECK.
    virtual void OnCheckChanged(HTREEITEM /*item*/, bool /*checked*/) {}

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(cairo_t* cr) override;
    bool FocusOnRightPress() const override { return true; }

private:
    struct Row {
        HTREEITEM item;
        int level;
    };
    const std::vector<Row>& Rows() const;
    void Changed(); // the rows to rebuild, and a repaint
    int RowOf(HTREEITEM item) const;
    int VisibleRows() const;
    void ScrollTo(int row);
    // The left edges of a row's parts.
    int ExpanderLeft(int level) const { return 2 + level * INDENT; }
    int CheckLeft(int level) const { return ExpanderLeft(level) + INDENT; }
    int ImageLeft(int level) const;
    int LabelLeft(HTREEITEM item, int level) const;
    SRect LabelRect(int row) const;
    void InvalidateRow(int row);
    void ToggleCheck(HTREEITEM item);
    bool HandleKey(unsigned key);
    void TypeAhead(unsigned character);
    bool EditKey(unsigned key);
    void EditChar(unsigned character);
    // start: the press, in client coordinates.
    void DragLoop(HTREEITEM item, SPoint start);
    HTREEITEM DropTargetAt(SPoint screen, bool* allowed) const;

    static constexpr int INDENT = 16;

    STreeItems items;
    HTREEITEM selected = nullptr;
    HTREEITEM hot = nullptr;
    int topRow = 0;
    int rowHeight = 20;
    mutable std::vector<Row> rows;
    mutable bool rowsValid = false;
    std::vector<SImage> images;
    std::map<std::string, int> fileImages;
    bool dragDrop = false;
    HTREEITEM dragItem = nullptr;
    HTREEITEM dropTarget = nullptr;
    SPoint dragPoint;
    HTREEITEM editing = nullptr;
    SString editText;
    int editCaret = 0;
    SString typed;
    uint64_t typedTime = 0;
};
