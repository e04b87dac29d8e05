#pragma once
// Where the files the program brings along lie: beside an installed program under
// <prefix>/share/zifora/, or under resources/ of the build tree a program was built in.

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

namespace zifora::core {

/// The resource folder `name` ("charts", "help") for the program at `executable`. An
/// installed program (<prefix>/bin) finds <prefix>/share/zifora/NAME; a program in a build
/// tree finds <build>/resources/NAME, looking up from its own folder. A folder counts only
/// if `counts` accepts it, so that a source tree's folder of plain files is passed over.
[[nodiscard]] std::optional<std::filesystem::path>
findResourceFolder(const std::filesystem::path& executable, std::string_view name,
                   const std::function<bool(const std::filesystem::path&)>& counts);

/// The path of the running program, or nothing where the system does not tell.
[[nodiscard]] std::optional<std::filesystem::path> runningExecutable();

/// The folder of the built-in help pages (the one holding "index.html") for the program at
/// `executable`, or nothing when none is found.
[[nodiscard]] std::optional<std::filesystem::path>
findHelpFolder(const std::filesystem::path& executable);

/// The same for the running program.
[[nodiscard]] std::optional<std::filesystem::path> findHelpFolder();

} // namespace zifora::core
