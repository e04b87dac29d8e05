#pragma once
// The set-up assistant: a sheet of five pages that asks for what the books need before the
// first year — the client's identity, the tax rates, the chart of accounts and the
// categories — and ends with `finishAssi:`. Every control writes at once, as in the
// preferences, so leaving early keeps what was typed; only the end marks the set-up done.

#include "forms/formsheet.h"
#include "preferences/panecontext.h"
#include "preferences/panes.h"
#include "preferences/settingcontrols.h"

#include <functional>
#include <string>
#include <vector>

class QButtonGroup;
class QLabel;
class QPushButton;
class QStackedWidget;

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

class ListTable;

class SetupAssistant final : public FormSheet {
    Q_OBJECT
  public:
    enum Page { Identity, Rates, Chart, Categories, Done, PageCount };

    /// `afterChange` brings the main window up to date after a command of the assistant.
    SetupAssistant(shell::Session& app, std::function<void()> afterChange, QWidget* mainWindow);

    /// The program shows the assistant (on its first page) or hides it ("assistant").
    void showAssistant(bool show);
    /// A new account or category was made: its first cell opens for typing.
    void editNewAccount();
    void editNewGroup();

    void showPage(int page);
    [[nodiscard]] int currentPage() const;
    [[nodiscard]] QPushButton* nextButton() const { return m_next; }
    [[nodiscard]] QPushButton* backButton() const { return m_back; }
    [[nodiscard]] QPushButton* finishButton() const { return m_finish; }
    [[nodiscard]] ListTable* accountsTable() const { return m_accounts; }
    [[nodiscard]] ListTable* groupsTable() const { return m_groups; }

  private:
    QWidget* buildIdentityPage();
    QWidget* buildRatesPage();
    QWidget* buildChartPage();
    QWidget* buildCategoriesPage();
    QWidget* buildDonePage();
    QWidget* buildButtons();
    void reload();
    void loadChosenChart();
    /// Puts the keyboard on the first control of the page shown.
    void focusFirstControl();

    shell::Session& m_app;
    std::function<void()> m_afterChange;
    PaneContext m_context;
    ClientFields m_client;
    SettingControls m_settings;
    QStackedWidget* m_pages = nullptr;
    std::vector<QLabel*> m_steps;
    QButtonGroup* m_charts = nullptr;
    QLabel* m_accountCount = nullptr;
    ListTable* m_accounts = nullptr;
    ListTable* m_groups = nullptr;
    QPushButton* m_back = nullptr;
    QPushButton* m_next = nullptr;
    QPushButton* m_finish = nullptr;
};

} // namespace zifora::gui
