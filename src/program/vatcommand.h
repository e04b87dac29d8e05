#pragma once
// `zifora-cli vat`: the figures of one period's advance return from the book of $HOME, as
// text or JSON, and on request the hand-over file of the ELSTER client. It reads the book
// and the settings and never writes either.

#include <optional>
#include <ostream>
#include <string>

namespace zifora::program {

struct VatOptions {
    std::string year;   // "dateValue" of the year ("2025")
    std::string period; // exact title of the period ("März")
    int64_t client = 0; // index in the client list, from 0
    bool json = false;
    std::optional<std::string> elster; // folder for the XML file; it is not created
};

/// Exit codes: 0 done, 2 the database can't be read, 3 there is no database, 4 the XML file
/// could not be written, 7 the book has no such client, year or period.
int vatCommand(const VatOptions& options, std::ostream& out, std::ostream& err);

} // namespace zifora::program
