// The windows of the start on the real Qt services, from the first start of an empty home:
// the agreement, then the welcome sheet with its check box, the set-up assistant to its end,
// the newsletter panel of a later start, the help sheets and the about panel.

#include "mainwindow.h"
#include "preferences/listtable.h"
#include "setupassistant.h"
#include "startsheets.h"

#include "core/record.h"
#include "core/settings.h"
#include "platform_qt/qtservices.h"
#include "program/program.h"
#include "shell/session.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <clocale>
#include <map>
#include <memory>

using namespace zifora;
using core::Value;

namespace {

/// A desktop that notes what it is asked to open instead of opening it.
class NotingWorkspace final : public shell::Workspace {
  public:
    bool openFile(const std::string& path) override {
        opened.push_back(path);
        return true;
    }
    bool revealFile(const std::string&) override { return true; }
    bool launch(const std::string&, const std::vector<std::string>&) override { return true; }
    bool composeMail(const std::string&, const std::string&,
                     const std::vector<std::string>&) override {
        return true;
    }
    void terminate() override { terminated = true; }

    std::vector<std::string> opened;
    bool terminated = false;
};

/// Answers every message box that comes up, by its title with the button of that label or
/// else with the default button, and notes the titles in order.
class BoxAnswerer {
  public:
    explicit BoxAnswerer(std::map<QString, QString> answers) : m_answers(std::move(answers)) {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { answer(); });
        m_timer.start(10);
    }
    QStringList titles;

  private:
    void answer() {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible()) return;
        titles << box->windowTitle();
        auto it = m_answers.find(box->windowTitle());
        for (QAbstractButton* b : box->buttons())
            if (it != m_answers.end() && b->text() == it->second) return b->click();
        box->defaultButton()->click();
    }

    std::map<QString, QString> m_answers;
    QTimer m_timer;
};

const QString kAgreement = QStringLiteral("Leider notwendiger Hinweis");
const QString kAgree = QStringLiteral("Ja, ich mache meine Fehler selber");

/// The desktop program in a home of its own, with the windows of the start registered.
struct Program {
    QTemporaryDir home;
    platform_qt::QtUi ui;
    platform_qt::QtScheduler scheduler;
    platform_qt::SystemClock clock;
    platform_qt::QtClipboard clipboard;
    NotingWorkspace workspace;
    core::Places places = core::Places::forHome(home.path().toStdString());
    core::Settings settings{places.settingsFile};
    shell::NoPdfRenderer pdf;
    program::Program program{shell::Services{ui, scheduler, clock, clipboard, workspace, pdf},
                             places, settings};
    shell::Session& app = program.session();
    gui::MainWindow window{app};
    gui::StartSheets sheets{app, &window, {}};

    Program() {
        ui.setParentWindow(&window);
        ui.addWindow("main", [this](bool show) { window.setVisible(show); });
        sheets.registerWindows(ui);
    }

    /// The start as the desktop program runs it; boxes are answered by `answerer`.
    void start() {
        app.run("init");
        app.run("awakeFromNib");
        window.refresh();
    }
    void run(const char* command) {
        QVERIFY(app.run(command));
        window.refresh();
    }
    gui::SetupAssistant& assistant() { return *sheets.assistant(); }
};

void saveScreenshot(QWidget& widget, const QString& name) {
    const QString folder = QStringLiteral(ZIFORA_BINARY_DIR "/screenshots");
    QDir().mkpath(folder);
    QVERIFY(widget.grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png")));
}

void click(QWidget* parent, const char* name) {
    auto* button = parent->findChild<QAbstractButton*>(QString::fromLatin1(name));
    QVERIFY2(button, name);
    QVERIFY2(button->isVisible() && button->isEnabled(), name);
    button->click();
}

} // namespace

class WelcomeTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { std::setlocale(LC_NUMERIC, "C"); }
    void init() { m_p = std::make_unique<Program>(); }
    void cleanup() { m_p.reset(); }

    void theWelcomeSheetFollowsTheAgreementAtTheFirstStart();
    void itsCheckBoxWritesTheSettingThatKeepsItAway();
    void aLaterStartOffersTheNewsletterUntilItIsRefused();
    void finishingTheAssistantEndsTheSetUp();
    void leavingTheAssistantEarlyKeepsTheSetUpOpen();
    void helpSheetsAndTheAboutPanelCloseWithEscape();

  private:
    void firstStart();
    std::unique_ptr<Program> m_p;
};

void WelcomeTest::firstStart() {
    BoxAnswerer answerer(std::map<QString, QString>{{kAgreement, kAgree}});
    m_p->start();
    // The first run makes the first client, and says so a moment later.
    QTRY_COMPARE(answerer.titles,
                 (QStringList{kAgreement, QStringLiteral("Migration erfolgreich!")}));
    QTRY_VERIFY(m_p->sheets.welcome()->isVisible());
}

