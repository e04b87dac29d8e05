#include "shell/headless.h"
#include "shell/listcontroller.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace zifora;
using namespace zifora::shell;

TEST(VirtualScheduler, RunsTasksInTimeOrderAsTheyFallDue) {
    VirtualScheduler s;
    std::string order;
    s.after(0.4, [&] { order += "w"; });
    s.after(0.1, [&] {
        order += "p";
        s.after(0.2, [&] { order += "d"; }); // falls due at 0.3
    });
    TimerId timer = s.every(30, [&] { order += "S"; });
    s.after(0, [&] { order += "0"; });
    s.runDue();
    EXPECT_EQ(order, "0");
    s.advance(1);
    EXPECT_EQ(order, "0pdw");
    s.advance(65);
    EXPECT_EQ(order, "0pdwSS");
    s.cancel(timer);
    s.advance(100);
    EXPECT_EQ(order, "0pdwSS");
    EXPECT_EQ(s.pending(), 0u);
}

TEST(VirtualScheduler, TheClockMovesOnlyWithTheScheduler) {
    VirtualScheduler s;
    VirtualClock clock(s, core::Date{100});
    s.advance(2.5);
    EXPECT_EQ(clock.now().sinceReferenceDate, 102.5);
    clock.setStart(core::Date{0});
    s.advance(1);
    EXPECT_EQ(clock.now().sinceReferenceDate, 1);
}

TEST(ScriptedUi, QueuedAnswersFirstThenTheDefaultButton) {
    std::ostringstream out;
    EventLog log(out);
    ScriptedUi ui(log);
    ui.queueAnswer(0);
    EXPECT_EQ(ui.alert(AlertRequest{"T", "x", {"Ja", "Nein"}, AlertStyle::Warning, {}}), 0);
    EXPECT_EQ(ui.alert(AlertRequest{"T", "y", {"OK"}, AlertStyle::Warning, {}}), 1);
    EXPECT_EQ(ui.chooseFile({}), std::nullopt);
    EXPECT_NE(out.str().find("\"answer\":1,\"queued\":false"), std::string::npos);
    EXPECT_NE(out.str().find("\"answer\":null,\"queued\":false"), std::string::npos);
}

TEST(ListController, SelectionFollowsTheRecordAndClampsRestoredIndexes) {
    core::RecordList items;
    auto make = [](double date) {
        auto r = core::Record::make(core::RecordClass::Item, core::Date{date});
        return r;
    };
    items.push_back(make(30));
    items.push_back(make(10));
    items.push_back(make(20));
    ListController c("itemsController");
    c.setSortKey("date");
    c.setContent(&items);
    ASSERT_EQ(c.selectionIndex(), 0u);
    EXPECT_EQ(c.selected(), items[1].get()) << "arranged by date, the earliest first";

    c.setSelectionIndex(99);
    EXPECT_EQ(c.selected(), items[0].get()) << "an index past the end selects the last row";
    EXPECT_EQ(c.storedSelectionIndex(), 2);
    c.setSelectionIndex(kNoSelection);
    EXPECT_EQ(c.selected(), nullptr);
    EXPECT_EQ(c.storedSelectionIndex(), kNoSelection);

    c.setSelectionIndex(1);
    core::Record* chosen = c.selected();
    chosen->set("date", core::Value::date(core::Date{5}));
    c.rearrange();
    EXPECT_EQ(c.selected(), chosen);
    EXPECT_EQ(c.selectionIndex(), 0u);

    c.removeAt(0);
    EXPECT_EQ(items.size(), 2u);
    EXPECT_EQ(c.selectionIndex(), 0u);
    c.setContent(nullptr);
    EXPECT_EQ(c.selected(), nullptr);
    EXPECT_EQ(c.count(), 0u);
}

TEST(VirtualScheduler, AnAbsurdAdvanceRunsAPeriodicTimerABoundedNumberOfTimes) {
    VirtualScheduler s;
    int saves = 0, reminders = 0;
    s.every(30, [&] { ++saves; });
    s.after(45, [&] { ++reminders; });
    // Five minutes: every tick runs.
    s.advance(300);
    EXPECT_EQ(saves, 10);
    // Centuries: the ticks beyond the cap are dropped; the timer goes on 30 s after the new
    // time, and a one-shot task still runs once.
    s.advance(1e12);
    EXPECT_EQ(saves, 10 + VirtualScheduler::kMaxTicksPerAdvance);
    EXPECT_EQ(reminders, 1);
    s.advance(29);
    EXPECT_EQ(saves, 20);
    s.advance(1);
    EXPECT_EQ(saves, 21);
    // Where 30 s are below the precision of the time, the timer runs at most once per time
    // there is, and an advance that cannot move the time runs nothing twice.
    s.advance(1e20);
    const int atTheEnd = saves;
    EXPECT_LE(atTheEnd, 21 + VirtualScheduler::kMaxTicksPerAdvance);
    s.advance(0);
    s.advance(30);
    EXPECT_LE(saves, atTheEnd + 1);
    s.advance(1e300);
    EXPECT_LE(saves, atTheEnd + 1 + VirtualScheduler::kMaxTicksPerAdvance);
}
