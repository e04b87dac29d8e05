#include "shell/commandcatalog.h"

#include <algorithm>

namespace zifora::shell {

std::string_view menuTitle(Menu menu) {
    switch (menu) {
    case Menu::None:
        return "";
    case Menu::File:
        return "&Ablage";
    case Menu::Books:
        return "&Bücher";
    case Menu::Items:
        return "&Posten";
    case Menu::MasterData:
        return "&Stammdaten";
    case Menu::Clients:
        return "Ben&utzer";
    case Menu::Places:
        return "Sp&eicherorte";
    case Menu::Database:
        return "&Datenbank";
    case Menu::Help:
        return "&Hilfe";
    }
    return "";
}

CommandInfo menuCommand(std::string name, std::string label, Menu menu, int position,
                        std::string shortcut) {
    CommandInfo info;
    info.name = std::move(name);
    info.label = std::move(label);
    info.menu = menu;
    info.position = position;
    info.shortcut = std::move(shortcut);
    info.internal = false;
    return info;
}

CommandInfo internalStep(std::string name) {
    CommandInfo info;
    info.name = std::move(name);
    return info;
}

CommandInfo userCommand(std::string name, std::string label) {
    CommandInfo info;
    info.name = std::move(name);
    info.label = std::move(label);
    info.internal = false;
    return info;
}

void CommandCatalog::add(CommandInfo info, Handler handler) {
    if (m_entries.contains(info.name)) {
        m_duplicates.push_back(info.name);
        return;
    }
    std::string name = info.name;
    m_entries.emplace(std::move(name), Entry{std::move(info), std::move(handler)});
}

const CommandInfo* CommandCatalog::info(std::string_view name) const {
    auto it = m_entries.find(name);
    return it == m_entries.end() ? nullptr : &it->second.info;
}

std::optional<CommandResult> CommandCatalog::run(std::string_view name,
                                                 const CommandSender& sender) const {
    auto it = m_entries.find(name);
    if (it == m_entries.end()) return std::nullopt;
    // The handler may register commands of its own; keep what is needed before calling it.
    const std::string command = it->first;
    const Handler handler = it->second.handler;
    CommandResult result = handler(sender);
    for (const Observer& observer : m_observers)
        observer(command, result);
    return result;
}

std::vector<const CommandInfo*> CommandCatalog::all() const {
    std::vector<const CommandInfo*> out;
    for (const auto& [name, entry] : m_entries)
        out.push_back(&entry.info);
    return out;
}

std::vector<const CommandInfo*> CommandCatalog::menuEntries(Menu menu) const {
    std::vector<const CommandInfo*> out;
    for (const auto& [name, entry] : m_entries)
        if (entry.info.menu == menu && !entry.info.internal) out.push_back(&entry.info);
    std::stable_sort(out.begin(), out.end(), [](const CommandInfo* a, const CommandInfo* b) {
        return a->position < b->position;
    });
    return out;
}

std::vector<std::string> CommandCatalog::names() const {
    std::vector<std::string> out;
    for (const auto& [name, entry] : m_entries)
        out.push_back(name);
    return out;
}

} // namespace zifora::shell
