#pragma once
// The shared report book, opened on March 2025 with titles printed unshortened.

#include "../../support/reportsbook.h"

namespace zifora::reports::testing {

using zifora::testing::HomeFolder;
using zifora::testing::kToday;
using zifora::testing::StandInPdf;

struct JournalBook : zifora::testing::ReportsBook {
    JournalBook() {
        settings.setBool("prefsPrintUnshortened", true);
        select(0, 2); // 2025, März
    }
};

inline void expectGolden(const std::string& name, const std::string& actual) {
    zifora::testing::expectGoldenFile("tests/unit/reports/golden", name, actual);
}

} // namespace zifora::reports::testing
