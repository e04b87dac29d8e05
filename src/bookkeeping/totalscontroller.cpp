#include "bookkeeping/totalscontroller.h"

#include "bookkeeping/datevhint.h"
#include "core/record.h"
#include "posting/numberformat.h"
#include "shell/events.h"
#include "shell/session.h"

#include <string>

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

namespace {

using core::Value;

/// What a number field gives as a float: a number as it stands; a text in the locale's own
/// notation, or else read up to the first character that cannot belong to a number.
float floatOfField(const Value& value) {
    if (value.kind() != core::Kind::String) return value.toFloat();
    if (auto parsed = posting::parseLocalizedAmount(value.text())) return *parsed;
    return value.toFloat();
}

} // namespace

TotalsController::TotalsController(shell::Session& session) : m_session(session) {
    registerCommands();
}

void TotalsController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    c.add("calculateTab:", [this](const CommandSender&) { calculateTabVoid(); });
    c.add("calculateTabVoid", [this](const CommandSender&) { calculateTabVoid(); });
    c.add(shell::menuCommand("infoWindowVoid", "&Summen der Abrechnung berechnen",
                             shell::Menu::Books, 70),
          [this](const CommandSender&) { infoWindowVoid(); });
    c.add(shell::menuCommand("changeAlLCalculates:", "Alle Posten &neu berechnen …",
                             shell::Menu::Books, 80),
          [this](const CommandSender&) { changeAlLCalculates(); });
}

void TotalsController::calculateTabVoid() {
    FormFields& fields = m_session.fields();
    const float payment = floatOfField(fields.get("tabPaymentField"));
    const float additionalPayment = floatOfField(fields.get("tabAdditionalPayField"));
    const float repayment = floatOfField(fields.get("tabRepaymentField"));
    const float owed = payment + additionalPayment;
    const float balance = owed - repayment;
    fields.set("tabBalanceField", Value::floatValue(balance));
    if (core::Record* period = m_session.selection().currentPeriod())
        period->set("balance", Value::floatValue(balance));
}

void TotalsController::infoWindowVoid() {
    const auto& items = m_session.selection().items.arranged();
    m_last = posting::settlementTotals(items);
    FormFields& fields = m_session.fields();
    core::Settings& settings = m_session.settings();
    for (const posting::NamedFigure& figure : posting::namedFigures(m_last.figures)) {
        fields.set(figure.field, Value::floatValue(figure.value));
        settings.setFloat("tab-" + std::string(figure.field), figure.value);
    }
    m_session.events().publish(TotalsComputed{m_last});
}

// The form hides its contents behind a busy indicator meanwhile; the desktop program does
// that around the command, since the work is done before the next redraw.
void TotalsController::changeAlLCalculates() {
    showDatevHintIfDue(m_session, "prefsDontShowDATEVTaxesHINT");
    calculateTabVoid();
    infoWindowVoid();
}

} // namespace zifora::bookkeeping
