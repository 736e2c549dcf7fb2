// STimer, the locale table and the locale-dependent number texts.
#include "foundation/timer.h"

#include <atomic>
#include <charconv>
#include <chrono>
#include <climits>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <langinfo.h>

namespace {

const char* const ENGLISH_DAYS = "Sunday,Monday,Tuesday,Wednesday,Thursday,Friday,Saturday";
const char* const ENGLISH_MONTHS =
    "January,February,March,April,May,June,July,August,September,October,November,December";
const char* const ENGLISH_SEASONS = "Spring,Summer,Autumn,Winter";
const char* const FRENCH_DAYS = "Dimanche,Lundi,Mardi,Mercredi,Jeudi,Vendredi,Samedi";
const char* const FRENCH_MONTHS = "Janvier,F\xC3\xA9vrier,Mars,Avril,Mai,Juin,Juillet,"
                                  "Ao\xC3\xBBt,Septembre,Octobre,Novembre,D\xC3\xA9"
                                  "cembre";
const char* const FRENCH_SEASONS = "Printemps,Et\xC3\xA9,Automne,Hiver";

constexpr char DEFAULT_DECIMAL = '.';
constexpr char DEFAULT_THOUSAND = ',';

// Days in 400 Gregorian years: the calendar repeats after that many.
constexpr int64_t DAYS_PER_400_YEARS = 146097;

// Cuts a comma list into fixed slots of 16 bytes, each zero-terminated.
template <int COUNT> void FillNames(char (&slots)[COUNT][16], const char* list) {
    const char* start = list;
    for (int i = 0; i < COUNT; ++i) {
        const char* end = strchr(start, ',');
        size_t length = end != nullptr ? static_cast<size_t>(end - start) : strlen(start);
        if (length > 15) {
            length = 15;
        }
        memcpy(slots[i], start, length);
        slots[i][length] = 0;
        if (end == nullptr) {
            break;
        }
        start = end + 1;
    }
}

struct LocaleTable {
    SLocale rows[LOCALE_ROWS];

    LocaleTable() {
        for (int i = 0; i < 2; ++i) {
            rows[i].id = i;
            rows[i].digits = i == 0 ? 0 : 2;
            FillNames(rows[i].days, ENGLISH_DAYS);
            FillNames(rows[i].months, ENGLISH_MONTHS);
            FillNames(rows[i].seasons, ENGLISH_SEASONS);
        }
        SLocale& french = rows[2];
        french.id = 2;
        french.weekStart = 1;
        french.digits = 2;
        french.decimal = ',';
        french.thousand = ' ';
        FillNames(french.days, FRENCH_DAYS);
        FillNames(french.months, FRENCH_MONTHS);
        FillNames(french.seasons, FRENCH_SEASONS);
    }
};

LocaleTable& Table() {
    static LocaleTable table;
    return table;
}

// The first character of a locale separator as one ASCII sign, or
// fallback. Locales in UTF-8 write some separators outside ASCII.
char SeparatorChar(const char* text, char fallback) {
    if (text == nullptr || text[0] == 0) {
        return fallback;
    }
    unsigned char first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) {
        return text[0];
    }
    static const struct {
        const char* utf8;
        char ascii;
    } NEAREST[] = {
        {"\xC2\xA0", ' '},      // no-break space
        {"\xE2\x80\xAF", ' '},  // narrow no-break space
        {"\xE2\x80\x89", ' '},  // thin space
        {"\xE2\x80\x87", ' '},  // figure space
        {"\xE2\x80\x99", '\''}, // right single quotation mark
        {"\xCA\xBC", '\''},     // modifier letter apostrophe
        {"\xD9\xAB", '.'},      // Arabic decimal separator
        {"\xD9\xAC", ','},      // Arabic thousands separator
    };
    for (const auto& sign : NEAREST) {
        if (strncmp(text, sign.utf8, strlen(sign.utf8)) == 0) {
            return sign.ascii;
        }
    }
    return fallback;
}

// A value on a fixed number of digits: below 0 all zeros, longer values keep
// their last digits.
SString Padded(int value, int width) {
    if (value < 0) {
        value = 0;
    }
    int modulus = width == 3 ? 1000 : 100;
    SString text;
    text.Format("%0*d", width, value % modulus);
    return text;
}

// Day number of a Gregorian date, 0 on 1 March of year 0 (valid input only).
int64_t DayNumber(int64_t year, int64_t month, int64_t day) {
    year -= month <= 2 ? 1 : 0;
    int64_t era = (year >= 0 ? year : year - 399) / 400;
    int64_t yearOfEra = year - era * 400;
    int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * DAYS_PER_400_YEARS + dayOfEra;
}

