#include "program/vatcommand.h"

#include "core/atomicfile.h"
#include "core/book.h"
#include "core/places.h"
#include "core/record.h"
#include "core/settings.h"
#include "posting/numberformat.h"
#include "shell/listcontroller.h"
#include "vat/handover.h"
#include "vat/returnsummary.h"

#include <filesystem>

namespace zifora::program {

namespace {

using core::Record;

/// The database the program would open: the own folder of the settings when one is chosen,
/// else the data folder. Nothing is noted or made, unlike at a start of the program.
std::string databasePath(const core::Places& places, const core::Settings& settings) {
    const std::string custom = settings.getString("customLocationPath");
    const std::string folder =
        settings.getBool("useCustomLocation") && !custom.empty() ? custom : places.dataFolder;
    return core::joinPath(folder, core::Book::kDatabaseName);
}

Record* findByText(core::RecordList& list, const char* key, const std::string& text) {
    for (const auto& record : list)
        if (record && record->getText(key) == text) return record.get();
    return nullptr;
}

Record* chooseClient(core::Book& book, int64_t index) {
    core::RecordList& clients = book.clients();
    if (index < 0 || index >= static_cast<int64_t>(clients.size())) return nullptr;
    return clients[static_cast<size_t>(index)].get();
}

int writeElsterFile(const std::string& folder, const Record& client, const Record& year,
                    const Record& period, const posting::SettlementTotals& totals,
                    std::string& written, std::ostream& err) {
    const vat::HandOverHead head{client.get("company"), client.get("taxNumber"),
                                 client.get("elsterNumber"), period.get("title"),
                                 year.get("dateValue")};
    const std::string path = core::joinPath(folder, vat::winstonFileName(head));
    const posting::AmountFormats formats;
    auto result = core::writeFileAtomically(
        path, vat::winstonXml(head, vat::kennzahlenOf(totals.figures), formats));
    if (!result) {
        err << "zifora-cli: " << result.error().message << "\n";
        return 4;
    }
    written = path;
    return 0;
}

} // namespace

int vatCommand(const VatOptions& options, std::ostream& out, std::ostream& err) {
    const core::Places places = core::Places::fromEnvironment();
    core::Settings settings(places.settingsFile);
    (void)settings.load(); // a store that can't be read counts as empty; it is never written

    const std::string path = databasePath(places, settings);
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) {
        err << "zifora-cli: " << path << ": keine Datenbank\n";
        return 3;
    }
    core::Book book(places);
    if (auto loaded = book.load(path); !loaded) {
        err << "zifora-cli: " << loaded.error().message << "\n";
        return 2;
    }
    Record* client = chooseClient(book, options.client);
    if (!client) {
        err << "zifora-cli: " << path << ": keinen Benutzer mit dieser Nummer\n";
        return 7;
    }
    Record* year = findByText(client->theYears(), "dateValue", options.year);
    if (!year) {
        err << "zifora-cli: " << client->getText("company") << " hat kein Jahr " << options.year
            << "\n";
        return 7;
    }
    Record* period = findByText(year->thelists(), "title", options.period);
    if (!period) {
        err << "zifora-cli: " << options.year << " hat keine Abrechnung " << options.period << "\n";
        return 7;
    }

    // The items in the order of the item list, by date, as the program totals them.
    shell::ListController items("itemsController");
    items.setSortKey("date");
    items.setContent(&period->items());
    vat::ReturnSummary summary;
    summary.company = client->getText("company");
    summary.taxId = client->getText("taxNumber");
    summary.year = options.year;
    summary.period = options.period;
    summary.totals = posting::settlementTotals(items.arranged());
    summary.marked = period->getBool("taxBool");
    summary.stored = {period->getFloat("payment"), period->getFloat("additionalPayment"),
                      period->getFloat("rePayment"), period->getFloat("balance")};
    summary.rates = {settings.get("prefs1Rate"), settings.get("prefs2Rate"),
                     settings.get("prefs3Rate")};

    std::string written;
    if (options.elster) {
        if (int code = writeElsterFile(*options.elster, *client, *year, *period, summary.totals,
                                       written, err))
            return code;
    }
    if (options.json) {
        auto json = vat::returnSummaryJson(summary);
        if (!written.empty()) json["elsterFile"] = written;
        out << json.dump() << "\n";
    } else {
        out << vat::returnSummaryText(summary);
        if (!written.empty()) out << "\nELSTER-Datei: " << written << "\n";
    }
    return 0;
}

} // namespace zifora::program
