// The preferences and the accounts window on the real Qt services: panes, controls that
// write the settings at once, the master-data lists and the client's identity.

#include "preferences/accountswindow.h"
#include "preferences/listtable.h"
#include "preferences/mastercolumns.h"
#include "preferences/panes.h"
#include "preferences/preferencescontroller.h"
#include "preferences/preferenceswindow.h"

#include "core/record.h"
#include "core/settings.h"
#include "platform_qt/qtservices.h"
#include "program/program.h"
#include "shell/session.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <clocale>
#include <memory>

using namespace zifora;
using core::Record;
using core::RecordClass;
using core::Value;
using gui::PreferencesWindow;

namespace {

/// The program as the desktop start makes it, in a home of its own, with one client.
struct Program {
    QTemporaryDir home;
    platform_qt::QtUi ui;
    platform_qt::QtScheduler scheduler;
    platform_qt::SystemClock clock;
    platform_qt::QtClipboard clipboard;
    platform_qt::QtWorkspace workspace;
    core::Places places = core::Places::forHome(home.path().toStdString());
    core::Settings settings{places.settingsFile};
    shell::NoPdfRenderer pdf;
    program::Program program{shell::Services{ui, scheduler, clock, clipboard, workspace, pdf},
                             places, settings};
    shell::Session& app = program.session();
    gui::PreferencesController preferences{app};

    Program() {
        for (const std::string& name : gui::PreferencesController::windowNames())
            ui.addWindow(name,
                         [this, name](bool show) { preferences.showWindowNamed(name, show); });
        app.run("init");
        settings.setFloat("prefs1Rate", 19);
        settings.setFloat("prefs2Rate", 7);
        settings.setString("prefs1RateTitle", "Regelsteuersatz");
        settings.setString("prefs2RateTitle", "Ermäßigter Steuersatz");
        addClient("Erste Firma", {{"1000", "Kasse"}, {"1200", "Bank"}, {"4400", "Erlöse 19 %"}});
        app.selectionChanged();
        window().reload();
    }

    Record& addClient(const char* company,
                      std::vector<std::pair<const char*, const char*>> accounts) {
        core::Ref<Record> client = Record::make(RecordClass::Client, app.now());
        client->set("company", Value::string(company));
        for (auto [number, title] : accounts) {
            core::Ref<Record> account = Record::make(RecordClass::Account, app.now());
            account->set("number", Value::string(number));
            account->set("title", Value::string(title));
            client->accounts().push_back(account);
        }
        app.book().clients().push_back(client);
        return *client;
    }

    PreferencesWindow& window() { return preferences.preferences(); }
    Record& client(size_t index) { return *app.book().clients().at(index); }
    template <class T> T* control(int pane, const char* name) {
        return window().pane(pane)->findChild<T*>(QString::fromLatin1(name));
    }
    QPushButton* button(int pane, const char* command) {
        return control<QPushButton>(pane, command);
    }
};

/// Answers the next message box with the button of `label`, and keeps its title.
void answerNextBox(const QString& label, QString* title = nullptr, int attempts = 200) {
    QTimer::singleShot(10, [=] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) {
            if (attempts > 0) answerNextBox(label, title, attempts - 1);
            return;
        }
        if (title) *title = box->windowTitle();
        for (QAbstractButton* b : box->buttons())
            if (b->text() == label) return b->click();
        box->reject();
    });
}

void saveScreenshot(QWidget& widget, const QString& name) {
    const QString folder = QStringLiteral(ZIFORA_BINARY_DIR "/screenshots");
    QDir().mkpath(folder);
    QVERIFY(widget.grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png")));
}

/// Types `text` key by key, umlauts included.
void type(QWidget* widget, const QString& text) {
    for (QChar c : text) {
        Qt::Key key =
            c.isDigit() ? static_cast<Qt::Key>(Qt::Key_0 + c.digitValue()) : Qt::Key_unknown;
        QTest::sendKeyEvent(QTest::Click, widget, key, QString(c), Qt::NoModifier);
    }
}

/// The editor open in a table's current cell.
QWidget* editorOf(QTableView* view) {
    QWidget* editor = view->indexWidget(view->currentIndex());
    if (!editor) qFatal("no cell of the table is being edited");
    return editor;
}

QStringList accountNumbers(Record& client) {
    QStringList numbers;
    for (const auto& account : client.accounts())
        numbers << QString::fromStdString(account->getText("number"));
    return numbers;
}

} // namespace

