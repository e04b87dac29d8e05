#include "posting/textcleaning.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace zifora::posting {

namespace {

bool isGremlin(UChar32 c) {
    return c < 0 || u_charType(c) == U_UNASSIGNED;
}

int32_t byteLength(std::string_view text) {
    return static_cast<int32_t>(text.size());
}

} // namespace

std::string zapGremlinsInString(std::string_view text) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const int32_t length = byteLength(text);
    int32_t begin = 0;
    while (begin < length) {
        int32_t next = begin;
        UChar32 c = 0;
        U8_NEXT(bytes, next, length, c);
        if (!isGremlin(c)) break;
        begin = next;
    }
    int32_t end = length;
    while (end > begin) {
        int32_t previous = end;
        UChar32 c = 0;
        U8_PREV(bytes, begin, previous, c);
        if (!isGremlin(c)) break;
        end = previous;
    }
    return std::string(text.substr(static_cast<size_t>(begin), static_cast<size_t>(end - begin)));
}

std::string strippedCSVString(std::string_view text) {
    std::string out(text);
    std::erase(out, '"');
    return out;
}

std::string strippedIllegalString(std::string_view text) {
    std::string out = strippedCSVString(text);
    std::erase_if(out, [](char c) { return c == ' ' || c == '%'; });
    return out;
}

size_t utf16Length(std::string_view text) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const int32_t length = byteLength(text);
    size_t units = 0;
    for (int32_t i = 0; i < length;) {
        UChar32 c = 0;
        U8_NEXT(bytes, i, length, c);
        units += c > 0xFFFF ? 2 : 1; // a broken byte stands for one replacement character
    }
    return units;
}

} // namespace zifora::posting
