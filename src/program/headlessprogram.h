#pragma once
// The program without a display, on the headless services.

#include "program/program.h"
#include "shell/headless.h"

#include <ostream>

namespace zifora::program {

/// A whole program without a display: the headless services and a program over them, for
/// the script driver, the demonstration book, benchmarks and tests.
struct HeadlessProgram {
    HeadlessProgram(std::ostream& out, core::Places where, core::Date start,
                    Resources resources = Resources::find(), shell::PdfRenderer* pdf = nullptr);

    shell::HeadlessServices services;
    core::Places places;
    core::Settings settings;
    Program program;

    [[nodiscard]] shell::Session& session() { return program.session(); }
};

} // namespace zifora::program
