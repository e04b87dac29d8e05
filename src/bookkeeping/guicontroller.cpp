#include "bookkeeping/guicontroller.h"

#include "core/resourcefolders.h"
#include "shell/events.h"
#include "shell/session.h"

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

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

GUIController::GUIController(shell::Session& session, std::optional<fs::path> helpFolder)
    : m_session(session), m_helpFolder(std::move(helpFolder)) {
    registerCommands();
    registerHelpSheets();
}

void GUIController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    Ui* ui = &m_session.services().ui;
    Workspace* workspace = &m_session.services().workspace;
    auto show = [&c, ui](CommandInfo command, std::string window) {
        c.add(std::move(command), [ui, window](const CommandSender&) { ui->showWindow(window); });
    };
    auto hide = [&c, ui](const char* command, std::string window) {
        c.add(command, [ui, window](const CommandSender&) { ui->hideWindow(window); });
    };
    auto web = [&c, workspace](CommandInfo command, std::string path) {
        c.add(std::move(command),
              [workspace, path](const CommandSender&) { workspace->openFile(productPage(path)); });
    };

    show(menuCommand("showPrefs:", "&Einstellungen …", Menu::File, 20, "Ctrl+,"), "preferences");
    show(menuCommand("runKontenwerker:", "Kontenrahmen b&earbeiten …", Menu::MasterData, 110),
         "accountsWindow");
    show(menuCommand("showWelcome:", "&Willkommen …", Menu::Help, 30), "welcome");
    hide("closeWelcome:", "welcome");
    show(menuCommand("showAbout:", "Ü&ber Zifora", Menu::Help, 130), "about");
    hide("closeAbout:", "about");
    hide("closeNewsletter:", "newsletter");
    c.add("closeNewsletterForever:", [this](const CommandSender&) {
        m_session.settings().setBool("isWelcomeerShown", true);
        m_session.services().ui.hideWindow("newsletter");
    });
    c.add(shell::menuCommand("selectAssi:", "&Einrichtungsassistent …", shell::Menu::Help, 40),
          [this](const CommandSender&) { selectAssi(); });
    c.add("finishAssi:", [this](const CommandSender&) { finishAssi(); });
    hide("cancelAssi:", "assistant");
    c.add(shell::menuCommand("toggleHelp:", "Hilfe zum &Hauptfenster", shell::Menu::Help, 20,
                             "Shift+F1"),
          [this](const CommandSender&) { openHelpPage(kMainWindowHelp); });
    c.add(shell::menuCommand("toggleDocs:", "&Zifora-Hilfe", shell::Menu::Help, 10, "F1"),
          [this](const CommandSender&) { openHelpPage(kHelpIndex); });
    c.add("showSearchPopover:", [this](const CommandSender&) { showSearchPopover(); });
    c.add("showMultiPopOver:",
          [this](const CommandSender& sender) { return showMultiPopOver(sender.tag); });
    hide("closeMultiPopOver:", "multiPopover");
    web(menuCommand("openSupport:", "&Support …", Menu::Help, 100), "/support/");
    web(menuCommand("openFeedback:", "&Feedback senden …", Menu::Help, 110), "/feedback/");
    web(menuCommand("openACK:", "&Danksagungen …", Menu::Help, 120), "/danksagungen/");
    web(menuCommand("openNewsletter:", "&Newsletter bestellen …", Menu::Help, 90), "/newsletter/");
}

void GUIController::registerHelpSheets() {
    shell::CommandCatalog& c = m_session.commands();
    Ui* ui = &m_session.services().ui;
    // The menu's words for the four sheets, in the order of kHelpSheets.
    static constexpr const char* kLabels[] = {"E&rste Schritte …", "Zifora einri&chten …",
                                              "&Konten und Kategorien …", "&Posten erfassen …"};
    int position = 50;
    for (size_t i = 0; i < std::size(kHelpSheets); ++i) {
        const std::string name(kHelpSheets[i]);
        const std::string window = "sheet" + name;
        c.add(menuCommand("openSheet" + name + ":", kLabels[i], Menu::Help, position),
              [ui, window](const CommandSender&) { ui->showWindow(window); });
        position += 10;
        for (const char* verb : {"close", "cancel"})
            c.add(verb + ("Sheet" + name + ":"),
                  [ui, window](const CommandSender&) { ui->hideWindow(window); });
    }
}

void GUIController::selectAssi() {
    Ui& ui = m_session.services().ui;
    ui.hideWindow("welcome");
    ui.showWindow("assistant");
}

void GUIController::finishAssi() {
    m_session.settings().setBool("isSetupDone", true);
    m_session.settings().setInteger("jaImage", 2);
    m_session.services().ui.hideWindow("assistant");
}

void GUIController::showSearchPopover() {
    FormFields& fields = m_session.fields();
    const bool searching = !fields.text("searchField").empty();
    fields.set("searchButtonImage",
               core::Value::string(searching ? "searchBlue" : "searchTemplate"));
    m_session.services().ui.showWindow("searchPopover");
}

std::string_view multiPopOverView(int tag) {
    switch (tag) {
    case 1:
        return "itemDate";
    case 2:
        return "calculator";
    case 3:
        return "accounts";
    case 4:
        return "categories";
    case 5:
        return "templates";
    case 6:
        return "itemSettings";
    case 7:
        return "itemHelp";
    case 8:
        return "voranmeldungSettings";
    case 9:
        return "voranmeldungHelp";
    case 10:
        return "voranmeldungComment";
    case 11:
        return "yearHelp";
    case 12:
        return "yearComment";
    case 13:
        return "periodHelp";
    case 14:
        return "periodComment";
    case 47:
        return "itemDatev";
    case 99:
        return "openTaxes";
    default:
        return "";
    }
}

CommandResult GUIController::showMultiPopOver(int tag) {
    const std::string_view view = multiPopOverView(tag);
    if (view.empty())
        return CommandResult::refused("Keine Ansicht zur Marke " + std::to_string(tag));
    m_session.fields().set("multiPopoverView", core::Value::string(view));
    m_session.events().publish(MultiPopOverShown{tag});
    m_session.services().ui.showWindow("multiPopover");
    return CommandResult::done();
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
    m_session.services().workspace.openFile(helpPageAddress(page));
}

} // namespace zifora::bookkeeping
