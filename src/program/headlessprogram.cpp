#include "program/headlessprogram.h"

namespace zifora::program {

HeadlessProgram::HeadlessProgram(std::ostream& out, core::Places where, core::Date start,
                                 Resources resources, shell::PdfRenderer* pdf)
    : services(out, start, pdf), places(std::move(where)), settings(places.settingsFile),
      program(services.services(), places, settings, std::move(resources)) {}

} // namespace zifora::program
