#include "foundation/ini.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "support/temp_dir.h"
#include "test_support.h"

namespace {

// An SIni over a memory image holding text.
void LoadMemory(SIni& ini, const std::string& text) {
    SFileMem source;
    source.Write(text.data(), int(text.size()));
    source.Rewind();
    ASSERT_TRUE(ini.SetSource(&source));
}

std::string MemoryText(const SIni& ini) {
    const SFileMem& memory = ini.GetMemory();
    if (memory.GetData() == nullptr) {
        return std::string();
    }
    return std::string(memory.GetData(), size_t(memory.GetSize()));
}

struct ReadCase {
    const char* name;
    const char* text;
    const char* section;
    const char* key;
    const char* expected;
};

const ReadCase READ_CASES[] = {
    {"plain", "[s]\r\nk=v\r\n", "s", "k", "v"},
    {"names ignore case", "[Sect]\r\nKey=v\r\n", "sECT", "kEY", "v"},
    {"value keeps later equals", "[s]\r\na=b=c\r\n", "s", "a", "b=c"},
    {"blank before equals is part of the key", "[s]\r\na = 1\r\n", "s", "a", ""},
    {"key with its blank", "[s]\r\na = 1\r\n", "s", "a ", " 1"},
    {"leading blank is part of the key", "[s]\r\n k=v\r\n", "s", "k", ""},
    {"value keeps trailing blanks", "[s]\r\nk=v  \r\n", "s", "k", "v  "},
    {"empty value", "[s]\r\nk=\r\nk2=x\r\n", "s", "k", ""},
    {"missing section", "[s]\r\nk=v\r\n", "t", "k", ""},
    {"missing key", "[s]\r\nk=v\r\n", "s", "j", ""},
    {"first duplicate key wins", "[s]\r\nk=1\r\nk=2\r\n", "s", "k", "1"},
    {"later section of the same name unseen", "[s]\r\nk=1\r\n[S]\r\nj=2\r\n", "s", "j", ""},
    {"key of the next section unseen", "[a]\r\nx=1\r\n[b]\r\ny=2\r\n", "a", "y", ""},
    {"key of the second section", "[a]\r\nx=1\r\n[b]\r\ny=2\r\n", "b", "y", "2"},
    {"section line trimmed", "  [s]\t\r\nk=v\r\n", "s", "k", "v"},
    {"unclosed bracket is no section", "[x\r\nk=v\r\n", "x", "k", ""},
    {"unclosed bracket under a section is ignored", "[s]\r\n[x\r\nk=v\r\n", "s", "k", "v"},
    {"raw line with trailing blank does not end a section", "[s]\r\n[t] \r\nk=v\r\n", "s", "k",
     "v"},
    {"section ends at the next section", "[s]\r\n[t]\r\nk=v\r\n", "s", "k", ""},
    {"empty section name", "[]\r\nk=v\r\n", "", "k", "v"},
    {"semicolon line is a key", "[s]\r\n;k=1\r\n", "s", ";k", "1"},
    {"comment without equals is skipped", "[s]\r\n; note\r\n# note\r\nk=v\r\n", "s", "k", "v"},
    {"one-character line skipped", "[s]\r\n=\r\n=x\r\n", "s", "", "x"},
    {"no final line end", "[s]\r\nk=v", "s", "k", "v"},
    {"lone LF does not end a line", "[s]\nk=v\n", "s", "k", ""},
    {"lone CR stays in the value", "[s]\r\nk=a\rb\r\n", "s", "k", "a\rb"},
    {"line before any section", "k=v\r\n[s]\r\nj=w\r\n", "s", "k", ""},
    {"magic line before sections", "DIALOG 1\r\n[s]\r\nk=v\r\n", "s", "k", "v"},
    {"empty text", "", "s", "k", ""},
};

class IniRead : public ::testing::TestWithParam<ReadCase> {};

TEST_P(IniRead, MemoryAndFileGiveTheSameValue) {
    const ReadCase& c = GetParam();
    SIni memoryIni;
    LoadMemory(memoryIni, c.text);
    EXPECT_EQ(memoryIni.ReadString(c.section, c.key), c.expected);

    TempDir dir;
    std::string path = dir.Write("a.ini", c.text);
    SIni fileIni;
    ASSERT_TRUE(fileIni.SetFile(path.c_str(), false));
    EXPECT_EQ(fileIni.ReadString(c.section, c.key), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, IniRead, ::testing::ValuesIn(READ_CASES),
                         CaseName<::testing::TestParamInfo<ReadCase>>);

TEST(IniReadTyped, IntFollowsAtoiAndBoolIsTrueOnlyForExactlyOne) {
    SIni ini;
    LoadMemory(ini, "[s]\r\na=12abc\r\nb=-5\r\nc=x\r\nd= 7\r\none=1\r\nt=true\r\n"
                    "z1=01\r\nb1= 1\r\n1b=1 \r\ntwo=2\r\n");
    EXPECT_EQ((std::vector<int>{ini.ReadInt("s", "a"), ini.ReadInt("s", "b"), ini.ReadInt("s", "c"),
                                ini.ReadInt("s", "d"), ini.ReadInt("s", "absent")}),
              (std::vector<int>{12, -5, 0, 7, 0}));
    EXPECT_TRUE(ini.ReadBool("s", "one"));
    for (const char* key : {"t", "z1", "b1", "1b", "two", "absent"}) {
        EXPECT_FALSE(ini.ReadBool("s", key)) << key;
    }
}

struct WriteCase {
    const char* name;
    const char* before;
    const char* section;
    const char* key;
    const char* value;
    const char* after;
};

const WriteCase WRITE_CASES[] = {
    {"into empty text", "", "s", "k", "v", "[s]\r\nk=v\r\n"},
    {"new section after a finished line", "x=1\r\n", "s", "k", "v", "x=1\r\n\r\n[s]\r\nk=v\r\n"},
    {"new section after an unfinished line", "x=1", "s", "k", "v", "x=1\r\n\r\n[s]\r\nk=v\r\n"},
    {"new key becomes first of its section", "[s]\r\na=1\r\n", "S", "k", "v",
     "[s]\r\nk=v\r\na=1\r\n"},
    {"new key in a middle section", "[a]\r\nx=1\r\n\r\n[b]\r\ny=2\r\n", "b", "k", "v",
     "[a]\r\nx=1\r\n\r\n[b]\r\nk=v\r\ny=2\r\n"},
    {"longer value grows the line", "[s]\r\nk=1\r\nz=2\r\n", "s", "k", "123",
     "[s]\r\nk=123\r\nz=2\r\n"},
    {"shorter value shrinks the line", "[s]\r\nk=12345\r\nz=2\r\n", "s", "k", "1",
     "[s]\r\nk=1\r\nz=2\r\n"},
    {"same length", "[s]\r\nk=ab\r\n", "s", "k", "cd", "[s]\r\nk=cd\r\n"},
    {"key takes the spelling of the call", "[S]\r\nKEY=1\r\n", "s", "key", "2", "[S]\r\nkey=2\r\n"},
    {"last line without line end keeps none", "[s]\r\nk=1", "s", "k", "22", "[s]\r\nk=22"},
    {"first of duplicate keys changes", "[s]\r\nk=1\r\nk=2\r\n", "s", "k", "3",
     "[s]\r\nk=3\r\nk=2\r\n"},
    {"value holding equals", "[s]\r\n", "s", "k", "a=b", "[s]\r\nk=a=b\r\n"},
    {"empty value", "[s]\r\nk=old\r\n", "s", "k", "", "[s]\r\nk=\r\n"},
    {"LF text is one line: section added", "[s]\nk=1\n", "s", "k", "2",
     "[s]\nk=1\n\r\n[s]\r\nk=2\r\n"},
};

class IniWrite : public ::testing::TestWithParam<WriteCase> {};

TEST_P(IniWrite, MemoryImageAndFileChangeExactly) {
    const WriteCase& c = GetParam();
    SIni memoryIni;
    LoadMemory(memoryIni, c.before);
    ASSERT_TRUE(memoryIni.WriteString(c.section, c.key, c.value));
    EXPECT_EQ(MemoryText(memoryIni), c.after);
    EXPECT_EQ(memoryIni.ReadString(c.section, c.key), c.value);

    TempDir dir;
    std::string path = dir.Write("a.ini", c.before);
    SIni fileIni;
    ASSERT_TRUE(fileIni.SetFile(path.c_str(), false));
    ASSERT_TRUE(fileIni.WriteString(c.section, c.key, c.value));
    EXPECT_EQ(TempDir::Read(path), c.after);
    EXPECT_EQ(fileIni.ReadString(c.section, c.key), c.value);
}

INSTANTIATE_TEST_SUITE_P(Cases, IniWrite, ::testing::ValuesIn(WRITE_CASES),
                         CaseName<::testing::TestParamInfo<WriteCase>>);

TEST(IniWriteSequence, ManyKeysAndSectionsReadBack) {
    SIni ini;
    LoadMemory(ini, "");
    for (int s = 0; s < 5; ++s) {
        for (int k = 0; k < 10; ++k) {
            std::string section = "sec" + std::to_string(s);
            std::string key = "key" + std::to_string(k);
            std::string value(size_t(k * 3), char('a' + s));
            ASSERT_TRUE(ini.WriteString(section.c_str(), key.c_str(), value.c_str()));
        }
    }
    ASSERT_TRUE(ini.WriteString("sec2", "key4", "changed"));
    for (int s = 0; s < 5; ++s) {
        for (int k = 0; k < 10; ++k) {
            std::string section = "sec" + std::to_string(s);
            std::string key = "key" + std::to_string(k);
            std::string expected =
                s == 2 && k == 4 ? "changed" : std::string(size_t(k * 3), char('a' + s));
            EXPECT_EQ(ini.ReadString(section.c_str(), key.c_str()), expected.c_str());
        }
    }
}

TEST(IniModes, NoneAndClearReadEmptyAndRefuseWrites) {
    SIni ini;
    for (int pass = 0; pass < 2; ++pass) { // new, then cleared after a load
        EXPECT_EQ(ini.GetMode(), INI_NONE);
        EXPECT_FALSE(ini.IsMemory());
        EXPECT_EQ(ini.GetMemory().GetSize(), 0);
        EXPECT_EQ(ini.ReadString("s", "k"), "");
        EXPECT_FALSE(ini.WriteString("s", "k", "v"));
        LoadMemory(ini, "[s]\r\nk=v\r\n");
        ini.Clear();
    }
}

TEST(IniModes, SetFileNeedsAFileOrCreatesAnEmptyOne) {
    TempDir dir;
    SIni ini;
    EXPECT_FALSE(ini.SetFile((dir / "missing.ini").c_str(), false));
    EXPECT_EQ(ini.GetMode(), INI_NONE);
    EXPECT_FALSE(std::filesystem::exists(dir / "missing.ini"));
    EXPECT_FALSE(ini.SetFile(dir.Path().c_str(), false));
    EXPECT_FALSE(ini.SetFile("", true));
    EXPECT_FALSE(ini.SetFile((dir / "no/such/a.ini").c_str(), true));
    EXPECT_EQ(ini.GetMode(), INI_NONE);
    std::string path = dir / "new.ini";
    ASSERT_TRUE(ini.SetFile(path.c_str(), true));
    EXPECT_EQ(ini.GetMode(), INI_FILE);
    EXPECT_EQ(ini.GetPath(), path.c_str());
    EXPECT_EQ(TempDir::Read(path), "");
    EXPECT_TRUE(std::filesystem::exists(path));
    ASSERT_TRUE(ini.WriteString("s", "k", "v"));
    EXPECT_EQ(TempDir::Read(path), "[s]\r\nk=v\r\n");
    SIni again; // create keeps an existing file
    ASSERT_TRUE(again.SetFile(path.c_str(), true));
    EXPECT_EQ(again.ReadString("s", "k"), "v");
}

TEST(IniModes, FileIsReadAgainForEachCallAndWritesLeaveNoTemporaryFile) {
    TempDir dir;
    std::string path = dir.Write("a.ini", "[s]\r\nk=1\r\n");
    SIni ini;
    ASSERT_TRUE(ini.SetFile(path.c_str(), false));
    EXPECT_EQ(ini.ReadString("s", "k"), "1");
    dir.Write("a.ini", "[s]\r\nk=2\r\n");
    EXPECT_EQ(ini.ReadString("s", "k"), "2");
    ASSERT_TRUE(ini.WriteString("s", "k", "3"));
    ASSERT_TRUE(ini.WriteString("t", "k", "4"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()),
                            std::filesystem::directory_iterator()),
              1);
    // A file that vanished is not made again.
    std::filesystem::remove(path);
    EXPECT_FALSE(ini.WriteString("s", "k", "v"));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(ini.ReadString("s", "k"), "");
}

TEST(IniModes, SourceIsTakenFromItsPositionAndReplacesTheOldImage) {
    SFileMem source;
    const char text[] = "MAGIC 1\r\n[s]\r\nk=v\r\n";
    source.Write(text, int(sizeof(text) - 1));
    source.Rewind();
    EXPECT_EQ(source.ReadLine(false), "MAGIC 1");
    SIni ini;
    LoadMemory(ini, "[a]\r\nx=1\r\n");
    ASSERT_TRUE(ini.SetSource(&source));
    EXPECT_TRUE(ini.IsMemory());
    EXPECT_EQ(MemoryText(ini), "[s]\r\nk=v\r\n");
    EXPECT_EQ(ini.ReadString("s", "k"), "v");
    EXPECT_EQ(ini.ReadString("a", "x"), "");
}

TEST(IniModes, MemoryWritesNeverTouchTheFileAndNullSourceKeepsTheMode) {
    TempDir dir;
    std::string path = dir.Write("a.ini", "[s]\r\nk=v\r\n");
    SIni ini;
    ASSERT_TRUE(ini.SetFile(path.c_str(), false));
    EXPECT_FALSE(ini.SetSource(nullptr));
    EXPECT_EQ(ini.GetMode(), INI_FILE);
    SFilePath file;
    ASSERT_TRUE(file.Open(path.c_str(), false, false, true, false));
    ASSERT_TRUE(ini.SetSource(&file));
    EXPECT_TRUE(ini.GetPath().IsEmpty());
    ASSERT_TRUE(ini.WriteString("s", "k", "changed"));
    EXPECT_EQ(ini.ReadString("s", "k"), "changed");
    EXPECT_EQ(TempDir::Read(path), "[s]\r\nk=v\r\n");
}

TEST(IniModes, NullNamesActAsEmptyNames) {
    SIni ini;
    LoadMemory(ini, "[]\r\n=x\r\n");
    EXPECT_EQ(ini.ReadString(nullptr, nullptr), "x");
    EXPECT_TRUE(ini.WriteString(nullptr, "k", nullptr));
    EXPECT_EQ(MemoryText(ini), "[]\r\nk=\r\n=x\r\n");
}

TEST(IniCrash, KilledWriterLeavesAWholeFile) {
    MemoryTempDir dir;
    ASSERT_FALSE(dir.Path().empty());
    std::string path = dir / "a.ini";
    constexpr int keys = 8;
    {
        SIni ini;
        ASSERT_TRUE(ini.SetFile(path.c_str(), true));
        for (int k = 0; k < keys; ++k) {
            ASSERT_TRUE(ini.WriteString("s", ("key" + std::to_string(k)).c_str(), "0/0/0"));
        }
    }
    std::mt19937 random(12345);
    std::uniform_int_distribution<int> delay(200, 4000);
    int newValuesSeen = 0;
    for (int round = 1; round <= 50; ++round) {
        auto writer = [round, &path](const std::function<void()>& ready) {
            SIni ini;
            ini.SetFile(path.c_str(), false);
            for (int generation = round * 100000;; ++generation) {
                std::string value = Generation(uint64_t(generation));
                for (int k = 0; k < keys; ++k) {
                    ini.WriteString("s", ("key" + std::to_string(k)).c_str(), value.c_str());
                    ready(); // one write is in: the clock starts now
                }
            }
        };
        ASSERT_TRUE(RunAndKill(writer, delay(random)));
        SIni ini;
        ASSERT_TRUE(ini.SetFile(path.c_str(), false));
        for (int k = 0; k < keys; ++k) {
            std::string value = ini.ReadString("s", ("key" + std::to_string(k)).c_str()).c_str();
            ASSERT_TRUE(IsWholeValue(value)) << "round " << round << " key " << k << ": " << value;
            newValuesSeen += std::stoi(value) >= round * 100000 ? 1 : 0;
        }
    }
    EXPECT_GE(newValuesSeen, 50) << "each round's writer got at least one value in";
}

} // namespace
