#pragma once
// The shared report book, opened on March 2025, with the tax office's number of the hand-over.

#include "../../support/reportsbook.h"

namespace zifora::vat::testing {

using zifora::testing::kToday;
using KeptPdf = zifora::testing::StandInPdf;
using SheetHome = zifora::testing::HomeFolder;

struct SheetBook : zifora::testing::ReportsBook {
    SheetBook() {
        settings.setString("prefsELSTERID", "9198");
        select(0, 2); // 2025, März
    }
};

inline void expectGolden(const std::string& name, const std::string& actual) {
    zifora::testing::expectGoldenFile("tests/unit/vat/golden", name, actual);
}

} // namespace zifora::vat::testing
