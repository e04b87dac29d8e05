// Reading keyed archives.

#include "core/atomicfile.h"
#include "core/binaryplist.h"
#include "core/keyedarchive.h"
#include "core/record.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <unordered_map>
#include <unordered_set>

namespace zifora::core {

namespace {

// The decoder counts the levels as `nestsWithin` does, or more (a text may stand in an
// object of its own), so that what it reads nests within the limit and whatever the encoder
// writes within the limit reads back.
constexpr int kMaxDepth = kMaxNesting;
// Shared objects make a small file stand for a large tree (each level of "[x, x]" doubles
// it), and whoever walks or writes the tree pays for its full size. An archive may stand for
// this many values per byte, or for the floor, whichever is more.
constexpr uint64_t kValuesPerByte = 16;
constexpr uint64_t kValueFloor = uint64_t{1} << 20;
constexpr uint32_t kNoKey = std::numeric_limits<uint32_t>::max();
constexpr uint32_t kNoUid = std::numeric_limits<uint32_t>::max();

/// The class of an archived object, as its class dictionary names it.
struct ClassDesc {
    std::string name;
    std::vector<std::string> chain;
};

bool isArrayClassName(std::string_view n) {
    return n == "NSArray" || n == "NSMutableArray" || n == "NSSet" || n == "NSMutableSet" ||
           n == "NSOrderedSet" || n == "NSMutableOrderedSet";
}

class Decoder {
  public:
    Decoder(const BinaryPlistReader& reader, uint64_t fileSize)
        : m_r(reader), m_valueLimit(std::max(kValueFloor, fileSize * kValuesPerByte)) {}

    Result<Value> run() {
        auto top = m_r.object(m_r.topObject());
        if (!top) return std::unexpected(top.error());
        if (top->type != PlistType::Dict) return failure("the top object is not a dictionary");
        uint64_t archiver = UINT64_MAX, objects = UINT64_MAX, topDict = UINT64_MAX,
                 version = UINT64_MAX;
        for (size_t i = 0; i < top->count(); ++i) {
            auto key = m_r.string(top->refs[i]);
            if (!key) continue;
            uint64_t value = top->refs[top->count() + i];
            if (*key == "$archiver")
                archiver = value;
            else if (*key == "$objects")
                objects = value;
            else if (*key == "$top")
                topDict = value;
            else if (*key == "$version")
                version = value;
        }
        if (archiver == UINT64_MAX || objects == UINT64_MAX || topDict == UINT64_MAX)
            return failure("this is not a keyed archive ($archiver, $objects or $top is missing)");
        auto archiverName = m_r.string(archiver);
        if (!archiverName || *archiverName != "NSKeyedArchiver")
            return failure("this is not a keyed archive of the known kind");
        if (version != UINT64_MAX) {
            auto v = m_r.object(version);
            if (!v || v->type != PlistType::Integer || v->integer != 100000)
                return failure("the archive version is not 100000");
        }
        auto objectList = m_r.object(objects);
        if (!objectList) return std::unexpected(objectList.error());
        if (objectList->type != PlistType::Array) return failure("$objects is not a list");
        m_objects = std::move(objectList->refs);
        m_cache.assign(m_objects.size(), Value{});
        m_state.assign(m_objects.size(), State::Unread);
        m_keyIds.assign(m_objects.size(), kNoKey);
        m_uidAtPlist.assign(m_r.objectCount(), kNoUid);
        m_sizes.assign(m_objects.size(), 0);

        auto topObject = m_r.object(topDict);
        if (!topObject) return std::unexpected(topObject.error());
        if (topObject->type != PlistType::Dict) return failure("$top is not a dictionary");
        for (size_t i = 0; i < topObject->count(); ++i) {
            auto key = m_r.string(topObject->refs[i]);
            if (key && *key == "root") {
                auto uid = uidAt(topObject->refs[topObject->count() + i]);
                if (!uid) return std::unexpected(uid.error());
                auto root = decode(*uid, 0);
                // A shared object is read once and taken as it is where it comes again,
                // perhaps deeper down: the tree as a whole must nest within the limit.
                if (root && !nestsWithin(*root, kMaxNesting))
                    return failure("the values are nested more than " +
                                   std::to_string(kMaxNesting) + " levels deep");
                return root;
            }
        }
        return failure("the archive has no root object");
    }

  private:
    enum class State : uint8_t { Unread, Reading, Done };

