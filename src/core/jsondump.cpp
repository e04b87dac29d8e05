#include "core/jsondump.h"

#include "core/base64.h"
#include "core/civildate.h"
#include "core/keyedarchive.h"
#include "core/record.h"
#include "core/utf8.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <set>

namespace zifora::core {

using core::Kind;
using core::Record;
using core::Value;
// Ordered, so that keys keep the order of the dump.
using Json = nlohmann::ordered_json;

namespace {

std::string shortestFloat(float f) {
    if (std::isnan(f)) return "\"nan\"";
    if (std::isinf(f)) return f > 0 ? "\"inf\"" : "\"-inf\"";
    char buf[64];
    auto r = std::to_chars(buf, buf + sizeof buf, f);
    return std::string(buf, r.ptr);
}

std::string shortestDouble(double d) {
    if (std::isnan(d)) return "\"nan\"";
    if (std::isinf(d)) return d > 0 ? "\"inf\"" : "\"-inf\"";
    char buf[64];
    auto r = std::to_chars(buf, buf + sizeof buf, d);
    return std::string(buf, r.ptr);
}

class Writer {
  public:
    std::string out;

    void root(const Value& v) {
        if (v.kind() == Kind::Dict)
            writeObject(v.asDict(), [this](const Value& m) { plainMember(m); });
        else
            plainMember(v);
    }

    // {"key":member,…} with each member written by `write`.
    template <typename Write> void writeObject(const core::DictEntries& entries, Write write) {
        out += '{';
        bool first = true;
        for (const auto& [k, member] : entries) {
            if (!first) out += ',';
            first = false;
            appendJsonString(out, k);
            out += ':';
            write(member);
        }
        out += '}';
    }

    // Records and lists of records stand as they are; everything else is tagged.
    void plainMember(const Value& v) {
        if (v.kind() == Kind::Record) return record(*v.asRecord());
        if (v.kind() == Kind::Array) {
            bool allRecords = true;
            for (const Value& e : v.asArray())
                allRecords &= e.kind() == Kind::Record;
            if (allRecords) {
                out += '[';
                bool first = true;
                for (const Value& e : v.asArray()) {
                    if (!first) out += ',';
                    first = false;
                    record(*e.asRecord());
                }
                out += ']';
                return;
            }
        }
        tagged(v);
    }

    void record(const Record& r) {
        out += "{\"class\":";
        appendJsonString(out, r.className());
        if (r.recordClass() == core::RecordClass::Foreign && r.classChain().size() > 1) {
            out += ",\"classes\":[";
            for (size_t i = 0; i < r.classChain().size(); ++i) {
                if (i) out += ',';
                appendJsonString(out, r.classChain()[i]);
            }
            out += ']';
        }
        out += ",\"properties\":{";
        bool first = true;
        r.properties().forEach([&](const std::string& key, const Value& v) {
            if (!first) out += ',';
            first = false;
            appendJsonString(out, key);
            out += ':';
            tagged(v);
        });
        out += '}';
        const auto& info = core::classInfo(r.recordClass());
        for (size_t i = 0; i < info.listKeys.size(); ++i) {
            out += ',';
            appendJsonString(out, info.listKeys[i]);
            out += ":[";
            bool firstChild = true;
            for (const auto& child : r.list(i)) {
                if (!firstChild) out += ',';
                firstChild = false;
                record(*child);
            }
            out += ']';
        }
        out += '}';
    }

