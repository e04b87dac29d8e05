#pragma once
// UTF-8: decoding and encoding of code points, validation, repair, and the conversions to and
// from UTF-16 that the archives' texts need. The one place of the program that knows the
// byte patterns.
//
// Valid means what Unicode calls well-formed: no overlong forms, no surrogates (U+D800 to
// U+DFFF), nothing above U+10FFFF, no sequence cut off. Where a text is repaired, every byte
// that does not belong to a valid sequence becomes one U+FFFD.

#include <cstddef>
#include <string>
#include <string_view>

namespace zifora::core {

/// One character read from UTF-8 text.
struct Utf8Character {
    char32_t codePoint = 0;
    size_t length = 0; ///< bytes it takes; 0 when the bytes there are not a valid sequence
};

/// The character starting at `text[at]` (`at` < size).
[[nodiscard]] Utf8Character decodeUtf8(std::string_view text, size_t at);

/// Appends the UTF-8 bytes of `cp` (a valid code point) to `out`.
void appendUtf8(std::string& out, char32_t cp);

[[nodiscard]] bool isValidUtf8(std::string_view text);

/// `text` with each byte that is not part of a valid sequence replaced by U+FFFD; valid text
/// comes back unchanged.
[[nodiscard]] std::string repairedUtf8(std::string_view text);

/// The number of characters, a byte that is not part of a valid sequence counting as one
/// (as the U+FFFD it shows as).
[[nodiscard]] size_t utf8CharacterCount(std::string_view text);

/// UTF-8 to UTF-16 code units; invalid bytes become U+FFFD each.
[[nodiscard]] std::u16string utf16FromUtf8(std::string_view utf8);
/// UTF-16 to UTF-8; a surrogate without its partner becomes U+FFFD.
[[nodiscard]] std::string utf8FromUtf16(std::u16string_view utf16);

} // namespace zifora::core
