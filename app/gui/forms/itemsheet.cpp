#include "forms/itemsheet.h"

#include "bookkeeping/taxrates.h"
#include "forms/datefield.h"
#include "forms/formbinder.h"
#include "forms/multipopover.h"
#include "forms/popoverviews.h"
#include "forms/segmentedchoice.h"
#include "posting/amountentry.h"
#include "posting/numberformat.h"
#include "shell/session.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>

namespace zifora::gui {

using core::Value;

namespace {

constexpr int kExpense = 1;
constexpr int kIncome = 2;

QPushButton* formButton(const QString& text, const char* name) {
    auto* button = new QPushButton(text);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false); // Return belongs to OK wherever the focus is
    return button;
}

QToolButton* panelButton(const QString& text, const char* name, const QString& toolTip) {
    auto* button = new QToolButton;
    button->setObjectName(QString::fromLatin1(name));
    button->setText(text);
    button->setToolTip(toolTip);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QString currencySign(int64_t index) {
    static const char* const signs[] = {"€", "$", "£", "¥", "¤", "Fr."};
    return index >= 0 && index < 6 ? QString::fromUtf8(signs[index]) : QStringLiteral("€");
}

QString signColour(const QString& sign) {
    if (sign == QLatin1String("-")) return QStringLiteral("color:#b3261e");
    if (sign == QLatin1String("+")) return QStringLiteral("color:#1b7a2e");
    return {};
}

void showLineText(QLineEdit& edit, const QString& text) {
    if (edit.text() != text) edit.setText(text);
}

} // namespace

ItemSheet::ItemSheet(shell::Session& app, std::function<void()> afterChange, QWidget* mainWindow)
    : FormSheet(mainWindow), m_app(app) {
    setObjectName(QStringLiteral("itemWindow"));
    m_binder = new FormBinder(app, afterChange, this);
    m_popover = new MultiPopover(app, afterChange, this);
    build();
    bindControls();
    connectEdits();
    connectButtons();
    // Escape: the cancel of a new item; where there is none, the command only beeps.
    setCancel([this] { m_binder->run("cancelItemSheet:", 0, /*commitFirst=*/false); });
}

// ---------------------------------------------------------------------------------------
// Layout, in reading order

void ItemSheet::build() {
    setWindowTitle(QStringLiteral("Posten"));

    m_kind = new SegmentedChoice({{QStringLiteral("Ausgabe"), kExpense, "expenseButton"},
                                  {QStringLiteral("Einnahme"), kIncome, "incomeButton"}});
    m_kind->setObjectName(QStringLiteral("kindChoice"));
    m_date = new DateField;
    m_date->setObjectName(QStringLiteral("datePicker"));
    m_dateButton =
        panelButton(QStringLiteral("Kalender"), "dateButton", QStringLiteral("Kalender öffnen"));

    m_sign = new QLabel;
    m_sign->setObjectName(QStringLiteral("algebraicField"));
    m_sign->setMinimumWidth(16);
    m_sign->setAlignment(Qt::AlignCenter);
    QFont big = m_sign->font();
    big.setBold(true);
    big.setPointSizeF(big.pointSizeF() * 1.4);
    m_sign->setFont(big);
    m_sum = new QLineEdit;
    m_sum->setObjectName(QStringLiteral("sumField"));
    m_sum->setAlignment(Qt::AlignRight);
    m_sum->setPlaceholderText(QStringLiteral("0,00"));
    m_sum->setFixedWidth(160);
    QFont sumFont = m_sum->font();
    sumFont.setBold(true);
    m_sum->setFont(sumFont);
    m_currency = new QLabel;
    m_currency->setMinimumWidth(24);
    m_calculatorButton = panelButton(QStringLiteral("Rechner"), "calculatorButton",
                                     QStringLiteral("Summe aufteilen oder aus Netto berechnen"));

    m_taxBox = new QCheckBox(QStringLiteral("Umsatzsteuer"));
    m_taxBox->setObjectName(QStringLiteral("taxCheckBox"));
    m_tax = new SegmentedChoice({{QString(), 1, "taxSegment1"},
                                 {QString(), 2, "taxSegment2"},
                                 {QString(), 3, "taxSegment3"},
                                 {QStringLiteral("Steuerfreie Umsätze"), 4, "taxSegment4"},
                                 {QStringLiteral("Nicht steuerbare Umsätze"), 5, "taxSegment5"}});
    m_tax->setObjectName(QStringLiteral("taxSegControl"));

    m_title = new QLineEdit;
    m_title->setObjectName(QStringLiteral("titleField"));
    m_title->setMinimumWidth(360);
    m_number = new QLineEdit;
    m_number->setObjectName(QStringLiteral("numberField"));
    m_number->setMaximumWidth(180);
    m_unpaid = new QCheckBox(QStringLiteral("Offener Posten"));
    m_unpaid->setObjectName(QStringLiteral("unpaidCheckBox"));
    m_unpaid->setToolTip(QStringLiteral("Der Posten ist noch nicht bezahlt"));

    m_accountNumber = new QLineEdit;
    m_accountNumber->setObjectName(QStringLiteral("accountField"));
    m_accountNumber->setPlaceholderText(QStringLiteral("Nummer"));
    m_accountNumber->setFixedWidth(90);
    m_accountNumber->installEventFilter(this);
    m_account = new QComboBox;
    m_account->setObjectName(QStringLiteral("accountPopUp"));
    m_account->setPlaceholderText(QStringLiteral("Kein Konto"));
    m_account->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_account->setMinimumContentsLength(24);
    m_account->setMaxVisibleItems(20);
    m_accountSearch = panelButton(QStringLiteral("Suchen …"), "accountSearchButton",
                                  QStringLiteral("Konto suchen"));
    m_group = new QComboBox;
    m_group->setObjectName(QStringLiteral("groupPopUp"));
    m_group->setPlaceholderText(QStringLiteral("Keine Kategorie"));
    m_group->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_group->setMinimumContentsLength(24);
    m_group->setMaxVisibleItems(20);
    m_groupSearch = panelButton(QStringLiteral("Suchen …"), "groupSearchButton",
                                QStringLiteral("Kategorie suchen"));
    m_comment = new CommentEdit;
    m_comment->setObjectName(QStringLiteral("commentField"));
    m_comment->setMaximumHeight(80);

    auto* grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    int row = 0;
    auto* firstRow = new QHBoxLayout;
    firstRow->addWidget(m_kind);
    firstRow->addStretch(1);
    firstRow->addWidget(new QLabel(QStringLiteral("Datum:")));
    firstRow->addWidget(m_date);
    firstRow->addWidget(m_dateButton);
    grid->addWidget(new QLabel(QStringLiteral("Art:")), row, 0);
    grid->addLayout(firstRow, row++, 1);
    auto* sumRow = new QHBoxLayout;
    sumRow->addWidget(m_sign);
    sumRow->addWidget(m_sum);
    sumRow->addWidget(m_currency);
    sumRow->addWidget(m_calculatorButton);
    sumRow->addStretch(1);
    grid->addWidget(new QLabel(QStringLiteral("Summe:")), row, 0);
    grid->addLayout(sumRow, row++, 1);
    grid->addWidget(new QLabel(QStringLiteral("Steuer:")), row, 0);
    grid->addWidget(m_taxBox, row++, 1);
    grid->addWidget(m_tax, row++, 1);
    grid->addWidget(new QLabel(QStringLiteral("Bezeichnung:")), row, 0);
    grid->addWidget(m_title, row++, 1);
    auto* numberRow = new QHBoxLayout;
    numberRow->addWidget(m_number);
    numberRow->addStretch(1);
    numberRow->addWidget(m_unpaid);
    grid->addWidget(new QLabel(QStringLiteral("Nummer:")), row, 0);
    grid->addLayout(numberRow, row++, 1);
    auto* accountRow = new QHBoxLayout;
    accountRow->addWidget(m_accountNumber);
    accountRow->addWidget(m_account, 1);
    accountRow->addWidget(m_accountSearch);
    grid->addWidget(new QLabel(QStringLiteral("Konto:")), row, 0);
    grid->addLayout(accountRow, row++, 1);
    auto* groupRow = new QHBoxLayout;
    groupRow->addWidget(m_group, 1);
    groupRow->addWidget(m_groupSearch);
    grid->addWidget(new QLabel(QStringLiteral("Kategorie:")), row, 0);
    grid->addLayout(groupRow, row++, 1);
    grid->addWidget(new QLabel(QStringLiteral("Kommentar:")), row, 0, Qt::AlignTop);
    grid->addWidget(m_comment, row++, 1);

    m_templateButton = formButton(QStringLiteral("Vorlage …"), "templateButton");
    m_settingsButton = formButton(QStringLiteral("Einstellungen …"), "itemSettingsButton");
    m_datevButton = formButton(QStringLiteral("DATEV …"), "datevButton");
    m_helpButton = formButton(QStringLiteral("?"), "helpButton");
    m_helpButton->setToolTip(QStringLiteral("Hilfe"));
    m_helpButton->setMaximumWidth(36);
    m_previous = formButton(QStringLiteral("◀ Vorheriger"), "previousButton");
    m_previous->setShortcut(QKeySequence(QStringLiteral("Ctrl+Up")));
    m_next = formButton(QStringLiteral("Nächster ▶"), "nextButton");
    m_next->setShortcut(QKeySequence(QStringLiteral("Ctrl+Down")));
    m_cancel = formButton(QStringLiteral("Abbrechen"), "cancelButton");
    m_new = formButton(QStringLiteral("Neu"), "newButton");
    m_new->setShortcut(QKeySequence(QStringLiteral("Ctrl+N")));
    m_new->setToolTip(QStringLiteral("Posten sichern und gleich den nächsten anlegen (Strg+N)"));
    m_ok = formButton(QStringLiteral("OK"), "okButton");
    m_ok->setDefault(true);

    auto* tools = new QHBoxLayout;
    for (QWidget* w :
         {static_cast<QWidget*>(m_templateButton), static_cast<QWidget*>(m_settingsButton),
          static_cast<QWidget*>(m_datevButton), static_cast<QWidget*>(m_helpButton)})
        tools->addWidget(w);
    tools->addStretch(1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_previous);
    buttons->addWidget(m_next);
    buttons->addStretch(1);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_new);
    buttons->addWidget(m_ok);

