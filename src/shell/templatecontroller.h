#pragma once
// Templates ("Vorlagen"): items kept in the client's own list as patterns for recurring
// postings, made from scratch or from an item, and applied to the item in the form.

namespace zifora::shell {

class App;

class TemplateController {
  public:
    /// Registers "addTemplate:", "makeTemplateFromItem:" and "selectTemplateSearchSheet:".
    explicit TemplateController(App& app);
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

    App& m_app;
};

} // namespace zifora::shell
