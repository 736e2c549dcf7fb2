// The simple controls on the headless platform: radio groups by arrows,
// tab pages showing and hiding their windows, scroll bar and slider values
// by keys and clicks, buttons and checks by keys, mouse events forwarded to
// the parent, the splitter's and the GUI control's limits, and disabled
// controls ignoring input.
#include <string>
#include <vector>

#include "foundation/keyboard.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/notification.h"
#include "toolkit/pane_ctrls.h"
#include "toolkit/range_ctrls.h"
#include "toolkit_fixture.h"

namespace {

// A parent that keeps each notification with its mouse record copied.
class Parent : public SWnd {
public:
    struct Note {
        unsigned message;
        SWnd* from;
        int64_t code;
        SMouseEvent mouse;
    };
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override {
        SNotification note(message, wParam, lParam);
        if (note.IsNotification()) {
            Note entry{message, note.Control(), note.Code(), {}};
            if (note.Mouse() != nullptr) {
                entry.mouse = *note.Mouse();
            }
            notes.push_back(entry);
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
    std::vector<Note> notes;
};

class SimpleCtrlsTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        ASSERT_TRUE(Make(top, "top", Rect(100, 100, 500, 400)));
    }
    void Key(SWnd& focus, unsigned code, unsigned modifiers = 0) {
        SetFocus(focus.GetHandle());
        platform->Key(top.GetHandle(), code, modifiers);
    }
    void Click(const SWnd& control, int x, int y) {
        SRect rect = control.GetRect();
        platform->Click(top.GetHandle(), rect.left + x, rect.top + y);
    }
    Parent top;
};

TEST_F(SimpleCtrlsTest, ArrowsMoveTheCheckWithinARadioGroupOnly) {
    SRadioCtrl radios[5];
    const unsigned styles[5] = {RADIO_GROUP | RADIO_CHECKED, 0, 0, RADIO_GROUP | RADIO_CHECKED, 0};
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(Make(radios[i], "radio", Rect(10, 10 + i * 24, 150, 32 + i * 24),
                         top.GetHandle(), WS_VISIBLE | styles[i]));
    }
    EXPECT_EQ(radios[0].GetGroup().size(), 3u);
    EXPECT_EQ(radios[4].GetGroup().size(), 2u);
    radios[2].Enable(false);
    struct Step {
        unsigned key;
        int checked; // the one checked in the first group afterwards
    };
    const Step steps[] = {
        {ctrlkey::DOWN, 1}, {ctrlkey::DOWN, 0}, // the disabled third is skipped, round to the first
        {ctrlkey::UP, 1},   {ctrlkey::LEFT, 0}, {ctrlkey::RIGHT, 1},
    };
    SWnd* focus = &radios[0];
    for (const Step& step : steps) {
        Key(*focus, step.key);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(radios[i].GetCheck(), i == step.checked)
                << "key " << step.key << " radio " << i;
        }
        EXPECT_EQ(GetFocus(), radios[step.checked].GetHandle());
        focus = &radios[step.checked];
    }
    EXPECT_TRUE(radios[3].GetCheck()) << "the second group keeps its own check";
    Click(radios[4], 5, 10);
    EXPECT_TRUE(radios[4].GetCheck());
    EXPECT_FALSE(radios[3].GetCheck());
    EXPECT_TRUE(radios[1].GetCheck());
}

TEST_F(SimpleCtrlsTest, SelectingATabShowsOnlyThatPagesWindows) {
    STabCtrl tab;
    SWnd first, second, shared;
    ASSERT_TRUE(Make(tab, "tab", Rect(0, 0, 300, 200), top.GetHandle()));
    ASSERT_TRUE(Make(first, "first", Rect(10, 40, 100, 80), top.GetHandle()));
    ASSERT_TRUE(Make(second, "second", Rect(10, 40, 100, 80), top.GetHandle()));
    ASSERT_TRUE(Make(shared, "shared", Rect(10, 90, 100, 120), top.GetHandle()));
    tab.AddPage("One");
    tab.AddPage("Two");
    tab.AddPage("Three");
    tab.AddToPage(0, &first);
    tab.AddToPage(0, &shared);
    tab.AddToPage(1, &second);
    tab.AddToPage(1, &shared);
    EXPECT_TRUE(first.IsVisible());
    EXPECT_FALSE(second.IsVisible());
    struct Step {
        unsigned key;
        unsigned modifiers;
        int page;
    };
    const Step steps[] = {
        {ctrlkey::NEXT, SKeyboard::MODIFIER_CTRL, 1},
        {ctrlkey::NEXT, SKeyboard::MODIFIER_CTRL, 2},
        {ctrlkey::NEXT, SKeyboard::MODIFIER_CTRL, 0}, // round
        {ctrlkey::PRIOR, SKeyboard::MODIFIER_CTRL, 2},
        {ctrlkey::LEFT, 0, 1},
        {ctrlkey::RIGHT, 0, 2},
    };
    for (const Step& step : steps) {
        Key(tab, step.key, step.modifiers);
        EXPECT_EQ(tab.GetSelectedPage(), step.page);
        EXPECT_EQ(first.IsVisible(), step.page == 0);
        EXPECT_EQ(second.IsVisible(), step.page == 1);
        EXPECT_EQ(shared.IsVisible(), step.page < 2);
    }
    EXPECT_EQ(top.Count(SN_TAB_SELECT), 6);
    // Ctrl+Tab as the control gets it.
    platform->SetModifiers(SKeyboard::MODIFIER_CTRL);
    SendMessage(tab.GetHandle(), WM_KEYDOWN, VK_TAB, 0);
    platform->SetModifiers(0);
    EXPECT_EQ(tab.GetSelectedPage(), 0);
    SRect second_tab = tab.GetTabRect(1);
    Click(tab, second_tab.left + 5, second_tab.top + 8);
    EXPECT_EQ(tab.GetSelectedPage(), 1);
    EXPECT_TRUE(second.IsVisible());
    EXPECT_FALSE(tab.SelectPage(3));
}

