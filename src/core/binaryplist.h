#pragma once
// Reader and writer of binary property lists ("bplist00").

#include "core/error.h"
#include "core/value.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zifora::core {

/// The kinds of object a binary property list holds.
enum class PlistType : uint8_t {
    Null,
    Bool,
    Integer,
    Real32,
    Real64,
    Date,
    Data,
    String,
    Uid,
    Array,
    Set,
    Dict,
};

/// A view of one object of a binary property list. Scalars carry their value; texts and data
/// are decoded on demand; containers carry the references of their members.
struct PlistObject {
    PlistType type = PlistType::Null;
    bool boolean = false;
    int64_t integer = 0;        // Integer (signed), Uid (unsigned, < 2^32)
    double real = 0;            // Real32, Real64, Date (seconds since 2001)
    std::string text;           // String (as UTF-8), Data (raw bytes)
    std::vector<uint64_t> refs; // Array, Set: members; Dict: keys, then as many values
    [[nodiscard]] size_t count() const {
        return type == PlistType::Dict ? refs.size() / 2 : refs.size();
    }
};

/// Random access to the objects of a binary property list held in memory. The whole frame
/// (header, trailer, offset table) is checked when the reader is made; each object is
/// checked when it is read, so hostile input gives an error and never reads out of bounds.
class BinaryPlistReader {
  public:
    /// Checks the frame; `bytes` must outlive the reader.
    [[nodiscard]] static Result<BinaryPlistReader> open(std::string_view bytes,
                                                        std::string context = "plist");

    [[nodiscard]] uint64_t objectCount() const { return m_count; }
    [[nodiscard]] uint64_t topObject() const { return m_top; }
    [[nodiscard]] const std::string& context() const { return m_context; }

    /// Reads object `index`. Texts and data are decoded only when `withText` is true.
    [[nodiscard]] Result<PlistObject> object(uint64_t index, bool withText = true) const;
    /// The type of object `index` without decoding it.
    [[nodiscard]] Result<PlistType> typeOf(uint64_t index) const;
    /// The text of a string object; refuses other kinds.
    [[nodiscard]] Result<std::string> string(uint64_t index) const;

  private:
    BinaryPlistReader() = default;
    [[nodiscard]] Result<uint64_t> offsetOf(uint64_t index) const;
    [[nodiscard]] Result<std::pair<uint64_t, uint64_t>> lengthAt(uint64_t pos, uint8_t low) const;
    Error error(const std::string& what) const;

    std::string_view m_bytes;
    std::string m_context;
    uint64_t m_count = 0;
    uint64_t m_top = 0;
    uint64_t m_tableOffset = 0;
    uint8_t m_offsetSize = 0;
    uint8_t m_refSize = 0;
};

/// Builds a binary property list object by object. Each add returns the object's index;
/// containers refer to indexes added before or after, as long as they exist at `finish`.
class BinaryPlistWriter {
  public:
    uint64_t addBool(bool v);
    uint64_t addInteger(int64_t v);
    uint64_t addReal32(float v);
    uint64_t addReal64(double v);
    uint64_t addDate(double sinceReferenceDate);
    uint64_t addString(std::string_view utf8);
    uint64_t addData(std::string_view bytes);
    uint64_t addUid(uint32_t v);
    uint64_t addArray(std::span<const uint64_t> members);
    uint64_t addDict(std::span<const uint64_t> keys, std::span<const uint64_t> values);
    /// Reserves an index for a container whose members are set later with `setArray`/`setDict`.
    uint64_t reserve();
    void setArray(uint64_t index, std::span<const uint64_t> members);
    void setDict(uint64_t index, std::span<const uint64_t> keys, std::span<const uint64_t> values);

    [[nodiscard]] uint64_t count() const { return m_objects.size(); }
    /// The finished file with `top` as its root object.
    [[nodiscard]] std::string finish(uint64_t top) const;

  private:
    struct Entry {
        uint8_t marker = 0;       // for containers: 0xA0 or 0xD0; for scalars 0 (bytes hold all)
        uint32_t scalarBegin = 0; // scalars: slice of m_scalarBytes
        uint32_t scalarLength = 0;
        uint64_t refsBegin = 0; // containers: slice of m_refs
        uint64_t refsCount = 0; // members (for dicts: 2 × pairs)
    };
    uint64_t addScalar(std::string_view encoded);

    std::vector<Entry> m_objects;
    std::string m_scalarBytes;
    // References are kept in 32 bits: a book would need billions of objects, far beyond
    // what fits in memory, before one of them could not be told apart.
    std::vector<uint32_t> m_refs;
};

} // namespace zifora::core

namespace zifora::core {
/// Reads a whole binary property list into values (dictionaries, arrays, scalars); UIDs
/// become integers. Nesting beyond 512 levels and cycles are refused.
[[nodiscard]] Result<Value> decodeBinaryPlist(std::string_view bytes, const std::string& context);
/// Reads a property list in binary or XML form.
[[nodiscard]] Result<Value> decodePropertyList(std::string_view bytes, const std::string& context);
} // namespace zifora::core
