#pragma once
// The program on the headless services over a temporary home with one client, one year and
// the periods and items a test asks for; items get their amount keys from the item
// calculation at the rates 19, 7 and 0. Every event of the run is kept as text.

#include "posting/itemcalculation.h"
#include "program/headlessprogram.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

namespace zifora::vat::testing {
using namespace shell;

struct HomeAndOutput {
    HomeAndOutput() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "zifora-vat-XXXXXX").string();
        home = mkdtemp(pattern.data());
    }
    std::filesystem::path home;
    std::ostringstream out;
};

// 2026-03-02T09:00:00Z
inline constexpr core::Date kNow{794134800.0};

struct VatBook : HomeAndOutput, program::HeadlessProgram {
    VatBook()
        : HeadlessProgram(out, core::Places::forHome(home.string()), kNow, program::Resources{}),
          app(session()), ui(services.ui), scheduler(services.scheduler) {
        std::filesystem::create_directories(places.dataFolder);
        client = core::Record::make(core::RecordClass::Client, kNow);
        year = core::Record::make(core::RecordClass::Year, kNow);
        year->set("dateValue", core::Value::string("2026"));
        client->theYears().push_back(year);
        app.book().clients().push_back(client);
        app.settings().setBool("firstStepsDone", true);
        app.selectionChanged();
    }
    ~VatBook() {
        std::error_code ec;
        std::filesystem::remove_all(home, ec);
    }

    core::Record& addPeriod(const std::string& title) {
        auto period = core::Record::make(core::RecordClass::Thelist, kNow);
        period->set("title", core::Value::string(title));
        year->thelists().push_back(period);
        app.selectionChanged();
        return *period;
    }
    /// A taxed (tag 1 to 5) or untaxed (tag 0) item of `kind` 1 (expense) or 2 (income).
    core::Record& addItem(core::Record& period, float sum, int kind, int tag, bool unpaid = false) {
        auto item = core::Record::make(core::RecordClass::Item,
                                       core::Date{kNow.sinceReferenceDate + period.items().size()});
        item->set("kind", core::Value::intValue(kind));
        item->set("taxBool", core::Value::boolean(tag != 0));
        item->set("taxTag", core::Value::intValue(tag));
        item->set("unpaidBool", core::Value::boolean(unpaid));
        posting::ItemAmountInput in{sum, kind, tag != 0, tag, unpaid, {19.0f, 7.0f, 0.0f}};
        posting::applyItemAmounts(*item, posting::calculateItemAmounts(in));
        period.items().push_back(item);
        app.selectionChanged();
        return *item;
    }
    void selectPeriod(int64_t index) {
        app.selection().lists.setSelectionIndex(index);
        app.selectionChanged();
    }
    /// The events since the last call.
    std::string events() {
        std::string text = out.str();
        out.str({});
        return text;
    }
    bool has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }

    Session& app;
    ScriptedUi& ui;
    VirtualScheduler& scheduler;
    core::Ref<core::Record> client;
    core::Ref<core::Record> year;
};

} // namespace zifora::vat::testing
