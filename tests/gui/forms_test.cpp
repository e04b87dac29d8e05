// The forms driven as a user drives them: clicks and key presses on the widgets, alerts read
// and answered as they come up, the records checked afterwards.

#include "forms/choosersheet.h"
#include "forms/datefield.h"
#include "forms/formbinder.h"
#include "forms/formsheets.h"
#include "forms/itemsheet.h"
#include "forms/multipopover.h"
#include "forms/popoverviews.h"
#include "forms/segmentedchoice.h"
#include "mainwindow.h"

#include "core/settings.h"
#include "platform_qt/qtservices.h"
#include "program/program.h"
#include "shell/session.h"

#include <QAbstractItemModel>
#include <QAction>
#include <QApplication>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <clocale>
#include <deque>
#include <memory>

using namespace zifora;
using core::Record;
using core::RecordClass;
using core::Value;

namespace {

/// Reads every alert as it comes up and answers it with the button of a queued label, or
/// with its default button.
class AlertCatcher : public QObject {
  public:
    struct Alert {
        QString title;
        QString text;
    };

    AlertCatcher() {
        m_timer.setInterval(10);
        connect(&m_timer, &QTimer::timeout, this, [this] { answer(); });
        m_timer.start();
    }

    std::vector<Alert> seen;
    std::deque<QString> answers;

    /// The texts seen since the last call.
    QStringList take() {
        QStringList texts;
        for (const Alert& a : seen)
            texts << a.text;
        seen.clear();
        return texts;
    }

  private:
    void answer() {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible()) return;
        seen.push_back({box->windowTitle(), box->informativeText()});
        QAbstractButton* button = box->defaultButton();
        if (!answers.empty()) {
            for (QAbstractButton* b : box->buttons())
                if (b->text() == answers.front()) button = b;
            answers.pop_front();
        }
        button->click();
        // As a window manager does: the window the alert belonged to gets the keyboard back.
        if (QWidget* owner = box->parentWidget()) owner->window()->activateWindow();
    }

    QTimer m_timer;
};

/// The desktop program around one client with a chart, a category and a template.
struct Program {
    Program() {
        settings.setFloat("prefs1Rate", 19);
        settings.setFloat("prefs2Rate", 7);
        settings.setString("prefs1RateTitle", "Regelsteuersatz");
        settings.setBool("firstStepsDone", true);
        const core::Date now = clock.now();
        client = Record::make(RecordClass::Client, now);
        for (auto [number, title] : {std::pair{"4930", "Bürobedarf"}, {"4400", "Erlöse"}}) {
            auto account = Record::make(RecordClass::Account, now);
            account->set("number", Value::string(number));
            account->set("title", Value::string(title));
            client->accounts().push_back(account);
        }
        for (const char* title : {"Büro", "Honorare"}) {
            auto group = Record::make(RecordClass::Group, now);
            group->set("title", Value::string(title));
            client->groups().push_back(group);
        }
        auto pattern = Record::make(RecordClass::Item, now);
        pattern->set("templateTitle", Value::string("Miete"));
        pattern->set("title", Value::string("Miete Büro"));
        pattern->set("kind", Value::intValue(1));
        pattern->set("amount", Value::string("500"));
        client->items().push_back(pattern);
        app.setClients({client});
        app.selectionChanged();
        forms.registerWindows(ui);
        ui.setParentWindow(&window);
        window.show();
        window.refresh();
    }

    /// A year 2026 with the period "Januar", selected.
    void addBook() {
        auto year = Record::make(RecordClass::Year, clock.now());
        year->set("dateValue", Value::string("2026"));
        auto period = Record::make(RecordClass::Thelist, clock.now());
        period->set("title", Value::string("Januar"));
        year->thelists().push_back(period);
        client->theYears().push_back(year);
        app.selectionChanged();
        window.refresh();
    }

    /// A command as the menus and the toolbar of the main window run it.
    void command(const char* name) {
        QVERIFY2(app.run(name), name);
        window.refresh();
    }

    Record* item() { return app.selection().currentItem(); }

    QTemporaryDir home;
    platform_qt::QtUi ui;
    platform_qt::QtScheduler scheduler;
    platform_qt::SystemClock clock;
    platform_qt::QtClipboard clipboard;
    platform_qt::QtWorkspace workspace;
    core::Settings settings{(home.path() + "/Zifora.plist").toStdString()};
    shell::NoPdfRenderer pdf;
    program::Program program{shell::Services{ui, scheduler, clock, clipboard, workspace, pdf},
                             core::Places::forHome(home.path().toStdString()), settings};
    shell::Session& app = program.session();
    gui::MainWindow window{app};
    gui::FormSheets forms{app, &window, {}};
    core::Ref<Record> client;
    AlertCatcher alerts;
};

template <typename T> T* child(QWidget* in, const char* name) {
    T* found = in->findChild<T*>(QString::fromLatin1(name));
    if (!found) qWarning("no widget %s", name);
    return found;
}

