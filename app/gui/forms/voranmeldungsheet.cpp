#include "forms/voranmeldungsheet.h"

#include "core/record.h"
#include "core/settings.h"
#include "forms/formbinder.h"
#include "posting/numberformat.h"
#include "shell/session.h"
#include "vat/handover.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

const QString kHelpText = QStringLiteral(
    "Die Zahlen stammen aus den Posten der gewählten Abrechnung und werden bei jedem Öffnen "
    "neu berechnet. Unter „Zahlungen“ trägst du ein, was du gezahlt hast oder erstattet "
    "bekommst; der Saldo folgt. Mit „Zur Voranmeldung genutzt“ markierst du die Abrechnung: "
    "Zifora übernimmt auf Wunsch die berechneten Zahlen. „An ELSTER übergeben“ legt die Zahlen "
    "in die Zwischenablage und die Datei in den Ausgangsordner deines ELSTER-Programms.");

} // namespace

VoranmeldungSheet::VoranmeldungSheet(shell::Session& app, std::function<void()> afterChange,
                                     QWidget* mainWindow)
    : FormSheet(mainWindow) {
    setObjectName(QStringLiteral("voranmeldungWindow"));
    setWindowTitle(QStringLiteral("Umsatzsteuer-Voranmeldung"));
    m_binder = new FormBinder(app, std::move(afterChange), this);

    m_tabs = new QTabWidget;
    m_tabs->addTab(figuresPage(), QStringLiteral("&Voranmeldung"));
    m_tabs->addTab(paymentsPage(), QStringLiteral("&Zahlungen"));
    m_tabs->addTab(markPage(), QStringLiteral("&Markierung"));
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) {
        m_binder->app().settings().setInteger("selectedVoranmeldungTabIndex", index);
    });

    m_help = new QLabel(kHelpText);
    m_help->setObjectName(QStringLiteral("helpPanel"));
    m_help->setWordWrap(true);
    m_help->setFrameShape(QFrame::StyledPanel);
    m_help->setMargin(8);
    m_help->setVisible(false);

    m_helpButton = new QToolButton;
    m_helpButton->setText(QStringLiteral("?"));
    m_helpButton->setToolTip(QStringLiteral("Hilfe ein- und ausblenden"));
    m_helpButton->setCheckable(true);
    connect(m_helpButton, &QToolButton::toggled, this, [this](bool on) {
        m_help->setVisible(on);
        fitContents();
    });
    m_openItems = new QPushButton(QStringLiteral("&Offene Posten"));
    connect(m_openItems, &QPushButton::clicked, this, [this] { showOpenItems(); });
    auto* options = new QPushButton(QStringLiteral("Ein&stellungen …"));
    connect(options, &QPushButton::clicked, this, [this, options] { showOptions(options); });
    auto* elster = new QPushButton(QStringLiteral("An &ELSTER übergeben"));
    connect(elster, &QPushButton::clicked, this, [this] { m_binder->run("doTheWinston:"); });
    auto* print = new QPushButton(QStringLiteral("&Drucken …"));
    connect(print, &QPushButton::clicked, this, [this] { m_binder->run("printAbrechnung:"); });
    auto* close = new QPushButton(QStringLiteral("Schl&ießen"));
    connect(close, &QPushButton::clicked, this,
            [this] { m_binder->run("closeVoranmeldungsWindow:"); });

    // Return ends the typing of a payment; it never presses a button of the window.
    for (QPushButton* button : {m_openItems, options, elster, print, close})
        button->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_helpButton);
    buttons->addWidget(m_openItems);
    buttons->addWidget(options);
    buttons->addStretch(1);
    buttons->addWidget(elster);
    buttons->addWidget(print);
    buttons->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(m_help);
    layout->addLayout(buttons);
    setCancel([this] { m_binder->run("closeVoranmeldungsWindow:", 0, false); });
    bind();
}

QLineEdit* VoranmeldungSheet::figure(const std::string& control) {
    auto* edit = new QLineEdit;
    edit->setObjectName(QString::fromStdString(control));
    edit->setReadOnly(true);
    edit->setAlignment(Qt::AlignRight);
    edit->setMinimumWidth(140);
    m_figures[control] = edit;
    return edit;
}