class PreferencesTest : public QObject {
    Q_OBJECT
  private slots:
    void initTestCase() { std::setlocale(LC_NUMERIC, "C"); }
    void init() { m_p = std::make_unique<Program>(); }
    void cleanup() { m_p.reset(); }

    void panesSetTheWindowTitle();
    void ratesAreTypedWithADecimalComma();
    void checkBoxesAndPopUpsWriteAtOnce();
    void accountsAreAddedAndRemovedWithTheButtons();
    void draggingReordersTheList();
    void editingTheCompanyUpdatesTheMirror();
    void aNewClientGetsTheCursorInItsName();
    void choosingAnotherClientShowsItsLists();
    void templatesAreEditedInTheirTable();
    void accountsWindowSearchesByNumberAndTitle();
    void screenshotsOfEveryPane();

  private:
    std::unique_ptr<Program> m_p;
};

void PreferencesTest::panesSetTheWindowTitle() {
    PreferencesWindow& w = m_p->window();
    QVERIFY(m_p->app.run("showPrefs:"));
    QVERIFY(w.isVisible());
    QCOMPARE(w.windowTitle(), QStringLiteral("Einstellungen - Allgemein"));
    const QStringList titles{
        QStringLiteral("Einstellungen - Allgemein"),  QStringLiteral("Einstellungen - Daten"),
        QStringLiteral("Einstellungen - Kategorien"), QStringLiteral("Einstellungen - Konten"),
        QStringLiteral("Einstellungen - Vorlagen"),   QStringLiteral("Einstellungen - Benutzer"),
        QStringLiteral("Einstellungen - Steuern")};
    for (int tag = PreferencesWindow::PaneCount - 1; tag >= 0; --tag) {
        w.paneAction(tag)->trigger();
        QCOMPARE(w.currentPane(), tag);
        QCOMPARE(w.windowTitle(), titles[tag]);
    }
    // The help panel opens with a pane only where the settings ask for it.
    m_p->settings.setBool("prefsAlwaysShowPrefsHelpDawer", true);
    w.paneAction(PreferencesWindow::Taxes)->trigger();
    QVERIFY(w.helpShown());
    m_p->settings.setBool("prefsAlwaysShowPrefsHelpDawer", false);
    w.paneAction(PreferencesWindow::Data)->trigger();
    QVERIFY(!w.helpShown());
    // The window names of the program open their panes.
    m_p->ui.showWindow("preferences.templates");
    QCOMPARE(w.windowTitle(), titles[PreferencesWindow::Templates]);
    m_p->ui.hideWindow("preferences");
    QVERIFY(!w.isVisible());
}

void PreferencesTest::ratesAreTypedWithADecimalComma() {
    auto* rate = m_p->control<QLineEdit>(PreferencesWindow::Taxes, "prefs1Rate");
    QVERIFY(rate);
    QCOMPARE(rate->text(), QStringLiteral("19"));
    rate->clear();
    type(rate, QStringLiteral("16,5"));
    Value stored = m_p->settings.get("prefs1Rate");
    QCOMPARE(stored.kind(), core::Kind::Float);
    QCOMPARE(stored.asFloat(), 16.5f);
    // What is no rate is not stored; the field says so.
    type(rate, QStringLiteral("x"));
    QCOMPARE(m_p->settings.getFloat("prefs1Rate"), 16.5f);
    QVERIFY(!rate->styleSheet().isEmpty());
    rate->clear();
    type(rate, QStringLiteral("-7"));
    QCOMPARE(m_p->settings.getFloat("prefs1Rate"), 16.5f);
    // Leaving the field shows the stored rate again.
    emit rate->editingFinished();
    QCOMPARE(rate->text(), QStringLiteral("16,5"));
    QVERIFY(rate->styleSheet().isEmpty());

    // An emptied third rate is no rate at all.
    auto* third = m_p->control<QLineEdit>(PreferencesWindow::Taxes, "prefs3Rate");
    type(third, QStringLiteral("10,7"));
    QCOMPARE(m_p->settings.get("prefs3Rate").asFloat(), 10.7f);
    for (int i = 0; i < 4; ++i)
        QTest::keyClick(third, Qt::Key_Backspace);
    QVERIFY(!m_p->settings.contains("prefs3Rate"));

    auto* title = m_p->control<QLineEdit>(PreferencesWindow::Taxes, "prefs2RateTitle");
    title->selectAll();
    type(title, QStringLiteral("Ermäßigt"));
    QCOMPARE(m_p->settings.getString("prefs2RateTitle"), std::string("Ermäßigt"));
    auto* account = m_p->control<QLineEdit>(PreferencesWindow::Taxes, "prefsDefaultDATEVAccount");
    QCOMPARE(account->text(), QStringLiteral("1000"));
}

