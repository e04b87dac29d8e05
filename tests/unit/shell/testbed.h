#pragma once
// An application object on the headless services, with one client and no files, for tests
// of the controllers. Every event goes to `events` as a JSON line.

#include "core/record.h"
#include "core/settings.h"
#include "shell/app.h"
#include "shell/headless.h"

#include <sstream>
#include <string>

namespace zifora::shell::testbed {

// 2026-03-02T09:00:00Z
inline constexpr core::Date kTestNow{794134800.0};

struct TestBed {
    std::ostringstream events;
    EventLog log{events};
    ScriptedUi ui{log};
    VirtualScheduler scheduler;
    VirtualClock clock{scheduler, kTestNow};
    RecordingClipboard clipboard{log};
    RecordingWorkspace workspace{log};
    core::Settings settings{"/nonexistent/zifora-test/Zifora.plist"};
    App app{Services{ui, scheduler, clock, clipboard, workspace}, Places::forHome("/nonexistent"),
            settings};

    TestBed() {
        app.clients().push_back(core::Record::make(core::RecordClass::Client, kTestNow));
        app.selectionChanged();
    }

    void run(const std::string& command) { app.commands().run(command); }
    /// The events since the last call, and forgets them.
    std::string takeEvents() {
        std::string out = events.str();
        events.str({});
        return out;
    }
};

} // namespace zifora::shell::testbed
