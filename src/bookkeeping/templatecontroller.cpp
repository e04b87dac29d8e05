#include "bookkeeping/templatecontroller.h"

#include "posting/amountentry.h"
#include "posting/itementry.h"
#include "shell/session.h"

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

using core::Record;
using core::Value;

TemplateController::TemplateController(shell::Session& session) : m_session(session) {
    shell::CommandCatalog& c = m_session.commands();
    c.add(shell::menuCommand("addTemplate:", "Neue &Vorlage", shell::Menu::MasterData, 50),
          [this](const CommandSender&) { addTemplate(); });
    c.add(shell::menuCommand("makeTemplateFromItem:", "Vorlage aus &Posten erstellen",
                             shell::Menu::MasterData, 60),
          [this](const CommandSender&) { makeTemplateFromItem(); });
    c.add("selectTemplateSearchSheet:",
          [this](const CommandSender&) { selectTemplateSearchSheet(); });
    m_session.fields().observe([this](const std::string& name, const Value& value) {
        if (name.starts_with(kTemplateTablePrefix) && name != kTemplateTableRefused)
            tableFieldChanged(name.substr(kTemplateTablePrefix.size()), value);
    });
}

std::string accountChoiceTitle(const std::string& number, const std::string& title) {
    if (number.empty()) return title;
    if (title.empty()) return number;
    return number + " – " + title;
}

void TemplateController::tableFieldChanged(const std::string& column, const Value& value) {
    Record* record = m_session.selection().templates.selected();
    if (!record || value.isAbsent()) return;
    const bool taken = editTemplate(*record, column, value);
    m_session.fields().set(kTemplateTableRefused, Value::boolean(!taken));
}

bool TemplateController::editTemplate(Record& record, const std::string& column,
                                      const Value& value) {
    if (column == "title" || column == "group") {
        record.set(column, Value::string(value.text()));
        return true;
    }
    if (column == "kind") {
        const int kind = value.toInt();
        if (kind < 0 || kind > 2) return false;
        record.set("kind", Value::intValue(kind));
        return true;
    }
    if (column == "account") return editAccount(record, value.text());
    if (column == "amount") {
        const std::string typed = value.text();
        if (posting::isBlankText(typed)) {
            record.set("amount", Value::string(""));
            return true;
        }
        auto sum = posting::acceptedSum(typed);
        if (!sum) return false;
        record.set("amount", Value::string(posting::storedAmountText(*sum)));
        return true;
    }
    if (column == "tax") {
        const int tag = value.toInt();
        if (tag < 0 || tag > 5) return false;
        record.set("taxBool", Value::boolean(tag > 0));
        record.set("taxTag", Value::intValue(tag));
        return true;
    }
    return false;
}

// The account chosen by its title in the chooser; the template's own account, no longer in
// the chart, may stand as it is.
bool TemplateController::editAccount(Record& record, const std::string& title) {
    if (title.empty()) {
        record.set("account", Value::string(""));
        record.set("accountNumber", Value::string(""));
        return true;
    }
    for (const Record* account : m_session.selection().accounts.arranged()) {
        if (accountChoiceTitle(account->getText("number"), account->getText("title")) != title)
            continue;
        record.set("account", account->get("title"));
        record.set("accountNumber", account->get("number"));
        return true;
    }
    return title == accountChoiceTitle(record.getText("accountNumber"), record.getText("account"));
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
    posting::stampNewItem(*item, selection.currentPeriod(), selection.currentYear(),
                          m_session.now());
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
