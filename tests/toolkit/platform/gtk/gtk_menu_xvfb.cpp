// The toolkit-drawn menu on GTK under a virtual X display: a right click
// opens a popup menu, keys typed through the X test extension move in it
// and into its submenu, and Enter sends the command to the window; a
// picture of the open menu for the documentation.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "foundation/file.h"
#include "toolkit/ctrl_common.h"
#include "toolkit/menu.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

enum : int { PLAY = 10, QUEUE = 11, REMOVE = 12, TO_START = 20, TO_END = 21, SHUFFLE = 22 };

// Opens its menu where it is right-clicked and notes the commands.
class OwnerWnd : public SWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_RBUTTONUP && menu != nullptr) {
            SPoint at{PointParamX(lParam), PointParamY(lParam)};
            ClientToScreen(&at);
            menu->TrackPopup(GetHandle(), at.x, at.y);
            return 0;
        }
        if (message == WM_COMMAND) {
            commands.push_back(static_cast<int>(wParam));
            return 0;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    SMenu* menu = nullptr;
    std::vector<int> commands;
};

void Settle(int milliseconds) {
    auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    PumpUntil([&] { return std::chrono::steady_clock::now() > until; });
}

TEST(GtkMenu, RightClickOpensAMenuThatKeysNavigateAndPick) {
    ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    {
        SMenu menu;
        menu.AppendItem(PLAY, "&Play\tEnter");
        menu.AppendItem(QUEUE, "&Queue\tCtrl+Q", MENU_ITEM_CHECKED);
        menu.AppendSeparator();
        menu.AppendItem(REMOVE, "&Remove\tDelete", MENU_ITEM_DISABLED);
        SMenu* move = menu.AppendSubmenu("&Move to");
        move->AppendItem(TO_START, "&Start");
        move->AppendItem(TO_END, "&End");
        move->AppendItem(SHUFFLE, "S&huffle", MENU_ITEM_DISABLED);

        OwnerWnd top;
        top.menu = &menu;
        SRect bounds{40, 40, 440, 300};
        ASSERT_TRUE(top.Create("menu", WS_VISIBLE, 0, &bounds, 0));
        SSize size;
        ASSERT_TRUE(PumpUntil(
            [&] { return GtkGetSurfaceSize(top.GetHandle(), &size) && size.width == 400; }));
        Settle(200);
        ASSERT_TRUE(GtkSimulateButtonClick(top.GetHandle(), 60, 40, 3));
        ASSERT_TRUE(PumpUntil([&] { return menu.IsOpen(); })) << "the right click opens it";
        ASSERT_TRUE(PumpUntil([&] { return GetFocus() == menu.GetLevel(0)->GetHandle(); }));
        Settle(200);

        // Down to Play, Queue, over the separator and Remove to Move to.
        for (unsigned key : {ctrlkey::DOWN, ctrlkey::DOWN, ctrlkey::DOWN}) {
            ASSERT_TRUE(GetPlatform()->PressKey(key));
        }
        ASSERT_TRUE(PumpUntil([&] { return menu.GetHot(0) == 4; })) << menu.GetHot(0);
        ASSERT_TRUE(GetPlatform()->PressKey(ctrlkey::RIGHT));
        ASSERT_TRUE(PumpUntil([&] { return menu.GetLevelCount() == 2; }));
        ASSERT_TRUE(GetPlatform()->PressKey(ctrlkey::DOWN));
        ASSERT_TRUE(PumpUntil([&] { return menu.GetHot(1) == 1; }));
        Settle(300);

        SRect first = menu.GetLevel(0)->GetWindowRect();
        SRect second = menu.GetLevel(1)->GetWindowRect();
        SRect window = top.GetWindowRect();
        SRect area{window.left, window.top, std::max(window.right, second.right + 10),
                   std::max(window.bottom, std::max(first.bottom, second.bottom) + 10)};
        SImage shot;
        ASSERT_TRUE(GtkCaptureScreen(area, &shot));
        SFilePath png;
        std::string path = MELKORA_SCREENSHOT;
        path = path.substr(0, path.rfind('/') + 1) + "menu.png";
        if (png.Open(path.c_str(), true, true, false, false)) {
            shot.Save(&png, IMAGE_PNG);
            png.Close();
        }

        ASSERT_TRUE(GetPlatform()->PressKey(VK_RETURN));
        ASSERT_TRUE(PumpUntil([&] { return !top.commands.empty(); })) << "no WM_COMMAND";
        EXPECT_EQ(top.commands, std::vector<int>{TO_END});
        EXPECT_FALSE(menu.IsOpen());
        top.Destroy();
    }
    ToolkitEnd();
}

} // namespace
