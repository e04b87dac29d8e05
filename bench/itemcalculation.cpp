// The item calculation alone, and with the reads and writes of a record around it.

#include "posting/itemcalculation.h"
#include "core/record.h"

#include <benchmark/benchmark.h>

#include <array>

namespace {

using namespace zifora;

// A spread of inputs, so that every branch of the calculation is taken.
std::array<posting::ItemAmountInput, 64> variedInputs() {
    std::array<posting::ItemAmountInput, 64> inputs{};
    for (size_t i = 0; i < inputs.size(); ++i) {
        posting::ItemAmountInput& in = inputs[i];
        in.grossSum = 1.0f + static_cast<float>(i * 37 % 1000) * 1.19f;
        in.kind = static_cast<int32_t>(1 + i % 2);
        in.taxBool = i % 4 != 0;
        in.taxTag = static_cast<int32_t>(1 + i % 5);
        in.unpaidBool = i % 7 == 0;
        in.rates = {19.0f, 7.0f, 0.0f};
    }
    return inputs;
}

void calculateItemAmounts(benchmark::State& state) {
    const auto inputs = variedInputs();
    size_t i = 0;
    for (auto _ : state) {
        posting::ItemAmounts out = posting::calculateItemAmounts(inputs[i++ % inputs.size()]);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(calculateItemAmounts);

// What the form does: read the inputs from the item, calculate, write the thirteen keys.
void calculateItemOnRecord(benchmark::State& state) {
    core::Ref<core::Record> item = core::Record::make(core::RecordClass::Item, core::Date{});
    item->set("kind", core::Value::intValue(1));
    item->set("amount", core::Value::string("119.00"));
    item->set("taxBool", core::Value::boolean(true));
    item->set("taxTag", core::Value::intValue(1));
    const posting::TaxRates rates{19.0f, 7.0f, 0.0f};
    for (auto _ : state) {
        posting::ItemAmounts out = posting::calculateItem(*item, rates);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(calculateItemOnRecord);

} // namespace

BENCHMARK_MAIN();
