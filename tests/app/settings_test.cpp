#include "app/settings.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "support/temp_dir.h"

namespace {

// Each test reads and writes a settings folder of its own.
class Settings : public ::testing::Test {
protected:
    void SetUp() override {
        const char* old = std::getenv("MELKORA_CONFIG_HOME");
        savedConfig = old != nullptr ? old : "";
        setenv("MELKORA_CONFIG_HOME", dir.Path().c_str(), 1);
    }
    void TearDown() override { setenv("MELKORA_CONFIG_HOME", savedConfig.c_str(), 1); }

    TempDir dir;
    std::string savedConfig;
};

TEST_F(Settings, EveryValueDefaultsToZeroOrEmpty) {
    for (const SettingInfo& info : SETTINGS_TABLE) {
        EXPECT_EQ(ReadSettingString(info.name), "") << info.name;
        EXPECT_EQ(ReadSettingInt(info.name), 0u) << info.name;
        EXPECT_FALSE(ReadSettingBool(info.name)) << info.name;
    }
    SWindowPlacement placement;
    EXPECT_FALSE(ReadPlacement(SETTING_WINDOW, {0, 0, 1920, 1080}, &placement));
}

TEST_F(Settings, TableNamesEveryValueOnce) {
    std::set<std::string> names;
    for (const SettingInfo& info : SETTINGS_TABLE) {
        names.insert(info.name);
    }
    EXPECT_EQ(names.size(), size_t(SETTING_COUNT));
    EXPECT_EQ(FindSetting("column2"), &SETTINGS_TABLE[8]);
    EXPECT_EQ(FindSetting("ToolBar")->type, SettingType::BOOL);
    EXPECT_EQ(FindSetting("TaskbarColor")->type, SettingType::NUMBER);
    EXPECT_EQ(FindSetting("WindowHelp")->type, SettingType::TEXT);
    EXPECT_EQ(FindSetting("Width"), nullptr);
    EXPECT_EQ(FindSetting(nullptr), nullptr);
}

TEST_F(Settings, ValuesLiveUnderTheProgramKey) {
    ASSERT_TRUE(WriteSettingString(SETTING_FOLDER, "/music"));
    ASSERT_TRUE(WriteSettingInt(SETTING_VOLUME, 12));
    EXPECT_EQ(SRegistry::ReadString(HKEY_CURRENT_USER,
                                    "Software\\Ilvanne Tavora\\Melkora Browser\\1.0", "Folder"),
              "/music");
    EXPECT_EQ(ReadSettingInt(SETTING_VOLUME), 12u);
    std::string store = TempDir::Read(dir / "registry.ini");
    EXPECT_NE(store.find("\"Volume\"=dword:0000000c"), std::string::npos) << store;
}

TEST_F(Settings, BoolIsWrittenAsOneOrZeroAndAnyNonZeroReadsTrue) {
    ASSERT_TRUE(WriteSettingBool(SETTING_REPEAT, true));
    EXPECT_EQ(ReadSettingInt(SETTING_REPEAT), 1u);
    EXPECT_TRUE(ReadSettingBool(SETTING_REPEAT));
    ASSERT_TRUE(WriteSettingBool(SETTING_REPEAT, false));
    EXPECT_EQ(ReadSettingInt(SETTING_REPEAT), 0u);
    EXPECT_FALSE(ReadSettingBool(SETTING_REPEAT));
    for (uint32_t stored : {2u, 0x80000000u, 0xFFFFFFFFu}) {
        ASSERT_TRUE(WriteSettingInt(SETTING_TASKBAR, stored));
        EXPECT_TRUE(ReadSettingBool(SETTING_TASKBAR)) << stored;
    }
}

TEST_F(Settings, TextLongerThan255BytesReadsEmpty) {
    std::string fits(255, 'a');
    ASSERT_TRUE(WriteSettingString(SETTING_EMAILS, fits.c_str()));
    EXPECT_EQ(ReadSettingString(SETTING_EMAILS), fits.c_str());
    std::string tooLong(256, 'a');
    ASSERT_TRUE(WriteSettingString(SETTING_EMAILS, tooLong.c_str()));
    EXPECT_EQ(ReadSettingString(SETTING_EMAILS), "");
}

TEST(Placement, FormatsTheDocumentedTextAndRoundTrips) {
    SWindowPlacement placement;
    placement.rect = {10, 20, 810, 620};
    placement.isVisible = true;
    EXPECT_EQ(FormatPlacement(placement), "7:10,20,810,620,1,0,0");
    placement.rect = {-1280, -5, -100, 700};
    placement.isVisible = false;
    placement.isMinimized = true;
    placement.isMaximized = true;
    EXPECT_EQ(FormatPlacement(placement), "7:-1280,-5,-100,700,0,1,1");
    // clang-format off
    const SWindowPlacement cases[] = {
        {{10, 20, 810, 620}, true, false, false}, {{-1920, -1080, 0, 0}, false, true, false},
        {{0, 0, 0, 0}, false, false, true},
        {{INT_MIN, INT_MIN, INT_MAX, INT_MAX}, true, true, true}};
    // clang-format on
    for (const SWindowPlacement& original : cases) {
        SString text = FormatPlacement(original);
        SWindowPlacement parsed;
        ASSERT_TRUE(ParsePlacement(text.c_str(), &parsed)) << text.c_str();
        EXPECT_EQ(parsed, original) << text.c_str();
    }
}

TEST(Placement, ParsesOrRefusesTexts) {
    // text, accepted, rectangle, visible, minimised, maximised
    // clang-format off
    const std::tuple<const char*, bool, SRect, bool, bool, bool> cases[] = {
        {"7:10,20,810,620,1,0,0", true, {10, 20, 810, 620}, true, false, false},
        {"8:1,2,3,4,0,1,0", true, {1, 2, 3, 4}, false, true, false},
        {"7:1,2,3,4,0,0,1,99", true, {1, 2, 3, 4}, false, false, true},
        {"7:1,2,3,4,2,0,0", true, {1, 2, 3, 4}, true, false, false},
        {" 7:1,2,3,4,1,0,0", true, {1, 2, 3, 4}, true, false, false},
        {"7:100,200,50,150,1,0,0", true, {100, 200, 100, 200}, true, false, false},
        {"7:-50,-60,-10,-20,1,0,0", true, {-50, -60, -10, -20}, true, false, false},
        {"7:a,b,c,d,e,f,g", true, {0, 0, 0, 0}, false, false, false},
        {"7:99999999999,0,-99999999999,0,1,0,0", true, {INT_MAX, 0, INT_MAX, 0}, true, false,
         false},
        {"7:,,,,,,", true, {0, 0, 0, 0}, false, false, false}, {"", false, {}, false, false, false},
        {"7", false, {}, false, false, false},
        {"10,20,810,620,1,0,0", false, {}, false, false, false},
        {"6:10,20,810,620,1,0,0", false, {}, false, false, false},
        {"-7:10,20,810,620,1,0,0", false, {}, false, false, false},
        {"x:10,20,810,620,1,0,0", false, {}, false, false, false},
        {":10,20,810,620,1,0,0", false, {}, false, false, false},
        {"7:10,20,810,620,1,0", false, {}, false, false, false},
        {"7:", false, {}, false, false, false}};
    // clang-format on
    for (const auto& [text, accepted, rect, visible, minimized, maximized] : cases) {
        SWindowPlacement placement;
        placement.rect = {1, 1, 1, 1};
        ASSERT_EQ(ParsePlacement(text, &placement), accepted) << text;
        SWindowPlacement expected{accepted ? rect : SRect{1, 1, 1, 1}, visible, minimized,
                                  maximized}; // a refused text leaves the placement untouched
        EXPECT_EQ(placement, expected) << text;
    }
    SWindowPlacement placement;
    EXPECT_FALSE(ParsePlacement(nullptr, &placement));
    EXPECT_FALSE(ParsePlacement("7:1,2,3,4,1,0,0", nullptr));
}

TEST(Placement, FitsToTheWorkArea) {
    const SRect screen = {0, 0, 1920, 1040};
    // clang-format off
    const std::tuple<const char*, SRect, SRect, SRect> cases[] = {
        {"inside stays", {100, 100, 900, 700}, screen, {100, 100, 900, 700}},
        {"off the right moves left", {1500, 100, 2300, 700}, screen, {1120, 100, 1920, 700}},
        {"off the left moves right", {-300, 100, 500, 700}, screen, {0, 100, 800, 700}},
        {"off the bottom moves up", {100, 900, 900, 1500}, screen, {100, 440, 900, 1040}},
        {"off the top moves down", {100, -50, 900, 550}, screen, {100, 0, 900, 600}},
        {"wider takes the edges", {-100, 100, 2500, 700}, screen, {0, 100, 1920, 700}},
        {"taller takes the edges", {100, -10, 900, 2000}, screen, {100, 0, 900, 1040}},
        {"larger in both", {-5000, -5000, 5000, 5000}, screen, {0, 0, 1920, 1040}},
        {"far off screen", {10000, 10000, 10800, 10600}, screen, {1120, 440, 1920, 1040}},
        {"exactly the area", screen, screen, screen},
        {"area left of the origin", {0, 0, 800, 600}, {-1920, 0, 0, 1080}, {-800, 0, 0, 600}},
        {"area with a taskbar on top", {0, 0, 800, 600}, {0, 40, 1920, 1080}, {0, 40, 800, 640}},
        {"extreme numbers", {INT_MIN, INT_MIN, INT_MAX, INT_MAX}, screen, screen},
        {"empty window", {3000, 3000, 3000, 3000}, screen, {1920, 1040, 1920, 1040}}};
    // clang-format on
    for (const auto& [name, rect, workArea, expected] : cases) {
        EXPECT_EQ(FitToWorkArea(rect, workArea), expected) << name;
    }
}

TEST_F(Settings, StoredPlacementIsClippedOnReadAndIgnoredWhenMalformed) {
    SWindowPlacement stored;
    stored.rect = {-200, 100, 3000, 900};
    stored.isVisible = true;
    ASSERT_TRUE(WritePlacement(SETTING_WINDOW_BOOK, stored));
    EXPECT_EQ(ReadSettingString(SETTING_WINDOW_BOOK), "7:-200,100,3000,900,1,0,0");
    SWindowPlacement placement;
    ASSERT_TRUE(ReadPlacement(SETTING_WINDOW_BOOK, {0, 0, 1280, 720}, &placement));
    EXPECT_EQ(placement.rect, (SRect{0, 0, 1280, 720}));
    EXPECT_TRUE(placement.isVisible);
    // A malformed one is ignored.
    ASSERT_TRUE(WriteSettingString(SETTING_WINDOW, "6:10,20,810,620,1,0,0"));
    placement.rect = {5, 5, 5, 5};
    EXPECT_FALSE(ReadPlacement(SETTING_WINDOW, {0, 0, 1920, 1080}, &placement));
    EXPECT_EQ(placement.rect, (SRect{5, 5, 5, 5}));
    ASSERT_TRUE(WriteSettingInt(SETTING_WINDOW, 7));
    EXPECT_FALSE(ReadPlacement(SETTING_WINDOW, {0, 0, 1920, 1080}, &placement));
}

TEST(ColumnWidth, AppliesOnlyBetween100AndSplitterWidthLess200AndVolumeIsReversed) {
    EXPECT_EQ((std::vector<int>{ColumnWidthFromSetting(0, 1000, DEFAULT_FOLDER_COLUMN),
                                ColumnWidthFromSetting(100, 1000, DEFAULT_FOLDER_COLUMN),
                                ColumnWidthFromSetting(101, 1000, DEFAULT_FOLDER_COLUMN),
                                ColumnWidthFromSetting(799, 1000, DEFAULT_TRACK_COLUMN),
                                ColumnWidthFromSetting(800, 1000, DEFAULT_TRACK_COLUMN),
                                ColumnWidthFromSetting(0xFFFFFFFFu, 1000, DEFAULT_TRACK_COLUMN),
                                ColumnWidthFromSetting(150, 250, DEFAULT_TRACK_COLUMN)}),
              (std::vector<int>{220, 220, 101, 799, 200, 200, 200}));
    // Slider position 0 is the loudest.
    EXPECT_EQ((std::vector<int>{VolumeFromSlider(0), VolumeFromSlider(1), VolumeFromSlider(25),
                                VolumeFromSlider(49), VolumeFromSlider(50), VolumeFromSlider(-3),
                                VolumeFromSlider(900)}),
              (std::vector<int>{100, 98, 50, 2, 0, 100, 0}));
}

} // namespace
