#include "core/base64.h"

#include <array>
#include <cstdint>

namespace zifora::core {

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr int kNotInAlphabet = -1;

// The value of each byte as a base64 digit.
constexpr std::array<int, 256> kDigitValues = [] {
    std::array<int, 256> values{};
    values.fill(kNotInAlphabet);
    for (size_t i = 0; i < kAlphabet.size(); ++i)
        values[static_cast<unsigned char>(kAlphabet[i])] = static_cast<int>(i);
    return values;
}();

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

} // namespace

std::string encodeBase64(std::string_view bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        uint32_t group = static_cast<uint32_t>(static_cast<unsigned char>(bytes[i])) << 16;
        if (i + 1 < bytes.size())
            group |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[i + 1])) << 8;
        if (i + 2 < bytes.size()) group |= static_cast<unsigned char>(bytes[i + 2]);
        out += kAlphabet[(group >> 18) & 63];
        out += kAlphabet[(group >> 12) & 63];
        out += i + 1 < bytes.size() ? kAlphabet[(group >> 6) & 63] : '=';
        out += i + 2 < bytes.size() ? kAlphabet[group & 63] : '=';
    }
    return out;
}

std::optional<std::string> decodeBase64(std::string_view text) {
    std::string out;
    out.reserve(text.size() / 4 * 3);
    uint32_t group = 0;
    int digits = 0;
    bool padding = false;
    for (char c : text) {
        if (isSpace(c)) continue;
        if (c == '=') {
            padding = true;
            continue;
        }
        const int value = kDigitValues[static_cast<unsigned char>(c)];
        if (value == kNotInAlphabet || padding) return std::nullopt;
        group = (group << 6) | static_cast<uint32_t>(value);
        if (++digits == 4) {
            out += static_cast<char>((group >> 16) & 0xFF);
            out += static_cast<char>((group >> 8) & 0xFF);
            out += static_cast<char>(group & 0xFF);
            group = 0;
            digits = 0;
        }
    }
    if (digits == 1) return std::nullopt;
    if (digits == 2) out += static_cast<char>((group >> 4) & 0xFF);
    if (digits == 3) {
        out += static_cast<char>((group >> 10) & 0xFF);
        out += static_cast<char>((group >> 2) & 0xFF);
    }
    return out;
}

} // namespace zifora::core
