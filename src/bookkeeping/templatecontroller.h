#pragma once
// Templates ("Vorlagen"): items kept in the client's own list as patterns for recurring
// postings, made from scratch or from an item, and applied to the item in the form.

#include "shell/feature.h"

#include <string>
#include <string_view>

namespace zifora::core {
class Record;
class Value;
} // namespace zifora::core
namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

/// The form fields of the templates' table, each editing one column of the selected template:
/// "templateTable.title", "templateTable.group" (texts), "templateTable.kind" (0 none,
/// 1 expense, 2 income), "templateTable.account" (an `accountChoiceTitle`, "" for none),
/// "templateTable.amount" (a sum as typed) and "templateTable.tax" (a tag: 0 no tax, 1 to 3
/// the rates, 4 tax-free, 5 outside the scope of the tax). A value that is not taken leaves
/// the template as it was and sets "templateTable.refused" to true; a taken one to false.
inline constexpr std::string_view kTemplateTablePrefix = "templateTable.";
inline constexpr const char* kTemplateTableRefused = "templateTable.refused";

/// The title of an account in the template's account chooser: number and title.
[[nodiscard]] std::string accountChoiceTitle(const std::string& number, const std::string& title);

class TemplateController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Vorlagen"; }
    /// Registers "addTemplate:", "makeTemplateFromItem:" and "selectTemplateSearchSheet:".
    explicit TemplateController(shell::Session& session);
    TemplateController(const TemplateController&) = delete;
    TemplateController& operator=(const TemplateController&) = delete;

    /// An empty template, its first column opened for typing.
    void addTemplate();
    /// A template of the selected item's kind, category, account, title, gross sum and tax.
    void makeTemplateFromItem();
    /// Applies the template chosen in the search list to the selected item.
    void selectTemplateSearchSheet();

  private:
    void startEditingNewTemplate();
    void tableFieldChanged(const std::string& column, const core::Value& value);
    /// Writes one column of a template; false when the value is not taken.
    bool editTemplate(core::Record& record, const std::string& column, const core::Value& value);
    bool editAccount(core::Record& record, const std::string& title);

    shell::Session& m_session;
};

} // namespace zifora::bookkeeping
