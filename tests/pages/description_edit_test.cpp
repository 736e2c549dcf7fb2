// The description window's commands and files without a window: what the
// mark, bold and group commands make of a selection (written here with "["
// and "]" round the selection and "|" for a caret alone), the lines they
// refuse, and how a description is read for editing and written back.
#include "pages/description_edit.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace {

struct Marked {
    std::vector<std::string> lines{""};
    PTextPoint start;
    PTextPoint end;
};

Marked Parse(const std::string& text) {
    Marked marked;
    for (char c : text) {
        PTextPoint here{static_cast<int>(marked.lines.size()) - 1,
                        static_cast<int>(marked.lines.back().size())};
        if (c == '\n') {
            marked.lines.emplace_back();
        } else if (c == '[') {
            marked.start = here;
        } else if (c == ']') {
            marked.end = here;
        } else if (c == '|') {
            marked.start = marked.end = here;
        } else {
            marked.lines.back() += c;
        }
    }
    return marked;
}

std::string Render(const std::vector<std::string>& lines, PTextPoint anchor, PTextPoint caret) {
    PTextPoint low = std::min(anchor, caret);
    PTextPoint high = std::max(anchor, caret);
    std::string text;
    for (int i = 0; i < static_cast<int>(lines.size()); ++i) {
        if (i > 0) {
            text += '\n';
        }
        const std::string& line = lines[static_cast<size_t>(i)];
        for (int k = 0; k <= static_cast<int>(line.size()); ++k) {
            PTextPoint here{i, k};
            if (low == high && here == low) {
                text += '|';
            } else if (here == low) {
                text += '[';
            } else if (here == high) {
                text += ']';
            }
            if (k < static_cast<int>(line.size())) {
                text += line[static_cast<size_t>(k)];
            }
        }
    }
    return text;
}

enum Command { MARK, BOLD, GROUP };

struct Case {
    const char* name;
    Command command;
    const char* tag;
    const char* before;
    const char* after; // the text and selection afterwards; before again when unchanged
    int refused;
};

std::string RunCase(const Case& c, int* refused) {
    Marked marked = Parse(c.before);
    std::vector<std::string> part(marked.lines.begin() + marked.start.line,
                                  marked.lines.begin() + marked.end.line + 1);
    PDescriptionEdit edit;
    switch (c.command) {
    case MARK:
        edit = MarkSelection(part, marked.start, marked.end, c.tag);
        break;
    case BOLD:
        edit = BoldSelection(part, marked.start, marked.end);
        break;
    case GROUP:
        edit = GroupSelection(part, marked.start, marked.end);
        break;
    }
    *refused = edit.refused;
    if (!edit.changed) {
        return Render(marked.lines, marked.start, marked.end);
    }
    std::vector<std::string> lines(marked.lines.begin(), marked.lines.begin() + edit.first);
    lines.insert(lines.end(), edit.lines.begin(), edit.lines.end());
    lines.insert(lines.end(), marked.lines.begin() + edit.last + 1, marked.lines.end());
    return Render(lines, edit.anchor, edit.caret);
}

