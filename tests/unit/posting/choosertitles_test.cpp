#include "posting/choosertitles.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zifora::posting {
namespace {

TEST(ChooserTitles, YearsRunFrom2000ToTwoYearsAheadAsFourDigits) {
    const auto years = yearChooserTitles(2026);
    ASSERT_EQ(years.size(), 29u);
    EXPECT_EQ(years.front(), "2000");
    EXPECT_EQ(years.back(), "2028");
    EXPECT_TRUE(std::is_sorted(years.begin(), years.end()));
    // A clock set far back or far ahead still gives four-digit years from 2000 on.
    EXPECT_EQ(yearChooserTitles(1970), (std::vector<std::string>{"2000", "2001", "2002"}));
    EXPECT_EQ(yearChooserTitles(123456).back(), "9999");
}

TEST(ChooserTitles, SeventeenPeriodsFromTheYearToDecember) {
    const auto periods = periodChooserTitles();
    ASSERT_EQ(periods.size(), 17u);
    EXPECT_EQ(periods[0], "Jahr");
    EXPECT_EQ(periods[4], "4. Kalendervierteljahr");
    EXPECT_EQ(periods[7], "März");
    EXPECT_EQ(periods[16], "Dezember");
}

TEST(ChooserTitles, TheCurrentYearIsThatOfTheLocalClock) {
    // 2025-12-31T23:30:00Z is already 2026 in Berlin.
    EXPECT_EQ(localYearOf(core::Date::fromUnix(1767223800.0)), 2026);
    EXPECT_EQ(localYearOf(core::Date::fromUnix(1767220200.0)), 2025);
    EXPECT_EQ(localYearOf(core::Date{1e300}), kFirstChooserYear);
}

} // namespace
} // namespace zifora::posting
