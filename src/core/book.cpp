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

bool fileExists(const std::string& path) {
    std::error_code ec;
    return fs::exists(path, ec);
}

/// The clients of a database's root, or why the root holds none. A root without "clients"
/// is no book of ours (an empty book has an empty list there).
Result<RecordList> clientsOfRoot(const Value& root, const std::string& path) {
    const std::string refusal = path + ": die Datei enthält keine Liste von Benutzern";
    Value list = root["clients"];
    if (root.kind() != Kind::Dict || list.kind() != Kind::Array) return fail(refusal);
    RecordList clients;
    for (const Value& v : list.asArray()) {
        if (v.kind() != Kind::Record || v.asRecord()->recordClass() != RecordClass::Client)
            return fail(refusal);
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
    for (const auto& c : *m_clients)
        clients.push_back(Value::record(c));
    return Value::dict({{"clients", Value::array(std::move(clients))}});
}

DataFileLocation Book::dataFile(const Settings& settings) const {
    DataFileLocation where;
    where.folder = settings.getBool("useCustomLocation") ? settings.getString("customLocationPath")
                                                         : m_places.dataFolder;
    where.path = joinPath(where.folder, kDatabaseName);
    where.folderExists = isFolder(where.folder);
    return where;
}

DataFileLocation Book::locateDataFile(Settings& settings) const {
    if (!settings.getBool("useCustomLocation")) {
        std::error_code ec;
        fs::create_directories(m_places.dataFolder, ec);
    }
    const DataFileLocation where = dataFile(settings);
    settings.setString("defaultDataFolder", where.folder);
    settings.setString("defaultDataPath", where.path);
    return where;
}

bool Book::databasePresent(const Settings& settings) const {
    const DataFileLocation where = dataFile(settings);
    std::error_code ec;
    const fs::file_status status = fs::status(where.path, ec);
    // Anything but "no such file" counts, a place that can't be looked at included.
    return where.folderExists && status.type() != fs::file_type::not_found;
}

Result<void> Book::load(const std::string& path) {
    setClients({});
    auto root = readKeyedArchiveFile(path);
    if (!root && root.error().missing) {
        m_state = State::New;
        return {};
    }
    if (!root) {
        m_unreadable = true;
        return fail(root.error().error.message);
    }
    auto clients = clientsOfRoot(*root, path);
    if (!clients) {
        m_unreadable = true;
        return std::unexpected(clients.error());
    }
    setClients(*clients);
    m_state = State::FromFile;
    return {};
}

void Book::beginNew() {
    setClients({});
    m_state = State::New;
}

void Book::reset() {
    setClients({});
    m_state = State::Unread;
}

Result<void> Book::save(const std::string& path) {
    if (m_unreadable)
        return fail(path + ": die Datenbank konnte beim Start nicht gelesen werden und bleibt "
                           "unverändert");
    if (m_state == State::Unread)
        return fail(path + ": die Datenbank ist noch nicht gelesen und bleibt unverändert");
    // A book that read no file makes the file, but replaces none that came meanwhile.
    auto written = writeFileAtomically(path, encodeKeyedArchive(databaseRoot()),
                                       /*replace=*/m_state == State::FromFile);
    if (written || written.error().written) m_state = State::FromFile;
    if (!written && !written.error().written && m_state == State::New && fileExists(path))
        return fail(path + ": dort liegt inzwischen etwas, das Zifora beim Start nicht gelesen "
                           "hat; es bleibt unverändert");
    return written;
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
    for (const Observer& observer : m_observers)
        observer(what);
}

} // namespace zifora::core
