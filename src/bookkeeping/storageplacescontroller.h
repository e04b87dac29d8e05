#pragma once
// The folders the user chooses for the database, the backups and the documents. No two of
// them may be the same folder.

#include "shell/commandcatalog.h"
#include "shell/feature.h"

#include <optional>
#include <string>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

class StoragePlacesController final : public shell::Feature {
  public:
    /// Registers `setLibraryPath:`, `setBackupPath:` and `setDocumentsPath:`.
    explicit StoragePlacesController(shell::Session& session);
    [[nodiscard]] std::string_view name() const override { return "Speicherorte"; }

    shell::CommandResult setLibraryPath();
    shell::CommandResult setBackupPath();
    shell::CommandResult setDocumentsPath();

  private:
    void registerCommands();
    std::optional<std::string> chooseStorageFolder();
    void refuse(const char* text);

    shell::Session& m_session;
};

} // namespace zifora::bookkeeping
