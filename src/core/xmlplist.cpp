#include "core/xmlplist.h"

#include "core/base64.h"
#include "core/civildate.h"
#include "core/utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <unordered_set>

namespace zifora::core {

namespace {

// ---------------------------------------------------------------------------------------
// Characters

/// Characters an XML 1.0 document may contain as they stand.
bool isXmlChar(char32_t cp) {
    if (cp < 0x20) return cp == '\t' || cp == '\n' || cp == '\r';
    return cp != 0xFFFE && cp != 0xFFFF;
}

bool isXmlSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isXmlSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isXmlSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        char x = a[i] >= 'A' && a[i] <= 'Z' ? static_cast<char>(a[i] + 32) : a[i];
        char y = b[i] >= 'A' && b[i] <= 'Z' ? static_cast<char>(b[i] + 32) : b[i];
        if (x != y) return false;
    }
    return true;
}

// ---------------------------------------------------------------------------------------
// Dates, as property lists write them

constexpr double kFirstWritableUnixSecond = -62135596800.0; // 0001-01-01T00:00:00Z
constexpr double kLastWritableUnixSecond = 253402300799.0;  // 9999-12-31T23:59:59Z

std::optional<std::string> formatDate(Date date) {
    double unix = std::floor(date.unixSeconds());
    if (!(unix >= kFirstWritableUnixSecond && unix <= kLastWritableUnixSecond)) return std::nullopt;
    const CivilTime civil = civilFromUnixSeconds(static_cast<int64_t>(unix));
    char text[32];
    auto two = [](char* at, unsigned v) {
        at[0] = static_cast<char>('0' + v / 10);
        at[1] = static_cast<char>('0' + v % 10);
    };
    const auto y = static_cast<unsigned>(civil.date.year); // 1 to 9999
    text[0] = static_cast<char>('0' + y / 1000);
    text[1] = static_cast<char>('0' + y / 100 % 10);
    two(text + 2, y % 100);
    text[4] = '-';
    two(text + 5, civil.date.month);
    text[7] = '-';
    two(text + 8, civil.date.day);
    text[10] = 'T';
    two(text + 11, civil.hour);
    text[13] = ':';
    two(text + 14, civil.minute);
    text[16] = ':';
    two(text + 17, civil.second);
    text[19] = 'Z';
    return std::string(text, 20);
}

} // namespace

bool isWritablePlistDate(Date date) {
    const double unix = std::floor(date.unixSeconds());
    return unix >= kFirstWritableUnixSecond && unix <= kLastWritableUnixSecond;
}

namespace {

/// Reads "YYYY-MM-DDTHH:MM:SSZ".
std::optional<Date> parseDate(std::string_view text) {
    if (text.size() != 20 || text[4] != '-' || text[7] != '-' || text[10] != 'T' ||
        text[13] != ':' || text[16] != ':' || text[19] != 'Z')
        return std::nullopt;
    auto number = [&](size_t at, size_t length) -> std::optional<int> {
        int value = 0;
        for (size_t i = at; i < at + length; ++i) {
            if (text[i] < '0' || text[i] > '9') return std::nullopt;
            value = value * 10 + (text[i] - '0');
        }
        return value;
    };
    auto y = number(0, 4), mo = number(5, 2), d = number(8, 2);
    auto h = number(11, 2), mi = number(14, 2), s = number(17, 2);
    if (!y || !mo || !d || !h || !mi || !s || *h > 23 || *mi > 59 || *s > 59) return std::nullopt;
    const auto month = static_cast<unsigned>(*mo), day = static_cast<unsigned>(*d);
    if (!isValidCivilDate(*y, month, day)) return std::nullopt;
    int64_t unix = daysFromCivil(*y, month, day) * kSecondsPerDay + *h * 3600 + *mi * 60 + *s;
    return Date::fromUnix(static_cast<double>(unix));
}

// ---------------------------------------------------------------------------------------
// Numbers

std::optional<int64_t> parseInteger(std::string_view text) {
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        uint64_t value = 0;
        auto [end, ec] = std::from_chars(text.data() + 2, text.data() + text.size(), value, 16);
        if (ec != std::errc{} || end != text.data() + text.size() ||
            value > static_cast<uint64_t>(std::numeric_limits<int64_t>::max()))
            return std::nullopt;
        return static_cast<int64_t>(value);
    }
    if (!text.empty() && text[0] == '+') text.remove_prefix(1);
    if (text.empty() || text[0] == '+') return std::nullopt;
    int64_t value = 0;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// The infinities and NaN in the spellings property-list writers use.
std::optional<double> parseNonFiniteReal(std::string_view text) {
    bool negative = false;
    if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
        negative = text[0] == '-';
        text.remove_prefix(1);
    }
    double value;
    if (equalsIgnoringCase(text, "nan"))
        value = std::numeric_limits<double>::quiet_NaN();
    else if (equalsIgnoringCase(text, "inf") || equalsIgnoringCase(text, "infinity"))
        value = std::numeric_limits<double>::infinity();
    else
        return std::nullopt;
    return negative ? -value : value;
}

