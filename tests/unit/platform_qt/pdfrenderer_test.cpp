// Reports as PDFs: what poppler-utils read out of them (PDFs carry their dates, so the
// tests look at their properties, not their bytes).

#include "platform_qt/pdfrenderer.h"

#include "tools.h"

#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

#include <gtest/gtest.h>

#include <charconv>
#include <regex>

namespace zifora::platform_qt {
namespace {

using namespace testing;

// A report of `rows` item rows below the frame the reports share.
std::string longReport(int rows) {
    std::string html =
        "<font face=\"Lucida Grande\" size=\"2\"><h2>Müller &amp; Söhne</h2>"
        "<h3><small>Steuernummer: 12/345/67890</small></h3>"
        "<small>Datum: 25.11.2026</small><br><br><h3><b>&Uuml;bersicht März 2025"
        "</b></h3><br><br><br></font><font face=\"Lucida Grande\" size=\"4\">"
        "<table style=\"font-size:7px\" width=575 height=65 border=1\" cellspacing=1>";
    for (int i = 1; i <= rows; ++i)
        html += "<tr><td>Zeile " + std::to_string(i) + "</td><td>Büromaterial</td><td>" +
                std::to_string(i) + ",00 €</td></tr>";
    return html + "</table></font>";
}

shell::PdfRequest request(const TempFolder& folder) {
    shell::PdfRequest r;
    r.htmlPath = folder.file("PDFJournal.html");
    r.pdfPath = folder.file("PDFJournal.pdf");
    r.marginTop = 40;
    r.marginLeft = 20;
    r.marginRight = 20;
    r.marginBottom = 60;
    r.footer = "Müller & Söhne · Zifora 2025 · Seite ";
    r.title = "Zifora 2025";
    r.author = "Müller & Söhne";
    return r;
}

std::string pdfInfo(const std::string& pdf) {
    return output("pdfinfo " + shellQuoted(pdf) + " 2>&1");
}

int pageCount(const std::string& pdf) {
    std::smatch m;
    std::string info = pdfInfo(pdf);
    if (!std::regex_search(info, m, std::regex("Pages:\\s+(\\d+)"))) return 0;
    return std::stoi(m[1]);
}

std::string pageText(const std::string& pdf, int page) {
    auto p = std::to_string(page);
    return output("pdftotext -q -layout -f " + p + " -l " + p + " " + shellQuoted(pdf) + " -");
}

// Numbers of poppler's output; std::stod would follow the German locale Qt switched on.
double number(const std::string& text) {
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

struct Word {
    double xMin, yMin, xMax, yMax;
    std::string text;
};

// The words of one page with their boxes, in points from the top left.
std::vector<Word> words(const std::string& pdf, int page) {
    auto p = std::to_string(page);
    std::string html =
        output("pdftotext -q -bbox -f " + p + " -l " + p + " " + shellQuoted(pdf) + " -");
    std::vector<Word> out;
    std::regex word(
        R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)">([^<]*)</word>)re");
    for (std::sregex_iterator it(html.begin(), html.end(), word), end; it != end; ++it)
        out.push_back(
            {number((*it)[1]), number((*it)[2]), number((*it)[3]), number((*it)[4]), (*it)[5]});
    return out;
}

TEST(PdfRenderer, EveryPageOfALongReportHasTheFooterWithItsNumber) {
    TempFolder folder;
    auto r = request(folder);
    writeText(r.htmlPath, longReport(400));
    QtPdfRenderer renderer;
    auto done = renderer.render(r);
    ASSERT_TRUE(done) << done.error().message;

    const int pages = pageCount(r.pdfPath);
    ASSERT_GE(pages, 4);
    for (int page = 1; page <= pages; ++page) {
        std::string text = pageText(r.pdfPath, page);
        EXPECT_NE(text.find("Müller & Söhne · Zifora 2025 · Seite " + std::to_string(page)),
                  std::string::npos)
            << "page " << page << ":\n"
            << text;
        // The footer is drawn once a page, never with a neighbour's number.
        EXPECT_EQ(text.find("Seite " + std::to_string(page + 1)), std::string::npos);
    }
    // The rows are real text, and none is lost between the pages.
    std::string all = output("pdftotext -q " + shellQuoted(r.pdfPath) + " -");
    for (int row : {1, 57, 200, 399, 400})
        EXPECT_NE(all.find("Zeile " + std::to_string(row) + "\n"), std::string::npos) << row;
    EXPECT_NE(all.find("Übersicht März 2025"), std::string::npos);
}

TEST(PdfRenderer, FooterIsCentredInTheBottomMarginAtEightPoints) {
    TempFolder folder;
    auto r = request(folder);
    writeText(r.htmlPath, longReport(150));
    QtPdfRenderer renderer;
    ASSERT_TRUE(renderer.render(r));
    ASSERT_GE(pageCount(r.pdfPath), 2);
    for (int page : {1, 2}) {
        auto all = words(r.pdfPath, page);
        std::vector<Word> footer;
        for (const auto& w : all)
            if (w.yMin > 842 - 60) footer.push_back(w);
        ASSERT_FALSE(footer.empty());
        EXPECT_EQ(footer.front().text, "Müller");
        EXPECT_EQ(footer.back().text, std::to_string(page));
        double left = footer.front().xMin, right = footer.back().xMax;
        EXPECT_NEAR((left + right) / 2, 595.0 / 2, 1.5);
        double middle = (footer.front().yMin + footer.front().yMax) / 2;
        EXPECT_NEAR(middle, 842 - 30, 2.5);
        EXPECT_NEAR(footer.front().yMax - footer.front().yMin, 8 * 1.16, 1.5);
        // The text keeps to its margins: nothing but the footer below the text's bottom,
        // nothing above the top margin, the table's left edge at the left margin.
        for (const auto& w : all) {
            EXPECT_GE(w.yMin, 40 - 0.5) << w.text;
            EXPECT_GE(w.xMin, 20 - 0.5) << w.text;
            if (w.yMin <= 842 - 60) {
                EXPECT_LE(w.yMax, 842 - 60 + 0.5) << w.text;
            }
        }
    }
}

TEST(PdfRenderer, DocumentIsA4WithTitleAuthorAndEmbeddedFonts) {
    TempFolder folder;
    auto r = request(folder);
    writeText(r.htmlPath, longReport(3));
    QtPdfRenderer renderer;
    ASSERT_TRUE(renderer.render(r));
    std::string info = pdfInfo(r.pdfPath);
    EXPECT_NE(info.find("Page size:       595 x 842 pts (A4)\n"), std::string::npos) << info;
    EXPECT_NE(info.find("Title:           Zifora 2025\n"), std::string::npos) << info;
    EXPECT_NE(info.find("Author:          Müller & Söhne\n"), std::string::npos) << info;
    EXPECT_NE(info.find("Pages:           1\n"), std::string::npos) << info;

    std::string fonts = output("pdffonts " + shellQuoted(r.pdfPath));
    std::istringstream lines(fonts);
    std::string line;
    int listed = 0;
    for (int n = 0; std::getline(lines, line); ++n) {
        if (n < 2 || line.empty()) continue; // the heading and its rule
        ++listed;
        EXPECT_NE(line.find("DejaVuSans"), std::string::npos) << line;
        EXPECT_NE(line.find(" yes "), std::string::npos) << "not embedded: " << line;
    }
    EXPECT_GE(listed, 2) << fonts; // the plain and the bold face
}

TEST(PdfRenderer, LandscapeTurnsThePage) {
    TempFolder folder;
    auto r = request(folder);
    r.orientation = shell::PageOrientation::Landscape;
    writeText(r.htmlPath, longReport(3));
    QtPdfRenderer renderer;
    ASSERT_TRUE(renderer.render(r));
    EXPECT_NE(pdfInfo(r.pdfPath).find("842 x 595 pts (A4)"), std::string::npos)
        << pdfInfo(r.pdfPath);
    auto footer = words(r.pdfPath, 1).back();
    EXPECT_EQ(footer.text, "1");
    EXPECT_GT(footer.yMin, 595 - 60);
}

TEST(PdfRenderer, FailuresLeaveNoPdfAndNameTheCause) {
    TempFolder folder;
    QtPdfRenderer renderer;
    {
        // No HTML: an earlier run's PDF at the place goes too.
        auto r = request(folder);
        writeText(r.pdfPath, "%PDF- an earlier run");
        auto done = renderer.render(r);
        ASSERT_FALSE(done);
        EXPECT_NE(done.error().message.find("PDFJournal.html"), std::string::npos)
            << done.error().message;
        EXPECT_FALSE(fs::exists(r.pdfPath));
    }
    {
        // A folder that isn't there.
        auto r = request(folder);
        writeText(r.htmlPath, longReport(3));
        r.pdfPath = folder.file("fehlt/PDFJournal.pdf");
        auto done = renderer.render(r);
        ASSERT_FALSE(done);
        EXPECT_NE(done.error().message.find("fehlt/PDFJournal.pdf"), std::string::npos)
            << done.error().message;
        EXPECT_FALSE(fs::exists(r.pdfPath));
    }
    if (geteuid() != 0) {
        // A folder that can't be written (root writes anyway, so only for other users).
        auto r = request(folder);
        writeText(r.htmlPath, longReport(3));
        fs::permissions(folder.path(), fs::perms::owner_write, fs::perm_options::remove);
        auto done = renderer.render(r);
        fs::permissions(folder.path(), fs::perms::owner_write, fs::perm_options::add);
        ASSERT_FALSE(done);
        EXPECT_FALSE(fs::exists(r.pdfPath));
        EXPECT_TRUE(fs::directory_iterator(folder.path()) != fs::directory_iterator());
    }
    {
        // Margins that leave no room.
        auto r = request(folder);
        writeText(r.htmlPath, longReport(3));
        r.marginLeft = 400;
        r.marginRight = 400;
        EXPECT_FALSE(renderer.render(r));
        EXPECT_FALSE(fs::exists(r.pdfPath));
    }
    {
        // Nothing but what was asked for is left in the folder.
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder.path()))
            names.push_back(entry.path().filename().string());
        EXPECT_EQ(names, std::vector<std::string>{"PDFJournal.html"});
    }
}

