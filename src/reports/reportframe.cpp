#include "reports/reportframe.h"

#include "core/atomicfile.h"
#include "core/places.h"
#include "posting/formatstring.h"

#include <array>
#include <filesystem>
#include <system_error>

namespace zifora::reports {

using posting::formatString;

std::string_view sourceText() {
    return "<html><head><meta http-equiv=\"Content-Type\" content=\"text/html; "
           "charset=utf-8\"></head><body><font face=\"Lucida Grande\" size=\"2\">";
}

std::string_view currencySign(int64_t index) {
    static constexpr std::array<std::string_view, 6> signs{"€", "$", "£", "¥", "¤", "Fr."};
    if (index < 0 || index >= static_cast<int64_t>(signs.size())) return {};
    return signs[static_cast<size_t>(index)];
}

ReportSettings ReportSettings::read(const core::Settings& settings) {
    ReportSettings values;
    values.company = settings.getString("prefsCompany");
    values.taxId = settings.getString("prefsTaxID");
    values.border = settings.getBool("prefsPrintBorder") ? 1 : 0;
    if (settings.getBool("prefsPrintCurrency"))
        values.currency = std::string(currencySign(settings.getInteger("prefsCurrency")));
    values.showUnpaid = settings.getBool("showUnpaidOption");
    values.unshortened = settings.getBool("prefsPrintUnshortened");
    return values;
}

std::string reportHead(std::string_view source, std::string_view company, std::string_view taxId,
                       std::string_view today, std::string_view title) {
    std::string head = formatString("%@<h2>%@</h2><h3><small>Steuernummer: %@</small></h3>"
                                    "<small>Datum: %@</small><br><br><br><br><h3><b>",
                                    {source, company, taxId, today});
    head += title;
    head += "</b></h3><br><br><br></font><font face=\"Lucida Grande\" size=\"4\" class=\"f2\">";
    return head;
}

ReportAmounts::ReportAmounts(std::string currency, std::string_view localeName)
    : m_currency(std::move(currency)), m_formats(localeName) {}

std::string ReportAmounts::amount(double value) const {
    return m_formats.byTotalRule(value);
}

std::optional<std::string> ReportAmounts::row(double value) const {
    return m_formats.byRowRule(value);
}

std::string ReportAmounts::belowThousand(double value) const {
    return m_formats.byPaymentRule(value);
}

std::string ReportAmounts::percent(double value) const {
    return m_formats.percent(value);
}

std::string ReportAmounts::withCurrency(const std::optional<std::string>& text) const {
    return formatString("%@ %@", {text, m_currency});
}

std::string openItemsTable(bool show, double openWith, double openWithout,
                           std::string_view currency, std::string_view localeName) {
    if (!show) return {};
    return formatString(
        "<br><br><table align=\"right\" style=\"font-size:9px\"><tr><td colspan=\"2\"><b>Offene "
        "Posten</b></td></tr><tr><td>mit Steuern:</td><td align=\"right\">%@ %@</td></tr>"
        "<tr><td>ohne Steuern:</td><td align=\"right\">%@ %@</td></tr></table>",
        {posting::commaStringFromNumber(openWith, localeName), currency,
         posting::commaStringFromNumber(openWithout, localeName), currency});
}

std::string pageFooter(std::string_view footer, int page) {
    return formatString("%@%d", {footer, page});
}

shell::PdfRequest pdfRequest(std::string htmlPath, std::string pdfPath, std::string footer,
                             std::string title, std::string author, Margins margins) {
    shell::PdfRequest request;
    request.htmlPath = std::move(htmlPath);
    request.pdfPath = std::move(pdfPath);
    request.orientation = shell::PageOrientation::Portrait;
    request.marginTop = margins.top;
    request.marginLeft = margins.left;
    request.marginRight = margins.right;
    request.marginBottom = margins.bottom;
    request.footer = std::move(footer);
    request.title = std::move(title);
    request.author = std::move(author);
    return request;
}

ScratchFiles ScratchFiles::in(const std::string& dataFolder, std::string_view base) {
    return {core::joinPath(dataFolder, std::string(base) + ".html"),
            core::joinPath(dataFolder, std::string(base) + ".pdf")};
}

void ScratchFiles::remove() const {
    std::error_code ignored;
    std::filesystem::remove(html, ignored);
    std::filesystem::remove(pdf, ignored);
}

core::Result<void> writeReportHtml(const std::string& path, std::string_view html) {
    return core::writeFileAtomically(path, html);
}

shell::AlertRequest reportFailureAlert() {
    return {"Mist!",
            "Fehler beim Erstellen des Berichtes. Sollte dies wiederholt vorkommen bitte den "
            "Norvo Support kontaktieren. Eventuell ist dein Mac einfach zu schwach auf der "
            "Brust. Wenn möglich bitte auf einem etwas schnelleren Mac probieren.",
            {"OK"},
            shell::AlertStyle::Critical,
            {}};
}

shell::AlertRequest fileFailureAlert(std::string_view what, std::string_view path,
                                     std::string_view cause) {
    return {"Fehler!",
            formatString("%@ ließ sich nicht schreiben: %@\n\n%@", {what, path, cause}),
            {"OK"},
            shell::AlertStyle::Critical,
            {}};
}

} // namespace zifora::reports
