#include "core/record.h"

#include <array>
#include <stdexcept>

namespace zifora::core {

namespace {

using namespace std::string_view_literals;

constexpr std::array kClientLists{"theYears"sv,  "groups"sv,     "accounts"sv,   "items"sv,
                                  "cashbooks"sv, "allowances"sv, "inventorys"sv, "arrayOne"sv,
                                  "arrayTwo"sv,  "arrayThree"sv};
// Every list setter of a client keeps the array it is given.
constexpr std::array kClientKeeps{true, true, true, true, true, true, true, true, true, true};
constexpr std::array kYearLists{"thelists"sv, "files"sv, "items"sv, "array"sv};
// A year copies its lists, except `array`, whose setter keeps the given one.
constexpr std::array kYearKeeps{false, false, false, true};
constexpr std::array kPeriodLists{"items"sv, "files"sv};
constexpr std::array kPeriodKeeps{false, false};
constexpr std::array<std::string_view, 0> kNoLists{};
constexpr std::array<bool, 0> kNoKeeps{};

const std::array<ClassInfo, 12>& classTable() {
    static const std::array<ClassInfo, 12> table{{
        {RecordClass::Client, "Client", kClientLists, kClientKeeps},
        {RecordClass::Year, "Year", kYearLists, kYearKeeps},
        {RecordClass::Thelist, "Thelist", kPeriodLists, kPeriodKeeps},
        {RecordClass::Item, "Item", kNoLists, kNoKeeps},
        {RecordClass::Account, "Account", kNoLists, kNoKeeps},
        {RecordClass::Group, "Group", kNoLists, kNoKeeps},
        {RecordClass::File, "File", kNoLists, kNoKeeps},
        {RecordClass::Cashbook, "Cashbook", kPeriodLists, kPeriodKeeps},
        {RecordClass::CashBookItem, "CashBookItem", kNoLists, kNoKeeps},
        {RecordClass::Allowance, "Allowance", kNoLists, kNoKeeps},
        {RecordClass::InventoryItem, "InventoryItem", kNoLists, kNoKeeps},
        {RecordClass::Foreign, "", kNoLists, kNoKeeps},
    }};
    return table;
}

enum class DefaultKind : uint8_t { Text, Float, Int, Integer, Bool, Now, Image };

struct Default {
    std::string_view key;
    DefaultKind kind;
    std::string_view text = {};
    double number = 0;
};

using DefaultList = std::vector<Default>;

void addMisc(DefaultList& list, int count) {
    static constexpr std::array names{"misc1"sv, "misc2"sv, "misc3"sv, "misc4"sv, "misc5"sv,
                                      "misc6"sv, "misc7"sv, "misc8"sv, "misc9"sv};
    for (int i = 0; i < count; ++i)
        list.push_back({names[i], DefaultKind::Text});
}

void addFloats(DefaultList& list, std::initializer_list<std::string_view> keys) {
    for (auto key : keys)
        list.push_back({key, DefaultKind::Float});
}

void addTexts(DefaultList& list, std::initializer_list<std::string_view> keys) {
    for (auto key : keys)
        list.push_back({key, DefaultKind::Text});
}

DefaultList clientDefaults() {
    DefaultList d{
        {"image", DefaultKind::Image, "client"},   {"company", DefaultKind::Text, "Neue Firma"},
        {"taxNumber", DefaultKind::Text},          {"elsterNumber", DefaultKind::Text},
        {"taxationKind", DefaultKind::Int, {}, 1}, {"datevConsultantNumber", DefaultKind::Text},
        {"datevClientNumber", DefaultKind::Text}};
    addMisc(d, 9);
    return d;
}

DefaultList yearDefaults() {
    DefaultList d{
        {"check", DefaultKind::Text, "2014"}, {"dateValue", DefaultKind::Text},
        {"comment", DefaultKind::Text},       {"image", DefaultKind::Image, "miniYearTemplate"},
        {"date", DefaultKind::Now},           {"taxBool", DefaultKind::Bool}};
    addFloats(d, {"payment", "additionalPayment", "rePayment", "balance", "taxFeeGet", "taxFeePay",
                  "income", "expense", "atSum"});
    addMisc(d, 9);
    return d;
}

DefaultList periodDefaults() {
    DefaultList d{{"title", DefaultKind::Text},
                  {"comment", DefaultKind::Text},
                  {"date", DefaultKind::Now},
                  {"image", DefaultKind::Image, "miniList"},
                  {"taxBool", DefaultKind::Bool}};
    addFloats(d, {"payment", "additionalPayment", "rePayment", "balance", "taxFeeGet", "taxFeePay",
                  "income", "expense", "atSum"});
    d.push_back({"voranmeldungComment", DefaultKind::Text});
    addMisc(d, 9);
    return d;
}

DefaultList itemDefaults() {
    DefaultList d{{"image", DefaultKind::Image, "miniItemGrey"}, {"kind", DefaultKind::Int}};
    addTexts(d, {"UUID", "parentUUID", "parentTab", "parentYear", "kindTitle", "group", "account",
                 "accountNumber", "account2", "account3"});
    d.push_back({"date", DefaultKind::Now});
    addTexts(d, {"title", "number", "amount"});
    d.push_back({"taxBool", DefaultKind::Bool});
    d.push_back({"taxTag", DefaultKind::Int});
    addFloats(d, {"taxPerecent", "taxFee", "taxFeeGet", "taxFeePay", "incomeWith", "expenseWithout",
                  "incomeWithout", "expenseWith", "finalAmount", "finalAmountWith",
                  "finalAmountWithout", "atSum"});
    d.push_back({"unpaidBool", DefaultKind::Bool});
    addFloats(d, {"openWith", "openWithout"});
    d.push_back({"comment", DefaultKind::Text});
    d.push_back({"fileBool", DefaultKind::Bool});
    addTexts(d, {"fileTitle", "filePath", "fileNote"});
    d.push_back({"customDatevData", DefaultKind::Bool});
    addTexts(d, {"customDatevAccount", "customDatevKey"});
    addMisc(d, 9);
    d.push_back({"templateTitle", DefaultKind::Text});
    for (auto key : {"bool1"sv, "bool2"sv, "bool3"sv})
        d.push_back({key, DefaultKind::Bool});
    addFloats(d, {"float1", "float2", "float3"});
    addTexts(d, {"string1", "string2", "string3"});
    for (auto key : {"additionalDate1"sv, "additionalDate2"sv, "additionalDate3"sv})
        d.push_back({key, DefaultKind::Now});
    return d;
}

DefaultList accountDefaults() {
    DefaultList d{{"number", DefaultKind::Text, "Nummer"},
                  {"title", DefaultKind::Text, "Bezeichnung"},
                  {"date", DefaultKind::Now},
                  {"image", DefaultKind::Text}};
    addMisc(d, 5);
    return d;
}

DefaultList groupDefaults() {
    DefaultList d{
        {"title", DefaultKind::Text}, {"date", DefaultKind::Now}, {"image", DefaultKind::Text}};
    addMisc(d, 5);
    return d;
}

DefaultList fileDefaults() {
    DefaultList d{{"fileBool", DefaultKind::Bool}};
    addTexts(d, {"fileTitle", "filePath", "fileNote"});
    addMisc(d, 5);
    return d;
}

DefaultList cashbookDefaults() {
    DefaultList d{{"title", DefaultKind::Text},
                  {"kassenbestand", DefaultKind::Float},
                  {"date", DefaultKind::Now},
                  {"image", DefaultKind::Image, "miniTabTemplate"},
                  {"taxBool", DefaultKind::Bool}};
    addFloats(d, {"payment", "additionalPayment", "rePayment", "balance", "taxFeeGet", "taxFeePay",
                  "income", "expense", "atSum"});
    d.push_back({"voranmeldungComment", DefaultKind::Text});
    addMisc(d, 9);
    return d;
}

DefaultList cashBookItemDefaults() {
    DefaultList d{{"image", DefaultKind::Image, "miniItemGrey"}};
    addFloats(d, {"sumEinnahme", "sumAusgabe", "taxRate", "taxAmount", "kassenbestand", "nummer"});
    addTexts(d, {"vorfall", "konto", "beleg"});
    d.push_back({"date", DefaultKind::Now});
    addTexts(d, {"UUID", "parentUUID"});
    addMisc(d, 9);
    d.push_back({"templateTitle", DefaultKind::Text});
    return d;
}

DefaultList allowanceDefaults() {
    DefaultList d;
    addFloats(d, {"sumEinnahme", "sumAusgabe", "taxRate", "taxAmount", "nummer"});
    addTexts(d, {"vorfall", "titel", "konto", "beleg", "comment"});
    d.push_back({"dateCreated", DefaultKind::Now});
    d.push_back({"endDate", DefaultKind::Now});
    addFloats(d, {"sumComplete", "sumPerYear"});
    addTexts(d, {"creationYear", "dueYear", "duePeriod", "UUID", "parentUUID"});
    addMisc(d, 9);
    d.push_back({"templateTitle", DefaultKind::Text});
    addFloats(d, {"float1", "float2", "float3", "float4", "float5"});
    d.push_back({"dauerTag", DefaultKind::Integer});
    return d;
}

DefaultList inventoryDefaults() {
    DefaultList d;
    addFloats(d, {"netto", "brutto"});
    addTexts(d, {"title", "comment", "category"});
    d.push_back({"date", DefaultKind::Now});
    addTexts(d, {"UUID", "parentUUID"});
    addMisc(d, 9);
    return d;
}

// The initialiser's properties with every date left at the reference date; `make`
// then puts the moment of creation into the date keys.
struct Template {
    Properties properties;
    std::vector<KeyId> nowKeys;
};

Template buildTemplate(const DefaultList& defaults) {
    Template t;
    t.properties.reserve(defaults.size());
    for (const Default& d : defaults) {
        KeyId key = internKey(d.key);
        switch (d.kind) {
        case DefaultKind::Text:
            t.properties.set(key, Value::string(d.text));
            break;
        case DefaultKind::Float:
            t.properties.set(key, Value::floatValue(static_cast<float>(d.number)));
            break;
        case DefaultKind::Int:
            t.properties.set(key, Value::intValue(static_cast<int32_t>(d.number)));
            break;
        case DefaultKind::Integer:
            t.properties.set(key, Value::integer(static_cast<int64_t>(d.number)));
            break;
        case DefaultKind::Bool:
            t.properties.set(key, Value::boolean(false));
            break;
        case DefaultKind::Now:
            t.properties.set(key, Value::date({}));
            t.nowKeys.push_back(key);
            break;
        case DefaultKind::Image:
            t.properties.set(key, Value::image(d.text));
            break;
        }
    }
    return t;
}

const Template& templateOf(RecordClass cls) {
    static const std::array<Template, 11> templates{
        buildTemplate(clientDefaults()),       buildTemplate(yearDefaults()),
        buildTemplate(periodDefaults()),       buildTemplate(itemDefaults()),
        buildTemplate(accountDefaults()),      buildTemplate(groupDefaults()),
        buildTemplate(fileDefaults()),         buildTemplate(cashbookDefaults()),
        buildTemplate(cashBookItemDefaults()), buildTemplate(allowanceDefaults()),
        buildTemplate(inventoryDefaults()),
    };
    return templates.at(static_cast<size_t>(cls));
}

} // namespace

const ClassInfo& classInfo(RecordClass cls) {
    return classTable().at(static_cast<size_t>(cls));
}

RecordClass recordClassNamed(std::string_view name) {
    for (const ClassInfo& info : classTable())
        if (info.recordClass != RecordClass::Foreign && info.name == name) return info.recordClass;
    return RecordClass::Foreign;
}

Record::Record(RecordClass cls) : m_class(cls) {
    const ClassInfo& info = classInfo(cls);
    m_lists.reserve(info.listKeys.size());
    for (size_t i = 0; i < info.listKeys.size(); ++i)
        m_lists.push_back(std::make_shared<RecordList>());
}

Ref<Record> Record::make(RecordClass cls, Date now) {
    Ref<Record> r(new Record(cls));
    if (cls == RecordClass::Foreign) return r;
    const Template& t = templateOf(cls);
    r->m_properties = t.properties;
    for (KeyId key : t.nowKeys)
        r->m_properties.set(key, Value::date(now));
    return r;
}

Ref<Record> Record::makeBare(RecordClass cls) {
    return Ref<Record>(new Record(cls));
}

Ref<Record> Record::makeForeign(std::string className, std::vector<std::string> classChain) {
    Ref<Record> r(new Record(RecordClass::Foreign));
    if (classChain.empty() || classChain.front() != className)
        classChain.insert(classChain.begin(), std::move(className));
    r->m_foreignChain = std::make_unique<std::vector<std::string>>(std::move(classChain));
    return r;
}

std::string_view Record::className() const {
    if (m_foreignChain) return m_foreignChain->front();
    return classInfo(m_class).name;
}

const std::vector<std::string>& Record::classChain() const {
    static const std::vector<std::string> none;
    return m_foreignChain ? *m_foreignChain : none;
}

void Record::setProperties(const Properties& properties) {
    if (&properties == &m_properties) return;
    m_properties = properties;
}

int Record::listIndex(std::string_view key) const {
    const ClassInfo& info = classInfo(m_class);
    for (size_t i = 0; i < info.listKeys.size(); ++i)
        if (info.listKeys[i] == key) return static_cast<int>(i);
    return -1;
}

void Record::setList(size_t index, ListPtr list) {
    if (!list) list = std::make_shared<RecordList>();
    if (classInfo(m_class).listSetterKeeps[index])
        m_lists.at(index) = std::move(list);
    else
        m_lists.at(index) = std::make_shared<RecordList>(*list);
}

RecordList& Record::named(std::string_view key) {
    int index = listIndex(key);
    if (index < 0)
        throw std::logic_error(std::string(className()) + " has no list " + std::string(key));
    return *m_lists[static_cast<size_t>(index)];
}

} // namespace zifora::core
