#include "shell/scriptdriver.h"

#include "core/jsondump.h"
#include "shell/events.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>

namespace zifora::shell {

ScriptDriver::ScriptDriver(Session& session, HeadlessServices& services)
    : m_session(session), m_services(services) {
    m_session.events().subscribe<DatabaseSaveFailed>([this](const DatabaseSaveFailed& failed) {
        m_lastSaveFailed = true;
        m_services.log.emit({{"saveFailed", {{"path", failed.path}, {"cause", failed.cause}}}});
    });
    m_session.events().subscribe<DatabaseSaved>(
        [this](const DatabaseSaved&) { m_lastSaveFailed = false; });
    m_session.events().subscribe<SettingsSaveFailed>([this](const SettingsSaveFailed& failed) {
        m_services.log.emit(
            {{"settingsSaveFailed", {{"path", failed.path}, {"cause", failed.cause}}}});
    });
}

int ScriptDriver::run(std::istream& script) {
    std::string line;
    int number = 0;
    while (!m_services.workspace.terminated() && std::getline(script, line)) {
        ++number;
        if (line.find_first_not_of(" \t\r") == std::string::npos || line.starts_with("#")) continue;
        // Checked before the parse, which like every walk of a JSON value recurses once
        // per level.
        if (!core::jsonNestsWithin(line, core::kMaxJsonNesting)) {
            m_services.log.error("Zeile " + std::to_string(number) + ": mehr als " +
                                 std::to_string(core::kMaxJsonNesting) + " Ebenen verschachtelt");
            continue;
        }
        Json command = Json::parse(line, nullptr, /*allow_exceptions=*/false);
        if (command.is_discarded() || !command.is_object()) {
            m_services.log.error("Zeile " + std::to_string(number) + ": kein gültiges JSON-Objekt");
            continue;
        }
        execute(command, number);
        m_services.scheduler.runDue();
    }
    m_session.flushSettings();
    if (m_lastSaveFailed) return kExitLastSaveFailed;
    return m_services.log.errorCount() ? 1 : 0;
}

void ScriptDriver::execute(const Json& command, int number) {
    const std::string where = "Zeile " + std::to_string(number) + ": ";
    for (auto it = command.begin(); it != command.end(); ++it) {
        const std::string verb = it.key();
        const Json& arg = it.value();
        std::string problem;
        // Every verb checks its arguments; should a JSON value of a kind nobody expected
        // still slip through to an accessor, the line fails and the run goes on.
        try {
            problem = dispatch(verb, arg, command);
        } catch (const nlohmann::json::exception& e) {
            problem = verb + ": unerwarteter Wert (" + e.what() + ")";
        }
        if (!problem.empty()) m_services.log.error(where + problem);
    }
}

std::string ScriptDriver::dispatch(const std::string& verb, const Json& arg, const Json& command) {
    if (verb == "select") return select(arg);
    if (verb == "set") return setProperty(arg);
    if (verb == "field") return setField(arg);
    if (verb == "settings") return setSettings(arg);
    if (verb == "answer") return queueAnswers(arg);
    if (verb == "choose") return queueChoices(arg);
    if (verb == "do") return doCommand(arg, command);
    if (verb == "tag") return {}; // read together with "do"
    if (verb == "drag") return drag(arg);
    if (verb == "open") return openFile(arg);
    if (verb == "advance") {
        if (!arg.is_number() || !std::isfinite(arg.get<double>()) || arg.get<double>() < 0)
            return "advance braucht eine Zahl von Sekunden";
        m_services.scheduler.advance(arg.get<double>());
        return {};
    }
    if (verb == "clock") {
        if (!arg.is_string()) return "clock braucht ein Datum nach ISO 8601";
        auto date = core::parseIsoDate(arg.get<std::string>());
        if (!date) return date.error().message;
        m_services.clock.setStart(*date);
        return {};
    }
    if (verb == "start") {
        m_session.run("init");
        m_session.run("awakeFromNib");
        return {};
    }
    if (verb == "quit") {
        m_session.run("applicationWillTerminate");
        return {};
    }
    if (verb == "dump") {
        m_services.log.emitLine("{\"dump\":" + core::dumpJson(m_session.book().databaseRoot()) +
                                "}");
        return {};
    }
    if (verb == "dumpSettings") return dumpSettings(arg);
    if (verb == "fields") return dumpFields(arg);
    return "unbekannter Befehl \"" + verb + "\"";
}

// `true` (or any other value but a list) prints the whole store; a list of keys prints
// those keys in its order, each once, a key not in the store as null (absent).
std::string ScriptDriver::dumpSettings(const Json& arg) {
    std::vector<std::string> keys;
    if (arg.is_array()) {
        for (const Json& key : arg) {
            if (!key.is_string())
                return "dumpSettings: die Schlüssel sind Texte, nicht " + key.dump();
            if (std::find(keys.begin(), keys.end(), key.get<std::string>()) == keys.end())
                keys.push_back(key.get<std::string>());
        }
    } else {
        for (const auto& [key, value] : m_session.settings().all())
            keys.push_back(key);
    }
    std::vector<std::pair<std::string, core::Value>> entries;
    for (const std::string& key : keys)
        entries.emplace_back(key, m_session.settings().get(key));
    m_services.log.emitLine("{\"settings\":" + core::taggedObjectJson(entries) + "}");
    return {};
}

// What form controls hold: {"fields":["mainSumField",…]} prints each named control as a
// tagged value, a control never set as null.
std::string ScriptDriver::dumpFields(const Json& arg) {
    if (!arg.is_array()) return "fields braucht eine Liste von Namen";
    std::vector<std::pair<std::string, core::Value>> entries;
    for (const Json& name : arg) {
        if (!name.is_string()) return "fields: die Namen sind Texte, nicht " + name.dump();
        entries.emplace_back(name.get<std::string>(),
                             m_session.fields().get(name.get<std::string>()));
    }
    m_services.log.emitLine("{\"fields\":" + core::taggedObjectJson(entries) + "}");
    return {};
}

std::string ScriptDriver::select(const Json& arg) {
    if (!arg.is_object()) return "select braucht ein Objekt";
    // Higher levels first, since each decides what the next one shows.
    static const char* order[] = {"client",       "year",      "period",   "item",
                                  "group",        "account",   "template", "cashbook",
                                  "cashbookItem", "allowance", "inventory"};
    for (const char* name : order) {
        if (!arg.contains(name)) continue;
        ListController* controller = m_session.selection().byRecordName(name);
        if (!controller) continue;
        const Json& index = arg[name];
        if (index.is_null()) {
            controller->setSelectionIndex(std::nullopt);
        } else if (index.is_number_integer() && index.get<int64_t>() >= 0 &&
                   static_cast<size_t>(index.get<int64_t>()) < controller->count()) {
            controller->setSelectionIndex(index.get<int64_t>());
        } else {
            return std::string("keine Zeile ") + index.dump() + " in der Liste " + name +
                   " (sie hat " + std::to_string(controller->count()) + ")";
        }
        m_session.selectionChanged();
    }
    for (auto it = arg.begin(); it != arg.end(); ++it)
        if (!m_session.selection().byRecordName(it.key()))
            return "unbekannte Liste \"" + it.key() + "\"";
    return {};
}

std::string ScriptDriver::setProperty(const Json& arg) {
    if (!arg.is_object() || !arg.contains("record") || !arg.contains("key"))
        return "set braucht record, key und value";
    std::string name = arg["record"].is_string() ? arg["record"].get<std::string>() : "";
    ListController* controller = m_session.selection().byRecordName(name);
    if (!controller) return "unbekannter Datensatz \"" + name + "\"";
    core::Record* record = controller->selected();
    if (!record) return "in der Liste " + name + " ist nichts ausgewählt";
    if (!arg["key"].is_string()) return "key muss ein Text sein";
    auto value = core::loadTaggedJson(arg.contains("value") ? arg["value"].dump() : "null");
    if (!value) return value.error().message;
    record->set(arg["key"].get<std::string>(), *value);
    controller->rearrange();
    return {};
}

std::string ScriptDriver::setField(const Json& arg) {
    if (!arg.is_object() || !arg.contains("name") || !arg["name"].is_string())
        return "field braucht name und value";
    const Json& value = arg.contains("value") ? arg["value"] : Json();
    core::Value v;
    if (value.is_string())
        v = core::Value::string(value.get<std::string>());
    else if (value.is_boolean())
        v = core::Value::boolean(value.get<bool>());
    else if (value.is_number_integer())
        v = core::Value::integer(value.get<int64_t>());
    else if (value.is_number())
        v = core::Value::doubleValue(value.get<double>());
    else if (value.is_object()) {
        auto tagged = core::loadTaggedJson(value.dump());
        if (!tagged) return tagged.error().message;
        v = *tagged;
    } else if (!value.is_null())
        return "field: unbekannter Wert";
    m_session.fields().set(arg["name"].get<std::string>(), v);
    return {};
}

std::string ScriptDriver::drag(const Json& arg) {
    if (!arg.is_object() || !arg.contains("list") || !arg["list"].is_string() ||
        !arg.contains("rows") || !arg["rows"].is_array())
        return "drag braucht list, rows und to";
    DragRequest request;
    request.list = arg["list"].get<std::string>();
    for (const Json& row : arg["rows"]) {
        if (!row.is_number_integer() || row.get<int64_t>() < 0)
            return "drag: rows sind Zeilennummern";
        request.rows.push_back(static_cast<size_t>(row.get<int64_t>()));
    }
    if (arg.contains("to")) {
        const Json& to = arg["to"];
        if (!to.is_object()) return "drag: to ist ein Objekt mit list und row";
        request.targetList = request.list;
        if (to.contains("list")) {
            if (!to["list"].is_string()) return "drag: die Zielliste ist ein Text";
            request.targetList = to["list"].get<std::string>();
        }
        if (to.contains("row") && to["row"].is_number_integer() && to["row"].get<int64_t>() >= 0)
            request.targetRow = static_cast<size_t>(to["row"].get<int64_t>());
    }
    if (arg.contains("option")) {
        if (!arg["option"].is_boolean()) return "drag: option ist true oder false";
        request.option = arg["option"].get<bool>();
    }
    if (!m_session.drag(request))
        return "Zeilen der Liste \"" + request.list + "\" lassen sich nicht ziehen";
    return {};
}

std::string ScriptDriver::setSettings(const Json& arg) {
    if (!arg.is_object()) return "settings braucht ein Objekt";
    for (auto it = arg.begin(); it != arg.end(); ++it) {
        auto value = core::loadTaggedJson(it.value().dump());
        if (!value) return it.key() + ": " + value.error().message;
        if (value->isAbsent())
            m_session.settings().remove(it.key());
        else
            m_session.settings().set(it.key(), *value);
    }
    return {};
}

std::string ScriptDriver::queueAnswers(const Json& arg) {
    if (!arg.is_array()) return "answer braucht eine Liste";
    for (const Json& a : arg) {
        if (!a.is_number_integer() || a.get<int64_t>() < 0 || a.get<int64_t>() > 2)
            return "eine Antwort ist 0, 1 oder 2";
        m_services.ui.queueAnswer(a.get<int>());
    }
    return {};
}

std::string ScriptDriver::queueChoices(const Json& arg) {
    if (!arg.is_array()) return "choose braucht eine Liste";
    for (const Json& c : arg) {
        if (c.is_null())
            m_services.ui.queueChoice(std::nullopt);
        else if (c.is_string())
            m_services.ui.queueChoice(c.get<std::string>());
        else
            return "eine Wahl ist ein Pfad oder null";
    }
    return {};
}

std::string ScriptDriver::doCommand(const Json& arg, const Json& command) {
    if (!arg.is_string()) return "do braucht den Namen eines Befehls";
    CommandSender sender;
    if (command.contains("tag") && command["tag"].is_number_integer()) {
        const int64_t tag = command["tag"].get<int64_t>();
        if (tag < INT32_MIN || tag > INT32_MAX) return "tag: die Zahl ist zu groß";
        sender.tag = static_cast<int>(tag);
    }
    if (!m_session.run(arg.get<std::string>(), sender))
        return "unbekannter Befehl \"" + arg.get<std::string>() + "\"";
    return {};
}

std::string ScriptDriver::openFile(const Json& arg) {
    if (!arg.is_string()) return "open braucht den Pfad einer Datei";
    CommandSender sender;
    sender.path = arg.get<std::string>();
    m_session.run("application:openFile:", sender);
    return {};
}

} // namespace zifora::shell