QLineEdit* VoranmeldungSheet::payment(const std::string& control) {
    auto* edit = new QLineEdit;
    edit->setObjectName(QString::fromStdString(control));
    edit->setAlignment(Qt::AlignRight);
    m_payments[control] = edit;
    // A typed sum goes to the period when editing ends, and the balance follows.
    connect(edit, &QLineEdit::editingFinished, this, [this, edit, control] {
        if (!edit->isModified()) return;
        edit->setModified(false);
        m_binder->edit(control, core::Value::string(str(edit->text())), "calculateTab:");
    });
    return edit;
}

QWidget* VoranmeldungSheet::figuresPage() {
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    auto row = [&](const QString& label, const std::string& control) {
        auto* edit = figure(control);
        auto* caption = new QLabel(label);
        caption->setBuddy(edit);
        form->addRow(caption, edit);
    };
    row(QStringLiteral("Kz 81 – Umsätze zum 1. Steuersatz, netto:"), "tax1SumField");
    row(QStringLiteral("Steuer darauf:"), "tax1AmountField");
    row(QStringLiteral("Kz 86 – Umsätze zum 2. Steuersatz, netto:"), "tax2SumField");
    row(QStringLiteral("Steuer darauf:"), "tax2AmountField");
    row(QStringLiteral("Kz 35 – Umsätze zum 3. Steuersatz, netto:"), "tax3SumField");
    row(QStringLiteral("Steuer darauf:"), "tax3AmountField");
    row(QStringLiteral("Kz 48 – Steuerfreie Umsätze:"), "steuerfreieUmsaetzeField");
    row(QStringLiteral("Kz 45 – Nicht steuerbare Umsätze:"), "nichtSteuerbarField");
    row(QStringLiteral("Abziehbare Beträge, brutto:"), "abziehbareBetraegeField");
    row(QStringLiteral("Kz 66 – Abziehbare Vorsteuer:"), "abziehbareBetraegeSteuerAmountField");
    row(QStringLiteral("Kz 83 – Saldo:"), "saldoField");
    return page;
}

QWidget* VoranmeldungSheet::paymentsPage() {
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    auto row = [&](const QString& label, QLineEdit* edit) {
        auto* caption = new QLabel(label);
        caption->setBuddy(edit);
        form->addRow(caption, edit);
    };
    row(QStringLiteral("Za&hlung:"), payment("tabPaymentField"));
    row(QStringLiteral("&Nachzahlung:"), payment("tabAdditionalPayField"));
    row(QStringLiteral("E&rstattung:"), payment("tabRepaymentField"));
    row(QStringLiteral("Saldo:"), figure("tabBalanceField"));
    return page;
}

QWidget* VoranmeldungSheet::markPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    m_mark = new QCheckBox(QStringLiteral("Zur Voranmeldung &genutzt"));
    m_mark->setObjectName(QStringLiteral("voranmeldungMarkCheckBox"));
    // Ticking marks the period and asks which figures to take; unticking only unmarks it.
    connect(m_mark, &QCheckBox::clicked, this, [this](bool on) {
        m_binder->edit("voranmeldungMarkCheckBox", core::Value::boolean(on),
                       on ? "meldungBuchen:" : "");
    });
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Zahlung:"), figure("zahlungFieldBuchung"));
    form->addRow(QStringLiteral("Erstattung:"), figure("erstattungFieldBuchung"));
    form->addRow(QStringLiteral("Saldo:"), figure("saldoFieldBuchung"));
    m_comment = new CommentEdit;
    m_comment->setObjectName(QStringLiteral("voranmeldungCommentField"));
    m_comment->setPlaceholderText(
        QStringLiteral("Kommentar (Umschalt+Eingabe für eine neue Zeile)"));
    connect(m_comment, &CommentEdit::edited, this,
            [this](const QString& text) { m_binder->writeText("voranmeldungCommentField", text); });
    auto* commentLabel = new QLabel(QStringLiteral("&Kommentar:"));
    commentLabel->setBuddy(m_comment);
    layout->addWidget(m_mark);
    layout->addLayout(form);
    layout->addWidget(commentLabel);
    layout->addWidget(m_comment, 1);
    return page;
}

