#include "core/binaryplist.h"

#include "core/utf8.h"

#include <bit>
#include <cstring>

namespace zifora::core {

namespace {

constexpr size_t kTrailerSize = 32;
constexpr size_t kHeaderSize = 8;

uint64_t readBigEndian(std::string_view bytes, uint64_t pos, unsigned width) {
    // The widths a file uses, read whole; the loop serves any other.
    const char* at = bytes.data() + pos;
    switch (width) {
    case 1:
        return static_cast<unsigned char>(*at);
    case 2: {
        uint16_t v;
        std::memcpy(&v, at, 2);
        return std::endian::native == std::endian::little ? __builtin_bswap16(v) : v;
    }
    case 4: {
        uint32_t v;
        std::memcpy(&v, at, 4);
        return std::endian::native == std::endian::little ? __builtin_bswap32(v) : v;
    }
    case 8: {
        uint64_t v;
        std::memcpy(&v, at, 8);
        return std::endian::native == std::endian::little ? __builtin_bswap64(v) : v;
    }
    default:
        break;
    }
    uint64_t v = 0;
    for (unsigned i = 0; i < width; ++i)
        v = (v << 8) | static_cast<unsigned char>(bytes[pos + i]);
    return v;
}

void appendBigEndian(std::string& out, uint64_t v, unsigned width) {
    for (unsigned i = width; i > 0; --i)
        out += static_cast<char>((v >> (8 * (i - 1))) & 0xFF);
}

unsigned widthFor(uint64_t maxValue) {
    if (maxValue < (1ull << 8)) return 1;
    if (maxValue < (1ull << 16)) return 2;
    if (maxValue < (1ull << 32)) return 4;
    return 8;
}

} // namespace

// ---------------------------------------------------------------------------------------
// Reader

Error BinaryPlistReader::error(const std::string& what) const {
    return Error{m_context + ": " + what};
}

Result<BinaryPlistReader> BinaryPlistReader::open(std::string_view bytes, std::string context) {
    BinaryPlistReader r;
    r.m_bytes = bytes;
    r.m_context = std::move(context);
    if (bytes.size() < kHeaderSize + 1 + kTrailerSize)
        return std::unexpected(r.error("the file is too short to be a property list (" +
                                       std::to_string(bytes.size()) + " bytes)"));
    if (bytes.substr(0, 7) != "bplist0")
        return std::unexpected(r.error("the file is not a binary property list"));
    const uint64_t trailer = bytes.size() - kTrailerSize;
    r.m_offsetSize = static_cast<uint8_t>(bytes[trailer + 6]);
    r.m_refSize = static_cast<uint8_t>(bytes[trailer + 7]);
    r.m_count = readBigEndian(bytes, trailer + 8, 8);
    r.m_top = readBigEndian(bytes, trailer + 16, 8);
    r.m_tableOffset = readBigEndian(bytes, trailer + 24, 8);

    if (r.m_offsetSize < 1 || r.m_offsetSize > 8 || r.m_refSize < 1 || r.m_refSize > 8)
        return std::unexpected(r.error("the trailer gives impossible field sizes"));
    if (r.m_count < 1 || r.m_top >= r.m_count)
        return std::unexpected(r.error("the trailer names object " + std::to_string(r.m_top) +
                                       " as root, but there are " + std::to_string(r.m_count)));
    if (r.m_tableOffset < kHeaderSize + 1 || r.m_tableOffset > trailer)
        return std::unexpected(r.error("the offset table lies outside the file"));
    // The offset table must fill the room between its start and the trailer exactly.
    const uint64_t room = trailer - r.m_tableOffset;
    if (r.m_count > room / r.m_offsetSize || r.m_count * r.m_offsetSize != room)
        return std::unexpected(r.error("the offset table of " + std::to_string(r.m_count) +
                                       " objects does not fit the file"));
    if (r.m_refSize < 8 && r.m_count > (1ull << (8 * r.m_refSize)))
        return std::unexpected(r.error("object references are too narrow for the object count"));
    return r;
}

Result<uint64_t> BinaryPlistReader::offsetOf(uint64_t index) const {
    if (index >= m_count)
        return std::unexpected(error("a reference to object " + std::to_string(index) +
                                     ", but there are " + std::to_string(m_count)));
    uint64_t off = readBigEndian(m_bytes, m_tableOffset + index * m_offsetSize, m_offsetSize);
    if (off < kHeaderSize || off >= m_tableOffset)
        return std::unexpected(
            error("object " + std::to_string(index) + " lies outside the object table"));
    return off;
}

// Reads the count of a marker whose low nibble is 0xF: an integer object follows.
// Returns (count, position after the count).
Result<std::pair<uint64_t, uint64_t>> BinaryPlistReader::lengthAt(uint64_t pos, uint8_t low) const {
    if (low != 0xF) return std::pair{uint64_t{low}, pos + 1};
    uint64_t p = pos + 1;
    if (p >= m_tableOffset) return std::unexpected(error("a length runs into the offset table"));
    auto marker = static_cast<uint8_t>(m_bytes[p]);
    if ((marker & 0xF0) != 0x10 || (marker & 0x0F) > 3)
        return std::unexpected(error("a length is not written as an integer"));
    unsigned width = 1u << (marker & 0x0F);
    if (p + 1 + width > m_tableOffset)
        return std::unexpected(error("a length runs into the offset table"));
    uint64_t n = readBigEndian(m_bytes, p + 1, width);
    return std::pair{n, p + 1 + width};
}

Result<PlistType> BinaryPlistReader::typeOf(uint64_t index) const {
    auto off = offsetOf(index);
    if (!off) return std::unexpected(off.error());
    auto marker = static_cast<uint8_t>(m_bytes[*off]);
    switch (marker >> 4) {
    case 0x0:
        return marker == 0x08 || marker == 0x09 ? PlistType::Bool : PlistType::Null;
    case 0x1:
        return PlistType::Integer;
    case 0x2:
        return (marker & 0x0F) == 2 ? PlistType::Real32 : PlistType::Real64;
    case 0x3:
        return PlistType::Date;
    case 0x4:
        return PlistType::Data;
    case 0x5:
    case 0x6:
        return PlistType::String;
    case 0x8:
        return PlistType::Uid;
    case 0xA:
        return PlistType::Array;
    case 0xC:
        return PlistType::Set;
    case 0xD:
        return PlistType::Dict;
    default:
        break;
    }
    return std::unexpected(error("object " + std::to_string(index) + " has an unknown marker"));
}

Result<std::string> BinaryPlistReader::string(uint64_t index) const {
    auto obj = object(index);
    if (!obj) return std::unexpected(obj.error());
    if (obj->type != PlistType::String)
        return std::unexpected(error("object " + std::to_string(index) + " is not a text"));
    return std::move(obj->text);
}

Result<PlistObject> BinaryPlistReader::object(uint64_t index, bool withText) const {
    auto offResult = offsetOf(index);
    if (!offResult) return std::unexpected(offResult.error());
    const uint64_t pos = *offResult;
    const auto marker = static_cast<uint8_t>(m_bytes[pos]);
    const uint8_t low = marker & 0x0F;
    // Built only for an error message: a load reads millions of objects.
    auto where = [index] { return "object " + std::to_string(index); };
    auto need = [&](uint64_t from, uint64_t size) -> bool {
        return from <= m_tableOffset && size <= m_tableOffset - from;
    };

    PlistObject obj;
    switch (marker >> 4) {
    case 0x0:
        if (marker == 0x08 || marker == 0x09) {
            obj.type = PlistType::Bool;
            obj.boolean = marker == 0x09;
        } else if (marker == 0x00) {
            obj.type = PlistType::Null;
        } else {
            return std::unexpected(error(where() + " has an unsupported marker"));
        }
        return obj;
    case 0x1: {
        if (low > 4) return std::unexpected(error(where() + " is an integer of impossible width"));
        unsigned width = 1u << low;
        if (!need(pos + 1, width)) return std::unexpected(error(where() + " is cut off"));
        obj.type = PlistType::Integer;
        // 16-byte integers keep their low 64 bits.
        obj.integer = static_cast<int64_t>(
            readBigEndian(m_bytes, pos + 1 + (width > 8 ? width - 8 : 0), width > 8 ? 8 : width));
        return obj;
    }
    case 0x2: {
        if (low != 2 && low != 3)
            return std::unexpected(error(where() + " is a real of impossible width"));
        unsigned width = 1u << low;
        if (!need(pos + 1, width)) return std::unexpected(error(where() + " is cut off"));
        uint64_t bits = readBigEndian(m_bytes, pos + 1, width);
        if (width == 4) {
            obj.type = PlistType::Real32;
            obj.real = std::bit_cast<float>(static_cast<uint32_t>(bits));
        } else {
            obj.type = PlistType::Real64;
            obj.real = std::bit_cast<double>(bits);
        }
        return obj;
    }
    case 0x3: {
        if (marker != 0x33) return std::unexpected(error(where() + " is a malformed date"));
        if (!need(pos + 1, 8)) return std::unexpected(error(where() + " is cut off"));
        obj.type = PlistType::Date;
        obj.real = std::bit_cast<double>(readBigEndian(m_bytes, pos + 1, 8));
        return obj;
    }
    case 0x4:
    case 0x5:
    case 0x6: {
        auto len = lengthAt(pos, low);
        if (!len) return std::unexpected(len.error());
        auto [count, start] = *len;
        const bool utf16 = (marker >> 4) == 0x6;
        if (utf16 && count > (UINT64_MAX / 2))
            return std::unexpected(error(where() + " is too long"));
        uint64_t bytes = utf16 ? count * 2 : count;
        if (!need(start, bytes)) return std::unexpected(error(where() + " runs past its table"));
        obj.type = (marker >> 4) == 0x4 ? PlistType::Data : PlistType::String;
        if (!withText) return obj;
        if (utf16) {
            std::u16string units(count, u'\0');
            for (uint64_t i = 0; i < count; ++i)
                units[i] = static_cast<char16_t>(readBigEndian(m_bytes, start + 2 * i, 2));
            obj.text = utf8FromUtf16(units);
        } else {
            obj.text.assign(m_bytes.substr(start, bytes));
        }
        return obj;
    }
    case 0x8: {
        unsigned width = low + 1u;
        if (!need(pos + 1, width)) return std::unexpected(error(where() + " is cut off"));
        uint64_t v = width > 8 ? readBigEndian(m_bytes, pos + 1 + width - 8, 8)
                               : readBigEndian(m_bytes, pos + 1, width);
        if (v > 0xFFFFFFFFull)
            return std::unexpected(error(where() + " is a reference beyond range"));
        obj.type = PlistType::Uid;
        obj.integer = static_cast<int64_t>(v);
        return obj;
    }
    case 0xA:
    case 0xC:
    case 0xD: {
        auto len = lengthAt(pos, low);
        if (!len) return std::unexpected(len.error());
        auto [count, start] = *len;
        const bool dict = (marker >> 4) == 0xD;
        uint64_t refs = dict ? count * 2 : count;
        if (count > m_tableOffset || refs > m_tableOffset / m_refSize ||
            !need(start, refs * m_refSize))
            return std::unexpected(error(where() + " claims " + std::to_string(count) +
                                         " members, more than the file holds"));
        obj.type =
            dict ? PlistType::Dict : ((marker >> 4) == 0xA ? PlistType::Array : PlistType::Set);
        obj.refs.resize(refs);
        for (uint64_t i = 0; i < refs; ++i) {
            uint64_t ref = readBigEndian(m_bytes, start + i * m_refSize, m_refSize);
            if (ref >= m_count)
                return std::unexpected(error(where() + " refers to object " + std::to_string(ref) +
                                             ", but there are " + std::to_string(m_count)));
            obj.refs[i] = ref;
        }
        return obj;
    }
    default:
        break;
    }
    return std::unexpected(error(where() + " has an unknown marker"));
}

// ---------------------------------------------------------------------------------------
// Writer

uint64_t BinaryPlistWriter::addScalar(std::string_view encoded) {
    Entry e;
    e.scalarBegin = static_cast<uint32_t>(m_scalarBytes.size());
    e.scalarLength = static_cast<uint32_t>(encoded.size());
    m_scalarBytes.append(encoded);
    m_objects.push_back(e);
    return m_objects.size() - 1;
}

namespace {
void appendMarkerWithLength(std::string& out, uint8_t type, uint64_t length) {
    if (length < 15) {
        out += static_cast<char>(type | length);
        return;
    }
    out += static_cast<char>(type | 0x0F);
    unsigned width = widthFor(length);
    out += static_cast<char>(0x10 | std::countr_zero(width));
    appendBigEndian(out, length, width);
}
} // namespace

uint64_t BinaryPlistWriter::addBool(bool v) {
    return addScalar(v ? "\x09" : "\x08");
}

uint64_t BinaryPlistWriter::addInteger(int64_t v) {
    std::string s;
    auto u = static_cast<uint64_t>(v);
    // Like the platform's writer: the width is chosen on the unsigned value, so every
    // negative number takes eight bytes.
    unsigned width = v < 0 ? 8 : widthFor(u);
    s += static_cast<char>(0x10 | std::countr_zero(width));
    appendBigEndian(s, u, width);
    return addScalar(s);
}

uint64_t BinaryPlistWriter::addReal32(float v) {
    std::string s = "\x22";
    appendBigEndian(s, std::bit_cast<uint32_t>(v), 4);
    return addScalar(s);
}

uint64_t BinaryPlistWriter::addReal64(double v) {
    std::string s = "\x23";
    appendBigEndian(s, std::bit_cast<uint64_t>(v), 8);
    return addScalar(s);
}

uint64_t BinaryPlistWriter::addDate(double sinceReferenceDate) {
    std::string s = "\x33";
    appendBigEndian(s, std::bit_cast<uint64_t>(sinceReferenceDate), 8);
    return addScalar(s);
}

uint64_t BinaryPlistWriter::addString(std::string_view utf8) {
    std::string s;
    bool ascii = true;
    for (char c : utf8)
        if (static_cast<unsigned char>(c) >= 0x80) ascii = false;
    if (ascii) {
        appendMarkerWithLength(s, 0x50, utf8.size());
        s.append(utf8);
    } else {
        std::u16string units = utf16FromUtf8(utf8);
        appendMarkerWithLength(s, 0x60, units.size());
        for (char16_t u : units)
            appendBigEndian(s, u, 2);
    }
    return addScalar(s);
}

uint64_t BinaryPlistWriter::addData(std::string_view bytes) {
    std::string s;
    appendMarkerWithLength(s, 0x40, bytes.size());
    s.append(bytes);
    return addScalar(s);
}

uint64_t BinaryPlistWriter::addUid(uint32_t v) {
    std::string s;
    unsigned width = v <= 0xFF ? 1 : (v <= 0xFFFF ? 2 : 4);
    s += static_cast<char>(0x80 | (width - 1));
    appendBigEndian(s, v, width);
    return addScalar(s);
}

uint64_t BinaryPlistWriter::reserve() {
    m_objects.push_back(Entry{0xA0, 0, 0, 0, 0});
    return m_objects.size() - 1;
}

void BinaryPlistWriter::setArray(uint64_t index, std::span<const uint64_t> members) {
    Entry& e = m_objects.at(index);
    e.marker = 0xA0;
    e.refsBegin = m_refs.size();
    e.refsCount = members.size();
    for (uint64_t m : members)
        m_refs.push_back(static_cast<uint32_t>(m));
}

void BinaryPlistWriter::setDict(uint64_t index, std::span<const uint64_t> keys,
                                std::span<const uint64_t> values) {
    Entry& e = m_objects.at(index);
    e.marker = 0xD0;
    e.refsBegin = m_refs.size();
    e.refsCount = keys.size() * 2;
    for (uint64_t k : keys)
        m_refs.push_back(static_cast<uint32_t>(k));
    for (uint64_t v : values)
        m_refs.push_back(static_cast<uint32_t>(v));
}

uint64_t BinaryPlistWriter::addArray(std::span<const uint64_t> members) {
    uint64_t index = reserve();
    setArray(index, members);
    return index;
}

uint64_t BinaryPlistWriter::addDict(std::span<const uint64_t> keys,
                                    std::span<const uint64_t> values) {
    uint64_t index = reserve();
    setDict(index, keys, values);
    return index;
}

namespace {

// Writes `v` as `width` big-endian bytes at `p`; returns the position after them.
char* putBigEndian(char* p, uint64_t v, unsigned width) {
    if constexpr (std::endian::native == std::endian::little) {
        switch (width) {
        case 1:
            *p = static_cast<char>(v);
            return p + 1;
        case 2: {
            const uint16_t b = __builtin_bswap16(static_cast<uint16_t>(v));
            std::memcpy(p, &b, 2);
            return p + 2;
        }
        case 4: {
            const uint32_t b = __builtin_bswap32(static_cast<uint32_t>(v));
            std::memcpy(p, &b, 4);
            return p + 4;
        }
        case 8: {
            const uint64_t b = __builtin_bswap64(v);
            std::memcpy(p, &b, 8);
            return p + 8;
        }
        default:
            break;
        }
    }
    for (unsigned i = width; i > 0; --i)
        *p++ = static_cast<char>((v >> (8 * (i - 1))) & 0xFF);
    return p;
}

// The bytes `appendMarkerWithLength` writes.
uint64_t markerSize(uint64_t length) {
    return length < 15 ? 1 : 2 + widthFor(length);
}

char* putMarkerWithLength(char* p, uint8_t type, uint64_t length) {
    if (length < 15) {
        *p++ = static_cast<char>(type | length);
        return p;
    }
    *p++ = static_cast<char>(type | 0x0F);
    const unsigned width = widthFor(length);
    *p++ = static_cast<char>(0x10 | std::countr_zero(width));
    return putBigEndian(p, length, width);
}

} // namespace

std::string BinaryPlistWriter::finish(uint64_t top) const {
    const uint64_t count = m_objects.size();
    // Like the platform's writer, the reference width is chosen on the object count.
    const unsigned refSize = widthFor(count);
    // The size of every part first, so that the file is written straight into one buffer.
    uint64_t tableOffset = kHeaderSize;
    for (const Entry& e : m_objects) {
        if (e.marker == 0) {
            tableOffset += e.scalarLength;
        } else {
            const uint64_t members = e.marker == 0xD0 ? e.refsCount / 2 : e.refsCount;
            tableOffset += markerSize(members) + e.refsCount * refSize;
        }
    }
    const unsigned offsetSize = widthFor(tableOffset);
    const uint64_t total = tableOffset + count * offsetSize + kTrailerSize;
    std::string out;
    out.resize_and_overwrite(total, [&](char* begin, size_t) {
        char* p = begin;
        std::memcpy(p, "bplist00", kHeaderSize);
        p += kHeaderSize;
        char* table = begin + tableOffset;
        for (const Entry& e : m_objects) {
            table = putBigEndian(table, static_cast<uint64_t>(p - begin), offsetSize);
            if (e.marker == 0) {
                std::memcpy(p, m_scalarBytes.data() + e.scalarBegin, e.scalarLength);
                p += e.scalarLength;
                continue;
            }
            const uint64_t members = e.marker == 0xD0 ? e.refsCount / 2 : e.refsCount;
            p = putMarkerWithLength(p, e.marker, members);
            for (uint64_t r = 0; r < e.refsCount; ++r)
                p = putBigEndian(p, m_refs[e.refsBegin + r], refSize);
        }
        std::memset(table, 0, 6);
        table += 6;
        *table++ = static_cast<char>(offsetSize);
        *table++ = static_cast<char>(refSize);
        table = putBigEndian(table, count, 8);
        table = putBigEndian(table, top, 8);
        putBigEndian(table, tableOffset, 8);
        return total;
    });
    return out;
}

} // namespace zifora::core
