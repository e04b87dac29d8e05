#include "posting/itementry.h"

#include "core/settings.h"
#include "posting/amountentry.h"
#include "posting/itemcalculation.h"

#include <cmath>
#include <cstdint>

namespace zifora::posting {

using core::Value;

std::string creationStamp(core::Date now) {
    // Whole seconds, written as a 32-bit decimal as the stamp always was: their lowest 32
    // bits, which fmod finds exactly for any time; a time that is no number stamps 0.
    const double seconds = std::floor(now.unixSeconds());
    if (!std::isfinite(seconds)) return "0";
    double low = std::fmod(seconds, 4294967296.0);
    if (low < 0) low += 4294967296.0;
    return std::to_string(static_cast<int32_t>(static_cast<uint32_t>(low)));
}

void stampNewItem(core::Record& item, const core::Record* period, const core::Record* year,
                  core::Date now) {
    item.set("parentTab", Value::string(period ? period->getText("title") : ""));
    item.set("parentYear", Value::string(year ? year->getText("dateValue") : ""));
    item.set("UUID", Value::string(creationStamp(now)));
}

namespace {

void takeRememberedText(core::Record& item, const core::Settings& settings,
                        std::string_view setting, std::string_view key) {
    if (settings.contains(setting)) item.set(key, Value::string(settings.getString(setting)));
}

void takeRememberedValues(core::Record& item, const core::Settings& settings) {
    takeRememberedText(item, settings, "itemRememberGroup", "group");
    takeRememberedText(item, settings, "itemRememberAccount", "account");
    takeRememberedText(item, settings, "itemRememberAccountNumber", "accountNumber");
    if (settings.getBool("itemRememberTaxBool")) item.set("taxBool", Value::boolean(true));
    if (const int64_t tag = settings.getInteger("itemRememberTaxTag"); tag != 0)
        item.set("taxTag", Value::intValue(static_cast<int32_t>(tag)));
    if (const int64_t kind = settings.getInteger("itemRememberKind"); kind != 0)
        item.set("kind", Value::intValue(static_cast<int32_t>(kind)));
    if (const Value date = settings.get("rememberDate"); date.kind() == core::Kind::Date)
        item.set("date", date);
}

} // namespace

void prefillNewItem(core::Record& item, const core::Settings& settings, core::Date now) {
    if (settings.getBool("prefsAlwaysRememberLastSettings")) {
        takeRememberedValues(item, settings);
    } else {
        if (settings.getBool("setUmsatzsteuerAutomatically"))
            item.set("taxBool", Value::boolean(true));
        if (settings.getBool("setTaxAutomatically")) item.set("taxTag", Value::intValue(1));
    }
    if (settings.getBool("prefsRememberDate")) {
        const Value date = settings.get("rememberDate");
        item.set("date", date.kind() == core::Kind::Date ? date : Value::date(now));
    }
}

std::optional<std::string_view> closingRefusal(const core::Record& item,
                                               std::string_view sumFieldText) {
    if (sumFieldText.empty()) return kRefusalNoSum;
    const bool taxed = isExactlyTrue(item.get("taxBool"));
    if (taxed && item.getInt("taxTag") == 0) return kRefusalNoTaxRate;
    if (taxed && sumFieldValue(sumFieldText) == 0.0f) return kRefusalTaxOnZero;
    if (item.getText("title").empty()) return kRefusalNoTitle;
    return std::nullopt;
}

bool isCompensationPosting(const core::Record& item) {
    return item.getText("title").starts_with("Ausgl. Abschr.") ||
           item.getText("accountNumber") == "ZZ 9999";
}

void copyTemplateKeys(const core::Record& from, core::Record& to) {
    for (std::string_view key : kTemplateKeys)
        to.set(key, from.get(key));
}

} // namespace zifora::posting