/// A key pressed where the keyboard is.
void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    // Between two key presses the program's event loop turns: zero-delay calls run, and a
    // window that was just given the keyboard back receives it.
    QCoreApplication::processEvents();
    QTRY_VERIFY(QApplication::activeWindow());
    QWidget* target = QApplication::focusWidget();
    if (!target) target = QApplication::activeWindow();
    QTest::keyClick(target, key, modifiers);
}

/// Types a text key by key; letters beyond ASCII go as key events with their text.
void typeText(QWidget* target, const QString& text) {
    for (QChar c : text) {
        if (c.unicode() < 128)
            QTest::keyClick(target, c.toLatin1());
        else
            QTest::sendKeyEvent(QTest::Click, target, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }
}

/// Clicks into a field and types over what it holds.
void typeInto(QWidget* field, const QString& text) {
    QCoreApplication::processEvents();
    QTest::mouseClick(field, Qt::LeftButton);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    typeText(field, text);
}

/// Clicks the box of a check box or radio button (not the empty space beside its text).
void clickBox(QAbstractButton* box) {
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
}

/// The window is up and has the keyboard.
bool shownActive(QWidget* window) {
    return window->isVisible() && QTest::qWaitForWindowActive(window);
}

QString screenshotPath(const char* name) {
    const QString folder = QStringLiteral(ZIFORA_BINARY_DIR "/screenshots");
    QDir().mkpath(folder);
    return folder + '/' + QString::fromLatin1(name);
}

} // namespace

class FormsTest : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        // The display-less platform says so on every raise of a window; that is no finding.
        static QtMessageHandler testlib = nullptr;
        testlib = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
                if (!text.startsWith(QLatin1String("This plugin does not support")))
                    testlib(type, context, text);
            });
    }
    void init() { m_program = std::make_unique<Program>(); }
    void cleanup() { m_program.reset(); }

    void yearAndPeriodAreChosenThroughTheirSheets();
    void taxedIncomeMeetsEveryRefusalInTurn();
    void taxedExpenseTakesItsAccountAndTheNewButtonStartsTheNext();
    void anEditedItemSteppsThroughTheListAndCannotBeCancelled();
    void theTaxChoicesCarryTheRatesOfTheSettings();
    void thePanelSplitsSearchesAndHoldsTheDatevData();
    void aTypedDateIsReadAsDayMonthAndYear();
    void aTypedSumIsANumberInGermanNotation();
    void ctrlTSetsTodayInTheItemFormOnly();
    void aSearchHandsTheKeyboardToTheFieldAfterItsRow();
    void screenshots();

  private:
    /// The day of the selected item's date, as the form shows it.
    QDate itemDay() { return itemMoment().date(); }
    QDateTime itemMoment() { return gui::toQDateTime(m_program->item()->get("date").asDate()); }

    gui::ItemSheet* openNewItem() {
        m_program->command("addItem:");
        gui::ItemSheet* sheet = m_program->forms.itemSheet();
        if (!sheet->isVisible() || !QTest::qWaitForWindowActive(sheet)) return nullptr;
        return sheet;
    }
    void chooseKind(gui::ItemSheet* sheet, const char* button) {
        QTest::mouseClick(child<QToolButton>(sheet, button), Qt::LeftButton);
        QTRY_VERIFY(child<QLineEdit>(sheet, "sumField")->isEnabled());
    }

    std::unique_ptr<Program> m_program;
};

void FormsTest::yearAndPeriodAreChosenThroughTheirSheets() {
    Program& p = *m_program;
    p.command("addYear:");
    gui::ChooserSheet* year = p.forms.yearSheet();
    QVERIFY(year->isVisible());
    QCOMPARE(year->windowModality(), Qt::WindowModal);
    QCOMPARE(year->parentWidget(), &p.window);
    QVERIFY(QTest::qWaitForWindowActive(year));
    QCOMPARE(QApplication::focusWidget(), year->chooser());

    // Nothing chosen yet: OK is refused, and there is no cancel.
    press(Qt::Key_Return);
    QCOMPARE(p.alerts.take(), QStringList{"Es ist kein Jahr ausgewählt."});
    press(Qt::Key_Escape);
    QVERIFY(year->isVisible());
    QCOMPARE(p.app.selection().years.count(), size_t(1));

    typeText(year->chooser(), "2026");
    QCOMPARE(year->chooser()->currentText(), QStringLiteral("2026"));
    QCOMPARE(p.app.selection().currentYear()->getText("dateValue"), "2026");
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), year->comment());
    typeText(year->comment(), "Erstes Jahr");
    QTest::keyClick(year->comment(), Qt::Key_Return, Qt::ShiftModifier);
    typeText(year->comment(), "mit Umsatzsteuer");
    press(Qt::Key_Return);
    QVERIFY(p.alerts.take().isEmpty());
    QVERIFY(!year->isVisible());
    Record* made = p.app.selection().currentYear();
    QCOMPARE(made->getText("comment"), "Erstes Jahr\nmit Umsatzsteuer");
    auto* years = p.window.findChildren<QListView*>().value(0);
    QCOMPARE(years->model()->index(0, 0).data().toString(), QStringLiteral("2026"));

    p.command("addList:");
    gui::ChooserSheet* period = p.forms.periodSheet();
    QVERIFY(shownActive(period));
    QTest::mouseClick(period->okButton(), Qt::LeftButton);
    QCOMPARE(p.alerts.take(), QStringList{"Es ist kein Zeitraum ausgewählt."});
    typeText(period->chooser(), "Januar");
    press(Qt::Key_Return);
    QVERIFY(!period->isVisible());
    QCOMPARE(p.app.selection().currentPeriod()->getText("title"), "Januar");

    // Opened again, the form shows what the year holds.
    p.command("editYear:");
    QVERIFY(year->isVisible());
    QCOMPARE(year->chooser()->currentText(), QStringLiteral("2026"));
    QCOMPARE(year->comment()->toPlainText(), QStringLiteral("Erstes Jahr\nmit Umsatzsteuer"));
    press(Qt::Key_Return);
    QVERIFY(!year->isVisible());
}

