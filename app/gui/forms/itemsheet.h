#pragma once
// The item form ("itemWindow") as a sheet on the main window. Its controls carry the names
// of the program's controls (objectName) and are bound to them: what the program sets shows
// here, what the user does is handed over and the buttons run the item commands. The date,
// the sum and the account number are handed over when their editing ends, as the form's
// commands expect; the other fields as they are typed.

#include "forms/formsheet.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QToolButton;

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

class DateField;
class FormBinder;
class MultiPopover;
class SegmentedChoice;

class ItemSheet final : public FormSheet {
    Q_OBJECT
  public:
    ItemSheet(shell::Session& app, std::function<void()> afterChange, QWidget* mainWindow);

    /// The program shows or hides the form.
    void showForm(bool show);
    /// The panels beside the form: the calendar ("itemDatePanel") and the help
    /// ("itemHelpPanel").
    void showDatePanel(bool show);
    void showHelpPanel(bool show);

    [[nodiscard]] MultiPopover* popover() const { return m_popover; }
    [[nodiscard]] SegmentedChoice* kindChoice() const { return m_kind; }
    [[nodiscard]] SegmentedChoice* taxChoice() const { return m_tax; }

  protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void build();
    QWidget* buildDrawer();
    void setTabChain();
    void bindControls();
    void connectEdits();
    void connectButtons();
    void fillChoosers();
    void relabelTaxSegments();
    void showSign();
    void showTaxChoice();
    void showDate();
    void openPopover(int tag, QWidget* anchor);
    void updateDrawer();
    /// Hand the typed date, sum or account number over; false when it was refused.
    bool commitDate();
    bool commitSum();
    bool commitAccount(bool always, bool moveOn);

    shell::Session& m_app;
    FormBinder* m_binder = nullptr;
    MultiPopover* m_popover = nullptr;

    SegmentedChoice* m_kind = nullptr;
    QLabel* m_sign = nullptr;
    QLineEdit* m_sum = nullptr;
    QLabel* m_currency = nullptr;
    QToolButton* m_calculatorButton = nullptr;
    DateField* m_date = nullptr;
    QToolButton* m_dateButton = nullptr;
    QCheckBox* m_taxBox = nullptr;
    SegmentedChoice* m_tax = nullptr;
    QLineEdit* m_title = nullptr;
    QLineEdit* m_number = nullptr;
    QCheckBox* m_unpaid = nullptr;
    QLineEdit* m_accountNumber = nullptr;
    QComboBox* m_account = nullptr;
    QToolButton* m_accountSearch = nullptr;
    QComboBox* m_group = nullptr;
    QToolButton* m_groupSearch = nullptr;
    CommentEdit* m_comment = nullptr;
    QPushButton* m_templateButton = nullptr;
    QPushButton* m_settingsButton = nullptr;
    QPushButton* m_datevButton = nullptr;
    QPushButton* m_helpButton = nullptr;
    QPushButton* m_previous = nullptr;
    QPushButton* m_next = nullptr;
    QPushButton* m_cancel = nullptr;
    QPushButton* m_new = nullptr;
    QPushButton* m_ok = nullptr;

    QWidget* m_drawer = nullptr;
    QGroupBox* m_dateDrawer = nullptr;
    QGroupBox* m_helpDrawer = nullptr;

    bool m_sumTyped = false;
    bool m_accountTyped = false;
    bool m_refusingDate = false;
};

} // namespace zifora::gui