    std::unexpected<Error> failure(const std::string& what) const {
        return std::unexpected(Error{m_r.context() + ": " + what});
    }

    Result<uint32_t> uidAt(uint64_t plistIndex) const {
        auto obj = m_r.object(plistIndex, /*withText=*/false);
        if (!obj) return std::unexpected(obj.error());
        return uidOf(*obj);
    }

    Result<uint32_t> uidOf(const PlistObject& obj) const {
        if (obj.type != PlistType::Uid)
            return failure("a reference is expected, but found a value");
        if (static_cast<uint64_t>(obj.integer) >= m_objects.size())
            return failure("a reference to object " + std::to_string(obj.integer) +
                           ", but there are " + std::to_string(m_objects.size()));
        return static_cast<uint32_t>(obj.integer);
    }

    // A member of an object dictionary: a reference, or a value written in place.
    Result<Value> member(uint64_t plistIndex, int depth) {
        // A reference read once is remembered: values refer to a few shared references.
        if (m_uidAtPlist[plistIndex] != kNoUid) return decode(m_uidAtPlist[plistIndex], depth + 1);
        // One read serves the common case, a reference; only texts are read a second time.
        auto obj = m_r.object(plistIndex, /*withText=*/false);
        if (!obj) return std::unexpected(obj.error());
        if (obj->type == PlistType::Uid) {
            auto uid = uidOf(*obj);
            if (!uid) return std::unexpected(uid.error());
            m_uidAtPlist[plistIndex] = *uid;
            return decode(*uid, depth + 1);
        }
        if (obj->type == PlistType::String || obj->type == PlistType::Data) {
            obj = m_r.object(plistIndex);
            if (!obj) return std::unexpected(obj.error());
        }
        return inlineValue(*obj, depth);
    }

    // Counts `n` values of the tree being built; refuses when the tree grows too large.
    Result<void> count(uint64_t n) {
        m_valueCount += n;
        if (m_valueCount > m_valueLimit) [[unlikely]]
            return tooManyValues();
        return {};
    }

    [[gnu::cold, gnu::noinline]] std::unexpected<Error> tooManyValues() const {
        return failure("the archive stands for more than " + std::to_string(m_valueLimit) +
                       " values (its objects are shared too often)");
    }

    Result<Value> inlineValue(const PlistObject& obj, int depth) {
        if (auto counted = count(1); !counted) return std::unexpected(counted.error());
        // Plain lists may contain themselves or nest without end, just like objects.
        if (depth > kMaxDepth) return failure("the values are nested too deeply");
        switch (obj.type) {
        case PlistType::Null:
            return Value{};
        case PlistType::Bool:
            return Value::boolean(obj.boolean);
        case PlistType::Integer:
            return integerValue(obj.integer, Kind::Absent);
        case PlistType::Real32:
            return Value::floatValue(static_cast<float>(obj.real));
        case PlistType::Real64:
            return Value::doubleValue(obj.real);
        case PlistType::Date:
            return Value::date(Date{obj.real});
        case PlistType::Data:
            return Value::data(obj.text);
        case PlistType::String:
            return Value::string(obj.text);
        case PlistType::Uid:
            return failure("unexpected reference");
        case PlistType::Array:
        case PlistType::Set: {
            ArrayElements elements;
            for (uint64_t ref : obj.refs) {
                auto v = member(ref, depth + 1);
                if (!v) return v;
                if (!v->isAbsent()) elements.push_back(std::move(*v));
            }
            return Value::array(std::move(elements));
        }
        case PlistType::Dict: {
            EntryCollector entries;
            for (size_t i = 0; i < obj.count(); ++i) {
                auto key = m_r.string(obj.refs[i]);
                if (!key) return std::unexpected(key.error());
                auto v = member(obj.refs[obj.count() + i], depth + 1);
                if (!v) return v;
                if (!v->isAbsent()) entries.put(std::move(*key), std::move(*v));
            }
            return entries.take();
        }
        }
        return Value{};
    }

    // A number without a width of its own: 32-bit where it fits, unless the record's
    // initialiser says the key holds a 64-bit integer.
    static Value integerValue(int64_t n, Kind preferred) {
        if (preferred == Kind::Integer) return Value::integer(n);
        if (n >= INT32_MIN && n <= INT32_MAX) return Value::intValue(static_cast<int32_t>(n));
        return Value::integer(n);
    }