void FormsTest::taxedIncomeMeetsEveryRefusalInTurn() {
    Program& p = *m_program;
    p.addBook();
    gui::ItemSheet* sheet = openNewItem();
    QVERIFY(sheet);
    auto* sum = child<QLineEdit>(sheet, "sumField");
    QVERIFY(!sum->isEnabled());
    QVERIFY(child<QPushButton>(sheet, "cancelButton")->isVisible());
    QVERIFY(child<QPushButton>(sheet, "newButton")->isVisible());
    QVERIFY(!child<QPushButton>(sheet, "nextButton")->isVisible());

    press(Qt::Key_Return);
    chooseKind(sheet, "incomeButton");
    QCOMPARE(child<QLabel>(sheet, "algebraicField")->text(), QStringLiteral("+"));
    clickBox(child<QCheckBox>(sheet, "taxCheckBox"));
    QVERIFY(sheet->taxChoice()->isEnabled());
    typeInto(sum, "0");
    press(Qt::Key_Return); // taxed, but no rate
    QTest::mouseClick(sheet->taxChoice()->segment(1), Qt::LeftButton);
    press(Qt::Key_Return); // a tax on nothing
    typeInto(sum, "119,00");
    press(Qt::Key_Return); // no title
    QVERIFY(sheet->isVisible());
    typeInto(child<QLineEdit>(sheet, "titleField"), "Beratung");
    press(Qt::Key_Return);
    QVERIFY(!sheet->isVisible());

    const QStringList expected{
        "Posten ist unvollständig ausgefüllt. Bitte Summe angeben. Dazu musst du vorher "
        "angeben haben, ob der Posten eine Ausgabe oder eine Einnahme ist.",
        "Posten ist unvollständig ausgefüllt. Bitte Steuersatz angeben.",
        "Steuern auf eine Null zu berechnen macht nicht wirklich Sinn.",
        "Posten ist unvollständig ausgefüllt. Bitte Bezeichnung angeben."};
    for (const auto& alert : p.alerts.seen)
        QCOMPARE(alert.title, QStringLiteral("Fehler!"));
    QCOMPARE(p.alerts.take(), expected);

    Record* item = p.item();
    QCOMPARE(p.app.selection().items.count(), size_t(1));
    QCOMPARE(item->getText("title"), "Beratung");
    QCOMPARE(item->getInt("kind"), 2);
    QCOMPARE(item->getText("amount"), "119");
    QVERIFY(item->getBool("taxBool"));
    QCOMPARE(item->getInt("taxTag"), 1);
    QTRY_COMPARE(item->getFloat("finalAmount"), 119.0f);
    QCOMPARE(item->getFloat("taxFee"), 19.0f);
    QCOMPARE(item->getFloat("taxFeePay"), 19.0f);
    QCOMPARE(item->getFloat("incomeWithout"), 100.0f);
    QVERIFY(p.settings.getBool("firstItemSet"));
    QTRY_COMPARE(p.window.itemView()->model()->rowCount(), 1);
}

