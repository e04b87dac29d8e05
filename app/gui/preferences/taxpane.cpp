#include "panes.h"

#include "shell/session.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace zifora::gui {

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
    return QStringLiteral("Die Steuersätze gelten für alle Benutzer. Die DATEV-Nummern gehören zum "
                          "ausgewählten Benutzer. "
                          "Das Standard-Gegenkonto nimmt der DATEV-Export für jeden Posten ohne "
                          "eigenes DATEV-Konto.");
}

} // namespace zifora::gui
