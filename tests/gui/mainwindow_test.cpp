// The main window on the offscreen platform: the toolbar's items and their arrangement,
// the commands its buttons run, the lists of the chain with their drags, the keyboard, the
// sum and the first-steps hint. Screenshots of a small book go to <build>/screenshots/.

#include "icons.h"
#include "mainwindow.h"
#include "menus.h"
#include "preferences/preferencescontroller.h"
#include "toolbar.h"
#include "toolbardialog.h"

#include "core/record.h"
#include "core/settings.h"
#include "platform_qt/qtservices.h"
#include "posting/itemcalculation.h"
#include "posting/valuetransformers.h"
#include "program/program.h"
#include "shell/session.h"

#include <QAction>
#include <QDateTime>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QWidgetAction>
#include <QtTest>

#include <map>
#include <memory>
#include <set>

using namespace zifora;

namespace {

/// Alerts answered with the default button and windows noted, without any modal loop.
class TestUi final : public shell::Ui {
  public:
    int alert(const shell::AlertRequest& request) override {
        alerts.push_back(request);
        return 1;
    }
    void beep() override { ++beeps; }
    std::optional<std::string> chooseFile(const shell::DialogRequest&) override {
        return std::nullopt;
    }
    void showWindow(const std::string& name) override { shown.push_back(name); }
    void hideWindow(const std::string& name) override { hidden.push_back(name); }
    void preview(const std::string&, const std::string&) override {}
    bool print(const shell::PrintRequest&) override { return false; }

    std::vector<shell::AlertRequest> alerts;
    std::vector<std::string> shown;
    std::vector<std::string> hidden;
    int beeps = 0;
};

/// A desktop on which only the programs in `installed` start.
class TestWorkspace final : public shell::Workspace {
  public:
    bool openFile(const std::string&) override { return true; }
    bool revealFile(const std::string&) override { return true; }
    bool launch(const std::string& program, const std::vector<std::string>&) override {
        tried.push_back(program);
        return installed.contains(program);
    }
    bool composeMail(const std::string&, const std::string&,
                     const std::vector<std::string>&) override {
        return true;
    }
    void terminate() override {}

