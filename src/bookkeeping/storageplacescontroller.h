#pragma once
// The folders the user chooses for the database, the backups and the documents. No two of
// them may be the same folder.

#include "shell/commandcatalog.h"
#include "shell/feature.h"

#include <array>
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
    /// A place's setting, the settings of the other places it must differ from with the
    /// refusal of each, and the flag a refusal switches off (none for the documents).
    struct Place {
        const char* setting;
        std::array<std::pair<const char*, const char*>, 2> mustDiffer;
        const char* switchedOff;
    };

    void registerCommands();
    shell::CommandResult choose(const Place& place);
    std::optional<std::string> chooseStorageFolder();
    void refuse(const char* text);

    shell::Session& m_session;
};

} // namespace zifora::bookkeeping