const Case CASES[] = {
    // The mark command.
    {"caret alone in an empty text", MARK, "genre", "|", "#genre |#", 0},
    {"caret in the middle of a line", MARK, "title", "Song |here", "Song #title |#here", 0},
    {"one word", MARK, "genre", "Rock and [Roll] songs", "Rock and [#genre Roll#] songs", 0},
    {"blanks stay outside", MARK, "genre", "a[ Rock ]b", "a [#genre Rock#] b", 0},
    {"three lines, three marks", MARK, "name", "[one\ntwo\nthree]",
     "[#name one#\n#name two#\n#name three#]", 0},
    {"selection from the middle of a line into the next", MARK, "genre", "x [one\ntwo] y",
     "x [#genre one#\n#genre two#] y", 0},
    {"a selection ending at a line's start marks nothing there", MARK, "genre", "[one\n]two",
     "[#genre one#\n]two", 0},
    {"an empty line between stays empty", MARK, "genre", "[one\n\nthree]",
     "[#genre one#\n\n#genre three#]", 0},
    {"a part of blanks only stays", MARK, "genre", "[one\n   \nthree]",
     "[#genre one#\n   \n#genre three#]", 0},
    {"indentation stays outside", MARK, "quote", "[\t.Item]", "\t[#quote .Item#]", 0},
    {"non-ASCII text", MARK, "genre", "Café [Müller ÿ]", "Café [#genre Müller ÿ#]", 0},
    {"after an existing mark", MARK, "title", "#genre Rock# and [Roll]",
     "#genre Rock# and [#title Roll#]", 0},
    {"inside a mark: the tag changes", MARK, "name", "#genre [Rock]#", "[#name Rock#]", 0},
    {"a whole mark selected: the tag changes", MARK, "name", "x [#genre Rock#] y",
     "x [#name Rock#] y", 0},
    {"the link is kept when the tag changes", MARK, "genre", "#name [Someone]@Rock/Someone#",
     "[#genre Someone@Rock/Someone#]", 0},
    {"caret in a mark's text: the tag changes", MARK, "name", "#genre Ro|ck#", "#name Ro|ck#", 0},
    {"caret in a mark's tag", MARK, "quote", "#gen|re Rock#", "#quote| Rock#", 0},
    {"a part holding a # is refused", MARK, "genre", "[Rock #1 hits]", "[Rock #1 hits]", 1},
    {"a lone # before would take the mark", MARK, "genre", "5 # of [them]", "5 # of [them]", 1},
    {"a caret after a lone #", MARK, "genre", "a # b|", "a # b|", 1},
    {"a caret inside a pair that is no mark", MARK, "genre", "#wo|rd#", "#wo|rd#", 1},
    {"a selection across a mark's edge", MARK, "genre", "#genre Ro[ck# and] more",
     "#genre Ro[ck# and] more", 1},
    {"one line refused, the others marked", MARK, "genre", "[ok\nbad # x\nfine]",
     "[#genre ok#\nbad # x\n#genre fine#]", 1},

    // The bold command.
    {"bold with no selection changes nothing", BOLD, "", "ab|c", "ab|c", 0},
    {"bold one word", BOLD, "", "a [bc] d", "a [<b>bc</b>] d", 0},
    {"bold over lines", BOLD, "", "[one\ntwo]", "[<b>one</b>\n<b>two</b>]", 0},
    {"bold round a whole mark", BOLD, "", "[#genre Rock#]", "[<b>#genre Rock#</b>]", 0},
    {"bold inside a mark's text", BOLD, "", "#genre [Rock]#", "#genre [<b>Rock</b>]#", 0},
    {"bold cutting a mark's tag is refused", BOLD, "", "#gen[re Rock]#", "#gen[re Rock]#", 1},
    {"bold cutting a mark's link is refused", BOLD, "", "#name [Someone@Ro]ck#",
     "#name [Someone@Ro]ck#", 1},
    {"bold on non-ASCII text", BOLD, "", "[Ça va]", "[<b>Ça va</b>]", 0},

    // The group command.
    {"group at a caret in an empty text", GROUP, "", "|", "{|}\n", 0},
    {"group of a line", GROUP, "", "[Early years]", "{Early years}\n|", 0},
    {"group over two lines", GROUP, "", "[Early\nyears]", "{Early years}\n|", 0},
    {"text before the heading keeps a line of its own", GROUP, "", "Intro [Jazz] rest",
     "Intro \n{Jazz}\n| rest", 0},
    {"braces are left out of the title", GROUP, "", "[a{b}c]", "{abc}\n|", 0},
    {"group at a line's start", GROUP, "", "one\n|two", "one\n{|}\ntwo", 0},
    {"group of non-ASCII text", GROUP, "", "[Época]", "{Época}\n|", 0},
    {"group inside a mark is refused", GROUP, "", "#genre Ro|ck#", "#genre Ro|ck#", 1},
};

TEST(DescriptionEdit, CommandsOnSelections) {
    for (const Case& c : CASES) {
        int refused = -1;
        EXPECT_EQ(RunCase(c, &refused), c.after) << c.name;
        EXPECT_EQ(refused, c.refused) << c.name;
    }
}

TEST(DescriptionEdit, PairsAreReadAsThePageGeneratorReadsThem) {
    struct PairCase {
        const char* line;
        std::vector<PMarkPair> pairs;
    };
    const PairCase cases[] = {
        {"", {}},
        {"no marks", {}},
        {"#genre Rock#", {{0, 11, 6, -1}}},
        {"#name A@B/C#", {{0, 11, 5, 7}}},
        {"#word# #x y#", {{0, 5, -1, -1}, {7, 11, 9, -1}}},
        {"lone # here", {}},
        {"#a b# #", {{0, 4, 2, -1}}},
        {"# x#", {{0, 3, 1, -1}}},
    };
    for (const PairCase& c : cases) {
        EXPECT_EQ(FindMarkPairs(c.line), c.pairs) << c.line;
    }
}