template <typename T> std::optional<T> parseFiniteReal(std::string_view text) {
    if (!text.empty() && text[0] == '+') text.remove_prefix(1);
    if (text.empty() || text[0] == '+') return std::nullopt;
    T value{};
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc{} || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

template <typename T> void appendShortest(std::string& out, T value) {
    if (std::isnan(value)) {
        out += "nan";
    } else if (std::isinf(value)) {
        out += value < 0 ? "-inf" : "inf";
    } else {
        char text[64];
        auto [end, ec] = std::to_chars(text, text + sizeof text, value);
        out.append(text, end);
    }
}

// ---------------------------------------------------------------------------------------
// Reader

enum class Element { Plist, Dict, Array, Key, String, Real, Integer, True, False, Date, Data };

struct Tag {
    std::string_view name;
    bool closing = false;     // </name>
    bool selfClosing = false; // <name/>
    size_t position = 0;
};

std::optional<Element> elementNamed(std::string_view name) {
    static constexpr std::pair<std::string_view, Element> kNames[] = {
        {"plist", Element::Plist},     {"dict", Element::Dict},     {"array", Element::Array},
        {"key", Element::Key},         {"string", Element::String}, {"real", Element::Real},
        {"integer", Element::Integer}, {"true", Element::True},     {"false", Element::False},
        {"date", Element::Date},       {"data", Element::Data},
    };
    for (const auto& [text, element] : kNames)
        if (text == name) return element;
    return std::nullopt;
}

class Reader {
  public:
    Reader(std::string_view xml, const PlistNumberKind& numberKind)
        : m_xml(xml), m_numberKind(numberKind) {}

    Result<Value> readDocument() {
        if (auto checked = checkCharacters(); !checked) return std::unexpected(checked.error());
        if (m_xml.starts_with("\xEF\xBB\xBF")) m_pos = 3;
        if (auto prologue = skipPrologue(); !prologue) return std::unexpected(prologue.error());
        auto root = readTag();
        if (!root) return std::unexpected(root.error());
        if (root->closing || root->name != "plist")
            return failAt(root->position, "the document does not begin with <plist>");
        if (root->selfClosing) return failAt(root->position, "<plist> holds no value");
        auto value = readOnlyChild("plist", /*depth=*/1);
        if (!value) return value;
        if (auto epilogue = skipMisc(); !epilogue) return std::unexpected(epilogue.error());
        if (m_pos != m_xml.size()) return failAt(m_pos, "text after </plist>");
        return value;
    }

  private:
    // --- positions and errors

    /// An error at `position` whose message is the pieces put together. The message is built
    /// here rather than by the callers, which keeps the frames of the recursive reading small.
    template <typename... Pieces>
    [[nodiscard, gnu::noinline]] std::unexpected<Error> failAt(size_t position,
                                                               const Pieces&... pieces) const {
        size_t line = 1;
        for (size_t i = 0; i < position && i < m_xml.size(); ++i)
            if (m_xml[i] == '\n') ++line;
        std::string message = "line " + std::to_string(line) + ": ";
        (appendPiece(message, pieces), ...);
        return fail(std::move(message));
    }
    static void appendPiece(std::string& out, std::string_view piece) { out += piece; }
    static void appendPiece(std::string& out, int number) { out += std::to_string(number); }
    bool atEnd() const { return m_pos >= m_xml.size(); }
    bool lookingAt(std::string_view text) const { return m_xml.substr(m_pos).starts_with(text); }
    void skipSpace() {
        while (!atEnd() && isXmlSpace(m_xml[m_pos]))
            ++m_pos;
    }

    /// The whole input must be UTF-8 made of XML characters.
    Result<void> checkCharacters() const {
        for (size_t i = 0; i < m_xml.size();) {
            Utf8Character decoded = decodeUtf8(m_xml, i);
            if (decoded.length == 0) return failAt(i, "the text is not valid UTF-8");
            if (!isXmlChar(decoded.codePoint))
                return failAt(i, "a character that XML does not allow");
            i += decoded.length;
        }
        return {};
    }

    // --- markup outside the values

    /// Skips up to and including `terminator`.
    Result<void> skipPast(std::string_view terminator, std::string_view what) {
        size_t end = m_xml.find(terminator, m_pos);
        if (end == std::string_view::npos) return failAt(m_pos, "unterminated ", what);
        m_pos = end + terminator.size();
        return {};
    }

    /// Skips white space, comments and processing instructions.
    Result<void> skipMisc() {
        for (;;) {
            skipSpace();
            if (lookingAt("<!--")) {
                if (auto r = skipPast("-->", "comment"); !r) return r;
            } else if (lookingAt("<?")) {
                if (auto r = skipPast("?>", "processing instruction"); !r) return r;
            } else {
                return {};
            }
        }
    }

    Result<void> skipPrologue() {
        if (lookingAt("<?xml") && m_pos + 5 < m_xml.size() && isXmlSpace(m_xml[m_pos + 5])) {
            size_t start = m_pos;
            if (auto r = skipPast("?>", "XML declaration"); !r) return r;
            if (auto r = checkEncoding(m_xml.substr(start, m_pos - start), start); !r) return r;
        }
        bool doctypeSeen = false;
        for (;;) {
            if (auto r = skipMisc(); !r) return r;
            if (!lookingAt("<!DOCTYPE")) return {};
            if (doctypeSeen) return failAt(m_pos, "a second DOCTYPE");
            doctypeSeen = true;
            if (auto r = skipDoctype(); !r) return r;
        }
    }

    Result<void> checkEncoding(std::string_view declaration, size_t start) const {
        size_t at = declaration.find("encoding");
        if (at == std::string_view::npos) return {};
        size_t quote = declaration.find_first_of("\"'", at);
        if (quote == std::string_view::npos) return failAt(start, "malformed XML declaration");
        size_t close = declaration.find(declaration[quote], quote + 1);
        if (close == std::string_view::npos) return failAt(start, "malformed XML declaration");
        std::string_view encoding = declaration.substr(quote + 1, close - quote - 1);
        if (!equalsIgnoringCase(encoding, "UTF-8") && !equalsIgnoringCase(encoding, "UTF8"))
            return failAt(start, "unsupported encoding ", encoding);
        return {};
    }

    /// Skips a DOCTYPE, its internal subset included.
    Result<void> skipDoctype() {
        size_t start = m_pos;
        char quote = 0;
        int brackets = 0;
        for (m_pos += 9; !atEnd(); ++m_pos) {
            char c = m_xml[m_pos];
            if (quote) {
                if (c == quote) quote = 0;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '[') {
                ++brackets;
            } else if (c == ']') {
                --brackets;
            } else if (c == '>' && brackets <= 0) {
                ++m_pos;
                return {};
            }
        }
        return failAt(start, "unterminated DOCTYPE");
    }

    // --- tags

    static bool isNameChar(char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == ':' || c == '-' || c == '.' ||
               static_cast<unsigned char>(c) >= 0x80;
    }

    std::string_view readName() {
        size_t start = m_pos;
        while (!atEnd() && isNameChar(m_xml[m_pos]))
            ++m_pos;
        return m_xml.substr(start, m_pos - start);
    }

    /// Reads a start, end or empty-element tag at the current position.
    Result<Tag> readTag() {
        Tag tag;
        tag.position = m_pos;
        if (!lookingAt("<")) return failAt(m_pos, "expected a tag");
        ++m_pos;
        if (lookingAt("/")) {
            tag.closing = true;
            ++m_pos;
        }
        tag.name = readName();
        if (tag.name.empty()) return failAt(tag.position, "malformed tag");
        for (;;) {
            bool spaced = !atEnd() && isXmlSpace(m_xml[m_pos]);
            skipSpace();
            if (atEnd()) return failAt(tag.position, "unterminated tag <", tag.name);
            if (lookingAt(">")) {
                ++m_pos;
                return tag;
            }
            if (lookingAt("/>") && !tag.closing) {
                m_pos += 2;
                tag.selfClosing = true;
                return tag;
            }
            if (tag.closing || !spaced) return failAt(m_pos, "malformed tag <", tag.name);
            if (auto r = skipAttribute(); !r) return std::unexpected(r.error());
        }
    }

    /// Attributes are checked for form and otherwise ignored.
    Result<void> skipAttribute() {
        size_t start = m_pos;
        if (readName().empty()) return failAt(start, "malformed attribute");
        skipSpace();
        if (!lookingAt("=")) return failAt(start, "attribute without a value");
        ++m_pos;
        skipSpace();
        if (atEnd() || (m_xml[m_pos] != '"' && m_xml[m_pos] != '\''))
            return failAt(start, "attribute value without quotes");
        size_t close = m_xml.find(m_xml[m_pos], m_pos + 1);
        if (close == std::string_view::npos) return failAt(start, "unterminated attribute value");
        if (m_xml.substr(m_pos, close - m_pos).find('<') != std::string_view::npos)
            return failAt(start, "'<' in an attribute value");
        m_pos = close + 1;
        return {};
    }

    /// Skips white space and comments between the children of a container and reads the next
    /// tag. Text there is an error.
    Result<Tag> nextChildTag(std::string_view container) {
        if (auto r = skipMisc(); !r) return std::unexpected(r.error());
        if (atEnd()) return failAt(m_pos, "missing </", container, ">");
        if (m_xml[m_pos] != '<') return failAt(m_pos, "unexpected text in <", container, ">");
        if (lookingAt("<!")) return failAt(m_pos, "unexpected markup in <", container, ">");
        return readTag();
    }

    Result<void> expectClosing(const Tag& tag, std::string_view name) const {
        if (tag.closing && tag.name == name) return {};
        return failAt(tag.position, "expected </", name, ">, found ", tag.closing ? "</" : "<",
                      tag.name, ">");
    }

    // --- text content

    Result<void> appendReference(std::string& out) {
        size_t start = m_pos;
        size_t end = m_xml.find(';', m_pos);
        if (end == std::string_view::npos || end - m_pos > 12)
            return failAt(start, "malformed entity reference");
        std::string_view name = m_xml.substr(m_pos + 1, end - m_pos - 1);
        m_pos = end + 1;
        if (name == "amp")
            out += '&';
        else if (name == "lt")
            out += '<';
        else if (name == "gt")
            out += '>';
        else if (name == "quot")
            out += '"';
        else if (name == "apos")
            out += '\'';
        else if (name.starts_with('#'))
            return appendCharacterReference(out, name.substr(1), start);
        else
            return failAt(start, "unknown entity &", name, ";");
        return {};
    }

    Result<void> appendCharacterReference(std::string& out, std::string_view digits, size_t start) {
        int base = 10;
        if (digits.starts_with('x')) {
            base = 16;
            digits.remove_prefix(1);
        }
        uint32_t cp = 0;
        auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), cp, base);
        if (digits.empty() || ec != std::errc{} || end != digits.data() + digits.size() ||
            cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return failAt(start, "malformed character reference");
        appendUtf8(out, cp);
        return {};
    }

    /// Reads the text of a leaf element up to its end tag.
    Result<std::string> readText(std::string_view element) {
        std::string out;
        for (;;) {
            size_t stop = m_xml.find_first_of("<&\r", m_pos);
            if (stop == std::string_view::npos) return failAt(m_pos, "missing </", element, ">");
            out.append(m_xml.substr(m_pos, stop - m_pos));
            m_pos = stop;
            char c = m_xml[m_pos];
            if (c == '\r') {
                // Line ends are normalised as in any XML reader.
                out += '\n';
                m_pos += lookingAt("\r\n") ? 2 : 1;
            } else if (c == '&') {
                if (auto r = appendReference(out); !r) return std::unexpected(r.error());
            } else if (lookingAt("<![CDATA[")) {
                size_t begin = m_pos + 9;
                size_t end = m_xml.find("]]>", begin);
                if (end == std::string_view::npos)
                    return failAt(m_pos, "unterminated CDATA section");
                out.append(m_xml.substr(begin, end - begin));
                m_pos = end + 3;
            } else if (lookingAt("<!--")) {
                if (auto r = skipPast("-->", "comment"); !r) return std::unexpected(r.error());
            } else if (lookingAt("<?")) {
                if (auto r = skipPast("?>", "processing instruction"); !r)
                    return std::unexpected(r.error());
            } else {
                auto tag = readTag();
                if (!tag) return std::unexpected(tag.error());
                if (auto r = expectClosing(*tag, element); !r) return std::unexpected(r.error());
                return out;
            }
        }
    }

    Result<std::string> leafText(const Tag& tag) {
        if (tag.selfClosing) return std::string();
        return readText(tag.name);
    }

    // --- values

    Result<Value> readOnlyChild(std::string_view container, int depth) {
        auto tag = nextChildTag(container);
        if (!tag) return std::unexpected(tag.error());
        if (tag->closing) return failAt(tag->position, "<", container, "> holds no value");
        auto value = readValue(*tag, "", depth);
        if (!value) return value;
        auto closing = nextChildTag(container);
        if (!closing) return std::unexpected(closing.error());
        if (auto r = expectClosing(*closing, container); !r) return std::unexpected(r.error());
        return value;
    }

    Result<Value> readValue(const Tag& tag, std::string_view key, int depth) {
        if (tag.closing) return failAt(tag.position, "unexpected </", tag.name, ">");
        if (depth > kXmlPlistMaxDepth)
            return failAt(tag.position, "values nested deeper than ", kXmlPlistMaxDepth, " levels");
        auto element = elementNamed(tag.name);
        if (!element || *element == Element::Plist || *element == Element::Key)
            return failAt(tag.position, "<", tag.name, "> is not a value");
        switch (*element) {
        case Element::Dict:
            return readDict(tag, depth);
        case Element::Array:
            return readArray(tag, depth);
        case Element::True:
        case Element::False:
            return readBool(tag, *element == Element::True);
        case Element::String: {
            auto text = leafText(tag);
            if (!text) return std::unexpected(text.error());
            return Value::string(*text);
        }
        case Element::Real:
            return readReal(tag, key, depth);
        case Element::Integer:
            return readInteger(tag, key, depth);
        case Element::Date:
            return readDate(tag);
        case Element::Data:
            return readData(tag);
        default:
            break;
        }
        return failAt(tag.position, "<", tag.name, "> is not a value");
    }

    Result<Value> readDict(const Tag& tag, int depth) {
        DictEntries entries;
        if (tag.selfClosing) return Value::dict(std::move(entries));
        std::unordered_set<std::string> seen;
        for (;;) {
            auto keyTag = nextChildTag("dict");
            if (!keyTag) return std::unexpected(keyTag.error());
            if (keyTag->closing) {
                if (auto r = expectClosing(*keyTag, "dict"); !r) return std::unexpected(r.error());
                return Value::dict(std::move(entries));
            }
            if (keyTag->name != "key")
                return failAt(keyTag->position, "expected <key> in <dict>, found <", keyTag->name,
                              ">");
            auto key = leafText(*keyTag);
            if (!key) return std::unexpected(key.error());
            if (!seen.insert(*key).second)
                return failAt(keyTag->position, "duplicate key \"", *key, "\"");
            auto valueTag = nextChildTag("dict");
            if (!valueTag) return std::unexpected(valueTag.error());
            if (valueTag->closing)
                return failAt(valueTag->position, "key \"", *key, "\" has no value");
            auto value = readValue(*valueTag, *key, depth + 1);
            if (!value) return value;
            entries.emplace_back(std::move(*key), std::move(*value));
        }
    }

    Result<Value> readArray(const Tag& tag, int depth) {
        ArrayElements elements;
        if (tag.selfClosing) return Value::array(std::move(elements));
        for (;;) {
            auto child = nextChildTag("array");
            if (!child) return std::unexpected(child.error());
            if (child->closing) {
                if (auto r = expectClosing(*child, "array"); !r) return std::unexpected(r.error());
                return Value::array(std::move(elements));
            }
            auto value = readValue(*child, "", depth + 1);
            if (!value) return value;
            elements.push_back(std::move(*value));
        }
    }

    Result<Value> readBool(const Tag& tag, bool value) {
        auto text = leafText(tag);
        if (!text) return std::unexpected(text.error());
        if (!trimmed(*text).empty()) return failAt(tag.position, "<", tag.name, "> must be empty");
        return Value::boolean(value);
    }

    Kind chosenKind(std::string_view key, int depth, Kind standard) const {
        return m_numberKind ? m_numberKind(key, depth, standard) : standard;
    }

    Result<Value> readReal(const Tag& tag, std::string_view key, int depth) {
        auto raw = leafText(tag);
        if (!raw) return std::unexpected(raw.error());
        std::string_view text = trimmed(*raw);
        std::optional<double> value = parseNonFiniteReal(text);
        if (!value) value = parseFiniteReal<double>(text);
        if (!value) return failAt(tag.position, "\"", *raw, "\" is not a real number");
        if (chosenKind(key, depth, Kind::Double) == Kind::Float) {
            // Read the text again as a float: going through double could round twice.
            if (std::isnan(*value) || std::isinf(*value))
                return Value::floatValue(static_cast<float>(*value));
            if (auto single = parseFiniteReal<float>(text)) return Value::floatValue(*single);
        }
        return Value::doubleValue(*value);
    }

    Result<Value> readInteger(const Tag& tag, std::string_view key, int depth) {
        auto raw = leafText(tag);
        if (!raw) return std::unexpected(raw.error());
        std::optional<int64_t> value = parseInteger(trimmed(*raw));
        if (!value) return failAt(tag.position, "\"", *raw, "\" is not an integer in range");
        if (chosenKind(key, depth, Kind::Integer) == Kind::Int &&
            *value >= std::numeric_limits<int32_t>::min() &&
            *value <= std::numeric_limits<int32_t>::max())
            return Value::intValue(static_cast<int32_t>(*value));
        return Value::integer(*value);
    }

    Result<Value> readDate(const Tag& tag) {
        auto raw = leafText(tag);
        if (!raw) return std::unexpected(raw.error());
        std::optional<Date> date = parseDate(trimmed(*raw));
        if (!date) return failAt(tag.position, "\"", *raw, "\" is not a date");
        return Value::date(*date);
    }

    Result<Value> readData(const Tag& tag) {
        auto raw = leafText(tag);
        if (!raw) return std::unexpected(raw.error());
        std::optional<std::string> bytes = decodeBase64(*raw);
        if (!bytes) return failAt(tag.position, "<data> is not valid base64");
        return Value::data(std::move(*bytes));
    }

    std::string_view m_xml;
    size_t m_pos = 0;
    const PlistNumberKind& m_numberKind;
};

