#include "shell/openfile.h"

#include "shell/app.h"

namespace zifora::shell {

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

OpenFileController::OpenFileController(App& app) : m_app(app) {
    m_app.commands().add("application:openFile:",
                         [this](const CommandSender& sender) { applicationOpenFile(sender.path); });
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
    core::Settings& settings = m_app.settings();
    if (!settings.getBool("isSetupDone")) {
        m_app.services().ui.alert(
            AlertRequest{"Fehler!", notSetUpText(kind), {"OK"}, AlertStyle::Warning, {}});
        return false;
    }
    settings.setBool("isZifProAction", true); // for all three kinds alike
    settings.setString("importFilePath", path);
    if (!settings.getBool("prefsUseMultipleAccounts"))
        m_app.services().scheduler.after(kHandOverDelay, [this, kind] { notifyImport(kind); });
    else if (settings.getBool("isSaveAllowed"))
        notifyImport(kind);
    return true;
}

// The hooks are read when the import is due, so an import set up later is still reached.
void OpenFileController::notifyImport(OpenedFileKind kind) {
    const std::function<void()>* hook = nullptr;
    switch (kind) {
    case OpenedFileKind::GrandTotalHandOver:
        hook = &m_app.sendZifProNotification;
        break;
    case OpenedFileKind::MoneyMoneyHandOver:
        hook = &m_app.sendMoneyMoneyNotification;
        break;
    case OpenedFileKind::BillHandOver:
        hook = &m_app.sendBillNotification;
        break;
    case OpenedFileKind::Other:
        return;
    }
    if (*hook) (*hook)();
}

void OpenFileController::refuseOtherFile() {
    core::Settings& settings = m_app.settings();
    settings.setBool("isZifProAction", false);
    settings.setString("importFilePath", "");
    m_app.services().ui.alert(
        AlertRequest{"Hinweis!", kUseTheMenu, {"OK"}, AlertStyle::Warning, {}});
}

} // namespace zifora::shell
