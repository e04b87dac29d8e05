#include "shell/controllers.h"

#include "shell/app.h"
#include "shell/totalscontroller.h"
#include "shell/yearcontroller.h"

namespace zifora::shell {

// One member per controller; each registers its commands in its constructor.
struct Controllers::Parts {
    explicit Parts(App& app) : years(app), totals(app) {}

    YearController years;
    TotalsController totals;
};

Controllers::Controllers(App& app) : m_parts(std::make_unique<Parts>(app)) {}

Controllers::~Controllers() = default;

} // namespace zifora::shell