void WelcomeTest::theWelcomeSheetFollowsTheAgreementAtTheFirstStart() {
    BoxAnswerer answerer(std::map<QString, QString>{{kAgreement, kAgree}});
    m_p->start();
    QCOMPARE(answerer.titles.value(0), kAgreement);
    QVERIFY(m_p->window.isVisible());
    // A moment after the main window, and beside it: the main window stays usable.
    QVERIFY(!m_p->sheets.welcome()->isVisible());
    QTRY_VERIFY(m_p->sheets.welcome()->isVisible());
    QVERIFY(!m_p->sheets.welcome()->isModal());
    QVERIFY2(!m_p->sheets.newsletter()->isVisible(), "the agreement takes its place");
    QVERIFY(!m_p->sheets.welcomeCheckBox()->isChecked());
    QCOMPARE(m_p->sheets.welcome()->button("selectAssi:")->isDefault(), true);
    saveScreenshot(*m_p->sheets.welcome(), QStringLiteral("willkommen"));

    QTest::keyClick(m_p->sheets.welcome(), Qt::Key_Escape);
    QVERIFY(!m_p->sheets.welcome()->isVisible());
    QVERIFY2(!m_p->settings.getBool("prefsAlwaysShowWelcomeSheet"), "closing is not refusing");
}

void WelcomeTest::itsCheckBoxWritesTheSettingThatKeepsItAway() {
    firstStart();
    QCheckBox* box = m_p->sheets.welcomeCheckBox();
    QCOMPARE(box->text(), QStringLiteral("Beim Start &nicht mehr anzeigen"));
    box->click();
    QCOMPARE(m_p->settings.get("prefsAlwaysShowWelcomeSheet"), Value::boolean(true));
    box->click();
    QCOMPARE(m_p->settings.get("prefsAlwaysShowWelcomeSheet"), Value::boolean(false));
    box->click();
    click(m_p->sheets.welcome(), "closeWelcome:");
    QVERIFY(!m_p->sheets.welcome()->isVisible());

    // Opened again from the menu, it shows what the setting holds.
    m_p->settings.setBool("prefsAlwaysShowWelcomeSheet", false);
    m_p->run("showWelcome:");
    QVERIFY(m_p->sheets.welcome()->isVisible());
    QVERIFY(!box->isChecked());
}

void WelcomeTest::aLaterStartOffersTheNewsletterUntilItIsRefused() {
    m_p->settings.setBool("veryFirstAlertDone", true);
    m_p->settings.setBool("isMigration_4.0_done", true);
    m_p->settings.setBool("updateTo4.0", true);
    m_p->settings.setBool("prefsAlwaysShowWelcomeSheet", true);
    BoxAnswerer answerer(std::map<QString, QString>{});
    m_p->start();
    QVERIFY(answerer.titles.isEmpty());
    gui::TextSheet* newsletter = m_p->sheets.newsletter();
    QVERIFY(newsletter->isVisible());
    saveScreenshot(*newsletter, QStringLiteral("newsletter"));
    QTest::qWait(700);
    QVERIFY2(!m_p->sheets.welcome()->isVisible(), "the ticked box keeps the welcome away");

    click(newsletter, "openNewsletter:");
    QCOMPARE(m_p->workspace.opened,
             (std::vector<std::string>{"https://www.zifora.de/newsletter/"}));
    QVERIFY(newsletter->isVisible());
    QTest::keyClick(newsletter, Qt::Key_Escape);
    QVERIFY(!newsletter->isVisible());
    QVERIFY2(!m_p->settings.getBool("isWelcomeerShown"), "Escape means later");

    m_p->ui.showWindow("newsletter");
    click(newsletter, "closeNewsletterForever:");
    QVERIFY(!newsletter->isVisible());
    QVERIFY(m_p->settings.getBool("isWelcomeerShown"));
}

