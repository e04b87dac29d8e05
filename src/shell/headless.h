#pragma once
// Headless implementations of the platform services: scripted answers, a virtual clock,
// and every event written as one JSON line.

#include "core/value.h"
#include "shell/services.h"

#include <nlohmann/json.hpp>

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <string>

namespace zifora::shell {

/// An event as a JSON object; its keys keep the order they were added in.
using EventJson = nlohmann::ordered_json;

/// Writes events as JSON lines.
class EventLog {
  public:
    explicit EventLog(std::ostream& out) : m_out(out) {}
    /// Writes `event` on one line; texts that are no valid UTF-8 are repaired first.
    void emit(const EventJson& event);
    /// Writes a line that is already a complete JSON object, such as one the dump codec made.
    void emitLine(const std::string& json);
    void error(const std::string& message);
    [[nodiscard]] int errorCount() const { return m_errors; }

  private:
    std::ostream& m_out;
    int m_errors = 0;
};

/// Alerts and dialogs answered from queues; unqueued alerts take the default button and
/// unqueued dialogs are cancelled, and the event says so.
class ScriptedUi final : public Ui {
  public:
    explicit ScriptedUi(EventLog& log) : m_log(log) {}
    void queueAnswer(int answer) { m_answers.push_back(answer); }
    void queueChoice(std::optional<std::string> path) { m_choices.push_back(std::move(path)); }

    int alert(const AlertRequest& request) override;
    void beep() override;
    std::optional<std::string> chooseFile(const DialogRequest& request) override;
    void showWindow(const std::string& name) override;
    void hideWindow(const std::string& name) override;
    void preview(const std::string& pdfPath, const std::string& title) override;
    bool print(const PrintRequest& request) override;

  private:
    EventLog& m_log;
    std::deque<int> m_answers;
    std::deque<std::optional<std::string>> m_choices;
};

/// Timers in virtual time: nothing runs until the clock is advanced.
class VirtualScheduler final : public Scheduler {
  public:
    TimerId after(double seconds, std::function<void()> task) override;
    TimerId every(double seconds, std::function<void()> task) override;
    void cancel(TimerId id) override;

    /// A periodic timer runs at most this often in one advance.
    static constexpr int kMaxTicksPerAdvance = 10;

    /// Moves the clock on by `seconds`, running every task that falls due, in order. A
    /// periodic timer runs at each of its ticks, up to `kMaxTicksPerAdvance` of them; the
    /// ticks beyond are dropped as on a machine that sleeps, and the timer goes on one
    /// interval after the new time. So moving the clock on by years costs no more than by
    /// minutes.
    void advance(double seconds);
    /// Runs what is due now (zero-delay calls, for instance).
    void runDue() { advance(0); }
    [[nodiscard]] double elapsed() const { return m_now; }
    [[nodiscard]] size_t pending() const { return m_tasks.size(); }

  private:
    struct Task {
        double due;
        double interval; // 0 for a one-shot task
        std::function<void()> run;
    };
    TimerId schedule(double seconds, double interval, std::function<void()> task);

    double m_now = 0;
    TimerId m_next = 1;
    std::map<TimerId, Task> m_tasks;
};

/// A clock that stands still except when the scheduler's virtual time moves.
class VirtualClock final : public Clock {
  public:
    VirtualClock(const VirtualScheduler& scheduler, core::Date start)
        : m_scheduler(scheduler), m_start(start) {}
    void setStart(core::Date start) {
        m_start = core::Date{start.sinceReferenceDate - m_scheduler.elapsed()};
    }
    [[nodiscard]] core::Date now() const override {
        return core::Date{m_start.sinceReferenceDate + m_scheduler.elapsed()};
    }

  private:
    const VirtualScheduler& m_scheduler;
    core::Date m_start;
};

class RecordingClipboard final : public Clipboard {
  public:
    explicit RecordingClipboard(EventLog& log) : m_log(log) {}
    void putText(const std::string& text) override;
    [[nodiscard]] const std::string& text() const { return m_text; }

  private:
    EventLog& m_log;
    std::string m_text;
};

class RecordingWorkspace final : public Workspace {
  public:
    explicit RecordingWorkspace(EventLog& log) : m_log(log) {}
    bool openFile(const std::string& path) override;
    bool revealFile(const std::string& path) override;
    bool launch(const std::string& program, const std::vector<std::string>& arguments) override;
    bool composeMail(const std::string& to, const std::string& subject,
                     const std::vector<std::string>& attachments) override;
    void terminate() override;
    void fileWritten(const std::string& path) override;
    [[nodiscard]] bool terminated() const { return m_terminated; }

  private:
    EventLog& m_log;
    bool m_terminated = false;
};

/// The headless services of one run over one event log. PDFs and RTF files come from
/// `renderer` where one is given (the Qt renderer, offscreen); without one they fail.
struct HeadlessServices {
    HeadlessServices(std::ostream& out, core::Date start, PdfRenderer* renderer = nullptr)
        : log(out), ui(log), clock(scheduler, start), clipboard(log), workspace(log),
          pdf(renderer ? *renderer : noPdf) {}

    [[nodiscard]] Services services() {
        return Services{ui, scheduler, clock, clipboard, workspace, pdf};
    }

    EventLog log;
    ScriptedUi ui;
    VirtualScheduler scheduler;
    VirtualClock clock;
    RecordingClipboard clipboard;
    RecordingWorkspace workspace;
    NoPdfRenderer noPdf;
    PdfRenderer& pdf;
};

} // namespace zifora::shell
