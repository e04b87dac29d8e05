#pragma once
// Files the desktop asks the program to open: `zifora FILE`, a file handed on by a second
// start, a double click in the file manager. The hand-over files of three outside programs
// are taken for their import once the program is set up; every other file, the program's
// own exchange files included, is refused with a pointer to the menu, so that a database
// opened from outside never replaces the running data.

#include "shell/feature.h"
#include <string>
#include <string_view>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

/// What a file is to the dispatch, by its extension, compared exactly: "x.ZIFPRO" is no
/// hand-over file.
enum class OpenedFileKind {
    GrandTotalHandOver, // "zifpro"
    MoneyMoneyHandOver, // "zifmm"
    BillHandOver,       // "zifbill"
    Other,
};

/// The kind of the file at `path`: the text after the last dot of its last component
/// (trailing slashes ignored; a name that only begins with a dot has no extension).
[[nodiscard]] OpenedFileKind openedFileKind(std::string_view path);

class OpenFileController final : public shell::Feature {
  public:
    [[nodiscard]] std::string_view name() const override { return "Geöffnete Dateien"; }
    /// Registers `application:openFile:`, which takes the path from its sender.
    explicit OpenFileController(shell::Session& session);
    OpenFileController(const OpenFileController&) = delete;
    OpenFileController& operator=(const OpenFileController&) = delete;

    /// Takes a hand-over file for its import, or refuses the file with an alert. True when
    /// the file is taken.
    ///
    /// A hand-over file before the set-up ("isSetupDone") is refused and changes nothing.
    /// Afterwards "isZifProAction" becomes true and "importFilePath" the path, and the
    /// import hears of it by a `HandOverArrived` event 1.7 seconds later, time a starting program
    /// needs for its load; with "prefsUseMultipleAccounts" it runs at once if saving is allowed
    /// ("isSaveAllowed") and not at all otherwise. An import that is not built yet does
    /// nothing. Any other file clears both settings and is refused; the data stay untouched.
    bool applicationOpenFile(const std::string& path);

  private:
    bool takeHandOver(OpenedFileKind kind, const std::string& path);
    void notifyImport(OpenedFileKind kind);
    void refuseOtherFile();

    shell::Session& m_session;
};

} // namespace zifora::bookkeeping
