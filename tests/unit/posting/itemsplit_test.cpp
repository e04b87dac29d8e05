#include "posting/itemsplit.h"
#include "posting/rowmove.h"

#include <gtest/gtest.h>

using namespace zifora::posting;

TEST(SplitShare, DividesBeforeItMultipliesInFloats) {
    EXPECT_EQ(shareOfSum(100, 150), 150.0f) << "a share above 100 raises the sum";
    // 0.07 / 100 * 3 and 0.07 * 3 / 100 round differently in 32 bits.
    const float sum = 0.07f, hundred = 100.0f, share = 3.0f;
    const float percent = sum / hundred, divideFirst = percent * share;
    const float scaled = sum * share, multiplyFirst = scaled / hundred;
    ASSERT_NE(divideFirst, multiplyFirst);
    EXPECT_EQ(shareOfSum(sum, share), divideFirst);
    EXPECT_EQ(grossOfNet(-50, 19), -59.5f);
}

TEST(RowMove, RowsLandBeforeTheTargetCountedWithoutThemselves) {
    EXPECT_EQ(movedRowIndexes({5}, 2), RowIndexes{2});
    EXPECT_EQ(movedRowIndexes({2}, 5), RowIndexes{4});
    EXPECT_EQ(movedRowIndexes({2}, 3), RowIndexes{2}) << "a drop just below itself stays put";
    EXPECT_EQ(movedRowIndexes({0, 3, 7}, 5), (RowIndexes{3, 4, 5}));
    EXPECT_EQ(movedRowIndexes(rowIndexSet({7, 0, 3, 3}), 5), (RowIndexes{3, 4, 5}));
    EXPECT_EQ(countOfIndexesInRange({0, 3, 7}, 3, 5), 2u);
}
