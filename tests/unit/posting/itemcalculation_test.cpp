#include "posting/itemcalculation.h"

#include "core/record.h"

#include <gtest/gtest.h>

#include <bit>
#include <map>
#include <set>
#include <string>

namespace zifora::posting {
namespace {

using core::Kind;
using core::Record;
using core::RecordClass;
using core::Value;

constexpr TaxRates kRates{19.0f, 7.0f, 0.0f};

ItemAmounts calculate(float sum, int32_t kind, bool taxed, int32_t tag, bool unpaid = false) {
    return calculateItemAmounts({sum, kind, taxed, tag, unpaid, kRates});
}

// Bit-for-bit float comparison, so that -0 and noise in the last place count.
#define EXPECT_FLOAT_BITS(expected, actual)                                                        \
    EXPECT_EQ(std::bit_cast<uint32_t>(static_cast<float>(expected)),                               \
              std::bit_cast<uint32_t>(static_cast<float>(actual)))                                 \
        << #actual << " = " << (actual)

TEST(ItemCalculation, TaxedIncomeSplits119AtNineteenPercentInto100And19) {
    const ItemAmounts a = calculate(119.0f, kKindIncome, true, 1);
    ASSERT_TRUE(a.written);
    EXPECT_FALSE(a.clearsTaxTag);
    EXPECT_FLOAT_BITS(19.0f, a.taxPerecent);
    EXPECT_FLOAT_BITS(19.0f, a.taxFee);
    EXPECT_FLOAT_BITS(19.0f, a.taxFeePay);
    EXPECT_FLOAT_BITS(0.0f, a.taxFeeGet);
    EXPECT_FLOAT_BITS(119.0f, a.incomeWith);
    EXPECT_FLOAT_BITS(100.0f, a.incomeWithout);
    EXPECT_FLOAT_BITS(0.0f, a.expenseWith);
    EXPECT_FLOAT_BITS(0.0f, a.expenseWithout);
    EXPECT_FLOAT_BITS(119.0f, a.finalAmount);
    EXPECT_FLOAT_BITS(119.0f, a.finalAmountWith);
    EXPECT_FLOAT_BITS(100.0f, a.finalAmountWithout);
    EXPECT_FLOAT_BITS(0.0f, a.openWith);
    EXPECT_FLOAT_BITS(0.0f, a.openWithout);
    EXPECT_EQ("miniItemGreenTax", a.image);
}

TEST(ItemCalculation, TaxedExpenseKeepsTaxPositiveAndAmountsNegative) {
    const ItemAmounts a = calculate(119.0f, kKindExpense, true, 1);
    ASSERT_TRUE(a.written);
    EXPECT_FLOAT_BITS(19.0f, a.taxFee);
    EXPECT_FLOAT_BITS(19.0f, a.taxFeeGet);
    EXPECT_FLOAT_BITS(0.0f, a.taxFeePay);
    EXPECT_FLOAT_BITS(0.0f, a.incomeWith);
    EXPECT_FLOAT_BITS(0.0f, a.incomeWithout);
    EXPECT_FLOAT_BITS(-119.0f, a.expenseWith);
    EXPECT_FLOAT_BITS(-100.0f, a.expenseWithout);
    EXPECT_FLOAT_BITS(-119.0f, a.finalAmount);
    EXPECT_FLOAT_BITS(-119.0f, a.finalAmountWith);
    EXPECT_FLOAT_BITS(-100.0f, a.finalAmountWithout);
    EXPECT_EQ("miniItemRedTax", a.image);
}

// 10 at 7 %: rounding each step to float gives a tax one unit below the correctly rounded
// double result, so computing in double (or as S * r / (100 + r)) would show here.
TEST(ItemCalculation, RoundsEveryStepToFloatInTheGivenOrder) {
    const ItemAmounts income = calculate(10.0f, kKindIncome, true, 2);
    EXPECT_FLOAT_BITS(7.0f, income.taxPerecent);
    EXPECT_FLOAT_BITS(0x1.4ef4p-1f, income.taxFee);
    EXPECT_FLOAT_BITS(0x1.2b10cp+3f, income.incomeWithout);

    const ItemAmounts expense = calculate(10.0f, kKindExpense, true, 2);
    EXPECT_FLOAT_BITS(0x1.4ef4p-1f, expense.taxFeeGet);
    EXPECT_FLOAT_BITS(-0x1.2b10cp+3f, expense.expenseWithout);
    EXPECT_FLOAT_BITS(-0x1.2b10cp+3f, expense.finalAmountWithout);
}

// Tags 4 and 5 compute with rate 0, and S - ((S * 100) / 100) is not always 0 in floats.
// The noise is kept; so is the tag, and the picture is the taxed one.
TEST(ItemCalculation, TaxFreeTagsKeepTheFloatNoiseOfRateZero) {
    const float sum = 167772.17f;
    for (const int32_t tag : {4, 5}) {
        const ItemAmounts income = calculate(sum, kKindIncome, true, tag);
        EXPECT_FALSE(income.clearsTaxTag);
        EXPECT_FLOAT_BITS(0.0f, income.taxPerecent);
        EXPECT_FLOAT_BITS(-0.015625f, income.taxFee);
        EXPECT_FLOAT_BITS(-0.015625f, income.taxFeePay);
        EXPECT_FLOAT_BITS(sum, income.incomeWith);
        EXPECT_FLOAT_BITS(167772.1875f, income.incomeWithout);
        EXPECT_EQ("miniItemGreenTax", income.image);

        const ItemAmounts expense = calculate(sum, kKindExpense, true, tag);
        EXPECT_FLOAT_BITS(-0.015625f, expense.taxFeeGet);
        EXPECT_FLOAT_BITS(-sum, expense.expenseWith);
        EXPECT_FLOAT_BITS(-167772.1875f, expense.expenseWithout);
        EXPECT_EQ("miniItemRedTax", expense.image);
    }
    // Without noise, gross and net are simply equal.
    const ItemAmounts plain = calculate(119.0f, kKindIncome, true, 5);
    EXPECT_FLOAT_BITS(0.0f, plain.taxFee);
    EXPECT_FLOAT_BITS(119.0f, plain.incomeWithout);
}

TEST(ItemCalculation, RateFollowsTheTagAndUnknownTagsComputeWithZero) {
    EXPECT_FLOAT_BITS(0.0f, calculate(107.0f, kKindIncome, true, 3).taxPerecent); // unset 3rd
    EXPECT_FLOAT_BITS(0.0f, calculate(107.0f, kKindIncome, true, 0).taxFee);
    EXPECT_FLOAT_BITS(0.0f, calculate(107.0f, kKindIncome, true, 6).taxFee);
    EXPECT_FLOAT_BITS(0.0f, calculate(107.0f, kKindIncome, true, -1).taxFee);
    const ItemAmounts third =
        calculateItemAmounts({107.0f, kKindIncome, true, 3, false, {19.0f, 7.0f, 7.0f}});
    EXPECT_FLOAT_BITS(7.0f, third.taxFee);
    EXPECT_FLOAT_BITS(100.0f, third.incomeWithout);
}

TEST(ItemCalculation, UntaxedBranchesClearTheTagAndAllTaxKeys) {
    const ItemAmounts expense = calculate(119.0f, kKindExpense, false, 2);
    EXPECT_TRUE(expense.clearsTaxTag);
    EXPECT_FLOAT_BITS(0.0f, expense.taxPerecent);
    EXPECT_FLOAT_BITS(0.0f, expense.taxFee);
    EXPECT_FLOAT_BITS(0.0f, expense.taxFeeGet);
    EXPECT_FLOAT_BITS(-119.0f, expense.expenseWith);
    EXPECT_FLOAT_BITS(-119.0f, expense.expenseWithout);
    EXPECT_FLOAT_BITS(-119.0f, expense.finalAmountWithout);
    EXPECT_EQ("miniItemRed", expense.image);

    const ItemAmounts income = calculate(119.0f, kKindIncome, false, 1);
    EXPECT_TRUE(income.clearsTaxTag);
    EXPECT_FLOAT_BITS(0.0f, income.taxFeePay);
    EXPECT_FLOAT_BITS(119.0f, income.incomeWithout);
    EXPECT_FLOAT_BITS(119.0f, income.finalAmountWithout);
    EXPECT_FLOAT_BITS(0.0f, income.expenseWith);
    EXPECT_EQ("miniItemGreen", income.image);
}

TEST(ItemCalculation, OpenItemsCarryAMemoOfTheSignedAmounts) {
    const ItemAmounts taxedExpense = calculate(119.0f, kKindExpense, true, 1, /*unpaid=*/true);
    EXPECT_FLOAT_BITS(-119.0f, taxedExpense.openWith);
    EXPECT_FLOAT_BITS(-100.0f, taxedExpense.openWithout);
    EXPECT_FLOAT_BITS(-119.0f, taxedExpense.finalAmount); // still counts in full
    const ItemAmounts taxedIncome = calculate(119.0f, kKindIncome, true, 1, true);
    EXPECT_FLOAT_BITS(119.0f, taxedIncome.openWith);
    EXPECT_FLOAT_BITS(100.0f, taxedIncome.openWithout);
    const ItemAmounts untaxed = calculate(50.0f, kKindExpense, false, 0, true);
    EXPECT_FLOAT_BITS(-50.0f, untaxed.openWith);
    EXPECT_FLOAT_BITS(-50.0f, untaxed.openWithout);
}

TEST(ItemCalculation, NoKindOrAnUnknownKindWritesNothing) {
    EXPECT_FALSE(calculate(119.0f, kKindNone, true, 1).written);
    EXPECT_FALSE(calculate(119.0f, 3, true, 1).written);
    EXPECT_FALSE(calculate(119.0f, -1, false, 0).written);
}

TEST(ItemCalculation, AnEmptySumGivesZeroAmounts) {
    const ItemAmounts a = calculate(grossSumOf(Value::string("")), kKindExpense, true, 1);
    EXPECT_FLOAT_BITS(0.0f, a.taxFee);
    EXPECT_FLOAT_BITS(0.0f, a.expenseWith);
    EXPECT_FLOAT_BITS(0.0f, a.finalAmountWithout);
}

class ItemRecordTest : public ::testing::Test {
  protected:
    core::Ref<Record> item = Record::make(RecordClass::Item, core::Date{700000000.0});