void FormsTest::taxedExpenseTakesItsAccountAndTheNewButtonStartsTheNext() {
    Program& p = *m_program;
    p.addBook();
    gui::ItemSheet* sheet = openNewItem();
    QVERIFY(sheet);
    chooseKind(sheet, "expenseButton");
    auto* sum = child<QLineEdit>(sheet, "sumField");

    // A sum that is no amount is refused once; the Return that ended it closes nothing.
    typeInto(sum, "12x");
    press(Qt::Key_Return);
    QCOMPARE(p.alerts.take(), QStringList{"„12x“ ist keine gültige Summe. Bitte gib einen "
                                          "positiven Betrag ein, zum Beispiel 119,50."});
    QVERIFY(sheet->isVisible());
    QCOMPARE(sum->text(), QString());
    QTRY_COMPARE(QApplication::focusWidget(), sum);
    typeInto(sum, "53,50");
    press(Qt::Key_Tab); // editing ends: the sum is handed over and calculated
    QCOMPARE(p.item()->getText("amount"), "53.5");
    QTRY_COMPARE(p.item()->getFloat("finalAmount"), -53.5f);
    QVERIFY(sum->styleSheet().contains("#b3261e"));
    clickBox(child<QCheckBox>(sheet, "taxCheckBox"));
    QTest::mouseClick(sheet->taxChoice()->segment(2), Qt::LeftButton);
    QCOMPARE(sheet->taxChoice()->label(2), QStringLiteral("7 %"));
    typeInto(child<QLineEdit>(sheet, "titleField"), "Büromaterial");

    // An unknown number is refused and keeps the keyboard; a known one fills the account.
    auto* accountField = child<QLineEdit>(sheet, "accountField");
    typeInto(accountField, "9999");
    press(Qt::Key_Return);
    QCOMPARE(p.alerts.take(),
             QStringList{"Konto existiert nicht. Bitte Nummer überprüfen oder gegebenenfalls "
                         "Konto in den Einstellungen anlegen."});
    QVERIFY(sheet->isVisible());
    QTRY_COMPARE(QApplication::focusWidget(), accountField);
    QCOMPARE(p.item()->getText("accountNumber"), "");
    typeInto(accountField, "4930");
    press(Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), child<QLineEdit>(sheet, "numberField"));
    QCOMPARE(p.item()->getText("account"), "Bürobedarf");
    QCOMPARE(child<QComboBox>(sheet, "accountPopUp")->currentText(), QStringLiteral("Bürobedarf"));
    typeText(child<QLineEdit>(sheet, "numberField"), "R-17");
    typeText(child<QComboBox>(sheet, "groupPopUp"), "Büro");
    QCOMPARE(p.item()->getText("group"), "Büro");

    Record* expense = p.item();
    QTest::mouseClick(child<QPushButton>(sheet, "newButton"), Qt::LeftButton);
    QVERIFY(sheet->isVisible());
    QVERIFY(p.item() != expense);
    QVERIFY(p.alerts.take().isEmpty());
    QCOMPARE(child<QLineEdit>(sheet, "titleField")->text(), QString());
    QVERIFY(!sheet->kindChoice()->chosen());
    QCOMPARE(expense->getText("number"), "R-17");
    QCOMPARE(expense->getFloat("finalAmount"), -53.5f);
    QCOMPARE(expense->getFloat("taxFee"), 3.5f);
    QCOMPARE(expense->getFloat("taxFeeGet"), 3.5f);
    QCOMPARE(expense->getFloat("expenseWithout"), -50.0f);

    // Escape cancels the new item, which goes again.
    press(Qt::Key_Escape);
    QVERIFY(!sheet->isVisible());
    QCOMPARE(p.app.selection().items.count(), size_t(1));
    QCOMPARE(p.item(), expense);
    QTRY_COMPARE(p.window.itemView()->model()->rowCount(), 1);
}

void FormsTest::anEditedItemSteppsThroughTheListAndCannotBeCancelled() {
    Program& p = *m_program;
    p.addBook();
    shell::ListController& items = p.app.selection().items;
    for (const char* title : {"Erster", "Zweiter"}) {
        auto made = Record::make(RecordClass::Item, p.clock.now());
        made->set("title", Value::string(title));
        made->set("kind", Value::intValue(2));
        made->set("amount", Value::string("10"));
        items.add(made);
    }
    items.setSelectionIndex(0);
    p.window.refresh();
    p.command("editItem:");
    gui::ItemSheet* sheet = p.forms.itemSheet();
    QVERIFY(shownActive(sheet));
    QVERIFY(!child<QPushButton>(sheet, "cancelButton")->isVisible());
    QVERIFY(!child<QPushButton>(sheet, "newButton")->isVisible());
    QVERIFY(child<QPushButton>(sheet, "nextButton")->isVisible());
    QCOMPARE(child<QLineEdit>(sheet, "titleField")->text(), QStringLiteral("Erster"));
    QCOMPARE(sheet->kindChoice()->chosen(), 2);
    QVERIFY(child<QLineEdit>(sheet, "sumField")->isEnabled());

    press(Qt::Key_Escape); // no cancel for an edit: the form stays, nothing is removed
    QVERIFY(sheet->isVisible());
    QCOMPARE(items.count(), size_t(2));

    typeInto(child<QLineEdit>(sheet, "sumField"), "12");
    QTest::mouseClick(child<QPushButton>(sheet, "nextButton"), Qt::LeftButton);
    QCOMPARE(items.arranged()[0]->getText("amount"), "12");
    QTRY_COMPARE(items.arranged()[0]->getFloat("finalAmount"), 12.0f);
    QCOMPARE(p.item(), items.arranged()[1]);
    QCOMPARE(child<QLineEdit>(sheet, "titleField")->text(), QStringLiteral("Zweiter"));
    press(Qt::Key_Up, Qt::ControlModifier); // a button's shortcut clicks it a moment later
    QTRY_COMPARE(p.item(), items.arranged()[0]);
    press(Qt::Key_Return);
    QVERIFY(!sheet->isVisible());
    QVERIFY(p.alerts.take().isEmpty());
}

