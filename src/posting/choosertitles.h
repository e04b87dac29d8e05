#pragma once
// What the year form's and the period form's choosers offer. The year goes into a year's
// "dateValue" and the period name into a period's "title", both as the plain text shown.

#include "core/value.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zifora::posting {

/// The first year the year chooser offers.
inline constexpr int kFirstChooserYear = 2000;

/// The years 2000 up to two years after `currentYear`, ascending, as four-digit texts. A
/// current year before 1998 still gives 2000 to 2002.
[[nodiscard]] std::vector<std::string> yearChooserTitles(int currentYear);

/// The seventeen period names the advance return and its hand-over recognise: "Jahr", the
/// four quarters, then the twelve months from "Januar" to "Dezember".
[[nodiscard]] std::span<const std::string_view> periodChooserTitles();

/// The calendar year of a moment in the process's time zone.
[[nodiscard]] int localYearOf(core::Date date);

} // namespace zifora::posting
