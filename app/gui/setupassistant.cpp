#include "setupassistant.h"

#include "preferences/listtable.h"
#include "preferences/mastercolumns.h"

#include "shell/session.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFontMetrics>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

constexpr const char* kStepTitles[] = {"Deine Angaben", "Steuersätze", "Kontenrahmen", "Kategorien",
                                       "Fertig"};

// The built-in charts as the assistant offers them, the recommended one first.
struct ChartChoice {
    const char* label;
    const char* command;
};
constexpr ChartChoice kCharts[] = {
    {"S&tandard nach SKR04 für Freiberufler und kleine Unternehmen (empfohlen)",
     "loadDefaultAccountsSetup:"},
    {"&Vollständiger SKR04 mit allen Konten", "loadCompleteAccountsSetup:"},
    {"&Minimal, nur die wichtigsten Konten", "loadMinimalAccountsSetup:"},
};

QLabel* heading(const QString& text) {
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 1.3);
    font.setBold(true);
    label->setFont(font);
    return label;
}

QLabel* paragraph(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    return label;
}

/// A page: its heading and introduction above the controls.
QWidget* page(const QString& title, const QString& introduction, QLayout* controls) {
    auto* widget = new QWidget;
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(heading(title));
    layout->addWidget(paragraph(introduction));
    layout->addSpacing(6);
    if (controls)
        layout->addLayout(controls, 1);
    else
        layout->addStretch(1);
    return widget;
}

} // namespace

SetupAssistant::SetupAssistant(shell::Session& app, std::function<void()> afterChange,
                               QWidget* mainWindow)
    : FormSheet(mainWindow), m_app(app),
      m_afterChange(std::move(afterChange)), m_context{app,
                                                       [this](const std::string& command, int tag) {
                                                           m_app.run(command,
                                                                     shell::CommandSender{tag});
                                                           m_context.changed();
                                                       },
                                                       [this] {
                                                           reload();
                                                           if (m_afterChange) m_afterChange();
                                                       }},
      m_client(m_context), m_settings(app.settings()) {
    setObjectName(QStringLiteral("assistant"));
    setWindowTitle(QStringLiteral("Zifora einrichten"));
    setCancel([this] { m_context.run("cancelAssi:", 0); });

    auto* steps = new QVBoxLayout;
    int number = 0;
    for (const char* title : kStepTitles) {
        auto* step =
            new QLabel(QStringLiteral("%1. %2").arg(++number).arg(QString::fromUtf8(title)));
        // Wide enough for the step in bold, when it is the one shown.
        QFont bold = step->font();
        bold.setBold(true);
        step->setMinimumWidth(QFontMetrics(bold).horizontalAdvance(step->text()) + 4);
        m_steps.push_back(step);
        steps->addWidget(step);
    }
    steps->addStretch();

    m_pages = new QStackedWidget;
    m_pages->addWidget(buildIdentityPage());
    m_pages->addWidget(buildRatesPage());
    m_pages->addWidget(buildChartPage());
    m_pages->addWidget(buildCategoriesPage());
    m_pages->addWidget(buildDonePage());

    auto* body = new QHBoxLayout;
    body->addLayout(steps);
    body->addSpacing(18);
    body->addWidget(m_pages, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body, 1);
    layout->addWidget(buildButtons());
    resize(760, 540);
    setMinimumSize(720, 520);
    showPage(Identity);
}

QWidget* SetupAssistant::buildIdentityPage() {
    auto* form = new QFormLayout;
    QLineEdit* company = m_client.field("company");
    form->addRow(QStringLiteral("&Name/Firma:"), company);
    form->addRow(QStringLiteral("&Steuernummer:"), m_client.field("taxNumber"));
    form->addRow(QStringLiteral("&ELSTER-Steuernummer:"), m_client.field("elsterNumber"));
    form->addRow(QStringLiteral("&Versteuerung:"), m_client.taxationKind());
    return page(QStringLiteral("Deine Angaben"),
                QStringLiteral("Wer führt hier Buch? Name und Steuernummern erscheinen in deinen "
                               "Berichten, Exporten und Voranmeldungen. Die ELSTER-Steuernummer "
                               "ist die 13-stellige Form deiner Steuernummer."),
                form);
}

