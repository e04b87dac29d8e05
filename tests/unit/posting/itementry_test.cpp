#include "posting/itementry.h"

#include "core/settings.h"

#include <gtest/gtest.h>

namespace zifora::posting {
namespace {

using core::Date;
using core::Record;
using core::RecordClass;
using core::Value;

core::Ref<Record> newItem(Date now = Date{0}) {
    return Record::make(RecordClass::Item, now);
}

TEST(ItemEntry, ClosingChecksStopAtTheFirstFailureInTheirOrder) {
    auto item = newItem();
    EXPECT_EQ(closingRefusal(*item, ""), kRefusalNoSum) << "kind is never tested itself";
    item->set("taxBool", Value::boolean(true));
    EXPECT_EQ(closingRefusal(*item, "0"), kRefusalNoTaxRate) << "before the zero sum";
    item->set("taxTag", Value::intValue(4));
    EXPECT_EQ(closingRefusal(*item, "0,00"), kRefusalTaxOnZero);
    EXPECT_EQ(closingRefusal(*item, "abc"), kRefusalTaxOnZero) << "a text that reads as zero";
    EXPECT_EQ(closingRefusal(*item, "0,01"), kRefusalNoTitle);
    item->set("title", Value::string("Porto"));
    EXPECT_EQ(closingRefusal(*item, "0,01"), std::nullopt);

    item->set("taxBool", Value::boolean(false));
    item->set("taxTag", Value::intValue(0));
    EXPECT_EQ(closingRefusal(*item, "0"), std::nullopt) << "untaxed, a zero sum is accepted";
    item->set("taxBool", Value::string("YES"));
    EXPECT_EQ(closingRefusal(*item, "0"), std::nullopt) << "only the exact value true is taxed";
}

TEST(ItemEntry, StampsAreWholeSecondsSince1970AndTwoItemsOfOneSecondShareThem) {
    const Date now = Date::fromUnix(1772442001.75);
    EXPECT_EQ(creationStamp(now), "1772442001");
    EXPECT_EQ(creationStamp(Date::fromUnix(1772442001.0)), creationStamp(now));

    auto period = Record::make(RecordClass::Thelist, now);
    period->set("title", Value::string("Januar"));
    auto year = Record::make(RecordClass::Year, now);
    year->set("dateValue", Value::string("2026"));
    auto item = newItem(now);
    stampNewItem(*item, period.get(), year.get(), now);
    EXPECT_EQ(item->getText("parentTab"), "Januar");
    EXPECT_EQ(item->getText("parentYear"), "2026");
    EXPECT_EQ(item->getText("UUID"), "1772442001");
}

class Prefill : public ::testing::Test {
  protected:
    core::Settings settings{"/nonexistent/prefill.plist"};
    const Date now{1000};
    const Date remembered{500};
};

TEST_F(Prefill, RememberedFalseAndZeroLeaveTheDefaultsWhileTheRestIsTakenOver) {
    settings.setBool("prefsAlwaysRememberLastSettings", true);
    settings.setBool("setUmsatzsteuerAutomatically", true); // ignored while remembering
    settings.setBool("setTaxAutomatically", true);
    settings.setString("itemRememberGroup", "Reisen");
    settings.setString("itemRememberAccountNumber", "4930");
    settings.setBool("itemRememberTaxBool", false);
    settings.set("itemRememberTaxTag", Value::intValue(0));
    settings.set("itemRememberKind", Value::intValue(1));
    settings.setDate("rememberDate", remembered);
    auto item = newItem(now);
    prefillNewItem(*item, settings, now);
    EXPECT_EQ(item->getText("group"), "Reisen");
    EXPECT_EQ(item->getText("accountNumber"), "4930");
    EXPECT_EQ(item->get("account"), Value::string("")) << "never remembered: the default";
    EXPECT_EQ(item->get("taxBool"), Value::boolean(false));
    EXPECT_EQ(item->get("taxTag"), Value::intValue(0));
    EXPECT_EQ(item->get("kind"), Value::intValue(1));
    EXPECT_EQ(item->get("date"), Value::date(remembered));

    settings.setBool("itemRememberTaxBool", true);
    settings.set("itemRememberTaxTag", Value::intValue(2));
    settings.setString("rememberDate", "gestern"); // not a date: left alone
    auto next = newItem(now);
    prefillNewItem(*next, settings, now);
    EXPECT_EQ(next->get("taxBool"), Value::boolean(true));
    EXPECT_EQ(next->get("taxTag"), Value::intValue(2));
    EXPECT_EQ(next->get("date"), Value::date(now));
}

TEST_F(Prefill, WithoutRememberingTheAutomaticChoicesApplyEachOnItsOwn) {
    settings.setBool("setTaxAutomatically", true);
    settings.set("itemRememberKind", Value::intValue(2));
    auto item = newItem(now);
    prefillNewItem(*item, settings, now);
    EXPECT_EQ(item->get("taxTag"), Value::intValue(1));
    EXPECT_EQ(item->get("taxBool"), Value::boolean(false));
    EXPECT_EQ(item->get("kind"), Value::intValue(0));

    settings.setBool("setUmsatzsteuerAutomatically", true);
    settings.setBool("setTaxAutomatically", false);
    auto taxed = newItem(now);
    prefillNewItem(*taxed, settings, now);
    EXPECT_EQ(taxed->get("taxBool"), Value::boolean(true));
    EXPECT_EQ(taxed->get("taxTag"), Value::intValue(0));
}

TEST_F(Prefill, TheRememberedDateStandsOnItsOwnAndFallsBackToNow) {
    settings.setBool("prefsRememberDate", true);
    auto first = newItem(Date{1});
    prefillNewItem(*first, settings, now);
    EXPECT_EQ(first->get("date"), Value::date(now)) << "nothing remembered yet";
    settings.setDate("rememberDate", remembered);
    auto second = newItem(Date{1});
    prefillNewItem(*second, settings, now);
    EXPECT_EQ(second->get("date"), Value::date(remembered));
}

TEST(ItemEntry, CompensationPostingsAreKnownByTitleOrByTheReservedAccount) {
    auto item = newItem();
    EXPECT_FALSE(isCompensationPosting(*item));
    item->set("title", Value::string("Ausgl. Abschr. Laptop"));
    EXPECT_TRUE(isCompensationPosting(*item));
    item->set("title", Value::string("Abschreibung Laptop (Ausgl. Abschr.)"));
    EXPECT_FALSE(isCompensationPosting(*item));
    item->set("accountNumber", Value::string("ZZ 9999"));
    EXPECT_TRUE(isCompensationPosting(*item));
    item->set("accountNumber", Value::string("ZZ 99999"));
    EXPECT_FALSE(isCompensationPosting(*item));
}

TEST(ItemEntry, TemplatesCarryTheirEightKeysAsTheyStandAndNothingElse) {
    auto source = newItem(Date{1});
    source->set("amount", Value::floatValue(29.75f));
    source->set("title", Value::string("Miete"));
    source->set("number", Value::string("RE-1"));
    source->set("finalAmount", Value::floatValue(-29.75f));
    source->properties().remove("group");
    auto target = newItem(Date{2});
    target->set("group", Value::string("alt"));
    copyTemplateKeys(*source, *target);
    EXPECT_EQ(target->get("amount"), Value::floatValue(29.75f)) << "the kind is kept";
    EXPECT_EQ(target->getText("title"), "Miete");
    EXPECT_FALSE(target->properties().contains("group")) << "a missing key goes too";
    EXPECT_EQ(target->getText("number"), "");
    EXPECT_EQ(target->getFloat("finalAmount"), 0.0f);
    EXPECT_EQ(target->get("date"), Value::date(Date{2}));
}

} // namespace
} // namespace zifora::posting
