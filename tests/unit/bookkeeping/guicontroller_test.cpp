#include "bookkeeping/guicontroller.h"

#include "core/jsondump.h"
#include "core/resourcefolders.h"
#include "testbed.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>

#include <unistd.h>

namespace zifora::bookkeeping {
using namespace shell;
namespace {

namespace fs = std::filesystem;

class TempFolder : public ::testing::Test {
  protected:
    void SetUp() override {
        m_root = fs::temp_directory_path() /
                 ("zifora-guicontroller-" + std::to_string(::getpid()) + "-" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(m_root);
    }
    void TearDown() override { fs::remove_all(m_root); }

    void touch(const fs::path& file) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "<p>Hilfe</p>";
    }

    fs::path m_root;
};

using HelpFolder = TempFolder;

TEST_F(HelpFolder, IsFoundBesideAnInstalledProgramFirstThenInTheBuildTree) {
    touch(m_root / "usr/share/zifora/help/index.html");
    touch(m_root / "usr/resources/help/index.html");
    EXPECT_EQ(core::findHelpFolder(m_root / "usr/bin/zifora"), m_root / "usr/share/zifora/help");
    touch(m_root / "build/resources/help/index.html");
    EXPECT_EQ(core::findHelpFolder(m_root / "build/app/cli/zifora-cli"),
              m_root / "build/resources/help");
}

TEST_F(HelpFolder, AFolderWithoutItsIndexDoesNotCount) {
    touch(m_root / "build/resources/help/posten.html");
    EXPECT_EQ(core::findHelpFolder(m_root / "build/app/gui/zifora"), std::nullopt);
    EXPECT_EQ(core::findHelpFolder("zifora"), std::nullopt);
}

TEST_F(HelpFolder, APageThatIsNotInstalledOpensOnTheProductSite) {
    touch(m_root / "help/index.html");
    testbed::TestBed bed;
    GUIController installed(bed.app, m_root / "help");
    EXPECT_EQ(installed.helpPageAddress("index.html"), (m_root / "help/index.html").string());
    EXPECT_EQ(installed.helpPageAddress("posten.html"), "https://www.zifora.de/hilfe/posten.html");
    GUIController missing(bed.app, std::nullopt);
    EXPECT_EQ(missing.helpPageAddress("index.html"), "https://www.zifora.de/hilfe/index.html");
}

// The pages the build copied: each local link leads to a page of the folder, and every page
// can be reached from the index.
TEST(BuiltHelp, EveryLinkLeadsToAPageAndEveryPageIsLinked) {
    const fs::path folder = fs::path(ZIFORA_BINARY_DIR) / "resources/help";
    ASSERT_EQ(core::findHelpFolder(fs::path(ZIFORA_BINARY_DIR) / "tests/unit_shell"), folder);
    const std::regex link(R"re((?:href|src)="([^"#:]+)")re");
    std::set<std::string> pages, linked{"index.html"};
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (entry.path().extension() != ".html") continue;
        pages.insert(name);
        std::ifstream in(entry.path());
        const std::string text((std::istreambuf_iterator<char>(in)), {});
        EXPECT_NE(text.find("<html lang=\"de\">"), std::string::npos) << name;
        for (std::sregex_iterator it(text.begin(), text.end(), link), end; it != end; ++it) {
            const std::string target = (*it)[1];
            EXPECT_TRUE(fs::is_regular_file(folder / target)) << name << " → " << target;
            if (name == "index.html") linked.insert(target);
        }
    }
    EXPECT_GE(pages.size(), 5u);
    for (const std::string& page : pages)
        EXPECT_TRUE(linked.contains(page)) << page << " is not linked from the index";
    for (std::string_view page : {"index.html", "hauptfenster.html"})
        EXPECT_TRUE(pages.contains(std::string(page))) << page;
}

class GUIControllerTest : public ::testing::Test {
  protected:
    /// The records and the settings as they are now.
    std::pair<std::string, std::map<std::string, core::Value, std::less<>>> snapshot() {
        return {core::dumpJson(m_bed.app.book().databaseRoot()), m_bed.settings.all()};
    }

    testbed::TestBed m_bed;
};

TEST_F(GUIControllerTest, TheSearchButtonShowsWhetherThereIsASearchText) {
    FormFields& fields = m_bed.app.fields();
    m_bed.run("showSearchPopover:");
    EXPECT_EQ(fields.text("searchButtonImage"), "searchTemplate");
    fields.set("searchField", core::Value::string("Miete"));
    m_bed.run("showSearchPopover:");
    EXPECT_EQ(fields.text("searchButtonImage"), "searchBlue");
    EXPECT_EQ(fields.text("searchField"), "Miete") << "the search reads the text later";
    fields.set("searchField", core::Value::string(""));
    m_bed.run("showSearchPopover:");
    EXPECT_EQ(fields.text("searchButtonImage"), "searchTemplate");
    EXPECT_EQ(m_bed.takeEvents(), "{\"window\":{\"show\":\"searchPopover\"}}\n"
                                  "{\"window\":{\"show\":\"searchPopover\"}}\n"
                                  "{\"window\":{\"show\":\"searchPopover\"}}\n");
}

TEST_F(GUIControllerTest, OnlyTheEndsOfTheAssistantAndOfTheNewsletterChangeSettings) {
    const auto before = snapshot();
    for (const char* command :
         {"showWelcome:", "closeWelcome:", "showAbout:", "closeAbout:", "selectAssi:",
          "cancelAssi:", "closeNewsletter:", "toggleHelp:", "toggleDocs:", "openSupport:",
          "openFeedback:", "openACK:", "openNewsletter:"})
        ASSERT_TRUE(m_bed.app.commands().run(command)) << command;
    for (std::string_view part : GUIController::kHelpSheets)
        for (const char* verb : {"openSheet", "closeSheet", "openSheet", "cancelSheet"})
            ASSERT_TRUE(m_bed.app.commands().run(verb + std::string(part) + ":")) << part;
    EXPECT_EQ(snapshot(), before);

    m_bed.run("finishAssi:");
    EXPECT_TRUE(m_bed.settings.getBool("isSetupDone"));
    EXPECT_EQ(m_bed.settings.getInteger("jaImage"), 2);
    EXPECT_FALSE(m_bed.settings.getBool("isWelcomeerShown"));
    m_bed.run("closeNewsletterForever:");
    EXPECT_TRUE(m_bed.settings.getBool("isWelcomeerShown"));
}

} // namespace
} // namespace zifora::bookkeeping
