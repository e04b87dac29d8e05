#pragma once
// The seven panes of the preferences.

#include "listtable.h"
#include "panecontext.h"
#include "settingcontrols.h"

#include <QWidget>

#include <memory>

class QComboBox;
class QLabel;
class QLineEdit;

namespace zifora::gui {

class PreferencePane : public QWidget {
    Q_OBJECT
  public:
    using QWidget::QWidget;
    /// Shows the values of the settings and records as they are now.
    virtual void reload() = 0;
    /// The text of the help panel.
    [[nodiscard]] virtual QString helpText() const = 0;
};

/// "Allgemein": new items, currency, printing, help panels and the welcome sheet.
class GeneralPane final : public PreferencePane {
    Q_OBJECT
  public:
    explicit GeneralPane(PaneContext& context);
    void reload() override { m_controls.reload(); }
    QString helpText() const override;

  private:
    SettingControls m_controls;
};

/// "Daten": the three storage locations, the backup, exchange files and migration.
class DataPane final : public PreferencePane {
    Q_OBJECT
  public:
    explicit DataPane(PaneContext& context);
    void reload() override { m_controls.reload(); }
    QString helpText() const override;

  private:
    QWidget* locationsBox();
    QWidget* exchangeBox();
    QWidget* migrationBox();

    PaneContext& m_context;
    SettingControls m_controls;
};

/// "Kategorien", "Konten", "Vorlagen": a list of the current client with its buttons.
class ListPane final : public PreferencePane {
    Q_OBJECT
  public:
    ListPane(PaneContext& context, ListTable* table, QString help);
    void reload() override { m_table->reload(); }
    QString helpText() const override { return m_help; }
    [[nodiscard]] ListTable* table() const { return m_table; }

  private:
    ListTable* m_table;
    QString m_help;
};

ListPane* makeGroupsPane(PaneContext& context);
ListPane* makeAccountsPane(PaneContext& context);
ListPane* makeTemplatesPane(PaneContext& context);

/// The identity of the selected client in text fields and the taxation pop-up; each edit
/// goes into the client record and the settings mirror follows.
class ClientFields {
  public:
    explicit ClientFields(PaneContext& context) : m_context(context) {}
    QLineEdit* field(const char* key);
    QComboBox* taxationKind();
    void reload();

  private:
    void write(const char* key, core::Value value);

    PaneContext& m_context;
    std::vector<std::function<void()>> m_loaders;
};

/// "Benutzer": the clients and the identity of the selected one.
class ClientsPane final : public PreferencePane {
    Q_OBJECT
  public:
    explicit ClientsPane(PaneContext& context);
    void reload() override;
    QString helpText() const override;
    /// Puts the cursor in the name field, its text selected.
    void focusCompany();
    [[nodiscard]] ListTable* table() const { return m_table; }

  private:
    PaneContext& m_context;
    ClientFields m_fields;
    ListTable* m_table = nullptr;
    QLineEdit* m_company = nullptr;
    QWidget* m_form = nullptr;
};

/// "Steuern": the rates and their titles, the DATEV numbers and the default account.
class TaxPane final : public PreferencePane {
    Q_OBJECT
  public:
    explicit TaxPane(PaneContext& context);
    void reload() override;
    QString helpText() const override;

  private:
    QWidget* elsterBox();

    PaneContext& m_context;
    SettingControls m_controls;
    ClientFields m_fields;
    QLabel* m_datevClient = nullptr;
};

} // namespace zifora::gui
