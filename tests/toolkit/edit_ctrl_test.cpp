// The edit control on the headless platform: typing, keys, mouse,
// clipboard, undo, the styles, the popup menu and the input method.
#include "toolkit/edit_ctrl.h"

#include "foundation/keyboard.h"
#include "tests/toolkit/toolkit_fixture.h"
#include "toolkit/draw.h"
#include "toolkit/notification.h"

namespace {

constexpr unsigned SHIFT = SKeyboard::MODIFIER_SHIFT;
constexpr unsigned CTRL = SKeyboard::MODIFIER_CTRL;
constexpr unsigned KEY_HOME = 36, KEY_END = 35, KEY_LEFT = 37, KEY_RIGHT = 39, KEY_DOWN = 40;

class EditTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        ASSERT_TRUE(Make(top, "top", Rect(50, 50, 450, 350)));
    }
    void MakeEdit(unsigned style, const char* text = "", SRect rect = Rect(10, 10, 210, 40)) {
        ASSERT_TRUE(edit.Create(&top, rect, 1, style, text));
        SetFocus(edit.GetHandle());
        SHeadlessPlatform::DispatchPending();
    }
    void Type(const char* text) { platform->CommitText(top.GetHandle(), text); }
    void Key(unsigned key, unsigned modifiers = 0) {
        platform->Key(top.GetHandle(), key, modifiers);
    }
    std::string Text() const { return edit.GetText().c_str(); }

    RecordingWnd top;
    SEditCtrl edit;
};

TEST_F(EditTest, TypingKeepsTheWindowTextAndTellsTheParent) {
    MakeEdit(0);
    Type("hello");
    EXPECT_EQ(Text(), "hello");
    EXPECT_EQ(top.Count(SN_EDIT_CHANGE), 5);
    const auto& entry = top.log->back();
    SNotification note(entry.message, entry.wParam, entry.lParam);
    EXPECT_EQ(note.Control(), &edit);
    edit.SetText("set");
    EXPECT_EQ(edit.Model().Text(), "set");
    EXPECT_EQ(top.Count(SN_EDIT_CHANGE), 5) << "a text set by the program is no user change";
}

TEST_F(EditTest, KeysSelectAndEdit) {
    MakeEdit(0, "one two three");
    struct Step {
        unsigned key, modifiers;
        const char* selected;
        size_t caret;
    } steps[] = {
        {KEY_HOME, 0, "", 0},
        {KEY_RIGHT, CTRL | SHIFT, "one ", 4},
        {KEY_RIGHT, SHIFT, "one t", 5},
        {KEY_END, SHIFT, "one two three", 13},
        {KEY_LEFT, CTRL | SHIFT, "one two ", 8},
        {KEY_HOME, 0, "", 0},
        {'A', CTRL, "one two three", 13},
        {KEY_LEFT, 0, "", 0},
    };
    for (const Step& step : steps) {
        Key(step.key, step.modifiers);
        EXPECT_EQ(edit.Model().SelectedText(), step.selected) << step.key;
        EXPECT_EQ(edit.Model().Caret(), step.caret) << step.key;
    }
    Key(VK_DELETE, CTRL);
    EXPECT_EQ(Text(), "two three") << "Ctrl+Delete takes a word";
    Key(KEY_END);
    Key(VK_BACK, CTRL);
    EXPECT_EQ(Text(), "two ");
    Key(VK_TAB);
    EXPECT_EQ(Text(), "two ") << "Tab is no character of a one-line edit";
}

TEST_F(EditTest, ClipboardRoundTrip) {
    MakeEdit(0, "copy me");
    Key('A', CTRL);
    Key('C', CTRL);
    EXPECT_EQ(SClipboard().GetText(), SString("copy me"));
    Key(KEY_END);
    Type(" and ");
    Key('V', CTRL);
    EXPECT_EQ(Text(), "copy me and copy me");
    Key(KEY_HOME);
    Key(KEY_RIGHT, CTRL | SHIFT);
    Key('X', CTRL);
    EXPECT_EQ(Text(), "me and copy me");
    EXPECT_EQ(SClipboard().GetText(), SString("copy "));
    SClipboard().SetText("line1\r\nline2");
    Key('V', CTRL);
    EXPECT_EQ(Text(), "line1 line2me and copy me") << "a one-line edit pastes one line";
}

TEST_F(EditTest, UndoAndRedoOverMixedEdits) {
    MakeEdit(0);
    Type("abc");
    SClipboard().SetText("XY");
    Key('V', CTRL);
    Key(VK_BACK);
    EXPECT_EQ(Text(), "abcX");
    struct Step {
        unsigned key, modifiers;
        const char* text;
    } steps[] = {
        {'Z', CTRL, "abcXY"}, {'Z', CTRL, "abc"},  {'Z', CTRL, ""},
        {'Z', CTRL, ""},      {'Y', CTRL, "abc"},  {'Z', CTRL | SHIFT, "abcXY"},
        {'Y', CTRL, "abcX"},  {'Y', CTRL, "abcX"},
    };
    for (const Step& step : steps) {
        Key(step.key, step.modifiers);
        EXPECT_EQ(Text(), step.text);
    }
}

