#pragma once
// Calendar dates of the proleptic Gregorian calendar and their day numbers, counted from
// 1 Jan 1970 like Unix time (the archives' reference date, 1 Jan 2001, is day 11323). Every
// date the program prints or reads in UTC goes through here. Exact for any year a 64-bit
// day number can hold with room to spare (|days| < 2^60); total beyond: day numbers and years
// further out are taken at that bound.

#include <cstdint>
#include <optional>

namespace zifora::core {

struct CivilDate {
    int64_t year = 1970; ///< astronomical: 0 is 1 BC, -1 is 2 BC
    unsigned month = 1;  ///< 1 to 12
    unsigned day = 1;    ///< 1 to 31

    friend bool operator==(const CivilDate&, const CivilDate&) = default;
};

/// A date with the time of day, as UTC.
struct CivilTime {
    CivilDate date;
    unsigned hour = 0;
    unsigned minute = 0;
    unsigned second = 0;

    friend bool operator==(const CivilTime&, const CivilTime&) = default;
};

constexpr int64_t kSecondsPerDay = 86400;

/// The day number of a date; `month` is 1 to 12, a `day` past the month's end runs on into
/// the next month (31 February is 3 or 2 March).
[[nodiscard]] int64_t daysFromCivil(int64_t year, unsigned month, unsigned day);
[[nodiscard]] CivilDate civilFromDays(int64_t days);

[[nodiscard]] bool isLeapYear(int64_t year);
/// Days of `month` (1 to 12) in `year`.
[[nodiscard]] unsigned daysInMonth(int64_t year, unsigned month);
/// True if the month is 1 to 12 and the day one of that month.
[[nodiscard]] bool isValidCivilDate(int64_t year, unsigned month, unsigned day);

/// The date and time of day of a whole number of seconds since 1 Jan 1970 00:00 UTC
/// (before it, too: -1 is 31 Dec 1969 23:59:59). Any 64-bit number of seconds.
[[nodiscard]] CivilTime civilFromUnixSeconds(int64_t seconds);

/// The first and the last second of the years 1 to 9999, since 1 Jan 1970: the dates the
/// program shows and writes as dates.
constexpr double kFirstCivilUnixSecond = -62135596800.0; // 0001-01-01T00:00:00Z
constexpr double kLastCivilUnixSecond = 253402300799.0;  // 9999-12-31T23:59:59Z

/// The date and time of day of `seconds` since 1970, rounded down to the whole second, when
/// it falls into the years 1 to 9999; nothing for any other time, NaN and the infinities
/// included. Every formatter of dates asks here first, and shows nothing where this gives
/// nothing.
[[nodiscard]] std::optional<CivilTime> civilFromUnixTime(double seconds);

} // namespace zifora::core
