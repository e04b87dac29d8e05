#include "reports/settlementjournalcontroller.h"

#include "core/atomicfile.h"
#include "core/places.h"
#include "posting/formatstring.h"
#include "reports/settlementjournal.h"
#include "shell/session.h"

#include <filesystem>
#include <vector>

namespace zifora::reports {

using shell::AlertRequest;
using shell::AlertStyle;
using shell::CommandResult;
using shell::CommandSender;

namespace {

constexpr std::string_view kPrintSheet = "tabJournalPrintSheet";
constexpr std::string_view kExportSheet = "tabJournalExportSheet";
constexpr std::string_view kPreviewTitle = "Vorschau - Abrechnung";

/// `path` with the extension the dialog enforces.
std::string withExtension(std::string path, std::string_view extension) {
    const std::string ending = "." + std::string(extension);
    if (!path.ends_with(ending)) path += ending;
    return path;
}

} // namespace

SettlementJournalController::SettlementJournalController(shell::Session& session)
    : m_session(session) {
    registerCommands();
}

void SettlementJournalController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    c.add(shell::menuCommand("openTabJournalPrint:", "Abrechnung &drucken …", shell::Menu::Books,
                             90, "Ctrl+P"),
          [this](const CommandSender&) { return openTabJournalPrint(); });
    c.add(shell::menuCommand("openTabJournalExport:", "Abrechnung e&xportieren …",
                             shell::Menu::Books, 100),
          [this](const CommandSender&) { return openTabJournalExport(); });
    c.add(shell::userCommand("closeTabJournalPrint:", "Fertig"),
          [this](const CommandSender&) { closeTabJournalPrint(); });
    c.add(shell::userCommand("cancelTabJournalExport:", "Abbrechen"),
          [this](const CommandSender&) { cancelTabJournalExport(); });
    c.add(shell::userCommand("closeTabJournalExport:", "Exportieren"),
          [this](const CommandSender&) { return closeTabJournalExport(); });
    c.add(shell::userCommand("previewJournal:", "Vorschau"),
          [this](const CommandSender&) { previewJournal(); });
    c.add(shell::userCommand("printJournal:", "Drucken …"),
          [this](const CommandSender&) { return printJournal(); });
    c.add("loadPDFTab:", [this](const CommandSender&) { return loadPDFTab(); });
    c.add("exportString", [this](const CommandSender&) {
        auto html = exportString();
        if (!html) return CommandResult::refused(html.error().message);
        return CommandResult::done({files().html});
    });
    c.add("generatePDFTab", [this](const CommandSender&) { return generatePDFTab(); });
    c.add("generateTabJournal:", [this](const CommandSender&) {
        m_session.run("infoWindowVoid");
        return generatePDFTab();
    });
    c.add("generateTabJournalVoid", [this](const CommandSender&) { return generatePDFTab(); });
}

ScratchFiles SettlementJournalController::files() const {
    return ScratchFiles::in(m_session.places().dataFolder, "PDFPreviewTab");
}

CommandResult SettlementJournalController::refuse(std::string title, std::string text) {
    m_session.services().ui.alert(
        AlertRequest{std::move(title), text, {"OK"}, AlertStyle::Warning, {}});
    return CommandResult::refused(std::move(text));
}

CommandResult SettlementJournalController::fail(std::string_view what, const std::string& path,
                                                const std::string& cause) {
    AlertRequest alert = fileFailureAlert(what, path, cause);
    m_session.services().ui.alert(alert);
    return CommandResult::refused(alert.text);
}

std::optional<CommandResult> SettlementJournalController::sheetRefusal() {
    if (!m_session.settings().getBool("firstStepsDone"))
        return refuse("Hinweis!", "Voranmeldungen vorbereiten und verwalten steht erst zur "
                                  "Verfügung nachdem du den ersten Posten erfolgreich angelegt "
                                  "hast.");
    core::Record* period = m_session.selection().currentPeriod();
    if (!period || period->items().empty())
        return refuse("Fehler!", "Du musst erst eine Abrechnung und zugehörige Posten anlegen.");
    return std::nullopt;
}

