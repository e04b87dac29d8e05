#include "posting/numberformat.h"

#include "posting/formatstring.h"
#include "posting/icusupport.h"

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/fmtable.h>
#include <unicode/numfmt.h>
#include <unicode/parsepos.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

namespace zifora::posting {

namespace {

using detail::fromUtf8;
using detail::icuLocale;
using detail::toUtf8;

// Splits "a;b;c" at the semicolons outside quotes.
std::vector<std::string_view> splitSections(std::string_view pattern) {
    std::vector<std::string_view> sections;
    bool quoted = false;
    size_t start = 0;
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '\'') quoted = !quoted;
        if (pattern[i] == ';' && !quoted) {
            sections.push_back(pattern.substr(start, i - start));
            start = i + 1;
        }
    }
    sections.push_back(pattern.substr(start));
    return sections;
}

core::Result<std::unique_ptr<icu::DecimalFormat>> decimalFormat(std::string_view pattern,
                                                                const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    auto* symbols = new icu::DecimalFormatSymbols(locale, status);
    // The format adopts the symbols, also when it fails.
    auto format = std::make_unique<icu::DecimalFormat>(fromUtf8(pattern), symbols, status);
    if (U_FAILURE(status)) {
        return core::fail("number pattern \"" + std::string(pattern) +
                          "\" can't be read: " + u_errorName(status));
    }
    format->setRoundingMode(icu::DecimalFormat::kRoundHalfEven);
    return format;
}

NumberPattern madeFromConstant(std::string_view pattern, std::string_view localeName) {
    // The program's own patterns are known to be readable.
    return std::move(NumberPattern::make(pattern, localeName).value());
}

std::string_view trimmedBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n\f\v";
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    const size_t last = text.find_last_not_of(blanks);
    return text.substr(first, last - first + 1);
}

// "119.5" under a decimal comma: the point is meant as the decimal sign unless exactly three
// digits follow it, in which case it is a group sign ("1.234").
std::string withPointAsDecimalComma(std::string_view text) {
    std::string out(text);
    if (text.find(',') != std::string_view::npos) return out;
    const size_t point = text.find('.');
    if (point == std::string_view::npos || text.find('.', point + 1) != std::string_view::npos)
        return out;
    const size_t digitsAfter = text.size() - point - 1;
    if (digitsAfter != 3) out[point] = ',';
    return out;
}

std::optional<float> floatFromDecimal(std::string_view decimal) {
    float value = 0.0f;
    const auto [end, error] =
        std::from_chars(decimal.data(), decimal.data() + decimal.size(), value);
    if (error != std::errc{} || end != decimal.data() + decimal.size()) return std::nullopt;
    if (!std::isfinite(value)) return std::nullopt;
    return value;
}

} // namespace

struct NumberPattern::Sections {
    std::unique_ptr<icu::DecimalFormat> positive;
    std::unique_ptr<icu::DecimalFormat> zero;
    std::unique_ptr<icu::DecimalFormat> negative;
};

NumberPattern::NumberPattern(std::unique_ptr<Sections> sections)
    : m_sections(std::move(sections)) {}
NumberPattern::NumberPattern(NumberPattern&&) noexcept = default;
NumberPattern& NumberPattern::operator=(NumberPattern&&) noexcept = default;
NumberPattern::~NumberPattern() = default;

core::Result<NumberPattern> NumberPattern::make(std::string_view pattern,
                                                std::string_view localeName) {
    const icu::Locale locale = icuLocale(localeName, LocaleCategory::Numbers);
    const std::vector<std::string_view> parts = splitSections(pattern);
    if (parts.size() > 3)
        return core::fail("number pattern \"" + std::string(pattern) +
                          "\" has more than three sections");
    // A missing zero section is the positive one; a missing negative one is the positive one
    // with a minus sign in front.
    const std::string_view positive = parts[0];
    const std::string_view zero = parts.size() > 1 ? parts[1] : positive;
    const std::string negative =
        parts.size() > 2 ? std::string(parts[2]) : "-" + std::string(positive);
    auto sections = std::make_unique<Sections>();
    for (auto [target, text] : {std::pair{&sections->positive, std::string_view(positive)},
                                std::pair{&sections->zero, zero},
                                std::pair{&sections->negative, std::string_view(negative)}}) {
        auto format = decimalFormat(text, locale);
        if (!format) return std::unexpected(format.error());
        *target = std::move(*format);
    }
    return NumberPattern(std::move(sections));
}