    void tagged(const Value& v) {
        switch (v.kind()) {
        case Kind::Absent:
            out += "null";
            return;
        case Kind::Record:
            record(*v.asRecord());
            return;
        case Kind::String:
            out += "{\"string\":";
            appendJsonString(out, v.text());
            break;
        case Kind::Image:
            out += "{\"image\":";
            appendJsonString(out, v.text());
            break;
        case Kind::Data:
            out += "{\"data\":\"" + core::encodeBase64(v.text()) + "\"";
            break;
        case Kind::Float:
            out += "{\"float\":" + shortestFloat(v.asFloat());
            break;
        case Kind::Double:
            out += "{\"double\":" + shortestDouble(v.asDouble());
            break;
        case Kind::Int:
            out += "{\"int\":" + std::to_string(v.asInt());
            break;
        case Kind::Integer:
            out += "{\"integer\":" + std::to_string(v.asInteger());
            break;
        case Kind::Bool:
            out += v.asBool() ? "{\"bool\":true" : "{\"bool\":false";
            break;
        case Kind::Date: {
            std::string iso = isoDate(v.asDate());
            out += "{\"date\":";
            if (iso.empty())
                out += shortestDouble(v.asDate().sinceReferenceDate);
            else
                appendJsonString(out, iso);
            break;
        }
        case Kind::Dict:
            out += "{\"dict\":";
            writeObject(v.asDict(), [this](const Value& m) { tagged(m); });
            break;
        case Kind::Array: {
            out += "{\"array\":[";
            bool first = true;
            for (const Value& e : v.asArray()) {
                if (!first) out += ',';
                first = false;
                tagged(e);
            }
            out += ']';
            break;
        }
        }
        out += '}';
    }
};

// ---------------------------------------------------------------------------------------
// Reading

core::Result<double> jsonReal(const Json& j, const std::string& where) {
    if (j.is_number()) return j.get<double>();
    if (j.is_string()) {
        auto s = j.get<std::string>();
        if (s == "nan") return std::nan("");
        if (s == "inf") return INFINITY;
        if (s == "-inf") return -INFINITY;
    }
    return core::fail(where + ": a number is expected");
}

core::Result<Value> readTagged(const Json& j, const std::string& where);

core::Result<Value> readRecord(const Json& j, const std::string& where) {
    std::string className = j.at("class").is_string() ? j.at("class").get<std::string>() : "";
    if (className.empty()) return core::fail(where + ": \"class\" must be a class name");
    if (core::isPlainValueClassName(className))
        return core::fail(where + ": \"" + className +
                          "\" is the class of a plain value, not of a record");
    core::RecordClass rc = core::recordClassNamed(className);
    core::Ref<Record> record;
    if (rc == core::RecordClass::Foreign) {
        std::vector<std::string> chain;
        if (j.contains("classes") && j["classes"].is_array())
            for (const auto& n : j["classes"])
                if (n.is_string()) chain.push_back(n.get<std::string>());
        record = Record::makeForeign(className, chain);
    } else {
        record = Record::makeBare(rc);
    }
    if (j.contains("properties")) {
        const Json& props = j["properties"];
        if (!props.is_object()) return core::fail(where + ".properties: an object is expected");
        for (auto it = props.begin(); it != props.end(); ++it) {
            const std::string key = it.key();
            auto v = readTagged(it.value(), where + ".properties." + key);
            if (!v) return v;
            record->properties().set(key, std::move(*v));
        }
    }
    const auto& info = core::classInfo(rc);
    for (size_t i = 0; i < info.listKeys.size(); ++i) {
        std::string key(info.listKeys[i]);
        if (!j.contains(key)) continue;
        const Json& list = j[key];
        if (!list.is_array()) return core::fail(where + "." + key + ": a list is expected");
        auto records = std::make_shared<core::RecordList>();
        for (size_t n = 0; n < list.size(); ++n) {
            std::string at = where + "." + key + "[" + std::to_string(n) + "]";
            if (!list[n].is_object() || !list[n].contains("class"))
                return core::fail(at + ": a record is expected");
            auto child = readRecord(list[n], at);
            if (!child) return child;
            records->push_back(child->recordRef());
        }
        record->setList(i, std::move(records));
    }
    return Value::record(record);
}

core::Result<Value> readTagged(const Json& j, const std::string& where) {
    if (j.is_null()) return Value{};
    if (!j.is_object())
        return core::fail(where + ": a tagged value such as {\"string\":\"…\"} is expected");
    if (j.contains("class")) return readRecord(j, where);
    if (j.size() != 1) return core::fail(where + ": a tagged value has exactly one kind");
    auto first = j.begin();
    const std::string tag = first.key();
    const Json& x = first.value();
    if (tag == "string" || tag == "image") {
        if (!x.is_string()) return core::fail(where + ": a text is expected");
        return tag == "string" ? Value::string(x.get<std::string>())
                               : Value::image(x.get<std::string>());
    }
    if (tag == "data") {
        if (!x.is_string()) return core::fail(where + ": base64 text is expected");
        auto bytes = core::decodeBase64(x.get<std::string>());
        if (!bytes) return core::fail(where + ": data is not valid base64");
        return Value::data(*bytes);
    }
    if (tag == "float") {
        auto d = jsonReal(x, where);
        if (!d) return std::unexpected(d.error());
        if (!std::isfinite(*d)) return Value::floatValue(static_cast<float>(*d));
        // The text of the dump is the float's shortest form; read it as a float directly.
        char buf[64];
        auto r = std::to_chars(buf, buf + sizeof buf - 1, *d);
        *r.ptr = '\0';
        return Value::floatValue(std::strtof(buf, nullptr));
    }
    if (tag == "double") {
        auto d = jsonReal(x, where);
        if (!d) return std::unexpected(d.error());
        return Value::doubleValue(*d);
    }
    if (tag == "int" || tag == "integer") {
        if (!x.is_number_integer()) return core::fail(where + ": a whole number is expected");
        if (x.is_number_unsigned() && x.get<uint64_t>() > INT64_MAX)
            return core::fail(where + ": the number is too large");
        int64_t n = x.get<int64_t>();
        if (tag == "int") {
            if (n < INT32_MIN || n > INT32_MAX) return core::fail(where + ": too large for an int");
            return Value::intValue(static_cast<int32_t>(n));
        }
        return Value::integer(n);
    }
    if (tag == "bool") {
        if (!x.is_boolean()) return core::fail(where + ": true or false is expected");
        return Value::boolean(x.get<bool>());
    }
    if (tag == "date") {
        if (x.is_number()) return Value::date(core::Date{x.get<double>()});
        if (!x.is_string()) return core::fail(where + ": an ISO 8601 date is expected");
        // A date outside the years 1–9999 is dumped as its seconds, "nan" and "inf" too.
        if (auto special = jsonReal(x, where)) return Value::date(core::Date{*special});
        auto d = parseIsoDate(x.get<std::string>());
        if (!d) return core::fail(where + ": " + d.error().message);
        return Value::date(*d);
    }
    if (tag == "dict") {
        if (!x.is_object()) return core::fail(where + ": an object is expected");
        core::DictEntries entries;
        for (auto it = x.begin(); it != x.end(); ++it) {
            const std::string k = it.key();
            auto v = readTagged(it.value(), where + "." + k);
            if (!v) return v;
            entries.emplace_back(k, std::move(*v));
        }
        return Value::dict(std::move(entries));
    }
    if (tag == "array") {
        if (!x.is_array()) return core::fail(where + ": a list is expected");
        core::ArrayElements elements;
        for (size_t n = 0; n < x.size(); ++n) {
            auto v = readTagged(x[n], where + "[" + std::to_string(n) + "]");
            if (!v) return v;
            elements.push_back(std::move(*v));
        }
        return Value::array(std::move(elements));
    }
    return core::fail(where + ": unknown kind \"" + tag + "\"");
}

core::Result<Value> readPlainMember(const Json& j, const std::string& where) {
    if (j.is_array()) {
        core::ArrayElements elements;
        for (size_t n = 0; n < j.size(); ++n) {
            std::string at = where + "[" + std::to_string(n) + "]";
            if (!j[n].is_object() || !j[n].contains("class"))
                return core::fail(at + ": a record is expected");
            auto v = readRecord(j[n], at);
            if (!v) return v;
            elements.push_back(std::move(*v));
        }
        return Value::array(std::move(elements));
    }
    return readTagged(j, where);
}

Json parseJson(std::string_view text, std::string& error) {
    // Checked before the parse: reading, copying, writing and freeing a JSON value all
    // recurse once per level.
    if (!jsonNestsWithin(text, kMaxJsonNesting)) {
        error = "the JSON is nested more than " + std::to_string(kMaxJsonNesting) + " levels deep";
        return Json();
    }
    Json j = Json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (j.is_discarded()) error = "the text is not valid JSON";
    return j;
}

std::string tooDeep(const std::string& where, int levels) {
    return where + ": the values are nested more than " + std::to_string(levels) + " levels deep";
}

} // namespace

std::string taggedObjectJson(const std::vector<std::pair<std::string, core::Value>>& entries) {
    std::string out = "{";
    for (const auto& [key, value] : entries) {
        if (out.size() > 1) out += ',';
        appendJsonString(out, key);
        out += ':' + taggedJson(value);
    }
    return out + "}";
}

bool jsonNestsWithin(std::string_view json, int levels) {
    int depth = 0;
    bool inString = false;
    for (size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (inString) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > levels) return false;
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return true;
}

void appendJsonString(std::string& out, std::string_view text) {
    std::string repaired;
    if (!core::isValidUtf8(text)) {
        repaired = core::repairedUtf8(text);
        text = repaired;
    }
    out += '"';
    for (char c : text) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", static_cast<unsigned char>(c));
                out += buf;
            } else {
                out += c;
            }
        }
    }
    out += '"';
}

