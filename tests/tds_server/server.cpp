#include "tds_server/server.h"

#include <algorithm>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/ado/account_set/account_set_collation.h"
#include "platform/system/collation.h"
#include "platform/system/surroundings.h"
#include "tds_server/connection.h"

namespace vicenter::tds_server {

namespace {

// A column of an int and its value.
constexpr char kIntType[] = {0x26, 4};

std::string IntValue(std::uint32_t value) {
    std::string bytes;
    PutByte(bytes, 4);
    Put32(bytes, value);
    return bytes;
}

}  // namespace

Server::Server(Collation collation) : collation_(std::move(collation)) {
    // Made before the threads ask for it.
    system::Collator::Chinese();
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    if (listener_ < 0 || bind(listener_, plain, sizeof address) != 0 || listen(listener_, 64) != 0 ||
        getsockname(listener_, plain, &length) != 0) {
        throw std::runtime_error("no port for the test server");
    }
    port_ = ntohs(address.sin_port);
    Answer(
        "select collationproperty(convert(nvarchar(128), databasepropertyex(db_name(), 'Collation')), "
        "'CodePage')",
        {{{"", std::string(kIntType, sizeof kIntType)}},
         {{IntValue(static_cast<std::uint32_t>(collation_.codePage))}}});
    acceptor_ = std::thread([this] { Accept(); });
}

Server::~Server() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    close(listener_);
    for (Served& served : served_)
        served.connection->Cut();
    for (Served& served : served_)
        served.thread.join();
}

void Server::Accept() {
    for (;;) {
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        const std::lock_guard lock(mutex_);
        if (ending_) {
            if (socket >= 0) close(socket);
            return;
        }
        if (socket < 0) continue;
        const int yes = 1;
        setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        auto connection = std::make_unique<ServerConnection>(*this, socket);
        ServerConnection& serving = *connection;
        served_.push_back({std::move(connection), std::thread([&serving] { serving.Serve(); })});
    }
}

std::string Server::Address() const {
    return "127.0.0.1," + std::to_string(port_);
}

std::string Server::ConnectText(const std::string& database) const {
    return "Provider=SQLOLEDB.1;Persist Security Info=True;User ID=sa;Password=\"" + std::string(kPassword) +
           "\";Initial Catalog=" + database + ";Data Source=" + Address();
}

void Server::AddDatabase(const std::string& name, const std::filesystem::path& file) {
    const std::lock_guard lock(mutex_);
    databases_[name] = file;
}

void Server::KeepDatabasesIn(const std::filesystem::path& folder) {
    const std::lock_guard lock(mutex_);
    folder_ = folder;
}

std::optional<tsql::Diagnostic> Server::MakeDatabase(const std::string& name) {
    {
        const std::lock_guard lock(mutex_);
        if (databases_.contains(name))
            return Refusal(1801, 16,
                           "Database '" + name + "' already exists. Choose a different database name.");
        if (folder_.empty())
            return Refusal(262, 14, "CREATE DATABASE permission denied in database 'master'.");
        databases_[name] = folder_ / (name + ".vas");
    }
    OpenDatabase(name);
    return std::nullopt;
}

std::optional<tsql::Diagnostic> Server::DropDatabase(const std::string& name) {
    const std::lock_guard lock(mutex_);
    const auto found = databases_.find(name);
    if (found == databases_.end())
        return Refusal(3701, 11,
                       "Cannot drop the database '" + name +
                           "', because it does not exist or you do not have permission.");
    for (const auto& entry : where_) {
        if (entry.second == name)
            return Refusal(3702, 16, "Cannot drop database \"" + name + "\" because it is currently in use.");
    }
    std::error_code ignored;
    for (const char* part : {"", "-wal", "-shm", "-journal"})
        std::filesystem::remove(found->second.string() + part, ignored);
    databases_.erase(found);
    return std::nullopt;
}

void Server::CutOthers(const std::string& name, const ServerConnection& but) {
    std::unique_lock lock(mutex_);
    const auto isOther = [&](const ServerConnection* connection) {
        const auto at = where_.find(connection);
        return connection != &but && at != where_.end() && at->second == name;
    };
    for (Served& served : served_) {
        if (isOther(served.connection.get())) served.connection->Cut();
    }
    ended_.wait(lock, [&] {
        return std::none_of(served_.begin(), served_.end(),
                            [&](const Served& served) { return isOther(served.connection.get()); });
    });
}

void Server::NoteDatabase(const ServerConnection& connection, const std::string& name) {
    const std::lock_guard lock(mutex_);
    where_[&connection] = name;
}

void Server::NoteEnd(const ServerConnection& connection) {
    const std::lock_guard lock(mutex_);
    where_.erase(&connection);
    ended_.notify_all();
}

void Server::Answer(const std::string& batch, FixedAnswer answer) {
    const std::lock_guard lock(mutex_);
    answers_[batch] = std::move(answer);
}

void Server::Behave(std::shared_ptr<Misbehaviour> misbehaviour) {
    const std::lock_guard lock(mutex_);
    misbehaviour_ = std::move(misbehaviour);
}

void Server::CutAll() {
    const std::lock_guard lock(mutex_);
    for (Served& served : served_)
        served.connection->Cut();
}

int Server::Connections() const {
    const std::lock_guard lock(mutex_);
    return logins_;
}

int Server::OpenConnections() const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(std::count_if(served_.begin(), served_.end(),
                                          [](const Served& served) { return !served.connection->IsOver(); }));
}

int Server::RoundTrips() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::vector<std::string> Server::Batches() const {
    const std::lock_guard lock(mutex_);
    return batches_;
}

void Server::ForgetBatches() {
    const std::lock_guard lock(mutex_);
    batches_.clear();
    requests_ = 0;
    mostAtOnce_ = 0;
}

std::unique_ptr<tsql::engine::Session> Server::OpenDatabase(const std::string& name) const {
    tsql::engine::SessionOptions options;
    {
        const std::lock_guard lock(mutex_);
        const auto found = databases_.find(name);
        if (found == databases_.end()) return nullptr;
        options.path = found->second.string();
    }
    options.create = true;
    options.batchTransactions = false;
    options.collation = &ado::AccountSetCollation();
    options.now = [] { return system::Surroundings::Current().clock->Now(); };
    return std::make_unique<tsql::engine::Session>(std::move(options));
}

std::shared_ptr<Misbehaviour> Server::Behaviour() const {
    const std::lock_guard lock(mutex_);
    return misbehaviour_;
}

const FixedAnswer* Server::FindAnswer(const std::string& batch) const {
    const std::lock_guard lock(mutex_);
    const auto found = answers_.find(batch);
    return found == answers_.end() ? nullptr : &found->second;
}

void Server::NoteLogin() {
    const std::lock_guard lock(mutex_);
    ++logins_;
}

void Server::NoteRequest() {
    const std::lock_guard lock(mutex_);
    ++requests_;
}

void Server::NoteBatch(const std::string& text) {
    const std::lock_guard lock(mutex_);
    batches_.push_back(text);
    mostAtOnce_ = std::max(mostAtOnce_, ++running_);
}

void Server::NoteEndOfBatch() {
    const std::lock_guard lock(mutex_);
    --running_;
}

int Server::MostAtOnce() const {
    const std::lock_guard lock(mutex_);
    return mostAtOnce_;
}

}  // namespace vicenter::tds_server
