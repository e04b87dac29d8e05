#pragma once
// The amounts of one posting: what the typed gross sum, the kind, the tax choice and the
// open-item mark make of the thirteen amount keys every total and report adds up.

#include "core/value.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace zifora::core {
class Record;
}

namespace zifora::posting {

/// The three rates of the settings, in percent. An unset third rate reads as 0.
struct TaxRates {
    float first = 0.0f;  // "prefs1Rate"
    float second = 0.0f; // "prefs2Rate"
    float third = 0.0f;  // "prefs3Rate"
};

/// Kind of an item as stored in its "kind" key.
enum ItemKind : int32_t { kKindNone = 0, kKindExpense = 1, kKindIncome = 2 };

/// Everything the calculation reads. The sum is read once, before the calculation.
struct ItemAmountInput {
    float grossSum = 0.0f;
    int32_t kind = kKindNone;
    bool taxBool = false;
    int32_t taxTag = 0;
    bool unpaidBool = false;
    TaxRates rates;
};

/// What the calculation writes. When `written` is false (kind 0 or an unknown kind) the item
/// keeps every key as it was. `taxTag` is only written when `clearsTaxTag` is set: switching
/// tax off forgets the chosen rate, while a taxed item keeps its tag.
struct ItemAmounts {
    bool written = false;
    bool clearsTaxTag = false;
    float taxPerecent = 0.0f;
    float taxFee = 0.0f;
    float taxFeeGet = 0.0f;
    float taxFeePay = 0.0f;
    float incomeWith = 0.0f;
    float incomeWithout = 0.0f;
    float expenseWith = 0.0f;
    float expenseWithout = 0.0f;
    float finalAmount = 0.0f;
    float finalAmountWith = 0.0f;
    float finalAmountWithout = 0.0f;
    float openWith = 0.0f;
    float openWithout = 0.0f;
    /// The row icon: "miniItemRedTax", "miniItemRed", "miniItemGreenTax" or "miniItemGreen".
    std::string_view image;
};

/// The rate a tax tag stands for: tags 1 to 3 pick a rate of the settings, every other tag
/// (0 none, 4 tax-free, 5 outside the scope of the tax) computes with 0.
[[nodiscard]] float rateForTaxTag(int32_t taxTag, const TaxRates& rates) noexcept;

/// The pure calculation, in 32-bit floats and in a fixed order of operations, without
/// allocation. Float noise (for instance of S - ((S * 100) / 100) under tags 4 and 5) is
/// part of the result and is not cleaned.
[[nodiscard]] ItemAmounts calculateItemAmounts(const ItemAmountInput& input) noexcept;

/// The float read of a gross sum as the item stores it in "amount": a number, or a text read
/// up to the first character that cannot belong to a number. Absent and "" read as 0.
[[nodiscard]] float grossSumOf(const core::Value& amount);

/// Only the exact value true counts for "taxBool": a bool true or a number equal to 1.
/// Texts, other numbers and an absent value count as false.
[[nodiscard]] bool isExactlyTrue(const core::Value& value);

/// The inputs as they stand in an item record, its "amount" key giving the sum.
[[nodiscard]] ItemAmountInput itemAmountInputOf(const core::Record& item, const TaxRates& rates);

/// Writes a result into an item: exactly the keys the calculation sets, floats as floats,
/// the tag as an int and the icon as an image. Does nothing when `amounts.written` is false.
void applyItemAmounts(core::Record& item, const ItemAmounts& amounts);

/// Reads, calculates and writes in one go, for items that never pass the form (imports,
/// splits, compensation postings).
ItemAmounts calculateItem(core::Record& item, const TaxRates& rates);

/// One write to the settings store.
struct SettingWrite {
    std::string_view key;
    core::Value value; // absent: remove the key
};

/// The settings the form's calculation writes besides the item, in order: "allowCashBook"
/// true when the sum field holds any text, then the remembered state of the form for the next
/// new item ("rememberDate", "itemRememberGroup", "itemRememberAccount",
/// "itemRememberAccountNumber", "itemRememberTaxBool", "itemRememberTaxTag",
/// "itemRememberKind"), copied from the item as it stands before the calculation, so a
/// tag that the calculation is about to clear is still remembered.
[[nodiscard]] std::vector<SettingWrite> formSettingWrites(const core::Record& item,
                                                          std::string_view sumFieldText);

/// How the form's sum field looks after a calculation. The sign display is cleared first;
/// an expense shows "-" in red, an income "+" in green, both enable the field; kind 0
/// disables it; any other kind leaves the field as it was with the sign cleared.
struct SumFieldLook {
    enum class Field : uint8_t { Enable, Disable, Keep };
    enum class Tint : uint8_t { None, Red, Green };
    std::string_view sign;
    Field field = Field::Keep;
    Tint tint = Tint::None;
};

[[nodiscard]] SumFieldLook sumFieldLookFor(int32_t kind) noexcept;

} // namespace zifora::posting
