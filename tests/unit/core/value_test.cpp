#include "core/record.h"
#include "core/value.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace zifora::core;

TEST(ValueReads, AbsentAndEmptyReadAsZero) {
    Value absent;
    EXPECT_EQ(absent.toFloat(), 0.0f);
    EXPECT_EQ(absent.toInt(), 0);
    EXPECT_FALSE(absent.toBool());
    EXPECT_EQ(absent.text(), "");
    EXPECT_EQ(Value::string("").toFloat(), 0.0f);
    EXPECT_EQ(Value::string("").toInteger(), 0);
}

TEST(ValueReads, FloatReadOfTextStopsAtTheFirstForeignCharacter) {
    EXPECT_EQ(Value::string("119").toFloat(), 119.0f);
    EXPECT_EQ(Value::string("  119.5 EUR").toFloat(), 119.5f);
    // A decimal comma is not part of a stored number: "119,5" reads as 119.
    EXPECT_EQ(Value::string("119,5").toFloat(), 119.0f);
    EXPECT_EQ(Value::string("-1.5e2x").toFloat(), -150.0f);
    EXPECT_EQ(Value::string("1e").toFloat(), 1.0f);
    EXPECT_EQ(Value::string("abc").toFloat(), 0.0f);
    EXPECT_EQ(Value::string(".5").toFloat(), 0.5f);
    EXPECT_TRUE(std::isinf(Value::string("1e99").toFloat()));
    // Text and number forms of an amount read the same.
    EXPECT_EQ(Value::string("0.1").toFloat(), Value::floatValue(0.1f).toFloat());
}

TEST(ValueReads, IntegerAndBoolReadsOfText) {
    EXPECT_EQ(Value::string("42abc").toInt(), 42);
    EXPECT_EQ(Value::string("-7.9").toInt(), -7);
    EXPECT_EQ(Value::string("99999999999").toInt(), INT32_MAX);
    EXPECT_TRUE(Value::string("YES").toBool());
    EXPECT_TRUE(Value::string("  007").toBool());
    EXPECT_FALSE(Value::string("no").toBool());
    EXPECT_FALSE(Value::string("000").toBool());
    EXPECT_EQ(Value::floatValue(-2.9f).toInt(), -2);
    EXPECT_EQ(Value::floatValue(NAN).toInteger(), 0);
}

TEST(ValueIdentity, KindsAreNotMerged) {
    EXPECT_NE(Value::floatValue(1), Value::doubleValue(1));
    EXPECT_NE(Value::intValue(1), Value::integer(1));
    EXPECT_NE(Value::boolean(true), Value::intValue(1));
    EXPECT_NE(Value::floatValue(0.0f), Value::floatValue(-0.0f));
    EXPECT_EQ(Value::string("a"), Value::string("a"));
    EXPECT_NE(Value::string("a"), Value::image("a"));
}

TEST(ValueIdentity, CopiesShareAndOutliveTheOriginal) {
    Value copy;
    {
        Value original = Value::dict({{"k", Value::string("ein längerer Text")}});
        copy = original;
    }
    EXPECT_EQ(copy["k"].text(), "ein längerer Text");
    EXPECT_TRUE(copy["missing"].isAbsent());
}

TEST(Records, InitialiserTablesGiveKeysKindsAndOrder) {
    Date now{700000000};
    auto item = Record::make(RecordClass::Item, now);
    const Properties& p = item->properties();
    EXPECT_EQ(p.size(), 63u);
    EXPECT_EQ(p.get("image"), Value::image("miniItemGrey"));
    EXPECT_EQ(p.get("kind"), Value::intValue(0));
    EXPECT_EQ(p.get("amount"), Value::string(""));
    EXPECT_EQ(p.get("taxPerecent"), Value::floatValue(0));
    EXPECT_EQ(p.get("additionalDate3"), Value::date(now));
    std::vector<std::string> first;
    p.forEach([&](const std::string& key, const Value&) {
        if (first.size() < 3) first.push_back(key);
    });
    EXPECT_EQ(first, (std::vector<std::string>{"image", "kind", "UUID"}));

    auto client = Record::make(RecordClass::Client, now);
    EXPECT_EQ(client->get("company"), Value::string("Neue Firma"));
    EXPECT_EQ(client->get("taxationKind"), Value::intValue(1));
    EXPECT_EQ(client->listCount(), 10u);
    auto allowance = Record::make(RecordClass::Allowance, now);
    EXPECT_EQ(allowance->get("dauerTag"), Value::integer(0));
    auto account = Record::make(RecordClass::Account, now);
    EXPECT_EQ(account->get("number"), Value::string("Nummer"));
    EXPECT_EQ(account->get("image"), Value::string(""));
}

TEST(Records, ListSettersKeepOrCopyAsTheirClassDoes) {
    auto list = std::make_shared<RecordList>();
    auto client = Record::make(RecordClass::Client, {});
    client->setList(static_cast<size_t>(client->listIndex("theYears")), list);
    list->push_back(Record::make(RecordClass::Year, {}));
    EXPECT_EQ(client->theYears().size(), 1u) << "a client keeps the list it is given";

    auto year = Record::make(RecordClass::Year, {});
    auto periods = std::make_shared<RecordList>();
    year->setList(static_cast<size_t>(year->listIndex("thelists")), periods);
    periods->push_back(Record::make(RecordClass::Thelist, {}));
    EXPECT_TRUE(year->thelists().empty()) << "a year copies its period list";
    auto spare = std::make_shared<RecordList>();
    year->setList(static_cast<size_t>(year->listIndex("array")), spare);
    spare->push_back(Record::make(RecordClass::Item, {}));
    EXPECT_EQ(year->list(3).size(), 1u) << "but keeps its spare array";
}

TEST(Records, SetPropertiesCopiesTheDictionary) {
    auto a = Record::make(RecordClass::Group, {});
    auto b = Record::make(RecordClass::Group, {});
    b->setProperties(a->properties());
    a->set("title", Value::string("Reisen"));
    EXPECT_EQ(b->getText("title"), "");
    a->setProperties(a->properties()); // the same dictionary: nothing happens
    EXPECT_EQ(a->getText("title"), "Reisen");
}

TEST(Properties, StoringAbsentRemovesAndOrderIsFirstInsertion) {
    Properties p;
    p.set("b", Value::intValue(1));
    p.set("a", Value::intValue(2));
    p.set("b", Value::intValue(3));
    std::string order;
    p.forEach([&](const std::string& k, const Value&) { order += k; });
    EXPECT_EQ(order, "ba");
    EXPECT_EQ(p.get("b"), Value::intValue(3));
    p.set("b", Value{});
    EXPECT_FALSE(p.contains("b"));
    EXPECT_EQ(p.size(), 1u);
}

TEST(Properties, FindWithAHintFollowsTheKeyWhereverItStands) {
    Properties a, b;
    a.set("x", Value::intValue(1));
    a.set("y", Value::intValue(2));
    b.set("y", Value::intValue(3)); // the same key at another place
    uint32_t hint = 0;
    KeyId y = internKey("y");
    ASSERT_NE(a.find(y, hint), nullptr);
    EXPECT_EQ(a.find(y, hint)->asInt(), 2);
    EXPECT_EQ(hint, 1u);
    EXPECT_EQ(b.find(y, hint)->asInt(), 3) << "a stale hint must not hand out another key";
    EXPECT_EQ(hint, 0u);
    uint32_t far = 99;
    EXPECT_EQ(b.find(internKey("nirgends"), far), nullptr);
    EXPECT_EQ(far, 99u);
}
