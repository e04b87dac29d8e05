#pragma once
// The print and export sheets of the settlement journal ("tabJournalPrintSheet",
// "tabJournalExportSheet"): what the journal contains, its state while it is made, and the
// buttons for preview, print and export. The journal itself is the program's; these sheets
// only show its controls and run its commands.

#include "forms/formsheet.h"

#include <QObject>
#include <QPointer>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;

namespace zifora::platform_qt {
class QtUi;
}
namespace zifora::shell {
class Session;
}

namespace zifora::gui {

class FormBinder;

/// One of the two sheets. The print sheet offers preview, print and done; the export sheet
/// the format, cancel and export.
class JournalSheet final : public FormSheet {
    Q_OBJECT
  public:
    enum class Kind { Print, Export };
    JournalSheet(shell::Session& app, Kind kind, QWidget* mainWindow);

    void showSheet(bool show);

    [[nodiscard]] QComboBox* formatChooser() const { return m_format; }
    [[nodiscard]] QPushButton* mainButton() const { return m_main; }
    [[nodiscard]] QLabel* state() const { return m_state; }

  private:
    void build();
    void bind();
    void loadSettings();
    QWidget* contentOptions();

    shell::Session& m_app;
    Kind m_kind;
    FormBinder* m_binder = nullptr;
    QComboBox* m_format = nullptr;
    QCheckBox* m_withList = nullptr;
    QComboBox* m_order = nullptr;
    QCheckBox* m_border = nullptr;
    QCheckBox* m_currency = nullptr;
    QLabel* m_state = nullptr;
    QPushButton* m_main = nullptr;
};

class JournalSheets final : public QObject {
    Q_OBJECT
  public:
    JournalSheets(shell::Session& app, QWidget* mainWindow);
    /// Registers "tabJournalPrintSheet" and "tabJournalExportSheet".
    void registerWindows(platform_qt::QtUi& ui);

    [[nodiscard]] JournalSheet* printSheet() const { return m_print; }
    [[nodiscard]] JournalSheet* exportSheet() const { return m_export; }

  private:
    QPointer<QWidget> m_main;
    JournalSheet* m_print = nullptr;
    JournalSheet* m_export = nullptr;
};

} // namespace zifora::gui
