// The list controls on the headless platform: keys and presses to
// notifications, the selection by presses, virtual scrolling, the list
// view's header, and the combo box's drop-down by keys and presses.
#include <string>

#include "foundation/keyboard.h"
#include "toolkit/combo_ctrl.h"
#include "toolkit/ex_list_ctrl.h"
#include "toolkit/list_ctrl.h"
#include "toolkit/notification.h"
#include "toolkit_fixture.h"

namespace {

constexpr unsigned KEY_SPACE = 32;
constexpr unsigned KEY_PAGE_UP = 33;
constexpr unsigned KEY_PAGE_DOWN = 34;
constexpr unsigned KEY_END = 35;
constexpr unsigned KEY_HOME = 36;
constexpr unsigned KEY_UP = 38;
constexpr unsigned KEY_DOWN = 40;
constexpr unsigned KEY_F4 = 0x73;
constexpr unsigned SHIFT = SKeyboard::MODIFIER_SHIFT;
constexpr unsigned CTRL = SKeyboard::MODIFIER_CTRL;

// A parent that keeps what each notification said, read with SNotification
// while it is handled (a mouse record lives only that long).
class NoteWnd : public SWnd {
public:
    struct Note {
        unsigned message;
        SWnd* control;
        int64_t code;
        unsigned mouseCode;
        SPoint client;
        SPoint screen;
    };
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        SNotification note(message, wParam, lParam);
        if (note.IsNotification()) {
            notes.push_back(Note{message, note.Control(), note.Code(), note.MouseCode(),
                                 note.Point(),
                                 note.Mouse() != nullptr ? note.Mouse()->screen : SPoint{}});
        } else if (message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN) {
            notes.push_back(Note{message, nullptr, 0, 0, SPoint{},
                                 SPoint{PointParamX(lParam), PointParamY(lParam)}});
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    int Count(unsigned message) const {
        int count = 0;
        for (const Note& note : notes) {
            count += note.message == message ? 1 : 0;
        }
        return count;
    }
    const Note* Last(unsigned message) const {
        for (auto it = notes.rbegin(); it != notes.rend(); ++it) {
            if (it->message == message) {
                return &*it;
            }
        }
        return nullptr;
    }
    std::vector<Note> notes;
};

// Counts the rows the item-draw override is asked for.
class CountingList : public SListCtrl {
public:
    void DrawItem(cairo_t* cr, int row, const SRect& rect, unsigned state) override {
        drawn.push_back(row);
        SListCtrl::DrawItem(cr, row, rect, state);
    }
    std::vector<int> drawn;
};

std::string RowName(int row) {
    char text[32];
    snprintf(text, sizeof text, "Row %06d", row);
    return text;
}

class ListCtrlTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        ASSERT_TRUE(Make(parent, "parent", Rect(100, 100, 420, 320)));
        // 100 pixels tall at 20 a row: five rows show.
        ASSERT_TRUE(list.Create(&parent, Rect(10, 10, 210, 110), 7, LIST_SELECTION_EXTENDED));
        list.SetRowHeight(20);
        std::vector<std::string> texts;
        for (int i = 0; i < 1000; ++i) {
            texts.push_back(RowName(i));
        }
        list.AddRows(texts);
        top = parent.GetHandle();
    }
    // A press at a point of the list's client area.
    void PressList(int x, int y, unsigned modifiers = 0, unsigned message = WM_LBUTTONDOWN) {
        platform->SetModifiers(modifiers);
        platform->Press(top, 10 + x, 10 + y, message);
        platform->Release(top, 10 + x, 10 + y,
                          message == WM_LBUTTONDOWN ? WM_LBUTTONUP : WM_RBUTTONUP);
        platform->SetModifiers(0);
        SHeadlessPlatform::AdvanceClock(1000); // no double clicks
    }
    NoteWnd parent;
    CountingList list;
    HWND top = 0;
};

