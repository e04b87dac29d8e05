#include "bookkeeping/rowdrag.h"

#include "shell/listcontroller.h"

#include <algorithm>

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

posting::RowIndexes moveArrangedRows(ListController& list, const posting::RowIndexes& rows,
                                     size_t target) {
    core::RecordList* content = list.content();
    if (!content) return {};
    const std::vector<core::Record*> shown = list.arranged();
    posting::RowIndexes valid;
    for (size_t row : rows)
        if (row < shown.size()) valid.push_back(row);
    target = std::min(target, shown.size());
    const posting::RowIndexes moved = posting::movedRowIndexes(valid, target);

    std::vector<core::Ref<core::Record>> taken;
    for (size_t row : valid)
        taken.emplace_back(shown[row]);
    std::erase_if(*content, [&](const core::Ref<core::Record>& record) {
        return std::find(taken.begin(), taken.end(), record) != taken.end();
    });
    for (size_t i = 0; i < moved.size(); ++i) {
        size_t at = std::min(moved[i], content->size());
        content->insert(content->begin() + static_cast<std::ptrdiff_t>(at), taken[i]);
    }
    list.rearrange();
    return moved;
}

} // namespace zifora::bookkeeping
