#pragma once
// Interned property keys: each distinct key text is stored once for the whole program.

#include <cstdint>
#include <string>
#include <string_view>

namespace zifora::core {

using KeyId = uint32_t;

/// The id of a key text, registering it on first use. Safe from any thread.
[[nodiscard]] KeyId internKey(std::string_view key);
/// The text of an interned key.
[[nodiscard]] const std::string& keyName(KeyId id);

} // namespace zifora::core
