#include "core/value.h"

#include "core/record.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace zifora::core {

namespace {

struct TextPayload final : Shared {
    explicit TextPayload(std::string_view t) : text(t) {}
    std::string text;
};
struct DictPayload final : Shared {
    explicit DictPayload(DictEntries e) : entries(std::move(e)) {}
    DictEntries entries;
};
struct ArrayPayload final : Shared {
    explicit ArrayPayload(ArrayElements e) : elements(std::move(e)) {}
    ArrayElements elements;
};

const std::string& emptyText() {
    static const std::string empty;
    return empty;
}
const DictEntries& emptyDict() {
    static const DictEntries empty;
    return empty;
}
const ArrayElements& emptyArray() {
    static const ArrayElements empty;
    return empty;
}

} // namespace

std::string_view kindName(Kind kind) {
    switch (kind) {
    case Kind::Absent:
        return "absent";
    case Kind::String:
        return "string";
    case Kind::Float:
        return "float";
    case Kind::Int:
        return "int";
    case Kind::Integer:
        return "integer";
    case Kind::Double:
        return "double";
    case Kind::Bool:
        return "bool";
    case Kind::Date:
        return "date";
    case Kind::Image:
        return "image";
    case Kind::Data:
        return "data";
    case Kind::Dict:
        return "dict";
    case Kind::Array:
        return "array";
    case Kind::Record:
        return "record";
    }
    return "absent";
}

bool Value::holdsShared() const {
    switch (m_kind) {
    case Kind::String:
    case Kind::Image:
    case Kind::Data:
    case Kind::Dict:
    case Kind::Array:
    case Kind::Record:
        return m_u.p != nullptr;
    default:
        return false;
    }
}

void Value::retainPayload() const noexcept {
    if (holdsShared()) m_u.p->retain();
}

void Value::releasePayload() noexcept {
    if (holdsShared()) m_u.p->release();
}

Value::Value(const Value& o) noexcept : m_kind(o.m_kind), m_slot(o.m_slot), m_u(o.m_u) {
    retainPayload();
}

Value::Value(Value&& o) noexcept : m_kind(o.m_kind), m_slot(o.m_slot), m_u(o.m_u) {
    o.m_kind = Kind::Absent;
    o.m_u.p = nullptr;
}

Value& Value::operator=(const Value& o) noexcept {
    if (this != &o) {
        o.retainPayload();
        releasePayload();
        m_kind = o.m_kind;
        m_slot = o.m_slot;
        m_u = o.m_u;
    }
    return *this;
}

Value& Value::operator=(Value&& o) noexcept {
    if (this != &o) {
        releasePayload();
        m_kind = o.m_kind;
        m_slot = o.m_slot;
        m_u = o.m_u;
        o.m_kind = Kind::Absent;
        o.m_u.p = nullptr;
    }
    return *this;
}

Value::~Value() {
    releasePayload();
}

Value Value::string(std::string_view text) {
    Value v;
    v.m_kind = Kind::String;
    if (!text.empty()) {
        auto* p = new TextPayload(text);
        p->retain();
        v.m_u.p = p;
    }
    return v;
}

Value Value::image(std::string_view name) {
    Value v = string(name);
    v.m_kind = Kind::Image;
    return v;
}

Value Value::data(std::string bytes) {
    Value v = string(bytes);
    v.m_kind = Kind::Data;
    return v;
}

Value Value::floatValue(float f) {
    Value v;
    v.m_kind = Kind::Float;
    v.m_u.n = 0;
    v.m_u.f = f;
    return v;
}

Value Value::intValue(int32_t i) {
    Value v;
    v.m_kind = Kind::Int;
    v.m_u.n = 0;
    v.m_u.i = i;
    return v;
}

Value Value::integer(int64_t n) {
    Value v;
    v.m_kind = Kind::Integer;
    v.m_u.n = n;
    return v;
}

Value Value::doubleValue(double d) {
    Value v;
    v.m_kind = Kind::Double;
    v.m_u.d = d;
    return v;
}

Value Value::boolean(bool b) {
    Value v;
    v.m_kind = Kind::Bool;
    v.m_u.n = 0;
    v.m_u.b = b;
    return v;
}

Value Value::date(Date d) {
    Value v;
    v.m_kind = Kind::Date;
    v.m_u.d = d.sinceReferenceDate;
    return v;
}

Value Value::dict(DictEntries entries) {
    Value v;
    v.m_kind = Kind::Dict;
    if (!entries.empty()) {
        auto* p = new DictPayload(std::move(entries));
        p->retain();
        v.m_u.p = p;
    }
    return v;
}

Value Value::array(ArrayElements elements) {
    Value v;
    v.m_kind = Kind::Array;
    if (!elements.empty()) {
        auto* p = new ArrayPayload(std::move(elements));
        p->retain();
        v.m_u.p = p;
    }
    return v;
}

