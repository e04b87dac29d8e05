#pragma once
// The period sheet of the advance return: the head, the mark line with the payments of a
// marked period, the period's balance, the turnover per tax class and, if wished, the list of
// its items on a page of its own. Pure text work over the records and the totals; the
// advance-return window writes it to "PDFPreviewTab.html" and makes "PDFPreviewTab.pdf".

#include "core/record.h"
#include "core/settings.h"
#include "posting/settlementtotals.h"
#include "reports/reportframe.h"

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace zifora::vat {

/// What the sheet takes from the settings store.
struct SheetSettings {
    reports::ReportSettings report;
    std::array<core::Value, 3> rates; // "prefs1Rate" to "prefs3Rate" as stored (maybe absent)
    bool withList = false;            // "prefsExportPrintWithList"

    [[nodiscard]] static SheetSettings read(const core::Settings& settings);
};

struct SheetInput {
    const core::Record& period;
    const core::Value& year; // "dateValue" of the period's year
    std::span<const core::Record* const> items;
    const posting::SettlementTotals& totals;
    const SheetSettings& settings;
    core::Date today;
};

/// "%@ · Abrechnung %@ %@ · Seite ": the tax-payer, the period's title and the year; the
/// page number follows it on every page.
[[nodiscard]] std::string periodSheetFooter(std::string_view company, const core::Value& title,
                                            const core::Value& year);

/// A text of an item row cut to `keep` characters and " …" when it is longer than `limit`
/// (characters as UTF-16 units, as the sheet counts them).
[[nodiscard]] std::string shortened(std::string_view text, size_t limit, size_t keep);

/// The whole HTML of the sheet under the locale `localeName` (empty: the current one). The
/// list of items starts on a new page by a page break of its heading, and its table is left
/// open at the end of the document.
[[nodiscard]] std::string periodSheetHtml(const SheetInput& input,
                                          std::string_view localeName = {});

} // namespace zifora::vat
