#pragma once
// Every command of the program by its action name, with what menus, the toolbar, buttons and
// scripts need to know of it: its German label, its menu and shortcut, whether it is an
// internal step, and its handler.

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace zifora::shell {

/// What the sender of a command passes along: a menu item's tag, for instance, or the path
/// of a file the desktop asks the program to open.
struct CommandSender {
    int tag = 0;
    std::string path = {};
};

/// How a command ended.
enum class Outcome { Done, Refused, Cancelled };

struct CommandResult {
    Outcome outcome = Outcome::Done;
    std::string refusal;            // the text of the alert that refused
    std::vector<std::string> files; // the files the command wrote

    [[nodiscard]] static CommandResult done(std::vector<std::string> files = {}) {
        return {Outcome::Done, {}, std::move(files)};
    }
    [[nodiscard]] static CommandResult refused(std::string text) {
        return {Outcome::Refused, std::move(text), {}};
    }
    [[nodiscard]] static CommandResult cancelled() { return {Outcome::Cancelled, {}, {}}; }
};

/// The menus of the menu bar, in the order they stand there.
enum class Menu { None, File, Books, Items, MasterData, Clients, Places, Database, Help };

/// The title of a menu with its mnemonic ("&Ablage").
[[nodiscard]] std::string_view menuTitle(Menu menu);

/// What is known of a command besides its handler.
struct CommandInfo {
    std::string name;  // the action name ("addYear:")
    std::string label; // German, as menus show it; "&" marks the key of the mnemonic
    Menu menu = Menu::None;
    int position = 0;     // the place in its menu, ascending
    std::string shortcut; // portable key text ("Ctrl+Shift+J")
    int tag = 0;          // the sender's tag when run from a menu
    bool internal = true; // a step of the program, never shown in a menu
};

/// A command a user can ask for from a menu.
[[nodiscard]] CommandInfo menuCommand(std::string name, std::string label, Menu menu, int position,
                                      std::string shortcut = {});
/// An internal step of the program.
[[nodiscard]] CommandInfo internalStep(std::string name);
/// A command a user reaches through a button, a window or the desktop, not a menu.
[[nodiscard]] CommandInfo userCommand(std::string name, std::string label);

class CommandCatalog {
  public:
    using Handler = std::function<CommandResult(const CommandSender&)>;

    struct Entry {
        CommandInfo info;
        Handler handler;
    };

    /// Registers a command. A name registered twice is a programming error: the first
    /// command stays, and the name is kept in `duplicates()`, which the tests check.
    void add(CommandInfo info, Handler handler);

    /// The same for a handler that returns nothing: it counts as done.
    template <typename F>
    requires std::is_void_v<std::invoke_result_t<F, const CommandSender&>>
    void add(CommandInfo info, F handler) {
        add(std::move(info), Handler([h = std::move(handler)](const CommandSender& s) {
                h(s);
                return CommandResult::done();
            }));
    }
    /// An internal step by its name alone.
    template <typename F> void add(std::string name, F handler) {
        add(internalStep(std::move(name)), std::move(handler));
    }

    [[nodiscard]] bool contains(std::string_view name) const { return m_entries.contains(name); }
    [[nodiscard]] const CommandInfo* info(std::string_view name) const;
    /// Runs a command; nothing when no command has that name.
    std::optional<CommandResult> run(std::string_view name, const CommandSender& sender = {}) const;
    /// Every command, by name.
    [[nodiscard]] std::vector<const CommandInfo*> all() const;
    /// The commands of a menu in their order.
    [[nodiscard]] std::vector<const CommandInfo*> menuEntries(Menu menu) const;
    [[nodiscard]] std::vector<std::string> names() const;
    [[nodiscard]] const std::vector<std::string>& duplicates() const { return m_duplicates; }

    /// Called after every command that was run, with its name and result.
    using Observer = std::function<void(const std::string& name, const CommandResult& result)>;
    void observe(Observer observer) { m_observers.push_back(std::move(observer)); }

  private:
    std::map<std::string, Entry, std::less<>> m_entries;
    std::vector<std::string> m_duplicates;
    std::vector<Observer> m_observers;
};

} // namespace zifora::shell