core::Result<std::string> SettlementJournalController::exportString() {
    core::Record* period = m_session.selection().currentPeriod();
    core::Record* year = m_session.selection().currentYear();
    if (!period || !year) {
        CommandResult refused =
            refuse("Fehler!", "Du musst erst eine Abrechnung und zugehörige Posten anlegen.");
        return core::fail(refused.refusal);
    }
    m_session.run("infoWindowVoid");
    const ScratchFiles scratch = files();
    scratch.remove();

    const JournalSettings settings = JournalSettings::read(m_session.settings());
    const std::string yearText = year->getText("dateValue");
    const std::string periodTitle = period->getText("title");
    m_session.settings().setString("printFooter",
                                   journalFooter(settings.report.company, periodTitle, yearText));
    m_title = posting::formatString("Übersicht %@ %@", {periodTitle, yearText});

    std::vector<const core::Record*> items;
    for (const auto& item : period->items())
        items.push_back(item.get());
    const std::string html =
        settlementJournalHtml({*period, yearText, items, settings, m_session.now()});
    if (auto written = writeReportHtml(scratch.html, html); !written) {
        fail("Das Journal der Abrechnung", scratch.html, written.error().message);
        return std::unexpected(written.error());
    }
    return html;
}

void SettlementJournalController::setActivity(bool running) {
    shell::FormFields& fields = m_session.fields();
    fields.set("tabJournalPrintActivity", core::Value::boolean(running));
    fields.set("tabJournalExportActivity", core::Value::boolean(running));
}

CommandResult SettlementJournalController::generatePDFTab() {
    shell::FormFields& fields = m_session.fields();
    fields.set("tabJournalPDFViewHidden", core::Value::boolean(true));
    setActivity(true);
    auto html = exportString();
    if (!html) {
        setActivity(false);
        return CommandResult::refused(html.error().message);
    }
    fields.set("tabJournalExportButtonEnabled", core::Value::boolean(true));
    const ScratchFiles scratch = files();
    std::error_code ignored;
    std::filesystem::remove(scratch.pdf, ignored);
    const shell::PdfRequest request =
        pdfRequest(scratch.html, scratch.pdf, m_session.settings().getString("printFooter"),
                   m_title, m_session.settings().getString("prefsCompany"));
    auto rendered = m_session.services().pdf.render(request);
    setActivity(false);
    if (!rendered) {
        std::filesystem::remove(scratch.pdf, ignored);
        return fail("Das PDF der Abrechnung", scratch.pdf, rendered.error().message);
    }
    fields.set("tabJournalPDFViewHidden", core::Value::boolean(false));
    return CommandResult::done({scratch.html, scratch.pdf});
}

CommandResult SettlementJournalController::openTabJournalPrint() {
    if (auto refusal = sheetRefusal()) return *refusal;
    m_session.services().ui.showWindow(std::string(kPrintSheet));
    return generatePDFTab();
}

CommandResult SettlementJournalController::openTabJournalExport() {
    if (auto refusal = sheetRefusal()) return *refusal;
    m_session.fields().set("tabJournalExportButtonEnabled", core::Value::boolean(false));
    m_session.services().ui.showWindow(std::string(kExportSheet));
    return generatePDFTab();
}

void SettlementJournalController::closeTabJournalPrint() {
    m_session.services().ui.hideWindow(std::string(kPrintSheet));
    m_session.fields().set("tabJournalPrintActivity", core::Value::boolean(false));
}

void SettlementJournalController::cancelTabJournalExport() {
    m_session.services().ui.hideWindow(std::string(kExportSheet));
}

CommandResult SettlementJournalController::closeTabJournalExport() {
    m_session.services().ui.hideWindow(std::string(kExportSheet));
    switch (m_session.settings().getInteger("prefsSelectedExportTab")) {
    case 0:
        return exportPdf();
    case 1:
        return exportRtf();
    default:
        return refuse("Hinweis!", "Dieses Exportformat kommt mit einer späteren Ausgabe von "
                                  "Zifora. Wähle PDF oder Text, um die Abrechnung jetzt zu "
                                  "exportieren.");
    }
}