TEST_F(SimpleCtrlsTest, ScrollBarValueByKeysArrowsTroughAndThumb) {
    SScrollCtrl scroll;
    ASSERT_TRUE(Make(scroll, "scroll", Rect(0, 0, 216, 16), top.GetHandle()));
    scroll.SetRange(0, 100);
    scroll.SetSteps(1, 10);
    SetFocus(scroll.GetHandle());
    struct Step {
        unsigned key;
        int value;
    };
    const Step keys[] = {{ctrlkey::RIGHT, 1},  {ctrlkey::NEXT, 11},  {ctrlkey::END, 100},
                         {ctrlkey::DOWN, 100}, {ctrlkey::PRIOR, 90}, {ctrlkey::HOME, 0},
                         {ctrlkey::UP, 0}};
    for (const Step& step : keys) {
        Key(scroll, step.key);
        EXPECT_EQ(scroll.GetValue(), step.value) << "key " << step.key;
    }
    EXPECT_EQ(top.Count(SN_SCROLL_CHANGED), 5) << "only changes are told";
    Click(scroll, 210, 8); // the last arrow
    EXPECT_EQ(scroll.GetValue(), 1);
    Click(scroll, 150, 8); // the trough after the thumb
    EXPECT_EQ(scroll.GetValue(), 11);
    Click(scroll, 5, 8); // the first arrow
    EXPECT_EQ(scroll.GetValue(), 10);
    EXPECT_EQ(scroll.PartAt(SPoint{300, 8}), 0);
    // Dragging the thumb to the far end gives the maximum.
    SRect thumb = scroll.GetThumbRect();
    int y = 8;
    platform->Press(top.GetHandle(), thumb.left + 2, y);
    platform->MoveMouse(top.GetHandle(), 400, y, MK_LBUTTON);
    EXPECT_EQ(scroll.GetValue(), 100);
    platform->MoveMouse(top.GetHandle(), -50, y, MK_LBUTTON);
    EXPECT_EQ(scroll.GetValue(), 0);
    platform->Release(top.GetHandle(), -50, y);
    EXPECT_EQ(GetCapture(), 0u);
    scroll.SetRange(10, 5);
    EXPECT_EQ(scroll.GetMaximum(), 10);
    EXPECT_EQ(scroll.GetValue(), 10);
}

TEST_F(SimpleCtrlsTest, SliderFollowsClicksKeysAndTheWheel) {
    SSliderCtrl slider;
    ASSERT_TRUE(Make(slider, "slider", Rect(0, 0, 116, 24), top.GetHandle()));
    slider.SetRange(0, 10);
    slider.SetSteps(1, 5);
    Click(slider, 8, 12);
    EXPECT_EQ(slider.GetValue(), 0);
    Click(slider, 108, 12);
    EXPECT_EQ(slider.GetValue(), 10);
    Click(slider, 58, 12);
    EXPECT_EQ(slider.GetValue(), 5);
    Key(slider, ctrlkey::LEFT);
    EXPECT_EQ(slider.GetValue(), 4);
    Key(slider, ctrlkey::NEXT);
    EXPECT_EQ(slider.GetValue(), 9);
    platform->Wheel(top.GetHandle(), 50, 12, WHEEL_DELTA);
    EXPECT_EQ(slider.GetValue(), 6);
    EXPECT_GT(top.Count(SN_SCROLL_FORWARD), 0);
    EXPECT_EQ(top.Count(SN_SCROLL_CHANGED), 0) << "a slider tells with its own message";
}