TEST_F(ListCtrlTest, KeysMoveTheCurrentRowScrollItIntoViewAndTellTheParent) {
    SetFocus(list.GetHandle());
    struct Step {
        unsigned key;
        unsigned modifiers;
        int current;
        int selectedCount;
        int scrollOffset;
    };
    const Step steps[] = {
        {KEY_DOWN, 0, 0, 1, 0}, // no current row yet: the first
        {KEY_DOWN, 0, 1, 1, 0},
        {KEY_PAGE_DOWN, 0, 5, 1, 20}, // a page less one row, scrolled to show it
        {KEY_DOWN, SHIFT, 6, 2, 40},  // Shift extends from the anchor
        {KEY_UP, CTRL, 5, 2, 40},     // Ctrl moves the current row alone
        {KEY_SPACE, CTRL, 5, 1, 40},  // Space toggles it off
        {KEY_END, 0, 999, 1, 19900},  // 1000 rows of 20, less the 100 shown
        {KEY_PAGE_DOWN, 0, 999, 1, 19900},
        {KEY_HOME, 0, 0, 1, 0},
        {KEY_UP, 0, 0, 1, 0}, // stays at the top
        {KEY_PAGE_UP, SHIFT, 0, 1, 0},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.key);
        size_t before = parent.notes.size();
        platform->Key(top, step.key, step.modifiers);
        EXPECT_EQ(list.GetCurrentRow(), step.current);
        EXPECT_EQ(list.GetSelectedCount(), step.selectedCount);
        EXPECT_EQ(list.GetScrollOffset(), step.scrollOffset);
        ASSERT_GT(parent.notes.size(), before);
        const NoteWnd::Note& first = parent.notes[before];
        EXPECT_EQ(first.message, SN_LIST_KEY) << "the key is told before the list moves";
        EXPECT_EQ(first.code, static_cast<int64_t>(step.key));
        EXPECT_EQ(first.control, &list);
    }
    EXPECT_GE(parent.Count(SN_LIST_SELECT), 6);
}

TEST_F(ListCtrlTest, PressesSelectByTheModifiersAndReportTheMouseWithBothPoints) {
    struct Press {
        int row;
        unsigned modifiers;
        unsigned message;
        std::vector<int> selected;
        bool notified; // SN_LIST_SELECT
    };
    const Press presses[] = {
        {2, 0, WM_LBUTTONDOWN, {2}, true},
        {4, SHIFT, WM_LBUTTONDOWN, {2, 3, 4}, true},
        {0, SHIFT, WM_LBUTTONDOWN, {0, 1, 2}, true}, // the anchor stays at 2
        {4, CTRL, WM_LBUTTONDOWN, {0, 1, 2, 4}, true},
        {2, SHIFT | CTRL, WM_LBUTTONDOWN, {0, 1, 2, 3, 4}, true}, // from the new anchor 4
        {1, 0, WM_RBUTTONDOWN, {0, 1, 2, 3, 4}, false},           // a right press on a selected row
        {3, CTRL, WM_LBUTTONDOWN, {0, 1, 2, 4}, true},
        {1, 0, WM_LBUTTONDOWN, {1}, true},
        {1, 0, WM_LBUTTONDOWN, {1}, false}, // nothing changed: no notification
    };
    for (const Press& press : presses) {
        SCOPED_TRACE(press.row);
        int before = parent.Count(SN_LIST_SELECT);
        PressList(50, press.row * 20 + 5, press.modifiers, press.message);
        EXPECT_EQ(list.GetSelectedRows(), press.selected);
        EXPECT_EQ(list.GetCurrentRow(), press.row);
        EXPECT_EQ(parent.Count(SN_LIST_SELECT) - before, press.notified ? 1 : 0);
    }
    EXPECT_EQ(GetFocus(), list.GetHandle()) << "a left press takes the focus";
    const NoteWnd::Note* mouse = parent.Last(SN_LIST_MOUSE);
    ASSERT_NE(mouse, nullptr);
    EXPECT_EQ(mouse->mouseCode, MOUSE_UP | MOUSE_LEFT);
    EXPECT_EQ(mouse->client.x, 50);
    EXPECT_EQ(mouse->client.y, 25);
    EXPECT_EQ(mouse->screen.x, 160); // parent at 100, list at 10
    EXPECT_EQ(mouse->screen.y, 135);
    std::vector<unsigned> codes;
    for (const NoteWnd::Note& note : parent.notes) {
        if (note.message == SN_LIST_MOUSE) {
            codes.push_back(note.mouseCode);
        }
    }
    // Each press and release: down, the click, up.
    ASSERT_GE(codes.size(), 3u);
    EXPECT_EQ(codes[0], MOUSE_DOWN | MOUSE_LEFT);
    EXPECT_EQ(codes[1], MOUSE_CLICK | MOUSE_LEFT);
    EXPECT_EQ(codes[2], MOUSE_UP | MOUSE_LEFT);
    EXPECT_NE(std::find(codes.begin(), codes.end(), MOUSE_DOWN | MOUSE_RIGHT), codes.end());
}

