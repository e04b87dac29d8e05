#pragma once
// The panels around the main window: the welcome sheet, the newsletter panel, the about
// panel, the set-up assistant, the help sheets of the first steps, the built-in help, the
// search field's panel and the pages of the product site. Apart from the end of the set-up
// assistant, these commands only show and hide windows and open pages; they change no data.

#include "shell/commandcatalog.h"
#include "shell/feature.h"
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

/// The address of a page of the product site; `path` begins with a slash ("/support/").
[[nodiscard]] std::string productPage(std::string_view path);

class GUIController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Fenster um das Hauptfenster"; }
    /// The help sheets of the first steps by the part of their commands' names: the window
    /// "sheetFirst" opens with `openSheetFirst:` and goes with `closeSheetFirst:` or
    /// `cancelSheetFirst:`, and so on for "Assi", "Account" and "Entry".
    static constexpr std::string_view kHelpSheets[] = {"First", "Assi", "Account", "Entry"};

    /// Registers the commands. The help pages are read from `helpFolder`; none means they
    /// are not installed, and the product site's copy of a page is opened instead.
    GUIController(shell::Session& session, std::optional<std::filesystem::path> helpFolder);

    /// Enters the set-up assistant in place of the welcome sheet.
    void selectAssi();
    /// Ends the set-up assistant: the set-up counts as done and the first-steps hint moves
    /// on to the first year.
    void finishAssi();
    /// Opens the search field's panel. The text stays in the control "searchField", where
    /// the search reads it; the search button shows whether there is one ("searchBlue") or
    /// not ("searchTemplate") in the control "searchButtonImage".
    void showSearchPopover();
    /// Shows the shared panel of the forms with the view of the sender's tag, named in the
    /// control "multiPopoverView" ("voranmeldungComment" for 10 …), after the feature that
    /// owns the view has filled it (`MultiPopOverShown`). An unknown tag shows nothing.
    shell::CommandResult showMultiPopOver(int tag);
    /// Opens a page of the built-in help ("index.html").
    void openHelpPage(std::string_view page);
    /// Where a page of the built-in help is: a file of the help folder, or the product site.
    [[nodiscard]] std::string helpPageAddress(std::string_view page) const;

  private:
    void registerCommands();
    void registerHelpSheets();

    shell::Session& m_session;
    std::optional<std::filesystem::path> m_helpFolder;
};

} // namespace zifora::bookkeeping
