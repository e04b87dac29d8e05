#include "preferencescontroller.h"

#include "accountswindow.h"
#include "listtable.h"
#include "panes.h"
#include "preferenceswindow.h"

#include "shell/session.h"

#include <QTimer>

namespace zifora::gui {

PreferencesController::PreferencesController(shell::Session& app)
    : m_app(app), m_context{app,
                            [this](const std::string& name, int tag) { runCommand(name, tag); },
                            [this] { changed(); }},
      m_accountsContext{app,
                        [this](const std::string& name, int tag) {
                            // What the command asks to show belongs in the window that asked.
                            m_accountsWindowAsks = true;
                            runCommand(name, tag);
                            m_accountsWindowAsks = false;
                        },
                        [this] { changed(); }} {
    // First the commands, so that the windows offer buttons for them.
    registerCommands();
    m_preferences = std::make_unique<PreferencesWindow>(m_context);
    m_accounts = std::make_unique<AccountsWindow>(m_accountsContext);
}

PreferencesController::~PreferencesController() = default;

std::vector<std::string> PreferencesController::windowNames() {
    return {"preferences",
            "preferences.templates",
            "preferences.accounts.number",
            "preferences.groups.title",
            "preferences.clients.company",
            "accountsWindow"};
}

void PreferencesController::registerCommands() {
    // A new template opens its first cell for typing, wherever it was made.
    m_app.fields().observe([this](const std::string& name, const core::Value& value) {
        if (name != "templateTableEditingRow" || value.isAbsent()) return;
        showPreferences(PreferencesWindow::Templates);
        editLater(m_preferences->templatesTable(), 0);
    });
}

void PreferencesController::showWindowNamed(const std::string& name, bool show) {
    if (!show) {
        (name == "accountsWindow" ? static_cast<QWidget*>(m_accounts.get()) : m_preferences.get())
            ->close();
        return;
    }
    if (name == "accountsWindow") {
        m_accounts->present();
    } else if (name == "preferences") {
        showPreferences(m_preferences->currentPane());
    } else if (name == "preferences.templates") {
        showPreferences(PreferencesWindow::Templates);
    } else if (name == "preferences.groups.title") {
        showPreferences(PreferencesWindow::Categories);
        editLater(m_preferences->groupsTable(), 0);
    } else if (name == "preferences.accounts.number") {
        if (m_accountsWindowAsks) {
            QTimer::singleShot(0, m_accounts.get(), [this] { m_accounts->editSelectedNumber(); });
        } else {
            showPreferences(PreferencesWindow::Accounts);
            editLater(m_preferences->accountsTable(), 0);
        }
    } else if (name == "preferences.clients.company") {
        showPreferences(PreferencesWindow::Clients);
        QTimer::singleShot(0, m_preferences.get(),
                           [this] { m_preferences->clientsPane()->focusCompany(); });
    }
}

void PreferencesController::showPreferences(int pane) {
    m_preferences->showPane(pane);
    m_preferences->present();
}

void PreferencesController::editLater(ListTable* table, int column) {
    // The command that asked is still running; the windows are brought up to date after it,
    // and only then may the cell be opened, or the update would close it again.
    QTimer::singleShot(0, table, [table, column] { table->editSelected(column); });
}

void PreferencesController::runCommand(const std::string& name, int tag) {
    m_app.run(name, shell::CommandSender{tag});
    changed();
}

void PreferencesController::changed() {
    m_preferences->reload();
    m_accounts->reload();
    if (m_afterChange) m_afterChange();
}

} // namespace zifora::gui
