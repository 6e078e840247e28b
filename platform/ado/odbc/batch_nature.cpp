#include "platform/ado/odbc/batch_nature.h"

#include <algorithm>
#include <string>

#include "tsql/base/diagnostic.h"
#include "tsql/syntax/ast_query.h"
#include "tsql/syntax/ast_statement.h"
#include "tsql/syntax/lexer.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::ado {

using tsql::Token;
using tsql::TokenKind;

namespace {

std::string Word(const Token& token) {
    if (token.kind != TokenKind::kIdentifier) return {};
    std::string word(token.text);
    for (char& c : word) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return word;
}

template <std::size_t N>
bool IsOneOf(const std::string& word, const char* const (&words)[N]) {
    return std::any_of(std::begin(words), std::end(words), [&](const char* other) { return word == other; });
}

constexpr const char* kChanges[] = {"insert", "update", "delete", "merge", "truncate",   "create",   "alter",
                                    "drop",   "grant",  "revoke", "deny",  "updatetext", "writetext"};
constexpr const char* kRepeats[] = {"while", "exec", "execute", "goto"};
constexpr const char* kTransactions[] = {"tran", "transaction"};
// Their objects stand outside of transactions.
constexpr const char* kWholeServer[] = {"backup", "restore",    "reconfigure", "use",
                                        "kill",   "checkpoint", "shutdown"};

}  // namespace

BatchNature NatureOf(std::string_view batch) {
    BatchNature nature;
    int changes = 0;
    bool repeats = false;
    bool first = true;
    std::string before;
    Token previous;
    try {
        tsql::Lexer lexer(batch);
        for (Token token = lexer.Next(); token.kind != TokenKind::kEnd; token = lexer.Next()) {
            const std::string word = Word(token);
            if (!word.empty()) {
                if (IsOneOf(word, kChanges)) ++changes;
                if (word == "into" && before == "select") ++changes;
                if (IsOneOf(word, kRepeats)) repeats = true;
                if (IsOneOf(word, kTransactions)) nature.leavesTraces = true;
                if (first && IsOneOf(word, kWholeServer)) nature.refusesUnit = true;
                if (word == "use") nature.leavesTraces = true;
                if (word == "database" && (before == "create" || before == "alter" || before == "drop"))
                    nature.refusesUnit = true;
                if (word.front() == '#') nature.leavesTraces = true;
                if (previous.kind == TokenKind::kIdentifier && Word(previous) == "set" &&
                    before != "update" && word != "nocount") {
                    nature.leavesTraces = true;
                }
                // SET NOCOUNT stays as well, though nobody here would be misled by it: counts would be.
                if (word == "nocount") nature.leavesTraces = true;
                if (word == "cursor" && previous.kind == TokenKind::kIdentifier) nature.leavesTraces = true;
                if (word == "as" && (Word(previous) == "execute" || Word(previous) == "exec"))
                    nature.leavesTraces = true;
                if (word == "select" || word == "fetch" || IsOneOf(word, kChanges)) before = word;
            }
            previous = token;
            first = false;
        }
    } catch (const tsql::SqlError&) {
        // The server says what is wrong with it.
        nature.leavesTraces = true;
        changes = 2;
    }
    nature.onlyReads = changes == 0 && !repeats;
    nature.needsUnit = !nature.refusesUnit && (changes > 1 || repeats);
    return nature;
}

std::vector<bool> CountsOfChanges(std::string_view batch) {
    std::vector<bool> counts;
    try {
        tsql::StatementReader reader(batch);
        while (const tsql::StatementPtr statement = reader.Next()) {
            switch (statement->kind) {
                case tsql::StatementKind::kInsert:
                case tsql::StatementKind::kUpdate:
                case tsql::StatementKind::kDelete:
                    counts.push_back(true);
                    break;
                case tsql::StatementKind::kSelect: {
                    const auto& query = *tsql::As<tsql::SelectStatement>(*statement).query;
                    const tsql::SelectBody* body = query.Select();
                    if (body != nullptr && !body->into.IsEmpty()) {
                        counts.push_back(true);
                    } else if (body != nullptr && body->Assigns()) {
                        counts.push_back(false);
                    }
                    break;
                }
                case tsql::StatementKind::kFetch:
                    counts.push_back(false);
                    break;
                case tsql::StatementKind::kBlock:
                case tsql::StatementKind::kIf:
                case tsql::StatementKind::kWhile:
                case tsql::StatementKind::kTryCatch:
                case tsql::StatementKind::kExecute:
                case tsql::StatementKind::kExecuteText:
                case tsql::StatementKind::kReturn:
                    return {};
                default:
                    break;
            }
        }
    } catch (const tsql::SqlError&) {
        return {};
    }
    return counts;
}

}  // namespace vicenter::ado
