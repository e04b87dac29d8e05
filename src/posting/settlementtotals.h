#pragma once
// The totals of one settlement period: the figures of the advance return, summed from the
// stored amount keys of its items, and the period's overall income, expense and open items.

#include <array>
#include <span>
#include <string_view>

namespace zifora::core {
class Record;
}

namespace zifora::posting {

/// Twenty 32-bit sums, one per tax tag 1 to 5 (index 0 to 4) for each of four keys:
/// input tax and gross expense of expenses, tax owed and net turnover of everything else.
/// Only items whose "taxBool" is exactly true and whose "taxTag" is 1 to 5 add to them.
struct SettlementAccumulators {
    std::array<float, 5> taxFeeGet{};     // G1 to G5, kind 1
    std::array<float, 5> expenseWith{};   // X1 to X5, kind 1 (negative)
    std::array<float, 5> taxFeePay{};     // P1 to P5, any kind but 1
    std::array<float, 5> incomeWithout{}; // N1 to N5, any kind but 1
};

/// The eleven figures of the advance return, in the order of its form.
struct AdvanceReturnFigures {
    float steuerfreieUmsaetze = 0.0f;            // N4
    float tax1Sum = 0.0f;                        // N1
    float tax2Sum = 0.0f;                        // N2
    float tax3Sum = 0.0f;                        // N3
    float tax1Amount = 0.0f;                     // P1
    float tax2Amount = 0.0f;                     // P2
    float tax3Amount = 0.0f;                     // P3
    float nichtSteuerbar = 0.0f;                 // N5
    float abziehbareBetraege = 0.0f;             // D: deductible expenses, gross, positive
    float abziehbareBetraegeSteuerAmount = 0.0f; // V: deductible input tax, positive
    float saldo = 0.0f;                          // B: positive when tax is owed
};

/// One figure with the name of its form field; its settings mirror is "tab-" and the name.
struct NamedFigure {
    std::string_view field;
    float value;
};

/// The figures as (field, value) in the order the form is filled.
[[nodiscard]] std::array<NamedFigure, 11> namedFigures(const AdvanceReturnFigures& figures);

/// The overall figures of the period. Each plain key sum is taken without rounding between
/// the additions and only then read as a 32-bit float; what is computed from these sums is
/// 32-bit. The open-item sums are kept as the sums' own numbers.
struct PeriodFigures {
    float incomeGross = 0.0f;  // sum of "incomeWith"
    float incomeNet = 0.0f;    // income gross - sum of "taxFeePay"
    float expenseGross = 0.0f; // sum of "expenseWith" (negative)
    float expenseNet = 0.0f;   // expense gross + sum of "taxFeeGet" (negative)
    float balanceGross = 0.0f; // income gross + expense gross
    float balanceNet = 0.0f;   // income net + expense net
    double openWith = 0.0;     // sum of "openWith"
    double openWithout = 0.0;  // sum of "openWithout"
};

struct SettlementTotals {
    SettlementAccumulators accumulators;
    AdvanceReturnFigures figures;
    PeriodFigures period;
};

/// V, X, D and B and the eleven figures, additions from left to right in 32-bit floats.
[[nodiscard]] AdvanceReturnFigures advanceReturnFigures(const SettlementAccumulators& sums);

/// The totals of a period in one walk over its items, given in the order of the item list:
/// each accumulator adds one item after the other in that order, in 32-bit floats. Missing
/// keys read as 0; null entries are skipped.
[[nodiscard]] SettlementTotals settlementTotals(std::span<const core::Record* const> items);

} // namespace zifora::posting
