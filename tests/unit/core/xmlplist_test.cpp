#include "core/xmlplist.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

#include <unistd.h>

namespace zifora::core {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrologue = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                       "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                       "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

std::string document(std::string_view body) {
    return std::string(kPrologue) + "<plist version=\"1.0\">" + std::string(body) + "</plist>\n";
}

PlistNumberKind always(Kind kind) {
    return [kind](std::string_view, int, Kind) { return kind; };
}

Value roundTrip(const Value& value, const PlistNumberKind& kinds = {}) {
    auto xml = writeXmlPlist(value);
    EXPECT_TRUE(xml.has_value()) << xml.error().message;
    auto back = readXmlPlist(*xml, kinds);
    EXPECT_TRUE(back.has_value()) << back.error().message << "\n" << *xml;
    return back.value_or(Value{});
}

std::string nested(std::string_view open, std::string_view close, int levels) {
    std::string out;
    for (int i = 0; i < levels; ++i)
        out += open;
    for (int i = 0; i < levels; ++i)
        out += close;
    return out;
}

TEST(XmlPlistRoundTrip, KeepsEveryKindAndTheOrderOfKeys) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    Value root = Value::dict({
        {"zuletzt", Value::string("Grüße & <Bücher> \"über\" 'alles' ]]> €")},
        {"Schlüssel <&>", Value::string("  Leerzeichen\n\tbleiben\n")},
        {"leer", Value::string("")},
        {"steuer", Value::floatValue(19.0f)},
        {"pi", Value::doubleValue(3.141592653589793)},
        {"größte", Value::integer(std::numeric_limits<int64_t>::max())},
        {"kleinste", Value::integer(std::numeric_limits<int64_t>::min())},
        {"ja", Value::boolean(true)},
        {"nein", Value::boolean(false)},
        {"datum", Value::date(Date::fromUnix(1704164645))},
        {"bytes", Value::data(bytes)},
        {"liste", Value::array({Value::integer(1), Value::array({}), Value::dict({})})},
        {"innen", Value::dict({{"a", Value::string("b")}})},
    });
    Value back = roundTrip(root);
    ASSERT_EQ(back.kind(), Kind::Dict);
    // Reals read as Double by default.
    EXPECT_EQ(back["steuer"], Value::doubleValue(19.0));
    DictEntries expected = root.asDict();
    expected[3].second = Value::doubleValue(19.0);
    EXPECT_EQ(back.asDict(), expected);
}

TEST(XmlPlistRoundTrip, FloatsComeBackBitForBit) {
    std::vector<float> samples = {0.1f,
                                  19.0f,
                                  -0.0f,
                                  0.0f,
                                  1e-7f,
                                  7.0f,
                                  0.3f,
                                  1.0f / 3.0f,
                                  std::numeric_limits<float>::min(),
                                  std::numeric_limits<float>::denorm_min(),
                                  std::numeric_limits<float>::max(),
                                  -123456.79f};
    std::mt19937 random(20240102);
    while (samples.size() < 20000) {
        float f = std::bit_cast<float>(static_cast<uint32_t>(random()));
        if (std::isfinite(f)) samples.push_back(f);
    }
    ArrayElements elements;
    for (float f : samples)
        elements.push_back(Value::floatValue(f));
    Value back = roundTrip(Value::array(elements), always(Kind::Float));
    ASSERT_EQ(back.asArray().size(), samples.size());
    for (size_t i = 0; i < samples.size(); ++i)
        ASSERT_EQ(back.asArray()[i], Value::floatValue(samples[i])) << samples[i];
}

TEST(XmlPlistRoundTrip, DoublesAndNonFiniteValues) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 2000; ++i) {
        double d = std::bit_cast<double>(static_cast<uint64_t>(random()));
        if (!std::isfinite(d)) continue;
        ASSERT_EQ(roundTrip(Value::doubleValue(d)), Value::doubleValue(d)) << d;
    }
    float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(roundTrip(Value::floatValue(-inf), always(Kind::Float)), Value::floatValue(-inf));
    EXPECT_TRUE(std::isnan(roundTrip(Value::doubleValue(NAN)).asDouble()));
}

