#include "panes.h"

#include "shell/session.h"
#include "vat/handover.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

QPushButton* runButton(PaneContext& context, const QString& label, const std::string& command) {
    auto* button = new QPushButton(label);
    button->setObjectName(QString::fromStdString(command));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, button,
                     [&context, command] { context.run(command, 0); });
    return button;
}

} // namespace

/// The hand-over of the advance return: the outbox folder of the ELSTER client (never made
/// by Zifora) and the client program started after a hand-over, if any.
QWidget* TaxPane::elsterBox() {
    auto* group = new QGroupBox(QStringLiteral("Übergabe an ein ELSTER-Programm"));
    auto* grid = new QGridLayout(group);
    auto* outbox = new QLineEdit;
    outbox->setObjectName(QStringLiteral("winstonOutboxPath.path"));
    outbox->setReadOnly(true);
    outbox->setPlaceholderText(
        QStringLiteral("Standardordner: %1")
            .arg(QString::fromStdString(vat::defaultOutboxFolder(m_context.app.places()))));
    m_controls.onReload([this, outbox] {
        outbox->setText(
            QString::fromStdString(m_context.app.settings().getString("winstonOutboxPath")));
    });
    auto* outboxLabel = new QLabel(QStringLiteral("A&usgangsordner:"));
    outboxLabel->setBuddy(outbox);
    grid->addWidget(outboxLabel, 0, 0);
    grid->addWidget(outbox, 0, 1);
    grid->addWidget(runButton(m_context, QStringLiteral("Auswählen …"), "chooseWinstonOutbox:"), 0,
                    2);

    QLineEdit* program = m_controls.textField("elsterClientProgram");
    program->setPlaceholderText(QStringLiteral("keines – nach der Übergabe wird nichts gestartet"));
    auto* programLabel = new QLabel(QStringLiteral("ELSTER-&Programm:"));
    programLabel->setBuddy(program);
    grid->addWidget(programLabel, 1, 0);
    grid->addWidget(program, 1, 1);
    grid->addWidget(runButton(m_context, QStringLiteral("Auswählen …"), "chooseElsterClient:"), 1,
                    2);

    auto* links = new QHBoxLayout;
    links->addWidget(
        runButton(m_context, QStringLiteral("Webseite von Winston"), "winstonWebseite:"));
    links->addWidget(
        runButton(m_context, QStringLiteral("Was ist die Steuernummer?"), "elsterNummer:"));
    links->addStretch(1);
    grid->addLayout(links, 2, 1, 1, 2);
    grid->setColumnStretch(1, 1);
    return group;
}

TaxPane::TaxPane(PaneContext& context)
    : m_context(context), m_controls(context.app.settings()), m_fields(context) {
    auto* rates = new QGroupBox(QStringLiteral("Steuersätze"));
    auto* grid = new QGridLayout(rates);
    addTaxRateRows(*grid, m_controls);
    auto* note = new QLabel(
        QStringLiteral("Sätze mit Komma eingeben, zum Beispiel 16,5. Bleibt der 3. Satz leer, "
                       "rechnen Posten dieses Satzes mit 0 %."));
    note->setWordWrap(true);
    note->setEnabled(false);
    grid->addWidget(note, 4, 1, 1, 3);
    grid->setColumnStretch(1, 1);

    auto* datev = new QGroupBox(QStringLiteral("DATEV"));
    auto* form = new QFormLayout(datev);
    auto* client = new QLabel;
    m_datevClient = client;
    form->addRow(QStringLiteral("Benutzer:"), client);
    for (auto [label, key] : {std::pair{"&Beraternummer:", "datevConsultantNumber"},
                              std::pair{"&Mandantennummer:", "datevClientNumber"}}) {
        QLineEdit* number = m_fields.field(key);
        number->setMaximumWidth(200);
        form->addRow(QString::fromUtf8(label), number);
    }
    QLineEdit* account = m_controls.textField("prefsDefaultDATEVAccount");
    account->setMaximumWidth(120);
    form->addRow(QStringLiteral("Standard-&Gegenkonto:"), account);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(rates);
    layout->addWidget(datev);
    layout->addWidget(elsterBox());
    layout->addStretch();
    reload();
}

void TaxPane::reload() {
    m_controls.reload();
    m_fields.reload();
    core::Record* client = m_context.app.selection().currentClient();
    m_datevClient->setText(client ? QString::fromStdString(client->getText("company"))
                                  : QStringLiteral("keiner ausgewählt"));
}

QString TaxPane::helpText() const {
    return QStringLiteral(
        "Die Steuersätze gelten für alle Benutzer. Die DATEV-Nummern gehören zum "
        "ausgewählten Benutzer. "
        "Das Standard-Gegenkonto nimmt der DATEV-Export für jeden Posten ohne "
        "eigenes DATEV-Konto. Die Übergabe der Voranmeldung legt ihre Datei in "
        "den Ausgangsordner deines ELSTER-Programms; Zifora legt diesen Ordner "
        "nicht an. Ist ein ELSTER-Programm eingetragen, startet Zifora es danach.");
}

} // namespace zifora::gui
