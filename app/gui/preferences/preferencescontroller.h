#pragma once
// The preferences and the accounts window as the program reaches them: the window names
// the controllers show (`showPrefs:` and `runKontenwerker:` show two of them).

#include "panecontext.h"

#include <QObject>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

class AccountsWindow;
class ListTable;
class PreferencesWindow;

class PreferencesController final : public QObject {
    Q_OBJECT
  public:
    /// Makes both windows (hidden) and registers the two commands. To be made before the
    /// menus are built, so that they offer the commands.
    explicit PreferencesController(shell::Session& app);
    ~PreferencesController() override;

    /// The names to register with the user interface, each shown by `showWindowNamed`:
    /// "preferences", "preferences.templates", "preferences.accounts.number",
    /// "preferences.groups.title", "preferences.clients.company", "accountsWindow".
    [[nodiscard]] static std::vector<std::string> windowNames();
    /// Shows (opening the right pane and the right field) or closes a window by its name.
    void showWindowNamed(const std::string& name, bool show);

    /// Runs after anything was changed in these windows (the main window refreshes).
    void setAfterChange(std::function<void()> afterChange) {
        m_afterChange = std::move(afterChange);
    }

    [[nodiscard]] PreferencesWindow& preferences() { return *m_preferences; }
    [[nodiscard]] AccountsWindow& accountsWindow() { return *m_accounts; }

  private:
    void registerCommands();
    void runCommand(const std::string& name, int tag);
    void changed();
    void showPreferences(int pane);
    /// Opens a cell of the table's selected row for typing once the command has finished.
    void editLater(ListTable* table, int column);

    shell::Session& m_app;
    PaneContext m_context;
    PaneContext m_accountsContext;
    std::unique_ptr<PreferencesWindow> m_preferences;
    std::unique_ptr<AccountsWindow> m_accounts;
    std::function<void()> m_afterChange;
    bool m_accountsWindowAsks = false;
};

} // namespace zifora::gui
