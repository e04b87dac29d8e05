#pragma once
// The item list of the selected period: deleting an item, reordering items by drag, and
// the notice for files dropped on the list. A dragged item is also written to the
// hand-over file "temp.item" in the data folder, from which a drop on a period copies it.
//
// Command: ArrayControllerItem.remove: (delete the selected item).

#include "bookkeeping/rowdrag.h"
#include "core/record.h"
#include "shell/feature.h"

#include <optional>
#include <string>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

class ItemListController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Postenliste"; }
    explicit ItemListController(shell::Session& session);

    /// Deletes the selected item after the question; a marked period asks differently.
    void remove();

    /// Starts a drag of item rows: each dragged item is written to the hand-over file, one
    /// after the other, so that the last one stays. Nothing when no row exists.
    [[nodiscard]] std::optional<RowDrag> beginDrag(const std::vector<size_t>& rows, bool option);
    /// A drop above `row` (none: at the end). Returns whether the list took the drop.
    bool acceptDrop(const RowDrag& drag, std::optional<size_t> row);

    /// The hand-over file of dragged items.
    [[nodiscard]] std::string handOverPath() const;
    /// The item of the hand-over file; nothing when it is missing or holds no item.
    [[nodiscard]] core::Ref<core::Record> readHandOverItem() const;

    /// The row of the last drop on this list.
    [[nodiscard]] size_t dropRow() const { return m_dropRow; }

  private:
    void writeHandOverItem(core::Record& item) const;

    shell::Session& m_session;
    size_t m_dropRow = 0;
};

} // namespace zifora::bookkeeping
