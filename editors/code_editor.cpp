#include "editors/code_editor.h"

#include <algorithm>
#include <cstring>

#include "foundation/keyboard.h"

namespace {

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// Whether column starts a character of line: not inside a UTF-8 sequence
// that a lead byte before it opened. A stray continuation byte is a
// character of its own, so bad bytes never join the ones round them.
bool IsCharStart(const std::string& line, int column) {
    if (column <= 0 || column >= static_cast<int>(line.size()) ||
        !IsContinuation(line[static_cast<size_t>(column)])) {
        return true;
    }
    for (int back = 1; back <= 3 && column - back >= 0; ++back) {
        auto c = static_cast<unsigned char>(line[static_cast<size_t>(column - back)]);
        if ((c & 0xC0) != 0x80) {
            int length = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 1;
            return back >= length;
        }
    }
    return true;
}

bool IsWordByte(char c) {
    auto byte = static_cast<unsigned char>(c);
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '_' || byte >= 0x80;
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameAt(const std::string& line, size_t at, const std::string& what, bool matchCase) {
    if (at + what.size() > line.size()) {
        return false;
    }
    for (size_t i = 0; i < what.size(); ++i) {
        char a = line[at + i];
        char b = what[i];
        if (a != b && (matchCase || Lower(a) != Lower(b))) {
            return false;
        }
    }
    return true;
}

// The first match in line starting at or after from; -1 when none.
int FindInLine(const std::string& line, const std::string& what, int from, bool matchCase) {
    if (what.size() > line.size()) {
        return -1;
    }
    int last = static_cast<int>(line.size() - what.size());
    for (int at = std::max(0, from); at <= last; ++at) {
        if (SameAt(line, static_cast<size_t>(at), what, matchCase)) {
            return at;
        }
    }
    return -1;
}

// The last match in line starting before before; -1 when none.
int FindInLineBack(const std::string& line, const std::string& what, int before, bool matchCase) {
    if (what.size() > line.size()) {
        return -1;
    }
    int at = std::min(before - 1, static_cast<int>(line.size() - what.size()));
    for (; at >= 0; --at) {
        if (SameAt(line, static_cast<size_t>(at), what, matchCase)) {
            return at;
        }
    }
    return -1;
}

} // namespace

SCodeSearchState& SharedCodeSearchState() {
    static SCodeSearchState state;
    return state;
}

SCodeEditor::SCodeEditor() : lines(1) {}

void SCodeEditor::SetText(const char* text) {
    SetText(text, text != nullptr ? std::strlen(text) : 0);
}

void SCodeEditor::SetText(const char* text, size_t length) {
    lines.clear();
    if (text == nullptr) {
        length = 0;
    }
    size_t start = 0;
    for (size_t i = 0; i < length; ++i) {
        char c = text[i];
        if (c == '\n' || c == '\r') {
            lines.emplace_back(text + start, i - start);
            if (c == '\r' && i + 1 < length && text[i + 1] == '\n') {
                ++i;
            }
            start = i + 1;
        }
    }
    lines.emplace_back(text + start, length - start);
    caret = anchor = SCodePos{};
    wantedScreenColumn = -1;
    undoStack.clear();
    redoStack.clear();
    typedRun = false;
    NoteChange(0, -1);
}

std::string SCodeEditor::GetText() const {
    size_t size = 0;
    for (const std::string& line : lines) {
        size += line.size() + 1;
    }
    std::string text;
    text.reserve(size);
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i > 0) {
            text += '\n';
        }
        text += lines[i];
    }
    return text;
}

const std::string& SCodeEditor::GetLine(int line) const {
    static const std::string empty;
    return line >= 0 && line < GetLineCount() ? lines[static_cast<size_t>(line)] : empty;
}

void SCodeEditor::NoteChange(int first, int last) {
    ++version;
    if (changedFirst < 0) {
        changedFirst = first;
        changedLast = last;
        return;
    }
    changedFirst = std::min(changedFirst, first);
    changedLast = (changedLast < 0 || last < 0) ? -1 : std::max(changedLast, last);
}

void SCodeEditor::TakeChangedLines(int* first, int* last) {
    *first = changedFirst;
    *last = changedLast;
    changedFirst = -1;
    changedLast = -1;
}

