// STimer: a date, time and duration value with a small "#" template
// language for text, and the locale table that supplies day and month names
// and number punctuation. Everything that prints a date or a grouped number
// goes through here.
//
// Dates follow the Gregorian calendar throughout (year 0 included). A year
// below 0 is out of range; there is no upper bound.
#pragma once

#include "foundation/string.h"

// One row of the locale table. Names are UTF-8, each at most 15 bytes.
struct SLocale {
    int id = 0;
    int weekStart = 0; // kept as data; nothing reads it
    int digits = 0;    // number of decimals the user asked for
    char decimal = '.';
    char thousand = ',';      // 0 means no grouping
    char days[7][16] = {};    // Sunday first
    char months[12][16] = {}; // January first
    char seasons[4][16] = {}; // spring first
};

// The table has three rows: 0 follows the process locale, 1 is English with
// fixed punctuation, 2 is French. Row 0 is the one in use; no operation
// changes that.
constexpr int LOCALE_ROWS = 3;

// Fills row 0 from the process locale (the numeric and monetary categories
// as setlocale left them). Call once at start-up, before any thread starts;
// until then row 0 holds the defaults "." and "," with 0 digits.
void InitLocale();
// Fills row 0's punctuation from raw locale texts: only the first character
// of each separator counts, an empty or null text gives the default ("." and
// ","), and a separator outside ASCII is read as the nearest ASCII sign (a
// no-break space as a blank, a typographic apostrophe as "'"). A digits value
// outside 0 to 9 gives 0. Same threading rule as InitLocale.
void SetLocaleNumbers(const char* decimal, const char* thousand, int digits);
// The row in use, and any row by index (clamped to the table).
const SLocale& GetLocale();
const SLocale& GetLocaleRow(int row);

// A steady clock in seconds, never going back. InitClock sets its zero;
// before that it counts from an arbitrary start.
void InitClock();
double GetTickSeconds();

class STimer {
public:
    STimer() = default;
    virtual ~STimer() = default;

    // Calendar.
    static bool IsLeapYear(int year);
    // 0 for a month out of 1 to 12.
    static int GetDaysInMonth(int year, int month);
    // Month 1 to 12 and day 1 to the month's length; the year is not checked.
    static bool IsValidDate(int year, int month, int day);
    // 0 is Sunday; -1 for an invalid date.
    static int GetDayOfWeek(int year, int month, int day);

    // Setting. A value out of range gives false and leaves every field alone.
    bool SetDateTime(int year, int month, int day, int hour, int minute, int second,
                     int millisecond);
    // The wall clock, local time when local is true, else UTC.
    void SetNow(bool local);
    // Stores a duration. Negative milliseconds, seconds, minutes or hours
    // become 0; then each unit carries upward (1,000, 60, 60, 24). Days stay
    // as given, plus what the hours carry.
    void SetSpan(int milliseconds, int seconds, int minutes, int hours, int days);

    // Reading the stored date.
    int GetHour12() const; // 12 for hour 0 and for 12
    int GetDayOfWeek() const;
    // Names from the current locale row; empty for an invalid date or month.
    SString GetDayName() const;
    static SString GetDayName(int year, int month, int day);
    SString GetMonthName() const;
    static SString GetMonthName(int month);

    // Date arithmetic; every argument must be 0 or more. Each unit carries
    // or borrows into the next, days walk through the real month lengths,
    // and the day is cut to the length of the final month. A result that is
    // no valid date gives false and leaves the value unchanged. Two old
    // rules are kept: Add turns a month sum above 12 that is a multiple of
    // 12 (24, 36...) into month 0, so it fails; Subtract borrows one unit
    // too many when a field falls below zero by an exact multiple of its
    // unit (the field becomes the full unit, 1,000 ms or 60 s, and fails),
    // and borrows one year too many when the month ends on January.
    bool Add(int years, int months, int days, int hours, int minutes, int seconds,
             int milliseconds);
    bool Subtract(int years, int months, int days, int hours, int minutes, int seconds,
                  int milliseconds);

    // Text. Format replaces, in this order: "#+Y" "#Y" "#$M" "#+M" "#M"
    // "#$W" "#W" "#+D" "#D" "#+H" "#H" "#+h" "#h" "#+m" "#m" "#+s" "#s"
    // "#x" "#+y" "#y" "#+z" "#z" "#a" "#A". Y year, M month, W weekday, D
    // day, H 12-hour clock, h hour, m minute, s second, x tenths, y
    // hundredths, z milliseconds, a/A "am"/"AM" or "pm"/"PM"; "$" a name,
    // "+" zero-padded to two digits (three for z), keeping the last digits
    // of a longer value.
    SString Format(const char* pattern) const;
    // The same for the duration: "#D" days, "#+h" "#h" hours, "#+m" "#m"
    // minutes, "#+s" "#s" seconds, then "#x" "#+y" "#y" "#+z" "#z" on its
    // milliseconds.
    SString FormatSpan(const char* pattern) const;

    // A duration.
    int spanMilliseconds = 0;
    int spanSeconds = 0;
    int spanMinutes = 0;
    int spanHours = 0;
    int spanDays = 0;
    // A date and time.
    int millisecond = 0;
    int second = 0;
    int minute = 0;
    int hour = 0;
    int day = 1;
    int month = 1;
    int year = 0;
};
