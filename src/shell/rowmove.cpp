#include "shell/rowmove.h"

#include <algorithm>

namespace zifora::shell {

DropOperation validateRowDrop(const DragRequest& request) {
    bool sameList = request.targetList.empty() || request.targetList == request.list;
    return sameList && !request.option ? DropOperation::Move : DropOperation::Copy;
}

std::vector<size_t> moveObjectsInArrangedObjects(ListController& list, std::vector<size_t> rows,
                                                 size_t target) {
    core::RecordList* content = list.content();
    if (!content) return {};
    std::vector<core::Record*> order = list.arranged();
    std::ranges::sort(rows);
    auto [last, end] = std::ranges::unique(rows);
    rows.erase(last, end);
    std::erase_if(rows, [&](size_t row) { return row >= order.size(); });
    if (rows.empty()) return {};

    target = std::min(target, order.size());
    target -=
        static_cast<size_t>(std::ranges::count_if(rows, [&](size_t row) { return row < target; }));

    std::vector<core::Record*> moved;
    for (size_t row : rows)
        moved.push_back(order[row]);
    for (auto it = rows.rbegin(); it != rows.rend(); ++it)
        order.erase(order.begin() + static_cast<std::ptrdiff_t>(*it));
    order.insert(order.begin() + static_cast<std::ptrdiff_t>(target), moved.begin(), moved.end());

    // The list's records in the new order; the references come from the old content.
    core::RecordList reordered;
    reordered.reserve(content->size());
    for (core::Record* record : order)
        reordered.push_back(core::Ref<core::Record>(record));
    *content = std::move(reordered);
    list.rearrange();

    std::vector<size_t> placed;
    for (size_t i = 0; i < moved.size(); ++i)
        placed.push_back(target + i);
    return placed;
}

bool acceptRowDrop(ListController& list, const DragRequest& request) {
    if (validateRowDrop(request) != DropOperation::Move) return false;
    size_t target = request.targetRow.value_or(list.count());
    std::vector<size_t> placed = moveObjectsInArrangedObjects(list, request.rows, target);
    if (placed.empty()) return false;
    list.setSelectionIndex(static_cast<int64_t>(placed.front()));
    return true;
}

} // namespace zifora::shell
