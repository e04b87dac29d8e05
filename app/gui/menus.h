#pragma once
// The German menu bar, built from the command registry: every registered command is
// reachable, the known ones under their own words, the rest under "Weitere Befehle". Each
// menu of the bar has a mnemonic of its own, and so has each entry within its menu.

#include "shell/commandregistry.h"

#include <QMenuBar>

#include <functional>

namespace zifora::gui {

/// Fills `bar`; `afterCommand` runs after each command (the window refreshes itself).
void buildMenus(QMenuBar& bar, shell::CommandRegistry& commands, std::function<void()> afterCommand);

/// The German label of a command without its mnemonic, or "" when it has none of its own.
QString commandLabel(const std::string& command);

} // namespace zifora::gui
