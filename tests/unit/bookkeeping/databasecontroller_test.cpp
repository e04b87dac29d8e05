// Saving the book: a save that fails keeps what is on the disk, tells the user once per
// cause, and the next save tries again.

#include "core/keyedarchive.h"
#include "headlessbook.h"
#include "shell/events.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace zifora::bookkeeping {
namespace {

namespace fs = std::filesystem;
using fixtures::HeadlessBook;

size_t count(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++n;
    return n;
}

TEST(DatabaseController, AFailedSaveIsToldOnceKeepsWhatIsThereAndIsTriedAgain) {
    HeadlessBook book;
    book.settings.setBool("isSaveAllowed", true);
    book.settings.setBool("isMigration_4.0_done", true);
    std::vector<std::string> failures;
    book.app.events().subscribe<shell::DatabaseSaveFailed>(
        [&](const shell::DatabaseSaveFailed& failed) { failures.push_back(failed.cause); });

    // Something the save can't replace stands where the database goes.
    const fs::path database = fs::path(book.places.dataFolder) / "Zifora.zfdb4";
    fs::create_directories(database / "blockiert");
    std::ofstream(database / "blockiert" / "inhalt") << "bleibt";
    book.events();

    book.app.run("save:");
    book.app.run("autoSave:"); // as the timer saves every 30 seconds
    book.app.run("save:");
    const std::string told = book.events();
    EXPECT_EQ(failures.size(), 3u);
    EXPECT_EQ(count(told, "\"title\":\"Fehler!\""), 1u) << told;
    EXPECT_NE(told.find("Zifora.zfdb4"), std::string::npos);
    EXPECT_EQ(told.find("\"written\""), std::string::npos);
    EXPECT_TRUE(fs::exists(database / "blockiert" / "inhalt"));

    // Once the way is free the next save writes the book, and a new failure is told again.
    fs::remove_all(database);
    book.app.run("save:");
    EXPECT_NE(book.events().find("\"written\""), std::string::npos);
    auto root = core::readKeyedArchiveFile(database.string());
    ASSERT_TRUE(root);
    EXPECT_EQ((*root)["clients"].asArray().size(), 1u);
    fs::remove(database);
    fs::create_directories(database / "blockiert");
    book.app.run("save:");
    EXPECT_EQ(count(book.events(), "\"title\":\"Fehler!\""), 1u);
}

TEST(DatabaseController, AnUnreadableDatabaseIsNeverOverwritten) {
    HeadlessBook book;
    const fs::path database = fs::path(book.places.dataFolder) / "Zifora.zfdb4";
    std::ofstream(database) << "kein Archiv";
    book.settings.setBool("isMigration_4.0_done", true);
    book.app.run("loadDataFromDisk");
    EXPECT_NE(book.events().find("konnte nicht gelesen werden"), std::string::npos);
    book.settings.setBool("isSaveAllowed", true);
    book.app.run("save:");
    std::ifstream in(database);
    std::string content((std::istreambuf_iterator<char>(in)), {});
    EXPECT_EQ(content, "kein Archiv");
}

} // namespace
} // namespace zifora::bookkeeping