void VoranmeldungSheet::bind() {
    for (auto& [control, edit] : m_figures) {
        QLineEdit* shown = edit;
        const std::string name = control;
        m_binder->onControl(name, [this, shown, name] {
            shown->setText(qs(vat::figureFieldText(m_binder->value(name))));
        });
    }
    for (auto& [control, edit] : m_payments) {
        QLineEdit* shown = edit;
        const std::string name = control;
        m_binder->onControl(name, [this, shown, name] {
            if (!shown->isModified())
                shown->setText(qs(vat::figureFieldText(m_binder->value(name))));
        });
    }
    m_binder->onControl("voranmeldungMarkCheckBox", [this] {
        m_mark->setChecked(m_binder->value("voranmeldungMarkCheckBox").toBool());
    });
    m_binder->onControl("voranmeldungCommentField", [this] {
        m_comment->showText(m_binder->text("voranmeldungCommentField"));
    });
    m_binder->onControl("openItemsButtonImage", [this] {
        const bool open = m_binder->text("openItemsButtonImage") == QStringLiteral("openPopover");
        m_openItems->setToolTip(open ? QStringLiteral("Die Abrechnung enthält offene Posten")
                                     : QStringLiteral("Keine offenen Posten"));
    });
    m_binder->onControl("openColor", [this] {
        m_openItems->setStyleSheet(QStringLiteral("color: %1").arg(m_binder->text("openColor")));
    });
}

QFrame* VoranmeldungSheet::popup(QWidget* anchor) {
    auto* panel = new QFrame(this, Qt::Popup);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setFrameShape(QFrame::StyledPanel);
    panel->move(anchor->mapToGlobal(QPoint(0, anchor->height())));
    return panel;
}

// The panel of the open items (view 99): their sums with and without tax.
void VoranmeldungSheet::showOpenItems() {
    if (!m_binder->run("showMultiPopOver:", 99)) return;
    QFrame* panel = popup(m_openItems);
    auto* form = new QFormLayout(panel);
    form->addRow(new QLabel(QStringLiteral("<b>Offene Posten</b>")));
    form->addRow(QStringLiteral("mit Steuern:"), new QLabel(m_binder->text("openItemsWithField")));
    form->addRow(QStringLiteral("ohne Steuern:"),
                 new QLabel(m_binder->text("openItemsWithoutField")));
    panel->show();
}

// The panel of the settings (view 8): what the figures and the sheet show. Each change
// computes the figures and the sheet again.
void VoranmeldungSheet::showOptions(QWidget* anchor) {
    if (!m_binder->run("showMultiPopOver:", 8)) return;
    QFrame* panel = popup(anchor);
    auto* layout = new QVBoxLayout(panel);
    core::Settings& settings = m_binder->app().settings();
    const std::pair<const char*, QString> options[] = {
        {"showUnpaidOption", QStringLiteral("&Offene Posten auf dem Blatt zeigen")},
        {"prefsExportPrintWithList", QStringLiteral("&Liste der Posten drucken")},
        {"prefsPrintBorder", QStringLiteral("Tabellen mit &Rahmen")},
        {"prefsPrintCurrency", QStringLiteral("&Währung zu den Beträgen")},
        {"prefsPrintUnshortened", QStringLiteral("Lange Texte &ungekürzt")},
    };
    for (const auto& [key, label] : options) {
        auto* box = new QCheckBox(label);
        box->setChecked(settings.getBool(key));
        const std::string name = key;
        connect(box, &QCheckBox::toggled, this, [this, name](bool on) {
            m_binder->app().settings().setBool(name, on);
            m_binder->run("changeAlLCalculates:");
        });
        layout->addWidget(box);
    }
    panel->show();
    panel->findChild<QCheckBox*>()->setFocus(Qt::PopupFocusReason);
}

void VoranmeldungSheet::showForm(bool show) {
    if (!show) {
        dismiss();
        m_binder->refreshSoon();
        return;
    }
    m_binder->showAll();
    shell::Selection& selection = m_binder->app().selection();
    QString title = QStringLiteral("Umsatzsteuer-Voranmeldung");
    if (const core::Record* period = selection.currentPeriod()) {
        title += QStringLiteral(" – ") + qs(period->getText("title"));
        if (const core::Record* year = selection.currentYear())
            title += QStringLiteral(" ") + qs(year->getText("dateValue"));
    }
    setWindowTitle(title);
    m_tabs->setCurrentIndex(
        static_cast<int>(m_binder->app().settings().getInteger("selectedVoranmeldungTabIndex")));
    present();
    m_tabs->setFocus(Qt::TabFocusReason);
}

void VoranmeldungSheet::showHelp(bool show) {
    m_helpButton->setChecked(show);
}

} // namespace zifora::gui