TEST_F(ListCtrlTest, APressOnNoRowClearsTheCurrentRowAndSingleModeSelectsOnlyIt) {
    PressList(50, 5);
    list.Clear();
    list.AddRow("one");
    list.AddRow("two");
    PressList(50, 25);
    EXPECT_EQ(list.GetCurrentRow(), 1);
    PressList(50, 90); // below the last row
    EXPECT_EQ(list.GetCurrentRow(), -1);
    EXPECT_EQ(list.GetSelectedRows(), std::vector<int>{1}) << "only the current row goes";

    list.SetSelectionMode(LIST_SELECTION_SINGLE);
    PressList(50, 5, SHIFT);
    PressList(50, 25, SHIFT);
    EXPECT_EQ(list.GetSelectedRows(), std::vector<int>{1});
    list.SetSelectionMode(LIST_SELECTION_NONE);
    PressList(50, 5);
    EXPECT_EQ(list.GetSelectedCount(), 0);
}

TEST_F(ListCtrlTest, OnlyTheVisibleRowsArePaintedWhateverTheCount) {
    std::vector<std::string> more(99000, "more");
    list.AddRows(more);
    ASSERT_EQ(list.GetRowCount(), 100000);
    SImage frame;
    list.drawn.clear();
    ASSERT_TRUE(platform->Snapshot(top, &frame));
    EXPECT_EQ(list.drawn, (std::vector<int>{0, 1, 2, 3, 4}));

    // A wheel notch scrolls three rows; half a row shows six.
    platform->Wheel(top, 50, 50, -WHEEL_DELTA);
    EXPECT_EQ(list.GetScrollOffset(), 60);
    list.ScrollTo(list.GetScrollOffset() + 10);
    list.drawn.clear();
    ASSERT_TRUE(platform->Snapshot(top, &frame));
    EXPECT_EQ(list.drawn, (std::vector<int>{3, 4, 5, 6, 7, 8}));

    // A touchpad's small steps add up to pixels, not whole notches.
    platform->Wheel(top, 50, 50, 12);
    EXPECT_EQ(list.GetScrollOffset(), 64);

    // The end of a long list, with only a changed row redrawn.
    list.SetCurrentRow(99999);
    EXPECT_EQ(list.GetTopRow(), 99995);
    platform->PresentFrame(top);
    list.drawn.clear();
    list.SetText(99998, "changed");
    platform->PresentFrame(top);
    EXPECT_EQ(list.drawn, std::vector<int>{99998});
    EXPECT_EQ(list.RowAtPoint(SPoint{20, 85}), 99999);
    EXPECT_EQ(list.RowAtPoint(SPoint{list.GetClientWidth() - 2, 85}), -1) << "the scroll bar";
}

TEST_F(ListCtrlTest, TheScrollBarPagesAndDragsItsThumb) {
    SRect bar = list.GetScrollBarRect();
    ASSERT_FALSE(bar.IsEmpty());
    PressList(bar.left + 4, 90); // below the thumb
    EXPECT_EQ(list.GetScrollOffset(), 100);
    PressList(bar.left + 4, 1); // above it
    EXPECT_EQ(list.GetScrollOffset(), 0);
    // Drag the thumb to the bottom.
    platform->Press(top, 10 + bar.left + 4, 10 + 5);
    platform->MoveMouse(top, 10 + bar.left + 4, 10 + 200, MK_LBUTTON);
    platform->Release(top, 10 + bar.left + 4, 10 + 200);
    EXPECT_EQ(list.GetScrollOffset(), 19900);
    EXPECT_EQ(list.GetSelectedCount(), 0) << "the scroll bar selects nothing";
}

