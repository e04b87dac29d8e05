// Hostile and damaged keyed archives and binary property lists: every one must give a value
// or an error, never a crash, a hang, an out-of-bounds read or a stack overflow. And a tree of
// every kind of value must come back from the archive unchanged.

#include "core/binaryplist.h"
#include "core/keyedarchive.h"
#include "core/record.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>

namespace zifora::core {
namespace {

using Entries = std::vector<std::pair<std::string, uint64_t>>;

// ---------------------------------------------------------------------------------------
// Builders

/// Assembles a binary property list from encoded objects, with a consistent offset table
/// and trailer.
std::string rawPlist(const std::vector<std::string>& objects, uint64_t top = 0,
                     unsigned refSize = 1) {
    std::string out = "bplist00";
    std::vector<uint64_t> offsets;
    for (const auto& o : objects) {
        offsets.push_back(out.size());
        out += o;
    }
    const uint64_t table = out.size();
    const unsigned offsetSize = table < 0x100 ? 1 : (table < 0x10000 ? 2 : 4);
    auto put = [&](uint64_t v, unsigned width) {
        for (unsigned i = width; i > 0; --i)
            out += static_cast<char>((v >> (8 * (i - 1))) & 0xFF);
    };
    for (uint64_t off : offsets)
        put(off, offsetSize);
    out.append(6, '\0');
    out += static_cast<char>(offsetSize);
    out += static_cast<char>(refSize);
    put(objects.size(), 8);
    put(top, 8);
    put(table, 8);
    return out;
}

/// Builds keyed archives object by object, including ones our writer would never make.
class ArchiveBuilder {
  public:
    ArchiveBuilder() { m_objects.push_back(m_w.addString("$null")); }

    uint64_t text(std::string_view s) { return m_w.addString(s); }
    uint64_t uid(uint32_t n) { return m_w.addUid(n); }
    uint64_t integer(int64_t n) { return m_w.addInteger(n); }
    uint64_t array(const std::vector<uint64_t>& members) { return m_w.addArray(members); }
    uint64_t uids(const std::vector<uint32_t>& members) {
        std::vector<uint64_t> refs;
        for (uint32_t m : members)
            refs.push_back(uid(m));
        return array(refs);
    }
    uint64_t dict(const Entries& entries) {
        std::vector<uint64_t> keys, values;
        for (const auto& [k, v] : entries)
            keys.push_back(text(k)), values.push_back(v);
        return m_w.addDict(keys, values);
    }
    /// Nine bytes to be patched later into something the writer cannot express.
    uint64_t placeholder(char fill) { return m_w.addData(std::string(8, fill)); }
    /// An empty list whose members are set later, so that it can contain itself.
    uint64_t reservedList() { return m_w.reserve(); }
    void setList(uint64_t list, const std::vector<uint64_t>& members) {
        m_w.setArray(list, members);
    }

    /// Appends an entry to $objects and returns its UID.
    uint32_t object(uint64_t plistIndex) {
        m_objects.push_back(plistIndex);
        return static_cast<uint32_t>(m_objects.size() - 1);
    }
    uint32_t reserveObject() { return object(0); }
    void setObject(uint32_t id, uint64_t plistIndex) { m_objects[id] = plistIndex; }
    uint32_t classNamed(std::string_view name) {
        return object(dict(
            {{"$classname", text(name)}, {"$classes", array({text(name), text("NSObject")})}}));
    }
    uint32_t instance(uint32_t cls, Entries fields) {
        fields.insert(fields.begin(), {"$class", uid(cls)});
        return object(dict(fields));
    }

    std::string finish(uint32_t root = 1) {
        return finishWith({{"$archiver", text("NSKeyedArchiver")},
                           {"$version", integer(100000)},
                           {"$top", dict({{"root", uid(root)}})}});
    }
    /// Finishes with the given top-level entries besides $objects.
    std::string finishWith(Entries top) {
        top.emplace_back("$objects", array(m_objects));
        return m_w.finish(dict(top));
    }

