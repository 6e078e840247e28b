#pragma once

// One connection of a client to the test server, from its first packet to its last. Runs on its own thread;
// Cut() may be called from any.

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tds_server/packets.h"
#include "tds_server/requests.h"
#include "tds_server/server.h"
#include "tds_server/tokens.h"

namespace vicenter::tds_server {

class ServerConnection {
  public:
    ServerConnection(Server& server, int socket);

    void Serve();
    void Cut() { packets_.Cut(); }
    bool IsOver() const { return over_; }
    bool IsLoggedIn() const { return session_ != nullptr; }

  private:
    // Whatever the server's misbehaviour is at that moment.
    class CurrentBehaviour final : public Misbehaviour {
      public:
        explicit CurrentBehaviour(const Server& server) : server_(server) {}
        bool DropsAtPacket() override { return server_.Behaviour()->DropsAtPacket(); }
        std::size_t LargestPiece() override { return server_.Behaviour()->LargestPiece(); }
        std::optional<tsql::Diagnostic> RefusesLogin() override {
            return server_.Behaviour()->RefusesLogin();
        }
        std::optional<tsql::Diagnostic> RefusesBatch(std::string_view text) override {
            return server_.Behaviour()->RefusesBatch(text);
        }
        std::optional<std::string> AnswersInstead(std::string_view text) override {
            return server_.Behaviour()->AnswersInstead(text);
        }
        bool CutsBehindAnswer() override { return server_.Behaviour()->CutsBehindAnswer(); }
        void Sends(std::string_view tokens) override { server_.Behaviour()->Sends(tokens); }
        int DelayMilliseconds() override {
            delaying_ = server_.Behaviour();
            return delaying_->DelayMilliseconds();
        }
        void DelayEnded() override { delaying_->DelayEnded(); }
        bool IsDeafToLogins() override { return server_.Behaviour()->IsDeafToLogins(); }
        bool IsDeafToBatches() override { return server_.Behaviour()->IsDeafToBatches(); }

      private:
        const Server& server_;
        std::shared_ptr<Misbehaviour> delaying_;
    };
    class Retelling;
    class Counted;

    void AnswerPreLogin();
    bool Login(const LoginRequest& login);
    void RefuseLogin(const tsql::Diagnostic& error);
    void Answer(const Message& message);
    void RunBatch(const std::string& text, bool inCall);
    // What is the server's own and not an account set's: its databases. False for any other batch.
    bool RunServerStatement(const std::string& text);
    void UseDatabase(const std::string& name);
    // Done, or the error.
    void PutOutcome(const std::optional<tsql::Diagnostic>& refusal);
    void RunFixedAnswer(const FixedAnswer& answer);
    void Call(const RpcRequest& call);
    void CallPrepared(const RpcRequest& call);
    void ChangeTransaction(const TransactionRequest& request);
    // Tells the client about a transaction that has begun or ended since it was last told.
    void TellTransaction(std::string& reply);
    void Silently(const std::string& text);
    void PutDone(std::uint16_t status);
    // False when the client has taken the request back; that is answered then.
    bool WaitAsLongAsBehaved();

    Server& server_;
    CurrentBehaviour behaviour_;
    Packets packets_;
    std::unique_ptr<system::CodePage> page_;
    TokenWriter writer_;
    std::unique_ptr<tsql::engine::Session> session_;
    std::string database_;
    std::uint64_t transaction_ = 0;  // 0: none
    std::uint64_t transactions_ = 0;
    struct Prepared {
        std::string definitions;
        std::string text;
    };
    std::map<std::int32_t, Prepared> prepared_;
    std::int32_t nextHandle_ = 1;
    std::atomic<bool> over_ = false;
};

}  // namespace vicenter::tds_server
