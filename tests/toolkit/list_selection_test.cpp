// SListSelection: the press table in every mode and modifier state, with
// the anchor before and after the row pressed, and the keyboard moves.
#include "toolkit/list_selection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Rows = std::vector<int>;
constexpr unsigned SHIFT = SListSelection::SHIFT;
constexpr unsigned CTRL = SListSelection::CTRL;

// Ten rows; rows 2, 3 and anchorRow selected, the anchor and the current
// row on anchorRow.
SListSelection Prepared(LIST_SELECTION mode, int anchorRow) {
    SListSelection selection(mode);
    selection.SetRowCount(10);
    selection.Press(anchorRow, 0, false);
    selection.Press(2, CTRL, false);
    selection.Press(3, CTRL, false);
    selection.Press(anchorRow, CTRL, false);
    selection.Press(anchorRow, CTRL, false); // toggled off and on: the anchor moves back
    return selection;
}

TEST(ListSelection, PressesInMultipleAndExtendedModes) {
    struct Case {
        const char* name;
        int anchor;
        int row;
        unsigned modifiers;
        bool right;
        Rows selected;
        bool changed;
    };
    const Case cases[] = {
        {"shift, anchor before", 5, 8, SHIFT, false, {5, 6, 7, 8}, true},
        {"shift, anchor after", 8, 5, SHIFT, false, {5, 6, 7, 8}, true},
        {"ctrl toggles on", 5, 7, CTRL, false, {2, 3, 5, 7}, true},
        {"ctrl toggles off", 5, 2, CTRL, false, {3, 5}, true},
        {"both keeps the rest, anchor before", 5, 7, SHIFT | CTRL, false, {2, 3, 5, 6, 7}, true},
        {"both keeps the rest, anchor after", 7, 5, SHIFT | CTRL, false, {2, 3, 5, 6, 7}, true},
        {"plain press selects only the row", 5, 9, 0, false, {9}, true},
        {"right press on a selected row keeps all", 5, 3, 0, true, {2, 3, 5}, false},
        {"right press elsewhere selects only it", 5, 8, 0, true, {8}, true},
    };
    for (LIST_SELECTION mode : {LIST_SELECTION_MULTIPLE, LIST_SELECTION_EXTENDED}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.name) + (mode == LIST_SELECTION_MULTIPLE ? " (multiple)"
                                                                                 : " (extended)"));
            SListSelection selection = Prepared(mode, c.anchor);
            ASSERT_EQ(selection.GetSelectedRows(), (Rows{2, 3, c.anchor}));
            EXPECT_EQ(selection.Press(c.row, c.modifiers, c.right), c.changed);
            EXPECT_EQ(selection.GetSelectedRows(), c.selected);
            EXPECT_EQ(selection.GetSelectedCount(), static_cast<int>(c.selected.size()));
            EXPECT_EQ(selection.GetCurrent(), c.row);
        }
    }
}

TEST(ListSelection, ShiftWithoutAnAnchorAndPressesOnNoRow) {
    SListSelection selection(LIST_SELECTION_EXTENDED);
    selection.SetRowCount(5);
    EXPECT_TRUE(selection.Press(3, SHIFT, false)); // no anchor yet: only the row
    EXPECT_EQ(selection.GetSelectedRows(), (Rows{3}));
    EXPECT_EQ(selection.GetAnchor(), 3);
    EXPECT_TRUE(selection.Press(1, SHIFT, false));
    EXPECT_EQ(selection.GetSelectedRows(), (Rows{1, 2, 3}));
    EXPECT_FALSE(selection.Press(1, SHIFT, false)); // the same rows again: no change
    EXPECT_FALSE(selection.Press(-1, 0, false));
    EXPECT_EQ(selection.GetCurrent(), -1);
    EXPECT_EQ(selection.GetSelectedRows(), (Rows{1, 2, 3}));
    EXPECT_FALSE(selection.Press(-1, CTRL, false)); // ctrl on no row: nothing
    EXPECT_TRUE(selection.Press(4, SHIFT, false)); // no current row: only the row
    EXPECT_EQ(selection.GetSelectedRows(), (Rows{4}));
}

TEST(ListSelection, SingleAndNoneModes) {
    SListSelection single(LIST_SELECTION_SINGLE);
    single.SetRowCount(5);
    for (unsigned modifiers : {0u, SHIFT, CTRL, SHIFT | CTRL}) {
        single.Press(1, 0, false);
        EXPECT_TRUE(single.Press(4, modifiers, false)) << modifiers;
        EXPECT_EQ(single.GetSelectedRows(), (Rows{4})) << modifiers;
        EXPECT_EQ(single.GetSelectedCount(), 1) << "the count agrees with the rows";
    }
    EXPECT_FALSE(single.Press(4, 0, false));
    EXPECT_TRUE(single.Press(-1, 0, false));
    EXPECT_TRUE(single.GetSelectedRows().empty());
    EXPECT_EQ(single.GetSelectedCount(), 0);

    SListSelection none(LIST_SELECTION_NONE);
    none.SetRowCount(5);
    EXPECT_FALSE(none.Press(2, 0, false));
    EXPECT_FALSE(none.Press(3, SHIFT, false));
    EXPECT_EQ(none.GetSelectedCount(), 0);
    EXPECT_EQ(none.GetCurrent(), 3);
}

TEST(ListSelection, KeysMoveAndExtendFromTheAnchor) {
    SListSelection selection(LIST_SELECTION_EXTENDED);
    selection.SetRowCount(100000);
    EXPECT_TRUE(selection.MoveTo(10, 0));
    EXPECT_TRUE(selection.MoveTo(99999, SHIFT)); // End with Shift
    EXPECT_EQ(selection.GetSelectedCount(), 99990);
    EXPECT_TRUE(selection.MoveTo(5, SHIFT)); // back past the anchor
    EXPECT_EQ(selection.GetSelectedRows(), (Rows{5, 6, 7, 8, 9, 10}));
    EXPECT_FALSE(selection.MoveTo(20, CTRL)); // ctrl moves the current row only
    EXPECT_EQ(selection.GetCurrent(), 20);
    EXPECT_TRUE(selection.ToggleCurrent());
    EXPECT_EQ(selection.GetSelectedCount(), 7);
    EXPECT_FALSE(selection.MoveTo(100000, 0)); // past the end
}

TEST(ListSelection, InsertAndRemoveKeepTheSameRows) {
    SListSelection selection(LIST_SELECTION_MULTIPLE);
    selection.SetRowCount(6);
    selection.Press(2, 0, false);
    selection.Press(4, CTRL, false);
    selection.InsertRows(0, 2);
    EXPECT_EQ(selection.GetSelectedRows(), (Rows{4, 6}));
    EXPECT_EQ(selection.GetCurrent(), 6);
    selection.RemoveRow(6);
    EXPECT_EQ(selection.GetSelectedRows(), (Rows{4}));
    EXPECT_EQ(selection.GetCurrent(), -1);
    EXPECT_EQ(selection.GetAnchor(), -1);
    selection.RemoveRow(0);
    EXPECT_EQ(selection.GetSelectedRows(), (Rows{3}));
    EXPECT_EQ(selection.GetRowCount(), 6);
}

} // namespace