TEST(XmlPlistRoundTrip, NumberKindChooserDecidesAndFallsBackWhenTheValueDoesNotFit) {
    Value root = Value::dict({{"klein", Value::integer(5)},
                              {"groß", Value::integer(int64_t{1} << 40)},
                              {"riesig", Value::doubleValue(1e300)},
                              {"innen", Value::array({Value::doubleValue(0.5)})}});
    std::vector<std::pair<std::string, int>> asked;
    auto back = roundTrip(root, [&](std::string_view key, int depth, Kind standard) {
        asked.emplace_back(std::string(key), depth);
        return standard == Kind::Integer ? Kind::Int : Kind::Float;
    });
    EXPECT_EQ(back["klein"], Value::intValue(5));
    EXPECT_EQ(back["groß"], Value::integer(int64_t{1} << 40));
    EXPECT_EQ(back["riesig"], Value::doubleValue(1e300));
    EXPECT_EQ(back["innen"].asArray()[0], Value::floatValue(0.5f));
    std::vector<std::pair<std::string, int>> expected = {
        {"klein", 2}, {"groß", 2}, {"riesig", 2}, {"", 3}};
    EXPECT_EQ(asked, expected);
}

TEST(XmlPlistRoundTrip, ControlCharactersAndCarriageReturnsSurvive) {
    Value text = Value::string("a\rb\r\nc\x01\x1f" + std::string(1, '\0') + "d");
    EXPECT_EQ(roundTrip(text), text);
    // Invalid UTF-8 is written as U+FFFD rather than making the file unreadable.
    EXPECT_EQ(roundTrip(Value::string("a\xff")), Value::string("a\xEF\xBF\xBD"));
}

TEST(XmlPlistWriter, RefusesWhatAPropertyListCannotHold) {
    EXPECT_FALSE(writeXmlPlist(Value::array({Value{}})).has_value());
    EXPECT_FALSE(writeXmlPlist(Value::date(Date::fromUnix(253402300800.0))).has_value());
    EXPECT_FALSE(writeXmlPlist(Value::date(Date{NAN})).has_value());
    EXPECT_TRUE(writeXmlPlist(Value::date(Date::fromUnix(253402300799.0))).has_value());
    EXPECT_TRUE(writeXmlPlist(Value::date(Date::fromUnix(-62135596800.0))).has_value());
    Value deep = Value::integer(1);
    for (int i = 1; i < kXmlPlistMaxDepth; ++i)
        deep = Value::array({deep});
    EXPECT_TRUE(writeXmlPlist(deep).has_value());
    EXPECT_FALSE(writeXmlPlist(Value::array({deep})).has_value());
    // Absent dictionary entries are left out.
    auto xml = writeXmlPlist(Value::dict({{"weg", Value{}}}));
    ASSERT_TRUE(xml.has_value());
    EXPECT_NE(xml->find("<dict/>"), std::string::npos);
}

TEST(XmlPlistReader, UnderstandsTheFormsOtherWritersUse) {
    std::string xml = "\xEF\xBB\xBF" + document(R"(
<!-- a comment -->
<dict>
	<key>a&amp;b</key><string>&lt;&gt;&quot;&apos;&#65;&#x42;&#xE4;&#x1F600;</string>
	<key>cdata</key><string>x<![CDATA[<&>]]>y<!-- inside -->z</string>
	<key>leer</key><string/>
	<key>hex</key><integer> 0x1F </integer>
	<key>plus</key><integer>+7</integer>
	<key>real</key><real>19</real>
	<key>inf</key><real>-infinity</real>
	<key>date</key><date>2001-01-01T00:00:01Z</date>
	<key>data</key><data>
	AAEC
	/w==
	</data>
	<key>t</key><true></true>
	<key>list</key><array/>
</dict>)");
    auto value = readXmlPlist(xml);
    ASSERT_TRUE(value.has_value()) << value.error().message;
    const Value& v = *value;
    EXPECT_EQ(v["a&b"].text(), "<>\"'AB\xC3\xA4\xF0\x9F\x98\x80");
    EXPECT_EQ(v["cdata"].text(), "x<&>yz");
    EXPECT_EQ(v["leer"], Value::string(""));
    EXPECT_EQ(v["hex"], Value::integer(31));
    EXPECT_EQ(v["plus"], Value::integer(7));
    EXPECT_EQ(v["real"], Value::doubleValue(19.0));
    EXPECT_EQ(v["inf"].asDouble(), -std::numeric_limits<double>::infinity());
    EXPECT_EQ(v["date"], Value::date(Date{1}));
    EXPECT_EQ(v["data"], Value::data(std::string("\x00\x01\x02\xff", 4)));
    EXPECT_EQ(v["t"], Value::boolean(true));
    EXPECT_EQ(v["list"], Value::array({}));
}

