#include "core/binaryplist.h"
#include "core/xmlplist.h"

#include <algorithm>
#include <unordered_set>

namespace zifora::core {

namespace {

class PlistDecoder {
  public:
    // A shared member is decoded once per use, so "[x, x]" nested 60 times would stand for
    // 2^60 values: the tree may hold 16 values per byte of the file, or 2^20, whichever is more.
    PlistDecoder(const BinaryPlistReader& r, uint64_t fileSize)
        : m_r(r), m_valueLimit(std::max<uint64_t>(uint64_t{1} << 20, fileSize * 16)) {}

    Result<Value> decode(uint64_t index, int depth) {
        if (depth > 512) return fail(m_r.context() + ": the property list is nested too deeply");
        if (++m_valueCount > m_valueLimit)
            return fail(m_r.context() + ": the property list stands for more than " +
                        std::to_string(m_valueLimit) +
                        " values (its objects are shared too often)");
        auto obj = m_r.object(index);
        if (!obj) return std::unexpected(obj.error());
        switch (obj->type) {
        case PlistType::Null:
            return Value{};
        case PlistType::Bool:
            return Value::boolean(obj->boolean);
        case PlistType::Integer:
            if (obj->integer >= INT32_MIN && obj->integer <= INT32_MAX)
                return Value::intValue(static_cast<int32_t>(obj->integer));
            return Value::integer(obj->integer);
        case PlistType::Real32:
            return Value::floatValue(static_cast<float>(obj->real));
        case PlistType::Real64:
            return Value::doubleValue(obj->real);
        case PlistType::Date:
            return Value::date(Date{obj->real});
        case PlistType::Data:
            return Value::data(obj->text);
        case PlistType::String:
            return Value::string(obj->text);
        case PlistType::Uid:
            return Value::integer(obj->integer);
        case PlistType::Array:
        case PlistType::Set:
        case PlistType::Dict:
            break;
        }
        if (!m_path.insert(index).second)
            return fail(m_r.context() + ": object " + std::to_string(index) + " contains itself");
        auto result = container(*obj, depth);
        m_path.erase(index);
        return result;
    }

  private:
    Result<Value> container(const PlistObject& obj, int depth) {
        if (obj.type == PlistType::Dict) {
            DictEntries entries;
            for (size_t i = 0; i < obj.count(); ++i) {
                auto key = m_r.string(obj.refs[i]);
                if (!key) return std::unexpected(key.error());
                auto v = decode(obj.refs[obj.count() + i], depth + 1);
                if (!v) return v;
                entries.emplace_back(std::move(*key), std::move(*v));
            }
            return Value::dict(std::move(entries));
        }
        ArrayElements elements;
        for (uint64_t ref : obj.refs) {
            auto v = decode(ref, depth + 1);
            if (!v) return v;
            elements.push_back(std::move(*v));
        }
        return Value::array(std::move(elements));
    }

    const BinaryPlistReader& m_r;
    std::unordered_set<uint64_t> m_path;
    uint64_t m_valueCount = 0;
    uint64_t m_valueLimit;
};

} // namespace

Result<Value> decodeBinaryPlist(std::string_view bytes, const std::string& context) {
    auto reader = BinaryPlistReader::open(bytes, context);
    if (!reader) return std::unexpected(reader.error());
    PlistDecoder decoder(*reader, bytes.size());
    return decoder.decode(reader->topObject(), 0);
}

Result<Value> decodePropertyList(std::string_view bytes, const std::string& context) {
    if (bytes.starts_with("bplist")) return decodeBinaryPlist(bytes, context);
    auto v = readXmlPlist(bytes);
    if (!v) return fail(context + ": " + v.error().message);
    return v;
}

} // namespace zifora::core
