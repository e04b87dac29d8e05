#pragma once
// The columns of the master-data lists as the preferences show and edit them.

#include "editablelistmodel.h"

namespace zifora::core {
class Settings;
}
namespace zifora::shell {
class Session;
}

namespace zifora::gui {

/// Categories: the title.
std::vector<EditableColumn> groupColumns();
/// Accounts: number and title, both compared as text, so any text is taken.
std::vector<EditableColumn> accountColumns();
/// Clients: the name, edited in the form beside the list.
std::vector<EditableColumn> clientEditColumns();
/// Templates: title, kind, category, account, gross sum and tax. Category and account
/// are chosen from the current client's lists; the tax from the rates of the settings.
std::vector<EditableColumn> templateColumns(shell::Session& session);

/// The entries of the template's tax column, in the order of "taxTag" 1 to 5 after "ohne".
QStringList taxChoices(const core::Settings& settings);

} // namespace zifora::gui
