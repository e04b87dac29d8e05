#pragma once
// The one formatter for the program's format strings ("%@", "%i", "%li", "%d", "%ld", "%lf",
// "%%"). A missing value prints as (null): report rows and exports rely on that.

#include "core/value.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zifora::posting {

/// The plain text form a value takes in "%@": texts and image names as they are, a float
/// with up to 7 significant digits and a double with up to 16 ("19", "7.5", "0.1"), integers
/// and bools as decimal numbers, a date as "2024-03-01 11:00:00 +0000" in UTC, an absent value
/// as "(null)". Numbers always take the point as decimal sign, whatever the locale.
[[nodiscard]] std::string descriptionOf(const core::Value& value);

/// One argument of `formatString`. Texts are held as views: an argument lives for the one
/// call it is made for. A default argument, nullptr, std::nullopt and an empty optional are
/// missing values.
class FormatArg {
  public:
    enum class Kind : uint8_t { Missing, Text, Integer, Float, Double, Value };

    FormatArg() = default;
    FormatArg(std::nullopt_t) {}
    FormatArg(std::nullptr_t) {}
    FormatArg(const char* text)
        : m_kind(text ? Kind::Text : Kind::Missing), m_text(text ? text : "") {}
    FormatArg(std::string_view text) : m_kind(Kind::Text), m_text(text) {}
    FormatArg(const std::string& text) : m_kind(Kind::Text), m_text(text) {}
    FormatArg(const std::optional<std::string>& text)
        : m_kind(text ? Kind::Text : Kind::Missing), m_text(text ? std::string_view(*text) : "") {}
    template <std::integral T>
    FormatArg(T number) : m_kind(Kind::Integer), m_integer(static_cast<int64_t>(number)) {}
    FormatArg(float number) : m_kind(Kind::Float), m_float(number) {}
    FormatArg(double number) : m_kind(Kind::Double), m_double(number) {}
    FormatArg(const core::Value& value)
        : m_kind(value.isAbsent() ? Kind::Missing : Kind::Value), m_value(&value) {}

    [[nodiscard]] Kind kind() const { return m_kind; }
    /// The text for "%@".
    [[nodiscard]] std::string description() const;
    /// The number for "%d", "%i", "%ld", "%li", with dictionary semantics for texts.
    [[nodiscard]] int64_t integer() const;
    /// The number for "%lf".
    [[nodiscard]] double real() const;

  private:
    Kind m_kind = Kind::Missing;
    std::string_view m_text;
    int64_t m_integer = 0;
    float m_float = 0.0f;
    double m_double = 0.0;
    const core::Value* m_value = nullptr;
};

/// Fills a format string from its arguments in order. Conversions: "%@" a value's text,
/// "%d" and "%i" a 32-bit number, "%ld", "%li", "%lld" a 64-bit one, "%u" unsigned, "%f" and
/// "%lf" a number with six decimals (or ".N"), "%%" a percent sign; flags "-", "0", "+", " "
/// and a width work as in C. Numbers take the point whatever the locale. An argument beyond
/// the given ones is missing: "(null)" for "%@", 0 for a number. Anything else after "%" is
/// copied as it stands and takes no argument.
[[nodiscard]] std::string formatString(std::string_view format, std::span<const FormatArg> args);
[[nodiscard]] std::string formatString(std::string_view format,
                                       std::initializer_list<FormatArg> args);
[[nodiscard]] std::string formatString(std::string_view format, std::span<const core::Value> args);

} // namespace zifora::posting
