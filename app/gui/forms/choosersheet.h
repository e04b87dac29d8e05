#pragma once
// The year form ("yearWindow") and the period form ("listWindow"): a chooser of the offered
// titles, a comment and OK. A new year or period exists from the moment its form opens, so
// there is no cancel: Escape only beeps, and the way out is to choose and delete it.

#include "forms/formsheet.h"

#include <functional>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QPushButton;
class QToolButton;

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

class FormBinder;

class ChooserSheet final : public FormSheet {
    Q_OBJECT
  public:
    /// What tells the two forms apart.
    struct Kind {
        QString windowTitle;
        QString chooserLabel;
        std::string chooser;      // "yearPopUp", "listPopUp"
        std::string commentField; // "yearCommentField", "listCommentField"
        std::string closeCommand; // "closeYear:", "closeList:"
        QString helpText;
        std::function<std::vector<std::string>()> offeredTitles;
    };

    ChooserSheet(shell::Session& app, Kind kind, std::function<void()> afterChange,
                 QWidget* mainWindow);

    /// The program shows or hides the form ("yearWindow" …).
    void showForm(bool show);
    /// The program shows or hides the help panel ("yearWindow.help" …).
    void showHelp(bool show);

    [[nodiscard]] QComboBox* chooser() const { return m_chooser; }
    [[nodiscard]] CommentEdit* comment() const { return m_comment; }
    [[nodiscard]] QPushButton* okButton() const { return m_ok; }
    [[nodiscard]] bool helpShown() const;

  private:
    void build();
    void bind();

    Kind m_kind;
    FormBinder* m_binder = nullptr;
    QComboBox* m_chooser = nullptr;
    CommentEdit* m_comment = nullptr;
    QToolButton* m_helpButton = nullptr;
    QLabel* m_help = nullptr;
    QPushButton* m_ok = nullptr;
};

} // namespace zifora::gui
