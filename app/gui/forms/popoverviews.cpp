#include "forms/popoverviews.h"

#include "forms/formbinder.h"
#include "posting/numberformat.h"
#include "shell/session.h"

#include <QButtonGroup>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QCoreApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <charconv>

namespace zifora::gui {

using core::Value;

namespace {

QPushButton* plainButton(const QString& text, const char* name) {
    auto* button = new QPushButton(text);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    return button;
}

QString colourStyle(const QString& colour) {
    if (colour == QLatin1String("red")) return QStringLiteral("color:#b3261e");
    if (colour == QLatin1String("green")) return QStringLiteral("color:#1b7a2e");
    return {};
}

// The plain decimal text of a float, as a number setting stores it ("12.5").
std::string plainNumberText(float value) {
    char buf[32];
    auto end = std::to_chars(buf, buf + sizeof buf, value).ptr;
    return std::string(buf, end);
}

} // namespace

QString itemHelpText() {
    return QStringLiteral(
        "<b>So legst du einen Posten an</b><ol>"
        "<li>Wähle, ob der Posten eine <b>Ausgabe</b> oder eine <b>Einnahme</b> ist. Erst dann "
        "lässt sich die Summe eingeben.</li>"
        "<li>Gib die Bruttosumme ein, also den Betrag, den du wirklich bezahlt oder erhalten "
        "hast. Der Rechner daneben nimmt einen Anteil davon oder macht aus einem Nettobetrag "
        "die Bruttosumme.</li>"
        "<li>Enthält der Betrag Umsatzsteuer, kreuze <b>Umsatzsteuer</b> an und wähle den "
        "Steuersatz.</li>"
        "<li>Das Datum tippst du als Tag.Monat.Jahr ein, etwa 15.01.2025, 15.1.25 oder nur "
        "15.01. für das Jahr, das schon dasteht. <b>Strg+T</b> setzt es auf heute.</li>"
        "<li>Gib eine Bezeichnung ein: Ohne sie lässt sich der Posten nicht sichern.</li>"
        "<li>Konto und Kategorie sind freiwillig. Die Kontonummer kannst du eintippen und mit "
        "der Eingabetaste prüfen lassen.</li></ol>"
        "<b>OK</b> (Eingabetaste) sichert den Posten, <b>Neu</b> sichert ihn und beginnt gleich "
        "den nächsten. <b>Abbrechen</b> (Esc) verwirft einen neuen Posten; ein bestehender "
        "Posten lässt sich nur von Hand zurück ändern.");
}

// ---------------------------------------------------------------------------------------
// Date

DateView::DateView(FormBinder& binder, QWidget* parent) : PopoverView(parent), m_binder(binder) {
    m_calendar = new QCalendarWidget;
    m_calendar->setObjectName(QStringLiteral("calendar"));
    m_calendar->setFirstDayOfWeek(Qt::Monday);
    m_calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    m_calendar->setMinimumSize(260, 190);
    auto* today = plainButton(QStringLiteral("Heute"), "todayButton");
    today->setToolTip(QStringLiteral("Datum auf heute setzen (Strg+T)"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_calendar, 1);
    layout->addWidget(today, 0, Qt::AlignRight);

    connect(today, &QPushButton::clicked, this, [this] { m_binder.run("setToday:"); });
    connect(m_calendar, &QCalendarWidget::selectionChanged, this, [this] {
        if (m_showing) return;
        m_binder.write("datePicker",
                       dateOnDay(m_binder.value("datePicker"), m_calendar->selectedDate()));
    });
    m_binder.onControl("datePicker", [this] { showDate(); });
}

void DateView::showDate() {
    const Value date = m_binder.value("datePicker");
    if (date.kind() != core::Kind::Date) return;
    const QDate day = toQDateTime(date.asDate()).date();
    if (day == m_calendar->selectedDate()) return;
    m_showing = true;
    m_calendar->setSelectedDate(day);
    m_showing = false;
}

void DateView::load() {
    showDate();
}

QWidget* DateView::entryWidget() {
    return m_calendar;
}

// ---------------------------------------------------------------------------------------
// Split calculator

CalculatorView::CalculatorView(FormBinder& binder, QWidget* parent)
    : PopoverView(parent), m_binder(binder) {
    m_pages = new QTabWidget;
    m_pages->setObjectName(QStringLiteral("calculatorPages"));
    buildSharePage();
    buildTaxPage();
    auto* cancel = plainButton(QStringLiteral("Abbrechen"), "cancelSplitButton");
    m_apply = plainButton(QStringLiteral("Übernehmen"), "splitButton");
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cancel);
    buttons->addWidget(m_apply);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pages, 1);
    layout->addLayout(buttons);

