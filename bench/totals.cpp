// The settlement totals of one period, as the advance-return form, its print and the period
// report ask for them: every posting read once, no cached sums. Budget: 100,000 postings in
// at most 20 ms.

#include "bench/generate.h"
#include "core/record.h"
#include "posting/settlementtotals.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace {

using namespace zifora;

/// The postings of a generated book gathered into one period's item list, in date order as
/// the item list arranges them. The book is kept alive beside them.
struct OnePeriod {
    core::Value book;
    std::vector<const core::Record*> items;
};

OnePeriod periodOf(size_t postings) {
    OnePeriod p{bench::makeBook({.postings = postings}), {}};
    p.items.reserve(postings);
    for (const core::Value& client : p.book["clients"].asArray())
        for (const auto& year : client.asRecord()->theYears())
            for (const auto& period : year->thelists())
                for (const auto& item : period->items())
                    p.items.push_back(item.get());
    std::stable_sort(p.items.begin(), p.items.end(),
                     [](const core::Record* a, const core::Record* b) {
                         return a->get("date").toDate().sinceReferenceDate <
                                b->get("date").toDate().sinceReferenceDate;
                     });
    return p;
}

void settlementTotalsOfOnePeriod(benchmark::State& state) {
    const OnePeriod period = periodOf(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        posting::SettlementTotals totals = posting::settlementTotals(period.items);
        benchmark::DoNotOptimize(totals);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(settlementTotalsOfOnePeriod)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