void PreferencesTest::checkBoxesAndPopUpsWriteAtOnce() {
    auto* border = m_p->control<QCheckBox>(PreferencesWindow::General, "prefsPrintBorder");
    QVERIFY(!border->isChecked());
    border->click();
    QCOMPARE(m_p->settings.get("prefsPrintBorder"), Value::boolean(true));
    border->setFocus();
    QTest::keyClick(border, Qt::Key_Space);
    QCOMPARE(m_p->settings.get("prefsPrintBorder"), Value::boolean(false));

    // The welcome sheet shows while its key is false: the box says the opposite of the key.
    auto* welcome =
        m_p->control<QCheckBox>(PreferencesWindow::General, "prefsAlwaysShowWelcomeSheet");
    QVERIFY(welcome->isChecked());
    welcome->click();
    QCOMPARE(m_p->settings.get("prefsAlwaysShowWelcomeSheet"), Value::boolean(true));

    auto* currency = m_p->control<QComboBox>(PreferencesWindow::General, "prefsCurrency");
    QCOMPARE(currency->count(), 6);
    currency->setFocus();
    QTest::keyClick(currency, Qt::Key_Down);
    QCOMPARE(m_p->settings.get("prefsCurrency"), Value::integer(1));
    QCOMPARE(currency->currentText(), QStringLiteral("$"));
    // A stored value the list doesn't have shows no entry.
    m_p->settings.setInteger("prefsCurrency", 9);
    m_p->window().reload();
    QCOMPARE(currency->currentIndex(), -1);

    // Settings changed by a command show when the window looks again.
    auto* backup = m_p->control<QCheckBox>(PreferencesWindow::Data, "prefsMakeBackup");
    backup->click();
    QVERIFY(m_p->settings.getBool("prefsMakeBackup"));
    m_p->settings.setBool("prefsMakeBackup", false);
    m_p->settings.setString("prefsBackupPath", "/srv/sicherung");
    m_p->window().reload();
    QVERIFY(!backup->isChecked());
    QCOMPARE(m_p->control<QLineEdit>(PreferencesWindow::Data, "prefsBackupPath.path")->text(),
             QStringLiteral("/srv/sicherung"));
}

void PreferencesTest::accountsAreAddedAndRemovedWithTheButtons() {
    PreferencesWindow& w = m_p->window();
    w.showPane(PreferencesWindow::Accounts);
    w.present();
    Record& client = m_p->client(0);
    QCOMPARE(client.accounts().size(), size_t(3));

    m_p->button(PreferencesWindow::Accounts, "addAccount:")->click();
    QCOMPARE(client.accounts().size(), size_t(4));
    QCOMPARE(client.accounts().back()->getText("number"), std::string("Nummer"));
    // The new row's number is open for typing, its placeholder selected.
    QTableView* view = w.accountsTable()->view();
    QTRY_VERIFY(w.accountsTable()->isEditing());
    auto* editor = qobject_cast<QLineEdit*>(editorOf(view));
    QVERIFY(editor);
    QCOMPARE(editor->selectedText(), QStringLiteral("Nummer"));
    type(editor, QStringLiteral("4830"));
    QTest::keyClick(editor, Qt::Key_Return);
    // The view takes the text on its next turn.
    QTRY_COMPARE(client.accounts().back()->getText("number"), std::string("4830"));

    // Deleting asks first; "Abbrechen" keeps the account.
    QString title;
    answerNextBox(QStringLiteral("Abbrechen"), &title);
    m_p->button(PreferencesWindow::Accounts, "removeAccount:")->click();
    QCOMPARE(title, QStringLiteral("Kostenstelle löschen"));
    QCOMPARE(client.accounts().size(), size_t(4));
    answerNextBox(QStringLiteral("Löschen"));
    m_p->button(PreferencesWindow::Accounts, "removeAccount:")->click();
    QCOMPARE(accountNumbers(client), (QStringList{"1000", "1200", "4400"}));
    QCOMPARE(w.accountsTable()->model()->rowCount(), 3);

    // Categories work alike: a new one is typed in place.
    w.showPane(PreferencesWindow::Categories);
    m_p->button(PreferencesWindow::Categories, "addGroup:")->click();
    QTRY_VERIFY(w.groupsTable()->isEditing());
    type(editorOf(w.groupsTable()->view()), QStringLiteral("Büro"));
    QTest::keyClick(editorOf(w.groupsTable()->view()), Qt::Key_Return);
    QCOMPARE(client.groups().size(), size_t(1));
    QTRY_COMPARE(client.groups().front()->getText("title"), std::string("Büro"));
}

