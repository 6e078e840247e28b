// Batches about the server's databases, which are not the engine's: a session there has one account set.

#include "tds_server/connection.h"
#include "tsql/base/diagnostic.h"
#include "tsql/syntax/lexer.h"

namespace vicenter::tds_server {

namespace {

// The words of a batch up to its fifth, in lower case but for what is quoted; enough to know these by.
std::vector<std::string> FirstWords(const std::string& text) {
    constexpr std::size_t kMost = 5;
    std::vector<std::string> words;
    tsql::Lexer lexer(text);
    for (tsql::Token token = lexer.Next(); token.kind != tsql::TokenKind::kEnd && words.size() < kMost;
         token = lexer.Next()) {
        std::string word = tsql::TokenValue(token);
        if (token.kind == tsql::TokenKind::kIdentifier) {
            for (char& c : word) {
                if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
            }
        }
        words.push_back(std::move(word));
    }
    return words;
}

}  // namespace

bool ServerConnection::RunServerStatement(const std::string& text) {
    std::vector<std::string> words;
    try {
        words = FirstWords(text);
    } catch (const tsql::SqlError&) {
        return false;
    }
    if (words.size() == 2 && words[0] == "use") {
        UseDatabase(words[1]);
        return true;
    }
    if (words.size() < 3 || words[1] != "database") return false;
    const std::string& name = words[2];
    if (words[0] == "create") {
        PutOutcome(server_.MakeDatabase(name));
    } else if (words[0] == "drop") {
        PutOutcome(server_.DropDatabase(name));
    } else if (words[0] == "alter" && words.size() == 5 && words[4] == "single_user") {
        server_.CutOthers(name, *this);
        PutOutcome(std::nullopt);
    } else {
        return false;
    }
    return true;
}

void ServerConnection::PutOutcome(const std::optional<tsql::Diagnostic>& refusal) {
    std::string reply;
    if (refusal) writer_.Said(reply, *refusal);
    TokenWriter::Done(reply, done::kToken, refusal ? done::kError : done::kFinal, 0, 0);
    packets_.Put(reply);
    packets_.Flush();
}

void ServerConnection::UseDatabase(const std::string& name) {
    auto session = server_.OpenDatabase(name);
    if (!session) {
        return PutOutcome(
            Refusal(911, 16,
                    "Database '" + name + "' does not exist. Make sure that the name is entered correctly."));
    }
    session_ = std::move(session);
    std::string reply;
    writer_.Changed(reply, EnvChange::kDatabase, name, database_);
    writer_.Said(reply, Information(5701, "Changed database context to '" + name + "'."));
    database_ = name;
    server_.NoteDatabase(*this, name);
    TokenWriter::Done(reply, done::kToken, done::kFinal, 0, 0);
    packets_.Put(reply);
    packets_.Flush();
}

}  // namespace vicenter::tds_server