int64_t DaysIn(int64_t year, int64_t month) {
    if (year < INT_MIN || year > INT_MAX) {
        return 0;
    }
    return STimer::GetDaysInMonth(static_cast<int>(year), static_cast<int>(month));
}

// Carries a field over its unit into the next: value stays in 0..unit-1.
void Carry(int64_t& value, int64_t& next, int64_t unit) {
    next += value / unit;
    value %= unit;
}

// The borrow of Subtract: a field below zero takes one more unit than its
// overflow holds, and becomes the unit minus the rest.
void Borrow(int64_t& value, int64_t& nextToSubtract, int64_t unit) {
    if (value >= 0) {
        return;
    }
    int64_t overflow = -value;
    nextToSubtract += 1 + overflow / unit;
    value = unit - overflow % unit;
}

std::atomic<int64_t> clockStart{0};

int64_t SteadyNanoseconds() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

void InitLocale() {
    // nl_langinfo and localeconv read the process locale; this runs before
    // other threads exist, so the shared buffers they return are safe.
    const char* decimal = nl_langinfo(RADIXCHAR);
    const char* thousand = nl_langinfo(THOUSEP);
    const struct lconv* conventions = localeconv();
    int digits = conventions != nullptr ? conventions->frac_digits : 0;
    SetLocaleNumbers(decimal, thousand, digits);
}

void SetLocaleNumbers(const char* decimal, const char* thousand, int digits) {
    SLocale& row = Table().rows[0];
    row.decimal = SeparatorChar(decimal, DEFAULT_DECIMAL);
    row.thousand = SeparatorChar(thousand, DEFAULT_THOUSAND);
    // localeconv gives CHAR_MAX when the locale has no value.
    row.digits = digits >= 0 && digits <= 9 ? digits : 0;
}

const SLocale& GetLocale() {
    return Table().rows[0];
}

const SLocale& GetLocaleRow(int row) {
    if (row < 0) {
        row = 0;
    }
    if (row >= LOCALE_ROWS) {
        row = LOCALE_ROWS - 1;
    }
    return Table().rows[row];
}

// SString's number formatting lives here, beside the locale table that
// gives the thousand separator.

void SString::FormatGrouped(int value) {
    FormatGrouped(value, GetLocale().thousand);
}

void SString::FormatGrouped(int value, char thousand) {
    Format("%d", value);
    if (thousand == 0) {
        return;
    }
    int digits = 0;
    for (int i = GetLength() - 1; i >= 0; --i) {
        char c = GetAt(i);
        if (c < '0' || c > '9') {
            continue;
        }
        ++digits;
        bool moreDigitsBefore = i > 0 && GetAt(i - 1) >= '0' && GetAt(i - 1) <= '9';
        if (digits % 3 == 0 && moreDigitsBefore) {
            Insert(thousand, i);
        }
    }
}

void SString::FormatFloat(double value, bool keepOneDecimal) {
    // Room for the longest double in fixed notation with six decimals.
    char buffer[400];
    std::to_chars_result result =
        std::to_chars(buffer, buffer + sizeof(buffer) - 1, value, std::chars_format::fixed, 6);
    if (result.ec != std::errc()) {
        Empty();
        return;
    }
    *result.ptr = 0;
    Assign(buffer);
    if (Find('.') < 0) {
        return; // "inf", "nan"
    }
    int length = GetLength();
    while (length > 0 && GetAt(length - 1) == '0') {
        --length;
    }
    SetLength(length);
    if (length > 0 && GetAt(length - 1) == '.') {
        if (keepOneDecimal) {
            *this += '0';
        } else {
            SetLength(length - 1);
        }
    }
}

void InitClock() {
    clockStart.store(SteadyNanoseconds(), std::memory_order_relaxed);
}

double GetTickSeconds() {
    int64_t elapsed = SteadyNanoseconds() - clockStart.load(std::memory_order_relaxed);
    return static_cast<double>(elapsed) / 1e9;
}

bool STimer::IsLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int STimer::GetDaysInMonth(int year, int month) {
    static const int LENGTHS[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) {
        return 0;
    }
    if (month == 2 && IsLeapYear(year)) {
        return 29;
    }
    return LENGTHS[month - 1];
}

bool STimer::IsValidDate(int year, int month, int day) {
    return month >= 1 && month <= 12 && day >= 1 && day <= GetDaysInMonth(year, month);
}

int STimer::GetDayOfWeek(int year, int month, int day) {
    if (!IsValidDate(year, month, day)) {
        return -1;
    }
    // Day number 0 (1 March of year 0) was a Wednesday.
    int64_t weekday = (DayNumber(year, month, day) + 3) % 7;
    return static_cast<int>(weekday < 0 ? weekday + 7 : weekday);
}

