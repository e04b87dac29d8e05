#pragma once
// The link between the widgets of one form and the program's named controls: the widgets
// show what the program sets (`FormFields::observe`), hand over what the user types
// (`FormFields::set`) and run the form's buttons as commands of the registry. Nothing here
// decides anything about the books; that stays with the controllers.

#include "core/value.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

inline QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string str(const QString& text) {
    return text.toStdString();
}

/// A record's date as local date and time, and back.
QDateTime toQDateTime(core::Date date);
core::Date fromQDateTime(const QDateTime& dateTime);
/// A date control's new value for a chosen day: the day at the time of day the control
/// held before (noon if it held no date).
core::Value dateOnDay(const core::Value& before, QDate day);

class FormBinder final : public QObject {
    Q_OBJECT
  public:
    /// `afterChange` brings the main window up to date; it runs after each command and,
    /// gathered into one call, after typing.
    FormBinder(shell::Session& app, std::function<void()> afterChange, QObject* parent);

    [[nodiscard]] shell::Session& app() { return m_app; }

    /// Calls `show` whenever the program sets the control `name` (and from `showAll`).
    void onControl(const std::string& name, std::function<void()> show);
    /// Shows every control this form binds, as the program holds it now.
    void showAll();

    [[nodiscard]] core::Value value(std::string_view name) const;
    [[nodiscard]] QString text(std::string_view name) const;

    /// The user changed a control.
    void write(std::string_view name, core::Value value);
    void writeText(std::string_view name, const QString& text) {
        write(name, core::Value::string(str(text)));
    }

    /// A typed value that a widget holds back until editing ends (the sum, the account
    /// number). `commit` hands it over and answers false when the program refused it.
    void addPendingEdit(std::function<bool()> commit) { m_pending.push_back(std::move(commit)); }
    /// Hands over every pending edit; false when one was refused.
    bool commitPending();
    /// A refusal of the current key press or click: the command it would run next is
    /// dropped, so that the user sees one alert, not two.
    void refusedThisTurn();

    /// Runs a command for a button: pending edits first (unless `commitFirst` is false, as
    /// for cancelling), then the command, then the main window refreshes. False when the
    /// command did not run.
    bool run(const std::string& command, int tag = 0, bool commitFirst = true);
    /// Hands over pending edits, sets a control and runs its command ("" for none).
    void edit(std::string_view name, core::Value value, const std::string& command = {});

    /// Brings the main window up to date a moment later, once the calculations and checks
    /// that a command scheduled have run; calls made meanwhile are gathered into one.
    void refreshSoon();

  private:
    void dispatch(const std::string& name);
    void refreshNow();

    shell::Session& m_app;
    std::function<void()> m_afterChange;
    std::multimap<std::string, std::function<void()>, std::less<>> m_shows;
    std::vector<std::function<bool()>> m_pending;
    bool m_refused = false;
    bool m_refreshQueued = false;
};

} // namespace zifora::gui