void PreferencesTest::draggingReordersTheList() {
    gui::EditableListModel* model = m_p->window().accountsTable()->model();
    Record& client = m_p->client(0);
    std::unique_ptr<QMimeData> dragged(model->mimeData({model->index(2, 1)}));
    QVERIFY(model->dropMimeData(dragged.get(), Qt::MoveAction, 0, 0, {}));
    QCOMPARE(accountNumbers(client), (QStringList{"4400", "1000", "1200"}));
    QCOMPARE(m_p->app.selection().accounts.selected()->getText("number"), std::string("4400"));
    QCOMPARE(m_p->window().accountsTable()->view()->currentIndex().row(), 0);
    // Dropped on a row, the rows go above it; below the last row, to the end.
    dragged.reset(model->mimeData({model->index(2, 0)}));
    QVERIFY(model->dropMimeData(dragged.get(), Qt::MoveAction, -1, 0, model->index(1, 0)));
    QCOMPARE(accountNumbers(client), (QStringList{"4400", "1200", "1000"}));
    dragged.reset(model->mimeData({model->index(0, 0)}));
    QVERIFY(model->dropMimeData(dragged.get(), Qt::MoveAction, -1, -1, {}));
    QCOMPARE(accountNumbers(client), (QStringList{"1200", "1000", "4400"}));
    // A copy is offered and changes nothing.
    dragged.reset(model->mimeData({model->index(2, 0)}));
    model->dropMimeData(dragged.get(), Qt::CopyAction, 0, 0, {});
    QCOMPARE(accountNumbers(client), (QStringList{"1200", "1000", "4400"}));
    // Rows of another list are refused.
    gui::EditableListModel* groups = m_p->window().groupsTable()->model();
    dragged.reset(model->mimeData({model->index(0, 0)}));
    groups->dropMimeData(dragged.get(), Qt::MoveAction, 0, 0, {});
    QCOMPARE(client.groups().size(), size_t(0));
    QCOMPARE(client.accounts().size(), size_t(3));
}

void PreferencesTest::editingTheCompanyUpdatesTheMirror() {
    m_p->window().showPane(PreferencesWindow::Clients);
    auto* company = m_p->control<QLineEdit>(PreferencesWindow::Clients, "company");
    QCOMPARE(company->text(), QStringLiteral("Erste Firma"));
    company->selectAll();
    type(company, QStringLiteral("Muster GmbH"));
    QCOMPARE(m_p->client(0).getText("company"), std::string("Muster GmbH"));
    QTest::qWait(250);
    QCOMPARE(m_p->settings.getString("prefsCompany"), std::string("Muster GmbH"));
    QCOMPARE(m_p->window().clientsPane()->table()->model()->index(0, 0).data().toString(),
             QStringLiteral("Muster GmbH"));

    auto* kind = m_p->control<QComboBox>(PreferencesWindow::Clients, "taxationKind");
    kind->setFocus();
    QTest::keyClick(kind, Qt::Key_Down);
    QCOMPARE(m_p->client(0).get("taxationKind"), Value::intValue(2));
    // The DATEV numbers of the tax pane edit the same client.
    auto* consultant = m_p->control<QLineEdit>(PreferencesWindow::Taxes, "datevConsultantNumber");
    type(consultant, QStringLiteral("29098"));
    QCOMPARE(m_p->client(0).getText("datevConsultantNumber"), std::string("29098"));
    QTest::qWait(250);
    QCOMPARE(m_p->settings.getInteger("prefsUseTaxesGlobal"), 2);
    QCOMPARE(m_p->settings.getString("datevConsultantNumber"), std::string("29098"));
    QCOMPARE(m_p->control<QLineEdit>(PreferencesWindow::Clients, "datevConsultantNumber")->text(),
             QStringLiteral("29098"));
}

