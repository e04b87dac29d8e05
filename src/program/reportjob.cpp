#include "program/reportjob.h"

#include "core/atomicfile.h"
#include "program/program.h"
#include "reports/settlementjournalcontroller.h"
#include "shell/headless.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace zifora::program {

namespace {

constexpr int kUnreadable = 2;
constexpr int kNoDatabase = 3;
constexpr int kNotWritten = 4;
constexpr int kRefused = 7;

core::Date realNow() {
    auto since = std::chrono::system_clock::now().time_since_epoch();
    return core::Date::fromUnix(std::chrono::duration<double>(since).count());
}

/// The program on the headless services, with the given renderer of PDF and RTF files (none:
/// every such file fails and says so).
struct ReportProgram {
    ReportProgram(std::ostream& out, core::Places where, shell::PdfRenderer* renderer)
        : services(out, realNow()), places(std::move(where)), settings(places.settingsFile),
          program(shell::Services{services.ui, services.scheduler, services.clock,
                                  services.clipboard, services.workspace,
                                  renderer ? *renderer : services.pdf},
                  places, settings) {}

    [[nodiscard]] shell::Session& session() { return program.session(); }

    shell::HeadlessServices services;
    core::Places places;
    core::Settings settings;
    Program program;
};

/// The index of the first record of `list` whose `key` holds `text`.
std::optional<int64_t> indexOf(const core::RecordList& list, std::string_view key,
                               const std::string& text) {
    for (size_t i = 0; i < list.size(); ++i)
        if (list[i]->getText(key) == text) return static_cast<int64_t>(i);
    return std::nullopt;
}

/// Loads the settings and the book of $HOME and selects the job's client, year and period.
/// Returns an exit code when that fails.
std::optional<int> openPeriod(ReportProgram& headless, const JournalJob& job, std::ostream& err) {
    core::Settings stored(core::Places::fromEnvironment().settingsFile);
    if (auto loaded = stored.load(); !loaded) {
        err << "zifora-cli: " << loaded.error().message << "\n";
        return kUnreadable;
    }
    for (const auto& [key, value] : stored.all())
        headless.settings.set(key, value);
    shell::Session& session = headless.session();
    const core::DataFileLocation where = session.book().locateDataFile(headless.settings);
    if (!std::filesystem::exists(where.path)) {
        err << "zifora-cli: " << where.path << ": keine Datenbank\n";
        return kNoDatabase;
    }
    if (auto loaded = session.book().load(where.path); !loaded) {
        err << "zifora-cli: " << where.path << ": " << loaded.error().message << "\n";
        return kUnreadable;
    }
    session.setClients(session.book().clients());
    shell::Selection& selection = session.selection();
    if (job.client < 0 || static_cast<size_t>(job.client) >= session.book().clients().size()) {
        err << "zifora-cli: es gibt keinen Benutzer " << job.client << "\n";
        return kRefused;
    }
    selection.clients.setSelectionIndex(job.client);
    session.selectionChanged();
    session.run("setCurrentClientToPrefs");
    auto year = indexOf(selection.currentClient()->theYears(), "dateValue", job.year);
    if (!year) {
        err << "zifora-cli: es gibt kein Jahr " << job.year << "\n";
        return kRefused;
    }
    selection.years.setSelectionIndex(*year);
    session.selectionChanged();
    auto period = indexOf(selection.currentYear()->thelists(), "title", job.period);
    if (!period) {
        err << "zifora-cli: es gibt keine Abrechnung " << job.period << " im Jahr " << job.year
            << "\n";
        return kRefused;
    }
    selection.lists.setSelectionIndex(*period);
    session.selectionChanged();
    headless.services.scheduler.runDue();
    return std::nullopt;
}

int failed(const shell::CommandResult& result, int code, std::ostream& err) {
    err << "zifora-cli: " << result.refusal << "\n";
    return code;
}

int writeHtml(reports::SettlementJournalController& journal, const std::string& path,
              std::ostream& err) {
    auto html = journal.exportString();
    if (!html) {
        err << "zifora-cli: " << html.error().message << "\n";
        return kNotWritten;
    }
    if (auto written = core::writeFileAtomically(path, *html); !written) {
        err << "zifora-cli: " << written.error().message << "\n";
        return kNotWritten;
    }
    return 0;
}

/// The export sheet's way: the journal (and its PDF), then the chooser's format with the
/// save dialog answered by the job's path.
int exportAs(ReportProgram& headless, reports::SettlementJournalController& journal,
             const JournalJob& job, std::ostream& err) {
    if (job.output == JournalOutput::Pdf) {
        if (auto made = journal.generatePDFTab(); made.outcome != shell::Outcome::Done)
            return failed(made, kNotWritten, err);
    } else if (auto html = journal.exportString(); !html) {
        err << "zifora-cli: " << html.error().message << "\n";
        return kNotWritten;
    }
    headless.settings.setInteger("prefsSelectedExportTab",
                                 job.output == JournalOutput::Pdf ? 0 : 1);
    headless.services.ui.queueChoice(job.path);
    auto exported = headless.session().run("closeTabJournalExport:");
    if (!exported || exported->outcome != shell::Outcome::Done)
        return failed(exported.value_or(shell::CommandResult::refused("nicht exportiert")),
                      kNotWritten, err);
    return 0;
}

/// A folder of its own for the run's settings: the commands write the settings now and then,
/// and the settings file of $HOME must stay as it is.
struct ScratchSettingsFolder {
    std::filesystem::path folder = [] {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "zifora-report-XXXXXX").string();
        return std::filesystem::path(mkdtemp(pattern.data()) ? pattern : std::string());
    }();
    ~ScratchSettingsFolder() {
        std::error_code ignored;
        if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
    }
};

} // namespace

int reportJournal(const JournalJob& job, std::ostream& err, shell::PdfRenderer* pdf) {
    ScratchSettingsFolder scratch;
    if (scratch.folder.empty()) {
        err << "zifora-cli: kein temporärer Ordner für die Einstellungen\n";
        return kNotWritten;
    }
    core::Places places = core::Places::fromEnvironment();
    places.settingsFile = (scratch.folder / "Zifora.plist").string();
    std::ostringstream events; // the alerts' texts come back in the commands' results
    ReportProgram headless(events, places, pdf);
    if (auto code = openPeriod(headless, job, err)) return *code;
    auto* journal = headless.program.feature<reports::SettlementJournalController>();
    if (auto refusal = journal->sheetRefusal()) return failed(*refusal, kRefused, err);
    if (job.output == JournalOutput::Html) return writeHtml(*journal, job.path, err);
    return exportAs(headless, *journal, job, err);
}

} // namespace zifora::program
