#include "vat/elstercontroller.h"

#include "core/atomicfile.h"
#include "core/record.h"
#include "posting/numberformat.h"
#include "shell/session.h"
#include "vat/handover.h"

#include <array>

namespace zifora::vat {

using namespace shell;
using core::Value;

namespace {

constexpr std::string_view kNotice =
    "Sofern Winston auf deinem Mac installiert ist - generiert Zifora jetzt direkt passend die "
    "nötigen Daten und öffnet Winston mit eben diesen fein säuberlich im Ausgangskorb abgelegt "
    "und du kannst sie direkt in Winston weiter bearbeiten bzw. gleich versenden.\n\n"
    "Winston ist ein eigenständiges Programm, an dem sein Autor viel Zeit und Mühe "
    "aufgewendet hat. Wenn du es nutzt, dann zahle bitte auch die kleine Gebühr, um die er "
    "bittet, direkt an ihn - so bleibt Winston uns allen erhalten.\n\n"
    "Bitte bachte, dass du dazu deine ELSTER Nummer in den Zifora Einstellungen richtig "
    "angegeben haben musst und der Ausgangskorb in Winston aktiviert ist.";

constexpr std::string_view kStartFailed =
    "Winston konnte nicht erfolgreich geöffnet werden. Bitte sicherstellen, dass Winston "
    "ordentlich auf deinem Mac installiert und eingerichtet ist.";

AlertRequest okAlert(std::string_view title, std::string text) {
    return AlertRequest{std::string(title), std::move(text), {"OK"}, AlertStyle::Warning, {}};
}

} // namespace

ElsterController::ElsterController(shell::Session& session) : m_session(session) {
    registerCommands();
}

void ElsterController::registerCommands() {
    CommandCatalog& c = m_session.commands();
    Workspace* workspace = &m_session.services().workspace;
    c.add(userCommand("doTheWinston:", "An ELSTER-Programm übergeben"),
          [this](const CommandSender&) { return doTheWinston(); });
    c.add(userCommand("winstonWebseite:", "Webseite von Winston"),
          [workspace](const CommandSender&) { workspace->openFile(std::string(kWinstonPage)); });
    c.add(
        userCommand("elsterNummer:", "Was ist die ELSTER-Steuernummer?"),
        [workspace](const CommandSender&) { workspace->openFile(std::string(kSteuernummerPage)); });
    c.add(userCommand("chooseWinstonOutbox:", "Ausgangsordner wählen …"),
          [this](const CommandSender&) { return chooseOutbox(); });
    c.add(userCommand("chooseElsterClient:", "ELSTER-Programm wählen …"),
          [this](const CommandSender&) { return chooseClient(); });
}

std::string ElsterController::outboxFolder() const {
    std::string folder = m_session.settings().getString("winstonOutboxPath");
    if (folder.empty()) return defaultOutboxFolder(m_session.places());
    folder = core::expandTilde(folder, m_session.places().home);
    if (!folder.ends_with('/')) folder += '/';
    return folder;
}

CommandResult ElsterController::doTheWinston() {
    core::Settings& settings = m_session.settings();
    Selection& selection = m_session.selection();
    const core::Record* period = selection.currentPeriod();
    const core::Record* year = selection.currentYear();
    const HandOverHead head{settings.get("prefsCompany"), settings.get("prefsTaxID"),
                            settings.get("prefsELSTERID"), period ? period->get("title") : Value{},
                            year ? year->get("dateValue") : Value{}};

    std::array<std::string, 6> fieldTexts;
    Kennzahlen figures;
    for (size_t i = 0; i < kennzahlSources().size(); ++i) {
        const KennzahlSource& source = kennzahlSources()[i];
        if (i < fieldTexts.size())
            fieldTexts[i] = figureFieldText(m_session.fields().get(source.field));
        figures.*source.figure = settings.getFloat("tab-" + std::string(source.field));
    }
    m_session.services().clipboard.putText(clipboardText(head, fieldTexts));

    const std::string path = outboxFolder() + winstonFileName(head);
    const posting::AmountFormats formats;
    auto written = core::writeFileAtomically(path, winstonXml(head, figures, formats));
    if (written) {
        m_session.services().workspace.fileWritten(path);
    } else {
        m_session.services().ui.alert(
            okAlert("Fehler!", "Die Datei für das ELSTER-Programm konnte nicht geschrieben "
                               "werden.\n\n" +
                                   written.error().message));
    }
    showNoticeOnce();
    startClient();
    if (!written) return CommandResult::refused(written.error().message);
    return CommandResult::done({path});
}

void ElsterController::showNoticeOnce() {
    core::Settings& settings = m_session.settings();
    if (settings.getBool("1winston")) return;
    m_session.services().ui.alert(okAlert("Hinweis!", std::string(kNotice)));
    settings.setBool("1winston", true);
}

void ElsterController::startClient() {
    const std::string program = m_session.settings().getString("elsterClientProgram");
    if (program.empty()) return;
    if (!m_session.services().workspace.launch(program, {}))
        m_session.services().ui.alert(okAlert("Fehler!", std::string(kStartFailed)));
}

CommandResult ElsterController::chooseOutbox() {
    DialogRequest request;
    request.kind = DialogKind::Folder;
    request.title = "Ausgangsordner des ELSTER-Programms wählen";
    request.folder = outboxFolder();
    auto chosen = m_session.services().ui.chooseFile(request);
    if (!chosen) return CommandResult::cancelled();
    m_session.settings().setString("winstonOutboxPath", *chosen);
    return CommandResult::done();
}

CommandResult ElsterController::chooseClient() {
    DialogRequest request;
    request.kind = DialogKind::Open;
    request.title = "ELSTER-Programm wählen";
    auto chosen = m_session.services().ui.chooseFile(request);
    if (!chosen) return CommandResult::cancelled();
    m_session.settings().setString("elsterClientProgram", *chosen);
    return CommandResult::done();
}

} // namespace zifora::vat