TEST_F(SimpleCtrlsTest, ButtonsForwardTheMouseAndPressBySpaceAndEnter) {
    SButtonCtrl button;
    SCheckCtrl check;
    ASSERT_TRUE(Make(button, "OK", Rect(10, 10, 90, 40), top.GetHandle()));
    ASSERT_TRUE(Make(check, "Loop", Rect(10, 50, 150, 74), top.GetHandle()));
    Click(button, 20, 10);
    EXPECT_EQ(top.Count(SN_BUTTON_CLICKED), 1);
    std::vector<unsigned> codes;
    for (const Parent::Note& note : top.notes) {
        if (note.message == SN_BUTTON_MOUSE) {
            codes.push_back(note.mouse.code);
            EXPECT_EQ(note.mouse.client, (SPoint{20, 10}));
            EXPECT_EQ(note.mouse.screen, (SPoint{130, 120}));
        }
    }
    // The window core tells the click as the button goes up, before the
    // release itself reaches the control.
    EXPECT_EQ(codes, (std::vector<unsigned>{MOUSE_DOWN | MOUSE_LEFT, MOUSE_CLICK | MOUSE_LEFT,
                                            MOUSE_UP | MOUSE_LEFT}));
    EXPECT_EQ(GetFocus(), button.GetHandle());
    Key(button, ctrlkey::SPACE);
    Key(button, VK_RETURN);
    EXPECT_EQ(top.Count(SN_BUTTON_CLICKED), 3);
    Key(check, ctrlkey::SPACE);
    EXPECT_TRUE(check.GetCheck());
    Click(check, 8, 12);
    EXPECT_FALSE(check.GetCheck());
    ASSERT_EQ(top.Count(SN_CHECK_CLICKED), 2);
    int64_t state = -1;
    for (const Parent::Note& note : top.notes) {
        state = note.message == SN_CHECK_CLICKED ? note.code : state;
    }
    EXPECT_EQ(state, 0) << "the new state";
}

TEST_F(SimpleCtrlsTest, TwoQuickClicksAreTwoClicks) {
    SButtonCtrl button;
    SCheckCtrl check;
    ASSERT_TRUE(Make(button, "More", Rect(10, 10, 90, 40), top.GetHandle()));
    ASSERT_TRUE(Make(check, "Loop", Rect(10, 50, 150, 74), top.GetHandle()));
    Click(button, 20, 10);
    Click(button, 20, 10); // within the double-click time: the core makes it a double click
    EXPECT_EQ(top.Count(SN_BUTTON_CLICKED), 2);
    Click(check, 8, 12);
    Click(check, 8, 12);
    EXPECT_EQ(top.Count(SN_CHECK_CLICKED), 2);
    EXPECT_FALSE(check.GetCheck()) << "on, then off again";
}

TEST_F(SimpleCtrlsTest, DisabledControlsIgnoreInput) {
    SButtonCtrl button;
    SCheckCtrl check;
    SScrollCtrl scroll;
    SSliderCtrl slider;
    STabCtrl tab;
    SPanelCtrl panel;
    ASSERT_TRUE(Make(button, "OK", Rect(10, 10, 90, 40), top.GetHandle()));
    ASSERT_TRUE(Make(check, "Loop", Rect(10, 50, 150, 74), top.GetHandle()));
    ASSERT_TRUE(Make(scroll, "", Rect(10, 80, 150, 96), top.GetHandle()));
    ASSERT_TRUE(Make(slider, "", Rect(10, 100, 150, 124), top.GetHandle()));
    ASSERT_TRUE(Make(tab, "", Rect(160, 10, 390, 150), top.GetHandle()));
    ASSERT_TRUE(Make(panel, "", Rect(160, 160, 390, 290), top.GetHandle()));
    tab.AddPage("A");
    tab.AddPage("B");
    panel.AddGroup("G");
    panel.AddItem(0, "item");
    std::vector<SWnd*> all{&button, &check, &scroll, &slider, &tab, &panel};
    for (SWnd* control : all) {
        control->Enable(false);
        for (unsigned key : {ctrlkey::SPACE, unsigned(VK_RETURN), ctrlkey::RIGHT, ctrlkey::END}) {
            SendMessage(control->GetHandle(), WM_KEYDOWN, key, 0);
            SendMessage(control->GetHandle(), WM_KEYUP, key, 0);
        }
        SRect rect = control->GetRect();
        platform->Click(top.GetHandle(), rect.right - 10, rect.top + 10);
    }
    EXPECT_FALSE(check.GetCheck());
    EXPECT_EQ(scroll.GetValue(), 0);
    EXPECT_EQ(slider.GetValue(), 0);
    EXPECT_EQ(tab.GetSelectedPage(), 0);
    EXPECT_FALSE(panel.GetItemState(0, 0));
    EXPECT_EQ(top.Count(SN_BUTTON_CLICKED), 0);
    EXPECT_EQ(top.Count(SN_CHECK_CLICKED), 0);
    EXPECT_EQ(top.Count(SN_SCROLL_CHANGED), 0);
    EXPECT_EQ(GetFocus() == button.GetHandle(), false);
}

