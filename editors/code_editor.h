// SCodeEditor: the text, caret, selection, undo history, search and
// colouring of the code editor, without a window, so that every rule is
// tested headless and a large text stays fast.
//
// The text is an array of lines without their ends; there is always at
// least one. A position is a line and a byte column. The caret moves and
// deletes by whole UTF-8 characters, so a character typed through an input
// method is never cut in half. On the screen a tab is the tab size in
// columns and every other character one column.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "foundation/string.h"

struct SCodePos {
    int line = 0;
    int column = 0;
    auto operator<=>(const SCodePos&) const = default;
};

// The colour classes of the text.
enum class SCodeToken { TEXT, KEYWORD, UPPER, STRING, COMMENT };

struct SCodeRun {
    int start = 0; // byte column
    int length = 0;
    SCodeToken kind = SCodeToken::TEXT;
};

// The behaviour switches of the CODEEDIT_ keys.
struct SCodeSettings {
    bool br = false;               // Ctrl+Return or Shift+Return inserts "<br>"
    bool comment = false;          // colour comments
    bool findReplaceLocal = false; // the search's direction and case stay this editor's own
    bool indent = false;           // Return repeats the line's leading blanks
    bool singleLine = false;       // one line only: Return and line ends are refused
    bool strings = false;          // colour quoted text
    bool upperWords = false;       // colour words all in capitals
    bool showNumber = false;       // line numbers in the left bar
    bool readOnly = false;
    bool selectAllOnFocus = false; // CODEEDIT_SELECTALL
    int barWidth = 20;
    int tabSize = 4;
};

// Virtual key codes the editor reads.
constexpr unsigned CODE_KEY_BACK = 8;
constexpr unsigned CODE_KEY_TAB = 9;
constexpr unsigned CODE_KEY_RETURN = 13;
constexpr unsigned CODE_KEY_PAGE_UP = 33;
constexpr unsigned CODE_KEY_PAGE_DOWN = 34;
constexpr unsigned CODE_KEY_END = 35;
constexpr unsigned CODE_KEY_HOME = 36;
constexpr unsigned CODE_KEY_LEFT = 37;
constexpr unsigned CODE_KEY_UP = 38;
constexpr unsigned CODE_KEY_RIGHT = 39;
constexpr unsigned CODE_KEY_DOWN = 40;
constexpr unsigned CODE_KEY_DELETE = 46;

class SCodeEditor {
public:
    SCodeEditor();

    // The text. Line ends are LF, CR LF or CR; the undo history goes.
    void SetText(const char* text, size_t length);
    void SetText(const char* text);
    // The lines joined by LF.
    std::string GetText() const;
    int GetLineCount() const { return static_cast<int>(lines.size()); }
    const std::string& GetLine(int line) const;
    // How many times the text changed; a window compares it to repaint.
    uint64_t GetVersion() const { return version; }
    // The lines changed since the last call, first to last (last -1 when
    // lines came or went, so everything below first moved); first is -1
    // when nothing changed.
    void TakeChangedLines(int* first, int* last);

    // Caret and selection. The anchor is the other end of the selection;
    // equal positions mean no selection.
    SCodePos GetCaret() const { return caret; }
    SCodePos GetAnchor() const { return anchor; }
    bool HasSelection() const { return caret != anchor; }
    SCodePos GetSelectionStart() const { return std::min(caret, anchor); }
    SCodePos GetSelectionEnd() const { return std::max(caret, anchor); }
    // Moves the caret to pos (kept inside the text and on a character);
    // extend keeps the anchor, else the selection goes.
    void SetCaret(SCodePos pos, bool extend);
    void Select(SCodePos from, SCodePos to);
    void SelectAll();
    // The word at pos (letters, digits, "_" and non-ASCII characters), or
    // the one other character there.
    void SelectWord(SCodePos pos);
    // The whole line, its end included when a line follows.
    void SelectLine(int line);
    std::string GetSelectedText() const;
    std::string GetRange(SCodePos from, SCodePos to) const;

