#include "vat/handover.h"

#include "posting/formatstring.h"
#include "posting/numberformat.h"

#include <filesystem>
#include <utility>

namespace zifora::vat {

namespace {

constexpr std::pair<std::string_view, std::string_view> kPeriodCodes[] = {
    {"Jahr", "19"},
    {"1. Kalendervierteljahr", "41"},
    {"2. Kalendervierteljahr", "42"},
    {"3. Kalendervierteljahr", "43"},
    {"4. Kalendervierteljahr", "44"},
    {"Januar", "01"},
    {"Februar", "02"},
    {"März", "03"},
    {"April", "04"},
    {"Mai", "05"},
    {"Juni", "06"},
    {"Juli", "07"},
    {"August", "08"},
    {"September", "09"},
    {"Oktober", "10"},
    {"November", "11"},
    {"Dezember", "12"},
};

constexpr std::string_view kXmlTemplate =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" ?>\n<WinstonAusgang>\n"
    "\t<Formular Typ=\"UST\"></Formular>\n\t<Ordnungsnummer>%@</Ordnungsnummer>\n"
    "\t<AnmeldeJahr>%@</AnmeldeJahr>\n\t<AnmeldeZeitraum>%@</AnmeldeZeitraum>\n"
    "\t<Kennzahl nr=\"Kz81\">%@</Kennzahl>\n\t<Kennzahl nr=\"Kz86\">%@</Kennzahl>\n"
    "\t<Kennzahl nr=\"Kz35\">%@</Kennzahl>\n\t<Kennzahl nr=\"Kz45\">%@</Kennzahl>\n"
    "\t<Kennzahl nr=\"Kz66\">%@</Kennzahl>\n\t<Kennzahl nr=\"Kz83\">%@</Kennzahl>\n"
    "\t<Kennzahl nr=\"Kz48\">%@</Kennzahl>\n</WinstonAusgang>";

constexpr std::string_view kClipboardTemplate =
    "%@ - 1/%@/%@ / - [Umsatzsteuer-Voranmeldung %@ %@]\n\t\t81\t%@\n\t\t86\t%@\n\t\t35\t%@\n"
    "\t\t45\t%@\n\t\t66\t%@\n\t\t83\t%@\n";

} // namespace

std::string_view periodCode(std::string_view periodTitle) {
    for (const auto& [title, code] : kPeriodCodes)
        if (title == periodTitle) return code;
    return "";
}

Kennzahlen kennzahlenOf(const posting::AdvanceReturnFigures& figures) {
    return {figures.tax1Sum,
            figures.tax2Sum,
            figures.tax3Sum,
            figures.nichtSteuerbar,
            figures.abziehbareBetraegeSteuerAmount,
            figures.saldo,
            figures.steuerfreieUmsaetze};
}

const std::array<KennzahlSource, 7>& kennzahlSources() {
    static const std::array<KennzahlSource, 7> sources{{
        {"81", "tax1SumField", &Kennzahlen::kz81},
        {"86", "tax2SumField", &Kennzahlen::kz86},
        {"35", "tax3SumField", &Kennzahlen::kz35},
        {"45", "nichtSteuerbarField", &Kennzahlen::kz45},
        {"66", "abziehbareBetraegeSteuerAmountField", &Kennzahlen::kz66},
        {"83", "saldoField", &Kennzahlen::kz83},
        {"48", "steuerfreieUmsaetzeField", &Kennzahlen::kz48},
    }};
    return sources;
}

std::string winstonFileName(const HandOverHead& head) {
    const std::string code(
        periodCode(head.title.kind() == core::Kind::String ? head.title.text() : ""));
    return posting::formatString("Zifora_%@_%@.xml", {code, head.yearValue});
}

std::string winstonXml(const HandOverHead& head, const Kennzahlen& figures,
                       const posting::AmountFormats& formats) {
    const std::string code(
        periodCode(head.title.kind() == core::Kind::String ? head.title.text() : ""));
    std::vector<std::string> texts;
    for (const KennzahlSource& source : kennzahlSources())
        texts.push_back(formats.plain(figures.*source.figure));
    return posting::formatString(kXmlTemplate,
                                 {head.elsterId, head.yearValue, code, texts[0], texts[1], texts[2],
                                  texts[3], texts[4], texts[5], texts[6]});
}

std::string clipboardText(const HandOverHead& head, const std::array<std::string, 6>& fieldTexts) {
    const auto& t = fieldTexts;
    return posting::formatString(kClipboardTemplate,
                                 {head.company, head.taxId, head.yearValue, head.title,
                                  head.yearValue, t[0], t[1], t[2], t[3], t[4], t[5]});
}

std::string figureFieldText(const core::Value& value) {
    if (value.isAbsent()) return "";
    return posting::commaStringFromNumber(value.toFloat());
}

std::string defaultOutboxFolder(const core::Places& places) {
    std::filesystem::path data(places.dataFolder);
    if (!data.has_filename()) data = data.parent_path(); // ".../Zifora/" names ".../Zifora"
    return (data.parent_path() / "Winston" / "Ausgang").string() + "/";
}

} // namespace zifora::vat
