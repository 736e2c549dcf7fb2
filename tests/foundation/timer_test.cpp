#include "foundation/timer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <climits>
#include <cstring>
#include <ctime>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

STimer MakeDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
                int millisecond = 0) {
    STimer timer;
    EXPECT_TRUE(timer.SetDateTime(year, month, day, hour, minute, second, millisecond));
    return timer;
}

std::string Stamp(const STimer& timer) {
    return timer.Format("#Y-#+M-#+D #+h:#+m:#+s.#+z").c_str();
}

} // namespace

TEST(TimerCalendar, LeapYearsFollowTheGregorianRuleAndMonthLengthsRejectBadMonths) {
    for (auto [year, leap] : {std::pair{1900, false},
                              {2000, true},
                              {2004, true},
                              {2009, false},
                              {2100, false},
                              {2400, true},
                              {0, true},
                              {1, false}}) {
        EXPECT_EQ(STimer::IsLeapYear(year), leap) << year;
        EXPECT_EQ(STimer::GetDaysInMonth(year, 2), leap ? 29 : 28) << year;
    }
    for (auto [month, days] : {std::pair{1, 31}, {4, 30}, {12, 31}, {0, 0}, {13, 0}, {-1, 0}}) {
        EXPECT_EQ(STimer::GetDaysInMonth(2009, month), days) << month;
    }
}

TEST(TimerCalendar, ValidDatesStopAtTheMonthEndAndWeekdaysCountFromSunday) {
    // clang-format off
    const std::tuple<int, int, int, int> cases[] = { // -1: not a valid date
        {2009, 3, 5, 4}, {2000, 1, 1, 6}, {2000, 2, 29, 2}, {1970, 1, 1, 4}, {1900, 1, 1, 1},
        {2009, 3, 1, 0}, {0, 1, 1, 6}, {2009, 2, 29, -1}, {2009, 13, 1, -1}, {2008, 2, 29, 5},
        {2009, 4, 30, 4}, {2009, 4, 31, -1}, {2009, 1, 0, -1}, {2009, 0, 1, -1}};
    // clang-format on
    for (auto [year, month, day, weekday] : cases) {
        EXPECT_EQ(STimer::GetDayOfWeek(year, month, day), weekday)
            << year << "-" << month << "-" << day;
        EXPECT_EQ(STimer::IsValidDate(year, month, day), weekday >= 0);
    }
}

TEST(TimerCalendar, NamesComeFromTheLocaleAndAreEmptyWhenInvalid) {
    EXPECT_STREQ(STimer::GetDayName(2009, 3, 5).c_str(), "Thursday");
    EXPECT_STREQ(STimer::GetDayName(2009, 2, 29).c_str(), "");
    EXPECT_STREQ(STimer::GetMonthName(12).c_str(), "December");
    EXPECT_STREQ(STimer::GetMonthName(0).c_str(), "");
    EXPECT_STREQ(STimer::GetMonthName(13).c_str(), "");
    STimer timer = MakeDate(2009, 3, 1);
    EXPECT_STREQ(timer.GetDayName().c_str(), "Sunday");
    EXPECT_STREQ(timer.GetMonthName().c_str(), "March");
}

TEST(TimerSetting, NewTimerHoldsYearZeroAndOutOfRangeValuesLeaveEveryFieldAlone) {
    STimer fresh;
    EXPECT_STREQ(fresh.Format("#Y-#M-#D #h:#m:#s #z").c_str(), "0-1-1 0:0:0 0");
    EXPECT_STREQ(fresh.FormatSpan("#D #h #m #s #z").c_str(), "0 0 0 0 0");
    EXPECT_STREQ(fresh.Format(nullptr).c_str(), "");
    EXPECT_STREQ(fresh.FormatSpan(nullptr).c_str(), "");
    // clang-format off
    const std::tuple<int, int, int, int, int, int, int> cases[] = {
        {2009, 13, 1, 0, 0, 0, 0}, {2009, 0, 1, 0, 0, 0, 0}, {2009, 2, 29, 0, 0, 0, 0},
        {2009, 1, 1, 24, 0, 0, 0}, {2009, 1, 1, -1, 0, 0, 0}, {2009, 1, 1, 0, 60, 0, 0},
        {2009, 1, 1, 0, 0, 60, 0}, {2009, 1, 1, 0, 0, 0, 1000}, {2009, 1, 1, 0, 0, 0, -1},
        {-1, 1, 1, 0, 0, 0, 0}};
    // clang-format on
    for (auto [year, month, day, hour, minute, second, millisecond] : cases) {
        STimer timer = MakeDate(2010, 6, 7, 8, 9, 10, 11);
        EXPECT_FALSE(timer.SetDateTime(year, month, day, hour, minute, second, millisecond));
        EXPECT_EQ(Stamp(timer), "2010-06-07 08:09:10.011");
    }
}