TEST(DescriptionEdit, BadSelectionsChangeNothing) {
    std::vector<std::string> two{"a", "b"};
    EXPECT_FALSE(MarkSelection({}, PTextPoint{}, PTextPoint{}, "genre").changed);
    EXPECT_FALSE(MarkSelection(two, PTextPoint{0, 0}, PTextPoint{0, 1}, "genre").changed); // lines don't match
    EXPECT_FALSE(BoldSelection(two, PTextPoint{1, 0}, PTextPoint{0, 1}).changed);          // reversed
    EXPECT_FALSE(MarkSelection({"x"}, PTextPoint{0, 0}, PTextPoint{0, 1}, nullptr).changed);
    // Columns past a line's end are taken as its end.
    PDescriptionEdit edit = MarkSelection({"ab"}, PTextPoint{0, 0}, PTextPoint{0, 99}, "genre");
    ASSERT_TRUE(edit.changed);
    EXPECT_EQ(edit.lines, std::vector<std::string>{"#genre ab#"});
}

// True when every byte of small appears in big in the same order.
bool IsSubsequence(const std::string& small, const std::string& big) {
    size_t at = 0;
    for (char c : big) {
        if (at < small.size() && small[at] == c) {
            ++at;
        }
    }
    return at == small.size();
}

// The line without the heads ("#tag ") of its marks.
std::string WithoutHeads(const std::string& line) {
    std::string result;
    size_t from = 0;
    for (const PMarkPair& pair : FindMarkPairs(line)) {
        if (pair.c >= 0) {
            result.append(line, from, static_cast<size_t>(pair.a) - from);
            from = static_cast<size_t>(pair.c) + 1;
        }
    }
    result.append(line, from, std::string::npos);
    return result;
}

int MarkCount(const std::string& line) {
    int count = 0;
    for (const PMarkPair& pair : FindMarkPairs(line)) {
        count += pair.c >= 0 ? 1 : 0;
    }
    return count;
}

TEST(DescriptionEdit, RandomSelectionsNeverLoseTextOrBreakMarks) {
    // Lines made of the characters that matter to marks, and selections
    // anywhere in them: nothing the user wrote is lost, no mark stops being
    // one, and the selection afterwards lies inside the text.
    std::mt19937 random(21);
    const char alphabet[] = "ab #@{}\t\xC3\xA9";
    auto randomLine = [&] {
        std::string line;
        int length = static_cast<int>(random() % 12);
        for (int i = 0; i < length; ++i) {
            line += alphabet[random() % (sizeof(alphabet) - 1)];
        }
        return line;
    };
    for (int round = 0; round < 20000; ++round) {
        std::vector<std::string> lines;
        int count = 1 + static_cast<int>(random() % 3);
        for (int i = 0; i < count; ++i) {
            lines.push_back(randomLine());
        }
        PTextPoint start{0, static_cast<int>(random() % (lines.front().size() + 1))};
        PTextPoint end{count - 1, static_cast<int>(random() % (lines.back().size() + 1))};
        if (count == 1 && end < start) {
            std::swap(start, end);
        }
        int which = static_cast<int>(random() % 3);
        PDescriptionEdit edit = which == 0   ? MarkSelection(lines, start, end, "genre")
                                : which == 1 ? BoldSelection(lines, start, end)
                                             : GroupSelection(lines, start, end);
        if (!edit.changed) {
            continue;
        }
        ASSERT_FALSE(edit.lines.empty());
        for (PTextPoint point : {edit.anchor, edit.caret}) {
            int line = point.line - edit.first;
            ASSERT_TRUE(line >= 0 && line < static_cast<int>(edit.lines.size())) << round;
            ASSERT_LE(point.column, static_cast<int>(edit.lines[static_cast<size_t>(line)].size())) << round;
        }
        if (which == 2) {
            continue; // the group command rewrites lines whole; its cases are above
        }
        ASSERT_EQ(edit.lines.size(), lines.size());
        for (size_t i = 0; i < lines.size(); ++i) {
            const std::string& before = lines[i];
            const std::string& after = edit.lines[i];
            EXPECT_TRUE(IsSubsequence(WithoutHeads(before), after)) << round << ": " << before << " -> " << after;
            EXPECT_GE(MarkCount(after), MarkCount(before)) << round << ": " << before << " -> " << after;
            EXPECT_LE(FindMarkPairs(after).size(), FindMarkPairs(before).size() + 1) << round;
        }
    }
}

// Files.

