#pragma once
// Where the built-in charts of accounts lie: the ".kmdb" archives made at build time.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace zifora::core {

/// The three charts of accounts the program brings along.
enum class BuiltInChart {
    Complete, // the whole standard chart SKR04
    Standard, // a chart for freelancers and small businesses, after SKR04
    Minimal,  // a few dozen accounts
};

/// The file name of a built-in chart ("DATEV_2013_Complete.kmdb" …).
[[nodiscard]] std::string_view chartFileName(BuiltInChart chart);

/// The folder of the built-in charts for the program at `executable`, or nothing when none
/// is found. An installed program (<prefix>/bin) finds <prefix>/share/zifora/charts; a
/// program in a build tree finds <build>/resources/charts, looking up from its own folder.
/// A folder counts only if it holds at least one of the three charts.
[[nodiscard]] std::optional<std::filesystem::path>
findChartsFolder(const std::filesystem::path& executable);

/// The same for the running program.
[[nodiscard]] std::optional<std::filesystem::path> findChartsFolder();

} // namespace zifora::core
