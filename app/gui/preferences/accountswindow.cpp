#include "accountswindow.h"

#include "listtable.h"
#include "mastercolumns.h"

#include "shell/session.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <QVBoxLayout>

namespace zifora::gui {

AccountsWindow::AccountsWindow(PaneContext& context, QWidget* parent)
    : QWidget(parent, Qt::Window), m_context(context) {
    setObjectName(QStringLiteral("accountsWindow"));
    setWindowTitle(QStringLiteral("Kontenrahmen bearbeiten"));
    resize(760, 700);
    setMinimumSize(560, 420);

    m_client = new QLabel;
    m_search = new QLineEdit;
    m_search->setObjectName(QStringLiteral("accountsSearch"));
    m_search->setPlaceholderText(QStringLiteral("Nummer oder Bezeichnung suchen"));
    m_search->setClearButtonEnabled(true);
    auto* searchLabel = new QLabel(QStringLiteral("&Suche:"));
    searchLabel->setBuddy(m_search);
    new QShortcut(QKeySequence::Find, this, this, [this] {
        m_search->setFocus();
        m_search->selectAll();
    });

    m_table =
        new ListTable(context, context.app.selection().accounts, "accounts", accountColumns());
    m_table->setObjectName(QStringLiteral("accountsWindowTable"));
    m_table->view()->horizontalHeader()->resizeSection(0, 140);
    m_table->addButtons("addAccount:", QStringLiteral("Neues Konto"),
                        "removeAccount:", QStringLiteral("Ausgewähltes Konto löschen"));
    m_count = new QLabel;
    m_table->buttonRow()->addSpacing(12);
    m_table->buttonRow()->addWidget(m_count);
    m_table->buttonRow()->addStretch();
    m_table->addCommandButton(QStringLiteral("Als CSV exportieren …"), "exportAccountsCSV:");
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_table->setFilterText(text.trimmed());
        showCount();
    });

    auto* charts = new QHBoxLayout;
    charts->addWidget(new QLabel(QStringLiteral("Kontenrahmen laden:")));
    for (auto [label, command] : {std::pair{"SKR04 vollständig …", "loadCompleteAccounts:"},
                                  {"SKR04 Standard …", "loadDefaultAccounts:"},
                                  {"Minimal …", "loadMinimalAccounts:"}}) {
        if (!context.app.commands().contains(command)) continue;
        auto* button = new QPushButton(QString::fromUtf8(label));
        button->setObjectName(QString::fromLatin1(command));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this,
                [this, name = std::string(command)] { m_context.run(name, 0); });
        charts->addWidget(button);
    }
    charts->addStretch();
    auto* close = new QPushButton(QStringLiteral("Schließen"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    new QShortcut(QKeySequence::Close, this, this, &QWidget::close);
    charts->addWidget(close);

    auto* top = new QHBoxLayout;
    top->addWidget(m_client, 1);
    top->addWidget(searchLabel);
    top->addWidget(m_search, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_table, 1);
    layout->addLayout(charts);
    reload();
}

void AccountsWindow::reload() {
    core::Record* client = m_context.app.selection().currentClient();
    m_client->setText(
        client ? QStringLiteral("<b>Konten von:</b> %1")
                     .arg(QString::fromStdString(client->getText("company")).toHtmlEscaped())
               : QStringLiteral("<i>Kein Benutzer ausgewählt</i>"));
    m_table->reload();
    showCount();
}

void AccountsWindow::showCount() {
    int all = m_table->model()->rowCount();
    int shown = m_table->visibleRows();
    m_count->setText(shown == all ? QStringLiteral("%1 Konten").arg(all)
                                  : QStringLiteral("%1 von %2 Konten").arg(shown).arg(all));
}

void AccountsWindow::present() {
    reload();
    show();
    raise();
    activateWindow();
}

void AccountsWindow::editSelectedNumber() {
    // A new account may not match the search; it is to be seen while it is typed.
    m_search->clear();
    m_table->editSelected(0);
}

void AccountsWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) reload();
    QWidget::changeEvent(event);
}

} // namespace zifora::gui
