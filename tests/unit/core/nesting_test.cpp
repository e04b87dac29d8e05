// One limit of nesting for every reader and writer: whatever one of them takes in, the others
// write and read back; what nests deeper is refused where it comes in, and far deeper input
// is refused without exhausting the stack.

#include "core/jsondump.h"
#include "core/keyedarchive.h"
#include "core/record.h"
#include "core/xmlplist.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <unistd.h>

using namespace zifora;
using namespace zifora::core;

namespace {

// A value `levels` deep as `nestsWithin` counts: lists around a text.
Value listsAround(int levels) {
    Value v = Value::string("innen");
    for (int i = 0; i < levels; ++i)
        v = Value::array({v});
    return v;
}

// The tagged JSON of the same value.
std::string taggedLists(int levels) {
    std::string json = "{\"string\":\"innen\"}";
    for (int i = 0; i < levels; ++i)
        json = "{\"array\":[" + json + "]}";
    return json;
}

// A book whose deepest item holds `value`: root, clients, Client, theYears, Year, thelists,
// Thelist, items, Item.
Value bookWithDeepestItem(const Value& value) {
    auto item = Record::make(RecordClass::Item, Date{0});
    item->set("deep", value);
    auto period = Record::make(RecordClass::Thelist, Date{0});
    period->items().push_back(item);
    auto year = Record::make(RecordClass::Year, Date{0});
    year->thelists().push_back(period);
    auto client = Record::make(RecordClass::Client, Date{0});
    client->theYears().push_back(year);
    return Value::dict({{"clients", Value::array({Value::record(client)})}});
}

bool hasError(const auto& result, std::string_view text) {
    return !result && result.error().message.find(text) != std::string::npos;
}

} // namespace

TEST(Nesting, CountsLevelsAsTheKeyedArchiveNestsItsObjects) {
    EXPECT_TRUE(nestsWithin(Value::string("x"), 0));
    EXPECT_FALSE(nestsWithin(Value::image("client"), 0)); // an image object names it
    EXPECT_TRUE(nestsWithin(Value::image("client"), 1));
    EXPECT_TRUE(nestsWithin(Value::array({}), 0));
    EXPECT_FALSE(nestsWithin(listsAround(3), 2));
    EXPECT_TRUE(nestsWithin(listsAround(3), 3));
    auto bare = Record::makeBare(RecordClass::Item);
    EXPECT_FALSE(nestsWithin(Value::record(bare), 1)); // its properties are an object
    EXPECT_TRUE(nestsWithin(Value::record(bare), 2));
    auto item = Record::make(RecordClass::Item, Date{0}); // with its row icon
    EXPECT_FALSE(nestsWithin(Value::record(item), 2));
    EXPECT_TRUE(nestsWithin(Value::record(item), 3));
    // The deepest value of a book stands kBookNesting levels down.
    EXPECT_TRUE(nestsWithin(bookWithDeepestItem(listsAround(5)), kBookNesting + 5));
    EXPECT_FALSE(nestsWithin(bookWithDeepestItem(listsAround(5)), kBookNesting + 4));
}

TEST(Nesting, TheWriterStoresExactlyWhatTheReaderTakes) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("zifora-nesting-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const std::string path = (folder / "Zifora.zfdb4").string();
    for (int levels : {kMaxValueNesting - 1, kMaxValueNesting}) {
        const Value book = bookWithDeepestItem(listsAround(levels));
        ASSERT_TRUE(writeKeyedArchiveFile(path, book).has_value()) << levels;
        auto back = readKeyedArchiveFile(path);
        ASSERT_TRUE(back.has_value()) << levels;
        // The dump of what was read loads again, and loads to the same archive.
        auto loaded = loadJson(dumpJson(*back));
        ASSERT_TRUE(loaded.has_value()) << levels;
        EXPECT_EQ(encodeKeyedArchive(*loaded), encodeKeyedArchive(book));
    }
    // One level more is not written (the file keeps the last book), nor loaded from JSON,
    // nor read from an archive made without the check.
    const Value tooDeep = bookWithDeepestItem(listsAround(kMaxValueNesting + 1));
    EXPECT_TRUE(hasError(writeKeyedArchiveFile(path, tooDeep), "nested more than 200"));
    EXPECT_TRUE(readKeyedArchiveFile(path).has_value());
    EXPECT_TRUE(hasError(loadJson(dumpJson(tooDeep)), "nested more than 200"));
    EXPECT_TRUE(hasError(decodeKeyedArchive(encodeKeyedArchive(tooDeep)), "nested"));
    std::filesystem::remove_all(folder);
}

