#include "bookkeeping/periodlistcontroller.h"

#include "bookkeeping/itemlistcontroller.h"
#include "shell/session.h"

#include <algorithm>

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

namespace {

constexpr const char* kFirstDropText =
    "Dies ist das erste mal, dass du einen bestehenden Posten einer anderen Abrechnung "
    "hinzufügst. Dazu musst du wissen, dass der 'Original-Posten' bewusst nicht von Zifora "
    "gelöscht wird. So kannst du vergessene Posten auch nachträglich anderen Abrechnungen "
    "hinzufügen. Ob du den 'Original-Posten' danach löschst, liegt in deiner Verantwortung. "
    "Desweiteren kann Zifora nicht wissen, ob und wie ein verschobener Posten in ein etwaiges "
    "Kassenbuch gehört oder nicht. Dies obliegt also auch deiner Verantwortung.";
constexpr const char* kSameTitleText = "Posten ist bereits in dieser Abrechnung vorhanden.";

bool sameTitle(const core::Record& a, const core::Record& b) {
    core::Value ta = a.get("title"), tb = b.get("title");
    return ta.kind() == core::Kind::String && tb.kind() == core::Kind::String &&
           ta.text() == tb.text();
}

} // namespace

PeriodListController::PeriodListController(shell::Session& session, ItemListController& itemList)
    : m_session(session), m_itemList(itemList) {
    session.addDragHandler("items", [this](const DragRequest& request) {
        dragFrom(m_itemList.beginDrag(request.rows, request.option), request);
    });
    session.addDragHandler("periods", [this](const DragRequest& request) {
        dragFrom(beginDrag(request.rows, request.option), request);
    });
}

std::optional<RowDrag> PeriodListController::beginDrag(const std::vector<size_t>& rows,
                                                       bool option) const {
    const size_t count = m_session.selection().lists.count();
    RowDrag drag{"periods", {}, false, option};
    for (size_t row : posting::rowIndexSet(rows))
        if (row < count) drag.rows.push_back(row);
    if (drag.rows.empty()) return std::nullopt;
    drag.declaresUrl = drag.rows.size() == 1;
    return drag;
}

// Only the item and the period list take these drags; on any other list they end unused.
void PeriodListController::dragFrom(const std::optional<RowDrag>& drag,
                                    const DragRequest& request) {
    if (!drag) return;
    if (request.targetList == "items")
        (void)m_itemList.acceptDrop(*drag, request.targetRow);
    else if (request.targetList == "periods")
        (void)acceptDrop(*drag, request.targetRow);
}

bool PeriodListController::acceptDrop(const RowDrag& drag, std::optional<size_t> row) {
    ListController& periods = m_session.selection().lists;
    const bool sameList = drag.sourceList == "periods";
    if (sameList && !drag.option) {
        core::Record* lead = periods.arranged()[drag.rows.front()];
        size_t target = std::min(row.value_or(periods.count()), periods.count());
        if (!moveArrangedRows(periods, drag.rows, target).empty()) {
            periods.select(lead);
            m_session.selectionChanged();
        }
        return true;
    }
    if (!sameList) {
        // From elsewhere the drop lands on the period under the pointer; below the last
        // period there is none, and the drop is not allowed.
        if (!row || *row >= periods.count()) return false;
        m_dropRow = *row;
    }
    if (drag.sourceList == "items") addDroppedItem();
    return false; // no drag of ours carries objects under the copy type
}

void PeriodListController::addDroppedItem() {
    showFirstDropNotice();
    Selection& selection = m_session.selection();
    selection.lists.setSelectionIndex(static_cast<int64_t>(m_dropRow));
    m_session.selectionChanged();
    core::Ref<core::Record> item = m_itemList.readHandOverItem();
    if (!item || !selection.currentPeriod()) return;
    for (core::Record* present : selection.items.arranged()) {
        if (!sameTitle(*present, *item)) continue;
        m_session.services().ui.alert(
            AlertRequest{"Fehler!", kSameTitleText, {"OK"}, AlertStyle::Warning, {}});
        return;
    }
    selection.items.add(item);
    selection.items.rearrange();
}

void PeriodListController::showFirstDropNotice() {
    core::Settings& settings = m_session.settings();
    if (settings.getBool("firstDropBOOL")) return;
    m_session.services().ui.alert(
        AlertRequest{"Hinweis!", kFirstDropText, {"OK"}, AlertStyle::Informational, {}});
    settings.setBool("firstDropBOOL", true);
}

} // namespace zifora::bookkeeping
