#include "foundation/registry.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

#include "support/temp_dir.h"
#include "test_support.h"

namespace {

const char KEY[] = "Software\\Test Vendor\\Test Program\\1.0";

// Each test gets a settings folder of its own.
class Registry : public ::testing::Test {
protected:
    TempDir dir;
    ScopedEnv config{"MELKORA_CONFIG_HOME", dir.Path().c_str()};
    std::string storePath = dir / "registry.ini";
};

TEST_F(Registry, TextNumbersAndBytesRoundTrip) {
    for (const char* text :
         {"", "plain", "/home/user/Music", "with \"quotes\" and \\backslashes\\",
          "line\r\nbreaks\tand\x01control\x7f", "[not a section]", "\"Name\"=dword:00000001",
          "caf\xc3\xa9 \xe2\x80\xa2 UTF-8", " blanks around "}) {
        ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, "Value", text)) << text;
        EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "Value"), text);
    }
    for (uint32_t value : {0u, 1u, 50u, 0x00FF8040u, 0xFF000000u, 0xFFFFFFFFu}) {
        ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "Number", value));
        EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, "Number"), value);
    }
    const unsigned char data[] = {0, 1, 0x7f, 0x80, 0xff, '\r', '\n', '"', '\\'};
    ASSERT_TRUE(SRegistry::WriteBinary(HKEY_CURRENT_USER, KEY, "Blob", data, int(sizeof(data))));
    unsigned char out[16] = {};
    EXPECT_EQ(SRegistry::ReadBinary(HKEY_CURRENT_USER, KEY, "Blob", nullptr, 0), int(sizeof(data)));
    ASSERT_EQ(SRegistry::ReadBinary(HKEY_CURRENT_USER, KEY, "Blob", out, int(sizeof(out))),
              int(sizeof(data)));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(out), sizeof(data)),
              std::string(reinterpret_cast<const char*>(data), sizeof(data)));
    ASSERT_TRUE(SRegistry::WriteBinary(HKEY_CURRENT_USER, KEY, "Empty", nullptr, 0));
    EXPECT_EQ(SRegistry::ReadBinary(HKEY_CURRENT_USER, KEY, "Empty", out, 16), 0);
    EXPECT_FALSE(SRegistry::WriteBinary(HKEY_CURRENT_USER, KEY, "Bad", nullptr, 3));
}

TEST_F(Registry, ValuesOfOneKeyStaySeparateAndDeleteRemovesOnlyOne) {
    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, "A", "first"));
    ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "B", 7));
    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, nullptr, "default"));
    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, "Software\\Other", "A", "other"));
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "A"), "first");
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, "B"), 7u);
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, nullptr), "default");
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "@"), "");
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, "Software\\Other", "A"), "other");
    EXPECT_TRUE(SRegistry::DeleteValue(HKEY_CURRENT_USER, KEY, "a"));
    EXPECT_TRUE(SRegistry::DeleteValue(HKEY_CURRENT_USER, KEY, "absent"));
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "A"), "");
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, "B"), 7u);
}

TEST_F(Registry, NamesIgnoreCase) {
    ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "Volume", 10));
    ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, "SOFTWARE\\test vendor\\TEST PROGRAM\\1.0",
                                    "VOLUME", 20));
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, "volume"), 20u);
    // One key and one value, in the spelling of their first write.
    std::string text = TempDir::Read(storePath);
    EXPECT_EQ(text.find("VOLUME"), std::string::npos);
    EXPECT_EQ(text.find("Volume"), text.rfind("Volume"));
    EXPECT_EQ(text.find("[SOFTWARE"), std::string::npos);
}

TEST_F(Registry, StoreFileHasTheDocumentedForm) {
    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, "Folder", "/a \"b\"\n"));
    ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "Volume", 31));
    const unsigned char bytes[] = {1, 0xab};
    ASSERT_TRUE(SRegistry::WriteBinary(HKEY_CURRENT_USER, KEY, "Blob", bytes, 2));
    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, nullptr, "d"));
    EXPECT_EQ(TempDir::Read(storePath), "MELKORA REGISTRY 1\n"
                                        "\n"
                                        "[Software\\\\Test Vendor\\\\Test Program\\\\1.0]\n"
                                        "\"Folder\"=\"/a \\\"b\\\"\\x0a\"\n"
                                        "\"Volume\"=dword:0000001f\n"
                                        "\"Blob\"=hex:01,ab\n"
                                        "@=\"d\"\n");
}

