#pragma once
// The controls of the forms as the controllers read them: each control has a name
// ("sumField", "yearPopUp", "accountField" …) and a value. The desktop program keeps them
// in step with its widgets; scripts set them with {"field":…}.

#include "core/value.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zifora::shell {

class FormFields {
  public:
    /// The value of a control; absent when it was never set.
    [[nodiscard]] core::Value get(std::string_view name) const;
    /// The text a control shows ("" for none); numbers as their plain text.
    [[nodiscard]] std::string text(std::string_view name) const;
    /// Sets a control's value and tells the observers (the widgets).
    void set(std::string_view name, core::Value value);
    void clear(std::string_view name) { set(name, core::Value{}); }

    using Observer = std::function<void(const std::string& name, const core::Value& value)>;
    void observe(Observer observer) { m_observers.push_back(std::move(observer)); }

  private:
    std::map<std::string, core::Value, std::less<>> m_values;
    std::vector<Observer> m_observers;
};

/// A drag of rows from one list onto another list (or onto a row of it).
struct DragRequest {
    std::string list; // "items", "periods", "accounts", "groups", "templates", "years", "clients"
    std::vector<size_t> rows; // arranged indexes of the dragged rows
    std::string targetList;
    std::optional<size_t> targetRow; // none: dropped between rows or at the end
    bool option = false;             // the copy modifier was held
};

} // namespace zifora::shell
