#pragma once
// The gross sum as the item form's sum field takes it and shows it. The field accepts the
// locale's notation ("119,50" under German); the item keeps the sum in "amount" as a plain
// text that every float read of the program reads back to the very same float.

#include "core/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace zifora::posting {

/// A typed sum the field accepts: a number in the locale's notation, not negative, within
/// the float range. Gives nothing for anything else, blank texts included.
[[nodiscard]] std::optional<float> acceptedSum(std::string_view text,
                                               std::string_view localeName = {});

/// True for a text of blanks only, which the field treats as empty.
[[nodiscard]] bool isBlankText(std::string_view text);

/// The one float read of the sum field by the calculation and the closing checks: the
/// locale's notation where the text is one, else the plain float read, which stops at the
/// first character that cannot belong to a number ("" and "abc" read as 0).
[[nodiscard]] float sumFieldValue(std::string_view text, std::string_view localeName = {});

/// How an accepted sum is stored in "amount": the shortest plain decimal text that reads
/// back to the same float ("119.5", "0.1", "1234.56").
[[nodiscard]] std::string storedAmountText(float sum);

/// What the sum field shows for a stored "amount": a number (as splits and imports store
/// it) or a plain decimal text in the locale's notation, "" for none, any other text as it
/// stands.
[[nodiscard]] std::string sumFieldTextFor(const core::Value& amount,
                                          std::string_view localeName = {});

/// The decimal sign of the locale `localeName` (the current locale when empty), as UTF-8.
[[nodiscard]] std::string localeDecimalSign(std::string_view localeName = {});

} // namespace zifora::posting
