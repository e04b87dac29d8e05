// Writing keyed archives.

#include "core/binaryplist.h"
#include "core/keyedarchive.h"
#include "core/record.h"

#include <bit>
#include <map>
#include <unordered_map>

namespace zifora::core {

namespace {

struct NumberKey {
    Kind kind;
    uint64_t bits;
    friend bool operator==(const NumberKey&, const NumberKey&) = default;
};
struct NumberKeyHash {
    size_t operator()(const NumberKey& k) const noexcept {
        return std::hash<uint64_t>{}(k.bits * 31 + static_cast<uint64_t>(k.kind));
    }
};
struct RefsHash {
    size_t operator()(const std::vector<uint64_t>& v) const noexcept {
        uint64_t h = 1469598103934665603ull;
        for (uint64_t x : v) h = (h ^ x) * 1099511628211ull;
        return h;
    }
};

/// Turns a value graph into archive objects. Every archive object ("UID") becomes one
/// entry of `$objects`; texts, numbers, dates and icons are written once per distinct value.
class Encoder {
  public:
    Encoder() {
        m_top = m_plist.reserve();
        m_uidObjects.push_back(m_plist.addString("$null"));
    }

    std::string finish(const Value& root) {
        uint32_t rootUid = encode(root);
        uint64_t objects = m_plist.addArray(m_uidObjects);
        uint64_t rootRef = uidRef(rootUid);
        uint64_t topKey = m_plist.addString("root");
        uint64_t top = m_plist.addDict(std::span(&topKey, 1), std::span(&rootRef, 1));
        std::array keys{m_plist.addString("$archiver"), m_plist.addString("$objects"),
                        m_plist.addString("$top"), m_plist.addString("$version")};
        std::array values{m_plist.addString("NSKeyedArchiver"), objects, top,
                          m_plist.addInteger(100000)};
        m_plist.setDict(m_top, keys, values);
        return m_plist.finish(m_top);
    }

  private:
    uint32_t newUid(uint64_t plistObject) {
        m_uidObjects.push_back(plistObject);
        return static_cast<uint32_t>(m_uidObjects.size() - 1);
    }
    uint32_t reserveUid() {
        m_uidObjects.push_back(0);
        return static_cast<uint32_t>(m_uidObjects.size() - 1);
    }

    // The plist object of a UID reference; one per UID, shared by every reference.
    uint64_t uidRef(uint32_t uid) {
        if (uid >= m_uidRefs.size()) m_uidRefs.resize(uid + 1, UINT64_MAX);
        uint64_t& ref = m_uidRefs[uid];
        if (ref == UINT64_MAX) ref = m_plist.addUid(uid);
        return ref;
    }

    uint64_t plainString(std::string_view s) {
        auto it = m_plainStrings.find(std::string(s));
        if (it != m_plainStrings.end()) return it->second;
        uint64_t index = m_plist.addString(s);
        m_plainStrings.emplace(std::string(s), index);
        return index;
    }

    uint32_t stringUid(std::string_view s) {
        if (s.empty() && m_emptyStringUid) return m_emptyStringUid;
        auto it = m_strings.find(std::string(s));
        if (it != m_strings.end()) return it->second;
        uint32_t uid = newUid(m_plist.addString(s));
        m_strings.emplace(std::string(s), uid);
        if (s.empty()) m_emptyStringUid = uid;
        return uid;
    }

    uint32_t numberUid(const Value& v) {
        NumberKey key{v.kind(), 0};
        switch (v.kind()) {
        case Kind::Float: key.bits = std::bit_cast<uint32_t>(v.asFloat()); break;
        case Kind::Double: key.bits = std::bit_cast<uint64_t>(v.asDouble()); break;
        case Kind::Bool: key.bits = v.asBool(); break;
        default: key.bits = static_cast<uint64_t>(v.toInteger()); key.kind = Kind::Integer; break;
        }
        auto it = m_numbers.find(key);
        if (it != m_numbers.end()) return it->second;
        uint64_t object = 0;
        switch (v.kind()) {
        case Kind::Float: object = m_plist.addReal32(v.asFloat()); break;
        case Kind::Double: object = m_plist.addReal64(v.asDouble()); break;
        case Kind::Bool: object = m_plist.addBool(v.asBool()); break;
        default: object = m_plist.addInteger(v.toInteger()); break;
        }
        uint32_t uid = newUid(object);
        m_numbers.emplace(key, uid);
        return uid;
    }

