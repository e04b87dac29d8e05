#pragma once
// Ordering a list by hand: the drag and drop rule of the lists whose order is their order
// in the file (accounts, categories, templates, years, clients).

#include "shell/formfields.h"
#include "shell/listcontroller.h"

#include <cstddef>
#include <vector>

namespace zifora::bookkeeping {

enum class DropOperation { Move, Copy };

/// What a drop does: a move inside the same list, a copy with the copy modifier held or
/// when the rows come from another list.
[[nodiscard]] DropOperation validateRowDrop(const shell::DragRequest& request);

/// Takes the records at the arranged `rows` out of the list and puts them back as one run
/// at `target`, after subtracting from `target` the number of moved rows that stood before
/// it. Returns the new arranged indexes of the moved records. Rows past the end are
/// ignored, a target past the end counts as the end; nothing is renumbered.
std::vector<size_t> moveObjectsInArrangedObjects(shell::ListController& list,
                                                 std::vector<size_t> rows, size_t target);

/// Accepts a drop on `list` (always placed above the target row; no row means the end).
/// A move is carried out and the first moved record becomes the selection: true. A copy
/// finds nothing to copy, since a drag carries only the moved rows: false, no change.
bool acceptRowDrop(shell::ListController& list, const shell::DragRequest& request);

} // namespace zifora::bookkeeping
