// The code editor control on the headless platform: characters from the
// platform, the mouse and the wheel, the popup menu and read-only mode,
// the find, replace and go-to boxes, the definition keys, and the repaint
// of what changed only.
#include "editors/code_edit_ctrl.h"

#include <fstream>

#include "editors/code_edit_dialogs.h"
#include "foundation/color.h"
#include "support/temp_dir.h"
#include "toolkit/draw.h"
#include "toolkit/notification.h"
#include "toolkit/toolkit_fixture.h"

namespace {

class CodeEditCtrlTest : public ToolkitTest {
protected:
    void SetUp() override {
        ToolkitTest::SetUp();
        SHeadlessPlatform::UseFakeClock(true);
        ASSERT_TRUE(Make(top, "top", Rect(0, 0, 600, 400)));
        ASSERT_TRUE(Make(editor, "", Rect(0, 0, 600, 400), top.GetHandle()));
        SetFocus(editor.GetHandle());
        SHeadlessPlatform::DispatchPending();
    }
    void TearDown() override {
        editor.Destroy();
        top.Destroy();
        ToolkitTest::TearDown();
    }
    void Char(unsigned code) {
        PostMessage(editor.GetHandle(), WM_CHAR, code, 0);
        SHeadlessPlatform::DispatchPending();
    }
    SPoint PointOf(SCodePos pos) {
        int x = editor.GetBarWidth() + 4 +
                editor.GetEditor().ScreenColumn(pos.line, pos.column) * editor.GetCharWidth() + 1;
        int y = (pos.line - editor.GetFirstLine()) * editor.GetLineHeight() + 2;
        return SPoint{x, y};
    }

