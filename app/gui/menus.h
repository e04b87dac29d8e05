#pragma once
// The German menu bar, built from the command catalog: every command that names a menu
// stands there under its label, in its place; internal steps never do.

#include "shell/commandcatalog.h"

#include <QMenuBar>

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

/// Fills `bar` with the menus of the session's commands.
void buildMenus(QMenuBar& bar, shell::Session& session);

/// The German label of a command without its mnemonic, or "" when it has none.
QString commandLabel(const shell::CommandCatalog& commands, const std::string& command);

} // namespace zifora::gui