TEST_F(ListCtrlTest, TypingJumpsToTheNextRowStartingWithIt) {
    list.Clear();
    for (const char* text : {"apple", "Banana", "blueberry", "cherry", "berry"}) {
        list.AddRow(text);
    }
    SetFocus(list.GetHandle());
    struct Typed {
        const char* keys;
        uint64_t pause; // milliseconds before typing
        int row;
    };
    const Typed cases[] = {
        {"b", 0, 1},                     // case ignored
        {"b", 0, 2},                     // the same letter again: the next one
        {"b", 0, 4},     {"b", 0, 1},    // and round
        {"c", 2000, 3},                  // after a pause, a new search
        {"bl", 2000, 2}, {"z", 2000, 2}, // nothing starts with it: the row stays
    };
    for (const Typed& typed : cases) {
        SCOPED_TRACE(typed.keys);
        SHeadlessPlatform::AdvanceClock(typed.pause);
        for (const char* key = typed.keys; *key != '\0'; ++key) {
            PlatformKey(top, WM_CHAR, static_cast<unsigned char>(*key));
            SHeadlessPlatform::DispatchPending();
        }
        EXPECT_EQ(list.GetCurrentRow(), typed.row);
        EXPECT_TRUE(list.IsSelected(typed.row));
    }
}

TEST_F(ListCtrlTest, RowOperationsKeepTheirValuesAndRefuseBadIndexes) {
    list.Clear();
    EXPECT_EQ(list.AddRow("a", 2, 11), 0);
    EXPECT_EQ(list.AddRow("c"), 1);
    EXPECT_EQ(list.InsertRow(1, "b", -1, 22), 1);
    EXPECT_EQ(list.InsertRow(99, "d"), 3) << "past the end adds";
    EXPECT_TRUE(list.SetCheck(2, true));
    EXPECT_TRUE(list.SelectRange(3, 2));
    EXPECT_EQ(list.GetSelectedRows(), (std::vector<int>{2, 3}));
    EXPECT_TRUE(list.RemoveRow(0));
    EXPECT_EQ(list.GetText(0), "b");
    EXPECT_EQ(list.GetData(0), 22u);
    EXPECT_TRUE(list.GetCheck(1));
    EXPECT_EQ(list.GetSelectedRows(), (std::vector<int>{1, 2})) << "the selection moved up";
    EXPECT_FALSE(list.RemoveRow(3));
    EXPECT_FALSE(list.SetText(-1, "x"));
    EXPECT_FALSE(list.SetData(3, 1));
    EXPECT_EQ(list.GetText(3), "");
    EXPECT_EQ(list.GetImage(7), -1);
    list.SetCurrentRow(2);
    list.SetCurrentRow(5); // out of range: ignored
    EXPECT_EQ(list.GetCurrentRow(), 2);
    // Rows handed over after others hold values start with none.
    list.AddRows(std::vector<std::string>{"e", "f"});
    ASSERT_EQ(list.GetRowCount(), 5);
    EXPECT_EQ(list.GetText(4), "f");
    EXPECT_EQ(list.GetData(4), 0u);
    EXPECT_FALSE(list.GetCheck(3));
    EXPECT_TRUE(list.GetCheck(1));
    EXPECT_TRUE(list.SetImage(4, 1));
    EXPECT_EQ(list.GetImage(4), 1);
}

class ExListTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        ASSERT_TRUE(Make(parent, "parent", Rect(100, 100, 500, 400)));
        ASSERT_TRUE(list.Create(&parent, Rect(0, 0, 300, 200), 3, LIST_SELECTION_SINGLE));
        list.InsertColumn(0, "Title", 120);
        list.InsertColumn(1, "Artist", 100);
        list.InsertColumn(2, "Time", 60, 2);
        for (int i = 0; i < 20; ++i) {
            int row = list.AddRow(RowName(i).c_str());
            list.SetItemText(row, 1, "Someone");
            list.SetItemText(row, 2, "3:00");
        }
        top = parent.GetHandle();
    }
    NoteWnd parent;
    SExListCtrl list;
    HWND top = 0;
};

