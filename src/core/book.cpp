#include "core/book.h"

#include "core/atomicfile.h"
#include "core/binaryplist.h"
#include "core/keyedarchive.h"

#include <array>
#include <filesystem>
#include <system_error>

namespace zifora::core {

namespace fs = std::filesystem;

namespace {

// Where the lists of an old single-client database go on the new client.
constexpr std::array<std::pair<const char*, const char*>, 7> kOldRootLists{{
    {"years", "theYears"},
    {"groups", "groups"},
    {"accounts", "accounts"},
    {"items", "items"},
    {"cashbooks", "cashbooks"},
    {"allowances", "allowances"},
    {"inventorys", "inventorys"},
}};

bool isFolder(const std::string& path) {
    std::error_code ec;
    return !path.empty() && fs::is_directory(path, ec);
}

/// The clients of a database's root, or why the root holds none.
Result<RecordList> clientsOfRoot(const Value& root) {
    Value list = root["clients"];
    if (root.kind() != Kind::Dict || (!list.isAbsent() && list.kind() != Kind::Array))
        return fail("die Datei enthält keine Liste von Benutzern");
    RecordList clients;
    for (const Value& v : list.asArray()) {
        if (v.kind() != Kind::Record || v.asRecord()->recordClass() != RecordClass::Client)
            return fail("die Datei enthält keine Liste von Benutzern");
        clients.push_back(v.recordRef());
    }
    return clients;
}

} // namespace

Book::Book(Places places)
    : m_places(std::move(places)), m_clients(std::make_shared<RecordList>()) {}

void Book::setClients(const RecordList& clients) {
    m_clients = std::make_shared<RecordList>(clients);
}

Value Book::databaseRoot() const {
    ArrayElements clients;
    clients.reserve(m_clients->size());
    for (const auto& c : *m_clients) clients.push_back(Value::record(c));
    return Value::dict({{"clients", Value::array(std::move(clients))}});
}

DataFileLocation Book::locateDataFile(Settings& settings) const {
    DataFileLocation where;
    if (settings.getBool("useCustomLocation")) {
        where.folder = settings.getString("customLocationPath");
    } else {
        where.folder = m_places.dataFolder;
        std::error_code ec;
        fs::create_directories(where.folder, ec);
    }
    settings.setString("defaultDataFolder", where.folder);
    where.path = joinPath(where.folder, kDatabaseName);
    where.folderExists = isFolder(where.folder);
    settings.setString("defaultDataPath", where.path);
    return where;
}

Result<void> Book::load(const std::string& path) {
    setClients({});
    auto root = readKeyedArchiveFile(path);
    if (!root && root.error().missing) return {};
    if (!root) {
        m_unreadable = true;
        return fail(root.error().error.message);
    }
    auto clients = clientsOfRoot(*root);
    if (!clients) {
        m_unreadable = true;
        return std::unexpected(clients.error());
    }
    setClients(*clients);
    return {};
}

Result<void> Book::save(const std::string& path) const {
    if (m_unreadable)
        return fail(path + ": die Datenbank konnte beim Start nicht gelesen werden und bleibt "
                           "unverändert");
    return writeKeyedArchiveFile(path, databaseRoot());
}

Ref<Record> Book::newInstallationClient(Date now) {
    Ref<Record> client = Record::make(RecordClass::Client, now);
    client->set("company", Value::string("Neue Firma"));
    client->set("taxNumber", Value::string(""));
    client->set("elsterNumber", Value::string(""));
    client->set("taxationKind", Value::intValue(1));
    return client;
}

Result<Ref<Record>> Book::clientFromOldDatabase(const std::string& path,
                                                const ClientIdentity& identity, Date now) {
    Ref<Record> client = Record::make(RecordClass::Client, now);
    client->set("company", Value::string(identity.company));
    client->set("taxNumber", Value::string(identity.taxNumber));
    client->set("elsterNumber", Value::string(identity.elsterNumber));
    client->set("taxationKind", identity.taxationKind);
    auto root = readKeyedArchiveFile(path);
    if (!root && !root.error().missing) {
        m_unreadable = true;
        return fail(root.error().error.message);
    }
    if (!root) return client;
    for (const auto& [oldKey, newKey] : kOldRootLists) {
        Value list = (*root)[oldKey];
        if (list.kind() != Kind::Array) continue;
        auto records = std::make_shared<RecordList>();
        for (const Value& v : list.asArray())
            if (v.kind() == Kind::Record) records->push_back(v.recordRef());
        client->setList(static_cast<size_t>(client->listIndex(newKey)), records);
    }
    return client;
}

Value Book::oldAccountsList(const std::string& folder) {
    const std::string path = joinPath(folder, "Accounts.plist");
    auto bytes = readWholeFile(path);
    if (!bytes) return {};
    auto list = decodePropertyList(*bytes, path);
    return list ? *list : Value{};
}

void Book::changed(Change what) const {
    for (const Observer& observer : m_observers) observer(what);
}

} // namespace zifora::core
