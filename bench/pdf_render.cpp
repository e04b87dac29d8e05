// A report of many item rows, from HTML to PDF and to RTF with the Qt renderer, offscreen.
// Budget: the item list of a period of 10,000 postings becomes a PDF in at most 5 s.
//
//   zifora_bench_pdf_render [--rows=N] [--runs=N]
// Prints one line "RESULT rows=… html_kb=… pages=… pdf_kb=… pdf_s=… rtf_s=…" (best of the runs).

#include "platform_qt/pdfrenderer.h"

#include <QGuiApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

// The head of a period's journal and its item list: a table at 7 pixels, 575 pixels wide,
// one row a posting, inside the text of size 4, as the reports write it.
std::string journalHtml(int rows) {
    std::string html =
        "<font face=\"Lucida Grande\" size=\"2\"><h2>Muster GmbH</h2><h3><small>Steuernummer: "
        "12/345/67890</small></h3><small>Datum: 25.11.2026</small><br><br><h3><b>&Uuml;bersicht "
        "M&auml;rz 2025</b></h3><br><br><br></font><font face=\"Lucida Grande\" size=\"4\" "
        "class=\"f2\"><h4>Muster GmbH &middot; &Uuml;bersicht M&auml;rz 2025</h4><br><br>"
        "<table style=\"font-size:7px\" width=575 height=65 border=1\" cellspacing=1><tr>"
        "<td><b>Datum</b></td><td><b>Beleg</b></td><td><b>Titel</b></td><td><b>Kategorie</b></td>"
        "<td><b>Konto</b></td><td><b>Satz</b></td><td><b>Netto</b></td><td><b>Steuer</b></td>"
        "<td><b>Brutto</b></td></tr>";
    char row[640];
    for (int i = 0; i < rows; ++i) {
        const double gross = 1.19 * (i % 997 + 1);
        std::snprintf(row, sizeof row,
                      "<tr><td>%02d.03.25</td><td>R-%05d</td><td>Büromaterial und Porto %d</td>"
                      "<td>Bürobedarf</td><td>4930</td><td>19,00 %%</td><td>%.2f €</td>"
                      "<td>%.2f €</td><td>%.2f €</td></tr>",
                      i % 31 + 1, i, i, gross / 1.19, gross - gross / 1.19, gross);
        html += row;
    }
    return html + "</table></font>";
}

double seconds(auto&& job) {
    auto start = std::chrono::steady_clock::now();
    job();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv) {
    int rows = 10000, runs = 3;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--rows=", 7) == 0)
            rows = std::atoi(argv[i] + 7);
        else if (std::strncmp(argv[i], "--runs=", 7) == 0)
            runs = std::max(1, std::atoi(argv[i] + 7));
    }
    int qtArgc = 3;
    char name[] = "zifora_bench_pdf_render", option[] = "-platform", platform[] = "offscreen";
    char* qtArgv[] = {name, option, platform, nullptr};
    QGuiApplication app(qtArgc, qtArgv);

    std::string folder = (fs::temp_directory_path() / "zifora-bench-pdf-XXXXXX").string();
    if (!mkdtemp(folder.data())) return 1;
    zifora::shell::PdfRequest request;
    request.htmlPath = folder + "/PDFPreviewTab.html";
    request.pdfPath = folder + "/PDFPreviewTab.pdf";
    request.marginTop = 40;
    request.marginLeft = 20;
    request.marginRight = 20;
    request.marginBottom = 60;
    request.footer = "Muster GmbH · Abrechnung März 2025 · Seite ";
    request.title = "Abrechnung März 2025";
    request.author = "Muster GmbH";
    const std::string html = journalHtml(rows);
    std::ofstream(request.htmlPath, std::ios::binary) << html;

    zifora::platform_qt::QtPdfRenderer renderer;
    double pdf = 1e9, rtf = 1e9;
    bool ok = true;
    for (int run = 0; run < runs && ok; ++run) {
        pdf = std::min(pdf, seconds([&] { ok = ok && renderer.render(request).has_value(); }));
        rtf = std::min(
            rtf, seconds([&] {
                ok = ok && renderer.writeRtf(request.htmlPath, folder + "/bericht.rtf").has_value();
            }));
    }
    const auto pdfBytes = ok ? fs::file_size(request.pdfPath) : 0;
    // The page count, from the PDF's page tree ("/Count N" of its root).
    int pages = 0;
    if (ok) {
        std::ifstream in(request.pdfPath, std::ios::binary);
        std::string text((std::istreambuf_iterator<char>(in)), {});
        for (size_t at = text.find("/Count "); at != std::string::npos;
             at = text.find("/Count ", at + 1))
            pages = std::max(pages, std::atoi(text.c_str() + at + 7));
    }
    fs::remove_all(folder);
    if (!ok) {
        std::fprintf(stderr, "zifora_bench_pdf_render: the renderer failed\n");
        return 1;
    }
    std::printf("RESULT rows=%d html_kb=%.0f pages=%d pdf_kb=%.0f pdf_s=%.3f rtf_s=%.3f\n", rows,
                html.size() / 1024.0, pages, pdfBytes / 1024.0, pdf, rtf);
    return 0;
}
