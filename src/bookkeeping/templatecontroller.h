#pragma once
// Templates ("Vorlagen"): items kept in the client's own list as patterns for recurring
// postings, made from scratch or from an item, and applied to the item in the form.

#include "shell/feature.h"

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {


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

    shell::Session& m_session;
};

} // namespace zifora::bookkeeping

