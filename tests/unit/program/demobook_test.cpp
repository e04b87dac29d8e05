#include "core/atomicfile.h"
#include "core/keyedarchive.h"
#include "core/places.h"
#include "core/record.h"
#include "core/settings.h"
#include "posting/itemcalculation.h"
#include "posting/numberformat.h"
#include "program/demobook.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

using namespace zifora;
namespace fs = std::filesystem;

namespace {

struct TemporaryHome {
    TemporaryHome() {
        std::string pattern = (fs::temp_directory_path() / "zifora-demo-test-XXXXXX").string();
        path = mkdtemp(pattern.data());
    }
    ~TemporaryHome() {
        std::error_code ec;
        fs::remove_all(path, ec);
    }
    std::string database() const { return path + "/.local/share/Zifora/Zifora.zfdb4"; }
    std::string path;
};

// The one client of the database file, read back from disk.
core::Ref<core::Record> clientOnDisk(const TemporaryHome& home) {
    auto root = core::readKeyedArchiveFile(home.database());
    if (!root) return {};
    const core::Value clients = (*root)["clients"];
    if (clients.asArray().size() != 1) return {};
    return clients.asArray().front().recordRef();
}

int monthOf(core::Date date) {
    const std::time_t t = static_cast<std::time_t>(date.unixSeconds());
    std::tm local{};
    localtime_r(&t, &local);
    return local.tm_mon + 1;
}

} // namespace

TEST(DemoBook, HoldsAYearOfPostingsOfEveryKindWithTheAmountsTheCalculationGives) {
    TemporaryHome home;
    auto book = program::makeDemoBook(home.path);
    ASSERT_TRUE(book) << book.error().message;
    ASSERT_EQ(book->periods.size(), 12u);
    EXPECT_EQ(book->databaseFile, home.database());

    core::Ref<core::Record> client = clientOnDisk(home);
    ASSERT_TRUE(client);
    EXPECT_EQ(client->getText("company"), "Muster Design Anna Beispiel");
    EXPECT_GT(client->accounts().size(), 100u); // the standard chart
    EXPECT_GE(client->groups().size(), 5u);
    EXPECT_GE(client->items().size(), 3u); // templates
    ASSERT_EQ(client->theYears().size(), 1u);
    core::Record& year = *client->theYears().front();
    EXPECT_EQ(year.getText("dateValue"), "2025");
    ASSERT_EQ(year.thelists().size(), 12u);

    const posting::TaxRates rates{19, 7, 0};
    std::set<std::pair<int, int>> kindsAndTags;
    size_t postings = 0;
    for (size_t m = 0; m < 12; ++m) {
        core::Record& period = *year.thelists()[m];
        EXPECT_EQ(period.getText("title"), book->periods[m].title);
        EXPECT_EQ(period.items().size(), book->periods[m].itemCount);
        for (const auto& item : period.items()) {
            ++postings;
            SCOPED_TRACE(period.getText("title") + ": " + item->getText("title"));
            EXPECT_EQ(monthOf(item->get("date").toDate()), static_cast<int>(m) + 1);
            EXPECT_FALSE(item->getText("accountNumber").empty());
            EXPECT_FALSE(item->getText("group").empty());
            const auto expected =
                posting::calculateItemAmounts(posting::itemAmountInputOf(*item, rates));
            EXPECT_EQ(item->getFloat("finalAmount"), expected.finalAmount);
            EXPECT_EQ(item->getFloat("finalAmountWithout"), expected.finalAmountWithout);
            EXPECT_EQ(item->getFloat("taxFee"), expected.taxFee);
            EXPECT_EQ(item->getFloat("openWith"), expected.openWith);
            EXPECT_NE(item->getFloat("finalAmount"), 0.0f);
            kindsAndTags.insert(
                {item->getInt("kind"), item->getBool("taxBool") ? item->getInt("taxTag") : 0});
        }
    }
    EXPECT_GE(postings, 250u);
    const std::set<std::pair<int, int>> everyClass{{1, 0}, {1, 1}, {1, 2}, {1, 3}, {2, 0},
                                                   {2, 1}, {2, 2}, {2, 4}, {2, 5}};
    EXPECT_EQ(kindsAndTags, everyClass);
}

TEST(DemoBook, LeavesTheAgreementToTheUserAndTheProgramSetUp) {
    TemporaryHome home;
    ASSERT_TRUE(program::makeDemoBook(home.path));
    core::Settings settings(core::Places::forHome(home.path).settingsFile);
    ASSERT_TRUE(settings.load());
    EXPECT_FALSE(settings.getBool("veryFirstAlertDone"));
    EXPECT_TRUE(settings.getBool("isSetupDone"));
    EXPECT_TRUE(settings.getBool("isMigration_4.0_done"));
    EXPECT_EQ(settings.getString("prefsCompany"), "Muster Design Anna Beispiel");
    EXPECT_EQ(settings.getInteger("listControllerSelectionIndex"), 2); // March
}

TEST(DemoBook, IsTheSameBookEveryTime) {
    TemporaryHome first, second;
    auto a = program::makeDemoBook(first.path);
    auto b = program::makeDemoBook(second.path);
    ASSERT_TRUE(a && b);
    auto bytesA = core::readWholeFile(first.database());
    auto bytesB = core::readWholeFile(second.database());
    ASSERT_TRUE(bytesA && bytesB);
    EXPECT_TRUE(*bytesA == *bytesB);
    std::string reportB = program::demoBookReport(*b);
    for (size_t at; (at = reportB.find(second.path)) != std::string::npos;)
        reportB.replace(at, second.path.size(), first.path);
    EXPECT_EQ(program::demoBookReport(*a), reportB);
}

TEST(DemoBook, TheReportNamesEveryPeriodItsTotalsAndThePlaceOfTheBook) {
    TemporaryHome home;
    auto book = program::makeDemoBook(home.path);
    ASSERT_TRUE(book);
    const std::string report = program::demoBookReport(*book);
    const posting::AmountFormats formats;
    for (const auto& period : book->periods) {
        EXPECT_NE(report.find(period.title + " "), std::string::npos) << period.title;
        EXPECT_NE(report.find(formats.byTotalRule(period.totals.figures.saldo)), std::string::npos);
    }
    EXPECT_NE(report.find(home.database()), std::string::npos);
}

TEST(DemoBook, NeverTouchesAHomeThatHoldsZiforaData) {
    for (const std::string relative :
         {".local/share/Zifora/Zifora.zfdb4", ".config/Zifora/Zifora.plist"}) {
        TemporaryHome home;
        const fs::path existing = fs::path(home.path) / relative;
        fs::create_directories(existing.parent_path());
        {
            std::FILE* f = std::fopen(existing.c_str(), "w");
            std::fputs("meine Daten", f);
            std::fclose(f);
        }
        auto book = program::makeDemoBook(home.path);
        ASSERT_FALSE(book);
        EXPECT_NE(book.error().message.find(existing.string()), std::string::npos);
        auto bytes = core::readWholeFile(existing.string());
        ASSERT_TRUE(bytes);
        EXPECT_EQ(std::string(bytes->begin(), bytes->end()), "meine Daten");
        std::set<std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(home.path))
            if (entry.is_regular_file()) files.insert(entry.path().string());
        EXPECT_EQ(files, std::set<std::string>{existing.string()});
    }
}
