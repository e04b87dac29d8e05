#include "core/properties.h"
#include "posting/dateformat.h"
#include "posting/formatstring.h"
#include "posting/itementry.h"
#include "posting/numberformat.h"
#include "posting/textcleaning.h"
#include "posting/valuetransformers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zifora::posting {
namespace {

using core::Date;
using core::Value;

TEST(ZapGremlins, TrimsUnassignedAndNonCharactersAtTheEndsOnly) {
    EXPECT_EQ("a;b\r\n", zapGremlinsInString("a;b\r\n")); // a file keeps its line end
    EXPECT_EQ("x\xEF\xBF\xBEy", zapGremlinsInString("\xEF\xBF\xBEx\xEF\xBF\xBEy\xEF\xBF\xBF"));
    EXPECT_EQ("Text", zapGremlinsInString("\xCD\xB8Text\xF3\xA0\x82\x80")); // U+0378, U+E0080
    // Assigned characters stay, private use ones too.
    EXPECT_EQ("\xF3\xB0\x80\x80 \xE2\x82\xAC \xF0\x9F\x98\x80",
              zapGremlinsInString("\xF3\xB0\x80\x80 \xE2\x82\xAC \xF0\x9F\x98\x80"));
    EXPECT_EQ("ok", zapGremlinsInString("ok\xFF"));
    EXPECT_EQ("", zapGremlinsInString("\xEF\xBF\xBE"));
    EXPECT_EQ("", zapGremlinsInString(""));
}

TEST(StrippedStrings, RemoveQuotesAndForNumbersBlanksAndPercentSigns) {
    EXPECT_EQ("Miete Mai", strippedCSVString("\"Miete \"\"Mai\"\"\""));
    EXPECT_EQ("", strippedCSVString(""));
    EXPECT_EQ("19", strippedIllegalString("19 %"));
    EXPECT_EQ("1000,5", strippedIllegalString("\" 1 000,5 \""));
}

TEST(Utf16Length, CountsCharactersAsTheMarkerTestsDo) {
    EXPECT_EQ(3u, utf16Length("\xC3\xA4\xC3\xB6\xC3\xBC")); // three umlauts, six bytes
    EXPECT_EQ(2u, utf16Length("\xF0\x9F\x98\x80"));         // one emoji, two units
    EXPECT_FALSE(attachmentImage(Value::string("\xC3\xA4\xC3\xB6\xC3\xBC")).has_value());
    EXPECT_EQ("attachment", attachmentImage(Value::string("/a/b")));
    EXPECT_FALSE(attachmentImage(Value{}).has_value());
}

// 2024-12-31 23:30 UTC is already New Year in Berlin.
constexpr double kNewYearsEveUtc = 1735687800.0;

TEST(DateFormat, GermanStylesInTheProcessTimeZone) {
    const Date date = Date::fromUnix(kNewYearsEveUtc);
    EXPECT_EQ("01.01.25", dateString(date, DateStyle::Short));
    EXPECT_EQ("01.01.2025", dateString(date, DateStyle::Medium));
    const DateFormatter rows(DateStyle::Short, "de_DE");
    EXPECT_EQ("31.12.24", rows.format(Date::fromUnix(kNewYearsEveUtc - 3600.0)));
}

TEST(DateFormat, AddingDaysIgnoresTheCalendar) {
    const Date start = Date::fromUnix(1711796400.0); // 2024-03-30 12:00 in Berlin
    const Date next = dateByAddingDays(start, 1);
    EXPECT_EQ(start.sinceReferenceDate + 86400.0, next.sinceReferenceDate);
    // Summer time began overnight, so the wall clock shows 13:00 the next day.
    EXPECT_EQ("31.03.24", dateString(next, DateStyle::Short));
    EXPECT_EQ(start.sinceReferenceDate - 365 * 86400.0,
              dateByAddingDays(start, -365).sinceReferenceDate);
}

TEST(ValueTransformers, YearsSinceCountWholeCalendarYears) {
    const Date now = Date::fromUnix(1718445600.0); // 2024-06-15 12:00 in Berlin
    const auto yearsBefore = [&](double years, double days) {
        return Value::date(dateByAddingDays(now, -static_cast<int64_t>(years * 365 + days)));
    };
    EXPECT_EQ("3 Jahre", yearsSinceText(yearsBefore(3, 2), now));
    EXPECT_EQ("1 Jahr", yearsSinceText(yearsBefore(2, -2), now)); // a couple of days short
    EXPECT_EQ("1 Jahr", yearsSinceText(yearsBefore(0, 10), now));
    EXPECT_EQ("1 Jahr", yearsSinceText(Value::date(dateByAddingDays(now, 900)), now));
    EXPECT_EQ("", yearsSinceText(Value::string("2020"), now));
}

TEST(ValueTransformers, ColoursAndMarks) {
    EXPECT_EQ(kNegativeColour, amountColour(Value::floatValue(-0.01f)));
    EXPECT_EQ(kPositiveColour, amountColour(Value::floatValue(0.0f)));
    EXPECT_EQ(kOpenItemColour, openItemColour(Value::boolean(true)));
    EXPECT_EQ("\u2030", itemTaxMark(Value::boolean(true)));
    EXPECT_EQ("19 %", floatToPercentString(Value::intValue(19)));

    core::Properties entry;
    EXPECT_EQ(kBlack, cashEntryColour(&entry));
    entry.set("sumAusgabe", Value::floatValue(5.0f));
    EXPECT_EQ(kNegativeColour, cashEntryColour(&entry));
    entry.set("sumEinnahme", Value::floatValue(5.0f));
    EXPECT_EQ(kPositiveColour, cashEntryColour(&entry)); // income wins
    EXPECT_EQ(kBlack, cashEntryColour(nullptr));
}

} // namespace
} // namespace zifora::posting

