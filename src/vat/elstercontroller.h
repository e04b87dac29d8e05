#pragma once
// The hand-over of the selected period's advance return to an ELSTER client: the text form
// on the clipboard, the XML file in the client's outbox folder, a one-time notice and, where
// the preferences name one, the start of the client program. The figures are those of the
// last run of the totals, which the advance-return window has just made.
//
// Settings: "winstonOutboxPath" (the outbox folder; none: $XDG_DATA_HOME/Winston/Ausgang/,
// never created by the program) and "elsterClientProgram" (the program to start; none:
// nothing is started and nothing is said).

#include "shell/commandcatalog.h"
#include "shell/feature.h"

#include <string>
#include <string_view>

namespace zifora::shell {
class Session;
}

namespace zifora::vat {

/// The page of the ELSTER client Winston and the encyclopaedia's page on tax numbers.
inline constexpr std::string_view kWinstonPage = "https://www.felfri.de/winston/";
inline constexpr std::string_view kSteuernummerPage = "https://de.wikipedia.org/wiki/Steuernummer";

class ElsterController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "ELSTER-Übergabe"; }
    /// Registers `doTheWinston:`, `winstonWebseite:`, `elsterNummer:`,
    /// `chooseWinstonOutbox:` and `chooseElsterClient:`.
    explicit ElsterController(shell::Session& session);

    shell::CommandResult doTheWinston();
    /// The outbox folder the hand-over writes to, with a trailing slash.
    [[nodiscard]] std::string outboxFolder() const;

  private:
    void registerCommands();
    void showNoticeOnce();
    void startClient();
    shell::CommandResult chooseOutbox();
    shell::CommandResult chooseClient();

    shell::Session& m_session;
};

} // namespace zifora::vat