TEST_F(ExListTest, AClickOnAHeaderTellsItsColumnAndADividerResizesIt) {
    SRect header = list.GetHeaderRect();
    ASSERT_GT(header.Height(), 0);
    int y = header.Height() / 2;
    struct Click {
        int x;
        int64_t column; // -1: no column click
    };
    const Click clicks[] = {{10, 0}, {150, 1}, {250, 2}, {290, -1}};
    for (const Click& click : clicks) {
        SCOPED_TRACE(click.x);
        int before = parent.Count(SN_EXLIST_COLUMN_CLICK);
        platform->Click(top, click.x, y);
        SHeadlessPlatform::AdvanceClock(1000);
        if (click.column < 0) {
            EXPECT_EQ(parent.Count(SN_EXLIST_COLUMN_CLICK), before);
        } else {
            ASSERT_EQ(parent.Count(SN_EXLIST_COLUMN_CLICK), before + 1);
            EXPECT_EQ(parent.Last(SN_EXLIST_COLUMN_CLICK)->code, click.column);
        }
    }
    EXPECT_EQ(list.GetSelectedCount(), 0) << "the header selects no row";

    // The divider between Title and Artist, dragged 30 pixels right.
    platform->Press(top, 120, y);
    platform->MoveMouse(top, 150, y, MK_LBUTTON);
    platform->Release(top, 150, y);
    EXPECT_EQ(list.GetColumnWidth(0), 150);
    EXPECT_EQ(list.ColumnAtPoint(SPoint{160, y}), 1);
    int before = parent.Count(SN_EXLIST_COLUMN_CLICK);
    // Dragged far left it keeps its smallest width; no click is told.
    platform->Press(top, 150, y);
    platform->MoveMouse(top, 0, y, MK_LBUTTON);
    platform->Release(top, 0, y);
    EXPECT_EQ(list.GetColumnWidth(0), SExListCtrl::MINIMUM_COLUMN_WIDTH);
    EXPECT_EQ(parent.Count(SN_EXLIST_COLUMN_CLICK), before);
}

TEST_F(ExListTest, PressesReachTheParentInScreenCoordinatesBeforeTheList) {
    int rowY = list.GetHeaderRect().bottom + list.GetRowHeight() + 2; // the second row
    platform->Press(top, 40, rowY);
    platform->Release(top, 40, rowY);
    ASSERT_GE(parent.notes.size(), 2u);
    EXPECT_EQ(parent.notes[0].message, WM_LBUTTONDOWN);
    EXPECT_EQ(parent.notes[0].screen.x, 140);
    EXPECT_EQ(parent.notes[0].screen.y, 100 + rowY);
    EXPECT_EQ(parent.notes[1].message, SN_LIST_SELECT);
    EXPECT_EQ(list.GetCurrentRow(), 1);
    EXPECT_EQ(list.GetItemText(1, 1), "Someone");
    EXPECT_EQ(list.GetItemText(1, 5), "");

    list.SetBackColor(0x123456);
    EXPECT_EQ(list.GetBackColor(), 0x123456u);
    list.SetView(EXLIST_ICON);
    EXPECT_TRUE(list.GetHeaderRect().IsEmpty());
    // Icons: three cells of 96 a line in 300 pixels less the scroll bar.
    EXPECT_EQ(list.RowAtPoint(SPoint{100, 5}), 1);
    EXPECT_EQ(list.RowAtPoint(SPoint{10, list.GetRowRect(3).top + 2}), 3);
}

class ComboTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        ASSERT_TRUE(Make(parent, "parent", Rect(100, 100, 400, 300)));
        ASSERT_TRUE(combo.Create(&parent, Rect(10, 10, 160, 34), 5));
        for (const char* text : {"Rock", "Jazz", "Blues", "Folk", "Jungle"}) {
            combo.AddText(text);
        }
        top = parent.GetHandle();
        SetFocus(combo.GetHandle());
    }
    HWND PopupHandle() const {
        return combo.GetPopup() != nullptr ? combo.GetPopup()->GetHandle() : 0;
    }
    NoteWnd parent;
    SComboCtrl combo;
    HWND top = 0;
};

