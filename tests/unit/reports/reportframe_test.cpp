#include "reports/reportframe.h"

#include "core/atomicfile.h"
#include "posting/formatstring.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

using namespace zifora;
using namespace zifora::reports;

namespace {

std::filesystem::path makeFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zifora-frame-XXXXXX").string();
    return mkdtemp(pattern.data());
}

} // namespace

TEST(ReportSettings, ComeFromTheStoreWithTheirDefaultsWhenUnset) {
    core::Settings settings("/nonexistent/Zifora.plist");
    ReportSettings fresh = ReportSettings::read(settings);
    EXPECT_EQ(fresh.company, "");
    EXPECT_EQ(fresh.border, 0);
    EXPECT_EQ(fresh.currency, "");
    EXPECT_FALSE(fresh.showUnpaid);

    settings.setString("prefsCompany", "Kranich & Co.");
    settings.setString("prefsTaxID", "21/815/08150");
    settings.setBool("prefsPrintBorder", true);
    settings.setInteger("prefsCurrency", 5);
    // The sign is only printed when the currency is asked for.
    EXPECT_EQ(ReportSettings::read(settings).currency, "");
    settings.setBool("prefsPrintCurrency", true);
    ReportSettings set = ReportSettings::read(settings);
    EXPECT_EQ(set.company, "Kranich & Co.");
    EXPECT_EQ(set.taxId, "21/815/08150");
    EXPECT_EQ(set.border, 1);
    EXPECT_EQ(set.currency, "Fr.");
    settings.setInteger("prefsCurrency", 0);
    EXPECT_EQ(ReportSettings::read(settings).currency, "€");
    settings.setInteger("prefsCurrency", 6);
    EXPECT_EQ(ReportSettings::read(settings).currency, "");
    EXPECT_EQ(currencySign(-1), "");
}

TEST(ReportHead, FillsItsSlotsAndEndsInTheBodyFont) {
    EXPECT_EQ(reportHead("<src>", "Kranich", "21/815", "02.03.2026", "Umsätze 2025"),
              "<src><h2>Kranich</h2><h3><small>Steuernummer: 21/815</small></h3><small>Datum: "
              "02.03.2026</small><br><br><br><br><h3><b>Umsätze 2025</b></h3><br><br><br></font>"
              "<font face=\"Lucida Grande\" size=\"4\" class=\"f2\">");
    // The source text opens the font element that the head closes.
    std::string_view source = sourceText();
    EXPECT_TRUE(source.starts_with("<html>"));
    EXPECT_TRUE(source.ends_with("size=\"2\">"));
    EXPECT_NE(source.find("charset=utf-8"), std::string_view::npos);
}

TEST(ReportAmounts, ChooseThePatternByTheValueBeforeRounding) {
    ReportAmounts amounts("€", "de_DE");
    EXPECT_EQ(amounts.amount(0), "0,00");
    EXPECT_EQ(amounts.amount(999.99), "999,99");
    EXPECT_EQ(amounts.amount(-999.99), "-999,99");
    EXPECT_EQ(amounts.amount(999.999), "1000,00");
    EXPECT_EQ(amounts.amount(1000), "1.000,00");
    EXPECT_EQ(amounts.amount(-1000), "-1.000,00");
    EXPECT_EQ(amounts.amount(12.5f), "12,50");
    EXPECT_EQ(amounts.amount(-0.001), "-0,00");

    EXPECT_EQ(amounts.row(0), std::nullopt);
    EXPECT_EQ(amounts.row(-59.5f), "-59,50");
    EXPECT_EQ(amounts.row(1234.56f), "1.234,56");

    EXPECT_EQ(amounts.belowThousand(999.99), "999,99");
    EXPECT_EQ(amounts.belowThousand(1234.5), "1.234,50");
    EXPECT_EQ(amounts.belowThousand(-1234.5), "-1234,50");

    EXPECT_EQ(amounts.percent(19), "19,00 %");
    EXPECT_EQ(amounts.percent(10.7f), "10,70 %");
}

TEST(ReportAmounts, FollowEveryAmountByABlankAndTheCurrencyText) {
    ReportAmounts euro("€", "de_DE");
    EXPECT_EQ(euro.withCurrency(euro.amount(1500)), "1.500,00 €");
    EXPECT_EQ(euro.withCurrency(euro.row(0)), "(null) €");
    ReportAmounts none("", "de_DE");
    EXPECT_EQ(none.withCurrency(none.amount(3)), "3,00 ");
    EXPECT_EQ(none.withCurrency(std::nullopt), "(null) ");
}

