#pragma once
// Small helpers of the renderer's tests: temporary folders, files, and outside programs
// (poppler-utils, LibreOffice) whose output the tests read.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace zifora::platform_qt::testing {

namespace fs = std::filesystem;

class TempFolder {
  public:
    TempFolder() {
        std::string pattern = (fs::temp_directory_path() / "zifora-pdf-XXXXXX").string();
        if (mkdtemp(pattern.data())) m_path = pattern;
    }
    ~TempFolder() {
        std::error_code ec;
        fs::permissions(m_path, fs::perms::owner_all, fs::perm_options::add, ec);
        fs::remove_all(m_path, ec);
    }
    [[nodiscard]] const fs::path& path() const { return m_path; }
    [[nodiscard]] std::string file(const std::string& name) const {
        return (m_path / name).string();
    }

  private:
    fs::path m_path;
};

inline void writeText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string readText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

/// Standard output of a shell command; empty when it can't run.
inline std::string output(const std::string& command) {
    std::string out;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[4096];
        size_t n;
        while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0)
            out.append(buffer, n);
        pclose(pipe);
    }
    return out;
}

inline bool haveProgram(const std::string& name) {
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

inline std::string shellQuoted(const std::string& path) {
    return "'" + path + "'";
}

} // namespace zifora::platform_qt::testing
