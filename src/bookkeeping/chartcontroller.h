#pragma once
// The chart of accounts of the current client: loading one of the built-in charts in place
// of the accounts, and the export of the accounts as a CSV list.

#include "core/chartfiles.h"
#include "core/record.h"
#include "shell/feature.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

class ChartController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Kontenrahmen"; }
    /// Registers the load commands and `exportAccountsCSV:`. The charts are read from
    /// `chartsFolder`; none means they can't be found.
    ChartController(shell::Session& session, std::optional<std::filesystem::path> chartsFolder);

    /// Replaces the accounts of the current client by a built-in chart; with `ask`, only
    /// after the user agreed. A chart that isn't there leaves an empty list of accounts; one
    /// that can't be read is refused with an alert and the accounts stay.
    void loadChart(core::BuiltInChart chart, bool ask);
    void exportAccountsCSV();

    /// The export text: one line "number";"title" per account, quotation marks inside the
    /// values left as they are, a missing value as (null).
    [[nodiscard]] static std::string accountsCSV(const std::vector<core::Record*>& accounts);

  private:
    [[nodiscard]] bool confirmLoad(core::BuiltInChart chart);
    void replaceAccounts(core::RecordList accounts);

    shell::Session& m_session;
    std::optional<std::filesystem::path> m_chartsFolder;
};

} // namespace zifora::bookkeeping
