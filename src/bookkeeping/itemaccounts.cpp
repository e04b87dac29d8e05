// The item form's account entries and the search popovers of categories and accounts.

#include "bookkeeping/itemcontroller.h"
#include "shell/session.h"

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

using core::Record;
using core::Value;

namespace {

// The first account of the chart, in the list's order, whose `key` is exactly `text`.
Record* firstAccountWith(const ListController& accounts, std::string_view key,
                         std::string_view text) {
    for (Record* account : accounts.arranged())
        if (account->getText(key) == text) return account;
    return nullptr;
}

} // namespace

void ItemController::validateAccountFieldVoid() {
    m_form.sync();
    const std::string number = m_session.fields().text("accountField");
    if (number.empty()) return; // the item keeps its account
    const ListController& accounts = m_session.selection().accounts;
    Record* account = firstAccountWith(accounts, "number", number);
    if (!account) {
        refuse("Fehler!", "Konto existiert nicht. Bitte Nummer überprüfen oder gegebenenfalls "
                          "Konto in den Einstellungen anlegen.");
        return;
    }
    if (Record* item = m_form.item()) {
        item->set("account", account->get("title"));
        item->set("accountNumber", account->get("number"));
    }
    m_form.sync();
}

void ItemController::validateAccountTitle() {
    // The choice lands in the item first; the check follows a moment later.
    m_session.services().scheduler.after(0.1, [this] { validateAccountPopUpVoid(); });
}

void ItemController::validateAccountPopUpVoid() {
    m_form.sync();
    const std::string title = m_session.fields().text("accountPopUp");
    Record* account = firstAccountWith(m_session.selection().accounts, "title", title);
    Record* item = m_form.item();
    if (!account || !item) return;
    item->set("account", account->get("title"));
    item->set("accountNumber", account->get("number"));
    m_form.showText("accountField", account->getText("number"));
    m_form.sync();
}

void ItemController::selectGroupSearchSheet() {
    m_form.sync();
    closeSearchPopover();
    const Record* group = m_session.selection().groups.selected();
    Record* item = m_form.item();
    if (!group || !item) return;
    item->set("group", group->get("title"));
    m_form.sync();
}

void ItemController::selectAccountSearchSheet() {
    m_form.sync();
    closeSearchPopover();
    const Record* account = m_session.selection().accounts.selected();
    Record* item = m_form.item();
    if (!account || !item) return;
    item->set("account", account->get("title"));
    m_form.sync(); // the account chooser shows the new title, from which the number follows
    validateAccountPopUpVoid();
}

} // namespace zifora::bookkeeping
