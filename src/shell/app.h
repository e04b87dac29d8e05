#pragma once
// The application object: owns the clients, the selection chain and the auto-save timer,
// and runs the start and stop of the program, the database file and the migration.

#include "core/record.h"
#include "core/settings.h"
#include "shell/commandregistry.h"
#include "shell/controllers.h"
#include "shell/formfields.h"
#include "shell/places.h"
#include "shell/selection.h"
#include "shell/services.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace zifora::shell {

class App {
  public:
    App(Services services, Places places, core::Settings& settings);
    ~App();
    App(const App&) = delete;
    App& operator=(const App&) = delete;

    // --- start and stop -----------------------------------------------------------------
    /// Creation of the application object: one-time defaults and the run-time guards.
    void init();
    /// The start sequence after creation, up to the event loop.
    void awakeFromNib();
    void firstStart();
    void applicationWillTerminate();
    void applicationDidBecomeActive();
    /// Brings the main window to the front; answers false.
    bool applicationShouldHandleReopen();
    /// Closing the main window does not end the program.
    bool windowShouldClose() { return true; }
    void restart();

    /// What `applicationDidUpdate:` shows: the first-steps picture (empty for none) and
    /// whether the main sum is coloured as an expense.
    struct UpdateState {
        std::string firstStepsImage;
        bool sumIsExpense = false;
    };
    [[nodiscard]] UpdateState applicationDidUpdate(float mainSum) const;

    // --- database file ------------------------------------------------------------------
    std::string pathForDataFile();
    void saveDataToDisk();
    void loadDataFromDisk();
    void setSelection();
    /// "SAVEDATANF": any part of the program may ask for a save.
    void postSaveNotification() { saveDataToDisk(); }

    // --- clients ------------------------------------------------------------------------
    void setCurrentClientToPrefs();
    void changeCurrentClient();
    void createClient();
    void deleteClient();
    /// To be called after the client selection was changed from outside (GUI, script).
    void selectionChanged();

    // --- storage locations --------------------------------------------------------------
    void setLibraryPath();
    void setBackupPath();
    void setDocumentsPath();

    // --- migration ----------------------------------------------------------------------
    void doTheMigration();
    /// Makes one client around an old database file (missing files give empty lists).
    void migrateWithPath(const std::string& path, const core::Value& identity);
    void setDelayedSelectionIndex();
    void migrateWithTag(int tag);
    void doTheManualMigration();
    void openMigrationHelp();

    // --- hooks for the backup and hand-over features ------------------------------------
    std::function<void()> performBackup;
    std::function<void()> backupAlert;
    std::function<void()> sendZifProNotification;
    /// The hand-over imports of the two other outside programs (set by their import).
    std::function<void()> sendBillNotification;
    std::function<void()> sendMoneyMoneyNotification;

    // --- access -------------------------------------------------------------------------
    [[nodiscard]] core::RecordList& clients() { return *m_clients; }
    [[nodiscard]] Selection& selection() { return m_selection; }
    [[nodiscard]] core::Settings& settings() { return m_settings; }
    [[nodiscard]] const Places& places() const { return m_places; }
    [[nodiscard]] Services& services() { return m_services; }
    [[nodiscard]] CommandRegistry& commands() { return m_commands; }
    [[nodiscard]] FormFields& fields() { return m_fields; }
    /// Drop handlers by the name of the list the rows come from.
    using DragHandler = std::function<void(const DragRequest&)>;
    void addDragHandler(const std::string& list, DragHandler handler) {
        m_dragHandlers[list] = std::move(handler);
    }
    /// Runs the drop; false when rows of that list can't be dragged.
    bool drag(const DragRequest& request);
    [[nodiscard]] core::Date now() const { return m_services.clock.now(); }
    /// True once the database could not be read; nothing is saved for the rest of the run.
    [[nodiscard]] bool databaseUnreadable() const { return m_databaseUnreadable; }
    /// Replaces all clients (the setter copies the list; the records are shared).
    void setClients(const core::RecordList& clients);
    /// The root dictionary of the database file.
    [[nodiscard]] core::Value databaseRoot() const;

  private:
    void registerCommands();
    void showDisclaimer();
    void showWelcome();
    void guiControllerFirstDefaults();
    void storeSelectionIndexes(bool withClient);
    void restoreSelectionIndexes();
    int alert(const std::string& title, const std::string& text,
              std::vector<std::string> buttons = {"OK"}, AlertStyle style = AlertStyle::Warning);
    std::optional<std::string> chooseStorageFolder();
    void refuseDatabase(const std::string& path, const std::string& cause);
    void terminate();

    Services m_services;
    Places m_places;
    core::Settings& m_settings;
    CommandRegistry m_commands;
    FormFields m_fields;
    std::map<std::string, DragHandler> m_dragHandlers;
    Selection m_selection;
    core::ListPtr m_clients;
    std::string m_currentAccountID;
    core::Record* m_mirroredClient = nullptr;
    TimerId m_autoSaveTimer = 0;
    bool m_databaseUnreadable = false;
    std::unique_ptr<Controllers> m_controllers; // last: they hold references into the App
    bool m_terminated = false;
};

} // namespace zifora::shell
