#include "app/resources.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/file.h"
#include "foundation/image.h"

namespace {

namespace fs = std::filesystem;

const fs::path SOURCE_DIR = MELKORA_SOURCE_DIR;

// One size a picture is embedded at, and the resource type it is under.
struct PictureSize {
    int width = 0;
    int height = 0;
    std::string type = "BINARY";
};

// One row of the table in docs/resources.md.
struct ResourceRow {
    unsigned number = 0;
    std::string file;                // empty when the resource has no file yet
    std::vector<PictureSize> sizes;  // empty when it is not a picture
};

std::string Trim(const std::string& text) {
    size_t first = text.find_first_not_of(" `");
    size_t last = text.find_last_not_of(" `");
    return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

// "32x32; 24x24 as BINARY24": the first size is under BINARY.
std::vector<PictureSize> ParseSizes(const std::string& cell) {
    std::vector<PictureSize> sizes;
    static const std::regex one(R"((\d+)x(\d+)(?: as (\w+))?)");
    std::stringstream parts(cell);
    std::string part;
    while (std::getline(parts, part, ';')) {
        std::smatch match;
        std::string text = Trim(part);
        if (std::regex_match(text, match, one)) {
            PictureSize size{std::stoi(match[1]), std::stoi(match[2]), "BINARY"};
            if (match[3].matched) {
                size.type = match[3];
            }
            sizes.push_back(size);
        }
    }
    return sizes;
}

std::map<unsigned, ResourceRow> ReadTable() {
    std::map<unsigned, ResourceRow> rows;
    std::ifstream file(SOURCE_DIR / "docs" / "resources.md");
    std::string line;
    static const std::regex row(R"(^\|\s*(\d+)\s*\|([^|]*)\|([^|]*)\|.*)");
    while (std::getline(file, line)) {
        std::smatch match;
        if (!std::regex_match(line, match, row)) {
            continue;
        }
        ResourceRow entry;
        entry.number = static_cast<unsigned>(std::stoul(match[1]));
        entry.file = Trim(match[2]);
        if (entry.file == "-") {
            entry.file.clear();
        }
        entry.sizes = ParseSizes(match[3]);
        EXPECT_EQ(rows.count(entry.number), 0u) << "two rows for " << entry.number;
        rows[entry.number] = entry;
    }
    return rows;
}

std::string ReadText(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// The numbers the program's sources look up: the named resource numbers of
// every layer's header, and literal numbers given to a resource lookup.
std::map<unsigned, std::string> NumbersUsedByCode() {
    static const std::regex patterns[] = {
        std::regex(R"(constexpr unsigned RESOURCE_\w+ = (\d+);)"),
        std::regex(R"re("BINARY\d*",\s*(\d+))re"),
        std::regex(R"(AddResource\((\d+))"),
    };
    std::map<unsigned, std::string> used;
    for (const char* layer : {"foundation", "toolkit", "dialogs", "controls", "editors", "library",
                              "pages", "panels", "app"}) {
        if (!fs::is_directory(SOURCE_DIR / layer)) {
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(SOURCE_DIR / layer)) {
            std::string extension = entry.path().extension().string();
            if (!entry.is_regular_file() || (extension != ".cpp" && extension != ".h")) {
                continue;
            }
            std::string text = ReadText(entry.path());
            for (const std::regex& pattern : patterns) {
                for (std::sregex_iterator it(text.begin(), text.end(), pattern), end; it != end;
                     ++it) {
                    used[static_cast<unsigned>(std::stoul((*it)[1]))] =
                        fs::relative(entry.path(), SOURCE_DIR).string();
                }
            }
        }
    }
    return used;
}

class Resources : public ::testing::Test {
protected:
    static void SetUpTestSuite() { EnsureAppResources(); }
    std::map<unsigned, ResourceRow> table = ReadTable();
};

TEST_F(Resources, TableHoldsEveryPictureOfTheProgram) {
    // A broken table format would make every other test pass vacuously.
    ASSERT_GE(table.size(), 70u);
    size_t pictures = 0;
    for (const auto& [number, row] : table) {
        pictures += row.sizes.empty() ? 0 : 1;
        if (!row.sizes.empty()) {
            EXPECT_FALSE(row.file.empty()) << "picture " << number << " has no file";
        }
    }
    EXPECT_GE(pictures, 65u);
}

TEST_F(Resources, EveryNumberTheCodeUsesIsListedAndEmbedded) {
    std::map<unsigned, std::string> used = NumbersUsedByCode();
    ASSERT_GE(used.size(), 60u);
    for (const auto& [number, where] : used) {
        EXPECT_EQ(table.count(number), 1u) << number << " (used in " << where << ") has no row";
        EXPECT_TRUE(FindResourceData("BINARY", number, nullptr, nullptr))
            << number << " (used in " << where << ") is not embedded";
    }
    for (unsigned number : TOOLBAR_IMAGES) {
        EXPECT_TRUE(FindResourceData(RESOURCE_TYPE_SMALL, number, nullptr, nullptr)) << number;
        EXPECT_TRUE(FindResourceData(RESOURCE_TYPE_MENU, number, nullptr, nullptr)) << number;
    }
}

TEST_F(Resources, EveryPictureIsEmbeddedAtTheSizeOfItsRow) {
    for (const auto& [number, row] : table) {
        for (const PictureSize& size : row.sizes) {
            SImage image;
            ASSERT_TRUE(image.LoadResource(size.type.c_str(), number))
                << number << " as " << size.type << " is not embedded or does not decode";
            EXPECT_EQ(image.GetWidth(), size.width) << number << " as " << size.type;
            EXPECT_EQ(image.GetHeight(), size.height) << number << " as " << size.type;
        }
    }
}

TEST_F(Resources, EveryFileOfTheTableExistsAndEveryNumberedFileHasItsRow) {
    std::set<std::string> listed;
    for (const auto& [number, row] : table) {
        if (row.file.empty()) {
            continue;
        }
        listed.insert(row.file);
        EXPECT_TRUE(fs::is_regular_file(SOURCE_DIR / row.file)) << row.file;
        // A numbered file carries its row's number.
        std::string name = fs::path(row.file).filename().string();
        if (!name.empty() && std::isdigit(static_cast<unsigned char>(name[0]))) {
            EXPECT_EQ(std::stoul(name), number) << row.file;
        }
    }
    for (const char* layer : {"pages", "panels", "app"}) {
        fs::path folder = SOURCE_DIR / layer / "resources";
        if (!fs::is_directory(folder)) {
            continue;
        }
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            std::string name = entry.path().filename().string();
            if (entry.is_regular_file() && std::isdigit(static_cast<unsigned char>(name[0]))) {
                std::string relative = fs::relative(entry.path(), SOURCE_DIR).string();
                EXPECT_EQ(listed.count(relative), 1u) << relative << " has no row";
                // Rendered pictures live in the build tree only.
                EXPECT_NE(entry.path().extension(), ".png") << relative;
            }
        }
    }
}

// The splash is shown as a shaped window: its corners must be clear; the
// default cover stands in for a cover, which is opaque.
TEST_F(Resources, SplashIsTransparentAroundAndTheDefaultCoverOpaque) {
    struct Case {
        unsigned number;
        int x, y;
        bool clear;
    };
    const Case cases[] = {{RESOURCE_SPLASH, 0, 0, true},   {RESOURCE_SPLASH, 479, 271, true},
                          {RESOURCE_SPLASH, 240, 136, false}, {130, 0, 0, false},
                          {130, 149, 149, false},          {130, 75, 75, false}};
    for (const Case& c : cases) {
        SImage image;
        ASSERT_TRUE(image.LoadResource("BINARY", c.number)) << c.number;
        uint32_t alpha = image.GetPixel(c.x, c.y) >> 24;
        if (c.clear) {
            EXPECT_EQ(alpha, 0u) << c.number << " at " << c.x << ", " << c.y;
        } else {
            EXPECT_EQ(alpha, 255u) << c.number << " at " << c.x << ", " << c.y;
        }
    }
}

} // namespace
