#include "bookkeeping/chartcontroller.h"

#include "core/atomicfile.h"
#include "core/keyedarchive.h"
#include "posting/formatstring.h"
#include "posting/textcleaning.h"
#include "shell/session.h"

#include <iostream>

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

using core::Kind;
using core::Value;

namespace {

struct LoadQuestion {
    const char* title;
    const char* button;
    const char* text;
};

LoadQuestion loadQuestion(core::BuiltInChart chart) {
    switch (chart) {
    case core::BuiltInChart::Complete:
        return {
            "Kompletten DATEV Kontenrahmen (SK04) laden", "Komplettes Set",
            "Du bist dabei etwaige vorhandene Konten mit dem kompletten DATEV Kontenrahmen "
            "(SK04 | 2013) zu ersetzen. Diese Aktion kann nicht rückgängig gemacht werden. "
            "Bestehende Zuordnung in vorhandenen Abrechnungen bleiben davon unberührt. Bitte "
            "denke daran, dass diese Aktion auswirkung auf die Berichte (Gewinnermittlung) hat "
            "und deswegen NUR erfolgen sollte, wenn alle benötigten Berichte mit dem alten "
            "Kontenrahmen bereits erstellt wurden. Möchtest du wirklich das komplette Set laden?"};
    case core::BuiltInChart::Standard:
        return {
            "Standard DATEV Kontenrahmen (nach SK04) laden", "Standard Set",
            "Du bist dabei etwaige vorhandene Konten mit dem Standard DATEV Kontenrahmen (nach "
            "SK04 | 2013) zu ersetzen. Diese Aktion kann nicht rückgängig gemacht werden. "
            "Bestehende Zuordnung in vorhandenen Abrechnungen bleiben davon unberührt. Bitte "
            "denke daran, dass diese Aktion auswirkung auf die Berichte (Gewinnermittlung) hat "
            "und deswegen nur erfolgen sollte, wenn alle benötigten Berichte mit dem alten "
            "Kontenrahmen bereits erstellt wurden. Möchtest du wirklich das Standard Set laden?"};
    case core::BuiltInChart::Minimal:
        return {"Minimal Kontenrahmen laden", "Minimal Set",
                "Du bist dabei etwaige vorhandene Konten mit dem Minimal Kontenrahmen zu ersetzen. "
                "Diese Aktion kann nicht rückgängig gemacht werden. Bestehende Zuordnung in "
                "vorhandenen Abrechnungen bleiben davon unberührt. Bitte denke daran, dass diese "
                "Aktion auswirkung auf die Berichte (Gewinnermittlung) hat und deswegen nur "
                "erfolgen sollte, wenn alle benötigten Berichte mit dem alten Kontenrahmen bereits "
                "erstellt wurden. Möchtest du wirklich das Minimal Set laden?"};
    }
    return {};
}

// The records under "accounts" of a chart's root; anything else reads as no accounts.
core::RecordList accountsOfChart(const Value& root) {
    core::RecordList accounts;
    Value list = root["accounts"];
    if (list.kind() != Kind::Array) return accounts;
    for (const Value& element : list.asArray())
        if (element.kind() == Kind::Record) accounts.push_back(element.recordRef());
    return accounts;
}

} // namespace

ChartController::ChartController(shell::Session& session,
                                 std::optional<std::filesystem::path> chartsFolder)
    : m_session(session), m_chartsFolder(std::move(chartsFolder)) {
    shell::CommandCatalog& c = session.commands();
    auto add = [&](CommandInfo command, core::BuiltInChart chart, bool ask) {
        c.add(std::move(command),
              [this, chart, ask](const CommandSender&) { loadChart(chart, ask); });
    };
    add(menuCommand("loadCompleteAccounts:", "Kontenrahmen SKR04 voll&ständig laden …",
                    Menu::MasterData, 80),
        core::BuiltInChart::Complete, true);
    add(internalStep("loadCompleteAccountsSetup:"), core::BuiltInChart::Complete, false);
    add(menuCommand("loadDefaultAccounts:", "Kontenrahmen SKR04 S&tandard laden …",
                    Menu::MasterData, 90),
        core::BuiltInChart::Standard, true);
    add(internalStep("loadDefaultAccountsSetup:"), core::BuiltInChart::Standard, false);
    add(menuCommand("loadMinimalAccounts:", "Kontenrahmen &minimal laden …", Menu::MasterData, 100),
        core::BuiltInChart::Minimal, true);
    add(internalStep("loadMinimalAccountsSetup:"), core::BuiltInChart::Minimal, false);
    c.add(shell::menuCommand("exportAccountsCSV:", "&Konten als CSV exportieren …",
                             shell::Menu::File, 40),
          [this](const CommandSender&) { exportAccountsCSV(); });
}

bool ChartController::confirmLoad(core::BuiltInChart chart) {
    LoadQuestion q = loadQuestion(chart);
    AlertRequest request{q.title, q.text, {q.button, "Abbrechen"}, AlertStyle::Warning, {}};
    return m_session.services().ui.alert(request) == 1;
}

void ChartController::loadChart(core::BuiltInChart chart, bool ask) {
    if (ask && !confirmLoad(chart)) return;
    if (!m_session.selection().currentClient()) return;
    if (!m_chartsFolder) {
        std::cerr << "zifora: the built-in charts of accounts were not found\n";
        replaceAccounts({});
        return;
    }
    std::filesystem::path path = *m_chartsFolder / core::chartFileName(chart);
    auto root = core::readKeyedArchiveFile(path);
    if (!root && root.error().missing) {
        // A chart that isn't there reads as no accounts, without a message.
        std::cerr << "zifora: " << root.error().error.message << "\n";
        replaceAccounts({});
        return;
    }
    if (!root) {
        m_session.services().ui.alert(
            AlertRequest{"Fehler!",
                         "Der Kontenrahmen „" + path.string() + "“ konnte nicht gelesen werden (" +
                             root.error().error.message + "). Deine Konten bleiben unverändert.",
                         {"OK"},
                         AlertStyle::Critical,
                         {}});
        return;
    }
    replaceAccounts(accountsOfChart(*root));
}

void ChartController::replaceAccounts(core::RecordList accounts) {
    core::Record* client = m_session.selection().currentClient();
    int index = client ? client->listIndex("accounts") : -1;
    if (index < 0) return;
    client->setList(static_cast<size_t>(index),
                    std::make_shared<core::RecordList>(std::move(accounts)));
    m_session.selectionChanged();
}

std::string ChartController::accountsCSV(const std::vector<core::Record*>& accounts) {
    std::string csv;
    for (const core::Record* account : accounts) {
        Value number = account->get("number");
        Value title = account->get("title");
        csv += posting::formatString("\"%@\";\"%@\"\n", {number, title});
    }
    return csv;
}

void ChartController::exportAccountsCSV() {
    std::string csv = accountsCSV(m_session.selection().accounts.arranged());
    DialogRequest request;
    request.kind = DialogKind::Save;
    request.title = "CSV Datei Exportieren";
    request.extensions = {"csv"};
    Value company = m_session.settings().get("prefsCompany");
    request.suggestedName = posting::formatString("Kontenrahmen %@", {company});
    request.canCreateFolders = true;
    std::optional<std::string> path = m_session.services().ui.chooseFile(request);
    if (!path) return;
    auto written = core::writeFileAtomically(*path, posting::zapGremlinsInString(csv));
    if (!written) {
        // As with the program's other exports, a failed write isn't reported to the user.
        std::cerr << "zifora: " << written.error().message << "\n";
        return;
    }
    m_session.services().workspace.fileWritten(*path);
}

} // namespace zifora::bookkeeping
