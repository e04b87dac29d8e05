#include "core/utf8.h"

namespace zifora::core {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isSurrogate(char32_t cp) {
    return cp >= 0xD800 && cp <= 0xDFFF;
}

} // namespace

Utf8Character decodeUtf8(std::string_view text, size_t at) {
    const auto first = static_cast<unsigned char>(text[at]);
    if (first < 0x80) return {first, 1};
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 0;
    if (length == 0 || first > 0xF4 || at + length > text.size()) return {};
    char32_t cp = first & (0x7F >> length);
    for (size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xC0) != 0x80) return {};
        cp = (cp << 6) | (next & 0x3F);
    }
    static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (cp < kSmallest[length] || cp > 0x10FFFF || isSurrogate(cp)) return {};
    return {cp, length};
}

void appendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

bool isValidUtf8(std::string_view text) {
    for (size_t i = 0; i < text.size();) {
        // ASCII, the common case, without the decoder.
        if (static_cast<unsigned char>(text[i]) < 0x80) {
            ++i;
            continue;
        }
        const size_t length = decodeUtf8(text, i).length;
        if (length == 0) return false;
        i += length;
    }
    return true;
}

std::string repairedUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        const size_t length = decodeUtf8(text, i).length;
        if (length == 0) {
            appendUtf8(out, kReplacement);
            ++i;
        } else {
            out.append(text.substr(i, length));
            i += length;
        }
    }
    return out;
}

size_t utf8CharacterCount(std::string_view text) {
    size_t count = 0;
    for (size_t i = 0; i < text.size(); ++count) {
        const size_t length = decodeUtf8(text, i).length;
        i += length == 0 ? 1 : length;
    }
    return count;
}

std::u16string utf16FromUtf8(std::string_view utf8) {
    std::u16string out;
    out.reserve(utf8.size());
    for (size_t i = 0; i < utf8.size();) {
        const Utf8Character c = decodeUtf8(utf8, i);
        const char32_t cp = c.length == 0 ? kReplacement : c.codePoint;
        i += c.length == 0 ? 1 : c.length;
        if (cp >= 0x10000) {
            out += static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            out += static_cast<char16_t>(cp);
        }
    }
    return out;
}

std::string utf8FromUtf16(std::u16string_view utf16) {
    std::string out;
    out.reserve(utf16.size());
    for (size_t i = 0; i < utf16.size(); ++i) {
        char32_t cp = utf16[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
            utf16[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (utf16[i + 1] - 0xDC00);
            ++i;
        } else if (isSurrogate(cp)) {
            cp = kReplacement;
        }
        appendUtf8(out, cp);
    }
    return out;
}

} // namespace zifora::core
