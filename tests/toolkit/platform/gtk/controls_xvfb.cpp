// Every simple control and a tree on GTK under a virtual X display, in
// their normal, hovered, focused, checked and disabled states. The picture
// read back from the X server is saved (the build folder's controls.png,
// checked in as docs/controls.png) and a few pixels of each control are
// compared, so that a control that stops drawing, or draws every state
// alike, fails.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "foundation/file.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/pane_ctrls.h"
#include "toolkit/platform/gtk/gtk_platform.h"
#include "toolkit/platform/gtk/gtk_pump.h"
#include "toolkit/range_ctrls.h"
#include "toolkit/sys_colors.h"
#include "toolkit/tree_ctrl.h"
#include "toolkit/wnd.h"
#include "toolkit/wnd_app.h"

namespace {

enum State { NORMAL, HOVERED, FOCUSED, CHECKED, DISABLED, STATE_COUNT };
const char* const STATE_NAMES[STATE_COUNT] = {"normal", "hovered", "focused", "checked",
                                              "disabled"};
const char* const ROW_NAMES[] = {"Button", "Check",    "Radio", "Scroll",
                                 "Slider", "Progress", "Label", "Static"};
constexpr int ROWS = 8;
constexpr int CELL_LEFT = 80;
constexpr int CELL_WIDTH = 128;
constexpr int CELL_HEIGHT = 26;
constexpr int ROW_STEP = 32;
constexpr int FIRST_ROW = 30;

SRect Cell(int row, int state) {
    int left = CELL_LEFT + state * (CELL_WIDTH + 8);
    int top = FIRST_ROW + row * ROW_STEP;
    return SRect{left, top, left + CELL_WIDTH, top + CELL_HEIGHT};
}

uint32_t ToRgb(uint32_t color) {
    return ((color & 0xFF) << 16) | (color & 0xFF00) | ((color >> 16) & 0xFF);
}

// How many pixels of rect differ from background.
int Differing(const SImage& shot, const SRect& rect, uint32_t background) {
    int count = 0;
    for (int y = rect.top; y < rect.bottom && y < shot.GetHeight(); ++y) {
        for (int x = rect.left; x < rect.right && x < shot.GetWidth(); ++x) {
            count += (shot.GetPixel(x, y) & 0xFFFFFF) != background ? 1 : 0;
        }
    }
    return count;
}

// How many pixels differ between the same rect of two pictures.
int Changed(const SImage& one, const SImage& two, const SRect& rect) {
    int count = 0;
    for (int y = rect.top; y < rect.bottom; ++y) {
        for (int x = rect.left; x < rect.right; ++x) {
            count += (one.GetPixel(x, y) & 0xFFFFFF) != (two.GetPixel(x, y) & 0xFFFFFF) ? 1 : 0;
        }
    }
    return count;
}

// Copies rect of source into target (both 32-bit pictures of one size).
void Paste(SImage* target, const SImage& source, const SRect& rect) {
    uint32_t* bits = target->GetBits();
    for (int y = rect.top; y < rect.bottom; ++y) {
        for (int x = rect.left; x < rect.right; ++x) {
            bits[y * target->GetWidth() + x] = source.GetPixel(x, y);
        }
    }
}

TEST(GtkControls, EveryControlDrawsEachOfItsStates) {
    ASSERT_TRUE(UseGtkPlatform()) << "no X display: run under xvfb-run";
    ASSERT_TRUE(ToolkitStart(nullptr, SW_SHOW, false, false, false));
    {
        SWnd top;
        SRect bounds{20, 20, 20 + 780, 20 + 520};
        ASSERT_TRUE(top.Create("Melkora controls", WS_VISIBLE, 0, &bounds, 0));
        const uint32_t face = GetSysColor(SYS_COLOR_BTNFACE);
        top.SetBackColor(face);
        HWND parent = top.GetHandle();
        std::vector<std::unique_ptr<SWnd>> owned;
        auto make = [&](SWnd* window, const char* text, SRect rect, unsigned style = 0) {
            owned.emplace_back(window);
            EXPECT_TRUE(window->Create(text, WS_VISIBLE | style, 0, &rect, parent));
            return window;
        };
        SImage picture;
        picture.Create(16, 16, PIXEL_FORMAT_32ARGB);
        picture.Fill(0xFF3070C0u);
        SRect inner{4, 4, 12, 12};
        picture.Fill(0xFFF0D040u, &inner);

        for (int state = 0; state < STATE_COUNT; ++state) {
            SRect header = Cell(0, state);
            make(new SLabelCtrl, STATE_NAMES[state], SRect{header.left, 6, header.right, 24});
        }
        SWnd* cells[ROWS][STATE_COUNT] = {};
        for (int row = 0; row < ROWS; ++row) {
            SRect cell = Cell(row, 0);
            make(new SLabelCtrl, ROW_NAMES[row], SRect{8, cell.top, CELL_LEFT - 4, cell.bottom});
            for (int state = 0; state < STATE_COUNT; ++state) {
                SRect rect = Cell(row, state);
                unsigned style = row == 2 && state == 0 ? RADIO_GROUP : 0;
                SWnd* control = nullptr;
                switch (row) {
                case 0:
                    control = make(new SButtonCtrl, "Play", rect);
                    break;
                case 1:
                    control = make(new SCheckCtrl, "Shuffle", rect);
                    break;
                case 2:
                    control = make(new SRadioCtrl, "Album", rect, style);
                    break;
                case 3: {
                    auto* scroll = new SScrollCtrl;
                    make(scroll, "", SRect{rect.left, rect.top + 5, rect.right, rect.top + 21});
                    scroll->SetRange(0, 100);
                    scroll->SetValue(state == CHECKED ? 80 : 30);
                    control = scroll;
                    break;
                }
                case 4: {
                    auto* slider = new SSliderCtrl;
                    make(slider, "", rect);
                    slider->SetRange(0, 100);
                    slider->SetValue(state == CHECKED ? 80 : 40);
                    control = slider;
                    break;
                }
                case 5: {
                    auto* progress = new SProgressCtrl;
                    make(progress, "", SRect{rect.left, rect.top + 7, rect.right, rect.top + 19});
                    progress->SetValue(state == CHECKED ? 100 : 60);
                    control = progress;
                    break;
                }
                case 6: {
                    auto* label = new SLabelCtrl;
                    make(label, "Artist", rect);
                    label->SetImage(&picture);
                    control = label;
                    break;
                }
                default: {
                    auto* plain = new SStaticCtrl;
                    make(plain, "", rect);
                    plain->SetEdges(state == CHECKED ? 15 : STATIC_EDGE_TOP | STATIC_EDGE_BOTTOM);
                    plain->SetImage(&picture);
                    control = plain;
                    break;
                }
                }
                cells[row][state] = control;
                if (state == CHECKED) {
                    if (auto* check = dynamic_cast<SCheckCtrl*>(control)) {
                        check->SetCheck(true);
                    } else if (auto* button = dynamic_cast<SButtonCtrl*>(control)) {
                        button->SetPushed(true);
                    }
                }
                if (state == DISABLED) {
                    control->Enable(false);
                    if (auto* check = dynamic_cast<SCheckCtrl*>(control)) {
                        check->SetCheck(true);
                    }
                }
                if (state == HOVERED) {
                    SendMessage(control->GetHandle(), SM_MOUSE_ENTER, 0, 0);
                }
            }
        }

        // The second part: a tree, a group, tabs, a panel, a splitter and a
        // GUI view.
        auto* tree = new STreeCtrl;
        make(tree, "", SRect{10, 300, 230, 446}, TVS_CHECKBOXES);
        int folderImage = tree->AddImage(picture);
        HTREEITEM music = tree->AddItem("Music", folderImage, folderImage);
        HTREEITEM jazz = tree->AddItem("Jazz", folderImage, folderImage, music);
        tree->AddItem("Kind of Blue", -1, -1, jazz);
        tree->AddItem("Blue Train", -1, -1, jazz);
        HTREEITEM rock = tree->AddItem("Rock", folderImage, folderImage, music);
        tree->AddItem("Playlists");
        tree->Expand(music, TVE_EXPAND);
        tree->Expand(jazz, TVE_EXPAND);
        tree->SetCheck(jazz, true);
        tree->SelectItem(rock);
        tree->AddFileItem("/music/track.ogg", rock);
        tree->Expand(rock, TVE_EXPAND);
        // The pointer rests on the last row.
        SendMessage(tree->GetHandle(), WM_MOUSEMOVE, 0,
                    MakePointParam(60, tree->GetRowHeight() * 6 + tree->GetRowHeight() / 2));
        auto* disabledTree = new STreeCtrl;
        make(disabledTree, "", SRect{10, 452, 230, 510});
        HTREEITEM genres = disabledTree->AddItem("Genres");
        disabledTree->AddItem("Folk", -1, -1, genres);
        disabledTree->Expand(genres, TVE_EXPAND);
        disabledTree->SelectItem(genres);
        disabledTree->Enable(false);

        auto* group = new SGroupCtrl;
        make(group, "Playback", SRect{240, 300, 400, 400});
        make(new SCheckCtrl, "Repeat", SRect{252, 322, 390, 346});
        make(new SButtonCtrl, "Stop", SRect{252, 356, 330, 386});
        auto* centered = new SGroupCtrl;
        make(centered, "Centred", SRect{240, 410, 400, 510});
        centered->SetAlign(SAlign::CENTER);
        auto* disabledGroup = new SLabelCtrl;
        make(disabledGroup, "Justified label text that wraps", SRect{250, 432, 390, 500});
        disabledGroup->SetAlign(SAlign::JUSTIFY);

        auto* tab = new STabCtrl;
        make(tab, "", SRect{410, 300, 600, 430});
        tab->AddPage("General");
        tab->AddPage("Sound");
        SWnd* onFirst = make(new SCheckCtrl, "Autoplay", SRect{422, 340, 590, 364});
        SWnd* onSecond = make(new SSliderCtrl, "", SRect{422, 340, 590, 364});
        tab->AddToPage(0, onFirst);
        tab->AddToPage(1, onSecond);
        tab->SelectPage(1);
        tab->SelectPage(0);

        auto* panel = new SPanelCtrl;
        make(panel, "", SRect{410, 440, 600, 510});
        panel->AddGroup("Commands");
        panel->AddItem(0, "Bold", true);
        panel->AddItem(0, "Italic");

        auto* splitter = new SSplitterCtrl;
        splitter->SetGrid(2, 2);
        make(splitter, "", SRect{610, 300, 770, 400});
        auto* gui = new SGuiCtrl;
        make(gui, "", SRect{610, 410, 770, 510});
        gui->AddBar(SGuiCtrl::TOP, 18);
        gui->AddBar(SGuiCtrl::LEFT, 4);

        SImage shot;
        auto capture = [&](SImage* into) { return GtkCaptureSurface(parent, into); };
        ASSERT_TRUE(PumpUntil([&] {
            return capture(&shot) && shot.GetWidth() >= 780 &&
                   Differing(shot, Cell(0, 0), ToRgb(face)) > 100;
        })) << "the window was not drawn";
        PumpUntil([] { return false; }, 1);
        ASSERT_TRUE(capture(&shot));

        // Each focused cell: its control takes the focus in turn, and the
        // picture keeps the cell as it then showed.
        SImage composite;
        composite.CopyFrom(&shot);
        for (int row = 0; row < ROWS; ++row) {
            SWnd* control = cells[row][FOCUSED];
            SetFocus(control->GetHandle());
            SImage focused;
            SRect rect = Cell(row, FOCUSED);
            bool differs =
                PumpUntil([&] { return capture(&focused) && Changed(focused, shot, rect) > 0; }, 2);
            // Labels and statics take no focus: they look as they did.
            bool takesFocus = row < 5;
            EXPECT_EQ(differs, takesFocus) << ROW_NAMES[row] << " focused";
            Paste(&composite, focused, rect);
        }
        SetFocus(tree->GetHandle());
        SImage withTree;
        SRect treeRect = tree->GetRect();
        EXPECT_TRUE(PumpUntil(
            [&] { return capture(&withTree) && Changed(withTree, shot, treeRect) > 0; }, 2))
            << "the tree shows its focus";
        Paste(&composite, withTree, treeRect);

        SFilePath png;
        if (png.Open(MELKORA_CONTROLS_SHOT, true, true, false, false)) {
            composite.Save(&png, IMAGE_PNG);
            png.Close();
        }

        const uint32_t back = ToRgb(face);
        for (int row = 0; row < ROWS; ++row) {
            for (int state = 0; state < STATE_COUNT; ++state) {
                EXPECT_GT(Differing(composite, Cell(row, state), back), 20)
                    << ROW_NAMES[row] << " " << STATE_NAMES[state] << " draws nothing";
            }
            // Disabled and checked look unlike normal; so does hovered for
            // the controls that show it.
            SRect normal = Cell(row, NORMAL);
            auto differsFromNormal = [&](int state) {
                SRect other = Cell(row, state);
                int count = 0;
                for (int y = 0; y < normal.Height(); ++y) {
                    for (int x = 0; x < normal.Width(); ++x) {
                        count +=
                            (composite.GetPixel(normal.left + x, normal.top + y) & 0xFFFFFF) !=
                                    (composite.GetPixel(other.left + x, other.top + y) & 0xFFFFFF)
                                ? 1
                                : 0;
                    }
                }
                return count;
            };
            if (row <= 2 || row == 4) {
                EXPECT_GT(differsFromNormal(HOVERED), 0) << ROW_NAMES[row] << " hovered";
            }
            if (row <= 5 || row == 7) {
                EXPECT_GT(differsFromNormal(CHECKED), 0) << ROW_NAMES[row] << " checked";
            }
            if (row <= 6) {
                EXPECT_GT(differsFromNormal(DISABLED), 0) << ROW_NAMES[row] << " disabled";
            }
        }
        // A checked box is filled with the accent colour round its mark.
        SRect checkCell = Cell(1, CHECKED);
        int markTop = checkCell.top + (CELL_HEIGHT - 14) / 2;
        EXPECT_EQ(composite.GetPixel(checkCell.left + 4, markTop + 2) & 0xFFFFFF,
                  ToRgb(GetSysColor(SYS_COLOR_HIGHLIGHT)));
        // The second part draws: the tree's selected row, each container.
        for (SWnd* window :
             std::vector<SWnd*>{tree, disabledTree, group, tab, panel, splitter, gui}) {
            SRect rect = window->GetRect();
            EXPECT_GT(Differing(composite, rect, back), rect.Width() * rect.Height() / 20)
                << "a container draws nothing";
        }
        EXPECT_TRUE(onFirst->IsVisible());
        EXPECT_FALSE(onSecond->IsVisible());

        for (auto it = owned.rbegin(); it != owned.rend(); ++it) {
            (*it)->Destroy();
        }
        top.Destroy();
    }
    ToolkitEnd();
}

} // namespace
