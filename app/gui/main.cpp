// zifora: the desktop program.

#include "forms/formsheets.h"
#include "forms/journalsheets.h"
#include "mainwindow.h"
#include "preferences/preferencescontroller.h"
#include "qttexts.h"
#include "screenshots.h"
#include "singleinstance.h"
#include "startsheets.h"

#include "core/settings.h"
#include "platform_qt/pdfrenderer.h"
#include "platform_qt/qtservices.h"
#include "program/program.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <clocale>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Zifora"));
    QApplication::setApplicationDisplayName(QStringLiteral("Zifora"));
    QApplication::setDesktopFileName(QStringLiteral("zifora"));
    QApplication::setQuitOnLastWindowClosed(false);
    // Numbers in files are read without the locale; formatting uses ICU with the locale.
    std::setlocale(LC_NUMERIC, "C");
    // Qt's own texts (file dialogs, the menus of text fields, key names) in the program's
    // language, and file dialogs that they reach.
    zifora::gui::installQtTranslations(application, zifora::gui::programLocale());
    zifora::gui::chooseFileDialogs(zifora::gui::desktopPortalAround());

#ifdef ZIFORA_SCREENSHOTS
    // The screenshot tool is this program built once more; its argument is the folder of
    // the pictures, and it runs beside a Zifora that may be open.
    const QString file;
#else
    QString file =
        argc > 1 ? QFileInfo(QString::fromLocal8Bit(argv[1])).absoluteFilePath() : QString();
    if (zifora::gui::SingleInstance::sendToRunning(file.isEmpty() ? QStringLiteral("show") : file))
        return 0;
#endif

    using namespace zifora;
    platform_qt::QtUi ui;
    platform_qt::QtScheduler scheduler;
    platform_qt::SystemClock clock;
    platform_qt::QtClipboard clipboard;
    platform_qt::QtWorkspace workspace;
    platform_qt::QtPdfRenderer pdf;
    core::Places places = core::Places::fromEnvironment();
    core::Settings settings(places.settingsFile);
    // Settings that can't be read are told by the start, which goes on with the book.
    core::loadSettingsSafely(settings);
    ui.setSettings(&settings);

    program::Program program(shell::Services{ui, scheduler, clock, clipboard, workspace, pdf},
                             places, settings);
    shell::Session& app = program.session();
    // Before the main window, whose menus offer the commands registered here.
    gui::PreferencesController preferences(app);
    for (const std::string& name : gui::PreferencesController::windowNames())
        ui.addWindow(name,
                     [&preferences, name](bool show) { preferences.showWindowNamed(name, show); });
    gui::MainWindow window(app);
    // The panes write some records directly; they tell the book, whose observers follow.
    preferences.setAfterChange([&app] { app.book().changed(core::Change::Records); });
    ui.setParentWindow(&window);
    ui.addWindow("main", [&window](bool show) {
        if (show) {
            window.refresh();
            window.show();
            window.raise();
            window.activateWindow();
        } else {
            window.hide();
        }
    });

    // The windows follow the book's change signal; they need no call after their commands.
    gui::FormSheets forms(app, &window, {});
    forms.registerWindows(ui);
    gui::JournalSheets journalSheets(app, &window);
    journalSheets.registerWindows(ui);
    gui::StartSheets startSheets(app, &window, {});
    startSheets.registerWindows(ui);

    // A file the desktop asks us to open, at the start or handed on by a later start.
    auto openFile = [&](const QString& path) {
        shell::CommandSender sender;
        sender.path = QFile::encodeName(path).toStdString();
        app.run("application:openFile:", sender);
    };
#ifdef ZIFORA_SCREENSHOTS
    gui::ScreenshotRun screenshots(app, ui, window,
                                   argc > 1 ? QString::fromLocal8Bit(argv[1])
                                            : QStringLiteral("screenshots"));
#else
    gui::SingleInstance instance;
    instance.listen([&](const QString& message) {
        app.run("applicationShouldHandleReopen");
        // After the socket's handler has returned: the alerts of the dispatch wait in a loop
        // of their own, in which the socket may go away.
        if (message != QStringLiteral("show"))
            QTimer::singleShot(0, &window, [&openFile, message] { openFile(message); });
    });
#endif
    QObject::connect(&application, &QApplication::aboutToQuit, [&] { program.stop(); });

    program.start();
    window.refresh();
    if (!file.isEmpty()) QTimer::singleShot(0, &window, [&openFile, file] { openFile(file); });
    return QApplication::exec();
}
