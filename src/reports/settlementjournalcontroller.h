#pragma once
// The settlement journal of the selected period: its print and export sheets, the journal's
// HTML and PDF in the data folder ("PDFPreviewTab.html", "PDFPreviewTab.pdf"), the preview,
// the print dialog and the export as PDF or RTF.

#include "core/error.h"
#include "reports/reportframe.h"
#include "shell/commandcatalog.h"
#include "shell/feature.h"

#include <optional>
#include <string>

namespace zifora::shell {
class Session;
}

namespace zifora::reports {

class SettlementJournalController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Journal der Abrechnung"; }
    /// Registers `openTabJournalPrint:`, `openTabJournalExport:`, `closeTabJournalPrint:`,
    /// `cancelTabJournalExport:`, `closeTabJournalExport:`, `previewJournal:`, `loadPDFTab:`,
    /// `printJournal:`, `exportString`, `generatePDFTab`, `generateTabJournal:` and
    /// `generateTabJournalVoid`.
    explicit SettlementJournalController(shell::Session& session);

    /// The journal's scratch files in the data folder.
    [[nodiscard]] ScratchFiles files() const;

    /// Brings the totals up to date, builds the journal of the selected period, sets
    /// "printFooter" and writes the HTML atomically. A failed write shows a "Fehler!" alert
    /// naming the file and the cause, and leaves neither file.
    core::Result<std::string> exportString();
    /// The journal as a PDF: `exportString`, then the renderer with the margins 40/20/20/60.
    /// A failure ends in a "Fehler!" alert and leaves no PDF.
    shell::CommandResult generatePDFTab();

    /// The refusals of both sheets, in this order: before the first item ("firstStepsDone"),
    /// and for no period or a period without items. Shows the alert and gives the refusal;
    /// nothing when the sheets may open.
    [[nodiscard]] std::optional<shell::CommandResult> sheetRefusal();

    shell::CommandResult openTabJournalPrint();
    shell::CommandResult openTabJournalExport();
    void closeTabJournalPrint();
    void cancelTabJournalExport();
    /// Ends the export sheet and exports in the format of "prefsSelectedExportTab": 0 the
    /// PDF, 1 RTF. The other formats belong to the exports and are refused here for now.
    shell::CommandResult closeTabJournalExport();
    /// Shows the PDF 0.1 seconds later (`loadPDFTab:`).
    void previewJournal();
    shell::CommandResult loadPDFTab();
    /// The print dialog over the HTML the sheet's opening wrote, laid out with the margins
    /// 40/20/20/20 into "PDFPrintTab.pdf" for it.
    shell::CommandResult printJournal();

  private:
    void registerCommands();
    shell::CommandResult refuse(std::string title, std::string text);
    shell::CommandResult fail(std::string_view what, const std::string& path,
                              const std::string& cause);
    void setActivity(bool running);
    shell::CommandResult exportPdf();
    shell::CommandResult exportRtf();
    [[nodiscard]] std::string pdfTitle() const;

    shell::Session& m_session;
    std::string m_title; // of the journal last written, for the PDF and the print job
};

} // namespace zifora::reports
