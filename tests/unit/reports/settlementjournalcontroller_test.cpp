#include "reports/settlementjournalcontroller.h"

#include "journalbook.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace zifora;
using namespace zifora::reports;
using namespace zifora::reports::testing;
using shell::Outcome;

namespace {

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(JournalSheets, RefuseBeforeTheFirstItemAndForAPeriodWithoutItems) {
    JournalBook book;
    book.settings.setBool("firstStepsDone", false);
    book.select(0, 3); // April, empty: the first-steps refusal still comes first
    for (const char* command : {"openTabJournalPrint:", "openTabJournalExport:"}) {
        auto result = book.app.run(command);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->outcome, Outcome::Refused);
        EXPECT_EQ(book.events(),
                  "{\"alert\":{\"title\":\"Hinweis!\",\"text\":\"Voranmeldungen vorbereiten und "
                  "verwalten steht erst zur Verfügung nachdem du den ersten Posten erfolgreich "
                  "angelegt hast.\",\"buttons\":[\"OK\"],\"answer\":1,\"queued\":false}}\n");
    }
    book.settings.setBool("firstStepsDone", true);
    for (const char* command : {"openTabJournalPrint:", "openTabJournalExport:"}) {
        EXPECT_EQ(book.app.run(command)->outcome, Outcome::Refused);
        EXPECT_EQ(book.events(), "{\"alert\":{\"title\":\"Fehler!\",\"text\":\"Du musst erst eine "
                                 "Abrechnung und zugehörige Posten anlegen.\",\"buttons\":[\"OK\"],"
                                 "\"answer\":1,\"queued\":false}}\n");
    }
    EXPECT_FALSE(std::filesystem::exists(book.dataFile("PDFPreviewTab.html")));
    EXPECT_TRUE(book.pdf.requests.empty());
}

TEST(JournalSheets, ExportSheetWritesTheJournalAndItsPdfWithTheReportMargins) {
    JournalBook book;
    std::vector<std::pair<std::string, bool>> buttonStates;
    book.app.fields().observe([&](const std::string& name, const core::Value& value) {
        if (name == "tabJournalExportButtonEnabled") buttonStates.push_back({name, value.toBool()});
    });
    auto result = book.app.run("openTabJournalExport:");
    ASSERT_EQ(result->outcome, Outcome::Done);
    EXPECT_EQ(book.events(), "{\"window\":{\"show\":\"tabJournalExportSheet\"}}\n");
    EXPECT_EQ(result->files, (std::vector<std::string>{book.dataFile("PDFPreviewTab.html"),
                                                       book.dataFile("PDFPreviewTab.pdf")}));
    // The button is off while the sheet opens and on once the journal is there.
    ASSERT_EQ(buttonStates.size(), 2u);
    EXPECT_FALSE(buttonStates[0].second);
    EXPECT_TRUE(buttonStates[1].second);
    // The totals were run first.
    EXPECT_TRUE(book.settings.contains("tab-saldoField"));

    // The totals run writes the advance return's period sheet first, then comes the journal.
    ASSERT_EQ(book.pdf.requests.size(), 2u);
    const shell::PdfRequest& pdf = book.pdf.requests[1];
    EXPECT_EQ(pdf.htmlPath, book.dataFile("PDFPreviewTab.html"));
    EXPECT_EQ(pdf.pdfPath, book.dataFile("PDFPreviewTab.pdf"));
    EXPECT_EQ(pdf.footer, "Grafikbüro Kranich & Co. · Übersicht März 2025 · Seite ");
    EXPECT_EQ(pdf.title, "Übersicht März 2025");
    EXPECT_EQ(pdf.author, "Grafikbüro Kranich & Co.");
    EXPECT_EQ((std::array{pdf.marginTop, pdf.marginLeft, pdf.marginRight, pdf.marginBottom}),
              (std::array{40.0, 20.0, 20.0, 60.0}));
    EXPECT_FALSE(book.app.fields().get("tabJournalPDFViewHidden").toBool());
    EXPECT_FALSE(book.app.fields().get("tabJournalExportActivity").toBool());
}

