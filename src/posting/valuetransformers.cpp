#include "posting/valuetransformers.h"

#include "core/civildate.h"
#include "core/properties.h"
#include "posting/dateformat.h"
#include "posting/formatstring.h"
#include "posting/icusupport.h"
#include "posting/numberformat.h"
#include "posting/textcleaning.h"

#include <unicode/calendar.h>

#include <memory>

namespace zifora::posting {

Colour openItemColour(const core::Value& unpaid) {
    return unpaid.toBool() ? kOpenItemColour : kBlack;
}

std::string floatToPercentString(const core::Value& rate) {
    return percentStringFromNumber(rate);
}

std::string_view itemTaxMark(const core::Value& taxBool) {
    return taxBool.toBool() ? "\u2030" : "";
}

std::string yearsSinceText(const core::Value& date, core::Date now) {
    if (date.kind() != core::Kind::Date) return {};
    // The calendar counts only between dates it can show.
    if (!core::civilFromUnixTime(date.asDate().unixSeconds()) ||
        !core::civilFromUnixTime(now.unixSeconds()))
        return {};
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(detail::icuLocale({}, LocaleCategory::Dates), status));
    if (U_FAILURE(status)) return {};
    calendar->setTime(icuMilliseconds(date.asDate()), status);
    const int32_t years = calendar->fieldDifference(icuMilliseconds(now), UCAL_YEAR, status);
    if (U_FAILURE(status)) return {};
    if (years >= 2) return formatString("%ld Jahre", {years});
    return "1 Jahr";
}

Colour amountColour(const core::Value& amount) {
    return amount.toFloat() < 0.0f ? kNegativeColour : kPositiveColour;
}

Colour cashEntryColour(const core::Properties* entry) {
    Colour colour = kBlack;
    if (entry == nullptr) return colour;
    if (entry->getFloat("sumAusgabe") > 0.0f) colour = kNegativeColour;
    if (entry->getFloat("sumEinnahme") > 0.0f) colour = kPositiveColour;
    return colour;
}

std::optional<std::string_view> attachmentImage(const core::Value& filePath) {
    if (utf16Length(filePath.text()) > 3) return std::string_view("attachment");
    return std::nullopt;
}

std::string_view tabImage() {
    return "miniTabTemplate";
}
std::string_view yearImage() {
    return "miniYearTemplate";
}

} // namespace zifora::posting
