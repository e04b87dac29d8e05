#pragma once
// A list controller: shows one child list of the selection above it, in its arranged
// order, and holds the selected record of that list.

#include "core/record.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace zifora::shell {

/// The stored index that stands for "nothing selected" (the largest signed 64-bit number).
inline constexpr int64_t kNoSelection = std::numeric_limits<int64_t>::max();

class ListController {
  public:
    explicit ListController(std::string name) : m_name(std::move(name)) {}

    [[nodiscard]] const std::string& name() const { return m_name; }

    /// Shows another list (or none). A new list selects its first record, as the
    /// controllers avoid an empty selection; the same list keeps its selection if the
    /// selected record is still in it.
    void setContent(core::RecordList* list);
    [[nodiscard]] core::RecordList* content() const { return m_content; }

    /// Arranges by the property `key`, ascending; records with equal keys keep their order.
    void setSortKey(std::string key);
    /// The records in the order shown.
    [[nodiscard]] const std::vector<core::Record*>& arranged() const;
    /// Re-sorts after the content was changed from outside.
    void rearrange() { m_arrangedValid = false; }
    [[nodiscard]] size_t count() const { return m_content ? m_content->size() : 0; }

    [[nodiscard]] core::Record* selected() const;
    [[nodiscard]] std::optional<size_t> selectionIndex() const;
    /// Selects by arranged index; an index past the end selects the last record, none or
    /// a negative index selects nothing.
    void setSelectionIndex(std::optional<int64_t> index);
    void select(core::Record* record);
    /// The index as the settings store keeps it: kNoSelection for none.
    [[nodiscard]] int64_t storedSelectionIndex() const;

    /// Appends a record to the content and selects it.
    void add(core::Ref<core::Record> record);
    /// Removes the record at an arranged index; the selection moves to the record that
    /// now stands there, or the one before.
    void removeAt(size_t arrangedIndex);

  private:
    std::string m_name;
    core::RecordList* m_content = nullptr;
    core::Ref<core::Record> m_selected;
    std::string m_sortKey;
    mutable std::vector<core::Record*> m_arranged;
    mutable bool m_arrangedValid = false;
};

} // namespace zifora::shell