    // Editing. Each returns false when nothing changed: read-only, or
    // nothing to do.
    // Text typed (a key's character or an input method's commit): replaces
    // the selection; characters typed one after another make one undo step.
    bool Type(const char* text);
    // Text inserted as one undo step (paste).
    bool Insert(const char* text);
    bool DeleteSelection();
    // Delete: the selection, else the character at the caret, else at the
    // end of a line the next line joined to this one.
    bool DeleteForward();
    // Backspace: the selection, else the character before the caret, else
    // at column 0 this line joined to the end of the previous one.
    bool Backspace();
    // Return with SKeyboard modifier bits.
    bool Return(unsigned modifiers);
    // Tab: over a selection of several lines a tab is added at the start of
    // each line (Shift: one leading tab removed from each); otherwise Tab
    // is typed and Shift+Tab removes one leading tab of the caret's line.
    bool Tab(bool shift);
    // A key (CODE_KEY_*) with SKeyboard modifier bits; pageLines is how many
    // lines a page holds. True when the key is the editor's.
    bool Key(unsigned code, unsigned modifiers, int pageLines);

    bool Undo();
    bool Redo();
    bool CanUndo() const { return !undoStack.empty(); }
    bool CanRedo() const { return !redoStack.empty(); }
    // Ends the present typed run: the next character starts a new undo step.
    void BreakTypedRun() { typedRun = false; }

    // Search on single lines. Find selects the next match after the
    // selection (down) or the one before it (up), going round the text's
    // end once; false when there is none. Replace replaces the selection
    // when it is a match and finds the next; ReplaceAll is one undo step
    // and returns how many it replaced.
    bool Find(const char* what, bool down, bool matchCase);
    bool Replace(const char* what, const char* with, bool down, bool matchCase);
    int ReplaceAll(const char* what, const char* with, bool matchCase);
    // The caret to the start of line (from 1), kept inside the text.
    bool GoToLine(int line);

    // Screen columns.
    int ScreenColumn(int line, int column) const;
    // The byte column of the character at or before a screen column.
    int ColumnAtScreen(int line, int screenColumn) const;

    // Colouring: words of the set (blank separated, any case) are
    // keywords. Comments are "//" to the end of the line, "/* */" and
    // "<!-- -->"; quoted text is between " or ' with \ escaping; both
    // are found within one line, so each line is coloured alone.
    void SetKeywords(const char* words);
    void Tokenize(int line, std::vector<SCodeRun>* runs) const;

    SCodeSettings settings;

private:
    struct Edit {
        SCodePos at;
        std::string removed;
        std::string inserted;
        SCodePos caretBefore;
        SCodePos anchorBefore;
        int group = 0;
    };

    SCodePos Clamp(SCodePos pos) const;
    SCodePos EndOf(SCodePos at, const std::string& text) const;
    // The primitives: no history, no checks beyond the text's bounds.
    SCodePos RawInsert(SCodePos at, const std::string& text);
    std::string RawRemove(SCodePos from, SCodePos to);
    // Recorded edits; group 0 starts a new step.
    void Replace(SCodePos from, SCodePos to, const std::string& text, bool newStep);
    void NoteChange(int first, int last);
    int NextColumn(SCodePos pos) const;
    int PreviousColumn(SCodePos pos) const;
    SCodePos WordLeft(SCodePos pos) const;
    SCodePos WordRight(SCodePos pos) const;
    std::string Filter(const char* text) const;
    bool FindFrom(const std::string& what, bool down, bool matchCase, SCodePos from,
                  SCodePos* start) const;
    bool CanEdit() const { return !settings.readOnly; }

    std::vector<std::string> lines;
    SCodePos caret;
    SCodePos anchor;
    int wantedScreenColumn = -1; // kept over Up and Down
    std::vector<Edit> undoStack;
    std::vector<Edit> redoStack;
    int nextGroup = 1;
    bool typedRun = false;
    uint64_t version = 0;
    int changedFirst = -1;
    int changedLast = -1;
    std::unordered_set<std::string> keywords; // lower case
};

// The search's direction and case shared by every editor that does not
// keep its own (CODEEDIT_FINDREPLACELOCAL off).
struct SCodeSearchState {
    bool down = true;
    bool matchCase = false;
};
SCodeSearchState& SharedCodeSearchState();
