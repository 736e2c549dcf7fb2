// STreeCtrl on the headless platform: expanding and moving by keys and
// clicks, check boxes and their notification, dragging an item with its
// subtree (and the refusal onto its own subtree), label editing, file items.
#include "toolkit/tree_ctrl.h"

#include <string>
#include <vector>

#include "foundation/file.h"
#include "foundation/keyboard.h"
#include "toolkit/notification.h"
#include "toolkit_fixture.h"

namespace {

class CheckTree : public STreeCtrl {
public:
    void OnCheckChanged(HTREEITEM item, bool checked) override {
        changes.emplace_back(item, checked);
    }
    std::vector<std::pair<HTREEITEM, bool>> changes;
};

class TreeTest : public ToolkitTest {
protected:
    void Build(unsigned style = WS_VISIBLE) {
        ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 400)));
        ASSERT_TRUE(Make(tree, "tree", Rect(0, 0, 300, 400), top.GetHandle(), style));
        a = tree.AddItem("Alpha");
        a1 = tree.AddItem("Apple", -1, -1, a);
        a2 = tree.AddItem("Apricot", -1, -1, a);
        a21 = tree.AddItem("Avocado", -1, -1, a2);
        b = tree.AddItem("Beta");
        c = tree.AddItem("Cherry");
        SetFocus(tree.GetHandle());
    }
    // The middle of a part of the row that shows item.
    SPoint At(HTREEITEM item, int x) {
        std::vector<HTREEITEM> visible;
        tree.GetItems().CollectVisible(visible);
        int row = 0;
        while (row < static_cast<int>(visible.size()) && visible[row] != item) {
            ++row;
        }
        return SPoint{x, (row - tree.GetTopRow()) * tree.GetRowHeight() + tree.GetRowHeight() / 2};
    }
    int Level(HTREEITEM item) { return tree.GetItems().GetLevel(item); }
    SPoint Expander(HTREEITEM item) { return At(item, 2 + Level(item) * 16 + 8); }
    SPoint CheckBox(HTREEITEM item) { return At(item, 2 + Level(item) * 16 + 16 + 8); }
    SPoint Label(HTREEITEM item) {
        int left = 2 + Level(item) * 16 + 16 + ((tree.GetStyle() & TVS_CHECKBOXES) ? 18 : 0);
        return At(item, left + 6);
    }
    void Key(unsigned code, unsigned modifiers = 0) {
        platform->Key(top.GetHandle(), code, modifiers);
    }
    void Type(const char* text) {
        for (const char* p = text; *p != 0; ++p) {
            PlatformKey(top.GetHandle(), WM_CHAR, static_cast<unsigned char>(*p));
        }
        SHeadlessPlatform::DispatchPending();
    }
    int VisibleCount() {
        std::vector<HTREEITEM> visible;
        tree.GetItems().CollectVisible(visible);
        return static_cast<int>(visible.size());
    }
    std::vector<RecordingWnd::Entry> Notes(unsigned message) {
        std::vector<RecordingWnd::Entry> found;
        for (const auto& entry : top.ownLog) {
            if (entry.message == message) {
                found.push_back(entry);
            }
        }
        return found;
    }

    RecordingWnd top;
    CheckTree tree;
    HTREEITEM a = nullptr, a1 = nullptr, a2 = nullptr, a21 = nullptr, b = nullptr, c = nullptr;
};

