#include "bookkeeping/templatecontroller.h"

#include "posting/itementry.h"
#include "shell/session.h"

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

using core::Record;
using core::Value;

TemplateController::TemplateController(shell::Session& session) : m_session(session) {
    shell::CommandCatalog& c = m_session.commands();
    c.add(shell::menuCommand("addTemplate:", "Neue Vorlage", shell::Menu::MasterData, 50), [this](const CommandSender&) { addTemplate(); });
    c.add(shell::menuCommand("makeTemplateFromItem:", "Vorlage aus Posten erstellen", shell::Menu::MasterData, 60), [this](const CommandSender&) { makeTemplateFromItem(); });
    c.add("selectTemplateSearchSheet:",
          [this](const CommandSender&) { selectTemplateSearchSheet(); });
}

void TemplateController::addTemplate() {
    ListController& templates = m_session.selection().templates;
    if (!templates.content()) { // no client
        m_session.services().ui.beep();
        return;
    }
    core::Ref<Record> made = Record::make(core::RecordClass::Item, m_session.now());
    made->set("UUID", Value::string(posting::creationStamp(m_session.now())));
    templates.add(made);
    startEditingNewTemplate();
}

void TemplateController::makeTemplateFromItem() {
    const Record* item = m_session.selection().currentItem();
    ListController& templates = m_session.selection().templates;
    if (!item || !templates.content()) {
        m_session.services().ui.beep();
        return;
    }
    core::Ref<Record> made = Record::make(core::RecordClass::Item, m_session.now());
    made->set("UUID", Value::string(posting::creationStamp(m_session.now())));
    posting::copyTemplateKeys(*item, *made);
    templates.add(made);
    m_session.services().ui.showWindow("preferences.templates");
    startEditingNewTemplate();
}

// Re-sorts the list and opens the first column of the new template's row for typing.
void TemplateController::startEditingNewTemplate() {
    ListController& templates = m_session.selection().templates;
    templates.rearrange();
    const auto row = templates.selectionIndex();
    m_session.fields().set("templateTableEditingRow",
                       row ? Value::integer(static_cast<int64_t>(*row)) : Value{});
}

void TemplateController::selectTemplateSearchSheet() {
    m_session.services().ui.hideWindow("multiPopover");
    Selection& selection = m_session.selection();
    Record* item = selection.currentItem();
    const Record* chosen = selection.templates.selected();
    if (!item || !chosen) {
        m_session.services().ui.beep();
        return;
    }
    posting::stampNewItem(*item, selection.currentPeriod(), selection.currentYear(), m_session.now());
    // Whatever the item held in these keys is overwritten without a question.
    posting::copyTemplateKeys(*chosen, *item);
    m_session.fields().set("accountField", Value::string(item->getText("accountNumber")));
    Scheduler& scheduler = m_session.services().scheduler;
    scheduler.after(0, [this] { m_session.commands().run("calculateItem:"); });
    m_session.services().ui.hideWindow("templateSearchSheet");
    // The account is checked against the chart, which fills in its number; an account that
    // has left the chart keeps its copied values.
    scheduler.after(0.1, [this] { m_session.commands().run("validateAccountTitle:"); });
}

} // namespace zifora::bookkeeping
