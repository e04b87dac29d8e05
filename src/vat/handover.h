#pragma once
// The hand-over of an advance return to an ELSTER client: the period code, the return's
// Kennzahlen, the XML file of the client's outbox and the text form for the clipboard.

#include "core/places.h"
#include "core/value.h"
#include "posting/settlementtotals.h"

#include <array>
#include <string>
#include <string_view>

namespace zifora::posting {
class AmountFormats;
}

namespace zifora::vat {

/// The code of the return's period by the exact title of the settlement period: "19" for
/// "Jahr", "41" to "44" for the quarters, "01" to "12" for the months; "" for any other title
/// (a trailing blank included).
[[nodiscard]] std::string_view periodCode(std::string_view periodTitle);

/// The figures of the return by their Kennzahl.
struct Kennzahlen {
    float kz81 = 0.0f; // net turnover at the first rate
    float kz86 = 0.0f; // net turnover at the second rate
    float kz35 = 0.0f; // net turnover at the third rate
    float kz45 = 0.0f; // turnover outside the scope of the tax
    float kz66 = 0.0f; // deductible input tax
    float kz83 = 0.0f; // balance of the return
    float kz48 = 0.0f; // tax-free turnover
};

[[nodiscard]] Kennzahlen kennzahlenOf(const posting::AdvanceReturnFigures& figures);

/// One Kennzahl with the form field it is shown in and its "tab-" setting.
struct KennzahlSource {
    std::string_view number; // "81"
    std::string_view field;  // "tax1SumField"
    float Kennzahlen::*figure;
};

/// The seven Kennzahlen in the order of the XML file: 81, 86, 35, 45, 66, 83, 48. The text
/// form takes the first six.
[[nodiscard]] const std::array<KennzahlSource, 7>& kennzahlSources();

/// What the hand-over names besides the figures. Each is a value as read from the settings
/// or the records; an absent one prints as (null).
struct HandOverHead {
    core::Value company;   // "prefsCompany"
    core::Value taxId;     // "prefsTaxID"
    core::Value elsterId;  // "prefsELSTERID"
    core::Value title;     // `title` of the period
    core::Value yearValue; // `dateValue` of the year
};

/// "Zifora_<code>_<year>.xml": Zifora_41_2014.xml for the first quarter of 2014.
[[nodiscard]] std::string winstonFileName(const HandOverHead& head);

/// The XML file: the declaration says ISO-8859-1 while the bytes are UTF-8 (kept as the
/// client expects it), tabs and "\n" as the client reads them and no line end after the last
/// line. Each figure goes through the plain pattern of the locale ("1234,50"), never grouped.
[[nodiscard]] std::string winstonXml(const HandOverHead& head, const Kennzahlen& figures,
                                     const posting::AmountFormats& formats);

/// The text form of the clipboard: the head line and six lines of a Kennzahl and the text
/// its form field shows (Kennzahl 48 is not part of it).
[[nodiscard]] std::string clipboardText(const HandOverHead& head,
                                        const std::array<std::string, 6>& fieldTexts);

/// How the advance-return form shows one of its figures: the decimal style of the locale with
/// group signs and two decimals ("1.234,50"); a field never filled shows nothing.
[[nodiscard]] std::string figureFieldText(const core::Value& value);

/// The client's outbox when the preferences name none: $XDG_DATA_HOME/Winston/Ausgang/, that
/// is the folder beside the program's own data folder.
[[nodiscard]] std::string defaultOutboxFolder(const core::Places& places);

} // namespace zifora::vat