    connect(m_pages, &QTabWidget::currentChanged, this, [this](int page) {
        m_binder.app().settings().setInteger("calculatorHelpIndex", page);
    });
    connect(cancel, &QPushButton::clicked, this,
            [this] { m_binder.run("cancelSplitWindow:", 0, /*commitFirst=*/false); });
    connect(m_apply, &QPushButton::clicked, this, [this] { confirm(); });
    m_binder.onControl("sumFieldCalChelp", [this] { showNetSum(); });
    m_binder.onControl("algebraicFieldCalcHelp", [this] { showColours(); });
    m_binder.onControl("algebraicFieldCalcHelp.textColor", [this] { showColours(); });
    m_binder.onControl("sumFieldCalChelp.textColor", [this] { showColours(); });
}

void CalculatorView::buildSharePage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(new QLabel(QStringLiteral("Welchen Anteil der Summe möchtest du buchen?")));
    auto* group = new QButtonGroup(page);
    const QString labels[] = {QStringLiteral("25 %"), QStringLiteral("50 %"),
                              QStringLiteral("Eigener Anteil:")};
    for (int i = 0; i < 3; ++i) {
        auto* radio = new QRadioButton(labels[i]);
        radio->setObjectName(QStringLiteral("share%1").arg(i));
        group->addButton(radio, i);
        m_shares.push_back(radio);
    }
    m_customShare = new QLineEdit;
    m_customShare->setObjectName(QStringLiteral("customSplitValue"));
    m_customShare->setMaximumWidth(90);
    m_customShare->setAlignment(Qt::AlignRight);
    auto* custom = new QHBoxLayout;
    custom->addWidget(m_shares[2]);
    custom->addWidget(m_customShare);
    custom->addWidget(new QLabel(QStringLiteral("%")));
    custom->addStretch(1);
    layout->addWidget(m_shares[0]);
    layout->addWidget(m_shares[1]);
    layout->addLayout(custom);
    auto* note = new QLabel(QStringLiteral("Der Rest der Summe wird nicht gebucht."));
    note->setEnabled(false);
    layout->addWidget(note);
    layout->addStretch(1);
    m_pages->addTab(page, QStringLiteral("Anteil"));

    connect(group, &QButtonGroup::idClicked, this, [this](int index) {
        m_binder.app().settings().setInteger("selectedSplitIndex", index);
    });
    connect(m_customShare, &QLineEdit::textEdited, this, [this] {
        m_shares[2]->setChecked(true);
        m_binder.app().settings().setInteger("selectedSplitIndex", 2);
        writeShare();
    });
}

