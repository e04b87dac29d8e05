#include "bookkeeping/databasecontroller.h"

#include "bookkeeping/selectionindexes.h"
#include "shell/events.h"
#include "shell/session.h"

#include "core/atomicfile.h"

#include <filesystem>
#include <limits>

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
            "Technische Angabe: " +
            cause,
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
    // Every attempt counts; the count stops at its largest value rather than wrap.
    const int64_t attempts = settings.getInteger("backupAlertInt");
    settings.setInteger("backupAlertInt",
                        attempts < std::numeric_limits<int64_t>::max() ? attempts + 1 : attempts);
    // Before the start has loaded the book there is nothing of the user's to write.
    if (!settings.getBool("isSaveAllowed") || !m_session.book().loaded() ||
        m_session.book().unreadable())
        return;
    storeSelectionIndexes(m_session, /*withClient=*/true);
    const std::string path = pathForDataFile();
    // A folder that has gone missing gets no file; the guard above holds from now on.
    if (!isFolder(std::filesystem::path(path).parent_path().string())) return;
    auto saved = m_session.book().save(path);
    if (saved || saved.error().written) {
        m_reportedFailure.clear();
        if (saved) m_reportedUnsynced.clear();
        m_session.services().workspace.fileWritten(path);
        m_session.events().publish(shell::DatabaseSaved{path});
        if (!saved) reportUnsyncedSave(path, saved.error().message);
    } else {
        reportSaveFailure(path, saved.error().message);
    }
    m_session.flushSettings();
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
            "für Platz und Schreibrechte an diesem Ort.\n\nTechnische Angabe: " +
            cause,
        {"OK"},
        AlertStyle::Critical,
        {}});
}

// The new file is in place, but the folder could not be synced: it may not survive a crash
// of the machine. Told once per cause, like a failure.
void DatabaseController::reportUnsyncedSave(const std::string& path, const std::string& cause) {
    if (cause == m_reportedUnsynced) return;
    m_reportedUnsynced = cause;
    m_session.services().ui.alert(AlertRequest{
        "Fehler!",
        "Zifora hat deine Daten in „" + path +
            "“ gesichert, aber der Ordner ließ sich nicht auf den Datenträger schreiben. Stürzt "
            "der Rechner jetzt ab, kann die letzte Sicherung fehlen. Zifora versucht es beim "
            "nächsten Sichern wieder.\n\nTechnische Angabe: " +
            cause,
        {"OK"},
        AlertStyle::Critical,
        {}});
}

// A present database is read whatever the settings say; the migration makes the book only
// where there is none. Settings that don't know of the database were lost, and the user is
// told so.
void DatabaseController::loadDataFromDisk() {
    core::Settings& settings = m_session.settings();
    core::Book& book = m_session.book();
    const bool migrated = settings.getBool("isMigration_4.0_done");
    if (!migrated && !book.databasePresent(settings)) {
        tellLostSettings();
        removeStaleTemporaryFiles();
        book.beginNew();
        m_session.setClients(book.clients());
        m_session.run("doTheMigration");
        return;
    }
    const std::string path = pathForDataFile();
    removeStaleTemporaryFiles();
    // A folder that is not there has no file to read; the book begins anew, and its first
    // save will not replace a database that appears there meanwhile.
    core::Result<void> loaded;
    if (isFolder(std::filesystem::path(path).parent_path().string()))
        loaded = book.load(path);
    else
        book.beginNew();
    m_session.setClients(book.clients());
    if (!loaded) showUnreadableDatabase(m_session, path, loaded.error().message);
    if (!tellLostSettings() && loaded && !migrated) {
        tellLostSettings("Die Einstellungen konnten nicht gelesen werden: „" +
                         settings.file().string() +
                         "“ fehlt, ist leer oder unvollständig, deine Datenbank „" + path +
                         "“ aber ist da. Zifora hat sie gelesen und macht mit ihr weiter. "
                         "Bitte prüfe deine Einstellungen (Steuersätze, Speicherorte, Backups).");
    }
    if (loaded) settings.setBool("isMigration_4.0_done", true);
    const int64_t alerts = settings.getInteger("backupAlertInt");
    if (alerts == 5 || alerts == 12)
        m_session.services().scheduler.after(
            0.9, [this] { m_session.events().publish(shell::BackupReminderDue{}); });
    m_session.services().scheduler.after(0.1, [this] { setSelection(); });
}

bool DatabaseController::tellLostSettings(std::optional<std::string> notice) {
    if (!notice) notice = m_session.settings().takeLossNotice();
    if (!notice) return false;
    m_session.services().ui.alert(
        AlertRequest{"Fehler!", *notice, {"OK"}, AlertStyle::Critical, {}});
    return true;
}

void DatabaseController::removeStaleTemporaryFiles() {
    const core::DataFileLocation where = m_session.book().dataFile(m_session.settings());
    if (where.folderExists) core::removeStaleTemporaryFiles(where.path);
    core::removeStaleTemporaryFiles(m_session.settings().file());
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