TEST(XmlPlistReader, RefusesMalformedDocuments) {
    const std::vector<std::string> broken = {
        "",
        "<plist>",
        document("<dict><key>a</key><string>b</string>"),
        document("<dict><key>a</key><string>b</dict></string>"),
        document("<array><dict></array></dict>"),
        document("<dict><key>a</key></dict>"),
        document("<dict><string>a</string></dict>"),
        document("<dict><key>a</key><string>1</string><key>a</key><string>2</string></dict>"),
        document("<dict>text<key>a</key><true/></dict>"),
        document("<string>a &unknown; b</string>"),
        document("<string>a & b</string>"),
        document("<string>&#xD800;</string>"),
        document("<string>&#x110000;</string>"),
        document("<string>a<b/></string>"),
        document("<integer>9223372036854775808</integer>"),
        document("<integer>12abc</integer>"),
        document("<real>1,5</real>"),
        document("<real>1e999</real>"),
        document("<date>2023-02-29T00:00:00Z</date>"),
        document("<date>2023-01-01 00:00:00</date>"),
        document("<data>A</data>"),
        document("<data>AA=A</data>"),
        document("<true>x</true>"),
        document("<uid>1</uid>"),
        document("<plist><true/></plist>"),
        document("<true/><false/>"),
        document(""),
        document("<string>\x01</string>"),
        document("<string>\xC3\x28</string>"),
        document("<string>\xC0\xAF</string>"),
        document("<true/>") + "<true/>",
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><true/></plist>",
        "<!DOCTYPE plist [ <!ENTITY x \"y\"> ]><plist><string>&x;</string></plist>",
        "<dict/>",
        "<plist version=1.0><true/></plist>",
    };
    for (const std::string& xml : broken) {
        auto value = readXmlPlist(xml);
        EXPECT_FALSE(value.has_value()) << xml;
        if (!value) {
            EXPECT_EQ(value.error().message.rfind("line ", 0), 0u) << value.error().message;
        }
    }
}

TEST(XmlPlistReader, EveryTruncationOfAValidDocumentIsAnError) {
    auto xml = writeXmlPlist(
        Value::dict({{"a", Value::array({Value::string("x&y"), Value::floatValue(0.5f)})},
                     {"b", Value::data("abc")}}));
    ASSERT_TRUE(xml.has_value());
    std::string_view full = *xml;
    while (full.ends_with('\n'))
        full.remove_suffix(1);
    for (size_t length = 0; length < full.size(); ++length)
        EXPECT_FALSE(readXmlPlist(full.substr(0, length)).has_value()) << full.substr(0, length);
    EXPECT_TRUE(readXmlPlist(full).has_value());
}

