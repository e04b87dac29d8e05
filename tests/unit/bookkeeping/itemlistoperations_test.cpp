#include "headlessbook.h"

#include <gtest/gtest.h>

using namespace zifora;
using namespace zifora::shell;
using namespace zifora::bookkeeping;
using fixtures::HeadlessBook;

namespace {

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

struct ThreePeriods : ::testing::Test {
    HeadlessBook book;
    core::Record& january = book.addPeriod("Januar");
    core::Record& february = book.addPeriod("Februar");
    core::Record& march = book.addPeriod("März", /*marked=*/true);
    ThreePeriods() {
        HeadlessBook::addItem(january, "Miete", 1)
            .set("misc9", core::Value::string("isKassenbuch"));
        HeadlessBook::addItem(january, "Porto", 2);
        HeadlessBook::addItem(january, "Strom", 3);
        HeadlessBook::addItem(february, "Porto", 40);
        HeadlessBook::addItem(march, "Telefon", 70);
    }
    void remove(std::vector<int> answers) {
        for (int a : answers)
            book.ui.queueAnswer(a);
        ASSERT_TRUE(book.app.commands().run("ArrayControllerItem.remove:"));
    }
};

TEST_F(ThreePeriods, DeleteAsksTheQuestionOfThePeriodAndOnlyItsDeletingButtonDeletes) {
    book.select(0, 1);
    remove({0}); // "Abbrechen" is the second button of the ordinary question
    EXPECT_EQ(HeadlessBook::titles(january), "Miete,Porto,Strom");
    EXPECT_TRUE(contains(book.events(), "\"title\":\"Posten löschen\""));
    remove({1});
    EXPECT_EQ(HeadlessBook::titles(january), "Miete,Strom");
    book.events();

    book.select(2, 0);
    remove({1}); // in a marked period the default button is the safe one
    EXPECT_EQ(march.items().size(), 1u);
    std::string events = book.events();
    EXPECT_TRUE(contains(events, "\"title\":\"Achtung!\""));
    EXPECT_FALSE(contains(events, "\"title\":\"Posten löschen\""))
        << "a marked period gets only its own question";
    remove({0});
    EXPECT_TRUE(march.items().empty());
    book.events();

    remove({});
    EXPECT_EQ(book.events(), "{\"beep\":true}\n");
}

TEST_F(ThreePeriods, DroppingAnItemOnAPeriodCopiesItThere) {
    book.select(0, 0);
    EXPECT_TRUE(book.drag("items", {0}, "periods", 1));
    ASSERT_EQ(HeadlessBook::titles(february), "Porto,Miete");
    EXPECT_EQ(HeadlessBook::titles(january), "Miete,Porto,Strom") << "the source item stays";
    const core::Record& copy = *february.items().back();
    EXPECT_NE(&copy, january.items().front().get());
    EXPECT_EQ(copy.getText("misc9"), "isKassenbuch") << "every key is copied";
    EXPECT_EQ(copy.get("date"), january.items().front()->get("date"));
    EXPECT_EQ(book.app.selection().currentPeriod(), &february);
    EXPECT_EQ(book.app.selection().currentItem(), &copy);
    EXPECT_TRUE(contains(book.events(), "\"title\":\"Hinweis!\""));
    EXPECT_TRUE(book.settings.getBool("firstDropBOOL"));

    // A second drop gets no notice; an item of the same title is refused, whatever its date.
    book.select(0, 1);
    book.drag("items", {1}, "periods", 1);
    EXPECT_EQ(HeadlessBook::titles(february), "Porto,Miete");
    EXPECT_EQ(book.app.selection().currentPeriod(), &february) << "the target stays selected";
    std::string events = book.events();
    EXPECT_FALSE(contains(events, "Hinweis!"));
    EXPECT_TRUE(contains(events, "Posten ist bereits in dieser Abrechnung vorhanden."));
}

TEST_F(ThreePeriods, AnItemDroppedOnItsOwnPeriodIsRefusedByItsTitle) {
    book.select(0, 2);
    book.drag("items", {2}, "periods", 0);
    EXPECT_EQ(january.items().size(), 3u);
    EXPECT_TRUE(contains(book.events(), "Posten ist bereits in dieser Abrechnung vorhanden."));
    EXPECT_TRUE(book.settings.getBool("firstDropBOOL")) << "the notice comes before the test";
}

TEST_F(ThreePeriods, ADropOnNoPeriodAddsNothingAndATwoRowDragCopiesTheLaterItem) {
    book.select(0, 0);
    book.drag("items", {0}, "periods", std::nullopt);
    book.drag("items", {0}, "periods", 3);
    book.drag("items", {7}, "periods", 1);
    EXPECT_EQ(book.events(), "");
    EXPECT_EQ(february.items().size(), 1u);

    // Each dragged item is written to the hand-over file in turn, so a drag of two rows
    // copies only the later one.
    book.drag("items", {0, 2}, "periods", 1);
    EXPECT_EQ(HeadlessBook::titles(february), "Porto,Strom");
    EXPECT_TRUE(std::filesystem::exists(book.places.dataFolder + "temp.item"));
}

TEST(ItemDrop, WithoutADataFolderTheDropEndsWithoutAnItem) {
    HeadlessBook book(/*withDataFolder=*/false);
    core::Record& january = book.addPeriod("Januar");
    core::Record& february = book.addPeriod("Februar");
    HeadlessBook::addItem(january, "Miete", 1);
    book.select(0, 0);
    book.drag("items", {0}, "periods", 1);
    EXPECT_TRUE(february.items().empty());
    EXPECT_EQ(book.app.selection().currentPeriod(), &february);
}

TEST_F(ThreePeriods, MovingRowsFollowsTheMoveRuleAndSelectsTheMovedRecord) {
    book.select(0, 0);
    core::Record* strom = january.items()[2].get();
    book.drag("items", {2}, "items", 0);
    EXPECT_EQ(HeadlessBook::titles(january), "Strom,Miete,Porto");
    EXPECT_EQ(book.app.selection().currentItem(), strom);

    // Periods: row 0 before row 2 lands at 1, and the moved period stays selected.
    book.drag("periods", {0}, "periods", 2);
    EXPECT_EQ(book.year->thelists()[1].get(), &january);
    EXPECT_EQ(book.app.selection().currentPeriod(), &january);
    book.drag("periods", {2}, "periods", std::nullopt);
    EXPECT_EQ(book.year->thelists()[2].get(), &march);
    EXPECT_EQ(book.events(), "");
}

TEST_F(ThreePeriods, CopyDragsAreNoMovesAndOnlyAOneRowDragShowsTheImportNotice) {
    book.select(0, 0);
    book.drag("items", {0}, "items", 2, /*option=*/true);
    EXPECT_TRUE(contains(book.events(), "\"title\":\"Import Hinweis\""));
    book.drag("items", {0, 1}, "items", 2, /*option=*/true);
    EXPECT_EQ(book.events(), "");
    book.drag("periods", {1}, "items", 0);
    EXPECT_TRUE(contains(book.events(), "Import Hinweis")) << "a period row carries a URL as well";
    book.drag("periods", {0}, "periods", 2, /*option=*/true);
    EXPECT_EQ(HeadlessBook::titles(january), "Miete,Porto,Strom");
    EXPECT_EQ(book.year->thelists()[0].get(), &january);
    EXPECT_EQ(book.events(), "");
}

} // namespace