    Result<Value> decode(uint32_t uid, int depth) {
        if (uid == 0) return Value{};
        if (depth > kMaxDepth) return failure("the objects are nested too deeply");
        if (m_state[uid] == State::Done) {
            if (auto counted = count(m_sizes[uid]); !counted)
                return std::unexpected(counted.error());
            return m_cache[uid];
        }
        if (m_state[uid] == State::Reading)
            return failure("object " + std::to_string(uid) + " contains itself");
        m_state[uid] = State::Reading;
        const uint64_t countBefore = m_valueCount;
        auto result = decodeFresh(uid, depth);
        if (!result) return result;
        m_sizes[uid] = std::max<uint64_t>(1, m_valueCount - countBefore);
        m_cache[uid] = *result;
        m_state[uid] = State::Done;
        return result;
    }

    Result<Value> decodeFresh(uint32_t uid, int depth) {
        auto obj = m_r.object(m_objects[uid]);
        if (!obj) return std::unexpected(obj.error());
        if (obj->type == PlistType::String && obj->text == "$null") return Value{};
        if (obj->type != PlistType::Dict) return inlineValue(*obj, depth);
        // An object dictionary names its class under "$class".
        ObjectFields fields;
        for (size_t i = 0; i < obj->count(); ++i) {
            auto key = fieldName(obj->refs[i]);
            if (!key) return std::unexpected(key.error());
            fields.emplace_back(*key, obj->refs[obj->count() + i]);
        }
        const uint64_t* classRef = field(fields, "$class");
        if (!classRef) return inlineValue(*obj, depth);
        auto cls = classOf(*classRef);
        if (!cls) return std::unexpected(cls.error());
        return decodeObject(uid, **cls, fields, depth);
    }

    // The names point into m_fieldNames, which keeps them for the whole decode.
    using ObjectFields = std::vector<std::pair<std::string_view, uint64_t>>;

    // The text of an object dictionary's key. Archives use a handful of such names
    // ("$class", "properties", "NS.keys" …) for all their objects, so each is read once.
    Result<std::string_view> fieldName(uint64_t ref) {
        if (auto it = m_fieldNames.find(ref); it != m_fieldNames.end())
            return std::string_view(it->second);
        auto key = m_r.string(ref);
        if (!key) return std::unexpected(key.error());
        return std::string_view(m_fieldNames.emplace(ref, std::move(*key)).first->second);
    }

    static const uint64_t* field(const ObjectFields& fields, std::string_view key) {
        for (const auto& [k, ref] : fields)
            if (k == key) return &ref;
        return nullptr;
    }

    // The description stays in the cache, whose entries never move, for the whole decode.
    Result<const ClassDesc*> classOf(uint64_t classRef) {
        auto uid = uidAt(classRef);
        if (!uid) return std::unexpected(uid.error());
        if (auto it = m_classCache.find(*uid); it != m_classCache.end()) return &it->second;
        auto obj = m_r.object(m_objects[*uid]);
        if (!obj) return std::unexpected(obj.error());
        if (obj->type != PlistType::Dict) return failure("a class description is not a dictionary");
        ClassDesc desc;
        for (size_t i = 0; i < obj->count(); ++i) {
            auto key = m_r.string(obj->refs[i]);
            if (!key) continue;
            uint64_t value = obj->refs[obj->count() + i];
            if (*key == "$classname") {
                auto name = m_r.string(value);
                if (!name) return std::unexpected(name.error());
                desc.name = *name;
            } else if (*key == "$classes") {
                auto list = m_r.object(value);
                if (!list) return std::unexpected(list.error());
                if (list->type != PlistType::Array) continue;
                for (uint64_t ref : list->refs) {
                    auto name = m_r.string(ref);
                    if (name) desc.chain.push_back(*name);
                }
            }
        }
        if (desc.name.empty()) return failure("a class description has no class name");
        return &m_classCache.emplace(*uid, std::move(desc)).first->second;
    }

    // The references of an inline list of an object ("NS.objects", "NS.keys").
    Result<std::vector<uint64_t>> refList(const ObjectFields& fields, std::string_view key) {
        const uint64_t* ref = field(fields, key);
        if (!ref) return std::vector<uint64_t>{};
        auto obj = m_r.object(*ref, /*withText=*/false);
        if (!obj) return std::unexpected(obj.error());
        if (obj->type != PlistType::Array && obj->type != PlistType::Set)
            return failure(std::string(key) + " is not a list");
        return std::move(obj->refs);
    }

