#include "forms/datefield.h"

#include "posting/dateentry.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QTimer>

namespace zifora::gui {

QString dateFieldText(QDate date) {
    return date.isValid() ? date.toString(QStringLiteral("dd.MM.yyyy")) : QString();
}

DateField::DateField(QWidget* parent) : QLineEdit(parent) {
    setPlaceholderText(QStringLiteral("TT.MM.JJJJ"));
    setToolTip(QStringLiteral("Datum als Tag.Monat.Jahr, zum Beispiel 15.01.2025 oder 15.1.25; "
                              "Pfeil hoch und runter blättern tageweise"));
    // Wide enough for the whole date and a little room, however the style draws the frame.
    setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("00.00.00000")) + 24);
    connect(this, &QLineEdit::textEdited, this, [this] { m_typed = true; });
}

void DateField::showDate(QDate date) {
    m_date = date;
    m_typed = false;
    const QString text = dateFieldText(date);
    if (this->text() != text) setText(text);
}

void DateField::revert() {
    m_typed = false;
    setText(dateFieldText(m_date));
}

std::optional<QDate> DateField::typedDate() const {
    const posting::CalendarDay held =
        m_date.isValid()
            ? posting::CalendarDay{m_date.year(), m_date.month(), m_date.day()}
            : posting::CalendarDay{QDate::currentDate().year(), QDate::currentDate().month(), 1};
    const auto day = posting::parseTypedDate(text().toStdString(), held);
    if (!day) return std::nullopt;
    return QDate(day->year, day->month, day->day);
}

// Up and Down step from the date typed so far, or from the one shown; a text that is no
// date stays as it is.
void DateField::stepDays(int days) {
    const std::optional<QDate> typed = m_typed ? typedDate() : m_date;
    if (!typed || !typed->isValid()) return;
    const QDate from = *typed;
    setText(dateFieldText(from.addDays(days)));
    m_typed = true;
}

void DateField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    // The click that brought the keyboard places the cursor after this; the selection
    // follows it. A second click places the cursor as usual.
    if (event->reason() == Qt::MouseFocusReason)
        QTimer::singleShot(0, this, [this] {
            if (hasFocus()) selectAll();
        });
}

void DateField::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier) {
        if (event->key() == Qt::Key_Up) {
            stepDays(1);
            return;
        }
        if (event->key() == Qt::Key_Down) {
            stepDays(-1);
            return;
        }
    }
    QLineEdit::keyPressEvent(event);
}

} // namespace zifora::gui
