#include "tds_server/connection.h"

#include <algorithm>
#include <chrono>

#include "automation/variant.h"
#include "tsql/syntax/ast_statement.h"
#include "tsql/syntax/lexer.h"

namespace vicenter::tds_server {

using tsql::StatementKind;
using tsql::engine::StatementEnd;

namespace {

constexpr std::uint32_t kVersion = 0x74000004;
constexpr std::size_t kReplyPiece = 16 * 1024;

std::uint16_t CommandOf(StatementKind kind) {
    switch (kind) {
        case StatementKind::kSelect:
        case StatementKind::kFetch:
            return 0xC1;
        case StatementKind::kInsert:
            return 0xC3;
        case StatementKind::kDelete:
            return 0xC4;
        case StatementKind::kUpdate:
            return 0xC5;
        default:
            return 0xFD;
    }
}

std::string TransactionBytes(std::uint64_t number) {
    std::string bytes;
    Put64(bytes, number);
    return bytes;
}

// A value as T-SQL spells it.
std::string Spelled(const RpcParameter& parameter) {
    const Value& value = parameter.value;
    if (value.IsNull()) return "NULL";
    switch (value.Raw().index()) {
        case 1:
            return std::to_string(value.Int());
        case 2:
            return automation::DoubleToText(value.Real()) + "e0";
        case 3:
            return value.Exact().ToText();
        case 4:
            return "'" + value.Date().ToText() + "'";
        case 5:
            return tsql::QuoteString(value.Text(), true);
        default: {
            static constexpr char kHex[] = "0123456789ABCDEF";
            std::string text = "0x";
            for (const char byte : value.Blob()) {
                text += kHex[static_cast<unsigned char>(byte) >> 4];
                text += kHex[static_cast<unsigned char>(byte) & 15];
            }
            return text;
        }
    }
}

// "@p1 int,@p2 nvarchar(9) output" as a declaration.
std::string WithoutOutput(std::string text) {
    for (const std::string word : {" output", " OUTPUT", " out", " OUT"}) {
        for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word))
            text.erase(at, word.size());
    }
    return text;
}

}  // namespace

// A batch as it runs, told to the client.
class ServerConnection::Retelling final : public tsql::engine::ResultSink {
  public:
    Retelling(ServerConnection& connection, bool inCall) : connection_(connection), inCall_(inCall) {}

    void BeginResult(const std::vector<tsql::engine::ResultColumn>& columns) override {
        std::vector<std::string> names;
        types_.clear();
        for (const tsql::engine::ResultColumn& column : columns) {
            names.push_back(column.name);
            types_.push_back(column.type);
        }
        Continue();
        connection_.writer_.Columns(reply_, names, types_);
        inResult_ = true;
    }
    void AddRow(std::vector<Value>& row) override {
        connection_.writer_.Row(reply_, types_, row);
        Pass();
    }
    void Message(const tsql::Diagnostic& message) override {
        Continue();
        connection_.writer_.Said(reply_, message);
    }
    void Failed(const tsql::Diagnostic& error, bool goesOn) override {
        Continue();
        connection_.writer_.Said(reply_, error);
        if (goesOn) return;
        pending_ = {inCall_ ? done::kInProcToken : done::kToken, done::kError,
                    CommandOf(StatementKind::kSelect), 0};
        inResult_ = false;
        mayHaveChangedTransaction_ = true;
    }
    void StatementEnded(const StatementEnd& end) override {
        if (end.kind == StatementKind::kTransaction) mayHaveChangedTransaction_ = true;
        const bool inProcedure = inCall_ || end.inProcedure;
        if (end.kind == StatementKind::kExecute) {
            if (inProcedure) return;
            Continue();
            TokenWriter::ReturnStatus(reply_, 0);
            pending_ = {done::kProcToken, 0, 0xE0, 0};
            return;
        }
        if (end.kind == StatementKind::kExecuteText || end.kind == StatementKind::kDeclare) return;
        const bool counted = end.rows >= 0;
        // After SET NOCOUNT ON only results end visibly.
        if (!counted && !inResult_ &&
            (end.kind == StatementKind::kSelect || end.kind == StatementKind::kInsert ||
             end.kind == StatementKind::kUpdate || end.kind == StatementKind::kDelete ||
             end.kind == StatementKind::kFetch)) {
            return;
        }
        Continue();
        pending_ = {inProcedure ? done::kInProcToken : done::kToken, counted ? done::kCount : done::kFinal,
                    CommandOf(end.kind), counted ? static_cast<std::uint64_t>(end.rows) : 0};
        inResult_ = false;
        Pass();
    }

