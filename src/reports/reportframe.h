#pragma once
// What every printed report shares: the opening of its HTML and its head, the values taken
// from the settings (border, currency text, tax-payer), the amount rules with the currency,
// the page footer, the scratch files in the data folder, and the request that turns the HTML
// into a paginated PDF. All of it is plain text work; the layout is the PdfRenderer's.

#include "core/error.h"
#include "core/settings.h"
#include "core/value.h"
#include "posting/numberformat.h"
#include "shell/services.h"

#include <optional>
#include <string>
#include <string_view>

namespace zifora::reports {

/// The opening of every report's HTML, before its head: the document with its encoding,
/// ending in an open font element that the head closes.
[[nodiscard]] std::string_view sourceText();

/// The currency signs of the currency chooser, by "prefsCurrency": "€", "$", "£", "¥", "¤",
/// "Fr."; an index outside the list gives "".
[[nodiscard]] std::string_view currencySign(int64_t index);

/// The values a report takes from the settings store at the start of its run.
struct ReportSettings {
    std::string company;      // "prefsCompany", the tax-payer in the head
    std::string taxId;        // "prefsTaxID"
    int border = 0;           // 1 with "prefsPrintBorder", else 0: each table's border attribute
    std::string currency;     // the sign of "prefsCurrency" with "prefsPrintCurrency", else ""
    bool showUnpaid = false;  // "showUnpaidOption": the open-item table is added
    bool unshortened = false; // "prefsPrintUnshortened": long texts in item rows stay whole

    [[nodiscard]] static ReportSettings read(const core::Settings& settings);
};

/// The head of the yearly reports: source text, tax-payer, tax number, today's date (medium
/// style), then the report's title, ending in the font element the body is written in.
[[nodiscard]] std::string reportHead(std::string_view source, std::string_view company,
                                     std::string_view taxId, std::string_view today,
                                     std::string_view title);

/// The amount texts of one report run, made once and used for every row. Each amount on a
/// report is followed by a blank and the currency text ("%@ %@"), so with no currency text
/// an amount ends in a blank.
class ReportAmounts {
  public:
    explicit ReportAmounts(std::string currency, std::string_view localeName = {});

    /// The report amount rule: plain strictly between -1000 and 1000 (0 included), grouped
    /// otherwise.
    [[nodiscard]] std::string amount(double value) const;
    /// The row rule of item rows: as the amount rule, but 0 gives no text at all.
    [[nodiscard]] std::optional<std::string> row(double value) const;
    /// The income sums of settlement rows and the payments of an advance return: plain below
    /// 1000 (negative values always plain), grouped from 1000 on.
    [[nodiscard]] std::string belowThousand(double value) const;
    /// A rate through the percent pattern ("19,00 %").
    [[nodiscard]] std::string percent(double value) const;

    /// An amount text and the currency text by "%@ %@"; no text prints as (null).
    [[nodiscard]] std::string withCurrency(const std::optional<std::string>& text) const;
    [[nodiscard]] std::string withCurrency(const std::string& text) const {
        return withCurrency(std::optional<std::string>(text));
    }

    [[nodiscard]] const std::string& currency() const { return m_currency; }
    [[nodiscard]] const posting::AmountFormats& formats() const { return m_formats; }

  private:
    std::string m_currency;
    posting::AmountFormats m_formats;
};

/// The open-item table of the yearly and overview reports: under the heading "Offene
/// Posten" the rows "mit Steuern:" and "ohne Steuern:" with the sums by the locale's decimal
/// style and the currency text. The empty text unless `show`.
[[nodiscard]] std::string openItemsTable(bool show, double openWith, double openWithout,
                                         std::string_view currency,
                                         std::string_view localeName = {});

// The fixed part of each report's page footer ("printFooter"); the page number follows it.
// The slots are the tax-payer and the year (the settlement journal: the period and the year).
inline constexpr std::string_view kTurnoverFooter = "%@ · Zifora %@ · Seite ";
inline constexpr std::string_view kSettlementsOverviewFooter =
    "%@ · Übersicht Abrechnungen %@ · Seite ";
inline constexpr std::string_view kTaxOverviewFooter = "%@ · Übersicht Steuern %@ · Seite ";
inline constexpr std::string_view kProfitBasisFooter =
    "%@ · Grundlage Gewinnermittlung %@ · Seite ";
inline constexpr std::string_view kSettlementJournalFooter = "%@ · Übersicht %@ %@ · Seite ";

/// What stands at the foot of page `page`: the footer text directly followed by the number
/// ("%@%d").
[[nodiscard]] std::string pageFooter(std::string_view footer, int page);

/// Page margins in points.
struct Margins {
    double top, left, right, bottom;
};
/// The margins of every report's PDF.
inline constexpr Margins kPdfMargins{40, 20, 20, 60};
/// The print dialog of the yearly reports uses the PDF's margins; the settlement journal's
/// print dialog has a bottom margin of 20.
inline constexpr Margins kJournalPrintMargins{40, 20, 20, 20};

/// The request for the PdfRenderer: A4 portrait with `margins`, the footer on every page,
/// the report's title and the tax-payer as the document's title and author.
[[nodiscard]] shell::PdfRequest pdfRequest(std::string htmlPath, std::string pdfPath,
                                           std::string footer, std::string title,
                                           std::string author, Margins margins = kPdfMargins);

/// The two scratch files of a report in the data folder: "<base>.html" and "<base>.pdf"
/// ("PDFJournal", "PDFPreviewTab").
struct ScratchFiles {
    std::string html;
    std::string pdf;

    [[nodiscard]] static ScratchFiles in(const std::string& dataFolder, std::string_view base);
    /// Removes both files where they exist; errors are ignored.
    void remove() const;
};

/// Writes a report's HTML (UTF-8) to `path` atomically. On failure nothing is left at the
/// path and the error names the file and the cause.
[[nodiscard]] core::Result<void> writeReportHtml(const std::string& path, std::string_view html);

/// The alert of a failed yearly report: title "Mist!", button "OK".
[[nodiscard]] shell::AlertRequest reportFailureAlert();

/// A "Fehler!" alert naming the file that could not be made and the cause.
[[nodiscard]] shell::AlertRequest fileFailureAlert(std::string_view what, std::string_view path,
                                                   std::string_view cause);

} // namespace zifora::reports