  private:
    BinaryPlistWriter m_w;
    std::vector<uint64_t> m_objects;
};

void patch(std::string& bytes, char fill, std::string_view replacement) {
    const std::string placeholder = "\x48" + std::string(8, fill);
    ASSERT_EQ(replacement.size(), placeholder.size());
    auto at = bytes.find(placeholder);
    ASSERT_NE(at, std::string::npos);
    bytes.replace(at, placeholder.size(), replacement);
}

std::string bigEndian64(uint64_t v) {
    std::string out;
    for (int i = 7; i >= 0; --i)
        out += static_cast<char>((v >> (8 * i)) & 0xFF);
    return out;
}

/// A small but complete book: a client with a year, a period and an item.
Value smallBook() {
    Date now{725846400.0};
    auto client = Record::make(RecordClass::Client, now);
    auto year = Record::make(RecordClass::Year, now);
    auto period = Record::make(RecordClass::Thelist, now);
    auto item = Record::make(RecordClass::Item, now);
    item->set("title", Value::string("Bürobedarf"));
    item->set("finalAmount", Value::floatValue(119.99f));
    period->items().push_back(item);
    year->thelists().push_back(period);
    client->theYears().push_back(year);
    return Value::dict({{"clients", Value::array({Value::record(client)})}});
}

// A value or an error, and what is accepted must be writable and readable again.
void expectValueOrError(std::string_view bytes, const std::string& what) {
    auto v = decodeKeyedArchive(bytes, "damaged");
    if (!v) {
        EXPECT_FALSE(v.error().message.empty()) << what;
        return;
    }
    auto again = decodeKeyedArchive(encodeKeyedArchive(*v), "written again");
    EXPECT_TRUE(again.has_value()) << what << ": " << again.error().message;
}

void expectRefused(const Result<Value>& v, std::string_view fragment) {
    ASSERT_FALSE(v.has_value()) << "accepted, but should fail with \"" << fragment << "\"";
    EXPECT_NE(v.error().message.find(fragment), std::string::npos) << v.error().message;
}

// ---------------------------------------------------------------------------------------
// Damaged files

TEST(HostileArchive, EveryTruncationIsRefused) {
    const std::string whole = encodeKeyedArchive(smallBook());
    ASSERT_TRUE(decodeKeyedArchive(whole).has_value());
    for (size_t n = 0; n < whole.size(); ++n) {
        const std::string_view cut(whole.data(), n);
        EXPECT_FALSE(decodeKeyedArchive(cut).has_value()) << "length " << n;
        EXPECT_FALSE(decodeBinaryPlist(cut, "cut").has_value()) << "length " << n;
    }
}

TEST(HostileArchive, EverySingleBitFlipGivesAValueOrAnError) {
    const std::string original = encodeKeyedArchive(
        Value::dict({{"a", Value::array({Value::intValue(7), Value::string("ä"),
                                         Value::floatValue(0.5f), Value::date(Date{1})})},
                     {"r", Value::record(Record::makeForeign("W", {"W", "NSObject"}))}}));
    for (size_t bit = 0; bit < original.size() * 8; ++bit) {
        std::string flipped = original;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
        expectValueOrError(flipped, "bit " + std::to_string(bit));
        (void)decodeBinaryPlist(flipped, "flipped");
    }
}

// ---------------------------------------------------------------------------------------
// Frames, counts and references

TEST(HostileArchive, FramesThatDoNotFitTheFileAreRefused) {
    const std::string good = rawPlist({"\xA1\x01", "\x10\x05"});
    ASSERT_TRUE(decodeBinaryPlist(good, "p").has_value());
    const size_t trailer = good.size() - 32;
    auto with = [&](size_t at, std::string_view bytes) {
        std::string s = good;
        s.replace(at, bytes.size(), bytes);
        return s;
    };
    // An offset pointing at the offset table itself, one into the header, one past the file.
    expectRefused(decodeBinaryPlist(with(trailer - 1, "\x0C"), "p"), "outside the object table");
    expectRefused(decodeBinaryPlist(with(trailer - 1, "\x03"), "p"), "outside the object table");
    expectRefused(decodeBinaryPlist(with(trailer - 1, "\xFF"), "p"), "outside the object table");
    // The table's own offset beyond the file, and before the first object.
    expectRefused(decodeBinaryPlist(with(trailer + 24, bigEndian64(1ull << 62)), "p"),
                  "offset table lies outside");
    expectRefused(decodeBinaryPlist(with(trailer + 24, bigEndian64(3)), "p"),
                  "offset table lies outside");
    // Object counts whose table would overflow 64 bits or not fill the room exactly.
    expectRefused(decodeBinaryPlist(with(trailer + 8, bigEndian64(1ull << 63)), "p"),
                  "does not fit");
    expectRefused(decodeBinaryPlist(with(trailer + 8, bigEndian64(1)), "p"), "does not fit");
    expectRefused(decodeBinaryPlist(good + "x", "p"), "");
    // Root beyond the objects; field widths of zero and nine.
    expectRefused(decodeBinaryPlist(with(trailer + 16, bigEndian64(2)), "p"), "as root");
    expectRefused(decodeBinaryPlist(with(trailer + 6, std::string(1, '\0')), "p"),
                  "impossible field sizes");
    expectRefused(decodeBinaryPlist(with(trailer + 7, "\x09"), "p"), "impossible field sizes");
}

TEST(HostileArchive, AbsurdCountsAreRefusedWithoutAllocating) {
    const std::string huge = "\x13" + bigEndian64(1ull << 60);
    for (char marker : {'\xAF', '\xDF', '\xCF', '\x4F', '\x5F'})
        expectRefused(decodeBinaryPlist(rawPlist({std::string(1, marker) + huge}), "p"), "");
    // 2^63 UTF-16 units would overflow the byte count.
    expectRefused(decodeBinaryPlist(rawPlist({"\x6F\x13" + bigEndian64(1ull << 63)}), "p"),
                  "too long");

    ArchiveBuilder b;
    const uint32_t cls = b.classNamed("NSMutableArray");
    b.instance(cls, {{"NS.objects", b.placeholder('A')}});
    std::string bytes = b.finish(2);
    // "AF 12 …": an array claiming 2^31 members, where nine bytes stood.
    patch(bytes, 'A', std::string("\xAF\x12\x80\x00\x00\x00", 6) + std::string(3, '\0'));
    expectRefused(decodeKeyedArchive(bytes), "more than the file holds");
}

TEST(HostileArchive, ReferencesBeyondTheObjectsAreRefused) {
    // A plist array whose member is object 5 of 2.
    expectRefused(decodeBinaryPlist(rawPlist({"\xA1\x05", "\x10\x01"}), "p"),
                  "refers to object 5, but there are 2");
    // References too narrow to reach every object.
    std::vector<std::string> many(300, std::string("\x10\x00", 2));
    many[0] = "\xA0";
    expectRefused(decodeBinaryPlist(rawPlist(many), "p"), "too narrow");

    ArchiveBuilder b;
    const uint32_t cls = b.classNamed("NSMutableArray");
    b.instance(cls, {{"NS.objects", b.uids({0, 40})}});
    expectRefused(decodeKeyedArchive(b.finish(2)), "a reference to object 40, but there are 3");
    expectRefused(decodeKeyedArchive(ArchiveBuilder().finish(9)), "a reference to object 9");
}

TEST(HostileArchive, UidsBeyond32BitsAreRefused) {
    expectRefused(decodeBinaryPlist(rawPlist({"\x87" + bigEndian64(1ull << 32)}), "p"),
                  "reference beyond range");

    ArchiveBuilder b;
    const uint32_t cls = b.classNamed("NSMutableArray");
    b.instance(cls, {{"NS.objects", b.array({b.placeholder('U')})}});
    std::string bytes = b.finish(2);
    patch(bytes, 'U', "\x87" + bigEndian64(1ull << 32));
    expectRefused(decodeKeyedArchive(bytes), "reference beyond range");
}

// ---------------------------------------------------------------------------------------
// The archive's own structure

TEST(HostileArchive, WrongArchiverOrVersionIsRefused) {
    auto archive = [](std::string_view archiver, bool versionAsText, int64_t version) {
        ArchiveBuilder b;
        b.classNamed("NSObject");
        return b.finishWith({{"$archiver", b.text(archiver)},
                             {"$version", versionAsText ? b.text("100000") : b.integer(version)},
                             {"$top", b.dict({{"root", b.uid(0)}})}});
    };
    EXPECT_TRUE(decodeKeyedArchive(archive("NSKeyedArchiver", false, 100000)).has_value());
    expectRefused(decodeKeyedArchive(archive("NSArchiver", false, 100000)), "known kind");
    expectRefused(decodeKeyedArchive(archive("", false, 100000)), "known kind");
    expectRefused(decodeKeyedArchive(archive("NSKeyedArchiver", false, 100001)), "version");
    expectRefused(decodeKeyedArchive(archive("NSKeyedArchiver", false, -100000)), "version");
    expectRefused(decodeKeyedArchive(archive("NSKeyedArchiver", true, 0)), "version");

    ArchiveBuilder noTop;
    expectRefused(
        decodeKeyedArchive(noTop.finishWith({{"$archiver", noTop.text("NSKeyedArchiver")}})),
        "is missing");
    ArchiveBuilder noRoot;
    expectRefused(
        decodeKeyedArchive(noRoot.finishWith({{"$archiver", noRoot.text("NSKeyedArchiver")},
                                              {"$top", noRoot.dict({{"other", noRoot.uid(0)}})}})),
        "no root object");
    expectRefused(decodeKeyedArchive(rawPlist({"\xA0"})), "top object is not a dictionary");
}

TEST(HostileArchive, KeysAndObjectsOfDifferentLengthsAreRefused) {
    ArchiveBuilder b;
    const uint32_t dictClass = b.classNamed("NSMutableDictionary");
    const uint32_t key = b.object(b.text("k"));
    const uint32_t value = b.object(b.integer(1));
    b.instance(dictClass, {{"NS.keys", b.uids({key, key})}, {"NS.objects", b.uids({value})}});
    expectRefused(decodeKeyedArchive(b.finish(4)), "has 2 keys but 1 values");

    // The same as the properties of a record.
    ArchiveBuilder r;
    const uint32_t props = r.reserveObject();
    const uint32_t dc = r.classNamed("NSMutableDictionary");
    r.setObject(
        props,
        r.dict({{"$class", r.uid(dc)}, {"NS.keys", r.uids({})}, {"NS.objects", r.uids({0, 0})}}));
    const uint32_t item = r.classNamed("Item");
    const uint32_t root = r.instance(item, {{"properties", r.uid(props)}});
    expectRefused(decodeKeyedArchive(r.finish(root)), "has 0 keys but 2 values");
}

TEST(HostileArchive, PropertiesThatAreNotADictionaryAreRefused) {
    // An Item whose properties are an object dictionary without keys, or a plain list whose
    // members would be mistaken for keys and values.
    for (bool asList : {false, true}) {
        ArchiveBuilder b;
        const uint32_t item = b.classNamed("Item");
        const uint32_t props = asList ? b.object(b.uids({0, 0, 0})) : b.object(b.dict({}));
        const uint32_t root = b.instance(item, {{"properties", b.uid(props)}});
        expectRefused(decodeKeyedArchive(b.finish(root)), "properties that are not a dictionary");
    }
}

// ---------------------------------------------------------------------------------------
// Cycles, depth and sharing

TEST(HostileArchive, ObjectsThatContainThemselvesAreRefused) {
    { // An array object listing itself.
        ArchiveBuilder b;
        const uint32_t cls = b.classNamed("NSMutableArray");
        const uint32_t self = b.reserveObject();
        b.setObject(self, b.dict({{"$class", b.uid(cls)}, {"NS.objects", b.uids({self})}}));
        expectRefused(decodeKeyedArchive(b.finish(self)), "contains itself");
    }
    { // A record whose properties hold the record itself.
        ArchiveBuilder b;
        const uint32_t item = b.reserveObject();
        const uint32_t props = b.reserveObject();
        const uint32_t dc = b.classNamed("NSMutableDictionary");
        const uint32_t ic = b.classNamed("Item");
        const uint32_t key = b.object(b.text("title"));
        b.setObject(item, b.dict({{"$class", b.uid(ic)}, {"properties", b.uid(props)}}));
        b.setObject(props, b.dict({{"$class", b.uid(dc)},
                                   {"NS.keys", b.uids({key})},
                                   {"NS.objects", b.uids({item})}}));
        expectRefused(decodeKeyedArchive(b.finish(item)), "contains itself");
    }
    { // A foreign object whose field is itself.
        ArchiveBuilder b;
        const uint32_t self = b.reserveObject();
        const uint32_t cls = b.classNamed("Widget");
        b.setObject(self, b.dict({{"$class", b.uid(cls)}, {"me", b.uid(self)}}));
        expectRefused(decodeKeyedArchive(b.finish(self)), "contains itself");
    }
    { // A plain list, written in place in a field, that contains itself.
        ArchiveBuilder b;
        const uint32_t cls = b.classNamed("Widget");
        const uint64_t list = b.reservedList();
        b.setList(list, {list});
        const uint32_t root = b.instance(cls, {{"loop", list}});
        expectRefused(decodeKeyedArchive(b.finish(root)), "nested too deeply");
    }
    { // The same list as a plain property list.
        BinaryPlistWriter w;
        const uint64_t list = w.reserve();
        const uint64_t members[] = {list};
        w.setArray(list, members);
        expectRefused(decodeBinaryPlist(w.finish(list), "p"), "contains itself");
    }
}

TEST(HostileArchive, DeepNestingIsRefusedWithoutExhaustingTheStack) {
    constexpr uint32_t kLevels = 10'000;
    { // 10,000 nested plist arrays, written by hand: [[[…[]…]]].
        std::vector<std::string> objects;
        for (uint32_t i = 0; i < kLevels; ++i)
            objects.push_back(std::string("\xA1") + static_cast<char>((i + 1) >> 8) +
                              static_cast<char>((i + 1) & 0xFF));
        objects.emplace_back("\xA0");
        expectRefused(decodeBinaryPlist(rawPlist(objects, 0, 2), "p"), "nested too deeply");
    }
    auto nestedArrays = [](uint32_t levels, bool inPlace) {
        ArchiveBuilder b;
        const uint32_t cls = b.classNamed(inPlace ? "Widget" : "NSMutableArray");
        if (inPlace) {
            uint64_t inner = b.array({});
            for (uint32_t i = 0; i < levels; ++i)
                inner = b.array({inner});
            return b.finish(b.instance(cls, {{"deep", inner}}));
        }
        uint32_t inner = b.instance(cls, {{"NS.objects", b.uids({})}});
        for (uint32_t i = 0; i < levels; ++i)
            inner = b.instance(cls, {{"NS.objects", b.uids({inner})}});
        return b.finish(inner);
    };
    expectRefused(decodeKeyedArchive(nestedArrays(kLevels, false)), "nested too deeply");
    expectRefused(decodeKeyedArchive(nestedArrays(kLevels, true)), "nested too deeply");
    // Nesting that real books never reach, but well within the limit, still reads.
    EXPECT_TRUE(decodeKeyedArchive(nestedArrays(100, false)).has_value());
    EXPECT_TRUE(decodeKeyedArchive(nestedArrays(100, true)).has_value());
}

TEST(HostileArchive, SharedObjectsCannotStandForAnEndlessTree) {
    // Each level is [next, next]: 64 levels stand for 2^64 leaves in a few hundred bytes.
    auto doubling = [](uint32_t levels) {
        ArchiveBuilder b;
        const uint32_t cls = b.classNamed("NSMutableArray");
        uint32_t inner = b.object(b.text("leaf"));
        for (uint32_t i = 0; i < levels; ++i)
            inner = b.instance(cls, {{"NS.objects", b.uids({inner, inner})}});
        return b.finish(inner);
    };
    expectRefused(decodeKeyedArchive(doubling(64)), "shared too often");
    // Moderate sharing reads, and writing it out again reads back the same tree.
    auto moderate = decodeKeyedArchive(doubling(10));
    ASSERT_TRUE(moderate.has_value()) << moderate.error().message;
    auto again = decodeKeyedArchive(encodeKeyedArchive(*moderate));
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(*again, *moderate);

    // The same with plain lists, in an archive and as a property list.
    BinaryPlistWriter w;
    uint64_t inner = w.addString("leaf");
    for (int i = 0; i < 64; ++i) {
        const uint64_t pair[] = {inner, inner};
        inner = w.addArray(pair);
    }
    expectRefused(decodeBinaryPlist(w.finish(inner), "p"), "shared too often");
    ArchiveBuilder b;
    uint64_t list = b.text("leaf");
    for (int i = 0; i < 64; ++i)
        list = b.array({list, list});
    expectRefused(decodeKeyedArchive(b.finish(b.instance(b.classNamed("Widget"), {{"x", list}}))),
                  "shared too often");
}

TEST(HostileArchive, OddPlainDictionariesWriteBackAsTheyRead) {
    // A plain dictionary written in place may repeat a key; as a dictionary, the last value
    // wins and the key keeps its first place. Its keys may be "$null", which as an archive
    // object stands for nothing, but as a key must stay a text.
    ArchiveBuilder b;
    const uint32_t cls = b.classNamed("Widget");
    const uint64_t fields =
        b.dict({{"a", b.integer(1)}, {"$null", b.integer(2)}, {"a", b.integer(3)}});
    auto v = decodeKeyedArchive(b.finish(b.instance(cls, {{"map", fields}})));
    ASSERT_TRUE(v.has_value()) << v.error().message;
    const Value map = v->asRecord()->get("map");
    ASSERT_EQ(map.asDict().size(), 2u);
    EXPECT_EQ(map.asDict()[0].first, "a");
    EXPECT_EQ(map["a"], Value::intValue(3));
    EXPECT_EQ(map["$null"], Value::intValue(2));
    const std::string written = encodeKeyedArchive(*v);
    auto again = decodeKeyedArchive(written);
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(encodeKeyedArchive(*again), written);
}

// ---------------------------------------------------------------------------------------
// Round trip

std::string difference(const Value& a, const Value& b, const std::string& at);

std::string recordDifference(const Record& a, const Record& b, const std::string& at) {
    if (a.className() != b.className())
        return at + ": class " + std::string(a.className()) + " vs " + std::string(b.className());
    if (a.recordClass() == RecordClass::Foreign && a.classChain() != b.classChain())
        return at + ": class chains differ";
    DictEntries pa, pb;
    a.properties().forEach([&](const std::string& k, const Value& v) { pa.emplace_back(k, v); });
    b.properties().forEach([&](const std::string& k, const Value& v) { pb.emplace_back(k, v); });
    if (auto d = difference(Value::dict(pa), Value::dict(pb), at + ".properties"); !d.empty())
        return d;
    if (a.listCount() != b.listCount()) return at + ": list counts differ";
    const ClassInfo& info = classInfo(a.recordClass());
    for (size_t i = 0; i < a.listCount(); ++i) {
        const std::string where = at + "." + std::string(info.listKeys[i]);
        if (a.list(i).size() != b.list(i).size()) return where + ": lengths differ";
        for (size_t j = 0; j < a.list(i).size(); ++j)
            if (auto d = recordDifference(*a.list(i)[j], *b.list(i)[j],
                                          where + "[" + std::to_string(j) + "]");
                !d.empty())
                return d;
    }
    return "";
}

/// The first difference of two trees; records compare by content, numbers bit for bit.
std::string difference(const Value& a, const Value& b, const std::string& at) {
    if (a.kind() != b.kind())
        return at + ": " + std::string(kindName(a.kind())) + " vs " +
               std::string(kindName(b.kind()));
    if (a.kind() == Kind::Record) return recordDifference(*a.asRecord(), *b.asRecord(), at);
    if (a.kind() == Kind::Array) {
        if (a.asArray().size() != b.asArray().size()) return at + ": lengths differ";
        for (size_t i = 0; i < a.asArray().size(); ++i)
            if (auto d =
                    difference(a.asArray()[i], b.asArray()[i], at + "[" + std::to_string(i) + "]");
                !d.empty())
                return d;
        return "";
    }
    if (a.kind() == Kind::Dict) {
        if (a.asDict().size() != b.asDict().size()) return at + ": sizes differ";
        for (size_t i = 0; i < a.asDict().size(); ++i) {
            const auto& [ka, va] = a.asDict()[i];
            const auto& [kb, vb] = b.asDict()[i];
            if (ka != kb) return at + ": key " + ka + " vs " + kb;
            if (auto d = difference(va, vb, at + "." + ka); !d.empty()) return d;
        }
        return "";
    }
    return a == b ? "" : at + ": values differ";
}

Value everyKind() {
    const Date when{725846400.0}; // a float-exact double: must stay a double
    auto item = [&](std::string_view title, float amount) {
        auto r = Record::make(RecordClass::Item, when);
        r->set("title", Value::string(title));
        r->set("finalAmount", Value::floatValue(amount));
        r->properties().remove("comment"); // absent stays absent
        return r;
    };
    auto period = Record::make(RecordClass::Thelist, when);
    period->items() = {item("Miete", 800.0f), item("Bürobedarf 😀", 0.1f), item("Porto", -0.0f)};
    period->files().push_back(Record::make(RecordClass::File, when));
    auto year = Record::make(RecordClass::Year, when);
    year->thelists().push_back(period);
    auto cashbook = Record::make(RecordClass::Cashbook, when);
    cashbook->items().push_back(Record::make(RecordClass::CashBookItem, when));
    auto client = Record::make(RecordClass::Client, when);
    client->theYears().push_back(year);
    client->accounts().push_back(Record::make(RecordClass::Account, when));
    client->groups().push_back(Record::make(RecordClass::Group, when));
    client->cashbooks().push_back(cashbook);
    client->allowances().push_back(Record::make(RecordClass::Allowance, when));
    client->inventorys().push_back(Record::make(RecordClass::InventoryItem, when));

    auto foreign = Record::makeForeign("Widget", {"Widget", "Gadget", "NSObject"});
    foreign->set("count", Value::intValue(-3));
    foreign->set("ratio", Value::floatValue(0.25f));
    foreign->set("name", Value::string("Größe"));
    foreign->set("parts", Value::array({Value::string("x"), Value::doubleValue(2.0)}));

    return Value::dict({
        {"text", Value::string("Grüße aus Köln – ÄÖÜß € 😀")},
        {"empty", Value::string("")},
        {"float", Value::floatValue(0.1f)},
        {"negativeZero", Value::floatValue(-0.0f)},
        {"int", Value::intValue(std::numeric_limits<int32_t>::min())},
        {"smallest", Value::integer(std::numeric_limits<int64_t>::min())},
        {"largest", Value::integer(std::numeric_limits<int64_t>::max())},
        {"double", Value::doubleValue(0.1)},
        {"wholeDouble", Value::doubleValue(2.0)},
        {"doubleNegativeZero", Value::doubleValue(-0.0)},
        {"yes", Value::boolean(true)},
        {"no", Value::boolean(false)},
        {"date", Value::date(when)},
        {"image", Value::image("miniItemGrey")},
        {"data", Value::data(std::string("\0\xFF\0bplist00", 11))},
        {"dict", Value::dict({{"z", Value::intValue(1)}, {"a", Value::dict({})}})},
        {"array", Value::array({Value::array({}), Value::intValue(1), Value::floatValue(1.0f),
                                Value::doubleValue(1.0), Value::boolean(true)})},
        {"clients", Value::array({Value::record(client)})},
        {"foreign", Value::record(foreign)},
    });
}

TEST(HostileArchive, EveryKindOfValueRoundTripsUnchanged) {
    const Value tree = everyKind();
    const std::string written = encodeKeyedArchive(tree);
    auto back = decodeKeyedArchive(written);
    ASSERT_TRUE(back.has_value()) << back.error().message;
    EXPECT_EQ(difference(tree, *back, "root"), "");
    // Writing what was read gives the very same bytes.
    EXPECT_EQ(encodeKeyedArchive(*back), written);

    // Spot checks that a weak comparison would miss.
    const Value& floats = *back;
    EXPECT_EQ(std::bit_cast<uint32_t>(floats["negativeZero"].asFloat()), 0x80000000u);
    EXPECT_EQ(std::bit_cast<uint32_t>(floats["float"].asFloat()), std::bit_cast<uint32_t>(0.1f));
    EXPECT_EQ(floats["wholeDouble"].kind(), Kind::Double);
    const Record& item =
        *floats["clients"].asArray()[0].asRecord()->theYears()[0]->thelists()[0]->items()[1];
    EXPECT_EQ(item.getText("title"), "Bürobedarf 😀");
    EXPECT_FALSE(item.properties().contains("comment"));
}

} // namespace
} // namespace zifora::core
