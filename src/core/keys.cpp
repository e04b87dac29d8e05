#include "core/keys.h"

#include <deque>
#include <mutex>
#include <unordered_map>

namespace zifora::core {

namespace {

// The one table of key texts. Keys are never removed, so ids stay valid for the whole run;
// the deque keeps the texts at fixed addresses so the map can point into it.
struct KeyTable {
    std::mutex mutex;
    std::deque<std::string> names;
    std::unordered_map<std::string_view, KeyId> ids;
};

KeyTable& table() {
    static KeyTable instance;
    return instance;
}

} // namespace

KeyId internKey(std::string_view key) {
    KeyTable& t = table();
    std::lock_guard lock(t.mutex);
    if (auto it = t.ids.find(key); it != t.ids.end()) return it->second;
    t.names.emplace_back(key);
    auto id = static_cast<KeyId>(t.names.size() - 1);
    t.ids.emplace(t.names.back(), id);
    return id;
}

const std::string& keyName(KeyId id) {
    KeyTable& t = table();
    std::lock_guard lock(t.mutex);
    return t.names.at(id);
}

} // namespace zifora::core
