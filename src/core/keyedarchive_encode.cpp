// Writing keyed archives.

#include "core/atomicfile.h"
#include "core/binaryplist.h"
#include "core/keyedarchive.h"
#include "core/record.h"

#include <array>
#include <bit>
#include <deque>
#include <map>
#include <span>
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
        // The finaliser of SplitMix64: float and date bits differ mostly in their high bits.
        uint64_t z = k.bits * 31 + static_cast<uint64_t>(k.kind);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
};

/// An open-addressing table from a key to a UID. A large book makes millions of look-ups
/// in hundreds of thousands of distinct values; one probe run in one array costs far less
/// than a chain of nodes. UID 0 ("$null") is never stored, so it marks an empty slot.
template <typename Key, typename Hash> class UidIndex {
  public:
    /// The UID of `key`, or 0.
    [[nodiscard]] uint32_t find(const Key& key, size_t hash) const {
        if (m_slots.empty()) return 0;
        const size_t mask = m_slots.size() - 1;
        for (size_t i = hash & mask;; i = (i + 1) & mask) {
            const Slot& slot = m_slots[i];
            if (slot.uid == 0) return 0;
            if (slot.hash == hash && slot.key == key) return slot.uid;
        }
    }
    [[nodiscard]] uint32_t find(const Key& key) const { return find(key, Hash{}(key)); }

    /// Adds a key that is not yet in the table.
    void insert(Key key, size_t hash, uint32_t uid) {
        if ((m_used + 1) * 4 > m_slots.size() * 3) grow();
        place(Slot{std::move(key), hash, uid});
        ++m_used;
    }
    void insert(Key key, uint32_t uid) {
        const size_t hash = Hash{}(key);
        insert(std::move(key), hash, uid);
    }

  private:
    struct Slot {
        Key key{};
        size_t hash = 0;
        uint32_t uid = 0;
    };

    void place(Slot slot) {
        const size_t mask = m_slots.size() - 1;
        size_t i = slot.hash & mask;
        while (m_slots[i].uid != 0)
            i = (i + 1) & mask;
        m_slots[i] = std::move(slot);
    }

    void grow() {
        std::vector<Slot> old = std::move(m_slots);
        m_slots.assign(old.empty() ? 64 : old.size() * 2, Slot{});
        for (Slot& slot : old)
            if (slot.uid != 0) place(std::move(slot));
    }

    std::vector<Slot> m_slots;
    size_t m_used = 0;
};
// Text-keyed maps that look up by string_view, so that no look-up builds a string.
struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const noexcept {
        return std::hash<std::string_view>{}(s);
    }
};
template <typename T> using TextMap = std::unordered_map<std::string, T, TextHash, std::equal_to<>>;

struct RefsHash {
    size_t operator()(const std::vector<uint64_t>& v) const noexcept {
        uint64_t h = 1469598103934665603ull;
        for (uint64_t x : v)
            h = (h ^ x) * 1099511628211ull;
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

    /// True when what was written nests deeper than the reader takes (see `nestsWithin`,
    /// whose count the encoder keeps as it goes, at no cost of a walk of its own).
    [[nodiscard]] bool tooDeep() const { return m_tooDeep; }

  private:
    // The level of the value being written, and the deepest level its tree may reach.
    int m_depth = 0;
    int m_limit = kMaxNesting;
    bool m_tooDeep = false;

    void reach(int level) {
        if (level > m_limit) [[unlikely]]
            m_tooDeep = true;
    }
    // One level further down for the members written while it lives.
    struct Deeper {
        explicit Deeper(Encoder& e) : m_e(e) { ++m_e.m_depth; }
        ~Deeper() { --m_e.m_depth; }
        Encoder& m_e;
    };

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
        auto it = m_plainStrings.find(s);
        if (it != m_plainStrings.end()) return it->second;
        uint64_t index = m_plist.addString(s);
        m_plainStrings.emplace(std::string(s), index);
        return index;
    }

