#pragma once
// A date as the user types it into a date field: day, month and year in the German order,
// with what is left out taken from the date the field held.

#include <optional>
#include <string_view>

namespace zifora::posting {

/// A day of the (proleptic Gregorian) calendar.
struct CalendarDay {
    int year = 0;
    int month = 0;
    int day = 0;
    friend bool operator==(const CalendarDay&, const CalendarDay&) = default;
};

/// True for a day the calendar has: month 1 to 12, the day within its month (29 February in
/// leap years only), year 1 to 9999.
[[nodiscard]] bool isCalendarDay(const CalendarDay& day) noexcept;

/// A typed date, read as day.month.year with "." (or "/" or "-") between the parts and
/// blanks around the text and its parts ignored:
/// - "15.01.2025" and "15.1.2025" are 15 January 2025;
/// - a year of one or two digits falls in the hundred years that begin 80 years before the
///   year of `held`: "15.01.25" is 2025 and "15.01.99" 1999 while the field holds a date of
///   2026; a year of three digits is refused;
/// - parts left out at the end are those of `held`: "15.01." and "15.01" are 15 January of
///   held's year, "15" and "15." the 15th of held's month;
/// - digits alone are split by their count: "1501" is day and month, "150125" and "15012025"
///   day, month and year; one or two digits are the day;
/// - "2025-01-15", year first with four digits, is read as such too.
/// Gives nothing for an empty text, for any other text and for a day the calendar does not
/// have ("31.02.2025", "15.13.2025"), so that the field can refuse it.
[[nodiscard]] std::optional<CalendarDay> parseTypedDate(std::string_view text,
                                                        const CalendarDay& held);

} // namespace zifora::posting
