#pragma once
// The selection of each list as the settings keep it between runs.

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

/// Notes the selected row of the years, periods, cash books and their entries (and, with
/// `withClient`, of the clients) in the settings.
void storeSelectionIndexes(shell::Session& session, bool withClient);
/// Selects the noted rows of the years, periods, cash books and their entries again.
void restoreSelectionIndexes(shell::Session& session);

} // namespace zifora::bookkeeping