Value Value::record(Ref<Record> record) {
    Value v;
    if (!record) return v;
    v.m_kind = Kind::Record;
    record->retain();
    v.m_u.p = record.get();
    return v;
}

bool Value::isNumber() const {
    switch (m_kind) {
    case Kind::Float:
    case Kind::Int:
    case Kind::Integer:
    case Kind::Double:
    case Kind::Bool:
        return true;
    default:
        return false;
    }
}

float Value::toFloat() const {
    switch (m_kind) {
    case Kind::Float:
        return m_u.f;
    case Kind::Int:
        return static_cast<float>(m_u.i);
    case Kind::Integer:
        return static_cast<float>(m_u.n);
    case Kind::Double:
        return static_cast<float>(m_u.d);
    case Kind::Bool:
        return m_u.b ? 1.0f : 0.0f;
    case Kind::String:
        return floatFromText(text());
    default:
        return 0.0f;
    }
}

double Value::toDouble() const {
    switch (m_kind) {
    case Kind::Float:
        return m_u.f;
    case Kind::Int:
        return m_u.i;
    case Kind::Integer:
        return static_cast<double>(m_u.n);
    case Kind::Double:
        return m_u.d;
    case Kind::Bool:
        return m_u.b ? 1.0 : 0.0;
    case Kind::String:
        return doubleFromText(text());
    default:
        return 0.0;
    }
}

namespace {
int64_t saturatingInteger(double d) {
    if (std::isnan(d)) return 0;
    if (d >= 9.2233720368547758e18) return INT64_MAX;
    if (d <= -9.2233720368547758e18) return INT64_MIN;
    return static_cast<int64_t>(d);
}
} // namespace

int64_t Value::toInteger() const {
    switch (m_kind) {
    case Kind::Float:
        return saturatingInteger(m_u.f);
    case Kind::Int:
        return m_u.i;
    case Kind::Integer:
        return m_u.n;
    case Kind::Double:
        return saturatingInteger(m_u.d);
    case Kind::Bool:
        return m_u.b ? 1 : 0;
    case Kind::String:
        return integerFromText(text());
    default:
        return 0;
    }
}

int32_t Value::toInt() const {
    if (m_kind == Kind::Int) return m_u.i;
    // Like the platform's intValue, an out-of-range number is clamped.
    int64_t n = toInteger();
    if (n > INT32_MAX) return INT32_MAX;
    if (n < INT32_MIN) return INT32_MIN;
    return static_cast<int32_t>(n);
}

bool Value::toBool() const {
    switch (m_kind) {
    case Kind::Bool:
        return m_u.b;
    case Kind::Float:
        return m_u.f != 0.0f;
    case Kind::Int:
        return m_u.i != 0;
    case Kind::Integer:
        return m_u.n != 0;
    case Kind::Double:
        return m_u.d != 0.0;
    case Kind::String:
        return boolFromText(text());
    default:
        return false;
    }
}

const std::string& Value::text() const {
    if ((m_kind == Kind::String || m_kind == Kind::Image || m_kind == Kind::Data) && m_u.p)
        return static_cast<const TextPayload*>(m_u.p)->text;
    return emptyText();
}

Date Value::toDate() const {
    return m_kind == Kind::Date ? Date{m_u.d} : Date{};
}

const DictEntries& Value::asDict() const {
    if (m_kind == Kind::Dict && m_u.p) return static_cast<const DictPayload*>(m_u.p)->entries;
    return emptyDict();
}

const ArrayElements& Value::asArray() const {
    if (m_kind == Kind::Array && m_u.p) return static_cast<const ArrayPayload*>(m_u.p)->elements;
    return emptyArray();
}

Record* Value::asRecord() const {
    if (m_kind != Kind::Record) return nullptr;
    return const_cast<Record*>(static_cast<const Record*>(m_u.p));
}

Ref<Record> Value::recordRef() const {
    return Ref<Record>(asRecord());
}

Value Value::operator[](std::string_view key) const {
    for (const auto& [k, v] : asDict())
        if (k == key) return v;
    return {};
}

bool operator==(const Value& a, const Value& b) {
    if (a.m_kind != b.m_kind) return false;
    switch (a.m_kind) {
    case Kind::Absent:
        return true;
    case Kind::String:
    case Kind::Image:
    case Kind::Data:
        return a.text() == b.text();
    case Kind::Float:
        return std::memcmp(&a.m_u.f, &b.m_u.f, sizeof(float)) == 0;
    case Kind::Int:
        return a.m_u.i == b.m_u.i;
    case Kind::Integer:
        return a.m_u.n == b.m_u.n;
    case Kind::Double:
    case Kind::Date:
        return std::memcmp(&a.m_u.d, &b.m_u.d, sizeof(double)) == 0;
    case Kind::Bool:
        return a.m_u.b == b.m_u.b;
    case Kind::Dict:
        return a.asDict() == b.asDict();
    case Kind::Array:
        return a.asArray() == b.asArray();
    case Kind::Record:
        return a.m_u.p == b.m_u.p;
    }
    return false;
}

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

