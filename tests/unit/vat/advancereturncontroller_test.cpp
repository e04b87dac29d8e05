#include "vatbook.h"

#include "core/record.h"

#include <gtest/gtest.h>

using namespace zifora;
using namespace zifora::vat::testing;
using core::Value;

namespace {

class AdvanceReturn : public ::testing::Test {
  protected:
    VatBook b;
};

} // namespace

TEST_F(AdvanceReturn, OpeningIsRefusedBeforeTheFirstItemAndWithoutPeriods) {
    b.app.settings().setBool("firstStepsDone", false);
    auto result = b.app.run("openVoranmeldungsWindow:");
    ASSERT_TRUE(result);
    EXPECT_EQ(result->outcome, shell::Outcome::Refused);
    std::string events = b.events();
    EXPECT_TRUE(b.has(events, "\"title\":\"Hinweis!\",\"text\":\"Das Vorbereiten und Verwalten"));

    b.app.settings().setBool("firstStepsDone", true);
    EXPECT_EQ(b.app.run("openVoranmeldungsWindow:")->outcome, shell::Outcome::Refused);
    events = b.events();
    EXPECT_TRUE(b.has(events, "\"title\":\"Fehler!\",\"text\":\"Du musst erst eine Abrechnung "
                              "und zugehörige Posten anlegen.\""));
    EXPECT_FALSE(b.has(events, "voranmeldungWindow"));
    EXPECT_EQ(b.app.run("printAbrechnung:")->outcome, shell::Outcome::Refused);
    EXPECT_FALSE(b.app.settings().getBool("prefsExportPrintWithList"));
}

TEST_F(AdvanceReturn, AnEmptyPeriodAsksAndOpensWithZerosOnlyOnFortfahren) {
    b.addPeriod("März");
    b.ui.queueAnswer(1); // Abbrechen
    EXPECT_EQ(b.app.run("openVoranmeldungsWindow:")->outcome, shell::Outcome::Cancelled);
    std::string events = b.events();
    EXPECT_TRUE(b.has(events, "\"buttons\":[\"Abbrechen\",\"Fortfahren\"]"));
    EXPECT_FALSE(b.has(events, "voranmeldungWindow"));

    b.app.settings().setFloat("tab-saldoField", 99.0f);
    b.app.settings().setInteger("selectedVoranmeldungTabIndex", 3);
    b.ui.queueAnswer(0); // Fortfahren
    EXPECT_EQ(b.app.run("openVoranmeldungsWindow:")->outcome, shell::Outcome::Done);
    EXPECT_TRUE(b.has(b.events(), "{\"window\":{\"show\":\"voranmeldungWindow\"}}"));
    EXPECT_EQ(b.app.settings().getFloat("tab-saldoField"), 0.0f);
    EXPECT_EQ(b.app.settings().getInteger("selectedVoranmeldungTabIndex"), 0);
    EXPECT_EQ(b.app.fields().get("openItemsButtonImage").text(), "openPopoverTemplate");
}

TEST_F(AdvanceReturn, TheOpenItemsButtonTellsOfUnpaidItemsAndTheHelpPanelFollowsItsSetting) {
    core::Record& period = b.addPeriod("März");
    b.addItem(period, 119.0f, 2, 1, /*unpaid=*/true);
    b.app.settings().setBool("prefsAlwaysShowVoranmeldungHelpDawer", true);
    b.app.run("openVoranmeldungsWindow:");
    EXPECT_EQ(b.app.fields().get("openItemsButtonImage").text(), "openPopover");
    EXPECT_EQ(b.app.fields().get("openColor").text(), "#e67542");
    EXPECT_TRUE(b.has(b.events(), "{\"window\":{\"show\":\"voranmeldungWindow.help\"}}"));
    // The unpaid item counts in the figures as any other.
    EXPECT_EQ(b.app.settings().getFloat("tab-tax1SumField"), 100.0f);

    b.app.run("showMultiPopOver:", {.tag = 99});
    EXPECT_EQ(b.app.fields().get("multiPopoverView").text(), "openTaxes");
    EXPECT_EQ(b.app.fields().get("openItemsWithField").text(), "119,00");
    EXPECT_EQ(b.app.fields().get("openItemsWithoutField").text(), "100,00");
}

TEST_F(AdvanceReturn, ThePaymentFieldsWriteThePeriodAndCalculateTabItsBalance) {
    core::Record& period = b.addPeriod("März");
    b.addItem(period, 119.0f, 2, 1);
    period.set("payment", Value::floatValue(5.0f));
    b.app.run("openVoranmeldungsWindow:");
    EXPECT_EQ(b.app.fields().get("tabPaymentField").toFloat(), 5.0f) << "the field shows the key";
    EXPECT_EQ(period.getFloat("payment"), 5.0f) << "showing it does not write it";

    b.app.fields().set("tabPaymentField", Value::string("100"));
    b.app.fields().set("tabAdditionalPayField", Value::string("20,5"));
    b.app.fields().set("tabRepaymentField", Value::floatValue(30.0f));
    b.app.run("calculateTab:");
    EXPECT_EQ(period.get("payment").kind(), core::Kind::Float);
    EXPECT_EQ(period.getFloat("payment"), 100.0f);
    EXPECT_EQ(period.getFloat("additionalPayment"), 20.5f);
    EXPECT_EQ(period.getFloat("rePayment"), 30.0f);
    EXPECT_EQ(period.getFloat("balance"), 90.5f);

    b.app.fields().set("voranmeldungCommentField", Value::string("mit Anlage"));
    EXPECT_EQ(period.getText("voranmeldungComment"), "mit Anlage");
    b.app.fields().set("voranmeldungMarkCheckBox", Value::boolean(true));
    EXPECT_TRUE(period.getBool("taxBool"));
}

