#include "bookkeeping/masterdatacontroller.h"

#include "bookkeeping/rowmove.h"
#include "shell/session.h"

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

using core::Record;
using core::RecordClass;

namespace {

constexpr const char* kDeleteAccountTitle = "Kostenstelle löschen";
constexpr const char* kDeleteAccountText =
    "Diese Aktion kann nicht rückgängig gemacht werden. In bereits bestehenden Abrechnungen "
    "bleiben die jeweils zugeordneten Kostenstellen selbstverständlich bestehen. Möchtest du "
    "wirklich die ausgewählte Kostenstelle löschen?";
constexpr const char* kDeleteGroupTitle = "Kategorie löschen";
constexpr const char* kDeleteGroupText =
    "Diese Aktion kann nicht rückgängig gemacht werden. In bereits bestehenden Abrechnungen "
    "bleiben die jeweils zugeordneten Kategorien selbstverständlich bestehen. Möchtest du "
    "wirklich die ausgewählte Kategorie löschen?";
constexpr const char* kDeleteTemplateTitle = "Vorlage löschen";
constexpr const char* kDeleteTemplateText =
    "Diese Aktion kann nicht rückgängig gemacht werden. Möchtest du wirklich die ausgewählte "
    "Vorlage löschen?";

} // namespace

MasterDataController::MasterDataController(shell::Session& session) : m_session(session) {
    registerCommands();
    registerDragHandlers();
}

void MasterDataController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    Selection& s = m_session.selection();
    c.add(shell::menuCommand("addAccount:", "Neues &Konto", shell::Menu::MasterData, 10),
          [this, &s](const CommandSender&) {
              addRow(s.accounts, RecordClass::Account, "preferences.accounts.number");
          });
    c.add("addAccountSetup:", [this, &s](const CommandSender&) {
        addRow(s.accounts, RecordClass::Account, "assistant.accounts.number");
    });
    c.add(shell::menuCommand("addGroup:", "Neue K&ategorie", shell::Menu::MasterData, 30),
          [this, &s](const CommandSender&) {
              addRow(s.groups, RecordClass::Group, "preferences.groups.title");
          });
    c.add("addGroupSetup:", [this, &s](const CommandSender&) {
        addRow(s.groups, RecordClass::Group, "assistant.groups.title");
    });
    c.add(shell::menuCommand("removeAccount:", "Konto &löschen …", shell::Menu::MasterData, 20),
          [this, &s](const CommandSender&) {
              removeSelected(s.accounts, kDeleteAccountTitle, kDeleteAccountText, "preferences");
          });
    c.add(shell::menuCommand("removeGroup:", "Kategorie lös&chen …", shell::Menu::MasterData, 40),
          [this, &s](const CommandSender&) {
              removeSelected(s.groups, kDeleteGroupTitle, kDeleteGroupText, "preferences");
          });
    c.add(shell::menuCommand("removeTemplate:", "V&orlage löschen …", shell::Menu::MasterData, 70),
          [this, &s](const CommandSender&) {
              removeSelected(s.templates, kDeleteTemplateTitle, kDeleteTemplateText, "preferences");
          });
}

void MasterDataController::registerDragHandlers() {
    Selection& s = m_session.selection();
    auto handle = [this](ListController& list) {
        return [this, &list](const DragRequest& request) {
            if (acceptRowDrop(list, request)) m_session.selectionChanged();
        };
    };
    m_session.addDragHandler("accounts", handle(s.accounts));
    m_session.addDragHandler("groups", handle(s.groups));
    m_session.addDragHandler("templates", handle(s.templates));
    m_session.addDragHandler("years", handle(s.years));
    m_session.addDragHandler("clients", handle(s.clients));
}

void MasterDataController::addRow(ListController& list, RecordClass recordClass,
                                  const std::string& table) {
    if (!list.content()) return;
    list.add(Record::make(recordClass, m_session.now()));
    list.rearrange();
    m_session.selectionChanged();
    m_session.services().ui.showWindow(table);
}

void MasterDataController::removeSelected(ListController& list, const std::string& title,
                                          const std::string& text, const std::string& sheetOn) {
    if (!list.selected()) {
        m_session.services().ui.beep();
        return;
    }
    AlertRequest request{title, text, {"Löschen", "Abbrechen"}, AlertStyle::Warning, sheetOn};
    if (m_session.services().ui.alert(request) != 1) return;
    // The question may have taken its time; delete what is selected now.
    if (auto index = list.selectionIndex()) list.removeAt(*index);
    m_session.selectionChanged();
}

} // namespace zifora::bookkeeping
