#pragma once

// A small SQL Server for tests: speaks TDS 7.4 on a port of the loopback, runs what it is sent on embedded
// account sets, and misbehaves on request.
//
//   Server server;
//   server.AddDatabase("books", folder / "books.vas");
//   auto connection = ado::OpenConnection("Provider=SQLOLEDB;Data Source=" + server.Address() + ";…");
//   server.Behave(std::make_shared<DropAtPacket>(3));
//
// Owned by its test; a thread takes connections, each connection runs on one of its own. All members may be
// called from any thread. The destructor ends all connections and waits for their threads.

#include <condition_variable>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tds_server/misbehaviour.h"
#include "tds_server/tokens.h"
#include "tsql/run/session.h"

namespace vicenter::tds_server {

// A result for a text that the engine behind the server does not know.
struct FixedAnswer {
    std::vector<RawColumn> columns;
    std::vector<std::vector<std::string>> rows;  // values as bytes
};

class ServerConnection;

class Server {
  public:
    static constexpr const char* kPassword = "P;w'd{1}";

    explicit Server(Collation collation = Collation::ChinesePrc());
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server();

    // "127.0.0.1,<port>", as a Data Source has it.
    std::string Address() const;
    // A connect string of a host for that database.
    std::string ConnectText(const std::string& database) const;

    // The file is made when it does not exist.
    void AddDatabase(const std::string& name, const std::filesystem::path& file);
    // CREATE DATABASE makes its files there; before that it is refused.
    void KeepDatabasesIn(const std::filesystem::path& folder);
    void Answer(const std::string& batch, FixedAnswer answer);
    void Behave(std::shared_ptr<Misbehaviour> misbehaviour);
    void BehaveWell() { Behave(std::make_shared<Misbehaviour>()); }

    // Ends all connections, as a server does that is started anew.
    void CutAll();

    // ---- counted since the server was made
    int Connections() const;  // logins that were let in
    int OpenConnections() const;
    // Requests of any kind but logins: what a client pays a round trip for.
    int RoundTrips() const;
    // The most batches that ran or waited at one time.
    int MostAtOnce() const;
    // The texts of all batches, in order of arrival.
    std::vector<std::string> Batches() const;
    void ForgetBatches();

    // ---- for its connections
    const Collation& ServerCollation() const { return collation_; }
    // None when there is no such database.
    std::unique_ptr<tsql::engine::Session> OpenDatabase(const std::string& name) const;
    std::shared_ptr<Misbehaviour> Behaviour() const;
    const FixedAnswer* FindAnswer(const std::string& batch) const;
    void NoteDatabase(const ServerConnection& connection, const std::string& name);
    void NoteEnd(const ServerConnection& connection);
    // The refusal, if any.
    std::optional<tsql::Diagnostic> MakeDatabase(const std::string& name);
    std::optional<tsql::Diagnostic> DropDatabase(const std::string& name);
    // Ends the connections to a database but that one, and waits for them.
    void CutOthers(const std::string& name, const ServerConnection& but);
    void NoteLogin();
    void NoteRequest();
    void NoteBatch(const std::string& text);
    void NoteEndOfBatch();

  private:
    struct Served {
        std::unique_ptr<ServerConnection> connection;
        std::thread thread;
    };
    void Accept();

    const Collation collation_;
    int listener_ = -1;
    int port_ = 0;
    mutable std::mutex mutex_;
    bool ending_ = false;
    std::map<std::string, std::filesystem::path> databases_;
    std::filesystem::path folder_;
    std::map<const ServerConnection*, std::string> where_;  // of those that live
    std::condition_variable ended_;
    std::map<std::string, FixedAnswer> answers_;
    std::shared_ptr<Misbehaviour> misbehaviour_ = std::make_shared<Misbehaviour>();
    std::vector<std::string> batches_;
    int logins_ = 0;
    int requests_ = 0;
    int running_ = 0;
    int mostAtOnce_ = 0;
    std::vector<Served> served_;
    std::thread acceptor_;
};

}  // namespace vicenter::tds_server
