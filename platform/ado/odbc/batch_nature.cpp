#include "platform/ado/odbc/batch_nature.h"

#include <algorithm>
#include <string>

#include "text/ascii.h"
#include "tsql/base/diagnostic.h"
#include "tsql/syntax/ast_query.h"
#include "tsql/syntax/ast_statement.h"
#include "tsql/syntax/lexer.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::ado {

using tsql::Keyword;
using tsql::Token;
using tsql::TokenKind;

namespace {

std::string Word(const Token& token) {
    if (token.kind != TokenKind::kIdentifier) return {};
    return text::LowerAscii(token.text);
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
// Behind them nobody can say which count is whose.
constexpr const char* kBranches[] = {"while", "if", "exec", "execute", "return"};

// Every word that says something is reserved, but for names of temporary tables and what SET sets. A save has
// hundreds of thousands of others.
bool SaysSomething(const Token& token, const Token& previous) {
    if (token.kind != TokenKind::kIdentifier) return false;
    return token.keyword != Keyword::kNone || token.text.front() == '#' || previous.keyword == Keyword::kSet;
}

// The head of an INSERT, up to the parenthesis of its values. The lines of a save have the same one each, and
// nothing new is learned from reading it again.
class InsertHead {
  public:
    explicit InsertHead(std::string_view batch) : batch_(batch) {}

    // How long the head is that the batch has there, if it is the one that was read last; else 0.
    std::size_t LengthAt(std::size_t offset) const {
        return !head_.empty() && batch_.substr(offset).starts_with(head_) ? head_.size() : 0;
    }
    void Read(const Token& token) {
        if (token.keyword == Keyword::kInsert) {
            begin_ = OffsetOf(token);
            state_ = State::kHead;
        } else if (state_ == State::kHead) {
            if (token.keyword == Keyword::kValues) {
                state_ = State::kValues;
            } else if (!IsPlain(token)) {
                state_ = State::kOutside;
            }
        } else if (state_ == State::kValues) {
            if (token.kind == TokenKind::kOperator && token.op == tsql::Op::kLeftParen)
                head_ = batch_.substr(begin_, OffsetOf(token) + 1 - begin_);
            state_ = State::kOutside;
        }
    }
    std::size_t OffsetOf(const Token& token) const {
        return static_cast<std::size_t>(token.text.data() - batch_.data());
    }

  private:
    enum class State { kOutside, kHead, kValues };
    // Names and what stands between them.
    static bool IsPlain(const Token& token) {
        if (token.kind == TokenKind::kIdentifier)
            return token.keyword == Keyword::kNone || token.keyword == Keyword::kInto;
        return token.kind == TokenKind::kQuotedIdentifier || token.kind == TokenKind::kOperator;
    }

    std::string_view batch_;
    std::string_view head_;
    std::size_t begin_ = 0;
    State state_ = State::kOutside;
};

// Where values end that are plain literals, numbers and texts, with the parenthesis behind them; the place
// itself where there is anything else among them.
std::size_t EndOfLiterals(std::string_view batch, std::size_t from) {
    for (std::size_t at = from; at < batch.size(); ++at) {
        const char c = batch[at];
        if (c == ')') return at + 1;
        if (c == '\'') {
            at = batch.find('\'', at + 1);
            if (at == std::string_view::npos) return from;
            continue;
        }
        const char next = at + 1 < batch.size() ? batch[at + 1] : ')';
        const bool plain = (c >= '0' && c <= '9') || c == ',' || c == '.' || c == ' ' ||
                           (c == '-' && next != '-') || (c == 'N' && next == '\'');
        if (!plain) return from;
    }
    return from;
}

// A batch word by word.
class NatureReader {
  public:
    BatchNature Read(std::string_view batch) {
        try {
            tsql::Lexer lexer(batch);
            InsertHead head(batch);
            Token previous;
            bool first = true;
            for (Token token = lexer.Next(); token.kind != TokenKind::kEnd; token = lexer.Next()) {
                if (token.keyword == Keyword::kInsert) {
                    const std::size_t offset = head.OffsetOf(token);
                    if (const std::size_t length = head.LengthAt(offset); length > 0) {
                        ++changes_;
                        before_ = "insert";
                        lexer = tsql::Lexer(batch.substr(EndOfLiterals(batch, offset + length)));
                        previous = {};
                        continue;
                    }
                }
                head.Read(token);
                if (SaysSomething(token, previous)) {
                    setsOption_ = previous.keyword == Keyword::kSet && !IsAssigned(lexer);
                    Take(Word(token), previous, first);
                }
                previous = token;
                first = false;
            }
        } catch (const tsql::SqlError&) {
            // The server says what is wrong with it.
            nature_.leavesTraces = true;
            changes_ = 2;
        }
        nature_.onlyReads = changes_ == 0 && !repeats_;
        nature_.needsUnit = !nature_.refusesUnit && (changes_ > 1 || repeats_);
        nature_.mayCountReads = reads_ && !branches_;
        return nature_;
    }

  private:
    // What stands before the lexer gets a value: no option of the connection does.
    static bool IsAssigned(tsql::Lexer lexer) {
        const Token next = lexer.Next();
        return next.kind == TokenKind::kOperator && next.op != tsql::Op::kSemicolon &&
               next.op != tsql::Op::kComma && next.op != tsql::Op::kRightParen;
    }
    void Take(const std::string& word, const Token& previous, bool first) {
        if (IsOneOf(word, kChanges)) ++changes_;
        if (word == "into" && before_ == "select") ++changes_;
        if (IsOneOf(word, kRepeats)) repeats_ = true;
        if (IsOneOf(word, kBranches)) branches_ = true;
        if (word == "select" || word == "fetch") reads_ = true;
        if (first && IsOneOf(word, kWholeServer)) nature_.refusesUnit = true;
        if (word == "database" && (before_ == "create" || before_ == "alter" || before_ == "drop"))
            nature_.refusesUnit = true;
        if (LeavesTraces(word, previous)) nature_.leavesTraces = true;
        if (word == "select" || word == "fetch" || IsOneOf(word, kChanges)) before_ = word;
    }
    bool LeavesTraces(const std::string& word, const Token& previous) const {
        if (IsOneOf(word, kTransactions) || word == "use" || word.front() == '#') return true;
        if (setsOption_) return true;
        // SET NOCOUNT stays as well, though nobody here would be misled by it: counts would be.
        if (word == "nocount") return true;
        if (word == "cursor" && previous.kind == TokenKind::kIdentifier) return true;
        return word == "as" && (previous.keyword == Keyword::kExec || previous.keyword == Keyword::kExecute);
    }

    BatchNature nature_;
    int changes_ = 0;
    bool repeats_ = false;
    bool branches_ = false;
    bool reads_ = false;
    bool setsOption_ = false;
    std::string before_;
};

}  // namespace

BatchNature NatureOf(std::string_view batch) {
    return NatureReader().Read(batch);
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
                case tsql::StatementKind::kMerge:
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
                case tsql::StatementKind::kGoto:
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
