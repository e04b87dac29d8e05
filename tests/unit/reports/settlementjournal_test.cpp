#include "reports/settlementjournal.h"

#include "journalbook.h"
#include "reports/settlementjournalcontroller.h"

#include <gtest/gtest.h>

using namespace zifora;
using namespace zifora::reports;
using namespace zifora::reports::testing;
using core::Value;

namespace {

std::string journalOf(JournalBook& book) {
    auto* journal = book.program.feature<SettlementJournalController>();
    auto html = journal->exportString();
    EXPECT_TRUE(html);
    auto written = core::readWholeFile(journal->files().html);
    EXPECT_TRUE(written);
    EXPECT_EQ(*written, *html); // the file holds exactly the text that was built
    return html ? *html : std::string();
}

core::Ref<core::Record> item(std::string_view misc1, double day) {
    auto made = core::Record::make(core::RecordClass::Item, core::Date{day * 86400});
    made->set("misc1", Value::string(misc1));
    return made;
}

} // namespace

// The marked March of the test book: every tax class, an open item, two items of 0 gross,
// titles of 29 and 30 characters; items by date, newest first; no border, no currency.
TEST(SettlementJournal, OfAMarkedPeriodEqualsItsGoldenFile) {
    JournalBook book;
    expectGolden("journal_maerz.html", journalOf(book));
    EXPECT_EQ(book.settings.getString("printFooter"),
              "Grafikbüro Kranich & Co. · Übersicht März 2025 · Seite ");
}

// The same period by voucher number, with borders and the euro sign.
TEST(SettlementJournal, ByVoucherWithBorderAndCurrencyEqualsItsGoldenFile) {
    JournalBook book;
    book.settings.setInteger("prefsTabSortOrder", 1);
    book.settings.setBool("prefsPrintBorder", true);
    book.settings.setBool("prefsPrintCurrency", true);
    book.settings.setInteger("prefsCurrency", 0);
    expectGolden("journal_maerz_beleg_rahmen_euro.html", journalOf(book));
}

// An unmarked period without its list, and without a third rate: the label stays empty.
TEST(SettlementJournal, OfAnUnmarkedPeriodWithoutListEqualsItsGoldenFile) {
    JournalBook book;
    book.settings.setBool("prefsExportPrintWithList", false);
    book.settings.remove("prefs3Rate");
    book.select(0, 1); // Februar
    const std::string html = journalOf(book);
    expectGolden("journal_februar_ohne_liste.html", html);
    EXPECT_NE(html.find("Voranmeldung noch nicht erstellt"), std::string::npos);
    EXPECT_NE(html.find("Steuersatz 3 ()"), std::string::npos);
    EXPECT_EQ(html.find("<br><br><br><br><br><br><br><br><br>"), std::string::npos); // no filler
}

TEST(SettlementJournal, ListIsTheOnlyPartThatDependsOnTheListSetting) {
    JournalBook book;
    const std::string with = journalOf(book);
    book.settings.setBool("prefsExportPrintWithList", false);
    const std::string without = journalOf(book);
    ASSERT_TRUE(with.starts_with(without));
    // The marked period's filler is nine breaks, then four more before the heading.
    std::string breaks;
    for (int i = 0; i < 13; ++i)
        breaks += "<br>";
    EXPECT_TRUE(with.substr(without.size()).starts_with(breaks + "<h4>"));
}

TEST(SettlementJournal, TaxSumsTakeOnlyTaxedItemsOfTheFirstThreeRates) {
    JournalBook book;
    std::vector<const core::Record*> items;
    for (const auto& i : book.app.selection().currentPeriod()->items())
        items.push_back(i.get());
    const JournalTaxSums sums = journalTaxSums(items);
    // Incomes: 190 + 0 (the 0 item) + 570 (open) at 19 %, 35 at 7 %, 42.8 at 10.7 %.
    EXPECT_FLOAT_EQ(sums.income[0], 760.0f);
    EXPECT_FLOAT_EQ(sums.income[1], 35.0f);
    EXPECT_NEAR(sums.income[2], 42.8f, 1e-4);
    EXPECT_NEAR(sums.expense[0], 9.5f + 159.66223f, 1e-3);
    EXPECT_NEAR(sums.expense[1], 1.4f, 1e-5);
    EXPECT_NEAR(sums.expense[2], 10.7f, 1e-4);
    // Tax classes 4 and 5 and untaxed items add nothing, whatever their tax keys hold.
    auto odd = core::Record::make(core::RecordClass::Item, kToday);
    odd->set("taxBool", Value::boolean(true));
    odd->set("taxTag", Value::intValue(4));
    odd->set("taxFeePay", Value::floatValue(5));
    auto untaxed = core::Record::make(core::RecordClass::Item, kToday);
    untaxed->set("taxTag", Value::intValue(1));
    untaxed->set("taxFeePay", Value::floatValue(5));
    const std::vector<const core::Record*> others{odd.get(), untaxed.get()};
    EXPECT_EQ(journalTaxSums(others).income, (std::array<float, 3>{}));
}

TEST(SettlementJournal, OrderIsNewestFirstOrByVoucherAsText) {
    auto a = item("10", 1), b = item("9", 3), c = item("A-1", 2), d = item("10", 0);
    const std::vector<const core::Record*> items{a.get(), b.get(), c.get(), d.get()};
    EXPECT_EQ(journalOrder(items, 0),
              (std::vector<const core::Record*>{b.get(), c.get(), a.get(), d.get()}));
    // As text "10" comes before "9"; equal vouchers keep their order.
    EXPECT_EQ(journalOrder(items, 1),
              (std::vector<const core::Record*>{a.get(), d.get(), b.get(), c.get()}));
    EXPECT_EQ(journalOrder(items, -3), journalOrder(items, 1));
}
