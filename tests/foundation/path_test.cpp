#include "foundation/path.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <unistd.h>

#include "foundation/array.h"

namespace {

std::string CurrentFolder() {
    char* current = getcwd(nullptr, 0);
    std::string folder = current != nullptr ? current : "";
    free(current);
    return folder == "/" ? "" : folder;
}

struct PathCase {
    const char* input;
    int type;
    const char* root;
    const char* folder;
    const char* name;
    const char* full;
    const char* parent;
    int depth;
};

// Every form in the default mode (trailing separator on).
// clang-format off
const PathCase PATH_CASES[] = {
    {"/", PATH_LOCAL, "/", "", "", "/", "", 2},
    {"/a/b.mp3", PATH_LOCAL, "/", "a/", "b.mp3", "/a/b.mp3", "/a/", 3},
    {"/a/b/", PATH_LOCAL, "/", "a/b/", "", "/a/b/", "/a/", 4},
    {"/b.mp3", PATH_LOCAL, "/", "", "b.mp3", "/b.mp3", "/", 2},
    {"/a/", PATH_LOCAL, "/", "a/", "", "/a/", "/", 3},
    {"/música/canción.mp3", PATH_LOCAL, "/", "música/", "canción.mp3", "/música/canción.mp3",
     "/música/", 3},
    {"/a|b", PATH_LOCAL, "/", "", "a|b", "/a|b", "/", 2},
    // A backslash is part of a name on this system.
    {"/a\\b/c", PATH_LOCAL, "/", "a\\b/", "c", "/a\\b/c", "/a\\b/", 3},
    // Odd separators and dots are resolved by text.
    {"/a//b///c.txt", PATH_LOCAL, "/", "a/b/", "c.txt", "/a/b/c.txt", "/a/b/", 4},
    {"/a/./b/../c", PATH_LOCAL, "/", "a/", "c", "/a/c", "/a/", 3},
    {"/a/b/.", PATH_LOCAL, "/", "a/b/", "", "/a/b/", "/a/", 4},
    {"/a/b/..", PATH_LOCAL, "/", "a/", "", "/a/", "/", 3},
    {"/..", PATH_LOCAL, "/", "", "", "/", "", 2},
    {"/../../x", PATH_LOCAL, "/", "", "x", "/x", "/", 2},
    {"///x", PATH_LOCAL, "/", "", "x", "/x", "/", 2},
    {"//host/share/x", PATH_UNC, "//host/", "share/", "x", "//host/share/x", "//host/share/", 3},
    {"//host/share/", PATH_UNC, "//host/", "share/", "", "//host/share/", "//host/", 3},
    {"//host", PATH_UNC, "//host/", "", "", "//host", "", 2},
    {"http://x/y/z.htm", PATH_URL, "http://x/", "y/", "z.htm", "http://x/y/z.htm",
     "http://x/y/", 3},
    {"http://x\\y\\z.htm", PATH_URL, "http://x/", "y/", "z.htm", "http://x/y/z.htm",
     "http://x/y/", 3},
    {"http://x", PATH_URL, "http://x/", "", "", "http://x", "", 2},
    {"http://x/", PATH_URL, "http://x/", "", "", "http://x/", "", 2},
    // Refused texts.
    {"", PATH_INVALID, "", "", "", "", "", 0},
    {"http://x/y?z", PATH_INVALID, "", "", "", "", "", 0},
    {"a*b", PATH_INVALID, "", "", "", "", "", 0}, {"/a\tb", PATH_INVALID, "", "", "", "", "", 0},
    {"/a\"b", PATH_INVALID, "", "", "", "", "", 0}, {"/a<b>", PATH_INVALID, "", "", "", "", "", 0},
    {"a:b://c", PATH_INVALID, "", "", "", "", "", 0}};
// clang-format on

TEST(PathForms, TypeAndPartsOfEveryForm) {
    for (const PathCase& test : PATH_CASES) {
        SCOPED_TRACE(test.input);
        SPath path(test.input);
        EXPECT_EQ(path.GetType(), test.type);
        EXPECT_EQ(path.IsValid(), test.type != PATH_INVALID);
        EXPECT_STREQ(path.GetRoot().c_str(), test.root);
        EXPECT_STREQ(path.GetFolder().c_str(), test.folder);
        EXPECT_STREQ(path.GetName().c_str(), test.name);
        EXPECT_STREQ(path.GetFullPath().c_str(), test.full);
        EXPECT_STREQ(path.GetParent().c_str(), test.parent);
        EXPECT_EQ(path.GetDepth(), test.depth);
        EXPECT_EQ(path.HasName(), test.name[0] != 0);
        EXPECT_EQ(path.IsFolder(),
                  test.type != PATH_INVALID && test.folder[0] != 0 && test.name[0] == 0);
    }
}

TEST(PathForms, RelativeTextsStartAtTheCurrentFolder) {
    std::string here = CurrentFolder();
    EXPECT_STREQ(SPath("a/b.mp3").GetFullPath().c_str(), (here + "/a/b.mp3").c_str());
    EXPECT_STREQ(SPath(".").GetFullPath().c_str(), (here + "/").c_str());
    EXPECT_STREQ(SPath("a|b").GetName().c_str(), "a|b");
    SPath up("..");
    EXPECT_TRUE(up.IsLocal());
    EXPECT_FALSE(up.HasName());
    std::string parent = here.substr(0, here.rfind('/') + 1);
    EXPECT_STREQ(up.GetFullPath().c_str(), parent.empty() ? "/" : parent.c_str());
}

TEST(PathForms, SetFolderAddsTheSeparatorAndNullTextClearsEarlierPath) {
    SPath path;
    EXPECT_TRUE(path.SetFolder("/a/b"));
    EXPECT_STREQ(path.GetFullPath().c_str(), "/a/b/");
    EXPECT_TRUE(path.IsFolder());
    EXPECT_TRUE(path.SetFolder("/a/b/"));
    EXPECT_STREQ(path.GetFullPath().c_str(), "/a/b/");
    EXPECT_FALSE(path.SetFolder(""));
    EXPECT_FALSE(path.SetFolder("a*"));
    path.Set("/a/b");
    EXPECT_FALSE(path.Set(nullptr));
    EXPECT_FALSE(path.IsValid());
    EXPECT_STREQ(path.GetFullPath().c_str(), "");
}

struct NameCase {
    const char* input;
    const char* title;
    const char* extensionAsIs;   // withDot false, lowerCase false
    const char* extensionDotLow; // withDot true, lowerCase true
};

// clang-format off
const NameCase NAME_CASES[] = {
    {"/x/y.TXT", "y", "TXT", ".txt"}, {"/a/x.tar.gz", "x.tar", "gz", ".gz"},
    {"/a/noext", "noext", "", ""}, {"/a/.bashrc", "", "bashrc", ".bashrc"}, {"/a/x.", "x", "", ""},
    {"/a/b/", "", "", ""}, {"/a.b/c", "c", "", ""}};
// clang-format on

TEST(PathNames, TitleAndExtension) {
    for (const NameCase& test : NAME_CASES) {
        SCOPED_TRACE(test.input);
        SPath path(test.input);
        EXPECT_STREQ(path.GetTitle().c_str(), test.title);
        EXPECT_STREQ(path.GetExtension(false, false).c_str(), test.extensionAsIs);
        EXPECT_STREQ(path.GetExtension(true, true).c_str(), test.extensionDotLow);
    }
}

struct TrailingCase {
    const char* input;
    bool trailing;
    const char* folder;
    const char* folderPath;
    const char* full;
    const char* parent;
    const char* lastFolder;
};

// clang-format off
const TrailingCase TRAILING_CASES[] = {
    {"/a/b/", true, "a/b/", "/a/b/", "/a/b/", "/a/", "b/"},
    {"/a/b/", false, "a/b", "/a/b", "/a/b", "/a", "b"},
    {"/a/b/c.mp3", true, "a/b/", "/a/b/", "/a/b/c.mp3", "/a/b/", "b/"},
    {"/a/b/c.mp3", false, "a/b", "/a/b", "/a/b/c.mp3", "/a/b", "b"},
    {"/a/", false, "a", "/a", "/a", "/", "a"}, {"/", false, "", "/", "/", "", ""},
    {"/c.mp3", false, "", "/", "/c.mp3", "/", ""},
    {"//host/share/", false, "share", "//host/share", "//host/share", "//host/", "share"},
    {"http://x/y/z/", false, "y/z", "http://x/y/z", "http://x/y/z", "http://x/y", "z"}};
// clang-format on

TEST(PathTrailingSeparator, FolderTextsFollowTheMode) {
    for (const TrailingCase& test : TRAILING_CASES) {
        SCOPED_TRACE(std::string(test.input) + (test.trailing ? " on" : " off"));
        SPath path(test.input);
        EXPECT_TRUE(path.SetTrailingSeparator(test.trailing));
        EXPECT_EQ(path.GetTrailingSeparator(), test.trailing);
        EXPECT_STREQ(path.GetFolder().c_str(), test.folder);
        EXPECT_STREQ(path.GetFolderPath().c_str(), test.folderPath);
        EXPECT_STREQ(path.GetFullPath().c_str(), test.full);
        EXPECT_STREQ(path.GetParent().c_str(), test.parent);
        EXPECT_STREQ(path.GetLastFolder(false).c_str(), test.lastFolder);
        EXPECT_EQ(path.GetLastFolder(true).GetLength(),
                  static_cast<int>(strlen(test.lastFolder)) -
                      (test.trailing && test.lastFolder[0] ? 1 : 0));
        EXPECT_STREQ(path.GetRoot().c_str(), SPath(test.input).GetRoot().c_str());
    }
}

TEST(PathTrailingSeparator, SetReturnsTheOldModeAndAssignTakesTheFullPathAsItReads) {
    SPath folder("/a/b/");
    EXPECT_TRUE(folder.SetTrailingSeparator(false));
    EXPECT_FALSE(folder.SetTrailingSeparator(true));
    SPath copy;
    copy.Assign(folder);
    EXPECT_TRUE(copy.IsFolder());
    EXPECT_STREQ(copy.GetFullPath().c_str(), "/a/b/");
    folder.SetTrailingSeparator(false);
    copy.Assign(folder);
    EXPECT_STREQ(copy.GetName().c_str(), "b");
    SPath url("http://x/y.htm");
    copy.Assign(url);
    EXPECT_TRUE(copy.IsUrl());
    EXPECT_STREQ(copy.GetName().c_str(), "y.htm");
}

std::string Joined(SStringArray& parts) {
    std::string text;
    for (int i = 0; i < parts.GetCount(); ++i) {
        text += "[" + std::string(parts.GetAt(i)->c_str()) + "]";
    }
    return text;
}

TEST(PathParts, PartsListRootFoldersAndName) {
    SStringArray parts;
    EXPECT_EQ(SPath("http://h/a/b.htm").GetParts(&parts), 3);
    EXPECT_EQ(Joined(parts), "[http://h/][a/][b.htm]");
    parts.DeleteAll();
    EXPECT_EQ(SPath("/a/b/").GetParts(&parts), 4);
    EXPECT_EQ(Joined(parts), "[/][a/][b/][]");
    parts.DeleteAll();
    EXPECT_EQ(SPath("a*").GetParts(&parts), 0);
    EXPECT_EQ(parts.GetCount(), 0);
}

TEST(PathParts, SliceOfAFilePath) {
    // start, count, drop the name, separator, slice
    // clang-format off
    const std::tuple<int, int, bool, char, const char*> cases[] = {
        {1, -1, false, '/', "a/b/c.mp3"}, {0, -1, false, '\\', "\\a\\b\\c.mp3"},
        {1, 2, false, '\\', "a\\b\\"}, {1, -1, true, '/', "a/b/"}, {3, 5, false, '/', "c.mp3"},
        {3, 1, true, '/', ""}, {-1, 2, false, '/', ""}, {1, 0, false, '/', ""},
        {4, -1, false, '/', ""}, {0, 1, false, '/', "/"}};
    // clang-format on
    SPath path("/a/b/c.mp3");
    for (auto [start, count, dropName, separator, expected] : cases) {
        EXPECT_STREQ(path.GetSlice(start, count, dropName, separator).c_str(), expected)
            << start << "," << count;
    }
}

TEST(PathParts, SameIgnoresCaseButNotTypeOrShape) {
    SPath a("/A/b.MP3");
    SPath b("/a/B.mp3");
    SPath folder("/a/b.mp3/");
    SPath url("http://a/b.mp3");
    EXPECT_TRUE(a.IsSame(&b));
    EXPECT_FALSE(a.IsSame(&folder));
    EXPECT_FALSE(a.IsSame(&url));
    EXPECT_FALSE(a.IsSame(nullptr));
}

} // namespace
