#pragma once
// A date field that takes the date as typed text: "15.01.2025", "15.1.25", "15.01." or
// "150125", read in day.month.year order when editing ends. It shows its date as
// dd.MM.yyyy; Up and Down step the date a day back and forth. However the keyboard comes
// to it, by Tab or by a click, the whole date is selected, so that typing replaces it.

#include <QDate>
#include <QLineEdit>

#include <optional>

namespace zifora::gui {

class DateField final : public QLineEdit {
    Q_OBJECT
  public:
    explicit DateField(QWidget* parent = nullptr);

    /// Shows a date of the program, in place of any typed text.
    void showDate(QDate date);
    /// Drops a typed text and shows the date again.
    void revert();
    /// The date the field shows, which a typed text has not changed yet.
    [[nodiscard]] QDate date() const { return m_date; }
    /// True while the text is the user's and not yet taken.
    [[nodiscard]] bool isTyped() const { return m_typed; }
    /// The typed text as a date, with the parts left out taken from the shown date; nothing
    /// when the text is no date.
    [[nodiscard]] std::optional<QDate> typedDate() const;

  protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void stepDays(int days);

    QDate m_date;
    bool m_typed = false;
};

/// How date fields write a date.
QString dateFieldText(QDate date);

} // namespace zifora::gui
