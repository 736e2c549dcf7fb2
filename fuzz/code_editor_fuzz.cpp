// The code editor's model over any bytes: the first half is the text, the
// second a script of edits and keys. No crash; the text always has a line;
// the caret and anchor stay inside it; every colour run lies inside its
// line; and undoing everything gives the text back.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "editors/code_editor.h"

namespace {

void Check(const SCodeEditor& editor) {
    if (editor.GetLineCount() < 1) {
        std::abort();
    }
    for (SCodePos pos : {editor.GetCaret(), editor.GetAnchor()}) {
        if (pos.line < 0 || pos.line >= editor.GetLineCount() || pos.column < 0 ||
            pos.column > static_cast<int>(editor.GetLine(pos.line).size())) {
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    size_t half = size / 2;
    SCodeEditor editor;
    editor.settings.comment = true;
    editor.settings.strings = true;
    editor.settings.upperWords = true;
    editor.settings.indent = (size & 1) != 0;
    editor.settings.br = (size & 2) != 0;
    editor.SetKeywords("if then else");
    editor.SetText(reinterpret_cast<const char*>(data), half);
    std::string original = editor.GetText();
    Check(editor);
    for (size_t i = half; i + 1 < size; i += 2) {
        unsigned op = data[i] % 16;
        unsigned arg = data[i + 1];
        char text[3] = {static_cast<char>(arg), static_cast<char>(arg ^ 0x80), '\0'};
        switch (op) {
        case 0:
            editor.Type(text);
            break;
        case 1:
            editor.Insert(text);
            break;
        case 2:
            editor.Backspace();
            break;
        case 3:
            editor.DeleteForward();
            break;
        case 4:
            editor.Return(arg & 3);
            break;
        case 5:
            editor.Tab((arg & 1) != 0);
            break;
        case 6:
            editor.Key(33 + arg % 8, arg >> 6, 1 + arg % 5);
            break;
        case 7:
            editor.SetCaret(SCodePos{static_cast<int>(arg % 7) - 1, static_cast<int>(arg / 7) - 2},
                            (arg & 1) != 0);
            break;
        case 8:
            editor.SelectWord(SCodePos{static_cast<int>(arg % 5), static_cast<int>(arg / 5)});
            break;
        case 9:
            editor.SelectLine(static_cast<int>(arg % 9) - 2);
            break;
        case 10:
            editor.Find(text, (arg & 1) != 0, (arg & 2) != 0);
            break;
        case 11:
            editor.Replace(text, "xy\n", (arg & 1) != 0, (arg & 2) != 0);
            break;
        case 12:
            editor.ReplaceAll(text, "", (arg & 1) != 0);
            break;
        case 13:
            editor.Undo();
            break;
        case 14:
            editor.Redo();
            break;
        default:
            editor.SelectAll();
            break;
        }
        Check(editor);
    }
    std::vector<SCodeRun> runs;
    for (int line = 0; line < editor.GetLineCount(); ++line) {
        editor.Tokenize(line, &runs);
        int end = 0;
        for (const SCodeRun& run : runs) {
            if (run.start != end || run.length <= 0) {
                std::abort();
            }
            end += run.length;
        }
        if (end != static_cast<int>(editor.GetLine(line).size())) {
            std::abort();
        }
    }
    while (editor.Undo()) {
    }
    if (editor.GetText() != original) {
        std::abort();
    }
    return 0;
}
