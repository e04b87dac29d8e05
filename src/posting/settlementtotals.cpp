#include "posting/settlementtotals.h"

#include "core/keys.h"
#include "core/record.h"
#include "posting/itemcalculation.h"

#include <cstdint>

namespace zifora::posting {

namespace {

using core::KeyId;
using core::Record;
using core::Value;

/// The keys the totals read, interned once per run rather than once per item.
struct TotalKeys {
    KeyId kind = core::internKey("kind");
    KeyId taxBool = core::internKey("taxBool");
    KeyId taxTag = core::internKey("taxTag");
    KeyId taxFeeGet = core::internKey("taxFeeGet");
    KeyId taxFeePay = core::internKey("taxFeePay");
    KeyId expenseWith = core::internKey("expenseWith");
    KeyId incomeWith = core::internKey("incomeWith");
    KeyId incomeWithout = core::internKey("incomeWithout");
    KeyId openWith = core::internKey("openWith");
    KeyId openWithout = core::internKey("openWithout");
};

/// The keys of one item the totals use, each read once, straight from the record's table.
struct ItemReads {
    const Value* kind;
    const Value* taxBool;
    const Value* taxTag;
    const Value* taxFeeGet;
    const Value* taxFeePay;
    const Value* expenseWith;
    const Value* incomeWith;
    const Value* incomeWithout;
    const Value* openWith;
    const Value* openWithout;

    /// Where each key stood in the last item: the next item of the same class has it there.
    struct Hints {
        uint32_t kind = 0, taxBool = 0, taxTag = 0, taxFeeGet = 0, taxFeePay = 0, expenseWith = 0,
                 incomeWith = 0, incomeWithout = 0, openWith = 0, openWithout = 0;
    };

