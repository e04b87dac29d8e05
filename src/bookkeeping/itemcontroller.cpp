#include "bookkeeping/itemcontroller.h"

#include "bookkeeping/taxrates.h"

#include "core/keyedarchive.h"
#include "posting/amountentry.h"
#include "posting/itementry.h"
#include "posting/numberformat.h"
#include "posting/textcleaning.h"
#include "shell/session.h"

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

using core::Record;
using core::Value;

namespace {

constexpr const char* kItemWindow = "itemWindow";
constexpr const char* kDatePanel = "itemDatePanel";
constexpr const char* kHelpPanel = "itemHelpPanel";

} // namespace

ItemController::ItemController(shell::Session& session) : m_session(session), m_form(session) {
    registerCommands();
}

void ItemController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    c.add(shell::menuCommand("addItem:", "&Neuer Posten", shell::Menu::Items, 10, "Ctrl+N"),
          [this](const CommandSender&) { return addItem(); });
    c.add("closeItemSheet:", [this](const CommandSender&) { return closeItemSheet(); });
    c.add("cancelItemSheet:", [this](const CommandSender&) { return cancelItemSheet(); });
    c.add(shell::menuCommand("editItem:", "Posten &bearbeiten", shell::Menu::Items, 20, "Ctrl+E"),
          [this](const CommandSender&) { return editItem(); });
    c.add(shell::menuCommand("duplicateItem:", "Posten &duplizieren", shell::Menu::Items, 30,
                             "Ctrl+D"),
          [this](const CommandSender&) { return duplicateItem(); });
    c.add("selectExpense:", [this](const CommandSender&) { selectExpense(); });
    c.add("selectIncome:", [this](const CommandSender&) { selectIncome(); });
    c.add("setTaxAutomatically:", [this](const CommandSender&) { setTaxAutomatically(); });
    c.add("validateAccountNumber:", [this](const CommandSender&) { validateAccountFieldVoid(); });
    c.add("validateAccountFieldVoid", [this](const CommandSender&) { validateAccountFieldVoid(); });
    c.add("validateAccountTitle:", [this](const CommandSender&) { validateAccountTitle(); });
    c.add("validateAccountPopUpVoid", [this](const CommandSender&) { validateAccountPopUpVoid(); });
    c.add("selectGroupSearchSheet:", [this](const CommandSender&) { selectGroupSearchSheet(); });
    c.add("selectAccountSearchSheet:",
          [this](const CommandSender&) { selectAccountSearchSheet(); });
    c.add(
        shell::menuCommand("selectNext:", "Nächs&ter Posten", shell::Menu::Items, 70, "Ctrl+Down"),
        [this](const CommandSender&) { selectNext(); });
    c.add(shell::menuCommand("selectPrevious:", "&Vorheriger Posten", shell::Menu::Items, 60,
                             "Ctrl+Up"),
          [this](const CommandSender&) { selectPrevious(); });
    // The date of today is the open item form's (its date panel and Ctrl+T): from the main
    // window it would re-date the selected item without a word.
    c.add("setToday:", [this](const CommandSender&) { setToday(); });
    c.add("calculateItem:", [this](const CommandSender&) { calculateItem(); });
}

core::Settings& ItemController::settings() {
    return m_session.settings();
}

// ---------------------------------------------------------------------------------------
// New items

CommandResult ItemController::addItem() {
    m_form.sync();
    settings().setInteger("jaImage", 5);
    settings().setBool("allowCashBook", false);
    settings().setString("prefsVorzeichen", "");
    if (m_mode == FormMode::Closed) return startNewItem();
    return addNextItem();
}

// The form's "new" button: the item on screen is finished first.
CommandResult ItemController::addNextItem() {
    calculateItem(); // the typed sum is committed for the item being left
    scheduleCalculation();
    if (auto refused = closingRefusal()) return *refused;
    scheduleCalculation();
    settings().setInteger("prefsSelectedItemTabTag", 0);
    m_form.setSumFieldEnabled(false);
    m_form.showText("accountField", "");
    return makeNewItem();
}

