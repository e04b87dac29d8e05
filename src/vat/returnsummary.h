#pragma once
// The figures of one period's advance return as the command line shows them: the Kennzahlen,
// the period's balance table and what the marking stored, as text for people or as JSON.

#include "core/value.h"
#include "posting/settlementtotals.h"

#include <nlohmann/json.hpp>

#include <array>
#include <string>

namespace zifora::vat {

struct ReturnSummary {
    std::string company;
    std::string taxId;
    std::string year;   // "dateValue" of the year
    std::string period; // title of the period
    posting::SettlementTotals totals;
    bool marked = false; // "taxBool" of the period
    // The figures the period holds: `payment`, `additionalPayment`, `rePayment`, `balance`.
    std::array<float, 4> stored{};
    std::array<core::Value, 3> rates; // "prefs1Rate" to "prefs3Rate", for the labels
};

/// A table for people: the Kennzahlen 81, 86, 35, 45, 48, 66, 83 with their meaning and the
/// balance table, amounts in the locale's decimal style with group signs and two decimals.
[[nodiscard]] std::string returnSummaryText(const ReturnSummary& summary,
                                            std::string_view localeName = {});

/// The same as one JSON object; amounts are the 32-bit floats as their shortest text.
[[nodiscard]] nlohmann::ordered_json returnSummaryJson(const ReturnSummary& summary);

} // namespace zifora::vat
