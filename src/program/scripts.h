#pragma once
// The jobs of the command-line program that run the whole program.

#include "shell/services.h"

#include <istream>
#include <ostream>
#include <string>

namespace zifora::program {

/// Runs a JSON-lines script against the data folder of $HOME; returns the exit code
/// (0, or 1 when an error event was printed, 3 when the script can't be read). Reports are
/// rendered by `pdf` where one is given.
int runScriptFile(const std::string& path, std::ostream& out, shell::PdfRenderer* pdf = nullptr);
int runScript(std::istream& script, std::ostream& out, shell::PdfRenderer* pdf = nullptr);

} // namespace zifora::program