TEST_F(Registry, MissingValuesReadAsZeroAndBadKeysOrRootsWriteNothing) {
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "Folder"), "");
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, "Volume"), 0u);
    EXPECT_EQ(SRegistry::ReadBinary(HKEY_CURRENT_USER, KEY, "Blob", nullptr, 0), -1);
    EXPECT_FALSE(SRegistry::WriteInt(HKEY_CURRENT_USER, "", "Volume", 1));
    EXPECT_FALSE(SRegistry::WriteString(HKEY_CURRENT_USER, nullptr, "Folder", "x"));
    const HKEY unknown = 0x12345678u;
    EXPECT_FALSE(SRegistry::WriteInt(unknown, KEY, "Volume", 1));
    EXPECT_EQ(SRegistry::ReadInt(unknown, KEY, "Volume"), 0u);
    EXPECT_EQ(SRegistry::GetStorePath(unknown), "");
    EXPECT_FALSE(std::filesystem::exists(storePath));
    ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "Volume", 5));
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "Folder"), "");
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, "Software\\Missing", "Volume"), 0u);
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, nullptr, "Volume"), 0u);
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, "", "Volume"), 0u);
}

TEST_F(Registry, RootsHaveTheirOwnStores) {
    ASSERT_TRUE(SRegistry::WriteInt(HKEY_LOCAL_MACHINE, KEY, "Volume", 3));
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, "Volume"), 0u);
    EXPECT_EQ(SRegistry::ReadInt(HKEY_LOCAL_MACHINE, KEY, "Volume"), 3u);
    EXPECT_FALSE(std::filesystem::exists(storePath));
    EXPECT_TRUE(std::filesystem::exists(dir / "registry-local-machine.ini"));
}

TEST_F(Registry, TextReadIsLimitedTo256BytesWithTerminator) {
    std::string fits(255, 'x');
    std::string tooLong(256, 'y');
    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, "Fits", fits.c_str()));
    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, "Long", tooLong.c_str()));
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "Fits"), fits.c_str());
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "Long"), "");
}

TEST_F(Registry, ReadsHandOverStoredBytesWhateverTheType) {
    ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "Number", 0x4241));
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "Number"), "AB");
    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, "Short", "ab"));
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, "Short"), 0x6261u);
    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, "Text", "1234"));
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, "Text"), 0u) << "5 bytes do not fit";
    const char bytes[] = {'h', 'i', 0, 'x'};
    ASSERT_TRUE(SRegistry::WriteBinary(HKEY_CURRENT_USER, KEY, "Blob", bytes, 4));
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, KEY, "Blob"), "hi");
}

TEST_F(Registry, WriteMakesTheFolderAndLeavesNoTemporaryFile) {
    std::string nested = dir / "deeper/config";
    ScopedEnv nestedConfig("MELKORA_CONFIG_HOME", (nested + "/").c_str());
    EXPECT_EQ(SRegistry::GetFolder(), nested.c_str());
    ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "A", 1));
    ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "B", 2));
    int entries = 0;
    for (const auto& entry : std::filesystem::directory_iterator(nested)) {
        EXPECT_EQ(entry.path().filename(), "registry.ini");
        ++entries;
    }
    EXPECT_EQ(entries, 1);
}

TEST(RegistryLocation, FolderFollowsTheEnvironment) {
    TempDir dir;
    {
        ScopedEnv own("MELKORA_CONFIG_HOME", dir.Path().c_str());
        EXPECT_EQ(SRegistry::GetStorePath(HKEY_CURRENT_USER), (dir / "registry.ini").c_str());
    }
    {
        ScopedEnv own("MELKORA_CONFIG_HOME", "");
        ScopedEnv xdg("XDG_CONFIG_HOME", dir.Path().c_str());
        EXPECT_EQ(SRegistry::GetStorePath(HKEY_CURRENT_USER),
                  (dir / "melkora/registry.ini").c_str());
        ASSERT_TRUE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "A", 4));
        EXPECT_TRUE(std::filesystem::exists(dir / "melkora/registry.ini"));
    }
    {
        ScopedEnv own("MELKORA_CONFIG_HOME", nullptr);
        ScopedEnv xdg("XDG_CONFIG_HOME", "relative/ignored");
        ScopedEnv home("HOME", dir.Path().c_str());
        EXPECT_EQ(SRegistry::GetFolder(), (dir / ".config/melkora").c_str());
    }
}

