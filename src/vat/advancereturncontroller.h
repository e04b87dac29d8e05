#pragma once
// The advance-return window of the selected settlement period: it opens with the figures of
// the period's totals, takes the three payments typed by hand, marks the period as used for
// a return, reminds of turnover outside the scope of the tax, prints the period sheet, and
// holds the period's comment of the return.
//
// Controls (form fields) of the window and the records they are bound to:
//   "tabPaymentField", "tabAdditionalPayField", "tabRepaymentField" - `payment`,
//       `additionalPayment`, `rePayment` of the period (typed: a number or the locale's text)
//   "tabBalanceField" - `balance`, as `calculateTab:` writes it
//   "zahlungFieldBuchung", "erstattungFieldBuchung", "saldoFieldBuchung" - the figures the
//       marking took over (`payment`, `rePayment`, `balance`); typing into them writes the keys
//   "voranmeldungMarkCheckBox" - `taxBool` of the period, the mark; its action is `meldungBuchen:`
//   "voranmeldungCommentField" - `voranmeldungComment` of the period
// and written by the window: "openItemsButtonImage" ("openPopover" when the period holds
// unpaid items, else "openPopoverTemplate"), "openColor" (the orange of open items or black,
// as "#rrggbb"), and for the open-taxes panel "openItemsWithField", "openItemsWithoutField".

#include "core/value.h"
#include "reports/reportframe.h"
#include "shell/commandcatalog.h"
#include "shell/feature.h"

#include <string>
#include <string_view>

namespace zifora::core {
class Record;
}

namespace zifora::posting {
struct SettlementTotals;
}

namespace zifora::shell {
class Session;
}

namespace zifora::vat {

class AdvanceReturnController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Umsatzsteuer-Voranmeldung"; }
    /// Registers `openVoranmeldungsWindow:`, `meldungBuchen:`, `nichtSteuerbarAlert`,
    /// `printAbrechnung:`, `closeVoranmeldungsWindow:`, `toggleVoranmeldungHelp:`, and writes
    /// the period sheet after every run of the totals.
    explicit AdvanceReturnController(shell::Session& session);

    shell::CommandResult openVoranmeldungsWindow();
    shell::CommandResult meldungBuchen();
    void nichtSteuerbarAlert();
    shell::CommandResult printAbrechnung();

    /// The period sheet's scratch files: "PDFPreviewTab.html" and "PDFPreviewTab.pdf" in the
    /// data folder (the settlement journal writes the same two).
    [[nodiscard]] reports::ScratchFiles sheetFiles() const;

  private:
    void registerCommands();
    void observeFields();
    /// Shows the bound keys of the selected period in their controls.
    void loadControls();
    void setControl(std::string_view field, core::Value value);
    void fieldChanged(const std::string& name, const core::Value& value);
    void showOpenItems();
    void fillPopOver(int tag);
    shell::CommandResult refuseWithoutPeriods();
    void runTotals(bool withBalance);
    void writePeriodSheet(const posting::SettlementTotals& totals);

    shell::Session& m_session;
    bool m_loading = false; // controls being filled by the window itself, not typed
};

} // namespace zifora::vat
