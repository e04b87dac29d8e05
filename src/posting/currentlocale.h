#pragma once
// Which locale "the current locale" is: the one of the process, with C and POSIX read as
// German, since the books are German books.

#include <string>
#include <string_view>

namespace zifora::posting {

/// The category of the process locale that is asked: LC_NUMERIC, LC_TIME or LC_MESSAGES
/// (the language of the texts).
enum class LocaleCategory { Numbers, Dates, Messages };

/// The current locale's name in ICU form ("de_DE", "en_US"): the process locale of the
/// category, else the environment's LC_ALL, the category's variable and LANG, in that order.
/// Encoding and modifier are dropped ("de_DE.UTF-8@euro" gives "de_DE"); C and POSIX give
/// "de_DE".
[[nodiscard]] std::string currentLocaleName(LocaleCategory category = LocaleCategory::Numbers);

/// The ICU form of a POSIX locale name; C, POSIX and "" give "de_DE".
[[nodiscard]] std::string normalizedLocaleName(std::string_view posixName);

} // namespace zifora::posting
