#include "bookkeeping/openfile.h"

#include "shell/events.h"
#include "shell/session.h"

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

namespace {

// The hand-over imports leave a starting program this much time for its load.
constexpr double kHandOverDelay = 1.7;

constexpr const char* kGrandTotalNotSetUp =
    "Der GrandTotal Import steht erst zur Verfügung, nachdem du Zifora eingerichtet hast.";
constexpr const char* kMoneyMoneyNotSetUp =
    "Der MoneyMoney Import steht erst zur Verfügung, nachdem du Zifora eingerichtet hast.";
constexpr const char* kBillNotSetUp =
    "Der Bill Import steht erst zur Verfügung, nachdem du Zifora eingerichtet hast.";

constexpr const char* kUseTheMenu =
    "Um die Sicherheit deiner Zifora-Datenbank zu gewährleisten - benutze bitte das \"Ablage "
    "Menü\" und dort den Menüpunkt \"Zifora Daten\" um Abrechnungen, Konten, Jahre oder ganze "
    "Datenbanken zu importieren oder exportieren. Um Posten zu importieren bitte den Menüpunkt "
    "\"Posten importieren …\" verwenden.";

const char* notSetUpText(OpenedFileKind kind) {
    switch (kind) {
    case OpenedFileKind::GrandTotalHandOver:
        return kGrandTotalNotSetUp;
    case OpenedFileKind::MoneyMoneyHandOver:
        return kMoneyMoneyNotSetUp;
    case OpenedFileKind::BillHandOver:
        return kBillNotSetUp;
    case OpenedFileKind::Other:
        break;
    }
    return "";
}

} // namespace

OpenedFileKind openedFileKind(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    const size_t slash = path.rfind('/');
    const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    const size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return OpenedFileKind::Other;
    const std::string_view extension = name.substr(dot + 1);
    if (extension == "zifpro") return OpenedFileKind::GrandTotalHandOver;
    if (extension == "zifmm") return OpenedFileKind::MoneyMoneyHandOver;
    if (extension == "zifbill") return OpenedFileKind::BillHandOver;
    return OpenedFileKind::Other;
}

OpenFileController::OpenFileController(shell::Session& session) : m_session(session) {
    m_session.commands().add("application:openFile:", [this](const CommandSender& sender) {
        return applicationOpenFile(sender.path)
                   ? CommandResult::done()
                   : CommandResult::refused("Die Datei wurde nicht übernommen.");
    });
}

bool OpenFileController::applicationOpenFile(const std::string& path) {
    const OpenedFileKind kind = openedFileKind(path);
    if (kind == OpenedFileKind::Other) {
        refuseOtherFile();
        return false;
    }
    return takeHandOver(kind, path);
}

bool OpenFileController::takeHandOver(OpenedFileKind kind, const std::string& path) {
    core::Settings& settings = m_session.settings();
    if (!settings.getBool("isSetupDone")) {
        m_session.services().ui.alert(
            AlertRequest{"Fehler!", notSetUpText(kind), {"OK"}, AlertStyle::Warning, {}});
        return false;
    }
    settings.setBool("isZifProAction", true); // for all three kinds alike
    settings.setString("importFilePath", path);
    if (!settings.getBool("prefsUseMultipleAccounts"))
        m_session.services().scheduler.after(kHandOverDelay, [this, kind] { notifyImport(kind); });
    else if (settings.getBool("isSaveAllowed"))
        notifyImport(kind);
    return true;
}

// The import of the file's program hears of it when it is due.
void OpenFileController::notifyImport(OpenedFileKind kind) {
    HandOverKind handOver = HandOverKind::GrandTotal;
    switch (kind) {
    case OpenedFileKind::GrandTotalHandOver:
        handOver = HandOverKind::GrandTotal;
        break;
    case OpenedFileKind::MoneyMoneyHandOver:
        handOver = HandOverKind::MoneyMoney;
        break;
    case OpenedFileKind::BillHandOver:
        handOver = HandOverKind::Bill;
        break;
    case OpenedFileKind::Other:
        return;
    }
    m_session.events().publish(
        HandOverArrived{handOver, m_session.settings().getString("importFilePath")});
}

void OpenFileController::refuseOtherFile() {
    core::Settings& settings = m_session.settings();
    settings.setBool("isZifProAction", false);
    settings.setString("importFilePath", "");
    m_session.services().ui.alert(
        AlertRequest{"Hinweis!", kUseTheMenu, {"OK"}, AlertStyle::Warning, {}});
}

} // namespace zifora::bookkeeping