std::string isoDate(core::Date date) {
    // Whole seconds and the fraction are split in the archive's own time base, so that
    // the fraction is exact and the text reads back to the very same double.
    double t = date.sinceReferenceDate;
    if (!std::isfinite(t) || t < -63113904000.0 || t >= 252423993600.0) return {};
    double whole = std::floor(t);
    double fraction = t - whole;
    const core::CivilTime civil = core::civilFromUnixSeconds(
        static_cast<int64_t>(whole) + static_cast<int64_t>(core::Date::kUnixOffset));
    char buf[64];
    std::snprintf(buf, sizeof buf, "%04lld-%02u-%02uT%02u:%02u:%02u",
                  static_cast<long long>(civil.date.year), civil.date.month, civil.date.day,
                  civil.hour, civil.minute, civil.second);
    std::string out = buf;
    // The fraction is written exactly (shortest form that reads back to the same double),
    // with at least three digits.
    char frac[64];
    auto r = std::to_chars(frac, frac + sizeof frac, fraction, std::chars_format::fixed);
    std::string digits(frac, r.ptr);
    auto dot = digits.find('.');
    digits = dot == std::string::npos ? "" : digits.substr(dot + 1);
    while (digits.size() < 3)
        digits += '0';
    return out + "." + digits + "Z";
}

