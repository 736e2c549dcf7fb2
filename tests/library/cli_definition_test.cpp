// melkora-cli definition: every kind of definition read and written back
// through the program's own writer, and the refusals.
#include <gtest/gtest.h>

#include <string>

#include "support/cli_run.h"

namespace {

TEST(CliDefinition, EachKindIsWrittenBackByItsWriter) {
    TempDir dir;
    struct Case {
        const char* what;
        std::string input;
        std::string output; // empty: the same bytes as the input
    } cases[] = {
        {"dialog",
         "TAVORA DIALOG 1.0.0.0\r\nignored\r\n[dialog]\r\nNAME=PREF\r\nSTYLE=WS_CAPTION\r\n"
         "LABEL_ALIGN=_LEFT\r\n\r\n",
         "TAVORA DIALOG 1.0.0.0\r\n\r\n[DIALOG]\r\nID=0\r\nNAME=PREF\r\nCAPTION=\r\nFONT=, 0, 0\r\n"
         "POSITION=10 10 150 150\r\nSTYLE=WS_BORDER WS_CAPTION \r\nEXSTYLE=\r\n"
         "BACKCOLOR=#FF000000\r\nTEXTCOLOR=#FF000000\r\nTRANSPARENT=0\r\nISLOCKED=0\r\n"
         "LABEL_ALIGN=_LEFT\r\n\r\n"},
        {"menu",
         "TAVORA MENU 1.0.0.0\r\n[]\r\ncount=1\r\n\r\n[0]\r\nname=M\r\ncount=1\r\n\r\n[0:0]\r\n"
         "id=4\r\nname=\r\nseparator=0\r\nmenu=0\r\ntext=Open\r\ntip=\r\nimage=\r\ndata=0\r\n"
         "checked=0\r\ndisabled=0\r\n",
         ""},
        {"toolbar",
         "TAVORA TOOLBAR 1.0.0.0\r\n[]\r\nwidth=16\r\nheight=16\r\ncount=1\r\n\r\n[0]\r\n"
         "name=PLAY\r\nimage=play.png\r\nseparator=0\r\ndata=0\r\ndisabled=0\r\ntext=Play\r\n",
         ""},
        {"tree", "TAVORA TREE 1.0.0.0\r\nRoot\r\n\tChild+5\r\n",
         "TAVORA TREE 1.0.0.0\r\nRoot+0,-1,-1,0,0\r\n\tChild+5,-1,-1,0,0\r\n"},
    };
    for (const Case& c : cases) {
        std::string path = dir.Write(std::string(c.what) + ".def", c.input);
        CliRun run = RunCli(dir, "definition " + Quote(path));
        EXPECT_EQ(run.status, 0) << c.what << run.err;
        EXPECT_EQ(run.out, c.output.empty() ? c.input : c.output) << c.what;
        EXPECT_EQ(run.err, "") << c.what;
        // What the writer gave reads back to the same bytes.
        std::string again = dir.Write(std::string(c.what) + ".again", run.out);
        EXPECT_EQ(RunCli(dir, "definition " + Quote(again)).out, run.out) << c.what;
    }
}

TEST(CliDefinition, RefusalsAndUsage) {
    TempDir dir;
    struct Case {
        const char* what;
        std::string input;
        const char* reason;
    } cases[] = {
        {"bare LF", "TAVORA DIALOG 1.0.0.0\n\n[DIALOG]\n\n", "names no known kind"},
        {"unknown kind", "TAVORA SKIN 1.0.0.0\r\n", "names no known kind"},
        {"dialog with an unknown section", "TAVORA DIALOG 1.0.0.0\r\n\r\n[KNOB]\r\n\r\n",
         "unknown section"},
        {"menu without menus", "TAVORA MENU 1.0.0.0\r\n[]\r\ncount=0\r\n", "below 1"},
        {"toolbar count beyond the file", "TAVORA TOOLBAR 1.0.0.0\r\n[]\r\ncount=99999999\r\n",
         "larger than the file"},
        {"table with a negative count", "TAVORA TABLE 1.0.0.0\r\n-1\r\n0\r\n", "table"},
    };
    for (const Case& c : cases) {
        std::string path = dir.Write("bad.def", c.input);
        CliRun run = RunCli(dir, "definition " + Quote(path));
        EXPECT_EQ(run.status, 1) << c.what;
        EXPECT_EQ(run.out, "") << c.what;
        EXPECT_EQ(run.err.rfind("melkora-cli: ", 0), 0u) << c.what;
        EXPECT_NE(run.err.find(c.reason), std::string::npos) << c.what << ": " << run.err;
        EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << c.what; // one line
    }
    EXPECT_EQ(RunCli(dir, "definition " + Quote(dir / "missing")).status, 1);
    EXPECT_EQ(RunCli(dir, "definition").status, 2);
    EXPECT_EQ(RunCli(dir, "definition a b").status, 2);
    CliRun help = RunCli(dir, "definition --help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("definition FILE"), std::string::npos);
    EXPECT_NE(RunCli(dir, "--help").out.find("definition FILE"), std::string::npos);
}

} // namespace
