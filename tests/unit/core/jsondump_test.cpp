#include "core/jsondump.h"
#include "core/keyedarchive.h"
#include "core/record.h"
#include "core/utf8.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>

using namespace zifora;
using core::Value;

TEST(JsonDump, FloatsAreShortestTextsThatReadBackBitForBit) {
    // Walk through many float bit patterns, including awkward ones near rounding edges.
    uint32_t bits = 0x3f800000u;
    for (int i = 0; i < 20000; ++i) {
        bits = bits * 1664525u + 1013904223u;
        float f = std::bit_cast<float>(bits);
        if (!std::isfinite(f)) continue;
        auto back = core::loadTaggedJson(core::taggedJson(Value::floatValue(f)));
        ASSERT_TRUE(back.has_value());
        ASSERT_EQ(std::bit_cast<uint32_t>(back->asFloat()), bits)
            << core::taggedJson(Value::floatValue(f));
    }
    EXPECT_EQ(core::taggedJson(Value::floatValue(0.1f)), "{\"float\":0.1}");
    EXPECT_EQ(core::taggedJson(Value::floatValue(19)), "{\"float\":19}");
    EXPECT_EQ(core::taggedJson(Value::floatValue(NAN)), "{\"float\":\"nan\"}");
}

TEST(JsonDump, DatesAreIsoUtcAndExact) {
    core::Date d = core::Date::fromUnix(1704153600.25); // 2024-01-02T00:00:00.25Z
    EXPECT_EQ(core::isoDate(d), "2024-01-02T00:00:00.250Z");
    for (double t : {0.0, -1.5, 725846400.123456789, 1e9 + 1.0 / 3.0, -3e10}) {
        core::Date date{t};
        auto back = core::parseIsoDate(core::isoDate(date));
        ASSERT_TRUE(back.has_value()) << core::isoDate(date);
        EXPECT_EQ(back->sinceReferenceDate, t) << core::isoDate(date);
    }
    EXPECT_FALSE(core::parseIsoDate("2024-13-01T00:00:00Z").has_value());
    EXPECT_FALSE(core::parseIsoDate("2024-01-01T00:00:00+02:00").has_value());
    // Dates beyond the calendar's four-digit years are kept as plain numbers.
    EXPECT_EQ(core::taggedJson(Value::date(core::Date{1e300})), "{\"date\":1e+300}");
}

TEST(JsonDump, DumpLoadDumpIsTheIdentity) {
    auto client = core::Record::make(core::RecordClass::Client, core::Date{1000.5});
    auto year = core::Record::make(core::RecordClass::Year, core::Date{1000.5});
    client->theYears().push_back(year);
    auto item = core::Record::make(core::RecordClass::Item, core::Date{-5});
    item->set(
        "misc6",
        Value::dict({{"a", Value::array({Value::integer(INT64_MIN), Value::data("\x01\xff")})}}));
    item->set("amount", Value::floatValue(119.99f));
    item->set("title", Value::string("Zeile \"1\"\n\tmit Ümlaut 😀"));
    client->items().push_back(item);
    auto foreign = core::Record::makeForeign("NSColor", {"NSColor", "NSObject"});
    foreign->set("NSRGB", Value::data("0 0 0"));
    Value root = Value::dict(
        {{"clients", Value::array({Value::record(client)})}, {"extra", Value::record(foreign)}});
    std::string first = core::dumpJson(root);
    auto loaded = core::loadJson(first);
    ASSERT_TRUE(loaded.has_value()) << loaded.error().message;
    EXPECT_EQ(core::dumpJson(*loaded), first);
    // And through the archive as well.
    auto decoded = core::decodeKeyedArchive(core::encodeKeyedArchive(*loaded));
    ASSERT_TRUE(decoded.has_value()) << decoded.error().message;
    EXPECT_EQ(core::dumpJson(*decoded), first);
}

TEST(JsonDump, LoadRefusesMalformedInputWithItsPlace) {
    auto wrongKind = core::loadJson(
        R"({"clients":[{"class":"Client","properties":{"company":{"strng":"x"}}}]})");
    ASSERT_FALSE(wrongKind.has_value());
    EXPECT_NE(wrongKind.error().message.find("clients[0].properties.company"), std::string::npos);
    EXPECT_FALSE(core::loadJson("{\"clients\":[1]}").has_value());
    EXPECT_FALSE(core::loadJson("not json").has_value());
    EXPECT_FALSE(core::loadTaggedJson(R"({"int":3000000000})").has_value());
    EXPECT_FALSE(core::loadTaggedJson(R"({"integer":18446744073709551615})").has_value());
    EXPECT_TRUE(core::loadTaggedJson(R"({"integer":-9223372036854775808})").has_value());
}

