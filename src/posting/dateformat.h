#pragma once
// Dates as reports write them, and the plain day arithmetic of the books.

#include "core/value.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zifora::posting {

/// Heads of reports take the medium style, rows the short one; neither shows a time.
enum class DateStyle : uint8_t { Short, Medium };

/// A date style of a locale in the process's time zone, made once and used for many dates.
/// Under German the short style reads 31.12.24 and the medium one 31.12.2024.
class DateFormatter {
  public:
    /// An empty locale name means the current locale.
    explicit DateFormatter(DateStyle style, std::string_view localeName = {});
    DateFormatter(DateFormatter&&) noexcept;
    DateFormatter& operator=(DateFormatter&&) noexcept;
    ~DateFormatter();

    /// The date in the style; "" for a date outside the years 1 to 9999 or no number.
    [[nodiscard]] std::string format(core::Date date) const;

  private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

/// One date in a style of the current locale.
[[nodiscard]] std::string dateString(core::Date date, DateStyle style);

/// The date plus that many days of exactly 86,400 seconds, with no calendar correction:
/// across a change to summer time the wall-clock hour moves. A year of the depreciation list
/// is 365 of these days.
[[nodiscard]] core::Date dateByAddingDays(core::Date date, int64_t days) noexcept;

/// Milliseconds since 1970, as ICU counts time.
[[nodiscard]] double icuMilliseconds(core::Date date) noexcept;

} // namespace zifora::posting
