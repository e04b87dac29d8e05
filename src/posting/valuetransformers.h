#pragma once
// What a list or form shows for one bound value. None of these converts back.

#include "core/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace zifora::core {
class Properties;
}

namespace zifora::posting {

/// A colour by its red, green and blue parts between 0 and 1.
struct Colour {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    friend bool operator==(const Colour&, const Colour&) = default;
};

inline constexpr Colour kBlack{0.0, 0.0, 0.0};
inline constexpr Colour kOpenItemColour{0.902, 0.459, 0.259};
inline constexpr Colour kNegativeColour{0.52844, 0.083141, 0.088046};
inline constexpr Colour kPositiveColour{0.172, 0.506, 0.094};

/// An open item's row: the orange of open items when the value is true, else black.
[[nodiscard]] Colour openItemColour(const core::Value& unpaid);

/// A rate as text, as `percentStringFromNumber`: "19 %", "" for no value.
[[nodiscard]] std::string floatToPercentString(const core::Value& rate);

/// The small tax mark of a list row: "‰" when the value is true, else "".
[[nodiscard]] std::string_view itemTaxMark(const core::Value& taxBool);

/// The age of a date in whole years up to `now` by the calendar of the current locale:
/// "%ld Jahre" from 2 on, "1 Jahr" below that, "" when the value is not a date.
[[nodiscard]] std::string yearsSinceText(const core::Value& date, core::Date now);

/// An amount's colour: dark red below 0, green from 0 on.
[[nodiscard]] Colour amountColour(const core::Value& amount);

/// A cash-book entry's colour from its "sumAusgabe" and "sumEinnahme": black, dark red when
/// money went out, green when money came in; green wins when both are above 0. A missing
/// entry is black.
[[nodiscard]] Colour cashEntryColour(const core::Properties* entry);

/// The paper-clip picture "attachment" for a document path of more than 3 characters.
[[nodiscard]] std::optional<std::string_view> attachmentImage(const core::Value& filePath);

/// The fixed row icons of periods and years, whatever the value.
[[nodiscard]] std::string_view tabImage();
[[nodiscard]] std::string_view yearImage();

} // namespace zifora::posting
