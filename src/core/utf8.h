#pragma once
// UTF-8 encoding of single code points, shared by the property-list readers.

#include <string>

namespace zifora::core {

/// Appends the UTF-8 bytes of `cp` (a valid code point) to `out`.
void appendUtf8(std::string& out, char32_t cp);

} // namespace zifora::core