    Result<Value> decodeObject(uint32_t uid, const ClassDesc& cls, const ObjectFields& fields,
                               int depth) {
        const std::string& n = cls.name;
        if (isArrayClassName(n)) return decodeArray(fields, depth);
        if (n == "NSDictionary" || n == "NSMutableDictionary") return decodeDict(fields, depth);
        if (n == "NSString" || n == "NSMutableString") {
            if (const uint64_t* s = field(fields, "NS.string")) {
                auto v = member(*s, depth);
                if (!v) return v;
                return Value::string(v->text());
            }
            if (const uint64_t* b = field(fields, "NS.bytes")) {
                auto v = member(*b, depth);
                if (!v) return v;
                return Value::string(v->text());
            }
            return Value::string("");
        }
        if (n == "NSDate") {
            const uint64_t* t = field(fields, "NS.time");
            if (!t) return Value::date(Date{0});
            auto v = member(*t, depth);
            if (!v) return v;
            return Value::date(Date{v->toDouble()});
        }
        if (n == "NSData" || n == "NSMutableData") {
            const uint64_t* d = field(fields, "NS.data");
            if (!d) return Value::data("");
            auto v = member(*d, depth);
            if (!v) return v;
            return Value::data(v->text());
        }
        if (n == "NSImage") {
            if (const uint64_t* name = field(fields, "NSName")) {
                auto v = member(*name, depth);
                if (!v) return v;
                if (v->kind() == Kind::String) return Value::image(v->text());
            }
        }
        RecordClass rc = recordClassNamed(n);
        if (rc != RecordClass::Foreign) return decodeRecord(uid, rc, fields, depth);
        return decodeForeign(cls, fields, depth);
    }

    Result<Value> decodeArray(const ObjectFields& fields, int depth) {
        auto refs = refList(fields, "NS.objects");
        if (!refs) return std::unexpected(refs.error());
        ArrayElements elements;
        elements.reserve(refs->size());
        for (uint64_t ref : *refs) {
            auto v = member(ref, depth);
            if (!v) return v;
            if (!v->isAbsent()) elements.push_back(std::move(*v));
        }
        return Value::array(std::move(elements));
    }

    Result<std::pair<std::vector<uint64_t>, std::vector<uint64_t>>>
    dictRefs(const ObjectFields& fields) {
        auto keys = refList(fields, "NS.keys");
        if (!keys) return std::unexpected(keys.error());
        auto values = refList(fields, "NS.objects");
        if (!values) return std::unexpected(values.error());
        if (keys->size() != values->size())
            return failure("a dictionary has " + std::to_string(keys->size()) + " keys but " +
                           std::to_string(values->size()) + " values");
        return std::pair{std::move(*keys), std::move(*values)};
    }

    // The value references of a dictionary whose keys are already known, checked as
    // `dictRefs` checks them; the key references stay empty.
    Result<std::pair<std::vector<uint64_t>, std::vector<uint64_t>>>
    valueRefs(const ObjectFields& fields, size_t keyCount) {
        auto values = refList(fields, "NS.objects");
        if (!values) return std::unexpected(values.error());
        if (keyCount != values->size())
            return failure("a dictionary has " + std::to_string(keyCount) + " keys but " +
                           std::to_string(values->size()) + " values");
        return std::pair{std::vector<uint64_t>{}, std::move(*values)};
    }

    // Collects the entries of a dictionary. A key met twice keeps its place and takes the
    // later value, as a dictionary does.
    class EntryCollector {
      public:
        void put(std::string key, Value v) {
            auto [it, fresh] = m_where.try_emplace(key, m_entries.size());
            if (fresh)
                m_entries.emplace_back(std::move(key), std::move(v));
            else
                m_entries[it->second].second = std::move(v);
        }
        Value take() { return Value::dict(std::move(m_entries)); }

      private:
        DictEntries m_entries;
        std::unordered_map<std::string, size_t> m_where;
    };

    // The text of a dictionary key; numbers are accepted as their decimal text.
    Result<std::string> keyText(uint64_t ref, int depth) {
        auto key = member(ref, depth);
        if (!key) return std::unexpected(key.error());
        if (key->kind() == Kind::String) return key->text();
        if (key->kind() == Kind::Int || key->kind() == Kind::Integer)
            return std::to_string(key->toInteger());
        // The text "$null" reads as nothing where a value stands, but a key is always a text.
        if (auto uid = uidAt(ref); uid && *uid != 0) {
            auto text = m_r.string(m_objects[*uid]);
            if (text && *text == "$null") return *text;
        }
        return failure("a dictionary key is not a text");
    }

