#pragma once
// The screenshot tool `zifora-screenshots FOLDER`: the desktop program built a second time,
// which runs its ordinary start on the book of $HOME and grabs its windows into PNG files,
// one shot after another (`make screenshots` gives it a demonstration book in a temporary
// home). It is the same program, so every window registered in main.cpp can be shot.
//
// A shot is an action and what to grab once the action has happened:
//   - `Shot::alert`: the alert or other modal dialog that comes up (during the action, or by
//     itself, like the agreement at the first start); grabbed, then answered with its
//     default button;
//   - `Shot::mainWindow`: the main window at 1280×800;
//   - `Shot::window`: the top-level window that the action shows, grabbed as it is and then
//     hidden again by its name through the program (`Ui::hideWindow`).
// The item form and a preference pane, for instance, are one line each in `plannedShots()`:
//   Shot::window("posten.png", "itemWindow", [](ShotContext& c) {
//       c.selectPeriod("März"); c.run("addItem:"); }),
//   Shot::window("einstellungen-allgemein.png", "preferences",
//                [](ShotContext& c) { c.run("showPrefs:"); }),
// and a window that no command opens is shown by its name alone:
//   Shot::window("vorlagen.png", "preferences.templates"),

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QString>

#include <functional>
#include <string>
#include <vector>

class QWidget;

namespace zifora::shell {
class Session;
}
namespace zifora::platform_qt {
class QtUi;
}

namespace zifora::gui {

class MainWindow;

/// What an action of a shot may do with the running program.
class ShotContext {
  public:
    ShotContext(shell::Session& app, platform_qt::QtUi& ui, MainWindow& window)
        : m_app(app), m_ui(ui), m_window(window) {}
    /// Runs a command as a menu item or button would.
    void run(const std::string& command, int tag = 0);
    /// Runs the dispatch of a file the desktop asks the program to open.
    void openFile(const std::string& path);
    /// Selects the first client, its last year and that year's period of this title.
    bool selectPeriod(const std::string& title);
    /// Shows or hides a window by the name the program knows it by ("itemWindow" …).
    void showWindow(const std::string& name);
    void hideWindow(const std::string& name);
    /// Selects a row of the selected period's item list (in date order).
    void selectItem(size_t row);
    /// Opens the preferences on the pane of `tag` (0 "Allgemein" … 6 "Steuern").
    void showPreferencesPane(int tag);

  private:
    shell::Session& m_app;
    platform_qt::QtUi& m_ui;
    MainWindow& m_window;
};

struct Shot {
    enum class Grab { Alert, MainWindow, Window };
    using Action = std::function<void(ShotContext&)>;

    QString file;
    Grab grab = Grab::MainWindow;
    std::string windowName; // of a `Window` shot: hidden again afterwards
    Action action;          // may be empty

    static Shot alert(QString file, Action action = {}) {
        return {std::move(file), Grab::Alert, {}, std::move(action)};
    }
    static Shot mainWindow(QString file, Action action = {}) {
        return {std::move(file), Grab::MainWindow, {}, std::move(action)};
    }
    static Shot window(QString file, std::string name, Action action) {
        return {std::move(file), Grab::Window, std::move(name), std::move(action)};
    }
    /// The window shown by its name.
    static Shot window(QString file, const std::string& name) {
        return window(std::move(file), name, [name](ShotContext& c) { c.showWindow(name); });
    }
};

/// The shots of `make screenshots`, in the order they are taken.
[[nodiscard]] std::vector<Shot> plannedShots();

/// Takes the shots on timers of the event loop, so that it also works inside the loops of
/// modal dialogs. Made before the start sequence runs; ends the program when done, with
/// exit code 1 if a shot failed.
class ScreenshotRun final : public QObject {
    Q_OBJECT
  public:
    ScreenshotRun(shell::Session& app, platform_qt::QtUi& ui, MainWindow& window, QString folder,
                  std::vector<Shot> shots = plannedShots());

  private:
    void tick();
    void step(const Shot& shot);
    void runAction(const Shot& shot);
    bool grabAlert();
    void grabMainWindow();
    bool grabNewWindow(const Shot& shot);
    void save(QWidget* widget, const Shot& shot);
    void next();
    void fail(const QString& why);
    void finish();

    ShotContext m_context;
    MainWindow& m_window;
    QString m_folder;
    std::vector<Shot> m_shots;
    size_t m_index = 0;
    bool m_actionDone = false;
    int m_actionDepth = 0; // > 0 while an action runs (and may sit in a modal loop)
    int m_settleTicks = 0;
    QSet<QWidget*> m_windowsBefore;
    QElapsedTimer m_shotTime;
    bool m_failed = false;
    bool m_finished = false;
};

} // namespace zifora::gui
