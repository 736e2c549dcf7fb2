// The toolkit-drawn menu: items and mnemonics, keys over the open levels,
// submenus opening, closing and flipping at the work area's edge, the
// pointer, the command sent on a pick, and the menu bar.
#include "toolkit/menu.h"

#include "foundation/file.h"
#include "toolkit/ctrl_common.h"
#include "toolkit/menu_definition.h"
#include "toolkit_fixture.h"

namespace {

enum : int { OPEN = 100, SAVE = 101, GONE = 102, QUIT = 103, RECENT_A = 200, RECENT_B = 201 };

class MenuTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        platform->SetWorkArea(Rect(0, 0, 1000, 800));
        ASSERT_TRUE(Make(owner, "owner", Rect(100, 100, 400, 300)));
        SetFocus(owner.GetHandle());
        // Open, a separator, Save (disabled), Recent >, Gone (disabled), Quit
        menu.AppendItem(OPEN, "&Open\tCtrl+O");
        menu.AppendSeparator();
        menu.AppendItem(SAVE, "&Save", MENU_ITEM_DISABLED);
        SMenu* recent = menu.AppendSubmenu("&Recent");
        recent->AppendItem(RECENT_A, "First &A");
        recent->AppendItem(RECENT_B, "Second &B");
        menu.AppendItem(GONE, "&Gone", MENU_ITEM_DISABLED);
        menu.AppendItem(QUIT, "&Quit");
    }
    HWND Level(int level) const {
        SWnd* wnd = menu.GetLevel(level);
        return wnd != nullptr ? wnd->GetHandle() : 0;
    }
    void Key(unsigned code, int level = -1) {
        platform->Key(Level(level < 0 ? menu.GetLevelCount() - 1 : level), code);
        SHeadlessPlatform::DispatchPending();
    }
    // The IDs of the WM_COMMANDs the owner received.
    std::vector<int> Commands() const {
        std::vector<int> ids;
        for (const RecordingWnd::Entry& entry : owner.ownLog) {
            if (entry.message == WM_COMMAND) {
                ids.push_back(static_cast<int>(entry.wParam));
            }
        }
        return ids;
    }
    int RowHeight() const {
        // Rows that are not separators share one height: the whole less
        // the frame and the one separator, over the five rows.
        return (menu.GetLevel(0)->GetHeight() - 4 - 7) / 5;
    }
    RecordingWnd owner;
    SMenu menu;
};

TEST(MenuItems, TextShortcutAndMnemonic) {
    struct Case {
        const char* text;
        const char* shown;
        const char* shortcut;
        char32_t mnemonic;
    } cases[] = {
        {"&Open\tCtrl+O", "&Open", "Ctrl+O", U'o'},
        {"Save &As", "Save &As", "", U'a'},
        {"A&&B", "A&&B", "", 0},    // a plain "&"
        {"&&&x", "&&&x", "", U'x'}, // a plain "&", then the mark
        {"End&", "End&", "", 0},    // a mark with nothing after it
        {"\xC3\x89&\xC3\x89t\xC3\xA9", "\xC3\x89&\xC3\x89t\xC3\xA9", "", U'\u00E9'},
        {"Tab\tA\tB", "Tab", "A\tB", 0}, // the first tab parts them
    };
    SMenu menu;
    for (const Case& c : cases) {
        SMenuItem& item = menu.AppendItem(1, c.text);
        EXPECT_EQ(item.text, c.shown) << c.text;
        EXPECT_EQ(item.shortcut, c.shortcut) << c.text;
        EXPECT_EQ(item.Mnemonic(), c.mnemonic) << c.text;
    }
}

