// The tray icon on the headless platform: what the owner hears for each
// thing the user does, the menu copy the desktop shows and when it is
// given again, picks in it, and a desktop without a notification area.
#include "toolkit/tray_icon.h"

#include "toolkit/menu.h"
#include "toolkit_fixture.h"

namespace {

enum : int { PLAY = 8, STOP = 11, TOGGLE = 14, QUIT = 22, SUB_A = 30 };

class TrayIconTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        ASSERT_TRUE(Make(owner, "owner", Rect(100, 100, 400, 300)));
        icon.Create(16, 16, PIXEL_FORMAT_32ARGB);
        menu.AppendItem(PLAY, "&Play\tCtrl+P");
        menu.AppendSeparator();
        menu.AppendItem(TOGGLE, "&Hide Window");
        menu.AppendItem(STOP, "Stop", MENU_ITEM_DISABLED | MENU_ITEM_CHECKED);
        menu.AppendSubmenu("&More")->AppendItem(SUB_A, "A_b");
        menu.AppendItem(QUIT, "&Quit");
    }
    // The SN_TRAY codes the owner heard, with a null wParam each.
    std::vector<int64_t> TrayCodes() const {
        std::vector<int64_t> codes;
        for (const RecordingWnd::Entry& entry : owner.ownLog) {
            if (entry.message == SN_TRAY) {
                EXPECT_EQ(entry.wParam, 0u);
                codes.push_back(static_cast<int64_t>(entry.lParam));
            }
        }
        return codes;
    }
    std::vector<int> Commands() const {
        std::vector<int> ids;
        for (const RecordingWnd::Entry& entry : owner.ownLog) {
            if (entry.message == WM_COMMAND) {
                ids.push_back(static_cast<int>(entry.wParam));
            }
        }
        return ids;
    }
    SHeadlessPlatform::TrayIcon Record(const STrayIcon& tray) {
        SHeadlessPlatform::TrayIcon record;
        EXPECT_TRUE(platform->GetTrayIcon(tray.GetId(), &record));
        return record;
    }
    RecordingWnd owner;
    SImage icon;
    SMenu menu;
};

TEST(TrayIconMapping, EachEventGivesTheOwnersMouseCode) {
    struct Case {
        STrayEvent event;
        unsigned code;
    } cases[] = {
        {STrayEvent::ACTIVATE, 0x41},           // toggles the window
        {STrayEvent::SECONDARY_ACTIVATE, 0x41}, // without a secondary item, the same
        {STrayEvent::CONTEXT_MENU, 0x14},       // brings up the menu
    };
    for (const Case& c : cases) {
        EXPECT_EQ(STrayIcon::NotifyCode(c.event), c.code);
    }
}

TEST(TrayIconMapping, MnemonicMarksBecomeUnderscores) {
    struct Case {
        const char* text;
        const char* shown;
    } cases[] = {
        {"&Play", "_Play"},
        {"Save && Quit", "Save & Quit"},
        {"&&&Stop", "&_Stop"},
        {"snake_case", "snake__case"},
        {"&a&b", "_ab"},          // only the first mark underlines
        {"&_x", "__x"},           // an underscore is never the mnemonic
        {"Next\tCtrl+N", "Next"}, // the shortcut is not shown
        {"&\tF1", "&"},           // a mark before the tab marks nothing
        {"end&", "end&"},
        {"", ""},
        {"&\xC3\xA9t\xC3\xA9", "_\xC3\xA9t\xC3\xA9"}, // a mark before a UTF-8 letter
    };
    for (const Case& c : cases) {
        EXPECT_EQ(STrayIcon::MnemonicText(c.text), c.shown) << c.text;
    }
}

TEST_F(TrayIconTest, MenuCopyKeepsEveryItemAndSubmenu) {
    std::vector<STrayMenuItem> copy = STrayIcon::MirrorMenu(menu);
    ASSERT_EQ(copy.size(), 6u);
    EXPECT_EQ(copy[0].id, PLAY);
    EXPECT_EQ(copy[0].text, "_Play");
    EXPECT_TRUE(copy[1].separator);
    EXPECT_EQ(copy[1].text, "");
    EXPECT_EQ(copy[2].text, "_Hide Window");
    EXPECT_TRUE(copy[3].checked);
    EXPECT_TRUE(copy[3].disabled);
    EXPECT_FALSE(copy[2].checked || copy[2].disabled);
    ASSERT_EQ(copy[4].submenu.size(), 1u);
    EXPECT_EQ(copy[4].submenu[0].id, SUB_A);
    EXPECT_EQ(copy[4].submenu[0].text, "A__b");
    EXPECT_EQ(copy[5].id, QUIT);
}