    auto* form = new QVBoxLayout;
    form->addLayout(grid);
    form->addStretch(1);
    form->addLayout(tools);
    form->addLayout(buttons);

    auto* layout = new QHBoxLayout(this);
    layout->addLayout(form, 1);
    layout->addWidget(buildDrawer());
    setTabChain();
}

// The panels beside the form: a calendar and the help, each shown when the program asks.
QWidget* ItemSheet::buildDrawer() {
    m_drawer = new QWidget;
    m_drawer->setObjectName(QStringLiteral("itemDrawer"));
    m_drawer->setFixedWidth(300);
    auto* layout = new QVBoxLayout(m_drawer);
    layout->setContentsMargins(0, 0, 0, 0);

    m_dateDrawer = new QGroupBox(QStringLiteral("Datum"));
    m_dateDrawer->setObjectName(QStringLiteral("itemDatePanel"));
    auto* dateLayout = new QVBoxLayout(m_dateDrawer);
    dateLayout->addWidget(new DateView(*m_binder));

    m_helpDrawer = new QGroupBox(QStringLiteral("Hilfe"));
    m_helpDrawer->setObjectName(QStringLiteral("itemHelpPanel"));
    auto* help = new QLabel(itemHelpText());
    help->setWordWrap(true);
    help->setTextFormat(Qt::RichText);
    help->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    auto* helpLayout = new QVBoxLayout(m_helpDrawer);
    helpLayout->addWidget(help, 1);
    auto* closeHelp = new QToolButton;
    closeHelp->setText(QStringLiteral("Hilfe ausblenden"));
    closeHelp->setObjectName(QStringLiteral("closeHelpPanel"));
    helpLayout->addWidget(closeHelp, 0, Qt::AlignRight);
    connect(closeHelp, &QToolButton::clicked, this, [this] { showHelpPanel(false); });

    layout->addWidget(m_dateDrawer);
    layout->addWidget(m_helpDrawer, 1);
    m_dateDrawer->hide();
    m_helpDrawer->hide();
    m_drawer->hide();
    return m_drawer;
}

