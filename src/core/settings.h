#pragma once
// The per-user settings store: preferences, run-time guards, form state and the figures of
// the last settlement, kept between runs in one XML property list.

#include "core/error.h"
#include "core/value.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zifora::core {

/// A flat map from key to value, read from and written to one file. A key that was never
/// written is absent and reads as false, 0 or ""; there is no table of defaults.
///
/// The file keeps the kind of every top-level value:
/// - bools, texts, dates, data, dictionaries and arrays have elements of their own;
/// - a <real> reads back as Float under a key that the registry (settingskeys.h) types as
///   Float, and as Double otherwise; an <integer> reads back as Integer. Floats are written
///   in their shortest round-trip text and read back bit for bit;
/// - where that rule would give the wrong kind (a Float under another key, a Double under a
///   Float key, an Int, an image name), the kind's name ("float", "double", "int", "image")
///   is noted under the value's key in the dictionary `kKindNotesKey` of the same file;
/// - a <date> holds whole seconds; for a date with a fraction of a second the exact seconds
///   since 2001-01-01 are noted there as a <real>, and apply only while the <date> still
///   shows the same second;
/// - a date that a <date> can't hold (outside the years 1 to 9999) is written as a <real> of
///   its seconds since 2001-01-01, noted as "date" at the top level, so that no value can
///   make the store unwritable. Inside dictionaries and arrays such a date reads back as
///   that number.
/// Other programs see an ordinary property list; a file without notes reads by the registry
/// alone. Inside dictionaries and arrays values come back as the property-list reader gives
/// them (reals as Double, integers as Integer, dates in whole seconds). Records are not kept.
///
/// The store is used from the main thread only; it has no lock.
class Settings {
  public:
    /// Reserved key of the kind notes. It cannot be set.
    static constexpr std::string_view kKindNotesKey = "Zifora:ValueKinds";

    /// An empty store for `file`; nothing is read yet.
    explicit Settings(std::filesystem::path file);

    /// Replaces the content by that of the file. A missing file gives an empty store. A file
    /// that cannot be read or parsed gives an error naming it and leaves the store empty.
    [[nodiscard]] Result<void> load();
    /// Writes the whole store to the file atomically, creating its folder if needed.
    [[nodiscard]] Result<void> flush();

    [[nodiscard]] const std::filesystem::path& file() const { return m_file; }

    /// The value under `key`; absent if it was never written.
    [[nodiscard]] Value get(std::string_view key) const;
    [[nodiscard]] bool contains(std::string_view key) const;

    // Reads with the dictionary semantics of `Value`: absent reads as false, 0 or "".
    [[nodiscard]] bool getBool(std::string_view key) const;
    [[nodiscard]] int64_t getInteger(std::string_view key) const;
    [[nodiscard]] float getFloat(std::string_view key) const;
    /// The text of a string; a number gives its text as well (a bool "1" or "0"), anything
    /// else "".
    [[nodiscard]] std::string getString(std::string_view key) const;

    void setBool(std::string_view key, bool value);
    void setInteger(std::string_view key, int64_t value);
    void setFloat(std::string_view key, float value);
    void setString(std::string_view key, std::string_view value);
    void setDate(std::string_view key, Date value);
    /// Stores `value` as it is; an absent value removes the key, a record is not stored.
    void set(std::string_view key, Value value);
    void remove(std::string_view key);

    [[nodiscard]] const std::map<std::string, Value, std::less<>>& all() const { return m_values; }

    /// Why the store's file could not be read when the run began, in words for the user
    /// (see `loadSettingsSafely`); the start tells it and takes it, so that it is told once.
    void setLossNotice(std::string notice) { m_lossNotice = std::move(notice); }
    [[nodiscard]] std::optional<std::string> takeLossNotice() {
        return std::exchange(m_lossNotice, std::nullopt);
    }

  private:
    std::filesystem::path m_file;
    std::map<std::string, Value, std::less<>> m_values;
    std::optional<std::string> m_lossNotice;
};

/// $XDG_CONFIG_HOME/Zifora/Zifora.plist, or ~/.config/Zifora/Zifora.plist when that variable
/// is unset, empty or relative. Creates nothing.
[[nodiscard]] std::filesystem::path defaultSettingsFile();

/// Loads the settings store. A store that can't be read is moved aside (its name gets
/// ".unlesbar" and the time) so that nothing in it is lost, and the run starts with an
/// empty store; the text that tells the user so is kept as the store's loss notice and
/// returned.
std::optional<std::string> loadSettingsSafely(Settings& settings);

} // namespace zifora::core
