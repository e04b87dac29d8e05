#pragma once
// What the panes of the preferences share: the program, and the one way to run a command
// so that every window shows its outcome.

#include <functional>
#include <string>

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

struct PaneContext {
    shell::Session& app;
    /// Runs a command by its name with a sender tag, then brings the windows up to date.
    std::function<void(const std::string& command, int tag)> run;
    /// Records or the selection were changed here: the windows show it.
    std::function<void()> changed;
};

} // namespace zifora::gui
