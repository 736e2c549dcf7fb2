// The edit control on GTK under a virtual X display: keys typed through the
// X test extension pass the input method and land in the edit; a picture
// of the edit's looks for the documentation.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>

#include "foundation/file.h"
#include "toolkit/edit_ctrl.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/platform/platform.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

class GtkEdit : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
        ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
        SRect bounds{40, 40, 420, 300};
        ASSERT_TRUE(top.Create("edit", WS_VISIBLE, 0, &bounds, 0));
        SSize size;
        ASSERT_TRUE(PumpUntil(
            [&] { return GtkGetSurfaceSize(top.GetHandle(), &size) && size.width == 380; }));
    }
    void TearDown() override {
        for (SEditCtrl* edit : {&line, &password, &multi, &readOnly, &disabled}) {
            edit->Destroy();
        }
        top.Destroy();
        ToolkitEnd();
    }
    SWnd top;
    SEditCtrl line, password, multi, readOnly, disabled;
};

TEST_F(GtkEdit, KeysTypedOnTheDisplayReachTheEdit) {
    ASSERT_TRUE(line.Create(&top, SRect{20, 20, 360, 50}, 1, 0, ""));
    ASSERT_TRUE(password.Create(&top, SRect{20, 60, 360, 90}, 2, EDIT_PASSWORD, "secret"));
    ASSERT_TRUE(multi.Create(&top, SRect{20, 100, 360, 180}, 3, EDIT_MULTILINE,
                             "Several lines of text\nwith a second line\nand a third, "
                             "long enough to wrap round at the edge of the box"));
    ASSERT_TRUE(readOnly.Create(&top, SRect{20, 190, 360, 220}, 4, EDIT_READONLY, "read only"));
    ASSERT_TRUE(disabled.Create(&top, SRect{20, 230, 360, 255}, 5, 0, "disabled"));
    disabled.Enable(false);
    ASSERT_TRUE(GtkSimulateClick(top.GetHandle(), 100, 35));
    ASSERT_TRUE(PumpUntil([&] { return GetFocus() == line.GetHandle(); }))
        << "a click gives the edit the focus";
    const std::pair<unsigned, const char*> keys[] = {
        {'H', "h"},      {'E', "he"},      {'L', "hel"},      {'L', "hell"},        {'O', "hello"},
        {' ', "hello "}, {'4', "hello 4"}, {'2', "hello 42"}, {VK_BACK, "hello 4"},
    };
    for (const auto& [key, expected] : keys) {
        ASSERT_TRUE(GetPlatform()->PressKey(key));
        EXPECT_TRUE(PumpUntil([&] { return std::string(line.GetText().c_str()) == expected; }))
            << "the edit holds \"" << line.GetText().c_str() << "\", not \"" << expected << "\"";
    }
    auto later = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
    PumpUntil([&] { return std::chrono::steady_clock::now() > later; });
    EXPECT_EQ(std::string(line.GetText().c_str()), "hello 4") << "each key once";
    // A selection in the many-line edit for the picture; the caret shown.
    multi.SetSel(9, 14);
    line.SetSel(0, 5);
    SetFocus(line.GetHandle());
    auto settle = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
    PumpUntil([&] { return std::chrono::steady_clock::now() > settle; });
    SImage shot;
    ASSERT_TRUE(PumpUntil([&] {
        return GtkCaptureSurface(top.GetHandle(), &shot) && shot.GetWidth() == 380 &&
               (shot.GetPixel(20, 20) & 0xFFFFFF) != (shot.GetPixel(20, 190) & 0xFFFFFF) &&
               (shot.GetPixel(20, 20) & 0xFFFFFF) != (shot.GetPixel(20, 60) & 0xFFFFFF);
    })) << "the focus ring was not drawn";
    SFilePath png;
    std::string path = MELKORA_SCREENSHOT;
    path = path.substr(0, path.rfind('/') + 1) + "edit.png";
    if (png.Open(path.c_str(), true, true, false, false)) {
        shot.Save(&png, IMAGE_PNG);
        png.Close();
    }
}

} // namespace
