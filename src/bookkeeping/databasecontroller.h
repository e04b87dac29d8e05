#pragma once
// The database file of a run: where it lies, its load at the start, and every save (the
// timer's, the menu's, the stop's). A database that can't be read is never overwritten, and
// a save that fails keeps the old file whole, tells the user once and is tried again at the
// next save.

#include "shell/feature.h"

#include <optional>
#include <string>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

/// Tells the user that the database at `path` can't be read and will not be written.
void showUnreadableDatabase(shell::Session& session, const std::string& path,
                            const std::string& cause);

class DatabaseController final : public shell::Feature {
  public:
    /// Registers `save:`, `autoSave:`, `saveDataToDisk`, `loadDataFromDisk`,
    /// `pathForDataFile` and `setSelection`.
    explicit DatabaseController(shell::Session& session);
    [[nodiscard]] std::string_view name() const override { return "Datenbank"; }

    /// The path of the database file; warns when its folder is missing and stops saving.
    std::string pathForDataFile();
    /// Writes the book when saving is allowed.
    void saveDataToDisk();
    /// Reads the book, or makes it on a first run through the migration.
    void loadDataFromDisk();
    /// Selects the client and the rows noted in the settings.
    void setSelection();

  private:
    void registerCommands();
    void reportSaveFailure(const std::string& path, const std::string& cause);
    void reportUnsyncedSave(const std::string& path, const std::string& cause);
    /// Tells the user that the settings were lost: `notice`, or else the settings' own loss
    /// notice. False when there was nothing to tell.
    bool tellLostSettings(std::optional<std::string> notice = std::nullopt);
    /// Removes what saves of earlier runs that died left beside the database and the
    /// settings.
    void removeStaleTemporaryFiles();

    shell::Session& m_session;
    /// The text of the last failure told to the user; empty after a save that succeeded.
    std::string m_reportedFailure;
    /// The cause of the last save told as written but not synced; empty after a save that
    /// was synced.
    std::string m_reportedUnsynced;
};

} // namespace zifora::bookkeeping
