#pragma once
// Every user command by its action name, for menus, toolbar, buttons and scripts.

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zifora::shell {

/// What the sender of a command passes along: a menu item's tag, for instance, or the path
/// of a file the desktop asks the program to open.
struct CommandSender {
    int tag = 0;
    std::string path = {};
};

class CommandRegistry {
  public:
    using Handler = std::function<void(const CommandSender&)>;

    void add(const std::string& name, Handler handler) { m_handlers[name] = std::move(handler); }
    [[nodiscard]] bool contains(const std::string& name) const { return m_handlers.contains(name); }
    /// Runs a command; false when no command has that name.
    bool run(const std::string& name, const CommandSender& sender = {}) const {
        auto it = m_handlers.find(name);
        if (it == m_handlers.end()) return false;
        it->second(sender);
        return true;
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const auto& [name, handler] : m_handlers) out.push_back(name);
        return out;
    }

  private:
    std::map<std::string, Handler> m_handlers;
};

} // namespace zifora::shell
