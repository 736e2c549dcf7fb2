// The text model of the edit: boundaries, filters, edits and undo.
#include "toolkit/edit_text.h"

#include <gtest/gtest.h>

TEST(EditText, CaretMovesByWholeCharacters) {
    SEditText text;
    text.SetText("a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x8E\xB5z"); // a é 日 🎵 z
    std::vector<size_t> stops;
    text.SetCaret(0, false);
    for (int i = 0; i < 6; ++i) {
        stops.push_back(text.Caret());
        text.MoveCaret(SEditText::RIGHT, false);
    }
    EXPECT_EQ(stops, (std::vector<size_t>{0, 1, 3, 6, 10, 11}));
    EXPECT_EQ(text.Caret(), 11u) << "the end holds";
    text.MoveCaret(SEditText::LEFT, false);
    text.MoveCaret(SEditText::LEFT, false);
    EXPECT_EQ(text.Caret(), 6u);
    text.SetCaret(8, false); // inside the note's four bytes
    EXPECT_EQ(text.Caret(), 6u) << "a position inside a character goes to its start";
    EXPECT_TRUE(text.Backspace());
    EXPECT_EQ(text.Text(), "a\xC3\xA9\xF0\x9F\x8E\xB5z") << "Backspace takes the whole character";
}

TEST(EditText, FiltersOfTheStyles) {
    struct Case {
        const char* name;
        bool multi, number;
        int maxLength;
        const char* start;
        const char* typed;
        const char* expected;
    } cases[] = {
        {"one line turns breaks into spaces", false, false, 0, "", "a\r\nb\nc", "a b c"},
        {"many lines keep them, CR LF as one", true, false, 0, "", "a\r\nb\rc", "a\nb\nc"},
        {"digits only", false, true, 0, "1",
         "2a-3\xC3\xA9"
         "4",
         "1234"},
        {"the maximum cuts what is pasted", false, false, 5, "abc", "defgh", "abcde"},
        {"the maximum counts characters, not bytes", false, false, 3, "\xC3\xA9",
         "\xC3\xA9\xC3\xA9\xC3\xA9", "\xC3\xA9\xC3\xA9\xC3\xA9"},
        {"a full text takes nothing", false, false, 2, "ab", "c", "ab"},
        {"invalid bytes are dropped", false, false, 0, "", "a\xFF\xC3z\xED\xA0\x80", "az"},
        {"control characters are dropped, tabs kept", false, false, 0, "", "a\x01\tb\x7F", "a\tb"},
    };
    for (const Case& c : cases) {
        SEditText text;
        text.SetMultiLine(c.multi);
        text.SetNumberOnly(c.number);
        text.SetMaxLength(c.maxLength);
        text.SetText(c.start);
        text.Insert(c.typed);
        EXPECT_EQ(text.Text(), c.expected) << c.name;
    }
}

TEST(EditText, MaximumWithASelectionCountsWhatTheSelectionFrees) {
    SEditText text;
    text.SetMaxLength(4);
    text.SetText("abcd");
    text.Select(1, 3);
    EXPECT_TRUE(text.Insert("XYZ"));
    EXPECT_EQ(text.Text(), "aXYd");
}

TEST(EditText, WordsAndLines) {
    SEditText text;
    text.SetMultiLine(true);
    text.SetText("one two_2, th\xC3\xA9\nsecond line");
    struct Case {
        size_t from;
        size_t wordLeft, wordRight, lineStart, lineEnd;
    } cases[] = {
        {0, 0, 4, 0, 15},     {5, 4, 11, 0, 15},    {11, 4, 16, 0, 15},
        {16, 11, 23, 16, 27}, {20, 16, 23, 16, 27},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(text.WordLeft(c.from), c.wordLeft) << c.from;
        EXPECT_EQ(text.WordRight(c.from), c.wordRight) << c.from;
        EXPECT_EQ(text.LineStart(c.from), c.lineStart) << c.from;
        EXPECT_EQ(text.LineEnd(c.from), c.lineEnd) << c.from;
    }
    text.SelectWord(6);
    EXPECT_EQ(text.SelectedText(), "two_2");
    text.SelectWord(15); // just after "thé"
    EXPECT_EQ(text.SelectedText(), "th\xC3\xA9");
    text.SelectLine(20);
    EXPECT_EQ(text.SelectedText(), "second line");
}

TEST(EditText, ShiftMovesExtendAndPlainMovesCollapse) {
    SEditText text;
    text.SetText("hello world");
    text.SetCaret(0, false);
    text.MoveCaret(SEditText::WORD_RIGHT, true);
    EXPECT_EQ(text.SelectedText(), "hello ");
    text.MoveCaret(SEditText::LINE_END, true);
    EXPECT_EQ(text.SelectedText(), "hello world");
    text.MoveCaret(SEditText::LEFT, false);
    EXPECT_FALSE(text.HasSelection());
    EXPECT_EQ(text.Caret(), 0u) << "Left over a selection goes to its start";
}

TEST(EditText, UndoGroupsTypingAndWalksMixedEdits) {
    SEditText text;
    text.SetText("");
    for (const char* c : {"a", "b", "c"}) {
        text.Insert(c, true);
    }
    text.Insert(" pasted", false);
    text.SetCaret(1, false);
    text.Insert("X", true); // a typed run elsewhere is a step of its own
    text.Select(0, 2);
    text.DeleteSelection();
    EXPECT_EQ(text.Text(), "bc pasted");
    const char* back[] = {"aXbc pasted", "abc pasted", "abc", ""};
    for (const char* expected : back) {
        ASSERT_TRUE(text.Undo());
        EXPECT_EQ(text.Text(), expected);
    }
    EXPECT_FALSE(text.Undo());
    ASSERT_TRUE(text.Redo());
    ASSERT_TRUE(text.Redo());
    EXPECT_EQ(text.Text(), "abc pasted");
    text.Insert("!", true);
    EXPECT_FALSE(text.CanRedo()) << "a new edit drops what could be redone";
    text.Undo();
    EXPECT_EQ(text.Text(), "abc pasted");
    EXPECT_EQ(text.Caret(), 10u) << "undo puts the caret back";
}

TEST(EditText, ReadOnlyRefusesEveryEdit) {
    SEditText text;
    text.SetText("fixed");
    text.SetReadOnly(true);
    text.SelectAll();
    EXPECT_FALSE(text.Insert("x"));
    EXPECT_FALSE(text.Backspace());
    EXPECT_FALSE(text.DeleteForward());
    EXPECT_FALSE(text.DeleteSelection());
    EXPECT_EQ(text.Text(), "fixed");
    EXPECT_EQ(text.SelectedText(), "fixed") << "selecting still works";
}
