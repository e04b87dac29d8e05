#include "posting/currentlocale.h"

#include <clocale>
#include <cstdlib>
#include <string_view>

namespace zifora::posting {

namespace {

constexpr std::string_view kGermany = "de_DE";

bool isNeutral(std::string_view name) {
    return name.empty() || name == "C" || name == "POSIX";
}

std::string_view withoutEncoding(std::string_view name) {
    const size_t cut = name.find_first_of(".@");
    return cut == std::string_view::npos ? name : name.substr(0, cut);
}

std::string_view environmentLocale(const char* categoryVariable) {
    for (const char* variable : {"LC_ALL", categoryVariable, "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

} // namespace

std::string normalizedLocaleName(std::string_view posixName) {
    const std::string_view name = withoutEncoding(posixName);
    if (isNeutral(name)) return std::string(kGermany);
    return std::string(name);
}

std::string currentLocaleName(LocaleCategory category) {
    int processCategory = LC_NUMERIC;
    const char* variable = "LC_NUMERIC";
    if (category == LocaleCategory::Dates) {
        processCategory = LC_TIME;
        variable = "LC_TIME";
    } else if (category == LocaleCategory::Messages) {
        processCategory = LC_MESSAGES;
        variable = "LC_MESSAGES";
    }
    const char* process = std::setlocale(processCategory, nullptr);
    std::string_view name = process != nullptr ? withoutEncoding(process) : std::string_view{};
    if (isNeutral(name)) name = environmentLocale(variable);
    return normalizedLocaleName(name);
}

} // namespace zifora::posting
