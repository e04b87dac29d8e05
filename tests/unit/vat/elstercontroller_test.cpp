#include "vatbook.h"

#include "core/atomicfile.h"
#include "core/record.h"
#include "vat/elstercontroller.h"

#include <gtest/gtest.h>

using namespace zifora;
using namespace zifora::vat::testing;
using core::Value;
namespace fs = std::filesystem;

namespace {

class ElsterHandOver : public ::testing::Test {
  protected:
    ElsterHandOver() {
        b.app.settings().setString("prefsCompany", "Muster Design");
        b.app.settings().setString("prefsTaxID", "21/815/08150");
        b.app.settings().setString("prefsELSTERID", "2181508150");
        core::Record& period = b.addPeriod("März");
        b.addItem(period, 1190.0f, 2, 1);
        b.addItem(period, 119.0f, 1, 1);
        b.addItem(period, 250.0f, 2, 4);
        b.app.run("openVoranmeldungsWindow:");
        b.events();
    }
    std::string outbox() const { return (b.home / ".local/share/Winston/Ausgang").string(); }
    VatBook b;
};

} // namespace

TEST_F(ElsterHandOver, WritesTheFileIntoTheOutboxPutsTheTextOnTheClipboardAndTellsOnce) {
    fs::create_directories(outbox());
    auto result = b.app.run("doTheWinston:");
    ASSERT_TRUE(result);
    const std::string file = outbox() + "/Zifora_03_2026.xml";
    EXPECT_EQ(result->outcome, shell::Outcome::Done);
    EXPECT_EQ(result->files, std::vector<std::string>{file});
    auto bytes = core::readWholeFile(file);
    ASSERT_TRUE(bytes);
    EXPECT_NE(bytes->find("\t<AnmeldeZeitraum>03</AnmeldeZeitraum>\n\t<Kennzahl nr=\"Kz81\">"
                          "1000,00</Kennzahl>"),
              std::string::npos)
        << *bytes;
    EXPECT_NE(bytes->find("<Kennzahl nr=\"Kz66\">19,00</Kennzahl>\n\t<Kennzahl nr=\"Kz83\">"
                          "171,00</Kennzahl>\n\t<Kennzahl nr=\"Kz48\">250,00</Kennzahl>"),
              std::string::npos)
        << *bytes;
    std::string events = b.events();
    EXPECT_TRUE(b.has(events, "{\"clipboard\":\"Muster Design - 1/21/815/08150/2026 / - "
                              "[Umsatzsteuer-Voranmeldung März 2026]\\n\\t\\t81\\t1.000,00\\n"));
    EXPECT_TRUE(b.has(events, "\"title\":\"Hinweis!\",\"text\":\"Sofern Winston"));
    EXPECT_TRUE(b.app.settings().getBool("1winston"));
    EXPECT_FALSE(b.has(events, "launch")) << "no client named, none started";
    EXPECT_FALSE(b.has(events, "Fehler!"));

    // The second hand-over overwrites the file and says nothing more.
    b.app.run("doTheWinston:");
    events = b.events();
    EXPECT_FALSE(b.has(events, "Hinweis!"));
    EXPECT_TRUE(b.has(events, "{\"file\":{\"written\":\"" + file + "\"}}"));
}

TEST_F(ElsterHandOver, AMissingOutboxIsNotCreatedAndTheFailureIsTold) {
    auto result = b.app.run("doTheWinston:");
    EXPECT_EQ(result->outcome, shell::Outcome::Refused);
    EXPECT_FALSE(fs::exists(outbox()));
    std::string events = b.events();
    EXPECT_TRUE(b.has(events, "\"title\":\"Fehler!\",\"text\":\"Die Datei für das "
                              "ELSTER-Programm konnte nicht geschrieben werden."));
    EXPECT_TRUE(b.has(events, "Zifora_03_2026.xml")) << events;
    EXPECT_TRUE(b.has(events, "{\"clipboard\":")) << "the clipboard is filled all the same";
    EXPECT_TRUE(b.has(events, "Sofern Winston"));
}

TEST_F(ElsterHandOver, TheOutboxAndTheClientAreChosenInThePreferences) {
    const fs::path own = b.home / "Eigener Ausgang";
    fs::create_directories(own);
    b.ui.queueChoice(own.string());
    EXPECT_EQ(b.app.run("chooseWinstonOutbox:")->outcome, shell::Outcome::Done);
    b.ui.queueChoice(std::string("/usr/bin/winston"));
    b.app.run("chooseElsterClient:");
    b.ui.queueChoice(std::nullopt);
    EXPECT_EQ(b.app.run("chooseElsterClient:")->outcome, shell::Outcome::Cancelled);
    b.app.settings().setBool("1winston", true);
    b.events();

    b.app.run("doTheWinston:");
    EXPECT_TRUE(fs::exists(own / "Zifora_03_2026.xml"));
    std::string events = b.events();
    EXPECT_TRUE(b.has(events, "{\"launch\":{\"program\":\"/usr/bin/winston\",\"arguments\":[]}}"))
        << events;

    b.app.settings().setString("winstonOutboxPath", "~/Eigener Ausgang");
    EXPECT_EQ(b.program.feature<vat::ElsterController>()->outboxFolder(),
              (b.home / "Eigener Ausgang").string() + "/");
}

TEST_F(ElsterHandOver, TheTwoPagesOpenInTheBrowser) {
    b.app.run("winstonWebseite:");
    b.app.run("elsterNummer:");
    std::string events = b.events();
    EXPECT_TRUE(b.has(events, "{\"open\":\"https://www.felfri.de/winston/\"}"));
    EXPECT_TRUE(b.has(events, "{\"open\":\"https://de.wikipedia.org/wiki/Steuernummer\"}"));
}
