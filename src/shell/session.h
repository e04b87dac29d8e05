#pragma once
// The session: everything a feature works with. The book, the selection chain over it, the
// settings, the platform services, the form fields, the command catalog and the event
// channel. A feature receives the session and nothing above it.

#include "core/book.h"
#include "core/settings.h"
#include "shell/commandcatalog.h"
#include "shell/eventchannel.h"
#include "shell/formfields.h"
#include "shell/selection.h"
#include "shell/services.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace zifora::shell {

class Session {
  public:
    Session(Services services, core::Places places, core::Settings& settings);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] core::Book& book() { return m_book; }
    [[nodiscard]] const core::Places& places() const { return m_book.places(); }
    [[nodiscard]] Selection& selection() { return m_selection; }
    [[nodiscard]] core::Settings& settings() { return m_settings; }
    [[nodiscard]] Services& services() { return m_services; }
    [[nodiscard]] CommandCatalog& commands() { return m_commands; }
    [[nodiscard]] FormFields& fields() { return m_fields; }
    [[nodiscard]] EventChannel& events() { return m_events; }
    [[nodiscard]] core::Date now() const { return m_services.clock.now(); }

    /// Runs a command of the catalog; nothing when there is none of that name.
    std::optional<CommandResult> run(std::string_view name, const CommandSender& sender = {}) {
        return m_commands.run(name, sender);
    }

    /// Brings the chain up to date after its selection was changed (by a feature, the
    /// window or a script) and tells the features.
    void selectionChanged();
    /// Replaces every client and shows the new list in the chain.
    void setClients(const core::RecordList& clients);

    /// Writes the settings store. A failure is published (`SettingsSaveFailed`) and told in a
    /// "Fehler!" alert, once for each cause until a flush succeeds again; the next flush
    /// tries again. False when the store could not be written.
    bool flushSettings();

    /// Drops of rows, by the name of the list the rows come from.
    using DragHandler = std::function<void(const DragRequest&)>;
    void addDragHandler(const std::string& list, DragHandler handler);
    /// Runs the drop; false when rows of that list can't be dragged.
    bool drag(const DragRequest& request);

  private:
    class ObservedScheduler;

    std::unique_ptr<ObservedScheduler> m_scheduler;
    Services m_services;
    core::Book m_book;
    core::Settings& m_settings;
    Selection m_selection;
    FormFields m_fields;
    CommandCatalog m_commands;
    EventChannel m_events;
    std::map<std::string, DragHandler> m_dragHandlers;
    /// The cause of the last failed flush told to the user; empty after one that succeeded.
    std::string m_settingsFailureTold;
};

} // namespace zifora::shell
