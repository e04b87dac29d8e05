#include "vat/returnsummary.h"

#include "posting/formatstring.h"
#include "posting/numberformat.h"
#include "vat/handover.h"

#include <charconv>

namespace zifora::vat {

namespace {

/// A float as JSON number with the float's shortest text (0.1f reads 0.1, not 0.10000000149).
nlohmann::ordered_json number(double value) {
    char text[64];
    auto end = std::to_chars(text, text + sizeof text, static_cast<float>(value)).ptr;
    auto parsed = nlohmann::ordered_json::parse(std::string(text, end), nullptr, false);
    return parsed.is_number() ? parsed : nlohmann::ordered_json(nullptr); // nan and inf
}

/// "Umsätze zum 1. Steuersatz (19 %), netto"; without the rate in the settings, no rate.
std::string turnoverAt(int which, const core::Value& rate) {
    std::string text = "Umsätze zum " + std::to_string(which) + ". Steuersatz";
    if (!rate.isAbsent()) text += " (" + posting::percentStringFromNumber(rate) + ")";
    return text + ", netto";
}

struct Line {
    const char* number;
    std::string meaning;
    float value;
};

std::array<Line, 7> lines(const ReturnSummary& s) {
    const Kennzahlen k = kennzahlenOf(s.totals.figures);
    return {{{"81", turnoverAt(1, s.rates[0]), k.kz81},
             {"86", turnoverAt(2, s.rates[1]), k.kz86},
             {"35", turnoverAt(3, s.rates[2]), k.kz35},
             {"45", "Nicht steuerbare Umsätze", k.kz45},
             {"48", "Steuerfreie Umsätze", k.kz48},
             {"66", "Abziehbare Vorsteuer", k.kz66},
             {"83", "Saldo der Voranmeldung", k.kz83}}};
}

/// `text` right-aligned in `width` characters (counted as UTF-8 characters).
std::string right(const std::string& text, size_t width) {
    size_t chars = 0;
    for (unsigned char c : text)
        chars += (c & 0xC0) != 0x80;
    return std::string(chars < width ? width - chars : 0, ' ') + text;
}

std::string left(const std::string& text, size_t width) {
    size_t chars = 0;
    for (unsigned char c : text)
        chars += (c & 0xC0) != 0x80;
    return text + std::string(chars < width ? width - chars : 0, ' ');
}

} // namespace

std::string returnSummaryText(const ReturnSummary& s, std::string_view localeName) {
    auto amount = [&](double v) { return posting::commaStringFromNumber(v, localeName); };
    std::string out = "Umsatzsteuer-Voranmeldung " + s.period + " " + s.year + "\n";
    out += s.company + (s.taxId.empty() ? "" : ", Steuernummer " + s.taxId) + "\n";
    if (s.marked) {
        out += "Als erstellt markiert: Zahlung " + amount(s.stored[0]) + ", Nachzahlung " +
               amount(s.stored[1]) + ", Erstattung " + amount(s.stored[2]) + ", Saldo " +
               amount(s.stored[3]) + "\n\n";
    } else {
        out += "Noch nicht als erstellt markiert\n\n";
    }
    for (const Line& line : lines(s))
        out += "Kz " + std::string(line.number) + "  " + left(line.meaning, 42) +
               right(amount(line.value), 14) + "\n";
    const posting::PeriodFigures& p = s.totals.period;
    out += "\n" + left("", 14) + right("Ausgaben", 14) + right("Einnahmen", 14) +
           right("Saldo", 14) + "\n";
    out += left("mit Steuern:", 14) + right(amount(p.expenseGross), 14) +
           right(amount(p.incomeGross), 14) + right(amount(p.balanceGross), 14) + "\n";
    out += left("ohne Steuern:", 14) + right(amount(p.expenseNet), 14) +
           right(amount(p.incomeNet), 14) + right(amount(p.balanceNet), 14) + "\n";
    out += "\nOffene Posten: " + amount(p.openWith) + " mit, " + amount(p.openWithout) +
           " ohne Steuern\n";
    return out;
}

nlohmann::ordered_json returnSummaryJson(const ReturnSummary& s) {
    nlohmann::ordered_json kennzahlen = nlohmann::ordered_json::object();
    for (const Line& line : lines(s))
        kennzahlen[line.number] = number(line.value);
    nlohmann::ordered_json figures = nlohmann::ordered_json::object();
    for (const posting::NamedFigure& f : posting::namedFigures(s.totals.figures))
        figures[std::string(f.field)] = number(f.value);
    const posting::PeriodFigures& p = s.totals.period;
    nlohmann::ordered_json balance = {
        {"expenseGross", number(p.expenseGross)}, {"incomeGross", number(p.incomeGross)},
        {"balanceGross", number(p.balanceGross)}, {"expenseNet", number(p.expenseNet)},
        {"incomeNet", number(p.incomeNet)},       {"balanceNet", number(p.balanceNet)},
        {"openWith", number(p.openWith)},         {"openWithout", number(p.openWithout)}};
    return {{"company", s.company},
            {"taxNumber", s.taxId},
            {"year", s.year},
            {"period", s.period},
            {"periodCode", std::string(periodCode(s.period))},
            {"kennzahlen", kennzahlen},
            {"figures", figures},
            {"balance", balance},
            {"marked", s.marked},
            {"stored",
             {{"payment", number(s.stored[0])},
              {"additionalPayment", number(s.stored[1])},
              {"rePayment", number(s.stored[2])},
              {"balance", number(s.stored[3])}}}};
}

} // namespace zifora::vat