// Damaged stores: each reads as empty where it cannot be understood.
struct DamagedCase {
    const char* name;
    std::string_view text;
    const char* expectedFolder; // the value "Folder" of KEY
    uint32_t expectedVolume;    // the value "Volume" of KEY
};

using namespace std::literals;

const DamagedCase DAMAGED_CASES[] = {
    {"whole store",
     "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Folder\"=\"/m\"\n\"Volume\"=dword:00000009\n"sv, "/m",
     9},
    {"CR LF line ends", "MELKORA REGISTRY 1\r\n[Software\\\\K]\r\n\"Volume\"=dword:00000009\r\n"sv,
     "", 9},
    {"no magic", "[Software\\\\K]\n\"Volume\"=dword:00000009\n"sv, "", 0},
    {"foreign ini", "[Software\\K]\r\nVolume=9\r\n"sv, "", 0},
    {"half last line",
     "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Folder\"=\"/m\"\n\"Volume\"=dword:000"sv, "/m", 0},
    {"half quoted text",
     "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Folder\"=\"/m\n\"Volume\"=dword:00000002\n"sv, "", 2},
    {"bad escape", "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Folder\"=\"\\q\"\n"sv, "", 0},
    {"bad hex escape", "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Folder\"=\"\\x4\"\n"sv, "", 0},
    {"dword too long", "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Volume\"=dword:000000091\n"sv, "",
     0},
    {"dword not hex", "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Volume\"=dword:0000000g\n"sv, "", 0},
    {"odd hex", "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Volume\"=hex:0\n"sv, "", 0},
    {"text after closing quote", "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Folder\"=\"/m\"x\n"sv, "",
     0},
    {"value before any key", "MELKORA REGISTRY 1\n\"Volume\"=dword:00000009\n[Software\\\\K]\n"sv,
     "", 0},
    {"unknown type", "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Volume\"=qword:0000000000000009\n"sv,
     "", 0},
    {"first duplicate wins",
     "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Volume\"=dword:00000001\n[software\\\\k]\n"
     "\"volume\"=dword:00000002\n"sv,
     "", 1},
    {"zero bytes", "MELKORA REGISTRY 1\n[Software\\\\K]\n\"Fol\0der\"=\"x\"\n"sv, "", 0},
};

class RegistryDamaged : public Registry, public ::testing::WithParamInterface<DamagedCase> {};

TEST_P(RegistryDamaged, ReadsWhatParsesAndNextWriteReplacesCleanly) {
    const DamagedCase& c = GetParam();
    dir.Write("registry.ini", c.text);
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, "Software\\K", "Folder"), c.expectedFolder);
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, "Software\\K", "Volume"), c.expectedVolume);

    ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, "Software\\K", "Playlist", "p"));
    std::string after = TempDir::Read(storePath);
    EXPECT_EQ(after.rfind("MELKORA REGISTRY 1\n", 0), 0u);
    EXPECT_EQ(after.find('\r'), std::string::npos);
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, "Software\\K", "Playlist"), "p");
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER, "Software\\K", "Folder"), c.expectedFolder);
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, "Software\\K", "Volume"), c.expectedVolume);
}

INSTANTIATE_TEST_SUITE_P(Cases, RegistryDamaged, ::testing::ValuesIn(DAMAGED_CASES),
                         CaseName<::testing::TestParamInfo<DamagedCase>>);

TEST_F(Registry, RandomBytesReadAsEmptyAndAreReplaced) {
    std::mt19937 random(7);
    for (int round = 0; round < 50; ++round) {
        std::string bytes(size_t(random() % 2000), '\0');
        for (char& c : bytes) {
            c = static_cast<char>(random());
        }
        // Half the time the magic is there, so the line parser gets the bytes.
        if (round % 2 == 0) {
            bytes = "MELKORA REGISTRY 1\n[Software\\\\K]\n" + bytes;
        }
        dir.Write("registry.ini", bytes);
        SRegistry::ReadString(HKEY_CURRENT_USER, "Software\\K", "Folder");
        SRegistry::ReadInt(HKEY_CURRENT_USER, "Software\\K", "Volume");
        ASSERT_TRUE(
            SRegistry::WriteInt(HKEY_CURRENT_USER, "Software\\K", "Volume", uint32_t(round)));
        EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, "Software\\K", "Volume"), uint32_t(round));
    }
}

