#pragma once
// The migration of earlier databases: the first client of a new installation, the
// automatic migration of an old single-client or several-client database at the first start
// of this version, and the migration the user asks for from the menu.

#include "core/book.h"
#include "shell/feature.h"

#include <string>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

class MigrationController final : public shell::Feature {
  public:
    /// Registers `doTheMigration`, `migrateWithTag:`, `doTheManualMigration` and
    /// `openMigrationHelp:`.
    explicit MigrationController(shell::Session& session);
    [[nodiscard]] std::string_view name() const override { return "Migration"; }

    void doTheMigration();
    /// Makes one client around an old database file (missing files give empty lists).
    void migrateWithPath(const std::string& path, const core::ClientIdentity& identity);
    void setDelayedSelectionIndex();
    void migrateWithTag(int tag);
    void doTheManualMigration();
    void openMigrationHelp();

  private:
    void registerCommands();
    void migrateOldInstallation();

    shell::Session& m_session;
};

} // namespace zifora::bookkeeping
