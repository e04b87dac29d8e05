#include "core/properties.h"

namespace zifora::core {

const Value* Properties::find(KeyId key) const {
    // Four entries per step without a branch between them: a record of 75 keys is read as
    // it is loaded, one key after the other, and each key first looks for itself.
    const Value* v = m_entries.data();
    const Value* const end = v + m_entries.size();
    for (; end - v >= 4; v += 4)
        if ((v[0].m_slot == key) | (v[1].m_slot == key) | (v[2].m_slot == key) |
            (v[3].m_slot == key))
            break;
    for (; v != end; ++v)
        if (v->m_slot == key) return v;
    return nullptr;
}

const Value* Properties::find(KeyId key, uint32_t& hint) const {
    if (hint < m_entries.size() && m_entries[hint].m_slot == key) return &m_entries[hint];
    const Value* v = find(key);
    if (v) hint = static_cast<uint32_t>(v - m_entries.data());
    return v;
}

Value Properties::get(KeyId key) const {
    const Value* v = find(key);
    if (!v) return {};
    Value copy = *v;
    copy.m_slot = 0;
    return copy;
}

void Properties::set(KeyId key, Value value) {
    if (value.isAbsent()) {
        std::erase_if(m_entries, [key](const Value& v) { return v.m_slot == key; });
        return;
    }
    value.m_slot = key;
    if (const Value* found = find(key)) {
        Value& v = m_entries[static_cast<size_t>(found - m_entries.data())];
        v = std::move(value);
        v.m_slot = key;
        return;
    }
    m_entries.push_back(std::move(value));
}

void Properties::appendNew(KeyId key, Value value) {
    if (value.isAbsent()) return;
    value.m_slot = key;
    m_entries.push_back(std::move(value));
}

void Properties::remove(std::string_view key) {
    set(internKey(key), Value{});
}

bool Properties::sameAs(const Properties& other) const {
    if (m_entries.size() != other.m_entries.size()) return false;
    for (size_t i = 0; i < m_entries.size(); ++i) {
        if (m_entries[i].m_slot != other.m_entries[i].m_slot) return false;
        if (!(m_entries[i] == other.m_entries[i])) return false;
    }
    return true;
}

} // namespace zifora::core
