#pragma once
// The program on the headless services with a small book in memory: one client, one year and
// the periods and items a test asks for. Every event of the run is kept as text.

#include "program/headlessprogram.h"

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace zifora::bookkeeping::fixtures {
using namespace shell;

// The home and the event text, made before the session that uses them.
struct HomeAndOutput {
    explicit HomeAndOutput(std::filesystem::path folder) : home(std::move(folder)) {}
    std::filesystem::path home;
    std::ostringstream out;
};

struct HeadlessBook : HomeAndOutput, program::HeadlessProgram {
    explicit HeadlessBook(bool withDataFolder = true)
        : HomeAndOutput(makeHome()),
          HeadlessProgram(out, core::Places::forHome(home.string()), core::Date{800000000}),
          app(session()), ui(services.ui), scheduler(services.scheduler), clock(services.clock),
          workspace(services.workspace) {
        if (withDataFolder) std::filesystem::create_directories(places.dataFolder);
        client = core::Record::make(core::RecordClass::Client, clock.now());
        year = core::Record::make(core::RecordClass::Year, clock.now());
        client->theYears().push_back(year);
        app.book().clients().push_back(client);
    }
    ~HeadlessBook() {
        std::error_code ec;
        std::filesystem::remove_all(home, ec);
    }

    core::Record& addPeriod(const std::string& title, bool marked = false) {
        auto period = core::Record::make(core::RecordClass::Thelist, clock.now());
        period->set("title", core::Value::string(title));
        period->set("taxBool", core::Value::boolean(marked));
        year->thelists().push_back(period);
        return *period;
    }
    /// An item dated `day` days after the clock's start, so that the arranged order is
    /// the order of the days.
    static core::Record& addItem(core::Record& period, const std::string& title, double day) {
        auto item =
            core::Record::make(core::RecordClass::Item, core::Date{800000000 + day * 86400});
        item->set("title", core::Value::string(title));
        period.items().push_back(item);
        return *item;
    }
    void select(std::optional<int64_t> period, std::optional<int64_t> item) {
        app.selectionChanged();
        app.selection().lists.setSelectionIndex(period);
        app.selectionChanged();
        app.selection().items.setSelectionIndex(item);
    }
    /// The titles of a period's items in their stored order.
    static std::string titles(core::Record& period) {
        std::string out;
        for (const auto& item : period.items())
            out += (out.empty() ? "" : ",") + item->getText("title");
        return out;
    }
    /// The events since the last call.
    std::string events() {
        std::string text = out.str();
        out.str({});
        return text;
    }
    bool drag(std::string list, std::vector<size_t> rows, std::string target,
              std::optional<size_t> row, bool option = false) {
        return app.drag(
            DragRequest{std::move(list), std::move(rows), std::move(target), row, option});
    }

    static std::filesystem::path makeHome() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "zifora-book-XXXXXX").string();
        return std::filesystem::path(mkdtemp(pattern.data()));
    }

    Session& app;
    ScriptedUi& ui;
    VirtualScheduler& scheduler;
    VirtualClock& clock;
    RecordingWorkspace& workspace;
    core::Ref<core::Record> client;
    core::Ref<core::Record> year;
};

} // namespace zifora::bookkeeping::fixtures
