#pragma once
// The chain of list controllers that decides what is "current".

#include "shell/listcontroller.h"

namespace zifora::shell {

/// client → year → period → item, and beside them the other lists of the client.
struct Selection {
    ListController clients{"clientController"};
    ListController years{"yearController"};
    ListController lists{"listController"};
    ListController items{"itemsController"};
    ListController groups{"groupController"};
    ListController accounts{"accountController"};
    ListController templates{"templateController"};
    ListController cashBooks{"cashBookController"};
    ListController cashBookItems{"cashBookItemsController"};
    ListController allowances{"allowancesController"};
    ListController inventory{"inventoryController"};

    /// Brings every lower controller up to date with the selection above it.
    void propagate(core::RecordList* clientList);

    [[nodiscard]] core::Record* currentClient() const { return clients.selected(); }
    [[nodiscard]] core::Record* currentYear() const { return years.selected(); }
    [[nodiscard]] core::Record* currentPeriod() const { return lists.selected(); }
    [[nodiscard]] core::Record* currentItem() const { return items.selected(); }

    /// The controller of a script or GUI name: "client", "year", "period", "item",
    /// "group", "account", "template", "cashbook", "cashbookItem", "allowance", "inventory".
    [[nodiscard]] ListController* byRecordName(std::string_view name);
};

} // namespace zifora::shell