    bool IsTakenBack() const { return takenBack_; }
    // What the batch has not sent yet, its last DONE without its mark of more.
    std::string& Finish() {
        if (inCall_) {
            Continue();
            TokenWriter::ReturnStatus(reply_, 0);
            pending_ = {done::kProcToken, 0, 0xE0, 0};
        }
        if (!pending_) pending_ = {done::kToken, done::kFinal, 0xFD, 0};
        if (mayHaveChangedTransaction_) connection_.TellTransaction(reply_);
        TokenWriter::Done(reply_, pending_->token, pending_->status, pending_->command, pending_->rows);
        pending_.reset();
        return reply_;
    }

  private:
    struct PendingDone {
        std::uint8_t token;
        std::uint16_t status;
        std::uint16_t command;
        std::uint64_t rows;
    };

    // More comes: the DONE that was held back says so.
    void Continue() {
        if (!pending_) return;
        const auto status = static_cast<std::uint16_t>(pending_->status | done::kMore);
        TokenWriter::Done(reply_, pending_->token, status, pending_->command, pending_->rows);
        pending_.reset();
    }
    void Pass() {
        if (reply_.size() < kReplyPiece) return;
        if (!takenBack_ && connection_.packets_.HasInput()) takenBack_ = true;
        if (!takenBack_) connection_.packets_.Put(reply_);
        reply_.clear();
    }

    ServerConnection& connection_;
    bool inCall_;
    bool inResult_ = false;
    bool takenBack_ = false;
    bool mayHaveChangedTransaction_ = false;
    std::vector<SqlType> types_;
    std::string reply_;
    std::optional<PendingDone> pending_;
};

ServerConnection::ServerConnection(Server& server, int socket)
    : server_(server),
      behaviour_(server),
      packets_(socket, behaviour_),
      page_(system::CodePage::Open(server.ServerCollation().codePage)),
      writer_(server.ServerCollation(), *page_) {}

void ServerConnection::Serve() {
    try {
        for (;;) {
            const Message message = packets_.Read();
            if (message.type == PacketType::kPreLogin) {
                AnswerPreLogin();
            } else if (message.type == PacketType::kLogin) {
                if (!Login(ReadLogin(message.data))) break;
            } else if (session_) {
                server_.NoteRequest();
                Answer(message);
            } else {
                break;
            }
        }
    } catch (const std::exception&) {
        // The line is closed, by whichever side.
    }
    session_.reset();
    packets_.Cut();
    over_ = true;
    server_.NoteEnd(*this);
}

void ServerConnection::AnswerPreLogin() {
    // Options by number, place and length; then what they say: version, no encryption, no sharing of lines.
    static constexpr unsigned char kAnswer[] = {
        0, 0, 16, 0, 6, 1, 0, 22, 0, 1, 4, 0, 23, 0, 1, 0xFF, 15, 0, 16, 0, 0, 0, 2, 0,
    };
    packets_.Put(std::string_view(reinterpret_cast<const char*>(kAnswer), sizeof kAnswer));
    packets_.Flush();
}

void ServerConnection::RefuseLogin(const tsql::Diagnostic& error) {
    std::string reply;
    writer_.Said(reply, error);
    TokenWriter::Done(reply, done::kToken, done::kError, 0, 0);
    packets_.Put(reply);
    packets_.Flush();
}

bool ServerConnection::Login(const LoginRequest& login) {
    if (behaviour_.IsDeafToLogins()) packets_.WaitForEnd();
    if (const auto refusal = behaviour_.RefusesLogin()) {
        RefuseLogin(*refusal);
        return false;
    }
    // As servers do that take no text with a NUL in it.
    if (login.server.find('\0') != std::string::npos) {
        RefuseLogin(Refusal(18456, 14, "Login failed: the name of the server holds a NUL."));
        return false;
    }
    if (login.password != Server::kPassword) {
        RefuseLogin(Refusal(18456, 14, "Login failed for user '" + login.user + "'."));
        return false;
    }
    database_ = login.database.empty() ? "master" : login.database;
    session_ = server_.OpenDatabase(database_);
    if (!session_) {
        RefuseLogin(
            Refusal(4060, 11,
                    "Cannot open database \"" + database_ + "\" requested by the login. The login failed."));
        return false;
    }
    server_.NoteLogin();
    server_.NoteDatabase(*this, database_);
    const std::uint32_t size = std::clamp<std::uint32_t>(login.packetSize, 512, 32767);
    std::string reply;
    writer_.Changed(reply, EnvChange::kDatabase, database_, "master");
    writer_.Said(reply, Information(5701, "Changed database context to '" + database_ + "'."));
    writer_.ChangedBytes(reply, EnvChange::kCollation, server_.ServerCollation().bytes, "");
    writer_.Changed(reply, EnvChange::kLanguage, "us_english", "");
    writer_.Said(reply, Information(5703, "Changed language setting to us_english."));
    writer_.LoginAcknowledged(reply, std::min(login.version, kVersion));
    writer_.Changed(reply, EnvChange::kPacketSize, std::to_string(size), "4096");
    TokenWriter::Done(reply, done::kToken, done::kFinal, 0, 0);
    packets_.Put(reply);
    packets_.Flush();
    packets_.SetPacketSize(size);
    return true;
}

