#pragma once
// The whole program on the headless services, with one client and no files, for tests
// of the controllers. Every event goes to `events` as a JSON line.

#include "core/record.h"
#include "core/settings.h"
#include "program/headlessprogram.h"

#include <sstream>
#include <string>

namespace zifora::bookkeeping::testbed {
using namespace shell;

// 2026-03-02T09:00:00Z
inline constexpr core::Date kTestNow{794134800.0};

struct TestBed {
    std::ostringstream events;
    program::HeadlessProgram headless{events, core::Places::forHome("/nonexistent"), kTestNow,
                                      program::Resources{}};
    Session& app = headless.session();
    core::Settings& settings = app.settings();
    ScriptedUi& ui = headless.services.ui;
    VirtualScheduler& scheduler = headless.services.scheduler;

    TestBed() {
        app.book().clients().push_back(core::Record::make(core::RecordClass::Client, kTestNow));
        app.selectionChanged();
    }

    void run(const std::string& command) { app.run(command); }
    /// The events since the last call, and forgets them.
    std::string takeEvents() {
        std::string out = events.str();
        events.str({});
        return out;
    }
};

} // namespace zifora::bookkeeping::testbed
