#include "bookkeeping/clientcontroller.h"

#include "shell/events.h"
#include "shell/session.h"

#include <algorithm>
#include <array>

namespace zifora::bookkeeping {

namespace {

using core::Record;
using core::Value;
using shell::CommandSender;

constexpr const char* kDeleteClientText =
    "Das Löschen von Benutzern ist permanent und kann nicht rückgängig gemacht werden. Mit "
    "dieser Aktion löscht du auch alle zugehörigen Jahre, Abrechnungen, Posten, Vorlagen, "
    "Konten und Kategorien unwiederbringlich. Möchtest du den ausgewählten Benutzer wirklich "
    "löschen?";

} // namespace

ClientController::ClientController(shell::Session& session) : m_session(session) {
    registerCommands();
    m_session.events().subscribe<shell::SelectionChanged>(
        [this](const shell::SelectionChanged&) { selectionChanged(); });
    m_session.fields().observe([this](const std::string& name, const Value& value) {
        if (name.starts_with(kClientFormPrefix)) clientFieldChanged(name, value);
    });
}

void ClientController::clientFieldChanged(const std::string& name, const Value& value) {
    Record* client = m_session.selection().currentClient();
    if (!client || value.isAbsent()) return;
    const std::string key = name.substr(kClientFormPrefix.size());
    static constexpr std::string_view kTextKeys[] = {"company", "taxNumber", "elsterNumber",
                                                     "datevConsultantNumber", "datevClientNumber"};
    if (key == "taxationKind") {
        const int number = value.toInt();
        bool known = false;
        for (const TaxationKind& kind : kTaxationKinds)
            known = known || kind.number == number;
        if (!known) return;
        client->set(key, Value::intValue(number));
    } else if (std::find(std::begin(kTextKeys), std::end(kTextKeys), key) != std::end(kTextKeys)) {
        client->set(key, Value::string(value.text()));
    } else {
        return;
    }
    changeCurrentClient();
}

void ClientController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    c.add(shell::menuCommand("createClient:", "&Neuer Benutzer", shell::Menu::Clients, 10,
                             "Ctrl+Shift+N"),
          [this](const CommandSender&) { createClient(); });
    c.add(shell::menuCommand("deleteClient:", "Benutzer &löschen …", shell::Menu::Clients, 20),
          [this](const CommandSender&) { deleteClient(); });
    c.add(shell::menuCommand("changeCurrentClient:", "Benutzerdaten &übernehmen",
                             shell::Menu::Clients, 30),
          [this](const CommandSender&) { changeCurrentClient(); });
    c.add("setCurrentClientToPrefs", [this](const CommandSender&) { setCurrentClientToPrefs(); });
}

void ClientController::selectionChanged() {
    Record* client = m_session.selection().currentClient();
    if (client == m_mirroredClient) return;
    m_mirroredClient = client;
    if (!client) return;
    m_session.services().scheduler.after(0.1, [this] { setCurrentClientToPrefs(); });
}

void ClientController::changeCurrentClient() {
    m_session.selection().propagate(&m_session.book().clients());
    m_mirroredClient = m_session.selection().currentClient();
    m_session.services().scheduler.after(0.1, [this] { setCurrentClientToPrefs(); });
}

void ClientController::setCurrentClientToPrefs() {
    Record* client = m_session.selection().currentClient();
    if (!client) return;
    static constexpr std::array<std::pair<const char*, const char*>, 6> mirror{{
        {"company", "prefsCompany"},
        {"taxNumber", "prefsTaxID"},
        {"elsterNumber", "prefsELSTERID"},
        {"taxationKind", "prefsUseTaxesGlobal"},
        {"datevConsultantNumber", "datevConsultantNumber"},
        {"datevClientNumber", "datevClientNumber"},
    }};
    core::Settings& settings = m_session.settings();
    for (const auto& [key, setting] : mirror) {
        Value v = client->get(key);
        if (v.isAbsent())
            settings.remove(setting);
        else
            settings.set(setting, v);
    }
    m_session.flushSettings();
}

void ClientController::createClient() {
    m_session.selection().clients.add(Record::make(core::RecordClass::Client, m_session.now()));
    m_session.selection().clients.rearrange();
    m_session.selectionChanged();
    m_session.services().ui.showWindow("preferences.clients.company");
}

void ClientController::deleteClient() {
    shell::AlertRequest request{"Benutzer Löschen",
                                kDeleteClientText,
                                {"Löschen", "Abbrechen"},
                                shell::AlertStyle::Warning,
                                "preferences"};
    if (m_session.services().ui.alert(request) != 1) return;
    auto index = m_session.selection().clients.selectionIndex();
    if (!index) return;
    m_session.selection().clients.removeAt(*index);
    m_session.selectionChanged();
}

} // namespace zifora::bookkeeping
