// The pages jobs of melkora-cli, run as a user runs them: exit codes,
// stdout, stderr, and the files they leave.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/cli_run.h"

#ifdef MELKORA_CLI_PATH

namespace {

class CliPagesTest : public ::testing::Test {
protected:
    void SetUp() override {
        root = temp.MakeFolder("music");
        temp.MakeFolder("music/Rock/Someone/Album");
        temp.Write("music/Rock/Someone/Album/01 a.mp3", "");
        quotedRoot = "'" + root + "'";
    }
    TempDir temp;
    std::string root;
    std::string quotedRoot;
};

TEST_F(CliPagesTest, DescribeLineConvertsEachLineWithTheKnownFolders) {
    CliRun run = RunCli(temp, "describe-line " + quotedRoot,
                     "#name SOMEONE#\r\n\t.item\n\nlast without end");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out,
              "<a href=\"Rock/Someone.link\" class=txtName>SOMEONE</a><br>\n"
              "<div class=txtTab>\xE2\x80\xA2item</div>\n<br>\nlast without end<br>\n");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(RunCli(temp, "describe-line " + quotedRoot, "").out, "");
}

TEST_F(CliPagesTest, PageAndPagesWriteThePagesAndTheIcon) {
    temp.Write("music/Rock.txt", "about rock");
    CliRun run = RunCli(temp, "page " + quotedRoot + "/ Rock");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_TRUE(std::filesystem::exists(root + "/Rock.htm"));
    run = RunCli(temp, "page " + quotedRoot + " Rock/Someone");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.rfind("melkora-cli: ", 0), 0u);
    run = RunCli(temp, "pages " + quotedRoot);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, ""); // no bar when stderr is no terminal
    EXPECT_TRUE(std::filesystem::exists(root + "/Images/icon.gif"));
}

TEST_F(CliPagesTest, BookAndZipBookWriteTheirFiles) {
    CliRun run = RunCli(temp, "zip-book " + quotedRoot + " --output '" + (temp / "book.zip") + "'");
    EXPECT_EQ(run.status, 1); // no Book yet
    run = RunCli(temp, "book " + quotedRoot + " --images 'A;\"B;C\"'");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    EXPECT_TRUE(std::filesystem::exists(root + "/Book/book2.png"));
    run = RunCli(temp, "book " + quotedRoot + " --no-images --output '" + (temp / "Other.htm") + "'");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(std::filesystem::exists(temp / "Other.htm"));
    EXPECT_FALSE(std::filesystem::exists(temp / "Other"));
    run = RunCli(temp, "zip-book " + quotedRoot + " --output '" + (temp / "book.zip") + "'");
    EXPECT_EQ(run.status, 0) << run.err;
    std::string zip = TempDir::Read(temp / "book.zip");
    EXPECT_EQ(zip.substr(0, 4), std::string("PK\x03\x04", 4));
    EXPECT_NE(zip.find("Book/book2.png"), std::string::npos);
}

TEST_F(CliPagesTest, UsageErrors) {
    // No job or an unknown one: the library's CLI tests.
    EXPECT_EQ(RunCli(temp, "page " + quotedRoot).status, 2);
    EXPECT_EQ(RunCli(temp, "zip-book " + quotedRoot).status, 2);
    EXPECT_EQ(RunCli(temp, "book " + quotedRoot + " --bogus").status, 2);
    CliRun run = RunCli(temp, "pages '" + (temp / "missing") + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.rfind("melkora-cli: ", 0), 0u);
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1); // one line
}

TEST_F(CliPagesTest, EveryJobStartsWithHelpImagesAndItsArguments) {
    const char* const jobs[] = {"pages", "page", "describe-line", "book", "zip-book"};
    for (const char* job : jobs) {
        SCOPED_TRACE(job);
        CliRun help = RunCli(temp, std::string(job) + " " + quotedRoot + " -h");
        EXPECT_EQ(help.status, 0) << "help wins over any other argument";
        EXPECT_EQ(help.out.rfind(std::string("usage: melkora-cli ") + job + " ", 0), 0u);
        EXPECT_EQ(RunCli(temp, std::string(job) + " " + quotedRoot + " --images").status, 2)
            << "--images without its value";
        EXPECT_EQ(RunCli(temp, job).status, 2) << "no root";
    }
    EXPECT_EQ(RunCli(temp, "page " + quotedRoot + " Rock extra").status, 2);
    EXPECT_EQ(RunCli(temp, "describe-line '" + (temp / "missing") + "'").status, 1);
    CliRun images = RunCli(temp, "describe-line --images 'A;B' " + quotedRoot, "plain");
    EXPECT_EQ(images.status, 0) << "--images and its value are taken out wherever they stand";
    EXPECT_EQ(images.out, "plain<br>\n");
}

} // namespace

#endif
