#include "testbed.h"

#include "bookkeeping/totalscontroller.h"
#include "posting/itemcalculation.h"
#include "shell/events.h"

#include <gtest/gtest.h>

#include <set>

#include <vector>

using namespace zifora;
using namespace zifora::shell;
using namespace zifora::bookkeeping;
using core::Value;
using zifora::bookkeeping::testbed::TestBed;

namespace {

struct Posting {
    float sum;
    int32_t kind;
    int32_t taxTag;
};

// A new year with one period, selected, holding taxed items of these sums, kinds and tags.
core::Record* selectPeriodWith(TestBed& t, const std::vector<Posting>& postings) {
    auto year = core::Record::make(core::RecordClass::Year, testbed::kTestNow);
    auto period = core::Record::make(core::RecordClass::Thelist, testbed::kTestNow);
    for (const Posting& p : postings) {
        auto item = core::Record::make(core::RecordClass::Item, testbed::kTestNow);
        item->set("kind", Value::intValue(p.kind));
        item->set("taxBool", Value::boolean(true));
        item->set("taxTag", Value::intValue(p.taxTag));
        posting::ItemAmountInput in{p.sum, p.kind, true, p.taxTag, false, {19.0f, 7.0f, 0.0f}};
        posting::applyItemAmounts(*item, posting::calculateItemAmounts(in));
        period->items().push_back(item);
    }
    year->thelists().push_back(period);
    core::RecordList& years = t.app.selection().currentClient()->theYears();
    years.push_back(year);
    t.app.selection().years.setSelectionIndex(static_cast<int64_t>(years.size() - 1));
    t.app.selectionChanged();
    return period.get();
}

} // namespace

TEST(TotalsController, EachFigureGoesToItsFieldThenToItsSettingAndTheSheetComesLast) {
    TestBed t;
    core::Record* period = selectPeriodWith(t, {{119.0f, 2, 1}, {59.5f, 1, 1}});
    const core::Properties before = period->properties();
    const TotalsController& totals = *t.headless.program.feature<TotalsController>();
    std::vector<std::string> fieldOrder;
    std::vector<posting::SettlementTotals> sheets;
    static const std::set<std::string> figures{"steuerfreieUmsaetzeField",
                                               "tax1SumField",
                                               "tax2SumField",
                                               "tax3SumField",
                                               "tax1AmountField",
                                               "tax2AmountField",
                                               "tax3AmountField",
                                               "nichtSteuerbarField",
                                               "abziehbareBetraegeField",
                                               "abziehbareBetraegeSteuerAmountField",
                                               "saldoField"};
    t.app.fields().observe([&](const std::string& name, const Value& value) {
        if (!sheets.empty()) return; // the first run only
        // The item form keeps its own controls in step as well; only the figures count here.
        if (!figures.contains(name)) return;
        EXPECT_EQ(value.kind(), core::Kind::Float) << name;
        EXPECT_FALSE(t.settings.contains("tab-" + name)) << name;
        fieldOrder.push_back(name);
    });
    t.app.events().subscribe<TotalsComputed>([&](const TotalsComputed& run) {
        EXPECT_EQ(t.settings.get("tab-saldoField"), Value::floatValue(run.totals.figures.saldo));
        sheets.push_back(run.totals);
    });
    t.run("infoWindowVoid");

    ASSERT_EQ(fieldOrder.size(), 11u);
    EXPECT_EQ(fieldOrder.front(), "steuerfreieUmsaetzeField");
    EXPECT_EQ(fieldOrder.back(), "saldoField");
    EXPECT_EQ(t.app.fields().get("tax1SumField"), Value::floatValue(100.0f));
    EXPECT_EQ(t.settings.get("tab-abziehbareBetraegeField"), Value::floatValue(59.5f));
    ASSERT_EQ(sheets.size(), 1u);
    EXPECT_EQ(sheets[0].figures.saldo, 19.0f - 9.5f);
    EXPECT_EQ(sheets[0].period.balanceGross, 59.5f);
    EXPECT_TRUE(period->properties() == before);

    // Another period's run replaces every figure, zeros included.
    selectPeriodWith(t, {});
    t.run("infoWindowVoid");
    EXPECT_EQ(t.settings.get("tab-tax1SumField"), Value::floatValue(0.0f));
    EXPECT_EQ(totals.lastTotals().period.incomeGross, 0.0f);
}

TEST(TotalsController, TheHandTypedBalanceReadsWhatTheFieldsHold) {
    TestBed t;
    core::Record* period = selectPeriodWith(t, {});
    FormFields& fields = t.app.fields();
    fields.set("tabPaymentField", Value::string("1.234,56"));
    fields.set("tabAdditionalPayField", Value::string("12abc")); // read up to the letters
    t.run("calculateTab:");
    const float owed = 1234.56f + 12.0f;
    EXPECT_EQ(period->get("balance"), Value::floatValue(owed));

    // With no period selected only the field changes.
    t.app.selection().lists.setContent(nullptr);
    fields.set("tabRepaymentField", Value::integer(1));
    t.run("calculateTabVoid");
    EXPECT_EQ(fields.get("tabBalanceField"), Value::floatValue(owed - 1.0f));
    EXPECT_EQ(period->get("balance"), Value::floatValue(owed));
}
