#pragma once
// The arithmetic of the split calculator beside the item form's sum: the share page keeps
// a part of the typed sum, the tax page turns a net sum into the gross sum the form wants.

#include "posting/itemcalculation.h"

#include <cstdint>

namespace zifora::posting {

/// The share the calculator's chooser stands for, in percent: 0 is 25, 1 is 50, 2 the
/// user's own share, any other choice 25. The own share is taken as it is, so 0 or more
/// than 100 are possible.
[[nodiscard]] float splitShareFor(int64_t selectedSplitIndex, float customShare) noexcept;

/// The part of a sum that a share keeps: (sum / 100) * share, in 32-bit floats.
[[nodiscard]] float shareOfSum(float sum, float share) noexcept;

/// The gross sum of a net sum: net + ((net / 100) * rate), in 32-bit floats. The item
/// calculation later works the tax out of this gross sum its own way, which may differ
/// from (net / 100) * rate in the last float digit.
[[nodiscard]] float grossOfNet(float net, float rate) noexcept;

/// Whether the tax page can work on an item with this tax choice.
enum class TaxPageCheck : uint8_t {
    Ready,       // tags 1 to 3 on a taxed item
    Incomplete,  // not taxed, or taxed without a tag
    Superfluous, // tax-free, outside the scope of the tax, or an unknown tag
};

[[nodiscard]] TaxPageCheck checkTaxPage(bool taxBool, int32_t taxTag) noexcept;

} // namespace zifora::posting