// The longest prefix of `text` (after blanks) that reads as a decimal number.
std::string numberPrefix(std::string_view text, bool allowFraction) {
    size_t i = 0;
    while (i < text.size() && isBlank(text[i]))
        ++i;
    std::string out;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) out += text[i++];
    size_t digits = 0;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) {
        out += text[i++];
        ++digits;
    }
    if (allowFraction) {
        if (i < text.size() && text[i] == '.') {
            out += text[i++];
            while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) {
                out += text[i++];
                ++digits;
            }
        }
        if (digits > 0 && i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
            size_t j = i + 1;
            std::string exponent = "e";
            if (j < text.size() && (text[j] == '+' || text[j] == '-')) exponent += text[j++];
            size_t expDigits = 0;
            while (j < text.size() && std::isdigit(static_cast<unsigned char>(text[j]))) {
                exponent += text[j++];
                ++expDigits;
            }
            if (expDigits > 0) out += exponent;
        }
    }
    if (digits == 0) return {};
    return out;
}

} // namespace

// The readers below use from_chars, which ignores the process locale: a stored "119.5"
// reads as 119.5 also when the program runs under a German number locale.
template <typename T> T parsePrefix(std::string_view text) {
    std::string prefix = numberPrefix(text, /*allowFraction=*/true);
    if (prefix.empty()) return T{0};
    const char* first = prefix.data();
    if (*first == '+') ++first;
    T value{0};
    auto [ptr, ec] = std::from_chars(first, prefix.data() + prefix.size(), value);
    if (ec == std::errc::result_out_of_range) {
        bool negative = prefix.front() == '-';
        // Too large: infinity; too small: zero, as the C library reads it.
        bool tiny =
            prefix.find_first_of("123456789") != std::string::npos &&
            (prefix.find("e-") != std::string::npos || prefix.find("E-") != std::string::npos);
        T magnitude = tiny ? T{0} : std::numeric_limits<T>::infinity();
        return negative ? -magnitude : magnitude;
    }
    (void)ptr;
    return value;
}

double doubleFromText(std::string_view text) {
    return parsePrefix<double>(text);
}

float floatFromText(std::string_view text) {
    return parsePrefix<float>(text);
}

int64_t integerFromText(std::string_view text) {
    std::string prefix = numberPrefix(text, /*allowFraction=*/false);
    if (prefix.empty()) return 0;
    errno = 0;
    long long n = std::strtoll(prefix.c_str(), nullptr, 10);
    return n;
}

bool boolFromText(std::string_view text) {
    // True for a leading Y, y, T, t or a non-zero digit, after blanks, a sign and zeros.
    size_t i = 0;
    while (i < text.size() && isBlank(text[i]))
        ++i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    while (i < text.size() && text[i] == '0')
        ++i;
    if (i >= text.size()) return false;
    char c = text[i];
    return c == 'Y' || c == 'y' || c == 'T' || c == 't' || (c >= '1' && c <= '9');
}

namespace {

bool recordNestsWithin(const Record& record, int levels) {
    const bool foreign = record.recordClass() == RecordClass::Foreign;
    const int below = levels - (foreign ? 1 : 2);
    // A foreign object holds its members one level down; one of ours is two levels deep
    // even when empty.
    if (below < 0) return foreign && record.properties().empty();
    // A property of ours fits into any record: it may be copied into another one.
    const int propertyLevels = foreign ? below : std::min(below, kMaxValueNesting);
    bool fits = true;
    record.properties().forEachId([&](KeyId, const Value& member) {
        // Texts and numbers, the most of them, need no call.
        const Kind kind = member.kind();
        if (kind == Kind::Dict || kind == Kind::Array || kind == Kind::Record ||
            kind == Kind::Image)
            fits = fits && nestsWithin(member, propertyLevels);
    });
    for (size_t i = 0; i < record.listCount() && fits; ++i)
        for (const auto& child : record.list(i))
            if (!recordNestsWithin(*child, below)) return false;
    return fits;
}

} // namespace

bool nestsWithin(const Value& value, int levels) {
    // Absent members are not written at all.
    if (value.isAbsent()) return true;
    if (levels < 0) return false;
    switch (value.kind()) {
    case Kind::Image:
        return levels >= 1;
    case Kind::Dict:
        for (const auto& [key, member] : value.asDict())
            if (!nestsWithin(member, levels - 1)) return false;
        return true;
    case Kind::Array:
        for (const Value& member : value.asArray())
            if (!nestsWithin(member, levels - 1)) return false;
        return true;
    case Kind::Record:
        return recordNestsWithin(*value.asRecord(), levels);
    default:
        return true;
    }
}

} // namespace zifora::core