void FormsTest::theTaxChoicesCarryTheRatesOfTheSettings() {
    Program& p = *m_program;
    p.addBook();
    p.settings.setFloat("prefs1Rate", 16);
    gui::ItemSheet* sheet = openNewItem();
    QVERIFY(sheet);
    gui::SegmentedChoice* tax = sheet->taxChoice();
    QCOMPARE(tax->label(1), QStringLiteral("16 %"));
    QCOMPARE(tax->segment(1)->toolTip(), QStringLiteral("Regelsteuersatz"));
    QCOMPARE(tax->label(2), QStringLiteral("7 %"));
    QCOMPARE(tax->label(4), QStringLiteral("Steuerfreie Umsätze"));
    QCOMPARE(tax->label(5), QStringLiteral("Nicht steuerbare Umsätze"));
    QVERIFY(!tax->isEnabled());

    // A rate changed while the form is open shows when the form comes to the front again.
    p.settings.setFloat("prefs2Rate", 5);
    QTest::mouseClick(child<QPushButton>(sheet, "helpButton"), Qt::LeftButton);
    QVERIFY(QTest::qWaitForWindowActive(sheet->popover()));
    press(Qt::Key_Escape);
    QVERIFY(!sheet->popover()->isVisible());
    sheet->activateWindow();
    QTRY_COMPARE(tax->label(2), QStringLiteral("5 %"));

    // The first rate chosen by itself, where the settings ask for it.
    p.settings.setBool("setTaxAutomatically", true);
    clickBox(child<QCheckBox>(sheet, "taxCheckBox"));
    QCOMPARE(tax->chosen(), 1);
    QCOMPARE(p.item()->getInt("taxTag"), 1);
    QVERIFY(tax->isEnabled());
    press(Qt::Key_Escape);
    QVERIFY(!sheet->isVisible());
}

void FormsTest::thePanelSplitsSearchesAndHoldsTheDatevData() {
    Program& p = *m_program;
    p.addBook();
    gui::ItemSheet* sheet = openNewItem();
    QVERIFY(sheet);
    gui::MultiPopover* panel = sheet->popover();
    chooseKind(sheet, "incomeButton");
    auto* sum = child<QLineEdit>(sheet, "sumField");
    typeInto(sum, "100");

    // Share page: half of the sum.
    QTest::mouseClick(child<QToolButton>(sheet, "calculatorButton"), Qt::LeftButton);
    QVERIFY(shownActive(panel));
    QCOMPARE(panel->shownTag(), int(gui::MultiPopover::CalculatorTag));
    QCOMPARE(p.item()->getText("amount"), "100");
    auto* calculator =
        static_cast<gui::CalculatorView*>(panel->view(gui::MultiPopover::CalculatorTag));
    clickBox(child<QRadioButton>(calculator, "share1"));
    QCOMPARE(p.settings.getInteger("selectedSplitIndex"), 1);
    QTest::mouseClick(calculator->applyButton(), Qt::LeftButton);
    QVERIFY(!panel->isVisible());
    QCOMPARE(p.item()->getFloat("amount"), 50.0f);
    QCOMPARE(sum->text(), QStringLiteral("50"));
    QTRY_COMPARE(p.item()->getFloat("finalAmount"), 50.0f);

    // Tax page: a tax-free choice has nothing to work out; a rate turns net into gross.
    clickBox(child<QCheckBox>(sheet, "taxCheckBox"));
    QTest::mouseClick(sheet->taxChoice()->segment(4), Qt::LeftButton);
    QTest::mouseClick(child<QToolButton>(sheet, "calculatorButton"), Qt::LeftButton);
    QVERIFY(shownActive(panel));
    QTabBar* pages = calculator->pages()->tabBar();
    QTest::mouseClick(pages, Qt::LeftButton, {}, pages->tabRect(1).center());
    QCOMPARE(p.settings.getInteger("calculatorHelpIndex"), 1);
    QCOMPARE(child<QLabel>(calculator, "algebraicFieldCalcHelp")->text(), QStringLiteral("+"));
    typeInto(calculator->netSum(), "100");
    press(Qt::Key_Return);
    QCOMPARE(p.alerts.take(),
             QStringList{"Bei dem ausgewählten Steuersatz ist die Aktion überflüssig."});
    QVERIFY(panel->isVisible());
    QCOMPARE(p.item()->getFloat("amount"), 50.0f);
    press(Qt::Key_Escape);
    QVERIFY(!panel->isVisible());
    QTest::mouseClick(sheet->taxChoice()->segment(1), Qt::LeftButton);
    QTest::mouseClick(child<QToolButton>(sheet, "calculatorButton"), Qt::LeftButton);
    QVERIFY(shownActive(panel));
    QCOMPARE(calculator->netSum()->text(), QString()); // cleared as the calculator opens
    typeInto(calculator->netSum(), "100");
    press(Qt::Key_Return);
    QVERIFY(!panel->isVisible());
    QCOMPARE(p.item()->getFloat("amount"), 119.0f);
    QTRY_COMPARE(p.item()->getFloat("taxFee"), 19.0f);

    // Account and category searches filter as you type and take the row with Return.
    QTest::mouseClick(child<QToolButton>(sheet, "accountSearchButton"), Qt::LeftButton);
    QVERIFY(shownActive(panel));
    QCOMPARE(panel->shownTag(), int(gui::MultiPopover::AccountsTag));
    typeText(QApplication::focusWidget(), "erl");
    press(Qt::Key_Return);
    QVERIFY(!panel->isVisible());
    QCOMPARE(p.item()->getText("account"), "Erlöse");
    QCOMPARE(p.item()->getText("accountNumber"), "4400");
    QCOMPARE(child<QLineEdit>(sheet, "accountField")->text(), QStringLiteral("4400"));
    QTest::mouseClick(child<QToolButton>(sheet, "groupSearchButton"), Qt::LeftButton);
    QVERIFY(shownActive(panel));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    QCOMPARE(p.item()->getText("group"), "Honorare");
    QCOMPARE(child<QComboBox>(sheet, "groupPopUp")->currentText(), QStringLiteral("Honorare"));

    // The DATEV data go straight into the item.
    QTest::mouseClick(child<QPushButton>(sheet, "datevButton"), Qt::LeftButton);
    QVERIFY(shownActive(panel));
    auto* datev = static_cast<gui::DatevView*>(panel->view(gui::MultiPopover::DatevTag));
    clickBox(datev->useOwnData());
    typeInto(datev->account(), "8400");
    typeInto(datev->key(), "3");
    QVERIFY(p.item()->getBool("customDatevData"));
    QCOMPARE(p.item()->getText("customDatevAccount"), "8400");
    QCOMPARE(p.item()->getText("customDatevKey"), "3");
    press(Qt::Key_Escape);

    // A template overwrites the item's kind, title and sum.
    QVERIFY(child<QPushButton>(sheet, "templateButton")->isEnabled());
    QTest::mouseClick(child<QPushButton>(sheet, "templateButton"), Qt::LeftButton);
    QVERIFY(shownActive(panel));
    press(Qt::Key_Return);
    QVERIFY(!panel->isVisible());
    QCOMPARE(p.item()->getText("title"), "Miete Büro");
    QTRY_COMPARE(p.item()->getFloat("finalAmount"), -500.0f);
    QTRY_COMPARE(child<QLabel>(sheet, "algebraicField")->text(), QStringLiteral("-"));
    QCOMPARE(sheet->kindChoice()->chosen(), 1);
    QCOMPARE(child<QLineEdit>(sheet, "titleField")->text(), QStringLiteral("Miete Büro"));
    press(Qt::Key_Return);
    QVERIFY(!sheet->isVisible());
    QVERIFY(p.alerts.take().isEmpty());
}