// ---------------------------------------------------------------------------------------
// Writer

constexpr std::string_view kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                     "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                     "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                     "<plist version=\"1.0\">\n";

class Writer {
  public:
    Result<std::string> write(const Value& root) {
        m_out = kHeader;
        if (auto r = writeValue(root, 1); !r) return std::unexpected(r.error());
        m_out += "</plist>\n";
        return std::move(m_out);
    }

  private:
    void indent(int depth) { m_out.append(static_cast<size_t>(depth - 1), '\t'); }

    void element(int depth, std::string_view name, std::string_view content) {
        indent(depth);
        m_out += '<';
        m_out += name;
        m_out += '>';
        m_out += content;
        m_out += "</";
        m_out += name;
        m_out += ">\n";
    }

    void textElement(int depth, std::string_view name, std::string_view text) {
        std::string escaped;
        escaped.reserve(text.size());
        for (size_t i = 0; i < text.size();) {
            Utf8Character decoded = decodeUtf8(text, i);
            if (decoded.length == 0) {
                appendUtf8(escaped, 0xFFFD);
                ++i;
                continue;
            }
            char32_t cp = decoded.codePoint;
            if (cp == '&')
                escaped += "&amp;";
            else if (cp == '<')
                escaped += "&lt;";
            else if (cp == '>')
                escaped += "&gt;";
            else if (cp == '\r' || !isXmlChar(cp)) {
                char number[16];
                auto [end, ec] =
                    std::to_chars(number, number + sizeof number, static_cast<uint32_t>(cp), 16);
                escaped += "&#x";
                escaped.append(number, end);
                escaped += ';';
            } else {
                escaped.append(text.substr(i, decoded.length));
            }
            i += decoded.length;
        }
        element(depth, name, escaped);
    }

