#include "vat/advancereturncontroller.h"

#include "core/record.h"
#include "posting/formatstring.h"
#include "posting/numberformat.h"
#include "posting/valuetransformers.h"
#include "reports/reportframe.h"
#include "shell/events.h"
#include "shell/session.h"
#include "vat/periodsheet.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

namespace zifora::vat {

using namespace shell;
using core::Value;

namespace {

constexpr std::string_view kWindow = "voranmeldungWindow";
constexpr std::string_view kHelpPanel = "voranmeldungWindow.help";
constexpr std::string_view kNoPeriods =
    "Du musst erst eine Abrechnung und zugehörige Posten anlegen.";
constexpr std::string_view kNichtSteuerbarText =
    "Du hast 'Nicht steuerbare Umsätze' verbucht - möglicherweise bedeutet dies, dass du noch "
    "eine 'Zusammenfassende Meldung' abgeben musst.\n\nMomentan geht dies zuverlässig nur über "
    "die ELSTER. Mittels der Suchfunktion oder den eigenen Berichten könntest du diese Posten "
    "filtern und dir ausgeben lassen. Dazu könntest du das Kommentarfeld benützen.\n\nBitte "
    "denke daran.\nGeduld oder gar Humor zählt nicht zu deren Stärken.";

/// The controls bound to a key of the selected period.
struct Binding {
    std::string_view field;
    std::string_view key;
    enum class Kind { Amount, Bool, Text } kind;
};

constexpr Binding kBindings[] = {
    {"tabPaymentField", "payment", Binding::Kind::Amount},
    {"tabAdditionalPayField", "additionalPayment", Binding::Kind::Amount},
    {"tabRepaymentField", "rePayment", Binding::Kind::Amount},
    {"tabBalanceField", "balance", Binding::Kind::Amount},
    {"zahlungFieldBuchung", "payment", Binding::Kind::Amount},
    {"erstattungFieldBuchung", "rePayment", Binding::Kind::Amount},
    {"saldoFieldBuchung", "balance", Binding::Kind::Amount},
    {"voranmeldungMarkCheckBox", "taxBool", Binding::Kind::Bool},
    {"voranmeldungCommentField", "voranmeldungComment", Binding::Kind::Text},
};

/// What a number control gives as a float: a number as it stands; a text in the locale's
/// own notation, or else read up to the first character that cannot belong to a number.
float floatOfField(const Value& value) {
    if (value.kind() != core::Kind::String) return value.toFloat();
    if (auto parsed = posting::parseLocalizedAmount(value.text())) return *parsed;
    return value.toFloat();
}

std::string colourText(const posting::Colour& colour) {
    auto part = [](double v) { return static_cast<int>(std::lround(v * 255.0)); };
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", part(colour.red), part(colour.green),
                  part(colour.blue));
    return text;
}

AlertRequest alertOf(std::string_view title, std::string_view text,
                     std::vector<std::string> buttons = {"OK"}) {
    return AlertRequest{
        std::string(title), std::string(text), std::move(buttons), AlertStyle::Warning, {}};
}

} // namespace

AdvanceReturnController::AdvanceReturnController(shell::Session& session) : m_session(session) {
    registerCommands();
    observeFields();
    m_session.events().subscribe<SelectionChanged>(
        [this](const SelectionChanged&) { loadControls(); });
    m_session.events().subscribe<TotalsComputed>(
        [this](const TotalsComputed& computed) { writePeriodSheet(computed.totals); });
    m_session.events().subscribe<MultiPopOverShown>(
        [this](const MultiPopOverShown& shown) { fillPopOver(shown.tag); });
}

void AdvanceReturnController::registerCommands() {
    CommandCatalog& c = m_session.commands();
    c.add(
        menuCommand("openVoranmeldungsWindow:", "&Voranmeldung …", Menu::Books, 90, "Ctrl+Shift+U"),
        [this](const CommandSender&) { return openVoranmeldungsWindow(); });
    c.add(userCommand("meldungBuchen:", "Voranmeldung als erstellt markieren"),
          [this](const CommandSender&) { return meldungBuchen(); });
    c.add("nichtSteuerbarAlert", [this](const CommandSender&) { nichtSteuerbarAlert(); });
    c.add(userCommand("printAbrechnung:", "Abrechnung drucken"),
          [this](const CommandSender&) { return printAbrechnung(); });
    c.add(userCommand("closeVoranmeldungsWindow:", "Schließen"), [this](const CommandSender&) {
        m_session.services().ui.hideWindow(std::string(kHelpPanel));
        m_session.services().ui.hideWindow(std::string(kWindow));
    });
    c.add(userCommand("toggleVoranmeldungHelp:", "Hilfe"), [this](const CommandSender&) {
        m_session.services().ui.showWindow(std::string(kHelpPanel));
    });
}