TEST(OpenItemsTable, TakesTheLocalesDecimalStyleAndIsLeftOutUnlessAskedFor) {
    EXPECT_EQ(openItemsTable(false, 3570, 3000, "€", "de_DE"), "");
    std::string table = openItemsTable(true, 3570, 3000, "€", "de_DE");
    EXPECT_NE(table.find("Offene Posten"), std::string::npos);
    EXPECT_NE(table.find("mit Steuern:</td><td align=\"right\">3.570,00 €"), std::string::npos);
    EXPECT_NE(table.find("ohne Steuern:</td><td align=\"right\">3.000,00 €"), std::string::npos);
    // Small sums too have exactly two decimals and no padding.
    EXPECT_NE(openItemsTable(true, 12.5, 0, "", "de_DE").find(">12,50 <"), std::string::npos);
}

TEST(PageFooter, PutsTheNumberDirectlyAfterTheText) {
    std::string footer =
        posting::formatString(kSettlementJournalFooter, {"Kranich", "März", "2025"});
    EXPECT_EQ(footer, "Kranich · Übersicht März 2025 · Seite ");
    EXPECT_EQ(pageFooter(footer, 1), "Kranich · Übersicht März 2025 · Seite 1");
    EXPECT_EQ(pageFooter(posting::formatString(kTurnoverFooter, {"K", "2025"}), 12),
              "K · Zifora 2025 · Seite 12");
    EXPECT_EQ(posting::formatString(kTaxOverviewFooter, {nullptr, "2025"}),
              "(null) · Übersicht Steuern 2025 · Seite ");
}

TEST(PdfRequest, IsA4PortraitWithTheReportMargins) {
    shell::PdfRequest pdf = pdfRequest("/d/a.html", "/d/a.pdf", "F · Seite ", "Titel", "Kranich");
    EXPECT_EQ(pdf.htmlPath, "/d/a.html");
    EXPECT_EQ(pdf.pdfPath, "/d/a.pdf");
    EXPECT_DOUBLE_EQ(pdf.pageWidth, 595.28);
    EXPECT_DOUBLE_EQ(pdf.pageHeight, 841.89);
    EXPECT_EQ(pdf.orientation, shell::PageOrientation::Portrait);
    EXPECT_EQ(pdf.marginTop, 40);
    EXPECT_EQ(pdf.marginLeft, 20);
    EXPECT_EQ(pdf.marginRight, 20);
    EXPECT_EQ(pdf.marginBottom, 60);
    EXPECT_EQ(pdf.footer, "F · Seite ");
    EXPECT_EQ(pdf.title, "Titel");
    EXPECT_EQ(pdf.author, "Kranich");
    shell::PdfRequest print = pdfRequest("/d/a.html", "/d/b.pdf", "", "", "", kJournalPrintMargins);
    EXPECT_EQ(print.marginBottom, 20);
    EXPECT_EQ(print.marginTop, 40);
}

TEST(ScratchFiles, AreWrittenWholeAndRemovedQuietly) {
    const std::filesystem::path folder = makeFolder();
    ScratchFiles files = ScratchFiles::in(folder.string() + "/", "PDFPreviewTab");
    EXPECT_EQ(files.html, (folder / "PDFPreviewTab.html").string());
    EXPECT_EQ(files.pdf, (folder / "PDFPreviewTab.pdf").string());
    files.remove(); // nothing there: nothing happens

    ASSERT_TRUE(writeReportHtml(files.html, "<h2>Grafikbüro</h2>"));
    EXPECT_EQ(*core::readWholeFile(files.html), "<h2>Grafikbüro</h2>");
    files.remove();
    EXPECT_FALSE(std::filesystem::exists(files.html));

    auto failed = writeReportHtml((folder / "fehlt" / "a.html").string(), "x");
    ASSERT_FALSE(failed);
    EXPECT_NE(failed.error().message.find("fehlt/a.html"), std::string::npos);
    std::filesystem::remove_all(folder);
}

TEST(FailureAlerts, NameTheFileAndTheCause) {
    shell::AlertRequest alert = fileFailureAlert("Das PDF", "/d/a.pdf", "kein Platz");
    EXPECT_EQ(alert.title, "Fehler!");
    EXPECT_EQ(alert.text, "Das PDF ließ sich nicht schreiben: /d/a.pdf\n\nkein Platz");
    EXPECT_EQ(alert.buttons, std::vector<std::string>{"OK"});
    EXPECT_EQ(reportFailureAlert().title, "Mist!");
}