void ServerConnection::PutDone(std::uint16_t status) {
    std::string reply;
    TokenWriter::Done(reply, done::kToken, status, 0, 0);
    packets_.Put(reply);
    packets_.Flush();
}

void ServerConnection::Answer(const Message& message) {
    switch (message.type) {
        case PacketType::kAttention:
            return PutDone(done::kAttention);
        case PacketType::kBatch:
            return RunBatch(ReadBatch(message.data), false);
        case PacketType::kRpc: {
            // Drivers send one call a message, each answered by itself.
            for (const RpcRequest& call : ReadCalls(message.data, *page_))
                Call(call);
            return;
        }
        case PacketType::kTransaction:
            return ChangeTransaction(ReadTransaction(message.data));
        default:
            throw LineClosed();
    }
}

bool ServerConnection::WaitAsLongAsBehaved() {
    if (behaviour_.IsDeafToBatches()) packets_.WaitForEnd();
    const int delay = behaviour_.DelayMilliseconds();
    if (delay <= 0) return true;
    const bool went = !packets_.WaitForInput(delay);
    behaviour_.DelayEnded();
    if (went) return true;
    // An attention, or the end of the line, which the next read finds.
    const Message message = packets_.Read();
    if (message.type != PacketType::kAttention) throw LineClosed();
    PutDone(done::kAttention);
    return false;
}

// From its arrival to its answer, whatever becomes of it.
class ServerConnection::Counted {
  public:
    Counted(Server& server, const std::string& text) : server_(server) { server_.NoteBatch(text); }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { server_.NoteEndOfBatch(); }

  private:
    Server& server_;
};

void ServerConnection::RunBatch(const std::string& text, bool inCall) {
    const Counted counted(server_, text);
    if (!WaitAsLongAsBehaved()) return;
    if (const auto refusal = behaviour_.RefusesBatch(text)) {
        // A victim's transaction is gone.
        if (refusal->number != 1222) Silently("if @@trancount > 0 rollback transaction");
        std::string reply;
        writer_.Said(reply, *refusal);
        TellTransaction(reply);
        TokenWriter::Done(reply, done::kToken, done::kError, 0xFD, 0);
        packets_.Put(reply);
        packets_.Flush();
        return;
    }
    if (const auto tokens = behaviour_.AnswersInstead(text)) {
        packets_.Put(*tokens);
        packets_.Flush();
        if (behaviour_.CutsBehindAnswer()) throw LineClosed();
        return;
    }
    if (const FixedAnswer* answer = server_.FindAnswer(text)) return RunFixedAnswer(*answer);
    if (RunServerStatement(text)) return;
    Retelling retelling(*this, inCall);
    session_->Execute(text, retelling);
    const std::string& rest = retelling.Finish();
    if (!retelling.IsTakenBack()) packets_.Put(rest);
    packets_.Flush();
    if (retelling.IsTakenBack() && packets_.Read().type == PacketType::kAttention) PutDone(done::kAttention);
}

void ServerConnection::RunFixedAnswer(const FixedAnswer& answer) {
    std::string reply;
    writer_.Columns(reply, answer.columns);
    for (const std::vector<std::string>& row : answer.rows)
        TokenWriter::RawRow(reply, row);
    TokenWriter::Done(reply, done::kToken, done::kCount, 0xC1, answer.rows.size());
    packets_.Put(reply);
    packets_.Flush();
}

void ServerConnection::Call(const RpcRequest& call) {
    if (call.name == "sp_reset_connection") {
        session_->Reset();
        std::string reply;
        TellTransaction(reply);
        TokenWriter::ReturnStatus(reply, 0);
        TokenWriter::Done(reply, done::kProcToken, done::kFinal, 0xE0, 0);
        packets_.Put(reply);
        packets_.Flush();
        return;
    }
    if (call.name == "sp_executesql" || call.name == "sp_execute" || call.name == "sp_prepexec" ||
        call.name == "sp_prepare" || call.name == "sp_unprepare") {
        return CallPrepared(call);
    }
    // A procedure of the account set.
    std::string batch = "exec " + call.name;
    for (std::size_t i = 0; i < call.parameters.size(); ++i) {
        batch += i == 0 ? " " : ", ";
        if (!call.parameters[i].name.empty()) batch += call.parameters[i].name + " = ";
        batch += Spelled(call.parameters[i]);
    }
    RunBatch(batch, true);
}