    std::set<std::string> installed;
    std::vector<std::string> tried;
};

core::Date dayOf(int month, int day, int year = 2026) {
    QDateTime moment(QDate(year, month, day), QTime(10, 0), Qt::UTC);
    return core::Date::fromUnix(static_cast<double>(moment.toSecsSinceEpoch()));
}

struct Posting {
    const char* title;
    int kind; // 1 expense, 2 income
    const char* amount;
    int taxTag; // 0 without tax
    int month;
    int day;
    const char* group;
    const char* account;
    bool unpaid = false;
    const char* document = nullptr;
};

core::Ref<core::Record> makeItem(const Posting& p, int year) {
    auto item = core::Record::make(core::RecordClass::Item, dayOf(p.month, p.day, year));
    item->set("title", core::Value::string(p.title));
    item->set("kind", core::Value::intValue(p.kind));
    item->set("amount", core::Value::string(p.amount));
    item->set("taxBool", core::Value::boolean(p.taxTag != 0));
    item->set("taxTag", core::Value::intValue(p.taxTag));
    item->set("group", core::Value::string(p.group));
    item->set("account", core::Value::string(p.account));
    item->set("unpaidBool", core::Value::boolean(p.unpaid));
    if (p.document) {
        item->set("fileBool", core::Value::boolean(true));
        item->set("fileTitle", core::Value::string(p.document));
        item->set("filePath", core::Value::string(std::string("/tmp/") + p.document));
    }
    (void)posting::calculateItem(*item, posting::TaxRates{19.0f, 7.0f, 0.0f});
    return item;
}

core::Ref<core::Record> makePeriod(const char* title, const std::vector<Posting>& postings,
                                   int year) {
    auto period = core::Record::make(core::RecordClass::Thelist, dayOf(1, 1, year));
    period->set("title", core::Value::string(title));
    for (const Posting& p : postings)
        period->items().push_back(makeItem(p, year));
    return period;
}

/// A small book: one client, the years 2026 and 2025, three periods in 2026.
core::RecordList smallBook() {
    auto client = core::Record::make(core::RecordClass::Client, dayOf(1, 1));
    client->set("company", core::Value::string("Muster GmbH"));
    auto year = core::Record::make(core::RecordClass::Year, dayOf(1, 1));
    year->set("dateValue", core::Value::string("2026"));
    // Entered out of date order on purpose: the list shows them by date.
    year->thelists().push_back(makePeriod(
        "Januar",
        {{"Honorar Webseite Bäckerei Krume", 2, "2380", 1, 1, 20, "Erlöse", "Erlöse 19 % USt"},
         {"Büromiete Januar", 1, "950", 0, 1, 2, "Miete", "Miete (unbewegliche Wirtschaftsgüter)"},
         {"Druckerpapier und Toner", 1, "89.90", 1, 1, 7, "Büromaterial", "Bürobedarf", false,
          "toner.pdf"},
         {"Fachbuch Steuerrecht", 1, "49.80", 2, 1, 9, "Fachliteratur", "Zeitschriften, Bücher"},
         {"Porto Januar", 1, "17.40", 0, 1, 12, "Porto", "Porto"},
         {"Beratung Stadtwerke", 2, "1190", 1, 1, 14, "Erlöse", "Erlöse 19 % USt", true},
         {"Bahnfahrt Hamburg", 1, "129.90", 1, 1, 16, "Reisekosten", "Reisekosten Unternehmer",
          false, "bahn.pdf"},
         {"Telefon und Internet", 1, "39.99", 1, 1, 28, "Telefon", "Telefon"},
         {"Lizenz Grafikprogramm", 1, "714", 1, 1, 30, "Software",
          "Wartungskosten für Hard- und Software"},
         {"Vortrag Handwerkskammer", 2, "400", 4, 1, 31, "Erlöse steuerfrei",
          "Steuerfreie Umsätze"}},
        2026));
    year->thelists().push_back(makePeriod(
        "Februar",
        {{"Büromiete Februar", 1, "950", 0, 2, 2, "Miete", "Miete (unbewegliche Wirtschaftsgüter)"},
         {"Versicherung Betriebshaftpflicht", 1, "312.50", 0, 2, 15, "Versicherungen",
          "Versicherungen"}},
        2026));
    year->thelists().push_back(makePeriod("1. Kalendervierteljahr", {}, 2026));
    client->theYears().push_back(year);
    auto older = core::Record::make(core::RecordClass::Year, dayOf(1, 1, 2025));
    older->set("dateValue", core::Value::string("2025"));
    older->thelists().push_back(makePeriod(
        "Dezember", {{"Weihnachtsfeier", 1, "240", 1, 12, 18, "Bewirtung", "Bewirtungskosten"}},
        2025));
    client->theYears().push_back(older);
    return {client};
}

/// One program with a small book, without the start sequence: no disclaimer, no database.
struct Program {
    Program() {
        places = core::Places::forHome(home.path().toStdString());
        QDir().mkpath(QString::fromStdString(places.dataFolder));
        settings = std::make_unique<core::Settings>(places.settingsFile);
        whole = std::make_unique<zifora::program::Program>(
            shell::Services{ui, scheduler, clock, clipboard, workspace, pdf}, places, *settings);
        app = &whole->session();
        app->run("init");
        settings->setBool("firstStepsDone", true);
        settings->setBool("firstDropBOOL", true);
        app->setClients(smallBook());
        app->selectionChanged();
    }
    /// The window, made on first use.
    gui::MainWindow& window() {
        if (!m_window) {
            m_window = std::make_unique<gui::MainWindow>(*app);
            m_window->show();
            QApplication::processEvents();
        }
        return *m_window;
    }
    core::Record& period(size_t index) {
        return *app->selection().years.selected()->thelists().at(index);
    }
    std::vector<std::string> titlesOf(core::Record& period) {
        std::vector<std::string> titles;
        for (const auto& item : period.items())
            titles.push_back(item->getText("title"));
        return titles;
    }

    QTemporaryDir home;
    core::Places places;
    std::unique_ptr<core::Settings> settings;
    TestUi ui;
    platform_qt::QtScheduler scheduler;
    platform_qt::SystemClock clock;
    platform_qt::QtClipboard clipboard;
    TestWorkspace workspace;
    shell::NoPdfRenderer pdf;
    std::unique_ptr<zifora::program::Program> whole;
    shell::Session* app = nullptr;

  private:
    std::unique_ptr<gui::MainWindow> m_window;
};

/// What stands on the toolbar, left to right: identifiers, spaces and separators.
std::vector<std::string> shownOrder(gui::Toolbar& toolbar) {
    std::vector<std::string> order;
    for (QAction* action : toolbar.actions()) {
        if (action->isSeparator())
            order.emplace_back(gui::kSeparatorItem);
        else if (auto* widget = qobject_cast<QWidgetAction*>(action))
            order.push_back(widget->defaultWidget()->objectName().toStdString());
        else
            order.push_back(action->objectName().toStdString());
    }
    return order;
}

QString qs(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

/// True when the pixmap has drawn (not fully transparent) pixels.
bool hasInk(const QPixmap& pixmap) {
    const QImage image = pixmap.toImage();
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 128) return true;
    return false;
}

QString screenshotPath(const QString& name) {
    QDir folder(QStringLiteral(ZIFORA_BINARY_DIR "/screenshots"));
    folder.mkpath(QStringLiteral("."));
    return folder.filePath(name);
}

} // namespace

