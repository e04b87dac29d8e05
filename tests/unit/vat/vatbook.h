#pragma once
// The program on the headless services over a temporary home with one client, one year and
// the periods and items a test asks for; items get their amount keys from the item
// calculation at the rates 19, 7 and 0. PDFs are stand-ins. Every event is kept as text.

#include "posting/itemcalculation.h"
#include "program/program.h"
#include "sheetbook.h"
#include "shell/headless.h"

#include <filesystem>
#include <sstream>
#include <string>

namespace zifora::vat::testing {
using namespace shell;

inline constexpr core::Date kNow = kToday;

struct VatBook : SheetHome {
    std::ostringstream out;
    HeadlessServices services{out, kNow};
    KeptPdf pdf;
    core::Places places = core::Places::forHome(home.string());
    core::Settings settings{places.settingsFile};
    program::Program program{Services{services.ui, services.scheduler, services.clock,
                                      services.clipboard, services.workspace, pdf},
                             places, settings, program::Resources{}};
    Session& app = program.session();
    ScriptedUi& ui = services.ui;
    VirtualScheduler& scheduler = services.scheduler;

    VatBook() {
        std::filesystem::create_directories(places.dataFolder);
        client = core::Record::make(core::RecordClass::Client, kNow);
        year = core::Record::make(core::RecordClass::Year, kNow);
        year->set("dateValue", core::Value::string("2026"));
        client->theYears().push_back(year);
        app.book().clients().push_back(client);
        app.settings().setBool("firstStepsDone", true);
        app.selectionChanged();
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

    core::Ref<core::Record> client;
    core::Ref<core::Record> year;
};

} // namespace zifora::vat::testing
