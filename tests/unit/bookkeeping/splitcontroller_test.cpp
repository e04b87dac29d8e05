#include "headlessbook.h"

#include <gtest/gtest.h>

using namespace zifora;
using namespace zifora::shell;
using namespace zifora::bookkeeping;
using fixtures::HeadlessBook;

namespace {

struct SplitOfOneItem : ::testing::Test {
    HeadlessBook book;
    core::Record& period = book.addPeriod("Januar");
    core::Record& item = HeadlessBook::addItem(period, "Beratung", 1);
    SplitOfOneItem() {
        item.set("kind", core::Value::intValue(2));
        item.set("amount", core::Value::string("1000"));
        item.set("taxBool", core::Value::boolean(true));
        item.set("taxTag", core::Value::intValue(1));
        book.settings.setFloat("prefs1Rate", 19);
        book.settings.setFloat("prefs2Rate", 7);
        book.select(0, 0);
    }
    void run(const char* command) { ASSERT_TRUE(book.app.commands().run(command)); }
};

TEST_F(SplitOfOneItem, TheSharePageReplacesTheAmountAndRecalculatesOnTheNextTurn) {
    book.settings.setInteger("selectedSplitIndex", 0);
    run("splitAction:");
    EXPECT_EQ(item.get("amount"), core::Value::floatValue(250)) << "stored as a float number";
    EXPECT_EQ(item.getFloat("finalAmount"), 0.0f) << "the calculation waits for the next turn";
    EXPECT_EQ(book.events(), "{\"window\":{\"hide\":\"splitCalculator\"}}\n");
    book.scheduler.runDue();
    EXPECT_EQ(item.getFloat("finalAmount"), 250.0f);
    EXPECT_FLOAT_EQ(item.getFloat("taxFee"), 250.0f - 250.0f * 100.0f / 119.0f)
        << "the tax is worked out of the reduced sum";
    EXPECT_TRUE(book.settings.getBool("allowCashBook"));
    EXPECT_EQ(book.settings.getInteger("itemRememberKind"), 2);
}

TEST_F(SplitOfOneItem, TheOwnShareIsReadAsAFloatFromTextAndIsNotChecked) {
    book.settings.setInteger("selectedSplitIndex", 2);
    book.settings.setString("customSplitValue", "150 Prozent");
    run("splitAction:");
    EXPECT_EQ(item.getFloat("amount"), 1500.0f);
}

TEST_F(SplitOfOneItem, TheTaxPageTurnsTheNetSumIntoTheGrossSum) {
    book.settings.setInteger("calculatorHelpIndex", 3);
    book.app.fields().set("sumFieldCalChelp", core::Value::string("100"));
    run("splitAction:");
    book.scheduler.runDue();
    EXPECT_EQ(item.get("amount"), core::Value::floatValue(119));
    EXPECT_FLOAT_EQ(item.getFloat("taxFee"), 19.0f);

    item.set("taxTag", core::Value::intValue(2));
    book.app.fields().set("sumFieldCalChelp", core::Value::doubleValue(21.5));
    run("splitAction:");
    const float net = 21.5f, percent = net / 100.0f, tax = percent * 7.0f, gross = net + tax;
    EXPECT_EQ(item.getFloat("amount"), gross);

    // As the calculator's field is typed: in the locale's notation, or no sum at all.
    book.app.fields().set("sumFieldCalChelp", core::Value::string("1.000,5"));
    run("splitAction:");
    const float typedNet = 1000.5f, typedTax = typedNet / 100.0f * 7.0f;
    EXPECT_EQ(item.getFloat("amount"), typedNet + typedTax);
    book.app.fields().set("sumFieldCalChelp", core::Value::string("5e3"));
    run("splitAction:");
    EXPECT_EQ(item.getFloat("amount"), 0.0f);
}

TEST_F(SplitOfOneItem, TheTaxPageRefusesWithoutARateAndOnRatesWithoutTax) {
    book.settings.setInteger("calculatorHelpIndex", 1);
    book.app.fields().set("sumFieldCalChelp", core::Value::string("100"));
    const std::string incomplete = "Posten ist unvollständig ausgefüllt. Bitte Steuersatz angeben.";
    const std::string superfluous = "Bei dem ausgewählten Steuersatz ist die Aktion überflüssig.";
    struct Case {
        core::Value taxBool;
        int32_t taxTag;
        const std::string& text;
    } cases[] = {
        {core::Value::boolean(false), 1, incomplete}, {core::Value::string("YES"), 1, incomplete},
        {core::Value::boolean(true), 0, incomplete},  {core::Value::boolean(true), 4, superfluous},
        {core::Value::boolean(true), 5, superfluous}, {core::Value::boolean(true), 9, superfluous},
    };
    for (const Case& c : cases) {
        item.set("taxBool", c.taxBool);
        item.set("taxTag", core::Value::intValue(c.taxTag));
        run("splitAction:");
        book.scheduler.runDue();
        std::string events = book.events();
        EXPECT_TRUE(events.starts_with(
            "{\"beep\":true}\n{\"alert\":{\"title\":\"Fehler!\",\"text\":\"" + c.text + "\""))
            << events;
        EXPECT_EQ(events.find("hide"), std::string::npos) << "the calculator stays open";
        EXPECT_EQ(item.get("amount"), core::Value::string("1000"));
    }
}

TEST_F(SplitOfOneItem, OpeningTheCalculatorShowsTheSignOfTheKind) {
    FormFields& fields = book.app.fields();
    fields.set("sumFieldCalChelp", core::Value::string("12"));
    run("openSplitWindow:");
    EXPECT_TRUE(fields.get("sumFieldCalChelp").isAbsent());
    EXPECT_EQ(fields.text("algebraicFieldCalcHelp"), "+");
    EXPECT_EQ(fields.text("sumFieldCalChelp.textColor"), "green");

    item.set("kind", core::Value::intValue(1));
    run("openSplitWindow:");
    EXPECT_EQ(fields.text("algebraicFieldCalcHelp"), "-");
    EXPECT_EQ(fields.text("algebraicFieldCalcHelp.textColor"), "red");

    item.set("kind", core::Value::intValue(0));
    run("openSplitWindow:");
    EXPECT_EQ(fields.text("algebraicFieldCalcHelp"), "-") << "no kind leaves the sign as it was";
}

TEST_F(SplitOfOneItem, WithoutASelectedItemNothingIsWritten) {
    book.select(0, std::nullopt);
    run("splitAction:");
    book.scheduler.runDue();
    EXPECT_EQ(item.get("amount"), core::Value::string("1000"));
    book.settings.setInteger("calculatorHelpIndex", 1);
    run("splitAction:");
    EXPECT_TRUE(book.events().find("Posten ist unvollständig ausgefüllt.") != std::string::npos);
}

} // namespace