std::string NumberPattern::format(double value) const {
    icu::UnicodeString text;
    if (value > 0) {
        m_sections->positive->format(value, text);
    } else if (value == 0) {
        m_sections->zero->format(0.0, text); // -0 too reads as zero, without a sign
    } else if (value < 0) {
        m_sections->negative->format(-value, text);
    } else {
        m_sections->positive->format(value, text); // not a number
    }
    return toUtf8(text);
}

AmountFormats::AmountFormats(std::string_view localeName)
    : m_plain(madeFromConstant(kPlainPattern, localeName)),
      m_grouped(madeFromConstant(kGroupedPattern, localeName)),
      m_percent(madeFromConstant(kPercentPattern, localeName)) {}
AmountFormats::AmountFormats(AmountFormats&&) noexcept = default;
AmountFormats::~AmountFormats() = default;

std::string AmountFormats::plain(double value) const {
    return m_plain.format(value);
}
std::string AmountFormats::grouped(double value) const {
    return m_grouped.format(value);
}
std::string AmountFormats::percent(double value) const {
    return m_percent.format(value);
}

bool totalRuleIsPlain(double value) noexcept {
    return value > -1000.0 && value < 1000.0;
}

std::string AmountFormats::byTotalRule(double value) const {
    return totalRuleIsPlain(value) ? plain(value) : grouped(value);
}

std::optional<std::string> AmountFormats::byRowRule(double value) const {
    if (value == 0) return std::nullopt;
    return byTotalRule(value);
}

std::string AmountFormats::byPaymentRule(double value) const {
    return value < 1000.0 ? plain(value) : grouped(value);
}

std::string commaStringFromNumber(double value, std::string_view localeName) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(
        icuLocale(localeName, LocaleCategory::Numbers), UNUM_DECIMAL, status));
    if (U_FAILURE(status)) return {};
    format->setGroupingUsed(true);
    format->setMinimumFractionDigits(2);
    format->setMaximumFractionDigits(2);
    icu::UnicodeString text;
    format->format(value, text);
    return toUtf8(text);
}

std::string percentStringFromNumber(const core::Value& value) {
    if (value.isAbsent()) return {};
    return descriptionOf(value) + " %";
}

std::optional<float> parseLocalizedAmount(std::string_view text, std::string_view localeName) {
    const std::string_view trimmed = trimmedBlanks(text);
    if (trimmed.empty()) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(
        icuLocale(localeName, LocaleCategory::Numbers), UNUM_DECIMAL, status));
    if (U_FAILURE(status)) return std::nullopt;
    std::string typed(trimmed);
    if (const auto* decimal = dynamic_cast<icu::DecimalFormat*>(format.get())) {
        const auto& symbols = *decimal->getDecimalFormatSymbols();
        if (symbols.getSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol) == u",")
            typed = withPointAsDecimalComma(trimmed);
    }
    const icu::UnicodeString input = fromUtf8(typed);
    icu::Formattable number;
    icu::ParsePosition position(0);
    format->parse(input, number, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != input.length()) return std::nullopt;
    const icu::StringPiece decimal = number.getDecimalNumber(status);
    if (U_FAILURE(status)) return std::nullopt;
    return floatFromDecimal(std::string_view(decimal.data(), static_cast<size_t>(decimal.size())));
}

} // namespace zifora::posting