TEST_F(TrayIconTest, DeepSubmenusAreCutAtSixteenLevels) {
    SMenu deep;
    SMenu* level = &deep;
    for (int i = 0; i < 40; ++i) {
        level = level->AppendSubmenu("deeper");
    }
    level->AppendItem(1, "bottom");
    std::vector<STrayMenuItem> copy = STrayIcon::MirrorMenu(deep);
    int depth = 0;
    for (const std::vector<STrayMenuItem>* items = &copy; !items->empty();
         items = &(*items)[0].submenu) {
        ++depth;
    }
    EXPECT_EQ(depth, 16);
}

TEST_F(TrayIconTest, UserActionsReachTheOwner) {
    STrayIcon tray;
    ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "Melkora Browser", "melkora-browser"));
    EXPECT_TRUE(tray.IsShown());
    SHeadlessPlatform::TrayIcon record = Record(tray);
    EXPECT_EQ(record.tip, "Melkora Browser");
    EXPECT_EQ(record.iconName, "melkora-browser");
    EXPECT_EQ(record.icon.GetWidth(), 16);

    platform->TrayAction(tray.GetId(), STrayEvent::ACTIVATE);
    platform->TrayAction(tray.GetId(), STrayEvent::CONTEXT_MENU);
    platform->TrayAction(tray.GetId(), STrayEvent::SECONDARY_ACTIVATE);
    EXPECT_EQ(TrayCodes(), (std::vector<int64_t>{0x41, 0x14, 0x41}));

    // Gone: a late report of the platform reaches nobody.
    tray.Remove();
    EXPECT_FALSE(platform->GetTrayIcon(tray.GetId(), &record));
    platform->TrayAction(tray.GetId(), STrayEvent::ACTIVATE);
    EXPECT_EQ(TrayCodes().size(), 3u);
}

TEST_F(TrayIconTest, SecondaryActivationPicksTheSecondaryItem) {
    STrayIcon tray;
    tray.SetMenu(&menu);
    ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "tip"));
    int given = Record(tray).menuUpdates;
    tray.SetSecondaryItem(TOGGLE);
    SHeadlessPlatform::TrayIcon record = Record(tray);
    EXPECT_EQ(record.menuUpdates, given + 1) << "the mark is part of the copy";
    for (size_t i = 0; i < record.menu.size(); ++i) {
        EXPECT_EQ(record.menu[i].secondary, record.menu[i].id == TOGGLE) << i;
    }
    platform->TrayAction(tray.GetId(), STrayEvent::SECONDARY_ACTIVATE);
    platform->TrayAction(tray.GetId(), STrayEvent::ACTIVATE);
    EXPECT_EQ(Commands(), (std::vector<int>{TOGGLE}));
    EXPECT_EQ(TrayCodes(), (std::vector<int64_t>{0x41})) << "activation still toggles";

    // None named: a secondary activation is an activation.
    tray.SetSecondaryItem(0);
    EXPECT_FALSE(Record(tray).menu[2].secondary);
    platform->TrayAction(tray.GetId(), STrayEvent::SECONDARY_ACTIVATE);
    EXPECT_EQ(TrayCodes(), (std::vector<int64_t>{0x41, 0x41}));
}

TEST_F(TrayIconTest, OnlyTheFirstPlainItemWithTheIdIsMarkedSecondary) {
    SMenu twice;
    twice.AppendItem(5, "first");
    twice.AppendSubmenu("sub")->AppendItem(5, "second");
    twice.AppendSeparator();
    std::vector<STrayMenuItem> copy = STrayIcon::MirrorMenu(twice, 5);
    EXPECT_TRUE(copy[0].secondary);
    EXPECT_FALSE(copy[1].submenu[0].secondary);
    // A submenu's item or a separator is never the one, whatever its ID.
    SMenu holder;
    holder.AppendSubmenu("sub")->AppendItem(7, "inner");
    holder.GetItem(0).id = 6;
    holder.AppendSeparator();
    holder.GetItem(1).id = 8;
    copy = STrayIcon::MirrorMenu(holder, 6);
    EXPECT_FALSE(copy[0].secondary);
    EXPECT_FALSE(STrayIcon::MirrorMenu(holder, 8)[1].secondary);
    EXPECT_TRUE(STrayIcon::MirrorMenu(holder, 7)[0].submenu[0].secondary);
}

TEST_F(TrayIconTest, ReportsForADestroyedIconAreDropped) {
    int id = 0;
    {
        STrayIcon tray;
        ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "tip"));
        id = tray.GetId();
    }
    SHeadlessPlatform::TrayIcon record;
    EXPECT_FALSE(platform->GetTrayIcon(id, &record)) << "the destructor removes the icon";
    platform->TrayAction(id, STrayEvent::ACTIVATE);
    platform->TrayPick(id, QUIT);
    EXPECT_TRUE(TrayCodes().empty());
    EXPECT_TRUE(Commands().empty());
}

