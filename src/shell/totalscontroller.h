#pragma once
// The settlement totals of the selected period: the figures of the advance-return form, their
// "tab-" mirrors in the settings, and the period's balance as typed by hand.

#include "posting/settlementtotals.h"

#include <functional>

namespace zifora::shell {

class App;

class TotalsController {
  public:
    /// Registers `calculateTab:`, `calculateTabVoid`, `infoWindowVoid` and
    /// `changeAlLCalculates:`.
    explicit TotalsController(App& app);

    /// (payment + additional payment) - repayment from the fields "tabPaymentField",
    /// "tabAdditionalPayField" and "tabRepaymentField", in 32-bit floats; shown in
    /// "tabBalanceField" and stored as a float in "balance" of the selected period.
    void calculateTabVoid();

    /// Totals the items of the item list (the selected period's, in date order). Each of the
    /// eleven figures goes to its form field and then, as a float, to its "tab-" setting, in
    /// the order of the form; then the period sheet is written. Nothing is stored on the
    /// period.
    void infoWindowVoid();

    /// The action of the controls that change what the advance-return form shows: the DATEV
    /// warning when it is due, then `calculateTabVoid` and `infoWindowVoid`.
    void changeAlLCalculates();

    /// The totals of the last run of `infoWindowVoid`.
    [[nodiscard]] const posting::SettlementTotals& lastTotals() const { return m_last; }

    /// Writes the period sheet from the totals of a run; called at the end of each
    /// `infoWindowVoid`. Set by the report feature that owns the sheet; unset, no sheet is
    /// written.
    std::function<void(const posting::SettlementTotals&)> writePeriodSheet;

  private:
    void registerCommands();

    App& m_app;
    posting::SettlementTotals m_last;
};

} // namespace zifora::shell
