#include "posting/itemcalculation.h"

#include "core/record.h"

namespace zifora::posting {

namespace {

using core::Value;

constexpr std::string_view kImageExpenseTaxed = "miniItemRedTax";
constexpr std::string_view kImageExpense = "miniItemRed";
constexpr std::string_view kImageIncomeTaxed = "miniItemGreenTax";
constexpr std::string_view kImageIncome = "miniItemGreen";

// Every step is its own float variable so that nothing is carried in higher precision and
// the order of the roundings is the one of the books: T = S - ((S * 100) / (100 + r)).
float containedTax(float sum, float rate) noexcept {
    const float hundred = 100.0f;
    const float scaled = sum * hundred;
    const float base = hundred + rate;
    const float net = scaled / base;
    const float tax = sum - net;
    return tax;
}

// An expense is negated as S - (S * 2), not by flipping the sign bit.
float negatedSum(float sum) noexcept {
    const float two = 2.0f;
    const float twice = sum * two;
    const float negated = sum - twice;
    return negated;
}

ItemAmounts taxedExpense(const ItemAmountInput& in) noexcept {
    const float rate = rateForTaxTag(in.taxTag, in.rates);
    const float tax = containedTax(in.grossSum, rate);
    const float gross = negatedSum(in.grossSum);
    const float net = gross + tax;
    ItemAmounts out;
    out.written = true;
    out.taxPerecent = rate;
    out.taxFee = tax;
    out.taxFeeGet = tax;
    out.expenseWith = gross;
    out.expenseWithout = net;
    out.finalAmount = gross;
    out.finalAmountWith = gross;
    out.finalAmountWithout = net;
    out.openWith = in.unpaidBool ? gross : 0.0f;
    out.openWithout = in.unpaidBool ? net : 0.0f;
    out.image = kImageExpenseTaxed;
    return out;
}

ItemAmounts untaxedExpense(const ItemAmountInput& in) noexcept {
    const float gross = negatedSum(in.grossSum);
    ItemAmounts out;
    out.written = true;
    out.clearsTaxTag = true;
    out.expenseWith = gross;
    out.expenseWithout = gross;
    out.finalAmount = gross;
    out.finalAmountWith = gross;
    out.finalAmountWithout = gross;
    out.openWith = in.unpaidBool ? gross : 0.0f;
    out.openWithout = in.unpaidBool ? gross : 0.0f;
    out.image = kImageExpense;
    return out;
}

ItemAmounts taxedIncome(const ItemAmountInput& in) noexcept {
    const float rate = rateForTaxTag(in.taxTag, in.rates);
    const float gross = in.grossSum;
    const float tax = containedTax(gross, rate);
    const float net = gross - tax;
    ItemAmounts out;
    out.written = true;
    out.taxPerecent = rate;
    out.taxFee = tax;
    out.taxFeePay = tax;
    out.incomeWith = gross;
    out.incomeWithout = net;
    out.finalAmount = gross;
    out.finalAmountWith = gross;
    out.finalAmountWithout = net;
    out.openWith = in.unpaidBool ? gross : 0.0f;
    out.openWithout = in.unpaidBool ? net : 0.0f;
    out.image = kImageIncomeTaxed;
    return out;
}

ItemAmounts untaxedIncome(const ItemAmountInput& in) noexcept {
    const float gross = in.grossSum;
    ItemAmounts out;
    out.written = true;
    out.clearsTaxTag = true;
    out.incomeWith = gross;
    out.incomeWithout = gross;
    out.finalAmount = gross;
    out.finalAmountWith = gross;
    out.finalAmountWithout = gross;
    out.openWith = in.unpaidBool ? gross : 0.0f;
    out.openWithout = in.unpaidBool ? gross : 0.0f;
    out.image = kImageIncome;
    return out;
}

} // namespace

float rateForTaxTag(int32_t taxTag, const TaxRates& rates) noexcept {
    switch (taxTag) {
    case 1:
        return rates.first;
    case 2:
        return rates.second;
    case 3:
        return rates.third;
    default:
        return 0.0f;
    }
}

ItemAmounts calculateItemAmounts(const ItemAmountInput& input) noexcept {
    switch (input.kind) {
    case kKindExpense:
        return input.taxBool ? taxedExpense(input) : untaxedExpense(input);
    case kKindIncome:
        return input.taxBool ? taxedIncome(input) : untaxedIncome(input);
    default:
        return {}; // kind 0 or unknown: the item stays as it is
    }
}

float grossSumOf(const Value& amount) {
    return amount.toFloat();
}

bool isExactlyTrue(const Value& value) {
    switch (value.kind()) {
    case core::Kind::Bool:
        return value.asBool();
    case core::Kind::Int:
    case core::Kind::Integer:
    case core::Kind::Float:
    case core::Kind::Double:
        return value.toDouble() == 1.0;
    default:
        return false;
    }
}

ItemAmountInput itemAmountInputOf(const core::Record& item, const TaxRates& rates) {
    ItemAmountInput in;
    in.grossSum = grossSumOf(item.get("amount"));
    in.kind = item.getInt("kind");
    in.taxBool = isExactlyTrue(item.get("taxBool"));
    in.taxTag = item.getInt("taxTag");
    in.unpaidBool = item.getBool("unpaidBool");
    in.rates = rates;
    return in;
}

void applyItemAmounts(core::Record& item, const ItemAmounts& a) {
    if (!a.written) return;
    // In the order of the item's initialiser, so that a record missing some of these keys
    // gains them in the same order as a new one has them.
    item.set("image", Value::image(a.image));
    if (a.clearsTaxTag) item.set("taxTag", Value::intValue(0));
    item.set("taxPerecent", Value::floatValue(a.taxPerecent));
    item.set("taxFee", Value::floatValue(a.taxFee));
    item.set("taxFeeGet", Value::floatValue(a.taxFeeGet));
    item.set("taxFeePay", Value::floatValue(a.taxFeePay));
    item.set("incomeWith", Value::floatValue(a.incomeWith));
    item.set("expenseWithout", Value::floatValue(a.expenseWithout));
    item.set("incomeWithout", Value::floatValue(a.incomeWithout));
    item.set("expenseWith", Value::floatValue(a.expenseWith));
    item.set("finalAmount", Value::floatValue(a.finalAmount));
    item.set("finalAmountWith", Value::floatValue(a.finalAmountWith));
    item.set("finalAmountWithout", Value::floatValue(a.finalAmountWithout));
    item.set("openWith", Value::floatValue(a.openWith));
    item.set("openWithout", Value::floatValue(a.openWithout));
}

ItemAmounts calculateItem(core::Record& item, const TaxRates& rates) {
    const ItemAmounts amounts = calculateItemAmounts(itemAmountInputOf(item, rates));
    applyItemAmounts(item, amounts);
    return amounts;
}

std::vector<SettingWrite> formSettingWrites(const core::Record& item,
                                            std::string_view sumFieldText) {
    std::vector<SettingWrite> writes;
    writes.reserve(8);
    if (!sumFieldText.empty()) writes.push_back({"allowCashBook", Value::boolean(true)});
    writes.push_back({"rememberDate", item.get("date")});
    writes.push_back({"itemRememberGroup", item.get("group")});
    writes.push_back({"itemRememberAccount", item.get("account")});
    writes.push_back({"itemRememberAccountNumber", item.get("accountNumber")});
    writes.push_back({"itemRememberTaxBool", item.get("taxBool")});
    writes.push_back({"itemRememberTaxTag", item.get("taxTag")});
    writes.push_back({"itemRememberKind", item.get("kind")});
    return writes;
}

SumFieldLook sumFieldLookFor(int32_t kind) noexcept {
    switch (kind) {
    case kKindNone:
        return {"", SumFieldLook::Field::Disable, SumFieldLook::Tint::None};
    case kKindExpense:
        return {"-", SumFieldLook::Field::Enable, SumFieldLook::Tint::Red};
    case kKindIncome:
        return {"+", SumFieldLook::Field::Enable, SumFieldLook::Tint::Green};
    default:
        return {"", SumFieldLook::Field::Keep, SumFieldLook::Tint::None};
    }
}

} // namespace zifora::posting