TEST(MenuItems, LoadsADefinitionWithSubmenusAndStopsALoop) {
    SMenuDefinition definition;
    std::vector<SMenuRecord>& menus = definition.GetMenus();
    menus.resize(3);
    SMenuItemRecord open;
    open.id = 1;
    open.text = "&Open";
    open.tip = "Ctrl+O";
    open.checked = true;
    SMenuItemRecord line;
    line.separator = true;
    SMenuItemRecord more;
    more.text = "&More";
    more.submenu = 2;
    SMenuItemRecord back; // menu 2 names itself: shown as a plain item
    back.id = 7;
    back.text = "Back";
    back.submenu = 2;
    back.disabled = true;
    menus[0].items = {more};
    menus[1].items = {open, line, more};
    menus[2].items = {back};
    SMenu menu;
    ASSERT_TRUE(menu.Load(definition, 1));
    ASSERT_EQ(menu.GetItemCount(), 3);
    EXPECT_EQ(menu.GetItem(0).shortcut, "Ctrl+O");
    EXPECT_TRUE(menu.GetItem(0).checked);
    EXPECT_TRUE(menu.GetItem(1).separator);
    ASSERT_NE(menu.GetItem(2).submenu, nullptr);
    SMenu* sub = menu.GetItem(2).submenu.get();
    ASSERT_EQ(sub->GetItemCount(), 1);
    EXPECT_EQ(sub->GetItem(0).submenu, nullptr) << "a loop ends";
    EXPECT_TRUE(sub->GetItem(0).disabled);
    EXPECT_NE(menu.FindItem(7), nullptr) << "found in a submenu";
    EXPECT_TRUE(menu.EnableItem(7, true));
    EXPECT_FALSE(sub->GetItem(0).disabled);
    EXPECT_FALSE(menu.CheckItem(99, true));
    EXPECT_FALSE(menu.Load(definition, 3));
    EXPECT_EQ(menu.GetItemCount(), 0);
}

TEST_F(MenuTest, ArrowsSkipSeparatorsAndDisabledItemsAndEnterPicks) {
    ASSERT_TRUE(menu.TrackPopup(owner.GetHandle(), 150, 150));
    EXPECT_FALSE(menu.TrackPopup(owner.GetHandle(), 150, 150)) << "open already";
    SHeadlessPlatform::Surface surface;
    ASSERT_TRUE(platform->GetSurface(Level(0), &surface));
    EXPECT_TRUE(surface.popup);
    EXPECT_EQ(GetFocus(), Level(0));
    EXPECT_EQ(menu.GetHot(0), -1);
    struct Step {
        unsigned key;
        int hot;
    } steps[] = {
        {ctrlkey::DOWN, 0}, {ctrlkey::DOWN, 3}, // over the separator and Save
        {ctrlkey::DOWN, 5},                     // over Gone
        {ctrlkey::DOWN, 0},                     // round to the top
        {ctrlkey::UP, 5},   {ctrlkey::UP, 3},   {ctrlkey::END, 5}, {ctrlkey::HOME, 0},
    };
    for (const Step& step : steps) {
        Key(step.key);
        EXPECT_EQ(menu.GetHot(0), step.hot) << step.key;
    }
    Key(VK_RETURN);
    EXPECT_FALSE(menu.IsOpen());
    EXPECT_EQ(Commands(), std::vector<int>{OPEN});
    EXPECT_EQ(GetFocus(), owner.GetHandle()) << "the keys go back";
}

TEST_F(MenuTest, MnemonicsPickOpenOrCycle) {
    struct Case {
        std::vector<unsigned> keys;
        std::vector<int> commands;
        int levels; // left open
    } cases[] = {
        {{'Q'}, {QUIT}, 0},
        {{'S'}, {}, 1},              // disabled: nothing
        {{'R'}, {}, 2},              // opens the submenu
        {{'R', 'B'}, {RECENT_B}, 0}, // and picks in it
        {{'X'}, {}, 1},              // no such letter
    };
    for (const Case& c : cases) {
        owner.ownLog.clear();
        ASSERT_TRUE(menu.TrackPopup(owner.GetHandle(), 150, 150));
        for (unsigned key : c.keys) {
            Key(key);
        }
        EXPECT_EQ(Commands(), c.commands) << c.keys[0];
        EXPECT_EQ(menu.GetLevelCount(), c.levels) << c.keys[0];
        menu.Close();
    }
    // Two items with one letter: the letter moves between them.
    SMenu twins;
    twins.AppendItem(1, "&Play");
    twins.AppendItem(2, "&Pause");
    ASSERT_TRUE(twins.TrackPopup(owner.GetHandle(), 10, 10));
    platform->Key(twins.GetLevel(0)->GetHandle(), 'P');
    EXPECT_EQ(twins.GetHot(0), 0);
    platform->Key(twins.GetLevel(0)->GetHandle(), 'P');
    EXPECT_EQ(twins.GetHot(0), 1);
    SHeadlessPlatform::DispatchPending();
    EXPECT_TRUE(Commands().empty());
}

