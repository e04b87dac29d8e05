// zifora-cli: the headless program. Its subcommands, the JSON dump format and the script
// language of `run` are a public interface; see docs/cli.md.

#include "core/jsondump.h"
#include "core/keyedarchive.h"
#include "program/demobook.h"
#include "program/reportjob.h"
#include "program/scripts.h"
#include "program/vatcommand.h"

#include <CLI/CLI.hpp>

#ifdef ZIFORA_QT_PDF
#include "platform_qt/pdfrenderer.h"
#endif

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace {

int dumpCommand(const std::string& path) {
    auto root = zifora::core::readKeyedArchiveFile(path);
    if (!root) {
        std::cerr << "zifora-cli: " << root.error().error.message << "\n";
        return root.error().missing || root.error().unreadable ? 3 : 2;
    }
    std::cout << zifora::core::dumpJson(*root) << "\n";
    return 0;
}

int loadCommand(const std::string& jsonPath, const std::string& archivePath) {
    std::ifstream in(jsonPath, std::ios::binary);
    if (!in) {
        std::cerr << "zifora-cli: " << jsonPath << ": cannot be opened\n";
        return 3;
    }
    std::stringstream text;
    text << in.rdbuf();
    auto root = zifora::core::loadJson(text.str());
    if (!root) {
        std::cerr << "zifora-cli: " << jsonPath << ": " << root.error().message << "\n";
        return 2;
    }
    auto written = zifora::core::writeKeyedArchiveFile(archivePath, *root);
    if (!written) {
        std::cerr << "zifora-cli: " << written.error().message << "\n";
        // The new file is in place; only its folder could not be synced.
        return written.error().written ? 6 : 4;
    }
    return 0;
}

// The demonstration book in `home`, or in a new folder under the temporary folder.
int demoCommand(std::string home) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (home.empty()) {
        std::string pattern = (fs::temp_directory_path(ec) / "zifora-demo-XXXXXX").string();
        if (!mkdtemp(pattern.data())) {
            std::cerr << "zifora-cli: " << pattern << ": kein Ordner für das Beispielbuch\n";
            return 4;
        }
        home = pattern;
    } else {
        fs::create_directories(home, ec);
        home = fs::absolute(home, ec).lexically_normal().string();
        while (home.size() > 1 && home.back() == '/')
            home.pop_back();
    }
    auto book = zifora::program::makeDemoBook(home);
    if (!book) {
        std::cerr << "zifora-cli: " << book.error().message << "\n";
        return 4;
    }
    std::cout << zifora::program::demoBookReport(*book);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Zifora ohne Fenster: Archive lesen und schreiben, Skripte ausführen"};
    app.require_subcommand(1);

    std::string dumpPath;
    auto* dump = app.add_subcommand(
        "dump", "Ein Archiv (Datenbank, Austauschdatei, Kontenrahmen) als JSON ausgeben");
    dump->add_option("PATH", dumpPath, "Pfad des Archivs")->required();

    std::string loadJsonPath, loadArchivePath;
    auto* load = app.add_subcommand("load", "JSON im Format von dump als Archiv schreiben");
    load->add_option("JSON", loadJsonPath, "JSON-Datei (- für die Standardeingabe)")->required();
    load->add_option("PATH", loadArchivePath, "Pfad des zu schreibenden Archivs")->required();

    std::string scriptPath;
    auto* run = app.add_subcommand(
        "run", "Ein JSON-Lines-Skript gegen den Datenordner von $HOME ausführen");
    run->add_option("SCRIPT", scriptPath, "Skriptdatei (- für die Standardeingabe)")->required();

    std::string demoHome;
    auto* demo = app.add_subcommand(
        "demo", "Ein Beispielbuch anlegen und seine Abrechnungen zusammenrechnen");
    demo->add_option("DIR", demoHome,
                     "Ordner, der als Home-Ordner dient (sonst ein neuer temporärer)");

    zifora::program::JournalJob journalJob;
    std::string journalPdf, journalHtml, journalRtf;
    auto* report = app.add_subcommand("report", "Einen Bericht aus dem Buch von $HOME schreiben");
    report->require_subcommand(1);
    auto* journal =
        report->add_subcommand("journal", "Das Journal einer Abrechnung als PDF, HTML oder RTF");
    journal->add_option("--year", journalJob.year, "Das Jahr, z. B. 2025")->required();
    journal->add_option("--period", journalJob.period, "Die Abrechnung, z. B. März")->required();
    journal->add_option("--client", journalJob.client, "Nummer des Benutzers, ab 0")
        ->default_val(0);
    auto* outputs = journal->add_option_group("Ausgabe", "genau eine Ausgabedatei");
    outputs->add_option("--pdf", journalPdf, "PDF-Datei");
    outputs->add_option("--html", journalHtml, "HTML-Datei");
    outputs->add_option("--rtf", journalRtf, "RTF-Datei");
    outputs->require_option(1);
    zifora::program::VatOptions vatOptions;
    std::string vatElster;
    auto* vat = app.add_subcommand(
        "vat", "Die Zahlen der Umsatzsteuer-Voranmeldung einer Abrechnung ausgeben");
    vat->add_option("--year", vatOptions.year, "Das Jahr (\"2025\")")->required();
    vat->add_option("--period", vatOptions.period,
                    "Die Abrechnung (\"März\", \"1. Kalendervierteljahr\")")
        ->required();
    vat->add_option("--client", vatOptions.client, "Nummer des Benutzers, ab 0")->default_val(0);
    vat->add_flag("--json", vatOptions.json, "Als JSON ausgeben");
    auto* vatElsterOption = vat->add_option(
        "--elster", vatElster, "Die Datei für das ELSTER-Programm in diesen Ordner schreiben");

    CLI11_PARSE(app, argc, argv);

    // The renderer of reports: Qt's, offscreen, where the program is built with Qt; it starts
    // Qt only when a document is first asked for, and ends it before main returns.
#ifdef ZIFORA_QT_PDF
    zifora::platform_qt::OffscreenPdfRenderer qtRenderer;
    zifora::shell::PdfRenderer* pdfRenderer = &qtRenderer;
#else
    zifora::shell::PdfRenderer* pdfRenderer = nullptr;
#endif

    if (*dump) return dumpCommand(dumpPath);
    if (*load)
        return loadCommand(loadJsonPath == "-" ? "/dev/stdin" : loadJsonPath, loadArchivePath);
    if (*run) return zifora::program::runScriptFile(scriptPath, std::cout, pdfRenderer);
    if (*demo) return demoCommand(demoHome);
    if (*journal) {
        using zifora::program::JournalOutput;
        for (auto [path, output] : {std::pair{&journalPdf, JournalOutput::Pdf},
                                    {&journalHtml, JournalOutput::Html},
                                    {&journalRtf, JournalOutput::Rtf}}) {
            if (path->empty()) continue;
            journalJob.output = output;
            journalJob.path = *path;
        }
        if (journalJob.path.empty()) {
            std::cerr << "zifora-cli: report journal: die Ausgabedatei fehlt\n";
            return 2;
        }
        return zifora::program::reportJournal(journalJob, std::cerr, pdfRenderer);
    }
    if (*vat) {
        if (*vatElsterOption) vatOptions.elster = vatElster;
        return zifora::program::vatCommand(vatOptions, std::cout, std::cerr);
    }
    return 1;
}
