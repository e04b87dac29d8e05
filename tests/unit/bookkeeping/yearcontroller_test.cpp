#include "testbed.h"

#include <gtest/gtest.h>

using namespace zifora;
using namespace zifora::shell;
using namespace zifora::bookkeeping;
using core::Value;
using zifora::bookkeeping::testbed::TestBed;

namespace {

core::Record* addYearNamed(TestBed& t, const std::string& title) {
    t.run("addYear:");
    t.app.fields().set("yearPopUp", Value::string(title));
    t.run("closeYear:");
    return t.app.selection().currentYear();
}

} // namespace

TEST(YearController, ANewYearIsSelectedAndTheListsBelowFollowIt) {
    TestBed t;
    addYearNamed(t, "2025");
    t.run("addList:");
    t.app.selection().currentPeriod()->items().push_back(
        core::Record::make(core::RecordClass::Item, testbed::kTestNow));
    t.app.selectionChanged();
    ASSERT_EQ(t.app.selection().items.count(), 1u);

    t.run("addYear:");
    Selection& s = t.app.selection();
    ASSERT_EQ(s.years.count(), 2u);
    EXPECT_EQ(s.currentYear()->getText("dateValue"), "");
    EXPECT_EQ(s.lists.count(), 0u);
    EXPECT_EQ(s.items.content(), nullptr);
    EXPECT_EQ(t.app.fields().text("yearPopUp"), ""); // the form shows the new record

    // Deleting the first year takes its period and item with it.
    s.years.setSelectionIndex(0);
    t.app.selectionChanged();
    t.ui.queueAnswer(1);
    t.run("deleteYear:");
    EXPECT_EQ(s.years.count(), 1u);
    EXPECT_EQ(s.lists.count(), 0u);
    EXPECT_EQ(s.items.count(), 0u);
}

TEST(YearController, TheChooserTakesOnlyWhatItOffersAndThenShowsTheRecordAgain) {
    TestBed t;
    core::Record* year = addYearNamed(t, "2026");
    FormFields& fields = t.app.fields();
    for (const char* refused : {"1999", "2029", "26", "", "2026 "}) {
        fields.set("yearPopUp", Value::string(refused));
        EXPECT_EQ(year->getText("dateValue"), "2026") << refused;
        EXPECT_EQ(fields.text("yearPopUp"), "2026") << refused;
    }
    // Two years after the clock's is the last offered; a number counts as its text.
    fields.set("yearPopUp", Value::integer(2028));
    EXPECT_EQ(year->get("dateValue"), Value::string("2028"));
}

TEST(YearController, TheFormsWriteIntoTheSelectedRecordAndLoadFromIt) {
    TestBed t;
    core::Record* year = addYearNamed(t, "2024");
    t.run("addList:");
    core::Record* period = t.app.selection().currentPeriod();
    FormFields& fields = t.app.fields();
    fields.set("listPopUp", Value::string("März"));
    fields.set("listCommentField", Value::string("Umsatzsteuer"));
    fields.set("listPopUp", Value::string("Maerz"));
    EXPECT_EQ(period->getText("title"), "März");
    EXPECT_EQ(period->getText("comment"), "Umsatzsteuer");
    EXPECT_EQ(year->getText("comment"), "");

    fields.set("listPopUp", Value::string("Jahr"));
    fields.set("listCommentField", Value::string("anders"));
    period->set("title", Value::string("Mai"));
    t.run("editList:");
    EXPECT_EQ(fields.text("listPopUp"), "Mai");
    EXPECT_EQ(fields.text("listCommentField"), "anders");
}
