// The catalog of the whole program: every command once, every command a user sees with its
// German words, no menu with a raw action name, and the parts the desktop needs reachable.

#include "program/headlessprogram.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

namespace zifora::program {
namespace {

struct Whole {
    std::ostringstream out;
    HeadlessProgram headless{out, core::Places::forHome("/nonexistent"), core::Date{0},
                             Resources{}};
    shell::CommandCatalog& commands = headless.session().commands();
};

TEST(Catalog, NoNameIsRegisteredTwice) {
    Whole program;
    EXPECT_EQ(program.commands.duplicates(), std::vector<std::string>{});
    EXPECT_GT(program.commands.names().size(), 100u);
}

TEST(Catalog, ASecondRegistrationKeepsTheFirstCommandAndIsNoted) {
    shell::CommandCatalog catalog;
    int first = 0, second = 0;
    catalog.add("save:", [&](const shell::CommandSender&) { ++first; });
    catalog.add("save:", [&](const shell::CommandSender&) { ++second; });
    EXPECT_TRUE(catalog.run("save:").has_value());
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(catalog.duplicates(), std::vector<std::string>{"save:"});
    EXPECT_FALSE(catalog.run("nichtDa:").has_value());
}

TEST(Catalog, EveryCommandAUserSeesHasGermanWordsAndAPlace) {
    Whole program;
    std::map<shell::Menu, std::set<std::string>> shortcuts;
    for (const shell::CommandInfo* info : program.commands.all()) {
        if (info->internal) {
            EXPECT_EQ(info->menu, shell::Menu::None) << info->name;
            continue;
        }
        EXPECT_FALSE(info->label.empty()) << info->name;
        EXPECT_NE(info->label, info->name);
        EXPECT_EQ(info->label.find(':'), std::string::npos) << info->label;
        if (!info->shortcut.empty()) {
            EXPECT_TRUE(shortcuts[shell::Menu::None].insert(info->shortcut).second)
                << info->shortcut << " twice";
        }
    }
}

TEST(Catalog, TheMenusHoldWhatTheDesktopOffersAndNoStepOfTheProgram) {
    Whole program;
    for (const char* name : {"save:", "showPrefs:", "runKontenwerker:", "addYear:", "addItem:",
                             "createClient:", "setLibraryPath:", "migrateWithTag:", "showAbout:"}) {
        const shell::CommandInfo* info = program.commands.info(name);
        ASSERT_NE(info, nullptr) << name;
        EXPECT_NE(info->menu, shell::Menu::None) << name;
    }
    for (const char* name : {"application:openFile:", "init", "awakeFromNib", "saveDataToDisk",
                             "closeItemSheet:", "calculateTabVoid"}) {
        const shell::CommandInfo* info = program.commands.info(name);
        ASSERT_NE(info, nullptr) << name;
        EXPECT_EQ(info->menu, shell::Menu::None) << name;
    }
    // The today command belongs to the item form, not to the window's menu keys.
    EXPECT_EQ(program.commands.info("setToday:")->menu, shell::Menu::None);
}

TEST(Catalog, MenuTitlesHaveOneMnemonicEachAndNoTwoShareIt) {
    std::set<char> seen;
    for (shell::Menu menu :
         {shell::Menu::File, shell::Menu::Books, shell::Menu::Items, shell::Menu::MasterData,
          shell::Menu::Clients, shell::Menu::Places, shell::Menu::Database, shell::Menu::Help}) {
        const std::string title(shell::menuTitle(menu));
        const size_t amp = title.find('&');
        ASSERT_NE(amp, std::string::npos) << title;
        ASSERT_LT(amp + 1, title.size());
        EXPECT_TRUE(seen.insert(static_cast<char>(std::tolower(title[amp + 1]))).second) << title;
    }
    // The window menu of the desktop program takes F, the window's item list O.
    EXPECT_FALSE(seen.contains('f'));
    EXPECT_FALSE(seen.contains('o'));
}

TEST(Catalog, HandlersSayWhetherTheyWereDoneRefusedOrCancelled) {
    Whole program;
    shell::Session& session = program.headless.session();
    // No client: the year is refused with the alert's words.
    auto refused = session.run("addYear:");
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->outcome, shell::Outcome::Refused);
    EXPECT_EQ(refused->refusal, "Du musst erst einen Benutzer anlegen.");

    session.setClients({core::Record::make(core::RecordClass::Client, core::Date{0})});
    session.selectionChanged();
    EXPECT_EQ(session.run("addYear:")->outcome, shell::Outcome::Done);
    session.fields().set("yearPopUp", core::Value::string("2002")); // the clock stands in 2001
    EXPECT_EQ(session.run("closeYear:")->outcome, shell::Outcome::Done);
    // The question of the deletion answered with its second button.
    program.headless.services.ui.queueAnswer(0);
    EXPECT_EQ(session.run("deleteYear:")->outcome, shell::Outcome::Cancelled);
    EXPECT_EQ(session.selection().years.count(), 1u);
    // A void handler counts as done; a folder dialog cancelled cancels.
    EXPECT_EQ(session.run("setDocumentsPath:")->outcome, shell::Outcome::Cancelled);
    EXPECT_EQ(session.run("showAbout:")->outcome, shell::Outcome::Done);
}

} // namespace
} // namespace zifora::program
