#pragma once
// Amounts on their way to text, and typed amounts on their way back. Stored amounts are never
// rounded; this is the one place where they are, so every report and export agrees.
//
// Wherever a function takes a locale name, an empty name means the current locale.

#include "core/error.h"
#include "core/value.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zifora::posting {

// The patterns have three sections, for positive values, zero and negative values. "." is the
// decimal sign and "," the group sign; the output shows the signs of the locale.
inline constexpr std::string_view kPlainPattern = "0.00;0.00;-0.00";
/// Four integer places: anything below 1000 would be padded (12.5 reads 0.012,50), which is
/// why the rules below never hand such a value to it.
inline constexpr std::string_view kGroupedPattern = "0,000.00;0,000.00;-0,000.00";
/// Read the German way, the percent pattern is "0,00 %;0,00 %;-0,00 %": two decimals, a
/// blank and a percent sign, with no scaling by 100 (19 reads 19,00 %). This is the same in
/// the notation above, the percent sign quoted so that it stays a plain character.
inline constexpr std::string_view kPercentPattern = "0.00 '%';0.00 '%';-0.00 '%'";

/// One number pattern under one locale, made once and used for many values. A negative value
/// is written by the third section from its absolute value; exactly 0 (either sign) by the
/// second. The section is chosen by the value before rounding, so -0.001 reads -0,00. Rounding
/// is to the nearest hundredth, halves to even, of the value as given.
class NumberPattern {
  public:
    /// Fails on a pattern ICU can't read.
    [[nodiscard]] static core::Result<NumberPattern> make(std::string_view pattern,
                                                          std::string_view localeName = {});
    NumberPattern(NumberPattern&&) noexcept;
    NumberPattern& operator=(NumberPattern&&) noexcept;
    ~NumberPattern();

    [[nodiscard]] std::string format(double value) const;

  private:
    struct Sections;
    explicit NumberPattern(std::unique_ptr<Sections> sections);
    std::unique_ptr<Sections> m_sections;
};

/// The three patterns of the reports and the rules that choose between them. Reports make one
/// per run and reuse it for all rows.
class AmountFormats {
  public:
    explicit AmountFormats(std::string_view localeName = {});
    AmountFormats(AmountFormats&&) noexcept;
    ~AmountFormats();

    [[nodiscard]] std::string plain(double value) const;
    [[nodiscard]] std::string grouped(double value) const;
    [[nodiscard]] std::string percent(double value) const;

    /// Sums of a report and the figures of the sheets: plain strictly between -1000 and 1000,
    /// 0 included; grouped from 1000 on, at -1000 and below, and for not-a-number.
    [[nodiscard]] std::string byTotalRule(double value) const;
    /// Amounts of an item row: as the total rule, except that 0 gets no text at all. The
    /// missing text then prints as (null) in its format, and that is what the rows show.
    [[nodiscard]] std::optional<std::string> byRowRule(double value) const;
    /// The payments of an advance return and the income sums: plain below 1000, so a negative
    /// value is always plain however large (-1234.5 reads -1234,50); grouped from 1000 on.
    [[nodiscard]] std::string byPaymentRule(double value) const;

  private:
    NumberPattern m_plain;
    NumberPattern m_grouped;
    NumberPattern m_percent;
};

/// True where the total rule (and the row rule for non-zero values) picks the plain pattern.
[[nodiscard]] bool totalRuleIsPlain(double value) noexcept;

/// The decimal style of the locale with group signs and exactly two decimals, for any size
/// of value: 1234.5 reads 1.234,50 under German. Makes its own formatter on each call.
[[nodiscard]] std::string commaStringFromNumber(double value, std::string_view localeName = {});

/// A rate as a list or a label shows it: the value's plain text form, a blank and a percent
/// sign ("%@ %%"), so 19 gives "19 %" and 7.5 gives "7.5 %". An absent value gives "".
[[nodiscard]] std::string percentStringFromNumber(const core::Value& value);

/// A typed amount in the locale's own notation, as the form's sum field takes it:
/// "1.234,56", "119,5" and "-3" under German. Blanks around the text are ignored. Under a
/// locale with a decimal comma, a text without a comma and with one point followed by one,
/// two or more than three digits takes the point as the decimal sign ("119.5"), while
/// "1.234" stays one thousand two hundred thirty-four. Group signs stand between groups of
/// three digits only. Gives nothing for an empty text, for anything that is not wholly such
/// a number (exponents as in "5e3", hexadecimal, "inf", "nan", other letters or signs), and
/// for values beyond the float range.
[[nodiscard]] std::optional<float> parseLocalizedAmount(std::string_view text,
                                                        std::string_view localeName = {});

} // namespace zifora::posting