class MainWindowTest final : public QObject {
    Q_OBJECT
  private slots:
    void toolbarShowsTheItemsInTheirDefaultOrder();
    void itemsWithoutTheirCommandWaitForIt();
    void picturesAreSharpAtBothDensities();
    void arrangementIsSavedAndRestored();
    void savedArrangementIsCleanedOnReading();
    void customizeDialogKeepsItemsOnce();
    void newYearButtonOpensTheYearForm();
    void calculatorStartsTheFirstInstalledProgram();
    void itemsShowInDateOrderFromTheRecords();
    void selectingThroughTheChainShowsTheItems();
    void returnOpensTheSelectedItem();
    void formChangesShowWithoutACommand();
    void itemDroppedOnAnotherPeriodIsCopied();
    void dropsThatDoNotFitAreRefused();
    void periodsAreReorderedByDragging();
    void sumIsColouredBySign();
    void firstStepsShowTheirPicture();
    void menuMnemonicsAreUnique();
    void screenshots();
};

void MainWindowTest::toolbarShowsTheItemsInTheirDefaultOrder() {
    Program program;
    gui::Toolbar& toolbar = *program.window().toolbar();
    const std::vector<std::string> expected{
        "RechnerItemIdentifier",    "SpaceItemIdentifier",         "JahrItemIdentifier",
        "NewEntryItemIdentifier",   "FlexibleSpaceItemIdentifier", "PostenItemIdentifier",
        "DeleteItemIdentifier",     "FlexibleSpaceItemIdentifier", "SpaceItemIdentifier",
        "SearchItemIdentifier",     "VoranmeldungItemIdentifier",  "SpaceItemIdentifier",
        "UebersichtItemIdentifier", "KassenbuchItemIdentifier",    "JournalItemIdentifier"};
    QCOMPARE(shownOrder(toolbar), expected);

    const std::vector<std::pair<const char*, const char*>> labels{
        {"NewEntryItemIdentifier", "Neue Abrechnung"},
        {"JahrItemIdentifier", "Neues Jahr"},
        {"PostenItemIdentifier", "Neuer Posten"},
        {"DeleteItemIdentifier", "Posten löschen"},
        {"RechnerItemIdentifier", "Rechner"},
        {"PrintItemIdentifier", "Drucken"},
        {"ExportItemIdentifier", "Exportieren"},
        {"JournalItemIdentifier", "Berichte"},
        {"SearchItemIdentifier", "Suche"},
        {"VoranmeldungItemIdentifier", "Voranmeldung"},
        {"KassenbuchItemIdentifier", "Kassenbuch"},
        {"UebersichtItemIdentifier", "Übersicht"}};
    for (auto [identifier, label] : labels) {
        QAction* action = toolbar.itemAction(identifier);
        QVERIFY2(action, identifier);
        QCOMPARE(action->text(), QString::fromUtf8(label));
    }
    // The help texts keep their spelling.
    QCOMPARE(toolbar.itemAction("JahrItemIdentifier")->toolTip(),
             QStringLiteral("Hier klicken um einen neues Jahr anzulegen"));
    QCOMPARE(toolbar.itemAction("RechnerItemIdentifier")->toolTip(),
             QStringLiteral("Hier klicken um den Taschnrechner zu öffnen"));
    QCOMPARE(toolbar.itemAction("DeleteItemIdentifier")->toolTip(),
             QStringLiteral("Hier klicken um ausgewählten Posten zu löschen"));
    // Printing and exporting are items, but not offered for the toolbar.
    const auto offered = gui::offeredToolbarItems();
    QCOMPARE(offered.size(), size_t(13));
    QVERIFY(std::find(offered.begin(), offered.end(), "PrintItemIdentifier") == offered.end());
    QVERIFY(std::find(offered.begin(), offered.end(), "ExportItemIdentifier") == offered.end());
}

void MainWindowTest::itemsWithoutTheirCommandWaitForIt() {
    Program program;
    gui::Toolbar& toolbar = *program.window().toolbar();
    const gui::ToolbarItem* waiting = nullptr;
    for (const gui::ToolbarItem& item : gui::toolbarItems()) {
        QAction* action = toolbar.itemAction(item.identifier);
        const bool exists =
            item.command.empty() || program.app->commands().contains(std::string(item.command));
        QCOMPARE(action->isEnabled(), exists);
        QCOMPARE(action->toolTip(),
                 exists ? qs(item.help) : QStringLiteral("Kommt in einer späteren Version"));
        if (!exists && !waiting) waiting = &item;
    }
    // The item, year and delete buttons are usable today.
    for (const char* identifier :
         {"JahrItemIdentifier", "NewEntryItemIdentifier", "PostenItemIdentifier",
          "DeleteItemIdentifier", "RechnerItemIdentifier"})
        QVERIFY2(toolbar.itemAction(identifier)->isEnabled(), identifier);
    if (!waiting) QSKIP("every toolbar command exists");

    int runs = 0;
    program.app->commands().add(std::string(waiting->command),
                                [&runs](const shell::CommandSender&) { ++runs; });
    program.window().refresh();
    QAction* action = toolbar.itemAction(waiting->identifier);
    QVERIFY(action->isEnabled());
    QCOMPARE(action->toolTip(), qs(waiting->help));
    action->trigger();
    QCOMPARE(runs, 1);
}

