#include "mastercolumns.h"
#include "panes.h"

#include "shell/session.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

QLabel* dragHint() {
    auto* hint = new QLabel(QStringLiteral("Ziehe Zeilen, um die Reihenfolge zu ändern."));
    hint->setEnabled(false);
    return hint;
}

} // namespace

ListPane::ListPane(PaneContext&, ListTable* table, QString help)
    : m_table(table), m_help(std::move(help)) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table, 1);
}

ListPane* makeGroupsPane(PaneContext& context) {
    auto* table = new ListTable(context, context.app.selection().groups, "groups", groupColumns());
    table->setObjectName(QStringLiteral("groupsTable"));
    table->addButtons("addGroup:", QStringLiteral("Neue Kategorie"),
                      "removeGroup:", QStringLiteral("Ausgewählte Kategorie löschen"));
    table->buttonRow()->addSpacing(12);
    table->buttonRow()->addWidget(dragHint());
    table->buttonRow()->addStretch();
    return new ListPane(
        context, table,
        QStringLiteral(
            "Kategorien ordnen deine Posten. Mit + legst du eine neue an und tippst gleich ihren "
            "Namen, mit − löschst du die ausgewählte. Bestehende Posten behalten ihre Kategorie."));
}

ListPane* makeAccountsPane(PaneContext& context) {
    auto* table =
        new ListTable(context, context.app.selection().accounts, "accounts", accountColumns());
    table->setObjectName(QStringLiteral("accountsTable"));
    table->view()->horizontalHeader()->resizeSection(0, 120);
    table->addButtons("addAccount:", QStringLiteral("Neues Konto"),
                      "removeAccount:", QStringLiteral("Ausgewähltes Konto löschen"));
    table->buttonRow()->addSpacing(12);
    table->buttonRow()->addWidget(dragHint());
    table->buttonRow()->addStretch();
    table->addCommandButton(QStringLiteral("Im großen Fenster bearbeiten …"), "runKontenwerker:");

    auto* pane = new ListPane(context, table,
                              QStringLiteral("Das ist der Kontenrahmen des ausgewählten Benutzers. "
                                             "Nummer und Bezeichnung änderst du "
                                             "direkt in der Tabelle. Ein mitgelieferter "
                                             "Kontenrahmen ersetzt alle Konten. Bestehende "
                                             "Posten behalten ihr Konto."));
    auto* charts = new QHBoxLayout;
    charts->addWidget(new QLabel(QStringLiteral("Kontenrahmen laden:")));
    auto button = [&](const QString& label, const std::string& command) {
        if (!context.app.commands().contains(command)) return;
        auto* b = new QPushButton(label);
        b->setObjectName(QString::fromStdString(command));
        b->setAutoDefault(false);
        QObject::connect(b, &QPushButton::clicked, pane,
                         [&context, command] { context.run(command, 0); });
        charts->addWidget(b);
    };
    button(QStringLiteral("SKR04 vollständig …"), "loadCompleteAccounts:");
    button(QStringLiteral("SKR04 Standard …"), "loadDefaultAccounts:");
    button(QStringLiteral("Minimal …"), "loadMinimalAccounts:");
    charts->addStretch();
    button(QStringLiteral("Als CSV exportieren …"), "exportAccountsCSV:");
    button(QStringLiteral("Konten exportieren …"), "exportAccounts:");
    button(QStringLiteral("Konten importieren …"), "importAccounts:");
    static_cast<QVBoxLayout*>(pane->layout())->addLayout(charts);
    return pane;
}

ListPane* makeTemplatesPane(PaneContext& context) {
    shell::Session& app = context.app;
    auto* table =
        new ListTable(context, app.selection().templates, "templates", templateColumns(app));
    table->setObjectName(QStringLiteral("templatesTable"));
    QHeaderView* header = table->view()->horizontalHeader();
    for (auto [column, width] : {std::pair{0, 190}, {1, 80}, {2, 130}, {3, 170}, {4, 80}})
        header->resizeSection(column, width);
    table->addButtons("addTemplate:", QStringLiteral("Neue Vorlage"),
                      "removeTemplate:", QStringLiteral("Ausgewählte Vorlage löschen"));
    table->buttonRow()->addSpacing(12);
    table->buttonRow()->addWidget(dragHint());
    table->buttonRow()->addStretch();
    return new ListPane(
        context, table,
        QStringLiteral(
            "Vorlagen sind Muster für wiederkehrende Posten. Lege sie hier an oder mache im "
            "Postenfenster aus einem Posten eine Vorlage. Doppelklicke eine Zelle, um sie zu "
            "ändern."));
}

} // namespace zifora::gui