TEST_F(ComboTest, KeysOpenMoveInPickFromAndCloseTheList) {
    struct Step {
        unsigned message;
        unsigned key;
        bool open;
        int selected;
        int changes; // SN_COMBO_SELECT_CHANGE so far
    };
    const Step steps[] = {
        {WM_KEYDOWN, KEY_F4, true, -1, 0},
        {WM_KEYDOWN, KEY_DOWN, true, -1, 0}, // moves in the list only
        {WM_KEYDOWN, KEY_DOWN, true, -1, 0},
        {WM_KEYDOWN, VK_RETURN, false, 1, 1},
        {WM_SYSKEYDOWN, KEY_DOWN, true, 1, 1}, // Alt+Down
        {WM_KEYDOWN, KEY_END, true, 1, 1},
        {WM_KEYDOWN, VK_ESCAPE, false, 1, 1}, // closes without a change
        {WM_KEYDOWN, KEY_DOWN, false, 2, 2},  // closed, arrows choose
        {WM_KEYDOWN, KEY_HOME, false, 0, 3},
        {WM_CHAR, 'j', false, 1, 4}, // type-ahead
        {WM_CHAR, 'j', false, 4, 5},
        {WM_KEYDOWN, KEY_F4, true, 4, 5},
        {WM_CHAR, 'b', true, 4, 5},        // moves in the open list
        {WM_KEYDOWN, KEY_F4, false, 2, 6}, // F4 again picks
    };
    for (size_t i = 0; i < sizeof steps / sizeof steps[0]; ++i) {
        const Step& step = steps[i];
        SCOPED_TRACE(i);
        SHeadlessPlatform::AdvanceClock(2000);
        if (step.message == WM_KEYDOWN) {
            platform->Key(top, step.key);
        } else {
            PlatformKey(top, step.message, step.key);
            SHeadlessPlatform::DispatchPending();
        }
        EXPECT_EQ(combo.IsListOpen(), step.open);
        EXPECT_EQ(combo.GetSelectedIndex(), step.selected);
        EXPECT_EQ(parent.Count(SN_COMBO_SELECT_CHANGE), step.changes);
        if (step.open) {
            SHeadlessPlatform::Surface surface;
            ASSERT_TRUE(platform->GetSurface(PopupHandle(), &surface));
            EXPECT_TRUE(surface.popup);
            EXPECT_TRUE(surface.visible);
            // Below the field, as wide as it.
            EXPECT_EQ(surface.rect.left, 110);
            EXPECT_EQ(surface.rect.top, 134);
            EXPECT_EQ(surface.rect.Width(), 150);
        }
    }
    EXPECT_EQ(combo.GetEditText(), "Blues");
}

TEST_F(ComboTest, APressPicksAnItemAndAPressOutsideCloses) {
    platform->Click(top, 20, 20); // the field opens the list
    ASSERT_TRUE(combo.IsListOpen());
    HWND popup = PopupHandle();
    SListCtrl* list = combo.GetPopupList();
    ASSERT_NE(list, nullptr);
    int rowHeight = list->GetRowHeight();
    EXPECT_EQ(list->GetRowCount(), 5);
    // Keys that reach the popup (it holds the keyboard) go to the combo box.
    platform->Key(popup, KEY_DOWN);
    EXPECT_EQ(list->GetCurrentRow(), 0);
    // The pointer over a row makes it current; a click picks it.
    platform->MoveMouse(popup, 20, 1 + 3 * rowHeight + 2);
    EXPECT_EQ(list->GetCurrentRow(), 3);
    platform->Click(popup, 20, 1 + 3 * rowHeight + 2);
    SHeadlessPlatform::DispatchPending();
    EXPECT_FALSE(combo.IsListOpen());
    EXPECT_EQ(combo.GetSelectedIndex(), 3);
    EXPECT_EQ(GetFocus(), combo.GetHandle());
    SHeadlessPlatform::Surface surface;
    EXPECT_FALSE(platform->GetSurface(popup, &surface)) << "the popup surface is gone";

    SHeadlessPlatform::AdvanceClock(1000);
    platform->Click(top, 20, 20);
    ASSERT_TRUE(combo.IsListOpen());
    platform->Press(PopupHandle(), -30, -30); // elsewhere, as the grab reports it
    SHeadlessPlatform::DispatchPending();
    EXPECT_FALSE(combo.IsListOpen());
    EXPECT_EQ(combo.GetSelectedIndex(), 3);
    EXPECT_EQ(parent.Count(SN_COMBO_SELECT_CHANGE), 1);
}