void ItemSheet::setTabChain() {
    std::vector<QWidget*> chain{m_kind->firstSegment(),
                                m_kind->lastSegment(),
                                m_date,
                                m_dateButton,
                                m_sum,
                                m_calculatorButton,
                                m_taxBox};
    for (int tag = 1; tag <= 5; ++tag)
        chain.push_back(m_tax->segment(tag));
    for (QWidget* w :
         {static_cast<QWidget*>(m_title), static_cast<QWidget*>(m_number),
          static_cast<QWidget*>(m_unpaid), static_cast<QWidget*>(m_accountNumber),
          static_cast<QWidget*>(m_account), static_cast<QWidget*>(m_accountSearch),
          static_cast<QWidget*>(m_group), static_cast<QWidget*>(m_groupSearch),
          static_cast<QWidget*>(m_comment), static_cast<QWidget*>(m_templateButton),
          static_cast<QWidget*>(m_settingsButton), static_cast<QWidget*>(m_datevButton),
          static_cast<QWidget*>(m_helpButton), static_cast<QWidget*>(m_previous),
          static_cast<QWidget*>(m_next), static_cast<QWidget*>(m_cancel),
          static_cast<QWidget*>(m_new), static_cast<QWidget*>(m_ok)})
        chain.push_back(w);
    for (size_t i = 1; i < chain.size(); ++i)
        setTabOrder(chain[i - 1], chain[i]);
}

