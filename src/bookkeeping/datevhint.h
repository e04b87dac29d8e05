#pragma once
// The warning shown before DATEV-bound figures are worked out, while DATEV is the chosen
// export of the settlement.

#include <string_view>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

/// The whole warning text, all capitals, with its line breaks.
extern const std::string_view kDatevHintText;

/// Shows the warning when the setting "prefsSelectedExportTab" is 99 and the flag
/// `dontShowAgainKey` is not set; the second button ("OK, bitte nicht erneut anzeigen") sets
/// the flag. Both buttons go on with the caller's work.
void showDatevHintIfDue(shell::Session& session, std::string_view dontShowAgainKey);

} // namespace zifora::bookkeeping
