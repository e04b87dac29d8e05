// Reports as RTF: the exact bytes of a small report, and what LibreOffice reads out of it.

#include "platform_qt/pdfrenderer.h"

#include "tools.h"

#include <QTextDocument>

#include <gtest/gtest.h>

#include <regex>

namespace zifora::platform_qt {
namespace {

using namespace testing;

const std::string kGolden = std::string(ZIFORA_SOURCE_DIR) + "/tests/unit/platform_qt/golden/";

// Compares with the golden file; ZIFORA_UPDATE_GOLDEN=1 writes it instead.
void expectGolden(const std::string& name, const std::string& bytes) {
    if (std::getenv("ZIFORA_UPDATE_GOLDEN")) writeText(kGolden + name, bytes);
    EXPECT_EQ(bytes, readText(kGolden + name)) << "differs from " << name;
}

std::string rtfOf(const std::string& html) {
    auto document = reportDocument(QString::fromStdString(html), QSizeF(555.28, 741.89));
    return rtfFromDocument(*document).toStdString();
}

TEST(RtfWriter, ReportMatchesItsGoldenFile) {
    TempFolder folder;
    QtPdfRenderer renderer;
    auto done = renderer.writeRtf(kGolden + "report.html", folder.file("report.rtf"));
    ASSERT_TRUE(done) << done.error().message;
    expectGolden("report.rtf", readText(folder.file("report.rtf")));
}

TEST(RtfWriter, TextsAreEscapedAndOutsideCharactersCoded) {
    std::string rtf = rtfOf("<p>{A}\\B – 5 € für Ω<br>neue Zeile&nbsp;x</p>");
    EXPECT_NE(rtf.find("\\{A\\}\\\\B \\'96 5 \\'80 f\\'fcr \\u937?\\line neue Zeile\\~x"),
              std::string::npos)
        << rtf;
    // Outside the BMP: a surrogate pair of \u values.
    EXPECT_NE(rtfOf("<p>&#x1F600;</p>").find("\\u-10179?\\u-8704?"), std::string::npos);
    // Only ASCII in the file itself.
    for (unsigned char c : rtfOf("<p>Äöü ß €</p>"))
        EXPECT_LT(c, 0x80);
}

TEST(RtfWriter, FormatsOfTheRuns) {
    std::string rtf =
        rtfOf("<p><b>fett</b> <i>schräg</i> <u>unten</u> <font color=\"#ff0000\">rot</font>"
              " <span style=\"font-size:7px\">klein</span></p><h2>Kopf</h2>"
              "<p align=right>rechts</p><p align=center>mitte</p>");
    EXPECT_NE(rtf.find("{\\fs24\\b fett}"), std::string::npos) << rtf;
    EXPECT_NE(rtf.find("{\\fs24\\i schr\\'e4g}"), std::string::npos);
    EXPECT_NE(rtf.find("{\\fs24\\ul unten}"), std::string::npos);
    EXPECT_NE(rtf.find("{\\colortbl;\\red255\\green0\\blue0;}"), std::string::npos);
    EXPECT_NE(rtf.find("{\\fs24\\cf1 rot}"), std::string::npos);
    EXPECT_NE(rtf.find("{\\fs14 klein}"), std::string::npos);
    EXPECT_NE(rtf.find("{\\fs36\\b Kopf}"), std::string::npos); // h2: one and a half times
    // The pixels of an inner element win over the size of an outer font element.
    EXPECT_NE(rtfOf("<font size=4><table style=\"font-size:7px\"><tr><td>klein</td></tr></table>"
                    "gross</font>")
                  .find("{\\fs14 klein}\\cell"),
              std::string::npos);
    EXPECT_NE(rtfOf("<font size=4>gross</font>").find("{\\fs28 gross}"), std::string::npos);
    EXPECT_NE(rtf.find("\\pard\\qr\\sb240\\sa240 {\\fs24 rechts}"), std::string::npos);
    EXPECT_NE(rtf.find("\\pard\\qc\\sb240\\sa240 {\\fs24 mitte}"), std::string::npos);
}

TEST(RtfWriter, TablesKeepTheirSpansAndBorders) {
    std::string rtf =
        rtfOf("<table width=400 border=1 cellspacing=0 cellpadding=0>"
              "<tr><td colspan=2 width=\"50%\">oben</td><td rowspan=2>rechts</td></tr>"
              "<tr><td width=\"25%\">a</td><td width=\"25%\">b</td></tr></table>");
    // Row 1: a cell over two columns and the start of a merged column; row 2 goes on with it.
    EXPECT_NE(rtf.find("\\row\n"), std::string::npos) << rtf;
    auto first = rtf.find("\\trowd"), second = rtf.find("\\trowd", first + 1);
    ASSERT_NE(second, std::string::npos);
    std::string row1 = rtf.substr(first, second - first), row2 = rtf.substr(second);
    auto count = [](const std::string& s, const std::string& what) {
        int n = 0;
        for (auto at = s.find(what); at != std::string::npos; at = s.find(what, at + 1))
            ++n;
        return n;
    };
    EXPECT_EQ(count(row1, "\\cellx"), 2) << row1;
    EXPECT_EQ(count(row1, "\\clvmgf"), 1);
    EXPECT_EQ(count(row2, "\\cellx"), 3) << row2;
    EXPECT_EQ(count(row2, "\\clvmrg"), 1);
    EXPECT_EQ(count(row1, "\\clbrdrt\\brdrs"), 2);
    // The edges follow the layout: 400 points in all, the spanned cell over half of it.
    auto edges = [](const std::string& row) {
        std::vector<int> out;
        std::regex number(R"re(\\(?:trleft|cellx)(\d+))re");
        for (std::sregex_iterator it(row.begin(), row.end(), number), end; it != end; ++it)
            out.push_back(std::stoi((*it)[1]));
        return out;
    };
    auto top = edges(row1), bottom = edges(row2);
    ASSERT_EQ(top.size(), 3u);
    ASSERT_EQ(bottom.size(), 4u);
    EXPECT_EQ(top[0], bottom[0]);
    EXPECT_NEAR(top[2] - top[0], 8000, 40);
    EXPECT_NEAR(top[1] - top[0], 4000, 40);
    EXPECT_EQ(top[1], bottom[2]);
    EXPECT_NEAR(bottom[1] - bottom[0], 2000, 40);
    EXPECT_EQ(top[2], bottom[3]);
}

TEST(RtfWriter, FailureLeavesNoFile) {
    TempFolder folder;
    QtPdfRenderer renderer;
    std::string target = folder.file("bericht.rtf");
    writeText(target, "{\\rtf1 alt}");
    auto done = renderer.writeRtf(folder.file("fehlt.html"), target);
    ASSERT_FALSE(done);
    EXPECT_NE(done.error().message.find("fehlt.html"), std::string::npos);
    EXPECT_FALSE(fs::exists(target));
    EXPECT_FALSE(renderer.writeRtf(kGolden + "report.html", folder.file("nicht/da.rtf")));
}

// LibreOffice opens the RTF as its users would and finds the head, the tables and the rows.
TEST(RtfWriter, LibreOfficeReadsTheTablesAndTexts) {
    if (!haveProgram("soffice"))
        GTEST_SKIP() << "soffice is not installed (libreoffice-writer-nogui)";
    TempFolder folder;
    QtPdfRenderer renderer;
    ASSERT_TRUE(renderer.writeRtf(kGolden + "report.html", folder.file("bericht.rtf")));
    std::string command = "cd " + shellQuoted(folder.path().string()) +
                          " && HOME=" + shellQuoted(folder.path().string()) +
                          " timeout 120 soffice --headless --norestore"
                          " -env:UserInstallation=file://" +
                          folder.path().string() +
                          "/profile"
                          " --convert-to 'txt:Text (encoded):UTF8' bericht.rtf >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::string text = readText(folder.file("bericht.txt"));
    ASSERT_FALSE(text.empty());
    for (const char* expected :
         {"Müller & Söhne", "Steuernummer: 12/345/67890", "Übersicht März 2025", "Zahlung",
          "Nachzahlung", "Erstattung", "Saldo", "1.234,56 €", "1.246,56 €", "Steuersatz 1 (19 %)",
          "Büromaterial „Spezial“ {A}\\B", "Honorar – Projekt Ω", "1.190,00", "-11,90"})
        EXPECT_NE(text.find(expected), std::string::npos) << expected << " not in:\n" << text;
    // The table cells come out as cells: a row's texts in order, one cell a line.
    EXPECT_NE(text.find("Zahlung\nNachzahlung\nErstattung\nSaldo"), std::string::npos) << text;
    EXPECT_NE(text.find("03.03.25\nBüromaterial"), std::string::npos) << text;
}

} // namespace
} // namespace zifora::platform_qt
