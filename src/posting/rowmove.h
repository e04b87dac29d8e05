#pragma once
// The rule by which the lists move dragged rows: the rows land as one run before the row
// they were dropped on, counted as if they had already left their old places.

#include <cstddef>
#include <vector>

namespace zifora::posting {

/// A set of row indexes: ascending, each once.
using RowIndexes = std::vector<size_t>;

/// The rows as an index set: sorted, duplicates dropped.
[[nodiscard]] RowIndexes rowIndexSet(std::vector<size_t> rows);

/// How many indexes of `rows` lie in the range from `location` of `length` rows.
[[nodiscard]] size_t countOfIndexesInRange(const RowIndexes& rows, size_t location,
                                           size_t length) noexcept;

/// Where rows dropped before row `target` end up: the run that starts at target - c, where
/// c rows stood above the target, holding as many indexes as `rows`. Moving row 5 before
/// row 2 gives 2; moving row 2 before row 5 gives 4.
[[nodiscard]] RowIndexes movedRowIndexes(const RowIndexes& rows, size_t target);

} // namespace zifora::posting
