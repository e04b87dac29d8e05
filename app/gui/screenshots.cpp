#include "screenshots.h"

#include "preferences/preferenceswindow.h"
#include "setupassistant.h"

#include "mainwindow.h"

#include "core/places.h"
#include "platform_qt/pdfrenderer.h"
#include "platform_qt/qtservices.h"
#include "shell/session.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPixmap>
#include <QPushButton>
#include <QTimer>

#include <cstdio>

namespace zifora::gui {

namespace {

constexpr int kTickMs = 100;
constexpr qint64 kShotTimeoutMs = 15000;
constexpr QSize kMainWindowSize{1280, 800};

QSet<QWidget*> visibleTopLevels() {
    QSet<QWidget*> out;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible()) out.insert(w);
    return out;
}

} // namespace

namespace {
Shot preferencesShot(int tag, const char* file) {
    return Shot::window(QString::fromUtf8(file), "preferences",
                        [tag](ShotContext& c) { c.showPreferencesPane(tag); });
}
} // namespace

std::vector<Shot> plannedShots() {
    return {
        // The agreement comes by itself during the first start on the book.
        Shot::alert(QStringLiteral("zustimmung-beim-ersten-start.png")),
        // Before the start shows it by itself a moment later.
        Shot::window(QStringLiteral("willkommen.png"), "welcome"),
        Shot::mainWindow(QStringLiteral("hauptfenster.png"),
                         [](ShotContext& c) { c.selectPeriod("März"); }),
        Shot::window(QStringLiteral("postenformular.png"), "itemWindow",
                     [](ShotContext& c) {
                         c.selectPeriod("März");
                         c.selectItem(2);
                         c.run("editItem:");
                     }),
        Shot::window(QStringLiteral("voranmeldung.png"), "voranmeldungWindow",
                     [](ShotContext& c) {
                         c.selectPeriod("März");
                         c.run("openVoranmeldungsWindow:");
                     }),
        // The journal is written as the sheet opens; its PDF is the renderer's.
        Shot::window(QStringLiteral("abrechnung-exportieren.png"), "tabJournalExportSheet",
                     [](ShotContext& c) {
                         c.selectPeriod("März");
                         c.run("exportString");
                         c.showWindow("tabJournalExportSheet");
                     }),
        Shot::window(QStringLiteral("abrechnung-drucken.png"), "tabJournalPrintSheet",
                     [](ShotContext& c) {
                         c.selectPeriod("März");
                         c.run("exportString");
                         c.showWindow("tabJournalPrintSheet");
                     }),
        preferencesShot(0, "einstellungen-allgemein.png"),
        preferencesShot(1, "einstellungen-daten.png"),
        preferencesShot(2, "einstellungen-kategorien.png"),
        preferencesShot(3, "einstellungen-konten.png"),
        preferencesShot(4, "einstellungen-vorlagen.png"),
        preferencesShot(5, "einstellungen-benutzer.png"),
        preferencesShot(6, "einstellungen-steuern.png"),
        Shot::window(QStringLiteral("assistent-kontenrahmen.png"), "assistant",
                     [](ShotContext& c) {
                         c.run("selectAssi:");
                         for (QWidget* widget : QApplication::topLevelWidgets())
                             if (auto* assistant = qobject_cast<SetupAssistant*>(widget))
                                 assistant->showPage(SetupAssistant::Chart);
                     }),
        Shot::window(QStringLiteral("vorschau-bericht.png"), "preview",
                     [](ShotContext& c) {
                         c.selectPeriod("März");
                         c.run("generateTabJournal:");
                         c.run("loadPDFTab:");
                     }),
        Shot::alert(QStringLiteral("hinweis-datenbank-geoeffnet.png"),
                    [](ShotContext& c) {
                        c.openFile(QDir::homePath().toStdString() + "/Sicherung.zfdb4");
                    }),
    };
}

// ---------------------------------------------------------------------------------------
// What the actions may do

void ShotContext::run(const std::string& command, int tag) {
    m_app.run(command, shell::CommandSender{tag});
    m_window.refresh();
}

void ShotContext::openFile(const std::string& path) {
    shell::CommandSender sender;
    sender.path = path;
    m_app.run("application:openFile:", sender);
    m_window.refresh();
}

bool ShotContext::selectPeriod(const std::string& title) {
    shell::Selection& s = m_app.selection();
    s.clients.setSelectionIndex(0);
    m_app.selectionChanged();
    if (!s.years.count()) return false;
    s.years.setSelectionIndex(static_cast<int64_t>(s.years.count() - 1));
    m_app.selectionChanged();
    const auto& periods = s.lists.arranged();
    for (size_t i = 0; i < periods.size(); ++i) {
        if (periods[i]->getText("title") != title) continue;
        s.lists.setSelectionIndex(static_cast<int64_t>(i));
        m_app.selectionChanged();
        m_window.refresh();
        return true;
    }
    return false;
}

void ShotContext::showWindow(const std::string& name) {
    m_ui.showWindow(name);
}

void ShotContext::hideWindow(const std::string& name) {
    m_ui.hideWindow(name);
}