CommandResult ItemController::startNewItem() {
    m_form.showText("accountField", "");
    m_form.show("templateButtonEnabled",
                Value::boolean(m_session.selection().templates.count() > 0));
    showButton("newButton", true);
    // During the first steps the first item can't be cancelled.
    m_cancelOffered = settings().getBool("firstStepsDone");
    showButton("cancelButton", m_cancelOffered);
    if (!m_session.selection().currentPeriod())
        return refuse("Fehler!", "Du musst erst eine Abrechnung anlegen.");
    settings().setInteger("prefsSelectedItemTabTag", 0);
    m_form.setSumFieldEnabled(false);
    if (settings().getBool("prefsAlwaysShowDateDawer")) showPanel(kDatePanel);
    makeNewItem();
    showButton("nextPreviousButtons", false);
    showForm();
    m_mode = FormMode::NewItem;
    if (settings().getBool("prefsAlwaysShowItemHelpDawer")) showPanel(kHelpPanel);
    return CommandResult::done();
}

CommandResult ItemController::makeNewItem() {
    Selection& selection = m_session.selection();
    if (!selection.currentPeriod())
        return refuse("Fehler!", "Du musst erst eine Abrechnung anlegen.");
    const core::Date now = m_session.now();
    core::Ref<Record> item = Record::make(core::RecordClass::Item, now);
    selection.items.add(item);
    m_form.sync(); // the list's observer sees the item as it comes from its initialiser
    posting::stampNewItem(*item, selection.currentPeriod(), selection.currentYear(), now);
    posting::prefillNewItem(*item, settings(), now);
    selection.items.rearrange();
    m_form.sync();
    return CommandResult::done();
}

// ---------------------------------------------------------------------------------------
// Closing, cancelling, opening

std::optional<CommandResult> ItemController::closingRefusal() {
    Record* item = m_form.item();
    const std::string sum = m_form.sumText();
    std::optional<std::string_view> refusal =
        item ? posting::closingRefusal(*item, sum) : std::optional(posting::kRefusalNoSum);
    if (!refusal) return std::nullopt;
    return refuse("Fehler!", *refusal);
}

CommandResult ItemController::closeItemSheet() {
    m_form.sync();
    if (auto refused = closingRefusal()) return *refused;
    scheduleCalculation();
    hideForm();
    settings().setBool("firstItemSet", true);
    settings().setBool("firstStepsDone", true);
    return CommandResult::done();
}

CommandResult ItemController::cancelItemSheet() {
    m_form.sync();
    // The button is offered for new items only, and not for the very first one.
    if (m_mode != FormMode::NewItem || !m_cancelOffered) {
        m_session.services().ui.beep();
        return CommandResult::refused({});
    }
    ListController& items = m_session.selection().items;
    if (auto index = items.selectionIndex()) items.removeAt(*index);
    hideForm();
    m_form.sync();
    return CommandResult::cancelled();
}

CommandResult ItemController::editItem() {
    m_form.sync();
    Record* item = m_form.item();
    if (item && posting::isCompensationPosting(*item)) {
        m_session.services().ui.beep();
        return refuse("Sorry!", "Ausgleichsposten für Abschreibungen können nicht bearbeitet "
                                "werden, da diese intern anders berechnet werden als normale "
                                "Posten.");
    }
    showButton("cancelButton", false);
    showButton("newButton", false);
    m_cancelOffered = false;
    m_form.show("templateButtonEnabled", Value::boolean(false));
    if (!item) {
        m_session.services().ui.beep();
        return CommandResult::refused({});
    }
    const Record* period = m_session.selection().currentPeriod();
    const bool marked = period && period->getBool("taxBool");
    if (marked) {
        const int answer = m_session.services().ui.alert(AlertRequest{
            "Achtung!",
            "Die übergeordnete Abrechnung wurde als zur Voranmeldung genutzt markiert. Bist du "
            "sicher, dass du dennoch diesen Posten bearbeiten möchtest?",
            {"Abbrechen", "Bearbeiten"},
            AlertStyle::Warning,
            {}});
        if (answer != 0) return CommandResult::cancelled();
    }
    settings().setInteger("prefsSelectedItemTabTag", 0);
    showButton("nextPreviousButtons", true);
    showForm();
    m_mode = FormMode::Editing;
    if (!marked && settings().getBool("prefsAlwaysShowItemHelpDawer")) showPanel(kHelpPanel);
    // An item already taken into a cash book can't be handed over again.
    if (marked)
        settings().setBool("allowCashBook", posting::utf16Length(item->getText("misc9")) <= 3);
    m_form.showSelectionOf(item);
    calculateItem(); // opening an item recalculates it with the rates of today
    return CommandResult::done();
}

