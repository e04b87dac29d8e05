#include "program/program.h"

#include "bookkeeping/chartcontroller.h"
#include "bookkeeping/clientcontroller.h"
#include "bookkeeping/databasecontroller.h"
#include "bookkeeping/guicontroller.h"
#include "bookkeeping/itemcontroller.h"
#include "bookkeeping/itemlistcontroller.h"
#include "bookkeeping/masterdatacontroller.h"
#include "bookkeeping/migrationcontroller.h"
#include "bookkeeping/openfile.h"
#include "bookkeeping/periodlistcontroller.h"
#include "bookkeeping/splitcontroller.h"
#include "bookkeeping/startstopcontroller.h"
#include "bookkeeping/storageplacescontroller.h"
#include "bookkeeping/templatecontroller.h"
#include "bookkeeping/totalscontroller.h"
#include "bookkeeping/yearcontroller.h"
#include "core/chartfiles.h"
#include "core/resourcefolders.h"
#include "reports/settlementjournalcontroller.h"
#include "vat/advancereturncontroller.h"
#include "vat/elstercontroller.h"

namespace zifora::program {

template <typename F, typename... Args> F& Program::add(Args&&... args) {
    auto feature = std::make_unique<F>(m_session, std::forward<Args>(args)...);
    F& made = *feature;
    m_features.push_back(std::move(feature));
    return made;
}

// The order is the order in which the features hear the events they share.
Resources Resources::find() {
    return {core::findChartsFolder(), core::findHelpFolder()};
}

Program::Program(shell::Services services, core::Places places, core::Settings& settings,
                 Resources resources)
    : m_session(services, std::move(places), settings) {
    using namespace bookkeeping;
    add<StartStopController>();
    add<DatabaseController>();
    add<ClientController>();
    add<StoragePlacesController>();
    add<MigrationController>();
    add<YearController>();
    add<TotalsController>();
    add<ItemController>();
    add<TemplateController>();
    add<SplitController>();
    auto& itemList = add<ItemListController>();
    add<PeriodListController>(itemList);
    add<ChartController>(resources.charts);
    add<MasterDataController>();
    add<OpenFileController>();
    add<GUIController>(resources.help);
    add<reports::SettlementJournalController>();
    add<vat::AdvanceReturnController>();
    add<vat::ElsterController>();
}

Program::~Program() = default;

void Program::start() {
    m_session.run("init");
    m_session.run("awakeFromNib");
}

void Program::stop() {
    m_session.run("applicationWillTerminate");
}

} // namespace zifora::program
