#include "shell/headless.h"

#include "core/utf8.h"

#include <cmath>

#include <cmath>
#include <limits>

namespace zifora::shell {

namespace {

// Event texts come from the user's records and file names; they are written as valid UTF-8.
void repairTexts(EventJson& json) {
    if (json.is_string()) {
        const auto& text = json.get_ref<const std::string&>();
        if (!core::isValidUtf8(text)) json = core::repairedUtf8(text);
    } else if (json.is_structured()) {
        for (auto& child : json)
            repairTexts(child);
    }
}

// A length in points: whole points as integers (40, not 40.0).
EventJson points(double value) {
    if (std::trunc(value) == value && std::abs(value) < 1e15) return static_cast<int64_t>(value);
    return value;
}

const char* dialogKindName(DialogKind kind) {
    switch (kind) {
    case DialogKind::Open:
        return "open";
    case DialogKind::Save:
        return "save";
    case DialogKind::Folder:
        return "folder";
    }
    return "open";
}

} // namespace

void EventLog::emit(const EventJson& event) {
    EventJson repaired = event;
    repairTexts(repaired);
    emitLine(repaired.dump());
}

void EventLog::emitLine(const std::string& json) {
    m_out << json << '\n';
    m_out.flush();
}

void EventLog::error(const std::string& message) {
    ++m_errors;
    emit({{"error", message}});
}

int ScriptedUi::alert(const AlertRequest& request) {
    bool queued = !m_answers.empty();
    int answer = 1;
    if (queued) {
        answer = m_answers.front();
        m_answers.pop_front();
    }
    EventJson body = {{"title", request.title},
                      {"text", request.text},
                      {"buttons", request.buttons},
                      {"answer", answer}};
    if (!queued) body["queued"] = false;
    m_log.emit({{"alert", body}});
    return answer;
}

void ScriptedUi::beep() {
    m_log.emit({{"beep", true}});
}

std::optional<std::string> ScriptedUi::chooseFile(const DialogRequest& request) {
    bool queued = !m_choices.empty();
    std::optional<std::string> answer;
    if (queued) {
        answer = m_choices.front();
        m_choices.pop_front();
    }
    EventJson body = {{"kind", dialogKindName(request.kind)},
                      {"title", request.title},
                      {"extensions", request.extensions},
                      {"suggested", request.suggestedName},
                      {"answer", answer ? EventJson(*answer) : EventJson(nullptr)}};
    if (!queued) body["queued"] = false;
    m_log.emit({{"dialog", body}});
    return answer;
}

void ScriptedUi::showWindow(const std::string& name) {
    m_log.emit({{"window", {{"show", name}}}});
}

void ScriptedUi::hideWindow(const std::string& name) {
    m_log.emit({{"window", {{"hide", name}}}});
}

void ScriptedUi::preview(const std::string& pdfPath, const std::string& title) {
    m_log.emit({{"preview", {{"path", pdfPath}, {"title", title}}}});
}

bool ScriptedUi::print(const PrintRequest& request) {
    m_log.emit({{"print",
                 {{"path", request.pdfPath},
                  {"title", request.title},
                  {"margins",
                   {points(request.marginTop), points(request.marginLeft),
                    points(request.marginRight), points(request.marginBottom)}}}}});
    return true;
}

TimerId VirtualScheduler::schedule(double seconds, double interval, std::function<void()> task) {
    TimerId id = m_next++;
    m_tasks.emplace(id, Task{m_now + std::max(0.0, seconds), interval, std::move(task)});
    return id;
}

TimerId VirtualScheduler::after(double seconds, std::function<void()> task) {
    return schedule(seconds, 0, std::move(task));
}

TimerId VirtualScheduler::every(double seconds, std::function<void()> task) {
    return schedule(seconds, std::max(seconds, 0.001), std::move(task));
}

void VirtualScheduler::cancel(TimerId id) {
    m_tasks.erase(id);
}

void VirtualScheduler::advance(double seconds) {
    // The time stays a number: it stops at the largest there is.
    const double target =
        std::min(m_now + std::max(0.0, seconds), std::numeric_limits<double>::max());
    // Small tolerance, so that 0.1 + 0.2 seconds of delays fall due at 0.3.
    const double epsilon = 1e-9;
    std::map<TimerId, int> ticks; // per periodic timer: its runs in this advance
    for (;;) {
        auto next = m_tasks.end();
        for (auto it = m_tasks.begin(); it != m_tasks.end(); ++it)
            if (next == m_tasks.end() || it->second.due < next->second.due - epsilon) next = it;
        if (next == m_tasks.end() || next->second.due > target + epsilon) break;
        m_now = std::max(m_now, next->second.due);
        Task& task = next->second;
        std::function<void()> run = task.run;
        if (task.interval > 0) {
            double due = task.due + task.interval;
            if (++ticks[next->first] >= kMaxTicksPerAdvance && due <= target + epsilon) {
                // The ticks beyond are dropped, as a machine that sleeps drops them; the
                // timer goes on one interval after the new time.
                due = target + task.interval;
                if (!(due > target)) due = std::nextafter(target, INFINITY);
            }
            // Where the time is too large to count in steps of the interval, the next tick
            // is the next time there is: a timer never runs twice at one time.
            if (!(due > m_now)) due = std::nextafter(m_now, INFINITY);
            task.due = due;
        } else {
            m_tasks.erase(next);
        }
        run();
    }
    m_now = target;
}

void RecordingClipboard::putText(const std::string& text) {
    m_text = text;
    m_log.emit({{"clipboard", text}});
}

bool RecordingWorkspace::openFile(const std::string& path) {
    m_log.emit({{"open", path}});
    return true;
}

bool RecordingWorkspace::revealFile(const std::string& path) {
    m_log.emit({{"reveal", path}});
    return true;
}

bool RecordingWorkspace::launch(const std::string& program,
                                const std::vector<std::string>& arguments) {
    m_log.emit({{"launch", {{"program", program}, {"arguments", arguments}}}});
    return true;
}

bool RecordingWorkspace::composeMail(const std::string& to, const std::string& subject,
                                     const std::vector<std::string>& attachments) {
    m_log.emit({{"mail", {{"to", to}, {"subject", subject}, {"attachments", attachments}}}});
    return true;
}

void RecordingWorkspace::terminate() {
    m_terminated = true;
    m_log.emit({{"terminate", true}});
}

void RecordingWorkspace::fileWritten(const std::string& path) {
    m_log.emit({{"file", {{"written", path}}}});
}

} // namespace zifora::shell
