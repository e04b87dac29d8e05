#include "reports/settlementjournal.h"

#include "posting/dateformat.h"
#include "posting/formatstring.h"
#include "posting/itemcalculation.h"

#include <algorithm>

namespace zifora::reports {

using core::Record;
using core::Value;
using posting::FormatArg;
using posting::formatString;

namespace {

constexpr int32_t kKindExpense = 1;

/// A date of a record in a style; what is not a date prints as (null).
std::optional<std::string> dateText(const Value& value, const posting::DateFormatter& style) {
    if (value.kind() != core::Kind::Date) return std::nullopt;
    return style.format(value.asDate());
}

/// The advance-return status: the filing date and the four payments of a marked period, or
/// the note that it is not marked yet.
std::string statusText(const Record& period, const ReportAmounts& amounts, int border,
                       std::string_view localeName) {
    if (!period.get("taxBool").toBool()) return "Voranmeldung noch nicht erstellt";
    const posting::DateFormatter medium(posting::DateStyle::Medium, localeName);
    auto payment = [&](std::string_view key) {
        return amounts.belowThousand(period.get(key).toFloat());
    };
    const std::string& c = amounts.currency();
    return formatString(
        "Voranmeldung erstellt am: %@<br><br><table width=\"505\" border=%i\"><tr><td>Zahlung</td>"
        "<td>Nachzahlung</td><td>Erstattung</td><td><b>Saldo</b></td></tr><tr><td>%@ %@</td>"
        "<td>%@ %@</td><td>%@ %@</td><td><b>%@ %@</b></td></tr></table>",
        {dateText(period.get("date"), medium), border, payment("payment"), c,
         payment("additionalPayment"), c, payment("rePayment"), c, payment("balance"), c});
}

/// One of the three tables of the tax per rate: the rate heads and one row of three values.
std::string rateTable(std::string_view rowTitle, const std::array<std::string, 3>& values,
                      const std::array<std::string, 3>& rateLabels, int border,
                      const ReportAmounts& amounts) {
    const std::string& c = amounts.currency();
    return formatString(
        "<table width=\"505\" border=%i\"><tr><td></td><td>Steuersatz 1 (%@)</td><td>Steuersatz "
        "2 (%@)</td><td>Steuersatz 3 (%@)</td></tr><tr><td>%@</td><td>%@ %@</td><td>%@ %@</td>"
        "<td>%@ %@</td></tr></table>",
        {border, rateLabels[0], rateLabels[1], rateLabels[2], rowTitle, values[0], c, values[1], c,
         values[2], c});
}

std::string taxTables(const JournalTaxSums& sums, const JournalSettings& settings,
                      const ReportAmounts& amounts) {
    std::array<std::string, 3> labels, income, expense, balance;
    for (size_t i = 0; i < 3; ++i) {
        const Value& rate = settings.rates[i];
        labels[i] = rate.isAbsent() ? std::string() : amounts.percent(rate.toDouble());
        income[i] = amounts.belowThousand(sums.income[i]);
        expense[i] = amounts.belowThousand(sums.expense[i]);
        const float saldo = sums.income[i] - sums.expense[i];
        balance[i] = amounts.amount(saldo);
    }
    const int border = settings.report.border;
    return rateTable("Einnahmen", income, labels, border, amounts) + "<br><br>" +
           rateTable("Ausgaben", expense, labels, border, amounts) + "<br><br>" +
           rateTable("Saldo", balance, labels, border, amounts);
}

/// The fourth table: its nine value cells are never filled, so each reads (null) and the
/// currency text. That is how the journal has always printed it.
std::string emptyTable(int border, const ReportAmounts& amounts) {
    std::string table = formatString("<table width=\"505\" border=%i\"><tr><td></td><td>ohne "
                                     "Steuern</td><td>mit Steuern</td><td>Steuerbetrag</td></tr>",
                                     {border});
    const std::string cell = amounts.withCurrency(std::nullopt);
    for (std::string_view row : {"Einnahmen", "Ausgaben"})
        table += formatString("<tr><td>%@</td><td>%@</td><td>%@</td><td>%@</td></tr>",
                              {row, cell, cell, cell});
    table += formatString("<tr><td><b>Saldo</b></td><td><b>%@</b></td><td><b>%@</b></td>"
                          "<td><b>%@</b></td></tr></table>",
                          {cell, cell, cell});
    return table;
}

std::string itemRow(size_t number, const Record& item, const ReportAmounts& amounts,
                    const posting::DateFormatter& shortDate) {
    const bool taxed = item.get("taxBool").toBool();
    const Value title = item.get("title");
    const std::string titleText = item.get("unpaidBool").toBool()
                                      ? formatString("(Offener Posten)<br>%@", {title})
                                      : formatString("%@", {title});
    const std::string net =
        taxed ? amounts.withCurrency(amounts.row(item.get("finalAmountWithout").toFloat())) : "";
    const std::string rate = taxed ? amounts.percent(item.get("taxPerecent").toFloat()) : "";
    const std::string gross = amounts.withCurrency(amounts.row(item.get("finalAmount").toFloat()));
    const char* mark = item.get("kind").toInt() == kKindExpense ? "\u21E5" : "\u21E4";
    return formatString(
        "<tr><td><b>%li</b></td><td>%@</td><td>%@</td><td>%@<br><small>%@</small></td><td>%@</td>"
        "<td>%@</td><td>%@</td><td><small>%@</small></td><td>%@</td><td><font size=\"1\">%@</font>"
        "</td></tr>",
        {number, dateText(item.get("date"), shortDate), titleText, item.get("number"),
         item.get("misc1"), item.get("group"), item.get("account"), net, rate, gross, mark});
}

/// The list of items, pushed to the next page by a filler of line breaks, in an unclosed
/// table (the HTML reader closes it).
std::string itemList(const JournalInput& input, const ReportAmounts& amounts,
                     std::string_view localeName) {
    const bool marked = input.period.get("taxBool").toBool();
    std::string list;
    for (int i = 0; i < (marked ? 9 : 15); ++i)
        list += "<br>";
    list += "<br><br><br><br>";
    list += formatString("<h4>%@ &middot; &Uuml;bersicht %@ %@</h4><br><br>",
                         {input.settings.report.company, input.period.get("title"), input.year});
    list += formatString(
        "<table style=\"font-size:7px\" width=\"575\" height=\"65\" cellspacing=\"1\" "
        "border=%i\"><tr><td><b>Nr.</b></td><td><b>Datum</b></td><td><b>Bezeichnung</b></td>"
        "<td><b>Nummer</b></td><td><b>Kategorie</b></td><td><b>Kostenstelle</b></td>"
        "<td><b>exkl.</b></td><td><b>Satz</b></td><td><b>Summe</b></td><td></td></tr>",
        {input.settings.report.border});
    const posting::DateFormatter shortDate(posting::DateStyle::Short, localeName);
    size_t number = 0;
    for (const Record* item : journalOrder(input.items, input.settings.sortOrder))
        list += itemRow(++number, *item, amounts, shortDate);
    return list;
}

} // namespace

JournalSettings JournalSettings::read(const core::Settings& settings) {
    JournalSettings values;
    values.report = ReportSettings::read(settings);
    values.rates = {settings.get("prefs1Rate"), settings.get("prefs2Rate"),
                    settings.get("prefs3Rate")};
    values.withList = settings.getBool("prefsExportPrintWithList");
    values.sortOrder = settings.getInteger("prefsTabSortOrder");
    return values;
}

JournalTaxSums journalTaxSums(std::span<const Record* const> items) {
    JournalTaxSums sums;
    for (const Record* item : items) {
        if (!item || !posting::isExactlyTrue(item->get("taxBool"))) continue;
        const int32_t tag = item->get("taxTag").toInt();
        if (tag < 1 || tag > 3) continue;
        const size_t i = static_cast<size_t>(tag - 1);
        if (item->get("kind").toInt() == kKindExpense)
            sums.expense[i] += item->get("taxFeeGet").toFloat();
        else
            sums.income[i] += item->get("taxFeePay").toFloat();
    }
    return sums;
}

std::vector<const Record*> journalOrder(std::span<const Record* const> items, int64_t sortOrder) {
    std::vector<const Record*> ordered;
    for (const Record* item : items)
        if (item) ordered.push_back(item);
    if (sortOrder == 0) {
        std::stable_sort(ordered.begin(), ordered.end(), [](const Record* a, const Record* b) {
            return a->get("date").toDate().sinceReferenceDate >
                   b->get("date").toDate().sinceReferenceDate;
        });
    } else {
        std::stable_sort(ordered.begin(), ordered.end(), [](const Record* a, const Record* b) {
            return a->getText("misc1") < b->getText("misc1");
        });
    }
    return ordered;
}

std::string journalFooter(std::string_view company, std::string_view periodTitle,
                          std::string_view year) {
    return formatString(kSettlementJournalFooter, {company, periodTitle, year});
}

std::string settlementJournalHtml(const JournalInput& input, std::string_view localeName) {
    const ReportSettings& report = input.settings.report;
    const ReportAmounts amounts(report.currency, localeName);
    const posting::DateFormatter medium(posting::DateStyle::Medium, localeName);
    std::string html = formatString(
        "%@<h2>%@</h2><h3><small>Steuernummer: %@</small></h3><small>Datum: %@</small><br><br>"
        "<h3><b>&Uuml;bersicht %@ %@</b></h3><br><br><br></font><font face=\"Lucida Grande\" "
        "size=\"4\" class=\"f2\">%@<br><br><br><br>%@<br><br><br><br>%@",
        {sourceText(), report.company, report.taxId, medium.format(input.today),
         input.period.get("title"), input.year,
         statusText(input.period, amounts, report.border, localeName),
         taxTables(journalTaxSums(input.items), input.settings, amounts),
         emptyTable(report.border, amounts)});
    if (input.settings.withList) html += itemList(input, amounts, localeName);
    return html;
}

} // namespace zifora::reports
