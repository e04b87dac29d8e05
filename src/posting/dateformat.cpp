#include "posting/dateformat.h"

#include "posting/icusupport.h"

#include "core/civildate.h"

#include <unicode/datefmt.h>

namespace zifora::posting {

struct DateFormatter::Impl {
    std::unique_ptr<icu::DateFormat> format;
};

DateFormatter::DateFormatter(DateStyle style, std::string_view localeName)
    : m_impl(std::make_unique<Impl>()) {
    const auto icuStyle =
        style == DateStyle::Short ? icu::DateFormat::kShort : icu::DateFormat::kMedium;
    m_impl->format.reset(icu::DateFormat::createDateInstance(
        icuStyle, detail::icuLocale(localeName, LocaleCategory::Dates)));
}

DateFormatter::DateFormatter(DateFormatter&&) noexcept = default;
DateFormatter& DateFormatter::operator=(DateFormatter&&) noexcept = default;
DateFormatter::~DateFormatter() = default;

std::string DateFormatter::format(core::Date date) const {
    if (!m_impl->format) return {};
    // Beyond the years 1 to 9999 a date shows as nothing, as everywhere in the program.
    if (!core::civilFromUnixTime(date.unixSeconds())) return {};
    icu::UnicodeString text;
    m_impl->format->format(icuMilliseconds(date), text);
    return detail::toUtf8(text);
}

std::string dateString(core::Date date, DateStyle style) {
    return DateFormatter(style).format(date);
}

core::Date dateByAddingDays(core::Date date, int64_t days) noexcept {
    const double secondsPerDay = 86400.0;
    return core::Date{date.sinceReferenceDate + secondsPerDay * static_cast<double>(days)};
}

double icuMilliseconds(core::Date date) noexcept {
    return date.unixSeconds() * 1000.0;
}

} // namespace zifora::posting
