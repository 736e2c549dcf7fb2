// Description pages: whole pages compared byte for byte, the rules for
// blank lines and groups, the style sheet, and the full build with its
// icon and progress.
#include "pages/description_page.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

#include "foundation/disk.h"
#include "foundation/file.h"
#include "pages/description.h"
#include "pages/resources.h"
#include "support/temp_dir.h"

namespace {

std::string StyleSheet() {
    EnsurePagesResources();
    SFileMem sheet("BINARY", RESOURCE_DESCRIPTION_STYLE);
    return sheet.GetSize() > 0 ? std::string(sheet.GetData(), size_t(sheet.GetSize())) : "";
}

// The page around a body, as every page starts and ends.
std::string Page(const std::string& root, const std::string& body, bool hasGroup) {
    return "<html><head>\r\n<base href=\"" + root + "\">\r\n" + StyleSheet() +
           "</head>\r\n"
           "<body leftmargin=6 topmargin=6 rightmargin=6 bottommargin=6 marginwidth=6 "
           "marginheight=6>\r\n"
           "<div class=txt>\r\n" +
           body + (hasGroup ? "</div><br><br>\r\n" : "") + "</div></body></html>\r\n";
}

std::string Heading(const std::string& title) {
    return "<font class=txtChapter><img src=\"Images/icon.gif\" align=absmiddle> " + title +
           "</font><br><table border=0 cellpadding=0 cellspacing=0 width=100%><tr height=4><td>"
           "</tr><tr height=4><td bgcolor=#1381ff></tr></table><br><div class=txt>\r\n";
}

std::string Render(const std::string& text, const PKnownFolders* known = nullptr) {
    SFileMem page;
    SString source;
    source.Assign(text.data(), static_cast<int>(text.size()));
    if (!WriteDescriptionPage(&page, "/music/", source, known)) {
        return "<failed>";
    }
    return std::string(page.GetData() != nullptr ? page.GetData() : "",
                       static_cast<size_t>(page.GetSize()));
}

TEST(DescriptionStyle, HoldsEveryClassInOneStyleElement) {
    std::string style = StyleSheet();
    ASSERT_FALSE(style.empty());
    EXPECT_EQ(style.rfind("<style", 0), 0u);
    EXPECT_EQ(style.substr(style.size() - 10), "</style>\r\n");
    for (const char* name : {"txt", "txtTab", "txtChapter", "txtGenre", "txtName", "txtTitle",
                             "txtQuote"}) {
        std::string rule = std::string("\n.") + name + " {";
        EXPECT_NE(style.find(rule), std::string::npos) << name;
        std::string anchors = std::string("a.") + name + ":link, a." + name + ":visited";
        EXPECT_NE(style.find(anchors), std::string::npos) << name;
    }
    EXPECT_NE(style.find("padding-left: 24px"), std::string::npos);
    // Every line of the sheet ends in CR LF, as the page's own lines do.
    for (size_t i = style.find('\n'); i != std::string::npos; i = style.find('\n', i + 1)) {
        ASSERT_EQ(style[i - 1], '\r');
    }
}

TEST(DescriptionPage, TextWithoutGroupsStaysInOneBlock) {
    EXPECT_EQ(Render("Hello\r\n#genre Rock# music"),
              Page("/music/", "Hello<br>\r\n<font class=txtGenre>Rock</font> music<br>\r\n", false));
    EXPECT_EQ(Render(""), Page("/music/", "", false));
}

TEST(DescriptionPage, GroupsOpenCloseAndSeparate) {
    // A heading on the first line has nothing before it; two headings in a
    // row are separated by the closing of the first.
    EXPECT_EQ(Render("{One}\r\n{Two}\r\ntext"),
              Page("/music/",
                   Heading("One") + "</div><br><br>\r\n" + Heading("Two") + "text<br>\r\n", true));
    // A heading after text gets three breaks before it; its title is
    // untrimmed and not converted; the rest of its line is dropped.
    EXPECT_EQ(Render("intro\n x{ #genre A# }y\nmore"),
              Page("/music/",
                   "intro<br>\r\n<br><br><br>\r\n" + Heading(" #genre A# ") + "more<br>\r\n", true));
}

TEST(DescriptionPage, BlankLinesCountOnlyBetweenText) {
    // Two blank lines between text lines give two breaks.
    EXPECT_EQ(Render("a\r\n\r\n\r\nb"), Page("/music/", "a<br>\r\n<br>\r\n<br>\r\nb<br>\r\n", false));
    // Before the first text line with no heading, a blank counts.
    EXPECT_EQ(Render("\r\nfirst"), Page("/music/", "<br>\r\nfirst<br>\r\n", false));
    // Straight after a heading, and before one, blanks vanish; at the end
    // they are dropped.
    EXPECT_EQ(Render("x\n\n{H}\n\n\ny\n\n\n"),
              Page("/music/", "x<br>\r\n<br><br><br>\r\n" + Heading("H") + "y<br>\r\n", true));
    // After text inside a group they count again.
    EXPECT_EQ(Render("{H}\ny\n\nz"),
              Page("/music/", Heading("H") + "y<br>\r\n<br>\r\nz<br>\r\n", true));
}

TEST(DescriptionPage, LoneCrAndLoneLfEachEndALine) {
    EXPECT_EQ(Render("a\rb\nc\r\nd"), Page("/music/", "a<br>\r\nb<br>\r\nc<br>\r\nd<br>\r\n", false));
    // CR CR is two line ends, so one blank line.
    EXPECT_EQ(Render("a\r\rb"), Page("/music/", "a<br>\r\n<br>\r\nb<br>\r\n", false));
    EXPECT_EQ(Render("\t.a\n b"),
              Page("/music/", "<div class=txtTab>\xE2\x80\xA2" "a</div>\r\n b<br>\r\n", false));
}

class DescriptionBuildTest : public ::testing::Test {
protected:
    void SetUp() override {
        root = temp.Path() + "/";
        temp.MakeFolder("Rock/Someone/Album");
        temp.MakeFolder("Jazz/Band/Album");
    }
    TempDir temp;
    std::string root;
};

TEST_F(DescriptionBuildTest, PageIsWrittenBesideItsSourceAndLinksKnownFolders) {
    temp.Write("Rock.txt", "#name someone# rocks");
    PKnownFolders known;
    ASSERT_TRUE(known.Load(root.c_str()));
    ASSERT_TRUE(BuildDescriptionPage(temp.Path().c_str(), "Rock", &known));
    EXPECT_EQ(TempDir::Read(temp / "Rock.htm"),
              Page(root, "<a href=\"Rock/Someone.link\" class=txtName>someone</a> rocks<br>\r\n",
                   false));
    // No icon is written by a single page.
    EXPECT_FALSE(std::filesystem::exists(temp / "Images/icon.gif"));
}

TEST_F(DescriptionBuildTest, WindowsTextIsConvertedOnTheWay) {
    temp.Write("Jazz.txt", "\x95 Caf\xE9");
    ASSERT_TRUE(BuildDescriptionPage(root.c_str(), "Jazz", nullptr));
    EXPECT_EQ(TempDir::Read(temp / "Jazz.htm"),
              Page(root, "\xE2\x80\xA2 Caf\xC3\xA9<br>\r\n", false));
}

TEST_F(DescriptionBuildTest, APageNeverOutlivesItsSource) {
    temp.Write("Rock.txt", "text");
    ASSERT_TRUE(BuildDescriptionPage(root.c_str(), "Rock", nullptr));
    ASSERT_TRUE(std::filesystem::exists(temp / "Rock.htm"));
    std::filesystem::remove(temp / "Rock.txt");
    EXPECT_FALSE(BuildDescriptionPage(root.c_str(), "Rock", nullptr));
    EXPECT_FALSE(std::filesystem::exists(temp / "Rock.htm"));
    // A page of the user's own, not generated here, is kept.
    temp.Write("Jazz.htm", "<html><body>mine</body></html>");
    EXPECT_FALSE(BuildDescriptionPage(root.c_str(), "Jazz", nullptr));
    EXPECT_EQ(TempDir::Read(temp / "Jazz.htm"), "<html><body>mine</body></html>");
    // No source and no page: nothing happens.
    EXPECT_FALSE(BuildDescriptionPage(root.c_str(), "Nowhere", nullptr));
    EXPECT_FALSE(BuildDescriptionPage(root.c_str(), "", nullptr));
}

TEST_F(DescriptionBuildTest, AFailedWriteLeavesTheOldPage) {
    temp.Write("Rock.txt", "new");
    temp.Write("Rock.htm", "old");
    std::filesystem::permissions(temp.Path(), std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::remove);
    bool isRoot = geteuid() == 0; // root writes anyway
    bool built = BuildDescriptionPage(root.c_str(), "Rock", nullptr);
    std::filesystem::permissions(temp.Path(), std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    if (!isRoot) {
        EXPECT_FALSE(built);
        EXPECT_EQ(TempDir::Read(temp / "Rock.htm"), "old");
    }
    // No temporary file is left beside it either way.
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(temp.Path())) {
        files += entry.is_regular_file() ? 1 : 0;
    }
    EXPECT_EQ(files, 2);
}

TEST_F(DescriptionBuildTest, BuildingAllWritesTheIconAndReportsProgress) {
    temp.Write("Rock.txt", "rock");
    temp.Write("Jazz/Band.txt", "band");
    temp.Write("Rock/Someone.htm", std::string("<html><head>\r\n<base href=\"old\">"));
    PKnownFolders known;
    ASSERT_TRUE(known.Load(root.c_str()));
    ASSERT_EQ(known.GetCount(), 4);
    std::vector<std::string> texts;
    std::vector<int> percents;
    ASSERT_TRUE(BuildAllDescriptionPages(root.c_str(), known, [&](const SString& text, int percent) {
        texts.push_back(text.c_str());
        percents.push_back(percent);
    }));
    const std::vector<std::string> expected = {"Building... 0%", "Building... 25%",
                                               "Building... 50%", "Building... 75%", "Ready."};
    EXPECT_EQ(texts, expected);
    EXPECT_EQ(percents, (std::vector<int>{0, 25, 50, 75, 100}));
    EXPECT_TRUE(std::filesystem::exists(temp / "Rock.htm"));
    EXPECT_TRUE(std::filesystem::exists(temp / "Jazz/Band.htm"));
    EXPECT_FALSE(std::filesystem::exists(temp / "Jazz.htm"));
    // The stale generated page of a folder without description is gone.
    EXPECT_FALSE(std::filesystem::exists(temp / "Rock/Someone.htm"));
    // The icon: a 32 by 28 GIF in a hidden "Images" folder.
    std::string icon = TempDir::Read(temp / "Images/icon.gif");
    ASSERT_GE(icon.size(), 10u);
    EXPECT_EQ(icon.substr(0, 6), "GIF89a");
    EXPECT_EQ(static_cast<unsigned char>(icon[6]) | static_cast<unsigned char>(icon[7]) << 8, 32);
    EXPECT_EQ(static_cast<unsigned char>(icon[8]) | static_cast<unsigned char>(icon[9]) << 8, 28);
    SDisk disk;
    EXPECT_TRUE(disk.IsHidden((temp / "Images").c_str()));
    // The Images folder itself is no known folder.
    ASSERT_TRUE(known.Load(root.c_str()));
    EXPECT_EQ(known.GetCount(), 4);
}

TEST_F(DescriptionBuildTest, AnImagesFileInTheWayFailsTheBuild) {
    temp.Write("Images", "a file, not a folder");
    PKnownFolders known;
    ASSERT_TRUE(known.Load(root.c_str()));
    EXPECT_FALSE(BuildAllDescriptionPages(root.c_str(), known));
}

TEST_F(DescriptionBuildTest, HugeAndRandomDescriptionsStillGiveAPage) {
    // 100,000 lines.
    std::string lines;
    for (int i = 0; i < 100000; ++i) {
        lines += i % 1000 == 0 ? "{Group}\r\n" : i % 7 == 0 ? "\r\n" : "#genre g# line\r\n";
    }
    temp.Write("Rock.txt", lines);
    ASSERT_TRUE(BuildDescriptionPage(root.c_str(), "Rock", nullptr));
    std::string page = TempDir::Read(temp / "Rock.htm");
    EXPECT_GT(page.size(), lines.size());
    EXPECT_EQ(page.substr(page.size() - 22), "</div></body></html>\r\n");

    // Lines of a megabyte each.
    std::string wide(1 << 20, 'x');
    temp.Write("Jazz.txt", wide + "\n#title " + wide + "#\n" + wide);
    ASSERT_TRUE(BuildDescriptionPage(root.c_str(), "Jazz", nullptr));
    EXPECT_GT(TempDir::Read(temp / "Jazz.htm").size(), 3u << 20);

    // Random bytes, read as Windows-1252 since they are no UTF-8.
    std::mt19937 random(11);
    std::string noise(200000, 0);
    for (char& c : noise) {
        c = static_cast<char>(random());
    }
    temp.Write("Rock/Someone.txt", noise);
    ASSERT_TRUE(BuildDescriptionPage(root.c_str(), "Rock/Someone", nullptr));
    EXPECT_TRUE(std::filesystem::exists(temp / "Rock/Someone.htm"));
}

} // namespace