    Result<void> writeValue(const Value& value, int depth) {
        if (depth > kXmlPlistMaxDepth)
            return fail("values nested deeper than " + std::to_string(kXmlPlistMaxDepth) +
                        " levels cannot be written");
        std::string number;
        switch (value.kind()) {
        case Kind::String:
        case Kind::Image:
            textElement(depth, "string", value.text());
            return {};
        case Kind::Float:
            appendShortest(number, value.asFloat());
            break;
        case Kind::Double:
            appendShortest(number, value.asDouble());
            break;
        case Kind::Int:
            element(depth, "integer", std::to_string(value.asInt()));
            return {};
        case Kind::Integer:
            element(depth, "integer", std::to_string(value.asInteger()));
            return {};
        case Kind::Bool:
            indent(depth);
            m_out += value.asBool() ? "<true/>\n" : "<false/>\n";
            return {};
        case Kind::Date:
            return writeDate(value.asDate(), depth);
        case Kind::Data:
            element(depth, "data", encodeBase64(value.text()));
            return {};
        case Kind::Dict:
            return writeDict(value.asDict(), depth);
        case Kind::Array:
            return writeArray(value.asArray(), depth);
        case Kind::Absent:
            return fail("an absent value cannot be written to a property list");
        case Kind::Record:
            return fail("a record cannot be written to a property list");
        }
        element(depth, "real", number);
        return {};
    }