    RecordingWnd top;
    SCodeEditCtrl editor;
};

TEST_F(CodeEditCtrlTest, ScriptedCharacterCommitIsOneTypedRun) {
    editor.SetText("x");
    editor.GetEditor().SetCaret(SCodePos{0, 1}, false);
    int changes = top.Count(SN_EDITOR_CHANGE);
    // Characters as the platform gives them (a key, an input method's
    // commit): code points, some beyond one byte of UTF-8.
    for (unsigned code : {0x68u, 0xE9u, 0x65E5u, 0x1F600u}) {
        Char(code);
    }
    EXPECT_EQ(editor.GetEditor().GetText(), "xhé日😀");
    EXPECT_EQ(top.Count(SN_EDITOR_CHANGE), changes + 4);
    // Control characters and a lone surrogate are not text.
    Char(8);
    Char(0xD800);
    EXPECT_EQ(editor.GetEditor().GetText(), "xhé日😀");
    EXPECT_TRUE(editor.CommitText("ü"));
    editor.OnUndo();
    EXPECT_EQ(editor.GetEditor().GetText(), "x");
    editor.Redo();
    EXPECT_EQ(editor.GetEditor().GetText(), "xhé日😀ü");
}

TEST_F(CodeEditCtrlTest, KeysReachTheEditorAndClipboard) {
    editor.SetText("one\ntwo");
    platform->SetModifiers(SKeyboard::MODIFIER_CTRL);
    PostMessage(editor.GetHandle(), WM_KEYDOWN, 'A', 0);
    PostMessage(editor.GetHandle(), WM_KEYDOWN, 'C', 0);
    SHeadlessPlatform::DispatchPending();
    platform->SetModifiers(0);
    EXPECT_EQ(SClipboard().GetText(), SString("one\ntwo"));
    PostMessage(editor.GetHandle(), WM_KEYDOWN, CODE_KEY_DELETE, 0);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(editor.GetEditor().GetText(), "");
    platform->SetModifiers(SKeyboard::MODIFIER_CTRL);
    PostMessage(editor.GetHandle(), WM_KEYDOWN, 'V', 0);
    PostMessage(editor.GetHandle(), WM_KEYDOWN, 'Z', 0); // undoes the paste
    SHeadlessPlatform::DispatchPending();
    platform->SetModifiers(0);
    EXPECT_EQ(editor.GetEditor().GetText(), "");
}

TEST_F(CodeEditCtrlTest, PopupLabelsAndReadOnly) {
    editor.SetText("alpha beta");
    std::vector<SCodeEditCtrl::PopupItem> items = editor.GetPopupItems();
    const char* labels[] = {"Undo\tCtrl+Z",  "Cut\tCtrl+X", "Copy\tCtrl+C",
                            "Paste\tCtrl+V", "Delete\tDel", "Select All\tCtrl+A"};
    ASSERT_EQ(items.size(), 6u);
    for (size_t i = 0; i < items.size(); ++i) {
        EXPECT_EQ(items[i].command, CODEEDIT_COMMAND_UNDO + i);
        EXPECT_EQ(items[i].label, SString(labels[i]));
    }
    std::vector<SString> panel = SCodeEditCtrl::GetPanelEntries();
    const char* panelLabels[] = {"General", "Find...", "Replace...", "Go To...", "Print..."};
    ASSERT_EQ(panel.size(), 5u);
    for (size_t i = 0; i < panel.size(); ++i) {
        EXPECT_EQ(GetCodeEditLabel(panel[i].c_str()), SString(panelLabels[i]));
    }
    EXPECT_EQ(GetCodeEditLabel("#UNKNOWN"), SString("#UNKNOWN"));

    ASSERT_TRUE(editor.ApplyKey("CODEEDIT_READONLY", "1"));
    EXPECT_TRUE(editor.RunCommand(CODEEDIT_COMMAND_SELECTALL));
    EXPECT_TRUE(editor.RunCommand(CODEEDIT_COMMAND_COPY));
    EXPECT_EQ(SClipboard().GetText(), SString("alpha beta"));
    for (unsigned refused : {CODEEDIT_COMMAND_UNDO, CODEEDIT_COMMAND_CUT, CODEEDIT_COMMAND_PASTE,
                             CODEEDIT_COMMAND_DELETE}) {
        EXPECT_FALSE(editor.RunCommand(refused)) << refused;
    }
    Char('x');
    EXPECT_EQ(editor.GetEditor().GetText(), "alpha beta");
    items = editor.GetPopupItems();
    EXPECT_FALSE(items[1].enabled); // Cut
    EXPECT_TRUE(items[2].enabled);  // Copy

    // The right button opens the menu; choosing Copy runs it.
    editor.ApplyKey("CODEEDIT_READONLY", "0");
    editor.GetEditor().Select(SCodePos{0, 0}, SCodePos{0, 5});
    platform->Press(top.GetHandle(), 100, 5, WM_RBUTTONDOWN);
    platform->Release(top.GetHandle(), 100, 5, WM_RBUTTONUP);
    ASSERT_NE(editor.GetPopupMenu(), nullptr);
    ASSERT_NE(editor.GetPopupMenu()->GetHandle(), 0u);
    SClipboard().SetText("");
    EXPECT_TRUE(editor.GetPopupMenu()->Choose(2));
    EXPECT_EQ(SClipboard().GetText(), SString("alpha"));
    EXPECT_EQ(editor.GetPopupMenu()->GetHandle(), 0u);

    // A frameless popup surface; a press outside or Escape closes it and
    // gives the keys back to the editor.
    for (bool escape : {false, true}) {
        platform->Release(top.GetHandle(), 100, 5, WM_RBUTTONUP);
        ASSERT_NE(editor.GetPopupMenu(), nullptr);
        HWND handle = editor.GetPopupMenu()->GetHandle();
        SHeadlessPlatform::Surface surface;
        ASSERT_TRUE(platform->GetSurface(handle, &surface));
        EXPECT_TRUE(surface.popup);
        if (escape) {
            platform->Key(handle, VK_ESCAPE);
        } else {
            platform->Press(handle, -30, -30);
        }
        SHeadlessPlatform::DispatchPending();
        EXPECT_EQ(editor.GetPopupMenu()->GetHandle(), 0u) << escape;
        EXPECT_EQ(GetFocus(), editor.GetHandle()) << escape;
    }
}

TEST_F(CodeEditCtrlTest, MouseSelectsWordsAndLinesAndTheWheelScrolls) {
    std::string text;
    for (int i = 0; i < 100; ++i) {
        text += "word" + std::to_string(i) + " other\n";
    }
    editor.SetText(text.c_str());
    SPoint point = PointOf(SCodePos{2, 1});
    platform->Click(top.GetHandle(), point.x, point.y);
    EXPECT_EQ(editor.GetEditor().GetCaret(), (SCodePos{2, 1}));
    platform->Click(top.GetHandle(), point.x, point.y); // the second press: a double click
    EXPECT_EQ(editor.GetEditor().GetSelectedText(), "word2");
    platform->Click(top.GetHandle(), point.x, point.y); // the third: the line
    EXPECT_EQ(editor.GetEditor().GetSelectedText(), "word2 other\n");
    SHeadlessPlatform::AdvanceClock(2000);
    // A drag selects; Shift+click extends.
    SPoint from = PointOf(SCodePos{0, 0});
    SPoint to = PointOf(SCodePos{1, 2});
    platform->Press(top.GetHandle(), from.x, from.y);
    platform->MoveMouse(top.GetHandle(), to.x, to.y, MK_LBUTTON);
    platform->Release(top.GetHandle(), to.x, to.y);
    EXPECT_EQ(editor.GetEditor().GetSelectedText(), "word0 other\nwo");
    // A press in the bar selects the line.
    SHeadlessPlatform::AdvanceClock(2000);
    platform->Click(top.GetHandle(), 2, PointOf(SCodePos{3, 0}).y);
    EXPECT_EQ(editor.GetEditor().GetSelectedText(), "word3 other\n");
    // Three lines a notch; a half notch waits for the other half.
    platform->Wheel(top.GetHandle(), 50, 50, -WHEEL_DELTA);
    EXPECT_EQ(editor.GetFirstLine(), 3);
    platform->Wheel(top.GetHandle(), 50, 50, -WHEEL_DELTA / 2);
    EXPECT_EQ(editor.GetFirstLine(), 3);
    platform->Wheel(top.GetHandle(), 50, 50, -WHEEL_DELTA / 2);
    EXPECT_EQ(editor.GetFirstLine(), 6);
    platform->Wheel(top.GetHandle(), 50, 50, 10 * WHEEL_DELTA);
    EXPECT_EQ(editor.GetFirstLine(), 0);
}

TEST_F(CodeEditCtrlTest, FindReplaceAndGoToBoxes) {
    editor.SetText("Cat cat\ncAt dog\ncat");
    editor.OnFind();
    SCodeEditDialog* box = editor.GetDialog();
    ASSERT_NE(box, nullptr);
    ASSERT_NE(box->GetHandle(), 0u);
    EXPECT_EQ(box->GetKind(), SCodeEditDialog::FIND);
    EXPECT_EQ(GetFocus(), box->GetHandle());
    // Typed into the field as characters.
    for (char c : std::string("cat")) {
        PostMessage(box->GetHandle(), WM_CHAR, static_cast<unsigned char>(c), 0);
    }
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(box->GetField(0), SString("cat"));
    EXPECT_TRUE(box->Press(SCodeEditDialog::MATCH_CASE));
    EXPECT_TRUE(editor.GetSearchMatchCase());
    EXPECT_TRUE(box->Press(SCodeEditDialog::FIND_NEXT));
    EXPECT_EQ(editor.GetEditor().GetSelectionStart(), (SCodePos{0, 4}));
    // Return finds again.
    PostMessage(box->GetHandle(), WM_KEYDOWN, VK_RETURN, 0);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(editor.GetEditor().GetSelectionStart(), (SCodePos{2, 0}));
    // Up, without case.
    box->Press(SCodeEditDialog::MATCH_CASE);
    box->Press(SCodeEditDialog::DIRECTION_UP);
    EXPECT_FALSE(editor.GetSearchDown());
    box->Press(SCodeEditDialog::FIND_NEXT);
    EXPECT_EQ(editor.GetEditor().GetSelectionStart(), (SCodePos{1, 0}));
    box->SetField(0, "zebra");
    EXPECT_FALSE(box->Press(SCodeEditDialog::FIND_NEXT));
    EXPECT_EQ(box->GetStatus(), SString("Not found."));
    // A click on Cancel closes the box.
    SRect cancel = box->GetButtonRect(SCodeEditDialog::CANCEL);
    platform->Click(box->GetHandle(), cancel.left + 5, cancel.top + 5);
    EXPECT_EQ(box->GetHandle(), 0u);
    EXPECT_EQ(GetFocus(), editor.GetHandle());

    // Replace: one, then all, down with case.
    editor.GetEditor().SetCaret(SCodePos{0, 0}, false);
    editor.OnReplace();
    box = editor.GetDialog();
    ASSERT_EQ(box->GetKind(), SCodeEditDialog::REPLACE);
    box->SetField(0, "cat");
    box->SetField(1, "cow");
    if (box->GetUp()) {
        box->Press(SCodeEditDialog::DIRECTION_UP);
    }
    box->Press(SCodeEditDialog::FIND_NEXT);
    box->Press(SCodeEditDialog::REPLACE_ONE);
    EXPECT_EQ(editor.GetEditor().GetText(), "cow cat\ncAt dog\ncat");
    box->Press(SCodeEditDialog::MATCH_CASE);
    box->Press(SCodeEditDialog::REPLACE_ALL);
    EXPECT_EQ(editor.GetEditor().GetText(), "cow cow\ncAt dog\ncow");
    editor.OnUndo();
    EXPECT_EQ(editor.GetEditor().GetText(), "cow cat\ncAt dog\ncat");
    PostMessage(box->GetHandle(), WM_KEYDOWN, VK_ESCAPE, 0);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(box->GetHandle(), 0u);

    // Go To takes digits only; Return goes.
    editor.OnGoTo();
    box = editor.GetDialog();
    for (unsigned c : {'x', '3'}) {
        PostMessage(box->GetHandle(), WM_CHAR, c, 0);
    }
    PostMessage(box->GetHandle(), WM_KEYDOWN, VK_RETURN, 0);
    SHeadlessPlatform::DispatchPending();
    EXPECT_EQ(editor.GetEditor().GetCaret(), (SCodePos{2, 0}));
    EXPECT_EQ(box->GetHandle(), 0u);
}

TEST_F(CodeEditCtrlTest, SearchStateIsSharedUnlessLocal) {
    SCodeEditCtrl other;
    ASSERT_TRUE(Make(other, "", Rect(0, 0, 10, 10), top.GetHandle()));
    editor.SetSearchState(false, true);
    EXPECT_FALSE(other.GetSearchDown());
    EXPECT_TRUE(other.GetSearchMatchCase());
    other.ApplyKey("CODEEDIT_FINDREPLACELOCAL", "1");
    other.SetSearchState(true, false);
    EXPECT_FALSE(editor.GetSearchDown()); // the shared state stays
    EXPECT_TRUE(other.GetSearchDown());
    editor.SetSearchState(true, false);
    other.Destroy();
}

TEST_F(CodeEditCtrlTest, DefinitionKeys) {
    TempDir dir;
    std::string path = dir / "script.txt";
    {
        std::ofstream out(path, std::ios::binary);
        out << "caf\xE9\r\nline2"; // Windows-1252
    }
    editor.ApplyProperties(
        ("CODEEDIT_TABSIZE=8\r\nCODEEDIT_BARWIDTH=30\r\nCODEEDIT_SHOWNUMBER=1\r\n"
         "CODEEDIT_INDENT=1\r\nCODEEDIT_TEXTCOLOR=-16777216\r\n"
         "CODEEDIT_TEXTKEYCOLOR=255\r\nCODEEDIT_SELECTALL=1\r\nCODEEDIT_FILE=" +
         path + "\r\n")
            .c_str());
    const SCodeSettings& settings = editor.GetEditor().settings;
    EXPECT_EQ(settings.tabSize, 8);
    EXPECT_EQ(settings.barWidth, 30);
    EXPECT_TRUE(settings.showNumber);
    EXPECT_TRUE(settings.indent);
    EXPECT_TRUE(settings.selectAllOnFocus);
    EXPECT_EQ(editor.GetColor(CODE_COLOR_TEXTKEY), 255u);
    EXPECT_NE(editor.GetColor(CODE_COLOR_TEXT), COLOR_NOT_SET); // kept the default
    EXPECT_EQ(editor.GetEditor().GetText(), "café\nline2");
    EXPECT_FALSE(editor.ApplyKey("MEDIA_WRAPPING", "1"));
    editor.ApplyKey("CODEEDIT_TABSIZE", "0"); // out of range: the default
    EXPECT_EQ(settings.tabSize, 4);
    EXPECT_FALSE(editor.LoadFile((dir / "missing.txt").c_str()));
    EXPECT_EQ(editor.GetEditor().GetText(), "café\nline2");
}

TEST_F(CodeEditCtrlTest, TypingRepaintsItsLineOnly) {
    std::string text;
    for (int i = 0; i < 1000; ++i) {
        text += "line " + std::to_string(i) + "\n";
    }
    editor.SetText(text.c_str());
    editor.GetEditor().SetCaret(SCodePos{500, 2}, false);
    editor.EnsureCaretVisible();
    platform->PresentFrame(top.GetHandle());
    Char('x');
    SHeadlessPlatform::Surface surface;
    ASSERT_TRUE(platform->GetSurface(top.GetHandle(), &surface));
    EXPECT_LE(surface.damaged.Height(), editor.GetLineHeight());
    EXPECT_GT(surface.damaged.Height(), 0);
    SRect shown = platform->PresentFrame(top.GetHandle());
    EXPECT_LE(shown.Height(), editor.GetLineHeight());
    // A new line moves everything below.
    PostMessage(editor.GetHandle(), WM_KEYDOWN, CODE_KEY_RETURN, 0);
    SHeadlessPlatform::DispatchPending();
    ASSERT_TRUE(platform->GetSurface(top.GetHandle(), &surface));
    EXPECT_GT(surface.damaged.Height(), editor.GetLineHeight());
    SImage picture;
    EXPECT_TRUE(platform->Snapshot(top.GetHandle(), &picture));
}

} // namespace
