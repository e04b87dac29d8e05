#pragma once
// The JSON form of archives that `zifora-cli dump` prints and `zifora-cli load` reads.
//
// The root dictionary is a plain JSON object; lists of records are plain JSON arrays of
// record objects {"class": "Item", "properties": {...}, "<list key>": [...]}; every other
// value is tagged by its kind: {"string": "…"}, {"float": 19}, {"int": 1}, {"integer": 5},
// {"double": 0.5}, {"bool": true}, {"date": "2024-01-02T03:04:05.250Z"}, {"image": "client"},
// {"data": "<base64>"}, {"dict": {…}}, {"array": […]}. A float is written as the shortest
// text that reads back to the same 32-bit value.

#include "core/error.h"
#include "core/value.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zifora::core {

/// The dump of an archive's root value, on one line.
[[nodiscard]] std::string dumpJson(const core::Value& root);
/// One value in its tagged form (also used for settings).
[[nodiscard]] std::string taggedJson(const core::Value& value);

/// A JSON object of tagged values, its keys in the given order; an absent value is null.
[[nodiscard]] std::string
taggedObjectJson(const std::vector<std::pair<std::string, core::Value>>& entries);

/// Reads a dump back into values; errors name the place in the JSON. Values nested deeper
/// than `kMaxNesting` (as the keyed archive counts them) are refused.
[[nodiscard]] core::Result<core::Value> loadJson(std::string_view json);
/// Reads one tagged value, given as JSON text; it may nest `kMaxValueNesting` levels, so
/// that it fits into any record of a book or into the settings.
[[nodiscard]] core::Result<core::Value> loadTaggedJson(std::string_view json);

/// JSON nesting that carries `kMaxNesting` levels of values in the tagged form (a list is
/// {"array":[…]}, two levels of JSON), with room for the few levels of a script line around
/// them. Deeper JSON is refused before it is parsed.
inline constexpr int kMaxJsonNesting = 2 * kMaxNesting + 8;

/// True when the arrays and objects of the JSON text nest at most `levels` deep. One pass,
/// no recursion; the text need not be valid JSON (brackets inside strings don't count).
[[nodiscard]] bool jsonNestsWithin(std::string_view json, int levels);

/// ISO 8601 text of a date, in UTC, with the fraction of the second.
[[nodiscard]] std::string isoDate(core::Date date);
[[nodiscard]] core::Result<core::Date> parseIsoDate(std::string_view text);

/// Appends `text` as a JSON string literal (invalid UTF-8 becomes U+FFFD).
void appendJsonString(std::string& out, std::string_view text);

} // namespace zifora::core
