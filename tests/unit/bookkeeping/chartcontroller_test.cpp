#include "bookkeeping/chartcontroller.h"

#include "core/atomicfile.h"
#include "core/keyedarchive.h"
#include "masterdatafixture.h"

#include <gtest/gtest.h>

namespace zifora::bookkeeping::testing {
using namespace shell;
namespace {

namespace fs = std::filesystem;
using core::Value;

class ChartControllerTest : public MasterDataTest {
  protected:
    ChartControllerTest() : m_charts(*m_headless.program.feature<ChartController>()) {
        fs::create_directories(fs::path(m_home) / "charts");
    }

    /// Writes a chart archive of the given number/title pairs in place of a built-in one.
    void writeChart(core::BuiltInChart chart,
                    std::vector<std::pair<std::string, std::string>> rows) {
        core::ArrayElements accounts;
        for (const auto& [number, title] : rows) {
            auto account = core::Record::make(core::RecordClass::Account, core::Date{0});
            account->set("number", Value::string(number));
            account->set("title", Value::string(title));
            accounts.push_back(Value::record(account));
        }
        writeFile(chart,
                  core::encodeKeyedArchive(Value::dict({{"accounts", Value::array(accounts)}})));
    }
    void writeFile(core::BuiltInChart chart, const std::string& bytes) {
        ASSERT_TRUE(
            core::writeFileAtomically(fs::path(m_home) / "charts" / chartFileName(chart), bytes));
    }