void FormsTest::aTypedDateIsReadAsDayMonthAndYear() {
    Program& p = *m_program;
    p.addBook();
    gui::ItemSheet* sheet = openNewItem();
    QVERIFY(sheet);
    auto* date = child<gui::DateField>(sheet, "datePicker");
    const QTime time = itemMoment().time();
    QCOMPARE(date->text(), gui::dateFieldText(itemDay()));

    // From the choice of the kind the keyboard comes to the date; typed key by key, the date
    // is taken as a whole when editing ends, at the time of day the item had.
    QCOMPARE(QApplication::focusWidget(), sheet->kindChoice()->firstSegment());
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), date);
    typeText(date, "15.01.2025");
    press(Qt::Key_Tab);
    QCOMPARE(itemDay(), QDate(2025, 1, 15));
    QCOMPARE(itemMoment().time(), time);
    QCOMPARE(date->text(), QStringLiteral("15.01.2025"));

    // Clicked into, the field offers its whole date for typing over.
    QTest::mouseClick(child<QLineEdit>(sheet, "titleField"), Qt::LeftButton);
    QTest::mouseClick(date, Qt::LeftButton, {}, QPoint(8, date->height() / 2));
    QTRY_COMPARE(date->selectedText(), date->text());
    typeText(date, "16.01.2025");
    press(Qt::Key_Tab);
    QCOMPARE(itemDay(), QDate(2025, 1, 16));

    // Short forms: a two-digit year, parts left out, digits alone.
    const std::pair<const char*, QDate> typings[] = {{"3.2.25", QDate(2025, 2, 3)},
                                                     {"15.01.", QDate(2025, 1, 15)},
                                                     {"28", QDate(2025, 1, 28)},
                                                     {"311224", QDate(2024, 12, 31)},
                                                     {"1.1.2025", QDate(2025, 1, 1)}};
    for (const auto& [typed, day] : typings) {
        typeInto(date, QString::fromLatin1(typed));
        press(Qt::Key_Tab);
        QCOMPARE(itemDay(), day);
        QCOMPARE(date->text(), gui::dateFieldText(day));
    }

    // Up and Down step a day; the date is taken when editing ends.
    date->setFocus();
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Up);
    QCOMPARE(date->text(), QStringLiteral("31.12.2024"));
    QCOMPARE(itemDay(), QDate(2025, 1, 1));
    press(Qt::Key_Tab);
    QCOMPARE(itemDay(), QDate(2024, 12, 31));

    // A day the calendar lacks is refused and stays for correcting; the Return that ended
    // it closes nothing.
    typeInto(date, "31.02.2025");
    press(Qt::Key_Return);
    QCOMPARE(p.alerts.take(), QStringList{"„31.02.2025“ ist kein gültiges Datum. Bitte gib Tag, "
                                          "Monat und Jahr ein, zum Beispiel 15.01.2025."});
    QVERIFY(sheet->isVisible());
    QCOMPARE(itemDay(), QDate(2024, 12, 31));
    QTRY_COMPARE(QApplication::focusWidget(), date);
    QCOMPARE(date->text(), QStringLiteral("31.02.2025"));
    typeInto(date, "28.02.2025");
    press(Qt::Key_Tab);
    QCOMPARE(itemDay(), QDate(2025, 2, 28));

    // An emptied field shows the date again.
    typeInto(date, "");
    QTest::keyClick(date, Qt::Key_Delete);
    QCOMPARE(date->text(), QString());
    press(Qt::Key_Tab);
    QCOMPARE(date->text(), QStringLiteral("28.02.2025"));
    QVERIFY(p.alerts.take().isEmpty());

    // The calendar of the panel shows the typed date.
    QTest::mouseClick(child<QToolButton>(sheet, "dateButton"), Qt::LeftButton);
    QVERIFY(shownActive(sheet->popover()));
    auto* view = static_cast<gui::DateView*>(sheet->popover()->view(gui::MultiPopover::DateTag));
    QCOMPARE(view->calendar()->selectedDate(), QDate(2025, 2, 28));
    press(Qt::Key_Escape);
    press(Qt::Key_Escape);
    QVERIFY(!sheet->isVisible());
}