void CalculatorView::buildTaxPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(new QLabel(QStringLiteral("Nettobetrag, aus dem die Bruttosumme mit dem "
                                                "gewählten Steuersatz berechnet wird:")));
    m_sign = new QLabel;
    m_sign->setObjectName(QStringLiteral("algebraicFieldCalcHelp"));
    m_sign->setMinimumWidth(14);
    QFont big = m_sign->font();
    big.setBold(true);
    big.setPointSizeF(big.pointSizeF() * 1.3);
    m_sign->setFont(big);
    m_netSum = new QLineEdit;
    m_netSum->setObjectName(QStringLiteral("sumFieldCalChelp"));
    m_netSum->setAlignment(Qt::AlignRight);
    m_netSum->setPlaceholderText(QStringLiteral("0,00"));
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(QStringLiteral("Netto:")));
    row->addWidget(m_sign);
    row->addWidget(m_netSum, 1);
    row->addWidget(new QLabel(QStringLiteral("€")));
    layout->addLayout(row);
    layout->addStretch(1);
    m_pages->addTab(page, QStringLiteral("Steuer"));

    // The program reads the typed text in the locale's notation.
    connect(m_netSum, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_binder.write("sumFieldCalChelp", Value::string(str(text)));
    });
}

// The own share as a plain number text, or as typed if it is not a number.
void CalculatorView::writeShare() {
    const std::string typed = str(m_customShare->text());
    const auto share = posting::parseLocalizedAmount(typed);
    m_binder.app().settings().setString("customSplitValue",
                                        share ? plainNumberText(*share) : typed);
}

void CalculatorView::showNetSum() {
    const Value net = m_binder.value("sumFieldCalChelp");
    const auto typed = posting::parseLocalizedAmount(str(m_netSum->text()));
    if (net.isAbsent()) {
        if (typed) m_netSum->clear();
        return;
    }
    if (net.kind() == core::Kind::String) return; // what the user typed stands
    if (typed && *typed == net.toFloat()) return;
    m_netSum->setText(qs(posting::commaStringFromNumber(net.toFloat())));
}

void CalculatorView::showColours() {
    m_sign->setText(m_binder.text("algebraicFieldCalcHelp"));
    m_sign->setStyleSheet(colourStyle(m_binder.text("algebraicFieldCalcHelp.textColor")));
    m_netSum->setStyleSheet(colourStyle(m_binder.text("sumFieldCalChelp.textColor")));
}

void CalculatorView::load() {
    const core::Settings& settings = m_binder.app().settings();
    const QSignalBlocker quiet(m_pages);
    m_pages->setCurrentIndex(settings.getInteger("calculatorHelpIndex") == 0 ? 0 : 1);
    const int64_t share = settings.getInteger("selectedSplitIndex");
    m_shares[share >= 0 && share <= 2 ? static_cast<size_t>(share) : 0]->setChecked(true);
    const core::Value custom = settings.get("customSplitValue");
    m_customShare->setText(custom.isAbsent()
                               ? QString()
                               : qs(custom.kind() == core::Kind::String
                                        ? custom.text()
                                        : posting::commaStringFromNumber(custom.toDouble())));
    showNetSum();
    showColours();
}

QWidget* CalculatorView::entryWidget() {
    return m_pages->currentIndex() == 0 ? static_cast<QWidget*>(m_shares[0]) : m_netSum;
}

bool CalculatorView::confirm() {
    // A split that went through closes the calculator; the form's sum then shows the new
    // amount, and the form's calculation runs on it as after any change of the sum.
    if (m_binder.run("splitAction:") && !window()->isVisible())
        m_binder.run("calculateItem:", 0, /*commitFirst=*/false);
    return true;
}

// ---------------------------------------------------------------------------------------
// Searches

SearchView::SearchView(FormBinder& binder, Source source, QWidget* parent)
    : PopoverView(parent), m_binder(binder), m_source(source) {
    m_filter = new QLineEdit;
    m_filter->setObjectName(QStringLiteral("searchField"));
    m_filter->setPlaceholderText(QStringLiteral("Suchen …"));
    m_filter->setClearButtonEnabled(true);
    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("searchList"));
    m_list->setMinimumSize(300, 260);
    m_list->setUniformItemSizes(true);
    auto* take = plainButton(QStringLiteral("Übernehmen"), "takeButton");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_filter);
    layout->addWidget(m_list, 1);
    layout->addWidget(take, 0, Qt::AlignRight);

    connect(m_filter, &QLineEdit::textChanged, this, [this] { applyFilter(); });
    connect(m_list, &QListWidget::itemActivated, this, [this] { choose(); });
    connect(take, &QPushButton::clicked, this, [this] { choose(); });
    // The arrow keys move through the list while the search field keeps the keyboard.
    m_filter->installEventFilter(this);
}