void PreferencesTest::aNewClientGetsTheCursorInItsName() {
    PreferencesWindow& w = m_p->window();
    w.present();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    m_p->app.run("createClient:");
    QCOMPARE(m_p->app.book().clients().size(), size_t(2));
    QCOMPARE(w.currentPane(), int(PreferencesWindow::Clients));
    auto* company = m_p->control<QLineEdit>(PreferencesWindow::Clients, "company");
    QTRY_VERIFY(company->hasFocus());
    QCOMPARE(company->selectedText(), QStringLiteral("Neue Firma"));
    QTest::qWait(250);
    QCOMPARE(m_p->settings.getString("prefsCompany"), std::string("Neue Firma"));

    answerNextBox(QStringLiteral("Löschen"));
    m_p->button(PreferencesWindow::Clients, "deleteClient:")->click();
    QCOMPARE(m_p->app.book().clients().size(), size_t(1));
    QCOMPARE(w.clientsPane()->table()->model()->rowCount(), 1);
}

void PreferencesTest::choosingAnotherClientShowsItsLists() {
    m_p->addClient("Zweite Firma", {{"8400", "Erlöse"}});
    m_p->window().reload();
    QTableView* clients = m_p->window().clientsPane()->table()->view();
    clients->setCurrentIndex(clients->model()->index(1, 0));
    QCOMPARE(m_p->app.selection().currentClient(), &m_p->client(1));
    QCOMPARE(m_p->window().accountsTable()->model()->rowCount(), 1);
    QCOMPARE(m_p->window().accountsTable()->model()->index(0, 0).data().toString(),
             QStringLiteral("8400"));
    QCOMPARE(m_p->control<QLineEdit>(PreferencesWindow::Clients, "company")->text(),
             QStringLiteral("Zweite Firma"));
    QTest::qWait(250);
    QCOMPARE(m_p->settings.getString("prefsCompany"), std::string("Zweite Firma"));
}

void PreferencesTest::templatesAreEditedInTheirTable() {
    PreferencesWindow& w = m_p->window();
    w.present();
    // A new template is made where the program asks for it, and typed in at once.
    m_p->app.run("addTemplate:");
    QCOMPARE(w.currentPane(), int(PreferencesWindow::Templates));
    QTRY_VERIFY(w.templatesTable()->isEditing());
    type(editorOf(w.templatesTable()->view()), QStringLiteral("Miete"));
    QTest::keyClick(editorOf(w.templatesTable()->view()), Qt::Key_Return);
    Record& made = *m_p->client(0).items().front();
    QTRY_COMPARE(made.getText("title"), std::string("Miete"));

    gui::EditableListModel* model = w.templatesTable()->model();
    QVERIFY(model->setData(model->index(0, 1), QStringLiteral("Ausgabe"), Qt::EditRole));
    QCOMPARE(made.get("kind"), Value::intValue(1));
    QVERIFY(model->setData(model->index(0, 3), QStringLiteral("1200 – Bank"), Qt::EditRole));
    QCOMPARE(made.getText("account"), std::string("Bank"));
    QCOMPARE(made.getText("accountNumber"), std::string("1200"));
    QVERIFY(model->setData(model->index(0, 4), QStringLiteral("1.234,5"), Qt::EditRole));
    QCOMPARE(made.get("amount"), Value::string("1234.5"));
    QCOMPARE(model->index(0, 4).data().toString(), QStringLiteral("1234,5"));
    QVERIFY(!model->setData(model->index(0, 4), QStringLiteral("zwölf"), Qt::EditRole));
    QCOMPARE(made.get("amount"), Value::string("1234.5"));

    QStringList taxes = gui::taxChoices(m_p->settings);
    QCOMPARE(taxes[1], QStringLiteral("Regelsteuersatz (19 %)"));
    QVERIFY(model->setData(model->index(0, 5), taxes[2], Qt::EditRole));
    QCOMPARE(made.get("taxBool"), Value::boolean(true));
    QCOMPARE(made.get("taxTag"), Value::intValue(2));
    QVERIFY(model->setData(model->index(0, 5), taxes[0], Qt::EditRole));
    QCOMPARE(made.get("taxBool"), Value::boolean(false));
}

