#include "posting/itemsplit.h"

namespace zifora::posting {

float splitShareFor(int64_t selectedSplitIndex, float customShare) noexcept {
    switch (selectedSplitIndex) {
    case 1:
        return 50.0f;
    case 2:
        return customShare;
    default:
        return 25.0f;
    }
}

// Each step in its own float variable: nothing is carried in higher precision.
float shareOfSum(float sum, float share) noexcept {
    const float hundred = 100.0f;
    const float percent = sum / hundred;
    const float part = percent * share;
    return part;
}

float grossOfNet(float net, float rate) noexcept {
    const float hundred = 100.0f;
    const float percent = net / hundred;
    const float tax = percent * rate;
    const float gross = net + tax;
    return gross;
}

TaxPageCheck checkTaxPage(bool taxBool, int32_t taxTag) noexcept {
    if (!taxBool || taxTag == 0) return TaxPageCheck::Incomplete;
    if (taxTag >= 1 && taxTag <= 3) return TaxPageCheck::Ready;
    return TaxPageCheck::Superfluous;
}

} // namespace zifora::posting
