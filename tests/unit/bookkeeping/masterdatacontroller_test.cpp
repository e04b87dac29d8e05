#include "bookkeeping/masterdatacontroller.h"

#include "masterdatafixture.h"

#include <gtest/gtest.h>

namespace zifora::bookkeeping::testing {
using namespace shell;
namespace {

using core::Record;
using core::RecordClass;
using core::Value;

class MasterDataControllerTest : public MasterDataTest {
  protected:
    Record& addRecord(core::RecordList& list, RecordClass cls, const std::string& key,
                      const std::string& text) {
        auto record = Record::make(cls, m_clock.now());
        record->set(key, Value::string(text));
        list.push_back(record);
        m_app.selectionChanged();
        return *record;
    }
};

TEST_F(MasterDataControllerTest, ANewAccountCarriesThePlaceholdersAndIsEditedAtOnce) {
    addAccount("1600", "Kasse");
    m_app.commands().run("addAccount:");
    ASSERT_EQ(client().accounts().size(), 2u);
    EXPECT_EQ(column(client().accounts(), "number"), "1600|Nummer");
    EXPECT_EQ(column(client().accounts(), "title"), "Kasse|Bezeichnung");
    EXPECT_EQ(m_app.selection().accounts.selected(), client().accounts()[1].get());
    EXPECT_EQ(takeEvents(), "{\"window\":{\"show\":\"preferences.accounts.number\"}}\n");

    m_app.commands().run("addAccountSetup:");
    EXPECT_EQ(column(client().accounts(), "number"), "1600|Nummer|Nummer")
        << "no check for double numbers";
    EXPECT_EQ(takeEvents(), "{\"window\":{\"show\":\"assistant.accounts.number\"}}\n");
}

TEST_F(MasterDataControllerTest, ANewCategoryIsAnEmptyGroup) {
    m_app.commands().run("addGroup:");
    m_app.commands().run("addGroupSetup:");
    ASSERT_EQ(client().groups().size(), 2u);
    EXPECT_EQ(client().groups()[0]->recordClass(), RecordClass::Group);
    EXPECT_EQ(client().groups()[0]->getText("title"), "");
    EXPECT_EQ(client().groups()[0]->get("date").toDate(), m_clock.now());
    EXPECT_EQ(takeEvents(), "{\"window\":{\"show\":\"preferences.groups.title\"}}\n"
                            "{\"window\":{\"show\":\"assistant.groups.title\"}}\n");
}

TEST_F(MasterDataControllerTest, DeletingAsksFirstAndOnlyLöschenDeletes) {
    addAccount("1600", "Kasse");
    addAccount("1800", "Bank");
    m_app.selection().accounts.setSelectionIndex(0);

    m_ui.queueAnswer(0);
    m_app.commands().run("removeAccount:");
    EXPECT_EQ(column(client().accounts(), "number"), "1600|1800");
    std::string events = takeEvents();
    EXPECT_NE(events.find("\"title\":\"Kostenstelle löschen\""), std::string::npos) << events;
    EXPECT_NE(events.find("\"buttons\":[\"Löschen\",\"Abbrechen\"]"), std::string::npos) << events;

    m_ui.queueAnswer(1);
    m_app.commands().run("removeAccount:");
    EXPECT_EQ(column(client().accounts(), "number"), "1800");
    EXPECT_EQ(m_app.selection().accounts.selected(), client().accounts()[0].get());
}

TEST_F(MasterDataControllerTest, EachListDeletesWithItsOwnQuestionAndBeepsWhenNothingIsSelected) {
    addRecord(client().groups(), RecordClass::Group, "title", "Büro");
    addRecord(client().items(), RecordClass::Item, "title", "Miete");
    addRecord(client().theYears(), RecordClass::Year, "dateValue", "2025");
    const std::tuple<const char*, const char*, core::RecordList*> cases[] = {
        {"removeGroup:", "Kategorie löschen", &client().groups()},
        {"removeTemplate:", "Vorlage löschen", &client().items()},
        {"deleteYear:", "Jahr löschen", &client().theYears()},
    };
    for (const auto& [command, title, list] : cases) {
        takeEvents();
        m_app.commands().run(command);
        EXPECT_TRUE(list->empty()) << command;
        EXPECT_NE(takeEvents().find(std::string("\"title\":\"") + title + "\""), std::string::npos)
            << command;
        m_app.commands().run(command);
        EXPECT_EQ(takeEvents(), "{\"beep\":true}\n") << command;
    }
}

TEST_F(MasterDataControllerTest, DeletingAYearTakesItsPeriodsAlongAndItemsKeepTheirCategory) {
    Record& year = addRecord(client().theYears(), RecordClass::Year, "dateValue", "2025");
    year.thelists().push_back(Record::make(RecordClass::Thelist, m_clock.now()));
    addRecord(client().theYears(), RecordClass::Year, "dateValue", "2026");
    m_app.selection().years.setSelectionIndex(0);
    m_app.selectionChanged();
    ASSERT_NE(m_app.selection().currentPeriod(), nullptr);

    m_app.commands().run("deleteYear:");
    EXPECT_EQ(column(client().theYears(), "dateValue"), "2026");
    EXPECT_EQ(m_app.selection().currentPeriod(), nullptr) << "the period list follows the new year";
}

TEST_F(MasterDataControllerTest, DraggingReordersEachOfTheFiveLists) {
    addAccount("1", "A");
    addAccount("2", "B");
    addAccount("3", "C");
    EXPECT_TRUE(m_app.drag(DragRequest{"accounts", {0}, "accounts", std::nullopt, false}));
    EXPECT_EQ(column(client().accounts(), "number"), "2|3|1");
    EXPECT_EQ(m_app.selection().accounts.selectionIndex(), 2u);

    for (const char* name : {"groups", "templates", "years", "clients"})
        EXPECT_TRUE(m_app.drag(DragRequest{name, {0}, name, 0, false})) << name;
}

TEST_F(MasterDataControllerTest, DraggingAClientMakesItTheCurrentOne) {
    auto second = Record::make(RecordClass::Client, m_clock.now());
    second->set("company", Value::string("Zweite GmbH"));
    m_app.book().clients().push_back(second);
    m_app.selectionChanged();
    EXPECT_EQ(m_app.selection().currentClient()->getText("company"), "Neue Firma");

    m_app.drag(DragRequest{"clients", {1}, "clients", 0, false});
    EXPECT_EQ(m_app.book().clients()[0]->getText("company"), "Zweite GmbH");
    EXPECT_EQ(m_app.selection().currentClient(), second.get());
    m_scheduler.advance(0.2);
    EXPECT_EQ(m_settings.getString("prefsCompany"), "Zweite GmbH");
}

} // namespace
} // namespace zifora::bookkeeping::testing
