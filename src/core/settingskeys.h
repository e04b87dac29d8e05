#pragma once
// The registry of every key the program keeps in its settings store, with the type of value
// each one holds.

#include <span>
#include <string_view>

namespace zifora::core {

enum class SettingType {
    Bool,
    Integer, // 64-bit: indexes, tags, counters; a selection index of INT64_MAX means none
    Float,   // 32-bit: money and tax rates
    Text,
    Date,
    Number, // a number of any kind, or a text that is read as one
};

struct SettingInfo {
    std::string_view key;
    SettingType type;
};

/// The registered key `key`, or nullptr for a key the program doesn't know.
[[nodiscard]] const SettingInfo* settingInfo(std::string_view key);

/// Every registered key, sorted by key (byte order).
[[nodiscard]] std::span<const SettingInfo> allSettings();

/// "bool", "integer", "float", "text", "date" or "number".
[[nodiscard]] std::string_view settingTypeName(SettingType type);

} // namespace zifora::core
