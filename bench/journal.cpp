// The settlement journal's HTML of one period: the status, the tax per rate and the list of
// every posting, as the print and export sheets make it each time they open. Budget: a
// period of 10,000 postings in at most 0.2 s. (Its PDF, at most 5 s, is the renderer's.)

#include "bench/generate.h"
#include "core/record.h"
#include "core/settings.h"
#include "reports/settlementjournal.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using namespace zifora;

void settlementJournalOfOnePeriod(benchmark::State& state) {
    const core::Value book = bench::makeBook({.postings = static_cast<size_t>(state.range(0))});
    std::vector<const core::Record*> items;
    for (const core::Value& client : book["clients"].asArray())
        for (const auto& year : client.asRecord()->theYears())
            for (const auto& period : year->thelists())
                for (const auto& item : period->items())
                    items.push_back(item.get());
    auto period = core::Record::make(core::RecordClass::Thelist, core::Date{});
    period->set("title", core::Value::string("Jahr"));
    period->set("taxBool", core::Value::boolean(true));

    core::Settings settings("/nonexistent/Zifora.plist");
    settings.setString("prefsCompany", "Muster Design Anna Beispiel");
    settings.setFloat("prefs1Rate", 19);
    settings.setFloat("prefs2Rate", 7);
    settings.setBool("prefsExportPrintWithList", true);
    settings.setBool("prefsPrintCurrency", true);
    const reports::JournalSettings journal = reports::JournalSettings::read(settings);
    for (auto _ : state) {
        std::string html = reports::settlementJournalHtml(
            {*period, "2024", items, journal, core::Date{794134800.0}}, "de_DE");
        benchmark::DoNotOptimize(html);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(settlementJournalOfOnePeriod)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
