#pragma once
// Where the program keeps its files on Linux (XDG base and user directories).

#include <string>

namespace zifora::core {

/// The folders of one run, resolved once from HOME and the XDG variables.
struct Places {
    std::string home;
    std::string dataFolder;      // $XDG_DATA_HOME/Zifora/ (database, scratch files, temp.item)
    std::string documentsFolder; // $XDG_DATA_HOME/Zifora/Documents/
    std::string backupFolder;    // <XDG documents>/Zifora/Backup/
    std::string reportsFolder;   // <XDG desktop>/Zifora Jahresberichte/
    std::string oldDataFolder;   // $XDG_DATA_HOME/NorvosZifora/ (databases of the first version)
    std::string settingsFile;    // $XDG_CONFIG_HOME/Zifora/Zifora.plist

    /// Reads HOME, XDG_DATA_HOME, XDG_CONFIG_HOME and ~/.config/user-dirs.dirs.
    static Places fromEnvironment();
    /// All folders below one home, as a fresh account has them.
    static Places forHome(const std::string& home);
};

/// `path` with a leading "~" replaced by the home folder.
[[nodiscard]] std::string expandTilde(const std::string& path, const std::string& home);
/// `folder` and `name` joined with exactly one slash.
[[nodiscard]] std::string joinPath(const std::string& folder, const std::string& name);

} // namespace zifora::core