void MainWindowTest::picturesAreSharpAtBothDensities() {
    Program program;
    gui::Toolbar& toolbar = *program.window().toolbar();
    for (const gui::ToolbarItem& item : gui::toolbarItems()) {
        const QIcon icon = toolbar.itemAction(item.identifier)->icon();
        for (qreal ratio : {1.0, 2.0}) {
            const QPixmap pixmap = icon.pixmap(QSize(28, 28), ratio);
            QCOMPARE(pixmap.size(), QSize(28, 28) * ratio);
            QVERIFY2(hasInk(pixmap), item.image.data());
        }
    }
    for (const char* name : {"client", "miniYearTemplate", "miniList", "miniTabTemplate",
                             "miniItemGrey", "miniItemRed", "miniItemGreen", "miniItemRedTax",
                             "miniItemGreenTax", "attachment", "ja1", "ja2", "ja3", "ja4"}) {
        const QPixmap pixmap = gui::picturePixmap(QString::fromLatin1(name), QSize(16, 16), 2.0);
        QCOMPARE(pixmap.size(), QSize(32, 32));
        QVERIFY2(hasInk(pixmap), name);
    }
    QVERIFY(gui::pictureIcon(QStringLiteral("noSuchPicture")).isNull());
    QVERIFY(gui::picturePixmap(QString(), QSize(16, 16), 1.0).isNull());
}

void MainWindowTest::arrangementIsSavedAndRestored() {
    Program program;
    gui::Toolbar& toolbar = *program.window().toolbar();
    // The user opens the dialog from the context menu, takes the calculator off, adds a
    // separator behind the first item and keeps it.
    QTimer::singleShot(0, [] {
        auto* dialog = qobject_cast<gui::ToolbarDialog*>(QApplication::activeModalWidget());
        if (!dialog) return;
        dialog->removeEntry(0);
        dialog->findChild<QListWidget*>(QStringLiteral("placedItems"))->setCurrentRow(0);
        dialog->addEntry(std::string(gui::kSeparatorItem));
        dialog->accept();
    });
    toolbar.customizeAction()->trigger();
    std::vector<std::string> expected = gui::defaultToolbarOrder();
    expected.erase(expected.begin());
    expected.insert(expected.begin() + 1, std::string(gui::kSeparatorItem));
    QCOMPARE(shownOrder(toolbar), expected);
    QCOMPARE(toolbar.order(), expected);

    // Written to the settings file as an array of identifiers, and read back by a new window.
    core::Settings reread(program.settings->file());
    QVERIFY(reread.load().has_value());
    QCOMPARE(reread.get("toolbarItems").kind(), core::Kind::Array);
    QCOMPARE(gui::savedToolbarOrder(reread), expected);
    gui::MainWindow second(*program.app);
    QCOMPARE(shownOrder(*second.toolbar()), expected);

    // A cancelled dialog changes nothing.
    QTimer::singleShot(0, [] {
        if (auto* dialog = qobject_cast<gui::ToolbarDialog*>(QApplication::activeModalWidget())) {
            dialog->restoreDefault();
            dialog->reject();
        }
    });
    toolbar.customize();
    QCOMPARE(toolbar.order(), expected);
}

void MainWindowTest::savedArrangementIsCleanedOnReading() {
    QTemporaryDir folder;
    core::Settings settings(folder.filePath(QStringLiteral("s.plist")).toStdString());
    QCOMPARE(gui::savedToolbarOrder(settings), gui::defaultToolbarOrder());
    settings.setString("toolbarItems", "JahrItemIdentifier");
    QCOMPARE(gui::savedToolbarOrder(settings), gui::defaultToolbarOrder());
    // Unknown names, items that are not offered, a second copy of an item and texts of the
    // wrong kind are left out; spaces may repeat; an empty arrangement stays empty.
    settings.set(
        "toolbarItems",
        core::Value::array(
            {core::Value::string("JahrItemIdentifier"), core::Value::string("Unbekannt"),
             core::Value::string("PrintItemIdentifier"), core::Value::intValue(3),
             core::Value::string("SpaceItemIdentifier"), core::Value::string("JahrItemIdentifier"),
             core::Value::string("SpaceItemIdentifier")}));
    QCOMPARE(gui::savedToolbarOrder(settings),
             (std::vector<std::string>{"JahrItemIdentifier", "SpaceItemIdentifier",
                                       "SpaceItemIdentifier"}));
    settings.set("toolbarItems", core::Value::array({}));
    QVERIFY(gui::savedToolbarOrder(settings).empty());
}