    uint32_t stringUid(std::string_view s) {
        if (s.empty() && m_emptyStringUid) return m_emptyStringUid;
        const size_t hash = std::hash<std::string_view>{}(s);
        if (uint32_t known = m_strings.find(s, hash)) return known;
        uint32_t uid = newUid(m_plist.addString(s));
        // The index keeps views; the texts themselves live in a deque, which never moves them.
        m_stringTexts.emplace_back(s);
        m_strings.insert(m_stringTexts.back(), hash, uid);
        if (s.empty()) m_emptyStringUid = uid;
        return uid;
    }

    // The UID of a property key's text, remembered per interned key.
    uint32_t keyUid(KeyId key) {
        if (key >= m_keyUids.size()) m_keyUids.resize(key + 1, 0);
        uint32_t& uid = m_keyUids[key];
        if (uid == 0) uid = stringUid(keyName(key));
        return uid;
    }
    uint32_t keyUid(std::string_view key) { return stringUid(key); }

    uint32_t numberUid(const Value& v) {
        NumberKey key{v.kind(), 0};
        switch (v.kind()) {
        case Kind::Float:
            key.bits = std::bit_cast<uint32_t>(v.asFloat());
            break;
        case Kind::Double:
            key.bits = std::bit_cast<uint64_t>(v.asDouble());
            break;
        case Kind::Bool:
            key.bits = v.asBool();
            break;
        default:
            key.bits = static_cast<uint64_t>(v.toInteger());
            key.kind = Kind::Integer;
            break;
        }
        if (uint32_t known = m_numbers.find(key)) return known;
        uint64_t object = 0;
        switch (v.kind()) {
        case Kind::Float:
            object = m_plist.addReal32(v.asFloat());
            break;
        case Kind::Double:
            object = m_plist.addReal64(v.asDouble());
            break;
        case Kind::Bool:
            object = m_plist.addBool(v.asBool());
            break;
        default:
            object = m_plist.addInteger(v.toInteger());
            break;
        }
        uint32_t uid = newUid(object);
        m_numbers.insert(key, uid);
        return uid;
    }

    uint32_t classUid(std::string_view name, const std::vector<std::string>& chain) {
        auto it = m_classes.find(name);
        if (it != m_classes.end()) return it->second;
        std::vector<uint64_t> names;
        if (chain.empty()) {
            names.push_back(plainString(name));
            // Foundation's collection classes derive from their immutable base.
            if (name.starts_with("NSMutable"))
                names.push_back(plainString("NS" + std::string(name.substr(9))));
            if (name != "NSObject") names.push_back(plainString("NSObject"));
        } else {
            for (const auto& n : chain)
                names.push_back(plainString(n));
        }
        uint64_t classes = m_plist.addArray(names);
        std::array keys{plainString("$classes"), plainString("$classname")};
        std::array values{classes, plainString(name)};
        uint32_t uid = newUid(m_plist.addDict(keys, values));
        m_classes.emplace(std::string(name), uid);
        return uid;
    }

    // An object dictionary: "$class" first, then the given keys.
    void setObject(uint32_t uid, uint32_t classId, std::span<const uint64_t> keys,
                   std::span<const uint64_t> values) {
        if (m_classKey == UINT64_MAX) m_classKey = plainString("$class");
        m_objectKeys.assign(1, m_classKey);
        m_objectValues.assign(1, uidRef(classId));
        m_objectKeys.insert(m_objectKeys.end(), keys.begin(), keys.end());
        m_objectValues.insert(m_objectValues.end(), values.begin(), values.end());
        m_uidObjects[uid] = m_plist.addDict(m_objectKeys, m_objectValues);
    }
    void setObject(uint32_t uid, uint32_t classId, std::initializer_list<uint64_t> keys,
                   std::initializer_list<uint64_t> values) {
        setObject(uid, classId, std::span<const uint64_t>(keys.begin(), keys.size()),
                  std::span<const uint64_t>(values.begin(), values.size()));
    }