SCodePos SCodeEditor::Clamp(SCodePos pos) const {
    pos.line = std::clamp(pos.line, 0, GetLineCount() - 1);
    const std::string& line = lines[static_cast<size_t>(pos.line)];
    pos.column = std::clamp(pos.column, 0, static_cast<int>(line.size()));
    while (!IsCharStart(line, pos.column)) {
        --pos.column;
    }
    return pos;
}

void SCodeEditor::SetCaret(SCodePos pos, bool extend) {
    caret = Clamp(pos);
    if (!extend) {
        anchor = caret;
    }
    typedRun = false;
}

void SCodeEditor::Select(SCodePos from, SCodePos to) {
    anchor = Clamp(from);
    caret = Clamp(to);
    typedRun = false;
}

void SCodeEditor::SelectAll() {
    int last = GetLineCount() - 1;
    Select(SCodePos{0, 0}, SCodePos{last, static_cast<int>(lines.back().size())});
}

void SCodeEditor::SelectWord(SCodePos pos) {
    pos = Clamp(pos);
    const std::string& line = lines[static_cast<size_t>(pos.line)];
    if (line.empty()) {
        SetCaret(pos, false);
        return;
    }
    int at = pos.column;
    if (at >= static_cast<int>(line.size())) {
        at = PreviousColumn(pos);
    }
    int from = at;
    int to = NextColumn(SCodePos{pos.line, at});
    if (IsWordByte(line[static_cast<size_t>(at)])) {
        while (from > 0 && IsWordByte(line[static_cast<size_t>(from - 1)])) {
            --from;
        }
        while (to < static_cast<int>(line.size()) && IsWordByte(line[static_cast<size_t>(to)])) {
            ++to;
        }
    }
    Select(SCodePos{pos.line, from}, SCodePos{pos.line, to});
}

void SCodeEditor::SelectLine(int line) {
    line = std::clamp(line, 0, GetLineCount() - 1);
    if (line + 1 < GetLineCount()) {
        Select(SCodePos{line, 0}, SCodePos{line + 1, 0});
    } else {
        Select(SCodePos{line, 0}, SCodePos{line, static_cast<int>(lines.back().size())});
    }
}

std::string SCodeEditor::GetRange(SCodePos from, SCodePos to) const {
    // Kept inside the text only: the edits' own positions are exact.
    auto inside = [this](SCodePos pos) {
        pos.line = std::clamp(pos.line, 0, GetLineCount() - 1);
        pos.column = std::clamp(pos.column, 0,
                                static_cast<int>(lines[static_cast<size_t>(pos.line)].size()));
        return pos;
    };
    from = inside(from);
    to = inside(to);
    if (to < from) {
        std::swap(from, to);
    }
    const std::string& first = lines[static_cast<size_t>(from.line)];
    if (from.line == to.line) {
        return first.substr(static_cast<size_t>(from.column),
                            static_cast<size_t>(to.column - from.column));
    }
    std::string text = first.substr(static_cast<size_t>(from.column));
    for (int line = from.line + 1; line < to.line; ++line) {
        text += '\n';
        text += lines[static_cast<size_t>(line)];
    }
    text += '\n';
    text += lines[static_cast<size_t>(to.line)].substr(0, static_cast<size_t>(to.column));
    return text;
}

std::string SCodeEditor::GetSelectedText() const {
    return GetRange(GetSelectionStart(), GetSelectionEnd());
}

SCodePos SCodeEditor::EndOf(SCodePos at, const std::string& text) const {
    size_t newline = text.rfind('\n');
    if (newline == std::string::npos) {
        return SCodePos{at.line, at.column + static_cast<int>(text.size())};
    }
    int count = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    return SCodePos{at.line + count, static_cast<int>(text.size() - newline - 1)};
}

