#include "core/settings.h"

#include "core/atomicfile.h"
#include "core/settingskeys.h"

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <optional>

#include <sys/resource.h>
#include <unistd.h>

namespace zifora::core {
namespace {

namespace fs = std::filesystem;

class SettingsFile : public ::testing::Test {
  protected:
    void SetUp() override {
        m_folder = fs::temp_directory_path() /
                   ("zifora-settings-" + std::to_string(::getpid()) + "-" +
                    ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(m_folder);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    fs::path file() const { return m_folder / "Zifora" / "Zifora.plist"; }
    /// A second store that reads what the first one flushed.
    Settings reloaded() const {
        Settings store(file());
        auto loaded = store.load();
        EXPECT_TRUE(loaded.has_value()) << loaded.error().message;
        return store;
    }
    void writeFile(std::string_view content) {
        fs::create_directories(file().parent_path());
        ASSERT_TRUE(writeFileAtomically(file(), content));
    }

    fs::path m_folder;
};

TEST(SettingsStore, AFreshStoreReadsFalseZeroAndNothing) {
    Settings store("/nonexistent/Zifora.plist");
    for (const SettingInfo& info : allSettings()) {
        EXPECT_FALSE(store.contains(info.key)) << info.key;
        EXPECT_TRUE(store.get(info.key).isAbsent()) << info.key;
        EXPECT_FALSE(store.getBool(info.key)) << info.key;
        EXPECT_EQ(store.getInteger(info.key), 0) << info.key;
        EXPECT_EQ(store.getFloat(info.key), 0.0f) << info.key;
        EXPECT_EQ(store.getString(info.key), "") << info.key;
    }
}

TEST(SettingsStore, ReadsFollowDictionarySemantics) {
    Settings store("unused.plist");
    store.setString("customSplitValue", "30,5 %");
    EXPECT_EQ(store.getFloat("customSplitValue"), 30.0f);
    EXPECT_EQ(store.getInteger("customSplitValue"), 30);
    store.setFloat("prefs1Rate", 19.0f);
    EXPECT_TRUE(store.getBool("prefs1Rate"));
    EXPECT_EQ(store.getString("prefs1Rate"), "19");
    store.setBool("isSaveAllowed", true);
    EXPECT_EQ(store.getString("isSaveAllowed"), "1");
    store.set("isSaveAllowed", Value{});
    EXPECT_FALSE(store.contains("isSaveAllowed"));
    // The key of the kind notes is the store's own.
    store.setString(Settings::kKindNotesKey, "x");
    EXPECT_FALSE(store.contains(Settings::kKindNotesKey));
}

TEST(SettingsRegistry, KnowsEveryKeyWithItsType) {
    EXPECT_EQ(allSettings().size(), 144u);
    auto typeOf = [](std::string_view key) -> std::optional<SettingType> {
        const SettingInfo* info = settingInfo(key);
        return info ? std::optional(info->type) : std::nullopt;
    };
    EXPECT_EQ(typeOf("prefs3Rate"), SettingType::Float);
    EXPECT_EQ(typeOf("tab-saldoField"), SettingType::Float);
    EXPECT_EQ(typeOf("yearControllerSelectionIndex"), SettingType::Integer);
    EXPECT_EQ(typeOf("importTaxBool"), SettingType::Integer);
    EXPECT_EQ(typeOf("isWelcomeerShown"), SettingType::Bool);
    EXPECT_EQ(typeOf("loadInPreview.app"), SettingType::Bool);
    EXPECT_EQ(typeOf("prefsCompany"), SettingType::Text);
    EXPECT_EQ(typeOf("rememberDate"), SettingType::Date);
    EXPECT_EQ(typeOf("UpdateChecker:LastCheckDate"), SettingType::Date);
    EXPECT_EQ(typeOf("UpdateChecker:CheckAtStartup"), SettingType::Bool);
    EXPECT_EQ(typeOf("customSplitValue"), SettingType::Number);
    EXPECT_EQ(typeOf("prefsAlwaysShowItemHelpDrawer"), std::nullopt);
    EXPECT_EQ(typeOf(""), std::nullopt);
}

TEST_F(SettingsFile, KeepsEveryKindAcrossFlushAndLoad) {
    Settings store(file());
    store.setFloat("prefs1Rate", 0.1f);
    store.setFloat("prefs2Rate", 19.0f);
    store.setFloat("tab-saldoField", -0.0f);
    store.setFloat("tab-tax1AmountField", 1e-7f);
    store.setFloat("unbekannt float", 0.1f);
    store.set("prefs3Rate", Value::doubleValue(0.1));
    store.set("unbekannt double", Value::doubleValue(2.5));
    store.setInteger("yearControllerSelectionIndex", std::numeric_limits<int64_t>::max());
    store.setInteger("backupCount", -12);
    store.set("unbekannt int", Value::intValue(-7));
    store.setBool("isSaveAllowed", true);
    store.setBool("firstStepsDone", false);
    store.setString("prefsCompany", "Müller & Söhne <GmbH> \"Ä\" 'ß' ]]>");
    store.setString("Schlüssel <&> \"mit\" Ümlaut", "");
    store.setDate("rememberDate", Date{725846400});
    store.setDate("UpdateChecker:LastCheckDate", Date{725846400.25});
    store.setDate("früher", Date{-86400.75});
    store.set("bild", Value::image("miniItemGreen"));
    store.set("bytes", Value::data(std::string("\0\1\2", 3)));
    store.set("liste",
              Value::array({Value::string("a"), Value::dict({{"b", Value::boolean(true)}})}));
    ASSERT_TRUE(store.flush());

    Settings back = reloaded();
    EXPECT_EQ(back.all(), store.all());
    EXPECT_EQ(back.get("prefs1Rate"), Value::floatValue(0.1f));
    EXPECT_EQ(back.get("tab-saldoField"), Value::floatValue(-0.0f));
    EXPECT_EQ(back.getInteger("yearControllerSelectionIndex"), std::numeric_limits<int64_t>::max());

    // Flushing what was loaded gives the same file again.
    std::string first = readWholeFile(file()).value_or("");
    ASSERT_TRUE(back.flush());
    EXPECT_EQ(readWholeFile(file()).value_or(""), first);
}

TEST_F(SettingsFile, AFileOfAnotherWriterReadsByTheRegistry) {
    writeFile(R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
  <key>prefs1Rate</key><real>19.0</real>
  <key>prefs2Rate</key><real>0.1</real>
  <key>other</key><real>0.1</real>
  <key>clientControllerSelectionIndex</key><integer>9223372036854775807</integer>
  <key>rememberDate</key><date>2024-01-02T03:04:05Z</date>
  <key>prefsCompany</key><string>Grüße</string>
</dict></plist>)");
    Settings store = reloaded();
    EXPECT_EQ(store.get("prefs1Rate"), Value::floatValue(19.0f));
    EXPECT_EQ(store.get("prefs2Rate"), Value::floatValue(0.1f));
    EXPECT_EQ(store.get("other"), Value::doubleValue(0.1));
    EXPECT_EQ(store.get("clientControllerSelectionIndex"),
              Value::integer(std::numeric_limits<int64_t>::max()));
    EXPECT_EQ(store.get("rememberDate"), Value::date(Date::fromUnix(1704164645)));
    EXPECT_EQ(store.getString("prefsCompany"), "Grüße");
}

TEST_F(SettingsFile, KindNotesThatNoLongerFitAreIgnored) {
    // The date was changed by hand after the exact seconds were noted; the note of "x" names
    // a kind its element can't have.
    writeFile(R"(<plist version="1.0"><dict>
  <key>rememberDate</key><date>2001-01-01T00:00:05Z</date>
  <key>x</key><string>text</string>
  <key>Zifora:ValueKinds</key><dict>
    <key>rememberDate</key><real>2.5</real>
    <key>x</key><string>float</string>
  </dict>
</dict></plist>)");
    Settings store = reloaded();
    EXPECT_EQ(store.get("rememberDate"), Value::date(Date{5}));
    EXPECT_EQ(store.get("x"), Value::string("text"));
    EXPECT_FALSE(store.contains(Settings::kKindNotesKey));
}

TEST_F(SettingsFile, AMissingFileIsAnEmptyStoreAndABrokenOneAnError) {
    Settings store(file());
    store.setBool("isSaveAllowed", true);
    ASSERT_TRUE(store.load());
    EXPECT_TRUE(store.all().empty());

    for (std::string_view broken :
         {"<plist version=\"1.0\"><dict><key>a</key><true/>",
          "<plist version=\"1.0\"><array><true/></array></plist>",
          "<plist version=\"1.0\"><dict><key>a</key><string>&bogus;</string></dict></plist>"}) {
        writeFile(broken);
        store.setBool("isSaveAllowed", true);
        auto loaded = store.load();
        ASSERT_FALSE(loaded) << broken;
        EXPECT_EQ(loaded.error().message.rfind(file().string() + ": ", 0), 0u)
            << loaded.error().message;
        EXPECT_TRUE(store.all().empty());
    }
}

TEST_F(SettingsFile, AFailedFlushKeepsTheOldFile) {
    Settings store(file());
    store.setString("prefsCompany", "alt");
    ASSERT_TRUE(store.flush());
    // A file-size limit makes the write fail part of the way, for any user.
    store.setString("prefsCompany", std::string(100000, 'n'));
    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    rlimit small = saved;
    small.rlim_cur = 4096;
    auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    auto flushed = store.flush();
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    ASSERT_FALSE(flushed);
    EXPECT_NE(flushed.error().message.find("Zifora.plist"), std::string::npos);
    EXPECT_EQ(reloaded().getString("prefsCompany"), "alt");
}

// An item's date far outside the calendar once made every later flush fail. Such dates are
// kept as their seconds: at the top level they come back as dates, deeper as numbers.
TEST_F(SettingsFile, DatesOutsideTheYearsOneTo9999StaySavable) {
    const double kFar = 1e15, kBefore = -7e10; // some 31 million years on; the year 0
    Settings store(file());
    store.setDate("rememberDate", Date{kFar});
    store.setDate("early", Date{kBefore});
    store.setDate("nan", Date{std::numeric_limits<double>::quiet_NaN()});
    store.setFloat("prefs1Rate", 19); // a key the registry types as a float
    store.set("prefs2Rate", Value::date(Date{kFar}));
    store.set("nested", Value::array({Value::date(Date{kFar}), Value::date(Date{0})}));
    auto flushed = store.flush();
    ASSERT_TRUE(flushed) << flushed.error().message;
    const Settings back = reloaded();
    ASSERT_EQ(back.get("rememberDate").kind(), Kind::Date);
    EXPECT_EQ(back.get("rememberDate").asDate().sinceReferenceDate, kFar);
    EXPECT_EQ(back.get("early").asDate().sinceReferenceDate, kBefore);
    EXPECT_TRUE(std::isnan(back.get("nan").asDate().sinceReferenceDate));
    EXPECT_EQ(back.get("prefs1Rate").kind(), Kind::Float);
    ASSERT_EQ(back.get("prefs2Rate").kind(), Kind::Date);
    EXPECT_EQ(back.get("prefs2Rate").asDate().sinceReferenceDate, kFar);
    const Value nested = back.get("nested");
    ASSERT_EQ(nested.asArray().size(), 2u);
    EXPECT_EQ(nested.asArray()[0].toDouble(), kFar);
    EXPECT_EQ(nested.asArray()[1].kind(), Kind::Date);
    // A date that fits again is written as an ordinary date, without the note.
    Settings again = back;
    again.setDate("rememberDate", Date{0});
    ASSERT_TRUE(again.flush());
    EXPECT_EQ(reloaded().get("rememberDate").kind(), Kind::Date);
    EXPECT_EQ(reloaded().get("rememberDate").asDate().sinceReferenceDate, 0);
}

TEST(SettingsLocation, FollowsTheConfigFolderOfTheEnvironment) {
    auto saved = [](const char* name) -> std::optional<std::string> {
        const char* value = std::getenv(name);
        return value ? std::optional<std::string>(value) : std::nullopt;
    };
    auto restore = [](const char* name, const std::optional<std::string>& value) {
        if (value)
            ::setenv(name, value->c_str(), 1);
        else
            ::unsetenv(name);
    };
    auto home = saved("HOME"), config = saved("XDG_CONFIG_HOME");
    ::setenv("HOME", "/home/anna", 1);
    ::setenv("XDG_CONFIG_HOME", "/srv/config", 1);
    EXPECT_EQ(defaultSettingsFile(), fs::path("/srv/config/Zifora/Zifora.plist"));
    ::setenv("XDG_CONFIG_HOME", "relative/config", 1);
    EXPECT_EQ(defaultSettingsFile(), fs::path("/home/anna/.config/Zifora/Zifora.plist"));
    ::unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(defaultSettingsFile(), fs::path("/home/anna/.config/Zifora/Zifora.plist"));
    restore("HOME", home);
    restore("XDG_CONFIG_HOME", config);
}

} // namespace
} // namespace zifora::core
