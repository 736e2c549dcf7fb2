// The text model of an edit control: boundaries, filters, edits and undo.
#include "toolkit/edit_text.h"

#include <algorithm>

namespace {

bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// The length of the valid UTF-8 sequence at value[i], 0 when invalid.
size_t SequenceLength(const std::string& value, size_t i) {
    auto byte = static_cast<unsigned char>(value[i]);
    size_t length = byte < 0x80                   ? 1
                    : byte >= 0xC2 && byte < 0xE0 ? 2
                    : byte >= 0xE0 && byte < 0xF0 ? 3
                    : byte >= 0xF0 && byte < 0xF5 ? 4
                                                  : 0;
    if (length == 0 || i + length > value.size()) {
        return 0;
    }
    for (size_t k = 1; k < length; ++k) {
        if (!IsContinuation(static_cast<unsigned char>(value[i + k]))) {
            return 0;
        }
    }
    auto second = static_cast<unsigned char>(length > 1 ? value[i + 1] : 0);
    if ((byte == 0xE0 && second < 0xA0) || (byte == 0xED && second >= 0xA0) ||
        (byte == 0xF0 && second < 0x90) || (byte == 0xF4 && second >= 0x90)) {
        return 0; // overlong, a surrogate, or beyond the last code point
    }
    return length;
}

// Letters, digits, the underscore and every character outside ASCII.
bool IsWordByte(unsigned char byte) {
    return byte >= 0x80 || byte == '_' || (byte >= '0' && byte <= '9') ||
           (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

} // namespace

int SEditText::CountCharacters(const std::string& value) {
    int count = 0;
    for (unsigned char byte : value) {
        count += IsContinuation(byte) ? 0 : 1;
    }
    return count;
}

void SEditText::SetText(const std::string& value) {
    text = Filter(value);
    if (maxLength > 0) {
        size_t end = 0;
        for (int i = 0; i < maxLength && end < text.size(); ++i) {
            end = NextChar(end);
        }
        text.resize(end);
    }
    caret = anchor = text.size();
    undoSteps.clear();
    redoSteps.clear();
    typingOpen = false;
}

void SEditText::SetMaxLength(int characters) {
    maxLength = std::max(characters, 0);
}

std::string SEditText::SelectedText() const {
    return text.substr(SelectionStart(), SelectionEnd() - SelectionStart());
}

size_t SEditText::Boundary(size_t position) const {
    position = std::min(position, text.size());
    while (position > 0 && position < text.size() &&
           IsContinuation(static_cast<unsigned char>(text[position]))) {
        --position;
    }
    return position;
}

size_t SEditText::NextChar(size_t position) const {
    if (position >= text.size()) {
        return text.size();
    }
    ++position;
    while (position < text.size() && IsContinuation(static_cast<unsigned char>(text[position]))) {
        ++position;
    }
    return position;
}

size_t SEditText::PrevChar(size_t position) const {
    if (position == 0) {
        return 0;
    }
    return Boundary(std::min(position, text.size()) - 1);
}

size_t SEditText::WordLeft(size_t position) const {
    position = Boundary(position);
    while (position > 0 && !IsWordByte(static_cast<unsigned char>(text[PrevChar(position)]))) {
        position = PrevChar(position);
    }
    while (position > 0 && IsWordByte(static_cast<unsigned char>(text[PrevChar(position)]))) {
        position = PrevChar(position);
    }
    return position;
}

size_t SEditText::WordRight(size_t position) const {
    position = Boundary(position);
    while (position < text.size() && IsWordByte(static_cast<unsigned char>(text[position]))) {
        position = NextChar(position);
    }
    while (position < text.size() && !IsWordByte(static_cast<unsigned char>(text[position]))) {
        position = NextChar(position);
    }
    return position;
}

size_t SEditText::LineStart(size_t position) const {
    position = Boundary(position);
    size_t found = position == 0 ? std::string::npos : text.rfind('\n', position - 1);
    return found == std::string::npos ? 0 : found + 1;
}

size_t SEditText::LineEnd(size_t position) const {
    size_t found = text.find('\n', Boundary(position));
    return found == std::string::npos ? text.size() : found;
}

void SEditText::SetCaret(size_t position, bool extend) {
    caret = Boundary(position);
    if (!extend) {
        anchor = caret;
    }
    typingOpen = false;
}

void SEditText::Select(size_t from, size_t to) {
    anchor = Boundary(from);
    caret = Boundary(to);
    typingOpen = false;
}

void SEditText::SelectAll() {
    Select(0, text.size());
}

void SEditText::SelectWord(size_t position) {
    position = Boundary(position);
    size_t from = position;
    size_t to = position;
    bool word = position < text.size() && IsWordByte(static_cast<unsigned char>(text[position]));
    if (!word && position > 0 && IsWordByte(static_cast<unsigned char>(text[PrevChar(position)]))) {
        word = true; // just after a word: that word
        from = to = PrevChar(position);
    }
    if (!word) {
        Select(position, NextChar(position));
        return;
    }
    while (from > 0 && IsWordByte(static_cast<unsigned char>(text[PrevChar(from)]))) {
        from = PrevChar(from);
    }
    while (to < text.size() && IsWordByte(static_cast<unsigned char>(text[to]))) {
        to = NextChar(to);
    }
    Select(from, to);
}

void SEditText::SelectLine(size_t position) {
    Select(LineStart(position), LineEnd(position));
}

void SEditText::MoveCaret(Move move, bool extend) {
    size_t target = caret;
    switch (move) {
    case LEFT:
        target = HasSelection() && !extend ? SelectionStart() : PrevChar(caret);
        break;
    case RIGHT:
        target = HasSelection() && !extend ? SelectionEnd() : NextChar(caret);
        break;
    case WORD_LEFT:
        target = WordLeft(caret);
        break;
    case WORD_RIGHT:
        target = WordRight(caret);
        break;
    case LINE_START:
        target = LineStart(caret);
        break;
    case LINE_END:
        target = LineEnd(caret);
        break;
    case TEXT_START:
        target = 0;
        break;
    case TEXT_END:
        target = text.size();
        break;
    }
    SetCaret(target, extend);
}

std::string SEditText::Filter(const std::string& value) const {
    std::string result;
    result.reserve(value.size());
    for (size_t i = 0; i < value.size();) {
        size_t length = SequenceLength(value, i);
        if (length == 0) {
            ++i; // an invalid byte is dropped
            continue;
        }
        char byte = value[i];
        if (length == 1) {
            if (byte == '\r' || byte == '\n') {
                bool pair = byte == '\r' && i + 1 < value.size() && value[i + 1] == '\n';
                result += multiLine ? '\n' : ' ';
                i += pair ? 2 : 1;
                continue;
            }
            if ((static_cast<unsigned char>(byte) < 32 && byte != '\t') || byte == 0x7F ||
                (numberOnly && (byte < '0' || byte > '9'))) {
                ++i;
                continue;
            }
        } else if (numberOnly) {
            i += length;
            continue;
        }
        result.append(value, i, length);
        i += length;
    }
    return result;
}

void SEditText::Replace(size_t from, size_t to, const std::string& value, bool typed) {
    Step step;
    step.position = from;
    step.removed = text.substr(from, to - from);
    step.inserted = value;
    step.caretBefore = caret;
    step.anchorBefore = anchor;
    step.typed = typed;
    text.replace(from, to - from, value);
    caret = anchor = from + value.size();
    redoSteps.clear();
    if (typed && typingOpen && !undoSteps.empty() && step.removed.empty()) {
        Step& last = undoSteps.back();
        if (last.typed && last.position + last.inserted.size() == from) {
            last.inserted += value;
            return;
        }
    }
    undoSteps.push_back(std::move(step));
    typingOpen = typed;
}

bool SEditText::Insert(const std::string& value, bool typed) {
    if (readOnly) {
        return false;
    }
    std::string filtered = Filter(value);
    if (maxLength > 0) {
        int room = maxLength - (CharacterCount() - CountCharacters(SelectedText()));
        size_t end = 0;
        for (int i = 0; i < room && end < filtered.size(); ++i) {
            end += std::max<size_t>(SequenceLength(filtered, end), 1);
        }
        filtered.resize(room > 0 ? end : 0);
    }
    if (filtered.empty()) {
        return false;
    }
    if (HasSelection()) {
        typingOpen = false; // typing over a selection starts a new step
    }
    Replace(SelectionStart(), SelectionEnd(), filtered, typed);
    return true;
}

bool SEditText::DeleteSelection() {
    if (readOnly || !HasSelection()) {
        return false;
    }
    Replace(SelectionStart(), SelectionEnd(), std::string(), false);
    typingOpen = false;
    return true;
}

bool SEditText::Backspace(bool word) {
    if (HasSelection()) {
        return DeleteSelection();
    }
    if (readOnly || caret == 0) {
        return false;
    }
    size_t from = word ? WordLeft(caret) : PrevChar(caret);
    Replace(from, caret, std::string(), false);
    typingOpen = false;
    return true;
}

bool SEditText::DeleteForward(bool word) {
    if (HasSelection()) {
        return DeleteSelection();
    }
    if (readOnly || caret >= text.size()) {
        return false;
    }
    size_t to = word ? WordRight(caret) : NextChar(caret);
    Replace(caret, to, std::string(), false);
    typingOpen = false;
    return true;
}

bool SEditText::Undo() {
    if (readOnly || undoSteps.empty()) {
        return false;
    }
    Step step = std::move(undoSteps.back());
    undoSteps.pop_back();
    text.replace(step.position, step.inserted.size(), step.removed);
    caret = step.caretBefore;
    anchor = step.anchorBefore;
    redoSteps.push_back(std::move(step));
    typingOpen = false;
    return true;
}

bool SEditText::Redo() {
    if (readOnly || redoSteps.empty()) {
        return false;
    }
    Step step = std::move(redoSteps.back());
    redoSteps.pop_back();
    text.replace(step.position, step.removed.size(), step.inserted);
    caret = anchor = step.position + step.inserted.size();
    undoSteps.push_back(std::move(step));
    typingOpen = false;
    return true;
}
