#include "posting/amountentry.h"

#include "posting/icusupport.h"
#include "posting/numberformat.h"

#include <unicode/dcfmtsym.h>

#include <charconv>
#include <cmath>

namespace zifora::posting {

namespace {

// The locale's decimal sign, as UTF-8.
std::string decimalSign(std::string_view localeName) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::DecimalFormatSymbols symbols(detail::icuLocale(localeName, LocaleCategory::Numbers),
                                            status);
    if (U_FAILURE(status)) return ".";
    return detail::toUtf8(symbols.getSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol));
}

// A text as storedAmountText writes it: an optional minus, digits, at most one point with
// digits on both sides.
bool isPlainDecimal(std::string_view text) {
    size_t i = text.starts_with('-') ? 1 : 0;
    const size_t firstDigit = i;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9')
        ++i;
    if (i == firstDigit) return false;
    if (i == text.size()) return true;
    if (text[i] != '.') return false;
    const size_t fraction = ++i;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9')
        ++i;
    return i == text.size() && i > fraction;
}

std::string localized(std::string plain, std::string_view localeName) {
    const size_t point = plain.find('.');
    if (point != std::string::npos) plain.replace(point, 1, decimalSign(localeName));
    return plain;
}

std::string shortestText(double value, bool asFloat) {
    char buffer[64];
    const auto result =
        asFloat ? std::to_chars(buffer, buffer + sizeof buffer, static_cast<float>(value),
                                std::chars_format::fixed)
                : std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    if (result.ec != std::errc{}) return {};
    return std::string(buffer, result.ptr);
}

} // namespace

bool isBlankText(std::string_view text) {
    return text.find_first_not_of(" \t\r\n\f\v") == std::string_view::npos;
}

std::optional<float> acceptedSum(std::string_view text, std::string_view localeName) {
    const std::optional<float> sum = parseLocalizedAmount(text, localeName);
    if (!sum || !std::isfinite(*sum) || std::signbit(*sum)) return std::nullopt;
    return sum;
}

float sumFieldValue(std::string_view text, std::string_view localeName) {
    if (isBlankText(text)) return 0.0f;
    if (const std::optional<float> sum = parseLocalizedAmount(text, localeName)) return *sum;
    return core::floatFromText(text);
}

std::string storedAmountText(float sum) {
    return shortestText(sum, /*asFloat=*/true);
}

std::string sumFieldTextFor(const core::Value& amount, std::string_view localeName) {
    switch (amount.kind()) {
    case core::Kind::String:
        return isPlainDecimal(amount.text()) ? localized(amount.text(), localeName) : amount.text();
    case core::Kind::Float:
        if (!std::isfinite(amount.asFloat())) return {};
        return localized(shortestText(amount.asFloat(), /*asFloat=*/true), localeName);
    case core::Kind::Double:
        if (!std::isfinite(amount.asDouble())) return {};
        return localized(shortestText(amount.asDouble(), /*asFloat=*/false), localeName);
    case core::Kind::Int:
    case core::Kind::Integer:
        return std::to_string(amount.toInteger());
    default:
        return {};
    }
}

std::string localeDecimalSign(std::string_view localeName) {
    return decimalSign(localeName);
}

} // namespace zifora::posting
