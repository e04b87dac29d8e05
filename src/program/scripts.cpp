#include "program/scripts.h"

#include "program/headlessprogram.h"
#include "shell/scriptdriver.h"

#include <chrono>
#include <fstream>
#include <iostream>

namespace zifora::program {

namespace {

core::Date realNow() {
    auto since = std::chrono::system_clock::now().time_since_epoch();
    return core::Date::fromUnix(std::chrono::duration<double>(since).count());
}

} // namespace

int runScript(std::istream& script, std::ostream& out, shell::PdfRenderer* pdf) {
    HeadlessProgram headless(out, core::Places::fromEnvironment(), realNow(), Resources::find(),
                             pdf);
    // Settings that can't be read are told by the start, which goes on with the book.
    core::loadSettingsSafely(headless.settings);
    shell::ScriptDriver driver(headless.session(), headless.services);
    return driver.run(script);
}

int runScriptFile(const std::string& path, std::ostream& out, shell::PdfRenderer* pdf) {
    if (path == "-") return runScript(std::cin, out, pdf);
    std::ifstream in(path);
    if (!in) {
        shell::EventLog log(out);
        log.error(path + ": das Skript kann nicht gelesen werden");
        return 3;
    }
    return runScript(in, out, pdf);
}

} // namespace zifora::program