void PreferencesTest::accountsWindowSearchesByNumberAndTitle() {
    QVERIFY(m_p->app.run("runKontenwerker:"));
    gui::AccountsWindow& w = m_p->preferences.accountsWindow();
    QVERIFY(w.isVisible());
    QCOMPARE(w.windowTitle(), QStringLiteral("Kontenrahmen bearbeiten"));
    type(w.searchField(), QStringLiteral("bank"));
    QCOMPARE(w.table()->visibleRows(), 1);
    w.searchField()->clear();
    type(w.searchField(), QStringLiteral("00"));
    QCOMPARE(w.table()->visibleRows(), 3);
    w.searchField()->clear();
    type(w.searchField(), QStringLiteral("44"));
    QCOMPARE(w.table()->visibleRows(), 1);

    // A new account clears the search and is typed in this window, not in the preferences.
    w.table()->findChild<QPushButton*>(QStringLiteral("addAccount:"))->click();
    QTRY_VERIFY(w.table()->isEditing());
    QVERIFY(w.searchField()->text().isEmpty());
    QCOMPARE(w.table()->visibleRows(), 4);
    QVERIFY(!m_p->window().isVisible());
    type(editorOf(w.table()->view()), QStringLiteral("4831"));
    QTest::keyClick(editorOf(w.table()->view()), Qt::Key_Return);
    QTRY_COMPARE(accountNumbers(m_p->client(0)).last(), QStringLiteral("4831"));
    // The pane of the preferences shows the same list.
    QCOMPARE(m_p->window().accountsTable()->model()->rowCount(), 4);

    // A built-in chart replaces the accounts once the question is answered.
    auto* load = w.findChild<QPushButton*>(QStringLiteral("loadDefaultAccounts:"));
    QString title;
    answerNextBox(QStringLiteral("Abbrechen"), &title);
    load->click();
    QCOMPARE(title, QStringLiteral("Standard DATEV Kontenrahmen (nach SK04) laden"));
    QCOMPARE(m_p->client(0).accounts().size(), size_t(4));
    answerNextBox(QStringLiteral("Standard Set"));
    load->click();
    const int loaded = static_cast<int>(m_p->client(0).accounts().size());
    QVERIFY(loaded > 4);
    QCOMPARE(w.table()->visibleRows(), loaded);
    QCOMPARE(m_p->window().accountsTable()->model()->rowCount(), loaded);
}

void PreferencesTest::screenshotsOfEveryPane() {
    Record& client = m_p->client(0);
    client.set("taxNumber", Value::string("21/815/08150"));
    for (const char* title : {"Büromaterial", "Fahrtkosten", "Honorare", "Miete", "Telefon"}) {
        core::Ref<Record> group = Record::make(RecordClass::Group, m_p->app.now());
        group->set("title", Value::string(title));
        client.groups().push_back(group);
    }
    core::Ref<Record> rent = Record::make(RecordClass::Item, m_p->app.now());
    for (auto [key, text] : {std::pair{"title", "Miete Büro"},
                             {"group", "Miete"},
                             {"account", "Bank"},
                             {"accountNumber", "1200"},
                             {"amount", "850"}})
        rent->set(key, Value::string(text));
    rent->set("kind", Value::intValue(1));
    client.items().push_back(rent);
    m_p->addClient("Zweite Firma", {});
    m_p->app.selectionChanged();

    PreferencesWindow& w = m_p->window();
    w.present();
    const char* names[] = {"allgemein", "daten",    "kategorien", "konten",
                           "vorlagen",  "benutzer", "steuern"};
    for (int tag = 0; tag < PreferencesWindow::PaneCount; ++tag) {
        w.showPane(tag);
        QTest::qWait(20);
        QVERIFY(w.width() <= 1280 && w.height() <= 800);
        saveScreenshot(w,
                       QStringLiteral("preferences-%1-%2").arg(tag).arg(QLatin1String(names[tag])));
    }
    m_p->settings.setBool("prefsAlwaysShowPrefsHelpDawer", true);
    w.showPane(PreferencesWindow::Accounts);
    QTest::qWait(20);
    saveScreenshot(w, QStringLiteral("preferences-3-konten-hilfe"));
    m_p->app.run("loadDefaultAccountsSetup:");
    m_p->app.run("runKontenwerker:");
    QTest::qWait(20);
    saveScreenshot(m_p->preferences.accountsWindow(), QStringLiteral("accounts-window"));
    type(m_p->preferences.accountsWindow().searchField(), QStringLiteral("kfz"));
    QTest::qWait(20);
    saveScreenshot(m_p->preferences.accountsWindow(), QStringLiteral("accounts-window-search"));
}

QTEST_MAIN(PreferencesTest)
#include "preferences_test.moc"
