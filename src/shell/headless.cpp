#include "shell/headless.h"

#include "core/jsondump.h"

#include <cmath>
#include <limits>

namespace zifora::shell {

namespace {

std::string jsonString(const std::string& s) {
    std::string out;
    core::appendJsonString(out, s);
    return out;
}

std::string jsonStrings(const std::vector<std::string>& list) {
    std::string out = "[";
    for (size_t i = 0; i < list.size(); ++i) {
        if (i) out += ',';
        core::appendJsonString(out, list[i]);
    }
    return out + "]";
}

const char* dialogKindName(DialogKind kind) {
    switch (kind) {
    case DialogKind::Open: return "open";
    case DialogKind::Save: return "save";
    case DialogKind::Folder: return "folder";
    }
    return "open";
}

} // namespace

void EventLog::emit(const std::string& json) {
    m_out << json << '\n';
    m_out.flush();
}

void EventLog::error(const std::string& message) {
    ++m_errors;
    emit("{\"error\":" + jsonString(message) + "}");
}

int ScriptedUi::alert(const AlertRequest& request) {
    bool queued = !m_answers.empty();
    int answer = 1;
    if (queued) {
        answer = m_answers.front();
        m_answers.pop_front();
    }
    std::string json = "{\"alert\":{\"title\":" + jsonString(request.title) +
                       ",\"text\":" + jsonString(request.text) +
                       ",\"buttons\":" + jsonStrings(request.buttons) +
                       ",\"answer\":" + std::to_string(answer);
    if (!queued) json += ",\"queued\":false";
    m_log.emit(json + "}}");
    return answer;
}

void ScriptedUi::beep() { m_log.emit("{\"beep\":true}"); }

std::optional<std::string> ScriptedUi::chooseFile(const DialogRequest& request) {
    bool queued = !m_choices.empty();
    std::optional<std::string> answer;
    if (queued) {
        answer = m_choices.front();
        m_choices.pop_front();
    }
    std::string json = std::string("{\"dialog\":{\"kind\":\"") + dialogKindName(request.kind) +
                       "\",\"title\":" + jsonString(request.title) +
                       ",\"extensions\":" + jsonStrings(request.extensions) +
                       ",\"suggested\":" + jsonString(request.suggestedName) +
                       ",\"answer\":" + (answer ? jsonString(*answer) : std::string("null"));
    if (!queued) json += ",\"queued\":false";
    m_log.emit(json + "}}");
    return answer;
}

void ScriptedUi::showWindow(const std::string& name) {
    m_log.emit("{\"window\":{\"show\":" + jsonString(name) + "}}");
}

void ScriptedUi::hideWindow(const std::string& name) {
    m_log.emit("{\"window\":{\"hide\":" + jsonString(name) + "}}");
}

void ScriptedUi::preview(const std::string& pdfPath, const std::string& title) {
    m_log.emit("{\"preview\":{\"path\":" + jsonString(pdfPath) + ",\"title\":" + jsonString(title) +
               "}}");
}

bool ScriptedUi::print(const std::string& pdfPath, const std::string& title) {
    m_log.emit("{\"print\":{\"path\":" + jsonString(pdfPath) + ",\"title\":" + jsonString(title) +
               "}}");
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

void VirtualScheduler::cancel(TimerId id) { m_tasks.erase(id); }

void VirtualScheduler::advance(double seconds) {
    // The time stays a number: it stops at the largest there is.
    const double target = std::min(m_now + std::max(0.0, seconds), std::numeric_limits<double>::max());
    // Small tolerance, so that 0.1 + 0.2 seconds of delays fall due at 0.3.
    const double epsilon = 1e-9;
    std::map<TimerId, int> ticks; // per periodic timer: its runs in this advance
    for (;;) {
        auto next = m_tasks.end();
        for (auto it = m_tasks.begin(); it != m_tasks.end(); ++it)
            if (next == m_tasks.end() || it->second.due < next->second.due - epsilon)
                next = it;
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
    m_log.emit("{\"clipboard\":" + jsonString(text) + "}");
}

bool RecordingWorkspace::openFile(const std::string& path) {
    m_log.emit("{\"open\":" + jsonString(path) + "}");
    return true;
}

bool RecordingWorkspace::revealFile(const std::string& path) {
    m_log.emit("{\"reveal\":" + jsonString(path) + "}");
    return true;
}

bool RecordingWorkspace::launch(const std::string& program, const std::vector<std::string>& arguments) {
    m_log.emit("{\"launch\":{\"program\":" + jsonString(program) +
               ",\"arguments\":" + jsonStrings(arguments) + "}}");
    return true;
}

bool RecordingWorkspace::composeMail(const std::string& to, const std::string& subject,
                                     const std::vector<std::string>& attachments) {
    m_log.emit("{\"mail\":{\"to\":" + jsonString(to) + ",\"subject\":" + jsonString(subject) +
               ",\"attachments\":" + jsonStrings(attachments) + "}}");
    return true;
}

void RecordingWorkspace::terminate() {
    m_terminated = true;
    m_log.emit("{\"terminate\":true}");
}

void RecordingWorkspace::fileWritten(const std::string& path) {
    m_log.emit("{\"file\":{\"written\":" + jsonString(path) + "}}");
}

} // namespace zifora::shell
