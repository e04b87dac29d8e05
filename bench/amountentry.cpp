// A paste into the item form's sum field: the typed sum is read in one pass, so that a paste
// of 10 MB costs ten times one of 1 MB (Complexity reports the fit). The texts are the shapes
// a paste may have: plain digits, digits in groups of three, a long fraction, and a long
// number with one wrong character at its end (refused, then read as far as it goes).

#include "posting/amountentry.h"
#include "bench/generate.h"
#include "core/keyedarchive.h"
#include "program/headlessprogram.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <unistd.h>

namespace {

using namespace zifora;

std::string pasted(int shape, size_t bytes) {
    switch (shape) {
    case 0:
        return std::string(bytes, '7');
    case 1: {
        std::string s = "1";
        while (s.size() + 4 <= bytes)
            s += ".000";
        return s;
    }
    case 2:
        return "0," + std::string(bytes - 2, '5');
    default:
        return std::string(bytes - 1, '3') + "x";
    }
}

void acceptedSumOfAPaste(benchmark::State& state) {
    const std::string text =
        pasted(static_cast<int>(state.range(0)), static_cast<size_t>(state.range(1)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(posting::acceptedSum(text, "de_DE"));
        benchmark::DoNotOptimize(posting::sumFieldValue(text, "de_DE"));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size() * 2));
    state.SetComplexityN(state.range(1));
}
BENCHMARK(acceptedSumOfAPaste)
    ->ArgsProduct({{0, 1, 2, 3}, {1 << 20, 10 << 20}})
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// The whole way of a paste: the form's field, its binding to "amount" (or the refusal with
// its alert) and the calculation, in the headless program on a small book.
void pasteIntoTheItemForm(benchmark::State& state) {
    namespace fs = std::filesystem;
    const fs::path home =
        fs::temp_directory_path() / ("zifora-bench-sum-" + std::to_string(::getpid()));
    const core::Places places = core::Places::forHome(home.string());
    fs::create_directories(places.dataFolder);
    if (!core::writeKeyedArchiveFile((fs::path(places.dataFolder) / "Zifora.zfdb4").string(),
                                     bench::makeBook({.postings = 100})))
        state.SkipWithError("the book could not be written");
    std::ostringstream events;
    program::HeadlessProgram headless(events, places, core::Date{794'000'000});
    for (const char* key : {"isMigration_4.0_done", "veryFirstAlertDone", "isWelcomeerShown"})
        headless.settings.set(key, core::Value::boolean(true));
    shell::Session& session = headless.session();
    session.run("init");
    session.run("awakeFromNib");
    headless.services.scheduler.advance(1);
    session.run("addItem:");
    session.run(state.range(0) == 3 ? "selectIncome:" : "selectExpense:");
    const std::string text =
        pasted(static_cast<int>(state.range(0)), static_cast<size_t>(state.range(1)));
    for (auto _ : state) {
        session.fields().set("sumField", core::Value::string(text));
        session.run("calculateItem:");
        events.str({});
    }
    state.SetComplexityN(state.range(1));
    fs::remove_all(home);
}
BENCHMARK(pasteIntoTheItemForm)
    ->ArgsProduct({{0, 2, 3}, {1 << 20, 10 << 20}})
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

} // namespace

BENCHMARK_MAIN();