void MainWindowTest::customizeDialogKeepsItemsOnce() {
    gui::ToolbarDialog dialog({"JahrItemIdentifier", "SpaceItemIdentifier"});
    auto available = dialog.available();
    QVERIFY(std::find(available.begin(), available.end(), "JahrItemIdentifier") == available.end());
    QCOMPARE(available.size(), size_t(12));
    QVERIFY(!dialog.addEntry("JahrItemIdentifier"));
    QVERIFY(!dialog.addEntry("PrintItemIdentifier"));
    QVERIFY(dialog.addEntry("SpaceItemIdentifier"));
    QVERIFY(dialog.addEntry("SucheGibtEsNicht") == false);
    QVERIFY(dialog.addEntry("SearchItemIdentifier"));
    QCOMPARE(dialog.order(),
             (std::vector<std::string>{"JahrItemIdentifier", "SpaceItemIdentifier",
                                       "SpaceItemIdentifier", "SearchItemIdentifier"}));
    dialog.moveEntry(3, -1);
    dialog.moveEntry(0, -1); // already at the top
    dialog.moveEntry(3, +1); // already at the bottom
    dialog.removeEntry(0);
    dialog.removeEntry(7); // no such row
    QCOMPARE(dialog.order(),
             (std::vector<std::string>{"SpaceItemIdentifier", "SearchItemIdentifier",
                                       "SpaceItemIdentifier"}));
    available = dialog.available();
    QVERIFY(std::find(available.begin(), available.end(), "JahrItemIdentifier") != available.end());
    dialog.restoreDefault();
    QCOMPARE(dialog.order(), gui::defaultToolbarOrder());
}

void MainWindowTest::newYearButtonOpensTheYearForm() {
    Program program;
    gui::MainWindow& window = program.window();
    const int years = window.yearModel()->rowCount();
    QAction* action = window.toolbar()->itemAction("JahrItemIdentifier");
    QWidget* button = window.toolbar()->widgetForAction(action);
    QVERIFY(button);
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(std::find(program.ui.shown.begin(), program.ui.shown.end(), "yearWindow") !=
            program.ui.shown.end());
    // The new year stands in the list and is selected.
    QCOMPARE(window.yearModel()->rowCount(), years + 1);
    QCOMPARE(window.yearView()->currentIndex().row(), years);
}

void MainWindowTest::calculatorStartsTheFirstInstalledProgram() {
    Program program;
    program.workspace.installed = {"galculator", "xcalc"};
    program.window().toolbar()->itemAction("RechnerItemIdentifier")->trigger();
    QCOMPARE(program.workspace.tried,
             (std::vector<std::string>{"gnome-calculator", "kcalc", "galculator"}));
    QVERIFY(program.ui.alerts.empty());

    program.workspace.installed.clear();
    program.workspace.tried.clear();
    program.window().toolbar()->itemAction("RechnerItemIdentifier")->trigger();
    QCOMPARE(program.workspace.tried.size(), size_t(5));
    QCOMPARE(program.ui.alerts.size(), size_t(1));
    QCOMPARE(program.ui.alerts.front().title, std::string("Hinweis!"));
}

void MainWindowTest::itemsShowInDateOrderFromTheRecords() {
    Program program;
    gui::MainWindow& window = program.window();
    gui::RecordListModel& model = *window.itemModel();
    QCOMPARE(model.rowCount(), 10);
    auto cell = [&](int row, int column, int role = Qt::DisplayRole) {
        return model.index(row, column).data(role);
    };
    QCOMPARE(cell(0, gui::kItemTitle).toString(), QStringLiteral("Büromiete Januar"));
    QCOMPARE(cell(9, gui::kItemTitle).toString(), QStringLiteral("Vortrag Handwerkskammer"));
    QCOMPARE(cell(0, gui::kItemDate).toString(), QStringLiteral("02.01.2026"));
    QCOMPARE(cell(0, gui::kItemGross).toString(), QStringLiteral("-950,00"));
    QCOMPARE(cell(9, gui::kItemGross).toString(), QStringLiteral("400,00"));
    // Druckerpapier: 89,90 with 19 %: tax mark, rate, net, paper clip, icon of a taxed expense.
    QCOMPARE(cell(1, gui::kItemTaxMark).toString(), QStringLiteral("‰"));
    QCOMPARE(cell(1, gui::kItemRate).toString(), QStringLiteral("19 %"));
    QCOMPARE(cell(1, gui::kItemNet).toString(), QStringLiteral("-75,55"));
    QVERIFY(!cell(1, gui::kItemAttachment, Qt::DecorationRole).isNull());
    QVERIFY(cell(0, gui::kItemAttachment, Qt::DecorationRole).isNull());
    QVERIFY(!cell(1, gui::kItemPicture, Qt::DecorationRole).isNull());
    QCOMPARE(cell(0, gui::kItemTaxMark).toString(), QString());
    // The open item's texts take the colour of open items.
    const int open = 4;
    QCOMPARE(cell(open, gui::kItemTitle).toString(), QStringLiteral("Beratung Stadtwerke"));
    QCOMPARE(cell(open, gui::kItemTitle, Qt::ForegroundRole).value<QBrush>().color(),
             QColor::fromRgbF(0.902f, 0.459f, 0.259f));
    QVERIFY(cell(0, gui::kItemTitle, Qt::ForegroundRole).isNull());

    // The model reads the records themselves: a changed title shows without a copy being made.
    program.app->selection().items.arranged()[0]->set("title", core::Value::string("Miete"));
    QCOMPARE(cell(0, gui::kItemTitle).toString(), QStringLiteral("Miete"));
    QCOMPARE(cell(99, gui::kItemTitle), QVariant());
}

