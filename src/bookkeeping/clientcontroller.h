#pragma once
// The tax-payers ("Benutzer"): adding and deleting them, and the mirror of the current
// client's identity in the settings, where reports and exports read it.

#include "shell/feature.h"

namespace zifora::core {
class Record;
}
namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

class ClientController final : public shell::Feature {
  public:
    /// Registers `createClient:`, `deleteClient:`, `changeCurrentClient:` and
    /// `setCurrentClientToPrefs`, and follows the selection of the client.
    explicit ClientController(shell::Session& session);
    [[nodiscard]] std::string_view name() const override { return "Benutzer"; }

    /// Copies the six identity keys of the current client into their settings.
    void setCurrentClientToPrefs();
    void changeCurrentClient();
    void createClient();
    void deleteClient();

  private:
    void registerCommands();
    /// Another client became current: its identity goes to the settings 0.1 s later.
    void selectionChanged();

    shell::Session& m_session;
    core::Record* m_mirroredClient = nullptr;
};

} // namespace zifora::bookkeeping
