#pragma once
// The events of the channel.

#include "posting/settlementtotals.h"

#include <string>

namespace zifora::shell {

/// The start sequence has loaded the book and restored the selection.
struct StartDone {};

/// The database file was written.
struct DatabaseSaved {
    std::string path;
};

/// The database file could not be written; the old file is whole.
struct DatabaseSaveFailed {
    std::string path;
    std::string cause;
};

/// The settings store could not be written; its old file is whole.
struct SettingsSaveFailed {
    std::string path;
    std::string cause;
};

/// The totals of the selected period were worked out.
struct TotalsComputed {
    const posting::SettlementTotals& totals;
};

/// The outside program whose hand-over file arrived.
enum class HandOverKind {
    GrandTotal, // "zifpro"
    MoneyMoney, // "zifmm"
    Bill,       // "zifbill"
};

/// A hand-over file of an outside program is due for its import ("importFilePath").
struct HandOverArrived {
    HandOverKind kind;
    std::string path;
};

/// Another record became current in the chain client → year → period → item.
struct SelectionChanged {};

/// The shared panel of the forms shows the view of `tag` (`showMultiPopOver:`); the feature
/// that owns the view fills its controls.
struct MultiPopOverShown {
    int tag;
};

/// The start asks for the backup rotation (with "prefsMakeBackup", three seconds in).
struct BackupDue {};

/// The start asks to remind the user of backups (at the 5th and 12th save count).
struct BackupReminderDue {};

} // namespace zifora::shell
