// The code editor's rules without a window: deleting and joining, keys,
// tabs and indentation, read-only, undo and redo, search, columns and
// colouring.
#include "editors/code_editor.h"

#include <gtest/gtest.h>

#include <functional>

#include "foundation/keyboard.h"

namespace {

constexpr unsigned SHIFT = SKeyboard::MODIFIER_SHIFT;
constexpr unsigned CTRL = SKeyboard::MODIFIER_CTRL;

struct EditCase {
    const char* name;
    const char* text;
    SCodePos anchor;
    SCodePos caret;
    std::function<void(SCodeEditor&)> action;
    const char* expected;
    SCodePos expectedCaret;
    bool expectedChanged;
};

TEST(CodeEditor, EditRules) {
    const EditCase cases[] = {
        {"backspace at the very start changes nothing",
         "ab\ncd",
         {0, 0},
         {0, 0},
         [](SCodeEditor& e) { e.Backspace(); },
         "ab\ncd",
         {0, 0},
         false},
        {"delete at the very end changes nothing",
         "ab\ncd",
         {1, 2},
         {1, 2},
         [](SCodeEditor& e) { e.DeleteForward(); },
         "ab\ncd",
         {1, 2},
         false},
        {"backspace at column 0 joins and keeps the caret at the join",
         "ab\ncd",
         {1, 0},
         {1, 0},
         [](SCodeEditor& e) { e.Backspace(); },
         "abcd",
         {0, 2},
         true},
        {"delete at a line's end joins the next line",
         "ab\ncd",
         {0, 2},
         {0, 2},
         [](SCodeEditor& e) { e.DeleteForward(); },
         "abcd",
         {0, 2},
         true},
        {"delete inside a line removes one character",
         "abc",
         {0, 1},
         {0, 1},
         [](SCodeEditor& e) { e.DeleteForward(); },
         "ac",
         {0, 1},
         true},
        {"backspace removes a whole UTF-8 character",
         "aé",
         {0, 3},
         {0, 3},
         [](SCodeEditor& e) { e.Backspace(); },
         "a",
         {0, 1},
         true},
        {"delete removes a whole UTF-8 character",
         "é!",
         {0, 0},
         {0, 0},
         [](SCodeEditor& e) { e.DeleteForward(); },
         "!",
         {0, 0},
         true},
        {"a selection on one line is one cut",
         "abcdef",
         {0, 1},
         {0, 4},
         [](SCodeEditor& e) { e.Backspace(); },
         "aef",
         {0, 1},
         true},
        {"a selection over lines joins the ends",
         "abc\nmid\nxyz",
         {2, 1},
         {0, 2},
         [](SCodeEditor& e) { e.DeleteForward(); },
         "abyz",
         {0, 2},
         true},
        {"typing replaces the selection",
         "abc\ndef",
         {0, 1},
         {1, 2},
         [](SCodeEditor& e) { e.Type("X"); },
         "aXf",
         {0, 2},
         true},
        {"return splits the line",
         "abcd",
         {0, 2},
         {0, 2},
         [](SCodeEditor& e) { e.Return(0); },
         "ab\ncd",
         {1, 0},
         true},
        {"return with indent repeats the leading blanks",
         "\t  code",
         {0, 7},
         {0, 7},
         [](SCodeEditor& e) {
             e.settings.indent = true;
             e.Return(0);
         },
         "\t  code\n\t  ",
         {1, 3},
         true},
        {"indent copies no more blanks than lie before the caret",
         "    x",
         {0, 2},
         {0, 2},
         [](SCodeEditor& e) {
             e.settings.indent = true;
             e.Return(0);
         },
         "  \n    x",
         {1, 2},
         true},
        {"ctrl+return inserts <br> with the br switch",
         "ab",
         {0, 1},
         {0, 1},
         [](SCodeEditor& e) {
             e.settings.br = true;
             e.Return(CTRL);
         },
         "a<br>b",
         {0, 5},
         true},
        {"shift+return inserts <br> over the selection",
         "abcd",
         {0, 1},
         {0, 3},
         [](SCodeEditor& e) {
             e.settings.br = true;
             e.Return(SHIFT);
         },
         "a<br>d",
         {0, 5},
         true},
        {"plain return stays a new line with the br switch",
         "ab",
         {0, 1},
         {0, 1},
         [](SCodeEditor& e) {
             e.settings.br = true;
             e.Return(0);
         },
         "a\nb",
         {1, 0},
         true},
        {"single line refuses return and pasted line ends",
         "ab",
         {0, 1},
         {0, 1},
         [](SCodeEditor& e) {
             e.settings.singleLine = true;
             e.Return(0);
             e.Insert("x\r\ny");
         },
         "axyb",
         {0, 3},
         true},
        {"paste turns CR LF and CR into line ends",
         "",
         {0, 0},
         {0, 0},
         [](SCodeEditor& e) { e.Insert("a\r\nb\rc"); },
         "a\nb\nc",
         {2, 1},
         true},
        {"tab over several lines adds one at each start",
         "a\nb\nc",
         {0, 1},
         {2, 1},
         [](SCodeEditor& e) { e.Tab(false); },
         "\ta\n\tb\n\tc",
         {2, 2},
         true},
        {"a selection ending at column 0 leaves that line alone",
         "a\nb\nc",
         {0, 0},
         {2, 0},
         [](SCodeEditor& e) { e.Tab(false); },
         "\ta\n\tb\nc",
         {2, 0},
         true},
        {"shift+tab removes one leading tab where there is one",
         "\t\ta\nb\n\tc",
         {0, 0},
         {2, 2},
         [](SCodeEditor& e) { e.Tab(true); },
         "\ta\nb\nc",
         {2, 1},
         true},
        {"tab in a one-line selection replaces it",
         "abcd",
         {0, 1},
         {0, 3},
         [](SCodeEditor& e) { e.Tab(false); },
         "a\td",
         {0, 2},
         true},
        {"shift+tab on one line without a tab changes nothing",
         "ab",
         {0, 1},
         {0, 1},
         [](SCodeEditor& e) { e.Tab(true); },
         "ab",
         {0, 1},
         false},
        {"read-only refuses every edit",
         "ab\ncd",
         {0, 1},
         {1, 1},
         [](SCodeEditor& e) {
             e.settings.readOnly = true;
             e.Type("x");
             e.Backspace();
             e.DeleteForward();
             e.Return(0);
             e.Tab(false);
             e.Insert("y");
             e.ReplaceAll("a", "b", false);
             e.Key(CODE_KEY_DELETE, 0, 10);
         },
         "ab\ncd",
         {1, 1},
         false},
    };
    for (const EditCase& test : cases) {
        SCOPED_TRACE(test.name);
        SCodeEditor editor;
        editor.SetText(test.text);
        editor.Select(test.anchor, test.caret);
        uint64_t version = editor.GetVersion();
        test.action(editor);
        EXPECT_EQ(editor.GetText(), test.expected);
        EXPECT_EQ(editor.GetCaret(), test.expectedCaret);
        EXPECT_EQ(editor.GetVersion() != version, test.expectedChanged);
        EXPECT_GE(editor.GetLineCount(), 1);
    }
}

// Bytes that are no UTF-8 (a file read as it is) stay characters of their
// own: the caret never lands inside a sequence nor skips good text, and
// every edit over them undoes exactly.
TEST(CodeEditor, BadBytesStayCharactersOfTheirOwn) {
    SCodeEditor editor;
    editor.SetText("\t\xAF\r\xC3\xA9\xBF!");
    editor.Tab(true); // removes the leading tab before a stray byte
    EXPECT_EQ(editor.GetLine(0), "\xAF");
    EXPECT_TRUE(editor.Undo());
    EXPECT_EQ(editor.GetText(), "\t\xAF\n\xC3\xA9\xBF!");
    editor.SetCaret(SCodePos{1, 0}, false);
    std::vector<int> columns;
    for (int i = 0; i < 3; ++i) {
        editor.Key(CODE_KEY_RIGHT, 0, 1);
        columns.push_back(editor.GetCaret().column);
    }
    EXPECT_EQ(columns, (std::vector<int>{2, 3, 4})); // é, the stray byte, "!"
    EXPECT_EQ(editor.ScreenColumn(1, 3), 2);
    editor.SetCaret(SCodePos{1, 1}, false); // inside é: moved to its start
    EXPECT_EQ(editor.GetCaret().column, 0);
    editor.SetCaret(SCodePos{1, 3}, false);
    editor.Backspace();
    EXPECT_EQ(editor.GetLine(1), "\xC3\xA9!");
}

TEST(CodeEditor, ReadOnlyStillCopiesAndSelects) {
    SCodeEditor editor;
    editor.SetText("one two");
    editor.settings.readOnly = true;
    editor.SelectAll();
    EXPECT_EQ(editor.GetSelectedText(), "one two");
    editor.SelectWord(SCodePos{0, 5});
    EXPECT_EQ(editor.GetSelectedText(), "two");
}

struct KeyCase {
    const char* name;
    const char* text;
    SCodePos start;
    std::vector<std::pair<unsigned, unsigned>> keys; // code, modifiers
    SCodePos caret;
    SCodePos anchor;
};

TEST(CodeEditor, CaretKeys) {
    const KeyCase cases[] = {
        {"up counts the tab as the tab width",
         "\tx\nabcdefgh",
         {1, 5},
         {{CODE_KEY_UP, 0}},
         {0, 2},
         {0, 2}},
        {"up into the middle of a tab lands before it",
         "\tx\nabcdefgh",
         {1, 2},
         {{CODE_KEY_UP, 0}},
         {0, 0},
         {0, 0}},
        {"down counts the tab as the tab width",
         "abcdef\n\tx",
         {0, 4},
         {{CODE_KEY_DOWN, 0}},
         {1, 1},
         {1, 1}},
        {"the column is kept over a short line",
         "abcdef\nab\nabcdef",
         {0, 5},
         {{CODE_KEY_DOWN, 0}, {CODE_KEY_DOWN, 0}},
         {2, 5},
         {2, 5}},
        {"up on the first line goes to its start",
         "abc",
         {0, 2},
         {{CODE_KEY_UP, 0}},
         {0, 0},
         {0, 0}},
        {"down on the last line goes to its end",
         "abc",
         {0, 1},
         {{CODE_KEY_DOWN, 0}},
         {0, 3},
         {0, 3}},
        {"right at a line's end goes to the next line",
         "ab\ncd",
         {0, 2},
         {{CODE_KEY_RIGHT, 0}},
         {1, 0},
         {1, 0}},
        {"left at column 0 goes to the previous end",
         "ab\ncd",
         {1, 0},
         {{CODE_KEY_LEFT, 0}},
         {0, 2},
         {0, 2}},
        {"right steps over a whole character", "é", {0, 0}, {{CODE_KEY_RIGHT, 0}}, {0, 2}, {0, 2}},
        {"shift extends, the anchor stays",
         "abcd",
         {0, 1},
         {{CODE_KEY_RIGHT, SHIFT}, {CODE_KEY_RIGHT, SHIFT}},
         {0, 3},
         {0, 1}},
        {"ctrl+right goes by words", "one two", {0, 0}, {{CODE_KEY_RIGHT, CTRL}}, {0, 4}, {0, 4}},
        {"ctrl+left goes by words", "one two", {0, 7}, {{CODE_KEY_LEFT, CTRL}}, {0, 4}, {0, 4}},
        {"ctrl+end and shift+ctrl+home",
         "ab\ncd",
         {0, 1},
         {{CODE_KEY_END, CTRL}, {CODE_KEY_HOME, CTRL | SHIFT}},
         {0, 0},
         {1, 2}},
        {"page down moves a page and stops at the end",
         "a\nb\nc\nd",
         {0, 0},
         {{CODE_KEY_PAGE_DOWN, 0}},
         {2, 0},
         {2, 0}},
    };
    for (const KeyCase& test : cases) {
        SCOPED_TRACE(test.name);
        SCodeEditor editor;
        editor.SetText(test.text);
        editor.SetCaret(test.start, false);
        for (auto [code, modifiers] : test.keys) {
            EXPECT_TRUE(editor.Key(code, modifiers, 2));
        }
        EXPECT_EQ(editor.GetCaret(), test.caret);
        EXPECT_EQ(editor.GetAnchor(), test.anchor);
    }
}

TEST(CodeEditor, UndoAndRedoOverMixedEdits) {
    SCodeEditor editor;
    editor.SetText("start");
    editor.SetCaret(SCodePos{0, 5}, false);
    std::vector<std::string> states = {editor.GetText()};
    // A typed run is one step.
    for (const char* c : {" ", "w", "o", "r", "d"}) {
        editor.Type(c);
    }
    states.push_back(editor.GetText());
    editor.Return(0);
    states.push_back(editor.GetText());
    editor.Type("x");
    editor.Type("y");
    states.push_back(editor.GetText());
    // Moving the caret ends the run.
    editor.Key(CODE_KEY_LEFT, 0, 10);
    editor.Type("z");
    states.push_back(editor.GetText());
    editor.Select(SCodePos{0, 0}, SCodePos{1, 1});
    editor.Backspace();
    states.push_back(editor.GetText());
    editor.Insert("P\nQ");
    states.push_back(editor.GetText());
    editor.SelectAll();
    editor.Tab(false);
    states.push_back(editor.GetText());
    editor.ReplaceAll("Q", "RR", true);
    states.push_back(editor.GetText());
    ASSERT_EQ(states.back(), "\tP\n\tRRzy");

    for (size_t i = states.size() - 1; i > 0; --i) {
        ASSERT_TRUE(editor.Undo());
        EXPECT_EQ(editor.GetText(), states[i - 1]) << "undo to state " << i - 1;
    }
    EXPECT_FALSE(editor.Undo());
    EXPECT_EQ(editor.GetCaret(), (SCodePos{0, 5}));
    for (size_t i = 1; i < states.size(); ++i) {
        ASSERT_TRUE(editor.Redo());
        EXPECT_EQ(editor.GetText(), states[i]) << "redo to state " << i;
    }
    EXPECT_FALSE(editor.Redo());
    // A new edit after an undo drops the redo history.
    editor.Undo();
    editor.Type("!");
    EXPECT_FALSE(editor.CanRedo());
}

TEST(CodeEditor, UndoRestoresTheSelection) {
    SCodeEditor editor;
    editor.SetText("abc\ndef");
    editor.Select(SCodePos{0, 1}, SCodePos{1, 1});
    editor.DeleteForward();
    editor.Undo();
    EXPECT_EQ(editor.GetAnchor(), (SCodePos{0, 1}));
    EXPECT_EQ(editor.GetCaret(), (SCodePos{1, 1}));
}

struct FindCase {
    const char* name;
    bool down;
    bool matchCase;
    SCodePos from;
    SCodePos found; // line -1: none
};

TEST(CodeEditor, FindInBothDirectionsWithAndWithoutCase) {
    const char* text = "Alpha beta\nBETA gamma\nbeta Beta";
    const FindCase cases[] = {
        {"down, any case: the next one", true, false, {0, 0}, {0, 6}},
        {"down, any case, after a match", true, false, {0, 7}, {1, 0}},
        {"down, match case skips BETA", true, true, {0, 7}, {2, 0}},
        {"down wraps round the end", true, true, {2, 1}, {0, 6}},
        {"up, any case: the one before", false, false, {2, 5}, {2, 0}},
        {"up, match case skips Beta and BETA", false, true, {2, 9}, {2, 0}},
        {"up wraps round the start", false, false, {0, 0}, {2, 5}},
        {"up, match case, from the first: wraps to the last", false, true, {0, 6}, {2, 0}},
    };
    for (const FindCase& test : cases) {
        SCOPED_TRACE(test.name);
        SCodeEditor editor;
        editor.SetText(text);
        editor.SetCaret(test.from, false);
        ASSERT_TRUE(editor.Find("beta", test.down, test.matchCase));
        EXPECT_EQ(editor.GetSelectionStart(), test.found);
        EXPECT_EQ(editor.GetSelectionEnd(), (SCodePos{test.found.line, test.found.column + 4}));
    }
    SCodeEditor editor;
    editor.SetText(text);
    EXPECT_FALSE(editor.Find("delta", true, false));
    EXPECT_FALSE(editor.Find("", true, false));
    EXPECT_FALSE(editor.Find("ALPHA", false, true));
}

TEST(CodeEditor, ReplaceInBothDirectionsWithAndWithoutCase) {
    struct Case {
        const char* name;
        bool down;
        bool matchCase;
        int steps;
        const char* expected;
    };
    const Case cases[] = {
        {"down, any case", true, false, 3, "x x x"},
        {"down, match case", true, true, 3, "x A x"},
        {"up, any case", false, false, 3, "x x x"},
        {"up, match case", false, true, 3, "x A x"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        SCodeEditor editor;
        editor.SetText("a A a");
        editor.SetCaret(test.down ? SCodePos{0, 0} : SCodePos{0, 5}, false);
        // The first call finds, each next one replaces and finds again.
        for (int i = 0; i <= test.steps; ++i) {
            editor.Replace("a", "x", test.down, test.matchCase);
        }
        EXPECT_EQ(editor.GetText(), test.expected);
    }
    SCodeEditor editor;
    editor.SetText("aa aa\naa");
    EXPECT_EQ(editor.ReplaceAll("aa", "aaa", true), 3); // the new text is not searched again
    EXPECT_EQ(editor.GetText(), "aaa aaa\naaa");
    EXPECT_TRUE(editor.Undo());
    EXPECT_EQ(editor.GetText(), "aa aa\naa");
}

TEST(CodeEditor, ColumnsAndSelections) {
    SCodeEditor editor;
    editor.settings.tabSize = 4;
    editor.SetText("\tab\né\ttail");
    EXPECT_EQ(editor.ScreenColumn(0, 1), 4);
    EXPECT_EQ(editor.ScreenColumn(1, 2), 1); // é is one column of two bytes
    EXPECT_EQ(editor.ScreenColumn(1, 3), 5);
    EXPECT_EQ(editor.ColumnAtScreen(0, 2), 0); // inside the tab: before it
    EXPECT_EQ(editor.ColumnAtScreen(0, 5), 2);
    EXPECT_EQ(editor.ColumnAtScreen(1, 1), 2);
    EXPECT_EQ(editor.ColumnAtScreen(1, 100), 7);

    editor.SetText("one, two_2\nlast");
    editor.SelectWord(SCodePos{0, 7});
    EXPECT_EQ(editor.GetSelectedText(), "two_2");
    editor.SelectWord(SCodePos{0, 3});
    EXPECT_EQ(editor.GetSelectedText(), ",");
    editor.SelectWord(SCodePos{0, 10}); // at the end: the word before
    EXPECT_EQ(editor.GetSelectedText(), "two_2");
    editor.SelectLine(0);
    EXPECT_EQ(editor.GetSelectedText(), "one, two_2\n");
    editor.SelectLine(1);
    EXPECT_EQ(editor.GetSelectedText(), "last");
    // Positions outside the text are brought in, never past a character's start.
    editor.SetText("é");
    editor.SetCaret(SCodePos{5, 1}, false);
    EXPECT_EQ(editor.GetCaret(), (SCodePos{0, 0}));
    EXPECT_TRUE(editor.GoToLine(99));
    EXPECT_EQ(editor.GetCaret().line, 0);
}

TEST(CodeEditor, TextEndsAndChangedLines) {
    SCodeEditor editor;
    editor.SetText("a\r\nb\rc\n");
    EXPECT_EQ(editor.GetLineCount(), 4);
    EXPECT_EQ(editor.GetText(), "a\nb\nc\n");
    editor.SetText(nullptr);
    EXPECT_EQ(editor.GetLineCount(), 1);
    int first = 0;
    int last = 0;
    editor.TakeChangedLines(&first, &last);
    editor.SetText("x\ny\nz");
    editor.TakeChangedLines(&first, &last);
    editor.SetCaret(SCodePos{1, 1}, false);
    editor.Type("!");
    editor.TakeChangedLines(&first, &last);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, 1);
    editor.Return(0);
    editor.TakeChangedLines(&first, &last);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, -1); // lines moved
    editor.TakeChangedLines(&first, &last);
    EXPECT_EQ(first, -1);
}

