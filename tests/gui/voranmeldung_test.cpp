// The advance-return window driven as a user drives it: opened from the command, a payment
// typed, the mark ticked and its question answered, closed with Escape.

#include "forms/formsheets.h"
#include "forms/voranmeldungsheet.h"
#include "mainwindow.h"

#include "core/settings.h"
#include "platform_qt/qtservices.h"
#include "posting/itemcalculation.h"
#include "program/program.h"
#include "shell/session.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace zifora;
using core::Record;
using core::RecordClass;
using core::Value;

namespace {

/// Answers every alert with its default button and counts them.
class AlertAnswerer : public QObject {
  public:
    AlertAnswerer() {
        m_timer.setInterval(10);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->isVisible()) return;
            titles << box->windowTitle();
            box->defaultButton()->click();
        });
        m_timer.start();
    }
    QStringList titles;

  private:
    QTimer m_timer;
};

/// The desktop program around one client with March 2026 holding an income of 119 at 19 %.
struct Program {
    Program() {
        settings.setFloat("prefs1Rate", 19);
        settings.setFloat("prefs2Rate", 7);
        settings.setBool("firstStepsDone", true);
        const core::Date now = clock.now();
        client = Record::make(RecordClass::Client, now);
        auto year = Record::make(RecordClass::Year, now);
        year->set("dateValue", Value::string("2026"));
        period = Record::make(RecordClass::Thelist, now);
        period->set("title", Value::string("März"));
        auto item = Record::make(RecordClass::Item, now);
        item->set("kind", Value::intValue(2));
        item->set("taxBool", Value::boolean(true));
        item->set("taxTag", Value::intValue(1));
        posting::applyItemAmounts(
            *item, posting::calculateItemAmounts({119.0f, 2, true, 1, false, {19, 7, 0}}));
        period->items().push_back(item);
        year->thelists().push_back(period);
        client->theYears().push_back(year);
        app.setClients({client});
        app.selectionChanged();
        forms.registerWindows(ui);
        ui.setParentWindow(&window);
        window.show();
        window.refresh();
    }

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
    core::Ref<Record> period;
    AlertAnswerer alerts;
};

template <typename T> T* child(QWidget* in, const char* name) {
    T* found = in->findChild<T*>(QString::fromLatin1(name));
    if (!found) qWarning("no widget %s", name);
    return found;
}

} // namespace

class VoranmeldungTest : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        static QtMessageHandler testlib = nullptr;
        testlib = qInstallMessageHandler(
            [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
                if (!text.startsWith(QLatin1String("This plugin does not support")))
                    testlib(type, context, text);
            });
    }

    void figuresPaymentsMarkAndEscape() {
        Program p;
        QDir().mkpath(QString::fromStdString(p.app.places().dataFolder));
        QVERIFY(p.app.run("openVoranmeldungsWindow:"));
        gui::VoranmeldungSheet* sheet = p.forms.voranmeldungSheet();
        QVERIFY(QTest::qWaitForWindowActive(sheet));
        QCOMPARE(sheet->windowTitle(), QStringLiteral("Umsatzsteuer-Voranmeldung – März 2026"));
        QCOMPARE(child<QLineEdit>(sheet, "tax1SumField")->text(), QStringLiteral("100,00"));
        QCOMPARE(child<QLineEdit>(sheet, "saldoField")->text(), QStringLiteral("19,00"));

        // A payment typed on the second page goes to the period and the balance follows.
        auto* tabs = sheet->findChild<QTabWidget*>();
        tabs->setCurrentIndex(1);
        auto* payment = child<QLineEdit>(sheet, "tabPaymentField");
        payment->setFocus();
        payment->selectAll();
        QTest::keyClicks(payment, QStringLiteral("50,5"));
        QTest::keyClick(payment, Qt::Key_Return); // ends the typing, leaves the window open
        QVERIFY(sheet->isVisible());
        QCOMPARE(p.period->getFloat("payment"), 50.5f);
        QCOMPARE(child<QLineEdit>(sheet, "tabBalanceField")->text(), QStringLiteral("50,50"));

        // Ticking the mark asks; the default button takes the program's figures.
        tabs->setCurrentIndex(2);
        auto* mark = child<QCheckBox>(sheet, "voranmeldungMarkCheckBox");
        QTest::mouseClick(mark, Qt::LeftButton, {}, QPoint(8, mark->height() / 2));
        QTRY_VERIFY(p.period->getBool("taxBool"));
        QTRY_COMPARE(p.period->getFloat("payment"), 19.0f);
        QVERIFY(p.alerts.titles.contains(QStringLiteral("Voranmeldung als erstellt markieren")));
        QCOMPARE(child<QLineEdit>(sheet, "zahlungFieldBuchung")->text(), QStringLiteral("19,00"));
        QCOMPARE(p.settings.getInteger("selectedVoranmeldungTabIndex"), 2);

        // The settings panel: a change is stored and the figures are computed again.
        p.settings.setFloat("tab-saldoField", 99);
        QPushButton* options = nullptr;
        for (auto* button : sheet->findChildren<QPushButton*>())
            if (button->text() == QStringLiteral("Ein&stellungen …")) options = button;
        QVERIFY(options);
        options->click();
        QCOMPARE(p.app.fields().get("multiPopoverView").text(), "voranmeldungSettings");
        QCheckBox* border = nullptr;
        for (auto* box : sheet->findChildren<QCheckBox*>())
            if (box->text() == QStringLiteral("Tabellen mit &Rahmen")) border = box;
        QVERIFY(border);
        border->click();
        QVERIFY(p.settings.getBool("prefsPrintBorder"));
        QCOMPARE(p.settings.getFloat("tab-saldoField"), 19.0f);
        border->window()->close();

        QTest::keyClick(sheet, Qt::Key_Escape);
        QTRY_VERIFY(!sheet->isVisible());
    }
};

QTEST_MAIN(VoranmeldungTest)
#include "voranmeldung_test.moc"
