#pragma once
// The settlement journal: the printed overview of one period with its advance-return status,
// its tax per rate and, if the user wishes, the list of its items. Pure text work over the
// records; the controller writes it to "PDFPreviewTab.html" and makes the PDF.

#include "core/record.h"
#include "core/settings.h"
#include "reports/reportframe.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zifora::reports {

/// What the journal takes from the settings store.
struct JournalSettings {
    ReportSettings report;
    std::array<core::Value, 3> rates; // "prefs1Rate" to "prefs3Rate" as stored (maybe absent)
    bool withList = false;            // "prefsExportPrintWithList"
    int64_t sortOrder = 0;            // "prefsTabSortOrder": 0 by date, newest first; else misc1

    [[nodiscard]] static JournalSettings read(const core::Settings& settings);
};

/// The tax of a period per rate 1 to 3: of items whose "taxBool" is true and "taxTag" 1 to 3,
/// "taxFeeGet" of expenses (kind 1) and "taxFeePay" of all others, in 32-bit floats.
struct JournalTaxSums {
    std::array<float, 3> income{};
    std::array<float, 3> expense{};
};
[[nodiscard]] JournalTaxSums journalTaxSums(std::span<const core::Record* const> items);

/// The items in the journal's order: by "date", newest first, with sort order 0; otherwise
/// by "misc1" ascending as text (so "10" comes before "9"). Equal keys keep their order.
[[nodiscard]] std::vector<const core::Record*>
journalOrder(std::span<const core::Record* const> items, int64_t sortOrder);

/// "%@ · Übersicht %@ %@ · Seite " with the tax-payer, the period's title and the year.
[[nodiscard]] std::string journalFooter(std::string_view company, std::string_view periodTitle,
                                        std::string_view year);

struct JournalInput {
    const core::Record& period;
    std::string_view year; // the "dateValue" of the period's year
    std::span<const core::Record* const> items;
    const JournalSettings& settings;
    core::Date today;
};

/// The whole HTML of the journal. Under the locale `localeName` (empty: the current one).
[[nodiscard]] std::string settlementJournalHtml(const JournalInput& input,
                                                std::string_view localeName = {});

} // namespace zifora::reports
