#include "bookkeeping/splitcontroller.h"

#include "bookkeeping/taxrates.h"
#include "posting/numberformat.h"

#include "posting/itemcalculation.h"
#include "posting/itemsplit.h"
#include "shell/session.h"

#include <charconv>

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

namespace {

using core::Record;
using core::Value;

constexpr const char* kIncompleteText =
    "Posten ist unvollständig ausgefüllt. Bitte Steuersatz angeben.";
constexpr const char* kSuperfluousText =
    "Bei dem ausgewählten Steuersatz ist die Aktion überflüssig.";

// The net sum of the tax page: a number as it stands, a typed text in the locale's notation
// (a text that is no amount counts as no sum).
float netSumOf(const Value& field) {
    if (field.kind() != core::Kind::String) return field.toFloat();
    return posting::parseLocalizedAmount(field.text()).value_or(0.0f);
}

// The text the form's sum field shows for a number: its shortest plain form.
std::string plainText(float value) {
    char buf[32];
    auto end = std::to_chars(buf, buf + sizeof buf, value).ptr;
    return std::string(buf, end);
}

} // namespace

SplitController::SplitController(shell::Session& session) : m_session(session) {
    shell::CommandCatalog& c = session.commands();
    c.add(shell::menuCommand("openSplitWindow:", "Posten &aufteilen …", shell::Menu::Items, 40,
                             "Ctrl+Shift+T"),
          [this](const CommandSender&) { openSplitWindow(); });
    c.add("splitAction:", [this](const CommandSender&) { return splitAction(); });
    c.add("cancelSplitWindow:", [this](const CommandSender&) { cancelSplitWindow(); });
}

void SplitController::openSplitWindow() {
    FormFields& fields = m_session.fields();
    m_session.services().ui.showWindow("splitCalculator");
    fields.clear("sumFieldCalChelp");
    Record* item = m_session.selection().currentItem();
    const int32_t kind = item ? item->getInt("kind") : posting::kKindNone;
    const char* sign = nullptr;
    const char* colour = nullptr;
    if (kind == posting::kKindExpense) {
        sign = "-";
        colour = "red";
    } else if (kind == posting::kKindIncome) {
        sign = "+";
        colour = "green";
    }
    if (!sign) return; // no kind chosen yet: sign and colours stay as they were
    fields.set("algebraicFieldCalcHelp", Value::string(sign));
    fields.set("algebraicFieldCalcHelp.textColor", Value::string(colour));
    fields.set("sumFieldCalChelp.textColor", Value::string(colour));
}

CommandResult SplitController::splitAction() {
    Record* item = m_session.selection().currentItem();
    if (m_session.settings().getInteger("calculatorHelpIndex") == 0) return splitByShare(item);
    return splitByTax(item);
}

void SplitController::cancelSplitWindow() {
    m_session.services().ui.hideWindow("splitCalculator");
}

// The share is not checked: 0 leaves nothing and more than 100 raises the sum.
CommandResult SplitController::splitByShare(Record* item) {
    const core::Settings& settings = m_session.settings();
    const float share = posting::splitShareFor(settings.getInteger("selectedSplitIndex"),
                                               settings.getFloat("customSplitValue"));
    if (item) {
        const float sum = posting::grossSumOf(item->get("amount"));
        item->set("amount", Value::floatValue(posting::shareOfSum(sum, share)));
    }
    finish();
    return CommandResult::done();
}

CommandResult SplitController::splitByTax(Record* item) {
    const bool taxBool = item && posting::isExactlyTrue(item->get("taxBool"));
    const int32_t taxTag = item ? item->getInt("taxTag") : 0;
    switch (posting::checkTaxPage(taxBool, taxTag)) {
    case posting::TaxPageCheck::Incomplete:
        return refuse(kIncompleteText);
    case posting::TaxPageCheck::Superfluous:
        return refuse(kSuperfluousText);
    case posting::TaxPageCheck::Ready:
        break;
    }
    const float rate = posting::rateForTaxTag(taxTag, taxRatesOf(m_session.settings()));
    const float net = netSumOf(m_session.fields().get("sumFieldCalChelp"));
    item->set("amount", Value::floatValue(posting::grossOfNet(net, rate)));
    finish();
    return CommandResult::done();
}

// A refusal leaves the calculator open and the item as it was.
CommandResult SplitController::refuse(const char* text) {
    Ui& ui = m_session.services().ui;
    ui.beep();
    ui.alert(AlertRequest{"Fehler!", text, {"OK"}, AlertStyle::Warning, {}});
    return CommandResult::refused(text);
}

void SplitController::finish() {
    m_session.services().scheduler.after(0, [this] { recalculateSelectedItem(); });
    m_session.services().ui.hideWindow("splitCalculator");
}

// What the form's calculation does when its sum field shows the new amount: the form's
// remembered state, then the amounts.
void SplitController::recalculateSelectedItem() {
    Record* item = m_session.selection().currentItem();
    if (!item) return;
    const std::string sumText = plainText(posting::grossSumOf(item->get("amount")));
    for (const auto& write : posting::formSettingWrites(*item, sumText)) {
        if (write.value.isAbsent())
            m_session.settings().remove(write.key);
        else
            m_session.settings().set(write.key, write.value);
    }
    posting::calculateItem(*item, taxRatesOf(m_session.settings()));
}

} // namespace zifora::bookkeeping
