#include "posting/formatstring.h"

#include "core/civildate.h"
#include "core/record.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace zifora::posting {

namespace {

using core::Value;

constexpr std::string_view kNull = "(null)";

std::string generalNumber(double value, int significantDigits) {
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value,
                                      std::chars_format::general, significantDigits);
    return std::string(buffer, result.ptr);
}

std::string integerText(int64_t value) {
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

std::string fixedNumber(double value, int decimals) {
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    if (std::isnan(value)) return std::signbit(value) ? "-nan" : "nan";
    // Enough room for the largest double with the most decimals a format may ask for.
    char buffer[450];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
    return std::string(buffer, result.ptr);
}

// A date outside the years 1 to 9999 (or no number at all) is described by nothing.
std::string dateDescription(core::Date date) {
    const std::optional<core::CivilTime> time = core::civilFromUnixTime(date.unixSeconds());
    if (!time) return {};
    const core::CivilTime& civil = *time;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%04lld-%02u-%02u %02u:%02u:%02u +0000",
                  static_cast<long long>(civil.date.year), civil.date.month, civil.date.day,
                  civil.hour, civil.minute, civil.second);
    return buffer;
}

std::string dataDescription(std::string_view bytes) {
    static constexpr char kHex[] = "0123456789abcdef";
    std::string out = "<";
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0 && i % 4 == 0) out += ' ';
        const auto byte = static_cast<unsigned char>(bytes[i]);
        out += kHex[byte >> 4];
        out += kHex[byte & 15];
    }
    return out + ">";
}

// Lists and dictionaries as the platform writes them: one entry per line, indented.
std::string collectionDescription(const Value& value) {
    std::string out;
    if (value.kind() == core::Kind::Array) {
        out = "(";
        const auto& elements = value.asArray();
        for (size_t i = 0; i < elements.size(); ++i)
            out += (i ? ",\n    " : "\n    ") + descriptionOf(elements[i]);
        return out + "\n)";
    }
    out = "{";
    for (const auto& [key, entry] : value.asDict())
        out += "\n    " + key + " = " + descriptionOf(entry) + ";";
    return out + "\n}";
}

// One conversion of a format string, as far as this formatter reads it.
struct Conversion {
    bool leftAlign = false;
    bool zeroPad = false;
    char signChar = 0; // '+' or ' ' or none
    size_t width = 0;
    int precision = -1;
    int longs = 0;
    char type = 0;
};

// Reads a conversion after "%" at `pos`; gives false for one this formatter doesn't know.
bool readConversion(std::string_view format, size_t& pos, Conversion& c) {
    const size_t start = pos;
    for (; pos < format.size(); ++pos) {
        const char f = format[pos];
        if (f == '-')
            c.leftAlign = true;
        else if (f == '0')
            c.zeroPad = true;
        else if (f == '+')
            c.signChar = '+';
        else if (f == ' ')
            c.signChar = c.signChar == '+' ? '+' : ' ';
        else
            break;
    }
    // Width and precision are capped, so that no format makes a huge text.
    for (; pos < format.size() && format[pos] >= '0' && format[pos] <= '9'; ++pos)
        c.width = std::min<size_t>(c.width * 10 + static_cast<size_t>(format[pos] - '0'), 1000);
    if (pos < format.size() && format[pos] == '.') {
        c.precision = 0;
        for (++pos; pos < format.size() && format[pos] >= '0' && format[pos] <= '9'; ++pos)
            c.precision = std::min(c.precision * 10 + (format[pos] - '0'), 100);
    }
    for (; pos < format.size() && format[pos] == 'l'; ++pos)
        ++c.longs;
    if (pos >= format.size()) return false;
    c.type = format[pos];
    // "%%" only right after the first sign: in "50% %@" the blank is text, not a flag.
    if (c.type == '%') return pos == start;
    return c.type == '@' || c.type == 'd' || c.type == 'i' || c.type == 'u' || c.type == 'f' ||
           c.type == 'F';
}

std::string numberText(const Conversion& c, const FormatArg& arg) {
    std::string digits;
    if (c.type == 'f' || c.type == 'F') {
        digits = fixedNumber(arg.real(), c.precision < 0 ? 6 : c.precision);
    } else if (c.type == 'u') {
        const int64_t n = arg.integer();
        digits = c.longs > 0 ? std::to_string(static_cast<uint64_t>(n))
                             : std::to_string(static_cast<uint32_t>(n));
    } else {
        const int64_t n = arg.integer();
        digits = integerText(c.longs > 0 ? n : static_cast<int64_t>(static_cast<int32_t>(n)));
    }
    if (c.signChar != 0 && !digits.empty() && digits[0] != '-') digits.insert(0, 1, c.signChar);
    return digits;
}

