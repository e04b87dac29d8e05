#include "panes.h"

#include "shell/session.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

QGroupBox* box(const QString& title, std::initializer_list<QWidget*> widgets) {
    auto* group = new QGroupBox(title);
    auto* layout = new QVBoxLayout(group);
    for (QWidget* w : widgets)
        layout->addWidget(w);
    layout->addStretch();
    return group;
}

} // namespace

GeneralPane::GeneralPane(PaneContext& context) : m_controls(context.app.settings()) {
    SettingControls& c = m_controls;
    QGroupBox* items = box(
        QStringLiteral("Neue Posten"),
        {c.checkBox("prefsAlwaysRememberLastSettings",
                    QStringLiteral("Einstellungen des letzten Postens übernehmen")),
         c.checkBox("prefsRememberDate", QStringLiteral("Datum des letzten Postens übernehmen")),
         c.checkBox("setUmsatzsteuerAutomatically",
                    QStringLiteral("Umsatzsteuer automatisch ankreuzen")),
         c.checkBox("setTaxAutomatically", QStringLiteral("Regelsteuersatz automatisch wählen"))});

    auto* currency = new QGroupBox(QStringLiteral("Währung"));
    auto* currencyLayout = new QFormLayout(currency);
    QComboBox* sign = c.comboBox("prefsCurrency",
                                 {QStringLiteral("€"), QStringLiteral("$"), QStringLiteral("£"),
                                  QStringLiteral("¥"), QStringLiteral("¤"), QStringLiteral("Fr.")});
    currencyLayout->addRow(QStringLiteral("&Währungszeichen:"), sign);
    currencyLayout->addRow(
        c.checkBox("prefsPrintCurrency", QStringLiteral("Währungszeichen in Berichten zeigen")));

    auto* printing = new QGroupBox(QStringLiteral("Drucken und Berichte"));
    auto* printLayout = new QVBoxLayout(printing);
    for (QWidget* w :
         {c.checkBox("prefsPrintBorder", QStringLiteral("Tabellen mit Rahmen drucken")),
          c.checkBox("prefsPrintUnshortened", QStringLiteral("Lange Texte nicht kürzen")),
          c.checkBox("prefsExportPrintWithList",
                     QStringLiteral("Abrechnung mit Liste der Posten drucken")),
          c.checkBox("prefsPrintCustomReportsWithItems",
                     QStringLiteral("Eigene Berichte mit Liste der Posten drucken")),
          c.checkBox("showUnpaidOption", QStringLiteral("Offene Posten in Berichten ausweisen")),
          c.checkBox("loadInPreview.app",
                     QStringLiteral("Fertige Berichte im PDF-Betrachter öffnen"))})
        printLayout->addWidget(w);
    auto* order = new QFormLayout;
    order->addRow(QStringLiteral("&Reihenfolge im Ausdruck:"),
                  c.comboBox("prefsTabSortOrder", {QStringLiteral("nach Datum, neueste zuerst"),
                                                   QStringLiteral("nach Belegnummer")}));
    printLayout->addLayout(order);

    QGroupBox* help =
        box(QStringLiteral("Hilfe und Begrüßung"),
            {c.checkBox("prefsAlwaysShowItemHelpDawer",
                        QStringLiteral("Hilfe im Postenfenster immer zeigen")),
             c.checkBox("prefsAlwaysShowDateDawer",
                        QStringLiteral("Kalender im Postenfenster immer zeigen")),
             c.checkBox("prefsAlwaysShowTabHelpDawer",
                        QStringLiteral("Hilfe bei Abrechnungen immer zeigen")),
             c.checkBox("prefsAlwaysShowYearHelpDawer",
                        QStringLiteral("Hilfe bei Jahren immer zeigen")),
             c.checkBox("prefsAlwaysShowVoranmeldungHelpDawer",
                        QStringLiteral("Hilfe bei der Voranmeldung immer zeigen")),
             c.checkBox("prefsAlwaysShowJournalHelpDawer",
                        QStringLiteral("Hilfe bei den Berichten immer zeigen")),
             c.checkBox("prefsAlwaysShowReportsHelp",
                        QStringLiteral("Hilfe bei eigenen Berichten immer zeigen")),
             c.checkBox("prefsAlwaysShowPrefsHelpDawer",
                        QStringLiteral("Hilfe in den Einstellungen immer zeigen")),
             // The welcome sheet shows while the key is false: the box shows the opposite.
             c.checkBox("prefsAlwaysShowWelcomeSheet",
                        QStringLiteral("Begrüßung beim Start zeigen"), /*inverted=*/true)});

    auto* grid = new QGridLayout(this);
    grid->addWidget(items, 0, 0);
    grid->addWidget(currency, 1, 0);
    grid->addWidget(printing, 2, 0);
    grid->addWidget(help, 0, 1, 3, 1);
    grid->setRowStretch(3, 1);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    reload();
}

QString GeneralPane::helpText() const {
    return QStringLiteral("Hier legst du fest, wie neue Posten vorbelegt werden, welches "
                          "Währungszeichen deine Berichte "
                          "tragen, wie gedruckt wird und welche Hilfen Zifora von selbst öffnet. "
                          "Jede Änderung gilt sofort.");
}

} // namespace zifora::gui