    // Scratch lists for the references of the containers being written, one per level of
    // nesting, so that writing a book does not allocate them anew for every record.
    class ScratchList {
      public:
        explicit ScratchList(Encoder& e) : m_e(e) {
            if (m_e.m_scratch.size() <= m_e.m_scratchDepth) m_e.m_scratch.emplace_back();
            m_list = &m_e.m_scratch[m_e.m_scratchDepth++];
            m_list->clear();
        }
        ~ScratchList() { --m_e.m_scratchDepth; }
        std::vector<uint64_t>& operator*() { return *m_list; }
        std::vector<uint64_t>* operator->() { return m_list; }

      private:
        Encoder& m_e;
        std::vector<uint64_t>* m_list;
    };

    uint32_t collectionClassUid(uint32_t& cached, std::string_view name) {
        if (cached == 0) cached = classUid(name, {});
        return cached;
    }

    uint64_t sharedRefArray(const std::vector<uint64_t>& refs) {
        auto it = m_refArrays.find(refs);
        if (it != m_refArrays.end()) return it->second;
        uint64_t index = m_plist.addArray(refs);
        m_refArrays.emplace(refs, index);
        return index;
    }

    uint32_t encodeDate(double t) {
        const NumberKey key{Kind::Date, std::bit_cast<uint64_t>(t)};
        if (uint32_t known = m_dates.find(key)) return known;
        uint32_t uid = reserveUid();
        setObject(uid, classUid("NSDate", {}), {plainString("NS.time")}, {m_plist.addReal64(t)});
        m_dates.insert(key, uid);
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

    uint32_t encodeData(const std::string& bytes) { return newUid(m_plist.addData(bytes)); }

    template <typename Entries> uint32_t encodeDictEntries(const Entries& forEach, size_t n) {
        uint32_t uid = reserveUid();
        ScratchList keyRefs(*this), valueRefs(*this);
        keyRefs->reserve(n);
        valueRefs->reserve(n);
        Deeper members(*this);
        forEach([&](auto key, const Value& v) {
            uint32_t valueUid = encode(v);
            if (valueUid == 0) return; // absent values are not stored
            keyRefs->push_back(uidRef(keyUid(key)));
            valueRefs->push_back(uidRef(valueUid));
        });
        uint64_t keysArray = sharedRefArray(*keyRefs);
        uint64_t valuesArray = m_plist.addArray(*valueRefs);
        setObject(uid, collectionClassUid(m_dictClass, "NSMutableDictionary"),
                  {plainString("NS.keys"), plainString("NS.objects")}, {keysArray, valuesArray});
        return uid;
    }

    uint32_t encodeDict(const DictEntries& entries) {
        return encodeDictEntries(
            [&](auto&& f) {
                for (const auto& [k, v] : entries)
                    f(std::string_view(k), v);
            },
            entries.size());
    }

    uint32_t encodeProperties(const Properties& properties) {
        return encodeDictEntries([&](auto&& f) { properties.forEachId(f); }, properties.size());
    }

    template <typename Range> uint32_t encodeArrayOf(const Range& range) {
        uint32_t uid = reserveUid();
        ScratchList refs(*this);
        refs->reserve(range.size());
        Deeper elements(*this);
        for (const auto& element : range) {
            uint32_t elementUid = encodeElement(element);
            if (elementUid != 0) refs->push_back(uidRef(elementUid));
        }
        setObject(uid, collectionClassUid(m_arrayClass, "NSMutableArray"),
                  {plainString("NS.objects")}, {m_plist.addArray(*refs)});
        return uid;
    }
    uint32_t encodeElement(const Value& v) { return encode(v); }
    uint32_t encodeElement(const Ref<Record>& r) { return encodeRecord(*r); }

    uint32_t encodeRecord(const Record& record) {
        if (record.recordClass() == RecordClass::Foreign) return encodeForeign(record);
        // Its properties and lists are objects of their own: their members stand two levels
        // down, and a property may nest no deeper than it could in any record.
        reach(m_depth + 2);
        Deeper objects(*this);
        const int limit = m_limit;
        m_limit = std::min(m_limit, m_depth + 1 + kMaxValueNesting);
        uint32_t uid = reserveUid();
        uint32_t& cached = m_recordClassUid[static_cast<size_t>(record.recordClass())];
        if (cached == 0)
            cached = classUid(record.className(), {std::string(record.className()), "NSObject"});
        const uint32_t cls = cached;
        std::vector<uint64_t> keys{plainString("properties")};
        std::vector<uint64_t> values{uidRef(encodeProperties(record.properties()))};
        m_limit = limit;
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
        reach(m_depth);
        Deeper members(*this);
        record.properties().forEach([&](const std::string& key, const Value& v) {
            reach(m_depth);
            keys.push_back(plainString(key));
            switch (v.kind()) {
            case Kind::Float:
                values.push_back(m_plist.addReal32(v.asFloat()));
                break;
            case Kind::Double:
                values.push_back(m_plist.addReal64(v.asDouble()));
                break;
            case Kind::Bool:
                values.push_back(m_plist.addBool(v.asBool()));
                break;
            case Kind::Int:
            case Kind::Integer:
                values.push_back(m_plist.addInteger(v.toInteger()));
                break;
            default:
                values.push_back(uidRef(encode(v)));
                break;
            }
        });
        setObject(uid, cls, keys, values);
        return uid;
    }

    uint32_t encode(const Value& v) {
        if (!v.isAbsent() && v.kind() != Kind::Record)
            reach(v.kind() == Kind::Image ? m_depth + 1 : m_depth);
        switch (v.kind()) {
        case Kind::Absent:
            return 0;
        case Kind::String:
            return stringUid(v.text());
        case Kind::Float:
        case Kind::Int:
        case Kind::Integer:
        case Kind::Double:
        case Kind::Bool:
            return numberUid(v);
        case Kind::Date:
            return encodeDate(v.asDate().sinceReferenceDate);
        case Kind::Image:
            return encodeImage(v.text());
        case Kind::Data:
            return encodeData(v.text());
        case Kind::Dict:
            return encodeDict(v.asDict());
        case Kind::Array:
            return encodeArrayOf(v.asArray());
        case Kind::Record:
            return encodeRecord(*v.asRecord());
        }
        return 0;
    }

    BinaryPlistWriter m_plist;
    uint64_t m_classKey = UINT64_MAX;
    uint32_t m_dictClass = 0;
    uint32_t m_arrayClass = 0;
    std::array<uint32_t, 12> m_recordClassUid{};
    std::vector<uint64_t> m_objectKeys, m_objectValues;
    std::deque<std::vector<uint64_t>> m_scratch; // a deque: lists keep their place as it grows
    size_t m_scratchDepth = 0;
    uint64_t m_top = 0;
    std::vector<uint64_t> m_uidObjects;
    std::vector<uint64_t> m_uidRefs;
    TextMap<uint64_t> m_plainStrings;
    std::deque<std::string> m_stringTexts;
    UidIndex<std::string_view, std::hash<std::string_view>> m_strings;
    std::vector<uint32_t> m_keyUids; // per interned key; 0 while not yet written
    uint32_t m_emptyStringUid = 0;
    UidIndex<NumberKey, NumberKeyHash> m_numbers;
    TextMap<uint32_t> m_classes;
    UidIndex<NumberKey, NumberKeyHash> m_dates;
    std::unordered_map<std::string, uint32_t> m_images;
    std::unordered_map<std::vector<uint64_t>, uint64_t, RefsHash> m_refArrays;
};

} // namespace

std::string encodeKeyedArchive(const Value& root) {
    Encoder encoder;
    return encoder.finish(root);
}

Result<void> writeKeyedArchiveFile(const std::string& path, const Value& root) {
    // What the reader would refuse is not written: the file on disk stays readable.
    Encoder encoder;
    std::string bytes = encoder.finish(root);
    if (encoder.tooDeep())
        return fail(path + ": the values are nested more than " + std::to_string(kMaxNesting) +
                    " levels deep");
    return writeFileAtomically(path, bytes);
}

} // namespace zifora::core