TEST(Nesting, APropertyFitsIntoAnyRecordWhereverItsRecordStands) {
    // A client stands higher than an item, but its properties may nest no deeper: a template
    // of the client copies its values into items.
    auto client = Record::makeBare(RecordClass::Client);
    client->set("deep", listsAround(kMaxValueNesting));
    const Value fits = Value::dict({{"clients", Value::array({Value::record(client)})}});
    EXPECT_TRUE(nestsWithin(fits, kMaxNesting));
    EXPECT_TRUE(decodeKeyedArchive(encodeKeyedArchive(fits)).has_value());
    const auto folder = std::filesystem::temp_directory_path() /
                        ("zifora-nesting-client-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const std::string path = (folder / "Zifora.zfdb4").string();
    EXPECT_TRUE(writeKeyedArchiveFile(path, fits).has_value());
    client->set("deep", listsAround(kMaxValueNesting + 1));
    const Value tooDeep = Value::dict({{"clients", Value::array({Value::record(client)})}});
    EXPECT_FALSE(nestsWithin(tooDeep, kMaxNesting));
    EXPECT_TRUE(hasError(decodeKeyedArchive(encodeKeyedArchive(tooDeep)), "nested more than 200"));
    EXPECT_TRUE(hasError(loadJson(dumpJson(tooDeep)), "nested more than 200"));
    EXPECT_TRUE(hasError(writeKeyedArchiveFile(path, tooDeep), "nested more than 200"));
    std::filesystem::remove_all(folder);
    // Foreign objects keep what they hold: only the whole limit counts for them.
    auto foreign = Record::makeForeign("NSColor", {"NSColor", "NSObject"});
    foreign->set("deep", listsAround(kMaxNesting - 2));
    EXPECT_TRUE(nestsWithin(Value::array({Value::record(foreign)}), kMaxNesting));
}

TEST(Nesting, ATaggedValueFitsIntoAnyRecordOrItIsRefused) {
    auto fits = loadTaggedJson(taggedLists(kMaxValueNesting));
    ASSERT_TRUE(fits.has_value());
    EXPECT_TRUE(nestsWithin(bookWithDeepestItem(*fits), kMaxNesting));
    EXPECT_TRUE(
        hasError(loadTaggedJson(taggedLists(kMaxValueNesting + 1)), "nested more than 190 levels"));
    // Settings are written as an XML property list and read back.
    const Value settings = Value::dict({{"key", *fits}});
    auto xml = writeXmlPlist(settings);
    ASSERT_TRUE(xml.has_value());
    EXPECT_TRUE(readXmlPlist(*xml).has_value());
}

TEST(Nesting, FarDeeperJsonIsRefusedBeforeItIsParsed) {
    for (int levels : {30'000, 1'000'000}) {
        const std::string arrays = std::string(levels, '[') + std::string(levels, ']');
        EXPECT_TRUE(hasError(loadJson(arrays), "JSON is nested more than"));
        EXPECT_TRUE(hasError(loadTaggedJson(arrays), "JSON is nested more than"));
    }
    EXPECT_TRUE(hasError(loadJson("{\"clients\":[],\"x\":" + taggedLists(30'000) + "}"),
                         "JSON is nested more than"));
    // Brackets inside texts are not nesting, whatever escapes stand before them.
    const std::string text =
        "\"" + std::string(1000, '[') + "\\\"\\\\" + std::string(1000, '{') + "\"";
    EXPECT_TRUE(jsonNestsWithin("[" + text + "]", 1));
    EXPECT_TRUE(loadTaggedJson("{\"string\":" + text + "}").has_value());
    EXPECT_TRUE(jsonNestsWithin("[[]]", 2));
    EXPECT_FALSE(jsonNestsWithin("[[[]]]", 2));
    EXPECT_FALSE(jsonNestsWithin("[{\"a\":[", 2)); // malformed input is counted as far as it goes
}

// The writer counts the levels as it writes; at every boundary it agrees with nestsWithin.
TEST(Nesting, TheWriterCountsAsNestsWithinDoes) {
    const auto folder = std::filesystem::temp_directory_path() /
                        ("zifora-nesting-sweep-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const std::string path = (folder / "x.zfdb4").string();
    auto check = [&](const Value& v, const char* shape, int levels) {
        EXPECT_EQ(writeKeyedArchiveFile(path, v).has_value(), nestsWithin(v, kMaxNesting))
            << shape << " " << levels;
    };
    for (int levels = kMaxNesting - 3; levels <= kMaxNesting + 1; ++levels) {
        check(listsAround(levels), "lists", levels);
        check(Value::array({listsAround(levels - 1)}), "array", levels);
        Value image = Value::image("client");
        for (int i = 0; i < levels - 1; ++i)
            image = Value::dict({{"k", image}});
        check(image, "image", levels);
        Value records = Value::record(Record::makeBare(RecordClass::Item));
        for (int i = 0; i < levels - 2; ++i)
            records = Value::array({records});
        check(records, "records", levels);
        auto foreign = Record::makeForeign("NSColor", {});
        foreign->set("n", Value::integer(1));
        Value foreigns = Value::record(foreign);
        for (int i = 0; i < levels - 1; ++i)
            foreigns = Value::array({foreigns});
        check(foreigns, "foreigns", levels);
        check(bookWithDeepestItem(listsAround(levels - kBookNesting)), "book", levels);
    }
    std::filesystem::remove_all(folder);
}
