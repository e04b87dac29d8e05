#pragma once
// The item form's commands: starting a new item, opening an existing one, the checks that
// stand between the form and a finished item, copies, the account entries and search
// popovers, stepping through the list, and the calculation of the amounts as the form runs it.

#include "bookkeeping/itemform.h"
#include "shell/commandcatalog.h"
#include "shell/feature.h"

namespace zifora::core {
class Settings;
}

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

class ItemController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Postenformular"; }
    /// Registers the commands ("addItem:", "closeItemSheet:", "calculateItem:" …).
    explicit ItemController(shell::Session& session);
    ItemController(const ItemController&) = delete;
    ItemController& operator=(const ItemController&) = delete;

    shell::CommandResult addItem();
    shell::CommandResult closeItemSheet();
    shell::CommandResult cancelItemSheet();
    shell::CommandResult editItem();
    shell::CommandResult duplicateItem();
    void selectExpense() { chooseKind(posting::kKindExpense); }
    void selectIncome() { chooseKind(posting::kKindIncome); }
    void setTaxAutomatically();
    /// The account number was typed: takes the account of that number, or refuses.
    void validateAccountFieldVoid();
    /// An account title was chosen; checked a moment later, once the choice has landed.
    void validateAccountTitle();
    void validateAccountPopUpVoid();
    void selectGroupSearchSheet();
    void selectAccountSearchSheet();
    void selectNext() { stepSelection(+1); }
    void selectPrevious() { stepSelection(-1); }
    void setToday();
    /// Brings the selected item's amounts up to date from the form, and remembers the
    /// form's state for the next new item.
    void calculateItem();

    [[nodiscard]] ItemForm& form() { return m_form; }

  private:
    enum class FormMode { Closed, NewItem, Editing };

    void registerCommands();
    shell::CommandResult addNextItem();
    shell::CommandResult startNewItem();
    shell::CommandResult makeNewItem();
    /// The closing checks: the refusal of the first that fails, shown to the user.
    std::optional<shell::CommandResult> closingRefusal();
    void chooseKind(int32_t kind);
    void stepSelection(int step);
    void scheduleCalculation();
    void showForm();
    void hideForm();
    void showPanel(const char* panel);
    void closeSearchPopover();
    void showButton(const char* control, bool shown);
    shell::CommandResult refuse(std::string_view title, std::string_view text);
    [[nodiscard]] core::Settings& settings();

    shell::Session& m_session;
    ItemForm m_form;
    FormMode m_mode = FormMode::Closed;
    bool m_cancelOffered = false;
    bool m_datePanelOpen = false;
    bool m_helpPanelOpen = false;
};

} // namespace zifora::bookkeeping