std::string padded(std::string text, const Conversion& c, bool numeric) {
    if (text.size() >= c.width) return text;
    const size_t fill = c.width - text.size();
    if (c.leftAlign) return text + std::string(fill, ' ');
    if (c.zeroPad && numeric && text.find_first_of("in") == std::string::npos) {
        const size_t signs =
            (!text.empty() && (text[0] == '-' || text[0] == '+' || text[0] == ' ')) ? 1 : 0;
        text.insert(signs, fill, '0');
        return text;
    }
    return std::string(fill, ' ') + text;
}

template <typename ArgAt>
std::string formatWith(std::string_view format, size_t count, ArgAt argAt) {
    std::string out;
    out.reserve(format.size() + 16 * count);
    size_t next = 0;
    for (size_t pos = 0; pos < format.size(); ++pos) {
        if (format[pos] != '%') {
            out += format[pos];
            continue;
        }
        size_t end = pos + 1;
        Conversion c;
        if (!readConversion(format, end, c)) {
            out += '%'; // unknown: copied as it stands
            continue;
        }
        pos = end;
        if (c.type == '%') {
            out += '%';
            continue;
        }
        const FormatArg arg = next < count ? argAt(next) : FormatArg{};
        ++next;
        if (c.type == '@')
            out += padded(arg.description(), c, /*numeric=*/false);
        else
            out += padded(numberText(c, arg), c, /*numeric=*/true);
    }
    return out;
}

} // namespace

std::string descriptionOf(const Value& value) {
    switch (value.kind()) {
    case core::Kind::Absent:
        return std::string(kNull);
    case core::Kind::String:
    case core::Kind::Image:
        return value.text();
    case core::Kind::Float:
        return generalNumber(value.asFloat(), 7);
    case core::Kind::Double:
        return generalNumber(value.asDouble(), 16);
    case core::Kind::Int:
        return integerText(value.asInt());
    case core::Kind::Integer:
        return integerText(value.asInteger());
    case core::Kind::Bool:
        return value.asBool() ? "1" : "0";
    case core::Kind::Date:
        return dateDescription(value.asDate());
    case core::Kind::Data:
        return dataDescription(value.text());
    case core::Kind::Dict:
    case core::Kind::Array:
        return collectionDescription(value);
    case core::Kind::Record:
        return "<" + std::string(value.asRecord()->className()) + ">";
    }
    return std::string(kNull);
}

std::string FormatArg::description() const {
    switch (m_kind) {
    case Kind::Missing:
        return std::string(kNull);
    case Kind::Text:
        return std::string(m_text);
    case Kind::Integer:
        return integerText(m_integer);
    case Kind::Float:
        return generalNumber(m_float, 7);
    case Kind::Double:
        return generalNumber(m_double, 16);
    case Kind::Value:
        return descriptionOf(*m_value);
    }
    return std::string(kNull);
}

int64_t FormatArg::integer() const {
    switch (m_kind) {
    case Kind::Missing:
        return 0;
    case Kind::Text:
        return core::integerFromText(m_text);
    case Kind::Integer:
        return m_integer;
    case Kind::Float:
        return Value::floatValue(m_float).toInteger();
    case Kind::Double:
        return Value::doubleValue(m_double).toInteger();
    case Kind::Value:
        return m_value->toInteger();
    }
    return 0;
}

double FormatArg::real() const {
    switch (m_kind) {
    case Kind::Missing:
        return 0.0;
    case Kind::Text:
        return core::doubleFromText(m_text);
    case Kind::Integer:
        return static_cast<double>(m_integer);
    case Kind::Float:
        return m_float;
    case Kind::Double:
        return m_double;
    case Kind::Value:
        return m_value->toDouble();
    }
    return 0.0;
}

std::string formatString(std::string_view format, std::span<const FormatArg> args) {
    return formatWith(format, args.size(), [&](size_t i) { return args[i]; });
}

std::string formatString(std::string_view format, std::initializer_list<FormatArg> args) {
    return formatString(format, std::span<const FormatArg>(args.begin(), args.size()));
}

std::string formatString(std::string_view format, std::span<const Value> args) {
    return formatWith(format, args.size(), [&](size_t i) { return FormatArg(args[i]); });
}

} // namespace zifora::posting