TEST_F(EditTest, MaximumLengthNumberAndPassword) {
    MakeEdit(EDIT_NUMBER);
    edit.SetMaxLength(4);
    Type("1a2b3c4d5");
    EXPECT_EQ(Text(), "1234");
    edit.Destroy();

    SEditCtrl password;
    ASSERT_TRUE(password.Create(&top, Rect(10, 50, 210, 80), 2, EDIT_PASSWORD, ""));
    SetFocus(password.GetHandle());
    Type("s\xC3\xA9"
         "cret");
    EXPECT_EQ(std::string(password.GetText().c_str()), "s\xC3\xA9"
                                                       "cret");
    Key('A', CTRL);
    SClipboard().SetText("before");
    Key('C', CTRL);
    Key('X', CTRL);
    EXPECT_EQ(SClipboard().GetText(), SString("before"))
        << "a password never leaves by the clipboard";
    EXPECT_EQ(std::string(password.GetText().c_str()), "s\xC3\xA9"
                                                       "cret");
    // The caret sits after six bullets.
    Key(KEY_END);
    SRect caret = password.CaretRect();
    EXPECT_GT(caret.left, 20);
}

TEST_F(EditTest, ReadOnlyMovesButDoesNotChange) {
    MakeEdit(EDIT_READONLY, "fixed");
    Type("x");
    Key(VK_BACK);
    Key(KEY_HOME);
    Key(KEY_RIGHT, SHIFT);
    EXPECT_EQ(Text(), "fixed");
    EXPECT_EQ(edit.Model().SelectedText(), "f");
    EXPECT_FALSE(edit.IsCommandEnabled(SEditCommand::CUT));
    EXPECT_TRUE(edit.IsCommandEnabled(SEditCommand::COPY));
}

TEST_F(EditTest, MouseDragDoubleAndTripleClick) {
    MakeEdit(EDIT_MULTILINE, "alpha beta\ngamma delta", Rect(10, 10, 310, 110));
    HWND h = top.GetHandle();
    // Points in the top's client area: the edit starts at 10,10 and its
    // text 4 pixels in.
    size_t start = edit.IndexFromPoint(5, 10);
    EXPECT_EQ(start, 0u);
    platform->Press(h, 15, 20);
    platform->MoveMouse(h, 300, 20, MK_LBUTTON);
    platform->Release(h, 300, 20);
    EXPECT_EQ(edit.Model().SelectedText(), "alpha beta") << "a drag selects to the line's end";
    SHeadlessPlatform::AdvanceClock(1000);
    SRect caret = edit.CaretRect();
    int x = 10 + caret.left - 4; // inside "beta"
    platform->Click(h, x, 20);
    platform->Click(h, x, 20);
    EXPECT_EQ(edit.Model().SelectedText(), "beta");
    platform->Press(h, x, 20);
    platform->Release(h, x, 20);
    EXPECT_EQ(edit.Model().SelectedText(), "alpha beta") << "the third press selects the line";
    SHeadlessPlatform::AdvanceClock(1000);
    platform->Click(h, 15, 20);
    Key(KEY_DOWN, SHIFT);
    EXPECT_NE(edit.Model().SelectedText().find('\n'), std::string::npos)
        << "Shift+Down extends into the next line";
}

TEST_F(EditTest, MultiLineScrollsByTheWheelAndFollowsTheCaret) {
    std::string text;
    for (int i = 0; i < 40; ++i) {
        text += "line " + std::to_string(i) + "\n";
    }
    MakeEdit(EDIT_MULTILINE, text.c_str(), Rect(10, 10, 210, 90));
    EXPECT_GT(edit.GetScrollY(), 0) << "the caret at the end is in view";
    Key(KEY_HOME, CTRL);
    EXPECT_EQ(edit.GetScrollY(), 0);
    platform->Wheel(top.GetHandle(), 50, 40, -WHEEL_DELTA);
    int one = edit.GetScrollY();
    EXPECT_GT(one, 0);
    platform->Wheel(top.GetHandle(), 50, 40, WHEEL_DELTA * 5);
    EXPECT_EQ(edit.GetScrollY(), 0) << "the wheel stops at the top";
    Key(VK_RETURN);
    EXPECT_EQ(edit.Model().Text().substr(0, 2), "\nl");
}

TEST_F(EditTest, OneLineScrollsSidewaysToTheCaret) {
    MakeEdit(0, "", Rect(10, 10, 70, 40));
    Type("a rather long line of text that does not fit");
    EXPECT_GT(edit.GetScrollX(), 0);
    SRect caret = edit.CaretRect();
    EXPECT_LE(caret.right, edit.GetClientWidth());
    Key(KEY_HOME);
    EXPECT_EQ(edit.GetScrollX(), 0);
}