core::Result<core::Date> parseIsoDate(std::string_view text) {
    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0, consumed = 0;
    std::string str(text);
    if (std::sscanf(str.c_str(), "%d-%d-%dT%d:%d:%d%n", &y, &mo, &d, &h, &mi, &s, &consumed) != 6)
        return core::fail("\"" + str + "\" is not an ISO 8601 date");
    if (mo < 1 || mo > 12 || d < 1 || d > 31 || h > 23 || mi > 59 || s > 60 || h < 0 || mi < 0 ||
        s < 0)
        return core::fail("\"" + str + "\" is not a valid date");
    std::string_view rest = text.substr(static_cast<size_t>(consumed));
    double fraction = 0;
    if (!rest.empty() && rest.front() == '.') {
        size_t end = 1;
        while (end < rest.size() && std::isdigit(static_cast<unsigned char>(rest[end])))
            ++end;
        fraction = std::strtod(std::string("0").append(rest.substr(0, end)).c_str(), nullptr);
        rest.remove_prefix(end);
    }
    if (rest != "Z" && rest != "+00:00" && !rest.empty())
        return core::fail("\"" + str + "\" must be given in UTC (ending in Z)");
    int64_t days = core::daysFromCivil(y, static_cast<unsigned>(mo), static_cast<unsigned>(d));
    int64_t unix = days * core::kSecondsPerDay + h * 3600 + mi * 60 + s;
    auto whole = static_cast<double>(unix - static_cast<int64_t>(core::Date::kUnixOffset));
    return core::Date{whole + fraction};
}

std::string dumpJson(const Value& root) {
    Writer w;
    w.root(root);
    return w.out;
}

std::string taggedJson(const Value& value) {
    Writer w;
    w.tagged(value);
    return w.out;
}

core::Result<Value> loadJson(std::string_view text) {
    std::string error;
    Json j = parseJson(text, error);
    if (!error.empty()) return core::fail(error);
    static const std::set<std::string> tags{"string", "float", "int",  "integer", "double", "bool",
                                            "date",   "image", "data", "dict",    "array"};
    bool tagged = j.is_object() && j.size() == 1 && tags.contains(j.begin().key());
    if (j.is_object() && !j.contains("class") && !tagged) {
        // The root dictionary: its members are lists of records or tagged values.
        core::DictEntries entries;
        for (auto it = j.begin(); it != j.end(); ++it) {
            const std::string k = it.key();
            auto v = readPlainMember(it.value(), k);
            if (!v) return v;
            entries.emplace_back(k, std::move(*v));
        }
        Value root = Value::dict(std::move(entries));
        if (!nestsWithin(root, kMaxNesting)) return core::fail(tooDeep("root", kMaxNesting));
        return root;
    }
    auto root = readPlainMember(j, "root");
    if (root && !nestsWithin(*root, kMaxNesting)) return core::fail(tooDeep("root", kMaxNesting));
    return root;
}

core::Result<Value> loadTaggedJson(std::string_view text) {
    std::string error;
    Json j = parseJson(text, error);
    if (!error.empty()) return core::fail(error);
    auto value = readTagged(j, "value");
    if (value && !nestsWithin(*value, kMaxValueNesting))
        return core::fail(tooDeep("value", kMaxValueNesting));
    return value;
}

} // namespace zifora::core
