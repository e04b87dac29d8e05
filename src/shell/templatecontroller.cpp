#include "shell/templatecontroller.h"

#include "posting/itementry.h"
#include "shell/app.h"

namespace zifora::shell {

using core::Record;
using core::Value;

TemplateController::TemplateController(App& app) : m_app(app) {
    CommandRegistry& c = m_app.commands();
    c.add("addTemplate:", [this](const CommandSender&) { addTemplate(); });
    c.add("makeTemplateFromItem:", [this](const CommandSender&) { makeTemplateFromItem(); });
    c.add("selectTemplateSearchSheet:",
          [this](const CommandSender&) { selectTemplateSearchSheet(); });
}

void TemplateController::addTemplate() {
    ListController& templates = m_app.selection().templates;
    if (!templates.content()) { // no client
        m_app.services().ui.beep();
        return;
    }
    core::Ref<Record> made = Record::make(core::RecordClass::Item, m_app.now());
    made->set("UUID", Value::string(posting::creationStamp(m_app.now())));
    templates.add(made);
    startEditingNewTemplate();
}

void TemplateController::makeTemplateFromItem() {
    const Record* item = m_app.selection().currentItem();
    ListController& templates = m_app.selection().templates;
    if (!item || !templates.content()) {
        m_app.services().ui.beep();
        return;
    }
    core::Ref<Record> made = Record::make(core::RecordClass::Item, m_app.now());
    made->set("UUID", Value::string(posting::creationStamp(m_app.now())));
    posting::copyTemplateKeys(*item, *made);
    templates.add(made);
    m_app.services().ui.showWindow("preferences.templates");
    startEditingNewTemplate();
}

// Re-sorts the list and opens the first column of the new template's row for typing.
void TemplateController::startEditingNewTemplate() {
    ListController& templates = m_app.selection().templates;
    templates.rearrange();
    const auto row = templates.selectionIndex();
    m_app.fields().set("templateTableEditingRow",
                       row ? Value::integer(static_cast<int64_t>(*row)) : Value{});
}

void TemplateController::selectTemplateSearchSheet() {
    m_app.services().ui.hideWindow("multiPopover");
    Selection& selection = m_app.selection();
    Record* item = selection.currentItem();
    const Record* chosen = selection.templates.selected();
    if (!item || !chosen) {
        m_app.services().ui.beep();
        return;
    }
    posting::stampNewItem(*item, selection.currentPeriod(), selection.currentYear(), m_app.now());
    // Whatever the item held in these keys is overwritten without a question.
    posting::copyTemplateKeys(*chosen, *item);
    m_app.fields().set("accountField", Value::string(item->getText("accountNumber")));
    Scheduler& scheduler = m_app.services().scheduler;
    scheduler.after(0, [this] { m_app.commands().run("calculateItem:"); });
    m_app.services().ui.hideWindow("templateSearchSheet");
    // The account is checked against the chart, which fills in its number; an account that
    // has left the chart keeps its copied values.
    scheduler.after(0.1, [this] { m_app.commands().run("validateAccountTitle:"); });
}

} // namespace zifora::shell