    ItemReads(const Record& item, const TotalKeys& k, Hints& h) {
        const core::Properties& p = item.properties();
        kind = p.find(k.kind, h.kind);
        taxBool = p.find(k.taxBool, h.taxBool);
        taxTag = p.find(k.taxTag, h.taxTag);
        taxFeeGet = p.find(k.taxFeeGet, h.taxFeeGet);
        taxFeePay = p.find(k.taxFeePay, h.taxFeePay);
        expenseWith = p.find(k.expenseWith, h.expenseWith);
        incomeWith = p.find(k.incomeWith, h.incomeWith);
        incomeWithout = p.find(k.incomeWithout, h.incomeWithout);
        openWith = p.find(k.openWith, h.openWith);
        openWithout = p.find(k.openWithout, h.openWithout);
    }
};

// Missing keys read as 0.
float floatOf(const Value* v) {
    return v ? v->toFloat() : 0.0f;
}
double doubleOf(const Value* v) {
    return v ? v->toDouble() : 0.0;
}
int32_t intOf(const Value* v) {
    return v ? v->toInt() : 0;
}

void accumulateItem(SettlementAccumulators& sums, const ItemReads& item) {
    if (!item.taxBool || !isExactlyTrue(*item.taxBool)) return;
    const int32_t tag = intOf(item.taxTag);
    if (tag < 1 || tag > 5) return;
    const size_t i = static_cast<size_t>(tag - 1);
    if (intOf(item.kind) == kKindExpense) {
        sums.taxFeeGet[i] += floatOf(item.taxFeeGet);
        sums.expenseWith[i] += floatOf(item.expenseWith);
    } else {
        sums.taxFeePay[i] += floatOf(item.taxFeePay);
        sums.incomeWithout[i] += floatOf(item.incomeWithout);
    }
}

/// The plain sums of six keys over all items, as a sum operator over a key path gives them.
struct KeySums {
    double incomeWith = 0.0;
    double taxFeePay = 0.0;
    double expenseWith = 0.0;
    double taxFeeGet = 0.0;
    double openWith = 0.0;
    double openWithout = 0.0;
};

void addKeySums(KeySums& sums, const ItemReads& item) {
    sums.incomeWith += doubleOf(item.incomeWith);
    sums.taxFeePay += doubleOf(item.taxFeePay);
    sums.expenseWith += doubleOf(item.expenseWith);
    sums.taxFeeGet += doubleOf(item.taxFeeGet);
    sums.openWith += doubleOf(item.openWith);
    sums.openWithout += doubleOf(item.openWithout);
}

/// A period's items lie scattered in memory, and a walk over them waits mostly for memory.
/// Asking early for the records a few places ahead, and for the part of their tables that
/// holds the amount keys, lets those loads overlap the work on the current item.
void prefetchAhead(std::span<const Record* const> items, size_t i, const TotalKeys& k) {
    constexpr size_t kRecordDistance = 16;
    constexpr size_t kTableDistance = 8;
    if (i + kRecordDistance < items.size() && items[i + kRecordDistance])
        __builtin_prefetch(items[i + kRecordDistance]);
    if (i + kTableDistance < items.size() && items[i + kTableDistance]) {
        // The amount keys follow "taxBool" in a record of the initialiser's order; for any
        // other order the hint is merely wasted.
        const Value* near = items[i + kTableDistance]->properties().find(k.taxBool);
        // Six cache lines from there; the addresses are only hints and may lie past the table.
        const auto from = reinterpret_cast<uintptr_t>(near);
        if (near)
            for (uintptr_t line = 0; line < 6; ++line)
                __builtin_prefetch(reinterpret_cast<const void*>(from + line * 64));
    }
}

PeriodFigures periodFiguresOf(const KeySums& sums) {
    PeriodFigures p;
    p.incomeGross = static_cast<float>(sums.incomeWith);
    const float taxFeePay = static_cast<float>(sums.taxFeePay);
    p.incomeNet = p.incomeGross - taxFeePay;
    p.expenseGross = static_cast<float>(sums.expenseWith);
    const float taxFeeGet = static_cast<float>(sums.taxFeeGet);
    p.expenseNet = p.expenseGross + taxFeeGet;
    p.balanceGross = p.incomeGross + p.expenseGross;
    p.balanceNet = p.incomeNet + p.expenseNet;
    p.openWith = sums.openWith;
    p.openWithout = sums.openWithout;
    return p;
}

// Left to right, each step a 32-bit float.
float sumOfFive(const std::array<float, 5>& a) {
    float s = a[0] + a[1];
    s = s + a[2];
    s = s + a[3];
    s = s + a[4];
    return s;
}

} // namespace

std::array<NamedFigure, 11> namedFigures(const AdvanceReturnFigures& f) {
    return {{
        {"steuerfreieUmsaetzeField", f.steuerfreieUmsaetze},
        {"tax1SumField", f.tax1Sum},
        {"tax2SumField", f.tax2Sum},
        {"tax3SumField", f.tax3Sum},
        {"tax1AmountField", f.tax1Amount},
        {"tax2AmountField", f.tax2Amount},
        {"tax3AmountField", f.tax3Amount},
        {"nichtSteuerbarField", f.nichtSteuerbar},
        {"abziehbareBetraegeField", f.abziehbareBetraege},
        {"abziehbareBetraegeSteuerAmountField", f.abziehbareBetraegeSteuerAmount},
        {"saldoField", f.saldo},
    }};
}

AdvanceReturnFigures advanceReturnFigures(const SettlementAccumulators& sums) {
    const float v = sumOfFive(sums.taxFeeGet);
    const float x = sumOfFive(sums.expenseWith);
    // The sign is flipped as the item calculation flips it: add twice the opposite.
    const float xTimesMinusTwo = x * -2.0f;
    const float d = x + xTimesMinusTwo;
    const float owed = sumOfFive(sums.taxFeePay);
    const float b = owed - v;

    AdvanceReturnFigures f;
    f.steuerfreieUmsaetze = sums.incomeWithout[3];
    f.tax1Sum = sums.incomeWithout[0];
    f.tax2Sum = sums.incomeWithout[1];
    f.tax3Sum = sums.incomeWithout[2];
    f.tax1Amount = sums.taxFeePay[0];
    f.tax2Amount = sums.taxFeePay[1];
    f.tax3Amount = sums.taxFeePay[2];
    f.nichtSteuerbar = sums.incomeWithout[4];
    f.abziehbareBetraege = d;
    f.abziehbareBetraegeSteuerAmount = v;
    f.saldo = b;
    return f;
}

SettlementTotals settlementTotals(std::span<const Record* const> items) {
    const TotalKeys keys;
    SettlementTotals totals;
    KeySums sums;
    ItemReads::Hints hints;
    for (size_t i = 0; i < items.size(); ++i) {
        prefetchAhead(items, i, keys);
        if (!items[i]) continue;
        const ItemReads item(*items[i], keys, hints);
        accumulateItem(totals.accumulators, item);
        addKeySums(sums, item);
    }
    totals.figures = advanceReturnFigures(totals.accumulators);
    totals.period = periodFiguresOf(sums);
    return totals;
}

} // namespace zifora::posting