// ---------------------------------------------------------------------------------------
// What the program shows

void ItemSheet::bindControls() {
    FormBinder& b = *m_binder;
    b.onControl("sumField", [this] {
        showLineText(*m_sum, m_binder->text("sumField"));
        m_sumTyped = false;
    });
    b.onControl("sumFieldEnabled", [this] {
        m_sum->setEnabled(m_binder->value("sumFieldEnabled").toBool());
        showSign();
    });
    b.onControl("algebraicField", [this] { showSign(); });
    b.onControl("taxCheckBox", [this] { showTaxChoice(); });
    b.onControl("taxSegControl", [this] { showTaxChoice(); });
    b.onControl("unpaidCheckBox",
                [this] { m_unpaid->setChecked(m_binder->value("unpaidCheckBox").toBool()); });
    b.onControl("datePicker", [this] { showDate(); });
    b.onControl("titleField", [this] { showLineText(*m_title, m_binder->text("titleField")); });
    b.onControl("numberField", [this] { showLineText(*m_number, m_binder->text("numberField")); });
    b.onControl("commentField", [this] { m_comment->showText(m_binder->text("commentField")); });
    b.onControl("accountField", [this] {
        showLineText(*m_accountNumber, m_binder->text("accountField"));
        m_accountTyped = false;
    });
    b.onControl("accountPopUp",
                [this] { showComboText(*m_account, m_binder->text("accountPopUp")); });
    b.onControl("groupPopUp", [this] { showComboText(*m_group, m_binder->text("groupPopUp")); });
    b.onControl("newButtonShown",
                [this] { m_new->setVisible(m_binder->value("newButtonShown").toBool()); });
    b.onControl("cancelButtonShown",
                [this] { m_cancel->setVisible(m_binder->value("cancelButtonShown").toBool()); });
    b.onControl("nextPreviousButtonsShown", [this] {
        const bool shown = m_binder->value("nextPreviousButtonsShown").toBool();
        m_previous->setVisible(shown);
        m_next->setVisible(shown);
    });
    b.onControl("templateButtonEnabled", [this] {
        m_templateButton->setEnabled(m_binder->value("templateButtonEnabled").toBool());
    });
    for (int i = 0; i < 3; ++i) {
        const std::string name = "taxSegControlLabel" + std::to_string(i);
        b.onControl(name, [this, name, i] {
            const QString label = m_binder->text(name);
            m_tax->setLabel(i + 1, label.isEmpty() ? QStringLiteral("–") : label,
                            m_tax->segment(i + 1)->toolTip());
        });
    }
}