TEST(JsonDump, TextThatIsNotUtf8IsDumpedAsReplacementCharacters) {
    // Bytes an archive may hold in a text of single-byte characters: Latin-1, an encoded
    // surrogate and an overlong form. The dump stays UTF-8 and reads back.
    for (std::string_view bytes : {"M\xFCller", "a\xED\xA0\x80z", "\xC0\xAF", "\xF4\x90\x80\x80"}) {
        const std::string json = core::taggedJson(Value::string(std::string(bytes)));
        auto back = core::loadTaggedJson(json);
        ASSERT_TRUE(back.has_value()) << json;
        EXPECT_EQ(back->text(), core::repairedUtf8(bytes));
    }
    EXPECT_EQ(core::taggedJson(Value::string("a\xED\xA0\x80z")),
              "{\"string\":\"a\uFFFD\uFFFD\uFFFDz\"}");
}

TEST(JsonDump, DataIsBase64) {
    const std::string bytes("\x01\xff\x00", 3);
    EXPECT_EQ(core::taggedJson(Value::data(bytes)), "{\"data\":\"Af8A\"}");
    EXPECT_EQ(core::loadTaggedJson(R"({"data":"Af8A"})")->text(), bytes);
    EXPECT_EQ(core::loadTaggedJson(R"({"data":"Af8"})")->text(), "\x01\xff");
    EXPECT_EQ(core::loadTaggedJson(R"({"data":"Af8A\nAQ=="})")->text(), bytes + "\x01");
    EXPECT_FALSE(core::loadTaggedJson(R"({"data":"AQ==AQ=="})").has_value());
    EXPECT_FALSE(core::loadTaggedJson(R"({"data":"Af8AA"})").has_value());
    EXPECT_FALSE(core::loadTaggedJson(R"({"data":"Af-_"})").has_value());
}

// The archive reads objects of these classes as plain values, whatever they hold: a record
// loaded under such a name would be written as something that does not read back.
TEST(JsonDump, LoadRefusesRecordsUnderTheClassNamesOfPlainValues) {
    for (const char* name : {"NSArray", "NSMutableDictionary", "NSString", "NSDate", "NSData"}) {
        const std::string json = std::string("{\"clients\":[{\"class\":\"Client\",\"theYears\":[") +
                                 "{\"class\":\"" + name + "\",\"properties\":{}}]}]}";
        auto loaded = core::loadJson(json);
        ASSERT_FALSE(loaded.has_value()) << name;
        EXPECT_NE(loaded.error().message.find("clients[0].theYears[0]: \"" + std::string(name) +
                                              "\" is the class of a plain value"),
                  std::string::npos)
            << loaded.error().message;
    }
    // Foreign classes of other names are kept, and read back as records.
    auto foreign =
        core::loadJson("{\"x\":{\"class\":\"NSColor\",\"properties\":{\"r\":{\"int\":1}}}}");
    ASSERT_TRUE(foreign.has_value());
    auto back = core::decodeKeyedArchive(core::encodeKeyedArchive(*foreign));
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(core::dumpJson(*back), core::dumpJson(*foreign));
}

// Dates outside the years 1–9999 are dumped as their seconds, and those that are no finite
// number as "nan", "inf" or "-inf": each loads again to the same date.
TEST(JsonDump, DatesDumpedAsNumbersLoadAgain) {
    for (double t : {1e300, -1e300, double(NAN), double(INFINITY), -double(INFINITY)}) {
        const Value date = Value::date(core::Date{t});
        auto back = core::loadTaggedJson(core::taggedJson(date));
        ASSERT_TRUE(back.has_value()) << core::taggedJson(date);
        EXPECT_EQ(core::taggedJson(*back), core::taggedJson(date));
    }
    EXPECT_EQ(core::taggedJson(Value::date(core::Date{-1e300})), "{\"date\":-1e+300}");
    EXPECT_EQ(core::taggedJson(Value::date(core::Date{NAN})), "{\"date\":\"nan\"}");
}