QWidget* SetupAssistant::buildRatesPage() {
    auto* grid = new QGridLayout;
    addTaxRateRows(*grid, m_settings);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(4, 1);
    return page(QStringLiteral("Steuersätze"),
                QStringLiteral("Mit diesen Sätzen rechnet Zifora die Umsatzsteuer deiner Posten. "
                               "Sie gelten für alle Benutzer. Sätze gibst du mit Komma ein, zum "
                               "Beispiel 16,5; ein leerer 3. Satz rechnet mit 0 %."),
                grid);
}

QWidget* SetupAssistant::buildChartPage() {
    auto* layout = new QVBoxLayout;
    m_charts = new QButtonGroup(this);
    for (int i = 0; i < static_cast<int>(std::size(kCharts)); ++i) {
        auto* choice = new QRadioButton(QString::fromUtf8(kCharts[i].label));
        choice->setObjectName(QString::fromLatin1(kCharts[i].command));
        m_charts->addButton(choice, i);
        layout->addWidget(choice);
    }
    m_charts->button(0)->setChecked(true);
    auto* load = new QPushButton(QStringLiteral("Kontenrahmen &laden"));
    load->setObjectName(QStringLiteral("loadChart"));
    load->setAutoDefault(false);
    connect(load, &QPushButton::clicked, this, [this] { loadChosenChart(); });
    m_accountCount = new QLabel;
    m_accountCount->setObjectName(QStringLiteral("accountCount"));
    auto* loadRow = new QHBoxLayout;
    loadRow->addWidget(load);
    loadRow->addWidget(m_accountCount, 1);
    layout->addLayout(loadRow);

    m_accounts = new ListTable(m_context, m_app.selection().accounts, "accounts", accountColumns());
    m_accounts->setObjectName(QStringLiteral("assistantAccountsTable"));
    m_accounts->view()->horizontalHeader()->resizeSection(0, 100);
    m_accounts->addButtons("addAccountSetup:", QStringLiteral("Neues Konto"),
                           "removeAccount:", QStringLiteral("Ausgewähltes Konto löschen"));
    m_accounts->buttonRow()->addStretch();
    layout->addWidget(m_accounts, 1);
    return page(QStringLiteral("Kontenrahmen"),
                QStringLiteral("Wähle einen der mitgelieferten Kontenrahmen und lade ihn. Er "
                               "ersetzt die Konten des Benutzers. Danach kannst du einzelne "
                               "Konten anlegen, in der Tabelle ändern und löschen."),
                layout);
}

QWidget* SetupAssistant::buildCategoriesPage() {
    auto* layout = new QVBoxLayout;
    m_groups = new ListTable(m_context, m_app.selection().groups, "groups", groupColumns());
    m_groups->setObjectName(QStringLiteral("assistantGroupsTable"));
    m_groups->addButtons("addGroupSetup:", QStringLiteral("Neue Kategorie"),
                         "removeGroup:", QStringLiteral("Ausgewählte Kategorie löschen"));
    m_groups->buttonRow()->addStretch();
    layout->addWidget(m_groups, 1);
    return page(QStringLiteral("Kategorien"),
                QStringLiteral("Mit Kategorien ordnest du deine Posten nach eigenen "
                               "Gesichtspunkten, zum Beispiel „Büro“, „Reisen“ oder "
                               "„Honorare“. Lege mit + eine an und tippe gleich ihren Namen."),
                layout);
}

QWidget* SetupAssistant::buildDonePage() {
    return page(QStringLiteral("Fertig!"),
                QStringLiteral("Zifora ist bereit. Klicke auf „Fertigstellen“ und lege dann mit "
                               "„Neues Jahr“ dein erstes Jahr an und darin mit „Neue Abrechnung“ "
                               "deinen ersten Abrechnungszeitraum.\n\nAlles, was du hier "
                               "eingegeben hast, kannst du später in den Einstellungen ändern."),
                nullptr);
}