TEST_F(AdvanceReturn, UebernehmenTakesTheFiguresAndEigeneOnlyTheDate) {
    core::Record& period = b.addPeriod("1. Kalendervierteljahr");
    b.addItem(period, 119.0f, 2, 1);
    b.addItem(period, 10.7f, 2, 2);
    b.addItem(period, 59.5f, 1, 1);
    period.set("additionalPayment", Value::floatValue(3.0f));
    b.app.run("openVoranmeldungsWindow:");
    b.events();

    b.ui.queueAnswer(1); // Übernehmen
    b.services.scheduler.advance(10);
    EXPECT_EQ(b.app.run("meldungBuchen:")->outcome, shell::Outcome::Done);
    EXPECT_TRUE(b.has(b.events(), "\"buttons\":[\"Übernehmen\",\"Eigene\"]"));
    const float p1 = b.app.fields().get("tax1AmountField").toFloat();
    const float p2 = b.app.fields().get("tax2AmountField").toFloat();
    const float p3 = b.app.fields().get("tax3AmountField").toFloat();
    EXPECT_EQ(period.getFloat("payment"), (p1 + p2) + p3);
    EXPECT_EQ(period.getFloat("rePayment"), 9.5f);
    EXPECT_EQ(period.getFloat("balance"), b.app.settings().getFloat("tab-saldoField"));
    EXPECT_EQ(period.getFloat("additionalPayment"), 3.0f);
    EXPECT_EQ(period.get("date").toDate().sinceReferenceDate, kNow.sinceReferenceDate + 10);
    EXPECT_EQ(b.app.fields().get("zahlungFieldBuchung").toFloat(), period.getFloat("payment"));

    const core::Properties before = period.properties();
    b.ui.queueAnswer(0); // Eigene
    b.services.scheduler.advance(5);
    b.app.run("meldungBuchen:");
    EXPECT_EQ(period.getFloat("payment"), before.getFloat("payment"));
    EXPECT_EQ(period.getFloat("rePayment"), 9.5f);
    EXPECT_EQ(period.get("date").toDate().sinceReferenceDate, kNow.sinceReferenceDate + 15);
    for (const char* field : {"zahlungFieldBuchung", "erstattungFieldBuchung", "saldoFieldBuchung"})
        EXPECT_EQ(b.app.fields().get(field).toFloat(), 0.0f) << field;
}

TEST_F(AdvanceReturn, TurnoverOutsideTheScopeOfTheTaxIsRemindedOfSixTenthsOfASecondLater) {
    core::Record& period = b.addPeriod("März");
    b.addItem(period, 300.0f, 2, 5);
    b.app.run("openVoranmeldungsWindow:");
    b.events();
    b.app.run("meldungBuchen:");
    b.events();
    b.scheduler.advance(0.59);
    EXPECT_FALSE(b.has(b.events(), "Nicht steuerbare"));
    b.scheduler.advance(0.01);
    std::string events = b.events();
    EXPECT_TRUE(b.has(events, "\"title\":\"Hinweis!\",\"text\":\"Du hast 'Nicht steuerbare "
                              "Umsätze' verbucht"));
    EXPECT_TRUE(b.has(events, "Geduld oder gar Humor zählt nicht zu deren Stärken.\""));

    // Negative (an expense of tag 5 adds nothing; a negative sum) or zero: no reminder.
    core::Record& other = b.addPeriod("April");
    b.selectPeriod(1);
    b.addItem(other, 119.0f, 2, 1);
    b.app.run("meldungBuchen:");
    b.scheduler.advance(5);
    EXPECT_FALSE(b.has(b.events(), "Nicht steuerbare"));
}

TEST_F(AdvanceReturn, PrintingSetsTheListSettingAndHandsOverToTheJournalOnTheNextTurn) {
    core::Record& period = b.addPeriod("März");
    b.addItem(period, 119.0f, 2, 1);
    int printed = 0;
    const bool stubbed = !b.app.commands().contains("printJournal:");
    if (stubbed)
        b.app.commands().add("printJournal:",
                             [&printed](const shell::CommandSender&) { ++printed; });
    b.app.run("printAbrechnung:");
    EXPECT_TRUE(b.app.settings().getBool("prefsExportPrintWithList"));
    EXPECT_EQ(b.app.settings().getFloat("tab-tax1SumField"), 100.0f);
    EXPECT_EQ(printed, 0) << "not before the next turn";
    b.scheduler.runDue();
    if (stubbed) {
        EXPECT_EQ(printed, 1);
    }
}

TEST_F(AdvanceReturn, TheCommentPanelShowsThePeriodsCommentAndUnknownViewsAreRefused) {
    core::Record& period = b.addPeriod("März");
    period.set("voranmeldungComment", Value::string("Dauerfristverlängerung"));
    b.app.run("showMultiPopOver:", {.tag = 10});
    EXPECT_EQ(b.app.fields().get("multiPopoverView").text(), "voranmeldungComment");
    EXPECT_EQ(b.app.fields().get("voranmeldungCommentField").text(), "Dauerfristverlängerung");
    EXPECT_TRUE(b.has(b.events(), "{\"window\":{\"show\":\"multiPopover\"}}"));
    for (int tag : {8, 9})
        EXPECT_EQ(b.app.run("showMultiPopOver:", {.tag = tag})->outcome, shell::Outcome::Done);
    EXPECT_EQ(b.app.fields().get("multiPopoverView").text(), "voranmeldungHelp");
    EXPECT_EQ(b.app.run("showMultiPopOver:", {.tag = 15})->outcome, shell::Outcome::Refused);
}
