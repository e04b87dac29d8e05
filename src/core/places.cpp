#include "core/places.h"

#include <cstdlib>
#include <fstream>

namespace zifora::core {

namespace {

std::string env(const char* name) {
    const char* v = std::getenv(name);
    return v ? std::string(v) : std::string();
}

// Reads one entry of the user-dirs file, such as XDG_DOCUMENTS_DIR="$HOME/Dokumente".
std::string userDir(const std::string& configHome, const std::string& home, const std::string& key,
                    const std::string& fallback) {
    std::ifstream in(configHome + "/user-dirs.dirs");
    std::string line;
    while (std::getline(in, line)) {
        if (!line.starts_with(key + "=")) continue;
        std::string value = line.substr(key.size() + 1);
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
            value = value.substr(1, value.size() - 2);
        if (value.starts_with("$HOME")) value = home + value.substr(5);
        if (value.empty() || value.front() != '/') continue;
        while (value.size() > 1 && value.back() == '/')
            value.pop_back();
        return value;
    }
    return fallback;
}

Places build(const std::string& home, std::string dataHome, std::string configHome) {
    if (dataHome.empty() || dataHome.front() != '/') dataHome = home + "/.local/share";
    if (configHome.empty() || configHome.front() != '/') configHome = home + "/.config";
    Places p;
    p.home = home;
    p.dataFolder = dataHome + "/Zifora/";
    p.documentsFolder = p.dataFolder + "Documents/";
    p.oldDataFolder = dataHome + "/NorvosZifora/";
    p.settingsFile = configHome + "/Zifora/Zifora.plist";
    std::string documents = userDir(configHome, home, "XDG_DOCUMENTS_DIR", home + "/Documents");
    std::string desktop = userDir(configHome, home, "XDG_DESKTOP_DIR", home + "/Desktop");
    p.backupFolder = documents + "/Zifora/Backup/";
    p.reportsFolder = desktop + "/Zifora Jahresberichte/";
    return p;
}

} // namespace

Places Places::fromEnvironment() {
    std::string home = env("HOME");
    if (home.empty()) home = "/tmp";
    return build(home, env("XDG_DATA_HOME"), env("XDG_CONFIG_HOME"));
}

Places Places::forHome(const std::string& home) {
    return build(home, "", "");
}

std::string expandTilde(const std::string& path, const std::string& home) {
    if (path == "~") return home;
    if (path.starts_with("~/")) return home + path.substr(1);
    return path;
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty()) return name;
    if (folder.back() == '/') return folder + name;
    return folder + "/" + name;
}

} // namespace zifora::core
