#include "forms/formsheets.h"

#include "forms/choosersheet.h"
#include "forms/itemsheet.h"
#include "forms/multipopover.h"
#include "forms/voranmeldungsheet.h"
#include "platform_qt/qtservices.h"
#include "posting/choosertitles.h"
#include "shell/session.h"

#include <QEvent>

namespace zifora::gui {

namespace {

ChooserSheet::Kind yearForm(shell::Session& app) {
    return {QStringLiteral("Jahr"),
            QStringLiteral("Jahr:"),
            "yearPopUp",
            "yearCommentField",
            "closeYear:",
            QStringLiteral("Wähle das Geschäftsjahr aus der Liste. Das neue Jahr ist schon "
                           "angelegt, sobald dieses Fenster offen ist. Brauchst du es doch "
                           "nicht, wähle trotzdem ein Jahr und lösche es danach wieder."),
            [&app] { return posting::yearChooserTitles(posting::localYearOf(app.now())); }};
}

ChooserSheet::Kind periodForm() {
    return {QStringLiteral("Abrechnung"),
            QStringLiteral("Zeitraum:"),
            "listPopUp",
            "listCommentField",
            "closeList:",
            QStringLiteral("Wähle den Zeitraum der Abrechnung: das ganze Jahr, ein "
                           "Kalendervierteljahr oder einen Monat. An diesem Namen erkennt die "
                           "Voranmeldung den Zeitraum. Die neue Abrechnung ist schon angelegt, "
                           "sobald dieses Fenster offen ist; brauchst du sie nicht, lösche sie "
                           "danach wieder."),
            [] {
                std::vector<std::string> titles;
                for (std::string_view title : posting::periodChooserTitles())
                    titles.emplace_back(title);
                return titles;
            }};
}

} // namespace

FormSheets::FormSheets(shell::Session& app, QWidget* mainWindow, std::function<void()> refreshMain)
    : m_main(mainWindow) {
    m_item = new ItemSheet(app, refreshMain, mainWindow);
    m_year = new ChooserSheet(app, yearForm(app), refreshMain, mainWindow);
    m_year->setObjectName(QStringLiteral("yearWindow"));
    m_period = new ChooserSheet(app, periodForm(), refreshMain, mainWindow);
    m_period->setObjectName(QStringLiteral("listWindow"));
    m_voranmeldung = new VoranmeldungSheet(app, refreshMain, mainWindow);
}

void FormSheets::alertsOn(QWidget* window, bool shown) {
    if (!m_ui) return;
    if (shown)
        m_ui->setParentWindow(window);
    else if (window == m_item->popover() && m_item->isVisible())
        m_ui->setParentWindow(m_item);
    else
        m_ui->setParentWindow(m_main.data());
}

bool FormSheets::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_item->popover() && event->type() == QEvent::Show)
        alertsOn(m_item->popover(), true);
    if (watched == m_item->popover() && event->type() == QEvent::Hide)
        alertsOn(m_item->popover(), false);
    return QObject::eventFilter(watched, event);
}

void FormSheets::registerWindows(platform_qt::QtUi& ui) {
    m_ui = &ui;
    m_item->popover()->installEventFilter(this);
    ui.addWindow("itemWindow", [this](bool show) {
        m_item->showForm(show);
        alertsOn(m_item, show);
    });
    ui.addWindow("itemDatePanel", [this](bool show) { m_item->showDatePanel(show); });
    ui.addWindow("itemHelpPanel", [this](bool show) { m_item->showHelpPanel(show); });
    MultiPopover* popover = m_item->popover();
    ui.addWindow("multiPopover", [popover](bool show) {
        if (!show) popover->closeView();
    });
    ui.addWindow("splitCalculator", [popover](bool show) {
        if (show)
            popover->showView(MultiPopover::CalculatorTag);
        else
            popover->closeView(MultiPopover::CalculatorTag);
    });
    ui.addWindow("templateSearchSheet", [popover](bool show) {
        if (show)
            popover->showView(MultiPopover::TemplatesTag);
        else
            popover->closeView(MultiPopover::TemplatesTag);
    });
    ui.addWindow("yearWindow", [this](bool show) {
        m_year->showForm(show);
        alertsOn(m_year, show);
    });
    ui.addWindow("yearWindow.help", [this](bool show) { m_year->showHelp(show); });
    ui.addWindow("listWindow", [this](bool show) {
        m_period->showForm(show);
        alertsOn(m_period, show);
    });
    ui.addWindow("listWindow.help", [this](bool show) { m_period->showHelp(show); });
    ui.addWindow("voranmeldungWindow", [this](bool show) {
        m_voranmeldung->showForm(show);
        alertsOn(m_voranmeldung, show);
    });
    ui.addWindow("voranmeldungWindow.help", [this](bool show) { m_voranmeldung->showHelp(show); });
}

} // namespace zifora::gui
