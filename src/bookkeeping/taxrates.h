#pragma once
// The three tax rates of the settings, read in one place: for the calculations, for the
// labels of the item form's tax control and for the tax chooser of the templates.

#include "posting/itemcalculation.h"

#include <array>
#include <string>
#include <vector>

namespace zifora::core {
class Settings;
}

namespace zifora::bookkeeping {

/// "prefs1Rate", "prefs2Rate" and "prefs3Rate" as the calculations read them.
[[nodiscard]] posting::TaxRates taxRatesOf(const core::Settings& settings);

/// How one of the three rates is shown: its percent text ("19 %", "" for no rate) and the
/// title the user gave it ("" for none; the third rate has no title of its own).
struct TaxRateLabel {
    std::string percent;
    std::string title;
};
[[nodiscard]] std::array<TaxRateLabel, 3> taxRateLabels(const core::Settings& settings);

/// The tax choices of a template by the tag they stand for: 0 no tax, 1 to 3 the rates with
/// their titles ("Regelsteuersatz (19 %)"), 4 tax-free turnover, 5 turnover outside the
/// scope of the tax.
[[nodiscard]] std::vector<std::string> templateTaxChoices(const core::Settings& settings);

} // namespace zifora::bookkeeping