    Result<Value> decodeDict(const ObjectFields& fields, int depth) {
        auto refs = dictRefs(fields);
        if (!refs) return std::unexpected(refs.error());
        EntryCollector entries;
        for (size_t i = 0; i < refs->first.size(); ++i) {
            auto key = keyText(refs->first[i], depth);
            if (!key) return std::unexpected(key.error());
            auto v = member(refs->second[i], depth);
            if (!v) return v;
            if (!v->isAbsent()) entries.put(std::move(*key), std::move(*v));
        }
        return entries.take();
    }

    // The interned key of a dictionary-key reference, cached per archive object.
    Result<KeyId> internedKey(uint64_t ref, int depth, bool* byReference = nullptr) {
        auto uid = uidAt(ref);
        if (byReference) *byReference = uid.has_value();
        if (uid && m_keyIds[*uid] != kNoKey) return m_keyIds[*uid];
        auto text = keyText(ref, depth);
        if (!text) return std::unexpected(text.error());
        KeyId id = internKey(*text);
        if (uid) m_keyIds[*uid] = id;
        return id;
    }

    Result<void> decodeProperties(Record& record, uint64_t ref, int depth) {
        auto uid = uidAt(ref);
        if (!uid) return std::unexpected(uid.error());
        if (*uid == 0) return {};
        auto obj = m_r.object(m_objects[*uid]);
        if (!obj) return std::unexpected(obj.error());
        auto notADictionary = [&] {
            return failure(std::string(record.className()) +
                           " has properties that are not a dictionary");
        };
        // Only a dictionary holds keys and values; other kinds hold just members.
        if (obj->type != PlistType::Dict) return notADictionary();
        ObjectFields fields;
        for (size_t i = 0; i < obj->count(); ++i) {
            auto key = fieldName(obj->refs[i]);
            if (!key) return std::unexpected(key.error());
            fields.emplace_back(*key, obj->refs[obj->count() + i]);
        }
        if (!field(fields, "NS.keys")) return notADictionary();
        // Records of a class mostly share one keys array. Once each of its keys was read by
        // reference, its key ids are known for good and need not be looked up again.
        const uint64_t keysArray = *field(fields, "NS.keys");
        const auto known = m_keysOfArray.find(keysArray);
        const bool isKnown = known != m_keysOfArray.end();
        // A known keys array was checked for repeated keys when it was learned.
        const bool distinct = isKnown && m_distinctKeysArrays.contains(keysArray);
        auto refs = isKnown ? valueRefs(fields, known->second.size()) : dictRefs(fields);
        if (!refs) return std::unexpected(refs.error());
        Properties& props = record.properties();
        props.reserve(refs->second.size());
        std::vector<KeyId> learned;
        bool allByReference = !isKnown;
        for (size_t i = 0; i < refs->second.size(); ++i) {
            // Most values of a record are shared ones read before: take them from the cache
            // directly, counted as member() would count them.
            if (distinct && depth + 2 <= kMaxDepth) {
                const uint32_t uid = m_uidAtPlist[refs->second[i]];
                if (uid != kNoUid && uid != 0 && m_state[uid] == State::Done &&
                    m_cache[uid].kind() != Kind::Int) {
                    m_valueCount += m_sizes[uid];
                    if (m_valueCount > m_valueLimit) [[unlikely]]
                        return tooManyValues();
                    props.appendNew(known->second[i], m_cache[uid]);
                    continue;
                }
            }
            Result<KeyId> key = isKnown ? Result<KeyId>(known->second[i]) : Result<KeyId>();
            if (!isKnown) {
                bool byReference = false;
                key = internedKey(refs->first[i], depth + 1, &byReference);
                if (!key) return std::unexpected(key.error());
                allByReference = allByReference && byReference;
                learned.push_back(*key);
            }
            auto v = member(refs->second[i], depth + 1);
            if (!v) return std::unexpected(v.error());
            if (v->kind() == Kind::Int && defaultKind(record.recordClass(), *key) == Kind::Integer)
                *v = Value::integer(v->asInt());
            if (distinct)
                props.appendNew(*key, std::move(*v));
            else
                props.set(*key, std::move(*v));
        }
        if (allByReference) {
            std::vector<KeyId> sorted = learned;
            std::sort(sorted.begin(), sorted.end());
            if (std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end())
                m_distinctKeysArrays.insert(keysArray);
            m_keysOfArray.emplace(keysArray, std::move(learned));
        }
        return {};
    }

