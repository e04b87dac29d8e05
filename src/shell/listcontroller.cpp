#include "shell/listcontroller.h"

#include <algorithm>

namespace zifora::shell {

using core::Record;

void ListController::setContent(core::RecordList* list) {
    bool same = list == m_content;
    m_content = list;
    m_arrangedValid = false;
    if (same && m_selected && selectionIndex()) return;
    const auto& shown = arranged();
    m_selected = shown.empty() ? core::Ref<Record>() : core::Ref<Record>(shown.front());
}

void ListController::setSortKey(std::string key) {
    m_sortKey = std::move(key);
    m_arrangedValid = false;
}

const std::vector<Record*>& ListController::arranged() const {
    if (m_arrangedValid && m_content && m_arranged.size() == m_content->size()) return m_arranged;
    m_arranged.clear();
    if (m_content) {
        m_arranged.reserve(m_content->size());
        for (const auto& r : *m_content)
            m_arranged.push_back(r.get());
        if (!m_sortKey.empty()) {
            core::KeyId key = core::internKey(m_sortKey);
            std::stable_sort(m_arranged.begin(), m_arranged.end(), [key](Record* a, Record* b) {
                core::Value va = a->properties().get(key), vb = b->properties().get(key);
                if (va.kind() == core::Kind::String || vb.kind() == core::Kind::String)
                    return va.text() < vb.text();
                return va.kind() == core::Kind::Date || vb.kind() == core::Kind::Date
                           ? va.toDate().sinceReferenceDate < vb.toDate().sinceReferenceDate
                           : va.toDouble() < vb.toDouble();
            });
        }
    }
    m_arrangedValid = true;
    return m_arranged;
}

Record* ListController::selected() const {
    return selectionIndex() ? m_selected.get() : nullptr;
}

std::optional<size_t> ListController::selectionIndex() const {
    if (!m_selected || !m_content) return std::nullopt;
    const auto& shown = arranged();
    auto it = std::find(shown.begin(), shown.end(), m_selected.get());
    if (it == shown.end()) return std::nullopt;
    return static_cast<size_t>(it - shown.begin());
}

void ListController::setSelectionIndex(std::optional<int64_t> index) {
    const auto& shown = arranged();
    if (!index || *index < 0 || *index == kNoSelection || shown.empty()) {
        m_selected = {};
        return;
    }
    size_t i = std::min(static_cast<size_t>(*index), shown.size() - 1);
    m_selected = core::Ref<Record>(shown[i]);
}

void ListController::select(Record* record) {
    m_selected = core::Ref<Record>(record);
}

int64_t ListController::storedSelectionIndex() const {
    auto index = selectionIndex();
    return index ? static_cast<int64_t>(*index) : kNoSelection;
}

void ListController::add(core::Ref<Record> record) {
    if (!m_content) return;
    m_content->push_back(record);
    m_arrangedValid = false;
    m_selected = record;
}

void ListController::removeAt(size_t arrangedIndex) {
    const auto& shown = arranged();
    if (!m_content || arrangedIndex >= shown.size()) return;
    Record* victim = shown[arrangedIndex];
    std::erase_if(*m_content, [victim](const core::Ref<Record>& r) { return r.get() == victim; });
    m_arrangedValid = false;
    const auto& after = arranged();
    if (after.empty())
        m_selected = {};
    else
        m_selected = core::Ref<Record>(after[std::min(arrangedIndex, after.size() - 1)]);
}

} // namespace zifora::shell