class DescriptionFileTest : public ::testing::Test {
protected:
    std::string Path(const char* name) { return (dir.Path() + "/") + name; }
    void Write(const char* name, const std::string& bytes) {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }
    std::string Read(const char* name) { return TempDir::Read(dir / name); }
    TempDir dir;
};

TEST_F(DescriptionFileTest, ReadingForTheEditor) {
    struct LoadCase {
        const char* name;
        std::string bytes;
        PDescriptionState state;
        std::string text;
        bool reason;
    };
    const LoadCase cases[] = {
        {"plain", "one", DESCRIPTION_LOADED, "one", false},
        {"CR LF kept for the editor to split", "a\r\nb\r\n", DESCRIPTION_LOADED, "a\r\nb\r\n", false},
        {"Windows-1252 taken as such", "Caf\xE9 \x95 x", DESCRIPTION_LOADED, "Café \xE2\x80\xA2 x", false},
        {"NUL and control bytes left out", std::string("a\0b\x01" "c\td", 7), DESCRIPTION_LOADED,
         "abc\td", true},
        {"empty file", "", DESCRIPTION_LOADED, "", false},
    };
    for (const LoadCase& c : cases) {
        Write("d.txt", c.bytes);
        SString text;
        SString reason;
        EXPECT_EQ(LoadDescriptionForEditing(Path("d.txt").c_str(), &text, &reason), c.state) << c.name;
        EXPECT_EQ(std::string(text.c_str(), static_cast<size_t>(text.GetLength())), c.text) << c.name;
        EXPECT_EQ(!reason.IsEmpty(), c.reason) << c.name << ": " << reason.c_str();
    }
}

TEST_F(DescriptionFileTest, WhatCannotBeEditedIsSaidSo) {
    SString text = "left";
    SString reason;
    EXPECT_EQ(LoadDescriptionForEditing(Path("missing.txt").c_str(), &text, &reason), DESCRIPTION_NEW);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_TRUE(reason.IsEmpty());

    std::filesystem::create_directory(Path("folder.txt"));
    EXPECT_EQ(LoadDescriptionForEditing(Path("folder.txt").c_str(), &text, &reason), DESCRIPTION_UNREADABLE);
    EXPECT_FALSE(reason.IsEmpty());

    // A huge file is not read at all (sparse: no disk is spent).
    Write("huge.txt", "");
    std::filesystem::resize_file(Path("huge.txt"), DESCRIPTION_MAX_EDIT_BYTES + 1);
    EXPECT_EQ(LoadDescriptionForEditing(Path("huge.txt").c_str(), &text, &reason), DESCRIPTION_UNREADABLE);
    EXPECT_NE(std::string(reason.c_str()).find("too large"), std::string::npos);
}

TEST_F(DescriptionFileTest, WritingBack) {
    struct SaveCase {
        const char* name;
        std::vector<std::string> lines;
        bool removed;
        std::string bytes;
    };
    const SaveCase cases[] = {
        {"lines with CR LF between", {"one", "two"}, false, "one\r\ntwo"},
        {"a last empty line is a last CR LF", {"a", ""}, false, "a\r\n"},
        {"two empty lines", {"", ""}, false, "\r\n"},
        {"non-ASCII passes", {"Müller", "ÿ"}, false, "Müller\r\nÿ"},
        {"one empty line removes the file", {""}, true, ""},
    };
    for (const SaveCase& c : cases) {
        Write("d.txt", "old");
        SString reason;
        EXPECT_TRUE(SaveDescriptionLines(Path("d.txt").c_str(), c.lines, &reason)) << c.name;
        EXPECT_EQ(!std::filesystem::exists(Path("d.txt")), c.removed) << c.name;
        if (!c.removed) {
            EXPECT_EQ(Read("d.txt"), c.bytes) << c.name;
        }
    }
    // Nothing to remove is no failure, and makes no file.
    EXPECT_TRUE(SaveDescriptionLines(Path("none.txt").c_str(), {""}, nullptr));
    EXPECT_FALSE(std::filesystem::exists(Path("none.txt")));
    // A failed write leaves the old file whole and says why.
    Write("blocker", "a file where a folder should be");
    SString reason;
    EXPECT_FALSE(SaveDescriptionLines(Path("blocker/d.txt").c_str(), {"x"}, &reason));
    EXPECT_FALSE(reason.IsEmpty());
    EXPECT_EQ(Read("blocker"), "a file where a folder should be");
    // No temporary file is left behind by any of it.
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path())) {
        EXPECT_EQ(entry.path().filename().string(), "blocker");
    }
}

} // namespace
