#include "posting/numberformat.h"

#include "posting/formatstring.h"
#include "posting/icusupport.h"

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/numfmt.h>

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

// The signs a typed number of a locale may use, as UTF-8.
struct NumberSigns {
    std::string decimal;
    std::vector<std::string> groups;
    std::vector<std::string> minus;
    std::vector<std::string> plus;
};

NumberSigns numberSigns(std::string_view localeName) {
    NumberSigns signs{".", {","}, {"-"}, {"+"}};
    UErrorCode status = U_ZERO_ERROR;
    const icu::DecimalFormatSymbols symbols(icuLocale(localeName, LocaleCategory::Numbers), status);
    if (U_FAILURE(status)) return signs;
    using Symbol = icu::DecimalFormatSymbols::ENumberFormatSymbol;
    auto symbol = [&symbols](Symbol which) { return toUtf8(symbols.getSymbol(which)); };
    signs.decimal = symbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol);
    signs.groups = {symbol(icu::DecimalFormatSymbols::kGroupingSeparatorSymbol)};
    // Where the group sign is a space of its own (French: U+202F), a typed blank or
    // no-break space is taken for it.
    if (signs.groups.front() == "\u202f" || signs.groups.front() == "\u00a0")
        signs.groups.insert(signs.groups.end(), {"\u202f", "\u00a0", " "});
    for (auto [list, which] :
         {std::pair{&signs.minus, icu::DecimalFormatSymbols::kMinusSignSymbol},
          std::pair{&signs.plus, icu::DecimalFormatSymbols::kPlusSignSymbol}}) {
        const std::string own = symbol(which);
        if (!own.empty() && own != list->front()) list->push_back(own);
    }
    return signs;
}

// The length of the sign of `list` that `text` begins with, 0 for none.
size_t signAt(std::string_view text, const std::vector<std::string>& list) {
    for (const std::string& sign : list)
        if (!sign.empty() && text.starts_with(sign)) return sign.size();
    return 0;
}

// A typed number in the locale's notation, as the plain text from_chars reads ("-1234.56"):
// an optional leading sign, digits with the locale's group signs between groups of three,
// and a decimal sign with digits on at least one side. Anything else gives nothing, so no
// exponent ("5e3"), no other base ("0x10"), no "inf", "nan" or "∞", no second sign and no
// text after the number.
std::optional<std::string> plainDecimalOf(std::string_view text, const NumberSigns& signs) {
    std::string plain;
    if (const size_t minus = signAt(text, signs.minus)) {
        plain = "-";
        text.remove_prefix(minus);
    } else {
        text.remove_prefix(signAt(text, signs.plus));
    }
    std::vector<size_t> groupLengths{0};
    size_t integerDigits = 0;
    while (!text.empty()) {
        if (text.front() >= '0' && text.front() <= '9') {
            plain += text.front();
            ++groupLengths.back();
            ++integerDigits;
            text.remove_prefix(1);
        } else if (const size_t group = signAt(text, signs.groups)) {
            groupLengths.push_back(0);
            text.remove_prefix(group);
        } else {
            break;
        }
    }
    if (groupLengths.size() > 1) {
        if (groupLengths.front() == 0 || groupLengths.front() > 3) return std::nullopt;
        for (size_t i = 1; i < groupLengths.size(); ++i)
            if (groupLengths[i] != 3) return std::nullopt;
    }
    size_t fractionDigits = 0;
    if (text.starts_with(signs.decimal)) {
        text.remove_prefix(signs.decimal.size());
        plain += '.';
        while (!text.empty() && text.front() >= '0' && text.front() <= '9') {
            plain += text.front();
            ++fractionDigits;
            text.remove_prefix(1);
        }
    }
    if (!text.empty() || integerDigits + fractionDigits == 0) return std::nullopt;
    if (integerDigits == 0) plain.insert(plain.starts_with('-') ? 1 : 0, "0");
    return plain;
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
    const NumberSigns signs = numberSigns(localeName);
    const std::string typed =
        signs.decimal == "," ? withPointAsDecimalComma(trimmed) : std::string(trimmed);
    const std::optional<std::string> plain = plainDecimalOf(typed, signs);
    if (!plain) return std::nullopt;
    return floatFromDecimal(*plain);
}

} // namespace zifora::posting
