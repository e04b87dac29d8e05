#include "vat/periodsheet.h"

#include "core/utf8.h"
#include "posting/dateformat.h"
#include "posting/formatstring.h"

#include <algorithm>
#include <vector>

namespace zifora::vat {

using core::Record;
using core::Value;
using posting::formatString;
using reports::ReportAmounts;

namespace {

constexpr int32_t kKindExpense = 1;

/// A rate label: the setting through the percent pattern, or "" when it has none.
std::string rateLabel(const Value& rate, const ReportAmounts& amounts) {
    if (rate.isAbsent()) return "";
    return amounts.percent(rate.toFloat());
}

std::string markLine(const Record& period, const ReportAmounts& amounts, int border,
                     std::string_view localeName) {
    if (!period.get("taxBool").toBool()) return "Voranmeldung noch nicht erstellt";
    const Value date = period.get("date");
    const posting::DateFormatter medium(posting::DateStyle::Medium, localeName);
    const std::optional<std::string> dateText = date.kind() == core::Kind::Date
                                                    ? std::optional(medium.format(date.asDate()))
                                                    : std::nullopt;
    auto pay = [&](const char* key) {
        return amounts.withCurrency(amounts.belowThousand(period.getFloat(key)));
    };
    return formatString(
        "Voranmeldung erstellt am: %@<br><br><table border=\"%i\" width=\"100%\"><tr>"
        "<td align=\"right\">Zahlung</td><td align=\"right\">Nachzahlung</td>"
        "<td align=\"right\">Erstattung</td><td align=\"right\"><b>Saldo</b></td></tr><tr>"
        "<td align=\"right\">%@</td><td align=\"right\">%@</td><td align=\"right\">%@</td>"
        "<td align=\"right\"><b>%@</b></td></tr></table>",
        {dateText, border, pay("payment"), pay("additionalPayment"), pay("rePayment"),
         pay("balance")});
}

std::string balanceTable(const SheetInput& input, const ReportAmounts& amounts,
                         std::string_view localeName) {
    const posting::PeriodFigures& p = input.totals.period;
    auto a = [&](float value) { return amounts.withCurrency(amounts.amount(value)); };
    std::string table = formatString(
        "<table border=\"%i\" width=\"100%\"><tr><td></td><td align=\"right\">Ausgaben</td>"
        "<td align=\"right\">Einnahmen</td><td align=\"right\"><b>Saldo</b></td></tr>"
        "<tr><td>mit Steuern:</td><td align=\"right\">%@</td><td align=\"right\">%@</td>"
        "<td align=\"right\"><b>%@</b></td></tr><tr><td>ohne Steuern:</td>"
        "<td align=\"right\">%@</td><td align=\"right\">%@</td><td align=\"right\"><b>%@</b></td>"
        "</tr></table>",
        {input.settings.report.border, a(p.expenseGross), a(p.incomeGross), a(p.balanceGross),
         a(p.expenseNet), a(p.incomeNet), a(p.balanceNet)});
    if (input.settings.report.showUnpaid) {
        const std::string& c = amounts.currency();
        table += formatString(
            "<table border=\"%i\" style=\"font-size:9px\"><tr><td colspan=\"2\"><b>Offene "
            "Posten</b></td></tr><tr><td>mit Steuern:</td><td align=\"right\">%@ %@</td></tr>"
            "<tr><td>ohne Steuern:</td><td align=\"right\">%@ %@</td></tr></table>",
            {input.settings.report.border, posting::commaStringFromNumber(p.openWith, localeName),
             c, posting::commaStringFromNumber(p.openWithout, localeName), c});
    }
    return table;
}

std::string taxTable(const SheetInput& input, const ReportAmounts& amounts) {
    const posting::AdvanceReturnFigures& f = input.totals.figures;
    const posting::SettlementAccumulators& n = input.totals.accumulators;
    auto row = [&](const std::string& label, float value) {
        return formatString("<tr><td>%@</td><td align=\"right\">%@</td></tr>",
                            {label, amounts.withCurrency(amounts.amount(value))});
    };
    auto taxed = [&](size_t rate) {
        return formatString("Steuerpflichtige Umsätze (%@):",
                            {rateLabel(input.settings.rates[rate], amounts)});
    };
    return formatString("<table border=\"%i\" width=\"100%\">", {input.settings.report.border}) +
           row("Steuerfreie Umsätze:", f.steuerfreieUmsaetze) + row(taxed(0), n.incomeWithout[0]) +
           row(taxed(1), n.incomeWithout[1]) + row(taxed(2), n.incomeWithout[2]) +
           row("Nicht steuerbare Umsätze:", f.nichtSteuerbar) + "</table>";
}

/// An amount cell of an item row: the row rule with the currency; a value of exactly 0 leaves
/// the cell empty.
std::string rowAmount(float value, const ReportAmounts& amounts) {
    const std::optional<std::string> text = amounts.row(value);
    return text ? amounts.withCurrency(*text) : std::string();
}

std::string itemRow(size_t number, const Record& item, const SheetInput& input,
                    const ReportAmounts& amounts, const posting::DateFormatter& shortDate) {
    const bool cut = !input.settings.report.unshortened;
    auto text = [&](const char* key, size_t limit, size_t keep) {
        const std::string value = item.getText(key);
        return cut ? shortened(value, limit, keep) : value;
    };
    std::string title = text("title", 29, 28);
    if (item.get("unpaidBool").toBool()) title = "(Offener Posten)<br>" + title;
    const bool taxed = item.get("taxBool").toBool();
    const Value date = item.get("date");
    const std::optional<std::string> dateText = date.kind() == core::Kind::Date
                                                    ? std::optional(shortDate.format(date.asDate()))
                                                    : std::nullopt;
    return formatString(
        "<tr><td><b>%li</b></td><td>%@</td><td>%@<br><small>%@</small></td>"
        "<td>%@<br><small>%@</small></td><td>%@<br><small>%@</small></td>"
        "<td align=\"right\">%@</td><td align=\"right\">%@</td><td align=\"right\">%@</td>"
        "<td>%@</td></tr>",
        {number, dateText, title, text("group", 32, 31), item.getText("number"),
         item.getText("misc1"), item.getText("accountNumber"), text("account", 32, 31),
         taxed ? rowAmount(item.getFloat("finalAmountWithout"), amounts) : std::string(),
         taxed ? amounts.percent(item.getFloat("taxPerecent")) : std::string(),
         rowAmount(item.getFloat("finalAmount"), amounts),
         item.get("kind").toInt() == kKindExpense ? "\u21E5" : "\u21E4"});
}

std::string itemList(const SheetInput& input, const ReportAmounts& amounts,
                     std::string_view localeName) {
    std::vector<const Record*> ordered;
    for (const Record* item : input.items)
        if (item) ordered.push_back(item);
    std::stable_sort(ordered.begin(), ordered.end(), [](const Record* a, const Record* b) {
        return a->get("date").toDate().sinceReferenceDate <
               b->get("date").toDate().sinceReferenceDate;
    });
    std::string list = formatString(
        "<h4 style=\"page-break-before: always\">%@ &middot; &Uuml;bersicht aller Posten "
        "&middot; %@ %@</h4><table border=\"%i\" width=\"100%\" style=\"font-size:7px\"><tr>"
        "<td><b>Nr.</b></td><td><b>Datum</b></td><td><b>Bezeichnung</b><br><small>Kategorie"
        "</small></td><td><b>Nummer</b><br><small>Beleg</small></td><td><b>Konto</b></td>"
        "<td align=\"right\"><b>(netto)</b></td><td align=\"right\"><b>Satz</b></td>"
        "<td align=\"right\"><b>Summe</b></td><td></td></tr>",
        {input.settings.report.company, input.period.get("title"), input.year,
         input.settings.report.border});
    const posting::DateFormatter shortDate(posting::DateStyle::Short, localeName);
    size_t number = 0;
    for (const Record* item : ordered)
        list += itemRow(++number, *item, input, amounts, shortDate);
    return list;
}

} // namespace

SheetSettings SheetSettings::read(const core::Settings& settings) {
    SheetSettings values;
    values.report = reports::ReportSettings::read(settings);
    values.rates = {settings.get("prefs1Rate"), settings.get("prefs2Rate"),
                    settings.get("prefs3Rate")};
    values.withList = settings.getBool("prefsExportPrintWithList");
    return values;
}

std::string periodSheetFooter(std::string_view company, const Value& title, const Value& year) {
    return formatString("%@ · Abrechnung %@ %@ · Seite ", {company, title, year});
}

std::string shortened(std::string_view text, size_t limit, size_t keep) {
    const std::u16string units = core::utf16FromUtf8(text);
    if (units.size() <= limit) return std::string(text);
    return core::utf8FromUtf16(units.substr(0, keep)) + " …";
}

std::string periodSheetHtml(const SheetInput& input, std::string_view localeName) {
    const reports::ReportSettings& report = input.settings.report;
    const ReportAmounts amounts(report.currency, localeName);
    const posting::DateFormatter medium(posting::DateStyle::Medium, localeName);
    const std::string title =
        formatString("Abrechnung %@ %@", {input.period.get("title"), input.year});
    std::string html = reports::reportHead(reports::sourceText(), report.company, report.taxId,
                                           medium.format(input.today), title);
    html += "<br><br>" + markLine(input.period, amounts, report.border, localeName);
    html += "<br><br>" + balanceTable(input, amounts, localeName);
    html += "<br><br>" + taxTable(input, amounts);
    if (input.settings.withList) html += itemList(input, amounts, localeName);
    return html;
}

} // namespace zifora::vat