TEST_F(TreeTest, KeysMoveExpandAndCollapse) {
    Build();
    tree.SelectItem(a);
    struct Step {
        unsigned key;
        const char* selected;
        int visible;
    };
    const Step steps[] = {
        {ctrlkey::RIGHT, "Alpha", 5},                                       // opens
        {ctrlkey::RIGHT, "Apple", 5},                                       // into the first child
        {ctrlkey::DOWN, "Apricot", 5},   {ctrlkey::MULTIPLY, "Apricot", 6}, // the whole branch
        {ctrlkey::END, "Cherry", 6},     {ctrlkey::UP, "Beta", 6},
        {ctrlkey::HOME, "Alpha", 6},     {ctrlkey::NEXT, "Cherry", 6}, // a page holds every row
        {ctrlkey::PRIOR, "Alpha", 6},    {ctrlkey::DOWN, "Apple", 6},
        {ctrlkey::LEFT, "Alpha", 6},                                // to the parent
        {ctrlkey::LEFT, "Alpha", 3},                                // closes
        {ctrlkey::ADD, "Alpha", 6},                                 // Apricot stayed open
        {ctrlkey::SUBTRACT, "Alpha", 3}, {ctrlkey::UP, "Alpha", 3}, // stays at the top
    };
    for (const Step& step : steps) {
        Key(step.key);
        ASSERT_NE(tree.GetSelection(), nullptr);
        EXPECT_STREQ(tree.GetSelection()->text.c_str(), step.selected) << "key " << step.key;
        EXPECT_EQ(VisibleCount(), step.visible) << "key " << step.key;
    }
    // Every key also reaches the parent.
    EXPECT_EQ(Notes(SN_TREE_KEY).size(), std::size(steps));
}

TEST_F(TreeTest, TypingFindsItemsByTheStartOfTheirText) {
    Build();
    tree.SelectItem(a);
    Type("ch");
    EXPECT_EQ(tree.GetSelection(), c);
    SHeadlessPlatform::UseFakeClock(true);
    SHeadlessPlatform::AdvanceClock(2000);
    Type("b");
    EXPECT_EQ(tree.GetSelection(), b) << "a pause starts a new search";
    SHeadlessPlatform::AdvanceClock(2000);
    Type("zz");
    EXPECT_EQ(tree.GetSelection(), b) << "no match leaves the selection";
}

TEST_F(TreeTest, ClicksOnTheTriangleAndDoubleClicksToggleTheBranch) {
    Build();
    SPoint point = Expander(a);
    platform->Click(top.GetHandle(), point.x, point.y);
    EXPECT_TRUE(a->expanded);
    EXPECT_EQ(tree.GetSelection(), nullptr) << "the triangle does not select";
    point = Expander(a);
    platform->Click(top.GetHandle(), point.x, point.y);
    EXPECT_FALSE(a->expanded);
    point = Label(b);
    platform->Click(top.GetHandle(), point.x, point.y);
    EXPECT_EQ(tree.GetSelection(), b);
    EXPECT_EQ(GetFocus(), tree.GetHandle());
    // The parent hears of each press, release and click; the second press
    // on the triangle came soon enough to be a double click, which has no
    // click of its own.
    EXPECT_EQ(Notes(SN_TREE_MOUSE).size(), 8u);
    // A right press selects the item under the pointer.
    point = Label(c);
    platform->Press(top.GetHandle(), point.x, point.y, WM_RBUTTONDOWN);
    platform->Release(top.GetHandle(), point.x, point.y, WM_RBUTTONUP);
    EXPECT_EQ(tree.GetSelection(), c);
}

TEST_F(TreeTest, CheckBoxesToggleByTheirAreaAndSpaceAndTellTheParent) {
    Build(WS_VISIBLE | TVS_CHECKBOXES);
    SPoint box = CheckBox(b);
    platform->Click(top.GetHandle(), box.x, box.y);
    EXPECT_TRUE(tree.GetCheck(b));
    ASSERT_EQ(tree.changes.size(), 1u);
    EXPECT_EQ(tree.changes[0], std::make_pair(b, true));
    auto notes = Notes(SN_TREE_CHECK);
    ASSERT_EQ(notes.size(), 1u);
    SNotification note(notes[0].message, notes[0].wParam, notes[0].lParam);
    EXPECT_TRUE(note.From(&tree));
    EXPECT_EQ(note.Item(), reinterpret_cast<uintptr_t>(b));

    SPoint label = Label(b);
    platform->Click(top.GetHandle(), label.x, label.y);
    EXPECT_TRUE(tree.GetCheck(b)) << "a click on the label leaves the check";
    Key(ctrlkey::SPACE);
    EXPECT_FALSE(tree.GetCheck(b));
    EXPECT_EQ(Notes(SN_TREE_CHECK).size(), 2u);
    EXPECT_EQ(tree.changes.back(), std::make_pair(b, false));
}

