#include "core/chartfiles.h"

#include "core/keyedarchive.h"
#include "core/record.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>

#include <unistd.h>

namespace zifora::core {
namespace {

namespace fs = std::filesystem;

class ChartsFolder : public ::testing::Test {
  protected:
    void SetUp() override {
        m_root = fs::temp_directory_path() /
                 ("zifora-chartsfolder-" + std::to_string(::getpid()) + "-" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(m_root);
    }
    void TearDown() override { fs::remove_all(m_root); }

    void touch(const fs::path& file) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "x";
    }

    fs::path m_root;
};

TEST_F(ChartsFolder, ABuildTreeIsFoundFromTheProgramsFolderUpwards) {
    touch(m_root / "build/resources/charts/DATEV_2013_Minimal.kmdb");
    EXPECT_EQ(findChartsFolder(m_root / "build/app/cli/zifora-cli"),
              m_root / "build/resources/charts");
    EXPECT_EQ(findChartsFolder(m_root / "build/tests/unit_shell"),
              m_root / "build/resources/charts");
}

TEST_F(ChartsFolder, AnInstalledProgramFindsItsShareFolderFirst) {
    touch(m_root / "usr/share/zifora/charts/DATEV_2013_Complete.kmdb");
    touch(m_root / "usr/resources/charts/DATEV_2013_Complete.kmdb");
    EXPECT_EQ(findChartsFolder(m_root / "usr/bin/zifora"), m_root / "usr/share/zifora/charts");
}

TEST_F(ChartsFolder, AFolderWithoutChartsDoesNotCount) {
    // The source tree's resources/charts holds only the plain lists.
    touch(m_root / "src/resources/charts/DATEV_2013_Complete.txt");
    EXPECT_EQ(findChartsFolder(m_root / "src/build/zifora"), std::nullopt);
    EXPECT_EQ(findChartsFolder("zifora"), std::nullopt);
}

// The charts the build made: each must load as a list of accounts the program can use.
std::map<std::string, std::string> builtChart(BuiltInChart chart) {
    fs::path path = fs::path(ZIFORA_BINARY_DIR) / "resources/charts" / chartFileName(chart);
    auto root = core::readKeyedArchiveFile(path);
    EXPECT_TRUE(root.has_value()) << path;
    std::map<std::string, std::string> accounts;
    if (!root) return accounts;
    core::Value list = (*root)["accounts"];
    EXPECT_EQ(list.kind(), core::Kind::Array);
    if (list.kind() != core::Kind::Array) return accounts;
    for (const core::Value& v : list.asArray()) {
        EXPECT_EQ(v.kind(), core::Kind::Record);
        if (v.kind() != core::Kind::Record) continue;
        core::Record* account = v.asRecord();
        EXPECT_EQ(account->recordClass(), core::RecordClass::Account);
        EXPECT_EQ(account->get("number").kind(), core::Kind::String);
        std::string number = account->getText("number");
        EXPECT_EQ(number.size(), 4u) << number;
        EXPECT_TRUE(accounts.emplace(number, account->getText("title")).second)
            << "twice: " << number;
        EXPECT_EQ(account->getText("image"), "");
    }
    return accounts;
}

TEST(BuiltInCharts, TheSmallerChartsAreTrueExtractsOfTheCompleteOne) {
    auto complete = builtChart(BuiltInChart::Complete);
    auto standard = builtChart(BuiltInChart::Standard);
    auto minimal = builtChart(BuiltInChart::Minimal);
    EXPECT_GT(complete.size(), 1000u);
    EXPECT_GE(standard.size(), 200u);
    EXPECT_LE(standard.size(), 500u);
    EXPECT_GE(minimal.size(), 30u);
    EXPECT_LE(minimal.size(), 60u);
    for (const auto* subset : {&standard, &minimal})
        for (const auto& [number, title] : *subset) {
            auto it = complete.find(number);
            ASSERT_NE(it, complete.end()) << number;
            EXPECT_EQ(it->second, title) << number;
        }
    for (const auto& [number, title] : minimal)
        EXPECT_TRUE(standard.contains(number)) << number;
}

TEST(BuiltInCharts, TheEverydayAccountsStandWhereTheChartPutsThem) {
    auto complete = builtChart(BuiltInChart::Complete);
    const std::map<std::string, std::string> expected{
        {"1406", "Abziehbare Vorsteuer 19 %"},
        {"1401", "Abziehbare Vorsteuer 7 %"},
        {"1600", "Kasse"},
        {"1800", "Bank"},
        {"2100", "Privatentnahmen allgemein"},
        {"2180", "Privateinlagen"},
        {"3806", "Umsatzsteuer 19 %"},
        {"3820", "Umsatzsteuer-Vorauszahlungen"},
        {"4400", "Erlöse 19 % USt"},
        {"4300", "Erlöse 7 % USt"},
        {"6815", "Bürobedarf"},
        {"6805", "Telefon"},
        {"6260", "Sofortabschreibungen geringwertiger Wirtschaftsgüter"}};
    for (const auto& [number, title] : expected)
        EXPECT_EQ(complete[number], title) << number;
}

} // namespace
} // namespace zifora::core