shell::ListController& SearchView::controller() {
    shell::Selection& selection = m_binder.app().selection();
    switch (m_source) {
    case Source::Accounts:
        return selection.accounts;
    case Source::Groups:
        return selection.groups;
    case Source::Templates:
        return selection.templates;
    }
    return selection.accounts;
}

QString SearchView::labelOf(const core::Record& record) const {
    switch (m_source) {
    case Source::Accounts: {
        const QString number = qs(record.getText("number"));
        const QString title = qs(record.getText("title"));
        return number.isEmpty() ? title : number + QStringLiteral("  ") + title;
    }
    case Source::Groups:
        return qs(record.getText("title"));
    case Source::Templates: {
        QString title = qs(record.getText("templateTitle"));
        if (title.isEmpty()) title = qs(record.getText("title"));
        const QString account = qs(record.getText("account"));
        return account.isEmpty() ? title : title + QStringLiteral(" – ") + account;
    }
    }
    return {};
}

void SearchView::load() {
    m_records = controller().arranged();
    const QSignalBlocker quiet(m_filter);
    m_filter->clear();
    m_list->clear();
    for (core::Record* record : m_records) {
        QString label = labelOf(*record);
        if (label.trimmed().isEmpty()) label = QStringLiteral("(ohne Titel)");
        m_list->addItem(label);
    }
    applyFilter();
}

void SearchView::applyFilter() {
    const QString wanted = m_filter->text().trimmed();
    QListWidgetItem* first = nullptr;
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem* item = m_list->item(row);
        const bool shown = wanted.isEmpty() || item->text().contains(wanted, Qt::CaseInsensitive);
        item->setHidden(!shown);
        if (shown && !first) first = item;
    }
    if (m_list->currentItem() == nullptr || m_list->currentItem()->isHidden())
        m_list->setCurrentItem(first);
}

void SearchView::choose() {
    QListWidgetItem* item = m_list->currentItem();
    if (!item || item->isHidden()) {
        m_binder.app().services().ui.beep();
        return;
    }
    const int row = m_list->row(item);
    // The list may have changed since the panel opened; only a record still in it is taken.
    const auto& arranged = controller().arranged();
    core::Record* record = m_records[static_cast<size_t>(row)];
    if (std::find(arranged.begin(), arranged.end(), record) == arranged.end()) {
        load();
        return;
    }
    controller().select(record);
    const char* command = "selectAccountSearchSheet:";
    if (m_source == Source::Groups) command = "selectGroupSearchSheet:";
    if (m_source == Source::Templates) command = "selectTemplateSearchSheet:";
    if (m_binder.run(command)) emit chosen();
}

bool SearchView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_filter && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
            key == Qt::Key_PageDown) {
            QCoreApplication::sendEvent(m_list, event);
            return true;
        }
    }
    return PopoverView::eventFilter(watched, event);
}

QWidget* SearchView::entryWidget() {
    return m_filter;
}

bool SearchView::confirm() {
    choose();
    return true;
}

// ---------------------------------------------------------------------------------------
// Settings of new items

