#pragma once
// Years and settlement periods: adding, editing, closing and deleting them, and the two
// forms whose choosers name them.

#include "core/value.h"
#include "shell/commandcatalog.h"
#include "shell/feature.h"

#include <string>
#include <string_view>
#include <vector>

namespace zifora::core {
class Record;
}

namespace zifora::shell {
class Session;
class ListController;
} // namespace zifora::shell

namespace zifora::bookkeeping {

/// The year form ("yearWindow", chooser "yearPopUp", "yearCommentField") and the period form
/// ("listWindow", chooser "listPopUp", "listCommentField"). A chooser writes its title into
/// the selected record ("dateValue" of the year, "title" of the period) when the title is
/// one it offers; any other value leaves the record alone and the chooser shows the record's
/// value again. The comment fields write "comment".
class YearController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Jahre und Abrechnungen"; }
    /// Registers `addYear:`, `closeYear:`, `editYear:`, `deleteYear:` and the same for
    /// periods (`addList:` …), and observes the form fields.
    explicit YearController(shell::Session& session);

    shell::CommandResult addYear();
    shell::CommandResult closeYear();
    shell::CommandResult editYear();
    shell::CommandResult deleteYear();

    shell::CommandResult addList();
    shell::CommandResult closeList();
    shell::CommandResult editList();
    shell::CommandResult deleteList();

  private:
    /// What tells the two forms apart.
    struct Form {
        const char* window;
        const char* helpPanel;
        const char* chooser;
        const char* commentField;
        const char* recordKey;
        const char* pageSetting;
        const char* helpSetting;
        const char* nothingChosen;
        const char* deleteTitle;
        const char* deleteText;
        bool helpOpen = false;
    };

    [[nodiscard]] shell::ListController& listOf(const Form& form);
    [[nodiscard]] std::vector<std::string> offeredTitles(const Form& form) const;
    void registerCommands();
    void fieldChanged(const std::string& name);
    void chooserChanged(Form& form);
    void loadForm(Form& form);
    void openHelp(Form& form);
    void showNewRecordForm(Form& form, shell::ListController& list, core::Ref<core::Record> made);
    shell::CommandResult closeForm(Form& form);
    shell::CommandResult editForm(Form& form);
    shell::CommandResult deleteSelected(Form& form);
    void setFieldQuietly(std::string_view name, std::string_view text);
    shell::CommandResult refuse(const char* text);

    shell::Session& m_session;
    Form m_year;
    Form m_list;
    bool m_loadingForm = false;
};

} // namespace zifora::bookkeeping
