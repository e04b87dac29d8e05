#include "forms/journalsheets.h"

#include "forms/formbinder.h"
#include "platform_qt/qtservices.h"
#include "shell/session.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

// The formats of the export chooser that this version carries out, by their value.
struct Format {
    const char* label;
    int value;
};
constexpr Format kFormats[] = {{"PDF", 0}, {"Text (RTF)", 1}};

} // namespace

JournalSheet::JournalSheet(shell::Session& app, Kind kind, QWidget* mainWindow)
    : FormSheet(mainWindow), m_app(app), m_kind(kind) {
    m_binder = new FormBinder(app, {}, this);
    build();
    bind();
    setCancel([this] {
        m_binder->run(m_kind == Kind::Print ? "closeTabJournalPrint:" : "cancelTabJournalExport:",
                      0, /*commitFirst=*/false);
    });
}

QWidget* JournalSheet::contentOptions() {
    m_withList = new QCheckBox(QStringLiteral("&Postenliste anhängen"));
    m_withList->setObjectName(QStringLiteral("prefsExportPrintWithList"));
    m_order = new QComboBox;
    m_order->setObjectName(QStringLiteral("prefsTabSortOrder"));
    m_order->addItems(
        {QStringLiteral("nach Datum, neueste zuerst"), QStringLiteral("nach Belegnummer")});
    m_border = new QCheckBox(QStringLiteral("Tabellen mit &Rahmen"));
    m_border->setObjectName(QStringLiteral("prefsPrintBorder"));
    m_currency = new QCheckBox(QStringLiteral("&Währungszeichen zeigen"));
    m_currency->setObjectName(QStringLiteral("prefsPrintCurrency"));

    auto* box = new QGroupBox(QStringLiteral("Inhalt"));
    auto* form = new QFormLayout(box);
    form->addRow(m_withList);
    auto* orderLabel = new QLabel(QStringLiteral("&Sortierung der Posten:"));
    orderLabel->setBuddy(m_order);
    form->addRow(orderLabel, m_order);
    form->addRow(m_border);
    form->addRow(m_currency);
    auto* remake = new QPushButton(QStringLiteral("&Neu erstellen"));
    remake->setObjectName(QStringLiteral("remakeButton"));
    remake->setToolTip(QStringLiteral("Das Journal mit dieser Auswahl neu erstellen"));
    connect(remake, &QPushButton::clicked, this,
            [this] { m_binder->run("generateTabJournalVoid"); });
    form->addRow(remake);

    auto store = [this] {
        core::Settings& s = m_app.settings();
        s.setBool("prefsExportPrintWithList", m_withList->isChecked());
        s.setInteger("prefsTabSortOrder", m_order->currentIndex() == 1 ? 1 : 0);
        s.setBool("prefsPrintBorder", m_border->isChecked());
        s.setBool("prefsPrintCurrency", m_currency->isChecked());
    };
    for (QCheckBox* check : {m_withList, m_border, m_currency})
        connect(check, &QCheckBox::clicked, this, store);
    connect(m_order, &QComboBox::activated, this, store);
    return box;
}

void JournalSheet::build() {
    const bool print = m_kind == Kind::Print;
    setWindowTitle(print ? QStringLiteral("Abrechnung drucken")
                         : QStringLiteral("Abrechnung exportieren"));
    setMinimumWidth(440);
    auto* layout = new QVBoxLayout(this);
    auto* intro = new QLabel(print ? QStringLiteral("Das Journal der Abrechnung mit dem Stand der "
                                                    "Voranmeldung, der Steuer je Satz und auf "
                                                    "Wunsch allen Posten.")
                                   : QStringLiteral("Exportiere das Journal der Abrechnung als "
                                                    "PDF oder als Text für die "
                                                    "Textverarbeitung."));
    intro->setWordWrap(true);
    layout->addWidget(intro);
    if (!print) {
        m_format = new QComboBox;
        m_format->setObjectName(QStringLiteral("prefsSelectedExportTab"));
        // A format of a later version, chosen before, shows as no choice.
        m_format->setPlaceholderText(QStringLiteral("Bitte wählen …"));
        for (const Format& format : kFormats)
            m_format->addItem(QString::fromUtf8(format.label), format.value);
        connect(m_format, &QComboBox::activated, this, [this](int index) {
            m_app.settings().setInteger("prefsSelectedExportTab",
                                        m_format->itemData(index).toInt());
        });
        auto* formatRow = new QFormLayout;
        auto* formatLabel = new QLabel(QStringLiteral("&Format:"));
        formatLabel->setBuddy(m_format);
        formatRow->addRow(formatLabel, m_format);
        layout->addLayout(formatRow);
    }
    layout->addWidget(contentOptions());
    m_state = new QLabel;
    m_state->setObjectName(QStringLiteral("journalState"));
    m_state->setWordWrap(true);
    layout->addWidget(m_state);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    if (print) {
        auto* preview = new QPushButton(QStringLiteral("&Vorschau"));
        preview->setObjectName(QStringLiteral("previewButton"));
        connect(preview, &QPushButton::clicked, this, [this] { m_binder->run("previewJournal:"); });
        auto* printButton = new QPushButton(QStringLiteral("&Drucken …"));
        printButton->setObjectName(QStringLiteral("printButton"));
        connect(printButton, &QPushButton::clicked, this,
                [this] { m_binder->run("printJournal:"); });
        m_main = new QPushButton(QStringLiteral("&Fertig"));
        m_main->setObjectName(QStringLiteral("doneButton"));
        connect(m_main, &QPushButton::clicked, this,
                [this] { m_binder->run("closeTabJournalPrint:"); });
        buttons->addWidget(preview);
        buttons->addWidget(printButton);
    } else {
        auto* cancel = new QPushButton(QStringLiteral("Abbrechen"));
        cancel->setObjectName(QStringLiteral("cancelButton"));
        connect(cancel, &QPushButton::clicked, this,
                [this] { m_binder->run("cancelTabJournalExport:"); });
        m_main = new QPushButton(QStringLiteral("E&xportieren …"));
        m_main->setObjectName(QStringLiteral("exportButton"));
        connect(m_main, &QPushButton::clicked, this,
                [this] { m_binder->run("closeTabJournalExport:"); });
        buttons->addWidget(cancel);
    }
    m_main->setDefault(true);
    buttons->addWidget(m_main);
    layout->addLayout(buttons);
}

