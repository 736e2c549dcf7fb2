// SCodeEditCtrl: the code editor control, drawn by the toolkit: its text in
// a fixed-width face with syntax colours, the caret, the selection and a
// left bar (with line numbers when asked). The text and every editing rule
// live in SCodeEditor (editors/code_editor.h), which has no window; this
// class turns keys, characters, the mouse and the wheel into its calls and
// paints the lines that show, repainting only the lines a change touched.
//
// Keys: the arrows, Home, End, Page Up and Down (Ctrl: by word, to the
// text's ends; Shift: extending the selection), Delete, Backspace, Return,
// Tab and Shift+Tab; Ctrl+Z undo, Ctrl+Y or Ctrl+Shift+Z redo, Ctrl+X, C, V
// (and Shift+Delete, Ctrl+Insert, Shift+Insert), Ctrl+A, Ctrl+F find,
// Ctrl+H replace, Ctrl+G go to, F3 and Shift+F3 find again. Characters
// arrive as WM_CHAR (a Unicode code point, from a key or an input method)
// or as CommitText. The mouse: a press places the caret (Shift extends), a
// drag selects, a double click selects a word, a third click the line, a
// press in the bar the line; the right button opens the popup menu. The
// wheel scrolls three lines a notch. The parent hears SN_EDITOR_CHANGE
// after every change of the text.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "editors/code_editor.h"
#include "foundation/string.h"
#include "toolkit/wnd.h"

class SCodeEditDialog;
class SCodePopupMenu;

// The popup menu's commands; all but Copy and Select All are refused
// while read-only.
constexpr unsigned CODEEDIT_COMMAND_UNDO = 1000;
constexpr unsigned CODEEDIT_COMMAND_CUT = 1001;
constexpr unsigned CODEEDIT_COMMAND_COPY = 1002;
constexpr unsigned CODEEDIT_COMMAND_PASTE = 1003;
constexpr unsigned CODEEDIT_COMMAND_DELETE = 1004;
constexpr unsigned CODEEDIT_COMMAND_SELECTALL = 1005;

// The twelve colours (0x00BBGGRR), in the order of their keys;
// COLOR_NOT_SET keeps the control's default.
enum SCodeColor {
    CODE_COLOR_BACK,
    CODE_COLOR_BACKFOCUS,
    CODE_COLOR_HIGHLIGHT,
    CODE_COLOR_BAR,
    CODE_COLOR_BARGRAY,
    CODE_COLOR_BARCHECK,
    CODE_COLOR_BARMARK,
    CODE_COLOR_TEXT,
    CODE_COLOR_TEXTKEY,
    CODE_COLOR_TEXTSTR,
    CODE_COLOR_TEXTUP,
    CODE_COLOR_TEXTCOMMENT,
    CODE_COLOR_COUNT
};

// A label of the editor ("#FIND", "@UNDO"); a key without one gives itself.
SString GetCodeEditLabel(const char* key);

class SCodeEditCtrl : public SWnd {
public:
    struct PopupItem {
        unsigned command;
        SString label; // with its shortcut after a tab
        bool enabled;
    };

    SCodeEditCtrl();
    ~SCodeEditCtrl() override;

    // The model: read it freely; change the text through the control (or
    // call Changed after changing it directly).
    SCodeEditor& GetEditor() { return editor; }
    const SCodeEditor& GetEditor() const { return editor; }
    void SetText(const char* text);
    SString GetEditText() const;
    // Reads a file as the text (UTF-8; invalid UTF-8 as Windows-1252).
    bool LoadFile(const char* path);
    // One KEY=value of a control definition (every CODEEDIT_ key); false
    // for a key that is not the editor's.
    bool ApplyKey(const char* key, const char* value);
    // Every KEY=value line of a definition's property text.
    void ApplyProperties(const char* text);
    void SetKeywords(const char* words);
    // The three colour groups, each set in one call.
    void SetBackColors(uint32_t back, uint32_t backFocus, uint32_t highlight);
    void SetBarColors(uint32_t bar, uint32_t gray, uint32_t check, uint32_t mark);
    void SetTextColors(uint32_t text, uint32_t key, uint32_t string, uint32_t upper,
                       uint32_t comment);
    // The colour in use (the default where none was given).
    uint32_t GetColor(SCodeColor which) const;
    void SetReadOnly(bool on) { editor.settings.readOnly = on; }

    // Input method text: inserted as typed.
    bool CommitText(const char* utf8);
    // The popup menu's items as they stand now.
    std::vector<PopupItem> GetPopupItems() const;
    // The entries the editor gives a side panel: its group "#GENERAL" and
    // the items "#FIND", "#REPLACE", "#GOTO" and "#PRINT", as keys (their
    // labels from GetCodeEditLabel).
    static std::vector<SString> GetPanelEntries();
    // Runs a popup command (1000 to 1005).
    bool RunCommand(unsigned command);
    bool Redo();

    // Searching with the state the find and replace boxes keep (this
    // editor's own with CODEEDIT_FINDREPLACELOCAL, else the shared one).
    bool FindNext(const char* what, bool down, bool matchCase);
    bool ReplaceNext(const char* what, const char* with, bool down, bool matchCase);
    int ReplaceAll(const char* what, const char* with, bool matchCase);
    bool GoToLine(int line);
    // The direction and case the boxes last gave.
    bool GetSearchDown() const;
    bool GetSearchMatchCase() const;
    // The box shown now (find, replace or go to); null when none.
    SCodeEditDialog* GetDialog() const { return dialog.get(); }
    SCodePopupMenu* GetPopupMenu() const { return popup.get(); }

    // The first line shown and how many fit.
    int GetFirstLine() const { return firstLine; }
    int GetVisibleLines() const;
    int GetLineHeight() const { return lineHeight; }
    int GetCharWidth() const { return charWidth; }
    void ScrollToLine(int line);
    // The caret shown: scrolls as needed.
    void EnsureCaretVisible();
    // The text position under a point of the client area.
    SCodePos PositionAt(int x, int y) const;
    // The place of the caret in client coordinates.
    SRect GetCaretRect() const;
    int GetBarWidth() const;

    // Slots 4 to 9 and the boxes.
    void OnUndo() override;
    void OnCut() override;
    void OnCopy() override;
    void OnPaste() override;
    void OnDelete() override;
    void OnSelectAll() override;
    void OnFind() override;
    void OnReplace() override;
    void OnGoTo() override;
    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;

    // Called by the boxes.
    void DialogClosed();
    void SetSearchState(bool down, bool matchCase);

private:
    void Paint(cairo_t* cr);
    void Measure();
    // Repaints what changed in the model, keeps the caret shown and tells
    // the parent when the text changed.
    void Changed(uint64_t versionBefore, SCodePos caretBefore);
    void InvalidateLines(int first, int last);
    bool HandleKey(unsigned code);
    void OpenDialog(int kind);
    void ShowPopup(int x, int y);

    SCodeEditor editor;
    uint32_t colors[CODE_COLOR_COUNT];
    int firstLine = 0;
    int leftColumn = 0;
    int lineHeight = 16;
    int charWidth = 8;
    int fontHeight = 0; // pixels; 0 until measured
    bool focused = false;
    bool dragging = false;
    int wheelRest = 0;
    uint64_t lastDoubleClick = 0;
    SPoint lastDoubleClickPoint;
    bool searchDown = true;
    bool searchMatchCase = false;
    std::unique_ptr<SCodeEditDialog> dialog;
    std::unique_ptr<SCodePopupMenu> popup;
};
