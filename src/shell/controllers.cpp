#include "shell/controllers.h"

#include "shell/app.h"
#include "shell/chartcontroller.h"
#include "shell/guicontroller.h"
#include "shell/itemcontroller.h"
#include "shell/itemlistcontroller.h"
#include "shell/masterdatacontroller.h"
#include "shell/openfile.h"
#include "shell/periodlistcontroller.h"
#include "shell/splitcontroller.h"
#include "shell/templatecontroller.h"
#include "shell/totalscontroller.h"
#include "shell/yearcontroller.h"

namespace zifora::shell {

// One member per controller; each registers its commands in its constructor.
struct Controllers::Parts {
    explicit Parts(App& owner) : app(owner) {}
    App& app;

    YearController years{app};
    TotalsController totals{app};
    ItemController items{app};
    TemplateController templates{app};
    SplitController split{app};
    ItemListController itemList{app};
    PeriodListController periodList{app, itemList};
    ChartController charts{app};
    MasterDataController masterData{app};
    OpenFileController openFile{app};
    GUIController gui{app};
};

Controllers::Controllers(App& app) : m_parts(std::make_unique<Parts>(app)) {}

Controllers::~Controllers() = default;

} // namespace zifora::shell