TEST_F(MenuTest, RightOpensLeftAndEscapeCloseALevel) {
    ASSERT_TRUE(menu.TrackPopup(owner.GetHandle(), 150, 150));
    Key(ctrlkey::DOWN);
    Key(ctrlkey::RIGHT);
    EXPECT_EQ(menu.GetLevelCount(), 1) << "Open has no submenu";
    Key(ctrlkey::DOWN);
    Key(ctrlkey::RIGHT);
    ASSERT_EQ(menu.GetLevelCount(), 2);
    EXPECT_EQ(menu.GetHot(1), 0) << "the first item is highlighted";
    EXPECT_EQ(GetFocus(), Level(1));
    Key(ctrlkey::LEFT);
    EXPECT_EQ(menu.GetLevelCount(), 1);
    EXPECT_EQ(GetFocus(), Level(0));
    EXPECT_EQ(menu.GetHot(0), 3) << "the parent keeps its place";
    Key(ctrlkey::RIGHT);
    Key(VK_ESCAPE);
    EXPECT_EQ(menu.GetLevelCount(), 1);
    Key(ctrlkey::LEFT);
    EXPECT_EQ(menu.GetLevelCount(), 1) << "Left does not close the first level";
    Key(VK_ESCAPE);
    EXPECT_FALSE(menu.IsOpen());
    SHeadlessPlatform::DispatchPending();
    EXPECT_TRUE(Commands().empty());
    EXPECT_EQ(GetFocus(), owner.GetHandle());
}

TEST_F(MenuTest, PopupsFlipAtTheWorkAreaEdge) {
    SSize size = menu.MeasurePopup();
    SSize subSize = menu.GetItem(3).submenu->MeasurePopup();
    struct Case {
        SPoint at;
        SPoint top;      // of the first level
        bool subOnRight; // the submenu opens to the right
    } cases[] = {
        {{100, 100}, {100, 100}, true},
        {{990, 100}, {990 - size.width, 100}, false},
        {{100, 790}, {100, 790 - size.height}, true},
        {{1000 - size.width - subSize.width / 2, 100},
         {1000 - size.width - subSize.width / 2, 100},
         false},
    };
    for (const Case& c : cases) {
        ASSERT_TRUE(menu.TrackPopup(owner.GetHandle(), c.at.x, c.at.y));
        SRect first = menu.GetLevel(0)->GetWindowRect();
        EXPECT_EQ((SPoint{first.left, first.top}), c.top) << c.at.x << "," << c.at.y;
        Key('R');
        ASSERT_EQ(menu.GetLevelCount(), 2);
        SRect sub = menu.GetLevel(1)->GetWindowRect();
        EXPECT_EQ(sub.left > first.left, c.subOnRight) << c.at.x << "," << c.at.y;
        EXPECT_LE(sub.right, 1000);
        EXPECT_LE(sub.bottom, 800);
        EXPECT_GE(sub.left, 0);
        menu.Close();
    }
}

TEST_F(MenuTest, HoverOpensASubmenuAfterADelayAndClicksPick) {
    SHeadlessPlatform::UseFakeClock(true);
    ASSERT_TRUE(menu.TrackPopup(owner.GetHandle(), 150, 150));
    int row = RowHeight();
    int recentY = 2 + row + 7 + row + row / 2;
    platform->MoveMouse(Level(0), 20, recentY);
    EXPECT_EQ(menu.GetHot(0), 3);
    EXPECT_EQ(menu.GetLevelCount(), 1) << "not at once";
    SHeadlessPlatform::AdvanceClock(MENU_SUBMENU_DELAY + 10);
    SHeadlessPlatform::DispatchPending();
    ASSERT_EQ(menu.GetLevelCount(), 2);
    EXPECT_EQ(menu.GetHot(1), -1) << "nothing chosen for the pointer";

    // Resting on a plain item closes the submenu again.
    platform->MoveMouse(Level(0), 20, 2 + row / 2);
    SHeadlessPlatform::AdvanceClock(MENU_SUBMENU_DELAY + 10);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(menu.GetLevelCount(), 1);

    // A click on a disabled item does nothing, on Quit picks it.
    int saveY = 2 + row + 7 + row / 2;
    platform->Click(Level(0), 20, saveY);
    EXPECT_TRUE(menu.IsOpen());
    int quitY = 2 + row + 7 + 3 * row + row / 2;
    platform->Click(Level(0), 20, quitY);
    SHeadlessPlatform::DispatchPending();
    EXPECT_FALSE(menu.IsOpen());
    EXPECT_EQ(Commands(), std::vector<int>{QUIT});
}

