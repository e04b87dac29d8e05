// Saving the book: a save that fails keeps what is on the disk, tells the user once per
// cause, and the next save tries again.

#include "core/atomicfile.h"
#include "core/keyedarchive.h"
#include "headlessbook.h"
#include "shell/events.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>

namespace zifora::bookkeeping {
namespace {

namespace fs = std::filesystem;
using fixtures::HeadlessBook;

size_t count(const std::string& text, const std::string& what) {
    size_t n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

/// The book of the fixture, taken as the start takes a book it found no file for.
void beginNew(HeadlessBook& book) {
    book.app.book().beginNew();
    book.app.setClients({book.client});
}

TEST(DatabaseController, AFailedSaveIsToldOnceKeepsWhatIsThereAndIsTriedAgain) {
    HeadlessBook book;
    beginNew(book);
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

std::string contentOf(const fs::path& path) {
    auto bytes = core::readWholeFile(path);
    return bytes.value_or("<unreadable>");
}

/// A database of one client, "Erhaltene GmbH", written as an earlier run would have.
fs::path writeBook(HeadlessBook& book) {
    const fs::path database = fs::path(book.places.dataFolder) / "Zifora.zfdb4";
    core::Ref<core::Record> client = core::Book::newInstallationClient(core::Date{0});
    client->set("company", core::Value::string("Erhaltene GmbH"));
    core::Value root =
        core::Value::dict({{"clients", core::Value::array({core::Value::record(client)})}});
    EXPECT_TRUE(core::writeKeyedArchiveFile(database.string(), root));
    return database;
}

std::string companyIn(const fs::path& database) {
    auto root = core::readKeyedArchiveFile(database.string());
    if (!root || (*root)["clients"].asArray().size() != 1) return "<kein Buch mit einem Benutzer>";
    return (*root)["clients"].asArray()[0].asRecord()->getText("company");
}

// Each way of losing the settings: the start reads the present database, says that the
// settings were lost, and a save keeps every client of the book.
TEST(DatabaseController, LostSettingsNeverCostTheBook) {
    const std::string valid =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
        "\t<key>isMigration_4.0_done</key>\n\t<true/>\n\t<key>isSetupDone</key>\n\t<true/>\n"
        "</dict>\n</plist>\n";
    const std::vector<std::pair<std::string, std::function<void(const fs::path&)>>> losses{
        {"gelöscht", [](const fs::path&) {}},
        {"leer", [](const fs::path& f) { std::ofstream(f) << ""; }},
        {"abgeschnitten", [&](const fs::path& f) { std::ofstream(f) << valid.substr(0, 90); }},
        {"kaputt", [](const fs::path& f) { std::ofstream(f) << "<plist><dict><key>x</plist>"; }},
        {"leeres dict",
         [](const fs::path& f) { std::ofstream(f) << "<plist version=\"1.0\"><dict/></plist>"; }},
        {"Text im Schlüssel",
         [](const fs::path& f) {
             std::ofstream(f) << "<plist version=\"1.0\"><dict><key>isMigration_4.0_done</key>"
                                 "<string>kaputt</string></dict></plist>";
         }},
        {"Einstellungsdatei ist ein Ordner",
         [](const fs::path& f) { fs::create_directories(f / "drin"); }},
        {"Konfigurationsordner ist eine Datei",
         [](const fs::path& f) {
             fs::remove_all(f.parent_path());
             std::ofstream(f.parent_path()) << "keine Ordner";
         }},
    };
    for (const auto& [name, lose] : losses) {
        SCOPED_TRACE(name);
        HeadlessBook book;
        const fs::path database = writeBook(book);
        const fs::path settingsFile = book.places.settingsFile;
        fs::create_directories(settingsFile.parent_path());
        lose(settingsFile);
        (void)core::loadSettingsSafely(book.settings);
        book.app.run("init");
        book.app.run("awakeFromNib");
        book.scheduler.advance(5);
        const std::string told = book.events();
        EXPECT_NE(told.find("\"text\":\"Die Einstellungen konnten nicht gelesen werden"),
                  std::string::npos)
            << told;
        EXPECT_EQ(told.find("Migration erfolgreich"), std::string::npos) << told;
        ASSERT_EQ(book.app.book().clients().size(), 1u);
        EXPECT_EQ(book.app.book().clients()[0]->getText("company"), "Erhaltene GmbH");
        book.app.run("applicationWillTerminate");
        EXPECT_EQ(companyIn(database), "Erhaltene GmbH");
        // The next start knows the book again and says nothing of lost settings.
        if (fs::is_directory(settingsFile.parent_path()) && !fs::is_directory(settingsFile)) {
            HeadlessBook::HomeAndOutput out{book.home};
            program::HeadlessProgram again(out.out, book.places, core::Date{800000000});
            (void)core::loadSettingsSafely(again.settings);
            again.session().run("init");
            again.session().run("awakeFromNib");
            EXPECT_EQ(out.out.str().find("Die Einstellungen konnten nicht"), std::string::npos);
            EXPECT_EQ(again.session().book().clients().size(), 1u);
        }
    }
}

// Only where no database is does the first start make one, and an old database is read
// beside the present one, never over it.
TEST(DatabaseController, TheFirstStartMakesABookOnlyWhereThereIsNone) {
    HeadlessBook book;
    book.app.run("init");
    book.app.run("awakeFromNib");
    book.scheduler.advance(1);
    const fs::path database = fs::path(book.places.dataFolder) / "Zifora.zfdb4";
    EXPECT_EQ(companyIn(database), "Neue Firma");
    EXPECT_NE(book.events().find("Migration erfolgreich"), std::string::npos);

    // A database that comes while the first start waits is not replaced.
    HeadlessBook raced;
    raced.app.run("init");
    raced.app.run("awakeFromNib");
    const fs::path other = writeBook(raced);
    raced.scheduler.advance(1);
    EXPECT_EQ(companyIn(other), "Erhaltene GmbH");
    EXPECT_NE(raced.events().find("das Zifora beim Start nicht gelesen hat"), std::string::npos);
}

// A custom location that is missing at the start and comes back later (a disk mounted late)
// keeps its database: the book of that run read nothing and replaces nothing.
TEST(DatabaseController, ADatabaseThatComesBackAfterTheStartIsNotReplaced) {
    HeadlessBook book;
    const fs::path custom = book.home / "Netzlaufwerk";
    book.settings.setBool("isMigration_4.0_done", true);
    book.settings.setBool("useCustomLocation", true);
    book.settings.setString("customLocationPath", custom.string());
    book.app.run("init");
    book.app.run("awakeFromNib");
    EXPECT_NE(book.events().find("Der Speicherort für die Zifora Datenbank"), std::string::npos);

    fs::create_directories(custom);
    HeadlessBook other;
    const fs::path mounted = custom / "Zifora.zfdb4";
    fs::copy_file(writeBook(other), mounted);
    book.scheduler.advance(31); // the timer's save
    EXPECT_EQ(companyIn(mounted), "Erhaltene GmbH");
    EXPECT_NE(book.events().find("das Zifora beim Start nicht gelesen hat"), std::string::npos);
}

// Until the start has loaded the book, no save writes: not the menu's, not the timer's, not
// the stop's, whatever the settings of the last run allow.
TEST(DatabaseController, NothingIsSavedBeforeTheStartHasLoadedTheBook) {
    HeadlessBook book;
    const fs::path database = writeBook(book);
    const std::string before = contentOf(database);
    book.settings.setBool("isSaveAllowed", true);
    book.settings.setBool("isMigration_4.0_done", true);
    for (const char* command : {"save:", "autoSave:", "saveDataToDisk",
                                "restart:", "applicationWillTerminate", "terminate:"})
        book.app.run(command);
    EXPECT_EQ(contentOf(database), before);
    EXPECT_EQ(book.events().find("\"written\""), std::string::npos);

    // The creation of the application object forgets a book loaded before it.
    HeadlessBook again;
    const fs::path kept = writeBook(again);
    again.settings.setBool("isMigration_4.0_done", true);
    again.app.run("loadDataFromDisk");
    again.app.run("init");
    again.settings.setBool("isSaveAllowed", true);
    again.app.run("save:");
    EXPECT_EQ(companyIn(kept), "Erhaltene GmbH");
}

// Roots that hold no list of clients are refused like any unreadable database.
TEST(DatabaseController, ARootWithoutClientsIsRefusedAndKept) {
    using core::Value;
    for (const Value& root : {Value::dict({}), Value::dict({{"Clients", Value::array({})}}),
                              Value::dict({{"clients", Value::string("x")}}), Value::array({}),
                              Value::string("clients")}) {
        HeadlessBook book;
        const fs::path database = fs::path(book.places.dataFolder) / "Zifora.zfdb4";
        ASSERT_TRUE(core::writeKeyedArchiveFile(database.string(), root));
        const std::string before = contentOf(database);
        book.settings.setBool("isMigration_4.0_done", true);
        book.app.run("init");
        book.app.run("awakeFromNib");
        book.scheduler.advance(31);
        book.app.run("save:");
        book.app.run("applicationWillTerminate");
        const std::string told = book.events();
        EXPECT_NE(told.find("Die Datenbank „" + database.string() + "“ konnte nicht gelesen"),
                  std::string::npos)
            << told;
        EXPECT_EQ(contentOf(database), before);
    }
    // An empty list of clients is an empty book, and stays one.
    HeadlessBook empty;
    const fs::path database = fs::path(empty.places.dataFolder) / "Zifora.zfdb4";
    ASSERT_TRUE(core::writeKeyedArchiveFile(database.string(),
                                            Value::dict({{"clients", Value::array({})}})));
    empty.settings.setBool("isMigration_4.0_done", true);
    empty.app.run("init");
    empty.app.run("awakeFromNib");
    empty.app.run("save:");
    EXPECT_NE(empty.events().find("\"written\""), std::string::npos);
}

TEST(DatabaseController, TheCountOfSavesStopsAtItsLargestValue) {
    HeadlessBook book;
    book.settings.setInteger("backupAlertInt", std::numeric_limits<int64_t>::max());
    book.app.run("save:");
    book.app.run("save:");
    EXPECT_EQ(book.settings.getInteger("backupAlertInt"), std::numeric_limits<int64_t>::max());
}

// A save that dies leaves its temporary file; the next start removes those of dead
// processes, and nothing else.
TEST(DatabaseController, TheStartRemovesTheTemporaryFilesOfSavesThatDied) {
    HeadlessBook book;
    const fs::path folder = book.places.dataFolder;
    const std::vector<std::string> stale{".Zifora.zfdb4.tmp-2147483646-0-17",
                                         ".Zifora.zfdb4.tmp-999999999-3-42"};
    const std::vector<std::string> kept{
        ".Zifora.zfdb4.tmp-1-0-5",            // a process that runs (init)
        ".Zifora.zfdb4.tmp-2147483646-x-17",  // not our naming
        ".Zifora.zfdb4.tmp-2147483646-0-17a", // not our naming
        ".Anderes.zfdb4.tmp-2147483646-0-17", // another file's
        "Zifora.zfdb4.tmp-2147483646-0-17",   // not hidden
    };
    for (const auto& name : stale)
        std::ofstream(folder / name) << "halb";
    for (const auto& name : kept)
        std::ofstream(folder / name) << "fremd";
    fs::create_directories(folder / ".Zifora.zfdb4.tmp-2147483646-1-1"); // a folder: kept
    book.app.run("init");
    book.app.run("awakeFromNib");
    for (const auto& name : stale)
        EXPECT_FALSE(fs::exists(folder / name)) << name;
    for (const auto& name : kept)
        EXPECT_TRUE(fs::exists(folder / name)) << name;
    EXPECT_TRUE(fs::is_directory(folder / ".Zifora.zfdb4.tmp-2147483646-1-1"));
}

} // namespace
} // namespace zifora::bookkeeping