    std::map<std::string, Value> snapshot() const {
        std::map<std::string, Value> keys;
        item->properties().forEach([&](const std::string& key, const Value& v) { keys[key] = v; });
        return keys;
    }
};

TEST_F(ItemRecordTest, ApplyWritesExactlyTheAmountKeysWithTheirKinds) {
    item->set("amount", Value::string("119"));
    item->set("kind", Value::intValue(kKindExpense));
    item->set("taxBool", Value::boolean(true));
    item->set("taxTag", Value::intValue(1));
    item->set("atSum", Value::floatValue(5.0f));
    const auto before = snapshot();

    calculateItem(*item, kRates);

    const auto after = snapshot();
    ASSERT_EQ(before.size(), after.size());
    std::set<std::string> changed;
    for (const auto& [key, value] : after)
        if (!(before.at(key) == value)) changed.insert(key);
    // Zeros that were zero before don't show as changes; the rest must be exactly these.
    EXPECT_EQ((std::set<std::string>{"image", "taxPerecent", "taxFee", "taxFeeGet", "expenseWith",
                                     "expenseWithout", "finalAmount", "finalAmountWith",
                                     "finalAmountWithout"}),
              changed);
    EXPECT_EQ(Kind::Image, item->get("image").kind());
    EXPECT_EQ("miniItemRedTax", item->get("image").text());
    EXPECT_EQ(Value::floatValue(-100.0f), item->get("finalAmountWithout"));
    EXPECT_EQ(Value::intValue(1), item->get("taxTag"));
    EXPECT_EQ(Value::floatValue(5.0f), item->get("atSum"));
}

TEST_F(ItemRecordTest, SwitchingTaxOffStoresTagZeroAsAnInt) {
    item->set("amount", Value::floatValue(20.0f)); // a float, as after an import
    item->set("kind", Value::intValue(kKindIncome));
    item->set("taxTag", Value::intValue(2));
    item->set("taxPerecent", Value::floatValue(7.0f));
    calculateItem(*item, kRates);
    EXPECT_EQ(Value::intValue(0), item->get("taxTag"));
    EXPECT_EQ(Value::floatValue(0.0f), item->get("taxPerecent"));
    EXPECT_EQ(Value::floatValue(20.0f), item->get("finalAmountWithout"));
}

TEST_F(ItemRecordTest, KindZeroLeavesAnExistingItemUntouched) {
    item->set("amount", Value::string("50"));
    item->set("finalAmount", Value::floatValue(-42.0f));
    item->set("image", Value::image("miniItemRed"));
    const auto before = snapshot();
    EXPECT_FALSE(calculateItem(*item, kRates).written);
    EXPECT_EQ(before, snapshot());
}

TEST_F(ItemRecordTest, OnlyAnExactTrueTaxBoolTaxes) {
    item->set("amount", Value::string("119"));
    item->set("kind", Value::intValue(kKindIncome));
    item->set("taxTag", Value::intValue(1));
    item->set("taxBool", Value::intValue(1));
    EXPECT_TRUE(itemAmountInputOf(*item, kRates).taxBool);
    item->set("taxBool", Value::intValue(2));
    EXPECT_FALSE(itemAmountInputOf(*item, kRates).taxBool);
    item->set("taxBool", Value::string("YES"));
    EXPECT_FALSE(itemAmountInputOf(*item, kRates).taxBool);
}

TEST_F(ItemRecordTest, FormRemembersTheStateBeforeTheTagIsCleared) {
    item->set("kind", Value::intValue(kKindExpense));
    item->set("taxTag", Value::intValue(2)); // about to be cleared: taxBool is false
    item->set("group", Value::string("Porto"));
    const auto writes = formSettingWrites(*item, "12,50");
    calculateItem(*item, kRates);

    ASSERT_EQ(8u, writes.size());
    EXPECT_EQ("allowCashBook", writes[0].key);
    EXPECT_EQ(Value::boolean(true), writes[0].value);
    EXPECT_EQ("rememberDate", writes[1].key);
    EXPECT_EQ(Kind::Date, writes[1].value.kind());
    EXPECT_EQ("itemRememberGroup", writes[2].key);
    EXPECT_EQ("Porto", writes[2].value.text());
    EXPECT_EQ("itemRememberTaxTag", writes[6].key);
    EXPECT_EQ(Value::intValue(2), writes[6].value);
    EXPECT_EQ("itemRememberKind", writes[7].key);

    const auto withoutSum = formSettingWrites(*item, "");
    ASSERT_EQ(7u, withoutSum.size());
    EXPECT_EQ("rememberDate", withoutSum[0].key);
}

} // namespace
} // namespace zifora::posting