    Result<void> writeDate(Date date, int depth) {
        std::optional<std::string> text = formatDate(date);
        if (!text)
            return fail("the date " + std::to_string(date.sinceReferenceDate) +
                        " lies outside the years 1 to 9999");
        element(depth, "date", *text);
        return {};
    }

    Result<void> writeDict(const DictEntries& entries, int depth) {
        indent(depth);
        bool empty = std::all_of(entries.begin(), entries.end(),
                                 [](const auto& entry) { return entry.second.isAbsent(); });
        if (empty) {
            m_out += "<dict/>\n";
            return {};
        }
        m_out += "<dict>\n";
        for (const auto& [key, value] : entries) {
            if (value.isAbsent()) continue;
            textElement(depth + 1, "key", key);
            if (auto r = writeValue(value, depth + 1); !r)
                return fail(key + ": " + r.error().message);
        }
        indent(depth);
        m_out += "</dict>\n";
        return {};
    }

    Result<void> writeArray(const ArrayElements& elements, int depth) {
        indent(depth);
        if (elements.empty()) {
            m_out += "<array/>\n";
            return {};
        }
        m_out += "<array>\n";
        for (const Value& element : elements)
            if (auto r = writeValue(element, depth + 1); !r) return r;
        indent(depth);
        m_out += "</array>\n";
        return {};
    }

    std::string m_out;
};

} // namespace

Result<Value> readXmlPlist(std::string_view xml, const PlistNumberKind& numberKind) {
    return Reader(xml, numberKind).readDocument();
}

Result<std::string> writeXmlPlist(const Value& root) {
    return Writer().write(root);
}

} // namespace zifora::core
