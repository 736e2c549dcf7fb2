// The message numbers: all in foundation/message_numbers.h, read here from
// its text so that a new one is checked without being listed in the test.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "foundation/message_numbers.h"

namespace {

const char* const kLayers[] = {"foundation", "toolkit", "dialogs", "controls", "editors",
                               "library",    "pages",   "panels",  "app"};

std::filesystem::path Source(const std::string& relative) {
    return std::filesystem::path(MELKORA_SOURCE_DIR) / relative;
}

// name to value of every constant of the header; lines that start with
// "constexpr" but do not parse are returned in bad.
std::map<std::string, unsigned> ReadNumbers(std::vector<std::string>* bad) {
    static const std::regex definition(
        R"(^constexpr unsigned ((WM|SM|SN)_[A-Z0-9_]+) = (0x[0-9A-Fa-f]+|[0-9]+);.*)");
    std::map<std::string, unsigned> numbers;
    std::ifstream in(Source("foundation/message_numbers.h"));
    for (std::string line; std::getline(in, line);) {
        std::smatch match;
        if (std::regex_match(line, match, definition)) {
            numbers[match[1]] = static_cast<unsigned>(std::stoul(match[3], nullptr, 0));
        } else if (line.rfind("constexpr", 0) == 0) {
            bad->push_back(line);
        }
    }
    return numbers;
}

TEST(MessageNumbers, NoTwoNamesShareANumber) {
    std::vector<std::string> bad;
    std::map<std::string, unsigned> numbers = ReadNumbers(&bad);
    EXPECT_TRUE(bad.empty()) << bad.front();
    ASSERT_GT(numbers.size(), 120u);
    // The bounds of a range are the first and the last message in it.
    const std::set<std::pair<std::string, std::string>> ranges = {
        {"WM_KEYDOWN", "WM_KEYFIRST"},
        {"WM_MOUSEFIRST", "WM_MOUSEMOVE"},
        {"WM_MOUSEHWHEEL", "WM_MOUSELAST"},
    };
    std::map<unsigned, std::string> byNumber;
    for (const auto& [name, value] : numbers) {
        auto [it, added] = byNumber.emplace(value, name);
        if (!added) {
            EXPECT_TRUE(ranges.count({it->second, name}) > 0)
                << it->second << " and " << name << " are both " << value;
        }
        if (name.rfind("WM_", 0) != 0) {
            EXPECT_GT(value, WM_APP) << name << ": the toolkit's messages lie above WM_APP";
        }
    }
}

TEST(MessageNumbers, TheTextReadsAsTheCompilerDoes) {
    std::vector<std::string> bad;
    std::map<std::string, unsigned> numbers = ReadNumbers(&bad);
    const std::pair<const char*, unsigned> samples[] = {
        {"WM_MOUSEHWHEEL", WM_MOUSEHWHEEL},
        {"SM_CREATE", SM_CREATE},
        {"SM_READY", SM_READY},
        {"SM_THREAD_POST", SM_THREAD_POST},
        {"SN_LIST_KEY", SN_LIST_KEY},
        {"SN_MENU_COMMAND", SN_MENU_COMMAND},
        {"SN_TREE_CHECK", SN_TREE_CHECK},
        {"SM_REMOTE_COMMAND", SM_REMOTE_COMMAND},
    };
    for (const auto& [name, value] : samples) {
        EXPECT_EQ(numbers[name], value) << name;
    }
    // Numbers other tables give in the other base.
    EXPECT_EQ(SM_CREATE, 0x83E9u);
    EXPECT_EQ(SM_PARENT_SIZE, 0x83EBu);
    EXPECT_EQ(SM_MOUSE_LEAVE, 0x83FBu);
    EXPECT_EQ(SM_KEY, 0x85DEu);
    EXPECT_EQ(SM_CHILD_ANCHORED, 0x85DFu);
    EXPECT_EQ(SN_MENU_COMMAND, 0x8C62u);
    EXPECT_EQ(SN_SCROLL_FORWARD, 0x8CA9u);
    EXPECT_EQ(SN_WEB_BEFORE_NAVIGATE, 35768u);
    EXPECT_EQ(SN_WEB_QUIT, 35774u);
}

TEST(MessageNumbers, NoOtherFileDefinesOne) {
    static const std::regex definition(
        R"((constexpr\s+(unsigned|int|UINT|uint32_t)|#define)\s+(WM|SM|SN)_[A-Z0-9_]+\b)");
    std::string found;
    int filesRead = 0;
    for (const char* layer : kLayers) {
        if (!std::filesystem::is_directory(Source(layer))) {
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Source(layer))) {
            std::string extension = entry.path().extension().string();
            if ((extension != ".h" && extension != ".cpp") ||
                entry.path().filename() == "message_numbers.h") {
                continue;
            }
            ++filesRead;
            std::ifstream in(entry.path());
            for (std::string line; std::getline(in, line);) {
                if (std::regex_search(line, definition)) {
                    found += entry.path().string() + ": " + line + "\n";
                }
            }
        }
    }
    EXPECT_GT(filesRead, 0);
    EXPECT_TRUE(found.empty()) << found;
}

} // namespace