void ItemSheet::showSign() {
    const QString sign = m_binder->text("algebraicField");
    m_sign->setText(sign);
    const QString colour = signColour(sign);
    m_sign->setStyleSheet(colour);
    m_sum->setStyleSheet(colour.isEmpty() ? QString()
                                          : QStringLiteral("QLineEdit{%1}").arg(colour));
    // The kind shows by its sign; an empty sign while a calculation runs leaves it alone.
    if (sign == QLatin1String("-")) m_kind->setChosen(kExpense);
    if (sign == QLatin1String("+")) m_kind->setChosen(kIncome);
    if (sign.isEmpty() && !m_sum->isEnabled()) m_kind->setChosen(0);
}

void ItemSheet::showTaxChoice() {
    const bool taxed = m_binder->value("taxCheckBox").toBool();
    m_taxBox->setChecked(taxed);
    m_tax->setChosen(m_binder->value("taxSegControl").toInt());
    m_tax->setEnabled(taxed);
}

void ItemSheet::showDate() {
    const Value date = m_binder->value("datePicker");
    if (date.kind() != core::Kind::Date) return;
    m_date->showDate(toQDateTime(date.asDate()).date());
}

// The rates of the settings, as they are each time the form comes to the front.
void ItemSheet::relabelTaxSegments() {
    const auto labels = bookkeeping::taxRateLabels(m_app.settings());
    for (size_t i = 0; i < labels.size(); ++i) {
        const QString label = qs(labels[i].percent);
        m_tax->setLabel(static_cast<int>(i) + 1, label.isEmpty() ? QStringLiteral("–") : label,
                        qs(labels[i].title));
    }
}

void ItemSheet::fillChoosers() {
    shell::Selection& selection = m_app.selection();
    QStringList accounts;
    for (const core::Record* account : selection.accounts.arranged())
        accounts << qs(account->getText("title"));
    fillCombo(*m_account, accounts);
    QStringList groups;
    for (const core::Record* group : selection.groups.arranged())
        groups << qs(group->getText("title"));
    fillCombo(*m_group, groups);
    m_currency->setText(currencySign(m_app.settings().getInteger("prefsCurrency")));
}

// ---------------------------------------------------------------------------------------
// What the user does

void ItemSheet::connectEdits() {
    FormBinder& b = *m_binder;
    connect(m_kind, &SegmentedChoice::picked, this, [this](int tag) {
        m_binder->run(tag == kExpense ? "selectExpense:" : "selectIncome:");
    });
    connect(m_date, &QLineEdit::editingFinished, this, [this] { commitDate(); });
    b.addPendingEdit([this] { return commitDate(); });
    connect(m_sum, &QLineEdit::textEdited, this, [this] { m_sumTyped = true; });
    connect(m_sum, &QLineEdit::editingFinished, this, [this] { commitSum(); });
    b.addPendingEdit([this] { return commitSum(); });
    connect(m_taxBox, &QCheckBox::clicked, this, [this](bool on) {
        m_binder->edit("taxCheckBox", Value::boolean(on), "setTaxAutomatically:");
    });
    connect(m_tax, &SegmentedChoice::picked, this, [this](int tag) {
        m_binder->edit("taxSegControl", Value::intValue(tag), "calculateItem:");
    });
    connect(m_unpaid, &QCheckBox::clicked, this, [this](bool on) {
        m_binder->edit("unpaidCheckBox", Value::boolean(on), "calculateItem:");
    });
    connect(m_title, &QLineEdit::textEdited, this,
            [this](const QString& text) { m_binder->writeText("titleField", text); });
    connect(m_number, &QLineEdit::textEdited, this,
            [this](const QString& text) { m_binder->writeText("numberField", text); });
    connect(m_comment, &CommentEdit::edited, this,
            [this](const QString& text) { m_binder->writeText("commentField", text); });
    connect(m_accountNumber, &QLineEdit::textEdited, this, [this](const QString& text) {
        m_accountTyped = true;
        m_binder->writeText("accountField", text);
    });
    connect(m_accountNumber, &QLineEdit::editingFinished, this,
            [this] { commitAccount(/*always=*/false, /*moveOn=*/false); });
    b.addPendingEdit([this] { return commitAccount(false, false); });
    connect(m_account, &QComboBox::activated, this, [this](int index) {
        m_binder->edit("accountPopUp", Value::string(str(m_account->itemText(index))),
                       "validateAccountTitle:");
    });
    connect(m_group, &QComboBox::activated, this, [this](int index) {
        m_binder->edit("groupPopUp", Value::string(str(m_group->itemText(index))));
    });
}