TEST_F(Registry, StoreThatIsAFolderReadsEmptyAndRefusesWrites) {
    std::filesystem::create_directories(storePath);
    EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, "Volume"), 0u);
    EXPECT_FALSE(SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, "Volume", 1));
    EXPECT_TRUE(std::filesystem::is_directory(storePath));
}

TEST_F(Registry, WritersInTwoProcessesLoseNoValue) {
    const int perWriter = 40;
    pid_t children[2];
    for (int writer = 0; writer < 2; ++writer) {
        children[writer] = fork();
        ASSERT_GE(children[writer], 0);
        if (children[writer] == 0) {
            for (int i = 0; i < perWriter; ++i) {
                std::string name = "w" + std::to_string(writer) + "-" + std::to_string(i);
                SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, name.c_str(), uint32_t(i + 1));
            }
            _exit(0);
        }
    }
    for (pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status));
    }
    for (int writer = 0; writer < 2; ++writer) {
        for (int i = 0; i < perWriter; ++i) {
            std::string name = "w" + std::to_string(writer) + "-" + std::to_string(i);
            EXPECT_EQ(SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, name.c_str()), uint32_t(i + 1))
                << name;
        }
    }
}

// The child writes keys 0..keys-1 in turn, each round with the next
// generation: text "<g>/<g>/<g>" and the number g. Every read after a kill
// must find, for each key, a whole value of one generation.
TEST(RegistryCrash, KilledWriterLeavesEveryValueWhole) {
    MemoryTempDir dir;
    ASSERT_FALSE(dir.Path().empty());
    ScopedEnv config("MELKORA_CONFIG_HOME", dir.Path().c_str());
    std::string storePath = dir / "registry.ini";
    constexpr int keys = 6;
    for (int k = 0; k < keys; ++k) {
        std::string name = "Text" + std::to_string(k);
        ASSERT_TRUE(SRegistry::WriteString(HKEY_CURRENT_USER, KEY, name.c_str(), "0/0/0"));
        ASSERT_TRUE(
            SRegistry::WriteInt(HKEY_CURRENT_USER, KEY, ("Number" + std::to_string(k)).c_str(), 0));
    }
    std::mt19937 random(4321);
    std::uniform_int_distribution<int> delay(200, 4000);
    uint32_t lastSeen[keys] = {};
    int changes = 0;
    for (int round = 1; round <= 210; ++round) {
        auto writer = [round](const std::function<void()>& ready) {
            for (uint32_t generation = uint32_t(round) * 100000;; ++generation) {
                std::string value = Generation(generation);
                for (int k = 0; k < keys; ++k) {
                    SRegistry::WriteString(HKEY_CURRENT_USER, KEY,
                                           ("Text" + std::to_string(k)).c_str(), value.c_str());
                    SRegistry::WriteInt(HKEY_CURRENT_USER, KEY,
                                        ("Number" + std::to_string(k)).c_str(), generation);
                    ready(); // one value is in: the clock starts now
                }
            }
        };
        ASSERT_TRUE(RunAndKill(writer, delay(random)));
        std::string text = TempDir::Read(storePath);
        ASSERT_EQ(text.rfind("MELKORA REGISTRY 1\n", 0), 0u) << "round " << round;
        ASSERT_EQ(text.back(), '\n') << "round " << round;
        for (int k = 0; k < keys; ++k) {
            std::string name = "Text" + std::to_string(k);
            std::string value = SRegistry::ReadString(HKEY_CURRENT_USER, KEY, name.c_str()).c_str();
            ASSERT_TRUE(IsWholeValue(value)) << "round " << round << ": " << value;
            uint32_t number =
                SRegistry::ReadInt(HKEY_CURRENT_USER, KEY, ("Number" + std::to_string(k)).c_str());
            // Values only move forward. The number is written just after
            // the text, so it is the text's generation, the one before, or
            // (early in a round) the last one the previous writer left.
            ASSERT_GE(number, lastSeen[k]) << "round " << round;
            uint32_t textGeneration = uint32_t(std::stoul(value));
            ASSERT_TRUE(number == textGeneration || number + 1 == textGeneration ||
                        number == lastSeen[k])
                << "round " << round << " text " << textGeneration << " number " << number;
            changes += number != lastSeen[k] ? 1 : 0;
            lastSeen[k] = number;
        }
    }
    EXPECT_GE(changes, 210) << "each round's writer got at least one value in";
}

} // namespace
