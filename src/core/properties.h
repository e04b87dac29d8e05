#pragma once
// The string-keyed property dictionary every record holds.

#include "core/keys.h"
#include "core/value.h"

#include <string_view>
#include <vector>

namespace zifora::core {

/// An ordered dictionary from interned key to value. Order is the order of first insertion,
/// which for a new record is the order of its initialiser. A missing key reads as absent.
class Properties {
  public:
    [[nodiscard]] Value get(std::string_view key) const { return get(internKey(key)); }
    [[nodiscard]] Value get(KeyId key) const;
    [[nodiscard]] const Value* find(KeyId key) const;
    /// The same, trying the place `hint` first and leaving the place found there. Records of
    /// one class keep their keys at the same places, so a loop over many of them that keeps
    /// one hint per key finds each key at once.
    [[nodiscard]] const Value* find(KeyId key, uint32_t& hint) const;
    [[nodiscard]] bool contains(std::string_view key) const {
        return find(internKey(key)) != nullptr;
    }

    /// Stores a value; storing an absent value removes the key.
    void set(std::string_view key, Value value) { set(internKey(key), std::move(value)); }
    void set(KeyId key, Value value);
    /// Appends a key the caller knows is not present yet (the decoder, for keys it has
    /// checked once per shared key list); skips the search for an existing entry.
    void appendNew(KeyId key, Value value);
    void remove(std::string_view key);

    // Typed reads with dictionary semantics.
    [[nodiscard]] float getFloat(std::string_view key) const { return get(key).toFloat(); }
    [[nodiscard]] int64_t getInteger(std::string_view key) const { return get(key).toInteger(); }
    [[nodiscard]] int32_t getInt(std::string_view key) const { return get(key).toInt(); }
    [[nodiscard]] bool getBool(std::string_view key) const { return get(key).toBool(); }
    [[nodiscard]] std::string getText(std::string_view key) const { return get(key).text(); }

    [[nodiscard]] size_t size() const { return m_entries.size(); }
    [[nodiscard]] bool empty() const { return m_entries.empty(); }
    void reserve(size_t n) { m_entries.reserve(n); }

    /// Calls `f(keyName, value)` for each entry in order.
    template <typename F> void forEach(F&& f) const {
        for (const Value& v : m_entries)
            f(keyName(v.m_slot), v);
    }
    template <typename F> void forEachId(F&& f) const {
        for (const Value& v : m_entries)
            f(v.m_slot, v);
    }

    /// Same keys in the same order with equal values.
    [[nodiscard]] bool sameAs(const Properties& other) const;
    friend bool operator==(const Properties& a, const Properties& b) { return a.sameAs(b); }

  private:
    // Each value carries its key id in its spare slot, so an entry costs 16 bytes.
    std::vector<Value> m_entries;
};

} // namespace zifora::core
