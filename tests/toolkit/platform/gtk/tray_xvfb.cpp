// The tray icon on GTK under a virtual X display, which has no
// notification area of any kind: the icon is added, changed and removed
// without a failure or a crash, and shows nothing. With an XEmbed tray's
// selection taken, the platform picks the GtkStatusIcon.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

#include "toolkit/menu.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/platform/gtk/gtk_tray.h"
#include "toolkit/tray_icon.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

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
    SWnd owner;
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
// dbus-run-session) with a watcher's name taken: the icon is made a
// StatusNotifierItem. The watcher answers nothing; whether the library
// keeps waiting or gives up and asks for a GtkStatusIcon (which the
// platform makes its own), the icon stays and every change goes through.
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
    // No theme icon of that name: the picture is written for the host.
    ASSERT_TRUE(tray.Add(owner.GetHandle(), icon, "Melkora Browser", "melkora-no-such-icon"));
    EXPECT_TRUE(tray.IsShown());
    EXPECT_EQ(GtkTrayKind(tray.GetId()), 1);
    Spin(500);
    EXPECT_NE(GtkTrayKind(tray.GetId()), 0);
    EXPECT_TRUE(tray.ChangeIcon(icon));
    EXPECT_TRUE(tray.ChangeTip("Playing"));
    menu.FindItem(14)->text = "&Show Window";
    tray.UpdateMenu();
    Spin(100);
    tray.Remove();
    EXPECT_EQ(GtkTrayKind(tray.GetId()), 0);
    Spin(100);
}

} // namespace
