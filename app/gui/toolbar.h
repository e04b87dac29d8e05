#pragma once
// The main window's toolbar: its twelve items, their order with spaces and separators as the
// user arranged it (kept in the settings store under "toolbarItems"), and the commands the
// items run. An item whose command the program does not have yet stands disabled, and
// becomes usable as soon as a command of that name is registered.

#include <QToolBar>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zifora::core {
class Settings;
}
namespace zifora::shell {
class Session;
struct Services;
} // namespace zifora::shell

namespace zifora::gui {

/// One item of the toolbar. `command` is empty for the calculator, which starts a program.
struct ToolbarItem {
    std::string_view identifier;
    std::string_view label;
    std::string_view image;
    std::string_view command;
    std::string_view help;
};

/// The twelve items.
[[nodiscard]] const std::vector<ToolbarItem>& toolbarItems();
[[nodiscard]] const ToolbarItem* findToolbarItem(std::string_view identifier);

inline constexpr std::string_view kSpaceItem = "SpaceItemIdentifier";
inline constexpr std::string_view kFlexibleSpaceItem = "FlexibleSpaceItemIdentifier";
inline constexpr std::string_view kSeparatorItem = "SeparatorItemIdentifier";
/// The settings key of the user's arrangement: an array of identifiers.
inline constexpr std::string_view kToolbarSetting = "toolbarItems";
/// The tooltip of an item whose command does not exist yet.
inline constexpr std::string_view kLaterVersionText = "Kommt in einer späteren Version";

/// The order of a fresh toolbar.
[[nodiscard]] std::vector<std::string> defaultToolbarOrder();
/// What the user may place: ten of the items (printing and exporting stay in the menus),
/// then the separator, the space and the flexible space.
[[nodiscard]] std::vector<std::string> offeredToolbarItems();
/// The German name of a space, flexible space or separator, or the label of an item.
[[nodiscard]] QString toolbarItemName(std::string_view identifier);

/// The user's arrangement from the settings: identifiers that are not offered, and items
/// that stand twice, are left out. The default order when nothing (or no array) is saved.
[[nodiscard]] std::vector<std::string> savedToolbarOrder(const core::Settings& settings);
void saveToolbarOrder(core::Settings& settings, const std::vector<std::string>& order);

/// Starts the desktop's calculator: the first of the usual programs that starts, else says
/// that there is none.
void startCalculator(shell::Services& services);

class Toolbar final : public QToolBar {
    Q_OBJECT
  public:
    /// `afterCommand` runs after each command an item ran (the window shows the new state).
    Toolbar(shell::Session& app, std::function<void()> afterCommand, QWidget* parent = nullptr);

    /// Shows the items in this order and keeps it as the user's arrangement.
    void setOrder(const std::vector<std::string>& order);
    [[nodiscard]] const std::vector<std::string>& order() const { return m_order; }
    /// The action of an item, whether it stands on the toolbar or not.
    [[nodiscard]] QAction* itemAction(std::string_view identifier) const;
    /// Enables the items whose commands exist and disables the others.
    void updateItems();
    /// Opens the dialog in which the user arranges the toolbar.
    void customize();
    /// The action of the context menu and the window's menu that opens the dialog.
    [[nodiscard]] QAction* customizeAction() const { return m_customize; }

  private:
    void createItemActions();
    void triggerItem(const ToolbarItem& item);
    void rebuild();

    shell::Session& m_app;
    std::function<void()> m_afterCommand;
    std::map<std::string, QAction*, std::less<>> m_items;
    std::vector<QAction*> m_spacers; // spaces and separators of the current arrangement
    std::vector<std::string> m_order;
    QAction* m_customize = nullptr;
};

} // namespace zifora::gui
