#pragma once
// The book: every tax-payer with the whole tree of records, the database file they live in,
// the databases of earlier versions they can be made from, the places of one run, and a
// signal that tells observers what changed.

#include "core/error.h"
#include "core/places.h"
#include "core/record.h"
#include "core/settings.h"

#include <functional>
#include <string>
#include <vector>

namespace zifora::core {

/// What changed in a step of the program, as a set of flags.
enum class Change : unsigned {
    None = 0,
    Records = 1,   // records were added, removed or edited
    Selection = 2, // another record is current in some list
    Settings = 4,  // the settings store was written
    All = 7,
};
[[nodiscard]] constexpr Change operator|(Change a, Change b) {
    return static_cast<Change>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
[[nodiscard]] constexpr bool contains(Change set, Change flag) {
    return (static_cast<unsigned>(set) & static_cast<unsigned>(flag)) != 0;
}

/// Where the database file of a run lies.
struct DataFileLocation {
    std::string folder;
    std::string path; // <folder>/Zifora.zfdb4
    bool folderExists = false;
};

/// The identity of a tax-payer made from an old database: "company", "taxNumber",
/// "elsterNumber" and "taxationKind".
struct ClientIdentity {
    std::string company;
    std::string taxNumber;
    std::string elsterNumber;
    Value taxationKind;
};

class Book {
  public:
    /// The name of the database file in its folder.
    static constexpr const char* kDatabaseName = "Zifora.zfdb4";

    explicit Book(Places places);

    [[nodiscard]] const Places& places() const { return m_places; }

    // --- the tax-payers ----------------------------------------------------------------
    [[nodiscard]] RecordList& clients() { return *m_clients; }
    [[nodiscard]] const RecordList& clients() const { return *m_clients; }
    /// Replaces all clients (the list is copied; the records are shared).
    void setClients(const RecordList& clients);
    /// The root dictionary of the database file: {"clients": [...]}.
    [[nodiscard]] Value databaseRoot() const;

    // --- the database file -------------------------------------------------------------
    /// The folder and file of the database: the custom location of the settings when one is
    /// chosen, else the data folder (made when missing). Notes both in the settings
    /// ("defaultDataFolder", "defaultDataPath").
    DataFileLocation locateDataFile(Settings& settings) const;
    /// The same place, found without making a folder or writing a setting.
    [[nodiscard]] DataFileLocation dataFile(const Settings& settings) const;
    /// True when something stands at the database's place in an existing folder, readable
    /// or not (a link is followed).
    [[nodiscard]] bool databasePresent(const Settings& settings) const;

    /// Reads the clients of the database at `path`. A missing file gives an empty book that
    /// begins anew (see `beginNew`). A file that cannot be read, or whose root is no
    /// dictionary with a list of clients under "clients", leaves the book empty, returns the
    /// cause naming the file, and latches `unreadable()` so that it is never overwritten.
    [[nodiscard]] Result<void> load(const std::string& path);
    /// An empty book that read no file, because there was none: its first save makes the
    /// database but never replaces a file that has come meanwhile.
    void beginNew();
    /// Forgets every client: nothing is read, and nothing is saved until the next `load` or
    /// `beginNew`.
    void reset();
    /// True after `load` or `beginNew`: the book may be saved.
    [[nodiscard]] bool loaded() const { return m_state != State::Unread; }
    /// Writes the whole book to `path` atomically: the old file stays whole on failure.
    /// Refused while the book was not loaded or `unreadable()` holds.
    [[nodiscard]] Result<void> save(const std::string& path);
    /// True once a database could not be read; nothing is saved for the rest of the run.
    [[nodiscard]] bool unreadable() const { return m_unreadable; }

    // --- migration of earlier databases ------------------------------------------------
    /// The first client of a new installation, "Neue Firma".
    [[nodiscard]] static Ref<Record> newInstallationClient(Date now);
    /// A client with `identity` around the lists of an old single-client database at
    /// `path`; a missing file gives empty lists. A file that cannot be read gives its cause
    /// and latches `unreadable()`.
    [[nodiscard]] Result<Ref<Record>>
    clientFromOldDatabase(const std::string& path, const ClientIdentity& identity, Date now);
    /// The entries of "Accounts.plist" in `folder` (the several-client installations of
    /// earlier versions); none where the file is missing or unreadable.
    [[nodiscard]] static Value oldAccountsList(const std::string& folder);

    // --- the change signal -------------------------------------------------------------
    using Observer = std::function<void(Change)>;
    void observe(Observer observer) { m_observers.push_back(std::move(observer)); }
    /// Tells every observer what changed.
    void changed(Change what) const;

  private:
    /// Where the clients come from: nothing yet, no file (a new book), or the file.
    enum class State { Unread, New, FromFile };

    Places m_places;
    ListPtr m_clients;
    State m_state = State::Unread;
    bool m_unreadable = false;
    std::vector<Observer> m_observers;
};

} // namespace zifora::core
