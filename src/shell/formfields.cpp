#include "shell/formfields.h"

#include <charconv>

namespace zifora::shell {

core::Value FormFields::get(std::string_view name) const {
    auto it = m_values.find(name);
    return it == m_values.end() ? core::Value{} : it->second;
}

std::string FormFields::text(std::string_view name) const {
    core::Value v = get(name);
    switch (v.kind()) {
    case core::Kind::String:
    case core::Kind::Image:
        return v.text();
    case core::Kind::Int:
    case core::Kind::Integer:
        return std::to_string(v.toInteger());
    case core::Kind::Bool:
        return v.asBool() ? "1" : "0";
    case core::Kind::Float:
    case core::Kind::Double: {
        char buf[64];
        auto r = std::to_chars(buf, buf + sizeof buf, v.toDouble());
        return std::string(buf, r.ptr);
    }
    default:
        return {};
    }
}

void FormFields::set(std::string_view name, core::Value value) {
    std::string key(name);
    if (value.isAbsent())
        m_values.erase(key);
    else
        m_values[key] = value;
    for (const auto& observer : m_observers)
        observer(key, value);
}

} // namespace zifora::shell
