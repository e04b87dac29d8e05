#pragma once
// The platform services the controllers call. The desktop program implements them with
// Qt; the command-line program and the tests with the headless doubles of headless.h.

#include "core/error.h"
#include "core/value.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zifora::shell {

enum class AlertStyle { Informational, Warning, Critical };

struct AlertRequest {
    std::string title;
    std::string text;
    std::vector<std::string> buttons; // the first is the default button
    AlertStyle style = AlertStyle::Warning;
    /// A sheet on a window (deleting a client, for instance) rather than a free panel.
    std::string sheetOn;
};

enum class DialogKind { Open, Save, Folder };

struct DialogRequest {
    DialogKind kind = DialogKind::Open;
    std::string title;
    std::vector<std::string> extensions; // without dots; empty: any file
    std::string suggestedName;
    std::string folder;
    bool canCreateFolders = false;
};

/// Alerts, dialogs and windows.
/// A document for the print dialog. Margins are in points.
struct PrintRequest {
    std::string pdfPath;
    std::string title;
    double marginTop = 72, marginLeft = 72, marginRight = 72, marginBottom = 72;
};

class Ui {
  public:
    virtual ~Ui() = default;
    /// Shows a modal alert. Returns 1 for the default (first) button, 0 for the second and
    /// 2 for a third.
    virtual int alert(const AlertRequest& request) = 0;
    virtual void beep() = 0;
    /// A path, or nothing when the user cancels.
    virtual std::optional<std::string> chooseFile(const DialogRequest& request) = 0;
    virtual void showWindow(const std::string& name) = 0;
    virtual void hideWindow(const std::string& name) = 0;
    /// Shows a PDF in a preview window titled `title`.
    virtual void preview(const std::string& pdfPath, const std::string& title) = 0;
    /// Offers the print dialog over a PDF; false when the user cancels it.
    virtual bool print(const PrintRequest& request) = 0;
};

using TimerId = uint64_t;

/// Delayed calls on the main loop.
class Scheduler {
  public:
    virtual ~Scheduler() = default;
    /// Runs `task` once after `seconds`; 0 means on the loop's next turn.
    virtual TimerId after(double seconds, std::function<void()> task) = 0;
    /// Runs `task` every `seconds` until cancelled.
    virtual TimerId every(double seconds, std::function<void()> task) = 0;
    virtual void cancel(TimerId id) = 0;
};

class Clock {
  public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual core::Date now() const = 0;
};

class Clipboard {
  public:
    virtual ~Clipboard() = default;
    virtual void putText(const std::string& text) = 0;
};

/// The desktop: opening files, showing them in the file manager, starting programs, mail.
class Workspace {
  public:
    virtual ~Workspace() = default;
    virtual bool openFile(const std::string& path) = 0;
    virtual bool revealFile(const std::string& path) = 0;
    virtual bool launch(const std::string& program, const std::vector<std::string>& arguments) = 0;
    virtual bool composeMail(const std::string& to, const std::string& subject,
                             const std::vector<std::string>& attachments) = 0;
    /// The program has been asked to end (by the program itself, not the user).
    virtual void terminate() = 0;
    /// A file the user will want to know of was written (an export, a report).
    virtual void fileWritten(const std::string& path) { (void)path; }
};

enum class PageOrientation { Portrait, Landscape };

/// A report's HTML and how its PDF is laid out. Margins and sizes are in points.
struct PdfRequest {
    std::string htmlPath;
    std::string pdfPath;
    double pageWidth = 595.28; // A4
    double pageHeight = 841.89;
    PageOrientation orientation = PageOrientation::Portrait;
    double marginTop = 72, marginLeft = 72, marginBottom = 72, marginRight = 72;
    /// Printed in the bottom margin of every page, followed by the page number.
    std::string footer;
    std::string title;
    std::string author;
};

/// Turns a report's HTML into a paginated PDF.
class PdfRenderer {
  public:
    virtual ~PdfRenderer() = default;
    /// Writes the PDF of `request`; on failure no PDF is left and the cause is returned.
    [[nodiscard]] virtual core::Result<void> render(const PdfRequest& request) = 0;
    /// Writes the report of `htmlPath` as an RTF file at `rtfPath`, its tables and texts kept;
    /// on failure no file is left and the cause is returned.
    [[nodiscard]] virtual core::Result<void> writeRtf(const std::string& htmlPath,
                                                      const std::string& rtfPath) = 0;
};

/// No PDF output: every request fails and says so. Stands in where no renderer is given.
class NoPdfRenderer final : public PdfRenderer {
  public:
    [[nodiscard]] core::Result<void> render(const PdfRequest& request) override {
        return core::fail(request.pdfPath +
                          ": diese Ausgabe von Zifora kann keine PDF-Dateien erzeugen");
    }
    [[nodiscard]] core::Result<void> writeRtf(const std::string&,
                                              const std::string& rtfPath) override {
        return core::fail(rtfPath + ": diese Ausgabe von Zifora kann keine RTF-Dateien erzeugen");
    }
};

/// Everything the controllers need of the platform, passed as one bundle.
struct Services {
    Ui& ui;
    Scheduler& scheduler;
    Clock& clock;
    Clipboard& clipboard;
    Workspace& workspace;
    PdfRenderer& pdf;
};

} // namespace zifora::shell
