// The journal's print and export sheets as a user drives them: opened from the program's
// commands, answered by keyboard, the failure of a build without PDF output told in an alert.

#include "forms/journalsheets.h"
#include "mainwindow.h"

#include "core/settings.h"
#include "platform_qt/qtservices.h"
#include "program/program.h"
#include "shell/session.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <filesystem>

using namespace zifora;
using core::Record;
using core::RecordClass;
using core::Value;

namespace {

/// Answers every alert with its default button and keeps its text.
class AlertCatcher : public QObject {
  public:
    AlertCatcher() {
        m_timer.setInterval(10);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->isVisible()) return;
            texts << box->windowTitle() + ": " + box->informativeText();
            box->defaultButton()->click();
            if (QWidget* owner = box->parentWidget()) owner->window()->activateWindow();
        });
        m_timer.start();
    }
    QStringList texts;

  private:
    QTimer m_timer;
};

/// The desktop program with one client, the year 2025 and the period "März" of one income.
struct Program {
    Program() {
        settings.setFloat("prefs1Rate", 19);
        settings.setBool("firstStepsDone", true);
        settings.setBool("prefsExportPrintWithList", true);
        settings.setInteger("prefsSelectedExportTab", 0);
        const core::Date now = clock.now();
        auto client = Record::make(RecordClass::Client, now);
        auto year = Record::make(RecordClass::Year, now);
        year->set("dateValue", Value::string("2025"));
        auto period = Record::make(RecordClass::Thelist, now);
        period->set("title", Value::string("März"));
        auto item = Record::make(RecordClass::Item, now);
        item->set("kind", Value::intValue(2));
        item->set("title", Value::string("Honorar"));
        item->set("finalAmount", Value::floatValue(119));
        period->items().push_back(item);
        year->thelists().push_back(period);
        client->theYears().push_back(year);
        app.setClients({client});
        app.selectionChanged();
        app.selection().lists.setSelectionIndex(0);
        app.selectionChanged();
        std::filesystem::create_directories(app.places().dataFolder);
        sheets.registerWindows(ui);
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
    gui::JournalSheets sheets{app, &window};
    AlertCatcher alerts;
};

void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QCoreApplication::processEvents();
    QTRY_VERIFY(QApplication::activeWindow());
    QWidget* target = QApplication::focusWidget();
    if (!target) target = QApplication::activeWindow();
    QTest::keyClick(target, key, modifiers);
}

} // namespace

class JournalTest : public QObject {
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

    void theExportSheetChoosesItsFormatByKeyboardAndEscapeCancels() {
        Program p;
        QVERIFY(p.app.run("openTabJournalExport:"));
        gui::JournalSheet* sheet = p.sheets.exportSheet();
        QVERIFY(sheet->isVisible());
        QCOMPARE(sheet->windowModality(), Qt::WindowModal);
        // Without a PDF renderer the journal is written, its PDF is not, and the alert says so.
        QTRY_COMPARE(p.alerts.texts.size(), qsizetype(1));
        QVERIFY(p.alerts.texts[0].startsWith(QStringLiteral("Fehler!: Das PDF der Abrechnung")));
        QVERIFY(p.alerts.texts[0].contains(QStringLiteral("PDFPreviewTab.pdf")));
        QVERIFY(QTest::qWaitForWindowActive(sheet));
        QCOMPARE(sheet->state()->text(),
                 QStringLiteral("Das Journal ist geschrieben; ein PDF davon gibt es noch nicht."));
        QVERIFY(sheet->mainButton()->isEnabled());
        QCOMPARE(QApplication::focusWidget(), sheet->formatChooser());
        QCOMPARE(sheet->formatChooser()->currentText(), QStringLiteral("PDF"));

        press(Qt::Key_Down);
        QCOMPARE(sheet->formatChooser()->currentText(), QStringLiteral("Text (RTF)"));
        QCOMPARE(p.settings.getInteger("prefsSelectedExportTab"), 1);
        press(Qt::Key_Escape);
        QTRY_VERIFY(!sheet->isVisible());
        QVERIFY(std::filesystem::exists(p.app.places().dataFolder + "PDFPreviewTab.html"));
    }

    void thePrintSheetClosesWithReturnAndItsOptionsGoToTheSettings() {
        Program p;
        QVERIFY(p.app.run("openTabJournalPrint:"));
        gui::JournalSheet* sheet = p.sheets.printSheet();
        QTRY_COMPARE(p.alerts.texts.size(), qsizetype(1));
        QVERIFY(QTest::qWaitForWindowActive(sheet));
        // Alt+P switches the item list off for the next journal.
        press(Qt::Key_P, Qt::AltModifier);
        QTRY_VERIFY(!p.settings.getBool("prefsExportPrintWithList"));
        // The default button is "Fertig".
        sheet->mainButton()->setFocus();
        press(Qt::Key_Return);
        QTRY_VERIFY(!sheet->isVisible());
    }
};

QTEST_MAIN(JournalTest)
#include "journal_test.moc"