void ItemSheet::connectButtons() {
    connect(m_calculatorButton, &QToolButton::clicked, this, [this] {
        // The calculator opens through its command, which shows "splitCalculator".
        m_binder->run("openSplitWindow:");
    });
    connect(m_dateButton, &QToolButton::clicked, this,
            [this] { openPopover(MultiPopover::DateTag, m_dateButton); });
    connect(m_accountSearch, &QToolButton::clicked, this,
            [this] { openPopover(MultiPopover::AccountsTag, m_accountSearch); });
    connect(m_groupSearch, &QToolButton::clicked, this,
            [this] { openPopover(MultiPopover::GroupsTag, m_groupSearch); });
    // A search fills the whole row it belongs to (the account's number and title, or the
    // category), so the keyboard goes on to the field after that row, as Tab would.
    for (auto [tag, next] : {std::pair<int, QWidget*>{MultiPopover::AccountsTag, m_group},
                             std::pair<int, QWidget*>{MultiPopover::GroupsTag, m_comment}}) {
        if (auto* search = qobject_cast<SearchView*>(m_popover->view(tag)))
            connect(search, &SearchView::chosen, next,
                    [next] { next->setFocus(Qt::TabFocusReason); });
    }
    connect(m_templateButton, &QPushButton::clicked, this,
            [this] { openPopover(MultiPopover::TemplatesTag, m_templateButton); });
    connect(m_settingsButton, &QPushButton::clicked, this,
            [this] { openPopover(MultiPopover::ItemSettingsTag, m_settingsButton); });
    connect(m_helpButton, &QPushButton::clicked, this,
            [this] { openPopover(MultiPopover::HelpTag, m_helpButton); });
    connect(m_datevButton, &QPushButton::clicked, this,
            [this] { openPopover(MultiPopover::DatevTag, m_datevButton); });
    connect(m_previous, &QPushButton::clicked, this, [this] { m_binder->run("selectPrevious:"); });
    connect(m_next, &QPushButton::clicked, this, [this] { m_binder->run("selectNext:"); });
    connect(m_cancel, &QPushButton::clicked, this,
            [this] { m_binder->run("cancelItemSheet:", 0, /*commitFirst=*/false); });
    connect(m_new, &QPushButton::clicked, this, [this] {
        // A new item starts with the choice of income or expense.
        if (m_binder->run("addItem:") && isVisible() && !m_sum->isEnabled())
            m_kind->firstSegment()->setFocus();
    });
    connect(m_ok, &QPushButton::clicked, this, [this] { m_binder->run("closeItemSheet:"); });
    // The date of today belongs to the open form, as the date panel's button does.
    auto* today = new QShortcut(QKeySequence(QStringLiteral("Ctrl+T")), this);
    today->setObjectName(QStringLiteral("todayShortcut"));
    connect(today, &QShortcut::activated, this, [this] {
        m_date->revert(); // today's date takes the place of one being typed
        m_binder->run("setToday:");
    });
}

void ItemSheet::openPopover(int tag, QWidget* anchor) {
    if (!m_binder->commitPending()) return;
    if (m_popover->shownTag() == tag) {
        m_popover->closeView(tag);
        return;
    }
    m_popover->showView(tag, anchor);
}

