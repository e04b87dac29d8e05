#pragma once
// Small bridges between this library's UTF-8 texts and ICU. Used by the helpers' sources only.

#include "posting/currentlocale.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <string>
#include <string_view>

namespace zifora::posting::detail {

/// The locale of a name; an empty name means the current locale of the category.
[[nodiscard]] inline icu::Locale icuLocale(std::string_view name, LocaleCategory category) {
    const std::string resolved = name.empty() ? currentLocaleName(category) : std::string(name);
    return icu::Locale(resolved.c_str());
}

[[nodiscard]] inline icu::UnicodeString fromUtf8(std::string_view text) {
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

[[nodiscard]] inline std::string toUtf8(const icu::UnicodeString& text) {
    std::string out;
    text.toUTF8String(out);
    return out;
}

} // namespace zifora::posting::detail