TEST(CodeEditor, Colouring) {
    struct Case {
        const char* name;
        const char* line;
        std::vector<SCodeRun> runs;
    };
    using T = SCodeToken;
    const Case cases[] = {
        {"keywords in any case",
         "IF x then",
         {{0, 2, T::KEYWORD}, {2, 3, T::TEXT}, {5, 4, T::KEYWORD}}},
        {"words in capitals",
         "call MAX_2 Max",
         {{0, 5, T::TEXT}, {5, 5, T::UPPER}, {10, 4, T::TEXT}}},
        {"a string with an escaped quote",
         "s=\"a\\\"b\" t",
         {{0, 2, T::TEXT}, {2, 6, T::STRING}, {8, 2, T::TEXT}}},
        {"an unclosed string runs to the end", "x 'abc", {{0, 2, T::TEXT}, {2, 4, T::STRING}}},
        {"a line comment", "a // if \"x\"", {{0, 2, T::TEXT}, {2, 9, T::COMMENT}}},
        {"block and markup comments",
         "a/*b*/c<!--d-->",
         {{0, 1, T::TEXT}, {1, 5, T::COMMENT}, {6, 1, T::TEXT}, {7, 8, T::COMMENT}}},
        {"a quote inside a comment is no string",
         "/* ' */x",
         {{0, 7, T::COMMENT}, {7, 1, T::TEXT}}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        SCodeEditor editor;
        editor.settings.comment = true;
        editor.settings.strings = true;
        editor.settings.upperWords = true;
        editor.SetKeywords("if then,else");
        editor.SetText(test.line);
        std::vector<SCodeRun> runs;
        editor.Tokenize(0, &runs);
        ASSERT_EQ(runs.size(), test.runs.size());
        for (size_t i = 0; i < runs.size(); ++i) {
            EXPECT_EQ(runs[i].start, test.runs[i].start) << i;
            EXPECT_EQ(runs[i].length, test.runs[i].length) << i;
            EXPECT_EQ(runs[i].kind, test.runs[i].kind) << i;
        }
    }
    // With the switches off, all is text.
    SCodeEditor editor;
    editor.SetText("\"a\" // B IF");
    std::vector<SCodeRun> runs;
    editor.Tokenize(0, &runs);
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].kind, SCodeToken::TEXT);
}

} // namespace
