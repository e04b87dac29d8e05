#pragma once
// The tax-payers ("Benutzer"): adding and deleting them, and the mirror of the current
// client's identity in the settings, where reports and exports read it.

#include "shell/feature.h"

#include <string>
#include <string_view>

namespace zifora::core {
class Record;
class Value;
} // namespace zifora::core
namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

/// The form fields of the selected client's identity, each written into the client's key
/// of the same name after the prefix: "clientForm.company", "clientForm.taxNumber",
/// "clientForm.elsterNumber", "clientForm.datevConsultantNumber",
/// "clientForm.datevClientNumber" (texts) and "clientForm.taxationKind" (a number of
/// `kTaxationKinds`).
inline constexpr std::string_view kClientFormPrefix = "clientForm.";

/// The kinds of taxation a client can be kept under, by the number the client stores.
struct TaxationKind {
    int number;
    const char* title;
};
inline constexpr TaxationKind kTaxationKinds[] = {
    {1, "Sollversteuerung (vereinbarte Entgelte)"},
    {2, "Istversteuerung (vereinnahmte Entgelte)"},
};

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
    /// A field of the client form was set: its key of the selected client follows, and the
    /// settings mirror a moment later.
    void clientFieldChanged(const std::string& name, const core::Value& value);
    /// Another client became current: its identity goes to the settings 0.1 s later.
    void selectionChanged();

    shell::Session& m_session;
    core::Record* m_mirroredClient = nullptr;
};

} // namespace zifora::bookkeeping