void ShotContext::selectItem(size_t row) {
    m_app.selection().items.setSelectionIndex(static_cast<int64_t>(row));
    m_app.selectionChanged();
    m_window.refresh();
}

void ShotContext::showPreferencesPane(int tag) {
    m_ui.showWindow("preferences");
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* preferences = qobject_cast<PreferencesWindow*>(widget))
            preferences->showPane(tag);
}

// ---------------------------------------------------------------------------------------
// The run

ScreenshotRun::ScreenshotRun(shell::Session& app, platform_qt::QtUi& ui, MainWindow& window,
                             QString folder, std::vector<Shot> shots)
    : m_context(app, ui, window), m_window(window), m_folder(std::move(folder)),
      m_shots(std::move(shots)) {
    m_settleTicks = 2;
    QDir().mkpath(m_folder);
    m_shotTime.start();
    QTimer::singleShot(kTickMs, this, &ScreenshotRun::tick);
}

// Each tick sets a timer of its own first: a timer does not fire again while its own
// handler runs, but a new one fires inside the loop of a modal dialog that an action opened.
void ScreenshotRun::tick() {
    if (m_finished) return;
    QTimer::singleShot(kTickMs, this, &ScreenshotRun::tick);
    if (m_index >= m_shots.size()) {
        if (m_actionDepth == 0) finish();
        return;
    }
    if (m_shotTime.elapsed() > kShotTimeoutMs) {
        QWidget* modal = QApplication::activeModalWidget();
        fail(modal ? QStringLiteral("ein Dialog „%1“ steht im Weg").arg(modal->windowTitle())
                   : QStringLiteral("nichts zu sehen"));
        next();
        return;
    }
    step(m_shots[m_index]);
}

void ScreenshotRun::step(const Shot& shot) {
    if (shot.grab == Shot::Grab::Alert) {
        if (grabAlert())
            next();
        else if (!m_actionDone && shot.action && m_actionDepth == 0)
            runAction(shot);
        return;
    }
    // The other shots wait for every dialog of the start or of earlier actions to end; after
    // their own action, a sheet it opened may be the very window to grab.
    if (m_actionDepth > 0 || (!m_actionDone && QApplication::activeModalWidget())) return;
    if (!m_actionDone) {
        m_windowsBefore = visibleTopLevels();
        runAction(shot);
        if (shot.grab == Shot::Grab::MainWindow) {
            m_context.hideWindow("welcome");
            m_context.hideWindow("newsletter");
            m_window.resize(kMainWindowSize);
            m_window.show();
        }
        m_settleTicks = 3;
        return;
    }
    if (m_settleTicks-- > 0) return;
    if (shot.grab == Shot::Grab::MainWindow) {
        save(&m_window, shot);
        next();
    } else if (grabNewWindow(shot)) {
        next();
    }
}

void ScreenshotRun::runAction(const Shot& shot) {
    m_actionDone = true; // before the call: it may sit in a modal loop for a while
    if (!shot.action) return;
    ++m_actionDepth;
    shot.action(m_context);
    --m_actionDepth;
}

bool ScreenshotRun::grabAlert() {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible()) {
        m_settleTicks = 2;
        return false;
    }
    if (m_settleTicks-- > 0) return false; // laid out and painted first
    save(modal, m_shots[m_index]);
    if (auto* box = qobject_cast<QMessageBox*>(modal); box && box->defaultButton())
        box->defaultButton()->click();
    else if (auto* dialog = qobject_cast<QDialog*>(modal))
        dialog->reject();
    else
        modal->close();
    return true;
}

bool ScreenshotRun::grabNewWindow(const Shot& shot) {
    QWidget* shown = nullptr;
    QWidget* active = QApplication::activeWindow();
    const QSet<QWidget*> now = visibleTopLevels();
    if (active && now.contains(active) && !m_windowsBefore.contains(active)) shown = active;
    for (QWidget* w : now)
        if (!shown && !m_windowsBefore.contains(w)) shown = w;
    if (!shown) return false;
    save(shown, shot);
    m_context.hideWindow(shot.windowName);
    return true;
}

void ScreenshotRun::save(QWidget* widget, const Shot& shot) {
    const QString path = QDir(m_folder).filePath(shot.file);
    const QPixmap picture = widget->grab();
    if (picture.isNull() || !picture.save(path, "PNG")) {
        fail(QStringLiteral("%1 konnte nicht geschrieben werden").arg(path));
        return;
    }
    std::printf("%s (%d×%d)\n", qPrintable(path), picture.width(), picture.height());
    std::fflush(stdout);
}

void ScreenshotRun::next() {
    ++m_index;
    m_actionDone = false;
    m_settleTicks = 2;
    m_windowsBefore.clear();
    m_shotTime.restart();
}

void ScreenshotRun::fail(const QString& why) {
    m_failed = true;
    const QString file = m_index < m_shots.size() ? m_shots[m_index].file : QString();
    std::fprintf(stderr, "zifora-screenshots: %s: %s\n", qPrintable(file), qPrintable(why));
}

void ScreenshotRun::finish() {
    m_finished = true;
    QApplication::exit(m_failed ? 1 : 0);
}

} // namespace zifora::gui
