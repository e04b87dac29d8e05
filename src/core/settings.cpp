#include "core/settings.h"

#include <chrono>

#include "core/atomicfile.h"
#include "core/settingskeys.h"
#include "core/xmlplist.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>

#include <pwd.h>
#include <unistd.h>

namespace zifora::core {

namespace fs = std::filesystem;

namespace {

/// The name under which a date that a <date> can't hold is noted.
constexpr std::string_view kDateNote = "date";

bool registeredAsFloat(std::string_view key) {
    const SettingInfo* info = settingInfo(key);
    return info && info->type == SettingType::Float;
}

/// What the file must note about `value` under `key` so that it reads back with its kind;
/// absent if the element and the registry say enough.
Value kindNote(std::string_view key, const Value& value) {
    switch (value.kind()) {
    case Kind::Float:
        if (!registeredAsFloat(key)) return Value::string(kindName(Kind::Float));
        break;
    case Kind::Double:
        if (registeredAsFloat(key)) return Value::string(kindName(Kind::Double));
        break;
    case Kind::Int:
    case Kind::Image:
        return Value::string(kindName(value.kind()));
    case Kind::Date: {
        double seconds = value.asDate().sinceReferenceDate;
        if (!isWritablePlistDate(value.asDate())) return Value::string(kDateNote);
        if (std::isfinite(seconds) && std::floor(seconds) != seconds)
            return Value::doubleValue(seconds);
        break;
    }
    default:
        break;
    }
    return {};
}

/// The kind of a number read from the file under a top-level key.
Kind numberKind(const Value& notes, std::string_view key, int depth, Kind standard) {
    if (depth != 2) return standard;
    const Value note = notes[key];
    const std::string& noted = note.text();
    if (noted == kDateNote) return Kind::Double;
    for (Kind kind : {Kind::Float, Kind::Double, Kind::Int, Kind::Integer})
        if (noted == kindName(kind)) return kind;
    if (standard == Kind::Double && registeredAsFloat(key)) return Kind::Float;
    return standard;
}

/// Gives a value read from the file the kind its note asks for.
Value applyNote(Value value, const Value& note) {
    if (value.kind() == Kind::String && note.text() == kindName(Kind::Image))
        return Value::image(value.text());
    if (value.kind() == Kind::Double && note.text() == kDateNote)
        return Value::date(Date{value.asDouble()});
    if (value.kind() == Kind::Date && note.kind() == Kind::Double) {
        double exact = note.asDouble();
        if (std::isfinite(exact) && std::floor(exact) == value.asDate().sinceReferenceDate)
            return Value::date(Date{exact});
    }
    return value;
}

using Store = std::map<std::string, Value, std::less<>>;

/// `value` with every date that a <date> can't hold replaced by its seconds, so that the
/// writer never refuses the store for a date. Deeper than the writer goes it stays as it is.
Value writableValue(const Value& value, int depth = 1) {
    if (depth > kXmlPlistMaxDepth) return value;
    switch (value.kind()) {
    case Kind::Date:
        if (isWritablePlistDate(value.asDate())) return value;
        return Value::doubleValue(value.asDate().sinceReferenceDate);
    case Kind::Dict: {
        DictEntries entries;
        for (const auto& [key, v] : value.asDict())
            entries.emplace_back(key, writableValue(v, depth + 1));
        return Value::dict(std::move(entries));
    }
    case Kind::Array: {
        ArrayElements elements;
        for (const Value& v : value.asArray())
            elements.push_back(writableValue(v, depth + 1));
        return Value::array(std::move(elements));
    }
    default:
        return value;
    }
}

Result<Store> parseStore(std::string_view bytes) {
    // A first reading finds the notes, a second one reads each number in its final kind
    // straight from its text.
    auto first = readXmlPlist(bytes);
    if (!first) return std::unexpected(first.error());
    if (first->kind() != Kind::Dict) return fail("the file does not hold a dictionary");
    const Value notes = (*first)[Settings::kKindNotesKey];
    auto second = readXmlPlist(bytes, [&](std::string_view key, int depth, Kind standard) {
        return numberKind(notes, key, depth, standard);
    });
    if (!second) return std::unexpected(second.error());
    Store store;
    for (const auto& [key, value] : second->asDict()) {
        if (key == Settings::kKindNotesKey) continue;
        store.insert_or_assign(key, applyNote(value, notes[key]));
    }
    return store;
}

std::string numberText(const Value& value) {
    char text[64];
    std::to_chars_result end{};
    if (value.kind() == Kind::Float)
        end = std::to_chars(text, text + sizeof text, value.asFloat());
    else
        end = std::to_chars(text, text + sizeof text, value.asDouble());
    return std::string(text, end.ptr);
}

fs::path homeFolder() {
    if (const char* home = std::getenv("HOME"); home && *home) return home;
    if (const passwd* entry = ::getpwuid(::getuid()); entry && entry->pw_dir) return entry->pw_dir;
    return "/";
}

} // namespace

Settings::Settings(fs::path file) : m_file(std::move(file)) {}

Result<void> Settings::load() {
    m_values.clear();
    std::error_code ec;
    if (fs::status(m_file, ec).type() == fs::file_type::not_found) return {};
    auto bytes = readWholeFile(m_file);
    if (!bytes) return std::unexpected(bytes.error());
    auto store = parseStore(*bytes);
    if (!store) return fail(m_file.string() + ": " + store.error().message);
    m_values = std::move(*store);
    return {};
}

Result<void> Settings::flush() {
    DictEntries entries;
    DictEntries notes;
    for (const auto& [key, value] : m_values) {
        entries.emplace_back(key, writableValue(value, /*depth=*/2));
        if (Value note = kindNote(key, value); !note.isAbsent()) notes.emplace_back(key, note);
    }
    if (!notes.empty()) entries.emplace_back(kKindNotesKey, Value::dict(std::move(notes)));
    auto xml = writeXmlPlist(Value::dict(std::move(entries)));
    if (!xml) return fail(m_file.string() + ": " + xml.error().message);

    std::error_code ec;
    if (fs::path folder = m_file.parent_path(); !folder.empty()) {
        fs::create_directories(folder, ec);
        if (ec)
            return fail(m_file.string() + ": cannot create the folder " + folder.string() + ": " +
                        ec.message());
    }
    return writeFileAtomically(m_file, *xml);
}

Value Settings::get(std::string_view key) const {
    auto it = m_values.find(key);
    return it == m_values.end() ? Value{} : it->second;
}

bool Settings::contains(std::string_view key) const {
    return m_values.contains(key);
}

bool Settings::getBool(std::string_view key) const {
    return get(key).toBool();
}

int64_t Settings::getInteger(std::string_view key) const {
    return get(key).toInteger();
}

float Settings::getFloat(std::string_view key) const {
    return get(key).toFloat();
}

std::string Settings::getString(std::string_view key) const {
    Value value = get(key);
    switch (value.kind()) {
    case Kind::String:
    case Kind::Image:
        return value.text();
    case Kind::Bool:
        return value.asBool() ? "1" : "0";
    case Kind::Int:
    case Kind::Integer:
        return std::to_string(value.toInteger());
    case Kind::Float:
    case Kind::Double:
        return numberText(value);
    default:
        return {};
    }
}

void Settings::setBool(std::string_view key, bool value) {
    set(key, Value::boolean(value));
}

void Settings::setInteger(std::string_view key, int64_t value) {
    set(key, Value::integer(value));
}

void Settings::setFloat(std::string_view key, float value) {
    set(key, Value::floatValue(value));
}

void Settings::setString(std::string_view key, std::string_view value) {
    set(key, Value::string(value));
}

void Settings::setDate(std::string_view key, Date value) {
    set(key, Value::date(value));
}

void Settings::set(std::string_view key, Value value) {
    if (key == kKindNotesKey || value.kind() == Kind::Record) return;
    if (value.isAbsent()) {
        remove(key);
        return;
    }
    if (auto it = m_values.find(key); it != m_values.end())
        it->second = std::move(value);
    else
        m_values.emplace(std::string(key), std::move(value));
}

void Settings::remove(std::string_view key) {
    if (auto it = m_values.find(key); it != m_values.end()) m_values.erase(it);
}

fs::path defaultSettingsFile() {
    fs::path config;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME");
        xdg && *xdg && fs::path(xdg).is_absolute())
        config = xdg;
    else
        config = homeFolder() / ".config";
    return config / "Zifora" / "Zifora.plist";
}

std::optional<std::string> loadSettingsSafely(Settings& settings) {
    auto loaded = settings.load();
    if (loaded) return std::nullopt;
    std::error_code ec;
    auto stamp = std::chrono::duration_cast<std::chrono::seconds>(
                     std::chrono::system_clock::now().time_since_epoch())
                     .count();
    std::filesystem::path aside = settings.file();
    aside += ".unlesbar-" + std::to_string(stamp);
    std::filesystem::rename(settings.file(), aside, ec);
    std::string notice =
        "Die Einstellungen konnten nicht gelesen werden (" + loaded.error().message + "). ";
    if (ec)
        notice += "Die Datei bleibt, wie sie ist.";
    else
        notice += "Die Datei wurde als „" + aside.string() + "“ beiseitegelegt.";
    notice += " Zifora liest deine Datenbank wie immer und macht mit leeren Einstellungen "
              "weiter. Bitte prüfe deine Einstellungen (Steuersätze, Speicherorte, Backups).";
    settings.setLossNotice(notice);
    return notice;
}

} // namespace zifora::core
