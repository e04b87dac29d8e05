#pragma once
// The forms of the program as sheets on the main window: the item form with its panel, the
// year form and the period form. Each is registered under the name by which the program
// shows and hides it.

#include <QObject>
#include <QPointer>

#include <functional>

namespace zifora::platform_qt {
class QtUi;
}
namespace zifora::shell {
class Session;
}

namespace zifora::gui {

class ChooserSheet;
class ItemSheet;
class VoranmeldungSheet;

class FormSheets final : public QObject {
    Q_OBJECT
  public:
    /// `refreshMain` brings the main window up to date after the forms changed something.
    FormSheets(shell::Session& app, QWidget* mainWindow, std::function<void()> refreshMain);

    /// Registers "itemWindow", "itemDatePanel", "itemHelpPanel", "multiPopover",
    /// "splitCalculator", "templateSearchSheet", "yearWindow", "yearWindow.help",
    /// "listWindow", "listWindow.help", "voranmeldungWindow" and "voranmeldungWindow.help".
    /// While a sheet or the panel is up, alerts belong to it, and the keyboard returns there
    /// when they are answered.
    void registerWindows(platform_qt::QtUi& ui);

    [[nodiscard]] ItemSheet* itemSheet() const { return m_item; }
    [[nodiscard]] ChooserSheet* yearSheet() const { return m_year; }
    [[nodiscard]] ChooserSheet* periodSheet() const { return m_period; }
    [[nodiscard]] VoranmeldungSheet* voranmeldungSheet() const { return m_voranmeldung; }

  protected:
    /// Follows the item form's panel, so that its alerts belong to it while it is up.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void alertsOn(QWidget* window, bool shown);

    platform_qt::QtUi* m_ui = nullptr;
    QPointer<QWidget> m_main;
    ItemSheet* m_item = nullptr;
    ChooserSheet* m_year = nullptr;
    ChooserSheet* m_period = nullptr;
    VoranmeldungSheet* m_voranmeldung = nullptr;
};

} // namespace zifora::gui
