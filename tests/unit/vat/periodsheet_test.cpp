#include "sheetbook.h"

#include "program/headlessprogram.h"
#include "vat/periodsheet.h"

#include <gtest/gtest.h>

using namespace zifora;
using namespace zifora::vat;
using namespace zifora::vat::testing;

namespace {

std::string sheetOf(SheetBook& b) {
    auto html = core::readWholeFile(b.dataFile("PDFPreviewTab.html"));
    EXPECT_TRUE(html);
    return html ? *html : std::string();
}

} // namespace

TEST(PeriodSheet, AMarkedMonthWithOpenItemsAndItsListEqualsTheGoldenFile) {
    SheetBook b;
    b.settings.setBool("showUnpaidOption", true);
    b.app.run("openVoranmeldungsWindow:");
    expectGolden("sheet_maerz.html", sheetOf(b));
    EXPECT_EQ(b.settings.getString("printFooter"),
              "Grafikbüro Kranich & Co. · Abrechnung März 2025 · Seite ");
}

TEST(PeriodSheet, AnUnmarkedMonthWithBorderAndCurrencyWithoutListEqualsTheGoldenFile) {
    SheetBook b;
    b.select(0, 1); // Februar
    b.settings.setBool("prefsExportPrintWithList", false);
    b.settings.setBool("prefsPrintBorder", true);
    b.settings.setBool("prefsPrintCurrency", true);
    b.settings.setBool("prefsPrintUnshortened", true);
    b.app.run("openVoranmeldungsWindow:");
    expectGolden("sheet_februar_rahmen_euro.html", sheetOf(b));
}

TEST(PeriodSheet, PrintingTakesTheListWhateverTheSettingWas) {
    SheetBook b;
    b.select(0, 1);
    b.settings.setBool("prefsExportPrintWithList", false);
    b.app.run("printAbrechnung:");
    EXPECT_NE(sheetOf(b).find("&Uuml;bersicht aller Posten"), std::string::npos);
}

TEST(PeriodSheet, TitlesOfThirtyCharactersAreCutAndOfTwentyNineKept) {
    EXPECT_EQ(shortened("Abcdefghijklmnopqrstuvwxyzäöü", 29, 28), "Abcdefghijklmnopqrstuvwxyzäöü");
    EXPECT_EQ(shortened("Abcdefghijklmnopqrstuvwxyzäöüß", 29, 28),
              "Abcdefghijklmnopqrstuvwxyzäö …");
    EXPECT_EQ(shortened("", 29, 28), "");

    SheetBook b;
    b.app.run("openVoranmeldungsWindow:");
    const std::string cut = sheetOf(b);
    b.settings.setBool("prefsPrintUnshortened", true);
    b.app.run("infoWindowVoid");
    const std::string whole = sheetOf(b);
    EXPECT_NE(cut.find(" …"), std::string::npos);
    EXPECT_EQ(whole.find(" …"), std::string::npos);
}

TEST(PeriodSheet, ThePdfHasTheMarginsAndTheFooterOfTheSheet) {
    SheetBook b;
    b.app.run("openVoranmeldungsWindow:");
    ASSERT_EQ(b.pdf.requests.size(), 1u);
    const shell::PdfRequest& r = b.pdf.requests[0];
    EXPECT_EQ(r.htmlPath, b.dataFile("PDFPreviewTab.html"));
    EXPECT_EQ(r.pdfPath, b.dataFile("PDFPreviewTab.pdf"));
    EXPECT_EQ((std::array{r.marginTop, r.marginLeft, r.marginRight, r.marginBottom}),
              (std::array{40.0, 20.0, 20.0, 60.0}));
    EXPECT_EQ(r.orientation, shell::PageOrientation::Portrait);
    EXPECT_EQ(r.footer, "Grafikbüro Kranich & Co. · Abrechnung März 2025 · Seite ");
    EXPECT_EQ(r.title, "Abrechnung März 2025");
    EXPECT_EQ(r.author, "Grafikbüro Kranich & Co.");
    EXPECT_TRUE(std::filesystem::exists(b.dataFile("PDFPreviewTab.pdf")));
    EXPECT_EQ(b.events().find("Fehler!"), std::string::npos);
}

