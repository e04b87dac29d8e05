#include "mastercolumns.h"
#include "panes.h"

#include "bookkeeping/clientcontroller.h"
#include "shell/session.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

namespace zifora::gui {

namespace {

QString qs(const std::string& s) {
    return QString::fromStdString(s);
}

} // namespace

QLineEdit* ClientFields::field(const char* key) {
    auto* edit = new QLineEdit;
    edit->setObjectName(QString::fromLatin1(key));
    QObject::connect(edit, &QLineEdit::textEdited, edit, [this, key](const QString& text) {
        write(key, core::Value::string(text.toStdString()));
    });
    m_loaders.push_back([this, edit, key] {
        core::Record* client = m_context.app.selection().currentClient();
        edit->setEnabled(client != nullptr);
        QString stored = client ? qs(client->getText(key)) : QString();
        if (edit->text() != stored && !edit->hasFocus()) edit->setText(stored);
    });
    return edit;
}

QComboBox* ClientFields::taxationKind() {
    auto* combo = new QComboBox;
    combo->setObjectName(QStringLiteral("taxationKind"));
    for (const bookkeeping::TaxationKind& kind : bookkeeping::kTaxationKinds)
        combo->addItem(QString::fromUtf8(kind.title), kind.number);
    QObject::connect(combo, &QComboBox::activated, combo, [this, combo](int index) {
        if (index < 0) return;
        write("taxationKind", core::Value::intValue(combo->itemData(index).toInt()));
    });
    m_loaders.push_back([this, combo] {
        core::Record* client = m_context.app.selection().currentClient();
        combo->setEnabled(client != nullptr);
        // A kind this program has no name for shows no entry.
        combo->setCurrentIndex(client ? combo->findData(client->getInt("taxationKind")) : -1);
    });
    return combo;
}

void ClientFields::reload() {
    for (const auto& load : m_loaders)
        load();
}

// The program writes the client and its settings mirror; the panes show it.
void ClientFields::write(const char* key, core::Value value) {
    if (!m_context.app.selection().currentClient()) return;
    m_context.app.fields().set(std::string(bookkeeping::kClientFormPrefix) + key, std::move(value));
    m_context.changed();
}

ClientsPane::ClientsPane(PaneContext& context) : m_context(context), m_fields(context) {
    m_table =
        new ListTable(context, context.app.selection().clients, "clients", clientEditColumns());
    m_table->setObjectName(QStringLiteral("clientsTable"));
    m_table->addButtons("createClient:", QStringLiteral("Neuer Benutzer"),
                        "deleteClient:", QStringLiteral("Ausgewählten Benutzer löschen"));
    m_table->buttonRow()->addStretch();
    m_table->setMinimumWidth(220);
    m_table->setMaximumWidth(300);
    connect(m_table, &ListTable::selectionChangedByUser, this, [this] { m_context.changed(); });

    auto* form = new QGroupBox(QStringLiteral("Angaben des ausgewählten Benutzers"));
    m_form = form;
    auto* formLayout = new QFormLayout(form);
    m_company = m_fields.field("company");
    formLayout->addRow(QStringLiteral("&Name/Firma:"), m_company);
    formLayout->addRow(QStringLiteral("&Steuernummer:"), m_fields.field("taxNumber"));
    formLayout->addRow(QStringLiteral("&ELSTER-Steuernummer:"), m_fields.field("elsterNumber"));
    formLayout->addRow(QStringLiteral("&Versteuerung:"), m_fields.taxationKind());
    formLayout->addRow(QStringLiteral("DATEV-&Beraternummer:"),
                       m_fields.field("datevConsultantNumber"));
    formLayout->addRow(QStringLiteral("DATEV-&Mandantennummer:"),
                       m_fields.field("datevClientNumber"));

    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_table);
    layout->addWidget(form, 1, Qt::AlignTop);
    reload();
}

void ClientsPane::reload() {
    m_table->reload();
    m_fields.reload();
}

void ClientsPane::focusCompany() {
    reload();
    m_company->setFocus(Qt::OtherFocusReason);
    m_company->selectAll();
}

QString ClientsPane::helpText() const {
    return QStringLiteral("Jeder Benutzer hat seine eigenen Jahre, Abrechnungen, Konten, "
                          "Kategorien und Vorlagen. Der "
                          "ausgewählte Benutzer ist der, mit dem du gerade arbeitest; seine "
                          "Angaben erscheinen in Berichten "
                          "und Exporten.");
}

} // namespace zifora::gui
