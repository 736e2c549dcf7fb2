// The three dialogs the program embeds, built from their definitions on GTK
// under a virtual X display: each control stands where its record puts it
// with its record's text, every control with a text draws it, and the
// picture read back from the X server is saved (the build folder's
// dialog-*.png, checked in under docs/).
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "app/resources.h"
#include "dialogs/dialog_definition.h"
#include "dialogs/wnd_dialog.h"
#include "editors/code_edit_ctrl.h"
#include "foundation/file.h"
#include "panels/resources.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/edit_ctrl.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/sys_colors.h"
#include "toolkit/wnd_app.h"

namespace {

uint32_t ToRgb(uint32_t color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

// How many pixels of rect differ from background.
int Differing(const SImage& shot, const SRect& rect, uint32_t background) {
    int count = 0;
    for (int y = std::max(rect.top, 0); y < rect.bottom && y < shot.GetHeight(); ++y) {
        for (int x = std::max(rect.left, 0); x < rect.right && x < shot.GetWidth(); ++x) {
            count += (shot.GetPixel(x, y) & 0xFFFFFF) != background ? 1 : 0;
        }
    }
    return count;
}

struct Shown {
    unsigned resource;
    const char* file;
    // What the program sets before it shows the dialog.
    const char* caption;
    std::vector<std::pair<const char*, const char*>> texts;
};

class GtkDialogs : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        started = UseGtkPlatform() && ToolkitStart(nullptr, SW_SHOW, false, false, false);
        EnsureAppResources();
        EnsurePanelsResources();
    }
    static void TearDownTestSuite() {
        if (started) {
            ToolkitEnd();
        }
    }

    // Builds, fills, shows and photographs one dialog, and checks it.
    void Check(const Shown& shown) {
        ASSERT_TRUE(started) << "no X display: run under xvfb-run";
        SFileMem file("BINARY", shown.resource);
        ASSERT_GT(file.GetSize(), 0) << shown.resource << " is embedded";
        SDialogDefinition definition;
        ASSERT_TRUE(definition.Load(&file));
        file.Rewind();
        SWndDialog dialog;
        ASSERT_TRUE(dialog.CreateFromDefinition(&file));
        ASSERT_EQ(dialog.GetControlCount(), definition.GetControlCount());
        // Each control where its record puts it, with its record's text.
        for (int i = 0; i < definition.GetControlCount(); ++i) {
            const SDialogDefinition::_SCtrl* record = definition.GetControl(i);
            SWnd* control = dialog.GetControl(record->name.c_str());
            ASSERT_NE(control, nullptr) << record->name.c_str();
            EXPECT_EQ(control->GetRect(), (SRect{record->x, record->y, record->x + record->width,
                                                 record->y + record->height}))
                << record->name.c_str();
            EXPECT_EQ(control->GetText(), record->caption) << record->name.c_str();
            EXPECT_EQ(control->GetId(), static_cast<uintptr_t>(record->id));
        }
        dialog.SetText(shown.caption);
        for (const auto& [name, text] : shown.texts) {
            SWnd* control = dialog.GetControl(name);
            ASSERT_NE(control, nullptr) << name;
            if (auto* code = dynamic_cast<SCodeEditCtrl*>(control)) {
                code->SetText(text);
            } else {
                control->SetText(text);
            }
            // As the program shows them: an edit's text selected whole.
            if (auto* edit = dynamic_cast<SEditCtrl*>(control);
                edit != nullptr &&
                definition.FindControl(name)->GetPropertyBool("EDIT_SELECTALL")) {
                edit->SetSel(0, edit->Model().Text().size());
            }
        }
        if (auto* check = dialog.GetControlAs<SCheckCtrl>("CHECK_TASKBAR")) {
            check->SetCheck(true);
        }
        if (SWnd* swatch = dialog.GetControl("TASK_TEXT")) {
            swatch->SetBackColor(0x0000A0FFu); // an orange text colour
        }
        dialog.Show(SW_SHOW);
        const uint32_t face = ToRgb(GetSysColor(SYS_COLOR_BTNFACE));
        SImage shot;
        SWnd* first = dialog.GetControlAt(0);
        ASSERT_TRUE(PumpUntil([&] {
            return GtkCaptureSurface(dialog.GetHandle(), &shot) &&
                   shot.GetWidth() >= dialog.GetClientWidth() &&
                   Differing(shot, first->GetRect(), face) > 20;
        })) << "the dialog was not drawn";
        PumpUntil([] { return false; }, 1);
        ASSERT_TRUE(GtkCaptureSurface(dialog.GetHandle(), &shot));
        SFilePath png;
        std::string path = std::string(MELKORA_SCREENSHOT_DIR) + "/" + shown.file;
        if (png.Open(path.c_str(), true, true, false, false)) {
            shot.Save(&png, IMAGE_PNG);
            png.Close();
        }
        // Every control with a text draws something over the face colour.
        for (int i = 0; i < dialog.GetControlCount(); ++i) {
            SWnd* control = dialog.GetControlAt(i);
            if (!control->GetText().IsEmpty()) {
                EXPECT_GT(Differing(shot, control->GetRect(), face), 30)
                    << dialog.GetControlName(control).c_str() << " draws its text";
            }
        }
        dialog.Destroy();
    }
    static bool started;
};

