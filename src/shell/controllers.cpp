#include "shell/controllers.h"

#include "shell/app.h"
#include "shell/chartcontroller.h"
#include "shell/masterdatacontroller.h"

namespace zifora::shell {

// One member per controller; each registers its commands in its constructor.
struct Controllers::Parts {
    explicit Parts(App& owner) : app(owner) {}
    App& app;
    ChartController charts{app};
    MasterDataController masterData{app};
};

Controllers::Controllers(App& app) : m_parts(std::make_unique<Parts>(app)) {}

Controllers::~Controllers() = default;

} // namespace zifora::shell