TEST(JournalSheets, ExportChooserCopiesThePdfWritesRtfOrLeavesOtherFormatsForLater) {
    JournalBook book;
    book.app.run("openTabJournalExport:");
    book.events();

    book.settings.setInteger("prefsSelectedExportTab", 0);
    const std::string target = (book.home / "Abrechnung März").string();
    book.headless.ui.queueChoice(target);
    auto pdf = book.app.run("closeTabJournalExport:");
    ASSERT_EQ(pdf->outcome, Outcome::Done);
    EXPECT_EQ(pdf->files, std::vector<std::string>{target + ".pdf"});
    EXPECT_EQ(*core::readWholeFile(target + ".pdf"),
              *core::readWholeFile(book.dataFile("PDFPreviewTab.pdf")));
    EXPECT_EQ(book.events(), "{\"window\":{\"hide\":\"tabJournalExportSheet\"}}\n"
                             "{\"dialog\":{\"kind\":\"save\",\"title\":\"PDF Datei "
                             "Exportieren\",\"extensions\":[\"pdf\"],"
                             "\"suggested\":\"Abrechnung\",\"answer\":\"$HOME/Abrechnung März\"}}\n"
                             "{\"file\":{\"written\":\"$HOME/Abrechnung März.pdf\"}}\n");

    book.settings.setInteger("prefsSelectedExportTab", 1);
    book.headless.ui.queueChoice(target + ".rtf");
    auto rtf = book.app.run("closeTabJournalExport:");
    ASSERT_EQ(rtf->outcome, Outcome::Done);
    ASSERT_EQ(book.pdf.rtfs.size(), 1u);
    EXPECT_EQ(book.pdf.rtfs[0].first, book.dataFile("PDFPreviewTab.html"));
    EXPECT_EQ(book.pdf.rtfs[0].second, target + ".rtf");
    EXPECT_TRUE(
        has(book.events(), "\"title\":\"Text Datei Exportieren\",\"extensions\":[\"rtf\"]"));

    book.headless.ui.queueChoice(std::nullopt);
    EXPECT_EQ(book.app.run("closeTabJournalExport:")->outcome, Outcome::Cancelled);
    EXPECT_EQ(book.pdf.rtfs.size(), 1u);
    book.events();

    for (int64_t later : {2, 3, 5, 99, 7}) {
        book.settings.setInteger("prefsSelectedExportTab", later);
        EXPECT_EQ(book.app.run("closeTabJournalExport:")->outcome, Outcome::Refused) << later;
        EXPECT_TRUE(has(book.events(), "\"title\":\"Hinweis!\"")) << later;
    }
}

TEST(JournalSheets, FailedPdfEndsInAnAlertNamingFileAndCauseAndLeavesNoPdf) {
    JournalBook book;
    book.pdf.failing = true;
    auto result = book.app.run("openTabJournalPrint:");
    EXPECT_EQ(result->outcome, Outcome::Refused);
    const std::string events = book.events();
    EXPECT_TRUE(
        has(events,
            "{\"window\":{\"show\":\"tabJournalPrintSheet\"}}\n{\"alert\":{\"title\":\"Fehler!\""));
    EXPECT_TRUE(has(events, "$HOME/.local/share/Zifora/PDFPreviewTab.pdf\\n\\n"));
    EXPECT_TRUE(has(events, "kein Platz auf dem Gerät"));
    EXPECT_FALSE(std::filesystem::exists(book.dataFile("PDFPreviewTab.pdf")));
    EXPECT_TRUE(std::filesystem::exists(book.dataFile("PDFPreviewTab.html")));
    EXPECT_FALSE(book.app.fields().get("tabJournalPrintActivity").toBool());

    // The preview of a journal without PDF says so instead of showing nothing.
    book.app.run("previewJournal:");
    book.headless.scheduler.advance(0.1);
    EXPECT_TRUE(has(book.events(),
                    "Das PDF der Abrechnung fehlt: $HOME/.local/share/Zifora/PDFPreviewTab.pdf"));
    // The export of that PDF fails with its alert, and nothing is written.
    book.settings.setInteger("prefsSelectedExportTab", 0);
    book.headless.ui.queueChoice((book.home / "x.pdf").string());
    EXPECT_EQ(book.app.run("closeTabJournalExport:")->outcome, Outcome::Refused);
    EXPECT_TRUE(
        has(book.events(), "Das PDF der Abrechnung ließ sich nicht schreiben: $HOME/x.pdf"));
    EXPECT_FALSE(std::filesystem::exists(book.home / "x.pdf"));
}