    Kind defaultKind(RecordClass cls, KeyId key) {
        if (cls == RecordClass::Foreign) return Kind::Absent;
        static thread_local std::unordered_map<uint64_t, Kind> cache;
        uint64_t k = (static_cast<uint64_t>(cls) << 32) | key;
        if (auto it = cache.find(k); it != cache.end()) return it->second;
        Ref<Record> fresh = Record::make(cls, Date{});
        Kind kind = fresh->properties().get(key).kind();
        cache.emplace(k, kind);
        return kind;
    }

    Result<Value> decodeRecord(uint32_t uid, RecordClass rc, const ObjectFields& fields,
                               int depth) {
        Ref<Record> record = Record::makeBare(rc);
        (void)uid;
        if (const uint64_t* props = field(fields, "properties")) {
            auto ok = decodeProperties(*record, *props, depth);
            if (!ok) return std::unexpected(ok.error());
        }
        const ClassInfo& info = classInfo(rc);
        for (size_t i = 0; i < info.listKeys.size(); ++i) {
            const uint64_t* ref = field(fields, info.listKeys[i]);
            if (!ref) continue;
            auto list = member(*ref, depth);
            if (!list) return list;
            if (list->isAbsent()) continue;
            if (list->kind() != Kind::Array)
                return failure(std::string(info.name) + "." + std::string(info.listKeys[i]) +
                               " is not a list");
            auto records = std::make_shared<RecordList>();
            records->reserve(list->asArray().size());
            for (const Value& element : list->asArray()) {
                if (element.kind() != Kind::Record)
                    return failure(std::string(info.name) + "." + std::string(info.listKeys[i]) +
                                   " holds a " + std::string(kindName(element.kind())) +
                                   " where records belong");
                records->push_back(element.recordRef());
            }
            record->setList(i, std::move(records));
        }
        return Value::record(record);
    }

    Result<Value> decodeForeign(const ClassDesc& cls, const ObjectFields& fields, int depth) {
        Ref<Record> record = Record::makeForeign(cls.name, cls.chain);
        for (const auto& [key, ref] : fields) {
            if (key == "$class") continue;
            auto v = member(ref, depth);
            if (!v) return v;
            record->properties().set(key, std::move(*v));
        }
        return Value::record(record);
    }

    const BinaryPlistReader& m_r;
    std::vector<uint64_t> m_objects;
    std::vector<Value> m_cache;
    std::vector<State> m_state;
    std::vector<uint32_t> m_keyIds;
    std::vector<uint32_t> m_uidAtPlist; // per plist object: the UID it holds, once read
    std::unordered_map<uint64_t, std::string> m_fieldNames;
    std::vector<uint64_t> m_sizes; // per object: the values its tree holds
    uint64_t m_valueCount = 0;
    uint64_t m_valueLimit;
    std::unordered_map<uint32_t, ClassDesc> m_classCache;
    // Per plist array of dictionary keys: the interned keys, once all were read by reference.
    std::unordered_map<uint64_t, std::vector<KeyId>> m_keysOfArray;
    std::unordered_set<uint64_t> m_distinctKeysArrays;
};

} // namespace

bool isPlainValueClassName(std::string_view n) {
    return isArrayClassName(n) || n == "NSDictionary" || n == "NSMutableDictionary" ||
           n == "NSString" || n == "NSMutableString" || n == "NSDate" || n == "NSData" ||
           n == "NSMutableData";
}

Result<Value> decodeKeyedArchive(std::string_view bytes, const std::string& context) {
    auto reader = BinaryPlistReader::open(bytes, context);
    if (!reader) return std::unexpected(reader.error());
    Decoder decoder(*reader, bytes.size());
    return decoder.run();
}

std::expected<Value, ArchiveFileError> readKeyedArchiveFile(const std::string& path) {
    std::error_code ec;
    if (!std::filesystem::exists(path, ec) && !ec)
        return std::unexpected(ArchiveFileError{true, Error{path + ": the file does not exist"}});
    auto bytes = readWholeFile(path);
    if (!bytes) return std::unexpected(ArchiveFileError{false, bytes.error(), true});
    auto v = decodeKeyedArchive(*bytes, path);
    if (!v) return std::unexpected(ArchiveFileError{false, v.error()});
    return *v;
}

} // namespace zifora::core