TEST(PeriodSheet, AFailedRenderLeavesNoPdfAndSaysSo) {
    SheetBook b;
    b.app.run("openVoranmeldungsWindow:");
    b.events();
    b.pdf.failing = true;
    b.app.run("changeAlLCalculates:");
    EXPECT_FALSE(std::filesystem::exists(b.dataFile("PDFPreviewTab.pdf")));
    EXPECT_TRUE(std::filesystem::exists(b.dataFile("PDFPreviewTab.html")));
    const std::string events = b.events();
    EXPECT_NE(events.find("\"title\":\"Fehler!\",\"text\":\"Die Abrechnung als PDF ließ sich nicht "
                          "schreiben: $HOME/.local/share/Zifora/PDFPreviewTab.pdf"),
              std::string::npos)
        << events;
}

TEST(PeriodSheet, AnHtmlThatCannotBeWrittenLeavesNeitherFileAndNoRender) {
    SheetBook b;
    b.app.run("openVoranmeldungsWindow:");
    b.events();
    const core::Properties before = b.app.selection().currentPeriod()->properties();
    // The HTML's place is taken by a folder, so the file can't be written.
    std::filesystem::remove(b.dataFile("PDFPreviewTab.html"));
    std::filesystem::create_directories(b.dataFile("PDFPreviewTab.html") + "/x");
    b.pdf.requests.clear();
    b.app.run("changeAlLCalculates:");
    EXPECT_TRUE(b.pdf.requests.empty());
    EXPECT_FALSE(std::filesystem::exists(b.dataFile("PDFPreviewTab.pdf")));
    EXPECT_NE(b.events().find("\"title\":\"Fehler!\",\"text\":\"Die Abrechnung ließ sich nicht "
                              "schreiben: $HOME/.local/share/Zifora/PDFPreviewTab.html"),
              std::string::npos);
    EXPECT_EQ(b.app.selection().currentPeriod()->properties().getFloat("balance"),
              before.getFloat("balance"));
}

TEST(PeriodSheet, AnEmptyPeriodHasZerosAndAnEmptyList) {
    SheetBook b;
    b.select(0, 3);               // April
    b.headless.ui.queueAnswer(0); // Fortfahren
    b.app.run("openVoranmeldungsWindow:");
    const std::string html = sheetOf(b);
    EXPECT_NE(html.find("Voranmeldung noch nicht erstellt"), std::string::npos);
    EXPECT_TRUE(html.ends_with("<td></td></tr>")) << "the list has its heads and no rows";
}

TEST(PeriodSheet, AProgramWithoutPdfOutputKeepsTheHtmlAndSaysNothing) {
    SheetHome folder;
    std::ostringstream out;
    program::HeadlessProgram headless(out, core::Places::forHome(folder.home.string()), kToday,
                                      program::Resources{});
    std::filesystem::create_directories(headless.places.dataFolder);
    auto client = core::Record::make(core::RecordClass::Client, kToday);
    auto year = core::Record::make(core::RecordClass::Year, kToday);
    auto period = core::Record::make(core::RecordClass::Thelist, kToday);
    year->thelists().push_back(period);
    client->theYears().push_back(year);
    headless.session().book().clients().push_back(client);
    headless.session().selectionChanged();
    headless.session().run("infoWindowVoid");
    const std::string folderPath = headless.places.dataFolder;
    EXPECT_TRUE(std::filesystem::exists(core::joinPath(folderPath, "PDFPreviewTab.html")));
    EXPECT_FALSE(std::filesystem::exists(core::joinPath(folderPath, "PDFPreviewTab.pdf")));
    EXPECT_EQ(out.str(), "");
}
