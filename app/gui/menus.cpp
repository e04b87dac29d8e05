#include "menus.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

#include <set>

namespace zifora::gui {

namespace {

struct MenuEntry {
    const char* menu;
    const char* command;
    const char* label;
    const char* shortcut;
    int tag = 0;
};

// The order of this table is the order of the menus and their entries.
constexpr MenuEntry kEntries[] = {
    {"&Ablage", "save:", "&Sichern", "Ctrl+S"},
    {"&Ablage", "showPrefs:", "&Einstellungen …", "Ctrl+,"},
    {"&Ablage", "restart:", "Neu s&tarten", ""},
    {"&Ablage", "exportAccountsCSV:", "&Konten als CSV exportieren …", ""},
    {"&Ablage", "terminate:", "Zifora &beenden", "Ctrl+Q"},
    {"&Bücher", "addYear:", "Neues &Jahr", "Ctrl+Shift+J"},
    {"&Bücher", "editYear:", "Jahr &bearbeiten …", ""},
    {"&Bücher", "deleteYear:", "Jahr &löschen …", ""},
    {"&Bücher", "addList:", "Neue &Abrechnung", "Ctrl+Shift+A"},
    {"&Bücher", "editList:", "Abrechnung bea&rbeiten …", ""},
    {"&Bücher", "deleteList:", "Abrechnung lös&chen …", ""},
    {"&Bücher", "infoWindowVoid", "&Summen der Abrechnung berechnen", ""},
    {"&Bücher", "changeAlLCalculates:", "Alle Posten &neu berechnen …", ""},
    {"&Posten", "addItem:", "&Neuer Posten", "Ctrl+N"},
    {"&Posten", "editItem:", "Posten &bearbeiten", "Ctrl+E"},
    {"&Posten", "duplicateItem:", "Posten &duplizieren", "Ctrl+D"},
    {"&Posten", "openSplitWindow:", "Posten &aufteilen …", "Ctrl+Shift+T"},
    {"&Posten", "ArrayControllerItem.remove:", "Posten &löschen …", "Del"},
    {"&Posten", "selectPrevious:", "&Vorheriger Posten", "Ctrl+Up"},
    {"&Posten", "selectNext:", "Nächs&ter Posten", "Ctrl+Down"},
    {"&Stammdaten", "addAccount:", "Neues &Konto", ""},
    {"&Stammdaten", "removeAccount:", "Konto &löschen …", ""},
    {"&Stammdaten", "addGroup:", "Neue K&ategorie", ""},
    {"&Stammdaten", "removeGroup:", "Kategorie lös&chen …", ""},
    {"&Stammdaten", "addTemplate:", "Neue &Vorlage", ""},
    {"&Stammdaten", "makeTemplateFromItem:", "Vorlage aus &Posten erstellen", ""},
    {"&Stammdaten", "removeTemplate:", "V&orlage löschen …", ""},
    {"&Stammdaten", "loadCompleteAccounts:", "Kontenrahmen SKR04 voll&ständig laden …", ""},
    {"&Stammdaten", "loadDefaultAccounts:", "Kontenrahmen SKR04 S&tandard laden …", ""},
    {"&Stammdaten", "loadMinimalAccounts:", "Kontenrahmen &minimal laden …", ""},
    {"&Stammdaten", "runKontenwerker:", "Kontenrahmen b&earbeiten …", ""},
    {"Ben&utzer", "createClient:", "&Neuer Benutzer", "Ctrl+Shift+N"},
    {"Ben&utzer", "deleteClient:", "Benutzer &löschen …", ""},
    {"Ben&utzer", "changeCurrentClient:", "Benutzerdaten &übernehmen", ""},
    {"Sp&eicherorte", "setLibraryPath:", "Speicherort der &Datenbank …", ""},
    {"Sp&eicherorte", "setBackupPath:", "Speicherort der &Backups …", ""},
    {"Sp&eicherorte", "setDocumentsPath:", "Speicherort der D&okumente …", ""},
    {"&Datenbank", "migrateWithTag:", "&Alte Datenbank migrieren …", "", 0},
    {"&Datenbank", "doTheManualMigration", "Datenbank von &Hand migrieren …", ""},
    {"&Datenbank", "openMigrationHelp:", "Anleitung zur &Migration", ""},
    {"&Hilfe", "toggleDocs:", "&Zifora-Hilfe", "F1"},
    {"&Hilfe", "toggleHelp:", "Hilfe zum &Hauptfenster", "Shift+F1"},
    {"&Hilfe", "showWelcome:", "&Willkommen …", ""},
    {"&Hilfe", "selectAssi:", "&Einrichtungsassistent …", ""},
    {"&Hilfe", "openSheetFirst:", "E&rste Schritte …", ""},
    {"&Hilfe", "openSheetAssi:", "Zifora einri&chten …", ""},
    {"&Hilfe", "openSheetAccount:", "&Konten und Kategorien …", ""},
    {"&Hilfe", "openSheetEntry:", "&Posten erfassen …", ""},
    {"&Hilfe", "openNewsletter:", "&Newsletter bestellen …", ""},
    {"&Hilfe", "openSupport:", "&Support …", ""},
    {"&Hilfe", "openFeedback:", "&Feedback senden …", ""},
    {"&Hilfe", "openACK:", "&Danksagungen …", ""},
    {"&Hilfe", "showAbout:", "Ü&ber Zifora", ""},
};

// Commands that are steps of the program rather than things a user asks for.
// The buttons and controls of the forms reach the rest (the item form's checks, the split
// calculator's button, the set-up assistant's variants, the buttons of the panels).
const std::set<std::string> kInternal{
    "autoSave:", "saveDataToDisk", "loadDataFromDisk", "setSelection", "pathForDataFile",
    "firstStart", "setCurrentClientToPrefs", "applicationDidBecomeActive:", "doTheMigration",
    "calculateItem:", "closeItemSheet:", "cancelItemSheet:", "selectExpense:", "selectIncome:",
    "setTaxAutomatically:", "validateAccountFieldVoid", "validateAccountNumber:",
    "validateAccountPopUpVoid", "validateAccountTitle:", "selectAccountSearchSheet:",
    "selectGroupSearchSheet:", "selectTemplateSearchSheet:", "splitAction:", "cancelSplitWindow:",
    "addAccountSetup:", "addGroupSetup:", "closeYear:", "closeList:", "calculateTab:",
    "calculateTabVoid", "loadCompleteAccountsSetup:",
    "loadDefaultAccountsSetup:", "loadMinimalAccountsSetup:", "closeWelcome:", "closeAbout:",
    "closeNewsletter:", "closeNewsletterForever:", "finishAssi:", "cancelAssi:",
    "closeSheetFirst:", "cancelSheetFirst:", "closeSheetAssi:", "cancelSheetAssi:",
    "closeSheetAccount:", "cancelSheetAccount:", "closeSheetEntry:", "cancelSheetEntry:",
    // The search field's panel belongs to the search, which is not part of this version.
    "showSearchPopover:",
    // The date of today is the open item form's (its date panel and Ctrl+T): from the main
    // window it would re-date the selected item without a word.
    "setToday:",
};

} // namespace

QString commandLabel(const std::string& command) {
    for (const auto& e : kEntries)
        if (command == e.command) return QString::fromUtf8(e.label).remove(QLatin1Char('&'));
    return {};
}

void buildMenus(QMenuBar& bar, shell::CommandRegistry& commands, std::function<void()> afterCommand) {
    std::map<QString, QMenu*> menus;
    std::set<std::string> placed;
    auto addAction = [&](QMenu* menu, const std::string& command, const QString& label,
                         const QString& shortcut, int tag) {
        QAction* action = menu->addAction(label);
        if (!shortcut.isEmpty()) action->setShortcut(QKeySequence(shortcut));
        QObject::connect(action, &QAction::triggered, menu, [&commands, command, tag, afterCommand] {
            commands.run(command, shell::CommandSender{tag});
            if (afterCommand) afterCommand();
        });
    };
    for (const auto& e : kEntries) {
        if (!commands.contains(e.command)) continue;
        QString title = QString::fromUtf8(e.menu);
        if (!menus.contains(title)) menus[title] = bar.addMenu(title);
        addAction(menus[title], e.command, QString::fromUtf8(e.label), QString::fromUtf8(e.shortcut), e.tag);
        placed.insert(e.command);
    }
    QMenu* more = nullptr;
    for (const auto& name : commands.names()) {
        if (placed.contains(name) || kInternal.contains(name)) continue;
        if (!more) more = bar.addMenu(QStringLiteral("&Weitere Befehle"));
        addAction(more, name, QString::fromStdString(name), {}, 0);
    }
}

} // namespace zifora::gui
