// The exit code of `run` follows the last save of the database: a run whose last save failed
// ends with 5, one whose later save got through again with 0.

#include "program/headlessprogram.h"
#include "shell/scriptdriver.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

using namespace zifora;
namespace fs = std::filesystem;

namespace {

TEST(ScriptExit, FollowsTheLastSaveOfTheDatabase) {
    std::string pattern = (fs::temp_directory_path() / "zifora-exit-test-XXXXXX").string();
    const fs::path home = mkdtemp(pattern.data());
    const core::Places places = core::Places::forHome(home.string());
    // The database is a link into a folder that is not there yet.
    fs::create_directories(places.dataFolder);
    fs::create_symlink(home / "später" / "Zifora.zfdb4",
                       fs::path(places.dataFolder) / "Zifora.zfdb4");

    std::ostringstream out;
    program::HeadlessProgram headless(out, places, core::Date{800000000});
    shell::ScriptDriver driver(headless.session(), headless.services);
    std::istringstream first(R"({"settings":{"isMigration_4.0_done":{"bool":true}}}
{"start":true}
{"do":"save:"}
)");
    EXPECT_EQ(driver.run(first), shell::ScriptDriver::kExitLastSaveFailed);
    EXPECT_NE(out.str().find("\"saveFailed\""), std::string::npos);

    fs::create_directories(home / "später");
    std::istringstream second(R"({"do":"save:"})");
    EXPECT_EQ(driver.run(second), 0) << out.str();
    EXPECT_TRUE(fs::is_regular_file(home / "später" / "Zifora.zfdb4"));

    std::error_code ec;
    fs::remove_all(home, ec);
}

} // namespace