// ---------------------------------------------------------------------------------------
// The controls bound to the period

void AdvanceReturnController::observeFields() {
    m_session.fields().observe(
        [this](const std::string& name, const Value& value) { fieldChanged(name, value); });
}

void AdvanceReturnController::setControl(std::string_view field, Value value) {
    m_loading = true;
    m_session.fields().set(field, std::move(value));
    m_loading = false;
}

void AdvanceReturnController::loadControls() {
    core::Record* period = m_session.selection().currentPeriod();
    for (const Binding& binding : kBindings)
        setControl(binding.field, period ? period->get(binding.key) : Value{});
}

void AdvanceReturnController::fieldChanged(const std::string& name, const Value& value) {
    if (m_loading) return;
    core::Record* period = m_session.selection().currentPeriod();
    if (!period) return;
    for (const Binding& binding : kBindings) {
        if (binding.field != name) continue;
        switch (binding.kind) {
        case Binding::Kind::Amount:
            // The balance control is written by `calculateTab:`, which stores the key itself.
            if (binding.key != "balance" || name == "saldoFieldBuchung")
                period->set(binding.key, Value::floatValue(floatOfField(value)));
            break;
        case Binding::Kind::Bool:
            period->set(binding.key, Value::boolean(value.toBool()));
            break;
        case Binding::Kind::Text:
            period->set(binding.key,
                        Value::string(value.kind() == core::Kind::String ? value.text() : ""));
            break;
        }
    }
}

// ---------------------------------------------------------------------------------------
// Opening

CommandResult AdvanceReturnController::refuseWithoutPeriods() {
    m_session.services().ui.alert(alertOf("Fehler!", kNoPeriods));
    return CommandResult::refused(std::string(kNoPeriods));
}

CommandResult AdvanceReturnController::openVoranmeldungsWindow() {
    Ui& ui = m_session.services().ui;
    core::Settings& settings = m_session.settings();
    if (!settings.getBool("firstStepsDone")) {
        constexpr std::string_view text =
            "Das Vorbereiten und Verwalten von Voranmeldungen steht erst zur Verfügung, "
            "nachdem du den ersten Posten erfolgreich angelegt hast.";
        ui.alert(alertOf("Hinweis!", text));
        return CommandResult::refused(std::string(text));
    }
    Selection& selection = m_session.selection();
    if (selection.lists.count() == 0 || !selection.currentPeriod()) return refuseWithoutPeriods();
    if (selection.items.count() == 0 &&
        ui.alert(alertOf("Hinweis!", "Diese Abrechnung enthält keinerlei Posten.",
                         {"Abbrechen", "Fortfahren"})) == 1)
        return CommandResult::cancelled();

    showOpenItems();
    settings.setInteger("selectedVoranmeldungTabIndex", 0);
    loadControls();
    ui.showWindow(std::string(kWindow));
    runTotals(/*withBalance=*/true);
    if (settings.getBool("prefsAlwaysShowVoranmeldungHelpDawer"))
        ui.showWindow(std::string(kHelpPanel));
    return CommandResult::done();
}

// The open items' button tells of unpaid items before the figures are read: the sum of
// their net open amounts, added as the sum operator does, not exactly 0.
void AdvanceReturnController::showOpenItems() {
    double openWithout = 0.0;
    for (const core::Record* item : m_session.selection().items.arranged())
        if (item) openWithout += item->get("openWithout").toDouble();
    const bool open = openWithout != 0.0;
    setControl("openItemsButtonImage", Value::string(open ? "openPopover" : "openPopoverTemplate"));
    setControl("openColor",
               Value::string(colourText(open ? posting::kOpenItemColour : posting::kBlack)));
}

// The window hides its contents behind a busy indicator meanwhile; the desktop program
// does that around the command, since the work is done before the next redraw.
void AdvanceReturnController::runTotals(bool withBalance) {
    if (withBalance) m_session.run("calculateTabVoid");
    m_session.run("infoWindowVoid");
}

// ---------------------------------------------------------------------------------------
// Marking