SCodePos SCodeEditor::RawInsert(SCodePos at, const std::string& text) {
    if (text.empty()) {
        return at;
    }
    auto index = static_cast<size_t>(at.line);
    size_t newline = text.find('\n');
    if (newline == std::string::npos) {
        lines[index].insert(static_cast<size_t>(at.column), text);
        NoteChange(at.line, at.line);
        return SCodePos{at.line, at.column + static_cast<int>(text.size())};
    }
    std::string tail = lines[index].substr(static_cast<size_t>(at.column));
    lines[index].erase(static_cast<size_t>(at.column));
    lines[index] += text.substr(0, newline);
    std::vector<std::string> added;
    size_t start = newline + 1;
    for (size_t next = text.find('\n', start); next != std::string::npos;
         next = text.find('\n', start)) {
        added.push_back(text.substr(start, next - start));
        start = next + 1;
    }
    std::string last = text.substr(start);
    SCodePos end{at.line + static_cast<int>(added.size()) + 1, static_cast<int>(last.size())};
    added.push_back(last + tail);
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(index + 1),
                 std::make_move_iterator(added.begin()), std::make_move_iterator(added.end()));
    NoteChange(at.line, -1);
    return end;
}

std::string SCodeEditor::RawRemove(SCodePos from, SCodePos to) {
    if (!(from < to)) {
        return std::string();
    }
    std::string removed = GetRange(from, to);
    auto first = static_cast<size_t>(from.line);
    if (from.line == to.line) {
        lines[first].erase(static_cast<size_t>(from.column),
                           static_cast<size_t>(to.column - from.column));
        NoteChange(from.line, from.line);
        return removed;
    }
    lines[first].erase(static_cast<size_t>(from.column));
    lines[first] += lines[static_cast<size_t>(to.line)].substr(static_cast<size_t>(to.column));
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(first + 1),
                lines.begin() + static_cast<std::ptrdiff_t>(to.line + 1));
    NoteChange(from.line, -1);
    return removed;
}

void SCodeEditor::Replace(SCodePos from, SCodePos to, const std::string& text, bool newStep) {
    Edit edit;
    edit.at = from;
    edit.caretBefore = caret;
    edit.anchorBefore = anchor;
    edit.removed = RawRemove(from, to);
    edit.inserted = text;
    if (newStep || undoStack.empty()) {
        ++nextGroup;
    }
    edit.group = nextGroup;
    caret = anchor = RawInsert(from, text);
    undoStack.push_back(std::move(edit));
    redoStack.clear();
    typedRun = false;
    wantedScreenColumn = -1;
}

std::string SCodeEditor::Filter(const char* text) const {
    std::string result;
    if (text == nullptr) {
        return result;
    }
    for (const char* p = text; *p != '\0'; ++p) {
        char c = *p;
        if (c == '\r') {
            if (p[1] == '\n') {
                continue;
            }
            c = '\n';
        }
        if (c == '\n' && settings.singleLine) {
            continue;
        }
        if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n') {
            continue;
        }
        result += c;
    }
    return result;
}

bool SCodeEditor::Type(const char* text) {
    if (!CanEdit()) {
        return false;
    }
    std::string typed = Filter(text);
    if (typed.empty()) {
        return false;
    }
    bool plain = typed.find('\n') == std::string::npos;
    if (plain && typedRun && !HasSelection() && !undoStack.empty()) {
        // The run goes on where the last typed text ended.
        Edit& last = undoStack.back();
        if (EndOf(last.at, last.inserted) == caret) {
            caret = anchor = RawInsert(caret, typed);
            last.inserted += typed;
            redoStack.clear();
            return true;
        }
    }
    Replace(GetSelectionStart(), GetSelectionEnd(), typed, true);
    typedRun = plain;
    return true;
}

bool SCodeEditor::Insert(const char* text) {
    if (!CanEdit()) {
        return false;
    }
    std::string inserted = Filter(text);
    if (inserted.empty() && !HasSelection()) {
        return false;
    }
    Replace(GetSelectionStart(), GetSelectionEnd(), inserted, true);
    return true;
}

bool SCodeEditor::DeleteSelection() {
    if (!CanEdit() || !HasSelection()) {
        return false;
    }
    Replace(GetSelectionStart(), GetSelectionEnd(), std::string(), true);
    return true;
}

int SCodeEditor::NextColumn(SCodePos pos) const {
    const std::string& line = lines[static_cast<size_t>(pos.line)];
    int column = pos.column + 1;
    while (column < static_cast<int>(line.size()) && !IsCharStart(line, column)) {
        ++column;
    }
    return std::min(column, static_cast<int>(line.size()));
}

int SCodeEditor::PreviousColumn(SCodePos pos) const {
    const std::string& line = lines[static_cast<size_t>(pos.line)];
    int column = pos.column - 1;
    while (column > 0 && !IsCharStart(line, column)) {
        --column;
    }
    return std::max(column, 0);
}

