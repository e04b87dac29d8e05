#include "bookkeeping/databasecontroller.h"

#include "bookkeeping/selectionindexes.h"
#include "shell/events.h"
#include "shell/session.h"

#include <filesystem>

namespace zifora::bookkeeping {

namespace {

using shell::AlertRequest;
using shell::AlertStyle;
using shell::CommandSender;

constexpr const char* kFolderMissingText =
    "Der Speicherort für die Zifora Datenbank ist nicht vorhanden oder erreichbar. Solltest du "
    "einen eigenen angegeben haben, so überprüfe bitte, dass dieser gemounted ist und du die "
    "nötigen Zugriffrechte besitzt.";

bool isFolder(const std::string& path) {
    std::error_code ec;
    return !path.empty() && std::filesystem::is_directory(path, ec);
}

} // namespace

void showUnreadableDatabase(shell::Session& session, const std::string& path,
                            const std::string& cause) {
    session.services().ui.alert(AlertRequest{
        "Fehler!",
        "Die Datenbank „" + path +
            "“ konnte nicht gelesen werden: Die Datei ist beschädigt oder keine "
            "Zifora-Datenbank. Damit sie unverändert bleibt, speichert Zifora bis zum nächsten "
            "Start nichts. Bitte prüfe die Datei oder spiele ein Backup ein.\n\n"
            "Technische Angabe: " + cause,
        {"OK"},
        AlertStyle::Critical,
        {}});
}

DatabaseController::DatabaseController(shell::Session& session) : m_session(session) {
    registerCommands();
}

void DatabaseController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    c.add(shell::menuCommand("save:", "&Sichern", shell::Menu::File, 10, "Ctrl+S"),
          [this](const CommandSender&) { saveDataToDisk(); });
    c.add("autoSave:", [this](const CommandSender&) { saveDataToDisk(); });
    c.add("saveDataToDisk", [this](const CommandSender&) { saveDataToDisk(); });
    c.add("loadDataFromDisk", [this](const CommandSender&) { loadDataFromDisk(); });
    c.add("setSelection", [this](const CommandSender&) { setSelection(); });
    c.add("pathForDataFile", [this](const CommandSender&) { pathForDataFile(); });
}

std::string DatabaseController::pathForDataFile() {
    core::Settings& settings = m_session.settings();
    const core::DataFileLocation where = m_session.book().locateDataFile(settings);
    if (!where.folderExists) {
        settings.setBool("isSaveAllowed", false);
        m_session.services().ui.alert(
            AlertRequest{"Warnung!", kFolderMissingText, {"OK"}, AlertStyle::Critical, {}});
    }
    return where.path;
}

void DatabaseController::saveDataToDisk() {
    core::Settings& settings = m_session.settings();
    settings.setInteger("backupAlertInt", settings.getInteger("backupAlertInt") + 1);
    if (!settings.getBool("isSaveAllowed") || m_session.book().unreadable()) return;
    storeSelectionIndexes(m_session, /*withClient=*/true);
    const std::string path = pathForDataFile();
    // A folder that has gone missing gets no file; the guard above holds from now on.
    if (!isFolder(std::filesystem::path(path).parent_path().string())) return;
    auto saved = m_session.book().save(path);
    if (saved) {
        m_reportedFailure.clear();
        m_session.services().workspace.fileWritten(path);
        m_session.events().publish(shell::DatabaseSaved{path});
    } else {
        reportSaveFailure(path, saved.error().message);
    }
    (void)settings.flush();
}

// The timer saves every 30 seconds; a failure that stays the same is told once.
void DatabaseController::reportSaveFailure(const std::string& path, const std::string& cause) {
    m_session.events().publish(shell::DatabaseSaveFailed{path, cause});
    if (cause == m_reportedFailure) return;
    m_reportedFailure = cause;
    m_session.services().ui.alert(AlertRequest{
        "Fehler!",
        "Zifora konnte deine Daten nicht in „" + path +
            "“ sichern. Die Datei auf der Festplatte ist unverändert; deine Eingaben sind "
            "noch im Programm. Zifora versucht es beim nächsten Sichern wieder. Bitte sorge "
            "für Platz und Schreibrechte an diesem Ort.\n\nTechnische Angabe: " + cause,
        {"OK"},
        AlertStyle::Critical,
        {}});
}

void DatabaseController::loadDataFromDisk() {
    core::Settings& settings = m_session.settings();
    if (!settings.getBool("isMigration_4.0_done")) {
        m_session.run("doTheMigration");
        return;
    }
    const std::string path = pathForDataFile();
    auto loaded = m_session.book().load(path);
    m_session.setClients(m_session.book().clients());
    if (!loaded) showUnreadableDatabase(m_session, path, loaded.error().message);
    const int64_t alerts = settings.getInteger("backupAlertInt");
    if (alerts == 5 || alerts == 12)
        m_session.services().scheduler.after(
            0.9, [this] { m_session.events().publish(shell::BackupReminderDue{}); });
    m_session.services().scheduler.after(0.1, [this] { setSelection(); });
}

void DatabaseController::setSelection() {
    shell::Selection& selection = m_session.selection();
    selection.clients.setSelectionIndex(
        m_session.settings().getInteger("clientControllerSelectionIndex"));
    selection.propagate(&m_session.book().clients());
    restoreSelectionIndexes(m_session);
    m_session.selectionChanged();
}

} // namespace zifora::bookkeeping