void MainWindowTest::selectingThroughTheChainShowsTheItems() {
    Program program;
    gui::MainWindow& window = program.window();
    window.periodView()->setCurrentIndex(window.periodModel()->index(1, 0));
    QCOMPARE(program.app->selection().currentPeriod()->getText("title"), std::string("Februar"));
    QCOMPARE(window.itemModel()->rowCount(), 2);
    window.yearView()->setCurrentIndex(window.yearModel()->index(1, 0));
    QCOMPARE(program.app->selection().currentYear()->getText("dateValue"), std::string("2025"));
    QCOMPARE(window.periodModel()->rowCount(), 1);
    QCOMPARE(window.itemModel()->rowCount(), 1);
    QCOMPARE(window.periodView()->currentIndex().row(), 0);
    // The keyboard walks the items.
    window.itemView()->setFocus();
    window.yearView()->setCurrentIndex(window.yearModel()->index(0, 0));
    window.itemView()->setCurrentIndex(window.itemModel()->index(0, 0));
    QTest::keyClick(window.itemView(), Qt::Key_Down);
    QCOMPARE(program.app->selection().items.selectionIndex(), std::optional<size_t>(1));
    QTest::keyClick(window.itemView(), Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(program.app->selection().items.selectionIndex(), std::optional<size_t>(9));
    QVERIFY(window.windowTitle().contains(QStringLiteral("Muster GmbH")));
}

void MainWindowTest::returnOpensTheSelectedItem() {
    Program program;
    gui::MainWindow& window = program.window();
    window.itemView()->setCurrentIndex(window.itemModel()->index(3, 0));
    QTest::keyClick(window.itemView(), Qt::Key_Return);
    QVERIFY(std::find(program.ui.shown.begin(), program.ui.shown.end(), "itemWindow") !=
            program.ui.shown.end());
    QCOMPARE(program.app->selection().items.selectionIndex(), std::optional<size_t>(3));
}

void MainWindowTest::formChangesShowWithoutACommand() {
    Program program;
    gui::MainWindow& window = program.window();
    // A form adds a posting and sets one of its controls; the list follows on the next turn.
    program.app->selection().items.add(
        makeItem({"Kaffee", 1, "12", 2, 1, 3, "Bewirtung", "Bewirtungskosten"}, 2026));
    program.app->fields().set("titleField", core::Value::string("Kaffee"));
    QTRY_COMPARE(window.itemView()->verticalHeader()->count(), 11);
    QCOMPARE(window.findChild<QLabel*>(QStringLiteral("itemCount"))->text(),
             QStringLiteral("11 Posten"));
    { gui::MainWindow closed(*program.app); }
    // A window that is gone no longer listens.
    program.app->fields().set("titleField", core::Value::string("Tee"));
    QApplication::processEvents();
}

void MainWindowTest::itemDroppedOnAnotherPeriodIsCopied() {
    Program program;
    gui::MainWindow& window = program.window();
    const auto januaryBefore = program.titlesOf(program.period(0));
    const QModelIndex dragged = window.itemModel()->index(2, 0);
    const QString title = dragged.siblingAtColumn(gui::kItemTitle).data().toString();
    std::unique_ptr<QMimeData> data(
        window.itemModel()->mimeData({dragged, dragged.siblingAtColumn(3)}));
    QVERIFY(data);
    // Dropped on the row of "Februar", with the copy modifier held.
    QVERIFY(window.periodModel()->canDropMimeData(data.get(), Qt::CopyAction, -1, -1,
                                                  window.periodModel()->index(1, 0)));
    window.periodModel()->dropMimeData(data.get(), Qt::CopyAction, -1, -1,
                                       window.periodModel()->index(1, 0));

    const auto february = program.titlesOf(program.period(1));
    QCOMPARE(february.size(), size_t(3));
    QCOMPARE(QString::fromStdString(february.back()), title);
    for (const auto& item : program.period(0).items())
        QVERIFY(item.get() != program.period(1).items().back().get());
    QCOMPARE(program.titlesOf(program.period(0)), januaryBefore);
    // The window now shows the period the item went to.
    QCOMPARE(window.periodView()->currentIndex().row(), 1);
    QCOMPARE(window.itemModel()->rowCount(), 3);

    // Without the modifier, dropped between the second and the third period: onto the third.
    std::unique_ptr<QMimeData> again(
        window.itemModel()->mimeData({window.itemModel()->index(0, 0)}));
    window.periodModel()->dropMimeData(again.get(), Qt::MoveAction, 2, 0, {});
    QCOMPARE(program.period(2).items().size(), size_t(1));
    QCOMPARE(program.period(1).items().size(), size_t(3));
}

void MainWindowTest::dropsThatDoNotFitAreRefused() {
    Program program;
    gui::MainWindow& window = program.window();
    std::unique_ptr<QMimeData> items(
        window.itemModel()->mimeData({window.itemModel()->index(0, 0)}));
    std::unique_ptr<QMimeData> periods(
        window.periodModel()->mimeData({window.periodModel()->index(0, 0)}));
    // Items and periods onto the year list.
    QVERIFY(!window.yearModel()->canDropMimeData(items.get(), Qt::MoveAction, -1, -1,
                                                 window.yearModel()->index(0, 0)));
    QVERIFY(!window.yearModel()->dropMimeData(periods.get(), Qt::MoveAction, 0, 0, {}));
    // Below the last period there is no period to take the item.
    window.periodModel()->dropMimeData(items.get(), Qt::MoveAction, -1, -1, {});
    QCOMPARE(program.period(1).items().size(), size_t(2));
    QCOMPARE(program.period(2).items().size(), size_t(0));

    // Data of another running program, or not rows at all.
    QMimeData foreign;
    foreign.setData(QString::fromLatin1(gui::kRowsMimeType), QByteArray("1\nitems\n0"));
    QVERIFY(!gui::decodeDraggedRows(&foreign));
    QMimeData broken;
    broken.setData(
        QString::fromLatin1(gui::kRowsMimeType),
        QStringLiteral("%1\nitems\n0,x").arg(QCoreApplication::applicationPid()).toUtf8());
    QVERIFY(!gui::decodeDraggedRows(&broken));
    QMimeData text;
    text.setText(QStringLiteral("Hallo"));
    QVERIFY(!window.periodModel()->dropMimeData(&text, Qt::MoveAction, -1, -1,
                                                window.periodModel()->index(1, 0)));
    QCOMPARE(program.period(1).items().size(), size_t(2));
    // Rows past the end of the list are no rows.
    QVERIFY(gui::decodeDraggedRows(items.get()).has_value());
    std::unique_ptr<QMimeData> beyond(gui::encodeDraggedRows({"items", {500}}));
    window.periodModel()->dropMimeData(beyond.get(), Qt::MoveAction, -1, -1,
                                       window.periodModel()->index(1, 0));
    QCOMPARE(program.period(1).items().size(), size_t(2));
}

void MainWindowTest::periodsAreReorderedByDragging() {
    Program program;
    gui::MainWindow& window = program.window();
    std::unique_ptr<QMimeData> data(
        window.periodModel()->mimeData({window.periodModel()->index(2, 0)}));
    window.periodModel()->dropMimeData(data.get(), Qt::MoveAction, -1, -1,
                                       window.periodModel()->index(0, 0));
    QCOMPARE(program.period(0).getText("title"), std::string("1. Kalendervierteljahr"));
    QCOMPARE(program.period(1).getText("title"), std::string("Januar"));
    QCOMPARE(window.periodModel()->index(0, 0).data().toString(),
             QStringLiteral("1. Kalendervierteljahr"));
    QCOMPARE(window.periodView()->currentIndex().row(), 0);
}

void MainWindowTest::sumIsColouredBySign() {
    Program program;
    gui::MainWindow& window = program.window();
    auto colour = [&] { return window.sumLabel()->palette().color(QPalette::WindowText); };
    // January: 2380 + 1190 + 400 in, 950 + 89,90 + 49,80 + 17,40 + 129,90 + 39,99 + 714 out.
    QCOMPARE(window.sumLabel()->text(), QStringLiteral("1.979,01 €"));
    QCOMPARE(colour(), QColor::fromRgbF(0.172f, 0.506f, 0.094f));
    window.periodView()->setCurrentIndex(window.periodModel()->index(1, 0));
    QCOMPARE(window.sumLabel()->text(), QStringLiteral("-1.262,50 €"));
    QCOMPARE(colour(), QColor::fromRgbF(0.52844f, 0.083141f, 0.088046f));
    window.periodView()->setCurrentIndex(window.periodModel()->index(2, 0));
    QCOMPARE(window.sumLabel()->text(), QStringLiteral("0,00 €"));
}

void MainWindowTest::firstStepsShowTheirPicture() {
    Program program;
    program.settings->setBool("firstStepsDone", false);
    program.settings->setInteger("jaImage", 3);
    gui::MainWindow& window = program.window();
    auto* picture = window.findChild<QLabel*>(QStringLiteral("firstStepsPicture"));
    QCOMPARE(window.firstStepsImage(), std::string("ja3"));
    QVERIFY(picture->isVisible());
    QVERIFY(!picture->pixmap().isNull());
    // A command moves the hint on; the last step takes it away.
    program.settings->setInteger("jaImage", 5);
    window.refresh();
    QCOMPARE(window.firstStepsImage(), std::string());
    QVERIFY(!picture->isVisible());
    program.settings->setInteger("jaImage", 0);
    window.refresh();
    QCOMPARE(window.firstStepsImage(), std::string("ja1"));
}

void MainWindowTest::screenshots() {
    Program program;
    gui::MainWindow& window = program.window();
    window.resize(1280, 800);
    window.itemView()->setCurrentIndex(window.itemModel()->index(1, 0));
    QApplication::processEvents();
    QVERIFY(window.grab().save(screenshotPath(QStringLiteral("mainwindow.png"))));

    program.settings->setBool("firstStepsDone", false);
    program.settings->setInteger("jaImage", 4);
    window.periodView()->setCurrentIndex(window.periodModel()->index(2, 0));
    QApplication::processEvents();
    QVERIFY(window.grab().save(screenshotPath(QStringLiteral("mainwindow-firststeps.png"))));

    gui::ToolbarDialog dialog(window.toolbar()->order(), &window);
    dialog.show();
    QApplication::processEvents();
    QVERIFY(dialog.grab().save(screenshotPath(QStringLiteral("toolbar-customize.png"))));
}

// Alt and a letter opens one menu of the bar, and a letter one entry of an open menu.
void MainWindowTest::menuMnemonicsAreUnique() {
    Program program;
    // As in the program, the preferences register their commands before the menus are made.
    gui::PreferencesController preferences(*program.app);
    gui::MainWindow& window = program.window();
    QStringList titles;
    for (QAction* menuAction : window.menuBar()->actions())
        titles << menuAction->text().remove('&');
    for (const char* title : {"Ablage", "Bücher", "Posten", "Stammdaten", "Benutzer",
                              "Speicherorte", "Datenbank", "Hilfe", "Fenster"})
        QVERIFY2(titles.contains(QString::fromUtf8(title)), title);

    // The menus of the bar share the Alt keys with the window's titled lists and buttons.
    std::map<QKeySequence, QString> windowKeys;
    auto claim = [&windowKeys](const QString& text) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (key.isEmpty()) return true;
        const auto [clash, added] = windowKeys.emplace(key, text);
        if (!added) qWarning() << text << "and" << clash->second << "share" << key;
        return added;
    };
    for (QAction* menuAction : window.menuBar()->actions()) {
        QVERIFY2(!QKeySequence::mnemonic(menuAction->text()).isEmpty(),
                 qPrintable(menuAction->text()));
        QVERIFY(claim(menuAction->text()));
    }
    for (const QLabel* label : window.findChildren<QLabel*>())
        if (label->buddy()) QVERIFY(claim(label->text()));
    for (const QAbstractButton* button : window.findChildren<QAbstractButton*>())
        QVERIFY(claim(button->text()));

    // Within an open menu, a letter picks one entry.
    for (QAction* menuAction : window.menuBar()->actions()) {
        std::map<QKeySequence, QString> entryKeys;
        for (QAction* entry : menuAction->menu()->actions()) {
            const QKeySequence key = QKeySequence::mnemonic(entry->text());
            if (key.isEmpty()) continue;
            const auto [clash, added] = entryKeys.emplace(key, entry->text());
            QVERIFY2(added, qPrintable(menuAction->text() + ": " + entry->text() + " and " +
                                       clash->second + " share " + key.toString()));
        }
    }
    QCOMPARE(gui::commandLabel(program.app->commands(), "selectNext:"),
             QStringLiteral("Nächster Posten"));

    // Alt+U opens the menu of the clients, Alt+E that of the storage places.
    for (auto [key, title] : {std::pair{Qt::Key_U, "Benutzer"}, {Qt::Key_E, "Speicherorte"}}) {
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : &window, key, Qt::AltModifier);
        QTRY_VERIFY(QApplication::activePopupWidget());
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QCOMPARE(menu->title().remove('&'), QString::fromUtf8(title));
        QTest::keyClick(menu, Qt::Key_Escape); // the menu closes, the bar keeps the keyboard
        QTRY_VERIFY(!menu->isVisible());
        QTest::keyClick(window.menuBar(), Qt::Key_Escape);
        QTRY_VERIFY(QApplication::focusWidget() != window.menuBar());
    }
}

QTEST_MAIN(MainWindowTest)
#include "mainwindow_test.moc"
