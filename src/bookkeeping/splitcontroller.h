#pragma once
// The split calculator beside the item form's sum. Its share page keeps a part of the
// typed sum, its tax page turns a net sum into the gross sum; both replace "amount" of the
// selected item and have the item recalculated. No second item is made: the rest of a
// split sum leaves the books.
//
// Commands: openSplitWindow:, splitAction:, cancelSplitWindow:.
// Form controls: "sumFieldCalChelp" (the net sum of the tax page), "algebraicFieldCalcHelp"
// (the sign shown beside it) and the text colours "algebraicFieldCalcHelp.textColor" and
// "sumFieldCalChelp.textColor" ("red" or "green").
// Settings: "calculatorHelpIndex" (0 the share page, any other value the tax page),
// "selectedSplitIndex" and "customSplitValue" (the share).

#include "shell/commandcatalog.h"
#include "shell/feature.h"

namespace zifora::core {
class Record;
}

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

class SplitController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Aufteilen"; }
    explicit SplitController(shell::Session& session);

    /// The calculator opens: its net sum is cleared and the sign of the item's kind shown.
    void openSplitWindow();
    /// The calculator's OK: the share or the tax page by "calculatorHelpIndex".
    shell::CommandResult splitAction();
    /// Ends the calculator without a change.
    void cancelSplitWindow();

  private:
    shell::CommandResult splitByShare(core::Record* item);
    shell::CommandResult splitByTax(core::Record* item);
    shell::CommandResult refuse(const char* text);
    /// Schedules the recalculation of the selected item and closes the calculator.
    void finish();
    void recalculateSelectedItem();

    shell::Session& m_session;
};

} // namespace zifora::bookkeeping
#include "shell/feature.h"
