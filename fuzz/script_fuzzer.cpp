// Runs arbitrary text as a script of `zifora-cli run`: the whole headless program in a
// home of its own under the temporary folder, emptied before each run. Every line must end
// in its effect or an error event: no crash, no hang, no uncaught exception.
//
// Scripts may name files (dialog answers, storage places), so inputs that could reach
// beyond the fuzzer's home are skipped: no "/", no "..", no "\u" escape that could spell them.

#include "program/headlessprogram.h"
#include "shell/scriptdriver.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <unistd.h>

using namespace zifora;

namespace {

std::filesystem::path g_home;
std::optional<std::filesystem::path> g_charts;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "zifora-script-fuzz-XXXXXX").string();
    if (!mkdtemp(pattern.data())) std::abort();
    g_home = pattern;
    std::atexit([] {
        std::error_code ec;
        std::filesystem::remove_all(g_home, ec);
    });
    setenv("HOME", pattern.c_str(), 1);
    unsetenv("XDG_DATA_HOME");
    unsetenv("XDG_CONFIG_HOME");
    // Relative paths of a script land in the home too.
    if (chdir(pattern.c_str()) != 0) std::abort();
    const char* charts = std::getenv("ZIFORA_FUZZ_CHARTS");
    if (charts) g_charts = charts;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (text.find('/') != std::string_view::npos || text.find("..") != std::string_view::npos ||
        text.find("\\u") != std::string_view::npos || text.find('~') != std::string_view::npos)
        return 0;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(g_home, ec))
        std::filesystem::remove_all(entry.path(), ec);
    std::ostringstream out;
    program::Resources resources;
    resources.charts = g_charts;
    program::HeadlessProgram headless(out, core::Places::forHome(g_home.string()),
                                      core::Date{794'000'000}, resources);
    (void)core::loadSettingsSafely(headless.settings);
    shell::ScriptDriver driver(headless.session(), headless.services);
    std::istringstream script{std::string(text)};
    (void)driver.run(script);
    return 0;
}