TEST_F(EditTest, CaretBlinksOnTheToolkitTimer) {
    MakeEdit(0, "x");
    EXPECT_TRUE(edit.IsCaretOn());
    SHeadlessPlatform::AdvanceClock(600);
    SHeadlessPlatform::DispatchPending();
    EXPECT_FALSE(edit.IsCaretOn());
    SHeadlessPlatform::AdvanceClock(600);
    SHeadlessPlatform::DispatchPending();
    EXPECT_TRUE(edit.IsCaretOn());
    Type("y");
    EXPECT_TRUE(edit.IsCaretOn()) << "typing shows the caret";
    SetFocus(top.GetHandle());
    EXPECT_FALSE(edit.IsCaretOn());
}

TEST_F(EditTest, SelectAllOnFocusAndThePopupMenu) {
    RecordingWnd other;
    ASSERT_TRUE(Make(other, "other", Rect(10, 100, 50, 120), top.GetHandle()));
    edit.SetSelectAllOnFocus(true);
    MakeEdit(0, "everything");
    EXPECT_EQ(edit.Model().SelectedText(), "everything");
    platform->Release(top.GetHandle(), 20, 20, WM_RBUTTONUP);
    SWnd* menu = edit.GetPopupMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(GetFocus(), menu->GetHandle());
    EXPECT_FALSE(edit.IsCommandEnabled(SEditCommand::UNDO));
    EXPECT_TRUE(edit.IsCommandEnabled(SEditCommand::CUT));
    // The fourth row, below Undo, its separator and Cut and Copy: Paste.
    // Put something to paste, then pick "Delete" (the fifth row).
    int rowDelete = 2 + 24 + 7 + 24 * 3 + 12;
    platform->Click(menu->GetHandle(), 30, rowDelete);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(edit.GetPopupMenu(), nullptr) << "a command closes the menu";
    EXPECT_EQ(GetFocus(), edit.GetHandle());

    // A frameless popup surface; a press outside or Escape closes it and
    // gives the keys back to the edit.
    for (bool escape : {false, true}) {
        menu = edit.ShowPopupMenu(5, 5);
        ASSERT_NE(menu, nullptr);
        HWND handle = menu->GetHandle();
        SHeadlessPlatform::Surface surface;
        ASSERT_TRUE(platform->GetSurface(handle, &surface));
        EXPECT_TRUE(surface.popup);
        if (escape) {
            platform->Key(handle, VK_ESCAPE);
        } else {
            platform->Press(handle, -30, -30);
        }
        SHeadlessPlatform::DispatchPending();
        EXPECT_EQ(edit.GetPopupMenu(), nullptr) << escape;
        EXPECT_EQ(GetFocus(), edit.GetHandle()) << escape;
    }

    SEditCtrl plain;
    ASSERT_TRUE(plain.Create(&top, Rect(10, 130, 100, 160), 3, EDIT_NOPOPUPMENU, "x"));
    EXPECT_EQ(plain.ShowPopupMenu(5, 5), nullptr);
}

TEST_F(EditTest, InputMethodCommitsAndComposes) {
    MakeEdit(0, "caf");
    EXPECT_EQ(platform->GetImState().focus, top.GetHandle()) << "the edit takes the input method";
    platform->Preedit(top.GetHandle(), "\xE6\x97\xA5", 3);
    EXPECT_EQ(edit.GetPreedit(), "\xE6\x97\xA5");
    EXPECT_EQ(Text(), "caf") << "a composition is not the text yet";
    platform->Preedit(top.GetHandle(), "", 0);
    Type("\xC3\xA9"); // é
    EXPECT_EQ(Text(), "caf\xC3\xA9");
    Type(" \xE6\x97\xA5\xE6\x9C\xAC"); // 日本
    EXPECT_EQ(Text(), "caf\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC");
    Key(KEY_LEFT);
    Key(VK_BACK);
    EXPECT_EQ(Text(), "caf\xC3\xA9 \xE6\x9C\xAC") << "one whole character goes";
    SRect caret = platform->GetImState().caret;
    EXPECT_GT(caret.left, 10) << "the method knows where the caret is";
    SetFocus(top.GetHandle());
    EXPECT_EQ(platform->GetImState().focus, 0u);
}

} // namespace

TEST_F(EditTest, TheCaretOfOneLineIsWhereItIsDrawnInTheMiddle) {
    // The blink repaints the caret's rectangle: it must be the one drawn,
    // or a part of the caret stays on the screen.
    MakeEdit(0, "text", Rect(10, 10, 210, 60));
    SRect caret = edit.CaretRect();
    int above = caret.top;
    int below = edit.GetClientHeight() - caret.bottom;
    EXPECT_LE(std::abs(above - below), 2) << above << " above, " << below << " below";
}
