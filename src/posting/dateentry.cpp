#include "posting/dateentry.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace zifora::posting {

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";
constexpr std::string_view kSeparators = "./-";

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool isDigits(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// The value of at most eight digits.
int valueOf(std::string_view digits) {
    int value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

bool isLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int daysInMonth(int year, int month) {
    constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[month - 1];
}

// A year of one or two digits, in the hundred years that begin 80 years before `heldYear`.
int fullYear(int shortYear, int heldYear) {
    const int start = std::max(heldYear - 80, 0);
    const int year = start - start % 100 + shortYear;
    return year < start ? year + 100 : year;
}

// The parts between the separators, each without its blanks; a separator at the end
// ("15.01.") leaves no part of its own.
std::vector<std::string_view> partsOf(std::string_view text) {
    std::vector<std::string_view> parts;
    size_t start = 0;
    for (;;) {
        const size_t end = text.find_first_of(kSeparators, start);
        parts.push_back(
            trimmed(text.substr(start, end == std::string_view::npos ? end : end - start)));
        if (end == std::string_view::npos) break;
        start = end + 1;
    }
    if (parts.size() > 1 && parts.back().empty()) parts.pop_back();
    return parts;
}

// Digits without separators, split by their count: DD, DDMM, DDMMYY or DDMMYYYY.
std::vector<std::string_view> partsOfDigits(std::string_view digits) {
    switch (digits.size()) {
    case 1:
    case 2:
        return {digits};
    case 4:
        return {digits.substr(0, 2), digits.substr(2, 2)};
    case 6:
    case 8:
        return {digits.substr(0, 2), digits.substr(2, 2), digits.substr(4)};
    default:
        return {};
    }
}

std::optional<CalendarDay> checked(const CalendarDay& day) {
    if (!isCalendarDay(day)) return std::nullopt;
    return day;
}

} // namespace

bool isCalendarDay(const CalendarDay& day) noexcept {
    if (day.year < 1 || day.year > 9999 || day.month < 1 || day.month > 12) return false;
    return day.day >= 1 && day.day <= daysInMonth(day.year, day.month);
}

std::optional<CalendarDay> parseTypedDate(std::string_view text, const CalendarDay& held) {
    text = trimmed(text);
    if (text.empty()) return std::nullopt;
    std::vector<std::string_view> parts = partsOf(text);
    if (parts.size() == 1) parts = partsOfDigits(parts.front());
    if (parts.empty() || parts.size() > 3) return std::nullopt;
    if (!std::all_of(parts.begin(), parts.end(), isDigits)) return std::nullopt;

    if (parts.size() == 3 && parts[0].size() == 4) { // year first, as in 2025-01-15
        if (parts[1].size() > 2 || parts[2].size() > 2) return std::nullopt;
        return checked({valueOf(parts[0]), valueOf(parts[1]), valueOf(parts[2])});
    }
    CalendarDay day = held;
    if (parts[0].size() > 2) return std::nullopt;
    day.day = valueOf(parts[0]);
    if (parts.size() > 1) {
        if (parts[1].size() > 2) return std::nullopt;
        day.month = valueOf(parts[1]);
    }
    if (parts.size() > 2) {
        const size_t digits = parts[2].size();
        if (digits == 3 || digits > 4) return std::nullopt;
        day.year = digits == 4 ? valueOf(parts[2]) : fullYear(valueOf(parts[2]), held.year);
    }
    return checked(day);
}

} // namespace zifora::posting
