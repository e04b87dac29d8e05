#pragma once
// The value of one property of a record, and the shared pieces values are made of.

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zifora::core {

/// Base of everything a value shares by reference: texts, dictionaries, arrays, records.
/// The count is atomic so that read-only walks on worker threads stay safe.
class Shared {
  public:
    Shared() = default;
    Shared(const Shared&) : m_refs(0) {}
    Shared& operator=(const Shared&) { return *this; }
    virtual ~Shared() = default;

    void retain() const noexcept { m_refs.fetch_add(1, std::memory_order_relaxed); }
    void release() const noexcept {
        if (m_refs.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
    }
    [[nodiscard]] bool isUnique() const noexcept {
        return m_refs.load(std::memory_order_acquire) == 1;
    }

  private:
    mutable std::atomic<uint32_t> m_refs{0};
};

/// An owning pointer to a `Shared` object.
template <typename T> class Ref {
  public:
    Ref() = default;
    Ref(std::nullptr_t) {}
    explicit Ref(T* p) : m_p(p) {
        if (m_p) m_p->retain();
    }
    Ref(const Ref& o) : m_p(o.m_p) {
        if (m_p) m_p->retain();
    }
    Ref(Ref&& o) noexcept : m_p(std::exchange(o.m_p, nullptr)) {}
    template <typename U>
    requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& o) : Ref(o.get()) {}
    ~Ref() {
        if (m_p) m_p->release();
    }
    Ref& operator=(Ref o) noexcept {
        std::swap(m_p, o.m_p);
        return *this;
    }
    T* get() const noexcept { return m_p; }
    T* operator->() const noexcept { return m_p; }
    T& operator*() const noexcept { return *m_p; }
    explicit operator bool() const noexcept { return m_p != nullptr; }
    friend bool operator==(const Ref& a, const Ref& b) { return a.m_p == b.m_p; }

  private:
    T* m_p = nullptr;
};

template <typename T, typename... Args> Ref<T> makeRef(Args&&... args) {
    return Ref<T>(new T(std::forward<Args>(args)...));
}

class Value;
class Record;

/// A point in time as the archive keeps it: seconds since 2001-01-01 00:00:00 UTC.
struct Date {
    double sinceReferenceDate = 0;
    static constexpr double kUnixOffset = 978307200.0;
    [[nodiscard]] double unixSeconds() const { return sinceReferenceDate + kUnixOffset; }
    static Date fromUnix(double seconds) { return Date{seconds - kUnixOffset}; }
    friend bool operator==(const Date&, const Date&) = default;
};

using DictEntries = std::vector<std::pair<std::string, Value>>;
using ArrayElements = std::vector<Value>;

enum class Kind : uint8_t {
    Absent,
    String,
    Float,   // 32-bit float
    Int,     // 32-bit signed
    Integer, // 64-bit signed
    Double,
    Bool,
    Date,
    Image, // a row icon, kept by name
    Data,  // raw bytes (only in foreign archives)
    Dict,  // text keys, in insertion order
    Array,
    Record,
};

[[nodiscard]] std::string_view kindName(Kind kind);

/// One property value. Small (16 bytes): numbers inline, the rest shared and immutable.
/// Absent is not stored anywhere: a key that has no value is simply missing from its
/// dictionary, and `Value{}` is what a look-up of such a key returns.
class Value {
  public:
    Value() noexcept : m_kind(Kind::Absent) { m_u.p = nullptr; }
    Value(const Value& o) noexcept;
    Value(Value&& o) noexcept;
    Value& operator=(const Value& o) noexcept;
    Value& operator=(Value&& o) noexcept;
    ~Value();

    static Value string(std::string_view text);
    static Value floatValue(float v);
    static Value intValue(int32_t v);
    static Value integer(int64_t v);
    static Value doubleValue(double v);
    static Value boolean(bool v);
    static Value date(Date d);
    static Value image(std::string_view name);
    static Value data(std::string bytes);
    static Value dict(DictEntries entries);
    static Value array(ArrayElements elements);
    static Value record(Ref<Record> record);

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] bool isAbsent() const { return m_kind == Kind::Absent; }
    [[nodiscard]] bool isNumber() const;

    // Dictionary-semantics reads: never fail, give 0 / "" / false for what doesn't fit.
    [[nodiscard]] float toFloat() const;
    [[nodiscard]] double toDouble() const;
    [[nodiscard]] int32_t toInt() const;
    [[nodiscard]] int64_t toInteger() const;
    [[nodiscard]] bool toBool() const;
    /// The text of a string or image name; "" for anything else.
    [[nodiscard]] const std::string& text() const;
    [[nodiscard]] Date toDate() const;

    // Exact accessors; only valid for the matching kind.
    [[nodiscard]] float asFloat() const { return m_u.f; }
    [[nodiscard]] int32_t asInt() const { return m_u.i; }
    [[nodiscard]] int64_t asInteger() const { return m_u.n; }
    [[nodiscard]] double asDouble() const { return m_u.d; }
    [[nodiscard]] bool asBool() const { return m_u.b; }
    [[nodiscard]] Date asDate() const { return Date{m_u.d}; }
    [[nodiscard]] const DictEntries& asDict() const;
    [[nodiscard]] const ArrayElements& asArray() const;
    [[nodiscard]] Record* asRecord() const;
    [[nodiscard]] Ref<Record> recordRef() const;

    /// Look-up in a dictionary value; absent for a missing key or a non-dictionary.
    [[nodiscard]] Value operator[](std::string_view key) const;

    /// Same kind and same content; numbers compare bit for bit, records by identity.
    friend bool operator==(const Value& a, const Value& b);

  private:
    friend class Properties;
    void releasePayload() noexcept;
    void retainPayload() const noexcept;
    [[nodiscard]] bool holdsShared() const;

    Kind m_kind;
    // The key id while the value sits in a Properties table; copied with the value, so
    // that the table stays right when its vector moves elements.
    uint32_t m_slot = 0;
    union {
        float f;
        int32_t i;
        int64_t n;
        double d;
        bool b;
        const Shared* p;
    } m_u;
};