bool SCodeEditor::DeleteForward() {
    if (!CanEdit()) {
        return false;
    }
    if (HasSelection()) {
        return DeleteSelection();
    }
    const std::string& line = lines[static_cast<size_t>(caret.line)];
    if (caret.column < static_cast<int>(line.size())) {
        Replace(caret, SCodePos{caret.line, NextColumn(caret)}, std::string(), true);
        return true;
    }
    if (caret.line + 1 < GetLineCount()) {
        Replace(caret, SCodePos{caret.line + 1, 0}, std::string(), true);
        return true;
    }
    return false;
}

bool SCodeEditor::Backspace() {
    if (!CanEdit()) {
        return false;
    }
    if (HasSelection()) {
        return DeleteSelection();
    }
    if (caret.column > 0) {
        Replace(SCodePos{caret.line, PreviousColumn(caret)}, caret, std::string(), true);
        return true;
    }
    if (caret.line > 0) {
        int join = static_cast<int>(lines[static_cast<size_t>(caret.line - 1)].size());
        Replace(SCodePos{caret.line - 1, join}, caret, std::string(), true);
        return true;
    }
    return false;
}

bool SCodeEditor::Return(unsigned modifiers) {
    if (!CanEdit()) {
        return false;
    }
    if (settings.br && (modifiers & (SKeyboard::MODIFIER_CTRL | SKeyboard::MODIFIER_SHIFT)) != 0) {
        Replace(GetSelectionStart(), GetSelectionEnd(), "<br>", true);
        return true;
    }
    if (settings.singleLine) {
        return false;
    }
    std::string text = "\n";
    SCodePos start = GetSelectionStart();
    if (settings.indent) {
        const std::string& line = lines[static_cast<size_t>(start.line)];
        size_t blanks = 0;
        while (blanks < line.size() && blanks < static_cast<size_t>(start.column) &&
               (line[blanks] == ' ' || line[blanks] == '\t')) {
            ++blanks;
        }
        text += line.substr(0, blanks);
    }
    Replace(start, GetSelectionEnd(), text, true);
    return true;
}

bool SCodeEditor::Tab(bool shift) {
    if (!CanEdit()) {
        return false;
    }
    SCodePos start = GetSelectionStart();
    SCodePos end = GetSelectionEnd();
    if (start.line == end.line) {
        if (!shift) {
            return Type("\t");
        }
        const std::string& line = lines[static_cast<size_t>(caret.line)];
        if (line.empty() || line[0] != '\t') {
            return false;
        }
        SCodePos oldCaret = caret;
        SCodePos oldAnchor = anchor;
        Replace(SCodePos{caret.line, 0}, SCodePos{caret.line, 1}, std::string(), true);
        caret = SCodePos{oldCaret.line, std::max(0, oldCaret.column - 1)};
        anchor = SCodePos{oldAnchor.line, std::max(0, oldAnchor.column - 1)};
        return true;
    }
    // A selection ending at the start of a line leaves that line alone.
    int last = end.column == 0 ? end.line - 1 : end.line;
    bool changed = false;
    for (int line = start.line; line <= last; ++line) {
        const std::string& text = lines[static_cast<size_t>(line)];
        if (shift) {
            if (!text.empty() && text[0] == '\t') {
                Replace(SCodePos{line, 0}, SCodePos{line, 1}, std::string(), !changed);
                changed = true;
            }
        } else {
            Replace(SCodePos{line, 0}, SCodePos{line, 0}, "\t", !changed);
            changed = true;
        }
    }
    if (changed) {
        SCodePos to =
            end.column == 0
                ? SCodePos{end.line, 0}
                : SCodePos{last, static_cast<int>(lines[static_cast<size_t>(last)].size())};
        anchor = SCodePos{start.line, 0};
        caret = to;
    }
    return changed;
}

SCodePos SCodeEditor::WordLeft(SCodePos pos) const {
    if (pos.column == 0) {
        return pos.line > 0
                   ? SCodePos{pos.line - 1,
                              static_cast<int>(lines[static_cast<size_t>(pos.line - 1)].size())}
                   : pos;
    }
    const std::string& line = lines[static_cast<size_t>(pos.line)];
    int column = pos.column;
    while (column > 0 && !IsWordByte(line[static_cast<size_t>(column - 1)])) {
        --column;
    }
    while (column > 0 && IsWordByte(line[static_cast<size_t>(column - 1)])) {
        --column;
    }
    return SCodePos{pos.line, column};
}

