#pragma once
// The jobs of the command-line program that need more than the core.

#include "core/error.h"
#include "core/settings.h"
#include "core/value.h"

#include <istream>
#include <optional>
#include <ostream>
#include <string>

namespace zifora::shell {

/// Runs a JSON-lines script against the data folder of $HOME; returns the exit code
/// (0, or 1 when an error event was printed, 3 when the script can't be read).
int runScriptFile(const std::string& path, std::ostream& out);
int runScript(std::istream& script, std::ostream& out);

/// Writes a root value as a keyed archive, atomically.
[[nodiscard]] core::Result<void> writeArchiveFile(const std::string& path, const core::Value& root);

/// Loads the settings store. A store that can't be read is moved aside (its name gets
/// ".unlesbar" and the time) so that nothing in it is lost, and the run starts with an
/// empty store; the returned text tells the user so.
std::optional<std::string> loadSettingsSafely(core::Settings& settings);

} // namespace zifora::shell