static_assert(sizeof(Value) == 16);

/// How deep values may nest, for every reader and writer alike: the keyed archives, the XML
/// property lists, the JSON dump and the script language. Each refuses deeper values where
/// they come in, so that nothing can be stored that cannot be read back and no reader or
/// writer recurses without bound. The levels are counted as the keyed archive nests its
/// objects: see `nestsWithin`.
inline constexpr int kMaxNesting = 200;

/// The levels above a property value of the deepest record of a book: the root dictionary,
/// "clients", Client, "theYears", Year, "thelists", Thelist, "items", Item and its
/// properties. A value that comes in to be put into a record or the settings may nest this
/// much less than `kMaxNesting`, so that it fits wherever it is put.
inline constexpr int kBookNesting = 10;
inline constexpr int kMaxValueNesting = kMaxNesting - kBookNesting;

/// True when `value` nests at most `levels` deep. A text, number, date or data is level 0;
/// a row icon is 1 (an image object that names it); a dictionary, list or foreign record
/// holding anything is one more than its deepest member (0 when empty); a record of ours is
/// two more than its deepest property or child record (its properties and lists are objects
/// of their own), and each of its properties nests within `kMaxValueNesting` wherever the
/// record stands, so that a property can be copied into any record. Walks no deeper than
/// `levels` + 1.
[[nodiscard]] bool nestsWithin(const Value& value, int levels);

/// Float read of a text as the platform's string-to-float does it: leading blanks are
/// skipped and reading stops at the first character that cannot belong to a number.
[[nodiscard]] float floatFromText(std::string_view text);
[[nodiscard]] double doubleFromText(std::string_view text);
[[nodiscard]] int64_t integerFromText(std::string_view text);
[[nodiscard]] bool boolFromText(std::string_view text);

} // namespace zifora::core