TEST_F(TrayIconTest, AddRefusesOnlyANullOwnerOrASecondAdd) {
    STrayIcon tray;
    EXPECT_FALSE(tray.Add(0, icon, "tip"));
    EXPECT_FALSE(tray.ChangeTip("before add"));
    EXPECT_TRUE(tray.Add(owner.GetHandle(), icon, "tip"));
    EXPECT_FALSE(tray.Add(owner.GetHandle(), icon, "again"));
    EXPECT_TRUE(tray.ChangeTip("Playing"));
    SImage other;
    other.Create(24, 24, PIXEL_FORMAT_32ARGB);
    EXPECT_TRUE(tray.ChangeIcon(other, "media-playback-start"));
    SHeadlessPlatform::TrayIcon record = Record(tray);
    EXPECT_EQ(record.tip, "Playing");
    EXPECT_EQ(record.iconName, "media-playback-start");
    EXPECT_EQ(record.icon.GetWidth(), 24);
}

TEST_F(TrayIconTest, PicksInTheDesktopsMenuArriveAsCommands) {
    STrayIcon tray;
    tray.SetMenu(&menu); // before the icon: given when it is added
    ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "tip"));
    SHeadlessPlatform::TrayIcon record = Record(tray);
    EXPECT_EQ(record.menu, STrayIcon::MirrorMenu(menu));
    platform->TrayPick(tray.GetId(), QUIT);
    platform->TrayPick(tray.GetId(), SUB_A);
    EXPECT_EQ(Commands(), (std::vector<int>{QUIT, SUB_A}));
}

TEST_F(TrayIconTest, TheMenuIsGivenAgainOnlyWhenItChanged) {
    STrayIcon tray;
    ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "tip"));
    tray.SetMenu(&menu);
    int given = Record(tray).menuUpdates;
    tray.UpdateMenu();
    tray.UpdateMenu();
    EXPECT_EQ(Record(tray).menuUpdates, given) << "nothing changed";

    // The window was shown: the owner renames the toggle item.
    menu.FindItem(TOGGLE)->text = "&Show Window";
    tray.UpdateMenu();
    SHeadlessPlatform::TrayIcon record = Record(tray);
    EXPECT_EQ(record.menuUpdates, given + 1);
    EXPECT_EQ(record.menu[2].text, "_Show Window");
    menu.CheckItem(PLAY, true);
    tray.UpdateMenu();
    EXPECT_TRUE(Record(tray).menu[0].checked);

    tray.SetMenu(nullptr);
    EXPECT_TRUE(Record(tray).menu.empty());
}

TEST_F(TrayIconTest, ShowMenuUsesThePlatformsMenuOrTheToolkitsOwn) {
    STrayIcon tray;
    ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "tip"));
    EXPECT_FALSE(tray.ShowMenu()) << "no menu yet";
    tray.SetMenu(&menu);
    menu.FindItem(TOGGLE)->text = "&Show Window"; // changed by the owner on 0x14
    EXPECT_TRUE(tray.ShowMenu());
    SHeadlessPlatform::TrayIcon record = Record(tray);
    EXPECT_EQ(record.popups, 1);
    EXPECT_EQ(record.menu[2].text, "_Show Window") << "brought up to date first";
    EXPECT_FALSE(menu.IsOpen());

    // A platform that leaves the menu to the program: the SMenu opens.
    platform->SetTrayPopupAvailable(false);
    EXPECT_TRUE(tray.ShowMenu());
    EXPECT_TRUE(menu.IsOpen());
    menu.Close();
}

TEST_F(TrayIconTest, WithoutANotificationAreaNothingShowsAndNothingFails) {
    platform->SetTrayAvailable(false);
    STrayIcon tray;
    tray.SetMenu(&menu);
    EXPECT_TRUE(tray.Add(owner.GetHandle(), icon, "Melkora Browser"));
    EXPECT_TRUE(tray.IsAdded());
    EXPECT_FALSE(tray.IsShown());
    EXPECT_TRUE(tray.ChangeTip("Playing"));
    EXPECT_EQ(tray.GetTip(), "Playing");
    EXPECT_TRUE(tray.ChangeIcon(icon));
    tray.UpdateMenu();
    SHeadlessPlatform::TrayIcon record;
    EXPECT_FALSE(platform->GetTrayIcon(tray.GetId(), &record));
    // The menu still opens, as the toolkit's own.
    EXPECT_TRUE(tray.ShowMenu());
    EXPECT_TRUE(menu.IsOpen());
    menu.Close();
    tray.Remove();
    EXPECT_FALSE(tray.IsAdded());
}

} // namespace