    uint32_t classUid(std::string_view name, const std::vector<std::string>& chain) {
        auto it = m_classes.find(std::string(name));
        if (it != m_classes.end()) return it->second;
        std::vector<uint64_t> names;
        if (chain.empty()) {
            names.push_back(plainString(name));
            // Foundation's collection classes derive from their immutable base.
            if (name.starts_with("NSMutable")) names.push_back(plainString("NS" + std::string(name.substr(9))));
            if (name != "NSObject") names.push_back(plainString("NSObject"));
        } else {
            for (const auto& n : chain) names.push_back(plainString(n));
        }
        uint64_t classes = m_plist.addArray(names);
        std::array keys{plainString("$classes"), plainString("$classname")};
        std::array values{classes, plainString(name)};
        uint32_t uid = newUid(m_plist.addDict(keys, values));
        m_classes.emplace(std::string(name), uid);
        return uid;
    }

    // An object dictionary: "$class" first, then the given keys.
    void setObject(uint32_t uid, uint32_t classId, const std::vector<uint64_t>& keys,
                   const std::vector<uint64_t>& values) {
        std::vector<uint64_t> k{plainString("$class")};
        std::vector<uint64_t> v{uidRef(classId)};
        k.insert(k.end(), keys.begin(), keys.end());
        v.insert(v.end(), values.begin(), values.end());
        m_uidObjects[uid] = m_plist.addDict(k, v);
    }

    uint64_t sharedRefArray(std::vector<uint64_t> refs) {
        auto it = m_refArrays.find(refs);
        if (it != m_refArrays.end()) return it->second;
        uint64_t index = m_plist.addArray(refs);
        m_refArrays.emplace(std::move(refs), index);
        return index;
    }

    uint32_t encodeDate(double t) {
        auto it = m_dates.find(std::bit_cast<uint64_t>(t));
        if (it != m_dates.end()) return it->second;
        uint32_t uid = reserveUid();
        setObject(uid, classUid("NSDate", {}), {plainString("NS.time")}, {m_plist.addReal64(t)});
        m_dates.emplace(std::bit_cast<uint64_t>(t), uid);
        return uid;
    }

    uint32_t encodeImage(const std::string& name) {
        auto it = m_images.find(name);
        if (it != m_images.end()) return it->second;
        uint32_t uid = reserveUid();
        uint32_t nameUid = stringUid(name);
        setObject(uid, classUid("NSImage", {}), {plainString("NSName")}, {uidRef(nameUid)});
        m_images.emplace(name, uid);
        return uid;
    }

    uint32_t encodeData(const std::string& bytes) {
        return newUid(m_plist.addData(bytes));
    }

    template <typename Entries> uint32_t encodeDictEntries(const Entries& forEach, size_t n) {
        uint32_t uid = reserveUid();
        std::vector<uint64_t> keyRefs, valueRefs;
        keyRefs.reserve(n);
        valueRefs.reserve(n);
        forEach([&](std::string_view key, const Value& v) {
            uint32_t valueUid = encode(v);
            if (valueUid == 0) return; // absent values are not stored
            keyRefs.push_back(uidRef(stringUid(key)));
            valueRefs.push_back(uidRef(valueUid));
        });
        uint64_t keysArray = sharedRefArray(std::move(keyRefs));
        uint64_t valuesArray = m_plist.addArray(valueRefs);
        setObject(uid, classUid("NSMutableDictionary", {}),
                  {plainString("NS.keys"), plainString("NS.objects")}, {keysArray, valuesArray});
        return uid;
    }

    uint32_t encodeDict(const DictEntries& entries) {
        return encodeDictEntries(
            [&](auto&& f) {
                for (const auto& [k, v] : entries) f(k, v);
            },
            entries.size());
    }

