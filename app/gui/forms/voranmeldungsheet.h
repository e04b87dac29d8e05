#pragma once
// The advance-return window: the figures of the selected period, the payments typed by hand
// with their balance, the mark with the figures it took over, the comment, and the buttons
// for the open items, the hand-over to the ELSTER client and the print of the period sheet.
// Every value comes from and goes to the program's named controls.

#include "forms/formsheet.h"

#include <map>
#include <string>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class QToolButton;

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

class CommentEdit;
class FormBinder;

class VoranmeldungSheet final : public FormSheet {
    Q_OBJECT
  public:
    VoranmeldungSheet(shell::Session& app, std::function<void()> afterChange, QWidget* mainWindow);

    void showForm(bool show);
    void showHelp(bool show);

  private:
    QWidget* figuresPage();
    QWidget* paymentsPage();
    QWidget* markPage();
    QLineEdit* figure(const std::string& control);
    QLineEdit* payment(const std::string& control);
    void bind();
    /// A panel that pops up below `anchor` and goes when it loses the keyboard.
    QFrame* popup(QWidget* anchor);
    void showOpenItems();
    void showOptions(QWidget* anchor);

    FormBinder* m_binder = nullptr;
    QTabWidget* m_tabs = nullptr;
    QCheckBox* m_mark = nullptr;
    CommentEdit* m_comment = nullptr;
    QPushButton* m_openItems = nullptr;
    QToolButton* m_helpButton = nullptr;
    QLabel* m_help = nullptr;
    std::map<std::string, QLineEdit*> m_figures;  // shown as the program holds them
    std::map<std::string, QLineEdit*> m_payments; // typed
};

} // namespace zifora::gui