TEST_F(TreeTest, DraggingMovesTheSubtreeButNeverIntoItself) {
    Build();
    tree.SetDragDrop(true);
    tree.Expand(a, TVE_EXPAND);
    tree.Expand(a2, TVE_EXPAND);
    struct Case {
        HTREEITEM* item;
        HTREEITEM* target;
        bool moves;
    };
    const Case cases[] = {
        {&a2, &a2, false}, // onto itself
        {&a, &a21, false}, // into its own subtree
        {&a2, &c, true},   // Apricot with Avocado under Cherry
        {&b, &a21, true},
    };
    for (const Case& test : cases) {
        HTREEITEM item = *test.item;
        HTREEITEM oldParent = item->parent;
        SPoint from = Label(item);
        SPoint to = Label(*test.target);
        HWND handle = top.GetHandle();
        PlatformMouse(handle, WM_LBUTTONDOWN, from.x, from.y, MK_LBUTTON);
        PlatformMouse(handle, WM_MOUSEMOVE, from.x, from.y + 3, MK_LBUTTON);
        PlatformMouse(handle, WM_MOUSEMOVE, to.x, to.y, MK_LBUTTON);
        PlatformMouse(handle, WM_LBUTTONUP, to.x, to.y, 0);
        SHeadlessPlatform::DispatchPending();
        EXPECT_EQ(GetCapture(), 0u);
        if (test.moves) {
            EXPECT_EQ(item->parent, *test.target) << item->text.c_str();
            EXPECT_TRUE((*test.target)->expanded);
        } else {
            EXPECT_EQ(item->parent, oldParent) << item->text.c_str();
        }
    }
    // A plain click on a label selects, and the release still makes a click.
    size_t before = Notes(SN_TREE_MOUSE).size();
    SPoint point = Label(c);
    platform->Click(top.GetHandle(), point.x, point.y);
    EXPECT_EQ(tree.GetSelection(), c);
    EXPECT_EQ(Notes(SN_TREE_MOUSE).size(), before + 3);
    EXPECT_EQ(GetCapture(), 0u);
    ASSERT_EQ(a2->children.size(), 1u) << "the subtree went along";
    EXPECT_EQ(a2->children[0], a21);
    EXPECT_EQ(tree.GetCount(), 6);
}

TEST_F(TreeTest, F2EditsTheLabelEnterKeepsEscapeDrops) {
    Build();
    tree.SelectItem(b);
    Key(ctrlkey::F2);
    ASSERT_TRUE(tree.IsEditing());
    EXPECT_EQ(tree.GetEditCaret(), 4);
    Key(VK_BACK);
    Type("ta2");
    Key(ctrlkey::HOME);
    Key(VK_DELETE);
    Type("Z");
    Key(ctrlkey::LEFT);
    Key(ctrlkey::RIGHT);
    EXPECT_STREQ(tree.GetEditText().c_str(), "Zetta2");
    EXPECT_STREQ(b->text.c_str(), "Beta") << "nothing changes before Enter";
    Key(VK_RETURN);
    EXPECT_FALSE(tree.IsEditing());
    EXPECT_STREQ(b->text.c_str(), "Zetta2");
    ASSERT_EQ(Notes(SN_TREE_LABEL).size(), 1u);

    Key(ctrlkey::F2);
    Type("xyz");
    Key(VK_ESCAPE);
    EXPECT_FALSE(tree.IsEditing());
    EXPECT_STREQ(b->text.c_str(), "Zetta2");
    EXPECT_EQ(Notes(SN_TREE_LABEL).size(), 1u);
    // Keys while editing stay in the editor: Down does not move the selection.
    Key(ctrlkey::F2);
    Key(ctrlkey::DOWN);
    EXPECT_EQ(tree.GetSelection(), b);
    tree.RemoveItem(b);
    EXPECT_FALSE(tree.IsEditing()) << "removing the item ends its editing";
}

