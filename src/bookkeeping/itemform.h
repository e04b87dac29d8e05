#pragma once
// The item form's controls and the item behind them. Most controls are bound to a key of
// the selected item: what is typed lands in the record at once, and a key changed by any
// other code shows in its control the next time the form looks. Besides, the item list's
// observer: whenever another item becomes selected, the account number field and the sign
// display follow it.

#include "core/record.h"
#include "posting/itemcalculation.h"

#include <map>
#include <string>
#include <string_view>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

class ItemForm {
  public:
    explicit ItemForm(shell::Session& session);
    ItemForm(const ItemForm&) = delete;
    ItemForm& operator=(const ItemForm&) = delete;

    /// Brings the controls up to date with the selection: for a newly selected item the
    /// list's observer runs and every bound control shows its key; for the same item only
    /// the controls whose key was changed behind the form's back are shown anew.
    void sync();
    /// The selected item, after a sync.
    [[nodiscard]] core::Record* item();

    /// The text of the sum field as the calculation and the closing checks read it.
    [[nodiscard]] std::string sumText() const;

    /// Sets a control from the program's side (not as typing); bound keys are not written.
    void show(std::string_view control, core::Value value);
    void showText(std::string_view control, std::string_view text);
    /// The sign display and the state of the sum field after a calculation.
    void showLook(const posting::SumFieldLook& look);
    void setSumFieldEnabled(bool enabled);
    [[nodiscard]] bool sumFieldEnabled() const { return m_sumFieldEnabled; }
    /// What the list's observer shows for an item (or for none).
    void showSelectionOf(const core::Record* item);

    /// A control bound to a key of the item.
    struct Binding;

  private:
    void controlChanged(const std::string& control, const core::Value& value);
    void showBinding(const Binding& binding, const core::Record* item);
    void write(const Binding& binding, const core::Value& typed);
    void writeSum(const Binding& binding, const std::string& typed);

    shell::Session& m_session;
    core::Ref<core::Record> m_item;
    /// Per bound key, the value its control was last shown or wrote.
    std::map<std::string, core::Value, std::less<>> m_shown;
    bool m_showing = false;
    bool m_sumFieldEnabled = false;
};

} // namespace zifora::bookkeeping