bool STimer::SetDateTime(int newYear, int newMonth, int newDay, int newHour, int newMinute,
                         int newSecond, int newMillisecond) {
    if (newYear < 0 || !IsValidDate(newYear, newMonth, newDay) || newHour < 0 || newHour > 23 ||
        newMinute < 0 || newMinute > 59 || newSecond < 0 || newSecond > 59 || newMillisecond < 0 ||
        newMillisecond > 999) {
        return false;
    }
    year = newYear;
    month = newMonth;
    day = newDay;
    hour = newHour;
    minute = newMinute;
    second = newSecond;
    millisecond = newMillisecond;
    return true;
}

void STimer::SetNow(bool local) {
    struct timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    struct tm parts;
    bool converted = local ? localtime_r(&now.tv_sec, &parts) != nullptr
                           : gmtime_r(&now.tv_sec, &parts) != nullptr;
    if (!converted) {
        return;
    }
    // A leap second shows as 59.
    int seconds = parts.tm_sec > 59 ? 59 : parts.tm_sec;
    SetDateTime(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min,
                seconds, static_cast<int>(now.tv_nsec / 1000000));
}

void STimer::SetSpan(int milliseconds, int seconds, int minutes, int hours, int days) {
    int64_t ms = milliseconds > 0 ? milliseconds : 0;
    int64_t s = seconds > 0 ? seconds : 0;
    int64_t m = minutes > 0 ? minutes : 0;
    int64_t h = hours > 0 ? hours : 0;
    int64_t d = days;
    Carry(ms, s, 1000);
    Carry(s, m, 60);
    Carry(m, h, 60);
    Carry(h, d, 24);
    spanMilliseconds = static_cast<int>(ms);
    spanSeconds = static_cast<int>(s);
    spanMinutes = static_cast<int>(m);
    spanHours = static_cast<int>(h);
    spanDays = static_cast<int>(d > INT_MAX ? INT_MAX : d);
}

int STimer::GetHour12() const {
    if (hour == 0) {
        return 12;
    }
    return hour <= 12 ? hour : hour - 12;
}

int STimer::GetDayOfWeek() const {
    return GetDayOfWeek(year, month, day);
}

SString STimer::GetDayName() const {
    return GetDayName(year, month, day);
}

SString STimer::GetDayName(int year, int month, int day) {
    int weekday = GetDayOfWeek(year, month, day);
    return weekday < 0 ? SString("") : SString(GetLocale().days[weekday]);
}

SString STimer::GetMonthName() const {
    return GetMonthName(month);
}

SString STimer::GetMonthName(int month) {
    if (month < 1 || month > 12) {
        return SString("");
    }
    return SString(GetLocale().months[month - 1]);
}

bool STimer::Add(int years, int months, int days, int hours, int minutes, int seconds,
                 int milliseconds) {
    if (years < 0 || months < 0 || days < 0 || hours < 0 || minutes < 0 || seconds < 0 ||
        milliseconds < 0 || month < 1 || month > 12) {
        return false;
    }
    int64_t ms = int64_t{millisecond} + milliseconds;
    int64_t s = int64_t{second} + seconds;
    int64_t mi = int64_t{minute} + minutes;
    int64_t h = int64_t{hour} + hours;
    int64_t d = int64_t{day} + days;
    int64_t m = month;
    int64_t y = year;
    Carry(ms, s, 1000);
    Carry(s, mi, 60);
    Carry(mi, h, 60);
    Carry(h, d, 24);
    // Whole 400-year cycles first, so a large day count does not walk
    // millions of months; the walk below then gives the same result.
    if (d > DAYS_PER_400_YEARS + 31) {
        int64_t cycles = (d - 31) / DAYS_PER_400_YEARS;
        d -= cycles * DAYS_PER_400_YEARS;
        y += cycles * 400;
    }
    while (d > DaysIn(y, m)) {
        d -= DaysIn(y, m);
        if (++m > 12) {
            m = 1;
            ++y;
        }
    }
    m += months;
    if (m > 12) {
        // A sum that is a multiple of 12 leaves month 0, which SetDateTime
        // refuses; callers have always seen that.
        y += (m - 1) / 12;
        m %= 12;
    }
    y += years;
    if (y > INT_MAX) {
        return false;
    }
    int64_t length = DaysIn(y, m);
    if (d > length) {
        d = length;
    }
    return SetDateTime(static_cast<int>(y), static_cast<int>(m), static_cast<int>(d),
                       static_cast<int>(h), static_cast<int>(mi), static_cast<int>(s),
                       static_cast<int>(ms));
}

