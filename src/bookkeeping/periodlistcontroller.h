#pragma once
// The period list of the selected year: reordering periods by drag, and copying an item
// into another period by dropping it on that period. Routes the row drags of both the item
// list and the period list to the list they are dropped on.

#include "bookkeeping/rowdrag.h"
#include "shell/feature.h"

#include <optional>

namespace zifora::shell {
class Session;
struct DragRequest;
} // namespace zifora::shell

namespace zifora::bookkeeping {

class ItemListController;

class PeriodListController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Abrechnungsliste"; }
    PeriodListController(shell::Session& session, ItemListController& itemList);

    /// A drop of rows: from this list above `row` (none: at the end), from the item list on
    /// the period at `row`. Returns whether the list took the drop; a copied item is
    /// reported as not taken, so that its row slides back.
    bool acceptDrop(const RowDrag& drag, std::optional<size_t> row);
    /// Copies the item of the hand-over file into the period at the row of the last drop.
    void addDroppedItem();

    [[nodiscard]] size_t dropRow() const { return m_dropRow; }

  private:
    [[nodiscard]] std::optional<RowDrag> beginDrag(const std::vector<size_t>& rows,
                                                   bool option) const;
    void dragFrom(const std::optional<RowDrag>& drag, const shell::DragRequest& request);
    void showFirstDropNotice();

    shell::Session& m_session;
    ItemListController& m_itemList;
    size_t m_dropRow = 0;
};

} // namespace zifora::bookkeeping
