#include "core/properties.h"

namespace zifora::core {

const Value* Properties::find(KeyId key) const {
    for (const Value& v : m_entries)
        if (v.m_slot == key) return &v;
    return nullptr;
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
    for (Value& v : m_entries) {
        if (v.m_slot == key) {
            v = std::move(value);
            v.m_slot = key;
            return;
        }
    }
    m_entries.push_back(std::move(value));
}

void Properties::remove(std::string_view key) { set(internKey(key), Value{}); }

bool Properties::sameAs(const Properties& other) const {
    if (m_entries.size() != other.m_entries.size()) return false;
    for (size_t i = 0; i < m_entries.size(); ++i) {
        if (m_entries[i].m_slot != other.m_entries[i].m_slot) return false;
        if (!(m_entries[i] == other.m_entries[i])) return false;
    }
    return true;
}

} // namespace zifora::core