    uint32_t encodeProperties(const Properties& properties) {
        return encodeDictEntries([&](auto&& f) { properties.forEach(f); }, properties.size());
    }

    template <typename Range> uint32_t encodeArrayOf(const Range& range) {
        uint32_t uid = reserveUid();
        std::vector<uint64_t> refs;
        refs.reserve(range.size());
        for (const auto& element : range) {
            uint32_t elementUid = encodeElement(element);
            if (elementUid != 0) refs.push_back(uidRef(elementUid));
        }
        setObject(uid, classUid("NSMutableArray", {}), {plainString("NS.objects")},
                  {m_plist.addArray(refs)});
        return uid;
    }
    uint32_t encodeElement(const Value& v) { return encode(v); }
    uint32_t encodeElement(const Ref<Record>& r) { return encodeRecord(*r); }

    uint32_t encodeRecord(const Record& record) {
        if (record.recordClass() == RecordClass::Foreign) return encodeForeign(record);
        uint32_t uid = reserveUid();
        uint32_t cls = classUid(record.className(), {std::string(record.className()), "NSObject"});
        std::vector<uint64_t> keys{plainString("properties")};
        std::vector<uint64_t> values{uidRef(encodeProperties(record.properties()))};
        const ClassInfo& info = classInfo(record.recordClass());
        for (size_t i = 0; i < info.listKeys.size(); ++i) {
            keys.push_back(plainString(info.listKeys[i]));
            values.push_back(uidRef(encodeArrayOf(record.list(i))));
        }
        setObject(uid, cls, keys, values);
        return uid;
    }

    // A foreign object keeps its keys: numbers inline, everything else by reference.
    uint32_t encodeForeign(const Record& record) {
        uint32_t uid = reserveUid();
        uint32_t cls = classUid(record.className(), record.classChain());
        std::vector<uint64_t> keys, values;
        record.properties().forEach([&](const std::string& key, const Value& v) {
            keys.push_back(plainString(key));
            switch (v.kind()) {
            case Kind::Float: values.push_back(m_plist.addReal32(v.asFloat())); break;
            case Kind::Double: values.push_back(m_plist.addReal64(v.asDouble())); break;
            case Kind::Bool: values.push_back(m_plist.addBool(v.asBool())); break;
            case Kind::Int:
            case Kind::Integer: values.push_back(m_plist.addInteger(v.toInteger())); break;
            default: values.push_back(uidRef(encode(v))); break;
            }
        });
        setObject(uid, cls, keys, values);
        return uid;
    }

    uint32_t encode(const Value& v) {
        switch (v.kind()) {
        case Kind::Absent: return 0;
        case Kind::String: return stringUid(v.text());
        case Kind::Float:
        case Kind::Int:
        case Kind::Integer:
        case Kind::Double:
        case Kind::Bool: return numberUid(v);
        case Kind::Date: return encodeDate(v.asDate().sinceReferenceDate);
        case Kind::Image: return encodeImage(v.text());
        case Kind::Data: return encodeData(v.text());
        case Kind::Dict: return encodeDict(v.asDict());
        case Kind::Array: return encodeArrayOf(v.asArray());
        case Kind::Record: return encodeRecord(*v.asRecord());
        }
        return 0;
    }

    BinaryPlistWriter m_plist;
    uint64_t m_top = 0;
    std::vector<uint64_t> m_uidObjects;
    std::vector<uint64_t> m_uidRefs;
    std::unordered_map<std::string, uint64_t> m_plainStrings;
    std::unordered_map<std::string, uint32_t> m_strings;
    uint32_t m_emptyStringUid = 0;
    std::unordered_map<NumberKey, uint32_t, NumberKeyHash> m_numbers;
    std::unordered_map<std::string, uint32_t> m_classes;
    std::unordered_map<uint64_t, uint32_t> m_dates;
    std::unordered_map<std::string, uint32_t> m_images;
    std::unordered_map<std::vector<uint64_t>, uint64_t, RefsHash> m_refArrays;
};

} // namespace

std::string encodeKeyedArchive(const Value& root) {
    Encoder encoder;
    return encoder.finish(root);
}

} // namespace zifora::core
