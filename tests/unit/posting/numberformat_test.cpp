#include "posting/numberformat.h"

#include "posting/currentlocale.h"
#include "posting/formatstring.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace zifora::posting {
namespace {

using core::Value;

class GermanAmounts : public ::testing::Test {
  protected:
    AmountFormats formats{"de_DE"};
};

TEST_F(GermanAmounts, TotalRuleSwitchesToGroupingFrom1000On) {
    const std::vector<std::pair<double, std::string>> cases =
        {
            {999.99, "999,99"},     {-999.99, "-999,99"}, {1000.0, "1.000,00"},
            {-1000.0, "-1.000,00"}, {1234.5, "1.234,50"}, {-1234.5, "-1.234,50"},
            {999.999, "1000,00"}, // the rule looks at the value before rounding
            {-0.001, "-0,00"},    // the negative section, though it rounds to zero
            {0.0, "0,00"},          {-0.0, "0,00"},       {0.004, "0,00"},
        };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(text, formats.byTotalRule(value)) << value;
    EXPECT_EQ("NaN", formats.byTotalRule(std::nan("")));
}

TEST_F(GermanAmounts, RowRuleGivesNoTextForZeroOnly) {
    EXPECT_EQ(std::nullopt, formats.byRowRule(0.0));
    EXPECT_EQ(std::nullopt, formats.byRowRule(-0.0));
    EXPECT_EQ("-0,00", formats.byRowRule(-0.001));
    EXPECT_EQ("1.000,00", formats.byRowRule(1000.0));
    // The missing text is what the rows print.
    EXPECT_EQ("(null) €", formatString("%@ %@", {formats.byRowRule(0.0f), "€"}));
}

TEST_F(GermanAmounts, PaymentRuleKeepsEveryNegativeValuePlain) {
    EXPECT_EQ("1.234,50", formats.byPaymentRule(1234.5));
    EXPECT_EQ("-1234,50", formats.byPaymentRule(-1234.5));
    EXPECT_EQ("999,99", formats.byPaymentRule(999.99));
    EXPECT_EQ("1.000,00", formats.byPaymentRule(1000.0));
}

TEST_F(GermanAmounts, PatternsPadAndRoundTheFloatsValue) {
    EXPECT_EQ("0.012,50", formats.grouped(12.5)); // why small values never get here
    EXPECT_EQ("1.234.567,75", formats.grouped(1234567.8f));
    EXPECT_EQ("0,12", formats.plain(0.125)); // halves go to even
    EXPECT_EQ("0,38", formats.plain(0.375));
    EXPECT_EQ("2,67", formats.plain(2.675f)); // the float lies below 2.675
    EXPECT_EQ("19,00 %", formats.percent(19.0));
    EXPECT_EQ("7,50 %", formats.percent(7.5));
    EXPECT_EQ("1234,00 %", formats.percent(1234.0));
    EXPECT_EQ("-5,00 %", formats.percent(-5.0));
}

TEST(AmountFormatsElsewhere, OtherLocalesShowTheirOwnSigns) {
    const AmountFormats us("en_US");
    EXPECT_EQ("1,234.50", us.grouped(1234.5));
    EXPECT_EQ("999.99", us.byTotalRule(999.99));
    EXPECT_EQ("19.00 %", us.percent(19.0));
    EXPECT_EQ("1,234.50", commaStringFromNumber(1234.5, "en_US"));
}

TEST(NumberPattern, SectionsFollowTheSignBeforeRounding) {
    auto pattern = NumberPattern::make("0.0 'plus';'Null: '0;0.0 'minus'", "de_DE");
    ASSERT_TRUE(pattern.has_value()) << pattern.error().message;
    EXPECT_EQ("1,5 plus", pattern->format(1.5));
    EXPECT_EQ("Null: 0", pattern->format(0.0));
    EXPECT_EQ("0,0 minus", pattern->format(-0.01));
    auto single = NumberPattern::make("0.00", "de_DE");
    ASSERT_TRUE(single.has_value());
    EXPECT_EQ("0,00", single->format(0.0));
    EXPECT_EQ("-3,00", single->format(-3.0));
    EXPECT_FALSE(NumberPattern::make("0;0;0;0", "de_DE").has_value());
}

TEST(CommaString, GroupsAnySizeWithExactlyTwoDecimals) {
    EXPECT_EQ("1.234,50", commaStringFromNumber(1234.5));
    EXPECT_EQ("12,50", commaStringFromNumber(12.5)); // no padding, unlike the grouped pattern
    EXPECT_EQ("0,00", commaStringFromNumber(0.0));
    EXPECT_EQ("-1.234.567,89", commaStringFromNumber(-1234567.891));
}

TEST(PercentString, WritesTheValuesOwnTextAndNothingForNoValue) {
    EXPECT_EQ("", percentStringFromNumber(Value{}));
    EXPECT_EQ("0 %", percentStringFromNumber(Value::intValue(0)));
    EXPECT_EQ("19 %", percentStringFromNumber(Value::floatValue(19.0f)));
    EXPECT_EQ("7.5 %", percentStringFromNumber(Value::floatValue(7.5f)));
    EXPECT_EQ("0.1 %", percentStringFromNumber(Value::floatValue(0.1f)));
    EXPECT_EQ("16 %", percentStringFromNumber(Value::doubleValue(16.0)));
}

TEST(ParseLocalizedAmount, ReadsTheGermanDecimalComma) {
    EXPECT_EQ(1234.56f, parseLocalizedAmount("1.234,56"));
    EXPECT_EQ(1234567.89f, parseLocalizedAmount("1.234.567,89"));
    EXPECT_EQ(119.5f, parseLocalizedAmount("119,5"));
    EXPECT_EQ(-3.0f, parseLocalizedAmount("-3"));
    EXPECT_EQ(-3.5f, parseLocalizedAmount(" -3,5 "));
    EXPECT_EQ(3.0f, parseLocalizedAmount("+3"));
    EXPECT_EQ(42.0f, parseLocalizedAmount("42"));
    EXPECT_EQ(1234.0f, parseLocalizedAmount("1.234"));
    EXPECT_EQ(1234.0f, parseLocalizedAmount("1234"));
    EXPECT_EQ(119.5f, parseLocalizedAmount("119.5"));
    EXPECT_EQ(119.5f, parseLocalizedAmount("119.50"));
    EXPECT_EQ(1.2345f, parseLocalizedAmount("1.2345"));
    EXPECT_EQ(0.5f, parseLocalizedAmount(",5"));
    EXPECT_EQ(-0.5f, parseLocalizedAmount("-,5"));
    EXPECT_EQ(119.0f, parseLocalizedAmount("119,"));
    EXPECT_EQ(0.1f, parseLocalizedAmount("0,1")); // rounded once, straight to float
    EXPECT_EQ(0.1f, parseLocalizedAmount("0,1000000000000000000000001"));
}

TEST(ParseLocalizedAmount, RefusesWhatIsNotWhollyANumber) {
    for (const char* text : {"", "   ", "abc", "12abc", "12,5 €", "€ 12,5", "1e40", "x12"})
        EXPECT_EQ(std::nullopt, parseLocalizedAmount(text)) << text;
}

// The notation of a typed sum is the locale's and nothing else: what a C library or ICU's
// lenient reading would also take is refused.
TEST(ParseLocalizedAmount, RefusesExponentsOtherBasesAndSpecialValues) {
    for (const char* text :
         {"5e3", "5E3", "5e-3", "1,5e2", "1.000e3", "e3", "0x10", "0X1A", "0b101", "inf", "-inf",
          "INF", "Infinity", "nan", "NaN", "-nan", "\u221e", "-\u221e"})
        EXPECT_EQ(std::nullopt, parseLocalizedAmount(text)) << text;
}

TEST(ParseLocalizedAmount, RefusesMisplacedSignsAndGroupsAndTrailingText) {
    for (const char* text : {"5-", "--5", "+-5", "-+5", "- 5", "-", "+", ",", ".", "12,5x", "12,5%",
                             "1\n2", "\u0661\u0662"})
        EXPECT_EQ(std::nullopt, parseLocalizedAmount(text)) << text;
    for (const char* text : {"1 234,56", "1,2,3", "12,5,0", "1.23,4", "12.34.567", ".234", "1..234",
                             "1.234.", "1234.567", "12,5.", "1,234.56"})
        EXPECT_EQ(std::nullopt, parseLocalizedAmount(text)) << text;
    EXPECT_EQ(std::nullopt, parseLocalizedAmount(std::string(40, '9'))) << "beyond the floats";
}

TEST(ParseLocalizedAmount, ReadsOtherLocalesTheirWay) {
    EXPECT_EQ(1234.56f, parseLocalizedAmount("1,234.56", "en_US"));
    EXPECT_EQ(1234.0f, parseLocalizedAmount("1,234", "en_US"));
    EXPECT_EQ(std::nullopt, parseLocalizedAmount("1.234,56", "en_US"));
    EXPECT_EQ(std::nullopt, parseLocalizedAmount("5e3", "en_US"));
    EXPECT_EQ(1234.5f, parseLocalizedAmount("1\u202f234,5", "fr_FR"));
    EXPECT_EQ(1234.5f, parseLocalizedAmount("1 234,5", "fr_FR"));
    EXPECT_EQ(1234.5f, parseLocalizedAmount("1\u2019234.5", "de_CH"));
}

TEST(CurrentLocale, NeutralLocalesMeanGerman) {
    EXPECT_EQ("de_DE", normalizedLocaleName("C"));
    EXPECT_EQ("de_DE", normalizedLocaleName("POSIX"));
    EXPECT_EQ("de_DE", normalizedLocaleName("C.UTF-8"));
    EXPECT_EQ("de_DE", normalizedLocaleName(""));
    EXPECT_EQ("de_DE", normalizedLocaleName("de_DE.UTF-8@euro"));
    EXPECT_EQ("en_GB", normalizedLocaleName("en_GB.ISO-8859-1"));
    EXPECT_EQ("de_DE", currentLocaleName()); // the tests run under de_DE or C
    EXPECT_EQ("de_DE", currentLocaleName(LocaleCategory::Messages));
}

} // namespace
} // namespace zifora::posting
