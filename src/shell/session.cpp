#include "shell/session.h"

#include "shell/events.h"

namespace zifora::shell {

// The platform's scheduler, telling the book's observers after every task that ran: a
// delayed step may change anything, as a command may.
class Session::ObservedScheduler final : public Scheduler {
  public:
    ObservedScheduler(Scheduler& inner, const core::Book& book) : m_inner(inner), m_book(book) {}

    TimerId after(double seconds, std::function<void()> task) override {
        return m_inner.after(seconds, wrap(std::move(task)));
    }
    TimerId every(double seconds, std::function<void()> task) override {
        return m_inner.every(seconds, wrap(std::move(task)));
    }
    void cancel(TimerId id) override { m_inner.cancel(id); }

  private:
    std::function<void()> wrap(std::function<void()> task) {
        return [this, task = std::move(task)] {
            task();
            m_book.changed(core::Change::All);
        };
    }

    Scheduler& m_inner;
    const core::Book& m_book;
};

namespace {

Services withScheduler(Services services, Scheduler& scheduler) {
    return Services{services.ui,        scheduler,          services.clock,
                    services.clipboard, services.workspace, services.pdf};
}

} // namespace

Session::Session(Services services, core::Places places, core::Settings& settings)
    : m_scheduler(std::make_unique<ObservedScheduler>(services.scheduler, m_book)),
      m_services(withScheduler(services, *m_scheduler)), m_book(std::move(places)),
      m_settings(settings) {
    m_selection.items.setSortKey("date");
    m_selection.propagate(&m_book.clients());
    // A command may change records and the selection alike.
    m_commands.observe(
        [this](const std::string&, const CommandResult&) { m_book.changed(core::Change::All); });
}

Session::~Session() = default;

void Session::selectionChanged() {
    m_selection.propagate(&m_book.clients());
    m_events.publish(SelectionChanged{});
    m_book.changed(core::Change::Selection);
}

void Session::setClients(const core::RecordList& clients) {
    m_book.setClients(clients);
    m_selection.propagate(&m_book.clients());
    m_book.changed(core::Change::Records | core::Change::Selection);
}

bool Session::flushSettings() {
    auto flushed = m_settings.flush();
    // A file that is in place although its folder could not be synced counts as written.
    if (flushed || flushed.error().written) {
        m_settingsFailureTold.clear();
        return true;
    }
    const std::string& cause = flushed.error().message;
    m_events.publish(SettingsSaveFailed{m_settings.file().string(), cause});
    if (cause == m_settingsFailureTold) return false;
    m_settingsFailureTold = cause;
    m_services.ui.alert(AlertRequest{
        "Fehler!",
        "Zifora konnte die Einstellungen nicht in „" + m_settings.file().string() +
            "“ sichern. Die Datei auf der Festplatte ist unverändert; deine Einstellungen "
            "gelten in diesem Lauf weiter, und Zifora versucht es beim nächsten Sichern "
            "wieder. Bitte sorge für Platz und Schreibrechte an diesem Ort.\n\nTechnische "
            "Angabe: " +
            cause,
        {"OK"},
        AlertStyle::Critical,
        {}});
    return false;
}

void Session::addDragHandler(const std::string& list, DragHandler handler) {
    m_dragHandlers[list] = std::move(handler);
}

bool Session::drag(const DragRequest& request) {
    auto it = m_dragHandlers.find(request.list);
    if (it == m_dragHandlers.end()) return false;
    it->second(request);
    m_book.changed(core::Change::All);
    return true;
}

} // namespace zifora::shell
