#include "bookkeeping/storageplacescontroller.h"

#include "shell/session.h"

namespace zifora::bookkeeping {

namespace {

using shell::CommandResult;
using shell::CommandSender;

constexpr const char* kCustomLocationWarning =
    "Die Benutzung eines eigenen Speicherortes (zum Beispiel die Dropbox oder ein NAS, wie die "
    "Time Capsule) geschieht auf eigene Gefahr. Du bist für deine Daten verantwortlich. Sorge "
    "bitte dafür, dass dieser Speicherort immer erreichbar (gemounted) ist und du die nötigen "
    "Zugriffsrechte besitzt.\n\nAußerdem ist es keine gute Idee, mit mehreren Benutzern "
    "gleichzeitig auf ein und die selbe Datenbank zuzugreifen. Das kann auf Dauer nur schief "
    "gehen. Bitte aktiviere zu deiner eigenen Sicherheit auch die automatisierten Backups und "
    "verwende die Time Machine.\n\nErwarte kein Mitleid von mir, wenn du dir deine Daten "
    "zerschießt und nicht einmal Sicherungen angelegt hast. Sorry - aber ich muss das so "
    "formulieren. Es gibt leider genügend Unverbesserliche …";

} // namespace

StoragePlacesController::StoragePlacesController(shell::Session& session) : m_session(session) {
    registerCommands();
}

void StoragePlacesController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    c.add(shell::menuCommand("setLibraryPath:", "Speicherort der &Datenbank …",
                             shell::Menu::Places, 10),
          [this](const CommandSender&) { return setLibraryPath(); });
    c.add(shell::menuCommand("setBackupPath:", "Speicherort der &Backups …", shell::Menu::Places,
                             20),
          [this](const CommandSender&) { return setBackupPath(); });
    c.add(shell::menuCommand("setDocumentsPath:", "Speicherort der D&okumente …",
                             shell::Menu::Places, 30),
          [this](const CommandSender&) { return setDocumentsPath(); });
}

std::optional<std::string> StoragePlacesController::chooseStorageFolder() {
    shell::DialogRequest request;
    request.kind = shell::DialogKind::Folder;
    request.title = "Speicherort wählen";
    request.canCreateFolders = true;
    return m_session.services().ui.chooseFile(request);
}

void StoragePlacesController::refuse(const char* text) {
    m_session.services().ui.alert(
        shell::AlertRequest{"Fehler!", text, {"OK"}, shell::AlertStyle::Warning, {}});
}

CommandResult StoragePlacesController::setLibraryPath() {
    core::Settings& s = m_session.settings();
    m_session.services().ui.alert(shell::AlertRequest{
        "Warnung!", kCustomLocationWarning, {"OK"}, shell::AlertStyle::Critical, {}});
    auto chosen = chooseStorageFolder();
    if (!chosen || chosen->empty()) return CommandResult::cancelled();
    const char* refusal = nullptr;
    if (*chosen == s.getString("prefsBackupPath"))
        refusal = "Der Speicherort für die Datenbank darf nicht identisch mit dem für die Backups sein.";
    else if (*chosen == s.getString("prefsDocPath"))
        refusal = "Der Speicherort für die Datenbank darf nicht identisch mit dem für die Dokumente sein.";
    if (refusal) {
        refuse(refusal);
        s.setString("customLocationPath", "");
        s.setBool("useCustomLocation", false);
        return CommandResult::refused(refusal);
    }
    s.setString("customLocationPath", *chosen);
    return CommandResult::done();
}

CommandResult StoragePlacesController::setBackupPath() {
    core::Settings& s = m_session.settings();
    auto chosen = chooseStorageFolder();
    if (!chosen || chosen->empty()) return CommandResult::cancelled();
    const char* refusal = nullptr;
    if (*chosen == s.getString("customLocationPath"))
        refusal = "Der Speicherort für das Backup darf nicht identisch mit dem für die Datenbank sein.";
    else if (*chosen == s.getString("prefsDocPath"))
        // The same words as for the database: kept as the program has always said it.
        refusal = "Der Speicherort für die Datenbank darf nicht identisch mit dem für die Dokumente sein.";
    if (refusal) {
        refuse(refusal);
        s.setString("prefsBackupPath", "");
        s.setBool("prefsMakeBackup", false);
        return CommandResult::refused(refusal);
    }
    s.setString("prefsBackupPath", *chosen);
    return CommandResult::done();
}

CommandResult StoragePlacesController::setDocumentsPath() {
    core::Settings& s = m_session.settings();
    auto chosen = chooseStorageFolder();
    if (!chosen || chosen->empty()) return CommandResult::cancelled();
    const char* refusal = nullptr;
    if (*chosen == s.getString("prefsBackupPath"))
        refusal = "Der Speicherort für die Dokumente darf nicht identisch mit dem für die Backups sein.";
    else if (*chosen == s.getString("customLocationPath"))
        refusal = "Der Speicherort für die Dokumente darf nicht identisch mit dem für die Datenbank sein.";
    if (refusal) {
        refuse(refusal);
        s.setString("prefsDocPath", "");
        return CommandResult::refused(refusal);
    }
    s.setString("prefsDocPath", *chosen);
    return CommandResult::done();
}

} // namespace zifora::bookkeeping
