#include "core/resourcefolders.h"

#include <string>

namespace zifora::core {

namespace fs = std::filesystem;

namespace {

// How many folders above the program's own a build tree's resources may lie
// (<build>/app/cli/zifora-cli, <build>/tests/unit_shell).
constexpr int kBuildTreeDepth = 3;

} // namespace

std::optional<fs::path> findResourceFolder(const fs::path& executable, std::string_view name,
                                           const std::function<bool(const fs::path&)>& counts) {
    fs::path folder = executable.parent_path();
    if (folder.empty()) return std::nullopt;
    fs::path installed = folder.parent_path() / "share" / "zifora" / std::string(name);
    if (counts(installed)) return installed;
    for (int up = 0; up <= kBuildTreeDepth && !folder.empty(); ++up) {
        fs::path candidate = folder / "resources" / std::string(name);
        if (counts(candidate)) return candidate;
        if (folder == folder.root_path()) break;
        folder = folder.parent_path();
    }
    return std::nullopt;
}

std::optional<fs::path> runningExecutable() {
    std::error_code ec;
    fs::path executable = fs::read_symlink("/proc/self/exe", ec);
    if (ec) return std::nullopt;
    return executable;
}

std::optional<fs::path> findHelpFolder(const fs::path& executable) {
    return findResourceFolder(executable, "help", [](const fs::path& folder) {
        std::error_code ec;
        return fs::is_regular_file(folder / "index.html", ec);
    });
}

std::optional<fs::path> findHelpFolder() {
    auto executable = runningExecutable();
    if (!executable) return std::nullopt;
    return findHelpFolder(*executable);
}

} // namespace zifora::core
