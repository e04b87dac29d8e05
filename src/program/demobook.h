#pragma once
// A demonstration book: a year of a small design studio, kept through the program's own
// commands exactly as a user would type it, for trying the program out, for screenshots and
// for a machine without a display.

#include "core/error.h"
#include "posting/settlementtotals.h"

#include <string>
#include <vector>

namespace zifora::program {

/// One settlement period of the book and its totals.
struct DemoPeriod {
    std::string title;
    size_t itemCount = 0;
    posting::SettlementTotals totals;
};

struct DemoBook {
    std::string home;         // the home folder the book was made in
    std::string databaseFile; // <home>/.local/share/Zifora/Zifora.zfdb4
    std::string company;
    std::string year;
    std::vector<DemoPeriod> periods;
};

/// Makes the book in `home`, taken as a home folder (database under .local/share/Zifora,
/// settings under .config/Zifora): the first start, the client "Muster Design Anna
/// Beispiel" with the standard chart of accounts, categories, templates, the year 2025 with
/// its twelve months and about three hundred postings of both kinds and every tax class,
/// then the stop of the program. The same book every time: a fixed clock and fixed random
/// numbers. The agreement of the first start is left to the user: the next start asks again.
///
/// Fails, changing nothing, when the home already holds a database or settings, and when
/// the built-in charts can't be found; fails naming the step when the program refuses one.
[[nodiscard]] core::Result<DemoBook> makeDemoBook(const std::string& home);

/// The totals of each period as a table, and where the book lies and how to open it.
[[nodiscard]] std::string demoBookReport(const DemoBook& book);

} // namespace zifora::program