SCodePos SCodeEditor::WordRight(SCodePos pos) const {
    const std::string& line = lines[static_cast<size_t>(pos.line)];
    auto size = static_cast<int>(line.size());
    if (pos.column >= size) {
        return pos.line + 1 < GetLineCount() ? SCodePos{pos.line + 1, 0} : pos;
    }
    int column = pos.column;
    while (column < size && IsWordByte(line[static_cast<size_t>(column)])) {
        ++column;
    }
    while (column < size && !IsWordByte(line[static_cast<size_t>(column)])) {
        ++column;
    }
    return SCodePos{pos.line, column};
}

bool SCodeEditor::Key(unsigned code, unsigned modifiers, int pageLines) {
    bool shift = (modifiers & SKeyboard::MODIFIER_SHIFT) != 0;
    bool ctrl = (modifiers & SKeyboard::MODIFIER_CTRL) != 0;
    int lastLine = GetLineCount() - 1;
    auto lineEnd = [this](int line) {
        return static_cast<int>(lines[static_cast<size_t>(line)].size());
    };
    auto vertical = [&](int delta) {
        if (wantedScreenColumn < 0) {
            wantedScreenColumn = ScreenColumn(caret.line, caret.column);
        }
        int wanted = wantedScreenColumn;
        int target = std::clamp(caret.line + delta, 0, lastLine);
        SCodePos pos{target, ColumnAtScreen(target, wanted)};
        if (caret.line + delta < 0) {
            pos = SCodePos{0, 0};
        } else if (caret.line + delta > lastLine) {
            pos = SCodePos{lastLine, lineEnd(lastLine)};
        }
        SetCaret(pos, shift);
        wantedScreenColumn = wanted;
    };
    switch (code) {
    case CODE_KEY_LEFT:
        if (HasSelection() && !shift) {
            SetCaret(GetSelectionStart(), false);
        } else if (ctrl) {
            SetCaret(WordLeft(caret), shift);
        } else if (caret.column > 0) {
            SetCaret(SCodePos{caret.line, PreviousColumn(caret)}, shift);
        } else if (caret.line > 0) {
            SetCaret(SCodePos{caret.line - 1, lineEnd(caret.line - 1)}, shift);
        } else {
            SetCaret(caret, shift);
        }
        wantedScreenColumn = -1;
        return true;
    case CODE_KEY_RIGHT:
        if (HasSelection() && !shift) {
            SetCaret(GetSelectionEnd(), false);
        } else if (ctrl) {
            SetCaret(WordRight(caret), shift);
        } else if (caret.column < lineEnd(caret.line)) {
            SetCaret(SCodePos{caret.line, NextColumn(caret)}, shift);
        } else if (caret.line < lastLine) {
            SetCaret(SCodePos{caret.line + 1, 0}, shift);
        } else {
            SetCaret(caret, shift);
        }
        wantedScreenColumn = -1;
        return true;
    case CODE_KEY_UP:
        vertical(-1);
        return true;
    case CODE_KEY_DOWN:
        vertical(1);
        return true;
    case CODE_KEY_PAGE_UP:
        vertical(-std::max(1, pageLines));
        return true;
    case CODE_KEY_PAGE_DOWN:
        vertical(std::max(1, pageLines));
        return true;
    case CODE_KEY_HOME:
        SetCaret(ctrl ? SCodePos{0, 0} : SCodePos{caret.line, 0}, shift);
        wantedScreenColumn = -1;
        return true;
    case CODE_KEY_END:
        SetCaret(ctrl ? SCodePos{lastLine, lineEnd(lastLine)}
                      : SCodePos{caret.line, lineEnd(caret.line)},
                 shift);
        wantedScreenColumn = -1;
        return true;
    case CODE_KEY_DELETE:
        DeleteForward();
        return true;
    case CODE_KEY_BACK:
        Backspace();
        return true;
    case CODE_KEY_RETURN:
        if (settings.singleLine && !(settings.br && (shift || ctrl))) {
            return false; // the dialog's default button may have it
        }
        Return(modifiers);
        return true;
    case CODE_KEY_TAB:
        if (ctrl) {
            return false;
        }
        Tab(shift);
        return true;
    default:
        return false;
    }
}

