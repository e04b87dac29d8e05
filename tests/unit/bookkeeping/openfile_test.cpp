#include "testbed.h"

#include "bookkeeping/openfile.h"
#include "core/jsondump.h"
#include "shell/events.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace zifora;
using namespace zifora::shell;
using namespace zifora::bookkeeping;
using zifora::bookkeeping::testbed::TestBed;

namespace {

const std::string kHinweisText =
    "Um die Sicherheit deiner Zifora-Datenbank zu gewährleisten - benutze bitte das \"Ablage "
    "Menü\" und dort den Menüpunkt \"Zifora Daten\" um Abrechnungen, Konten, Jahre oder ganze "
    "Datenbanken zu importieren oder exportieren. Um Posten zu importieren bitte den Menüpunkt "
    "\"Posten importieren …\" verwenden.";

std::string alertEvent(const std::string& title, const std::string& text) {
    std::string json = "{\"alert\":{\"title\":";
    core::appendJsonString(json, title);
    json += ",\"text\":";
    core::appendJsonString(json, text);
    return json + ",\"buttons\":[\"OK\"],\"answer\":1,\"queued\":false}}\n";
}

const char* importName(HandOverKind kind) {
    switch (kind) {
    case HandOverKind::GrandTotal:
        return "GrandTotal";
    case HandOverKind::MoneyMoney:
        return "MoneyMoney";
    case HandOverKind::Bill:
        return "Bill";
    }
    return "";
}

// A test bed that writes down which import heard of a hand-over, and of which file.
struct HandOverBed : TestBed {
    std::vector<std::string> imports;
    std::vector<std::string> paths;
    HandOverBed() {
        app.events().subscribe<HandOverArrived>([this](const HandOverArrived& arrived) {
            imports.push_back(importName(arrived.kind));
            paths.push_back(arrived.path);
        });
    }
    bool open(const std::string& path) {
        CommandSender sender;
        sender.path = path;
        app.commands().run("application:openFile:", sender);
        return settings.getBool("isZifProAction");
    }
};

} // namespace

TEST(OpenFile, TheKindComesFromTheExactExtensionOfTheLastComponent) {
    using K = OpenedFileKind;
    const std::vector<std::pair<std::string, K>> cases{
        {"/home/anna/Rechnung.zifpro", K::GrandTotalHandOver},
        {"Export.zifmm", K::MoneyMoneyHandOver},
        {"a.b.zifbill", K::BillHandOver},
        {"/tmp/Mappe.zifpro/", K::GrandTotalHandOver}, // a trailing slash is no part of the name
        {"/tmp/Rechnung.ZIFPRO", K::Other},            // compared with its case
        {"/tmp/Rechnung.Zifmm", K::Other},
        {"/tmp/Ordner.zifpro/Datei", K::Other},
        {"/tmp/.zifpro", K::Other}, // a hidden file's name is no extension
        {"/tmp/zifpro", K::Other},
        {"/tmp/Rechnung.zifpro.zfdb4", K::Other},
        {"/tmp/Rechnung.", K::Other},
        {"", K::Other},
        {"/", K::Other},
    };
    for (const auto& [path, kind] : cases)
        EXPECT_EQ(openedFileKind(path), kind) << path;
}

TEST(OpenFile, AHandOverBeforeTheSetUpIsRefusedByNameAndChangesNothing) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"a.zifpro", "Der GrandTotal Import steht erst zur Verfügung, nachdem du Zifora "
                     "eingerichtet hast."},
        {"a.zifmm", "Der MoneyMoney Import steht erst zur Verfügung, nachdem du Zifora "
                    "eingerichtet hast."},
        {"a.zifbill", "Der Bill Import steht erst zur Verfügung, nachdem du Zifora eingerichtet "
                      "hast."},
    };
    for (const auto& [path, text] : cases) {
        HandOverBed t;
        t.settings.setString("importFilePath", "/früher/gewählt.zifpro");
        OpenFileController& controller = *t.headless.program.feature<OpenFileController>();
        EXPECT_FALSE(controller.applicationOpenFile(path));
        EXPECT_EQ(t.takeEvents(), alertEvent("Fehler!", text));
        EXPECT_FALSE(t.settings.contains("isZifProAction"));
        EXPECT_EQ(t.settings.getString("importFilePath"), "/früher/gewählt.zifpro");
        t.scheduler.advance(10);
        EXPECT_TRUE(t.imports.empty());
    }
}

