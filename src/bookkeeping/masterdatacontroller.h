#pragma once
// The master-data lists of a client as the preferences and the set-up assistant show them:
// accounts, categories and templates, and beside them the lists of years and clients.
// Adding rows, ordering the five lists by dragging, and deleting with a question.

#include "core/record.h"
#include "shell/feature.h"

#include <string>

namespace zifora::shell {
class Session;
class ListController;
} // namespace zifora::shell

namespace zifora::bookkeeping {

class MasterDataController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Stammdaten"; }
    /// Registers the add and delete commands and the drag handlers of the five lists.
    explicit MasterDataController(shell::Session& session);

    /// Appends a new record with its defaults, selects it and starts editing the first
    /// column of its row in `table` (a window name such as "preferences.accounts.number").
    void addRow(shell::ListController& list, core::RecordClass recordClass,
                const std::string& table);

    /// Deletes the selected record after the question; beeps when nothing is selected.
    void removeSelected(shell::ListController& list, const std::string& title,
                        const std::string& text, const std::string& sheetOn);

  private:
    void registerCommands();
    void registerDragHandlers();

    shell::Session& m_session;
};

} // namespace zifora::bookkeeping