void JournalSheet::bind() {
    const std::string activity =
        m_kind == Kind::Print ? "tabJournalPrintActivity" : "tabJournalExportActivity";
    auto showState = [this, activity] {
        const bool running = m_binder->value(activity).toBool();
        const core::Value hidden = m_binder->value("tabJournalPDFViewHidden");
        if (running)
            m_state->setText(QStringLiteral("Das Journal wird erstellt …"));
        else if (!hidden.isAbsent() && !hidden.toBool())
            m_state->setText(QStringLiteral("Das Journal ist fertig."));
        else
            m_state->setText(QStringLiteral("Das Journal ist geschrieben; ein PDF davon gibt es "
                                            "noch nicht."));
    };
    m_binder->onControl(activity, showState);
    m_binder->onControl("tabJournalPDFViewHidden", showState);
    if (m_kind == Kind::Export)
        m_binder->onControl("tabJournalExportButtonEnabled", [this] {
            const core::Value enabled = m_binder->value("tabJournalExportButtonEnabled");
            m_main->setEnabled(enabled.isAbsent() || enabled.toBool());
        });
}

void JournalSheet::loadSettings() {
    const core::Settings& s = m_app.settings();
    m_withList->setChecked(s.getBool("prefsExportPrintWithList"));
    m_order->setCurrentIndex(s.getInteger("prefsTabSortOrder") == 0 ? 0 : 1);
    m_border->setChecked(s.getBool("prefsPrintBorder"));
    m_currency->setChecked(s.getBool("prefsPrintCurrency"));
    if (m_format) {
        const int index =
            m_format->findData(static_cast<int>(s.getInteger("prefsSelectedExportTab")));
        m_format->setCurrentIndex(index);
    }
}

void JournalSheet::showSheet(bool show) {
    if (!show) {
        dismiss();
        return;
    }
    loadSettings();
    m_binder->showAll();
    present();
    if (m_format)
        m_format->setFocus(Qt::TabFocusReason);
    else
        m_main->setFocus(Qt::TabFocusReason);
}

JournalSheets::JournalSheets(shell::Session& app, QWidget* mainWindow) : m_main(mainWindow) {
    m_print = new JournalSheet(app, JournalSheet::Kind::Print, mainWindow);
    m_print->setObjectName(QStringLiteral("tabJournalPrintSheet"));
    m_export = new JournalSheet(app, JournalSheet::Kind::Export, mainWindow);
    m_export->setObjectName(QStringLiteral("tabJournalExportSheet"));
}

void JournalSheets::registerWindows(platform_qt::QtUi& ui) {
    // While a sheet is up, alerts (a PDF that could not be made) belong to it, and the
    // keyboard returns there when they are answered.
    auto showing = [this, &ui](JournalSheet* sheet) {
        return [this, &ui, sheet](bool show) {
            sheet->showSheet(show);
            ui.setParentWindow(show ? static_cast<QWidget*>(sheet) : m_main.data());
        };
    };
    ui.addWindow("tabJournalPrintSheet", showing(m_print));
    ui.addWindow("tabJournalExportSheet", showing(m_export));
}

} // namespace zifora::gui