void FormsTest::aTypedSumIsANumberInGermanNotation() {
    Program& p = *m_program;
    p.addBook();
    gui::ItemSheet* sheet = openNewItem();
    QVERIFY(sheet);
    chooseKind(sheet, "expenseButton");
    auto* sum = child<QLineEdit>(sheet, "sumField");
    typeInto(sum, "119,5");
    press(Qt::Key_Tab);
    QCOMPARE(p.item()->getText("amount"), "119.5");

    // What a C library would also read as a number is no sum here.
    for (const char* typed : {"5e3", "1,5E2", "0x10", "inf", "nan", "12,5 €"}) {
        typeInto(sum, QString::fromUtf8(typed));
        press(Qt::Key_Tab);
        QCOMPARE(p.alerts.take(), QStringList{QStringLiteral("„%1“ ist keine gültige Summe. Bitte "
                                                             "gib einen positiven Betrag ein, zum "
                                                             "Beispiel 119,50.")
                                                  .arg(QString::fromUtf8(typed))});
        QCOMPARE(p.item()->getText("amount"), "119.5");
        QTRY_COMPARE(QApplication::focusWidget(), sum);
    }
    typeInto(sum, "1.234,56");
    press(Qt::Key_Tab);
    QCOMPARE(p.item()->getText("amount"), "1234.56");
    QTRY_COMPARE(p.item()->getFloat("finalAmount"), -1234.56f);
    QCOMPARE(sum->text(), QStringLiteral("1.234,56")); // what was typed stands
    QVERIFY(p.alerts.take().isEmpty());
    press(Qt::Key_Escape);
    QVERIFY(!sheet->isVisible());
}

void FormsTest::ctrlTSetsTodayInTheItemFormOnly() {
    Program& p = *m_program;
    p.addBook();
    auto made = Record::make(RecordClass::Item, p.clock.now());
    made->set("title", Value::string("Miete März"));
    made->set("kind", Value::intValue(1));
    made->set("amount", Value::string("500"));
    made->set("date", Value::date(gui::fromQDateTime(QDateTime(QDate(2025, 3, 10), QTime(9, 30)))));
    p.app.selection().items.add(made);
    p.window.refresh();
    QCOMPARE(p.item(), made.get());

    // The main window offers no such key: the selected item keeps its date.
    QVERIFY(QTest::qWaitForWindowActive(&p.window));
    p.window.itemView()->setFocus();
    press(Qt::Key_T, Qt::ControlModifier);
    QCOMPARE(itemDay(), QDate(2025, 3, 10));
    for (const QAction* action : p.window.findChildren<QAction*>())
        QVERIFY2(action->shortcut() != QKeySequence(QStringLiteral("Ctrl+T")),
                 qPrintable(action->text()));
    QVERIFY(p.app.commands().contains("setToday:")); // scripts still reach it

    // In the open form it sets today's date.
    p.command("editItem:");
    gui::ItemSheet* sheet = p.forms.itemSheet();
    QVERIFY(shownActive(sheet));
    press(Qt::Key_T, Qt::ControlModifier);
    QTRY_COMPARE(itemDay(), QDate::currentDate());
    QCOMPARE(child<gui::DateField>(sheet, "datePicker")->text(),
             gui::dateFieldText(QDate::currentDate()));
    press(Qt::Key_Return);
    QVERIFY(!sheet->isVisible());
    QVERIFY(p.alerts.take().isEmpty());
}