TEST_F(SimpleCtrlsTest, PanelItemsToggleAndTitlesFold) {
    SPanelCtrl panel;
    ASSERT_TRUE(Make(panel, "", Rect(0, 0, 200, 280), top.GetHandle()));
    panel.AddGroup("Edit");
    panel.AddItem(0, "Cut");
    panel.AddItem(0, "Copy");
    panel.AddGroup("View");
    panel.AddItem(1, "Zoom");
    int group = -1, item = -1;
    int line = 0;
    ASSERT_TRUE(panel.HitTest(SPoint{10, 1}, &group, &item));
    EXPECT_EQ(item, -1);
    for (line = 1; line < 50 && !(panel.HitTest(SPoint{10, line}, &group, &item) && item == 0);
         ++line) {
    }
    Click(panel, 10, line + 1);
    EXPECT_TRUE(panel.GetItemState(0, 0));
    ASSERT_EQ(top.Count(SN_PANEL_ITEM), 1);
    EXPECT_EQ(top.notes.back().code, 0);
    Click(panel, 10, 1); // the title folds the group
    EXPECT_FALSE(panel.IsGroupOpen(0));
    ASSERT_TRUE(panel.HitTest(SPoint{10, line + 1}, &group, &item));
    EXPECT_EQ(group, 1) << "the next group moved up";
    Key(panel, ctrlkey::END);
    Key(panel, ctrlkey::SPACE);
    EXPECT_TRUE(panel.GetItemState(1, 0));
    EXPECT_EQ(top.notes.back().code, 65536);
}

TEST_F(SimpleCtrlsTest, SplitterDividersDragAndKeepThePanes) {
    SSplitterCtrl splitter;
    splitter.SetGrid(2, 1);
    ASSERT_TRUE(Make(splitter, "", Rect(0, 0, 205, 100), top.GetHandle()));
    ASSERT_NE(splitter.GetPane(1, 0), nullptr);
    EXPECT_EQ(splitter.GetPane(2, 0), nullptr);
    int divider = splitter.GetDivider(true, 0);
    EXPECT_EQ(divider, 103);
    EXPECT_EQ(splitter.GetPane(0, 0)->GetRect().right, divider);
    EXPECT_EQ(splitter.GetPane(1, 0)->GetRect().left, divider + SSplitterCtrl::BAR);
    platform->Press(top.GetHandle(), divider + 2, 50);
    platform->MoveMouse(top.GetHandle(), 62, 50, MK_LBUTTON);
    platform->Release(top.GetHandle(), 62, 50);
    EXPECT_EQ(splitter.GetDivider(true, 0), 60);
    EXPECT_EQ(splitter.GetPane(0, 0)->GetRect().right, 60);
    EXPECT_GE(top.Count(SN_SPLITTER_MOUSE), 3);
    EXPECT_TRUE(splitter.SetDivider(true, 0, 2));
    EXPECT_EQ(splitter.GetDivider(true, 0), SSplitterCtrl::MIN_PANE);
    EXPECT_TRUE(splitter.SetDivider(true, 0, 500));
    EXPECT_EQ(splitter.GetDivider(true, 0), 205 - SSplitterCtrl::BAR - SSplitterCtrl::MIN_PANE);
    EXPECT_FALSE(splitter.SetDivider(false, 0, 10)) << "one row has no divider";
}

TEST_F(SimpleCtrlsTest, GuiBarsAreNeverBelowSixteen) {
    SGuiCtrl gui;
    ASSERT_TRUE(Make(gui, "", Rect(0, 0, 200, 150), top.GetHandle()));
    _SWndBar* topBar = gui.AddBar(SGuiCtrl::TOP, 4);
    _SWndBar* left = gui.AddBar(SGuiCtrl::LEFT, 30);
    ASSERT_NE(topBar, nullptr);
    EXPECT_EQ(topBar->GetRect(), (SRect{0, 0, 200, 16}));
    EXPECT_EQ(left->GetRect(), (SRect{0, 16, 30, 150}));
    EXPECT_EQ(gui.GetView()->GetRect(), (SRect{30, 16, 200, 150}));
    gui.MoveWindow(SRect{0, 0, 10, 10});
    EXPECT_GE(topBar->GetWidth(), 16);
    EXPECT_GE(left->GetHeight(), 16);
    EXPECT_GE(gui.GetView()->GetWidth(), 0);
}

} // namespace
