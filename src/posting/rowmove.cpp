#include "posting/rowmove.h"

#include <algorithm>

namespace zifora::posting {

RowIndexes rowIndexSet(std::vector<size_t> rows) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

size_t countOfIndexesInRange(const RowIndexes& rows, size_t location, size_t length) noexcept {
    return static_cast<size_t>(std::count_if(rows.begin(), rows.end(), [&](size_t row) {
        return row >= location && row - location < length;
    }));
}

RowIndexes movedRowIndexes(const RowIndexes& rows, size_t target) {
    const size_t above = countOfIndexesInRange(rows, 0, target);
    RowIndexes moved(rows.size());
    for (size_t i = 0; i < moved.size(); ++i)
        moved[i] = target - above + i;
    return moved;
}

} // namespace zifora::posting
