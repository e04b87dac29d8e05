#include "bookkeeping/itemcontroller.h"

#include "program/headlessprogram.h"

#include <gtest/gtest.h>

#include <sstream>

namespace zifora::bookkeeping {
using namespace shell;
namespace {

using core::Date;
using core::Record;
using core::RecordClass;
using core::Value;

// The program with one client, one year and two periods, the second marked for an
// advance return, driven the way the form drives it.
class ItemFormTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const Date now = clock.now();
        client = Record::make(RecordClass::Client, now);
        auto year = Record::make(RecordClass::Year, now);
        year->set("dateValue", Value::string("2026"));
        for (const char* title : {"Januar", "Februar"}) {
            auto period = Record::make(RecordClass::Thelist, now);
            period->set("title", Value::string(title));
            year->thelists().push_back(period);
        }
        year->thelists()[1]->set("taxBool", Value::boolean(true));
        client->theYears().push_back(year);
        for (auto [number, title] : {std::pair{"4930", "Bürobedarf"}, {"4400", "Erlöse"}}) {
            auto account = Record::make(RecordClass::Account, now);
            account->set("number", Value::string(number));
            account->set("title", Value::string(title));
            client->accounts().push_back(account);
        }
        app.setClients({client});
        app.selectionChanged();
        settings.setFloat("prefs1Rate", 19);
        settings.setFloat("prefs2Rate", 7);
    }

    void run(const std::string& command) { ASSERT_TRUE(app.commands().run(command)) << command; }
    void type(std::string_view control, Value value) { app.fields().set(control, value); }
    void type(std::string_view control, const char* text) { type(control, Value::string(text)); }
    Value field(std::string_view control) { return app.fields().get(control); }
    Record* item() { return app.selection().currentItem(); }
    /// A finished income item of the given sum, left open in the form.
    void typeIncome(const char* sum, const char* title) {
        run("selectIncome:");
        scheduler.runDue();
        type("sumField", sum);
        type("titleField", title);
    }

    std::ostringstream out;
    program::HeadlessProgram headless{out, core::Places::forHome("/nonexistent"),
                                      Date::fromUnix(1772442000), program::Resources{}};
    ScriptedUi& ui = headless.services.ui;
    VirtualScheduler& scheduler = headless.services.scheduler;
    VirtualClock& clock = headless.services.clock;
    core::Settings& settings = headless.settings;
    Session& app = headless.session();
    core::Ref<Record> client;
};

TEST_F(ItemFormTest, TheItemLeftIsCommittedAtOnceAndTheDeferredRunActsOnTheNewOne) {
    run("addItem:");
    typeIncome("119", "Verkauf");
    Record* first = item();
    run("addItem:"); // the form's "new" button
    EXPECT_EQ(first->getFloat("finalAmount"), 119.0f) << "calculated before the next turn";
    EXPECT_EQ(settings.getInteger("itemRememberKind"), 2);
    ASSERT_NE(item(), first);
    EXPECT_EQ(field("sumFieldEnabled"), Value::boolean(false));
    EXPECT_EQ(field("sumField"), Value::string(""));

    scheduler.runDue();
    EXPECT_EQ(item()->get("image"), Value::image("miniItemGrey")) << "kind 0 stays untouched";
    EXPECT_EQ(settings.getInteger("itemRememberKind"), 0) << "but its state is remembered";
    EXPECT_EQ(first->getFloat("finalAmount"), 119.0f);
}

TEST_F(ItemFormTest, AKeyChangedBehindTheFormIsWhatTheNextCalculationReads) {
    run("addItem:");
    typeIncome("1.234,56", "Verkauf");
    EXPECT_EQ(item()->get("amount"), Value::string("1234.56"));
    EXPECT_EQ(field("sumField"), Value::string("1.234,56")) << "the typed text stays shown";

    // A split replaces the amount by a number and asks for a calculation.
    item()->set("amount", Value::floatValue(308.64f));
    item()->set("taxBool", Value::boolean(false));
    item()->set("taxTag", Value::intValue(2));
    run("calculateItem:");
    EXPECT_EQ(field("sumField"), Value::string("308,64"));
    EXPECT_EQ(item()->getFloat("finalAmount"), 308.64f);
    EXPECT_EQ(item()->get("taxTag"), Value::intValue(0));
    EXPECT_EQ(field("taxSegControl"), Value::intValue(0)) << "the cleared tag shows";
}

