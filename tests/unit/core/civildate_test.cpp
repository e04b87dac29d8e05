#include "core/civildate.h"
#include "core/value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

using namespace zifora::core;

TEST(CivilDate, TheReferenceDateAndTheDaysAroundIt) {
    const int64_t reference = daysFromCivil(2001, 1, 1);
    EXPECT_EQ(reference, 11323);
    EXPECT_EQ(reference * kSecondsPerDay, static_cast<int64_t>(Date::kUnixOffset));
    EXPECT_EQ(civilFromDays(reference), (CivilDate{2001, 1, 1}));
    EXPECT_EQ(civilFromDays(reference - 1), (CivilDate{2000, 12, 31}));
    EXPECT_EQ(civilFromDays(reference + 58), (CivilDate{2001, 2, 28}));
    EXPECT_EQ(civilFromDays(reference + 59), (CivilDate{2001, 3, 1}));
    EXPECT_EQ(daysFromCivil(1970, 1, 1), 0);
    EXPECT_EQ(civilFromUnixSeconds(static_cast<int64_t>(Date::kUnixOffset)),
              (CivilTime{{2001, 1, 1}, 0, 0, 0}));
    EXPECT_EQ(civilFromUnixSeconds(static_cast<int64_t>(Date::kUnixOffset) - 1),
              (CivilTime{{2000, 12, 31}, 23, 59, 59}));
}

// Counts day by day through 1200 years of the calendar, across three century rules, and
// compares each day with the conversion both ways.
TEST(CivilDate, AgreesWithCountingDayByDay) {
    CivilDate counted{1600, 1, 1};
    int64_t days = daysFromCivil(1600, 1, 1);
    while (counted.year < 2800) {
        ASSERT_EQ(civilFromDays(days), counted) << days;
        ASSERT_EQ(daysFromCivil(counted.year, counted.month, counted.day), days);
        ++days;
        if (++counted.day > daysInMonth(counted.year, counted.month)) {
            counted.day = 1;
            if (++counted.month > 12) {
                counted.month = 1;
                ++counted.year;
            }
        }
    }
}

TEST(CivilDate, LeapYears) {
    EXPECT_TRUE(isLeapYear(2024));
    EXPECT_TRUE(isLeapYear(2000));
    EXPECT_TRUE(isLeapYear(0));
    EXPECT_TRUE(isLeapYear(-4));
    EXPECT_FALSE(isLeapYear(2025));
    EXPECT_FALSE(isLeapYear(1900));
    EXPECT_FALSE(isLeapYear(2100));
    EXPECT_FALSE(isLeapYear(-1));
    EXPECT_EQ(daysInMonth(2024, 2), 29u);
    EXPECT_EQ(daysInMonth(2100, 2), 28u);
    EXPECT_EQ(daysInMonth(2025, 4), 30u);
    EXPECT_EQ(daysInMonth(2025, 13), 0u);
    EXPECT_TRUE(isValidCivilDate(2024, 2, 29));
    EXPECT_FALSE(isValidCivilDate(2100, 2, 29));
    EXPECT_FALSE(isValidCivilDate(2025, 4, 31));
    EXPECT_FALSE(isValidCivilDate(2025, 0, 1));
    EXPECT_FALSE(isValidCivilDate(2025, 1, 0));
    EXPECT_EQ(daysFromCivil(2024, 3, 1) - daysFromCivil(2024, 2, 28), 2);
    EXPECT_EQ(daysFromCivil(2100, 3, 1) - daysFromCivil(2100, 2, 28), 1);
}

TEST(CivilDate, DaysAndSecondsBefore1970) {
    EXPECT_EQ(civilFromDays(-1), (CivilDate{1969, 12, 31}));
    EXPECT_EQ(daysFromCivil(1, 1, 1), -719162);
    EXPECT_EQ(civilFromDays(-719162), (CivilDate{1, 1, 1}));
    EXPECT_EQ(civilFromDays(-719163), (CivilDate{0, 12, 31}));
    EXPECT_EQ(civilFromDays(-719468), (CivilDate{0, 3, 1}));
    EXPECT_EQ(civilFromUnixSeconds(-1), (CivilTime{{1969, 12, 31}, 23, 59, 59}));
    EXPECT_EQ(civilFromUnixSeconds(-86400), (CivilTime{{1969, 12, 31}, 0, 0, 0}));
    EXPECT_EQ(civilFromUnixSeconds(-86401), (CivilTime{{1969, 12, 30}, 23, 59, 59}));
}

TEST(CivilDate, FarYearsRoundTrip) {
    for (int64_t year : {-1000000000LL, -4713LL, 9999LL, 10000LL, 32768LL, 1000000000LL}) {
        for (unsigned month : {1u, 2u, 12u}) {
            const unsigned last = daysInMonth(year, month);
            const int64_t days = daysFromCivil(year, month, last);
            EXPECT_EQ(civilFromDays(days), (CivilDate{year, month, last})) << year;
            EXPECT_EQ(civilFromDays(days + 1).day, 1u) << year;
        }
    }
    // 400 years are always the same number of days.
    EXPECT_EQ(daysFromCivil(1000002001, 1, 1) - daysFromCivil(1000001601, 1, 1), 146097);
}

TEST(CivilDate, ADayPastTheMonthsEndRunsOn) {
    EXPECT_EQ(daysFromCivil(2025, 2, 31), daysFromCivil(2025, 3, 3));
    EXPECT_EQ(daysFromCivil(2024, 2, 31), daysFromCivil(2024, 3, 2));
    EXPECT_EQ(daysFromCivil(2025, 4, 31), daysFromCivil(2025, 5, 1));
}

// Every 64-bit number of seconds has a date (no overflow at the ends), and the dates the
// program shows are those of the years 1 to 9999: nothing beyond, nor for NaN or infinity.
TEST(CivilDate, EveryTimeHasADateAndOnlyTheYears1To9999AreShown) {
    for (int64_t s : {INT64_MIN, INT64_MIN + 1, INT64_MAX, INT64_MAX - 86399}) {
        const CivilTime t = civilFromUnixSeconds(s);
        EXPECT_TRUE(isValidCivilDate(t.date.year, t.date.month, t.date.day)) << s;
        EXPECT_LT(t.hour, 24u);
    }
    EXPECT_EQ(civilFromDays(INT64_MAX), civilFromDays(int64_t{1} << 60));
    EXPECT_EQ(daysFromCivil(INT64_MIN, 1, 1), daysFromCivil(-(int64_t{1} << 60) / 366, 1, 1));
    EXPECT_EQ(civilFromUnixTime(kFirstCivilUnixSecond), (CivilTime{{1, 1, 1}, 0, 0, 0}));
    EXPECT_EQ(civilFromUnixTime(kLastCivilUnixSecond + 0.999),
              (CivilTime{{9999, 12, 31}, 23, 59, 59}));
    EXPECT_EQ(civilFromUnixTime(-0.5), (CivilTime{{1969, 12, 31}, 23, 59, 59}));
    for (double s : {kFirstCivilUnixSecond - 0.5, kLastCivilUnixSecond + 1, 1e300, -1e300,
                     double(NAN), double(INFINITY), -double(INFINITY)})
        EXPECT_EQ(civilFromUnixTime(s), std::nullopt) << s;
}
