#include "shell/chartfiles.h"

#include <array>

namespace zifora::shell {

namespace fs = std::filesystem;

namespace {

constexpr std::array kAllCharts{BuiltInChart::Complete, BuiltInChart::Standard,
                                BuiltInChart::Minimal};

// How many folders above the program's own a build tree's resources may lie
// (<build>/app/cli/zifora-cli, <build>/tests/unit_shell).
constexpr int kBuildTreeDepth = 3;

bool holdsCharts(const fs::path& folder) {
    std::error_code ec;
    for (BuiltInChart chart : kAllCharts)
        if (fs::is_regular_file(folder / chartFileName(chart), ec)) return true;
    return false;
}

} // namespace

std::string_view chartFileName(BuiltInChart chart) {
    switch (chart) {
    case BuiltInChart::Complete:
        return "DATEV_2013_Complete.kmdb";
    case BuiltInChart::Standard:
        return "DATEV_2013_Mini.kmdb";
    case BuiltInChart::Minimal:
        return "DATEV_2013_Minimal.kmdb";
    }
    return {};
}

std::optional<fs::path> findChartsFolder(const fs::path& executable) {
    fs::path folder = executable.parent_path();
    if (folder.empty()) return std::nullopt;
    fs::path installed = folder.parent_path() / "share" / "zifora" / "charts";
    if (holdsCharts(installed)) return installed;
    for (int up = 0; up <= kBuildTreeDepth && !folder.empty(); ++up) {
        if (holdsCharts(folder / "resources" / "charts")) return folder / "resources" / "charts";
        if (folder == folder.root_path()) break;
        folder = folder.parent_path();
    }
    return std::nullopt;
}

std::optional<fs::path> findChartsFolder() {
    std::error_code ec;
    fs::path executable = fs::read_symlink("/proc/self/exe", ec);
    if (ec) return std::nullopt;
    return findChartsFolder(executable);
}

} // namespace zifora::shell
