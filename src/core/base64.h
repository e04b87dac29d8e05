#pragma once
// Base64 (RFC 4648, the standard alphabet with "+" and "/"), as property lists and the JSON
// dump carry binary data.

#include <optional>
#include <string>
#include <string_view>

namespace zifora::core {

/// The base64 text of `bytes`, padded with "=" to a multiple of four characters, on one line.
[[nodiscard]] std::string encodeBase64(std::string_view bytes);

/// The bytes of base64 `text`. White space (space, tab, line feed, carriage return) may stand
/// anywhere and the padding may be left out. Nothing when the text holds another character,
/// a letter after the padding, or a lone character at the end (which carries no whole byte).
[[nodiscard]] std::optional<std::string> decodeBase64(std::string_view text);

} // namespace zifora::core
