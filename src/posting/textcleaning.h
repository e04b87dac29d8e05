#pragma once
// Cleaning of texts on their way into files and out of imported fields.

#include <cstddef>
#include <string>
#include <string_view>

namespace zifora::posting {

/// The text with unassigned code points and non-characters trimmed from both ends; inside
/// the text they stay. Line ends and other control characters are assigned characters and
/// stay too, so a file keeps its final line end. Bytes that aren't UTF-8 count as such
/// characters. Every export passes its whole file text through this.
[[nodiscard]] std::string zapGremlinsInString(std::string_view text);

/// The text without any double quote.
[[nodiscard]] std::string strippedCSVString(std::string_view text);

/// As `strippedCSVString`, and without blanks and percent signs: "19 %" gives "19".
[[nodiscard]] std::string strippedIllegalString(std::string_view text);

/// The length of a UTF-8 text in UTF-16 code units, which is how the "longer than 3
/// characters" tests on marker and path keys count.
[[nodiscard]] size_t utf16Length(std::string_view text);

} // namespace zifora::posting
