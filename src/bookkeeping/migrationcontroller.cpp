#include "bookkeeping/migrationcontroller.h"

#include "bookkeeping/databasecontroller.h"
#include "bookkeeping/guicontroller.h"
#include "shell/session.h"

#include <filesystem>

namespace zifora::bookkeeping {

namespace {

using core::Value;
using shell::AlertRequest;
using shell::AlertStyle;
using shell::CommandSender;

constexpr const char* kMigrationDoneText =
    "Zifora 2014 hat erfolgreich deine Daten aus Zifora 2013 migriert. Was du jetzt noch tun "
    "musst, ist das Programm einzurichten und die Einstellungen zu überprüfen und anzupassen.";

constexpr const char* kOldDatabaseFoundText =
    "Es wurde eine alte Datenbank gefunden. Zifora kann jetzt versuchen, diese automatisch zu "
    "migrieren. Du kannst natürlich auch von Hand eine Datenbank (zum Beispiel aus einem Time "
    "Machine Backup) auswählen. Bitte denke daran, dass du manche Benutzer Einstellung "
    "anschließend erneut eingeben musst, da diese schlicht nicht in der Datenbank gespeichert "
    "werden.";

constexpr const char* kNoOldDatabaseText =
    "Es wurde keine alte Datenbank gefunden. Du kannst natürlich auch von Hand eine Datenbank "
    "(zum Beispiel aus einem Time Machine Backup) auswählen. Bitte denke daran, dass du manche "
    "Benutzer Einstellung anschließend erneut eingeben musst, da diese schlicht nicht in der "
    "Datenbank gespeichert werden.";

core::ClientIdentity migratedIdentity() {
    return {"Migrierte Firma", "", "", Value::integer(1)};
}

bool isFile(const std::string& path) {
    std::error_code ec;
    return std::filesystem::is_regular_file(path, ec);
}

} // namespace

MigrationController::MigrationController(shell::Session& session) : m_session(session) {
    registerCommands();
}

void MigrationController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    c.add("doTheMigration", [this](const CommandSender&) { doTheMigration(); });
    c.add(shell::menuCommand("migrateWithTag:", "&Alte Datenbank migrieren …",
                             shell::Menu::Database, 10),
          [this](const CommandSender& s) { migrateWithTag(s.tag); });
    c.add(shell::menuCommand("doTheManualMigration", "Datenbank von &Hand migrieren …",
                             shell::Menu::Database, 20),
          [this](const CommandSender&) { doTheManualMigration(); });
    c.add(shell::menuCommand("openMigrationHelp:", "Anleitung zur &Migration",
                             shell::Menu::Database, 30),
          [this](const CommandSender&) { openMigrationHelp(); });
}

void MigrationController::doTheMigration() {
    if (!m_session.settings().getBool("isSetupDone")) {
        // A new installation: the first client.
        m_session.selection().clients.add(core::Book::newInstallationClient(m_session.now()));
        m_session.selectionChanged();
    } else {
        migrateOldInstallation();
    }
    m_session.services().scheduler.after(0.3, [this] { setDelayedSelectionIndex(); });
}

void MigrationController::migrateOldInstallation() {
    core::Settings& settings = m_session.settings();
    const std::string folder = settings.getBool("useCustomLocation")
                                   ? settings.getString("customLocationPath")
                                   : m_session.places().dataFolder;
    if (settings.getBool("prefsUseMultipleAccounts")) {
        const Value entries = core::Book::oldAccountsList(folder);
        for (const Value& entry : entries.asArray()) {
            auto text = [&](const char* key, const char* fallback) {
                Value v = entry[key];
                return v.isAbsent() ? std::string(fallback) : v.text();
            };
            Value art = entry["art"];
            migrateWithPath(core::joinPath(folder, text("pfad", "") + "_Zifora_Multiple.mdb"),
                            {text("firma", "Neue Firma"), text("steuernummer", ""),
                             text("elster", ""), art.isAbsent() ? Value::intValue(1) : art});
        }
        return;
    }
    Value company = settings.get("prefsCompany");
    Value kind = settings.get("prefsUseTaxesGlobal");
    migrateWithPath(core::joinPath(folder, "Zifora_Version_1.mdb"),
                    {company.isAbsent() ? "Neue Firma" : company.text(),
                     settings.getString("prefsTaxID"), settings.getString("prefsELSTERID"),
                     kind.isAbsent() ? Value::intValue(1) : kind});
}

void MigrationController::migrateWithPath(const std::string& path,
                                          const core::ClientIdentity& identity) {
    auto client = m_session.book().clientFromOldDatabase(path, identity, m_session.now());
    if (!client) {
        showUnreadableDatabase(m_session, path, client.error().message);
        return;
    }
    m_session.selection().clients.add(*client);
    m_session.selection().clients.rearrange();
    m_session.selectionChanged();
}

void MigrationController::setDelayedSelectionIndex() {
    shell::Selection& selection = m_session.selection();
    selection.years.setSelectionIndex(selection.years.count()
                                          ? std::optional<int64_t>(selection.years.count() - 1)
                                          : std::nullopt);
    selection.propagate(&m_session.book().clients());
    m_session.settings().setBool("isMigration_4.0_done", true);
    m_session.settings().setBool("isSaveAllowed", true);
    m_session.run("saveDataToDisk");
    m_session.services().ui.alert(AlertRequest{
        "Migration erfolgreich!", kMigrationDoneText, {"OK"}, AlertStyle::Warning, {}});
}

void MigrationController::migrateWithTag(int tag) {
    auto alert = [this](const char* title, const char* text, std::vector<std::string> buttons) {
        return m_session.services().ui.alert(
            AlertRequest{title, text, std::move(buttons), AlertStyle::Warning, {}});
    };
    alert("Datenbank Migration",
          tag >= 0 && tag <= 4 ? "Bitte unbedingt erst einmal die Hilfe/Anleitung zur Datenbank "
                                 "Migration lesen!"
                               : "",
          {"OK"});
    const std::string oldFile =
        core::joinPath(m_session.places().oldDataFolder, "Zifora_Version_1.mdb");
    if (isFile(oldFile)) {
        if (alert("Datenbank gefunden!", kOldDatabaseFoundText,
                  {"Automatisch migrieren", "Von Hand auswählen …"}) == 1)
            migrateWithPath(oldFile, migratedIdentity());
        else
            doTheManualMigration();
        return;
    }
    if (alert("Fehler!", kNoOldDatabaseText, {"Alte Datenbank auswählen …", "Abbrechen"}) == 1)
        doTheManualMigration();
}

void MigrationController::doTheManualMigration() {
    shell::DialogRequest request;
    request.kind = shell::DialogKind::Open;
    request.title = "Zifora Datenbank migrieren";
    request.extensions = {"zfdb", "mdb"};
    auto chosen = m_session.services().ui.chooseFile(request);
    if (!chosen) return;
    migrateWithPath(*chosen, migratedIdentity());
}

void MigrationController::openMigrationHelp() {
    m_session.services().workspace.openFile(productPage("/migration/"));
}

} // namespace zifora::bookkeeping
