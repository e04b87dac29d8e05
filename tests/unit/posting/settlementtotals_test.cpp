#include "posting/settlementtotals.h"

#include "core/record.h"
#include "posting/itemcalculation.h"

#include <gtest/gtest.h>

#include <bit>
#include <vector>

namespace zifora::posting {
namespace {

using core::Record;
using core::Value;

#define EXPECT_FLOAT_BITS(expected, actual)                                                        \
    EXPECT_EQ(std::bit_cast<uint32_t>(static_cast<float>(expected)),                               \
              std::bit_cast<uint32_t>(static_cast<float>(actual)))                                 \
        << #actual << " = " << (actual)

constexpr TaxRates kRates{19.0f, 7.0f, 0.0f};

/// Items as the form leaves them after their calculation, in the order of the item list.
struct Period {
    core::RecordList records;
    std::vector<const Record*> items;

    Record& add(const char* amount, int32_t kind, bool taxed, int32_t tag, bool unpaid = false) {
        records.push_back(Record::make(core::RecordClass::Item, core::Date{}));
        Record& item = *records.back();
        item.set("amount", Value::string(amount));
        item.set("kind", Value::intValue(kind));
        item.set("taxBool", Value::boolean(taxed));
        item.set("taxTag", Value::intValue(tag));
        item.set("unpaidBool", Value::boolean(unpaid));
        calculateItem(item, kRates);
        items.push_back(&item);
        return item;
    }
    [[nodiscard]] SettlementTotals totals() const { return settlementTotals(items); }
};

TEST(SettlementTotals, EqualIncomeAndExpenseAtTheFirstRateBalanceOut) {
    Period p;
    const Record& income = p.add("119", kKindIncome, true, 1);
    const Record& expense = p.add("119", kKindExpense, true, 1);
    const SettlementTotals t = p.totals();
    EXPECT_FLOAT_BITS(income.getFloat("incomeWithout"), t.figures.tax1Sum);
    EXPECT_FLOAT_BITS(income.getFloat("taxFeePay"), t.figures.tax1Amount);
    EXPECT_FLOAT_BITS(expense.getFloat("taxFeeGet"), t.figures.abziehbareBetraegeSteuerAmount);
    EXPECT_FLOAT_BITS(119.0f, t.figures.abziehbareBetraege);
    EXPECT_FLOAT_BITS(0.0f, t.figures.saldo);
    EXPECT_FLOAT_BITS(0.0f, t.period.balanceGross);
}

// The return's sums are 32-bit and follow the item list; the key sums of the period are taken
// whole and only then made 32-bit.
TEST(SettlementTotals, TheReturnAddsIn32BitFloatsInListOrderWhileKeySumsAreTakenWhole) {
    const auto totalsOf = [](std::initializer_list<float> amounts) {
        core::RecordList records;
        std::vector<const Record*> items;
        for (float a : amounts) {
            records.push_back(Record::makeBare(core::RecordClass::Item));
            records.back()->set("taxBool", Value::boolean(true));
            records.back()->set("taxTag", Value::intValue(1));
            records.back()->set("taxFeePay", Value::floatValue(a));
            records.back()->set("incomeWith", Value::floatValue(a));
            items.push_back(records.back().get());
        }
        return settlementTotals(items);
    };
    const SettlementTotals bigFirst = totalsOf({16777216.0f, 1.0f, 1.0f});
    const SettlementTotals bigLast = totalsOf({1.0f, 1.0f, 16777216.0f});
    EXPECT_FLOAT_BITS(16777216.0f, bigFirst.figures.tax1Amount);
    EXPECT_FLOAT_BITS(16777218.0f, bigLast.figures.tax1Amount);
    EXPECT_FLOAT_BITS(16777218.0f, bigFirst.period.incomeGross);
    EXPECT_FLOAT_BITS(16777218.0f, bigLast.period.incomeGross);
    EXPECT_FLOAT_BITS(2.0999999f, totalsOf({0.7f, 0.7f, 0.7f}).figures.tax1Amount);
}

TEST(SettlementTotals, PeriodFiguresCountOpenItemsLikePaidOnesAndKeepTheOpenSumsWhole) {
    Period p;
    p.add("119", kKindIncome, true, 1);
    p.add("10.70", kKindIncome, true, 2, /*unpaid=*/true);
    p.add("59.50", kKindExpense, true, 1, /*unpaid=*/true);
    p.add("25", kKindExpense, false, 0);
    const PeriodFigures fig = p.totals().period;
    float incomeGross = 0, taxFeePay = 0, expenseGross = 0, taxFeeGet = 0;
    for (const Record* item : p.items) {
        incomeGross += item->getFloat("incomeWith");
        taxFeePay += item->getFloat("taxFeePay");
        expenseGross += item->getFloat("expenseWith");
        taxFeeGet += item->getFloat("taxFeeGet");
    }
    EXPECT_FLOAT_BITS(incomeGross, fig.incomeGross);
    EXPECT_FLOAT_BITS(incomeGross - taxFeePay, fig.incomeNet);
    EXPECT_FLOAT_BITS(-84.5f, fig.expenseGross);
    EXPECT_FLOAT_BITS(expenseGross + taxFeeGet, fig.expenseNet);
    EXPECT_FLOAT_BITS(fig.incomeGross + fig.expenseGross, fig.balanceGross);
    EXPECT_FLOAT_BITS(fig.incomeNet + fig.expenseNet, fig.balanceNet);
    // The open sums are the sums' own numbers, not made 32-bit.
    const double openWith =
        double{p.items[1]->getFloat("openWith")} + p.items[2]->getFloat("openWith");
    EXPECT_EQ(fig.openWith, openWith);
    EXPECT_NE(fig.openWith, double{10.7f + -59.5f});
}

} // namespace
} // namespace zifora::posting
