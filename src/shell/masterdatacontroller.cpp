#include "shell/masterdatacontroller.h"

#include "shell/app.h"
#include "shell/rowmove.h"

namespace zifora::shell {

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

MasterDataController::MasterDataController(App& app) : m_app(app) {
    registerCommands();
    registerDragHandlers();
}

void MasterDataController::registerCommands() {
    CommandRegistry& c = m_app.commands();
    Selection& s = m_app.selection();
    c.add("addAccount:", [this, &s](const CommandSender&) {
        addRow(s.accounts, RecordClass::Account, "preferences.accounts.number");
    });
    c.add("addAccountSetup:", [this, &s](const CommandSender&) {
        addRow(s.accounts, RecordClass::Account, "assistant.accounts.number");
    });
    c.add("addGroup:", [this, &s](const CommandSender&) {
        addRow(s.groups, RecordClass::Group, "preferences.groups.title");
    });
    c.add("addGroupSetup:", [this, &s](const CommandSender&) {
        addRow(s.groups, RecordClass::Group, "assistant.groups.title");
    });
    c.add("removeAccount:", [this, &s](const CommandSender&) {
        removeSelected(s.accounts, kDeleteAccountTitle, kDeleteAccountText, "preferences");
    });
    c.add("removeGroup:", [this, &s](const CommandSender&) {
        removeSelected(s.groups, kDeleteGroupTitle, kDeleteGroupText, "preferences");
    });
    c.add("removeTemplate:", [this, &s](const CommandSender&) {
        removeSelected(s.templates, kDeleteTemplateTitle, kDeleteTemplateText, "preferences");
    });
}

void MasterDataController::registerDragHandlers() {
    Selection& s = m_app.selection();
    auto handle = [this](ListController& list) {
        return [this, &list](const DragRequest& request) {
            if (acceptRowDrop(list, request)) m_app.selectionChanged();
        };
    };
    m_app.addDragHandler("accounts", handle(s.accounts));
    m_app.addDragHandler("groups", handle(s.groups));
    m_app.addDragHandler("templates", handle(s.templates));
    m_app.addDragHandler("years", handle(s.years));
    m_app.addDragHandler("clients", handle(s.clients));
}

void MasterDataController::addRow(ListController& list, RecordClass recordClass,
                                  const std::string& table) {
    if (!list.content()) return;
    list.add(Record::make(recordClass, m_app.now()));
    list.rearrange();
    m_app.selectionChanged();
    m_app.services().ui.showWindow(table);
}

void MasterDataController::removeSelected(ListController& list, const std::string& title,
                                          const std::string& text, const std::string& sheetOn) {
    if (!list.selected()) {
        m_app.services().ui.beep();
        return;
    }
    AlertRequest request{title, text, {"Löschen", "Abbrechen"}, AlertStyle::Warning, sheetOn};
    if (m_app.services().ui.alert(request) != 1) return;
    // The question may have taken its time; delete what is selected now.
    if (auto index = list.selectionIndex()) list.removeAt(*index);
    m_app.selectionChanged();
}

} // namespace zifora::shell
