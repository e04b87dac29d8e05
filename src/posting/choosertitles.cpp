#include "posting/choosertitles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>

namespace zifora::posting {

namespace {
constexpr std::array<std::string_view, 17> kPeriodTitles = {
    "Jahr",
    "1. Kalendervierteljahr",
    "2. Kalendervierteljahr",
    "3. Kalendervierteljahr",
    "4. Kalendervierteljahr",
    "Januar",
    "Februar",
    "März",
    "April",
    "Mai",
    "Juni",
    "Juli",
    "August",
    "September",
    "Oktober",
    "November",
    "Dezember",
};
} // namespace

std::vector<std::string> yearChooserTitles(int currentYear) {
    // Beyond the year 9997 the titles would stop being four digits.
    const int last = std::clamp(currentYear, kFirstChooserYear, 9997) + 2;
    std::vector<std::string> titles;
    titles.reserve(static_cast<size_t>(last - kFirstChooserYear + 1));
    for (int year = kFirstChooserYear; year <= last; ++year)
        titles.push_back(std::to_string(year));
    return titles;
}

std::span<const std::string_view> periodChooserTitles() {
    return kPeriodTitles;
}

int localYearOf(core::Date date) {
    const double seconds = std::floor(date.unixSeconds());
    // Far outside any clock a book is kept by; such moments count as the first year offered.
    if (!std::isfinite(seconds) || std::fabs(seconds) > 1e15) return kFirstChooserYear;
    const std::time_t t = static_cast<std::time_t>(seconds);
    std::tm parts{};
    if (!localtime_r(&t, &parts)) return kFirstChooserYear;
    return parts.tm_year + 1900;
}

} // namespace zifora::posting