bool SCodeEditor::Undo() {
    if (undoStack.empty()) {
        return false;
    }
    int group = undoStack.back().group;
    while (!undoStack.empty() && undoStack.back().group == group) {
        Edit edit = std::move(undoStack.back());
        undoStack.pop_back();
        RawRemove(edit.at, EndOf(edit.at, edit.inserted));
        RawInsert(edit.at, edit.removed);
        caret = edit.caretBefore;
        anchor = edit.anchorBefore;
        redoStack.push_back(std::move(edit));
    }
    typedRun = false;
    wantedScreenColumn = -1;
    return true;
}

bool SCodeEditor::Redo() {
    if (redoStack.empty()) {
        return false;
    }
    int group = redoStack.back().group;
    while (!redoStack.empty() && redoStack.back().group == group) {
        Edit edit = std::move(redoStack.back());
        redoStack.pop_back();
        RawRemove(edit.at, EndOf(edit.at, edit.removed));
        caret = anchor = RawInsert(edit.at, edit.inserted);
        undoStack.push_back(std::move(edit));
    }
    typedRun = false;
    wantedScreenColumn = -1;
    return true;
}

bool SCodeEditor::FindFrom(const std::string& what, bool down, bool matchCase, SCodePos from,
                           SCodePos* start) const {
    int count = GetLineCount();
    if (down) {
        for (int step = 0; step <= count; ++step) {
            int line = (from.line + step) % count;
            int begin = step == 0 ? from.column : 0;
            int at = FindInLine(lines[static_cast<size_t>(line)], what, begin, matchCase);
            if (at >= 0) {
                *start = SCodePos{line, at};
                return true;
            }
        }
        return false;
    }
    for (int step = 0; step <= count; ++step) {
        int line = ((from.line - step) % count + count) % count;
        int before =
            step == 0 ? from.column : static_cast<int>(lines[static_cast<size_t>(line)].size()) + 1;
        int at = FindInLineBack(lines[static_cast<size_t>(line)], what, before, matchCase);
        if (at >= 0) {
            *start = SCodePos{line, at};
            return true;
        }
    }
    return false;
}

bool SCodeEditor::Find(const char* what, bool down, bool matchCase) {
    if (what == nullptr || what[0] == '\0') {
        return false;
    }
    std::string pattern = what;
    SCodePos start;
    SCodePos from = down ? GetSelectionEnd() : GetSelectionStart();
    if (!FindFrom(pattern, down, matchCase, from, &start)) {
        return false;
    }
    Select(start, SCodePos{start.line, start.column + static_cast<int>(pattern.size())});
    return true;
}

bool SCodeEditor::Replace(const char* what, const char* with, bool down, bool matchCase) {
    if (!CanEdit() || what == nullptr || what[0] == '\0') {
        return false;
    }
    std::string pattern = what;
    SCodePos start = GetSelectionStart();
    SCodePos end = GetSelectionEnd();
    bool replaced = false;
    if (start.line == end.line && end.column - start.column == static_cast<int>(pattern.size()) &&
        SameAt(lines[static_cast<size_t>(start.line)], static_cast<size_t>(start.column), pattern,
               matchCase)) {
        Replace(start, end, Filter(with), true);
        if (!down) {
            caret = anchor = start; // the next match up lies before the new text
        }
        replaced = true;
    }
    return Find(what, down, matchCase) || replaced;
}

int SCodeEditor::ReplaceAll(const char* what, const char* with, bool matchCase) {
    if (!CanEdit() || what == nullptr || what[0] == '\0') {
        return 0;
    }
    std::string pattern = what;
    std::string replacement = Filter(with);
    int count = 0;
    SCodePos pos{0, 0};
    while (pos.line < GetLineCount()) {
        int at = FindInLine(lines[static_cast<size_t>(pos.line)], pattern, pos.column, matchCase);
        if (at < 0) {
            pos = SCodePos{pos.line + 1, 0};
            continue;
        }
        SCodePos from{pos.line, at};
        Replace(from, SCodePos{pos.line, at + static_cast<int>(pattern.size())}, replacement,
                count == 0);
        pos = caret;
        ++count;
    }
    return count;
}

