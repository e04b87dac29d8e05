#pragma once
// What a drag of rows from the item or the period list carries, and the move of rows
// within one list.

#include "posting/rowmove.h"
#include "shell/listcontroller.h"

#include <optional>
#include <string>

namespace zifora::bookkeeping {

/// The drag data of a row drag. Each list declares its move and copy types ("MOVED_ROWS_TYPE"
/// and "COPIED_ROWS_TYPE" for items, the same with "_TAB" for periods) and keeps the
/// dragged row indexes under the move type; a drag of exactly one row declares the URL type
/// as well. No drag of ours puts objects under a copy type.
struct RowDrag {
    std::string sourceList;   // "items" or "periods"
    posting::RowIndexes rows; // arranged indexes, as an index set
    bool declaresUrl = false;
    bool option = false; // the copy modifier was held
};

/// Moves the records at the arranged indexes `rows` of `list` as one run before the arranged
/// row `target` (clamped to the end) and returns their new indexes. The records change
/// their places in the content list, at the same index numbers; a sorted list shows them
/// sorted again.
posting::RowIndexes moveArrangedRows(shell::ListController& list, const posting::RowIndexes& rows,
                                     size_t target);

/// The alert shown when something that is not a row of ours, a file for instance, is
/// dropped on the item list.
inline constexpr const char* kImportNoticeTitle = "Import Hinweis";
inline constexpr const char* kImportNoticeText =
    "Der Import aus externen Programmen hat sich geändert. Aus Bill, GrandTotal und MoneyMoney "
    "kann mittlerweile gänzlich ohne Dateherumschiebereien importiert werden. Lies dazu bitte im "
    "iBook, Kapitel 17, nach. Für CSV Datein verwende bitte das Ablage Menü.";

} // namespace zifora::bookkeeping