TEST_F(ComboTest, TheListStaysWhileItsPopupHoldsTheKeyboardAndGoesWithTheFocus) {
    platform->Key(top, KEY_F4);
    ASSERT_TRUE(combo.IsListOpen());
    // The desktop gives the popup the focus as it takes the keyboard, or
    // none at all: the list stays, and its keys still reach the combo box.
    SetFocus(PopupHandle());
    SetFocus(0);
    ASSERT_TRUE(combo.IsListOpen());
    platform->Key(PopupHandle(), KEY_DOWN);
    platform->Key(PopupHandle(), VK_RETURN);
    EXPECT_FALSE(combo.IsListOpen());
    EXPECT_EQ(combo.GetSelectedIndex(), 0);
    EXPECT_EQ(GetFocus(), combo.GetHandle()) << "the focus comes back to the combo box";
    // Another window taking the focus closes it.
    SWnd other;
    ASSERT_TRUE(Make(other, "other", Rect(10, 100, 60, 120), top));
    platform->Key(top, KEY_F4);
    ASSERT_TRUE(combo.IsListOpen());
    SetFocus(other.GetHandle());
    EXPECT_FALSE(combo.IsListOpen());
    EXPECT_EQ(combo.GetSelectedIndex(), 0);
}

TEST_F(ComboTest, TheEditableFormEditsItsText) {
    SComboCtrl edit;
    ASSERT_TRUE(edit.Create(&parent, Rect(10, 50, 160, 74), 6, COMBO_EDITABLE));
    edit.AddText("Rock");
    edit.AddText("Jazz");
    SetFocus(edit.GetHandle());
    auto type = [&](const char* text) {
        for (const char* c = text; *c != '\0'; ++c) {
            PlatformKey(top, WM_CHAR, static_cast<unsigned char>(*c));
        }
        SHeadlessPlatform::DispatchPending();
    };
    struct Step {
        const char* typed; // or null for the key
        unsigned key;
        unsigned modifiers;
        const char* text;
        int caret;
    };
    const Step steps[] = {
        {"Jaz", 0, 0, "Jaz", 3},
        {nullptr, KEY_HOME + 1, 0, "Jaz", 2}, // Left
        {nullptr, VK_BACK, 0, "Jz", 1},
        {nullptr, VK_DELETE, 0, "J", 1},
        {nullptr, KEY_HOME, 0, "J", 0},
        {"é", 0, 0, "éJ", 2},
        {nullptr, KEY_HOME + 3, SHIFT, "éJ", 3}, // Shift+Right selects J
        {"x", 0, 0, "éx", 3},
        {nullptr, 'A', CTRL, "éx", 3},
        {"Folk", 0, 0, "Folk", 4},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.text);
        if (step.typed != nullptr) {
            // Characters by code: é is one character.
            std::string typed = step.typed;
            if (typed == "é") {
                PlatformKey(top, WM_CHAR, 0xE9);
                SHeadlessPlatform::DispatchPending();
            } else {
                type(step.typed);
            }
        } else {
            platform->Key(top, step.key, step.modifiers);
        }
        EXPECT_EQ(edit.GetEditText(), step.text);
        EXPECT_EQ(edit.GetCaret(), step.caret);
    }
    EXPECT_EQ(edit.GetSelectedIndex(), -1);
    EXPECT_GE(parent.Count(SN_COMBO_EDIT_CHANGE), 6);
    platform->Key(top, KEY_DOWN); // arrows still choose items
    EXPECT_EQ(edit.GetSelectedIndex(), 0);
    EXPECT_EQ(edit.GetEditText(), "Rock");
    edit.SetEditText("typed");
    EXPECT_EQ(edit.GetEditText(), "typed");

    combo.SetEditText("Jazz"); // the drop-down form only takes its items
    EXPECT_EQ(combo.GetSelectedIndex(), 1);
    combo.SetEditText("Polka");
    EXPECT_EQ(combo.GetSelectedIndex(), -1);
    EXPECT_EQ(combo.GetEditText(), "");
    EXPECT_FALSE(combo.SetSelectedIndex(5));
    combo.Clear();
    EXPECT_EQ(combo.GetCount(), 0);
    SetFocus(combo.GetHandle());
    platform->Key(top, KEY_F4);
    EXPECT_FALSE(combo.IsListOpen()) << "no items, no list";
}

} // namespace