TEST_F(ItemFormTest, TheSumFieldTakesNothingBeforeAKindAndNothingThatIsNoAmount) {
    run("addItem:");
    type("sumField", "50");
    EXPECT_EQ(item()->get("amount"), Value::string(""));
    EXPECT_EQ(field("sumField"), Value::string(""));
    EXPECT_NE(out.str().find("{\"beep\":true}"), std::string::npos);

    run("selectExpense:");
    scheduler.runDue();
    EXPECT_EQ(field("algebraicField"), Value::string("-"));
    type("sumField", "50");
    type("sumField", "fünfzig");
    EXPECT_EQ(item()->get("amount"), Value::string("50")) << "the refused text stores nothing";
    EXPECT_EQ(field("sumField"), Value::string("50"));
    EXPECT_NE(out.str().find("„fünfzig“ ist keine gültige Summe"), std::string::npos);
    type("sumField", "   ");
    EXPECT_EQ(item()->get("amount"), Value::string("")) << "blanks are an empty field";
    // A paste of a megabyte is read (and refused: beyond the float range) in one pass; its
    // alert quotes the first 40 characters.
    type("sumField", Value::string("ü" + std::string(1 << 20, '9')));
    EXPECT_NE(out.str().find("„ü" + std::string(39, '9') + "…“ ist keine gültige Summe"),
              std::string::npos);
    EXPECT_EQ(out.str().find(std::string(41, '9')), std::string::npos);
}

TEST_F(ItemFormTest, TheListObserverRunsForAnItemSelectedFromOutsideBeforeTypingLands) {
    run("addItem:");
    typeIncome("10", "Eins");
    item()->set("accountNumber", Value::string("4400"));
    run("closeItemSheet:");
    scheduler.runDue();
    run("addItem:");
    run("selectExpense:");
    scheduler.runDue();
    EXPECT_EQ(field("algebraicField"), Value::string("-"));
    Record* second = item();

    app.selection().items.setSelectionIndex(0); // as a click in the list does
    app.selectionChanged();
    type("accountField", "4930");
    EXPECT_EQ(field("accountField"), Value::string("4930")) << "typed after the observer ran";
    EXPECT_EQ(field("algebraicField"), Value::string("+"));
    run("validateAccountNumber:");
    EXPECT_EQ(item()->getText("account"), "Bürobedarf");
    EXPECT_EQ(field("accountPopUp"), Value::string("Bürobedarf")) << "bound to the account";
    EXPECT_EQ(second->getText("account"), "");
}

TEST_F(ItemFormTest, ARememberedAccountNumberIsInTheItemButNotInTheNumberField) {
    settings.setBool("prefsAlwaysRememberLastSettings", true);
    settings.setString("itemRememberAccountNumber", "4930");
    settings.set("itemRememberKind", Value::intValue(1));
    run("addItem:");
    EXPECT_EQ(item()->getText("accountNumber"), "4930");
    EXPECT_EQ(field("accountField"), Value::string("")) << "the observer saw the new record";
    EXPECT_EQ(field("sumFieldEnabled"), Value::boolean(false)) << "until a kind is chosen";
    EXPECT_EQ(field("taxSegControlLabel0"), Value::string("19 %"));
    EXPECT_EQ(field("taxSegControlLabel2"), Value::string("")) << "no third rate";
}

TEST_F(ItemFormTest, EditingInAMarkedPeriodAsksAndMayKeepTheCashBookHandOverClosed) {
    app.selection().lists.setSelectionIndex(1);
    app.selectionChanged();
    auto taken = Record::make(RecordClass::Item, clock.now());
    taken->set("kind", Value::intValue(1));
    taken->set("taxPerecent", Value::floatValue(16));
    taken->set("misc9", Value::string("isKassenbuch"));
    app.selection().items.add(taken);
    settings.setBool("allowCashBook", true);

    ui.queueAnswer(1); // "Abbrechen"
    run("editItem:");
    EXPECT_EQ(taken->getFloat("taxPerecent"), 16.0f);
    EXPECT_TRUE(settings.getBool("allowCashBook"));

    ui.queueAnswer(0); // "Bearbeiten"
    run("editItem:");
    EXPECT_FALSE(settings.getBool("allowCashBook")) << "an empty sum doesn't open it again";
    EXPECT_EQ(taken->get("image"), Value::image("miniItemRed")) << "recalculated on opening";
    EXPECT_EQ(out.str().find("itemHelpPanel"), std::string::npos);
}

TEST_F(ItemFormTest, ACopyIsDeepAndEqualInEveryKey) {
    run("addItem:");
    typeIncome("119", "Vorlage");
    item()->set("misc9", Value::string("isKassenbuch"));
    run("closeItemSheet:");
    scheduler.runDue();
    Record* original = item();
    run("duplicateItem:");
    Record* copy = item();
    ASSERT_NE(copy, original);
    EXPECT_TRUE(copy->properties().sameAs(original->properties()));
    copy->set("title", Value::string("Kopie"));
    EXPECT_EQ(original->getText("title"), "Vorlage");
    EXPECT_EQ(app.selection().items.count(), 2u);
}

TEST_F(ItemFormTest, SteppingStopsAtTheEndsOfTheList) {
    run("addItem:");
    typeIncome("1", "A");
    clock.setStart(Date::fromUnix(1772442100));
    run("addItem:");
    typeIncome("2", "B");
    Record* last = item();
    run("selectNext:");
    EXPECT_EQ(item(), last);
    run("selectPrevious:");
    EXPECT_EQ(field("titleField"), Value::string("A"));
    EXPECT_EQ(last->getFloat("finalAmount"), 2.0f) << "committed on leaving";
    run("selectPrevious:");
    EXPECT_EQ(field("titleField"), Value::string("A"));
}

} // namespace
} // namespace zifora::bookkeeping
