#include "shell/app.h"

#include "core/atomicfile.h"
#include "core/binaryplist.h"
#include "core/keyedarchive.h"

#include <array>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <unistd.h>

namespace zifora::shell {

namespace fs = std::filesystem;
using core::Record;
using core::RecordClass;
using core::Value;

namespace {

constexpr const char* kDatabaseName = "Zifora.zfdb4";
constexpr const char* kProductSite = "https://www.zifora.de";

constexpr const char* kDisclaimerText =
    "Ich habe Zifora mit aller Sorgfalt entwickelt und geprüft. Trotzdem bleibst du allein "
    "verantwortlich für deine Abrechnungen, Umsatzsteuer-Voranmeldungen, deine "
    "Gewinnermittlung und deine Steuererklärungen. Du darfst Zifora nur benutzen, wenn du "
    "damit einverstanden bist.";

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

constexpr const char* kFolderMissingText =
    "Der Speicherort für die Zifora Datenbank ist nicht vorhanden oder erreichbar. Solltest du "
    "einen eigenen angegeben haben, so überprüfe bitte, dass dieser gemounted ist und du die "
    "nötigen Zugriffrechte besitzt.";

constexpr const char* kMigrationDoneText =
    "Zifora 2014 hat erfolgreich deine Daten aus Zifora 2013 migriert. Was du jetzt noch tun "
    "musst, ist das Programm einzurichten und die Einstellungen zu überprüfen und anzupassen.";

constexpr const char* kDeleteClientText =
    "Das Löschen von Benutzern ist permanent und kann nicht rückgängig gemacht werden. Mit "
    "dieser Aktion löscht du auch alle zugehörigen Jahre, Abrechnungen, Posten, Vorlagen, "
    "Konten und Kategorien unwiederbringlich. Möchtest du den ausgewählten Benutzer wirklich "
    "löschen?";

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

// Where the lists of an old single-client database go on the new client.
constexpr std::array<std::pair<const char*, const char*>, 7> kOldRootLists{{
    {"years", "theYears"},
    {"groups", "groups"},
    {"accounts", "accounts"},
    {"items", "items"},
    {"cashbooks", "cashbooks"},
    {"allowances", "allowances"},
    {"inventorys", "inventorys"},
}};

bool isFolder(const std::string& path) {
    std::error_code ec;
    return !path.empty() && fs::is_directory(path, ec);
}

bool isFile(const std::string& path) {
    std::error_code ec;
    return fs::is_regular_file(path, ec);
}

Value identity(std::string company, std::string taxNumber, std::string elsterNumber,
               Value taxationKind) {
    return Value::dict({{"company", Value::string(company)},
                        {"taxNumber", Value::string(taxNumber)},
                        {"elsterNumber", Value::string(elsterNumber)},
                        {"taxationKind", std::move(taxationKind)}});
}

Value migratedIdentity() { return identity("Migrierte Firma", "", "", Value::integer(1)); }

std::string ownExecutable() {
    std::error_code ec;
    fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    return ec ? std::string("zifora") : exe.string();
}

} // namespace

App::App(Services services, Places places, core::Settings& settings)
    : m_services(services), m_places(std::move(places)), m_settings(settings),
      m_clients(std::make_shared<core::RecordList>()) {
    m_selection.items.setSortKey("date");
    registerCommands();
    m_controllers = std::make_unique<Controllers>(*this);
}

App::~App() = default;

int App::alert(const std::string& title, const std::string& text, std::vector<std::string> buttons,
               AlertStyle style) {
    return m_services.ui.alert(AlertRequest{title, text, std::move(buttons), style, {}});
}

// ---------------------------------------------------------------------------------------
// Start and stop

void App::init() {
    core::Settings& s = m_settings;
    if (!s.getBool("updateTo4.0")) {
        for (auto key : {"prefsAlwaysShowWelcomeSheet", "prefsAlwaysShowItemHelpDawer",
                         "prefsAlwaysShowVoranmeldungHelpDawer", "prefsAlwaysShowYearHelpDawer",
                         "prefsAlwaysShowTabHelpDawer"})
            s.setBool(key, false);
        s.setBool("prefsAlwaysShowReportsHelp", true);
        s.setInteger("selectedReportsIndex", 0);
        s.setInteger("prefsSelectedExportJournal", 5);
        s.setInteger("prefsSelectedExportTab", 5);
        s.setBool("prefsExportPrintWithList", true);
        s.setBool("prefsPrintCustomReportsWithItems", true);
        s.setString("prefsDefaultDATEVAccount", "1000");
        s.setBool("updateTo4.0", true);
    }
    m_currentAccountID.clear();
    m_clients = std::make_shared<core::RecordList>();
    m_selection.propagate(m_clients.get());
    s.setBool("isSaveAllowed", false);
    s.setBool("allowWindow", false);
    s.setBool("isZifProAction", false);
    s.setString("importFilePath", "");
}

void App::guiControllerFirstDefaults() {
    core::Settings& s = m_settings;
    if (s.getBool("firstStartEver")) return;
    s.setInteger("prefsCurrency", 0);
    s.setInteger("prefsUseTaxesGlobal", 1);
    s.setFloat("prefs1Rate", 19);
    s.setFloat("prefs2Rate", 7);
    s.setString("prefs1RateTitle", "Regelsteuersatz");
    s.setString("prefs2RateTitle", "Ermäßigter Steuersatz");
    s.setBool("firstStartEver", true);
}

void App::awakeFromNib() {
    core::Settings& s = m_settings;
    guiControllerFirstDefaults();
    s.setBool("allowWindow", false);
    m_services.ui.hideWindow("main");

    if (!s.getBool("veryFirstAlertDone")) {
        int answer = alert("Leider notwendiger Hinweis", kDisclaimerText,
                           {"Ja, ich mache meine Fehler selber",
                            "Nein, bei mir sind immer die anderen Schuld"});
        if (answer != 1) {
            terminate();
            return;
        }
        // The companion chart editor of the other platform has no counterpart here: the
        // accounts window edits charts itself, so no copy of its database is made.
        s.setBool("veryFirstAlertDone", true);
    } else if (!s.getBool("isWelcomeerShown")) {
        m_services.ui.showWindow("newsletter");
    }

    m_services.ui.showWindow("main");
    m_autoSaveTimer = m_services.scheduler.every(30, [this] { saveDataToDisk(); });
    loadDataFromDisk();
    s.setBool("isSaveAllowed", true);
    restoreSelectionIndexes();
    if (s.getBool("isZifProAction"))
        m_services.scheduler.after(1.3, [this] {
            if (sendZifProNotification) sendZifProNotification();
        });
    if (s.getBool("prefsMakeBackup"))
        m_services.scheduler.after(3, [this] {
            if (performBackup) performBackup();
        });
    if (!s.getBool("5StartEver")) firstStart();
    m_services.scheduler.after(0.4, [this] { showWelcome(); });
}

void App::showWelcome() {
    if (!m_settings.getBool("prefsAlwaysShowWelcomeSheet") && !m_settings.getBool("isZifProAction"))
        m_services.ui.showWindow("welcome");
    m_settings.setBool("allowWindow", true);
}

void App::firstStart() {
    core::Settings& s = m_settings;
    for (auto key : {"prefsAlwaysShowItemHelpDawer", "prefsAlwaysShowVoranmeldungHelpDawer",
                     "prefsAlwaysShowJournalHelpDawer", "prefsAlwaysShowTabHelpDawer",
                     "prefsAlwaysShowPrefsHelpDawer", "prefsAlwaysShowYearHelpDawer",
                     "prefsExportPrintWithList", "prefsPrintUnshortened"})
        s.setBool(key, true);
    s.setInteger("prefsSelectedExportTab", 2);
    s.setInteger("prefsSelectedExportJournal", 2);
    s.setInteger("prefsTabSortOrder", 0);
    std::error_code ec;
    fs::create_directories(m_places.documentsFolder, ec);
    fs::create_directories(m_places.backupFolder, ec);
    s.setString("prefsBackupPath", m_places.backupFolder);
    s.setString("prefsDocPath", m_places.documentsFolder);
    s.setBool("5StartEver", true);
}

void App::storeSelectionIndexes(bool withClient) {
    if (withClient)
        m_settings.setInteger("clientControllerSelectionIndex",
                              m_selection.clients.storedSelectionIndex());
    m_settings.setInteger("yearControllerSelectionIndex", m_selection.years.storedSelectionIndex());
    m_settings.setInteger("listControllerSelectionIndex", m_selection.lists.storedSelectionIndex());
    m_settings.setInteger("cashBookControllerSelectionIndex",
                          m_selection.cashBooks.storedSelectionIndex());
    m_settings.setInteger("cashBookItemsControllerSelectionIndex",
                          m_selection.cashBookItems.storedSelectionIndex());
}

void App::restoreSelectionIndexes() {
    auto restore = [this](ListController& controller, const char* key) {
        controller.setSelectionIndex(m_settings.getInteger(key));
        m_selection.propagate(m_clients.get());
    };
    restore(m_selection.years, "yearControllerSelectionIndex");
    restore(m_selection.lists, "listControllerSelectionIndex");
    restore(m_selection.cashBooks, "cashBookControllerSelectionIndex");
    restore(m_selection.cashBookItems, "cashBookItemsControllerSelectionIndex");
}

void App::setSelection() {
    m_selection.clients.setSelectionIndex(m_settings.getInteger("clientControllerSelectionIndex"));
    m_selection.propagate(m_clients.get());
    restoreSelectionIndexes();
    selectionChanged();
}

void App::applicationWillTerminate() {
    m_settings.setBool("allowWindow", false);
    storeSelectionIndexes(/*withClient=*/false);
    saveDataToDisk();
    (void)m_settings.flush();
}

void App::terminate() {
    if (m_terminated) return;
    m_terminated = true;
    applicationWillTerminate();
    if (m_autoSaveTimer) m_services.scheduler.cancel(m_autoSaveTimer);
    m_services.workspace.terminate();
}

void App::applicationDidBecomeActive() {
    if (m_settings.getBool("allowWindow")) m_services.ui.showWindow("main");
}

bool App::applicationShouldHandleReopen() {
    m_services.ui.showWindow("main");
    return false;
}

void App::restart() {
    // Several-client installations of earlier versions kept an account id; this version
    // never sets one, so the guard against restarting with another account stays quiet.
    if (m_settings.getBool("prefsUseMultipleAccounts") && m_currentAccountID.size() > 1) {
        alert("Warnung!",
              "Es ist ein anderer Benutzer ausgewählt als der, der beim Öffnen von Zifora gewählt "
              "wurde. Dies kann zu Problemen mit der Sicherung und der Datenbank führen. Aus "
              "diesem Grund wurde das Beenden abgebrochen. Bitte zur eigenen Sicherheit erst "
              "wieder den ursprünglichen Benutzer (ID: " + m_currentAccountID + ") auswählen.");
        return;
    }
    m_settings.setBool("allowWindow", false);
    storeSelectionIndexes(/*withClient=*/false);
    saveDataToDisk();
    (void)m_settings.flush();
    // The pause lets this instance end before the next one starts.
    m_services.workspace.launch("/bin/sh", {"-c", "sleep 1 ; exec '" + ownExecutable() + "'"});
    m_terminated = true;
    if (m_autoSaveTimer) m_services.scheduler.cancel(m_autoSaveTimer);
    m_services.workspace.terminate();
}

App::UpdateState App::applicationDidUpdate(float mainSum) const {
    UpdateState state;
    if (!m_settings.getBool("firstStepsDone")) {
        switch (m_settings.getInteger("jaImage")) {
        case 2: state.firstStepsImage = "ja2"; break;
        case 3: state.firstStepsImage = "ja3"; break;
        case 4: state.firstStepsImage = "ja4"; break;
        case 5: break;
        default: state.firstStepsImage = "ja1"; break;
        }
    }
    state.sumIsExpense = static_cast<int>(mainSum) < 0;
    return state;
}

// ---------------------------------------------------------------------------------------
// Database file

std::string App::pathForDataFile() {
    std::string folder;
    if (m_settings.getBool("useCustomLocation")) {
        folder = m_settings.getString("customLocationPath");
    } else {
        folder = m_places.dataFolder;
        std::error_code ec;
        fs::create_directories(folder, ec);
    }
    m_settings.setString("defaultDataFolder", folder);
    std::string path = joinPath(folder, kDatabaseName);
    if (!isFolder(folder)) {
        m_settings.setBool("isSaveAllowed", false);
        alert("Warnung!", kFolderMissingText, {"OK"}, AlertStyle::Critical);
    }
    m_settings.setString("defaultDataPath", path);
    return path;
}

Value App::databaseRoot() const {
    core::ArrayElements clients;
    clients.reserve(m_clients->size());
    for (const auto& c : *m_clients) clients.push_back(Value::record(c));
    return Value::dict({{"clients", Value::array(std::move(clients))}});
}

void App::saveDataToDisk() {
    m_settings.setInteger("backupAlertInt", m_settings.getInteger("backupAlertInt") + 1);
    if (!m_settings.getBool("isSaveAllowed") || m_databaseUnreadable) return;
    storeSelectionIndexes(/*withClient=*/true);
    std::string path = pathForDataFile();
    // A folder that has gone missing gets no file; the guard above holds from now on.
    if (!isFolder(fs::path(path).parent_path().string())) return;
    auto written = core::writeFileAtomically(path, core::encodeKeyedArchive(databaseRoot()));
    if (!written) std::cerr << "zifora: " << written.error().message << "\n";
    else m_services.workspace.fileWritten(path);
    (void)m_settings.flush();
}

void App::refuseDatabase(const std::string& path, const std::string& cause) {
    m_databaseUnreadable = true;
    alert("Fehler!",
          "Die Datenbank „" + path +
              "“ konnte nicht gelesen werden: Die Datei ist beschädigt oder keine "
              "Zifora-Datenbank. Damit sie unverändert bleibt, speichert Zifora bis zum nächsten "
              "Start nichts. Bitte prüfe die Datei oder spiele ein Backup ein.\n\n"
              "Technische Angabe: " + cause,
          {"OK"}, AlertStyle::Critical);
}

void App::setClients(const core::RecordList& clients) {
    m_clients = std::make_shared<core::RecordList>(clients);
    m_selection.propagate(m_clients.get());
}

void App::loadDataFromDisk() {
    if (!m_settings.getBool("isMigration_4.0_done")) {
        doTheMigration();
        return;
    }
    std::string path = pathForDataFile();
    core::RecordList clients;
    auto root = core::readKeyedArchiveFile(path);
    if (!root && !root.error().missing) {
        refuseDatabase(path, root.error().error.message);
    } else if (root) {
        Value list = (*root)["clients"];
        bool valid = root->kind() == core::Kind::Dict &&
                     (list.isAbsent() || list.kind() == core::Kind::Array);
        for (const Value& v : list.asArray())
            if (v.kind() == core::Kind::Record && v.asRecord()->recordClass() == RecordClass::Client)
                clients.push_back(v.recordRef());
            else
                valid = false;
        if (!valid) {
            clients.clear();
            refuseDatabase(path, "die Datei enthält keine Liste von Benutzern");
        }
    }
    setClients(clients);
    int64_t alerts = m_settings.getInteger("backupAlertInt");
    if (alerts == 5 || alerts == 12)
        m_services.scheduler.after(0.9, [this] {
            if (backupAlert) backupAlert();
        });
    m_services.scheduler.after(0.1, [this] { setSelection(); });
}

// ---------------------------------------------------------------------------------------
// Clients

void App::selectionChanged() {
    m_selection.propagate(m_clients.get());
    Record* client = m_selection.currentClient();
    if (client == m_mirroredClient) return;
    m_mirroredClient = client;
    if (!client) return;
    m_services.scheduler.after(0.1, [this] { setCurrentClientToPrefs(); });
}

void App::changeCurrentClient() {
    m_selection.propagate(m_clients.get());
    m_mirroredClient = m_selection.currentClient();
    m_services.scheduler.after(0.1, [this] { setCurrentClientToPrefs(); });
}

void App::setCurrentClientToPrefs() {
    Record* client = m_selection.currentClient();
    if (!client) return;
    static constexpr std::array<std::pair<const char*, const char*>, 6> mirror{{
        {"company", "prefsCompany"},
        {"taxNumber", "prefsTaxID"},
        {"elsterNumber", "prefsELSTERID"},
        {"taxationKind", "prefsUseTaxesGlobal"},
        {"datevConsultantNumber", "datevConsultantNumber"},
        {"datevClientNumber", "datevClientNumber"},
    }};
    for (const auto& [key, setting] : mirror) {
        Value v = client->get(key);
        if (v.isAbsent()) m_settings.remove(setting);
        else m_settings.set(setting, v);
    }
    (void)m_settings.flush();
}

void App::createClient() {
    m_selection.clients.add(Record::make(RecordClass::Client, now()));
    m_selection.clients.rearrange();
    selectionChanged();
    m_services.ui.showWindow("preferences.clients.company");
}

void App::deleteClient() {
    AlertRequest request{"Benutzer Löschen", kDeleteClientText, {"Löschen", "Abbrechen"},
                         AlertStyle::Warning, "preferences"};
    if (m_services.ui.alert(request) != 1) return;
    auto index = m_selection.clients.selectionIndex();
    if (!index) return;
    m_selection.clients.removeAt(*index);
    selectionChanged();
}

// ---------------------------------------------------------------------------------------
// Storage locations

std::optional<std::string> App::chooseStorageFolder() {
    DialogRequest request;
    request.kind = DialogKind::Folder;
    request.title = "Speicherort wählen";
    request.canCreateFolders = true;
    return m_services.ui.chooseFile(request);
}

void App::setLibraryPath() {
    alert("Warnung!", kCustomLocationWarning, {"OK"}, AlertStyle::Critical);
    auto chosen = chooseStorageFolder();
    if (!chosen || chosen->empty()) return;
    const char* refusal = nullptr;
    if (*chosen == m_settings.getString("prefsBackupPath"))
        refusal = "Der Speicherort für die Datenbank darf nicht identisch mit dem für die Backups sein.";
    else if (*chosen == m_settings.getString("prefsDocPath"))
        refusal = "Der Speicherort für die Datenbank darf nicht identisch mit dem für die Dokumente sein.";
    if (refusal) {
        alert("Fehler!", refusal);
        m_settings.setString("customLocationPath", "");
        m_settings.setBool("useCustomLocation", false);
        return;
    }
    m_settings.setString("customLocationPath", *chosen);
}

void App::setBackupPath() {
    auto chosen = chooseStorageFolder();
    if (!chosen || chosen->empty()) return;
    const char* refusal = nullptr;
    if (*chosen == m_settings.getString("customLocationPath"))
        refusal = "Der Speicherort für das Backup darf nicht identisch mit dem für die Datenbank sein.";
    else if (*chosen == m_settings.getString("prefsDocPath"))
        // The same words as for the database: kept as the program has always said it.
        refusal = "Der Speicherort für die Datenbank darf nicht identisch mit dem für die Dokumente sein.";
    if (refusal) {
        alert("Fehler!", refusal);
        m_settings.setString("prefsBackupPath", "");
        m_settings.setBool("prefsMakeBackup", false);
        return;
    }
    m_settings.setString("prefsBackupPath", *chosen);
}

void App::setDocumentsPath() {
    auto chosen = chooseStorageFolder();
    if (!chosen || chosen->empty()) return;
    const char* refusal = nullptr;
    if (*chosen == m_settings.getString("prefsBackupPath"))
        refusal = "Der Speicherort für die Dokumente darf nicht identisch mit dem für die Backups sein.";
    else if (*chosen == m_settings.getString("customLocationPath"))
        refusal = "Der Speicherort für die Dokumente darf nicht identisch mit dem für die Datenbank sein.";
    if (refusal) {
        alert("Fehler!", refusal);
        m_settings.setString("prefsDocPath", "");
        return;
    }
    m_settings.setString("prefsDocPath", *chosen);
}

// ---------------------------------------------------------------------------------------
// Migration

void App::doTheMigration() {
    if (!m_settings.getBool("isSetupDone")) {
        // A new installation: the first client.
        core::Ref<Record> client = Record::make(RecordClass::Client, now());
        client->set("company", Value::string("Neue Firma"));
        client->set("taxNumber", Value::string(""));
        client->set("elsterNumber", Value::string(""));
        client->set("taxationKind", Value::intValue(1));
        m_selection.clients.add(client);
        selectionChanged();
    } else {
        std::string folder = m_settings.getBool("useCustomLocation")
                                 ? m_settings.getString("customLocationPath")
                                 : m_places.dataFolder;
        if (m_settings.getBool("prefsUseMultipleAccounts")) {
            auto bytes = core::readWholeFile(joinPath(folder, "Accounts.plist"));
            Value entries;
            if (bytes) {
                auto list = core::decodePropertyList(*bytes, joinPath(folder, "Accounts.plist"));
                if (list) entries = *list;
            }
            for (const Value& entry : entries.asArray()) {
                auto text = [&](const char* key, const char* fallback) {
                    Value v = entry[key];
                    return v.isAbsent() ? std::string(fallback) : v.text();
                };
                Value art = entry["art"];
                std::string path = joinPath(folder, text("pfad", "") + "_Zifora_Multiple.mdb");
                migrateWithPath(path, identity(text("firma", "Neue Firma"), text("steuernummer", ""),
                                               text("elster", ""),
                                               art.isAbsent() ? Value::intValue(1) : art));
            }
        } else {
            Value company = m_settings.get("prefsCompany");
            Value kind = m_settings.get("prefsUseTaxesGlobal");
            migrateWithPath(joinPath(folder, "Zifora_Version_1.mdb"),
                            identity(company.isAbsent() ? "Neue Firma" : company.text(),
                                     m_settings.getString("prefsTaxID"),
                                     m_settings.getString("prefsELSTERID"),
                                     kind.isAbsent() ? Value::intValue(1) : kind));
        }
    }
    m_services.scheduler.after(0.3, [this] { setDelayedSelectionIndex(); });
}

void App::migrateWithPath(const std::string& path, const Value& identityDict) {
    core::Ref<Record> client = Record::make(RecordClass::Client, now());
    for (auto key : {"company", "taxNumber", "elsterNumber", "taxationKind"})
        client->set(key, identityDict[key]);
    auto root = core::readKeyedArchiveFile(path);
    if (!root && !root.error().missing) {
        refuseDatabase(path, root.error().error.message);
        return;
    }
    if (root) {
        for (const auto& [oldKey, newKey] : kOldRootLists) {
            Value list = (*root)[oldKey];
            if (list.kind() != core::Kind::Array) continue;
            auto records = std::make_shared<core::RecordList>();
            for (const Value& v : list.asArray())
                if (v.kind() == core::Kind::Record) records->push_back(v.recordRef());
            client->setList(static_cast<size_t>(client->listIndex(newKey)), records);
        }
    }
    m_selection.clients.add(client);
    m_selection.clients.rearrange();
    selectionChanged();
}

void App::setDelayedSelectionIndex() {
    m_selection.years.setSelectionIndex(
        m_selection.years.count() ? std::optional<int64_t>(m_selection.years.count() - 1)
                                  : std::nullopt);
    m_selection.propagate(m_clients.get());
    m_settings.setBool("isMigration_4.0_done", true);
    m_settings.setBool("isSaveAllowed", true);
    saveDataToDisk();
    alert("Migration erfolgreich!", kMigrationDoneText);
}

void App::migrateWithTag(int tag) {
    alert("Datenbank Migration",
          tag >= 0 && tag <= 4 ? "Bitte unbedingt erst einmal die Hilfe/Anleitung zur Datenbank "
                                 "Migration lesen!"
                               : "");
    std::string oldFile = joinPath(m_places.oldDataFolder, "Zifora_Version_1.mdb");
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

void App::doTheManualMigration() {
    DialogRequest request;
    request.kind = DialogKind::Open;
    request.title = "Zifora Datenbank migrieren";
    request.extensions = {"zfdb", "mdb"};
    auto chosen = m_services.ui.chooseFile(request);
    if (!chosen) return;
    migrateWithPath(*chosen, migratedIdentity());
}

void App::openMigrationHelp() {
    m_services.workspace.openFile(std::string(kProductSite) + "/migration/");
}

bool App::drag(const DragRequest& request) {
    auto it = m_dragHandlers.find(request.list);
    if (it == m_dragHandlers.end()) return false;
    it->second(request);
    return true;
}

// ---------------------------------------------------------------------------------------
// Commands

void App::registerCommands() {
    CommandRegistry& c = m_commands;
    c.add("save:", [this](const CommandSender&) { saveDataToDisk(); });
    c.add("autoSave:", [this](const CommandSender&) { saveDataToDisk(); });
    c.add("saveDataToDisk", [this](const CommandSender&) { saveDataToDisk(); });
    c.add("loadDataFromDisk", [this](const CommandSender&) { loadDataFromDisk(); });
    c.add("setSelection", [this](const CommandSender&) { setSelection(); });
    c.add("pathForDataFile", [this](const CommandSender&) { pathForDataFile(); });
    c.add("firstStart", [this](const CommandSender&) { firstStart(); });
    c.add("createClient:", [this](const CommandSender&) { createClient(); });
    c.add("deleteClient:", [this](const CommandSender&) { deleteClient(); });
    c.add("changeCurrentClient:", [this](const CommandSender&) { changeCurrentClient(); });
    c.add("setCurrentClientToPrefs", [this](const CommandSender&) { setCurrentClientToPrefs(); });
    c.add("setLibraryPath:", [this](const CommandSender&) { setLibraryPath(); });
    c.add("setBackupPath:", [this](const CommandSender&) { setBackupPath(); });
    c.add("setDocumentsPath:", [this](const CommandSender&) { setDocumentsPath(); });
    c.add("restart:", [this](const CommandSender&) { restart(); });
    c.add("terminate:", [this](const CommandSender&) { terminate(); });
    c.add("applicationDidBecomeActive:", [this](const CommandSender&) { applicationDidBecomeActive(); });
    c.add("doTheMigration", [this](const CommandSender&) { doTheMigration(); });
    c.add("migrateWithTag:", [this](const CommandSender& s) { migrateWithTag(s.tag); });
    c.add("doTheManualMigration", [this](const CommandSender&) { doTheManualMigration(); });
    c.add("openMigrationHelp:", [this](const CommandSender&) { openMigrationHelp(); });
}

} // namespace zifora::shell