TEST(OpenFile, AHandOverAfterTheSetUpRunsItsOwnImportAfterTheDelay) {
    const std::vector<std::pair<std::string, std::string>> cases{{"/tmp/a.zifpro", "GrandTotal"},
                                                                 {"/tmp/a.zifmm", "MoneyMoney"},
                                                                 {"/tmp/a.zifbill", "Bill"}};
    for (const auto& [path, import] : cases) {
        HandOverBed t;
        t.settings.setBool("isSetupDone", true);
        OpenFileController& controller = *t.headless.program.feature<OpenFileController>();
        EXPECT_TRUE(controller.applicationOpenFile(path));
        EXPECT_EQ(t.takeEvents(), "");
        EXPECT_TRUE(t.settings.getBool("isZifProAction")); // for every kind, not only zifpro
        EXPECT_EQ(t.settings.getString("importFilePath"), path);
        t.scheduler.advance(1.69);
        EXPECT_TRUE(t.imports.empty());
        t.scheduler.advance(0.01);
        EXPECT_EQ(t.imports, std::vector<std::string>{import});
        EXPECT_EQ(t.paths, std::vector<std::string>{path});
        t.scheduler.advance(10);
        EXPECT_EQ(t.imports.size(), 1u);
    }
}

TEST(OpenFile, WithSeveralAccountsTheImportRunsAtOnceOrNotAtAll) {
    HandOverBed allowed;
    allowed.settings.setBool("isSetupDone", true);
    allowed.settings.setBool("prefsUseMultipleAccounts", true);
    allowed.settings.setBool("isSaveAllowed", true);
    EXPECT_TRUE(allowed.open("/tmp/b.zifbill"));
    EXPECT_EQ(allowed.imports, std::vector<std::string>{"Bill"});

    HandOverBed loading;
    loading.settings.setBool("isSetupDone", true);
    loading.settings.setBool("prefsUseMultipleAccounts", true);
    loading.settings.setBool("isSaveAllowed", false);
    EXPECT_TRUE(loading.open("/tmp/b.zifbill")); // taken, even though no import follows
    EXPECT_EQ(loading.settings.getString("importFilePath"), "/tmp/b.zifbill");
    loading.scheduler.advance(10);
    EXPECT_TRUE(loading.imports.empty());
}

TEST(OpenFile, AnImportThatListensAfterTheFileWasTakenIsStillReached) {
    TestBed t;
    t.settings.setBool("isSetupDone", true);
    CommandSender sender;
    sender.path = "/tmp/c.zifmm";
    t.app.run("application:openFile:", sender);
    t.scheduler.advance(1); // nobody listening at the time of the opening is no failure
    int runs = 0;
    t.app.events().subscribe<HandOverArrived>([&](const HandOverArrived&) { ++runs; });
    t.scheduler.advance(1);
    EXPECT_EQ(runs, 1);
}

TEST(OpenFile, AnyOtherFileIsRefusedClearsTheHandOverAndLeavesTheDataAlone) {
    for (const std::string path : {"/tmp/Zifora.zfdb4", "/tmp/Benutzer.zfdbc", "/tmp/Konten.kmdb",
                                   "/tmp/Rechnung.ZIFPRO", "/tmp/ohne Endung", ""}) {
        HandOverBed t;
        t.settings.setBool("isSetupDone", true);
        t.settings.setBool("isZifProAction", true);
        t.settings.setString("importFilePath", "/tmp/a.zifpro");
        const core::Record* client = t.app.book().clients().front().get();
        const core::Properties before = client->properties();
        OpenFileController& controller = *t.headless.program.feature<OpenFileController>();
        EXPECT_FALSE(controller.applicationOpenFile(path));
        EXPECT_EQ(t.takeEvents(), alertEvent("Hinweis!", kHinweisText)) << path;
        EXPECT_FALSE(t.settings.getBool("isZifProAction"));
        EXPECT_TRUE(t.settings.contains("isZifProAction"));
        EXPECT_EQ(t.settings.getString("importFilePath"), "");
        ASSERT_EQ(t.app.book().clients().size(), 1u);
        EXPECT_EQ(t.app.book().clients().front().get(), client);
        EXPECT_EQ(client->properties(), before);
        t.scheduler.advance(10); // an earlier hand-over still due runs as it was scheduled
        EXPECT_TRUE(t.imports.empty());
    }
}