    ChartController& m_charts;
};

TEST_F(ChartControllerTest, LoadingAskedReplacesTheAccountsOnlyOnTheFirstButton) {
    addAccount("1", "Alt");
    writeChart(core::BuiltInChart::Minimal, {{"1600", "Kasse"}, {"1800", "Bank"}});

    m_ui.queueAnswer(0);
    m_app.commands().run("loadMinimalAccounts:");
    EXPECT_EQ(column(client().accounts(), "title"), "Alt");
    std::string events = takeEvents();
    EXPECT_NE(events.find("\"title\":\"Minimal Kontenrahmen laden\""), std::string::npos) << events;
    EXPECT_NE(events.find("\"buttons\":[\"Minimal Set\",\"Abbrechen\"]"), std::string::npos)
        << events;

    m_ui.queueAnswer(1);
    m_app.commands().run("loadMinimalAccounts:");
    EXPECT_EQ(column(client().accounts(), "number"), "1600|1800");
    EXPECT_EQ(m_app.selection().accounts.count(), 2u) << "the account list shows the new chart";
    EXPECT_EQ(m_app.selection().accounts.selected(), client().accounts()[0].get());
}

TEST_F(ChartControllerTest, EachCommandLoadsItsOwnChartAndTheSetupVariantsDoNotAsk) {
    writeChart(core::BuiltInChart::Complete, {{"0001", "K"}});
    writeChart(core::BuiltInChart::Standard, {{"0002", "S"}});
    writeChart(core::BuiltInChart::Minimal, {{"0003", "M"}});
    const std::pair<const char*, const char*> commands[] = {
        {"loadCompleteAccountsSetup:", "0001"}, {"loadDefaultAccountsSetup:", "0002"},
        {"loadMinimalAccountsSetup:", "0003"},  {"loadCompleteAccounts:", "0001"},
        {"loadDefaultAccounts:", "0002"},       {"loadMinimalAccounts:", "0003"}};
    for (const auto& [command, number] : commands) {
        takeEvents();
        m_app.commands().run(command);
        EXPECT_EQ(column(client().accounts(), "number"), number) << command;
        bool asked = takeEvents().find("\"alert\"") != std::string::npos;
        EXPECT_EQ(asked, !std::string(command).ends_with("Setup:")) << command;
    }
}

TEST_F(ChartControllerTest, ItemsKeepTheAccountTheyNameWhenTheChartIsReplaced) {
    addAccount("4400", "Erlöse 19 % USt");
    auto year = core::Record::make(core::RecordClass::Year, m_clock.now());
    auto period = core::Record::make(core::RecordClass::Thelist, m_clock.now());
    auto item = core::Record::make(core::RecordClass::Item, m_clock.now());
    item->set("account", Value::string("Erlöse 19 % USt"));
    item->set("accountNumber", Value::string("4400"));
    period->items().push_back(item);
    year->thelists().push_back(period);
    client().theYears().push_back(year);
    writeChart(core::BuiltInChart::Standard, {{"8400", "Erlöse 19 % USt"}});

    m_app.commands().run("loadDefaultAccountsSetup:");
    EXPECT_EQ(column(client().accounts(), "number"), "8400");
    EXPECT_EQ(item->getText("accountNumber"), "4400");
    EXPECT_EQ(item->getText("account"), "Erlöse 19 % USt");
}

TEST_F(ChartControllerTest, AMissingChartLeavesNoAccountsAndSaysNothing) {
    addAccount("1", "Alt");
    m_app.commands().run("loadCompleteAccountsSetup:");
    EXPECT_TRUE(client().accounts().empty());
    EXPECT_EQ(takeEvents(), "");

    addAccount("1", "Alt");
    ChartController nowhere(m_app, std::nullopt); // a second one, without charts
    nowhere.loadChart(core::BuiltInChart::Minimal, /*ask=*/false);
    EXPECT_TRUE(client().accounts().empty());
}

TEST_F(ChartControllerTest, AnUnreadableChartIsRefusedAndTheAccountsStay) {
    addAccount("1", "Alt");
    writeFile(core::BuiltInChart::Standard, "bplist00 broken");
    m_app.commands().run("loadDefaultAccountsSetup:");
    EXPECT_EQ(column(client().accounts(), "title"), "Alt");
    std::string events = takeEvents();
    EXPECT_NE(events.find("\"title\":\"Fehler!\""), std::string::npos) << events;
    EXPECT_NE(events.find("Deine Konten bleiben unverändert."), std::string::npos) << events;
}

TEST_F(ChartControllerTest, AnArchiveWithoutAccountsGivesAnEmptyChart) {
    addAccount("1", "Alt");
    writeFile(core::BuiltInChart::Minimal,
              core::encodeKeyedArchive(Value::dict({{"clients", Value::array({})}})));
    m_app.commands().run("loadMinimalAccountsSetup:");
    EXPECT_TRUE(client().accounts().empty());

    // Elements that are no records can't stand in a list of accounts and are passed over.
    writeFile(core::BuiltInChart::Minimal,
              core::encodeKeyedArchive(Value::dict(
                  {{"accounts",
                    Value::array({Value::string("x"), Value::record(core::Record::make(
                                                          core::RecordClass::Account, {}))})}})));
    m_app.commands().run("loadMinimalAccountsSetup:");
    EXPECT_EQ(column(client().accounts(), "number"), "Nummer");
}

TEST(AccountsCSV, QuotesEachValueAndKeepsWhatIsInside) {
    auto a = core::Record::make(core::RecordClass::Account, {});
    a->set("number", Value::string("6815"));
    a->set("title", Value::string("Bürobedarf; \"Papier\""));
    auto b = core::Record::make(core::RecordClass::Account, {});
    b->properties().remove("number");
    b->set("title", Value::floatValue(7.5f));
    EXPECT_EQ(ChartController::accountsCSV({a.get(), b.get()}),
              "\"6815\";\"Bürobedarf; \"Papier\"\"\n\"(null)\";\"7.5\"\n");
    EXPECT_EQ(ChartController::accountsCSV({}), "");
}

TEST_F(ChartControllerTest, TheCSVExportWritesTheChartInListOrderAfterTheDialog) {
    addAccount("6815", "Bürobedarf");
    addAccount("1600", "Kasse; Haupt");
    m_settings.set("prefsCompany", Value::string("Muster GmbH"));
    std::string path = m_home + "/Konten.csv";

    m_ui.queueChoice(std::nullopt);
    m_app.commands().run("exportAccountsCSV:");
    EXPECT_FALSE(fs::exists(path));
    std::string events = takeEvents();
    EXPECT_NE(
        events.find(
            "{\"dialog\":{\"kind\":\"save\",\"title\":\"CSV Datei Exportieren\",\"extensions\":"
            "[\"csv\"],\"suggested\":\"Kontenrahmen Muster GmbH\""),
        std::string::npos)
        << events;

    m_ui.queueChoice(path);
    m_app.commands().run("exportAccountsCSV:");
    EXPECT_EQ(core::readWholeFile(path).value_or("?"),
              "\"6815\";\"Bürobedarf\"\n\"1600\";\"Kasse; Haupt\"\n");
    EXPECT_NE(takeEvents().find("{\"file\":{\"written\":\"" + path + "\"}}"), std::string::npos);
}

TEST_F(ChartControllerTest, TheCSVExportOfAnEmptyChartIsAnEmptyFileAndTheNameMayLackTheCompany) {
    std::string path = m_home + "/leer.csv";
    m_ui.queueChoice(path);
    m_app.commands().run("exportAccountsCSV:");
    EXPECT_EQ(core::readWholeFile(path).value_or("?"), "");
    EXPECT_NE(takeEvents().find("\"suggested\":\"Kontenrahmen (null)\""), std::string::npos);
}

TEST_F(ChartControllerTest, AFailedCSVWriteLeavesNoFileAndNoWrittenEvent) {
    addAccount("1", "A");
    m_ui.queueChoice(m_home + "/kein/Ordner/x.csv");
    m_app.commands().run("exportAccountsCSV:");
    EXPECT_EQ(takeEvents().find("\"file\""), std::string::npos);
}

} // namespace
} // namespace zifora::bookkeeping::testing
