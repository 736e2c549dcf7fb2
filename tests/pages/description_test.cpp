// Description files: the known-folder lists, the conversion of one line and
// the reading of the file with its code-page fallback.
#include "pages/description.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "support/temp_dir.h"

namespace {

std::string Convert(const char* line, const PKnownFolders* known = nullptr) {
    return ConvertDescriptionLine(SString(line), known).c_str();
}

// A tree with artists (folders holding albums) and albums.
class KnownFoldersTest : public ::testing::Test {
protected:
    void SetUp() override {
        temp.MakeFolder("Rock/Someone/Album One");
        temp.MakeFolder("Rock/Someone/Album Two");
        temp.MakeFolder("rock2/Other/Live");
        temp.MakeFolder("Jazz/Band/Take/Inner");
        temp.MakeFolder("Lonely");
        temp.MakeFolder(".secret/Artist/Album");
        temp.MakeFolder("Images/Sub/Deeper");
        temp.Write(".hidden", "Images\n");
        temp.Write("Rock/Someone.txt", "about");
    }
    TempDir temp;
};

TEST_F(KnownFoldersTest, ListsFoldersHoldingFoldersOneLevelAtATime) {
    PKnownFolders known;
    ASSERT_TRUE(known.Load(temp.Path().c_str()));
    // Children of the root first, in listing order, then each child's.
    const char* names[] = {"Jazz", "Rock", "rock2", "Band", "Take", "Someone", "Other"};
    const char* paths[] = {"Jazz",          "Rock",         "rock2",      "Jazz/Band",
                           "Jazz/Band/Take", "Rock/Someone", "rock2/Other"};
    ASSERT_EQ(known.GetCount(), 7);
    for (int i = 0; i < 7; ++i) {
        EXPECT_STREQ(known.FolderNames.GetText(i).c_str(), names[i]) << i;
        EXPECT_STREQ(known.FolderPaths.GetText(i).c_str(), paths[i]) << i;
    }
    const char* tree[] = {"Jazz", "Jazz/Band", "Jazz/Band/Take", "Rock", "Rock/Someone", "rock2",
                          "rock2/Other"};
    ASSERT_EQ(known.TreeOrder.GetCount(), 7);
    for (int i = 0; i < 7; ++i) {
        EXPECT_STREQ(known.TreeOrder.GetText(i).c_str(), tree[i]) << i;
    }
}

TEST_F(KnownFoldersTest, ReportsTheRunningCountAndReloadsFromScratch) {
    PKnownFolders known;
    int last = 0;
    auto onFolder = [](int count, void* context) { *static_cast<int*>(context) = count; };
    ASSERT_TRUE(known.Load((temp.Path() + "/").c_str(), onFolder, &last));
    EXPECT_EQ(last, 7);
    ASSERT_TRUE(known.Load(temp.Path().c_str()));
    EXPECT_EQ(known.GetCount(), 7);
    EXPECT_FALSE(known.Load((temp / "missing").c_str()));
    EXPECT_EQ(known.GetCount(), 0);
}

TEST_F(KnownFoldersTest, NameMarksLinkToKnownFoldersIgnoringCase) {
    PKnownFolders known;
    ASSERT_TRUE(known.Load(temp.Path().c_str()));
    EXPECT_EQ(Convert("#name someone#", &known),
              "<a href=\"Rock/Someone.link\" class=txtName>someone</a><br>");
    // An album is no known folder.
    EXPECT_EQ(Convert("#name Album One#", &known), "<font class=txtName>Album One</font><br>");
    // Only name marks look the folders up.
    EXPECT_EQ(Convert("#genre Rock#", &known), "<font class=txtGenre>Rock</font><br>");
}

struct LineCase {
    const char* line;
    const char* html;
};

TEST(ConvertDescriptionLine, MarksBecomeFontsAnchorsAndImages) {
    const LineCase cases[] = {
        {"#genre Hard Rock#", "<font class=txtGenre>Hard Rock</font><br>"},
        {"#title  Spaced \t#", "<font class=txtTitle>Spaced</font><br>"},
        {"#quote said#", "<font class=txtQuote>said</font><br>"},
        {"#GeNrE x#", "<font class=txtGenre>x</font><br>"},
        {"#name Someone@Rock\\Someone#",
         "<a href=\"Rock\\Someone.link\" class=txtName>Someone</a><br>"},
        {"#name Someone#", "<font class=txtName>Someone</font><br>"},
        {"#title T@ link #", "<a href=\" link .link\" class=txtTitle>T</a><br>"},
        {"#image cover.jpg#", "<img src=\"Images\\cover.jpg\"><br>"},
        {"#image cover.jpg@http://x#", "<img src=\"Images\\cover.jpg\"><br>"},
        {"a #genre G# b #title T# c",
         "a <font class=txtGenre>G</font> b <font class=txtTitle>T</font> c<br>"},
        {"<b>bold</b> & <i>", "<b>bold</b> & <i><br>"},
    };
    for (const LineCase& c : cases) {
        EXPECT_EQ(Convert(c.line), c.html) << c.line;
    }
}

TEST(ConvertDescriptionLine, TextThatIsNoMarkStaysAsItStands) {
    const LineCase cases[] = {
        // No blank before the second "#": the scan goes on after it.
        {"#word# #genre G#", "#word# <font class=txtGenre>G</font><br>"},
        {"#other text#", "#other text#<br>"},
        {"#other text# #quote q#", "#other text# <font class=txtQuote>q</font><br>"},
        {"lone # here", "lone # here<br>"},
        {"#", "#<br>"},
        {"##", "##<br>"},
        // The blank lies beyond the second "#".
        {"#genre#x y#", "#genre#x y#<br>"},
        // An "@" beyond the mark belongs to the text after it.
        {"#genre a# b@c", "<font class=txtGenre>a</font> b@c<br>"},
        // The "#" of an inserted result is never looked at again.
        {"#title a@#genre b#", "<a href=\".link\" class=txtTitle>a</a>genre b#<br>"},
        {"", "<br>"},
        {" ", " <br>"},
    };
    for (const LineCase& c : cases) {
        EXPECT_EQ(Convert(c.line), c.html) << c.line;
    }
}

TEST(ConvertDescriptionLine, DotsBecomeBulletsAndTabsNestBlocks) {
    const LineCase cases[] = {
        {".item", "\xE2\x80\xA2item<br>"},
        {"..", "\xE2\x80\xA2.<br>"},
        {"a.b", "a.b<br>"},
        {"\t.item", "<div class=txtTab>\xE2\x80\xA2item</div>"},
        {"\t\t.word", "<div class=txtTab><div class=txtTab>\xE2\x80\xA2word</div></div>"},
        {"\tplain", "<div class=txtTab>plain</div>"},
        {"x\t.y", "x\t\xE2\x80\xA2y<br>"},
        {"\t", "<div class=txtTab></div>"},
        {" \t.x", " \t\xE2\x80\xA2x<br>"},
    };
    for (const LineCase& c : cases) {
        EXPECT_EQ(Convert(c.line), c.html) << c.line;
    }
}

TEST(DescriptionLineKind, HeadingsNeedABraceClosedAfterItOpens) {
    SString title;
    EXPECT_EQ(GetDescriptionLineKind(SString(""), &title), DESCRIPTION_EMPTY);
    EXPECT_EQ(GetDescriptionLineKind(SString(" "), &title), DESCRIPTION_TEXT);
    EXPECT_EQ(GetDescriptionLineKind(SString("{ Early years }"), &title), DESCRIPTION_HEADING);
    EXPECT_STREQ(title.c_str(), " Early years ");
    EXPECT_EQ(GetDescriptionLineKind(SString("x{a}y}z"), &title), DESCRIPTION_HEADING);
    EXPECT_STREQ(title.c_str(), "a");
    EXPECT_EQ(GetDescriptionLineKind(SString("{}"), &title), DESCRIPTION_HEADING);
    EXPECT_STREQ(title.c_str(), "");
    EXPECT_EQ(GetDescriptionLineKind(SString("{ open"), nullptr), DESCRIPTION_TEXT);
    EXPECT_EQ(GetDescriptionLineKind(SString("} then {"), nullptr), DESCRIPTION_TEXT);
    EXPECT_EQ(GetDescriptionLineKind(SString("a } b { c } d"), nullptr), DESCRIPTION_TEXT);
}

TEST(ConvertDescriptionLine, HugeAndRandomLinesConvertWithoutHarm) {
    // A megabyte of "#a#" with no blank at all: linear, every "#" kept.
    std::string marks;
    while (marks.size() < 1000000) {
        marks += "#a";
    }
    SString big(marks.c_str());
    SString html = ConvertDescriptionLine(big, nullptr);
    EXPECT_EQ(html.GetLength(), big.GetLength() + 4);

    // A megabyte of real marks.
    std::string real;
    while (real.size() < 1000000) {
        real += "#name x@y# ";
    }
    html = ConvertDescriptionLine(SString(real.c_str()), nullptr);
    EXPECT_EQ(SString(html).Find("#"), -1);

    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::string bytes(random() % 400, 0);
        for (char& c : bytes) {
            const char alphabet[] = "# @\t.{}ab\x95\xff";
            c = random() % 3 == 0 ? static_cast<char>(random() % 255 + 1)
                                  : alphabet[random() % (sizeof(alphabet) - 1)];
        }
        SString line(bytes.c_str());
        SString out = ConvertDescriptionLine(line, nullptr);
        EXPECT_GE(out.GetLength(), 4);
    }
}

TEST(ReadDescriptionFile, KeepsUtf8AndConvertsWindows1252) {
    TempDir temp;
    SString text;
    ASSERT_TRUE(ReadDescriptionFile(temp.Write("utf8.txt", "caf\xC3\xA9 \xE2\x80\xA2").c_str(), text));
    EXPECT_STREQ(text.c_str(), "caf\xC3\xA9 \xE2\x80\xA2");
    // 0xE9 alone is no UTF-8: the whole file is read as Windows-1252, where
    // 0x95 is the bullet and 0x80 the euro sign.
    ASSERT_TRUE(ReadDescriptionFile(temp.Write("ansi.txt", "caf\xE9 \x95 \x80").c_str(), text));
    EXPECT_STREQ(text.c_str(), "caf\xC3\xA9 \xE2\x80\xA2 \xE2\x82\xAC");
    ASSERT_TRUE(ReadDescriptionFile(temp.Write("empty.txt", "").c_str(), text));
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_FALSE(ReadDescriptionFile((temp / "missing.txt").c_str(), text));
    EXPECT_FALSE(ReadDescriptionFile(temp.Path().c_str(), text));
}

} // namespace
