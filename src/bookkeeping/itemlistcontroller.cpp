#include "bookkeeping/itemlistcontroller.h"

#include "core/atomicfile.h"
#include "core/keyedarchive.h"
#include "shell/session.h"

#include <algorithm>

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

namespace {

constexpr const char* kDeleteMarkedText =
    "Die übergeordnete Abrechnung wurde als zur Voranmeldung genutzt markiert. Bist du sicher, "
    "dass du dennoch diesen Posten löschen möchtest?";
constexpr const char* kDeleteText =
    "Diese Aktion kann nicht rückgängig gemacht werden. Möchtest du wirklich den ausgewählten "
    "Posten löschen?";

} // namespace

ItemListController::ItemListController(shell::Session& session) : m_session(session) {
    session.commands().add(shell::menuCommand("ArrayControllerItem.remove:", "Posten &löschen …",
                                              shell::Menu::Items, 50, "Del"),
                           [this](const CommandSender&) { remove(); });
}

// The safe button is the default in the question of a marked period, the deleting one in
// the ordinary question; a marked period gets only its own question.
void ItemListController::remove() {
    ListController& items = m_session.selection().items;
    auto index = items.selectionIndex();
    if (!index) {
        m_session.services().ui.beep();
        return;
    }
    core::Record* period = m_session.selection().currentPeriod();
    const bool marked = period && period->getBool("taxBool");
    AlertRequest question{
        "Posten löschen", kDeleteText, {"Löschen", "Abbrechen"}, AlertStyle::Warning, {}};
    if (marked)
        question = {
            "Achtung!", kDeleteMarkedText, {"Abbrechen", "Löschen"}, AlertStyle::Warning, {}};
    const int answer = m_session.services().ui.alert(question);
    const bool confirmed = marked ? answer == 0 : answer == 1;
    if (!confirmed) return;
    items.removeAt(*index);
}

std::optional<RowDrag> ItemListController::beginDrag(const std::vector<size_t>& rows, bool option) {
    const auto& shown = m_session.selection().items.arranged();
    RowDrag drag{"items", {}, false, option};
    for (size_t row : posting::rowIndexSet(rows))
        if (row < shown.size()) drag.rows.push_back(row);
    if (drag.rows.empty()) return std::nullopt;
    drag.declaresUrl = drag.rows.size() == 1;
    for (size_t row : drag.rows)
        writeHandOverItem(*shown[row]);
    return drag;
}

bool ItemListController::acceptDrop(const RowDrag& drag, std::optional<size_t> row) {
    ListController& items = m_session.selection().items;
    m_dropRow = std::min(row.value_or(items.count()), items.count());
    if (drag.sourceList == "items" && !drag.option) {
        // The moved row is selected; the list shows it in its date order again at once.
        const auto& shown = items.arranged();
        core::Ref<core::Record> lead;
        if (!drag.rows.empty() && drag.rows.front() < shown.size())
            lead = core::Ref(shown[drag.rows.front()]);
        if (!moveArrangedRows(items, drag.rows, m_dropRow).empty()) items.select(lead.get());
        return true;
    }
    // The copy branch: no drag of ours carries objects under the copy type, so only the
    // URL of a one-row drag is left, and it is taken for a file from outside.
    if (drag.declaresUrl) {
        m_session.services().ui.alert(
            AlertRequest{kImportNoticeTitle, kImportNoticeText, {"OK"}, AlertStyle::Warning, {}});
        return true;
    }
    return false;
}

std::string ItemListController::handOverPath() const {
    return core::joinPath(m_session.places().dataFolder, "temp.item");
}

// A write that fails is not looked at: the drop then finds no item.
void ItemListController::writeHandOverItem(core::Record& item) const {
    const std::string archive = core::encodeKeyedArchive(core::Value::record(core::Ref(&item)));
    (void)core::writeFileAtomically(handOverPath(), archive);
}

core::Ref<core::Record> ItemListController::readHandOverItem() const {
    auto root = core::readKeyedArchiveFile(handOverPath());
    if (!root || root->kind() != core::Kind::Record) return {};
    core::Ref<core::Record> item = root->recordRef();
    if (!item || item->recordClass() != core::RecordClass::Item) return {};
    // The file may come from elsewhere: its item must fit where the deepest items stand.
    if (!core::nestsWithin(*root, core::kMaxValueNesting + 2)) return {};
    return item;
}

} // namespace zifora::bookkeeping