QWidget* SetupAssistant::buildButtons() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto button = [&](const QString& label, const char* name) {
        auto* b = new QPushButton(label);
        b->setObjectName(QString::fromLatin1(name));
        b->setAutoDefault(false);
        layout->addWidget(b);
        return b;
    };
    QPushButton* help = button(QStringLiteral("&Hilfe …"), "openSheetAssi:");
    connect(help, &QPushButton::clicked, this, [this] { m_context.run("openSheetAssi:", 0); });
    layout->addStretch();
    QPushButton* cancel = button(QStringLiteral("Abbrechen"), "cancelAssi:");
    connect(cancel, &QPushButton::clicked, this, [this] { m_context.run("cancelAssi:", 0); });
    m_back = button(QStringLiteral("< &Zurück"), "back");
    connect(m_back, &QPushButton::clicked, this, [this] { showPage(currentPage() - 1); });
    m_next = button(QStringLiteral("&Weiter >"), "next");
    connect(m_next, &QPushButton::clicked, this, [this] { showPage(currentPage() + 1); });
    m_finish = button(QStringLiteral("&Fertigstellen"), "finishAssi:");
    connect(m_finish, &QPushButton::clicked, this, [this] { m_context.run("finishAssi:", 0); });
    return row;
}

void SetupAssistant::showPage(int page) {
    if (page < 0 || page >= PageCount) return;
    m_pages->setCurrentIndex(page);
    for (int i = 0; i < PageCount; ++i) {
        QFont font = m_steps[static_cast<size_t>(i)]->font();
        font.setBold(i == page);
        m_steps[static_cast<size_t>(i)]->setFont(font);
        m_steps[static_cast<size_t>(i)]->setEnabled(i <= page);
    }
    m_back->setEnabled(page > 0);
    m_next->setVisible(page < Done);
    m_finish->setVisible(page == Done);
    // Return goes on to the next page, and on the last one finishes.
    (page == Done ? m_finish : m_next)->setDefault(true);
    (page == Done ? m_next : m_finish)->setDefault(false);
    if (isVisible()) focusFirstControl();
}

void SetupAssistant::focusFirstControl() {
    QWidget* shown = m_pages->currentWidget();
    for (QWidget* w = shown->nextInFocusChain(); w && shown->isAncestorOf(w);
         w = w->nextInFocusChain()) {
        if ((w->focusPolicy() & Qt::TabFocus) && w->isEnabled() && w->isVisibleTo(this)) {
            w->setFocus(Qt::TabFocusReason);
            return;
        }
    }
    (m_next->isVisible() ? m_next : m_finish)->setFocus(Qt::TabFocusReason);
}

int SetupAssistant::currentPage() const {
    return m_pages->currentIndex();
}

void SetupAssistant::showAssistant(bool show) {
    if (!show) {
        dismiss();
        return;
    }
    reload();
    present();
    showPage(Identity);
}

void SetupAssistant::reload() {
    m_client.reload();
    m_settings.reload();
    m_accounts->reload();
    m_groups->reload();
    const size_t count = m_app.selection().accounts.count();
    m_accountCount->setText(count == 1 ? QStringLiteral("Der Benutzer hat ein Konto.")
                                       : QStringLiteral("Der Benutzer hat %1 Konten.").arg(count));
}

void SetupAssistant::loadChosenChart() {
    const int chosen = m_charts->checkedId();
    if (chosen < 0) return;
    m_context.run(kCharts[chosen].command, 0);
}

void SetupAssistant::editNewAccount() {
    showPage(Chart);
    QTimer::singleShot(0, m_accounts, [this] { m_accounts->editSelected(0); });
}

void SetupAssistant::editNewGroup() {
    showPage(Categories);
    QTimer::singleShot(0, m_groups, [this] { m_groups->editSelected(0); });
}

} // namespace zifora::gui
