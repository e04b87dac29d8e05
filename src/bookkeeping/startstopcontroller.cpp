#include "bookkeeping/startstopcontroller.h"

#include "bookkeeping/selectionindexes.h"
#include "shell/events.h"
#include "shell/session.h"

#include <filesystem>
#include <system_error>

namespace zifora::bookkeeping {

namespace fs = std::filesystem;

namespace {

using core::Value;
using shell::CommandSender;

constexpr const char* kDisclaimerText =
    "Ich habe Zifora mit aller Sorgfalt entwickelt und geprüft. Trotzdem bleibst du allein "
    "verantwortlich für deine Abrechnungen, Umsatzsteuer-Voranmeldungen, deine "
    "Gewinnermittlung und deine Steuererklärungen. Du darfst Zifora nur benutzen, wenn du "
    "damit einverstanden bist.";

std::string ownExecutable() {
    std::error_code ec;
    fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    return ec ? std::string("zifora") : exe.string();
}

/// Sets a field only when its value changes, so that its observers hear of real changes.
void setChanged(shell::FormFields& fields, const char* name, Value value) {
    const Value old = fields.get(name);
    if (old.kind() == value.kind() && old.text() == value.text() &&
        old.toDouble() == value.toDouble())
        return;
    fields.set(name, std::move(value));
}

} // namespace

StartStopController::StartStopController(shell::Session& session) : m_session(session) {
    registerCommands();
    m_session.book().observe([this](core::Change) { applicationDidUpdate(); });
}

void StartStopController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    c.add("init", [this](const CommandSender&) { init(); });
    c.add("awakeFromNib", [this](const CommandSender&) { awakeFromNib(); });
    c.add("firstStart", [this](const CommandSender&) { firstStart(); });
    c.add("applicationWillTerminate", [this](const CommandSender&) { applicationWillTerminate(); });
    c.add("applicationDidBecomeActive:",
          [this](const CommandSender&) { applicationDidBecomeActive(); });
    c.add("applicationShouldHandleReopen",
          [this](const CommandSender&) { applicationShouldHandleReopen(); });
    c.add(shell::menuCommand("restart:", "Neu s&tarten", shell::Menu::File, 30),
          [this](const CommandSender&) { restart(); });
    c.add(shell::menuCommand("terminate:", "Zifora &beenden", shell::Menu::File, 90, "Ctrl+Q"),
          [this](const CommandSender&) { terminate(); });
}

void StartStopController::init() {
    core::Settings& s = m_session.settings();
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
    // Nothing is read yet: until the load, no save may write this empty book.
    m_session.book().reset();
    m_session.setClients({});
    s.setBool("isSaveAllowed", false);
    s.setBool("allowWindow", false);
    s.setBool("isZifProAction", false);
    s.setString("importFilePath", "");
}

void StartStopController::guiControllerFirstDefaults() {
    core::Settings& s = m_session.settings();
    if (s.getBool("firstStartEver")) return;
    s.setInteger("prefsCurrency", 0);
    s.setInteger("prefsUseTaxesGlobal", 1);
    s.setFloat("prefs1Rate", 19);
    s.setFloat("prefs2Rate", 7);
    s.setString("prefs1RateTitle", "Regelsteuersatz");
    s.setString("prefs2RateTitle", "Ermäßigter Steuersatz");
    s.setBool("firstStartEver", true);
}

void StartStopController::awakeFromNib() {
    core::Settings& s = m_session.settings();
    shell::Services& services = m_session.services();
    guiControllerFirstDefaults();
    s.setBool("allowWindow", false);
    services.ui.hideWindow("main");

    if (!s.getBool("veryFirstAlertDone")) {
        int answer = services.ui.alert(shell::AlertRequest{
            "Leider notwendiger Hinweis",
            kDisclaimerText,
            {"Ja, ich mache meine Fehler selber", "Nein, bei mir sind immer die anderen Schuld"},
            shell::AlertStyle::Warning,
            {}});
        if (answer != 1) {
            terminate();
            return;
        }
        // The companion chart editor of the other platform has no counterpart here: the
        // accounts window edits charts itself, so no copy of its database is made.
        s.setBool("veryFirstAlertDone", true);
    } else if (!s.getBool("isWelcomeerShown")) {
        services.ui.showWindow("newsletter");
    }

    services.ui.showWindow("main");
    m_autoSaveTimer = services.scheduler.every(30, [this] { m_session.run("saveDataToDisk"); });
    m_session.run("loadDataFromDisk");
    s.setBool("isSaveAllowed", true);
    restoreSelectionIndexes(m_session);
    if (s.getBool("isZifProAction"))
        services.scheduler.after(1.3, [this] {
            m_session.events().publish(shell::HandOverArrived{
                shell::HandOverKind::GrandTotal, m_session.settings().getString("importFilePath")});
        });
    if (s.getBool("prefsMakeBackup"))
        services.scheduler.after(3, [this] { m_session.events().publish(shell::BackupDue{}); });
    if (!s.getBool("5StartEver")) firstStart();
    services.scheduler.after(0.4, [this] { showWelcome(); });
    m_session.events().publish(shell::StartDone{});
}

