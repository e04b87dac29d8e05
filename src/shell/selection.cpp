#include "shell/selection.h"

namespace zifora::shell {

namespace {
core::RecordList* childList(core::Record* parent, std::string_view key) {
    if (!parent) return nullptr;
    int index = parent->listIndex(key);
    return index < 0 ? nullptr : &parent->list(static_cast<size_t>(index));
}
} // namespace

void Selection::propagate(core::RecordList* clientList) {
    clients.setContent(clientList);
    core::Record* client = clients.selected();
    years.setContent(childList(client, "theYears"));
    groups.setContent(childList(client, "groups"));
    accounts.setContent(childList(client, "accounts"));
    templates.setContent(childList(client, "items"));
    cashBooks.setContent(childList(client, "cashbooks"));
    allowances.setContent(childList(client, "allowances"));
    inventory.setContent(childList(client, "inventorys"));
    lists.setContent(childList(years.selected(), "thelists"));
    items.setContent(childList(lists.selected(), "items"));
    cashBookItems.setContent(childList(cashBooks.selected(), "items"));
}

ListController* Selection::byRecordName(std::string_view name) {
    if (name == "client") return &clients;
    if (name == "year") return &years;
    if (name == "period") return &lists;
    if (name == "item") return &items;
    if (name == "group") return &groups;
    if (name == "account") return &accounts;
    if (name == "template") return &templates;
    if (name == "cashbook") return &cashBooks;
    if (name == "cashbookItem") return &cashBookItems;
    if (name == "allowance") return &allowances;
    if (name == "inventory") return &inventory;
    return nullptr;
}

} // namespace zifora::shell
