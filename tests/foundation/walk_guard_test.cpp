// The walk guard's rule for links, the confinement of writes to a folder's
// real path, and atomic replacement of files whose names fill the limit.
#include "foundation/walk_guard.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "foundation/disk.h"
#include "foundation/file.h"
#include "support/temp_dir.h"

namespace fs = std::filesystem;

namespace {

// Whether the guard lets a walk started at top into path.
bool Enters(SWalkGuard& guard, const std::string& path, bool viaLink) {
    int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    bool entered = fd >= 0 && guard.Enter(fd, viaLink);
    if (fd >= 0) {
        close(fd);
    }
    return entered;
}

} // namespace

TEST(WalkGuard, ALinkIsFollowedOncePerRealFolderAndNeverAboveTheTopOrIntoTheKernel) {
    TempDir dir;
    std::string top = dir.MakeFolder("top");
    std::string plain = dir.MakeFolder("top/Plain");
    std::string other = dir.MakeFolder("other disk");
    SWalkGuard guard;
    ASSERT_TRUE(guard.Start(top.c_str()));
    struct Case {
        const char* name;
        std::string path;
        bool viaLink;
        bool entered;
    };
    const Case cases[] = {
        {"a plain folder", plain, false, true},
        {"a link to a folder met before", plain, true, false},
        {"a link to another disk", other, true, true},
        {"a second link there", other, true, false},
        {"a link to the top", top, true, false},
        {"a link to the folder above", dir.Path(), true, false},
        {"a link to /", "/", true, false},
        {"a link to /proc", "/proc", true, false},
        {"a plain folder met again", plain, false, true},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(Enters(guard, test.path, test.viaLink), test.entered) << test.name;
    }
    EXPECT_EQ(guard.GetCount(), 3u); // the top, Plain, the other disk
}

TEST(WriteConfinement, APathCountsWhereItsLinksLead) {
    TempDir dir;
    std::string root = dir.MakeFolder("root");
    dir.MakeFolder("root/Rock");
    dir.MakeFolder("outside");
    fs::create_directory_symlink(dir / "outside", root + "/Away");
    fs::create_directory_symlink(root + "/Rock", root + "/Fav");
    fs::create_symlink(dir / "outside/x.htm", root + "/Rock/Out.htm");
    fs::create_symlink("nowhere", root + "/Rock/Dangling.htm");
    struct Case {
        std::string path;
        bool inside;
    };
    const Case cases[] = {
        {root + "/Rock/New.htm", true},       {root + "/Fav/New.htm", true},
        {root, true},                          {root + "/Away/New.htm", false},
        {root + "/Rock/Out.htm", false},       {root + "/Rock/Dangling.htm", false},
        {root + "/../outside/New.htm", false}, {root + "/Missing/New.htm", false},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(IsInsideFolder(root.c_str(), test.path.c_str()), test.inside) << test.path;
    }
    EXPECT_FALSE(IsInsideFolder(nullptr, root.c_str()));
    for (const char* dotDot : {"..", "../x", "a/../b", "a/.."}) {
        EXPECT_TRUE(HasDotDotPart(dotDot)) << dotDot;
    }
    for (const char* plain : {"a", "a..b/c", "...", ".hidden/x", ""}) {
        EXPECT_FALSE(HasDotDotPart(plain)) << plain;
    }
}

TEST(FileAtomic, ANameOfTheLongestLengthIsReplacedWithAShortTemporaryName) {
    TempDir dir;
    std::string path = dir / std::string(255, 'n');
    ASSERT_TRUE(WriteFileAtomic(path.c_str(), "one", 3));
    ASSERT_TRUE(WriteFileAtomic(path.c_str(), "two", 3));
    EXPECT_EQ(TempDir::Read(path), "two");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 1);
    // An unfinished replacement holds its temporary file locked, so no
    // cleaner takes it; once closed, nothing is left.
    SFilePath open;
    ASSERT_TRUE(open.OpenReplace(path.c_str()));
    EXPECT_EQ(RemoveLeftoverTempFiles(dir.Path().c_str()), 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 2);
    open.Close();
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 1);
}