bool STimer::Subtract(int years, int months, int days, int hours, int minutes, int seconds,
                      int milliseconds) {
    if (years < 0 || months < 0 || days < 0 || hours < 0 || minutes < 0 || seconds < 0 ||
        milliseconds < 0 || month < 1 || month > 12) {
        return false;
    }
    int64_t subtractSeconds = seconds;
    int64_t subtractMinutes = minutes;
    int64_t subtractHours = hours;
    int64_t subtractDays = days;
    int64_t ms = int64_t{millisecond} - milliseconds;
    Borrow(ms, subtractSeconds, 1000);
    int64_t s = second - subtractSeconds;
    Borrow(s, subtractMinutes, 60);
    int64_t mi = minute - subtractMinutes;
    Borrow(mi, subtractHours, 60);
    int64_t h = hour - subtractHours;
    Borrow(h, subtractDays, 24);
    int64_t d = day - subtractDays;
    int64_t m = month;
    int64_t y = year;
    if (d < -DAYS_PER_400_YEARS) {
        int64_t cycles = -d / DAYS_PER_400_YEARS;
        d += cycles * DAYS_PER_400_YEARS;
        y -= cycles * 400;
    }
    while (d < 1) {
        if (--m < 1) {
            m = 12;
            --y;
        }
        d += DaysIn(y, m);
    }
    m -= months;
    if (m < 1) {
        y -= (1 - m) / 12 + 1;
        m = 12 - (-m) % 12;
    }
    y -= years;
    if (y < 0) {
        return false;
    }
    int64_t length = DaysIn(y, m);
    if (d > length) {
        d = length;
    }
    return SetDateTime(static_cast<int>(y), static_cast<int>(m), static_cast<int>(d),
                       static_cast<int>(h), static_cast<int>(mi), static_cast<int>(s),
                       static_cast<int>(ms));
}

SString STimer::Format(const char* pattern) const {
    SString text(pattern != nullptr ? pattern : "");
    text.ReplaceAll("#+Y", Padded(year, 2).c_str());
    text.ReplaceAll("#Y", SString::FromInt(year).c_str());
    text.ReplaceAll("#$M", GetMonthName().c_str());
    text.ReplaceAll("#+M", Padded(month, 2).c_str());
    text.ReplaceAll("#M", SString::FromInt(month).c_str());
    text.ReplaceAll("#$W", GetDayName().c_str());
    text.ReplaceAll("#W", SString::FromInt(GetDayOfWeek()).c_str());
    text.ReplaceAll("#+D", Padded(day, 2).c_str());
    text.ReplaceAll("#D", SString::FromInt(day).c_str());
    text.ReplaceAll("#+H", Padded(GetHour12(), 2).c_str());
    text.ReplaceAll("#H", SString::FromInt(GetHour12()).c_str());
    text.ReplaceAll("#+h", Padded(hour, 2).c_str());
    text.ReplaceAll("#h", SString::FromInt(hour).c_str());
    text.ReplaceAll("#+m", Padded(minute, 2).c_str());
    text.ReplaceAll("#m", SString::FromInt(minute).c_str());
    text.ReplaceAll("#+s", Padded(second, 2).c_str());
    text.ReplaceAll("#s", SString::FromInt(second).c_str());
    text.ReplaceAll("#x", SString::FromInt(millisecond / 100).c_str());
    text.ReplaceAll("#+y", Padded(millisecond / 10, 2).c_str());
    text.ReplaceAll("#y", SString::FromInt(millisecond / 10).c_str());
    text.ReplaceAll("#+z", Padded(millisecond, 3).c_str());
    text.ReplaceAll("#z", SString::FromInt(millisecond).c_str());
    bool morning = hour >= 0 && hour <= 11;
    text.ReplaceAll("#a", morning ? "am" : "pm");
    text.ReplaceAll("#A", morning ? "AM" : "PM");
    return text;
}

SString STimer::FormatSpan(const char* pattern) const {
    SString text(pattern != nullptr ? pattern : "");
    text.ReplaceAll("#D", SString::FromInt(spanDays).c_str());
    text.ReplaceAll("#+h", Padded(spanHours, 2).c_str());
    text.ReplaceAll("#h", SString::FromInt(spanHours).c_str());
    text.ReplaceAll("#+m", Padded(spanMinutes, 2).c_str());
    text.ReplaceAll("#m", SString::FromInt(spanMinutes).c_str());
    text.ReplaceAll("#+s", Padded(spanSeconds, 2).c_str());
    text.ReplaceAll("#s", SString::FromInt(spanSeconds).c_str());
    text.ReplaceAll("#x", SString::FromInt(spanMilliseconds / 100).c_str());
    text.ReplaceAll("#+y", Padded(spanMilliseconds / 10, 2).c_str());
    text.ReplaceAll("#y", SString::FromInt(spanMilliseconds / 10).c_str());
    text.ReplaceAll("#+z", Padded(spanMilliseconds, 3).c_str());
    text.ReplaceAll("#z", SString::FromInt(spanMilliseconds).c_str());
    return text;
}
