#include "forms/formbinder.h"

#include "shell/session.h"

#include <QPointer>
#include <QTimer>

#include "core/civildate.h"

#include <cmath>

namespace zifora::gui {

QDateTime toQDateTime(core::Date date) {
    // Outside the years 1 to 9999 there is no date to show: an invalid QDateTime.
    if (!core::civilFromUnixTime(date.unixSeconds())) return QDateTime();
    const double ms = std::round(date.unixSeconds() * 1000.0);
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(ms));
}

core::Date fromQDateTime(const QDateTime& dateTime) {
    return core::Date::fromUnix(static_cast<double>(dateTime.toMSecsSinceEpoch()) / 1000.0);
}

core::Value dateOnDay(const core::Value& before, QDate day) {
    const QTime time =
        before.kind() == core::Kind::Date ? toQDateTime(before.asDate()).time() : QTime(12, 0);
    return core::Value::date(fromQDateTime(QDateTime(day, time)));
}

FormBinder::FormBinder(shell::Session& app, std::function<void()> afterChange, QObject* parent)
    : QObject(parent), m_app(app), m_afterChange(std::move(afterChange)) {
    // The controls live as long as the application object; a form that is gone is skipped.
    QPointer<FormBinder> self(this);
    m_app.fields().observe([self](const std::string& name, const core::Value&) {
        if (self) self->dispatch(name);
    });
}

void FormBinder::onControl(const std::string& name, std::function<void()> show) {
    m_shows.emplace(name, std::move(show));
}

void FormBinder::showAll() {
    for (auto& [name, show] : m_shows)
        show();
}

void FormBinder::dispatch(const std::string& name) {
    auto [first, last] = m_shows.equal_range(name);
    for (auto it = first; it != last; ++it)
        it->second();
}

core::Value FormBinder::value(std::string_view name) const {
    return m_app.fields().get(name);
}

QString FormBinder::text(std::string_view name) const {
    return qs(m_app.fields().text(name));
}

void FormBinder::write(std::string_view name, core::Value value) {
    m_app.fields().set(name, std::move(value));
    refreshSoon();
}

bool FormBinder::commitPending() {
    for (const auto& commit : m_pending)
        if (!commit()) return false;
    return true;
}

void FormBinder::refusedThisTurn() {
    m_refused = true;
    QTimer::singleShot(0, this, [this] { m_refused = false; });
}

bool FormBinder::run(const std::string& command, int tag, bool commitFirst) {
    if (m_refused) return false;
    if (commitFirst && !commitPending()) return false;
    if (m_refused) return false;
    const bool known = m_app.run(command, shell::CommandSender{tag}).has_value();
    refreshNow();
    refreshSoon();
    return known;
}

void FormBinder::edit(std::string_view name, core::Value value, const std::string& command) {
    if (!commitPending()) return;
    write(name, std::move(value));
    if (!command.empty()) run(command);
}

void FormBinder::refreshNow() {
    if (m_afterChange) m_afterChange();
}

void FormBinder::refreshSoon() {
    if (m_refreshQueued) return;
    m_refreshQueued = true;
    // Calculations and checks that a command schedules run within a tenth of a second.
    QTimer::singleShot(150, this, [this] {
        m_refreshQueued = false;
        refreshNow();
    });
}

} // namespace zifora::gui
