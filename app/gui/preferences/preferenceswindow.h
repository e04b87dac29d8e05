#pragma once
// The window of the preferences: seven panes chosen from a tool bar, the window's title
// following the pane, and a help panel under the pane.

#include "panecontext.h"

#include <QWidget>

#include <array>

class QAction;
class QFrame;
class QLabel;
class QLineEdit;
class QStackedWidget;

namespace zifora::gui {

class ClientsPane;
class ListTable;
class PreferencePane;

class PreferencesWindow final : public QWidget {
    Q_OBJECT
  public:
    /// The panes by their tag.
    enum Pane { General = 0, Data, Categories, Accounts, Templates, Clients, Taxes, PaneCount };

    explicit PreferencesWindow(PaneContext& context, QWidget* parent = nullptr);

    /// Switches to the pane of `tag`; the help panel opens with it where the settings ask.
    void showPane(int tag);
    [[nodiscard]] int currentPane() const { return m_current; }
    /// The label of a pane's button ("Allgemein" …) and the window's title with it open.
    [[nodiscard]] static QString paneLabel(int tag);
    [[nodiscard]] static QString paneTitle(int tag);

    /// Every pane shows the settings and records as they are now.
    void reload();
    /// Shows the window in front.
    void present();

    [[nodiscard]] PreferencePane* pane(int tag) const {
        return m_panes.at(static_cast<size_t>(tag));
    }
    [[nodiscard]] ListTable* groupsTable() const;
    [[nodiscard]] ListTable* accountsTable() const;
    [[nodiscard]] ListTable* templatesTable() const;
    [[nodiscard]] ClientsPane* clientsPane() const;
    [[nodiscard]] QAction* paneAction(int tag) const {
        return m_actions.at(static_cast<size_t>(tag));
    }
    [[nodiscard]] bool helpShown() const;

  protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void buildToolbar(QLayout* layout);
    void setHelpShown(bool shown);

    PaneContext& m_context;
    std::array<PreferencePane*, PaneCount> m_panes{};
    std::array<QAction*, PaneCount> m_actions{};
    QStackedWidget* m_stack = nullptr;
    QFrame* m_helpPanel = nullptr;
    QLabel* m_helpText = nullptr;
    int m_current = -1;
};

} // namespace zifora::gui