TEST(PdfRenderer, StrayQuoteAfterTheBorderValueKeepsTheBorder) {
    EXPECT_EQ(repairedReportHtml("<table width=505 border=1\" cellspacing=0>").toStdString(),
              "<table width=505 border=1 cellspacing=0>");
    EXPECT_EQ(repairedReportHtml("<table border=\"1\">x=\"2\"").toStdString(),
              "<table border=\"1\">x=\"2\"");
    // A table's height would be a fixed one in Qt and cut the rows off.
    EXPECT_EQ(repairedReportHtml("<TABLE width=575 HEIGHT=65 border=1\"><tr><td height=9>a</td>")
                  .toStdString(),
              "<TABLE width=575 border=1><tr><td height=9>a</td>");
    auto document = reportDocument("<table border=1\"><tr><td>a</td></tr></table>"
                                   "<table border=0\"><tr><td>b</td></tr></table>",
                                   QSizeF(555, 741));
    std::vector<double> borders;
    for (auto it = document->rootFrame()->begin(); !it.atEnd(); ++it)
        if (auto* table = qobject_cast<QTextTable*>(it.currentFrame()))
            borders.push_back(table->format().border());
    EXPECT_EQ(borders, (std::vector<double>{1, 0}));
}

TEST(PdfRenderer, ALongRunOfLineBreaksStartsTheNextPage) {
    // Nine breaks or more push what follows onto a new page, with nothing empty above it;
    // fewer stay line breaks on the same page.
    TempFolder folder;
    QtPdfRenderer renderer;
    auto r = request(folder);
    std::string html = "<h2>Kopf</h2>Status<br><br><br><br><br><br><br><br>Tabellen";
    for (int i = 0; i < 13; ++i)
        html += "<br>";
    html += "<h4>Liste der Posten</h4><table><tr><td>1</td><td>Miete</td></tr>";
    writeText(r.htmlPath, html);
    ASSERT_TRUE(renderer.render(r));
    EXPECT_EQ(output("pdfinfo " + shellQuoted(r.pdfPath) + " | grep '^Pages:'"),
              "Pages:           2\n");
    const std::string first = pageText(r.pdfPath, 1);
    EXPECT_NE(first.find("Tabellen"), std::string::npos);
    EXPECT_EQ(first.find("Liste der Posten"), std::string::npos);
    const std::string second = pageText(r.pdfPath, 2);
    ASSERT_NE(second.find("Liste der Posten"), std::string::npos) << second;
    // The heading is the first line of the page.
    EXPECT_EQ(second.find_first_not_of(" \n"), second.find("Liste der Posten"));
}

TEST(PdfRenderer, PixelsOfTheHtmlArePointsOnThePage) {
    // A 505-pixel table with two equal columns: the second begins 252.5 points further right.
    TempFolder folder;
    auto r = request(folder);
    writeText(r.htmlPath,
              "<table width=505 border=0 cellspacing=0 cellpadding=0>"
              "<tr><td width=\"50%\">links</td><td width=\"50%\">rechts</td></tr></table>"
              "<p style=\"font-size:20px\">gross</p>");
    QtPdfRenderer renderer;
    ASSERT_TRUE(renderer.render(r));
    auto all = words(r.pdfPath, 1);
    ASSERT_GE(all.size(), 3u);
    EXPECT_NEAR(all[0].xMin, 20, 0.5);
    EXPECT_NEAR(all[1].xMin, 20 + 252.5, 0.5);
    EXPECT_NEAR(all[2].yMax - all[2].yMin, 20 * 1.16, 2);
}

} // namespace
} // namespace zifora::platform_qt