namespace zifora::posting {
namespace {

// A date outside the years 1 to 9999, or no number at all, shows as nothing: in reports, in
// %@ (the accounts' CSV export, a tax rate's label), in the age of an asset and in the stamp.
TEST(AbsurdDates, ShowAsNothingAndStampTheirLowest32Bits) {
    const DateFormatter rows(DateStyle::Short, "de_DE");
    for (double t : {1e300, -1e300, double(NAN), double(INFINITY), 3e11, -7e10}) {
        const Date date{t};
        EXPECT_EQ(rows.format(date), "") << t;
        EXPECT_EQ(descriptionOf(Value::date(date)), "") << t;
        EXPECT_EQ(formatString("\"%@\";\"%@\"\n", {Value::string("4400"), Value::date(date)}),
                  "\"4400\";\"\"\n");
        EXPECT_EQ(percentStringFromNumber(Value::date(date)), " %");
        EXPECT_EQ(yearsSinceText(Value::date(date), Date::fromUnix(1.7e9)), "");
        EXPECT_EQ(yearsSinceText(Value::date(Date::fromUnix(1.6e9)), date), "");
    }
    // The last second that shows, and the first that does not.
    EXPECT_EQ(rows.format(Date::fromUnix(253402300800.0 - 86400 - 43200)), "30.12.99"); // noon
    EXPECT_EQ(descriptionOf(Value::date(Date::fromUnix(253402300799.0))),
              "9999-12-31 23:59:59 +0000");
    EXPECT_EQ(descriptionOf(Value::date(Date::fromUnix(253402300800.0))), "");
    // The creation stamp keeps the lowest 32 bits of the whole seconds, for any time.
    EXPECT_EQ(creationStamp(Date::fromUnix(4294967296.0 + 5)), "5");
    EXPECT_EQ(creationStamp(Date::fromUnix(-1.0)), "-1");
    EXPECT_EQ(creationStamp(Date::fromUnix(1e20)), "1661992960"); // 1e20 mod 2^32
    EXPECT_EQ(creationStamp(Date{NAN}), "0");
}

} // namespace
} // namespace zifora::posting
