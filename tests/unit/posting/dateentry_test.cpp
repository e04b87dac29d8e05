#include "posting/dateentry.h"

#include <gtest/gtest.h>

namespace zifora::posting {

void PrintTo(const CalendarDay& day, std::ostream* out) {
    *out << day.day << '.' << day.month << '.' << day.year;
}

namespace {

// The field held 23 November 2026.
constexpr CalendarDay kHeld{2026, 11, 23};

std::optional<CalendarDay> typed(std::string_view text) {
    return parseTypedDate(text, kHeld);
}

TEST(DateEntry, ReadsDayMonthAndYearInGermanOrder) {
    EXPECT_EQ(typed("15.01.2025"), (CalendarDay{2025, 1, 15}));
    EXPECT_EQ(typed("15.1.2025"), (CalendarDay{2025, 1, 15}));
    EXPECT_EQ(typed("1.2.2025"), (CalendarDay{2025, 2, 1}));
    EXPECT_EQ(typed("01.12.2025"), (CalendarDay{2025, 12, 1})) << "not 12 January";
    EXPECT_EQ(typed(" 15. 01. 2025 "), (CalendarDay{2025, 1, 15}));
    EXPECT_EQ(typed("15/01/2025"), (CalendarDay{2025, 1, 15}));
    EXPECT_EQ(typed("15-01-2025"), (CalendarDay{2025, 1, 15}));
    EXPECT_EQ(typed("2025-01-15"), (CalendarDay{2025, 1, 15}));
}

TEST(DateEntry, TwoDigitYearsFallNearTheHeldDate) {
    EXPECT_EQ(typed("15.01.25"), (CalendarDay{2025, 1, 15}));
    EXPECT_EQ(typed("15.01.5"), (CalendarDay{2005, 1, 15}));
    EXPECT_EQ(typed("15.01.00"), (CalendarDay{2000, 1, 15}));
    EXPECT_EQ(typed("15.01.45"), (CalendarDay{2045, 1, 15}));
    EXPECT_EQ(typed("15.01.46"), (CalendarDay{1946, 1, 15}));
    EXPECT_EQ(typed("15.01.99"), (CalendarDay{1999, 1, 15}));
    EXPECT_EQ(parseTypedDate("1.1.70", {2090, 6, 1}), (CalendarDay{2070, 1, 1}));
}

TEST(DateEntry, PartsLeftOutAreThoseOfTheHeldDate) {
    EXPECT_EQ(typed("15.01."), (CalendarDay{2026, 1, 15}));
    EXPECT_EQ(typed("15.01"), (CalendarDay{2026, 1, 15}));
    EXPECT_EQ(typed("15."), (CalendarDay{2026, 11, 15}));
    EXPECT_EQ(typed("15"), (CalendarDay{2026, 11, 15}));
    EXPECT_EQ(typed("3"), (CalendarDay{2026, 11, 3}));
    EXPECT_EQ(typed("31.12."), (CalendarDay{2026, 12, 31}));
}

TEST(DateEntry, DigitsAloneAreSplitByTheirCount) {
    EXPECT_EQ(typed("1501"), (CalendarDay{2026, 1, 15}));
    EXPECT_EQ(typed("150125"), (CalendarDay{2025, 1, 15}));
    EXPECT_EQ(typed("15012025"), (CalendarDay{2025, 1, 15}));
    for (const char* text : {"150", "15012", "1501202", "150120251"})
        EXPECT_EQ(typed(text), std::nullopt) << text;
}

TEST(DateEntry, RefusesDaysTheCalendarDoesNotHave) {
    for (const char* text :
         {"31.02.2025", "29.02.2025", "29.02.1900", "31.04.2026", "0.1.2025", "15.0.2025",
          "15.13.2025", "32.01.2025", "00.00.0000", "1.1.0000", "31.11."})
        EXPECT_EQ(typed(text), std::nullopt) << text;
    EXPECT_EQ(typed("29.02.2024"), (CalendarDay{2024, 2, 29}));
    EXPECT_EQ(typed("29.02.2000"), (CalendarDay{2000, 2, 29}));
}

TEST(DateEntry, RefusesTextsThatAreNoDate) {
    for (const char* text : {"", "  ", ".", "..", "15..2025", ".01.2025", "-15", "15.01.2025.1",
                             "15.01.202", "15.01.20255", "015.01.2025", "15.001.2025", "heute",
                             "15.Jan.2025", "15.01.2025x", "1 5.01.2025", "2025-1-155", "+15"})
        EXPECT_EQ(typed(text), std::nullopt) << text;
}

} // namespace
} // namespace zifora::posting
