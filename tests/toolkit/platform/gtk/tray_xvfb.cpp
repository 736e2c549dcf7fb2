// The tray icon on GTK under a virtual X display, which has no
// notification area of any kind: the icon is added, changed and removed
// without a failure or a crash, and shows nothing. With an XEmbed tray's
// selection taken, the platform picks the GtkStatusIcon.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "foundation/message_numbers.h"
#include "toolkit/menu.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/platform/gtk/gtk_tray.h"
#include "toolkit/tray_icon.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

// Notes the tray codes it hears.
class TrayOwner : public SWnd {
public:
    std::vector<int64_t> codes;
    std::vector<int> commands;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == SN_TRAY) {
            codes.push_back(static_cast<int64_t>(lParam));
            return 0;
        }
        if (message == WM_COMMAND) {
            commands.push_back(static_cast<int>(wParam));
            return 0;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
};

class GtkTray : public ::testing::Test {
protected:
    void SetUp() override {
        // No session bus, so no StatusNotifierItem host either (the test
        // with a host runs on a private bus of its own).
        if (getenv("MELKORA_TEST_PRIVATE_BUS") == nullptr) {
            setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/melkora-test-bus", 1);
        }
        ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
        ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
        SRect bounds{50, 50, 250, 150};
        ASSERT_TRUE(owner.Create("owner", 0, 0, &bounds, 0));
        icon.Create(22, 22, PIXEL_FORMAT_32ARGB);
        menu.AppendItem(14, "&Hide Window");
        menu.AppendSeparator();
        menu.AppendItem(22, "&Quit");
    }
    void TearDown() override {
        GtkTrayPretendXEmbedHost(false);
        owner.Destroy();
        ToolkitEnd();
    }
    // Lets GTK and the toolkit run for a while.
    void Spin(int milliseconds) {
        auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        PumpUntil([&] { return std::chrono::steady_clock::now() > until; });
    }
    TrayOwner owner;
    SImage icon;
    SMenu menu;
};

TEST_F(GtkTray, WithoutAnyTrayHostTheIconIsQuietlyAbsent) {
    if (getenv("MELKORA_TEST_PRIVATE_BUS") != nullptr) {
        GTEST_SKIP() << "runs without a session bus";
    }
    STrayIcon tray;
    tray.SetMenu(&menu);
    ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "Melkora Browser", "melkora-browser"));
    EXPECT_FALSE(tray.IsShown());
    EXPECT_EQ(GtkTrayKind(tray.GetId()), 0);
    Spin(300);
    EXPECT_TRUE(tray.ChangeTip("Playing"));
    EXPECT_TRUE(tray.ChangeIcon(icon));
    menu.FindItem(14)->text = "&Show Window";
    tray.UpdateMenu();
    Spin(100);
    tray.Remove();
    Spin(100);
}

TEST_F(GtkTray, AnXEmbedTrayGetsAStatusIcon) {
    if (getenv("MELKORA_TEST_PRIVATE_BUS") != nullptr) {
        GTEST_SKIP() << "runs without a session bus";
    }
    ASSERT_TRUE(GtkTrayPretendXEmbedHost(true));
    GtkSync();
    STrayIcon tray;
    tray.SetMenu(&menu);
    ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "Melkora Browser"));
    EXPECT_TRUE(tray.IsShown());
    EXPECT_EQ(GtkTrayKind(tray.GetId()), 2);
    Spin(200);
    EXPECT_TRUE(tray.ChangeTip("Playing"));
    menu.FindItem(14)->text = "&Show Window";
    tray.UpdateMenu();
    Spin(100);
    tray.Remove();
    EXPECT_EQ(GtkTrayKind(tray.GetId()), 0);
    Spin(100);
}

// On a private session bus (tray_host_xvfb in ctest, under
// dbus-run-session) with a watcher answering as a panel's does: the icon
// registers as a StatusNotifierItem, shows the tip as its title, and the
// host's SecondaryActivate (a middle click) picks the secondary item.
TEST_F(GtkTray, AWatcherOnTheBusGetsAStatusNotifierItem) {
    if (getenv("MELKORA_TEST_PRIVATE_BUS") == nullptr) {
        GTEST_SKIP() << "needs a private session bus (ctest runs it as tray_host_xvfb)";
    }
    if (!GtkTrayHasNotifierItems()) {
        GTEST_SKIP() << "built without libayatana-appindicator3";
    }
    ASSERT_TRUE(GtkTrayPretendNotifierWatcher());
    STrayIcon tray;
    tray.SetMenu(&menu);
    tray.SetSecondaryItem(14);
    // No theme icon of that name: the picture is written for the host.
    ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "Melkora Browser", "melkora-no-such-icon"));
    EXPECT_TRUE(tray.IsShown());
    EXPECT_EQ(GtkTrayKind(tray.GetId()), 1);
    ASSERT_TRUE(PumpUntil([] { return GtkTrayWatcherHasItem(); }, 10)) << "the item registered";

    SString value;
    ASSERT_TRUE(GtkTrayAskItemProperty("Title"));
    ASSERT_TRUE(PumpUntil([&] { return GtkTrayItemProperty("Title", &value); }));
    EXPECT_EQ(value, "Melkora Browser");
    ASSERT_TRUE(GtkTrayAskItemProperty("IconName"));
    ASSERT_TRUE(PumpUntil([&] { return GtkTrayItemProperty("IconName", &value); }));
    EXPECT_EQ(strncmp(value.c_str(), "melkora-tray-", 13), 0) << value.c_str();

    ASSERT_TRUE(GtkTrayCallItem("SecondaryActivate"));
    EXPECT_TRUE(PumpUntil([&] { return !owner.commands.empty(); }));
    EXPECT_EQ(owner.commands, (std::vector<int>{14}));
    EXPECT_TRUE(owner.codes.empty());

    EXPECT_TRUE(tray.ChangeTip("Playing"));
    ASSERT_TRUE(GtkTrayAskItemProperty("Title"));
    ASSERT_TRUE(PumpUntil([&] { return GtkTrayItemProperty("Title", &value); }));
    EXPECT_EQ(value, "Playing");
    EXPECT_TRUE(tray.ChangeIcon(icon));
    menu.FindItem(14)->text = "&Show Window";
    tray.UpdateMenu();
    Spin(100);
    EXPECT_EQ(GtkTrayKind(tray.GetId()), 1) << "the watcher answered: no fallback";
    tray.Remove();
    EXPECT_EQ(GtkTrayKind(tray.GetId()), 0);
    Spin(100);
}

} // namespace