void FormsTest::aSearchHandsTheKeyboardToTheFieldAfterItsRow() {
    Program& p = *m_program;
    p.addBook();
    gui::ItemSheet* sheet = openNewItem();
    QVERIFY(sheet);
    gui::MultiPopover* panel = sheet->popover();
    auto* accountSearch = child<QToolButton>(sheet, "accountSearchButton");

    // From the keyboard: the account's row is filled, the category comes next.
    accountSearch->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    QVERIFY(shownActive(panel));
    typeText(QApplication::focusWidget(), "büro");
    press(Qt::Key_Return);
    QVERIFY(!panel->isVisible());
    QCOMPARE(p.item()->getText("accountNumber"), "4930");
    QTRY_COMPARE(QApplication::activeWindow(), sheet);
    QTRY_COMPARE(QApplication::focusWidget(), child<QComboBox>(sheet, "groupPopUp"));

    // A search left with Escape takes nothing and gives the keyboard back to its button.
    QTest::mouseClick(accountSearch, Qt::LeftButton);
    QVERIFY(shownActive(panel));
    press(Qt::Key_Escape);
    QVERIFY(!panel->isVisible());
    QTRY_COMPARE(QApplication::activeWindow(), sheet);
    QTRY_COMPARE(QApplication::focusWidget(), accountSearch);
    QCOMPARE(p.item()->getText("accountNumber"), "4930");

    // A row picked with the mouse; after the category the comment comes next.
    QTest::mouseClick(accountSearch, Qt::LeftButton);
    QVERIFY(shownActive(panel));
    auto* accounts = static_cast<gui::SearchView*>(panel->view(gui::MultiPopover::AccountsTag));
    QListWidgetItem* income = accounts->list()->findItems("Erlöse", Qt::MatchContains).value(0);
    QVERIFY(income);
    const QPoint at = accounts->list()->visualItemRect(income).center();
    QTest::mouseClick(accounts->list()->viewport(), Qt::LeftButton, {}, at);
    press(Qt::Key_Return);
    QVERIFY(!panel->isVisible());
    QCOMPARE(p.item()->getText("accountNumber"), "4400");
    QTRY_COMPARE(QApplication::focusWidget(), child<QComboBox>(sheet, "groupPopUp"));
    QTest::mouseClick(child<QToolButton>(sheet, "groupSearchButton"), Qt::LeftButton);
    QVERIFY(shownActive(panel));
    press(Qt::Key_Return);
    QCOMPARE(p.item()->getText("group"), "Büro");
    QTRY_COMPARE(QApplication::activeWindow(), sheet);
    QTRY_COMPARE(QApplication::focusWidget(), child<QWidget>(sheet, "commentField"));
    press(Qt::Key_Escape);
    QVERIFY(!sheet->isVisible());
}

void FormsTest::screenshots() {
    Program& p = *m_program;
    p.addBook();
    p.settings.setBool("prefsAlwaysShowItemHelpDawer", true);
    gui::ItemSheet* sheet = openNewItem();
    QVERIFY(sheet);
    chooseKind(sheet, "expenseButton");
    typeInto(child<QLineEdit>(sheet, "sumField"), "1.234,56");
    press(Qt::Key_Tab);
    clickBox(child<QCheckBox>(sheet, "taxCheckBox"));
    QTest::mouseClick(sheet->taxChoice()->segment(1), Qt::LeftButton);
    typeInto(child<QLineEdit>(sheet, "titleField"), "Neuer Bürostuhl mit Armlehnen");
    typeInto(child<QLineEdit>(sheet, "accountField"), "4930");
    press(Qt::Key_Return);
    typeText(child<QLineEdit>(sheet, "numberField"), "RE-2026-0042");
    QVERIFY(sheet->grab().save(screenshotPath("item-form.png")));
    QTest::mouseClick(child<QToolButton>(sheet, "calculatorButton"), Qt::LeftButton);
    QVERIFY(sheet->popover()->grab().save(screenshotPath("item-calculator.png")));
    press(Qt::Key_Escape);
    press(Qt::Key_Return);
    QVERIFY(!sheet->isVisible());
    p.settings.setBool("prefsAlwaysShowItemHelpDawer", false);
    p.command("editItem:");
    QVERIFY(shownActive(sheet));
    QVERIFY(sheet->grab().save(screenshotPath("item-form-edit.png")));
    press(Qt::Key_Return);
    QVERIFY(!sheet->isVisible());

    p.settings.setBool("prefsAlwaysShowYearHelpDawer", true);
    p.command("addYear:");
    gui::ChooserSheet* year = p.forms.yearSheet();
    QVERIFY(shownActive(year));
    QVERIFY(year->helpShown());
    typeText(year->chooser(), "2026");
    typeText(year->comment(), "Gründungsjahr");
    QVERIFY(year->grab().save(screenshotPath("year-form.png")));
    press(Qt::Key_Return);
    QVERIFY(!year->isVisible());
    QVERIFY(p.alerts.take().isEmpty());
}

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    FormsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "forms_test.moc"