// The date is handed over when its editing ends, as a whole: a date typed part by part is
// never taken half-way. A text that is no date is refused and stays for correcting; an
// emptied field shows the date again.
bool ItemSheet::commitDate() {
    if (!m_date->isTyped() || m_refusingDate) return true;
    if (posting::isBlankText(str(m_date->text()))) {
        m_date->revert();
        return true;
    }
    const std::optional<QDate> day = m_date->typedDate();
    if (!day) {
        m_refusingDate = true;
        m_app.services().ui.alert(shell::AlertRequest{
            "Fehler!",
            "„" + str(m_date->text()) +
                "“ ist kein gültiges Datum. Bitte gib Tag, Monat und Jahr ein, zum Beispiel "
                "15.01.2025.",
            {"OK"},
            shell::AlertStyle::Warning,
            {}});
        m_refusingDate = false;
        m_binder->refusedThisTurn();
        m_date->setFocus();
        m_date->selectAll();
        return false;
    }
    m_binder->write("datePicker", dateOnDay(m_binder->value("datePicker"), *day));
    m_date->revert(); // shows the date as the program took it
    return true;
}

bool ItemSheet::commitSum() {
    if (!m_sumTyped) return true;
    m_sumTyped = false;
    const QString typed = m_sum->text();
    m_binder->writeText("sumField", typed);
    // A sum the program refused is shown as it was before; blanks are an empty field.
    const bool taken = m_binder->text("sumField") == typed || posting::isBlankText(str(typed));
    if (!taken) {
        m_binder->refusedThisTurn();
        m_sum->setFocus();
        m_sum->selectAll();
        return false;
    }
    m_binder->run("calculateItem:", 0, /*commitFirst=*/false);
    return true;
}

bool ItemSheet::commitAccount(bool always, bool moveOn) {
    if (!m_accountTyped && !always) return true;
    m_accountTyped = false;
    const QString typed = m_accountNumber->text();
    m_binder->run("validateAccountNumber:", 0, /*commitFirst=*/false);
    const core::Record* item = m_app.selection().currentItem();
    const bool taken = typed.isEmpty() || (item && qs(item->getText("accountNumber")) == typed);
    if (!taken) {
        m_binder->refusedThisTurn();
        m_accountNumber->setFocus();
        m_accountNumber->selectAll();
        return false;
    }
    if (moveOn && !typed.isEmpty()) {
        m_number->setFocus();
        m_number->selectAll();
    }
    return true;
}

// Return in the account number checks the number and stays in the form.
bool ItemSheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_accountNumber && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            commitAccount(/*always=*/true, /*moveOn=*/true);
            return true;
        }
    }
    return FormSheet::eventFilter(watched, event);
}

void ItemSheet::changeEvent(QEvent* event) {
    FormSheet::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) relabelTaxSegments();
}

// ---------------------------------------------------------------------------------------
// Showing and hiding

void ItemSheet::showForm(bool show) {
    if (!show) {
        // Whatever the form was left with was handed over or refused before it closed.
        m_date->revert();
        m_popover->closeView();
        dismiss();
        m_binder->refreshSoon();
        return;
    }
    fillChoosers();
    m_binder->showAll();
    relabelTaxSegments();
    if (isVisible()) return;
    present();
    if (m_sum->isEnabled())
        m_sum->setFocus(Qt::TabFocusReason);
    else
        m_kind->firstSegment()->setFocus(Qt::TabFocusReason);
}

void ItemSheet::showDatePanel(bool show) {
    m_dateDrawer->setVisible(show);
    updateDrawer();
}

void ItemSheet::showHelpPanel(bool show) {
    m_helpDrawer->setVisible(show);
    updateDrawer();
}

void ItemSheet::updateDrawer() {
    const bool any = !m_dateDrawer->isHidden() || !m_helpDrawer->isHidden();
    if (any == !m_drawer->isHidden()) return;
    m_drawer->setVisible(any);
    if (isVisible()) fitContents();
}

} // namespace zifora::gui