TEST(TimerSetting, HourOnTheTwelveHourClock) {
    const int expected[24] = {12, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11,
                              12, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    for (int hour = 0; hour < 24; ++hour) {
        EXPECT_EQ(MakeDate(2009, 1, 1, hour).GetHour12(), expected[hour]) << hour;
    }
}

TEST(TimerSetting, NowMatchesTheSystemClock) {
    // Two tries in case the minute turns between the two readings.
    std::string got, expected;
    for (int attempt = 0; attempt < 2 && (attempt == 0 || got != expected); ++attempt) {
        STimer timer;
        timer.SetNow(false);
        time_t now = time(nullptr);
        struct tm parts;
        char text[32];
        strftime(text, sizeof(text), "%Y-%m-%d %H:%M", gmtime_r(&now, &parts));
        got = timer.Format("#Y-#+M-#+D #+h:#+m").c_str();
        expected = text;
    }
    EXPECT_EQ(got, expected);
    STimer local;
    local.SetNow(true);
    EXPECT_TRUE(STimer::IsValidDate(local.year, local.month, local.day));
    EXPECT_GE(local.year, 2020);
}

TEST(TimerSpan, CarriesUpwardAndClearsNegativeFields) {
    // clang-format off
    const std::tuple<int, int, int, int, int, const char*> cases[] = {
        {0, 3725, 0, 0, 0, "0 1 2 5 0"}, {1500, 59, 59, 23, 2, "3 0 0 0 500"},
        {0, 0, 0, 49, 0, "2 1 0 0 0"}, {999, 59, 59, 23, 0, "0 23 59 59 999"},
        {-5, -1, -1, -1, -2, "-2 0 0 0 0"}, {0, 0, 0, 0, -3, "-3 0 0 0 0"},
        {INT_MAX, 0, 0, 0, 0, "24 20 31 23 647"}};
    // clang-format on
    for (auto [milliseconds, seconds, minutes, hours, days, expected] : cases) {
        STimer timer;
        timer.SetSpan(milliseconds, seconds, minutes, hours, days);
        EXPECT_STREQ(timer.FormatSpan("#D #h #m #s #z").c_str(), expected) << expected;
    }
}

TEST(TimerSpan, FormatsTrackLengths) {
    STimer timer;
    timer.SetSpan(0, 3725, 0, 0, 0);
    EXPECT_STREQ(timer.FormatSpan("#h:#+m:#+s").c_str(), "1:02:05");
    timer.SetSpan(45, 7, 0, 0, 0);
    EXPECT_STREQ(timer.FormatSpan("#+h:#+m:#+s.#x|#+y|#y|#+z|#z").c_str(),
                 "00:00:07.0|04|4|045|45");
    // Date markers are not span markers.
    EXPECT_STREQ(timer.FormatSpan("#Y #M #$W").c_str(), "#Y #M #$W");
    // Padded values keep their last digits.
    timer.SetSpan(0, 0, 0, 0, 0);
    timer.spanHours = 123;       // a value set directly, past the carry
    timer.spanMilliseconds = -4; // below 0 pads to zeros
    EXPECT_STREQ(timer.FormatSpan("#+h #+z #+y").c_str(), "23 000 00");
    timer.spanMilliseconds = 12345;
    EXPECT_STREQ(timer.FormatSpan("#+z").c_str(), "345");
}

TEST(TimerFormat, EachMarkerInItsOrder) {
    const STimer afternoon = MakeDate(2009, 3, 5, 13, 7, 9, 45);
    const STimer midnight = MakeDate(2100, 11, 28, 0, 0, 0, 987);
    // clang-format off
    const std::tuple<const STimer*, const char*, const char*> cases[] = {
        {&afternoon, "#+Y", "09"}, {&afternoon, "#Y", "2009"}, {&afternoon, "#$M", "March"},
        {&afternoon, "#+M", "03"}, {&afternoon, "#M", "3"}, {&afternoon, "#$W", "Thursday"},
        {&afternoon, "#W", "4"}, {&afternoon, "#+D", "05"}, {&afternoon, "#D", "5"},
        {&afternoon, "#+H", "01"}, {&afternoon, "#H", "1"}, {&afternoon, "#+h", "13"},
        {&afternoon, "#h", "13"}, {&afternoon, "#+m", "07"}, {&afternoon, "#m", "7"},
        {&afternoon, "#+s", "09"}, {&afternoon, "#s", "9"}, {&afternoon, "#x", "0"},
        {&afternoon, "#+y", "04"}, {&afternoon, "#y", "4"}, {&afternoon, "#+z", "045"},
        {&afternoon, "#z", "45"}, {&afternoon, "#a #A", "pm PM"}, {&midnight, "#+Y", "00"},
        {&midnight, "#+M #M", "11 11"}, {&midnight, "#+H #H #+h #h", "12 12 00 0"},
        {&midnight, "#x #+y #y #+z #z", "9 98 98 987 987"}, {&midnight, "#a #A", "am AM"},
        {&midnight, "#$W", "Sunday"},
        // Longer markers go first, and names are not scanned again.
        {&afternoon, "#+Y#Y", "092009"}, {&afternoon, "#$M#M", "March3"},
        {&afternoon, "#$M, #Y", "March, 2009"}, {&afternoon, "book #M-#D-#Y", "book 3-5-2009"},
        {&afternoon, "#h:#+m:#+s", "13:07:09"},
        // Markers are case-sensitive and unknown ones stay.
        {&afternoon, "#Q ## # #$m #m", "#Q ## # #$m 7"}, {&afternoon, "", ""}};
    // clang-format on
    for (auto [timer, pattern, expected] : cases) {
        EXPECT_STREQ(timer->Format(pattern).c_str(), expected) << pattern;
    }
}

TEST(TimerFormat, PaddedYearsKeepTheirLastDigits) {
    for (auto [year, expected] : {std::pair{5, "05 5"}, {0, "00 0"}, {1999, "99 1999"}}) {
        EXPECT_STREQ(MakeDate(year, 1, 1).Format("#+Y #Y").c_str(), expected);
    }
}

TEST(TimerAdd, CarriesThroughEveryUnitAndTheYearEndAndRefusesNegatives) {
    STimer timer = MakeDate(2009, 12, 31, 23, 59, 59, 999);
    EXPECT_FALSE(timer.Add(0, 0, -1, 0, 0, 0, 0));
    EXPECT_FALSE(timer.Add(-1, 0, 0, 0, 0, 0, 0));
    EXPECT_FALSE(timer.Add(0, 0, 0, 0, 0, 0, -1));
    EXPECT_EQ(Stamp(timer), "2009-12-31 23:59:59.999");
    EXPECT_TRUE(timer.Add(0, 0, 0, 0, 0, 0, 1));
    EXPECT_EQ(Stamp(timer), "2010-01-01 00:00:00.000");
}

TEST(TimerAdd, DaysWalkThroughTheRealMonths) {
    // clang-format off
    const std::tuple<int, int, int, int, int, const char*> cases[] = {
        {2009, 1, 31, 0, 1, "2009-02-01"}, {2009, 2, 28, 0, 1, "2009-03-01"},
        {2008, 2, 28, 0, 1, "2008-02-29"}, {2008, 2, 29, 0, 1, "2008-03-01"},
        {2009, 12, 31, 0, 1, "2010-01-01"}, {2009, 1, 1, 0, 365, "2010-01-01"},
        {2008, 1, 1, 0, 366, "2009-01-01"}, {2009, 2, 28, 1, 0, "2009-02-28"},
        {2009, 2, 28, 24, 0, "2009-03-01"}, {2000, 1, 1, 0, 146097, "2400-01-01"},
        {2000, 1, 1, 0, 1000000, "4737-11-28"}};
    // clang-format on
    for (auto [year, month, day, hours, days, expected] : cases) {
        STimer timer = MakeDate(year, month, day);
        EXPECT_TRUE(timer.Add(0, 0, days, hours, 0, 0, 0));
        EXPECT_STREQ(timer.Format("#Y-#+M-#+D").c_str(), expected) << expected;
    }
    STimer huge = MakeDate(2000, 1, 1); // finishes quickly
    EXPECT_TRUE(huge.Add(0, 0, INT_MAX, 23, 59, 59, 999));
    EXPECT_GT(huge.year, 5000000);
    EXPECT_TRUE(STimer::IsValidDate(huge.year, huge.month, huge.day));
}

TEST(TimerAdd, MonthsCutTheDayToTheMonthLength) {
    // clang-format off
    const std::tuple<int, int, int, int, int, const char*> cases[] = {
        {2009, 1, 31, 0, 1, "2009-02-28"}, {2008, 1, 31, 0, 1, "2008-02-29"},
        {2009, 5, 15, 0, 7, "2009-12-15"}, {2009, 6, 15, 0, 7, "2010-01-15"},
        {2009, 1, 15, 0, 24, "2011-01-15"}, {2009, 3, 31, 0, 1, "2009-04-30"},
        {2008, 2, 29, 1, 0, "2009-02-28"}, {2008, 2, 29, 4, 0, "2012-02-29"}};
    // clang-format on
    for (auto [year, month, day, years, months, expected] : cases) {
        STimer timer = MakeDate(year, month, day);
        EXPECT_TRUE(timer.Add(years, months, 0, 0, 0, 0, 0)) << expected;
        EXPECT_STREQ(timer.Format("#Y-#+M-#+D").c_str(), expected) << expected;
    }
}

TEST(TimerAdd, MonthSumOnAMultipleOfTwelveAboveTwelveFails) {
    // Month plus months of 24 or 36 leaves month 0: the old rule is kept.
    // clang-format off
    const struct { int month, months; } cases[] = {
        {12, 12}, {6, 18}, {1, 23}, {1, 35}};
    // clang-format on
    for (const auto& c : cases) {
        STimer timer = MakeDate(2009, c.month, 15, 10, 20, 30, 400);
        EXPECT_FALSE(timer.Add(0, c.months, 0, 0, 0, 0, 0)) << c.month << "+" << c.months;
        EXPECT_EQ(Stamp(timer), Stamp(MakeDate(2009, c.month, 15, 10, 20, 30, 400)));
    }
    STimer exactlyTwelve = MakeDate(2009, 1, 15);
    EXPECT_TRUE(exactlyTwelve.Add(0, 11, 0, 0, 0, 0, 0));
    EXPECT_STREQ(exactlyTwelve.Format("#Y-#+M-#+D").c_str(), "2009-12-15");
}

TEST(TimerSubtract, BorrowsThroughEveryUnitAndFailsOnAFullUnitOrBeforeYearZero) {
    STimer timer = MakeDate(2009, 1, 1);
    EXPECT_TRUE(timer.Subtract(0, 0, 0, 0, 0, 0, 1));
    EXPECT_EQ(Stamp(timer), "2008-12-31 23:59:59.999");
    timer = MakeDate(2009, 3, 5, 10, 0, 30);
    EXPECT_TRUE(timer.Subtract(0, 0, 0, 0, 0, 45, 0));
    EXPECT_EQ(Stamp(timer), "2009-03-05 09:59:45.000");
    // An exact multiple borrows into 1,000 ms or 60 s, which no time holds.
    timer = MakeDate(2009, 3, 5, 10, 0, 0, 0);
    EXPECT_FALSE(timer.Subtract(0, 0, 0, 0, 0, 0, 1000));
    EXPECT_FALSE(timer.Subtract(0, 0, 0, 0, 0, 60, 0));
    EXPECT_FALSE(timer.Subtract(0, 0, 0, 0, 60, 0, 0));
    EXPECT_EQ(Stamp(timer), "2009-03-05 10:00:00.000");
    timer = MakeDate(0, 1, 1);
    EXPECT_FALSE(timer.Subtract(0, 0, 1, 0, 0, 0, 0));
    EXPECT_FALSE(timer.Subtract(1, 0, 0, 0, 0, 0, 0));
    EXPECT_FALSE(timer.Subtract(0, 0, 0, 0, 0, 0, -1));
    EXPECT_EQ(Stamp(timer), "0-01-01 00:00:00.000");
    timer = MakeDate(1, 6, 1);
    EXPECT_TRUE(timer.Subtract(1, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(timer.year, 0);
}

TEST(TimerSubtract, DaysWalkBackThroughTheRealMonths) {
    // clang-format off
    const std::tuple<int, int, int, int, const char*> cases[] = {
        {2009, 3, 1, 1, "2009-02-28"}, {2008, 3, 1, 1, "2008-02-29"}, {2009, 1, 1, 1, "2008-12-31"},
        {2009, 3, 31, 31, "2009-02-28"}, {2010, 1, 1, 365, "2009-01-01"},
        {2400, 1, 1, 146097, "2000-01-01"}, {2009, 3, 5, 0, "2009-03-05"}};
    // clang-format on
    for (auto [year, month, day, days, expected] : cases) {
        STimer timer = MakeDate(year, month, day);
        EXPECT_TRUE(timer.Subtract(0, 0, days, 0, 0, 0, 0));
        EXPECT_STREQ(timer.Format("#Y-#+M-#+D").c_str(), expected) << expected;
    }
}

TEST(TimerSubtract, MonthsBorrowYearsAndCutTheDay) {
    // clang-format off
    const std::tuple<int, int, int, int, int, const char*> cases[] = {
        {2009, 3, 31, 0, 1, "2009-02-28"}, {2009, 1, 15, 0, 1, "2008-12-15"},
        {2009, 1, 15, 0, 13, "2007-12-15"}, {2009, 3, 15, 0, 2, "2009-01-15"},
        {2008, 2, 29, 1, 0, "2007-02-28"},
        // A result in January borrows one year more: the old rule is kept.
        {2009, 1, 15, 0, 12, "2007-01-15"}, {2009, 3, 15, 0, 14, "2007-01-15"}};
    // clang-format on
    for (auto [year, month, day, years, months, expected] : cases) {
        STimer timer = MakeDate(year, month, day);
        EXPECT_TRUE(timer.Subtract(years, months, 0, 0, 0, 0, 0)) << expected;
        EXPECT_STREQ(timer.Format("#Y-#+M-#+D").c_str(), expected) << expected;
    }
}

TEST(TimerAddSubtract, RoundTripsAcrossMonthEnds) {
    STimer timer = MakeDate(2008, 2, 29, 23, 59, 58, 500);
    ASSERT_TRUE(timer.Add(0, 0, 400, 5, 7, 9, 700));
    ASSERT_TRUE(timer.Subtract(0, 0, 400, 5, 7, 9, 700));
    EXPECT_EQ(Stamp(timer), "2008-02-29 23:59:58.500");
}

class LocaleTest : public ::testing::Test {
protected:
    void TearDown() override { InitLocale(); }
};

TEST_F(LocaleTest, ProcessLocaleCGivesTheDefaults) {
    InitLocale();
    const SLocale& row = GetLocale();
    EXPECT_EQ(row.id, 0);
    EXPECT_EQ(row.decimal, '.');
    EXPECT_EQ(row.thousand, ',');
    EXPECT_EQ(row.digits, 0);
    EXPECT_STREQ(row.days[0], "Sunday");
    EXPECT_STREQ(row.months[11], "December");
    EXPECT_STREQ(row.seasons[0], "Spring");
}

TEST_F(LocaleTest, NumbersTakeTheFirstCharacterOrTheDefault) {
    // clang-format off
    const std::tuple<const char*, const char*, int, char, char, int> cases[] = {
        {".", ",", 2, '.', ',', 2}, {",", ".", 3, ',', '.', 3}, {"", "", CHAR_MAX, '.', ',', 0},
        {nullptr, nullptr, -1, '.', ',', 0}, {",x", "'y", 10, ',', '\'', 0},
        {",", "\xE2\x80\xAF", 2, ',', ' ', 2}, // narrow no-break space
        {",", "\xC2\xA0", 2, ',', ' ', 2}, // no-break space
        {".", "\xE2\x80\x99", 2, '.', '\'', 2}, // typographic apostrophe
        {"\xD9\xAB", "\xD9\xAC", 2, '.', ',', 2},
        {"\xE2\x82\xAC", "\xE2\x82\xAC", 9, '.', ',', 9}}; // no ASCII likeness
    // clang-format on
    for (auto [decimal, thousand, digits, expectedDecimal, expectedThousand, expectedDigits] :
         cases) {
        SetLocaleNumbers(decimal, thousand, digits);
        EXPECT_EQ(GetLocale().decimal, expectedDecimal);
        EXPECT_EQ(GetLocale().thousand, expectedThousand);
        EXPECT_EQ(GetLocale().digits, expectedDigits);
    }
}

TEST_F(LocaleTest, FixedRowsHoldEnglishAndFrench) {
    const SLocale& english = GetLocaleRow(1);
    const SLocale& french = GetLocaleRow(2);
    EXPECT_EQ((std::vector<int>{english.id, english.weekStart, english.digits, english.decimal,
                                english.thousand}),
              (std::vector<int>{1, 0, 2, '.', ','}));
    EXPECT_EQ((std::vector<int>{french.id, french.weekStart, french.digits, french.decimal,
                                french.thousand}),
              (std::vector<int>{2, 1, 2, ',', ' '}));
    EXPECT_EQ((std::vector<std::string>{english.days[6], english.months[8], english.seasons[3],
                                        french.days[0], french.days[6], french.months[1],
                                        french.months[7], french.months[11], french.seasons[1]}),
              (std::vector<std::string>{"Saturday", "September", "Winter", "Dimanche", "Samedi",
                                        "F\u00E9vrier", "Ao\u00FBt", "D\u00E9cembre", "Et\u00E9"}));
    EXPECT_EQ(&GetLocaleRow(-1), &GetLocaleRow(0));
    EXPECT_EQ(&GetLocaleRow(9), &GetLocaleRow(2));
    EXPECT_EQ(&GetLocale(), &GetLocaleRow(0));
}

namespace {
SString Grouped(int value) {
    SString text;
    text.FormatGrouped(value);
    return text;
}
} // namespace

TEST(FormatGrouped, InsertsTheSeparatorEveryThreeDigits) {
    // clang-format off
    const std::tuple<int, char, const char*> cases[] = {
        {0, ',', "0"}, {999, ',', "999"}, {1000, ',', "1,000"}, {-1234567, ',', "-1,234,567"},
        {-100, ',', "-100"}, {-1000, ',', "-1,000"}, {123456, ',', "123,456"},
        {INT_MAX, ',', "2,147,483,647"}, {INT_MIN, ',', "-2,147,483,648"},
        {1234567, ' ', "1 234 567"}, {1234567, '.', "1.234.567"}, {1234567, 0, "1234567"},
        {-1234, 0, "-1234"}};
    // clang-format on
    SString text("earlier text is replaced");
    for (auto [value, thousand, expected] : cases) {
        text.FormatGrouped(value, thousand);
        EXPECT_STREQ(text.c_str(), expected) << value;
    }
}

TEST_F(LocaleTest, GroupedNumbersUseTheCurrentRowButDateNamesStayEnglish) {
    InitLocale();
    EXPECT_STREQ(Grouped(-1234567).c_str(), "-1,234,567");
    SetLocaleNumbers(",", ".", 2);
    EXPECT_STREQ(Grouped(1234).c_str(), "1.234");
    EXPECT_STREQ(MakeDate(2009, 3, 5).Format("#$W #$M").c_str(), "Thursday March");
}

TEST_F(LocaleTest, FloatsStripZerosAndIgnoreTheLocale) {
    SetLocaleNumbers(",", ".", 2);
    // clang-format off
    const std::tuple<double, bool, const char*> cases[] = {
        {2.5, false, "2.5"}, {2.0, false, "2"}, {2.0, true, "2.0"}, {0.0, false, "0"},
        {0.0, true, "0.0"}, {-1.25, false, "-1.25"}, {-0.5, true, "-0.5"}, {100.0, false, "100"},
        {100.0, true, "100.0"}, {0.1234567, false, "0.123457"}, {1e-7, false, "0"},
        {1234567.5, false, "1234567.5"}, {1e20, false, "100000000000000000000"}};
    // clang-format on
    SString text("earlier text is replaced");
    for (auto [value, keepOneDecimal, expected] : cases) {
        text.FormatFloat(value, keepOneDecimal);
        EXPECT_STREQ(text.c_str(), expected) << expected;
    }
}

TEST(TickSeconds, RunsForwardFromInitClock) {
    InitClock();
    double first = GetTickSeconds();
    EXPECT_GE(first, 0.0);
    EXPECT_LT(first, 1.0);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    double second = GetTickSeconds();
    EXPECT_GE(second - first, 0.015);
}
