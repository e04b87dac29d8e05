#pragma once
// The jobs of the command-line program that run the whole program.

#include <istream>
#include <ostream>
#include <string>

namespace zifora::program {

/// Runs a JSON-lines script against the data folder of $HOME; returns the exit code
/// (0, or 1 when an error event was printed, 3 when the script can't be read).
int runScriptFile(const std::string& path, std::ostream& out);
int runScript(std::istream& script, std::ostream& out);

} // namespace zifora::program
