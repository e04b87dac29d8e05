#include "posting/formatstring.h"

#include <gtest/gtest.h>

#include <clocale>
#include <optional>
#include <string>
#include <vector>

namespace zifora::posting {
namespace {

using core::Value;

TEST(FormatString, MissingValuesPrintAsNull) {
    const std::optional<std::string> none;
    EXPECT_EQ("a (null) b", formatString("a %@ b", {none}));
    EXPECT_EQ("(null)|(null)", formatString("%@|%@", {Value{}, nullptr}));
    EXPECT_EQ("x (null) 0", formatString("%@ %@ %d", {"x"})); // beyond the given arguments
    const char* missingText = nullptr;
    EXPECT_EQ("(null)", formatString("%@", {missingText}));
}

TEST(FormatString, FillsEachConversionFromItsArgument) {
    EXPECT_EQ("Posten: 12", formatString("Posten: %li", {12}));
    EXPECT_EQ("3 Jahre", formatString("%ld Jahre", {int64_t{3}}));
    EXPECT_EQ("-7/8", formatString("%d/%i", {-7, 8}));
    EXPECT_EQ("12.500000", formatString("%lf", {12.5f}));
    EXPECT_EQ("0.2 0.3 und 2", formatString("%.1f %.1f und %.0f", {0.25, 0.26, 2.4}));
    EXPECT_EQ("100 % sicher", formatString("100 %% sicher", {}));
    EXPECT_EQ("Zifora_2024_Q1.xml", formatString("Zifora_%@_%@.xml", {"2024", std::string("Q1")}));
    EXPECT_EQ("07|  5|5  |+5|-05.50",
              formatString("%02d|%3d|%-3d|%+ d|%06.2lf", {7, 5, 5, 5, -5.5}));
    // A 32-bit conversion wraps like the C one; the long one doesn't.
    EXPECT_EQ("-2147483648 2147483648",
              formatString("%d %ld", {int64_t{2147483648}, int64_t{2147483648}}));
}

TEST(FormatString, UnknownConversionsStayAndTakeNoArgument) {
    EXPECT_EQ("%COUNT% 5", formatString("%COUNT% %d", {5}));
    EXPECT_EQ("50% x", formatString("50% %@", {"x"}));
    EXPECT_EQ("end %", formatString("end %", {}));
    EXPECT_EQ(1000u, formatString("%99999999999d", {1}).size()); // widths are capped
}

TEST(FormatString, ReadsValuesWithDictionarySemantics) {
    const std::vector<Value> args = {Value::string("19"), Value::floatValue(7.5f),
                                     Value::string("12 Stück"), Value{}};
    EXPECT_EQ("19 7.500000 12 0", formatString("%@ %lf %d %d", args));
}

TEST(FormatString, NumbersKeepThePointUnderAGermanProcessLocale) {
    const std::string previous = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) GTEST_SKIP() << "no de_DE locale";
    const std::string text = formatString("%lf %@ %@", {12.5, 7.5f, Value::doubleValue(0.25)});
    std::setlocale(LC_ALL, previous.c_str());
    EXPECT_EQ("12.500000 7.5 0.25", text);
}

TEST(Description, NumbersDatesAndListsReadAsThePlatformWritesThem) {
    EXPECT_EQ("19", descriptionOf(Value::floatValue(19.0f)));
    EXPECT_EQ("0.1", descriptionOf(Value::floatValue(0.1f)));
    EXPECT_EQ("1234568", descriptionOf(Value::floatValue(1234567.8f)));
    EXPECT_EQ("1.234568e+07", descriptionOf(Value::floatValue(12345678.0f)));
    EXPECT_EQ("0.1", descriptionOf(Value::doubleValue(0.1)));
    EXPECT_EQ("1", descriptionOf(Value::boolean(true)));
    EXPECT_EQ("-5", descriptionOf(Value::intValue(-5)));
    EXPECT_EQ("2001-01-01 00:00:00 +0000", descriptionOf(Value::date({0.0})));
    EXPECT_EQ("2024-02-29 23:30:05 +0000",
              descriptionOf(Value::date(core::Date::fromUnix(1709249405.0))));
    EXPECT_EQ("(\n    a,\n    2\n)",
              descriptionOf(Value::array({Value::string("a"), Value::intValue(2)})));
}

} // namespace
} // namespace zifora::posting
