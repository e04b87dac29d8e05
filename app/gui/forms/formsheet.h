#pragma once
// A form shown as a sheet: a dialog that is modal for the main window only, centred on it,
// and that goes away only when the program hides it. Escape and the window's close button
// ask the form's cancel instead of closing the dialog themselves.

#include <QDialog>
#include <QPlainTextEdit>

#include <functional>

class QComboBox;

namespace zifora::gui {

class FormSheet : public QDialog {
    Q_OBJECT
  public:
    explicit FormSheet(QWidget* mainWindow);

    /// What Escape and the close button do.
    void setCancel(std::function<void()> cancel) { m_cancel = std::move(cancel); }
    /// Shows the sheet centred on the main window.
    void present();
    /// Takes the size the contents ask for (after a panel came or went, for instance).
    void fitContents();
    /// Hides the sheet and gives the keyboard back to the main window.
    void dismiss();

  public slots:
    void accept() override {}
    void reject() override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    std::function<void()> m_cancel;
};

/// A comment of several lines. The tab key moves on, Return confirms the form like in any
/// other field, and Shift+Return starts a new line.
class CommentEdit final : public QPlainTextEdit {
    Q_OBJECT
  public:
    explicit CommentEdit(QWidget* parent = nullptr);
    /// Shows a text from the program; the user's cursor stays if the text is unchanged.
    void showText(const QString& text);

  signals:
    /// The user changed the text.
    void edited(const QString& text);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    bool m_showing = false;
};

/// Shows `text` as a chooser's choice. A text the chooser does not offer (a year outside its
/// range, an account that left the chart) is shown as an extra first entry; "" shows none.
void showComboText(QComboBox& combo, const QString& text);
/// Replaces the offered entries, keeping the choice shown.
void fillCombo(QComboBox& combo, const QStringList& entries);

} // namespace zifora::gui
