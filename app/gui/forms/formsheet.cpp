#include "forms/formsheet.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QKeyEvent>
#include <QLayout>
#include <QScreen>

#include <algorithm>

namespace zifora::gui {

namespace {

// Marks the extra entry of a chooser that shows a value it does not offer.
constexpr int kExtraEntryRole = Qt::UserRole + 1;

} // namespace

FormSheet::FormSheet(QWidget* mainWindow) : QDialog(mainWindow) {
    setWindowModality(Qt::WindowModal);
    setSizeGripEnabled(true);
}

void FormSheet::present() {
    fitContents();
    if (QWidget* main = parentWidget()) {
        const QRect frame = main->frameGeometry();
        move(frame.center().x() - width() / 2,
             frame.top() + std::max(40, (frame.height() - height()) / 3));
    }
    show();
    raise();
    activateWindow();
}

void FormSheet::fitContents() {
    // The size the contents ask for, not more than the screen has room for.
    if (layout()) layout()->activate(); // panels that came or went count at once
    QSize size = sizeHint().expandedTo(minimumSizeHint());
    if (QScreen* screen = this->screen()) size = size.boundedTo(screen->availableSize());
    resize(size.expandedTo(minimumSizeHint()));
}

void FormSheet::dismiss() {
    hide();
    // The keyboard goes back to the main window.
    if (QWidget* main = parentWidget(); main && main->isVisible()) main->activateWindow();
}

void FormSheet::reject() {
    if (m_cancel) m_cancel();
}

void FormSheet::closeEvent(QCloseEvent* event) {
    event->ignore();
    reject();
}

CommentEdit::CommentEdit(QWidget* parent) : QPlainTextEdit(parent) {
    setTabChangesFocus(true);
    setMinimumHeight(56);
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_showing) emit edited(toPlainText());
    });
}

void CommentEdit::showText(const QString& text) {
    if (toPlainText() == text) return;
    m_showing = true;
    setPlainText(text);
    m_showing = false;
}

void CommentEdit::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && !(event->modifiers() & Qt::ShiftModifier)) {
        event->ignore(); // the form's default button takes it
        return;
    }
    if (enter) {
        insertPlainText(QStringLiteral("\n"));
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void showComboText(QComboBox& combo, const QString& text) {
    const QSignalBlocker quiet(&combo);
    if (combo.count() > 0 && combo.itemData(0, kExtraEntryRole).toBool()) combo.removeItem(0);
    if (text.isEmpty()) {
        combo.setCurrentIndex(-1);
        return;
    }
    int index = combo.findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index < 0) {
        combo.insertItem(0, text);
        combo.setItemData(0, true, kExtraEntryRole);
        index = 0;
    }
    combo.setCurrentIndex(index);
}

void fillCombo(QComboBox& combo, const QStringList& entries) {
    const QString shown = combo.currentIndex() >= 0 ? combo.currentText() : QString();
    {
        const QSignalBlocker quiet(&combo);
        combo.clear();
        combo.addItems(entries);
    }
    showComboText(combo, shown);
}

} // namespace zifora::gui
