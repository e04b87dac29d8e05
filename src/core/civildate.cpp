#include "core/civildate.h"

#include <cmath>

namespace zifora::core {

namespace {

// The calendar repeats every 400 years ("era") of 146097 days. Inside an era the year is
// taken to start on 1 March, so that the leap day falls at its end; 719468 is the number
// of days from 1 March of the year 0 to 1 Jan 1970.
constexpr int64_t kDaysPerEra = 146097;
constexpr int64_t kDaysFromEraStartToUnixDay = 719468;

// Rounds down; for any `a` and a positive `b`, without overflow.
int64_t floorDivide(int64_t a, int64_t b) {
    const int64_t q = a / b;
    return a % b < 0 ? q - 1 : q;
}

// The bounds within which the arithmetic below is exact and cannot overflow.
constexpr int64_t kDayBound = int64_t{1} << 60;
constexpr int64_t kYearBound = kDayBound / 366;

int64_t bounded(int64_t v, int64_t bound) {
    return v < -bound ? -bound : v > bound ? bound : v;
}

} // namespace

int64_t daysFromCivil(int64_t year, unsigned month, unsigned day) {
    year = bounded(year, kYearBound);
    month = month < 1 ? 1 : month > 12 ? 12 : month;
    year -= month <= 2;
    const int64_t era = floorDivide(year, 400);
    const auto yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * kDaysPerEra + static_cast<int64_t>(dayOfEra) - kDaysFromEraStartToUnixDay;
}

CivilDate civilFromDays(int64_t days) {
    days = bounded(days, kDayBound) + kDaysFromEraStartToUnixDay;
    const int64_t era = floorDivide(days, kDaysPerEra);
    const auto dayOfEra = static_cast<unsigned>(days - era * kDaysPerEra);
    const unsigned yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned shiftedMonth = (5 * dayOfYear + 2) / 153; // 0 is March
    CivilDate date;
    date.day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    date.month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    date.year = static_cast<int64_t>(yearOfEra) + era * 400 + (date.month <= 2);
    return date;
}

bool isLeapYear(int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

unsigned daysInMonth(int64_t year, unsigned month) {
    static constexpr unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) return 0;
    return month == 2 && isLeapYear(year) ? 29 : kDays[month - 1];
}

bool isValidCivilDate(int64_t year, unsigned month, unsigned day) {
    return day >= 1 && day <= daysInMonth(year, month);
}

CivilTime civilFromUnixSeconds(int64_t seconds) {
    const int64_t days = floorDivide(seconds, kSecondsPerDay);
    const auto ofDay = static_cast<unsigned>(seconds - days * kSecondsPerDay);
    return {civilFromDays(days), ofDay / 3600, ofDay / 60 % 60, ofDay % 60};
}

std::optional<CivilTime> civilFromUnixTime(double seconds) {
    const double whole = std::floor(seconds);
    // Written so that NaN fails the test too.
    if (!(whole >= kFirstCivilUnixSecond && whole <= kLastCivilUnixSecond)) return std::nullopt;
    return civilFromUnixSeconds(static_cast<int64_t>(whole));
}

} // namespace zifora::core