bool GtkDialogs::started = false;

TEST_F(GtkDialogs, Preferences) {
    Check({RESOURCE_PREFERENCES_DIALOG,
           "dialog-preferences.png",
           "Preferences",
           {{"EDIT_FOLDER", "/home/ann/Music"},
            {"EDIT_IMAGES", "Artwork;Scans"},
            {"EDIT_EMAILS", "ann@example.org\nband@example.org"}}});
}

TEST_F(GtkDialogs, FolderProperties) {
    Check({RESOURCE_PROPERTIES_DIALOG,
           "dialog-properties.png",
           "Properties",
           {{"EDIT_SITE", "https://example.org/kind-of-blue"}}});
}

TEST_F(GtkDialogs, PlaylistName) {
    Check({RESOURCE_PLAYLIST_NAME_DIALOG,
           "dialog-playlist-name.png",
           "Playlist",
           {{"EDIT_NAME", "Road trip"}}});
}

// The playlist name box run modally over a main window on GTK, as the
// program runs it: the main window waits, OK ends the run with 0, and the
// box stays, hidden, for its text to be read.
class Helper : public SWnd {
public:
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_USER && step) {
            step();
            return 0;
        }
        return SWnd::OnMessage(message, wParam, lParam);
    }
    std::function<void()> step;
};

TEST_F(GtkDialogs, AModalRunOverTheMainWindow) {
    ASSERT_TRUE(started) << "no X display: run under xvfb-run";
    SWnd main;
    SRect bounds{50, 50, 650, 450};
    ASSERT_TRUE(main.Create("Melkora", WS_VISIBLE | WS_CAPTION, 0, &bounds, 0));
    Helper helper;
    SRect none{0, 0, 1, 1};
    ASSERT_TRUE(helper.Create("", 0, 0, &none, 0));
    SFileMem file("BINARY", RESOURCE_PLAYLIST_NAME_DIALOG);
    SWndDialog dialog;
    SDialogBuildOptions options;
    options.parent = &main;
    options.forcePopup = true;
    ASSERT_TRUE(dialog.CreateFromDefinition(&file, options));
    EXPECT_EQ(dialog.GetOwner(), main.GetHandle());
    dialog.GetControl("EDIT_NAME")->SetText("Road trip");
    bool mainWaited = false, shownDuring = false;
    helper.step = [&] {
        mainWaited = !main.IsEnabled();
        shownDuring = dialog.IsVisible();
        static_cast<SButtonCtrl*>(dialog.GetControl("OK"))->Press();
    };
    PostMessage(helper.GetHandle(), WM_USER, 0, 0);
    EXPECT_EQ(dialog.DoModal(), 0);
    EXPECT_TRUE(mainWaited);
    EXPECT_TRUE(shownDuring);
    EXPECT_TRUE(main.IsEnabled());
    EXPECT_FALSE(dialog.IsVisible());
    EXPECT_EQ(dialog.GetControl("EDIT_NAME")->GetText(), SString("Road trip"));
    dialog.Destroy();
    helper.Destroy();
    main.Destroy();
}

} // namespace