bool SCodeEditor::GoToLine(int line) {
    SetCaret(SCodePos{std::clamp(line - 1, 0, GetLineCount() - 1), 0}, false);
    wantedScreenColumn = -1;
    return true;
}

int SCodeEditor::ScreenColumn(int line, int column) const {
    const std::string& text = GetLine(line);
    int screen = 0;
    int end = std::min(column, static_cast<int>(text.size()));
    for (int i = 0; i < end; ++i) {
        char c = text[static_cast<size_t>(i)];
        if (c == '\t') {
            screen += std::max(1, settings.tabSize);
        } else if (IsCharStart(text, i)) {
            ++screen;
        }
    }
    return screen;
}

int SCodeEditor::ColumnAtScreen(int line, int screenColumn) const {
    const std::string& text = GetLine(line);
    int screen = 0;
    int column = 0;
    auto size = static_cast<int>(text.size());
    while (column < size) {
        int width = text[static_cast<size_t>(column)] == '\t' ? std::max(1, settings.tabSize) : 1;
        if (screen + width > screenColumn) {
            break;
        }
        screen += width;
        ++column;
        while (column < size && !IsCharStart(text, column)) {
            ++column;
        }
    }
    return column;
}

void SCodeEditor::SetKeywords(const char* words) {
    keywords.clear();
    std::string word;
    for (const char* p = words != nullptr ? words : "";; ++p) {
        if (*p == '\0' || *p == ' ' || *p == '\t' || *p == '\n' || *p == '\r' || *p == ',') {
            if (!word.empty()) {
                keywords.insert(word);
                word.clear();
            }
            if (*p == '\0') {
                break;
            }
        } else {
            word += Lower(*p);
        }
    }
}

void SCodeEditor::Tokenize(int line, std::vector<SCodeRun>* runs) const {
    runs->clear();
    const std::string& text = GetLine(line);
    auto size = static_cast<int>(text.size());
    auto add = [runs](int start, int length, SCodeToken kind) {
        if (length <= 0) {
            return;
        }
        if (!runs->empty() && runs->back().kind == kind &&
            runs->back().start + runs->back().length == start) {
            runs->back().length += length;
        } else {
            runs->push_back(SCodeRun{start, length, kind});
        }
    };
    int i = 0;
    while (i < size) {
        char c = text[static_cast<size_t>(i)];
        if (settings.comment) {
            const char* close = nullptr;
            int openLength = 0;
            if (text.compare(static_cast<size_t>(i), 2, "//") == 0) {
                add(i, size - i, SCodeToken::COMMENT);
                break;
            }
            if (text.compare(static_cast<size_t>(i), 2, "/*") == 0) {
                close = "*/";
                openLength = 2;
            } else if (text.compare(static_cast<size_t>(i), 4, "<!--") == 0) {
                close = "-->";
                openLength = 4;
            }
            if (close != nullptr) {
                size_t found = text.find(close, static_cast<size_t>(i + openLength));
                int end = found == std::string::npos ? size
                                                     : static_cast<int>(found + std::strlen(close));
                add(i, end - i, SCodeToken::COMMENT);
                i = end;
                continue;
            }
        }
        if (settings.strings && (c == '"' || c == '\'')) {
            int end = i + 1;
            while (end < size && text[static_cast<size_t>(end)] != c) {
                end += text[static_cast<size_t>(end)] == '\\' ? 2 : 1;
            }
            end = std::min(end + 1, size);
            add(i, end - i, SCodeToken::STRING);
            i = end;
            continue;
        }
        if (IsWordByte(c)) {
            int end = i;
            bool upper = false;
            bool lower = false;
            std::string word;
            while (end < size && IsWordByte(text[static_cast<size_t>(end)])) {
                char w = text[static_cast<size_t>(end)];
                upper = upper || (w >= 'A' && w <= 'Z');
                lower = lower || (w >= 'a' && w <= 'z');
                word += Lower(w);
                ++end;
            }
            SCodeToken kind = SCodeToken::TEXT;
            if (keywords.count(word) != 0) {
                kind = SCodeToken::KEYWORD;
            } else if (settings.upperWords && upper && !lower) {
                kind = SCodeToken::UPPER;
            }
            add(i, end - i, kind);
            i = end;
            continue;
        }
        add(i, 1, SCodeToken::TEXT);
        ++i;
    }
}