TEST(XmlPlistReader, RefusesNestingDeeperThanTheLimit) {
    EXPECT_TRUE(readXmlPlist(document(nested("<array>", "</array>", kXmlPlistMaxDepth))));
    EXPECT_FALSE(readXmlPlist(document(nested("<array>", "</array>", kXmlPlistMaxDepth + 1))));
    // Far deeper input must not exhaust the stack.
    EXPECT_FALSE(readXmlPlist(document(nested("<array>", "</array>", 1'000'000))));
    EXPECT_FALSE(readXmlPlist(document(nested("<dict><key>k</key>", "</dict>", 100'000))));
}

// ---- Interplay with Python's plistlib, an independent reader and writer of the format.

class XmlPlistPython : public ::testing::Test {
  protected:
    void SetUp() override {
        if (std::system("python3 -c 'import plistlib' >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "python3 with plistlib is not available";
        m_folder = fs::temp_directory_path() /
                   ("zifora-xmlplist-" + std::to_string(::getpid()) + "-" +
                    ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(m_folder);
    }
    void TearDown() override {
        std::error_code ec;
        if (!m_folder.empty()) fs::remove_all(m_folder, ec);
    }

    /// Runs `script` with the plist path as sys.argv[1]; returns its output, or a note of failure.
    std::string runPython(const std::string& script, std::string* output) {
        fs::path file = m_folder / "check.py";
        std::ofstream(file) << script;
        std::string command = "python3 '" + file.string() + "' '" + plist().string() + "' 2>&1";
        FILE* pipe = ::popen(command.c_str(), "r");
        if (!pipe) return "popen failed";
        char buffer[4096];
        size_t got;
        while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
            output->append(buffer, got);
        int status = ::pclose(pipe);
        return status == 0 ? "" : "python3 failed: " + *output;
    }
    fs::path plist() const { return m_folder / "test.plist"; }

    fs::path m_folder;
};

TEST_F(XmlPlistPython, PlistlibReadsWhatWeWrite) {
    Value root = Value::dict({
        {"Grüße <&>", Value::string("Ärger & \"Öl\" < ß > 'x'\nzweite Zeile\r")},
        {"rate", Value::floatValue(0.1f)},
        {"minusnull", Value::floatValue(-0.0f)},
        {"klein", Value::floatValue(1e-7f)},
        {"größte", Value::integer(std::numeric_limits<int64_t>::max())},
        {"ja", Value::boolean(true)},
        {"datum", Value::date(Date::fromUnix(1704164645))},
        {"bytes", Value::data(std::string("\x00\xff\x10", 3))},
        {"liste", Value::array({Value::integer(-1), Value::dict({}), Value::array({})})},
    });
    auto xml = writeXmlPlist(root);
    ASSERT_TRUE(xml.has_value());
    std::ofstream(plist(), std::ios::binary) << *xml;
    std::string output;
    std::string failure = runPython(R"(
import plistlib, struct, sys, datetime
with open(sys.argv[1], 'rb') as f:
    d = plistlib.load(f)
bits = lambda x: struct.pack('<f', x)
assert d['Grüße <&>'] == 'Ärger & "Öl" < ß > \'x\'\nzweite Zeile\r', repr(d['Grüße <&>'])
assert bits(d['rate']) == bits(0.1) and type(d['rate']) is float
assert bits(d['minusnull']) == struct.pack('<f', -0.0)
assert bits(d['klein']) == bits(1e-7)
assert d['größte'] == 2**63 - 1
assert d['ja'] is True
assert d['datum'] == datetime.datetime(2024, 1, 2, 3, 4, 5), d['datum']
assert d['bytes'] == b'\x00\xff\x10'
assert d['liste'] == [-1, {}, []]
print('ok')
)",
                                    &output);
    EXPECT_EQ(failure, "");
}

TEST_F(XmlPlistPython, WeReadWhatPlistlibWrites) {
    std::string output;
    std::string failure = runPython(R"(
import plistlib, sys, datetime
d = {'Größe & <Text>': 'Ümlaut "quoted" \'x\' ]]>', 'rate': 0.1, 'int': -(2**63),
     'yes': False, 'when': datetime.datetime(1999, 12, 31, 23, 59, 58),
     'blob': bytes(range(100)), 'list': [1, 'zwei', [3.5], {}], 'nested': {'a': {'b': True}}}
with open(sys.argv[1], 'wb') as f:
    plistlib.dump(d, f)
)",
                                    &output);
    ASSERT_EQ(failure, "");
    std::ifstream in(plist(), std::ios::binary);
    std::string xml((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    auto value = readXmlPlist(xml, [](std::string_view key, int, Kind standard) {
        return key == "rate" ? Kind::Float : standard;
    });
    ASSERT_TRUE(value.has_value()) << value.error().message;
    const Value& v = *value;
    EXPECT_EQ(v["Größe & <Text>"].text(), "Ümlaut \"quoted\" 'x' ]]>");
    EXPECT_EQ(v["rate"], Value::floatValue(0.1f));
    EXPECT_EQ(v["int"], Value::integer(std::numeric_limits<int64_t>::min()));
    EXPECT_EQ(v["yes"], Value::boolean(false));
    EXPECT_EQ(v["when"], Value::date(Date::fromUnix(946684798)));
    std::string blob;
    for (int i = 0; i < 100; ++i)
        blob += static_cast<char>(i);
    EXPECT_EQ(v["blob"], Value::data(blob));
    EXPECT_EQ(v["list"], Value::array({Value::integer(1), Value::string("zwei"),
                                       Value::array({Value::doubleValue(3.5)}), Value::dict({})}));
    EXPECT_EQ(v["nested"]["a"]["b"], Value::boolean(true));
}

} // namespace
} // namespace zifora::core
