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
    c.add(shell::menuCommand("setLibraryPath:", "Speicherort der &Datenbank …", shell::Menu::Places,
                             10),
          [this](const CommandSender&) { return setLibraryPath(); });
    c.add(
        shell::menuCommand("setBackupPath:", "Speicherort der &Backups …", shell::Menu::Places, 20),
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

// A folder chosen for one place may be none of the other two.
CommandResult StoragePlacesController::choose(const Place& place) {
    core::Settings& s = m_session.settings();
    auto chosen = chooseStorageFolder();
    if (!chosen || chosen->empty()) return CommandResult::cancelled();
    for (const auto& [otherSetting, refusal] : place.mustDiffer) {
        if (*chosen != s.getString(otherSetting)) continue;
        refuse(refusal);
        s.setString(place.setting, "");
        if (place.switchedOff) s.setBool(place.switchedOff, false);
        return CommandResult::refused(refusal);
    }
    s.setString(place.setting, *chosen);
    return CommandResult::done();
}

CommandResult StoragePlacesController::setLibraryPath() {
    m_session.services().ui.alert(shell::AlertRequest{
        "Warnung!", kCustomLocationWarning, {"OK"}, shell::AlertStyle::Critical, {}});
    static constexpr Place database{
        "customLocationPath",
        {{{"prefsBackupPath", "Der Speicherort für die Datenbank darf nicht identisch mit dem "
                              "für die Backups sein."},
          {"prefsDocPath", "Der Speicherort für die Datenbank darf nicht identisch mit dem für "
                           "die Dokumente sein."}}},
        "useCustomLocation"};
    return choose(database);
}

CommandResult StoragePlacesController::setBackupPath() {
    // The second refusal has the words of the database's: kept as the program has always
    // said it.
    static constexpr Place backups{
        "prefsBackupPath",
        {{{"customLocationPath", "Der Speicherort für das Backup darf nicht identisch mit dem "
                                 "für die Datenbank sein."},
          {"prefsDocPath", "Der Speicherort für die Datenbank darf nicht identisch mit dem für "
                           "die Dokumente sein."}}},
        "prefsMakeBackup"};
    return choose(backups);
}

CommandResult StoragePlacesController::setDocumentsPath() {
    static constexpr Place documents{
        "prefsDocPath",
        {{{"prefsBackupPath", "Der Speicherort für die Dokumente darf nicht identisch mit dem "
                              "für die Backups sein."},
          {"customLocationPath", "Der Speicherort für die Dokumente darf nicht identisch mit "
                                 "dem für die Datenbank sein."}}},
        nullptr};
    return choose(documents);
}

} // namespace zifora::bookkeeping