void StartStopController::showWelcome() {
    core::Settings& s = m_session.settings();
    if (!s.getBool("prefsAlwaysShowWelcomeSheet") && !s.getBool("isZifProAction"))
        m_session.services().ui.showWindow("welcome");
    s.setBool("allowWindow", true);
}

void StartStopController::firstStart() {
    core::Settings& s = m_session.settings();
    const core::Places& places = m_session.places();
    for (auto key : {"prefsAlwaysShowItemHelpDawer", "prefsAlwaysShowVoranmeldungHelpDawer",
                     "prefsAlwaysShowJournalHelpDawer", "prefsAlwaysShowTabHelpDawer",
                     "prefsAlwaysShowPrefsHelpDawer", "prefsAlwaysShowYearHelpDawer",
                     "prefsExportPrintWithList", "prefsPrintUnshortened"})
        s.setBool(key, true);
    s.setInteger("prefsSelectedExportTab", 2);
    s.setInteger("prefsSelectedExportJournal", 2);
    s.setInteger("prefsTabSortOrder", 0);
    std::error_code ec;
    fs::create_directories(places.documentsFolder, ec);
    fs::create_directories(places.backupFolder, ec);
    s.setString("prefsBackupPath", places.backupFolder);
    s.setString("prefsDocPath", places.documentsFolder);
    s.setBool("5StartEver", true);
}

void StartStopController::applicationWillTerminate() {
    m_session.settings().setBool("allowWindow", false);
    storeSelectionIndexes(m_session, /*withClient=*/false);
    m_session.run("saveDataToDisk");
    m_session.flushSettings();
}

void StartStopController::stopTimers() {
    m_terminated = true;
    if (m_autoSaveTimer) m_session.services().scheduler.cancel(m_autoSaveTimer);
}

void StartStopController::terminate() {
    if (m_terminated) return;
    m_terminated = true;
    applicationWillTerminate();
    stopTimers();
    m_session.services().workspace.terminate();
}

void StartStopController::applicationDidBecomeActive() {
    if (m_session.settings().getBool("allowWindow")) m_session.services().ui.showWindow("main");
}

void StartStopController::applicationShouldHandleReopen() {
    m_session.services().ui.showWindow("main");
}

void StartStopController::restart() {
    m_session.settings().setBool("allowWindow", false);
    storeSelectionIndexes(m_session, /*withClient=*/false);
    m_session.run("saveDataToDisk");
    m_session.flushSettings();
    // The pause lets this instance end before the next one starts.
    m_session.services().workspace.launch("/bin/sh",
                                          {"-c", "sleep 1 ; exec '" + ownExecutable() + "'"});
    stopTimers();
    m_session.services().workspace.terminate();
}

void StartStopController::applicationDidUpdate() {
    const core::Settings& s = m_session.settings();
    std::string image;
    if (!s.getBool("firstStepsDone")) {
        switch (s.getInteger("jaImage")) {
        case 2:
            image = "ja2";
            break;
        case 3:
            image = "ja3";
            break;
        case 4:
            image = "ja4";
            break;
        case 5:
            break;
        default:
            image = "ja1";
            break;
        }
    }
    // The period's signed sum, added up as the books keep it: in 32-bit floats.
    float sum = 0;
    for (core::Record* item : m_session.selection().items.arranged())
        sum = sum + item->getFloat("finalAmount");
    shell::FormFields& fields = m_session.fields();
    setChanged(fields, kFirstStepsImage, Value::string(image));
    setChanged(fields, kMainSumField, Value::floatValue(sum));
    setChanged(fields, kMainSumIsExpense, Value::boolean(static_cast<int>(sum) < 0));
}

} // namespace zifora::bookkeeping