ItemSettingsView::ItemSettingsView(FormBinder& binder, QWidget* parent)
    : PopoverView(parent), m_binder(binder) {
    const std::pair<const char*, QString> settings[] = {
        {"prefsAlwaysRememberLastSettings",
         QStringLiteral("Neue Posten mit den Angaben des letzten Postens beginnen")},
        {"prefsRememberDate", QStringLiteral("Neue Posten mit dem letzten Datum beginnen")},
        {"setUmsatzsteuerAutomatically",
         QStringLiteral("Umsatzsteuer bei neuen Posten automatisch ankreuzen")},
        {"setTaxAutomatically", QStringLiteral("Automatisch den ersten Steuersatz wählen")},
        {"prefsAlwaysShowDateDawer", QStringLiteral("Kalender immer mit dem Posten öffnen")},
        {"prefsAlwaysShowItemHelpDawer", QStringLiteral("Hilfe immer mit dem Posten öffnen")},
    };
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    for (const auto& [key, label] : settings) {
        auto* box = new QCheckBox(label);
        box->setObjectName(QString::fromLatin1(key));
        layout->addWidget(box);
        m_boxes.emplace_back(key, box);
        connect(box, &QCheckBox::toggled, this, [this, key = std::string(key)](bool on) {
            m_binder.app().settings().setBool(key, on);
        });
    }
    auto* note = new QLabel(QStringLiteral("Die Angaben des letzten Postens ersetzen die "
                                           "automatische Wahl von Umsatzsteuer und Steuersatz."));
    note->setWordWrap(true);
    note->setEnabled(false);
    layout->addWidget(note);
    layout->addStretch(1);
}

void ItemSettingsView::load() {
    for (auto& [key, box] : m_boxes) {
        const QSignalBlocker quiet(box);
        box->setChecked(m_binder.app().settings().getBool(key));
    }
}

QWidget* ItemSettingsView::entryWidget() {
    return m_boxes.front().second;
}

HelpView::HelpView(const QString& text, QWidget* parent) : PopoverView(parent) {
    auto* label = new QLabel(text);
    label->setObjectName(QStringLiteral("helpText"));
    label->setWordWrap(true);
    label->setTextFormat(Qt::RichText);
    label->setMinimumWidth(320);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addStretch(1);
}

// ---------------------------------------------------------------------------------------
// DATEV data of the item

DatevView::DatevView(FormBinder& binder, QWidget* parent) : PopoverView(parent), m_binder(binder) {
    m_use = new QCheckBox(QStringLiteral("Eigene DATEV-Daten für diesen Posten verwenden"));
    m_use->setObjectName(QStringLiteral("customDatevData"));
    m_account = new QLineEdit;
    m_account->setObjectName(QStringLiteral("customDatevAccount"));
    m_key = new QLineEdit;
    m_key->setObjectName(QStringLiteral("customDatevKey"));
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Gegenkonto:"), m_account);
    form->addRow(QStringLiteral("BU-Schlüssel:"), m_key);
    auto* note = new QLabel(QStringLiteral("Angekreuzt ersetzen Gegenkonto und BU-Schlüssel im "
                                           "DATEV-Export die berechneten Werte."));
    note->setWordWrap(true);
    note->setEnabled(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_use);
    layout->addLayout(form);
    layout->addWidget(note);
    layout->addStretch(1);

    // The item form binds the three controls to the item's keys.
    connect(m_use, &QCheckBox::toggled, this,
            [this](bool on) { m_binder.write("customDatevCheckBox", Value::boolean(on)); });
    connect(m_account, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_binder.write("customDatevAccountField", Value::string(str(text)));
    });
    connect(m_key, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_binder.write("customDatevKeyField", Value::string(str(text)));
    });
}

void DatevView::load() {
    setEnabled(m_binder.app().selection().currentItem() != nullptr);
    const QSignalBlocker quietUse(m_use);
    m_use->setChecked(m_binder.value("customDatevCheckBox").toBool());
    const QString account = m_binder.text("customDatevAccountField");
    const QString key = m_binder.text("customDatevKeyField");
    if (m_account->text() != account) m_account->setText(account);
    if (m_key->text() != key) m_key->setText(key);
}

QWidget* DatevView::entryWidget() {
    return m_use;
}

} // namespace zifora::gui
