#include "program/reportjob.h"

#include "journalbook.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

using namespace zifora;
using namespace zifora::reports::testing;

namespace {

/// A home with the shared report book and the settings of a user past the first item; HOME
/// points there while the object lives.
struct BookHome : HomeFolder {
    core::Places places = core::Places::forHome(home.string());
    std::string database = core::joinPath(places.dataFolder, "Zifora.zfdb4");
    std::string oldHome = std::getenv("HOME") ? std::getenv("HOME") : "";

    BookHome() {
        std::filesystem::create_directories(places.dataFolder);
        auto json =
            core::readWholeFile(std::string(ZIFORA_SOURCE_DIR) + "/tests/data/reports_book.json");
        auto root = core::loadJson(*json);
        EXPECT_TRUE(core::writeKeyedArchiveFile(database, *root));
        core::Settings settings(places.settingsFile);
        settings.setFloat("prefs1Rate", 19);
        settings.setFloat("prefs2Rate", 7);
        settings.setBool("firstStepsDone", true);
        settings.setBool("prefsExportPrintWithList", true);
        EXPECT_TRUE(settings.flush());
        setenv("HOME", home.c_str(), 1);
        unsetenv("XDG_DATA_HOME");
        unsetenv("XDG_CONFIG_HOME");
    }
    ~BookHome() { setenv("HOME", oldHome.c_str(), 1); }
};

} // namespace

TEST(ReportJob, WritesThePdfAndTheRtfThroughTheRendererAndLeavesTheBookAlone) {
    BookHome h;
    const std::string bookBefore = *core::readWholeFile(h.database);
    const std::string settingsBefore = *core::readWholeFile(h.places.settingsFile);
    StandInPdf renderer;
    std::ostringstream err;
    const std::string out = (h.home / "Journal").string();
    program::JournalJob pdf{"2025", "März", 0, program::JournalOutput::Pdf, out};
    EXPECT_EQ(program::reportJournal(pdf, err, &renderer), 0) << err.str();
    EXPECT_EQ(*core::readWholeFile(out + ".pdf"),
              "%PDF-1.4 Grafikbüro Kranich & Co. · Übersicht März 2025 · Seite 1\n");
    // The totals run first writes the period sheet, then the journal is laid out.
    ASSERT_EQ(renderer.requests.size(), 2u);
    EXPECT_EQ(renderer.requests.back().marginBottom, 60);

    program::JournalJob rtf{"2025", "März", 0, program::JournalOutput::Rtf, out + ".rtf"};
    EXPECT_EQ(program::reportJournal(rtf, err, &renderer), 0) << err.str();
    EXPECT_TRUE(std::filesystem::exists(out + ".rtf"));
    ASSERT_EQ(renderer.rtfs.size(), 1u);
    EXPECT_EQ(renderer.rtfs[0].first, core::joinPath(h.places.dataFolder, "PDFPreviewTab.html"));

    EXPECT_EQ(*core::readWholeFile(h.database), bookBefore);
    EXPECT_EQ(*core::readWholeFile(h.places.settingsFile), settingsBefore);
}

TEST(ReportJob, FailsWithTheRenderersCauseAndRefusesWhatIsNotThere) {
    BookHome h;
    StandInPdf renderer;
    renderer.failing = true;
    std::ostringstream err;
    const std::string out = (h.home / "Journal.pdf").string();
    EXPECT_EQ(program::reportJournal({"2025", "März", 0, program::JournalOutput::Pdf, out}, err,
                                     &renderer),
              4);
    EXPECT_NE(err.str().find("kein Platz auf dem Gerät"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(out));

    err.str({});
    EXPECT_EQ(program::reportJournal({"2025", "April", 0, program::JournalOutput::Html, out}, err),
              7);
    EXPECT_EQ(err.str(),
              "zifora-cli: Du musst erst eine Abrechnung und zugehörige Posten anlegen.\n");
    err.str({});
    EXPECT_EQ(program::reportJournal({"2025", "Mai", 0, program::JournalOutput::Html, out}, err),
              7);
    EXPECT_EQ(err.str(), "zifora-cli: es gibt keine Abrechnung Mai im Jahr 2025\n");
    std::filesystem::remove(h.database);
    err.str({});
    EXPECT_EQ(program::reportJournal({"2025", "März", 0, program::JournalOutput::Html, out}, err),
              3);
}
