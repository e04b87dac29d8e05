#include "core/settingskeys.h"

#include <algorithm>
#include <array>

namespace zifora::core {

namespace {

// Sorted by key, so that a look-up is a binary search. The misspelt keys ("Dawer",
// "doExportJornalAction", "showPrevieJournalRTFAction", "isWelcomeerShown") are the keys'
// real spelling and must stay as they are.
// The platform's list of preferred languages is not kept here: the process locale stands in
// for it.
constexpr std::array kSettings = std::to_array<SettingInfo>({
    {"1winston", SettingType::Bool},
    {"5StartEver", SettingType::Bool},
    {"UpdateChecker:CheckAtStartup", SettingType::Bool},
    {"UpdateChecker:LastCheckDate", SettingType::Date},
    {"allowCashBook", SettingType::Bool},
    {"allowWindow", SettingType::Bool},
    {"allowanceCommentField", SettingType::Text},
    {"allowanceCompensationBOOL", SettingType::Bool},
    {"allowanceYearSplit", SettingType::Integer},
    {"backupAlertInt", SettingType::Integer},
    {"backupCount", SettingType::Integer},
    {"calculatorHelpIndex", SettingType::Integer},
    {"cashBookControllerSelectionIndex", SettingType::Integer},
    {"cashBookItemsControllerSelectionIndex", SettingType::Integer},
    {"clientControllerSelectionIndex", SettingType::Integer},
    {"csv1Check", SettingType::Bool},
    {"csv2Check", SettingType::Bool},
    {"csv3Check", SettingType::Bool},
    {"csv4Check", SettingType::Bool},
    {"customLocationPath", SettingType::Text},
    {"customSplitValue", SettingType::Number},
    {"datevClientNumber", SettingType::Text},
    {"datevConsultantNumber", SettingType::Text},
    {"defaultDataFolder", SettingType::Text},
    {"defaultDataPath", SettingType::Text},
    {"doExportJornalAction", SettingType::Bool},
    // The ELSTER client started after a hand-over; none: nothing is started.
    {"elsterClientProgram", SettingType::Text},
    {"firstCSVBOOL", SettingType::Bool},
    {"firstDropBOOL", SettingType::Bool},
    {"firstItemSet", SettingType::Bool},
    {"firstListSet", SettingType::Bool},
    {"firstStartEver", SettingType::Bool},
    {"firstStepsDone", SettingType::Bool},
    {"firstUpdateCheck", SettingType::Bool},
    {"firstYearSet", SettingType::Bool},
    {"geduld", SettingType::Bool},
    {"importFilePath", SettingType::Text},
    {"importTaxBool", SettingType::Integer},
    {"isFirstAllowanceSetupDone", SettingType::Bool},
    {"isIbookAlertShown", SettingType::Bool},
    {"isImportButtonEnabled", SettingType::Bool},
    {"isMigration_4.0_done", SettingType::Bool},
    {"isNotSteuerberaterAction", SettingType::Bool},
    {"isPrintActionJournalRTFAction", SettingType::Bool},
    {"isSaveAllowed", SettingType::Bool},
    {"isSetupDone", SettingType::Bool},
    {"isWelcomeerShown", SettingType::Bool},
    {"isZifProAction", SettingType::Bool},
    {"itemRememberAccount", SettingType::Text},
    {"itemRememberAccountNumber", SettingType::Text},
    {"itemRememberGroup", SettingType::Text},
    {"itemRememberKind", SettingType::Integer},
    {"itemRememberTaxBool", SettingType::Bool},
    {"itemRememberTaxTag", SettingType::Integer},
    {"jaImage", SettingType::Integer},
    {"journalButtonsHidden", SettingType::Bool},
    {"journalExportTitleString", SettingType::Text},
    {"listControllerSelectionIndex", SettingType::Integer},
    {"loadInPreview.app", SettingType::Bool},
    {"prefs1Rate", SettingType::Float},
    {"prefs1RateTitle", SettingType::Text},
    {"prefs2Rate", SettingType::Float},
    {"prefs2RateTitle", SettingType::Text},
    {"prefs3Rate", SettingType::Float},
    {"prefsAddCashBookItemBeleg", SettingType::Text},
    {"prefsAddCashBookItemTitle", SettingType::Text},
    {"prefsAlwaysRememberLastSettings", SettingType::Bool},
    {"prefsAlwaysShowDateDawer", SettingType::Bool},
    {"prefsAlwaysShowItemHelpDawer", SettingType::Bool},
    {"prefsAlwaysShowJournalHelpDawer", SettingType::Bool},
    {"prefsAlwaysShowPrefsHelpDawer", SettingType::Bool},
    {"prefsAlwaysShowReportsHelp", SettingType::Bool},
    {"prefsAlwaysShowTabHelpDawer", SettingType::Bool},
    {"prefsAlwaysShowVoranmeldungHelpDawer", SettingType::Bool},
    {"prefsAlwaysShowWelcomeSheet", SettingType::Bool},
    {"prefsAlwaysShowYearHelpDawer", SettingType::Bool},
    {"prefsBackupPath", SettingType::Text},
    {"prefsCompany", SettingType::Text},
    {"prefsCurrency", SettingType::Integer},
    {"prefsDefaultDATEVAccount", SettingType::Text},
    {"prefsDocPath", SettingType::Text},
    {"prefsDontShowDATEVJournalHINT", SettingType::Bool},
    {"prefsDontShowDATEVTaxesHINT", SettingType::Bool},
    {"prefsELSTERID", SettingType::Text},
    {"prefsExportPrintWithList", SettingType::Bool},
    {"prefsKasseneinlageBezeichnung", SettingType::Text},
    {"prefsKasseneinlageSumme", SettingType::Text},
    {"prefsMakeBackup", SettingType::Bool},
    {"prefsPrintBorder", SettingType::Bool},
    {"prefsPrintCurrency", SettingType::Bool},
    {"prefsPrintCustomReportsWithItems", SettingType::Bool},
    {"prefsPrintUnshortened", SettingType::Bool},
    {"prefsRememberDate", SettingType::Bool},
    {"prefsSelectedExportJournal", SettingType::Integer},
    {"prefsSelectedExportTab", SettingType::Integer},
    {"prefsSelectedItemTabTag", SettingType::Integer},
    {"prefsSelectedJournalTabTag", SettingType::Integer},
    {"prefsSelectedTabTabTag", SettingType::Integer},
    {"prefsSelectedYearTabTag", SettingType::Integer},
    {"prefsTabSortOrder", SettingType::Integer},
    {"prefsTaxID", SettingType::Text},
    {"prefsUebertragKassenbuch", SettingType::Bool},
    {"prefsUebertragKassenbuchBezeichnung", SettingType::Text},
    {"prefsUebertragKassenbuchSumme", SettingType::Float},
    {"prefsUseMultipleAccounts", SettingType::Bool},
    {"prefsUseTaxesGlobal", SettingType::Integer},
    {"prefsVorzeichen", SettingType::Text},
    {"printFooter", SettingType::Text},
    {"rememberDate", SettingType::Date},
    {"selectedAFATag", SettingType::Integer},
    {"selectedBillImportAccountValue", SettingType::Text},
    {"selectedBillImportCategoryValue", SettingType::Text},
    {"selectedBillImportDateTag", SettingType::Integer},
    {"selectedGTImportDateTag", SettingType::Integer},
    {"selectedImportDateTag", SettingType::Integer},
    {"selectedImportKindTag", SettingType::Integer},
    {"selectedJournalTag", SettingType::Integer},
    {"selectedMMImportAccountValue", SettingType::Text},
    {"selectedMMImportCategoryValue", SettingType::Text},
    {"selectedMMImportDateTag", SettingType::Integer},
    {"selectedReportsIndex", SettingType::Integer},
    {"selectedSplitIndex", SettingType::Integer},
    {"selectedTagImportTax", SettingType::Integer},
    {"selectedVoranmeldungTabIndex", SettingType::Integer},
    {"setTaxAutomatically", SettingType::Bool},
    {"setUmsatzsteuerAutomatically", SettingType::Bool},
    {"showPrevieJournalRTFAction", SettingType::Bool},
    {"showUnpaidOption", SettingType::Bool},
    {"tab-abziehbareBetraegeField", SettingType::Float},
    {"tab-abziehbareBetraegeSteuerAmountField", SettingType::Float},
    {"tab-nichtSteuerbarField", SettingType::Float},
    {"tab-saldoField", SettingType::Float},
    {"tab-steuerfreieUmsaetzeField", SettingType::Float},
    {"tab-tax1AmountField", SettingType::Float},
    {"tab-tax1SumField", SettingType::Float},
    {"tab-tax2AmountField", SettingType::Float},
    {"tab-tax2SumField", SettingType::Float},
    {"tab-tax3AmountField", SettingType::Float},
    {"tab-tax3SumField", SettingType::Float},
    {"updateTo4.0", SettingType::Bool},
    {"useCustomLocation", SettingType::Bool},
    {"veryFirstAlertDone", SettingType::Bool},
    // The outbox folder of the ELSTER client; none: $XDG_DATA_HOME/Winston/Ausgang/.
    {"winstonOutboxPath", SettingType::Text},
    {"yearControllerSelectionIndex", SettingType::Integer},
});

constexpr bool isSortedAndUnique() {
    for (size_t i = 1; i < kSettings.size(); ++i)
        if (!(kSettings[i - 1].key < kSettings[i].key)) return false;
    return true;
}
static_assert(isSortedAndUnique(), "the settings table must be sorted by key, without repeats");

} // namespace

const SettingInfo* settingInfo(std::string_view key) {
    auto it =
        std::lower_bound(kSettings.begin(), kSettings.end(), key,
                         [](const SettingInfo& info, std::string_view k) { return info.key < k; });
    if (it == kSettings.end() || it->key != key) return nullptr;
    return &*it;
}

std::span<const SettingInfo> allSettings() {
    return kSettings;
}

std::string_view settingTypeName(SettingType type) {
    switch (type) {
    case SettingType::Bool:
        return "bool";
    case SettingType::Integer:
        return "integer";
    case SettingType::Float:
        return "float";
    case SettingType::Text:
        return "text";
    case SettingType::Date:
        return "date";
    case SettingType::Number:
        return "number";
    }
    return "number";
}

} // namespace zifora::core