TEST_F(TreeTest, ADisabledTreeTakesNoInput) {
    Build();
    tree.SelectItem(a);
    tree.Enable(false);
    SendMessage(tree.GetHandle(), WM_KEYDOWN, ctrlkey::RIGHT, 0);
    SendMessage(tree.GetHandle(), WM_KEYDOWN, ctrlkey::F2, 0);
    SendMessage(tree.GetHandle(), WM_CHAR, 'b', 0);
    SPoint point = Expander(a);
    SendMessage(tree.GetHandle(), WM_LBUTTONDOWN, MK_LBUTTON, MakePointParam(point.x, point.y));
    EXPECT_FALSE(a->expanded);
    EXPECT_FALSE(tree.IsEditing());
    EXPECT_EQ(tree.GetSelection(), a);
}

TEST_F(TreeTest, FileItemsShareTheImageOfTheirKind) {
    Build();
    std::string folder = ::testing::TempDir();
    HTREEITEM first = tree.AddFileItem("/music/one.mp3");
    HTREEITEM second = tree.AddFileItem("/music/TWO.MP3");
    HTREEITEM text = tree.AddFileItem("/music/notes.txt");
    HTREEITEM dir = tree.AddFileItem(folder.c_str());
    ASSERT_NE(first, nullptr);
    EXPECT_STREQ(first->text.c_str(), "one.mp3");
    EXPECT_GE(first->image, 0);
    EXPECT_EQ(second->image, first->image);
    EXPECT_NE(text->image, first->image);
    EXPECT_NE(dir->image, text->image);
    EXPECT_FALSE(dir->text.IsEmpty());
    EXPECT_EQ(tree.GetImageCount(), 3);
    EXPECT_EQ(tree.AddFileItem(""), nullptr);
}

TEST_F(TreeTest, LoadReplacesTheItemsAndTheSelection) {
    Build();
    tree.SelectItem(b);
    SFileMem file;
    const char text[] = "TAVORA TREE 1.0.0.0\r\nOne+5,-1,-1,1\r\n\tTwo\r\n";
    file.Write(text, sizeof(text) - 1);
    file.Rewind();
    ASSERT_TRUE(tree.Load(&file, true));
    EXPECT_EQ(tree.GetCount(), 2);
    EXPECT_EQ(tree.GetSelection(), nullptr);
    EXPECT_EQ(VisibleCount(), 2) << "the expanded flag was read";
}

} // namespace

namespace {

TEST_F(TreeTest, KeysAndTheWheelScrollALongTreeToKeepTheSelectionInView) {
    ASSERT_TRUE(Make(top, "top", Rect(0, 0, 300, 400)));
    ASSERT_TRUE(Make(tree, "tree", Rect(0, 0, 200, 60), top.GetHandle()));
    std::vector<HTREEITEM> all;
    for (int i = 0; i < 20; ++i) {
        all.push_back(tree.AddItem(("Item " + std::to_string(i)).c_str()));
    }
    int page = 60 / tree.GetRowHeight();
    ASSERT_GE(page, 2);
    SetFocus(tree.GetHandle());
    Key(ctrlkey::END);
    EXPECT_EQ(tree.GetSelection(), all[19]);
    EXPECT_EQ(tree.GetTopRow(), 20 - page);
    Key(ctrlkey::PRIOR);
    EXPECT_EQ(tree.GetSelection(), all[19 - (page - 1)]);
    Key(ctrlkey::HOME);
    EXPECT_EQ(tree.GetTopRow(), 0);
    platform->Wheel(top.GetHandle(), 50, 20, -WHEEL_DELTA);
    EXPECT_EQ(tree.GetTopRow(), 3) << "a notch is three rows";
    platform->Wheel(top.GetHandle(), 50, 20, 10 * WHEEL_DELTA);
    EXPECT_EQ(tree.GetTopRow(), 0);
    platform->Wheel(top.GetHandle(), 50, 20, -30);
    EXPECT_EQ(tree.GetTopRow(), 1) << "a touchpad's small step still moves";
}

} // namespace
