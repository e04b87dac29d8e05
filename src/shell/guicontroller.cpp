#include "shell/guicontroller.h"

#include "shell/app.h"
#include "shell/resourcefolders.h"

namespace zifora::shell {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProductSite = "https://www.zifora.de";

// The pages of the built-in help that the commands open.
constexpr std::string_view kHelpIndex = "index.html";
constexpr std::string_view kMainWindowHelp = "hauptfenster.html";

} // namespace

std::string productPage(std::string_view path) {
    return std::string(kProductSite) + std::string(path);
}

GUIController::GUIController(App& app, std::optional<fs::path> helpFolder)
    : m_app(app), m_helpFolder(std::move(helpFolder)) {
    registerCommands();
    registerHelpSheets();
}

GUIController::GUIController(App& app) : GUIController(app, findHelpFolder()) {}

void GUIController::registerCommands() {
    CommandRegistry& c = m_app.commands();
    Ui* ui = &m_app.services().ui;
    Workspace* workspace = &m_app.services().workspace;
    auto show = [&c, ui](const char* command, std::string window) {
        c.add(command, [ui, window](const CommandSender&) { ui->showWindow(window); });
    };
    auto hide = [&c, ui](const char* command, std::string window) {
        c.add(command, [ui, window](const CommandSender&) { ui->hideWindow(window); });
    };
    auto web = [&c, workspace](const char* command, std::string path) {
        c.add(command,
              [workspace, path](const CommandSender&) { workspace->openFile(productPage(path)); });
    };

    show("showWelcome:", "welcome");
    hide("closeWelcome:", "welcome");
    show("showAbout:", "about");
    hide("closeAbout:", "about");
    hide("closeNewsletter:", "newsletter");
    c.add("closeNewsletterForever:", [this](const CommandSender&) {
        m_app.settings().setBool("isWelcomeerShown", true);
        m_app.services().ui.hideWindow("newsletter");
    });
    c.add("selectAssi:", [this](const CommandSender&) { selectAssi(); });
    c.add("finishAssi:", [this](const CommandSender&) { finishAssi(); });
    hide("cancelAssi:", "assistant");
    c.add("toggleHelp:", [this](const CommandSender&) { openHelpPage(kMainWindowHelp); });
    c.add("toggleDocs:", [this](const CommandSender&) { openHelpPage(kHelpIndex); });
    c.add("showSearchPopover:", [this](const CommandSender&) { showSearchPopover(); });
    web("openSupport:", "/support/");
    web("openFeedback:", "/feedback/");
    web("openACK:", "/danksagungen/");
    web("openNewsletter:", "/newsletter/");
}

void GUIController::registerHelpSheets() {
    CommandRegistry& c = m_app.commands();
    Ui* ui = &m_app.services().ui;
    for (std::string_view part : kHelpSheets) {
        const std::string name(part);
        const std::string window = "sheet" + name;
        c.add("openSheet" + name + ":",
              [ui, window](const CommandSender&) { ui->showWindow(window); });
        for (const char* verb : {"close", "cancel"})
            c.add(verb + ("Sheet" + name + ":"),
                  [ui, window](const CommandSender&) { ui->hideWindow(window); });
    }
}

void GUIController::selectAssi() {
    Ui& ui = m_app.services().ui;
    ui.hideWindow("welcome");
    ui.showWindow("assistant");
}

void GUIController::finishAssi() {
    m_app.settings().setBool("isSetupDone", true);
    m_app.settings().setInteger("jaImage", 2);
    m_app.services().ui.hideWindow("assistant");
}

void GUIController::showSearchPopover() {
    FormFields& fields = m_app.fields();
    const bool searching = !fields.text("searchField").empty();
    fields.set("searchButtonImage",
               core::Value::string(searching ? "searchBlue" : "searchTemplate"));
    m_app.services().ui.showWindow("searchPopover");
}

std::string GUIController::helpPageAddress(std::string_view page) const {
    if (m_helpFolder) {
        std::error_code ec;
        fs::path file = *m_helpFolder / std::string(page);
        if (fs::is_regular_file(file, ec)) return file.string();
    }
    return productPage("/hilfe/" + std::string(page));
}

void GUIController::openHelpPage(std::string_view page) {
    m_app.services().workspace.openFile(helpPageAddress(page));
}

} // namespace zifora::shell
