#include "core/chartfiles.h"

#include "core/resourcefolders.h"

#include <array>

namespace zifora::core {

namespace fs = std::filesystem;

namespace {

constexpr std::array kAllCharts{BuiltInChart::Complete, BuiltInChart::Standard,
                                BuiltInChart::Minimal};

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
    return findResourceFolder(executable, "charts", holdsCharts);
}

std::optional<fs::path> findChartsFolder() {
    auto executable = runningExecutable();
    if (!executable) return std::nullopt;
    return findChartsFolder(*executable);
}

} // namespace zifora::core
