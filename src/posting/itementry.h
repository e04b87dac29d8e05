#pragma once
// The rules of the item form that need no window: the identity and the prefill of a new
// item, the refusals of a finished one, and what a template carries.

#include "core/record.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace zifora::core {
class Settings;
}

namespace zifora::posting {

/// The creation stamp of items and templates: the time in whole seconds since 1970 as a
/// plain decimal number. Two items made within one second get the same stamp.
[[nodiscard]] std::string creationStamp(core::Date now);

/// Gives a new item its parents and its stamp: "parentTab" from the period's "title",
/// "parentYear" from the year's "dateValue", "UUID" from the time.
void stampNewItem(core::Record& item, const core::Record* period, const core::Record* year,
                  core::Date now);

/// Fills a new item from the settings: the remembered values of the last item when
/// "prefsAlwaysRememberLastSettings" is set (each only under its own condition, so that a
/// remembered false or 0 leaves the default), else the automatic tax choices; then the
/// remembered date when "prefsRememberDate" is set, or `now` if none was remembered.
void prefillNewItem(core::Record& item, const core::Settings& settings, core::Date now);

/// The refusals of a finished item, in the order they are tested.
inline constexpr std::string_view kRefusalNoSum =
    "Posten ist unvollständig ausgefüllt. Bitte Summe angeben. Dazu musst du vorher angeben "
    "haben, ob der Posten eine Ausgabe oder eine Einnahme ist.";
inline constexpr std::string_view kRefusalNoTaxRate =
    "Posten ist unvollständig ausgefüllt. Bitte Steuersatz angeben.";
inline constexpr std::string_view kRefusalTaxOnZero =
    "Steuern auf eine Null zu berechnen macht nicht wirklich Sinn.";
inline constexpr std::string_view kRefusalNoTitle =
    "Posten ist unvollständig ausgefüllt. Bitte Bezeichnung angeben.";

/// The first refusal a finished item meets, or nothing when it may be closed. The sum is the
/// text of the form's sum field; `kind` is not tested, since the field stays disabled until
/// one is chosen. A sum that reads as 0 passes on an untaxed item.
[[nodiscard]] std::optional<std::string_view> closingRefusal(const core::Record& item,
                                                             std::string_view sumFieldText);

/// Compensation postings of depreciations are computed apart and can't be opened in the
/// form: a title beginning "Ausgl. Abschr." or the account number "ZZ 9999".
[[nodiscard]] bool isCompensationPosting(const core::Record& item);

/// The keys a template carries into an item (and takes from one), in the order they are
/// copied. Everything else of a template stays at its default.
inline constexpr std::array<std::string_view, 8> kTemplateKeys = {
    "kind", "group", "account", "accountNumber", "title", "amount", "taxBool", "taxTag"};

/// Copies the template keys as they stand; a key the source lacks is removed.
void copyTemplateKeys(const core::Record& from, core::Record& to);

} // namespace zifora::posting