CommandResult SettlementJournalController::exportPdf() {
    shell::DialogRequest dialog{
        shell::DialogKind::Save,  "PDF Datei Exportieren", {"pdf"}, "Abrechnung", {},
        /*canCreateFolders=*/true};
    auto chosen = m_session.services().ui.chooseFile(dialog);
    if (!chosen) return CommandResult::cancelled();
    const std::string target = withExtension(*chosen, "pdf");
    auto pdf = core::readWholeFile(files().pdf);
    if (!pdf) return fail("Das PDF der Abrechnung", target, pdf.error().message);
    if (auto written = core::writeFileAtomically(target, *pdf); !written)
        return fail("Das PDF der Abrechnung", target, written.error().message);
    m_session.services().workspace.fileWritten(target);
    return CommandResult::done({target});
}

CommandResult SettlementJournalController::exportRtf() {
    shell::DialogRequest dialog{
        shell::DialogKind::Save,  "Text Datei Exportieren", {"rtf"}, "Abrechnung", {},
        /*canCreateFolders=*/true};
    auto chosen = m_session.services().ui.chooseFile(dialog);
    if (!chosen) return CommandResult::cancelled();
    const std::string target = withExtension(*chosen, "rtf");
    if (auto written = m_session.services().pdf.writeRtf(files().html, target); !written) {
        std::error_code ignored;
        std::filesystem::remove(target, ignored);
        return fail("Die RTF-Datei der Abrechnung", target, written.error().message);
    }
    m_session.services().workspace.fileWritten(target);
    return CommandResult::done({target});
}

void SettlementJournalController::previewJournal() {
    m_session.services().scheduler.after(0.1, [this] { m_session.run("loadPDFTab:"); });
}

CommandResult SettlementJournalController::loadPDFTab() {
    const std::string pdf = files().pdf;
    if (!std::filesystem::exists(pdf))
        return refuse("Fehler!", posting::formatString(
                                     "Das PDF der Abrechnung fehlt: %@\n\nÖffne das Drucken oder "
                                     "Exportieren der Abrechnung noch einmal, damit es neu "
                                     "entsteht.",
                                     {pdf}));
    if (m_session.settings().getBool("loadInPreview.app"))
        m_session.services().workspace.openFile(pdf);
    else
        m_session.services().ui.preview(pdf, std::string(kPreviewTitle));
    return CommandResult::done();
}

CommandResult SettlementJournalController::printJournal() {
    const ScratchFiles scratch = files();
    const std::string printPdf = core::joinPath(m_session.places().dataFolder, "PDFPrintTab.pdf");
    if (!std::filesystem::exists(scratch.html))
        return refuse("Fehler!", posting::formatString(
                                     "Das Journal der Abrechnung fehlt: %@\n\nÖffne das Drucken "
                                     "der Abrechnung noch einmal, damit es neu entsteht.",
                                     {scratch.html}));
    std::error_code ignored;
    std::filesystem::remove(printPdf, ignored);
    const shell::PdfRequest request =
        pdfRequest(scratch.html, printPdf, m_session.settings().getString("printFooter"), m_title,
                   m_session.settings().getString("prefsCompany"), kJournalPrintMargins);
    if (auto rendered = m_session.services().pdf.render(request); !rendered)
        return fail("Das Journal der Abrechnung zum Drucken", printPdf, rendered.error().message);
    shell::PrintRequest print{printPdf,
                              m_title,
                              kJournalPrintMargins.top,
                              kJournalPrintMargins.left,
                              kJournalPrintMargins.right,
                              kJournalPrintMargins.bottom};
    if (!m_session.services().ui.print(print)) return CommandResult::cancelled();
    return CommandResult::done({printPdf});
}

} // namespace zifora::reports
