#pragma once
// `zifora-cli report journal`: the settlement journal of one period of the book of $HOME,
// written as HTML, PDF or RTF. The book and the settings file are never changed.

#include <optional>
#include <ostream>
#include <string>

namespace zifora::shell {
class PdfRenderer;
}

namespace zifora::program {

enum class JournalOutput { Html, Pdf, Rtf };

struct JournalJob {
    std::string year;   // the year's "dateValue" ("2025")
    std::string period; // the period's title ("März")
    int client = 0;     // the index of the client in the list
    JournalOutput output = JournalOutput::Pdf;
    std::string path; // where the file goes; PDF and RTF get their extension if it lacks
};

/// Runs the journal through the program's own commands, with the save dialog answered by
/// `job.path`. Returns the exit code: 0 done; 2 the settings or the database can't be read;
/// 3 there is no database; 4 a file could not be written; 7 refused (no such client, year
/// or period, or the program's refusal). Every failure is told on `err`. PDF and RTF files
/// come from `pdf`; without one they fail with a message.
int reportJournal(const JournalJob& job, std::ostream& err, shell::PdfRenderer* pdf = nullptr);

} // namespace zifora::program
