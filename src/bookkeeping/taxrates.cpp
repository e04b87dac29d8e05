#include "bookkeeping/taxrates.h"

#include "core/settings.h"
#include "posting/amountentry.h"
#include "posting/numberformat.h"

#include <charconv>

namespace zifora::bookkeeping {

namespace {

constexpr const char* kRateKeys[] = {"prefs1Rate", "prefs2Rate", "prefs3Rate"};
constexpr const char* kTitleKeys[] = {"prefs1RateTitle", "prefs2RateTitle", nullptr};
constexpr const char* kFallbackTitles[] = {"1. Steuersatz", "2. Steuersatz", "3. Steuersatz"};

// A rate as the preferences show it: its shortest text with the locale's decimal sign
// ("5,5" in German).
std::string rateText(const core::Value& rate) {
    if (rate.isAbsent() || !rate.isNumber()) return {};
    char buffer[64];
    auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, rate.toFloat());
    if (error != std::errc()) return {};
    const std::string text(buffer, end);
    const size_t point = text.find('.');
    if (point == std::string::npos) return text;
    return text.substr(0, point) + posting::localeDecimalSign() + text.substr(point + 1);
}

} // namespace

posting::TaxRates taxRatesOf(const core::Settings& settings) {
    return {settings.getFloat(kRateKeys[0]), settings.getFloat(kRateKeys[1]),
            settings.getFloat(kRateKeys[2])};
}

std::array<TaxRateLabel, 3> taxRateLabels(const core::Settings& settings) {
    std::array<TaxRateLabel, 3> labels;
    for (size_t i = 0; i < labels.size(); ++i) {
        labels[i].percent = posting::percentStringFromNumber(settings.get(kRateKeys[i]));
        if (kTitleKeys[i]) labels[i].title = settings.getString(kTitleKeys[i]);
    }
    return labels;
}

std::vector<std::string> templateTaxChoices(const core::Settings& settings) {
    std::vector<std::string> choices{"ohne Steuer"};
    for (size_t i = 0; i < 3; ++i) {
        std::string title = kTitleKeys[i] ? settings.getString(kTitleKeys[i]) : std::string();
        if (title.empty()) title = kFallbackTitles[i];
        const std::string value = rateText(settings.get(kRateKeys[i]));
        choices.push_back(value.empty() ? title : title + " (" + value + " %)");
    }
    choices.push_back("steuerfreier Umsatz");
    choices.push_back("nicht steuerbarer Umsatz");
    return choices;
}

} // namespace zifora::bookkeeping