CommandResult ItemController::duplicateItem() {
    m_form.sync();
    Record* item = m_form.item();
    if (!item) return refuse("Fehler!", "Kein Posten ausgewählt.");
    // A round trip through the archive: a deep copy with every key equal.
    const std::string archived = core::encodeKeyedArchive(Value::record(core::Ref<Record>(item)));
    const auto copy = core::decodeKeyedArchive(archived, "Kopie des Postens");
    if (!copy || copy->kind() != core::Kind::Record) {
        return refuse("Fehler!", "Der Posten konnte nicht kopiert werden: " +
                                     (copy ? std::string("kein Posten") : copy.error().message));
    }
    m_session.selection().items.add(copy->recordRef());
    m_session.selection().items.rearrange();
    m_form.sync();
    return CommandResult::done();
}

// ---------------------------------------------------------------------------------------
// Kind and tax

void ItemController::chooseKind(int32_t kind) {
    m_form.sync();
    if (Record* item = m_form.item()) item->set("kind", Value::intValue(kind));
    scheduleCalculation();
}

void ItemController::setTaxAutomatically() {
    m_form.sync();
    Record* item = m_form.item();
    if (item && settings().getBool("setTaxAutomatically")) item->set("taxTag", Value::intValue(1));
    m_form.sync();
    scheduleCalculation();
}

void ItemController::calculateItem() {
    m_form.sync();
    m_form.showText("algebraicField", "");
    Record* item = m_form.item();
    if (!item) return;
    const std::string sumText = m_form.sumText();
    for (const posting::SettingWrite& w : posting::formSettingWrites(*item, sumText))
        settings().set(w.key, w.value);
    const posting::TaxRates rates = taxRatesOf(settings());
    posting::ItemAmountInput input = posting::itemAmountInputOf(*item, rates);
    input.grossSum = posting::sumFieldValue(sumText); // the field is read once
    posting::applyItemAmounts(*item, posting::calculateItemAmounts(input));
    m_form.showLook(posting::sumFieldLookFor(input.kind));
    m_form.sync();
}

void ItemController::scheduleCalculation() {
    // The next turn of the main loop: by then the selection may have moved on, and the
    // calculation acts on whatever item is selected.
    m_session.services().scheduler.after(0, [this] { calculateItem(); });
}

// ---------------------------------------------------------------------------------------
// Stepping and the date

void ItemController::stepSelection(int step) {
    m_form.sync();
    calculateItem(); // commits the typed sum of the item being left
    scheduleCalculation();
    ListController& items = m_session.selection().items;
    const auto index = items.selectionIndex();
    if (!index) return;
    if (step > 0 && *index + 1 < items.count()) items.setSelectionIndex(*index + 1);
    if (step < 0 && *index > 0) items.setSelectionIndex(*index - 1);
    m_form.sync();
}

void ItemController::setToday() {
    m_form.sync();
    if (Record* item = m_form.item()) {
        item->set("date", Value::date(m_session.now()));
        m_session.selection().items.rearrange();
    }
    m_form.sync();
    closeSearchPopover();
}

// ---------------------------------------------------------------------------------------
// The window

void ItemController::showForm() {
    // The tax control's first three segments carry the rates of the settings as they are now,
    // with their titles.
    const auto labels = taxRateLabels(settings());
    for (size_t i = 0; i < labels.size(); ++i) {
        m_form.showText("taxSegControlLabel" + std::to_string(i), labels[i].percent);
        m_form.showText("taxSegControlTitle" + std::to_string(i), labels[i].title);
    }
    m_session.services().ui.showWindow(kItemWindow);
}

void ItemController::hideForm() {
    m_session.services().ui.hideWindow(kItemWindow);
    if (m_datePanelOpen) m_session.services().ui.hideWindow(kDatePanel);
    if (m_helpPanelOpen) m_session.services().ui.hideWindow(kHelpPanel);
    m_datePanelOpen = m_helpPanelOpen = false;
    m_mode = FormMode::Closed;
}

void ItemController::showPanel(const char* panel) {
    bool& open = std::string_view(panel) == kDatePanel ? m_datePanelOpen : m_helpPanelOpen;
    if (open) return;
    open = true;
    m_session.services().ui.showWindow(panel);
}

void ItemController::closeSearchPopover() {
    m_session.services().ui.hideWindow("multiPopover");
}

void ItemController::showButton(const char* control, bool shown) {
    m_form.show(std::string(control) + "Shown", Value::boolean(shown));
}

CommandResult ItemController::refuse(std::string_view title, std::string_view text) {
    m_session.services().ui.alert(
        AlertRequest{std::string(title), std::string(text), {"OK"}, AlertStyle::Warning, {}});
    return CommandResult::refused(std::string(text));
}

} // namespace zifora::bookkeeping