CommandResult AdvanceReturnController::meldungBuchen() {
    core::Record* period = m_session.selection().currentPeriod();
    if (!period) return refuseWithoutPeriods();
    runTotals(/*withBalance=*/false);
    const int answer = m_session.services().ui.alert(alertOf(
        "Voranmeldung als erstellt markieren",
        "Möchtest du die von Zifora errechneten Zahlen direkt übernehmen oder eigene eingeben?",
        {"Übernehmen", "Eigene"}));
    period->set("date", Value::date(m_session.now()));

    FormFields& fields = m_session.fields();
    if (answer == 1) {
        const float rePayment = floatOfField(fields.get("abziehbareBetraegeSteuerAmountField"));
        const float payment = floatOfField(fields.get("tax1AmountField")) +
                              floatOfField(fields.get("tax2AmountField")) +
                              floatOfField(fields.get("tax3AmountField"));
        const float balance = floatOfField(fields.get("saldoField"));
        period->set("rePayment", Value::floatValue(rePayment));
        period->set("payment", Value::floatValue(payment));
        period->set("balance", Value::floatValue(balance));
        loadControls();
    } else {
        // Only the controls: the keys keep what they held until the user types figures.
        for (std::string_view field :
             {"zahlungFieldBuchung", "erstattungFieldBuchung", "saldoFieldBuchung"})
            setControl(field, Value::floatValue(0.0f));
    }
    if (floatOfField(fields.get("nichtSteuerbarField")) > 0.0f)
        m_session.services().scheduler.after(0.6, [this] { m_session.run("nichtSteuerbarAlert"); });
    return CommandResult::done();
}

void AdvanceReturnController::nichtSteuerbarAlert() {
    m_session.services().ui.alert(alertOf("Hinweis!", kNichtSteuerbarText));
}

// ---------------------------------------------------------------------------------------
// Printing

CommandResult AdvanceReturnController::printAbrechnung() {
    if (m_session.selection().lists.count() == 0 || !m_session.selection().currentPeriod())
        return refuseWithoutPeriods();
    m_session.settings().setBool("prefsExportPrintWithList", true);
    setControl("printAbrechnungBusy", Value::boolean(true));
    runTotals(/*withBalance=*/true);
    m_session.services().scheduler.after(0, [this] {
        if (!m_session.run("printJournal:")) {
            m_session.services().ui.alert(
                alertOf("Fehler!", "Das Drucken der Abrechnung steht in dieser Ausgabe von Zifora "
                                   "nicht zur Verfügung."));
        }
    });
    setControl("printAbrechnungBusy", Value::boolean(false));
    return CommandResult::done();
}

// ---------------------------------------------------------------------------------------
// The panels of the window

void AdvanceReturnController::fillPopOver(int tag) {
    if (tag == 10) {
        core::Record* period = m_session.selection().currentPeriod();
        setControl("voranmeldungCommentField",
                   period ? period->get("voranmeldungComment") : Value{});
    } else if (tag == 99) {
        double with = 0.0, without = 0.0;
        for (const core::Record* item : m_session.selection().items.arranged()) {
            if (!item) continue;
            with += item->get("openWith").toDouble();
            without += item->get("openWithout").toDouble();
        }
        setControl("openItemsWithField", Value::string(posting::commaStringFromNumber(with)));
        setControl("openItemsWithoutField", Value::string(posting::commaStringFromNumber(without)));
    }
}

// ---------------------------------------------------------------------------------------
// The period sheet

reports::ScratchFiles AdvanceReturnController::sheetFiles() const {
    return reports::ScratchFiles::in(m_session.places().dataFolder, "PDFPreviewTab");
}

// After every run of the totals: the HTML in the data folder, and only when it was written
// the PDF. The old files are gone first, so a failure leaves neither.
void AdvanceReturnController::writePeriodSheet(const posting::SettlementTotals& totals) {
    const reports::ScratchFiles files = sheetFiles();
    files.remove();
    Selection& selection = m_session.selection();
    const core::Record* period = selection.currentPeriod();
    if (!period) return;
    core::Settings& settings = m_session.settings();
    const SheetSettings sheet = SheetSettings::read(settings);
    const Value year =
        selection.currentYear() ? selection.currentYear()->get("dateValue") : Value{};
    const std::string footer = periodSheetFooter(sheet.report.company, period->get("title"), year);
    settings.setString("printFooter", footer);

    const SheetInput input{*period, year,  selection.items.arranged(),
                           totals,  sheet, m_session.now()};
    Ui& ui = m_session.services().ui;
    if (auto written = reports::writeReportHtml(files.html, periodSheetHtml(input)); !written) {
        ui.alert(reports::fileFailureAlert("Die Abrechnung", files.html, written.error().message));
        return;
    }
    // A program without PDF output (a command line built without Qt) keeps the HTML only:
    // the sheet's PDF is a scratch file, and the print and preview that need it say so.
    PdfRenderer& renderer = m_session.services().pdf;
    if (dynamic_cast<NoPdfRenderer*>(&renderer)) return;
    const std::string title =
        posting::formatString("Abrechnung %@ %@", {period->get("title"), year});
    auto rendered = renderer.render(
        reports::pdfRequest(files.html, files.pdf, footer, title, sheet.report.company));
    if (!rendered) {
        std::error_code ignored;
        std::filesystem::remove(files.pdf, ignored);
        ui.alert(reports::fileFailureAlert("Die Abrechnung als PDF", files.pdf,
                                           rendered.error().message));
    }
}

} // namespace zifora::vat
