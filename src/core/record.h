#pragma once
// The record classes of the books: a property dictionary plus plain child lists.

#include "core/properties.h"
#include "core/value.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zifora::core {

enum class RecordClass : uint8_t {
    Client,
    Year,
    Thelist,
    Item,
    Account,
    Group,
    File,
    Cashbook,
    CashBookItem,
    Allowance,
    InventoryItem,
    Foreign, // any other class met in an archive; its keys are kept as they stand
};

class Record;
using RecordList = std::vector<Ref<Record>>;
/// A child list. Some list setters keep the list object they are given, others copy it,
/// so lists are held by shared pointer.
using ListPtr = std::shared_ptr<RecordList>;

/// What the archive and the initialiser know of a class.
struct ClassInfo {
    RecordClass recordClass;
    std::string_view name;
    /// The child-list keys in encoding order (after "properties").
    std::span<const std::string_view> listKeys;
    /// Per list: true where the setter keeps the given list, false where it copies it.
    std::span<const bool> listSetterKeeps;
};

[[nodiscard]] const ClassInfo& classInfo(RecordClass cls);
/// The class of the given archive name, or Foreign.
[[nodiscard]] RecordClass recordClassNamed(std::string_view name);

class Record : public Shared {
  public:
    /// A new record with the defaults of its class; `now` fills the date keys.
    static Ref<Record> make(RecordClass cls, Date now);
    /// A record with no properties and empty lists, as the decoder starts it.
    static Ref<Record> makeBare(RecordClass cls);
    /// A record of a class this program doesn't know.
    static Ref<Record> makeForeign(std::string className, std::vector<std::string> classChain);

    [[nodiscard]] RecordClass recordClass() const { return m_class; }
    [[nodiscard]] std::string_view className() const;
    /// For foreign records: the class chain of the archive, most derived first.
    [[nodiscard]] const std::vector<std::string>& classChain() const;

    [[nodiscard]] Properties& properties() { return m_properties; }
    [[nodiscard]] const Properties& properties() const { return m_properties; }
    /// Copies the dictionary, so that two records never share one.
    void setProperties(const Properties& properties);

    // Convenience reads and writes of properties.
    [[nodiscard]] Value get(std::string_view key) const { return m_properties.get(key); }
    void set(std::string_view key, Value v) { m_properties.set(key, std::move(v)); }
    [[nodiscard]] float getFloat(std::string_view key) const { return m_properties.getFloat(key); }
    [[nodiscard]] int32_t getInt(std::string_view key) const { return m_properties.getInt(key); }
    [[nodiscard]] bool getBool(std::string_view key) const { return m_properties.getBool(key); }
    [[nodiscard]] std::string getText(std::string_view key) const {
        return m_properties.getText(key);
    }

    // Child lists by position in the class's list keys.
    [[nodiscard]] size_t listCount() const { return m_lists.size(); }
    [[nodiscard]] RecordList& list(size_t index) { return *m_lists.at(index); }
    [[nodiscard]] const RecordList& list(size_t index) const { return *m_lists.at(index); }
    [[nodiscard]] const ListPtr& listPtr(size_t index) const { return m_lists.at(index); }
    /// The index of a list key, or -1 when the class has no such list.
    [[nodiscard]] int listIndex(std::string_view key) const;
    /// Sets a list with the semantics of the class's setter: keep or copy.
    void setList(size_t index, ListPtr list);

    // Named lists; each is only valid on the classes that have it.
    [[nodiscard]] RecordList& theYears() { return named("theYears"); }
    [[nodiscard]] RecordList& thelists() { return named("thelists"); }
    [[nodiscard]] RecordList& items() { return named("items"); }
    [[nodiscard]] RecordList& files() { return named("files"); }
    [[nodiscard]] RecordList& groups() { return named("groups"); }
    [[nodiscard]] RecordList& accounts() { return named("accounts"); }
    [[nodiscard]] RecordList& cashbooks() { return named("cashbooks"); }
    [[nodiscard]] RecordList& allowances() { return named("allowances"); }
    [[nodiscard]] RecordList& inventorys() { return named("inventorys"); }

  private:
    explicit Record(RecordClass cls);
    RecordList& named(std::string_view key);

    RecordClass m_class;
    Properties m_properties;
    std::vector<ListPtr> m_lists;
    // Only for foreign records: the archive's class name first, then its superclasses.
    std::unique_ptr<std::vector<std::string>> m_foreignChain;
};

} // namespace zifora::core