TEST(JournalSheets, UnwritableJournalShowsTheAlertAndMakesNoPdf) {
    JournalBook book;
    std::filesystem::remove_all(book.places.dataFolder);
    EXPECT_EQ(book.app.run("openTabJournalExport:")->outcome, Outcome::Refused);
    const std::string events = book.events();
    EXPECT_TRUE(has(events, "\"title\":\"Fehler!\",\"text\":\"Das Journal der Abrechnung ließ sich "
                            "nicht schreiben: $HOME/.local/share/Zifora/PDFPreviewTab.html"));
    EXPECT_TRUE(book.pdf.requests.empty());
    EXPECT_FALSE(book.app.fields().get("tabJournalExportButtonEnabled").toBool());
}

TEST(JournalPreview, ComesATenthOfASecondLaterInTheWindowOrTheDesktopsViewer) {
    JournalBook book;
    book.app.run("openTabJournalPrint:");
    book.events();
    book.app.run("previewJournal:");
    book.headless.scheduler.advance(0.09);
    EXPECT_EQ(book.events(), "");
    book.headless.scheduler.advance(0.01);
    EXPECT_EQ(book.events(),
              "{\"preview\":{\"path\":\"$HOME/.local/share/Zifora/PDFPreviewTab.pdf\","
              "\"title\":\"Vorschau - Abrechnung\"}}\n");
    book.settings.setBool("loadInPreview.app", true);
    book.app.run("loadPDFTab:");
    EXPECT_EQ(book.events(), "{\"open\":\"$HOME/.local/share/Zifora/PDFPreviewTab.pdf\"}\n");
}

TEST(JournalPrint, PrintsTheHtmlTheSheetWroteWithABottomMarginOf20) {
    JournalBook book;
    book.app.run("openTabJournalPrint:");
    const std::string before = *core::readWholeFile(book.dataFile("PDFPreviewTab.html"));
    book.events();
    // A change of the settings while the sheet is open changes nothing of what is printed.
    book.settings.setBool("prefsExportPrintWithList", false);
    auto result = book.app.run("printJournal:");
    ASSERT_EQ(result->outcome, Outcome::Done);
    EXPECT_EQ(*core::readWholeFile(book.dataFile("PDFPreviewTab.html")), before);
    ASSERT_EQ(book.pdf.requests.size(), 3u); // period sheet, journal, print
    const shell::PdfRequest& print = book.pdf.requests[2];
    EXPECT_EQ(print.htmlPath, book.dataFile("PDFPreviewTab.html"));
    EXPECT_EQ(print.pdfPath, book.dataFile("PDFPrintTab.pdf"));
    EXPECT_EQ(print.marginBottom, 20);
    EXPECT_EQ(print.footer, "Grafikbüro Kranich & Co. · Übersicht März 2025 · Seite ");
    EXPECT_EQ(book.events(), "{\"print\":{\"path\":\"$HOME/.local/share/Zifora/PDFPrintTab.pdf\","
                             "\"title\":\"Übersicht März 2025\",\"margins\":[40,20,20,20]}}\n");

    book.app.run("closeTabJournalPrint:");
    EXPECT_EQ(book.events(), "{\"window\":{\"hide\":\"tabJournalPrintSheet\"}}\n");
    std::filesystem::remove(book.dataFile("PDFPreviewTab.html"));
    EXPECT_EQ(book.app.run("printJournal:")->outcome, Outcome::Refused);
    EXPECT_TRUE(has(book.events(), "Das Journal der Abrechnung fehlt"));
}

TEST(JournalCommands, StandInTheBooksMenuAndAsSteps) {
    JournalBook book;
    const shell::CommandCatalog& catalog = book.app.commands();
    for (const char* name : {"openTabJournalPrint:", "openTabJournalExport:"})
        EXPECT_EQ(catalog.info(name)->menu, shell::Menu::Books) << name;
    for (const char* name :
         {"closeTabJournalPrint:", "cancelTabJournalExport:", "closeTabJournalExport:",
          "previewJournal:", "printJournal:", "loadPDFTab:", "exportString", "generatePDFTab",
          "generateTabJournal:", "generateTabJournalVoid"}) {
        ASSERT_NE(catalog.info(name), nullptr) << name;
        EXPECT_EQ(catalog.info(name)->menu, shell::Menu::None) << name;
    }
    EXPECT_TRUE(catalog.duplicates().empty());
    auto html = book.app.run("exportString");
    EXPECT_EQ(html->outcome, Outcome::Done);
    EXPECT_EQ(html->files, std::vector<std::string>{book.dataFile("PDFPreviewTab.html")});
}
