#pragma once
// The windows around the start of the program: the welcome sheet, the newsletter panel, the
// about panel, the set-up assistant and the four help sheets of the first steps. Each is
// registered under the name by which the program shows and hides it; their buttons run the
// commands of the program, and Escape runs the command that closes them.

#include "forms/formsheet.h"
#include "preferences/settingcontrols.h"
#include "setupassistant.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <map>
#include <string>
#include <vector>

class QCheckBox;
class QPushButton;
class QVBoxLayout;

namespace zifora::platform_qt {
class QtUi;
}
namespace zifora::shell {
class Session;
}

namespace zifora::gui {

/// A button of a sheet and the command it runs.
struct SheetButton {
    QString label;
    std::string command;
    bool isDefault = false;
};

/// What a text sheet shows.
struct SheetContent {
    QString objectName;
    QString windowTitle;
    QString heading;
    QString text; // rich text
    std::vector<SheetButton> buttons;
    std::string escapeCommand; // what Escape and the close button run
    bool blocksMainWindow = true;
};

/// A sheet of text with a row of command buttons, shown centred on the main window.
class TextSheet final : public FormSheet {
    Q_OBJECT
  public:
    using Run = std::function<void(const std::string& command)>;
    TextSheet(const SheetContent& content, const Run& run, QWidget* mainWindow);

    /// Shows the sheet with the keyboard on its default button, or hides it.
    void showSheet(bool show);
    /// Where more controls go, between the text and the buttons.
    [[nodiscard]] QVBoxLayout* extraArea() const { return m_extra; }
    /// The button running `command`, or null.
    [[nodiscard]] QPushButton* button(const std::string& command) const;
    /// Runs before the sheet is shown (to bring its controls up to date).
    void onShow(std::function<void()> before) { m_beforeShow = std::move(before); }

  private:
    QVBoxLayout* m_extra = nullptr;
    QPushButton* m_default = nullptr;
    std::function<void()> m_beforeShow;
};

class StartSheets final : public QObject {
    Q_OBJECT
  public:
    /// `refreshMain` brings the main window up to date after a command of these windows.
    StartSheets(shell::Session& app, QWidget* mainWindow, std::function<void()> refreshMain);
    ~StartSheets() override;

    /// Registers "welcome", "newsletter", "about", "assistant", "assistant.accounts.number",
    /// "assistant.groups.title", "sheetFirst", "sheetAssi", "sheetAccount" and "sheetEntry".
    /// While the assistant is up, alerts belong to it.
    void registerWindows(platform_qt::QtUi& ui);

    [[nodiscard]] TextSheet* welcome() const { return m_welcome; }
    [[nodiscard]] TextSheet* newsletter() const { return m_newsletter; }
    [[nodiscard]] TextSheet* about() const { return m_about; }
    [[nodiscard]] SetupAssistant* assistant() const { return m_assistant; }
    /// A help sheet by its window name ("sheetFirst" …), or null.
    [[nodiscard]] TextSheet* helpSheet(const std::string& window) const;
    /// The check box of the welcome sheet.
    [[nodiscard]] QCheckBox* welcomeCheckBox() const { return m_welcomeBox; }

  private:
    void run(const std::string& command);
    void buildWelcome(QWidget* mainWindow);

    shell::Session& m_app;
    std::function<void()> m_refreshMain;
    QPointer<QWidget> m_main;
    SettingControls m_controls;
    QPointer<TextSheet> m_welcome;
    QPointer<TextSheet> m_newsletter;
    QPointer<TextSheet> m_about;
    QPointer<SetupAssistant> m_assistant;
    std::map<std::string, QPointer<TextSheet>> m_helpSheets;
    QCheckBox* m_welcomeBox = nullptr;
};

} // namespace zifora::gui
