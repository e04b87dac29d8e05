#include "forms/multipopover.h"

#include "forms/formbinder.h"
#include "forms/popoverviews.h"
#include "shell/session.h"

#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace zifora::gui {

MultiPopover::MultiPopover(shell::Session& app, std::function<void()> afterChange, QWidget* form)
    : QDialog(form, Qt::Tool) {
    setObjectName(QStringLiteral("multiPopover"));
    m_binder = new FormBinder(app, std::move(afterChange), this);
    m_title = new QLabel;
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_stack = new QStackedWidget;
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_title);
    layout->addWidget(m_stack, 1);

    auto* date = new DateView(*m_binder);
    connect(date->calendar(), &QCalendarWidget::activated, this, [this] { closeView(DateTag); });
    addView(DateTag, QStringLiteral("Datum"), date);
    addView(CalculatorTag, QStringLiteral("Rechner"), new CalculatorView(*m_binder));
    addView(AccountsTag, QStringLiteral("Konten"),
            new SearchView(*m_binder, SearchView::Source::Accounts));
    addView(GroupsTag, QStringLiteral("Kategorien"),
            new SearchView(*m_binder, SearchView::Source::Groups));
    addView(TemplatesTag, QStringLiteral("Vorlagen"),
            new SearchView(*m_binder, SearchView::Source::Templates));
    addView(ItemSettingsTag, QStringLiteral("Einstellungen für neue Posten"),
            new ItemSettingsView(*m_binder));
    addView(HelpTag, QStringLiteral("Hilfe"), new HelpView(itemHelpText()));
    addView(DatevTag, QStringLiteral("DATEV-Daten des Postens"), new DatevView(*m_binder));
}

void MultiPopover::addView(int tag, const QString& title, PopoverView* view) {
    view->setObjectName(QStringLiteral("view%1").arg(tag));
    m_stack->addWidget(view);
    m_views[tag] = {title, view};
}

PopoverView* MultiPopover::view(int tag) const {
    auto it = m_views.find(tag);
    return it == m_views.end() ? nullptr : it->second.second;
}

int MultiPopover::shownTag() const {
    return isVisible() ? m_tag : 0;
}

void MultiPopover::showView(int tag, QWidget* anchor) {
    auto it = m_views.find(tag);
    if (it == m_views.end()) return;
    auto& [title, view] = it->second;
    m_tag = tag;
    view->load();
    m_stack->setCurrentWidget(view);
    m_title->setText(title);
    setWindowTitle(title);
    // The panel takes the size of the view it shows.
    for (auto& [otherTag, entry] : m_views)
        entry.second->setSizePolicy(otherTag == tag ? QSizePolicy::Preferred : QSizePolicy::Ignored,
                                    otherTag == tag ? QSizePolicy::Preferred
                                                    : QSizePolicy::Ignored);
    adjustSize();
    placeBeside(anchor);
    show();
    raise();
    activateWindow();
    view->entryWidget()->setFocus(Qt::PopupFocusReason);
}

void MultiPopover::placeBeside(QWidget* anchor) {
    QWidget* form = parentWidget();
    if (!form || !form->isVisible()) return;
    const QRect frame = form->frameGeometry();
    const int top = anchor ? anchor->mapToGlobal(QPoint(0, 0)).y() - 20 : frame.top();
    QPoint at(frame.right() + 8, top);
    if (QScreen* screen = form->screen()) {
        const QRect room = screen->availableGeometry();
        if (at.x() + width() > room.right())
            at.setX(std::max(room.left(), frame.left() - width() - 8));
        at.setY(std::clamp(at.y(), room.top(), std::max(room.top(), room.bottom() - height())));
    }
    move(at);
}

void MultiPopover::closeView(int tag) {
    if (tag != 0 && tag != m_tag) return;
    hide();
}

void MultiPopover::reject() {
    // The calculator ends through its own command; the other views simply close.
    if (m_tag == CalculatorTag && isVisible()) {
        m_binder->run("cancelSplitWindow:", 0, /*commitFirst=*/false);
        if (!isVisible()) return;
    }
    hide();
}

// The keyboard goes back to the form the panel belongs to.
void MultiPopover::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (QWidget* form = parentWidget(); form && form->isVisible()) form->activateWindow();
}

void MultiPopover::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!enter || (event->modifiers() & ~Qt::KeypadModifier)) {
        QDialog::keyPressEvent(event);
        return;
    }
    // Lists and the calendar act on Return themselves.
    if (qobject_cast<QAbstractItemView*>(focusWidget())) return;
    PopoverView* shown = view(m_tag);
    if (!shown || !shown->confirm()) closeView();
}

} // namespace zifora::gui