TEST_F(MenuTest, APressOutsideClosesEveryLevel) {
    ASSERT_TRUE(menu.TrackPopup(owner.GetHandle(), 150, 150));
    Key('R');
    ASSERT_EQ(menu.GetLevelCount(), 2);
    platform->Press(Level(1), -400, -40);
    SHeadlessPlatform::DispatchPending();
    EXPECT_FALSE(menu.IsOpen());
    EXPECT_TRUE(Commands().empty());
    EXPECT_EQ(GetFocus(), owner.GetHandle());

    // A menu that goes while open takes its surfaces with it.
    HWND shown = 0;
    {
        SMenu brief;
        brief.AppendItem(1, "&One");
        ASSERT_TRUE(brief.TrackPopup(owner.GetHandle(), 10, 10));
        shown = brief.GetLevel(0)->GetHandle();
    }
    SHeadlessPlatform::DispatchPending();
    SHeadlessPlatform::Surface surface;
    EXPECT_FALSE(platform->GetSurface(shown, &surface));
}

TEST_F(MenuTest, MenuBarOpensOnPressAndArrowsMoveBetweenMenus) {
    SMenu bar;
    SMenu* file = bar.AppendSubmenu("&File");
    file->AppendItem(OPEN, "&Open");
    bar.AppendSubmenu("&Empty");
    SMenu* help = bar.AppendSubmenu("&Help");
    help->AppendItem(QUIT, "&About");
    ASSERT_TRUE(bar.UseAsMenuBar(&owner, false));
    SRect title = bar.GetBarItemRect(2);
    ASSERT_FALSE(title.IsEmpty());
    EXPECT_TRUE(bar.GetBarItemRect(3).IsEmpty());
    platform->Press(owner.GetHandle(), title.left + 3, title.top + 3);
    platform->Release(owner.GetHandle(), title.left + 3, title.top + 3);
    ASSERT_EQ(bar.GetOpenBarItem(), 2);
    SRect frame = owner.GetWindowRect();
    SRect popup = bar.GetLevel(0)->GetWindowRect();
    EXPECT_EQ(popup.left, frame.left + title.left);
    EXPECT_EQ(popup.top, frame.top + GetMenuBarHeight()) << "below the bar";
    platform->Key(bar.GetLevel(0)->GetHandle(), ctrlkey::RIGHT);
    EXPECT_EQ(bar.GetOpenBarItem(), 0) << "round, over the empty menu";
    platform->Key(bar.GetLevel(0)->GetHandle(), ctrlkey::LEFT);
    EXPECT_EQ(bar.GetOpenBarItem(), 2);
    platform->Key(bar.GetLevel(0)->GetHandle(), 'A');
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(bar.GetOpenBarItem(), -1);
    EXPECT_EQ(Commands(), std::vector<int>{QUIT});
    EXPECT_EQ(GetFocus(), owner.GetHandle());

    // F10 opens the first menu with its first item highlighted; F10 again
    // closes it.
    platform->Key(owner.GetHandle(), ctrlkey::F10);
    ASSERT_EQ(bar.GetOpenBarItem(), 0);
    EXPECT_EQ(bar.GetHot(0), 0);
    EXPECT_EQ(GetFocus(), bar.GetLevel(0)->GetHandle());
    platform->Key(bar.GetLevel(0)->GetHandle(), ctrlkey::F10);
    EXPECT_FALSE(bar.IsOpen());
    EXPECT_EQ(GetFocus(), owner.GetHandle());
    owner.SetMenu(nullptr, false);
}

} // namespace
