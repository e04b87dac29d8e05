#include "bookkeeping/rowmove.h"

#include "bookkeeping/rowdrag.h"

#include <algorithm>

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

DropOperation validateRowDrop(const DragRequest& request) {
    bool sameList = request.targetList.empty() || request.targetList == request.list;
    return sameList && !request.option ? DropOperation::Move : DropOperation::Copy;
}

std::vector<size_t> moveObjectsInArrangedObjects(ListController& list, std::vector<size_t> rows,
                                                 size_t target) {
    // These lists show their records in stored order, so the move of the item and period
    // lists is the same move here.
    return moveArrangedRows(list, posting::rowIndexSet(std::move(rows)), target);
}

bool acceptRowDrop(ListController& list, const DragRequest& request) {
    if (validateRowDrop(request) != DropOperation::Move) return false;
    size_t target = request.targetRow.value_or(list.count());
    std::vector<size_t> placed = moveObjectsInArrangedObjects(list, request.rows, target);
    if (placed.empty()) return false;
    list.setSelectionIndex(static_cast<int64_t>(placed.front()));
    return true;
}

} // namespace zifora::bookkeeping