void WelcomeTest::finishingTheAssistantEndsTheSetUp() {
    firstStart();
    QCOMPARE(m_p->window.firstStepsImage(), std::string("ja1"));
    click(m_p->sheets.welcome(), "selectAssi:");
    gui::SetupAssistant& assistant = m_p->assistant();
    QVERIFY(!m_p->sheets.welcome()->isVisible());
    QVERIFY(assistant.isVisible());
    QCOMPARE(assistant.currentPage(), int(gui::SetupAssistant::Identity));
    QVERIFY(!assistant.backButton()->isEnabled());

    // The name field has the keyboard; what is typed goes into the client and its mirror.
    auto* company = qobject_cast<QLineEdit*>(assistant.focusWidget());
    QVERIFY(company);
    QCOMPARE(company->objectName(), QStringLiteral("company"));
    company->selectAll();
    QTest::keyClicks(company, QStringLiteral("Atelier Sonnenblume"));
    QCOMPARE(m_p->app.selection().currentClient()->getText("company"),
             std::string("Atelier Sonnenblume"));
    QTRY_COMPARE(m_p->settings.getString("prefsCompany"), std::string("Atelier Sonnenblume"));
    saveScreenshot(assistant, QStringLiteral("assistent-angaben"));

    QTest::keyClick(&assistant, Qt::Key_Return);
    QCOMPARE(assistant.currentPage(), int(gui::SetupAssistant::Rates));
    QCOMPARE(assistant.findChild<QLineEdit*>(QStringLiteral("prefs1Rate"))->text(),
             QStringLiteral("19"));
    saveScreenshot(assistant, QStringLiteral("assistent-steuersaetze"));

    click(&assistant, "next");
    QCOMPARE(assistant.currentPage(), int(gui::SetupAssistant::Chart));
    QCOMPARE(m_p->app.selection().accounts.count(), size_t(0));
    click(&assistant, "loadMinimalAccountsSetup:");
    click(&assistant, "loadChart");
    const size_t loaded = m_p->app.selection().accounts.count();
    QVERIFY(loaded >= 30 && loaded <= 60);
    QCOMPARE(assistant.findChild<QLabel*>(QStringLiteral("accountCount"))->text(),
             QStringLiteral("Der Benutzer hat %1 Konten.").arg(loaded));
    QCOMPARE(assistant.accountsTable()->visibleRows(), int(loaded));
    saveScreenshot(assistant, QStringLiteral("assistent-kontenrahmen"));

    click(&assistant, "next");
    click(&assistant, "next");
    QCOMPARE(assistant.currentPage(), int(gui::SetupAssistant::Done));
    QVERIFY(!assistant.nextButton()->isVisible());
    saveScreenshot(assistant, QStringLiteral("assistent-fertig"));
    QVERIFY(!m_p->settings.getBool("isSetupDone"));
    QTest::keyClick(&assistant, Qt::Key_Return);

    QVERIFY(!assistant.isVisible());
    QVERIFY(m_p->settings.getBool("isSetupDone"));
    QCOMPARE(m_p->settings.getInteger("jaImage"), int64_t(2));
    QCOMPARE(m_p->window.firstStepsImage(), std::string("ja2"));
}

void WelcomeTest::leavingTheAssistantEarlyKeepsTheSetUpOpen() {
    firstStart();
    m_p->run("selectAssi:");
    gui::SetupAssistant& assistant = m_p->assistant();
    click(&assistant, "next");
    QTest::keyClick(&assistant, Qt::Key_Escape);
    QVERIFY(!assistant.isVisible());
    QVERIFY(!m_p->settings.getBool("isSetupDone"));
    // Entered again, it begins at its first page.
    m_p->run("selectAssi:");
    QCOMPARE(assistant.currentPage(), int(gui::SetupAssistant::Identity));
    click(&assistant, "cancelAssi:");
    QVERIFY(!assistant.isVisible());
    QVERIFY(!m_p->settings.getBool("isSetupDone"));
}

void WelcomeTest::helpSheetsAndTheAboutPanelCloseWithEscape() {
    for (const char* part : {"First", "Assi", "Account", "Entry"}) {
        const std::string window = std::string("sheet") + part;
        gui::TextSheet* sheet = m_p->sheets.helpSheet(window);
        QVERIFY2(sheet, part);
        m_p->run(("openSheet" + std::string(part) + ":").c_str());
        QVERIFY2(sheet->isVisible(), part);
        QVERIFY2(!sheet->windowTitle().isEmpty(), part);
        saveScreenshot(*sheet, QString::fromStdString(window));
        QTest::keyClick(sheet, Qt::Key_Escape);
        QVERIFY2(!sheet->isVisible(), part);
        m_p->run(("openSheet" + std::string(part) + ":").c_str());
        QTest::keyClick(sheet, Qt::Key_Return);
        QVERIFY2(!sheet->isVisible(), part);
    }

    m_p->run("showAbout:");
    gui::TextSheet* about = m_p->sheets.about();
    QVERIFY(about->isVisible());
    saveScreenshot(*about, QStringLiteral("ueber-zifora"));
    const QString text = about->findChild<QLabel*>(QStringLiteral("text"))->text();
    QVERIFY(text.contains(QStringLiteral("Version " ZIFORA_VERSION)));
    click(about, "openACK:");
    QCOMPARE(m_p->workspace.opened.back(), std::string("https://www.zifora.de/danksagungen/"));
    QTest::keyClick(about, Qt::Key_Escape);
    QVERIFY(!about->isVisible());
}

QTEST_MAIN(WelcomeTest)
#include "welcome_test.moc"