void ServerConnection::CallPrepared(const RpcRequest& call) {
    const std::vector<RpcParameter>& given = call.parameters;
    const auto text = [&](std::size_t i) {
        if (i >= given.size()) throw LineClosed();
        return given[i].value.IsNull() ? std::string() : given[i].value.Text();
    };
    std::string reply;
    const auto finish = [&] {
        TokenWriter::ReturnStatus(reply, 0);
        TokenWriter::Done(reply, done::kProcToken, done::kFinal, 0xE0, 0);
        packets_.Put(reply);
        packets_.Flush();
    };
    Prepared statement;
    std::size_t first = 0;
    if (call.name == "sp_executesql") {
        statement = {given.size() > 1 ? text(1) : std::string(), text(0)};
        first = std::min<std::size_t>(2, given.size());
    } else if (call.name == "sp_execute" || call.name == "sp_unprepare") {
        if (given.empty() || given[0].value.IsNull()) throw LineClosed();
        const auto handle = static_cast<std::int32_t>(given[0].value.Int());
        const auto found = prepared_.find(handle);
        if (found == prepared_.end()) {
            writer_.Said(reply, Refusal(8179, 16,
                                        "Could not find prepared statement with handle " +
                                            std::to_string(handle) + "."));
            return finish();
        }
        statement = found->second;
        if (call.name == "sp_unprepare") {
            prepared_.erase(found);
            return finish();
        }
        first = 1;
    } else {
        statement = {text(1), text(2)};
        const std::int32_t handle = nextHandle_++;
        prepared_[handle] = statement;
        writer_.ReturnValue(reply, 0, given[0].name, SqlType::Int(), Value(std::int64_t{handle}));
        if (call.name == "sp_prepare") return finish();
        first = 3;
    }
    std::string batch;
    if (!statement.definitions.empty()) {
        batch = "declare " + WithoutOutput(statement.definitions) + " ";
        tsql::Lexer names(statement.definitions);
        std::size_t next = first;
        for (tsql::Token token = names.Next(); token.kind != tsql::TokenKind::kEnd; token = names.Next()) {
            if (token.kind != tsql::TokenKind::kVariable || next >= given.size()) continue;
            batch += "set " + std::string(token.text) + " = " + Spelled(given[next++]) + " ";
        }
    }
    batch += statement.text;
    packets_.Put(reply);
    RunBatch(batch, true);
}

void ServerConnection::Silently(const std::string& text) {
    class Nothing final : public tsql::engine::ResultSink {
      public:
        void BeginResult(const std::vector<tsql::engine::ResultColumn>&) override {}
        void AddRow(std::vector<Value>&) override {}
        void Message(const tsql::Diagnostic&) override {}
    } nothing;
    session_->Execute(text, nothing);
}

void ServerConnection::TellTransaction(std::string& reply) {
    class Count final : public tsql::engine::ResultSink {
      public:
        void BeginResult(const std::vector<tsql::engine::ResultColumn>&) override {}
        void AddRow(std::vector<Value>& row) override { open = row.front().Int() > 0; }
        void Message(const tsql::Diagnostic&) override {}
        bool open = false;
    } count;
    session_->Execute("select @@trancount", count);
    if (count.open == (transaction_ != 0)) return;
    if (count.open) {
        transaction_ = ++transactions_;
        writer_.ChangedBytes(reply, EnvChange::kBegin, TransactionBytes(transaction_), "");
    } else {
        writer_.ChangedBytes(reply, EnvChange::kCommit, "", TransactionBytes(transaction_));
        transaction_ = 0;
    }
}

void ServerConnection::ChangeTransaction(const TransactionRequest& request) {
    if (!WaitAsLongAsBehaved()) return;
    Retelling retelling(*this, false);
    switch (request.action) {
        case TransactionAction::kBegin:
            session_->Execute("begin transaction", retelling);
            break;
        case TransactionAction::kCommit:
            session_->Execute("commit transaction", retelling);
            break;
        case TransactionAction::kRollback:
            session_->Execute("if @@trancount > 0 rollback transaction", retelling);
            break;
        default:
            throw LineClosed();
    }
    std::string reply;
    TellTransaction(reply);
    packets_.Put(reply);
    if (request.beginsAgain) Silently("begin transaction");
    packets_.Put(retelling.Finish());
    packets_.Flush();
}

}  // namespace vicenter::tds_server
