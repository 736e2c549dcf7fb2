// Where the program finds its data files: share/melkora beside its bin
// folder, or MELKORA_DATA_DIR; names that would leave the folder are refused.
#include "app/data_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sys/stat.h>

#include "support/temp_dir.h"

namespace {

class DataFiles : public ::testing::Test {
protected:
    void TearDown() override { unsetenv("MELKORA_DATA_DIR"); }
};

TEST_F(DataFiles, FolderIsShareMelkoraBesideTheProgramsFolder) {
    unsetenv("MELKORA_DATA_DIR");
    std::string folder = GetDataFolder().c_str();
    // The test runs as build/bin/app_tests: the folder is build/share/melkora/.
    ASSERT_GE(folder.size(), 15u);
    EXPECT_EQ(folder.substr(folder.size() - 15), "/share/melkora/");
    EXPECT_EQ(folder.find("/bin/"), std::string::npos);
}

TEST_F(DataFiles, FindsOnlyRegularFilesInsideTheFolder) {
    TempDir dir;
    std::string root = dir.Path();
    std::ofstream(root + "/welcome.htm") << "<html></html>";
    std::ofstream(root + "/outside.htm") << "x";
    ASSERT_EQ(mkdir((root + "/data").c_str(), 0755), 0);
    ASSERT_EQ(mkdir((root + "/data/pages").c_str(), 0755), 0);
    std::ofstream(root + "/data/help.htm") << "<html></html>";
    std::ofstream(root + "/data/pages/a.htm") << "a";
    setenv("MELKORA_DATA_DIR", (root + "/data").c_str(), 1);
    EXPECT_EQ(std::string(GetDataFolder().c_str()), root + "/data/") << "a slash is added";

    struct Case {
        const char* name;
        bool found;
    } cases[] = {
        {"help.htm", true},
        {"pages/a.htm", true},
        {"missing.htm", false},
        {"pages", false},          // a folder is no data file
        {"../outside.htm", false}, // leaves the folder
        {"pages/../help.htm", false},
        {"/etc/passwd", false},
        {"", false},
        {"pages//a.htm", false},
    };
    for (const Case& c : cases) {
        SString path = FindDataFile(c.name);
        EXPECT_EQ(path.GetLength() > 0, c.found) << c.name;
        if (c.found) {
            EXPECT_EQ(std::string(path.c_str()), root + "/data/" + c.name);
        }
    }
    EXPECT_EQ(FindDataFile(nullptr).GetLength(), 0);
}

} // namespace
