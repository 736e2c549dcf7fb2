// SEditText: the text model of an edit control, without a window: the
// UTF-8 text, the caret and the selection anchor (byte offsets, always on a
// character boundary), the filters of the edit's styles (digits only, one
// line, a maximum length in characters, read-only) and the undo history,
// in which a run of typed characters is one step.
#pragma once

#include <string>
#include <vector>

class SEditText {
public:
    // The text as it stands, UTF-8.
    const std::string& Text() const { return text; }
    // Replaces the text (filtered as typing is, except read-only), puts the
    // caret at its end and forgets the undo history.
    void SetText(const std::string& value);

    // Options. A single-line text turns line breaks into spaces; a number
    // text keeps only the digits 0 to 9; a maximum of 0 is no maximum.
    void SetMultiLine(bool on) { multiLine = on; }
    bool IsMultiLine() const { return multiLine; }
    void SetNumberOnly(bool on) { numberOnly = on; }
    void SetReadOnly(bool on) { readOnly = on; }
    bool IsReadOnly() const { return readOnly; }
    void SetMaxLength(int characters);
    int GetMaxLength() const { return maxLength; }

    // Caret and selection.
    size_t Caret() const { return caret; }
    size_t Anchor() const { return anchor; }
    bool HasSelection() const { return caret != anchor; }
    size_t SelectionStart() const { return caret < anchor ? caret : anchor; }
    size_t SelectionEnd() const { return caret < anchor ? anchor : caret; }
    std::string SelectedText() const;
    // Moves the caret to position (brought back to a character boundary
    // inside the text); extend keeps the anchor, else it follows.
    void SetCaret(size_t position, bool extend);
    void Select(size_t from, size_t to);
    void SelectAll();
    // The word or the line round a position (a double and a triple click).
    void SelectWord(size_t position);
    void SelectLine(size_t position);

    // Moves of the keyboard. Home and End go to the line's ends.
    enum Move { LEFT, RIGHT, WORD_LEFT, WORD_RIGHT, LINE_START, LINE_END, TEXT_START, TEXT_END };
    void MoveCaret(Move move, bool extend);

    // Edits; false when nothing changed (read-only, filtered out, full).
    // Insert replaces the selection; typed joins a run of typed characters
    // into one undo step.
    bool Insert(const std::string& value, bool typed = false);
    bool Backspace(bool word = false);
    bool DeleteForward(bool word = false);
    bool DeleteSelection();
    bool Undo();
    bool Redo();
    bool CanUndo() const { return !undoSteps.empty(); }
    bool CanRedo() const { return !redoSteps.empty(); }

    // Character boundaries.
    size_t NextChar(size_t position) const;
    size_t PrevChar(size_t position) const;
    size_t WordLeft(size_t position) const;
    size_t WordRight(size_t position) const;
    size_t LineStart(size_t position) const;
    size_t LineEnd(size_t position) const;
    // The number of characters of the text.
    int CharacterCount() const { return CountCharacters(text); }
    static int CountCharacters(const std::string& value);

private:
    struct Step {
        size_t position = 0;
        std::string removed;
        std::string inserted;
        size_t caretBefore = 0;
        size_t anchorBefore = 0;
        bool typed = false;
    };
    // value cleaned of invalid bytes and filtered by the options.
    std::string Filter(const std::string& value) const;
    // Replaces [from, to) by value and records the step.
    void Replace(size_t from, size_t to, const std::string& value, bool typed);
    size_t Boundary(size_t position) const;

    std::string text;
    size_t caret = 0;
    size_t anchor = 0;
    bool multiLine = false;
    bool numberOnly = false;
    bool readOnly = false;
    int maxLength = 0;
    std::vector<Step> undoSteps;
    std::vector<Step> redoSteps;
    bool typingOpen = false; // the last step is a typed run that may grow
};
